// The Cholesky factorization's scheduled team path against the recursive
// one (every team size giving the same bits, the first failing minor found
// wherever it lies, the other triangle untouched), the paths the oracle
// chooses, the band solve's split of the right-hand sides, the double
// precision entries, and the entries' argument checks.
#include <gtest/gtest.h>
#include <omp.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "lapack/cholesky.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "orb.h"
#include "support/matrix.h"
#include "support/residual.h"

namespace {

namespace lp = orb::lapack;
using lp::PotrfPath;
using orb::c16;
using orb::c8;
using orb::Uplo;
using orb::test::Matrix;
using orb::test::Random;
using orb::test::same_bits;
using orb::test::Triangle;

// A Hermitian positive definite matrix, both triangles stored: a random
// one (whose eigenvalues lie within 2 sqrt(n) of 0) shifted by 3 sqrt(n).
template <class T>
Matrix<T> positive_definite(int n, Random &rng, int ld = 0) {
  Matrix<T> a = orb::test::symmetric_matrix<T>(n, true, rng, ld);
  for (int i = 0; i < n; ++i) a(i, i) += orb::test::make<T>(3 * std::sqrt(double(n)));
  return a;
}

// ||A - U^H U||_1 / (n ||A||_1 eps) (or L L^H) from the `uplo` triangle of f.
template <class T>
double cholesky_residual(const Matrix<T> &a, const Matrix<T> &f, Uplo uplo) {
  const bool upper = uplo == Uplo::kUpper;
  const Matrix<T> r =
      orb::test::triangular_part(f, upper ? Triangle::kUpper : Triangle::kLower, false);
  const auto prod =
      upper ? orb::test::multiply('C', r, 'N', r) : orb::test::multiply('N', r, 'C', r);
  using W = std::decay_t<decltype(prod(0, 0))>;
  double err = 0, norm = orb::test::norm_one(a);
  for (int j = 0; j < a.cols; ++j) {
    double s = 0;
    for (int i = 0; i < a.rows; ++i) s += std::abs(prod(i, j) - static_cast<W>(a(i, j)));
    err = std::max(err, s);
  }
  return err / (a.rows * norm * orb::test::epsilon<T>());
}

template <class T>
class Cholesky : public ::testing::Test {};
using Types = ::testing::Types<float, double, c8>;
TYPED_TEST_SUITE(Cholesky, Types);

// Every team size gives the same bits, which factor A as well as the
// recursive factorization's do; the other triangle (NaN-filled) is never
// read or written.
TYPED_TEST(Cholesky, ScheduledTeamsAgree) {
  using T = TypeParam;
  Random rng(7);
  for (Uplo uplo : {Uplo::kLower, Uplo::kUpper})
    for (const auto &[n, nb] : {std::pair{300, 64}, {257, 32}, {130, 128}, {97, 16}}) {
      SCOPED_TRACE(testing::Message()
                   << "uplo " << orb::letter(uplo) << " n " << n << " nb " << nb);
      const Matrix<T> a = positive_definite<T>(n, rng, n + 3);
      Matrix<T> start = a;
      orb::test::keep_triangle(start, uplo == Uplo::kUpper ? Triangle::kUpper : Triangle::kLower);
      Matrix<T> recursive = start;
      ASSERT_EQ(lp::potrf_recursive(uplo, n, recursive.data(), recursive.ld, false), 0);
      Matrix<T> first;
      for (int team : {2, 3, 5}) {
        Matrix<T> s = start;
        int info = -1;
        ASSERT_TRUE(lp::potrf_scheduled(uplo, n, s.data(), s.ld, nb, team, &info));
        EXPECT_EQ(info, 0);
        if (team == 2)
          first = s;
        else
          EXPECT_TRUE(same_bits(s, first)) << "team " << team;
      }
      EXPECT_LT(cholesky_residual(a, first, uplo), 1.0);
      EXPECT_LT(cholesky_residual(a, recursive, uplo), 1.0);
      Matrix<T> other = first;  // NaN where the other triangle was
      orb::test::keep_triangle(other, uplo == Uplo::kUpper ? Triangle::kUpper : Triangle::kLower);
      EXPECT_TRUE(same_bits(other, first));
    }
}

// A leading minor that is not positive definite, in any block of the
// schedule (a NaN on the diagonal too), gives its order on every path.
TYPED_TEST(Cholesky, FirstFailingMinorOnEveryPath) {
  using T = TypeParam;
  using R = orb::real_t<T>;
  const int n = 290, nb = 64;
  Random rng(11);
  const Matrix<T> a = positive_definite<T>(n, rng);
  for (Uplo uplo : {Uplo::kLower, Uplo::kUpper})
    for (int bad : {0, 63, 64, 200, n - 1}) {
      for (R value : {R(-1), std::numeric_limits<R>::quiet_NaN()}) {
        SCOPED_TRACE(testing::Message() << "uplo " << orb::letter(uplo) << " minor " << bad + 1);
        Matrix<T> b = a;
        b(bad, bad) = T(value);
        Matrix<T> unblocked = b, recursive = b;
        EXPECT_EQ(lp::potf2(uplo, n, unblocked.data(), unblocked.ld), bad + 1);
        EXPECT_EQ(lp::potrf_recursive(uplo, n, recursive.data(), recursive.ld, true), bad + 1);
        for (int team : {2, 3}) {
          Matrix<T> s = b;
          int info = -1;
          ASSERT_TRUE(lp::potrf_scheduled(uplo, n, s.data(), s.ld, nb, team, &info));
          EXPECT_EQ(info, bad + 1) << "team " << team;
        }
      }
    }
}

// potrf: column by column below the crossover, recursive with one thread or
// inside a parallel region, the scheduled team from its crossover on.
TYPED_TEST(Cholesky, PathFollowsTheOracle) {
  using T = TypeParam;
  const lp::Name6 nm = lp::name<T>("POTRF");
  const int small = lp::oracle(lp::kCrossover, nm, 100);
  const int team = lp::oracle(lp::kCrossover, nm, 1000, -1, 2);
  ASSERT_GT(team, small);
  Random rng(3);
  auto run = [&](int n) {
    Matrix<T> a = positive_definite<T>(n, rng);
    const Matrix<T> a0 = a;
    EXPECT_EQ(lp::potrf(Uplo::kLower, n, a.data(), a.ld), 0);
    EXPECT_LT(cholesky_residual(a0, a, Uplo::kLower), 1.0);
    return lp::potrf_last_path();
  };
  ORB_Set_Num_Threads(2);
  EXPECT_EQ(run(small - 1), PotrfPath::kUnblocked);
  EXPECT_EQ(run(team - 1), PotrfPath::kRecursive);
  EXPECT_EQ(run(team), PotrfPath::kScheduled);
  int inside = 0;
#pragma omp parallel num_threads(2) reduction(+ : inside)
  inside += run(team) == PotrfPath::kRecursive;
  EXPECT_EQ(inside, 2);
  ORB_Set_Num_Threads(1);
  EXPECT_EQ(run(team), PotrfPath::kRecursive);
}

// The band solve splits the right-hand sides over a team from the oracle's
// crossover on, never inside a parallel region, and each column gets the
// bits of the serial solve.
TEST(CholeskyBand, SolveSplitGivesTheSerialBits) {
  using T = c8;
  const int n = 200, kd = 7;
  const int cross = lp::oracle(lp::kCrossover, lp::name<T>("PBTRS"), n, kd);
  ASSERT_LT(cross, 100);
  Random rng(5);
  const Matrix<T> a = positive_definite<T>(n, rng);
  for (Uplo uplo : {Uplo::kUpper, Uplo::kLower}) {
    // The band of A in band storage, then factored.
    Matrix<T> ab(kd + 1, n);
    for (int j = 0; j < n; ++j)
      for (int i = std::max(0, j - kd); i <= std::min(n - 1, j + kd); ++i) {
        if (uplo == Uplo::kUpper && i <= j) ab(kd + i - j, j) = a(i, j);
        if (uplo == Uplo::kLower && i >= j) ab(i - j, j) = a(i, j);
      }
    ASSERT_EQ(lp::pbtrf(uplo, n, kd, ab.data(), ab.ld), 0);
    for (int nrhs : {cross - 1, cross, cross + 3}) {
      SCOPED_TRACE(testing::Message() << "uplo " << orb::letter(uplo) << " nrhs " << nrhs);
      const Matrix<T> b = orb::test::random_matrix<T>(n, nrhs, rng, n + 1);
      Matrix<T> serial = b, split = b;
      ORB_Set_Num_Threads(1);
      lp::pbtrs(uplo, n, kd, nrhs, ab.data(), ab.ld, serial.data(), serial.ld);
      EXPECT_EQ(lp::pbtrs_last_team(), 1);
      ORB_Set_Num_Threads(2);
      lp::pbtrs(uplo, n, kd, nrhs, ab.data(), ab.ld, split.data(), split.ld);
      EXPECT_EQ(lp::pbtrs_last_team(), nrhs >= cross ? 2 : 1);
      EXPECT_TRUE(same_bits(split, serial));
      int inside = 0;
#pragma omp parallel num_threads(2) reduction(+ : inside)
      {
        Matrix<T> x = b;
        lp::pbtrs(uplo, n, kd, nrhs, ab.data(), ab.ld, x.data(), x.ld);
        inside += lp::pbtrs_last_team() == 1 && same_bits(x, serial);
      }
      EXPECT_EQ(inside, 2);
    }
  }
  ORB_Set_Num_Threads(1);
}

// DPOTRF factors in double precision; ZPOTF2 in double complex; ZLACGV
// conjugates at a negative stride from the far end; ZLAEV2's rt1 and
// (cs1, sn1) are an eigenpair of the Hermitian 2 by 2, rt2 its other
// eigenvalue, also for a zero or tiny off-diagonal.
TEST(CholeskyDouble, Entries) {
  Random rng(9);
  const int n = 150;
  for (char uplo : {'L', 'U'}) {
    const Matrix<double> a = positive_definite<double>(n, rng);
    Matrix<double> f = a;
    int info = -1;
    DPOTRF(&uplo, &n, f.data(), &f.ld, &info, 1);
    EXPECT_EQ(info, 0);
    EXPECT_LT(cholesky_residual(a, f, uplo == 'U' ? Uplo::kUpper : Uplo::kLower), 1.0);
    const Matrix<c16> z = positive_definite<c16>(40, rng);
    Matrix<c16> g = z;
    const int m = 40;
    ZPOTF2(&uplo, &m, reinterpret_cast<orb_complex16 *>(g.data()), &g.ld, &info, 1);
    EXPECT_EQ(info, 0);
    EXPECT_LT(cholesky_residual(z, g, uplo == 'U' ? Uplo::kUpper : Uplo::kLower), 1.0);
  }

  c16 x[5] = {{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}};
  const int three = 3, minus_two = -2;
  ZLACGV(&three, reinterpret_cast<orb_complex16 *>(x), &minus_two);
  EXPECT_EQ(x[0], c16(1, -1));
  EXPECT_EQ(x[1], c16(2, 2));
  EXPECT_EQ(x[4], c16(5, -5));

  const c16 cases[][3] = {{{2, 0}, {1, -3}, {-1, 0}},
                          {{1, 0}, {0, 0}, {5, 0}},
                          {{4, 0}, {1e-30, 1e-30}, {4, 0}},
                          {{-3, 0}, {2, 2}, {-3, 0}},
                          {{1e10, 0}, {1, 1}, {-1e-10, 0}}};
  for (const auto &c : cases) {
    double rt1, rt2, cs1;
    c16 sn1;
    ZLAEV2(reinterpret_cast<const orb_complex16 *>(&c[0]),
           reinterpret_cast<const orb_complex16 *>(&c[1]),
           reinterpret_cast<const orb_complex16 *>(&c[2]), &rt1, &rt2, &cs1,
           reinterpret_cast<orb_complex16 *>(&sn1));
    const double a = c[0].real(), cc = c[2].real();
    const c16 b = c[1];
    const double scale = std::abs(a) + std::abs(b) + std::abs(cc);
    EXPECT_NEAR(cs1 * cs1 + std::norm(sn1), 1.0, 1e-15);
    EXPECT_LE(std::abs(rt2), std::abs(rt1));
    EXPECT_NEAR(rt1 + rt2, a + cc, 1e-15 * scale);
    // [a b; conj(b) c] (cs1, sn1) = rt1 (cs1, sn1).
    EXPECT_LT(std::abs(a * cs1 + b * sn1 - rt1 * cs1), 1e-15 * scale);
    EXPECT_LT(std::abs(std::conj(b) * cs1 + cc * sn1 - rt1 * sn1), 1e-15 * scale);
  }
}

// ---- the entries' argument checks ------------------------------------------------

// One call of a positive definite entry on n = 3, kd = 1, one right-hand
// side, with the arguments a test may spoil.
struct Call {
  char uplo = 'U';
  int n = 3, kd = 1, nrhs = 1, lda = 3, ldaf = 3, ldb = 3, ldx = 3;
  float anorm = 1;
};

// The single real entries on a 3-by-3 identity (as a full matrix; as band
// storage it is singular, which the band calls may report as INFO > 0).
// Returns INFO and what was printed.
class Entries {
 public:
  Entries() {
    for (int j = 0; j < 3; ++j) a_[4 * j] = f_[4 * j] = 1, b_[j] = x_[j] = float(j + 1);
  }
  int run(const std::string &name, const Call &c, std::string *out) {
    int info = 12345;
    const char u = c.uplo;
    testing::internal::CaptureStdout();
    if (name == "POTRF") spotrf(&u, &c.n, f_, &c.lda, &info, 1);
    if (name == "POTRS") spotrs(&u, &c.n, &c.nrhs, f_, &c.lda, b_, &c.ldb, &info, 1);
    if (name == "POTRI") spotri(&u, &c.n, f_, &c.lda, &info, 1);
    if (name == "POCON") spocon(&u, &c.n, f_, &c.lda, &c.anorm, &rcond_, w_, iw_, &info, 1);
    if (name == "PORFS")
      sporfs(&u, &c.n, &c.nrhs, a_, &c.lda, f_, &c.ldaf, b_, &c.ldb, x_, &c.ldx, &ferr_, &berr_, w_,
             iw_, &info, 1);
    if (name == "PBTRF") spbtrf(&u, &c.n, &c.kd, f_, &c.lda, &info, 1);
    if (name == "PBTRS") spbtrs(&u, &c.n, &c.kd, &c.nrhs, f_, &c.lda, b_, &c.ldb, &info, 1);
    if (name == "PBCON") spbcon(&u, &c.n, &c.kd, f_, &c.lda, &c.anorm, &rcond_, w_, iw_, &info, 1);
    if (name == "PBRFS")
      spbrfs(&u, &c.n, &c.kd, &c.nrhs, a_, &c.lda, f_, &c.ldaf, b_, &c.ldb, x_, &c.ldx, &ferr_,
             &berr_, w_, iw_, &info, 1);
    *out = testing::internal::GetCapturedStdout();
    return info;
  }
  std::string snapshot() const {
    std::string s;
    for (const auto &[p, bytes] : {std::pair<const void *, std::size_t>{a_, sizeof a_},
                                   {f_, sizeof f_},
                                   {b_, sizeof b_},
                                   {x_, sizeof x_},
                                   {w_, sizeof w_},
                                   {iw_, sizeof iw_},
                                   {&rcond_, 4},
                                   {&ferr_, 4},
                                   {&berr_, 4}})
      s.append(static_cast<const char *>(p), bytes);
    return s;
  }

