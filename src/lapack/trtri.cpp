// The inverse of a triangular matrix, in place.
//
// Column by column, the inverse's column j of an upper A is
// -A^-1(0:j, 0:j) a(0:j, j) / a(j, j): a product with the part already
// inverted, which lies to its left (for a lower A, to its right, working
// from the last column). The blocked form does the same a block of columns
// at a time: the block's rows above the diagonal block become
// -A^-1 A12 A22^-1 through a triangular multiply and a triangular solve,
// then the diagonal block is inverted column by column.
#include <algorithm>
#include <cstddef>

#include "blas/level1/level1.h"
#include "blas/level2/level2.h"
#include "lapack/blas_calls.h"
#include "lapack/oracle.h"
#include "lapack/triangular.h"

namespace orb::lapack {
namespace {

inline std::ptrdiff_t at(int i, int j, int ld) {
  return i + static_cast<std::ptrdiff_t>(j) * ld;
}

// The first zero on a non-unit diagonal, 1-based, or 0.
template <class T>
int zero_diagonal(Diag diag, int n, const T *a, int lda) {
  if (diag == Diag::kUnit) return 0;
  for (int j = 0; j < n; ++j)
    if (a[at(j, j, lda)] == T(0)) return j + 1;
  return 0;
}

}  // namespace

template <class T>
void trti2(Uplo uplo, Diag diag, int n, T *a, int lda) {
  const bool upper = uplo == Uplo::kUpper, unit = diag == Diag::kUnit;
  for (int s = 0; s < n; ++s) {
    const int j = upper ? s : n - 1 - s;
    T *ajj = a + at(j, j, lda);
    T minus_ajj = T(-1);
    if (!unit) {
      *ajj = T(1) / *ajj;
      minus_ajj = -*ajj;
    }
    // The column's part off the diagonal, times the inverted triangle
    // beside it.
    if (upper) {
      T *c = a + at(0, j, lda);
      blas::level2::trmv(true, Op::kNone, unit, j, a, lda, c, 1);
      blas::scal(j, minus_ajj, c, 1);
    } else if (j + 1 < n) {
      T *c = ajj + 1;
      blas::level2::trmv(false, Op::kNone, unit, n - j - 1, a + at(j + 1, j + 1, lda), lda, c, 1);
      blas::scal(n - j - 1, minus_ajj, c, 1);
    }
  }
}

template <class T>
int trtri(Uplo uplo, Diag diag, int n, T *a, int lda) {
  if (n == 0) return 0;
  if (const int info = zero_diagonal(diag, n, a, lda)) return info;
  const Name6 nm = name<T>("TRTRI");
  const int nb = oracle(kBlockSize, nm, n);
  if (nb <= 1 || nb >= n || n <= oracle(kCrossover, nm, n)) {
    trti2(uplo, diag, n, a, lda);
    return 0;
  }
  const bool upper = uplo == Uplo::kUpper, unit = diag == Diag::kUnit;
  const blas::Triangular multiply{true, upper, Op::kNone, unit};
  const blas::Triangular solve{false, upper, Op::kNone, unit};
  if (upper) {
    for (int j = 0; j < n; j += nb) {
      const int jb = std::min(nb, n - j);
      T *above = a + at(0, j, lda), *ajj = a + at(j, j, lda);
      trmm(multiply, j, jb, T(1), a, lda, above, lda);
      trsm(solve, j, jb, T(-1), ajj, lda, above, lda);
      trti2(uplo, diag, jb, ajj, lda);
    }
  } else {
    for (int j = (n - 1) / nb * nb; j >= 0; j -= nb) {
      const int jb = std::min(nb, n - j), below = n - j - jb;
      T *ajj = a + at(j, j, lda), *under = ajj + jb;
      if (below > 0) {
        trmm(multiply, below, jb, T(1), a + at(j + jb, j + jb, lda), lda, under, lda);
        trsm(solve, below, jb, T(-1), ajj, lda, under, lda);
      }
      trti2(uplo, diag, jb, ajj, lda);
    }
  }
  return 0;
}

#define ORB_TRTRI(T)                              \
  template void trti2(Uplo, Diag, int, T *, int); \
  template int trtri(Uplo, Diag, int, T *, int);
ORB_TRTRI(float)
ORB_TRTRI(double)
ORB_TRTRI(c8)
ORB_TRTRI(c16)
#undef ORB_TRTRI

}  // namespace orb::lapack
