// The real small-bulge multishift QR with aggressive early deflation:
// xLAQR0/xLAQR4 (one routine with a level), the deflation windows of
// xLAQR2/xLAQR3, the first column of a double shift (xLAQR1) and the
// multishift sweep of xLAQR5, whose chains of 3x3 bulges have their
// reflections accumulated in a small orthogonal matrix and applied to the
// rest of H and to Z through gemm. The shifts come in pairs: a complex
// conjugate pair, or two real shifts, drive one bulge. The window's Schur
// form is reordered with the real xTREXC, moving 1x1 and 2x2 blocks.
//
// Inside, matrices are addressed 1-based through small views, so the index
// arithmetic reads as the algorithms are usually written.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

#include "lapack/blas_calls.h"
#include "lapack/copy_scale.h"
#include "lapack/householder.h"
#include "lapack/laqr_common.h"
#include "lapack/laqr_real.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/schur_swap.h"

namespace orb::lapack {

namespace {

using laqr::apply_gehd2_right;
using laqr::gehd2;
using laqr::update;
using laqr::View;

template <class R>
struct Tolerances {
  R ulp, smlnum;
  explicit Tolerances(int n) {
    ulp = std::numeric_limits<R>::epsilon();  // the precision, eps * base
    smlnum = std::numeric_limits<R>::min() * (static_cast<R>(n) / ulp);
  }
};

// The eigenvalues of the 2x2 [a b; c d] (a copy: the matrix is not
// changed) as xLANV2 gives them.
template <class R>
void eig2(R a, R b, R c, R d, R &wr1, R &wi1, R &wr2, R &wi2) {
  R cs, sn;
  lanv2<R>(a, b, c, d, wr1, wi1, wr2, wi2, cs, sn);
}

// The magnitude by which the window's eigenvalues are sorted: |t11| for a
// 1x1 block, |t11| + sqrt|t21| sqrt|t12| for a standardized 2x2 block.
template <class R>
R block_magnitude(const View<R> &T, int i, bool pair) {
  R v = std::abs(T(i, i));
  if (pair) v += std::sqrt(std::abs(T(i + 1, i))) * std::sqrt(std::abs(T(i, i + 1)));
  return v;
}

// ---- the first column of a double shift (xLAQR1) -----------------------------------------

// A multiple of (H - (sr1 + i si1) I)(H - (sr2 + i si2) I) e1 for n = 2 or
// 3, real when the shifts are real or a conjugate pair; scaled against
// overflow.
template <class R>
void laqr1(int n, const View<R> &H, R sr1, R si1, R sr2, R si2, R *v) {
  if (n == 2) {
    const R s = std::abs(H(1, 1) - sr2) + std::abs(si2) + std::abs(H(2, 1));
    if (s == R(0)) {
      v[0] = v[1] = 0;
      return;
    }
    const R h21s = H(2, 1) / s;
    v[0] = h21s * H(1, 2) + (H(1, 1) - sr1) * ((H(1, 1) - sr2) / s) - si1 * (si2 / s);
    v[1] = h21s * (H(1, 1) + H(2, 2) - sr1 - sr2);
    return;
  }
  const R s = std::abs(H(1, 1) - sr2) + std::abs(si2) + std::abs(H(2, 1)) + std::abs(H(3, 1));
  if (s == R(0)) {
    v[0] = v[1] = v[2] = 0;
    return;
  }
  const R h21s = H(2, 1) / s, h31s = H(3, 1) / s;
  v[0] =
      (H(1, 1) - sr1) * ((H(1, 1) - sr2) / s) - si1 * (si2 / s) + H(1, 2) * h21s + H(1, 3) * h31s;
  v[1] = h21s * (H(1, 1) + H(2, 2) - sr1 - sr2) + H(2, 3) * h31s;
  v[2] = h31s * (H(1, 1) + H(3, 3) - sr1 - sr2) + h21s * H(3, 2);
}

// ---- aggressive early deflation (xLAQR2, xLAQR3) -----------------------------------------

template <class R>
std::int64_t aed_worksize(int level, int ktop, int kbot, int nw) {
  const int jw = std::min(nw, kbot - ktop + 1);
  if (jw <= 2) return 1;
  // tau and the reduction's scratch (jw each); the reordering needs jw.
  std::int64_t opt = 2 * static_cast<std::int64_t>(jw);
  if (level == 0) opt = std::max(opt, laqr0_worksize<R>(1, jw, 1, jw));
  return opt;
}

// Deflates what it can of the trailing nw-by-nw window of the active block
// ktop..kbot: its Schur form by the QR (the level-1 multishift QR at level
// 0 on large windows, else the double-shift QR), the spike's negligible
// entries, and the reordering that moves the undeflatable blocks up.
// Returns ns (the undeflated eigenvalues, the shifts for the next sweep in
// (sr, si)(kbot-nd-ns+1 .. kbot-nd)) and nd (the deflated ones, in
// (sr, si)(kbot-nd+1 .. kbot)). V (nw by nw), T (nw by nh) and WV (nv by nw)
// are scratch.
template <class R>
void aed(int level, bool wantt, bool wantz, int n, int ktop, int kbot, int nw, const View<R> &H,
         int iloz, int ihiz, const View<R> &Z, int &ns, int &nd, R *sr, R *si, const View<R> &V,
         int nh, const View<R> &T, int nv, const View<R> &WV, R *work, int lwork) {
  ns = nd = 0;
  if (ktop > kbot || nw < 1) return;
  const Tolerances<R> tol(n);
  const R ulp = tol.ulp, smlnum = tol.smlnum;
  const int jw = std::min(nw, kbot - ktop + 1);
  const int kwtop = kbot - jw + 1;
  R s = kwtop == ktop ? R(0) : H(kwtop, kwtop - 1);  // the spike's scale

  if (kbot == kwtop) {
    // A 1-by-1 window.
    sr[kwtop - 1] = H(kwtop, kwtop);
    si[kwtop - 1] = 0;
    ns = 1;
    if (std::abs(s) <= std::max(smlnum, ulp * std::abs(H(kwtop, kwtop)))) {
      ns = 0;
      nd = 1;
      if (kwtop > ktop) H(kwtop, kwtop - 1) = 0;
    }
    return;
  }

  // The window's Schur form T = V^T H_w V.
  lacpy<R>(Part::kUpper, jw, jw, H.at(kwtop, kwtop), H.ld, T.p, T.ld);
  for (int j = 1; j < jw; ++j) T(j + 1, j) = H(kwtop + j, kwtop + j - 1);
  laset<R>(Part::kAll, jw, jw, R(0), R(1), V.p, V.ld);
  int infqr;
  const int nmin = oracle(kQrSmall, name<R>("LAQR3"), jw, 1, jw, lwork);
  if (level == 0 && jw > nmin)
    infqr = laqr0<R>(1, true, true, jw, 1, jw, T.p, T.ld, sr + kwtop - 1, si + kwtop - 1, 1, jw,
                     V.p, V.ld, work, lwork);
  else
    infqr = lahqr<R>(true, true, jw, 1, jw, T.p, T.ld, sr + kwtop - 1, si + kwtop - 1, 1, jw, V.p,
                     V.ld);
  // Rounding trash below the first subdiagonal.
  for (int j = 1; j <= jw - 3; ++j) T(j + 2, j) = T(j + 3, j) = 0;
  if (jw > 2) T(jw, jw - 2) = 0;

  // Deflation detection, from the bottom block up: a block whose spike
  // entries s V(1, .) are negligible deflates, any other is moved to the
  // top of the window (position ilst) so the next one comes to the bottom.
  ns = jw;
  int ilst = infqr + 1;
  while (ilst <= ns) {
    const bool pair = ns > 1 && T(ns, ns - 1) != R(0);
    int ifst = ns;
    if (!pair) {
      R foo = std::abs(T(ns, ns));
      if (foo == R(0)) foo = std::abs(s);
      if (std::abs(s * V(1, ns)) <= std::max(smlnum, ulp * foo)) {
        --ns;
      } else {
        trexc<R>(true, jw, T.p, T.ld, V.p, V.ld, &ifst, &ilst, work);
        ++ilst;
      }
    } else {
      R foo = std::abs(T(ns, ns)) +
              std::sqrt(std::abs(T(ns, ns - 1))) * std::sqrt(std::abs(T(ns - 1, ns)));
      if (foo == R(0)) foo = std::abs(s);
      if (std::max(std::abs(s * V(1, ns)), std::abs(s * V(1, ns - 1))) <=
          std::max(smlnum, ulp * foo)) {
        ns -= 2;
      } else {
        trexc<R>(true, jw, T.p, T.ld, V.p, V.ld, &ifst, &ilst, work);
        ilst += 2;
      }
    }
  }
  if (ns == 0) s = 0;

  if (ns < jw) {
    // Sort the undeflated blocks by decreasing magnitude, so the best shifts
    // come last: a bubble sort by adjacent block swaps, as a swap may turn a
    // 2x2 block into two 1x1 blocks (or fail and leave the pair in place).
    const auto next_block = [&](int i, int kend) {
      return (i == kend || T(i + 1, i) == R(0)) ? i + 1 : i + 2;
    };
    bool sorted = false;
    int kend = ns;
    while (!sorted) {
      sorted = true;
      int i = infqr + 1;
      int k = next_block(i, ns);
      while (k <= kend) {
        const R evi = block_magnitude(T, i, k == i + 2);
        const R evk = block_magnitude(T, k, k != kend && T(k + 1, k) != R(0));
        if (evi >= evk) {
          i = k;
        } else {
          sorted = false;
          int ifst = i, to = k;
          const int info = trexc<R>(true, jw, T.p, T.ld, V.p, V.ld, &ifst, &to, work);
          i = info == 0 ? to : k;
        }
        k = next_block(i, kend);
      }
      kend = i - 1;
    }
  }

  // The window's eigenvalues, from the standardized blocks.
  for (int i = jw; i >= infqr + 1;) {
    if (i == infqr + 1 || T(i, i - 1) == R(0)) {
      sr[kwtop + i - 2] = T(i, i);
      si[kwtop + i - 2] = 0;
      --i;
    } else {
      eig2<R>(T(i - 1, i - 1), T(i - 1, i), T(i, i - 1), T(i, i), sr[kwtop + i - 3],
              si[kwtop + i - 3], sr[kwtop + i - 2], si[kwtop + i - 2]);
      i -= 2;
    }
  }

  if (ns < jw || s == R(0)) {
    R *tau = work;  // jw entries, then jw of scratch
    R *scratch = work + jw;
    if (ns > 1 && s != R(0)) {
      // Restore Hessenberg form to the undeflated part: a reflector takes the
      // spike to a multiple of e1, then the Hessenberg reduction.
      for (int i = 0; i < ns; ++i) work[i] = V(1, i + 1);
      R beta = work[0], taus;
      larfg<R>(ns, beta, work + 1, 1, taus);
      work[0] = 1;
      laset<R>(Part::kLower, jw - 2, jw - 2, R(0), R(0), T.at(3, 1), T.ld);
      larf<R>(Side::kLeft, ns, jw, work, 1, taus, T.p, T.ld, scratch);
      larf<R>(Side::kRight, ns, ns, work, 1, taus, T.p, T.ld, scratch);
      larf<R>(Side::kRight, jw, ns, work, 1, taus, V.p, V.ld, scratch);
      gehd2<R>(jw, ns, T, tau, scratch);
    }
    if (kwtop > 1) H(kwtop, kwtop - 1) = s * V(1, 1);
    lacpy<R>(Part::kUpper, jw, jw, T.p, T.ld, H.at(kwtop, kwtop), H.ld);
    for (int j = 1; j < jw; ++j) H(kwtop + j, kwtop + j - 1) = T(j + 1, j);
    if (ns > 1 && s != R(0)) apply_gehd2_right<R>(jw, ns, T, tau, V, scratch);

    // Apply V to the rest of H and to Z, a block of rows or columns at a time.
    const int ltop = wantt ? 1 : ktop;
    for (int krow = ltop; krow <= kwtop - 1; krow += nv) {
      const int kln = std::min(nv, kwtop - krow);
      update<R>(Op::kNone, kln, jw, jw, H.at(krow, kwtop), H.ld, V.p, V.ld, WV.p, WV.ld);
      lacpy<R>(Part::kAll, kln, jw, WV.p, WV.ld, H.at(krow, kwtop), H.ld);
    }
    if (wantt) {
      for (int kcol = kbot + 1; kcol <= n; kcol += nh) {
        const int kln = std::min(nh, n - kcol + 1);
        update<R>(Op::kTrans, jw, kln, jw, V.p, V.ld, H.at(kwtop, kcol), H.ld, T.p, T.ld);
        lacpy<R>(Part::kAll, jw, kln, T.p, T.ld, H.at(kwtop, kcol), H.ld);
      }
    }
    if (wantz) {
      for (int krow = iloz; krow <= ihiz; krow += nv) {
        const int kln = std::min(nv, ihiz - krow + 1);
        update<R>(Op::kNone, kln, jw, jw, Z.at(krow, kwtop), Z.ld, V.p, V.ld, WV.p, WV.ld);
        lacpy<R>(Part::kAll, kln, jw, WV.p, WV.ld, Z.at(krow, kwtop), Z.ld);
      }
    }
  }
  nd = jw - ns;
  ns -= infqr;
}

// ---- the multishift sweep (xLAQR5) -------------------------------------------------------

// The deflation check of a sweep at subdiagonal (k+1, k), made while the
// bulges pass ("vigilant" deflation): the Ahues and Tisseur test, with the
// neighbourhood of the bulge as the scale when the diagonal is zero.
template <class R>
inline void sweep_deflate(const View<R> &H, int k, int ktop, int kbot, R smlnum, R ulp) {
  if (H(k + 1, k) == R(0)) return;
  R tst1 = std::abs(H(k, k)) + std::abs(H(k + 1, k + 1));
  if (tst1 == R(0)) {
    if (k >= ktop + 1) tst1 += std::abs(H(k, k - 1));
    if (k >= ktop + 2) tst1 += std::abs(H(k, k - 2));
    if (k >= ktop + 3) tst1 += std::abs(H(k, k - 3));
    if (k <= kbot - 2) tst1 += std::abs(H(k + 2, k + 1));
    if (k <= kbot - 3) tst1 += std::abs(H(k + 3, k + 1));
    if (k <= kbot - 4) tst1 += std::abs(H(k + 4, k + 1));
  }
  if (std::abs(H(k + 1, k)) <= std::max(smlnum, ulp * tst1)) {
    const R h12 = std::max(std::abs(H(k + 1, k)), std::abs(H(k, k + 1)));
    const R h21 = std::min(std::abs(H(k + 1, k)), std::abs(H(k, k + 1)));
    const R h11 = std::max(std::abs(H(k + 1, k + 1)), std::abs(H(k, k) - H(k + 1, k + 1)));
    const R h22 = std::min(std::abs(H(k + 1, k + 1)), std::abs(H(k, k) - H(k + 1, k + 1)));
    const R scl = h11 + h12;
    const R tst2 = h22 * (h11 / scl);
    if (tst2 == R(0) || h21 * (h12 / scl) <= std::max(smlnum, ulp * tst2)) H(k + 1, k) = 0;
  }
}

// One sweep of nshfts simultaneous shifts (sr, si) as a chain of tightly
// packed 3-by-3 bulges through rows ktop..kbot, one bulge per pair of
// shifts (a conjugate pair or two real ones). With accumulation (kacc22 1
// or 2) the reflections of a chain's passage through a block of 2*nshfts
// columns are gathered in U (kdu by kdu) and applied to the rest of H and
// to Z with gemm, through WH (kdu by nh) and WV (nv by kdu). V (3 by
// nshfts/2) holds the bulges' reflectors.
template <class R>
void laqr5(bool wantt, bool wantz, int kacc22, int n, int ktop, int kbot, int nshfts, R *sr, R *si,
           const View<R> &H, int iloz, int ihiz, const View<R> &Z, const View<R> &V,
           const View<R> &U, int nv, const View<R> &WV, int nh, const View<R> &WH) {
  if (nshfts < 2 || ktop >= kbot) return;
  // The shifts should come in pairs; a real shift caught between two
  // conjugate pairs is moved back so every pair is real or conjugate.
  for (int i = 0; i + 2 < nshfts; i += 2) {
    if (si[i] != -si[i + 1]) {
      std::rotate(sr + i, sr + i + 1, sr + i + 3);
      std::rotate(si + i, si + i + 1, si + i + 3);
    }
  }
  const int ns = nshfts - nshfts % 2;
  const Tolerances<R> tol(n);
  const R ulp = tol.ulp, smlnum = tol.smlnum;
  const bool accum = kacc22 == 1 || kacc22 == 2;
  if (ktop + 2 <= kbot) H(ktop + 2, ktop) = 0;
  const int nbmps = ns / 2;
  const int kdu = 4 * nbmps;
  // The pair of shifts of bulge m.
  const auto first_column = [&](int order, const View<R> &corner, int m, R *v) {
    laqr1<R>(order, corner, sr[2 * m - 2], si[2 * m - 2], sr[2 * m - 1], si[2 * m - 1], v);
  };

  for (int incol = ktop - 2 * nbmps + 1; incol <= kbot - 2; incol += 2 * nbmps) {
    const int jtop = accum ? std::max(ktop, incol) : (wantt ? 1 : ktop);
    const int ndcol = incol + kdu;
    if (accum) laset<R>(Part::kAll, kdu, kdu, R(0), R(1), U.p, U.ld);

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
          first_column(2, View<R>{H.at(k + 1, k + 1), H.ld}, m22, V.at(1, m22));
          R beta = V(1, m22);
          larfg<R>(2, beta, V.at(2, m22), 1, V(1, m22));
        } else {
          R beta = H(k + 1, k);
          V(2, m22) = H(k + 2, k);
          larfg<R>(2, beta, V.at(2, m22), 1, V(1, m22));
          H(k + 1, k) = beta;
          H(k + 2, k) = 0;
        }
        const R t1 = V(1, m22), v2 = V(2, m22), t2 = t1 * v2;
        for (int j = jtop; j <= std::min(kbot, k + 3); ++j) {
          const R refsum = H(j, k + 1) + v2 * H(j, k + 2);
          H(j, k + 1) -= refsum * t1;
          H(j, k + 2) -= refsum * t2;
        }
        const int jbot = accum ? std::min(ndcol, kbot) : (wantt ? n : kbot);
        for (int j = k + 1; j <= jbot; ++j) {
          const R refsum = H(k + 1, j) + v2 * H(k + 2, j);
          H(k + 1, j) -= refsum * t1;
          H(k + 2, j) -= refsum * t2;
        }
        if (k >= ktop) sweep_deflate<R>(H, k, ktop, kbot, smlnum, ulp);
        if (accum) {
          const int kms = k - incol;
          for (int j = std::max(1, ktop - incol); j <= kdu; ++j) {
            const R refsum = U(j, kms + 1) + v2 * U(j, kms + 2);
            U(j, kms + 1) -= refsum * t1;
            U(j, kms + 2) -= refsum * t2;
          }
        } else if (wantz) {
          for (int j = iloz; j <= ihiz; ++j) {
            const R refsum = Z(j, k + 1) + v2 * Z(j, k + 2);
            Z(j, k + 1) -= refsum * t1;
            Z(j, k + 2) -= refsum * t2;
          }
        }
      }

