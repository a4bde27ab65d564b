// The 512-bit path of pack variant C: compress for the masked pack, expand
// for the masked unpack. The strided and indexed routines keep variant B:
// gathers measured slower than its unrolled loop (stride 2 or 3 and random
// indices, in and out of the first-level cache, on a processor with AVX-512),
// and the contiguous cases are copies bound by memory.
#include <immintrin.h>

#include <cstdint>

#include "vml/pack.h"

namespace orb::vml {
namespace {

// The low `count` lanes.
__mmask16 low_lanes(int count) {
  return static_cast<__mmask16>((1u << count) - 1);
}

void packm(int n, const Word *a, const int *ma, Word *y) {
  std::int64_t k = 0;
  int i = 0;
  for (; i + 16 <= n; i += 16) {
    const __m512i m = _mm512_loadu_si512(ma + i);
    const __mmask16 sel = _mm512_test_epi32_mask(m, m);
    if (sel == 0) continue;
    const int count = __builtin_popcount(sel);
    const __m512i packed = _mm512_maskz_compress_epi32(sel, _mm512_loadu_si512(a + i));
    _mm512_mask_storeu_epi32(y + k, low_lanes(count), packed);
    k += count;
  }
  for (; i < n; ++i)
    if (ma[i] != 0) y[k++] = a[i];
}

void unpackm(int n, const Word *a, const int *my, Word *y) {
  std::int64_t k = 0;
  int i = 0;
  for (; i + 16 <= n; i += 16) {
    const __m512i m = _mm512_loadu_si512(my + i);
    const __mmask16 sel = _mm512_test_epi32_mask(m, m);
    if (sel == 0) continue;
    const int count = __builtin_popcount(sel);
    const __m512i next = _mm512_maskz_loadu_epi32(low_lanes(count), a + k);
    _mm512_mask_storeu_epi32(y + i, sel, _mm512_maskz_expand_epi32(sel, next));
    k += count;
  }
  for (; i < n; ++i)
    if (my[i] != 0) y[i] = a[k++];
}

}  // namespace

extern const PackKernels kPackAvx512;
const PackKernels kPackAvx512 = {nullptr, packm, nullptr, nullptr, unpackm, nullptr};

}  // namespace orb::vml
