// Symmetric and Hermitian matrix-vector products (xSYMV, xHEMV), one column at
// a time: the column's off-diagonal part updates y above (or below) the
// diagonal and, read once, gives the dot product that updates y(j).
#include <algorithm>
#include <cstdint>

#include "blas/level2/level2.h"

namespace orb::blas::level2 {

template <class T>
void symv(bool upper, int n, T alpha, const T *a, int lda, const T *x, int incx, T beta, T *y,
          int incy, bool herm) {
  if (n == 0 || (alpha == T(0) && beta == T(1))) return;
  const Vec<T> yv = vec(y, n, incy);
  scale(n, beta, yv);
  if (alpha == T(0)) return;
  const Vec<const T> xv = vec(x, n, incx);
  const kernel::level2::AxpyDot<T> axpy_dot = kernels<T>().axpy_dot.get();
  with_work<T>(n, 2, incx != 1 || incy != 1, [&](int rows, T *work, int stride) {
    for (int r0 = 0; r0 < n; r0 += rows) {
      const int r1 = std::min(n, r0 + rows), rn = r1 - r0;
      const T *xc = stage(xv, r0, rn, work);
      T *yc = yv.inc == 1 ? yv.p + r0 : work + stride;
      if (yv.inc != 1) gather(cvec(yv.sub(r0)), rn, yc);
      // The columns with off-diagonal rows or their diagonal in this chunk.
      for (int j = upper ? r0 : 0; j < (upper ? n : r1); ++j) {
        const T *aj = a + std::int64_t{j} * lda;
        const T t = mul(alpha, xv[j]);
        const int lo = upper ? r0 : std::max(r0, j + 1);
        const int hi = upper ? std::min(r1, j) : r1;
        T s(0);
        if (hi > lo) axpy_dot(hi - lo, t, aj + lo, xc + (lo - r0), yc + (lo - r0), herm, &s);
        if (j >= r0 && j < r1) {
          yc[j - r0] += mul(t, herm ? real_part(aj[j]) : aj[j]) + mul(alpha, s);
        } else if (hi > lo) {
          // y(j) lies in another chunk: a later one (upper), or an earlier
          // one already written back (lower).
          yv[j] += mul(alpha, s);
        }
      }
      if (yv.inc != 1) scatter(yc, rn, yv.sub(r0));
    }
  });
}

template void symv<float>(bool, int, float, const float *, int, const float *, int, float, float *,
                          int, bool);
template void symv<double>(bool, int, double, const double *, int, const double *, int, double,
                           double *, int, bool);
template void symv<c8>(bool, int, c8, const c8 *, int, const c8 *, int, c8, c8 *, int, bool);
template void symv<c16>(bool, int, c16, const c16 *, int, const c16 *, int, c16, c16 *, int, bool);

}  // namespace orb::blas::level2