      // The 3-by-3 bulges, from the bottom one up: each is moved one column
      // down and applied from the right to its rows, so far as they reach.
      for (int m = mbot; m >= mtop; --m) {
        const int k = krcol + 2 * (m - 1);
        if (k == ktop - 1) {
          first_column(3, View<R>{H.at(ktop, ktop), H.ld}, m, V.at(1, m));
          R alpha = V(1, m);
          larfg<R>(3, alpha, V.at(2, m), 1, V(1, m));
        } else {
          // The bulge's delayed last row first, then its new reflector.
          {
            const R t1 = V(1, m), t2 = t1 * V(2, m), t3 = t1 * V(3, m);
            const R refsum = V(3, m) * H(k + 3, k + 2);
            H(k + 3, k) = -refsum * t1;
            H(k + 3, k + 1) = -refsum * t2;
            H(k + 3, k + 2) -= refsum * t3;
          }
          R beta = H(k + 1, k);
          V(2, m) = H(k + 2, k);
          V(3, m) = H(k + 3, k);
          larfg<R>(3, beta, V.at(2, m), 1, V(1, m));
          if (H(k + 3, k) != R(0) || H(k + 3, k + 1) != R(0) || H(k + 3, k + 2) == R(0)) {
            // The typical case: no collapse.
            H(k + 1, k) = beta;
            H(k + 2, k) = H(k + 3, k) = 0;
          } else {
            // The bulge has collapsed: try a fresh one from the same shifts
            // and keep it when it leaves a negligible remainder.
            R vt[3];
            first_column(3, View<R>{H.at(k + 1, k + 1), H.ld}, m, vt);
            R alpha = vt[0];
            larfg<R>(3, alpha, vt + 1, 1, vt[0]);
            const R t1 = vt[0], t2 = t1 * vt[1], t3 = t1 * vt[2];
            const R refsum = H(k + 1, k) + vt[1] * H(k + 2, k);
            if (std::abs(H(k + 2, k) - refsum * t2) + std::abs(refsum * t3) >
                ulp * (std::abs(H(k, k)) + std::abs(H(k + 1, k + 1)) + std::abs(H(k + 2, k + 2)))) {
              H(k + 1, k) = beta;
              H(k + 2, k) = H(k + 3, k) = 0;
            } else {
              H(k + 1, k) -= refsum * t1;
              H(k + 2, k) = H(k + 3, k) = 0;
              V(1, m) = vt[0];
              V(2, m) = vt[1];
              V(3, m) = vt[2];
            }
          }
        }
        const R t1 = V(1, m), v2 = V(2, m), v3 = V(3, m), t2 = t1 * v2, t3 = t1 * v3;
        for (int j = jtop; j <= std::min(kbot, k + 3); ++j) {
          const R refsum = H(j, k + 1) + v2 * H(j, k + 2) + v3 * H(j, k + 3);
          H(j, k + 1) -= refsum * t1;
          H(j, k + 2) -= refsum * t2;
          H(j, k + 3) -= refsum * t3;
        }
        // The first column of the bulge from the left now, so the next
        // reflector can be built from it.
        const R refsum = H(k + 1, k + 1) + v2 * H(k + 2, k + 1) + v3 * H(k + 3, k + 1);
        H(k + 1, k + 1) -= refsum * t1;
        H(k + 2, k + 1) -= refsum * t2;
        H(k + 3, k + 1) -= refsum * t3;
        if (k < ktop) continue;
        sweep_deflate<R>(H, k, ktop, kbot, smlnum, ulp);
      }

