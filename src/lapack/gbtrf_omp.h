// The blocked band LU and its path choice: one template, instantiated for
// real data in sgbtrf_omp.cpp and for complex data in cgbtrf_omp.cpp.
//
// Block k factors the jb columns j .. j + jb - 1. Its panel, the rows j ..
// j + jb + kl - 1 of those columns, is copied into a dense buffer (zeros
// below the band) and factored there by the serial LU core: the pivot rows
// lie within kl of the diagonal, so a search of the whole dense column finds
// the same pivot as a search of the band. The multipliers go back to the
// band with the later interchanges of the block undone, the form the band
// solves expect. The columns the block's pivot rows reach, up to the last
// one (ju), are then updated: their interchanges, the solve with the unit
// lower triangle and the product with the rows below. In the band seen as a
// matrix of leading dimension ldab - 1 those rows are in place for every
// column up to j + kl + ku; the few columns beyond, whose top rows are
// outside the band (and zero), go through a dense copy of their top rows.
//
// The trailing columns are cut into tasks at fixed places: the next block's
// columns, then runs of `chunk` columns (oracle query 18). Thread 0 updates
// the next block's columns and factors its panel into the other panel
// buffer while the team, thread 0 included once it is done, claims the
// other tasks from an atomic counter; a barrier ends each block. A task
// computes the same whichever thread runs it, and the cuts do not depend on
// the thread count, so every thread count gives the serial result bit for
// bit. Thread 0 alone writes the pivots, INFO and the reach ju; the others
// read a block's record after the barrier that follows its factorization.
//
// The path: column by column when the oracle's block size is 1 or larger
// than kl (as published); a team when more than one thread may run, the
// call is not inside a parallel region and kl + ku reaches the oracle's
// crossover (query 3, which also asks for enough blocks); otherwise the
// blocked factorization on the calling thread.
#pragma once

#include <omp.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>

#include "lapack/auxiliary.h"
#include "lapack/band.h"
#include "lapack/blas_calls.h"
#include "lapack/getrf.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/spin.h"
#include "service/memory.h"
#include "service/threading.h"

namespace orb::lapack {
namespace band_detail {

extern thread_local GbtrfPath t_gbtrf_path;

// The fill-in rows (the kl rows above the band that interchanges fill) of
// columns [c0, c1) set to zero, as far as they lie in the array.
template <class T>
void zero_fill(int c0, int c1, int n, int kl, int ku, T *ab, int ldab) {
  const int kv = kl + ku;
  for (int c = std::max(c0, 0); c < std::min(c1, n); ++c)
    for (int r = std::max(0, kv - c); r < kl; ++r)
      ab[r + static_cast<std::ptrdiff_t>(c) * ldab] = T(0);
}

// Before the first column: the fill-in of the columns the first pivot rows
// may reach (the others are cleared as their turn comes).
template <class T>
void zero_fill_start(int n, int kl, int ku, T *ab, int ldab) {
  zero_fill(ku + 1, kl + ku, n, kl, ku, ab, ldab);
}

template <class T>
class BandLu {
 public:
  BandLu(int m, int n, int kl, int ku, T *ab, int ldab, int *ipiv, int nb, int chunk, T *work)
      : m_(m),
        n_(n),
        mn_(std::min(m, n)),
        kl_(kl),
        ku_(ku),
        kv_(kl + ku),
        nb_(nb),
        ldp_(nb + kl),
        chunk_(std::max(chunk, 1)),
        steps_count_((std::min(m, n) + nb - 1) / nb),
        ld_(ldab - 1),
        ldab_(ldab),
        ab_(ab),
        ipiv_(ipiv),
        work_(work) {}

  // Elements of work space for a team of `threads`.
  static std::int64_t work_size(int kl, int nb, int threads) {
    const std::int64_t panel = std::int64_t{nb + kl} * nb;
    return 2 * panel + (nb + kl) + std::int64_t{threads} * nb * nb;
  }

  int run(int threads) {
    zero_fill_start(n_, kl_, ku_, ab_, ldab_);
    factor(0);
    if (threads <= 1) {
      body(0, 1);
    } else {
#pragma omp parallel num_threads(threads)
      body(omp_get_thread_num(), omp_get_num_threads());
    }
    return info_;
  }

 private:
  struct Step {
    int j, jb, rows, ju;  // first column, width, panel rows, last column reached
  };

