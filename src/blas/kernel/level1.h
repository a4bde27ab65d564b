// Level-1 and sparse level-1 vector kernels, one set per instruction-set folder.
//
// Every kernel is a template over the scalar type (float, std::complex<float>,
// double, std::complex<double>) with the same signature in every folder. The
// caller has done the published quick returns: a kernel always gets n >= 1,
// and its vector arguments point at the first element visited, so for a
// negative increment the pointer is already at the far end of the vector
// (x + (1 - n) * incx) and the kernel walks with the increment as given.
//
// Code compiled with wide instructions must not instantiate any inline
// function that portable code may also use (the linker keeps one copy of
// each), so the vector folders touch complex values only as pairs of reals.
//
// The vector folders (sse2, sse3, sse42 with 128-bit vectors, avx2 with
// 256-bit ones) speed up contiguous vectors only; with any other increment, or
// for the last few elements, they call the generic kernel. Element-wise
// kernels round exactly as the published loops do (no fused multiply-adds), so
// every variant gives the same result bit for bit on the same arithmetic;
// sums (dot products, asum, sums of squares) may be taken in another order.
#pragma once

#include <complex>

#include "common/scalar.h"

namespace orb::kernel {

// The dense kernels. For the complex types, |x| means |re x| + |im x| as in
// the published index routines.
//   axpy   y := a x + y
//   dotu   sum x_i y_i;  dotc  sum conj(x_i) y_i  (the same for real types);
//          the dot products store their result through a pointer, so that the
//          vector folders never construct a std::complex (see above)
//   asum   sum |x_i|
//   scal   x := a x;     rscal x := a x with a real a (complex types)
//   swap   x <-> y, bit for bit
//   rot    (x, y) := (c x + s y, c y - s x) with real c and s
//   crot   (x, y) := (c x + s y, c y - conj(s) x) with real c and complex s
//          (complex types)
//   rotm   (x, y) := (h[0] x + h[2] y, h[1] x + h[3] y), h = (h11, h21, h12,
//          h22) (real types)
//   iamax, iamin  the 1-based position of the first largest (smallest) |x_i|,
//          incx >= 1; NaNs after the first element are passed over, a NaN
//          first element gives 1
//   sumsq  sum x_i^2 (both parts for complex) in double precision (float and
//          std::complex<float>): cannot overflow or underflow harmfully for
//          single-precision data
#define ORB_LEVEL1_DENSE_KERNELS                                             \
  template <class T>                                                         \
  void axpy(int n, T a, const T *x, int incx, T *y, int incy);               \
  template <class T>                                                         \
  void dotu(int n, const T *x, int incx, const T *y, int incy, T *result);   \
  template <class T>                                                         \
  void dotc(int n, const T *x, int incx, const T *y, int incy, T *result);   \
  template <class T>                                                         \
  real_t<T> asum(int n, const T *x, int incx);                               \
  template <class T>                                                         \
  void scal(int n, T a, T *x, int incx);                                     \
  template <class T>                                                         \
  void rscal(int n, real_t<T> a, T *x, int incx);                            \
  template <class T>                                                         \
  void swap(int n, T *x, int incx, T *y, int incy);                          \
  template <class T>                                                         \
  void rot(int n, T *x, int incx, T *y, int incy, real_t<T> c, real_t<T> s); \
  template <class T>                                                         \
  void crot(int n, T *x, int incx, T *y, int incy, real_t<T> c, T s);        \
  template <class T>                                                         \
  void rotm(int n, T *x, int incx, T *y, int incy, const T *h);              \
  template <class T>                                                         \
  int iamax(int n, const T *x, int incx);                                    \
  template <class T>                                                         \
  int iamin(int n, const T *x, int incx);                                    \
  template <class T>                                                         \
  double sumsq(int n, const T *x, int incx);

// The sparse kernels: x holds nz values for the 1-based positions indx of y.
//   dotui  sum x_i y(indx_i);  dotci  sum conj(x_i) y(indx_i)
//   axpyi  y(indx_i) += a x_i, in order;  gthr  x_i := y(indx_i);
//   sctr   y(indx_i) := x_i (both bit for bit)
#define ORB_LEVEL1_SPARSE_DOTS                                            \
  template <class T>                                                      \
  void dotui(int nz, const T *x, const int *indx, const T *y, T *result); \
  template <class T>                                                      \
  void dotci(int nz, const T *x, const int *indx, const T *y, T *result);

// The reference kernels, every kernel for every type it applies to; the only
// ones for copy and the sparse gather, scatter and update, where vectors do
// not help.
namespace generic {
ORB_LEVEL1_DENSE_KERNELS
ORB_LEVEL1_SPARSE_DOTS
// y := x, bit for bit.
template <class T>
void copy(int n, const T *x, int incx, T *y, int incy);
template <class T>
void axpyi(int nz, T a, const T *x, const int *indx, T *y);
template <class T>
void gthr(int nz, const T *y, T *x, const int *indx);
template <class T>
void sctr(int nz, const T *x, const int *indx, T *y);
}  // namespace generic

// 128-bit kernels: SSE2; SSE3 (complex products with addsub, pair sums);
// SSE4.2 (blends in the index searches). SSSE3 adds nothing to these, so
// processor type 4 uses the SSE3 set.
namespace sse2 {
ORB_LEVEL1_DENSE_KERNELS
}
namespace sse3 {
ORB_LEVEL1_DENSE_KERNELS
}
namespace sse42 {
ORB_LEVEL1_DENSE_KERNELS
}

// 256-bit kernels with fused multiply-adds in the sums (x86-64), the wider
// path of processor types 4 and 5; gathers make the sparse dot products worth
// a vector path here.
namespace avx2 {
ORB_LEVEL1_DENSE_KERNELS
ORB_LEVEL1_SPARSE_DOTS
}  // namespace avx2

#undef ORB_LEVEL1_DENSE_KERNELS
#undef ORB_LEVEL1_SPARSE_DOTS

}  // namespace orb::kernel