      // The bulges' reflections from the left, on the columns in reach.
      const int jbot = accum ? std::min(ndcol, kbot) : (wantt ? n : kbot);
      for (int m = mbot; m >= mtop; --m) {
        const int k = krcol + 2 * (m - 1);
        const R t1 = V(1, m), v2 = V(2, m), v3 = V(3, m), t2 = t1 * v2, t3 = t1 * v3;
        for (int j = std::max(ktop, krcol + 2 * m); j <= jbot; ++j) {
          const R refsum = H(k + 1, j) + v2 * H(k + 2, j) + v3 * H(k + 3, j);
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
          const R t1 = V(1, m), v2 = V(2, m), v3 = V(3, m), t2 = t1 * v2, t3 = t1 * v3;
          for (int j = i2; j <= i4; ++j) {
            const R refsum = U(j, kms + 1) + v2 * U(j, kms + 2) + v3 * U(j, kms + 3);
            U(j, kms + 1) -= refsum * t1;
            U(j, kms + 2) -= refsum * t2;
            U(j, kms + 3) -= refsum * t3;
          }
        }
      } else if (wantz) {
        for (int m = mbot; m >= mtop; --m) {
          const int k = krcol + 2 * (m - 1);
          const R t1 = V(1, m), v2 = V(2, m), v3 = V(3, m), t2 = t1 * v2, t3 = t1 * v3;
          for (int j = iloz; j <= ihiz; ++j) {
            const R refsum = Z(j, k + 1) + v2 * Z(j, k + 2) + v3 * Z(j, k + 3);
            Z(j, k + 1) -= refsum * t1;
            Z(j, k + 2) -= refsum * t2;
            Z(j, k + 3) -= refsum * t3;
          }
        }
      }
    }

