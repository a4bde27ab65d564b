// Threading control. The environment is read once per process, so every case
// that depends on it or on the order of calls runs in a child process; only the
// topology arithmetic and okmp_set_blocktime are tested in this process.
#include "service/threading.h"

#include <gtest/gtest.h>
#include <omp.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "orb.h"
#include "service/cpu.h"
#include "service/platform/platform.h"
#include "support/child.h"

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#endif

namespace th = orb::threads;
using orb::test::run_child;

namespace {

// "0=4 1=4 2=4 3=4 7=4": the count of each domain, 7 standing for any code
// outside 0 to 3.
std::string counts() {
  char buf[96];
  std::snprintf(buf, sizeof buf, "0=%d 1=%d 2=%d 3=%d 7=%d", ORB_Get_Max_Threads(),
                ORB_Domain_Get_Max_Threads(1), ORB_Domain_Get_Max_Threads(2),
                ORB_Domain_Get_Max_Threads(3), ORB_Domain_Get_Max_Threads(7));
  return buf;
}

// The physical-core count this machine should give: one when the process may
// not run on every processor; otherwise, on a processor whose hyper-threading
// flag is not honoured, one per processor.
int expected_cores() {
  std::uint64_t process = 0, system = 0;
  if (!orb::platform::affinity_masks(&process, &system) || process != system) return 1;
  if (orb::cpu::is_quintara()) return -1;  // depends on the topology; not checked
  int n = 0;
  for (; system != 0; system &= system - 1) ++n;
  return n;
}

struct Env {
  const char *num = nullptr, *domain = nullptr, *dynamic = nullptr, *omp = "3";
};

// Runs child `name` with exactly these variables (null removes one); OpenMP's
// own maximum is 3 unless told otherwise.
std::string child_out(const char *name, const Env &e, const std::string &prefix = "") {
  const auto r = run_child(name,
                           {{"ORB_NUM_THREADS", e.num},
                            {"ORB_DOMAIN_NUM_THREADS", e.domain},
                            {"ORB_DYNAMIC", e.dynamic},
                            {"OMP_NUM_THREADS", e.omp}},
                           prefix);
  EXPECT_EQ(0, r.exit_code) << name;
  return r.out;
}

// The dynamic flag the environment leaves, then the counts with dynamic mode
// off so the settings show through.
ORB_CHILD(env_report) {
  const int dyn = ORB_Get_Dynamic();
  ORB_Set_Dynamic(0);
  std::printf("dyn=%d %s", dyn, counts().c_str());
  return 0;
}

TEST(Threading, EnvironmentVariables) {
  struct Case {
    Env env;
    const char *expected;
  } cases[] = {
      {{"4"}, "dyn=1 0=4 1=4 2=4 3=4 7=4"},
      {{"4x"}, "dyn=1 0=1 1=1 2=1 3=1 7=1"},
      {{"0"}, "dyn=1 0=3 1=3 2=3 3=3 7=3"},  // ignored: OpenMP decides
      {{nullptr, "ORB_ALL=2, ORB_BLAS=4"}, "dyn=1 0=2 1=4 2=2 3=2 7=2"},
      {{nullptr, "ORB_BLAS=x"}, "dyn=1 0=3 1=1 2=3 3=3 7=3"},
      // Quotes and every separator; blanks and '=' between keyword and value.
      {{nullptr, "'ORB_FFT=5';ORB_VML=6:ORB_BLAS = 7,\"ORB_ALL==8\""}, "dyn=1 0=8 1=7 2=5 3=6 7=8"},
      // Keywords are case-sensitive, unknown ones and values below 1 are
      // skipped, the first value of a domain wins, and the count from
      // ORB_NUM_THREADS is not replaced by ORB_ALL. An empty value counts 1.
      {{"5", "orb_all=9 ORB_FOO=6 ORB_ALL=2 ORB_BLAS=0 ORB_BLAS=3 ORB_BLAS=6 ORB_VML"},
       "dyn=1 0=5 1=3 2=5 3=1 7=5"},
      // Only the first token of ORB_DYNAMIC counts, spelt all lower or all upper case.
      {{"2", nullptr, "false"}, "dyn=0 0=2 1=2 2=2 3=2 7=2"},
      {{"2", nullptr, "FALSE"}, "dyn=0 0=2 1=2 2=2 3=2 7=2"},
      {{"2", nullptr, " \"'false' more"}, "dyn=0 0=2 1=2 2=2 3=2 7=2"},
      {{"2", nullptr, "False"}, "dyn=1 0=2 1=2 2=2 3=2 7=2"},
      {{"2", nullptr, "falsehood"}, "dyn=1 0=2 1=2 2=2 3=2 7=2"},
      {{"2", nullptr, ""}, "dyn=1 0=2 1=2 2=2 3=2 7=2"},
  };
  for (const Case &c : cases) {
    auto shown = [](const char *v) { return v ? v : "(none)"; };
    EXPECT_EQ(c.expected, child_out("env_report", c.env))
        << shown(c.env.num) << " / " << shown(c.env.domain) << " / " << shown(c.env.dynamic);
  }
}

// Calls made before the first query take precedence over the variables; calls
// after it overwrite what they gave.
ORB_CHILD(calls_and_environment) {
  ORB_Set_Num_Threads(0);
  ORB_Set_Num_Threads(-3);
  // (n, domain): 0 for domain 1 blocks ORB_BLAS, 8 for domain 3 wins over ORB_VML.
  const int calls[][2] = {{0, 1}, {8, 3}, {-1, 2}, {2, 4}, {2, -1}};
  for (const auto &c : calls) std::printf("%d", ORB_Domain_Set_Num_Threads(c[0], c[1]));
  std::printf(" ");
  const int set5 = ORB_Set_Dynamic(5);
  std::printf("set=%d,%d ", set5, ORB_Set_Dynamic(1));  // wins over ORB_DYNAMIC
  std::printf("dyn=%d ", ORB_Get_Dynamic());
  ORB_Set_Dynamic(0);
  std::printf("%s | ", counts().c_str());
  ORB_Set_Num_Threads(9);
  ORB_Set_Num_Threads(0);
  ORB_Set_Num_Threads(-3);
  ORB_Domain_Set_Num_Threads(2, 1);
  ORB_Domain_Set_Num_Threads(0, 2);  // after the first query: falls back too
  std::printf("%s", counts().c_str());
  return 0;
}

ORB_CHILD(set_before_query) {
  ORB_Set_Num_Threads(7);
  std::printf("%d ", ORB_Get_Max_Threads());
  return 0;
}

ORB_CHILD(zero_before_query) {
  ORB_Domain_Set_Num_Threads(0, 0);  // blocks ORB_NUM_THREADS and ORB_ALL
  ORB_Set_Dynamic(0);
  std::printf("%s", counts().c_str());
  return 0;
}

TEST(Threading, CallsBeforeAndAfterTheFirstQuery) {
  Env e{"4", "ORB_BLAS=5 ORB_FFT=6 ORB_VML=7", "false"};
  EXPECT_EQ("11000 set=5,1 dyn=1 0=4 1=4 2=6 3=8 7=4 | 0=9 1=2 2=9 3=8 7=9",
            child_out("calls_and_environment", e));
  e = Env{"4", nullptr, "false"};
  EXPECT_EQ("7 ", child_out("set_before_query", e));
  e.domain = "ORB_ALL=5 ORB_BLAS=6";
  EXPECT_EQ("0=3 1=6 2=3 3=3 7=3", child_out("zero_before_query", e));
}

// Dynamic mode: at most one thread per physical core, and one thread for a
// caller already inside a parallel region.
ORB_CHILD(dynamic_mode) {
  std::printf("cores=%d on=%d,%d ", th::physical_cores(), ORB_Get_Max_Threads(),
              ORB_Domain_Get_Max_Threads(1));
  for (int dyn : {1, 0}) {
    ORB_Set_Dynamic(dyn);
    int team = 0, inside = 0, inside_blas = 0;
#pragma omp parallel num_threads(2)
#pragma omp master
    {
      team = omp_get_num_threads();
      inside = ORB_Get_Max_Threads();
      inside_blas = th::max_threads(th::kDomainBlas);
    }
    std::printf("team=%d dyn%d=%d,%d ", team, dyn, inside, inside_blas);
  }
  return 0;
}

TEST(Threading, DynamicModeCountsCoresAndRegions) {
  const std::string out = child_out("dynamic_mode", Env{"4"});
  int cores = 0, on = 0, on_blas = 0;
  ASSERT_EQ(3, std::sscanf(out.c_str(), "cores=%d on=%d,%d", &cores, &on, &on_blas)) << out;
  if (expected_cores() > 0) {
    EXPECT_EQ(expected_cores(), cores);
  }
  EXPECT_EQ(cores < 4 ? cores : 4, on);
  EXPECT_EQ(on, on_blas);
  EXPECT_NE(std::string::npos, out.find("team=2 dyn1=1,1 team=2 dyn0=4,4")) << out;
}

// One processor of several: the core count stays 1 and every query in
// dynamic mode gives 1.
ORB_CHILD(restricted) {
#ifdef _WIN32
  // No taskset under wine: the process restricts itself before the first query.
  if (!SetProcessAffinityMask(GetCurrentProcess(), 1)) return 2;
#endif
  std::printf("cores=%d on=%s ", th::physical_cores(), counts().c_str());
  ORB_Set_Dynamic(0);
  std::printf("off=%s", counts().c_str());
  return 0;
}

TEST(Threading, RestrictedProcessCountsOneCore) {
#ifdef _WIN32
  const std::string prefix;
#else
  if (std::system("taskset -c 0 true") != 0) GTEST_SKIP() << "no taskset";
  const std::string prefix = "taskset -c 0";
#endif
  EXPECT_EQ("cores=1 on=0=1 1=1 2=1 3=1 7=1 off=0=4 1=4 2=4 3=4 7=4",
            child_out("restricted", Env{"4"}, prefix));
}

// Several threads make the first query at once: each sees the environment's
// count, never a half-read table.
ORB_CHILD(concurrent_first_query) {
  int got[4] = {};
  std::vector<std::thread> threads;
  for (int &g : got) threads.emplace_back([&g] { g = ORB_Domain_Get_Max_Threads(1); });
  for (auto &t : threads) t.join();
  std::printf("%d %d %d %d", got[0], got[1], got[2], got[3]);
  return 0;
}

TEST(Threading, ConcurrentFirstQueries) {
  // A half-read table would give OpenMP's 3, or fewer.
  EXPECT_EQ("5 5 5 5", child_out("concurrent_first_query", Env{"4", "ORB_BLAS=5", "false"}));
}

// ---- topology arithmetic on recorded processors ---------------------------------

struct Recorded {
  const char *vendor;  // twelve characters
  std::uint32_t max_leaf, leaf1_ebx, leaf1_edx, leaf4_eax;
};
const Recorded *g_recorded = nullptr;

orb::cpu::Regs replay(std::uint32_t leaf, std::uint32_t) {
  orb::cpu::Regs r{};
  const Recorded &p = *g_recorded;
  if (leaf == 0) {
    r.eax = p.max_leaf;
    std::memcpy(&r.ebx, p.vendor, 4);
    std::memcpy(&r.edx, p.vendor + 4, 4);
    std::memcpy(&r.ecx, p.vendor + 8, 4);
  } else if (leaf == 1) {
    r.ebx = p.leaf1_ebx;
    r.edx = p.leaf1_edx;
  } else if (leaf == 4) {  // answered even beyond the highest leaf
    r.eax = p.leaf4_eax;
  }
  return r;
}

// Distinct core keys among the processors with these initial APIC identifiers.
int cores_of(const Recorded &p, std::initializer_list<std::uint32_t> ids) {
  g_recorded = &p;
  orb::cpu::set_cpuid_source(replay, [] { return true; });
  const th::detail::TopologyWidths w = th::detail::topology_widths();
  orb::cpu::set_cpuid_source(nullptr, nullptr);
  std::vector<std::uint32_t> keys;
  for (std::uint32_t id : ids) {
    const std::uint32_t k = th::detail::core_key(id, w);
    bool seen = false;
    for (std::uint32_t s : keys) seen = seen || s == k;
    if (!seen) keys.push_back(k);
  }
  return static_cast<int>(keys.size());
}

TEST(Threading, CoreKeysFromRecordedProcessors) {
  constexpr std::uint32_t kHt = 0x10000000;
  auto lpp = [](std::uint32_t n) { return n << 16; };
  auto cores = [](std::uint32_t n) { return (n - 1) << 26; };
  // 4 cores of 2 threads per package; one package, then two.
  const Recorded q{"QuintaraCore", 4, lpp(8), kHt, cores(4)};
  EXPECT_EQ(4, cores_of(q, {0, 1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(8, cores_of(q, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
  // The same registers from another vendor, or without the flag: every
  // processor is a core of its own.
  EXPECT_EQ(8, cores_of({"UnknownMaker", 4, lpp(8), kHt, cores(4)}, {0, 1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(8, cores_of({"QuintaraCore", 4, lpp(8), 0, cores(4)}, {0, 1, 2, 3, 4, 5, 6, 7}));
  // Leaf 4 beyond the highest leaf: one core per package, its register ignored.
  EXPECT_EQ(2, cores_of({"QuintaraCore", 2, lpp(2), kHt, cores(4)}, {0, 1, 2, 3}));
  // Counts that are not powers of two: 3 cores of 2 threads, packages 8 apart.
  EXPECT_EQ(6, cores_of({"QuintaraCore", 4, lpp(6), kHt, cores(3)},
                        {0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13}));
  // A logical-processor field of 0 is a count of width 0.
  EXPECT_EQ(4, cores_of({"QuintaraCore", 4, lpp(0), kHt, cores(1)}, {0, 1, 2, 3}));
}

// Neither OpenMP runtime we build with (GCC's libgomp, shared on Linux and
// linked into the DLL on Windows) has kmp_set_blocktime: nothing happens.
TEST(Threading, BlocktimeWithoutTheRuntimeEntry) {
  EXPECT_EQ(0, okmp_set_blocktime(200));
  EXPECT_EQ(0, okmp_set_blocktime(0));
}

}  // namespace
