// General matrix multiply: every processor path against a double-precision
// reference around the block boundaries, the path and thread decisions, and
// results that do not depend on the thread count.
#include <cpuid.h>
#include <gtest/gtest.h>
#include <omp.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

#include "blas/level3/gemm.h"
#include "orb.h"
#include "service/cpu.h"
#include "service/kernel_set.h"
#include "support/child.h"
#include "support/matrix.h"

namespace {

using orb::c16;
using orb::c8;

using orb::test::make;
using orb::test::Matrix;
using orb::test::Random;
using orb::test::random_matrix;
using orb::test::wide_t;

// Checks C = alpha op(A) op(B) + beta C0 elementwise against a bound that
// grows with k, and that nothing outside C was written; returns the number
// of elements that fail.
template <class T>
int check(char ta, char tb, int m, int n, int k, T alpha, const Matrix<T> &a, const Matrix<T> &b,
          T beta, const Matrix<T> &c0, const Matrix<T> &c) {
  using W = wide_t<T>;
  using R = orb::test::real_t<T>;
  const double eps = std::numeric_limits<R>::epsilon();
  Matrix<double> mag;
  const Matrix<W> ab = orb::test::multiply(ta, a, tb, b, &mag);
  int bad = 0;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) {
      W expect = W(alpha) * ab(i, j);
      double scale = std::abs(W(alpha)) * mag(i, j);
      if (beta != T(0)) {
        expect += W(beta) * W(c0(i, j));
        scale += std::abs(W(beta) * W(c0(i, j)));
      }
      const double err = std::abs(W(c(i, j)) - expect);
      if (!(err <= 8 * (k + 2) * eps * (scale + 1e-30))) {
        if (bad < 3)
          std::printf("  %c%c m=%d n=%d k=%d (%d,%d): err %g bound %g\n", ta, tb, m, n, k, i, j,
                      err, 8 * (k + 2) * eps * scale);
        ++bad;
      }
    }
  // Rows between m and ldc, and the storage around C, are never written.
  return bad + c.padding_changed();
}

template <class T>
void call(char ta, char tb, int m, int n, int k, T alpha, const T *a, int lda, const T *b, int ldb,
          T beta, T *c, int ldc) {
  if constexpr (std::is_same_v<T, float>)
    orb::blas::orb_blas_sgemm(&ta, &tb, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc);
  else if constexpr (std::is_same_v<T, double>)
    orb::blas::orb_blas_dgemm(&ta, &tb, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc);
  else if constexpr (std::is_same_v<T, c8>)
    orb::blas::orb_blas_cgemm(&ta, &tb, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc);
  else
    orb::blas::orb_blas_zgemm(&ta, &tb, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc);
}

// A random rows by cols matrix at leading dimension rows + pad.
template <class T>
Matrix<T> operand(int rows, int cols, int pad, Random &rng) {
  return random_matrix<T>(rows, cols, rng, std::max(1, rows + pad));
}

template <class T>
int run_case(char ta, char tb, int m, int n, int k, T alpha, T beta, Random &rng,
             bool nan_c = false) {
  const Matrix<T> a = operand<T>(ta == 'N' ? m : k, ta == 'N' ? k : m, 3, rng);
  const Matrix<T> b = operand<T>(tb == 'N' ? k : n, tb == 'N' ? n : k, 1, rng);
  Matrix<T> c0 = operand<T>(m, n, 2, rng);
  if (nan_c)
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < m; ++i) c0(i, j) = T(std::numeric_limits<double>::quiet_NaN());
  Matrix<T> c = c0;
  call<T>(ta, tb, m, n, k, alpha, a.data(), a.ld, b.data(), b.ld, beta, c.data(), c.ld);
  return check(ta, tb, m, n, k, alpha, a, b, beta, c0, c);
}

template <class T>
int sweep(const std::vector<int> &sizes, const char *transposes) {
  Random rng(42);
  int bad = 0;
  const T alphas[] = {T(1), make<T>(-0.75, 0.5)};
  const T betas[] = {T(0), T(1), make<T>(0.5, -0.25)};
  int ab = 0;
  for (const char *ta = transposes; *ta; ++ta)
    for (const char *tb = transposes; *tb; ++tb)
      for (int m : sizes)
        for (int n : sizes)
          for (int k : sizes) {
            ++ab;
            bad += run_case<T>(*ta, *tb, m, n, k, alphas[ab % 2], betas[ab % 3], rng);
          }
  return bad;
}

