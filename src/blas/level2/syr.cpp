// Rank-1 and rank-2 updates of a symmetric or Hermitian matrix stored in one
// triangle: xSYR, xHER, the complex symmetric ZSYR, xSYR2 and xHER2.
#include <algorithm>
#include <cstdint>

#include "blas/level2/level2.h"

namespace orb::blas::level2 {
namespace {

// The rows [lo, hi) of column j that lie in the row chunk [r0, r1), the
// diagonal left out when `skip_diag` is set.
struct Span {
  int lo, hi;
};
Span span(bool upper, int j, int r0, int r1, bool skip_diag) {
  Span s = upper ? Span{r0, std::min(r1, j + 1)} : Span{std::max(r0, j), r1};
  if (skip_diag && j >= r0 && j < r1) {
    if (upper)
      s.hi = j;
    else
      s.lo = j + 1;
  }
  return s;
}

}  // namespace

template <class T>
void syr(bool upper, int n, T alpha, const T *x, int incx, T *a, int lda, bool herm) {
  if (n == 0 || alpha == T(0)) return;
  const Vec<const T> xv = vec(x, n, incx);
  const kernel::level2::Axpy<T> axpy = kernels<T>().axpy.get();
  with_work<T>(n, 1, incx != 1, [&](int rows, T *work, int) {
    for (int r0 = 0; r0 < n; r0 += rows) {
      const int r1 = std::min(n, r0 + rows);
      const T *xc = stage(xv, r0, r1 - r0, work);
      // The columns with rows in this chunk.
      for (int j = upper ? r0 : 0; j < (upper ? n : r1); ++j) {
        T *aj = a + std::int64_t{j} * lda;
        const bool diag = j >= r0 && j < r1;
        const T xj = xv[j];
        if (xj == T(0)) {
          if (herm && diag) aj[j] = real_part(aj[j]);
          continue;
        }
        const T t = mul(alpha, conj_if(xj, herm));
        const Span s = span(upper, j, r0, r1, herm);
        if (s.hi > s.lo) axpy(s.hi - s.lo, t, xc + (s.lo - r0), aj + s.lo);
        if (herm && diag) aj[j] = real_part(aj[j]) + real_part(mul(xj, t));
      }
    }
  });
}

template <class T>
void syr2(bool upper, int n, T alpha, const T *x, int incx, const T *y, int incy, T *a, int lda,
          bool herm) {
  if (n == 0 || alpha == T(0)) return;
  const Vec<const T> xv = vec(x, n, incx);
  const Vec<const T> yv = vec(y, n, incy);
  const kernel::level2::Axpy2<T> axpy2 = kernels<T>().axpy2.get();
  with_work<T>(n, 2, incx != 1 || incy != 1, [&](int rows, T *work, int stride) {
    for (int r0 = 0; r0 < n; r0 += rows) {
      const int r1 = std::min(n, r0 + rows);
      const T *xc = stage(xv, r0, r1 - r0, work);
      const T *yc = stage(yv, r0, r1 - r0, work + stride);
      for (int j = upper ? r0 : 0; j < (upper ? n : r1); ++j) {
        T *aj = a + std::int64_t{j} * lda;
        const bool diag = j >= r0 && j < r1;
        const T xj = xv[j], yj = yv[j];
        if (xj == T(0) && yj == T(0)) {
          if (herm && diag) aj[j] = real_part(aj[j]);
          continue;
        }
        const T t1 = mul(alpha, conj_if(yj, herm));
        const T t2 = conj_if(mul(alpha, xj), herm);
        const Span s = span(upper, j, r0, r1, herm);
        if (s.hi > s.lo) axpy2(s.hi - s.lo, t1, xc + (s.lo - r0), t2, yc + (s.lo - r0), aj + s.lo);
        if (herm && diag) aj[j] = real_part(aj[j]) + real_part(mul(xj, t1) + mul(yj, t2));
      }
    }
  });
}

#define ORB_LEVEL2_SYR(T)                                             \
  template void syr<T>(bool, int, T, const T *, int, T *, int, bool); \
  template void syr2<T>(bool, int, T, const T *, int, const T *, int, T *, int, bool);
ORB_LEVEL2_SYR(float)
ORB_LEVEL2_SYR(double)
ORB_LEVEL2_SYR(c8)
ORB_LEVEL2_SYR(c16)
#undef ORB_LEVEL2_SYR

}  // namespace orb::blas::level2
