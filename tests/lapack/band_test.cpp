// The band LU: its threaded schedule against its serial run and both
// against the column-by-column factorization, on random, graded and
// singular band matrices of awkward shapes; the band solve's split of the
// right-hand sides against the serial solve; the paths the oracle's
// answers choose; the entries' argument checks.
#include <gtest/gtest.h>
#include <omp.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "lapack/band.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "orb.h"
#include "support/matrix.h"
#include "support/residual.h"

namespace {

namespace lp = orb::lapack;
using lp::GbtrfPath;
using orb::c8;
using orb::Op;
using orb::test::Matrix;
using orb::test::Random;
using orb::test::same_bits;
using orb::test::wide_t;

struct Shape {
  int m, n, kl, ku;
};

enum class Kind { kRandom, kGraded, kSingular };

// A band matrix; graded: rows and columns scaled over six decades in
// opposite directions, so that pivots come from all over the band;
// singular: columns n/3 and 2n/3 zero, so that their pivots are exactly 0.
template <class T>
Matrix<T> band(const Shape &s, Kind kind, Random &rng) {
  Matrix<T> a = orb::test::band_matrix<T>(s.m, s.n, s.kl, s.ku, rng);
  for (int j = 0; j < s.n; ++j)
    for (int i = 0; i < s.m; ++i) {
      if (kind == Kind::kGraded)
        a(i, j) *= static_cast<orb::real_t<T>>(std::pow(10.0, 3.0 * (j - i) / (s.m + s.n)));
      if (kind == Kind::kSingular && (j == s.n / 3 || j == 2 * s.n / 3)) a(i, j) = T(0);
    }
  return a;
}

template <class T>
struct Lu {
  Matrix<T> ab;
  std::vector<int> ipiv;
  int info;
};

// The factors in band storage (fill-in rows on top, two spare rows below);
// nb 0 asks for the column-by-column factorization.
template <class T>
Lu<T> unfactored(const Matrix<T> &a, const Shape &s) {
  return {orb::test::to_band_storage(a, s.kl, s.ku, s.kl, 2 * s.kl + s.ku + 3),
          std::vector<int>(std::min(s.m, s.n)), 0};
}
template <class T>
Lu<T> factor(const Matrix<T> &a, const Shape &s, int nb, int threads) {
  Lu<T> f = unfactored(a, s);
  f.info = nb == 0 ? lp::gbtf2(s.m, s.n, s.kl, s.ku, f.ab.data(), f.ab.ld, f.ipiv.data())
                   : lp::gbtrf_blocked(s.m, s.n, s.kl, s.ku, f.ab.data(), f.ab.ld, f.ipiv.data(),
                                       nb, threads);
  return f;
}

// ||A - P1 L1 P2 L2 ... U||_1 / (n ||A||_1 eps), the factors as the band
// solves apply them.
template <class T>
double residual(const Matrix<T> &a, const Lu<T> &f, const Shape &s) {
  using W = wide_t<T>;
  Matrix<W> p = orb::test::converted<W>(orb::test::from_band_storage(f.ab, s.m, 0, s.kl + s.ku));
  for (int j = std::min(s.m, s.n) - 1; j >= 0; --j) {
    for (int i = 1; i <= std::min(s.kl, s.m - 1 - j); ++i) {
      const W l = static_cast<W>(f.ab(s.kl + s.ku + i, j));
      for (int c = 0; c < s.n; ++c) p(j + i, c) += l * p(j, c);
    }
    for (int c = 0; c < s.n; ++c) std::swap(p(j, c), p(f.ipiv[j] - 1, c));
  }
  for (int c = 0; c < s.n; ++c)
    for (int i = 0; i < s.m; ++i) p(i, c) -= static_cast<W>(a(i, c));
  return orb::test::norm_one(p) /
         (std::max(s.n, 1) * orb::test::norm_one(a) * orb::test::epsilon<T>());
}

template <class T>
class Band : public ::testing::Test {};
using Types = ::testing::Types<float, c8>;
TYPED_TEST_SUITE(Band, Types);

// Every team size gives the serial factors bit for bit, the serial factors
// are those of the column-by-column factorization up to rounding (same
// pivots, same first zero pivot), and nothing outside the band is written.
TYPED_TEST(Band, ThreadedFactorsAreTheSerialOnes) {
  using T = TypeParam;
  Random rng(11);
  const Shape shapes[] = {{40, 40, 0, 9},     {57, 57, 1, 6},   {64, 64, 9, 0},
                          {70, 70, 8, 1},     {90, 60, 17, 12}, {50, 95, 11, 20},
                          {120, 120, 45, 38}, {33, 33, 32, 32}, {150, 150, 24, 24}};
  for (const Shape &s : shapes)
    for (Kind kind : {Kind::kRandom, Kind::kGraded, Kind::kSingular})
      for (int nb : {2, 5, 8, 16}) {
        if (nb > s.kl + s.ku) continue;
        SCOPED_TRACE(testing::Message() << s.m << "x" << s.n << " kl " << s.kl << " ku " << s.ku
                                        << " kind " << static_cast<int>(kind) << " nb " << nb);
        const Matrix<T> a = band<T>(s, kind, rng);
        const Lu<T> one = factor(a, s, nb, 1), plain = factor(a, s, 0, 1);
        EXPECT_LT(residual(a, one, s), 30.0);
        EXPECT_EQ(one.ipiv, plain.ipiv);
        EXPECT_EQ(one.info, plain.info);
        EXPECT_EQ(one.ab.padding_changed(), 0);
        if (kind == Kind::kSingular && s.m > s.n / 3) {
          EXPECT_EQ(one.info, s.n / 3 + 1);
        }
        for (int threads : {2, 3}) {
          const Lu<T> team = factor(a, s, nb, threads);
          EXPECT_TRUE(same_bits(team.ab, one.ab)) << threads << " threads";
          EXPECT_EQ(team.ipiv, one.ipiv);
          EXPECT_EQ(team.info, one.info);
        }
      }
}

// gbtrf: column by column below the block size, serial blocked below the
// crossover or with one thread or inside a parallel region, threaded
// above it, and the same factors on every path that blocks.
TYPED_TEST(Band, FactorizationPathFollowsTheOracle) {
  using T = TypeParam;
  const lp::Name6 nm = lp::name<T>("GBTRF");
  const int nb = lp::oracle(lp::kBlockSize, nm, 300, 300, 64, 64);
  ASSERT_GT(nb, 1);
  const int cross = lp::oracle(lp::kCrossover, nm, 300, 300, nb, 0);
  const Shape narrow{300, 300, nb - 1, 3}, below{300, 300, nb, std::max(cross - nb - 1, 0)},
      above{300, 300, nb, std::max(cross - nb, 0)};
  Random rng(5);
  auto run = [&](const Shape &s, const Matrix<T> &a) {
    Lu<T> f = unfactored(a, s);
    f.info = lp::gbtrf(s.m, s.n, s.kl, s.ku, f.ab.data(), f.ab.ld, f.ipiv.data());
    return f;
  };
  ORB_Set_Num_Threads(2);
  const Matrix<T> an = band<T>(narrow, Kind::kRandom, rng);
  run(narrow, an);
  EXPECT_EQ(lp::gbtrf_last_path(), GbtrfPath::kUnblocked);
  if (below.kl + below.ku < cross) {
    run(below, band<T>(below, Kind::kRandom, rng));
    EXPECT_EQ(lp::gbtrf_last_path(), GbtrfPath::kBlocked);
  }
  const Matrix<T> a = band<T>(above, Kind::kRandom, rng);
  const Lu<T> serial = factor(a, above, nb, 1);
  const Lu<T> threaded = run(above, a);
  EXPECT_EQ(lp::gbtrf_last_path(), GbtrfPath::kThreaded);
  EXPECT_TRUE(same_bits(threaded.ab, serial.ab));
  int inside_ok = 0;
#pragma omp parallel num_threads(2) reduction(+ : inside_ok)
  {
    const Lu<T> f = run(above, a);
    inside_ok += lp::gbtrf_last_path() == GbtrfPath::kBlocked && same_bits(f.ab, serial.ab);
  }
  EXPECT_EQ(inside_ok, 2);
  ORB_Set_Num_Threads(1);
  run(above, a);
  EXPECT_EQ(lp::gbtrf_last_path(), GbtrfPath::kBlocked);
}

// The solve with several right-hand sides gives each column the bits of
// the serial solve, splits only from the oracle's crossover on and not
// inside a parallel region, and solves.
TYPED_TEST(Band, SolveSplitGivesTheSerialBits) {
  using T = TypeParam;
  const Shape s{260, 260, 14, 9};
  const int cross = lp::oracle(lp::kCrossover, lp::name<T>("GBTRS"), s.n, s.kl, s.ku, -1);
  ASSERT_LT(cross, 200);
  Random rng(3);
  const Matrix<T> a = band<T>(s, Kind::kRandom, rng);
  const Lu<T> f = factor(a, s, 0, 1);
  ORB_Set_Num_Threads(2);
  for (Op op : {Op::kNone, Op::kTrans, Op::kConjTrans})
    for (int nrhs : {std::max(cross - 1, 1), cross, cross + 5}) {
      SCOPED_TRACE(testing::Message() << "trans " << orb::letter(op) << " nrhs " << nrhs);
      const Matrix<T> b = orb::test::random_matrix<T>(s.n, nrhs, rng, s.n + 2);
      Matrix<T> serial = b, split = b;
      for (int c = 0; c < nrhs; ++c)
        lp::gbtrs_columns(op, s.n, s.kl, s.ku, f.ab.data(), f.ab.ld, f.ipiv.data(), serial.data(),
                          serial.ld, c, c + 1);
      lp::gbtrs(op, s.n, s.kl, s.ku, nrhs, f.ab.data(), f.ab.ld, f.ipiv.data(), split.data(),
                split.ld);
      EXPECT_EQ(lp::gbtrs_last_team(), nrhs >= cross ? 2 : 1);
      EXPECT_TRUE(same_bits(split, serial));
      EXPECT_LT(orb::test::solve_residual(orb::letter(op), a, split, b), 30.0);
      int teams = 0;
#pragma omp parallel num_threads(2) reduction(+ : teams)
      {
        Matrix<T> x = b;
        lp::gbtrs(op, s.n, s.kl, s.ku, nrhs, f.ab.data(), f.ab.ld, f.ipiv.data(), x.data(), x.ld);
        teams += lp::gbtrs_last_team() == 1 && same_bits(x, serial);
      }
      EXPECT_EQ(teams, 2);
    }
  ORB_Set_Num_Threads(1);
}

// ---- the entries' argument checks ------------------------------------------------

// A call of one band entry on n = 4, kl = 1, ku = 2 and two right-hand
// sides, with the arguments a test may spoil.
struct Call {
  char opt = 'N';
  int m = 4, n = 4, kl = 1, ku = 2, nrhs = 2, ldab = 5, ldafb = 5, ldb = 4, ldx = 4;
  float anorm = 1;
};
enum class Entry { kTrf, kTrs, kCon, kRfs };

// The exported entries of one precision on factors that are the identity
// (and A = I for the refinement), so that every accepted call succeeds.
template <class T>
class Entries {
 public:
  using P = std::conditional_t<orb::is_complex_v<T>, orb_complex8, float>;
  using Extra = std::conditional_t<orb::is_complex_v<T>, float, int>;

