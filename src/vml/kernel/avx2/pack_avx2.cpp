// The 256-bit path of pack variant C: gathers for the strided and indexed
// packs. The other routines keep variant B.
#include <immintrin.h>

#include <cstdint>
#include <cstdlib>

#include "vml/pack.h"

namespace orb::vml {
namespace {

// Whether every offset i * inc of i < n fits a 32-bit gather index.
bool fits_index(int n, int inc) {
  return std::int64_t{n - 1} * std::llabs(inc) <= INT32_MAX;
}

void packi(int n, const Word *a, int inca, Word *y) {
  const std::int64_t s = inca;
  int i = 0;
  if (fits_index(n, inca)) {
    const auto *base = reinterpret_cast<const int *>(a);
    __m256i idx =
        _mm256_mullo_epi32(_mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7), _mm256_set1_epi32(inca));
    const __m256i step = _mm256_set1_epi32(static_cast<int>(8 * s));
    for (; i + 8 <= n; i += 8) {
      _mm256_storeu_si256(reinterpret_cast<__m256i *>(y + i), _mm256_i32gather_epi32(base, idx, 4));
      idx = _mm256_add_epi32(idx, step);
    }
  }
  for (; i < n; ++i) y[i] = a[i * s];
}

void packv(int n, const Word *a, const int *ia, Word *y) {
  const auto *base = reinterpret_cast<const int *>(a);
  int i = 0;
  for (; i + 8 <= n; i += 8) {
    const __m256i idx = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(ia + i));
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(y + i), _mm256_i32gather_epi32(base, idx, 4));
  }
  for (; i < n; ++i) y[i] = a[ia[i]];
}

}  // namespace

extern const PackKernels kPackAvx2;
const PackKernels kPackAvx2 = {packi, nullptr, packv, nullptr, nullptr, nullptr};

}  // namespace orb::vml