  // A(i, c) in the band seen with leading dimension ldab - 1.
  T *el(int i, int c) const {
    return ab_ + kv_ + i + static_cast<std::ptrdiff_t>(c) * ld_;
  }
  T *panel(int k) const {
    return work_ + (k & 1) * std::int64_t{ldp_} * nb_;
  }
  T *undo_column() const {
    return work_ + 2 * std::int64_t{ldp_} * nb_;
  }
  T *scratch(int tid) const {
    return work_ + 2 * std::int64_t{ldp_} * nb_ + ldp_ + std::int64_t{tid} * nb_ * nb_;
  }

  // Block k's panel: factored, its U and multipliers stored in the band,
  // its pivots made absolute, and the reach recorded. Thread 0 only.
  void factor(int k) {
    Step &s = steps_[k & 1];
    s.j = k * nb_;
    s.jb = std::min(nb_, mn_ - s.j);
    s.rows = std::min(m_ - s.j, s.jb + kl_);
    const int j = s.j, jb = s.jb, rows = s.rows;
    zero_fill(j + kv_, j + jb + kv_, n_, kl_, ku_, ab_, ldab_);
    T *p = panel(k);
    for (int cc = 0; cc < jb; ++cc) {
      const T *src = el(j, j + cc);
      T *dst = p + static_cast<std::ptrdiff_t>(cc) * ldp_;
      const int in_band = std::min(rows, cc + kl_ + 1);
      std::copy(src, src + in_band, dst);
      std::fill(dst + in_band, dst + rows, T(0));
    }
    int *piv = ipiv_ + j;
    const int zero = getrf_core(rows, jb, p, ldp_, piv, false);
    if (zero > 0 && info_ == 0) info_ = j + zero;
    for (int r = 0; r < jb; ++r)
      if (p[r + static_cast<std::ptrdiff_t>(r) * ldp_] != T(0))
        ju_ = std::max(ju_, std::min(j + piv[r] - 1 + ku_, n_ - 1));
    T *v = undo_column();
    for (int cc = 0; cc < jb; ++cc) {
      const T *src = p + static_cast<std::ptrdiff_t>(cc) * ldp_;
      T *dst = el(j, j + cc);
      std::copy(src, src + cc + 1, dst);
      const int km = std::min(kl_, m_ - 1 - (j + cc));
      if (km <= 0) continue;
      // The later interchanges of the block, undone on a copy.
      std::copy(src, src + rows, v);
      for (int r = jb - 1; r > cc; --r) std::swap(v[r], v[piv[r] - 1]);
      std::copy(v + cc + 1, v + cc + 1 + km, dst + cc + 1);
    }
    for (int r = 0; r < jb; ++r) piv[r] += j;
    s.ju = ju_;
  }

  // Block k applied to the columns [c0, c1), all at or beyond its end and
  // at most its reach; `w` is the calling thread's scratch.
  void update(int k, int c0, int c1, T *w) const {
    const Step &s = steps_[k & 1];
    const T *p = panel(k);
    const int j = s.j, jb = s.jb, below = s.rows - s.jb;
    const int split = std::min(c1, j + kv_ + 1);
    if (c0 < split) {
      const int cols = split - c0;
      laswp(cols, el(0, c0), ld_, j + 1, j + jb, ipiv_, 1);
      trsm_here(kLowerUnit, jb, cols, T(1), p, ldp_, el(j, c0), ld_);
      gemm_here(Op::kNone, Op::kNone, below, cols, jb, T(-1), p + jb, ldp_, el(j, c0), ld_, T(1),
                el(j + jb, c0), ld_);
    }
    const int t0 = std::max(c0, split), nt = c1 - t0;
    if (nt <= 0) return;
    // Columns beyond j + kl + ku: rows j .. c - kl - ku - 1 are outside the
    // band and zero; the top jb rows go through w.
    for (int q = 0; q < nt; ++q) {
      const int first = t0 + q - kv_ - j;
      const T *col = el(j, t0 + q);
      T *wq = w + static_cast<std::ptrdiff_t>(q) * nb_;
      std::fill(wq, wq + first, T(0));
      std::copy(col + first, col + jb, wq + first);
    }
    for (int r = 0; r < jb; ++r) {
      const int pr = ipiv_[j + r] - 1 - j;
      if (pr == r) continue;
      for (int q = 0; q < nt; ++q) {
        T *wq = w + static_cast<std::ptrdiff_t>(q) * nb_;
        std::swap(wq[r], pr < jb ? wq[pr] : el(j, t0 + q)[pr]);
      }
    }
    trsm_here(kLowerUnit, jb, nt, T(1), p, ldp_, w, nb_);
    gemm_here(Op::kNone, Op::kNone, below, nt, jb, T(-1), p + jb, ldp_, w, nb_, T(1),
              el(j + jb, t0), ld_);
    for (int q = 0; q < nt; ++q) {
      const int first = t0 + q - kv_ - j;
      const T *wq = w + static_cast<std::ptrdiff_t>(q) * nb_;
      std::copy(wq + first, wq + jb, el(j, t0 + q) + first);
    }
  }

