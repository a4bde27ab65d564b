// The explicit orthogonal or unitary factor of a QL factorization
// (xORGQL/xUNGQL, with xORG2L/xUNG2L): the reflectors sit above the last
// diagonal, in the last k columns, and build Q from the right. The first
// block (or all, when blocks do not pay) one reflector at a time, then the
// later blocks, each block reflector applied to the columns already formed
// on its left.
#include <algorithm>
#include <complex>
#include <cstddef>

#include "blas/level1/level1.h"
#include "lapack/householder.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/qr.h"

namespace orb::lapack {
namespace {

inline std::ptrdiff_t at(int i, int j, int ld) {
  return i + static_cast<std::ptrdiff_t>(j) * ld;
}

}  // namespace

template <class T>
void org2l(int m, int n, int k, T *a, int lda, const T *tau, T *work) {
  if (n <= 0) return;
  // Columns 0 .. n-k-1 start as the last n columns of the identity's.
  for (int j = 0; j < n - k; ++j) {
    for (int l = 0; l < m; ++l) a[at(l, j, lda)] = T(0);
    a[at(m - n + j, j, lda)] = T(1);
  }
  for (int i = 0; i < k; ++i) {
    const int col = n - k + i;        // the reflector's column
    const int len = m - n + col + 1;  // its length, ending at its unit entry
    T *v = a + at(0, col, lda);
    v[len - 1] = T(1);
    larf(Side::kLeft, len, col, v, 1, tau[i], a, lda, work);
    blas::scal(len - 1, -tau[i], v, 1);
    v[len - 1] = T(1) - tau[i];
    for (int l = len; l < m; ++l) a[at(l, col, lda)] = T(0);
  }
}

template <class T>
std::int64_t orgql_worksize(int m, int n, int k) {
  const int nb = oracle(kBlockSize, name<T>(orth_name<T>("ORGQL", "UNGQL")), m, n, k);
  return std::max<std::int64_t>(1, static_cast<std::int64_t>(std::max(1, n)) * nb);
}

template <class T>
void orgql(int m, int n, int k, T *a, int lda, const T *tau, T *work, int lwork) {
  if (n <= 0) {
    work[0] = T(1);
    return;
  }
  const Name6 nm = name<T>(orth_name<T>("ORGQL", "UNGQL"));
  int nb = oracle(kBlockSize, nm, m, n, k), nbmin = 2, nx = 0;
  std::int64_t iws = n;
  if (nb > 1 && nb < k) {
    nx = std::max(0, oracle(kCrossover, nm, m, n, k));
    if (nx < k) {
      iws = static_cast<std::int64_t>(n) * nb;
      if (lwork < iws) {
        nb = lwork / n;
        nbmin = std::max(2, oracle(kMinBlockSize, nm, m, n, k));
      }
    }
  }
  const int ldwork = n;
  int kk = 0;
  if (nb >= nbmin && nb < k && nx < k) {
    // The blocks cover the last kk reflectors; the rows they end above are
    // zero in the columns the unblocked code forms.
    kk = std::min(k, ((k - nx + nb - 1) / nb) * nb);
    for (int j = 0; j < n - kk; ++j)
      for (int i = m - kk; i < m; ++i) a[at(i, j, lda)] = T(0);
  }
  org2l(m - kk, n - kk, k - kk, a, lda, tau, work);
  for (int i = k - kk; kk > 0 && i < k; i += nb) {
    const int ib = std::min(nb, k - i);
    const int col = n - k + i;        // the block's first column
    const int rows = m - k + i + ib;  // the block's reflectors end above this row
    if (col > 0) {
      larft(Direct::kBackward, Storev::kColumns, rows, ib, a + at(0, col, lda), lda, tau + i, work,
            ldwork);
      larfb(Side::kLeft, Op::kNone, Direct::kBackward, Storev::kColumns, rows, col, ib,
            a + at(0, col, lda), lda, work, ldwork, a, lda, work + ib, ldwork);
    }
    org2l(rows, ib, ib, a + at(0, col, lda), lda, tau + i, work);
    for (int j = col; j < col + ib; ++j)
      for (int l = rows; l < m; ++l) a[at(l, j, lda)] = T(0);
  }
  work[0] = T(static_cast<real_t<T>>(iws));
}

#define ORB_ORGQL(T)                                               \
  template void org2l<T>(int, int, int, T *, int, const T *, T *); \
  template std::int64_t orgql_worksize<T>(int, int, int);          \
  template void orgql<T>(int, int, int, T *, int, const T *, T *, int);
ORB_ORGQL(float)
ORB_ORGQL(double)
ORB_ORGQL(std::complex<float>)
ORB_ORGQL(std::complex<double>)
#undef ORB_ORGQL

}  // namespace orb::lapack
