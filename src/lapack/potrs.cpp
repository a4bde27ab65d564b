// Solves with the Cholesky factors: two triangular solves with all the
// right-hand sides at once, in the threaded level-3 BLAS.
#include "lapack/blas_calls.h"
#include "lapack/cholesky.h"

namespace orb::lapack {

template <class T>
void potrs(Uplo uplo, int n, int nrhs, const T *a, int lda, T *b, int ldb) {
  constexpr Op adj = is_complex_v<T> ? Op::kConjTrans : Op::kTrans;
  const bool upper = uplo == Uplo::kUpper;
  // A = U^H U: U^-1 (U^-H B); A = L L^H: L^-H (L^-1 B).
  trsm(Triangular{true, upper, upper ? adj : Op::kNone, false}, n, nrhs, T(1), a, lda, b, ldb);
  trsm(Triangular{true, upper, upper ? Op::kNone : adj, false}, n, nrhs, T(1), a, lda, b, ldb);
}

template void potrs(Uplo, int, int, const float *, int, float *, int);
template void potrs(Uplo, int, int, const c8 *, int, c8 *, int);

}  // namespace orb::lapack
