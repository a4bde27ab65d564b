// The analysis of the sparse direct solver: symmetric adjacency, fill-reducing
// orderings (METIS's node nested dissection, AMD, the caller's), elimination
// tree, postorder, column counts, fundamental supernodes, relaxed
// amalgamation and the row structure of every supernode.
//
// Numberings, in the order they appear:
//  - old: the caller's equations;
//  - the ordering's: perm0[k] = old;
//  - post: perm0 composed with a postorder of the elimination tree, the
//    numbering in which the column counts and fundamental supernodes are
//    found;
//  - new: the final pivot order, in which the supernodes after amalgamation
//    are postordered and own contiguous columns.
#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "sparse_direct/symbolic.h"

#include <amd.h>
#include <metis.h>

namespace orb::sparse {
namespace {

static_assert(std::is_same<idx_t, int>::value,
              "the graph is handed to METIS as it is: idx_t must be a 32-bit int");

// ---------------------------------------------------------------------------
// Relaxed amalgamation. A child supernode is merged into its parent when the
// merged supernode is narrow, or when the explicit zeros it would hold stay a
// small fraction of its entries; never beyond kMaxWidth columns.
// ---------------------------------------------------------------------------
constexpr int kMaxWidth = 256;
struct RelaxRule {
  int width;             // merged supernodes up to this many columns ...
  double zero_fraction;  // ... may hold up to this fraction of explicit zeros
};
constexpr RelaxRule kRelaxRules[] = {{8, 1.0}, {16, 0.1}, {48, 0.05}, {kMaxWidth, 0.03}};

// Entries of a supernode's lower trapezoid: k columns over k + below rows.
inline int64_t trapezoid(int64_t k, int64_t below) {
  return k * (k + 1) / 2 + k * below;
}

bool relaxed_merge_ok(int64_t width, int64_t zeros, int64_t entries) {
  for (const RelaxRule &r : kRelaxRules)
    if (width <= r.width) return double(zeros) <= r.zero_fraction * double(entries);
  return false;
}

// ---------------------------------------------------------------------------
// Orderings: perm[k] = old.
// ---------------------------------------------------------------------------
int order_nested_dissection(const Graph &g, std::vector<int> &perm) {
  const int n = g.n;
  if (n <= 2) {
    for (int k = 0; k < n; ++k) perm[k] = k;
    return kAnalysisOk;
  }
  // METIS takes non-const arrays; it is given copies rather than the caller's.
  std::vector<idx_t> xadj(g.ptr.begin(), g.ptr.begin() + n + 1);
  std::vector<idx_t> adjncy(g.adj.begin(), g.adj.begin() + g.ptr[n]);
  std::vector<idx_t> iperm(n);
  idx_t options[METIS_NOPTIONS];
  METIS_SetDefaultOptions(options);
  options[METIS_OPTION_NUMBERING] = 0;
  idx_t nv = n;
  const int rc =
      METIS_NodeND(&nv, xadj.data(), adjncy.data(), nullptr, options, perm.data(), iperm.data());
  if (rc == METIS_OK) return kAnalysisOk;
  return rc == METIS_ERROR_MEMORY ? kAnalysisNoMemory : kAnalysisOrderFailed;
}

int order_minimum_degree(const Graph &g, std::vector<int> &perm) {
  double control[AMD_CONTROL], info[AMD_INFO];
  amd_defaults(control);
  const int rc = amd_order(g.n, g.ptr.data(), g.adj.data(), perm.data(), control, info);
  if (rc == AMD_OK || rc == AMD_OK_BUT_JUMBLED) return kAnalysisOk;
  return rc == AMD_OUT_OF_MEMORY ? kAnalysisNoMemory : kAnalysisOrderFailed;
}

int order_user(int n, const int *user, std::vector<int> &perm) {
  if (n > 0 && user == nullptr) return kAnalysisBadPerm;
  std::vector<char> seen(n, 0);
  for (int k = 0; k < n; ++k) {
    const int v = user[k];
    if (v < 0 || v >= n || seen[v]) return kAnalysisBadPerm;
    seen[v] = 1;
    perm[k] = v;
  }
  return kAnalysisOk;
}

// ---------------------------------------------------------------------------
// Elimination tree and postorder.
// ---------------------------------------------------------------------------

// The elimination tree of P A P^T (perm[k] = old, iperm its inverse), by
// Liu's algorithm: for every entry (k, i), i < k, climb from i to the root of
// its current subtree, which becomes a child of k; the climbed path is
// short-cut to k.
void elimination_tree(const Graph &g, const std::vector<int> &perm, const std::vector<int> &iperm,
                      std::vector<int> &parent) {
  const int n = g.n;
  std::vector<int> ancestor(n, -1);
  for (int k = 0; k < n; ++k) {
    parent[k] = -1;
    const int v = perm[k];
    for (int p = g.ptr[v]; p < g.ptr[v + 1]; ++p) {
      int i = iperm[g.adj[p]];
      while (i < k && i != -1) {
        const int next = ancestor[i];
        ancestor[i] = k;
        if (next == -1) parent[i] = k;
        i = next;
      }
    }
  }
}

// A postorder of the forest `parent` (n nodes, -1 for roots): post[t] is the
// t-th node visited, children in increasing order, each subtree contiguous.
void postorder(int n, const std::vector<int> &parent, std::vector<int> &post) {
  std::vector<int> head(n, -1), next(n, -1), stack;
  stack.reserve(64);
  for (int j = n - 1; j >= 0; --j) {
    const int p = parent[j];
    if (p != -1) {
      next[j] = head[p];
      head[p] = j;
    }
  }
  int t = 0;
  for (int r = 0; r < n; ++r) {
    if (parent[r] != -1) continue;
    stack.push_back(r);
    while (!stack.empty()) {
      const int j = stack.back();
      const int c = head[j];
      if (c == -1) {
        stack.pop_back();
        post[t++] = j;
      } else {
        head[j] = next[c];  // the children are consumed as they are visited
        stack.push_back(c);
      }
    }
  }
}

// ---------------------------------------------------------------------------
// Column counts of L (diagonal included) for a postordered elimination tree,
// by the row-subtree method of Gilbert, Ng and Peyton: the count of column j
// is the number of row subtrees that hold j. Each row subtree T_i adds one at
// each of its leaves and takes one away at the least common ancestor of
// consecutive leaves; every node takes one away at its parent for the
// subtree's own count, which the sum over children brings back. Leaves of T_i
// are the columns j < i with a_ij != 0 that have no earlier such column among
// their descendants, and least common ancestors come from a disjoint-set
// forest of the nodes visited so far.
// ---------------------------------------------------------------------------
void column_counts(const Graph &g, const std::vector<int> &perm, const std::vector<int> &iperm,
                   const std::vector<int> &parent, std::vector<int> &count) {
  const int n = g.n;
  std::vector<int> first(n), max_first(n, -1), prev_leaf(n, -1), ancestor(n);
  for (int j = 0; j < n; ++j) first[j] = j;
  for (int j = 0; j < n; ++j) {
    const int p = parent[j];
    if (p != -1 && first[j] < first[p]) first[p] = first[j];
  }
  for (int j = 0; j < n; ++j) {
    ancestor[j] = j;
    count[j] = first[j] == j ? 1 : 0;  // a leaf of the tree
  }
  for (int j = 0; j < n; ++j) {
    if (parent[j] != -1) --count[parent[j]];
    const int v = perm[j];
    for (int p = g.ptr[v]; p < g.ptr[v + 1]; ++p) {
      const int i = iperm[g.adj[p]];
      // j is a leaf of T_i when no column seen for i lies in j's subtree.
      if (i <= j || first[j] <= max_first[i]) continue;
      max_first[i] = first[j];
      const int last = prev_leaf[i];
      prev_leaf[i] = j;
      ++count[j];
      if (last == -1) continue;
      int q = last;  // least common ancestor of last and j
      while (ancestor[q] != q) q = ancestor[q];
      for (int s = last; s != q;) {
        const int up = ancestor[s];
        ancestor[s] = q;
        s = up;
      }
      --count[q];
    }
    if (parent[j] != -1) ancestor[j] = parent[j];
  }
  for (int j = 0; j < n; ++j)
    if (parent[j] != -1) count[parent[j]] += count[j];
}

// Sizes the factor may reach: its row indices and its values (at least four
// bytes each) must be addressable as arrays in this process, so that offsets
// in row_ptr and value_ptr index them without overflowing; beyond that the
// analysis reports kAnalysisOverflow. (On a 32-bit process, 2^29 entries;
// whether the values of a given type fit in memory is the numerical
// factorization's question.)
constexpr int64_t kMaxValues = std::numeric_limits<std::ptrdiff_t>::max() / int64_t(sizeof(float));
constexpr int64_t kMaxRows = std::numeric_limits<std::ptrdiff_t>::max() / int64_t(sizeof(int));

int analyse_pattern(const Graph &g, Ordering ordering, const int *user_perm, Symbolic &out) {
  const int n = g.n;
  out.n = n;
  if (n == 0) {
    out.first.assign(1, 0);
    out.row_ptr.assign(1, 0);
    out.value_ptr.assign(1, 0);
    return kAnalysisOk;
  }

  // 1. The fill-reducing ordering; without edges, any order is as good.
  std::vector<int> perm(n), iperm(n);
  int rc = kAnalysisOk;
  if (ordering == Ordering::kUser) {
    rc = order_user(n, user_perm, perm);
  } else if (g.ptr[n] == 0) {
    for (int k = 0; k < n; ++k) perm[k] = k;
  } else if (ordering == Ordering::kNestedDissection) {
    rc = order_nested_dissection(g, perm);
  } else if (ordering == Ordering::kMinimumDegree) {
    rc = order_minimum_degree(g, perm);
  } else {
    rc = kAnalysisOrderFailed;
  }
  if (rc != kAnalysisOk) return rc;
  for (int k = 0; k < n; ++k) iperm[perm[k]] = k;

  // 2. Elimination tree, postordered: perm becomes perm0 o post.
  std::vector<int> parent(n), post(n), tmp(n);
  elimination_tree(g, perm, iperm, parent);
  postorder(n, parent, post);
  for (int t = 0; t < n; ++t) tmp[post[t]] = t;  // tmp: inverse of post
  {
    std::vector<int> parent_post(n);
    for (int t = 0; t < n; ++t) {
      const int p = parent[post[t]];
      parent_post[t] = p == -1 ? -1 : tmp[p];
    }
    parent.swap(parent_post);
  }
  for (int t = 0; t < n; ++t) tmp[t] = perm[post[t]];
  perm.swap(tmp);
  for (int k = 0; k < n; ++k) iperm[perm[k]] = k;

  // 3. Column counts.
  std::vector<int> &count = post;  // post is no longer needed
  column_counts(g, perm, iperm, parent, count);

  // 4. Fundamental supernodes: j joins j - 1's supernode when it is j - 1's
  //    parent, its only child, and its column is j - 1's minus the diagonal.
  std::vector<int> nchild(n, 0);
  for (int j = 0; j < n; ++j)
    if (parent[j] != -1) ++nchild[parent[j]];
  std::vector<int> fsuper(n);  // the fundamental supernode of column j
  std::vector<int> ffirst;
  ffirst.reserve(n / 4 + 2);
  for (int j = 0; j < n; ++j) {
    const bool joins =
        j > 0 && parent[j - 1] == j && nchild[j] == 1 && count[j - 1] == count[j] + 1;
    if (!joins) ffirst.push_back(j);
    fsuper[j] = int(ffirst.size()) - 1;
  }
  const int nf = int(ffirst.size());
  ffirst.push_back(n);
  std::vector<int>().swap(nchild);

  // Per supernode, kept at the representative of a merged group (the topmost
  // supernode): columns, rows below its last column, explicit zeros.
  std::vector<int> fparent(nf), width(nf), below(nf);
  std::vector<int64_t> zeros(nf, 0);
  for (int s = 0; s < nf; ++s) {
    const int last = ffirst[s + 1] - 1;
    fparent[s] = parent[last] == -1 ? -1 : fsuper[parent[last]];
    width[s] = ffirst[s + 1] - ffirst[s];
    below[s] = count[last] - 1;
  }

  // 5. Relaxed amalgamation, bottom-up: once all of p's children are final,
  //    each child c (still its own group) is tried for merging into p's
  //    group. A child's rows below it lie among its parent's columns and
  //    rows, so the merged group spans the columns of both over the rows of
  //    p: a trapezoid of width(c) + width(p) columns and below(p) further rows.
  std::vector<int> merged_into(nf, -1);
  {
    std::vector<int> head(nf, -1), next(nf, -1);
    for (int s = nf - 1; s >= 0; --s) {
      const int p = fparent[s];
      if (p != -1) {
        next[s] = head[p];
        head[p] = s;
      }
    }
    for (int p = 0; p < nf; ++p) {
      for (int c = head[p]; c != -1; c = next[c]) {
        const int64_t w = int64_t(width[c]) + width[p];
        if (w > kMaxWidth) continue;
        const int64_t entries = trapezoid(w, below[p]);
        const int64_t z = zeros[c] + zeros[p] + entries - trapezoid(width[c], below[c]) -
                          trapezoid(width[p], below[p]);
        if (!relaxed_merge_ok(w, z, entries)) continue;
        merged_into[c] = p;
        width[p] = int(w);
        zeros[p] = z;
      }
    }
  }

  // 6. The groups are the final supernodes. group[s]: the representative of
  //    s's group (merged_into points upwards, so top-down settles it).
  std::vector<int>().swap(fsuper);
  std::vector<int> group(nf);
  for (int s = nf - 1; s >= 0; --s) group[s] = merged_into[s] == -1 ? s : group[merged_into[s]];
  std::vector<int>().swap(merged_into);

  // The group tree over representatives, postordered: order[t] is the
  // representative of final supernode t.
  std::vector<int> gparent(nf, -1), order(nf);
  for (int s = 0; s < nf; ++s)
    if (group[s] == s) gparent[s] = fparent[s] == -1 ? -1 : group[fparent[s]];
  {
    // Postorder the representatives only: members of a merged group are
    // given a parent of their own that keeps them out of the roots.
    std::vector<int> tree(nf);
    for (int s = 0; s < nf; ++s) tree[s] = group[s] == s ? gparent[s] : -2;
    std::vector<int> head(nf, -1), next(nf, -1), stack;
    for (int s = nf - 1; s >= 0; --s) {
      if (tree[s] >= 0) {
        next[s] = head[tree[s]];
        head[tree[s]] = s;
      }
    }
    int t = 0;
    for (int r = 0; r < nf; ++r) {
      if (tree[r] != -1) continue;
      stack.push_back(r);
      while (!stack.empty()) {
        const int j = stack.back();
        const int c = head[j];
        if (c == -1) {
          stack.pop_back();
          order[t++] = j;
        } else {
          head[j] = next[c];
          stack.push_back(c);
        }
      }
    }
    order.resize(t);
  }
  const int ns = int(order.size());
  std::vector<int> index_of(nf, -1);  // representative -> final supernode
  for (int t = 0; t < ns; ++t) index_of[order[t]] = t;

  // 7. The final pivot order: supernode after supernode, the members of a
  //    group in increasing order (a postorder of the group's subtree), the
  //    columns of each member in order.
  out.nsuper = ns;
  out.first.assign(ns + 1, 0);
  for (int s = 0; s < nf; ++s) out.first[index_of[group[s]] + 1] += ffirst[s + 1] - ffirst[s];
  for (int t = 0; t < ns; ++t) out.first[t + 1] += out.first[t];
  {
    std::vector<int> fill(out.first.begin(), out.first.end() - 1);
    out.perm.resize(n);
    for (int s = 0; s < nf; ++s) {
      int &at = fill[index_of[group[s]]];
      for (int j = ffirst[s]; j < ffirst[s + 1]; ++j) out.perm[at++] = perm[j];
    }
  }
  out.iperm.resize(n);
  for (int k = 0; k < n; ++k) out.iperm[out.perm[k]] = k;
  out.parent.resize(ns);
  out.super_of.resize(n);
  for (int t = 0; t < ns; ++t) {
    const int p = gparent[order[t]];
    out.parent[t] = p == -1 ? -1 : index_of[p];
    for (int j = out.first[t]; j < out.first[t + 1]; ++j) out.super_of[j] = t;
  }

  // 8. Sizes: row_ptr, value_ptr, nnz_factor, flops. Column i of a supernode
  //    of m rows holds m - i entries; its elimination costs one square root,
  //    m - i - 1 divisions and (m - i)(m - i - 1)/2 multiply-adds, counted
  //    together as (m - i)(m - i + 1)/2.
  out.row_ptr.assign(ns + 1, 0);
  out.value_ptr.assign(ns + 1, 0);
  out.nnz_factor = 0;
  out.flops = 0;
  for (int t = 0; t < ns; ++t) {
    const int r = order[t];
    const int64_t k = out.first[t + 1] - out.first[t];
    const int64_t m = k + below[r];
    out.row_ptr[t + 1] = out.row_ptr[t] + m;
    out.value_ptr[t + 1] = out.value_ptr[t] + m * k;
    out.nnz_factor += trapezoid(k, below[r]);
    if (out.value_ptr[t + 1] > kMaxValues || out.row_ptr[t + 1] > kMaxRows)
      return kAnalysisOverflow;
    // sum over c = m - k + 1 .. m of c (c + 1) / 2
    const auto tri = [](double c) { return c * (c + 1) * (c + 2) / 6; };
    out.flops += tri(double(m)) - tri(double(m - k));
  }

  // 9. Row structures, in the final numbering, supernodes in postorder: the
  //    rows below supernode t are those of A in its columns and those below
  //    its children, past its last column.
  out.rows.resize(size_t(out.row_ptr[ns]));
  {
    std::vector<int> mark(n, -1), head(ns, -1), next(ns, -1);
    for (int t = ns - 1; t >= 0; --t) {
      const int p = out.parent[t];
      if (p != -1) {
        next[t] = head[p];
        head[p] = t;
      }
    }
    for (int t = 0; t < ns; ++t) {
      const int f = out.first[t], l = out.first[t + 1];
      int *r = out.rows.data() + out.row_ptr[t];
      int *const end = out.rows.data() + out.row_ptr[t + 1];
      for (int j = f; j < l; ++j) *r++ = j;
      int *const low = r;
      for (int j = f; j < l; ++j) {
        const int v = out.perm[j];
        for (int p = g.ptr[v]; p < g.ptr[v + 1]; ++p) {
          const int i = out.iperm[g.adj[p]];
          if (i >= l && mark[i] != t) {
            if (r == end) return kAnalysisOrderFailed;  // cannot happen
            mark[i] = t;
            *r++ = i;
          }
        }
      }
      for (int c = head[t]; c != -1; c = next[c]) {
        const int *cr = out.rows.data() + out.row_ptr[c] + out.ncols(c);
        const int *ce = out.rows.data() + out.row_ptr[c + 1];
        for (; cr != ce; ++cr) {
          const int i = *cr;
          if (i >= l && mark[i] != t) {
            if (r == end) return kAnalysisOrderFailed;  // cannot happen
            mark[i] = t;
            *r++ = i;
          }
        }
      }
      // The union reproduces the representative's column count exactly.
      if (r != end) return kAnalysisOrderFailed;  // cannot happen
      std::sort(low, r);
    }
  }
  return kAnalysisOk;
}

}  // namespace

bool symmetric_graph(int n, const int *row_ptr, const int *col, Graph *g) {
  try {
    // Both directions of every off-diagonal entry, with repeats, bucketed by
    // their first vertex in any order ...
    std::vector<int64_t> cptr(size_t(n) + 1, 0);
    for (int i = 0; i < n; ++i) {
      for (int p = row_ptr[i]; p < row_ptr[i + 1]; ++p) {
        const int j = col[p];
        if (j == i || j < 0 || j >= n) continue;
        ++cptr[i + 1];
        ++cptr[j + 1];
      }
    }
    for (int i = 0; i < n; ++i) cptr[i + 1] += cptr[i];
    if (cptr[n] > std::numeric_limits<std::ptrdiff_t>::max() / int64_t(sizeof(int))) return false;
    std::vector<int> both(size_t(cptr[n]));
    {
      std::vector<int64_t> at(cptr.begin(), cptr.end() - 1);
      for (int i = 0; i < n; ++i) {
        for (int p = row_ptr[i]; p < row_ptr[i + 1]; ++p) {
          const int j = col[p];
          if (j == i || j < 0 || j >= n) continue;
          both[size_t(at[i]++)] = j;
          both[size_t(at[j]++)] = i;
        }
      }
    }
    // ... then transposed, which sorts every list (the pattern is
    // symmetric, so the transpose is the pattern itself) and brings repeats
    // together, where the last vertex placed in a list drops them.
    std::vector<int> last(n, -1), len(n, 0);
    for (int v = 0; v < n; ++v) {
      for (int64_t p = cptr[v]; p < cptr[v + 1]; ++p) {
        const int u = both[size_t(p)];
        if (last[u] != v) {
          last[u] = v;
          ++len[u];
        }
      }
    }
    int64_t total = 0;
    for (int v = 0; v < n; ++v) total += len[v];
    if (total > std::numeric_limits<int>::max()) return false;
    Graph h;
    h.n = n;
    h.ptr.resize(size_t(n) + 1);
    h.ptr[0] = 0;
    for (int v = 0; v < n; ++v) h.ptr[v + 1] = h.ptr[v] + len[v];
    h.adj.resize(size_t(total));
    std::fill(last.begin(), last.end(), -1);
    std::vector<int> &at = len;
    std::copy(h.ptr.begin(), h.ptr.end() - 1, at.begin());
    for (int v = 0; v < n; ++v) {
      for (int64_t p = cptr[v]; p < cptr[v + 1]; ++p) {
        const int u = both[size_t(p)];
        if (last[u] != v) {
          last[u] = v;
          h.adj[at[u]++] = v;
        }
      }
    }
    *g = std::move(h);
    return true;
  } catch (const std::bad_alloc &) {
    return false;
  } catch (const std::length_error &) {
    return false;
  }
}

int analyse(const Graph &g, Ordering ordering, const int *user_perm, int threads, Symbolic *out) {
  (void)threads;  // every step is serial
  try {
    Symbolic s;
    const int rc = analyse_pattern(g, ordering, user_perm, s);
    if (rc != kAnalysisOk) return rc;
    *out = std::move(s);
    return kAnalysisOk;
  } catch (const std::bad_alloc &) {
    return kAnalysisNoMemory;
  } catch (const std::length_error &) {
    return kAnalysisNoMemory;
  }
}

}  // namespace orb::sparse
