// syrk_omp: symmetric and Hermitian rank-k and rank-2k updates of one
// triangle of C. A slab of columns of C is one packed GEMM that skips the
// blocks and tiles outside the triangle; the tiles the diagonal cuts are
// formed whole and added only where they lie inside it. The other triangle
// of C is never touched, and with beta = 0 C is never read. Threads take
// slabs of columns of equal triangle area on a 32-column grid; the packed
// kernels' results do not depend on where tiles fall, so neither does the
// result on the number of threads.
#include <algorithm>
#include <type_traits>

#include "blas/level3/level3_common.h"
#include "service/memory.h"

namespace orb::blas {
namespace {

constexpr int kGrain = 32;
constexpr int kBufferAlignment = 128;

template <class T>
struct Update {
  bool upper;
  Op trans;
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

// The packing buffers of one slab's products.
template <class T>
struct Packing {
  kernel::GemmShape<T> shape = packed_shape<T>();
  mem::Buffer<T> a{packed_a_size(shape), kBufferAlignment};
  mem::Buffer<T> b{packed_b_size(shape), kBufferAlignment};
};

// Rows [r0, r0 + rn) by columns [c0, c0 + cn) of coef X op(Y) (no transpose) or
// coef op(X) Y with beta, inside the triangle only.
template <class T>
void product(const Update<T> &u, Packing<T> &p, T coef, const T *x, int ldx, const T *y, int ldy,
             int r0, int rn, int c0, int cn, T beta) {
  const Op t = u.herm ? Op::kConjTrans : Op::kTrans;
  const TriangleOf mask{u.upper, c0 - r0};
  T *cb = u.c + at(r0, c0, u.ldc);
  if (u.trans == Op::kNone)
    gemm_packed(p.shape, Op::kNone, t, rn, cn, u.k, coef, x + r0, ldx, y + c0, ldy, beta, cb, u.ldc,
                p.a.get(), p.b.get(), mask);
  else
    gemm_packed(p.shape, t, Op::kNone, rn, cn, u.k, coef, x + at(0, r0, ldx), ldx,
                y + at(0, c0, ldy), ldy, beta, cb, u.ldc, p.a.get(), p.b.get(), mask);
}

// The same update one column at a time through the serial GEMM, for when
// the packing buffers cannot be had.
template <class T>
void column_by_column(const Update<T> &u, T coef, const T *x, int ldx, const T *y, int ldy, int c0,
                      int c1, T beta) {
  const Op t = u.herm ? Op::kConjTrans : Op::kTrans;
  for (int j = c0; j < c1; ++j) {
    const int r0 = u.upper ? 0 : j, rn = u.upper ? j + 1 : u.n - j;
    T *cj = u.c + at(r0, j, u.ldc);
    if (u.trans == Op::kNone)
      gemm_here(Op::kNone, t, rn, 1, u.k, coef, x + r0, ldx, y + j, ldy, beta, cj, u.ldc);
    else
      gemm_here(t, Op::kNone, rn, 1, u.k, coef, x + at(0, r0, ldx), ldx, y + at(0, j, ldy), ldy,
                beta, cj, u.ldc);
  }
}

// The imaginary parts of C's diagonal over columns [c0, c1) set to zero: a
// Hermitian update reads only the real parts and leaves the diagonal real.
template <class T>
void real_diagonal(const Update<T> &u, int c0, int c1) {
  if constexpr (!std::is_floating_point_v<T>) {
    for (int j = c0; j < c1; ++j) {
      T &d = u.c[at(j, j, u.ldc)];
      d = T(d.real(), 0);
    }
  }
}

// Columns [c0, c1) of the triangle.
template <class T>
void update_columns(const Update<T> &u, int c0, int c1) {
  const int r0 = u.upper ? 0 : c0, r1 = u.upper ? c1 : u.n;
  const T *y = u.b ? u.b : u.a;
  const int ldy = u.b ? u.ldb : u.lda;
  const T alpha2 = u.herm ? conj(u.alpha) : u.alpha;
  if (u.herm && u.beta != T(0)) real_diagonal(u, c0, c1);
  Packing<T> p;
  if (p.a && p.b) {
    product(u, p, u.alpha, u.a, u.lda, y, ldy, r0, r1 - r0, c0, c1 - c0, u.beta);
    if (u.b) product(u, p, alpha2, u.b, u.ldb, u.a, u.lda, r0, r1 - r0, c0, c1 - c0, T(1));
  } else {
    column_by_column(u, u.alpha, u.a, u.lda, y, ldy, c0, c1, u.beta);
    if (u.b) column_by_column(u, alpha2, u.b, u.ldb, u.a, u.lda, c0, c1, T(1));
  }
  if (u.herm) real_diagonal(u, c0, c1);
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
  const int nt = level3_team(work, u.n / (2 * kGrain));
  if (nt < 2) {
    update_columns(u, 0, u.n);
    return;
  }
  for_slabs(nt, u.n, kGrain, u.upper ? 1 : 2,
            [&](int first, int count) { update_columns(u, first, first + count); });
}

}  // namespace

template <class T>
void syrk_serial(bool upper, Op trans, bool herm, int n, int k, T alpha, const T *a, int lda,
                 T beta, T *c, int ldc) {
  update_serial(Update<T>{upper, trans, herm, n, k, alpha, a, lda, nullptr, 0, beta, c, ldc});
}

template <class T>
void syrk_omp(bool upper, Op trans, bool herm, int n, int k, T alpha, const T *a, int lda, T beta,
              T *c, int ldc) {
  update_omp(Update<T>{upper, trans, herm, n, k, alpha, a, lda, nullptr, 0, beta, c, ldc});
}

template <class T>
void syr2k_serial(bool upper, Op trans, bool herm, int n, int k, T alpha, const T *a, int lda,
                  const T *b, int ldb, T beta, T *c, int ldc) {
  update_serial(Update<T>{upper, trans, herm, n, k, alpha, a, lda, b, ldb, beta, c, ldc});
}

template <class T>
void syr2k_omp(bool upper, Op trans, bool herm, int n, int k, T alpha, const T *a, int lda,
               const T *b, int ldb, T beta, T *c, int ldc) {
  update_omp(Update<T>{upper, trans, herm, n, k, alpha, a, lda, b, ldb, beta, c, ldc});
}

#define ORB_SYRK(T)                                                                               \
  template void syrk_serial<T>(bool, Op, bool, int, int, T, const T *, int, T, T *, int);         \
  template void syrk_omp<T>(bool, Op, bool, int, int, T, const T *, int, T, T *, int);            \
  template void syr2k_serial<T>(bool, Op, bool, int, int, T, const T *, int, const T *, int, T,   \
                                T *, int);                                                        \
  template void syr2k_omp<T>(bool, Op, bool, int, int, T, const T *, int, const T *, int, T, T *, \
                             int);
ORB_SYRK(float)
ORB_SYRK(double)
ORB_SYRK(c8)
ORB_SYRK(c16)
#undef ORB_SYRK

}  // namespace orb::blas
