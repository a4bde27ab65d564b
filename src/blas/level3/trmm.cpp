// trmm_omp: triangular multiplies. Each block of op(A) off the diagonal is a
// GEMM update of B, made while the rows (columns) of B it reads still hold
// their old values. A left-side multiply runs the packed GEMM kernel over
// panels of B's columns: each diagonal block of op(A) packs its rows of the
// panel once, lends them to the other rows and then overwrites them with
// its own triangle, packed in slivers whose part outside the triangle is
// zero. Without work memory, and on the right side, a diagonal block is
// multiplied with the next smaller block size in turn, down to blocks of
// order 16 done element by element. Threads take independent slabs of B:
// columns for a left-side multiply, rows for a right-side one.
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

// Rows i0 .. i0 + rows - 1 of op(A) in one sliver of mr rows of pack_a's
// layout, the columns a diagonal block from column p to column p + kb - 1
// holds of them in its triangle: the rectangle beside the diagonal block
// as pack_a packs it, and the diagonal block with zeros outside the triangle
// and ones on a unit diagonal. Returns the first column packed.
template <class T>
int pack_triangle(const OpA<T> &t, int p, int kb, int i0, int rows, int mr, T *dst) {
  const int q0 = t.upper ? i0 : p, rect0 = t.upper ? i0 + rows : p;
  const int rect = t.upper ? p + kb - rect0 : i0 - p;
  T *tri = dst, *rest = dst + std::int64_t{rows} * mr;
  if (!t.upper) tri = dst + std::int64_t{rect} * mr, rest = dst;
  if (rect > 0) pack_a(t.trans, t.a, t.lda, i0, rect0, rows, rect, mr, rest);
  for (int q = 0; q < rows; ++q) {
    T *d = tri + q * mr;
    for (int i = 0; i < mr; ++i) {
      T x(0);
      if (i < rows && (t.upper ? i <= q : i >= q)) x = i == q && t.unit ? T(1) : t(i0 + i, i0 + q);
      d[i] = x;
    }
  }
  return q0;
}

// Rows p .. p + kb - 1 of the panel c := alpha op(A)(those rows and columns)
// P, P their old values packed in w.b. Each sliver of rows takes the
// columns of the triangle it reaches.
template <class T>
void diagonal_block(const tri::Packed<T> &w, const OpA<T> &t, int p, int kb, int nb, T alpha,
                    bool finite, T *c, int ldc) {
  const kernel::GemmShape<T> &s = w.s;
  const std::int64_t stride = std::int64_t{s.nr} * kb;
  for (int ir = 0; ir < kb; ir += s.mr) {
    const int rows = std::min(s.mr, kb - ir);
    const int q0 = pack_triangle(t, p, kb, p + ir, rows, s.mr, w.a.get()) - p;
    const int q1 = t.upper ? kb : ir + rows;
    tri::multiply_packed(s, rows, nb, q1 - q0, alpha, w.a.get(),
                         w.b.get() + std::int64_t{q0} * s.nr, stride, T(0), c + p + ir, ldc);
  }
  if (finite) return;
  // A zero outside the triangle times an infinity or NaN of B would reach
  // sums that never take it: a column holding one is formed again from the
  // triangle alone.
  for (int j = 0; j < nb; ++j) {
    const T *pj = w.b.get() + j / s.nr * stride + j % s.nr;
    bool ok = true;
    for (int q = 0; q < kb; ++q) ok &= tri::finite(pj[std::int64_t{q} * s.nr]);
    if (ok) continue;
    for (int i = 0; i < kb; ++i) {
      const int q0 = t.upper ? i : 0, q1 = t.upper ? kb : i + 1;
      T sum(0);
      for (int q = q0; q < q1; ++q) {
        const T x = pj[std::int64_t{q} * s.nr];
        sum += q == i && t.unit ? x : t(p + i, p + q) * x;
      }
      c[at(p + i, j, ldc)] = alpha * sum;
    }
  }
}

// B := alpha op(A) B through the packed kernel, panel by panel of B's
// columns: an upper op(A) from the first diagonal block on, a lower one from
// the last. False, with B untouched, without work memory.
template <class T>
bool left_packed(const OpA<T> &t, int m, int n, T alpha, T *b, int ldb) {
  const tri::Packed<T> w(0, n);
  if (!w) return false;
  const kernel::GemmShape<T> &s = w.s;
  const int blocks = (m + s.kc - 1) / s.kc;
  for (int jc = 0; jc < n; jc += s.nc) {
    const int nb = std::min(s.nc, n - jc);
    T *c = b + at(0, jc, ldb);
    for (int step = 0; step < blocks; ++step) {
      const int p = (t.upper ? step : blocks - 1 - step) * s.kc, kb = std::min(s.kc, m - p);
      const bool finite = tri::pack_rows(c + p, ldb, kb, nb, s.nr, kb, w.b.get());
      const int r0 = t.upper ? 0 : p + kb, rn = t.upper ? p : m - p - kb;
      if (rn > 0) tri::update_rows(w, t, r0, rn, p, kb, nb, alpha, T(1), c, ldb);
      diagonal_block(w, t, p, kb, nb, alpha, finite, c, ldb);
    }
  }
  return true;
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

template <class T>
void left_any(const OpA<T> &t, int m, int n, T alpha, T *b, int ldb) {
  if (m <= kSmall)
    left_small(t, m, n, alpha, b, ldb);
  else if (!left_packed(t, m, n, alpha, b, ldb))
    left(t, m, n, alpha, b, ldb);
}

}  // namespace

template <class T>
void trmm_serial(const Triangular &t, int m, int n, T alpha, const T *a, int lda, T *b, int ldb) {
  tri::serial(t, m, n, alpha, a, lda, b, ldb, left_any<T>, right<T>);
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
