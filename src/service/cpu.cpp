#include "service/cpu.h"

#include <cpuid.h>
#include <x86intrin.h>

#include <atomic>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "service/kernel_set.h"
#include "service/platform/platform.h"

namespace orb::cpu {
namespace {

// ---- the identification instruction ------------------------------------------

Regs native_cpuid(std::uint32_t leaf, std::uint32_t subleaf) {
  Regs r{};
  __cpuid_count(leaf, subleaf, r.eax, r.ebx, r.ecx, r.edx);
  return r;
}

// The instruction exists when bit 21 of the flags register can be toggled.
bool native_cpuid_available() {
  constexpr unsigned kIdFlag = 0x200000;
  auto before = __readeflags();
  __writeeflags(before ^ kIdFlag);
  auto after = __readeflags();
  __writeeflags(before);
  return ((before ^ after) & kIdFlag) != 0;
}

std::atomic<CpuidFn> g_cpuid{&native_cpuid};
std::atomic<AvailableFn> g_available{&native_cpuid_available};

constexpr std::uint32_t kEdxSse2 = 1u << 26;
constexpr std::uint32_t kEcxSse3 = 1u << 0;
constexpr std::uint32_t kEcxSsse3 = 1u << 9;
constexpr std::uint32_t kEcxSse41 = 1u << 19;
constexpr std::uint32_t kEcxSse42 = 1u << 20;

bool leaf1_ecx(std::uint32_t bit) {
  return (cpuid(1).ecx & bit) != 0;
}

// ---- BLAS code-path type -------------------------------------------------------

constexpr int kUndetermined = -1;
constexpr int kNoOverride = -666;
constexpr char kCpuTypeVariable[] = "ORB_DEBUG_CPU_TYPE";

std::atomic<int> g_blas_type{kUndetermined};

// Decimal conversion as the C library's atoi does it: leading white space, an
// optional sign, digits up to the first other character. Saturates instead
// of overflowing.
int to_int(const char *s) {
  char *end = nullptr;
  long v = std::strtol(s, &end, 10);
  if (v > INT_MAX) return INT_MAX;
  if (v < INT_MIN) return INT_MIN;
  return static_cast<int>(v);
}

int blas_override() {
  char buf[32];
  if (platform::env_get(kCpuTypeVariable, buf, sizeof buf) < 0) return kNoOverride;
  const int v = to_int(buf);
  if (v >= 1 && v <= 5) return v == 1 ? 0 : v;
  if (v == 0 && std::strcmp(buf, "0") == 0) return 0;
  return kNoOverride;
}

// SSE4.1 is deliberately not consulted: a processor with SSE4.1 but without
// SSE4.2 takes the SSSE3 kernels.
int detect_blas_type() {
  if (!cpuid_available()) return 0;
  if (has_sse42()) return 5;
  if (has_ssse3()) return 4;
  if (has_sse3()) return 3;
  if (has_sse2()) return 2;
  return 0;
}

// ---- vector-math code-path type -------------------------------------------------

constexpr int kVmlUndetermined = -1;  // all bits set
std::atomic<int> g_vml_type{kVmlUndetermined};

// The override variable's name, kept scrambled: byte i is stored exclusive-or
// (0x2B + 5 i) and unscrambled when it is needed.
constexpr int kVmlNameLength = 18;
constexpr unsigned char scramble_key(int i) {
  return static_cast<unsigned char>(0x2B + 5 * i);
}
struct Scrambled {
  unsigned char bytes[kVmlNameLength];
};
constexpr Scrambled scramble(const char (&name)[kVmlNameLength + 1]) {
  Scrambled s{};
  for (int i = 0; i < kVmlNameLength; ++i)
    s.bytes[i] = static_cast<unsigned char>(static_cast<unsigned char>(name[i]) ^ scramble_key(i));
  return s;
}
constexpr Scrambled kVmlName = scramble("ORB_DEBUG_VML_TYPE");

void unscramble_vml_name(char (&out)[kVmlNameLength + 1]) {
  for (int i = 0; i < kVmlNameLength; ++i)
    out[i] = static_cast<char>(kVmlName.bytes[i] ^ scramble_key(i));
  out[kVmlNameLength] = '\0';
}

int detect_vml_type() {
  if (!cpuid_available()) return 0;
  if (is_quintara()) {
    if (has_sse42()) return 6;
    if (has_sse41()) return 5;
    if (has_ssse3()) return 4;
    if (has_sse3()) return 3;
    if (has_sse2()) return 2;
    return 0;
  }
  return has_sse2() ? 1 : 0;
}

// ---- caches -----------------------------------------------------------------------

std::atomic<bool> g_cache_unqueried{true};
// The stored record: written by whichever first caller finishes, read after
// the flag says it is there.
std::atomic<std::uint32_t> g_cache_words[5];

constexpr int kMaxCaches = 4;
constexpr std::uint32_t kCacheTypeNull = 0;
constexpr std::uint32_t kCacheTypeInstruction = 2;

std::uint32_t highest_leaf() {
  return cpuid_available() ? cpuid(0).eax : 0;
}

CacheRecord query_caches() {
  CacheRecord rec{};
  if (highest_leaf() < 4) return rec;
  for (std::uint32_t sub = 0; sub < 32; ++sub) {
    const Regs r = cpuid(4, sub);
    const std::uint32_t type = r.eax & 0x1F;
    if (type == kCacheTypeNull || r.ebx == 0 || r.ecx == 0) break;
    if (type == kCacheTypeInstruction) continue;
    const std::uint32_t ways = (r.ebx >> 22) & 0x3FF;
    const std::uint32_t partitions = (r.ebx >> 12) & 0x3FF;
    const std::uint32_t line = r.ebx & 0xFFF;
    const std::uint32_t sets = r.ecx;
    // At most four sizes are kept; the count says how many are valid.
    if (rec.count < kMaxCaches)
      rec.size[rec.count++] = (ways + 1) * (partitions + 1) * (line + 1) * (sets + 1);
  }
  return rec;
}

// Second- and third-level cache sizes of the leaf-2 descriptors, in KiB.
struct Descriptor {
  unsigned char code;
  std::uint32_t kib;
};
// clang-format off
constexpr Descriptor kDescriptors[] = {
  {0x21, 256}, {0x22, 512}, {0x23, 1024}, {0x25, 2048}, {0x29, 4096}, {0x39, 128},
  {0x3A, 192}, {0x3B, 128}, {0x3C, 256}, {0x3D, 384}, {0x3E, 512}, {0x41, 128},
  {0x42, 256}, {0x43, 512}, {0x44, 1024}, {0x45, 2048}, {0x46, 4096}, {0x47, 8192},
  {0x48, 3072}, {0x49, 4096}, {0x4A, 6144}, {0x4B, 8192}, {0x4C, 12288}, {0x4D, 16384},
  {0x4E, 6144}, {0x78, 1024}, {0x79, 128}, {0x7A, 256}, {0x7B, 512}, {0x7C, 1024},
  {0x7D, 2048}, {0x7F, 512}, {0x80, 512}, {0x82, 256}, {0x83, 512}, {0x84, 1024},
  {0x85, 2048}, {0x86, 512}, {0x87, 1024}, {0xD0, 512}, {0xD1, 1024}, {0xD2, 2048},
  {0xD6, 1024}, {0xD7, 2048}, {0xD8, 4096}, {0xDC, 1536}, {0xDD, 3072}, {0xDE, 6144},
  {0xE2, 2048}, {0xE3, 4096}, {0xE4, 8192}, {0xEA, 12288}, {0xEB, 18432}, {0xEC, 24576},
};
// clang-format on
constexpr unsigned char kUseLeaf4 = 0xFF;

std::atomic<int> g_cache_class{-1};

int class_of(std::uint64_t bytes) {
  if (bytes == 0) return 0;
  if (bytes < (1u << 20)) return 1;
  if (bytes < (4u << 20)) return 2;
  return 3;
}

int determine_cache_class() {
  if (highest_leaf() < 2) return 0;
  const Regs r = cpuid(2);
  const std::uint32_t regs[4] = {r.eax, r.ebx, r.ecx, r.edx};
  std::uint64_t largest = 0;
  bool use_leaf4 = false;
  for (int i = 0; i < 4; ++i) {
    if (regs[i] & 0x80000000u) continue;          // no descriptors in this register
    for (int b = (i == 0 ? 1 : 0); b < 4; ++b) {  // AL is the iteration count
      const unsigned char code = static_cast<unsigned char>(regs[i] >> (8 * b));
      if (code == kUseLeaf4) use_leaf4 = true;
      for (const Descriptor &d : kDescriptors)
        if (d.code == code && std::uint64_t{d.kib} * 1024 > largest)
          largest = std::uint64_t{d.kib} * 1024;
    }
  }
  if (use_leaf4) {
    CacheRecord rec;
    cache_query(&rec);
    for (std::uint32_t i = 0; i < rec.count; ++i)
      if (rec.size[i] > largest) largest = rec.size[i];
  }
  return class_of(largest);
}

// ---- wider paths --------------------------------------------------------------------

// The extended control register 0: which register states the operating
// system saves on a context switch.
std::uint64_t read_xcr0() {
  std::uint32_t lo, hi;
  __asm__ volatile("xgetbv" : "=a"(lo), "=d"(hi) : "c"(0));
  return (std::uint64_t{hi} << 32) | lo;
}

constexpr std::uint32_t kEcxFma = 1u << 12, kEcxOsxsave = 1u << 27, kEcxAvx = 1u << 28;
constexpr std::uint32_t kEbxAvx2 = 1u << 5;
constexpr std::uint32_t kEbxAvx512 = (1u << 16) | (1u << 17) | (1u << 30) | (1u << 31);
constexpr std::uint64_t kXcr0Ymm = 0x6, kXcr0Zmm = 0xE6;

// -1 undetermined, 0 no, 1 yes.
std::atomic<int> g_avx2{-1}, g_avx512{-1};

bool avx_state(std::uint64_t mask) {
  if (highest_leaf() < 7) return false;
  const std::uint32_t ecx = cpuid(1).ecx;
  if ((ecx & (kEcxOsxsave | kEcxAvx | kEcxFma)) != (kEcxOsxsave | kEcxAvx | kEcxFma)) return false;
  return (read_xcr0() & mask) == mask;
}

bool determine_avx2() {
  return avx_state(kXcr0Ymm) && (cpuid(7, 0).ebx & kEbxAvx2) != 0;
}
bool determine_avx512() {
  return avx_state(kXcr0Zmm) &&
         (cpuid(7, 0).ebx & (kEbxAvx512 | kEbxAvx2)) == (kEbxAvx512 | kEbxAvx2);
}

bool once(std::atomic<int> &flag, bool (*determine)()) {
  int v = flag.load(std::memory_order_relaxed);
  if (v < 0) {
    v = determine() ? 1 : 0;
    flag.store(v, std::memory_order_relaxed);
  }
  return v != 0;
}

// ---- kernel set -------------------------------------------------------------------

std::atomic<int> g_kernel_set{-1};
std::atomic<int> g_host_word{0};

// The widest path with kernels in this build (the build defines
// ORB_KERNELS_<ISA> for each instruction-set folder it compiles) that the
// processor and the system support.
Wide widest_path() {
#if defined(ORB_KERNELS_AVX512)
  if (avx512_usable()) return Wide::kAvx512;
#endif
#if defined(ORB_KERNELS_AVX2)
  if (avx2_fma_usable()) return Wide::kAvx2;
#endif
  return Wide::kNone;
}

KernelSet determine_kernel_set() {
  const int type = blas_type();
  const bool sse41 = type == 4 && has_sse41();
  const Wide wide = type == 5 || sse41 ? widest_path() : Wide::kNone;
  return resolve_kernel_set(type, sse41, wide);
}

}  // namespace

KernelSet kernel_set() {
  int s = g_kernel_set.load(std::memory_order_relaxed);
  if (s < 0) {
    s = determine_kernel_set();
    g_kernel_set.store(s, std::memory_order_relaxed);
  }
  return static_cast<KernelSet>(s);
}

bool avx2_fma_usable() {
  return once(g_avx2, determine_avx2);
}
bool avx512_usable() {
  return once(g_avx512, determine_avx512);
}

Regs cpuid(std::uint32_t leaf, std::uint32_t subleaf) {
  return g_cpuid.load(std::memory_order_relaxed)(leaf, subleaf);
}

bool cpuid_available() {
  return g_available.load(std::memory_order_relaxed)();
}

void set_cpuid_source(CpuidFn fn, AvailableFn available) {
  g_cpuid.store(fn ? fn : &native_cpuid, std::memory_order_relaxed);
  g_available.store(available ? available : &native_cpuid_available, std::memory_order_relaxed);
}

bool is_quintara() {
  const Regs r = cpuid(0);
  char vendor[12];
  std::memcpy(vendor, &r.ebx, 4);
  std::memcpy(vendor + 4, &r.edx, 4);
  std::memcpy(vendor + 8, &r.ecx, 4);
  return std::memcmp(vendor, "QuintaraCore", 12) == 0;
}

bool has_sse2() {
  return (cpuid(1).edx & kEdxSse2) != 0;
}
bool has_sse3() {
  return leaf1_ecx(kEcxSse3);
}
bool has_ssse3() {
  return leaf1_ecx(kEcxSsse3);
}
bool has_sse41() {
  return leaf1_ecx(kEcxSse41);
}
bool has_sse42() {
  return leaf1_ecx(kEcxSse42);
}

int blas_type() {
  int t = g_blas_type.load(std::memory_order_relaxed);
  if (t >= 0) return t;
  const int forced = blas_override();
  const int detected = detect_blas_type();
  t = forced != kNoOverride ? forced : detected;
  g_blas_type.store(t, std::memory_order_relaxed);
  return t;
}

int vml_type() {
  int t = g_vml_type.load(std::memory_order_relaxed);
  if (t != kVmlUndetermined) return t;
  char name[kVmlNameLength + 1];
  unscramble_vml_name(name);
  char buf[32];
  int candidate = kVmlUndetermined;
  if (platform::env_get(name, buf, sizeof buf) >= 0) {
    candidate = static_cast<unsigned char>(buf[0]) - '0';
    if (candidate > 7) candidate = kVmlUndetermined;
  }
  t = candidate != kVmlUndetermined ? candidate : detect_vml_type();
  g_vml_type.store(t, std::memory_order_relaxed);
  return t;
}

const char *vml_override_name() {
  static char name[kVmlNameLength + 1];
  unscramble_vml_name(name);
  return name;
}

void cache_query(CacheRecord *out) {
  if (g_cache_unqueried.load(std::memory_order_acquire)) {
    const CacheRecord rec = query_caches();
    g_cache_words[0].store(rec.count, std::memory_order_relaxed);
    for (int i = 0; i < kMaxCaches; ++i)
      g_cache_words[i + 1].store(rec.size[i], std::memory_order_relaxed);
    g_cache_unqueried.store(false, std::memory_order_release);
  }
  out->count = g_cache_words[0].load(std::memory_order_relaxed);
  for (int i = 0; i < kMaxCaches; ++i)
    out->size[i] = g_cache_words[i + 1].load(std::memory_order_relaxed);
}

int cache_class() {
  int c = g_cache_class.load(std::memory_order_relaxed);
  if (c >= 0) return c;
  c = determine_cache_class();
  g_cache_class.store(c, std::memory_order_relaxed);
  return c;
}

int host_word() {
  return g_host_word.load(std::memory_order_relaxed);
}

int determine_host_word() {
  int w = kHostPlain;
  switch (kernel_set()) {
    case kSetType0:
      break;
    case kSetType2:
    case kSetType3:
      w = kHostSse2;
      break;
    case kSetType4Avx512:
    case kSetType5Avx512:
      w = kHostWideAvx512;
      break;
    case kSetType4Avx2:
    case kSetType5Avx2:
      w = kHostWideAvx2;
      break;
    default:
      w = kHostWide;
      break;
  }
  g_host_word.store(w, std::memory_order_relaxed);
  return w;
}

void reset_for_testing() {
  g_host_word.store(0);
  g_blas_type.store(kUndetermined);
  g_kernel_set.store(-1);
  g_vml_type.store(kVmlUndetermined);
  g_cache_unqueried.store(true);
  g_cache_class.store(-1);
  g_avx2.store(-1);
  g_avx512.store(-1);
}

}  // namespace orb::cpu
