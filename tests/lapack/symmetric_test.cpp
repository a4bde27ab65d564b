// The routines that work from Bunch-Kaufman factors, on factors built here
// in the published storage (random unit triangular U or L, a block diagonal
// D with a random mix of 1x1 and 2x2 blocks, random interchanges) and the
// matrix they factor, formed in double precision: the solve's split of the
// right-hand sides against the serial solve, bit for bit, and its residual;
// the inverse against A; the condition estimate against the exact
// condition number; the refinement's error bounds; the path the oracle
// picks; the entries' argument checks. Real symmetric, complex symmetric
// and Hermitian, both triangles.
#include <gtest/gtest.h>
#include <omp.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/symmetric.h"
#include "orb.h"
#include "support/matrix.h"
#include "support/residual.h"

namespace {

namespace lp = orb::lapack;
using orb::c8;
using orb::Uplo;
using orb::test::Matrix;
using orb::test::Random;
using orb::test::same_bits;
using orb::test::Triangle;
using orb::test::wide_t;

template <class T, bool H>
struct Flavor {
  using type = T;
  static constexpr bool herm = H;
};

template <class T>
T conj_if(T x, bool c) {
  return c ? orb::test::conj_of(x) : x;
}

// Factors in the published storage, the other strict triangle NaN, and
// the matrix they factor: `wide` exactly, `a` rounded (full, and its
// factors' triangle alone with NaN in the other).
template <class T>
struct Bk {
  int n;
  Uplo uplo;
  bool herm;
  Matrix<T> af;
  std::vector<int> ipiv;
  Matrix<wide_t<T>> wide;
  Matrix<T> a, stored;
  Triangle tri() const { return uplo == Uplo::kUpper ? Triangle::kUpper : Triangle::kLower; }
};

template <class T>
Bk<T> factors(int n, Uplo uplo, bool herm, Random &rng) {
  using W = wide_t<T>;
  const bool upper = uplo == Uplo::kUpper;
  Bk<T> f{n, uplo, herm, Matrix<T>(n, n, n + 3, 1), std::vector<int>(n), {}, {}, {}};
  auto pick = [&](int lo, int hi) {  // in [lo, hi]
    return lo + std::min(hi - lo, static_cast<int>((rng.uniform() + 1) / 2 * (hi - lo + 1)));
  };
  auto diag_value = [&]() {
    const T v = rng.value<T>();
    return herm ? T(std::real(v)) : v;
  };
  const double scale = std::min(1.0, 3.0 / std::max(n, 1));
  // Blocks as [p, p + size), in the order the factorization made them.
  std::vector<std::pair<int, int>> blocks;
  for (int p = 0; p < n;) {
    const int size = p + 1 < n && rng.uniform() < -0.2 ? 2 : 1;
    blocks.push_back({p, size});
    const int r0 = upper ? 0 : p + size, r1 = upper ? p : n;
    for (int j = p; j < p + size; ++j)
      for (int i = r0; i < r1; ++i)
        f.af(i, j) = rng.value<T>() * static_cast<orb::real_t<T>>(scale);
    if (size == 1) {
      const double s = rng.uniform() < 0 ? -1 : 1;
      f.af(p, p) = diag_value() * orb::real_t<T>(0.5) + T(static_cast<orb::real_t<T>>(s));
      f.ipiv[p] = 1 + (upper ? pick(0, p) : pick(p, n - 1));
    } else {
      f.af(p, p) = diag_value() * orb::real_t<T>(0.3);
      f.af(p + 1, p + 1) = diag_value() * orb::real_t<T>(0.3);
      T &e = upper ? f.af(p, p + 1) : f.af(p + 1, p);
      e = rng.value<T>() * orb::real_t<T>(0.3) + T(1);
      f.ipiv[p] = f.ipiv[p + 1] = -(1 + (upper ? pick(0, p) : pick(p + 1, n - 1)));
    }
    p += size;
  }
  if (upper) std::reverse(blocks.begin(), blocks.end());
  // M = P(k) U(k) ... in the published order; A = M D M^T (M^H).
  Matrix<W> m(n, n), md(n, n);
  for (int i = 0; i < n; ++i) m(i, i) = W(1);
  for (auto [p, size] : blocks) {
    const int r = upper || size == 1 ? p : p + 1, kp = std::abs(f.ipiv[p]) - 1;
    for (int i = 0; i < n; ++i) std::swap(m(i, r), m(i, kp));
    const int r0 = upper ? 0 : p + size, r1 = upper ? p : n;
    for (int j = p; j < p + size; ++j)
      for (int l = r0; l < r1; ++l)
        for (int i = 0; i < n; ++i) m(i, j) += m(i, l) * static_cast<W>(f.af(l, j));
  }
  for (auto [p, size] : blocks)
    for (int j = p; j < p + size; ++j)
      for (int l = p; l < p + size; ++l) {
        // D(l, j) from the stored triangle.
        const bool here = upper ? l <= j : l >= j;
        const W d = here ? static_cast<W>(f.af(l, j)) : conj_if(static_cast<W>(f.af(j, l)), herm);
        for (int i = 0; i < n; ++i) md(i, j) += m(i, l) * d;
      }
  f.wide = Matrix<W>(n, n);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i <= j; ++i) {
      W s = 0;
      for (int l = 0; l < n; ++l) s += md(i, l) * conj_if(m(j, l), herm);
      if (i == j && herm) s = W(std::real(s));
      f.wide(i, j) = s;
      f.wide(j, i) = conj_if(s, herm);
    }
  f.a = orb::test::converted<T>(f.wide);
  f.stored = f.a.placed(n + 2, 1);
  orb::test::keep_triangle(f.stored, f.tri());
  orb::test::keep_triangle(f.af, f.tri());
  return f;
}

