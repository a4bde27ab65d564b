// GEMM micro-kernels on 128-bit vectors for double, single complex and double
// complex, for SSE2 and therefore every processor type from 2 up. Multiplies
// and adds are separate instructions, each rounding like the scalar operation
// of the portable kernels.
//
// One loop serves the three: each step multiplies a vector of A, and the same
// vector with neighbouring lanes swapped, by a pair of B loaded as it lies
// (two elements of a row of B, or one complex number), so that only A is
// shuffled, once per vector and step. Every lane of the sums holds one
// product summed over the inner dimension in order. For complex numbers the
// two sums are A times b lane by lane (re a re b, im a im b) and swapped A
// times b (im a re b, re a im b), combined once at the end (re = d.re - d.im,
// im = s.re + s.im) as the 256-bit kernels do. The update of C rounds alpha
// AB and beta C separately and adds, as the driver does for the tiles the
// edges of C cut, so no result depends on where the tiles fall.
#include <emmintrin.h>

#include <complex>
#include <cstdint>
#include <type_traits>

#include "blas/kernel/gemm.h"
#include "common/scalar.h"

namespace orb::kernel::sse2 {
namespace {

// The 128-bit vector of a real type and what the kernels do with it.
template <class R>
struct Vec;

template <>
struct Vec<double> {
  using V = __m128d;
  static constexpr int kLanes = 2;
  static V zero() { return _mm_setzero_pd(); }
  static V set1(double x) { return _mm_set1_pd(x); }
  static V load(const double *p) { return _mm_load_pd(p); }
  static V loadu(const double *p) { return _mm_loadu_pd(p); }
  static void storeu(double *p, V x) { _mm_storeu_pd(p, x); }
  static V add(V x, V y) { return _mm_add_pd(x, y); }
  static V mul(V x, V y) { return _mm_mul_pd(x, y); }
  static V flip(V x, V sign) { return _mm_xor_pd(x, sign); }
  // The pair at p (two elements, or one complex number) in every pair of
  // lanes.
  template <bool Aligned>
  static V pair(const double *p, bool) {
    return _mm_load_pd(p);
  }
  // The vector at p with each complex number's parts swapped.
  static V swap_load(const double *p) {
    return _mm_castsi128_pd(
        _mm_shuffle_epi32(_mm_load_si128(reinterpret_cast<const __m128i *>(p)), 0x4E));
  }
  static V swap(V x) { return _mm_shuffle_pd(x, x, 1); }
  // From the sums d and s of one vector: (d.re, s.re) and (d.im, s.im) for
  // each complex slot.
  static V first_parts(V d, V s) { return _mm_unpacklo_pd(d, s); }
  static V second_parts(V d, V s) { return _mm_unpackhi_pd(d, s); }
  // Minus zero in the real parts: flips their sign.
  static V real_sign() { return _mm_set_pd(0.0, -0.0); }
};

template <>
struct Vec<float> {
  using V = __m128;
  static constexpr int kLanes = 4;
  static V zero() { return _mm_setzero_ps(); }
  static V set1(float x) { return _mm_set1_ps(x); }
  static V load(const float *p) { return _mm_load_ps(p); }
  static V loadu(const float *p) { return _mm_loadu_ps(p); }
  static void storeu(float *p, V x) { _mm_storeu_ps(p, x); }
  static V add(V x, V y) { return _mm_add_ps(x, y); }
  static V mul(V x, V y) { return _mm_mul_ps(x, y); }
  static V flip(V x, V sign) { return _mm_xor_ps(x, sign); }
  // The pair at p (one complex number) in both pairs of lanes; with
  // `Aligned` it lies in an aligned 16 bytes, first when `first`.
  template <bool Aligned>
  static V pair(const float *p, bool first) {
    if constexpr (Aligned) {
      const __m128i two = _mm_load_si128(reinterpret_cast<const __m128i *>(first ? p : p - 2));
      return _mm_castsi128_ps(first ? _mm_shuffle_epi32(two, 0x44) : _mm_shuffle_epi32(two, 0xEE));
    } else {
      return _mm_castpd_ps(_mm_load1_pd(reinterpret_cast<const double *>(p)));
    }
  }
  static V swap_load(const float *p) {
    return _mm_castsi128_ps(
        _mm_shuffle_epi32(_mm_load_si128(reinterpret_cast<const __m128i *>(p)), 0xB1));
  }
  static V swap(V x) { return _mm_shuffle_ps(x, x, 0xB1); }
  static V first_parts(V d, V s) {
    return _mm_movelh_ps(_mm_unpacklo_ps(d, s), _mm_unpackhi_ps(d, s));
  }
  static V second_parts(V d, V s) {
    return _mm_movehl_ps(_mm_unpackhi_ps(d, s), _mm_unpacklo_ps(d, s));
  }
  static V real_sign() { return _mm_set_ps(0.0f, -0.0f, 0.0f, -0.0f); }
};

// x times the complex number (sr, si), for each complex slot of x: re x sr -
// im x si, im x sr + re x si, the portable complex product's roundings.
template <class R>
typename Vec<R>::V cmul(typename Vec<R>::V x, typename Vec<R>::V sr, typename Vec<R>::V si,
                        typename Vec<R>::V sign) {
  using X = Vec<R>;
  return X::add(X::mul(x, sr), X::flip(X::mul(X::swap(x), si), sign));
}

// The tile of MV vectors of A by NQ pairs of B (T real: pairs of columns,
// MV * 2 by NQ * 2) or NQ columns (T complex: MV * lanes / 2 by NQ). Each step
// multiplies every vector of A, and the vector with its pairs swapped, by
// each pair of B; the lanes of d and s then hold sums of single products:
//   real     d = (a0 b0, a1 b1), s = (a1 b0, a0 b1) for rows 0, 1 and columns 0, 1;
//   complex  d = (re a re b, im a im b), s = (im a re b, re a im b).
template <class T, int MV, int NQ>
void ukr(int k, const T *a, const T *b, T *c, int ldc, T alpha, T beta) {
  using R = real_t<T>;
  using X = Vec<R>;
  using V = typename X::V;
  constexpr int kL = X::kLanes;
  // The rows of packed B start on 16-byte boundaries.
  constexpr bool kAligned = NQ * 2 * sizeof(R) % 16 == 0;
  const R *ap = reinterpret_cast<const R *>(a);
  const R *bp = reinterpret_cast<const R *>(b);
  V d[MV][NQ], s[MV][NQ];
#pragma GCC unroll 16
  for (int v = 0; v < MV; ++v)
#pragma GCC unroll 16
    for (int q = 0; q < NQ; ++q) d[v][q] = s[v][q] = X::zero();
  for (int p = 0; p < k; ++p, ap += MV * kL, bp += 2 * NQ) {
    V av[MV], sv[MV];
#pragma GCC unroll 16
    for (int v = 0; v < MV; ++v) {
      av[v] = X::load(ap + v * kL);
      sv[v] = X::swap_load(ap + v * kL);
    }
#pragma GCC unroll 16
    for (int q = 0; q < NQ; ++q) {
      const V bq = X::template pair<kAligned>(bp + 2 * q, q % 2 == 0);
#pragma GCC unroll 16
      for (int v = 0; v < MV; ++v) {
        d[v][q] = X::add(d[v][q], X::mul(av[v], bq));
        s[v][q] = X::add(s[v][q], X::mul(sv[v], bq));
      }
    }
  }
  if constexpr (is_complex_v<T>) {
    const V sign = X::real_sign();
    const V ar = X::set1(alpha.real()), ai = X::set1(alpha.imag());
    const V br = X::set1(beta.real()), bi = X::set1(beta.imag());
    const bool zero_beta = beta == T(0);
#pragma GCC unroll 16
    for (int q = 0; q < NQ; ++q) {
      R *cq = reinterpret_cast<R *>(c + std::int64_t{q} * ldc);
#pragma GCC unroll 16
      for (int v = 0; v < MV; ++v) {
        // re = d.re - d.im, im = s.re + s.im.
        const V prod = X::add(X::first_parts(d[v][q], s[v][q]),
                              X::flip(X::second_parts(d[v][q], s[v][q]), sign));
        V r = cmul<R>(prod, ar, ai, sign);
        if (!zero_beta) r = X::add(r, cmul<R>(X::loadu(cq + v * kL), br, bi, sign));
        X::storeu(cq + v * kL, r);
      }
    }
  } else {
    static_assert(std::is_same_v<T, double>, "real tiles of double pairs");
    const V va = X::set1(alpha), vb = X::set1(beta);
    const bool zero_beta = beta == T(0);
#pragma GCC unroll 16
    for (int q = 0; q < NQ; ++q) {
      T *c0 = c + std::int64_t{2 * q} * ldc, *c1 = c0 + ldc;
#pragma GCC unroll 16
      for (int v = 0; v < MV; ++v) {
        // Column 2q: (d.lo, s.lo); column 2q + 1: (s.hi, d.hi).
        V r0 = X::mul(va, X::first_parts(d[v][q], s[v][q]));
        V r1 = X::mul(va, X::second_parts(s[v][q], d[v][q]));
        if (!zero_beta) {
          r0 = X::add(r0, X::mul(vb, X::loadu(c0 + v * kL)));
          r1 = X::add(r1, X::mul(vb, X::loadu(c1 + v * kL)));
        }
        X::storeu(c0 + v * kL, r0);
        X::storeu(c1 + v * kL, r1);
      }
    }
  }
}

// The packed slivers start on 16-byte boundaries, and so do their rows for
// these tiles: the loads of A and of the pairs of B are aligned.
template <class T>
constexpr bool rows_aligned(const GemmShape<T> &s) {
  return s.mr * sizeof(T) % 16 == 0 && s.nr * sizeof(T) % 16 == 0;
}
static_assert(rows_aligned(dgemm_shape) && rows_aligned(cgemm_shape) && rows_aligned(zgemm_shape));

}  // namespace

void dgemm_ukr(int k, const double *a, const double *b, double *c, int ldc, double alpha,
               double beta) {
  ukr<double, dgemm_shape.mr / 2, dgemm_shape.nr / 2>(k, a, b, c, ldc, alpha, beta);
}
void cgemm_ukr(int k, const c8 *a, const c8 *b, c8 *c, int ldc, c8 alpha, c8 beta) {
  ukr<c8, cgemm_shape.mr / 2, cgemm_shape.nr>(k, a, b, c, ldc, alpha, beta);
}
void zgemm_ukr(int k, const c16 *a, const c16 *b, c16 *c, int ldc, c16 alpha, c16 beta) {
  ukr<c16, zgemm_shape.mr, zgemm_shape.nr>(k, a, b, c, ldc, alpha, beta);
}

}  // namespace orb::kernel::sse2
