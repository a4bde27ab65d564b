// xlatrd_omp: the tridiagonal reduction's panel (sytrd.h), for a team of
// threads.
//
// Each step makes one reflector v and the column y of W:
//   y = tau (C v - A_p (W_p^H v) - W_p (A_p^H v)),  y := y - (tau/2)(y^H v) v,
// C the not yet updated trailing matrix and A_p, W_p the panel's earlier
// columns. The product with C, read from its stored triangle only, is what
// costs. It is cut into a fixed number of column blocks of equal area (by
// the order alone, not by the team): each block gives its own partial y.
// Threads take the blocks, and the two short products, round robin; then
// thread 0 adds the partials in block order, applies the corrections, tau
// and the dot product, and brings the next column up to date and makes its
// reflector while the others wait: two waits a step, and any team gives
// the bits of one thread.
#include <omp.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "blas/level1/level1.h"
#include "blas/level2/level2.h"
#include "blas/level3/level3.h"
#include "common/scalar.h"
#include "lapack/auxiliary.h"
#include "lapack/householder.h"
#include "lapack/labrd.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/sytrd.h"
#include "service/threading.h"

namespace orb::lapack {
namespace latrd_detail {

using labrd_detail::Barrier;
using labrd_detail::slice;

// The columns of C a product takes at a time.
constexpr int kPanel = 32;

// The most blocks and slices a step is cut into.
constexpr int kMaxParts = 4;

// The number of blocks for a trailing matrix of order m: one per 128
// columns, up to kMaxParts.
inline int parts_of(int m) {
  return std::clamp(m / 128, 1, kMaxParts);
}

template <class T>
void make_real(T &x) {
  if constexpr (is_complex_v<T>) x = T(x.real());
}

// y := alpha op(A) x + beta y, with y cleared for beta = 0 also when A has
// no columns (or rows) to add.
template <class T>
void gemv(Op op, int m, int n, T alpha, const T *a, int lda, const T *x, int incx, T beta, T *y,
          int incy) {
  if (m <= 0 || n <= 0) {
    if (beta == T(0)) {
      const int len = op == Op::kNone ? m : n;
      for (int k = 0; k < len; ++k) y[static_cast<std::ptrdiff_t>(k) * incy] = T(0);
    }
    return;
  }
  blas::level2::gemv(op, m, n, alpha, a, lda, x, incx, beta, y, incy);
}

template <class T>
class Panel {
 public:
  Panel(bool upper, int n, int nb, T *a, int lda, real_t<T> *e, T *tau, T *w, int ldw, int team)
      : upper_(upper),
        n_(n),
        nb_(nb),
        a_(a),
        lda_(lda),
        e_(e),
        tau_(tau),
        w_(w),
        ldw_(ldw),
        bar_(team),
        partial_(static_cast<std::size_t>(kMaxParts - 1) * n),
        w1_(nb + 1),
        w2_(nb + 1) {}

  void run(int tid, int team) {
    if (team == 1) bar_.solo();
    for (int step = 0; step < nb_; ++step) {
      // The step's column, the rows of its reflector and its W column.
      const int col = upper_ ? n_ - 1 - step : step;
      const int iw = upper_ ? nb_ - 1 - step : step;
      if (tid == 0) prepare(col, iw);
      bar_.wait();
      const int m = upper_ ? col : n_ - col - 1;
      if (m <= 0) continue;  // the last column has no reflector: no more waits
      const int row0 = upper_ ? 0 : col + 1;
      const T *v = A(row0, col);
      T *y = W(row0, iw);
      const T tau = tau_[upper_ ? col - 1 : col];
      const int parts = parts_of(m);
      // The products: the blocks of C v, then the two short ones.
      for (int task = tid; task < parts + 2; task += team) {
        if (task < parts)
          block_product(m, A(row0, row0), v, y, task, parts);
        else
          short_product(task - parts, m, row0, col, iw, v);
      }
      bar_.wait();
      if (tid == 0) finish(m, row0, col, iw, v, y, tau, parts);
    }
  }

 private:
  T *A(int i, int j) { return a_ + i + static_cast<std::ptrdiff_t>(j) * lda_; }
  T *W(int i, int j) { return w_ + i + static_cast<std::ptrdiff_t>(j) * ldw_; }

