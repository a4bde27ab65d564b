// xgetrf_omp: the threaded LU factorization behind SGETRF, CGETRF, DGETRF
// and ZGETRF. It chooses among the serial factorization, the inner-blocked
// threaded one (xgetrf_ib_omp), the serial blocked one and its own
// panel-scheduled factorization, in that order of tests.
//
// The scheduled factorization cuts the columns into blocks of nb. Block 0's
// panel is factored on the calling thread; then a team works through the
// blocks, each thread taking what is ready:
//   - the next panel p, when every earlier panel has been applied to block
//     p and the other blocks are no more than the look-ahead (oracle query
//     17) panels behind it: its factorization by the serial LU core;
//   - otherwise block p's next update, or the update of the block furthest
//     behind with its next panel, widened to up to `chunk` (query 18)
//     neighbouring blocks in the same state: their row interchanges, the
//     solve with the panel's unit lower triangle and the product that
//     updates the rows below.
// Each block's progress word counts the panels applied to it, twice, plus
// one while a thread holds the block; a thread takes a block by a
// compare-and-swap and hands it back with a release store, so whoever takes
// it next sees its data. The `next` counter names the first panel not yet
// factored, stored with release after the panel's data and pivots: a panel
// below it may be read by anyone who loaded `next` with acquire. The last
// panel, and its interchanges and solve on the columns beyond it, run after
// the team; the interchanges of each panel are applied to the columns on
// its left at the end.
#include <omp.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <new>

#include "lapack/auxiliary.h"
#include "lapack/blas_calls.h"
#include "lapack/getrf.h"
#include "lapack/oracle.h"
#include "lapack/spin.h"
#include "service/check.h"
#include "service/entry.h"
#include "service/memory.h"
#include "service/threading.h"

namespace orb::lapack {
namespace {

thread_local GetrfPath t_last_path = GetrfPath::kNone;

inline std::ptrdiff_t at(int i, int j, int ld) {
  return i + static_cast<std::ptrdiff_t>(j) * ld;
}

// The scheduling record: this head, then one progress word per column block.
struct ScheduleHead {
  std::int32_t threads;
  std::int32_t nblk;
  std::int32_t last;               // index of the last panel
  std::int32_t lookahead;          // oracle query 17
  std::int32_t chunk;              // oracle query 18
  std::atomic<std::int32_t> done;  // blocks finished with the team's share of work
  std::atomic<std::int32_t> next;  // first panel not yet factored
};
static_assert(sizeof(ScheduleHead) == 28 && alignof(ScheduleHead) == 4);
static_assert(sizeof(std::atomic<std::int32_t>) == 4);

template <class T>
class Scheduled {
 public:
  Scheduled(int m, int n, T *a, int lda, int *ipiv, int nb, ScheduleHead *head)
      : m_(m),
        n_(n),
        mn_(std::min(m, n)),
        nb_(nb),
        a_(a),
        lda_(lda),
        ipiv_(ipiv),
        h_(head),
        words_(reinterpret_cast<std::atomic<std::int32_t> *>(head + 1)) {}

  // Panel k's factorization (rows k nb .. m of its block).
  void factor(int k, bool threaded) {
    const int r0 = k * nb_, kb = std::min(nb_, mn_ - r0);
    const int i = getrf_core(m_ - r0, kb, a_ + at(r0, r0, lda_), lda_, ipiv_ + r0, threaded);
    for (int q = r0; q < r0 + kb; ++q) ipiv_[q] += r0;
    if (i > 0) {
      int seen = zero_.load(std::memory_order_relaxed);
      while (i + r0 < seen && !zero_.compare_exchange_weak(seen, i + r0)) {
      }
    }
  }

  // Panel k applied to the columns [c0, c1).
  void apply(int k, int c0, int c1, bool threaded) {
    const int r0 = k * nb_, kb = std::min(nb_, mn_ - r0), cols = c1 - c0;
    if (cols <= 0) return;
    T *b = a_ + at(0, c0, lda_);
    laswp(cols, b, lda_, r0 + 1, r0 + kb, ipiv_, 1);
    const T *l = a_ + at(r0, r0, lda_);
    if (threaded) {
      trsm(kLowerUnit, kb, cols, T(1), l, lda_, b + r0, lda_);
      gemm(Op::kNone, Op::kNone, m_ - r0 - kb, cols, kb, T(-1), l + kb, lda_, b + r0, lda_, T(1),
           b + r0 + kb, lda_);
    } else {
      trsm_here(kLowerUnit, kb, cols, T(1), l, lda_, b + r0, lda_);
      gemm_here(Op::kNone, Op::kNone, m_ - r0 - kb, cols, kb, T(-1), l + kb, lda_, b + r0, lda_,
                T(1), b + r0 + kb, lda_);
    }
  }

