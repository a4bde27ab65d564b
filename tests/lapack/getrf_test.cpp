// The threaded LU: its path choice, the oracle's tables it follows, and the
// threaded schedules against the serial factorization on random, graded and
// singular matrices of awkward shapes.
#include <gtest/gtest.h>

#include <complex>
#include <cstring>
#include <string>
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
using orb::lapack::oracle;
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
        const Lu<T> first = scheduled(a, nb, threads);
        for (int rep = 0; rep < 3; ++rep) {
          const Lu<T> got = scheduled(a, nb, threads);
          // However the team shared the work, the same bits.
          EXPECT_EQ(
              std::memcmp(got.lu.mem.data(), first.lu.mem.data(), sizeof(T) * got.lu.mem.size()),
              0);
          SCOPED_TRACE(testing::Message() << s[0] << "x" << s[1] << " nb " << nb << " threads "
                                          << threads << " rep " << rep);
          EXPECT_LT(orb::test::lu_residual(a, got.lu, got.ipiv), 30.0);
          EXPECT_EQ(got.ipiv, ref.ipiv);
          EXPECT_EQ(got.info, ref.info);
          EXPECT_EQ(got.lu.padding_changed(), 0);
        }
      }
}

// Graded rows and columns, and singular matrices: the threaded factorization
// completes, reports the first zero pivot's column and matches the serial one.
TYPED_TEST(Schedules, GradedAndSingular) {
  using T = TypeParam;
  Random rng(11);
  for (const int n : {65, 120}) {
    Matrix<T> graded = orb::test::graded_matrix<T>(n, n, 6, 4, rng);
    Matrix<T> tail_zero = orb::test::random_matrix<T>(n, n, rng);
    for (int j = n / 2; j < n; ++j)
      for (int i = 0; i < n; ++i) tail_zero(i, j) = T(0);
    Matrix<T> first_zero = orb::test::random_matrix<T>(n, n, rng);
    for (int i = 0; i < n; ++i) first_zero(i, 0) = T(0);
    for (Matrix<T> *a : {&graded, &tail_zero, &first_zero}) {
      const Lu<T> ref = serial(*a);
      const Lu<T> got = scheduled(*a, 16, 2);
      EXPECT_LT(orb::test::lu_residual(*a, got.lu, got.ipiv), 30.0);
      EXPECT_EQ(got.info, ref.info);
    }
    EXPECT_EQ(serial(tail_zero).info, n / 2 + 1);
    EXPECT_EQ(serial(first_zero).info, 1);
  }
}

// The oracle's LU answers: block size by thread count and order, the
// crossover, and the scheduling values of queries 17 and 18.
TEST(Oracle, GetrfTables) {
  struct Case {
    int threads, n, nb, lookahead, chunk;
  };
  const Case cases[] = {
      {2, 1100, 24, 3, 4},  {2, 1101, 64, 3, 4},   {4, 3600, 64, 3, 4},   {3, 4000, 64, 3, 4},
      {2, 4001, 200, 2, 8}, {2, 6000, 200, 2, 8},  {2, 6001, 400, 1, 8},  {4, 9001, 400, 1, 8},
      {5, 1100, 16, 2, 4},  {8, 2000, 32, 2, 4},   {6, 3600, 64, 2, 4},   {8, 3601, 128, 1, 8},
      {8, 4000, 128, 1, 8}, {7, 4001, 200, 2, 8},  {8, 9000, 200, 2, 8},  {8, 9001, 400, 2, 8},
      {9, 8000, 128, 1, 8}, {16, 8001, 200, 1, 8}, {12, 2200, 128, 1, 0}, {1, 5000, 1, 1, 0},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(testing::Message() << c.threads << " threads, N " << c.n);
    if (c.threads >= 2) {
      EXPECT_EQ(oracle(orb::lapack::kBlockSize, "SGETRF", 100, c.n, c.threads), c.nb);
    }
    EXPECT_EQ(oracle(orb::lapack::kLookahead, "SGETRF", 100, c.n, c.threads), c.lookahead);
    EXPECT_EQ(oracle(orb::lapack::kChunk, "SGETRF", 100, c.n, c.threads), c.chunk);
    EXPECT_EQ(oracle(orb::lapack::kCrossover, "SGETRF", 100, c.n, c.threads), 64);
  }
  EXPECT_EQ(oracle(orb::lapack::kCrossover, "SGETRF", 9000, 9000, -1), 64);
  // Double precision crosses over to the inner-blocked LU only on 8 threads.
  EXPECT_EQ(oracle(orb::lapack::kCrossover, "DGETRF", 3000, 2801, 8), 4000);
  EXPECT_EQ(oracle(orb::lapack::kCrossover, "DGETRF", 3000, 2800, 8), 64);
  EXPECT_EQ(oracle(orb::lapack::kCrossover, "DGETRF", 3000, 5000, 7), 64);
  // Query 17 is 1 for anything but a GE...TRF factorization.
  EXPECT_EQ(oracle(orb::lapack::kLookahead, "SPOTRF", 100, 3000, 2), 1);
  EXPECT_EQ(oracle(orb::lapack::kLookahead, "SGEQRF", 100, 3000, 2), 1);
  EXPECT_EQ(oracle(orb::lapack::kLookahead, "sgetrf", 100, 3000, 2), 3);
  EXPECT_EQ(oracle(42, "SGETRF", 1, 1, 1), -1);
}

