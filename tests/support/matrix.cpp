// Test matrices and their generators (matrix.h). Everything is formed in
// double precision and rounded to the element type once, at the end.
#include "support/matrix.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace orb::test {

namespace {

template <class T>
T nan_value() {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  return make<T>(nan, nan);
}

template <class T, class W>
Matrix<T> rounded(const Matrix<W> &w, int ld) {
  Matrix<T> r(w.rows, w.cols, ld);
  for (int j = 0; j < w.cols; ++j)
    for (int i = 0; i < w.rows; ++i) r(i, j) = static_cast<T>(w(i, j));
  return r;
}

template <class W>
Matrix<W> identity(int n) {
  Matrix<W> r(n, n);
  for (int i = 0; i < n; ++i) r(i, i) = W(1);
  return r;
}

// H = I - 2 v v^H / (v^H v), a reflector acting on rows or columns k onwards
// (v has the length of that trailing part).
template <class W>
struct Reflector {
  int k;
  std::vector<W> v;
  double scale;  // 2 / (v^H v)

  Reflector(int k_, int len, Random &rng) : k(k_), v(len) {
    double vv = 0;
    for (W &x : v) {
      x = rng.value<W>();
      vv += std::norm(x);
    }
    scale = vv > 0 ? 2 / vv : 0;
  }
  // x := H x
  void left(Matrix<W> &x) const {
    for (int j = 0; j < x.cols; ++j) {
      W s = 0;
      for (std::size_t p = 0; p < v.size(); ++p) s += conj_of(v[p]) * x(k + int(p), j);
      s *= scale;
      for (std::size_t p = 0; p < v.size(); ++p) x(k + int(p), j) -= v[p] * s;
    }
  }
  // x := x H
  void right(Matrix<W> &x) const {
    for (int i = 0; i < x.rows; ++i) {
      W s = 0;
      for (std::size_t p = 0; p < v.size(); ++p) s += x(i, k + int(p)) * v[p];
      s *= scale;
      for (std::size_t p = 0; p < v.size(); ++p) x(i, k + int(p)) -= s * conj_of(v[p]);
    }
  }
};

template <class T>
Matrix<T> conjugate_transpose(const Matrix<T> &a) {
  return op_of('C', a);
}

}  // namespace

template <class T>
int Matrix<T>::padding_changed() const {
  const T pad = padding_value<T>();
  int changed = 0;
  for (std::size_t p = 0; p < mem.size(); ++p) {
    bool inside = false;
    if (p >= static_cast<std::size_t>(offset)) {
      const std::size_t q = p - offset;
      inside = static_cast<int>(q % ld) < rows && q / ld < static_cast<std::size_t>(cols);
    }
    if (!inside && std::memcmp(&mem[p], &pad, sizeof(T)) != 0) ++changed;
  }
  return changed;
}

template <class T>
Matrix<T> Matrix<T>::placed(int new_ld, int new_offset) const {
  Matrix<T> r(rows, cols, new_ld, new_offset);
  for (int j = 0; j < cols; ++j)
    for (int i = 0; i < rows; ++i) r(i, j) = (*this)(i, j);
  return r;
}

template <class T>
Matrix<T> random_matrix(int m, int n, Random &rng, int ld) {
  Matrix<T> r(m, n, ld);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) r(i, j) = rng.value<T>();
  return r;
}

template <class T>
Matrix<T> graded_matrix(int m, int n, double row_decades, double col_decades, Random &rng, int ld) {
  using W = wide_t<T>;
  Matrix<T> r(m, n, ld);
  for (int j = 0; j < n; ++j) {
    const double cj = std::pow(10.0, n > 1 ? -col_decades * j / (n - 1) : 0.0);
    for (int i = 0; i < m; ++i) {
      const double ri = std::pow(10.0, m > 1 ? -row_decades * i / (m - 1) : 0.0);
      r(i, j) = static_cast<T>(rng.value<W>() * (ri * cj));
    }
  }
  return r;
}

