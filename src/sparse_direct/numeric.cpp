// The supernodal numerical factorization and the substitutions.
//
// Layout of the factor (all indices in pivot order):
//  - `lower`: supernode s's block of nrows(s) x ncols(s) at value_ptr[s].
//    kCholesky: L with its diagonal. kLdl*: unit L (the diagonal is not
//    referenced). kLu: unit L below the diagonal of the top square (whose
//    strictly upper part keeps a copy of U11, never read).
//  - `upper` (kLu only): U^T in the same layout: the top square's lower
//    triangle with the diagonal holds U11^T, the rows below U12^T.
//  - `diag` (kLdl* only): 2n entries; diag[2j] is D(j, j) and diag[2j + 1]
//    D(j + 1, j) when a 2x2 block starts at j (zero otherwise).
//  - `pivot` (kLdl*, kLu): 2n entries. pivot[j] for j in supernode s is the
//    column whose equation sits at position j after the interchanges inside
//    s (so x'[j] = x[pivot[j]]); pivot[n + j] is 1 where a 2x2 block starts,
//    2 at its second column, 0 elsewhere.
//
// The factorization is right-looking over the supernodes in postorder. The
// assembly tree is cut, the same way for any thread count, into independent
// subtrees and a top part. The subtrees are factored in parallel, each
// applying only the updates whose columns lie inside itself; the remaining
// updates of the subtrees' supernodes (rows and columns in the top part) are
// then applied in supernode order, and the top part is factored on the
// calling thread with the threaded level-3 routines. The order of every sum
// is therefore independent of the number of threads.
#include "sparse_direct/numeric.h"

#include <omp.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <deque>
#include <limits>
#include <new>
#include <queue>

#include "blas/level3/gemm.h"
#include "blas/level3/level3.h"
#include "common/options.h"
#include "common/scalar.h"
#include "lapack/cholesky.h"

namespace orb::sparse {
namespace {

using blas::Triangular;

template <class T>
constexpr bool kComplex = is_complex_v<T>;

// x / |x| with 1 for zero (the sign or phase a perturbed pivot keeps).
template <class T>
inline T phase(T x) {
  const double a = std::abs(x);
  return a == 0 ? T(1) : x / a;
}

constexpr int kChunk = 192;  // columns of the update computed at once
// kLdl*: supernodes up to kLdlWhole columns pivot over their whole diagonal
// block; wider ones over panels of kLdlPanel columns, so that most of their
// work runs in the level-3 kernels.
constexpr int kLdlWhole = 256;
constexpr int kLdlPanel = 128;
constexpr int kLuPanel = 64;   // panel width of the dense LU
constexpr int kRhsBlock = 64;  // right-hand sides per solve block

template <class T>
void gemm(bool threaded, Op ta, Op tb, int m, int n, int k, T alpha, const T *a, int lda,
          const T *b, int ldb, T beta, T *c, int ldc) {
  if (m <= 0 || n <= 0) return;
  if (k <= 0) {
    // C := beta C, which the callers only need for beta == 0.
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < m; ++i) c[i + std::ptrdiff_t(j) * ldc] *= beta;
    return;
  }
  if (threaded) {
    static const char kOp[] = {'N', 'T', 'C'};
    const char ca = kOp[int(ta)], cb = kOp[int(tb)];
    if constexpr (kComplex<T>)
      blas::orb_blas_zgemm(&ca, &cb, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc);
    else
      blas::orb_blas_dgemm(&ca, &cb, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc);
  } else {
    blas::gemm_serial<T>(ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
  }
}

template <class T>
void trsm(bool threaded, const Triangular &t, int m, int n, const T *a, int lda, T *b, int ldb) {
  if (m <= 0 || n <= 0) return;
  if (threaded)
    blas::trsm_omp<T>(t, m, n, T(1), a, lda, b, ldb);
  else
    blas::trsm_serial<T>(t, m, n, T(1), a, lda, b, ldb);
}

// Work space of one thread.
template <class T>
struct Work {
  std::vector<T> c;  // update chunk (two for kLu)
  std::vector<T> w;  // L D rows, or the panel's L D
  std::vector<int> rel;
  std::vector<int> perm;
};

// Outcome of a part of the factorization.
struct Tally {
  int status = kFactorOk;
  int failed_column = 0;
  int perturbed = 0;
  int positive = 0;
  int negative = 0;
  double flops = 0;
};

template <class T>
struct Factorizer {
  const Symbolic &s;
  const FactorOptions &opt;
  NumericFactor<T> &f;
  bool herm;  // conjugate transposes in the factor (kCholesky, kLdlHermitian)
  int max_nc = 0, max_nb = 0;

  Factorizer(const Symbolic &sym, const FactorOptions &o, NumericFactor<T> &fac)
      : s(sym), opt(o), f(fac) {
    herm = o.kind == FactorKind::kCholesky || o.kind == FactorKind::kLdlHermitian;
    for (int k = 0; k < s.nsuper; ++k) {
      max_nc = std::max(max_nc, s.ncols(k));
      max_nb = std::max(max_nb, s.nrows(k) - s.ncols(k));
    }
  }

  // The bytes reserve() takes.
  std::int64_t workspace_bytes() const {
    const bool lu = opt.kind == FactorKind::kLu;
    const std::size_t c = std::max<std::size_t>(
        std::size_t(max_nb) * std::min(kChunk, std::max(max_nb, 1)) * (lu ? 2 : 1), max_nc);
    std::size_t wd = 0;
    if (opt.kind == FactorKind::kLdlSymmetric || opt.kind == FactorKind::kLdlHermitian)
      wd = std::max(std::size_t(max_nb + max_nc) * std::min(kLdlWhole, max_nc),
                    std::size_t(kChunk) * max_nc);
    return std::int64_t(sizeof(T)) * std::int64_t(c + wd) +
           std::int64_t(sizeof(int)) * (std::max(max_nb, 1) + std::max(max_nc, 1));
  }

  void reserve(Work<T> &w) const {
    const bool lu = opt.kind == FactorKind::kLu;
    w.c.resize(std::max<std::size_t>(
        std::size_t(max_nb) * std::min(kChunk, std::max(max_nb, 1)) * (lu ? 2 : 1), max_nc));
    if (opt.kind == FactorKind::kLdlSymmetric || opt.kind == FactorKind::kLdlHermitian)
      w.w.resize(std::max(std::size_t(max_nb + max_nc) * std::min(kLdlWhole, max_nc),
                          std::size_t(kChunk) * max_nc));
    w.rel.resize(std::max(max_nb, 1));
    w.perm.resize(std::max(max_nc, 1));
  }

  // Out of core: where each supernode's blocks are held in core, lower and
  // upper (null when they are not).
  std::vector<T *> *held = nullptr;

  T *lower(int t) const { return held ? (*held)[2 * t] : f.lower.data() + s.value_ptr[t]; }
  T *upper(int t) const { return held ? (*held)[2 * t + 1] : f.upper.data() + s.value_ptr[t]; }

  // Position of global row r in supernode t's row list (which holds it).
  int locate(int t, int r) const {
    if (r >= s.first[t] && r < s.first[t + 1]) return r - s.first[t];
    const int *b = s.rows.data() + s.row_ptr[t];
    const int *e = s.rows.data() + s.row_ptr[t + 1];
    const int *p = std::lower_bound(b + s.ncols(t), e, r);
    return (p != e && *p == r) ? int(p - b) : -1;
  }

  // kLu: B's strictly upper triangle by rows (column indices and values).
  std::vector<int> up_ptr, up_col;
  std::vector<T> up_val;

