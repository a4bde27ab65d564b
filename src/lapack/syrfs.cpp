// Iterative refinement of solutions from the Bunch-Kaufman factors, with the
// componentwise backward error max_i |r_i| / (|A| |x| + |b|)_i (r = b - A x)
// and the forward error bound || |inv(A)| w ||_inf / ||x||_inf with
// w = |r| + (n + 1) eps (|A| |x| + |b|), estimated by the 1-norm estimator
// through solves with the factors. A is read from its stored triangle;
// moduli are |re| + |im| for complex data.
#include <cstddef>

#include "blas/level2/level2.h"
#include "lapack/auxiliary.h"
#include "lapack/refine.h"
#include "lapack/symmetric.h"

namespace orb::lapack {
namespace {

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
  herm = is_complex_v<T> && herm;
  const bool upper = uplo == Uplo::kUpper;
  auto residual = [&](const T *xj, T *r) {
    blas::level2::symv(upper, n, T(-1), a, lda, xj, 1, T(1), r, 1, herm);
  };
  auto weigh = [&](const T *xj, const T *bj, R *w) { weights(upper, herm, n, a, lda, xj, bj, w); };
  // A^-1 is symmetric (Hermitian), so every product of the estimator is a
  // solve with the factors.
  auto solve = [&](RefineSolve, T *y) { sytrs_columns(uplo, herm, n, af, ldaf, ipiv, y, n, 0, 1); };
  refine(n, nrhs, n + 1, b, ldb, x, ldx, ferr, berr, refine_work(n, work, rwork, iwork), residual,
         weigh, solve);
}

#define ORB_SYRFS(T)                                                                        \
  template void syrfs(Uplo, bool, int, int, const T *, int, const T *, int, const int *,    \
                      const T *, int, T *, int, real_t<T> *, real_t<T> *, T *, real_t<T> *, \
                      int *);
ORB_SYRFS(float)
ORB_SYRFS(c8)
#undef ORB_SYRFS

}  // namespace orb::lapack
