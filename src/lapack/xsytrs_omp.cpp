// xsytrs_omp: the solves with the Bunch-Kaufman factors behind SSYTRS,
// CSYTRS and CHETRS. The published solve: U D X = B (L D X = B) block
// column after block column, each step an interchange of two rows, a rank-1
// update per column of the block and the solve with the block of D; then
// U^T X = B (L^T, or the conjugate transposes when Hermitian) the other way,
// each step a product with the block column and the interchange. The steps
// run over a group of right-hand sides at a time, so that the factor's block
// column is read once from memory for the whole group, each column through
// the same level-1 kernels whatever group it falls in. With many
// right-hand sides (the oracle's block size for "SYTRS" / "HETRS", by the
// order and their number) the level-3 form runs instead: the factor's
// columns gathered once into a unit triangular W with A = P W D W^T P^T,
// and each block of columns permuted, solved with W in the level-3 solve,
// with D, and with W^T. With enough right-hand sides (the oracle's
// crossover) contiguous runs of columns, of whole blocks in the level-3
// form, go to the threads of a team; either way a column is computed as
// the serial solve computes it.
#include <omp.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <utility>

#include "blas/level1/level1.h"
#include "blas/level3/level3.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/symmetric.h"
#include "service/memory.h"
#include "service/threading.h"