  void rows_of_upper(const CscMatrix<T> &b) {
    up_ptr.assign(b.n + 1, 0);
    for (int j = 0; j < b.n; ++j)
      for (int p = b.col_ptr[j]; p < b.col_ptr[j + 1]; ++p)
        if (b.row[p] < j) ++up_ptr[b.row[p] + 1];
    for (int i = 0; i < b.n; ++i) up_ptr[i + 1] += up_ptr[i];
    up_col.resize(up_ptr[b.n]);
    up_val.resize(up_ptr[b.n]);
    std::vector<int> next(up_ptr.begin(), up_ptr.end() - 1);
    for (int j = 0; j < b.n; ++j)
      for (int p = b.col_ptr[j]; p < b.col_ptr[j + 1]; ++p)
        if (b.row[p] < j) {
          up_col[next[b.row[p]]] = j;
          up_val[next[b.row[p]]++] = b.val[p];
        }
  }

  // B's entries added into the blocks of supernodes [lo, hi].
  void assemble(const CscMatrix<T> &b, int lo, int hi) {
    const bool lu = opt.kind == FactorKind::kLu;
    for (int t = lo; t <= hi; ++t) {
      const int nr = s.nrows(t);
      T *lt = lower(t);
      std::fill(lt, lt + std::size_t(nr) * s.ncols(t), T(0));
      if (lu) {
        T *ut = upper(t);
        std::fill(ut, ut + std::size_t(nr) * s.ncols(t), T(0));
      }
    }
    const int c0 = s.first[lo], c1 = s.first[hi + 1];
    for (int j = c0; j < c1; ++j) {
      const int t = s.super_of[j];
      const int nr = s.nrows(t);
      T *col = lower(t) + std::size_t(j - s.first[t]) * nr;
      for (int p = b.col_ptr[j]; p < b.col_ptr[j + 1]; ++p) {
        const int i = b.row[p];
        if (i < j) continue;
        const int at = locate(t, i);
        if (at >= 0) col[at] += b.val[p];
      }
    }
    if (!lu) return;
    // Strictly upper entries B(i, j), i < j, go to U^T at (row j, column i).
    for (int i = c0; i < c1; ++i) {
      const int t = s.super_of[i];
      T *col = upper(t) + std::size_t(i - s.first[t]) * s.nrows(t);
      for (int p = up_ptr[i]; p < up_ptr[i + 1]; ++p) {
        const int at = locate(t, up_col[p]);
        if (at >= 0) col[at] += up_val[p];
      }
    }
  }

  // Pivot of magnitude below the floor: replaced, or the zero-pivot stop.
  bool floor_pivot(T &d, Tally &tally, int column) const {
    if (std::abs(d) >= opt.pivot_floor && std::abs(d) > 0) return true;
    if (!(std::abs(d) >= 0)) return true;  // NaN: let it through
    if (opt.pivot_floor > 0) {
      d = phase(d) * T(opt.pivot_floor);
      ++tally.perturbed;
      return true;
    }
    tally.status = kZeroPivot;
    tally.failed_column = column + 1;
    return false;
  }

  void count_inertia(double d, Tally &tally) const {
    if (d > 0) ++tally.positive;
    if (d < 0) ++tally.negative;
  }

  // ---- kLdl*: Bunch-Kaufman on the panel's diagonal square -----------------

  // Symmetric interchange of local columns a < b of supernode block `l`
  // (leading dimension nr) inside the panel starting at k0 of width m: rows
  // and columns of the square from column k on, the rows of the columns
  // before k0 + k and the rows below the square.
  void swap_sym(T *l, int nr, int k0, int k, int a, int b) const {
    auto at = [&](int i, int j) -> T & { return l[(k0 + i) + std::ptrdiff_t(k0 + j) * nr]; };
    for (int c = 0; c < k0 + k; ++c)
      std::swap(l[k0 + a + std::ptrdiff_t(c) * nr], l[k0 + b + std::ptrdiff_t(c) * nr]);
    for (int i = b + 1; i < nr - k0; ++i) std::swap(at(i, a), at(i, b));
    for (int j = a + 1; j < b; ++j) {
      T t = at(j, a);
      at(j, a) = orb::conj_if(at(b, j), herm);
      at(b, j) = orb::conj_if(t, herm);
    }
    at(b, a) = orb::conj_if(at(b, a), herm);
    std::swap(at(a, a), at(b, b));
  }

  // Factors the m-wide square of the panel at k0 in place; pivots recorded
  // from local column k0 of supernode t. Returns false on a zero pivot.
  bool ldl_square(int t, T *l, int nr, int k0, int m, std::vector<int> &perm, Tally &tally) {
    const double alpha = (1 + std::sqrt(17.0)) / 8;
    const bool track = opt.kind == FactorKind::kLdlHermitian || !kComplex<T>;
    const int base = s.first[t] + k0;
    auto at = [&](int i, int j) -> T & { return l[(k0 + i) + std::ptrdiff_t(k0 + j) * nr]; };
    auto mag = [&](T x) { return std::abs(x); };
    int k = 0;
    while (k < m) {
      if (herm) at(k, k) = std::real(at(k, k));
      const double akk = mag(at(k, k));
      double colmax = 0;
      int imax = k;
      for (int i = k + 1; i < m; ++i)
        if (mag(at(i, k)) > colmax) colmax = mag(at(i, k)), imax = i;
      int kp = k;
      bool two = false;
      if (opt.two_by_two && colmax > 0 && !(akk >= alpha * colmax)) {
        double rowmax = 0;
        for (int j = k; j < imax; ++j) rowmax = std::max(rowmax, mag(at(imax, j)));
        for (int i = imax + 1; i < m; ++i) rowmax = std::max(rowmax, mag(at(i, imax)));
        if (akk >= alpha * colmax * (colmax / rowmax)) {
          kp = k;
        } else if (mag(at(imax, imax)) >= alpha * rowmax) {
          kp = imax;
        } else {
          kp = imax;
          two = true;
        }
      }
      const int kk = two ? k + 1 : k;
      if (kp != kk) {
        // With a 2x2 pivot the interchange of rows k + 1 and kp reaches
        // column k too.
        swap_sym(l, nr, k0, two ? k + 1 : k, kk, kp);
        std::swap(perm[k0 + kk], perm[k0 + kp]);
      }
      if (two) {
        if (herm) at(k + 1, k + 1) = std::real(at(k + 1, k + 1));
        const T d11 = at(k, k), d21 = at(k + 1, k), d22 = at(k + 1, k + 1);
        const T det =
            herm ? T(std::real(d11) * std::real(d22) - std::norm(d21)) : d11 * d22 - d21 * d21;
        if (det == T(0) || !std::isfinite(std::abs(det))) two = false;
        if (two) {
          const T c = orb::conj_if(d21, herm);
          for (int i = k + 2; i < m; ++i) {
            const T a1 = at(i, k), a2 = at(i, k + 1);
            at(i, k) = (a1 * d22 - a2 * d21) / det;
            at(i, k + 1) = (a2 * d11 - a1 * c) / det;
          }
          for (int j = k + 2; j < m; ++j) {
            const T w1 = orb::conj_if(at(j, k) * d11 + at(j, k + 1) * d21, herm);
            const T w2 = orb::conj_if(at(j, k) * c + at(j, k + 1) * d22, herm);
            for (int i = j; i < m; ++i) at(i, j) -= at(i, k) * w1 + at(i, k + 1) * w2;
            if (herm) at(j, j) = std::real(at(j, j));
          }
          const int g = base + k;
          f.diag[2 * g] = d11;
          f.diag[2 * g + 1] = d21;
          f.diag[2 * g + 2] = d22;
          f.diag[2 * g + 3] = 0;
          f.pivot[s.n + g] = 1;
          f.pivot[s.n + g + 1] = 2;
          at(k + 1, k) = 0;  // L is the identity inside the 2x2 block
          if (track) {
            const double dr = std::real(det);
            if (dr < 0) {
              ++tally.positive;
              ++tally.negative;
            } else {
              count_inertia(std::real(d11), tally);
              count_inertia(std::real(d11), tally);
            }
          }
          k += 2;
          continue;
        }
      }
      T d = at(k, k);
      if (!floor_pivot(d, tally, base + k)) return false;
      at(k, k) = d;
      for (int i = k + 1; i < m; ++i) at(i, k) /= d;
      for (int j = k + 1; j < m; ++j) {
        const T w = orb::conj_if(at(j, k), herm) * d;
        for (int i = j; i < m; ++i) at(i, j) -= at(i, k) * w;
        if (herm) at(j, j) = std::real(at(j, j));
      }
      const int g = base + k;
      f.diag[2 * g] = d;
      f.diag[2 * g + 1] = 0;
      f.pivot[s.n + g] = 0;
      if (track) count_inertia(std::real(d), tally);
      ++k;
    }
    return true;
  }

