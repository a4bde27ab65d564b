// trsm_omp: triangular solves with several right-hand sides. A diagonal
// block of op(A) is solved with the next smaller block size in turn, down to
// blocks of order 16 solved element by element; the rest of the work is a
// GEMM update of the right-hand sides not yet solved. The first update also
// applies alpha to them, so B is never scaled on its own. Threads take
// independent slabs of B: columns for a left-side solve, rows for a
// right-side one.
#include "blas/level3/triangular.h"

namespace orb::blas {
namespace {

using tri::kSmall;
using tri::OpA;

// op(A) X = alpha B with op(A) of order m <= kSmall, row by row of X over a
// few columns at a time (independent operations in the inner loops).
template <class T>
void left_small(const OpA<T> &t, int m, int n, T alpha, T *b, int ldb) {
  T d[kSmall * kSmall];
  tri::copy_small(t, m, d);
  for (int j0 = 0; j0 < n; j0 += tri::kColumns) {
    const int jn = std::min(tri::kColumns, n - j0);
    T *x = b + at(0, j0, ldb);
    for (int s = 0; s < m; ++s) {
      const int i = t.upper ? m - 1 - s : s;
      const int k0 = t.upper ? i + 1 : 0, k1 = t.upper ? m : i;
      if (alpha != T(1))
        for (int j = 0; j < jn; ++j) x[at(i, j, ldb)] *= alpha;
      for (int k = k0; k < k1; ++k) {
        const T dik = d[i + k * kSmall];
        for (int j = 0; j < jn; ++j) x[at(i, j, ldb)] -= dik * x[at(k, j, ldb)];
      }
      if (!t.unit) {
        const T dii = d[i + i * kSmall];
        for (int j = 0; j < jn; ++j) x[at(i, j, ldb)] /= dii;
      }
    }
  }
}

// X op(A) = alpha B with op(A) of order n <= kSmall, column by column of X.
template <class T>
void right_small(const OpA<T> &t, int m, int n, T alpha, T *b, int ldb) {
  T d[kSmall * kSmall];
  tri::copy_small(t, n, d);
  for (int s = 0; s < n; ++s) {
    const int j = t.upper ? s : n - 1 - s;
    const int k0 = t.upper ? 0 : j + 1, k1 = t.upper ? j : n;
    T *xj = b + at(0, j, ldb);
    if (alpha != T(1))
      for (int i = 0; i < m; ++i) xj[i] *= alpha;
    for (int k = k0; k < k1; ++k) {
      const T dkj = d[k + j * kSmall];
      const T *xk = b + at(0, k, ldb);
      for (int i = 0; i < m; ++i) xj[i] -= dkj * xk[i];
    }
    if (!t.unit) {
      const T r = T(1) / d[j + j * kSmall];
      for (int i = 0; i < m; ++i) xj[i] *= r;
    }
  }
}

// op(A) X = alpha B: op(A) lower is solved from the first block on, each
// step updating the rows below; upper from the last block, updating the rows
// above.
template <class T>
void left(const OpA<T> &t, int m, int n, T alpha, T *b, int ldb) {
  if (m <= kSmall) {
    left_small(t, m, n, alpha, b, ldb);
    return;
  }
  const int nb = tri::block_for(m), blocks = (m + nb - 1) / nb;
  for (int s = 0; s < blocks; ++s) {
    const int p = (t.upper ? blocks - 1 - s : s) * nb, pb = std::min(nb, m - p);
    const T scale = s == 0 ? alpha : T(1);
    left(t.diagonal(p), pb, n, scale, b + p, ldb);
    const int r = t.upper ? 0 : p + pb, rn = t.upper ? p : m - p - pb;
    if (rn > 0)
      gemm_here(t.trans, 0, rn, n, pb, T(-1), t.block(r, p), t.lda, b + p, ldb, scale, b + r, ldb);
  }
}

// X op(A) = alpha B: op(A) upper is solved from the first block of columns
// on, each step updating the columns to the right; lower from the last.
template <class T>
void right(const OpA<T> &t, int m, int n, T alpha, T *b, int ldb) {
  if (n <= kSmall) {
    right_small(t, m, n, alpha, b, ldb);
    return;
  }
  const int nb = tri::block_for(n), blocks = (n + nb - 1) / nb;
  for (int s = 0; s < blocks; ++s) {
    const int p = (t.upper ? s : blocks - 1 - s) * nb, pb = std::min(nb, n - p);
    const T scale = s == 0 ? alpha : T(1);
    T *bp = b + at(0, p, ldb);
    right(t.diagonal(p), m, pb, scale, bp, ldb);
    const int r = t.upper ? p + pb : 0, rn = t.upper ? n - p - pb : p;
    if (rn > 0)
      gemm_here(0, t.trans, m, rn, pb, T(-1), bp, ldb, t.block(p, r), t.lda, scale,
                b + at(0, r, ldb), ldb);
  }
}

}  // namespace

template <class T>
void trsm_serial(const Triangular &t, int m, int n, T alpha, const T *a, int lda, T *b, int ldb) {
  if (m <= 0 || n <= 0) return;
  if (alpha == T(0)) {  // A and B are not read
    tri::zero(m, n, b, ldb);
    return;
  }
  const OpA<T> op = tri::op_of(t, a, lda);
  if (t.left)
    left(op, m, n, alpha, b, ldb);
  else
    right(op, m, n, alpha, b, ldb);
}

template <class T>
void trsm_omp(const Triangular &t, int m, int n, T alpha, const T *a, int lda, T *b, int ldb) {
  if (m <= 0 || n <= 0) return;
  const int order = t.left ? m : n, others = t.left ? n : m;
  const double work = 0.5 * order * order * others * madd_cost<T>();
  const int nt = level3_team(work, others / (2 * tri::kGrain));
  if (nt < 2) {
    trsm_serial(t, m, n, alpha, a, lda, b, ldb);
    return;
  }
  for_slabs(nt, others, tri::kGrain, 0, [&](int first, int count) {
    if (t.left)
      trsm_serial(t, m, count, alpha, a, lda, b + at(0, first, ldb), ldb);
    else
      trsm_serial(t, count, n, alpha, a, lda, b + first, ldb);
  });
}

#define ORB_TRSM(T)                                                                        \
  template void trsm_serial<T>(const Triangular &, int, int, T, const T *, int, T *, int); \
  template void trsm_omp<T>(const Triangular &, int, int, T, const T *, int, T *, int);
ORB_TRSM(float)
ORB_TRSM(double)
ORB_TRSM(c8)
ORB_TRSM(c16)
#undef ORB_TRSM

}  // namespace orb::blas
