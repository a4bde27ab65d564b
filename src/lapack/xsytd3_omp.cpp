// xsytd3_omp: the tridiagonal reduction's trailing step, the triangle of
// A := A - V W^H - W V^H, for a team of threads.
//
// The two products are one: with X = [V W V] (n x 3k, a copy), the update
// is A := A - X(:, 0:2k) X(:, k:3k)^H, a single packed product of inner
// size 2k that visits each tile of A once. Threads take slabs of columns of
// equal area; the packed kernels' sums do not depend on where a slab
// starts, so every team gives the same bits.
#include <omp.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "blas/level3/gemm.h"
#include "blas/level3/gemm_blocked.h"
#include "blas/level3/level3_common.h"
#include "lapack/blas_calls.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/sytrd.h"
#include "service/memory.h"
#include "service/threading.h"

namespace orb::lapack {
namespace {

// Columns [c0, c1) of the triangle of C := C - X(:, 0:2k) X(:, k:3k)^H,
// on the calling thread.
template <class T>
void rank2k_columns(bool upper, int n, int k, const T *x, int ldx, T *c, int ldc, int c0, int c1) {
  if (c1 <= c0) return;
  const int r0 = upper ? 0 : c0, r1 = upper ? c1 : n;
  const T *left = x + r0;
  const T *right = x + static_cast<std::ptrdiff_t>(k) * ldx + c0;
  T *block = c + r0 + static_cast<std::ptrdiff_t>(c0) * ldc;
  const auto s = blas::packed_shape<T>();
  const int kb = std::min(s.kc, 2 * k);
  const std::int64_t a_size = std::int64_t{blas::round_up(std::min(s.mc, r1 - r0), s.mr)} * kb;
  const std::int64_t b_size = std::int64_t{blas::round_up(std::min(s.nc, c1 - c0), s.nr)} * kb;
  const mem::Buffer<T> pa(a_size, 128), pb(b_size, 128);
  if (pa && pb) {
    blas::gemm_packed(s, Op::kNone, Op::kConjTrans, r1 - r0, c1 - c0, 2 * k, T(-1), left, ldx,
                      right, ldx, T(1), block, ldc, pa.get(), pb.get(),
                      blas::TriangleOf{upper, c0 - r0});
  } else {
    for (int j = c0; j < c1; ++j) {
      const int i0 = upper ? 0 : j, i1 = upper ? j + 1 : n;
      gemm_here(Op::kNone, Op::kConjTrans, i1 - i0, 1, 2 * k, T(-1), x + i0, ldx,
                x + static_cast<std::ptrdiff_t>(k) * ldx + j, ldx, T(1),
                c + i0 + static_cast<std::ptrdiff_t>(j) * ldc, ldc);
    }
  }
  if constexpr (is_complex_v<T>)
    for (int j = c0; j < c1; ++j) {
      T &djj = c[j + static_cast<std::ptrdiff_t>(j) * ldc];
      djj = T(djj.real());
    }
}

}  // namespace

template <class T>
void sytd3_team(Uplo uplo, int n, int k, T *a, int lda, const T *v, int ldv, const T *w, int ldw,
                int team) {
  if (n <= 0 || k <= 0) return;
  const bool upper = uplo == Uplo::kUpper;
  const int ldx = n;
  const mem::Buffer<T> xbuf(std::int64_t{ldx} * 3 * k, 128);
  if (!xbuf) {
    // No room for the copy: the two products one after the other.
    for (int j = 0; j < n; ++j) {
      const int i0 = upper ? 0 : j, i1 = upper ? j + 1 : n;
      T *cj = a + i0 + static_cast<std::ptrdiff_t>(j) * lda;
      gemm_here(Op::kNone, Op::kConjTrans, i1 - i0, 1, k, T(-1), v + i0, ldv, w + j, ldw, T(1), cj,
                lda);
      gemm_here(Op::kNone, Op::kConjTrans, i1 - i0, 1, k, T(-1), w + i0, ldw, v + j, ldv, T(1), cj,
                lda);
      if constexpr (is_complex_v<T>) {
        T &djj = a[j + static_cast<std::ptrdiff_t>(j) * lda];
        djj = T(djj.real());
      }
    }
    return;
  }
  T *x = xbuf.get();
  sytd3_gather(n, k, v, ldv, w, ldw, x);
  team = std::max(1, std::min(team, n / 32));
  if (team <= 1) {
    rank2k_columns(upper, n, k, x, ldx, a, lda, 0, n);
    return;
  }
  blas::per_thread(team, [&](int t) {
    rank2k_columns(upper, n, k, x, ldx, a, lda, gemm_triangle_boundary(upper, n, t, team),
                   gemm_triangle_boundary(upper, n, t + 1, team));
  });
}

template <class T>
void sytd3_gather(int n, int k, const T *v, int ldv, const T *w, int ldw, T *x) {
  auto column = [&](int j) { return x + static_cast<std::ptrdiff_t>(j) * n; };
  for (int j = 0; j < k; ++j) {
    std::copy_n(v + static_cast<std::ptrdiff_t>(j) * ldv, n, column(j));
    std::copy_n(w + static_cast<std::ptrdiff_t>(j) * ldw, n, column(k + j));
    std::copy_n(v + static_cast<std::ptrdiff_t>(j) * ldv, n, column(2 * k + j));
  }
}

template <class T>
void sytd3_columns(Uplo uplo, int n, int k, const T *x, T *a, int lda, int part, int parts) {
  const bool upper = uplo == Uplo::kUpper;
  rank2k_columns(upper, n, k, x, n, a, lda, gemm_triangle_boundary(upper, n, part, parts),
                 gemm_triangle_boundary(upper, n, part + 1, parts));
}

// A team from the oracle's crossover (query 3 of "SYTD3": the order from
// which the step is split), the calling thread below it or inside a
// parallel region.
template <class T>
void sytd3(Uplo uplo, int n, int k, T *a, int lda, const T *v, int ldv, const T *w, int ldw) {
  int team = omp_in_parallel() ? 1 : orb::threads::max_threads();
  if (team > 1 && n < oracle(kCrossover, name<T>("SYTD3"), n, k, team)) team = 1;
  sytd3_team(uplo, n, k, a, lda, v, ldv, w, ldw, team);
}

#define ORB_SYTD3(T)                                                                          \
  template void sytd3<T>(Uplo, int, int, T *, int, const T *, int, const T *, int);           \
  template void sytd3_team<T>(Uplo, int, int, T *, int, const T *, int, const T *, int, int); \
  template void sytd3_gather<T>(int, int, const T *, int, const T *, int, T *);               \
  template void sytd3_columns<T>(Uplo, int, int, const T *, T *, int, int, int);
ORB_SYTD3(float)
ORB_SYTD3(c8)

}  // namespace orb::lapack