// The LU's path for a shape and thread count, through the exported entry.
GetrfPath path_of(int m, int n, int threads, bool dbl = false) {
  ORB_Set_Dynamic(0);
  ORB_Set_Num_Threads(threads);
  Random rng(3);
  std::vector<int> ipiv(std::max(1, std::min(m, n)));
  int info = -1;
  const int lda = std::max(1, m);
  if (dbl) {
    Matrix<double> a = orb::test::random_matrix<double>(m, n, rng);
    DGETRF(&m, &n, a.data(), &lda, ipiv.data(), &info);
  } else {
    Matrix<float> a = orb::test::random_matrix<float>(m, n, rng);
    sgetrf(&m, &n, a.data(), &lda, ipiv.data(), &info);
  }
  EXPECT_EQ(info, 0);
  return orb::lapack::getrf_last_path();
}

TEST(GetrfPaths, ByShapeAndThreads) {
  const int threads = ORB_Get_Max_Threads(), dynamic = ORB_Get_Dynamic();
  EXPECT_EQ(path_of(500, 500, 1), GetrfPath::kSerial);
  EXPECT_EQ(path_of(64, 64, 2), GetrfPath::kSerial);
  EXPECT_EQ(path_of(300, 64, 8), GetrfPath::kSerial);
  EXPECT_EQ(path_of(65, 65, 2), GetrfPath::kScheduled);
  EXPECT_EQ(path_of(20, 100, 2), GetrfPath::kSerialBlocked);  // nb 24 >= min(M, N)
  EXPECT_EQ(path_of(16, 2801, 8, true), GetrfPath::kInnerBlocked);
  EXPECT_EQ(path_of(16, 2801, 8), GetrfPath::kSerialBlocked);
  ORB_Set_Num_Threads(threads);
  ORB_Set_Dynamic(dynamic);
}

// Empty matrices leave A and IPIV alone; LDA is checked against max(1, M).
TEST(GetrfPaths, EmptyAndBadArguments) {
  float a[4] = {1, 2, 3, 4};
  int ipiv[2] = {-7, -7};
  for (const auto &mn : {std::pair{0, 2}, std::pair{2, 0}}) {
    int info = -1, lda = 2;
    sgetrf(&mn.first, &mn.second, a, &lda, ipiv, &info);
    EXPECT_EQ(info, 0);
  }
  EXPECT_EQ(a[0], 1);
  EXPECT_EQ(a[3], 4);
  EXPECT_EQ(ipiv[0], -7);
  const int zero = 0, two = 2, minus = -1;
  int info = 0;
  testing::internal::CaptureStdout();
  sgetrf(&zero, &two, a, &zero, ipiv, &info);
  EXPECT_EQ(info, -4);
  cgetrf(&minus, &two, nullptr, &two, ipiv, &info);
  EXPECT_EQ(info, -1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "ORB ERROR: Parameter 4 was incorrect on entry to SGETRF\n"
            "ORB ERROR: Parameter 1 was incorrect on entry to CGETRF\n");
}

}  // namespace
