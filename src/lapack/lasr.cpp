// Generating plane rotations, the 2-by-2 triangular singular value
// problems and xLASR (rotations.h).
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>

#include "lapack/rotation_kernel.h"
#include "lapack/rotations.h"

namespace orb::lapack {

template <class R>
void lartg(R f, R g, R *c, R *s, R *r) {
  // Safe bounds: squares of values strictly between rtmin and rtmax neither
  // underflow nor overflow, nor does their sum.
  constexpr R safmin = std::numeric_limits<R>::min();
  constexpr R safmax = 1 / safmin;
  const R rtmin = std::sqrt(safmin);
  const R rtmax = std::sqrt(safmax / 2);
  const R f1 = std::abs(f), g1 = std::abs(g);
  if (g == R(0)) {
    *c = 1;
    *s = 0;
    *r = f;
  } else if (f == R(0)) {
    *c = 0;
    *s = std::copysign(R(1), g);
    *r = g1;
  } else if (f1 > rtmin && f1 < rtmax && g1 > rtmin && g1 < rtmax) {
    const R d = std::sqrt(f * f + g * g);
    *c = f1 / d;
    *r = std::copysign(d, f);
    *s = g / *r;
  } else {
    const R u = std::min(safmax, std::max(safmin, std::max(f1, g1)));
    const R fs = f / u, gs = g / u;
    const R d = std::sqrt(fs * fs + gs * gs);
    *c = std::abs(fs) / d;
    const R rr = std::copysign(d, f);
    *s = gs / rr;
    *r = rr * u;
  }
}

template <class R>
void las2(R f, R g, R h, R *ssmin, R *ssmax) {
  const R fa = std::abs(f), ga = std::abs(g), ha = std::abs(h);
  const R lo = std::min(fa, ha), hi = std::max(fa, ha);
  if (lo == R(0)) {
    *ssmin = 0;
    if (hi == R(0)) {
      *ssmax = ga;
    } else {
      const R big = std::max(hi, ga), small = std::min(hi, ga);
      const R q = small / big;
      *ssmax = big * std::sqrt(1 + q * q);
    }
    return;
  }
  if (ga < hi) {
    const R as = 1 + lo / hi, at = (hi - lo) / hi, q = ga / hi;
    const R au = q * q;
    const R c = 2 / (std::sqrt(as * as + au) + std::sqrt(at * at + au));
    *ssmin = lo * c;
    *ssmax = hi / c;
    return;
  }
  const R au = hi / ga;
  if (au == R(0)) {
    // g dwarfs f and h: the first order terms.
    *ssmin = (lo * hi) / ga;
    *ssmax = ga;
    return;
  }
  const R as = 1 + lo / hi, at = (hi - lo) / hi;
  const R x = as * au, y = at * au;
  const R c = 1 / (std::sqrt(1 + x * x) + std::sqrt(1 + y * y));
  const R m = (lo * c) * au;
  *ssmin = m + m;
  *ssmax = ga / (c + c);
}

template <class R>
void lasv2(R f, R g, R h, R *ssmin, R *ssmax, R *snr, R *csr, R *snl, R *csl) {
  constexpr R eps = std::numeric_limits<R>::epsilon() / 2;
  R ft = f, fa = std::abs(f), ht = h, ha = std::abs(h);
  // Which of f, g, h is largest in magnitude: it fixes the signs at the end.
  int pmax = 1;
  const bool swap = ha > fa;
  if (swap) {
    pmax = 3;
    std::swap(ft, ht);
    std::swap(fa, ha);
  }
  const R gt = g, ga = std::abs(g);
  R clt, crt, slt, srt;
  if (ga == R(0)) {
    *ssmin = ha;
    *ssmax = fa;
    clt = 1;
    crt = 1;
    slt = 0;
    srt = 0;
  } else {
    bool small_g = true;
    if (ga > fa) {
      pmax = 2;
      if (fa / ga < eps) {
        // g is so large that the answers follow from first order terms.
        small_g = false;
        *ssmax = ga;
        *ssmin = ha > R(1) ? fa / (ga / ha) : (fa / ga) * ha;
        clt = 1;
        slt = ht / gt;
        srt = 1;
        crt = ft / gt;
      }
    }
    if (small_g) {
      const R d = fa - ha;
      R l = d == fa ? R(1) : d / fa;  // in [0, 1]
      const R m = gt / ft;
      R t = 2 - l;
      const R mm = m * m, tt = t * t;
      const R s = std::sqrt(tt + mm);
      const R r = l == R(0) ? std::abs(m) : std::sqrt(l * l + mm);
      const R a = R(0.5) * (s + r);  // in [1, 1 + |m|]
      *ssmin = ha / a;
      *ssmax = fa * a;
      if (mm == R(0)) {
        if (l == R(0))
          t = std::copysign(R(2), ft) * std::copysign(R(1), gt);
        else
          t = gt / std::copysign(d, ft) + m / t;
      } else {
        t = (m / (s + t) + m / (r + l)) * (1 + a);
      }
      l = std::sqrt(t * t + 4);
      crt = 2 / l;
      srt = t / l;
      clt = (crt + srt * m) / a;
      slt = (ht / ft) * srt / a;
    }
  }
  if (swap) {
    *csl = srt;
    *snl = crt;
    *csr = slt;
    *snr = clt;
  } else {
    *csl = clt;
    *snl = slt;
    *csr = crt;
    *snr = srt;
  }
  R tsign;
  if (pmax == 1)
    tsign = std::copysign(R(1), *csr) * std::copysign(R(1), *csl) * std::copysign(R(1), f);
  else if (pmax == 2)
    tsign = std::copysign(R(1), *snr) * std::copysign(R(1), *csl) * std::copysign(R(1), g);
  else
    tsign = std::copysign(R(1), *snr) * std::copysign(R(1), *snl) * std::copysign(R(1), h);
  *ssmax = std::copysign(*ssmax, tsign);
  *ssmin = std::copysign(*ssmin, tsign * std::copysign(R(1), f) * std::copysign(R(1), h));
}

template <class T>
void lasr(Side side, Pivot pivot, Direct direct, int m, int n, const real_t<T> *c,
          const real_t<T> *s, T *a, int lda) {
  if (m <= 0 || n <= 0) return;
  const bool left = side == Side::kLeft;
  // The lines the rotations turn, their length and the steps along and
  // between them.
  const int lines = left ? m : n, len = left ? n : m;
  const std::ptrdiff_t along = left ? lda : 1, between = left ? 1 : lda;
  const int k = lines - 1;
  for (int t = 0; t < k; ++t) {
    const int j = direct == Direct::kForward ? t : k - 1 - t;
    if (!rotation_kernel::turns(c[j], s[j])) continue;
    int lo = j, hi = j + 1;
    if (pivot == Pivot::kTop)
      lo = 0;
    else if (pivot == Pivot::kBottom)
      hi = k;
    rotation_kernel::rotate(len, a + lo * between, a + hi * between, along, c[j], s[j]);
  }
}

#define ORB_LASR(T) \
  template void lasr(Side, Pivot, Direct, int, int, const real_t<T> *, const real_t<T> *, T *, int);
ORB_LASR(float)
ORB_LASR(double)
ORB_LASR(std::complex<float>)
ORB_LASR(std::complex<double>)
#undef ORB_LASR

#define ORB_ROT2(R)                         \
  template void lartg(R, R, R *, R *, R *); \
  template void las2(R, R, R, R *, R *);    \
  template void lasv2(R, R, R, R *, R *, R *, R *, R *, R *);
ORB_ROT2(float)
ORB_ROT2(double)
#undef ORB_ROT2

}  // namespace orb::lapack
