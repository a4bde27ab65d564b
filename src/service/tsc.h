// The processor's time-stamp counter.
#pragma once

#include <x86intrin.h>

#include <cstdint>

namespace orb {

inline std::uint64_t read_tsc() {
  return static_cast<std::uint64_t>(__rdtsc());
}

}  // namespace orb
