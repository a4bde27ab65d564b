// DCSRILU0 and DCSRILUT: factors, pivot handling, the dropping rules, the
// checks in their order, messages, and the release of the work arrays.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "iterative/support.h"
#include "orb.h"

namespace {

using orb::test::Csr;
using orb::test::frame;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

struct Params {
  std::vector<int> ip = std::vector<int>(128, 0);
  std::vector<double> dp = std::vector<double>(128, 0.0);
  Params() {
    ipar(2) = 6;
    ipar(6) = 1;
    ipar(7) = 1;
  }
  int &ipar(int k) { return ip[k - 1]; }
  double &dpar(int k) { return dp[k - 1]; }
};

int ilu0(const Csr &A, std::vector<double> &lu, Params &p) {
  lu.assign(A.a.size(), -9.0);
  int ierr = 7, n = A.n;
  DCSRILU0(&n, A.a.data(), A.ia.data(), A.ja.data(), lu.data(), p.ip.data(), p.dp.data(), &ierr);
  return ierr;
}

struct Ilut {
  std::vector<double> lu;
  std::vector<int> ilu, jlu;
  int ierr = 7;
  int nnz() const { return ilu.empty() || ilu[0] != 1 ? -1 : ilu.back() - 1; }
};

Ilut ilut(const Csr &A, double tol, int maxfil, Params &p, int n_override = -1) {
  Ilut f;
  int n = n_override >= 0 ? n_override : A.n;
  const size_t cap = static_cast<size_t>(A.n) * (2 * A.n + 1);
  f.lu.assign(cap, -9.0);
  f.jlu.assign(cap, -9);
  f.ilu.assign(A.n + 1, -9);
  DCSRILUT(&n, A.a.data(), A.ia.data(), A.ja.data(), f.lu.data(), f.ilu.data(), f.jlu.data(), &tol,
           &maxfil, p.ip.data(), p.dp.data(), &f.ierr);
  return f;
}

// Entries of row i (1-based) of an ILUT result: column -> value.
std::vector<std::pair<int, double>> row(const Ilut &f, int i) {
  std::vector<std::pair<int, double>> r;
  for (int p = f.ilu[i - 1] - 1; p < f.ilu[i] - 1; ++p) r.push_back({f.jlu[p], f.lu[p]});
  return r;
}

Csr diagonal(std::initializer_list<double> d) {
  Csr A;
  int i = 1;
  for (double v : d) A.add_row({{i++, v}});
  return A;
}

TEST(Dcsrilu0, DiagonalMatrixIsItsOwnFactor) {
  Params p;
  const Csr A = diagonal({2, -3, 5, 7});
  std::vector<double> lu;
  EXPECT_EQ(ilu0(A, lu, p), 0);
  EXPECT_EQ(lu, A.a);
}

TEST(Dcsrilu0, ProductMatchesTheMatrixOnItsPattern) {
  Params p;
  const Csr A = orb::test::grid_operator(6, 0.4);
  std::vector<double> lu;
  ASSERT_EQ(ilu0(A, lu, p), 0);
  const std::vector<double> P = orb::test::dense_product(A.n, A.ia.data(), A.ja.data(), lu.data());
  for (int i = 0; i < A.n; ++i)
    for (int q = A.ia[i] - 1; q < A.ia[i + 1] - 1; ++q)
      EXPECT_NEAR(P[i * A.n + A.ja[q] - 1], A.a[q], 1e-14) << i << "," << A.ja[q];
  // A tridiagonal matrix has no fill: ILU0 is its exact LU.
  Csr T;
  T.add_row({{1, 4}, {2, 1}});
  T.add_row({{1, 2}, {2, 5}, {3, -1}});
  T.add_row({{2, 1}, {3, 3}});
  ASSERT_EQ(ilu0(T, lu, p), 0);
  const double want[] = {4, 1, 0.5, 4.5, -1, 1 / 4.5, 3 + 1 / 4.5};
  for (int q = 0; q < 7; ++q) EXPECT_DOUBLE_EQ(lu[q], want[q]) << q;
}

TEST(Dcsrilu0, SmallAndZeroPivots) {
  Params p;
  p.ipar(6) = 0;
  Csr A;
  A.add_row({{1, 1e-20}, {2, 1}});
  A.add_row({{1, 1}, {2, 2}});
  std::vector<double> lu;
  p.dpar(31) = 1.0E-16;
  EXPECT_EQ(ilu0(A, lu, p), -103);
  p.ipar(31) = 1;
  p.dpar(32) = 1.0;
  EXPECT_EQ(ilu0(A, lu, p), 0);
  EXPECT_EQ(lu, (std::vector<double>{1, 1, 1, 1}));

  // |pivot| equal to |dpar(31)| is accepted; the sign of dpar(31) does not matter.
  p.ipar(31) = 0;
  p.dpar(31) = -1.0E-20;
  EXPECT_EQ(ilu0(A, lu, p), 0);

  // A zero (or NaN) pivot, here created by the elimination in row 2.
  Csr Z;
  Z.add_row({{1, 1}, {2, 2}});
  Z.add_row({{1, 2}, {2, 4}});
  p.dpar(31) = 0;
  EXPECT_EQ(ilu0(Z, lu, p), -102);
  EXPECT_EQ(lu, (std::vector<double>{1, 2, 2, 0}));  // written up to the failure
  p.ipar(31) = 1;
  p.dpar(32) = 5;
  EXPECT_EQ(ilu0(Z, lu, p), 0);
  EXPECT_EQ(lu[3], 5);
  const Csr N = diagonal({std::nan(""), 1});
  p.ipar(31) = 0;
  EXPECT_EQ(ilu0(N, lu, p), -102);
}

TEST(Dcsrilu0, InputErrorsAndTheirMessages) {
  Params p;
  std::vector<double> lu(8);
  int ierr = 0, n = 0;
  const Csr A = diagonal({1, 2});
  CaptureStdout();
  DCSRILU0(&n, A.a.data(), A.ia.data(), A.ja.data(), lu.data(), p.ip.data(), p.dp.data(), &ierr);
  EXPECT_EQ(ierr, -105);
  EXPECT_EQ(GetCapturedStdout(), frame("ORB DCSRILU0 ERROR: ") +
                                     "Cannot proceed with calculations as\n"
                                     "input matrix size is negative or zero.\n");

  p.ipar(6) = 0;  // errors silenced from here
  Csr unsorted;
  unsorted.add_row({{2, 1}, {1, 3}});
  unsorted.add_row({{2, 1}});
  EXPECT_EQ(ilu0(unsorted, lu, p), -106);
  Csr repeated;
  repeated.add_row({{1, 1}, {1, 3}});
  EXPECT_EQ(ilu0(repeated, lu, p), -106);
  Csr no_diagonal;
  no_diagonal.add_row({{1, 1}});
  no_diagonal.add_row({{1, 1}});
  EXPECT_EQ(ilu0(no_diagonal, lu, p), -101);
  Csr empty_row = diagonal({1, 2});
  empty_row.ia = {1, 2, 2};
  empty_row.n = 2;
  EXPECT_EQ(ilu0(empty_row, lu, p), -101);

  // No memory for the work array of n integers.
  p.ipar(6) = 1;
  n = 1100000000;
  CaptureStdout();
  DCSRILU0(&n, A.a.data(), A.ia.data(), A.ja.data(), lu.data(), p.ip.data(), p.dp.data(), &ierr);
  EXPECT_EQ(ierr, -104);
  EXPECT_EQ(GetCapturedStdout(), frame("ORB DCSRILU0 ERROR: ") +
                                     "Cannot proceed as the system failed to provide\n"
                                     "memory for inner temporary integer array of size N.\n");
}

TEST(Dcsrilu0, LogFile) {
  orb::test::TempDir dir;
  Params p;
  p.ipar(2) = 1;
  Csr A;
  A.add_row({{1, 1}});
  A.add_row({{1, 1}});
  std::vector<double> lu;
  CaptureStdout();
  EXPECT_EQ(ilu0(A, lu, p), -101);
  EXPECT_EQ(GetCapturedStdout(), "Error message has been written in ORB_PREC_log.txt\n");
  EXPECT_EQ(orb::test::read_file("ORB_PREC_log.txt"),
            frame("ORB DCSRILU0 ERROR: ") +
                "Cannot proceed with calculations as\n"
                "matrix has no diagonal in CSR format.\n");
  std::filesystem::remove("ORB_PREC_log.txt");
  std::filesystem::create_directory("ORB_PREC_log.txt");
  CaptureStdout();
  EXPECT_EQ(ilu0(A, lu, p), -101);
  EXPECT_EQ(GetCapturedStdout(),
            "Cannot create file ORB_PREC_log.txt ...\n"
            "An error/warning message cannot be saved in the file.\n");
}

TEST(Dcsrilut, ExactLuWithoutDropping) {
  Params p;
  p.dpar(31) = 1;
  const Csr A = orb::test::grid_operator(3, 0.3);
  const Ilut f = ilut(A, 0.0, A.n - 1, p);
  ASSERT_EQ(f.ierr, 0);
  EXPECT_EQ(f.ilu[0], 1);
  const std::vector<double> P =
      orb::test::dense_product(A.n, f.ilu.data(), f.jlu.data(), f.lu.data());
  const std::vector<double> D = orb::test::dense(A);
  for (int i = 0; i < A.n * A.n; ++i) EXPECT_NEAR(P[i], D[i], 1e-14) << i;
  for (int i = 1; i <= A.n; ++i) {  // L part, diagonal, U part in that order
    const auto r = row(f, i);
    int seen_diagonal = 0;
    for (auto [c, v] : r) {
      if (c == i) ++seen_diagonal;
      EXPECT_EQ(c < i, seen_diagonal == 0) << "row " << i << " column " << c;
    }
    EXPECT_EQ(seen_diagonal, 1);
  }
}

TEST(Dcsrilut, DualDroppingRuleAtTheThreshold) {
  // Row 2 has scale sqrt(20 / 5) = 2, so t = 0.25 * 2 = 0.5 exactly: its
  // multiplier 1 / 2 = t is kept, its U entry 0.5 = t is dropped.
  Params p;
  p.dpar(31) = 1;
  Csr A;
  A.add_row({{1, 2.0}});
  A.add_row({{1, 1.0}, {2, 2.5}, {3, 0.5}, {4, 2.5}, {5, 2.5}});
  A.add_row({{3, 1.0}});
  A.add_row({{4, 1.0}});
  A.add_row({{5, 1.0}});
  const Ilut f = ilut(A, 0.25, 4, p);
  ASSERT_EQ(f.ierr, 0);
  EXPECT_EQ(row(f, 2),
            (std::vector<std::pair<int, double>>{{1, 0.5}, {2, 2.5}, {4, 2.5}, {5, 2.5}}));
}

TEST(Dcsrilut, RowScaleIsTheRootMeanSquare) {
  // Row 2 holds 3, 0, 4: its zero pivot is replaced by dpar(31) * sqrt(25 / 3).
  Params p;
  p.ipar(31) = 1;
  p.dpar(31) = 1;
  Csr A;
  A.add_row({{1, 1.0}});
  A.add_row({{1, 3.0}, {2, 0.0}, {3, 4.0}});
  A.add_row({{3, 1.0}});
  const Ilut f = ilut(A, 0.01, 2, p);
  ASSERT_EQ(f.ierr, 0);
  const auto r = row(f, 2);
  ASSERT_EQ(r.size(), 3u);
  EXPECT_EQ(r[1].first, 2);
  EXPECT_DOUBLE_EQ(r[1].second, std::sqrt(25.0 / 3.0));

  // A negative small pivot is replaced by a positive value; without
  // permission to replace it, -102.
  A.a[2] = -1e-9;
  const Ilut g = ilut(A, 0.01, 2, p);
  ASSERT_EQ(g.ierr, 0);
  EXPECT_GT(row(g, 2)[1].second, 0);
  p.ipar(31) = 0;
  CaptureStdout();
  EXPECT_EQ(ilut(A, 0.01, 2, p).ierr, -102);
  EXPECT_EQ(GetCapturedStdout(), frame("ORB DCSRILUT ERROR: ") +
                                     "Cannot proceed with calculations as small diagonal\n"
                                     "value has appeared (small with respect to the input\n"
                                     "tolerance multiplied by the matrix row L_2 norm)\n"
                                     "that should be discarded according to the threshold\n"
                                     "criterion, but it cannot be replaced as IPAR(31)=0.\n");
}

TEST(Dcsrilut, KeepsTheMaxfilLargestOfEachPart) {
  Params p;
  p.dpar(31) = 1;
  const std::vector<double> values = {1, 7, 3, 6, 2, 5, 4};
  Csr U;  // row 1: diagonal 10 and seven U entries
  U.add_row({{1, 10}, {2, 1}, {3, 7}, {4, 3}, {5, 6}, {6, 2}, {7, 5}, {8, 4}});
  for (int i = 2; i <= 8; ++i) U.add_row({{i, 1.0}});
  const Ilut fu = ilut(U, 1e-3, 3, p);
  ASSERT_EQ(fu.ierr, 0);
  EXPECT_EQ(row(fu, 1), (std::vector<std::pair<int, double>>{{1, 10}, {3, 7}, {5, 6}, {7, 5}}));

  Csr L;  // rows 1 to 7 diagonal, row 8: seven multipliers and the diagonal
  for (int i = 1; i <= 7; ++i) L.add_row({{i, 1.0}});
  L.add_row({{1, 1}, {2, 7}, {3, 3}, {4, 6}, {5, 2}, {6, 5}, {7, 4}, {8, 100}});
  const Ilut fl = ilut(L, 1e-3, 3, p);
  ASSERT_EQ(fl.ierr, 0);
  EXPECT_EQ(row(fl, 8), (std::vector<std::pair<int, double>>{{2, 7}, {4, 6}, {6, 5}, {8, 100}}));

  // maxfil 0 keeps the diagonal only.
  const Ilut f0 = ilut(L, 1e-3, 0, p);
  ASSERT_EQ(f0.ierr, 0);
  EXPECT_EQ(f0.nnz(), 8);
}

TEST(Dcsrilut, DoubtfulInputFollowsIpar7) {
  const Csr A = orb::test::grid_operator(4, 0.2);
  Params p;
  p.dpar(31) = 1;
  const Ilut reference = ilut(A, 0.01, A.n - 1, p);
  ASSERT_EQ(reference.ierr, 0);

  // maxfil = n: warn, go on with n - 1, end with 101.
  CaptureStdout();
  const Ilut f = ilut(A, 0.01, A.n, p);
  EXPECT_EQ(GetCapturedStdout(), frame("ORB DCSRILUT WARNING: ") +
                                     "Maximum fill-in input parameter is greater or equals\n"
                                     "matrix size. Proceeding with the parameter equals\n"
                                     "(matrix size - 1) if IPAR(7)>0, aborting otherwise...\n");
  EXPECT_EQ(f.ierr, 101);
  EXPECT_EQ(f.lu, reference.lu);
  EXPECT_EQ(f.jlu, reference.jlu);

  p.ipar(7) = 0;  // stop silently, nothing written
  CaptureStdout();
  const Ilut g = ilut(A, 0.01, A.n, p);
  EXPECT_EQ(GetCapturedStdout(), "");
  EXPECT_EQ(g.ierr, 101);
  EXPECT_EQ(g.ilu, std::vector<int>(A.n + 1, -9));
  CaptureStdout();
  const Ilut h = ilut(A, -0.01, 3, p);
  EXPECT_EQ(GetCapturedStdout(), "");
  EXPECT_EQ(h.ierr, 102);
  EXPECT_EQ(h.ilu, std::vector<int>(A.n + 1, -9));

  p.ipar(7) = -1;  // warn and stop
  CaptureStdout();
  const Ilut k = ilut(A, -0.01, 3, p);
  EXPECT_EQ(GetCapturedStdout(), frame("ORB DCSRILUT WARNING: ") +
                                     "The value of input tolerance parameter is negative.\n"
                                     "Proceed with (-value) if IPAR(7)>0, aborting otherwise...\n");
  EXPECT_EQ(k.ierr, 102);
  EXPECT_EQ(k.ilu, std::vector<int>(A.n + 1, -9));

  p.ipar(7) = 2;  // any positive value goes on, here with tol = 0.01
  CaptureStdout();
  const Ilut q = ilut(A, -0.01, A.n - 1, p);
  EXPECT_EQ(q.ierr, 102);
  EXPECT_EQ(q.lu, reference.lu);

  p.dpar(31) = 0.001;  // |dpar(31)| < tol
  const Ilut r = ilut(A, 0.01, 3, p);
  EXPECT_EQ(r.ierr, 103);
  EXPECT_GT(r.nnz(), 0);
  p.dpar(31) = 0;  // and zero with ipar(31) = 1: the last correction is the status
  p.ipar(31) = 1;
  EXPECT_EQ(ilut(A, 0.01, 3, p).ierr, 104);
  EXPECT_EQ(ilut(A, 0.0, 3, p).ierr, 104);
  p.ipar(31) = 2;  // check 5 is only for ipar(31) = 1
  EXPECT_EQ(ilut(A, 0.0, 3, p).ierr, 0);
  const std::string out = GetCapturedStdout();
  EXPECT_NE(out.find("Input absolute value of tolerance is greater than\n"
                     "input value set in DPAR(31) which might result\n"
                     "in instability of calculations.\n"),
            std::string::npos);
  EXPECT_NE(out.find("Input value of DPAR(31) equals zero. Its possible\n"
                     "future usage for replacement of small diagonal values\n"
                     "will always lead to failure in computation of LU factors.\n"),
            std::string::npos);
}

TEST(Dcsrilut, InputErrorsInOrder) {
  Params p;
  p.ipar(6) = 0;
  p.dpar(31) = 1;
  const Csr A = orb::test::grid_operator(3);
  EXPECT_EQ(ilut(A, 0.01, -1, p, 0).ierr, -105);
  EXPECT_EQ(ilut(A, 0.01, 2, p, 0).ierr, -106);
  Csr bad_rows = A;
  bad_rows.ia[4] = bad_rows.ia[3];
  EXPECT_EQ(ilut(bad_rows, 0.01, 2, p).ierr, -103);
  Csr bad_columns = A;
  bad_columns.ja[5] = 10;
  EXPECT_EQ(ilut(bad_columns, 0.01, 2, p).ierr, -107);
  bad_columns.ja[5] = 0;
  EXPECT_EQ(ilut(bad_columns, 0.01, 2, p).ierr, -107);
  Csr zero_row = A;
  for (int q = zero_row.ia[4] - 1; q < zero_row.ia[5] - 1; ++q) zero_row.a[q] = 0;
  EXPECT_EQ(ilut(zero_row, 0.01, 2, p).ierr, -101);

  p.ipar(6) = 1;
  CaptureStdout();
  EXPECT_EQ(ilut(A, 0.01, -1, p).ierr, -105);
  EXPECT_EQ(GetCapturedStdout(), frame("ORB DCSRILUT ERROR: ") +
                                     "Cannot proceed with calculations as input maximum\n"
                                     "fill-in parameter is negative.\n");
}

TEST(Dcsrilut, LogFile) {
  orb::test::TempDir dir;
  Params p;
  p.ipar(2) = 3;
  p.dpar(31) = 1;
  const Csr A = orb::test::grid_operator(5);
  CaptureStdout();
  EXPECT_EQ(ilut(A, 0.01, A.n + 4, p).ierr, 101);
  Csr bad = A;
  bad.ja[0] = 0;
  EXPECT_EQ(ilut(bad, 0.01, 3, p).ierr, -107);
  EXPECT_EQ(GetCapturedStdout(),
            "Warning message has been written in ORB_PREC_DILUT_log.txt\n"
            "Error message has been written in ORB_PREC_DILUT_log.txt\n");
  EXPECT_EQ(orb::test::read_file("ORB_PREC_DILUT_log.txt"),
            frame("ORB DCSRILUT WARNING: ") +
                "Maximum fill-in input parameter is greater or equals\n"
                "matrix size. Proceeding with the parameter equals\n"
                "(matrix size - 1) if IPAR(7)>0, aborting otherwise...\n" +
                frame("ORB DCSRILUT ERROR: ") +
                "Cannot proceed with calculations as input matrix has\n"
                "wrong column indexes in CSR format.\n");
}

}  // namespace
