#include <cmath>
#include <limits>

#include "blas/level1/level1.h"
#include "lapack/auxiliary.h"

namespace orb::lapack {

// 1 / a is applied as a product of factors each of which is representable:
// the safe minimum or its reciprocal while the remaining quotient is out of
// range, then the quotient itself.
template <class T>
void rscl(int n, real_t<T> a, T *x) {
  using R = real_t<T>;
  if (n <= 0) return;
  const R small = safe_minimum<R>(), big = R(1) / small;
  R den = a, num = 1;
  for (bool done = false; !done;) {
    const R den1 = den * small, num1 = num / big;
    R mul;
    if (std::abs(den1) > std::abs(num) && num != 0) {
      mul = small;
      den = den1;
    } else if (std::abs(num1) > std::abs(den)) {
      mul = big;
      num = num1;
    } else {
      mul = num / den;
      done = true;
    }
    if constexpr (is_complex_v<T>)
      blas::rscal(n, mul, x, 1);
    else
      blas::scal(n, mul, x, 1);
  }
}

template void rscl(int, float, float *);
template void rscl(int, double, double *);
template void rscl(int, float, c8 *);
template void rscl(int, double, c16 *);

}  // namespace orb::lapack
