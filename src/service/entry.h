// The three kinds of exported entry. An entry function does only what its kind
// says and calls the routine's implementation:
//   checked  - a level-2/3 BLAS entry: runs the routine's argument checker and
//              computes only when every test passes (outputs untouched otherwise);
//   lapack   - sets the error hook to the XERBLA forwarder, then forwards;
//   plain    - forwards the arguments unchanged and returns the result.
#pragma once

#include "service/check.h"
#include "service/report.h"

namespace orb::entry {

template <class Impl, class... Args>
inline void checked(const check::Checker &checker, Impl impl, Args... args) {
  if (check::run(checker, {static_cast<const void *>(args)...}) != 0) return;
  impl(args...);
}

template <class Impl, class... Args>
inline auto lapack(Impl impl, Args... args) {
  install_error_hook();
  return impl(args...);
}

template <class Impl, class... Args>
inline auto plain(Impl impl, Args... args) {
  return impl(args...);
}

}  // namespace orb::entry