  // Row block `x` (rows, leading dimension ldx) times D of columns
  // [g, g + m) into `y` (or D^-1 with `inverse`).
  void apply_d(const T *x, int ldx, int rows, int g, int m, T *y, int ldy, bool inverse) const {
    for (int k = 0; k < m;) {
      const int gk = g + k;
      const T d11 = f.diag[2 * gk];
      if (f.pivot[s.n + gk] == 1) {
        const T d21 = f.diag[2 * gk + 1], d22 = f.diag[2 * gk + 2];
        const T c = orb::conj_if(d21, herm);
        const T *x1 = x + std::ptrdiff_t(k) * ldx, *x2 = x1 + ldx;
        T *y1 = y + std::ptrdiff_t(k) * ldy, *y2 = y1 + ldy;
        if (inverse) {
          const T det =
              herm ? T(std::real(d11) * std::real(d22) - std::norm(d21)) : d11 * d22 - d21 * d21;
          for (int i = 0; i < rows; ++i) {
            const T a1 = x1[i], a2 = x2[i];
            y1[i] = (a1 * d22 - a2 * d21) / det;
            y2[i] = (a2 * d11 - a1 * c) / det;
          }
        } else {
          for (int i = 0; i < rows; ++i) {
            const T a1 = x1[i], a2 = x2[i];
            y1[i] = a1 * d11 + a2 * d21;
            y2[i] = a1 * c + a2 * d22;
          }
        }
        k += 2;
      } else {
        const T *x1 = x + std::ptrdiff_t(k) * ldx;
        T *y1 = y + std::ptrdiff_t(k) * ldy;
        if (inverse)
          for (int i = 0; i < rows; ++i) y1[i] = x1[i] / d11;
        else
          for (int i = 0; i < rows; ++i) y1[i] = x1[i] * d11;
        ++k;
      }
    }
  }

  bool ldl_node(int t, bool threaded, Work<T> &w, Tally &tally) {
    const int nr = s.nrows(t), nc = s.ncols(t);
    T *l = lower(t);
    std::vector<int> &perm = w.perm;
    for (int k = 0; k < nc; ++k) perm[k] = k;
    const Op op = herm ? Op::kConjTrans : Op::kTrans;
    const int panel = nc <= kLdlWhole ? nc : kLdlPanel;
    for (int k0 = 0; k0 < nc; k0 += panel) {
      const int m = std::min(panel, nc - k0), k1 = k0 + m;
      if (!ldl_square(t, l, nr, k0, m, perm, tally)) return false;
      const int below = nr - k1;
      if (below == 0) continue;
      T *pb = l + k1 + std::ptrdiff_t(k0) * nr;
      // W = A_below L_pp^-T (or ^-H), then L_below = W D^-1.
      trsm(threaded, Triangular{false, false, op, true}, below, m, l + k0 + std::ptrdiff_t(k0) * nr,
           nr, pb, nr);
      T *wp = w.w.data();
      for (int j = 0; j < m; ++j)
        std::memcpy(wp + std::ptrdiff_t(j) * below, pb + std::ptrdiff_t(j) * nr, sizeof(T) * below);
      apply_d(wp, below, below, s.first[t] + k0, m, pb, nr, true);
      // The rest of the diagonal block's columns.
      if (k1 < nc)
        gemm(threaded, Op::kNone, op, below, nc - k1, m, T(-1), pb, nr, wp, below, T(1),
             l + k1 + std::ptrdiff_t(k1) * nr, nr);
    }
    for (int k = 0; k < nc; ++k) f.pivot[s.first[t] + k] = s.first[t] + perm[k];
    const double mc = nc, mb = nr - nc;
    tally.flops += 2 * (mc * mc * mc / 3 + mb * mc * mc);
    return true;
  }

  // ---- kCholesky ------------------------------------------------------------

  bool cholesky_node(int t, bool threaded, Tally &tally) {
    const int nr = s.nrows(t), nc = s.ncols(t);
    T *l = lower(t);
    const int info = lapack::potrf_recursive<T>(Uplo::kLower, nc, l, nr, threaded);
    if (info != 0) {
      tally.status = kNotPositiveDefinite;
      tally.failed_column = s.first[t] + info;
      return false;
    }
    tally.positive += nc;
    trsm(threaded, Triangular{false, false, Op::kConjTrans, false}, nr - nc, nc, l, nr, l + nc, nr);
    const double mc = nc, mb = nr - nc;
    tally.flops += 2 * (mc * mc * mc / 6 + mb * mc * mc / 2);
    return true;
  }

  // ---- kLu --------------------------------------------------------------------

