// The inverse from the Cholesky factors: the factor's triangular inverse,
// then the product of that inverse with its adjoint (xLAUUM), both
// recursive so that the work is in the level-3 BLAS.
#include <complex>
#include <cstddef>

#include "blas/level3/level3.h"
#include "lapack/blas_calls.h"
#include "lapack/cholesky.h"
#include "lapack/triangular.h"

namespace orb::lapack {
namespace {

constexpr int kLeaf = 16;

inline std::ptrdiff_t at(int i, int j, int ld) {
  return i + static_cast<std::ptrdiff_t>(j) * ld;
}

template <class T>
T conj_of(T x) {
  if constexpr (is_complex_v<T>)
    return std::conj(x);
  else
    return x;
}

// The product element by element, in place. Upper: A(i, j) for i <= j is
// the sum over k >= j of U(i, k) conj(U(j, k)); columns are taken left to
// right, each one's diagonal last, so every element read is still U's.
// Lower: A(i, j) for i >= j is the sum over k >= i of conj(L(k, i)) L(k, j),
// rows of a column taken downwards.
template <class T>
void lauu2(bool upper, int n, T *a, int lda) {
  auto el = [&](int i, int j) -> T & { return a[at(i, j, lda)]; };
  for (int j = 0; j < n; ++j) {
    if (upper) {
      for (int i = 0; i <= j; ++i) {
        T s = 0;
        for (int k = j; k < n; ++k) s += el(i, k) * conj_of(el(j, k));
        el(i, j) = s;
      }
    } else {
      for (int i = j; i < n; ++i) {
        T s = 0;
        for (int k = i; k < n; ++k) s += conj_of(el(k, i)) * el(k, j);
        el(i, j) = s;
      }
    }
    if constexpr (is_complex_v<T>) el(j, j) = T(std::real(el(j, j)));
  }
}

}  // namespace

template <class T>
void lauum(Uplo uplo, int n, T *a, int lda) {
  const bool upper = uplo == Uplo::kUpper;
  if (n <= kLeaf) {
    lauu2(upper, n, a, lda);
    return;
  }
  constexpr Op adj = is_complex_v<T> ? Op::kConjTrans : Op::kTrans;
  constexpr bool herm = is_complex_v<T>;
  const int n1 = n / 2, n2 = n - n1;
  T *a22 = a + at(n1, n1, lda);
  lauum(uplo, n1, a, lda);
  if (upper) {
    // [U11 U12; 0 U22] times its adjoint: A11 = U11 U11^H + U12 U12^H,
    // A12 = U12 U22^H, A22 = U22 U22^H.
    T *a12 = a + at(0, n1, lda);
    blas::syrk_omp(true, Op::kNone, herm, n1, n2, T(1), a12, lda, T(1), a, lda);
    trmm(Triangular{false, true, adj, false}, n1, n2, T(1), a22, lda, a12, lda);
  } else {
    // The adjoint of [L11 0; L21 L22] times it: A11 = L11^H L11 + L21^H L21,
    // A21 = L22^H L21, A22 = L22^H L22.
    T *a21 = a + n1;
    blas::syrk_omp(false, adj, herm, n1, n2, T(1), a21, lda, T(1), a, lda);
    trmm(Triangular{true, false, adj, false}, n2, n1, T(1), a22, lda, a21, lda);
  }
  lauum(uplo, n2, a22, lda);
}

template <class T>
int potri(Uplo uplo, int n, T *a, int lda) {
  if (n == 0) return 0;
  const int info = trtri(uplo, Diag::kNonUnit, n, a, lda);
  if (info != 0) return info;
  lauum(uplo, n, a, lda);
  return 0;
}

#define ORB_POTRI(T)                        \
  template void lauum(Uplo, int, T *, int); \
  template int potri(Uplo, int, T *, int);
ORB_POTRI(float)
ORB_POTRI(c8)
#undef ORB_POTRI

}  // namespace orb::lapack
