// The eigenvalue half of MRRR (mrrr.h): negcounts of twisted
// factorizations, Sturm counts and bisection on the tridiagonal, the
// splitting, the relative-accuracy test, and the root representation of
// each block with its eigenvalue approximations (larre).
#include <algorithm>
#include <cmath>

#include "lapack/eigen.h"
#include "lapack/mrrr.h"
#include "lapack/uniform48.h"

namespace orb::lapack::mrrr {

// ---- counts ----------------------------------------------------------------------------

// The negcount runs in blocks of this many rows; a block whose recurrence
// produced a NaN (an exact zero pivot) is run again with the guard, so the
// fast loop carries no test.
constexpr int kNegBlock = 128;

template <class R>
int laneg(int n, const R *d, const R *lld, R sigma, R pivmin, int r) {
  (void)pivmin;
  int negcnt = 0;
  // The stationary part from the top down to the twist: rows 0 .. r - 2.
  R t = -sigma;
  for (int bj = 0; bj < r - 1; bj += kNegBlock) {
    const int end = std::min(bj + kNegBlock, r - 1);
    const R saved = t;
    int neg = 0;
    for (int j = bj; j < end; ++j) {
      const R dplus = d[j] + t;
      neg += dplus < R(0);
      t = (t / dplus) * lld[j] - sigma;
    }
    if (std::isnan(t)) {
      neg = 0;
      t = saved;
      for (int j = bj; j < end; ++j) {
        const R dplus = d[j] + t;
        neg += dplus < R(0);
        R q = t / dplus;
        if (std::isnan(q)) q = R(1);
        t = q * lld[j] - sigma;
      }
    }
    negcnt += neg;
  }
  // The progressive part from the bottom up to the twist: rows n - 2 .. r - 1.
  R p = d[n - 1] - sigma;
  for (int bj = n - 2; bj >= r - 1; bj -= kNegBlock) {
    const int end = std::max(bj - kNegBlock + 1, r - 1);
    const R saved = p;
    int neg = 0;
    for (int j = bj; j >= end; --j) {
      const R dminus = lld[j] + p;
      neg += dminus < R(0);
      p = (p / dminus) * d[j] - sigma;
    }
    if (std::isnan(p)) {
      neg = 0;
      p = saved;
      for (int j = bj; j >= end; --j) {
        const R dminus = lld[j] + p;
        neg += dminus < R(0);
        R q = p / dminus;
        if (std::isnan(q)) q = R(1);
        p = q * d[j] - sigma;
      }
    }
    negcnt += neg;
  }
  // The twist element.
  const R gamma = (t + sigma) + p;
  return negcnt + (gamma < R(0));
}

// laneg at K shifts at once: the same recurrences, lane by lane, so that
// the divisions of independent shifts overlap. A lane whose block produced
// a NaN runs that block again alone, with the guard.
template <int K, class R>
void laneg_lanes_k(int n, const R *d, const R *lld, const R *sigma, int r, int *counts) {
  R t[K], saved[K];
  int neg[K], nb[K];
  for (int k = 0; k < K; ++k) {
    t[k] = -sigma[k];
    neg[k] = 0;
  }
  for (int bj = 0; bj < r - 1; bj += kNegBlock) {
    const int end = std::min(bj + kNegBlock, r - 1);
    for (int k = 0; k < K; ++k) {
      saved[k] = t[k];
      nb[k] = 0;
    }
    for (int j = bj; j < end; ++j) {
      const R dj = d[j], lj = lld[j];
      for (int k = 0; k < K; ++k) {
        const R dplus = dj + t[k];
        nb[k] += dplus < R(0);
        t[k] = (t[k] / dplus) * lj - sigma[k];
      }
    }
    for (int k = 0; k < K; ++k) {
      if (std::isnan(t[k])) {
        nb[k] = 0;
        R tk = saved[k];
        for (int j = bj; j < end; ++j) {
          const R dplus = d[j] + tk;
          nb[k] += dplus < R(0);
          R q = tk / dplus;
          if (std::isnan(q)) q = R(1);
          tk = q * lld[j] - sigma[k];
        }
        t[k] = tk;
      }
      neg[k] += nb[k];
    }
  }
  R p[K];
  for (int k = 0; k < K; ++k) p[k] = d[n - 1] - sigma[k];
  for (int bj = n - 2; bj >= r - 1; bj -= kNegBlock) {
    const int end = std::max(bj - kNegBlock + 1, r - 1);
    for (int k = 0; k < K; ++k) {
      saved[k] = p[k];
      nb[k] = 0;
    }
    for (int j = bj; j >= end; --j) {
      const R dj = d[j], lj = lld[j];
      for (int k = 0; k < K; ++k) {
        const R dminus = lj + p[k];
        nb[k] += dminus < R(0);
        p[k] = (p[k] / dminus) * dj - sigma[k];
      }
    }
    for (int k = 0; k < K; ++k) {
      if (std::isnan(p[k])) {
        nb[k] = 0;
        R pk = saved[k];
        for (int j = bj; j >= end; --j) {
          const R dminus = lld[j] + pk;
          nb[k] += dminus < R(0);
          R q = pk / dminus;
          if (std::isnan(q)) q = R(1);
          pk = q * d[j] - sigma[k];
        }
        p[k] = pk;
      }
      neg[k] += nb[k];
    }
  }
  for (int k = 0; k < K; ++k) {
    const R gamma = (t[k] + sigma[k]) + p[k];
    counts[k] = neg[k] + (gamma < R(0));
  }
}

// The negcounts at count <= kNegLanes shifts (sigma has room for
// kNegLanes), eight or sixteen at a time: the unused lanes repeat the
// first shift.
constexpr int kNegLanes = 16;

template <class R>
void laneg_lanes(int count, int n, const R *d, const R *lld, R *sigma, int r, int *counts) {
  const int k = count <= 8 ? 8 : 16;
  for (int q = count; q < k; ++q) sigma[q] = sigma[0];
  if (k == 8)
    laneg_lanes_k<8>(n, d, lld, sigma, r, counts);
  else
    laneg_lanes_k<16>(n, d, lld, sigma, r, counts);
}

template <class R>
void larrc(int n, R vl, R vu, const R *d, const R *e, R pivmin, int *eigcnt, int *lcnt, int *rcnt) {
  (void)pivmin;
  int lc = 0, rc = 0;
  if (n > 0) {
    R lpivot = d[0] - vl, rpivot = d[0] - vu;
    lc += lpivot <= R(0);
    rc += rpivot <= R(0);
    for (int i = 0; i < n - 1; ++i) {
      const R e2 = e[i] * e[i];
      lpivot = (d[i + 1] - vl) - e2 / lpivot;
      rpivot = (d[i + 1] - vu) - e2 / rpivot;
      lc += lpivot <= R(0);
      rc += rpivot <= R(0);
    }
  }
  *lcnt = lc;
  *rcnt = rc;
  *eigcnt = rc - lc;
}

template <class R>
int larrk(int n, int iw, R gl, R gu, const R *d, const R *e2, R pivmin, R reltol, R *w, R *werr) {
  if (n <= 0) return 0;
  const R fudge = 2;
  const R tnorm = std::max(std::abs(gl), std::abs(gu));
  const R atoli = fudge * 2 * pivmin;
  const int itmax = int((std::log(tnorm + pivmin) - std::log(pivmin)) / std::log(R(2))) + 2;
  R left = gl - fudge * tnorm * eps<R>() * R(n) - fudge * 2 * pivmin;
  R right = gu + fudge * tnorm * eps<R>() * R(n) + fudge * 2 * pivmin;
  int info = -1;
  for (int it = 0;; ++it) {
    const R width = std::abs(right - left);
    const R big = std::max(std::abs(right), std::abs(left));
    if (width < std::max({atoli, pivmin, reltol * big})) {
      info = 0;
      break;
    }
    if (it > itmax) break;
    const R mid = R(0.5) * (left + right);
    int negcnt = 0;
    R t = d[0] - mid;
    if (std::abs(t) < pivmin) t = -pivmin;
    negcnt += t <= R(0);
    for (int i = 1; i < n; ++i) {
      t = d[i] - e2[i - 1] / t - mid;
      if (std::abs(t) < pivmin) t = -pivmin;
      negcnt += t <= R(0);
    }
    if (negcnt >= iw)
      right = mid;
    else
      left = mid;
  }
  *w = R(0.5) * (left + right);
  *werr = R(0.5) * std::abs(right - left);
  return info;
}

template <class R>
void larra(int n, const R *d, R *e, R *e2, R spltol, R tnrm, int *nsplit, int *isplit) {
  int ns = 0;
  if (n <= 0) {
    *nsplit = 1;
    return;
  }
  for (int i = 0; i < n - 1; ++i) {
    const R eabs = std::abs(e[i]);
    const bool small =
        spltol < R(0) ? eabs <= std::abs(spltol) * tnrm
                      : eabs <= spltol * std::sqrt(std::abs(d[i])) * std::sqrt(std::abs(d[i + 1]));
    if (small) {
      e[i] = 0;
      e2[i] = 0;
      isplit[ns++] = i + 1;
    }
  }
  isplit[ns++] = n;
  *nsplit = ns;
}

template <class R>
bool larrr(int n, const R *d, const R *e) {
  if (n <= 0) return true;
  // Relative accuracy is warranted when the matrix is scaled diagonally
  // dominant: every |e(i)| / sqrt|d(i) d(i+1)|, two neighbours together,
  // stays below one, and no diagonal is tiny.
  const R relcond = R(0.999);
  const R rmin = std::sqrt(safmin<R>() / eps<R>());
  R offdig = 0;
  R tmp = std::sqrt(std::abs(d[0]));
  if (tmp < rmin) return false;
  for (int i = 1; i < n; ++i) {
    const R tmp2 = std::sqrt(std::abs(d[i]));
    if (tmp2 < rmin) return false;
    const R offdig2 = std::abs(e[i - 1]) / (tmp * tmp2);
    if (offdig + offdig2 >= relcond) return false;
    tmp = tmp2;
    offdig = offdig2;
  }
  return true;
}

// ---- bisection on the tridiagonal (the published xLAEBZ, scalar path) -------------------

namespace {

// Sturm count at x: the pivots <= pivmin, each such pivot replaced by
// -pivmin before it divides.
template <class R>
int sturm_count(int n, const R *d, const R *e2, R x, R pivmin) {
  R t = d[0] - x;
  int c = 0;
  if (t <= pivmin) {
    ++c;
    t = std::min(t, -pivmin);
  }
  for (int j = 1; j < n; ++j) {
    t = d[j] - e2[j - 1] / t - x;
    if (t <= pivmin) {
      ++c;
      t = std::min(t, -pivmin);
    }
  }
  return c;
}

// The count of the interval ends (JOB 1): pivots of modulus below pivmin
// become -pivmin, a pivot <= 0 counts.
template <class R>
int end_count(int n, const R *d, const R *e2, R x, R pivmin) {
  R t = d[0] - x;
  if (std::abs(t) < pivmin) t = -pivmin;
  int c = t <= R(0);
  for (int j = 1; j < n; ++j) {
    t = d[j] - e2[j - 1] / t - x;
    if (std::abs(t) < pivmin) t = -pivmin;
    c += t <= R(0);
  }
  return c;
}

// Intervals [ab(k, 0), ab(k, 1)] with their counts nab(k, 0..1), held as
// columns of mmax rows. find_eigenvalues (JOB 2) bisects each interval and
// splits it where a midpoint separates eigenvalues, until every interval is
// narrow or holds one cluster; otherwise (JOB 3) each interval is bisected
// towards the point where the count becomes nval(k). Converged intervals
// move to the front. Returns the number not converged (or mmax + 1 when
// the intervals outgrew mmax); *mout the number of intervals.
template <class R>
int bisect_intervals(bool find_eigenvalues, int nitmax, int n, int mmax, int minp, R abstol,
                     R reltol, R pivmin, const R *d, const R *e2, int *nval, R *ab, R *c, int *mout,
                     int *nab) {
  auto a0 = [&](int k) -> R & { return ab[k]; };
  auto a1 = [&](int k) -> R & { return ab[mmax + k]; };
  auto n0 = [&](int k) -> int & { return nab[k]; };
  auto n1 = [&](int k) -> int & { return nab[mmax + k]; };
  int kf = 0, kl = minp;  // active intervals kf .. kl - 1
  if (find_eigenvalues)
    for (int k = 0; k < minp; ++k) c[k] = R(0.5) * (a0(k) + a1(k));
  for (int it = 0; it < nitmax; ++it) {
    int klnew = kl;
    for (int k = kf; k < kl; ++k) {
      const R x = c[k];
      int cnt = sturm_count(n, d, e2, x, pivmin);
      if (find_eigenvalues) {
        cnt = std::min(n1(k), std::max(n0(k), cnt));
        if (cnt == n1(k)) {
          a1(k) = x;
        } else if (cnt == n0(k)) {
          a0(k) = x;
        } else if (klnew < mmax) {
          // Eigenvalues on both sides: the upper part becomes a new interval.
          a1(klnew) = a1(k);
          n1(klnew) = n1(k);
          a0(klnew) = x;
          n0(klnew) = cnt;
          ++klnew;
          a1(k) = x;
          n1(k) = cnt;
        } else {
          *mout = kl;
          return mmax + 1;
        }
      } else {
        if (cnt <= nval[k]) {
          a0(k) = x;
          n0(k) = cnt;
        }
        if (cnt >= nval[k]) {
          a1(k) = x;
          n1(k) = cnt;
        }
      }
    }
    kl = klnew;
    int kfnew = kf;
    for (int k = kf; k < kl; ++k) {
      const R width = std::abs(a1(k) - a0(k));
      const R big = std::max(std::abs(a1(k)), std::abs(a0(k)));
      if (width < std::max({abstol, pivmin, reltol * big}) || n0(k) >= n1(k)) {
        if (k > kfnew) {
          std::swap(a0(k), a0(kfnew));
          std::swap(a1(k), a1(kfnew));
          std::swap(n0(k), n0(kfnew));
          std::swap(n1(k), n1(kfnew));
          if (!find_eigenvalues) std::swap(nval[k], nval[kfnew]);
        }
        ++kfnew;
      }
    }
    kf = kfnew;
    for (int k = kf; k < kl; ++k) c[k] = R(0.5) * (a0(k) + a1(k));
    if (kf >= kl) break;
  }
  *mout = kl;
  return std::max(kl - kf, 0);
}

}  // namespace

template <class R>
int larrd(Range range, bool by_block, int n, R vl, R vu, int il, int iu, const R *gers, R reltol,
          const R *d, const R *e, const R *e2, R pivmin, int nsplit, const int *isplit, int *m,
          R *w, R *werr, R *wl_out, R *wu_out, int *iblock, int *indexw, R *work, int *iwork) {
  (void)e;
  *m = 0;
  if (n <= 0) return 0;
  if (range == Range::kIndices && il == 1 && iu == n) range = Range::kAll;
  const R fudge = 2;
  const R uflow = safmin<R>();

  if (n == 1) {
    if (range == Range::kAll || (range == Range::kValues && d[0] > vl && d[0] <= vu) ||
        (range == Range::kIndices && il == 1 && iu == 1)) {
      *m = 1;
      w[0] = d[0];
      werr[0] = 0;
      iblock[0] = 1;
      indexw[0] = 1;
    }
    return 0;
  }

  R gl = d[0], gu = d[0];
  for (int i = 0; i < n; ++i) {
    gl = std::min(gl, gers[2 * i]);
    gu = std::max(gu, gers[2 * i + 1]);
  }
  const R tnorm = std::max(std::abs(gl), std::abs(gu));
  gl = gl - fudge * tnorm * eps<R>() * R(n) - fudge * 2 * pivmin;
  gu = gu + fudge * tnorm * eps<R>() * R(n) + fudge * 2 * pivmin;
  const R rtoli = reltol;
  const R atoli = fudge * 2 * uflow + fudge * 2 * pivmin;

  R wl = 0, wu = 0, wlu = 0, wul = 0;
  int nwl = 0, nwu = 0;
  if (range == Range::kIndices) {
    // The points where the count reaches il - 1 and iu.
    const int itmax = int((std::log(tnorm + pivmin) - std::log(pivmin)) / std::log(R(2))) + 2;
    R ab[4] = {gl, gl, gu, gu};
    R c[2] = {gl, gu};
    int nab[4] = {-1, -1, n + 1, n + 1};
    int nval[2] = {il - 1, iu};
    int iout = 0;
    const int info = bisect_intervals(false, itmax, n, 2, 2, atoli, rtoli, pivmin, d, e2, nval, ab,
                                      c, &iout, nab);
    if (info != 0) return info;
    if (nval[1] == iu) {
      wl = ab[0], wlu = ab[2], nwl = nab[0];
      wu = ab[3], wul = ab[1], nwu = nab[3];
    } else {
      wl = ab[1], wlu = ab[3], nwl = nab[1];
      wu = ab[2], wul = ab[0], nwu = nab[2];
    }
    if (nwl < 0 || nwl >= n || nwu < 1 || nwu > n) return 4;
  } else if (range == Range::kValues) {
    wl = vl;
    wu = vu;
  } else {
    wl = gl;
    wu = gu;
  }

  bool ncnvrg = false, toofew = false;
  int mm = 0;
  nwl = 0;
  nwu = 0;
  int iend = 0;
  for (int jblk = 1; jblk <= nsplit; ++jblk) {
    const int ioff = iend;
    const int ib = ioff;  // first row, 0-based
    iend = isplit[jblk - 1];
    const int in = iend - ioff;
    if (in == 1) {
      if (wl >= d[ib] - pivmin) ++nwl;
      if (wu >= d[ib] - pivmin) ++nwu;
      if (range == Range::kAll || (wl < d[ib] - pivmin && wu >= d[ib] - pivmin)) {
        w[mm] = d[ib];
        werr[mm] = 0;
        iblock[mm] = jblk;
        indexw[mm] = 1;
        ++mm;
      }
      continue;
    }
    R bgl = d[ib], bgu = d[ib];
    for (int j = ib; j < iend; ++j) {
      bgl = std::min(bgl, gers[2 * j]);
      bgu = std::max(bgu, gers[2 * j + 1]);
    }
    bgl = bgl - fudge * tnorm * eps<R>() * R(in) - fudge * pivmin;
    bgu = bgu + fudge * tnorm * eps<R>() * R(in) + fudge * pivmin;
    if (range != Range::kAll) {
      if (bgu < wl) {
        nwl += in;
        nwu += in;
        continue;
      }
      bgl = std::max(bgl, wl);
      bgu = std::min(bgu, wu);
      if (bgl >= bgu) continue;
    }
    // Intervals of this block: ab(:, 0) at work[n ..], ab(:, 1) at
    // work[n + in ..], the midpoints at work[n + 2 in ..]; counts in iwork.
    R *ab = work + n;
    R *c = work + n + 2 * in;
    int *nab = iwork;
    const R *bd = d + ib;
    const R *be2 = e2 + ib;
    ab[0] = bgl;
    ab[in] = bgu;
    nab[0] = end_count(in, bd, be2, bgl, pivmin);
    nab[in] = end_count(in, bd, be2, bgu, pivmin);
    const int im = nab[in] - nab[0];
    nwl += nab[0];
    nwu += nab[in];
    const int iwoff = mm - nab[0];
    const int itmax = int((std::log(bgu - bgl + pivmin) - std::log(pivmin)) / std::log(R(2))) + 2;
    int iout = 0;
    const int info = bisect_intervals(true, itmax, in, in, 1, atoli, rtoli, pivmin, bd, be2,
                                      nullptr, ab, c, &iout, nab);
    if (info != 0) return info;
    for (int j = 0; j < iout; ++j) {
      const R mid = R(0.5) * (ab[j] + ab[j + in]);
      const R rad = R(0.5) * std::abs(ab[j] - ab[j + in]);
      int blk = jblk;
      if (j >= iout - info) {
        ncnvrg = true;
        blk = -jblk;
      }
      for (int je = nab[j] + iwoff; je < nab[j + in] + iwoff; ++je) {
        w[je] = mid;
        werr[je] = rad;
        indexw[je] = je + 1 - iwoff;
        iblock[je] = blk;
      }
    }
    mm += im;
  }

  if (range == Range::kIndices) {
    // Discard the eigenvalues of the ties at wl and wu beyond il .. iu.
    int idiscl = il - 1 - nwl;
    int idiscu = nwu - iu;
    auto move = [&](int to, int from) {
      w[to] = w[from];
      werr[to] = werr[from];
      indexw[to] = indexw[from];
      iblock[to] = iblock[from];
    };
    if (idiscl > 0) {
      int im = 0;
      for (int je = 0; je < mm; ++je) {
        if (w[je] <= wlu && idiscl > 0)
          --idiscl;
        else
          move(im++, je);
      }
      mm = im;
    }
    if (idiscu > 0) {
      int im = mm;
      for (int je = mm - 1; je >= 0; --je) {
        if (w[je] >= wul && idiscu > 0)
          --idiscu;
        else
          move(--im, je);
      }
      int jee = 0;
      for (int je = im; je < mm; ++je) move(jee++, je);
      mm = mm - im;
    }
    if (idiscl > 0 || idiscu > 0) {
      // Too many eigenvalues in the ties: drop the smallest (largest) ones.
      if (idiscl > 0) {
        R wkill = wu;
        for (int k = 0; k < idiscl; ++k) {
          int iw = -1;
          for (int je = 0; je < mm; ++je)
            if (iblock[je] != 0 && (w[je] < wkill || iw < 0)) {
              iw = je;
              wkill = w[je];
            }
          if (iw >= 0) iblock[iw] = 0;
        }
      }
      if (idiscu > 0) {
        R wkill = wl;
        for (int k = 0; k < idiscu; ++k) {
          int iw = -1;
          for (int je = 0; je < mm; ++je)
            if (iblock[je] != 0 && (w[je] >= wkill || iw < 0)) {
              iw = je;
              wkill = w[je];
            }
          if (iw >= 0) iblock[iw] = 0;
        }
      }
      int im = 0;
      for (int je = 0; je < mm; ++je)
        if (iblock[je] != 0) move(im++, je);
      mm = im;
    }
    if (idiscl < 0 || idiscu < 0) toofew = true;
  }
  if ((range == Range::kAll && mm != n) || (range == Range::kIndices && mm != iu - il + 1))
    toofew = true;

  if (!by_block && nsplit > 1) {
    // Selection sort into ascending order, as published (stable in ties).
    for (int je = 0; je < mm - 1; ++je) {
      int ie = -1;
      R t = w[je];
      for (int j = je + 1; j < mm; ++j)
        if (w[j] < t) {
          ie = j;
          t = w[j];
        }
      if (ie >= 0) {
        std::swap(w[ie], w[je]);
        std::swap(werr[ie], werr[je]);
        std::swap(iblock[ie], iblock[je]);
        std::swap(indexw[ie], indexw[je]);
      }
    }
  }
  *m = mm;
  *wl_out = wl;
  *wu_out = wu;
  return (ncnvrg ? 1 : 0) + (toofew ? 2 : 0);
}

// ---- bisection on a representation ----------------------------------------------------

template <class R>
int larrb(int n, const R *d, const R *lld, int ifirst, int ilast, R rtol1, R rtol2, int offset,
          R *w, R *wgap, R *werr, R *work, int *iwork, R pivmin, R spdiam, int twist) {
  if (n <= 0) return 0;
  const int maxitr = int((std::log(spdiam + pivmin) - std::log(pivmin)) / std::log(R(2))) + 2;
  const R mnwdth = 2 * pivmin;
  const int r = (twist < 1 || twist > n) ? n : twist;
  // Eigenvalue i (1-based) has its interval in work[2i - 2], work[2i - 1]
  // and, while it is active, the next active index in iwork[2i - 2] and
  // its right count in iwork[2i - 1]; a converged one has iwork[2i - 2]
  // -1 (from the start) or 0.
  auto left_of = [&](int i) -> R & { return work[2 * i - 2]; };
  auto right_of = [&](int i) -> R & { return work[2 * i - 1]; };
  auto next_of = [&](int i) -> int & { return iwork[2 * i - 2]; };
  auto W = [&](int i) -> R & { return w[i - offset - 1]; };
  auto WERR = [&](int i) -> R & { return werr[i - offset - 1]; };
  auto WGAP = [&](int i) -> R & { return wgap[i - offset - 1]; };

  // The counts at both ends of every initial interval, evaluated together
  // (kept in the interval's iwork slots until its turn below).
  for (int i0 = ifirst; i0 <= ilast; i0 += kNegLanes / 2) {
    const int count = std::min(kNegLanes / 2, ilast - i0 + 1);
    R ends[kNegLanes];
    int counts[kNegLanes];
    for (int q = 0; q < count; ++q) {
      ends[2 * q] = W(i0 + q) - WERR(i0 + q);
      ends[2 * q + 1] = W(i0 + q) + WERR(i0 + q);
    }
    laneg_lanes(2 * count, n, d, lld, ends, r, counts);
    for (int q = 0; q < 2 * count; ++q) iwork[2 * i0 - 2 + q] = counts[q];
  }

  int i1 = ifirst;
  int nint = 0, prev = 0;
  R rgap = WGAP(i1);
  for (int i = i1; i <= ilast; ++i) {
    R left = W(i) - WERR(i);
    R right = W(i) + WERR(i);
    const R lgap = rgap;
    rgap = WGAP(i);
    const R gap = std::min(lgap, rgap);
    // Widen the interval until it encloses eigenvalue i.
    R back = WERR(i);
    for (int cnt = iwork[2 * i - 2]; cnt > i - 1; cnt = laneg(n, d, lld, left, pivmin, r)) {
      left -= back;
      back *= 2;
    }
    back = WERR(i);
    int negcnt = iwork[2 * i - 1];
    while (negcnt < i) {
      right += back;
      back *= 2;
      negcnt = laneg(n, d, lld, right, pivmin, r);
    }
    const R width = R(0.5) * std::abs(left - right);
    const R big = std::max(std::abs(left), std::abs(right));
    const R cvrgd = std::max(rtol1 * gap, rtol2 * big);
    if (width <= cvrgd || width <= mnwdth) {
      next_of(i) = -1;
      if (i == i1 && i < ilast) i1 = i + 1;
      if (prev >= i1 && i <= ilast) next_of(prev) = i + 1;
    } else {
      prev = i;
      ++nint;
      next_of(i) = i + 1;
      iwork[2 * i - 1] = negcnt;
    }
    left_of(i) = left;
    right_of(i) = right;
  }

  int pending[kNegLanes];
  R mids[kNegLanes];
  int npending = 0;
  auto bisect_pending = [&]() {
    int counts[kNegLanes];
    laneg_lanes(npending, n, d, lld, mids, r, counts);
    for (int k = 0; k < npending; ++k) {
      if (counts[k] <= pending[k] - 1)
        left_of(pending[k]) = mids[k];
      else
        right_of(pending[k]) = mids[k];
    }
    npending = 0;
  };
  for (int iter = 0; nint > 0 && iter <= maxitr; ++iter) {
    prev = i1 - 1;
    int i = i1;
    const int olnint = nint;
    for (int ip = 0; ip < olnint; ++ip) {
      const int ii = i - offset;
      R rg = wgap[ii - 1];
      R lg = rg;
      if (ii > 1) lg = wgap[ii - 2];
      const R gap = std::min(lg, rg);
      const int next = next_of(i);
      const R left = left_of(i), right = right_of(i);
      const R mid = R(0.5) * (left + right);
      const R width = right - mid;
      const R big = std::max(std::abs(left), std::abs(right));
      const R cvrgd = std::max(rtol1 * gap, rtol2 * big);
      if (width <= cvrgd || width <= mnwdth || iter == maxitr) {
        --nint;
        next_of(i) = 0;
        if (i1 == i)
          i1 = next;
        else if (prev >= i1)
          next_of(prev) = next;
        i = next;
        continue;
      }
      prev = i;
      // The bisection steps of one sweep are independent of each other:
      // their negcounts are evaluated together.
      pending[npending] = i;
      mids[npending] = mid;
      if (++npending == kNegLanes) bisect_pending();
      i = next;
    }
    if (npending > 0) bisect_pending();
  }
  for (int i = ifirst; i <= ilast; ++i) {
    if (next_of(i) == 0) {
      W(i) = R(0.5) * (left_of(i) + right_of(i));
      WERR(i) = right_of(i) - W(i);
    }
  }
  for (int i = ifirst + 1; i <= ilast; ++i)
    WGAP(i - 1) = std::max(R(0), W(i) - WERR(i) - W(i - 1) - WERR(i - 1));
  return 0;
}

template <class R>
void larrb_singles(int n, const R *d, const R *lld, int count, const int *index, R rtol1, R rtol2,
                   int offset, R *w, R *wgap, R *werr, R pivmin, R spdiam, int twist) {
  constexpr int kMax = kNegLanes / 2;
  if (n <= 0) return;
  const int maxitr = int((std::log(spdiam + pivmin) - std::log(pivmin)) / std::log(R(2))) + 2;
  const R mnwdth = 2 * pivmin;
  const int r = (twist < 1 || twist > n) ? n : twist;
  for (int c0 = 0; c0 < count; c0 += kMax) {
    const int nc = std::min(kMax, count - c0);
    const int *idx = index + c0;
    R left[kMax], right[kMax];
    bool active[kMax];
    // The counts at both ends, together; then each interval widened until
    // it encloses its eigenvalue, and its first convergence test (where
    // the gap on both sides is the right one, as for larrb's first index).
    R ends[kNegLanes];
    int counts[kNegLanes];
    for (int q = 0; q < nc; ++q) {
      const int ii = idx[q] - offset - 1;
      ends[2 * q] = w[ii] - werr[ii];
      ends[2 * q + 1] = w[ii] + werr[ii];
    }
    laneg_lanes(2 * nc, n, d, lld, ends, r, counts);
    for (int q = 0; q < nc; ++q) {
      const int i = idx[q];
      const int ii = i - offset - 1;
      R lf = ends[2 * q], rt = ends[2 * q + 1];
      R back = werr[ii];
      for (int cnt = counts[2 * q]; cnt > i - 1; cnt = laneg(n, d, lld, lf, pivmin, r)) {
        lf -= back;
        back *= 2;
      }
      back = werr[ii];
      for (int cnt = counts[2 * q + 1]; cnt < i; cnt = laneg(n, d, lld, rt, pivmin, r)) {
        rt += back;
        back *= 2;
      }
      const R gap = wgap[ii];
      const R width = R(0.5) * std::abs(lf - rt);
      const R cvrgd = std::max(rtol1 * gap, rtol2 * std::max(std::abs(lf), std::abs(rt)));
      active[q] = !(width <= cvrgd || width <= mnwdth);
      left[q] = lf;
      right[q] = rt;
    }
    // Bisection of the active intervals side by side.
    for (int iter = 0; iter <= maxitr; ++iter) {
      int pending[kMax], np = 0;
      R mids[kNegLanes];
      for (int q = 0; q < nc; ++q) {
        if (!active[q]) continue;
        const int ii = idx[q] - offset - 1;
        R lg = wgap[ii];
        if (ii > 0) lg = wgap[ii - 1];
        const R gap = std::min(lg, wgap[ii]);
        const R mid = R(0.5) * (left[q] + right[q]);
        const R width = right[q] - mid;
        const R cvrgd =
            std::max(rtol1 * gap, rtol2 * std::max(std::abs(left[q]), std::abs(right[q])));
        if (width <= cvrgd || width <= mnwdth || iter == maxitr) {
          active[q] = false;
          w[ii] = R(0.5) * (left[q] + right[q]);
          werr[ii] = right[q] - w[ii];
          continue;
        }
        pending[np] = q;
        mids[np++] = mid;
      }
      if (np == 0) break;
      laneg_lanes(np, n, d, lld, mids, r, counts);
      for (int k = 0; k < np; ++k) {
        const int q = pending[k];
        if (counts[k] <= idx[q] - 1)
          left[q] = mids[k];
        else
          right[q] = mids[k];
      }
    }
  }
}

template <class R>
void larrj(int n, const R *d, const R *e2, int ifirst, int ilast, R rtol, int offset, R *w, R *werr,
           R *work, int *iwork, R pivmin, R spdiam) {
  if (n <= 0) return;
  const int maxitr = int((std::log(spdiam + pivmin) - std::log(pivmin)) / std::log(R(2))) + 2;
  auto count = [&](R s) {
    R dplus = d[0] - s;
    int cnt = dplus < R(0);
    for (int j = 1; j < n; ++j) {
      dplus = d[j] - s - e2[j - 1] / dplus;
      cnt += dplus < R(0);
    }
    return cnt;
  };
  auto left_of = [&](int i) -> R & { return work[2 * i - 2]; };
  auto right_of = [&](int i) -> R & { return work[2 * i - 1]; };
  auto next_of = [&](int i) -> int & { return iwork[2 * i - 2]; };

  int i1 = ifirst;
  const int i2 = ilast;
  int nint = 0, prev = 0;
  for (int i = i1; i <= i2; ++i) {
    const int ii = i - offset - 1;
    R left = w[ii] - werr[ii];
    const R mid = w[ii];
    R right = w[ii] + werr[ii];
    const R width = right - mid;
    const R big = std::max(std::abs(left), std::abs(right));
    if (width < rtol * big) {
      next_of(i) = -1;
      if (i == i1 && i < i2) i1 = i + 1;
      if (prev >= i1 && i <= i2) next_of(prev) = i + 1;
    } else {
      prev = i;
      R fac = 1;
      while (count(left) > i - 1) {
        left -= werr[ii] * fac;
        fac *= 2;
      }
      fac = 1;
      int cnt;
      while ((cnt = count(right)) < i) {
        right += werr[ii] * fac;
        fac *= 2;
      }
      ++nint;
      next_of(i) = i + 1;
      iwork[2 * i - 1] = cnt;
    }
    left_of(i) = left;
    right_of(i) = right;
  }

  const int savi1 = i1;
  for (int iter = 0; nint > 0 && iter <= maxitr; ++iter) {
    prev = i1 - 1;
    int i = i1;
    const int olnint = nint;
    for (int p = 0; p < olnint; ++p) {
      const int next = next_of(i);
      const R left = left_of(i), right = right_of(i);
      const R mid = R(0.5) * (left + right);
      const R width = right - mid;
      const R big = std::max(std::abs(left), std::abs(right));
      if (width < rtol * big || iter == maxitr) {
        --nint;
        next_of(i) = 0;
        if (i1 == i)
          i1 = next;
        else if (prev >= i1)
          next_of(prev) = next;
        i = next;
        continue;
      }
      prev = i;
      if (count(mid) <= i - 1)
        left_of(i) = mid;
      else
        right_of(i) = mid;
      i = next;
    }
  }
  for (int i = savi1; i <= ilast; ++i) {
    if (next_of(i) == 0) {
      const int ii = i - offset - 1;
      w[ii] = R(0.5) * (left_of(i) + right_of(i));
      werr[ii] = right_of(i) - w[ii];
    }
  }
}

// ---- the root representation ------------------------------------------------------------

template <class R>
int larre(Range range, int n, R *vl, R *vu, int il, int iu, R *d, R *e, R *e2, R rtol1, R rtol2,
          R spltol, int *nsplit, int *isplit, int *m, R *w, R *werr, R *wgap, int *iblock,
          int *indexw, R *gers, R *pivmin_out, R *work, int *iwork, bool force_bisection) {
  const R fac = R(0.5), maxgrowth = 64, fudge = 2, pert = 4, hndrd = 100;
  const int maxtry = 6;
  const R epsr = eps<R>();
  *nsplit = 0;
  *m = 0;
  if (n <= 0) return 0;
  const R rtl = hndrd * epsr;
  const R bsrtol = std::sqrt(epsr) * R(0.5e-3);

  if (n == 1) {
    if (range == Range::kAll || (range == Range::kValues && d[0] > *vl && d[0] <= *vu) ||
        (range == Range::kIndices && il == 1 && iu == 1)) {
      *m = 1;
      w[0] = d[0];
      werr[0] = 0;
      wgap[0] = 0;
      iblock[0] = 1;
      indexw[0] = 1;
      gers[0] = d[0];
      gers[1] = d[0];
    }
    e[0] = 0;
    return 0;
  }

  // Gershgorin intervals of every row and of the whole matrix.
  R gl = d[0], gu = d[0], eold = 0, emax = 0;
  e[n - 1] = 0;
  for (int i = 0; i < n; ++i) {
    werr[i] = 0;
    wgap[i] = 0;
    const R eabs = std::abs(e[i]);
    emax = std::max(emax, eabs);
    const R rad = eabs + eold;
    gers[2 * i] = d[i] - rad;
    gl = std::min(gl, gers[2 * i]);
    gers[2 * i + 1] = d[i] + rad;
    gu = std::max(gu, gers[2 * i + 1]);
    eold = eabs;
  }
  const R pivmin = safmin<R>() * std::max(R(1), emax * emax);
  *pivmin_out = pivmin;
  R spdiam = gu - gl;

  larra(n, d, e, e2, spltol, spdiam, nsplit, isplit);

  const bool all_dqds = range == Range::kAll && !force_bisection;
  bool usedqd = all_dqds;
  int mm = 0;
  if (all_dqds) {
    *vl = gl;
    *vu = gu;
  } else {
    // Approximations of the wanted eigenvalues by bisection, to be refined
    // on each block's representation later.
    const int info = larrd(range, true, n, *vl, *vu, il, iu, gers, bsrtol, d, e, e2, pivmin,
                           *nsplit, isplit, &mm, w, werr, vl, vu, iblock, indexw, work, iwork);
    if (info != 0) return -1;
    for (int i = mm; i < n; ++i) {
      w[i] = 0;
      werr[i] = 0;
      iblock[i] = 0;
      indexw[i] = 0;
    }
  }

  int ibegin = 0;  // 0-based first row of the block
  int wbegin = 0;  // 0-based first eigenvalue of the block
  int mtotal = 0;
  for (int jblk = 1; jblk <= *nsplit; ++jblk) {
    const int iend = isplit[jblk - 1] - 1;  // 0-based last row
    const int in = iend - ibegin + 1;

    if (in == 1) {
      if (range == Range::kAll ||
          (range == Range::kValues && d[ibegin] > *vl && d[ibegin] <= *vu) ||
          (range == Range::kIndices && iblock[wbegin] == jblk)) {
        w[mtotal] = d[ibegin];
        werr[mtotal] = 0;
        wgap[mtotal] = 0;
        iblock[mtotal] = jblk;
        indexw[mtotal] = 1;
        ++mtotal;
        ++wbegin;
      }
      e[iend] = 0;
      ibegin = iend + 1;
      continue;
    }
    // Representations of this block get sigma in e(iend).
    e[iend] = 0;
    gl = d[ibegin];
    gu = d[ibegin];
    for (int i = ibegin; i <= iend; ++i) {
      gl = std::min(gers[2 * i], gl);
      gu = std::max(gers[2 * i + 1], gu);
    }
    spdiam = gu - gl;

    int mb = 0, wend = 0, indl = 0, indu = 0;
    if (!all_dqds) {
      // The eigenvalues bisection found in this block.
      for (int i = wbegin; i < mm && iblock[i] == jblk; ++i) ++mb;
      if (mb == 0) {
        e[iend] = 0;
        ibegin = iend + 1;
        continue;
      }
      // dqds pays when most of the block's eigenvalues are wanted.
      usedqd = R(mb) > fac * R(in) && !force_bisection;
      wend = wbegin + mb - 1;
      for (int i = wbegin; i < wend; ++i)
        wgap[i] = std::max(R(0), w[i + 1] - werr[i + 1] - (w[i] + werr[i]));
      wgap[wend] = std::max(R(0), *vu - (w[wend] + werr[wend]));
      indl = indexw[wbegin];
      indu = indexw[wend];
    }
    R isleft, isrght;
    if (all_dqds || usedqd) {
      // The extreme eigenvalues of the block, roughly.
      R tmp, tmp1;
      if (larrk(in, 1, gl, gu, d + ibegin, e2 + ibegin, pivmin, rtl, &tmp, &tmp1) != 0) return -1;
      isleft = std::max(gl, tmp - tmp1 - hndrd * epsr * std::abs(tmp - tmp1));
      if (larrk(in, in, gl, gu, d + ibegin, e2 + ibegin, pivmin, rtl, &tmp, &tmp1) != 0) return -1;
      isrght = std::min(gu, tmp + tmp1 + hndrd * epsr * std::abs(tmp + tmp1));
      spdiam = isrght - isleft;
    } else {
      isleft = std::max(
          gl, w[wbegin] - werr[wbegin] - hndrd * epsr * std::abs(w[wbegin] - werr[wbegin]));
      isrght = std::min(gu, w[wend] + werr[wend] + hndrd * epsr * std::abs(w[wend] + werr[wend]));
    }

    // Where the wanted eigenvalues lie decides the end the shift goes to.
    R s1, s2;
    if (all_dqds) {
      usedqd = true;
      indl = 1;
      indu = in;
      mb = in;
      wend = wbegin + mb - 1;
      s1 = isleft + R(0.25) * spdiam;
      s2 = isrght - R(0.25) * spdiam;
    } else if (usedqd) {
      s1 = isleft + R(0.25) * spdiam;
      s2 = isrght - R(0.25) * spdiam;
    } else {
      const R tmp = std::min(isrght, *vu) - std::max(isleft, *vl);
      s1 = std::max(isleft, *vl) + R(0.25) * tmp;
      s2 = std::min(isrght, *vu) - R(0.25) * tmp;
    }
    int cnt = 0, cnt1 = 0, cnt2 = 0;
    if (mb > 1) larrc(in, s1, s2, d + ibegin, e + ibegin, pivmin, &cnt, &cnt1, &cnt2);

    R sigma, sgndef;
    if (mb == 1) {
      sigma = gl;
      sgndef = 1;
    } else if (cnt1 - indl >= indu - cnt2) {
      if (all_dqds)
        sigma = std::max(isleft, gl);
      else if (usedqd)
        sigma = isleft;
      else
        sigma = std::max(isleft, *vl);
      sgndef = 1;
    } else {
      if (all_dqds)
        sigma = std::min(isrght, gu);
      else if (usedqd)
        sigma = isrght;
      else
        sigma = std::min(isrght, *vu);
      sgndef = -1;
    }

    // The step by which a failed shift moves.
    R tau;
    if (usedqd) {
      tau = spdiam * epsr * R(n) + 2 * pivmin;
      tau = std::max(tau, 2 * epsr * std::abs(sigma));
    } else if (mb > 1) {
      const R clwdth = w[wend] + werr[wend] - w[wbegin] - werr[wbegin];
      const R avgap = std::abs(clwdth / R(wend - wbegin));
      if (sgndef == R(1)) {
        tau = R(0.5) * std::max(wgap[wbegin], avgap);
        tau = std::max(tau, werr[wbegin]);
      } else {
        tau = R(0.5) * std::max(wgap[wend - 1], avgap);
        tau = std::max(tau, werr[wend]);
      }
    } else {
      tau = werr[wbegin];
    }

    // Factor T - sigma I = L D L^T (pivots in work[0 .. in), multipliers in
    // work[in .. 2 in - 1)) until the factorization has modest element
    // growth (and is definite for dqds).
    R *piv = work;
    R *mult = work + in;
    R *inv = work + 2 * in;
    bool found = false;
    for (int idum = 1; idum <= maxtry; ++idum) {
      R dpivot = d[ibegin] - sigma;
      piv[0] = dpivot;
      R dmax = std::abs(dpivot);
      for (int i = 0; i < in - 1; ++i) {
        const int j = ibegin + i;
        inv[i] = R(1) / piv[i];
        const R t = e[j] * inv[i];
        mult[i] = t;
        dpivot = (d[j + 1] - sigma) - t * e[j];
        piv[i + 1] = dpivot;
        dmax = std::max(dmax, std::abs(dpivot));
      }
      bool norep = dmax > maxgrowth * spdiam;
      if (usedqd && !norep)
        for (int i = 0; i < in; ++i)
          if (sgndef * piv[i] < R(0)) norep = true;
      if (!norep) {
        found = true;
        break;
      }
      if (idum == maxtry - 1) {
        // The last try: just outside the Gershgorin interval.
        if (sgndef == R(1))
          sigma = gl - fudge * spdiam * epsr * R(n) - fudge * 2 * pivmin;
        else
          sigma = gu + fudge * spdiam * epsr * R(n) + fudge * 2 * pivmin;
      } else {
        sigma -= sgndef * tau;
        tau *= 2;
      }
    }
    if (!found) return 2;

    e[iend] = sigma;
    std::copy(piv, piv + in, d + ibegin);
    std::copy(mult, mult + in - 1, e + ibegin);

    if (mb > 1) {
      // A small random relative perturbation of the representation breaks
      // up eigenvalues that agree to working precision (the first 2 in - 1
      // numbers of the sequence, d's in - 1 first, then e's, then d(last)).
      Uniform48 random;
      R *rnd = work;
      random.fill(2 * in - 1, rnd);
      for (int i = 0; i < in - 1; ++i) {
        d[ibegin + i] *= R(1) + epsr * pert * rnd[i];
        e[ibegin + i] *= R(1) + epsr * pert * rnd[in + i];
      }
      d[iend] *= R(1) + epsr * R(4) * rnd[in - 1];
    }

    if (!usedqd) {
      // The bisection approximations shifted, then refined on the
      // representation to the tolerances of the vector stage.
      for (int j = wbegin; j <= wend; ++j) {
        w[j] -= sigma;
        werr[j] += std::abs(w[j]) * epsr;
      }
      for (int i = ibegin; i < iend; ++i) work[i] = d[i] * (e[i] * e[i]);
      if (larrb(in, d + ibegin, work + ibegin, indl, indu, rtol1, rtol2, indl - 1, w + wbegin,
                wgap + wbegin, werr + wbegin, work + 2 * n, iwork, pivmin, spdiam, in) != 0)
        return -4;
      wgap[wend] = std::max(R(0), (*vu - sigma) - (w[wend] + werr[wend]));
      for (int i = indl; i <= indu; ++i) {
        iblock[mtotal] = jblk;
        indexw[mtotal] = i;
        ++mtotal;
      }
    } else {
      // All eigenvalues of the definite representation by dqds, to high
      // relative accuracy.
      const R rtol = std::log(R(in)) * 4 * epsr;
      R *q = work;
      for (int i = 0; i < in - 1; ++i) {
        const int j = ibegin + i;
        q[2 * i] = std::abs(d[j]);
        q[2 * i + 1] = e[j] * e[j] * q[2 * i];
      }
      q[2 * in - 2] = std::abs(d[iend]);
      q[2 * in - 1] = 0;
      if (lasq2(in, q) != 0) return -5;
      for (int i = 0; i < in; ++i)
        if (q[i] < R(0)) return -6;
      // dqds gives them descending, of |D|: mirror for a negative definite one.
      if (sgndef > R(0)) {
        for (int i = indl; i <= indu; ++i) {
          w[mtotal] = q[in - i];
          iblock[mtotal] = jblk;
          indexw[mtotal] = i;
          ++mtotal;
        }
      } else {
        for (int i = indl; i <= indu; ++i) {
          w[mtotal] = -q[i - 1];
          iblock[mtotal] = jblk;
          indexw[mtotal] = i;
          ++mtotal;
        }
      }
      for (int i = mtotal - mb; i < mtotal; ++i) werr[i] = rtol * std::abs(w[i]);
      for (int i = mtotal - mb; i < mtotal - 1; ++i)
        wgap[i] = std::max(R(0), w[i + 1] - werr[i + 1] - (w[i] + werr[i]));
      wgap[mtotal - 1] = std::max(R(0), (*vu - sigma) - (w[mtotal - 1] + werr[mtotal - 1]));
    }
    ibegin = iend + 1;
    wbegin = wend + 1;
  }
  *m = mtotal;
  return 0;
}

template int laneg<float>(int, const float *, const float *, float, float, int);
template void larrc<float>(int, float, float, const float *, const float *, float, int *, int *,
                           int *);
template int larrk<float>(int, int, float, float, const float *, const float *, float, float,
                          float *, float *);
template void larra<float>(int, const float *, float *, float *, float, float, int *, int *);
template bool larrr<float>(int, const float *, const float *);
template int larrd<float>(Range, bool, int, float, float, int, int, const float *, float,
                          const float *, const float *, const float *, float, int, const int *,
                          int *, float *, float *, float *, float *, int *, int *, float *, int *);
template int larrb<float>(int, const float *, const float *, int, int, float, float, int, float *,
                          float *, float *, float *, int *, float, float, int);
template void larrb_singles<float>(int, const float *, const float *, int, const int *, float,
                                   float, int, float *, float *, float *, float, float, int);
template void larrj<float>(int, const float *, const float *, int, int, float, int, float *,
                           float *, float *, int *, float, float);
template int larre<float>(Range, int, float *, float *, int, int, float *, float *, float *, float,
                          float, float, int *, int *, int *, float *, float *, float *, int *,
                          int *, float *, float *, float *, int *, bool);

}  // namespace orb::lapack::mrrr
