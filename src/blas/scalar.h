// Scalar helpers for either kind of element, shared by portable code and the
// generic kernels (the instruction-set folders keep their own copies in
// anonymous namespaces, so no wide copy of these can be linked in their place).
#pragma once

#include <complex>

namespace orb::blas {

// Products component by component: the language's complex product calls the
// library to sort out infinities.
template <class T>
T mul(T x, T y) {
  return x * y;
}
template <class R>
std::complex<R> mul(std::complex<R> x, std::complex<R> y) {
  return {x.real() * y.real() - x.imag() * y.imag(), x.real() * y.imag() + x.imag() * y.real()};
}

// x, or its conjugate when asked (real values are their own conjugate).
template <class T>
T conj_if(T x, bool) {
  return x;
}
template <class R>
std::complex<R> conj_if(std::complex<R> x, bool conj) {
  return conj ? std::conj(x) : x;
}

}  // namespace orb::blas