    // The accumulated U on the rest of H and on Z, by level-3 updates.
    if (accum)
      laqr::apply_accumulated<R>(wantt, wantz, n, ktop, kbot, incol, ndcol, kdu, nh, nv, iloz, ihiz,
                                 U, H, Z, WH, WV);
  }
}

constexpr int kTiny = 15;         // below this order the double-shift QR runs
constexpr int kWindowGrowth = 5;  // sweeps without deflation before the window grows
constexpr int kExceptional = 6;   // sweeps without deflation between exceptional shifts

struct Sizes {
  int nwr, nsr;
};

template <class R>
Sizes laqr0_sizes(int n, int ilo, int ihi, int lwork) {
  const auto nm = name<R>("LAQR0");
  int nwr = std::max(2, oracle(kQrWindow, nm, n, ilo, ihi, lwork));
  nwr = std::min({ihi - ilo + 1, (n - 1) / 3, nwr});
  int nsr = oracle(kQrShifts, nm, n, ilo, ihi, lwork);
  nsr = std::min({nsr, (n - 3) / 6, ihi - ilo});
  nsr = std::max(2, nsr - nsr % 2);
  return {nwr, nsr};
}

}  // namespace

template <class R>
std::int64_t laqr0_worksize(int level, int n, int ilo, int ihi) {
  if (n <= kTiny) return 1;
  const Sizes sz = laqr0_sizes<R>(n, ilo, ihi, -1);
  return std::max<std::int64_t>(3 * sz.nsr / 2, aed_worksize<R>(level, ilo, ihi, sz.nwr + 1));
}