template <class T>
Matrix<T> with_singular_values(int m, int n, const std::vector<double> &sigma, Random &rng, int ld,
                               Matrix<T> *u, Matrix<T> *v) {
  using W = wide_t<T>;
  Matrix<W> a(m, n);
  for (int i = 0; i < std::min({m, n, static_cast<int>(sigma.size())}); ++i) a(i, i) = sigma[i];
  // a := H_{m-1} ... H_0 a, and U the same product.
  Matrix<W> uw = identity<W>(u ? m : 0);
  for (int k = 0; k < m; ++k) {
    const Reflector<W> h(k, m - k, rng);
    h.left(a);
    if (u) h.left(uw);
  }
  // a := a G_0 ... G_{n-1} = U S V^H, and V^H the same product.
  Matrix<W> vh = identity<W>(v ? n : 0);
  for (int k = 0; k < n; ++k) {
    const Reflector<W> g(k, n - k, rng);
    g.right(a);
    if (v) g.right(vh);
  }
  if (u) *u = rounded<T>(uw, 0);
  if (v) *v = rounded<T>(conjugate_transpose(vh), 0);
  return rounded<T>(a, ld);
}

std::vector<double> geometric_values(int n, double cond) {
  std::vector<double> s(std::max(n, 0));
  for (int i = 0; i < n; ++i) s[i] = n > 1 ? std::pow(cond, -static_cast<double>(i) / (n - 1)) : 1;
  return s;
}

template <class T>
Matrix<T> ill_conditioned(int m, int n, double cond, Random &rng, int ld) {
  return with_singular_values<T>(m, n, geometric_values(std::min(m, n), cond), rng, ld);
}

template <class T>
Matrix<T> with_eigenvalues(const std::vector<double> &lambda, Random &rng, int ld, Matrix<T> *q) {
  using W = wide_t<T>;
  const int n = static_cast<int>(lambda.size());
  Matrix<W> a(n, n);
  for (int i = 0; i < n; ++i) a(i, i) = lambda[i];
  // a := H_{n-1} ... H_0 diag(lambda) H_0 ... H_{n-1} = Q diag(lambda) Q^H.
  Matrix<W> qw = identity<W>(q ? n : 0);
  for (int k = 0; k < n; ++k) {
    const Reflector<W> h(k, n - k, rng);
    h.left(a);
    h.right(a);
    if (q) h.left(qw);
  }
  if (q) *q = rounded<T>(qw, 0);
  // Rounded once, from the mean of each pair, so that the result is exactly
  // symmetric or Hermitian.
  Matrix<T> r(n, n, ld);
  for (int j = 0; j < n; ++j) {
    r(j, j) = static_cast<T>(W(std::real(a(j, j))));
    for (int i = 0; i < j; ++i) {
      const T x = static_cast<T>((a(i, j) + conj_of(a(j, i))) * 0.5);
      r(i, j) = x;
      r(j, i) = conj_of(x);
    }
  }
  return r;
}

template <class T>
Matrix<T> symmetric_matrix(int n, bool hermitian, Random &rng, int ld, Triangle stored) {
  const bool herm = hermitian && kIsComplex<T>;
  Matrix<T> r(n, n, ld);
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < j; ++i) {
      r(i, j) = rng.value<T>();
      r(j, i) = herm ? conj_of(r(i, j)) : r(i, j);
    }
    r(j, j) = herm ? T(std::real(rng.value<T>())) : rng.value<T>();
  }
  keep_triangle(r, stored);
  return r;
}

template <class T>
void keep_triangle(Matrix<T> &a, Triangle stored) {
  if (stored == Triangle::kFull) return;
  for (int j = 0; j < a.cols; ++j)
    for (int i = 0; i < a.rows; ++i)
      if (i != j && (i < j) != (stored == Triangle::kUpper)) a(i, j) = nan_value<T>();
}

template <class T>
Matrix<T> full_from_triangle(const Matrix<T> &a, Triangle stored, bool hermitian) {
  if (stored == Triangle::kFull) return a.placed(0);
  const bool herm = hermitian && kIsComplex<T>, upper = stored == Triangle::kUpper;
  Matrix<T> r(a.rows, a.cols);
  for (int j = 0; j < a.cols; ++j)
    for (int i = 0; i < a.rows; ++i) {
      if (i == j)
        r(i, i) = herm ? T(std::real(a(i, i))) : a(i, i);
      else if ((i < j) == upper)
        r(i, j) = a(i, j);
      else
        r(i, j) = herm ? conj_of(a(j, i)) : a(j, i);
    }
  return r;
}

template <class T>
Matrix<T> triangular_part(const Matrix<T> &a, Triangle stored, bool unit) {
  Matrix<T> r(a.rows, a.cols);
  for (int j = 0; j < a.cols; ++j)
    for (int i = 0; i < a.rows; ++i) {
      const bool in =
          stored == Triangle::kFull || i == j || (i < j) == (stored == Triangle::kUpper);
      r(i, j) = i == j && unit ? T(1) : in ? a(i, j) : T(0);
    }
  return r;
}

