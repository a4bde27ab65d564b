// The bidiagonal reduction's panel, for a team of threads (one thread: the
// published order of operations). Included by xlabrd_omp.cpp (real data)
// and ylabrd_omp.cpp (complex data), which instantiate it.
//
// Each step generates one left and one right reflector. The two products
// with the whole trailing matrix, A^H v for the column of Y and A u for the
// column of X, are what costs: they are split over the team, Y's column by
// columns of A and X's by rows, and each thread also applies the small
// corrections (the earlier reflectors' parts) to its own slice. The
// reflectors themselves and the short products they need are made by
// thread 0 between four barriers a step. Every slice is computed with the
// same products as the published panel, so teams agree up to the rounding
// of the split gemv calls.
#pragma once

#include <omp.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <vector>

#include "blas/level2/level2.h"
#include "common/scalar.h"
#include "lapack/auxiliary.h"
#include "lapack/bidiag.h"
#include "lapack/householder.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/spin.h"
#include "service/threading.h"

namespace orb::lapack {
namespace labrd_detail {

// A barrier for a team that spins briefly, then sleeps until the last
// thread arrives. libgomp's own barrier is slow under wine, and a wait that
// only yields loses a whole time slice to other processes on a busy machine:
// the panel passes four barriers a step.
class Barrier {
 public:
  explicit Barrier(int team) : team_(team) {}
  // A team the runtime cut short runs the panel on one thread.
  void solo() { team_ = 1; }
  void wait() {
    if (team_ == 1) return;
    const int gen = gen_.load(std::memory_order_acquire);
    if (count_.fetch_add(1, std::memory_order_acq_rel) == team_ - 1) {
      count_.store(0, std::memory_order_relaxed);
      {
        std::lock_guard<std::mutex> lock(mutex_);
        gen_.store(gen + 1, std::memory_order_release);
      }
      if (sleepers_.load(std::memory_order_acquire) > 0) woken_.notify_all();
      return;
    }
    for (int i = 0; i < kSpins; ++i) {
      if (gen_.load(std::memory_order_acquire) != gen) return;
      cpu_pause();
    }
    std::unique_lock<std::mutex> lock(mutex_);
    sleepers_.fetch_add(1, std::memory_order_acq_rel);
    woken_.wait(lock, [&] { return gen_.load(std::memory_order_acquire) != gen; });
    sleepers_.fetch_sub(1, std::memory_order_acq_rel);
  }

 private:
  static constexpr int kSpins = 4000;  // a few microseconds
  int team_;
  std::atomic<int> count_{0};
  std::atomic<int> gen_{0};
  std::atomic<int> sleepers_{0};
  std::mutex mutex_;
  std::condition_variable woken_;
};

// [lo, hi) of a range of `len` split into `parts`, part `k`.
inline void slice(int len, int parts, int k, int &lo, int &hi) {
  const int q = len / parts, r = len % parts;
  lo = k * q + std::min(k, r);
  hi = lo + q + (k < r ? 1 : 0);
}

template <class T>
class Panel {
 public:
  Panel(int m, int n, int nb, T *a, int lda, real_t<T> *d, real_t<T> *e, T *tauq, T *taup, T *x,
        int ldx, T *y, int ldy, int team)
      : m_(m),
        n_(n),
        nb_(nb),
        a_(a),
        lda_(lda),
        d_(d),
        e_(e),
        tauq_(tauq),
        taup_(taup),
        x_(x),
        ldx_(ldx),
        y_(y),
        ldy_(ldy),
        bar_(team),
        s1_(nb + 1),
        s2_(nb + 1),
        s3_(nb + 1) {}

  // The part of the panel thread `tid` of `team` does.
  void run(int tid, int team) {
    if (team == 1) bar_.solo();
    if (m_ >= n_)
      upper(tid, team);
    else
      lower(tid, team);
  }

