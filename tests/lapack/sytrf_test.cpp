// The symmetric and Hermitian indefinite factorization: the threaded panel
// against the serial panel, bit for bit; the factors against the matrix
// (both triangles, 1x1 and 2x2 pivots, exactly singular matrices); the
// narrower panels a short WORK forces; the path the oracle's answers
// choose; the entries' checks and workspace query.
#include <gtest/gtest.h>
#include <omp.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/sytrf.h"
#include "orb.h"
#include "support/matrix.h"
#include "support/residual.h"

namespace {

namespace lp = orb::lapack;
using lp::SytrfPath;
using orb::c8;
using orb::Uplo;
using orb::test::Matrix;
using orb::test::Random;
using orb::test::same_bits;

template <class T_, bool Herm_>
struct Kind {
  using T = T_;
  static constexpr bool kHerm = Herm_;
};
using Kinds = testing::Types<Kind<float, false>, Kind<c8, false>, Kind<c8, true>>;
template <class K>
class Sytrf : public testing::Test {};
TYPED_TEST_SUITE(Sytrf, Kinds);

// A symmetric or Hermitian test matrix, whole. kTwoByTwo has a zero
// diagonal, so that every step takes a 2x2 pivot or interchanges; kSingular
// has its last row and column (upper) or its first (lower) zero, so that
// the first step meets an exactly zero column.
enum class Shape { kRandom, kTwoByTwo, kSingular };
template <class K>
Matrix<typename K::T> test_matrix(int n, Shape shape, Uplo uplo, Random &rng, int ld = 0) {
  using T = typename K::T;
  Matrix<T> a = orb::test::symmetric_matrix<T>(n, K::kHerm, rng, ld);
  const int zero = uplo == Uplo::kUpper ? n - 1 : 0;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      if (shape == Shape::kTwoByTwo && i == j) a(i, j) = T(0);
      if (shape == Shape::kSingular && (i == zero || j == zero)) a(i, j) = T(0);
    }
  return a;
}

// x := F x for the factored F = U D U^T or L D L^T (U^H, L^H when herm) as
// the factors and IPIV lie: U = P(n) U(n) ... P(k) U(k) ..., k falling by
// blocks, and L = P(1) L(1) ... P(k) L(k) ..., k rising; each U(k) or L(k)
// the identity but for the off-diagonal part of its block's columns.
template <class T>
void apply_factored(const Matrix<T> &f, const std::vector<int> &ipiv, Uplo uplo, bool herm,
                    std::vector<std::complex<double>> &x) {
  using W = std::complex<double>;
  const int n = f.rows;
  auto el = [&](int i, int j) { return W(f(i, j)); };
  auto cj = [herm](W z) { return herm ? std::conj(z) : z; };
  // The blocks in order: first column and size.
  std::vector<std::pair<int, int>> blocks;
  if (uplo == Uplo::kLower) {
    for (int k = 0; k<n; k += ipiv[k]> 0 ? 1 : 2) blocks.push_back({k, ipiv[k] > 0 ? 1 : 2});
  } else {
    for (int k = n - 1; k >= 0; k -= ipiv[k] > 0 ? 1 : 2)
      blocks.insert(blocks.begin(), {ipiv[k] > 0 ? k : k - 1, ipiv[k] > 0 ? 1 : 2});
  }
  const bool upper = uplo == Uplo::kUpper;
  // Rows of a block's columns outside the block: [r0, r1).
  auto rows = [&](int k0, int s) {
    return upper ? std::pair<int, int>{0, k0} : std::pair<int, int>{k0 + s, n};
  };
  auto swap_of = [&](int k0, int s) {
    const int p = std::abs(ipiv[k0]) - 1;
    return std::pair<int, int>{upper ? k0 : k0 + s - 1, p};
  };
  auto transposed = [&](int k0, int s) {  // x := P(k) x, then x := X(k)^H x
    const auto [r, p] = swap_of(k0, s);
    std::swap(x[r], x[p]);
    const auto [r0, r1] = rows(k0, s);
    for (int c = k0; c < k0 + s; ++c)
      for (int i = r0; i < r1; ++i) x[c] += cj(el(i, c)) * x[i];
  };
  auto forward = [&](int k0, int s) {  // x := X(k) x, then x := P(k) x
    const auto [r0, r1] = rows(k0, s);
    for (int c = k0; c < k0 + s; ++c)
      for (int i = r0; i < r1; ++i) x[i] += el(i, c) * x[c];
    const auto [r, p] = swap_of(k0, s);
    std::swap(x[r], x[p]);
  };
  if (upper)
    for (auto it = blocks.rbegin(); it != blocks.rend(); ++it) transposed(it->first, it->second);
  else
    for (const auto &b : blocks) transposed(b.first, b.second);
  for (const auto &[k0, s] : blocks) {
    if (s == 1) {
      x[k0] *= el(k0, k0);
      continue;
    }
    const W off = upper ? el(k0, k0 + 1) : el(k0 + 1, k0);
    const W d12 = upper ? off : cj(off), d21 = upper ? cj(off) : off;
    const W x0 = x[k0], x1 = x[k0 + 1];
    x[k0] = el(k0, k0) * x0 + d12 * x1;
    x[k0 + 1] = d21 * x0 + el(k0 + 1, k0 + 1) * x1;
  }
  if (upper)
    for (const auto &b : blocks) forward(b.first, b.second);
  else
    for (auto it = blocks.rbegin(); it != blocks.rend(); ++it) forward(it->first, it->second);
}

