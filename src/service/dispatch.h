// Lazy per-kernel dispatch. Each processor-dependent kernel has one slot: empty
// at load, filled on the kernel's first call with the variant its mapping
// gives for the processor type, and then called through directly. Racing first
// calls store the same pointer, so the slot needs no lock.
//
//   using DotFn = float (*)(int, const float *, int, const float *, int);
//   Slot<DotFn> sdot_slot{each<DotFn>(dot_generic, dot_sse2, dot_sse3,
//                                     dot_ssse3, dot_sse42)};
//   float r = sdot_slot(n, x, incx, y, incy);
#pragma once

#include <array>
#include <atomic>

#include "service/cpu.h"

namespace orb {

// Variants by code-path type (index 0 to 6); an empty entry means the type is
// outside the kernel's mapping.
template <class Fn>
using Variants = std::array<Fn, 7>;

// The four mappings of the BLAS kernels:
// one variant each for types 0, 2, 3, 4, 5;
template <class Fn>
constexpr Variants<Fn> each(Fn t0, Fn t2, Fn t3, Fn t4, Fn t5) {
  return {t0, nullptr, t2, t3, t4, t5, nullptr};
}
// one for 0, 2, 3 and another for 4, 5;
template <class Fn>
constexpr Variants<Fn> split(Fn up_to_3, Fn from_4) {
  return {up_to_3, nullptr, up_to_3, up_to_3, from_4, from_4, nullptr};
}
// one for 0, 2, 3, one for 4, one for 5;
template <class Fn>
constexpr Variants<Fn> three(Fn up_to_3, Fn t4, Fn t5) {
  return {up_to_3, nullptr, up_to_3, up_to_3, t4, t5, nullptr};
}
// a single variant for every type.
template <class Fn>
constexpr Variants<Fn> single(Fn f) {
  return {f, nullptr, f, f, f, f, nullptr};
}
// The vector-math kernels: one variant per type 0 to 6.
template <class Fn>
constexpr Variants<Fn> per_vml_type(Fn t0, Fn t1, Fn t2, Fn t3, Fn t4, Fn t5, Fn t6) {
  return {t0, t1, t2, t3, t4, t5, t6};
}

// A dispatch slot over the code-path type returned by TypeFn.
template <class Fn, int (*TypeFn)() = &cpu::blas_type>
class Slot {
 public:
  constexpr explicit Slot(const Variants<Fn> &variants) : variants_(variants) {}

  // The variant for this process, choosing it on first use.
  Fn get() {
    Fn f = slot_.load(std::memory_order_acquire);
    if (f != nullptr) return f;
    int type = TypeFn();
    // A type outside 0..6 (only a scrambled vector-math override can give one)
    // counts as 0. A type outside the mapping never occurs with the types the
    // detection produces; the type-0 variant then serves without filling the slot.
    if (type < 0 || type > 6) type = 0;
    f = variants_[type];
    if (f == nullptr) return variants_[0];
    slot_.store(f, std::memory_order_release);
    return f;
  }

  template <class... Args>
  auto operator()(Args... args) {
    return get()(args...);
  }

  // For tests: whether the slot has been filled, and emptying it.
  bool filled() const { return slot_.load(std::memory_order_acquire) != nullptr; }
  void reset_for_testing() { slot_.store(nullptr, std::memory_order_release); }

 private:
  std::atomic<Fn> slot_{nullptr};
  Variants<Fn> variants_;
};

}  // namespace orb
