// Maximum product transversal by shortest augmenting paths (Duff and Koster,
// SIAM J. Matrix Anal. Appl. 22(4), 2001) and the scaling from its duals.
//
// Column j's entries cost c_ij = log(max_k |a_kj|) - log|a_ij| >= 0, so the
// largest product of matched magnitudes is the smallest sum of matched costs.
// Row duals u and column duals v keep every reduced cost c_ij - u_i - v_j
// nonnegative and the matched ones zero; an augmenting path from a free column
// is then a shortest path in reduced costs (Dijkstra, binary heap), and the
// duals that close it keep those invariants. At the end exp(u_i) scales the
// rows and exp(v_j) / max_k |a_kj| the columns: every entry of Dr |A| Dc is
// exp(-(c_ij - u_i - v_j)) <= 1 and the matched ones are 1.
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <new>
#include <vector>

#include "sparse_direct/matching.h"

namespace orb::sparse {
namespace {

constexpr int kOk = 0;
constexpr int kNoMemory = 1;
constexpr int kSingular = 2;

constexpr double kInf = std::numeric_limits<double>::infinity();
// Scaling exponents are kept where exp() neither overflows nor leaves the
// normal range; only matrices whose entries span the whole exponent range
// come near it.
constexpr double kMaxLogScale = 700.0;

// The eligible entries (finite and nonzero) with their costs, in compressed
// columns.
struct CostGraph {
  std::vector<int> ptr;
  std::vector<int> row;
  std::vector<double> cost;
  std::vector<double> log_max;  // log of the column's largest magnitude
};

void build_costs(int n, const int *col_ptr, const int *row, const double *absval, CostGraph *g) {
  g->ptr.assign(n + 1, 0);
  int kept = 0;
  for (int j = 0; j < n; ++j) {
    for (int k = col_ptr[j]; k < col_ptr[j + 1]; ++k) {
      const double a = std::fabs(absval[k]);
      if (a > 0.0 && a <= DBL_MAX) ++kept;
    }
  }
  g->row.resize(kept);
  g->cost.resize(kept);
  g->log_max.assign(n, 0.0);
  int p = 0;
  for (int j = 0; j < n; ++j) {
    const int start = p;
    double big = 0.0;
    for (int k = col_ptr[j]; k < col_ptr[j + 1]; ++k) {
      const double a = std::fabs(absval[k]);
      if (!(a > 0.0 && a <= DBL_MAX)) continue;
      g->row[p] = row[k];
      g->cost[p] = std::log(a);
      big = std::max(big, a);
      ++p;
    }
    if (p > start) {
      const double lm = std::log(big);
      g->log_max[j] = lm;
      for (int q = start; q < p; ++q) g->cost[q] = lm - g->cost[q];
    }
    g->ptr[j + 1] = p;
  }
}

// Binary min-heap of rows with their distances, each row's place kept so
// that a shorter distance moves it up in place.
class RowHeap {
 public:
  explicit RowHeap(int n) : place_(n, -1) { items_.reserve(64); }

  bool empty() const { return items_.empty(); }
  double top_key() const { return items_.front().key; }

  // Inserts row i with distance d, or moves it up to its shorter distance d.
  void push_or_raise(int i, double d) {
    int at = place_[i];
    if (at < 0) {
      at = static_cast<int>(items_.size());
      items_.push_back({d, i});
    }
    sift_up(at, {d, i});
  }

  int pop() {
    const int first = items_.front().row;
    place_[first] = -1;
    const Item last = items_.back();
    items_.pop_back();
    if (!items_.empty()) sift_down(last);
    return first;
  }

  void clear() {
    for (const Item &t : items_) place_[t.row] = -1;
    items_.clear();
  }

 private:
  struct Item {
    double key;
    int row;
  };

  void put(int at, const Item &t) {
    items_[at] = t;
    place_[t.row] = at;
  }

  void sift_up(int at, const Item &t) {
    while (at > 0) {
      const int parent = (at - 1) / 2;
      if (items_[parent].key <= t.key) break;
      put(at, items_[parent]);
      at = parent;
    }
    put(at, t);
  }

