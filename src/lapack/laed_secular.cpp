// The secular equation of the tridiagonal divide and conquer: the
// eigenvalues of diag(d) + rho z z^T (d increasing, rho > 0) are the roots
// of
//   f(x) = 1/rho + sum_j z_j^2 / (d_j - x),
// one between each pair of consecutive d_j and the last in (d_n, d_n +
// rho z^T z]. Each root is sought as an offset tau from its nearer pole, the
// differences delta_j = d_j - x carried explicitly, so the eigenvectors
// built from them later stay orthogonal. The iteration fits a rational
// function with two poles (or three, the "middle way", when the root sits
// between two others' influence) and keeps the root bracketed; the test
// for convergence compares f with a running bound of its rounding error.
#include <cmath>

#include "lapack/laed.h"

namespace orb::lapack::dc {
namespace {

constexpr int kMaxIter = 30;

// The sums left of the pole ii (psi over 1..last) and right of it (phi over
// first..n) with their derivatives, and the running rounding-error bound
// of both.
template <class R>
struct Sums {
  R psi = 0, dpsi = 0, phi = 0, dphi = 0, erretm = 0;
};

template <class R>
Sums<R> sums(int n, int last, int first, const R *z, const R *delta) {
  Sums<R> s;
  for (int j = 0; j < last; ++j) {
    const R t = z[j] / delta[j];
    s.psi += z[j] * t;
    s.dpsi += t * t;
    s.erretm += s.psi;
  }
  s.erretm = std::abs(s.erretm);
  for (int j = n - 1; j >= first - 1; --j) {
    const R t = z[j] / delta[j];
    s.phi += z[j] * t;
    s.dphi += t * t;
    s.erretm += s.phi;
  }
  return s;
}

// The last root, beyond d_n: tau is its offset from d_n.
template <class R>
int last_root(int n, const R *d, const R *z, R *delta, R rho, R &dlam) {
  const R eps = dc::eps<R>();
  const R rhoinv = 1 / rho;
  const int ii = n - 1;  // 1-based index of the pole before the last
  const R midpt = rho / 2;

  // The first guess, from the two poles nearest and the rest frozen at the
  // midpoint of (d_n, d_n + rho).
  for (int j = 0; j < n; ++j) delta[j] = (d[j] - d[n - 1]) - midpt;
  R psi = 0;
  for (int j = 0; j < n - 2; ++j) psi += z[j] * z[j] / delta[j];
  R c = rhoinv + psi;
  R w = c + z[ii - 1] * z[ii - 1] / delta[ii - 1] + z[n - 1] * z[n - 1] / delta[n - 1];
  R tau, dltlb, dltub;
  const R del = d[n - 1] - d[n - 2];
  auto two_pole = [&]() {
    const R a = -c * del + z[n - 2] * z[n - 2] + z[n - 1] * z[n - 1];
    const R b = z[n - 1] * z[n - 1] * del;
    return a < 0 ? 2 * b / (std::sqrt(a * a + 4 * b * c) - a)
                 : (a + std::sqrt(a * a + 4 * b * c)) / (2 * c);
  };
  if (w <= 0) {
    const R temp = z[n - 2] * z[n - 2] / (d[n - 1] - d[n - 2] + rho) + z[n - 1] * z[n - 1] / rho;
    tau = c <= temp ? rho : two_pole();
    dltlb = midpt;
    dltub = rho;
  } else {
    tau = two_pole();
    dltlb = 0;
    dltub = midpt;
  }
  for (int j = 0; j < n; ++j) delta[j] = (d[j] - d[n - 1]) - tau;

  // f at tau, its derivative's two parts and the error bound.
  R dpsi, dphi, phi, erretm;
  auto evaluate = [&]() {
    const Sums<R> s = sums(n, ii, n + 1, z, delta);
    psi = s.psi;
    dpsi = s.dpsi;
    erretm = s.erretm;
    const R t = z[n - 1] / delta[n - 1];
    phi = z[n - 1] * t;
    dphi = t * t;
    erretm = 8 * (-phi - psi) + erretm - phi + rhoinv + std::abs(tau) * (dpsi + dphi);
    w = rhoinv + phi + psi;
  };
  evaluate();

  for (int niter = 2; niter <= kMaxIter; ++niter) {
    if (std::abs(w) <= eps * erretm) {
      dlam = d[n - 1] + tau;
      return 0;
    }
    if (w <= 0)
      dltlb = std::max(dltlb, tau);
    else
      dltub = std::min(dltub, tau);
    // The two-pole fit at the last two poles.
    c = w - delta[n - 2] * dpsi - delta[n - 1] * dphi;
    const R a = (delta[n - 2] + delta[n - 1]) * w - delta[n - 2] * delta[n - 1] * (dpsi + dphi);
    const R b = delta[n - 2] * delta[n - 1] * w;
    const bool first = niter == 2;
    if (first && c < 0) c = std::abs(c);
    R eta;
    if (first && c == 0)
      eta = -w / (dpsi + dphi);
    else if (a >= 0)
      eta = (a + std::sqrt(std::abs(a * a - 4 * b * c))) / (2 * c);
    else
      eta = 2 * b / (a - std::sqrt(std::abs(a * a - 4 * b * c)));
    // A step of the wrong sign is replaced by Newton's; one leaving the
    // bracket by a bisection (on the first step, the geometric mean of the
    // two when Newton's stays inside).
    if (w * eta > 0) eta = -w / (dpsi + dphi);
    if (tau + eta > dltub || tau + eta < dltlb) {
      const R eta2 = w < 0 ? (dltub - tau) / 2 : (dltlb - tau) / 2;
      if (first) {
        const R eta1 = -w / (dpsi + dphi);
        const R temp = tau + eta1;
        eta = dltlb <= temp && temp <= dltub
                  ? dc::sign(R(1), eta1) * std::sqrt(std::abs(eta1)) * std::sqrt(std::abs(eta2))
                  : eta2;
      } else {
        eta = eta2;
      }
    }
    for (int j = 0; j < n; ++j) delta[j] -= eta;
    tau += eta;
    evaluate();
  }
  dlam = d[n - 1] + tau;
  return 1;
}

// A root between d_i and d_{i+1} (1-based i < n): tau is its offset from
// the nearer of the two (d_i when `orgati`).
template <class R>
int inner_root(int n, int i, const R *d, const R *z, R *delta, R rho, R &dlam) {
  const R eps = dc::eps<R>();
  const R rhoinv = 1 / rho;
  const int ip1 = i + 1;
  auto D = [&](int j) { return d[j - 1]; };
  auto Z = [&](int j) { return z[j - 1]; };
  auto DL = [&](int j) -> R & { return delta[j - 1]; };

  const R del = D(ip1) - D(i);
  const R midpt = del / 2;
  for (int j = 1; j <= n; ++j) DL(j) = (D(j) - D(i)) - midpt;
  R psi = 0, phi = 0;
  for (int j = 1; j <= i - 1; ++j) psi += Z(j) * Z(j) / DL(j);
  for (int j = n; j >= i + 2; --j) phi += Z(j) * Z(j) / DL(j);
  R c = rhoinv + psi + phi;
  R w = c + Z(i) * Z(i) / DL(i) + Z(ip1) * Z(ip1) / DL(ip1);

  // The root lies in the half of (d_i, d_{i+1}) the sign of f at the
  // midpoint says; the first guess from the two-pole fit.
  const bool orgati = w > 0;
  R tau, dltlb, dltub;
  if (orgati) {
    const R a = c * del + Z(i) * Z(i) + Z(ip1) * Z(ip1);
    const R b = Z(i) * Z(i) * del;
    tau = a > 0 ? 2 * b / (a + std::sqrt(std::abs(a * a - 4 * b * c)))
                : (a - std::sqrt(std::abs(a * a - 4 * b * c))) / (2 * c);
    dltlb = 0;
    dltub = midpt;
  } else {
    const R a = c * del - Z(i) * Z(i) - Z(ip1) * Z(ip1);
    const R b = Z(ip1) * Z(ip1) * del;
    tau = a < 0 ? 2 * b / (a - std::sqrt(std::abs(a * a + 4 * b * c)))
                : -(a + std::sqrt(std::abs(a * a + 4 * b * c))) / (2 * c);
    dltlb = -midpt;
    dltub = 0;
  }
  const R origin = orgati ? D(i) : D(ip1);
  for (int j = 1; j <= n; ++j) DL(j) = (D(j) - origin) - tau;
  const int ii = orgati ? i : i + 1;
  const int iim1 = ii - 1, iip1 = ii + 1;

  R dpsi, dphi, dw, w_far = 0;  // w_far: f without the term of pole ii
  auto evaluate = [&](R tau_for_bound) {
    const Sums<R> s = sums(n, iim1, iip1, z, delta);
    psi = s.psi, dpsi = s.dpsi, phi = s.phi, dphi = s.dphi;
    R temp = Z(ii) / DL(ii);
    dw = dpsi + dphi + temp * temp;
    temp = Z(ii) * temp;
    w_far = rhoinv + phi + psi;
    w = w_far + temp;
    return 8 * (phi - psi) + s.erretm + 2 * rhoinv + 3 * std::abs(temp) +
           std::abs(tau_for_bound) * dw;
  };
  R erretm = evaluate(tau);

  // Three poles when f at the guess has the sign that puts the root on the
  // far side, away from the ends.
  bool swtch3 = orgati ? w_far < 0 : w_far > 0;
  if (ii == 1 || ii == n) swtch3 = false;

  if (std::abs(w) <= eps * erretm) {
    dlam = origin + tau;
    return 0;
  }
  bool swtch = false;
  R prew = w;
  for (int niter = 2; niter <= kMaxIter; ++niter) {
    if (niter > 2 && std::abs(w) <= eps * erretm) {
      dlam = origin + tau;
      return 0;
    }
    if (w <= 0)
      dltlb = std::max(dltlb, tau);
    else
      dltub = std::min(dltub, tau);
    const bool first = niter == 2;
    R eta;
    if (!swtch3) {
      // The two-pole fit at d_i and d_{i+1}; after a switch, with the
      // derivative split between the sides.
      if (!swtch) {
        c = orgati ? w - DL(ip1) * dw - (D(i) - D(ip1)) * (Z(i) / DL(i)) * (Z(i) / DL(i))
                   : w - DL(i) * dw - (D(ip1) - D(i)) * (Z(ip1) / DL(ip1)) * (Z(ip1) / DL(ip1));
      } else {
        const R temp = Z(ii) / DL(ii);
        if (orgati)
          dpsi += temp * temp;
        else
          dphi += temp * temp;
        c = w - DL(i) * dpsi - DL(ip1) * dphi;
      }
      R a = (DL(i) + DL(ip1)) * w - DL(i) * DL(ip1) * dw;
      const R b = DL(i) * DL(ip1) * w;
      if (c == 0) {
        if (a == 0) {
          if (!swtch)
            a = orgati ? Z(i) * Z(i) + DL(ip1) * DL(ip1) * (dpsi + dphi)
                       : Z(ip1) * Z(ip1) + DL(i) * DL(i) * (dpsi + dphi);
          else
            a = DL(i) * DL(i) * dpsi + DL(ip1) * DL(ip1) * dphi;
        }
        eta = b / a;
      } else if (a <= 0) {
        eta = (a - std::sqrt(std::abs(a * a - 4 * b * c))) / (2 * c);
      } else {
        eta = 2 * b / (a + std::sqrt(std::abs(a * a - 4 * b * c)));
      }
    } else {
      // The three-pole fit at d_{ii-1}, d_ii, d_{ii+1}.
      const R temp = rhoinv + psi + phi;
      R zz[3];
      if (swtch) {
        c = temp - DL(iim1) * dpsi - DL(iip1) * dphi;
        zz[0] = DL(iim1) * DL(iim1) * dpsi;
        zz[2] = DL(iip1) * DL(iip1) * dphi;
      } else if (orgati) {
        R temp1 = Z(iim1) / DL(iim1);
        temp1 *= temp1;
        c = temp - DL(iip1) * (dpsi + dphi) - (D(iim1) - D(iip1)) * temp1;
        zz[0] = Z(iim1) * Z(iim1);
        zz[2] = DL(iip1) * DL(iip1) * ((dpsi - temp1) + dphi);
      } else {
        R temp1 = Z(iip1) / DL(iip1);
        temp1 *= temp1;
        c = temp - DL(iim1) * (dpsi + dphi) - (D(iip1) - D(iim1)) * temp1;
        zz[0] = DL(iim1) * DL(iim1) * (dpsi + (dphi - temp1));
        zz[2] = Z(iip1) * Z(iip1);
      }
      zz[1] = Z(ii) * Z(ii);
      if (laed6_step(niter, orgati, c, delta + (iim1 - 1), zz, w, eta) != 0) {
        dlam = origin + tau;
        return 1;
      }
    }
    // A step of the wrong sign becomes Newton's; one leaving the bracket a
    // bisection, or after the first step the geometric mean of the two when
    // Newton's stays inside.
    if (w * eta >= 0) eta = -w / dw;
    if (tau + eta > dltub || tau + eta < dltlb) {
      const R eta2 = w < 0 ? (dltub - tau) / 2 : (dltlb - tau) / 2;
      if (!first) {
        const R eta1 = -w / dw;
        const R temp = tau + eta1;
        eta = dltlb <= temp && temp <= dltub
                  ? dc::sign(R(1), eta1) * std::sqrt(std::abs(eta1)) * std::sqrt(std::abs(eta2))
                  : eta2;
      } else {
        eta = eta2;
      }
    }
    prew = w;
    for (int j = 1; j <= n; ++j) DL(j) -= eta;
    if (first) {
      erretm = evaluate(tau + eta);
      // Switch to splitting the derivative when f did not fall by a tenth.
      swtch = orgati ? -w > std::abs(prew) / 10 : w > std::abs(prew) / 10;
      tau += eta;
    } else {
      tau += eta;
      erretm = evaluate(tau);
      if (w * prew > 0 && std::abs(w) > std::abs(prew) / 10) swtch = !swtch;
    }
  }
  dlam = origin + tau;
  return 1;
}

}  // namespace

template <class R>
void laed5(int i, const R d[2], const R z[2], R delta[2], R rho, R &dlam) {
  const R del = d[1] - d[0];
  R tau;
  auto lower_from_d2 = [&]() {
    const R b = -del + rho * (z[0] * z[0] + z[1] * z[1]);
    const R c = rho * z[1] * z[1] * del;
    return b > 0 ? -2 * c / (b + std::sqrt(b * b + 4 * c)) : (b - std::sqrt(b * b + 4 * c)) / 2;
  };
  if (i == 1) {
    const R w = 1 + 2 * rho * (z[1] * z[1] - z[0] * z[0]) / del;
    if (w > 0) {
      // The root is nearer d_1.
      const R b = del + rho * (z[0] * z[0] + z[1] * z[1]);
      const R c = rho * z[0] * z[0] * del;
      tau = 2 * c / (b + std::sqrt(std::abs(b * b - 4 * c)));
      dlam = d[0] + tau;
      delta[0] = -z[0] / tau;
      delta[1] = z[1] / (del - tau);
    } else {
      tau = lower_from_d2();
      dlam = d[1] + tau;
      delta[0] = -z[0] / (del + tau);
      delta[1] = -z[1] / tau;
    }
  } else {
    const R b = -del + rho * (z[0] * z[0] + z[1] * z[1]);
    const R c = rho * z[1] * z[1] * del;
    tau = b > 0 ? (b + std::sqrt(b * b + 4 * c)) / 2 : 2 * c / (-b + std::sqrt(b * b + 4 * c));
    dlam = d[1] + tau;
    delta[0] = -z[0] / (del + tau);
    delta[1] = -z[1] / tau;
  }
  const R norm = std::sqrt(delta[0] * delta[0] + delta[1] * delta[1]);
  delta[0] /= norm;
  delta[1] /= norm;
}

template <class R>
int laed4(int n, int i, const R *d, const R *z, R *delta, R rho, R &dlam) {
  if (n == 1) {
    dlam = d[0] + rho * z[0] * z[0];
    delta[0] = 1;
    return 0;
  }
  if (n == 2) {
    laed5(i, d, z, delta, rho, dlam);
    return 0;
  }
  if (i == n) return last_root(n, d, z, delta, rho, dlam);
  return inner_root(n, i, d, z, delta, rho, dlam);
}

template void laed5<float>(int, const float[2], const float[2], float[2], float, float &);
template void laed5<double>(int, const double[2], const double[2], double[2], double, double &);
template int laed4<float>(int, int, const float *, const float *, float *, float, float &);
template int laed4<double>(int, int, const double *, const double *, double *, double, double &);

}  // namespace orb::lapack::dc
