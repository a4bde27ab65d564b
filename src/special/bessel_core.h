// Double-precision kernels for the Bessel functions I and K of complex
// argument. Values are returned as a mantissa and a complex logarithmic
// exponent, value = m * exp(e), so that the very large and very small
// magnitudes met for large orders or arguments survive until the caller
// decides on overflow and underflow in its own precision.
#pragma once

#include <complex>
#include <vector>

namespace orb::special {

struct LogValue {
  std::complex<double> m;  // mantissa
  std::complex<double> e;  // exponent: the value is m * exp(e)
};

// log |value| (minus infinity for a zero mantissa).
double log_magnitude(const LogValue &v);
// a + b, formed in the exponent of the larger term.
LogValue add(const LogValue &a, const LogValue &b);
// c * v for a plain complex factor.
LogValue scale(const LogValue &v, std::complex<double> c);

// K_{nu+k}(z), k = 0 .. n-1, for Re z >= 0, z != 0, nu >= 0.
// Returns false when an expansion failed to converge.
bool bessel_k_right(std::complex<double> z, double nu, int n, std::vector<LogValue> &k);

// I_{nu+k}(z), k = 0 .. n-1, for Re z >= 0, nu >= 0.
bool bessel_i_right(std::complex<double> z, double nu, int n, std::vector<LogValue> &i);

// The same functions anywhere in the plane. The argument is written
// z = w * exp(i pi m) with Re w >= 0 and m in {-1, 0, 1}; m = 0 requires
// Re z >= 0, and m = +-1 takes the branch reached by that rotation.
bool bessel_i(std::complex<double> z, int m, double nu, int n, std::vector<LogValue> &i);
bool bessel_k(std::complex<double> z, int m, double nu, int n, std::vector<LogValue> &k);

// The rotation count of the principal branch: 0 in the right half plane,
// +1 above (and on) the negative real axis, -1 below.
int principal_rotation(std::complex<double> z);

}  // namespace orb::special
