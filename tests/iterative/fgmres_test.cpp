// DFGMRES_*: defaults and tmp layout, checks, the request sequences,
// restarts, DFGMRES_GET, breakdowns, messages, and whole solves.
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

// The tmp length the layout needs for n and m.
size_t tmp_length(int n, int m, bool preconditioned) {
  return static_cast<size_t>(n) * (m + 1) + m * (m + 9) / 2 + 1 +
         (preconditioned ? static_cast<size_t>(n) * m : 0);
}

struct FgmresRun {
  std::vector<int> ip = std::vector<int>(128, -7);
  std::vector<double> dp = std::vector<double>(128, -7.0);
  const Csr A;
  int n;
  std::vector<double> x, b, tmp;
  // ILUT factors for requests 3.
  std::vector<double> lu;
  std::vector<int> ilu, jlu;

  FgmresRun(const Csr &matrix, std::vector<double> rhs, size_t tmp_size)
      : A(matrix), n(matrix.n), x(matrix.n, 0.0), b(std::move(rhs)), tmp(tmp_size, -3.0) {
    int rci = -5;
    DFGMRES_INIT(&n, x.data(), b.data(), &rci, ip.data(), dp.data(), tmp.data());
    EXPECT_EQ(rci, 0);
  }
  int &ipar(int k) { return ip[k - 1]; }
  double &dpar(int k) { return dp[k - 1]; }
  double *at(int position) { return tmp.data() + position - 1; }
  std::vector<double> vec(int position) { return {at(position), at(position) + n}; }
  int check() {
    int rci = -5;
    DFGMRES_CHECK(&n, x.data(), b.data(), &rci, ip.data(), dp.data());
    return rci;
  }
  int step() {
    int rci = -5;
    DFGMRES(&n, x.data(), b.data(), &rci, ip.data(), dp.data(), tmp.data());
    return rci;
  }
  void serve(int request) {
    if (request == 1) orb::test::multiply(A, at(ipar(22)), at(ipar(23)));
    if (request == 3)
      orb::test::lu_solve(n, ilu.data(), jlu.data(), lu.data(), at(ipar(22)), at(ipar(23)));
  }
  // Serves every request, answering 2 and 4 with "go on".
  int drive(int limit = 1000000) {
    for (int i = 0; i < limit; ++i) {
      const int r = step();
      if (r <= 0) return r;
      serve(r);
    }
    return 999;
  }
  int get(double *xo, double *bo, int *count = nullptr) {
    int rci = -5, it = -1;
    DFGMRES_GET(&n, xo, bo, &rci, ip.data(), dp.data(), tmp.data(), &it);
    if (count != nullptr) *count = it;
    return rci;
  }
  void factor_ilut(double tol, int maxfil) {
    lu.resize(static_cast<size_t>(n) * (2 * maxfil + 1));
    jlu.resize(lu.size());
    ilu.resize(n + 1);
    int ierr = -1;
    ipar(31) = 1;
    dpar(31) = 1.0;
    DCSRILUT(&n, A.a.data(), A.ia.data(), A.ja.data(), lu.data(), ilu.data(), jlu.data(), &tol,
             &maxfil, ip.data(), dp.data(), &ierr);
    ASSERT_EQ(ierr, 0);
  }
};

// A small nonsymmetric matrix with distinct eigenvalues.
Csr small_matrix(int n) {
  Csr A;
  for (int i = 1; i <= n; ++i) {
    if (i == 1)
      A.add_row({{1, 4.0}, {2, 1.0}});
    else if (i == n)
      A.add_row({{i - 1, -2.0}, {i, 4.0 + i}});
    else
      A.add_row({{i - 1, -2.0}, {i, 4.0 + i}, {i + 1, 1.0}});
  }
  return A;
}

std::vector<double> rhs(int n) {
  std::vector<double> b(n);
  for (int i = 0; i < n; ++i) b[i] = 1.0 + 0.5 * i;
  return b;
}

