// General band matrices: the LU factorization with partial pivoting (modules
// sgbtrf_omp and cgbtrf_omp), the solves with its factors (module
// xgbtrs_omp), the condition estimate and the iterative refinement. Band
// storage as the published routines lay it out, 0-based here: A(i, j) at
// ab[ku + i - j + j ldab] for the matrix itself, at ab[kl + ku + i - j + j
// ldab] for the factorization's input (kl rows on top for the fill-in);
// the factors are U with kl + ku superdiagonals in rows 0 .. kl + ku and
// the multipliers of column j in rows kl + ku + 1 .. 2 kl + ku. Arguments
// are values, already checked; options are decoded.
#pragma once

#include <complex>

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// ---- the LU factorization ----------------------------------------------------------

// Column by column (xGBTF2): the pivot searched among the kl + 1 entries on
// and below the diagonal, the interchange and the rank-1 update applied to
// the columns the pivot row reaches. Returns INFO's positive value (the
// first exactly-zero pivot, 1-based) or 0.
template <class T>
int gbtf2(int m, int n, int kl, int ku, T *ab, int ldab, int *ipiv);

// The blocked factorization in column blocks of nb (1 < nb <= kl + ku;
// the published blocking, which the path choice keeps to, has nb <= kl) on
// `threads` threads (1: all on the calling thread, no team). Each block's
// panel is factored in a dense copy; the trailing columns it reaches are
// updated in the level-3 BLAS, split over the team by columns while one
// thread updates the next panel's columns and factors it. Every element is
// computed the same way whatever the thread count, so the result does not
// depend on it. Returns INFO's positive value, 0, or -1 when its work space
// cannot be had (nothing done).
template <class T>
int gbtrf_blocked(int m, int n, int kl, int ku, T *ab, int ldab, int *ipiv, int nb, int threads);

// The factorization behind xGBTRF: the oracle's block size and crossover
// choose among the column-by-column, the serial blocked and the threaded
// blocked factorization.
template <class T>
int gbtrf(int m, int n, int kl, int ku, T *ab, int ldab, int *ipiv);

// The path the calling thread's last gbtrf took (for tests).
enum class GbtrfPath { kNone, kUnblocked, kBlocked, kThreaded };
GbtrfPath gbtrf_last_path();

// ---- solves with the factors ---------------------------------------------------------

// Band triangular solve with one right-hand side (xTBSV, increment 1):
// x := op(A)^-1 x, A of order n with kd off-diagonals in band storage.
template <class T>
void tbsv(Uplo uplo, Op trans, Diag diag, int n, int kd, const T *ab, int ldab, T *x);

// op(A) X = B with the factors of gbtrf for columns [c0, c1) of B, one
// column after the other: the published solve.
template <class T>
void gbtrs_columns(Op trans, int n, int kl, int ku, const T *ab, int ldab, const int *ipiv, T *b,
                   int ldb, int c0, int c1);

// The solve behind xGBTRS: the columns split over threads when the oracle
// finds enough of them; each column gets the same bits either way.
template <class T>
void gbtrs(Op trans, int n, int kl, int ku, int nrhs, const T *ab, int ldab, const int *ipiv, T *b,
           int ldb);

// The split the calling thread's last gbtrs used: its team size (1: serial,
// 0: nothing to solve).
int gbtrs_last_team();

// ---- condition and refinement --------------------------------------------------------

// Reciprocal condition number in the 1-norm (kOne) or infinity norm
// (kInfinity) from the factors and the norm of A (xGBCON). `work` holds 3n
// values for real T, 2n for complex; `iwork` n integers (real T) and
// `rwork` n reals (complex T). Returns INFO (0).
template <class T>
int gbcon(Norm norm, int n, int kl, int ku, const T *ab, int ldab, const int *ipiv, real_t<T> anorm,
          real_t<T> *rcond, T *work, int *iwork, real_t<T> *rwork);

// Iterative refinement of the solutions X of op(A) X = B with error bounds
// (xGBRFS): `ab` holds A (ldab >= kl + ku + 1), `afb` its factors. `work`
// holds 3n values for real T, 2n for complex; `iwork` n integers (real T),
// `rwork` n reals (complex T).
template <class T>
void gbrfs(Op trans, int n, int kl, int ku, int nrhs, const T *ab, int ldab, const T *afb,
           int ldafb, const int *ipiv, const T *b, int ldb, T *x, int ldx, real_t<T> *ferr,
           real_t<T> *berr, T *work, int *iwork, real_t<T> *rwork);

}  // namespace orb::lapack
