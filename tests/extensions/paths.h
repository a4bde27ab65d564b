// Shared by the tests of the host routines' code paths: which paths this
// processor can run, operand data, and bitwise comparison.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "extensions/host_path.h"
#include "service/cpu.h"

namespace orb::test::host {

using orb::host::Path;

struct PathCase {
  Path path;
  const char *name;
  const char *needs;  // the instructions it needs, when this processor lacks them
};

// Every path, with the reason it cannot run here (null when it can).
inline std::vector<PathCase> all_paths() {
  return {{Path::kPlain, "plain", nullptr},
          {Path::kSse2, "sse2", nullptr},
          {Path::kAvx2, "avx2", cpu::avx2_fma_usable() ? nullptr : "AVX2"},
          {Path::kAvx512, "avx512",
           cpu::avx512_usable() ? nullptr : "AVX-512F, AVX-512DQ, AVX-512BW and AVX-512VL"}};
}

// n floats: values of both signs over a wide range, zeros of both signs, and
// a few infinities, tiny and huge values.
inline std::vector<float> operand(std::size_t n, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<float> mant(-2.0f, 2.0f);
  std::uniform_int_distribution<int> expo(-20, 20), pick(0, 40);
  std::vector<float> v(n);
  for (float &x : v) {
    switch (pick(gen)) {
      case 0:
        x = 0.0f;
        break;
      case 1:
        x = -0.0f;
        break;
      case 2:
        x = 1e-40f;
        break;
      case 3:
        x = 3e38f;
        break;
      case 4:
        x = -INFINITY;
        break;
      default:
        x = std::ldexp(mant(gen), expo(gen));
    }
  }
  return v;
}

inline bool same_bits(const std::vector<float> &a, const std::vector<float> &b) {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0);
}

// The first index where the bits differ, for messages.
inline std::string first_difference(const std::vector<float> &a, const std::vector<float> &b) {
  for (std::size_t i = 0; i < a.size() && i < b.size(); ++i)
    if (std::memcmp(&a[i], &b[i], sizeof(float)) != 0)
      return "float " + std::to_string(i) + ": " + std::to_string(a[i]) + " vs " +
             std::to_string(b[i]);
  return "sizes differ";
}

// Counts for the element loops: empty, single, every vector-tail length of
// the widest path, and long ones with odd tails.
inline const std::vector<std::size_t> &counts() {
  static const std::vector<std::size_t> n{0, 1, 2, 3, 5, 7, 8, 15, 16, 17, 31, 33, 100, 1001};
  return n;
}

}  // namespace orb::test::host
