// Iterative refinement with error bounds for Hermitian positive definite
// systems, full and band: residuals and weights from the stored triangle,
// corrections and the estimator's products by solves with the factors.
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>

#include "lapack/auxiliary.h"
#include "lapack/cholesky.h"
#include "lapack/refine.h"

namespace orb::lapack {
namespace {

// The stored part of column k of a Hermitian matrix: its diagonal element
// and the off-diagonal elements of rows i0 .. i1-1, contiguous from p.
template <class T>
struct Column {
  int i0, i1;
  const T *p;
  T diag;
};

template <class T>
T conj_of(T x) {
  if constexpr (is_complex_v<T>)
    return std::conj(x);
  else
    return x;
}

// porfs and pbrfs: `column(k)` describes the stored part of column k.
template <class T, class ColumnOf, class Solve>
void refine_hermitian(int n, int nrhs, int nz, ColumnOf column, const T *b, int ldb, T *x, int ldx,
                      real_t<T> *ferr, real_t<T> *berr, T *work, real_t<T> *rwork, int *iwork,
                      Solve solve) {
  using R = real_t<T>;
  // r := r - A x; each stored element serves its own row and, conjugated,
  // its mirror's.
  auto residual = [&](const T *xj, T *r) {
    for (int k = 0; k < n; ++k) {
      const Column<T> c = column(k);
      const T xk = xj[k];
      T s = 0;
      for (int i = c.i0; i < c.i1; ++i) {
        const T a = c.p[i - c.i0];
        r[i] -= a * xk;
        s += conj_of(a) * xj[i];
      }
      r[k] -= s + std::real(c.diag) * xk;
    }
  };
  // w := |A| |x| + |b|.
  auto weights = [&](const T *xj, const T *bj, R *w) {
    for (int i = 0; i < n; ++i) w[i] = abs1(bj[i]);
    for (int k = 0; k < n; ++k) {
      const Column<T> c = column(k);
      const R xk = abs1(xj[k]);
      R s = 0;
      for (int i = c.i0; i < c.i1; ++i) {
        const R a = abs1(c.p[i - c.i0]);
        w[i] += a * xk;
        s += a * abs1(xj[i]);
      }
      w[k] += s + std::abs(std::real(c.diag)) * xk;
    }
  };
  refine(n, nrhs, nz, b, ldb, x, ldx, ferr, berr, refine_work(n, work, rwork, iwork), residual,
         weights, [&](RefineSolve, T *y) { solve(y); });
}

}  // namespace

template <class T>
void porfs(Uplo uplo, int n, int nrhs, const T *a, int lda, const T *af, int ldaf, const T *b,
           int ldb, T *x, int ldx, real_t<T> *ferr, real_t<T> *berr, T *work, real_t<T> *rwork,
           int *iwork) {
  const bool upper = uplo == Uplo::kUpper;
  auto column = [&](int k) {
    const T *col = a + static_cast<std::ptrdiff_t>(k) * lda;
    return upper ? Column<T>{0, k, col, col[k]} : Column<T>{k + 1, n, col + k + 1, col[k]};
  };
  refine_hermitian(n, nrhs, n + 1, column, b, ldb, x, ldx, ferr, berr, work, rwork, iwork,
                   [&](T *y) { potrs(uplo, n, 1, af, ldaf, y, n); });
}

template <class T>
void pbrfs(Uplo uplo, int n, int kd, int nrhs, const T *ab, int ldab, const T *afb, int ldafb,
           const T *b, int ldb, T *x, int ldx, real_t<T> *ferr, real_t<T> *berr, T *work,
           real_t<T> *rwork, int *iwork) {
  const bool upper = uplo == Uplo::kUpper;
  auto column = [&](int k) {
    const T *col = ab + static_cast<std::ptrdiff_t>(k) * ldab;
    if (upper) {
      const int i0 = std::max(0, k - kd);
      return Column<T>{i0, k, col + kd + i0 - k, col[kd]};
    }
    return Column<T>{k + 1, std::min(n, k + kd + 1), col + 1, col[0]};
  };
  refine_hermitian(n, nrhs, std::min(n + 1, 2 * kd + 2), column, b, ldb, x, ldx, ferr, berr, work,
                   rwork, iwork, [&](T *y) { pbtrs(uplo, n, kd, 1, afb, ldafb, y, n); });
}

#define ORB_PORFS(T)                                                                            \
  template void porfs(Uplo, int, int, const T *, int, const T *, int, const T *, int, T *, int, \
                      real_t<T> *, real_t<T> *, T *, real_t<T> *, int *);                       \
  template void pbrfs(Uplo, int, int, int, const T *, int, const T *, int, const T *, int, T *, \
                      int, real_t<T> *, real_t<T> *, T *, real_t<T> *, int *);
ORB_PORFS(float)
ORB_PORFS(c8)
#undef ORB_PORFS

}  // namespace orb::lapack
