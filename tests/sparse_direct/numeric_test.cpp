// The supernodal numerical factorization and the substitutions: residuals of
// every factor kind on generated problems, the pivoting and its reports, the
// partial solve steps and the agreement of thread counts.
#include "sparse_direct/numeric.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <complex>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <vector>

#include "symbolic_builder.h"

namespace orb::sparse {
namespace {

using c16 = std::complex<double>;
using testing::Entries;
using testing::Sparse;
using testing::Supernodes;

// ---- problems ------------------------------------------------------------------

template <class T>
T conj_of(T v) {
  if constexpr (std::is_same_v<T, c16>)
    return std::conj(v);
  else
    return v;
}

// 5- or 7-point Laplacian on an nx x ny x nz grid with `diag` on the diagonal
// and off-diagonal coupling `off(i, j)` (i < j gives the upper entry, the
// lower one is `lower_of` of it).
template <class T>
Entries<T> grid(int nx, int ny, int nz, T diag, const std::function<T(int, int, int)> &off,
                bool hermitian_pair, bool symmetric_pair) {
  Entries<T> e;
  auto id = [&](int x, int y, int z) { return x + nx * (y + ny * z); };
  for (int z = 0; z < nz; ++z)
    for (int y = 0; y < ny; ++y)
      for (int x = 0; x < nx; ++x) {
        const int i = id(x, y, z);
        e[{i, i}] += diag;
        const int nb[3][3] = {{x + 1, y, z}, {x, y + 1, z}, {x, y, z + 1}};
        const bool in[3] = {x + 1 < nx, y + 1 < ny, z + 1 < nz};
        for (int d = 0; d < 3; ++d) {
          if (!in[d]) continue;
          const int j = id(nb[d][0], nb[d][1], nb[d][2]);
          const T v = off(i, j, d);
          e[{i, j}] += v;
          T w = off(j, i, d);
          if (hermitian_pair) w = conj_of(v);
          if (symmetric_pair) w = v;
          e[{j, i}] += w;
        }
      }
  return e;
}

template <class T>
Entries<T> laplacian(int nx, int ny, int nz, double shift) {
  const double d = 2.0 * ((nx > 1) + (ny > 1) + (nz > 1)) - shift;
  return grid<T>(
      nx, ny, nz, T(d), [](int, int, int) { return T(-1); }, false, true);
}

// Nested dissection of a grid by coordinate bisection (new -> old).
std::vector<int> grid_dissection(int nx, int ny, int nz) {
  std::vector<int> order;
  std::function<void(int, int, int, int, int, int)> rec = [&](int x0, int x1, int y0, int y1,
                                                              int z0, int z1) {
    const int dx = x1 - x0, dy = y1 - y0, dz = z1 - z0;
    if (dx <= 0 || dy <= 0 || dz <= 0) return;
    if (int64_t(dx) * dy * dz <= 8) {
      for (int z = z0; z < z1; ++z)
        for (int y = y0; y < y1; ++y)
          for (int x = x0; x < x1; ++x) order.push_back(x + nx * (y + ny * z));
      return;
    }
    if (dx >= dy && dx >= dz) {
      const int m = x0 + dx / 2;
      rec(x0, m, y0, y1, z0, z1);
      rec(m + 1, x1, y0, y1, z0, z1);
      rec(m, m + 1, y0, y1, z0, z1);
    } else if (dy >= dz) {
      const int m = y0 + dy / 2;
      rec(x0, x1, y0, m, z0, z1);
      rec(x0, x1, m + 1, y1, z0, z1);
      rec(x0, x1, m, m + 1, z0, z1);
    } else {
      const int m = z0 + dz / 2;
      rec(x0, x1, y0, y1, z0, m);
      rec(x0, x1, y0, y1, m + 1, z1);
      rec(x0, x1, y0, y1, m, m + 1);
    }
  };
  rec(0, nx, 0, ny, 0, nz);
  return order;
}

std::vector<int> natural(int n) {
  std::vector<int> p(n);
  for (int i = 0; i < n; ++i) p[i] = i;
  return p;
}

template <class T>
T random_value(std::mt19937 &g) {
  std::uniform_real_distribution<double> u(-1, 1);
  if constexpr (std::is_same_v<T, c16>)
    return T(u(g), u(g));
  else
    return T(u(g));
}

// ---- one factorization and its residuals ----------------------------------------------

template <class T>
struct Problem {
  Symbolic sym;
  Sparse<T> full;   // B in pivot order, both triangles
  Sparse<T> given;  // what the factorization reads
  NumericFactor<T> f;
  FactorReport report;
};

template <class T>
Problem<T> factor(const Sparse<T> &a, const std::vector<int> &order, FactorOptions opt,
                  Supernodes kind = Supernodes::kFundamental, int cap = 16) {
  Problem<T> p;
  p.sym = testing::build_symbolic(a, order, kind, cap);
  p.full = testing::permute(a, p.sym.perm);
  p.given = testing::permute(a, p.sym.perm, opt.kind != FactorKind::kLu);
  CscMatrix<T> b{p.given.n, p.given.ptr.data(), p.given.row.data(), p.given.val.data()};
  factorize(p.sym, b, opt, &p.f, &p.report);
  return p;
}

template <class T>
double inf_norm(const Sparse<T> &a) {
  std::vector<double> r(a.n, 0);
  for (int j = 0; j < a.n; ++j)
    for (int p = a.ptr[j]; p < a.ptr[j + 1]; ++p) r[a.row[p]] += std::abs(a.val[p]);
  return a.n ? *std::max_element(r.begin(), r.end()) : 0;
}

// The worst over the columns of ||op(B) x - b|| / (||B|| ||x|| + ||b||).
template <class T>
double residual(const Sparse<T> &a, SolveOp op, int nrhs, const T *x, const T *b, int ld) {
  double worst = 0;
  const double an = inf_norm(a);
  for (int r = 0; r < nrhs; ++r) {
    std::vector<T> y(a.n, T(0));
    const T *xr = x + std::ptrdiff_t(r) * ld, *br = b + std::ptrdiff_t(r) * ld;
    for (int j = 0; j < a.n; ++j)
      for (int p = a.ptr[j]; p < a.ptr[j + 1]; ++p) {
        const int i = a.row[p];
        T v = a.val[p];
        if (op == SolveOp::kNone) {
          y[i] += v * xr[j];
        } else {
          if (op == SolveOp::kConjTranspose) v = conj_of(v);
          y[j] += v * xr[i];
        }
      }
    double rn = 0, xn = 0, bn = 0;
    for (int i = 0; i < a.n; ++i) {
      rn = std::max(rn, std::abs(y[i] - br[i]));
      xn = std::max(xn, std::abs(xr[i]));
      bn = std::max(bn, std::abs(br[i]));
    }
    worst = std::max(worst, rn / (an * xn + bn));
  }
  return worst;
}

// Solves with `nrhs` random right-hand sides (leading dimension n + 3) and
// returns the residual.
template <class T>
double solve_residual(const Problem<T> &p, SolveOp op, int nrhs, int threads = 1) {
  const int n = p.sym.n, ld = n + 3;
  std::mt19937 g(7);
  std::vector<T> b(std::size_t(ld) * nrhs), x;
  for (auto &v : b) v = random_value<T>(g);
  x = b;
  solve(p.sym, p.f, op, kAll, nrhs, x.data(), ld, threads);
  return residual(p.full, op, nrhs, x.data(), b.data(), ld);
}

template <class T>
void expect_solves(const Problem<T> &p, const char *what, double tol = 1e-13) {
  ASSERT_EQ(p.report.status, kFactorOk) << what;
  for (SolveOp op : {SolveOp::kNone, SolveOp::kTranspose, SolveOp::kConjTranspose})
    for (int nrhs : {1, 3})
      EXPECT_LT(solve_residual(p, op, nrhs), tol) << what << " op " << int(op);
}

FactorOptions options(FactorKind kind, double floor = 0, bool two = true, int threads = 1) {
  FactorOptions o;
  o.kind = kind;
  o.pivot_floor = floor;
  o.two_by_two = two;
  o.threads = threads;
  return o;
}

// ---- residuals of every kind -------------------------------------------------------

TEST(SparseNumeric, CholeskyLaplaciansEverySupernodeLayout) {
  for (Supernodes kind :
       {Supernodes::kFundamental, Supernodes::kSingle, Supernodes::kAmalgamated}) {
    const auto a2 = testing::compress(15 * 13, laplacian<double>(15, 13, 1, 0));
    auto p2 = factor(a2, natural(a2.n), options(FactorKind::kCholesky), kind);
    expect_solves(p2, "2-D");
    EXPECT_EQ(p2.report.positive, a2.n);
    const auto a3 = testing::compress(9 * 8 * 7, laplacian<double>(9, 8, 7, 0));
    auto p3 = factor(a3, grid_dissection(9, 8, 7), options(FactorKind::kCholesky), kind);
    expect_solves(p3, "3-D");
    const auto z3 = testing::compress(9 * 8 * 7, laplacian<c16>(9, 8, 7, 0));
    auto q3 = factor(z3, grid_dissection(9, 8, 7), options(FactorKind::kCholesky), kind);
    expect_solves(q3, "3-D complex");
  }
}

TEST(SparseNumeric, CholeskyLargeSupernodesAndHermitian) {
  // Amalgamated into supernodes wider than the dense kernels' blocks.
  const auto a = testing::compress(
      30 * 30,
      grid<c16>(
          30, 30, 1, c16(4.5),
          [](int i, int j, int d) { return c16(-1, i < j ? 0.4 + 0.1 * d : -0.4 - 0.1 * d); }, true,
          false));
  auto p = factor(a, natural(a.n), options(FactorKind::kCholesky), Supernodes::kAmalgamated, 400);
  expect_solves(p, "hermitian wide");
}

TEST(SparseNumeric, LdlIndefiniteKinds) {
  // Shifted 2-D Laplacian (indefinite), real symmetric.
  const auto s = testing::compress(20 * 20, laplacian<double>(20, 20, 1, 3.3));
  for (Supernodes kind : {Supernodes::kFundamental, Supernodes::kAmalgamated}) {
    for (bool two : {true, false}) {
      auto p =
          factor(s, grid_dissection(20, 20, 1), options(FactorKind::kLdlSymmetric, 0, two), kind);
      expect_solves(p, "shifted laplacian");
      EXPECT_EQ(p.report.positive + p.report.negative, s.n);
      EXPECT_GT(p.report.negative, 0);
    }
  }
  // Complex Hermitian indefinite.
  const auto h = testing::compress(
      12 * 11 * 3,
      grid<c16>(
          12, 11, 3, c16(2.0),
          [](int i, int j, int) { return i < j ? c16(-1, 0.5) : c16(-1, -0.5); }, true, false));
  auto ph = factor(h, grid_dissection(12, 11, 3), options(FactorKind::kLdlHermitian),
                   Supernodes::kAmalgamated, 40);
  expect_solves(ph, "hermitian indefinite");
  EXPECT_GT(ph.report.negative, 0);
  EXPECT_EQ(ph.report.positive + ph.report.negative, h.n);
  // Complex symmetric, Helmholtz-like: -Laplacian - k^2 + i sigma.
  std::mt19937 g(3);
  std::uniform_real_distribution<double> u(0.01, 0.2);
  auto e = laplacian<c16>(16, 15, 1, 0);
  for (int i = 0; i < 16 * 15; ++i) e[{i, i}] += c16(-2.7, u(g));
  const auto z = testing::compress(16 * 15, e);
  auto pz = factor(z, grid_dissection(16, 15, 1), options(FactorKind::kLdlSymmetric));
  expect_solves(pz, "complex symmetric");
  EXPECT_EQ(pz.report.positive + pz.report.negative, 0);
}

// A symmetric matrix with a zero diagonal and random couplings: no 1x1
// pivot exists at the start, the interchanges and 2x2 pivots carry it.
template <class T>
Sparse<T> zero_diagonal(int n, bool hermitian, unsigned seed) {
  std::mt19937 g(seed);
  Entries<T> e;
  for (int j = 0; j < n; ++j)
    for (int i = j + 1; i < n; ++i) {
      const T v = random_value<T>(g);
      e[{i, j}] = v;
      e[{j, i}] = hermitian ? conj_of(v) : v;
    }
  for (int i = 0; i < n; ++i) e[{i, i}] = T(0);
  return testing::compress(n, e);
}

TEST(SparseNumeric, LdlTwoByTwoPivotsInWideSupernodes) {
  // One dense supernode wider than a pivoting panel.
  const auto a = zero_diagonal<double>(300, false, 1);
  auto p = factor(a, natural(300), options(FactorKind::kLdlSymmetric));
  expect_solves(p, "zero diagonal", 1e-12);
  EXPECT_EQ(p.report.perturbed, 0);
  const auto h = zero_diagonal<c16>(150, true, 2);
  auto ph = factor(h, natural(150), options(FactorKind::kLdlHermitian));
  expect_solves(ph, "zero diagonal hermitian", 1e-12);
  const auto z = zero_diagonal<c16>(150, false, 3);
  auto pz = factor(z, natural(150), options(FactorKind::kLdlSymmetric));
  expect_solves(pz, "zero diagonal complex symmetric", 1e-12);
  // Without 2x2 pivots the first pivot is an exact zero.
  auto q = factor(a, natural(300), options(FactorKind::kLdlSymmetric, 0, false));
  EXPECT_EQ(q.report.status, kZeroPivot);
  EXPECT_EQ(q.report.failed_column, 1);
}

TEST(SparseNumeric, LdlSaddlePoint) {
  // [[A, C^T], [C, 0]]: each multiplier ordered right before the nodes it
  // couples, all within amalgamated supernodes.
  const int m = 12 * 12, k = 30;
  Entries<double> e = laplacian<double>(12, 12, 1, 0);
  std::mt19937 g(5);
  std::uniform_int_distribution<int> node(0, m - 1);
  std::vector<int> order;
  std::vector<char> placed(m, 0);
  for (int r = 0; r < k; ++r) {
    order.push_back(m + r);
    for (int t = 0; t < 3; ++t) {
      const int c = node(g);
      const double v = 1.0 + t;
      e[{m + r, c}] += v;
      e[{c, m + r}] += v;
      if (!placed[c]) order.push_back(c), placed[c] = 1;
    }
    e[{m + r, m + r}] += 0.0;
  }
  const auto a = testing::compress(m + k, e);
  for (int i = 0; i < m; ++i)
    if (!placed[i]) order.push_back(i);
  auto p = factor(a, order, options(FactorKind::kLdlSymmetric), Supernodes::kAmalgamated, 400);
  expect_solves(p, "saddle", 1e-12);
  EXPECT_EQ(p.report.positive, m);
  EXPECT_EQ(p.report.negative, k);
  auto q =
      factor(a, order, options(FactorKind::kLdlSymmetric, 0, false), Supernodes::kAmalgamated, 400);
  EXPECT_EQ(q.report.status, kZeroPivot);
}

TEST(SparseNumeric, LuUnsymmetric) {
  // Convection-diffusion, real and complex, and a dense block needing row
  // interchanges.
  const auto cd = testing::compress(
      18 * 17,
      grid<double>(
          18, 17, 1, 4.0, [](int i, int j, int) { return i < j ? -1.0 + 0.7 : -1.0 - 0.7; }, false,
          false));
  for (Supernodes kind :
       {Supernodes::kFundamental, Supernodes::kSingle, Supernodes::kAmalgamated}) {
    auto p = factor(cd, grid_dissection(18, 17, 1), options(FactorKind::kLu), kind);
    expect_solves(p, "convection-diffusion");
  }
  const auto zc = testing::compress(
      8 * 7 * 6,
      grid<c16>(
          8, 7, 6, c16(6.0, 0.5),
          [](int i, int j, int d) { return i < j ? c16(-1 + 0.3 * d, 0.8) : c16(-1, -0.2); }, false,
          false));
  auto pz =
      factor(zc, grid_dissection(8, 7, 6), options(FactorKind::kLu), Supernodes::kAmalgamated);
  expect_solves(pz, "complex convection-diffusion");
  for (bool cplx : {false, true}) {
    if (cplx) {
      auto pd = factor(zero_diagonal<c16>(170, false, 9), natural(170), options(FactorKind::kLu));
      expect_solves(pd, "dense complex", 1e-12);
    } else {
      auto a = zero_diagonal<double>(170, false, 8);
      // Make it unsymmetric.
      for (auto &v : a.val) v *= 1.0 + 0.5 * std::sin(&v - a.val.data());
      auto pd = factor(a, natural(170), options(FactorKind::kLu));
      expect_solves(pd, "dense real", 1e-12);
    }
  }
}

// ---- reports ------------------------------------------------------------------------

TEST(SparseNumeric, InertiaOfShiftedOneDimensionalLaplacian) {
  // Eigenvalues 2 - 2 cos(k pi / (n + 1)), k = 1 .. n.
  const int n = 100;
  const double pi = std::acos(-1.0);
  for (double shift : {0.5, 1.7, 3.1}) {
    int below = 0;
    for (int k = 1; k <= n; ++k) below += 2 - 2 * std::cos(k * pi / (n + 1)) < shift;
    const auto a = testing::compress(n, laplacian<double>(n, 1, 1, shift));
    auto p = factor(a, natural(n), options(FactorKind::kLdlSymmetric), Supernodes::kAmalgamated, 8);
    EXPECT_EQ(p.report.negative, below);
    EXPECT_EQ(p.report.positive, n - below);
    // The Hermitian matrix with couplings -e^{i t} is unitarily similar.
    const auto h =
        testing::compress(n, grid<c16>(
                                 n, 1, 1, c16(2 - shift),
                                 [](int i, int j, int) {
                                   return i < j ? std::polar(-1.0, 0.3) : std::polar(-1.0, -0.3);
                                 },
                                 true, false));
    auto ph = factor(h, natural(n), options(FactorKind::kLdlHermitian));
    EXPECT_EQ(ph.report.negative, below);
    EXPECT_EQ(ph.report.positive, n - below);
    expect_solves(ph, "inertia hermitian", 1e-12);
  }
}

TEST(SparseNumeric, FailuresAndPerturbations) {
  // Cholesky of a matrix with a negative diagonal entry: the failing column.
  auto e = laplacian<double>(10, 10, 1, 0);
  e[{37, 37}] = -5;
  const auto a = testing::compress(100, e);
  auto p = factor(a, natural(100), options(FactorKind::kCholesky));
  EXPECT_EQ(p.report.status, kNotPositiveDefinite);
  EXPECT_EQ(p.report.failed_column, 38);
  e[{37, 37}] = std::nan("");
  auto pn = factor(testing::compress(100, e), natural(100), options(FactorKind::kCholesky),
                   Supernodes::kSingle);
  EXPECT_EQ(pn.report.status, kNotPositiveDefinite);
  EXPECT_EQ(pn.report.failed_column, 38);

  // A chain whose leading 2x2 block [[1, 1], [1, 1]] is singular: the second
  // pivot is an exact zero.
  Entries<double> s = laplacian<double>(40, 1, 1, 0);
  s[{0, 0}] = 1;
  s[{1, 1}] = 1;
  s[{0, 1}] = s[{1, 0}] = 1;
  const auto sing = testing::compress(40, s);
  // (kLu's row interchanges would avoid the zero inside a wider supernode.)
  for (FactorKind kind : {FactorKind::kLdlSymmetric, FactorKind::kLu}) {
    for (Supernodes layout : {Supernodes::kSingle, Supernodes::kAmalgamated}) {
      if (kind == FactorKind::kLu && layout != Supernodes::kSingle) continue;
      auto z = factor(sing, natural(40), options(kind, 0, false), layout);
      EXPECT_EQ(z.report.status, kZeroPivot);
      EXPECT_EQ(z.report.failed_column, 2);
      auto q = factor(sing, natural(40), options(kind, 1e-8, false), layout);
      EXPECT_EQ(q.report.status, kFactorOk);
      EXPECT_EQ(q.report.perturbed, 1);
      // The floor keeps the sign: D(1) = +1e-8 replaces the zero.
      if (kind == FactorKind::kLdlSymmetric) {
        EXPECT_EQ(q.f.diag[2], 1e-8);
      }
    }
  }
}

// ---- the solve's steps and right-hand sides ------------------------------------------

template <class T>
void check_steps(const Problem<T> &p, SolveOp op) {
  const int n = p.sym.n, nrhs = 5;
  std::mt19937 g(11);
  std::vector<T> b(std::size_t(n) * nrhs);
  for (auto &v : b) v = random_value<T>(g);
  std::vector<T> all = b, parts = b;
  solve(p.sym, p.f, op, kAll, nrhs, all.data(), n, 1);
  for (int step : {kForward, kDiagonal, kBackward})
    solve(p.sym, p.f, op, step, nrhs, parts.data(), n, 1);
  EXPECT_EQ(0, std::memcmp(all.data(), parts.data(), sizeof(T) * all.size()));
  EXPECT_LT(residual(p.full, op, nrhs, all.data(), b.data(), n), 1e-13);
}

TEST(SparseNumeric, StepwiseSolveEqualsWholeSolveAndManyRightHandSides) {
  const auto s = testing::compress(14 * 14, laplacian<double>(14, 14, 1, 2.1));
  auto pl = factor(s, grid_dissection(14, 14, 1), options(FactorKind::kLdlSymmetric),
                   Supernodes::kAmalgamated);
  const auto z = testing::compress(
      10 * 9 * 4,
      grid<c16>(
          10, 9, 4, c16(6.5, 0.1),
          [](int i, int j, int) { return i < j ? c16(-1, 0.6) : c16(-0.5, -0.2); }, false, false));
  auto pu = factor(z, grid_dissection(10, 9, 4), options(FactorKind::kLu));
  auto ph =
      factor(zero_diagonal<c16>(90, true, 4), natural(90), options(FactorKind::kLdlHermitian));
  for (SolveOp op : {SolveOp::kNone, SolveOp::kTranspose, SolveOp::kConjTranspose}) {
    check_steps(pl, op);
    check_steps(pu, op);
    check_steps(ph, op);
  }
  // More right-hand sides than one solve block, on two threads.
  EXPECT_LT(solve_residual(pu, SolveOp::kNone, 150, 2), 1e-13);
  EXPECT_LT(solve_residual(pu, SolveOp::kConjTranspose, 70, 2), 1e-13);
}

// ---- threads ------------------------------------------------------------------------------

template <class T>
void expect_same_factor(const Sparse<T> &a, const std::vector<int> &order, FactorKind kind) {
  auto p1 = factor(a, order, options(kind, 0, true, 1), Supernodes::kAmalgamated);
  auto p2 = factor(a, order, options(kind, 0, true, 2), Supernodes::kAmalgamated);
  ASSERT_EQ(p1.report.status, kFactorOk);
  ASSERT_EQ(p2.report.status, kFactorOk);
  EXPECT_EQ(p1.report.positive, p2.report.positive);
  EXPECT_EQ(p1.report.flops, p2.report.flops);
  ASSERT_EQ(p1.f.lower.size(), p2.f.lower.size());
  EXPECT_EQ(0, std::memcmp(p1.f.lower.data(), p2.f.lower.data(), sizeof(T) * p1.f.lower.size()));
  EXPECT_EQ(p1.f.upper, p2.f.upper);
  EXPECT_EQ(p1.f.pivot, p2.f.pivot);
  EXPECT_LT(solve_residual(p2, SolveOp::kNone, 2, 2), 1e-13);
}

TEST(SparseNumeric, OneAndTwoThreadsGiveTheSameFactor) {
  const int nx = 16, ny = 15, nz = 14;
  const auto a = testing::compress(nx * ny * nz, laplacian<double>(nx, ny, nz, 0));
  const auto order = grid_dissection(nx, ny, nz);
  expect_same_factor(a, order, FactorKind::kCholesky);
  const auto s = testing::compress(nx * ny * nz, laplacian<double>(nx, ny, nz, 1.3));
  expect_same_factor(s, order, FactorKind::kLdlSymmetric);
  const auto z = testing::compress(
      nx * ny * nz,
      grid<c16>(
          nx, ny, nz, c16(7, 0.2),
          [](int i, int j, int) { return i < j ? c16(-1.2, 0.3) : c16(-0.8, 0); }, false, false));
  expect_same_factor(z, order, FactorKind::kLu);

  // A failing pivot is reported the same way.
  auto e = laplacian<double>(nx, ny, nz, 0);
  e[{1234, 1234}] = -1;
  const auto bad = testing::compress(nx * ny * nz, e);
  auto p1 = factor(bad, order, options(FactorKind::kCholesky, 0, true, 1));
  auto p2 = factor(bad, order, options(FactorKind::kCholesky, 0, true, 2));
  EXPECT_EQ(p1.report.status, kNotPositiveDefinite);
  EXPECT_EQ(p2.report.status, kNotPositiveDefinite);
  EXPECT_EQ(p1.report.failed_column, p2.report.failed_column);
  EXPECT_EQ(p1.report.failed_column, p1.sym.iperm[1234] + 1);
}

}  // namespace
}  // namespace orb::sparse
