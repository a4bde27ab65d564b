// trmm_omp: triangular multiplies. Each block of op(A) off the diagonal is a
// GEMM update of B, made while the rows (columns) of B it reads still hold
// their old values; a diagonal block is multiplied with the next smaller
// block size in turn, down to blocks of order 16 done element by element.
// Threads take independent slabs of B: columns for a left-side multiply,
// rows for a right-side one.
#include "blas/level3/triangular.h"

namespace orb::blas {
namespace {

using tri::kSmall;
using tri::OpA;

// B := alpha op(A) B with op(A) of order m <= kSmall, in place, row by row
// over kColumns columns at a time copied to a local block (see
// tri::gather_rows): an upper op(A) from the first row on, a lower one from
// the last.
template <class T>
void left_small(const OpA<T> &t, int m, int n, T alpha, T *b, int ldb) {
  constexpr int kc = tri::kColumns;
  T d[kSmall * kSmall];
  alignas(64) T x[kSmall * kc];
  tri::copy_small(t, m, d);
  for (int j0 = 0; j0 < n; j0 += kc) {
    const int jn = std::min(kc, n - j0);
    tri::gather_rows(m, jn, b + at(0, j0, ldb), ldb, x);
    for (int s = 0; s < m; ++s) {
      const int i = t.upper ? s : m - 1 - s;
      const int k0 = t.upper ? i + 1 : 0, k1 = t.upper ? m : i;
      T *xi = x + i * kc;
      const T dii = t.unit ? alpha : alpha * d[i + i * kSmall];
      if (dii != T(1))
        for (int j = 0; j < jn; ++j) xi[j] *= dii;
      for (int k = k0; k < k1; ++k) {
        const T dik = alpha * d[i + k * kSmall];
        const T *xk = x + k * kc;
        for (int j = 0; j < jn; ++j) xi[j] += dik * xk[j];
      }
    }
    tri::scatter_rows(m, jn, x, b + at(0, j0, ldb), ldb);
  }
}

// B := alpha B op(A) with op(A) of order n <= kSmall, column by column: an
// upper op(A) from the last column on, a lower one from the first.
template <class T>
void right_small(const OpA<T> &t, int m, int n, T alpha, T *b, int ldb) {
  T d[kSmall * kSmall];
  tri::copy_small(t, n, d);
  for (int s = 0; s < n; ++s) {
    const int j = t.upper ? n - 1 - s : s;
    const int k0 = t.upper ? 0 : j + 1, k1 = t.upper ? j : n;
    T *xj = b + at(0, j, ldb);
    const T djj = t.unit ? alpha : alpha * d[j + j * kSmall];
    if (djj != T(1))
      for (int i = 0; i < m; ++i) xj[i] *= djj;
    for (int k = k0; k < k1; ++k) {
      const T dkj = alpha * d[k + j * kSmall];
      const T *xk = b + at(0, k, ldb);
      for (int i = 0; i < m; ++i) xj[i] += dkj * xk[i];
    }
  }
}

// B := alpha op(A) B: an upper op(A) from the first block on, each block of
// rows of B first lending its old values to the rows above; a lower one from
// the last block, lending to the rows below.
template <class T>
void left(const OpA<T> &t, int m, int n, T alpha, T *b, int ldb) {
  if (m <= kSmall) {
    left_small(t, m, n, alpha, b, ldb);
    return;
  }
  const int nb = tri::block_for(m), blocks = (m + nb - 1) / nb;
  for (int s = 0; s < blocks; ++s) {
    const int p = (t.upper ? s : blocks - 1 - s) * nb, pb = std::min(nb, m - p);
    const int r = t.upper ? 0 : p + pb, rn = t.upper ? p : m - p - pb;
    if (rn > 0)
      gemm_here(t.trans, Op::kNone, rn, n, pb, alpha, t.block(r, p), t.lda, b + p, ldb, T(1), b + r,
                ldb);
    left(t.diagonal(p), pb, n, alpha, b + p, ldb);
  }
}

// B := alpha B op(A): an upper op(A) from the last block of columns on, each
// lending its old values to the columns to the right; a lower one from the
// first, lending to the columns to the left.
template <class T>
void right(const OpA<T> &t, int m, int n, T alpha, T *b, int ldb) {
  if (n <= kSmall) {
    right_small(t, m, n, alpha, b, ldb);
    return;
  }
  const int nb = tri::block_for(n), blocks = (n + nb - 1) / nb;
  for (int s = 0; s < blocks; ++s) {
    const int p = (t.upper ? blocks - 1 - s : s) * nb, pb = std::min(nb, n - p);
    const int r = t.upper ? p + pb : 0, rn = t.upper ? n - p - pb : p;
    T *bp = b + at(0, p, ldb);
    if (rn > 0)
      gemm_here(Op::kNone, t.trans, m, rn, pb, alpha, bp, ldb, t.block(p, r), t.lda, T(1),
                b + at(0, r, ldb), ldb);
    right(t.diagonal(p), m, pb, alpha, bp, ldb);
  }
}

}  // namespace

template <class T>
void trmm_serial(const Triangular &t, int m, int n, T alpha, const T *a, int lda, T *b, int ldb) {
  tri::serial(t, m, n, alpha, a, lda, b, ldb, left<T>, right<T>);
}

template <class T>
void trmm_omp(const Triangular &t, int m, int n, T alpha, const T *a, int lda, T *b, int ldb) {
  tri::by_slabs(t, m, n, b, ldb,
                [&](int ms, int ns, T *bs) { trmm_serial(t, ms, ns, alpha, a, lda, bs, ldb); });
}

#define ORB_TRMM(T)                                                                        \
  template void trmm_serial<T>(const Triangular &, int, int, T, const T *, int, T *, int); \
  template void trmm_omp<T>(const Triangular &, int, int, T, const T *, int, T *, int);
ORB_TRMM(float)
ORB_TRMM(double)
ORB_TRMM(c8)
ORB_TRMM(c16)
#undef ORB_TRMM

}  // namespace orb::blas
