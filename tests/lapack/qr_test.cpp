// The QR family's own code: the look-ahead team factorization against the
// published blocked one (every team giving the same bits), the blocked
// products with Q against one reflector at a time for the QR, LQ and QL
// layouts (the team form, any size, giving the serial bits), the paths the
// oracle chooses, and the entries' checks and workspace answers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "lapack/householder.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/qr.h"
#include "orb.h"
#include "support/matrix.h"
#include "support/residual.h"

namespace {

namespace lp = orb::lapack;
using orb::c16;
using orb::c8;
using orb::Op;
using orb::Side;
using orb::test::Matrix;
using orb::test::Random;
using orb::test::same_bits;

template <class T>
double max_diff(const Matrix<T> &x, const Matrix<T> &y) {
  double d = 0;
  for (int j = 0; j < x.cols; ++j)
    for (int i = 0; i < x.rows; ++i) d = std::max(d, double(std::abs(x(i, j) - y(i, j))));
  return d;
}

template <class T>
class Qr : public ::testing::Test {};
using Types = ::testing::Types<float, double, c8, c16>;
TYPED_TEST_SUITE(Qr, Types);

// The team's factors are those of the published blocked factorization up
// to rounding, and the same bits for teams of 1, 2 and 3 (each block gets
// the same products in the same order whoever makes them); they factor A.
TYPED_TEST(Qr, TeamMatchesBlockedFactorization) {
  using T = TypeParam;
  Random rng(5);
  const double eps = orb::test::epsilon<T>();
  for (const auto &[m, n, nb] :
       {std::tuple{300, 200, 32}, {150, 260, 32}, {257, 257, 48}, {97, 97, 16}, {40, 3, 8}}) {
    SCOPED_TRACE(testing::Message() << "m " << m << " n " << n << " nb " << nb);
    const Matrix<T> a = orb::test::random_matrix<T>(m, n, rng, m + 3);
    const int k = std::min(m, n);

    // The published blocked form: one thread, WORK for blocks of nb.
    ORB_Set_Num_Threads(1);
    Matrix<T> serial = a;
    std::vector<T> tau_s(k), work(static_cast<std::size_t>(n) * 64);
    lp::geqrf(m, n, serial.data(), serial.ld, tau_s.data(), work.data(),
              static_cast<int>(work.size()));
    ORB_Set_Num_Threads(2);

    Matrix<T> first;
    std::vector<T> tau_first;
    for (int threads : {1, 2, 3}) {
      SCOPED_TRACE(testing::Message() << "threads " << threads);
      Matrix<T> f = a;
      std::vector<T> tau(k);
      ASSERT_TRUE(lp::geqrf_team(m, n, f.data(), f.ld, tau.data(), nb, threads));
      EXPECT_EQ(f.padding_changed(), 0);
      if (threads == 1) {
        first = f;
        tau_first = tau;
        EXPECT_LE(max_diff(f, serial), 50 * std::max(m, n) * eps * orb::test::norm_max(a));
      } else {
        EXPECT_TRUE(same_bits(f, first));
      }
    }
    // Q R = A, with Q formed by orgqr from the team's factors.
    if (m >= n) {
      Matrix<T> q = first;
      lp::orgqr(m, n, k, q.data(), q.ld, tau_first.data(), work.data(),
                static_cast<int>(work.size()));
      EXPECT_LE(orb::test::orthogonality(q), 30.0);
      const Matrix<T> r = orb::test::triangular_part(first, orb::test::Triangle::kUpper, false);
      const auto qr = orb::test::multiply('N', q, 'N', r);
      using W = std::decay_t<decltype(qr(0, 0))>;
      double err = 0;
      for (int j = 0; j < n; ++j)
        for (int i = 0; i < m; ++i)
          err = std::max(err, double(std::abs(qr(i, j) - static_cast<W>(a(i, j)))));
      EXPECT_LE(err, 30 * m * eps * orb::test::norm_max(a));
    }
  }
}

// geqrf takes the team from the oracle's crossover on two threads, the
// published blocked form below it or on one thread, and column by column
// for short WORK.
TYPED_TEST(Qr, PathsFollowTheOracle) {
  using T = TypeParam;
  Random rng(9);
  const lp::Name6 nm = lp::name<T>("GEQRF");
  const int cross = lp::oracle(lp::kCrossover, nm, -1, -1, 2);
  const int nx = lp::oracle(lp::kCrossover, nm);
  ASSERT_GT(cross, nx);
  const auto run = [&](int n, int lwork) {
    Matrix<T> a = orb::test::random_matrix<T>(n, n, rng);
    std::vector<T> tau(n), work(std::max(lwork, 1));
    lp::geqrf(n, n, a.data(), a.ld, tau.data(), work.data(), lwork);
    return lp::geqrf_last_path();
  };
  const int nb = lp::oracle(lp::kBlockSize, nm, cross, cross);
  ORB_Set_Num_Threads(2);
  EXPECT_EQ(run(cross, cross * nb), lp::GeqrfPath::kTeam);
  EXPECT_EQ(run(cross - 1, (cross - 1) * nb), lp::GeqrfPath::kBlocked);
  EXPECT_EQ(run(cross, cross), lp::GeqrfPath::kUnblocked);  // WORK for no block
  EXPECT_EQ(run(nx, nx * nb), lp::GeqrfPath::kUnblocked);
  ORB_Set_Num_Threads(1);
  EXPECT_EQ(run(cross, cross * nb), lp::GeqrfPath::kBlocked);
  ORB_Set_Num_Threads(2);
}

// k reflectors in A laid out as a QR, LQ or QL factorization would leave
// them (random vectors, larfg's scalars).
enum class Layout { kQr, kLq, kQl };
template <class T>
Matrix<T> reflectors(Layout layout, int nq, int k, Random &rng, std::vector<T> *tau) {
  Matrix<T> a = layout == Layout::kLq ? orb::test::random_matrix<T>(k, nq, rng, k + 2)
                                      : orb::test::random_matrix<T>(nq, k, rng, nq + 2);
  tau->assign(k, T(0));
  for (int i = 0; i < k; ++i) {
    std::vector<T> x;
    int len;
    if (layout == Layout::kQl) {
      len = nq - k + i;
      for (int r = 0; r < len; ++r) x.push_back(a(r, i));
    } else {
      len = nq - i - 1;
      for (int r = 0; r < len; ++r)
        x.push_back(layout == Layout::kQr ? a(i + 1 + r, i) : a(i, i + 1 + r));
    }
    T alpha = rng.value<T>();
    lp::larfg(len + 1, alpha, x.data(), 1, (*tau)[i]);
    for (int r = 0; r < len; ++r) {
      if (layout == Layout::kQl)
        a(r, i) = x[r];
      else if (layout == Layout::kQr)
        a(i + 1 + r, i) = x[r];
      else
        a(i, i + 1 + r) = x[r];
    }
  }
  return a;
}

template <class T>
void product(Layout layout, Side side, Op op, int m, int n, int k, const Matrix<T> &a,
             const std::vector<T> &tau, Matrix<T> &c, bool unblocked) {
  const int nw = side == Side::kLeft ? n : m;
  std::vector<T> work(static_cast<std::size_t>(nw) * 64 + 65 * 64);
  const int lwork = unblocked ? std::max(nw, 1) : static_cast<int>(work.size());
  const auto fn = layout == Layout::kQr   ? lp::ormqr<T>
                  : layout == Layout::kLq ? lp::ormlq<T>
                                          : lp::ormql<T>;
  fn(side, op, m, n, k, a.data(), a.ld, tau.data(), c.data(), c.ld, work.data(), lwork);
}

// Blocked products equal the reflectors applied one at a time (a WORK too
// short for a block); the team form gives one bit pattern for any team
// size, and A is left as it was.
TYPED_TEST(Qr, ProductsBlockedAndTeamed) {
  using T = TypeParam;
  Random rng(13);
  const double eps = orb::test::epsilon<T>();
  const Op adj = orb::is_complex_v<T> ? Op::kConjTrans : Op::kTrans;
  for (Layout layout : {Layout::kQr, Layout::kLq, Layout::kQl})
    for (Side side : {Side::kLeft, Side::kRight})
      for (Op op : {Op::kNone, adj})
        for (const auto &[nq, other, k] : {std::tuple{150, 70, 100}, {90, 33, 90}, {70, 5, 40}}) {
          SCOPED_TRACE(testing::Message()
                       << "layout " << int(layout) << " side " << orb::letter(side) << " op "
                       << orb::letter(op) << " nq " << nq << " other " << other << " k " << k);
          const bool left = side == Side::kLeft;
          const int m = left ? nq : other, n = left ? other : nq;
          std::vector<T> tau;
          const Matrix<T> a = reflectors<T>(layout, nq, k, rng, &tau);
          const Matrix<T> a0 = a;
          const Matrix<T> c0 = orb::test::random_matrix<T>(m, n, rng, m + 1);
          Matrix<T> one = c0;
          product(layout, side, op, m, n, k, a, tau, one, true);
          Matrix<T> blocked = c0;
          lp::orm_force_team(0);
          product(layout, side, op, m, n, k, a, tau, blocked, false);
          EXPECT_LE(max_diff(blocked, one), 20 * nq * eps);
          Matrix<T> first;
          for (int team : {1, 2, 3}) {
            lp::orm_force_team(team);
            Matrix<T> c = c0;
            product(layout, side, op, m, n, k, a, tau, c, false);
            if (team == 1)
              first = c;
            else
              EXPECT_TRUE(same_bits(c, first)) << "team " << team;
          }
          lp::orm_force_team(0);
          EXPECT_LE(max_diff(first, one), 20 * nq * eps);
          EXPECT_TRUE(same_bits(a, a0));
        }
}

// The team for a product: none on one thread or for a narrow C, and a
// crossover that falls as the reflectors' work per column grows.
TEST(QrOracle, ProductTeams) {
  const int small = lp::oracle(lp::kCrossover, "SORMQR", 64, 8, 2);
  const int large = lp::oracle(lp::kCrossover, "SORMQR", 2000, 2000, 2);
  EXPECT_GE(small, large);
  EXPECT_GE(large, 16);
  EXPECT_EQ(lp::orm_team<float>("ORMQR", Side::kLeft, 2000, 4000, 2000, 1), 1);
  EXPECT_EQ(lp::orm_team<float>("ORMQR", Side::kLeft, 2000, large - 1, 2000, 2), 1);
  EXPECT_EQ(lp::orm_team<float>("ORMQR", Side::kRight, 4000, 2000, 2000, 2), 2);
  EXPECT_EQ(lp::orm_team<c8>("UNMLQ", Side::kLeft, 500, 500, 500, 3), 3);
}

// Bad arguments are reported in the published order as INFO = -i with the
// library's message, C untouched; LWORK = -1 answers the optimal size.
TEST(QrEntries, ProductChecksAndQuery) {
  float a[16] = {}, tau[4] = {}, c[16], work[8];
  struct Call {
    char side = 'L', trans = 'T';
    int m = 4, n = 4, k = 2, lda = 4, ldc = 4, lwork = 8;
  };
  const auto call = [&](const Call &x, std::string *out) {
    int info = 12345;
    for (float &e : c) e = 7;
    testing::internal::CaptureStdout();
    sormqr(&x.side, &x.trans, &x.m, &x.n, &x.k, a, &x.lda, tau, c, &x.ldc, work, &x.lwork, &info, 1,
           1);
    *out = testing::internal::GetCapturedStdout();
    return info;
  };
  const struct {
    int code;
    void (*spoil)(Call &);
  } spoils[] = {{1, [](Call &x) { x.side = 'X'; }}, {2, [](Call &x) { x.trans = 'C'; }},
                {3, [](Call &x) { x.m = -1; }},     {4, [](Call &x) { x.n = -1; }},
                {5, [](Call &x) { x.k = 5; }},      {7, [](Call &x) { x.lda = 3; }},
                {10, [](Call &x) { x.ldc = 3; }},   {12, [](Call &x) { x.lwork = 3; }}};
  Call x;
  std::string out;
  for (auto it = std::rbegin(spoils); it != std::rend(spoils); ++it) {
    it->spoil(x);
    EXPECT_EQ(call(x, &out), -it->code);
    EXPECT_EQ(out, "ORB ERROR: Parameter " + std::to_string(it->code) +
                       " was incorrect on entry to SORMQR\n");
    EXPECT_EQ(c[0], 7.0f);
  }
  Call q;
  q.lwork = -1;
  EXPECT_EQ(call(q, &out), 0);
  EXPECT_EQ(work[0], float(4 * lp::oracle(lp::kBlockSize, "SORMQR", 4, 4, 2) + 65 * 64));
  EXPECT_EQ(c[0], 7.0f);

  // CUNMQR takes 'C', not 'T'; SGELS checks LDB against max(M, N).
  orb_complex8 ca[16] = {}, ctau[4] = {}, cc[16] = {}, cwork[8];
  int info = 0;
  const char l = 'L', t = 'T', nn = 'N';
  const int four = 4, two = 2, eight = 8, three = 3, six = 6;
  testing::internal::CaptureStdout();
  cunmqr(&l, &t, &four, &four, &two, ca, &four, ctau, cc, &four, cwork, &eight, &info, 1, 1);
  EXPECT_EQ(info, -2);
  float b[32];
  sgels(&nn, &three, &six, &two, a, &three, b, &three, work, &eight, &info, 1);
  EXPECT_EQ(info, -8);
  testing::internal::GetCapturedStdout();
}

}  // namespace