// ||A - F||_1 / (n ||A||_1 eps), F rebuilt from the factors column by
// column; infinite when IPIV breaks its conventions.
template <class T>
double factor_residual(const Matrix<T> &a, const Matrix<T> &f, const std::vector<int> &ipiv,
                       Uplo uplo, bool herm) {
  const int n = a.rows;
  if (n == 0) return 0;
  for (int k = 0; k < n; ++k) {  // a 2x2 block's pair, read upwards: k, k + 1
    const int p = std::abs(ipiv[k]);
    if (p < 1 || p > n) return INFINITY;
    if (ipiv[k] > 0) continue;
    if (k + 1 >= n || ipiv[k + 1] != ipiv[k]) return INFINITY;
    ++k;
  }
  double worst = 0, a_norm = 0;
  for (int j = 0; j < n; ++j) {
    std::vector<std::complex<double>> x(n, 0.0);
    x[j] = 1;
    apply_factored(f, ipiv, uplo, herm, x);
    double col = 0, acol = 0;
    for (int i = 0; i < n; ++i) {
      col += std::abs(std::complex<double>(a(i, j)) - x[i]);
      acol += std::abs(std::complex<double>(a(i, j)));
    }
    worst = std::max(worst, col);
    a_norm = std::max(a_norm, acol);
  }
  return worst / (n * std::max(a_norm, 1e-30) * orb::test::epsilon<T>());
}

struct Factored {
  std::vector<int> ipiv;
  int info = 0, kb = 0;
};

