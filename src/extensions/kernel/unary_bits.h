// Choosing between floats by their bits, for the loops of the unary and sign
// families: a choice the compiler makes with masks keeps every operation of
// both arms unconditional, so it can vectorise a loop whose arms compute
// (it will not make a floating-point operation unconditional on its own,
// since the operation might raise a floating-point exception).
// Included only by kernel sources; the helpers are local to each.
#pragma once

#include <cstdint>
#include <cstring>

namespace orb::host {
namespace {

inline std::uint32_t bits_of(float x) {
  std::uint32_t u;
  std::memcpy(&u, &x, sizeof u);
  return u;
}
inline float float_of(std::uint32_t u) {
  float x;
  std::memcpy(&x, &u, sizeof x);
  return x;
}

// c ? a : b, bit for bit.
inline float pick(bool c, float a, float b) {
  const std::uint32_t m = c ? ~0u : 0u;
  return float_of((bits_of(a) & m) | (bits_of(b) & ~m));
}

}  // namespace
}  // namespace orb::host