// inv(A) by Gauss-Jordan with partial pivoting, in double precision.
template <class W>
Matrix<W> inverse(Matrix<W> a) {
  const int n = a.rows;
  Matrix<W> x(n, n);
  for (int i = 0; i < n; ++i) x(i, i) = W(1);
  for (int k = 0; k < n; ++k) {
    int p = k;
    for (int i = k + 1; i < n; ++i)
      if (std::abs(a(i, k)) > std::abs(a(p, k))) p = i;
    for (int j = 0; j < n; ++j) std::swap(a(k, j), a(p, j)), std::swap(x(k, j), x(p, j));
    const W r = W(1) / a(k, k);
    for (int j = 0; j < n; ++j) a(k, j) *= r, x(k, j) *= r;
    for (int i = 0; i < n; ++i)
      if (i != k) {
        const W l = a(i, k);
        for (int j = 0; j < n; ++j) a(i, j) -= l * a(k, j), x(i, j) -= l * x(k, j);
      }
  }
  return x;
}

template <class F>
class Symmetric : public ::testing::Test {};
using Flavors = ::testing::Types<Flavor<float, false>, Flavor<c8, false>, Flavor<c8, true>>;
TYPED_TEST_SUITE(Symmetric, Flavors);

constexpr int kOrders[] = {1, 2, 3, 7, 16, 33, 70};

// The solve for any run of columns gives each column the bits it gets
// alone, in the level-3 form each run of whole column blocks the bits of
// the whole; both solve; and the solve behind the entries gives the bits
// of one thread on every team size.
TYPED_TEST(Symmetric, SolveSplitGivesTheSerialBits) {
  using T = typename TypeParam::type;
  Random rng(7);
  for (Uplo uplo : {Uplo::kUpper, Uplo::kLower})
    for (int n : kOrders) {
      SCOPED_TRACE(testing::Message() << orb::letter(uplo) << " n " << n);
      const Bk<T> f = factors<T>(n, uplo, TypeParam::herm, rng);
      const int nrhs = 19;
      const Matrix<T> b = orb::test::random_matrix<T>(n, nrhs, rng, n + 2);
      auto columns = [&](Matrix<T> &x, int c0, int c1) {
        lp::sytrs_columns(uplo, f.herm, n, f.af.data(), f.af.ld, f.ipiv.data(), x.data(), x.ld, c0,
                          c1);
      };
      auto blocks = [&](Matrix<T> &x, int nb, int c0, int c1) {
        ASSERT_TRUE(lp::sytrs_blocked_columns(uplo, f.herm, n, f.af.data(), f.af.ld, f.ipiv.data(),
                                              x.data(), x.ld, nb, c0, c1));
      };
      Matrix<T> one = b, whole = b, runs = b, l3 = b, l3_runs = b;
      for (int c = 0; c < nrhs; ++c) columns(one, c, c + 1);
      columns(whole, 0, nrhs);
      const int cuts[] = {0, 3, 5, 14, nrhs};
      for (int i = 0; i < 4; ++i) columns(runs, cuts[i], cuts[i + 1]);
      blocks(l3, 5, 0, nrhs);
      for (int c0 : {0, 5, 15}) blocks(l3_runs, 5, c0, std::min(nrhs, c0 == 5 ? 15 : c0 + 5));
      EXPECT_TRUE(same_bits(whole, one));
      EXPECT_TRUE(same_bits(runs, one));
      EXPECT_TRUE(same_bits(l3_runs, l3));
      EXPECT_EQ(whole.padding_changed(), 0);
      EXPECT_EQ(l3.padding_changed(), 0);
      EXPECT_LT(orb::test::solve_residual('N', f.a, whole, b), 30.0);
      EXPECT_LT(orb::test::solve_residual('N', f.a, l3, b), 30.0);
      for (int many : {nrhs, 150}) {
        const Matrix<T> bm = orb::test::random_matrix<T>(n, many, rng, n + 1);
        Matrix<T> serial = bm;
        lp::sytrs(uplo, f.herm, n, many, f.af.data(), f.af.ld, f.ipiv.data(), serial.data(),
                  serial.ld);
        for (int threads : {2, 3}) {
          ORB_Set_Num_Threads(threads);
          Matrix<T> split = bm;
          lp::sytrs(uplo, f.herm, n, many, f.af.data(), f.af.ld, f.ipiv.data(), split.data(),
                    split.ld);
          EXPECT_TRUE(same_bits(split, serial)) << threads << " threads, nrhs " << many;
        }
        ORB_Set_Num_Threads(1);
      }
    }
}

