// Portable level-2 kernels: the type-0 variants and the reference the vector
// kernels are tested against. Plain loops, in the order of the published
// routines.
#include <complex>
#include <cstdint>

#include "blas/kernel/level2.h"
#include "common/scalar.h"

namespace orb::kernel::level2::generic {
namespace {

using orb::conj_if;
using orb::mul;

template <class T>
void gemv_n_impl(int m, int n, T alpha, const T *a, int lda, const T *x, T *y) {
  for (int j = 0; j < n; ++j) {
    const T t = mul(alpha, x[j]);
    const T *aj = a + std::int64_t{j} * lda;
    for (int i = 0; i < m; ++i) y[i] += mul(t, aj[i]);
  }
}

template <class T>
void gemv_t_impl(int m, int n, T alpha, const T *a, int lda, const T *x, T *y, bool conj) {
  for (int j = 0; j < n; ++j) {
    const T *aj = a + std::int64_t{j} * lda;
    T s(0);
    for (int i = 0; i < m; ++i) s += mul(conj_if(aj[i], conj), x[i]);
    y[j] += mul(alpha, s);
  }
}

template <class T>
void axpy_impl(int n, T alpha, const T *x, T *y) {
  for (int i = 0; i < n; ++i) y[i] += mul(alpha, x[i]);
}

template <class T>
void axpy2_impl(int n, T a1, const T *x1, T a2, const T *x2, T *y) {
  for (int i = 0; i < n; ++i) y[i] += mul(a1, x1[i]) + mul(a2, x2[i]);
}

template <class T>
void axpy_dot_impl(int n, T alpha, const T *a, const T *x, T *y, bool conj, T *dot) {
  T s(0);
  for (int i = 0; i < n; ++i) {
    y[i] += mul(alpha, a[i]);
    s += mul(conj_if(a[i], conj), x[i]);
  }
  *dot = s;
}

}  // namespace

#define ORB_LEVEL2_GENERIC(T)                                                                  \
  void gemv_n(int m, int n, T alpha, const T *a, int lda, const T *x, T *y) {                  \
    gemv_n_impl(m, n, alpha, a, lda, x, y);                                                    \
  }                                                                                            \
  void gemv_t(int m, int n, T alpha, const T *a, int lda, const T *x, T *y, bool conj) {       \
    gemv_t_impl(m, n, alpha, a, lda, x, y, conj);                                              \
  }                                                                                            \
  void axpy(int n, T alpha, const T *x, T *y) {                                                \
    axpy_impl(n, alpha, x, y);                                                                 \
  }                                                                                            \
  void axpy2(int n, T a1, const T *x1, T a2, const T *x2, T *y) {                              \
    axpy2_impl(n, a1, x1, a2, x2, y);                                                          \
  }                                                                                            \
  void axpy_dot(int n, T alpha, const T *a, const T *x, T *y, bool conj, T *dot) {             \
    axpy_dot_impl(n, alpha, a, x, y, conj, dot);                                               \
  }                                                                                            \
  void gemv_nt(int m, int n, T alpha, const T *a, int lda, const T *x, T *y, const T *u, T *z, \
               bool conj) {                                                                    \
    gemv_n_impl(m, n, alpha, a, lda, x, y);                                                    \
    gemv_t_impl(m, n, alpha, a, lda, u, z, conj);                                              \
  }

ORB_LEVEL2_GENERIC(float)
ORB_LEVEL2_GENERIC(double)
ORB_LEVEL2_GENERIC(c8)
ORB_LEVEL2_GENERIC(c16)

#undef ORB_LEVEL2_GENERIC

}  // namespace orb::kernel::level2::generic