TEST(DfgmresInit, DefaultsAndTheLayoutOfTmp) {
  const Csr A = small_matrix(10);
  FgmresRun r(A, rhs(10), 400);
  const int want[] = {10, 6, 1, 0, 10, 1, 1, 1, 0, 1, 0, 0, 0, 0, 10};
  for (int k = 1; k <= 15; ++k) EXPECT_EQ(r.ipar(k), want[k - 1]) << "ipar(" << k << ")";
  for (int k = 16; k <= 23; ++k) EXPECT_EQ(r.ipar(k), -7) << "ipar(" << k << ")";
  EXPECT_EQ(r.dpar(1), 1.0E-6);
  for (int k = 2; k <= 7; ++k) EXPECT_EQ(r.dpar(k), 0.0);
  EXPECT_EQ(r.dpar(8), 1.0E-12);
  EXPECT_TRUE(std::all_of(r.tmp.begin(), r.tmp.begin() + 10, [](double v) { return v == 0; }));
  EXPECT_EQ(r.tmp[10], -3.0);

  EXPECT_EQ(r.check(), 0);
  const int positions[] = {111, 166, 176, 186, 197, 207};
  for (int k = 16; k <= 21; ++k) EXPECT_EQ(r.ipar(k), positions[k - 16]);
  EXPECT_EQ(tmp_length(10, 10, true), 2u * 10 * 10 + 10 + 95 + 1);

  std::vector<int> big(128, 0);
  int n = 200, rci;
  std::vector<double> t(200), d(128);
  DFGMRES_INIT(&n, t.data(), t.data(), &rci, big.data(), d.data(), t.data());
  EXPECT_EQ(big[4], 150);
  EXPECT_EQ(big[14], 150);
}

TEST(DfgmresCheck, CodesAndFilledInMessages) {
  const Csr A = small_matrix(10);
  {
    FgmresRun r(A, rhs(10), 400);
    r.ipar(15) = 0;
    CaptureStdout();
    EXPECT_EQ(r.check(), -1100);
    EXPECT_EQ(GetCapturedStdout(),
              frame("ORB RCI FGMRES ERROR: ") +
                  "Parameter IPAR(15)=0 should be positive. If you wish to run the\n"
                  "FGMRES method without restarts, please set IPAR(15)=IPAR(5)-IPAR(4)=10\n"
                  "before the call to the DFGMRES_CHECK routine. Please make sure to\n"
                  "allocate enough memory for TMP array...\n");
    EXPECT_EQ(r.ipar(16), -7);  // no positions
  }
  {
    FgmresRun r(A, rhs(10), 400);
    r.ipar(1) = 0;
    CaptureStdout();
    EXPECT_EQ(r.check(), -1100);
    EXPECT_EQ(GetCapturedStdout(),
              frame("ORB RCI FGMRES WARNING: ") +
                  "Parameter IPAR(1)=0 is not equal to the parameter N=10.\n"
                  "It may be an error in one of the parameters. The method may fail to "
                  "proceed...\n" +
                  frame("ORB RCI FGMRES ERROR: ") +
                  "Parameter IPAR(1)=0 must be a positive integer.\n");
  }
  {
    FgmresRun r(A, rhs(10), 400);
    r.ipar(9) = 1;
    r.dpar(1) = 2;
    CaptureStdout();
    EXPECT_EQ(r.check(), -1010);
    EXPECT_EQ(GetCapturedStdout(),
              frame("ORB RCI FGMRES WARNING: ") +
                  "The relative stopping parameter DPAR(1)=2.000000e+00 is out of admissible\n"
                  "interval [0,1]. Assigning DPAR(1)=1.000000e-06 ...\n");
    EXPECT_EQ(r.dpar(1), 1.0E-6);
  }
  {
    FgmresRun r(A, rhs(10), 400);
    r.ipar(7) = 0;
    r.ipar(12) = 1;
    r.dpar(8) = -1;
    EXPECT_EQ(r.check(), -1010);
    EXPECT_EQ(r.dpar(8), 1.0E-12);
    r.dpar(8) = 0;
    EXPECT_EQ(r.check(), -1001);
    r.ipar(12) = 0;  // the zero-norm tolerance is the caller's business then
    EXPECT_EQ(r.check(), 0);
  }
  {
    FgmresRun r(A, rhs(10), 400);
    r.ipar(4) = 12;
    r.ipar(14) = 3;
    CaptureStdout();
    EXPECT_EQ(r.check(), -1001);
    const std::string out = GetCapturedStdout();  // 309, 310, 311 with their values
    EXPECT_NE(out.find("IPAR(5)-IPAR(4)=-2 ...\n"), std::string::npos);
    EXPECT_NE(out.find("IPAR(5)=10 is less or equal"), std::string::npos);
    EXPECT_NE(out.find("counter IPAR(4)=12 ...\n"), std::string::npos);
    EXPECT_NE(out.find("Parameter IPAR(14)=3 should be equal to 0"), std::string::npos);
  }
  {
    FgmresRun r(A, rhs(10), 400);
    r.ipar(7) = 0;
    r.ipar(8) = r.ipar(9) = r.ipar(10) = 0;
    r.dpar(1) = 0;
    r.dpar(2) = -1;
    EXPECT_EQ(r.check(), -1011);  // 300, 302 corrected; 303 not
    EXPECT_EQ(r.ipar(8), 1);
    EXPECT_EQ(r.ipar(9), 1);
    EXPECT_EQ(r.dpar(2), 0.0);
  }
}