// The block boundaries of every path: types 2/3 (inner 64, blocks 240/480),
// types 4/5 (inner 256, rows 120/144, columns 2040..6144), type 0 (64, 16, 200).
int boundary_sweep() {
  Random rng(7);
  int bad = 0;
  const int cases[][3] = {
      {241, 9, 65},   {145, 13, 257}, {17, 201, 63},   {121, 7, 129}, {481, 5, 64},  {8, 8, 8},
      {50, 50, 50},   {7, 300, 11},   {33, 3073, 20},  {300, 7, 300}, {1, 1, 1},     {16, 16, 513},
      {9, 2041, 300}, {65, 65, 1},    {200, 160, 260}, {3, 5, 0},     {193, 25, 257}};
  for (auto &x : cases)
    for (char ta : {'N', 'T'})
      for (char tb : {'N', 'T'}) {
        bad += run_case<float>(ta, tb, x[0], x[1], x[2], 1.5f, 0.0f, rng, true);
        bad += run_case<float>(ta, tb, x[0], x[1], x[2], -1.0f, 2.0f, rng);
      }
  // Large panels of B: n above 3072 with k at least 256.
  bad += run_case<float>('N', 'N', 40, 3100, 256, 1.0f, 1.0f, rng);
  bad += run_case<float>('T', 'N', 20, 6200, 300, 1.0f, 0.0f, rng);
  return bad;
}

// alpha = 0: C := beta C and neither A nor B is read.
int alpha_zero() {
  int bad = 0;
  Random rng(3);
  for (int s : {5, 40, 300}) {
    const Matrix<float> c0 = operand<float>(s, s, 1, rng);
    Matrix<float> c = c0;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (int j = 0; j < s; ++j)
      for (int i = 0; i < s; ++i) c(i, j) = nan;
    call<float>('N', 'T', s, s, s, 0.0f, nullptr, s, nullptr, s, 0.0f, c.data(), c.ld);
    for (int j = 0; j < s; ++j)
      for (int i = 0; i < s; ++i) bad += c(i, j) != 0.0f;
    c = c0;
    call<float>('T', 'N', s, s, s, 0.0f, nullptr, s, nullptr, s, 2.0f, c.data(), c.ld);
    for (int j = 0; j < s; ++j)
      for (int i = 0; i < s; ++i) bad += c(i, j) != 2.0f * c0(i, j);
    bad += c.padding_changed();
  }
  return bad;
}

// The same product on one thread and on three, whose slabs of C cut the
// kernel's tiles elsewhere: the elements agree bit for bit.
template <class T>
int thread_count_differences() {
  Random rng(13);
  const int m = 203, n = 45, k = 70;
  const Matrix<T> a = operand<T>(m, k, 1, rng);
  const Matrix<T> b = operand<T>(n, k, 0, rng);
  const Matrix<T> c0 = operand<T>(m, n, 2, rng);
  Matrix<T> one = c0, three = c0;
  const T alpha = make<T>(1.25, -0.5), beta = make<T>(0.5, 0.75);
  ORB_Set_Num_Threads(1);
  call<T>('N', 'T', m, n, k, alpha, a.data(), a.ld, b.data(), b.ld, beta, one.data(), one.ld);
  ORB_Set_Num_Threads(3);
  call<T>('N', 'T', m, n, k, alpha, a.data(), a.ld, b.data(), b.ld, beta, three.data(), three.ld);
  ORB_Set_Num_Threads(2);
  int differ = 0;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) differ += one(i, j) != three(i, j);
  if (differ) std::printf("  %d elements depend on the thread count\n", differ);
  return differ;
}

int full_sweep() {
  const std::vector<int> small = {1, 2, 7, 8, 17, 33};
  int bad = boundary_sweep() + alpha_zero();
  bad += sweep<float>(small, "NTC");
  bad += sweep<double>({1, 9, 31}, "NT");
  bad += sweep<c8>({1, 4, 9, 19}, "NTC");
  bad += sweep<c16>({1, 5, 13}, "NC");
  // The tiles and blocks of the other precisions' widest kernels: 16 by 12
  // rows of 96 (double), 16 by 6 rows of 96 (complex), 8 by 6 rows of 64
  // (double complex), columns of about 2040, 2046 and 1020.
  Random rng(11);
  bad += run_case<double>('N', 'T', 97, 13, 257, 1.0, 0.5, rng);
  bad += run_case<double>('T', 'N', 17, 2053, 40, -1.0, 0.0, rng);
  bad += run_case<c8>('N', 'C', 97, 7, 257, make<c8>(1, -1), c8(0), rng);
  bad += run_case<c8>('C', 'N', 17, 2053, 30, c8(1), make<c8>(0.5, 0.5), rng);
  bad += run_case<c16>('N', 'N', 65, 7, 257, make<c16>(0.5, 2), c16(1), rng);
  bad += run_case<c16>('T', 'C', 9, 1027, 30, c16(1), c16(0), rng);
  // Blocks of rows of the 128-bit kernels: 192 (double and complex) and 128
  // (double complex).
  bad += run_case<double>('T', 'T', 193, 10, 20, 2.0, 0.0, rng, true);
  bad += run_case<c8>('N', 'T', 193, 6, 12, make<c8>(0, 1), make<c8>(-1, 0.5), rng);
  bad += run_case<c16>('C', 'N', 129, 5, 9, make<c16>(1, 1), c16(0), rng, true);
  bad += thread_count_differences<double>() + thread_count_differences<c8>() +
         thread_count_differences<c16>();
  return bad;
}

