// syrk_omp: symmetric and Hermitian rank-k and rank-2k updates of one
// triangle of C. C is taken in column blocks of 256 on a fixed grid: the part
// of a block off its diagonal block is one GEMM straight into C; the diagonal
// block is taken in columns of 32, each a GEMM into C for its part off the
// diagonal and a small GEMM into a work block for its 32-by-32 diagonal
// block, whose triangle is then added to C. The other triangle of C is never
// touched, and with beta = 0 C is never read. Threads take slabs of columns
// of equal triangle area on the 32-column grid, so the result does not depend
// on the number of threads.
#include <algorithm>
#include <type_traits>

#include "blas/level3/level3_common.h"

namespace orb::blas {
namespace {

constexpr int kOuter = 256;
constexpr int kInner = 32;

template <class T>
struct Update {
  bool upper;
  int trans;
  bool herm;
  int n, k;
  T alpha;
  const T *a;
  int lda;
  const T *b;  // null for a rank-k update
  int ldb;
  T beta;
  T *c;
  int ldc;
};

// Rows [r0, r0 + rn) by columns [c0, c0 + cn) of coef X op(Y) (trans 0) or
// coef op(X) Y, into w with beta.
template <class T>
void product(const Update<T> &u, T coef, const T *x, int ldx, const T *y, int ldy, int r0, int rn,
             int c0, int cn, T beta, T *w, int ldw) {
  const int t = u.herm ? 2 : 1;
  if (u.trans == 0)
    gemm_here(0, t, rn, cn, u.k, coef, x + r0, ldx, y + c0, ldy, beta, w, ldw);
  else
    gemm_here(t, 0, rn, cn, u.k, coef, x + at(0, r0, ldx), ldx, y + at(0, c0, ldy), ldy, beta, w,
              ldw);
}

// Rows [r0, r0 + rn) by columns [c0, c0 + cn) of C, a block inside the
// triangle.
template <class T>
void off_diagonal(const Update<T> &u, int r0, int rn, int c0, int cn) {
  if (rn <= 0 || cn <= 0) return;
  T *cb = u.c + at(r0, c0, u.ldc);
  if (u.b == nullptr) {
    product(u, u.alpha, u.a, u.lda, u.a, u.lda, r0, rn, c0, cn, u.beta, cb, u.ldc);
    return;
  }
  product(u, u.alpha, u.a, u.lda, u.b, u.ldb, r0, rn, c0, cn, u.beta, cb, u.ldc);
  const T alpha2 = u.herm ? conj_of(u.alpha) : u.alpha;
  product(u, alpha2, u.b, u.ldb, u.a, u.lda, r0, rn, c0, cn, T(1), cb, u.ldc);
}

// x + beta c for an element of the triangle; on the diagonal of a Hermitian
// update only the real parts count and the result is real. beta = 0: c is
// not read.
template <class T>
T combine(T x, T beta, const T *c, bool real_diagonal) {
  if constexpr (!std::is_floating_point_v<T>) {
    if (real_diagonal) {
      auto re = x.real();
      if (beta != T(0)) re += beta.real() * c->real();
      return T(re, 0);
    }
  }
  return beta == T(0) ? x : x + beta * *c;
}

// The triangle of the diagonal block of order sb <= kInner at (s, s).
// A rank-2k update forms W = alpha A op(B) once and adds W + op(W).
template <class T>
void diagonal(const Update<T> &u, int s, int sb) {
  T w[kInner * kInner];
  const T *y = u.b ? u.b : u.a;
  const int ldy = u.b ? u.ldb : u.lda;
  product(u, u.alpha, u.a, u.lda, y, ldy, s, sb, s, sb, T(0), w, kInner);
  for (int j = 0; j < sb; ++j) {
    const int i0 = u.upper ? 0 : j, i1 = u.upper ? j + 1 : sb;
    T *cj = u.c + at(s, s + j, u.ldc);
    for (int i = i0; i < i1; ++i) {
      T x = w[i + j * kInner];
      if (u.b) x += u.herm ? conj_of(w[j + i * kInner]) : w[j + i * kInner];
      cj[i] = combine(x, u.beta, cj + i, u.herm && i == j);
    }
  }
}

// Columns [c0, c1) of the triangle; c0 is on the 32-column grid.
template <class T>
void update_columns(const Update<T> &u, int c0, int c1) {
  for (int g = c0; g < c1;) {
    const int g0 = g / kOuter * kOuter, gend = std::min(u.n, g0 + kOuter);
    const int g1 = std::min(c1, gend);
    if (u.upper) off_diagonal(u, 0, g0, g, g1 - g);
    for (int s = g; s < g1; s += kInner) {
      const int sb = std::min(kInner, g1 - s);
      if (u.upper) off_diagonal(u, g0, s - g0, s, sb);
      diagonal(u, s, sb);
      if (!u.upper) off_diagonal(u, s + sb, gend - s - sb, s, sb);
    }
    if (!u.upper) off_diagonal(u, gend, u.n - gend, g, g1 - g);
    g = g1;
  }
}

// C := beta C over the triangle (alpha = 0 or k = 0).
template <class T>
void scale_triangle(const Update<T> &u) {
  for (int j = 0; j < u.n; ++j) {
    const int i0 = u.upper ? 0 : j, i1 = u.upper ? j + 1 : u.n;
    T *cj = u.c + at(0, j, u.ldc);
    for (int i = i0; i < i1; ++i) cj[i] = combine(T(0), u.beta, cj + i, u.herm && i == j);
  }
}

// The quick returns, alpha = 0 and k = 0; true when nothing is left to add.
template <class T>
bool trivial(const Update<T> &u) {
  if (u.n <= 0) return true;
  if (u.alpha != T(0) && u.k > 0) return false;
  if (u.beta != T(1)) scale_triangle(u);
  return true;
}

template <class T>
void update_serial(const Update<T> &u) {
  if (!trivial(u)) update_columns(u, 0, u.n);
}

template <class T>
void update_omp(const Update<T> &u) {
  if (trivial(u)) return;
  const double work = 0.5 * u.n * u.n * u.k * (u.b ? 2 : 1) * madd_cost<T>();
  const int nt = level3_team(work, u.n / (2 * kInner));
  if (nt < 2) {
    update_columns(u, 0, u.n);
    return;
  }
  for_slabs(nt, u.n, kInner, u.upper ? 1 : 2,
            [&](int first, int count) { update_columns(u, first, first + count); });
}

}  // namespace

template <class T>
void syrk_serial(bool upper, int trans, bool herm, int n, int k, T alpha, const T *a, int lda,
                 T beta, T *c, int ldc) {
  update_serial(Update<T>{upper, trans, herm, n, k, alpha, a, lda, nullptr, 0, beta, c, ldc});
}

template <class T>
void syrk_omp(bool upper, int trans, bool herm, int n, int k, T alpha, const T *a, int lda, T beta,
              T *c, int ldc) {
  update_omp(Update<T>{upper, trans, herm, n, k, alpha, a, lda, nullptr, 0, beta, c, ldc});
}

template <class T>
void syr2k_serial(bool upper, int trans, bool herm, int n, int k, T alpha, const T *a, int lda,
                  const T *b, int ldb, T beta, T *c, int ldc) {
  update_serial(Update<T>{upper, trans, herm, n, k, alpha, a, lda, b, ldb, beta, c, ldc});
}

template <class T>
void syr2k_omp(bool upper, int trans, bool herm, int n, int k, T alpha, const T *a, int lda,
               const T *b, int ldb, T beta, T *c, int ldc) {
  update_omp(Update<T>{upper, trans, herm, n, k, alpha, a, lda, b, ldb, beta, c, ldc});
}

#define ORB_SYRK(T)                                                                                \
  template void syrk_serial<T>(bool, int, bool, int, int, T, const T *, int, T, T *, int);         \
  template void syrk_omp<T>(bool, int, bool, int, int, T, const T *, int, T, T *, int);            \
  template void syr2k_serial<T>(bool, int, bool, int, int, T, const T *, int, const T *, int, T,   \
                                T *, int);                                                         \
  template void syr2k_omp<T>(bool, int, bool, int, int, T, const T *, int, const T *, int, T, T *, \
                             int);
ORB_SYRK(float)
ORB_SYRK(c8)
#undef ORB_SYRK

}  // namespace orb::blas
