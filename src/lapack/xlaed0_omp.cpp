// xlaed0_omp: the tree of the real tridiagonal divide and conquer (xLAED0,
// eigenvectors of the tridiagonal itself).
//
// The tridiagonal is torn into halves, quarters, ... until the pieces have
// at most `leaf` rows: each tear subtracts |e| from the two diagonal
// elements beside it, so that the whole is the block diagonal of the
// pieces plus a rank-one term. The leaves are solved by the QR iteration
// (steqr; one or two rows in closed form) and the pieces merged pairwise,
// level by level, with laed1.
//
// The leaves, and the merges of one level, touch disjoint rows and columns
// of Q, disjoint parts of d and of the index array, and each gets its own
// slice of the workspace: they are shared out over a team when the order
// reaches the oracle's crossover, each computed on one thread exactly as
// alone (its products through the BLAS on the calling thread). The top
// merge, alone on its level, runs its roots and its products over the
// library's team instead. Which code runs depends on the sizes only, so the
// result is the same to the bit for any team.
#include <omp.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "lapack/auxiliary.h"
#include "lapack/copy_scale.h"
#include "lapack/eigen.h"
#include "lapack/laed.h"
#include "lapack/oracle.h"
#include "service/threading.h"

namespace orb::lapack::dc {
namespace {

// A leaf: Q (m by m, at ldq) := the eigenvectors of (d, e), d ascending.
// work: 2m - 2 reals.
template <class R>
int solve_leaf(int m, R *d, R *e, R *q, int ldq, R *work) {
  if (m == 1) {
    q[0] = 1;
    return 0;
  }
  if (m == 2) {
    R rt1, rt2, cs, sn;
    laev2(d[0], e[0], d[1], &rt1, &rt2, &cs, &sn);
    // (cs, sn) belongs to rt1, (-sn, cs) to rt2; ascending order.
    const bool swap = rt1 > rt2;
    d[0] = swap ? rt2 : rt1;
    d[1] = swap ? rt1 : rt2;
    R *lo = swap ? q + ldq : q, *hi = swap ? q : q + ldq;
    lo[0] = cs, lo[1] = sn;
    hi[0] = -sn, hi[1] = cs;
    e[0] = 0;
    return 0;
  }
  return steqr<R>(CompQ::kInitial, m, d, e, q, ldq, work);
}

// The team for the independent subproblems of a level: the library's, when
// the problem is large enough and not already inside a parallel region.
int level_team(int n) {
  if (omp_in_parallel()) return 1;
  if (n < oracle(kCrossover, "SSTEDC")) return 1;
  return std::max(1, threads::max_threads());
}

}  // namespace

template <class R>
int laed0(int n, R *d, R *e, R *q, int ldq, int leaf, R *work, int *iwork) {
  if (n == 0) return 0;
  leaf = std::max(leaf, 1);
  auto Q = [&](int i, int j) { return q + (i - 1) + static_cast<std::ptrdiff_t>(j - 1) * ldq; };

  // The pieces: each split in two (the smaller half first) until the
  // largest has at most `leaf` rows, or the smallest one row; bounds holds
  // their ends, 1-based.
  std::vector<int> bounds{n};
  while (bounds.back() > leaf && bounds.front() > 1) {
    std::vector<int> halves(2 * bounds.size());
    for (std::size_t j = 0; j < bounds.size(); ++j) {
      halves[2 * j] = bounds[j] / 2;
      halves[2 * j + 1] = (bounds[j] + 1) / 2;
    }
    bounds.swap(halves);
  }
  const int pieces = static_cast<int>(bounds.size());
  for (int j = 1; j < pieces; ++j) bounds[j] += bounds[j - 1];

  // The merges rotate whole columns of their block: the parts outside the
  // leaves' blocks must be zero.
  laset(Part::kAll, n, n, R(0), R(0), q, ldq);

  // Tear: the rank-one terms are taken out of the diagonal.
  for (int i = 0; i + 1 < pieces; ++i) {
    const int cut = bounds[i];  // the last row of piece i, 1-based
    d[cut - 1] -= std::abs(e[cut - 1]);
    d[cut] -= std::abs(e[cut - 1]);
  }

  int *indxq = iwork + 4 * static_cast<std::ptrdiff_t>(n);
  const bool threaded = omp_get_level() == 0;  // the top merge's products
  const int team = level_team(n);
  auto work_of = [&](int first) { return work + static_cast<std::ptrdiff_t>(first - 1) * (n + 4); };

  // Each leaf, and each merge of a level, on its own; a loop without a
  // team opens no parallel region, so that the top merge's products, at the
  // outermost level, take the library's pooled team (inside even an
  // inactive region the runtime would start fresh threads for them on every
  // call).
  auto each = [](int count, int threads, auto &&body) {
    if (threads > 1) {
#pragma omp parallel for num_threads(threads) schedule(dynamic, 1)
      for (int i = 0; i < count; ++i) body(i);
    } else {
      for (int i = 0; i < count; ++i) body(i);
    }
  };

  // The leaves.
  int failed = 0;  // first row of a failed subproblem (its order in failed_size)
  int failed_size = 0;
  each(pieces, team, [&](int i) {
    const int first = i == 0 ? 1 : bounds[i - 1] + 1, m = bounds[i] - first + 1;
    const int info =
        solve_leaf(m, d + first - 1, e + first - 1, Q(first, first), ldq, work_of(first));
    for (int j = 0; j < m; ++j) indxq[first - 1 + j] = j + 1;
    if (info != 0) {
#pragma omp critical(orb_laed0_fail)
      if (failed == 0 || first < failed) failed = first, failed_size = m;
    }
  });

  // The merges, level by level.
  for (int count = pieces; count > 1 && failed == 0; count /= 2) {
    const int pairs = count / 2;
    const int level_threads = pairs > 1 ? team : 1;
    each(pairs, level_threads, [&](int p) {
      const int i = 2 * p;
      const int first = i == 0 ? 1 : bounds[i - 1] + 1;
      const int m = bounds[i + 1] - first + 1;
      const int half = bounds[i] - first + 1;
      const int info =
          laed1(m, d + first - 1, Q(first, first), ldq, indxq + first - 1, e[first + half - 2],
                half, work_of(first), iwork + 4 * static_cast<std::ptrdiff_t>(first - 1),
                pairs == 1 && threaded);
      if (info != 0) {
#pragma omp critical(orb_laed0_fail)
        if (failed == 0 || first < failed) failed = first, failed_size = m;
      }
    });
    for (int p = 0; p < pairs; ++p) bounds[p] = bounds[2 * p + 1];
  }
  if (failed != 0) return failed * (n + 1) + failed + failed_size - 1;

  // Sort the eigenpairs by indxq.
  R *dsorted = work, *qsorted = work + n;
  for (int i = 1; i <= n; ++i) {
    const int j = indxq[i - 1];
    dsorted[i - 1] = d[j - 1];
    std::copy_n(Q(1, j), n, qsorted + static_cast<std::ptrdiff_t>(i - 1) * n);
  }
  std::copy_n(dsorted, n, d);
  lacpy(Part::kAll, n, n, qsorted, n, q, ldq);
  return 0;
}

template int laed0<float>(int, float *, float *, float *, int, int, float *, int *);

}  // namespace orb::lapack::dc