  void body(int tid, int team) {
    for (int k = 0; k < steps_count_; ++k) {
      const Step s = steps_[k & 1];
      const bool more = k + 1 < steps_count_;
      const int first = s.j + s.jb, end = s.ju + 1;
      const int ahead = more ? std::min(nb_, mn_ - first) : 0;
      if (tid == 0) {
        next_[(k + 1) & 1].store(0, std::memory_order_relaxed);
        if (more) {
          update(k, first, std::min(first + ahead, end), scratch(0));
          factor(k + 1);
        }
      }
      const int start = first + ahead, count = end - start;
      while (count > 0) {
        const int c = next_[k & 1].fetch_add(chunk_, std::memory_order_relaxed);
        if (c >= count) break;
        update(k, start + c, start + std::min(c + chunk_, count), scratch(tid));
      }
      if (team > 1) barrier(team);
    }
  }

  // The end of a block: each thread waits for the others, spinning briefly
  // and then giving the processor away, which the thread it waits for may
  // need on a busy machine. The last to arrive opens the next round; the
  // counter's read-modify-writes and the round's release and acquire order
  // every thread's writes of the block before everyone's reads after it.
  void barrier(int team) {
    const int round = round_.load(std::memory_order_acquire);
    if (arrived_.fetch_add(1, std::memory_order_acq_rel) == team - 1) {
      arrived_.store(0, std::memory_order_relaxed);
      round_.store(round + 1, std::memory_order_release);
      return;
    }
    spin_until([&] { return round_.load(std::memory_order_acquire) != round; });
  }

  const int m_, n_, mn_, kl_, ku_, kv_, nb_, ldp_, chunk_, steps_count_;
  const int ld_, ldab_;
  T *const ab_;
  int *const ipiv_;
  T *const work_;
  Step steps_[2] = {};
  std::atomic<int> next_[2] = {0, 0};
  std::atomic<int> arrived_{0}, round_{0};
  int info_ = 0;
  int ju_ = 0;
};

}  // namespace band_detail

template <class T>
int gbtrf_blocked(int m, int n, int kl, int ku, T *ab, int ldab, int *ipiv, int nb, int threads) {
  if (m == 0 || n == 0) return 0;
  using Lu = band_detail::BandLu<T>;
  threads = std::max(threads, 1);
  mem::Buffer<T> work(Lu::work_size(kl, nb, threads), 128);
  if (!work) return -1;
  const int chunk = oracle(kChunk, name<T>("GBTRF"), m, n, kl, ku);
  Lu lu(m, n, kl, ku, ab, ldab, ipiv, nb, chunk > 0 ? chunk : nb, work.get());
  return lu.run(threads);
}

template <class T>
int gbtrf(int m, int n, int kl, int ku, T *ab, int ldab, int *ipiv) {
  using band_detail::t_gbtrf_path;
  t_gbtrf_path = GbtrfPath::kNone;
  if (m == 0 || n == 0) return 0;
  const Name6 nm = name<T>("GBTRF");
  const int nb = oracle(kBlockSize, nm, m, n, kl, ku);
  if (nb > 1 && nb <= kl) {
    const int threads = omp_in_parallel() ? 1 : orb::threads::max_threads();
    const bool team = threads > 1 && kl + ku >= oracle(kCrossover, nm, m, n, kl, ku);
    const int info = gbtrf_blocked(m, n, kl, ku, ab, ldab, ipiv, nb, team ? threads : 1);
    if (info >= 0) {
      t_gbtrf_path = team ? GbtrfPath::kThreaded : GbtrfPath::kBlocked;
      return info;
    }
  }
  t_gbtrf_path = GbtrfPath::kUnblocked;
  return gbtf2(m, n, kl, ku, ab, ldab, ipiv);
}

}  // namespace orb::lapack
