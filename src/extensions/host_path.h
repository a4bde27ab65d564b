// The code path of a host routine's call. Every call reads the host processor
// word (service/cpu.h), determining it while it reads 0: from kHostWide the
// widest path, whose vector width the word gives, except for a destination
// not aligned to its 4-byte elements, which takes the plain loop; from
// kHostSse2 the SSE2 path; below it the plain loop. Every path computes the
// same elements: a real routine's plain loop computes in double and rounds
// once on the store, which for one operation is the single-precision result.
#pragma once

#include <cstdint>

#include "orb.h"
#include "service/cpu.h"

namespace orb::host {

enum class Path : unsigned char { kPlain, kSse2, kAvx2, kAvx512 };
inline constexpr int kPaths = 4;

inline Path path_of_word(int word, const void *dst) {
  if (word >= cpu::kHostWide) {
    if (reinterpret_cast<std::uintptr_t>(dst) % 4 != 0) return Path::kPlain;
    if (word >= cpu::kHostWideAvx512) return Path::kAvx512;
    if (word >= cpu::kHostWideAvx2) return Path::kAvx2;
    return Path::kSse2;
  }
  return word >= cpu::kHostSse2 ? Path::kSse2 : Path::kPlain;
}

// The path for a call that writes to dst.
inline Path path_for(const void *dst) {
  int word = cpu::host_word();
  if (word == 0) word = cpu::determine_host_word();
  return path_of_word(word, dst);
}

// A family's kernel tables, one per path, indexed by Path.
template <class Table>
struct PathTables {
  const Table *table[kPaths];
  const Table &operator[](Path p) const { return *table[static_cast<int>(p)]; }
  const Table &for_dst(const void *dst) const { return (*this)[path_for(dst)]; }
};

// A complex array of the exported interface as the float pairs the kernels take.
inline const float *floats(const orb_complex8 *p) {
  return reinterpret_cast<const float *>(p);
}
inline float *floats(orb_complex8 *p) {
  return reinterpret_cast<float *>(p);
}

}  // namespace orb::host
