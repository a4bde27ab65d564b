// The real Schur form's small pieces: see schur_swap.h.
#include "lapack/schur_swap.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace orb::lapack {

namespace {

template <class R>
R sign_of(R a, R b) {
  return std::copysign(std::abs(a), b);
}

}  // namespace

template <class R>
void lanv2(R &a, R &b, R &c, R &d, R &rt1r, R &rt1i, R &rt2r, R &rt2i, R &cs, R &sn) {
  constexpr R kMultiple = 4;
  const R safmin = std::numeric_limits<R>::min();
  const R eps = std::numeric_limits<R>::epsilon();
  // A power of the base near sqrt(safmin / eps): the bounds that keep the
  // trace and off-diagonal sum in range while the diagonal is equalized.
  const R small = std::pow(R(2), static_cast<int>(std::log(safmin / eps) / std::log(R(2)) / R(2)));
  const R big = 1 / small;
  if (c == 0) {
    cs = 1;
    sn = 0;
  } else if (b == 0) {
    // Swap rows and columns.
    cs = 0;
    sn = 1;
    std::swap(a, d);
    b = -c;
    c = 0;
  } else if (a - d == 0 && std::signbit(b) != std::signbit(c)) {
    cs = 1;
    sn = 0;
  } else {
    R temp = a - d;
    R p = temp / 2;
    const R bcmax = std::max(std::abs(b), std::abs(c));
    const R bcmis = std::min(std::abs(b), std::abs(c)) * sign_of(R(1), b) * sign_of(R(1), c);
    R scale = std::max(std::abs(p), bcmax);
    R z = (p / scale) * p + (bcmax / scale) * bcmis;
    if (z >= kMultiple * eps) {
      // Real eigenvalues: a and d from the roots, then the rotation.
      z = p + sign_of(std::sqrt(scale) * std::sqrt(z), p);
      a = d + z;
      d = d - (bcmax / z) * bcmis;
      const R tau = std::hypot(c, z);
      cs = z / tau;
      sn = c / tau;
      b = b - c;
      c = 0;
    } else {
      // Complex or nearly equal real eigenvalues: equalize the diagonal.
      R sigma = b + c;
      for (int count = 1; count <= 20; ++count) {
        scale = std::max(std::abs(temp), std::abs(sigma));
        if (scale >= big) {
          sigma *= small;
          temp *= small;
        } else if (scale <= small) {
          sigma *= big;
          temp *= big;
        } else {
          break;
        }
      }
      p = temp / 2;
      R tau = std::hypot(sigma, temp);
      cs = std::sqrt((1 + std::abs(sigma) / tau) / 2);
      sn = -(p / (tau * cs)) * sign_of(R(1), sigma);
      // [aa bb; cc dd] = [a b; c d] [cs -sn; sn cs]
      const R aa = a * cs + b * sn, bb = -a * sn + b * cs;
      const R cc = c * cs + d * sn, dd = -c * sn + d * cs;
      // [a b; c d] = [cs sn; -sn cs] [aa bb; cc dd]
      volatile R bcs = bb * cs, dsn = dd * sn, asn = aa * sn, ccs = cc * cs;
      a = aa * cs + cc * sn;
      b = bcs + dsn;
      c = -asn + ccs;
      d = -bb * sn + dd * cs;
      temp = (a + d) / 2;
      a = temp;
      d = temp;
      if (c != 0) {
        if (b != 0) {
          if (std::signbit(b) == std::signbit(c)) {
            // Real eigenvalues after all: make the block upper triangular.
            const R sab = std::sqrt(std::abs(b)), sac = std::sqrt(std::abs(c));
            p = sign_of(sab * sac, c);
            tau = 1 / std::sqrt(std::abs(b + c));
            a = temp + p;
            d = temp - p;
            b = b - c;
            c = 0;
            const R cs1 = sab * tau, sn1 = sac * tau;
            temp = cs * cs1 - sn * sn1;
            sn = cs * sn1 + sn * cs1;
            cs = temp;
          }
        } else {
          b = -c;
          c = 0;
          temp = cs;
          cs = -sn;
          sn = temp;
        }
      }
    }
  }
  rt1r = a;
  rt2r = d;
  if (c == 0) {
    rt1i = 0;
    rt2i = 0;
  } else {
    rt1i = std::sqrt(std::abs(b)) * std::sqrt(std::abs(c));
    rt2i = -rt1i;
  }
}

template void lanv2<float>(float &, float &, float &, float &, float &, float &, float &, float &,
                           float &, float &);
template void lanv2<double>(double &, double &, double &, double &, double &, double &, double &,
                            double &, double &, double &);

}  // namespace orb::lapack