// The published storage read as documented: a wrong reading of an
// interchange, a block or a conjugation shows in every inverse.
TYPED_TEST(Symmetric, InverseFromTheFactors) {
  using T = typename TypeParam::type;
  using W = wide_t<T>;
  Random rng(9);
  for (Uplo uplo : {Uplo::kUpper, Uplo::kLower})
    for (int n : kOrders) {
      SCOPED_TRACE(testing::Message() << orb::letter(uplo) << " n " << n);
      const Bk<T> f = factors<T>(n, uplo, TypeParam::herm, rng);
      Matrix<T> inv = f.af;
      std::vector<T> work(n);
      ASSERT_EQ(lp::sytri(uplo, f.herm, n, inv.data(), inv.ld, f.ipiv.data(), work.data()), 0);
      EXPECT_EQ(inv.padding_changed(), 0);
      const Matrix<T> other = orb::test::full_from_triangle(inv, f.tri(), f.herm);
      const Matrix<W> x = orb::test::converted<W>(other);
      Matrix<W> r = orb::test::multiply('N', f.wide, 'N', x);
      for (int i = 0; i < n; ++i) r(i, i) -= W(1);
      const double ratio =
          orb::test::norm_one(r) /
          (n * orb::test::norm_one(f.wide) * orb::test::norm_one(x) * orb::test::epsilon<T>());
      EXPECT_LT(ratio, 30.0);
      // The other triangle still holds its NaN.
      if (n > 1) {
        EXPECT_TRUE(std::isnan(std::real(uplo == Uplo::kUpper ? inv(1, 0) : inv(0, 1))));
      }
    }
}

// A 1x1 block of D exactly zero: the inverse reports the last such block
// in U's order, the first in L's, and writes nothing; the estimate is 0.
TYPED_TEST(Symmetric, ExactlySingularBlock) {
  using T = typename TypeParam::type;
  Random rng(4);
  for (Uplo uplo : {Uplo::kUpper, Uplo::kLower}) {
    Bk<T> f = factors<T>(12, uplo, TypeParam::herm, rng);
    std::vector<int> ones;
    for (int k = 0; k < 12; ++k)
      if (f.ipiv[k] > 0) ones.push_back(k);
    ASSERT_GE(ones.size(), 2u);
    for (int k : {ones.front(), ones.back()}) f.af(k, k) = T(0);
    Matrix<T> inv = f.af;
    std::vector<T> work(24);
    EXPECT_EQ(lp::sytri(uplo, f.herm, 12, inv.data(), inv.ld, f.ipiv.data(), work.data()),
              (uplo == Uplo::kUpper ? ones.back() : ones.front()) + 1);
    EXPECT_TRUE(same_bits(inv, f.af));
    float rcond = -1;
    std::vector<int> iwork(12);
    lp::sycon(uplo, f.herm, 12, f.af.data(), f.af.ld, f.ipiv.data(), 1.0f, &rcond, work.data(),
              iwork.data());
    EXPECT_EQ(rcond, 0.0f);
  }
}

