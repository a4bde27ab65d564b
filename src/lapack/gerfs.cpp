// Iterative refinement of a solution from the LU factors, with the
// componentwise backward error and an estimated forward error bound per
// right-hand side.
#include <cstddef>

#include "blas/level2/level2.h"
#include "lapack/auxiliary.h"
#include "lapack/general.h"
#include "lapack/refine.h"

namespace orb::lapack {

template <class T>
void gerfs(Op trans, int n, int nrhs, const T *a, int lda, const T *af, int ldaf, const int *ipiv,
           const T *b, int ldb, T *x, int ldx, real_t<T> *ferr, real_t<T> *berr, T *work,
           real_t<T> *rwork, int *iwork) {
  using R = real_t<T>;
  // The estimator's adjoint product solves with op(A)^H.
  const Op transt =
      trans == Op::kNone ? (is_complex_v<T> ? Op::kConjTrans : Op::kTrans) : Op::kNone;
  auto el = [&](int i, int j) { return a[i + static_cast<std::ptrdiff_t>(j) * lda]; };
  auto residual = [&](const T *xj, T *r) {
    blas::level2::gemv(trans, n, n, T(-1), a, lda, xj, 1, T(1), r, 1);
  };
  auto weights = [&](const T *xj, const T *bj, R *w) {
    if (trans == Op::kNone) {
      for (int i = 0; i < n; ++i) w[i] = abs1(bj[i]);
      for (int k = 0; k < n; ++k) {
        const R xk = abs1(xj[k]);
        for (int i = 0; i < n; ++i) w[i] += abs1(el(i, k)) * xk;
      }
    } else {
      for (int k = 0; k < n; ++k) {
        R s = 0;
        for (int i = 0; i < n; ++i) s += abs1(el(i, k)) * abs1(xj[i]);
        w[k] = abs1(bj[k]) + s;
      }
    }
  };
  auto solve = [&](RefineSolve which, T *y) {
    getrs(which == RefineSolve::kAdjoint ? transt : trans, n, 1, af, ldaf, ipiv, y, n);
  };
  refine(n, nrhs, n + 1, b, ldb, x, ldx, ferr, berr, refine_work(n, work, rwork, iwork), residual,
         weights, solve);
}

#define ORB_GERFS(T)                                                                             \
  template void gerfs(Op, int, int, const T *, int, const T *, int, const int *, const T *, int, \
                      T *, int, real_t<T> *, real_t<T> *, T *, real_t<T> *, int *);
ORB_GERFS(float)
ORB_GERFS(double)
ORB_GERFS(c8)
ORB_GERFS(c16)
#undef ORB_GERFS

}  // namespace orb::lapack
