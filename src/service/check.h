// Table-driven argument checkers of the BLAS and LAPACK entries.
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
//                                (else 0, when the last position is 0)
//   ld(13, dim(3))               argument 13 >= max(1, argument 3)
//   lwork(7, min)                argument 7 is -1 (a workspace query) or
//                                >= min(args)
//   holds(4, pred)               pred(args) is true (any other rule: M >= N, a
//                                range of ILO, ...)
//
// A BLAS entry reports its first failing test through the XERBLA forwarder;
// a LAPACK routine through the internal reporter, with INFO = -code
// (entry.h). Later tests are not made.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "common/options.h"

namespace orb::check {

enum class Kind : std::uint8_t { kOption, kNonNegative, kNonZero, kLeadingDim, kWork, kHolds };

// The arguments as the tests see them: pointers to each, in order.
using Args = const void *const *;
// Argument `pos` (1-based) read as an int, or as an upper-case option character.
inline int int_arg(Args args, int pos) {
  return *static_cast<const int *>(args[pos - 1]);
}
inline char char_arg(Args args, int pos) {
  return upper(*static_cast<const char *>(args[pos - 1]));
}

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
  Kind kind;
  std::uint8_t pos;
  const char *options;
  Dim dim;
  int (*min)(Args) = nullptr;    // kWork: the smallest workspace that will do
  bool (*pred)(Args) = nullptr;  // kHolds
};

constexpr Dim dim(int pos) {
  return Dim{0, 0, static_cast<std::uint8_t>(pos), 0};
}
constexpr Dim dim_if(int if_pos, char ch, int then_pos, int else_pos) {
  return Dim{static_cast<std::uint8_t>(if_pos), ch, static_cast<std::uint8_t>(then_pos),
             static_cast<std::uint8_t>(else_pos)};
}
constexpr Test option(int pos, const char *set) {
  return Test{Kind::kOption, static_cast<std::uint8_t>(pos), set, Dim{}};
}
constexpr Test nonneg(int pos) {
  return Test{Kind::kNonNegative, static_cast<std::uint8_t>(pos), nullptr, Dim{}};
}
constexpr Test nonzero(int pos) {
  return Test{Kind::kNonZero, static_cast<std::uint8_t>(pos), nullptr, Dim{}};
}
constexpr Test ld(int pos, Dim rows) {
  return Test{Kind::kLeadingDim, static_cast<std::uint8_t>(pos), nullptr, rows};
}
constexpr Test lwork(int pos, int (*min)(Args)) {
  return Test{Kind::kWork, static_cast<std::uint8_t>(pos), nullptr, Dim{}, min};
}
constexpr Test holds(int pos, bool (*pred)(Args)) {
  return Test{Kind::kHolds, static_cast<std::uint8_t>(pos), nullptr, Dim{}, nullptr, pred};
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
// Returns 0 when all pass; otherwise reports the first failure through the
// XERBLA forwarder and returns its code (the BLAS convention).
int run(const Checker &checker, std::initializer_list<const void *> args);

// The LAPACK convention: on the first failure sets *info (when info is not
// null) to -code, reports code through the internal reporter and returns
// false.
bool run_lapack(const Checker &checker, int *info, Args args, std::size_t nargs);

// The first failing code without reporting it (0 when all pass).
int first_failure(const Checker &checker, const void *const *args, std::size_t nargs);

}  // namespace orb::check
