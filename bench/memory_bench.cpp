// Same-size allocate and release on one thread, the pattern of a routine called
// in a loop: the memory manager's cached path against the system allocator
// asked for the same alignment (posix_memalign, or _aligned_malloc on
// Windows) and against plain malloc. Each figure is the median of several
// interleaved rounds, so a slow moment of the machine does not favour one
// side; the ratio column is system time over manager time.
//
//   memory_bench [rounds]
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "service/memory.h"

#ifdef _WIN32
#include <malloc.h>
#endif

namespace {

constexpr std::int32_t kAlignment = 128;

// Keeps the compiler from dropping or merging the calls around `p`.
inline void keep(void *p) {
  asm volatile("" : : "r"(p) : "memory");
}

void manager(std::int32_t n, long calls) {
  for (long i = 0; i < calls; ++i) {
    void *p = orb::mem::allocate(n, kAlignment);
    keep(p);
    orb::mem::release(p);
  }
}

void manager_buffer(std::int32_t n, long calls) {
  for (long i = 0; i < calls; ++i) {
    orb::mem::Buffer<char> b(n, kAlignment);
    keep(b.get());
  }
}

void system_aligned(std::int32_t n, long calls) {
  for (long i = 0; i < calls; ++i) {
#ifdef _WIN32
    void *p = _aligned_malloc(static_cast<std::size_t>(n), kAlignment);
    keep(p);
    _aligned_free(p);
#else
    void *p = nullptr;
    if (posix_memalign(&p, kAlignment, static_cast<std::size_t>(n)) != 0) p = nullptr;
    keep(p);
    std::free(p);
#endif
  }
}

void system_plain(std::int32_t n, long calls) {
  for (long i = 0; i < calls; ++i) {
    void *p = std::malloc(static_cast<std::size_t>(n));
    keep(p);
    std::free(p);
  }
}

using Loop = void (*)(std::int32_t, long);

// Nanoseconds per allocate-release pair for one round of about 20 ms.
double round_ns(Loop loop, std::int32_t n, long calls) {
  const auto t0 = std::chrono::steady_clock::now();
  loop(n, calls);
  const auto t1 = std::chrono::steady_clock::now();
  return std::chrono::duration<double, std::nano>(t1 - t0).count() / static_cast<double>(calls);
}

double median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

}  // namespace

int main(int argc, char **argv) {
  const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 9;
  const Loop loops[] = {manager, manager_buffer, system_aligned, system_plain};
  constexpr int kLoops = 4;
#ifdef _WIN32
  const char *aligned_name = "_aligned_malloc";
#else
  const char *aligned_name = "posix_memalign";
#endif
  std::printf(
      "same-size allocate + release on one thread, alignment %d, median of %d rounds (ns)\n",
      kAlignment, rounds);
  std::printf("%10s %9s %9s %15s %9s %12s %12s\n", "bytes", "manager", "Buffer", aligned_name,
              "malloc", "ratio", "ratio");
  std::printf("%10s %9s %9s %15s %9s %12s %12s\n", "", "", "", "", "", "aligned/mgr", "malloc/mgr");
  for (std::int32_t n : {64, 4 << 10, 64 << 10, 1 << 20}) {
    long calls[kLoops];
    for (int j = 0; j < kLoops; ++j) {
      // Size each round to about 20 ms from a short trial.
      const double trial = round_ns(loops[j], n, 20000);
      calls[j] = std::max(1000L, static_cast<long>(2e7 / std::max(trial, 0.1)));
    }
    std::vector<double> t[kLoops];
    for (int r = 0; r < rounds; ++r)
      for (int j = 0; j < kLoops; ++j) t[j].push_back(round_ns(loops[j], n, calls[j]));
    double m[kLoops];
    for (int j = 0; j < kLoops; ++j) m[j] = median(t[j]);
    std::printf("%10d %9.2f %9.2f %15.2f %9.2f %12.1f %12.1f\n", n, m[0], m[1], m[2], m[3],
                m[2] / m[0], m[3] / m[0]);
  }
  return 0;
}
