#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "orb.h"
#include "service/memory.h"
#include "support/child.h"

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {

using orb::mem::allocate;
using orb::mem::Buffer;
using orb::mem::release;
namespace hooks = orb::mem::test_hooks;

std::uintptr_t addr(const void *p) {
  return reinterpret_cast<std::uintptr_t>(p);
}

// ---- the allocator-override module (tests/service/fixtures/orbmalloc.c) -------
// Its blocks start 16 bytes past a 64-byte boundary; it refuses requests
// above 1 GiB.

struct Stats {
  long calls[4];  // malloc, calloc, realloc, free
  std::size_t last_size;
  void *last_block;
  void *last_freed;
  long mallocs() const { return calls[0]; }
  long frees() const { return calls[3]; }
};

void *g_module = nullptr;

void *module_symbol(const char *name) {
#ifdef _WIN32
  return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(g_module), name));
#else
  return dlsym(g_module, name);
#endif
}

// Loads the module the way the manager looks for it, and keeps it loaded.
bool load_module() {
#ifdef _WIN32
  char path[MAX_PATH];
  std::string dir(path, GetModuleFileNameA(nullptr, path, MAX_PATH));
  dir.erase(dir.find_last_of("\\/") + 1);
  g_module = LoadLibraryA((dir + "orbmalloc\\orbmalloc.dll").c_str());
#else
  g_module = dlopen("liborbmalloc.so", RTLD_NOW);
#endif
  return g_module != nullptr;
}

Stats stats() {
  Stats s{};
  using Fn = void (*)(long *, std::size_t *, void **, void **);
  reinterpret_cast<Fn>(module_symbol("orbmalloc_stats"))(s.calls, &s.last_size, &s.last_block,
                                                         &s.last_freed);
  return s;
}

// Runs a child that can load the module, with the manager's two variables set
// (null: removed).
orb::test::ChildResult run_with_module(const char *child, const char *fast_mm = nullptr,
                                       const char *mm_disable = nullptr) {
  std::string path = ORB_MALLOC_FIXTURE_DIR;
  if (const char *old = std::getenv("LD_LIBRARY_PATH")) path = path + ":" + old;
  return orb::test::run_child(child, {{"LD_LIBRARY_PATH", path.c_str()},
                                      {"ORB_DISABLE_FAST_MM", fast_mm},
                                      {"ORB_MM_DISABLE", mm_disable}});
}

