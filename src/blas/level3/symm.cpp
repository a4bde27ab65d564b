// symm_omp: symmetric and Hermitian multiplies. Blocks of the full matrix A
// are expanded from its stored triangle into a work block, which GEMM then
// multiplies with B, block after block of the inner dimension. Threads take
// independent slabs of C: rows when C has more rows than columns, columns
// otherwise.
#include <algorithm>

#include "blas/level3/level3_common.h"
#include "service/memory.h"

namespace orb::blas {
namespace {

// Order of an expanded block (rows by inner for a left-side multiply, inner
// by columns for a right-side one). The inner blocks keep to one grid, so a
// slab's result does not depend on where the slab starts.
constexpr int kBlock = 256;
// Without a work block from the memory manager, a small one on the stack.
constexpr int kFallbackBlock = 32;
constexpr int kGrain = 16;
constexpr int kAlignment = 64;

template <class T>
struct Symm {
  bool left, upper, herm;
  int m, n;
  T alpha;
  const T *a;
  int lda;
  const T *b;
  int ldb;
  T beta;
  T *c;
  int ldc;
};

// w := rows [r0, r0 + rn) and columns [c0, c0 + cn) of the full matrix whose
// upper or lower triangle A holds (leading dimension rn).
template <class T>
void expand(const Symm<T> &s, int r0, int rn, int c0, int cn, T *w) {
  for (int j = 0; j < cn; ++j) {
    const int col = c0 + j;
    T *wj = w + at(0, j, rn);
    for (int i = 0; i < rn; ++i) {
      const int row = r0 + i;
      if (row == col) {
        const T d = s.a[at(row, row, s.lda)];
        wj[i] = s.herm ? real_part(d) : d;
      } else if ((row < col) == s.upper) {
        wj[i] = s.a[at(row, col, s.lda)];
      } else {
        const T x = s.a[at(col, row, s.lda)];
        wj[i] = s.herm ? conj(x) : x;
      }
    }
  }
}

// Rows [i0, i0 + mi) and columns [j0, j0 + nj) of C, with work blocks of
// order `blk`.
template <class T>
void multiply(const Symm<T> &s, int i0, int mi, int j0, int nj, int blk, T *w) {
  T *cb = s.c + at(i0, j0, s.ldc);
  if (s.left) {  // C(I, J) := alpha A(I, :) B(:, J) + beta C(I, J)
    for (int ic = 0; ic < mi; ic += blk) {
      const int ib = std::min(blk, mi - ic);
      for (int p = 0; p < s.m; p += blk) {
        const int pb = std::min(blk, s.m - p);
        expand(s, i0 + ic, ib, p, pb, w);
        gemm_here(Op::kNone, Op::kNone, ib, nj, pb, s.alpha, w, ib, s.b + at(p, j0, s.ldb), s.ldb,
                  p == 0 ? s.beta : T(1), cb + ic, s.ldc);
      }
    }
  } else {  // C(I, J) := alpha B(I, :) A(:, J) + beta C(I, J)
    for (int jc = 0; jc < nj; jc += blk) {
      const int jb = std::min(blk, nj - jc);
      for (int p = 0; p < s.n; p += blk) {
        const int pb = std::min(blk, s.n - p);
        expand(s, p, pb, j0 + jc, jb, w);
        gemm_here(Op::kNone, Op::kNone, mi, jb, pb, s.alpha, s.b + at(i0, p, s.ldb), s.ldb, w, pb,
                  p == 0 ? s.beta : T(1), cb + at(0, jc, s.ldc), s.ldc);
      }
    }
  }
}

template <class T>
void multiply(const Symm<T> &s, int i0, int mi, int j0, int nj) {
  const int inner = std::min(kBlock, s.left ? s.m : s.n);
  const int outer = std::min(kBlock, s.left ? mi : nj);
  mem::Buffer<T> w(std::int64_t{inner} * outer, kAlignment);
  if (w) {
    multiply(s, i0, mi, j0, nj, kBlock, w.get());
  } else {
    T small[kFallbackBlock * kFallbackBlock];
    multiply(s, i0, mi, j0, nj, kFallbackBlock, small);
  }
}

// The quick returns and alpha = 0; true when nothing is left to multiply.
template <class T>
bool trivial(const Symm<T> &s) {
  if (s.m <= 0 || s.n <= 0) return true;
  if (s.alpha != T(0)) return false;
  scale_c(s.m, s.n, s.beta, s.c, s.ldc);  // nothing for beta = 1; A and B are not read
  return true;
}

template <class T>
Symm<T> make(bool left, bool upper, bool herm, int m, int n, T alpha, const T *a, int lda,
             const T *b, int ldb, T beta, T *c, int ldc) {
  return Symm<T>{left, upper, herm, m, n, alpha, a, lda, b, ldb, beta, c, ldc};
}

}  // namespace

template <class T>
void symm_serial(bool left, bool upper, bool herm, int m, int n, T alpha, const T *a, int lda,
                 const T *b, int ldb, T beta, T *c, int ldc) {
  const Symm<T> s = make(left, upper, herm, m, n, alpha, a, lda, b, ldb, beta, c, ldc);
  if (!trivial(s)) multiply(s, 0, m, 0, n);
}

template <class T>
void symm_omp(bool left, bool upper, bool herm, int m, int n, T alpha, const T *a, int lda,
              const T *b, int ldb, T beta, T *c, int ldc) {
  const Symm<T> s = make(left, upper, herm, m, n, alpha, a, lda, b, ldb, beta, c, ldc);
  if (trivial(s)) return;
  const double work = double(m) * n * (left ? m : n) * madd_cost<T>();
  const bool by_rows = m > n;
  const int total = by_rows ? m : n;
  const int nt = level3_team(work, total / (2 * kGrain));
  if (nt < 2) {
    multiply(s, 0, m, 0, n);
    return;
  }
  for_slabs(nt, total, kGrain, 0, [&](int first, int count) {
    if (by_rows)
      multiply(s, first, count, 0, n);
    else
      multiply(s, 0, m, first, count);
  });
}

#define ORB_SYMM(T)                                                                                \
  template void symm_serial<T>(bool, bool, bool, int, int, T, const T *, int, const T *, int, T,   \
                               T *, int);                                                          \
  template void symm_omp<T>(bool, bool, bool, int, int, T, const T *, int, const T *, int, T, T *, \
                            int);
ORB_SYMM(float)
ORB_SYMM(c8)
#undef ORB_SYMM

}  // namespace orb::blas