// The estimate lies between the exact reciprocal condition number and ten
// times it; n = 0 gives 1 and ||A|| = 0 gives 0.
TYPED_TEST(Symmetric, ConditionEstimateNearTheExactOne) {
  using T = typename TypeParam::type;
  Random rng(21);
  for (Uplo uplo : {Uplo::kUpper, Uplo::kLower})
    for (int n : kOrders) {
      SCOPED_TRACE(testing::Message() << orb::letter(uplo) << " n " << n);
      const Bk<T> f = factors<T>(n, uplo, TypeParam::herm, rng);
      const double anorm = orb::test::norm_one(f.wide);
      const double exact = 1 / (anorm * orb::test::norm_one(inverse(f.wide)));
      float rcond = -1;
      std::vector<T> work(2 * n);
      std::vector<int> iwork(n);
      lp::sycon(uplo, f.herm, n, f.af.data(), f.af.ld, f.ipiv.data(), static_cast<float>(anorm),
                &rcond, work.data(), iwork.data());
      EXPECT_GE(rcond, 0.999 * exact);
      EXPECT_LE(rcond, 10 * exact);
    }
  float rcond = -1;
  lp::sycon<T>(Uplo::kUpper, TypeParam::herm, 0, nullptr, 1, nullptr, 1.0f, &rcond, nullptr,
               nullptr);
  EXPECT_EQ(rcond, 1.0f);
  const Bk<T> f = factors<T>(3, Uplo::kLower, TypeParam::herm, rng);
  T work[6];
  int iwork[3];
  lp::sycon(Uplo::kLower, f.herm, 3, f.af.data(), f.af.ld, f.ipiv.data(), 0.0f, &rcond, work,
            iwork);
  EXPECT_EQ(rcond, 0.0f);
}

// From a perturbed solution the refinement comes back to a backward error
// of a few eps, and its forward bound covers the true error.
TYPED_TEST(Symmetric, RefinementBoundsTheError) {
  using T = typename TypeParam::type;
  using W = wide_t<T>;
  using R = orb::real_t<T>;
  Random rng(33);
  for (Uplo uplo : {Uplo::kUpper, Uplo::kLower})
    for (int n : kOrders) {
      SCOPED_TRACE(testing::Message() << orb::letter(uplo) << " n " << n);
      const Bk<T> f = factors<T>(n, uplo, TypeParam::herm, rng);
      const int nrhs = 3;
      const Matrix<T> b = orb::test::random_matrix<T>(n, nrhs, rng, n + 1);
      const Matrix<W> truth =
          orb::test::multiply('N', inverse(f.wide), 'N', orb::test::converted<W>(b));
      Matrix<T> x = orb::test::random_matrix<T>(n, nrhs, rng, n + 4);
      for (int j = 0; j < nrhs; ++j)
        for (int i = 0; i < n; ++i)
          x(i, j) = static_cast<T>(truth(i, j)) +
                    x(i, j) * R(1e-3) * static_cast<R>(std::abs(truth(i, j)));
      std::vector<R> ferr(nrhs), berr(nrhs), rwork(n);
      std::vector<T> work(3 * n);
      std::vector<int> iwork(n);
      lp::syrfs(uplo, f.herm, n, nrhs, f.stored.data(), f.stored.ld, f.af.data(), f.af.ld,
                f.ipiv.data(), b.data(), b.ld, x.data(), x.ld, ferr.data(), berr.data(),
                work.data(), orb::is_complex_v<T> ? rwork.data() : nullptr,
                orb::is_complex_v<T> ? nullptr : iwork.data());
      EXPECT_EQ(x.padding_changed(), 0);
      for (int j = 0; j < nrhs; ++j) {
        double err = 0, size = 0;
        for (int i = 0; i < n; ++i) {
          err = std::max(err, std::abs(static_cast<W>(x(i, j)) - truth(i, j)));
          size = std::max(size, std::abs(static_cast<W>(x(i, j))));
        }
        EXPECT_LE(berr[j], 4 * orb::test::epsilon<T>()) << j;
        EXPECT_GE(ferr[j], err / size) << j;
        EXPECT_LT(ferr[j], 1e-3) << j;
      }
    }
}

