// xgetrf_ib_omp: the inner-blocked threaded LU. Outer column blocks of nb;
// each panel is factored on the calling thread by the blocked factorization
// with the oracle's inner block (query 19); then one team shares the step's
// row interchanges on the columns left of the panel and the interchanges,
// triangular solve and product on the columns right of it, each thread on
// its own slab of columns.
#include <omp.h>

#include <algorithm>
#include <cstddef>

#include "lapack/auxiliary.h"
#include "lapack/blas_calls.h"
#include "lapack/getrf.h"
#include "lapack/oracle.h"
#include "service/threading.h"

namespace orb::lapack {
namespace {

inline std::ptrdiff_t at(int i, int j, int ld) {
  return i + static_cast<std::ptrdiff_t>(j) * ld;
}

// Slab t of nt over [0, total), on multiples of `grain`.
inline int slab_edge(int total, int t, int nt, int grain) {
  const int units = (total + grain - 1) / grain;
  return std::min(total, static_cast<int>(static_cast<long long>(units) * t / nt) * grain);
}

}  // namespace

template <class T>
int getrf_ib_omp(int m, int n, T *a, int lda, int *ipiv, int nb, int threads) {
  const int mn = std::min(m, n);
  if (mn == 0) return 0;
  const Name6 nm = name<T>("GETRF");
  const int nt = threads > 0 ? threads : orb::threads::max_threads();
  if (nb <= 0) nb = oracle(kBlockSize, nm, m, n, nt);
  if (nb <= 1 || nb >= mn || nt <= 1) return getrf_blocked(m, n, a, lda, ipiv, nb);
  const int ib = oracle(kInnerBlock, nm, m, n, nt, nb);
  int info = 0;
  for (int j = 0; j < mn; j += nb) {
    const int jb = std::min(nb, mn - j);
    T *ajj = a + at(j, j, lda);
    const int i = getrf_blocked(m - j, jb, ajj, lda, ipiv + j, ib);
    if (info == 0 && i > 0) info = i + j;
    for (int k = j; k < j + jb; ++k) ipiv[k] += j;
    const int rest = n - j - jb;
#pragma omp parallel num_threads(nt)
    {
      const int t = omp_get_thread_num(), team = omp_get_num_threads();
      const int l0 = slab_edge(j, t, team, 8), l1 = slab_edge(j, t + 1, team, 8);
      laswp(l1 - l0, a + at(0, l0, lda), lda, j + 1, j + jb, ipiv, 1);
      const int r0 = slab_edge(rest, t, team, 16), r1 = slab_edge(rest, t + 1, team, 16);
      if (r1 > r0) {
        T *b = a + at(0, j + jb + r0, lda);
        laswp(r1 - r0, b, lda, j + 1, j + jb, ipiv, 1);
        trsm_here(kLowerUnit, jb, r1 - r0, T(1), ajj, lda, b + j, lda);
        gemm_here(Op::kNone, Op::kNone, m - j - jb, r1 - r0, jb, T(-1), ajj + jb, lda, b + j, lda,
                  T(1), b + j + jb, lda);
      }
    }
  }
  return info;
}

template int getrf_ib_omp(int, int, float *, int, int *, int, int);
template int getrf_ib_omp(int, int, double *, int, int *, int, int);
template int getrf_ib_omp(int, int, c8 *, int, int *, int, int);
template int getrf_ib_omp(int, int, c16 *, int, int *, int, int);

}  // namespace orb::lapack
