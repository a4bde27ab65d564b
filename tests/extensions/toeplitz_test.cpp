#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "orb.h"

namespace {

using C = std::complex<float>;
using Z = std::complex<double>;

// The dense matrix A(i, j) = t_{j-i} solved by elimination with partial
// pivoting in double.
template <class T>
std::vector<T> dense_solve(const std::vector<T> &a1, const std::vector<T> &a2,
                           const std::vector<T> &b) {
  using W = std::conditional_t<std::is_same_v<T, float>, double, Z>;
  const int m = static_cast<int>(b.size());
  std::vector<W> a(static_cast<size_t>(m) * m), y(b.begin(), b.end());
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < m; ++j) a[i * m + j] = W(j >= i ? a1[j - i] : a2[i - j - 1]);
  for (int k = 0; k < m; ++k) {
    int p = k;
    for (int i = k + 1; i < m; ++i)
      if (std::abs(a[i * m + k]) > std::abs(a[p * m + k])) p = i;
    for (int j = 0; j < m; ++j) std::swap(a[k * m + j], a[p * m + j]);
    std::swap(y[k], y[p]);
    for (int i = k + 1; i < m; ++i) {
      const W l = a[i * m + k] / a[k * m + k];
      for (int j = k; j < m; ++j) a[i * m + j] -= l * a[k * m + j];
      y[i] -= l * y[k];
    }
  }
  for (int k = m - 1; k >= 0; --k) {
    for (int j = k + 1; j < m; ++j) y[k] -= a[k * m + j] * y[j];
    y[k] /= a[k * m + k];
  }
  return std::vector<T>(y.begin(), y.end());
}

template <class T>
T draw(std::mt19937 &gen) {
  std::uniform_real_distribution<float> u(-1.0f, 1.0f);
  if constexpr (std::is_same_v<T, float>)
    return u(gen);
  else
    return T(u(gen), u(gen));
}

void solve(std::vector<float> &a1, std::vector<float> &a2, const float *b, float *x, int m) {
  std::vector<float> c1(m), c2(m);
  TSLS1(a1.data(), a2.data(), b, x, c1.data(), c2.data(), &m);
}
void solve(std::vector<C> &a1, std::vector<C> &a2, const C *b, C *x, int m) {
  std::vector<C> c1(m), c2(m);
  TSLC1(reinterpret_cast<orb_complex8 *>(a1.data()), reinterpret_cast<orb_complex8 *>(a2.data()),
        reinterpret_cast<const orb_complex8 *>(b), reinterpret_cast<orb_complex8 *>(x),
        reinterpret_cast<orb_complex8 *>(c1.data()), reinterpret_cast<orb_complex8 *>(c2.data()),
        &m);
}

// A diagonally dominant random Toeplitz matrix (every leading minor regular,
// the condition number modest) against the dense solve, into a separate x
// and in place over b.
template <class T>
void check_against_dense(int m, unsigned seed) {
  std::mt19937 gen(seed);
  std::vector<T> a1(m), a2(m), b(m);
  for (auto &v : a1) v = draw<T>(gen) / float(m);
  for (auto &v : a2) v = draw<T>(gen) / float(m);
  a1[0] = T(2.0f) + draw<T>(gen) * 0.5f;
  for (auto &v : b) v = draw<T>(gen);
  const std::vector<T> ref = dense_solve(a1, std::vector<T>(a2.begin(), a2.end() - 1), b);
  std::vector<T> x(m), inplace = b;
  solve(a1, a2, b.data(), x.data(), m);
  solve(a1, a2, inplace.data(), inplace.data(), m);
  double err = 0, norm = 0;
  for (int i = 0; i < m; ++i) {
    err = std::max(err, double(std::abs(x[i] - ref[i])));
    norm = std::max(norm, double(std::abs(ref[i])));
    EXPECT_EQ(x[i], inplace[i]) << "m " << m << " i " << i;
  }
  EXPECT_LT(err, 20 * m * 0x1p-24 * norm) << "m " << m;
}

TEST(Toeplitz, RealSolvesMatchTheDenseSolveAlsoInPlace) {
  for (int m : {1, 2, 3, 17, 300}) check_against_dense<float>(m, 11u + m);
}

TEST(Toeplitz, ComplexSolvesMatchTheDenseSolveAlsoInPlace) {
  for (int m : {1, 2, 3, 17, 300}) check_against_dense<C>(m, 23u + m);
}

// A nonsymmetric matrix whose own leading minors are far from the diagonal
// dominance above: t_0 small against its neighbours but every minor regular.
TEST(Toeplitz, IndefiniteNonsymmetricMatrix) {
  std::vector<float> a1 = {0.5f, 2.0f, -1.0f, 0.25f}, a2 = {-1.5f, 0.75f, 3.0f, 0.0f};
  std::vector<float> b = {1.0f, -2.0f, 0.5f, 4.0f}, x(4);
  const std::vector<float> ref = dense_solve(a1, std::vector<float>(a2.begin(), a2.end() - 1), b);
  solve(a1, a2, b.data(), x.data(), 4);
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(x[i], ref[i], 1e-5 * std::abs(ref[i]) + 1e-6) << i;
}

// A vanishing leading minor (order 1: t_0 = 0; order 2: t_0^2 = t_1 t_{-1})
// is reported as a bad matrix and gives x = 0, even where the whole matrix
// is regular; a non-positive order is reported as bad argument 7.
TEST(Toeplitz, SingularLeadingMinorIsReportedNotDividedBy) {
  testing::internal::CaptureStdout();
  std::vector<float> r1 = {0.0f, 1.0f}, r2 = {1.0f, 0.0f}, b = {1.0f, 2.0f}, x = {9.0f, 9.0f};
  solve(r1, r2, b.data(), x.data(), 2);
  EXPECT_EQ(x, std::vector<float>(2, 0.0f));
  std::vector<C> c1 = {C(1, 1), C(2, 2), C(0, 1)}, c2 = {C(0.5f, 0.5f), C(1, 0), C(0, 0)};
  std::vector<C> cb = {C(1, 0), C(0, 1), C(1, 1)}, cx(3, C(7, 7));
  solve(c1, c2, cb.data(), cx.data(), 3);
  EXPECT_EQ(cx, std::vector<C>(3, C(0, 0)));
  solve(r1, r2, b.data(), x.data(), 0);
  const std::string out = testing::internal::GetCapturedStdout();
  EXPECT_EQ(out,
            "ORB ERROR: Parameter 1 was incorrect on entry to TSLS1\n"
            "ORB ERROR: Parameter 1 was incorrect on entry to TSLC1\n"
            "ORB ERROR: Parameter 7 was incorrect on entry to TSLS1\n");
}

}  // namespace