ORB_CHILD(gemm_sweep) {
  const int bad = full_sweep();
  std::printf("type %d: %d bad\n", orb::cpu::blas_type(), bad);
  return bad == 0 ? 0 : 1;
}

// The processor as it is, but without the 512-bit instructions, or without
// any of the wider paths (no AVX2, FMA or AVX-512): the kernel set then
// takes the widest path that remains.
template <bool Narrow>
orb::cpu::Regs without_wide(std::uint32_t leaf, std::uint32_t subleaf) {
  orb::cpu::Regs r{};
  __cpuid_count(leaf, subleaf, r.eax, r.ebx, r.ecx, r.edx);
  if (leaf == 7 && subleaf == 0) {
    r.ebx &= ~((1u << 16) | (1u << 17) | (1u << 30) | (1u << 31));
    if (Narrow) r.ebx &= ~(1u << 5);
  }
  if (Narrow && leaf == 1) r.ecx &= ~(1u << 12);
  return r;
}

ORB_CHILD(gemm_sweep_256) {
  orb::cpu::set_cpuid_source(without_wide<false>, [] { return true; });
  orb::cpu::reset_for_testing();
  const int bad = full_sweep();
  std::printf("type %d without 512-bit vectors: %d bad\n", orb::cpu::blas_type(), bad);
  const bool on_256 = orb::cpu::kernel_set() == orb::cpu::kSetType4Avx2 ||
                      orb::cpu::kernel_set() == orb::cpu::kSetType5Avx2;
  if (!on_256) std::printf("kernel set %d is not a 256-bit one\n", orb::cpu::kernel_set());
  return bad == 0 && on_256 ? 0 : 1;
}

ORB_CHILD(gemm_sweep_128) {
  orb::cpu::set_cpuid_source(without_wide<true>, [] { return true; });
  orb::cpu::reset_for_testing();
  const int bad = full_sweep();
  std::printf("type %d without the wider paths: %d bad\n", orb::cpu::blas_type(), bad);
  const orb::cpu::KernelSet set = orb::cpu::kernel_set();
  const bool narrow =
      set == orb::cpu::kSetType4 || set == orb::cpu::kSetType4Sse41 || set == orb::cpu::kSetType5;
  if (!narrow) std::printf("kernel set %d is not a 128-bit one\n", set);
  return bad == 0 && narrow ? 0 : 1;
}

// Every processor path of this machine's build, one process each: the types
// with the widest vectors the processor has, and types 4 and 5 once more
// without the 512-bit ones.
TEST(Gemm, EveryProcessorTypeAgainstTheReference) {
  for (const char *type : {"0", "2", "3", "4", "5"}) {
    auto r = orb::test::run_child("gemm_sweep", {{"ORB_DEBUG_CPU_TYPE", type}});
    EXPECT_EQ(r.exit_code, 0) << "type " << type << "\n" << r.out;
  }
}

// On a processor with 512-bit vectors the types above ran their 512-bit
// kernels; the 256-bit ones serve the same types where those are missing.
TEST(Gemm, The256BitKernelsOnAProcessorWith512BitVectors) {
#if !defined(ORB_KERNELS_AVX512) || !defined(ORB_KERNELS_AVX2)
  GTEST_SKIP() << "this build has no 512-bit and 256-bit kernels to choose between";
#endif
  if (!orb::cpu::avx512_usable())
    GTEST_SKIP() << "this processor lacks AVX-512 (F, DQ, BW, VL with the ZMM state): the "
                    "512-bit kernels did not run, the 256-bit ones were checked above";
  for (const char *type : {"4", "5"}) {
    auto r = orb::test::run_child("gemm_sweep_256", {{"ORB_DEBUG_CPU_TYPE", type}});
    EXPECT_EQ(r.exit_code, 0) << "type " << type << "\n" << r.out;
  }
}

