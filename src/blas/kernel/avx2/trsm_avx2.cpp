// Small triangular solves on 256-bit vectors with fused multiply-add.
#include <immintrin.h>

#include "blas/kernel/trsm.h"

namespace orb::kernel::avx2 {
namespace {
using Vec = __m256;
constexpr int kWidth = 8;
inline Vec load(const float *p) {
  return _mm256_load_ps(p);
}
inline void store(float *p, Vec x) {
  _mm256_store_ps(p, x);
}
inline Vec set1(float s) {
  return _mm256_set1_ps(s);
}
inline Vec mul(Vec x, Vec y) {
  return _mm256_mul_ps(x, y);
}
inline Vec div(Vec x, Vec y) {
  return _mm256_div_ps(x, y);
}
inline Vec nmadd(Vec acc, Vec c, Vec x) {
  return _mm256_fnmadd_ps(c, x, acc);
}
}  // namespace

#include "blas/kernel/trsm_small.inc"

}  // namespace orb::kernel::avx2
