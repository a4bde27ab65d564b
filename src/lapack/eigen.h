// The symmetric and Hermitian eigenvalue routines' shared templates: the
// tridiagonal eigensolvers (QR/QL iteration, bisection, inverse iteration,
// divide and conquer, MRRR), the reductions to tridiagonal form (dense and
// band) with their orthogonal factors, the reduction of the generalized
// problem, and the norms the drivers scale with.
//
// Every routine has the meaning, the workspace and the INFO of the published
// routine named beside it; INFO is the return value (the arguments are
// already checked). d and e are always real; Z, Q and A are of the scalar
// type T (real, or complex for the Hermitian forms).
#pragma once

#include <cstdint>

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// ---- the tridiagonal matrix (d: n diagonal, e: n - 1 off-diagonal) --------------------

// Norm of the tridiagonal (xLANST): max-abs, one (= infinity) or Frobenius.
template <class R>
R lanst(Norm norm, int n, const R *d, const R *e);

// Eigenvalues by the root-free QL/QR iteration (xSTERF), ascending in d; e
// is destroyed. INFO > 0: that many off-diagonals did not reach zero.
template <class R>
int sterf(int n, R *d, R *e);

// Eigenvalues and vectors by the implicit QL/QR iteration (xSTEQR): compz
// kNone values only, kInitial Z := the tridiagonal's eigenvectors, kUpdate
// Z := Z times them (Z n x n). work: max(1, 2n - 2) reals, unused for kNone.
// The rotations of each sweep reach Z through lasr3.
template <class T>
int steqr(CompQ compz, int n, real_t<T> *d, real_t<T> *e, T *z, int ldz, real_t<T> *work);

// The positive definite tridiagonal (xPTEQR): its Cholesky factor's
// bidiagonal through bdsqr; eigenvalues descending. work: 4n reals.
template <class T>
int pteqr(CompQ compz, int n, real_t<T> *d, real_t<T> *e, T *z, int ldz, real_t<T> *work);

// Bisection (xSTEBZ): the eigenvalues in (vl, vu] or with indices il..iu
// (1-based) or all, to the absolute tolerance abstol; by_block: ORDER = 'B'
// (grouped by split-off block, iblock and isplit filled as published),
// else 'E' (ascending). work: 4n reals, iwork: 3n.
template <class R>
int stebz(Range range, bool by_block, int n, R vl, R vu, int il, int iu, R abstol, const R *d,
          const R *e, int *m, int *nsplit, R *w, int *iblock, int *isplit, R *work, int *iwork);

// Inverse iteration (xSTEIN): the eigenvectors of the m eigenvalues w
// (by block, as stebz gives them) into the columns of Z (n x m, real
// vectors in a complex Z for the complex form). work: 5n reals, iwork: n;
// ifail: the columns that did not converge, INFO their number.
template <class T>
int stein(int n, const real_t<T> *d, const real_t<T> *e, int m, const real_t<T> *w,
          const int *iblock, const int *isplit, T *z, int ldz, real_t<T> *work, int *iwork,
          int *ifail);

// The eigenvalues of the positive definite tridiagonal held as its qd array
// z (4n reals) by the dqds algorithm (xLASQ2): on return z(1..n) holds them
// descending, and z(2n+1..2n+5) the published counts; INFO as published.
template <class R>
int lasq2(int n, R *z);

// MRRR (xSTEMR): the eigenvalues selected by range (vl, vu], il..iu or all,
// and with jobz kVectors their eigenvectors in Z (n x nzc; real vectors in
// a complex Z for the complex form), with isuppz (2 per vector) their
// supports. *tryrac: on entry, try for high relative accuracy; on return,
// whether it was obtained. nzc = -1 asks for the number of vectors in
// z[0] (as a real) and nothing else. work: lwork reals (18n with vectors,
// 12n without), iwork: liwork (10n, 8n); lwork or liwork -1 is a query
// answered in work[0], iwork[0].
template <class T>
int stemr(JobZ jobz, Range range, int n, real_t<T> *d, real_t<T> *e, real_t<T> vl, real_t<T> vu,
          int il, int iu, int *m, real_t<T> *w, T *z, int ldz, int nzc, int *isuppz, bool *tryrac,
          real_t<T> *work, int lwork, int *iwork, int liwork);

