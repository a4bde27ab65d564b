#include "sparse_direct/prepare.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numeric>

#include "common/scalar.h"
#include "sparse_direct/messages.h"

namespace orb::sparse {

namespace {

bool symmetric_type(int mtype) {
  return mtype == 2 || mtype == -2 || mtype == 4 || mtype == -4 || mtype == 6;
}

// Symmetric indefinite matrices with zero (or negligible) diagonal entries,
// saddle points above all, break a pivot order that eliminates such an
// equation before its neighbours: its pivot is zero, and its perturbation
// lets the factor grow without bound. Each such equation is paired with the
// neighbour of largest coupling whose own diagonal is not negligible; the
// ordering works on the graph with each pair merged into one vertex and
// eliminates the neighbour right before it, so that its pivot is -b^2 / d
// and not zero. Returns the pairs' count; mate[v] is v's partner or -1.
int pair_zero_diagonals(int n, const int *ptr, const int *col, const std::vector<double> &mag,
                        const std::vector<double> &diag, std::vector<int> *mate) {
  double largest = 0;
  for (int i = 0; i < n; ++i)
    for (int k = ptr[i]; k < ptr[i + 1]; ++k) largest = std::max(largest, mag[k]);
  const double negligible = 1e-8 * largest;
  std::vector<char> tiny(n);
  int count = 0;
  for (int i = 0; i < n; ++i) count += tiny[i] = diag[i] <= negligible;
  mate->assign(n, -1);
  if (count == 0 || largest == 0) return 0;
  // The candidates of each negligible-diagonal equation.
  std::vector<int> cp(n + 1, 0);
  auto visit = [&](auto &&take) {
    for (int i = 0; i < n; ++i)
      for (int k = ptr[i]; k < ptr[i + 1]; ++k) {
        const int c = col[k];
        if (c <= i || mag[k] == 0) continue;
        if (tiny[i] && !tiny[c]) take(i, c, mag[k]);
        if (tiny[c] && !tiny[i]) take(c, i, mag[k]);
      }
  };
  visit([&](int p, int, double) { ++cp[p + 1]; });
  for (int i = 0; i < n; ++i) cp[i + 1] += cp[i];
  std::vector<int> cand(cp[n]);
  std::vector<double> weight(cp[n]);
  std::vector<int> next(cp.begin(), cp.end() - 1);
  visit([&](int p, int f, double w) {
    cand[next[p]] = f;
    weight[next[p]++] = w;
  });
  int pairs = 0;
  for (int p = 0; p < n; ++p) {
    int best = -1;
    for (int k = cp[p]; k < cp[p + 1]; ++k)
      if ((*mate)[cand[k]] < 0 && (best < 0 || weight[k] > weight[best])) best = k;
    if (best < 0) continue;
    (*mate)[p] = cand[best];
    (*mate)[cand[best]] = p;
    ++pairs;
  }
  return pairs;
}

// The ordering of `g` with the pairs of `mate` kept together, the partner of
// larger diagonal first: the quotient graph of the pairs is ordered, then
// expanded. Returns an analysis status; *order gets order[new] = old.
int paired_order(const Graph &g, const std::vector<int> &mate, const std::vector<double> &diag,
                 Ordering ordering, int threads, std::vector<int> *order) {
  const int n = g.n;
  std::vector<int> rep(n);
  int nc = 0;
  for (int v = 0; v < n; ++v) rep[v] = (mate[v] >= 0 && mate[v] < v) ? rep[mate[v]] : nc++;
  std::vector<int> first_member(nc, -1), mark(nc, -1);
  for (int v = 0; v < n; ++v)
    if (first_member[rep[v]] < 0) first_member[rep[v]] = v;
  Graph q;
  q.n = nc;
  q.ptr.assign(nc + 1, 0);
  for (int c = 0; c < nc; ++c) {
    const int v = first_member[c];
    const std::size_t start = q.adj.size();
    mark[c] = c;
    for (int w : {v, mate[v]}) {
      if (w < 0) continue;
      for (int k = g.ptr[w]; k < g.ptr[w + 1]; ++k) {
        const int r = rep[g.adj[k]];
        if (mark[r] == c) continue;
        mark[r] = c;
        q.adj.push_back(r);
      }
    }
    std::sort(q.adj.begin() + std::ptrdiff_t(start), q.adj.end());
    q.ptr[c + 1] = int(q.adj.size());
  }
  Symbolic qs;
  const int st = analyse(q, ordering, nullptr, threads, &qs);
  if (st != kAnalysisOk) return st;
  order->clear();
  order->reserve(n);
  for (int k = 0; k < nc; ++k) {
    const int v = first_member[qs.perm[k]];
    const int w = mate[v];
    if (w < 0) {
      order->push_back(v);
    } else {
      const bool v_first = diag[v] >= diag[w];
      order->push_back(v_first ? v : w);
      order->push_back(v_first ? w : v);
    }
  }
  return kAnalysisOk;
}

}  // namespace

bool check_matrix(int n, const int *ia, const int *ja, int base, bool symmetric, bool full,
                  std::string *message) {
  if (ia[0] != base) {
    *message = text::format("*** Error in TESSERA: row 1 starts at %d, not at %d", ia[0], base);
    return false;
  }
  for (int i = 0; i < n; ++i) {
    const int begin = ia[i] - base, end = ia[i + 1] - base;
    if (end < begin) {
      *message = text::format("*** Error in TESSERA: row %d ends before it starts", i + 1);
      return false;
    }
    bool diagonal = false;
    for (int k = begin; k < end; ++k) {
      const int c = ja[k] - base;
      if (c < 0 || c >= n) {
        *message =
            text::format("*** Error in TESSERA: row %d: column %d is out of range", i + 1, ja[k]);
        return false;
      }
      if (!full) continue;
      if (k > begin && c <= ja[k - 1] - base) {
        *message =
            c == ja[k - 1] - base
                ? text::format("*** Error in TESSERA: row %d: column %d appears twice", i + 1,
                               ja[k])
                : text::format("*** Error in TESSERA: row %d: columns are not in increasing order",
                               i + 1);
        return false;
      }
      diagonal = diagonal || c == i;
    }
    if (full && symmetric && !diagonal) {
      *message = text::format("*** Error in TESSERA: row %d: the diagonal entry is missing", i + 1);
      return false;
    }
  }
  return true;
}

FactorKind kind_of(int mtype) {
  switch (mtype) {
    case 2:
    case 4:
      return FactorKind::kCholesky;
    case -2:
    case 6:
      return FactorKind::kLdlSymmetric;
    case -4:
      return FactorKind::kLdlHermitian;
    default:
      return FactorKind::kLu;
  }
}

std::int64_t Analysis::bytes() const {
  const Symbolic &s = symbolic;
  std::int64_t b = 0;
  b += sizeof(int) * std::int64_t(s.perm.size() + s.iperm.size() + s.first.size() +
                                  s.parent.size() + s.super_of.size() + s.rows.size());
  b += sizeof(std::int64_t) * std::int64_t(s.row_ptr.size() + s.value_ptr.size());
  b += sizeof(int) * std::int64_t(col_ptr.size() + row.size() + input_ptr.size() +
                                  input_col.size() + match_row.size());
  b += sizeof(std::int64_t) * std::int64_t(dest.size()) + std::int64_t(conj.size());
  b += sizeof(double) * std::int64_t(row_scale.size() + col_scale.size());
  return b;
}

int build_analysis(const Call &call, int base, Analysis *an, int *status,
                   std::int64_t *storage_bytes) {
  const int n = call.n;
  const int *ip = call.iparam;
  *status = 0;
  an->mtype = call.mtype;
  an->n = n;
  an->complex = complex_mtype(call.mtype);
  an->kind = kind_of(call.mtype);
  const bool symmetric = symmetric_type(call.mtype);
  const bool hermitian = call.mtype == 4 || call.mtype == -4;
  const std::int64_t nnz = std::int64_t(call.ia[n]) - base;
  *storage_bytes = nnz * 24;
  try {
    an->input_ptr.resize(n + 1);
    an->input_col.resize(nnz);
    for (int i = 0; i <= n; ++i) an->input_ptr[i] = call.ia[i] - base;
    for (std::int64_t k = 0; k < nnz; ++k) an->input_col[k] = call.ja[k] - base;
    const int *ptr = an->input_ptr.data();
    const int *col = an->input_col.data();

    // Magnitudes of the stored values, for the matching.
    const bool unsym = an->kind == FactorKind::kLu;
    // The preprocessing belongs to the unsymmetric types 11 and 13 (the
    // matching with iparam(13), its scaling with iparam(11) as well) and the
    // indefinite ones (the symmetric scaling with both); the structurally
    // symmetric types 1 and 3 and the definite ones have none.
    const bool general = call.mtype == 11 || call.mtype == 13;
    const bool want_matching =
        general ? ip[12] > 0
                : an->kind != FactorKind::kCholesky && symmetric && ip[12] > 0 && ip[10] == 1;
    an->matched = false;
    an->row_scale.clear();
    an->col_scale.clear();
    an->match_row.clear();
    if (want_matching) {
      // Compressed columns of |A| (the whole matrix; a symmetric type's
      // upper triangle mirrored).
      std::vector<int> cp(n + 1, 0), ri;
      std::vector<double> av;
      auto value_mag = [&](std::int64_t k) {
        return an->complex ? std::abs(static_cast<const c16 *>(call.a)[k])
                           : std::fabs(static_cast<const double *>(call.a)[k]);
      };
      for (int i = 0; i < n; ++i)
        for (int k = ptr[i]; k < ptr[i + 1]; ++k) {
          if (symmetric && col[k] < i) continue;
          ++cp[col[k] + 1];
          if (symmetric && col[k] != i) ++cp[i + 1];
        }
      for (int j = 0; j < n; ++j) cp[j + 1] += cp[j];
      ri.resize(cp[n]);
      av.resize(cp[n]);
      std::vector<int> next(cp.begin(), cp.end() - 1);
      for (int i = 0; i < n; ++i)
        for (int k = ptr[i]; k < ptr[i + 1]; ++k) {
          const int c = col[k];
          if (symmetric && c < i) continue;
          const double m = value_mag(k);
          ri[next[c]] = i;
          av[next[c]++] = m;
          if (symmetric && c != i) {
            ri[next[i]] = c;
            av[next[i]++] = m;
          }
        }
      // Repeats would confuse the matching: merge them by column.
      std::vector<int> cp2(n + 1, 0), ri2;
      std::vector<double> av2;
      ri2.reserve(ri.size());
      av2.reserve(av.size());
      std::vector<int> seen(n, -1), slot(n, 0);
      for (int j = 0; j < n; ++j) {
        for (int k = cp[j]; k < cp[j + 1]; ++k) {
          const int r = ri[k];
          if (seen[r] == j) {
            av2[slot[r]] = std::max(av2[slot[r]], av[k]);
            continue;
          }
          seen[r] = j;
          slot[r] = int(ri2.size());
          ri2.push_back(r);
          av2.push_back(av[k]);
        }
        cp2[j + 1] = int(ri2.size());
      }
      if (unsym) {
        Matching m;
        const int st = weighted_matching(n, cp2.data(), ri2.data(), av2.data(), &m);
        if (st == 1) return -2;
        // A structurally singular matrix keeps its rows: the factorization's
        // perturbation deals with it.
        if (st == 0) {
          an->matched = true;
          an->match_row = m.row_of_col;
        }
        if (ip[10] == 1) {
          an->row_scale = m.row_scale;
          an->col_scale = m.col_scale;
        }
      } else {
        std::vector<double> scale;
        const int st = symmetric_scaling(n, cp2.data(), ri2.data(), av2.data(), &scale);
        if (st == 1) return -2;
        if (st == 0) {
          an->row_scale = scale;
          an->col_scale = scale;
        }
      }
    }

    // The rows of B0 = Pm A: row j of B0 is row match_row[j] of A.
    std::vector<int> b0_row(n);  // b0_row[i]: where row i of A goes
    if (an->matched)
      for (int j = 0; j < n; ++j) b0_row[an->match_row[j]] = j;
    else
      std::iota(b0_row.begin(), b0_row.end(), 0);
    std::vector<int> gp(n + 1, 0), gc(nnz);
    for (int i = 0; i < n; ++i) gp[b0_row[i] + 1] = ptr[i + 1] - ptr[i];
    for (int j = 0; j < n; ++j) gp[j + 1] += gp[j];
    for (int i = 0; i < n; ++i)
      std::copy(col + ptr[i], col + ptr[i + 1], gc.begin() + gp[b0_row[i]]);
    Graph g;
    if (!symmetric_graph(n, gp.data(), gc.data(), &g)) return -2;
    gp = std::vector<int>();
    gc = std::vector<int>();

    // The ordering.
    Ordering ordering = ip[1] == 0 ? Ordering::kMinimumDegree : Ordering::kNestedDissection;
    std::vector<int> user;
    if (ip[4] == 1) {
      // perm(i) is the position at which equation i is eliminated.
      ordering = Ordering::kUser;
      user.assign(n, -1);
      for (int i = 0; i < n; ++i) {
        const int p = call.perm[i] - 1;
        if (p < 0 || p >= n || user[p] != -1) return -1;
        user[p] = i;
      }
    }
    int st = kAnalysisOk;
    bool ordered = false;
    if (ordering != Ordering::kUser && symmetric && an->kind != FactorKind::kCholesky) {
      std::vector<double> mag(nnz), diag(n, 0.0);
      for (std::int64_t k = 0; k < nnz; ++k)
        mag[k] = an->complex ? std::abs(static_cast<const c16 *>(call.a)[k])
                             : std::fabs(static_cast<const double *>(call.a)[k]);
      for (int i = 0; i < n; ++i)
        for (int k = ptr[i]; k < ptr[i + 1]; ++k)
          if (col[k] == i) diag[i] = std::max(diag[i], mag[k]);
      std::vector<int> mate;
      if (pair_zero_diagonals(n, ptr, col, mag, diag, &mate) > 0) {
        st = paired_order(g, mate, diag, ordering, call.threads, &user);
        if (st == kAnalysisOk)
          st = analyse(g, Ordering::kUser, user.data(), call.threads, &an->symbolic);
        ordered = true;
      }
    }
    if (!ordered)
      st = analyse(g, ordering, user.empty() ? nullptr : user.data(), call.threads, &an->symbolic);
    *status = st;
    if (st == kAnalysisNoMemory) return -2;
    if (st == kAnalysisBadPerm) return -1;
    if (st == kAnalysisOverflow) return -8;
    if (st != kAnalysisOk) return -3;
    const Symbolic &s = an->symbolic;
    if (ip[4] == 2)
      for (int i = 0; i < n; ++i) call.perm[i] = s.iperm[i] + 1;

    // The pivot-ordered matrix: for each stored entry, its column and row in
    // pivot order, then compressed columns with repeats merged.
    an->dest.assign(nnz, -1);
    an->conj.assign(nnz, 0);
    std::vector<int> cnt(n + 1, 0);
    auto place = [&](int i, int c, int *r_out, int *c_out, bool *cj) {
      if (symmetric) {
        if (c < i) return false;
        const int p = s.iperm[i], q = s.iperm[c];
        *r_out = std::max(p, q);
        *c_out = std::min(p, q);
        *cj = hermitian && p < q;
      } else {
        *r_out = s.iperm[b0_row[i]];
        *c_out = s.iperm[c];
        *cj = false;
      }
      return true;
    };
    for (int i = 0; i < n; ++i)
      for (int k = ptr[i]; k < ptr[i + 1]; ++k) {
        int r, c;
        bool cj;
        if (place(i, col[k], &r, &c, &cj)) ++cnt[c + 1];
      }
    for (int j = 0; j < n; ++j) cnt[j + 1] += cnt[j];
    std::vector<std::int64_t> order(cnt[n]);
    std::vector<int> rows_tmp(cnt[n]);
    {
      std::vector<int> next(cnt.begin(), cnt.end() - 1);
      for (int i = 0; i < n; ++i)
        for (int k = ptr[i]; k < ptr[i + 1]; ++k) {
          int r, c;
          bool cj;
          if (!place(i, col[k], &r, &c, &cj)) continue;
          an->conj[k] = cj;
          rows_tmp[next[c]] = r;
          order[next[c]++] = k;
        }
    }
    an->col_ptr.assign(n + 1, 0);
    an->row.clear();
    an->row.reserve(cnt[n]);
    std::vector<std::int64_t> idx;
    for (int j = 0; j < n; ++j) {
      idx.resize(cnt[j + 1] - cnt[j]);
      std::iota(idx.begin(), idx.end(), std::int64_t(cnt[j]));
      std::sort(idx.begin(), idx.end(),
                [&](std::int64_t x, std::int64_t y) { return rows_tmp[x] < rows_tmp[y]; });
      int last = -1;
      for (std::int64_t t : idx) {
        if (rows_tmp[t] != last) {
          an->row.push_back(rows_tmp[t]);
          last = rows_tmp[t];
        }
        an->dest[order[t]] = std::int64_t(an->row.size()) - 1;
      }
      an->col_ptr[j + 1] = int(an->row.size());
    }
  } catch (const std::bad_alloc &) {
    return -2;
  }
  return 0;
}

template <class T>
double assemble(const Analysis &an, const T *a, std::vector<T> *val) {
  val->assign(an.row.size(), T(0));
  const bool scaled = !an.row_scale.empty();
  const bool symmetric = an.kind != FactorKind::kLu;
  double largest = 0;
  for (int i = 0; i < an.n; ++i)
    for (int k = an.input_ptr[i]; k < an.input_ptr[i + 1]; ++k) {
      const std::int64_t d = an.dest[k];
      if (d < 0) continue;
      T v = an.conj[k] ? orb::conj(a[k]) : a[k];
      if (scaled) {
        const int c = an.input_col[k];
        v *= symmetric ? an.row_scale[i] * an.row_scale[c] : an.row_scale[i] * an.col_scale[c];
      }
      (*val)[d] += v;
    }
  for (const T &v : *val) largest = std::max(largest, std::abs(v));
  return largest;
}

template <class T>
void multiply(const Analysis &an, const T *a, int op, const T *x, T *y) {
  const int n = an.n;
  std::fill(y, y + n, T(0));
  const bool hermitian = an.mtype == 4 || an.mtype == -4;
  const bool symmetric = an.kind != FactorKind::kLu;
  for (int i = 0; i < n; ++i) {
    const int begin = an.input_ptr[i], end = an.input_ptr[i + 1];
    if (symmetric) {
      // A = U + U^(H or T) - diag: op changes nothing for a real symmetric
      // matrix; op(A) x = conj(A conj x) for the conjugate transpose of a
      // complex symmetric one and the transpose of a Hermitian one.
      const bool cj = an.complex && ((op == 1 && !hermitian) || (op == 2 && hermitian));
      T acc(0);
      const T xi = cj ? orb::conj(x[i]) : x[i];
      for (int k = begin; k < end; ++k) {
        const int c = an.input_col[k];
        if (c < i) continue;
        const T v = a[k];
        const T xc = cj ? orb::conj(x[c]) : x[c];
        acc += v * xc;
        if (c != i) y[c] += (hermitian ? orb::conj(v) : v) * xi;
      }
      y[i] += acc;
      continue;
    }
    if (op == 0) {
      T acc(0);
      for (int k = begin; k < end; ++k) acc += a[k] * x[an.input_col[k]];
      y[i] = acc;
    } else {
      const T xi = x[i];
      for (int k = begin; k < end; ++k) {
        const T v = op == 1 ? orb::conj(a[k]) : a[k];
        y[an.input_col[k]] += v * xi;
      }
    }
  }
  if (symmetric && an.complex && ((op == 1 && !hermitian) || (op == 2 && hermitian)))
    for (int i = 0; i < n; ++i) y[i] = orb::conj(y[i]);
}

template <class T>
void direct_solve(const Analysis &an, const NumericFactor<T> &f, int op, int steps, int nrhs,
                  const T *b, T *x, int threads) {
  const int n = an.n;
  const Symbolic &s = an.symbolic;
  const bool scaled = !an.row_scale.empty();
  const bool symmetric = an.kind != FactorKind::kLu;
  std::vector<T> z(std::size_t(n) * nrhs);
  // The conjugate transposed system of a complex symmetric matrix and the
  // transposed one of a Hermitian matrix are solved as conj(A^-1 conj b).
  const bool hermitian = an.mtype == 4 || an.mtype == -4;
  const bool conj_sym =
      symmetric && an.complex && ((op == 1 && !hermitian) || (op == 2 && hermitian));
  SolveOp sop = SolveOp::kNone;
  if (!symmetric)
    sop = op == 1 ? SolveOp::kConjTranspose : op == 2 ? SolveOp::kTranspose : SolveOp::kNone;
  // Without the forward part the right-hand sides are in pivot order
  // already, and without the backward part the result stays in it.
  const bool pre = steps & kForward, post = steps & kBackward;
  if (!pre) std::copy(b, b + std::size_t(n) * nrhs, z.begin());
  for (int r = 0; pre && r < nrhs; ++r) {
    const T *br = b + std::size_t(r) * n;
    T *zr = z.data() + std::size_t(r) * n;
    for (int k = 0; k < n; ++k) {
      int i;  // the equation of b at pivot position k
      double w = 1;
      if (symmetric) {
        i = s.perm[k];
        if (scaled) w = an.row_scale[i];
      } else if (op == 0) {
        // B0 y = Pm Dr b: row j of B0 is row match_row[j] of A.
        const int j = s.perm[k];
        i = an.matched ? an.match_row[j] : j;
        if (scaled) w = an.row_scale[i];
      } else {
        // B0^T w = Dc b.
        i = s.perm[k];
        if (scaled) w = an.col_scale[i];
      }
      zr[k] = conj_sym ? T(orb::conj(br[i]) * w) : T(br[i] * w);
    }
  }
  solve(s, f, sop, steps, nrhs, z.data(), n, threads);
  if (!post) std::copy(z.begin(), z.end(), x);
  for (int r = 0; post && r < nrhs; ++r) {
    T *xr = x + std::size_t(r) * n;
    const T *zr = z.data() + std::size_t(r) * n;
    for (int k = 0; k < n; ++k) {
      const int j = s.perm[k];
      int i;
      double w = 1;
      if (symmetric || op == 0) {
        // x = Dc y (S y for the symmetric types)
        i = j;
        if (scaled) w = symmetric ? an.row_scale[i] : an.col_scale[i];
      } else {
        // x = Dr Pm^T w
        i = an.matched ? an.match_row[j] : j;
        if (scaled) w = an.row_scale[i];
      }
      xr[i] = conj_sym ? T(orb::conj(zr[k]) * w) : T(zr[k] * w);
    }
  }
}

#define ORB_PREPARE(T)                                                                             \
  template double assemble(const Analysis &, const T *, std::vector<T> *);                         \
  template void multiply(const Analysis &, const T *, int, const T *, T *);                        \
  template void direct_solve(const Analysis &, const NumericFactor<T> &, int, int, int, const T *, \
                             T *, int);
ORB_PREPARE(double)
ORB_PREPARE(c16)
#undef ORB_PREPARE

}  // namespace orb::sparse
