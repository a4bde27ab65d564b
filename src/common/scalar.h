// The scalar types and their traits, shared by every layer: the complex names,
// the real type of a scalar, whether it is complex, conjugates and products.
#pragma once

#include <complex>
#include <type_traits>

// Every build rounds each operation to its type, as the published routines'
// tests and convergence criteria assume; a 32-bit build computing on x87
// registers would not, and would make results depend on register spills.
static_assert(__FLT_EVAL_METHOD__ == 0, "compile with SSE2 scalar arithmetic (-mfpmath=sse)");

namespace orb {

using c8 = std::complex<float>;
using c16 = std::complex<double>;

template <class T>
struct RealOf {
  using type = T;
};
template <class R>
struct RealOf<std::complex<R>> {
  using type = R;
};
// float for float and std::complex<float>, double for the double types.
template <class T>
using real_t = typename RealOf<T>::type;

// The double-precision type of the same kind: what a single-precision
// recursion accumulates in.
template <class T>
struct WideOf {
  using type = double;
};
template <class R>
struct WideOf<std::complex<R>> {
  using type = std::complex<double>;
};
template <class T>
using wide_t = typename WideOf<T>::type;

template <class T>
inline constexpr bool is_complex_v = !std::is_same_v<T, real_t<T>>;

// The conjugate (real values are their own), of the scalar's own type.
template <class T>
T conj(T x) {
  if constexpr (is_complex_v<T>)
    return std::conj(x);
  else
    return x;
}

// x, or its conjugate when asked.
template <class T>
T conj_if(T x, bool c) {
  return c ? conj(x) : x;
}

// x with its imaginary part dropped, of the scalar's own type.
template <class T>
T real_part(T x) {
  if constexpr (is_complex_v<T>)
    return T(x.real());
  else
    return x;
}

// Products component by component: the language's complex product calls the
// library to sort out infinities.
template <class T>
T mul(T x, T y) {
  if constexpr (is_complex_v<T>)
    return {x.real() * y.real() - x.imag() * y.imag(), x.real() * y.imag() + x.imag() * y.real()};
  else
    return x * y;
}

}  // namespace orb
