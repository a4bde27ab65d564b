// Table-driven argument checkers of the level-2 and level-3 BLAS entries.
//
// A checker is a six-character routine name and a short list of tests, in the
// order the reference routine makes them. Each test names an argument by its
// 1-based position in the routine's argument list, which is also the code
// reported when the test fails:
//
//   option(1, "NTC")             argument 1's first character is one of N, T, C
//                                (either case)
//   nonneg(3)                    argument 3 >= 0
//   nonzero(8)                   argument 8 != 0 (increments)
//   ld(8, dim_if(1, 'N', 3, 5))  argument 8 >= max(1, rows), rows being
//                                argument 3 when argument 1 is 'N', else argument 5
//   ld(13, dim(3))               argument 13 >= max(1, argument 3)
//
// The first failing test is reported through the XERBLA forwarder with the
// name and length 6; later tests are not made.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "common/options.h"

namespace orb::check {

enum class Op : std::uint8_t { kOption, kNonNegative, kNonZero, kLeadingDim };

// A dimension taken from the arguments: argument `then_pos`, or, when
// `if_pos` is non-zero, argument `then_pos` if option argument `if_pos` is
// `ch` and argument `else_pos` otherwise.
struct Dim {
  std::uint8_t if_pos;
  char ch;
  std::uint8_t then_pos;
  std::uint8_t else_pos;
};

struct Test {
  Op op;
  std::uint8_t pos;
  const char *options;
  Dim dim;
};

constexpr Dim dim(int pos) {
  return Dim{0, 0, static_cast<std::uint8_t>(pos), 0};
}
constexpr Dim dim_if(int if_pos, char ch, int then_pos, int else_pos) {
  return Dim{static_cast<std::uint8_t>(if_pos), ch, static_cast<std::uint8_t>(then_pos),
             static_cast<std::uint8_t>(else_pos)};
}
constexpr Test option(int pos, const char *set) {
  return Test{Op::kOption, static_cast<std::uint8_t>(pos), set, Dim{}};
}
constexpr Test nonneg(int pos) {
  return Test{Op::kNonNegative, static_cast<std::uint8_t>(pos), nullptr, Dim{}};
}
constexpr Test nonzero(int pos) {
  return Test{Op::kNonZero, static_cast<std::uint8_t>(pos), nullptr, Dim{}};
}
constexpr Test ld(int pos, Dim rows) {
  return Test{Op::kLeadingDim, static_cast<std::uint8_t>(pos), nullptr, rows};
}

struct Checker {
  const char *name;  // six characters, blank padded
  const Test *tests;
  std::size_t count;
};

template <std::size_t N>
constexpr Checker checker(const char (&name)[7], const Test (&tests)[N]) {
  return Checker{name, tests, N};
}

// Runs the tests over the arguments (pointers to each argument, in order).
// Returns 0 when all pass; otherwise reports the first failure and returns
// its code.
int run(const Checker &checker, std::initializer_list<const void *> args);

// The first failing code without reporting it (0 when all pass).
int first_failure(const Checker &checker, const void *const *args, std::size_t nargs);

}  // namespace orb::check
