// xpotrf_omp: the Cholesky factorization behind SPOTRF, CPOTRF and DPOTRF,
// with its path choice: column by column below the oracle's crossover, the
// recursive factorization on one thread, the scheduled one on a team.
//
// The scheduled factorization cuts the matrix into blocks of nb columns
// (rows, for the upper triangle) and deals them out to the team in turn:
// block j belongs to thread j mod t. A thread takes its blocks in order;
// for each it subtracts the contributions of the blocks before it, then
// factors the diagonal block and solves the rest of the block with it. The
// contributions come in two products: blocks 0 .. j-2 together, then block
// j-1, the one most recently factored. So a block's owner does the large
// product while its neighbour factors j-1, and waits only for that one
// block's small product. Each block's word says whether it is factored
// (stored with release after its data, loaded with acquire); a failing
// diagonal block raises a flag on which every waiting thread stops, since
// no block after it will be factored. The products are
// the same whatever the team size, so every team gives the same bits.
#include <omp.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <new>

#include "blas/level3/level3.h"
#include "lapack/blas_calls.h"
#include "lapack/cholesky.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/spin.h"
#include "service/threading.h"

namespace orb::lapack {
namespace {

thread_local PotrfPath t_last_path = PotrfPath::kNone;

inline std::ptrdiff_t at(int i, int j, int ld) {
  return i + static_cast<std::ptrdiff_t>(j) * ld;
}

enum State : int { kPending = 0, kFactored = 1 };

template <class T>
class Scheduled {
 public:
  Scheduled(Uplo uplo, int n, T *a, int lda, int nb, std::atomic<int> *words)
      : upper_(uplo == Uplo::kUpper),
        n_(n),
        nb_(nb),
        nblk_((n + nb - 1) / nb),
        a_(a),
        lda_(lda),
        words_(words) {}

  int nblk() const { return nblk_; }

  // The thread `tid` of `nt`: its blocks in order.
  void work(int tid, int nt) {
    for (int j = tid; j < nblk_; j += nt) {
      if (j >= 2 && !wait(j - 2)) return;
      subtract(j, 0, j - 1);
      if (j >= 1) {
        if (!wait(j - 1)) return;
        subtract(j, j - 1, j);
      }
      const int i = factor(j);
      if (i != 0) {
        info_.store(j * nb_ + i, std::memory_order_relaxed);
        failed_.store(true, std::memory_order_release);
        return;
      }
      words_[j].store(kFactored, std::memory_order_release);
    }
  }

  int info() const { return info_.load(std::memory_order_relaxed); }

 private:
  // Waits for block k; false when the factorization has failed there or
  // before it.
  bool wait(int k) {
    bool factored = false;
    spin_until([&] {
      factored = words_[k].load(std::memory_order_acquire) == kFactored;
      return factored || failed_.load(std::memory_order_acquire);
    });
    return factored;
  }

  // Block j minus the contributions of blocks k0 .. k1-1.
  void subtract(int j, int k0, int k1) {
    if (k1 <= k0) return;
    constexpr Op adj = is_complex_v<T> ? Op::kConjTrans : Op::kTrans;
    constexpr bool herm = is_complex_v<T>;
    const int r = j * nb_, jb = std::min(nb_, n_ - r), rest = n_ - r - jb;
    const int c0 = k0 * nb_, k = k1 * nb_ - c0;
    T *d = a_ + at(r, r, lda_);
    if (upper_) {
      const T *u = a_ + at(c0, r, lda_);  // U(K, block j and right of it)
      blas::syrk_serial(true, adj, herm, jb, k, T(-1), u, lda_, T(1), d, lda_);
      gemm_here(adj, Op::kNone, jb, rest, k, T(-1), u, lda_, u + at(0, jb, lda_), lda_, T(1),
                d + at(0, jb, lda_), lda_);
    } else {
      const T *l = a_ + at(r, c0, lda_);  // L(block j and below it, K)
      blas::syrk_serial(false, Op::kNone, herm, jb, k, T(-1), l, lda_, T(1), d, lda_);
      gemm_here(Op::kNone, adj, rest, jb, k, T(-1), l + jb, lda_, l, lda_, T(1), d + jb, lda_);
    }
  }

  // Block j's diagonal factored and the rest of the block solved with it.
  // Returns the failing column within the block, or 0.
  int factor(int j) {
    constexpr Op adj = is_complex_v<T> ? Op::kConjTrans : Op::kTrans;
    const int r = j * nb_, jb = std::min(nb_, n_ - r), rest = n_ - r - jb;
    T *d = a_ + at(r, r, lda_);
    const int i = potrf_recursive(upper_ ? Uplo::kUpper : Uplo::kLower, jb, d, lda_, false);
    if (i != 0) return i;
    if (upper_)
      trsm_here(Triangular{true, true, adj, false}, jb, rest, T(1), d, lda_, d + at(0, jb, lda_),
                lda_);
    else
      trsm_here(Triangular{false, false, adj, false}, rest, jb, T(1), d, lda_, d + jb, lda_);
    return 0;
  }

  const bool upper_;
  const int n_, nb_, nblk_;
  T *const a_;
  const int lda_;
  std::atomic<int> *const words_;
  std::atomic<int> info_{0};
  std::atomic<bool> failed_{false};
};

}  // namespace

template <class T>
bool potrf_scheduled(Uplo uplo, int n, T *a, int lda, int nb, int threads, int *info) {
  const int nblk = (n + nb - 1) / nb;
  std::unique_ptr<std::atomic<int>[]> words(new (std::nothrow) std::atomic<int>[nblk]);
  if (!words) return false;
  for (int j = 0; j < nblk; ++j) words[j].store(kPending, std::memory_order_relaxed);
  Scheduled<T> s(uplo, n, a, lda, nb, words.get());
  const int team = std::min(threads, nblk);
#pragma omp parallel num_threads(team)
  s.work(omp_get_thread_num(), omp_get_num_threads());
  *info = s.info();
  return true;
}

template <class T>
int potrf(Uplo uplo, int n, T *a, int lda) {
  t_last_path = PotrfPath::kNone;
  if (n == 0) return 0;
  const Name6 nm = name<T>("POTRF");
  if (n < oracle(kCrossover, nm, n)) {
    t_last_path = PotrfPath::kUnblocked;
    return potf2(uplo, n, a, lda);
  }
  const int threads = omp_in_parallel() ? 1 : orb::threads::max_threads();
  if (threads > 1 && n >= oracle(kCrossover, nm, n, -1, threads)) {
    const int nb = oracle(kBlockSize, nm, n, -1, threads);
    int info = 0;
    if (nb > 0 && nb < n && potrf_scheduled(uplo, n, a, lda, nb, threads, &info)) {
      t_last_path = PotrfPath::kScheduled;
      return info;
    }
  }
  t_last_path = PotrfPath::kRecursive;
  return potrf_recursive(uplo, n, a, lda, false);
}

PotrfPath potrf_last_path() {
  return t_last_path;
}

#define ORB_XPOTRF(T)                                                  \
  template bool potrf_scheduled(Uplo, int, T *, int, int, int, int *); \
  template int potrf(Uplo, int, T *, int);
ORB_XPOTRF(float)
ORB_XPOTRF(double)
ORB_XPOTRF(c8)
#undef ORB_XPOTRF

}  // namespace orb::lapack
