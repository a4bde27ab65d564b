// xpbtrs_omp: the solves with the band Cholesky factors behind SPBTRS and
// CPBTRS. Each right-hand side is solved on its own, as the published
// routine does it: a band triangular solve with the factor's adjoint and
// one with the factor. With enough right-hand sides (the oracle's crossover
// for "PBTRS", by the work per column) they are split over a team in
// contiguous runs; a column is computed the same way in either case.
#include <omp.h>

#include <algorithm>
#include <cstddef>

#include "lapack/band.h"
#include "lapack/cholesky.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "service/threading.h"

namespace orb::lapack {
namespace {

thread_local int t_last_team = 0;

template <class T>
void solve_columns(Uplo uplo, int n, int kd, const T *ab, int ldab, T *b, int ldb, int c0, int c1) {
  constexpr Op adj = is_complex_v<T> ? Op::kConjTrans : Op::kTrans;
  // A = U^H U: U^-1 (U^-H b); A = L L^H: L^-H (L^-1 b).
  const Op first = uplo == Uplo::kUpper ? adj : Op::kNone;
  const Op second = uplo == Uplo::kUpper ? Op::kNone : adj;
  for (int c = c0; c < c1; ++c) {
    T *x = b + static_cast<std::ptrdiff_t>(c) * ldb;
    tbsv(uplo, first, Diag::kNonUnit, n, kd, ab, ldab, x);
    tbsv(uplo, second, Diag::kNonUnit, n, kd, ab, ldab, x);
  }
}

}  // namespace

template <class T>
void pbtrs(Uplo uplo, int n, int kd, int nrhs, const T *ab, int ldab, T *b, int ldb) {
  t_last_team = 0;
  if (n == 0 || nrhs == 0) return;
  int team = 1;
  if (!omp_in_parallel()) {
    const int threads = orb::threads::max_threads();
    if (threads > 1 && nrhs >= oracle(kCrossover, name<T>("PBTRS"), n, kd, -1, nrhs))
      team = std::min(threads, nrhs);
  }
  t_last_team = team;
  if (team == 1) {
    solve_columns(uplo, n, kd, ab, ldab, b, ldb, 0, nrhs);
    return;
  }
#pragma omp parallel num_threads(team)
  {
    const int tid = omp_get_thread_num(), nt = omp_get_num_threads();
    const int c0 = static_cast<int>(static_cast<long long>(nrhs) * tid / nt);
    const int c1 = static_cast<int>(static_cast<long long>(nrhs) * (tid + 1) / nt);
    solve_columns(uplo, n, kd, ab, ldab, b, ldb, c0, c1);
  }
}

int pbtrs_last_team() {
  return t_last_team;
}

template void pbtrs(Uplo, int, int, int, const float *, int, float *, int);
template void pbtrs(Uplo, int, int, int, const c8 *, int, c8 *, int);

}  // namespace orb::lapack
