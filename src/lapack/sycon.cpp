// The reciprocal condition number from the Bunch-Kaufman factors: inv(A)
// is symmetric (Hermitian), so its 1-norm is its infinity norm, and the
// 1-norm estimator drives solves with the factors for both of its products;
// rcond = 1 / (||inv(A)||_1 ||A||_1).
#include <cstddef>

#include "lapack/auxiliary.h"
#include "lapack/symmetric.h"

namespace orb::lapack {

template <class T>
void sycon(Uplo uplo, bool herm, int n, const T *a, int lda, const int *ipiv, real_t<T> anorm,
           real_t<T> *rcond, T *work, int *iwork) {
  using R = real_t<T>;
  *rcond = 0;
  if (n == 0) {
    *rcond = 1;
    return;
  }
  if (anorm <= 0) return;
  // A 1x1 block of D exactly zero: A is singular.
  for (int k = 0; k < n; ++k)
    if (ipiv[k] > 0 && a[k + static_cast<std::ptrdiff_t>(k) * lda] == T(0)) return;
  R ainvnm = 0;
  int kase = 0, isave[3] = {0, 0, 0};
  for (;;) {
    lacn2(n, work + n, work, iwork, &ainvnm, &kase, isave);
    if (kase == 0) break;
    sytrs_columns(uplo, herm, n, a, lda, ipiv, work, n, 0, 1);
  }
  if (ainvnm != 0) *rcond = (R(1) / ainvnm) / anorm;
}

#define ORB_SYCON(T)                                                                             \
  template void sycon(Uplo, bool, int, const T *, int, const int *, real_t<T>, real_t<T> *, T *, \
                      int *);
ORB_SYCON(float)
ORB_SYCON(c8)
#undef ORB_SYCON

}  // namespace orb::lapack
