// Norms of a trapezoidal matrix: the triangle's rows 0 .. min(m, j + 1) of
// column j (upper) or rows j .. m (lower), the diagonal counted as ones for
// a unit triangle and then never read.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "lapack/auxiliary.h"

namespace orb::lapack {
namespace {

// value := x when x is larger or NaN, so that a NaN, once seen, stays.
template <class R>
void keep_larger(R &value, R x) {
  if (value < x || std::isnan(x)) value = x;
}

// The rows [first, last) of column j read from the triangle: the diagonal
// is left out for a unit triangle.
struct Rows {
  int first, last;
};
inline Rows rows_of(Uplo uplo, bool unit, int m, int j) {
  const int skip = unit ? 1 : 0;
  if (uplo == Uplo::kUpper) return {0, std::min(m, j + 1 - skip)};
  return {std::min(m, j + skip), m};
}

}  // namespace

template <class T>
real_t<T> lantr(Norm norm, Uplo uplo, Diag diag, int m, int n, const T *a, int lda,
                real_t<T> *work) {
  using R = real_t<T>;
  if (std::min(m, n) <= 0) return R(0);
  const bool unit = diag == Diag::kUnit;
  auto abs_at = [&](int i, int j) {
    return static_cast<R>(std::abs(a[i + static_cast<std::ptrdiff_t>(j) * lda]));
  };
  R value = 0;
  switch (norm) {
    case Norm::kMaxAbs:
      value = unit ? R(1) : R(0);
      for (int j = 0; j < n; ++j) {
        const Rows r = rows_of(uplo, unit, m, j);
        for (int i = r.first; i < r.last; ++i) keep_larger(value, abs_at(i, j));
      }
      break;
    case Norm::kOne:
      for (int j = 0; j < n; ++j) {
        const Rows r = rows_of(uplo, unit, m, j);
        R sum = unit && j < m ? R(1) : R(0);
        for (int i = r.first; i < r.last; ++i) sum += abs_at(i, j);
        keep_larger(value, sum);
      }
      break;
    case Norm::kInfinity:
      std::fill(work, work + m, R(0));
      if (unit) std::fill(work, work + std::min(m, n), R(1));
      for (int j = 0; j < n; ++j) {
        const Rows r = rows_of(uplo, unit, m, j);
        for (int i = r.first; i < r.last; ++i) work[i] += abs_at(i, j);
      }
      for (int i = 0; i < m; ++i) keep_larger(value, work[i]);
      break;
    case Norm::kFrobenius: {
      SumSquares<R> ss;
      if (unit)
        for (int k = std::min(m, n); k > 0; --k) ss.add(R(1));
      for (int j = 0; j < n; ++j) {
        const Rows r = rows_of(uplo, unit, m, j);
        for (int i = r.first; i < r.last; ++i) {
          const T x = a[i + static_cast<std::ptrdiff_t>(j) * lda];
          if constexpr (is_complex_v<T>) {
            ss.add(x.real());
            ss.add(x.imag());
          } else {
            ss.add(x);
          }
        }
      }
      value = ss.root();
      break;
    }
  }
  return value;
}

template float lantr(Norm, Uplo, Diag, int, int, const float *, int, float *);
template double lantr(Norm, Uplo, Diag, int, int, const double *, int, double *);
template float lantr(Norm, Uplo, Diag, int, int, const c8 *, int, float *);
template double lantr(Norm, Uplo, Diag, int, int, const c16 *, int, double *);

}  // namespace orb::lapack
