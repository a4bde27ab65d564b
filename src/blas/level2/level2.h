// Level-2 BLAS: the portable drivers behind the checked entries, in every
// precision. Each takes the published arguments by value, already checked,
// and keeps the published contract: quick returns, y set without being read
// when beta is zero, the alpha = 0 shortcuts, negative increments walking
// from the far end, conjugate transposes. The vector work goes through the
// dispatched kernels of blas/kernel/level2.h; strided vectors are copied to
// contiguous work buffers first.
#pragma once

#include <algorithm>
#include <complex>
#include <cstdint>

#include "blas/kernel/level2.h"
#include "common/options.h"
#include "common/scalar.h"
#include "service/dispatch.h"
#include "service/memory.h"

namespace orb::blas::level2 {

// y := alpha op(A) x + beta y, A m by n.
template <class T>
void gemv(Op trans, int m, int n, T alpha, const T *a, int lda, const T *x, int incx, T beta, T *y,
          int incy);
// A := alpha x y^T + A, or alpha x y^H + A when conj is set.
template <class T>
void ger(int m, int n, T alpha, const T *x, int incx, const T *y, int incy, T *a, int lda,
         bool conj);
// y := alpha A x + beta y, A symmetric, or Hermitian when herm is set (its
// diagonal's imaginary parts are then not read), stored in one triangle.
template <class T>
void symv(bool upper, int n, T alpha, const T *a, int lda, const T *x, int incx, T beta, T *y,
          int incy, bool herm);
// A := alpha x x^T + A (symmetric, also complex), or alpha x x^H + A with a
// real alpha when herm is set (the diagonal is then made real).
template <class T>
void syr(bool upper, int n, T alpha, const T *x, int incx, T *a, int lda, bool herm);
// A := alpha x y^T + alpha y x^T + A, or alpha x y^H + conj(alpha) y x^H + A
// when herm is set.
template <class T>
void syr2(bool upper, int n, T alpha, const T *x, int incx, const T *y, int incy, T *a, int lda,
          bool herm);
// x := op(A) x and x := op(A)^-1 x, A triangular (unit: its diagonal is taken
// as ones and not read).
template <class T>
void trmv(bool upper, Op trans, bool unit, int n, const T *a, int lda, T *x, int incx);
template <class T>
void trsv(bool upper, Op trans, bool unit, int n, const T *a, int lda, T *x, int incx);

// ---- pieces shared by the drivers ------------------------------------------------

// The dispatched kernels of one scalar type: a level's own for each type, the
// 256-bit ones on the wider path of types 4 and 5 where the build has them.
#if defined(ORB_KERNELS_AVX2)
#define ORB_LEVEL2_WIDER(variants, Fn, name) \
  wider<kernel::level2::Fn<T>>(variants, &kernel::level2::avx2::name)
#else
#define ORB_LEVEL2_WIDER(variants, Fn, name) variants
#endif
template <class T>
struct Kernels {
#define ORB_LEVEL2_SLOT(name, Fn)                                                                \
  Slot<kernel::level2::Fn<T>> name {                                                             \
    ORB_LEVEL2_WIDER(                                                                            \
        each<kernel::level2::Fn<T>>(&kernel::level2::generic::name, &kernel::level2::sse2::name, \
                                    &kernel::level2::sse3::name, &kernel::level2::ssse3::name,   \
                                    &kernel::level2::sse42::name),                               \
        Fn, name)                                                                                \
  }
  ORB_LEVEL2_SLOT(gemv_n, GemvN);
  ORB_LEVEL2_SLOT(gemv_t, GemvT);
  ORB_LEVEL2_SLOT(axpy, Axpy);
  ORB_LEVEL2_SLOT(axpy2, Axpy2);
  ORB_LEVEL2_SLOT(axpy_dot, AxpyDot);
  ORB_LEVEL2_SLOT(gemv_nt, GemvNT);
#undef ORB_LEVEL2_SLOT
};
#undef ORB_LEVEL2_WIDER
template <class T>
Kernels<T> &kernels();

// A strided vector: element i at p[i * inc], p being the element the
// published routine takes first (the far end for a negative increment).
template <class T>
struct Vec {
  T *p;
  int inc;
  T &operator[](std::int64_t i) const { return p[i * inc]; }
  Vec sub(std::int64_t i) const { return {p + i * inc, inc}; }
};
template <class T>
Vec<const T> cvec(Vec<T> v) {
  return {v.p, v.inc};
}
template <class T>
Vec<T> vec(T *x, int n, int inc) {
  return {inc < 0 && n > 0 ? x - std::int64_t{n - 1} * inc : x, inc};
}
template <class T>
void gather(Vec<const T> v, std::int64_t n, T *out) {
  for (std::int64_t i = 0; i < n; ++i) out[i] = v[i];
}
template <class T>
void scatter(const T *in, std::int64_t n, Vec<T> v) {
  for (std::int64_t i = 0; i < n; ++i) v[i] = in[i];
}

// y := beta y, y set to zero without being read when beta is zero; nothing
// when beta is one.
template <class T>
void scale(int n, T beta, Vec<T> y) {
  if (beta == T(1)) return;
  if (y.inc == 1) {
    T *p = y.p;  // a plain loop the compiler can vectorise
    if (beta == T(0))
      for (int i = 0; i < n; ++i) p[i] = T(0);
    else
      for (int i = 0; i < n; ++i) p[i] = mul(beta, p[i]);
  } else if (beta == T(0)) {
    for (int i = 0; i < n; ++i) y[i] = T(0);
  } else {
    for (int i = 0; i < n; ++i) y[i] = mul(beta, y[i]);
  }
}

// y += alpha op(A) x on strided vectors (the part of gemv after beta), by row
// blocks that keep the row-side vector in the first-level cache.
template <class T>
void gemv_update(Op trans, int m, int n, T alpha, const T *a, int lda, Vec<const T> x, Vec<T> y);

// Vector elements copied per block when no work buffer can be had.
constexpr int kStackBlock = 256;
// Rows per block of the matrix-vector products: 16 KiB of a vector.
template <class T>
constexpr int row_block() {
  return 16384 / static_cast<int>(sizeof(T));
}
// Alignment of work buffers.
constexpr int kAlign = 64;

// For tests: the drivers behave as if no work buffer could be had.
inline bool g_refuse_work_buffers = false;
template <class T>
mem::Buffer<T> work_buffer(std::int64_t count) {
  if (g_refuse_work_buffers) return {};
  return mem::Buffer<T>(count, kAlign);
}

// Row chunks with contiguous copies of up to two vectors of n elements (n > 0):
// calls run(rows, work, stride) with the rows per chunk and room for each of
// the `vectors` chunks (vector v at work + v * stride), work being null when no
// vector is strided. Chunks are a row block, or kStackBlock rows in stack
// space when no work buffer can be had.
template <class T, class Run>
void with_work(int n, int vectors, bool strided, Run run) {
  const int rows = std::min(n, row_block<T>());
  if (!strided) return run(rows, static_cast<T *>(nullptr), 0);
  constexpr int kUnit = kAlign / static_cast<int>(sizeof(T));
  const int stride = (rows + kUnit - 1) / kUnit * kUnit;
  const mem::Buffer<T> buf = work_buffer<T>(std::int64_t{stride} * vectors);
  if (buf) return run(rows, buf.get(), stride);
  alignas(kAlign) T stack[2 * kStackBlock];
  run(std::min(rows, kStackBlock), stack, kStackBlock);
}

// v(r0 : r0 + rn) contiguous: the vector itself at unit increment, otherwise
// a copy in `work`.
template <class T>
const T *stage(Vec<const T> v, int r0, int rn, T *work) {
  if (v.inc == 1) return v.p + r0;
  gather(v.sub(r0), rn, work);
  return work;
}

}  // namespace orb::blas::level2