  // Places t, taken from the end, starting at the root.
  void sift_down(const Item &t) {
    const int size = static_cast<int>(items_.size());
    int at = 0;
    for (;;) {
      int child = 2 * at + 1;
      if (child >= size) break;
      if (child + 1 < size && items_[child + 1].key < items_[child].key) ++child;
      if (items_[child].key >= t.key) break;
      put(at, items_[child]);
      at = child;
    }
    put(at, t);
  }

  std::vector<Item> items_;
  std::vector<int> place_;
};

// What the searches read of a row, together in one place.
struct RowState {
  double u = kInf;     // dual
  double dist = kInf;  // tentative distance in the current search
  int col = -1;        // matched column
  int mark = 0;        // kFinal in the current search, kDead for good
};
constexpr int kFinal = 1;
// Rows from which no free row can be reached; that stays so, since no
// augmenting path can pass through them.
constexpr int kDead = 2;

// The matching state and the duals, with the work arrays of the searches.
class Matcher {
 public:
  Matcher(int n, const CostGraph &g)
      : n_(n), g_(g), rows_(n), v_(n, 0.0), row_of_col_(n, -1), from_(n, -1), heap_(n) {}

  void initial_duals();
  int cheap_matching();
  bool augment_from(int j0);

  double u(int i) const { return rows_[i].u; }
  const std::vector<int> &row_of_col() const { return row_of_col_; }

 private:
  void match(int i, int j) {
    row_of_col_[j] = i;
    rows_[i].col = j;
  }

