// DCG_* and DCGMRHS_*: defaults, checks, the request sequences, the stopping
// decision, breakdowns, messages, and whole solves driven as a caller does.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "iterative/support.h"
#include "orb.h"

namespace {

using orb::test::Csr;
using orb::test::frame;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

// 1-based views of the parameter arrays, as the documentation counts.
struct Params {
  std::vector<int> ip = std::vector<int>(256, -7);
  std::vector<double> dp = std::vector<double>(256, -7.0);
  int &ipar(int k) { return ip[k - 1]; }
  double &dpar(int k) { return dp[k - 1]; }
};

// A one-right-hand-side run: the arrays and the caller's side of the loop.
struct CgRun : Params {
  const Csr A;
  std::vector<double> x, b, tmp;
  std::vector<double> lu;  // ILU0 factors when preconditioned
  std::vector<int> requests;
  int n;

  CgRun(const Csr &matrix, std::vector<double> rhs)
      : A(matrix), x(matrix.n, 0.0), b(std::move(rhs)), tmp(4 * matrix.n, -3.0), n(matrix.n) {
    int rci = -5;
    DCG_INIT(&n, x.data(), b.data(), &rci, ip.data(), dp.data(), tmp.data());
    EXPECT_EQ(rci, 0);
  }
  double *col(int j) { return tmp.data() + (j - 1) * n; }
  int check() {
    int rci = -5;
    DCG_CHECK(&n, x.data(), b.data(), &rci, ip.data(), dp.data());
    return rci;
  }
  int step() {
    int rci = -5;
    DCG(&n, x.data(), b.data(), &rci, ip.data(), dp.data(), tmp.data());
    requests.push_back(rci);
    return rci;
  }
  void serve(int request) {
    if (request == 1) orb::test::multiply(A, col(1), col(2));
    if (request == 3) orb::test::lu_solve(n, A.ia.data(), A.ja.data(), lu.data(), col(3), col(4));
  }
  // Serves requests 1 and 3 and answers request 2 with "continue" until a
  // code of 0 or below, or `limit` calls.
  int drive(int limit = 100000) {
    for (int i = 0; i < limit; ++i) {
      const int r = step();
      if (r <= 0) return r;
      serve(r);
    }
    return 999;
  }
  int iterations() {
    int it = -1, rci = 0;
    DCG_GET(&n, x.data(), b.data(), &rci, ip.data(), dp.data(), tmp.data(), &it);
    return it;
  }
};

Csr diag(std::initializer_list<double> d) {
  Csr A;
  int i = 1;
  for (double v : d) A.add_row({{i++, v}});
  return A;
}

std::vector<double> ones(int n) {
  return std::vector<double>(n, 1.0);
}

TEST(DcgInit, SetsTheDefaultsAndZeroesThreeColumns) {
  for (int n : {200, 20, 150}) {
    Params p;
    std::vector<double> tmp(4 * n, 5.0), x(n), b(n);
    int rci = -5;
    DCG_INIT(&n, x.data(), b.data(), &rci, p.ip.data(), p.dp.data(), tmp.data());
    EXPECT_EQ(rci, 0);
    const int want[] = {n, 6, 1, 0, std::min(n, 150), 1, 1, 1, 0, 1, 0};
    for (int k = 1; k <= 11; ++k) EXPECT_EQ(p.ipar(k), want[k - 1]) << "ipar(" << k << ")";
    EXPECT_EQ(p.ipar(12), -7);
    EXPECT_EQ(p.ipar(128), -7);
    EXPECT_EQ(p.dpar(1), 1.0E-6);
    for (int k = 2; k <= 8; ++k) EXPECT_EQ(p.dpar(k), 0.0);
    EXPECT_EQ(p.dpar(9), -7.0);
    EXPECT_TRUE(std::all_of(tmp.begin(), tmp.begin() + 3 * n, [](double v) { return v == 0; }));
    EXPECT_TRUE(std::all_of(tmp.begin() + 3 * n, tmp.end(), [](double v) { return v == 5; }));
  }
}

TEST(DcgCheck, ResultCodes) {
  Csr A = diag({1, 2, 3});
  {  // defaults pass
    CgRun r(A, ones(3));
    EXPECT_EQ(r.check(), 0);
  }
  {  // all tests off: limit and residual tests switched on
    CgRun r(A, ones(3));
    r.ipar(8) = r.ipar(9) = r.ipar(10) = 0;
    r.ipar(7) = 0;
    EXPECT_EQ(r.check(), -1010);
    EXPECT_EQ(r.ipar(8), 1);
    EXPECT_EQ(r.ipar(9), 1);
    EXPECT_EQ(r.ipar(10), 0);
  }
  {  // dpar(1) out of range with the residual test on
    CgRun r(A, ones(3));
    r.ipar(9) = 1;
    r.ipar(7) = 0;
    r.dpar(1) = 2;
    EXPECT_EQ(r.check(), -1010);
    EXPECT_EQ(r.dpar(1), 1.0E-6);
    r.dpar(1) = std::nan("");
    EXPECT_EQ(r.check(), -1010);
    EXPECT_EQ(r.dpar(1), 1.0E-6);
  }
  {  // the tolerances are not looked at when only other tests are on
    CgRun r(A, ones(3));
    r.dpar(1) = 2;
    r.dpar(2) = -1;
    EXPECT_EQ(r.check(), 0);
    EXPECT_EQ(r.dpar(1), 2);
    EXPECT_EQ(r.dpar(2), -1);
  }
  {  // corrected and not corrected together
    CgRun r(A, ones(3));
    r.ipar(7) = 0;
    r.ipar(9) = 1;
    r.dpar(2) = -1;  // corrected
    r.ipar(3) = 4;   // not corrected
    EXPECT_EQ(r.check(), -1011);
    EXPECT_EQ(r.dpar(2), 0);
    EXPECT_EQ(r.ipar(3), 4);
  }
  {  // both tolerances zero, n mismatch, counters: not corrected
    CgRun r(A, ones(3));
    r.ipar(7) = 0;
    r.ipar(9) = 1;
    r.dpar(1) = 0;
    EXPECT_EQ(r.check(), -1001);
  }
  {  // a vector length below 1 is fatal whatever else holds
    CgRun r(A, ones(3));
    r.ipar(7) = 0;
    r.ipar(1) = 0;
    r.ipar(8) = r.ipar(9) = r.ipar(10) = 0;
    EXPECT_EQ(r.check(), -1100);
    EXPECT_EQ(r.ipar(8), 1);  // the earlier correction stays
  }
}

TEST(DcgCheck, WarningsInWords) {
  Csr A = diag({1, 2, 3});
  CgRun r(A, ones(3));
  r.ipar(8) = r.ipar(9) = r.ipar(10) = 0;
  CaptureStdout();
  EXPECT_EQ(r.check(), -1010);
  EXPECT_EQ(GetCapturedStdout(), frame("ORB RCI CG WARNING: ") +
                                     "At least one of the parameters IPAR(8), IPAR(9), or\n"
                                     "IPAR(10) must have the value 1\n");

  CgRun s(A, ones(3));
  s.ipar(4) = 5;
  s.ipar(5) = 5;
  CaptureStdout();
  EXPECT_EQ(s.check(), -1001);
  const std::string out = GetCapturedStdout();  // warnings 9 and 10, in that order
  EXPECT_LT(out.find("Parameter IPAR(4) must be equal to 0"), out.find("No (P)CG iterations"));

  // ipar(7) = 0 silences them; the code stays.
  CgRun q(A, ones(3));
  q.ipar(7) = 0;
  q.ipar(1) = -1;
  CaptureStdout();
  EXPECT_EQ(q.check(), -1100);
  EXPECT_EQ(GetCapturedStdout(), "");
}

TEST(Dcg, DefaultRequestSequence) {
  Csr A = orb::test::grid_operator(3);
  std::vector<double> b(9);
  for (int i = 0; i < 9; ++i) b[i] = i + 1.0;
  CgRun r(A, b);
  r.x.assign(9, 0.5);
  r.ipar(5) = 4;
  ASSERT_EQ(r.check(), 0);

  // The start: tmp(:,1) = x, tmp(:,3) = b, request 1 for A x0.
  ASSERT_EQ(r.step(), 1);
  EXPECT_EQ(std::vector<double>(r.col(1), r.col(1) + 9), r.x);
  EXPECT_EQ(std::vector<double>(r.col(3), r.col(3) + 9), b);
  EXPECT_EQ(r.ipar(3), 2);
  r.serve(1);
  // Limit on, residual off, caller's test on: request 2 after every update,
  // and the solver itself stops only at the limit, with 0.
  int twos = 0;
  for (;;) {
    const int code = r.step();
    if (code == 2) {
      ++twos;
      EXPECT_EQ(r.ipar(3), 3);
      continue;
    }
    if (code <= 0) {
      EXPECT_EQ(code, 0);
      break;
    }
    ASSERT_EQ(code, 1);
    EXPECT_EQ(r.ipar(3), 4);
    r.serve(1);
  }
  EXPECT_EQ(twos, 4);  // the start and iterations 1 to 3; the 4th reaches ipar(5)
  EXPECT_EQ(r.iterations(), 4);
}

TEST(Dcg, PreconditionedSequenceAndStageFive) {
  Csr A = diag({2, 4, 8});
  for (int first_stage : {1, 5}) {
    CgRun r(A, ones(3));
    r.ipar(11) = first_stage == 1 ? 1 : 0;  // stage 5 starts preconditioned anyway
    r.ipar(3) = first_stage;
    r.ipar(10) = 0;
    r.ipar(9) = 1;
    r.lu = {2, 4, 8};  // the exact inverse: z = A^-1 r
    EXPECT_EQ(r.step(), 1);
    EXPECT_EQ(r.ipar(3), 6);
    r.serve(1);
    EXPECT_EQ(r.step(), 3);
    EXPECT_EQ(r.ipar(3), 7);
    r.serve(3);
    EXPECT_EQ(r.step(), 1);  // first iteration: A p
    EXPECT_EQ(r.ipar(3), 9);
    r.serve(1);
    EXPECT_EQ(r.step(), 3);  // z of the new residual
    EXPECT_EQ(r.ipar(3), 10);
    r.serve(3);
    EXPECT_EQ(r.step(), 0);  // exact preconditioner: converged after one step
    EXPECT_EQ(r.x, (std::vector<double>{0.5, 0.25, 0.125}));
    EXPECT_EQ(r.iterations(), 1);
  }
}

TEST(Dcg, StoppingDecisionOrder) {
  Csr A = orb::test::grid_operator(4);
  {  // residual test made before the caller is asked: converged -> 0, no 2
    CgRun r(A, ones(16));
    r.ipar(9) = 1;
    r.ipar(5) = 100;
    EXPECT_EQ(r.drive(), 0);
    EXPECT_EQ(r.requests.back(), 0);
    EXPECT_LE(r.dpar(5), r.dpar(4));
    EXPECT_EQ(std::count(r.requests.begin(), r.requests.end(), 2), r.iterations());
  }
  {  // limit reached with the residual test failing: -1
    CgRun r(A, ones(16));
    r.ipar(9) = 1;
    r.ipar(10) = 0;
    r.ipar(5) = 2;
    EXPECT_EQ(r.drive(), -1);
    EXPECT_EQ(r.iterations(), 2);
    EXPECT_GT(r.dpar(5), r.dpar(4));
  }
  {  // limit off, residual on, caller's test off: runs to convergence alone
    CgRun r(A, ones(16));
    r.ipar(8) = 0;
    r.ipar(9) = 1;
    r.ipar(10) = 0;
    r.dpar(1) = 1e-20;
    r.dpar(2) = 1e-24;
    EXPECT_EQ(r.drive(), 0);
    EXPECT_EQ(std::count(r.requests.begin(), r.requests.end(), 2), 0);
    EXPECT_LT(orb::test::relative_residual(A, r.x.data(), r.b.data()), 1e-10);
  }
  {  // only the limit test: stops at dpar(5) = 0 exactly, else at the limit
    CgRun r(diag({2, 2}), ones(2));
    r.ipar(10) = 0;
    EXPECT_EQ(r.drive(), 0);
    EXPECT_EQ(r.iterations(), 1);
    EXPECT_EQ(r.dpar(5), 0.0);
  }
  {  // a zero right-hand side with x = 0 and the residual test: 0 at once
    CgRun r(A, std::vector<double>(16, 0.0));
    r.ipar(9) = 1;
    EXPECT_EQ(r.step(), 1);
    r.serve(1);
    EXPECT_EQ(r.step(), 0);
    EXPECT_EQ(r.iterations(), 0);
  }
  {  // no test at all: -11 with error 1, whatever the stage
    CgRun r(A, ones(16));
    r.ipar(8) = r.ipar(9) = r.ipar(10) = 0;
    EXPECT_EQ(r.step(), 1);
    r.serve(1);
    r.ipar(6) = 0;
    EXPECT_EQ(r.step(), -11);
  }
}

TEST(Dcg, Breakdowns) {
  {  // p.Ap = 0 for an indefinite matrix: -2, x left at the last iterate
    CgRun r(diag({1, -1}), ones(2));
    r.ipar(6) = 0;
    EXPECT_EQ(r.drive(), -2);
    EXPECT_EQ(r.x, (std::vector<double>{0, 0}));
    EXPECT_EQ(r.iterations(), 1);
  }
  {  // dpar(6) altered outside: -10, error 3 in words
    CgRun r(diag({1, 2, 3}), ones(3));
    EXPECT_EQ(r.step(), 1);
    r.serve(1);
    EXPECT_EQ(r.step(), 2);
    EXPECT_EQ(r.step(), 1);
    r.serve(1);
    r.dpar(6) = 0;
    CaptureStdout();
    EXPECT_EQ(r.step(), -10);
    EXPECT_EQ(GetCapturedStdout(), frame("ORB RCI CG ERROR: ") +
                                       "Division by 0 occured.\n"
                                       "Probably the data were altered by mistake outside of DCG\n"
                                       "routine. The result may be inaccurate...\n");
  }
}

// Whole solves of the 2-D Poisson problem of order 10^4.
TEST(DcgSolve, PoissonWithAndWithoutIlu0) {
  const Csr A = orb::test::grid_operator(100);
  const int n = A.n;
  std::vector<double> b(n);
  for (int i = 0; i < n; ++i) b[i] = std::sin(0.01 * i) + 1.0;

  CgRun plain(A, b);
  plain.ipar(5) = 2000;
  plain.ipar(9) = 1;
  plain.ipar(10) = 0;
  plain.dpar(1) = 1e-16;  // squared: a relative residual of 1e-8
  ASSERT_EQ(plain.check(), 0);
  ASSERT_EQ(plain.drive(), 0);
  EXPECT_LT(orb::test::relative_residual(A, plain.x.data(), b.data()), 1.1e-8);

  CgRun pre(A, b);
  pre.ipar(5) = 2000;
  pre.ipar(9) = 1;
  pre.ipar(10) = 0;
  pre.ipar(11) = 1;
  pre.dpar(1) = 1e-16;
  pre.lu.resize(A.a.size());
  int ierr = -1;
  pre.ipar(31) = 0;
  pre.dpar(31) = 1e-16;
  DCSRILU0(&pre.n, A.a.data(), A.ia.data(), A.ja.data(), pre.lu.data(), pre.ip.data(),
           pre.dp.data(), &ierr);
  ASSERT_EQ(ierr, 0);
  ASSERT_EQ(pre.check(), 0);
  ASSERT_EQ(pre.drive(), 0);
  EXPECT_LT(orb::test::relative_residual(A, pre.x.data(), b.data()), 1e-6);
  EXPECT_LT(pre.iterations(), plain.iterations() * 2 / 3);
}

TEST(DcgMessages, LogFilesAndTheirFallback) {
  orb::test::TempDir dir;
  Csr A = diag({1, -1});
  {  // an error goes to Dcg_errors.txt, appended, with a console notice
    for (int round = 0; round < 2; ++round) {
      CgRun r(A, ones(2));
      r.ipar(2) = 1;
      r.step();
      r.serve(1);
      r.step();
      r.step();
      r.serve(1);
      CaptureStdout();
      EXPECT_EQ(r.step(), -2);
      EXPECT_EQ(GetCapturedStdout(), "Error message has been written in Dcg_errors.txt\n");
    }
    const std::string one = frame("ORB RCI CG ERROR: ") +
                            "Division by 0 occured.\n"
                            "Probably, the matrix is (almost) non-positive definite\n"
                            "or criterion is very restrictive. CG method has been\n"
                            "stopped. The result may be inaccurate...\n";
    EXPECT_EQ(orb::test::read_file("Dcg_errors.txt"), one + one);
  }
  {  // a warning goes to Dcg_check_warnings.txt
    CgRun r(A, ones(2));
    r.ipar(2) = 0;
    r.ipar(1) = 3;
    CaptureStdout();
    EXPECT_EQ(r.check(), -1001);
    EXPECT_EQ(GetCapturedStdout(), "Warning message has been written in Dcg_check_warnings.txt\n");
    EXPECT_EQ(orb::test::read_file("Dcg_check_warnings.txt"),
              frame("ORB RCI CG WARNING: ") +
                  "Parameter IPAR(1) is not equal to the parameter N.\n"
                  "It may be an error in one of the parameters.\n"
                  "The method may fail to proceed...\n");
  }
  {  // the file cannot be created: the console says so, the code is unchanged
    std::filesystem::remove("Dcg_errors.txt");
    std::filesystem::create_directory("Dcg_errors.txt");
    CgRun s(A, ones(2));
    s.ipar(2) = 1;
    s.step();
    s.serve(1);
    s.step();
    s.step();
    s.serve(1);
    CaptureStdout();
    EXPECT_EQ(s.step(), -2);
    EXPECT_EQ(GetCapturedStdout(),
              "Cannot create file Dcg_errors.txt ...\n"
              "An error/warning message cannot be saved in the file.\n");
  }
}

// Several right-hand sides.
struct MrhsRun : Params {
  const Csr A;
  int n, nrhs;
  std::vector<double> x, b, tmp;