 private:
  T *A(int i, int j) { return a_ + i + static_cast<std::ptrdiff_t>(j) * lda_; }
  T *X(int i, int j) { return x_ + i + static_cast<std::ptrdiff_t>(j) * ldx_; }
  T *Y(int i, int j) { return y_ + i + static_cast<std::ptrdiff_t>(j) * ldy_; }

  static void gemv(Op op, int m, int n, T alpha, const T *a, int lda, const T *x, int incx, T beta,
                   T *y, int incy) {
    if (m <= 0 || n <= 0) {
      if (beta == T(0)) {
        const int len = op == Op::kNone ? m : n;
        for (int k = 0; k < len; ++k) y[static_cast<std::ptrdiff_t>(k) * incy] = T(0);
      }
      return;
    }
    blas::level2::gemv(op, m, n, alpha, a, lda, x, incx, beta, y, incy);
  }

  // m >= n: A(i:m, i) takes the left reflector, A(i, i+1:n) the right one.
  void upper(int tid, int team) {
    const int m = m_, n = n_;
    for (int i = 0; i < nb_; ++i) {
      const bool right = i < n - 1;
      T *w1 = s1_.data(), *w2 = s2_.data();
      if (tid == 0) {
        // Bring column i up to date and make its reflector.
        lacgv(i, Y(i, 0), ldy_);
        gemv(Op::kNone, m - i, i, T(-1), A(i, 0), lda_, Y(i, 0), ldy_, T(1), A(i, i), 1);
        lacgv(i, Y(i, 0), ldy_);
        gemv(Op::kNone, m - i, i, T(-1), X(i, 0), ldx_, A(0, i), 1, T(1), A(i, i), 1);
        T alpha = *A(i, i);
        larfg(m - i, alpha, A(std::min(i + 1, m - 1), i), 1, tauq_[i]);
        d_[i] = std::real(alpha);
        if (right) {
          *A(i, i) = T(1);
          // The short products with v: A(i:m, 0:i)^H v into Y(0:i, i),
          // X(i:m, 0:i)^H v into w2.
          gemv(Op::kConjTrans, m - i, i, T(1), A(i, 0), lda_, A(i, i), 1, T(0), Y(0, i), 1);
          gemv(Op::kConjTrans, m - i, i, T(1), X(i, 0), ldx_, A(i, i), 1, T(0), w2, 1);
          // Row i's earlier parts, conjugated, for the row update: conj
          // A(i, 0:i+1) in w1, conj X(i, 0:i) in s3.
          for (int k = 0; k <= i; ++k) w1[k] = conj(*A(i, k));
          for (int k = 0; k < i; ++k) s3_[k] = conj(*X(i, k));
        }
      }
      if (!right) {
        bar_.wait();
        continue;
      }
      bar_.wait();
      int j0, j1;
      slice(n - i - 1, team, tid, j0, j1);
      j0 += i + 1;
      j1 += i + 1;
      const int cols = j1 - j0;
      if (cols > 0) {
        // Y(j0:j1, i) and the row A(i, j0:j1).
        gemv(Op::kConjTrans, m - i, cols, T(1), A(i, j0), lda_, A(i, i), 1, T(0), Y(j0, i), 1);
        gemv(Op::kNone, cols, i, T(-1), Y(j0, 0), ldy_, Y(0, i), 1, T(1), Y(j0, i), 1);
        gemv(Op::kConjTrans, i, cols, T(-1), A(0, j0), lda_, w2, 1, T(1), Y(j0, i), 1);
        for (int j = j0; j < j1; ++j) *Y(j, i) *= tauq_[i];
        lacgv(cols, A(i, j0), lda_);
        gemv(Op::kNone, cols, i + 1, T(-1), Y(j0, 0), ldy_, w1, 1, T(1), A(i, j0), lda_);
        gemv(Op::kConjTrans, i, cols, T(-1), A(0, j0), lda_, s3_.data(), 1, T(1), A(i, j0), lda_);
      }
      bar_.wait();
      if (tid == 0) {
        T alpha = *A(i, i + 1);
        larfg(n - i - 1, alpha, A(i, std::min(i + 2, n - 1)), lda_, taup_[i]);
        e_[i] = std::real(alpha);
        *A(i, i + 1) = T(1);
        // z1 = Y(i+1:n, 0:i+1)^H u into w1, z2 = A(0:i, i+1:n) u into w2.
        gemv(Op::kConjTrans, n - i - 1, i + 1, T(1), Y(i + 1, 0), ldy_, A(i, i + 1), lda_, T(0), w1,
             1);
        gemv(Op::kNone, i, n - i - 1, T(1), A(0, i + 1), lda_, A(i, i + 1), lda_, T(0), w2, 1);
      }
      bar_.wait();
      int r0, r1;
      slice(m - i - 1, team, tid, r0, r1);
      r0 += i + 1;
      r1 += i + 1;
      if (r1 > r0) {
        const int rows = r1 - r0;
        gemv(Op::kNone, rows, n - i - 1, T(1), A(r0, i + 1), lda_, A(i, i + 1), lda_, T(0),
             X(r0, i), 1);
        gemv(Op::kNone, rows, i + 1, T(-1), A(r0, 0), lda_, w1, 1, T(1), X(r0, i), 1);
        gemv(Op::kNone, rows, i, T(-1), X(r0, 0), ldx_, w2, 1, T(1), X(r0, i), 1);
        for (int r = r0; r < r1; ++r) *X(r, i) *= taup_[i];
      }
      bar_.wait();
      if (tid == 0) lacgv(n - i - 1, A(i, i + 1), lda_);
    }
    bar_.wait();
  }