TEST(Dfgmres, DefaultRequestSequence) {
  const int n = 10;
  const Csr A = small_matrix(n);
  FgmresRun r(A, rhs(n), tmp_length(n, 10, false));
  r.x.assign(n, 0.25);
  ASSERT_EQ(r.check(), 0);

  ASSERT_EQ(r.step(), 1);  // A x0
  EXPECT_EQ(r.ipar(22), 1);
  EXPECT_EQ(r.ipar(23), n + 1);
  EXPECT_EQ(r.vec(1), r.x);
  EXPECT_EQ(r.vec(2 * n + 1), r.b);
  r.serve(1);

  ASSERT_EQ(r.step(), 4);  // zero-norm test of the start residual
  EXPECT_EQ(r.ipar(3), 5);
  std::vector<double> res(n);
  orb::test::multiply(A, r.x.data(), res.data());
  double nr = 0;
  for (int i = 0; i < n; ++i) nr += (r.b[i] - res[i]) * (r.b[i] - res[i]);
  nr = std::sqrt(nr);
  EXPECT_NEAR(r.dpar(5), nr, 1e-13 * nr);
  EXPECT_EQ(r.dpar(3), r.dpar(5));
  EXPECT_EQ(r.dpar(7), r.dpar(5));
  EXPECT_DOUBLE_EQ(r.dpar(4), 1.0E-6 * r.dpar(5));

  ASSERT_EQ(r.step(), 2);  // v1 formed; the caller's test
  EXPECT_EQ(r.ipar(3), 7);
  EXPECT_EQ(*r.at(r.ipar(19)), r.dpar(5));
  EXPECT_NEAR(r.at(1)[0], (r.b[0] - res[0]) / nr, 1e-15);

  for (int k = 0; k < 3; ++k) {
    ASSERT_EQ(r.step(), 1);  // A v(k+1) into the slot of v(k+2)
    EXPECT_EQ(r.ipar(22), k * n + 1);
    EXPECT_EQ(r.ipar(23), k * n + n + 1);
    EXPECT_EQ(r.ipar(4), k + 1);
    EXPECT_EQ(r.ipar(3), 8);
    r.serve(1);
    ASSERT_EQ(r.step(), 4);
    EXPECT_EQ(r.ipar(3), 9);
    EXPECT_EQ(r.ipar(14), k + 1);
    ASSERT_EQ(r.step(), 2);
    EXPECT_LT(r.dpar(5), r.dpar(6));  // the residual estimate decreases
  }
}

