// GEMM micro-kernels on 512-bit vectors, for 32 registers or for eight
// (blas/kernel/registers.h), and the small-product kernel. With 32 each
// micro-kernel keeps a 24-register accumulator tile, two vectors of A by twelve (real) or six
// (complex) broadcast elements of B, which leaves eight of the 32 registers for the operands. Every
// element is summed over the inner dimension in order with fused multiply-adds, and the update of C
// rounds alpha AB and beta C separately before adding them, as the driver does for partial tiles
// and as the 256-bit kernels do: the sums of an element do not depend on which of these kernels
// forms them.
#include <immintrin.h>

#include <array>
#include <complex>
#include <cstdint>
#include <utility>

#include "blas/kernel/gemm.h"

namespace orb::kernel::avx512 {
namespace {

// How far ahead of the current step the packed A sliver is prefetched, in
// steps; each step of a sliver is 128 bytes.
constexpr int kAhead = 8;

// Twelve columns of a tile, two vectors each, as named variables: GCC keeps
// arrays of vectors on the stack inside the loop.
#define ORB_ACC(X) X##0, X##1, X##2, X##3, X##4, X##5, X##6, X##7, X##8, X##9, X##10, X##11
#define ORB_FOR12(M) M(0) M(1) M(2) M(3) M(4) M(5) M(6) M(7) M(8) M(9) M(10) M(11)
#define ORB_FOR6(M) M(0) M(1) M(2) M(3) M(4) M(5)

// The parts of complex lanes exchanged (re, im to im, re). The masked form
// passes x through where nothing is masked off; the unmasked one starts from
// an undefined register, which the compiler reports.
inline __m512 swap_parts(__m512 x) {
  return _mm512_mask_permute_ps(x, static_cast<__mmask16>(-1), x, 0xB1);
}
inline __m512d swap_parts(__m512d x) {
  return _mm512_mask_permute_pd(x, static_cast<__mmask8>(-1), x, 0x55);
}

// One vector of a column of C := alpha acc + beta C; beta = 0 does not read C.
inline void update(float *c, __m512 acc, __m512 va, __m512 vb, bool zero_beta) {
  __m512 r = _mm512_mul_ps(va, acc);
  if (!zero_beta) r = _mm512_add_ps(r, _mm512_mul_ps(vb, _mm512_loadu_ps(c)));
  _mm512_storeu_ps(c, r);
}
inline void update(double *c, __m512d acc, __m512d va, __m512d vb, bool zero_beta) {
  __m512d r = _mm512_mul_pd(va, acc);
  if (!zero_beta) r = _mm512_add_pd(r, _mm512_mul_pd(vb, _mm512_loadu_pd(c)));
  _mm512_storeu_pd(c, r);
}

// x * s for complex lanes (re, im pairs) with s given by its broadcast parts:
// both products rounded, then subtracted in the real lanes and added in the
// imaginary ones, as a complex product in portable code rounds.
inline __m512 cmul(__m512 x, __m512 sr, __m512 si) {
  const __m512 u = _mm512_mul_ps(x, sr), t = _mm512_mul_ps(swap_parts(x), si);
  return _mm512_fmaddsub_ps(u, _mm512_set1_ps(1.0f), t);
}
inline __m512d cmul(__m512d x, __m512d sr, __m512d si) {
  const __m512d u = _mm512_mul_pd(x, sr), t = _mm512_mul_pd(swap_parts(x), si);
  return _mm512_fmaddsub_pd(u, _mm512_set1_pd(1.0), t);
}
// The complex sums from the parts accumulated against re(b) and im(b):
// re = sum x u - sum y v, im = sum y u + sum x v.
inline __m512 combine(__m512 re, __m512 im) {
  return _mm512_fmaddsub_ps(re, _mm512_set1_ps(1.0f), swap_parts(im));
}
inline __m512d combine(__m512d re, __m512d im) {
  return _mm512_fmaddsub_pd(re, _mm512_set1_pd(1.0), swap_parts(im));
}

// One vector of a complex column of C := alpha prod + beta C.
inline void cupdate(float *c, __m512 prod, __m512 ar, __m512 ai, __m512 br, __m512 bi,
                    bool zero_beta) {
  __m512 r = cmul(prod, ar, ai);
  if (!zero_beta) r = _mm512_add_ps(r, cmul(_mm512_loadu_ps(c), br, bi));
  _mm512_storeu_ps(c, r);
}
inline void cupdate(double *c, __m512d prod, __m512d ar, __m512d ai, __m512d br, __m512d bi,
                    bool zero_beta) {
  __m512d r = cmul(prod, ar, ai);
  if (!zero_beta) r = _mm512_add_pd(r, cmul(_mm512_loadu_pd(c), br, bi));
  _mm512_storeu_pd(c, r);
}

}  // namespace

#if !defined(ORB_EIGHT_REGISTERS)

void sgemm_ukr_32x12(int k, const float *a, const float *b, float *c, int ldc, float alpha,
                     float beta) {
  __m512 ORB_ACC(x), ORB_ACC(y);
#define ORB_ZERO(j) x##j = _mm512_setzero_ps(), y##j = _mm512_setzero_ps();
  ORB_FOR12(ORB_ZERO)
#undef ORB_ZERO
  for (int j = 0; j < 12; ++j) {
    _mm_prefetch(reinterpret_cast<const char *>(c + std::int64_t{j} * ldc), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char *>(c + std::int64_t{j} * ldc + 31), _MM_HINT_T0);
  }
#pragma GCC unroll 4
  for (int p = 0; p < k; ++p) {
    const __m512 a0 = _mm512_load_ps(a), a1 = _mm512_load_ps(a + 16);
    _mm_prefetch(reinterpret_cast<const char *>(a + 32 * kAhead), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char *>(a + 32 * kAhead + 16), _MM_HINT_T0);
#define ORB_STEP(j)                         \
  {                                         \
    const __m512 bj = _mm512_set1_ps(b[j]); \
    x##j = _mm512_fmadd_ps(a0, bj, x##j);   \
    y##j = _mm512_fmadd_ps(a1, bj, y##j);   \
  }
    ORB_FOR12(ORB_STEP)
#undef ORB_STEP
    a += 32;
    b += 12;
  }
  const __m512 va = _mm512_set1_ps(alpha), vb = _mm512_set1_ps(beta);
  const bool zero_beta = beta == 0.0f;
  constexpr int kLanes = 16;
#define ORB_UPDATE(j)                                         \
  update(c + std::int64_t{j} * ldc, x##j, va, vb, zero_beta); \
  update(c + std::int64_t{j} * ldc + kLanes, y##j, va, vb, zero_beta);
  ORB_FOR12(ORB_UPDATE)
}

void dgemm_ukr_16x12(int k, const double *a, const double *b, double *c, int ldc, double alpha,
                     double beta) {
  __m512d ORB_ACC(x), ORB_ACC(y);
#define ORB_ZERO(j) x##j = _mm512_setzero_pd(), y##j = _mm512_setzero_pd();
  ORB_FOR12(ORB_ZERO)
#undef ORB_ZERO
  for (int j = 0; j < 12; ++j) {
    _mm_prefetch(reinterpret_cast<const char *>(c + std::int64_t{j} * ldc), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char *>(c + std::int64_t{j} * ldc + 15), _MM_HINT_T0);
  }
#pragma GCC unroll 4
  for (int p = 0; p < k; ++p) {
    const __m512d a0 = _mm512_load_pd(a), a1 = _mm512_load_pd(a + 8);
    _mm_prefetch(reinterpret_cast<const char *>(a + 16 * kAhead), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char *>(a + 16 * kAhead + 8), _MM_HINT_T0);
#define ORB_STEP(j)                          \
  {                                          \
    const __m512d bj = _mm512_set1_pd(b[j]); \
    x##j = _mm512_fmadd_pd(a0, bj, x##j);    \
    y##j = _mm512_fmadd_pd(a1, bj, y##j);    \
  }
    ORB_FOR12(ORB_STEP)
#undef ORB_STEP
    a += 16;
    b += 12;
  }
  const __m512d va = _mm512_set1_pd(alpha), vb = _mm512_set1_pd(beta);
  const bool zero_beta = beta == 0.0;
  constexpr int kLanes = 8;
  ORB_FOR12(ORB_UPDATE)
#undef ORB_UPDATE
}

// Complex tiles of six columns: xj/yj accumulate a * re(b_j), uj/vj
// a * im(b_j), for the two vectors of a sliver.
#define ORB_COMPLEX_STEP(SET1, FMA, j)   \
  {                                      \
    const auto br = SET1(bp[2 * j]);     \
    const auto bi = SET1(bp[2 * j + 1]); \
    x##j = FMA(a0, br, x##j);            \
    y##j = FMA(a1, br, y##j);            \
    u##j = FMA(a0, bi, u##j);            \
    v##j = FMA(a1, bi, v##j);            \
  }
#define ORB_COMPLEX_UPDATE(j, half)                                                        \
  cupdate(cp + 2 * std::int64_t{j} * ldc, combine(x##j, u##j), ar, ai, br, bi, zero_beta); \
  cupdate(cp + 2 * std::int64_t{j} * ldc + half, combine(y##j, v##j), ar, ai, br, bi, zero_beta);

void cgemm_ukr_16x6(int k, const c8 *a, const c8 *b, c8 *c, int ldc, c8 alpha, c8 beta) {
  __m512 x0, x1, x2, x3, x4, x5, y0, y1, y2, y3, y4, y5;
  __m512 u0, u1, u2, u3, u4, u5, v0, v1, v2, v3, v4, v5;
#define ORB_ZERO(j) x##j = _mm512_setzero_ps(), y##j = x##j, u##j = x##j, v##j = x##j;
  ORB_FOR6(ORB_ZERO)
#undef ORB_ZERO
  const float *ap = reinterpret_cast<const float *>(a);
  const float *bp = reinterpret_cast<const float *>(b);
  float *cp = reinterpret_cast<float *>(c);
  for (int j = 0; j < 6; ++j) {
    _mm_prefetch(reinterpret_cast<const char *>(cp + 2 * std::int64_t{j} * ldc), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char *>(cp + 2 * std::int64_t{j} * ldc + 31), _MM_HINT_T0);
  }
#pragma GCC unroll 2
  for (int p = 0; p < k; ++p) {
    const __m512 a0 = _mm512_load_ps(ap), a1 = _mm512_load_ps(ap + 16);
    _mm_prefetch(reinterpret_cast<const char *>(ap + 32 * kAhead), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char *>(ap + 32 * kAhead + 16), _MM_HINT_T0);
#define ORB_STEP(j) ORB_COMPLEX_STEP(_mm512_set1_ps, _mm512_fmadd_ps, j)
    ORB_FOR6(ORB_STEP)
#undef ORB_STEP
    ap += 32;
    bp += 12;
  }
  const __m512 ar = _mm512_set1_ps(alpha.real()), ai = _mm512_set1_ps(alpha.imag());
  const __m512 br = _mm512_set1_ps(beta.real()), bi = _mm512_set1_ps(beta.imag());
  const bool zero_beta = beta == c8(0.0f);
#define ORB_UPDATE(j) ORB_COMPLEX_UPDATE(j, 16)
  ORB_FOR6(ORB_UPDATE)
#undef ORB_UPDATE
}

void zgemm_ukr_8x6(int k, const c16 *a, const c16 *b, c16 *c, int ldc, c16 alpha, c16 beta) {
  __m512d x0, x1, x2, x3, x4, x5, y0, y1, y2, y3, y4, y5;
  __m512d u0, u1, u2, u3, u4, u5, v0, v1, v2, v3, v4, v5;
#define ORB_ZERO(j) x##j = _mm512_setzero_pd(), y##j = x##j, u##j = x##j, v##j = x##j;
  ORB_FOR6(ORB_ZERO)
#undef ORB_ZERO
  const double *ap = reinterpret_cast<const double *>(a);
  const double *bp = reinterpret_cast<const double *>(b);
  double *cp = reinterpret_cast<double *>(c);
  for (int j = 0; j < 6; ++j) {
    _mm_prefetch(reinterpret_cast<const char *>(cp + 2 * std::int64_t{j} * ldc), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char *>(cp + 2 * std::int64_t{j} * ldc + 15), _MM_HINT_T0);
  }
#pragma GCC unroll 2
  for (int p = 0; p < k; ++p) {
    const __m512d a0 = _mm512_load_pd(ap), a1 = _mm512_load_pd(ap + 8);
    _mm_prefetch(reinterpret_cast<const char *>(ap + 16 * kAhead), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char *>(ap + 16 * kAhead + 8), _MM_HINT_T0);
#define ORB_STEP(j) ORB_COMPLEX_STEP(_mm512_set1_pd, _mm512_fmadd_pd, j)
    ORB_FOR6(ORB_STEP)
#undef ORB_STEP
    ap += 16;
    bp += 12;
  }
  const __m512d ar = _mm512_set1_pd(alpha.real()), ai = _mm512_set1_pd(alpha.imag());
  const __m512d br = _mm512_set1_pd(beta.real()), bi = _mm512_set1_pd(beta.imag());
  const bool zero_beta = beta == c16(0.0);
#define ORB_UPDATE(j) ORB_COMPLEX_UPDATE(j, 8)
  ORB_FOR6(ORB_UPDATE)
#undef ORB_UPDATE
}

#undef ORB_COMPLEX_STEP
#undef ORB_COMPLEX_UPDATE
#undef ORB_FOR6
#undef ORB_FOR12
#undef ORB_ACC

// The tiles these kernels are written for.
static_assert(sgemm_shape.mr == 32 && sgemm_shape.nr == 12 && dgemm_shape.mr == 16 &&
                  dgemm_shape.nr == 12 && cgemm_shape.mr == 16 && cgemm_shape.nr == 6 &&
                  zgemm_shape.mr == 8 && zgemm_shape.nr == 6,
              "the tiles of the kernels");

#else

// Eight registers: one vector of A and seven accumulators, or three complex
// columns of two; every element of B is broadcast from memory by the
// multiply-add that uses it. The sums and the update are those of the wider
// tiles.
#define ORB_FOR3(M) M(0) M(1) M(2)
#define ORB_FOR7(M) M(0) M(1) M(2) M(3) M(4) M(5) M(6)

#define ORB_REAL_LOOP(V, ZERO, LOAD, SET1, FMA, LANES)                             \
  V c0 = ZERO(), c1 = c0, c2 = c0, c3 = c0, c4 = c0, c5 = c0, c6 = c0;             \
  _Pragma("GCC unroll 4") for (int p = 0; p < k; ++p) {                            \
    const V a0 = LOAD(a);                                                          \
    _mm_prefetch(reinterpret_cast<const char *>(a + (LANES)*kAhead), _MM_HINT_T0); \
    ORB_FOR7(ORB_REAL_STEP)                                                        \
    a += LANES;                                                                    \
    b += 7;                                                                        \
  }
#define ORB_REAL_STEP(j) c##j = FMA(a0, SET1(b[j]), c##j);
#define ORB_REAL_UPDATE(j) update(c + std::int64_t{j} * ldc, c##j, va, vb, zero_beta);

void sgemm_ukr_16x7(int k, const float *a, const float *b, float *c, int ldc, float alpha,
                    float beta) {
#define SET1 _mm512_set1_ps
#define FMA _mm512_fmadd_ps
  ORB_REAL_LOOP(__m512, _mm512_setzero_ps, _mm512_load_ps, SET1, FMA, 16)
#undef SET1
#undef FMA
  const __m512 va = _mm512_set1_ps(alpha), vb = _mm512_set1_ps(beta);
  const bool zero_beta = beta == 0.0f;
  ORB_FOR7(ORB_REAL_UPDATE)
}

void dgemm_ukr_8x7(int k, const double *a, const double *b, double *c, int ldc, double alpha,
                   double beta) {
#define SET1 _mm512_set1_pd
#define FMA _mm512_fmadd_pd
  ORB_REAL_LOOP(__m512d, _mm512_setzero_pd, _mm512_load_pd, SET1, FMA, 8)
#undef SET1
#undef FMA
  const __m512d va = _mm512_set1_pd(alpha), vb = _mm512_set1_pd(beta);
  const bool zero_beta = beta == 0.0;
  ORB_FOR7(ORB_REAL_UPDATE)
}
#undef ORB_REAL_UPDATE
#undef ORB_REAL_STEP
#undef ORB_REAL_LOOP

// Complex tiles of three columns: xj accumulates a * re(b_j), uj a * im(b_j).
#define ORB_COMPLEX_LOOP(V, ZERO, LOAD, SET1, FMA, REALS)                           \
  V x0 = ZERO(), x1 = x0, x2 = x0, u0 = x0, u1 = x0, u2 = x0;                       \
  _Pragma("GCC unroll 2") for (int p = 0; p < k; ++p) {                             \
    const V a0 = LOAD(ap);                                                          \
    _mm_prefetch(reinterpret_cast<const char *>(ap + (REALS)*kAhead), _MM_HINT_T0); \
    ORB_FOR3(ORB_COMPLEX_STEP)                                                      \
    ap += REALS;                                                                    \
    bp += 6;                                                                        \
  }
#define ORB_COMPLEX_STEP(j)              \
  x##j = FMA(a0, SET1(bp[2 * j]), x##j); \
  u##j = FMA(a0, SET1(bp[2 * j + 1]), u##j);
#define ORB_COMPLEX_UPDATE(j) \
  cupdate(cp + 2 * std::int64_t{j} * ldc, combine(x##j, u##j), ar, ai, br, bi, zero_beta);

void cgemm_ukr_8x3(int k, const c8 *a, const c8 *b, c8 *c, int ldc, c8 alpha, c8 beta) {
  const float *ap = reinterpret_cast<const float *>(a);
  const float *bp = reinterpret_cast<const float *>(b);
  float *cp = reinterpret_cast<float *>(c);
#define SET1 _mm512_set1_ps
#define FMA _mm512_fmadd_ps
  ORB_COMPLEX_LOOP(__m512, _mm512_setzero_ps, _mm512_load_ps, SET1, FMA, 16)
#undef SET1
#undef FMA
  const __m512 ar = _mm512_set1_ps(alpha.real()), ai = _mm512_set1_ps(alpha.imag());
  const __m512 br = _mm512_set1_ps(beta.real()), bi = _mm512_set1_ps(beta.imag());
  const bool zero_beta = beta == c8(0.0f);
  ORB_FOR3(ORB_COMPLEX_UPDATE)
}

void zgemm_ukr_4x3(int k, const c16 *a, const c16 *b, c16 *c, int ldc, c16 alpha, c16 beta) {
  const double *ap = reinterpret_cast<const double *>(a);
  const double *bp = reinterpret_cast<const double *>(b);
  double *cp = reinterpret_cast<double *>(c);
#define SET1 _mm512_set1_pd
#define FMA _mm512_fmadd_pd
  ORB_COMPLEX_LOOP(__m512d, _mm512_setzero_pd, _mm512_load_pd, SET1, FMA, 8)
#undef SET1
#undef FMA
  const __m512d ar = _mm512_set1_pd(alpha.real()), ai = _mm512_set1_pd(alpha.imag());
  const __m512d br = _mm512_set1_pd(beta.real()), bi = _mm512_set1_pd(beta.imag());
  const bool zero_beta = beta == c16(0.0);
  ORB_FOR3(ORB_COMPLEX_UPDATE)
}
#undef ORB_COMPLEX_UPDATE
#undef ORB_COMPLEX_STEP
#undef ORB_COMPLEX_LOOP
#undef ORB_FOR7
#undef ORB_FOR3
#undef ORB_FOR6
#undef ORB_FOR12
#undef ORB_ACC

static_assert(sgemm_shape.mr == 16 && sgemm_shape.nr == 7 && dgemm_shape.mr == 8 &&
                  dgemm_shape.nr == 7 && cgemm_shape.mr == 8 && cgemm_shape.nr == 3 &&
                  zgemm_shape.mr == 4 && zgemm_shape.nr == 3,
              "the tiles of the kernels");

#endif

}  // namespace orb::kernel::avx512

namespace orb::kernel::avx512 {
namespace {

// A tile of up to 16 RV rows by NB columns of C over one inner block, read
// straight from A (columns lda apart) and B (columns ldb apart, or rows when
// BT: op(B) = B^T): the sums of sgemm_ukr_32x12, in the same order and with
// the same rounding of the update. Masked loads and stores keep the partial
// rows inside the matrices.
template <int RV, int NB, bool BT>
void small_tile(int kb, const float *a, int lda, const float *b, int ldb, float *c, int ldc,
                int rows, float alpha, float beta) {
  __m512 acc[RV][NB];
  __mmask16 mask[RV];
#pragma GCC unroll 2
  for (int v = 0; v < RV; ++v) {
    const int left = rows - 16 * v;
    mask[v] =
        left >= 16 ? static_cast<__mmask16>(0xFFFF) : static_cast<__mmask16>((1u << left) - 1);
#pragma GCC unroll 12
    for (int j = 0; j < NB; ++j) acc[v][j] = _mm512_setzero_ps();
  }
  for (int p = 0; p < kb; ++p) {
    const float *ap = a + std::int64_t{p} * lda;
    __m512 av[RV];
#pragma GCC unroll 2
    for (int v = 0; v < RV; ++v) av[v] = _mm512_maskz_loadu_ps(mask[v], ap + 16 * v);
#pragma GCC unroll 12
    for (int j = 0; j < NB; ++j) {
      const __m512 bj =
          _mm512_set1_ps(BT ? b[std::int64_t{p} * ldb + j] : b[p + std::int64_t{j} * ldb]);
#pragma GCC unroll 2
      for (int v = 0; v < RV; ++v) acc[v][j] = _mm512_fmadd_ps(av[v], bj, acc[v][j]);
    }
  }
  const __m512 va = _mm512_set1_ps(alpha), vb = _mm512_set1_ps(beta);
#pragma GCC unroll 12
  for (int j = 0; j < NB; ++j) {
    float *cj = c + std::int64_t{j} * ldc;
#pragma GCC unroll 2
    for (int v = 0; v < RV; ++v) {
      __m512 r = _mm512_mul_ps(va, acc[v][j]);
      if (beta != 0.0f)
        r = _mm512_add_ps(r, _mm512_mul_ps(vb, _mm512_maskz_loadu_ps(mask[v], cj + 16 * v)));
      _mm512_mask_storeu_ps(cj + 16 * v, mask[v], r);
    }
  }
}

using SmallTile = void (*)(int, const float *, int, const float *, int, float *, int, int, float,
                           float);

template <int RV, bool BT, int... NB>
constexpr std::array<SmallTile, sizeof...(NB)> small_tiles(std::integer_sequence<int, NB...>) {
  return {&small_tile<RV, NB + 1, BT>...};
}
// By [rows above 16][op(B) transposed][columns - 1].
const std::array<SmallTile, 12> kSmallTiles[2][2] = {
    {small_tiles<1, false>(std::make_integer_sequence<int, 12>{}),
     small_tiles<1, true>(std::make_integer_sequence<int, 12>{})},
    {small_tiles<2, false>(std::make_integer_sequence<int, 12>{}),
     small_tiles<2, true>(std::make_integer_sequence<int, 12>{})}};

}  // namespace

// C := alpha A op(B) + beta C without packing, tile by tile of 32 by 12, in
// inner blocks of kc: for products small enough that packing would cost as
// much as the multiply-adds.
void sgemm_small(Op tb, int m, int n, int k, int kc, float alpha, const float *a, int lda,
                 const float *b, int ldb, float beta, float *c, int ldc) {
  const bool bt = tb != Op::kNone;
  for (int pc = 0; pc < k; pc += kc) {
    const int kb = k - pc < kc ? k - pc : kc;
    const float beta_here = pc == 0 ? beta : 1.0f;
    const float *ablock = a + std::int64_t{pc} * lda;
    const float *bblock = bt ? b + std::int64_t{pc} * ldb : b + pc;
    for (int j0 = 0; j0 < n; j0 += 12) {
      const int cols = n - j0 < 12 ? n - j0 : 12;
      const float *bj = bt ? bblock + j0 : bblock + std::int64_t{j0} * ldb;
      for (int i0 = 0; i0 < m; i0 += 32) {
        const int rows = m - i0 < 32 ? m - i0 : 32;
        kSmallTiles[rows > 16][bt][cols - 1](kb, ablock + i0, lda, bj, ldb,
                                             c + i0 + std::int64_t{j0} * ldc, ldc, rows, alpha,
                                             beta_here);
      }
    }
  }
}

}  // namespace orb::kernel::avx512
