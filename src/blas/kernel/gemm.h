// GEMM micro-kernels, one set per instruction-set folder.
//
// A micro-kernel multiplies a packed sliver of op(A) (mr rows by k, stored
// column after column: element (i, p) at a[p * mr + i]) by a packed sliver of
// op(B) (k by nr, stored row after row: element (p, j) at b[p * nr + j]) and
// updates an mr-by-nr tile of C (column-major, leading dimension ldc):
//
//   C := alpha * A B + beta * C,   C not read when beta is zero.
//
// The packed slivers are 64-byte aligned.
#pragma once

#include <complex>

#include "blas/kernel/registers.h"
#include "common/options.h"
#include "common/scalar.h"

namespace orb::kernel {

template <class T>
using GemmUkr = void (*)(int k, const T *a, const T *b, T *c, int ldc, T alpha, T beta);

// The shape of a micro-kernel and the blocking its driver uses with it. Each
// kernel's shape is data beside its declaration below, a constant the kernel
// is written for and the driver is compiled with.
template <class T>
struct GemmShape {
  int mr, nr;      // tile
  int mc, kc, nc;  // block of A (mc by kc), panel of B (kc by nc)
  GemmUkr<T> ukr;
};

// The direct (unpacked) kernel for small or memory-bound products:
// C := alpha op(A) op(B) + beta C straight from the caller's arrays, forming
// the sums of a packed kernel with inner blocks of kc, so that the choice
// between the two never changes an element.
template <class T>
using GemmDirect = void (*)(int kc, Op ta, Op tb, int m, int n, int k, T alpha, const T *a, int lda,
                            const T *b, int ldb, T beta, T *c, int ldc);

// A kernel for products of few columns, C := alpha A op(B) + beta C with
// op(A) = A and n <= max_n, straight from A: the sums of a packed kernel with
// inner blocks of kc (the packed kernel's), without packing.
// tb: 0 op(B) = B, otherwise op(B) = B^T.
template <class T>
struct GemmThin {
  void (*run)(Op tb, int m, int n, int k, int kc, T alpha, const T *a, int lda, const T *b, int ldb,
              T beta, T *c, int ldc);
  int max_n;
};

// A kernel for small products, C := alpha A op(B) + beta C with op(A) = A,
// m <= max_m and n <= max_n, read in place with the sums of a packed kernel
// over inner blocks of kc.
template <class T>
struct GemmSmall {
  decltype(GemmThin<T>::run) run;
  int max_m, max_n;
};

// Portable kernels: the type-0 path (block parameter 64: its buffers hold a
// 16-by-64 block of A and a 64-by-200 panel of B) and the precisions without
// a vector kernel.
namespace generic {
void sgemm_ukr(int k, const float *a, const float *b, float *c, int ldc, float alpha, float beta);
void dgemm_ukr(int k, const double *a, const double *b, double *c, int ldc, double alpha,
               double beta);
void cgemm_ukr(int k, const c8 *a, const c8 *b, c8 *c, int ldc, c8 alpha, c8 beta);
void zgemm_ukr(int k, const c16 *a, const c16 *b, c16 *c, int ldc, c16 alpha, c16 beta);
inline constexpr GemmShape<float> sgemm_shape{4, 4, 16, 64, 200, &sgemm_ukr};
inline constexpr GemmShape<double> dgemm_shape{4, 4, 64, 256, 1024, &dgemm_ukr};
inline constexpr GemmShape<c8> cgemm_shape{2, 2, 64, 256, 512, &cgemm_ukr};
inline constexpr GemmShape<c16> zgemm_shape{2, 2, 64, 128, 512, &zgemm_ukr};
template <class T>
void gemm_direct(int kc, Op ta, Op tb, int m, int n, int k, T alpha, const T *a, int lda,
                 const T *b, int ldb, T beta, T *c, int ldc);
}  // namespace generic

// 128-bit kernels for the 32- and 64-bit builds, one compilation per level,
// each with the blocking of the processor type that runs it. The tile fills
// the vector registers: 4 by 6 with eight registers, 8 by 6 with sixteen.
#if defined(ORB_EIGHT_REGISTERS)
inline constexpr int kSseGemmMr = 4;
#else
inline constexpr int kSseGemmMr = 8;
#endif
#define ORB_SSE_GEMM_DECLS(mc, kc, nc)                                                         \
  void sgemm_ukr(int k, const float *a, const float *b, float *c, int ldc, float alpha,        \
                 float beta);                                                                  \
  inline constexpr GemmShape<float> sgemm_shape{kSseGemmMr, 6, mc, kc, nc, &sgemm_ukr};        \
  void sgemm_direct(int inner, Op ta, Op tb, int m, int n, int k, float alpha, const float *a, \
                    int lda, const float *b, int ldb, float beta, float *c, int ldc);
// Types 2 and 3: square blocks of 240 rows and columns of C (480 where the
// caches are large, see sse_packed_block) over inner blocks of 64.
namespace sse2 {
ORB_SSE_GEMM_DECLS(240, 64, 240)
// The other precisions, on every type from 2 up without a wider path (one
// compilation, for SSE2). Each tile keeps two sums per vector of it: 2 by 4
// (double), 2 by 2 (complex) and 1 by 2 (double complex) with eight
// registers, 4 by 4, 4 by 2 and 2 by 2 with sixteen. Inner blocks of 256 keep
// a sliver of A and one of B within 16 KiB of L1; a block of A takes 384 or
// 512 KiB of L2.
void dgemm_ukr(int k, const double *a, const double *b, double *c, int ldc, double alpha,
               double beta);
void cgemm_ukr(int k, const c8 *a, const c8 *b, c8 *c, int ldc, c8 alpha, c8 beta);
void zgemm_ukr(int k, const c16 *a, const c16 *b, c16 *c, int ldc, c16 alpha, c16 beta);
#if defined(ORB_EIGHT_REGISTERS)
inline constexpr GemmShape<double> dgemm_shape{2, 4, 192, 256, 2048, &dgemm_ukr};
inline constexpr GemmShape<c8> cgemm_shape{2, 2, 192, 256, 2048, &cgemm_ukr};
inline constexpr GemmShape<c16> zgemm_shape{1, 2, 128, 256, 1024, &zgemm_ukr};
#else
inline constexpr GemmShape<double> dgemm_shape{4, 4, 192, 256, 2048, &dgemm_ukr};
inline constexpr GemmShape<c8> cgemm_shape{4, 2, 192, 256, 2048, &cgemm_ukr};
inline constexpr GemmShape<c16> zgemm_shape{2, 2, 128, 256, 1024, &zgemm_ukr};
#endif
}  // namespace sse2
namespace sse3 {
ORB_SSE_GEMM_DECLS(240, 64, 240)
}
// Types 4 and 5: blocks of 120 rows of A and panels of 2040 columns of B
// (twice as wide for the large-panel kernel) over inner blocks of 256.
namespace ssse3 {
ORB_SSE_GEMM_DECLS(120, 256, 2040)
}
namespace sse42 {
ORB_SSE_GEMM_DECLS(120, 256, 2040)
}
#undef ORB_SSE_GEMM_DECLS

// 256-bit FMA kernels, the wider path of types 4 and 5. Every one sums the
// inner dimension in blocks of 256.
namespace avx2 {
#if defined(ORB_EIGHT_REGISTERS)
// Eight registers: one vector of A, six accumulators (real) or three columns
// of two (complex), and the broadcast element of B.
void sgemm_ukr_8x6(int k, const float *a, const float *b, float *c, int ldc, float alpha,
                   float beta);
void dgemm_ukr_4x6(int k, const double *a, const double *b, double *c, int ldc, double alpha,
                   double beta);
void cgemm_ukr_4x3(int k, const c8 *a, const c8 *b, c8 *c, int ldc, c8 alpha, c8 beta);
void zgemm_ukr_2x3(int k, const c16 *a, const c16 *b, c16 *c, int ldc, c16 alpha, c16 beta);
inline constexpr GemmShape<float> sgemm_shape{8, 6, 144, 256, 3072, &sgemm_ukr_8x6};
inline constexpr GemmShape<double> dgemm_shape{4, 6, 96, 256, 2046, &dgemm_ukr_4x6};
inline constexpr GemmShape<c8> cgemm_shape{4, 3, 96, 256, 2046, &cgemm_ukr_4x3};
inline constexpr GemmShape<c16> zgemm_shape{2, 3, 64, 256, 1020, &zgemm_ukr_2x3};
#else
void sgemm_ukr_16x6(int k, const float *a, const float *b, float *c, int ldc, float alpha,
                    float beta);
void dgemm_ukr_8x6(int k, const double *a, const double *b, double *c, int ldc, double alpha,
                   double beta);
void cgemm_ukr_8x2(int k, const c8 *a, const c8 *b, c8 *c, int ldc, c8 alpha, c8 beta);
void zgemm_ukr_4x2(int k, const c16 *a, const c16 *b, c16 *c, int ldc, c16 alpha, c16 beta);
inline constexpr GemmShape<float> sgemm_shape{16, 6, 144, 256, 3072, &sgemm_ukr_16x6};
inline constexpr GemmShape<double> dgemm_shape{8, 6, 96, 256, 2048, &dgemm_ukr_8x6};
inline constexpr GemmShape<c8> cgemm_shape{8, 2, 96, 256, 2048, &cgemm_ukr_8x2};
inline constexpr GemmShape<c16> zgemm_shape{4, 2, 64, 256, 1024, &zgemm_ukr_4x2};
#endif
// C := alpha A op(B) + beta C for n <= 8 with the summation order of the
// packed kernel over inner blocks of kc <= 256.
void sgemm_thin(Op tb, int m, int n, int k, int kc, float alpha, const float *a, int lda,
                const float *b, int ldb, float beta, float *c, int ldc);
inline constexpr GemmThin<float> sgemm_thin_kernel{&sgemm_thin, 8};  // sgemm_shape's inner blocks
}  // namespace avx2

// 512-bit kernels, the widest path of types 4 and 5. They sum the inner
// dimension in the blocks of the 256-bit kernels, whose thin kernel they
// share.
namespace avx512 {
#if defined(ORB_EIGHT_REGISTERS)
// Eight registers: one vector of A and seven accumulators (real) or three
// columns of two (complex); the elements of B are broadcast from memory
// inside the multiply-adds.
void sgemm_ukr_16x7(int k, const float *a, const float *b, float *c, int ldc, float alpha,
                    float beta);
void dgemm_ukr_8x7(int k, const double *a, const double *b, double *c, int ldc, double alpha,
                   double beta);
void cgemm_ukr_8x3(int k, const c8 *a, const c8 *b, c8 *c, int ldc, c8 alpha, c8 beta);
void zgemm_ukr_4x3(int k, const c16 *a, const c16 *b, c16 *c, int ldc, c16 alpha, c16 beta);
inline constexpr GemmShape<float> sgemm_shape{16, 7, 192, 256, 3066, &sgemm_ukr_16x7};
inline constexpr GemmShape<double> dgemm_shape{8, 7, 96, 256, 2037, &dgemm_ukr_8x7};
inline constexpr GemmShape<c8> cgemm_shape{8, 3, 96, 256, 2046, &cgemm_ukr_8x3};
inline constexpr GemmShape<c16> zgemm_shape{4, 3, 64, 256, 1020, &zgemm_ukr_4x3};
#else
void sgemm_ukr_32x12(int k, const float *a, const float *b, float *c, int ldc, float alpha,
                     float beta);
void dgemm_ukr_16x12(int k, const double *a, const double *b, double *c, int ldc, double alpha,
                     double beta);
void cgemm_ukr_16x6(int k, const c8 *a, const c8 *b, c8 *c, int ldc, c8 alpha, c8 beta);
void zgemm_ukr_8x6(int k, const c16 *a, const c16 *b, c16 *c, int ldc, c16 alpha, c16 beta);
inline constexpr GemmShape<float> sgemm_shape{32, 12, 192, 256, 3072, &sgemm_ukr_32x12};
inline constexpr GemmShape<double> dgemm_shape{16, 12, 96, 256, 2040, &dgemm_ukr_16x12};
inline constexpr GemmShape<c8> cgemm_shape{16, 6, 96, 256, 2046, &cgemm_ukr_16x6};
inline constexpr GemmShape<c16> zgemm_shape{8, 6, 64, 256, 1020, &zgemm_ukr_8x6};
#endif
// C := alpha A op(B) + beta C read in place, with the sums of the packed
// kernel over inner blocks of kc: the packed kernel's work without its packing, for
// products of at most max_m rows and max_n columns.
void sgemm_small(Op tb, int m, int n, int k, int kc, float alpha, const float *a, int lda,
                 const float *b, int ldb, float beta, float *c, int ldc);
inline constexpr GemmSmall<float> sgemm_small_kernel{&sgemm_small, 128, 128};
}  // namespace avx512

}  // namespace orb::kernel
