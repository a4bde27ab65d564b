#include <algorithm>
#include <limits>
#include <utility>

#include "lapack/auxiliary.h"

namespace orb::lapack {

// Columns are taken in blocks of 32, so that the rows a block touches stay
// in cache while all its interchanges are made.
template <class T>
void laswp(int n, T *a, int lda, int k1, int k2, const int *ipiv, int incx) {
  if (n <= 0 || incx == 0) return;
  int first, last, step, ix0;
  if (incx > 0) {
    first = k1, last = k2, step = 1, ix0 = k1;
  } else {
    first = k2, last = k1, step = -1, ix0 = k1 + (k1 - k2) * incx;
  }
  constexpr int kBlock = 32;
  for (int j0 = 0; j0 < n; j0 += kBlock) {
    const int jn = std::min(kBlock, n - j0);
    int ix = ix0;
    for (int i = first; step > 0 ? i <= last : i >= last; i += step, ix += incx) {
      const int p = ipiv[ix - 1];
      if (p == i) continue;
      T *ri = a + (i - 1) + static_cast<std::ptrdiff_t>(j0) * lda;
      T *rp = a + (p - 1) + static_cast<std::ptrdiff_t>(j0) * lda;
      for (int j = 0; j < jn; ++j)
        std::swap(ri[static_cast<std::ptrdiff_t>(j) * lda],
                  rp[static_cast<std::ptrdiff_t>(j) * lda]);
    }
  }
}

template void laswp(int, float *, int, int, int, const int *, int);
template void laswp(int, double *, int, int, int, const int *, int);
template void laswp(int, c8 *, int, int, int, const int *, int);
template void laswp(int, c16 *, int, int, int, const int *, int);

}  // namespace orb::lapack
