// The inverse from the LU factors: inv(U) in place, then inv(A) from
// inv(A) L = inv(U) a block of columns at a time from the right, then the
// column interchanges in reverse.
#include <algorithm>
#include <cstddef>

#include "blas/level1/level1.h"
#include "blas/level2/level2.h"
#include "lapack/blas_calls.h"
#include "lapack/general.h"
#include "lapack/oracle.h"
#include "lapack/triangular.h"

namespace orb::lapack {

template <class T>
std::int64_t getri_worksize(int n) {
  const int nb = oracle(kBlockSize, name<T>("GETRI"), n);
  return std::max<std::int64_t>(1, std::int64_t{n} * nb);
}

template <class T>
int getri(int n, T *a, int lda, const int *ipiv, T *work, int lwork) {
  if (n == 0) return 0;
  const int info = trtri(Uplo::kUpper, Diag::kNonUnit, n, a, lda);
  if (info > 0) return info;
  auto col = [&](int j) { return a + static_cast<std::ptrdiff_t>(j) * lda; };
  const Name6 nm = name<T>("GETRI");
  int nb = oracle(kBlockSize, nm, n);
  int nbmin = 2;
  const int ldwork = n;
  if (nb > 1 && nb < n && lwork < ldwork * nb) {
    nb = lwork / ldwork;
    nbmin = std::max(2, oracle(kMinBlockSize, nm, n));
  }
  if (nb < nbmin || nb >= n) {
    for (int j = n - 1; j >= 0; --j) {
      for (int i = j + 1; i < n; ++i) {
        work[i] = col(j)[i];
        col(j)[i] = T(0);
      }
      if (j < n - 1)
        blas::level2::gemv(Op::kNone, n, n - j - 1, T(-1), col(j + 1), lda, work + j + 1, 1, T(1),
                           col(j), 1);
    }
  } else {
    const int last = ((n - 1) / nb) * nb;
    for (int j = last; j >= 0; j -= nb) {
      const int jb = std::min(nb, n - j);
      for (int jj = j; jj < j + jb; ++jj)
        for (int i = jj + 1; i < n; ++i) {
          work[i + static_cast<std::ptrdiff_t>(jj - j) * ldwork] = col(jj)[i];
          col(jj)[i] = T(0);
        }
      if (j + jb < n)
        gemm(Op::kNone, Op::kNone, n, jb, n - j - jb, T(-1), col(j + jb), lda, work + j + jb,
             ldwork, T(1), col(j), lda);
      trsm(Triangular{false, false, Op::kNone, true}, n, jb, T(1), work + j, ldwork, col(j), lda);
    }
  }
  for (int j = n - 2; j >= 0; --j) {
    const int jp = ipiv[j] - 1;
    if (jp != j) blas::swap(n, col(j), 1, col(jp), 1);
  }
  return 0;
}

#define ORB_GETRI(T)                            \
  template std::int64_t getri_worksize<T>(int); \
  template int getri(int, T *, int, const int *, T *, int);
ORB_GETRI(float)
ORB_GETRI(double)
ORB_GETRI(c8)
ORB_GETRI(c16)
#undef ORB_GETRI

}  // namespace orb::lapack
