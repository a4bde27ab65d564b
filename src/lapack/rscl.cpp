// Division of a vector by a real number through multiplications that stay
// in range: while 1 / a itself would overflow or underflow, x is scaled by
// the safe minimum or its reciprocal (exact powers of two) and the divisor's
// remainder tracked, then one last multiplication by num / den (zero for
// an infinite a, NaN for a NaN).
#include <cmath>

#include "lapack/auxiliary.h"
#include "lapack/blas_calls.h"

namespace orb::lapack {

template <class T>
void rscl(int n, real_t<T> a, T *x) {
  using R = real_t<T>;
  if (n <= 0) return;
  const R small = safe_minimum<R>(), big = R(1) / small;
  // x / a is (x num) / den; each pass multiplies x by one factor.
  R num = 1, den = a;
  for (;;) {
    R factor;
    bool last = false;
    if (std::abs(den * small) > std::abs(num) && num != R(0) && std::isfinite(den)) {
      factor = small;  // den is huge: shrink x first
      den *= small;
    } else if (std::abs(num / big) > std::abs(den)) {
      factor = big;  // den is tiny: grow x first
      num /= big;
    } else {
      factor = num / den;
      last = true;
    }
    rscal(n, factor, x, 1);
    if (last) return;
  }
}

template void rscl(int, float, float *);
template void rscl(int, double, double *);
template void rscl(int, float, c8 *);
template void rscl(int, double, c16 *);

}  // namespace orb::lapack
