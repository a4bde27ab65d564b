#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "blas/level3/checkers.h"
#include "service/entry.h"

namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

// The thirteen arguments of a GEMM call, valid by default.
struct Gemm {
  char ta = 'N', tb = 'N';
  int m = 4, n = 3, k = 5;
  float alpha = 1, beta = 0;
  int lda = 4, ldb = 5, ldc = 4;
  float a = 0, b = 0, c = 0;
  std::vector<const void *> args() const {
    return {&ta, &tb, &m, &n, &k, &alpha, &a, &lda, &b, &ldb, &beta, &c, &ldc};
  }
  int code(const orb::check::Checker &ch = orb::check::kSgemm) const {
    auto v = args();
    return orb::check::first_failure(ch, v.data(), v.size());
  }
};

TEST(GemmChecker, AcceptsValidCallsInEveryTransposeCase) {
  for (char ta : {'N', 'n', 'T', 't', 'C', 'c'})
    for (char tb : {'N', 'n', 'T', 't', 'C', 'c'}) {
      Gemm g;
      g.ta = ta;
      g.tb = tb;
      g.lda = (ta == 'N' || ta == 'n') ? g.m : g.k;  // rows of op(A)
      g.ldb = (tb == 'N' || tb == 'n') ? g.k : g.n;  // rows of op(B)
      EXPECT_EQ(g.code(), 0) << ta << tb;
      // One less than the rows of op(A) or op(B) is refused with the right code.
      Gemm bad_a = g;
      bad_a.lda -= 1;
      EXPECT_EQ(bad_a.code(), 8) << ta << tb;
      Gemm bad_b = g;
      bad_b.ldb -= 1;
      EXPECT_EQ(bad_b.code(), 10) << ta << tb;
    }
}

TEST(GemmChecker, CodesInReferenceOrderFirstFailureWins) {
  Gemm g;
  g.ta = 'x';
  g.m = -1;
  EXPECT_EQ(g.code(), 1);
  g.ta = 'N';
  EXPECT_EQ(g.code(), 3);
  g = Gemm{};
  g.tb = 'R';
  g.n = -1;
  EXPECT_EQ(g.code(), 2);
  g = Gemm{};
  g.n = -1;
  g.k = -1;
  EXPECT_EQ(g.code(), 4);
  g = Gemm{};
  g.k = -1;
  g.ldc = 0;
  EXPECT_EQ(g.code(), 5);
  g = Gemm{};
  g.ldc = 3;
  EXPECT_EQ(g.code(), 13);
  g = Gemm{};
  g.ta = '\0';  // an empty option string is not an option
  EXPECT_EQ(g.code(), 1);
}

TEST(GemmChecker, LeadingDimensionsAreAtLeastOne) {
  Gemm g;
  g.m = 0;
  g.ldc = 1;
  g.lda = 1;
  EXPECT_EQ(g.code(), 0);  // max(1, 0) is 1
  g.ldc = 0;
  EXPECT_EQ(g.code(), 13);
  g = Gemm{};
  g.k = 0;
  g.ldb = 0;
  EXPECT_EQ(g.code(), 10);
}

TEST(GemmChecker, ReportsWithItsOwnNameAndLength6) {
  struct Case {
    const orb::check::Checker *checker;
    const char *name;
  } cases[] = {{&orb::check::kSgemm, "SGEMM "},
               {&orb::check::kDgemm, "DGEMM "},
               {&orb::check::kCgemm, "CGEMM "},
               {&orb::check::kZgemm, "ZGEMM "}};
  for (const Case &c : cases) {
    Gemm g;
    g.ldc = 1;
    CaptureStdout();
    EXPECT_EQ(orb::check::run(*c.checker, {&g.ta, &g.tb, &g.m, &g.n, &g.k, &g.alpha, &g.a, &g.lda,
                                           &g.b, &g.ldb, &g.beta, &g.c, &g.ldc}),
              13);
    EXPECT_EQ(GetCapturedStdout(),
              std::string("ORB ERROR: Parameter 13 was incorrect on entry to ") + c.name + "\n");
  }
}

// A stand-in computing routine with the GEMM argument list that records calls.
int g_calls = 0;
void fake_gemm(const char *, const char *, const int *, const int *, const int *, const float *,
               const float *, const int *, const float *, const int *, const float *, float *c,
               const int *) {
  ++g_calls;
  *c = 42;
}

