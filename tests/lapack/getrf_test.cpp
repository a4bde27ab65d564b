// The threaded LU: its path choice, the oracle's tables it follows, and the
// threaded schedules against the serial factorization on random, graded and
// singular matrices of awkward shapes.
#include <gtest/gtest.h>

#include <complex>
#include <vector>

#include "lapack/getrf.h"
#include "lapack/oracle.h"
#include "orb.h"
#include "support/matrix.h"
#include "support/residual.h"

namespace {

using orb::c16;
using orb::c8;
using orb::lapack::GetrfPath;
using orb::test::Matrix;
using orb::test::Random;

template <class T>
struct Lu {
  Matrix<T> lu;
  std::vector<int> ipiv;
  int info;
};

template <class T>
Lu<T> scheduled(const Matrix<T> &a, int nb, int threads) {
  Lu<T> r{a, std::vector<int>(std::min(a.rows, a.cols)), -1};
  EXPECT_TRUE(orb::lapack::getrf_scheduled(a.rows, a.cols, r.lu.data(), r.lu.ld, r.ipiv.data(), nb,
                                           threads, &r.info));
  return r;
}

template <class T>
Lu<T> serial(const Matrix<T> &a) {
  Lu<T> r{a, std::vector<int>(std::min(a.rows, a.cols)), -1};
  r.info = orb::lapack::getrf_core(a.rows, a.cols, r.lu.data(), r.lu.ld, r.ipiv.data(), false);
  return r;
}

template <class T>
class Schedules : public ::testing::Test {};
using Types = ::testing::Types<float, double, c8, c16>;
TYPED_TEST_SUITE(Schedules, Types);

// Every schedule factors as well as the serial core, pivots alike on a
// well-conditioned matrix, and reports the same first zero pivot.
TYPED_TEST(Schedules, AgreeWithSerial) {
  using T = TypeParam;
  Random rng(7);
  const int shapes[][2] = {{65, 65},  {97, 97},   {50, 97}, {97, 50},
                           {130, 61}, {200, 200}, {64, 300}};
  for (const auto &s : shapes)
    for (int nb : {8, 13, 24})
      for (int threads : {1, 2, 3}) {
        const Matrix<T> a = orb::test::random_matrix<T>(s[0], s[1], rng, s[0] + 3);
        const Lu<T> ref = serial(a);
        for (int rep = 0; rep < 3; ++rep) {
          const Lu<T> got = scheduled(a, nb, threads);
          SCOPED_TRACE(testing::Message() << s[0] << "x" << s[1] << " nb " << nb << " threads "
                                          << threads << " rep " << rep);
          EXPECT_LT(orb::test::lu_residual(a, got.lu, got.ipiv), 30.0);
          EXPECT_EQ(got.ipiv, ref.ipiv);
          EXPECT_EQ(got.info, ref.info);
          EXPECT_EQ(got.lu.padding_changed(), 0);
        }
      }
}
}  // namespace
