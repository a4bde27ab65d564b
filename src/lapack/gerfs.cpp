// Iterative refinement of a solution from the LU factors, with the
// componentwise backward error and an estimated forward error bound per
// right-hand side.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "blas/level1/level1.h"
#include "blas/level2/level2.h"
#include "lapack/auxiliary.h"
#include "lapack/general.h"

namespace orb::lapack {
namespace {

constexpr int kMaxSteps = 5;

}  // namespace

template <class T>
void gerfs(Op trans, int n, int nrhs, const T *a, int lda, const T *af, int ldaf, const int *ipiv,
           const T *b, int ldb, T *x, int ldx, real_t<T> *ferr, real_t<T> *berr, T *work,
           real_t<T> *rwork, int *iwork) {
  using R = real_t<T>;
  if (n == 0 || nrhs == 0) {
    for (int j = 0; j < nrhs; ++j) ferr[j] = berr[j] = 0;
    return;
  }
  // The transpose of op for the estimator's second product.
  const Op transt =
      trans == Op::kNone ? (is_complex_v<T> ? Op::kConjTrans : Op::kTrans) : Op::kNone;
  const R eps = std::numeric_limits<R>::epsilon() / 2;
  const R safmin = safe_minimum<R>();
  const int nz = n + 1;
  const R safe1 = static_cast<R>(nz) * safmin, safe2 = safe1 / eps;

  // The residual (and the estimator's x), the estimator's v, and the weights
  // |op(A)| |x| + |b|.
  T *resid, *v;
  R *weight;
  if constexpr (is_complex_v<T>) {
    resid = work, v = work + n, weight = rwork;
  } else {
    resid = work + n, v = work + 2 * n, weight = work;
  }
  auto el = [](const T *m, int ld, int i, int j) {
    return m[i + static_cast<std::ptrdiff_t>(j) * ld];
  };

  for (int j = 0; j < nrhs; ++j) {
    T *xj = x + static_cast<std::ptrdiff_t>(j) * ldx;
    const T *bj = b + static_cast<std::ptrdiff_t>(j) * ldb;
    int count = 1;
    R last_res = 3;
    for (;;) {
      blas::copy(n, bj, 1, resid, 1);
      blas::level2::gemv(trans, n, n, T(-1), a, lda, xj, 1, T(1), resid, 1);
      if (trans == Op::kNone) {
        for (int i = 0; i < n; ++i) weight[i] = abs1(bj[i]);
        for (int k = 0; k < n; ++k) {
          const R xk = abs1(xj[k]);
          for (int i = 0; i < n; ++i) weight[i] += abs1(el(a, lda, i, k)) * xk;
        }
      } else {
        for (int k = 0; k < n; ++k) {
          R s = 0;
          for (int i = 0; i < n; ++i) s += abs1(el(a, lda, i, k)) * abs1(xj[i]);
          weight[k] = abs1(bj[k]) + s;
        }
      }
      R s = 0;
      for (int i = 0; i < n; ++i) {
        if (weight[i] > safe2)
          s = std::max(s, abs1(resid[i]) / weight[i]);
        else
          s = std::max(s, (abs1(resid[i]) + safe1) / (weight[i] + safe1));
      }
      berr[j] = s;
      if (berr[j] > eps && R(2) * berr[j] <= last_res && count <= kMaxSteps) {
        getrs(trans, n, 1, af, ldaf, ipiv, resid, n);
        blas::axpy(n, T(1), resid, 1, xj, 1);
        last_res = berr[j];
        ++count;
        continue;
      }
      break;
    }

    // ||inv(op(A)) diag(W)||_inf estimated, W = |r| + nz eps (|op(A)||x| + |b|).
    for (int i = 0; i < n; ++i) {
      const R w = weight[i];
      weight[i] = abs1(resid[i]) + static_cast<R>(nz) * eps * w;
      if (!(w > safe2)) weight[i] += safe1;
    }
    int kase = 0, isave[3] = {0, 0, 0};
    for (;;) {
      lacn2(n, v, resid, iwork, &ferr[j], &kase, isave);
      if (kase == 0) break;
      if (kase == 1) {
        getrs(transt, n, 1, af, ldaf, ipiv, resid, n);
        for (int i = 0; i < n; ++i) resid[i] *= weight[i];
      } else {
        for (int i = 0; i < n; ++i) resid[i] *= weight[i];
        getrs(trans, n, 1, af, ldaf, ipiv, resid, n);
      }
    }
    R largest = 0;
    for (int i = 0; i < n; ++i) largest = std::max(largest, abs1(xj[i]));
    if (largest != 0) ferr[j] /= largest;
  }
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