TEST(Dfgmres, RestartAfterAFullCycleKeepsTheThreshold) {
  const int n = 12, m = 3;
  const Csr A = small_matrix(n);
  FgmresRun r(A, rhs(n), tmp_length(n, m, false));
  r.ipar(15) = m;
  r.ipar(5) = 500;
  r.ipar(9) = 1;
  r.ipar(12) = 1;
  r.dpar(1) = 1e-12;
  ASSERT_EQ(r.check(), 0);
  ASSERT_EQ(r.step(), 1);
  r.serve(1);
  ASSERT_EQ(r.step(), 2);
  const double start = r.dpar(3), threshold = r.dpar(4);
  for (int k = 0; k < m; ++k) {
    ASSERT_EQ(r.step(), 1);
    EXPECT_EQ(r.ipar(22), k * n + 1);
    r.serve(1);
    ASSERT_EQ(r.step(), 2);
  }
  ASSERT_EQ(r.ipar(14), m);
  // The solution of the cycle, as DFGMRES_GET forms it into b.
  std::vector<double> x_before = r.x, formed(n);
  r.ipar(13) = 1;
  ASSERT_EQ(r.get(r.x.data(), formed.data()), 0);
  r.ipar(13) = 0;
  EXPECT_EQ(r.x, x_before);

  ASSERT_EQ(r.step(), 1);  // x updated, A x of the restart requested
  EXPECT_EQ(r.x, formed);
  EXPECT_EQ(r.ipar(14), 0);
  EXPECT_EQ(r.ipar(3), 4);
  EXPECT_EQ(r.ipar(22), 1);
  EXPECT_EQ(r.ipar(23), n + 1);
  EXPECT_EQ(r.ipar(4), m);
  r.serve(1);
  ASSERT_EQ(r.step(), 2);
  EXPECT_EQ(r.dpar(4), threshold);
  EXPECT_LT(r.dpar(3), start);
  EXPECT_EQ(r.dpar(3), r.dpar(5));

  r.ipar(10) = 0;
  EXPECT_EQ(r.drive(), 0);
  int count = 0;
  ASSERT_EQ(r.get(r.x.data(), r.b.data(), &count), 0);
  EXPECT_EQ(count, r.ipar(4));
  EXPECT_GT(count, 2 * m);
  EXPECT_LT(orb::test::relative_residual(A, r.x.data(), r.b.data()), 1e-10);
}

TEST(DfgmresGet, WhereTheSolutionGoes) {
  const int n = 8;
  const Csr A = small_matrix(n);
  FgmresRun r(A, rhs(n), tmp_length(n, 8, false));
  ASSERT_EQ(r.check(), 0);
  // Before any step: b receives a copy of x with ipar(13) > 0.
  r.x.assign(n, 2.0);
  std::vector<double> out(n, 9.0);
  r.ipar(13) = 1;
  EXPECT_EQ(r.get(r.x.data(), out.data()), 0);
  EXPECT_EQ(out, r.x);
  r.x.assign(n, 0.0);

  for (int i = 0; i < 12; ++i) r.serve(r.step());  // start and three steps: 1, 4, 2 each
  ASSERT_EQ(r.ipar(14), 3);
  std::vector<double> x0 = r.x, into_b(n, 9.0), nowhere(n, 9.0);
  r.ipar(13) = 1;
  int count = -1;
  EXPECT_EQ(r.get(r.x.data(), into_b.data(), &count), 0);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(r.x, x0);
  // The residual of the formed solution is the solver's estimate.
  double nb = 0;
  for (double v : r.b) nb += v * v;
  const double residual = orb::test::relative_residual(A, into_b.data(), r.b.data());
  EXPECT_NEAR(residual * std::sqrt(nb), r.dpar(5), 1e-10 * std::sqrt(nb));
  EXPECT_LT(r.dpar(5), r.dpar(3));
  r.ipar(13) = -1;
  EXPECT_EQ(r.get(nowhere.data(), nowhere.data()), 0);
  EXPECT_EQ(nowhere, std::vector<double>(n, 9.0));
  r.ipar(13) = 0;
  EXPECT_EQ(r.get(r.x.data(), nowhere.data()), 0);
  EXPECT_EQ(r.x, into_b);

  r.ipar(20) = 0;
  CaptureStdout();
  EXPECT_EQ(r.get(r.x.data(), nowhere.data()), -12);
  EXPECT_EQ(GetCapturedStdout(),
            frame("ORB RCI FGMRES ERROR: ") +
                "Parameter IPAR(20)=0 must be a positive integer. Probably,\n"
                "parameter IPAR(20) was altered by mistake outside of DFGMRES routine. The "
                "solution\n"
                "may be wrong...\n");
}

