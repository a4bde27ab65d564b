// The complex Hessenberg QR iteration: the driver xHSEQR, the single-shift
// QR for small orders (CLAHQR), and the small-bulge multishift QR with
// aggressive early deflation (CLAQR0/4 with the windows of CLAQR2/3, the
// first column of CLAQR1 and the sweeps of CLAQR5). The reflections of a
// sweep are accumulated in a small unitary matrix and applied to the rest of
// H and to Z through gemm; the window of the early deflation reorders its
// Schur form by rotations.
//
// Inside, matrices are addressed 1-based through small views, so the index
// arithmetic reads as the algorithms are usually written.
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "lapack/auxiliary.h"
#include "lapack/blas_calls.h"
#include "lapack/copy_scale.h"
#include "lapack/householder.h"
#include "lapack/hqr_complex.h"
#include "lapack/laqr_common.h"
#include "lapack/nonsym.h"
#include "lapack/oracle.h"

namespace orb::lapack {

namespace hqr {
namespace {

using R = float;
using C = c8;

constexpr C kZero(0, 0), kOne(1, 0);

inline R cabs1(C z) {
  return std::abs(z.real()) + std::abs(z.imag());
}

using View = laqr::View<C>;
using laqr::apply_gehd2_right;
using laqr::gehd2;
using laqr::update;

struct Tolerances {
  R safmin, ulp, smlnum;
  explicit Tolerances(int n) {
    safmin = std::numeric_limits<R>::min();
    ulp = std::numeric_limits<R>::epsilon();  // the precision, eps * base
    smlnum = safmin * (static_cast<R>(n) / ulp);
  }
};

void scal(int n, C a, C *x, std::ptrdiff_t inc) {
  for (int i = 0; i < n; ++i) x[i * inc] *= a;
}

// x := c x + s y, y := c y - conj(s) x on n pairs.
void rot(int n, C *x, std::ptrdiff_t incx, C *y, std::ptrdiff_t incy, R c, C s) {
  for (int i = 0; i < n; ++i) {
    const C xi = x[i * incx], yi = y[i * incy];
    x[i * incx] = c * xi + s * yi;
    y[i * incy] = c * yi - std::conj(s) * xi;
  }
}

// A complex rotation [c s; -conj(s) c] (f; g) = (r; 0), c real >= 0; the
// magnitudes are scaled by the larger component against overflow.
void lartg(C f, C g, R &c, C &s, C &r) {
  if (g == kZero) {
    c = 1;
    s = kZero;
    r = f;
    return;
  }
  const R scale = std::max(cabs1(f), cabs1(g));
  if (f == kZero) {
    c = 0;
    const C gs = g / scale;
    const R ag = std::abs(gs);
    s = std::conj(gs) / ag;
    r = ag * scale;
    return;
  }
  const C fs = f / scale, gs = g / scale;
  const R af = std::abs(fs), ag = std::abs(gs);
  const R d = std::hypot(af, ag);
  c = af / d;
  const C phase = fs / af;
  s = phase * std::conj(gs) / d;
  r = phase * (d * scale);
}

// Robust complex division x / y (CLADIV).
C ladiv(C x, C y) {
  const R a = x.real(), b = x.imag(), c = y.real(), d = y.imag();
  if (std::abs(d) <= std::abs(c)) {
    const R e = d / c, f = c + d * e;
    return C((a + b * e) / f, (b - a * e) / f);
  }
  const R e = c / d, f = d + c * e;
  return C((b + a * e) / f, (-a + b * e) / f);
}

}  // namespace

// ---- single-shift QR (CLAHQR) ------------------------------------------------------------

int lahqr(bool wantt, bool wantz, int n, int ilo, int ihi, C *hp, int ldh, C *w, int iloz, int ihiz,
          C *zp, int ldz) {
  constexpr R kExceptional = R(3) / R(4);
  constexpr int kExceptionalEvery = 10;
  const View H{hp, ldh}, Z{zp, ldz};
  if (n == 0) return 0;
  if (ilo == ihi) {
    w[ilo - 1] = H(ilo, ilo);
    return 0;
  }
  // Clear the entries below the subdiagonal that the iteration assumes zero.
  for (int j = ilo; j <= ihi - 3; ++j) H(j + 2, j) = H(j + 3, j) = kZero;
  if (ilo <= ihi - 2) H(ihi, ihi - 2) = kZero;
  const int jlo = wantt ? 1 : ilo, jhi = wantt ? n : ihi;

  // Make the subdiagonal real by a diagonal unitary similarity.
  for (int i = ilo + 1; i <= ihi; ++i) {
    if (H(i, i - 1).imag() != R(0)) {
      C sc = H(i, i - 1) / cabs1(H(i, i - 1));
      sc = std::conj(sc) / std::abs(sc);
      H(i, i - 1) = std::abs(H(i, i - 1));
      scal(jhi - i + 1, sc, H.at(i, i), ldh);
      scal(std::min(jhi, i + 1) - jlo + 1, std::conj(sc), H.at(jlo, i), 1);
      if (wantz) scal(ihiz - iloz + 1, std::conj(sc), Z.at(iloz, i), 1);
    }
  }

  const int nh = ihi - ilo + 1, nz = ihiz - iloz + 1;
  const Tolerances tol(nh);
  const R ulp = tol.ulp, smlnum = tol.smlnum;
  int i1 = 1, i2 = n;
  const int itmax = 30 * std::max(10, nh);
  int kdefl = 0;  // iterations since the last deflation

  // The active block is rows l..i; i moves up as eigenvalues converge.
  int i = ihi;
  while (i >= ilo) {
    int l = ilo;
    bool converged = false;
    for (int its = 0; its <= itmax; ++its) {
      // Look for a single small subdiagonal entry.
      int k;
      for (k = i; k > l; --k) {
        if (cabs1(H(k, k - 1)) <= smlnum) break;
        R tst = cabs1(H(k - 1, k - 1)) + cabs1(H(k, k));
        if (tst == R(0)) {
          if (k - 2 >= ilo) tst += std::abs(H(k - 1, k - 2).real());
          if (k + 1 <= ihi) tst += std::abs(H(k + 1, k).real());
        }
        // The conservative small-subdiagonal test of Ahues and Tisseur.
        if (std::abs(H(k, k - 1).real()) <= ulp * tst) {
          const R ab = std::max(cabs1(H(k, k - 1)), cabs1(H(k - 1, k)));
          const R ba = std::min(cabs1(H(k, k - 1)), cabs1(H(k - 1, k)));
          const R aa = std::max(cabs1(H(k, k)), cabs1(H(k - 1, k - 1) - H(k, k)));
          const R bb = std::min(cabs1(H(k, k)), cabs1(H(k - 1, k - 1) - H(k, k)));
          const R s = aa + ab;
          if (ba * (ab / s) <= std::max(smlnum, ulp * (bb * (aa / s)))) break;
        }
      }
      l = k;
      if (l > ilo) H(l, l - 1) = kZero;
      if (l >= i) {
        converged = true;
        break;
      }
      ++kdefl;
      if (!wantt) {
        i1 = l;
        i2 = i;
      }

      // The shift: exceptional every so often, else Wilkinson's.
      C t;
      if (kdefl % (2 * kExceptionalEvery) == 0) {
        t = kExceptional * std::abs(H(i, i - 1).real()) + H(i, i);
      } else if (kdefl % kExceptionalEvery == 0) {
        t = kExceptional * std::abs(H(l + 1, l).real()) + H(l, l);
      } else {
        t = H(i, i);
        const C u = std::sqrt(H(i - 1, i)) * std::sqrt(H(i, i - 1));
        R s = cabs1(u);
        if (s != R(0)) {
          const C x = R(0.5) * (H(i - 1, i - 1) - t);
          const R sx = cabs1(x);
          s = std::max(s, cabs1(x));
          C y = s * std::sqrt((x / s) * (x / s) + (u / s) * (u / s));
          if (sx > R(0)) {
            const C xs = x / sx;
            if (xs.real() * y.real() + xs.imag() * y.imag() < R(0)) y = -y;
          }
          t -= u * ladiv(u, x + y);
        }
      }

      // Look for two consecutive small subdiagonals: start the sweep there.
      int m;
      C v[2];
      for (m = i - 1; m >= l; --m) {
        const C h11 = H(m, m), h22 = H(m + 1, m + 1);
        C h11s = h11 - t;
        R h21 = H(m + 1, m).real();
        const R s = cabs1(h11s) + std::abs(h21);
        h11s /= s;
        h21 /= s;
        v[0] = h11s;
        v[1] = h21;
        if (m == l) break;
        const R h10 = H(m, m - 1).real();
        if (std::abs(h10) * std::abs(h21) <= ulp * (cabs1(h11s) * (cabs1(h11) + cabs1(h22)))) break;
      }

      // The single-shift sweep, chasing the bulge from m down to i.
      for (k = m; k <= i - 1; ++k) {
        if (k > m) {
          v[0] = H(k, k - 1);
          v[1] = H(k + 1, k - 1);
        }
        C t1;
        larfg(2, v[0], &v[1], 1, t1);
        if (k > m) {
          H(k, k - 1) = v[0];
          H(k + 1, k - 1) = kZero;
        }
        const C v2 = v[1];
        const R t2 = (t1 * v2).real();
        for (int j = k; j <= i2; ++j) {
          const C sum = std::conj(t1) * H(k, j) + t2 * H(k + 1, j);
          H(k, j) -= sum;
          H(k + 1, j) -= sum * v2;
        }
        for (int j = i1; j <= std::min(k + 2, i); ++j) {
          const C sum = t1 * H(j, k) + t2 * H(j, k + 1);
          H(j, k) -= sum;
          H(j, k + 1) -= sum * std::conj(v2);
        }
        if (wantz) {
          for (int j = iloz; j <= ihiz; ++j) {
            const C sum = t1 * Z(j, k) + t2 * Z(j, k + 1);
            Z(j, k) -= sum;
            Z(j, k + 1) -= sum * std::conj(v2);
          }
        }
        if (k == m && m > l) {
          // The first reflector of a sweep started inside the block leaves
          // H(m+1, m) complex; a diagonal similarity makes it real again.
          C temp = kOne - t1;
          temp /= std::abs(temp);
          H(m + 1, m) *= std::conj(temp);
          if (m + 2 <= i) H(m + 2, m + 1) *= temp;
          for (int j = m; j <= i; ++j) {
            if (j == m + 1) continue;
            if (i2 > j) scal(i2 - j, temp, H.at(j, j + 1), ldh);
            scal(j - i1, std::conj(temp), H.at(i1, j), 1);
            if (wantz) scal(nz, std::conj(temp), Z.at(iloz, j), 1);
          }
        }
      }

      // Keep H(i, i-1) real.
      C temp = H(i, i - 1);
      if (temp.imag() != R(0)) {
        const R rtemp = std::abs(temp);
        H(i, i - 1) = rtemp;
        temp /= rtemp;
        if (i2 > i) scal(i2 - i, std::conj(temp), H.at(i, i + 1), ldh);
        scal(i - i1, temp, H.at(i1, i), 1);
        if (wantz) scal(nz, temp, Z.at(iloz, i), 1);
      }
    }
    if (!converged) return i;
    // H(i, i-1) is negligible: one eigenvalue has converged.
    w[i - 1] = H(i, i);
    kdefl = 0;
    i = l - 1;
  }
  return 0;
}

// ---- Schur reordering (CTREXC) -----------------------------------------------------------

void trexc(int n, C *tp, int ldt, C *qp, int ldq, int ifst, int ilst) {
  if (n <= 1 || ifst == ilst) return;
  const View T{tp, ldt}, Q{qp, ldq};
  // Move the entry one place at a time; each swap of the adjacent diagonal
  // entries (k, k+1) is a rotation that zeros the second component of the
  // eigenvector (T(k, k+1); T(k+1, k+1) - T(k, k)).
  const int step = ifst < ilst ? 1 : -1;
  const int first = ifst < ilst ? ifst : ifst - 1, last = ifst < ilst ? ilst - 1 : ilst;
  for (int k = first; step > 0 ? k <= last : k >= last; k += step) {
    const C t11 = T(k, k), t22 = T(k + 1, k + 1);
    R cs;
    C sn, temp;
    lartg(T(k, k + 1), t22 - t11, cs, sn, temp);
    if (k + 2 <= n) rot(n - k - 1, T.at(k, k + 2), ldt, T.at(k + 1, k + 2), ldt, cs, sn);
    rot(k - 1, T.at(1, k), 1, T.at(1, k + 1), 1, cs, std::conj(sn));
    T(k, k) = t22;
    T(k + 1, k + 1) = t11;
    if (qp != nullptr) rot(n, Q.at(1, k), 1, Q.at(1, k + 1), 1, cs, std::conj(sn));
  }
}

namespace {

// ---- the first column of a double shift (CLAQR1) -----------------------------------------

// A multiple of (H - s1 I)(H - s2 I) e1 for n = 2 or 3, scaled against
// overflow.
void laqr1(int n, const View &H, C s1, C s2, C *v) {
  if (n == 2) {
    const R s = cabs1(H(1, 1) - s2) + cabs1(H(2, 1));
    if (s == R(0)) {
      v[0] = v[1] = kZero;
      return;
    }
    const C h21s = H(2, 1) / s;
    v[0] = h21s * H(1, 2) + (H(1, 1) - s1) * ((H(1, 1) - s2) / s);
    v[1] = h21s * (H(1, 1) + H(2, 2) - s1 - s2);
    return;
  }
  const R s = cabs1(H(1, 1) - s2) + cabs1(H(2, 1)) + cabs1(H(3, 1));
  if (s == R(0)) {
    v[0] = v[1] = v[2] = kZero;
    return;
  }
  const C h21s = H(2, 1) / s, h31s = H(3, 1) / s;
  v[0] = (H(1, 1) - s1) * ((H(1, 1) - s2) / s) + H(1, 2) * h21s + H(1, 3) * h31s;
  v[1] = h21s * (H(1, 1) + H(2, 2) - s1 - s2) + H(2, 3) * h31s;
  v[2] = h31s * (H(1, 1) + H(3, 3) - s1 - s2) + h21s * H(3, 2);
}

// ---- aggressive early deflation (CLAQR2, CLAQR3) -----------------------------------------

std::int64_t aed_worksize(int level, int n, int ktop, int kbot, int nw) {
  const int jw = std::min(nw, kbot - ktop + 1);
  if (jw <= 2) return 1;
  // The window's reduction and its application need jw each beside tau.
  std::int64_t opt = 2 * static_cast<std::int64_t>(jw);
  if (level == 0) opt = std::max(opt, laqr0_worksize(1, true, true, jw, 1, jw));
  (void)n;
  return opt;
}

// Deflates what it can of the trailing nw-by-nw window of the active block
// ktop..kbot: its Schur form by the QR (CLAQR4 at level 0, CLAHQR at level
// 1), the spike's negligible entries, and the reordering that moves the
// undeflatable eigenvalues up. Returns ns (the undeflated eigenvalues, the
// shifts for the next sweep in sh(kbot-nd-ns+1 .. kbot-nd)) and nd (the
// deflated ones, in sh(kbot-nd+1 .. kbot)). V (nw by nw), T (nw by nh) and
// WV (nv by nw) are scratch.
void aed(int level, bool wantt, bool wantz, int n, int ktop, int kbot, int nw, const View &H,
         int iloz, int ihiz, const View &Z, int &ns, int &nd, C *sh, const View &V, int nh,
         const View &T, int nv, const View &WV, C *work, int lwork) {
  ns = nd = 0;
  if (ktop > kbot || nw < 1) return;
  const Tolerances tol(n);
  const R ulp = tol.ulp, smlnum = tol.smlnum;
  const int jw = std::min(nw, kbot - ktop + 1);
  const int kwtop = kbot - jw + 1;
  C s = kwtop == ktop ? kZero : H(kwtop, kwtop - 1);  // the spike's scale

  if (kbot == kwtop) {
    // A 1-by-1 window.
    sh[kwtop - 1] = H(kwtop, kwtop);
    ns = 1;
    nd = 0;
    if (cabs1(s) <= std::max(smlnum, ulp * cabs1(H(kwtop, kwtop)))) {
      ns = 0;
      nd = 1;
      if (kwtop > ktop) H(kwtop, kwtop - 1) = kZero;
    }
    return;
  }

  // The window's Schur form T = V^H H_w V.
  lacpy(Part::kUpper, jw, jw, H.at(kwtop, kwtop), H.ld, T.p, T.ld);
  for (int j = 1; j < jw; ++j) T(j + 1, j) = H(kwtop + j, kwtop + j - 1);
  laset(Part::kAll, jw, jw, kZero, kOne, V.p, V.ld);
  int infqr;
  const int nmin = oracle(kQrSmall, name<c8>("LAQR3"), jw, 1, jw, lwork);
  if (level == 0 && jw > nmin)
    infqr =
        laqr0(1, true, true, jw, 1, jw, T.p, T.ld, sh + kwtop - 1, 1, jw, V.p, V.ld, work, lwork);
  else
    infqr = lahqr(true, true, jw, 1, jw, T.p, T.ld, sh + kwtop - 1, 1, jw, V.p, V.ld);

  // Deflation detection: the spike s V(1, j) is negligible against T(j, j);
  // undeflatable eigenvalues are moved to the top of the window.
  ns = jw;
  int ilst = infqr + 1;
  for (int knt = infqr + 1; knt <= jw; ++knt) {
    R foo = cabs1(T(ns, ns));
    if (foo == R(0)) foo = cabs1(s);
    if (cabs1(s) * cabs1(V(1, ns)) <= std::max(smlnum, ulp * foo)) {
      --ns;
    } else {
      trexc(jw, T.p, T.ld, V.p, V.ld, ns, ilst);
      ++ilst;
    }
  }
  if (ns == 0) s = kZero;

  if (ns < jw) {
    // Sort the undeflated eigenvalues by decreasing magnitude (selection,
    // by swaps), so the best shifts come last.
    for (int i = infqr + 1; i <= ns; ++i) {
      int ifst = i;
      for (int j = i + 1; j <= ns; ++j)
        if (cabs1(T(j, j)) > cabs1(T(ifst, ifst))) ifst = j;
      if (ifst != i) trexc(jw, T.p, T.ld, V.p, V.ld, ifst, i);
    }
  }
  for (int i = infqr + 1; i <= jw; ++i) sh[kwtop + i - 2] = T(i, i);

  if (ns < jw || s == kZero) {
    C *tau = work;  // jw entries, then jw of scratch
    C *scratch = work + jw;
    if (ns > 1 && s != kZero) {
      // Restore Hessenberg form to the undeflated part: a reflector takes the
      // spike to a multiple of e1, then the Hessenberg reduction.
      for (int i = 0; i < ns; ++i) work[i] = std::conj(V(1, i + 1));
      C beta = work[0], taus;
      larfg(ns, beta, work + 1, 1, taus);
      work[0] = kOne;
      if (jw > 2) laset(Part::kLower, jw - 2, jw - 2, kZero, kZero, T.at(3, 1), T.ld);
      larf(Side::kLeft, ns, jw, work, 1, std::conj(taus), T.p, T.ld, scratch);
      larf(Side::kRight, ns, ns, work, 1, taus, T.p, T.ld, scratch);
      larf(Side::kRight, jw, ns, work, 1, taus, V.p, V.ld, scratch);
      gehd2(jw, ns, T, tau, scratch);
    }
    if (kwtop > 1) H(kwtop, kwtop - 1) = s * std::conj(V(1, 1));
    lacpy(Part::kUpper, jw, jw, T.p, T.ld, H.at(kwtop, kwtop), H.ld);
    for (int j = 1; j < jw; ++j) H(kwtop + j, kwtop + j - 1) = T(j + 1, j);
    if (ns > 1 && s != kZero) apply_gehd2_right(jw, ns, T, tau, V, scratch);

    // Apply V to the rest of H and to Z, a block of rows or columns at a time.
    const int ltop = wantt ? 1 : ktop;
    for (int krow = ltop; krow <= kwtop - 1; krow += nv) {
      const int kln = std::min(nv, kwtop - krow);
      update(Op::kNone, kln, jw, jw, H.at(krow, kwtop), H.ld, V.p, V.ld, WV.p, WV.ld);
      lacpy(Part::kAll, kln, jw, WV.p, WV.ld, H.at(krow, kwtop), H.ld);
    }
    if (wantt) {
      for (int kcol = kbot + 1; kcol <= n; kcol += nh) {
        const int kln = std::min(nh, n - kcol + 1);
        update(Op::kConjTrans, jw, kln, jw, V.p, V.ld, H.at(kwtop, kcol), H.ld, T.p, T.ld);
        lacpy(Part::kAll, jw, kln, T.p, T.ld, H.at(kwtop, kcol), H.ld);
      }
    }
    if (wantz) {
      for (int krow = iloz; krow <= ihiz; krow += nv) {
        const int kln = std::min(nv, ihiz - krow + 1);
        update(Op::kNone, kln, jw, jw, Z.at(krow, kwtop), Z.ld, V.p, V.ld, WV.p, WV.ld);
        lacpy(Part::kAll, kln, jw, WV.p, WV.ld, Z.at(krow, kwtop), Z.ld);
      }
    }
  }
  nd = jw - ns;
  ns -= infqr;
}

// ---- the multishift sweep (CLAQR5) -------------------------------------------------------

// The deflation check of a sweep at subdiagonal (k+1, k): the Ahues and
// Tisseur test with the neighbourhood of the bulge as the scale when the
// diagonal is zero.
inline void sweep_deflate(const View &H, int k, int ktop, int kbot, R smlnum, R ulp) {
  if (H(k + 1, k) == kZero) return;
  R tst1 = cabs1(H(k, k)) + cabs1(H(k + 1, k + 1));
  if (tst1 == R(0)) {
    if (k >= ktop + 1) tst1 += cabs1(H(k, k - 1));
    if (k >= ktop + 2) tst1 += cabs1(H(k, k - 2));
    if (k >= ktop + 3) tst1 += cabs1(H(k, k - 3));
    if (k <= kbot - 2) tst1 += cabs1(H(k + 2, k + 1));
    if (k <= kbot - 3) tst1 += cabs1(H(k + 3, k + 1));
    if (k <= kbot - 4) tst1 += cabs1(H(k + 4, k + 1));
  }
  if (cabs1(H(k + 1, k)) <= std::max(smlnum, ulp * tst1)) {
    const R h12 = std::max(cabs1(H(k + 1, k)), cabs1(H(k, k + 1)));
    const R h21 = std::min(cabs1(H(k + 1, k)), cabs1(H(k, k + 1)));
    const R h11 = std::max(cabs1(H(k + 1, k + 1)), cabs1(H(k, k) - H(k + 1, k + 1)));
    const R h22 = std::min(cabs1(H(k + 1, k + 1)), cabs1(H(k, k) - H(k + 1, k + 1)));
    const R scl = h11 + h12;
    const R tst2 = h22 * (h11 / scl);
    if (tst2 == R(0) || h21 * (h12 / scl) <= std::max(smlnum, ulp * tst2)) H(k + 1, k) = kZero;
  }
}

// One sweep of nshfts simultaneous shifts s as a chain of tightly packed
// 3-by-3 bulges through rows ktop..kbot. With accumulation (kacc22 1 or 2)
// the reflections of a chain's passage through a block of 2*nshfts columns
// are gathered in U (kdu by kdu) and applied to the rest of H and to Z with
// gemm, through WH (kdu by nh) and WV (nv by kdu). V (3 by nshfts/2) holds the
// bulges' reflectors.
void laqr5(bool wantt, bool wantz, int kacc22, int n, int ktop, int kbot, int nshfts, C *s,
           const View &H, int iloz, int ihiz, const View &Z, const View &V, const View &U, int nv,
           const View &WV, int nh, const View &WH) {
  if (nshfts < 2 || ktop >= kbot) return;
  const int ns = nshfts - nshfts % 2;
  const Tolerances tol(n);
  const R ulp = tol.ulp, smlnum = tol.smlnum;
  const bool accum = kacc22 == 1 || kacc22 == 2;
  if (ktop + 2 <= kbot) H(ktop + 2, ktop) = kZero;
  const int nbmps = ns / 2;
  const int kdu = 4 * nbmps;
  auto S = [&](int i) -> C & { return s[i - 1]; };

  for (int incol = ktop - 2 * nbmps + 1; incol <= kbot - 2; incol += 2 * nbmps) {
    const int jtop = accum ? std::max(ktop, incol) : (wantt ? 1 : ktop);
    const int ndcol = incol + kdu;
    if (accum) laset(Part::kAll, kdu, kdu, kZero, kOne, U.p, U.ld);

    for (int krcol = incol; krcol <= std::min(incol + 2 * nbmps - 1, kbot - 2); ++krcol) {
      // Bulges mtop..mbot are in play; a 2-by-2 bulge (m22) may be needed
      // at the bottom.
      const int mtop = std::max(1, (ktop - krcol) / 2 + 1);
      const int mbot = std::min(nbmps, (kbot - krcol - 1) / 2);
      const int m22 = mbot + 1;
      const bool bmp22 = mbot < nbmps && krcol + 2 * (m22 - 1) == kbot - 2;

      if (bmp22) {
        const int k = krcol + 2 * (m22 - 1);
        if (k == ktop - 1) {
          laqr1(2, View{H.at(k + 1, k + 1), H.ld}, S(2 * m22 - 1), S(2 * m22), V.at(1, m22));
          C beta = V(1, m22);
          larfg(2, beta, V.at(2, m22), 1, V(1, m22));
        } else {
          C beta = H(k + 1, k);
          V(2, m22) = H(k + 2, k);
          larfg(2, beta, V.at(2, m22), 1, V(1, m22));
          H(k + 1, k) = beta;
          H(k + 2, k) = kZero;
        }
        C t1 = V(1, m22), t2 = t1 * std::conj(V(2, m22));
        for (int j = jtop; j <= std::min(kbot, k + 3); ++j) {
          const C refsum = H(j, k + 1) + V(2, m22) * H(j, k + 2);
          H(j, k + 1) -= refsum * t1;
          H(j, k + 2) -= refsum * t2;
        }
        const int jbot = accum ? std::min(ndcol, kbot) : (wantt ? n : kbot);
        t1 = std::conj(V(1, m22));
        t2 = t1 * V(2, m22);
        for (int j = k + 1; j <= jbot; ++j) {
          const C refsum = H(k + 1, j) + std::conj(V(2, m22)) * H(k + 2, j);
          H(k + 1, j) -= refsum * t1;
          H(k + 2, j) -= refsum * t2;
        }
        if (k >= ktop) sweep_deflate(H, k, ktop, kbot, smlnum, ulp);
        if (accum) {
          const int kms = k - incol;
          for (int j = std::max(1, ktop - incol); j <= kdu; ++j) {
            const C refsum = V(1, m22) * (U(j, kms + 1) + V(2, m22) * U(j, kms + 2));
            U(j, kms + 1) -= refsum;
            U(j, kms + 2) -= refsum * std::conj(V(2, m22));
          }
        } else if (wantz) {
          for (int j = iloz; j <= ihiz; ++j) {
            const C refsum = V(1, m22) * (Z(j, k + 1) + V(2, m22) * Z(j, k + 2));
            Z(j, k + 1) -= refsum;
            Z(j, k + 2) -= refsum * std::conj(V(2, m22));
          }
        }
      }

      // The 3-by-3 bulges, from the bottom one up: each is moved one column
      // down and applied from the right to its rows, so far as they reach.
      for (int m = mbot; m >= mtop; --m) {
        const int k = krcol + 2 * (m - 1);
        if (k == ktop - 1) {
          laqr1(3, View{H.at(ktop, ktop), H.ld}, S(2 * m - 1), S(2 * m), V.at(1, m));
          C alpha = V(1, m);
          larfg(3, alpha, V.at(2, m), 1, V(1, m));
        } else {
          // The bulge's delayed last row first, then its new reflector.
          C t1 = V(1, m), t2 = t1 * std::conj(V(2, m)), t3 = t1 * std::conj(V(3, m));
          const C refsum = V(3, m) * H(k + 3, k + 2);
          H(k + 3, k) = -refsum * t1;
          H(k + 3, k + 1) = -refsum * t2;
          H(k + 3, k + 2) -= refsum * t3;
          C beta = H(k + 1, k);
          V(2, m) = H(k + 2, k);
          V(3, m) = H(k + 3, k);
          larfg(3, beta, V.at(2, m), 1, V(1, m));
          if (H(k + 3, k) != kZero || H(k + 3, k + 1) != kZero || H(k + 3, k + 2) == kZero) {
            // The typical case: no collapse.
            H(k + 1, k) = beta;
            H(k + 2, k) = H(k + 3, k) = kZero;
          } else {
            // The bulge has collapsed: try a fresh one from the same shifts
            // and keep it when it leaves a negligible remainder.
            C vt[3];
            laqr1(3, View{H.at(k + 1, k + 1), H.ld}, S(2 * m - 1), S(2 * m), vt);
            C alpha = vt[0];
            larfg(3, alpha, vt + 1, 1, vt[0]);
            t1 = std::conj(vt[0]);
            t2 = t1 * vt[1];
            t3 = t1 * vt[2];
            const C refsum2 = H(k + 1, k) + std::conj(vt[1]) * H(k + 2, k);
            if (cabs1(H(k + 2, k) - refsum2 * t2) + cabs1(refsum2 * t3) >
                ulp * (cabs1(H(k, k)) + cabs1(H(k + 1, k + 1)) + cabs1(H(k + 2, k + 2)))) {
              H(k + 1, k) = beta;
              H(k + 2, k) = H(k + 3, k) = kZero;
            } else {
              H(k + 1, k) -= refsum2 * t1;
              H(k + 2, k) = H(k + 3, k) = kZero;
              V(1, m) = vt[0];
              V(2, m) = vt[1];
              V(3, m) = vt[2];
            }
          }
        }
        C t1 = V(1, m), t2 = t1 * std::conj(V(2, m)), t3 = t1 * std::conj(V(3, m));
        for (int j = jtop; j <= std::min(kbot, k + 3); ++j) {
          const C refsum = H(j, k + 1) + V(2, m) * H(j, k + 2) + V(3, m) * H(j, k + 3);
          H(j, k + 1) -= refsum * t1;
          H(j, k + 2) -= refsum * t2;
          H(j, k + 3) -= refsum * t3;
        }
        // The first column of the bulge from the left now, so the next
        // reflector can be built from it.
        t1 = std::conj(V(1, m));
        t2 = t1 * V(2, m);
        t3 = t1 * V(3, m);
        const C refsum = H(k + 1, k + 1) + std::conj(V(2, m)) * H(k + 2, k + 1) +
                         std::conj(V(3, m)) * H(k + 3, k + 1);
        H(k + 1, k + 1) -= refsum * t1;
        H(k + 2, k + 1) -= refsum * t2;
        H(k + 3, k + 1) -= refsum * t3;
        if (k < ktop) continue;
        sweep_deflate(H, k, ktop, kbot, smlnum, ulp);
      }

      // The bulges' reflections from the left, on the columns in reach.
      const int jbot = accum ? std::min(ndcol, kbot) : (wantt ? n : kbot);
      for (int m = mbot; m >= mtop; --m) {
        const int k = krcol + 2 * (m - 1);
        const C t1 = std::conj(V(1, m)), t2 = t1 * V(2, m), t3 = t1 * V(3, m);
        const C cv2 = std::conj(V(2, m)), cv3 = std::conj(V(3, m));
        for (int j = std::max(ktop, krcol + 2 * m); j <= jbot; ++j) {
          const C refsum = H(k + 1, j) + cv2 * H(k + 2, j) + cv3 * H(k + 3, j);
          H(k + 1, j) -= refsum * t1;
          H(k + 2, j) -= refsum * t2;
          H(k + 3, j) -= refsum * t3;
        }
      }

      // And from the right to U, or directly to Z.
      if (accum) {
        for (int m = mbot; m >= mtop; --m) {
          const int k = krcol + 2 * (m - 1);
          const int kms = k - incol;
          const int i2 = std::max({1, ktop - incol, kms - (krcol - incol) + 1});
          const int i4 = std::min(kdu, krcol + 2 * (mbot - 1) - incol + 5);
          const C t1 = V(1, m), t2 = t1 * std::conj(V(2, m)), t3 = t1 * std::conj(V(3, m));
          for (int j = i2; j <= i4; ++j) {
            const C refsum = U(j, kms + 1) + V(2, m) * U(j, kms + 2) + V(3, m) * U(j, kms + 3);
            U(j, kms + 1) -= refsum * t1;
            U(j, kms + 2) -= refsum * t2;
            U(j, kms + 3) -= refsum * t3;
          }
        }
      } else if (wantz) {
        for (int m = mbot; m >= mtop; --m) {
          const int k = krcol + 2 * (m - 1);
          const C t1 = V(1, m), t2 = t1 * std::conj(V(2, m)), t3 = t1 * std::conj(V(3, m));
          for (int j = iloz; j <= ihiz; ++j) {
            const C refsum = Z(j, k + 1) + V(2, m) * Z(j, k + 2) + V(3, m) * Z(j, k + 3);
            Z(j, k + 1) -= refsum * t1;
            Z(j, k + 2) -= refsum * t2;
            Z(j, k + 3) -= refsum * t3;
          }
        }
      }
    }

    // The accumulated U on the rest of H and on Z, by level-3 updates.
    if (accum)
      laqr::apply_accumulated<C>(wantt, wantz, n, ktop, kbot, incol, ndcol, kdu, nh, nv, iloz, ihiz,
                                 U, H, Z, WH, WV);
  }
}

constexpr int kTiny = 15;         // below this order the single-shift QR runs
constexpr int kWindowGrowth = 5;  // sweeps without deflation before the window grows
constexpr int kExceptional = 6;   // sweeps without deflation between exceptional shifts
constexpr R kWilkinson = R(0.75);

struct Sizes {
  int nwr, nsr;
};

Sizes laqr0_sizes(int n, int ilo, int ihi, int lwork) {
  const auto nm = name<c8>("LAQR0");
  int nwr = std::max(2, oracle(kQrWindow, nm, n, ilo, ihi, lwork));
  nwr = std::min({ihi - ilo + 1, (n - 1) / 3, nwr});
  int nsr = oracle(kQrShifts, nm, n, ilo, ihi, lwork);
  nsr = std::min({nsr, (n - 3) / 6, ihi - ilo});
  nsr = std::max(2, nsr - nsr % 2);
  return {nwr, nsr};
}

}  // namespace

std::int64_t laqr0_worksize(int level, bool wantt, bool wantz, int n, int ilo, int ihi) {
  (void)wantt;
  (void)wantz;
  if (n <= kTiny) return 1;
  const Sizes sz = laqr0_sizes(n, ilo, ihi, -1);
  return std::max<std::int64_t>(3 * sz.nsr / 2, aed_worksize(level, n, ilo, ihi, sz.nwr + 1));
}

int laqr0(int level, bool wantt, bool wantz, int n, int ilo, int ihi, C *hp, int ldh, C *w,
          int iloz, int ihiz, C *zp, int ldz, C *work, int lwork) {
  if (n == 0) return 0;
  if (n <= kTiny) return lahqr(wantt, wantz, n, ilo, ihi, hp, ldh, w, iloz, ihiz, zp, ldz);
  const View H{hp, ldh}, Z{zp, ldz};
  const auto nm = name<c8>("LAQR0");
  const Sizes sz = laqr0_sizes(n, ilo, ihi, lwork);
  const int nwr = sz.nwr, nsr = sz.nsr;
  const int nmin = std::max(kTiny, oracle(kQrSmall, nm, n, ilo, ihi, lwork));
  const int nibble = std::max(0, oracle(kQrNibble, nm, n, ilo, ihi, lwork));
  const int kacc22 = std::clamp(oracle(kQrAccumulate, nm, n, ilo, ihi, lwork), 0, 2);

  // The deflation window and the shift count, as large as the workspace
  // allows.
  const int nwmax = std::min((n - 1) / 3, lwork / 2);
  int nw = nwmax;
  int nsmax = std::min((n - 3) / 6, 2 * lwork / 3);
  nsmax -= nsmax % 2;
  int ndfl = 1;  // sweeps since the last deflation
  int ndec = -1;
  const int itmax = std::max(30, 2 * kExceptional) * std::max(10, ihi - ilo + 1);
  int kbot = ihi;

  for (int it = 1; it <= itmax; ++it) {
    if (kbot < ilo) return 0;
    // The active block ktop..kbot ends at the last zero subdiagonal.
    int k;
    for (k = kbot; k >= ilo + 1; --k)
      if (H(k, k - 1) == kZero) break;
    const int ktop = k;

    // The deflation window: nwr while deflation goes well, then growing, and
    // shrinking again once at its largest.
    const int nh = kbot - ktop + 1;
    const int nwupbd = std::min(nh, nwmax);
    nw = ndfl < kWindowGrowth ? std::min(nwupbd, nwr) : std::min(nwupbd, 2 * nw);
    if (nw < nwmax) {
      if (nw >= nh - 1) {
        nw = nh;
      } else {
        const int kwtop = kbot - nw + 1;
        if (cabs1(H(kwtop, kwtop - 1)) > cabs1(H(kwtop - 1, kwtop - 2))) ++nw;
      }
    }
    if (ndfl < kWindowGrowth) {
      ndec = -1;
    } else if (ndec >= 0 || nw >= nwupbd) {
      ++ndec;
      if (nw - ndec < 2) ndec = 0;
      nw -= ndec;
    }

    // Early deflation, with the scratch in the free lower part of H: V in
    // the bottom-left nw by nw corner, T right of it, WV above V.
    const int kv = n - nw + 1;
    int kt = nw + 1;
    int nho = (n - nw - 1) - kt + 1;
    int kwv = nw + 2;
    int nve = (n - nw) - kwv + 1;
    int ls, ld;
    aed(level, wantt, wantz, n, ktop, kbot, nw, H, iloz, ihiz, Z, ls, ld, w, View{H.at(kv, 1), ldh},
        nho, View{H.at(kv, kt), ldh}, nve, View{H.at(kwv, 1), ldh}, work, lwork);
    kbot -= ld;
    int ks = kbot - ls + 1;  // the first of the shifts aed left in w

    // A sweep when deflation gave little.
    if (ld == 0 || (100 * ld <= nw * nibble && kbot - ktop + 1 > std::min(nmin, nwmax))) {
      int ns = std::min({nsmax, nsr, std::max(2, kbot - ktop)});
      ns -= ns % 2;
      if (ndfl % kExceptional == 0) {
        // Exceptional shifts.
        ks = kbot - ns + 1;
        for (int i = kbot; i >= ks + 1; i -= 2) {
          w[i - 1] = H(i, i) + kWilkinson * cabs1(H(i, i - 1));
          w[i - 2] = w[i - 1];
        }
      } else {
        if (kbot - ks + 1 <= ns / 2) {
          // Too few shifts from aed: the eigenvalues of the trailing ns by
          // ns block, computed in a copy in the free lower part of H.
          ks = kbot - ns + 1;
          kt = n - ns + 1;
          lacpy(Part::kAll, ns, ns, H.at(ks, ks), ldh, H.at(kt, 1), ldh);
          int inf;
          C dummy[1];
          if (level == 0 && ns > nmin)
            inf = laqr0(1, false, false, ns, 1, ns, H.at(kt, 1), ldh, w + ks - 1, 1, 1, dummy, 1,
                        work, lwork);
          else
            inf = lahqr(false, false, ns, 1, ns, H.at(kt, 1), ldh, w + ks - 1, 1, 1, dummy, 1);
          ks += inf;
          if (ks >= kbot) {
            // Nothing converged: the eigenvalues of the trailing 2 by 2.
            const R s = cabs1(H(kbot - 1, kbot - 1)) + cabs1(H(kbot, kbot - 1)) +
                        cabs1(H(kbot - 1, kbot)) + cabs1(H(kbot, kbot));
            const C aa = H(kbot - 1, kbot - 1) / s, cc = H(kbot, kbot - 1) / s;
            const C bb = H(kbot - 1, kbot) / s, dd = H(kbot, kbot) / s;
            const C tr2 = (aa + dd) / R(2);
            const C det = (aa - tr2) * (dd - tr2) - bb * cc;
            const C rtdisc = std::sqrt(-det);
            w[kbot - 2] = (tr2 + rtdisc) * s;
            w[kbot - 1] = (tr2 - rtdisc) * s;
            ks = kbot - 1;
          }
        }
        if (kbot - ks + 1 > ns) {
          // More shifts than needed: sort by decreasing magnitude so the
          // smallest are used (bubble sort, as the order of ties matters).
          bool sorted = false;
          for (int kk = kbot; kk >= ks + 1 && !sorted; --kk) {
            sorted = true;
            for (int i = ks; i <= kk - 1; ++i) {
              if (cabs1(w[i - 1]) < cabs1(w[i])) {
                sorted = false;
                std::swap(w[i - 1], w[i]);
              }
            }
          }
        }
      }
      // With only two shifts, use the one closer to H(kbot, kbot) twice.
      if (kbot - ks + 1 == 2) {
        if (cabs1(w[kbot - 1] - H(kbot, kbot)) < cabs1(w[kbot - 2] - H(kbot, kbot)))
          w[kbot - 2] = w[kbot - 1];
        else
          w[kbot - 1] = w[kbot - 2];
      }
      ns = std::min(ns, kbot - ks + 1);
      ns -= ns % 2;
      ks = kbot - ns + 1;

      // The sweep, its scratch again in the lower part of H: U (kdu by kdu)
      // in the bottom-left corner, WV above it, WH right of it.
      const int kdu = 2 * ns;
      const int ku = n - kdu + 1;
      const int kwh = kdu + 1;
      nho = (n - kdu + 1 - 4) - (kdu + 1) + 1;
      kwv = kdu + 4;
      nve = n - kdu - kwv + 1;
      laqr5(wantt, wantz, kacc22, n, ktop, kbot, ns, w + ks - 1, H, iloz, ihiz, Z, View{work, 3},
            View{H.at(ku, 1), ldh}, nve, View{H.at(kwv, 1), ldh}, nho, View{H.at(ku, kwh), ldh});
    }
    ndfl = ld > 0 ? 1 : ndfl + 1;
  }
  return kbot;
}

}  // namespace hqr

// ---- the driver (xHSEQR) -----------------------------------------------------------------

template <>
std::int64_t hseqr_worksize<c8>(bool wantt, CompQ compz, int n, int ilo, int ihi) {
  if (n == 0) return 1;
  const std::int64_t opt = hqr::laqr0_worksize(0, wantt, compz != CompQ::kNone, n, ilo, ihi);
  return std::max<std::int64_t>(opt, std::max(1, n));
}

template <>
int hseqr<c8>(bool wantt, CompQ compz, int n, int ilo, int ihi, c8 *h, int ldh, real_t<c8> *,
              real_t<c8> *, c8 *w, c8 *z, int ldz, c8 *work, int lwork) {
  // A copy padded to this order lets the multishift code finish what the
  // single-shift code could not on small matrices.
  constexpr int kPadded = 49;
  constexpr int kTiny = 15;
  if (n == 0) return 0;
  const bool wantz = compz != CompQ::kNone;
  const hqr::View H{h, ldh};
  // Eigenvalues isolated by balancing.
  for (int i = 1; i < ilo; ++i) w[i - 1] = H(i, i);
  for (int i = ihi + 1; i <= n; ++i) w[i - 1] = H(i, i);
  if (compz == CompQ::kInitial) laset(Part::kAll, n, n, hqr::kZero, hqr::kOne, z, ldz);
  if (ilo == ihi) {
    w[ilo - 1] = H(ilo, ilo);
    return 0;
  }
  int nmin = oracle(kQrSmall, name<c8>("HSEQR"), n, ilo, ihi, lwork);
  nmin = std::max(kTiny, nmin);
  int info;
  if (n > nmin) {
    info = hqr::laqr0(0, wantt, wantz, n, ilo, ihi, h, ldh, w, ilo, ihi, z, ldz, work, lwork);
  } else {
    info = hqr::lahqr(wantt, wantz, n, ilo, ihi, h, ldh, w, ilo, ihi, z, ldz);
    if (info > 0) {
      // Rare: the single-shift QR ran out of iterations. Try the multishift
      // code on the rows still unreduced.
      const int kbot = info;
      if (n >= kPadded) {
        info = hqr::laqr0(0, wantt, wantz, n, ilo, kbot, h, ldh, w, ilo, ihi, z, ldz, work, lwork);
      } else {
        c8 hl[kPadded * kPadded], workl[kPadded];
        lacpy(Part::kAll, n, n, h, ldh, hl, kPadded);
        hl[n + (n - 1) * kPadded] = hqr::kZero;
        laset(Part::kAll, kPadded, kPadded - n, hqr::kZero, hqr::kZero, hl + n * kPadded, kPadded);
        info = hqr::laqr0(0, wantt, wantz, kPadded, ilo, kbot, hl, kPadded, w, ilo, ihi, z, ldz,
                          workl, kPadded);
        if (wantt || info != 0) lacpy(Part::kAll, n, n, hl, kPadded, h, ldh);
      }
    }
  }
  // The Schur form (or what there is of it) is upper triangular.
  if ((wantt || info != 0) && n > 2)
    laset(Part::kLower, n - 2, n - 2, hqr::kZero, hqr::kZero, h + 2, ldh);
  return info;
}

}  // namespace orb::lapack
