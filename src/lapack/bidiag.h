// Reduction of a general matrix to bidiagonal form and the orthogonal
// factors that go with it: Q^H A P = B, upper bidiagonal when m >= n and
// lower otherwise, Q and P kept as products of elementary reflectors in A
// and the scalars tauq and taup (the published storage).
#pragma once

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// The unblocked reduction; work has max(m, n) entries.
template <class T>
void gebd2(int m, int n, T *a, int lda, real_t<T> *d, real_t<T> *e, T *tauq, T *taup, T *work);

// The first nb rows and columns of the reduction, with the matrices X
// (m x nb) and Y (n x nb) the trailing update A := A - V Y^H - X U^H needs.
// Large panels are reduced by a team (xlabrd_omp, ylabrd_omp): the products
// with the trailing matrix are split over the threads.
template <class T>
void labrd(int m, int n, int nb, T *a, int lda, real_t<T> *d, real_t<T> *e, T *tauq, T *taup, T *x,
           int ldx, T *y, int ldy);

// The same on the calling thread, or on `team` threads; every team gives
// the same result up to rounding.
template <class T>
void labrd_team(int m, int n, int nb, T *a, int lda, real_t<T> *d, real_t<T> *e, T *tauq, T *taup,
                T *x, int ldx, T *y, int ldy, int team);

// The blocked reduction; lwork >= max(1, m, n), (m + n) nb for the blocked
// code. Returns the optimal lwork when lwork is -1.
template <class T>
int gebrd_worksize(int m, int n);
template <class T>
void gebrd(int m, int n, T *a, int lda, real_t<T> *d, real_t<T> *e, T *tauq, T *taup, T *work,
           int lwork);

// Which orthogonal factor: Q (VECT = 'Q') or P^H (VECT = 'P').
enum class Vect : unsigned char { kQ, kP };

// Generates Q (m x n) or P^H (m x n) from the reduction of an m x k
// (vect Q) or k x n (vect P) matrix.
template <class T>
int orgbr_worksize(Vect vect, int m, int n, int k);
template <class T>
void orgbr(Vect vect, int m, int n, int k, T *a, int lda, const T *tau, T *work, int lwork);

// C := op(Q) C, C op(Q), op(P) C or C op(P) (published xORMBR/xUNMBR).
template <class T>
int ormbr_worksize(Vect vect, Side side, Op trans, int m, int n, int k);
template <class T>
void ormbr(Vect vect, Side side, Op trans, int m, int n, int k, const T *a, int lda, const T *tau,
           T *c, int ldc, T *work, int lwork);

}  // namespace orb::lapack