  bool lu_node(int t, bool threaded, Work<T> &w, Tally &tally) {
    const int nr = s.nrows(t), nc = s.ncols(t), nb = nr - nc;
    T *l = lower(t);
    T *u = upper(t);
    // The diagonal block is factored in place in the top square of `lower`,
    // whose strictly upper part takes U11 (it is not referenced later).
    T *a = l;
    auto F = [&](int i, int j) -> T & { return a[i + std::ptrdiff_t(j) * nr]; };
    for (int j = 0; j < nc; ++j)
      for (int i = 0; i < j; ++i) F(i, j) = u[j + std::ptrdiff_t(i) * nr];
    std::vector<int> &perm = w.perm;
    for (int k = 0; k < nc; ++k) perm[k] = k;
    for (int k0 = 0; k0 < nc; k0 += kLuPanel) {
      const int k1 = std::min(nc, k0 + kLuPanel);
      for (int k = k0; k < k1; ++k) {
        int p = k;
        double best = std::abs(F(k, k));
        for (int i = k + 1; i < nc; ++i)
          if (std::abs(F(i, k)) > best) best = std::abs(F(i, k)), p = i;
        if (p != k) {
          for (int j = 0; j < nc; ++j) std::swap(F(k, j), F(p, j));
          std::swap(perm[k], perm[p]);
        }
        T d = F(k, k);
        if (!floor_pivot(d, tally, s.first[t] + k)) return false;
        F(k, k) = d;
        for (int i = k + 1; i < nc; ++i) F(i, k) /= d;
        for (int j = k + 1; j < k1; ++j) {
          const T ukj = F(k, j);
          for (int i = k + 1; i < nc; ++i) F(i, j) -= F(i, k) * ukj;
        }
      }
      if (k1 < nc) {
        trsm(threaded, Triangular{true, false, Op::kNone, true}, k1 - k0, nc - k1, &F(k0, k0), nr,
             &F(k0, k1), nr);
        gemm(threaded, Op::kNone, Op::kNone, nc - k1, nc - k1, k1 - k0, T(-1), &F(k1, k0), nr,
             &F(k0, k1), nr, T(1), &F(k1, k1), nr);
      }
    }
    for (int j = 0; j < nc; ++j)
      for (int i = j; i < nc; ++i) u[i + std::ptrdiff_t(j) * nr] = F(j, i);
    if (nb > 0) {
      trsm(threaded, Triangular{false, true, Op::kNone, false}, nb, nc, a, nr, l + nc, nr);
      // U12^T's columns follow the row interchanges.
      T *tmp = w.c.data();
      for (int i = 0; i < nb; ++i) {
        for (int j = 0; j < nc; ++j) tmp[j] = u[nc + i + std::ptrdiff_t(perm[j]) * nr];
        for (int j = 0; j < nc; ++j) u[nc + i + std::ptrdiff_t(j) * nr] = tmp[j];
      }
      trsm(threaded, Triangular{false, false, Op::kTrans, true}, nb, nc, a, nr, u + nc, nr);
    }
    for (int j = 0; j < nc; ++j) F(j, j) = T(1);
    for (int k = 0; k < nc; ++k) f.pivot[s.first[t] + k] = s.first[t] + perm[k];
    const double mc = nc, mb = nb;
    tally.flops += 2 * (2 * mc * mc * mc / 3 + 2 * mb * mc * mc);
    return true;
  }

  // ---- the update of the ancestors --------------------------------------------

  // Subtracts the columns [c0, c1) (indices among the rows below) of supernode
  // t's update, rows c0 and below, from the ancestors' blocks.
  void update(int t, int c0, int c1, bool threaded, Work<T> &w, Tally &tally) {
    const int nr = s.nrows(t), nc = s.ncols(t), nb = nr - nc;
    if (c0 >= c1) return;
    const int *below = s.rows.data() + s.row_ptr[t] + nc;
    const T *l21 = lower(t) + nc;
    const bool lu = opt.kind == FactorKind::kLu;
    const bool ldl = opt.kind == FactorKind::kLdlSymmetric || opt.kind == FactorKind::kLdlHermitian;
    const T *u21 = lu ? upper(t) + nc : nullptr;
    const Op op = herm ? Op::kConjTrans : Op::kTrans;
    for (int a = c0; a < c1; a += kChunk) {
      const int b = std::min(c1, a + kChunk), m = nb - a, cw = b - a;
      T *cl = w.c.data();
      T *cu = cl + std::size_t(m) * cw;
      if (lu) {
        gemm(threaded, Op::kNone, Op::kTrans, m, cw, nc, T(1), l21 + a, nr, u21 + a, nr, T(0), cl,
             m);
        gemm(threaded, Op::kNone, Op::kTrans, m, cw, nc, T(1), u21 + a, nr, l21 + a, nr, T(0), cu,
             m);
      } else if (ldl) {
        T *wd = w.w.data();
        apply_d(l21 + a, nr, cw, s.first[t], nc, wd, cw, false);
        gemm(threaded, Op::kNone, op, m, cw, nc, T(1), l21 + a, nr, wd, cw, T(0), cl, m);
      } else {
        // The lower triangle of the chunk's top square, then the rows below.
        if (threaded)
          blas::syrk_omp<T>(false, Op::kNone, true, cw, nc, T(1), l21 + a, nr, T(0), cl, m);
        else
          blas::syrk_serial<T>(false, Op::kNone, true, cw, nc, T(1), l21 + a, nr, T(0), cl, m);
        gemm(threaded, Op::kNone, op, m - cw, cw, nc, T(1), l21 + b, nr, l21 + a, nr, T(0), cl + cw,
             m);
      }
      tally.flops += (lu ? 4.0 : 2.0) * nc * (double(m) * cw - (lu ? 0.0 : cw * (cw - 1) / 2.0));
      // Scatter, column group by column group of one target supernode.
      for (int j = a; j < b;) {
        const int g = below[j];
        const int tg = s.super_of[g];
        int je = j + 1;
        while (je < b && below[je] < s.first[tg + 1]) ++je;
        const int ntr = s.nrows(tg);
        const int *trows = s.rows.data() + s.row_ptr[tg];
        int p = g - s.first[tg];
        for (int i = j; i < nb; ++i) {
          while (trows[p] != below[i]) ++p;
          w.rel[i] = p;
        }
        // Rows i >= `dense` land on consecutive rows of the target.
        int dense = nb - 1;
        while (dense > j && w.rel[dense - 1] == w.rel[dense] - 1) --dense;
        T *tl = lower(tg);
        T *tu = lu ? upper(tg) : nullptr;
        for (int jj = j; jj < je; ++jj) {
          const std::ptrdiff_t col = std::ptrdiff_t(below[jj] - s.first[tg]) * ntr;
          const T *src = cl + std::ptrdiff_t(jj - a) * m - a;
          const int split = std::max(jj, dense);
          T *dst = tl + col;
          for (int i = jj; i < split; ++i) dst[w.rel[i]] -= src[i];
          if (split < nb) {
            T *dd = dst + w.rel[split] - split;
            for (int i = split; i < nb; ++i) dd[i] -= src[i];
          }
          if (lu) {
            const T *su = cu + std::ptrdiff_t(jj - a) * m - a;
            T *du = tu + col;
            const int us = std::max(jj + 1, dense);
            for (int i = jj + 1; i < us; ++i) du[w.rel[i]] -= su[i];
            if (us < nb) {
              T *dd = du + w.rel[us] - us;
              for (int i = us; i < nb; ++i) dd[i] -= su[i];
            }
          }
        }
        j = je;
      }
    }
  }

