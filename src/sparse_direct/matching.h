// Maximum weighted matching of the sparse direct solver's preprocessing:
// a permutation that puts large entries on the diagonal of an unsymmetric
// matrix, with the row and column scaling that its dual variables give.
#pragma once

#include <vector>

namespace orb::sparse {

struct Matching {
  // row_of_col[j]: the row matched to column j (0-based). A@(row_of_col[j], j)
  // then lies on the diagonal of the row-permuted matrix.
  std::vector<int> row_of_col;
  // Scaling: with Dr = diag(row_scale), Dc = diag(col_scale), every matched
  // entry of Dr |A| Dc is 1 and no entry exceeds 1 in magnitude.
  std::vector<double> row_scale;
  std::vector<double> col_scale;
  int matched = 0;  // size of the matching; n when A is structurally nonsingular
};

// The matching that maximises the product of the magnitudes of the matched
// entries (a maximum weighted bipartite matching on -log|a_ij|, by shortest
// augmenting paths with dual variables), for the n-by-n matrix in compressed
// columns (0-based, no repeats) with the magnitudes `absval`. Returns 0, 1
// when storage cannot be had, 2 when the matrix is structurally singular
// (then the matching is maximal in size, unmatched columns get unmatched rows
// so that row_of_col is a permutation, and the scaling of those is 1).
int weighted_matching(int n, const int *col_ptr, const int *row, const double *absval,
                      Matching *out);

// The symmetric scaling of a symmetric matrix given with its full pattern (both
// triangles): scale_i = sqrt(row_scale_i * col_scale_i) of the matching above,
// so that no entry of D |A| D, D = diag(scale), exceeds 1 and the matched ones
// are 1. Returns the status codes of weighted_matching; `scale` gets n values.
int symmetric_scaling(int n, const int *col_ptr, const int *row, const double *absval,
                      std::vector<double> *scale);

}  // namespace orb::sparse
