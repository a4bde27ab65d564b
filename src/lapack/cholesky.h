// Hermitian (symmetric, for real data) positive definite matrices, full and
// band: the Cholesky factorization A = U^H U or L L^H (module xpotrf_omp for
// the threaded one), solves with the factors (xpbtrs_omp for the band's),
// the inverse, the condition estimate and the iterative refinement. Full
// matrices are read from the `uplo` triangle only; band matrices are in the
// published band storage, 0-based: A(i, j) at ab[kd + i - j + j ldab]
// (upper) or ab[i - j + j ldab] (lower). Arguments are values, already
// checked; options are decoded.
#pragma once

#include <complex>

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// ---- full matrices ---------------------------------------------------------------

// Column by column with the level-2 BLAS (xPOTF2). Returns INFO: the order
// j of the first leading minor that is not positive definite (its diagonal
// element then holds the non-positive value found, and the factorization
// stops there), or 0.
template <class T>
int potf2(Uplo uplo, int n, T *a, int lda);

// The serial factorization: recursive halving of the order down to narrow
// diagonal blocks, the off-diagonal block solved and the trailing block
// updated in the level-3 BLAS (threaded BLAS when `threaded`). Same INFO as
// potf2.
template <class T>
int potrf_recursive(Uplo uplo, int n, T *a, int lda, bool threaded);

// The factorization behind xPOTRF, with its path choice: column by column
// below the oracle's crossover, the recursive factorization on one thread,
// the scheduled one on a team. Same INFO as potf2.
template <class T>
int potrf(Uplo uplo, int n, T *a, int lda);

// The scheduled factorization on `threads` threads with column blocks of
// nb: each block's diagonal factorization and panel solve taken by one
// thread as soon as the updates before it are done, the trailing updates
// shared in tiles. Returns false, having done nothing, when its work space
// cannot be had.
template <class T>
bool potrf_scheduled(Uplo uplo, int n, T *a, int lda, int nb, int threads, int *info);

// The path the calling thread's last potrf took (for tests).
enum class PotrfPath { kNone, kUnblocked, kRecursive, kScheduled };
PotrfPath potrf_last_path();

// B := A^-1 B from the factors (xPOTRS), threaded level-3 solves.
template <class T>
void potrs(Uplo uplo, int n, int nrhs, const T *a, int lda, T *b, int ldb);

// U U^H or L^H L in place of the triangle U or L (xLAUUM).
template <class T>
void lauum(Uplo uplo, int n, T *a, int lda);

// A^-1 from the factors, in the `uplo` triangle (xPOTRI). Returns INFO:
// i > 0 when the factor's i-th diagonal element is exactly zero.
template <class T>
int potri(Uplo uplo, int n, T *a, int lda);

// The reciprocal condition number in the 1-norm from the factors and the
// 1-norm of A (xPOCON). Real data: work 3n, iwork n; complex: work 2n,
// rwork n.
template <class T>
real_t<T> pocon(Uplo uplo, int n, const T *a, int lda, real_t<T> anorm, T *work, real_t<T> *rwork,
                int *iwork);

// Iterative refinement with error bounds (xPORFS). Real data: work 3n,
// iwork n; complex: work 2n, rwork n.
template <class T>
void porfs(Uplo uplo, int n, int nrhs, const T *a, int lda, const T *af, int ldaf, const T *b,
           int ldb, T *x, int ldx, real_t<T> *ferr, real_t<T> *berr, T *work, real_t<T> *rwork,
           int *iwork);

// ---- band matrices ----------------------------------------------------------------

// Column by column (xPBTF2). Same INFO as potf2.
template <class T>
int pbtf2(Uplo uplo, int n, int kd, T *ab, int ldab);

// The blocked factorization (xPBTRF): diagonal blocks of the oracle's nb
// factored by potf2, the band below (or right of) them solved and updated
// with the level-3 BLAS; column by column when nb <= 1 or nb > kd.
template <class T>
int pbtrf(Uplo uplo, int n, int kd, T *ab, int ldab);

// B := A^-1 B from the band factors (xPBTRS), one column after the other;
// with enough columns (the oracle's crossover for "PBTRS") split over a
// team in contiguous runs. A column gets the same bits either way.
template <class T>
void pbtrs(Uplo uplo, int n, int kd, int nrhs, const T *ab, int ldab, T *b, int ldb);

// The team size of the calling thread's last pbtrs (1: serial, 0: nothing
// to solve).
int pbtrs_last_team();

// xPBCON; work and iwork/rwork as pocon.
template <class T>
real_t<T> pbcon(Uplo uplo, int n, int kd, const T *ab, int ldab, real_t<T> anorm, T *work,
                real_t<T> *rwork, int *iwork);

// xPBRFS; work and iwork/rwork as porfs.
template <class T>
void pbrfs(Uplo uplo, int n, int kd, int nrhs, const T *ab, int ldab, const T *afb, int ldafb,
           const T *b, int ldb, T *x, int ldx, real_t<T> *ferr, real_t<T> *berr, T *work,
           real_t<T> *rwork, int *iwork);

}  // namespace orb::lapack