  int n_;
  const CostGraph &g_;
  std::vector<RowState> rows_;
  std::vector<double> v_;
  std::vector<int> row_of_col_;
  // The column each row was last reached from, and the rows touched by the
  // current search (to reset).
  std::vector<int> from_;
  std::vector<int> touched_, finished_;
  RowHeap heap_;
};

// u_i: the smallest cost in row i; v_j: the smallest c_ij - u_i in column j.
// Each row and column then has a zero reduced cost, which the cheap matching
// uses.
void Matcher::initial_duals() {
  for (int j = 0; j < n_; ++j) {
    for (int k = g_.ptr[j]; k < g_.ptr[j + 1]; ++k) {
      double &u = rows_[g_.row[k]].u;
      u = std::min(u, g_.cost[k]);
    }
  }
  for (RowState &r : rows_) {
    if (r.u == kInf) r.u = 0.0;
  }
  for (int j = 0; j < n_; ++j) {
    double m = kInf;
    for (int k = g_.ptr[j]; k < g_.ptr[j + 1]; ++k)
      m = std::min(m, g_.cost[k] - rows_[g_.row[k]].u);
    v_[j] = m == kInf ? 0.0 : m;
  }
}

// Matches along zero reduced costs: first each column to a free row, then a
// free column takes a row whose column can move to another free row (each
// column's list is walked once in that second pass, rows never being freed).
// Returns the number matched.
int Matcher::cheap_matching() {
  auto tight = [&](int k, int j) { return g_.cost[k] - rows_[g_.row[k]].u - v_[j] <= 0.0; };
  int matched = 0;
  for (int j = 0; j < n_; ++j) {
    for (int k = g_.ptr[j]; k < g_.ptr[j + 1]; ++k) {
      const int i = g_.row[k];
      if (rows_[i].col < 0 && tight(k, j)) {
        match(i, j);
        ++matched;
        break;
      }
    }
  }
  if (matched == n_) return matched;
  std::vector<int> next(g_.ptr.begin(), g_.ptr.end() - 1);
  for (int j = 0; j < n_; ++j) {
    if (row_of_col_[j] >= 0) continue;
    for (int k = g_.ptr[j]; k < g_.ptr[j + 1] && row_of_col_[j] < 0; ++k) {
      if (!tight(k, j)) continue;
      const int i = g_.row[k];
      const int jj = rows_[i].col;
      if (jj < 0) {
        match(i, j);
        ++matched;
        break;
      }
      for (int &q = next[jj]; q < g_.ptr[jj + 1]; ++q) {
        const int ii = g_.row[q];
        if (rows_[ii].col >= 0 || !tight(q, jj)) continue;
        match(ii, jj);
        match(i, j);
        ++matched;
        ++q;
        break;
      }
    }
  }
  return matched;
}

// One shortest augmenting path from the free column j0. Rows are labelled
// with their distance in reduced costs; a matched row leads on to its column
// at no cost. `best` is the shortest path to a free row seen so far, and the
// search stops once no labelled row is closer. Returns false when no free row
// can be reached (the matrix is then structurally singular); the matching and
// the duals are left as they were, and the rows reached are dead.
bool Matcher::augment_from(int j0) {
  double best = kInf;
  int best_row = -1;
  int j = j0;
  double dj = 0.0;
  for (;;) {
    const double vj = v_[j];
    for (int k = g_.ptr[j]; k < g_.ptr[j + 1]; ++k) {
      const int i = g_.row[k];
      RowState &r = rows_[i];
      if (r.mark) continue;
      const double d = dj + std::max(0.0, g_.cost[k] - r.u - vj);
      if (d >= best) continue;
      if (r.col < 0) {
        best = d;
        best_row = i;
        from_[i] = j;
      } else if (d < r.dist) {
        if (r.dist == kInf) touched_.push_back(i);
        r.dist = d;
        from_[i] = j;
        heap_.push_or_raise(i, d);
      }
    }
    if (heap_.empty() || heap_.top_key() >= best) break;
    const int i = heap_.pop();
    RowState &r = rows_[i];
    r.mark = kFinal;
    finished_.push_back(i);
    j = r.col;
    dj = r.dist;
  }

  const bool found = best_row >= 0;
  if (found) {
    // Rows that were final (distance d <= best) and their columns move by
    // best - d, the start column by best: matched and path edges end at zero
    // reduced cost, the rest stay nonnegative.
    v_[j0] += best;
    for (int i : finished_) {
      RowState &r = rows_[i];
      const double shift = best - r.dist;
      r.u -= shift;
      v_[r.col] += shift;
    }
    int i = best_row;
    for (;;) {
      const int jj = from_[i];
      const int previous = row_of_col_[jj];
      match(i, jj);
      if (jj == j0) break;
      i = previous;
    }
  }
  for (int i : touched_) rows_[i].dist = kInf;
  for (int i : finished_) rows_[i].mark = found ? 0 : kDead;
  touched_.clear();
  finished_.clear();
  heap_.clear();
  return found;
}

// The matching of largest size and, for a structurally nonsingular matrix,
// smallest cost; row_of_col gets -1 for the unmatched columns. Returns the
// size of the matching.
int solve(int n, const CostGraph &g, std::vector<int> *row_of_col, std::vector<double> *u) {
  Matcher m(n, g);
  m.initial_duals();
  int matched = m.cheap_matching();
  for (int j = 0; j < n && matched < n; ++j) {
    if (m.row_of_col()[j] < 0 && m.augment_from(j)) ++matched;
  }
  *row_of_col = m.row_of_col();
  u->resize(n);
  for (int i = 0; i < n; ++i) (*u)[i] = m.u(i);
  return matched;
}

// A structurally singular matrix: searches that found no free row have left
// the duals unfit for the rows they reached. The matched rows and columns
// form a square submatrix with a perfect matching; its optimal matching and
// duals replace them.
void solve_matched_block(int n, const CostGraph &g, int matched, std::vector<int> *row_of_col,
                         std::vector<double> *u) {
  std::vector<int> cols, rows, new_row(n, -1);
  cols.reserve(matched);
  rows.reserve(matched);
  for (int j = 0; j < n; ++j) {
    if ((*row_of_col)[j] < 0) continue;
    cols.push_back(j);
    new_row[(*row_of_col)[j]] = 0;
  }
  for (int i = 0; i < n; ++i) {
    if (new_row[i] < 0) continue;
    new_row[i] = static_cast<int>(rows.size());
    rows.push_back(i);
  }
  CostGraph sub;
  sub.ptr.assign(1, 0);
  sub.ptr.reserve(matched + 1);
  for (int j : cols) {
    for (int k = g.ptr[j]; k < g.ptr[j + 1]; ++k) {
      if (new_row[g.row[k]] < 0) continue;
      sub.row.push_back(new_row[g.row[k]]);
      sub.cost.push_back(g.cost[k]);
    }
    sub.ptr.push_back(static_cast<int>(sub.row.size()));
  }
  std::vector<int> sub_match;
  std::vector<double> sub_u;
  solve(matched, sub, &sub_match, &sub_u);
  for (int c = 0; c < matched; ++c) {
    (*row_of_col)[cols[c]] = rows[sub_match[c]];
    (*u)[rows[c]] = sub_u[c];
  }
}

double clamp_log(double s) {
  return std::min(kMaxLogScale, std::max(-kMaxLogScale, s));
}

int matching_impl(int n, const int *col_ptr, const int *row, const double *absval, Matching *out) {
  CostGraph g;
  build_costs(n, col_ptr, row, absval, &g);
  std::vector<int> rc;
  std::vector<double> u;
  const int matched = solve(n, g, &rc, &u);
  if (matched < n && matched > 0) solve_matched_block(n, g, matched, &rc, &u);

  // Logs of the scaling: rows from their duals, columns from the matched
  // entry so that it scales to 1 exactly up to rounding. Row and column
  // logs may trade a common constant; it is chosen to centre them about 0.
  std::vector<double> log_row(n, 0.0), log_col(n, 0.0);
  std::vector<char> row_used(n, 0);
  double lo = kInf, hi = -kInf;
  for (int j = 0; j < n; ++j) {
    const int i = rc[j];
    if (i < 0) continue;
    row_used[i] = 1;
    for (int k = g.ptr[j]; k < g.ptr[j + 1]; ++k) {
      if (g.row[k] != i) continue;
      const double log_a = g.log_max[j] - g.cost[k];
      log_row[i] = u[i];
      log_col[j] = -(u[i] + log_a);
      lo = std::min({lo, log_row[i], -log_col[j]});
      hi = std::max({hi, log_row[i], -log_col[j]});
      break;
    }
  }
  const double shift = matched > 0 ? -0.5 * (lo + hi) : 0.0;

  out->row_of_col.assign(n, -1);
  out->row_scale.assign(n, 1.0);
  out->col_scale.assign(n, 1.0);
  out->matched = matched;
  for (int j = 0; j < n; ++j) {
    const int i = rc[j];
    if (i < 0) continue;
    out->row_of_col[j] = i;
    out->row_scale[i] = std::exp(clamp_log(log_row[i] + shift));
    out->col_scale[j] = std::exp(clamp_log(log_col[j] - shift));
  }
  if (matched == n) return kOk;

  // Free columns take the free rows in order, unscaled.
  int i = 0;
  for (int j = 0; j < n; ++j) {
    if (rc[j] >= 0) continue;
    while (row_used[i]) ++i;
    out->row_of_col[j] = i++;
  }
  return kSingular;
}

}  // namespace

int weighted_matching(int n, const int *col_ptr, const int *row, const double *absval,
                      Matching *out) {
  if (n <= 0) {
    *out = Matching();
    return kOk;
  }
  try {
    return matching_impl(n, col_ptr, row, absval, out);
  } catch (const std::bad_alloc &) {
    return kNoMemory;
  }
}

int symmetric_scaling(int n, const int *col_ptr, const int *row, const double *absval,
                      std::vector<double> *scale) {
  try {
    Matching m;
    const int status = weighted_matching(n, col_ptr, row, absval, &m);
    if (status == kNoMemory) return status;
    scale->resize(std::max(n, 0));
    // sqrt(r_i c_i): for a symmetric matrix the averaged duals are optimal as
    // well, so matched entries stay at 1 and none exceeds it.
    for (int i = 0; i < n; ++i) {
      (*scale)[i] = std::sqrt(m.row_scale[i]) * std::sqrt(m.col_scale[i]);
    }
    return status;
  } catch (const std::bad_alloc &) {
    return kNoMemory;
  }
}

}  // namespace orb::sparse
