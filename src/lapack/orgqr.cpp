// The explicit orthogonal or unitary factor of a QR (xORGQR/xUNGQR) or an
// LQ (xORGLQ/xUNGLQ) factorization: the last block (or all, when blocks do
// not pay) one reflector at a time, then the blocks before it backwards,
// each block reflector applied to the columns (rows) already formed.
#include <algorithm>
#include <complex>
#include <cstddef>

#include "lapack/householder.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/qr.h"

namespace orb::lapack {
namespace {

// The published block choice: nb, or a narrower one for a short WORK (ld
// rows of it), or 0 for the unblocked code. iws receives the workspace used.
struct Blocking {
  int nb, nx;
  std::int64_t iws;
  bool blocked;
};
template <class T>
Blocking choose(const Name6 &nm, int m, int n, int k, int ld, int lwork) {
  int nb = oracle(kBlockSize, nm, m, n, k), nbmin = 2, nx = 0;
  std::int64_t iws = std::max(1, ld);
  if (nb > 1 && nb < k) {
    nx = std::max(0, oracle(kCrossover, nm, m, n, k));
    if (nx < k) {
      iws = static_cast<std::int64_t>(ld) * nb;
      if (lwork < iws) {
        nb = lwork / std::max(1, ld);
        nbmin = std::max(2, oracle(kMinBlockSize, nm, m, n, k));
      }
    }
  }
  return {nb, nx, iws, nb >= nbmin && nb < k && nx < k};
}

}  // namespace

template <class T>
std::int64_t orgqr_worksize(int m, int n, int k) {
  const int nb = oracle(kBlockSize, name<T>(orth_name<T>("ORGQR", "UNGQR")), m, n, k);
  return std::max<std::int64_t>(1, static_cast<std::int64_t>(std::max(1, n)) * nb);
}

template <class T>
void orgqr(int m, int n, int k, T *a, int lda, const T *tau, T *work, int lwork) {
  if (n <= 0) {
    work[0] = T(1);
    return;
  }
  const Blocking b = choose<T>(name<T>(orth_name<T>("ORGQR", "UNGQR")), m, n, k, n, lwork);
  const auto el = [&](int i, int j) { return a + i + static_cast<std::ptrdiff_t>(j) * lda; };
  int ki = 0, kk = 0;
  if (b.blocked) {
    // The last block starts at ki; columns kk .. n-1 of the first kk rows are zero.
    ki = ((k - b.nx - 1) / b.nb) * b.nb;
    kk = std::min(k, ki + b.nb);
    for (int j = kk; j < n; ++j)
      for (int i = 0; i < kk; ++i) *el(i, j) = T(0);
  }
  if (kk < n) org2r(m - kk, n - kk, k - kk, el(kk, kk), lda, tau + kk, work);
  if (kk > 0) {
    const int ldwork = n;
    for (int i = ki; i >= 0; i -= b.nb) {
      const int ib = std::min(b.nb, k - i);
      if (i + ib < n) {
        larft(Direct::kForward, Storev::kColumns, m - i, ib, el(i, i), lda, tau + i, work, ldwork);
        larfb(Side::kLeft, Op::kNone, Direct::kForward, Storev::kColumns, m - i, n - i - ib, ib,
              el(i, i), lda, work, ldwork, el(i, i + ib), lda, work + ib, ldwork);
      }
      org2r(m - i, ib, ib, el(i, i), lda, tau + i, work);
      for (int j = i; j < i + ib; ++j)
        for (int l = 0; l < i; ++l) *el(l, j) = T(0);
    }
  }
  work[0] = T(static_cast<real_t<T>>(b.iws));
}

template <class T>
std::int64_t orglq_worksize(int m, int n, int k) {
  const int nb = oracle(kBlockSize, name<T>(orth_name<T>("ORGLQ", "UNGLQ")), m, n, k);
  return std::max<std::int64_t>(1, static_cast<std::int64_t>(std::max(1, m)) * nb);
}

template <class T>
void orglq(int m, int n, int k, T *a, int lda, const T *tau, T *work, int lwork) {
  if (m <= 0) {
    work[0] = T(1);
    return;
  }
  const Blocking b = choose<T>(name<T>(orth_name<T>("ORGLQ", "UNGLQ")), m, n, k, m, lwork);
  const auto el = [&](int i, int j) { return a + i + static_cast<std::ptrdiff_t>(j) * lda; };
  int ki = 0, kk = 0;
  if (b.blocked) {
    ki = ((k - b.nx - 1) / b.nb) * b.nb;
    kk = std::min(k, ki + b.nb);
    for (int j = 0; j < kk; ++j)
      for (int i = kk; i < m; ++i) *el(i, j) = T(0);
  }
  if (kk < m) orgl2(m - kk, n - kk, k - kk, el(kk, kk), lda, tau + kk, work);
  if (kk > 0) {
    const int ldwork = m;
    for (int i = ki; i >= 0; i -= b.nb) {
      const int ib = std::min(b.nb, k - i);
      if (i + ib < m) {
        larft(Direct::kForward, Storev::kRows, n - i, ib, el(i, i), lda, tau + i, work, ldwork);
        larfb(Side::kRight, Op::kConjTrans, Direct::kForward, Storev::kRows, m - i - ib, n - i, ib,
              el(i, i), lda, work, ldwork, el(i + ib, i), lda, work + ib, ldwork);
      }
      orgl2(ib, n - i, ib, el(i, i), lda, tau + i, work);
      for (int j = 0; j < i; ++j)
        for (int l = i; l < i + ib; ++l) *el(l, j) = T(0);
    }
  }
  work[0] = T(static_cast<real_t<T>>(b.iws));
}

#define ORB_ORGQR(T)                                                    \
  template std::int64_t orgqr_worksize<T>(int, int, int);               \
  template void orgqr<T>(int, int, int, T *, int, const T *, T *, int); \
  template std::int64_t orglq_worksize<T>(int, int, int);               \
  template void orglq<T>(int, int, int, T *, int, const T *, T *, int);
ORB_ORGQR(float)
ORB_ORGQR(double)
ORB_ORGQR(std::complex<float>)
ORB_ORGQR(std::complex<double>)
#undef ORB_ORGQR

}  // namespace orb::lapack
