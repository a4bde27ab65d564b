#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "service/cpu.h"
#include "service/dispatch.h"
#include "service/kernel_set.h"
#include "support/child.h"

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#endif

namespace {

using orb::test::set_env;

using orb::cpu::Regs;

// A recorded processor: what the identification instruction returns for the
// leaves the library asks.
struct FakeCpu {
  bool available = true;
  const char *vendor = "GenuineOther";
  std::uint32_t max_leaf = 4;
  std::uint32_t leaf1_ecx = 0, leaf1_edx = 0;
  Regs leaf2{};
  std::vector<Regs> leaf4;  // by sub-leaf; missing sub-leaves read as zeros
};

const FakeCpu *g_fake = nullptr;

Regs fake_cpuid(std::uint32_t leaf, std::uint32_t sub) {
  const FakeCpu &c = *g_fake;
  Regs r{};
  if (leaf > c.max_leaf) return r;
  switch (leaf) {
    case 0:
      r.eax = c.max_leaf;
      std::memcpy(&r.ebx, c.vendor, 4);
      std::memcpy(&r.edx, c.vendor + 4, 4);
      std::memcpy(&r.ecx, c.vendor + 8, 4);
      break;
    case 1:
      r.ecx = c.leaf1_ecx;
      r.edx = c.leaf1_edx;
      break;
    case 2:
      r = c.leaf2;
      break;
    case 4:
      if (sub < c.leaf4.size()) r = c.leaf4[sub];
      break;
  }
  return r;
}
bool fake_available() {
  return g_fake->available;
}

constexpr std::uint32_t SSE2 = 1u << 26;  // EDX
constexpr std::uint32_t SSE3 = 1u << 0, SSSE3 = 1u << 9, SSE41 = 1u << 19, SSE42 = 1u << 20;

class Detection : public testing::Test {
 protected:
  void use(const FakeCpu &cpu) {
    fake_ = cpu;
    g_fake = &fake_;
    orb::cpu::set_cpuid_source(fake_cpuid, fake_available);
    orb::cpu::reset_for_testing();
  }
  void SetUp() override {
    set_env("ORB_DEBUG_CPU_TYPE", nullptr);
    set_env(orb::cpu::vml_override_name(), nullptr);
  }
  void TearDown() override {
    orb::cpu::set_cpuid_source(nullptr, nullptr);
    orb::cpu::reset_for_testing();
    set_env("ORB_DEBUG_CPU_TYPE", nullptr);
    set_env(orb::cpu::vml_override_name(), nullptr);
  }
  FakeCpu fake_;
};

FakeCpu quintara(std::uint32_t ecx, std::uint32_t edx = SSE2) {
  FakeCpu c;
  c.vendor = "QuintaraCore";
  c.leaf1_ecx = ecx;
  c.leaf1_edx = edx;
  return c;
}
FakeCpu other(std::uint32_t ecx, std::uint32_t edx = SSE2) {
  FakeCpu c = quintara(ecx, edx);
  c.vendor = "OtherVendor!";
  return c;
}

TEST_F(Detection, TypesByExtension) {
  using namespace orb::cpu;
  // The recorded processors have no leaf 7, hence no wider path.
  struct Case {
    FakeCpu cpu;
    int blas, vml;
    KernelSet set;
  } cases[] = {
      {quintara(SSE3 | SSSE3 | SSE41 | SSE42), 5, 6, kSetType5},
      {quintara(SSE3 | SSSE3 | SSE41), 4, 5, kSetType4Sse41},  // SSE4.1 alone does not reach type 5
      {quintara(SSE3 | SSSE3), 4, 4, kSetType4},
      {quintara(SSE3), 3, 3, kSetType3},
      {quintara(0), 2, 2, kSetType2},
      {quintara(0, 0), 0, 0, kSetType0},
      {other(SSE3 | SSSE3 | SSE41 | SSE42), 5, 1, kSetType5},  // another vendor: vector math type 1
      {other(SSE3 | SSSE3 | SSE41), 4, 1, kSetType4Sse41},
      {other(SSE3), 3, 1, kSetType3},
      {other(0, 0), 0, 0, kSetType0},
      {quintara(SSE42, 0), 5, 6, kSetType5},  // no requirement that the lower levels be present
  };
  for (const Case &c : cases) {
    use(c.cpu);
    EXPECT_EQ(blas_type(), c.blas) << c.cpu.vendor << " " << c.cpu.leaf1_ecx;
    EXPECT_EQ(vml_type(), c.vml) << c.cpu.vendor << " " << c.cpu.leaf1_ecx;
    EXPECT_EQ(kernel_set(), c.set) << c.cpu.vendor << " " << c.cpu.leaf1_ecx;
  }
  FakeCpu none = quintara(SSE3 | SSSE3 | SSE41 | SSE42);
  none.available = false;
  use(none);
  EXPECT_EQ(blas_type(), 0);
  EXPECT_EQ(vml_type(), 0);
  EXPECT_EQ(kernel_set(), kSetType0);
}

// Only types 4 and 5 take a wider path, type 4 only with SSE4.1.
TEST(KernelSet, WiderPathsByType) {
  using namespace orb::cpu;
  EXPECT_EQ(resolve_kernel_set(3, true, Wide::kAvx512), kSetType3);
  EXPECT_EQ(resolve_kernel_set(4, false, Wide::kAvx2), kSetType4);
  EXPECT_EQ(resolve_kernel_set(4, true, Wide::kAvx2), kSetType4Avx2);
  EXPECT_EQ(resolve_kernel_set(5, false, Wide::kAvx512), kSetType5Avx512);
}

TEST_F(Detection, TypeIsFixedOnceDetermined) {
  use(quintara(SSE3));
  EXPECT_EQ(orb::cpu::blas_type(), 3);
  fake_.leaf1_ecx = SSE3 | SSSE3 | SSE42;  // the processor "changes": no probe runs again
  set_env("ORB_DEBUG_CPU_TYPE", "2");
  EXPECT_EQ(orb::cpu::blas_type(), 3);
  EXPECT_TRUE(orb::cpu::has_sse42());  // probes themselves do not cache
}

TEST_F(Detection, CpuTypeOverride) {
  struct Case {
    const char *value;
    int type;  // -1: the processor decides (type 3 here)
  } cases[] = {{"1", 0},   {"0", 0},   {"2", 2},   {"5", 5},           {" 4", 4}, {"+4", 4},
               {"4x", 4},  {"00", -1}, {"6", -1},  {"-2", -1},         {"x", -1}, {"", -1},
               {" 0", -1}, {"0 ", -1}, {"-0", -1}, {"99999999999", -1}};
  for (const Case &c : cases) {
    use(quintara(SSE3));
    set_env("ORB_DEBUG_CPU_TYPE", c.value);
    EXPECT_EQ(orb::cpu::blas_type(), c.type < 0 ? 3 : c.type) << '"' << c.value << '"';
  }
  // The override is trusted: type 5 on a processor without SSE4.2.
  use(quintara(0));
  set_env("ORB_DEBUG_CPU_TYPE", "5");
  EXPECT_EQ(orb::cpu::blas_type(), 5);
}

TEST_F(Detection, VectorMathOverride) {
  EXPECT_EQ(std::strlen(orb::cpu::vml_override_name()), 18u);
  struct Case {
    const char *value;
    int type;  // -1: the processor decides (type 3 here)
  } cases[] = {{"0", 0},  {"6", 6},     {"7", 7},  {"8", -1}, {"x", -1},
               {"/", -1}, {"5junk", 5}, {"", -48}, {"!", -15}};
  for (const Case &c : cases) {
    use(quintara(SSE3));
    set_env(orb::cpu::vml_override_name(), c.value);
    EXPECT_EQ(orb::cpu::vml_type(), c.type < -1 || c.type >= 0 ? c.type : 3)
        << '"' << c.value << '"';
  }
}

// Leaf-4 records: cache type in EAX bits 0-4; ways, partitions, line size
// in EBX; sets in ECX (each stored minus one).
Regs cache(std::uint32_t type, std::uint32_t ways, std::uint32_t line, std::uint32_t sets) {
  return Regs{type, ((ways - 1) << 22) | (line - 1), sets - 1, 0};
}

TEST_F(Detection, CacheQuery) {
  FakeCpu c = quintara(SSE3);
  c.leaf4 = {cache(1, 8, 64, 64),       // 32 KiB data
             cache(2, 8, 64, 64),       // instruction cache: skipped
             cache(3, 16, 64, 1024),    // 1 MiB unified
             cache(3, 11, 64, 32768)};  // 22 MiB unified
  use(c);
  orb::cpu::CacheRecord r{};
  orb::cpu::cache_query(&r);
  EXPECT_EQ(r.count, 3u);
  EXPECT_EQ(r.size[0], 32768u);
  EXPECT_EQ(r.size[1], 1048576u);
  EXPECT_EQ(r.size[2], 11u * 64 * 32768);
  EXPECT_EQ(r.size[3], 0u);
  // Later calls copy the stored record.
  fake_.leaf4.clear();
  orb::cpu::CacheRecord again{};
  orb::cpu::cache_query(&again);
  EXPECT_EQ(again.count, 3u);
  EXPECT_EQ(again.size[2], r.size[2]);

  // A zero EBX ends the list; so does type 0; at most four sizes are kept.
  c.leaf4 = {cache(1, 8, 64, 64), Regs{3, 0, 5, 0}, cache(3, 16, 64, 1024)};
  use(c);
  orb::cpu::cache_query(&r);
  EXPECT_EQ(r.count, 1u);
  c.leaf4 = {cache(1, 8, 64, 64), cache(3, 8, 64, 64), cache(3, 8, 64, 64), cache(3, 8, 64, 64),
             cache(3, 8, 64, 128)};
  use(c);
  orb::cpu::cache_query(&r);
  EXPECT_EQ(r.count, 4u);
  EXPECT_EQ(r.size[3], 32768u);

  // A processor without leaf 4.
  c.max_leaf = 2;
  use(c);
  orb::cpu::cache_query(&r);
  EXPECT_EQ(r.count, 0u);
  EXPECT_EQ(r.size[0], 0u);
}

TEST_F(Detection, CacheClassFromDescriptors) {
  struct Case {
    Regs leaf2;
    int cls;
  } cases[] = {
      {Regs{0x00000001, 0, 0, 0}, 0},            // no descriptors
      {Regs{0x003C0001, 0, 0, 0}, 1},            // 256 KiB second level
      {Regs{0x00000001, 0, 0x007D0000, 0}, 2},   // 2 MiB
      {Regs{0x49000001, 0, 0, 0}, 3},            // 4 MiB
      {Regs{0x00000001, 0x80000049u, 0, 0}, 0},  // bit 31: the register holds none
      {Regs{0x00FF0001, 0, 0, 0}, 3},            // look at leaf 4: 8 MiB there
  };
  for (const Case &k : cases) {
    FakeCpu c = quintara(SSE3);
    c.leaf2 = k.leaf2;
    c.leaf4 = {cache(1, 8, 64, 64), cache(3, 16, 64, 8192)};
    use(c);
    EXPECT_EQ(orb::cpu::cache_class(), k.cls) << std::hex << k.leaf2.eax << " " << k.leaf2.ecx;
  }
}

// This machine's own processor: the probes agree with the compiler's view.
TEST(RealProcessor, ProbesAgreeWithTheCompiler) {
  ASSERT_TRUE(orb::cpu::cpuid_available());
  EXPECT_EQ(orb::cpu::has_sse2(), __builtin_cpu_supports("sse2") != 0);
  EXPECT_EQ(orb::cpu::has_sse3(), __builtin_cpu_supports("sse3") != 0);
  EXPECT_EQ(orb::cpu::has_ssse3(), __builtin_cpu_supports("ssse3") != 0);
  EXPECT_EQ(orb::cpu::has_sse41(), __builtin_cpu_supports("sse4.1") != 0);
  EXPECT_EQ(orb::cpu::has_sse42(), __builtin_cpu_supports("sse4.2") != 0);
  orb::cpu::CacheRecord r{};
  orb::cpu::cache_query(&r);
  EXPECT_LE(r.count, 4u);
  // The wider paths need the instructions and the operating system's support,
  // which the compiler's runtime checks too.
  EXPECT_EQ(orb::cpu::avx2_fma_usable(),
            __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"));
  EXPECT_EQ(orb::cpu::avx512_usable(),
            __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl"));
}

ORB_CHILD(print_types) {
  std::printf("%d %d\n", orb::cpu::blas_type(), orb::cpu::vml_type());
  return 0;
}

// The environment is read at the first query of a process.
TEST(RealProcessor, OverridesInAFreshProcess) {
  auto r = orb::test::run_child(
      "print_types", {{"ORB_DEBUG_CPU_TYPE", "2"}, {orb::cpu::vml_override_name(), "4"}});
  EXPECT_EQ(r.exit_code, 0);
  EXPECT_EQ(r.out, "2 4\n");
  r = orb::test::run_child("print_types", {{"ORB_DEBUG_CPU_TYPE", "1"}});
  EXPECT_EQ(r.out.substr(0, 2), "0 ");
}

// ---- dispatch slots ----------------------------------------------------------------

int v0() {
  return 0;
}
int v1() {
  return 1;
}
int v2() {
  return 2;
}
int v3() {
  return 3;
}
int v4() {
  return 4;
}
int v5() {
  return 5;
}
int v6() {
  return 6;
}
using Fn = int (*)();

int g_key = 0;
int test_key() {
  return g_key;
}

TEST(Dispatch, MappingsChooseByKernelSet) {
  using orb::cpu::kSetType4Sse41;
  const orb::Variants<Fn> by_type = orb::each<Fn>(v0, v2, v3, v4, v5);
  struct Case {
    orb::Variants<Fn> variants;
    // By kernel set: types 0, 2, 3, 4, 4 with SSE4.1, 5, then types 4 and 5
    // on the 256-bit and on the 512-bit path.
    int expect[orb::cpu::kKernelSets];
  } cases[] = {
      {by_type, {0, 2, 3, 4, 4, 5, 4, 5, 4, 5}},
      {orb::split<Fn>(v0, v4), {0, 0, 0, 4, 4, 4, 4, 4, 4, 4}},
      {orb::three<Fn>(v0, v4, v5), {0, 0, 0, 4, 4, 5, 4, 5, 4, 5}},
      {orb::single<Fn>(v3), {3, 3, 3, 3, 3, 3, 3, 3, 3, 3}},
      {orb::wider<Fn>(by_type, v6), {0, 2, 3, 4, 4, 5, 6, 6, 6, 6}},
      {orb::wider<Fn>(orb::single<Fn>(v0), v4, v5), {0, 0, 0, 0, 0, 0, 4, 5, 4, 5}},
      {orb::with<Fn>(by_type, kSetType4Sse41, v1), {0, 2, 3, 4, 1, 5, 4, 5, 4, 5}},
  };
  for (const Case &c : cases)
    for (int set = 0; set < orb::cpu::kKernelSets; ++set) {
      orb::Slot<Fn, test_key> slot(c.variants);
      g_key = set;
      EXPECT_EQ(slot(), c.expect[set]) << set;
    }
  orb::Slot<Fn, test_key, orb::kVmlTypes> vml(orb::per_vml_type<Fn>(v0, v1, v2, v3, v4, v5, v6));
  g_key = 1;
  EXPECT_EQ(vml(), 1);
}

TEST(Dispatch, FilledOnFirstCallThenFixed) {
  using namespace orb::cpu;
  orb::Slot<Fn, test_key> slot(orb::each<Fn>(v0, v2, v3, v4, v5));
  EXPECT_FALSE(slot.filled());
  g_key = kSetType4;
  EXPECT_EQ(slot(), 4);
  EXPECT_TRUE(slot.filled());
  g_key = kSetType2;
  EXPECT_EQ(slot(), 4);
  // A key outside the mapping: the first variant serves and the slot stays
  // empty. Keys outside 0..N-1 count as 0.
  orb::Slot<Fn, test_key> gap(orb::with<Fn>(orb::each<Fn>(v0, v2, v3, v4, v5), kSetType3, nullptr));
  g_key = kSetType3;
  EXPECT_EQ(gap(), 0);
  EXPECT_FALSE(gap.filled());
  for (int key : {int{kKernelSets}, -48}) {
    orb::Slot<Fn, test_key> out_of_range(orb::each<Fn>(v0, v2, v3, v4, v5));
    g_key = key;
    EXPECT_EQ(out_of_range(), 0) << key;
    EXPECT_TRUE(out_of_range.filled());
  }
}

TEST(Dispatch, RacingFirstCallsAgree) {
  for (int round = 0; round < 20; ++round) {
    orb::Slot<Fn> slot(orb::each<Fn>(v0, v2, v3, v4, v5));
    std::vector<int> got(8, -1);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) threads.emplace_back([&, i] { got[i] = slot(); });
    for (auto &t : threads) t.join();
    for (int g : got) EXPECT_EQ(g, got[0]);
    EXPECT_EQ(got[0], orb::cpu::blas_type());
  }
}

}  // namespace
