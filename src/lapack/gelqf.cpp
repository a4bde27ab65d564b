// The blocked LQ factorization (xGELQF): panels of rows factored one row at a
// time, each panel's block reflector applied to the rows below it.
#include <algorithm>
#include <complex>
#include <cstddef>

#include "lapack/householder.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/qr.h"

namespace orb::lapack {

template <class T>
std::int64_t gelqf_worksize(int m, int n) {
  const int nb = oracle(kBlockSize, name<T>("GELQF"), m, n);
  return std::max<std::int64_t>(1, static_cast<std::int64_t>(m) * nb);
}

template <class T>
void gelqf(int m, int n, T *a, int lda, T *tau, T *work, int lwork) {
  const Name6 nm = name<T>("GELQF");
  const int k = std::min(m, n);
  int nb = oracle(kBlockSize, nm, m, n);
  if (k == 0) {
    work[0] = T(1);
    return;
  }
  int nbmin = 2, nx = 0;
  std::int64_t iws = m;
  if (nb > 1 && nb < k) {
    nx = std::max(0, oracle(kCrossover, nm, m, n));
    if (nx < k) {
      iws = static_cast<std::int64_t>(m) * nb;
      if (lwork < iws) {
        nb = lwork / m;
        nbmin = std::max(2, oracle(kMinBlockSize, nm, m, n));
      }
    }
  }
  const auto el = [&](int i, int j) { return a + i + static_cast<std::ptrdiff_t>(j) * lda; };
  int i = 0;
  if (nb >= nbmin && nb < k && nx < k) {
    const int ldwork = m;
    for (; i < k - nx; i += nb) {
      const int ib = std::min(k - i, nb);
      gelq2(ib, n - i, el(i, i), lda, tau + i, work);
      if (i + ib < m) {
        larft(Direct::kForward, Storev::kRows, n - i, ib, el(i, i), lda, tau + i, work, ldwork);
        larfb(Side::kRight, Op::kNone, Direct::kForward, Storev::kRows, m - i - ib, n - i, ib,
              el(i, i), lda, work, ldwork, el(i + ib, i), lda, work + ib, ldwork);
      }
    }
  }
  if (i < k) gelq2(m - i, n - i, el(i, i), lda, tau + i, work);
  work[0] = T(static_cast<real_t<T>>(iws));
}

#define ORB_GELQF(T)                                 \
  template std::int64_t gelqf_worksize<T>(int, int); \
  template void gelqf<T>(int, int, T *, int, T *, T *, int);
ORB_GELQF(float)
ORB_GELQF(double)
ORB_GELQF(std::complex<float>)
ORB_GELQF(std::complex<double>)
#undef ORB_GELQF

}  // namespace orb::lapack
