// GEMM micro-kernels on 256-bit vectors with fused multiply-add, for sixteen
// registers or for eight (blas/kernel/registers.h), and the thin kernel.
// With sixteen each micro-kernel keeps a 12-register accumulator tile; the complex kernels
// accumulate a * re(b) and a * im(b) separately and combine them once at the end. The update of C
// rounds alpha AB and beta C separately and then adds, exactly as the driver does for partial
// tiles, so a result does not depend on where the tile boundaries fall.
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

#if !defined(ORB_EIGHT_REGISTERS)

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
  const __m256 acc[6][2] = {{c00, c10}, {c01, c11}, {c02, c12}, {c03, c13}, {c04, c14}, {c05, c15}};
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
      _mm256_storeu_ps(
          cj, _mm256_add_ps(_mm256_mul_ps(va, acc[j][0]), _mm256_mul_ps(vb, _mm256_loadu_ps(cj))));
      _mm256_storeu_ps(cj + 8, _mm256_add_ps(_mm256_mul_ps(va, acc[j][1]),
                                             _mm256_mul_ps(vb, _mm256_loadu_ps(cj + 8))));
    }
  }
}

// The accumulators are named variables, not arrays: GCC keeps arrays of
// vectors on the stack inside the loop.
#define ORB_ZERO12(Z)                                                                       \
  c00 = Z, c10 = Z, c01 = Z, c11 = Z, c02 = Z, c12 = Z, c03 = Z, c13 = Z, c04 = Z, c14 = Z, \
  c05 = Z, c15 = Z