  MrhsRun(const Csr &matrix, int count)
      : A(matrix),
        n(matrix.n),
        nrhs(count),
        x(matrix.n * count, 0.0),
        b(matrix.n * count),
        tmp(matrix.n * (count + 3), -3.0) {
    for (int k = 0; k < nrhs; ++k)
      for (int i = 0; i < n; ++i) b[k * n + i] = (k + 1) * std::cos(0.1 * i * (k + 1));
    int rci = -5, method = 1;
    DCGMRHS_INIT(&n, x.data(), &nrhs, b.data(), &method, &rci, ip.data(), dp.data(), tmp.data());
    EXPECT_EQ(rci, 0);
  }
  double *col(int j) { return tmp.data() + (j - 1) * n; }
  int check() {
    int rci = -5;
    DCGMRHS_CHECK(&n, x.data(), &nrhs, b.data(), &rci, ip.data(), dp.data());
    return rci;
  }
  int step(int answer = 0) {
    int rci = answer;
    DCGMRHS(&n, x.data(), &nrhs, b.data(), &rci, ip.data(), dp.data(), tmp.data());
    return rci;
  }
  std::vector<int> counts() {
    std::vector<int> c(nrhs, -1);
    int rci = 0;
    DCGMRHS_GET(&n, x.data(), &nrhs, b.data(), &rci, ip.data(), dp.data(), tmp.data(), c.data());
    return c;
  }
};

TEST(Dcgmrhs, InitAndCheck) {
  Csr A = orb::test::grid_operator(3);
  MrhsRun r(A, 2);
  EXPECT_EQ(r.ipar(33), 2);
  EXPECT_EQ(r.ipar(5), 9);
  EXPECT_TRUE(std::all_of(r.tmp.begin(), r.tmp.end(), [](double v) { return v == 0; }));
  EXPECT_EQ(r.check(), 0);
  r.ipar(33) = 0;
  CaptureStdout();
  EXPECT_EQ(r.check(), -1100);
  EXPECT_EQ(GetCapturedStdout(),
            frame("ORB RCI CG WARNING: ") + "Parameter IPAR(1) must be a positive integer.\n");
}

TEST(Dcgmrhs, SolvesEachRightHandSideAndRecordsIt) {
  const Csr A = orb::test::grid_operator(30);
  MrhsRun r(A, 3);
  r.ipar(5) = 500;
  r.ipar(9) = 1;
  r.ipar(10) = 0;
  r.dpar(1) = 1e-16;
  ASSERT_EQ(r.check(), 0);
  std::vector<int> order;
  int code;
  while ((code = r.step()) > 0) {
    ASSERT_EQ(code, 1);
    if (order.empty() || order.back() != r.ipar(30)) order.push_back(r.ipar(30));
    orb::test::multiply(A, r.col(1), r.col(2));
  }
  EXPECT_EQ(code, 0);
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
  const std::vector<int> counts = r.counts();
  for (int k = 1; k <= 3; ++k) {
    EXPECT_EQ(r.ipar(128 + k), 1);
    EXPECT_GT(counts[k - 1], 5);
    EXPECT_EQ(counts[k - 1], r.ipar(128 + 3 + k));
    EXPECT_GT(r.dpar(128 + k), 0);
    EXPECT_LE(r.dpar(128 + 3 + k), 1e-16 * r.dpar(128 + k));
    EXPECT_LT(orb::test::relative_residual(A, &r.x[(k - 1) * r.n], &r.b[(k - 1) * r.n]), 1.1e-8);
  }
}

TEST(Dcgmrhs, AnswerToRequestTwoEndsTheRightHandSide) {
  const Csr A = orb::test::grid_operator(10);
  MrhsRun r(A, 2);
  ASSERT_EQ(r.check(), 0);
  int code = r.step(), twos = 0;
  while (code > 0) {
    if (code == 1) {
      orb::test::multiply(A, r.col(1), r.col(2));
      code = r.step();
    } else {
      ASSERT_EQ(code, 2);
      // Stop each right-hand side after its third iteration.
      code = r.step(++twos % 4 == 0 ? 1003 : 0);
      if (twos % 4 == 0) twos = 0;
    }
  }
  EXPECT_EQ(code, 0);
  EXPECT_EQ(r.counts(), (std::vector<int>{3, 3}));
  EXPECT_EQ(r.dpar(128 + 2 + 1), -1.0);
  EXPECT_EQ(r.dpar(128 + 2 + 2), -1.0);
  EXPECT_EQ(r.ipar(128 + 1), 1);
}

TEST(Dcgmrhs, ZeroDenominatorEndsTheCall) {
  Csr A = diag({1, -1});
  MrhsRun r(A, 2);
  r.b = {1, 1, 1, 1};
  r.ipar(10) = 0;
  int code = r.step();
  while (code == 1) {
    orb::test::multiply(A, r.col(1), r.col(2));
    CaptureStdout();
    code = r.step();
    const std::string out = GetCapturedStdout();
    if (code == 0) {
      EXPECT_NE(out.find("Division by 0 occured."), std::string::npos);
    }
  }
  EXPECT_EQ(code, 0);
  EXPECT_EQ(r.ipar(30), 1);
  EXPECT_EQ(r.dpar(128 + 2 + 1), r.dpar(128 + 1));
  EXPECT_EQ(r.dpar(128 + 1), 2.0);
}

}  // namespace
