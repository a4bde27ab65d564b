// The eigenvector half of MRRR (mrrr.h): the representation tree. Each
// block's eigenvalues are split into clusters by their relative gaps; a
// cluster gets a child representation shifted close to it (larrf), on
// which its eigenvalues are relatively well separated, until every
// eigenvalue is a singleton; a singleton's vector comes from the twisted
// factorization at its eigenvalue (lar1v), improved by Rayleigh quotient
// corrections or, failing those, by bisection.
#include <algorithm>
#include <cmath>
#include <complex>

#include "lapack/mrrr.h"

namespace orb::lapack::mrrr {

template <class R>
void lar1v(int n, R lambda, const R *d, const R *l, const R *ld, const R *lld, R pivmin, R gaptol,
           R *z, bool wantnc, int *negcnt, R *ztz_out, R *mingma_out, int *r_io, int *isuppz,
           R *nrminv, R *resid, R *rqcorr, R *work) {
  // The twist may range over all rows (r 0 on entry) or is given.
  int r1, r2;  // 0-based range of the twist
  if (*r_io == 0) {
    r1 = 0;
    r2 = n - 1;
  } else {
    r1 = r2 = *r_io - 1;
  }
  // work: the stationary multipliers L+ [0, n), the progressive U- [n, 2n),
  // the stationary s [2n, 3n) and the progressive p [3n, 4n), each at the
  // row it enters.
  R *lplus = work;
  R *uminus = work + n;
  R *s = work + 2 * n;
  R *p = work + 3 * n;

  // The stationary qd transform L D L^T - lambda = L+ D+ L+^T from the top
  // (rows 0 .. r2 - 1, negative pivots counted above r1) and the
  // progressive one L D L^T - lambda = U- D- U-^T from the bottom (rows
  // n - 2 .. r1) are independent: their steps run interleaved, so that
  // the divisions of the two overlap.
  s[0] = 0;
  int neg1 = 0, neg2 = 0;
  R sv = s[0] - lambda;
  R pv = d[n - 1] - lambda;
  p[n - 1] = pv;
  auto stationary = [&](int i) {
    const R dplus = d[i] + sv;
    lplus[i] = ld[i] / dplus;
    neg1 += (dplus < R(0)) & (i < r1);
    s[i + 1] = sv * lplus[i] * l[i];
    sv = s[i + 1] - lambda;
  };
  auto progressive = [&](int i) {
    const R dminus = lld[i] + pv;
    const R tmp = d[i] / dminus;
    neg2 += dminus < R(0);
    uminus[i] = l[i] * tmp;
    pv = pv * tmp - lambda;
    p[i] = pv;
  };
  const int steps1 = r2, steps2 = n - 1 - r1;
  int k = 0;
  for (; k < std::min(steps1, steps2); ++k) {
    stationary(k);
    progressive(n - 2 - k);
  }
  for (; k < steps1; ++k) stationary(k);
  for (; k < steps2; ++k) progressive(n - 2 - k);

  // A NaN, once produced, stays to the end of its recurrence; such a
  // transform runs again with tiny pivots replaced by -pivmin.
  const bool sawnan1 = std::isnan(sv);
  if (sawnan1) {
    neg1 = 0;
    sv = s[0] - lambda;
    for (int i = 0; i < r2; ++i) {
      R dplus = d[i] + sv;
      if (std::abs(dplus) < pivmin) dplus = -pivmin;
      lplus[i] = ld[i] / dplus;
      if (i < r1) neg1 += dplus < R(0);
      s[i + 1] = sv * lplus[i] * l[i];
      if (lplus[i] == R(0)) s[i + 1] = lld[i];
      sv = s[i + 1] - lambda;
    }
  }
  const bool sawnan2 = std::isnan(p[r1]);
  if (sawnan2) {
    neg2 = 0;
    for (int i = n - 2; i >= r1; --i) {
      R dminus = lld[i] + p[i + 1];
      if (std::abs(dminus) < pivmin) dminus = -pivmin;
      const R tmp = d[i] / dminus;
      neg2 += dminus < R(0);
      uminus[i] = l[i] * tmp;
      p[i] = p[i + 1] * tmp - lambda;
      if (tmp == R(0)) p[i] = d[i] - lambda;
    }
  }

  // The twist index: the smallest |gamma(r)| over the allowed range.
  R mingma = s[r1] + p[r1];
  if (mingma < R(0)) ++neg1;
  *negcnt = wantnc ? neg1 + neg2 : -1;
  if (std::abs(mingma) == R(0)) mingma = eps<R>() * s[r1];
  int r = r1;
  for (int i = r1; i < r2; ++i) {
    R tmp = s[i + 1] + p[i + 1];
    if (tmp == R(0)) tmp = eps<R>() * s[i + 1];
    if (std::abs(tmp) <= std::abs(mingma)) {
      mingma = tmp;
      r = i + 1;
    }
  }

  // The vector, from z(r) = 1 outwards, cut off where it becomes
  // negligible against the gap.
  isuppz[0] = 1;
  isuppz[1] = n;
  z[r] = 1;
  R ztz = 1;
  if (!sawnan1 && !sawnan2) {
    for (int i = r - 1; i >= 0; --i) {
      z[i] = -(lplus[i] * z[i + 1]);
      if ((std::abs(z[i]) + std::abs(z[i + 1])) * std::abs(ld[i]) < gaptol) {
        z[i] = 0;
        isuppz[0] = i + 2;
        break;
      }
      ztz += z[i] * z[i];
    }
    for (int i = r; i < n - 1; ++i) {
      z[i + 1] = -(uminus[i] * z[i]);
      if ((std::abs(z[i]) + std::abs(z[i + 1])) * std::abs(ld[i]) < gaptol) {
        z[i + 1] = 0;
        isuppz[1] = i + 1;
        break;
      }
      ztz += z[i + 1] * z[i + 1];
    }
  } else {
    // A zero entry is stepped over through the relation two rows on.
    for (int i = r - 1; i >= 0; --i) {
      if (z[i + 1] == R(0))
        z[i] = -(ld[i + 1] / ld[i]) * z[i + 2];
      else
        z[i] = -(lplus[i] * z[i + 1]);
      if ((std::abs(z[i]) + std::abs(z[i + 1])) * std::abs(ld[i]) < gaptol) {
        z[i] = 0;
        isuppz[0] = i + 2;
        break;
      }
      ztz += z[i] * z[i];
    }
    for (int i = r; i < n - 1; ++i) {
      if (z[i] == R(0))
        z[i + 1] = -(ld[i - 1] / ld[i]) * z[i - 1];
      else
        z[i + 1] = -(uminus[i] * z[i]);
      if ((std::abs(z[i]) + std::abs(z[i + 1])) * std::abs(ld[i]) < gaptol) {
        z[i + 1] = 0;
        isuppz[1] = i + 1;
        break;
      }
      ztz += z[i + 1] * z[i + 1];
    }
  }
  const R inv = R(1) / ztz;
  *nrminv = std::sqrt(inv);
  *resid = std::abs(mingma) * *nrminv;
  *rqcorr = mingma * inv;
  *ztz_out = ztz;
  *mingma_out = mingma;
  *r_io = r + 1;
}

template <class R>
int larrf(int n, const R *d, const R *l, const R *ld, int clstrt, int clend, const R *w,
          const R *wgap, const R *werr, R spdiam, R clgapl, R clgapr, R pivmin, R *sigma, R *dplus,
          R *lplus, R *work) {
  if (n <= 0) return 0;
  const R maxgrowth1 = 8, maxgrowth2 = 8;
  const int ktrymax = 1;
  const R fact = R(1 << ktrymax);
  const R epsr = eps<R>();
  const int c0 = clstrt - 1, c1 = clend - 1;

  const R clwdth = std::abs(w[c1] - w[c0]) + werr[c1] + werr[c0];
  const R avgap = clwdth / R(clend - clstrt);
  const R mingap = std::min(clgapl, clgapr);
  // The candidate shifts just outside either end of the cluster.
  R lsigma = std::min(w[c0], w[c1]) - werr[c0];
  R rsigma = std::max(w[c0], w[c1]) + werr[c1];
  lsigma -= std::abs(lsigma) * 2 * epsr;
  rsigma += std::abs(rsigma) * 2 * epsr;
  const R ldmax = R(0.25) * mingap + 2 * pivmin;
  const R rdmax = R(0.25) * mingap + 2 * pivmin;
  R ldelta = std::max(avgap, wgap[c0]) / fact;
  R rdelta = std::max(avgap, wgap[c1 - 1]) / fact;
  R smlgrowth = R(1) / safmin<R>();
  const R fail = R(n - 1) * mingap / (spdiam * epsr);
  const R fail2 = R(n - 1) * mingap / (spdiam * std::sqrt(epsr));
  R bestshift = lsigma;
  const R growthbound = maxgrowth1 * spdiam;
  int ktry = 0;
  bool forcer = false;

  // L D L^T - shift = dp lp dp lp^T, with its element growth and whether a
  // pivot had to be replaced.
  // L D L^T - lsigma into (dplus, lplus) and L D L^T - rsigma into (wd,
  // wl) side by side, the two recurrences interleaved; with each its
  // element growth and whether a pivot had to be replaced or was NaN.
  R *wd = work;      // the right shift's pivots
  R *wl = work + n;  // and multipliers
  auto factor_both = [&](R *growth1, bool *nan1, R *growth2, bool *nan2) {
    bool bad1 = false, bad2 = false;
    R s1 = -lsigma, s2 = -rsigma;
    dplus[0] = d[0] + s1;
    wd[0] = d[0] + s2;
    if (std::abs(dplus[0]) < pivmin) {
      dplus[0] = -pivmin;
      bad1 = true;
    }
    if (std::abs(wd[0]) < pivmin) {
      wd[0] = -pivmin;
      bad2 = true;
    }
    R mx1 = std::abs(dplus[0]), mx2 = std::abs(wd[0]);
    for (int i = 0; i < n - 1; ++i) {
      lplus[i] = ld[i] / dplus[i];
      wl[i] = ld[i] / wd[i];
      s1 = s1 * lplus[i] * l[i] - lsigma;
      s2 = s2 * wl[i] * l[i] - rsigma;
      R a1 = d[i + 1] + s1, a2 = d[i + 1] + s2;
      if (std::abs(a1) < pivmin) {
        a1 = -pivmin;
        bad1 = true;
      }
      if (std::abs(a2) < pivmin) {
        a2 = -pivmin;
        bad2 = true;
      }
      dplus[i + 1] = a1;
      wd[i + 1] = a2;
      bad1 |= std::isnan(a1);
      bad2 |= std::isnan(a2);
      mx1 = std::max(mx1, std::abs(a1));
      mx2 = std::max(mx2, std::abs(a2));
    }
    *growth1 = mx1;
    *growth2 = mx2;
    *nan1 = bad1 || std::isnan(mx1);
    *nan2 = bad2 || std::isnan(mx2);
  };
  // The growth of the representation's would-be eigenvector at the end
  // near the cluster (the RRR test for a tight cluster).
  auto rrr_growth = [&](const R *dp, const R *lp) {
    R tmp = std::abs(dp[n - 1]);
    R znm2 = 1, prod = 1, oldp = 1;
    for (int i = n - 2; i >= 0; --i) {
      if (prod <= epsr)
        prod = ((dp[i + 1] * lp[i + 1]) / (dp[i] * lp[i])) * oldp;
      else
        prod *= std::abs(lp[i]);
      oldp = prod;
      znm2 += prod * prod;
      tmp = std::max(tmp, std::abs(dp[i] * prod));
    }
    return tmp / (spdiam * std::sqrt(znm2));
  };

  for (;;) {
    ldelta = std::min(ldmax, ldelta);
    rdelta = std::min(rdmax, rdelta);
    R max1, max2;
    bool sawnan1, sawnan2;
    factor_both(&max1, &sawnan1, &max2, &sawnan2);
    if (forcer || (max1 <= growthbound && !sawnan1)) {
      *sigma = lsigma;
      return 0;
    }
    if (forcer || (max2 <= growthbound && !sawnan2)) {
      *sigma = rsigma;
      std::copy(wd, wd + n, dplus);
      std::copy(wl, wl + n - 1, lplus);
      return 0;
    }
    if (!(sawnan1 && sawnan2)) {
      int indx = 0;
      if (!sawnan1) {
        indx = 1;
        if (max1 <= smlgrowth) {
          smlgrowth = max1;
          bestshift = lsigma;
        }
      }
      if (!sawnan2) {
        if (sawnan1 || max2 <= max1) indx = 2;
        if (max2 <= smlgrowth) {
          smlgrowth = max2;
          bestshift = rsigma;
        }
      }
      // A tight cluster may accept more element growth when the
      // representation still determines the cluster's vectors well.
      const bool dorrr1 =
          clwdth < mingap / R(128) && std::min(max1, max2) < fail2 && !sawnan1 && !sawnan2;
      if (dorrr1) {
        if (indx == 1) {
          if (rrr_growth(dplus, wl) <= maxgrowth2) {
            *sigma = lsigma;
            return 0;
          }
        } else if (indx == 2) {
          if (rrr_growth(wd, lplus) <= maxgrowth2) {
            *sigma = rsigma;
            std::copy(wd, wd + n, dplus);
            std::copy(wl, wl + n - 1, lplus);
            return 0;
          }
        }
      }
    }
    if (ktry < ktrymax) {
      // Shifts further out.
      lsigma = std::max(lsigma - ldelta, lsigma - ldmax);
      rsigma = std::min(rsigma + rdelta, rsigma + rdmax);
      ldelta *= 2;
      rdelta *= 2;
      ++ktry;
    } else if (smlgrowth < fail * spdiam) {
      // Accept the least growth seen.
      lsigma = bestshift;
      rsigma = bestshift;
      forcer = true;
    } else {
      return 1;
    }
  }
}

namespace {

template <class T>
inline real_t<T> real_part(const T &x) {
  if constexpr (is_complex_v<T>)
    return x.real();
  else
    return x;
}

}  // namespace

template <class T>
int larrv(int n, real_t<T> vl, real_t<T> vu, real_t<T> *d, real_t<T> *l, real_t<T> pivmin,
          const int *isplit, int m, real_t<T> minrgp, real_t<T> rtol1, real_t<T> rtol2,
          real_t<T> *w, real_t<T> *werr, real_t<T> *wgap, const int *iblock, const int *indexw,
          const real_t<T> *gers, T *z, int ldz, int *isuppz, real_t<T> *work, int *iwork) {
  using R = real_t<T>;
  (void)vu;
  if (n <= 0 || m <= 0) return 0;
  const int maxitr = 10;
  const R epsr = eps<R>();
  const R rqtol = 2 * epsr;
  const bool tryrqc = true;
  const std::ptrdiff_t ld_z = ldz;
  auto Z = [&](int i, int j) -> T & { return z[i + j * ld_z]; };

  // work: the eigenvalues relative to the current representation [0, n),
  // ld [n, 2n), lld [2n, 3n), scratch for larrb, larrf, lar1v [3n, 7n),
  // and for a complex Z real vectors [8n, 10n).
  std::fill(work, work + 12 * std::ptrdiff_t(n), R(0));
  std::fill(iwork, iwork + 7 * std::ptrdiff_t(n), 0);
  R *ldv = work + n;
  R *lldv = work + 2 * n;
  R *wrk = work + 3 * n;
  R *zr = work + 8 * std::ptrdiff_t(n);
  R *zr2 = work + 9 * std::ptrdiff_t(n);
  // iwork: each eigenvalue's twist index [0, n), the two cluster lists of
  // alternate levels [n, 2n) and [2n, 3n), larrb's [3n, 5n).
  int *twist = iwork;
  int *clus_a = iwork + n;
  int *clus_b = iwork + 2 * n;
  int *iwrk = iwork + 3 * n;

  for (int j = 0; j < m; ++j)
    for (int i = 0; i < n; ++i) Z(i, j) = T(0);

  int ibegin = 0, wbegin = 0;
  for (int jblk = 1; jblk <= iblock[m - 1]; ++jblk) {
    const int iend = isplit[jblk - 1] - 1;
    R sigma = l[iend];
    int wend = wbegin - 1;
    while (wend < m - 1 && iblock[wend + 1] == jblk) ++wend;
    if (wend < wbegin) {
      ibegin = iend + 1;
      continue;
    }
    R gl = gers[2 * ibegin], gu = gers[2 * ibegin + 1];
    for (int i = ibegin + 1; i <= iend; ++i) {
      gl = std::min(gers[2 * i], gl);
      gu = std::max(gers[2 * i + 1], gu);
    }
    const R spdiam = gu - gl;
    const int oldien = ibegin;
    const int in = iend - ibegin + 1;
    const int im = wend - wbegin + 1;

    if (ibegin == iend) {
      Z(ibegin, wbegin) = T(1);
      isuppz[2 * wbegin] = ibegin + 1;
      isuppz[2 * wbegin + 1] = ibegin + 1;
      w[wbegin] += sigma;
      work[wbegin] = w[wbegin];
      ibegin = iend + 1;
      ++wbegin;
      continue;
    }

    // work keeps the eigenvalues relative to the representation, w the
    // absolute ones.
    std::copy(w + wbegin, w + wbegin + im, work + wbegin);
    for (int i = 0; i < im; ++i) w[wbegin + i] += sigma;

    // The tree, level by level: the clusters of a level (first, last, local
    // 1-based) are listed in one of two arrays, their children in the other.
    int ndepth = 0, parity = 1, nclus = 1;
    clus_a[0] = 1;
    clus_a[1] = im;
    int idone = 0;
    R *db = d + ibegin;
    R *lb = l + ibegin;
    while (idone < im) {
      if (ndepth > m) return -2;
      const int oldncl = nclus;
      nclus = 0;
      parity = 1 - parity;
      int *oldcls = parity == 0 ? clus_a : clus_b;
      int *newcls = parity == 0 ? clus_b : clus_a;
      for (int ic = 0; ic < oldncl; ++ic) {
        const int oldfst = oldcls[2 * ic];
        const int oldlst = oldcls[2 * ic + 1];
        if (ndepth > 0) {
          // The cluster's representation was left in the Z columns of its
          // first two eigenvalues.
          const int j = wbegin + oldfst - 1;
          for (int i = 0; i < in; ++i) db[i] = real_part(Z(ibegin + i, j));
          for (int i = 0; i < in - 1; ++i) lb[i] = real_part(Z(ibegin + i, j + 1));
          sigma = real_part(Z(iend, j + 1));
          for (int i = 0; i < in; ++i) Z(ibegin + i, j) = Z(ibegin + i, j + 1) = T(0);
        }
        for (int j = ibegin; j < iend; ++j) {
          const R t = d[j] * l[j];
          ldv[j] = t;
          lldv[j] = t * l[j];
        }
        const int offset = indexw[wbegin] - 1;
        if (ndepth > 0) {
          // Refine the cluster's eigenvalues on its representation to the
          // accuracy that tells its children apart.
          const int p = indexw[wbegin + oldfst - 1];
          const int q = indexw[wbegin + oldlst - 1];
          if (larrb(in, db, lldv + ibegin, p, q, rtol1, rtol2, offset, work + wbegin, wgap + wbegin,
                    werr + wbegin, wrk, iwrk, pivmin, spdiam, in) != 0)
            return -1;
          if (oldfst > 1) {
            const int a = wbegin + oldfst - 2;
            wgap[a] = std::max(wgap[a], w[a + 1] - werr[a + 1] - w[a] - werr[a]);
          }
          if (wbegin + oldlst - 1 < wend) {
            const int a = wbegin + oldlst - 1;
            wgap[a] = std::max(wgap[a], w[a + 1] - werr[a + 1] - w[a] - werr[a]);
          }
          for (int j = oldfst; j <= oldlst; ++j) w[wbegin + j - 1] = work[wbegin + j - 1] + sigma;
        }

        // Split the cluster where the relative gap is large enough.
        int newfst = oldfst;
        for (int j = oldfst; j <= oldlst; ++j) {
          if (j != oldlst && wgap[wbegin + j - 1] < minrgp * std::abs(work[wbegin + j - 1]))
            continue;
          const int newlst = j;
          const int newsiz = newlst - newfst + 1;
          const int newftt = wbegin + newfst - 1;
          if (newsiz > 1) {
            // A child cluster: its outer eigenvalues refined, then its
            // representation stored in two of its Z columns.
            const R lgap = newfst == 1 ? std::max(R(0), w[wbegin] - werr[wbegin] - vl)
                                       : wgap[wbegin + newfst - 2];
            const R rgap = wgap[wbegin + newlst - 1];
            const int ends[2] = {indexw[wbegin - 1 + newfst], indexw[wbegin - 1 + newlst]};
            larrb_singles(in, db, lldv + ibegin, 2, ends, rqtol, rqtol, offset, work + wbegin,
                          wgap + wbegin, werr + wbegin, pivmin, spdiam, in);
            R tau = 0;
            int info;
            if constexpr (is_complex_v<T>) {
              info = larrf(in, db, lb, ldv + ibegin, newfst, newlst, work + wbegin, wgap + wbegin,
                           werr + wbegin, spdiam, lgap, rgap, pivmin, &tau, zr, zr2, wrk);
              for (int i = 0; i < in; ++i) Z(ibegin + i, newftt) = T(zr[i]);
              for (int i = 0; i < in - 1; ++i) Z(ibegin + i, newftt + 1) = T(zr2[i]);
            } else {
              info = larrf(in, db, lb, ldv + ibegin, newfst, newlst, work + wbegin, wgap + wbegin,
                           werr + wbegin, spdiam, lgap, rgap, pivmin, &tau, &Z(ibegin, newftt),
                           &Z(ibegin, newftt + 1), wrk);
            }
            if (info != 0) return -2;
            const R ssigma = sigma + tau;
            Z(iend, newftt + 1) = T(ssigma);
            for (int k = newfst; k <= newlst; ++k) {
              R &wk = work[wbegin + k - 1];
              R fudge = 3 * epsr * std::abs(wk);
              wk -= tau;
              fudge += 4 * epsr * std::abs(wk);
              werr[wbegin + k - 1] += fudge;
            }
            newcls[2 * nclus] = newfst;
            newcls[2 * nclus + 1] = newlst;
            ++nclus;
          } else {
            // A singleton: its vector.
            const int k = newfst;
            const int windex = wbegin + k - 1;
            const int windmn = std::max(windex - 1, 0);
            const int windpl = std::min(windex + 1, m - 1);
            const R tol = 4 * std::log(R(in)) * epsr;
            R lambda = work[windex];
            R left = work[windex] - werr[windex];
            R right = work[windex] + werr[windex];
            const int indeig = indexw[windex];
            const R edge = epsr * std::max(std::abs(left), std::abs(right));
            const R lgap = k == 1 ? edge : wgap[windmn];
            const R rgap = k == im ? edge : wgap[windex];
            const R gap = std::min(lgap, rgap);
            const R gaptol = (k == 1 || k == im) ? R(0) : gap * epsr;
            int isupmn = in, isupmx = 1;
            const R savgap = wgap[windex];
            wgap[windex] = gap;
            bool usedbs = false, usedrq = false, needbs = !tryrqc;
            R *zc;
            if constexpr (is_complex_v<T>) {
              zc = zr;
              std::fill(zr, zr + in, R(0));
            } else {
              zc = &Z(ibegin, windex);
            }
            int *supp = isuppz + 2 * windex;
            int iter = 0, negcnt = 0;
            R bstres = 0, bstw = 0, ztz, mingma, nrminv, resid, rqcorr;
            for (;;) {
              if (needbs) {
                // Bisection to full accuracy, then one more vector.
                usedbs = true;
                const int itmp1 = twist[windex];
                if (larrb(in, db, lldv + ibegin, indeig, indeig, R(0), 2 * epsr, offset,
                          work + wbegin, wgap + wbegin, werr + wbegin, wrk, iwrk, pivmin, spdiam,
                          itmp1) != 0)
                  return -3;
                lambda = work[windex];
                twist[windex] = 0;
              }
              lar1v(in, lambda, db, lb, ldv + ibegin, lldv + ibegin, pivmin, gaptol, zc, !usedbs,
                    &negcnt, &ztz, &mingma, &twist[windex], supp, &nrminv, &resid, &rqcorr, wrk);
              if (iter == 0 || resid < bstres) {
                bstres = resid;
                bstw = lambda;
              }
              isupmn = std::min(isupmn, supp[0]);
              isupmx = std::max(isupmx, supp[1]);
              ++iter;
              if (resid > tol * gap && std::abs(rqcorr) > rqtol * std::abs(lambda) && !usedbs) {
                // The Rayleigh quotient correction, taken when it moves
                // towards the eigenvalue and stays inside its interval.
                const R sgndef = indeig <= negcnt ? R(-1) : R(1);
                if (rqcorr * sgndef >= R(0) && lambda + rqcorr <= right &&
                    lambda + rqcorr >= left) {
                  usedrq = true;
                  if (sgndef == R(1))
                    left = lambda;
                  else
                    right = lambda;
                  work[windex] = R(0.5) * (right + left);
                  lambda += rqcorr;
                  werr[windex] = R(0.5) * (right - left);
                } else {
                  needbs = true;
                }
                if (right - left < rqtol * std::abs(lambda)) {
                  usedbs = true;  // the interval is as narrow as it gets
                } else if (iter < maxitr) {
                } else if (iter == maxitr) {
                  needbs = true;
                } else {
                  return 5;
                }
                continue;
              }
              if (usedrq && usedbs && bstres <= resid) {
                // The best vector of the iteration was an earlier one.
                lambda = bstw;
                lar1v(in, lambda, db, lb, ldv + ibegin, lldv + ibegin, pivmin, gaptol, zc, !usedbs,
                      &negcnt, &ztz, &mingma, &twist[windex], supp, &nrminv, &resid, &rqcorr, wrk);
              }
              work[windex] = lambda;
              break;
            }
            // Clear what earlier iterates left outside the final support,
            // and normalize.
            for (int ii = isupmn; ii < supp[0]; ++ii) zc[ii - 1] = 0;
            for (int ii = supp[1] + 1; ii <= isupmx; ++ii) zc[ii - 1] = 0;
            for (int ii = supp[0]; ii <= supp[1]; ++ii) zc[ii - 1] *= nrminv;
            if constexpr (is_complex_v<T>)
              for (int i = 0; i < in; ++i) Z(ibegin + i, windex) = T(zc[i]);
            supp[0] += oldien;
            supp[1] += oldien;
            w[windex] = lambda + sigma;
            if (k > 1)
              wgap[windmn] =
                  std::max(wgap[windmn], w[windex] - werr[windex] - w[windmn] - werr[windmn]);
            if (windex < wend)
              wgap[windex] = std::max(savgap, w[windpl] - werr[windpl] - w[windex] - werr[windex]);
            ++idone;
          }
          newfst = j + 1;
        }
      }
      ++ndepth;
    }
    ibegin = iend + 1;
    wbegin = wend + 1;
  }
  return 0;
}

template void lar1v<float>(int, float, const float *, const float *, const float *, const float *,
                           float, float, float *, bool, int *, float *, float *, int *, int *,
                           float *, float *, float *, float *);
template int larrf<float>(int, const float *, const float *, const float *, int, int, const float *,
                          const float *, const float *, float, float, float, float, float *,
                          float *, float *, float *);
template int larrv<float>(int, float, float, float *, float *, float, const int *, int, float,
                          float, float, float *, float *, float *, const int *, const int *,
                          const float *, float *, int, int *, float *, int *);
template int larrv<std::complex<float>>(int, float, float, float *, float *, float, const int *,
                                        int, float, float, float, float *, float *, float *,
                                        const int *, const int *, const float *,
                                        std::complex<float> *, int, int *, float *, int *);

}  // namespace orb::lapack::mrrr
