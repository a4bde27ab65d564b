// The Householder core: a reflector from larfg annihilates its vector (also
// when the norm lies below the safe minimum), and a block reflector applied
// by larfb with larft's factor equals its reflectors applied one by one with
// larf, for every side, operation, direction and storage, without reading
// the parts of V the storage leaves implicit.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <vector>

#include "lapack/householder.h"
#include "support/matrix.h"
#include "support/residual.h"

namespace {

namespace lp = orb::lapack;
using lp::Direct;
using lp::Storev;
using orb::c16;
using orb::c8;
using orb::Op;
using orb::Side;
using orb::test::Matrix;
using orb::test::Random;

template <class T>
class Householder : public ::testing::Test {};
using Types = ::testing::Types<float, double, c8, c16>;
TYPED_TEST_SUITE(Householder, Types);

// H^H (alpha; x) with H = I - tau v v^H, v = (1; x after larfg).
template <class T>
std::vector<T> apply_reflector_h(const std::vector<T> &y, const std::vector<T> &v, T tau) {
  T s(0);
  for (std::size_t i = 0; i < y.size(); ++i) s += orb::conj(v[i]) * y[i];
  std::vector<T> out(y);
  for (std::size_t i = 0; i < y.size(); ++i) out[i] -= orb::conj(tau) * s * v[i];
  return out;
}

TYPED_TEST(Householder, ReflectorAnnihilates) {
  using T = TypeParam;
  using R = orb::real_t<T>;
  Random rng(3);
  const double eps = orb::test::epsilon<T>();
  for (double scale : {1.0, 1e-3, double(std::numeric_limits<R>::min()) * 4, 1e20})
    for (int n : {1, 2, 7, 40}) {
      SCOPED_TRACE(testing::Message() << "n " << n << " scale " << scale);
      std::vector<T> y(n);
      for (T &e : y) e = rng.value<T>() * R(scale);
      T alpha = y[0], tau;
      std::vector<T> v(y);
      lp::larfg(n, alpha, v.data() + 1, 1, tau);
      EXPECT_EQ(std::imag(alpha), R(0));
      if (n == 1 && !orb::is_complex_v<T>) {
        EXPECT_EQ(tau, T(0));
        continue;
      }
      v[0] = T(1);
      const std::vector<T> hy = apply_reflector_h(y, v, tau);
      double ynorm = 0;
      for (const T &e : y) ynorm = std::max(ynorm, double(std::abs(e)));
      EXPECT_LE(std::abs(hy[0] - alpha), 10 * n * eps * ynorm);
      for (int i = 1; i < n; ++i) EXPECT_LE(std::abs(hy[i]), 10 * n * eps * ynorm);
      // A unitary reflector: 1 <= re tau <= 2 and |tau - 1| <= 1.
      if (tau != T(0)) {
        EXPECT_GE(std::real(tau), R(1) - R(eps));
        EXPECT_LE(std::real(tau), R(2) + R(eps));
      }
    }
}

// k reflectors of order nq, explicit (vec(:, i)), and as stored in V
// (columns nq by k, or rows k by nq conjugated), the implicit parts NaN.
template <class T>
struct Block {
  Matrix<T> vec, v;
  std::vector<T> tau;
};

template <class T>
Block<T> make_block(Direct direct, Storev storev, int nq, int k, Random &rng) {
  Block<T> b;
  b.vec = Matrix<T>(nq, k);
  b.tau.assign(k, T(0));
  const bool forward = direct == Direct::kForward;
  for (int i = 0; i < k; ++i) {
    const int unit = forward ? i : nq - k + i;
    const int lo = forward ? unit + 1 : 0, hi = forward ? nq : unit;  // explicit part [lo, hi)
    std::vector<T> x(hi - lo);
    for (T &e : x) e = rng.value<T>();
    // Trailing (forward) or leading (backward) zeros in the first vector.
    if (i == 0 && x.size() > 4) {
      if (forward)
        std::fill(x.end() - 3, x.end(), T(0));
      else
        std::fill(x.begin(), x.begin() + 3, T(0));
    }
    T alpha = rng.value<T>();
    lp::larfg(static_cast<int>(x.size()) + 1, alpha, x.data(), 1, b.tau[i]);
    if (i == 1) b.tau[i] = T(0);  // an identity among them
    b.vec(unit, i) = T(1);
    for (int r = lo; r < hi; ++r) b.vec(r, i) = x[r - lo];
  }
  const T nan = orb::test::make<T>(std::nan(""), std::nan(""));
  const bool cols = storev == Storev::kColumns;
  b.v = cols ? Matrix<T>(nq, k, nq + 2) : Matrix<T>(k, nq, k + 1);
  for (int i = 0; i < k; ++i)
    for (int r = 0; r < nq; ++r) {
      const int unit = forward ? i : nq - k + i;
      const bool implicit = forward ? r <= unit : r >= unit;
      const T e = implicit ? nan : b.vec(r, i);
      if (cols)
        b.v(r, i) = e;
      else
        b.v(i, r) = orb::conj(e);
    }
  return b;
}

TYPED_TEST(Householder, BlockEqualsReflectorsOneByOne) {
  using T = TypeParam;
  Random rng(11);
  const double eps = orb::test::epsilon<T>();
  for (Side side : {Side::kLeft, Side::kRight})
    for (Op op : {Op::kNone, Op::kConjTrans})
      for (Direct direct : {Direct::kForward, Direct::kBackward})
        for (Storev storev : {Storev::kColumns, Storev::kRows})
          for (const auto &[nq, other, k] :
               {std::tuple{37, 23, 5}, {9, 40, 9}, {70, 3, 33}, {1, 6, 1}}) {
            SCOPED_TRACE(testing::Message()
                         << "side " << orb::letter(side) << " op " << orb::letter(op) << " direct "
                         << int(direct) << " storev " << int(storev) << " nq " << nq << " k " << k);
            const bool left = side == Side::kLeft;
            const int m = left ? nq : other, n = left ? other : nq;
            const Block<T> b = make_block<T>(direct, storev, nq, k, rng);
            Matrix<T> t(k, k, k + 3);
            lp::larft(direct, storev, nq, k, b.v.data(), b.v.ld, b.tau.data(), t.data(), t.ld);
            const Matrix<T> c0 = orb::test::random_matrix<T>(m, n, rng, m + 1);

            Matrix<T> c = c0;
            const int ldwork = (left ? n : m) + 2;
            std::vector<T> work(static_cast<std::size_t>(ldwork) * k);
            lp::larfb(side, op, direct, storev, m, n, k, b.v.data(), b.v.ld, t.data(), t.ld,
                      c.data(), c.ld, work.data(), ldwork);
            EXPECT_EQ(c.padding_changed(), 0);

            // H = P(0) P(1) ... P(k-1) with P the reflectors in the
            // direction's order; H C, H^H C, C H or C H^H one at a time.
            Matrix<T> r = c0;
            std::vector<T> w1(std::max(m, n));
            const bool forward = direct == Direct::kForward;
            const bool adjoint = op != Op::kNone;
            const bool first_to_last = left == adjoint;  // P(0) applied first
            for (int s = 0; s < k; ++s) {
              const int p = first_to_last ? s : k - 1 - s;
              const int i = forward ? p : k - 1 - p;
              const T tau = adjoint ? orb::conj(b.tau[i]) : b.tau[i];
              lp::larf(side, m, n, &b.vec(0, i), 1, tau, r.data(), r.ld, w1.data());
            }
            double err = 0;
            for (int j = 0; j < n; ++j)
              for (int i = 0; i < m; ++i) err = std::max(err, double(std::abs(c(i, j) - r(i, j))));
            EXPECT_LE(err, 20 * (nq + k) * eps * std::max(1.0, orb::test::norm_max(c0)));
          }
}

}  // namespace
