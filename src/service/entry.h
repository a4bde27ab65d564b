// The three kinds of exported entry. An entry function does only what its kind
// says and calls the routine's implementation:
//   checked  - a level-2/3 BLAS entry: runs the routine's argument checker and
//              computes only when every test passes (outputs untouched otherwise);
//   lapack   - sets the error hook to the XERBLA forwarder, runs the routine's
//              check table (INFO = -i and the internal reporter on the first
//              failure), answers a workspace query (LWORK = -1: the optimal
//              size in WORK(1), nothing computed), then computes;
//   plain    - forwards the arguments unchanged and returns the result.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "service/check.h"
#include "service/report.h"

namespace orb::entry {

template <class Impl, class... Args>
inline void checked(const check::Checker &checker, Impl impl, Args... args) {
  if (check::run(checker, {static_cast<const void *>(args)...}) != 0) return;
  impl(args...);
}

// A LAPACK routine's checks: its name and tests (published order and codes)
// and the positions of its WORK and LWORK arguments (0: it has none).
struct LapackChecker {
  check::Checker checker;
  std::uint8_t work, lwork;
};
template <std::size_t N>
constexpr LapackChecker lapack_checker(const char (&name)[7], const check::Test (&tests)[N],
                                       int work = 0, int lwork = 0) {
  return {check::checker(name, tests), static_cast<std::uint8_t>(work),
          static_cast<std::uint8_t>(lwork)};
}

// For routines without a workspace argument.
struct NoWorkspace {
  template <class... Args>
  std::int64_t operator()(Args...) const {
    return 0;
  }
};

namespace detail {
// WORK(1) := size, for the argument that is WORK (real or complex work arrays).
template <class T>
void store_size(T *work, std::int64_t size) {
  if constexpr (std::is_floating_point_v<T>)
    *work = static_cast<T>(size);
  else if constexpr (std::is_same_v<T, std::complex<float>> ||
                     std::is_same_v<T, std::complex<double>>)
    *work = T(static_cast<typename T::value_type>(size));
}
template <class T>
void store_size(const T *, std::int64_t) {}
template <class T>
void store_size(T, std::int64_t) {}
}  // namespace detail

// The LAPACK entry: the published arguments (pointers, INFO last) go to the
// check table, then to `worksize` for a workspace query or to `impl`, which
// sets INFO for its own outcomes (a zero pivot, no convergence, ...).
template <class Worksize, class Impl, class... Args>
inline void lapack(const LapackChecker &routine, Worksize worksize, Impl impl, Args... args) {
  install_error_hook();
  const void *ptrs[] = {static_cast<const void *>(args)...};
  int *info = const_cast<int *>(static_cast<const int *>(ptrs[sizeof...(Args) - 1]));
  if (!check::run_lapack(routine.checker, info, ptrs, sizeof...(Args))) return;
  *info = 0;
  if (routine.lwork != 0 && check::int_arg(ptrs, routine.lwork) == -1) {
    const std::int64_t size = worksize(args...);
    std::size_t pos = 0;
    ((++pos == routine.work ? detail::store_size(args, size) : void()), ...);
    return;
  }
  impl(args...);
}

// A LAPACK routine without INFO or argument checks (DLASWP, ZLACGV, ...),
// or one that makes its own (the LU, whose threaded layer is also called
// inside the library): sets the error hook, then calls it.
struct NoChecks {};
inline constexpr NoChecks kNoChecks{};
template <class Impl, class... Args>
inline void lapack(NoChecks, Impl impl, Args... args) {
  install_error_hook();
  impl(args...);
}

template <class Impl, class... Args>
inline auto plain(Impl impl, Args... args) {
  return impl(args...);
}

}  // namespace orb::entry
