// The real Hessenberg QR iteration's driver (xHSEQR) and its double-shift
// QR (xLAHQR) for small matrices and small deflation windows.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "lapack/copy_scale.h"
#include "lapack/householder.h"
#include "lapack/laqr_real.h"
#include "lapack/names.h"
#include "lapack/nonsym.h"
#include "lapack/oracle.h"
#include "lapack/schur_swap.h"

namespace orb::lapack {

namespace {

// A plane rotation on two rows or columns of length n (stride inc).
template <class R>
void rotate(int n, R *x, int incx, R *y, int incy, R c, R s) {
  for (int k = 0; k < n; ++k) {
    const R xv = x[k * incx], yv = y[k * incy];
    x[k * incx] = c * xv + s * yv;
    y[k * incy] = c * yv - s * xv;
  }
}

// Column-major 1-based view.
template <class R>
struct Mat {
  R *p;
  int ld;
  R &operator()(int i, int j) const { return p[(i - 1) + static_cast<std::int64_t>(j - 1) * ld]; }
};

}  // namespace

template <class R>
int lahqr(bool wantt, bool wantz, int n, int ilo, int ihi, R *hp, int ldh, R *wr, R *wi, int iloz,
          int ihiz, R *zp, int ldz) {
  if (n == 0) return 0;
  const Mat<R> h{hp, ldh}, z{zp, ldz};
  if (ilo == ihi) {
    wr[ilo - 1] = h(ilo, ilo);
    wi[ilo - 1] = 0;
    return 0;
  }
  // Entries below the first subdiagonal of the active block are rounding
  // trash of the caller's reduction.
  for (int j = ilo; j <= ihi - 3; ++j) {
    h(j + 2, j) = 0;
    h(j + 3, j) = 0;
  }
  if (ilo <= ihi - 2) h(ihi, ihi - 2) = 0;

  const int nh = ihi - ilo + 1, nz = ihiz - iloz + 1;
  const R safmin = std::numeric_limits<R>::min();
  const R ulp = std::numeric_limits<R>::epsilon();
  const R smlnum = safmin * (static_cast<R>(nh) / ulp);
  // Exceptional shifts: after kExceptional iterations without deflation.
  constexpr R kDat1 = R(0.75), kDat2 = R(-0.4375);
  constexpr int kExceptional = 10;

  // With the Schur form wanted the rotations reach columns i1..i2 of the
  // whole matrix, else only the active block.
  int i1 = 1, i2 = n;
  const int itmax = 30 * std::max(10, nh);
  int kdefl = 0;

  // i: the bottom of the unreduced block being worked on; eigenvalues
  // i+1..ihi have converged.
  int i = ihi;
  while (i >= ilo) {
    int l = ilo;
    bool converged = false;
    for (int its = 0; its <= itmax; ++its) {
      // The last negligible subdiagonal entry of rows l..i (Ahues and
      // Tisseur's conservative test beside the classic one).
      int k = i;
      for (; k > l; --k) {
        if (std::abs(h(k, k - 1)) <= smlnum) break;
        R tst = std::abs(h(k - 1, k - 1)) + std::abs(h(k, k));
        if (tst == 0) {
          if (k - 2 >= ilo) tst += std::abs(h(k - 1, k - 2));
          if (k + 1 <= ihi) tst += std::abs(h(k + 1, k));
        }
        if (std::abs(h(k, k - 1)) <= ulp * tst) {
          const R ab = std::max(std::abs(h(k, k - 1)), std::abs(h(k - 1, k)));
          const R ba = std::min(std::abs(h(k, k - 1)), std::abs(h(k - 1, k)));
          const R aa = std::max(std::abs(h(k, k)), std::abs(h(k - 1, k - 1) - h(k, k)));
          const R bb = std::min(std::abs(h(k, k)), std::abs(h(k - 1, k - 1) - h(k, k)));
          const R s = aa + ab;
          if (ba * (ab / s) <= std::max(smlnum, ulp * (bb * (aa / s)))) break;
        }
      }
      l = k;
      if (l > ilo) h(l, l - 1) = 0;
      if (l >= i - 1) {
        converged = true;
        break;
      }
      ++kdefl;
      if (!wantt) {
        i1 = l;
        i2 = i;
      }

      // The shifts: the trailing 2x2's eigenvalues, or exceptional ones.
      R h11, h12, h21, h22;
      if (kdefl % (2 * kExceptional) == 0) {
        const R s = std::abs(h(i, i - 1)) + std::abs(h(i - 1, i - 2));
        h11 = kDat1 * s + h(i, i);
        h12 = kDat2 * s;
        h21 = s;
        h22 = h11;
      } else if (kdefl % kExceptional == 0) {
        const R s = std::abs(h(l + 1, l)) + std::abs(h(l + 2, l + 1));
        h11 = kDat1 * s + h(l, l);
        h12 = kDat2 * s;
        h21 = s;
        h22 = h11;
      } else {
        h11 = h(i - 1, i - 1);
        h21 = h(i, i - 1);
        h12 = h(i - 1, i);
        h22 = h(i, i);
      }
      R rt1r, rt1i, rt2r, rt2i;
      R s = std::abs(h11) + std::abs(h12) + std::abs(h21) + std::abs(h22);
      if (s == 0) {
        rt1r = rt1i = rt2r = rt2i = 0;
      } else {
        h11 /= s;
        h21 /= s;
        h12 /= s;
        h22 /= s;
        const R tr = (h11 + h22) / 2;
        const R det = (h11 - tr) * (h22 - tr) - h12 * h21;
        const R rtdisc = std::sqrt(std::abs(det));
        if (det >= 0) {
          // A complex conjugate pair.
          rt1r = tr * s;
          rt2r = rt1r;
          rt1i = rtdisc * s;
          rt2i = -rt1i;
        } else {
          // Two real shifts: both taken as the one nearer h22.
          rt1r = tr + rtdisc;
          rt2r = tr - rtdisc;
          if (std::abs(rt1r - h22) <= std::abs(rt2r - h22)) {
            rt1r *= s;
            rt2r = rt1r;
          } else {
            rt2r *= s;
            rt1r = rt2r;
          }
          rt1i = rt2i = 0;
        }
      }

      // Look for two consecutive small subdiagonal entries: the sweep may
      // start at m instead of l.
      R v[3];
      int m = i - 2;
      for (;; --m) {
        R h21s = h(m + 1, m);
        R sc = std::abs(h(m, m) - rt2r) + std::abs(rt2i) + std::abs(h21s);
        h21s = h(m + 1, m) / sc;
        v[0] = h21s * h(m, m + 1) + (h(m, m) - rt1r) * ((h(m, m) - rt2r) / sc) - rt1i * (rt2i / sc);
        v[1] = h21s * (h(m, m) + h(m + 1, m + 1) - rt1r - rt2r);
        v[2] = h21s * h(m + 2, m + 1);
        sc = std::abs(v[0]) + std::abs(v[1]) + std::abs(v[2]);
        v[0] /= sc;
        v[1] /= sc;
        v[2] /= sc;
        if (m == l) break;
        const R h00 = std::abs(h(m, m - 1)) * (std::abs(v[1]) + std::abs(v[2]));
        const R h01 = ulp * std::abs(v[0]) *
                      (std::abs(h(m - 1, m - 1)) + std::abs(h(m, m)) + std::abs(h(m + 1, m + 1)));
        if (h00 <= h01) break;
      }

      // The double-shift sweep: a 3x3 bulge chased from m to i.
      for (int kk = m; kk <= i - 1; ++kk) {
        const int nr = std::min(3, i - kk + 1);
        if (kk > m)
          for (int r = 0; r < nr; ++r) v[r] = h(kk + r, kk - 1);
        R t1;
        larfg<R>(nr, v[0], v + 1, 1, t1);
        if (kk > m) {
          h(kk, kk - 1) = v[0];
          h(kk + 1, kk - 1) = 0;
          if (kk < i - 1) h(kk + 2, kk - 1) = 0;
        } else if (m > l) {
          // Keep the sign convention of the reflector that would have
          // been applied when the sweep starts at l.
          h(kk, kk - 1) *= (1 - t1);
        }
        const R v2 = v[1], t2 = t1 * v2;
        if (nr == 3) {
          const R v3 = v[2], t3 = t1 * v3;
          for (int j = kk; j <= i2; ++j) {
            const R sum = h(kk, j) + v2 * h(kk + 1, j) + v3 * h(kk + 2, j);
            h(kk, j) -= sum * t1;
            h(kk + 1, j) -= sum * t2;
            h(kk + 2, j) -= sum * t3;
          }
          for (int j = i1; j <= std::min(kk + 3, i); ++j) {
            const R sum = h(j, kk) + v2 * h(j, kk + 1) + v3 * h(j, kk + 2);
            h(j, kk) -= sum * t1;
            h(j, kk + 1) -= sum * t2;
            h(j, kk + 2) -= sum * t3;
          }
          if (wantz)
            for (int j = iloz; j <= ihiz; ++j) {
              const R sum = z(j, kk) + v2 * z(j, kk + 1) + v3 * z(j, kk + 2);
              z(j, kk) -= sum * t1;
              z(j, kk + 1) -= sum * t2;
              z(j, kk + 2) -= sum * t3;
            }
        } else if (nr == 2) {
          for (int j = kk; j <= i2; ++j) {
            const R sum = h(kk, j) + v2 * h(kk + 1, j);
            h(kk, j) -= sum * t1;
            h(kk + 1, j) -= sum * t2;
          }
          for (int j = i1; j <= i; ++j) {
            const R sum = h(j, kk) + v2 * h(j, kk + 1);
            h(j, kk) -= sum * t1;
            h(j, kk + 1) -= sum * t2;
          }
          if (wantz)
            for (int j = iloz; j <= ihiz; ++j) {
              const R sum = z(j, kk) + v2 * z(j, kk + 1);
              z(j, kk) -= sum * t1;
              z(j, kk + 1) -= sum * t2;
            }
        }
      }
    }
    if (!converged) return i;

    if (l == i) {
      // One real eigenvalue.
      wr[i - 1] = h(i, i);
      wi[i - 1] = 0;
    } else {
      // A 2x2 block: standardized, the rotation applied to the rest.
      R cs, sn;
      lanv2<R>(h(i - 1, i - 1), h(i - 1, i), h(i, i - 1), h(i, i), wr[i - 2], wi[i - 2], wr[i - 1],
               wi[i - 1], cs, sn);
      if (wantt) {
        if (i2 > i) rotate<R>(i2 - i, &h(i - 1, i + 1), ldh, &h(i, i + 1), ldh, cs, sn);
        rotate<R>(i - i1 - 1, &h(i1, i - 1), 1, &h(i1, i), 1, cs, sn);
      }
      if (wantz) rotate<R>(nz, &z(iloz, i - 1), 1, &z(iloz, i), 1, cs, sn);
    }
    kdefl = 0;
    i = l - 1;
  }
  return 0;
}

// The driver: the double-shift QR below the oracle's crossover, the
// multishift QR with aggressive early deflation above it.
namespace {
constexpr int kTiny = 15;    // the multishift code's own lower limit
constexpr int kPadded = 49;  // the order of the copy the restart pads small matrices to
}  // namespace

template <>
std::int64_t hseqr_worksize<float>(bool, CompQ, int n, int ilo, int ihi) {
  if (n == 0) return 1;
  return std::max<std::int64_t>(laqr0_worksize<float>(0, n, ilo, ihi), std::max(1, n));
}

template <>
int hseqr<float>(bool wantt, CompQ compz, int n, int ilo, int ihi, float *hp, int ldh, float *wr,
                 float *wi, float *, float *zp, int ldz, float *work, int lwork) {
  using R = float;
  if (n == 0) return 0;
  const bool wantz = compz != CompQ::kNone;
  const Mat<R> h{hp, ldh};
  // Eigenvalues isolated by the balancing.
  for (int i = 1; i < ilo; ++i) {
    wr[i - 1] = h(i, i);
    wi[i - 1] = 0;
  }
  for (int i = ihi + 1; i <= n; ++i) {
    wr[i - 1] = h(i, i);
    wi[i - 1] = 0;
  }
  if (compz == CompQ::kInitial) laset<R>(Part::kAll, n, n, 0, 1, zp, ldz);
  if (ilo == ihi) {
    wr[ilo - 1] = h(ilo, ilo);
    wi[ilo - 1] = 0;
    return 0;
  }
  const int nmin = std::max(kTiny, oracle(kQrSmall, name<R>("HSEQR"), n, ilo, ihi, lwork));
  int info;
  if (n > nmin) {
    info = laqr0<R>(0, wantt, wantz, n, ilo, ihi, hp, ldh, wr, wi, ilo, ihi, zp, ldz, work, lwork);
  } else {
    info = lahqr<R>(wantt, wantz, n, ilo, ihi, hp, ldh, wr, wi, ilo, ihi, zp, ldz);
    if (info > 0) {
      // Rare: the double-shift QR ran out of iterations. The multishift
      // code finishes rows ilo..info, on a copy padded with zeros to an
      // order where it runs its own iteration when the matrix is smaller.
      const int kbot = info;
      if (n >= kPadded) {
        info = laqr0<R>(0, wantt, wantz, n, ilo, kbot, hp, ldh, wr, wi, ilo, ihi, zp, ldz, work,
                        lwork);
      } else {
        R hl[kPadded * kPadded] = {}, workl[kPadded];
        lacpy<R>(Part::kAll, n, n, hp, ldh, hl, kPadded);
        info = laqr0<R>(0, wantt, wantz, kPadded, ilo, kbot, hl, kPadded, wr, wi, ilo, ihi, zp, ldz,
                        workl, kPadded);
        if (wantt || info != 0) lacpy<R>(Part::kAll, n, n, hl, kPadded, hp, ldh);
      }
    }
  }
  // Rounding trash below the first subdiagonal.
  if ((wantt || info != 0) && n > 2) laset<R>(Part::kLower, n - 2, n - 2, 0, 0, &h(3, 1), ldh);
  return info;
}

template int lahqr<float>(bool, bool, int, int, int, float *, int, float *, float *, int, int,
                          float *, int);

}  // namespace orb::lapack
