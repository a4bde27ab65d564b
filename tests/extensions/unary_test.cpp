// The unary, sign and cumulative host routines: every code path gives the
// plain loop's bits, in place and out of place, special values included;
// then the rules at their edges through the exported names.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <limits>

#include "extensions/kernel/cumulative.h"
#include "extensions/kernel/sign.h"
#include "extensions/kernel/unary.h"
#include "extensions/paths.h"
#include "orb.h"

namespace {

using namespace orb::test::host;
using orb::host::CumulativeKernels;
using orb::host::kCumulative;
using orb::host::kSign;
using orb::host::kUnary;
using orb::host::SignKernels;
using orb::host::UnaryFn;
using orb::host::UnaryKernels;
using C = std::complex<float>;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = INFINITY;

// operand() with every few floats replaced by a special value: both zeros,
// both infinities, NaN, halves and values around 2^23.
std::vector<float> special_operand(std::size_t n, unsigned seed) {
  static const float kSpecial[] = {0.0f,  -0.0f, kInf,       -kInf,       kNaN,      0.5f,
                                   -0.5f, -1.5f, 8388607.5f, -8388607.5f, 8388609.0f};
  std::vector<float> v = operand(n, seed);
  for (std::size_t i = seed % 3; i < n; i += 3) v[i] = kSpecial[(i + seed) % std::size(kSpecial)];
  return v;
}

// want from the plain table, got from the path's, both from `before` as the
// destination; then, where the types agree, the path in place against the
// plain loop out of place with a destination holding the source.
template <class Call>
void expect_as_plain(const char *name, const std::vector<float> &src, std::vector<float> before,
                     bool same_types, Call call) {
  std::vector<float> want = before, got = before;
  call(true, src.data(), want.data());
  call(false, src.data(), got.data());
  EXPECT_TRUE(same_bits(want, got))
      << name << " floats=" << src.size() << " " << first_difference(want, got);
  if (!same_types) return;
  std::vector<float> in_place = src;
  want = src;
  call(true, src.data(), want.data());
  call(false, in_place.data(), in_place.data());
  EXPECT_TRUE(same_bits(want, in_place))
      << name << " in place, floats=" << src.size() << " " << first_difference(want, in_place);
}

class UnaryPaths : public ::testing::TestWithParam<PathCase> {
 protected:
  void SetUp() override {
    if (GetParam().needs) GTEST_SKIP() << "needs " << GetParam().needs;
  }
  template <class Table, class Tables>
  static const Table &pick(const Tables &t, bool plain) {
    return t[plain ? orb::host::Path::kPlain : GetParam().path];
  }
};

TEST_P(UnaryPaths, MovesRoundingAndRemaindersGiveThePlainBits) {
  struct K {
    const char *name;
    UnaryFn UnaryKernels::*fn;
    bool complex;
  };
  const K kernels[] = {
      {"MulI_s", &UnaryKernels::mul_i, true},         {"Flip_s", &UnaryKernels::flip, true},
      {"FlipConj_s", &UnaryKernels::flip_conj, true}, {"Reverse_s", &UnaryKernels::reverse, true},
      {"Floor_s", &UnaryKernels::floor, false},       {"Ceil_s", &UnaryKernels::ceil, false}};
  const float start[2] = {-3.25f, 1e-3f}, step[2] = {0.1f, -7.0f};
  for (std::size_t n : counts()) {
    for (const K &k : kernels) {
      const std::size_t m = k.complex ? 2 * n : n;
      expect_as_plain(k.name, special_operand(m, unsigned(n)), operand(m, 1), true,
                      [&](bool p, const float *s, float *d) {
                        (pick<UnaryKernels>(kUnary, p).*k.fn)(s, d, n);
                      });
    }
    const std::vector<float> b = special_operand(n, 9);
    expect_as_plain("Rem_s", special_operand(n, 4), operand(n, 2), true,
                    [&](bool p, const float *s, float *d) {
                      pick<UnaryKernels>(kUnary, p).rem(s, b.data(), d, n);
                    });
    for (float v : {2.5f, -0.0f, kInf})
      expect_as_plain("RemVal_s", special_operand(n, 5), operand(n, 3), true,
                      [&](bool p, const float *s, float *d) {
                        pick<UnaryKernels>(kUnary, p).rem_value(s, d, v, n);
                      });
    expect_as_plain("Rampc_s", {}, operand(2 * n, 6), false, [&](bool p, const float *, float *d) {
      pick<UnaryKernels>(kUnary, p).ramp_c(d, start, step, n);
    });
  }
}

TEST_P(UnaryPaths, SignsGiveThePlainBits) {
  using Fn = void (*)(const float *, float *, std::size_t);
  struct K {
    const char *name;
    Fn SignKernels::*fn;
    bool src_complex, dst_complex;
  };
  const K kernels[] = {
      {"SgnMul_s", &SignKernels::sgn_mul_dd, false, false},
      {"SgnMulc_s", &SignKernels::sgn_mul_cc, true, true},
      {"SgnMulcd_s", &SignKernels::sgn_mul_cd, true, false},
      {"SgnMuldc_s", &SignKernels::sgn_mul_dc, false, true},
      {"Sgndd_s", &SignKernels::sgn_dd, false, false},
      {"Sgndc_s", &SignKernels::sgn_dc, false, true},
      {"Sgncd_s", &SignKernels::sgn_cd, true, false},
      {"Sgncc_s", &SignKernels::sgn_cc, true, true},
  };
  for (std::size_t n : counts())
    for (const K &k : kernels) {
      const std::size_t ms = k.src_complex ? 2 * n : n, md = k.dst_complex ? 2 * n : n;
      expect_as_plain(k.name, special_operand(ms, unsigned(n) + 1), special_operand(md, 7),
                      k.src_complex == k.dst_complex, [&](bool p, const float *s, float *d) {
                        (pick<SignKernels>(kSign, p).*k.fn)(s, d, n);
                      });
    }
}

TEST_P(UnaryPaths, SumsAndProductsGiveThePlainBits) {
  for (std::size_t n : counts()) {
    for (int c = 0; c < 2; ++c) {
      const std::size_t m = c ? 2 * n : n;
      const auto sum = c ? &CumulativeKernels::cum_sum_c : &CumulativeKernels::cum_sum;
      const auto lag = c ? &CumulativeKernels::cum_sum_lag_c : &CumulativeKernels::cum_sum_lag;
      expect_as_plain("CumSum", operand(m, unsigned(n)), operand(m, 2), true,
                      [&](bool p, const float *s, float *d) {
                        (pick<CumulativeKernels>(kCumulative, p).*sum)(s, d, n);
                      });
      for (std::size_t delta : {0, 2, 3, 8, 17, 40})
        expect_as_plain("CumSumDelta", operand(m, unsigned(n + delta)), operand(m, 3), true,
                        [&](bool p, const float *s, float *d) {
                          (pick<CumulativeKernels>(kCumulative, p).*lag)(s, d, delta, n);
                        });
      // Factors near 1, so that long products stay finite.
      std::vector<float> x = operand(m, 11);
      for (float &v : x) v = 1.0f + std::ldexp(std::fmod(v, 1.0f), -2);
      const auto prod = c ? &CumulativeKernels::product_c : &CumulativeKernels::product;
      std::vector<float> want(2), got(2);
      (pick<CumulativeKernels>(kCumulative, true).*prod)(x.data(), want.data(), n);
      (pick<CumulativeKernels>(kCumulative, false).*prod)(x.data(), got.data(), n);
      EXPECT_TRUE(
          same_bits(c ? want : std::vector<float>{want[0]}, c ? got : std::vector<float>{got[0]}))
          << "Product c=" << c << " n=" << n;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Host, UnaryPaths, ::testing::ValuesIn(all_paths()),
                         [](const auto &info) { return std::string(info.param.name); });

// ---- the rules, through the exported names ----------------------------------------

bool positive_zero(float x) {
  return x == 0.0f && !std::signbit(x);
}

TEST(Unary, NegatedZeroPartsArePositiveAndReverseSwapsInPlace) {
  const orb_complex8 one[1] = {{1.0f, 0.0f}};
  orb_complex8 d[1];
  MulI_s(one, d, 1);
  EXPECT_TRUE(positive_zero(d[0].re));
  EXPECT_EQ(d[0].im, 1.0f);
  const orb_complex8 neg_zero[1] = {{-0.0f, 2.0f}};
  FlipConj_s(neg_zero, d, 1);
  EXPECT_EQ(d[0].re, 2.0f);
  EXPECT_TRUE(positive_zero(d[0].im));
  for (unsigned n : {4u, 5u}) {
    std::vector<orb_complex8> v(n);
    for (unsigned i = 0; i < n; ++i) v[i] = {float(i), -float(i)};
    Reverse_s(v.data(), v.data(), n);
    for (unsigned i = 0; i < n; ++i) EXPECT_EQ(v[i].re, float(n - 1 - i)) << n << " " << i;
  }
}

TEST(Sign, ComplexSignComesFromTheRealPartUnlessItIsZero) {
  const orb_complex8 a[5] = {
      {0.0f, -2.0f}, {0.0f, 0.0f}, {kNaN, 1.0f}, {-0.0f, kNaN}, {-1.0f, 5.0f}};
  orb_complex8 b[5] = {{3.0f, 0.0f}, {3.0f, 4.0f}, {3.0f, 4.0f}, {3.0f, 4.0f}, {-0.0f, 4.0f}};
  SgnMulc_s(a, b, 5);
  EXPECT_EQ(b[0].re, -3.0f);  // negated, a zero part as +0
  EXPECT_TRUE(positive_zero(b[0].im));
  EXPECT_TRUE(positive_zero(b[1].re) && positive_zero(b[1].im));  // zeroed
  EXPECT_EQ(b[2].re, 3.0f);                                       // NaN decides: left alone
  EXPECT_EQ(b[3].im, 4.0f);
  EXPECT_TRUE(positive_zero(b[4].re));
  EXPECT_EQ(b[4].im, -4.0f);
  float s[5];
  Sgncd_s(a, s, 5);
  EXPECT_EQ(s[0], -1.0f);
  EXPECT_TRUE(positive_zero(s[1]) && positive_zero(s[2]) && positive_zero(s[3]));
  EXPECT_EQ(s[4], -1.0f);
  orb_complex8 sc[5];
  Sgncc_s(a, sc, 5);
  EXPECT_EQ(sc[0].re, -1.0f);
  EXPECT_TRUE(positive_zero(sc[0].im));
}

TEST(Sign, RealSignLeavesNaNAndZeroesOnZero) {
  const float a[5] = {kNaN, -0.0f, -2.0f, 7.0f, -kInf};
  float b[5] = {5.0f, -5.0f, -0.0f, -6.0f, 1.0f};
  SgnMul_s(a, b, 5);
  EXPECT_EQ(b[0], 5.0f);
  EXPECT_TRUE(positive_zero(b[1]) && positive_zero(b[2]));
  EXPECT_EQ(b[3], -6.0f);
  EXPECT_EQ(b[4], -1.0f);
  orb_complex8 s[5];
  Sgndc_s(a, s, 5);
  EXPECT_TRUE(positive_zero(s[0].re) && positive_zero(s[1].re));
  EXPECT_EQ(s[2].re, -1.0f);
  EXPECT_EQ(s[3].re, 1.0f);
  EXPECT_TRUE(positive_zero(s[3].im));
}

TEST(Cumulative, SumsReturnTheCountAndProductsOfNothingAreOne) {
  const float x[5] = {1.0f, 2.0f, 3.0f, 4.0f, 5.0f};
  float d[5] = {9, 9, 9, 9, 9};
  EXPECT_EQ(CumSum_s(x, d, 0), 0u);
  EXPECT_EQ(d[0], 9.0f);
  EXPECT_EQ(CumSum_s(x, d, 5), 5u);
  EXPECT_EQ(d[4], 15.0f);
  EXPECT_EQ(CumSumDelta_s(x, d, 2, 5), 5u);  // 1 2 4 6 9
  EXPECT_EQ(d[3], 6.0f);
  EXPECT_EQ(d[4], 9.0f);
  const orb_complex8 c[3] = {{1, 1}, {2, 0}, {0, 1}};
  orb_complex8 dc[3];
  EXPECT_EQ(CumSumDeltac_s(c, dc, 0, 3), 3u);  // lag 0 acts as 1
  EXPECT_EQ(dc[2].re, 3.0f);
  EXPECT_EQ(dc[2].im, 2.0f);
  float p = 0.0f;
  Product_s(x, 0, &p);
  EXPECT_EQ(p, 1.0f);
  Product_s(x, 5, &p);
  EXPECT_EQ(p, 120.0f);
  orb_complex8 pc{0, 0};
  Productc_s(c, 0, &pc);
  EXPECT_EQ(pc.re, 1.0f);
  EXPECT_TRUE(positive_zero(pc.im));
  Productc_s(c, 3, &pc);  // (1 + i) 2 i = -2 + 2i
  EXPECT_EQ(pc.re, -2.0f);
  EXPECT_EQ(pc.im, 2.0f);
}

TEST(Unary, FloorCeilAndRemaindersAreExact) {
  const float x[8] = {-0.5f, 0.5f, -0.0f, -kInf, kNaN, 8388607.5f, -8388607.5f, 1e30f};
  float fl[8], ce[8];
  Floor_s(x, fl, 8);
  Ceil_s(x, ce, 8);
  const float want_fl[8] = {-1.0f, 0.0f, -0.0f, -kInf, kNaN, 8388607.0f, -8388608.0f, 1e30f};
  const float want_ce[8] = {-0.0f, 1.0f, -0.0f, -kInf, kNaN, 8388608.0f, -8388607.0f, 1e30f};
  for (int i = 0; i < 8; ++i) {
    EXPECT_TRUE(std::memcmp(&fl[i], &want_fl[i], 4) == 0) << i << " " << fl[i];
    EXPECT_TRUE(std::memcmp(&ce[i], &want_ce[i], 4) == 0) << i << " " << ce[i];
  }
  const float a[3] = {-7.0f, 7.0f, -6.0f}, b[3] = {3.0f, -3.0f, 3.0f};
  float r[3];
  Rem_s(a, b, r, 3);
  EXPECT_EQ(r[0], -1.0f);  // the dividend's sign
  EXPECT_EQ(r[1], 1.0f);
  EXPECT_TRUE(std::signbit(r[2]) && r[2] == 0.0f);
  RemVal_s(a, r, 2.5f, 2);
  EXPECT_EQ(r[0], -2.0f);
  EXPECT_EQ(r[1], 2.0f);
}

TEST(Unary, RampAndPower) {
  const orb_complex8 start{1.0f, 2.0f}, step{0.5f, -1.0f};
  orb_complex8 r[3];
  Rampc_s(r, &start, &step, 3);
  EXPECT_EQ(r[2].re, 2.0f);
  EXPECT_EQ(r[2].im, 0.0f);
  const orb_complex8 z[4] = {{0.0f, 1.0f}, {4.0f, 0.0f}, {-1.0f, 0.0f}, {-0.0f, 0.0f}};
  const orb_complex8 two{2.0f, 0.0f}, half{0.5f, 0.0f}, zero{0.0f, 0.0f};
  orb_complex8 w[4];
  Powc_s(z, w, &two, 4);
  EXPECT_NEAR(w[0].re, -1.0f, 1e-7f);  // i^2
  EXPECT_NEAR(w[0].im, 0.0f, 1e-7f);
  EXPECT_TRUE(positive_zero(w[3].re) && positive_zero(w[3].im));
  Powc_s(z, w, &half, 4);
  EXPECT_EQ(w[1].re, 2.0f);
  EXPECT_NEAR(w[2].re, 0.0f, 1e-7f);  // principal root of -1
  EXPECT_EQ(w[2].im, 1.0f);
  Powc_s(z, w, &zero, 4);
  EXPECT_EQ(w[1].re, 1.0f);
  EXPECT_TRUE(positive_zero(w[3].re));  // 0^0 = 0
}

}  // namespace
