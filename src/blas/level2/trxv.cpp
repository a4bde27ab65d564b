// Triangular matrix-vector product and solve (xTRMV, xTRSV), by blocks of
// columns: the triangle on the diagonal is done here element by element, the
// rectangle beside it by the matrix-vector kernels, so every element of A is
// read once and most of them by the vector code.
#include <algorithm>
#include <cstdint>

#include "blas/level2/level2.h"

namespace orb::blas::level2 {
namespace {

constexpr int kTriBlock = 32;

// x := op(A) x for a diagonal block of nb columns (x contiguous).
template <class T>
void multiply_block(bool upper, Op trans, bool unit, int nb, const T *a, int lda, T *x) {
  const bool conj = trans == Op::kConjTrans;
  auto at = [&](int i, int j) { return conj_if(a[i + std::int64_t{j} * lda], conj); };
  if (trans == Op::kNone && upper) {
    for (int j = 0; j < nb; ++j) {
      const T t = x[j];
      for (int i = 0; i < j; ++i) x[i] += mul(t, at(i, j));
      if (!unit) x[j] = mul(x[j], at(j, j));
    }
  } else if (trans == Op::kNone) {
    for (int j = nb - 1; j >= 0; --j) {
      const T t = x[j];
      for (int i = nb - 1; i > j; --i) x[i] += mul(t, at(i, j));
      if (!unit) x[j] = mul(x[j], at(j, j));
    }
  } else if (upper) {
    for (int j = nb - 1; j >= 0; --j) {
      T t = unit ? x[j] : mul(x[j], at(j, j));
      for (int i = j - 1; i >= 0; --i) t += mul(at(i, j), x[i]);
      x[j] = t;
    }
  } else {
    for (int j = 0; j < nb; ++j) {
      T t = unit ? x[j] : mul(x[j], at(j, j));
      for (int i = j + 1; i < nb; ++i) t += mul(at(i, j), x[i]);
      x[j] = t;
    }
  }
}

// x := op(A)^-1 x for a diagonal block.
template <class T>
void solve_block(bool upper, Op trans, bool unit, int nb, const T *a, int lda, T *x) {
  const bool conj = trans == Op::kConjTrans;
  auto at = [&](int i, int j) { return conj_if(a[i + std::int64_t{j} * lda], conj); };
  if (trans == Op::kNone && upper) {
    for (int j = nb - 1; j >= 0; --j) {
      if (!unit) x[j] = x[j] / at(j, j);
      const T t = x[j];
      for (int i = j - 1; i >= 0; --i) x[i] -= mul(t, at(i, j));
    }
  } else if (trans == Op::kNone) {
    for (int j = 0; j < nb; ++j) {
      if (!unit) x[j] = x[j] / at(j, j);
      const T t = x[j];
      for (int i = j + 1; i < nb; ++i) x[i] -= mul(t, at(i, j));
    }
  } else if (upper) {
    for (int j = 0; j < nb; ++j) {
      T t = x[j];
      for (int i = 0; i < j; ++i) t -= mul(at(i, j), x[i]);
      x[j] = unit ? t : t / at(j, j);
    }
  } else {
    for (int j = nb - 1; j >= 0; --j) {
      T t = x[j];
      for (int i = nb - 1; i > j; --i) t -= mul(at(i, j), x[i]);
      x[j] = unit ? t : t / at(j, j);
    }
  }
}

// Both routines over blocks of columns. A block's rectangle (above the
// triangle for upper, below for lower) meets the vector through gemv_update,
// ordered so that it always reads the values the published loops would.
template <class T>
void blocked(bool solve, bool upper, Op trans, bool unit, int n, const T *a, int lda, Vec<T> x) {
  const bool notrans = trans == Op::kNone;
  // The multiply runs down the columns for A x with upper and A^T x with
  // lower; the solve the other way.
  const bool ascending = (notrans == upper) != solve;
  const T coef = solve ? T(-1) : T(1);
  const int blocks = (n + kTriBlock - 1) / kTriBlock;
  for (int b = 0; b < blocks; ++b) {
    const int j0 = (ascending ? b : blocks - 1 - b) * kTriBlock;
    const int nb = std::min(kTriBlock, n - j0);
    const int r0 = upper ? 0 : j0 + nb;  // the rectangle's rows
    const int rn = upper ? j0 : n - r0;
    const T *rect = a + r0 + std::int64_t{j0} * lda;
    auto diagonal = [&] {
      T copy[kTriBlock];
      T *xb = x.inc == 1 ? x.p + j0 : copy;
      if (x.inc != 1) gather(cvec(x.sub(j0)), nb, copy);
      const T *ad = a + j0 + std::int64_t{j0} * lda;
      if (solve)
        solve_block(upper, trans, unit, nb, ad, lda, xb);
      else
        multiply_block(upper, trans, unit, nb, ad, lda, xb);
      if (x.inc != 1) scatter(copy, nb, x.sub(j0));
    };
    // A x: the rectangle takes this block's x before the triangle changes
    // it (multiply), or the solved values after (solve). A^T x: the
    // rectangle adds to this block's x after the triangle (multiply), or
    // before the solve.
    const bool triangle_first = notrans == solve;
    if (triangle_first) diagonal();
    if (notrans)
      gemv_update(Op::kNone, rn, nb, coef, rect, lda, cvec(x.sub(j0)), x.sub(r0));
    else
      gemv_update(trans, rn, nb, coef, rect, lda, cvec(x.sub(r0)), x.sub(j0));
    if (!triangle_first) diagonal();
  }
}

template <class T>
void triangular(bool solve, bool upper, Op trans, bool unit, int n, const T *a, int lda, T *x,
                int incx) {
  if (n == 0) return;
  const Vec<T> xv = vec(x, n, incx);
  mem::Buffer<T> buf;
  if (incx != 1) {
    buf = work_buffer<T>(n);
    if (buf) gather(cvec(xv), n, buf.get());
  }
  blocked(solve, upper, trans, unit, n, a, lda, buf ? Vec<T>{buf.get(), 1} : xv);
  if (buf) scatter(buf.get(), n, xv);
}

}  // namespace

template <class T>
void trmv(bool upper, Op trans, bool unit, int n, const T *a, int lda, T *x, int incx) {
  triangular(false, upper, trans, unit, n, a, lda, x, incx);
}

template <class T>
void trsv(bool upper, Op trans, bool unit, int n, const T *a, int lda, T *x, int incx) {
  triangular(true, upper, trans, unit, n, a, lda, x, incx);
}

#define ORB_LEVEL2_TRXV(T)                                              \
  template void trmv<T>(bool, Op, bool, int, const T *, int, T *, int); \
  template void trsv<T>(bool, Op, bool, int, const T *, int, T *, int);
ORB_LEVEL2_TRXV(float)
ORB_LEVEL2_TRXV(double)
ORB_LEVEL2_TRXV(c8)
ORB_LEVEL2_TRXV(c16)
#undef ORB_LEVEL2_TRXV

}  // namespace orb::blas::level2
