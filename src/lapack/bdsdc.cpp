// Singular values and vectors of a bidiagonal matrix by divide and conquer.
// The matrix is scaled to a largest element of 1. Values only: the QR
// iteration of the leaves on the whole matrix. With vectors: up to the leaf
// size the same; beyond it the matrix is split where an off-diagonal is
// negligible and each piece solved by the divide-and-conquer tree (lasd0).
#include <algorithm>
#include <cmath>
#include <utility>

#include "lapack/divide.h"
#include "lapack/lasd.h"
#include "lapack/names.h"
#include "lapack/oracle.h"

namespace orb::lapack {

template <class R>
int bdsdc(Uplo uplo, CompQ compq, int n, R *d, R *e, R *u, int ldu, R *vt, int ldvt, R *work,
          int *iwork) {
  using dc::mat1;
  const bool vectors = compq == CompQ::kInitial;
  if (uplo != Uplo::kUpper && uplo != Uplo::kLower) return -1;
  if (compq != CompQ::kNone && compq != CompQ::kInitial) return -2;
  if (n < 0) return -3;
  if (ldu < 1 || (vectors && ldu < n)) return -7;
  if (ldvt < 1 || (vectors && ldvt < n)) return -9;
  if (n == 0) return 0;
  const int smlsiz = oracle(kSubproblem, name<R>("BDSDC"), n);
  if (n == 1) {
    if (vectors) {
      u[0] = dc::sign(R(1), d[0]);
      vt[0] = 1;
    }
    d[0] = std::abs(d[0]);
    return 0;
  }
  const auto U = mat1(u, ldu);
  const auto VT = mat1(vt, ldvt);
  // A lower bidiagonal is made upper by rotations from the left, kept (as
  // c and -s) to be applied to U at the end.
  R *wk = work;
  const bool lower = uplo == Uplo::kLower;
  if (lower) {
    if (vectors) wk = work + 2 * n - 2;
    for (int i = 0; i + 1 < n; ++i) {
      R c, s, r;
      dc::lartg(d[i], e[i], c, s, r);
      d[i] = r;
      e[i] = s * d[i + 1];
      d[i + 1] = c * d[i + 1];
      if (vectors) {
        work[i] = c;
        work[n - 1 + i] = -s;
      }
    }
  }
  if (vectors) {
    dc::identity(n, n, u, ldu);
    dc::identity(n, n, vt, ldvt);
  }
  // Scaled to a largest element of 1 on every path: the leaves' QR
  // iteration, whose convergence test has an absolute floor near underflow,
  // then keeps its relative accuracy on matrices of tiny norm.
  const R orgnrm = dc::max_abs(n, d, e);
  if (orgnrm == 0) return 0;
  dc::rescale(orgnrm, R(1), n, 1, d, n);
  dc::rescale(orgnrm, R(1), n - 1, 1, e, n - 1);
  int info = 0;
  if (!vectors) {
    info = dc::lasdq(Uplo::kUpper, 0, n, 0, 0, 0, d, e, vt, ldvt, u, ldu, u, ldu, work);
  } else if (n <= smlsiz) {
    info = dc::lasdq(Uplo::kUpper, 0, n, n, n, 0, d, e, vt, ldvt, u, ldu, u, ldu, wk);
  } else {
    const R eps = R(0.9) * dc::eps<R>();
    // Tiny diagonal elements are raised to eps: the tree needs nonzero ones.
    for (int i = 0; i < n; ++i)
      if (std::abs(d[i]) < eps) d[i] = dc::sign(eps, d[i]);
    // Pieces between negligible off-diagonals.
    int start = 0;
    for (int i = 0; i < n - 1; ++i) {
      const bool split = std::abs(e[i]) < eps;
      if (!split && i != n - 2) continue;
      int nsize;
      if (i < n - 2) {
        nsize = i - start + 1;
      } else if (!split) {
        nsize = n - start;
      } else {
        // The last row stands alone.
        nsize = i - start + 1;
        U(n, n) = dc::sign(R(1), d[n - 1]);
        VT(n, n) = 1;
        d[n - 1] = std::abs(d[n - 1]);
      }
      info = dc::lasd0(nsize, 0, d + start, e + start, U.at(start + 1, start + 1), ldu,
                       VT.at(start + 1, start + 1), ldvt, smlsiz, iwork, wk);
      if (info != 0) return info;
      start = i + 1;
    }
  }
  dc::rescale(R(1), orgnrm, n, 1, d, n);
  // Decreasing order, one exchange per position.
  for (int i = 0; i + 1 < n; ++i) {
    int kk = i;
    for (int j = i + 1; j < n; ++j)
      if (d[j] > d[kk]) kk = j;
    if (kk == i) continue;
    std::swap(d[i], d[kk]);
    if (vectors) {
      std::swap_ranges(U.at(1, i + 1), U.at(1, i + 1) + n, U.at(1, kk + 1));
      for (int j = 1; j <= n; ++j) std::swap(VT(i + 1, j), VT(kk + 1, j));
    }
  }
  if (lower && vectors) dc::rotate_rows(false, n, n, work, work + n - 1, u, ldu);
  return info;
}

template int bdsdc<float>(Uplo, CompQ, int, float *, float *, float *, int, float *, int, float *,
                          int *);
template int bdsdc<double>(Uplo, CompQ, int, double *, double *, double *, int, double *, int,
                           double *, int *);

}  // namespace orb::lapack
