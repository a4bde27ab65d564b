// Rank-1 updates of a general matrix: A := alpha x y^T + A (xGER, xGERU) and
// A := alpha x y^H + A (xGERC).
#include <algorithm>
#include <cstdint>

#include "blas/level2/level2.h"

namespace orb::blas::level2 {

template <class T>
void ger(int m, int n, T alpha, const T *x, int incx, const T *y, int incy, T *a, int lda,
         bool conj) {
  if (m == 0 || n == 0 || alpha == T(0)) return;
  const Vec<const T> xv = vec(x, m, incx);
  const Vec<const T> yv = vec(y, n, incy);
  const kernel::level2::Axpy<T> axpy = kernels<T>().axpy.get();
  // Row blocks keep the piece of x in the first-level cache across the columns.
  with_work<T>(m, 1, incx != 1, [&](int rows, T *work, int) {
    for (int r0 = 0; r0 < m; r0 += rows) {
      const int rn = std::min(rows, m - r0);
      const T *xc = stage(xv, r0, rn, work);
      for (int j = 0; j < n; ++j) {
        const T yj = yv[j];
        if (yj == T(0)) continue;  // as published: the column is left alone
        axpy(rn, mul(alpha, conj_if(yj, conj)), xc, a + r0 + std::int64_t{j} * lda);
      }
    }
  });
}

template void ger<float>(int, int, float, const float *, int, const float *, int, float *, int,
                         bool);
template void ger<double>(int, int, double, const double *, int, const double *, int, double *, int,
                          bool);
template void ger<c8>(int, int, c8, const c8 *, int, const c8 *, int, c8 *, int, bool);
template void ger<c16>(int, int, c16, const c16 *, int, const c16 *, int, c16 *, int, bool);

}  // namespace orb::blas::level2
