// The Cholesky factorization of a Hermitian positive definite band matrix:
// column by column, and by blocks of columns with the level-3 BLAS.
//
// Inside the band the stored elements of the upper (lower) triangle form a
// dense matrix with leading dimension ldab - 1, seen from ab + kd (ab): that
// is how the blocks reach the BLAS. The only block that leaves the band is
// the one kd rows below (columns right of) the diagonal block, a triangle
// in the band; it is copied into a small dense block, zero outside the
// band, for the duration of its updates.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "blas/level2/level2.h"
#include "blas/level3/level3.h"
#include "lapack/auxiliary.h"
#include "lapack/blas_calls.h"
#include "lapack/cholesky.h"
#include "lapack/names.h"
#include "lapack/oracle.h"

namespace orb::lapack {
namespace {

// The widest block the factorization takes, and the leading dimension of
// its copy of the out-of-band triangle.
constexpr int kMaxBlock = 32;
constexpr int kLdWork = kMaxBlock + 1;

inline std::ptrdiff_t at(int i, int j, int ld) {
  return i + static_cast<std::ptrdiff_t>(j) * ld;
}

}  // namespace

template <class T>
int pbtf2(Uplo uplo, int n, int kd, T *ab, int ldab) {
  using R = real_t<T>;
  const bool upper = uplo == Uplo::kUpper;
  const int ldd = std::max(1, ldab - 1);
  for (int j = 0; j < n; ++j) {
    T *d = ab + (upper ? kd : 0) + static_cast<std::ptrdiff_t>(j) * ldab;
    const R ajj = std::real(*d);
    if (!(ajj > 0)) {
      *d = T(ajj);
      return j + 1;
    }
    const R root = std::sqrt(ajj);
    *d = T(root);
    const int kn = std::min(kd, n - 1 - j);
    if (kn == 0) continue;
    // The rest of row (column) j within the band, then the rank-1 update of
    // the trailing kn-by-kn block with it.
    T *next = d + ldab;  // A(j+1, j+1)
    if (upper) {
      T *row = d + ldd;  // A(j, j+1), the row at stride ldd
      rscal(kn, R(1) / root, row, ldd);
      lacgv(kn, row, ldd);
      blas::level2::syr(true, kn, T(-1), row, ldd, next, ldd, is_complex_v<T>);
      lacgv(kn, row, ldd);
    } else {
      rscal(kn, R(1) / root, d + 1, 1);
      blas::level2::syr(false, kn, T(-1), d + 1, 1, next, ldd, is_complex_v<T>);
    }
  }
  return 0;
}

template <class T>
int pbtrf(Uplo uplo, int n, int kd, T *ab, int ldab) {
  if (n == 0) return 0;
  int nb = oracle(kBlockSize, name<T>("PBTRF"), n, kd);
  if (nb <= 1 || nb > kd) return pbtf2(uplo, n, kd, ab, ldab);
  nb = std::min(nb, kMaxBlock);
  constexpr Op adj = is_complex_v<T> ? Op::kConjTrans : Op::kTrans;
  constexpr bool herm = is_complex_v<T>;
  const bool upper = uplo == Uplo::kUpper;
  const int ldd = ldab - 1;
  T *p = upper ? ab + kd : ab;  // A(r, c) at p[r + c ldd] inside the band
  auto el = [&](int r, int c) { return p + at(r, c, ldd); };
  std::array<T, kLdWork * kMaxBlock> work{};
  for (int i = 0; i < n; i += nb) {
    const int ib = std::min(nb, n - i);
    const int info = potf2(uplo, ib, el(i, i), ldd);
    if (info != 0) return i + info;
    if (i + ib >= n) break;
    // i2 rows (columns) of the block inside the band's dense part, i3 of
    // the triangle beyond it.
    const int i2 = std::min(kd - ib, n - i - ib), i3 = std::min(ib, n - i - kd);
    if (upper) {
      if (i2 > 0) {
        trsm(Triangular{true, true, adj, false}, ib, i2, T(1), el(i, i), ldd, el(i, i + ib), ldd);
        blas::syrk_omp(true, adj, herm, i2, ib, T(-1), el(i, i + ib), ldd, T(1), el(i + ib, i + ib),
                       ldd);
      }
      if (i3 > 0) {
        // A13's lower triangle (row ii, column jj <= ii) is in the band.
        for (int jj = 0; jj < i3; ++jj)
          for (int ii = 0; ii < ib; ++ii)
            work[at(ii, jj, kLdWork)] = jj <= ii ? *el(i + ii, i + kd + jj) : T(0);
        trsm(Triangular{true, true, adj, false}, ib, i3, T(1), el(i, i), ldd, work.data(), kLdWork);
        if (i2 > 0)
          gemm(adj, Op::kNone, i2, i3, ib, T(-1), el(i, i + ib), ldd, work.data(), kLdWork, T(1),
               el(i + ib, i + kd), ldd);
        blas::syrk_omp(true, adj, herm, i3, ib, T(-1), work.data(), kLdWork, T(1),
                       el(i + kd, i + kd), ldd);
        for (int jj = 0; jj < i3; ++jj)
          for (int ii = jj; ii < ib; ++ii) *el(i + ii, i + kd + jj) = work[at(ii, jj, kLdWork)];
      }
    } else {
      if (i2 > 0) {
        trsm(Triangular{false, false, adj, false}, i2, ib, T(1), el(i, i), ldd, el(i + ib, i), ldd);
        blas::syrk_omp(false, Op::kNone, herm, i2, ib, T(-1), el(i + ib, i), ldd, T(1),
                       el(i + ib, i + ib), ldd);
      }
      if (i3 > 0) {
        // A31's upper triangle (row ii <= column jj) is in the band.
        for (int jj = 0; jj < ib; ++jj)
          for (int ii = 0; ii < i3; ++ii)
            work[at(ii, jj, kLdWork)] = ii <= jj ? *el(i + kd + ii, i + jj) : T(0);
        trsm(Triangular{false, false, adj, false}, i3, ib, T(1), el(i, i), ldd, work.data(),
             kLdWork);
        if (i2 > 0)
          gemm(Op::kNone, adj, i3, i2, ib, T(-1), work.data(), kLdWork, el(i + ib, i), ldd, T(1),
               el(i + kd, i + ib), ldd);
        blas::syrk_omp(false, Op::kNone, herm, i3, ib, T(-1), work.data(), kLdWork, T(1),
                       el(i + kd, i + kd), ldd);
        for (int jj = 0; jj < ib; ++jj)
          for (int ii = 0; ii <= std::min(jj, i3 - 1); ++ii)
            *el(i + kd + ii, i + jj) = work[at(ii, jj, kLdWork)];
      }
    }
  }
  return 0;
}

#define ORB_PBTRF(T)                            \
  template int pbtf2(Uplo, int, int, T *, int); \
  template int pbtrf(Uplo, int, int, T *, int);
ORB_PBTRF(float)
ORB_PBTRF(c8)
#undef ORB_PBTRF

}  // namespace orb::lapack
