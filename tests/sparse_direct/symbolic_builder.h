// A small symbolic analysis for the numerical factorization's tests: sparse
// matrices in compressed columns, their symmetric permutation, and a symbolic
// factor from a given ordering composed with a postorder of the elimination
// tree, with fundamental, single-column or amalgamated supernodes.
#pragma once

#include <algorithm>
#include <complex>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "sparse_direct/symbolic.h"

namespace orb::sparse::testing {

// A square matrix in compressed columns, 0-based, rows increasing.
template <class T>
struct Sparse {
  int n = 0;
  std::vector<int> ptr, row;
  std::vector<T> val;
};

// Entries (i, j) -> value, summed.
template <class T>
using Entries = std::map<std::pair<int, int>, T>;

template <class T>
Sparse<T> compress(int n, const Entries<T> &e) {
  Sparse<T> a;
  a.n = n;
  a.ptr.assign(n + 1, 0);
  for (const auto &kv : e) ++a.ptr[kv.first.second + 1];
  for (int j = 0; j < n; ++j) a.ptr[j + 1] += a.ptr[j];
  a.row.resize(e.size());
  a.val.resize(e.size());
  std::vector<int> next(a.ptr.begin(), a.ptr.end() - 1);
  // The map is ordered by (row, column): rows come out increasing.
  for (const auto &kv : e) {
    const int p = next[kv.first.second]++;
    a.row[p] = kv.first.first;
    a.val[p] = kv.second;
  }
  return a;
}

// B(i, j) = A(perm[i], perm[j]); with `lower` only i >= j kept.
template <class T>
Sparse<T> permute(const Sparse<T> &a, const std::vector<int> &perm, bool lower = false) {
  std::vector<int> inv(a.n);
  for (int i = 0; i < a.n; ++i) inv[perm[i]] = i;
  Entries<T> e;
  for (int j = 0; j < a.n; ++j)
    for (int p = a.ptr[j]; p < a.ptr[j + 1]; ++p) {
      const int i = inv[a.row[p]], jj = inv[j];
      if (!lower || i >= jj) e[{i, jj}] += a.val[p];
    }
  return compress(a.n, e);
}

enum class Supernodes { kFundamental, kSingle, kAmalgamated };

// The symbolic factor of the pattern of A + A^T under `order` (new -> old),
// composed with a postorder of the elimination tree. kAmalgamated merges a
// supernode into its parent when it directly precedes it and the two have at
// most `cap` columns together, which leaves explicit zeros in the blocks.
template <class T>
Symbolic build_symbolic(const Sparse<T> &a, std::vector<int> order, Supernodes kind, int cap = 16) {
  const int n = a.n;
  auto lower_adjacency = [&](const std::vector<int> &perm) {
    std::vector<int> inv(n);
    for (int i = 0; i < n; ++i) inv[perm[i]] = i;
    std::vector<std::vector<int>> adj(n);
    for (int j = 0; j < n; ++j)
      for (int p = a.ptr[j]; p < a.ptr[j + 1]; ++p) {
        const int r = inv[a.row[p]], c = inv[j];
        if (r != c) adj[std::min(r, c)].push_back(std::max(r, c));
      }
    for (auto &v : adj) {
      std::sort(v.begin(), v.end());
      v.erase(std::unique(v.begin(), v.end()), v.end());
    }
    return adj;
  };
  auto etree = [&](const std::vector<std::vector<int>> &adj) {
    // Column k's upper entries are the columns i < k that list k below.
    std::vector<std::vector<int>> up(n);
    for (int i = 0; i < n; ++i)
      for (int r : adj[i]) up[r].push_back(i);
    std::vector<int> parent(n, -1), anc(n, -1);
    for (int k = 0; k < n; ++k)
      for (int i : up[k]) {
        while (anc[i] != -1 && anc[i] != k) {
          const int next = anc[i];
          anc[i] = k;
          i = next;
        }
        if (anc[i] == -1) {
          anc[i] = k;
          parent[i] = k;
        }
      }
    return parent;
  };
  std::vector<std::vector<int>> adj = lower_adjacency(order);
  std::vector<int> parent = etree(adj);
  {
    // Postorder by a depth-first walk, children in increasing order.
    std::vector<std::vector<int>> kids(n);
    std::vector<int> roots;
    for (int j = 0; j < n; ++j) (parent[j] < 0 ? roots : kids[parent[j]]).push_back(j);
    std::vector<int> post;
    std::vector<std::pair<int, size_t>> stack;
    for (int r : roots) {
      stack.push_back({r, 0});
      while (!stack.empty()) {
        auto &top = stack.back();
        if (top.second < kids[top.first].size()) {
          const int c = kids[top.first][top.second++];
          stack.push_back({c, 0});
        } else {
          post.push_back(top.first);
          stack.pop_back();
        }
      }
    }
    std::vector<int> composed(n);
    for (int i = 0; i < n; ++i) composed[i] = order[post[i]];
    order = composed;
  }
  adj = lower_adjacency(order);
  parent = etree(adj);

  // Column structures by symbolic elimination; supernodes on the fly.
  std::vector<int> nchild(n, 0);
  for (int j = 0; j < n; ++j)
    if (parent[j] >= 0) ++nchild[parent[j]];
  std::vector<std::vector<int>> below(n);
  std::vector<int> mark(n, -1);
  struct Node {
    int first, last;
    std::vector<int> rows;  // all rows, own columns first
  };
  std::vector<Node> nodes;
  std::vector<int> cnt(n);
  std::vector<std::vector<int>> kids(n);
  for (int j = 0; j < n; ++j)
    if (parent[j] >= 0) kids[parent[j]].push_back(j);
  for (int j = 0; j < n; ++j) {
    std::vector<int> s;
    mark[j] = j;
    for (int r : adj[j])
      if (mark[r] != j) mark[r] = j, s.push_back(r);
    for (int c : kids[j]) {
      for (int r : below[c])
        if (r != j && mark[r] != j) mark[r] = j, s.push_back(r);
      std::vector<int>().swap(below[c]);
    }
    std::sort(s.begin(), s.end());
    cnt[j] = int(s.size());
    const bool joins = kind != Supernodes::kSingle && j > 0 && parent[j - 1] == j &&
                       nchild[j] == 1 && cnt[j - 1] == cnt[j] + 1;
    if (joins) {
      nodes.back().last = j;
    } else {
      Node nd{j, j, {j}};
      nd.rows.insert(nd.rows.end(), s.begin(), s.end());
      nodes.push_back(std::move(nd));
    }
    below[j] = std::move(s);
  }
  auto node_parent = [&](const Node &nd) { return parent[nd.last]; };  // a column or -1
  if (kind == Supernodes::kAmalgamated) {
    std::vector<Node> merged;
    for (Node &nd : nodes) {
      if (!merged.empty()) {
        Node &prev = merged.back();
        if (node_parent(prev) == nd.first && (nd.last - prev.first + 1) <= cap) {
          std::vector<int> rows;
          for (int c = prev.first; c <= nd.last; ++c) rows.push_back(c);
          for (const auto *src : {&prev.rows, &nd.rows})
            for (int r : *src)
              if (r > nd.last) rows.push_back(r);
          std::sort(rows.begin() + (nd.last - prev.first + 1), rows.end());
          rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
          prev.last = nd.last;
          prev.rows = std::move(rows);
          continue;
        }
      }
      merged.push_back(std::move(nd));
    }
    nodes = std::move(merged);
  }

  Symbolic s;
  s.n = n;
  s.perm = order;
  s.iperm.resize(n);
  for (int i = 0; i < n; ++i) s.iperm[order[i]] = i;
  s.nsuper = int(nodes.size());
  s.first.resize(s.nsuper + 1);
  s.super_of.resize(n);
  s.row_ptr.assign(1, 0);
  s.value_ptr.assign(1, 0);
  for (int k = 0; k < s.nsuper; ++k) {
    const Node &nd = nodes[k];
    s.first[k] = nd.first;
    for (int c = nd.first; c <= nd.last; ++c) s.super_of[c] = k;
    s.rows.insert(s.rows.end(), nd.rows.begin(), nd.rows.end());
    s.row_ptr.push_back(s.rows.size());
    const int64_t nr = int64_t(nd.rows.size()), nc = nd.last - nd.first + 1;
    s.value_ptr.push_back(s.value_ptr.back() + nr * nc);
    for (int64_t c = 0; c < nc; ++c) {
      const double b = double(nr - c - 1);
      s.flops += b + b * (b + 1) / 2;
      s.nnz_factor += nr - c;
    }
  }
  s.first[s.nsuper] = n;
  s.parent.resize(s.nsuper);
  for (int k = 0; k < s.nsuper; ++k) {
    const int p = node_parent(nodes[k]);
    s.parent[k] = p < 0 ? -1 : s.super_of[p];
  }
  return s;
}

}  // namespace orb::sparse::testing
