// Level-2 BLAS kernels, one set per instruction-set folder.
//
// Every kernel works on contiguous vectors (the drivers copy strided ones into
// work buffers) and exists for float, double, complex float and complex double
// with one signature across the folders:
//
//   gemv_n    y(0:m) += alpha A x, A m by n (column-major, leading dimension
//             lda). Every column is used, also where x is zero, so that NaN
//             and infinity in A reach y as in the published routine.
//   gemv_t    y(0:n) += alpha op(A)^T x with op(A) = conj(A) when conj is set
//             (ignored for real types).
//   axpy      y(0:n) += alpha x
//   axpy2     y(0:n) += a1 x1 + a2 x2
//   axpy_dot  y(0:n) += alpha a, and *dot = sum op(a(i)) x(i), op as above:
//             one column of a symmetric or Hermitian matrix-vector product.
//   gemv_nt   y(0:m) += alpha A x and z(0:n) += alpha op(A)^T u in one pass
//             over A: an off-diagonal block of a symmetric or Hermitian
//             matrix-vector product, each column read once for both.
//
// The folders' kernels keep their helpers in anonymous namespaces; complex
// values cross these signatures as std::complex but the vector folders read
// them as pairs of reals, so no library template is instantiated there.
#pragma once

#include <complex>

#include "common/scalar.h"

namespace orb::kernel::level2 {

template <class T>
using GemvN = void (*)(int m, int n, T alpha, const T *a, int lda, const T *x, T *y);
template <class T>
using GemvT = void (*)(int m, int n, T alpha, const T *a, int lda, const T *x, T *y, bool conj);
template <class T>
using Axpy = void (*)(int n, T alpha, const T *x, T *y);
template <class T>
using Axpy2 = void (*)(int n, T a1, const T *x1, T a2, const T *x2, T *y);
template <class T>
using AxpyDot = void (*)(int n, T alpha, const T *a, const T *x, T *y, bool conj, T *dot);
template <class T>
using GemvNT = void (*)(int m, int n, T alpha, const T *a, int lda, const T *x, T *y, const T *u,
                        T *z, bool conj);

#define ORB_LEVEL2_KERNELS_OF(T)                                                               \
  void gemv_n(int m, int n, T alpha, const T *a, int lda, const T *x, T *y);                   \
  void gemv_t(int m, int n, T alpha, const T *a, int lda, const T *x, T *y, bool conj);        \
  void axpy(int n, T alpha, const T *x, T *y);                                                 \
  void axpy2(int n, T a1, const T *x1, T a2, const T *x2, T *y);                               \
  void axpy_dot(int n, T alpha, const T *a, const T *x, T *y, bool conj, T *dot);              \
  void gemv_nt(int m, int n, T alpha, const T *a, int lda, const T *x, T *y, const T *u, T *z, \
               bool conj);
#define ORB_LEVEL2_KERNELS     \
  ORB_LEVEL2_KERNELS_OF(float) \
  ORB_LEVEL2_KERNELS_OF(double) ORB_LEVEL2_KERNELS_OF(c8) ORB_LEVEL2_KERNELS_OF(c16)

// Portable reference kernels (type 0): plain loops in the published order.
namespace generic {
ORB_LEVEL2_KERNELS
}
// 128-bit kernels, one compilation per level.
namespace sse2 {
ORB_LEVEL2_KERNELS
}
namespace sse3 {
ORB_LEVEL2_KERNELS
}
namespace ssse3 {
ORB_LEVEL2_KERNELS
}
namespace sse42 {
ORB_LEVEL2_KERNELS
}
// 256-bit kernels with fused multiply-add (x86-64 only), the wider path of
// types 4 and 5.
namespace avx2 {
ORB_LEVEL2_KERNELS
}

#undef ORB_LEVEL2_KERNELS
#undef ORB_LEVEL2_KERNELS_OF

}  // namespace orb::kernel::level2
