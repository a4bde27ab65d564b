// xormql_omp: the products with the Q of a QL factorization (orm_blocked.h),
// for the library's own use (not exported).
#include <complex>

#include "lapack/orm_blocked.h"

namespace orb::lapack {

template <class T>
void ormql(Side side, Op op, int m, int n, int k, const T *a, int lda, const T *tau, T *c, int ldc,
           T *work, int lwork) {
  orm::run(orm::Layout::kQl, side, op, m, n, k, a, lda, tau, c, ldc, work, lwork);
}

#define ORB_XORMQL(T) \
  template void ormql<T>(Side, Op, int, int, int, const T *, int, const T *, T *, int, T *, int);
ORB_XORMQL(float)
ORB_XORMQL(double)
ORB_XORMQL(std::complex<float>)
ORB_XORMQL(std::complex<double>)
#undef ORB_XORMQL

}  // namespace orb::lapack
