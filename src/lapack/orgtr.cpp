// The orthogonal or unitary factor Q of the reduction to tridiagonal form
// (eigen.h: orgtr, ormtr). With the upper triangle the reduction's
// reflectors are those of a QL factorization of order n - 1 held one
// column to the right of it; with the lower, those of a QR held one row
// below: Q is formed, or applied, by the QL or QR routines on that part.
#include <algorithm>
#include <complex>
#include <cstddef>

#include "lapack/eigen.h"
#include "lapack/qr.h"

namespace orb::lapack {
namespace {

inline std::ptrdiff_t at(int i, int j, int ld) {
  return i + static_cast<std::ptrdiff_t>(j) * ld;
}

}  // namespace

template <class T>
std::int64_t orgtr_worksize(Uplo uplo, int n) {
  const int m = std::max(0, n - 1);
  const std::int64_t inner =
      uplo == Uplo::kUpper ? orgql_worksize<T>(m, m, m) : orgqr_worksize<T>(m, m, m);
  return std::max<std::int64_t>(1, inner);
}

template <class T>
void orgtr(Uplo uplo, int n, T *a, int lda, const T *tau, T *work, int lwork) {
  if (n <= 0) {
    work[0] = T(1);
    return;
  }
  if (uplo == Uplo::kUpper) {
    // The vectors move one column left; Q's last row and column are e_n.
    for (int j = 0; j < n - 1; ++j) {
      for (int i = 0; i < j; ++i) a[at(i, j, lda)] = a[at(i, j + 1, lda)];
      a[at(n - 1, j, lda)] = T(0);
    }
    for (int i = 0; i < n - 1; ++i) a[at(i, n - 1, lda)] = T(0);
    a[at(n - 1, n - 1, lda)] = T(1);
    orgql(n - 1, n - 1, n - 1, a, lda, tau, work, lwork);
  } else {
    // The vectors move one column right; Q's first row and column are e_1.
    for (int j = n - 1; j >= 1; --j) {
      a[at(0, j, lda)] = T(0);
      for (int i = j + 1; i < n; ++i) a[at(i, j, lda)] = a[at(i, j - 1, lda)];
    }
    a[0] = T(1);
    for (int i = 1; i < n; ++i) a[at(i, 0, lda)] = T(0);
    if (n > 1)
      orgqr(n - 1, n - 1, n - 1, a + at(1, 1, lda), lda, tau, work, lwork);
    else
      work[0] = T(1);
  }
  work[0] = T(static_cast<real_t<T>>(orgtr_worksize<T>(uplo, n)));
}

template <class T>
std::int64_t ormtr_worksize(Side side, Uplo uplo, int m, int n) {
  const bool left = side == Side::kLeft;
  const int nq = left ? m : n;
  const int mi = left ? m - 1 : m, ni = left ? n : n - 1;
  if (mi <= 0 || ni <= 0 || nq <= 1) return 1;
  const char *routine =
      uplo == Uplo::kUpper ? orth_name<T>("ORMQL", "UNMQL") : orth_name<T>("ORMQR", "UNMQR");
  return std::max<std::int64_t>(1, orm_worksize<T>(routine, side, mi, ni, nq - 1));
}

template <class T>
void ormtr(Side side, Uplo uplo, Op op, int m, int n, const T *a, int lda, const T *tau, T *c,
           int ldc, T *work, int lwork) {
  const bool left = side == Side::kLeft;
  const int nq = left ? m : n;
  if (m <= 0 || n <= 0 || nq <= 1) {
    work[0] = T(1);
    return;
  }
  const int mi = left ? m - 1 : m, ni = left ? n : n - 1;
  if (uplo == Uplo::kUpper) {
    // Q acts on C's first nq - 1 rows (columns).
    ormql(side, op, mi, ni, nq - 1, a + at(0, 1, lda), lda, tau, c, ldc, work, lwork);
  } else {
    // Q acts on C's last nq - 1 rows (columns).
    T *c1 = left ? c + at(1, 0, ldc) : c + at(0, 1, ldc);
    ormqr(side, op, mi, ni, nq - 1, a + at(1, 0, lda), lda, tau, c1, ldc, work, lwork);
  }
  work[0] = T(static_cast<real_t<T>>(ormtr_worksize<T>(side, uplo, m, n)));
}

#define ORB_ORGTR(T)                                                \
  template std::int64_t orgtr_worksize<T>(Uplo, int);               \
  template void orgtr<T>(Uplo, int, T *, int, const T *, T *, int); \
  template std::int64_t ormtr_worksize<T>(Side, Uplo, int, int);    \
  template void ormtr<T>(Side, Uplo, Op, int, int, const T *, int, const T *, T *, int, T *, int);
ORB_ORGTR(float)
ORB_ORGTR(std::complex<float>)
#undef ORB_ORGTR

}  // namespace orb::lapack
