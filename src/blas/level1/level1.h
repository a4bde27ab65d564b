// The level-1 and sparse level-1 BLAS inside the library: one template per
// operation over float, std::complex<float>, double and std::complex<double>,
// with counts, scalars and increments by value. Each has the meaning of the
// published routine: n <= 0 returns at once (a dot product gives zero, an index
// routine 0), and a negative increment walks the vector from its far end. The
// vector work goes through the processor-dependent kernels of
// blas/kernel/level1.h, one dispatch slot per kernel and type.
#pragma once

#include <array>
#include <complex>
#include <string>
#include <vector>

#include "blas/kernel/level1.h"
#include "service/kernel_set.h"

namespace orb::blas {

// Complex values are two consecutive reals, real part first.
static_assert(sizeof(c8) == 2 * sizeof(float) && sizeof(c16) == 2 * sizeof(double));

using orb::real_t;

// ---- vectors ---------------------------------------------------------------------------------

// y := a x + y; nothing when a is zero.
template <class T>
void axpy(int n, T a, const T *x, int incx, T *y, int incy);
// y := x, bit for bit.
template <class T>
void copy(int n, const T *x, int incx, T *y, int incy);
// sum x_i y_i.
template <class T>
T dotu(int n, const T *x, int incx, const T *y, int incy);
// sum conj(x_i) y_i.
template <class T>
T dotc(int n, const T *x, int incx, const T *y, int incy);
// The Euclidean norm, without overflow or harmful underflow: single-precision
// data summed in double precision, double-precision data in three scaled sums
// (Blue's method).
template <class T>
real_t<T> nrm2(int n, const T *x, int incx);
// sum |re x_i| + |im x_i|; 0 when incx <= 0.
template <class T>
real_t<T> asum(int n, const T *x, int incx);
// x := a x; nothing when incx <= 0 or a is one.
template <class T>
void scal(int n, T a, T *x, int incx);
// x := a x with a real a (csscal, zdscal); nothing when incx <= 0 or a is one.
template <class T>
void rscal(int n, real_t<T> a, T *x, int incx);
// x <-> y, bit for bit.
template <class T>
void swap(int n, T *x, int incx, T *y, int incy);
// Plane rotation with real c and s: (x, y) := (c x + s y, c y - s x).
template <class T>
void rot(int n, T *x, int incx, T *y, int incy, real_t<T> c, real_t<T> s);
// Plane rotation with real c and complex s (zrot):
// (x, y) := (c x + s y, c y - conj(s) x).
template <class T>
void crot(int n, T *x, int incx, T *y, int incy, real_t<T> c, T s);
// Modified rotation by the flag and matrix in param[0..4] (srotm).
template <class T>
void rotm(int n, T *x, int incx, T *y, int incy, const T *param);
// The 1-based position of the first largest (iamax) or smallest (iamin)
// |x_i|, with |re| + |im| for complex values; 0 when n < 1 or incx <= 0.
template <class T>
int iamax(int n, const T *x, int incx);
template <class T>
int iamin(int n, const T *x, int incx);

// ---- generating rotations ----------------------------------------------------------------------

// Givens rotation zeroing b: a := r, b := z (the reconstruction value).
template <class R>
void rotg(R *a, R *b, R *c, R *s);
// Complex Givens rotation zeroing b: a := r; b is left alone.
template <class R>
void rotg(std::complex<R> *a, const std::complex<R> *b, R *c, std::complex<R> *s);
// Modified Givens rotation: updates d1, d2, x1 and stores the flag and matrix.
template <class R>
void rotmg(R *d1, R *d2, R *x1, R y1, R *param);

// ---- sparse vectors --------------------------------------------------------------------------
// x holds nz values for the 1-based positions indx of the full vector y.

// y(indx_i) += a x_i; nothing when a is zero.
template <class T>
void axpyi(int nz, T a, const T *x, const int *indx, T *y);
// sum x_i y(indx_i), and sum conj(x_i) y(indx_i).
template <class T>
T dotui(int nz, const T *x, const int *indx, const T *y);
template <class T>
T dotci(int nz, const T *x, const int *indx, const T *y);
// x_i := y(indx_i).
template <class T>
void gthr(int nz, const T *y, T *x, const int *indx);
// y(indx_i) := x_i.
template <class T>
void sctr(int nz, const T *x, const int *indx, T *y);

// ---- for tests ---------------------------------------------------------------------------------

// A dispatched kernel ("axpy/c" is axpy on std::complex<float>): the variant
// of its mapping for each kernel set and the variant its slot holds.
struct DispatchRecord {
  std::string name;
  std::array<const void *, cpu::kKernelSets> variants;
  const void *picked;
};
// Every level-1 kernel, its slot filled first if it was empty.
std::vector<DispatchRecord> level1_dispatch_for_testing();

}  // namespace orb::blas
