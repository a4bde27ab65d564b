// Small triangular solves on 128-bit vectors.
#include <emmintrin.h>
#include <xmmintrin.h>

#include "blas/kernel/trsm.h"

namespace orb::kernel::sse2 {
namespace {
using Vec = __m128;
constexpr int kWidth = 4;
inline Vec load(const float *p) {
  return _mm_load_ps(p);
}
inline void store(float *p, Vec x) {
  _mm_store_ps(p, x);
}
inline Vec loadu(const float *p) {
  return _mm_loadu_ps(p);
}
inline void storeu(float *p, Vec x) {
  _mm_storeu_ps(p, x);
}
inline void transpose(Vec *r) {
  _MM_TRANSPOSE4_PS(r[0], r[1], r[2], r[3]);
}
inline Vec set1(float s) {
  return _mm_set1_ps(s);
}
inline Vec mul(Vec x, Vec y) {
  return _mm_mul_ps(x, y);
}
inline Vec div(Vec x, Vec y) {
  return _mm_div_ps(x, y);
}
inline Vec nmadd(Vec acc, Vec c, Vec x) {
  return _mm_sub_ps(acc, _mm_mul_ps(c, x));
}
}  // namespace

#include "blas/kernel/trsm_small.inc"

}  // namespace orb::kernel::sse2