  // m < n: A(i, i:n) takes the right reflector, A(i+1:m, i) the left one.
  void lower(int tid, int team) {
    const int m = m_, n = n_;
    for (int i = 0; i < nb_; ++i) {
      const bool left = i < m - 1;
      T *w1 = s1_.data(), *w2 = s2_.data();
      if (tid == 0) {
        lacgv(n - i, A(i, i), lda_);
        lacgv(i, A(i, 0), lda_);
        gemv(Op::kNone, n - i, i, T(-1), Y(i, 0), ldy_, A(i, 0), lda_, T(1), A(i, i), lda_);
        lacgv(i, A(i, 0), lda_);
        lacgv(i, X(i, 0), ldx_);
        gemv(Op::kConjTrans, i, n - i, T(-1), A(0, i), lda_, X(i, 0), ldx_, T(1), A(i, i), lda_);
        lacgv(i, X(i, 0), ldx_);
        T alpha = *A(i, i);
        larfg(n - i, alpha, A(i, std::min(i + 1, n - 1)), lda_, taup_[i]);
        d_[i] = std::real(alpha);
        if (left) {
          *A(i, i) = T(1);
          // z1 = Y(i:n, 0:i)^H u into w1, z2 = A(0:i, i:n) u into w2.
          gemv(Op::kConjTrans, n - i, i, T(1), Y(i, 0), ldy_, A(i, i), lda_, T(0), w1, 1);
          gemv(Op::kNone, i, n - i, T(1), A(0, i), lda_, A(i, i), lda_, T(0), w2, 1);
        } else {
          lacgv(n - i, A(i, i), lda_);
        }
      }
      bar_.wait();
      if (!left) continue;
      int r0, r1;
      slice(m - i - 1, team, tid, r0, r1);
      r0 += i + 1;
      r1 += i + 1;
      if (r1 > r0) {
        const int rows = r1 - r0;
        gemv(Op::kNone, rows, n - i, T(1), A(r0, i), lda_, A(i, i), lda_, T(0), X(r0, i), 1);
        gemv(Op::kNone, rows, i, T(-1), A(r0, 0), lda_, w1, 1, T(1), X(r0, i), 1);
        gemv(Op::kNone, rows, i, T(-1), X(r0, 0), ldx_, w2, 1, T(1), X(r0, i), 1);
        for (int r = r0; r < r1; ++r) *X(r, i) *= taup_[i];
      }
      bar_.wait();
      if (tid == 0) {
        lacgv(n - i, A(i, i), lda_);
        lacgv(i, Y(i, 0), ldy_);
        gemv(Op::kNone, m - i - 1, i, T(-1), A(i + 1, 0), lda_, Y(i, 0), ldy_, T(1), A(i + 1, i),
             1);
        lacgv(i, Y(i, 0), ldy_);
        gemv(Op::kNone, m - i - 1, i + 1, T(-1), X(i + 1, 0), ldx_, A(0, i), 1, T(1), A(i + 1, i),
             1);
        T alpha = *A(i + 1, i);
        larfg(m - i - 1, alpha, A(std::min(i + 2, m - 1), i), 1, tauq_[i]);
        e_[i] = std::real(alpha);
        *A(i + 1, i) = T(1);
        // w1 = A(i+1:m, 0:i)^H v, w2 = X(i+1:m, 0:i+1)^H v.
        gemv(Op::kConjTrans, m - i - 1, i, T(1), A(i + 1, 0), lda_, A(i + 1, i), 1, T(0), w1, 1);
        gemv(Op::kConjTrans, m - i - 1, i + 1, T(1), X(i + 1, 0), ldx_, A(i + 1, i), 1, T(0), w2,
             1);
      }
      bar_.wait();
      int j0, j1;
      slice(n - i - 1, team, tid, j0, j1);
      j0 += i + 1;
      j1 += i + 1;
      if (j1 > j0) {
        const int cols = j1 - j0;
        gemv(Op::kConjTrans, m - i - 1, cols, T(1), A(i + 1, j0), lda_, A(i + 1, i), 1, T(0),
             Y(j0, i), 1);
        gemv(Op::kNone, cols, i, T(-1), Y(j0, 0), ldy_, w1, 1, T(1), Y(j0, i), 1);
        gemv(Op::kConjTrans, i + 1, cols, T(-1), A(0, j0), lda_, w2, 1, T(1), Y(j0, i), 1);
        for (int j = j0; j < j1; ++j) *Y(j, i) *= tauq_[i];
      }
      bar_.wait();
    }
  }

