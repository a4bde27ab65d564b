// The public complex types seen as std::complex by the library's entries:
// both are two consecutive values, real part first.
#pragma once

#include <complex>

#include "orb.h"

namespace orb::blas {

static_assert(sizeof(orb_complex8) == sizeof(std::complex<float>) &&
              sizeof(orb_complex16) == sizeof(std::complex<double>));

inline const std::complex<float> *cx(const orb_complex8 *p) {
  return reinterpret_cast<const std::complex<float> *>(p);
}
inline std::complex<float> *cx(orb_complex8 *p) {
  return reinterpret_cast<std::complex<float> *>(p);
}
inline const std::complex<double> *cx(const orb_complex16 *p) {
  return reinterpret_cast<const std::complex<double> *>(p);
}
inline std::complex<double> *cx(orb_complex16 *p) {
  return reinterpret_cast<std::complex<double> *>(p);
}

}  // namespace orb::blas
