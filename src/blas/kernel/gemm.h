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

#include "common/options.h"
#include "common/scalar.h"

namespace orb::kernel {

template <class T>
using GemmUkr = void (*)(int k, const T *a, const T *b, T *c, int ldc, T alpha, T beta);

// The shape of a micro-kernel and the blocking its driver uses with it. Each
// kernel's shape is data beside the kernel, in its instruction-set folder.
template <class T>
struct GemmShape {
  int mr, nr;      // tile
  int mc, kc, nc;  // block of A (mc by kc), panel of B (kc by nc)
  GemmUkr<T> ukr;
};

// The most elements of C a micro-kernel's tile holds (mr nr); the driver
// keeps a local tile of this size for the tiles the edges of C cut.
constexpr int kGemmMaxTile = 16 * 8;

// The direct (unpacked) kernel for small or memory-bound products:
// C := alpha op(A) op(B) + beta C straight from the caller's arrays.
// trans: 0 no transpose, 1 transpose, 2 conjugate transpose.
template <class T>
using GemmDirect = void (*)(Op ta, Op tb, int m, int n, int k, T alpha, const T *a, int lda,
                            const T *b, int ldb, T beta, T *c, int ldc);

// A kernel for products of few columns, C := alpha A op(B) + beta C with
// op(A) = A and n <= max_n, straight from A: the sums of a packed kernel with
// inner blocks of kc (the packed kernel's), without packing.
// tb: 0 op(B) = B, otherwise op(B) = B^T.
template <class T>
struct GemmThin {
  void (*run)(Op tb, int m, int n, int k, int kc, T alpha, const T *a, int lda, const T *b,
              int ldb, T beta, T *c, int ldc);
  int max_n;
};

namespace generic {
extern const GemmShape<float> sgemm_shape;  // block 64: the type-0 path
extern const GemmShape<double> dgemm_shape;
extern const GemmShape<c8> cgemm_shape;
extern const GemmShape<c16> zgemm_shape;
template <class T>
void gemm_direct(Op ta, Op tb, int m, int n, int k, T alpha, const T *a, int lda, const T *b,
                 int ldb, T beta, T *c, int ldc);
}  // namespace generic

// 128-bit kernels for the 32- and 64-bit builds, one compilation per level,
// each with the blocking of the processor type that runs it.
#define ORB_SSE_GEMM_DECLS                                                                     \
  extern const GemmShape<float> sgemm_shape;                                                   \
  void sgemm_direct(Op ta, Op tb, int m, int n, int k, float alpha, const float *a, int lda, \
                    const float *b, int ldb, float beta, float *c, int ldc);
namespace sse2 {
ORB_SSE_GEMM_DECLS
}
namespace sse3 {
ORB_SSE_GEMM_DECLS
}
namespace ssse3 {
ORB_SSE_GEMM_DECLS
}
namespace sse42 {
ORB_SSE_GEMM_DECLS
}
#undef ORB_SSE_GEMM_DECLS

// 256-bit FMA kernels (x86-64).
namespace avx2 {
void sgemm_ukr_16x6(int k, const float *a, const float *b, float *c, int ldc, float alpha,
                    float beta);
void dgemm_ukr_8x6(int k, const double *a, const double *b, double *c, int ldc, double alpha,
                   double beta);
void cgemm_ukr_8x2(int k, const c8 *a, const c8 *b, c8 *c, int ldc, c8 alpha, c8 beta);
void zgemm_ukr_4x2(int k, const c16 *a, const c16 *b, c16 *c, int ldc, c16 alpha, c16 beta);
// C := alpha A op(B) + beta C for n <= 8 with the summation order of
// sgemm_ukr_16x6 over inner blocks of kc <= 256.
void sgemm_thin(Op tb, int m, int n, int k, int kc, float alpha, const float *a, int lda,
                const float *b, int ldb, float beta, float *c, int ldc);

// The kernels' shapes and blockings.
extern const GemmShape<float> sgemm_shape;
extern const GemmShape<double> dgemm_shape;
extern const GemmShape<c8> cgemm_shape;
extern const GemmShape<c16> zgemm_shape;
extern const GemmThin<float> sgemm_thin_kernel;  // with sgemm_shape's inner blocks
}  // namespace avx2

}  // namespace orb::kernel
