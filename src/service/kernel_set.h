// The kernel set: which BLAS kernels this process runs. It is decided once
// (cpu::kernel_set) from the processor type and, for types 4 and 5, the wider
// vector path the processor and the operating system support and this build
// has kernels for. Every dispatch slot's mapping (service/dispatch.h) goes
// from the kernel set alone to the variant that runs; no kernel looks at the
// processor itself.
#pragma once

namespace orb::cpu {

// The wider vector paths of the type-4 and type-5 kernels.
enum class Wide : unsigned char {
  kNone,
  kAvx2,    // 256-bit vectors with fused multiply-add
  kAvx512,  // 512-bit vectors (its kernels take over from the 256-bit ones as they come)
};

// The kernel sets, numbered as the entries of a dispatch mapping. Type 4
// comes in two narrow sets because the single-precision GEMM blocks larger
// panels only where the processor has SSE4.1; the wider paths, like every
// processor that offers them, have it.
enum KernelSet : int {
  kSetType0,        // portable kernels
  kSetType2,        // SSE2
  kSetType3,        // SSE3
  kSetType4,        // SSSE3, on a processor without SSE4.1
  kSetType4Sse41,   // SSSE3, on a processor with SSE4.1
  kSetType5,        // SSE4.2
  kSetType4Avx2,    // type 4 on the 256-bit path
  kSetType5Avx2,    // type 5 on the 256-bit path
  kSetType4Avx512,  // type 4 on the 512-bit path
  kSetType5Avx512,  // type 5 on the 512-bit path
  kKernelSets
};

// The rule: the set of a processor type (0, 2, 3, 4 or 5; any other value
// counts as 0), whether the processor has SSE4.1, and the widest path that
// both the processor and the build offer.
constexpr KernelSet resolve_kernel_set(int type, bool sse41, Wide wide) {
  switch (type) {
    case 2:
      return kSetType2;
    case 3:
      return kSetType3;
    case 4:
      if (!sse41) return kSetType4;
      return wide == Wide::kAvx512 ? kSetType4Avx512
             : wide == Wide::kAvx2 ? kSetType4Avx2
                                   : kSetType4Sse41;
    case 5:
      return wide == Wide::kAvx512 ? kSetType5Avx512
             : wide == Wide::kAvx2 ? kSetType5Avx2
                                   : kSetType5;
    default:
      return kSetType0;
  }
}

// The processor type a set belongs to.
constexpr int type_of(KernelSet set) {
  constexpr int kTypes[kKernelSets] = {0, 2, 3, 4, 4, 5, 4, 5, 4, 5};
  return set >= 0 && set < kKernelSets ? kTypes[set] : 0;
}

// The kernel set of this process, decided on first use from cpu::blas_type()
// (so ORB_DEBUG_CPU_TYPE chooses it too) and fixed for the process.
KernelSet kernel_set();

}  // namespace orb::cpu
