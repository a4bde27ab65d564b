// xormlq_omp: the products with the Q of an LQ factorization (orm_blocked.h),
// behind SORMLQ and CUNMLQ.
#include <complex>

#include "lapack/orm_blocked.h"

namespace orb::lapack {

template <class T>
void ormlq(Side side, Op op, int m, int n, int k, const T *a, int lda, const T *tau, T *c, int ldc,
           T *work, int lwork) {
  orm::run(orm::Layout::kLq, side, op, m, n, k, a, lda, tau, c, ldc, work, lwork);
}

#define ORB_XORMLQ(T) \
  template void ormlq<T>(Side, Op, int, int, int, const T *, int, const T *, T *, int, T *, int);
ORB_XORMLQ(float)
ORB_XORMLQ(double)
ORB_XORMLQ(std::complex<float>)
ORB_XORMLQ(std::complex<double>)
#undef ORB_XORMLQ

}  // namespace orb::lapack