// The threaded panel gives the serial panel's factors, pivots, width and
// INFO bit for bit, for both triangles, orders and widths around the
// 64-row runs of the split, 1x1 and 2x2 pivots and a zero column, every
// product split.
TYPED_TEST(Sytrf, ThreadedPanelGivesTheSerialBits) {
  using T = typename TypeParam::T;
  constexpr bool kHerm = TypeParam::kHerm;
  Random rng(7);
  const struct { int n, nb; } cases[] = {{129, 5}, {191, 64}, {257, 33}, {300, 64}, {320, 2}};
  for (Uplo uplo : {Uplo::kUpper, Uplo::kLower})
    for (Shape shape : {Shape::kRandom, Shape::kTwoByTwo, Shape::kSingular})
      for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << "uplo " << int(uplo) << " shape " << int(shape) << " n "
                                        << c.n << " nb " << c.nb);
        const Matrix<T> a = test_matrix<TypeParam>(c.n, shape, uplo, rng, c.n + 3);
        auto panel = [&](int threads, Matrix<T> &f, Matrix<T> &w) {
          Factored r{std::vector<int>(c.n)};
          r.info = lp::lasyf<T, kHerm>(uplo, c.n, c.nb, f.data(), f.ld, r.ipiv.data(), w.data(),
                                       w.ld, threads, &r.kb);
          return r;
        };
        Matrix<T> fs = a, ws(c.n, c.nb);
        const Factored serial = panel(1, fs, ws);
        const std::int64_t team_work = lp::g_sytrf_team_work;
        lp::g_sytrf_team_work = 0;  // every product on the team
        EXPECT_TRUE(serial.kb == c.nb || serial.kb == c.nb - 1);
        if (shape == Shape::kSingular) {
          EXPECT_EQ(serial.info, uplo == Uplo::kUpper ? c.n : 1);
        }
        for (int threads : {2, 3}) {
          Matrix<T> ft = a, wt(c.n, c.nb);
          const Factored team = panel(threads, ft, wt);
          EXPECT_TRUE(same_bits(ft, fs)) << threads;
          EXPECT_EQ(team.ipiv, serial.ipiv);
          EXPECT_EQ(team.kb, serial.kb);
          EXPECT_EQ(team.info, serial.info);
        }
        lp::g_sytrf_team_work = team_work;
      }
}

// Whole factorizations through the driver: the factors rebuild the matrix
// on both triangles, for orders around the block size, with 2x2 pivots and
// with a zero column (INFO its index, the factorization completed);
// Hermitian factors keep a real diagonal; nothing outside the matrix moves.
TYPED_TEST(Sytrf, FactorsRebuildTheMatrix) {
  using T = typename TypeParam::T;
  constexpr bool kHerm = TypeParam::kHerm;
  const int nb = lp::oracle(lp::kBlockSize, lp::name<T>(kHerm ? "HETRF" : "SYTRF"), 200);
  ASSERT_GT(nb, 1);
  Random rng(11);
  for (Uplo uplo : {Uplo::kUpper, Uplo::kLower})
    for (Shape shape : {Shape::kRandom, Shape::kTwoByTwo, Shape::kSingular})
      for (int n : {1, 2, 3, nb - 1, nb, nb + 1, 2 * nb + 3}) {
        SCOPED_TRACE(testing::Message()
                     << "uplo " << int(uplo) << " shape " << int(shape) << " n " << n);
        const Matrix<T> a = test_matrix<TypeParam>(n, shape, uplo, rng, n + 2);
        Matrix<T> f = a;
        std::vector<int> ipiv(n);
        std::vector<T> work(lp::sytrf_worksize<T, kHerm>(n));
        const int info = lp::sytrf<T, kHerm>(uplo, n, f.data(), f.ld, ipiv.data(), work.data(),
                                             static_cast<int>(work.size()));
        EXPECT_EQ(std::real(work[0]), static_cast<float>(work.size()));
        if (shape == Shape::kSingular) {
          EXPECT_EQ(info, uplo == Uplo::kUpper ? n : 1);
        } else if (shape == Shape::kRandom) {
          EXPECT_EQ(info, 0);
        }
        EXPECT_EQ(f.padding_changed(), 0);
        if constexpr (kHerm) {
          for (int i = 0; i < n; ++i) EXPECT_EQ(std::imag(f(i, i)), 0.0f) << i;
        }
        EXPECT_LT(factor_residual(a, f, ipiv, uplo, kHerm), 30.0);
      }
}

