// The one loop that turns two lines by a plane rotation, shared by lasr
// and lasr3 so that both compute every element with the same operations.
#pragma once

#include <complex>
#include <cstddef>

#include "common/scalar.h"

namespace orb::lapack::rotation_kernel {

// Whether (c, s) is not the identity; the identity is skipped (its
// products would turn an infinity into a NaN).
template <class R>
inline bool turns(R c, R s) {
  return c != R(1) || s != R(0);
}

// (lo, hi) := (c lo + s hi, c hi - s lo), len elements `inc` apart; real
// lines, contiguous ones in a loop the compiler vectorizes.
template <class R>
inline void rotate_real(int len, R *__restrict lo, R *__restrict hi, std::ptrdiff_t inc, R c, R s) {
  if (inc == 1) {
    for (int i = 0; i < len; ++i) {
      const R x = lo[i], y = hi[i];
      hi[i] = c * y - s * x;
      lo[i] = s * y + c * x;
    }
  } else {
    for (std::ptrdiff_t i = 0, e = static_cast<std::ptrdiff_t>(len) * inc; i != e; i += inc) {
      const R x = lo[i], y = hi[i];
      hi[i] = c * y - s * x;
      lo[i] = s * y + c * x;
    }
  }
}

// A complex line is turned part by part, a real cosine and sine acting
// on the real and imaginary parts alike: a contiguous complex line is a
// real line twice as long.
template <class T>
inline void rotate(int len, T *lo, T *hi, std::ptrdiff_t inc, real_t<T> c, real_t<T> s) {
  using R = real_t<T>;
  if constexpr (is_complex_v<T>) {
    R *l = reinterpret_cast<R *>(lo), *h = reinterpret_cast<R *>(hi);
    if (inc == 1) {
      rotate_real(2 * len, l, h, 1, c, s);
    } else {
      rotate_real(len, l, h, 2 * inc, c, s);
      rotate_real(len, l + 1, h + 1, 2 * inc, c, s);
    }
  } else {
    rotate_real(len, lo, hi, inc, c, s);
  }
}

}  // namespace orb::lapack::rotation_kernel
