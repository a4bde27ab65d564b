// The solve stage's improvement of a solution: iterative refinement with its
// stopping rules and printed records, and the preconditioned conjugate
// gradient (SPD types) or conjugate gradient squared (the others) that runs
// on an earlier factor instead of a new factorization.
#pragma once

#include "sparse_direct/tessera.h"

namespace orb::sparse {

struct RefineOutcome {
  int steps = 0;                    // the step reached
  int status = 0;                   // -112 when a stalled refinement left a large relative error
  bool stopped_early = false;       // iparam(8) = 0 ended it at step 2 (iparam(20) := -34)
  double rel_res = 0, rel_err = 0;  // the last step's figures for the report
};

// Refines the solution X of op(A) X = B (op by iparam(12)) in place. `limit`
// is iparam(8); `print` writes the step records.
template <class T>
RefineOutcome refine(const Analysis &an, const NumericFactor<T> &f, const T *a, int op, int nrhs,
                     const T *b, T *x, int limit, bool print, int threads);

struct IterativeOutcome {
  int iterations = 0;
  // iparam(20): the iterations when every right-hand side converged, else
  // -(10 iterations + reason): 1 the residual grew, 2 it stalled, 3 the
  // iteration limit was reached.
  int report = 0;
};

// Solves op(A) X = B by CG (`cg`, Hermitian positive definite types) or CGS
// preconditioned by the factor, to the relative residual 10^-digits, from
// the start X = 0.
template <class T>
IterativeOutcome iterate(const Analysis &an, const NumericFactor<T> &f, const T *a, int op,
                         int nrhs, const T *b, T *x, bool cg, int digits, bool print, int threads);

}  // namespace orb::sparse
