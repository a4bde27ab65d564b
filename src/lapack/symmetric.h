// Symmetric and Hermitian indefinite matrices from their Bunch-Kaufman
// factors, as xSYTRF and xHETRF leave them: A = U D U^T or L D L^T (U^H,
// L^H when `herm`), the unit triangular factor's columns in the triangle of
// `a` below or above D, whose 1x1 and 2x2 diagonal blocks take the diagonal
// and, for a 2x2 block, its one off-diagonal element in the stored triangle.
// ipiv is 1-based: ipiv(k) > 0 a 1x1 block with rows k and ipiv(k)
// interchanged; upper storage, ipiv(k - 1) = ipiv(k) < 0 a 2x2 block in
// k - 1, k interchanging k - 1 and -ipiv(k); lower storage, ipiv(k) =
// ipiv(k + 1) < 0 a 2x2 block in k, k + 1 interchanging k + 1 and -ipiv(k).
// `herm` selects the Hermitian routines (xHExxx) for complex data: the
// symmetric ones (xSYxxx) transpose without conjugating. Arguments are
// values, already checked; options are decoded.
#pragma once

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// ---- solves with the factors (module xsytrs_omp) --------------------------------------

// A X = B for columns [c0, c1) of B, on the calling thread: the published
// solve, the interchanges and rank-1 steps of each block column applied to
// a few columns of B at a time. A column's bits depend on nothing but its
// own values.
template <class T>
void sytrs_columns(Uplo uplo, bool herm, int n, const T *a, int lda, const int *ipiv, T *b, int ldb,
                   int c0, int c1);

// The same in the level-3 form: P^T B, the solves with the unit
// triangular W of A = P W D W^T P^T, with D and with W^T (W^H), and P B,
// in column blocks of nb from c0. Returns false, nothing done, when W's
// storage cannot be had.
template <class T>
bool sytrs_blocked_columns(Uplo uplo, bool herm, int n, const T *a, int lda, const int *ipiv, T *b,
                           int ldb, int nb, int c0, int c1);

// The solve behind xSYTRS and xHETRS: the level-3 form in column blocks of
// the oracle's block size for "SYTRS" / "HETRS" when it is above 1,
// otherwise the published one; from the oracle's crossover on, the
// right-hand sides are split over a team in contiguous runs (of whole
// column blocks). Every column gets the serial bits either way.
template <class T>
void sytrs(Uplo uplo, bool herm, int n, int nrhs, const T *a, int lda, const int *ipiv, T *b,
           int ldb);

// The team the calling thread's last sytrs used (1: serial, 0: nothing to
// solve).
int sytrs_last_team();
// The column block of the calling thread's last sytrs: 1 for the published
// form, 0 when there was nothing to solve.
int sytrs_last_block();

// ---- inverse, condition, refinement --------------------------------------------------

// inv(A) from the factors, in the triangle the factors take (xSYTRI,
// xHETRI); work holds n values. Returns i > 0 (1-based) when the 1x1
// block D(i, i) is exactly zero, A being left as it was, else 0.
template <class T>
int sytri(Uplo uplo, bool herm, int n, T *a, int lda, const int *ipiv, T *work);

// Reciprocal condition number in the 1-norm (equal to the infinity norm)
// from the factors and ||A||_1 = anorm (xSYCON, xHECON): 0 at once when a
// 1x1 block of D is exactly zero. work holds 2n values; iwork n integers for
// real T, null for complex.
template <class T>
void sycon(Uplo uplo, bool herm, int n, const T *a, int lda, const int *ipiv, real_t<T> anorm,
           real_t<T> *rcond, T *work, int *iwork);

// Iterative refinement of the n-by-nrhs solution X of A X = B with forward
// and backward error bounds (xSYRFS, xHERFS): `a` holds A's triangle, `af`
// its factors. Real T: work 3n, iwork n, null rwork; complex: work 2n,
// rwork n, null iwork.
template <class T>
void syrfs(Uplo uplo, bool herm, int n, int nrhs, const T *a, int lda, const T *af, int ldaf,
           const int *ipiv, const T *b, int ldb, T *x, int ldx, real_t<T> *ferr, real_t<T> *berr,
           T *work, real_t<T> *rwork, int *iwork);

}  // namespace orb::lapack