  Entries() {
    for (int j = 0; j < 4; ++j) fac_[3 + 5 * j] = mat_[2 + 5 * j] = T(1), ipiv_[j] = j + 1;
    for (int i = 0; i < 8; ++i) b_[i] = x_[i] = T(static_cast<float>(i + 1));
  }

  // INFO of the call, and what it printed.
  int run(Entry e, const Call &c, std::string *out) {
    int info = 12345;
    const char o = c.opt;
    testing::internal::CaptureStdout();
    auto p = [](T *v) { return reinterpret_cast<P *>(v); };
    if constexpr (orb::is_complex_v<T>) {
      if (e == Entry::kTrf) cgbtrf(&c.m, &c.n, &c.kl, &c.ku, p(fac_), &c.ldab, ipiv_, &info);
      if (e == Entry::kTrs)
        cgbtrs(&o, &c.n, &c.kl, &c.ku, &c.nrhs, p(fac_), &c.ldab, ipiv_, p(b_), &c.ldb, &info, 1);
      if (e == Entry::kCon)
        cgbcon(&o, &c.n, &c.kl, &c.ku, p(fac_), &c.ldab, ipiv_, &c.anorm, &rcond_, p(work_), extra_,
               &info, 1);
      if (e == Entry::kRfs)
        cgbrfs(&o, &c.n, &c.kl, &c.ku, &c.nrhs, p(mat_), &c.ldab, p(fac_), &c.ldafb, ipiv_, p(b_),
               &c.ldb, p(x_), &c.ldx, ferr_, berr_, p(work_), extra_, &info, 1);
    } else {
      if (e == Entry::kTrf) sgbtrf(&c.m, &c.n, &c.kl, &c.ku, fac_, &c.ldab, ipiv_, &info);
      if (e == Entry::kTrs)
        sgbtrs(&o, &c.n, &c.kl, &c.ku, &c.nrhs, fac_, &c.ldab, ipiv_, b_, &c.ldb, &info, 1);
      if (e == Entry::kCon)
        sgbcon(&o, &c.n, &c.kl, &c.ku, fac_, &c.ldab, ipiv_, &c.anorm, &rcond_, work_, extra_,
               &info, 1);
      if (e == Entry::kRfs)
        sgbrfs(&o, &c.n, &c.kl, &c.ku, &c.nrhs, mat_, &c.ldab, fac_, &c.ldafb, ipiv_, b_, &c.ldb,
               x_, &c.ldx, ferr_, berr_, work_, extra_, &info, 1);
    }
    *out = testing::internal::GetCapturedStdout();
    return info;
  }

