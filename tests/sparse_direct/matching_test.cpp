// weighted_matching and symmetric_scaling: optimality against all
// permutations of small matrices, the scaling bounds (which certify
// optimality at any size), structural singularity and explicit zeros.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include "sparse_direct/matching.h"

namespace {

using orb::sparse::Matching;

// Compressed columns; `present` marks the stored entries, which may be zero.
struct Csc {
  int n = 0;
  std::vector<int> ptr{0}, row;
  std::vector<double> val;
};

Csc from_dense(int n, const std::vector<double> &a, const std::vector<char> &present) {
  Csc m;
  m.n = n;
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < n; ++i) {
      if (!present[i + j * n]) continue;
      m.row.push_back(i);
      m.val.push_back(a[i + j * n]);
    }
    m.ptr.push_back(static_cast<int>(m.row.size()));
  }
  return m;
}

int match(const Csc &a, Matching *m) {
  return orb::sparse::weighted_matching(a.n, a.ptr.data(), a.row.data(), a.val.data(), m);
}

bool is_permutation(const std::vector<int> &p) {
  std::vector<int> s = p;
  std::sort(s.begin(), s.end());
  for (int i = 0; i < static_cast<int>(s.size()); ++i) {
    if (s[i] != i) return false;
  }
  return true;
}

// Every entry of Dr|A|Dc between matched rows and columns is at most 1, the
// matched ones are 1; the unmatched rows and columns are unscaled.
void check_scaling(const Csc &a, const Matching &m) {
  std::vector<char> row_matched(a.n, 0), col_matched(a.n, 0);
  for (int j = 0; j < a.n; ++j) {
    double matched_value = -1.0;
    for (int k = a.ptr[j]; k < a.ptr[j + 1]; ++k) {
      if (a.row[k] == m.row_of_col[j] && a.val[k] != 0.0) matched_value = a.val[k];
    }
    if (matched_value < 0.0) continue;
    col_matched[j] = row_matched[m.row_of_col[j]] = 1;
    EXPECT_NEAR(m.row_scale[m.row_of_col[j]] * matched_value * m.col_scale[j], 1.0, 1e-12);
  }
  EXPECT_EQ(std::count(col_matched.begin(), col_matched.end(), 1), m.matched);
  for (int j = 0; j < a.n; ++j) {
    if (!col_matched[j]) {
      EXPECT_EQ(m.col_scale[j], 1.0);
    }
    if (!row_matched[j]) {
      EXPECT_EQ(m.row_scale[j], 1.0);
    }
    for (int k = a.ptr[j]; k < a.ptr[j + 1] && col_matched[j]; ++k) {
      if (row_matched[a.row[k]]) {
        EXPECT_LE(m.row_scale[a.row[k]] * std::fabs(a.val[k]) * m.col_scale[j], 1.0 + 1e-12);
      }
    }
  }
}

// The largest number of nonzero entries on a transversal and, among those
// transversals, the largest sum of their logs.
void brute_force(int n, const std::vector<double> &a, int *best_count, double *best_log) {
  std::vector<int> p(n);
  std::iota(p.begin(), p.end(), 0);
  *best_count = -1;
  do {
    int count = 0;
    double log_sum = 0.0;
    for (int j = 0; j < n; ++j) {
      if (a[p[j] + j * n] != 0.0) ++count, log_sum += std::log(a[p[j] + j * n]);
    }
    if (count > *best_count || (count == *best_count && log_sum > *best_log)) {
      *best_count = count;
      *best_log = log_sum;
    }
  } while (std::next_permutation(p.begin(), p.end()));
}

TEST(WeightedMatching, SmallMatricesAgainstAllPermutations) {
  std::mt19937 gen(2024);
  std::uniform_real_distribution<double> expo(-10.0, 10.0), unit(0.0, 1.0);
  int singular = 0;
  for (int trial = 0; trial < 400; ++trial) {
    const int n = 1 + trial % 8;
    const double density = 0.15 + 0.7 * unit(gen);
    std::vector<double> a(n * n, 0.0);
    std::vector<char> present(n * n, 0);
    for (int k = 0; k < n * n; ++k) {
      if (unit(gen) > density) continue;
      present[k] = 1;
      // A few stored zeros, which may not be matched.
      a[k] = unit(gen) < 0.1 ? 0.0 : std::pow(10.0, expo(gen));
    }
    const Csc csc = from_dense(n, a, present);
    Matching m;
    const int status = match(csc, &m);
    int best_count = 0;
    double best_log = 0.0;
    brute_force(n, a, &best_count, &best_log);
    ASSERT_EQ(m.matched, best_count) << "trial " << trial;
    EXPECT_EQ(status, best_count == n ? 0 : 2);
    ASSERT_TRUE(is_permutation(m.row_of_col));
    check_scaling(csc, m);
    if (best_count < n) {
      ++singular;
      continue;
    }
    double log_sum = 0.0;
    for (int j = 0; j < n; ++j) log_sum += std::log(a[m.row_of_col[j] + j * n]);
    EXPECT_NEAR(log_sum, best_log, 1e-9) << "trial " << trial;
  }
  EXPECT_GT(singular, 40);  // both kinds were drawn
}

