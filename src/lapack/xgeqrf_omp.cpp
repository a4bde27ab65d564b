// xgeqrf_omp: the QR factorization behind SGEQRF and CGEQRF, with its path
// choice: column by column for small or short-work problems, the published
// blocked factorization below the oracle's team crossover, and above it a
// look-ahead schedule on a team.
//
// The schedule cuts the columns into blocks of nb (the panels, then blocks
// of the columns right of min(m, n)). Thread 0 factors the panels: once
// panel p is factored and its triangular factor formed, it applies panel p
// to block p + 1 alone, factors that as panel p + 1, and only then helps
// with the rest of panel p's update. The other threads take that update,
// blocks p + 2 onwards: block p + 2 (the panel after next) alone, then runs
// of several blocks (one wide product each), claimed from a counter per
// panel; a run shrinks as fewer blocks remain.
// Each block's word counts the panels applied to it (stored with release
// after the data, loaded with acquire); each panel's word says whether it is
// factored. Every block receives the same products in the same order as on
// one thread, whatever the team.
#include <omp.h>

#include <algorithm>
#include <atomic>
#include <complex>
#include <cstddef>
#include <memory>
#include <new>

#include "lapack/householder.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/qr.h"
#include "lapack/spin.h"
#include "service/memory.h"
#include "service/threading.h"

namespace orb::lapack {
namespace {

thread_local GeqrfPath t_last_path = GeqrfPath::kNone;

inline std::ptrdiff_t at(int i, int j, int ld) {
  return i + static_cast<std::ptrdiff_t>(j) * ld;
}

template <class T>
class Team {
 public:
  Team(int m, int n, T *a, int lda, T *tau, int nb, T *tfactors, std::atomic<int> *applied,
       std::atomic<int> *factored, std::atomic<int> *next)
      : m_(m),
        n_(n),
        k_(std::min(m, n)),
        nb_(nb),
        npanel_((k_ + nb - 1) / nb),
        nblk_(npanel_ + (n - k_ + nb - 1) / nb),
        a_(a),
        lda_(lda),
        tau_(tau),
        t_(tfactors),
        applied_(applied),
        factored_(factored),
        next_(next) {}

  int blocks() const { return nblk_; }
  int panels() const { return npanel_; }

  // Thread `tid`'s share; w holds n by nb scalars.
  void work(int tid, T *w) {
    if (tid == 0) {
      factor(0, w);
      for (int p = 0; p < npanel_; ++p) {
        if (p + 1 < npanel_) {
          wait_applied(p + 1, p);
          apply(p, p + 1, p + 2, w);
          factor(p + 1, w);
        }
        update(p, w);
      }
    } else {
      for (int p = 0; p < npanel_; ++p) {
        spin_until([&] { return factored_[p].load(std::memory_order_acquire) != 0; });
        update(p, w);
      }
    }
  }

 private:
  int col(int j) const { return j < npanel_ ? j * nb_ : std::min(n_, k_ + (j - npanel_) * nb_); }
  T *tf(int p) const { return t_ + static_cast<std::ptrdiff_t>(p) * nb_ * nb_; }

  void wait_applied(int j, int count) {
    spin_until([&] { return applied_[j].load(std::memory_order_acquire) >= count; });
  }

  // Panel p (block p, all earlier panels applied): factored, its T formed.
  void factor(int p, T *w) {
    const int c0 = col(p), ib = col(p + 1) - c0;
    T *d = a_ + at(c0, c0, lda_);
    panel(m_ - c0, ib, d, tau_ + c0, w);
    larft(Direct::kForward, Storev::kColumns, m_ - c0, ib, d, lda_, tau_ + c0, tf(p), nb_);
    factored_[p].store(1, std::memory_order_release);
  }

