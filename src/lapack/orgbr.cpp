// The orthogonal factors of the bidiagonal reduction: generated (orgbr,
// the published xORGBR/xUNGBR) or applied (ormbr, xORMBR/xUNMBR), through
// the QR and LQ family.
#include <algorithm>
#include <cstddef>

#include "lapack/bidiag.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/qr.h"

namespace orb::lapack {
namespace {

template <class T>
T *at(T *a, int lda, int i, int j) {
  return a + i + static_cast<std::ptrdiff_t>(j) * lda;
}

}  // namespace

template <class T>
int orgbr_worksize(Vect vect, int m, int n, int k) {
  const int mn = std::min(m, n);
  int w = 1;
  if (vect == Vect::kQ) {
    if (m >= k)
      w = static_cast<int>(orgqr_worksize<T>(m, n, k));
    else if (m > 1)
      w = static_cast<int>(orgqr_worksize<T>(m - 1, m - 1, m - 1));
  } else {
    if (k < n)
      w = static_cast<int>(orglq_worksize<T>(m, n, k));
    else if (n > 1)
      w = static_cast<int>(orglq_worksize<T>(n - 1, n - 1, n - 1));
  }
  return std::max({w, mn, 1});
}

template <class T>
void orgbr(Vect vect, int m, int n, int k, T *a, int lda, const T *tau, T *work, int lwork) {
  if (m == 0 || n == 0) return;
  auto A = [&](int i, int j) -> T & { return *at(a, lda, i, j); };
  if (vect == Vect::kQ) {
    if (m >= k) {
      orgqr(m, n, k, a, lda, tau, work, lwork);
      return;
    }
    // m < k (then m = n): the reflectors move one column right, and Q's
    // first row and column are the unit matrix's.
    for (int j = m - 1; j >= 1; --j) {
      A(0, j) = T(0);
      for (int i = j + 1; i < m; ++i) A(i, j) = A(i, j - 1);
    }
    A(0, 0) = T(1);
    for (int i = 1; i < m; ++i) A(i, 0) = T(0);
    if (m > 1) orgqr(m - 1, m - 1, m - 1, &A(1, 1), lda, tau, work, lwork);
  } else {
    if (k < n) {
      orglq(m, n, k, a, lda, tau, work, lwork);
      return;
    }
    // k >= n (then m = n): the reflectors move one row down.
    A(0, 0) = T(1);
    for (int i = 1; i < n; ++i) A(i, 0) = T(0);
    for (int j = 1; j < n; ++j) {
      for (int i = j - 1; i >= 1; --i) A(i, j) = A(i - 1, j);
      A(0, j) = T(0);
    }
    if (n > 1) orglq(n - 1, n - 1, n - 1, &A(1, 1), lda, tau, work, lwork);
  }
}

template <class T>
int ormbr_worksize(Vect vect, Side side, Op trans, int m, int n, int k) {
  (void)trans;
  if (m <= 0 || n <= 0) return 1;
  const bool left = side == Side::kLeft;
  const int nq = left ? m : n;
  // The product ormbr makes: all of C, or C less its first row (column).
  const bool whole = vect == Vect::kQ ? nq >= k : nq > k;
  const int mi = whole || !left ? m : m - 1, ni = whole || left ? n : n - 1;
  const int kk = whole ? k : nq - 1;
  const char *routine =
      vect == Vect::kQ ? orth_name<T>("ORMQR", "UNMQR") : orth_name<T>("ORMLQ", "UNMLQ");
  return std::max(1, static_cast<int>(orm_worksize<T>(routine, side, mi, ni, kk)));
}

template <class T>
void ormbr(Vect vect, Side side, Op trans, int m, int n, int k, const T *a, int lda, const T *tau,
           T *c, int ldc, T *work, int lwork) {
  if (m == 0 || n == 0) return;
  const bool left = side == Side::kLeft;
  const int nq = left ? m : n;
  const int mi = left ? m - 1 : m, ni = left ? n : n - 1;
  T *c1 = left ? c + 1 : c + ldc;
  if (vect == Vect::kQ) {
    if (nq >= k)
      ormqr(side, trans, m, n, k, a, lda, tau, c, ldc, work, lwork);
    else if (nq > 1)
      ormqr(side, trans, mi, ni, nq - 1, a + 1, lda, tau, c1, ldc, work, lwork);
  } else {
    const Op transt = trans == Op::kNone ? Op::kConjTrans : Op::kNone;
    if (nq > k)
      ormlq(side, transt, m, n, k, a, lda, tau, c, ldc, work, lwork);
    else if (nq > 1)
      ormlq(side, transt, mi, ni, nq - 1, a + lda, lda, tau, c1, ldc, work, lwork);
  }
}

#define ORB_ORGBR(T)                                                                              \
  template int orgbr_worksize<T>(Vect, int, int, int);                                            \
  template void orgbr<T>(Vect, int, int, int, T *, int, const T *, T *, int);                     \
  template int ormbr_worksize<T>(Vect, Side, Op, int, int, int);                                  \
  template void ormbr<T>(Vect, Side, Op, int, int, int, const T *, int, const T *, T *, int, T *, \
                         int);
ORB_ORGBR(float)
ORB_ORGBR(double)
ORB_ORGBR(c8)
ORB_ORGBR(c16)

}  // namespace orb::lapack
