// Small triangular solves on 256-bit vectors with fused multiply-add.
#include <immintrin.h>

#include <complex>

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
inline Vec loadu(const float *p) {
  return _mm256_loadu_ps(p);
}
inline void storeu(float *p, Vec x) {
  _mm256_storeu_ps(p, x);
}
// An 8-by-8 tile: pairs, then quadruples within each 128-bit half, then the
// halves.
inline void transpose(Vec *r) {
  const Vec a0 = _mm256_unpacklo_ps(r[0], r[1]), a1 = _mm256_unpackhi_ps(r[0], r[1]);
  const Vec a2 = _mm256_unpacklo_ps(r[2], r[3]), a3 = _mm256_unpackhi_ps(r[2], r[3]);
  const Vec a4 = _mm256_unpacklo_ps(r[4], r[5]), a5 = _mm256_unpackhi_ps(r[4], r[5]);
  const Vec a6 = _mm256_unpacklo_ps(r[6], r[7]), a7 = _mm256_unpackhi_ps(r[6], r[7]);
  const Vec b0 = _mm256_shuffle_ps(a0, a2, 0x44), b1 = _mm256_shuffle_ps(a0, a2, 0xEE);
  const Vec b2 = _mm256_shuffle_ps(a1, a3, 0x44), b3 = _mm256_shuffle_ps(a1, a3, 0xEE);
  const Vec b4 = _mm256_shuffle_ps(a4, a6, 0x44), b5 = _mm256_shuffle_ps(a4, a6, 0xEE);
  const Vec b6 = _mm256_shuffle_ps(a5, a7, 0x44), b7 = _mm256_shuffle_ps(a5, a7, 0xEE);
  r[0] = _mm256_permute2f128_ps(b0, b4, 0x20);
  r[1] = _mm256_permute2f128_ps(b1, b5, 0x20);
  r[2] = _mm256_permute2f128_ps(b2, b6, 0x20);
  r[3] = _mm256_permute2f128_ps(b3, b7, 0x20);
  r[4] = _mm256_permute2f128_ps(b0, b4, 0x31);
  r[5] = _mm256_permute2f128_ps(b1, b5, 0x31);
  r[6] = _mm256_permute2f128_ps(b2, b6, 0x31);
  r[7] = _mm256_permute2f128_ps(b3, b7, 0x31);
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

void ctrsm_small(int m, int upper, int unit, std::complex<float> alpha,
                 const std::complex<float> *c, std::complex<float> *v) {
  constexpr int ld = kCtrsmOrder, row = 2 * kTrsmLanes;  // floats per vector V_s
  // (re, im) pairs: y c = fmaddsub(y, re c, swap(y) im c).
  auto cmul = [](__m256 y, __m256 re, __m256 im) {
    return _mm256_fmaddsub_ps(y, re, _mm256_mul_ps(_mm256_permute_ps(y, 0xB1), im));
  };
  std::complex<float> inv[kCtrsmOrder];
  if (!unit)
    for (int s = 0; s < m; ++s) inv[s] = std::complex<float>(1) / c[s + s * ld];
  const bool scale = alpha != std::complex<float>(1);
  const __m256 are = set1(alpha.real()), aim = set1(alpha.imag());
  float *f = reinterpret_cast<float *>(v);
  // Two vectors (eight lanes) at a time, every row solved in order.
  for (int q = 0; q < row; q += 2 * kWidth) {
    for (int step = 0; step < m; ++step) {
      const int s = upper ? m - 1 - step : step;
      const int t0 = upper ? s + 1 : 0, t1 = upper ? m : s;
      float *vs = f + s * row + q;
      Vec a0 = load(vs), a1 = load(vs + kWidth);
      if (scale) a0 = cmul(a0, are, aim), a1 = cmul(a1, are, aim);
      for (int t = t0; t < t1; ++t) {
        const std::complex<float> cst = c[s + t * ld];
        const Vec re = set1(cst.real()), im = set1(cst.imag());
        const float *vt = f + t * row + q;
        a0 = _mm256_sub_ps(a0, cmul(load(vt), re, im));
        a1 = _mm256_sub_ps(a1, cmul(load(vt + kWidth), re, im));
      }
      if (!unit) {
        const Vec re = set1(inv[s].real()), im = set1(inv[s].imag());
        a0 = cmul(a0, re, im), a1 = cmul(a1, re, im);
      }
      store(vs, a0), store(vs + kWidth, a1);
    }
  }
}

}  // namespace orb::kernel::avx2