// Types 4 and 5 on a processor without the wider paths run the 128-bit
// kernels of types 2 and 3 for the other precisions.
TEST(Gemm, Types4And5WithoutTheWiderPaths) {
  for (const char *type : {"4", "5"}) {
    auto r = orb::test::run_child("gemm_sweep_128", {{"ORB_DEBUG_CPU_TYPE", type}});
    EXPECT_EQ(r.exit_code, 0) << "type " << type << "\n" << r.out;
  }
}

TEST(Gemm, DirectOrPackedForTypes2And3) {
  using orb::blas::choose_sse_path;
  using orb::blas::SsePath;
  EXPECT_EQ(choose_sse_path(true, true, 8, 8, 8), SsePath::kDirect);       // ratio 0.1667 > 0.06
  EXPECT_EQ(choose_sse_path(true, true, 50, 50, 50), SsePath::kPacked);    // 150 >= 150
  EXPECT_EQ(choose_sse_path(true, true, 49, 50, 50), SsePath::kPacked);    // ratio 0.0296 < 0.06
  EXPECT_EQ(choose_sse_path(true, true, 7, 500, 500), SsePath::kDirect);   // a dimension below 8
  EXPECT_EQ(choose_sse_path(false, false, 30, 30, 20), SsePath::kPacked);  // 80 >= 80
  EXPECT_EQ(choose_sse_path(false, false, 20, 20, 20), SsePath::kPacked);  // 0.0714 < 0.075
  EXPECT_EQ(choose_sse_path(false, false, 10, 10, 10), SsePath::kDirect);  // 0.136
  EXPECT_EQ(choose_sse_path(true, false, 20, 20, 20), SsePath::kDirect);   // 0.0714 > 0.045
  EXPECT_EQ(orb::blas::sse_packed_block(3), 480);
  EXPECT_EQ(orb::blas::sse_packed_block(2), 240);
  EXPECT_EQ(orb::blas::sse_packed_block(0), 240);
}

TEST(Gemm, KernelChoiceForTypes4And5) {
  using orb::blas::choose_panel_kernel;
  using orb::blas::PanelKernel;
  // 256 * 3072 * 4 = 0x300000 exactly: not above it.
  EXPECT_EQ(choose_panel_kernel(5, false, 3072, 256), PanelKernel::kNormal);
  EXPECT_EQ(choose_panel_kernel(5, false, 3073, 256), PanelKernel::kLargePanel);
  EXPECT_EQ(choose_panel_kernel(5, false, 3073, 100), PanelKernel::kNormal);
  EXPECT_EQ(choose_panel_kernel(4, true, 20000, 1000), PanelKernel::kLargePanel);
  EXPECT_EQ(choose_panel_kernel(4, false, 20000, 1000), PanelKernel::kPreSse41);
  EXPECT_EQ(choose_panel_kernel(4, false, 10, 10), PanelKernel::kPreSse41);
}

TEST(Gemm, ThreadDecision) {
  using orb::blas::decide_split;
  EXPECT_TRUE(orb::blas::gemm_is_tiny(16, 16, 16));
  EXPECT_FALSE(orb::blas::gemm_is_tiny(17, 16, 16));
  EXPECT_FALSE(orb::blas::gemm_is_tiny(16, 16, 17));
  // 50^3 with 4 threads: total 65,000, per 20,550, ratio 3.16.
  auto d = decide_split(50, 50, 50, 4);
  EXPECT_TRUE(d.parallel);
  EXPECT_EQ(d.bound, 200);
  EXPECT_FALSE(decide_split(10, 10, 10, 4).parallel);  // 600 / 4160
  d = decide_split(101, 5, 5, 4);
  EXPECT_TRUE(d.parallel);
  EXPECT_EQ(d.bound, 5);
  EXPECT_EQ(orb::blas::wide_shared_block(5, 0, 0), 1280);
  EXPECT_EQ(orb::blas::wide_shared_block(4, 0, 0), 1024);
  EXPECT_EQ(orb::blas::wide_shared_block(4, 3, 0x300001), 1024);
  EXPECT_EQ(orb::blas::wide_shared_block(4, 3, 0x300000), 896);
}

