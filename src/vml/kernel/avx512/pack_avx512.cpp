// The 512-bit path of pack variant C: gathers for the strided and indexed
// packs, compress for the masked pack, expand for the masked unpack. The
// unpacks by stride and by index keep variant B.
#include <immintrin.h>

#include <cstdint>
#include <cstdlib>

#include "vml/pack.h"

namespace orb::vml {
namespace {

// A full gather (the masked form, which leaves no lane undefined).
__m512i gather(__m512i idx, const Word *a) {
  return _mm512_mask_i32gather_epi32(_mm512_setzero_si512(), 0xFFFF, idx, a, 4);
}

bool fits_index(int n, int inc) {
  return std::int64_t{n - 1} * std::llabs(inc) <= INT32_MAX;
}

// The low `count` lanes.
__mmask16 low_lanes(int count) {
  return static_cast<__mmask16>((1u << count) - 1);
}

void packi(int n, const Word *a, int inca, Word *y) {
  const std::int64_t s = inca;
  int i = 0;
  if (fits_index(n, inca)) {
    __m512i idx =
        _mm512_mullo_epi32(_mm512_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15),
                           _mm512_set1_epi32(inca));
    const __m512i step = _mm512_set1_epi32(static_cast<int>(16 * s));
    for (; i + 16 <= n; i += 16) {
      _mm512_storeu_si512(y + i, gather(idx, a));
      idx = _mm512_add_epi32(idx, step);
    }
  }
  for (; i < n; ++i) y[i] = a[i * s];
}

void packv(int n, const Word *a, const int *ia, Word *y) {
  int i = 0;
  for (; i + 16 <= n; i += 16) _mm512_storeu_si512(y + i, gather(_mm512_loadu_si512(ia + i), a));
  for (; i < n; ++i) y[i] = a[ia[i]];
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
const PackKernels kPackAvx512 = {packi, packm, packv, nullptr, unpackm, nullptr};

}  // namespace orb::vml
