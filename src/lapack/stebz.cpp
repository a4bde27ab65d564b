// Bisection on the symmetric tridiagonal (eigen.h, stebz): the matrix is
// split where an off-diagonal is negligible, each block's eigenvalues are
// bracketed by its Gershgorin interval, and a set of intervals, each with
// the Sturm counts at its ends, is halved until every interval is small
// or holds no eigenvalue; an interval whose midpoint count lies strictly
// between its end counts splits in two.
//
// The Sturm counts of all the active intervals are computed together, one
// row of the matrix at a time for all the shifts, which the compiler turns
// into vector operations; each count follows the same operations as one
// computed alone.
#include <algorithm>
#include <cmath>
#include <limits>

#include "lapack/eigen.h"

namespace orb::lapack {
namespace {

constexpr double kFudge = 2.3;   // widening of the Gershgorin intervals, in ulps and pivmins
constexpr double kRelFac = 2.0;  // relative tolerance, in ulps

// The bracketing intervals: [lo(k), hi(k)] with the counts nlo(k), nhi(k)
// of eigenvalues below each end, and mid(k) the next shift. Intervals
// 0 .. done - 1 have converged, done .. count - 1 are active.
template <class R>
struct Intervals {
  R *lo, *hi, *mid;
  int *nlo, *nhi;
  int *target;  // for a search of given indices: the count each interval homes in on
  int capacity, done, count;

  void swap(int a, int b) {
    std::swap(lo[a], lo[b]);
    std::swap(hi[a], hi[b]);
    std::swap(nlo[a], nlo[b]);
    std::swap(nhi[a], nhi[b]);
    if (target) std::swap(target[a], target[b]);
  }
};

// The tridiagonal as bisection sees it: d and the squared off-diagonals,
// with pivmin the smallest pivot allowed in the Sturm sequence.
template <class R>
struct Sturm {
  int n;
  const R *d, *e2;
  R pivmin;

  // The number of eigenvalues below x as the initial counts take it.
  int initial_count(R x) const {
    R t = d[0] - x;
    if (std::abs(t) < pivmin) t = -pivmin;
    int c = t <= R(0) ? 1 : 0;
    for (int j = 1; j < n; ++j) {
      t = d[j] - e2[j - 1] / t - x;
      if (std::abs(t) < pivmin) t = -pivmin;
      if (t <= R(0)) ++c;
    }
    return c;
  }