// A diagonally dominant matrix with its rows shuffled; the matching undoes
// the shuffle. Sizes large enough for the searches to do the work.
TEST(WeightedMatching, RecoversThePermutationOfADominantDiagonal) {
  std::mt19937 gen(7);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (int n : {50, 3000}) {
    std::vector<int> perm(n);
    std::iota(perm.begin(), perm.end(), 0);
    std::shuffle(perm.begin(), perm.end(), gen);
    Csc a;
    a.n = n;
    for (int j = 0; j < n; ++j) {
      std::vector<int> rows = {j};
      for (int t = 0; t < 6; ++t) rows.push_back(static_cast<int>(gen() % n));
      std::sort(rows.begin(), rows.end());
      rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
      const double scale = std::pow(10.0, 20.0 * unit(gen) - 10.0);
      for (int i : rows) {
        a.row.push_back(perm[i]);
        a.val.push_back(scale * (i == j ? 10.0 : unit(gen)));
      }
      a.ptr.push_back(static_cast<int>(a.row.size()));
    }
    Matching m;
    ASSERT_EQ(match(a, &m), 0);
    for (int j = 0; j < n; ++j) ASSERT_EQ(m.row_of_col[j], perm[j]) << "n " << n;
    check_scaling(a, m);
  }
}

TEST(WeightedMatching, StructurallySingularAndTiny) {
  Matching m;
  // Column 1 holds only a stored zero; rows 0 and 2 share the one column 0.
  const Csc a = from_dense(3, {5, 0, 1e-200, 0, 0, 0, 0, 2, 0}, {1, 0, 1, 0, 1, 0, 0, 1, 0});
  EXPECT_EQ(match(a, &m), 2);
  EXPECT_EQ(m.matched, 2);
  EXPECT_EQ(m.row_of_col[0], 0);  // 5 over 1e-200
  EXPECT_EQ(m.row_of_col[2], 1);
  EXPECT_TRUE(is_permutation(m.row_of_col));
  check_scaling(a, m);

  const Csc one = from_dense(1, {3e-300}, {1});
  EXPECT_EQ(match(one, &m), 0);
  EXPECT_EQ(m.row_of_col, std::vector<int>{0});
  EXPECT_NEAR(m.row_scale[0] * 3e-300 * m.col_scale[0], 1.0, 1e-12);
  EXPECT_TRUE(std::isfinite(m.row_scale[0]) && std::isfinite(m.col_scale[0]));

  const Csc zero = from_dense(1, {0.0}, {1});
  EXPECT_EQ(match(zero, &m), 2);
  EXPECT_EQ(m.matched, 0);
  EXPECT_EQ(m.row_of_col, std::vector<int>{0});
  EXPECT_EQ(m.row_scale[0], 1.0);
}

// Entries spanning the exponent range: the scaling stays finite and exact.
TEST(WeightedMatching, ExtremeMagnitudes) {
  const Csc a = from_dense(3, {1e300, 1e-300, 0, 1e-300, 1e-280, 1e290, 0, 1e-250, 1e-300},
                           {1, 1, 0, 1, 1, 1, 0, 1, 1});
  Matching m;
  ASSERT_EQ(match(a, &m), 0);
  EXPECT_EQ(m.row_of_col, (std::vector<int>{0, 2, 1}));
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(std::isfinite(m.row_scale[i]) && m.row_scale[i] > 0.0);
    EXPECT_TRUE(std::isfinite(m.col_scale[i]) && m.col_scale[i] > 0.0);
  }
  check_scaling(a, m);
}

TEST(SymmetricScaling, BoundsAndMatchedEntries) {
  std::mt19937 gen(99);
  std::uniform_real_distribution<double> expo(-10.0, 10.0), unit(0.0, 1.0);
  for (int trial = 0; trial < 60; ++trial) {
    const int n = trial < 50 ? 1 + trial % 8 : 400;
    std::vector<double> a(n * n, 0.0);
    std::vector<char> present(n * n, 0);
    for (int j = 0; j < n; ++j) {
      for (int i = j; i < n; ++i) {
        if (i != j && unit(gen) > std::min(0.5, 8.0 / n)) continue;
        if (i == j && unit(gen) < 0.3) continue;  // some zero diagonals
        a[i + j * n] = a[j + i * n] = std::pow(10.0, expo(gen));
        present[i + j * n] = present[j + i * n] = 1;
      }
    }
    const Csc csc = from_dense(n, a, present);
    std::vector<double> s;
    const int status =
        orb::sparse::symmetric_scaling(n, csc.ptr.data(), csc.row.data(), csc.val.data(), &s);
    Matching m;
    ASSERT_EQ(status, match(csc, &m));
    ASSERT_EQ(s.size(), static_cast<size_t>(n));
    if (status != 0) continue;
    for (int j = 0; j < n; ++j) {
      for (int k = csc.ptr[j]; k < csc.ptr[j + 1]; ++k) {
        EXPECT_LE(s[csc.row[k]] * csc.val[k] * s[j], 1.0 + 1e-12);
      }
      EXPECT_NEAR(s[m.row_of_col[j]] * a[m.row_of_col[j] + j * n] * s[j], 1.0, 1e-10);
    }
  }
}

}  // namespace
