// The caller's matrix on its way into the factorization: the input check,
// the preprocessing (weighted matching and scaling), the ordering, and the
// maps that place each stored value into the pivot-ordered matrix that the
// factorization reads; and on its way back, the products with the caller's
// matrix that the refinement needs.
#pragma once

#include <string>
#include <vector>

#include "sparse_direct/tessera.h"

namespace orb::sparse {

// Checks the caller's compressed rows (indices from `base`). The checks that
// keep the solver safe (row starts that do not decrease, columns in range)
// always run; `full` adds the strict ones: columns increasing within a row,
// no repeats, and for the symmetric types every diagonal entry stored. On a
// failure returns false with the report in *message.
bool check_matrix(int n, const int *ia, const int *ja, int base, bool symmetric, bool full,
                  std::string *message);

// The factorization kind of a type.
FactorKind kind_of(int mtype);

// Builds the analysis of the caller's matrix: preprocessing chosen by
// iparam(11) and iparam(13), the ordering by iparam(2) and iparam(5) (the
// caller's `perm` read for 1, the computed one returned for 2), the
// symbolic factor and the value maps. Returns 0, or the error code of the
// call (-1 a bad caller's permutation, -2 no storage, -3 an analysis failure,
// -6 a rejected preprocessing, -8 overflow); *status gets the analysis's own
// status and *storage_bytes the size that could not be had.
int build_analysis(const Call &call, int base, Analysis *an, int *status,
                   std::int64_t *storage_bytes);

// The pivot-ordered matrix of values `a` (the caller's, of the analysed
// pattern) into `val` (the factorization's compressed columns), with the
// preprocessing's scaling. Returns the largest magnitude.
template <class T>
double assemble(const Analysis &an, const T *a, std::vector<T> *val);

// y := op(A) x for the caller's matrix (the analysed pattern and the values
// `a`), op by iparam(12): 0 A, 1 A^H, 2 A^T. Only the upper triangle of the
// symmetric types is read.
template <class T>
void multiply(const Analysis &an, const T *a, int op, const T *x, T *y);

// Solves op(A) X = B for nrhs columns through the factor (the
// preprocessing undone around the factor's solve); `steps` selects the
// substitution's parts (numeric.h): without kForward, B is taken in pivot
// order as the forward part left it; without kBackward, X is left in pivot
// order for the backward part. B and X may be the same.
template <class T>
void direct_solve(const Analysis &an, const NumericFactor<T> &f, int op, int steps, int nrhs,
                  const T *b, T *x, int threads);

}  // namespace orb::sparse
