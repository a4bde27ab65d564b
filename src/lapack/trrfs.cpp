// Error bounds of computed solutions of a triangular system, column by
// column of X:
//   - the componentwise relative backward error, max_i |r_i| / (|op(A)| |x|
//     + |b|)_i with r = b - op(A) x, a small safe term added to both sides
//     where the denominator is tiny;
//   - the forward error bound || |op(A)^-1| w ||_inf / ||x||_inf with
//     w = |r| + (n + 1) eps (|op(A)| |x| + |b|), the norm estimated by the
//     1-norm estimator on diag(w) op(A)^-H through triangular solves.
// Moduli are |re| + |im| for complex data.
#include <algorithm>
#include <cstddef>
#include <limits>

#include "blas/level1/level1.h"
#include "blas/level2/level2.h"
#include "lapack/auxiliary.h"
#include "lapack/triangular.h"

namespace orb::lapack {

template <class T>
void trrfs(Uplo uplo, Op trans, Diag diag, int n, int nrhs, const T *a, int lda, const T *b,
           int ldb, const T *x, int ldx, real_t<T> *ferr, real_t<T> *berr, T *work,
           real_t<T> *rwork, int *isgn) {
  using R = real_t<T>;
  if (n == 0 || nrhs == 0) {
    std::fill(ferr, ferr + nrhs, R(0));
    std::fill(berr, berr + nrhs, R(0));
    return;
  }
  const bool upper = uplo == Uplo::kUpper, unit = diag == Diag::kUnit;
  const bool notran = trans == Op::kNone;
  // op(A) and its conjugate transpose for the estimator (the transpose for
  // real data).
  const Op forward = notran ? Op::kNone : Op::kConjTrans;
  const Op adjoint = notran ? Op::kConjTrans : Op::kNone;

  // At most n nonzeros in a row of A, plus one.
  const int nz = n + 1;
  const R eps = std::numeric_limits<R>::epsilon() / R(2);
  const R safe1 = static_cast<R>(nz) * safe_minimum<R>();
  const R safe2 = safe1 / eps;
  auto at = [&](int i, int k) { return abs1(a[i + static_cast<std::ptrdiff_t>(k) * lda]); };
  T *r = work, *v = work + n;
  R *w = rwork;

  for (int j = 0; j < nrhs; ++j) {
    const T *xj = x + static_cast<std::ptrdiff_t>(j) * ldx;
    const T *bj = b + static_cast<std::ptrdiff_t>(j) * ldb;

    // r = op(A) x - b.
    blas::copy(n, xj, 1, r, 1);
    blas::level2::trmv(upper, trans, unit, n, a, lda, r, 1);
    blas::axpy(n, T(-1), bj, 1, r, 1);

    // w = |op(A)| |x| + |b|.
    for (int i = 0; i < n; ++i) w[i] = abs1(bj[i]);
    for (int k = 0; k < n; ++k) {
      // The rows of column k read from the triangle, the diagonal apart.
      const int i0 = upper ? 0 : k + 1, i1 = upper ? k : n;
      const R diagonal = unit ? R(1) : at(k, k);
      if (notran) {
        const R xk = abs1(xj[k]);
        for (int i = i0; i < i1; ++i) w[i] += at(i, k) * xk;
        w[k] += diagonal * xk;
      } else {
        R s = diagonal * abs1(xj[k]);
        for (int i = i0; i < i1; ++i) s += at(i, k) * abs1(xj[i]);
        w[k] += s;
      }
    }

    R s = 0;
    for (int i = 0; i < n; ++i) {
      const R ri = abs1(r[i]);
      s = std::max(s, w[i] > safe2 ? ri / w[i] : (ri + safe1) / (w[i] + safe1));
    }
    berr[j] = s;

    for (int i = 0; i < n; ++i)
      w[i] = abs1(r[i]) + static_cast<R>(nz) * eps * w[i] + (w[i] > safe2 ? R(0) : safe1);
    int kase = 0, isave[3] = {};
    for (;;) {
      lacn2(n, v, r, isgn, &ferr[j], &kase, isave);
      if (kase == 0) break;
      if (kase == 1) {  // diag(w) op(A)^-H r
        blas::level2::trsv(upper, adjoint, unit, n, a, lda, r, 1);
        for (int i = 0; i < n; ++i) r[i] *= w[i];
      } else {  // op(A)^-1 diag(w) r
        for (int i = 0; i < n; ++i) r[i] *= w[i];
        blas::level2::trsv(upper, forward, unit, n, a, lda, r, 1);
      }
    }

    R xnorm = 0;
    for (int i = 0; i < n; ++i) xnorm = std::max(xnorm, abs1(xj[i]));
    if (xnorm != R(0)) ferr[j] /= xnorm;
  }
}

#define ORB_TRRFS(T)                                                                            \
  template void trrfs(Uplo, Op, Diag, int, int, const T *, int, const T *, int, const T *, int, \
                      real_t<T> *, real_t<T> *, T *, real_t<T> *, int *);
ORB_TRRFS(float)
ORB_TRRFS(double)
ORB_TRRFS(c8)
ORB_TRRFS(c16)
#undef ORB_TRRFS

}  // namespace orb::lapack
