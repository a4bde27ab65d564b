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

// Binary min-heap of rows keyed by an outside distance array, with each row's
// place kept so that a shorter distance moves it up in place.
class RowHeap {
 public:
  explicit RowHeap(int n) : place_(n, -1) { rows_.reserve(64); }

  bool empty() const { return rows_.empty(); }
  int top() const { return rows_.front(); }

  // Inserts row i, or restores the order after its key has decreased.
  void push_or_raise(int i, const double *key) {
    int at = place_[i];
    if (at < 0) {
      at = static_cast<int>(rows_.size());
      rows_.push_back(i);
    }
    sift_up(at, key);
  }

  int pop(const double *key) {
    const int first = rows_.front();
    place_[first] = -1;
    const int last = rows_.back();
    rows_.pop_back();
    if (!rows_.empty()) {
      rows_[0] = last;
      place_[last] = 0;
      sift_down(0, key);
    }
    return first;
  }

  void clear() {
    for (int i : rows_) place_[i] = -1;
    rows_.clear();
  }

 private:
  void sift_up(int at, const double *key) {
    const int i = rows_[at];
    const double d = key[i];
    while (at > 0) {
      const int parent = (at - 1) / 2;
      const int pr = rows_[parent];
      if (key[pr] <= d) break;
      rows_[at] = pr;
      place_[pr] = at;
      at = parent;
    }
    rows_[at] = i;
    place_[i] = at;
  }

  void sift_down(int at, const double *key) {
    const int size = static_cast<int>(rows_.size());
    const int i = rows_[at];
    const double d = key[i];
    for (;;) {
      int child = 2 * at + 1;
      if (child >= size) break;
      if (child + 1 < size && key[rows_[child + 1]] < key[rows_[child]]) ++child;
      const int c = rows_[child];
      if (key[c] >= d) break;
      rows_[at] = c;
      place_[c] = at;
      at = child;
    }
    rows_[at] = i;
    place_[i] = at;
  }

  std::vector<int> rows_;
  std::vector<int> place_;
};

// The matching state and the duals, with the work arrays of the searches.
class Matcher {
 public:
  Matcher(int n, const CostGraph &g)
      : n_(n),
        g_(g),
        u_(n, kInf),
        v_(n, 0.0),
        col_of_row_(n, -1),
        row_of_col_(n, -1),
        dist_(n, kInf),
        from_(n, -1),
        done_(n, 0),
        heap_(n) {}

  void initial_duals();
  int cheap_matching();
  bool augment_from(int j0);

  const std::vector<double> &u() const { return u_; }
  const std::vector<int> &row_of_col() const { return row_of_col_; }
  const std::vector<int> &col_of_row() const { return col_of_row_; }

 private:
  double reduced(int k, int i, int j) const {
    const double r = g_.cost[k] - u_[i] - v_[j];
    return r > 0.0 ? r : 0.0;
  }
  void match(int i, int j) {
    row_of_col_[j] = i;
    col_of_row_[i] = j;
  }

  int n_;
  const CostGraph &g_;
  std::vector<double> u_, v_;
  std::vector<int> col_of_row_, row_of_col_;
  // Search state: tentative distances of rows, the column each was reached
  // from, which rows are final, and the rows touched (to reset).
  std::vector<double> dist_;
  std::vector<int> from_;
  std::vector<char> done_;
  std::vector<int> touched_, finished_;
  RowHeap heap_;
};

// u_i: the smallest cost in row i; v_j: the smallest c_ij - u_i in column j.
// Each row and column then has a zero reduced cost, which the cheap matching
// uses.
void Matcher::initial_duals() {
  for (int j = 0; j < n_; ++j) {
    for (int k = g_.ptr[j]; k < g_.ptr[j + 1]; ++k) {
      const int i = g_.row[k];
      u_[i] = std::min(u_[i], g_.cost[k]);
    }
  }
  for (int i = 0; i < n_; ++i) {
    if (u_[i] == kInf) u_[i] = 0.0;
  }
  for (int j = 0; j < n_; ++j) {
    double m = kInf;
    for (int k = g_.ptr[j]; k < g_.ptr[j + 1]; ++k) m = std::min(m, g_.cost[k] - u_[g_.row[k]]);
    v_[j] = m == kInf ? 0.0 : m;
  }
}

