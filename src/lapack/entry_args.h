// What the LAPACK entries share in reading the published argument lists.
#pragma once

#include <type_traits>

namespace orb::lapack {

// The last work array of the condition estimators and refinements: integers
// (IWORK) for real data, reals (RWORK) for complex. The templates take both
// pointers, the one the routine does not have null.
template <class Extra>
int *iwork_of(Extra *extra) {
  if constexpr (std::is_same_v<Extra, int>)
    return extra;
  else
    return nullptr;
}
template <class Extra>
auto rwork_of(Extra *extra) {
  if constexpr (std::is_same_v<Extra, int>)
    return nullptr;
  else
    return extra;
}

}  // namespace orb::lapack