  // The rest of the step on thread 0, while the others wait for the next
  // reflector: by the fixed row slices, the partials added, the panel's
  // corrections, tau and the slice's part of y^H v; then y := y - (tau/2)
  // (y^H v) v.
  void finish(int m, int row0, int col, int iw, const T *v, T *y, T tau, int parts) {
    const int done = upper_ ? nb_ - 1 - iw : iw;  // earlier columns of the panel
    const int pc = upper_ ? col + 1 : 0;          // their first column in A
    const int pw = upper_ ? iw + 1 : 0;           // and in W
    T dots[kMaxParts];
    for (int s = 0; s < parts; ++s) {
      int lo, hi;
      slice(m, parts, s, lo, hi);
      dots[s] = T(0);
      if (hi <= lo) continue;
      add_partials(m, y, lo, hi, parts);
      gemv(Op::kNone, hi - lo, done, T(-1), A(row0 + lo, pc), lda_, w1_.data(), 1, T(1), y + lo, 1);
      gemv(Op::kNone, hi - lo, done, T(-1), W(row0 + lo, pw), ldw_, w2_.data(), 1, T(1), y + lo, 1);
      blas::scal(hi - lo, tau, y + lo, 1);
      dots[s] = blas::dotc(hi - lo, y + lo, 1, v + lo, 1);
    }
    T dot(0);
    for (int s = 0; s < parts; ++s) dot += dots[s];
    const T alpha = mul(T(real_t<T>(-0.5)) * tau, dot);
    blas::axpy(m, alpha, v, 1, y, 1);
  }

  // Column col brought up to date with the panel's earlier reflectors and W
  // columns, then its reflector made (thread 0).
  void prepare(int col, int iw) {
    make_real(*A(col, col));
    if (upper_) {
      const int done = n_ - 1 - col;
      if (done > 0) {
        lacgv(done, W(col, iw + 1), ldw_);
        gemv(Op::kNone, col + 1, done, T(-1), A(0, col + 1), lda_, W(col, iw + 1), ldw_, T(1),
             A(0, col), 1);
        lacgv(done, W(col, iw + 1), ldw_);
        lacgv(done, A(col, col + 1), lda_);
        gemv(Op::kNone, col + 1, done, T(-1), W(0, iw + 1), ldw_, A(col, col + 1), lda_, T(1),
             A(0, col), 1);
        lacgv(done, A(col, col + 1), lda_);
        make_real(*A(col, col));
      }
      if (col > 0) {
        T alpha = *A(col - 1, col);
        larfg(col, alpha, A(0, col), 1, tau_[col - 1]);
        e_[col - 1] = std::real(alpha);
        *A(col - 1, col) = T(1);
      }
      return;
    }
    if (col > 0) {
      lacgv(col, W(col, 0), ldw_);
      gemv(Op::kNone, n_ - col, col, T(-1), A(col, 0), lda_, W(col, 0), ldw_, T(1), A(col, col), 1);
      lacgv(col, W(col, 0), ldw_);
      lacgv(col, A(col, 0), lda_);
      gemv(Op::kNone, n_ - col, col, T(-1), W(col, 0), ldw_, A(col, 0), lda_, T(1), A(col, col), 1);
      lacgv(col, A(col, 0), lda_);
      make_real(*A(col, col));
    }
    if (col < n_ - 1) {
      T alpha = *A(col + 1, col);
      larfg(n_ - col - 1, alpha, A(std::min(col + 2, n_ - 1), col), 1, tau_[col]);
      e_[col] = std::real(alpha);
      *A(col + 1, col) = T(1);
    }
  }

  // Columns [c0, c1) of the m x m C (stored triangle at c) times v, block
  // `part` of `parts`. The block that reaches every row (the first below
  // the diagonal, the last above) writes y itself; the others their own
  // partial, upper: rows [0, c1), lower: rows [c0, m). The block goes by
  // panels of kPanel columns, each product by one pass that makes both of
  // its halves: the panel's rectangle off the diagonal as it is stored, its
  // triangle on the diagonal from a square copy holding the stored
  // triangle with half the diagonal and zeros elsewhere (S = D/2 + L gives
  // C = S + S^H).
  void block_product(int m, const T *c, const T *v, T *y, int part, int parts) {
    const int c0 = blas::level3_boundary(m, part, parts, 8, upper_ ? 1 : 2);
    const int c1 = blas::level3_boundary(m, part + 1, parts, 8, upper_ ? 1 : 2);
    const bool direct = part == (upper_ ? parts - 1 : 0);
    T *p = direct ? y : partial_of(part, parts);
    const int r0 = direct ? 0 : (upper_ ? 0 : c0), r1 = direct ? m : (upper_ ? c1 : m);
    std::fill(p + r0, p + r1, T(0));
    auto &k = blas::level2::kernels<T>();
    const auto gemv_nt = k.gemv_nt.get();
    constexpr bool herm = is_complex_v<T>;
    auto C = [&](int i, int j) { return c + i + static_cast<std::ptrdiff_t>(j) * lda_; };
    // The zeros outside the stored triangle are written once: every
    // panel's copy (the last one's too, however narrow) overwrites the
    // triangle only.
    alignas(64) T square[kPanel * kPanel];
    alignas(64) T half[kPanel];
    std::fill(square, square + kPanel * kPanel, T(0));
    for (int j0 = c0; j0 < c1; j0 += kPanel) {
      const int j1 = std::min(c1, j0 + kPanel), w = j1 - j0;
      if (upper_ && j0 > 0) gemv_nt(j0, w, T(1), C(0, j0), lda_, v + j0, p, v, p + j0, herm);
      for (int j = 0; j < w; ++j) {
        T *sq = square + j * kPanel;
        const T *cj = C(j0, j0 + j);
        const int i0 = upper_ ? 0 : j + 1, i1 = upper_ ? j : w;
        for (int i = i0; i < i1; ++i) sq[i] = cj[i];
        sq[j] = real_part_if(cj[j]) * real_t<T>(0.5);
        half[j] = T(0);
      }
      gemv_nt(w, w, T(1), square, kPanel, v + j0, p + j0, v + j0, half, herm);
      for (int j = 0; j < w; ++j) p[j0 + j] += half[j];
      if (!upper_ && j1 < m)
        gemv_nt(m - j1, w, T(1), C(j1, j0), lda_, v + j0, p + j1, v + j1, p + j0, herm);
    }
  }

