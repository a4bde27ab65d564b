// Threading control: the settings table, the one-time reading of the
// environment, the physical-core count and the seven exported controls.
//
// The settings are plain integers without a lock, written by the application's
// calls (expected from its controlling thread) and by the first query. They are
// relaxed atomics so that racing readers and writers are well defined; racing
// writers write the same values. Only the "environment read" mark orders
// anything: it is set with release after the table has been filled, so a thread
// that sees it set sees what the read stored.
#include "service/threading.h"

#include <omp.h>

#include <atomic>
#include <climits>
#include <cstring>

#include "orb.h"
#include "service/cpu.h"
#include "service/platform/platform.h"

namespace orb::threads {
namespace {

constexpr int kDomains = 4;
constexpr int kUnset = -1;

// The process-wide settings with their values at load. Every member is
// constant-initialised, so the table is valid before any constructor runs.
struct Settings {
  std::atomic<int> threads[kDomains];  // per domain, index 0 all; > 0 means set
  std::atomic<int> dynamic;            // -1 not yet decided, 0 off, 1 on
  std::atomic<int> omp_request;        // from OMP_NUM_THREADS, recorded only
  std::atomic<int> physical_cores;
  std::atomic<int> logical_processors;
  std::atomic<int> environment_unread;
};

Settings g_settings = {{{kUnset}, {kUnset}, {kUnset}, {kUnset}}, {kUnset}, {kUnset}, {1}, {1}, {1}};

constexpr auto kRelaxed = std::memory_order_relaxed;

int load(const std::atomic<int> &a) {
  return a.load(kRelaxed);
}
void store(std::atomic<int> &a, int v) {
  a.store(v, kRelaxed);
}
// Stores `v` only while the setting is still negative: a call made before the
// environment is read wins over the variable.
void store_if_unset(std::atomic<int> &a, int v) {
  int current = load(a);
  while (current < 0 && !a.compare_exchange_weak(current, v, kRelaxed)) {
  }
}

// ---- reading the environment ---------------------------------------------------

constexpr int kEnvBuffer = 256;

bool is_one_of(char c, const char *set) {
  return c != '\0' && std::strchr(set, c) != nullptr;
}

bool all_digits(const char *s, const char *end) {
  for (; s != end; ++s)
    if (*s < '0' || *s > '9') return false;
  return true;
}

// Decimal digits to a number, saturating at INT_MAX.
int decimal(const char *s, const char *end) {
  long long v = 0;
  for (; s != end; ++s) {
    v = v * 10 + (*s - '0');
    if (v > INT_MAX) return INT_MAX;
  }
  return static_cast<int>(v);
}

// A thread count as ORB_NUM_THREADS and OMP_NUM_THREADS give it: digits only
// are converted (the empty text gives 0), any other character gives 1.
int count_of(const char *text) {
  const char *end = text + std::strlen(text);
  return all_digits(text, end) ? decimal(text, end) : 1;
}

// Reads variable `name` into `buf`; false when it is absent. A value too long
// for the buffer reads as the empty text.
bool read_variable(const char *name, char (&buf)[kEnvBuffer]) {
  return platform::env_get(name, buf, kEnvBuffer) >= 0;
}

int domain_of_keyword(const char *s, std::size_t n) {
  static const char *const kKeywords[kDomains] = {"ORB_ALL", "ORB_BLAS", "ORB_FFT", "ORB_VML"};
  for (int d = 0; d < kDomains; ++d)
    if (std::strlen(kKeywords[d]) == n && std::memcmp(kKeywords[d], s, n) == 0) return d;
  return -1;
}

// ORB_DOMAIN_NUM_THREADS: pairs such as ORB_ALL=2, ORB_BLAS=4.
void read_domain_pairs(const char *s) {
  constexpr char kSeparators[] = " ,;:\"'";
  for (;;) {
    while (is_one_of(*s, kSeparators)) ++s;
    if (*s == '\0') return;
    const char *keyword = s;
    while (*s != '\0' && !is_one_of(*s, "=\"' ")) ++s;
    const std::size_t keyword_length = static_cast<std::size_t>(s - keyword);
    while (*s == ' ' || *s == '=') ++s;
    const char *value = s;
    while (*s != '\0' && !is_one_of(*s, kSeparators)) ++s;
    // An empty value, or one with any other character than a digit, counts 1.
    const int n = value != s && all_digits(value, s) ? decimal(value, s) : 1;
    const int domain = domain_of_keyword(keyword, keyword_length);
    if (domain >= 0 && n >= 1) store_if_unset(g_settings.threads[domain], n);
  }
}

// ORB_DYNAMIC: on unless its first token (after blanks and quotes, up to the
// next blank or quote) is "false" or "FALSE".
int dynamic_from(const char *s) {
  while (*s == ' ' || *s == '"' || *s == '\'') ++s;
  const char *end = s;
  while (*end != '\0' && !is_one_of(*end, " \"'")) ++end;
  const std::size_t n = static_cast<std::size_t>(end - s);
  const bool off = n == 5 && (std::memcmp(s, "false", 5) == 0 || std::memcmp(s, "FALSE", 5) == 0);
  return off ? 0 : 1;
}

void count_physical_cores();

void read_environment() {
  char buf[kEnvBuffer];
  if (read_variable("ORB_NUM_THREADS", buf)) {
    const int n = count_of(buf);
    if (n >= 1) store_if_unset(g_settings.threads[kDomainAll], n);
  }
  if (read_variable("ORB_DOMAIN_NUM_THREADS", buf)) read_domain_pairs(buf);
  if (load(g_settings.dynamic) == kUnset) {
    const int flag = read_variable("ORB_DYNAMIC", buf) ? dynamic_from(buf) : 1;
    // A call of ORB_Set_Dynamic racing with this read keeps its value.
    int expected = kUnset;
    g_settings.dynamic.compare_exchange_strong(expected, flag, kRelaxed);
  }
  // The OpenMP runtime applies OMP_NUM_THREADS to its own maximum; the value
  // is only recorded here.
  if (read_variable("OMP_NUM_THREADS", buf)) {
    const int n = count_of(buf);
    if (n >= 1) store(g_settings.omp_request, n);
  }
  count_physical_cores();
}

// The environment is read once, at the first thread-count or dynamic query.
// Threads that race into the first query each read it and store the same
// values.
void ensure_environment() {
  if (g_settings.environment_unread.load(std::memory_order_acquire) == 0) return;
  read_environment();
  g_settings.environment_unread.store(0, std::memory_order_release);
}

// ---- counting physical cores -----------------------------------------------------

constexpr std::uint32_t kHyperThreadingFlag = 0x10000000;  // leaf 1, EDX bit 28

cpu::Regs leaf(std::uint32_t number, std::uint32_t subleaf = 0) {
  return cpu::cpuid_available() ? cpu::cpuid(number, subleaf) : cpu::Regs{};
}

// The number of bits of n - 1: the width of a field that counts n things.
int width_of(std::uint32_t n) {
  int w = 0;
  for (std::uint32_t v = n > 0 ? n - 1 : 0; v != 0; v >>= 1) ++w;
  return w;
}

// Pins the calling thread to each processor of the machine in turn, reads its
// initial APIC identifier there, and counts the distinct cores. Only a process
// that may run on every processor is counted; any other keeps one core.
void count_physical_cores() {
  store(g_settings.physical_cores, 1);
  std::uint64_t process_mask = 0, system_mask = 0;
  if (!platform::affinity_masks(&process_mask, &system_mask) || process_mask != system_mask) return;

  const detail::TopologyWidths widths = detail::topology_widths();
  std::uint32_t keys[64];
  int processors = 0;
  std::uint64_t previous = 0;
  bool pinned = false;
  for (int bit = 0; bit < 64; ++bit) {
    if ((system_mask >> bit & 1) == 0) continue;
    std::uint64_t before = 0;
    if (!platform::thread_pin(std::uint64_t{1} << bit, &before)) continue;
    if (!pinned) previous = before;  // the thread's own mask, before any pinning
    pinned = true;
    platform::yield();  // let the scheduler move the thread there
    const std::uint32_t apic_id = leaf(1).ebx >> 24;
    keys[processors++] = detail::core_key(apic_id, widths);
  }
  if (pinned) platform::thread_pin(previous, nullptr);
  platform::yield();

  store(g_settings.logical_processors, processors);
  if (processors < 2) return;
  int distinct = 0;
  for (int i = 0; i < processors; ++i) {
    bool seen = false;
    for (int j = 0; j < i && !seen; ++j) seen = keys[j] == keys[i];
    if (!seen) ++distinct;
  }
  store(g_settings.physical_cores, distinct);
}

}  // namespace

namespace detail {

// Hyper-threading is honoured only on QuintaraCore processors; elsewhere every
// logical processor counts as a core.
TopologyWidths topology_widths() {
  const cpu::Regs leaf0 = leaf(0);
  const cpu::Regs leaf1 = leaf(1);
  const bool ht = (leaf1.edx & kHyperThreadingFlag) != 0 && cpu::is_quintara();
  const std::uint32_t logical_per_package = ht ? (leaf1.ebx >> 16) & 0xFF : 1;
  const std::uint32_t cores_per_package = ht && leaf0.eax >= 4 ? (leaf(4, 0).eax >> 26) + 1 : 1;
  TopologyWidths w;
  w.logical_per_package = width_of(logical_per_package);
  w.logical_per_core = width_of(logical_per_package / cores_per_package);
  w.cores_per_package = width_of(cores_per_package);
  return w;
}

std::uint32_t core_key(std::uint32_t apic_id, const TopologyWidths &w) {
  const std::uint32_t package_bits = apic_id & (0xFFu << w.logical_per_package);
  const std::uint32_t core_mask = ((1u << w.cores_per_package) - 1) << w.logical_per_core & 0xFF;
  return package_bits | (apic_id & core_mask);
}

}  // namespace detail

int max_threads(int domain) {
  ensure_environment();
  const int dyn = load(g_settings.dynamic);
  if (dyn != 0 && omp_in_parallel()) return 1;
  if (domain < 0 || domain >= kDomains) domain = kDomainAll;
  int count = domain != kDomainAll ? load(g_settings.threads[domain]) : 0;
  if (count <= 0) count = load(g_settings.threads[kDomainAll]);
  if (count <= 0) count = omp_get_max_threads();
  if (dyn == 0) return count;
  const int cores = load(g_settings.physical_cores);
  return count < cores ? count : cores;
}

int dynamic() {
  ensure_environment();
  return load(g_settings.dynamic);
}

int physical_cores() {
  ensure_environment();
  return load(g_settings.physical_cores);
}

int logical_processors() {
  ensure_environment();
  return load(g_settings.logical_processors);
}

// ---- the OpenMP runtime's block time ---------------------------------------------
//
// Both builds use GCC's OpenMP runtime, libgomp, which has no
// kmp_set_blocktime (its spin time before sleeping is set by GOMP_SPINCOUNT
// and OMP_WAIT_POLICY when it starts), so in both okmp_set_blocktime does
// nothing and returns 0. The entry is still looked up at run time, in the
// runtime we use and nowhere else, so that a build on a runtime that has it
// passes the time on:
//  - Linux: libgomp is the shared libgomp.so.1 the library is linked with; we
//    ask that module for the symbol (another runtime loaded into the process
//    must not be called: it does not run our parallel regions).
//  - Windows: libgomp is linked statically into orb.dll; a weak reference
//    stays null unless the linked-in runtime defines the entry.
// The runtimes that define it declare it as returning nothing, so there is no
// result to pass back; the call returns 0 in every case.

using BlocktimeFn = void (*)(int);

#ifdef _WIN32
extern "C" void kmp_set_blocktime(int) __attribute__((weak));

BlocktimeFn runtime_blocktime() {
  return &kmp_set_blocktime;
}
#else
constexpr char kRuntimeModule[] = "libgomp.so.1";

BlocktimeFn find_blocktime() {
  // The module is already loaded (the library depends on it): this only finds
  // its handle. A handle that yields nothing is given back.
  void *module = platform::module_load_path(kRuntimeModule);
  void *symbol = platform::module_symbol(module, "kmp_set_blocktime");
  if (symbol == nullptr) platform::module_release(module);
  return reinterpret_cast<BlocktimeFn>(symbol);
}

BlocktimeFn runtime_blocktime() {
  static const BlocktimeFn fn = find_blocktime();
  return fn;
}
#endif

}  // namespace orb::threads

namespace th = orb::threads;

extern "C" ORB_API void ORB_Set_Num_Threads(int n) {
  if (n > 0) th::store(th::g_settings.threads[th::kDomainAll], n);
}

extern "C" ORB_API int ORB_Get_Max_Threads(void) {
  return th::max_threads(th::kDomainAll);
}

extern "C" ORB_API int ORB_Set_Dynamic(int flag) {
  th::store(th::g_settings.dynamic, flag != 0 ? 1 : 0);
  return flag;
}

extern "C" ORB_API int ORB_Get_Dynamic(void) {
  return th::dynamic();
}

// Zero is stored too: made before the first query, it keeps the variable from
// setting the domain, which then uses the all-domains count.
extern "C" ORB_API int ORB_Domain_Set_Num_Threads(int n, int domain) {
  if (n < 0 || domain < 0 || domain >= th::kDomains) return 0;
  th::store(th::g_settings.threads[domain], n);
  return 1;
}

extern "C" ORB_API int ORB_Domain_Get_Max_Threads(int domain) {
  return th::max_threads(domain);
}

extern "C" ORB_API int okmp_set_blocktime(int t) {
  if (const th::BlocktimeFn fn = th::runtime_blocktime()) fn(t);
  return 0;
}