 private:
  float a_[9] = {}, f_[9] = {}, b_[3] = {}, x_[3] = {}, w_[9] = {};
  int iw_[3] = {};
  float rcond_ = -1, ferr_ = 0, berr_ = 0;
};

struct Spoil {
  int code;
  void (*apply)(Call &);
};

// Each argument the published routine tests is reported, as INFO = -i and
// the library's message, before every argument tested after it (all those
// spoiled too), and nothing is written.
TEST(CholeskyEntries, CheckInThePublishedOrder) {
  const Spoil uplo{1, [](Call &c) { c.uplo = 'X'; }}, n{2, [](Call &c) { c.n = -1; }};
  const Spoil kd{3, [](Call &c) { c.kd = -1; }};
  auto lda = [](int code) { return Spoil{code, [](Call &c) { c.lda = 2; }}; };
  auto ldab = [](int code) { return Spoil{code, [](Call &c) { c.lda = 1; }}; };
  auto nrhs = [](int code) { return Spoil{code, [](Call &c) { c.nrhs = -1; }}; };
  auto ldaf = [](int code) { return Spoil{code, [](Call &c) { c.ldaf = 1; }}; };
  auto ldb = [](int code) { return Spoil{code, [](Call &c) { c.ldb = 2; }}; };
  auto ldx = [](int code) { return Spoil{code, [](Call &c) { c.ldx = 2; }}; };
  auto anorm = [](int code) { return Spoil{code, [](Call &c) { c.anorm = -1; }}; };
  const struct {
    const char *name;
    std::vector<Spoil> spoils;
  } routines[] = {
      {"POTRF", {uplo, n, lda(4)}},
      {"POTRS", {uplo, n, nrhs(3), lda(5), ldb(7)}},
      {"POTRI", {uplo, n, lda(4)}},
      {"POCON", {uplo, n, lda(4), anorm(5)}},
      {"PORFS", {uplo, n, nrhs(3), lda(5), {7, [](Call &c) { c.ldaf = 2; }}, ldb(9), ldx(11)}},
      {"PBTRF", {uplo, n, kd, ldab(5)}},
      {"PBTRS", {uplo, n, kd, nrhs(4), ldab(6), ldb(8)}},
      {"PBCON", {uplo, n, kd, ldab(5), anorm(6)}},
      {"PBRFS", {uplo, n, kd, nrhs(4), ldab(6), ldaf(8), ldb(10), ldx(12)}}};
  for (const auto &r : routines) {
    SCOPED_TRACE(r.name);
    Entries e;
    Call c;
    std::string out;
    for (auto it = r.spoils.rbegin(); it != r.spoils.rend(); ++it) {
      it->apply(c);
      const std::string before = e.snapshot();
      EXPECT_EQ(e.run(r.name, c, &out), -it->code);
      EXPECT_EQ(out, "ORB ERROR: Parameter " + std::to_string(it->code) +
                         " was incorrect on entry to S" + r.name + "\n");
      EXPECT_EQ(e.snapshot(), before) << "code " << it->code;
    }
    for (char spelling : {'u', 'L'}) {
      Call good;
      good.uplo = spelling;
      EXPECT_GE(e.run(r.name, good, &out), 0) << spelling;
      EXPECT_EQ(out, "");
    }
  }
}

}  // namespace
