// Helpers for tests that check results against a reference computed in
// double precision.
#pragma once

#include <complex>

namespace orb::test {

// The double-precision type a reference sum of T is formed in.
template <class T>
struct Wide {
  using type = double;
};
template <class R>
struct Wide<std::complex<R>> {
  using type = std::complex<double>;
};
template <class T>
using wide_t = typename Wide<T>::type;

// x, conjugated when it is complex.
template <class T>
T conj_of(T x) {
  return x;
}
template <class R>
std::complex<R> conj_of(std::complex<R> x) {
  return std::conj(x);
}

}  // namespace orb::test
