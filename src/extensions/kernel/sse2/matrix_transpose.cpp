// The SSE2 transposition kernels: 4 x 4 floats, or 2 x 2 complex elements,
// transposed in registers; the edges of a tile that do not fill a whole
// block element by element.
#include <emmintrin.h>

#include <algorithm>
#include <complex>
#include <cstddef>
#include <cstdint>

#include "extensions/matrix_kernels.h"

namespace orb::host::sse2 {

namespace {

using c8 = std::complex<float>;

// ---- floats: 4 x 4 blocks -------------------------------------------------------------

struct Block4 {
  __m128 r0, r1, r2, r3;
};

inline Block4 load_t4(const float *p, std::size_t ld) {
  Block4 b{_mm_loadu_ps(p), _mm_loadu_ps(p + ld), _mm_loadu_ps(p + 2 * ld),
           _mm_loadu_ps(p + 3 * ld)};
  _MM_TRANSPOSE4_PS(b.r0, b.r1, b.r2, b.r3);
  return b;
}

inline void store4(float *p, std::size_t ld, const Block4 &b) {
  _mm_storeu_ps(p, b.r0);
  _mm_storeu_ps(p + ld, b.r1);
  _mm_storeu_ps(p + 2 * ld, b.r2);
  _mm_storeu_ps(p + 3 * ld, b.r3);
}

void copy_f(const float *src, std::size_t lds, float *dst, std::size_t ldd, std::size_t m,
            std::size_t n) {
  const std::size_t m4 = m & ~std::size_t{3}, n4 = n & ~std::size_t{3};
  for (std::size_t i = 0; i < m4; i += 4) {
    for (std::size_t j = 0; j < n4; j += 4)
      store4(dst + j * ldd + i, ldd, load_t4(src + i * lds + j, lds));
    for (std::size_t j = n4; j < n; ++j)
      for (std::size_t r = i; r < i + 4; ++r) dst[j * ldd + r] = src[r * lds + j];
  }
  for (std::size_t i = m4; i < m; ++i)
    for (std::size_t j = 0; j < n; ++j) dst[j * ldd + i] = src[i * lds + j];
}

void swap_f(float *a, float *b, std::size_t ld, std::size_t m, std::size_t n) {
  const std::size_t m4 = m & ~std::size_t{3}, n4 = n & ~std::size_t{3};
  for (std::size_t i = 0; i < m; ++i)
    for (std::size_t j = (i < m4 ? n4 : 0); j < n; ++j) {
      const float x = a[i * ld + j];
      a[i * ld + j] = b[j * ld + i];
      b[j * ld + i] = x;
    }
  for (std::size_t i = 0; i < m4; i += 4)
    for (std::size_t j = 0; j < n4; j += 4) {
      const Block4 ta = load_t4(a + i * ld + j, ld);
      const Block4 tb = load_t4(b + j * ld + i, ld);
      store4(a + i * ld + j, ld, tb);
      store4(b + j * ld + i, ld, ta);
    }
}

void diag_f(float *a, std::size_t ld, std::size_t m) {
  const std::size_t m4 = m & ~std::size_t{3};
  for (std::size_t i = 0; i < m4; i += 4) {
    store4(a + i * ld + i, ld, load_t4(a + i * ld + i, ld));
    for (std::size_t j = i + 4; j < m4; j += 4) {
      const Block4 ta = load_t4(a + i * ld + j, ld);
      const Block4 tb = load_t4(a + j * ld + i, ld);
      store4(a + i * ld + j, ld, tb);
      store4(a + j * ld + i, ld, ta);
    }
  }
  for (std::size_t i = 0; i < m; ++i)
    for (std::size_t j = std::max(i + 1, m4); j < m; ++j) {
      const float x = a[i * ld + j];
      a[i * ld + j] = a[j * ld + i];
      a[j * ld + i] = x;
    }
}

// ---- complex: 2 x 2 blocks of 8-byte elements ------------------------------------------

template <bool Conj>
inline c8 op(c8 x) {
  return Conj ? std::conj(x) : x;
}

struct Block2 {
  __m128 r0, r1;
};

template <bool Conj>
inline Block2 load_t2(const c8 *p, std::size_t ld) {
  const __m128 x0 = _mm_loadu_ps(reinterpret_cast<const float *>(p));
  const __m128 x1 = _mm_loadu_ps(reinterpret_cast<const float *>(p + ld));
  Block2 b{_mm_movelh_ps(x0, x1), _mm_movehl_ps(x1, x0)};
  if constexpr (Conj) {
    const __m128 sign = _mm_castsi128_ps(_mm_set_epi32(INT32_MIN, 0, INT32_MIN, 0));
    b.r0 = _mm_xor_ps(b.r0, sign);
    b.r1 = _mm_xor_ps(b.r1, sign);
  }
  return b;
}

inline void store2(c8 *p, std::size_t ld, const Block2 &b) {
  _mm_storeu_ps(reinterpret_cast<float *>(p), b.r0);
  _mm_storeu_ps(reinterpret_cast<float *>(p + ld), b.r1);
}

template <bool Conj>
void copy_c(const c8 *src, std::size_t lds, c8 *dst, std::size_t ldd, std::size_t m,
            std::size_t n) {
  const std::size_t m2 = m & ~std::size_t{1}, n2 = n & ~std::size_t{1};
  for (std::size_t i = 0; i < m2; i += 2) {
    for (std::size_t j = 0; j < n2; j += 2)
      store2(dst + j * ldd + i, ldd, load_t2<Conj>(src + i * lds + j, lds));
    if (n2 < n) {
      dst[n2 * ldd + i] = op<Conj>(src[i * lds + n2]);
      dst[n2 * ldd + i + 1] = op<Conj>(src[(i + 1) * lds + n2]);
    }
  }
  if (m2 < m)
    for (std::size_t j = 0; j < n; ++j) dst[j * ldd + m2] = op<Conj>(src[m2 * lds + j]);
}

template <bool Conj>
void swap_c(c8 *a, c8 *b, std::size_t ld, std::size_t m, std::size_t n) {
  const std::size_t m2 = m & ~std::size_t{1}, n2 = n & ~std::size_t{1};
  for (std::size_t i = 0; i < m; ++i)
    for (std::size_t j = (i < m2 ? n2 : 0); j < n; ++j) {
      const c8 x = a[i * ld + j];
      a[i * ld + j] = op<Conj>(b[j * ld + i]);
      b[j * ld + i] = op<Conj>(x);
    }
  for (std::size_t i = 0; i < m2; i += 2)
    for (std::size_t j = 0; j < n2; j += 2) {
      const Block2 ta = load_t2<Conj>(a + i * ld + j, ld);
      const Block2 tb = load_t2<Conj>(b + j * ld + i, ld);
      store2(a + i * ld + j, ld, tb);
      store2(b + j * ld + i, ld, ta);
    }
}

template <bool Conj>
void diag_c(c8 *a, std::size_t ld, std::size_t m) {
  const std::size_t m2 = m & ~std::size_t{1};
  for (std::size_t i = 0; i < m2; i += 2) {
    store2(a + i * ld + i, ld, load_t2<Conj>(a + i * ld + i, ld));
    for (std::size_t j = i + 2; j < m2; j += 2) {
      const Block2 ta = load_t2<Conj>(a + i * ld + j, ld);
      const Block2 tb = load_t2<Conj>(a + j * ld + i, ld);
      store2(a + i * ld + j, ld, tb);
      store2(a + j * ld + i, ld, ta);
    }
  }
  if (m2 < m) {
    for (std::size_t i = 0; i < m2; ++i) {
      const c8 x = a[i * ld + m2];
      a[i * ld + m2] = op<Conj>(a[m2 * ld + i]);
      a[m2 * ld + i] = op<Conj>(x);
    }
    a[m2 * ld + m2] = op<Conj>(a[m2 * ld + m2]);
  }
}

}  // namespace

TransposeKernels<float> transpose_kernels_f() {
  return {&copy_f, &swap_f, &diag_f};
}
TransposeKernels<c8> transpose_kernels_c() {
  return {&copy_c<false>, &swap_c<false>, &diag_c<false>};
}
TransposeKernels<c8> transpose_kernels_cc() {
  return {&copy_c<true>, &swap_c<true>, &diag_c<true>};
}

}  // namespace orb::host::sse2
