// Solving with the LU factors: the interchanges and two triangular solves.
#include "lapack/auxiliary.h"
#include "lapack/blas_calls.h"
#include "lapack/general.h"

namespace orb::lapack {
namespace {

template <class T, bool Threaded>
void solve(Op trans, int n, int nrhs, const T *a, int lda, const int *ipiv, T *b, int ldb) {
  if (n == 0 || nrhs == 0) return;
  auto tri = [&](const Triangular &t) {
    if constexpr (Threaded)
      trsm(t, n, nrhs, T(1), a, lda, b, ldb);
    else
      trsm_here(t, n, nrhs, T(1), a, lda, b, ldb);
  };
  if (trans == Op::kNone) {
    laswp(nrhs, b, ldb, 1, n, ipiv, 1);
    tri(kLowerUnit);
    tri(kUpperLeft);
  } else {
    tri(Triangular{true, true, trans, false});
    tri(Triangular{true, false, trans, true});
    laswp(nrhs, b, ldb, 1, n, ipiv, -1);
  }
}

}  // namespace

template <class T>
void getrs(Op trans, int n, int nrhs, const T *a, int lda, const int *ipiv, T *b, int ldb) {
  solve<T, true>(trans, n, nrhs, a, lda, ipiv, b, ldb);
}
template <class T>
void getrs_here(Op trans, int n, int nrhs, const T *a, int lda, const int *ipiv, T *b, int ldb) {
  solve<T, false>(trans, n, nrhs, a, lda, ipiv, b, ldb);
}

#define ORB_GETRS(T)                                                        \
  template void getrs(Op, int, int, const T *, int, const int *, T *, int); \
  template void getrs_here(Op, int, int, const T *, int, const int *, T *, int);
ORB_GETRS(float)
ORB_GETRS(double)
ORB_GETRS(c8)
ORB_GETRS(c16)
#undef ORB_GETRS

}  // namespace orb::lapack
