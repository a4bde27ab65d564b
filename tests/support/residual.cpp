// Norms and residual ratios (residual.h), in double precision.
#include "support/residual.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orb::test {

namespace {

// numerator / (scale eps), with the convention of the reference tests for a
// zero scale: 0 when the numerator is 0 too, 1 / eps otherwise.
double ratio(double numerator, double scale, double eps) {
  if (scale <= 0) return numerator == 0 ? 0 : 1 / eps;
  return numerator / scale / eps;
}

}  // namespace

template <class T>
double norm_one(const Matrix<T> &a) {
  double best = 0;
  for (int j = 0; j < a.cols; ++j) {
    double s = 0;
    for (int i = 0; i < a.rows; ++i) s += std::abs(wide_t<T>(a(i, j)));
    if (!(s <= best)) best = s;  // NaN wins
  }
  return best;
}

template <class T>
double norm_inf(const Matrix<T> &a) {
  std::vector<double> rows(a.rows, 0.0);
  for (int j = 0; j < a.cols; ++j)
    for (int i = 0; i < a.rows; ++i) rows[i] += std::abs(wide_t<T>(a(i, j)));
  double best = 0;
  for (double s : rows)
    if (!(s <= best)) best = s;  // NaN wins
  return best;
}

template <class T>
double norm_max(const Matrix<T> &a) {
  double best = 0;
  for (int j = 0; j < a.cols; ++j)
    for (int i = 0; i < a.rows; ++i) {
      const double x = std::abs(wide_t<T>(a(i, j)));
      if (!(x <= best)) best = x;  // NaN wins
    }
  return best;
}

template <class T>
double norm_frobenius(const Matrix<T> &a) {
  double s = 0;
  for (int j = 0; j < a.cols; ++j)
    for (int i = 0; i < a.rows; ++i) s += std::norm(wide_t<T>(a(i, j)));
  return std::sqrt(s);
}

template <class T>
double lu_residual(const Matrix<T> &a, const Matrix<T> &lu, const std::vector<int> &ipiv) {
  using W = wide_t<T>;
  const int m = a.rows, n = a.cols, k = std::min(m, n);
  if (m == 0 || n == 0) return 0;
  // L U, row by row of L.
  Matrix<W> p(m, n);
  for (int i = 0; i < m; ++i)
    for (int q = 0; q <= std::min(i, k - 1); ++q) {
      const W l = q == i ? W(1) : W(lu(i, q));
      for (int j = q; j < n; ++j) p(i, j) += l * W(lu(q, j));
    }
  // P (L U): the interchanges undone from the last to the first.
  for (int i = std::min(k, static_cast<int>(ipiv.size())) - 1; i >= 0; --i) {
    const int r = ipiv[i] - 1;
    if (r < 0 || r >= m) return 1 / epsilon<T>();  // not a pivot of this matrix
    if (r != i)
      for (int j = 0; j < n; ++j) std::swap(p(i, j), p(r, j));
  }
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) p(i, j) -= W(a(i, j));
  return ratio(norm_one(p), n * norm_one(a), epsilon<T>());
}

template <class T>
double orthogonality(const Matrix<T> &q) {
  using W = wide_t<T>;
  // The Gram matrix of the columns, or of the rows when they are fewer.
  const bool rows = q.rows < q.cols;
  const Matrix<W> w = converted<W>(rows ? op_of('C', q) : q);
  const int len = w.rows, k = w.cols;
  if (len == 0 || k == 0) return 0;
  Matrix<W> g(k, k);
  for (int j = 0; j < k; ++j)
    for (int i = 0; i < k; ++i) {
      W s = i == j ? W(1) : W(0);
      for (int p = 0; p < len; ++p) s -= conj_of(w(p, i)) * w(p, j);
      g(i, j) = s;
    }
  return ratio(norm_one(g), len, epsilon<T>());
}

template <class T>
double solve_residual(char trans, const Matrix<T> &a, const Matrix<T> &x, const Matrix<T> &b) {
  using W = wide_t<T>;
  const Matrix<W> ax = multiply(trans, a, 'N', x);
  const double anorm = trans == 'N' ? norm_one(a) : norm_inf(a);
  double worst = 0;
  for (int j = 0; j < b.cols; ++j) {
    double rnorm = 0, xnorm = 0;
    for (int i = 0; i < b.rows; ++i) rnorm += std::abs(W(b(i, j)) - ax(i, j));
    for (int i = 0; i < x.rows; ++i) xnorm += std::abs(W(x(i, j)));
    const double r = ratio(rnorm, anorm * xnorm, epsilon<T>());
    if (!(r <= worst)) worst = r;  // NaN wins
  }
  return worst;
}

#define ORB_RESIDUAL_INSTANTIATE(T)                                                               \
  template double norm_one<T>(const Matrix<T> &);                                                 \
  template double norm_inf<T>(const Matrix<T> &);                                                 \
  template double norm_max<T>(const Matrix<T> &);                                                 \
  template double norm_frobenius<T>(const Matrix<T> &);                                           \
  template double lu_residual<T>(const Matrix<T> &, const Matrix<T> &, const std::vector<int> &); \
  template double orthogonality<T>(const Matrix<T> &);                                            \
  template double solve_residual<T>(char, const Matrix<T> &, const Matrix<T> &, const Matrix<T> &);

ORB_RESIDUAL_INSTANTIATE(float)
ORB_RESIDUAL_INSTANTIATE(double)
ORB_RESIDUAL_INSTANTIATE(std::complex<float>)
ORB_RESIDUAL_INSTANTIATE(std::complex<double>)

}  // namespace orb::test