TEST(Gemm, TinyProductsNeverAskForAThreadCount) {
  Random rng(1);
  const long before = orb::blas::gemm_thread_queries();
  run_case<float>('N', 'N', 16, 16, 16, 1.0f, 0.0f, rng);
  EXPECT_EQ(orb::blas::gemm_thread_queries(), before);
  EXPECT_EQ(run_case<float>('N', 'N', 16, 17, 16, 1.0f, 0.0f, rng), 0);
  EXPECT_EQ(orb::blas::gemm_thread_queries(), before + 1);
  // An empty C asks nothing either.
  call<float>('N', 'N', 0, 50, 50, 1.0f, nullptr, 1, nullptr, 50, 0.0f, nullptr, 1);
  EXPECT_EQ(orb::blas::gemm_thread_queries(), before + 1);
}

// The same product with 1, 2, 3 and 7 threads gives the same numbers.
TEST(Gemm, ResultsDoNotDependOnTheThreadCount) {
  const int shapes[][3] = {{50, 50, 50},   {403, 301, 290}, {1000, 60, 70},
                           {60, 900, 300}, {257, 257, 257}, {90, 90, 90}};
  for (auto &s : shapes)
    for (char ta : {'N', 'T'}) {
      Random rng(11);
      const Matrix<float> a =
          operand<float>(ta == 'N' ? s[0] : s[2], ta == 'N' ? s[2] : s[0], 0, rng);
      const Matrix<float> b = operand<float>(s[2], s[1], 0, rng);
      const Matrix<float> c0 = operand<float>(s[0], s[1], 0, rng);
      std::vector<float> first;
      for (int nt : {1, 2, 3, 7}) {
        ORB_Set_Num_Threads(nt);
        Matrix<float> c = c0;
        call<float>(ta, 'N', s[0], s[1], s[2], 1.25f, a.data(), a.ld, b.data(), b.ld, 0.5f,
                    c.data(), c.ld);
        if (first.empty())
          first = c.mem;
        else
          EXPECT_EQ(c.mem, first) << ta << " " << s[0] << "x" << s[1] << "x" << s[2] << " nt "
                                  << nt;
      }
    }
  ORB_Set_Num_Threads(2);
}

// The kernels that read small or thin products in place form the packed
// kernel's sums: the rows (columns) of a product come out the same, bit for
// bit, whether it is small enough for them or part of a larger one.
TEST(Gemm, KernelsWithoutPackingFormThePackedSums) {
  ORB_Set_Num_Threads(1);
  Random rng(5);
  for (char tb : {'N', 'T'})
    for (int k : {7, 300}) {
      const int m = 100, n = 37, tall = 300, wide = 200;
      const Matrix<float> a = operand<float>(tall, k, 0, rng);
      const Matrix<float> b = operand<float>(tb == 'N' ? k : wide, tb == 'N' ? wide : k, 0, rng);
      const Matrix<float> c0 = operand<float>(tall, wide, 0, rng);
      Matrix<float> whole = c0, part = c0, thin = c0;
      call<float>('N', tb, tall, wide, k, 1.5f, a.data(), a.ld, b.data(), b.ld, -0.5f, whole.data(),
                  whole.ld);
      call<float>('N', tb, m, n, k, 1.5f, a.data(), a.ld, b.data(), b.ld, -0.5f, part.data(),
                  part.ld);
      call<float>('N', tb, tall, 5, k, 1.5f, a.data(), a.ld, b.data(), b.ld, -0.5f, thin.data(),
                  thin.ld);
      int differ = 0;
      for (int j = 0; j < n; ++j)
        for (int i = 0; i < m; ++i) differ += part(i, j) != whole(i, j);
      for (int j = 0; j < 5; ++j)
        for (int i = 0; i < tall; ++i) differ += thin(i, j) != whole(i, j);
      EXPECT_EQ(differ, 0) << tb << " k " << k;
    }
  ORB_Set_Num_Threads(2);
}

// Called from inside an application's parallel region, each call is correct.
TEST(Gemm, InsideAnApplicationsParallelRegion) {
  ORB_Set_Num_Threads(2);
  int bad[4] = {0, 0, 0, 0};
#pragma omp parallel num_threads(4)
  {
    Random rng(omp_get_thread_num());
    bad[omp_get_thread_num()] = run_case<float>('N', 'T', 300, 200, 150, 1.0f, 0.5f, rng);
  }
  for (int b : bad) EXPECT_EQ(b, 0);
}

TEST(Gemm, ThisMachinesPathAgainstTheReference) {
  EXPECT_EQ(full_sweep(), 0);
}

}  // namespace