namespace orb::lapack {
namespace {

thread_local int t_last_team = 0, t_last_block = 0;

// Right-hand sides stepped together: the group's part of the solution
// stays in the second-level cache up to orders of some thousands.
constexpr int kGroup = 8;

template <class T>
struct Factors {
  bool herm;
  const T *a;
  int lda;
  const T *col(int j) const { return a + static_cast<std::ptrdiff_t>(j) * lda; }
  T at(int i, int j) const { return col(j)[i]; }
  // The inner product of column j's rows [i0, i0 + m) with x: conjugated
  // when Hermitian.
  T dot(int m, int i0, int j, const T *x) const {
    return herm ? blas::dotc(m, col(j) + i0, 1, x, 1) : blas::dotu(m, col(j) + i0, 1, x, 1);
  }
};

// The reciprocal a 1x1 block multiplies by (of its real part when
// Hermitian).
template <class T>
T reciprocal(T d, bool herm) {
  if constexpr (is_complex_v<T>)
    if (herm) return T(real_t<T>(1) / d.real());
  return T(1) / d;
}

// The 2x2 block [d11 e12; e21 d22], as the published solve divides it:
// each row by its off-diagonal element first.
template <class T>
struct Block2 {
  T e12, e21, r11, r22, denom;
  Block2(T d11, T d22, T e12_, T e21_) : e12(e12_), e21(e21_) {
    r11 = d11 / e12, r22 = d22 / e21;
    denom = r11 * r22 - T(1);
  }
  void solve(T &x1, T &x2) const {
    const T y1 = x1 / e12, y2 = x2 / e21;
    x1 = (r22 * y1 - y2) / denom;
    x2 = (r11 * y2 - y1) / denom;
  }
};

// Columns [c0, c1) of B, all in one group.
template <class T>
void solve_group(Uplo uplo, const Factors<T> &f, int n, const int *ipiv, T *b, int ldb, int c0,
                 int c1) {
  auto x_of = [&](int c) { return b + static_cast<std::ptrdiff_t>(c) * ldb; };
  if (uplo == Uplo::kUpper) {
    // U D Y = B, from the last block column to the first.
    for (int k = n - 1; k >= 0;) {
      if (ipiv[k] > 0) {
        const int kp = ipiv[k] - 1;
        const T r = reciprocal(f.at(k, k), f.herm);
        for (int c = c0; c < c1; ++c) {
          T *x = x_of(c);
          if (kp != k) std::swap(x[k], x[kp]);
          blas::axpy(k, -x[k], f.col(k), 1, x, 1);
          x[k] = mul(x[k], r);
        }
        k -= 1;
      } else {
        const int kp = -ipiv[k] - 1;
        const T e = f.at(k - 1, k);
        const Block2<T> d(f.at(k - 1, k - 1), f.at(k, k), e, conj_if(e, f.herm));
        for (int c = c0; c < c1; ++c) {
          T *x = x_of(c);
          if (kp != k - 1) std::swap(x[k - 1], x[kp]);
          blas::axpy(k - 1, -x[k], f.col(k), 1, x, 1);
          blas::axpy(k - 1, -x[k - 1], f.col(k - 1), 1, x, 1);
          d.solve(x[k - 1], x[k]);
        }
        k -= 2;
      }
    }
    // U^T X = Y (U^H), from the first block column to the last.
    for (int k = 0; k < n;) {
      const int step = ipiv[k] > 0 ? 1 : 2;
      const int kp = std::abs(ipiv[k]) - 1;
      for (int c = c0; c < c1; ++c) {
        T *x = x_of(c);
        if (k > 0)
          for (int j = k; j < k + step; ++j) x[j] -= f.dot(k, 0, j, x);
        if (kp != k) std::swap(x[k], x[kp]);
      }
      k += step;
    }
    return;
  }
  // L D Y = B, from the first block column to the last.
  for (int k = 0; k < n;) {
    if (ipiv[k] > 0) {
      const int kp = ipiv[k] - 1, m = n - k - 1;
      const T r = reciprocal(f.at(k, k), f.herm);
      for (int c = c0; c < c1; ++c) {
        T *x = x_of(c);
        if (kp != k) std::swap(x[k], x[kp]);
        blas::axpy(m, -x[k], f.col(k) + k + 1, 1, x + k + 1, 1);
        x[k] = mul(x[k], r);
      }
      k += 1;
    } else {
      const int kp = -ipiv[k] - 1, m = n - k - 2;
      const T e = f.at(k + 1, k);
      const Block2<T> d(f.at(k, k), f.at(k + 1, k + 1), conj_if(e, f.herm), e);
      for (int c = c0; c < c1; ++c) {
        T *x = x_of(c);
        if (kp != k + 1) std::swap(x[k + 1], x[kp]);
        blas::axpy(m, -x[k], f.col(k) + k + 2, 1, x + k + 2, 1);
        blas::axpy(m, -x[k + 1], f.col(k + 1) + k + 2, 1, x + k + 2, 1);
        d.solve(x[k], x[k + 1]);
      }
      k += 2;
    }
  }
  // L^T X = Y (L^H), from the last block column to the first.
  for (int k = n - 1; k >= 0;) {
    const int step = ipiv[k] > 0 ? 1 : 2;
    const int kp = std::abs(ipiv[k]) - 1, m = n - k - 1;
    for (int c = c0; c < c1; ++c) {
      T *x = x_of(c);
      if (m > 0)
        for (int j = k; j > k - step; --j) x[j] -= f.dot(m, k + 1, j, x + k + 1);
      if (kp != k) std::swap(x[k], x[kp]);
    }
    k -= step;
  }
}

// ---- the level-3 form ----------------------------------------------------------------

// A block of D: rows [p, p + size), its interchange of rows r and kp.
struct Block {
  int p, size, r, kp;
};

// D's blocks in the order of the rows, in the memory manager's storage
// (none when it cannot be had).
struct Blocks {
  mem::Buffer<Block> list;
  int count = 0;
  Blocks(Uplo uplo, int n, const int *ipiv) : list(n, 0) {
    if (!list) return;
    for (int p = 0; p < n;) {
      const int size = ipiv[p] > 0 ? 1 : 2;
      const int r = uplo == Uplo::kUpper || size == 1 ? p : p + 1;
      list[count++] = {p, size, r, std::abs(ipiv[p]) - 1};
      p += size;
    }
  }
  int size() const { return count; }
  const Block &operator[](int i) const { return list[i]; }
  const Block *begin() const { return list.get(); }
  const Block *end() const { return list.get() + count; }
};

// W (n by n at w): U = P(n) U(n) ... P(1) U(1) is P W with P = P(n) ...
// P(1), W's column in block k being U(k)'s with the interchanges of the
// blocks before it applied, the nearest first (L likewise, from the other
// end); zeros elsewhere in its triangle.
template <class T>
void gather_w(Uplo uplo, int n, const T *a, int lda, const Blocks &blocks, T *w, int ldw) {
  const bool upper = uplo == Uplo::kUpper;
  for (const Block &b : blocks)
    for (int j = b.p; j < b.p + b.size; ++j) {
      T *wj = w + static_cast<std::ptrdiff_t>(j) * ldw;
      const T *aj = a + static_cast<std::ptrdiff_t>(j) * lda;
      std::fill(wj, wj + n, T(0));
      const int r0 = upper ? 0 : b.p + b.size, r1 = upper ? b.p : n;
      std::copy(aj + r0, aj + r1, wj + r0);
    }
  // Column by column, the interchanges nearest to the column's block first.
  const int nblocks = blocks.size();
  for (int q = 0; q < nblocks; ++q) {
    const Block &c = blocks[q];
    for (int j = c.p; j < c.p + c.size; ++j) {
      T *wj = w + static_cast<std::ptrdiff_t>(j) * ldw;
      if (upper) {
        for (int i = q - 1; i >= 0; --i)
          if (blocks[i].kp != blocks[i].r) std::swap(wj[blocks[i].r], wj[blocks[i].kp]);
      } else {
        for (int i = q + 1; i < nblocks; ++i)
          if (blocks[i].kp != blocks[i].r) std::swap(wj[blocks[i].r], wj[blocks[i].kp]);
      }
    }
  }
}

// P^T B (`before`) or P B for `cols` columns of B.
template <class T>
void permute(Uplo uplo, const Blocks &blocks, bool before, T *b, int ldb, int cols) {
  const int nblocks = blocks.size();
  const bool descending = (uplo == Uplo::kUpper) == before;
  for (int i = 0; i < nblocks; ++i) {
    const Block &k = blocks[descending ? nblocks - 1 - i : i];
    if (k.kp != k.r) blas::swap(cols, b + k.r, ldb, b + k.kp, ldb);
  }
}

// Columns [c0, c1) in blocks of nb from c0.
template <class T>
void solve_blocked(Uplo uplo, const Factors<T> &f, int n, const Blocks &blocks, const T *w, int ldw,
                   T *b, int ldb, int nb, int c0, int c1) {
  const bool upper = uplo == Uplo::kUpper;
  const Op adjoint = f.herm ? Op::kConjTrans : Op::kTrans;
  for (int c = c0; c < c1; c += nb) {
    const int cols = std::min(nb, c1 - c);
    T *bc = b + static_cast<std::ptrdiff_t>(c) * ldb;
    permute(uplo, blocks, true, bc, ldb, cols);
    blas::trsm_serial(blas::Triangular{true, upper, Op::kNone, true}, n, cols, T(1), w, ldw, bc,
                      ldb);
    for (const Block &k : blocks) {
      const int p = k.p;
      if (k.size == 1) {
        const T r = reciprocal(f.at(p, p), f.herm);
        for (int j = 0; j < cols; ++j) {
          T &x = bc[p + static_cast<std::ptrdiff_t>(j) * ldb];
          x = mul(x, r);
        }
      } else {
        const T e = upper ? f.at(p, p + 1) : f.at(p + 1, p);
        const Block2<T> d(f.at(p, p), f.at(p + 1, p + 1), upper ? e : conj_if(e, f.herm),
                          upper ? conj_if(e, f.herm) : e);
        for (int j = 0; j < cols; ++j) {
          T *x = bc + static_cast<std::ptrdiff_t>(j) * ldb;
          d.solve(x[p], x[p + 1]);
        }
      }
    }
    blas::trsm_serial(blas::Triangular{true, upper, adjoint, true}, n, cols, T(1), w, ldw, bc, ldb);
    permute(uplo, blocks, false, bc, ldb, cols);
  }
}

// W's storage and the blocks of D, ready for solve_blocked; `ready`
// false when the storage cannot be had.
template <class T>
struct Level3 {
  Blocks blocks;
  mem::Buffer<T> w;
  int ldw;
  Level3(Uplo uplo, int n, const T *a, int lda, const int *ipiv)
      : blocks(uplo, n, ipiv), w(std::int64_t{n} * n, 64), ldw(std::max(n, 1)) {
    if (ready()) gather_w(uplo, n, a, lda, blocks, w.get(), ldw);
  }
  bool ready() const { return w && blocks.list; }
};

}  // namespace

template <class T>
void sytrs_columns(Uplo uplo, bool herm, int n, const T *a, int lda, const int *ipiv, T *b, int ldb,
                   int c0, int c1) {
  const Factors<T> f{is_complex_v<T> && herm, a, lda};
  for (int c = c0; c < c1; c += kGroup)
    solve_group(uplo, f, n, ipiv, b, ldb, c, std::min(c + kGroup, c1));
}

template <class T>
bool sytrs_blocked_columns(Uplo uplo, bool herm, int n, const T *a, int lda, const int *ipiv, T *b,
                           int ldb, int nb, int c0, int c1) {
  if (n == 0 || c1 <= c0) return true;
  const Level3<T> l3(uplo, n, a, lda, ipiv);
  if (!l3.ready()) return false;
  const Factors<T> f{is_complex_v<T> && herm, a, lda};
  solve_blocked(uplo, f, n, l3.blocks, l3.w.get(), l3.ldw, b, ldb, nb, c0, c1);
  return true;
}

template <class T>
void sytrs(Uplo uplo, bool herm, int n, int nrhs, const T *a, int lda, const int *ipiv, T *b,
           int ldb) {
  t_last_team = t_last_block = 0;
  if (n == 0 || nrhs == 0) return;
  herm = is_complex_v<T> && herm;
  const Name6 nm = name<T>(herm ? "HETRS" : "SYTRS");
  // The level-3 form in column blocks of nb, when the oracle answers nb > 1
  // and W's storage can be had.
  int nb = oracle(kBlockSize, nm, n, nrhs);
  std::optional<Level3<T>> l3;
  if (nb > 1) {
    l3.emplace(uplo, n, a, lda, ipiv);
    if (!l3->ready()) l3.reset();
  }
  if (!l3) nb = 1;
  const int units = (nrhs + nb - 1) / nb;
  int team = 1;
  if (!omp_in_parallel()) {
    const int threads = orb::threads::max_threads();
    if (threads > 1 && nrhs >= oracle(kCrossover, nm, n, nrhs)) team = std::min(threads, units);
  }
  t_last_team = team;
  t_last_block = l3 ? nb : 1;
  const Factors<T> f{herm, a, lda};
  // Columns [c0, c1): whole blocks of the level-3 form.
  auto run = [&](int c0, int c1) {
    if (l3)
      solve_blocked(uplo, f, n, l3->blocks, l3->w.get(), l3->ldw, b, ldb, nb, c0, c1);
    else
      sytrs_columns(uplo, herm, n, a, lda, ipiv, b, ldb, c0, c1);
  };
  if (team == 1) {
    run(0, nrhs);
    return;
  }
#pragma omp parallel num_threads(team)
  {
    const int tid = omp_get_thread_num(), nt = omp_get_num_threads();
    const int u0 = static_cast<int>(static_cast<long long>(units) * tid / nt);
    const int u1 = static_cast<int>(static_cast<long long>(units) * (tid + 1) / nt);
    run(std::min(nrhs, u0 * nb), std::min(nrhs, u1 * nb));
  }
}

int sytrs_last_team() {
  return t_last_team;
}

int sytrs_last_block() {
  return t_last_block;
}

#define ORB_SYTRS(T)                                                                               \
  template void sytrs_columns(Uplo, bool, int, const T *, int, const int *, T *, int, int, int);   \
  template void sytrs(Uplo, bool, int, int, const T *, int, const int *, T *, int);                \
  template bool sytrs_blocked_columns(Uplo, bool, int, const T *, int, const int *, T *, int, int, \
                                      int, int);
ORB_SYTRS(float)
ORB_SYTRS(c8)
#undef ORB_SYTRS

}  // namespace orb::lapack
