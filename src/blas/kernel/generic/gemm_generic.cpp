// Portable GEMM kernels: the micro-kernels of the type-0 path and of the
// precisions without a vector kernel, and the direct kernel.
#include <complex>
#include <cstdint>

#include "blas/kernel/gemm.h"
#include "common/scalar.h"

namespace orb::kernel::generic {
namespace {

using orb::mul;

template <class T, int MR, int NR>
void ukr(int k, const T *a, const T *b, T *c, int ldc, T alpha, T beta) {
  T acc[NR][MR] = {};
  for (int p = 0; p < k; ++p, a += MR, b += NR)
    for (int j = 0; j < NR; ++j)
      for (int i = 0; i < MR; ++i) acc[j][i] += mul(a[i], b[j]);
  for (int j = 0; j < NR; ++j) {
    T *cj = c + std::int64_t{j} * ldc;
    if (beta == T(0))
      for (int i = 0; i < MR; ++i) cj[i] = mul(alpha, acc[j][i]);
    else
      for (int i = 0; i < MR; ++i) cj[i] = mul(alpha, acc[j][i]) + mul(beta, cj[i]);
  }
}

#include "blas/kernel/gemm_direct.inc"

}  // namespace

// The micro-kernels of the shapes in blas/kernel/gemm.h.
#define ORB_GENERIC_UKR(name, T, shape)                                      \
  void name(int k, const T *a, const T *b, T *c, int ldc, T alpha, T beta) { \
    ukr<T, shape.mr, shape.nr>(k, a, b, c, ldc, alpha, beta);                \
  }
ORB_GENERIC_UKR(sgemm_ukr, float, sgemm_shape)
ORB_GENERIC_UKR(dgemm_ukr, double, dgemm_shape)
ORB_GENERIC_UKR(cgemm_ukr, c8, cgemm_shape)
ORB_GENERIC_UKR(zgemm_ukr, c16, zgemm_shape)
#undef ORB_GENERIC_UKR

template <class T>
void gemm_direct(int kc, Op ta, Op tb, int m, int n, int k, T alpha, const T *a, int lda,
                 const T *b, int ldb, T beta, T *c, int ldc) {
  direct_gemm(kc, ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

template void gemm_direct<float>(int, Op, Op, int, int, int, float, const float *, int,
                                 const float *, int, float, float *, int);
template void gemm_direct<double>(int, Op, Op, int, int, int, double, const double *, int,
                                  const double *, int, double, double *, int);
template void gemm_direct<c8>(int, Op, Op, int, int, int, c8, const c8 *, int, const c8 *, int, c8,
                              c8 *, int);
template void gemm_direct<c16>(int, Op, Op, int, int, int, c16, const c16 *, int, const c16 *, int,
                               c16, c16 *, int);

}  // namespace orb::kernel::generic