// A team from the oracle's crossover on, never inside a parallel region
// nor with one thread, giving the bits of one thread; the crossover falls
// with the order; the level-3 form from the oracle's block size on.
TYPED_TEST(Symmetric, SolvePathFollowsTheOracle) {
  using T = typename TypeParam::type;
  const lp::Name6 nm = lp::name<T>(TypeParam::herm ? "HETRS" : "SYTRS");
  const int n = 150;
  const int cross = lp::oracle(lp::kCrossover, nm, n);
  ASSERT_GE(cross, 2);
  ASSERT_LT(cross, 64);
  EXPECT_GE(lp::oracle(lp::kCrossover, nm, 10), lp::oracle(lp::kCrossover, nm, 40));
  EXPECT_GE(lp::oracle(lp::kCrossover, nm, 40), cross);
  Random rng(2);
  const Bk<T> f = factors<T>(n, Uplo::kUpper, TypeParam::herm, rng);
  const Matrix<T> b = orb::test::random_matrix<T>(n, 300, rng);
  Matrix<T> x;
  auto solve = [&](int nrhs) {
    x = b;
    lp::sytrs(Uplo::kUpper, f.herm, n, nrhs, f.af.data(), f.af.ld, f.ipiv.data(), x.data(), x.ld);
    return lp::sytrs_last_team();
  };
  // A team of two from the crossover on, when there are two column blocks,
  // and the bits of one thread.
  for (int nrhs : {1, cross - 1, cross, 7, 40, 64, 65, 300}) {
    SCOPED_TRACE(testing::Message() << "nrhs " << nrhs);
    const int block = lp::oracle(lp::kBlockSize, nm, n, nrhs);
    ORB_Set_Num_Threads(1);
    EXPECT_EQ(solve(nrhs), 1);
    const Matrix<T> serial = x;
    ORB_Set_Num_Threads(2);
    EXPECT_EQ(solve(nrhs), nrhs >= cross && nrhs > block ? 2 : 1);
    EXPECT_EQ(lp::sytrs_last_block(), block);
    EXPECT_TRUE(same_bits(x, serial));
  }
  EXPECT_EQ(lp::oracle(lp::kBlockSize, nm, n, 1), 1);
  EXPECT_GT(lp::oracle(lp::kBlockSize, nm, n, 300), 1);
  EXPECT_EQ(solve(0), 0);
  int serial = 0;
#pragma omp parallel num_threads(2) reduction(+ : serial)
  {
    Matrix<T> y = b;
    lp::sytrs(Uplo::kUpper, f.herm, n, 300, f.af.data(), f.af.ld, f.ipiv.data(), y.data(), y.ld);
    serial += lp::sytrs_last_team() == 1;
  }
  EXPECT_EQ(serial, 2);
  ORB_Set_Num_Threads(1);
}

// ---- the entries' argument checks ------------------------------------------------

struct Call {
  char uplo = 'U';
  int n = 2, nrhs = 1, lda = 2, ldaf = 2, ldb = 2, ldx = 2;
  float anorm = 1;
};
enum class Entry { kTrs, kTri, kCon, kRfs };

// The exported entries of one flavour on the identity's factors (A = I),
// so that every accepted call succeeds.
template <class T, bool herm>
class Entries {
 public:
  using P = std::conditional_t<orb::is_complex_v<T>, orb_complex8, float>;

  Entries() {
    fac_[0] = fac_[3] = mat_[0] = mat_[3] = T(1);
    b_[0] = x_[0] = T(1), b_[1] = x_[1] = T(2);
  }

  int run(Entry e, const Call &c, std::string *out) {
    int info = 12345;
    const char u = c.uplo;
    testing::internal::CaptureStdout();
    auto p = [](T *v) { return reinterpret_cast<P *>(v); };
    if constexpr (!orb::is_complex_v<T>) {
      if (e == Entry::kTrs) ssytrs(&u, &c.n, &c.nrhs, fac_, &c.lda, ipiv_, b_, &c.ldb, &info, 1);
      if (e == Entry::kTri) ssytri(&u, &c.n, fac_, &c.lda, ipiv_, work_, &info, 1);
      if (e == Entry::kCon)
        ssycon(&u, &c.n, fac_, &c.lda, ipiv_, &c.anorm, &rcond_, work_, iwork_, &info, 1);
      if (e == Entry::kRfs)
        ssyrfs(&u, &c.n, &c.nrhs, mat_, &c.lda, fac_, &c.ldaf, ipiv_, b_, &c.ldb, x_, &c.ldx, ferr_,
               berr_, work_, iwork_, &info, 1);
    } else {
      auto trs = herm ? chetrs : csytrs;
      auto tri = herm ? chetri : csytri;
      auto con = herm ? checon : csycon;
      auto rfs = herm ? cherfs : csyrfs;
      if (e == Entry::kTrs) trs(&u, &c.n, &c.nrhs, p(fac_), &c.lda, ipiv_, p(b_), &c.ldb, &info, 1);
      if (e == Entry::kTri) tri(&u, &c.n, p(fac_), &c.lda, ipiv_, p(work_), &info, 1);
      if (e == Entry::kCon)
        con(&u, &c.n, p(fac_), &c.lda, ipiv_, &c.anorm, &rcond_, p(work_), &info, 1);
      if (e == Entry::kRfs)
        rfs(&u, &c.n, &c.nrhs, p(mat_), &c.lda, p(fac_), &c.ldaf, ipiv_, p(b_), &c.ldb, p(x_),
            &c.ldx, ferr_, berr_, p(work_), rwork_, &info, 1);
    }
    *out = testing::internal::GetCapturedStdout();
    return info;
  }

