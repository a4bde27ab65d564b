#include "special/bessel_series.h"

#include <cfloat>
#include <cmath>

namespace orb::special {

namespace {

using cplx = std::complex<double>;

// One order: (z/2)^nu / Gamma(nu+1) * sum_k (z^2/4)^k / (k! (nu+1)_k).
// The leading factor is formed through logarithms, so large orders neither
// overflow Gamma nor underflow the power before the product is taken.
// Returns false when the leading factor is below the double range.
bool series_one_order(cplx z, double nu, double shift, cplx &value) {
  const cplx quarter_square = 0.25 * z * z;
  cplx sum = 1.0, term = 1.0;
  // The ratio of consecutive terms falls below one from the start in the
  // applicable region, so the first negligible term ends the sum.
  for (int k = 1; k < 100000; ++k) {
    term *= quarter_square / (double(k) * (nu + k));
    sum += term;
    if (std::abs(term) <= 0.5 * DBL_EPSILON * std::abs(sum)) break;
  }
  if (z == 0.0) {
    value = nu == 0.0 ? cplx(1.0) : cplx(0.0);
    return true;
  }
  const cplx log_lead = nu * std::log(0.5 * z) - std::lgamma(nu + 1.0) - shift;
  if (log_lead.real() + std::log(std::abs(sum)) < std::log(DBL_MIN)) return false;
  value = std::exp(log_lead) * sum;
  return true;
}

}  // namespace

bool series_i_applies(cplx z, double nu) {
  const double az = std::abs(z);
  return az <= 2.0 || 0.25 * az * az <= nu + 1.0;
}

int series_i(cplx z, double nu, bool scaled, int n, cplx *y) {
  // exp(-|Re z|) enters the logarithm of the leading factor.
  const double shift = scaled ? std::abs(z.real()) : 0.0;
  int underflowed = 0;
  for (int k = n - 1; k >= 0; --k) {
    if (!series_one_order(z, nu + k, shift, y[k])) {
      y[k] = 0.0;
      ++underflowed;
    }
  }
  return underflowed;
}

}  // namespace orb::special
