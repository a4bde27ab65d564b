// The numerical factorization of the sparse direct solver over the supernodes
// of a symbolic factor, and the substitutions with its factors. One template
// over the scalar type (double, std::complex<double>).
//
// The matrix handed to the factorization is already permuted to pivot order
// (and scaled): B = P (the caller's matrix) P^T in compressed columns,
// 0-based, rows increasing within a column. For the symmetric and Hermitian
// kinds only the lower triangle (row >= column) is given; for kLu the whole
// matrix, its pattern contained in that of the symbolic factor plus its
// transpose.
#pragma once

#include <complex>
#include <cstdint>
#include <memory>
#include <vector>

#include "sparse_direct/symbolic.h"

namespace orb::sparse {

enum class FactorKind {
  kCholesky,      // B = L L^H, Hermitian (symmetric) positive definite
  kLdlSymmetric,  // B = L D L^T, real symmetric or complex symmetric indefinite
  kLdlHermitian,  // B = L D L^H, Hermitian indefinite
  kLu,            // B = L U, static pivoting (structurally symmetric pattern)
};

template <class T>
struct CscMatrix {
  int n = 0;
  const int *col_ptr = nullptr;  // n + 1
  const int *row = nullptr;      // col_ptr[n]
  const T *val = nullptr;        // col_ptr[n]
};

struct FactorOptions {
  FactorKind kind = FactorKind::kCholesky;
  // kLdl*: 1x1 and 2x2 Bunch-Kaufman pivots inside supernodes; false: 1x1
  // diagonal pivots only.
  bool two_by_two = true;
  // A pivot of magnitude below this (absolute) is replaced by it, with the
  // pivot's sign (or phase), and counted as perturbed; 0 for none. Not used
  // by kCholesky.
  double pivot_floor = 0;
  int threads = 1;  // the team the factorization may use (>= 1)
};

// Where a factor kept out of core lives (the files of sparse_direct/ooc.h).
// The factorization gives it the supernodes it works on (the analysis's,
// with the large ones cut into column panels), then every supernode's
// finished blocks in postorder and the pivot record at the end; it may read
// finished blocks back while it goes on. The solve asks for the blocks
// again, forward in postorder and backward in reverse. A failure of the
// storage throws the storage's own exception, which the driver catches.
template <class T>
class BlockStore {
 public:
  virtual ~BlockStore() = default;
  // The most memory the factor may take in core, bytes.
  virtual std::int64_t budget() const = 0;
  // Factorization: starts the files for the supernodes `s`, takes supernode
  // t's blocks (nrows x ncols each; `upper` null except for kLu), then the
  // pivot record (2n entries, empty for kCholesky).
  virtual void begin_write(Symbolic s) = 0;
  virtual void put(int t, const T *lower, const T *upper) = 0;
  virtual void end_write(const std::vector<int> &pivot) = 0;
  // A finished supernode's blocks read back during the factorization.
  virtual void load(int t, T *lower, T *upper) = 0;
  // The supernodes of the factor in the files.
  virtual const Symbolic &symbolic() const = 0;
  // Solve: one pass over the blocks of the lower (`upper` false) or the
  // upper factor, then get() for every supernode in the pass's order; the
  // pointers stay valid until the next get() or begin_read().
  virtual void begin_read(bool upper, bool backward) = 0;
  virtual const T *get(int t, const int **rows) = 0;
  // The pivot record, read back for a solve.
  virtual const int *pivot() = 0;
};

// The supernodes of `s` cut into panels of consecutive columns, each block
// at most `max_entries` entries where one column allows it; still in
// postorder, each panel the parent of the one before it.
Symbolic split_supernodes(const Symbolic &s, std::int64_t max_entries);

struct FactorReport {
  int status = 0;         // 0 or a FactorStatus
  int failed_column = 0;  // kNotPositiveDefinite: 1-based new column of the failing pivot
  int perturbed = 0;      // pivots replaced by the floor
  int positive = 0;       // inertia of the kLdl* and kCholesky kinds
  int negative = 0;
  double flops = 0;             // floating-point operations done
  std::int64_t peak_bytes = 0;  // out of core: the most factor storage held in core at once
};

enum FactorStatus : int {
  kFactorOk = 0,
  kFactorNoMemory = 1,
  kNotPositiveDefinite = 2,  // kCholesky met a pivot that is not positive
  kZeroPivot = 3,            // an exactly zero pivot with no floor to replace it
};

// The out-of-core factorization's need: the most factor storage it holds in
// core at once (the blocks of the supernodes between the one being factored
// and the root that have received updates, and the workspace), in bytes.
template <class T>
std::int64_t out_of_core_need(const Symbolic &s, FactorKind kind);

// The numerical factor. Its storage belongs to the factorization code; the
// driver only keeps it, refactors into it and solves with it.
template <class T>
struct NumericFactor {
  FactorKind kind = FactorKind::kCholesky;
  std::vector<T> lower;    // L by supernodes (Symbolic::value_ptr)
  std::vector<T> upper;    // kLu: U^T stored as L (unit-lower parts in `lower`, see numeric.cpp)
  std::vector<T> diag;     // kLdl*: D, 1x1 and 2x2 blocks (layout of numeric.cpp)
  std::vector<int> pivot;  // pivoting inside supernodes (layout of numeric.cpp)
  // Out of core: the files that hold `lower`, `upper` and `pivot` (which
  // stay empty then); null in core.
  std::shared_ptr<BlockStore<T>> store;
  int64_t bytes() const;  // storage held in core
};

// Factorizes B into `f` (whose earlier contents are replaced). Never throws
// for lack of memory: that gives kFactorNoMemory with `f` left empty. With
// `store` set, the factorization runs on one thread and keeps the finished
// blocks there (f->store takes it); a failure of the store propagates.
template <class T>
void factorize(const Symbolic &s, const CscMatrix<T> &b, const FactorOptions &opt,
               NumericFactor<T> *f, FactorReport *report,
               std::shared_ptr<BlockStore<T>> store = nullptr);

// Which system a solve works on.
enum class SolveOp { kNone, kTranspose, kConjTranspose };

// Which parts of the substitution to run: forward (with L), diagonal (with
// D, kLdl* only; nothing for the other kinds) and backward (with L^H, L^T or
// U). kAll is the whole solve.
enum SolveSteps : int { kForward = 1, kDiagonal = 2, kBackward = 4, kAll = 7 };

// X := op(B)^-1 X for `nrhs` columns of X (leading dimension ldx), X in pivot
// order. With the partial steps, kForward applies L^-1 (with the pivoting
// inside supernodes), kDiagonal D^-1, kBackward the rest, so that running the
// three in order equals kAll.
template <class T>
void solve(const Symbolic &s, const NumericFactor<T> &f, SolveOp op, int steps, int nrhs, T *x,
           int ldx, int threads);

}  // namespace orb::sparse
