// Streaming bandwidth of the host routines: ORB (through the shared library)
// against a plain loop compiled for this machine (host_stream_plain.cpp) and
// against memcpy of the same number of bytes moved (read plus written). For
// each routine and count the three sides run in alternating rounds, so a slow
// moment of the machine does not favour one side; each figure is the median
// of the rounds, with the slowest and fastest round beside it.
//
//   host_stream [rounds]
//
// A routine is one row of kRows: its name, the bytes one element moves, and
// the call on each side over the shared operands.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "host_stream.h"
#include "orb.h"

namespace {

constexpr unsigned kMaxN = 10'000'000;

// Operands for every row, sized for the largest count: complex arrays hold
// 2 kMaxN elements (room for stride 2), the mask selects about half.
struct Operands {
  std::vector<orb_complex8> a, b, c;
  std::vector<int> mask;
  orb_complex8 value{0.75f, -1.25f};
  Operands() : a(2 * kMaxN), b(2 * kMaxN), c(2 * kMaxN), mask(kMaxN) {
    std::mt19937 gen(1);
    std::uniform_real_distribution<float> u(0.5f, 2.0f);
    for (auto *v : {&a, &b, &c})
      for (auto &x : *v) x = {u(gen), u(gen)};
    for (int &m : mask) m = static_cast<int>(gen() % 2);
  }
  float *fa() { return &a[0].re; }
  float *fc() { return &c[0].re; }
};

using Call = void (*)(Operands &, unsigned n);

struct Row {
  const char *name;
  double bytes;  // per element, read plus written
  Call orb, plain;
};

namespace plain = orb::bench::plain;

// Real arrays alias the complex ones' storage.
const Row kRows[] = {
    {"AddValue_s", 8, [](Operands &o, unsigned n) { AddValue_s(o.fa(), o.fc(), 1.5f, n); },
     [](Operands &o, unsigned n) { plain::add_value(o.fa(), o.fc(), 1.5f, n); }},
    {"ScaleByValuec_s", 16,
     [](Operands &o, unsigned n) { ScaleByValuec_s(o.a.data(), o.c.data(), &o.value, n); },
     [](Operands &o, unsigned n) { plain::scale_by_value_c(o.a.data(), o.c.data(), &o.value, n); }},
    {"DivVeccc_s", 24,
     [](Operands &o, unsigned n) { DivVeccc_s(o.a.data(), o.b.data(), o.c.data(), n); },
     [](Operands &o, unsigned n) { plain::div_vec_cc(o.a.data(), o.b.data(), o.c.data(), n); }},
    {"vdpackic_s inc 1", 16,
     [](Operands &o, unsigned n) { vdpackic_s(n, o.a.data(), 1, o.c.data()); },
     [](Operands &o, unsigned n) { plain::pack_strided(n, o.a.data(), 1, o.c.data()); }},
    {"vdpackic_s inc 2", 16,
     [](Operands &o, unsigned n) { vdpackic_s(n, o.a.data(), 2, o.c.data()); },
     [](Operands &o, unsigned n) { plain::pack_strided(n, o.a.data(), 2, o.c.data()); }},
    {"vdunpackic_s inc 1", 16,
     [](Operands &o, unsigned n) { vdunpackic_s(n, o.a.data(), o.c.data(), 1); },
     [](Operands &o, unsigned n) { plain::unpack_strided(n, o.a.data(), o.c.data(), 1); }},
    {"vdunpackic_s inc 2", 16,
     [](Operands &o, unsigned n) { vdunpackic_s(n, o.a.data(), o.c.data(), 2); },
     [](Operands &o, unsigned n) { plain::unpack_strided(n, o.a.data(), o.c.data(), 2); }},
    {"CumSum_s", 8, [](Operands &o, unsigned n) { CumSum_s(o.fa(), o.fc(), n); },
     [](Operands &o, unsigned n) { plain::cum_sum(o.fa(), o.fc(), n); }},
    {"vspacki inc 1", 8,
     [](Operands &o, unsigned n) {
       const int m = static_cast<int>(n), inc = 1;
       vspacki(&m, o.fa(), &inc, o.fc());
     },
     [](Operands &o, unsigned n) { plain::pack_strided_real(int(n), o.fa(), 1, o.fc()); }},
    {"vspacki inc 2", 8,
     [](Operands &o, unsigned n) {
       const int m = static_cast<int>(n), inc = 2;
       vspacki(&m, o.fa(), &inc, o.fc());
     },
     [](Operands &o, unsigned n) { plain::pack_strided_real(int(n), o.fa(), 2, o.fc()); }},
    {"vsunpacki inc 2", 8,
     [](Operands &o, unsigned n) {
       const int m = static_cast<int>(n), inc = 2;
       vsunpacki(&m, o.fa(), o.fc(), &inc);
     },
     [](Operands &o, unsigned n) { plain::unpack_strided_real(int(n), o.fa(), o.fc(), 2); }},
    // Source and mask read, about half the elements written.
    {"PackByMask_s", 10,
     [](Operands &o, unsigned n) { PackByMask_s(n, o.fa(), o.fc(), o.mask.data()); },
     [](Operands &o, unsigned n) { plain::pack_by_mask(n, o.fa(), o.fc(), o.mask.data()); }},
};

// The memcpy side: the bytes of the row and count being timed.
std::size_t g_copy_bytes;
void copy_side(Operands &o, unsigned) {
  std::memcpy(o.c.data(), o.a.data(), g_copy_bytes);
}

// Keeps the compiler from dropping the calls.
inline void keep(void *p) {
  asm volatile("" : : "r"(p) : "memory");
}

double seconds_of(Call call, Operands &o, unsigned n, long calls) {
  const auto t0 = std::chrono::steady_clock::now();
  for (long i = 0; i < calls; ++i) {
    call(o, n);
    keep(o.c.data());
  }
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

struct Figure {
  double median, lo, hi;  // GB/s
};

Figure figure_of(std::vector<double> gbs) {
  std::sort(gbs.begin(), gbs.end());
  return {gbs[gbs.size() / 2], gbs.front(), gbs.back()};
}

}  // namespace

int main(int argc, char **argv) {
  const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;
  Operands o;
  std::printf("%-20s %9s %22s %22s %22s %9s %10s\n", "routine", "n", "ORB GB/s [min-max]",
              "plain GB/s [min-max]", "memcpy GB/s [min-max]", "ORB/plain", "ORB/memcpy");
  for (const Row &row : kRows) {
    for (unsigned n = 1000; n <= kMaxN; n *= 10) {
      const double bytes = row.bytes * n;
      // About 100 MB moved per timed round.
      const long calls = std::max(1L, static_cast<long>(1e8 / bytes));
      g_copy_bytes = static_cast<std::size_t>(bytes / 2);
      const Call sides[3] = {row.orb, row.plain, copy_side};
      std::vector<double> gbs[3];
      for (const Call c : sides) seconds_of(c, o, n, 1);  // warm up
      for (int r = 0; r < rounds; ++r)
        for (int s = 0; s < 3; ++s) {
          const int side = (s + r) % 3;  // a different side leads each round
          gbs[side].push_back(bytes * calls / seconds_of(sides[side], o, n, calls) / 1e9);
        }
      const Figure f[3] = {figure_of(gbs[0]), figure_of(gbs[1]), figure_of(gbs[2])};
      char cell[3][40];
      for (int s = 0; s < 3; ++s)
        std::snprintf(cell[s], sizeof cell[s], "%6.2f [%6.2f-%6.2f]", f[s].median, f[s].lo,
                      f[s].hi);
      std::printf("%-20s %9u %22s %22s %22s %9.2f %10.2f\n", row.name, n, cell[0], cell[1], cell[2],
                  f[0].median / f[1].median, f[0].median / f[2].median);
      std::fflush(stdout);
    }
  }
  return 0;
}
