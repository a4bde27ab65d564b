// The sparse direct solver through its entry: the phase and handle rules,
// the diagonal shortcut, defaults, codes and printed lines, and residuals of
// generated problems of every matrix type.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <functional>
#include <thread>
#include <vector>

#include "orb.h"
#include "sparse_direct/messages.h"
#include "tessera_kit.h"

namespace {

using namespace orb::test::tessera;

// Solves with phase 13 and returns the backward error (and the solver's
// error code in *err).
template <class T>
double solve13(Csr<T> &m, int mtype, int nrhs, int *err, int op = 0,
               const std::function<void(Solver &)> &tune = {}) {
  Solver s;
  s.mtype = mtype;
  s.nrhs = nrhs;
  if (tune) tune(s);
  s.iparam[11] = op;
  std::vector<T> b = rhs<T>(m.n, nrhs), x(b.size());
  // iparam(12) must survive the defaults: set it after them.
  s.iparam[0] = 1;
  if (!tune) {
    s.iparam[1] = 2;
    s.iparam[9] = (mtype == 2 || mtype == 4)                                 ? 0
                  : (mtype == 11 || mtype == 13 || mtype == 1 || mtype == 3) ? 13
                                                                             : 8;
    s.iparam[10] = (mtype == 11 || mtype == 13) ? 1 : 0;
    s.iparam[12] = (mtype == 11 || mtype == 13) ? 1 : 0;
    s.iparam[20] = (mtype == -2 || mtype == -4 || mtype == 6) ? 1 : 0;
    s.iparam[11] = op;
  }
  *err = s.call(13, m, b.data(), x.data());
  return backward_error(m, mtype, op, x, b, nrhs);
}

// ---- exact rules of the entry ------------------------------------------------

TEST(TesseraPhases, QueriesAndReleaseNeverTouchTheHandle) {
  Solver s;
  Csr<double> m = grid<double>(3, true, 4, -1, -1, -1, -1);
  s.mtype = 2;
  EXPECT_EQ(s.call<double>(-2, m, nullptr, nullptr), 16);
  EXPECT_EQ(s.iparam[0], 23);
  EXPECT_EQ(s.call<double>(-3, m, nullptr, nullptr), 300000);
  EXPECT_EQ(s.call<double>(-1, m, nullptr, nullptr), 0);  // never used: nothing to free
  for (void *w : s.pt) EXPECT_EQ(w, nullptr);
  // A phase below 1 on a new handle initialises it and fails.
  EXPECT_EQ(s.call<double>(0, m, nullptr, nullptr), -1);
  EXPECT_NE(s.pt[0], nullptr);
  EXPECT_EQ(s.call<double>(-1, m, nullptr, nullptr), 0);
  for (void *w : s.pt) EXPECT_EQ(w, nullptr);
}

TEST(TesseraPhases, StageRulesCodesAndReports) {
  Solver s;
  s.mtype = 2;
  Csr<double> m = grid<double>(6, true, 4, -1, -1, -1, -1);
  std::vector<double> b = rhs<double>(m.n, 1), x(m.n);
  // Solve or factorization before the analysis.
  EXPECT_EQ(s.call(22, m, b.data(), x.data()), -1);
  EXPECT_EQ(s.iparam[63], 106);
  EXPECT_EQ(s.call(12, m, b.data(), x.data()), 0);
  EXPECT_EQ(s.iparam[1], 2);          // the defaults
  EXPECT_EQ(s.iparam[17] > 0, true);  // factor entries reported (-1 on input)
  EXPECT_LE(s.iparam[2], m.n);
  EXPECT_GE(s.iparam[2], 1);
  EXPECT_EQ(s.iparam[63], 106);
  // An unknown phase, a bad mnum, nrhs < 1 for a solve.
  EXPECT_EQ(s.call(44, m, b.data(), x.data()), -1);
  s.mnum = 2;
  EXPECT_EQ(s.call(22, m, b.data(), x.data()), -1);
  s.mnum = 1;
  s.nrhs = 0;
  EXPECT_EQ(s.call(23, m, b.data(), x.data()), -1);
  // ... but phase 33 with iparam(4) = 0 always ends with 0.
  EXPECT_EQ(s.call(33, m, b.data(), x.data()), 0);
  s.nrhs = 1;
  EXPECT_EQ(s.call(33, m, b.data(), x.data()), 0);
  EXPECT_LT(backward_error(m, 2, 0, x, b, 1), 1e-14);
  // Phase 0 frees the factorization; a solve then fails (and phase 23 works).
  EXPECT_EQ(s.call(0, m, b.data(), x.data()), 0);
  EXPECT_EQ(s.call(23, m, b.data(), x.data()), 0);
  // An out-of-range type and n <= 0.
  s.mtype = 5;
  EXPECT_EQ(s.call(11, m, b.data(), x.data()), -1);
}

TEST(TesseraPhases, DiagonalShortcutAndItsAfterEffects) {
  Solver s;
  s.mtype = 11;
  // Three stored entries for n = 3, one of them off the diagonal.
  Csr<double> m;
  m.n = 3;
  m.ia = {1, 2, 3, 4};
  m.ja = {1, 3, 3};
  m.a = {2.0, -4.0, 8.0};
  std::vector<double> b = {2, 4, 8}, x(3, 0);
  EXPECT_EQ(s.call(13, m, b.data(), x.data()), 0);
  EXPECT_EQ(s.iparam[11], -1);
  EXPECT_EQ(x, (std::vector<double>{1, -1, 1}));
  for (void *w : s.pt) EXPECT_EQ(w, nullptr);  // the handle is not touched
  // Later calls return at once until iparam(12) is reset.
  Csr<double> g = grid<double>(4, false, 4, -1, -1, -1, -1);
  EXPECT_EQ(s.call(11, g, b.data(), x.data()), 0);
  EXPECT_EQ(s.pt[0], nullptr);
  // A zero diagonal gives -7; complex diagonals go to the complex solver.
  m.a[1] = 0;
  s.iparam[11] = 0;
  EXPECT_EQ(s.call(13, m, b.data(), x.data()), -7);
  Csr<c16> mc;
  mc.n = 2;
  mc.ia = {1, 2, 3};
  mc.ja = {1, 2};
  mc.a = {c16(0, 1), c16(2, 0)};
  std::vector<c16> bc = {c16(1, 0), c16(4, 2)}, xc(2);
  s.mtype = 13;
  s.iparam[11] = 0;
  s.iparam[5] = 1;  // the solution over b
  EXPECT_EQ(s.call(23, mc, bc.data(), xc.data()), 0);
  EXPECT_EQ(bc[0], c16(0, -1));
  EXPECT_EQ(bc[1], c16(2, 1));
}

TEST(TesseraPhases, DefaultsPerType) {
  const struct {
    int mtype, p10, p11, p13, p21;
  } rows[] = {{1, 13, 0, 0, 0}, {2, 0, 0, 0, 0},   {-2, 8, 0, 0, 1},
              {3, 13, 0, 0, 0}, {4, 0, 0, 0, 0},   {-4, 8, 0, 0, 1},
              {6, 8, 0, 0, 1},  {11, 13, 1, 1, 0}, {13, 13, 1, 1, 0}};
  for (const auto &r : rows) {
    Solver s;
    s.mtype = r.mtype;
    for (int &p : s.iparam) p = 99;
    s.iparam[0] = 0;
    s.iparam[11] = 0;
    s.iparam[34] = 0;
    s.iparam[26] = 0;
    s.iparam[59] = 0;
    s.iparam[4] = 0;
    Csr<c16> mc = grid<c16>(3, r.mtype != 1 && r.mtype != 3 && r.mtype != 11 && r.mtype != 13, 4,
                            -1, -1, -1, -1);
    Csr<double> m = grid<double>(3, r.mtype != 1 && r.mtype != 11, 4, -1, -1, -1, -1);
    const bool cplx = std::abs(r.mtype > 10 ? r.mtype - 10 : r.mtype) > 2;
    const int err =
        cplx ? s.call<c16>(11, mc, nullptr, nullptr) : s.call<double>(11, m, nullptr, nullptr);
    EXPECT_EQ(err, 0) << r.mtype;
    EXPECT_EQ(s.iparam[1], 2);
    EXPECT_EQ(s.iparam[7], 0);
    EXPECT_EQ(s.iparam[9], r.p10) << r.mtype;
    EXPECT_EQ(s.iparam[10], r.p11) << r.mtype;
    EXPECT_EQ(s.iparam[12], r.p13) << r.mtype;
    EXPECT_EQ(s.iparam[20], r.p21) << r.mtype;
    EXPECT_EQ(s.iparam[17], -1);
    EXPECT_EQ(s.iparam[49], 0);
    EXPECT_EQ(s.iparam[63], 106);
  }
}

TEST(TesseraPhases, MatrixCheckLeavesEverythingAsItWas) {
  Solver s;
  s.mtype = -2;
  s.iparam[0] = 1;
  s.iparam[1] = 2;
  s.iparam[9] = 8;
  s.iparam[20] = 1;
  s.iparam[26] = 1;  // check the matrix
  Csr<double> m = grid<double>(5, true, 1.1, -1, -1, -1, -1);
  std::vector<double> b = rhs<double>(m.n, 1), x(m.n), x0;
  ASSERT_EQ(s.call(13, m, b.data(), x.data()), 0);
  x0 = x;
  const double err0 = backward_error(m, -2, 0, x, b, 1);
  EXPECT_LT(err0, 1e-12);
  Csr<double> bad = m;
  std::swap(bad.ja[1], bad.ja[2]);  // unsorted row 1
  const auto a0 = bad.a;
  testing::internal::CaptureStdout();
  EXPECT_EQ(s.call(11, bad, b.data(), x.data()), -1);
  EXPECT_NE(testing::internal::GetCapturedStdout().find("row 1"), std::string::npos);
  EXPECT_EQ(bad.a, a0);
  bad = m;
  bad.ja[bad.ia[3] - 1] = 1;  // row 4 loses its diagonal to a column below it
  testing::internal::CaptureStdout();
  EXPECT_EQ(s.call(11, bad, b.data(), x.data()), -1);
  EXPECT_NE(testing::internal::GetCapturedStdout().find("row 4"), std::string::npos);
  bad = m;
  bad.ja[4] = 99;  // out of range
  testing::internal::CaptureStdout();
  EXPECT_EQ(s.call(11, bad, b.data(), x.data()), -1);
  testing::internal::GetCapturedStdout();
  // The earlier factorization still solves.
  std::fill(x.begin(), x.end(), 0.0);
  EXPECT_EQ(s.call(33, m, b.data(), x.data()), 0);
  EXPECT_EQ(x, x0);
}

TEST(TesseraPhases, NotPositiveDefiniteReportsTheEquation) {
  Solver s;
  s.mtype = 2;
  s.msglvl = 1;
  Csr<double> m = grid<double>(4, true, 4, -1, -1, -1, -1);
  m.a[m.ia[6] - 1] = -50;  // equation 7's diagonal
  std::vector<double> b = rhs<double>(m.n, 1), x(m.n);
  s.iparam[0] = 1;
  s.iparam[1] = 2;
  testing::internal::CaptureStdout();
  EXPECT_EQ(s.call(12, m, b.data(), x.data()), -4);
  const std::string out = testing::internal::GetCapturedStdout();
  EXPECT_NE(out.find("*** Error in TESSERA: zero or negative pivot, A is not SPD-matrix"),
            std::string::npos);
  EXPECT_NE(out.find(" local TESSERA version is 106\n"), std::string::npos);
  EXPECT_GE(s.iparam[29], 1);
  EXPECT_LE(s.iparam[29], m.n);
}

TEST(TesseraText, FortranRecords) {
  namespace t = orb::sparse::text;
  EXPECT_EQ(t::fortran_e12_3(1.2345e-5), "   0.123E-04");
  EXPECT_EQ(t::fortran_e12_3(-0.9996), "  -0.100E+01");
  EXPECT_EQ(t::fortran_e12_3(0.0), "   0.000E+00");
  EXPECT_EQ(t::fortran_e12_3(1e-120), "   0.100-119");
  EXPECT_EQ(t::refine_ratios(2, 1e-16, 3e-17),
            " ref_it: 2. rel res   0.100E-15 rel err   0.300E-16");
  EXPECT_EQ(t::refine_warning(1, 2, 1),
            "*** warning ref_it: 1. sumres,sumrhs   0.200E+01   0.100E+01");
  EXPECT_EQ(t::cgs_iteration(12, 0.5), " cgs-iteration: 12.   0.500E+00");
  EXPECT_EQ(t::stage_error(t::Stage::kReordering, -3),
            "*** Error in TESSERA  (        reordering_phase) error_num= -3");
  EXPECT_EQ(t::banner(-4),
            "================  TESSERA: solving a  Hermitian indef. system  ================");
  EXPECT_EQ(t::allocation_error(t::Storage::kFactorValues, 40),
            "*** Error in TESSERA memory allocation: FACT_L&U, size to allocate: 40 bytes");
}

TEST(TesseraRefinement, StepLimitZeroAndPrintedSteps) {
  // A zero right-hand side prints the raw sums.
  Solver s;
  s.mtype = 2;
  s.msglvl = 1;
  Csr<double> m = grid<double>(5, true, 4, -1, -1, -1, -1);
  std::vector<double> b(m.n, 0.0), x(m.n, 1.0);
  testing::internal::CaptureStdout();
  EXPECT_EQ(s.call(13, m, b.data(), x.data()), 0);
  std::string out = testing::internal::GetCapturedStdout();
  EXPECT_NE(out.find(" ref_it: 1. sumdx,sumx"), std::string::npos);
  EXPECT_NE(out.find(" ref_it: 1. sumres,sumrhs"), std::string::npos);
  EXPECT_EQ(out.find("rel res"), std::string::npos);
  EXPECT_NE(
      out.find("================  TESSERA: solving a symm. posit. def. system  ================"),
      std::string::npos);
  EXPECT_NE(out.find("=== TESSERA is running in In-Core mode, because iparam(60)=0 ==="),
            std::string::npos);
  // The same number of steps for iparam(8) = 3 and -3; at most 2 for 0.
  int steps[3];
  const int limits[3] = {3, -3, 0};
  for (int t = 0; t < 3; ++t) {
    Solver r;
    r.mtype = 11;
    Csr<double> u = grid<double>(12, false, 4, -1.3, -0.7, -1.1, -0.9);
    std::vector<double> bb = rhs<double>(u.n, 1), xx(u.n);
    r.iparam[0] = 1;
    r.iparam[1] = 2;
    r.iparam[7] = limits[t];
    r.iparam[9] = 13;
    EXPECT_EQ(r.call(13, u, bb.data(), xx.data()), 0);
    steps[t] = r.iparam[6];
    if (limits[t] == 0 && steps[t] == 2) {
      EXPECT_EQ(r.iparam[19], -34);
    }
  }
  EXPECT_EQ(steps[0], steps[1]);
  EXPECT_LE(steps[2], 2);
  EXPECT_GE(steps[2], 1);
}

// ---- residuals of every type ------------------------------------------------

TEST(TesseraSolve, EveryTypeSolvesItsProblems) {
  int err;
  auto lap = grid<double>(30, true, 4, -1, -1, -1, -1);
  EXPECT_LT(solve13(lap, 2, 3, &err), 1e-14);
  EXPECT_EQ(err, 0);
  auto shifted = grid<double>(30, true, 4 - 1.3, -1, -1, -1, -1);  // indefinite
  EXPECT_LT(solve13(shifted, -2, 2, &err), 1e-12);
  EXPECT_EQ(err, 0);
  // The saddle point's zero diagonal: each multiplier is eliminated right
  // after a coupled unknown, so no pivot needs perturbing and the inertia is
  // exact (one negative eigenvalue per multiplier).
  auto sp = saddle(30);
  int perturbed = -1, negative = -1;
  EXPECT_LT(solve13(sp, -2, 1, &err, 0,
                    [&](Solver &s) {
                      s.iparam[0] = 0;
                      s.call<double>(11, sp, nullptr, nullptr);
                      std::vector<double> b = rhs<double>(sp.n, 1), x(sp.n);
                      s.call(22, sp, b.data(), x.data());
                      perturbed = s.iparam[13];
                      negative = s.iparam[22];
                    }),
            1e-12);
  EXPECT_EQ(err, 0);
  EXPECT_EQ(perturbed, 0);
  EXPECT_EQ(negative, 30 * 30 / 2);
  auto cd = grid<double>(30, false, 4, -1.4, -0.6, -1.2, -0.8);  // convection-diffusion
  for (int mt : {1, 11})
    for (int op : {0, 1, 2}) {
      EXPECT_LT(solve13(cd, mt, 2, &err, op), 1e-12) << mt << " op " << op;
      EXPECT_EQ(err, 0);
    }
  const c16 i1(0, 1);
  auto herm =
      grid<c16>(25, true, 4.5, -1.0 + 0.3 * i1, -1.0 - 0.3 * i1, -1.0 + 0.2 * i1, -1.0 - 0.2 * i1);
  // Upper storage of a Hermitian matrix: row i holds (i, j > i); east and
  // north are the stored ones, and their conjugates sit below.
  EXPECT_LT(solve13(herm, 4, 2, &err), 1e-13);
  EXPECT_EQ(err, 0);
  auto hind = grid<c16>(25, true, 4.0 - 1.7, -1.0 + 0.3 * i1, -1.0 - 0.3 * i1, -1.0, -1.0);
  for (int op : {0, 2}) EXPECT_LT(solve13(hind, -4, 2, &err, op), 1e-12);
  auto helm = grid<c16>(25, true, 4.0 - 1.5 + 0.05 * i1, -1, -1, -1, -1);
  for (int op : {0, 1}) EXPECT_LT(solve13(helm, 6, 2, &err, op), 1e-10);
  auto cu = grid<c16>(25, false, c16(4, 1), c16(-1.3, 0.2), c16(-0.7, -0.1), -1.1, -0.9);
  for (int mt : {3, 13})
    for (int op : {0, 1, 2}) EXPECT_LT(solve13(cu, mt, 2, &err, op), 1e-12) << mt << " " << op;
}

TEST(TesseraSolve, OrderingsPermutationsAndSubsteps) {
  auto m = grid<double>(20, true, 4 - 0.9, -1, -1, -1, -1);
  for (int ordering : {0, 2}) {
    Solver s;
    s.mtype = -2;
    s.iparam[0] = 1;
    s.iparam[1] = ordering;
    s.iparam[4] = 2;  // return the ordering
    s.iparam[9] = 8;
    s.iparam[20] = 1;
    std::vector<double> b = rhs<double>(m.n, 1), x(m.n), y(m.n), z(m.n);
    ASSERT_EQ(s.call(13, m, b.data(), x.data()), 0);
    std::vector<int> seen(m.n, 0);
    for (int p : s.perm) ++seen.at(p - 1);
    EXPECT_EQ(std::count(seen.begin(), seen.end(), 1), m.n);
    // The returned ordering given back gives the same factor size.
    Solver u;
    u.mtype = -2;
    u.iparam[0] = 1;
    u.iparam[4] = 1;
    u.iparam[9] = 8;
    u.iparam[20] = 1;
    u.iparam[17] = -1;
    s.iparam[17] = -1;
    s.call(12, m, b.data(), x.data());
    u.call(11, m, b.data(), x.data());
    u.perm = s.perm;
    int phase = 12, err = 0;
    TESSERA(u.pt, &u.maxfct, &u.mnum, &u.mtype, &phase, &m.n, m.a.data(), m.ia.data(), m.ja.data(),
            u.perm.data(), &u.nrhs, u.iparam, &u.msglvl, b.data(), x.data(), &err);
    EXPECT_EQ(err, 0);
    // The same ordering given back: the amalgamation may merge a little
    // differently, the factor stays within a few per cent.
    EXPECT_LT(std::abs(u.iparam[17] - s.iparam[17]), s.iparam[17] / 20);
    // 331, 332, 333 in turn equal a solve without refinement: one step of
    // refinement from that start.
    ASSERT_EQ(s.call(331, m, b.data(), y.data()), 0);
    ASSERT_EQ(s.call(332, m, y.data(), z.data()), 0);
    ASSERT_EQ(s.call(333, m, z.data(), y.data()), 0);
    EXPECT_LT(backward_error(m, -2, 0, y, b, 1), 1e-10);
  }
}

TEST(TesseraSolve, RefactorizationAndSeveralFactorizations) {
  Solver s;
  s.mtype = 11;
  s.maxfct = 2;
  auto m1 = grid<double>(15, false, 4, -1.2, -0.8, -1, -1);
  auto m2 = m1;
  for (auto &v : m2.a) v *= (v > 0 ? 2.0 : 0.5);
  std::vector<double> b = rhs<double>(m1.n, 1), x1(m1.n), x2(m1.n);
  ASSERT_EQ(s.call(12, m1, b.data(), x1.data()), 0);
  s.mnum = 2;
  ASSERT_EQ(s.call(22, m2, b.data(), x2.data()), 0);
  s.mnum = 1;
  ASSERT_EQ(s.call(33, m1, b.data(), x1.data()), 0);
  s.mnum = 2;
  ASSERT_EQ(s.call(33, m2, b.data(), x2.data()), 0);
  EXPECT_LT(backward_error(m1, 11, 0, x1, b, 1), 1e-13);
  EXPECT_LT(backward_error(m2, 11, 0, x2, b, 1), 1e-13);
  // The earlier factor as the preconditioner of CGS for the second matrix.
  s.mnum = 1;
  s.iparam[3] = 121;
  std::fill(x2.begin(), x2.end(), 0.0);
  ASSERT_EQ(s.call(23, m2, b.data(), x2.data()), 0);
  EXPECT_NE(s.iparam[19], 0);
  EXPECT_LT(backward_error(m2, 11, 0, x2, b, 1), 1e-10);
}

TEST(TesseraSolve, TwoHandlesOnTwoThreadsAreIndependent) {
  auto spd = grid<double>(40, true, 4, -1, -1, -1, -1);
  auto uns = grid<double>(40, false, 4, -1.3, -0.7, -1, -1);
  double e1 = 1, e2 = 1;
  int r1 = 1, r2 = 1;
  std::thread t1([&] { e1 = solve13(spd, 2, 2, &r1); });
  std::thread t2([&] { e2 = solve13(uns, 11, 2, &r2); });
  t1.join();
  t2.join();
  EXPECT_EQ(r1, 0);
  EXPECT_EQ(r2, 0);
  EXPECT_LT(e1, 1e-14);
  EXPECT_LT(e2, 1e-13);
}

TEST(TesseraSolve, OneAndTwoThreadsAgree) {
  auto m = grid<double>(60, true, 4 - 0.5, -1, -1, -1, -1);
  std::vector<double> x[2];
  const int saved = ORB_Get_Max_Threads();
  for (int t = 0; t < 2; ++t) {
    ORB_Set_Num_Threads(t + 1);
    Solver s;
    s.mtype = -2;
    std::vector<double> b = rhs<double>(m.n, 1);
    x[t].resize(m.n);
    ASSERT_EQ(s.call(13, m, b.data(), x[t].data()), 0);
    EXPECT_EQ(s.iparam[2], t + 1);
  }
  ORB_Set_Num_Threads(saved);
  double diff = 0;
  for (int i = 0; i < m.n; ++i) diff = std::max(diff, std::fabs(x[0][i] - x[1][i]));
  EXPECT_LT(diff, 1e-10);
}

}  // namespace
