// Same-size allocate and release on one thread, the pattern of a routine called
// in a loop: the memory manager's cached path against the system allocator.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>

#include "service/memory.h"

#ifdef _WIN32
#include <malloc.h>
#endif

namespace {

constexpr std::int32_t kAlignment = 128;

void manager(benchmark::State &state) {
  const auto n = static_cast<std::int32_t>(state.range(0));
  for (auto _ : state) {
    void *p = orb::mem::allocate(n, kAlignment);
    benchmark::DoNotOptimize(p);
    orb::mem::release(p);
  }
}

void manager_buffer(benchmark::State &state) {
  const auto n = static_cast<std::int64_t>(state.range(0)) / 4;
  for (auto _ : state) {
    orb::mem::Buffer<float> b(n, kAlignment);
    benchmark::DoNotOptimize(b.get());
  }
}

#ifdef _WIN32
void aligned_malloc(benchmark::State &state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    void *p = _aligned_malloc(n, kAlignment);
    benchmark::DoNotOptimize(p);
    _aligned_free(p);
  }
}
#else
void posix_memalign(benchmark::State &state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    void *p = nullptr;
    if (::posix_memalign(&p, kAlignment, n) != 0) p = nullptr;
    benchmark::DoNotOptimize(p);
    std::free(p);
  }
}

void aligned_alloc(benchmark::State &state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    void *p = std::aligned_alloc(kAlignment, n);
    benchmark::DoNotOptimize(p);
    std::free(p);
  }
}
#endif

void malloc_free(benchmark::State &state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    void *p = std::malloc(n);
    benchmark::DoNotOptimize(p);
    std::free(p);
  }
}

void sizes(benchmark::internal::Benchmark *b) {
  for (std::int64_t n : {64, 4 << 10, 64 << 10, 1 << 20}) b->Arg(n);
}

BENCHMARK(manager)->Apply(sizes);
BENCHMARK(manager_buffer)->Apply(sizes);
#ifdef _WIN32
BENCHMARK(aligned_malloc)->Apply(sizes);
#else
BENCHMARK(posix_memalign)->Apply(sizes);
BENCHMARK(aligned_alloc)->Apply(sizes);
#endif
BENCHMARK(malloc_free)->Apply(sizes);

}  // namespace

BENCHMARK_MAIN();