  bool node(int t, int boundary, bool threaded, Work<T> &w, Tally &tally) {
    bool ok = false;
    switch (opt.kind) {
      case FactorKind::kCholesky:
        ok = cholesky_node(t, threaded, tally);
        break;
      case FactorKind::kLdlSymmetric:
      case FactorKind::kLdlHermitian:
        ok = ldl_node(t, threaded, w, tally);
        break;
      case FactorKind::kLu:
        ok = lu_node(t, threaded, w, tally);
        break;
    }
    if (!ok) return false;
    const int nc = s.ncols(t);
    const int *b = s.rows.data() + s.row_ptr[t] + nc;
    const int nb = s.nrows(t) - nc;
    const int inside = int(std::lower_bound(b, b + nb, boundary) - b);
    update(t, 0, inside, threaded, w, tally);
    return true;
  }
};

// Cuts the assembly tree into subtrees (roots listed increasing) and a top
// part, from the supernodes' work alone.
void cut_tree(const Symbolic &s, std::vector<int> *roots, std::vector<char> *top,
              std::vector<double> *subtree_work) {
  const int ns = s.nsuper;
  std::vector<double> work(ns, 0);
  std::vector<int> child_ptr(ns + 1, 0), child(ns);
  for (int k = 0; k < ns; ++k) {
    const double c = s.ncols(k), r = s.nrows(k);
    work[k] += c * r * r;
    if (s.parent[k] >= 0) {
      work[s.parent[k]] += work[k];
      ++child_ptr[s.parent[k] + 1];
    }
  }
  for (int k = 0; k < ns; ++k) child_ptr[k + 1] += child_ptr[k];
  {
    std::vector<int> next(child_ptr.begin(), child_ptr.end() - 1);
    for (int k = 0; k < ns; ++k)
      if (s.parent[k] >= 0) child[next[s.parent[k]]++] = k;
  }
  double total = 0;
  using Item = std::pair<double, int>;
  std::priority_queue<Item> heap;
  for (int k = 0; k < ns; ++k)
    if (s.parent[k] < 0) {
      heap.push({work[k], k});
      total += work[k];
    }
  top->assign(ns, 0);
  const double limit = total / 24;
  int cuts = 0;
  while (!heap.empty() && heap.top().first > limit && cuts < 256 && total > 1e6) {
    const int k = heap.top().second;
    heap.pop();
    (*top)[k] = 1;
    ++cuts;
    for (int p = child_ptr[k]; p < child_ptr[k + 1]; ++p) heap.push({work[child[p]], child[p]});
  }
  roots->clear();
  while (!heap.empty()) {
    roots->push_back(heap.top().second);
    heap.pop();
  }
  std::sort(roots->begin(), roots->end());
  subtree_work->clear();
  for (int r : *roots) subtree_work->push_back(work[r]);
}

// A factorization's outcome for the caller; a complex symmetric matrix has no
// inertia to report.
template <class T>
void report_tally(const Tally &all, FactorKind kind, FactorReport *report) {
  report->status = all.status;
  report->failed_column = all.failed_column;
  report->perturbed = all.perturbed;
  const bool inertia = !(kind == FactorKind::kLdlSymmetric && kComplex<T>);
  report->positive = inertia ? all.positive : 0;
  report->negative = inertia ? all.negative : 0;
  report->flops = all.flops;
}

template <class T>
void merge(Tally &into, const Tally &t) {
  into.perturbed += t.perturbed;
  into.positive += t.positive;
  into.negative += t.negative;
  into.flops += t.flops;
}

template <class T>
void factorize_impl(const Symbolic &s, const CscMatrix<T> &b, const FactorOptions &opt,
                    NumericFactor<T> *f, FactorReport *report) {
  const bool lu = opt.kind == FactorKind::kLu;
  const bool ldl = opt.kind == FactorKind::kLdlSymmetric || opt.kind == FactorKind::kLdlHermitian;
  f->kind = opt.kind;
  f->lower.assign(s.value_ptr[s.nsuper], T(0));
  f->upper.assign(lu ? s.value_ptr[s.nsuper] : 0, T(0));
  f->diag.assign(ldl ? 2 * std::size_t(s.n) : 0, T(0));
  f->pivot.assign(ldl || lu ? 2 * std::size_t(s.n) : 0, 0);
  for (int j = 0; j < s.n && (ldl || lu); ++j) f->pivot[j] = j;

  Factorizer<T> fz(s, opt, *f);
  if (lu) fz.rows_of_upper(b);
  std::vector<int> roots;
  std::vector<char> top;
  std::vector<double> sub_work;
  cut_tree(s, &roots, &top, &sub_work);
  const int nsub = int(roots.size());
  // The subtrees are taken largest first; the results do not depend on the
  // order.
  std::vector<int> sched(nsub);
  for (int i = 0; i < nsub; ++i) sched[i] = i;
  std::stable_sort(sched.begin(), sched.end(),
                   [&](int x, int y) { return sub_work[x] > sub_work[y]; });
  std::vector<int> lo(nsub);
  {
    // The first supernode of each subtree: postorder makes subtrees ranges.
    std::vector<int> start(s.nsuper);
    for (int k = 0; k < s.nsuper; ++k) start[k] = k;
    for (int k = 0; k < s.nsuper; ++k)
      if (s.parent[k] >= 0) start[s.parent[k]] = std::min(start[s.parent[k]], start[k]);
    for (int i = 0; i < nsub; ++i) lo[i] = start[roots[i]];
  }
  const int threads = std::max(1, std::min(opt.threads, nsub));
  std::vector<Tally> tallies(nsub);
  std::vector<char> no_memory(nsub, 0);

  // Subtrees, each on one thread with the serial kernels.
  auto run_subtree = [&](int i, Work<T> &w) {
    Tally &tl = tallies[i];
    fz.assemble(b, lo[i], roots[i]);
    const int boundary = s.first[roots[i] + 1];
    for (int t = lo[i]; t <= roots[i]; ++t)
      if (!fz.node(t, boundary, false, w, tl)) return;
  };
  if (threads > 1) {
#pragma omp parallel num_threads(threads)
    {
      Work<T> w;
      bool ok = true;
      try {
        fz.reserve(w);
      } catch (const std::bad_alloc &) {
        ok = false;
      }
#pragma omp for schedule(dynamic, 1)
      for (int q = 0; q < nsub; ++q) {
        if (ok)
          run_subtree(sched[q], w);
        else
          no_memory[sched[q]] = 1;
      }
    }
  }
  Work<T> w;
  fz.reserve(w);
  if (threads <= 1)
    for (int i = 0; i < nsub; ++i) {
      run_subtree(i, w);
      if (tallies[i].status != kFactorOk) break;
    }
  Tally all;
  for (int i = 0; i < nsub; ++i) {
    if (no_memory[i]) throw std::bad_alloc();
    merge<T>(all, tallies[i]);
    if (tallies[i].status != kFactorOk) {
      all.status = tallies[i].status;
      all.failed_column = tallies[i].failed_column;
      break;
    }
  }
  if (all.status == kFactorOk) {
    const bool threaded = opt.threads > 1;
    // The top part's blocks, then the subtrees' updates that reach it.
    for (int t = 0; t < s.nsuper; ++t)
      if (top[t]) fz.assemble(b, t, t);
    std::vector<int> owner(s.nsuper, -1);
    for (int i = 0; i < nsub; ++i)
      for (int t = lo[i]; t <= roots[i]; ++t) owner[t] = i;
    // Those updates as tasks, one per block of kChunk columns of a top
    // supernode: a task writes only its own columns, and adds the
    // contributions of the subtrees' supernodes in increasing order, so the
    // tasks run in parallel and every sum keeps one order whatever the
    // thread count.
    struct Piece {
      int t, c0, c1;
    };
    std::vector<std::vector<Piece>> tasks;
    std::vector<int> task_base(s.nsuper, -1);
    for (int t = 0; t < s.nsuper; ++t) {
      if (!top[t]) continue;
      task_base[t] = int(tasks.size());
      tasks.resize(tasks.size() + (s.ncols(t) + kChunk - 1) / kChunk);
    }
    for (int t = 0; t < s.nsuper; ++t) {
      if (top[t]) continue;
      const int nc = s.ncols(t), nb = s.nrows(t) - nc;
      const int *rb = s.rows.data() + s.row_ptr[t] + nc;
      int c0 = int(std::lower_bound(rb, rb + nb, s.first[roots[owner[t]] + 1]) - rb);
      while (c0 < nb) {
        const int tg = s.super_of[rb[c0]];
        const int block = (rb[c0] - s.first[tg]) / kChunk;
        const int end = std::min(s.first[tg + 1], s.first[tg] + (block + 1) * kChunk);
        const int c1 = int(std::lower_bound(rb + c0, rb + nb, end) - rb);
        tasks[task_base[tg] + block].push_back({t, c0, c1});
        c0 = c1;
      }
    }
    const int ntasks = int(tasks.size());
    const int team = threaded ? std::max(1, std::min(opt.threads, ntasks)) : 1;
    std::vector<Tally> team_tally(team);
    std::vector<char> team_no_memory(team, 0);
#pragma omp parallel num_threads(team) if (team > 1)
    {
      const int me = omp_get_thread_num();
      Work<T> tw;
      bool ok = true;
      try {
        fz.reserve(tw);
      } catch (const std::bad_alloc &) {
        ok = false;
        team_no_memory[me] = 1;
      }
#pragma omp for schedule(dynamic, 1)
      for (int q = 0; q < ntasks; ++q)
        if (ok)
          for (const Piece &u : tasks[q]) fz.update(u.t, u.c0, u.c1, false, tw, team_tally[me]);
    }
    for (int i = 0; i < team; ++i) {
      if (team_no_memory[i]) throw std::bad_alloc();
      all.flops += team_tally[i].flops;
    }
    for (int t = 0; t < s.nsuper && all.status == kFactorOk; ++t)
      if (top[t]) fz.node(t, s.n, threaded, w, all);
  }
  report_tally<T>(all, opt.kind, report);
}

// Out of core, on one thread, left-looking: the large supernodes are cut
// into column panels of at most a quarter of the budget; each supernode in
// postorder is assembled, receives the updates of its descendants in
// increasing order (read back from the files unless they are among the
// recently finished ones kept in core, up to half the budget), is factored
// and goes to the files. The sums are those of the in-core factorization,
// in the same order.
template <class T>
void factorize_out_of_core(const Symbolic &analysed, const CscMatrix<T> &b,
                           const FactorOptions &opt, NumericFactor<T> *f, BlockStore<T> *store,
                           FactorReport *report) {
  const bool lu = opt.kind == FactorKind::kLu;
  const bool ldl = opt.kind == FactorKind::kLdlSymmetric || opt.kind == FactorKind::kLdlHermitian;
  const std::int64_t per = std::int64_t(sizeof(T)) * (lu ? 2 : 1);  // bytes per block entry
  const std::int64_t budget = std::max<std::int64_t>(store->budget(), 1);
  store->begin_write(split_supernodes(analysed, std::max<std::int64_t>(budget / 4 / per, 1)));
  const Symbolic &s = store->symbolic();
  const int ns = s.nsuper;
  f->kind = opt.kind;
  f->lower.clear();
  f->upper.clear();
  f->diag.assign(ldl ? 2 * std::size_t(s.n) : 0, T(0));
  f->pivot.assign(ldl || lu ? 2 * std::size_t(s.n) : 0, 0);
  for (int j = 0; j < s.n && (ldl || lu); ++j) f->pivot[j] = j;

  // The updates each supernode receives: the source and its columns (among
  // the source's rows below its diagonal block), sources increasing.
  struct Pull {
    int source, c0, c1;
  };
  std::vector<std::int64_t> pull_ptr(ns + 1, 0);
  std::vector<Pull> pulls;
  for (int pass = 0; pass < 2; ++pass) {
    std::vector<std::int64_t> next(pull_ptr.begin(), pull_ptr.end() - 1);
    for (int d = 0; d < ns; ++d) {
      const int nc = s.ncols(d), nb = s.nrows(d) - nc;
      const int *below = s.rows.data() + s.row_ptr[d] + nc;
      for (int i = 0; i < nb;) {
        const int tg = s.super_of[below[i]];
        const int c0 = i;
        while (i < nb && below[i] < s.first[tg + 1]) ++i;
        if (pass == 0)
          ++pull_ptr[tg + 1];
        else
          pulls[next[tg]++] = Pull{d, c0, i};
      }
    }
    if (pass == 0) {
      for (int t = 0; t < ns; ++t) pull_ptr[t + 1] += pull_ptr[t];
      pulls.resize(pull_ptr[ns]);
    }
  }

  Factorizer<T> fz(s, opt, *f);
  std::vector<T *> held(2 * std::size_t(ns), nullptr);
  fz.held = &held;
  if (lu) fz.rows_of_upper(b);
  Work<T> w;
  fz.reserve(w);
  // What stays in core throughout comes out of the half kept for finished
  // supernodes.
  const std::int64_t records = std::int64_t(sizeof(T)) * f->diag.size() +
                               std::int64_t(sizeof(int)) * f->pivot.size() +
                               std::int64_t(sizeof(Pull)) * std::int64_t(pulls.size()) +
                               std::int64_t(sizeof(T *)) * std::int64_t(held.size());
  const std::int64_t fixed = records + fz.workspace_bytes();
  const std::int64_t keep_limit = std::max<std::int64_t>(budget / 2 - fixed, 0);
  struct Kept {
    int t;
    std::unique_ptr<T[]> lower, upper;
    std::int64_t bytes;
  };
  std::deque<Kept> kept;  // recently finished supernodes, oldest first
  std::int64_t kept_bytes = 0, peak = 0;
  std::vector<T> scratch;  // a descendant read back (lower, then upper)
  Tally all;
  for (int t = 0; t < ns; ++t) {
    const std::size_t size = std::size_t(s.nrows(t)) * s.ncols(t);
    Kept cur{t, std::unique_ptr<T[]>(new T[size]), std::unique_ptr<T[]>(lu ? new T[size] : nullptr),
             std::int64_t(size) * per};
    held[2 * t] = cur.lower.get();
    held[2 * t + 1] = cur.upper.get();
    fz.assemble(b, t, t);
    for (std::int64_t p = pull_ptr[t]; p < pull_ptr[t + 1]; ++p) {
      const Pull &u = pulls[p];
      const bool away = held[2 * u.source] == nullptr;
      if (away) {
        const std::size_t sz = std::size_t(s.nrows(u.source)) * s.ncols(u.source);
        if (scratch.size() < sz * (lu ? 2 : 1)) scratch.resize(sz * (lu ? 2 : 1));
        store->load(u.source, scratch.data(), lu ? scratch.data() + sz : nullptr);
        held[2 * u.source] = scratch.data();
        held[2 * u.source + 1] = lu ? scratch.data() + sz : nullptr;
      }
      fz.update(u.source, u.c0, u.c1, false, w, all);
      if (away) held[2 * u.source] = held[2 * u.source + 1] = nullptr;
    }
    peak = std::max(peak, kept_bytes + cur.bytes + std::int64_t(scratch.size() * sizeof(T)));
    if (!fz.node(t, s.first[t + 1], false, w, all)) break;
    store->put(t, held[2 * t], held[2 * t + 1]);
    kept_bytes += cur.bytes;
    kept.push_back(std::move(cur));
    while (kept_bytes > keep_limit) {
      held[2 * kept.front().t] = held[2 * kept.front().t + 1] = nullptr;
      kept_bytes -= kept.front().bytes;
      kept.pop_front();
    }
  }
  if (all.status == kFactorOk) store->end_write(f->pivot);
  f->pivot.clear();
  f->pivot.shrink_to_fit();
  report_tally<T>(all, opt.kind, report);
  report->peak_bytes = peak + fixed;
}

// ---- the substitutions ------------------------------------------------------------

// sum_i op(a_i) b_i over n entries, op the conjugate when `c`, in four
// interleaved partial sums so that the loop vectorises.
template <class T>
T dot4(const T *a, const T *b, int n, bool c) {
  T s0(0), s1(0), s2(0), s3(0);
  int i = 0;
  if (c && kComplex<T>) {
    for (; i + 3 < n; i += 4) {
      s0 += orb::conj(a[i]) * b[i];
      s1 += orb::conj(a[i + 1]) * b[i + 1];
      s2 += orb::conj(a[i + 2]) * b[i + 2];
      s3 += orb::conj(a[i + 3]) * b[i + 3];
    }
    for (; i < n; ++i) s0 += orb::conj(a[i]) * b[i];
  } else {
    for (; i + 3 < n; i += 4) {
      s0 += a[i] * b[i];
      s1 += a[i + 1] * b[i + 1];
      s2 += a[i + 2] * b[i + 2];
      s3 += a[i + 3] * b[i + 3];
    }
    for (; i < n; ++i) s0 += a[i] * b[i];
  }
  return (s0 + s1) + (s2 + s3);
}

// The blocks of one factor for a pass of the substitution: from core, or
// read back from the store in the pass's order.
template <class T>
struct Blocks {
  const Symbolic &s;
  const std::vector<T> &core;
  BlockStore<T> *store;
  const T *get(int t, const int **rows) const {
    if (store) return store->get(t, rows);
    *rows = s.rows.data() + s.row_ptr[t];
    return core.data() + s.value_ptr[t];
  }
};

template <class T>
struct Solver {
  const Symbolic &s;
  const NumericFactor<T> &f;
  const int *pivot;  // f.pivot, or the store's record
  int nrhs;
  T *x;
  int ldx;
  std::vector<T> top, bot;