  // The counts at the shifts x(0 .. k-1) into cnt, with t as scratch.
  void counts(int k, const R *x, R *t, int *cnt) const {
    for (int i = 0; i < k; ++i) {
      t[i] = d[0] - x[i];
      cnt[i] = 0;
      if (t[i] <= pivmin) {
        cnt[i] = 1;
        t[i] = std::min(t[i], -pivmin);
      }
    }
    for (int j = 1; j < n; ++j) {
      const R dj = d[j], ej = e2[j - 1];
      for (int i = 0; i < k; ++i) {
        R v = dj - ej / t[i] - x[i];
        const bool neg = v <= pivmin;
        cnt[i] += neg ? 1 : 0;
        t[i] = neg ? std::min(v, -pivmin) : v;
      }
    }
  }
};

// Halves the active intervals up to `maxit` times (xLAEBZ, jobs 2 and 3):
// with targets, each keeps the half whose counts bracket its target; else
// each splits where its midpoint count is strictly inside. Returns the
// number of intervals still active at the end, or capacity + 1 when the
// intervals would not fit.
template <class R>
int refine(const Sturm<R> &s, Intervals<R> &iv, int maxit, R abstol, R reltol, R *t, int *cnt) {
  for (int it = 0; it < maxit && iv.done < iv.count; ++it) {
    const int first = iv.done, last = iv.count;
    s.counts(last - first, iv.mid + first, t, cnt);
    int fresh = last;
    for (int k = first; k < last; ++k) {
      const int c = cnt[k - first];
      const R x = iv.mid[k];
      if (iv.target) {
        if (c <= iv.target[k]) {
          iv.lo[k] = x;
          iv.nlo[k] = c;
        }
        if (c >= iv.target[k]) {
          iv.hi[k] = x;
          iv.nhi[k] = c;
        }
        continue;
      }
      const int cc = std::min(iv.nhi[k], std::max(iv.nlo[k], c));
      if (cc == iv.nhi[k]) {
        iv.hi[k] = x;
      } else if (cc == iv.nlo[k]) {
        iv.lo[k] = x;
      } else if (fresh < iv.capacity) {  // eigenvalues on both sides: split
        iv.lo[fresh] = x;
        iv.nlo[fresh] = cc;
        iv.hi[fresh] = iv.hi[k];
        iv.nhi[fresh] = iv.nhi[k];
        ++fresh;
        iv.hi[k] = x;
        iv.nhi[k] = cc;
      } else {
        return iv.capacity + 1;
      }
    }
    iv.count = fresh;
    // The converged intervals move to the front.
    for (int k = iv.done; k < iv.count; ++k) {
      const R width = std::abs(iv.hi[k] - iv.lo[k]);
      const R size = std::max(std::abs(iv.hi[k]), std::abs(iv.lo[k]));
      if (width < std::max(std::max(abstol, s.pivmin), reltol * size) || iv.nlo[k] >= iv.nhi[k]) {
        if (k > iv.done) iv.swap(k, iv.done);
        ++iv.done;
      }
    }
    for (int k = iv.done; k < iv.count; ++k) iv.mid[k] = R(0.5) * (iv.lo[k] + iv.hi[k]);
  }
  return std::max(iv.count - iv.done, 0);
}

// Keeps the entries of w, iblock whose iblock is not zero, in order.
template <class R>
int compact(int m, R *w, int *iblock) {
  int k = 0;
  for (int j = 0; j < m; ++j)
    if (iblock[j] != 0) {
      w[k] = w[j];
      iblock[k] = iblock[j];
      ++k;
    }
  return k;
}

}  // namespace

template <class R>
int stebz(Range range, bool by_block, int n, R vl, R vu, int il, int iu, R abstol, const R *d,
          const R *e, int *m, int *nsplit, R *w, int *iblock, int *isplit, R *work, int *iwork) {
  *m = 0;
  if (n == 0) return 0;
  if (range == Range::kIndices && il == 1 && iu == n) range = Range::kAll;
  const R safemn = std::numeric_limits<R>::min();
  const R ulp = std::numeric_limits<R>::epsilon();
  const R rtoli = ulp * R(kRelFac);
  const R fudge = R(kFudge);

  if (n == 1) {
    *nsplit = 1;
    isplit[0] = 1;
    if (range == Range::kValues && (vl >= d[0] || vu < d[0])) return 0;
    w[0] = d[0];
    iblock[0] = 1;
    *m = 1;
    return 0;
  }

  // The splitting: e2 (work[0 .. n-2]) the squares of the off-diagonals
  // kept, zero where the matrix splits; pivmin from the largest of them.
  R *e2 = work;
  int ns = 0;
  e2[n - 1] = 0;
  R pivmin = 1;
  for (int j = 1; j < n; ++j) {
    const R tmp = e[j - 1] * e[j - 1];
    if (std::abs(d[j] * d[j - 1]) * (ulp * ulp) + safemn > tmp) {
      isplit[ns++] = j;
      e2[j - 1] = 0;
    } else {
      e2[j - 1] = tmp;
      pivmin = std::max(pivmin, tmp);
    }
  }
  isplit[ns++] = n;
  *nsplit = ns;
  pivmin *= safemn;

  R wl = 0, wu = 0, wlu = 0, wul = 0;
  int nwl = 0, nwu = 0;
  if (range == Range::kIndices) {
    // The interval (wl, wu] holding eigenvalues il .. iu of the whole
    // matrix, found by bisection on the counts il - 1 and iu from the
    // Gershgorin interval.
    R gu = d[0], gl = d[0], prev = 0;
    for (int j = 0; j < n - 1; ++j) {
      const R off = std::sqrt(e2[j]);
      gu = std::max(gu, d[j] + prev + off);
      gl = std::min(gl, d[j] - prev - off);
      prev = off;
    }
    gu = std::max(gu, d[n - 1] + prev);
    gl = std::min(gl, d[n - 1] - prev);
    const R tnorm = std::max(std::abs(gl), std::abs(gu));
    gl = gl - fudge * tnorm * ulp * R(n) - fudge * R(2) * pivmin;
    gu = gu + fudge * tnorm * ulp * R(n) + fudge * pivmin;
    const int itmax =
        static_cast<int>((std::log(tnorm + pivmin) - std::log(pivmin)) / std::log(R(2))) + 2;
    const R atoli = abstol <= R(0) ? ulp * tnorm : abstol;

    R lo[2] = {gl, gl}, hi[2] = {gu, gu}, mid[2] = {gl, gu};
    int nlo[2] = {-1, -1}, nhi[2] = {n + 1, n + 1}, target[2] = {il - 1, iu};
    Intervals<R> iv{lo, hi, mid, nlo, nhi, target, 2, 0, 2};
    const Sturm<R> s{n, d, e2, pivmin};
    refine(s, iv, itmax, atoli, rtoli, w, iblock);
    // The intervals may have changed places as they converged.
    const int a = target[1] == iu ? 0 : 1, b = 1 - a;
    wl = lo[a];
    wlu = hi[a];
    nwl = nlo[a];
    wu = hi[b];
    wul = lo[b];
    nwu = nhi[b];
    if (nwl < 0 || nwl >= n || nwu < 1 || nwu > n) return 4;
  } else if (range == Range::kValues) {
    wl = vl;
    wu = vu;
  }

  // Each block's eigenvalues in (wl, wu] (all of them for kAll): the counts
  // at the ends of its Gershgorin interval cut to (wl, wu], then bisection.
  bool unconverged = false;
  // The counts below wl and wu, block by block.
  nwl = 0;
  nwu = 0;
  int found = 0, end = 0;
  for (int jb = 0; jb < ns; ++jb) {
    const int begin = end;
    end = isplit[jb];
    const int len = end - begin;
    if (len == 1) {
      const R x = d[begin] - pivmin;
      if (range == Range::kAll || wl >= x) ++nwl;
      if (range == Range::kAll || wu >= x) ++nwu;
      if (range == Range::kAll || (wl < x && wu >= x)) {
        w[found] = d[begin];
        iblock[found] = jb + 1;
        ++found;
      }
      continue;
    }
    R gu = d[begin], gl = d[begin], prev = 0;
    for (int j = begin; j < end - 1; ++j) {
      const R off = std::abs(e[j]);
      gu = std::max(gu, d[j] + prev + off);
      gl = std::min(gl, d[j] - prev - off);
      prev = off;
    }
    gu = std::max(gu, d[end - 1] + prev);
    gl = std::min(gl, d[end - 1] - prev);
    const R bnorm = std::max(std::abs(gl), std::abs(gu));
    gl = gl - fudge * bnorm * ulp * R(len) - fudge * pivmin;
    gu = gu + fudge * bnorm * ulp * R(len) + fudge * pivmin;
    const R atol = abstol <= R(0) ? ulp * std::max(std::abs(gl), std::abs(gu)) : abstol;
    if (range != Range::kAll) {
      if (gu <= wl) {
        nwl += len;
        nwu += len;
        continue;
      }
      gl = std::max(gl, wl);
      gu = std::min(gu, wu);
      if (gl >= gu) continue;
    }
    // Up to len intervals: lo, hi and mid in work after e2, the counts in
    // iwork; w and iblock past the eigenvalues found so far are scratch.
    const Sturm<R> s{len, d + begin, e2 + begin, pivmin};
    Intervals<R> iv{
        work + n, work + n + len, work + n + 2 * len, iwork, iwork + len, nullptr, len, 0, 1};
    iv.lo[0] = gl;
    iv.hi[0] = gu;
    iv.nlo[0] = s.initial_count(gl);
    iv.nhi[0] = s.initial_count(gu);
    const int im = iv.nhi[0] - iv.nlo[0];
    nwl += iv.nlo[0];
    nwu += iv.nhi[0];
    const int offset = found - iv.nlo[0];
    iv.mid[0] = R(0.5) * (gl + gu);
    const int itmax =
        static_cast<int>((std::log(gu - gl + pivmin) - std::log(pivmin)) / std::log(R(2))) + 2;
    const int left = refine(s, iv, itmax, atol, rtoli, w + found, iblock + found);
    // Every interval gives its midpoint to the eigenvalues it counts; those
    // still active at the end are reported unconverged (negative block).
    for (int k = 0; k < iv.count; ++k) {
      const R mid = R(0.5) * (iv.lo[k] + iv.hi[k]);
      const bool bad = k >= iv.count - left;
      if (bad) unconverged = true;
      for (int je = iv.nlo[k] + offset; je < iv.nhi[k] + offset; ++je) {
        w[je] = mid;
        iblock[je] = bad ? -(jb + 1) : jb + 1;
      }
    }
    found += im;
  }

  bool toofew = false;
  if (range == Range::kIndices) {
    // Too many may have been found where eigenvalues are equal to working
    // precision at wl or wu: drop the surplus, first those at the ends of
    // the interval, then the smallest (largest) of the rest.
    int discl = il - 1 - nwl, discu = nwu - iu;
    if (discl > 0 || discu > 0) {
      int k = 0;
      for (int j = 0; j < found; ++j) {
        if (w[j] <= wlu && discl > 0) {
          --discl;
        } else if (w[j] >= wul && discu > 0) {
          --discu;
        } else {
          w[k] = w[j];
          iblock[k] = iblock[j];
          ++k;
        }
      }
      found = k;
    }
    if (discl > 0 || discu > 0) {
      for (int r = 0; r < discl; ++r) {
        int iw = -1;
        R wkill = wu;
        for (int j = 0; j < found; ++j)
          if (iblock[j] != 0 && (w[j] < wkill || iw < 0)) {
            iw = j;
            wkill = w[j];
          }
        if (iw >= 0) iblock[iw] = 0;
      }
      for (int r = 0; r < discu; ++r) {
        int iw = -1;
        R wkill = wl;
        for (int j = 0; j < found; ++j)
          if (iblock[j] != 0 && (w[j] > wkill || iw < 0)) {
            iw = j;
            wkill = w[j];
          }
        if (iw >= 0) iblock[iw] = 0;
      }
      found = compact(found, w, iblock);
    }
    if (discl < 0 || discu < 0) toofew = true;
  }

  // Ascending order over all blocks, by selection (stable for the blocks'
  // own order where values tie).
  if (!by_block && ns > 1) {
    for (int j = 0; j < found - 1; ++j) {
      int ie = -1;
      R v = w[j];
      for (int k = j + 1; k < found; ++k)
        if (w[k] < v) {
          ie = k;
          v = w[k];
        }
      if (ie >= 0) {
        const int b = iblock[ie];
        w[ie] = w[j];
        iblock[ie] = iblock[j];
        w[j] = v;
        iblock[j] = b;
      }
    }
  }
  *m = found;
  return (unconverged ? 1 : 0) + (toofew ? 2 : 0);
}

template int stebz(Range, bool, int, float, float, int, int, float, const float *, const float *,
                   int *, int *, float *, int *, int *, float *, int *);
template int stebz(Range, bool, int, double, double, int, int, double, const double *,
                   const double *, int *, int *, double *, int *, int *, double *, int *);

}  // namespace orb::lapack
