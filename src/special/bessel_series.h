// The power series of the modified Bessel function I of complex argument,
// the region of small |z| (|z| <= 2 or |z|^2/4 <= nu + 1) where its terms
// shrink from the first on and no cancellation can occur.
#pragma once

#include <complex>

namespace orb::special {

// The series applies to (z, nu): terms decrease from the first.
bool series_i_applies(std::complex<double> z, double nu);

// I_{nu+k}(z), k = 0 .. n-1, into y (scaled by exp(-|Re z|) when scaled).
// Orders whose value falls below the double range are set to zero; the
// result is the number of such orders. nu >= 0, n >= 1.
int series_i(std::complex<double> z, double nu, bool scaled, int n, std::complex<double> *y);

}  // namespace orb::special