TEST(Entries, CheckedEntryComputesOnlyAfterTheChecksPass) {
  Gemm g;
  g.c = std::nanf("");
  g_calls = 0;
  CaptureStdout();
  g.ta = 'x';
  orb::entry::checked(orb::check::kSgemm, fake_gemm, &g.ta, &g.tb, &g.m, &g.n, &g.k, &g.alpha, &g.a,
                      &g.lda, &g.b, &g.ldb, &g.beta, &g.c, &g.ldc);
  EXPECT_EQ(GetCapturedStdout(), "ORB ERROR: Parameter 1 was incorrect on entry to SGEMM \n");
  EXPECT_EQ(g_calls, 0);
  EXPECT_TRUE(std::isnan(g.c));  // output untouched
  g.ta = 't';
  g.lda = g.k;
  CaptureStdout();
  orb::entry::checked(orb::check::kSgemm, fake_gemm, &g.ta, &g.tb, &g.m, &g.n, &g.k, &g.alpha, &g.a,
                      &g.lda, &g.b, &g.ldb, &g.beta, &g.c, &g.ldc);
  EXPECT_EQ(GetCapturedStdout(), "");
  EXPECT_EQ(g_calls, 1);
  EXPECT_EQ(g.c, 42);
}

int twice(const int *x) {
  return 2 * *x;
}

TEST(Entries, PlainEntryForwards) {
  int x = 21;
  EXPECT_EQ(orb::entry::plain(twice, &x), 42);
}

// A LAPACK-style routine FAKE(N, A, LDA, WORK, LWORK, INFO): N >= 0,
// LDA >= max(1, N), LWORK >= max(1, 2 N) unless -1; its optimal workspace is
// 64 N; it sets A(1) := N and INFO := 7 when it runs.
int min_work(orb::check::Args args) {
  const int n = orb::check::int_arg(args, 1);
  return n > 0 ? 2 * n : 1;
}
constexpr orb::check::Test kFakeTests[] = {
    orb::check::nonneg(1), orb::check::ld(3, orb::check::dim(1)), orb::check::lwork(5, min_work)};
constexpr orb::entry::LapackChecker kFake = orb::entry::lapack_checker("FAKE  ", kFakeTests, 4, 5);
int g_runs = 0;
void fake(const int *n, float *a, const int *, float *, const int *, int *info) {
  ++g_runs;
  a[0] = static_cast<float>(*n);
  *info = 7;
}
std::int64_t fake_worksize(const int *n, float *, const int *, float *, const int *, int *) {
  return 64 * std::int64_t{*n};
}

TEST(Entries, LapackEntryChecksAnswersQueriesAndComputes) {
  struct Call {
    int n, lda, lwork;
    int info;            // expected
    const char *output;  // expected on standard output
    float a, work;       // A(1) and WORK(1) afterwards
  } calls[] = {
      {-1, 1, 1, -1, "ORB ERROR: Parameter 1 was incorrect on entry to FAKE  \n", -5, -5},
      {4, 3, 8, -3, "ORB ERROR: Parameter 3 was incorrect on entry to FAKE  \n", -5, -5},
      {4, 4, 7, -5, "ORB ERROR: Parameter 5 was incorrect on entry to FAKE  \n", -5, -5},
      {4, 4, -1, 0, "", -5, 256},  // a query: WORK(1) only
      {4, 4, 8, 7, "", 4, -5},     // computes
      {0, 1, 1, 7, "", 0, -5},
  };
  for (const Call &c : calls) {
    g_runs = 0;
    int info = 99;
    float a = -5, work = -5;
    CaptureStdout();
    orb::entry::lapack(kFake, fake_worksize, fake, &c.n, &a, &c.lda, &work, &c.lwork, &info);
    EXPECT_EQ(GetCapturedStdout(), c.output) << c.n << " " << c.lda << " " << c.lwork;
    EXPECT_EQ(info, c.info);
    EXPECT_EQ(a, c.a);
    EXPECT_EQ(work, c.work);
    EXPECT_EQ(g_runs, c.info == 7 ? 1 : 0);
    EXPECT_EQ(orb::error_hook(), &orb::xerbla_forwarder);
  }
}

}  // namespace