  // The rows-by-cols panel at d, in sub-panels of kInner columns, each
  // factored column by column and applied to the rest of the panel with the
  // level-3 calls: the panel is thread 0's path, and its columns' level-2
  // work would otherwise set the team's pace. w holds n by nb scalars.
  void panel(int rows, int cols, T *d, T *tau, T *w) {
    constexpr int kInner = 16;
    if (cols <= 2 * kInner) {
      geqr2(rows, cols, d, lda_, tau, w);
      return;
    }
    T *t = w, *rest = w + kInner * kInner;  // the sub-panel's T, then larfb's work
    for (int s = 0; s < cols; s += kInner) {
      const int jb = std::min(kInner, cols - s);
      T *ds = d + at(s, s, lda_);
      geqr2(rows - s, jb, ds, lda_, tau + s, w);
      if (s + jb < cols) {
        larft(Direct::kForward, Storev::kColumns, rows - s, jb, ds, lda_, tau + s, t, kInner);
        larfb_here(Side::kLeft, Op::kConjTrans, Direct::kForward, Storev::kColumns, rows - s,
                   cols - s - jb, jb, ds, lda_, t, kInner, ds + at(0, jb, lda_), lda_, rest,
                   cols);
      }
    }
  }

  // Panel p applied to blocks [j0, j1), each already holding panels 0 .. p-1.
  void apply(int p, int j0, int j1, T *w) {
    const int r0 = col(p), ib = col(p + 1) - r0, c0 = col(j0), c1 = col(j1);
    for (int j = j0; j < j1; ++j) wait_applied(j, p);
    larfb_here(Side::kLeft, Op::kConjTrans, Direct::kForward, Storev::kColumns, m_ - r0, c1 - c0,
               ib, a_ + at(r0, r0, lda_), lda_, tf(p), nb_, a_ + at(r0, c0, lda_), lda_, w, n_);
    for (int j = j0; j < j1; ++j) applied_[j].store(p + 1, std::memory_order_release);
  }

  // Claims runs of panel p's remaining update (blocks p + 2 onwards, or p + 1
  // after the last panel) until none is left.
  void update(int p, T *w) {
    for (;;) {
      int j0 = next_[p].load(std::memory_order_relaxed), take;
      do {
        const int left = nblk_ - j0;
        if (left <= 0) return;
        // The next panel but one goes alone, so that thread 0 need not wait
        // for a long run to reach it; then halves of what remains.
        take = j0 == p + 2 && j0 < npanel_ ? 1 : std::max(1, (left + 1) / 2);
      } while (!next_[p].compare_exchange_weak(j0, j0 + take, std::memory_order_relaxed));
      apply(p, j0, j0 + take, w);
    }
  }

