// Matrix norms and the sum of squares they share.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "lapack/auxiliary.h"

namespace orb::lapack {
namespace {

// x, unless it is already NaN or x is not larger (a NaN x wins).
template <class R>
void keep_larger(R &value, R x) {
  if (value < x || std::isnan(x)) value = x;
}

}  // namespace

// The scaled sum: sum_ * scale_^2 is the sum of squares so far.
template <class R>
void SumSquares<R>::add(R x) {
  const double a = std::abs(static_cast<double>(x));
  if (a == 0 && !std::isnan(a)) return;
  if (std::isnan(a)) {
    scale_ = sum_ = a;
    return;
  }
  if (scale_ < a) {
    const double r = scale_ / a;
    sum_ = 1 + sum_ * r * r;
    scale_ = a;
  } else {
    const double r = a / scale_;
    sum_ += r * r;
  }
}

template <class R>
R SumSquares<R>::root() const {
  return static_cast<R>(scale_ * std::sqrt(sum_));
}

template <class T>
real_t<T> lange(Norm norm, int m, int n, const T *a, int lda, real_t<T> *work) {
  using R = real_t<T>;
  if (std::min(m, n) <= 0) return R(0);
  auto el = [&](int i, int j) { return a[i + static_cast<std::ptrdiff_t>(j) * lda]; };
  R value = 0;
  switch (norm) {
    case Norm::kMaxAbs:
      for (int j = 0; j < n; ++j)
        for (int i = 0; i < m; ++i) keep_larger(value, static_cast<R>(std::abs(el(i, j))));
      break;
    case Norm::kOne:
      for (int j = 0; j < n; ++j) {
        R sum = 0;
        for (int i = 0; i < m; ++i) sum += std::abs(el(i, j));
        keep_larger(value, sum);
      }
      break;
    case Norm::kInfinity:
      std::fill(work, work + m, R(0));
      for (int j = 0; j < n; ++j)
        for (int i = 0; i < m; ++i) work[i] += std::abs(el(i, j));
      for (int i = 0; i < m; ++i) keep_larger(value, work[i]);
      break;
    case Norm::kFrobenius: {
      SumSquares<R> ss;
      for (int j = 0; j < n; ++j)
        for (int i = 0; i < m; ++i) {
          if constexpr (is_complex_v<T>) {
            ss.add(el(i, j).real());
            ss.add(el(i, j).imag());
          } else {
            ss.add(el(i, j));
          }
        }
      value = ss.root();
      break;
    }
  }
  return value;
}

template class SumSquares<float>;
template class SumSquares<double>;
template float lange(Norm, int, int, const float *, int, float *);
template double lange(Norm, int, int, const double *, int, double *);
template float lange(Norm, int, int, const c8 *, int, float *);
template double lange(Norm, int, int, const c16 *, int, double *);

}  // namespace orb::lapack