template <class R>
int laqr0(int level, bool wantt, bool wantz, int n, int ilo, int ihi, R *hp, int ldh, R *wr, R *wi,
          int iloz, int ihiz, R *zp, int ldz, R *work, int lwork) {
  if (n == 0) return 0;
  if (n <= kTiny) return lahqr<R>(wantt, wantz, n, ilo, ihi, hp, ldh, wr, wi, iloz, ihiz, zp, ldz);
  constexpr R kWilk1 = R(0.75), kWilk2 = R(-0.4375);
  const View<R> H{hp, ldh}, Z{zp, ldz};
  const auto nm = name<R>("LAQR0");
  const Sizes sz = laqr0_sizes<R>(n, ilo, ihi, lwork);
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
      if (H(k, k - 1) == R(0)) break;
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
        // The spike starts at the smaller of the two subdiagonal entries
        // at the window's top edge.
        const int kwtop = kbot - nw + 1;
        if (std::abs(H(kwtop, kwtop - 1)) > std::abs(H(kwtop - 1, kwtop - 2))) ++nw;
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
    aed<R>(level, wantt, wantz, n, ktop, kbot, nw, H, iloz, ihiz, Z, ls, ld, wr, wi,
           View<R>{H.at(kv, 1), ldh}, nho, View<R>{H.at(kv, kt), ldh}, nve,
           View<R>{H.at(kwv, 1), ldh}, work, lwork);
    kbot -= ld;
    int ks = kbot - ls + 1;  // the first of the shifts aed left in (wr, wi)

    // A sweep when deflation gave little.
    if (ld == 0 || (100 * ld <= nw * nibble && kbot - ktop + 1 > std::min(nmin, nwmax))) {
      int ns = std::min({nsmax, nsr, std::max(2, kbot - ktop)});
      ns -= ns % 2;
      if (ndfl % kExceptional == 0) {
        // Exceptional shifts: pairs from 2x2 matrices built on the
        // subdiagonal's size near the bottom.
        ks = kbot - ns + 1;
        for (int i = kbot; i >= std::max(ks + 1, ktop + 2); i -= 2) {
          const R ss = std::abs(H(i, i - 1)) + std::abs(H(i - 1, i - 2));
          const R aa = kWilk1 * ss + H(i, i);
          eig2<R>(aa, ss, kWilk2 * ss, aa, wr[i - 2], wi[i - 2], wr[i - 1], wi[i - 1]);
        }
        if (ks == ktop) {
          wr[ks] = H(ks + 1, ks + 1);
          wi[ks] = 0;
          wr[ks - 1] = wr[ks];
          wi[ks - 1] = wi[ks];
        }
      } else {
        if (kbot - ks + 1 <= ns / 2) {
          // Too few shifts from aed: the eigenvalues of the trailing ns by
          // ns block, computed in a copy in the free lower part of H.
          ks = kbot - ns + 1;
          kt = n - ns + 1;
          lacpy<R>(Part::kAll, ns, ns, H.at(ks, ks), ldh, H.at(kt, 1), ldh);
          int inf;
          R dummy[1];
          if (level == 0 && ns > nmin)
            inf = laqr0<R>(1, false, false, ns, 1, ns, H.at(kt, 1), ldh, wr + ks - 1, wi + ks - 1,
                           1, 1, dummy, 1, work, lwork);
          else
            inf = lahqr<R>(false, false, ns, 1, ns, H.at(kt, 1), ldh, wr + ks - 1, wi + ks - 1, 1,
                           1, dummy, 1);
          ks += inf;
          if (ks >= kbot) {
            // Nothing converged: the eigenvalues of the trailing 2 by 2.
            eig2<R>(H(kbot - 1, kbot - 1), H(kbot - 1, kbot), H(kbot, kbot - 1), H(kbot, kbot),
                    wr[kbot - 2], wi[kbot - 2], wr[kbot - 1], wi[kbot - 1]);
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
              if (std::abs(wr[i - 1]) + std::abs(wi[i - 1]) < std::abs(wr[i]) + std::abs(wi[i])) {
                sorted = false;
                std::swap(wr[i - 1], wr[i]);
                std::swap(wi[i - 1], wi[i]);
              }
            }
          }
        }
        // The sort may have split conjugate pairs: shuffle, from the
        // bottom, so each pair of shifts is real or conjugate.
        for (int i = kbot; i >= ks + 2; i -= 2) {
          if (wi[i - 1] != -wi[i - 2]) {
            std::rotate(wr + i - 3, wr + i - 1, wr + i);
            std::rotate(wi + i - 3, wi + i - 1, wi + i);
          }
        }
      }
      // With only two real shifts, use the one closer to H(kbot, kbot) twice.
      if (kbot - ks + 1 == 2 && wi[kbot - 1] == R(0)) {
        if (std::abs(wr[kbot - 1] - H(kbot, kbot)) < std::abs(wr[kbot - 2] - H(kbot, kbot)))
          wr[kbot - 2] = wr[kbot - 1];
        else
          wr[kbot - 1] = wr[kbot - 2];
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
      laqr5<R>(wantt, wantz, kacc22, n, ktop, kbot, ns, wr + ks - 1, wi + ks - 1, H, iloz, ihiz, Z,
               View<R>{work, 3}, View<R>{H.at(ku, 1), ldh}, nve, View<R>{H.at(kwv, 1), ldh}, nho,
               View<R>{H.at(ku, kwh), ldh});
    }
    ndfl = ld > 0 ? 1 : ndfl + 1;
  }
  return kbot;
}

template std::int64_t laqr0_worksize<float>(int, int, int, int);
template int laqr0<float>(int, bool, bool, int, int, int, float *, int, float *, float *, int, int,
                          float *, int, float *, int);

}  // namespace orb::lapack
