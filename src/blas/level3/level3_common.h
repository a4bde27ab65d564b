// Pieces shared by the level-3 routines built on GEMM: the serial GEMM of
// each precision behind one call, and the split of a routine's output into
// per-thread slabs.
#pragma once

#include <omp.h>

#include <complex>
#include <cstdint>
#include <type_traits>

#include "blas/level3/gemm.h"
#include "blas/level3/gemm_blocked.h"
#include "blas/level3/level3.h"

namespace orb::blas {

// C := alpha op(A) op(B) + beta C on the calling thread, in the serial kernel
// of T's precision.
template <class T>
inline void gemm_here(Op ta, Op tb, int m, int n, int k, T alpha, const T *a, int lda, const T *b,
                      int ldb, T beta, T *c, int ldc) {
  if constexpr (std::is_same_v<T, float>) {
    const char cta = letter(ta), ctb = letter(tb);
    sgemm_serial(&cta, &ctb, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc);
  } else {
    gemm_serial<T>(ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
  }
}

inline std::int64_t at(int i, int j, int ld) {
  return i + std::int64_t{j} * ld;
}

// Real multiply-adds in one multiply-add of T, for the work estimates.
template <class T>
constexpr double madd_cost() {
  return std::is_floating_point_v<T> ? 1.0 : 4.0;
}

// Runs body(i) for i = 0 .. nt-1 in one region of nt threads, one each;
// inside a running region the caller works through them all. Every threaded
// driver splits its work through this.
template <class Body>
void per_thread(int nt, Body body) {
#pragma omp parallel num_threads(nt)
  {
#pragma omp for schedule(static)
    for (int i = 0; i < nt; ++i) body(i);
  }
}

// Runs body(first, count) for the nt slabs of [0, total) (boundaries from
// level3_boundary), one slab per thread.
template <class Body>
void for_slabs(int nt, int total, int grain, int shape, Body body) {
  per_thread(nt, [&](int i) {
    const int first = level3_boundary(total, i, nt, grain, shape);
    const int last = level3_boundary(total, i + 1, nt, grain, shape);
    if (last > first) body(first, last - first);
  });
}

}  // namespace orb::blas
