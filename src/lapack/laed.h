// The pieces of the tridiagonal divide and conquer shared by stedc.cpp,
// laed_merge.cpp, laed_secular.cpp and the threaded tree (xlaed0_omp.cpp,
// ylaed0_omp.cpp): the secular equation of a rank-one modification of a
// diagonal matrix, the merge of two solved halves, and the tree. Index arrays
// hold 1-based positions, as in the bidiagonal divide and conquer (lasd.h),
// whose small helpers these files share.
#pragma once

#include <cstdint>

#include "common/scalar.h"
#include "lapack/lasd.h"

namespace orb::lapack::dc {

// Root i (1-based) of the secular equation 1 + rho sum z_j^2 / (d_j - x) = 0
// for the increasing d and rho > 0 (xLAED4): the eigenvalue dlam of
// diag(d) + rho z z^T, with delta_j = d_j - dlam kept explicitly. Returns 0,
// or 1 when the iteration did not converge.
template <class R>
int laed4(int n, int i, const R *d, const R *z, R *delta, R rho, R &dlam);

// The same for n = 2 in closed form (xLAED5); delta receives the unit
// eigenvector instead.
template <class R>
void laed5(int i, const R d[2], const R z[2], R delta[2], R rho, R &dlam);

// One step of the 3-pole rational fit (xLAED6), in lasd_secular.cpp.
template <class R>
int laed6_step(int kniter, bool orgati, R rho, const R d[3], const R z[3], R finit, R &tau);

// The merge of two solved halves (xLAED1): on entry d(1..cutpnt) and
// d(cutpnt+1..n) are the halves' eigenvalues, each sorted by its part of
// indxq, Q holds their eigenvectors block-diagonally, and rho the coupling
// (the off-diagonal element torn out). On return d and Q hold the n-by-n
// problem's eigenvalues and vectors and indxq sorts d ascending. work:
// laed1_work(n) reals, iwork: 4n. The products run through the threaded
// level-3 BLAS when `threaded`, on the calling thread otherwise (the result
// is the same either way). Returns 0, or 1 when a root did not converge.
template <class R>
int laed1(int n, R *d, R *q, int ldq, int *indxq, R rho, int cutpnt, R *work, int *iwork,
          bool threaded);
inline std::int64_t laed1_work(int n) {
  return 4 * static_cast<std::int64_t>(n) + static_cast<std::int64_t>(n) * n;
}

// The eigen-decomposition of the unreduced symmetric tridiagonal (d, e) of
// order n by divide and conquer (xLAED0 with icompq 2): d receives the
// eigenvalues ascending, the n-by-n Q the eigenvectors. Subproblems of at
// most `leaf` rows are solved by steqr (1 or 2 rows in closed form). The
// leaves and the merges of each level are shared out over the library's
// team when n reaches the oracle's crossover. work: laed0_work(n) reals,
// iwork: laed0_iwork(n). Returns 0, or as the published routine a code
// naming the subproblem that failed.
template <class R>
int laed0(int n, R *d, R *e, R *q, int ldq, int leaf, R *work, int *iwork);
inline std::int64_t laed0_work(int n) {
  return 4 * static_cast<std::int64_t>(n) + static_cast<std::int64_t>(n) * n;
}
inline std::int64_t laed0_iwork(int n) {
  return 5 * static_cast<std::int64_t>(n);
}

// The complex form (xLAED0 of CSTEDC): Z (n rows, m columns) := Z times the
// eigenvectors of the unreduced (d, e) of order m, d their eigenvalues.
// work: n m complex; rwork: 2 m^2 + 4 m reals; iwork: 5 m. The real-times-
// complex product (xLACRM) is one real product over the interleaved parts.
template <class R>
int laed0_complex(int n, int m, R *d, R *e, std::complex<R> *z, int ldz, int leaf,
                  std::complex<R> *work, R *rwork, int *iwork);

// The leaf size stedc uses (the oracle's subproblem size for "STEDC").
int stedc_leaf();

}  // namespace orb::lapack::dc
