#include "support/placement.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <random>
#include <sstream>

namespace orb::test::placement {

namespace {

constexpr int kPlacements = 16;
constexpr long kGuard = 16;  // elements of buffer on either side of the 16 offsets

long bytes_of(const Array &a) {
  return long{a.real_bytes} * a.reals;
}
// Elements from the first to the last of the array.
long footprint(const Array &a) {
  return a.cols <= 0 || a.rows <= 0 ? 0 : (a.cols - 1) * a.ld + a.rows;
}
bool inside(const Array &a, long e) {
  return e % a.ld < a.rows;
}

// The array's contents as the call sees them, laid out over its footprint
// (what lies between the columns is filled per placement).
std::vector<unsigned char> contents(const Array &a, std::mt19937 &rng) {
  const long eb = bytes_of(a), n = footprint(a);
  std::vector<unsigned char> out(static_cast<std::size_t>(n * eb));
  if (a.fill == Fill::kIndex) {
    std::vector<int> all(static_cast<std::size_t>(a.range));
    std::iota(all.begin(), all.end(), 1);
    std::shuffle(all.begin(), all.end(), rng);
    for (long e = 0, k = 0; e < n; ++e)
      if (inside(a, e)) std::memcpy(&out[e * eb], &all[k++], sizeof(int));
    return out;
  }
  std::uniform_real_distribution<double> d(-1, 1);
  for (long e = 0; e < n; ++e) {
    if (!inside(a, e)) continue;
    const bool diagonal = a.fill == Fill::kDominant && e % a.ld == e / a.ld;
    for (int r = 0; r < a.reals; ++r) {
      double v = d(rng);
      if (diagonal && r == 0) v += static_cast<double>(a.rows + 1);
      unsigned char *p = &out[e * eb + r * a.real_bytes];
      if (a.real_bytes == 4) {
        const float f = static_cast<float>(v);
        std::memcpy(p, &f, 4);
      } else {
        std::memcpy(p, &v, 8);
      }
    }
  }
  return out;
}

// One array placed `offset` elements into a buffer of its own: the contents
// inside, `junk` everywhere else.
struct Placed {
  std::vector<unsigned char> storage;
  unsigned char *buffer = nullptr;  // 64-byte aligned
  long size = 0;                    // bytes of the buffer
  unsigned char *array = nullptr;
  unsigned char junk;

  Placed(const Array &a, const std::vector<unsigned char> &data, long offset, unsigned char fill)
      : junk(fill) {
    const long eb = bytes_of(a);
    size = (2 * kGuard + kPlacements + footprint(a)) * eb;
    storage.assign(static_cast<std::size_t>(size + 64), junk);
    const auto addr = reinterpret_cast<std::uintptr_t>(storage.data());
    buffer = storage.data() + (64 - addr % 64) % 64;
    array = buffer + (kGuard + offset) * eb;
    for (long e = 0; e < footprint(a); ++e)
      if (inside(a, e)) std::memcpy(array + e * eb, &data[e * eb], eb);
  }
};

std::string describe(const Array &a, long e) {
  std::ostringstream s;
  if (a.rows == 1)
    s << "element " << e / a.ld;
  else
    s << "element (" << e % a.ld << ", " << e / a.ld << ")";
  return s.str();
}

// Where one run breaks the rules, or "" when it keeps them: array k's bytes
// differ from the reference (written elements) or from what was placed
// (everything else).
std::string compare(const std::vector<Array> &arrays, const std::vector<Placed> &placed,
                    const std::vector<std::vector<unsigned char>> &data,
                    const std::vector<std::vector<unsigned char>> *reference,
                    std::vector<std::vector<unsigned char>> *written) {
  for (std::size_t k = 0; k < arrays.size(); ++k) {
    const Array &a = arrays[k];
    const Placed &p = placed[k];
    const long eb = bytes_of(a), first = p.array - p.buffer;
    std::vector<unsigned char> out;
    for (long b = 0; b < p.size; ++b) {
      const long e = b < first ? -1 : (b - first) / eb;
      const bool element = e >= 0 && e < footprint(a) && inside(a, e);
      if (element && a.written) {
        out.push_back(p.buffer[b]);
        continue;
      }
      const unsigned char placed_byte =
          element ? data[k][static_cast<std::size_t>(b - first)] : p.junk;
      if (p.buffer[b] != placed_byte) {
        std::ostringstream s;
        s << "array " << k + 1 << " written outside its output ("
          << (element     ? describe(a, e)
              : b < first ? "before the array"
                          : "padding or after")
          << ")";
        return s.str();
      }
    }
    if (reference && out != (*reference)[k]) {
      const auto at = std::mismatch(out.begin(), out.end(), (*reference)[k].begin()).first;
      // The mismatch counts elements inside the array; find its place.
      long target = static_cast<long>(at - out.begin()) / eb, e = 0;
      for (;; ++e)
        if (inside(a, e) && target-- == 0) break;
      return "array " + std::to_string(k + 1) + " " + describe(a, e) + " differs";
    }
    if (written) written->push_back(std::move(out));
  }
  return "";
}

}  // namespace

Array indices(long nz, long range) {
  Array a{static_cast<int>(sizeof(int)), 1, 1, nz, 1, false, Fill::kIndex, range};
  return a;
}

std::vector<std::string> check(const std::vector<Case> &cases) {
  std::vector<std::string> failures;
  for (const Case &c : cases) {
    std::mt19937 rng(12345);
    std::vector<std::vector<unsigned char>> data;
    for (const Array &a : c.arrays) data.push_back(contents(a, rng));
    std::vector<std::vector<unsigned char>> reference;
    for (int p = 0; p < kPlacements; ++p) {
      // Array k sits at offset p (2k + 1) mod 16, so the arrays also move
      // against each other; the junk alternates between NaN patterns (0xff)
      // and huge finite values (0x7e).
      const unsigned char junk = p % 2 ? 0x7e : 0xff;
      std::vector<Placed> placed;
      std::vector<void *> ptrs;
      for (std::size_t k = 0; k < c.arrays.size(); ++k) {
        placed.emplace_back(c.arrays[k], data[k], p * (2 * static_cast<long>(k) + 1) % kPlacements,
                            junk);
        ptrs.push_back(placed.back().array);
      }
      c.call(ptrs.data());
      const std::string why = compare(c.arrays, placed, data, p == 0 ? nullptr : &reference,
                                      p == 0 ? &reference : nullptr);
      if (!why.empty()) {
        failures.push_back(c.name + ": " + why + " at placement " + std::to_string(p));
        break;
      }
    }
  }
  return failures;
}

}  // namespace orb::test::placement
