// How the level-1 operations reach their kernels: one dispatch slot per kernel
// and scalar type, with its mapping kept beside it for the tests, and the
// wider path of processor types 4 and 5. Private to src/blas/level1.
#pragma once

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "blas/kernel/level1.h"
#include "blas/level1/level1.h"
#include "service/cpu.h"
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

// Processor types 4 and 5 on x86-64 run the 256-bit kernels when the processor
// and the system support AVX2 and FMA, decided on the first call.
inline bool wide_path() {
  static const bool wide = cpu::avx2_fma_usable();
  return wide;
}

template <class Fn, Fn Narrow, Fn Wide>
struct Wider;
template <class R, class... A, R (*Narrow)(A...), R (*Wide)(A...)>
struct Wider<R (*)(A...), Narrow, Wide> {
  static R call(A... a) { return (wide_path() ? Wide : Narrow)(a...); }
};

#define ORB_L1_FN(k, T) decltype(&::orb::kernel::generic::k<T>)
#if defined(__x86_64__)
#define ORB_L1_WIDE(level, k, T)                                        \
  &::orb::blas::l1::Wider<ORB_L1_FN(k, T), &::orb::kernel::level::k<T>, \
                          &::orb::kernel::avx2::k<T>>::call
#else
#define ORB_L1_WIDE(level, k, T) &::orb::kernel::level::k<T>
#endif

// The dense kernels: generic for type 0, SSE2 for 2, SSE3 for 3 and 4 (SSSE3
// adds nothing to them), SSE4.2 for 5.
#define ORB_L1_DENSE(k, T)                                                                \
  ::orb::each<ORB_L1_FN(k, T)>(&::orb::kernel::generic::k<T>, &::orb::kernel::sse2::k<T>, \
                               &::orb::kernel::sse3::k<T>, ORB_L1_WIDE(sse3, k, T),       \
                               ORB_L1_WIDE(sse42, k, T))
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
  if constexpr (kernel::is_complex<T>)
    return a.real() == 0 && a.imag() == 0;
  else
    return a == 0;
}

}  // namespace orb::blas::l1