  Blocks<T> pass(const std::vector<T> &m, bool upper, bool backward) const {
    if (f.store) f.store->begin_read(upper, backward);
    return Blocks<T>{s, m, f.store.get()};
  }

  T &X(int i, int r) { return x[i + std::ptrdiff_t(r) * ldx]; }

  // x := M^-1 x for the lower factor M (unit or not), supernode by supernode
  // in postorder, each supernode's equations first put in pivot order.
  void forward(const std::vector<T> &m, bool upper, bool unit, bool permute) {
    const Blocks<T> blocks = pass(m, upper, false);
    for (int t = 0; t < s.nsuper; ++t) {
      const int nr = s.nrows(t), nc = s.ncols(t), nb = nr - nc, f0 = s.first[t];
      const int *rows;
      const T *a = blocks.get(t, &rows);
      for (int r = 0; r < nrhs; ++r)
        for (int i = 0; i < nc; ++i) top[i + r * nc] = X(permute ? pivot[f0 + i] : f0 + i, r);
      if (nrhs == 1) {
        // One right-hand side: column sweeps, no packing.
        for (int j = 0; j < nc; ++j) {
          const T *col = a + std::ptrdiff_t(j) * nr;
          if (!unit) top[j] /= col[j];
          const T v = top[j];
          for (int i = j + 1; i < nc; ++i) top[i] -= col[i] * v;
        }
      } else {
        trsm(false, Triangular{true, false, Op::kNone, unit}, nc, nrhs, a, nr, top.data(), nc);
      }
      for (int r = 0; r < nrhs; ++r)
        for (int i = 0; i < nc; ++i) X(f0 + i, r) = top[i + r * nc];
      if (nb == 0) continue;
      if (nrhs == 1) {
        std::fill(bot.begin(), bot.begin() + nb, T(0));
        for (int j = 0; j < nc; ++j) {
          const T v = top[j];
          const T *col = a + nc + std::ptrdiff_t(j) * nr;
          for (int i = 0; i < nb; ++i) bot[i] += col[i] * v;
        }
      } else {
        gemm(false, Op::kNone, Op::kNone, nb, nrhs, nc, T(1), a + nc, nr, top.data(), nc, T(0),
             bot.data(), nb);
      }
      const int *rb = rows + nc;
      for (int r = 0; r < nrhs; ++r)
        for (int i = 0; i < nb; ++i) X(rb[i], r) -= bot[i + r * nb];
    }
  }

