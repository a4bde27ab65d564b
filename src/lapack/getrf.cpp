// The serial LU factorizations: the recursive core and the blocked loop
// around it.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "lapack/auxiliary.h"
#include "lapack/blas_calls.h"
#include "lapack/getrf.h"

namespace orb::lapack {
namespace {

// Panels this narrow are factored column by column.
constexpr int kLeaf = 8;

inline std::ptrdiff_t at(int i, int j, int ld) {
  return i + static_cast<std::ptrdiff_t>(j) * ld;
}

// x := x / pivot, through the reciprocal when it does not overflow.
template <class T>
void divide(int m, T *x, T pivot) {
  using R = real_t<T>;
  if (std::abs(pivot) >= safe_minimum<R>()) {
    blas::scal(m, T(1) / pivot, x, 1);
  } else {
    for (int i = 0; i < m; ++i) x[i] /= pivot;
  }
}

// Column by column (right-looking, rank-1 updates).
template <class T>
int getf2(int m, int n, T *a, int lda, int *ipiv) {
  int info = 0;
  const int mn = std::min(m, n);
  for (int j = 0; j < mn; ++j) {
    T *col = a + at(0, j, lda);
    const int p = j + blas::iamax(m - j, col + j, 1) - 1;
    ipiv[j] = p + 1;
    if (col[p] != T(0)) {
      if (p != j) blas::swap(n, a + j, lda, a + p, lda);
      divide(m - j - 1, col + j + 1, col[j]);
    } else if (info == 0) {
      info = j + 1;
    }
    if (j + 1 < mn)
      blas::level2::ger(m - j - 1, n - j - 1, T(-1), col + j + 1, 1, a + at(j, j + 1, lda), lda,
                        a + at(j + 1, j + 1, lda), lda, false);
  }
  return info;
}

}  // namespace

template <class T>
int getrf_core(int m, int n, T *a, int lda, int *ipiv, bool threaded) {
  const int mn = std::min(m, n);
  if (mn == 0) return 0;
  if (mn <= kLeaf || n <= kLeaf) return getf2(m, n, a, lda, ipiv);
  const int n1 = mn / 2, n2 = n - n1;
  T *a12 = a + at(0, n1, lda);
  int info = getrf_core(m, n1, a, lda, ipiv, threaded);
  laswp(n2, a12, lda, 1, n1, ipiv, 1);
  if (threaded) {
    trsm(kLowerUnit, n1, n2, T(1), a, lda, a12, lda);
    gemm(Op::kNone, Op::kNone, m - n1, n2, n1, T(-1), a + n1, lda, a12, lda, T(1), a12 + n1, lda);
  } else {
    trsm_here(kLowerUnit, n1, n2, T(1), a, lda, a12, lda);
    gemm_here(Op::kNone, Op::kNone, m - n1, n2, n1, T(-1), a + n1, lda, a12, lda, T(1), a12 + n1,
              lda);
  }
  const int info2 = getrf_core(m - n1, n2, a12 + n1, lda, ipiv + n1, threaded);
  if (info == 0 && info2 > 0) info = info2 + n1;
  for (int i = n1; i < mn; ++i) ipiv[i] += n1;
  laswp(n1, a, lda, n1 + 1, mn, ipiv, 1);
  return info;
}

template <class T>
int getrf_blocked(int m, int n, T *a, int lda, int *ipiv, int nb) {
  const int mn = std::min(m, n);
  if (nb <= 1 || nb >= mn) return getrf_core(m, n, a, lda, ipiv, true);
  int info = 0;
  for (int j = 0; j < mn; j += nb) {
    const int jb = std::min(nb, mn - j);
    T *ajj = a + at(j, j, lda);
    const int i = getrf_core(m - j, jb, ajj, lda, ipiv + j, true);
    if (info == 0 && i > 0) info = i + j;
    for (int k = j; k < j + jb; ++k) ipiv[k] += j;
    laswp(j, a, lda, j + 1, j + jb, ipiv, 1);
    const int rest = n - j - jb;
    if (rest > 0) {
      T *a12 = a + at(j, j + jb, lda);
      laswp(rest, a + at(0, j + jb, lda), lda, j + 1, j + jb, ipiv, 1);
      trsm(kLowerUnit, jb, rest, T(1), ajj, lda, a12, lda);
      gemm(Op::kNone, Op::kNone, m - j - jb, rest, jb, T(-1), ajj + jb, lda, a12, lda, T(1),
           a12 + jb, lda);
    }
  }
  return info;
}

#define ORB_GETRF(T)                                        \
  template int getrf_core(int, int, T *, int, int *, bool); \
  template int getrf_blocked(int, int, T *, int, int *, int);
ORB_GETRF(float)
ORB_GETRF(double)
ORB_GETRF(c8)
ORB_GETRF(c16)
#undef ORB_GETRF

}  // namespace orb::lapack
