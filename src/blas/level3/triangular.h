// What the triangular multiply and solve share: op(A) seen as an upper or
// lower triangular matrix, its blocks as GEMM operands, the ladder of block
// sizes and the dense copy of a small diagonal block, and the pieces of the
// panel drivers that run the packed GEMM kernel over B.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "blas/level3/level3_common.h"
#include "service/memory.h"

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

// ---- the panel drivers' pieces ----------------------------------------------------

// The packed GEMM kernel of this processor and its buffers: blocks of op(A)
// of at least `rows_a` rows by kc, and a panel of B of kc rows by nc columns
// (fewer when B has fewer).
// A left-side operation works through B panel by panel; each diagonal block
// of kc rows packs its rows of the panel once, and every update it lends
// (or receives) runs from that one packed copy.
template <class T>
struct Packed {
  kernel::GemmShape<T> s;
  mem::Buffer<T> a, b;

  Packed(int rows_a, int n)
      : s(packed_shape<T>()),
        a(std::int64_t{round_up(std::max(s.mc, rows_a), s.mr)} * s.kc, 128),
        b(std::int64_t{round_up(std::min(s.nc, n), s.nr)} * s.kc, 128) {}
  explicit operator bool() const { return a && b; }
};

// C := alpha A B + beta C over an mb-by-nb block: A as pack_a leaves it
// (slivers of mr rows by k), B k rows of a packed panel from `pb` on, its
// slivers of nr columns `stride` elements apart. Tiles the block's edge cuts
// are formed as macro_kernel forms them, so an element never depends on
// where the tiles fall.
template <class T>
void multiply_packed(const kernel::GemmShape<T> &s, int mb, int nb, int k, T alpha, const T *pa,
                     const T *pb, std::int64_t stride, T beta, T *c, int ldc) {
  alignas(64) T tile[kMaxTile];
  for (int jr = 0; jr < nb; jr += s.nr) {
    const int cols = std::min(s.nr, nb - jr);
    const T *bj = pb + jr / s.nr * stride;
    for (int ir = 0; ir < mb; ir += s.mr) {
      const int rows = std::min(s.mr, mb - ir);
      const T *ai = pa + std::int64_t{ir} * k;
      T *cij = c + at(ir, jr, ldc);
      if (rows == s.mr && cols == s.nr) {
        s.ukr(k, ai, bj, cij, ldc, alpha, beta);
        continue;
      }
      s.ukr(k, ai, bj, tile, s.mr, alpha, T(0));
      for (int j = 0; j < cols; ++j) {
        T *cj = cij + at(0, j, ldc);
        const T *tj = tile + j * s.mr;
        for (int i = 0; i < rows; ++i) cj[i] = beta == T(0) ? tj[i] : tj[i] + beta * cj[i];
      }
    }
  }
}

// B(r0 .. r0 + rn - 1, panel) := alpha op(A)(those rows, p .. p + kb - 1) P
// + beta B(those rows, panel), P the packed panel in w.b (kb rows, nb
// columns); c is B's first row at the panel's first column.
template <class T>
void update_rows(const Packed<T> &w, const OpA<T> &t, int r0, int rn, int p, int kb, int nb,
                 T alpha, T beta, T *c, int ldc) {
  const kernel::GemmShape<T> &s = w.s;
  for (int ic = 0; ic < rn; ic += s.mc) {
    const int mb = std::min(s.mc, rn - ic);
    pack_a(t.trans, t.a, t.lda, r0 + ic, p, mb, kb, s.mr, w.a.get());
    macro_kernel(s, mb, nb, kb, alpha, w.a.get(), w.b.get(), beta, c + r0 + ic, ldc);
  }
}

// Rows of a rows-by-nb block of B into a packed panel of kb rows, from the
// row `dst` points to in its first sliver on; the lanes past nb are zero.
// Returns whether every element copied is finite.
template <class T>
bool pack_rows(const T *b, int ldb, int rows, int nb, int nr, int kb, T *dst) {
  using R = real_t<T>;
  using Bits = std::conditional_t<sizeof(R) == 4, std::uint32_t, std::uint64_t>;
  constexpr Bits kExponent = sizeof(R) == 4 ? Bits(0x7f800000u) : Bits(0x7ff0000000000000u);
  constexpr int kParts = sizeof(T) / sizeof(R);
  Bits wide = 0;  // nonzero once an exponent is all ones: an infinity or NaN
  for (int js = 0; js < nb; js += nr) {
    const int cols = std::min(nr, nb - js);
    T *d = dst + std::int64_t{js} * kb;
    for (int j = 0; j < cols; ++j) {
      const T *bj = b + at(0, js + j, ldb);
      for (int i = 0; i < rows; ++i) d[i * nr + j] = bj[i];
      const R *parts = reinterpret_cast<const R *>(bj);
      for (int i = 0; i < rows * kParts; ++i) {
        Bits x;
        std::memcpy(&x, parts + i, sizeof x);
        wide |= (x & kExponent) == kExponent;
      }
    }
    for (int j = cols; j < nr; ++j)
      for (int i = 0; i < rows; ++i) d[i * nr + j] = T(0);
  }
  return wide == 0;
}

template <class T>
bool finite(T x) {
  if constexpr (is_complex_v<T>)
    return std::isfinite(x.real()) && std::isfinite(x.imag());
  else
    return std::isfinite(x);
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
