// How the level-1 operations reach their kernels: one dispatch slot per kernel
// and scalar type, with its mapping kept beside it for the tests. Private to
// src/blas/level1.
#pragma once

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "blas/kernel/level1.h"
#include "blas/level1/level1.h"
#include "service/dispatch.h"

namespace orb::blas::l1 {

// A kernel's dispatch slot and the mapping it fills from.
template <class Fn>
struct Kernel {
  constexpr explicit Kernel(const Variants<Fn> &v) : variants(v), slot(v) {}
  template <class... A>
  auto operator()(A... a) {
    return slot(a...);
  }
  Variants<Fn> variants;
  Slot<Fn> slot;
};

#define ORB_L1_FN(k, T) decltype(&::orb::kernel::generic::k<T>)

// A mapping with the 256-bit kernel on the wider path of types 4 and 5,
// where the build has it.
#if defined(ORB_KERNELS_AVX2)
#define ORB_L1_WIDER(narrow, k, T) ::orb::wider<ORB_L1_FN(k, T)>(narrow, &::orb::kernel::avx2::k<T>)
#else
#define ORB_L1_WIDER(narrow, k, T) narrow
#endif

// The dense kernels: generic for type 0, SSE2 for 2, SSE3 for 3 and 4 (SSSE3
// adds nothing to them), SSE4.2 for 5, the 256-bit kernels on the wider path.
#define ORB_L1_DENSE(k, T)                                                                    \
  ORB_L1_WIDER(                                                                               \
      ::orb::each<ORB_L1_FN(k, T)>(&::orb::kernel::generic::k<T>, &::orb::kernel::sse2::k<T>, \
                                   &::orb::kernel::sse3::k<T>, &::orb::kernel::sse3::k<T>,    \
                                   &::orb::kernel::sse42::k<T>),                              \
      k, T)
// Kernels without a vector path: the generic one for every type.
#define ORB_L1_SINGLE(k, T) ::orb::single<ORB_L1_FN(k, T)>(&::orb::kernel::generic::k<T>)

// A one-letter name of each type for the records: s, c, d, z.
template <class T>
constexpr char kLetter = std::is_same_v<T, float>    ? 's'
                         : std::is_same_v<T, c8>     ? 'c'
                         : std::is_same_v<T, double> ? 'd'
                                                     : 'z';

template <class T, class Fn>
DispatchRecord record(const char *name, Kernel<Fn> &k) {
  DispatchRecord r{std::string(name) + '/' + kLetter<T>, {}, nullptr};
  for (int s = 0; s < cpu::kKernelSets; ++s)
    r.variants[s] = reinterpret_cast<const void *>(k.variants[s]);
  r.picked = reinterpret_cast<const void *>(k.slot.get());
  return r;
}

// The sparse kernels' records (sparse.cpp).
void add_sparse_records(std::vector<DispatchRecord> &out);

// The first element a walk of n elements with increment inc visits.
template <class T>
T *first(T *p, int n, int inc) {
  return inc < 0 ? p - std::int64_t(n - 1) * inc : p;
}

// Whether a scalar is zero (both parts for complex values).
template <class T>
bool is_zero(const T &a) {
  if constexpr (orb::is_complex_v<T>)
    return a.real() == 0 && a.imag() == 0;
  else
    return a == 0;
}

}  // namespace orb::blas::l1
