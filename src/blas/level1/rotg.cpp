// Generating plane rotations: the Givens rotation (real and complex) and the
// modified Givens rotation, with the published results, including their
// scaling against overflow and underflow.
#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include "blas/level1/level1.h"

namespace orb::blas {
namespace {

// The safe range: safmin is the smallest normal number and safmax a power of
// two whose reciprocal is still normal.
template <class R>
struct Safe {
  using L = std::numeric_limits<R>;
  static R min() { return std::ldexp(R(1), std::max(L::min_exponent - 1, 1 - L::max_exponent)); }
  static R max() { return std::ldexp(R(1), std::max(1 - L::min_exponent, L::max_exponent - 1)); }
};

template <class R>
R sq(R v) {
  return v * v;
}
template <class R>
R abssq(std::complex<R> v) {
  return v.real() * v.real() + v.imag() * v.imag();
}
// The componentwise products and quotients of the published complex code.
template <class R>
std::complex<R> mul(std::complex<R> a, std::complex<R> b) {
  return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}
template <class R>
std::complex<R> times(std::complex<R> a, R r) {
  return {a.real() * r, a.imag() * r};
}
template <class R>
std::complex<R> over(std::complex<R> a, R r) {
  return {a.real() / r, a.imag() / r};
}

}  // namespace

template <class R>
void rotg(R *a, R *b, R *c, R *s) {
  const R safmin = Safe<R>::min(), safmax = Safe<R>::max();
  const R anorm = std::fabs(*a), bnorm = std::fabs(*b);
  if (bnorm == 0) {
    *c = 1;
    *s = 0;
    *b = 0;
  } else if (anorm == 0) {
    *c = 0;
    *s = 1;
    *a = *b;
    *b = 1;
  } else {
    // r takes the sign of the larger of a and b.
    const R scl = std::min(safmax, std::max(safmin, std::max(anorm, bnorm)));
    const R sigma = std::copysign(R(1), anorm > bnorm ? *a : *b);
    const R r = sigma * (scl * std::sqrt(sq(*a / scl) + sq(*b / scl)));
    *c = *a / r;
    *s = *b / r;
    // z recovers c and s: s = z if |z| < 1, c = 1/z if |z| > 1, c = 0 if z = 1.
    const R z = anorm > bnorm ? *s : *c != 0 ? 1 / *c : R(1);
    *a = r;
    *b = z;
  }
}

template <class R>
void rotg(std::complex<R> *a, const std::complex<R> *b, R *c, std::complex<R> *s) {
  using C = std::complex<R>;
  const R safmin = Safe<R>::min(), safmax = Safe<R>::max();
  const R rtmin = std::sqrt(safmin);
  const C f = *a, g = *b;
  C r;
  if (g == C(0)) {
    *c = 1;
    *s = 0;
    r = f;
  } else if (f == C(0)) {
    *c = 0;
    if (g.real() == 0 || g.imag() == 0) {
      const R d = std::fabs(g.real() == 0 ? g.imag() : g.real());
      *s = over(std::conj(g), d);
      r = d;
    } else {
      const R g1 = std::max(std::fabs(g.real()), std::fabs(g.imag()));
      const R rtmax = std::sqrt(safmax / 2);
      if (g1 > rtmin && g1 < rtmax) {
        const R d = std::sqrt(abssq(g));
        *s = over(std::conj(g), d);
        r = d;
      } else {
        const R u = std::min(safmax, std::max(safmin, g1));
        const C gs = over(g, u);
        const R d = std::sqrt(abssq(gs));
        *s = over(std::conj(gs), d);
        r = d * u;
      }
    }
  } else {
    const R f1 = std::max(std::fabs(f.real()), std::fabs(f.imag()));
    const R g1 = std::max(std::fabs(g.real()), std::fabs(g.imag()));
    R rtmax = std::sqrt(safmax / 4);
    // With f and g scaled by 1/u (u = 1 when both are in range) and f by w
    // more when it is much smaller than g: c = |f| / sqrt(|f|^2 + |g|^2),
    // r = f / c and s = conj(g) f / (|f| sqrt(|f|^2 + |g|^2)).
    R u = 1, w = 1;
    C fs = f, gs = g;
    if (!(f1 > rtmin && f1 < rtmax && g1 > rtmin && g1 < rtmax)) {
      u = std::min(safmax, std::max(safmin, std::max(f1, g1)));
      gs = over(g, u);
      if (f1 / u < rtmin) {
        const R v = std::min(safmax, std::max(safmin, f1));
        w = v / u;
        fs = over(f, v);
      } else {
        fs = over(f, u);
      }
    }
    const R f2 = abssq(fs), g2 = abssq(gs);
    const R h2 = f2 * (w * w) + g2;
    if (f2 >= h2 * safmin) {
      *c = std::sqrt(f2 / h2);
      r = over(fs, *c);
      rtmax *= 2;
      if (f2 > rtmin && h2 < rtmax)
        *s = mul(std::conj(gs), over(fs, std::sqrt(f2 * h2)));
      else
        *s = mul(std::conj(gs), over(r, h2));
    } else {
      const R d = std::sqrt(f2 * h2);
      *c = f2 / d;
      r = *c >= safmin ? over(fs, *c) : times(fs, h2 / d);
      *s = mul(std::conj(gs), over(fs, d));
    }
    *c *= w;
    r = times(r, u);
  }
  *a = r;
}

template <class R>
void rotmg(R *d1, R *d2, R *x1, R y1, R *param) {
  // Rescaling keeps d1 and |d2| within [rgamsq, gamsq], by factors of gam^2;
  // the bounds are the published decimal values of each precision.
  constexpr bool single = std::is_same_v<R, float>;
  const R gam = 4096, gamsq = single ? R(1.67772e7) : R(16777216.0);
  const R rgamsq = single ? R(5.96046e-8) : R(5.9604645e-8);
  R flag, h11 = 0, h12 = 0, h21 = 0, h22 = 0;
  auto zero_all = [&] {
    flag = -1;
    h11 = h12 = h21 = h22 = 0;
    *d1 = *d2 = *x1 = 0;
  };
  if (*d1 < 0) {
    zero_all();
  } else {
    const R p2 = *d2 * y1;
    if (p2 == 0) {
      param[0] = -2;
      return;
    }
    const R p1 = *d1 * *x1, q2 = p2 * y1, q1 = p1 * *x1;
    if (std::fabs(q1) > std::fabs(q2)) {
      h21 = -y1 / *x1;
      h12 = p2 / p1;
      const R u = 1 - h12 * h21;
      if (u > 0) {
        flag = 0;
        *d1 /= u;
        *d2 /= u;
        *x1 *= u;
      } else {
        zero_all();
      }
    } else if (q2 < 0) {
      zero_all();
    } else {
      flag = 1;
      h11 = p1 / p2;
      h22 = *x1 / y1;
      const R u = 1 + h11 * h22;
      const R t = *d2 / u;
      *d2 = *d1 / u;
      *d1 = t;
      *x1 = y1 * u;
    }
    // Going to the full form fills in the unit entries the short forms
    // imply (once: a matrix already in full form keeps its scaled entries).
    auto make_full = [&] {
      if (flag == 0) {
        h11 = h22 = 1;
      } else if (flag == 1) {
        h21 = -1;
        h12 = 1;
      }
      flag = -1;
    };
    // (An infinite d would never come into range: it is left as it is.)
    if (*d1 != 0) {
      while ((*d1 <= rgamsq || *d1 >= gamsq) && std::isfinite(*d1)) {
        make_full();
        if (*d1 <= rgamsq) {
          *d1 *= gam * gam;
          *x1 /= gam;
          h11 /= gam;
          h12 /= gam;
        } else {
          *d1 /= gam * gam;
          *x1 *= gam;
          h11 *= gam;
          h12 *= gam;
        }
      }
    }
    if (*d2 != 0) {
      while ((std::fabs(*d2) <= rgamsq || std::fabs(*d2) >= gamsq) && std::isfinite(*d2)) {
        make_full();
        if (std::fabs(*d2) <= rgamsq) {
          *d2 *= gam * gam;
          h21 /= gam;
          h22 /= gam;
        } else {
          *d2 /= gam * gam;
          h21 *= gam;
          h22 *= gam;
        }
      }
    }
  }
  if (flag < 0) {
    param[1] = h11;
    param[2] = h21;
    param[3] = h12;
    param[4] = h22;
  } else if (flag == 0) {
    param[2] = h21;
    param[3] = h12;
  } else {
    param[1] = h11;
    param[4] = h22;
  }
  param[0] = flag;
}

template void rotg(float *, float *, float *, float *);
template void rotg(double *, double *, double *, double *);
template void rotg(c8 *, const c8 *, float *, c8 *);
template void rotg(c16 *, const c16 *, double *, c16 *);
template void rotmg(float *, float *, float *, float, float *);
template void rotmg(double *, double *, double *, double, double *);

}  // namespace orb::blas
