// The auxiliaries the LAPACK routines share, one template each over the
// scalar type (float, double and their complex forms), with the meaning of
// the published routines of the same names.
#pragma once

#include <complex>
#include <limits>

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// Row interchanges (xLASWP): for i = k1 .. k2 (1-based, backwards for a
// negative incx) row i of the n columns of A is swapped with row ipiv(i).
template <class T>
void laswp(int n, T *a, int lda, int k1, int k2, const int *ipiv, int incx);

// The smallest positive number whose reciprocal does not overflow.
template <class R>
constexpr R safe_minimum() {
  return std::numeric_limits<R>::min();
}

}  // namespace orb::lapack
