// Iterative refinement of solutions from the Bunch-Kaufman factors, with the
// componentwise backward error max_i |r_i| / (|A| |x| + |b|)_i (r = b - A x)
// and the forward error bound || |inv(A)| w ||_inf / ||x||_inf with
// w = |r| + (n + 1) eps (|A| |x| + |b|), estimated by the 1-norm estimator
// through solves with the factors. A is read from its stored triangle;
// moduli are |re| + |im| for complex data.
#include <algorithm>
#include <cstddef>
#include <limits>

#include "blas/level1/level1.h"
#include "blas/level2/level2.h"
#include "lapack/auxiliary.h"
#include "lapack/symmetric.h"

namespace orb::lapack {
namespace {

constexpr int kMaxSteps = 5;

// weight := |A| |x| + |b| from the stored triangle of A.
template <class T>
void weights(bool upper, bool herm, int n, const T *a, int lda, const T *x, const T *b,
             real_t<T> *weight) {
  using R = real_t<T>;
  auto el = [&](int i, int j) { return a[i + static_cast<std::ptrdiff_t>(j) * lda]; };
  auto diag = [&](int k) { return herm ? std::abs(std::real(el(k, k))) : abs1(el(k, k)); };
  for (int i = 0; i < n; ++i) weight[i] = abs1(b[i]);
  for (int k = 0; k < n; ++k) {
    const R xk = abs1(x[k]);
    R s = 0;
    const int i0 = upper ? 0 : k + 1, i1 = upper ? k : n;
    for (int i = i0; i < i1; ++i) {
      const R aik = abs1(el(i, k));
      weight[i] += aik * xk;
      s += aik * abs1(x[i]);
    }
    weight[k] += diag(k) * xk + s;
  }
}

}  // namespace

template <class T>
void syrfs(Uplo uplo, bool herm, int n, int nrhs, const T *a, int lda, const T *af, int ldaf,
           const int *ipiv, const T *b, int ldb, T *x, int ldx, real_t<T> *ferr, real_t<T> *berr,
           T *work, real_t<T> *rwork, int *iwork) {
  using R = real_t<T>;
  if (n == 0 || nrhs == 0) {
    std::fill(ferr, ferr + nrhs, R(0));
    std::fill(berr, berr + nrhs, R(0));
    return;
  }
  herm = is_complex_v<T> && herm;
  const bool upper = uplo == Uplo::kUpper;
  const R eps = std::numeric_limits<R>::epsilon() / 2;
  const R safmin = safe_minimum<R>();
  const int nz = n + 1;
  const R safe1 = static_cast<R>(nz) * safmin, safe2 = safe1 / eps;

  // The residual (and the estimator's x), the estimator's v, and the
  // weights.
  T *resid, *v;
  R *weight;
  if constexpr (is_complex_v<T>) {
    resid = work, v = work + n, weight = rwork;
  } else {
    resid = work + n, v = work + 2 * n, weight = work;
  }
  auto solve = [&](T *y) { sytrs_columns(uplo, herm, n, af, ldaf, ipiv, y, n, 0, 1); };

  for (int j = 0; j < nrhs; ++j) {
    T *xj = x + static_cast<std::ptrdiff_t>(j) * ldx;
    const T *bj = b + static_cast<std::ptrdiff_t>(j) * ldb;
    int count = 1;
    R last_res = 3;
    for (;;) {
      blas::copy(n, bj, 1, resid, 1);
      blas::level2::symv(upper, n, T(-1), a, lda, xj, 1, T(1), resid, 1, herm);
      weights(upper, herm, n, a, lda, xj, bj, weight);
      R s = 0;
      for (int i = 0; i < n; ++i) {
        if (weight[i] > safe2)
          s = std::max(s, abs1(resid[i]) / weight[i]);
        else
          s = std::max(s, (abs1(resid[i]) + safe1) / (weight[i] + safe1));
      }
      berr[j] = s;
      if (berr[j] > eps && R(2) * berr[j] <= last_res && count <= kMaxSteps) {
        solve(resid);
        blas::axpy(n, T(1), resid, 1, xj, 1);
        last_res = berr[j];
        ++count;
        continue;
      }
      break;
    }

    // ||inv(A) diag(W)||_inf estimated, W = |r| + nz eps (|A||x| + |b|);
    // inv(A) is symmetric (Hermitian), so both products are solves.
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
        solve(resid);
        for (int i = 0; i < n; ++i) resid[i] *= weight[i];
      } else {
        for (int i = 0; i < n; ++i) resid[i] *= weight[i];
        solve(resid);
      }
    }
    R largest = 0;
    for (int i = 0; i < n; ++i) largest = std::max(largest, abs1(xj[i]));
    if (largest != 0) ferr[j] /= largest;
  }
}

#define ORB_SYRFS(T)                                                                        \
  template void syrfs(Uplo, bool, int, int, const T *, int, const T *, int, const int *,    \
                      const T *, int, T *, int, real_t<T> *, real_t<T> *, T *, real_t<T> *, \
                      int *);
ORB_SYRFS(float)
ORB_SYRFS(c8)
#undef ORB_SYRFS

}  // namespace orb::lapack
