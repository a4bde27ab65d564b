// xgbtrs_omp: the solves with the band LU's factors behind SGBTRS and
// CGBTRS. Each right-hand side is solved on its own, as the published
// routine does it: the interchanges and multipliers of L one column of L
// after the other, and the band triangular solve with U. With enough
// right-hand sides (the oracle's crossover for "GBTRS", by the work per
// column) they are split over a team in contiguous runs; a column is
// computed the same way in either case.
#include <omp.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "blas/level1/level1.h"
#include "lapack/band.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "service/threading.h"

namespace orb::lapack {
namespace {

thread_local int t_last_team = 0;

// One right-hand side x.
template <class T>
void solve(Op trans, int n, int kl, int ku, const T *ab, int ldab, const int *ipiv, T *x) {
  const int kd = kl + ku;
  // The multipliers of column j: rows kd + 1 .. kd + kl of the band.
  auto mult = [&](int j) { return ab + kd + 1 + static_cast<std::ptrdiff_t>(j) * ldab; };
  if (trans == Op::kNone) {
    if (kl > 0)
      for (int j = 0; j < n - 1; ++j) {
        const int p = ipiv[j] - 1;
        if (p != j) std::swap(x[p], x[j]);
        blas::axpy(std::min(kl, n - 1 - j), -x[j], mult(j), 1, x + j + 1, 1);
      }
    tbsv(Uplo::kUpper, Op::kNone, Diag::kNonUnit, n, kd, ab, ldab, x);
    return;
  }
  tbsv(Uplo::kUpper, trans, Diag::kNonUnit, n, kd, ab, ldab, x);
  if (kl > 0)
    for (int j = n - 2; j >= 0; --j) {
      const int lm = std::min(kl, n - 1 - j);
      x[j] -= trans == Op::kConjTrans ? blas::dotc(lm, mult(j), 1, x + j + 1, 1)
                                      : blas::dotu(lm, mult(j), 1, x + j + 1, 1);
      const int p = ipiv[j] - 1;
      if (p != j) std::swap(x[p], x[j]);
    }
}

}  // namespace

template <class T>
void gbtrs_columns(Op trans, int n, int kl, int ku, const T *ab, int ldab, const int *ipiv, T *b,
                   int ldb, int c0, int c1) {
  for (int c = c0; c < c1; ++c)
    solve(trans, n, kl, ku, ab, ldab, ipiv, b + static_cast<std::ptrdiff_t>(c) * ldb);
}

template <class T>
void gbtrs(Op trans, int n, int kl, int ku, int nrhs, const T *ab, int ldab, const int *ipiv, T *b,
           int ldb) {
  t_last_team = 0;
  if (n == 0 || nrhs == 0) return;
  int team = 1;
  if (!omp_in_parallel()) {
    const int threads = orb::threads::max_threads();
    if (threads > 1 && nrhs >= oracle(kCrossover, name<T>("GBTRS"), n, kl, ku, nrhs))
      team = std::min(threads, nrhs);
  }
  t_last_team = team;
  if (team == 1) {
    gbtrs_columns(trans, n, kl, ku, ab, ldab, ipiv, b, ldb, 0, nrhs);
    return;
  }
#pragma omp parallel num_threads(team)
  {
    const int tid = omp_get_thread_num(), nt = omp_get_num_threads();
    const int c0 = static_cast<int>(static_cast<long long>(nrhs) * tid / nt);
    const int c1 = static_cast<int>(static_cast<long long>(nrhs) * (tid + 1) / nt);
    gbtrs_columns(trans, n, kl, ku, ab, ldab, ipiv, b, ldb, c0, c1);
  }
}

int gbtrs_last_team() {
  return t_last_team;
}

#define ORB_GBTRS(T)                                                                               \
  template void gbtrs_columns(Op, int, int, int, const T *, int, const int *, T *, int, int, int); \
  template void gbtrs(Op, int, int, int, int, const T *, int, const int *, T *, int);
ORB_GBTRS(float)
ORB_GBTRS(c8)
#undef ORB_GBTRS

}  // namespace orb::lapack
