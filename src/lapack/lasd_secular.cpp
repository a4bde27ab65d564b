// The secular equation of the bidiagonal divide and conquer: a rank-one
// modification's singular values are the roots of
//   f(s) = 1 + rho sum_j z_j^2 / ((d_j - s) (d_j + s)),
// one between each pair of consecutive d_j and the last beyond d_n. Each
// root is found from its nearer pole as an offset tau, with the differences
// d_j - sigma kept explicitly (delta) so the vectors built from them are
// accurate; the iteration fits rational functions to one or both sides
// (the 2-pole and 3-pole "middle way" steps) and keeps the root bracketed.
#include <algorithm>
#include <cmath>
#include <limits>

#include "lapack/laed.h"
#include "lapack/lasd.h"

namespace orb::lapack::dc {
namespace {

// A root of c x^2 - a x + b = 0, from the form that does not cancel:
// (a - sqrt) / 2c when a <= 0, otherwise 2b / (a + sqrt).
template <class R>
R quadratic_root(R a, R b, R c, bool a_le_0) {
  const R disc = std::sqrt(std::abs(a * a - 4 * b * c));
  if (a_le_0) return (a - disc) / (2 * c);
  return 2 * b / (a + disc);
}

// One step of the 3-pole rational fit (xLAED6): the root tau of
//   rho + sum_{i=1..3} z_i / (d_i - tau) = 0
// nearest the origin between the two poles on the side `orgati` selects,
// for the iteration's step kniter; finit is the function's value at 0.
// Returns 1 when it did not converge (the caller falls back to 2 poles).
template <class R>
int laed6(int kniter, bool orgati, R rho, const R d[3], const R z[3], R finit, R &tau) {
  constexpr int kMaxIter = 40;
  R lbd = orgati ? d[1] : d[0];
  R ubd = orgati ? d[2] : d[1];
  if (finit < 0)
    lbd = 0;
  else
    ubd = 0;
  tau = 0;
  if (kniter == 2) {
    R a, b, c;
    if (orgati) {
      const R t = (d[2] - d[1]) / 2;
      c = rho + z[0] / ((d[0] - d[1]) - t);
      a = c * (d[1] + d[2]) + z[1] + z[2];
      b = c * d[1] * d[2] + z[1] * d[2] + z[2] * d[1];
    } else {
      const R t = (d[0] - d[1]) / 2;
      c = rho + z[2] / ((d[2] - d[1]) - t);
      a = c * (d[0] + d[1]) + z[0] + z[1];
      b = c * d[0] * d[1] + z[0] * d[1] + z[1] * d[0];
    }
    const R big = std::max({std::abs(a), std::abs(b), std::abs(c)});
    a /= big, b /= big, c /= big;
    if (c == 0)
      tau = b / a;
    else
      tau = quadratic_root(a, b, c, a <= 0);
    if (tau < lbd || tau > ubd) tau = (lbd + ubd) / 2;
    if (d[0] == tau || d[1] == tau || d[2] == tau) {
      tau = 0;
    } else {
      const R t = finit + tau * z[0] / (d[0] * (d[0] - tau)) + tau * z[1] / (d[1] * (d[1] - tau)) +
                  tau * z[2] / (d[2] * (d[2] - tau));
      if (t <= 0)
        lbd = tau;
      else
        ubd = tau;
      if (std::abs(finit) <= std::abs(t)) tau = 0;
    }
  }
  // Scale the poles up when the root lies very close to one of them.
  const R small1 = std::ldexp(R(1), static_cast<int>(std::log2(std::numeric_limits<R>::min()) / 3));
  const R sminv1 = 1 / small1, small2 = small1 * small1, sminv2 = sminv1 * sminv1;
  const R gap = orgati ? std::min(std::abs(d[1] - tau), std::abs(d[2] - tau))
                       : std::min(std::abs(d[0] - tau), std::abs(d[1] - tau));
  R ds[3], zs[3];
  bool scaled = false;
  R sclinv = 1;
  if (gap <= small1) {
    scaled = true;
    const R sclfac = gap <= small2 ? sminv2 : sminv1;
    sclinv = gap <= small2 ? small2 : small1;
    for (int i = 0; i < 3; ++i) ds[i] = d[i] * sclfac, zs[i] = z[i] * sclfac;
    tau *= sclfac, lbd *= sclfac, ubd *= sclfac;
  } else {
    for (int i = 0; i < 3; ++i) ds[i] = d[i], zs[i] = z[i];
  }
  R fc = 0, df = 0, ddf = 0;
  for (int i = 0; i < 3; ++i) {
    const R t = 1 / (ds[i] - tau), t1 = zs[i] * t, t2 = t1 * t;
    fc += t1 / ds[i];
    df += t2;
    ddf += t2 * t;
  }
  R f = finit + tau * fc;
  int info = 0;
  if (std::abs(f) > 0) {
    if (f <= 0)
      lbd = tau;
    else
      ubd = tau;
    info = 1;
    for (int iter = 2; iter <= kMaxIter; ++iter) {
      const R t1 = orgati ? ds[1] - tau : ds[0] - tau;
      const R t2 = orgati ? ds[2] - tau : ds[1] - tau;
      R a = (t1 + t2) * f - t1 * t2 * df;
      R b = t1 * t2 * f;
      R c = f - (t1 + t2) * df + t1 * t2 * ddf;
      const R big = std::max({std::abs(a), std::abs(b), std::abs(c)});
      a /= big, b /= big, c /= big;
      R eta = c == 0 ? b / a : quadratic_root(a, b, c, a <= 0);
      if (f * eta >= 0) eta = -f / df;
      tau += eta;
      if (tau < lbd || tau > ubd) tau = (lbd + ubd) / 2;
      fc = 0, df = 0, ddf = 0;
      R erretm = 0;
      bool on_pole = false;
      for (int i = 0; i < 3; ++i) {
        if (ds[i] - tau == 0) {
          on_pole = true;
          break;
        }
        const R t = 1 / (ds[i] - tau), q1 = zs[i] * t, q2 = q1 * t, q4 = q1 / ds[i];
        fc += q4;
        erretm += std::abs(q4);
        df += q2;
        ddf += q2 * t;
      }
      if (on_pole) {
        info = 0;
        break;
      }
      f = finit + tau * fc;
      erretm = 8 * (std::abs(finit) + std::abs(tau) * erretm) + std::abs(tau) * df;
      if (std::abs(f) <= 4 * eps<R>() * erretm || (ubd - lbd) <= 4 * eps<R>() * std::abs(tau)) {
        info = 0;
        break;
      }
      if (f <= 0)
        lbd = tau;
      else
        ubd = tau;
    }
  }
  if (scaled) tau *= sclinv;
  return info;
}

// The secular equation of order 2 (xLASD5), in closed form.
template <class R>
void lasd5(int i, const R d[2], const R z[2], R delta[2], R rho, R &dsigma, R work[2]) {
  const R del = d[1] - d[0], delsq = del * (d[1] + d[0]);
  const R zz = rho * (z[0] * z[0] + z[1] * z[1]);
  if (i == 1) {
    const R w =
        1 + 4 * rho * (z[1] * z[1] / (d[0] + 3 * d[1]) - z[0] * z[0] / (3 * d[0] + d[1])) / del;
    if (w > 0) {
      // The root lies nearer d_1.
      const R b = delsq + zz, c = rho * z[0] * z[0] * delsq;
      R tau = 2 * c / (b + std::sqrt(std::abs(b * b - 4 * c)));
      tau = tau / (d[0] + std::sqrt(d[0] * d[0] + tau));
      dsigma = d[0] + tau;
      delta[0] = -tau;
      delta[1] = del - tau;
      work[0] = 2 * d[0] + tau;
      work[1] = (d[0] + tau) + d[1];
      return;
    }
    const R b = -delsq + zz, c = rho * z[1] * z[1] * delsq;
    R tau = b > 0 ? -2 * c / (b + std::sqrt(b * b + 4 * c)) : (b - std::sqrt(b * b + 4 * c)) / 2;
    tau = tau / (d[1] + std::sqrt(std::abs(d[1] * d[1] + tau)));
    dsigma = d[1] + tau;
    delta[0] = -(del + tau);
    delta[1] = -tau;
    work[0] = d[0] + tau + d[1];
    work[1] = 2 * d[1] + tau;
    return;
  }
  const R b = -delsq + zz, c = rho * z[1] * z[1] * delsq;
  R tau = b > 0 ? (b + std::sqrt(b * b + 4 * c)) / 2 : 2 * c / (-b + std::sqrt(b * b + 4 * c));
  tau = tau / (d[1] + std::sqrt(d[1] * d[1] + tau));
  dsigma = d[1] + tau;
  delta[0] = -(del + tau);
  delta[1] = -tau;
  work[0] = d[0] + tau + d[1];
  work[1] = 2 * d[1] + tau;
}

// The sums of the secular function left of (psi, over 1..last) and right of
// (phi, over first..n) the pole ii, with their derivatives and the running
// error bound's terms.
template <class R>
struct Sums {
  R psi = 0, dpsi = 0, phi = 0, dphi = 0, erretm = 0;
};
template <class R>
Sums<R> sums(int n, int left_last, int right_first, const R *z, const R *delta, const R *work) {
  Sums<R> s;
  for (int j = 1; j <= left_last; ++j) {
    const R t = z[j - 1] / (work[j - 1] * delta[j - 1]);
    s.psi += z[j - 1] * t;
    s.dpsi += t * t;
    s.erretm += s.psi;
  }
  s.erretm = std::abs(s.erretm);
  for (int j = n; j >= right_first; --j) {
    const R t = z[j - 1] / (work[j - 1] * delta[j - 1]);
    s.phi += z[j - 1] * t;
    s.dphi += t * t;
    s.erretm += s.phi;
  }
  return s;
}

// The last root, beyond d_n.
template <class R>
int last_root(int n, const R *dd, const R *zz, R *delta, R rho, R &sigma, R *work) {
  constexpr int kMaxIter = 400;
  const auto d = vec1(dd);
  const auto z = vec1(zz);
  const R rhoinv = 1 / rho;
  const int ii = n - 1;
  // The starting point, from the 2-pole model of the two last terms.
  R t = rho / 2;
  R t1 = t / (d(n) + std::sqrt(d(n) * d(n) + t));
  for (int j = 1; j <= n; ++j) {
    work[j - 1] = d(j) + d(n) + t1;
    delta[j - 1] = (d(j) - d(n)) - t1;
  }
  R psi = 0;
  for (int j = 1; j <= n - 2; ++j) psi += z(j) * z(j) / (delta[j - 1] * work[j - 1]);
  R c = rhoinv + psi;
  R w = c + z(ii) * z(ii) / (delta[ii - 1] * work[ii - 1]) +
        z(n) * z(n) / (delta[n - 1] * work[n - 1]);
  auto two_pole_tau = [&]() {
    const R delsq = (d(n) - d(n - 1)) * (d(n) + d(n - 1));
    const R a = -c * delsq + z(n - 1) * z(n - 1) + z(n) * z(n);
    const R b = z(n) * z(n) * delsq;
    const R tau2 = a < 0 ? 2 * b / (std::sqrt(a * a + 4 * b * c) - a)
                         : (a + std::sqrt(a * a + 4 * b * c)) / (2 * c);
    return tau2 / (d(n) + std::sqrt(d(n) * d(n) + tau2));
  };
  R tau;
  if (w <= 0) {
    const R r1 = std::sqrt(d(n) * d(n) + rho);
    t = z(n - 1) * z(n - 1) / ((d(n - 1) + r1) * (d(n) - d(n - 1) + rho / (d(n) + r1))) +
        z(n) * z(n) / rho;
    tau = c <= t ? rho : two_pole_tau();
  } else {
    tau = two_pole_tau();
  }
  sigma = d(n) + tau;
  for (int j = 1; j <= n; ++j) {
    delta[j - 1] = (d(j) - d(n)) - tau;
    work[j - 1] = d(j) + d(n) + tau;
  }
  auto evaluate = [&](R &wv, R &dpsi, R &dphi) {
    Sums<R> s = sums(n, ii, n + 1, zz, delta, work);
    const R tq = z(n) / (work[n - 1] * delta[n - 1]);
    const R phi = z(n) * tq;
    dphi = tq * tq;
    dpsi = s.dpsi;
    const R erretm = 8 * (-phi - s.psi) + s.erretm - phi + rhoinv;
    wv = rhoinv + phi + s.psi;
    return erretm;
  };
  R dpsi, dphi;
  R erretm = evaluate(w, dpsi, dphi);
  for (int niter = 2; niter <= kMaxIter + 1; ++niter) {
    if (std::abs(w) <= eps<R>() * erretm) return 0;
    if (niter > kMaxIter) break;
    const R dtnsq1 = work[n - 2] * delta[n - 2], dtnsq = work[n - 1] * delta[n - 1];
    R cc = w - dtnsq1 * dpsi - dtnsq * dphi;
    const R a = (dtnsq + dtnsq1) * w - dtnsq * dtnsq1 * (dpsi + dphi);
    const R b = dtnsq * dtnsq1 * w;
    R eta;
    if (niter == 2) {
      if (cc < 0) cc = std::abs(cc);
      if (cc == 0)
        eta = rho - sigma * sigma;
      else
        eta = a >= 0 ? (a + std::sqrt(std::abs(a * a - 4 * b * cc))) / (2 * cc)
                     : 2 * b / (a - std::sqrt(std::abs(a * a - 4 * b * cc)));
    } else {
      eta = a >= 0 ? (a + std::sqrt(std::abs(a * a - 4 * b * cc))) / (2 * cc)
                   : 2 * b / (a - std::sqrt(std::abs(a * a - 4 * b * cc)));
    }
    // A step of the wrong sign falls back to Newton's.
    if (w * eta > 0) eta = -w / (dpsi + dphi);
    t = eta - dtnsq;
    if (niter == 2) {
      if (t > rho) eta = rho + dtnsq;
    } else if (t <= 0) {
      eta /= 2;
    }
    eta = eta / (sigma + std::sqrt(eta + sigma * sigma));
    tau += eta;
    sigma += eta;
    for (int j = 0; j < n; ++j) {
      delta[j] -= eta;
      work[j] += eta;
    }
    erretm = evaluate(w, dpsi, dphi);
  }
  return 1;
}

// A root between d_i and d_{i+1}, i < n.
template <class R>
int inner_root(int n, int i, const R *dd, const R *zz, R *delta, R rho, R &sigma, R *work) {
  constexpr int kMaxIter = 400;
  const auto d = vec1(dd);
  const auto z = vec1(zz);
  const auto W = vec1(work);
  const auto D = vec1(delta);
  const R rhoinv = 1 / rho;
  const int ip1 = i + 1;
  const R delsq = (d(ip1) - d(i)) * (d(ip1) + d(i));
  const R delsq2 = delsq / 2;
  const R sq2 = std::sqrt((d(i) * d(i) + d(ip1) * d(ip1)) / 2);
  // The function at the midpoint decides which pole the root is nearer.
  R t = delsq2 / (d(i) + sq2);
  for (int j = 1; j <= n; ++j) {
    W(j) = d(j) + d(i) + t;
    D(j) = (d(j) - d(i)) - t;
  }
  R psi = 0, phi = 0;
  for (int j = 1; j <= i - 1; ++j) psi += z(j) * z(j) / (W(j) * D(j));
  for (int j = n; j >= i + 2; --j) phi += z(j) * z(j) / (W(j) * D(j));
  R c = rhoinv + psi + phi;
  R w = c + z(i) * z(i) / (W(i) * D(i)) + z(ip1) * z(ip1) / (W(ip1) * D(ip1));
  bool geomavg = false;
  bool orgati;
  int ii;
  R sglb, sgub, tau;
  if (w > 0) {
    // Nearer d_i: tau >= 0 from d_i.
    orgati = true;
    ii = i;
    sglb = 0;
    sgub = delsq2 / (d(i) + sq2);
    const R a = c * delsq + z(i) * z(i) + z(ip1) * z(ip1);
    const R b = z(i) * z(i) * delsq;
    const R tau2 = a > 0 ? 2 * b / (a + std::sqrt(std::abs(a * a - 4 * b * c)))
                         : (a - std::sqrt(std::abs(a * a - 4 * b * c))) / (2 * c);
    tau = tau2 / (d(i) + std::sqrt(d(i) * d(i) + tau2));
    const R rteps = std::sqrt(eps<R>());
    if (d(i) <= rteps * d(ip1) && std::abs(z(i)) <= rteps && d(i) > 0) {
      // A tiny pole with a tiny weight: bisect geometrically.
      tau = std::min(10 * d(i), sgub);
      geomavg = true;
    }
  } else {
    // Nearer d_{i+1}: tau <= 0 from d_{i+1}.
    orgati = false;
    ii = ip1;
    sglb = -delsq2 / (d(ii) + sq2);
    sgub = 0;
    const R a = c * delsq - z(i) * z(i) - z(ip1) * z(ip1);
    const R b = z(ip1) * z(ip1) * delsq;
    const R tau2 = a < 0 ? 2 * b / (a - std::sqrt(std::abs(a * a + 4 * b * c)))
                         : -(a + std::sqrt(std::abs(a * a + 4 * b * c))) / (2 * c);
    tau = tau2 / (d(ip1) + std::sqrt(std::abs(d(ip1) * d(ip1) + tau2)));
  }
  sigma = d(ii) + tau;
  for (int j = 1; j <= n; ++j) {
    W(j) = d(j) + d(ii) + tau;
    D(j) = (d(j) - d(ii)) - tau;
  }
  const int iim1 = ii - 1, iip1 = ii + 1;

  R dpsi, dphi, dw, erretm;
  auto evaluate = [&]() {
    Sums<R> s = sums(n, iim1, iip1, zz, delta, work);
    psi = s.psi, dpsi = s.dpsi, phi = s.phi, dphi = s.dphi;
    const R tau2 = W(ii) * D(ii);
    R q = z(ii) / tau2;
    dw = dpsi + dphi + q * q;
    q = z(ii) * q;
    w = rhoinv + phi + psi + q;
    erretm = 8 * (phi - psi) + s.erretm + 2 * rhoinv + 3 * std::abs(q);
  };
  evaluate();

  // The 3-pole model needs poles on both sides of ii; it pays when the far
  // terms alone already have the sign of a root on the other side.
  const R far = rhoinv + phi + psi;
  bool swtch3 = orgati ? far < 0 : far > 0;
  if (ii == 1 || ii == n) swtch3 = false;
  bool swtch = false;
  R prew = w;

  // The 2-pole step: fits the two poles d_i and d_{i+1} (`swtch` changes
  // which of the far sums go with which).
  auto two_pole_eta = [&]() {
    const R dtipsq = W(ip1) * D(ip1), dtisq = W(i) * D(i);
    R cc;
    if (!swtch) {
      cc = orgati ? w - dtipsq * dw + delsq * (z(i) / dtisq) * (z(i) / dtisq)
                  : w - dtisq * dw - delsq * (z(ip1) / dtipsq) * (z(ip1) / dtipsq);
    } else {
      const R q = z(ii) / (W(ii) * D(ii));
      if (orgati)
        dpsi += q * q;
      else
        dphi += q * q;
      cc = w - dtisq * dpsi - dtipsq * dphi;
    }
    R a = (dtipsq + dtisq) * w - dtipsq * dtisq * dw;
    const R b = dtipsq * dtisq * w;
    if (cc == 0) {
      if (a == 0) {
        if (!swtch)
          a = orgati ? z(i) * z(i) + dtipsq * dtipsq * (dpsi + dphi)
                     : z(ip1) * z(ip1) + dtisq * dtisq * (dpsi + dphi);
        else
          a = dtisq * dtisq * dpsi + dtipsq * dtipsq * dphi;
      }
      return b / a;
    }
    return quadratic_root(a, b, cc, a <= 0);
  };

  for (int niter = 2; niter <= kMaxIter + 1; ++niter) {
    if (std::abs(w) <= eps<R>() * erretm) return 0;
    if (niter > kMaxIter) break;
    if (w <= 0)
      sglb = std::max(sglb, tau);
    else
      sgub = std::min(sgub, tau);
    R eta;
    if (!swtch3) {
      eta = two_pole_eta();
    } else {
      const R dtiim = W(iim1) * D(iim1), dtiip = W(iip1) * D(iip1);
      const R q = rhoinv + psi + phi;
      R cc, zz3[3];
      if (swtch) {
        cc = q - dtiim * dpsi - dtiip * dphi;
        zz3[0] = dtiim * dtiim * dpsi;
        zz3[2] = dtiip * dtiip * dphi;
      } else if (orgati) {
        R t1 = z(iim1) / dtiim;
        t1 *= t1;
        cc = q - dtiip * (dpsi + dphi) - (d(iim1) - d(iip1)) * (d(iim1) + d(iip1)) * t1;
        zz3[0] = z(iim1) * z(iim1);
        zz3[2] = dpsi < t1 ? dtiip * dtiip * dphi : dtiip * dtiip * ((dpsi - t1) + dphi);
      } else {
        R t1 = z(iip1) / dtiip;
        t1 *= t1;
        cc = q - dtiim * (dpsi + dphi) - (d(iip1) - d(iim1)) * (d(iim1) + d(iip1)) * t1;
        zz3[0] = dphi < t1 ? dtiim * dtiim * dpsi : dtiim * dtiim * (dpsi + (dphi - t1));
        zz3[2] = z(iip1) * z(iip1);
      }
      zz3[1] = z(ii) * z(ii);
      const R dd3[3] = {dtiim, D(ii) * W(ii), dtiip};
      if (laed6(niter, orgati, cc, dd3, zz3, w, eta) != 0) {
        swtch3 = false;
        eta = two_pole_eta();
      }
    }
    if (w * eta >= 0) eta = -w / dw;
    eta = eta / (sigma + std::sqrt(sigma * sigma + eta));
    // Keep the root inside its bracket.
    if (tau + eta > sgub || tau + eta < sglb) {
      eta = w < 0 ? (sgub - tau) / 2 : (sglb - tau) / 2;
      if (geomavg) {
        if (w < 0) {
          if (tau > 0) eta = std::sqrt(sgub * tau) - tau;
        } else if (sglb > 0) {
          eta = std::sqrt(sglb * tau) - tau;
        }
      }
    }
    prew = w;
    tau += eta;
    sigma += eta;
    for (int j = 1; j <= n; ++j) {
      W(j) += eta;
      D(j) -= eta;
    }
    evaluate();
    if (niter == 2) {
      swtch = orgati ? -w > std::abs(prew) / 10 : w > std::abs(prew) / 10;
    } else if (w * prew > 0 && std::abs(w) > std::abs(prew) / 10) {
      swtch = !swtch;
    }
  }
  return 1;
}

}  // namespace

template <class R>
int lasd4(int n, int i, const R *d, const R *z, R *delta, R rho, R &sigma, R *work) {
  if (n == 1) {
    sigma = std::sqrt(d[0] * d[0] + rho * z[0] * z[0]);
    delta[0] = 1;
    work[0] = 1;
    return 0;
  }
  if (n == 2) {
    lasd5(i, d, z, delta, rho, sigma, work);
    return 0;
  }
  if (i == n) return last_root(n, d, z, delta, rho, sigma, work);
  return inner_root(n, i, d, z, delta, rho, sigma, work);
}

// The 3-pole step shared with the tridiagonal secular equation (laed4).
template <class R>
int laed6_step(int kniter, bool orgati, R rho, const R d[3], const R z[3], R finit, R &tau) {
  return laed6(kniter, orgati, rho, d, z, finit, tau);
}

template int laed6_step<float>(int, bool, float, const float[3], const float[3], float, float &);
template int laed6_step<double>(int, bool, double, const double[3], const double[3], double,
                                double &);

template int lasd4<float>(int, int, const float *, const float *, float *, float, float &, float *);
template int lasd4<double>(int, int, const double *, const double *, double *, double, double &,
                           double *);

}  // namespace orb::lapack::dc
