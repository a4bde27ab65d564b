// Pack and unpack of single-precision vectors: the variants of each routine
// and the wider paths of variant C. Elements move as 32-bit words, never as
// floats, so every bit pattern (a signalling NaN too) arrives unchanged.
#pragma once

#include <cstdint>

namespace orb::vml {

// A 32-bit word that may alias a float.
struct __attribute__((__may_alias__)) Word {
  std::uint32_t bits;
};

// y[i] = a[i * inc] (pack) or y[i * inc] = a[i] (unpack).
using StrideFn = void (*)(int n, const Word *a, int inc, Word *y);
// Mask (pack: by the source index, unpack: by the destination index) or
// index vector (pack: source indices, unpack: destination indices).
using VectorFn = void (*)(int n, const Word *a, const int *v, Word *y);

// One variant of the six routines. A wider path may leave an entry null:
// that routine then has no wider form.
struct PackKernels {
  StrideFn packi;
  VectorFn packm;
  VectorFn packv;
  StrideFn unpacki;
  VectorFn unpackm;
  VectorFn unpackv;
};

// A: plain loops (vector-math types 0-3); B: unrolled, SSE2 on contiguous
// sides (type 4); C: B with the 512-bit compress and expand for the masked
// routines where the processor and the system support AVX-512, chosen on
// its first call (types 5 and 6).
extern const PackKernels kPackA;
extern const PackKernels kPackB;
extern const PackKernels kPackC;

// The wider path of C, where built (null otherwise). Callers check the
// processor first (cpu::avx512_usable).
const PackKernels *pack_avx512();

// The variants the six dispatch slots hold (choosing them if they are still
// empty); for tests.
PackKernels pack_chosen();

}  // namespace orb::vml