// A WORK shorter than n nb narrows the panels to lwork / n columns, below
// the oracle's smallest block the columns go one by one, and the factors
// are right either way; nb = 2 panels meet 2x2 pivots at their edges.
TYPED_TEST(Sytrf, ShortWorkNarrowsThePanels) {
  using T = typename TypeParam::T;
  constexpr bool kHerm = TypeParam::kHerm;
  const lp::Name6 nm = lp::name<T>(kHerm ? "HETRF" : "SYTRF");
  const int n = 150, nb = lp::oracle(lp::kBlockSize, nm, n);
  const int nbmin = std::max(2, lp::oracle(lp::kMinBlockSize, nm, n));
  ASSERT_LT(nb, n);
  Random rng(13);
  const struct {
    int lwork;
    SytrfPath path;
  } cases[] = {{n * nb - 1, SytrfPath::kBlocked},
               {n * nbmin, SytrfPath::kBlocked},
               {n * nbmin - 1, SytrfPath::kUnblocked},
               {1, SytrfPath::kUnblocked}};
  for (Uplo uplo : {Uplo::kUpper, Uplo::kLower})
    for (Shape shape : {Shape::kRandom, Shape::kTwoByTwo})
      for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << "uplo " << int(uplo) << " lwork " << c.lwork);
        const Matrix<T> a = test_matrix<TypeParam>(n, shape, uplo, rng);
        Matrix<T> f = a;
        std::vector<int> ipiv(n);
        std::vector<T> work(c.lwork + 1, T(7));
        lp::sytrf<T, kHerm>(uplo, n, f.data(), f.ld, ipiv.data(), work.data(), c.lwork);
        EXPECT_EQ(lp::sytrf_last_path(), c.path);
        EXPECT_EQ(work[c.lwork], T(7));  // nothing past LWORK
        EXPECT_EQ(std::real(work[0]), static_cast<float>(n * nb));
        EXPECT_LT(factor_residual(a, f, ipiv, uplo, kHerm), 30.0);
      }
}

// The path: column by column up to the block size; panels on the calling
// thread below the crossover, with one thread and inside a parallel
// region; threaded panels from the crossover on, with the serial bits.
TYPED_TEST(Sytrf, PathFollowsTheOracle) {
  using T = typename TypeParam::T;
  constexpr bool kHerm = TypeParam::kHerm;
  const lp::Name6 nm = lp::name<T>(kHerm ? "HETRF" : "SYTRF");
  const int nb = lp::oracle(lp::kBlockSize, nm, 100);
  const int cross = lp::oracle(lp::kCrossover, nm, 100, -1, 2);
  ASSERT_GT(cross, nb);
  ASSERT_LE(cross, 2000);
  Random rng(17);
  auto run = [&](const Matrix<T> &a, Uplo uplo) {
    Matrix<T> f = a;
    std::vector<int> ipiv(a.rows);
    std::vector<T> work(lp::sytrf_worksize<T, kHerm>(a.rows));
    lp::sytrf<T, kHerm>(uplo, a.rows, f.data(), f.ld, ipiv.data(), work.data(),
                        static_cast<int>(work.size()));
    return f;
  };
  ORB_Set_Num_Threads(2);
  run(test_matrix<TypeParam>(nb, Shape::kRandom, Uplo::kLower, rng), Uplo::kLower);
  EXPECT_EQ(lp::sytrf_last_path(), SytrfPath::kUnblocked);
  run(test_matrix<TypeParam>(cross - 1, Shape::kRandom, Uplo::kLower, rng), Uplo::kLower);
  EXPECT_EQ(lp::sytrf_last_path(), SytrfPath::kBlocked);
  for (Uplo uplo : {Uplo::kUpper, Uplo::kLower}) {
    const Matrix<T> a = test_matrix<TypeParam>(cross + 7, Shape::kRandom, uplo, rng);
    const Matrix<T> threaded = run(a, uplo);
    EXPECT_EQ(lp::sytrf_last_path(), SytrfPath::kThreaded);
    int inside_ok = 0;
#pragma omp parallel num_threads(2) reduction(+ : inside_ok)
    {
      const Matrix<T> f = run(a, uplo);
      inside_ok += lp::sytrf_last_path() == SytrfPath::kBlocked && same_bits(f, threaded);
    }
    EXPECT_EQ(inside_ok, 2);
    ORB_Set_Num_Threads(1);
    EXPECT_TRUE(same_bits(run(a, uplo), threaded));
    EXPECT_EQ(lp::sytrf_last_path(), SytrfPath::kBlocked);
    ORB_Set_Num_Threads(2);
  }
  ORB_Set_Num_Threads(1);
}