  // x := op(M)^-1 x, op the transpose or conjugate transpose, in reverse
  // postorder, each supernode's result taken back out of pivot order.
  void backward(const std::vector<T> &m, bool upper, Op op, bool unit, bool permute) {
    const Blocks<T> blocks = pass(m, upper, true);
    for (int t = s.nsuper - 1; t >= 0; --t) {
      const int nr = s.nrows(t), nc = s.ncols(t), nb = nr - nc, f0 = s.first[t];
      const int *rows;
      const T *a = blocks.get(t, &rows);
      for (int r = 0; r < nrhs; ++r)
        for (int i = 0; i < nc; ++i) top[i + r * nc] = X(f0 + i, r);
      if (nb > 0) {
        const int *rb = rows + nc;
        for (int r = 0; r < nrhs; ++r)
          for (int i = 0; i < nb; ++i) bot[i + r * nb] = X(rb[i], r);
        if (nrhs == 1) {
          const bool c = op == Op::kConjTrans;
          for (int j = 0; j < nc; ++j) {
            const T *col = a + nc + std::ptrdiff_t(j) * nr;
            top[j] -= dot4(col, bot.data(), nb, c);
          }
        } else {
          gemm(false, op, Op::kNone, nc, nrhs, nb, T(-1), a + nc, nr, bot.data(), nb, T(1),
               top.data(), nc);
        }
      }
      if (nrhs == 1) {
        const bool c = op == Op::kConjTrans;
        for (int j = nc - 1; j >= 0; --j) {
          const T *col = a + std::ptrdiff_t(j) * nr;
          const T sum = top[j] - dot4(col + j + 1, top.data() + j + 1, nc - j - 1, c);
          top[j] = unit ? sum : sum / orb::conj_if(col[j], c);
        }
      } else {
        trsm(false, Triangular{true, false, op, unit}, nc, nrhs, a, nr, top.data(), nc);
      }
      for (int r = 0; r < nrhs; ++r)
        for (int i = 0; i < nc; ++i) X(permute ? pivot[f0 + i] : f0 + i, r) = top[i + r * nc];
    }
  }

