// The dense level-1 operations: the published quick returns and walks, then
// the processor-dependent kernel through its dispatch slot.
#include <cmath>
#include <cstdint>
#include <limits>

#include "blas/level1/kernels.h"
#include "blas/level1/level1.h"

namespace orb::blas {
namespace l1 {
namespace {

template <class T>
Kernel<ORB_L1_FN(axpy, T)> k_axpy{ORB_L1_DENSE(axpy, T)};
template <class T>
Kernel<ORB_L1_FN(copy, T)> k_copy{ORB_L1_SINGLE(copy, T)};
template <class T>
Kernel<ORB_L1_FN(dotu, T)> k_dotu{ORB_L1_DENSE(dotu, T)};
template <class T>
Kernel<ORB_L1_FN(dotc, T)> k_dotc{ORB_L1_DENSE(dotc, T)};
template <class T>
Kernel<ORB_L1_FN(sumsq, T)> k_sumsq{ORB_L1_DENSE(sumsq, T)};
template <class T>
Kernel<ORB_L1_FN(asum, T)> k_asum{ORB_L1_DENSE(asum, T)};
template <class T>
Kernel<ORB_L1_FN(scal, T)> k_scal{ORB_L1_DENSE(scal, T)};
template <class T>
Kernel<ORB_L1_FN(rscal, T)> k_rscal{ORB_L1_DENSE(rscal, T)};
template <class T>
Kernel<ORB_L1_FN(swap, T)> k_swap{ORB_L1_DENSE(swap, T)};
template <class T>
Kernel<ORB_L1_FN(rot, T)> k_rot{ORB_L1_DENSE(rot, T)};
template <class T>
Kernel<ORB_L1_FN(crot, T)> k_crot{ORB_L1_DENSE(crot, T)};
template <class T>
Kernel<ORB_L1_FN(rotm, T)> k_rotm{ORB_L1_DENSE(rotm, T)};
template <class T>
Kernel<ORB_L1_FN(iamax, T)> k_iamax{ORB_L1_DENSE(iamax, T)};
template <class T>
Kernel<ORB_L1_FN(iamin, T)> k_iamin{ORB_L1_DENSE(iamin, T)};

// floor(v / 2) and ceil(v / 2) for either sign.
constexpr int floor_half(int v) {
  return v >= 0 ? v / 2 : -((1 - v) / 2);
}
constexpr int ceil_half(int v) {
  return -floor_half(-v);
}

// Blue's thresholds and scalings for a real type: values above big are summed
// scaled down by sbig, values below small scaled up by ssml, the rest as they
// are; none of the three sums can overflow or lose the small values.
template <class R>
struct Blue {
  using L = std::numeric_limits<R>;
  const R small = std::ldexp(R(1), ceil_half(L::min_exponent - 1));
  const R big = std::ldexp(R(1), floor_half(L::max_exponent - L::digits + 1));
  const R ssml = std::ldexp(R(1), -floor_half(L::min_exponent - L::digits));
  const R sbig = std::ldexp(R(1), -ceil_half(L::max_exponent + L::digits - 1));
};

template <class T>
real_t<T> blue_nrm2(int n, const T *x, int incx) {
  using R = real_t<T>;
  const Blue<R> k;
  R asml = 0, amed = 0, abig = 0;
  bool notbig = true;
  auto take = [&](R v) {
    const R a = std::fabs(v);
    if (a > k.big) {
      abig += (a * k.sbig) * (a * k.sbig);
      notbig = false;
    } else if (a < k.small) {
      if (notbig) asml += (a * k.ssml) * (a * k.ssml);
    } else {
      amed += a * a;  // a NaN lands here
    }
  };
  std::int64_t ix = 0;
  for (int i = 0; i < n; ++i, ix += incx) {
    if constexpr (orb::is_complex_v<T>) {
      take(x[ix].real());
      take(x[ix].imag());
    } else {
      take(x[ix]);
    }
  }
  const bool med = amed > 0 || amed != amed;
  if (abig > 0) {
    // The middle values only matter if they are not negligible after scaling.
    if (med) abig += (amed * k.sbig) * k.sbig;
    return std::sqrt(abig) / k.sbig;
  }
  if (asml > 0) {
    if (!med) return std::sqrt(asml) / k.ssml;
    const R m = std::sqrt(amed), s = std::sqrt(asml) / k.ssml;
    const R lo = s > m ? m : s, hi = s > m ? s : m;
    return std::sqrt(hi * hi * (1 + (lo / hi) * (lo / hi)));
  }
  return std::sqrt(amed);
}

}  // namespace

void add_dense_records(std::vector<DispatchRecord> &out) {
  auto all = [&](auto tag) {
    using T = decltype(tag);
    out.push_back(record<T>("axpy", k_axpy<T>));
    out.push_back(record<T>("copy", k_copy<T>));
    out.push_back(record<T>("dotu", k_dotu<T>));
    out.push_back(record<T>("dotc", k_dotc<T>));
    out.push_back(record<T>("asum", k_asum<T>));
    out.push_back(record<T>("scal", k_scal<T>));
    out.push_back(record<T>("swap", k_swap<T>));
    out.push_back(record<T>("rot", k_rot<T>));
    out.push_back(record<T>("iamax", k_iamax<T>));
    out.push_back(record<T>("iamin", k_iamin<T>));
    if constexpr (orb::is_complex_v<T>) {
      out.push_back(record<T>("rscal", k_rscal<T>));
      out.push_back(record<T>("crot", k_crot<T>));
    } else {
      out.push_back(record<T>("rotm", k_rotm<T>));
    }
    if constexpr (sizeof(real_t<T>) == sizeof(float)) out.push_back(record<T>("sumsq", k_sumsq<T>));
  };
  all(float{});
  all(c8{});
  all(double{});
  all(c16{});
}

}  // namespace l1

using l1::first;

template <class T>
void axpy(int n, T a, const T *x, int incx, T *y, int incy) {
  if (n <= 0 || l1::is_zero(a)) return;
  l1::k_axpy<T>(n, a, first(x, n, incx), incx, first(y, n, incy), incy);
}

template <class T>
void copy(int n, const T *x, int incx, T *y, int incy) {
  if (n <= 0) return;
  l1::k_copy<T>(n, first(x, n, incx), incx, first(y, n, incy), incy);
}

template <class T>
T dotu(int n, const T *x, int incx, const T *y, int incy) {
  T r(0);
  if (n > 0) l1::k_dotu<T>(n, first(x, n, incx), incx, first(y, n, incy), incy, &r);
  return r;
}

template <class T>
T dotc(int n, const T *x, int incx, const T *y, int incy) {
  T r(0);
  if (n > 0) l1::k_dotc<T>(n, first(x, n, incx), incx, first(y, n, incy), incy, &r);
  return r;
}

template <class T>
real_t<T> nrm2(int n, const T *x, int incx) {
  if (n <= 0) return 0;
  x = first(x, n, incx);
  if constexpr (sizeof(real_t<T>) == sizeof(float))
    return real_t<T>(std::sqrt(l1::k_sumsq<T>(n, x, incx)));
  else
    return l1::blue_nrm2(n, x, incx);
}

template <class T>
real_t<T> asum(int n, const T *x, int incx) {
  if (n <= 0 || incx <= 0) return 0;
  return l1::k_asum<T>(n, x, incx);
}

template <class T>
void scal(int n, T a, T *x, int incx) {
  if (n <= 0 || incx <= 0 || a == T(1)) return;
  l1::k_scal<T>(n, a, x, incx);
}

template <class T>
void rscal(int n, real_t<T> a, T *x, int incx) {
  if (n <= 0 || incx <= 0 || a == 1) return;
  l1::k_rscal<T>(n, a, x, incx);
}

template <class T>
void swap(int n, T *x, int incx, T *y, int incy) {
  if (n <= 0) return;
  l1::k_swap<T>(n, first(x, n, incx), incx, first(y, n, incy), incy);
}

template <class T>
void rot(int n, T *x, int incx, T *y, int incy, real_t<T> c, real_t<T> s) {
  if (n <= 0) return;
  l1::k_rot<T>(n, first(x, n, incx), incx, first(y, n, incy), incy, c, s);
}

template <class T>
void crot(int n, T *x, int incx, T *y, int incy, real_t<T> c, T s) {
  if (n <= 0) return;
  l1::k_crot<T>(n, first(x, n, incx), incx, first(y, n, incy), incy, c, s);
}

template <class T>
void rotm(int n, T *x, int incx, T *y, int incy, const T *param) {
  const T flag = param[0];
  if (n <= 0 || flag + 2 == 0) return;
  // The full matrix (h11, h21, h12, h22); the unit entries of the shorter
  // forms multiply exactly, so the results are those of the published loops.
  T h[4];
  if (flag < 0) {
    h[0] = param[1], h[1] = param[2], h[2] = param[3], h[3] = param[4];
  } else if (flag == 0) {
    h[0] = 1, h[1] = param[2], h[2] = param[3], h[3] = 1;
  } else {
    h[0] = param[1], h[1] = -1, h[2] = 1, h[3] = param[4];
  }
  l1::k_rotm<T>(n, first(x, n, incx), incx, first(y, n, incy), incy, h);
}

template <class T>
int iamax(int n, const T *x, int incx) {
  if (n < 1 || incx <= 0) return 0;
  return l1::k_iamax<T>(n, x, incx);
}

template <class T>
int iamin(int n, const T *x, int incx) {
  if (n < 1 || incx <= 0) return 0;
  return l1::k_iamin<T>(n, x, incx);
}

std::vector<DispatchRecord> level1_dispatch_for_testing() {
  std::vector<DispatchRecord> out;
  l1::add_dense_records(out);
  l1::add_sparse_records(out);
  return out;
}

#define ORB_INSTANTIATE(T)                                          \
  template void axpy(int, T, const T *, int, T *, int);             \
  template void copy(int, const T *, int, T *, int);                \
  template T dotu(int, const T *, int, const T *, int);             \
  template T dotc(int, const T *, int, const T *, int);             \
  template real_t<T> nrm2(int, const T *, int);                     \
  template real_t<T> asum(int, const T *, int);                     \
  template void scal(int, T, T *, int);                             \
  template void swap(int, T *, int, T *, int);                      \
  template void rot(int, T *, int, T *, int, real_t<T>, real_t<T>); \
  template int iamax(int, const T *, int);                          \
  template int iamin(int, const T *, int);
ORB_INSTANTIATE(float)
ORB_INSTANTIATE(double)
ORB_INSTANTIATE(c8)
ORB_INSTANTIATE(c16)
#undef ORB_INSTANTIATE
template void rscal(int, float, c8 *, int);
template void rscal(int, double, c16 *, int);
template void crot(int, c8 *, int, c8 *, int, float, c8);
template void crot(int, c16 *, int, c16 *, int, double, c16);
template void rotm(int, float *, int, float *, int, const float *);
template void rotm(int, double *, int, double *, int, const double *);

}  // namespace orb::blas