  const int m_, n_, k_, nb_, npanel_, nblk_;
  T *const a_;
  const int lda_;
  T *const tau_;
  T *const t_;
  std::atomic<int> *const applied_, *const factored_, *const next_;
};

}  // namespace

template <class T>
bool geqrf_team(int m, int n, T *a, int lda, T *tau, int nb, int threads) {
  const int k = std::min(m, n);
  if (k <= 0) return true;
  nb = std::max(1, std::min(nb, k));
  const int npanel = (k + nb - 1) / nb, nblk = npanel + (n - k + nb - 1) / nb;
  mem::Buffer<T> tfactors(static_cast<std::int64_t>(npanel) * nb * nb, 64);
  std::unique_ptr<std::atomic<int>[]> words(new (std::nothrow) std::atomic<int>[nblk + 2 * npanel]);
  if (!tfactors || !words) return false;
  std::atomic<int> *applied = words.get(), *factored = applied + nblk, *next = factored + npanel;
  for (int j = 0; j < nblk; ++j) applied[j].store(0, std::memory_order_relaxed);
  for (int p = 0; p < npanel; ++p) {
    factored[p].store(0, std::memory_order_relaxed);
    next[p].store(std::min(nblk, p + 2), std::memory_order_relaxed);
  }
  if (npanel >= 1) next[npanel - 1].store(npanel, std::memory_order_relaxed);
  Team<T> team(m, n, a, lda, tau, nb, tfactors.get(), applied, factored, next);
  const int nt = std::max(1, std::min(threads, nblk - 1));
  // Every thread's product work space, n by nb.
  const std::int64_t wsize = static_cast<std::int64_t>(n) * nb;
  mem::Buffer<T> w(wsize * nt, 64);
  if (!w) return false;
#pragma omp parallel num_threads(nt)
  {
    const int tid = omp_get_thread_num();
    team.work(tid, w.get() + wsize * tid);
  }
  return true;
}

template <class T>
std::int64_t geqrf_worksize(int m, int n) {
  (void)m;
  const int nb = oracle(kBlockSize, name<T>("GEQRF"), m, n);
  return std::max<std::int64_t>(1, static_cast<std::int64_t>(n) * nb);
}

template <class T>
void geqrf(int m, int n, T *a, int lda, T *tau, T *work, int lwork) {
  t_last_path = GeqrfPath::kNone;
  const Name6 nm = name<T>("GEQRF");
  const int k = std::min(m, n);
  int nb = oracle(kBlockSize, nm, m, n);
  const std::int64_t optimal = geqrf_worksize<T>(m, n);
  if (k == 0) {
    work[0] = T(1);
    return;
  }
  int nbmin = 2, nx = 0;
  std::int64_t iws = n;
  if (nb > 1 && nb < k) {
    nx = std::max(0, oracle(kCrossover, nm, m, n));
    if (nx < k) {
      iws = static_cast<std::int64_t>(n) * nb;
      if (lwork < iws) {
        nb = lwork / n;
        nbmin = std::max(2, oracle(kMinBlockSize, nm, m, n));
      }
    }
  }
  const bool blocked = nb >= nbmin && nb < k && nx < k;
  const int threads = omp_in_parallel() ? 1 : orb::threads::max_threads();
  if (blocked && threads > 1 && lwork >= optimal && k >= oracle(kCrossover, nm, m, n, threads)) {
    if (geqrf_team(m, n, a, lda, tau, nb, threads)) {
      t_last_path = GeqrfPath::kTeam;
      work[0] = T(static_cast<real_t<T>>(optimal));
      return;
    }
  }
  int i = 0;
  if (blocked) {
    t_last_path = GeqrfPath::kBlocked;
    const int ldwork = n;
    for (; i < k - nx; i += nb) {
      const int ib = std::min(k - i, nb);
      T *d = a + at(i, i, lda);
      geqr2(m - i, ib, d, lda, tau + i, work);
      if (i + ib < n) {
        larft(Direct::kForward, Storev::kColumns, m - i, ib, d, lda, tau + i, work, ldwork);
        larfb(Side::kLeft, Op::kConjTrans, Direct::kForward, Storev::kColumns, m - i, n - i - ib,
              ib, d, lda, work, ldwork, d + static_cast<std::ptrdiff_t>(ib) * lda, lda, work + ib,
              ldwork);
      }
    }
  } else {
    t_last_path = GeqrfPath::kUnblocked;
  }
  if (i < k) geqr2(m - i, n - i, a + at(i, i, lda), lda, tau + i, work);
  work[0] = T(static_cast<real_t<T>>(iws));
}

GeqrfPath geqrf_last_path() {
  return t_last_path;
}

#define ORB_XGEQRF(T)                                             \
  template bool geqrf_team<T>(int, int, T *, int, T *, int, int); \
  template std::int64_t geqrf_worksize<T>(int, int);              \
  template void geqrf<T>(int, int, T *, int, T *, T *, int);
ORB_XGEQRF(float)
ORB_XGEQRF(double)
ORB_XGEQRF(std::complex<float>)
ORB_XGEQRF(std::complex<double>)
#undef ORB_XGEQRF

}  // namespace orb::lapack