template <class T>
Matrix<T> band_matrix(int m, int n, int kl, int ku, Random &rng, int ld) {
  Matrix<T> r(m, n, ld);
  for (int j = 0; j < n; ++j)
    for (int i = std::max(0, j - ku); i <= std::min(m - 1, j + kl); ++i) r(i, j) = rng.value<T>();
  return r;
}

template <class T>
Matrix<T> to_band_storage(const Matrix<T> &a, int kl, int ku, int extra, int ldab) {
  const int rows = extra + kl + ku + 1;
  Matrix<T> ab(rows, a.cols, std::max(ldab, rows));
  for (int j = 0; j < a.cols; ++j) {
    for (int r = 0; r < rows; ++r) ab(r, j) = nan_value<T>();
    for (int i = std::max(0, j - ku); i <= std::min(a.rows - 1, j + kl); ++i)
      ab(extra + ku + i - j, j) = a(i, j);
  }
  return ab;
}

template <class T>
Matrix<T> from_band_storage(const Matrix<T> &ab, int m, int kl, int ku, int extra) {
  Matrix<T> r(m, ab.cols);
  for (int j = 0; j < ab.cols; ++j)
    for (int i = std::max(0, j - ku); i <= std::min(m - 1, j + kl); ++i)
      r(i, j) = ab(extra + ku + i - j, j);
  return r;
}

template <class T>
Matrix<T> op_of(char trans, const Matrix<T> &a) {
  if (trans == 'N') return a.placed(0);
  Matrix<T> r(a.cols, a.rows);
  for (int j = 0; j < a.cols; ++j)
    for (int i = 0; i < a.rows; ++i) r(j, i) = trans == 'C' ? conj_of(a(i, j)) : a(i, j);
  return r;
}

template <class T>
Matrix<wide_t<T>> multiply(char ta, const Matrix<T> &a, char tb, const Matrix<T> &b,
                           Matrix<double> *bound) {
  using W = wide_t<T>;
  const Matrix<W> x = converted<W>(op_of(ta, a)), y = converted<W>(op_of(tb, b));
  Matrix<W> c(x.rows, y.cols);
  if (bound) *bound = Matrix<double>(x.rows, y.cols);
  for (int j = 0; j < y.cols; ++j)
    for (int p = 0; p < x.cols; ++p) {
      const W ypj = y(p, j);
      for (int i = 0; i < x.rows; ++i) c(i, j) += x(i, p) * ypj;
      if (bound) {
        const double mag = std::abs(ypj);
        for (int i = 0; i < x.rows; ++i) (*bound)(i, j) += std::abs(x(i, p)) * mag;
      }
    }
  return c;
}

#define ORB_MATRIX_INSTANTIATE(T)                                                                  \
  template struct Matrix<T>;                                                                       \
  template Matrix<T> random_matrix<T>(int, int, Random &, int);                                    \
  template Matrix<T> graded_matrix<T>(int, int, double, double, Random &, int);                    \
  template Matrix<T> with_singular_values<T>(int, int, const std::vector<double> &, Random &, int, \
                                             Matrix<T> *, Matrix<T> *);                            \
  template Matrix<T> ill_conditioned<T>(int, int, double, Random &, int);                          \
  template Matrix<T> with_eigenvalues<T>(const std::vector<double> &, Random &, int, Matrix<T> *); \
  template Matrix<T> symmetric_matrix<T>(int, bool, Random &, int, Triangle);                      \
  template void keep_triangle<T>(Matrix<T> &, Triangle);                                           \
  template Matrix<T> full_from_triangle<T>(const Matrix<T> &, Triangle, bool);                     \
  template Matrix<T> triangular_part<T>(const Matrix<T> &, Triangle, bool);                        \
  template Matrix<T> band_matrix<T>(int, int, int, int, Random &, int);                            \
  template Matrix<T> to_band_storage<T>(const Matrix<T> &, int, int, int, int);                    \
  template Matrix<T> from_band_storage<T>(const Matrix<T> &, int, int, int, int);                  \
  template Matrix<T> op_of<T>(char, const Matrix<T> &);                                            \
  template Matrix<wide_t<T>> multiply<T>(char, const Matrix<T> &, char, const Matrix<T> &,         \
                                         Matrix<double> *);

ORB_MATRIX_INSTANTIATE(float)
ORB_MATRIX_INSTANTIATE(double)
ORB_MATRIX_INSTANTIATE(std::complex<float>)
ORB_MATRIX_INSTANTIATE(std::complex<double>)

}  // namespace orb::test
