// The reduction to bidiagonal form: unblocked (gebd2) and blocked (gebrd),
// whose panels come from labrd and whose trailing updates are two products
// of the threaded gemm.
#include <algorithm>
#include <cstddef>

#include "lapack/auxiliary.h"
#include "lapack/bidiag.h"
#include "lapack/blas_calls.h"
#include "lapack/householder.h"
#include "lapack/names.h"
#include "lapack/oracle.h"

namespace orb::lapack {
namespace {

template <class T>
T *at(T *a, int lda, int i, int j) {
  return a + i + static_cast<std::ptrdiff_t>(j) * lda;
}

}  // namespace

template <class T>
void gebd2(int m, int n, T *a, int lda, real_t<T> *d, real_t<T> *e, T *tauq, T *taup, T *work) {
  auto A = [&](int i, int j) { return at(a, lda, i, j); };
  if (m >= n) {
    for (int i = 0; i < n; ++i) {
      T alpha = *A(i, i);
      larfg(m - i, alpha, A(std::min(i + 1, m - 1), i), 1, tauq[i]);
      d[i] = std::real(alpha);
      *A(i, i) = T(1);
      if (i < n - 1)
        larf(Side::kLeft, m - i, n - i - 1, A(i, i), 1, conj(tauq[i]), A(i, i + 1), lda, work);
      *A(i, i) = T(d[i]);
      if (i < n - 1) {
        lacgv(n - i - 1, A(i, i + 1), lda);
        alpha = *A(i, i + 1);
        larfg(n - i - 1, alpha, A(i, std::min(i + 2, n - 1)), lda, taup[i]);
        e[i] = std::real(alpha);
        *A(i, i + 1) = T(1);
        larf(Side::kRight, m - i - 1, n - i - 1, A(i, i + 1), lda, taup[i], A(i + 1, i + 1), lda,
             work);
        lacgv(n - i - 1, A(i, i + 1), lda);
        *A(i, i + 1) = T(e[i]);
      } else {
        taup[i] = T(0);
      }
    }
  } else {
    for (int i = 0; i < m; ++i) {
      lacgv(n - i, A(i, i), lda);
      T alpha = *A(i, i);
      larfg(n - i, alpha, A(i, std::min(i + 1, n - 1)), lda, taup[i]);
      d[i] = std::real(alpha);
      *A(i, i) = T(1);
      if (i < m - 1)
        larf(Side::kRight, m - i - 1, n - i, A(i, i), lda, taup[i], A(i + 1, i), lda, work);
      lacgv(n - i, A(i, i), lda);
      *A(i, i) = T(d[i]);
      if (i < m - 1) {
        alpha = *A(i + 1, i);
        larfg(m - i - 1, alpha, A(std::min(i + 2, m - 1), i), 1, tauq[i]);
        e[i] = std::real(alpha);
        *A(i + 1, i) = T(1);
        larf(Side::kLeft, m - i - 1, n - i - 1, A(i + 1, i), 1, conj(tauq[i]), A(i + 1, i + 1), lda,
             work);
        *A(i + 1, i) = T(e[i]);
      } else {
        tauq[i] = T(0);
      }
    }
  }
}

template <class T>
int gebrd_worksize(int m, int n) {
  if (std::min(m, n) == 0) return 1;
  const int nb = std::max(1, oracle(kBlockSize, name<T>("GEBRD"), m, n));
  return (m + n) * nb;
}

template <class T>
void gebrd(int m, int n, T *a, int lda, real_t<T> *d, real_t<T> *e, T *tauq, T *taup, T *work,
           int lwork) {
  const int minmn = std::min(m, n);
  if (minmn == 0) return;
  const auto nm = name<T>("GEBRD");
  int nb = std::max(1, oracle(kBlockSize, nm, m, n));
  int nx = minmn;
  if (nb > 1 && nb < minmn) {
    nx = std::max(nb, oracle(kCrossover, nm, m, n));
    if (nx < minmn && lwork < (m + n) * nb) {
      const int nbmin = oracle(kMinBlockSize, nm, m, n);
      if (lwork >= (m + n) * nbmin) {
        nb = lwork / (m + n);
      } else {
        nb = 1;
        nx = minmn;
      }
    }
  }
  const int ldx = m, ldy = n;
  T *x = work, *y = work + static_cast<std::ptrdiff_t>(ldx) * nb;
  auto A = [&](int i, int j) { return at(a, lda, i, j); };
  int i = 0;
  for (; i < minmn - nx; i += nb) {
    labrd(m - i, n - i, nb, A(i, i), lda, d + i, e + i, tauq + i, taup + i, x, ldx, y, ldy);
    // A := A - V Y^H - X U^H on the trailing matrix.
    gemm(Op::kNone, Op::kConjTrans, m - i - nb, n - i - nb, nb, T(-1), A(i + nb, i), lda, y + nb,
         ldy, T(1), A(i + nb, i + nb), lda);
    gemm(Op::kNone, Op::kNone, m - i - nb, n - i - nb, nb, T(-1), x + nb, ldx, A(i, i + nb), lda,
         T(1), A(i + nb, i + nb), lda);
    for (int j = i; j < i + nb; ++j) {
      *A(j, j) = T(d[j]);
      if (m >= n)
        *A(j, j + 1) = T(e[j]);
      else
        *A(j + 1, j) = T(e[j]);
    }
  }
  gebd2(m - i, n - i, A(i, i), lda, d + i, e + i, tauq + i, taup + i, work);
}

#define ORB_GEBRD(T)                                                                   \
  template void gebd2<T>(int, int, T *, int, real_t<T> *, real_t<T> *, T *, T *, T *); \
  template int gebrd_worksize<T>(int, int);                                            \
  template void gebrd<T>(int, int, T *, int, real_t<T> *, real_t<T> *, T *, T *, T *, int);
ORB_GEBRD(float)
ORB_GEBRD(double)
ORB_GEBRD(c8)
ORB_GEBRD(c16)

}  // namespace orb::lapack
