// The reference level-1 kernels: plain loops in the order of the published
// routines, for every scalar type. Complex products are written out as the
// published formulas (no recovery of infinities from NaN parts), and copies
// move bits, so a signalling NaN survives scopy.
#include <cstdint>
#include <cstring>

#include "blas/kernel/level1.h"

namespace orb::kernel::generic {
namespace {

using std::int64_t;

float fabs_(float v) {
  return __builtin_fabsf(v);
}
double fabs_(double v) {
  return __builtin_fabs(v);
}

// Split access to a scalar: the real type and its parts.
template <class R>
R re(R v) {
  return v;
}
template <class R>
R re(std::complex<R> v) {
  return v.real();
}

// The published arithmetic on either kind of scalar.
template <class R>
R mul(R a, R b) {
  return a * b;
}
template <class R>
std::complex<R> mul(std::complex<R> a, std::complex<R> b) {
  return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}
// conj(a) b
template <class R>
R cmul(R a, R b) {
  return a * b;
}
template <class R>
std::complex<R> cmul(std::complex<R> a, std::complex<R> b) {
  return {a.real() * b.real() + a.imag() * b.imag(), a.real() * b.imag() - a.imag() * b.real()};
}
template <class R>
R add(R a, R b) {
  return a + b;
}
template <class R>
std::complex<R> add(std::complex<R> a, std::complex<R> b) {
  return {a.real() + b.real(), a.imag() + b.imag()};
}
template <class R>
R sub(R a, R b) {
  return a - b;
}
template <class R>
std::complex<R> sub(std::complex<R> a, std::complex<R> b) {
  return {a.real() - b.real(), a.imag() - b.imag()};
}
// A real times either kind.
template <class R>
R rmul(R a, R b) {
  return a * b;
}
template <class R>
std::complex<R> rmul(R a, std::complex<R> b) {
  return {a * b.real(), a * b.imag()};
}
// |x| of the index routines: |re| + |im| for the complex types.
template <class T>
real_t<T> abs1(T v) {
  if constexpr (is_complex_v<T>)
    return fabs_(v.real()) + fabs_(v.imag());
  else
    return fabs_(v);
}

template <class T>
void move_bits(T *dst, const T *src) {
  std::memcpy(static_cast<void *>(dst), static_cast<const void *>(src), sizeof(T));
}

// The first position of the best |x_i| under a strict comparison, as the
// published isamax walks: x_1 stands unless a later value beats it.
template <class T, class Better>
int search(int n, const T *x, int incx, Better better) {
  real_t<T> best = abs1(x[0]);
  int at = 1;
  int64_t ix = incx;
  for (int i = 2; i <= n; ++i, ix += incx) {
    const real_t<T> v = abs1(x[ix]);
    if (better(v, best)) {
      best = v;
      at = i;
    }
  }
  return at;
}

}  // namespace

template <class T>
void axpy(int n, T a, const T *x, int incx, T *y, int incy) {
  int64_t ix = 0, iy = 0;
  for (int i = 0; i < n; ++i, ix += incx, iy += incy) y[iy] = add(y[iy], mul(a, x[ix]));
}

template <class T>
void dotu(int n, const T *x, int incx, const T *y, int incy, T *result) {
  T sum(0);
  int64_t ix = 0, iy = 0;
  for (int i = 0; i < n; ++i, ix += incx, iy += incy) sum = add(sum, mul(x[ix], y[iy]));
  *result = sum;
}

template <class T>
void dotc(int n, const T *x, int incx, const T *y, int incy, T *result) {
  T sum(0);
  int64_t ix = 0, iy = 0;
  for (int i = 0; i < n; ++i, ix += incx, iy += incy) sum = add(sum, cmul(x[ix], y[iy]));
  *result = sum;
}

template <class T>
real_t<T> asum(int n, const T *x, int incx) {
  real_t<T> sum(0);
  int64_t ix = 0;
  for (int i = 0; i < n; ++i, ix += incx) {
    if constexpr (is_complex_v<T>)
      sum = sum + fabs_(x[ix].real()) + fabs_(x[ix].imag());
    else
      sum += fabs_(x[ix]);
  }
  return sum;
}

template <class T>
void scal(int n, T a, T *x, int incx) {
  int64_t ix = 0;
  for (int i = 0; i < n; ++i, ix += incx) x[ix] = mul(a, x[ix]);
}

template <class T>
void rscal(int n, real_t<T> a, T *x, int incx) {
  int64_t ix = 0;
  for (int i = 0; i < n; ++i, ix += incx) x[ix] = rmul(a, x[ix]);
}

template <class T>
void swap(int n, T *x, int incx, T *y, int incy) {
  int64_t ix = 0, iy = 0;
  for (int i = 0; i < n; ++i, ix += incx, iy += incy) {
    T t;
    move_bits(&t, &x[ix]);
    move_bits(&x[ix], &y[iy]);
    move_bits(&y[iy], &t);
  }
}

template <class T>
void copy(int n, const T *x, int incx, T *y, int incy) {
  if (incx == 1 && incy == 1) {
    std::memmove(static_cast<void *>(y), static_cast<const void *>(x), sizeof(T) * size_t(n));
    return;
  }
  int64_t ix = 0, iy = 0;
  for (int i = 0; i < n; ++i, ix += incx, iy += incy) move_bits(&y[iy], &x[ix]);
}

template <class T>
void rot(int n, T *x, int incx, T *y, int incy, real_t<T> c, real_t<T> s) {
  int64_t ix = 0, iy = 0;
  for (int i = 0; i < n; ++i, ix += incx, iy += incy) {
    const T t = add(rmul(c, x[ix]), rmul(s, y[iy]));
    y[iy] = sub(rmul(c, y[iy]), rmul(s, x[ix]));
    x[ix] = t;
  }
}

template <class T>
void crot(int n, T *x, int incx, T *y, int incy, real_t<T> c, T s) {
  int64_t ix = 0, iy = 0;
  for (int i = 0; i < n; ++i, ix += incx, iy += incy) {
    const T t = add(rmul(c, x[ix]), mul(s, y[iy]));
    y[iy] = sub(rmul(c, y[iy]), cmul(s, x[ix]));
    x[ix] = t;
  }
}

template <class T>
void rotm(int n, T *x, int incx, T *y, int incy, const T *h) {
  const T h11 = h[0], h21 = h[1], h12 = h[2], h22 = h[3];
  int64_t ix = 0, iy = 0;
  for (int i = 0; i < n; ++i, ix += incx, iy += incy) {
    const T w = x[ix], z = y[iy];
    x[ix] = w * h11 + z * h12;
    y[iy] = w * h21 + z * h22;
  }
}

template <class T>
int iamax(int n, const T *x, int incx) {
  return search(n, x, incx, [](real_t<T> v, real_t<T> best) { return v > best; });
}

template <class T>
int iamin(int n, const T *x, int incx) {
  return search(n, x, incx, [](real_t<T> v, real_t<T> best) { return v < best; });
}

template <class T>
double sumsq(int n, const T *x, int incx) {
  double sum = 0.0;
  int64_t ix = 0;
  for (int i = 0; i < n; ++i, ix += incx) {
    const double r = re(x[ix]);
    if constexpr (is_complex_v<T>) {
      const double j = x[ix].imag();
      sum += r * r + j * j;
    } else {
      sum += r * r;
    }
  }
  return sum;
}

// ---- sparse ----------------------------------------------------------------------------------

template <class T>
void dotui(int nz, const T *x, const int *indx, const T *y, T *result) {
  T sum(0);
  for (int i = 0; i < nz; ++i) sum = add(sum, mul(x[i], y[indx[i] - 1]));
  *result = sum;
}

template <class T>
void dotci(int nz, const T *x, const int *indx, const T *y, T *result) {
  T sum(0);
  for (int i = 0; i < nz; ++i) sum = add(sum, cmul(x[i], y[indx[i] - 1]));
  *result = sum;
}

template <class T>
void axpyi(int nz, T a, const T *x, const int *indx, T *y) {
  for (int i = 0; i < nz; ++i) {
    T &yi = y[indx[i] - 1];
    yi = add(yi, mul(a, x[i]));
  }
}

template <class T>
void gthr(int nz, const T *y, T *x, const int *indx) {
  for (int i = 0; i < nz; ++i) move_bits(&x[i], &y[indx[i] - 1]);
}

template <class T>
void sctr(int nz, const T *x, const int *indx, T *y) {
  for (int i = 0; i < nz; ++i) move_bits(&y[indx[i] - 1], &x[i]);
}

#define ORB_INSTANTIATE(T)                                          \
  template void axpy(int, T, const T *, int, T *, int);             \
  template void dotu(int, const T *, int, const T *, int, T *);     \
  template void dotc(int, const T *, int, const T *, int, T *);     \
  template real_t<T> asum(int, const T *, int);                     \
  template void scal(int, T, T *, int);                             \
  template void swap(int, T *, int, T *, int);                      \
  template void copy(int, const T *, int, T *, int);                \
  template void rot(int, T *, int, T *, int, real_t<T>, real_t<T>); \
  template int iamax(int, const T *, int);                          \
  template int iamin(int, const T *, int);                          \
  template void dotui(int, const T *, const int *, const T *, T *); \
  template void dotci(int, const T *, const int *, const T *, T *); \
  template void axpyi(int, T, const T *, const int *, T *);         \
  template void gthr(int, const T *, T *, const int *);             \
  template void sctr(int, const T *, const int *, T *);
ORB_INSTANTIATE(float)
ORB_INSTANTIATE(double)
ORB_INSTANTIATE(c8)
ORB_INSTANTIATE(c16)
#undef ORB_INSTANTIATE
template void rotm(int, float *, int, float *, int, const float *);
template void rotm(int, double *, int, double *, int, const double *);
template void rscal(int, float, c8 *, int);
template void rscal(int, double, c16 *, int);
template void crot(int, c8 *, int, c8 *, int, float, c8);
template void crot(int, c16 *, int, c16 *, int, double, c16);
template double sumsq(int, const float *, int);
template double sumsq(int, const c8 *, int);

}  // namespace orb::kernel::generic
