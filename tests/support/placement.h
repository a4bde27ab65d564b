// Same operands, same bits, wherever they lie. A call is run with each array
// argument placed at every element offset 0..15 inside a larger buffer, with
// other contents between its columns (rows beyond `rows`, up to `ld`) and
// around it each time, and every bit it writes is compared with the run at
// offset 0. What the call must not write (its inputs, the padding, the buffer
// around each array) is checked untouched.
//
// A routine registers by a builder that turns its argument list into cases,
// one line per routine:
//
//   for (Case &c : gemv("sgemv", sgemv)) cases.push_back(c);
#pragma once

#include <complex>
#include <cstring>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "orb.h"

namespace orb::test::placement {

// The layout of an element type: bytes of one real, reals per element.
template <class T>
struct Elem {
  static constexpr int real_bytes = sizeof(T), reals = 1;
};
template <class R>
struct Elem<std::complex<R>> {
  static constexpr int real_bytes = sizeof(R), reals = 2;
};
template <>
struct Elem<orb_complex8> {
  static constexpr int real_bytes = 4, reals = 2;
};
template <>
struct Elem<orb_complex16> {
  static constexpr int real_bytes = 8, reals = 2;
};

enum class Fill {
  kRandom,    // reals uniform in [-1, 1]
  kDominant,  // the same, with rows + 1 added to the real part of the diagonal
  kIndex,     // distinct ints in 1..range (index arrays of sparse vectors)
};

// One array argument: `cols` columns of `rows` elements, `ld` elements apart.
// A vector with increment inc is one row of n columns, ld = |inc|.
struct Array {
  int real_bytes = 4, reals = 1;
  long rows = 1, cols = 1, ld = 1;
  bool written = false;
  Fill fill = Fill::kRandom;
  long range = 0;  // for Fill::kIndex
};

template <class T>
Array matrix(long rows, long cols, long ld, bool written = false, Fill fill = Fill::kRandom) {
  return {Elem<T>::real_bytes, Elem<T>::reals, rows, cols, ld, written, fill, 0};
}
template <class T>
Array vector(long n, int inc, bool written = false) {
  return {
      Elem<T>::real_bytes, Elem<T>::reals, 1, n, inc < 0 ? -inc : inc, written, Fill::kRandom, 0};
}
template <class T>
Array scalar(bool written = false) {
  return vector<T>(1, 1, written);
}
// nz distinct indices in 1..range.
Array indices(long nz, long range);

struct Case {
  std::string name;
  std::vector<Array> arrays;
  std::function<void(void *const *)> call;  // gets the arrays in order
};

// Runs every case at the 16 placements; one line per case that fails
// (empty when all hold).
std::vector<std::string> check(const std::vector<Case> &cases);

// A value of T from a real and an imaginary part (dropped for real T).
template <class T>
T value(double re, double im = 0) {
  using R = std::conditional_t<Elem<T>::real_bytes == 4, float, double>;
  const R parts[2] = {static_cast<R>(re), static_cast<R>(im)};
  T v;
  std::memcpy(&v, parts, sizeof v);
  return v;
}

}  // namespace orb::test::placement
