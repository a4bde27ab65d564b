// The nonsymmetric eigenvalue routines' shared templates: balancing, the
// reduction to Hessenberg form and its orthogonal factor, the Hessenberg QR
// iteration to Schur form, eigenvectors of the Schur form, condition
// numbers and the Sylvester equation.
//
// Every routine has the meaning, the workspace and the INFO of the published
// routine named beside it; INFO is the return value (the arguments are
// already checked). T is float or std::complex<float>: where the published
// real and complex routines differ in their arguments (eigenvalues as WR,
// WI or as W; a real workspace beside the complex one), both are given and
// the unused ones are null.
#pragma once

#include <cstdint>

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// JOB of xGEBAL and xGEBAK: N, P, S, B.
enum class Balance : std::uint8_t { kNone, kPermute, kScale, kBoth };
// SIDE of xTREVC: R, L, B.
enum class EigSide : std::uint8_t { kRight, kLeft, kBoth };
// HOWMNY of xTREVC and xTRSNA: A (all), B (all, back-transformed), S (selected).
enum class HowMany : std::uint8_t { kAll, kBackTransform, kSelected };
// JOB of xTRSNA: E (eigenvalues), V (eigenvectors), B (both).
enum class Sense : std::uint8_t { kValues, kVectors, kBoth };

// ---- balancing (gebal.cpp) ---------------------------------------------------------------

// xGEBAL: permutes and/or scales A; ilo, ihi 1-based; scale (n reals).
template <class T>
int gebal(Balance job, int n, T *a, int lda, int *ilo, int *ihi, real_t<T> *scale);

// xGEBAK: back transformation of the m columns of V (side left or right).
template <class T>
int gebak(Balance job, Side side, int n, int ilo, int ihi, const real_t<T> *scale, int m, T *v,
          int ldv);

// ---- Hessenberg reduction (gehrd.cpp) ----------------------------------------------------

// xGEHRD: blocked, the panel by xLAHR2, its update on level-3 routines.
template <class T>
void gehrd(int n, int ilo, int ihi, T *a, int lda, T *tau, T *work, int lwork);
template <class T>
std::int64_t gehrd_worksize(int n, int ilo, int ihi);

// xORGHR, xUNGHR: the factor Q of gehrd, n x n, in A.
template <class T>
void orghr(int n, int ilo, int ihi, T *a, int lda, const T *tau, T *work, int lwork);
template <class T>
std::int64_t orghr_worksize(int n, int ilo, int ihi);

// ---- the Hessenberg QR iteration (hseqr*.cpp, laqr*.cpp) -----------------------------------

// xHSEQR: wantt (JOB = 'S') the Schur form in H, else eigenvalues only;
// compz kNone, kInitial (Z := Q), kUpdate (Z := Z Q). Eigenvalues in wr, wi
// (real T; w null) or w (complex T; wr, wi null). INFO > 0 as published.
template <class T>
int hseqr(bool wantt, CompQ compz, int n, int ilo, int ihi, T *h, int ldh, real_t<T> *wr,
          real_t<T> *wi, T *w, T *z, int ldz, T *work, int lwork);
template <class T>
std::int64_t hseqr_worksize(bool wantt, CompQ compz, int n, int ilo, int ihi);

// ---- the Schur form's eigenvectors and condition numbers (trevc.cpp, trsna.cpp, trsyl.cpp)

// xTREVC: select (n logicals) may be changed as published for real T;
// work: 3n reals (real), 2n complex and rwork n reals (complex). T is the
// Schur form (the complex routine changes its diagonal and restores it).
template <class T>
int trevc(EigSide side, HowMany howmny, int *select, int n, T *t, int ldt, T *vl, int ldvl, T *vr,
          int ldvr, int mm, int *m, T *work, real_t<T> *rwork);

// xTRSNA: condition numbers s (eigenvalues) and sep (eigenvectors).
// work: ldwork x (n + 6) (real) or (n + 1) (complex) scalars; iwork 2(n-1)
// (real); rwork n (complex).
template <class T>
int trsna(Sense job, HowMany howmny, const int *select, int n, const T *t, int ldt, const T *vl,
          int ldvl, const T *vr, int ldvr, real_t<T> *s, real_t<T> *sep, int mm, int *m, T *work,
          int ldwork, int *iwork, real_t<T> *rwork);

// xTRSYL: op(A) X + isgn X op(B) = scale C, X overwriting C; *scale <= 1.
template <class T>
int trsyl(Op trana, Op tranb, int isgn, int m, int n, const T *a, int lda, const T *b, int ldb,
          T *c, int ldc, real_t<T> *scale);

}  // namespace orb::lapack
