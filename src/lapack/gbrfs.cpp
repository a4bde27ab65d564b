// Iterative refinement of the solutions of a band system, with the
// componentwise backward error and a bound on the forward error of each
// solution (the 1-norm estimator on |op(A)^-1| diag(w)).
#include <algorithm>
#include <cstddef>
#include <limits>

#include "blas/level1/level1.h"
#include "lapack/auxiliary.h"
#include "lapack/band.h"
#include "lapack/band_common.h"

namespace orb::lapack {
namespace {

constexpr int kMaxSteps = 5;

// y := y - op(A) x, A n by n in band storage (ldab >= kl + ku + 1).
template <class T>
void subtract_product(Op trans, int n, int kl, int ku, const T *ab, int ldab, const T *x, T *y) {
  for (int k = 0; k < n; ++k) {
    const int i0 = std::max(0, k - ku), len = std::min(n - 1, k + kl) - i0 + 1;
    const T *a = ab + ku + i0 - k + static_cast<std::ptrdiff_t>(k) * ldab;
    if (trans == Op::kNone)
      blas::axpy(len, -x[k], a, 1, y + i0, 1);
    else
      y[k] -= trans == Op::kConjTrans ? blas::dotc(len, a, 1, x + i0, 1)
                                      : blas::dotu(len, a, 1, x + i0, 1);
  }
}

}  // namespace

template <class T>
void gbrfs(Op trans, int n, int kl, int ku, int nrhs, const T *ab, int ldab, const T *afb,
           int ldafb, const int *ipiv, const T *b, int ldb, T *x, int ldx, real_t<T> *ferr,
           real_t<T> *berr, T *work, int *iwork, real_t<T> *rwork) {
  using R = real_t<T>;
  if (n == 0 || nrhs == 0) {
    std::fill(ferr, ferr + nrhs, R(0));
    std::fill(berr, berr + nrhs, R(0));
    return;
  }
  const bool notran = trans == Op::kNone;
  // The solves of the estimator: with op(A)^H (kase 1) and op(A) (kase 2).
  Op with_adjoint, with_op;
  if constexpr (is_complex_v<T>) {
    with_adjoint = notran ? Op::kConjTrans : Op::kNone;
    with_op = notran ? Op::kNone : Op::kConjTrans;
  } else {
    with_adjoint = notran ? Op::kTrans : Op::kNone;
    with_op = trans;
  }
  // Real data: w, r and the estimator's v in WORK; complex: r and v in
  // WORK, w in RWORK.
  R *w = band_detail::real_work(work, rwork);
  T *r = is_complex_v<T> ? work : work + n;
  T *v = r + n;
  int *isgn = is_complex_v<T> ? nullptr : iwork;

  const int nz = std::min(kl + ku + 2, n + 1);
  const R eps = std::numeric_limits<R>::epsilon() / 2;
  const R safe1 = nz * std::numeric_limits<R>::min();
  const R safe2 = safe1 / eps;
  auto el = [&](int i, int k) { return ab[ku + i - k + static_cast<std::ptrdiff_t>(k) * ldab]; };

  for (int j = 0; j < nrhs; ++j) {
    T *xj = x + static_cast<std::ptrdiff_t>(j) * ldx;
    const T *bj = b + static_cast<std::ptrdiff_t>(j) * ldb;
    R last = 3;
    for (int count = 1;; ++count) {
      // r = b - op(A) x, and w = |op(A)| |x| + |b|.
      std::copy(bj, bj + n, r);
      subtract_product(trans, n, kl, ku, ab, ldab, xj, r);
      for (int i = 0; i < n; ++i) w[i] = abs1(bj[i]);
      for (int k = 0; k < n; ++k) {
        const int i0 = std::max(0, k - ku), i1 = std::min(n - 1, k + kl);
        if (notran) {
          const R xk = abs1(xj[k]);
          for (int i = i0; i <= i1; ++i) w[i] += abs1(el(i, k)) * xk;
        } else {
          R s = 0;
          for (int i = i0; i <= i1; ++i) s += abs1(el(i, k)) * abs1(xj[i]);
          w[k] += s;
        }
      }
      // The componentwise backward error, with safe1 added where the
      // denominator is tiny.
      R s = 0;
      for (int i = 0; i < n; ++i)
        s = std::max(s, w[i] > safe2 ? abs1(r[i]) / w[i] : (abs1(r[i]) + safe1) / (w[i] + safe1));
      berr[j] = s;
      if (!(s > eps && 2 * s <= last && count <= kMaxSteps)) break;
      gbtrs_columns(trans, n, kl, ku, afb, ldafb, ipiv, r, n, 0, 1);
      blas::axpy(n, T(1), r, 1, xj, 1);
      last = s;
    }

    // The forward error bound: || |op(A)^-1| (|r| + nz eps w) || / ||x||,
    // the norm estimated with products by op(A)^-1 diag(w') and its adjoint.
    for (int i = 0; i < n; ++i)
      w[i] = abs1(r[i]) + static_cast<R>(nz) * eps * w[i] + (w[i] > safe2 ? R(0) : safe1);
    int kase = 0, isave[3] = {0, 0, 0};
    for (;;) {
      lacn2(n, v, r, isgn, &ferr[j], &kase, isave);
      if (kase == 0) break;
      if (kase == 1) {
        gbtrs_columns(with_adjoint, n, kl, ku, afb, ldafb, ipiv, r, n, 0, 1);
        for (int i = 0; i < n; ++i) r[i] = w[i] * r[i];
      } else {
        for (int i = 0; i < n; ++i) r[i] = w[i] * r[i];
        gbtrs_columns(with_op, n, kl, ku, afb, ldafb, ipiv, r, n, 0, 1);
      }
    }
    R xnorm = 0;
    for (int i = 0; i < n; ++i) xnorm = std::max(xnorm, abs1(xj[i]));
    if (xnorm != 0) ferr[j] /= xnorm;
  }
}

template void gbrfs(Op, int, int, int, int, const float *, int, const float *, int, const int *,
                    const float *, int, float *, int, float *, float *, float *, int *, float *);
template void gbrfs(Op, int, int, int, int, const c8 *, int, const c8 *, int, const int *,
                    const c8 *, int, c8 *, int, float *, float *, c8 *, int *, float *);

}  // namespace orb::lapack
