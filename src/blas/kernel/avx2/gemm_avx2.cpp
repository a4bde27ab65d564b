// GEMM micro-kernels on 256-bit vectors with fused multiply-add (x86-64).
// Each keeps a 12-register accumulator tile; the complex kernels accumulate
// a * re(b) and a * im(b) separately and combine them once at the end. The
// update of C rounds alpha AB and beta C separately and then adds, exactly as
// the driver does for partial tiles, so a result does not depend on where the
// tile boundaries fall.
#include <immintrin.h>

#include <complex>
#include <cstdint>

#include "blas/kernel/gemm.h"

namespace orb::kernel::avx2 {
namespace {

// r = x * s for complex lanes (re, im pairs), s given by its broadcast parts.
inline __m256 cmul(__m256 x, __m256 sr, __m256 si) {
  return _mm256_addsub_ps(_mm256_mul_ps(x, sr), _mm256_mul_ps(_mm256_permute_ps(x, 0xB1), si));
}
inline __m256d cmul(__m256d x, __m256d sr, __m256d si) {
  return _mm256_addsub_pd(_mm256_mul_pd(x, sr), _mm256_mul_pd(_mm256_permute_pd(x, 0x5), si));
}

}  // namespace

void sgemm_ukr_16x6(int k, const float *a, const float *b, float *c, int ldc, float alpha,
                    float beta) {
  __m256 c00 = _mm256_setzero_ps(), c10 = _mm256_setzero_ps();
  __m256 c01 = _mm256_setzero_ps(), c11 = _mm256_setzero_ps();
  __m256 c02 = _mm256_setzero_ps(), c12 = _mm256_setzero_ps();
  __m256 c03 = _mm256_setzero_ps(), c13 = _mm256_setzero_ps();
  __m256 c04 = _mm256_setzero_ps(), c14 = _mm256_setzero_ps();
  __m256 c05 = _mm256_setzero_ps(), c15 = _mm256_setzero_ps();
#pragma GCC unroll 4
  for (int p = 0; p < k; ++p) {
    const __m256 a0 = _mm256_load_ps(a), a1 = _mm256_load_ps(a + 8);
    _mm_prefetch(reinterpret_cast<const char *>(a + 128), _MM_HINT_T0);
    __m256 bj = _mm256_broadcast_ss(b);
    c00 = _mm256_fmadd_ps(a0, bj, c00);
    c10 = _mm256_fmadd_ps(a1, bj, c10);
    bj = _mm256_broadcast_ss(b + 1);
    c01 = _mm256_fmadd_ps(a0, bj, c01);
    c11 = _mm256_fmadd_ps(a1, bj, c11);
    bj = _mm256_broadcast_ss(b + 2);
    c02 = _mm256_fmadd_ps(a0, bj, c02);
    c12 = _mm256_fmadd_ps(a1, bj, c12);
    bj = _mm256_broadcast_ss(b + 3);
    c03 = _mm256_fmadd_ps(a0, bj, c03);
    c13 = _mm256_fmadd_ps(a1, bj, c13);
    bj = _mm256_broadcast_ss(b + 4);
    c04 = _mm256_fmadd_ps(a0, bj, c04);
    c14 = _mm256_fmadd_ps(a1, bj, c14);
    bj = _mm256_broadcast_ss(b + 5);
    c05 = _mm256_fmadd_ps(a0, bj, c05);
    c15 = _mm256_fmadd_ps(a1, bj, c15);
    a += 16;
    b += 6;
  }
  const __m256 va = _mm256_set1_ps(alpha);
  const __m256 acc[6][2] = {{c00, c10}, {c01, c11}, {c02, c12},
                            {c03, c13}, {c04, c14}, {c05, c15}};
  if (beta == 0.0f) {
    for (int j = 0; j < 6; ++j) {
      float *cj = c + std::int64_t{j} * ldc;
      _mm256_storeu_ps(cj, _mm256_mul_ps(va, acc[j][0]));
      _mm256_storeu_ps(cj + 8, _mm256_mul_ps(va, acc[j][1]));
    }
  } else {
    const __m256 vb = _mm256_set1_ps(beta);
    for (int j = 0; j < 6; ++j) {
      float *cj = c + std::int64_t{j} * ldc;
      _mm256_storeu_ps(cj, _mm256_add_ps(_mm256_mul_ps(va, acc[j][0]),
                                         _mm256_mul_ps(vb, _mm256_loadu_ps(cj))));
      _mm256_storeu_ps(cj + 8, _mm256_add_ps(_mm256_mul_ps(va, acc[j][1]),
                                             _mm256_mul_ps(vb, _mm256_loadu_ps(cj + 8))));
    }
  }
}

void dgemm_ukr_8x6(int k, const double *a, const double *b, double *c, int ldc, double alpha,
                   double beta) {
  __m256d acc[6][2];
  for (int j = 0; j < 6; ++j) acc[j][0] = acc[j][1] = _mm256_setzero_pd();
#pragma GCC unroll 4
  for (int p = 0; p < k; ++p) {
    const __m256d a0 = _mm256_load_pd(a), a1 = _mm256_load_pd(a + 4);
    _mm_prefetch(reinterpret_cast<const char *>(a + 64), _MM_HINT_T0);
    for (int j = 0; j < 6; ++j) {
      const __m256d bj = _mm256_broadcast_sd(b + j);
      acc[j][0] = _mm256_fmadd_pd(a0, bj, acc[j][0]);
      acc[j][1] = _mm256_fmadd_pd(a1, bj, acc[j][1]);
    }
    a += 8;
    b += 6;
  }
  const __m256d va = _mm256_set1_pd(alpha), vb = _mm256_set1_pd(beta);
  for (int j = 0; j < 6; ++j) {
    double *cj = c + std::int64_t{j} * ldc;
    for (int v = 0; v < 2; ++v) {
      __m256d r = _mm256_mul_pd(va, acc[j][v]);
      if (beta != 0.0) r = _mm256_add_pd(r, _mm256_mul_pd(vb, _mm256_loadu_pd(cj + 4 * v)));
      _mm256_storeu_pd(cj + 4 * v, r);
    }
  }
}

void cgemm_ukr_8x3(int k, const c8 *a, const c8 *b, c8 *c, int ldc, c8 alpha, c8 beta) {
  // re[j][v] accumulates a * re(b_j), im[j][v] accumulates a * im(b_j).
  __m256 re[3][2], im[3][2];
  for (int j = 0; j < 3; ++j)
    for (int v = 0; v < 2; ++v) re[j][v] = im[j][v] = _mm256_setzero_ps();
  const float *af = reinterpret_cast<const float *>(a);
  const float *bf = reinterpret_cast<const float *>(b);
#pragma GCC unroll 2
  for (int p = 0; p < k; ++p) {
    const __m256 a0 = _mm256_load_ps(af), a1 = _mm256_load_ps(af + 8);
    _mm_prefetch(reinterpret_cast<const char *>(af + 128), _MM_HINT_T0);
    for (int j = 0; j < 3; ++j) {
      const __m256 br = _mm256_broadcast_ss(bf + 2 * j);
      const __m256 bi = _mm256_broadcast_ss(bf + 2 * j + 1);
      re[j][0] = _mm256_fmadd_ps(a0, br, re[j][0]);
      re[j][1] = _mm256_fmadd_ps(a1, br, re[j][1]);
      im[j][0] = _mm256_fmadd_ps(a0, bi, im[j][0]);
      im[j][1] = _mm256_fmadd_ps(a1, bi, im[j][1]);
    }
    af += 16;
    bf += 6;
  }
  const __m256 ar = _mm256_set1_ps(alpha.real()), ai = _mm256_set1_ps(alpha.imag());
  const __m256 br = _mm256_set1_ps(beta.real()), bi = _mm256_set1_ps(beta.imag());
  const bool zero_beta = beta == c8(0.0f);
  for (int j = 0; j < 3; ++j) {
    float *cj = reinterpret_cast<float *>(c + std::int64_t{j} * ldc);
    for (int v = 0; v < 2; ++v) {
      // (x + iy)(u + iv) summed: re = x u - y v, im = y u + x v.
      const __m256 prod = _mm256_addsub_ps(re[j][v], _mm256_permute_ps(im[j][v], 0xB1));
      __m256 r = cmul(prod, ar, ai);
      if (!zero_beta) r = _mm256_add_ps(r, cmul(_mm256_loadu_ps(cj + 8 * v), br, bi));
      _mm256_storeu_ps(cj + 8 * v, r);
    }
  }
}

void zgemm_ukr_4x3(int k, const c16 *a, const c16 *b, c16 *c, int ldc, c16 alpha, c16 beta) {
  __m256d re[3][2], im[3][2];
  for (int j = 0; j < 3; ++j)
    for (int v = 0; v < 2; ++v) re[j][v] = im[j][v] = _mm256_setzero_pd();
  const double *ad = reinterpret_cast<const double *>(a);
  const double *bd = reinterpret_cast<const double *>(b);
#pragma GCC unroll 2
  for (int p = 0; p < k; ++p) {
    const __m256d a0 = _mm256_load_pd(ad), a1 = _mm256_load_pd(ad + 4);
    _mm_prefetch(reinterpret_cast<const char *>(ad + 64), _MM_HINT_T0);
    for (int j = 0; j < 3; ++j) {
      const __m256d br = _mm256_broadcast_sd(bd + 2 * j);
      const __m256d bi = _mm256_broadcast_sd(bd + 2 * j + 1);
      re[j][0] = _mm256_fmadd_pd(a0, br, re[j][0]);
      re[j][1] = _mm256_fmadd_pd(a1, br, re[j][1]);
      im[j][0] = _mm256_fmadd_pd(a0, bi, im[j][0]);
      im[j][1] = _mm256_fmadd_pd(a1, bi, im[j][1]);
    }
    ad += 8;
    bd += 6;
  }
  const __m256d ar = _mm256_set1_pd(alpha.real()), ai = _mm256_set1_pd(alpha.imag());
  const __m256d br = _mm256_set1_pd(beta.real()), bi = _mm256_set1_pd(beta.imag());
  const bool zero_beta = beta == c16(0.0);
  for (int j = 0; j < 3; ++j) {
    double *cj = reinterpret_cast<double *>(c + std::int64_t{j} * ldc);
    for (int v = 0; v < 2; ++v) {
      const __m256d prod = _mm256_addsub_pd(re[j][v], _mm256_permute_pd(im[j][v], 0x5));
      __m256d r = cmul(prod, ar, ai);
      if (!zero_beta) r = _mm256_add_pd(r, cmul(_mm256_loadu_pd(cj + 4 * v), br, bi));
      _mm256_storeu_pd(cj + 4 * v, r);
    }
  }
}

}  // namespace orb::kernel::avx2