TEST(Dfgmres, ZeroStartResidual) {
  const int n = 6;
  const Csr A = small_matrix(n);
  {
    FgmresRun r(A, std::vector<double>(n, 0.0), tmp_length(n, 6, false));
    r.ipar(12) = 1;
    EXPECT_EQ(r.step(), 1);
    r.serve(1);
    EXPECT_EQ(r.step(), 0);  // 0 <= dpar(8)
  }
  {
    FgmresRun r(A, std::vector<double>(n, 0.0), tmp_length(n, 6, false));
    ASSERT_EQ(r.check(), 0);
    EXPECT_EQ(r.step(), 1);
    r.serve(1);
    EXPECT_EQ(r.step(), 4);
    CaptureStdout();
    EXPECT_EQ(r.step(), -10);  // the caller went on anyway
    EXPECT_EQ(GetCapturedStdout(),
              frame("ORB RCI FGMRES ERROR: ") +
                  "Division by zero occured: parameter DPAR(5)=0.000000e+00 should\n"
                  "not be equal to 0.0 at this stage. Either the user had to stop the method "
                  "as it\n"
                  "converged, or parameter DPAR(5) was altered by mistake outside of the "
                  "DFGMRES\n"
                  "routine. The solution may be wrong...\n");
  }
}

TEST(Dfgmres, ErrorsOfTheStages) {
  const int n = 6;
  const Csr A = small_matrix(n);
  {  // no stopping test enabled
    FgmresRun r(A, rhs(n), tmp_length(n, 6, false));
    r.ipar(12) = 1;
    r.ipar(8) = r.ipar(9) = r.ipar(10) = 0;
    r.ipar(7) = 0;
    r.check();
    r.ipar(8) = r.ipar(9) = 0;  // undone after the check
    EXPECT_EQ(r.step(), 1);
    r.serve(1);
    r.ipar(6) = 0;
    EXPECT_EQ(r.step(), -11);
  }
  {  // positions altered between calls: -12
    FgmresRun r(A, rhs(n), tmp_length(n, 6, false));
    ASSERT_EQ(r.check(), 0);
    r.ipar(6) = 0;
    EXPECT_EQ(r.step(), 1);
    r.serve(1);
    EXPECT_EQ(r.step(), 4);
    const int g = r.ipar(19);
    r.ipar(19) = 1;
    EXPECT_EQ(r.step(), -12);
    r.ipar(19) = g;
    EXPECT_EQ(r.step(), 2);
    r.ipar(15) = 0;
    EXPECT_EQ(r.step(), -12);
    r.ipar(15) = 6;
    r.ipar(14) = 7;
    EXPECT_EQ(r.step(), -12);
    r.ipar(14) = 0;
    EXPECT_EQ(r.step(), 1);
    r.serve(1);
    r.ipar(1) = 0;
    EXPECT_EQ(r.step(), -12);  // checked on the product's return
  }
  {  // a negative norm at the zero-norm test
    FgmresRun r(A, rhs(n), tmp_length(n, 6, false));
    ASSERT_EQ(r.check(), 0);
    r.serve(r.step());
    EXPECT_EQ(r.step(), 4);
    EXPECT_EQ(r.step(), 2);
    r.serve(r.step());
    EXPECT_EQ(r.step(), 4);
    r.dpar(7) = -1.5;
    CaptureStdout();
    EXPECT_EQ(r.step(), -12);
    EXPECT_NE(GetCapturedStdout().find("Parameter DPAR(7)=-1.500000e+00 should not be negative."),
              std::string::npos);
  }
  {  // a stage out of range ends the call with 0
    FgmresRun r(A, rhs(n), tmp_length(n, 6, false));
    r.ipar(3) = 15;
    EXPECT_EQ(r.step(), 0);
    r.ipar(3) = 0;
    EXPECT_EQ(r.step(), 0);
  }
}