  int run(int threads) {
    const int last = h_->last;
    factor(0, true);
    words_[0].store(2, std::memory_order_relaxed);
    h_->done.store(1, std::memory_order_relaxed);
#pragma omp parallel num_threads(threads)
    work();
    factor(last, true);
    const int r0 = last * nb_, kb = mn_ - r0;
    apply(last, r0 + kb, n_, true);
    for (int k = 1; k <= last; ++k) {
      const int kr = k * nb_;
      laswp(kr, a_, lda_, kr + 1, kr + std::min(nb_, mn_ - kr), ipiv_, 1);
    }
    const int z = zero_.load(std::memory_order_relaxed);
    return z == INT_MAX ? 0 : z;
  }

 private:
  // Progress (in word units) block j reaches inside the team.
  int target(int j) const {
    return j < h_->last ? 2 * (j + 1) : 2 * h_->last;
  }

  bool claim(int j, int state) {
    return words_[j].compare_exchange_strong(state, state | 1, std::memory_order_acq_rel,
                                             std::memory_order_relaxed);
  }
  void hand_back(int j, int state) {
    words_[j].store(state, std::memory_order_release);
    if (state == target(j)) h_->done.fetch_add(1, std::memory_order_acq_rel);
  }

  // Whether panel p may be factored: no later block more than the
  // look-ahead behind it.
  bool may_factor(int p) const {
    for (int j = p + 1; j < h_->nblk; ++j)
      if (words_[j].load(std::memory_order_relaxed) / 2 < p - h_->lookahead) return false;
    return true;
  }

  // The critical path: block p's next step. True when a step was made.
  bool critical(int p) {
    const int s = words_[p].load(std::memory_order_acquire);
    // Held by another thread, or factored already (p was read before).
    if ((s & 1) || s >= target(p)) return false;
    const int k = s / 2;
    if (k == p) {
      if (!may_factor(p) || !claim(p, s)) return false;
      factor(p, false);
      hand_back(p, s + 2);
      h_->next.store(p + 1, std::memory_order_release);
      return true;
    }
    if (!claim(p, s)) return false;
    apply(k, p * nb_, std::min((p + 1) * nb_, n_), false);
    hand_back(p, s + 2);
    return true;
  }

  // An update of the block furthest behind, and of up to `chunk` blocks
  // beside it in the same state. True when an update was made (or a race
  // lost: the caller looks again).
  bool bulk(int first) {
    const int ready = h_->next.load(std::memory_order_acquire);
    int best = -1, best_k = INT_MAX;
    for (int j = first; j < h_->nblk; ++j) {
      const int s = words_[j].load(std::memory_order_relaxed);
      const int k = s / 2;
      if ((s & 1) || s >= target(j) || k >= ready) continue;
      if (k < best_k) best_k = k, best = j;
    }
    if (best < 0) return false;
    const int s = 2 * best_k;
    if (!claim(best, s)) return true;
    int end = best + 1;
    // No wider than a fair share of what is left, so the team ends a step
    // together.
    const int share = (h_->nblk - best + h_->threads - 1) / h_->threads;
    const int width = std::clamp(share, 1, std::max(h_->chunk, 1));
    while (end < h_->nblk && end - best < width && s < target(end) && claim(end, s)) ++end;
    apply(best_k, best * nb_, std::min(end * nb_, n_), false);
    for (int j = best; j < end; ++j) hand_back(j, s + 2);
    return true;
  }

  void work() {
    const int nblk = h_->nblk, last = h_->last;
    int idle = 0;
    while (h_->done.load(std::memory_order_acquire) < nblk) {
      const int p = h_->next.load(std::memory_order_acquire);
      if ((p < last && critical(p)) || bulk(p < last ? p + 1 : p)) {
        idle = 0;
        continue;
      }
      idle_step(++idle);
    }
  }

