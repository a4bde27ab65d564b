// The dqds algorithm (lasq2, lasq1) against bisection in double precision
// on the Golub-Kahan form of the bidiagonal (zero diagonal), whose Sturm
// counts determine even the tiniest singular values to high relative
// accuracy: random, graded, split and diagonal qd arrays, the small
// orders, and the input checks.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "lapack/eigen.h"
#include "lapack/svd.h"

namespace {

namespace lp = orb::lapack;

// The singular values (descending) of the upper bidiagonal with diagonal
// a and superdiagonal b, by bisection on the Sturm counts of the
// tridiagonal with zero diagonal and off-diagonals a1, b1, a2, b2, ...
std::vector<double> bidiagonal_values(const std::vector<double> &a, const std::vector<double> &b) {
  const int n = static_cast<int>(a.size());
  std::vector<double> off;
  for (int i = 0; i < n; ++i) {
    off.push_back(a[i]);
    if (i + 1 < n) off.push_back(b[i]);
  }
  const double tiny = std::numeric_limits<double>::min();
  // The number of the 2n eigenvalues (+-sigma) below x.
  auto count = [&](double x) {
    // A zero pivot is taken as a tiny negative one (x a little larger).
    auto pivot = [&](double q) { return std::abs(q) < tiny ? -tiny : q; };
    double q = pivot(-x);
    int neg = q < 0;
    for (double o : off) {
      q = pivot(-x - o * o / q);
      neg += q < 0;
    }
    return neg;
  };
  double hi = 0;
  for (double o : off) hi = std::max(hi, 2 * std::abs(o));
  std::vector<double> s(n);
  for (int k = 0; k < n; ++k) {
    // The (k+1)-th smallest singular value: count(x) - n values below x.
    double lo_x = 0, hi_x = hi;
    for (int it = 0; it < 2000 && hi_x - lo_x > 1e-15 * hi_x; ++it) {
      const double mid = 0.5 * (lo_x + hi_x);
      if (mid == lo_x || mid == hi_x) break;
      if (count(mid) - n > k)
        hi_x = mid;
      else
        lo_x = mid;
    }
    s[n - 1 - k] = 0.5 * (lo_x + hi_x);
  }
  return s;
}

// The eigenvalues of the qd array (q, e) (q(k) = a(k)^2, e(k) = b(k)^2).
std::vector<double> qd_values(const std::vector<float> &q, const std::vector<float> &e) {
  std::vector<double> a, b;
  for (float x : q) a.push_back(std::sqrt(double(x)));
  for (float x : e) b.push_back(std::sqrt(double(x)));
  std::vector<double> s = bidiagonal_values(a, b);
  for (double &x : s) x *= x;
  return s;
}

// lasq2 on (q, e) against bisection, relatively; returns INFO.
void expect_lasq2(const std::vector<float> &q, const std::vector<float> &e, double rtol) {
  const int n = static_cast<int>(q.size());
  std::vector<float> z(4 * n + 8, -1.0f);
  for (int k = 0; k < n; ++k) {
    z[2 * k] = q[k];
    if (k + 1 < n) z[2 * k + 1] = e[k];
  }
  ASSERT_EQ(lp::lasq2(n, z.data()), 0);
  const std::vector<double> want = qd_values(q, e);
  for (int k = 0; k < n; ++k) {
    EXPECT_NEAR(z[k], want[k], rtol * want[k]) << "eigenvalue " << k << " of " << n;
    if (k > 0) {
      EXPECT_GE(z[k - 1], z[k]);
    }
  }
  if (n > 2 && *std::max_element(e.begin(), e.end()) > 0) {
    // The trace and the sum of the eigenvalues agree.
    double trace = 0;
    for (float x : q) trace += x;
    for (float x : e) trace += x;
    EXPECT_NEAR(z[2 * n], trace, 1e-5 * trace);
    EXPECT_NEAR(z[2 * n + 1], trace, 1e-5 * trace);
    EXPECT_GE(z[2 * n + 2], 2.0f);  // transforms
  }
}

constexpr double kRel = 1e-5;  // a few dozen float ulps, whatever the size

TEST(Lasq2, RandomPositiveDefinite) {
  std::mt19937 gen(7);
  std::uniform_real_distribution<float> u(0.01f, 1.0f);
  for (int n : {3, 4, 5, 8, 17, 60, 200}) {
    std::vector<float> q(n), e(n - 1);
    for (float &x : q) x = u(gen);
    for (float &x : e) x = u(gen);
    expect_lasq2(q, e, kRel);
  }
}

TEST(Lasq2, GradedKeepsTinyValuesAccurate) {
  // Entries over thirty decades, growing and shrinking down the array:
  // the small eigenvalues are still found to full relative accuracy.
  for (bool down : {true, false}) {
    const int n = 12;
    std::vector<float> q(n), e(n - 1);
    for (int k = 0; k < n; ++k) {
      const int p = down ? k : n - 1 - k;
      q[k] = static_cast<float>(std::pow(10.0, -2.5 * p));
      if (k + 1 < n) e[k] = 0.7f * static_cast<float>(std::pow(10.0, -2.5 * p - 1.2));
    }
    expect_lasq2(q, e, kRel);
  }
}

TEST(Lasq2, ClusteredAndSplit) {
  // Equal q's (clustered eigenvalues), and an array that splits at a zero e.
  std::vector<float> q(30, 1.0f), e(29, 1e-4f);
  expect_lasq2(q, e, kRel);
  std::vector<float> q2 = {4, 3, 2, 1, 5, 6, 0.5f, 2}, e2 = {1, 0.5f, 0.25f, 0, 2, 0.1f, 0.3f};
  expect_lasq2(q2, e2, kRel);
}

TEST(Lasq2, DiagonalAndSmallOrders) {
  expect_lasq2({3, 1, 4, 1.5f, 9}, {0, 0, 0, 0}, kRel);
  expect_lasq2({2, 7}, {3}, kRel);
  expect_lasq2({1e-20f, 1}, {1e-25f}, kRel);
  std::vector<float> z = {2.5f, 0, 0, 0};
  EXPECT_EQ(lp::lasq2(1, z.data()), 0);
  EXPECT_EQ(z[0], 2.5f);
}

TEST(Lasq2, NegativeEntriesAreReported) {
  std::vector<float> z = {1, 2, 3, -1, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(lp::lasq2(3, z.data()), -204);
  z = {1, 0.5f, -3, 0, 0, 0, 0, 0};
  EXPECT_EQ(lp::lasq2(2, z.data()), -203);
}

TEST(Lasq1, SingularValuesOfBidiagonal) {
  // Signs do not matter; the scaling keeps huge and tiny entries accurate.
  std::mt19937 gen(3);
  std::uniform_real_distribution<float> u(-1.0f, 1.0f);
  for (float scale : {1.0f, 1e-30f, 1e30f}) {
    for (int n : {1, 2, 3, 9, 50}) {
      std::vector<float> d(n), e(std::max(n - 1, 1)), work(4 * n);
      for (float &x : d) x = scale * u(gen);
      for (float &x : e) x = scale * u(gen);
      std::vector<double> a(d.begin(), d.end()), b(e.begin(), e.begin() + (n - 1));
      for (double &x : a) x = std::abs(x);
      for (double &x : b) x = std::abs(x);
      const std::vector<double> want = bidiagonal_values(a, b);
      ASSERT_EQ(lp::lasq1(n, d.data(), e.data(), work.data()), 0);
      for (int k = 0; k < n; ++k)
        EXPECT_NEAR(d[k], want[k], 1e-5 * want[k]) << "n " << n << " scale " << scale;
    }
  }
}

}  // namespace
