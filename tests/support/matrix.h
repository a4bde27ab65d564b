// Test matrices: a column-major matrix with a leading dimension, and the
// generators tests draw their operands from (random, graded, prescribed
// singular values or eigenvalues, band, symmetric or Hermitian,
// ill-conditioned). Generators compute in double precision and round to the
// element type at the end; each is deterministic from its Random's seed.
// The implementations are in matrix.cpp, instantiated for float, double,
// std::complex<float> and std::complex<double>.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <type_traits>
#include <vector>

#include "support/reference.h"

namespace orb::test {

template <class T>
struct RealOf {
  using type = T;
};
template <class R>
struct RealOf<std::complex<R>> {
  using type = R;
};
template <class T>
using real_t = typename RealOf<T>::type;
template <class T>
constexpr bool kIsComplex = !std::is_same_v<T, real_t<T>>;

// A value of T from a real and an imaginary part (dropped for real T).
template <class T>
T make(double re, double im = 0) {
  if constexpr (kIsComplex<T>)
    return T(static_cast<real_t<T>>(re), static_cast<real_t<T>>(im));
  else
    return static_cast<T>(re);
}

// Uniform numbers from a seed: the same sequence on every platform
// (std::mt19937 is fixed by the C++ standard, and the conversion is exact).
class Random {
 public:
  explicit Random(std::uint32_t seed = 1) : engine_(seed) {}
  // In [-1, 1).
  double uniform() { return static_cast<double>(engine_()) * (2.0 / 4294967296.0) - 1.0; }
  // Real part, then imaginary part for complex T.
  template <class T>
  T value() {
    const double re = uniform();
    return make<T>(re, kIsComplex<T> ? uniform() : 0.0);
  }

 private:
  std::mt19937 engine_;
};

// What every element outside a Matrix holds.
template <class T>
T padding_value() {
  return make<T>(1234.5, -543.25);
}

// rows by cols, column j at data() + j * ld. The storage starts `offset`
// elements before data() (an odd offset misaligns the matrix) and ends one
// element past the last column; every element outside the matrix holds
// padding_value(), so a test can see whether a routine wrote outside it.
template <class T>
struct Matrix {
  int rows = 0, cols = 0, ld = 1, offset = 0;
  std::vector<T> mem;

  Matrix() : mem(1, padding_value<T>()) {}
  // Zeros inside; ld = 0 means max(1, rows).
  Matrix(int rows_, int cols_, int ld_ = 0, int offset_ = 0)
      : rows(rows_),
        cols(cols_),
        ld(ld_ > 0 ? ld_ : (rows_ > 1 ? rows_ : 1)),
        offset(offset_),
        mem(offset_ + static_cast<std::size_t>(ld) * cols_ + 1, padding_value<T>()) {
    for (int j = 0; j < cols; ++j)
      for (int i = 0; i < rows; ++i) (*this)(i, j) = T(0);
  }

  T &operator()(int i, int j) { return mem[offset + i + static_cast<std::size_t>(j) * ld]; }
  const T &operator()(int i, int j) const {
    return mem[offset + i + static_cast<std::size_t>(j) * ld];
  }
  T *data() { return mem.data() + offset; }
  const T *data() const { return mem.data() + offset; }

