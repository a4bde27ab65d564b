// Divide and conquer for the symmetric tridiagonal eigenproblem (xSTEDC).
//
// Without vectors the root-free QL/QR iteration (sterf) is faster and is
// used. With vectors, small matrices go to the QR iteration (steqr); larger
// ones are split where an off-diagonal element is negligible against its
// neighbours on the diagonal, and each unreduced block of more than a leaf
// is scaled to norm one and solved by the tree of merges (laed0, threaded).
// The eigenvectors of a block reach Z directly (kInitial) or through one
// product with Z's columns of the block (kUpdate; for a complex Z one real
// product over the interleaved parts). The eigenpairs are finally sorted
// ascending, Z's columns swapped with them.
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>

#include "lapack/blas_calls.h"
#include "lapack/copy_scale.h"
#include "lapack/eigen.h"
#include "lapack/laed.h"
#include "lapack/oracle.h"

namespace orb::lapack {

namespace dc {
int stedc_leaf() {
  return std::max(1, oracle(kSubproblem, "SSTEDC"));
}
}  // namespace dc

namespace {

// ceil(log2 n) as the published workspace formulas count it.
std::int64_t log2_up(int n) {
  std::int64_t lgn = static_cast<std::int64_t>(std::log(static_cast<float>(n)) / std::log(2.0f));
  if ((std::int64_t{1} << lgn) < n) ++lgn;
  if ((std::int64_t{1} << lgn) < n) ++lgn;
  return lgn;
}

// The eigenvectors Q (m by m) of the unreduced real block, by the tree when
// it is larger than a leaf; rw: laed0_work(m) reals. Returns the published
// code of the failure, relative to the block.
template <class R>
int block_vectors(int m, R *d, R *e, R *q, int ldq, int leaf, R *rw, int *iwork) {
  if (m > leaf) return dc::laed0(m, d, e, q, ldq, leaf, rw, iwork);
  return steqr<R>(CompQ::kInitial, m, d, e, q, ldq, rw);
}

}  // namespace

template <class T>
StedcWork stedc_worksize(CompQ compz, int n) {
  const int leaf = dc::stedc_leaf();
  const std::int64_t nn = n;
  constexpr bool cplx = is_complex_v<T>;
  if (n <= 1 || compz == CompQ::kNone) return {1, 1, 1};
  if (n <= leaf) return cplx ? StedcWork{1, 2 * (nn - 1), 1} : StedcWork{2 * (nn - 1), 1, 1};
  const std::int64_t lgn = log2_up(n);
  if (compz == CompQ::kUpdate) {
    const std::int64_t big = 1 + 3 * nn + 2 * nn * lgn + 4 * nn * nn;
    const std::int64_t liwork = 6 + 6 * nn + 5 * nn * lgn;
    return cplx ? StedcWork{nn * nn, big, liwork} : StedcWork{big, 1, liwork};
  }
  return cplx ? StedcWork{1, 1 + 4 * nn + 2 * nn * nn, 3 + 5 * nn}
              : StedcWork{1 + 4 * nn + nn * nn, 1, 3 + 5 * nn};
}

template <class T>
int stedc(CompQ compz, int n, real_t<T> *d, real_t<T> *e, T *z, int ldz, T *work, int lwork,
          real_t<T> *rwork, int lrwork, int *iwork, int liwork) {
  using R = real_t<T>;
  (void)lwork, (void)lrwork, (void)liwork;
  // The real workspace: work itself for real T.
  R *rw;
  if constexpr (is_complex_v<T>)
    rw = rwork;
  else
    rw = work;
  auto zat = [&](int i, int j) { return z + i + static_cast<std::ptrdiff_t>(j) * ldz; };

  if (n == 0) return 0;
  if (n == 1) {
    if (compz != CompQ::kNone) z[0] = T(1);
    return 0;
  }
  if (compz == CompQ::kNone) return sterf(n, d, e);
  const int leaf = dc::stedc_leaf();
  if (n <= leaf) return steqr<T>(compz, n, d, e, z, ldz, rw);

  if (compz == CompQ::kInitial) laset(Part::kAll, n, n, T(0), T(1), z, ldz);
  if (dc::max_abs(n, d, e) == 0) return 0;

  const R eps = dc::eps<R>();
  for (int start = 0; start < n;) {
    // The unreduced block start..finish.
    int finish = start;
    while (finish < n - 1) {
      const R tiny = eps * std::sqrt(std::abs(d[finish])) * std::sqrt(std::abs(d[finish + 1]));
      if (!(std::abs(e[finish]) > tiny)) break;
      ++finish;
    }
    const int m = finish - start + 1;
    if (m == 1) {
      start = finish + 1;
      continue;
    }
    R *db = d + start, *eb = e + start;
    R norm = 1;
    if (m > leaf) {
      // The tree works on the block scaled to norm one.
      norm = dc::max_abs(m, db, eb);
      lascl(Part::kAll, norm, R(1), m, 1, db, m);
      lascl(Part::kAll, norm, R(1), m - 1, 1, eb, m - 1);
    }
    int info = 0;
    if (compz == CompQ::kInitial) {
      if constexpr (is_complex_v<T>) {
        // The real vectors built in the real workspace, then copied.
        R *q = rw, *rest = rw + static_cast<std::ptrdiff_t>(m) * m;
        info = block_vectors(m, db, eb, q, m, leaf, rest, iwork);
        for (int j = 0; j < m && info == 0; ++j)
          for (int i = 0; i < m; ++i) *zat(start + i, start + j) = q[i + j * m];
      } else {
        info = block_vectors(m, db, eb, zat(start, start), ldz, leaf, rw, iwork);
      }
    } else if constexpr (is_complex_v<T>) {
      info = dc::laed0_complex(n, m, db, eb, zat(0, start), ldz, leaf, work, rw, iwork);
    } else {
      // Z(:, block) := Z(:, block) Q through the workspace.
      R *q = rw, *rest = rw + static_cast<std::ptrdiff_t>(m) * m;
      info = block_vectors(m, db, eb, q, m, leaf, rest, iwork);
      if (info == 0) {
        gemm<R>(Op::kNone, Op::kNone, n, m, m, R(1), zat(0, start), ldz, q, m, R(0), rest, n);
        lacpy(Part::kAll, n, m, rest, n, zat(0, start), ldz);
      }
    }
    if (info != 0) {
      // The published codes, in the whole problem's rows.
      if (m > leaf) return (info / (m + 1) + start) * (n + 1) + info % (m + 1) + start;
      return (start + 1) * (n + 1) + finish + 1;
    }
    if (m > leaf) lascl(Part::kAll, R(1), norm, m, 1, db, m);
    start = finish + 1;
  }

  // Selection sort of the eigenpairs (few swaps: the blocks are sorted).
  for (int i = 0; i + 1 < n; ++i) {
    int k = i;
    R p = d[i];
    for (int j = i + 1; j < n; ++j)
      if (d[j] < p) k = j, p = d[j];
    if (k != i) {
      d[k] = d[i];
      d[i] = p;
      std::swap_ranges(zat(0, i), zat(0, i) + n, zat(0, k));
    }
  }
  return 0;
}

template int stedc<float>(CompQ, int, float *, float *, float *, int, float *, int, float *, int,
                          int *, int);
template int stedc<c8>(CompQ, int, float *, float *, c8 *, int, c8 *, int, float *, int, int *,
                       int);
template StedcWork stedc_worksize<float>(CompQ, int);
template StedcWork stedc_worksize<c8>(CompQ, int);

}  // namespace orb::lapack