// Matches along zero reduced costs: first each column to a free row, then a
// free column takes a row whose column can move to another free row (each
// column's list is walked once in that second pass, rows never being freed).
// Returns the number matched.
int Matcher::cheap_matching() {
  int matched = 0;
  for (int j = 0; j < n_; ++j) {
    for (int k = g_.ptr[j]; k < g_.ptr[j + 1]; ++k) {
      const int i = g_.row[k];
      if (col_of_row_[i] < 0 && g_.cost[k] - u_[i] - v_[j] <= 0.0) {
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
      const int i = g_.row[k];
      if (g_.cost[k] - u_[i] - v_[j] > 0.0) continue;
      const int jj = col_of_row_[i];
      if (jj < 0) {
        match(i, j);
        ++matched;
        break;
      }
      for (int &q = next[jj]; q < g_.ptr[jj + 1]; ++q) {
        const int ii = g_.row[q];
        if (col_of_row_[ii] >= 0 || g_.cost[q] - u_[ii] - v_[jj] > 0.0) continue;
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
// can be reached (the matrix is then structurally singular); the duals and
// the matching are left as they were.
bool Matcher::augment_from(int j0) {
  double best = kInf;
  int best_row = -1;
  int j = j0;
  double dj = 0.0;
  for (;;) {
    for (int k = g_.ptr[j]; k < g_.ptr[j + 1]; ++k) {
      const int i = g_.row[k];
      if (done_[i]) continue;
      const double d = dj + reduced(k, i, j);
      if (d >= best) continue;
      if (col_of_row_[i] < 0) {
        best = d;
        best_row = i;
        from_[i] = j;
      } else if (d < dist_[i]) {
        if (dist_[i] == kInf) touched_.push_back(i);
        dist_[i] = d;
        from_[i] = j;
        heap_.push_or_raise(i, dist_.data());
      }
    }
    if (heap_.empty() || dist_[heap_.top()] >= best) break;
    const int i = heap_.pop(dist_.data());
    done_[i] = 1;
    finished_.push_back(i);
    j = col_of_row_[i];
    dj = dist_[i];
  }

  const bool found = best_row >= 0;
  if (found) {
    // Rows that were final (distance d <= best) and their columns move by
    // best - d, the start column by best: matched and path edges end at zero
    // reduced cost, the rest stay nonnegative.
    v_[j0] += best;
    for (int i : finished_) {
      const double shift = best - dist_[i];
      u_[i] -= shift;
      v_[col_of_row_[i]] += shift;
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
  for (int i : touched_) dist_[i] = kInf;
  for (int i : finished_) done_[i] = 0;
  touched_.clear();
  finished_.clear();
  heap_.clear();
  return found;
}

double clamp_log(double s) {
  return std::min(kMaxLogScale, std::max(-kMaxLogScale, s));
}

int matching_impl(int n, const int *col_ptr, const int *row, const double *absval, Matching *out) {
  CostGraph g;
  build_costs(n, col_ptr, row, absval, &g);
  Matcher m(n, g);
  m.initial_duals();
  int matched = m.cheap_matching();
  for (int j = 0; j < n && matched < n; ++j) {
    if (m.row_of_col()[j] < 0 && m.augment_from(j)) ++matched;
  }

  // Logs of the scaling: rows from their duals, columns from the matched
  // entry so that it scales to 1 exactly up to rounding. Row and column
  // logs may trade a common constant; it is chosen to centre them about 0.
  std::vector<double> log_row(n, 0.0), log_col(n, 0.0);
  const std::vector<int> &rc = m.row_of_col();
  double lo = kInf, hi = -kInf;
  for (int j = 0; j < n; ++j) {
    const int i = rc[j];
    if (i < 0) continue;
    for (int k = g.ptr[j]; k < g.ptr[j + 1]; ++k) {
      if (g.row[k] != i) continue;
      const double log_a = g.log_max[j] - g.cost[k];
      log_row[i] = m.u()[i];
      log_col[j] = -(log_row[i] + log_a);
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
  const std::vector<int> &cr = m.col_of_row();
  int i = 0;
  for (int j = 0; j < n; ++j) {
    if (rc[j] >= 0) continue;
    while (cr[i] >= 0) ++i;
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
