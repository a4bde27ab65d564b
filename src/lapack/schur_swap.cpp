// The real Schur form's small pieces: see schur_swap.h.
#include "lapack/schur_swap.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "lapack/householder.h"
#include "lapack/rotations.h"

namespace orb::lapack {

namespace {

template <class R>
R sign_of(R a, R b) {
  return std::copysign(std::abs(a), b);
}

// Column-major 1-based view.
template <class R>
struct View {
  R *p;
  int ld;
  R &operator()(int i, int j) const { return p[(i - 1) + static_cast<std::int64_t>(j - 1) * ld]; }
};

// A plane rotation on two rows or columns of length n (stride inc).
template <class R>
void rotate(int n, R *x, int incx, R *y, int incy, R c, R s) {
  for (int k = 0; k < n; ++k) {
    const R xv = x[k * incx], yv = y[k * incy];
    x[k * incx] = c * xv + s * yv;
    y[k * incy] = c * yv - s * xv;
  }
}

// (I - tau u u^T) C for the 3 x cols C (left) or C (I - tau u u^T) for the
// rows x 3 C (right); u has all three entries.
template <class R>
void reflect_left(const R *u, R tau, int cols, View<R> c, int i0, int j0) {
  for (int j = 0; j < cols; ++j) {
    const R s = tau * (u[0] * c(i0, j0 + j) + u[1] * c(i0 + 1, j0 + j) + u[2] * c(i0 + 2, j0 + j));
    for (int k = 0; k < 3; ++k) c(i0 + k, j0 + j) -= s * u[k];
  }
}
template <class R>
void reflect_right(const R *u, R tau, int rows, View<R> c, int i0, int j0) {
  for (int i = 0; i < rows; ++i) {
    const R s = tau * (c(i0 + i, j0) * u[0] + c(i0 + i, j0 + 1) * u[1] + c(i0 + i, j0 + 2) * u[2]);
    for (int k = 0; k < 3; ++k) c(i0 + i, j0 + k) -= s * u[k];
  }
}

// The small Sylvester equation TL X - X TR = scale B (TL n1 x n1, TR
// n2 x n2, n1, n2 in {1, 2}) as one system of n1 n2 unknowns, solved by
// Gaussian elimination with complete pivoting; pivots below smin are
// replaced by smin, and scale <= 1 keeps X from overflowing.
template <class R>
void small_sylvester(int n1, int n2, View<R> tl, View<R> tr, View<R> b, R x[2][2], R &scale) {
  const R eps = std::numeric_limits<R>::epsilon();
  const R smlnum = std::numeric_limits<R>::min() / eps;
  const int m = n1 * n2;
  R a[4][4] = {}, rhs[4];
  R big = 0;
  for (int i = 1; i <= n1; ++i)
    for (int k = 1; k <= n1; ++k) big = std::max(big, std::abs(tl(i, k)));
  for (int i = 1; i <= n2; ++i)
    for (int k = 1; k <= n2; ++k) big = std::max(big, std::abs(tr(i, k)));
  const R smin = std::max(eps * big, smlnum);
  // Unknown (i, j) of X is entry (i - 1) + n1 (j - 1) of the vector.
  for (int j = 1; j <= n2; ++j)
    for (int i = 1; i <= n1; ++i) {
      const int row = (i - 1) + n1 * (j - 1);
      rhs[row] = b(i, j);
      for (int k = 1; k <= n1; ++k) a[row][(k - 1) + n1 * (j - 1)] += tl(i, k);
      for (int l = 1; l <= n2; ++l) a[row][(i - 1) + n1 * (l - 1)] -= tr(l, j);
    }
  int col_of[4] = {0, 1, 2, 3};
  for (int p = 0; p < m; ++p) {
    int ip = p, jp = p;
    R amax = -1;
    for (int i = p; i < m; ++i)
      for (int j = p; j < m; ++j)
        if (std::abs(a[i][j]) > amax) {
          amax = std::abs(a[i][j]);
          ip = i;
          jp = j;
        }
    if (ip != p) {
      for (int j = 0; j < m; ++j) std::swap(a[p][j], a[ip][j]);
      std::swap(rhs[p], rhs[ip]);
    }
    if (jp != p) {
      for (int i = 0; i < m; ++i) std::swap(a[i][p], a[i][jp]);
      std::swap(col_of[p], col_of[jp]);
    }
    if (std::abs(a[p][p]) < smin) a[p][p] = smin;
    for (int i = p + 1; i < m; ++i) {
      const R l = a[i][p] / a[p][p];
      rhs[i] -= l * rhs[p];
      for (int j = p + 1; j < m; ++j) a[i][j] -= l * a[p][j];
    }
  }
  scale = 1;
  R bmax = 0;
  bool tiny = false;
  for (int i = 0; i < m; ++i) {
    bmax = std::max(bmax, std::abs(rhs[i]));
    if (2 * m * smlnum * std::abs(rhs[i]) > std::abs(a[i][i])) tiny = true;
  }
  if (tiny) {
    scale = R(1) / (2 * m) / bmax;
    for (int i = 0; i < m; ++i) rhs[i] *= scale;
  }
  R sol[4];
  for (int i = m - 1; i >= 0; --i) {
    R s = rhs[i];
    for (int j = i + 1; j < m; ++j) s -= a[i][j] * sol[j];
    sol[i] = s / a[i][i];
  }
  R xv[4];
  for (int p = 0; p < m; ++p) xv[col_of[p]] = sol[p];
  for (int j = 0; j < n2; ++j)
    for (int i = 0; i < n1; ++i) x[i][j] = xv[i + n1 * j];
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

template <class R>
int laexc(bool wantq, int n, R *tp, int ldt, R *qp, int ldq, int j1, int n1, int n2, R *) {
  if (n == 0 || n1 == 0 || n2 == 0 || j1 + n1 > n) return 0;
  const View<R> t{tp, ldt}, q{qp, ldq};
  const int j2 = j1 + 1, j3 = j1 + 2;
  if (n1 == 1 && n2 == 1) {
    // Two 1x1 blocks: one rotation that exchanges the diagonal entries.
    const R t11 = t(j1, j1), t22 = t(j2, j2);
    R cs, sn, r;
    lartg<R>(t(j1, j2), t22 - t11, &cs, &sn, &r);
    if (j3 <= n) rotate<R>(n - j1 - 1, &t(j1, j3), ldt, &t(j2, j3), ldt, cs, sn);
    rotate<R>(j1 - 1, &t(1, j1), 1, &t(1, j2), 1, cs, sn);
    t(j1, j1) = t22;
    t(j2, j2) = t11;
    if (wantq) rotate<R>(n, &q(1, j1), 1, &q(1, j2), 1, cs, sn);
    return 0;
  }
  // The blocks and their coupling in D; [X; -scale I] spans the invariant
  // subspace that becomes the leading one after the swap.
  const int nd = n1 + n2;
  R dbuf[16];
  const View<R> d{dbuf, 4};
  R dnorm = 0;
  for (int j = 1; j <= nd; ++j)
    for (int i = 1; i <= nd; ++i) {
      d(i, j) = t(j1 + i - 1, j1 + j - 1);
      dnorm = std::max(dnorm, std::abs(d(i, j)));
    }
  const R eps = std::numeric_limits<R>::epsilon();
  const R smlnum = std::numeric_limits<R>::min() / eps;
  const R thresh = std::max(10 * eps * dnorm, smlnum);
  R x[2][2] = {}, scale;
  small_sylvester<R>(n1, n2, View<R>{&d(1, 1), 4}, View<R>{&d(n1 + 1, n1 + 1), 4},
                     View<R>{&d(1, n1 + 1), 4}, x, scale);
  if (n1 == 1 && n2 == 2) {
    R u[3] = {scale, x[0][0], x[0][1]}, tau;
    larfg<R>(3, u[2], u, 1, tau);
    u[2] = 1;
    const R t11 = t(j1, j1);
    reflect_left<R>(u, tau, 3, d, 1, 1);
    reflect_right<R>(u, tau, 3, d, 1, 1);
    // Reject a swap that would perturb T too much.
    if (std::max({std::abs(d(3, 1)), std::abs(d(3, 2)), std::abs(d(3, 3) - t11)}) > thresh)
      return 1;
    reflect_left<R>(u, tau, n - j1 + 1, t, j1, j1);
    reflect_right<R>(u, tau, j2, t, 1, j1);
    t(j3, j1) = 0;
    t(j3, j2) = 0;
    t(j3, j3) = t11;
    if (wantq) reflect_right<R>(u, tau, n, q, 1, j1);
  } else if (n1 == 2 && n2 == 1) {
    R u[3] = {-x[0][0], -x[1][0], scale}, tau;
    larfg<R>(3, u[0], u + 1, 1, tau);
    u[0] = 1;
    const R t33 = t(j3, j3);
    reflect_left<R>(u, tau, 3, d, 1, 1);
    reflect_right<R>(u, tau, 3, d, 1, 1);
    if (std::max({std::abs(d(2, 1)), std::abs(d(3, 1)), std::abs(d(1, 1) - t33)}) > thresh)
      return 1;
    reflect_right<R>(u, tau, j3, t, 1, j1);
    reflect_left<R>(u, tau, n - j1, t, j1, j2);
    t(j1, j1) = t33;
    t(j2, j1) = 0;
    t(j3, j1) = 0;
    if (wantq) reflect_right<R>(u, tau, n, q, 1, j1);
  } else {
    // Two 2x2 blocks: two reflectors of order 3.
    R u1[3] = {-x[0][0], -x[1][0], scale}, tau1;
    larfg<R>(3, u1[0], u1 + 1, 1, tau1);
    u1[0] = 1;
    const R temp = -tau1 * (x[0][1] + u1[1] * x[1][1]);
    R u2[3] = {-temp * u1[1] - x[1][1], -temp * u1[2], scale}, tau2;
    larfg<R>(3, u2[0], u2 + 1, 1, tau2);
    u2[0] = 1;
    reflect_left<R>(u1, tau1, 4, d, 1, 1);
    reflect_right<R>(u1, tau1, 4, d, 1, 1);
    reflect_left<R>(u2, tau2, 4, d, 2, 1);
    reflect_right<R>(u2, tau2, 4, d, 1, 2);
    if (std::max({std::abs(d(3, 1)), std::abs(d(3, 2)), std::abs(d(4, 1)), std::abs(d(4, 2))}) >
        thresh)
      return 1;
    const int j4 = j1 + 3;
    reflect_left<R>(u1, tau1, n - j1 + 1, t, j1, j1);
    reflect_right<R>(u1, tau1, j4, t, 1, j1);
    reflect_left<R>(u2, tau2, n - j1 + 1, t, j2, j1);
    reflect_right<R>(u2, tau2, j4, t, 1, j2);
    t(j3, j1) = 0;
    t(j3, j2) = 0;
    t(j4, j1) = 0;
    t(j4, j2) = 0;
    if (wantq) {
      reflect_right<R>(u1, tau1, n, q, 1, j1);
      reflect_right<R>(u2, tau2, n, q, 1, j2);
    }
  }
  // The 2x2 blocks in their new places, standardized again.
  R wr1, wi1, wr2, wi2, cs, sn;
  if (n2 == 2) {
    lanv2<R>(t(j1, j1), t(j1, j2), t(j2, j1), t(j2, j2), wr1, wi1, wr2, wi2, cs, sn);
    rotate<R>(n - j1 - 1, &t(j1, j1 + 2), ldt, &t(j2, j1 + 2), ldt, cs, sn);
    rotate<R>(j1 - 1, &t(1, j1), 1, &t(1, j2), 1, cs, sn);
    if (wantq) rotate<R>(n, &q(1, j1), 1, &q(1, j2), 1, cs, sn);
  }
  if (n1 == 2) {
    const int k3 = j1 + n2, k4 = k3 + 1;
    lanv2<R>(t(k3, k3), t(k3, k4), t(k4, k3), t(k4, k4), wr1, wi1, wr2, wi2, cs, sn);
    if (k3 + 2 <= n) rotate<R>(n - k3 - 1, &t(k3, k3 + 2), ldt, &t(k4, k3 + 2), ldt, cs, sn);
    rotate<R>(k3 - 1, &t(1, k3), 1, &t(1, k4), 1, cs, sn);
    if (wantq) rotate<R>(n, &q(1, k3), 1, &q(1, k4), 1, cs, sn);
  }
  return 0;
}

template <class R>
int trexc(bool wantq, int n, R *tp, int ldt, R *q, int ldq, int *ifst_io, int *ilst_io, R *work) {
  if (n <= 1) return 0;
  const View<R> t{tp, ldt};
  // The order of the block starting at row k (1 or 2).
  auto order_at = [&](int k) { return (k < n && t(k + 1, k) != 0) ? 2 : 1; };
  int ifst = *ifst_io, ilst = *ilst_io;
  // Both positions to the first rows of their blocks.
  if (ifst > 1 && t(ifst, ifst - 1) != 0) --ifst;
  int nbf = order_at(ifst);
  if (ilst > 1 && t(ilst, ilst - 1) != 0) --ilst;
  const int nbl = order_at(ilst);
  *ifst_io = ifst;
  if (ifst == ilst) {
    *ilst_io = ilst;
    return 0;
  }
  auto swap = [&](int j1, int n1, int n2) {
    return laexc<R>(wantq, n, tp, ldt, q, ldq, j1, n1, n2, work);
  };
  // nbf == 3 marks a 2x2 block that split into two 1x1 blocks on the way:
  // they travel on one at a time.
  int here = ifst;
  if (ifst < ilst) {
    if (nbf == 2 && nbl == 1) --ilst;
    if (nbf == 1 && nbl == 2) ++ilst;
    while (here < ilst) {
      if (nbf != 3) {
        const int next = (here + nbf + 1 <= n && t(here + nbf + 1, here + nbf) != 0) ? 2 : 1;
        if (swap(here, nbf, next) != 0) {
          *ilst_io = here;
          return 1;
        }
        here += next;
        if (nbf == 2 && t(here + 1, here) == 0) nbf = 3;
      } else {
        int next = (here + 3 <= n && t(here + 3, here + 2) != 0) ? 2 : 1;
        if (swap(here + 1, 1, next) != 0) {
          *ilst_io = here;
          return 1;
        }
        if (next == 1) {
          swap(here, 1, 1);
          here += 1;
        } else {
          if (t(here + 2, here + 1) == 0) next = 1;
          if (next == 2) {
            if (swap(here, 1, 2) != 0) {
              *ilst_io = here;
              return 1;
            }
          } else {
            swap(here, 1, 1);
            swap(here + 1, 1, 1);
          }
          here += 2;
        }
      }
    }
  } else {
    while (here > ilst) {
      if (nbf != 3) {
        const int next = (here >= 3 && t(here - 1, here - 2) != 0) ? 2 : 1;
        if (swap(here - next, next, nbf) != 0) {
          *ilst_io = here;
          return 1;
        }
        here -= next;
        if (nbf == 2 && t(here + 1, here) == 0) nbf = 3;
      } else {
        int next = (here >= 3 && t(here - 1, here - 2) != 0) ? 2 : 1;
        if (swap(here - next, next, 1) != 0) {
          *ilst_io = here;
          return 1;
        }
        if (next == 1) {
          swap(here, 1, 1);
          here -= 1;
        } else {
          if (t(here, here - 1) == 0) next = 1;
          if (next == 2) {
            if (swap(here - 1, 2, 1) != 0) {
              *ilst_io = here;
              return 1;
            }
          } else {
            swap(here, 1, 1);
            swap(here - 1, 1, 1);
          }
          here -= 2;
        }
      }
    }
  }
  *ilst_io = here;
  return 0;
}

template void lanv2<float>(float &, float &, float &, float &, float &, float &, float &, float &,
                           float &, float &);
template void lanv2<double>(double &, double &, double &, double &, double &, double &, double &,
                            double &, double &, double &);

template int laexc<float>(bool, int, float *, int, float *, int, int, int, int, float *);
template int trexc<float>(bool, int, float *, int, float *, int, int *, int *, float *);

}  // namespace orb::lapack
