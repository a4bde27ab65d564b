// Norms of symmetric and Hermitian matrices given by one triangle, dense or
// in band storage: what the eigenvalue drivers scale by.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "lapack/auxiliary.h"
#include "lapack/eigen.h"

namespace orb::lapack {
namespace {

template <class R>
void keep_larger(R &value, R x) {
  if (value < x || std::isnan(x)) value = x;
}

// The norm of the matrix whose stored triangle (within kd of the diagonal)
// `at(i, j)` returns, i <= j for upper, i >= j for lower. A Hermitian
// matrix's diagonal is taken as real.
template <class T, class At>
real_t<T> symmetric_norm(Norm norm, Uplo uplo, bool herm, int n, int kd, At at, real_t<T> *work) {
  using R = real_t<T>;
  if (n <= 0) return R(0);
  const bool upper = uplo == Uplo::kUpper;
  auto diagonal = [&](int j) -> R {
    const T x = at(j, j);
    if constexpr (is_complex_v<T>)
      return herm ? std::abs(x.real()) : std::abs(x);
    else
      return std::abs(x);
  };
  // The stored rows of column j: [first, last).
  auto first = [&](int j) { return upper ? std::max(0, j - kd) : j; };
  auto last = [&](int j) { return upper ? j + 1 : std::min(n, j + kd + 1); };
  R value = 0;
  switch (norm) {
    case Norm::kMaxAbs:
      for (int j = 0; j < n; ++j)
        for (int i = first(j); i < last(j); ++i)
          keep_larger(value, i == j ? diagonal(j) : static_cast<R>(std::abs(at(i, j))));
      break;
    case Norm::kOne:
    case Norm::kInfinity:
      // Row sums equal column sums; each off-diagonal entry counts in its
      // row and in its column.
      std::fill(work, work + n, R(0));
      for (int j = 0; j < n; ++j)
        for (int i = first(j); i < last(j); ++i) {
          if (i == j) {
            work[j] += diagonal(j);
          } else {
            const R x = std::abs(at(i, j));
            work[i] += x;
            work[j] += x;
          }
        }
      for (int i = 0; i < n; ++i) keep_larger(value, work[i]);
      break;
    case Norm::kFrobenius: {
      SumSquares<R> off, diag;
      for (int j = 0; j < n; ++j)
        for (int i = first(j); i < last(j); ++i) {
          const T x = at(i, j);
          if (i == j) {
            diag.add(diagonal(j));
          } else if constexpr (is_complex_v<T>) {
            off.add(x.real());
            off.add(x.imag());
          } else {
            off.add(x);
          }
        }
      const R o = off.root(), d = diag.root();
      // sqrt(2 o^2 + d^2) without overflow.
      const R big = std::max(o * std::sqrt(R(2)), d), small = std::min(o * std::sqrt(R(2)), d);
      value = big == 0 || std::isnan(big) || std::isnan(small)
                  ? big + small
                  : big * std::sqrt(1 + (small / big) * (small / big));
      break;
    }
  }
  return value;
}

}  // namespace

template <class T>
real_t<T> lansy(Norm norm, Uplo uplo, bool herm, int n, const T *a, int lda, real_t<T> *work) {
  auto at = [&](int i, int j) { return a[i + static_cast<std::ptrdiff_t>(j) * lda]; };
  return symmetric_norm<T>(norm, uplo, herm, n, std::max(n - 1, 0), at, work);
}

template <class T>
real_t<T> lansb(Norm norm, Uplo uplo, bool herm, int n, int kd, const T *ab, int ldab,
                real_t<T> *work) {
  const bool upper = uplo == Uplo::kUpper;
  auto at = [&](int i, int j) {
    return ab[(upper ? kd + i - j : i - j) + static_cast<std::ptrdiff_t>(j) * ldab];
  };
  return symmetric_norm<T>(norm, uplo, herm, n, kd, at, work);
}

template float lansy(Norm, Uplo, bool, int, const float *, int, float *);
template float lansy(Norm, Uplo, bool, int, const c8 *, int, float *);
template float lansb(Norm, Uplo, bool, int, int, const float *, int, float *);
template float lansb(Norm, Uplo, bool, int, int, const c8 *, int, float *);

}  // namespace orb::lapack