  // Every array the entries take, byte by byte.
  std::string snapshot() const {
    std::string s;
    auto add = [&](const void *v, std::size_t bytes) {
      s.append(static_cast<const char *>(v), bytes);
    };
    add(fac_, sizeof fac_), add(mat_, sizeof mat_), add(b_, sizeof b_), add(x_, sizeof x_);
    add(ipiv_, sizeof ipiv_), add(&rcond_, sizeof rcond_), add(ferr_, sizeof ferr_);
    add(berr_, sizeof berr_), add(work_, sizeof work_), add(extra_, sizeof extra_);
    return s;
  }

 private:
  T fac_[20] = {}, mat_[20] = {}, b_[8] = {}, x_[8] = {}, work_[12] = {};
  int ipiv_[4] = {};
  float rcond_ = -1, ferr_[2] = {}, berr_[2] = {};
  Extra extra_[4] = {};
};

struct Spoil {
  int code;
  void (*apply)(Call &);
};

// Each argument the published routine tests is reported, as INFO = -i and
// the library's message, before every argument tested after it (all those
// spoiled too), and nothing is written; the options' other spellings pass.
TYPED_TEST(Band, EntriesCheckInThePublishedOrder) {
  using T = TypeParam;
  const char p = orb::lapack::precision_letter<T>();
  const Spoil opt{1, [](Call &c) { c.opt = 'X'; }}, n{2, [](Call &c) { c.n = -1; }},
      kl{3, [](Call &c) { c.kl = -1; }}, ku{4, [](Call &c) { c.ku = -1; }},
      nrhs{5, [](Call &c) { c.nrhs = -1; }};
  auto ldab = [](int code, int rows) {
    return Spoil{code, rows == 4 ? [](Call &c) { c.ldab = 4; } : [](Call &c) { c.ldab = 3; }};
  };
  const struct {
    Entry entry;
    const char *name;
    std::vector<Spoil> spoils;
    const char *spellings;
  } routines[] = {
      {Entry::kTrf, "GBTRF", {{1, [](Call &c) { c.m = -1; }}, n, kl, ku, ldab(6, 4)}, "N"},
      {Entry::kTrs,
       "GBTRS",
       {opt, n, kl, ku, nrhs, ldab(7, 4), {10, [](Call &c) { c.ldb = 3; }}},
       "ntc"},
      {Entry::kCon,
       "GBCON",
       {opt, n, kl, ku, ldab(6, 4), {8, [](Call &c) { c.anorm = -1; }}},
       "1oOi"},
      {Entry::kRfs,
       "GBRFS",
       {opt,
        n,
        kl,
        ku,
        nrhs,
        ldab(7, 3),
        {9, [](Call &c) { c.ldafb = 4; }},
        {12, [](Call &c) { c.ldb = 3; }},
        {14, [](Call &c) { c.ldx = 3; }}},
       "ntc"}};
  for (const auto &r : routines) {
    SCOPED_TRACE(r.name);
    Entries<T> e;
    Call c;
    c.opt = r.spellings[0];
    std::string out;
    for (auto it = r.spoils.rbegin(); it != r.spoils.rend(); ++it) {
      it->apply(c);
      const std::string before = e.snapshot();
      EXPECT_EQ(e.run(r.entry, c, &out), -it->code);
      EXPECT_EQ(out, "ORB ERROR: Parameter " + std::to_string(it->code) +
                         " was incorrect on entry to " + p + r.name + "\n");
      EXPECT_EQ(e.snapshot(), before) << "code " << it->code;
    }
    for (const char *s = r.spellings; *s; ++s) {
      Call good;
      good.opt = *s;
      EXPECT_EQ(e.run(r.entry, good, &out), 0) << *s;
      EXPECT_EQ(out, "");
    }
  }
}

}  // namespace
