// Lazy per-kernel dispatch. Each processor-dependent kernel has one slot: empty
// at load, filled on the kernel's first call with the variant its mapping
// gives for the kernel set (service/kernel_set.h), and then called through
// directly. Racing first calls store the same pointer, so the slot needs no
// lock. A slot may also hold a pointer to a kernel's data (its tile and
// blocking, or a record of several kernels) rather than a function.
//
//   using DotFn = float (*)(int, const float *, int, const float *, int);
//   Slot<DotFn> sdot_slot{wider(each<DotFn>(dot_generic, dot_sse2, dot_sse3,
//                                           dot_ssse3, dot_sse42), dot_avx2)};
//   float r = sdot_slot(n, x, incx, y, incy);
#pragma once

#include <array>
#include <atomic>
#include <cstddef>

#include "service/cpu.h"
#include "service/kernel_set.h"

namespace orb {

// Variants by key: for the BLAS kernels one per kernel set; an empty entry
// means the key is outside the kernel's mapping.
template <class Fn, std::size_t N = cpu::kKernelSets>
using Variants = std::array<Fn, N>;

// The mappings of the BLAS kernels by processor type, every set of a type
// taking the type's variant:
// one variant each for types 0, 2, 3, 4, 5;
template <class Fn>
constexpr Variants<Fn> each(Fn t0, Fn t2, Fn t3, Fn t4, Fn t5) {
  Variants<Fn> v{};
  for (int s = 0; s < cpu::kKernelSets; ++s) {
    const int type = cpu::type_of(static_cast<cpu::KernelSet>(s));
    v[s] = type == 5 ? t5 : type == 4 ? t4 : type == 3 ? t3 : type == 2 ? t2 : t0;
  }
  return v;
}
// one for 0, 2, 3 and another for 4, 5;
template <class Fn>
constexpr Variants<Fn> split(Fn up_to_3, Fn from_4) {
  return each<Fn>(up_to_3, up_to_3, up_to_3, from_4, from_4);
}
// one for 0, 2, 3, one for 4, one for 5;
template <class Fn>
constexpr Variants<Fn> three(Fn up_to_3, Fn t4, Fn t5) {
  return each<Fn>(up_to_3, up_to_3, up_to_3, t4, t5);
}
// a single variant for every type.
template <class Fn>
constexpr Variants<Fn> single(Fn f) {
  return each<Fn>(f, f, f, f, f);
}

// A mapping with its own variants for the 256-bit path of types 4 and 5,
// which also serve the 512-bit path until that has variants of its own.
template <class Fn>
constexpr Variants<Fn> wider(Variants<Fn> v, Fn avx2_t4, Fn avx2_t5) {
  v[cpu::kSetType4Avx2] = v[cpu::kSetType4Avx512] = avx2_t4;
  v[cpu::kSetType5Avx2] = v[cpu::kSetType5Avx512] = avx2_t5;
  return v;
}
template <class Fn>
constexpr Variants<Fn> wider(const Variants<Fn> &v, Fn avx2) {
  return wider<Fn>(v, avx2, avx2);
}
// A mapping with its own variants for the 512-bit path of types 4 and 5.
template <class Fn>
constexpr Variants<Fn> widest(Variants<Fn> v, Fn avx512_t4, Fn avx512_t5) {
  v[cpu::kSetType4Avx512] = avx512_t4;
  v[cpu::kSetType5Avx512] = avx512_t5;
  return v;
}
template <class Fn>
constexpr Variants<Fn> widest(const Variants<Fn> &v, Fn avx512) {
  return widest<Fn>(v, avx512, avx512);
}
// A mapping with another variant for one kernel set.
template <class Fn>
constexpr Variants<Fn> with(Variants<Fn> v, cpu::KernelSet set, Fn f) {
  v[set] = f;
  return v;
}

// The vector-math kernels: one variant per vector-math type 0 to 6.
constexpr std::size_t kVmlTypes = 7;
template <class Fn>
constexpr Variants<Fn, kVmlTypes> per_vml_type(Fn t0, Fn t1, Fn t2, Fn t3, Fn t4, Fn t5, Fn t6) {
  return {t0, t1, t2, t3, t4, t5, t6};
}

// A dispatch slot over N keys, the key of this process coming from Key: the
// kernel set for the BLAS kernels, cpu::vml_type (N = kVmlTypes) for the
// vector-math ones.
template <class Fn, auto Key = &cpu::kernel_set, std::size_t N = cpu::kKernelSets>
class Slot {
 public:
  constexpr explicit Slot(const Variants<Fn, N> &variants) : variants_(variants) {}

  // The variant for this process, choosing it on first use.
  Fn get() {
    Fn f = slot_.load(std::memory_order_acquire);
    if (f != nullptr) return f;
    int key = static_cast<int>(Key());
    // A key outside 0..N-1 (only a scrambled vector-math override can give
    // one) counts as 0. A key outside the mapping never occurs with the keys
    // the detection produces; the first variant then serves without filling
    // the slot.
    if (key < 0 || key >= static_cast<int>(N)) key = 0;
    f = variants_[key];
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
  Variants<Fn, N> variants_;
};

// A slot of the vector-math kernels.
template <class Fn>
using VmlSlot = Slot<Fn, &cpu::vml_type, kVmlTypes>;

}  // namespace orb
