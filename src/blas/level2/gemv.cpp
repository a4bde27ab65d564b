// General matrix-vector product and the dispatch slots of the level-2 kernels.
#include <algorithm>
#include <cstdint>

#include "blas/level2/level2.h"
#include "service/memory.h"

namespace orb::blas::level2 {

namespace {
Kernels<float> g_float;
Kernels<double> g_double;
Kernels<c8> g_c8;
Kernels<c16> g_c16;
}  // namespace

template <>
Kernels<float> &kernels<float>() {
  return g_float;
}
template <>
Kernels<double> &kernels<double>() {
  return g_double;
}
template <>
Kernels<c8> &kernels<c8>() {
  return g_c8;
}
template <>
Kernels<c16> &kernels<c16>() {
  return g_c16;
}

namespace {

// Rows per block of y += A x when y needs no copy: 64 KiB of y.
constexpr int kDirectRowBytes = 65536;

// The product over row blocks of rb rows and column blocks of cb columns.
// The row-side vector (y for op(A) = A, x otherwise) is staged per row block
// in `rs` when strided; the column-side vector in `cs`, once for all when cb
// covers every column, per block otherwise.
template <class T>
void blocks(Op trans, int m, int n, T alpha, const T *a, int lda, Vec<const T> x, Vec<T> y, T *rs,
            int rb, T *cs, int cb) {
  Kernels<T> &k = kernels<T>();
  const bool notrans = trans == Op::kNone;
  const bool conj = trans == Op::kConjTrans;
  const bool once = cb >= n;
  // Column side: x (read) for op(A) = A, y (updated) otherwise.
  const bool col_strided = notrans ? x.inc != 1 : y.inc != 1;
  if (once && col_strided) {
    if (notrans)
      gather(x, n, cs);
    else
      gather(cvec(y), n, cs);
  }
  for (int r0 = 0; r0 < m; r0 += rb) {
    const int rn = std::min(rb, m - r0);
    const T *xr = nullptr;
    T *yr = nullptr;
    if (notrans) {
      yr = y.inc == 1 ? y.p + r0 : rs;
      if (y.inc != 1) gather(cvec(y.sub(r0)), rn, rs);
    } else {
      xr = x.inc == 1 ? x.p + r0 : rs;
      if (x.inc != 1) gather(x.sub(r0), rn, rs);
    }
    for (int c0 = 0; c0 < n; c0 += cb) {
      const int cn = std::min(cb, n - c0);
      const T *ab = a + r0 + std::int64_t{c0} * lda;
      if (notrans) {
        const T *xc = x.inc == 1 ? x.p + c0 : once ? cs + c0 : cs;
        if (x.inc != 1 && !once) gather(x.sub(c0), cn, cs);
        k.gemv_n(rn, cn, alpha, ab, lda, xc, yr);
      } else {
        T *yc = y.inc == 1 ? y.p + c0 : once ? cs + c0 : cs;
        if (y.inc != 1 && !once) gather(cvec(y.sub(c0)), cn, cs);
        k.gemv_t(rn, cn, alpha, ab, lda, xr, yc, conj);
        if (y.inc != 1 && !once) scatter(cs, cn, y.sub(c0));
      }
    }
    if (notrans && y.inc != 1) scatter(rs, rn, y.sub(r0));
  }
  if (once && col_strided && !notrans) scatter(cs, n, y);
}

}  // namespace

template <class T>
void gemv_update(Op trans, int m, int n, T alpha, const T *a, int lda, Vec<const T> x, Vec<T> y) {
  if (m <= 0 || n <= 0) return;
  // y += A x at unit increment stages nothing: its row block only keeps that
  // part of y in the second-level cache while the columns stream past, and
  // the longer runs of each column keep the memory's prefetchers ahead.
  const bool direct_rows = trans == Op::kNone && y.inc == 1;
  const int rb =
      std::min(m, direct_rows ? kDirectRowBytes / static_cast<int>(sizeof(T)) : row_block<T>());
  const bool row_strided = trans == Op::kNone ? y.inc != 1 : x.inc != 1;
  const bool col_strided = trans == Op::kNone ? x.inc != 1 : y.inc != 1;
  if (!row_strided && !col_strided)
    return blocks<T>(trans, m, n, alpha, a, lda, x, y, nullptr, rb, nullptr, n);
  // Long strided vectors are copied to one work buffer: the row block,
  // rounded up to whole alignment units, then the column-side vector.
  const bool short_rows = !row_strided || rb <= kStackBlock;
  const bool short_cols = !col_strided || n <= kStackBlock;
  if (!(short_rows && short_cols)) {
    constexpr int kUnit = kAlign / static_cast<int>(sizeof(T));
    const std::int64_t rpart = row_strided ? (rb + kUnit - 1) / kUnit * kUnit : 0;
    const mem::Buffer<T> buf = work_buffer<T>(rpart + (col_strided ? n : 0));
    if (buf) return blocks(trans, m, n, alpha, a, lda, x, y, buf.get(), rb, buf.get() + rpart, n);
  }
  // Short ones, or all when no work buffer can be had, go by stack blocks.
  alignas(kAlign) T rs[kStackBlock];
  alignas(kAlign) T cs[kStackBlock];
  blocks(trans, m, n, alpha, a, lda, x, y, rs, row_strided ? std::min(rb, kStackBlock) : rb, cs,
         col_strided ? kStackBlock : n);
}

template <class T>
void gemv(Op trans, int m, int n, T alpha, const T *a, int lda, const T *x, int incx, T beta, T *y,
          int incy) {
  if (m == 0 || n == 0 || (alpha == T(0) && beta == T(1))) return;
  const int lenx = trans == Op::kNone ? n : m;
  const int leny = trans == Op::kNone ? m : n;
  const Vec<T> yv = vec(y, leny, incy);
  scale(leny, beta, yv);
  if (alpha == T(0)) return;
  gemv_update(trans, m, n, alpha, a, lda, vec(x, lenx, incx), yv);
}

#define ORB_LEVEL2_GEMV(T)                                                             \
  template void gemv_update<T>(Op, int, int, T, const T *, int, Vec<const T>, Vec<T>); \
  template void gemv<T>(Op, int, int, T, const T *, int, const T *, int, T, T *, int);
ORB_LEVEL2_GEMV(float)
ORB_LEVEL2_GEMV(double)
ORB_LEVEL2_GEMV(c8)
ORB_LEVEL2_GEMV(c16)
#undef ORB_LEVEL2_GEMV

}  // namespace orb::blas::level2