  void diagonal(bool herm) {
    const int n = s.n;
    for (int r = 0; r < nrhs; ++r)
      for (int j = 0; j < n;) {
        const T d11 = f.diag[2 * j];
        if (pivot[n + j] == 1) {
          const T d21 = f.diag[2 * j + 1], d22 = f.diag[2 * j + 2];
          const T c = orb::conj_if(d21, herm);
          const T det =
              herm ? T(std::real(d11) * std::real(d22) - std::norm(d21)) : d11 * d22 - d21 * d21;
          const T b1 = X(j, r), b2 = X(j + 1, r);
          X(j, r) = (d22 * b1 - c * b2) / det;
          X(j + 1, r) = (d11 * b2 - d21 * b1) / det;
          j += 2;
        } else {
          X(j, r) /= d11;
          ++j;
        }
      }
  }
};

template <class T>
void conj_block(int n, int nrhs, T *x, int ldx) {
  if constexpr (kComplex<T>)
    for (int r = 0; r < nrhs; ++r)
      for (int i = 0; i < n; ++i)
        x[i + std::ptrdiff_t(r) * ldx] = std::conj(x[i + std::ptrdiff_t(r) * ldx]);
}

template <class T>
void solve_block(const Symbolic &s, const NumericFactor<T> &f, bool transposed, int steps, int nrhs,
                 T *x, int ldx) {
  const int *pivot = f.store && f.kind != FactorKind::kCholesky ? f.store->pivot() : f.pivot.data();
  Solver<T> sv{s, f, pivot, nrhs, x, ldx, {}, {}};
  int max_nc = 0, max_nb = 0;
  for (int t = 0; t < s.nsuper; ++t) {
    max_nc = std::max(max_nc, s.ncols(t));
    max_nb = std::max(max_nb, s.nrows(t) - s.ncols(t));
  }
  sv.top.resize(std::size_t(max_nc) * nrhs);
  sv.bot.resize(std::size_t(max_nb) * nrhs);
  switch (f.kind) {
    case FactorKind::kCholesky:
      if (steps & kForward) sv.forward(f.lower, false, false, false);
      if (steps & kBackward) sv.backward(f.lower, false, Op::kConjTrans, false, false);
      break;
    case FactorKind::kLdlSymmetric:
    case FactorKind::kLdlHermitian: {
      const bool herm = f.kind == FactorKind::kLdlHermitian;
      if (steps & kForward) sv.forward(f.lower, false, true, true);
      if (steps & kDiagonal) sv.diagonal(herm);
      if (steps & kBackward)
        sv.backward(f.lower, false, herm ? Op::kConjTrans : Op::kTrans, true, true);
      break;
    }
    case FactorKind::kLu:
      if (!transposed) {
        if (steps & kForward) sv.forward(f.lower, false, true, true);
        if (steps & kBackward) sv.backward(f.upper, true, Op::kTrans, false, false);
      } else {
        if (steps & kForward) sv.forward(f.upper, true, false, false);
        if (steps & kBackward) sv.backward(f.lower, false, Op::kTrans, true, true);
      }
      break;
  }
}

}  // namespace

template <class T>
int64_t NumericFactor<T>::bytes() const {
  return int64_t(sizeof(T)) * int64_t(lower.capacity() + upper.capacity() + diag.capacity()) +
         int64_t(sizeof(int)) * int64_t(pivot.capacity());
}

template <class T>
std::int64_t out_of_core_need(const Symbolic &s, FactorKind kind) {
  // With panels of one column: the supernode being factored, a descendant
  // read back and one kept, the workspace, the records of every column.
  const std::int64_t per = std::int64_t(sizeof(T)) * (kind == FactorKind::kLu ? 2 : 1);
  int max_rows = 0;
  for (int t = 0; t < s.nsuper; ++t) max_rows = std::max(max_rows, s.nrows(t));
  FactorOptions opt;
  opt.kind = kind;
  NumericFactor<T> none;
  const Factorizer<T> fz(s, opt, none);
  return 3 * per * max_rows + fz.workspace_bytes() +
         std::int64_t(s.n) * (2 * sizeof(T) + 2 * sizeof(int));
}

Symbolic split_supernodes(const Symbolic &s, std::int64_t max_entries) {
  Symbolic o;
  o.n = s.n;
  o.perm = s.perm;
  o.iperm = s.iperm;
  o.nnz_factor = s.nnz_factor;
  o.flops = s.flops;
  o.super_of.resize(s.n);
  o.first.push_back(0);
  o.row_ptr.push_back(0);
  o.value_ptr.push_back(0);
  for (int k = 0; k < s.nsuper; ++k) {
    const int nc = s.ncols(k), nr = s.nrows(k);
    const int *rows = s.rows.data() + s.row_ptr[k];
    for (int a = 0; a < nc;) {
      // A panel of columns a.. keeps the supernode's rows from a on.
      const int here = nr - a;
      const int width =
          int(std::max<std::int64_t>(1, std::min<std::int64_t>(nc - a, max_entries / here)));
      const int t = o.nsuper++;
      for (int j = a; j < a + width; ++j) o.super_of[s.first[k] + j] = t;
      o.rows.insert(o.rows.end(), rows + a, rows + nr);
      o.row_ptr.push_back(std::int64_t(o.rows.size()));
      o.value_ptr.push_back(o.value_ptr.back() + std::int64_t(here) * width);
      o.first.push_back(s.first[k] + a + width);
      a += width;
    }
  }
  o.parent.assign(o.nsuper, -1);
  for (int t = 0; t < o.nsuper; ++t)
    if (o.nrows(t) > o.ncols(t)) o.parent[t] = o.super_of[o.rows[o.row_ptr[t] + o.ncols(t)]];
  return o;
}

template <class T>
void factorize(const Symbolic &s, const CscMatrix<T> &b, const FactorOptions &opt,
               NumericFactor<T> *f, FactorReport *report, std::shared_ptr<BlockStore<T>> store) {
  *report = FactorReport{};
  f->store.reset();
  try {
    if (store) {
      factorize_out_of_core(s, b, opt, f, store.get(), report);
      f->store = std::move(store);
    } else {
      factorize_impl(s, b, opt, f, report);
    }
  } catch (const std::bad_alloc &) {
    *f = NumericFactor<T>{};
    f->kind = opt.kind;
    *report = FactorReport{};
    report->status = kFactorNoMemory;
  }
}

template <class T>
void solve(const Symbolic &s, const NumericFactor<T> &f, SolveOp op, int steps, int nrhs, T *x,
           int ldx, int threads) {
  if (nrhs <= 0 || s.n == 0) return;
  // The kinds whose matrix is its own (conjugate) transpose solve with the
  // conjugate of the matrix through conj(x) when op asks for it.
  bool conj = false, transposed = false;
  switch (f.kind) {
    case FactorKind::kCholesky:
    case FactorKind::kLdlHermitian:
      conj = op == SolveOp::kTranspose;
      break;
    case FactorKind::kLdlSymmetric:
      conj = op == SolveOp::kConjTranspose;
      break;
    case FactorKind::kLu:
      transposed = op != SolveOp::kNone;
      conj = op == SolveOp::kConjTranspose;
      break;
  }
  if constexpr (!kComplex<T>) conj = false;
  const int blocks = (nrhs + kRhsBlock - 1) / kRhsBlock;
  if (f.store) {
    // A factor in files is read once per pass for all the right-hand sides
    // together; a failure of the files propagates to the caller.
    if (conj) conj_block(s.n, nrhs, x, ldx);
    solve_block(f.store->symbolic(), f, transposed, steps, nrhs, x, ldx);
    if (conj) conj_block(s.n, nrhs, x, ldx);
    return;
  }
  const int team = std::max(1, std::min(threads, blocks));
  bool failed = false;
#pragma omp parallel for num_threads(team) schedule(static) if (team > 1) reduction(|| : failed)
  for (int k = 0; k < blocks; ++k) {
    const int r0 = k * kRhsBlock, nr = std::min(kRhsBlock, nrhs - r0);
    T *xb = x + std::ptrdiff_t(r0) * ldx;
    try {
      if (conj) conj_block(s.n, nr, xb, ldx);
      solve_block(s, f, transposed, steps, nr, xb, ldx);
      if (conj) conj_block(s.n, nr, xb, ldx);
    } catch (const std::bad_alloc &) {
      failed = true;
    }
  }
  if (failed) {
    // No storage for the solve: the right-hand sides become NaN.
    const T nan = T(std::numeric_limits<double>::quiet_NaN());
    for (int r = 0; r < nrhs; ++r)
      for (int i = 0; i < s.n; ++i) x[i + std::ptrdiff_t(r) * ldx] = nan;
  }
}

#define ORB_SPARSE_NUMERIC(T)                                                                     \
  template struct NumericFactor<T>;                                                               \
  template void factorize<T>(const Symbolic &, const CscMatrix<T> &, const FactorOptions &,       \
                             NumericFactor<T> *, FactorReport *, std::shared_ptr<BlockStore<T>>); \
  template std::int64_t out_of_core_need<T>(const Symbolic &, FactorKind);                        \
  template void solve<T>(const Symbolic &, const NumericFactor<T> &, SolveOp, int, int, T *, int, \
                         int);
ORB_SPARSE_NUMERIC(double)
ORB_SPARSE_NUMERIC(std::complex<double>)
#undef ORB_SPARSE_NUMERIC

}  // namespace orb::sparse
