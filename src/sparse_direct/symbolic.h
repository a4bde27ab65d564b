// The analysis of the sparse direct solver: fill-reducing ordering,
// elimination tree, postorder, column counts, supernodes with relaxed
// amalgamation and the symbolic factor.
//
// Everything here works on the pattern of a symmetric matrix (the pattern of
// B + B^T for the unsymmetric types), 0-based. Indices called "new" are
// positions in the pivot order; "old" ones are the caller's equations.
#pragma once

#include <cstdint>
#include <vector>

namespace orb::sparse {

// The adjacency of a symmetric pattern: for each vertex its neighbours, both
// triangles, increasing, without the vertex itself and without repeats.
struct Graph {
  int n = 0;
  std::vector<int> ptr;  // n + 1
  std::vector<int> adj;  // ptr[n]
};

// The symmetric adjacency of the pattern of B + B^T from compressed rows
// (0-based, any order, repeats allowed, diagonal entries ignored). Returns
// false when its storage cannot be had.
bool symmetric_graph(int n, const int *row_ptr, const int *col, Graph *g);

enum class Ordering {
  kMinimumDegree,     // approximate minimum degree
  kNestedDissection,  // the graph partitioner's node nested dissection
  kUser,              // the caller's permutation, taken as it is
};

// The symbolic factor. Supernodes are numbered in a postorder of the
// assembly tree (children before parents) and their columns are contiguous in
// the pivot order. Supernode s owns the columns first[s] .. first[s+1]-1 and
// the rows rows[row_ptr[s]] .. rows[row_ptr[s+1]-1]: its own columns first,
// in order, then the rows below them, increasing (all in new numbering). Its
// values form one dense column-major block of nrows(s) x ncols(s) (leading
// dimension nrows(s)) at offset value_ptr[s] of the factor's value array; the
// strictly upper part of the block's top square is not referenced.
struct Symbolic {
  int n = 0;
  std::vector<int> perm;   // perm[new] = old
  std::vector<int> iperm;  // iperm[old] = new
  int nsuper = 0;
  std::vector<int> first;          // nsuper + 1
  std::vector<int> parent;         // nsuper: parent supernode, -1 for a root
  std::vector<int> super_of;       // n: the supernode that owns new column j
  std::vector<int64_t> row_ptr;    // nsuper + 1
  std::vector<int> rows;           // row_ptr[nsuper]
  std::vector<int64_t> value_ptr;  // nsuper + 1: value_ptr[nsuper] is the factor's size
  int64_t nnz_factor = 0;  // entries of L, diagonal included, explicit zeros of amalgamation too
  double flops = 0;        // multiply-adds plus divisions of a real Cholesky factorization

  int ncols(int s) const { return first[s + 1] - first[s]; }
  int nrows(int s) const { return int(row_ptr[s + 1] - row_ptr[s]); }
};

// Status of the analysis.
enum AnalysisStatus : int {
  kAnalysisOk = 0,
  kAnalysisNoMemory = 1,     // storage could not be had
  kAnalysisOrderFailed = 2,  // the ordering library reported an error
  kAnalysisBadPerm = 3,      // the caller's permutation is not a permutation
  kAnalysisOverflow = 4,     // the factor's size does not fit the 32-bit indices it needs
};

// The whole analysis of the pattern `g`: the ordering (`user_perm`, old
// numbers 0-based with perm[new] = old, is read for Ordering::kUser only),
// its composition with a postorder of the elimination tree, the column
// counts, fundamental supernodes merged by relaxed amalgamation, and the
// row structure of every supernode. `threads` bounds the threads it may use.
int analyse(const Graph &g, Ordering ordering, const int *user_perm, int threads, Symbolic *out);

}  // namespace orb::sparse