  const int m_, n_, mn_, nb_;
  T *const a_;
  const int lda_;
  int *const ipiv_;
  ScheduleHead *const h_;
  std::atomic<std::int32_t> *const words_;
  std::atomic<int> zero_{INT_MAX};
};

}  // namespace

template <class T>
bool getrf_scheduled(int m, int n, T *a, int lda, int *ipiv, int nb, int threads, int *info) {
  const int nblk = (n - 1) / nb + 1;
  const std::int64_t bytes = 28 + std::int64_t{4} * nblk;
  void *raw = mem::allocate(static_cast<std::int32_t>(bytes), 128);
  if (raw == nullptr) return false;
  const Name6 nm = name<T>("GETRF");
  auto *head = new (raw) ScheduleHead{threads,
                                      nblk,
                                      m < n ? (m - 1) / nb : nblk - 1,
                                      oracle(kLookahead, nm, m, n, threads),
                                      oracle(kChunk, nm, m, n, threads),
                                      {0},
                                      {1}};
  auto *words = reinterpret_cast<std::atomic<std::int32_t> *>(head + 1);
  for (int j = 0; j < nblk; ++j) new (words + j) std::atomic<std::int32_t>(0);
  Scheduled<T> s(m, n, a, lda, ipiv, nb, head);
  *info = s.run(threads);
  mem::release(raw);
  return true;
}

namespace {

constexpr check::Test kGetrfTests[] = {check::nonneg(1), check::nonneg(2),
                                       check::ld(4, check::dim(1))};
constexpr check::Checker kGetrfChecks[] = {
    check::checker("SGETRF", kGetrfTests), check::checker("DGETRF", kGetrfTests),
    check::checker("CGETRF", kGetrfTests), check::checker("ZGETRF", kGetrfTests)};

template <class T>
const check::Checker &getrf_checks() {
  constexpr char p = precision_letter<T>();
  return kGetrfChecks[p == 'S' ? 0 : p == 'D' ? 1 : p == 'C' ? 2 : 3];
}

template <class T>
void getrf_paths(const int *pm, const int *pn, T *a, const int *plda, int *ipiv, int *info) {
  const void *args[] = {pm, pn, a, plda, ipiv, info};
  if (!check::run_lapack(getrf_checks<T>(), info, args, 6)) return;
  *info = 0;
  t_last_path = GetrfPath::kNone;
  const int m = *pm, n = *pn, lda = *plda;
  if (m == 0 || n == 0) return;
  const Name6 nm = name<T>("GETRF");
  if (oracle(kCrossover, nm, m, n, -1, -1) >= n) {
    t_last_path = GetrfPath::kSerial;
    *info = getrf_blocked(m, n, a, lda, ipiv, oracle(kBlockSize, nm, m, n, 1));
    return;
  }
  const int threads = orb::threads::max_threads();
  if (threads <= 1) {
    t_last_path = GetrfPath::kSerial;
    *info = getrf_blocked(m, n, a, lda, ipiv, oracle(kBlockSize, nm, m, n, 1));
    return;
  }
  if (oracle(kCrossover, nm, m, n, threads, -1) >= n) {
    t_last_path = GetrfPath::kInnerBlocked;
    *info = getrf_ib_omp(m, n, a, lda, ipiv, 0, 0);
    return;
  }
  const int nb = oracle(kBlockSize, nm, m, n, threads, -1);
  if (nb <= 1 || nb >= std::min(m, n)) {
    t_last_path = GetrfPath::kSerialBlocked;
    *info = getrf_blocked(m, n, a, lda, ipiv, nb);
    return;
  }
  if (getrf_scheduled(m, n, a, lda, ipiv, nb, threads, info)) {
    t_last_path = GetrfPath::kScheduled;
    return;
  }
  t_last_path = GetrfPath::kInnerBlocked;
  *info = getrf_ib_omp(m, n, a, lda, ipiv, 0, 0);
}

}  // namespace

GetrfPath getrf_last_path() {
  return t_last_path;
}

void orb_lapack_sgetrf(const int *m, const int *n, float *a, const int *lda, int *ipiv, int *info) {
  getrf_paths(m, n, a, lda, ipiv, info);
}
void orb_lapack_dgetrf(const int *m, const int *n, double *a, const int *lda, int *ipiv,
                       int *info) {
  getrf_paths(m, n, a, lda, ipiv, info);
}
void orb_lapack_cgetrf(const int *m, const int *n, c8 *a, const int *lda, int *ipiv, int *info) {
  getrf_paths(m, n, a, lda, ipiv, info);
}
void orb_lapack_zgetrf(const int *m, const int *n, c16 *a, const int *lda, int *ipiv, int *info) {
  getrf_paths(m, n, a, lda, ipiv, info);
}

template bool getrf_scheduled(int, int, float *, int, int *, int, int, int *);
template bool getrf_scheduled(int, int, double *, int, int *, int, int, int *);
template bool getrf_scheduled(int, int, c8 *, int, int *, int, int, int *);
template bool getrf_scheduled(int, int, c16 *, int, int *, int, int, int *);

}  // namespace orb::lapack