void dgemm_ukr_8x6(int k, const double *a, const double *b, double *c, int ldc, double alpha,
                   double beta) {
  __m256d c00, c10, c01, c11, c02, c12, c03, c13, c04, c14, c05, c15;
  const __m256d zero = _mm256_setzero_pd();
  ORB_ZERO12(zero);
#pragma GCC unroll 4
  for (int p = 0; p < k; ++p) {
    const __m256d a0 = _mm256_load_pd(a), a1 = _mm256_load_pd(a + 4);
    _mm_prefetch(reinterpret_cast<const char *>(a + 64), _MM_HINT_T0);
    __m256d bj = _mm256_broadcast_sd(b);
    c00 = _mm256_fmadd_pd(a0, bj, c00);
    c10 = _mm256_fmadd_pd(a1, bj, c10);
    bj = _mm256_broadcast_sd(b + 1);
    c01 = _mm256_fmadd_pd(a0, bj, c01);
    c11 = _mm256_fmadd_pd(a1, bj, c11);
    bj = _mm256_broadcast_sd(b + 2);
    c02 = _mm256_fmadd_pd(a0, bj, c02);
    c12 = _mm256_fmadd_pd(a1, bj, c12);
    bj = _mm256_broadcast_sd(b + 3);
    c03 = _mm256_fmadd_pd(a0, bj, c03);
    c13 = _mm256_fmadd_pd(a1, bj, c13);
    bj = _mm256_broadcast_sd(b + 4);
    c04 = _mm256_fmadd_pd(a0, bj, c04);
    c14 = _mm256_fmadd_pd(a1, bj, c14);
    bj = _mm256_broadcast_sd(b + 5);
    c05 = _mm256_fmadd_pd(a0, bj, c05);
    c15 = _mm256_fmadd_pd(a1, bj, c15);
    a += 8;
    b += 6;
  }
  const __m256d acc[6][2] = {{c00, c10}, {c01, c11}, {c02, c12},
                             {c03, c13}, {c04, c14}, {c05, c15}};
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

// Complex tiles of two columns: c0j/c1j accumulate a * re(b_j), d0j/d1j
// a * im(b_j); with the two parts of b broadcast that fills the registers
// without spilling.
#define ORB_COMPLEX_STEP(SET1, FMA, j)    \
  {                                       \
    const auto br = SET1(bp + 2 * j);     \
    const auto bi = SET1(bp + 2 * j + 1); \
    c0##j = FMA(a0, br, c0##j);           \
    c1##j = FMA(a1, br, c1##j);           \
    d0##j = FMA(a0, bi, d0##j);           \
    d1##j = FMA(a1, bi, d1##j);           \
  }

void cgemm_ukr_8x2(int k, const c8 *a, const c8 *b, c8 *c, int ldc, c8 alpha, c8 beta) {
  const __m256 z = _mm256_setzero_ps();
  __m256 c00 = z, c10 = z, c01 = z, c11 = z;
  __m256 d00 = z, d10 = z, d01 = z, d11 = z;
  const float *ap = reinterpret_cast<const float *>(a);
  const float *bp = reinterpret_cast<const float *>(b);
#pragma GCC unroll 2
  for (int p = 0; p < k; ++p) {
    const __m256 a0 = _mm256_load_ps(ap), a1 = _mm256_load_ps(ap + 8);
    _mm_prefetch(reinterpret_cast<const char *>(ap + 128), _MM_HINT_T0);
    ORB_COMPLEX_STEP(_mm256_broadcast_ss, _mm256_fmadd_ps, 0)
    ORB_COMPLEX_STEP(_mm256_broadcast_ss, _mm256_fmadd_ps, 1)
    ap += 16;
    bp += 4;
  }
  const __m256 re[2][2] = {{c00, c10}, {c01, c11}};
  const __m256 im[2][2] = {{d00, d10}, {d01, d11}};
  const __m256 ar = _mm256_set1_ps(alpha.real()), ai = _mm256_set1_ps(alpha.imag());
  const __m256 br = _mm256_set1_ps(beta.real()), bi = _mm256_set1_ps(beta.imag());
  const bool zero_beta = beta == c8(0.0f);
  for (int j = 0; j < 2; ++j) {
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

void zgemm_ukr_4x2(int k, const c16 *a, const c16 *b, c16 *c, int ldc, c16 alpha, c16 beta) {
  const __m256d z = _mm256_setzero_pd();
  __m256d c00 = z, c10 = z, c01 = z, c11 = z;
  __m256d d00 = z, d10 = z, d01 = z, d11 = z;
  const double *ap = reinterpret_cast<const double *>(a);
  const double *bp = reinterpret_cast<const double *>(b);
#pragma GCC unroll 2
  for (int p = 0; p < k; ++p) {
    const __m256d a0 = _mm256_load_pd(ap), a1 = _mm256_load_pd(ap + 4);
    _mm_prefetch(reinterpret_cast<const char *>(ap + 64), _MM_HINT_T0);
    ORB_COMPLEX_STEP(_mm256_broadcast_sd, _mm256_fmadd_pd, 0)
    ORB_COMPLEX_STEP(_mm256_broadcast_sd, _mm256_fmadd_pd, 1)
    ap += 8;
    bp += 4;
  }
  const __m256d re[2][2] = {{c00, c10}, {c01, c11}};
  const __m256d im[2][2] = {{d00, d10}, {d01, d11}};
  const __m256d ar = _mm256_set1_pd(alpha.real()), ai = _mm256_set1_pd(alpha.imag());
  const __m256d br = _mm256_set1_pd(beta.real()), bi = _mm256_set1_pd(beta.imag());
  const bool zero_beta = beta == c16(0.0);
  for (int j = 0; j < 2; ++j) {
    double *cj = reinterpret_cast<double *>(c + std::int64_t{j} * ldc);
    for (int v = 0; v < 2; ++v) {
      const __m256d prod = _mm256_addsub_pd(re[j][v], _mm256_permute_pd(im[j][v], 0x5));
      __m256d r = cmul(prod, ar, ai);
      if (!zero_beta) r = _mm256_add_pd(r, cmul(_mm256_loadu_pd(cj + 4 * v), br, bi));
      _mm256_storeu_pd(cj + 4 * v, r);
    }
  }
}

#undef ORB_COMPLEX_STEP
#undef ORB_ZERO12

// The tiles these kernels are written for.
static_assert(sgemm_shape.mr == 16 && sgemm_shape.nr == 6 && dgemm_shape.mr == 8 &&
                  dgemm_shape.nr == 6 && cgemm_shape.mr == 8 && cgemm_shape.nr == 2 &&
                  zgemm_shape.mr == 4 && zgemm_shape.nr == 2,
              "the tiles of the kernels");

#else

// Eight registers: six accumulators, the vector of A and the broadcast
// element of B. The sums and the update are those of the wider tiles.
#define ORB_FOR3(M) M(0) M(1) M(2)
#define ORB_FOR6(M) M(0) M(1) M(2) M(3) M(4) M(5)

// Six columns of one vector: c_j += a0 * b[j] with the vector type's
// broadcast and multiply-add.
#define ORB_REAL_LOOP(V, ZERO, LOAD, BCAST, FMA, LANES)                          \
  V c0 = ZERO(), c1 = c0, c2 = c0, c3 = c0, c4 = c0, c5 = c0;                    \
  _Pragma("GCC unroll 4") for (int p = 0; p < k; ++p) {                          \
    const V a0 = LOAD(a);                                                        \
    _mm_prefetch(reinterpret_cast<const char *>(a + 16 * (LANES)), _MM_HINT_T0); \
    ORB_FOR6(ORB_REAL_STEP)                                                      \
    a += LANES;                                                                  \
    b += 6;                                                                      \
  }
#define ORB_REAL_STEP(j) c##j = FMA(a0, BCAST(b + j), c##j);

void sgemm_ukr_8x6(int k, const float *a, const float *b, float *c, int ldc, float alpha,
                   float beta) {
#define FMA _mm256_fmadd_ps
#define BCAST _mm256_broadcast_ss
  ORB_REAL_LOOP(__m256, _mm256_setzero_ps, _mm256_load_ps, BCAST, FMA, 8)
#undef FMA
#undef BCAST
  const __m256 va = _mm256_set1_ps(alpha), vb = _mm256_set1_ps(beta);
  const bool zero_beta = beta == 0.0f;
#define ORB_UPDATE(j)                                                             \
  {                                                                               \
    float *cj = c + std::int64_t{j} * ldc;                                        \
    __m256 r = _mm256_mul_ps(va, c##j);                                           \
    if (!zero_beta) r = _mm256_add_ps(r, _mm256_mul_ps(vb, _mm256_loadu_ps(cj))); \
    _mm256_storeu_ps(cj, r);                                                      \
  }
  ORB_FOR6(ORB_UPDATE)
#undef ORB_UPDATE
}

void dgemm_ukr_4x6(int k, const double *a, const double *b, double *c, int ldc, double alpha,
                   double beta) {
#define FMA _mm256_fmadd_pd
#define BCAST _mm256_broadcast_sd
  ORB_REAL_LOOP(__m256d, _mm256_setzero_pd, _mm256_load_pd, BCAST, FMA, 4)
#undef FMA
#undef BCAST
  const __m256d va = _mm256_set1_pd(alpha), vb = _mm256_set1_pd(beta);
  const bool zero_beta = beta == 0.0;
#define ORB_UPDATE(j)                                                             \
  {                                                                               \
    double *cj = c + std::int64_t{j} * ldc;                                       \
    __m256d r = _mm256_mul_pd(va, c##j);                                          \
    if (!zero_beta) r = _mm256_add_pd(r, _mm256_mul_pd(vb, _mm256_loadu_pd(cj))); \
    _mm256_storeu_pd(cj, r);                                                      \
  }
  ORB_FOR6(ORB_UPDATE)
#undef ORB_UPDATE
}
#undef ORB_REAL_STEP
#undef ORB_REAL_LOOP

// Complex tiles of three columns: xj accumulates a * re(b_j), uj a * im(b_j).
#define ORB_COMPLEX_LOOP(V, ZERO, LOAD, BCAST, FMA, REALS)                        \
  V x0 = ZERO(), x1 = x0, x2 = x0, u0 = x0, u1 = x0, u2 = x0;                     \
  _Pragma("GCC unroll 2") for (int p = 0; p < k; ++p) {                           \
    const V a0 = LOAD(ap);                                                        \
    _mm_prefetch(reinterpret_cast<const char *>(ap + 16 * (REALS)), _MM_HINT_T0); \
    ORB_FOR3(ORB_COMPLEX_STEP)                                                    \
    ap += REALS;                                                                  \
    bp += 6;                                                                      \
  }
#define ORB_COMPLEX_STEP(j)                \
  x##j = FMA(a0, BCAST(bp + 2 * j), x##j); \
  u##j = FMA(a0, BCAST(bp + 2 * j + 1), u##j);

void cgemm_ukr_4x3(int k, const c8 *a, const c8 *b, c8 *c, int ldc, c8 alpha, c8 beta) {
  const float *ap = reinterpret_cast<const float *>(a);
  const float *bp = reinterpret_cast<const float *>(b);
#define FMA _mm256_fmadd_ps
#define BCAST _mm256_broadcast_ss
  ORB_COMPLEX_LOOP(__m256, _mm256_setzero_ps, _mm256_load_ps, BCAST, FMA, 8)
#undef FMA
#undef BCAST
  const __m256 ar = _mm256_set1_ps(alpha.real()), ai = _mm256_set1_ps(alpha.imag());
  const __m256 br = _mm256_set1_ps(beta.real()), bi = _mm256_set1_ps(beta.imag());
  const bool zero_beta = beta == c8(0.0f);
  // (x + iy)(u + iv) summed: re = x u - y v, im = y u + x v.
#define ORB_UPDATE(j)                                                          \
  {                                                                            \
    float *cj = reinterpret_cast<float *>(c + std::int64_t{j} * ldc);          \
    const __m256 prod = _mm256_addsub_ps(x##j, _mm256_permute_ps(u##j, 0xB1)); \
    __m256 r = cmul(prod, ar, ai);                                             \
    if (!zero_beta) r = _mm256_add_ps(r, cmul(_mm256_loadu_ps(cj), br, bi));   \
    _mm256_storeu_ps(cj, r);                                                   \
  }
  ORB_FOR3(ORB_UPDATE)
#undef ORB_UPDATE
}

void zgemm_ukr_2x3(int k, const c16 *a, const c16 *b, c16 *c, int ldc, c16 alpha, c16 beta) {
  const double *ap = reinterpret_cast<const double *>(a);
  const double *bp = reinterpret_cast<const double *>(b);
#define FMA _mm256_fmadd_pd
#define BCAST _mm256_broadcast_sd
  ORB_COMPLEX_LOOP(__m256d, _mm256_setzero_pd, _mm256_load_pd, BCAST, FMA, 4)
#undef FMA
#undef BCAST
  const __m256d ar = _mm256_set1_pd(alpha.real()), ai = _mm256_set1_pd(alpha.imag());
  const __m256d br = _mm256_set1_pd(beta.real()), bi = _mm256_set1_pd(beta.imag());
  const bool zero_beta = beta == c16(0.0);
#define ORB_UPDATE(j)                                                          \
  {                                                                            \
    double *cj = reinterpret_cast<double *>(c + std::int64_t{j} * ldc);        \
    const __m256d prod = _mm256_addsub_pd(x##j, _mm256_permute_pd(u##j, 0x5)); \
    __m256d r = cmul(prod, ar, ai);                                            \
    if (!zero_beta) r = _mm256_add_pd(r, cmul(_mm256_loadu_pd(cj), br, bi));   \
    _mm256_storeu_pd(cj, r);                                                   \
  }
  ORB_FOR3(ORB_UPDATE)
#undef ORB_UPDATE
}
#undef ORB_COMPLEX_STEP
#undef ORB_COMPLEX_LOOP

static_assert(sgemm_shape.mr == 8 && sgemm_shape.nr == 6 && dgemm_shape.mr == 4 &&
                  dgemm_shape.nr == 6 && cgemm_shape.mr == 4 && cgemm_shape.nr == 3 &&
                  zgemm_shape.mr == 2 && zgemm_shape.nr == 3,
              "the tiles of the kernels");

#undef ORB_FOR3
#undef ORB_FOR6
#endif

}  // namespace orb::kernel::avx2

namespace orb::kernel::avx2 {
namespace {

// Up to 8 RV rows of C times NB columns over one inner block: the same sums,
// in the same order and with the same rounding of the update, as the packed
// micro-kernel forms for those elements. RV NB = 8 independent chains keep
// the multiply-add units busy whatever the number of columns.
// How far down a column of A the thin kernel prefetches, in elements.
constexpr int kThinAhead = 96;

template <int RV, int NB>
void thin_block(int kb, const float *a, int lda, const float *bp, float *c, int ldc, int rows,
                int cols, float alpha, float beta) {
  __m256 acc[RV][NB];
  __m256i mask[RV];
  const __m256i lanes = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
#pragma GCC unroll 8
  for (int v = 0; v < RV; ++v) {
    mask[v] = _mm256_cmpgt_epi32(_mm256_set1_epi32(rows - 8 * v), lanes);
#pragma GCC unroll 8
    for (int j = 0; j < NB; ++j) acc[v][j] = _mm256_setzero_ps();
  }
  const bool full = rows == 8 * RV;
  for (int p = 0; p < kb; ++p, bp += 8) {
    const float *ap = a + std::int64_t{p} * lda;
    // This column's part of a row block a few blocks on: the columns lie
    // lda apart, too many streams for the hardware to follow.
    _mm_prefetch(reinterpret_cast<const char *>(ap + kThinAhead), _MM_HINT_T0);
    if (RV > 2) _mm_prefetch(reinterpret_cast<const char *>(ap + kThinAhead + 16), _MM_HINT_T0);
#pragma GCC unroll 8
    for (int v = 0; v < RV; ++v) {
      const __m256 av =
          full ? _mm256_loadu_ps(ap + 8 * v) : _mm256_maskload_ps(ap + 8 * v, mask[v]);
#pragma GCC unroll 8
      for (int j = 0; j < NB; ++j)
        acc[v][j] = _mm256_fmadd_ps(av, _mm256_broadcast_ss(bp + j), acc[v][j]);
    }
  }
  const __m256 va = _mm256_set1_ps(alpha), vb = _mm256_set1_ps(beta);
  for (int j = 0; j < NB && j < cols; ++j) {
    float *cj = c + std::int64_t{j} * ldc;
#pragma GCC unroll 8
    for (int v = 0; v < RV; ++v) {
      __m256 r = _mm256_mul_ps(va, acc[v][j]);
      if (beta != 0.0f) {
        const __m256 old =
            full ? _mm256_loadu_ps(cj + 8 * v) : _mm256_maskload_ps(cj + 8 * v, mask[v]);
        r = _mm256_add_ps(r, _mm256_mul_ps(vb, old));
      }
      if (full)
        _mm256_storeu_ps(cj + 8 * v, r);
      else
        _mm256_maskstore_ps(cj + 8 * v, mask[v], r);
    }
  }
}

template <int RV, int NB>
void thin_rows(int kb, int m, const float *a, int lda, const float *bp, float *c, int ldc, int n,
               float alpha, float beta) {
  for (int i = 0; i < m; i += 8 * RV) {
    const int rows = m - i < 8 * RV ? m - i : 8 * RV;
    thin_block<RV, NB>(kb, a + i, lda, bp, c + i, ldc, rows, n, alpha, beta);
  }
}

}  // namespace

// C := alpha A op(B) + beta C for n <= 8 columns, straight from A: the sums
// of the packed kernel with inner blocks of kc (at most 256), without packing.
void sgemm_thin(Op tb, int m, int n, int k, int kc, float alpha, const float *a, int lda,
                const float *b, int ldb, float beta, float *c, int ldc) {
  alignas(32) float bpack[256 * 8];
  for (int pc = 0; pc < k; pc += kc) {
    const int kb = k - pc < kc ? k - pc : kc;
    for (int p = 0; p < kb; ++p)
      for (int j = 0; j < 8; ++j)
        bpack[p * 8 + j] = j >= n            ? 0.0f
                           : tb == Op::kNone ? b[pc + p + std::int64_t{j} * ldb]
                                             : b[j + std::int64_t{pc + p} * ldb];
    const float beta_here = pc == 0 ? beta : 1.0f;
    const float *ablock = a + std::int64_t{pc} * lda;
#if defined(ORB_EIGHT_REGISTERS)
    // Four accumulators at most; more than four columns in two passes over
    // A, the second on columns 4 on of the packed B.
    if (n == 1)
      thin_rows<4, 1>(kb, m, ablock, lda, bpack, c, ldc, n, alpha, beta_here);
    else if (n == 2)
      thin_rows<2, 2>(kb, m, ablock, lda, bpack, c, ldc, n, alpha, beta_here);
    else {
      thin_rows<1, 4>(kb, m, ablock, lda, bpack, c, ldc, n, alpha, beta_here);
      if (n > 4)
        thin_rows<1, 4>(kb, m, ablock, lda, bpack + 4, c + 4 * std::int64_t{ldc}, ldc, n - 4, alpha,
                        beta_here);
    }
#else
    if (n == 1)
      thin_rows<4, 1>(kb, m, ablock, lda, bpack, c, ldc, n, alpha, beta_here);
    else if (n == 2)
      thin_rows<4, 2>(kb, m, ablock, lda, bpack, c, ldc, n, alpha, beta_here);
    else if (n <= 4)
      thin_rows<2, 4>(kb, m, ablock, lda, bpack, c, ldc, n, alpha, beta_here);
    else
      thin_rows<1, 8>(kb, m, ablock, lda, bpack, c, ldc, n, alpha, beta_here);
#endif
  }
}

// The inner blocks sgemm_thin has room for.
static_assert(sgemm_shape.kc <= 256 && sgemm_thin_kernel.max_n <= 8, "sgemm_thin's packed B");

}  // namespace orb::kernel::avx2
