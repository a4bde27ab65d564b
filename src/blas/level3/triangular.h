// What the triangular multiply and solve share: op(A) seen as an upper or
// lower triangular matrix, its blocks as GEMM operands, the ladder of block
// sizes and the dense copy of a small diagonal block.
#pragma once

#include <algorithm>
#include <cstdint>

#include "blas/level3/level3_common.h"

namespace orb::blas::tri {

// Diagonal blocks of at most this order are handled element by element.
constexpr int kSmall = 16;

// The block size for a triangle of order m > kSmall: its diagonal blocks are
// treated again with the next smaller size, down to kSmall.
inline int block_for(int m) {
  return m > 256 ? 256 : m > 64 ? 64 : kSmall;
}

// Columns of B a small left-side block works through at a time.
constexpr int kColumns = 64;

// Rows (left side) or columns (right side) of B per thread come in multiples
// of this, and a thread gets at least two of them.
constexpr int kGrain = 16;

// op(A) of a stored triangle.
template <class T>
struct OpA {
  const T *a;
  int lda;
  Op trans;
  bool upper;  // op(A) is upper triangular
  bool unit;

  // op(A)(i, j), for (i, j) inside the triangle.
  T operator()(int i, int j) const {
    if (trans == Op::kNone) return a[at(i, j, lda)];
    const T x = a[at(j, i, lda)];
    return trans == Op::kConjTrans ? conj(x) : x;
  }
  // op(A)(i0.., j0..) as a GEMM operand with transpose code `trans`.
  const T *block(int i0, int j0) const {
    return trans == Op::kNone ? a + at(i0, j0, lda) : a + at(j0, i0, lda);
  }
  // The diagonal block starting at (p, p).
  OpA diagonal(int p) const {
    OpA d = *this;
    d.a = a + at(p, p, lda);
    return d;
  }
};

template <class T>
OpA<T> op_of(const Triangular &t, const T *a, int lda) {
  return OpA<T>{a, lda, t.trans, t.upper != (t.trans != Op::kNone), t.unit};
}

// op(A) of a diagonal block of order m <= kSmall, copied densely (column
// major, leading dimension kSmall); only the triangle is filled, and the
// diagonal only when it is read.
template <class T>
void copy_small(const OpA<T> &t, int m, T *d, int ld = kSmall) {
  for (int j = 0; j < m; ++j) {
    const int i0 = t.upper ? 0 : j + 1, i1 = t.upper ? j : m;
    for (int i = i0; i < i1; ++i) d[i + j * ld] = t(i, j);
    if (!t.unit) d[j + j * ld] = t(j, j);
  }
}

// The rows of an m-by-n block of B (n <= kColumns) as contiguous vectors:
// B(i, j) to v[i * kColumns + j], the lanes from n on set to zero; and back.
// A small diagonal block works on rows of B across its columns, which lie
// ldb apart, often a multiple of the page size, and would share cache sets.
template <class T>
void gather_rows(int m, int n, const T *b, int ldb, T *v) {
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) v[i * kColumns + j] = b[at(i, j, ldb)];
  for (int i = 0; n < kColumns && i < m; ++i)
    std::fill(v + i * kColumns + n, v + (i + 1) * kColumns, T(0));
}

template <class T>
void scatter_rows(int m, int n, const T *v, T *b, int ldb) {
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) b[at(i, j, ldb)] = v[i * kColumns + j];
}

// B := 0 over an m-by-n block, without reading it.
template <class T>
void zero(int m, int n, T *b, int ldb) {
  for (int j = 0; j < n; ++j) std::fill(b + at(0, j, ldb), b + at(0, j, ldb) + m, T(0));
}

// Settles the cases that need no triangle: an empty B, or alpha zero, which
// sets B to zero without reading A or B. Returns true when nothing is left.
template <class T>
bool settled(int m, int n, T alpha, T *b, int ldb) {
  if (m <= 0 || n <= 0) return true;
  if (alpha != T(0)) return false;
  zero(m, n, b, ldb);
  return true;
}

// The serial form of both routines: the cases without a triangle, then the
// side's blocked routine on op(A).
template <class T, class Left, class Right>
void serial(const Triangular &t, int m, int n, T alpha, const T *a, int lda, T *b, int ldb,
            Left left, Right right) {
  if (settled(m, n, alpha, b, ldb)) return;
  const OpA<T> op = op_of(t, a, lda);
  if (t.left)
    left(op, m, n, alpha, b, ldb);
  else
    right(op, m, n, alpha, b, ldb);
}

// Runs serial(m', n', b') over slabs of the right-hand sides of B (its
// columns for a left-side operation, its rows for a right-side one) on a
// team sized to the work; the slabs are independent of each other.
template <class T, class Serial>
void by_slabs(const Triangular &t, int m, int n, T *b, int ldb, Serial serial) {
  if (m <= 0 || n <= 0) return;
  const int order = t.left ? m : n, others = t.left ? n : m;
  const double work = 0.5 * order * order * others * madd_cost<T>();
  const int nt = level3_team(work, others / (2 * kGrain));
  if (nt < 2) {
    serial(m, n, b);
    return;
  }
  for_slabs(nt, others, kGrain, 0, [&](int first, int count) {
    if (t.left)
      serial(m, count, b + at(0, first, ldb));
    else
      serial(count, n, b + first);
  });
}

}  // namespace orb::blas::tri