  std::string snapshot() const {
    std::string s;
    auto add = [&](const void *v, std::size_t bytes) {
      s.append(static_cast<const char *>(v), bytes);
    };
    add(fac_, sizeof fac_), add(mat_, sizeof mat_), add(b_, sizeof b_), add(x_, sizeof x_);
    add(&rcond_, sizeof rcond_), add(ferr_, sizeof ferr_), add(berr_, sizeof berr_);
    add(work_, sizeof work_), add(iwork_, sizeof iwork_), add(rwork_, sizeof rwork_);
    return s;
  }

 private:
  T fac_[4] = {}, mat_[4] = {}, b_[2] = {}, x_[2] = {}, work_[6] = {};
  int ipiv_[2] = {1, 2}, iwork_[2] = {};
  float rcond_ = -1, ferr_[1] = {}, berr_[1] = {}, rwork_[2] = {};
};

struct Spoil {
  int code;
  void (*apply)(Call &);
};

// Each argument the published routine tests is reported, as INFO = -i and
// the library's message, before every argument tested after it (all those
// spoiled too), and nothing is written; both triangles in either case pass.
TYPED_TEST(Symmetric, EntriesCheckInThePublishedOrder) {
  using T = typename TypeParam::type;
  const std::string family = !orb::is_complex_v<T> ? "SSY" : TypeParam::herm ? "CHE" : "CSY";
  const Spoil uplo{1, [](Call &c) { c.uplo = 'X'; }}, n{2, [](Call &c) { c.n = -1; }},
      nrhs{3, [](Call &c) { c.nrhs = -1; }};
  const struct {
    Entry entry;
    const char *name;
    std::vector<Spoil> spoils;
  } routines[] = {
      {Entry::kTrs,
       "TRS",
       {uplo, n, nrhs, {5, [](Call &c) { c.lda = 1; }}, {8, [](Call &c) { c.ldb = 1; }}}},
      {Entry::kTri, "TRI", {uplo, n, {4, [](Call &c) { c.lda = 1; }}}},
      {Entry::kCon,
       "CON",
       {uplo, n, {4, [](Call &c) { c.lda = 1; }}, {6, [](Call &c) { c.anorm = -1; }}}},
      {Entry::kRfs,
       "RFS",
       {uplo,
        n,
        nrhs,
        {5, [](Call &c) { c.lda = 1; }},
        {7, [](Call &c) { c.ldaf = 1; }},
        {10, [](Call &c) { c.ldb = 1; }},
        {12, [](Call &c) { c.ldx = 1; }}}}};
  for (const auto &r : routines) {
    const std::string name = family + r.name;
    SCOPED_TRACE(name);
    Entries<T, TypeParam::herm> e;
    Call c;
    std::string out;
    for (auto it = r.spoils.rbegin(); it != r.spoils.rend(); ++it) {
      it->apply(c);
      const std::string before = e.snapshot();
      EXPECT_EQ(e.run(r.entry, c, &out), -it->code);
      EXPECT_EQ(out, "ORB ERROR: Parameter " + std::to_string(it->code) +
                         " was incorrect on entry to " + name + "\n");
      EXPECT_EQ(e.snapshot(), before) << "code " << it->code;
    }
    for (char u : {'U', 'l', 'u', 'L'}) {
      Call good;
      good.uplo = u;
      EXPECT_EQ(e.run(r.entry, good, &out), 0) << u;
      EXPECT_EQ(out, "");
    }
  }
}

}  // namespace
