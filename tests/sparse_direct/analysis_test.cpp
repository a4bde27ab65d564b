// The analysis of the sparse direct solver against a brute-force symbolic
// elimination on a dense boolean matrix.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "sparse_direct/symbolic.h"

namespace orb::sparse {
namespace {

using Edges = std::vector<std::pair<int, int>>;

// A graph from an edge list, through symmetric_graph (one triangle given).
Graph graph_of(int n, const Edges &edges) {
  std::vector<int> ptr(n + 1, 0), col;
  Edges sorted = edges;
  std::sort(sorted.begin(), sorted.end());
  for (auto [i, j] : sorted) ++ptr[i + 1];
  for (int i = 0; i < n; ++i) ptr[i + 1] += ptr[i];
  for (auto [i, j] : sorted) col.push_back(j);
  Graph g;
  EXPECT_TRUE(symmetric_graph(n, ptr.data(), col.data(), &g));
  return g;
}

Edges random_edges(int n, double density, std::mt19937 &rng) {
  std::uniform_real_distribution<double> u(0, 1);
  Edges e;
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < i; ++j)
      if (u(rng) < density) e.push_back({i, j});
  return e;
}

Edges grid_edges(int nx, int ny, int nz) {
  Edges e;
  auto id = [&](int x, int y, int z) { return (z * ny + y) * nx + x; };
  for (int z = 0; z < nz; ++z)
    for (int y = 0; y < ny; ++y)
      for (int x = 0; x < nx; ++x) {
        if (x + 1 < nx) e.push_back({id(x, y, z), id(x + 1, y, z)});
        if (y + 1 < ny) e.push_back({id(x, y, z), id(x, y + 1, z)});
        if (z + 1 < nz) e.push_back({id(x, y, z), id(x, y, z + 1)});
      }
  return e;
}

// The exact pattern of L for P A P^T (perm[new] = old), row-major dense.
std::vector<char> exact_factor(const Graph &g, const std::vector<int> &perm) {
  const int n = g.n;
  std::vector<int> iperm(n);
  for (int k = 0; k < n; ++k) iperm[perm[k]] = k;
  std::vector<char> L(size_t(n) * n, 0);
  for (int v = 0; v < n; ++v) {
    L[size_t(iperm[v]) * n + iperm[v]] = 1;
    for (int p = g.ptr[v]; p < g.ptr[v + 1]; ++p) {
      const int i = iperm[v], j = iperm[g.adj[p]];
      if (i > j) L[size_t(i) * n + j] = 1;
    }
  }
  for (int k = 0; k < n; ++k)
    for (int i = k + 1; i < n; ++i)
      if (L[size_t(i) * n + k])
        for (int j = k + 1; j <= i; ++j)
          if (L[size_t(j) * n + k]) L[size_t(i) * n + j] = 1;
  return L;
}

int64_t count(const std::vector<char> &L) {
  return std::count(L.begin(), L.end(), 1);
}

// Everything the symbolic factor promises, checked against the exact pattern
// of L. Returns the number of explicit zeros.
int64_t check(const Graph &g, const Symbolic &s) {
  const int n = g.n;
  EXPECT_EQ(s.n, n);
  EXPECT_EQ(int(s.perm.size()), n);
  EXPECT_EQ(int(s.iperm.size()), n);
  for (int k = 0; k < n; ++k) {
    EXPECT_TRUE(s.perm[k] >= 0 && s.perm[k] < n);
    if (s.perm[k] >= 0 && s.perm[k] < n) {
      EXPECT_EQ(s.iperm[s.perm[k]], k);
    }
  }
  const int ns = s.nsuper;
  EXPECT_EQ(int(s.first.size()), ns + 1);
  EXPECT_EQ(s.first[0], 0);
  EXPECT_EQ(s.first[ns], n);
  EXPECT_EQ(int(s.row_ptr.size()), ns + 1);
  EXPECT_EQ(int(s.value_ptr.size()), ns + 1);
  EXPECT_EQ(int64_t(s.rows.size()), s.row_ptr[ns]);
  if (::testing::Test::HasFailure()) return 0;

  const std::vector<char> L = exact_factor(g, s.perm);
  std::vector<char> block(size_t(n) * n, 0);
  int64_t nnz = 0, values = 0;
  double flops = 0;
  for (int t = 0; t < ns; ++t) {
    const int f = s.first[t], l = s.first[t + 1], k = s.ncols(t), m = s.nrows(t);
    EXPECT_GT(k, 0);
    EXPECT_GE(m, k);
    for (int j = f; j < l; ++j) EXPECT_EQ(s.super_of[j], t);
    const int *r = s.rows.data() + s.row_ptr[t];
    for (int i = 0; i < k; ++i) EXPECT_EQ(r[i], f + i);
    for (int i = k; i < m; ++i) {
      EXPECT_GE(r[i], l);
      EXPECT_LT(r[i], n);
      if (i > k) {
        EXPECT_GT(r[i], r[i - 1]);
      }
    }
    // The parent is the supernode of the first row below; children come first.
    if (m > k) {
      EXPECT_EQ(s.parent[t], s.super_of[r[k]]);
      EXPECT_GT(s.parent[t], t);
      // The rows below lie among the parent's.
      const int p = s.parent[t];
      const int *pr = s.rows.data() + s.row_ptr[p];
      for (int i = k; i < m; ++i)
        EXPECT_TRUE(std::binary_search(pr, pr + s.nrows(p), r[i])) << "supernode " << t;
    } else {
      EXPECT_EQ(s.parent[t], -1);
    }
    // The last column's structure is exact.
    for (int i = 0; i < n; ++i) {
      const bool in = std::binary_search(r + k - 1, r + m, i);
      EXPECT_EQ(bool(L[size_t(i) * n + (l - 1)]), in) << "row " << i << ", column " << l - 1;
    }
    for (int j = f; j < l; ++j)
      for (int i = j - f; i < m; ++i) block[size_t(r[i]) * n + j] = 1;
    EXPECT_EQ(s.value_ptr[t + 1] - s.value_ptr[t], int64_t(m) * k);
    values += int64_t(m) * k;
    for (int c = m - k + 1; c <= m; ++c) {
      nnz += c;
      flops += 0.5 * c * (c + 1);
    }
  }
  // Fundamental supernodes are found: a column whose structure is its
  // parent's plus itself, where the parent has no other child, shares its
  // supernode; and a supernode made of such a chain alone holds no zeros.
  std::vector<int> cnt(n, 0), eparent(n, -1), nchild(n, 0);
  for (int j = 0; j < n; ++j)
    for (int i = n - 1; i >= j; --i)
      if (L[size_t(i) * n + j]) {
        ++cnt[j];
        if (i > j) eparent[j] = i;
      }
  for (int j = 0; j < n; ++j)
    if (eparent[j] != -1) ++nchild[eparent[j]];
  auto chained = [&](int j) {
    return eparent[j] == j + 1 && nchild[j + 1] == 1 && cnt[j] == cnt[j + 1] + 1;
  };
  for (int j = 0; j + 1 < n; ++j)
    if (chained(j)) {
      EXPECT_EQ(s.super_of[j], s.super_of[j + 1]) << "column " << j;
    }
  for (int t = 0; t < ns; ++t) {
    bool fundamental = true;
    for (int j = s.first[t]; j + 1 < s.first[t + 1]; ++j) fundamental = fundamental && chained(j);
    for (int j = s.first[t]; fundamental && j < s.first[t + 1]; ++j)
      EXPECT_EQ(cnt[j], s.nrows(t) - (j - s.first[t])) << "supernode " << t;
  }
  EXPECT_EQ(s.value_ptr[0], 0);
  EXPECT_EQ(s.value_ptr[ns], values);
  EXPECT_EQ(s.nnz_factor, nnz);
  EXPECT_DOUBLE_EQ(s.flops, flops);
  EXPECT_EQ(count(block), nnz);
  for (size_t e = 0; e < L.size(); ++e)
    if (L[e] && !block[e]) {
      ADD_FAILURE() << "L(" << e / n << ", " << e % n << ") is missing";
      break;
    }
  return nnz - count(L);
}

const Ordering kAll[] = {Ordering::kMinimumDegree, Ordering::kNestedDissection, Ordering::kUser};

std::vector<int> random_perm(int n, std::mt19937 &rng) {
  std::vector<int> p(n);
  std::iota(p.begin(), p.end(), 0);
  std::shuffle(p.begin(), p.end(), rng);
  return p;
}

TEST(SymmetricGraph, UnionOfBothTrianglesSortedWithoutRepeatsOrDiagonal) {
  std::mt19937 rng(7);
  const int n = 60;
  std::vector<std::set<int>> want(n);
  std::vector<int> ptr(1, 0), col;
  std::uniform_int_distribution<int> pick(0, n - 1), len(0, 6);
  for (int i = 0; i < n; ++i) {
    for (int q = len(rng); q > 0; --q) {
      const int j = pick(rng);
      col.push_back(j);
      if (q % 3 == 0) col.push_back(j);  // a repeat
      if (j != i) {
        want[i].insert(j);
        want[j].insert(i);
      }
    }
    col.push_back(i);  // the diagonal
    ptr.push_back(int(col.size()));
  }
  Graph g;
  ASSERT_TRUE(symmetric_graph(n, ptr.data(), col.data(), &g));
  ASSERT_EQ(g.n, n);
  for (int v = 0; v < n; ++v)
    EXPECT_EQ(std::vector<int>(g.adj.begin() + g.ptr[v], g.adj.begin() + g.ptr[v + 1]),
              std::vector<int>(want[v].begin(), want[v].end()));
}

TEST(Analyse, RandomPatternsAllOrderings) {
  std::mt19937 rng(2024);
  for (int trial = 0; trial < 24; ++trial) {
    const int n = 5 + int(rng() % 146);
    const double density = (trial % 3 == 0 ? 0.5 : trial % 3 == 1 ? 4.0 : 12.0) / n;
    const Graph g = graph_of(n, random_edges(n, density, rng));
    const std::vector<int> user = random_perm(n, rng);
    for (Ordering o : kAll) {
      SCOPED_TRACE(::testing::Message()
                   << "trial " << trial << " n " << n << " ordering " << int(o));
      Symbolic s;
      ASSERT_EQ(analyse(g, o, user.data(), 1, &s), kAnalysisOk);
      check(g, s);
      if (o == Ordering::kUser) {
        // An equivalent reordering of the caller's: the same fill.
        EXPECT_EQ(count(exact_factor(g, s.perm)), count(exact_factor(g, user)));
      }
    }
  }
}

TEST(Analyse, GridLaplacians) {
  std::mt19937 rng(3);
  const int dims[][3] = {{12, 12, 1}, {7, 9, 1}, {5, 5, 5}, {4, 6, 5}, {150, 1, 1}};
  for (auto &d : dims) {
    const int n = d[0] * d[1] * d[2];
    const Graph g = graph_of(n, grid_edges(d[0], d[1], d[2]));
    std::vector<int> natural(n);
    std::iota(natural.begin(), natural.end(), 0);
    for (Ordering o : kAll) {
      SCOPED_TRACE(::testing::Message()
                   << d[0] << "x" << d[1] << "x" << d[2] << " ordering " << int(o));
      Symbolic s;
      ASSERT_EQ(analyse(g, o, natural.data(), 1, &s), kAnalysisOk);
      const int64_t zeros = check(g, s);
      // The relaxed supernodes hold some explicit zeros, not many (a chain's
      // narrow supernodes are merged regardless).
      if (d[1] > 1) {
        EXPECT_LE(double(zeros), 0.5 * double(s.nnz_factor));
      }
    }
  }
}

// The natural order of a band matrix is already a postorder of its chain, and
// the supernodes merged along the chain keep it.
TEST(Analyse, UserOrderKeptWhenAlreadyPostordered) {
  const int n = 40;
  Edges e;
  for (int i = 1; i < n; ++i) e.push_back({i, i - 1});
  const Graph g = graph_of(n, e);
  std::vector<int> natural(n);
  std::iota(natural.begin(), natural.end(), 0);
  Symbolic s;
  ASSERT_EQ(analyse(g, Ordering::kUser, natural.data(), 1, &s), kAnalysisOk);
  EXPECT_EQ(s.perm, natural);
  EXPECT_GT(check(g, s), 0);  // amalgamated: the chain's width-1 supernodes merge
  EXPECT_LT(s.nsuper, n / 2);
}

TEST(Analyse, BadUserPermutationsRejected) {
  const Graph g = graph_of(4, {{1, 0}, {2, 1}, {3, 2}});
  const int repeated[] = {0, 1, 1, 3}, outside[] = {0, 1, 4, 2}, negative[] = {0, -1, 2, 3};
  for (const int *p : {repeated, outside, negative}) {
    Symbolic s;
    EXPECT_EQ(analyse(g, Ordering::kUser, p, 1, &s), kAnalysisBadPerm);
  }
  Symbolic s;
  EXPECT_EQ(analyse(g, Ordering::kUser, nullptr, 1, &s), kAnalysisBadPerm);
}

TEST(Analyse, DegenerateGraphs) {
  std::mt19937 rng(11);
  // One equation; a diagonal matrix; two grids, an isolated vertex and a
  // clique, disconnected.
  Edges disconnected = grid_edges(6, 5, 1);
  for (auto [i, j] : grid_edges(4, 4, 2)) disconnected.push_back({i + 31, j + 31});
  for (int i = 63; i < 70; ++i)
    for (int j = 63; j < i; ++j) disconnected.push_back({i, j});
  const std::pair<int, Edges> cases[] = {{1, {}}, {37, {}}, {70, disconnected}, {2, {{1, 0}}}};
  for (const auto &[n, edges] : cases) {
    const Graph g = graph_of(n, edges);
    const std::vector<int> user = random_perm(n, rng);
    for (Ordering o : kAll) {
      SCOPED_TRACE(::testing::Message() << "n " << n << " ordering " << int(o));
      Symbolic s;
      ASSERT_EQ(analyse(g, o, user.data(), 1, &s), kAnalysisOk);
      check(g, s);
      if (edges.empty()) {
        EXPECT_EQ(s.nnz_factor, n);
        if (o == Ordering::kUser) {
          EXPECT_EQ(s.perm, user);
        }
      }
    }
  }
  Graph empty;
  empty.ptr.assign(1, 0);
  Symbolic s;
  ASSERT_EQ(analyse(empty, Ordering::kNestedDissection, nullptr, 1, &s), kAnalysisOk);
  EXPECT_EQ(s.nsuper, 0);
  EXPECT_EQ(s.nnz_factor, 0);
}

TEST(Analyse, FillReducingOrderingsBeatNaturalOnGrid) {
  const int n = 100 * 100;
  const Graph g = graph_of(n, grid_edges(100, 100, 1));
  std::vector<int> natural(n);
  std::iota(natural.begin(), natural.end(), 0);
  Symbolic nat, nd, md;
  ASSERT_EQ(analyse(g, Ordering::kUser, natural.data(), 1, &nat), kAnalysisOk);
  ASSERT_EQ(analyse(g, Ordering::kNestedDissection, nullptr, 1, &nd), kAnalysisOk);
  ASSERT_EQ(analyse(g, Ordering::kMinimumDegree, nullptr, 1, &md), kAnalysisOk);
  // The band: about n * 100 entries.
  EXPECT_GT(nat.nnz_factor, int64_t(n) * 100);
  EXPECT_LT(nd.nnz_factor, nat.nnz_factor / 2);
  EXPECT_LT(md.nnz_factor, nat.nnz_factor / 2);
  EXPECT_LT(nd.flops, nat.flops / 4);
}

}  // namespace
}  // namespace orb::sparse
