// Plane rotations: lasr3's wavefront over several sweeps against the plain
// loops (one lasr call per sweep), bit for bit, on either side, for teams
// of 1, 2 and 3, with ragged and opposed sweeps; the team the oracle's
// crossover picks; and the bidiagonal QR's batches of sweeps against its
// sweep-by-sweep run.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <limits>
#include <vector>

#include "lapack/rotations.h"
#include "lapack/svd.h"
#include "orb.h"
#include "support/matrix.h"

namespace {

namespace lp = orb::lapack;
using lp::Direct;
using lp::Sweep;
using orb::Side;
using orb::test::Matrix;
using orb::test::Random;
using orb::test::same_bits;

// Sweeps with their own cosines and sines, on lines of a matrix with
// `lines` of them.
template <class R>
struct Sweeps {
  std::vector<std::vector<R>> cs, sn;
  std::vector<Sweep<R>> list;

  void add(int first, int count, Direct direct, Random &rng) {
    std::vector<R> c(count), s(count);
    for (int j = 0; j < count; ++j) {
      const double t = 3.14159 * rng.uniform();
      c[j] = static_cast<R>(std::cos(t));
      s[j] = static_cast<R>(std::sin(t));
      // Now and then the identity, which both forms skip.
      if (j % 7 == 3) {
        c[j] = 1;
        s[j] = 0;
      }
    }
    cs.push_back(std::move(c));
    sn.push_back(std::move(s));
    list.push_back(Sweep<R>{first, count, direct, nullptr, nullptr});
    for (std::size_t p = 0; p < list.size(); ++p) {
      list[p].c = cs[p].data();
      list[p].s = sn[p].data();
    }
  }
};

// The reference: each sweep by lasr on its lines.
template <class T>
void plain(Side side, const Sweeps<orb::real_t<T>> &sw, Matrix<T> &a) {
  for (const auto &s : sw.list) {
    if (side == Side::kRight)
      lp::lasr(side, lp::Pivot::kVariable, s.direct, a.rows, s.count + 1, s.c, s.s,
               a.data() + static_cast<std::ptrdiff_t>(s.first) * a.ld, a.ld);
    else
      lp::lasr(side, lp::Pivot::kVariable, s.direct, s.count + 1, a.cols, s.c, s.s,
               a.data() + s.first, a.ld);
  }
}

// Batches of sweeps as the QR iterations make them: long sweeps over one
// window in one direction, windows that shrink and move, directions that
// turn, single rotations, and empty sweeps.
template <class R>
Sweeps<R> mixed(int lines, Random &rng) {
  Sweeps<R> sw;
  const int last = lines - 1;  // rotations on lines 0 .. lines - 1
  if (last <= 0) return sw;
  for (int p = 0; p < 6; ++p) sw.add(0, last, Direct::kForward, rng);
  sw.add(last / 3, last - last / 3, Direct::kForward, rng);
  sw.add(0, last / 2 + 1, Direct::kBackward, rng);
  sw.add(last - 1, 1, Direct::kForward, rng);
  sw.add(0, 0, Direct::kForward, rng);
  for (int p = 0; p < 4; ++p) sw.add(last / 4, last - last / 4, Direct::kBackward, rng);
  sw.add(0, last, Direct::kForward, rng);
  return sw;
}

template <class T>
void check_lasr3(Side side, int m, int n, int ld) {
  using R = orb::real_t<T>;
  Random rng(m * 131 + n * 7 + (side == Side::kLeft));
  const Sweeps<R> sw = mixed<R>(side == Side::kRight ? n : m, rng);
  Matrix<T> a0 = orb::test::random_matrix<T>(m, n, rng, ld);
  Matrix<T> want = a0;
  plain(side, sw, want);
  for (int threads : {1, 2, 3}) {
    Matrix<T> got = a0;
    lp::lasr3(side, m, n, static_cast<int>(sw.list.size()), sw.list.data(), got.data(), got.ld,
              threads);
    EXPECT_TRUE(same_bits(want, got)) << (side == Side::kRight ? "right " : "left ") << m << "x"
                                      << n << " ld " << ld << " threads " << threads;
  }
}

template <class T>
void lasr3_shapes() {
  // Lines: 2 (one rotation per sweep) up to enough for the wavefront to
  // spread; the other side around the blocks of 16 and the kernel widths.
  const int lines[] = {2, 3, 9, 40};
  const int others[] = {1, 5, 16, 17, 70, 300, 1031};
  for (int l : lines)
    for (int o : others) {
      check_lasr3<T>(Side::kRight, o, l, o + 3);
      check_lasr3<T>(Side::kLeft, l, o, l + 1);
    }
}

TEST(Lasr3, MatchesSweepBySweepLasrReal) {
  lasr3_shapes<float>();
  lasr3_shapes<double>();
}

TEST(Lasr3, MatchesSweepBySweepLasrComplex) {
  lasr3_shapes<std::complex<float>>();
  lasr3_shapes<std::complex<double>>();
}

// lasr3 with one sweep is lasr with pivot V, and every pivot of lasr turns
// the same lines as the adjacent rotations it stands for: top and bottom
// checked against explicit products of 2 x 2 rotations in double.
TEST(Lasr, PivotsTopAndBottomTurnTheNamedLines) {
  Random rng(5);
  const int m = 6, n = 4;
  for (lp::Pivot pivot : {lp::Pivot::kTop, lp::Pivot::kBottom})
    for (Direct direct : {Direct::kForward, Direct::kBackward}) {
      std::vector<float> c(m - 1), s(m - 1);
      for (int j = 0; j < m - 1; ++j) {
        c[j] = std::cos(0.3f * (j + 1));
        s[j] = std::sin(0.3f * (j + 1));
      }
      Matrix<float> a = orb::test::random_matrix<float>(m, n, rng);
      std::vector<double> w(a.mem.begin(), a.mem.end());
      lp::lasr(Side::kLeft, pivot, direct, m, n, c.data(), s.data(), a.data(), a.ld);
      for (int t = 0; t < m - 1; ++t) {
        const int j = direct == Direct::kForward ? t : m - 2 - t;
        const int lo = pivot == lp::Pivot::kTop ? 0 : j;
        const int hi = pivot == lp::Pivot::kTop ? j + 1 : m - 1;
        for (int col = 0; col < n; ++col) {
          double &x = w[a.offset + lo + col * a.ld], &y = w[a.offset + hi + col * a.ld];
          const double nx = c[j] * x + s[j] * y, ny = c[j] * y - s[j] * x;
          x = nx;
          y = ny;
        }
      }
      for (int col = 0; col < n; ++col)
        for (int i = 0; i < m; ++i) EXPECT_NEAR(a(i, col), w[a.offset + i + col * a.ld], 1e-5);
    }
}

// The oracle's crossover: a few rows stay on the calling thread, a tall
// matrix goes to the team.
TEST(Lasr3, TeamFromTheCrossover) {
  Random rng(9);
  const Sweeps<float> sw = mixed<float>(50, rng);
  const int k = static_cast<int>(sw.list.size());
  ORB_Set_Num_Threads(2);
  Matrix<float> small = orb::test::random_matrix<float>(8, 50, rng);
  lp::lasr3(Side::kRight, small.rows, small.cols, k, sw.list.data(), small.data(), small.ld);
  EXPECT_EQ(lp::lasr3_last_team(), 1);
  Matrix<float> tall = orb::test::random_matrix<float>(4000, 50, rng);
  lp::lasr3(Side::kRight, tall.rows, tall.cols, k, sw.list.data(), tall.data(), tall.ld);
  EXPECT_EQ(lp::lasr3_last_team(), 2);
  ORB_Set_Num_Threads(1);
  lp::lasr3(Side::kRight, tall.rows, tall.cols, k, sw.list.data(), tall.data(), tall.ld);
  EXPECT_EQ(lp::lasr3_last_team(), 1);
}

// ---- the bidiagonal QR's batches ---------------------------------------------------

enum class Diagonal { kRandom, kGradedUp, kGradedDown, kZeros };

template <class R>
void bidiagonal(int n, Diagonal kind, Random &rng, std::vector<R> &d, std::vector<R> &e) {
  d.assign(n, R(0));
  e.assign(n > 1 ? n - 1 : 1, R(0));
  for (int i = 0; i < n; ++i) {
    double scale = 1;
    if (kind == Diagonal::kGradedUp) scale = std::pow(10.0, 8.0 * i / std::max(n - 1, 1) - 8.0);
    if (kind == Diagonal::kGradedDown) scale = std::pow(10.0, -8.0 * i / std::max(n - 1, 1));
    d[i] = static_cast<R>(scale * rng.uniform());
    if (i + 1 < n) e[i] = static_cast<R>(scale * rng.uniform());
    if (kind == Diagonal::kZeros && i % 5 == 2) d[i] = 0;
  }
}

template <class T>
struct Run {
  std::vector<orb::real_t<T>> d, e;
  Matrix<T> vt, u, c;
  int info;
};

template <class T>
Run<T> run_bdsqr(orb::Uplo uplo, int n, Diagonal kind, int batch) {
  using R = orb::real_t<T>;
  Random rng(n * 3 + static_cast<int>(kind));
  Run<T> r;
  bidiagonal(n, kind, rng, r.d, r.e);
  const int ncvt = n + 2, nru = n + 5, ncc = 3;
  r.vt = orb::test::random_matrix<T>(n, ncvt, rng, n + 1);
  r.u = orb::test::random_matrix<T>(nru, n, rng);
  r.c = orb::test::random_matrix<T>(n, ncc, rng, n + 2);
  std::vector<R> work(4 * n + 1);
  r.info =
      lp::bdsqr_batched<T>(uplo, n, ncvt, nru, ncc, r.d.data(), r.e.data(), r.vt.data(), r.vt.ld,
                           r.u.data(), r.u.ld, r.c.data(), r.c.ld, work.data(), batch);
  return r;
}

template <class T>
void batches_match() {
  for (orb::Uplo uplo : {orb::Uplo::kUpper, orb::Uplo::kLower})
    for (int n : {1, 2, 3, 7, 33, 80})
      for (Diagonal kind :
           {Diagonal::kRandom, Diagonal::kGradedUp, Diagonal::kGradedDown, Diagonal::kZeros}) {
        const Run<T> one = run_bdsqr<T>(uplo, n, kind, 1);
        ASSERT_EQ(one.info, 0);
        for (int i = 0; i + 1 < n; ++i) EXPECT_GE(one.d[i], one.d[i + 1]);
        for (int batch : {2, 5, 16, 64}) {
          const Run<T> b = run_bdsqr<T>(uplo, n, kind, batch);
          EXPECT_EQ(b.info, 0);
          EXPECT_EQ(one.d, b.d) << "n " << n << " batch " << batch;
          EXPECT_TRUE(same_bits(one.vt, b.vt)) << "VT, n " << n << " batch " << batch;
          EXPECT_TRUE(same_bits(one.u, b.u)) << "U, n " << n << " batch " << batch;
          EXPECT_TRUE(same_bits(one.c, b.c)) << "C, n " << n << " batch " << batch;
        }
      }
}

TEST(Bdsqr, BatchesOfSweepsGiveTheSweepBySweepBitsReal) {
  batches_match<float>();
  batches_match<double>();
}

TEST(Bdsqr, BatchesOfSweepsGiveTheSweepBySweepBitsComplex) {
  batches_match<std::complex<float>>();
}

// A NaN ends the iteration (its limit), it does not hang it.
TEST(Bdsqr, NanStopsAtTheIterationLimit) {
  for (int pos : {0, 5, 11}) {
    std::vector<float> d(12, 1.0f), e(11, 0.5f), work(48);
    d[pos] = std::numeric_limits<float>::quiet_NaN();
    std::vector<float> u(12 * 12, 0.0f);
    for (int i = 0; i < 12; ++i) u[i * 13] = 1;
    const int info = lp::bdsqr<float>(orb::Uplo::kUpper, 12, 0, 12, 0, d.data(), e.data(), nullptr,
                                      1, u.data(), 12, nullptr, 1, work.data());
    EXPECT_GE(info, 0);
  }
}

}  // namespace
