#include "lapack/householder.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>

#include "blas/level1/level1.h"
#include "blas/level2/level2.h"
#include "blas/level3/level3.h"
#include "lapack/blas_calls.h"

namespace orb::lapack {
namespace {

using std::ptrdiff_t;

// sqrt(x^2 + y^2 + z^2) without overflow or harmful underflow; a NaN or an
// infinity among the three passes through.
template <class R>
R hypot3(R x, R y, R z) {
  x = std::abs(x), y = std::abs(y), z = std::abs(z);
  const R w = std::max({x, y, z});
  if (w == R(0) || w > std::numeric_limits<R>::max() || x != x || y != y || z != z)
    return x + y + z;
  const R a = x / w, b = y / w, c = z / w;
  return w * std::sqrt(a * a + b * b + c * c);
}

// The last row of the m-by-n C holding a non-zero (0 when none): NaN counts.
template <class T>
int last_nonzero_row(int m, int n, const T *c, int ldc) {
  if (m <= 0 || n <= 0) return 0;
  const auto at = [&](int i, int j) { return c[i + static_cast<ptrdiff_t>(j) * ldc]; };
  if (at(m - 1, 0) != T(0) || at(m - 1, n - 1) != T(0)) return m;
  int last = 0;
  for (int j = 0; j < n; ++j) {
    int i = m;
    while (i > last && at(i - 1, j) == T(0)) --i;
    last = std::max(last, i);
    if (last == m) break;
  }
  return last;
}

// The last column of the m-by-n C holding a non-zero (0 when none).
template <class T>
int last_nonzero_column(int m, int n, const T *c, int ldc) {
  if (m <= 0 || n <= 0) return 0;
  for (int j = n; j > 0; --j) {
    const T *col = c + static_cast<ptrdiff_t>(j - 1) * ldc;
    for (int i = 0; i < m; ++i)
      if (col[i] != T(0)) return j;
  }
  return 0;
}

template <class T, bool Here>
void gemm_call(Op ta, Op tb, int m, int n, int k, T alpha, const T *a, int lda, const T *b, int ldb,
               T beta, T *c, int ldc) {
  if (m <= 0 || n <= 0) return;
  if constexpr (Here)
    gemm_here(ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
  else
    gemm(ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

// W := W op(A) for a triangle of a few columns, column by column: column
// j of the product gathers the columns of W that B = op(A) mixes into it,
// taken in the order that leaves them unchanged until used.
template <class T>
void trmm_right_small(bool upper, Op op, bool unit, int m, int k, const T *a, int lda, T *w,
                      int ldw) {
  const bool adj = op != Op::kNone;
  const auto b = [&](int r, int c) {
    return adj ? conj(a[c + static_cast<ptrdiff_t>(r) * lda])
               : a[r + static_cast<ptrdiff_t>(c) * lda];
  };
  const auto col = [&](int j) { return w + static_cast<ptrdiff_t>(j) * ldw; };
  const bool b_upper = upper != adj;
  for (int s = 0; s < k; ++s) {
    const int j = b_upper ? k - 1 - s : s;
    T *wj = col(j);
    if (!unit) {
      const T d = b(j, j);
      for (int i = 0; i < m; ++i) wj[i] = mul(wj[i], d);
    }
    const int l0 = b_upper ? 0 : j + 1, l1 = b_upper ? j : k;
    for (int l = l0; l < l1; ++l) {
      const T f = b(l, j);
      const T *wl = col(l);
      for (int i = 0; i < m; ++i) wj[i] += mul(wl[i], f);
    }
  }
}

// W := W op(A) with the k-by-k triangle A, W being m by k: halves of the
// triangle recursively, the off-diagonal block through the matrix product,
// down to 16 columns multiplied column by column.
template <class T, bool Here>
void trmm_right(bool upper, Op op, bool unit, int m, int k, const T *a, int lda, T *w, int ldw) {
  if (m <= 0 || k <= 0) return;
  if (k <= 16) {
    trmm_right_small(upper, op, unit, m, k, a, lda, w, ldw);
    return;
  }
  const int h = k / 2;
  const auto el = [&](int i, int j) { return a + i + static_cast<ptrdiff_t>(j) * lda; };
  T *w1 = w, *w2 = w + static_cast<ptrdiff_t>(h) * ldw;
  const bool adj = op != Op::kNone;
  // B = op(A); B(r, c) blocks as stored: A(r, c), or A(c, r) under op.
  const auto block = [&](int r0, int c0) { return adj ? el(c0, r0) : el(r0, c0); };
  if (upper != adj) {
    // B upper: W2 := W2 B22 + W1 B12, then W1 := W1 B11.
    trmm_right<T, Here>(upper, op, unit, m, k - h, el(h, h), lda, w2, ldw);
    gemm_call<T, Here>(Op::kNone, op, m, k - h, h, T(1), w1, ldw, block(0, h), lda, T(1), w2, ldw);
    trmm_right<T, Here>(upper, op, unit, m, h, a, lda, w1, ldw);
  } else {
    // B lower: W1 := W1 B11 + W2 B21, then W2 := W2 B22.
    trmm_right<T, Here>(upper, op, unit, m, h, a, lda, w1, ldw);
    gemm_call<T, Here>(Op::kNone, op, m, h, k - h, T(1), w2, ldw, block(h, 0), lda, T(1), w1, ldw);
    trmm_right<T, Here>(upper, op, unit, m, k - h, el(h, h), lda, w2, ldw);
  }
}

// The published block reflector, for every side, direction and storage in
// one form. With Vc the reflectors' vectors as columns (V itself, or V^H
// for rows), split into the unit triangle Vc1 (k by k) and the rectangle
// Vc2, and C into C1 (the k rows or columns that meet Vc1) and C2:
//   left:  W = C^H Vc (n by k), W := W op'(T), C -= Vc W^H;
//   right: W = C Vc (m by k),   W := W op'(T), C -= W Vc^H,
// op' being T^H for H C and T for H^H C (left), T for C H and T^H for
// C H^H (right).
template <class T, bool Here>
void larfb_impl(Side side, Op op, Direct direct, Storev storev, int m, int n, int k, const T *v,
                int ldv, const T *t, int ldt, T *c, int ldc, T *work, int ldwork) {
  if (m <= 0 || n <= 0 || k <= 0) return;
  const bool left = side == Side::kLeft, cols = storev == Storev::kColumns;
  const bool forward = direct == Direct::kForward;
  const bool apply_h = op == Op::kNone;
  const int nq = left ? m : n;  // order of the reflectors
  const int nr = nq - k;        // length of the rectangle
  const int p = left ? n : m;   // rows of W
  // Where the triangle and the rectangle lie along the reflectors' order.
  const int tri0 = forward ? 0 : nr, rect0 = forward ? k : 0;
  // Stored V1, V2: columns store them as rows of V, rows as columns.
  const auto vat = [&](int along, int which) {
    return cols ? v + along + static_cast<ptrdiff_t>(which) * ldv
                : v + which + static_cast<ptrdiff_t>(along) * ldv;
  };
  const T *v1 = vat(tri0, 0), *v2 = vat(rect0, 0);
  // The unit triangle as stored: columns forward and rows backward are
  // lower, the others upper. Vc1 = V1 (columns) or V1^H (rows).
  const bool v1_upper = cols ? !forward : forward;
  const Op vc1 = cols ? Op::kNone : Op::kConjTrans, vc1h = cols ? Op::kConjTrans : Op::kNone;
  const bool t_upper = forward;
  const Op top = left == apply_h ? Op::kConjTrans : Op::kNone;
  T *c1 = left ? c + tri0 : c + static_cast<ptrdiff_t>(tri0) * ldc;
  T *c2 = left ? c + rect0 : c + static_cast<ptrdiff_t>(rect0) * ldc;
  const auto w = [&](int i, int j) -> T & { return work[i + static_cast<ptrdiff_t>(j) * ldwork]; };

  // W := C1^H (left) or C1 (right).
  for (int j = 0; j < k; ++j)
    for (int i = 0; i < p; ++i)
      w(i, j) = left ? conj(c1[j + static_cast<ptrdiff_t>(i) * ldc])
                     : c1[i + static_cast<ptrdiff_t>(j) * ldc];
  trmm_right<T, Here>(v1_upper, vc1, true, p, k, v1, ldv, work, ldwork);
  if (nr > 0) {
    // W += C2^H Vc2 (left) or C2 Vc2 (right).
    if (left)
      gemm_call<T, Here>(Op::kConjTrans, vc1, p, k, nr, T(1), c2, ldc, v2, ldv, T(1), work, ldwork);
    else
      gemm_call<T, Here>(Op::kNone, vc1, p, k, nr, T(1), c2, ldc, v2, ldv, T(1), work, ldwork);
  }
  trmm_right<T, Here>(t_upper, top, false, p, k, t, ldt, work, ldwork);
  if (nr > 0) {
    // C2 -= Vc2 W^H (left) or W Vc2^H (right).
    if (left)
      gemm_call<T, Here>(vc1, Op::kConjTrans, nr, n, k, T(-1), v2, ldv, work, ldwork, T(1), c2,
                         ldc);
    else
      gemm_call<T, Here>(Op::kNone, vc1h, m, nr, k, T(-1), work, ldwork, v2, ldv, T(1), c2, ldc);
  }
  trmm_right<T, Here>(v1_upper, vc1h, true, p, k, v1, ldv, work, ldwork);
  // C1 -= W^H (left) or W (right).
  for (int j = 0; j < k; ++j)
    for (int i = 0; i < p; ++i) {
      if (left)
        c1[j + static_cast<ptrdiff_t>(i) * ldc] -= conj(w(i, j));
      else
        c1[i + static_cast<ptrdiff_t>(j) * ldc] -= w(i, j);
    }
}

}  // namespace

template <class T>
void larfg(int n, T &alpha, T *x, int incx, T &tau) {
  using R = real_t<T>;
  // A complex alpha of order 1 still needs a reflector to become real.
  if (n <= 0 || (n == 1 && !is_complex_v<T>)) {
    tau = T(0);
    return;
  }
  R xnorm = n > 1 ? blas::nrm2(n - 1, x, incx) : R(0);
  R alphr = std::real(alpha), alphi = std::imag(alpha);
  if (xnorm == R(0) && alphi == R(0)) {
    tau = T(0);
    return;
  }
  R beta = -std::copysign(hypot3(alphr, alphi, xnorm), alphr);
  const R safmin = std::numeric_limits<R>::min() / std::numeric_limits<R>::epsilon();
  const R rsafmn = R(1) / safmin;
  int knt = 0;
  if (std::abs(beta) < safmin) {
    // beta may be inaccurate: scale x and alpha up, at most 20 times.
    do {
      ++knt;
      rscal(n - 1, rsafmn, x, incx);
      beta *= rsafmn;
      alphi *= rsafmn;
      alphr *= rsafmn;
    } while (std::abs(beta) < safmin && knt < 20);
    xnorm = n > 1 ? blas::nrm2(n - 1, x, incx) : R(0);
    if constexpr (is_complex_v<T>)
      alpha = T(alphr, alphi);
    else
      alpha = alphr;
    beta = -std::copysign(hypot3(alphr, alphi, xnorm), alphr);
  }
  if constexpr (is_complex_v<T>) {
    tau = T((beta - alphr) / beta, -alphi / beta);
    alpha = T(1) / (alpha - T(beta));
    blas::scal(n - 1, alpha, x, incx);
  } else {
    tau = (beta - alphr) / beta;
    blas::scal(n - 1, R(1) / (alpha - beta), x, incx);
  }
  for (int j = 0; j < knt; ++j) beta *= safmin;
  alpha = T(beta);
}

template <class T>
void larf(Side side, int m, int n, const T *v, int incv, T tau, T *c, int ldc, T *work) {
  const bool left = side == Side::kLeft;
  if (tau == T(0)) return;
  // The reflector's length without its trailing zeros.
  int lastv = left ? m : n;
  ptrdiff_t iv = incv > 0 ? static_cast<ptrdiff_t>(lastv - 1) * incv : 0;
  while (lastv > 0 && v[iv] == T(0)) {
    --lastv;
    iv -= incv;
  }
  if (lastv == 0) return;
  // For a negative increment v's first element lies at its far end.
  const T *vs = incv > 0 ? v : v + iv;
  if (left) {
    const int lastc = last_nonzero_column(lastv, n, c, ldc);
    if (lastc == 0) return;
    // w := C^H v, C -= tau v w^H.
    blas::level2::gemv(Op::kConjTrans, lastv, lastc, T(1), c, ldc, vs, incv, T(0), work, 1);
    blas::level2::ger(lastv, lastc, -tau, vs, incv, work, 1, c, ldc, true);
  } else {
    const int lastc = last_nonzero_row(m, lastv, c, ldc);
    if (lastc == 0) return;
    // w := C v, C -= tau w v^H.
    blas::level2::gemv(Op::kNone, lastc, lastv, T(1), c, ldc, vs, incv, T(0), work, 1);
    blas::level2::ger(lastc, lastv, -tau, work, 1, vs, incv, c, ldc, true);
  }
}

template <class T>
void larft(Direct direct, Storev storev, int n, int k, const T *v, int ldv, const T *tau, T *t,
           int ldt) {
  if (n <= 0 || k <= 0) return;
  const bool cols = storev == Storev::kColumns;
  // Element `along` of reflector `which`, as stored.
  const auto vp = [&](int along, int which) {
    return cols ? v + along + static_cast<ptrdiff_t>(which) * ldv
                : v + which + static_cast<ptrdiff_t>(along) * ldv;
  };
  const auto tp = [&](int i, int j) { return t + i + static_cast<ptrdiff_t>(j) * ldt; };
  // t(j) += alpha sum over `along` in [a0, a1) of conj(v_j) v_i for the
  // reflectors j in [j0, j1), into column i of T (v_j = stored rows are
  // conjugated, so the sum is over stored(j) conj(stored(i)) there).
  const auto accumulate = [&](int i, int j0, int j1, int a0, int a1, T alpha) {
    if (a1 <= a0 || j1 <= j0) return;
    if (cols)
      blas::level2::gemv(Op::kConjTrans, a1 - a0, j1 - j0, alpha, vp(a0, j0), ldv, vp(a0, i), 1,
                         T(1), tp(j0, i), 1);
    else
      gemm_here(Op::kNone, Op::kConjTrans, j1 - j0, 1, a1 - a0, alpha, vp(a0, j0), ldv, vp(a0, i),
                ldv, T(1), tp(j0, i), ldt);
  };
  // The value of reflector j at position `along`, as H's vectors see it
  // (conjugated for rows).
  const auto vj = [&](int along, int j) { return cols ? conj(*vp(along, j)) : *vp(along, j); };
  if (direct == Direct::kForward) {
    for (int i = 0; i < k; ++i) {
      if (tau[i] == T(0)) {
        for (int j = 0; j <= i; ++j) *tp(j, i) = T(0);
        continue;
      }
      // Reflector i is 1 at i and zero above; its trailing zeros are skipped.
      int last = n;
      while (last > i + 1 && *vp(last - 1, i) == T(0)) --last;
      for (int j = 0; j < i; ++j) *tp(j, i) = -tau[i] * vj(i, j);
      accumulate(i, 0, i, i + 1, last, -tau[i]);
      if (i > 0) blas::level2::trmv(true, Op::kNone, false, i, t, ldt, tp(0, i), 1);
      *tp(i, i) = tau[i];
    }
  } else {
    for (int i = k - 1; i >= 0; --i) {
      if (tau[i] == T(0)) {
        for (int j = i; j < k; ++j) *tp(j, i) = T(0);
        continue;
      }
      // Reflector i is 1 at n - k + i and zero below; leading zeros skipped.
      const int unit = n - k + i;
      if (i < k - 1) {
        int first = 0;
        while (first < unit && *vp(first, i) == T(0)) ++first;
        for (int j = i + 1; j < k; ++j) *tp(j, i) = -tau[i] * vj(unit, j);
        accumulate(i, i + 1, k, first, unit, -tau[i]);
        blas::level2::trmv(false, Op::kNone, false, k - 1 - i, tp(i + 1, i + 1), ldt, tp(i + 1, i),
                           1);
      }
      *tp(i, i) = tau[i];
    }
  }
}

template <class T>
void larfb(Side side, Op op, Direct direct, Storev storev, int m, int n, int k, const T *v, int ldv,
           const T *t, int ldt, T *c, int ldc, T *work, int ldwork) {
  larfb_impl<T, false>(side, op, direct, storev, m, n, k, v, ldv, t, ldt, c, ldc, work, ldwork);
}

template <class T>
void larfb_here(Side side, Op op, Direct direct, Storev storev, int m, int n, int k, const T *v,
                int ldv, const T *t, int ldt, T *c, int ldc, T *work, int ldwork) {
  larfb_impl<T, true>(side, op, direct, storev, m, n, k, v, ldv, t, ldt, c, ldc, work, ldwork);
}

#define ORB_HOUSEHOLDER(T)                                                                        \
  template void larfg<T>(int, T &, T *, int, T &);                                                \
  template void larf<T>(Side, int, int, const T *, int, T, T *, int, T *);                        \
  template void larft<T>(Direct, Storev, int, int, const T *, int, const T *, T *, int);          \
  template void larfb<T>(Side, Op, Direct, Storev, int, int, int, const T *, int, const T *, int, \
                         T *, int, T *, int);                                                     \
  template void larfb_here<T>(Side, Op, Direct, Storev, int, int, int, const T *, int, const T *, \
                              int, T *, int, T *, int);
ORB_HOUSEHOLDER(float)
ORB_HOUSEHOLDER(double)
ORB_HOUSEHOLDER(std::complex<float>)
ORB_HOUSEHOLDER(std::complex<double>)
#undef ORB_HOUSEHOLDER

}  // namespace orb::lapack
