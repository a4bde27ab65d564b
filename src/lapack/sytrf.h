// Symmetric and Hermitian indefinite matrices: the factorization with
// Bunch-Kaufman diagonal pivoting, A = U D U^T (upper) or A = L D L^T
// (lower), or with conjugate transposes when `Herm` is set (modules
// slasyf_omp, clasyf_omp and clahef_omp). D is block diagonal with 1x1 and
// 2x2 blocks; the factors, the blocks and the pivots are laid out as the
// published routines lay them out: IPIV(k) > 0 for a 1x1 block, rows and
// columns k and IPIV(k) interchanged; IPIV(k) = IPIV(k-1) < 0 (upper) or
// IPIV(k) = IPIV(k+1) < 0 (lower) for a 2x2 block, rows and columns k-1 (or
// k+1) and -IPIV(k) interchanged. Indices in IPIV are 1-based. Arguments
// are values, already checked; options are decoded. Each routine returns
// INFO's positive value (the first 1-based i with D(i, i) exactly zero; the
// factorization is completed all the same) or 0.
#pragma once

#include <complex>
#include <cstdint>

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// Column by column (xSYTF2, xHETF2): the pivot tests, interchanges and
// rank-1 or rank-2 updates of the published routines.
template <class T, bool Herm>
int sytf2(Uplo uplo, int n, T *a, int lda, int *ipiv);

// One panel (xLASYF, xLAHEF): factors up to nb columns of the order-n
// matrix (the last ones for upper, the first ones for lower) with the
// updated columns kept in the n-by-nb W, then updates the rest of the
// triangle with the level-3 BLAS. `kb` receives the columns factored (nb
// or nb - 1). With `threads` > 1 the matrix-vector products of each column
// and the update are split over a team of that many threads (1: all on the
// calling thread); every element is computed as on one thread, so the
// result has the same bits.
// Returns -1, having done nothing, when its work space cannot be had.
template <class T, bool Herm>
int lasyf(Uplo uplo, int n, int nb, T *a, int lda, int *ipiv, T *w, int ldw, int threads, int *kb);

// The factorization behind xSYTRF and xHETRF: panels of the oracle's block
// size in WORK (lwork elements; fewer than n nb make the panels narrower,
// and below the oracle's smallest block the columns go one by one), the
// last block (or the rest, should a panel find no work space) column by
// column; panels of at least the oracle's crossover order run on a team,
// smaller ones on the calling thread. WORK(1) receives the optimal size.
template <class T, bool Herm>
int sytrf(Uplo uplo, int n, T *a, int lda, int *ipiv, T *work, int lwork);

// The optimal LWORK: n times the oracle's block size, at least 1.
template <class T, bool Herm>
std::int64_t sytrf_worksize(int n);

// The fewest multiply-adds (rows by columns) a threaded panel's product
// splits over its team: below a few microseconds of work, waking the team
// costs about what it saves (the first columns of a panel). Tests lower it.
inline std::int64_t g_sytrf_team_work = 16384;

// The path the calling thread's last sytrf took (for tests).
enum class SytrfPath { kNone, kUnblocked, kBlocked, kThreaded };
SytrfPath sytrf_last_path();

}  // namespace orb::lapack