  static T real_part_if(T x) {
    if constexpr (is_complex_v<T>)
      return T(x.real());
    else
      return x;
  }

  // The partial of a block that does not write y.
  T *partial_of(int part, int parts) {
    const int k = upper_ ? part : part - 1;
    (void)parts;
    return partial_.data() + static_cast<std::size_t>(k) * n_;
  }

  // Rows [lo, hi) of y plus the other blocks' partials, in block order.
  void add_partials(int m, T *y, int lo, int hi, int parts) {
    for (int part = 0; part < parts; ++part) {
      if (part == (upper_ ? parts - 1 : 0)) continue;
      const int c0 = blas::level3_boundary(m, part, parts, 8, upper_ ? 1 : 2);
      const int c1 = blas::level3_boundary(m, part + 1, parts, 8, upper_ ? 1 : 2);
      const int r0 = std::max(lo, upper_ ? 0 : c0), r1 = std::min(hi, upper_ ? c1 : m);
      const T *p = partial_of(part, parts);
      for (int r = r0; r < r1; ++r) y[r] += p[r];
    }
  }

  // The panel's short products with v: W_p^H v into w1, A_p^H v into w2.
  void short_product(int which, int m, int row0, int col, int iw, const T *v) {
    const int done = upper_ ? nb_ - 1 - iw : iw;
    if (which == 0)
      gemv(Op::kConjTrans, m, done, T(1), W(row0, upper_ ? iw + 1 : 0), ldw_, v, 1, T(0),
           w1_.data(), 1);
    else
      gemv(Op::kConjTrans, m, done, T(1), A(row0, upper_ ? col + 1 : 0), lda_, v, 1, T(0),
           w2_.data(), 1);
  }

  bool upper_;
  int n_, nb_;
  T *a_;
  int lda_;
  real_t<T> *e_;
  T *tau_, *w_;
  int ldw_;
  Barrier bar_;
  std::vector<T> partial_, w1_, w2_;
};

}  // namespace latrd_detail

template <class T>
void latrd_team(Uplo uplo, int n, int nb, T *a, int lda, real_t<T> *e, T *tau, T *w, int ldw,
                int team) {
  if (n <= 0 || nb <= 0) return;
  team = std::clamp(team, 1, latrd_detail::kMaxParts + 2);
  latrd_detail::Panel<T> panel(uplo == Uplo::kUpper, n, nb, a, lda, e, tau, w, ldw, team);
  if (team == 1) {
    panel.run(0, 1);
    return;
  }
#pragma omp parallel num_threads(team)
  {
    const int tid = omp_get_thread_num();
    if (omp_get_num_threads() == team)
      panel.run(tid, team);
    else if (tid == 0)
      panel.run(0, 1);
  }
}

// A team from the oracle's crossover (query 3 of "LATRD": the order from
// which the panel is split), the calling thread below it or inside a
// parallel region.
template <class T>
void latrd(Uplo uplo, int n, int nb, T *a, int lda, real_t<T> *e, T *tau, T *w, int ldw) {
  int team = omp_in_parallel() ? 1 : orb::threads::max_threads();
  if (team > 1 && n < oracle(kCrossover, name<T>("LATRD"), n, nb, team)) team = 1;
  latrd_team(uplo, n, nb, a, lda, e, tau, w, ldw, team);
}

#define ORB_LATRD(T)                                                            \
  template void latrd<T>(Uplo, int, int, T *, int, real_t<T> *, T *, T *, int); \
  template void latrd_team<T>(Uplo, int, int, T *, int, real_t<T> *, T *, T *, int, int);
ORB_LATRD(float)
ORB_LATRD(c8)

}  // namespace orb::lapack
