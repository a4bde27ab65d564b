// Solves with a triangular matrix: a test for a zero on the diagonal, then
// the threaded triangular solve of the level-3 BLAS.
#include <cstddef>

#include "lapack/blas_calls.h"
#include "lapack/triangular.h"

namespace orb::lapack {

template <class T>
int trtrs(Uplo uplo, Op trans, Diag diag, int n, int nrhs, const T *a, int lda, T *b, int ldb) {
  if (n == 0) return 0;
  if (diag == Diag::kNonUnit)
    for (int j = 0; j < n; ++j)
      if (a[j + static_cast<std::ptrdiff_t>(j) * lda] == T(0)) return j + 1;
  const blas::Triangular t{true, uplo == Uplo::kUpper, trans, diag == Diag::kUnit};
  trsm(t, n, nrhs, T(1), a, lda, b, ldb);
  return 0;
}

#define ORB_TRTRS(T) template int trtrs(Uplo, Op, Diag, int, int, const T *, int, T *, int);
ORB_TRTRS(float)
ORB_TRTRS(double)
ORB_TRTRS(c8)
ORB_TRTRS(c16)
#undef ORB_TRTRS

}  // namespace orb::lapack