TEST(DfgmresMessages, LogFileWithoutNotice) {
  orb::test::TempDir dir;
  const int n = 6;
  const Csr A = small_matrix(n);
  const std::string text = frame("ORB RCI FGMRES ERROR: ") +
                           "Parameter IPAR(1)=-2 must be a positive integer. Probably,\n"
                           "parameter IPAR(1) was altered by mistake outside of DFGMRES "
                           "routine. The solution\n"
                           "may be wrong...\n";
  FgmresRun r(A, rhs(n), tmp_length(n, 6, false));
  r.ipar(2) = 0;
  r.ipar(1) = -2;
  CaptureStdout();
  EXPECT_EQ(r.check(), -1100);  // warning 306, then error 5
  EXPECT_EQ(r.step(), -12);     // error 10
  EXPECT_EQ(GetCapturedStdout(), "");
  EXPECT_EQ(orb::test::read_file("ORB_RCI_FGMRES_Log.txt"),
            frame("ORB RCI FGMRES WARNING: ") +
                "Parameter IPAR(1)=-2 is not equal to the parameter N=6.\n"
                "It may be an error in one of the parameters. The method may fail to "
                "proceed...\n" +
                frame("ORB RCI FGMRES ERROR: ") +
                "Parameter IPAR(1)=-2 must be a positive integer.\n" + text);

  std::filesystem::remove("ORB_RCI_FGMRES_Log.txt");
  std::filesystem::create_directory("ORB_RCI_FGMRES_Log.txt");
  CaptureStdout();
  EXPECT_EQ(r.step(), -12);
  EXPECT_EQ(GetCapturedStdout(),
            "Cannot create file ORB_RCI_FGMRES_Log.txt ...\n"
            "An error/warning message cannot be saved in the file.\n");
}

// m = 1 without a preconditioner leaves less than 3 n doubles in tmp; the
// start must stay inside it (checked under AddressSanitizer).
TEST(DfgmresSolve, RestartLengthOneWithAnExactTmp) {
  const int n = 40;
  Csr A;
  for (int i = 1; i <= n; ++i)
    A.add_row(i < n ? std::initializer_list<std::pair<int, double>>{{i, 3.0}, {i + 1, 0.5}}
                    : std::initializer_list<std::pair<int, double>>{{i, 3.0}});
  FgmresRun r(A, rhs(n), tmp_length(n, 1, false));
  ASSERT_LT(r.tmp.size(), 3u * n);
  r.ipar(15) = 1;
  r.ipar(5) = 500;
  r.ipar(9) = 1;
  r.ipar(10) = 0;
  r.ipar(12) = 1;
  r.dpar(1) = 1e-10;
  ASSERT_EQ(r.check(), 0);
  ASSERT_EQ(r.drive(), 0);
  ASSERT_EQ(r.get(r.x.data(), r.b.data()), 0);
  EXPECT_LT(orb::test::relative_residual(A, r.x.data(), r.b.data()), 2e-10);
}

// Convection-diffusion of order 10^4 by FGMRES with an ILUT preconditioner.
TEST(DfgmresSolve, ConvectionDiffusionWithIlut) {
  const Csr A = orb::test::grid_operator(100, 0.3);
  const int n = A.n, m = 40;
  std::vector<double> b(n);
  for (int i = 0; i < n; ++i) b[i] = 1.0 + std::sin(0.003 * i);
  FgmresRun r(A, b, tmp_length(n, m, true));
  r.ipar(15) = m;
  r.ipar(5) = 1000;
  r.ipar(9) = 1;
  r.ipar(10) = 0;
  r.ipar(11) = 1;
  r.ipar(12) = 1;
  r.dpar(1) = 1e-8;
  r.factor_ilut(1e-3, 8);
  ASSERT_EQ(r.check(), 0);
  ASSERT_EQ(r.drive(), 0);
  int iterations = 0;
  ASSERT_EQ(r.get(r.x.data(), r.b.data(), &iterations), 0);
  EXPECT_LT(orb::test::relative_residual(A, r.x.data(), b.data()), 1.5e-8);
  EXPECT_LT(iterations, 200);
}

}  // namespace
