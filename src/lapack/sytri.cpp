// The inverse from the Bunch-Kaufman factors, in the triangle they take:
// block column after block column, from the end of U (the start of L)
// inward, each block of D inverted, the block column of inv(A) formed with
// the symmetric (Hermitian) product of the part already inverted, and the
// factorization's interchange applied to rows and columns of that part.
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include "blas/level1/level1.h"
#include "blas/level2/level2.h"
#include "lapack/symmetric.h"

namespace orb::lapack {
namespace {

template <class T>
struct Packed {
  T *a;
  int lda;
  bool herm;
  T *col(int j) const { return a + static_cast<std::ptrdiff_t>(j) * lda; }
  T &at(int i, int j) const { return col(j)[i]; }
  T dot(int m, const T *x, const T *y) const {
    return herm ? blas::dotc(m, x, 1, y, 1) : blas::dotu(m, x, 1, y, 1);
  }
  // A diagonal element: real when Hermitian.
  T diag(T v) const { return herm ? real_part(v) : v; }
};

// inv(D) for the 2x2 block [d11 e; e' d22] (e' = e, or conj(e) when
// Hermitian) in place, divided by |e| (Hermitian and real data) or by e
// (complex symmetric) on the way, as published.
template <class T>
void invert_block(const Packed<T> &p, T &d11, T &d22, T &e) {
  if constexpr (is_complex_v<T>) {
    if (!p.herm) {
      const T t = e;
      const T ak = d11 / t, akp1 = d22 / t, akkp1 = e / t;
      const T d = t * (ak * akp1 - T(1));
      d11 = akp1 / d, d22 = ak / d, e = -akkp1 / d;
      return;
    }
  }
  using R = real_t<T>;
  const R t = std::abs(e);
  const R ak = std::real(d11) / t, akp1 = std::real(d22) / t;
  const T akkp1 = e / t;
  const R d = t * (ak * akp1 - R(1));
  d11 = T(akp1 / d), d22 = T(ak / d), e = -akkp1 / d;
}

// Column j's m-element part x := -A22 x with the inverted block A22 (order
// m at a22), work holding x's old values; returns work . x.
template <class T>
T update_column(const Packed<T> &p, bool upper, int m, const T *a22, T *x, T *work) {
  blas::copy(m, x, 1, work, 1);
  blas::level2::symv(upper, m, T(-1), a22, p.lda, work, 1, T(0), x, 1, p.herm);
  return p.dot(m, work, x);
}

}  // namespace

template <class T>
int sytri(Uplo uplo, bool herm, int n, T *a, int lda, const int *ipiv, T *work) {
  const bool upper = uplo == Uplo::kUpper;
  const Packed<T> p{a, lda, is_complex_v<T> && herm};
  // An exactly zero 1x1 block: the last in U's order, the first in L's.
  for (int i = 0; i < n; ++i) {
    const int k = upper ? n - 1 - i : i;
    if (ipiv[k] > 0 && p.at(k, k) == T(0)) return k + 1;
  }
  auto invert1 = [&](T &d) {
    if (p.herm)
      d = T(real_t<T>(1) / std::real(d));
    else
      d = T(1) / d;
  };
  if (upper) {
    for (int k = 0; k < n;) {
      const int step = ipiv[k] > 0 ? 1 : 2;
      if (step == 1) {
        invert1(p.at(k, k));
        if (k > 0) p.at(k, k) -= p.diag(update_column(p, true, k, a, p.col(k), work));
      } else {
        invert_block(p, p.at(k, k), p.at(k + 1, k + 1), p.at(k, k + 1));
        if (k > 0) {
          p.at(k, k) -= p.diag(update_column(p, true, k, a, p.col(k), work));
          p.at(k, k + 1) -= p.dot(k, p.col(k), p.col(k + 1));
          p.at(k + 1, k + 1) -= p.diag(update_column(p, true, k, a, p.col(k + 1), work));
        }
      }
      // Rows and columns k and kp of the leading k + step columns.
      const int kp = std::abs(ipiv[k]) - 1;
      if (kp != k) {
        blas::swap(kp, p.col(k), 1, p.col(kp), 1);
        for (int j = kp + 1; j < k; ++j) {
          const T t = conj_if(p.at(j, k), p.herm);
          p.at(j, k) = conj_if(p.at(kp, j), p.herm);
          p.at(kp, j) = t;
        }
        if (p.herm) p.at(kp, k) = conj(p.at(kp, k));
        std::swap(p.at(k, k), p.at(kp, kp));
        if (step == 2) std::swap(p.at(k, k + 1), p.at(kp, k + 1));
      }
      k += step;
    }
    return 0;
  }
  for (int k = n - 1; k >= 0;) {
    const int step = ipiv[k] > 0 ? 1 : 2;
    const int m = n - k - 1;
    T *a22 = m > 0 ? &p.at(k + 1, k + 1) : nullptr;
    if (step == 1) {
      invert1(p.at(k, k));
      if (m > 0) p.at(k, k) -= p.diag(update_column(p, false, m, a22, p.col(k) + k + 1, work));
    } else {
      invert_block(p, p.at(k - 1, k - 1), p.at(k, k), p.at(k, k - 1));
      if (m > 0) {
        p.at(k, k) -= p.diag(update_column(p, false, m, a22, p.col(k) + k + 1, work));
        p.at(k, k - 1) -= p.dot(m, p.col(k) + k + 1, p.col(k - 1) + k + 1);
        p.at(k - 1, k - 1) -= p.diag(update_column(p, false, m, a22, p.col(k - 1) + k + 1, work));
      }
    }
    // Rows and columns k and kp of the trailing n - k + step - 1 columns.
    const int kp = std::abs(ipiv[k]) - 1;
    if (kp != k) {
      if (kp < n - 1) blas::swap(n - kp - 1, p.col(k) + kp + 1, 1, p.col(kp) + kp + 1, 1);
      for (int j = k + 1; j < kp; ++j) {
        const T t = conj_if(p.at(j, k), p.herm);
        p.at(j, k) = conj_if(p.at(kp, j), p.herm);
        p.at(kp, j) = t;
      }
      if (p.herm) p.at(kp, k) = conj(p.at(kp, k));
      std::swap(p.at(k, k), p.at(kp, kp));
      if (step == 2) std::swap(p.at(k, k - 1), p.at(kp, k - 1));
    }
    k -= step;
  }
  return 0;
}

#define ORB_SYTRI(T) template int sytri(Uplo, bool, int, T *, int, const int *, T *);
ORB_SYTRI(float)
ORB_SYTRI(c8)
#undef ORB_SYTRI

}  // namespace orb::lapack