  int m_, n_, nb_;
  T *a_;
  int lda_;
  real_t<T> *d_, *e_;
  T *tauq_, *taup_, *x_;
  int ldx_;
  T *y_;
  int ldy_;
  Barrier bar_;
  std::vector<T> s1_, s2_, s3_;
};

}  // namespace labrd_detail

template <class T>
void labrd_team(int m, int n, int nb, T *a, int lda, real_t<T> *d, real_t<T> *e, T *tauq, T *taup,
                T *x, int ldx, T *y, int ldy, int team) {
  if (m <= 0 || n <= 0) return;
  labrd_detail::Panel<T> panel(m, n, nb, a, lda, d, e, tauq, taup, x, ldx, y, ldy, team);
  if (team <= 1) {
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

// A team from the oracle's crossover (query 3 of "LABRD", an order: a team
// when m n reaches its square); the calling thread below it or inside a
// parallel region.
template <class T>
void labrd(int m, int n, int nb, T *a, int lda, real_t<T> *d, real_t<T> *e, T *tauq, T *taup, T *x,
           int ldx, T *y, int ldy) {
  int team = omp_in_parallel() ? 1 : orb::threads::max_threads();
  const double c = oracle(kCrossover, name<T>("LABRD"), m, n, team);
  if (static_cast<double>(m) * n < c * c) team = 1;
  labrd_team(m, n, nb, a, lda, d, e, tauq, taup, x, ldx, y, ldy, team);
}

#define ORB_LABRD(T)                                                                            \
  template void labrd<T>(int, int, int, T *, int, real_t<T> *, real_t<T> *, T *, T *, T *, int, \
                         T *, int);                                                             \
  template void labrd_team<T>(int, int, int, T *, int, real_t<T> *, real_t<T> *, T *, T *, T *, \
                              int, T *, int, int);

}  // namespace orb::lapack