// Divide and conquer (xSTEDC): compz as steqr. For real T the published
// SSTEDC's workspace (work: lwork reals, rwork unused), for complex T
// CSTEDC's (work: lwork complex for kUpdate, rwork: lrwork reals). The
// merge (laed0) splits its independent subproblems over a team.
template <class T>
int stedc(CompQ compz, int n, real_t<T> *d, real_t<T> *e, T *z, int ldz, T *work, int lwork,
          real_t<T> *rwork, int lrwork, int *iwork, int liwork);

// The workspace stedc needs (the published minimum is also the optimum).
struct StedcWork {
  std::int64_t lwork, lrwork, liwork;
};
template <class T>
StedcWork stedc_worksize(CompQ compz, int n);

// ---- reductions to tridiagonal form ----------------------------------------------------

// A := Q^H A Q tridiagonal (xSYTRD, xHETRD): d, e and the reflectors in A
// and tau (n - 1) as published. Below the oracle's crossover ("SYTRD" or
// "HETRD") the unblocked reduction; above it the blocked one with the
// threaded panel (latrd) and the threaded rank-2k step (sytd3).
template <class T>
void sytrd(Uplo uplo, int n, T *a, int lda, real_t<T> *d, real_t<T> *e, T *tau, T *work,
           int lwork);
template <class T>
std::int64_t sytrd_worksize(Uplo uplo, int n);

// Q of sytrd, n x n, in A (xORGTR, xUNGTR).
template <class T>
void orgtr(Uplo uplo, int n, T *a, int lda, const T *tau, T *work, int lwork);
template <class T>
std::int64_t orgtr_worksize(Uplo uplo, int n);

// C := op(Q) C or C op(Q), Q of sytrd (xORMTR, xUNMTR).
template <class T>
void ormtr(Side side, Uplo uplo, Op op, int m, int n, const T *a, int lda, const T *tau, T *c,
           int ldc, T *work, int lwork);
template <class T>
std::int64_t ormtr_worksize(Side side, Uplo uplo, int m, int n);

// The band matrix (kd off-diagonals, band storage as published) reduced to
// tridiagonal form (xSBTRD, xHBTRD); vect: kNone no Q, kInitial Q formed,
// kUpdate Q := Q times the reduction's factor. work: n scalars.
template <class T>
void sbtrd(CompQ vect, Uplo uplo, int n, int kd, T *ab, int ldab, real_t<T> *d, real_t<T> *e, T *q,
           int ldq, T *work);

// The generalized problem reduced to standard form (xSYGST, xHEGST) with
// B's Cholesky factor; itype 1: inv(U^H) A inv(U) or inv(L) A inv(L^H), 2
// and 3: U A U^H or L^H A L.
template <class T>
void sygst(int itype, Uplo uplo, int n, T *a, int lda, const T *b, int ldb);

// ---- norms of the drivers' inputs --------------------------------------------------------

// Norm of the symmetric (herm false) or Hermitian matrix from one triangle
// (xLANSY, xLANHE); work: n reals for the one and infinity norms.
template <class T>
real_t<T> lansy(Norm norm, Uplo uplo, bool herm, int n, const T *a, int lda, real_t<T> *work);

// The same of a symmetric or Hermitian band matrix (xLANSB, xLANHB).
template <class T>
real_t<T> lansb(Norm norm, Uplo uplo, bool herm, int n, int kd, const T *ab, int ldab,
                real_t<T> *work);

}  // namespace orb::lapack
