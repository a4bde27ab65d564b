// The options of the BLAS and LAPACK argument lists, as enums, and the one
// decoder of their characters. An entry decodes each character argument once
// (after its checks, so the character is known to be valid); the code below it
// sees only these enums.
#pragma once

#include <cstdint>

namespace orb {

// op(A): A, A^T or A^H (as A^T for real data).
enum class Op : std::uint8_t { kNone, kTrans, kConjTrans };
// Which triangle of a matrix is stored.
enum class Uplo : std::uint8_t { kUpper, kLower };
// Which side a matrix multiplies from.
enum class Side : std::uint8_t { kLeft, kRight };
// Whether a triangle's diagonal is taken as ones (and never read).
enum class Diag : std::uint8_t { kNonUnit, kUnit };

// LAPACK job characters.
enum class JobZ : std::uint8_t { kValues, kVectors };                     // JOBZ: N, V
enum class JobSvd : std::uint8_t { kAll, kSome, kOverwrite, kNone };      // JOBU, JOBVT: A, S, O, N
enum class Range : std::uint8_t { kAll, kValues, kIndices };              // RANGE: A, V, I
enum class CompQ : std::uint8_t { kNone, kInitial, kUpdate };             // COMPQ, COMPZ: N, I, V
enum class Norm : std::uint8_t { kOne, kInfinity, kFrobenius, kMaxAbs };  // NORM: 1/O, I, F/E, M

// Upper-case form of an option character (only ASCII letters change): the
// published routines compare options without regard to case.
constexpr char upper(char c) {
  return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c;
}

// The characters of each option, in the order of its enumerators; a second
// character after a '|' is an alternative spelling of the same value.
template <class E>
struct Letters;
template <>
struct Letters<Op> {
  static constexpr const char *value[] = {"N", "T", "C"};
};
template <>
struct Letters<Uplo> {
  static constexpr const char *value[] = {"U", "L"};
};
template <>
struct Letters<Side> {
  static constexpr const char *value[] = {"L", "R"};
};
template <>
struct Letters<Diag> {
  static constexpr const char *value[] = {"N", "U"};
};
template <>
struct Letters<JobZ> {
  static constexpr const char *value[] = {"N", "V"};
};
template <>
struct Letters<JobSvd> {
  static constexpr const char *value[] = {"A", "S", "O", "N"};
};
template <>
struct Letters<Range> {
  static constexpr const char *value[] = {"A", "V", "I"};
};
template <>
struct Letters<CompQ> {
  static constexpr const char *value[] = {"N", "I", "V"};
};
template <>
struct Letters<Norm> {
  static constexpr const char *value[] = {"O|1", "I", "F|E", "M"};
};

// Whether c (either case) spells a value of E.
template <class E>
constexpr bool is_option(char c) {
  c = upper(c);
  for (const char *s : Letters<E>::value)
    for (; *s; ++s)
      if (*s == c) return true;
  return false;
}

// The value c (either case) spells; c must be valid (is_option).
template <class E>
constexpr E option(char c) {
  c = upper(c);
  int i = 0;
  for (const char *s : Letters<E>::value) {
    for (const char *p = s; *p; ++p)
      if (*p == c) return static_cast<E>(i);
    ++i;
  }
  return static_cast<E>(0);
}

// The character that spells v (upper case).
template <class E>
constexpr char letter(E v) {
  return Letters<E>::value[static_cast<int>(v)][0];
}

}  // namespace orb
