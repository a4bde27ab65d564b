// The arithmetic host routines: every code path gives the plain loop's bits,
// in place and out of place; the formulas where rounding order matters; the
// path each processor type takes.
#include <gtest/gtest.h>

#include <complex>
#include <cstdio>

#include "extensions/kernel/arith.h"
#include "extensions/paths.h"
#include "orb.h"
#include "support/child.h"

namespace {

using namespace orb::test::host;
using orb::host::ArithKernels;
using orb::host::kArith;
using C = std::complex<float>;

// A kernel with the element types of its operands (c complex, d real).
struct ValueKernel {
  const char *name;
  orb::host::ValueFn ArithKernels::*fn;
  bool src_complex, dst_complex;
};
struct ComplexValueKernel {
  const char *name;
  orb::host::ComplexValueFn ArithKernels::*fn;
  bool src_complex, dst_complex;
};
struct VectorsKernel {
  const char *name;
  orb::host::VectorsFn ArithKernels::*fn;
  bool a_complex, b_complex;
};

const ValueKernel kValue[] = {
    {"AddValue_s", &ArithKernels::add_value, false, false},
    {"AddValuecd_s", &ArithKernels::add_value_cd, true, true},
    {"SubFromValue_s", &ArithKernels::sub_from_value, false, false},
    {"SubFromValuecd_s", &ArithKernels::sub_from_value_cd, true, true},
    {"ScaleByValue_s", &ArithKernels::scale_by_value, false, false},
    {"ScaleByValuecd_s", &ArithKernels::scale_by_value_cd, true, true},
    {"DivideValue_s", &ArithKernels::divide_value, false, false},
    {"DivideValuecd_s", &ArithKernels::divide_value_cd, true, true},
};
const ComplexValueKernel kComplexValue[] = {
    {"AddValuec_s", &ArithKernels::add_value_c, true, true},
    {"AddValuedc_s", &ArithKernels::add_value_dc, false, true},
    {"SubFromValuec_s", &ArithKernels::sub_from_value_c, true, true},
    {"SubFromValuedc_s", &ArithKernels::sub_from_value_dc, false, true},
    {"ScaleByValuec_s", &ArithKernels::scale_by_value_c, true, true},
    {"ScaleByValuedc_s", &ArithKernels::scale_by_value_dc, false, true},
    {"DivideValuec_s", &ArithKernels::divide_value_c, true, true},
    {"DivideValuedc_s", &ArithKernels::divide_value_dc, false, true},
};
const VectorsKernel kVectors[] = {
    {"AddVeccd_s", &ArithKernels::add_vec_cd, true, false},
    {"SubVeccd_s", &ArithKernels::sub_vec_cd, true, false},
    {"SubVecdc_s", &ArithKernels::sub_vec_dc, false, true},
    {"MulVeccd_s", &ArithKernels::mul_vec_cd, true, false},
    {"DivVeccd_s", &ArithKernels::div_vec_cd, true, false},
    {"DivVecdc_s", &ArithKernels::div_vec_dc, false, true},
    {"DivVeccc_s", &ArithKernels::div_vec_cc, true, true},
    {"ConjMulcc_s", &ArithKernels::conj_mul_cc, true, true},
};

std::size_t floats(bool complex, std::size_t n) {
  return complex ? 2 * n : n;
}

class ArithPaths : public ::testing::TestWithParam<PathCase> {
 protected:
  void SetUp() override {
    if (GetParam().needs) GTEST_SKIP() << "needs " << GetParam().needs;
  }
  const ArithKernels &table() const { return kArith[GetParam().path]; }
  static const ArithKernels &plain() { return kArith[orb::host::Path::kPlain]; }
};

// Runs `call(src, dst)` on the path and on the plain loop, out of place and,
// where the types allow, in place; all four results must be the same bits.
template <class Call>
void expect_as_plain(const char *name, std::size_t n, bool src_complex, bool dst_complex,
                     unsigned seed, Call call) {
  const std::vector<float> src = operand(floats(src_complex, n), seed);
  const std::vector<float> before = operand(floats(dst_complex, n), seed + 1);
  std::vector<float> want = before, got = before;
  call(true, src.data(), want.data());
  call(false, src.data(), got.data());
  EXPECT_TRUE(same_bits(want, got)) << name << " n=" << n << " " << first_difference(want, got);
  if (src_complex == dst_complex) {
    std::vector<float> in_place = src;
    call(false, in_place.data(), in_place.data());
    EXPECT_TRUE(same_bits(want, in_place))
        << name << " in place, n=" << n << " " << first_difference(want, in_place);
  }
}

TEST_P(ArithPaths, ScalarOperandGivesThePlainBits) {
  const float values[] = {1.5f, -0.0f, 3e-39f};
  const float cvalue[] = {-1.25f, 0.75f};
  for (std::size_t n : counts()) {
    for (const auto &k : kValue)
      for (float v : values)
        expect_as_plain(
            k.name, n, k.src_complex, k.dst_complex, unsigned(n),
            [&](bool p, const float *s, float *d) { ((p ? plain() : table()).*k.fn)(s, d, v, n); });
    for (const auto &k : kComplexValue)
      expect_as_plain(k.name, n, k.src_complex, k.dst_complex, unsigned(n) + 7,
                      [&](bool p, const float *s, float *d) {
                        ((p ? plain() : table()).*k.fn)(s, d, cvalue, n);
                      });
  }
}

TEST_P(ArithPaths, TwoVectorsGiveThePlainBits) {
  for (std::size_t n : counts()) {
    for (const auto &k : kVectors) {
      const std::vector<float> b = operand(floats(k.b_complex, n), 99);
      // The destination as a separate array and as the first operand.
      expect_as_plain(k.name, n, k.a_complex, true, unsigned(n),
                      [&](bool p, const float *a, float *d) {
                        ((p ? plain() : table()).*k.fn)(a, b.data(), d, n);
                      });
      if (!k.b_complex) continue;
      // The destination as the second operand.
      const std::vector<float> a = operand(floats(k.a_complex, n), 5);
      std::vector<float> want(2 * n), got = b;
      (plain().*k.fn)(a.data(), b.data(), want.data(), n);
      (table().*k.fn)(a.data(), got.data(), got.data(), n);
      EXPECT_TRUE(same_bits(want, got)) << k.name << " into b, n=" << n;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Host, ArithPaths, ::testing::ValuesIn(all_paths()),
                         [](const auto &info) { return std::string(info.param.name); });

// ---- the formulas, through the exported names ----------------------------------------

TEST(Arith, ValueIsDividedByEachElement) {
  const float src[2] = {2.0f, 4.0f};
  float dst[2];
  DivideValue_s(src, dst, 1.0f, 2);
  EXPECT_EQ(dst[0], 0.5f);
  EXPECT_EQ(dst[1], 0.25f);
}

TEST(Arith, ComplexProductsAndQuotientsAgreeWithStdComplex) {
  std::mt19937 gen(3);
  std::uniform_real_distribution<float> u(-2.0f, 2.0f);
  std::vector<C> a(32), b(32), prod(32), quot(32), conj_prod(32);
  for (int i = 0; i < 32; ++i) {
    a[i] = {u(gen), u(gen)};
    b[i] = {u(gen), u(gen)};
  }
  auto *pa = reinterpret_cast<const orb_complex8 *>(a.data());
  auto *pb = reinterpret_cast<const orb_complex8 *>(b.data());
  DivVeccc_s(pa, pb, reinterpret_cast<orb_complex8 *>(quot.data()), 32);
  ConjMulcc_s(pa, pb, reinterpret_cast<orb_complex8 *>(conj_prod.data()), 32);
  for (int i = 0; i < 32; ++i) {
    ScaleByValuec_s(pa + i, reinterpret_cast<orb_complex8 *>(&prod[i]), pb + i, 1);
    const float tol = 4e-7f * std::abs(a[i]) * std::max(std::abs(b[i]), 1 / std::abs(b[i]));
    EXPECT_LE(std::abs(prod[i] - a[i] * b[i]), tol) << i;
    EXPECT_LE(std::abs(quot[i] - a[i] / b[i]), 2 * tol) << i;
    EXPECT_LE(std::abs(conj_prod[i] - a[i] * std::conj(b[i])), tol) << i;
  }
}

// Negation is 0 - x: a zero part comes out +0, never -0.
TEST(Arith, NegatedZeroPartsArePositive) {
  const orb_complex8 x[1] = {{2.0f, 0.0f}};
  orb_complex8 d[1];
  SubFromValuecd_s(x, d, 1.0f, 1);
  EXPECT_EQ(d[0].re, -1.0f);
  EXPECT_FALSE(std::signbit(d[0].im));
  const float a[1] = {0.0f};
  const orb_complex8 b[1] = {{1.0f, 0.0f}};
  DivVecdc_s(a, b, d, 1);
  EXPECT_FALSE(std::signbit(d[0].im));
  SubVecdc_s(a, b, d, 1);
  EXPECT_FALSE(std::signbit(d[0].im));
}

TEST(Arith, CountZeroWritesNothing) {
  float dst[1] = {7.0f};
  const float src[1] = {1.0f};
  const orb_complex8 v{1.0f, 1.0f};
  orb_complex8 cdst[1] = {{7.0f, 7.0f}};
  AddValue_s(src, dst, 1.0f, 0);
  DivideValuedc_s(src, cdst, &v, 0);
  DivVeccc_s(cdst, cdst, cdst, 0);
  EXPECT_EQ(dst[0], 7.0f);
  EXPECT_EQ(cdst[0].re, 7.0f);
}

// ---- the path of each processor type --------------------------------------------------

ORB_CHILD(print_host_paths) {
  alignas(16) char buf[32] = {};
  const int undetermined = orb::cpu::host_word() == 0 ? 1 : 0;
  const int aligned = static_cast<int>(orb::host::path_for(buf));
  const int misaligned = static_cast<int>(orb::host::path_for(buf + 1));
  std::printf("%d %d %d\n", undetermined, aligned, misaligned);
  return 0;
}

TEST(ArithPathChoice, ProcessorTypeChoosesThePath) {
  auto r = orb::test::run_child("print_host_paths", {{"ORB_DEBUG_CPU_TYPE", "0"}});
  EXPECT_EQ(r.out, "1 0 0\n");  // undetermined until the first call; then the plain loop
  r = orb::test::run_child("print_host_paths", {{"ORB_DEBUG_CPU_TYPE", "3"}});
  EXPECT_EQ(r.out, "1 1 1\n");  // SSE2, whatever the alignment
  r = orb::test::run_child("print_host_paths", {{"ORB_DEBUG_CPU_TYPE", "5"}});
  const int wide = orb::cpu::avx512_usable() ? 3 : orb::cpu::avx2_fma_usable() ? 2 : 1;
  // The widest path; a destination not aligned to 4 bytes takes the plain loop.
  EXPECT_EQ(r.out, "1 " + std::to_string(wide) + " 0\n");
}

}  // namespace
