// The blocked products with Q shared by the modules xormqr_omp, xormlq_omp
// and xormql_omp: the published blocking (blocks of at most 64 reflectors,
// each block's triangular factor formed by larft and applied by larfb, T
// kept in WORK after the product's nw-by-nb work space), and the team form,
// where the columns (left) or rows (right) of C are cut into one slice per
// thread and each thread applies every block, in the same order, to its
// slice. The blocks' factors are formed once, before the team starts, and
// the slices' products are column (row) for column the serial ones, so the
// team gives the serial result's bits.
#pragma once

#include <omp.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "lapack/householder.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/qr.h"
#include "lapack/spin.h"
#include "service/memory.h"

namespace orb::lapack::orm {

enum class Layout { kQr, kLq, kQl };

constexpr int kMaxBlock = 64;
constexpr int kLdt = kMaxBlock + 1;
constexpr std::int64_t kTSize = std::int64_t{kLdt} * kMaxBlock;

// The geometry of block [i, i + ib) of a product's k reflectors.
struct Block {
  std::ptrdiff_t v_offset;  // of V within A
  int order;                // the reflectors' order (rows of V, or columns for LQ)
  int c_start, c_len;       // the rows (left) or columns (right) of C it meets
};

inline Block block_of(Layout layout, int nq, int k, int i, int ib, int lda) {
  switch (layout) {
    case Layout::kQr:
      return {i + static_cast<std::ptrdiff_t>(i) * lda, nq - i, i, nq - i};
    case Layout::kLq:
      return {i + static_cast<std::ptrdiff_t>(i) * lda, nq - i, i, nq - i};
    default:  // QL: vectors above the diagonal of A's last k rows
      return {static_cast<std::ptrdiff_t>(i) * lda, nq - k + i + ib, 0, nq - k + i + ib};
  }
}

inline Direct direct_of(Layout layout) {
  return layout == Layout::kQl ? Direct::kBackward : Direct::kForward;
}
inline Storev storev_of(Layout layout) {
  return layout == Layout::kLq ? Storev::kRows : Storev::kColumns;
}
// Whether the blocks go from the first reflector to the last.
inline bool ascending(Layout layout, Side side, Op op) {
  const bool left = side == Side::kLeft, notran = op == Op::kNone;
  return layout == Layout::kQr ? left != notran : left == notran;
}
// The block reflector's operation: the LQ's Q is a product of adjoints.
inline Op block_op(Layout layout, Op op) {
  const Op adj = Op::kConjTrans;
  if (layout == Layout::kLq) return op == Op::kNone ? adj : Op::kNone;
  return op == Op::kNone ? Op::kNone : adj;
}

inline const char *routine_of(Layout layout, bool complex) {
  switch (layout) {
    case Layout::kQr:
      return complex ? "UNMQR" : "ORMQR";
    case Layout::kLq:
      return complex ? "UNMLQ" : "ORMLQ";
    default:
      return complex ? "UNMQL" : "ORMQL";
  }
}

// The oracle's block size for the product, at most kMaxBlock.
template <class T>
int block_size(Layout layout, int m, int n, int k) {
  return std::min(kMaxBlock,
                  oracle(kBlockSize, name<T>(routine_of(layout, is_complex_v<T>)), m, n, k));
}

template <class T>
std::int64_t worksize(Layout layout, Side side, int m, int n, int k) {
  const int nw = std::max(1, side == Side::kLeft ? n : m);
  return static_cast<std::int64_t>(nw) * block_size<T>(layout, m, n, k) + kTSize;
}

// Whether tests forced the team form (orm_force_team).
bool team_forced();

// The team size of a product (1: serial); `threads` 0 asks the threading
// control.
int team_size(const char *routine, char prec, Side side, int m, int n, int k, int threads);

// C := op(Q) C or C op(Q), Q from the k reflectors of A in `layout`.
template <class T>
void run(Layout layout, Side side, Op op, int m, int n, int k, const T *a, int lda, const T *tau,
         T *c, int ldc, T *work, int lwork) {
  const bool left = side == Side::kLeft;
  const int nq = left ? m : n, nw = std::max(1, left ? n : m), other = left ? n : m;
  const Name6 nm = name<T>(routine_of(layout, is_complex_v<T>));
  int nb = block_size<T>(layout, m, n, k);
  const std::int64_t lwkopt = static_cast<std::int64_t>(nw) * nb + kTSize;
  if (m == 0 || n == 0 || k == 0) {
    work[0] = T(1);
    return;
  }
  int nbmin = 2;
  if (nb > 1 && nb < k && lwork < lwkopt) {
    nb = static_cast<int>((lwork - kTSize) / nw);
    nbmin = std::max(2, oracle(kMinBlockSize, nm, m, n, k));
  }
  const Direct direct = direct_of(layout);
  const Storev storev = storev_of(layout);
  const Op bop = block_op(layout, op);
  const bool up = ascending(layout, side, op);
  const int nblk = nb > 0 ? (k + nb - 1) / nb : 0;
  // The reflectors [i, i + ib) of block j.
  const auto reflectors = [&](int j) {
    const int i = j * nb;
    return std::pair{i, std::min(nb, k - i)};
  };
  const auto factor = [&](int j, T *t, int ldt) {
    const auto [i, ib] = reflectors(j);
    const Block b = block_of(layout, nq, k, i, ib, lda);
    larft(direct, storev, b.order, ib, a + b.v_offset, lda, tau + i, t, ldt);
  };
  // Block j applied to C's slice [s0, s1) of its other dimension.
  const auto apply = [&](int j, const T *t, int ldt, int s0, int s1, T *w, int ldw, auto here) {
    const auto [i, ib] = reflectors(j);
    const Block b = block_of(layout, nq, k, i, ib, lda);
    T *cs = left ? c + b.c_start + static_cast<std::ptrdiff_t>(s0) * ldc
                 : c + s0 + static_cast<std::ptrdiff_t>(b.c_start) * ldc;
    const int mi = left ? b.c_len : s1 - s0, ni = left ? s1 - s0 : b.c_len;
    if constexpr (decltype(here)::value)
      larfb_here(side, bop, direct, storev, mi, ni, ib, a + b.v_offset, lda, t, ldt, cs, ldc, w,
                 ldw);
    else
      larfb(side, bop, direct, storev, mi, ni, ib, a + b.v_offset, lda, t, ldt, cs, ldc, w, ldw);
  };

  if (nb < nbmin || nb >= k) {
    if (layout == Layout::kQr)
      orm2r(side, op, m, n, k, a, lda, tau, c, ldc, work);
    else if (layout == Layout::kLq)
      orml2(side, op, m, n, k, a, lda, tau, c, ldc, work);
    else
      orm2l(side, op, m, n, k, a, lda, tau, c, ldc, work);
    work[0] = T(static_cast<real_t<T>>(lwkopt));
    return;
  }

  const int team = team_size(nm.text, precision_letter<T>(), side, m, n, k, 0);
  if (team > 1 || team_forced()) {
    // Every block's factor (ldt nb) and every slice's work space, taken
    // before the team starts.
    mem::Buffer<T> tf(static_cast<std::int64_t>(nblk) * nb * nb, 64);
    mem::Buffer<T> wb(static_cast<std::int64_t>(other) * nb, 64);
    std::unique_ptr<std::atomic<int>[]> ready(new (std::nothrow) std::atomic<int>[nblk]);
    if (tf && wb && ready) {
      for (int j = 0; j < nblk; ++j) ready[j].store(0, std::memory_order_relaxed);
      const auto tj = [&](int j) { return tf.get() + static_cast<std::ptrdiff_t>(j) * nb * nb; };
#pragma omp parallel num_threads(std::max(1, team))
      {
        const int tid = omp_get_thread_num(), nth = omp_get_num_threads();
        for (int j = tid; j < nblk; j += nth) {
          factor(j, tj(j), nb);
          ready[j].store(1, std::memory_order_release);
        }
        const int s0 = static_cast<int>(static_cast<std::int64_t>(other) * tid / nth);
        const int s1 = static_cast<int>(static_cast<std::int64_t>(other) * (tid + 1) / nth);
        T *w = wb.get() + static_cast<std::ptrdiff_t>(s0) * nb;
        for (int s = 0; s < nblk && s1 > s0; ++s) {
          const int j = up ? s : nblk - 1 - s;
          spin_until([&] { return ready[j].load(std::memory_order_acquire) != 0; });
          apply(j, tj(j), nb, s0, s1, w, s1 - s0, std::true_type{});
        }
      }
      work[0] = T(static_cast<real_t<T>>(lwkopt));
      return;
    }
  }

  // The published form: T after the nw-by-nb work space.
  T *t = work + static_cast<std::ptrdiff_t>(nw) * nb;
  for (int s = 0; s < nblk; ++s) {
    const int j = up ? s : nblk - 1 - s;
    factor(j, t, kLdt);
    apply(j, t, kLdt, 0, other, work, nw, std::false_type{});
  }
  work[0] = T(static_cast<real_t<T>>(lwkopt));
}

}  // namespace orb::lapack::orm