#define CHILD_CHECK(cond)                                            \
  do {                                                               \
    if (!(cond)) {                                                   \
      std::printf("%s:%d: failed: %s\n", __FILE__, __LINE__, #cond); \
      return 1;                                                      \
    }                                                                \
  } while (0)

// Which allocations reach the system allocator, with what size, and which
// address comes back.
ORB_CHILD(override_module) {
  CHILD_CHECK(load_module());
  void *p = allocate(1024, 64);
  Stats s = stats();
  CHILD_CHECK(s.mallocs() == 2 && s.last_size == 1088);  // the record, then the block
  CHILD_CHECK(p == static_cast<char *>(s.last_block) + 48);
  release(p);
  CHILD_CHECK(allocate(1024, 64) == p && stats().mallocs() == 2 && stats().frees() == 0);
  release(nullptr);  // unfilled slots hold no address either
  CHILD_CHECK(hooks::tracked(p) && stats().frees() == 0);

  void *a2 = allocate(1000, 2);  // no alignment
  s = stats();
  CHILD_CHECK(s.last_size == 1000 && a2 == s.last_block && addr(a2) % 64 == 16);
  void *a3 = allocate(1000, 48);  // 32
  s = stats();
  CHILD_CHECK(s.last_size == 1032 && a3 == static_cast<char *>(s.last_block) + 16);
  void *a4 = allocate(1000, 4);  // the block is already a multiple of 4
  CHILD_CHECK(stats().last_size == 1004 && a4 == stats().last_block);

  // Above 40 MiB and negative sizes: plain blocks, no alignment.
  void *big = allocate(41943041, 64);
  s = stats();
  CHILD_CHECK(s.last_size == 41943041 && big == s.last_block && addr(big) % 64 == 16);
  release(big);
  CHILD_CHECK(stats().frees() == 1 && stats().last_freed == big);
  CHILD_CHECK(allocate(-1, 64) == nullptr && stats().last_size == 0xffffffffu);

  // Five slots: the sixth live block is untracked and freed on release.
  void *a5 = allocate(1024, 64);
  void *six = allocate(1024, 64);
  s = stats();
  CHILD_CHECK(s.last_size == 1024 && six == s.last_block && hooks::slots_filled() == 5);
  release(six);
  CHILD_CHECK(stats().frees() == 2 && stats().last_freed == six);
  for (void *q : {p, a2, a3, a4, a5}) release(q);
  CHILD_CHECK(stats().frees() == 2);

  // Capacities 1088, 1000, 1032, 1004, 1088, all free. Exact fit first; then
  // the first smaller slot is refilled when nothing is larger; then the first
  // larger one is taken and keeps its capacity.
  CHILD_CHECK(allocate(1024, 64) == p);
  const long mallocs = stats().mallocs();
  void *r = allocate(2000, 64);
  s = stats();
  CHILD_CHECK(s.last_freed == a2 && s.last_size == 2064 && s.mallocs() == mallocs + 1);
  CHILD_CHECK(r == static_cast<char *>(s.last_block) + 48);
  void *r2 = allocate(100, 64);
  CHILD_CHECK(r2 == static_cast<char *>(a3) + 32 && stats().mallocs() == mallocs + 1);
  release(r2);
  CHILD_CHECK(allocate(1000, 48) == a3);

  // A refill the system refuses leaves the first smaller free slot (a4's)
  // empty but counted.
  CHILD_CHECK(allocate(1000, 1 << 30) == nullptr);
  s = stats();
  CHILD_CHECK(s.last_freed == a4 && hooks::slots_filled() == 5);
  release(nullptr);
  CHILD_CHECK(stats().frees() == s.frees());

  // Four blocks and the record back; then a fresh record.
  const long frees = stats().frees();
  ORB_FreeBuffers();
  CHILD_CHECK(stats().frees() == frees + 5);
  void *fresh = allocate(1024, 64);
  CHILD_CHECK(hooks::tracked(fresh) && hooks::slots_filled() == 1 &&
              stats().mallocs() == mallocs + 4);  // + the refused one
  return 0;
}

// A module with one of its four variables null is not used at all.
ORB_CHILD(incomplete_module) {
  CHILD_CHECK(load_module());
  *static_cast<void **>(module_symbol("i_free_dll")) = nullptr;
  void *p = allocate(1024, 64);
  CHILD_CHECK(hooks::tracked(p) && addr(p) % 64 == 0);
  release(p);
  ORB_FreeBuffers();
  const Stats s = stats();
  CHILD_CHECK(s.calls[0] + s.calls[1] + s.calls[2] + s.calls[3] == 0);
  return 0;
}

// Released on another thread, a block goes to the system allocator and its slot
// stays in use. (Alignment 0, so the address freed is the block itself; the
// process ends without ORB_FreeBuffers, which would free it again.)
ORB_CHILD(foreign_release) {
  CHILD_CHECK(load_module());
  void *p = allocate(512, 0);
  std::thread([p] { release(p); }).join();
  CHILD_CHECK(stats().frees() == 1 && stats().last_freed == p);
  CHILD_CHECK(hooks::tracked(p));
  allocate(512, 0);
  CHILD_CHECK(hooks::slots_filled() == 2);
  return 0;
}

// Prints what one allocation of 1 KiB aligned to 64 does.
ORB_CHILD(probe) {
  CHILD_CHECK(load_module());
  void *p = allocate(1024, 64);
  const bool tracked = hooks::tracked(p);
  const std::size_t size = stats().last_size;
  release(p);
  const long freed = stats().frees();
  Buffer<float> b(256, 128);
  std::printf("tracked=%d size=%zu freed=%ld aligned=%d\n", tracked, size, freed,
              addr(b.get()) % 128 == 0);
  return 0;
}

TEST(MemoryOverride, ModuleReplacesTheSystemAllocator) {
  for (const char *child : {"override_module", "incomplete_module", "foreign_release"}) {
    const auto r = run_with_module(child);
    EXPECT_EQ(r.exit_code, 0) << child << "\n" << r.out;
  }
}

TEST(MemoryEnvironment, EitherVariableWithAnyValueSwitchesTheCacheOff) {
  const std::string on = "tracked=1 size=1088 freed=0 aligned=1\n";
  const std::string off = "tracked=0 size=1024 freed=1 aligned=1\n";
  const struct {
    const char *fast_mm, *mm_disable;
    bool off;
  } cases[] = {{nullptr, nullptr, false}, {"", "", false},
               {"0", nullptr, true},      {"", "no", true},
               {nullptr, "1", true},      {"a value far longer than sixteen characters", "", true}};
  for (const auto &c : cases) {
    const auto r = run_with_module("probe", c.fast_mm, c.mm_disable);
    EXPECT_EQ(r.exit_code, 0) << r.out;
    EXPECT_EQ(r.out, c.off ? off : on) << (c.fast_mm ? c.fast_mm : "(unset)") << " / "
                                       << (c.mm_disable ? c.mm_disable : "(unset)");
  }
}

// ---- in this process, with the C library's allocator ---------------------------

class Memory : public ::testing::Test {
 protected:
  void SetUp() override {
    if (hooks::disabled()) GTEST_SKIP() << "the environment switches the cache off";
    ORB_FreeBuffers();
  }
};

TEST_F(Memory, SizeLimitsAndAlignment) {
  EXPECT_EQ(allocate(0, 64), nullptr);
  void *big = allocate(41943041, 64);
  ASSERT_NE(big, nullptr);
  EXPECT_FALSE(hooks::tracked(big));
  static_cast<char *>(big)[41943040] = 1;
  release(big);
  void *limit = allocate(0x2800000, 64);  // the largest cached size
  ASSERT_TRUE(hooks::tracked(limit));
  static_cast<char *>(limit)[0x2800000 - 1] = 1;
  release(limit);

  EXPECT_EQ(orb::mem::effective_alignment(3), 0u);
  EXPECT_EQ(orb::mem::effective_alignment(-64), 0u);
  EXPECT_EQ(orb::mem::effective_alignment(4), 4u);
  EXPECT_EQ(orb::mem::effective_alignment(48), 32u);
  EXPECT_EQ(orb::mem::effective_alignment(0x40000000), 0x40000000u);
  // The whole request must lie inside the block (AddressSanitizer checks).
  for (std::int32_t a : {48, 4096, 1 << 20}) {
    void *p = allocate(1000, a);
    EXPECT_EQ(addr(p) % orb::mem::effective_alignment(a), 0u) << a;
    std::memset(p, 0xab, 1000);
    release(p);
  }
}

TEST_F(Memory, FreeSlotsAreReusedByCapacity) {
  void *p = allocate(4096, 128);
  release(p);
  EXPECT_EQ(allocate(4096, 128), p);
  release(p);
  release(p);                    // a second release of a cached block changes nothing
  void *q = allocate(4160, 64);  // 4160 + 64 = 4096 + 128: the same slot
  EXPECT_TRUE(hooks::tracked(q));
  EXPECT_EQ(hooks::slots_filled(), 1);
  release(q);
  // While slots remain, a request without an exact fit gets a new one even
  // though a larger block is free.
  release(allocate(100, 16));
  EXPECT_EQ(hooks::slots_filled(), 2);
}

TEST_F(Memory, BufferIsAlignedEvenWhenTheBlockIsNotCached) {
  float *first;
  {
    Buffer<float> b(1000, 128);
    ASSERT_TRUE(b);
    first = b.get();
    EXPECT_EQ(addr(first) % 128, 0u);
    Buffer<float> c(std::move(b));
    EXPECT_FALSE(b);
    EXPECT_EQ(c.get(), first);
    EXPECT_TRUE(hooks::tracked(first));
  }
  EXPECT_FALSE(hooks::tracked(first));
  std::vector<void *> held;
  for (int i = 0; i < orb::mem::kSlots; ++i) held.push_back(allocate(64, 16));
  {
    Buffer<double> d(1000, 4096);
    ASSERT_TRUE(d);
    EXPECT_FALSE(hooks::tracked(d.get()));
    EXPECT_EQ(addr(d.get()) % 4096, 0u);
    for (int i = 0; i < 1000; ++i) d[i] = i;
  }
  for (void *p : held) release(p);
  EXPECT_FALSE(Buffer<float>(0, 128));
  EXPECT_FALSE(Buffer<double>(std::int64_t{1} << 40, 128));
}

TEST_F(Memory, FreeBuffersForgetsTheCachesOfLiveThreads) {
  std::atomic<int> step{0};
  bool fresh = false;
  std::thread other([&] {
    release(allocate(4096, 128));
    step = 1;
    while (step.load() != 2) std::this_thread::yield();
    void *q = allocate(4096, 128);  // must not touch the record freed meanwhile
    fresh = hooks::tracked(q) && hooks::slots_filled() == 1;
    release(q);
  });
  release(allocate(4096, 128));
  while (step.load() != 1) std::this_thread::yield();
  ORB_FreeBuffers();
  EXPECT_EQ(hooks::slots_filled(), 0);
  step = 2;
  other.join();
  EXPECT_TRUE(fresh);
}

TEST_F(Memory, RecordsForAtMost8193Threads) {
  std::atomic<int> tracked{0};
  auto use = [&] {
    void *p = allocate(64, 16);
    tracked += hooks::tracked(p);
    release(p);
  };
  for (int done = 0; done < orb::mem::kMaxRecords;) {
    std::vector<std::thread> batch;
    for (int i = 0; i < 64 && done < orb::mem::kMaxRecords; ++i, ++done) batch.emplace_back(use);
    for (auto &t : batch) t.join();
  }
  EXPECT_EQ(tracked.load(), orb::mem::kMaxRecords);
  use();  // the main thread is one too many
  EXPECT_EQ(tracked.load(), orb::mem::kMaxRecords);
  ORB_FreeBuffers();
  use();
  EXPECT_EQ(tracked.load(), orb::mem::kMaxRecords + 1);
}

TEST_F(Memory, ManyThreadsAtOnce) {
  constexpr int kThreads = 64, kRounds = 400;
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&failures, t] {
      const std::int32_t sizes[] = {1, 64, 1000, 4096, 65536, 200000};
      const std::int32_t aligns[] = {0, 16, 48, 128, 4096};
      const auto tag = static_cast<unsigned char>(t + 1);
      struct {
        unsigned char *p;
        std::int32_t n;
      } held[7] = {};  // more than the five slots
      std::uint32_t seed = 2654435761u * static_cast<std::uint32_t>(t + 1);
      for (int round = 0; round < kRounds; ++round) {
        seed = seed * 1103515245u + 12345u;
        auto &h = held[(seed >> 8) % 7];
        if (h.p != nullptr) {
          if (h.p[0] != tag || h.p[h.n - 1] != tag) ++failures;
          release(h.p);
          h.p = nullptr;
          continue;
        }
        h.n = sizes[(seed >> 12) % 6];
        const std::int32_t a = aligns[(seed >> 16) % 5];
        h.p = static_cast<unsigned char *>(allocate(h.n, a));
        if (h.p == nullptr) {
          ++failures;
          continue;
        }
        const std::uint32_t ea = orb::mem::effective_alignment(a);
        if (hooks::tracked(h.p) && ea != 0 && addr(h.p) % ea != 0) ++failures;
        h.p[0] = h.p[h.n - 1] = tag;
      }
      for (auto &h : held) release(h.p);
    });
  }
  for (auto &t : threads) t.join();
  EXPECT_EQ(failures.load(), 0);
  ORB_FreeBuffers();
  void *p = allocate(1000, 64);
  EXPECT_TRUE(hooks::tracked(p));
  release(p);
}

}  // namespace
