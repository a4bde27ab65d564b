// Processor identification: the probes, the two code-path types, the cache
// query and the SSE4.1 test.
//
// Every probe issues the identification instruction through cpu::cpuid(), and
// the availability test through cpu::cpuid_available(); tests replace both
// with recorded register values (set_cpuid_source) to check the rules for
// processors other than the one they run on.
#pragma once

#include <cstdint>

namespace orb::cpu {

struct Regs {
  std::uint32_t eax, ebx, ecx, edx;
};

// The identification instruction for a leaf and sub-leaf.
Regs cpuid(std::uint32_t leaf, std::uint32_t subleaf = 0);
// Whether the identification instruction exists: bit 21 of the flags
// register can be toggled.
bool cpuid_available();

using CpuidFn = Regs (*)(std::uint32_t leaf, std::uint32_t subleaf);
using AvailableFn = bool (*)();
// Routes both through replacements (null restores the processor's own).
void set_cpuid_source(CpuidFn cpuid, AvailableFn available);

// Probes. Each issues its own identification instruction; none caches.
bool is_quintara();  // vendor string "QuintaraCore"
bool has_sse2();
bool has_sse3();
bool has_ssse3();
bool has_sse41();
bool has_sse42();

// The wider paths of the type-4 and type-5 kernel sets (service/kernel_set.h):
// the processor has the instructions and the operating system saves their
// registers. Each is determined once; the library asks them only when it
// decides the kernel set.
bool avx2_fma_usable();  // AVX2 and FMA, YMM state enabled
bool avx512_usable();    // AVX-512 F, DQ, BW, VL, ZMM and mask state enabled

// The BLAS code-path type: 0, 2, 3, 4 or 5, determined on first use
// (ORB_DEBUG_CPU_TYPE overrides it) and fixed for the process.
int blas_type();
// The vector-math code-path type: 0 to 6 (or a value set by its override),
// determined on first use.
int vml_type();
// The name of the vector-math override variable (it is kept scrambled).
const char *vml_override_name();

// The host routines' processor word: 0 until determined, then a value whose
// range picks a routine's code path: from kHostWide the widest path (whole
// vectors, the width given by the word), from kHostSse2 the second (SSE2
// vectors without alignment peeling), below it the plain loop. It follows
// the kernel set, so ORB_DEBUG_CPU_TYPE chooses it too: type 0 gives the
// plain loop, types 2 and 3 the second path, types 4 and 5 the widest.
constexpr int kHostPlain = 1;
constexpr int kHostSse2 = 512;
constexpr int kHostWide = 2048;     // 128-bit SSE2 vectors
constexpr int kHostWideAvx2 = 4096;    // 256-bit vectors
constexpr int kHostWideAvx512 = 8192;  // 512-bit vectors
// Reads the word as it stands (0 while undetermined).
int host_word();
// Determines the word, stores it and returns it.
int determine_host_word();

// Data and unified caches from leaf 4, in the order the processor lists them.
struct CacheRecord {
  std::uint32_t count;
  std::uint32_t size[4];  // bytes
};
// Fills the record; the first call queries, later calls copy the stored one.
void cache_query(CacheRecord *out);

// The cache class from the leaf-2 descriptors: the size of the largest
// second- or third-level cache they describe, 0 none known, 1 below 1 MiB,
// 2 from 1 MiB to below 4 MiB, 3 from 4 MiB. Determined once.
int cache_class();

// For tests only: forget every determined value (types, kernel set, cache
// record, class, wider paths) so that the next query determines it again from
// the current source.
void reset_for_testing();

}  // namespace orb::cpu