// ---- the entries -----------------------------------------------------------------------

// One call of the kind's entry on a 3 x 3 matrix, with the arguments a test
// may spoil; INFO and what it printed.
struct Call {
  char uplo = 'U';
  int n = 3, lda = 3, lwork = 9;
};
template <class K>
int call_entry(const Call &c, typename K::T *a, typename K::T *work, int *ipiv, std::string *out) {
  int info = 12345;
  testing::internal::CaptureStdout();
  if constexpr (std::is_same_v<typename K::T, float>) {
    ssytrf(&c.uplo, &c.n, a, &c.lda, ipiv, work, &c.lwork, &info, 1);
  } else {
    auto p = reinterpret_cast<orb_complex8 *>(a);
    auto w = reinterpret_cast<orb_complex8 *>(work);
    if (K::kHerm)
      chetrf(&c.uplo, &c.n, p, &c.lda, ipiv, w, &c.lwork, &info, 1);
    else
      csytrf(&c.uplo, &c.n, p, &c.lda, ipiv, w, &c.lwork, &info, 1);
  }
  *out = testing::internal::GetCapturedStdout();
  return info;
}

// Each argument is reported, as INFO = -i and the library's message, before
// those tested after it (all spoiled too), with nothing written; LWORK = -1
// answers n nb in WORK(1) and leaves A alone; the spellings of UPLO pass.
TYPED_TEST(Sytrf, EntriesCheckInThePublishedOrder) {
  using T = typename TypeParam::T;
  const std::string name =
      std::string(1, lp::precision_letter<T>()) + (TypeParam::kHerm ? "HETRF" : "SYTRF");
  T a[9], work[9];
  int ipiv[3];
  auto reset = [&] {
    for (int i = 0; i < 9; ++i) a[i] = T(i == 0 || i == 4 || i == 8 ? 4.0f : 1.0f), work[i] = T(0);
    for (int &p : ipiv) p = 0;
  };
  const struct {
    int code;
    void (*spoil)(Call &);
  } spoils[] = {{1, [](Call &c) { c.uplo = 'X'; }},
                {2, [](Call &c) { c.n = -1; }},
                {4, [](Call &c) { c.lda = 2; }},
                {7, [](Call &c) { c.lwork = 0; }}};
  Call c;
  std::string out;
  for (auto it = std::rbegin(spoils); it != std::rend(spoils); ++it) {
    it->spoil(c);
    reset();
    EXPECT_EQ(call_entry<TypeParam>(c, a, work, ipiv, &out), -it->code);
    EXPECT_EQ(out, "ORB ERROR: Parameter " + std::to_string(it->code) +
                       " was incorrect on entry to " + name + "\n");
    EXPECT_EQ(a[1], T(1));
    EXPECT_EQ(work[0], T(0));
    EXPECT_EQ(ipiv[0], 0);
  }
  Call query;
  query.lwork = -1;
  reset();
  EXPECT_EQ(call_entry<TypeParam>(query, a, work, ipiv, &out), 0);
  const int nb = lp::oracle(lp::kBlockSize, lp::name<T>(TypeParam::kHerm ? "HETRF" : "SYTRF"), 3);
  EXPECT_EQ(work[0], T(static_cast<float>(3 * nb)));
  EXPECT_EQ(a[0], T(4.0f));
  EXPECT_EQ(ipiv[0], 0);
  for (char u : {'u', 'L', 'l'}) {
    Call good;
    good.uplo = u;
    reset();
    EXPECT_EQ(call_entry<TypeParam>(good, a, work, ipiv, &out), 0) << u;
    EXPECT_EQ(out, "");
    EXPECT_NE(ipiv[0], 0);
  }
}

}  // namespace
