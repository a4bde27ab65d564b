// A routine's six-character name literal for each precision ("SGETRF",
// "CGETRF", ...): the name it reports errors under and asks the oracle with.
#pragma once

#include <complex>
#include <type_traits>

namespace orb::lapack {

// The precision letter of a scalar type: S, D, C or Z.
template <class T>
constexpr char precision_letter() {
  if constexpr (std::is_same_v<T, float>)
    return 'S';
  else if constexpr (std::is_same_v<T, double>)
    return 'D';
  else if constexpr (std::is_same_v<T, std::complex<float>>)
    return 'C';
  else
    return 'Z';
}

// name<T>("GETRF") is "SGETRF" for float; routine names of four letters
// or fewer are padded with blanks.
struct Name6 {
  char text[7];
};
template <class T>
constexpr Name6 name(const char *routine) {
  Name6 out{{precision_letter<T>(), ' ', ' ', ' ', ' ', ' ', '\0'}};
  for (int i = 0; i < 5 && routine[i] != '\0'; ++i) out.text[i + 1] = routine[i];
  return out;
}

}  // namespace orb::lapack
