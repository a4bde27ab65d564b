// The serial Cholesky factorizations: column by column, and the recursive
// one that puts nearly all the work into the level-3 BLAS.
#include <cmath>
#include <cstddef>

#include "blas/level1/level1.h"
#include "blas/level2/level2.h"
#include "blas/level3/level3.h"
#include "lapack/auxiliary.h"
#include "lapack/blas_calls.h"
#include "lapack/cholesky.h"

namespace orb::lapack {
namespace {

// Diagonal blocks this narrow are factored column by column.
constexpr int kLeaf = 16;

inline std::ptrdiff_t at(int i, int j, int ld) {
  return i + static_cast<std::ptrdiff_t>(j) * ld;
}

}  // namespace

template <class T>
int potf2(Uplo uplo, int n, T *a, int lda) {
  using R = real_t<T>;
  const bool upper = uplo == Uplo::kUpper;
  // The factor's row j (upper) or column j (lower) lies at stride `along`
  // from its diagonal; its earlier elements at stride `across`.
  const int along = upper ? lda : 1, across = upper ? 1 : lda;
  for (int j = 0; j < n; ++j) {
    T *d = a + at(j, j, lda);
    T *prev = upper ? a + at(0, j, lda) : a + at(j, 0, lda);
    const R ajj = std::real(*d) - std::real(blas::dotc(j, prev, across, prev, across));
    if (!(ajj > 0)) {  // also a NaN
      *d = T(ajj);
      return j + 1;
    }
    const R root = std::sqrt(ajj);
    *d = T(root);
    const int rest = n - j - 1;
    if (rest == 0) continue;
    // The rest of row (column) j: the earlier rows' (columns') contribution
    // subtracted, then divided by the diagonal.
    lacgv(j, prev, across);
    if (upper)
      blas::level2::gemv(Op::kTrans, j, rest, T(-1), a + at(0, j + 1, lda), lda, prev, 1, T(1),
                         d + along, along);
    else
      blas::level2::gemv(Op::kNone, rest, j, T(-1), a + at(j + 1, 0, lda), lda, prev, lda, T(1),
                         d + along, along);
    lacgv(j, prev, across);
    // Divided, not multiplied by the reciprocal: the rounding of the
    // published recursive factorization, which solves with the diagonal.
    for (int i = 1; i <= rest; ++i) d[static_cast<std::ptrdiff_t>(i) * along] /= root;
  }
  return 0;
}

template <class T>
int potrf_recursive(Uplo uplo, int n, T *a, int lda, bool threaded) {
  if (n <= kLeaf) return potf2(uplo, n, a, lda);
  const int n1 = n / 2, n2 = n - n1;
  int info = potrf_recursive(uplo, n1, a, lda, threaded);
  if (info != 0) return info;
  constexpr Op adj = is_complex_v<T> ? Op::kConjTrans : Op::kTrans;
  constexpr bool herm = is_complex_v<T>;
  T *a22 = a + at(n1, n1, lda);
  if (uplo == Uplo::kUpper) {
    // A12 := U11^-H A12; A22 := A22 - A12^H A12.
    T *a12 = a + at(0, n1, lda);
    const Triangular t{true, true, adj, false};
    if (threaded) {
      trsm(t, n1, n2, T(1), a, lda, a12, lda);
      blas::syrk_omp(true, adj, herm, n2, n1, T(-1), a12, lda, T(1), a22, lda);
    } else {
      trsm_here(t, n1, n2, T(1), a, lda, a12, lda);
      blas::syrk_serial(true, adj, herm, n2, n1, T(-1), a12, lda, T(1), a22, lda);
    }
  } else {
    // A21 := A21 L11^-H; A22 := A22 - A21 A21^H.
    T *a21 = a + n1;
    const Triangular t{false, false, adj, false};
    if (threaded) {
      trsm(t, n2, n1, T(1), a, lda, a21, lda);
      blas::syrk_omp(false, Op::kNone, herm, n2, n1, T(-1), a21, lda, T(1), a22, lda);
    } else {
      trsm_here(t, n2, n1, T(1), a, lda, a21, lda);
      blas::syrk_serial(false, Op::kNone, herm, n2, n1, T(-1), a21, lda, T(1), a22, lda);
    }
  }
  info = potrf_recursive(uplo, n2, a22, lda, threaded);
  return info != 0 ? info + n1 : 0;
}

#define ORB_POTRF(T)                       \
  template int potf2(Uplo, int, T *, int); \
  template int potrf_recursive(Uplo, int, T *, int, bool);
ORB_POTRF(float)
ORB_POTRF(double)
ORB_POTRF(c8)
ORB_POTRF(c16)
#undef ORB_POTRF

}  // namespace orb::lapack