  // The number of elements outside the matrix that no longer hold the
  // padding value, compared bit for bit.
  int padding_changed() const;
  // The same elements at another leading dimension and offset.
  Matrix placed(int new_ld, int new_offset = 0) const;
};

// Whether two matrices hold the same bits everywhere, padding included.
template <class T>
bool same_bits(const Matrix<T> &x, const Matrix<T> &y) {
  return x.mem.size() == y.mem.size() &&
         std::memcmp(x.mem.data(), y.mem.data(), x.mem.size() * sizeof(T)) == 0;
}

// ---- generators -------------------------------------------------------------------

// Entries uniform in [-1, 1) (real and imaginary parts each).
template <class T>
Matrix<T> random_matrix(int m, int n, Random &rng, int ld = 0);

// Random entries with row i scaled by 10^(-row_decades i / (m - 1)) and
// column j by 10^(-col_decades j / (n - 1)): from 1 down to 10^-decades.
template <class T>
Matrix<T> graded_matrix(int m, int n, double row_decades, double col_decades, Random &rng,
                        int ld = 0);

// U diag(sigma) V^H with sigma's min(m, n) values on the diagonal and U
// (m by m), V (n by n) random orthogonal or unitary, products of Householder
// reflectors of random vectors. U and V themselves, rounded to T, when asked
// for. The singular values are exact before the rounding to T, which moves
// each by about eps ||A||.
template <class T>
Matrix<T> with_singular_values(int m, int n, const std::vector<double> &sigma, Random &rng,
                               int ld = 0, Matrix<T> *u = nullptr, Matrix<T> *v = nullptr);

// n values from 1 down to 1 / cond, geometrically spaced.
std::vector<double> geometric_values(int n, double cond);

// Condition number `cond` in the 2-norm: singular values from 1 down to
// 1 / cond, geometrically spaced.
template <class T>
Matrix<T> ill_conditioned(int m, int n, double cond, Random &rng, int ld = 0);

// Q diag(lambda) Q^H, symmetric (real T) or Hermitian, exactly so after the
// rounding to T, with Q a random orthogonal or unitary matrix (returned,
// rounded to T, when asked for).
template <class T>
Matrix<T> with_eigenvalues(const std::vector<double> &lambda, Random &rng, int ld = 0,
                           Matrix<T> *q = nullptr);

enum class Triangle { kFull, kUpper, kLower };

// A random symmetric matrix, or Hermitian (real diagonal) when `hermitian`
// and T is complex. With kUpper or kLower only that triangle is stored and
// the other strict triangle holds NaN, which shows up in any result that
// reads it.
template <class T>
Matrix<T> symmetric_matrix(int n, bool hermitian, Random &rng, int ld = 0,
                           Triangle stored = Triangle::kFull);

// The other strict triangle of `a` set to NaN.
template <class T>
void keep_triangle(Matrix<T> &a, Triangle stored);

// The whole symmetric or Hermitian matrix whose triangle `stored` is in `a`
// (a Hermitian diagonal taken as real).
template <class T>
Matrix<T> full_from_triangle(const Matrix<T> &a, Triangle stored, bool hermitian);

// The triangle of `a`, zeros in the other and, when `unit`, ones on the
// diagonal: the matrix a triangular routine works with.
template <class T>
Matrix<T> triangular_part(const Matrix<T> &a, Triangle stored, bool unit);

// ---- band matrices ----------------------------------------------------------------

// kl subdiagonals and ku superdiagonals of random entries, zeros elsewhere,
// in full storage.
template <class T>
Matrix<T> band_matrix(int m, int n, int kl, int ku, Random &rng, int ld = 0);

// The band of `a` in LAPACK band storage: a(i, j) at row extra + ku + i - j
// of column j, for max(0, j - ku) <= i <= min(m - 1, j + kl), in
// extra + kl + ku + 1 rows. The `extra` rows on top are room a factorization
// fills in (kl for xGBTRF); they and the unused corners hold NaN.
template <class T>
Matrix<T> to_band_storage(const Matrix<T> &a, int kl, int ku, int extra = 0, int ldab = 0);

// The m-row full matrix held in band storage as to_band_storage lays it
// out. The factor U that xGBTRF leaves in its band storage is
// from_band_storage(ab, m, 0, kl + ku).
template <class T>
Matrix<T> from_band_storage(const Matrix<T> &ab, int m, int kl, int ku, int extra = 0);

// ---- reference products -----------------------------------------------------------

// op(A) op(B) in double precision, trans 'N', 'T' or 'C'. `bound`, when
// given, receives the sums of |op(A)(i, p)| |op(B)(p, j)|, the scale of the
// rounding error of the same product formed in T.
template <class T>
Matrix<wide_t<T>> multiply(char ta, const Matrix<T> &a, char tb, const Matrix<T> &b,
                           Matrix<double> *bound = nullptr);

// op(A) as a matrix of its own.
template <class T>
Matrix<T> op_of(char trans, const Matrix<T> &a);

// The same matrix in another element type (double precision for a
// reference; a widened matrix rounded back).
template <class To, class From>
Matrix<To> converted(const Matrix<From> &a) {
  Matrix<To> r(a.rows, a.cols);
  for (int j = 0; j < a.cols; ++j)
    for (int i = 0; i < a.rows; ++i) r(i, j) = static_cast<To>(a(i, j));
  return r;
}

}  // namespace orb::test
