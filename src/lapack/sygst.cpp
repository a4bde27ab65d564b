// The symmetric-definite generalized problem reduced to standard form
// (eigen.h: sygst) with B's Cholesky factor: inv(U^H) A inv(U) or
// inv(L) A inv(L^H) (itype 1), U A U^H or L^H A L (itypes 2 and 3). The
// blocked reduction passes down the diagonal a block at a time: the
// diagonal block by the unblocked code, the block row (column) beside it
// by triangular solves or multiplies and half a symmetric product on
// either side of the rank-2k update of the rest, as the published xSYGST
// orders them. The level-3 steps run on the library's threaded BLAS.
#include <complex>
#include <cstddef>

#include "blas/level3/level3.h"
#include "common/scalar.h"
#include "lapack/blas_calls.h"
#include "lapack/eigen.h"
#include "lapack/names.h"
#include "lapack/oracle.h"

namespace orb::lapack {
namespace {

inline std::ptrdiff_t at(int i, int j, int ld) {
  return i + static_cast<std::ptrdiff_t>(j) * ld;
}

// The unblocked reduction (xSYGS2, xHEGS2), one row or column of A a step.
// The vector being transformed is x: row k of the upper triangle (as its
// conjugate) or column k of the lower one; y is the same part of B. The
// symmetric update A22 -/+= x y^H + y x^H leaves a real diagonal.
template <class T>
void sygs2(int itype, bool upper, int n, T *a, int lda, const T *b, int ldb) {
  using R = real_t<T>;
  // x_i and y_i of step k: entry i of row k (upper, conjugated) or of
  // column k (lower), i counted along the vector.
  for (int k = 0; k < n; ++k) {
    const R akk = std::real(a[at(k, k, lda)]);
    const R bkk = std::real(b[at(k, k, ldb)]);
    if (itype == 1) {
      // The trailing part: x := inv(B22^H) (x / bkk - akk/2 y ...) as published.
      const int len = n - k - 1;
      auto x = [&](int i) -> T & {
        return upper ? a[at(k, k + 1 + i, lda)] : a[at(k + 1 + i, k, lda)];
      };
      auto y = [&](int i) {
        return upper ? conj(b[at(k, k + 1 + i, ldb)]) : b[at(k + 1 + i, k, ldb)];
      };
      // b22(i, j) of op(B22) with op making it lower triangular.
      auto b22 = [&](int i, int j) {
        return upper ? conj(b[at(k + 1 + j, k + 1 + i, ldb)]) : b[at(k + 1 + i, k + 1 + j, ldb)];
      };
      auto a22 = [&](int i, int j) -> T & {
        return upper ? a[at(k + 1 + j, k + 1 + i, lda)] : a[at(k + 1 + i, k + 1 + j, lda)];
      };
      const R akk_new = akk / (bkk * bkk);
      a[at(k, k, lda)] = T(akk_new);
      if (len == 0) continue;
      const T ct = T(R(-0.5) * akk_new);
      if (upper)
        for (int i = 0; i < len; ++i) x(i) = conj(x(i));
      for (int i = 0; i < len; ++i) x(i) = x(i) * (R(1) / bkk) + ct * y(i);
      // A22 -= x y^H + y x^H on the stored triangle (a22(i, j), i >= j, is
      // the lower-triangular view: for upper storage the conjugate of the
      // stored entry, so the update is conjugated there).
      for (int j = 0; j < len; ++j) {
        const T xj = conj(x(j)), yj = conj(y(j));
        for (int i = j; i < len; ++i) {
          const T d = x(i) * yj + y(i) * xj;
          if (upper)
            a22(i, j) -= conj(d);
          else
            a22(i, j) -= d;
        }
        if constexpr (is_complex_v<T>) a22(j, j) = T(std::real(a22(j, j)));
      }
      for (int i = 0; i < len; ++i) x(i) += ct * y(i);
      // Forward substitution with the lower-triangular op(B22).
      for (int i = 0; i < len; ++i) {
        T s = x(i);
        for (int l = 0; l < i; ++l) s -= b22(i, l) * x(l);
        x(i) = s / b22(i, i);
      }
      if (upper)
        for (int i = 0; i < len; ++i) x(i) = conj(x(i));
    } else {
      // The leading part: x := op(B11) x, then the update of A11, then bkk x.
      const int len = k;
      auto x = [&](int i) -> T & { return upper ? a[at(i, k, lda)] : a[at(k, i, lda)]; };
      auto y = [&](int i) { return upper ? b[at(i, k, ldb)] : conj(b[at(k, i, ldb)]); };
      // b11(i, j) of op(B11) with op making it upper triangular.
      auto b11 = [&](int i, int j) { return upper ? b[at(i, j, ldb)] : conj(b[at(j, i, ldb)]); };
      auto a11 = [&](int i, int j) -> T & { return upper ? a[at(i, j, lda)] : a[at(j, i, lda)]; };
      if (!upper)
        for (int i = 0; i < len; ++i) x(i) = conj(x(i));
      for (int i = 0; i < len; ++i) {
        T s = T(0);
        for (int l = i; l < len; ++l) s += b11(i, l) * x(l);
        x(i) = s;
      }
      const T ct = T(R(0.5) * akk);
      for (int i = 0; i < len; ++i) x(i) += ct * y(i);
      // A11 += x y^H + y x^H on the stored triangle (a11(i, j), i <= j, the
      // upper view: for lower storage the conjugate of the stored entry).
      for (int j = 0; j < len; ++j) {
        const T xj = conj(x(j)), yj = conj(y(j));
        for (int i = 0; i <= j; ++i) {
          const T d = x(i) * yj + y(i) * xj;
          if (upper)
            a11(i, j) += d;
          else
            a11(i, j) += conj(d);
        }
        if constexpr (is_complex_v<T>) a11(j, j) = T(std::real(a11(j, j)));
      }
      for (int i = 0; i < len; ++i) x(i) = (x(i) + ct * y(i)) * bkk;
      if (!upper)
        for (int i = 0; i < len; ++i) x(i) = conj(x(i));
      a[at(k, k, lda)] = T(akk * bkk * bkk);
    }
  }
}

}  // namespace

template <class T>
void sygst(int itype, Uplo uplo, int n, T *a, int lda, const T *b, int ldb) {
  using R = real_t<T>;
  if (n <= 0) return;
  constexpr bool herm = is_complex_v<T>;
  const bool upper = uplo == Uplo::kUpper;
  const int nb = oracle(kBlockSize, name<T>(herm ? "HEGST" : "SYGST"), n);
  if (nb <= 1 || nb >= n) {
    sygs2(itype, upper, n, a, lda, b, ldb);
    return;
  }
  const auto A = [&](int i, int j) { return a + at(i, j, lda); };
  const auto B = [&](int i, int j) { return b + at(i, j, ldb); };
  const T one = T(1), half = T(R(0.5));
  const Op adj = Op::kConjTrans;
  for (int k = 0; k < n; k += nb) {
    const int kb = std::min(n - k, nb);
    const int rest = n - k - kb;
    if (itype == 1) {
      sygs2(itype, upper, kb, A(k, k), lda, B(k, k), ldb);
      if (rest == 0) continue;
      if (upper) {
        // A12 := inv(B11^H) A12, then A22 := A22 - A12^H B12 - B12^H A12 with
        // half of A11 B12 on either side, then A12 := A12 inv(B22).
        trsm(Triangular{true, true, adj, false}, kb, rest, one, B(k, k), ldb, A(k, k + kb), lda);
        blas::symm_omp(true, true, herm, kb, rest, -half, A(k, k), lda, B(k, k + kb), ldb, one,
                       A(k, k + kb), lda);
        blas::syr2k_omp(true, adj, herm, rest, kb, T(-1), A(k, k + kb), lda, B(k, k + kb), ldb, one,
                        A(k + kb, k + kb), lda);
        blas::symm_omp(true, true, herm, kb, rest, -half, A(k, k), lda, B(k, k + kb), ldb, one,
                       A(k, k + kb), lda);
        trsm(Triangular{false, true, Op::kNone, false}, kb, rest, one, B(k + kb, k + kb), ldb,
             A(k, k + kb), lda);
      } else {
        trsm(Triangular{false, false, adj, false}, rest, kb, one, B(k, k), ldb, A(k + kb, k), lda);
        blas::symm_omp(false, false, herm, rest, kb, -half, A(k, k), lda, B(k + kb, k), ldb, one,
                       A(k + kb, k), lda);
        blas::syr2k_omp(false, Op::kNone, herm, rest, kb, T(-1), A(k + kb, k), lda, B(k + kb, k),
                        ldb, one, A(k + kb, k + kb), lda);
        blas::symm_omp(false, false, herm, rest, kb, -half, A(k, k), lda, B(k + kb, k), ldb, one,
                       A(k + kb, k), lda);
        trsm(Triangular{true, false, Op::kNone, false}, rest, kb, one, B(k + kb, k + kb), ldb,
             A(k + kb, k), lda);
      }
    } else {
      // The leading k rows and columns are done; block k joins them.
      if (upper) {
        trmm(Triangular{true, true, Op::kNone, false}, k, kb, one, B(0, 0), ldb, A(0, k), lda);
        blas::symm_omp(false, true, herm, k, kb, half, A(k, k), lda, B(0, k), ldb, one, A(0, k),
                       lda);
        blas::syr2k_omp(true, Op::kNone, herm, k, kb, one, A(0, k), lda, B(0, k), ldb, one, A(0, 0),
                        lda);
        blas::symm_omp(false, true, herm, k, kb, half, A(k, k), lda, B(0, k), ldb, one, A(0, k),
                       lda);
        trmm(Triangular{false, true, adj, false}, k, kb, one, B(k, k), ldb, A(0, k), lda);
      } else {
        trmm(Triangular{false, false, Op::kNone, false}, kb, k, one, B(0, 0), ldb, A(k, 0), lda);
        blas::symm_omp(true, false, herm, kb, k, half, A(k, k), lda, B(k, 0), ldb, one, A(k, 0),
                       lda);
        blas::syr2k_omp(false, adj, herm, k, kb, one, A(k, 0), lda, B(k, 0), ldb, one, A(0, 0),
                        lda);
        blas::symm_omp(true, false, herm, kb, k, half, A(k, k), lda, B(k, 0), ldb, one, A(k, 0),
                       lda);
        trmm(Triangular{true, false, adj, false}, kb, k, one, B(k, k), ldb, A(k, 0), lda);
      }
      sygs2(itype, upper, kb, A(k, k), lda, B(k, k), ldb);
    }
  }
}

template void sygst<float>(int, Uplo, int, float *, int, const float *, int);
template void sygst<std::complex<float>>(int, Uplo, int, std::complex<float> *, int,
                                         const std::complex<float> *, int);

}  // namespace orb::lapack
