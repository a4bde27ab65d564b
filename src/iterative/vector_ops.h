// Unit-stride vector operations of the iterative solvers. Plain loops that
// the compiler vectorises (restrict-qualified operands; reductions under
// `omp simd`); they run on the calling thread and never allocate. The
// operands of one call never overlap unless a comment says so.
#pragma once

#include <cmath>
#include <cstddef>
#include <limits>

namespace orb::iterative::vec {

using idx = std::ptrdiff_t;

// y = x
template <class T>
inline void copy(idx n, const T *__restrict x, T *__restrict y) {
#pragma omp simd
  for (idx i = 0; i < n; ++i) y[i] = x[i];
}

// x = 0
template <class T>
inline void zero(idx n, T *__restrict x) {
#pragma omp simd
  for (idx i = 0; i < n; ++i) x[i] = T(0);
}

// y = y + a x
template <class T>
inline void axpy(idx n, T a, const T *__restrict x, T *__restrict y) {
#pragma omp simd
  for (idx i = 0; i < n; ++i) y[i] += a * x[i];
}

// x = a x
template <class T>
inline void scale(idx n, T a, T *__restrict x) {
#pragma omp simd
  for (idx i = 0; i < n; ++i) x[i] *= a;
}

// x . y
template <class T>
inline T dot(idx n, const T *__restrict x, const T *__restrict y) {
  T s = T(0);
#pragma omp simd reduction(+ : s)
  for (idx i = 0; i < n; ++i) s += x[i] * y[i];
  return s;
}

// ||x||_2: the sum of squares, rescaled only when it overflows or underflows.
template <class T>
inline T nrm2(idx n, const T *__restrict x) {
  const T ss = dot(n, x, x);
  constexpr T kTiny = std::numeric_limits<T>::min() / std::numeric_limits<T>::epsilon();
  if (std::isfinite(ss) && (ss >= kTiny || ss == T(0))) return std::sqrt(ss);
  T big = T(0);
  for (idx i = 0; i < n; ++i) big = std::fmax(big, std::fabs(x[i]));
  if (big == T(0) || !std::isfinite(big)) return std::isnan(ss) ? ss : big;
  const T inv = T(1) / big;
  T s = T(0);
#pragma omp simd reduction(+ : s)
  for (idx i = 0; i < n; ++i) s += (x[i] * inv) * (x[i] * inv);
  return big * std::sqrt(s);
}

// Fused passes of the solvers. Each element is computed exactly as the
// separate operations named beside it would compute it.

// z = x - y   (copy x to z, then z = z - y; z may be x)
template <class T>
inline void sub(idx n, const T *x, const T *__restrict y, T *z) {
#pragma omp simd
  for (idx i = 0; i < n; ++i) z[i] = x[i] - y[i];
}

// y = b y + x   (scale y by b, then y = y + x)
template <class T>
inline void scale_add(idx n, T b, const T *__restrict x, T *__restrict y) {
#pragma omp simd
  for (idx i = 0; i < n; ++i) y[i] = b * y[i] + x[i];
}

// r = r - a q and x = x + a p in one pass (two axpy operations)
template <class T>
inline void cg_update(idx n, T a, const T *__restrict q, T *__restrict r, const T *__restrict p,
                      T *__restrict x) {
#pragma omp simd
  for (idx i = 0; i < n; ++i) {
    r[i] += (-a) * q[i];
    x[i] += a * p[i];
  }
}

// y = y + sum over i < k of c[i] v_i, with v_i = v + i * stride; four
// vectors a pass (their four terms are summed before they are added to y).
template <class T>
inline void combine(idx n, int k, const T *c, const T *v, idx stride, T *__restrict y) {
  int i = 0;
  for (; i + 4 <= k; i += 4) {
    const T *__restrict v0 = v + i * stride;
    const T *__restrict v1 = v0 + stride;
    const T *__restrict v2 = v1 + stride;
    const T *__restrict v3 = v2 + stride;
    const T c0 = c[i], c1 = c[i + 1], c2 = c[i + 2], c3 = c[i + 3];
#pragma omp simd
    for (idx l = 0; l < n; ++l) y[l] += c0 * v0[l] + c1 * v1[l] + c2 * v2[l] + c3 * v3[l];
  }
  for (; i < k; ++i) axpy(n, c[i], v + i * stride, y);
}

}  // namespace orb::iterative::vec
