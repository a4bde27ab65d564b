// The gather, scatter and mask routines: every code path moves exactly the
// words a plain loop moves, and writes nowhere else, on counts around every
// vector width, with complex arrays only 4-byte aligned; the edge cases of
// the contracts through the exported names.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "extensions/kernel/gather.h"
#include "extensions/paths.h"
#include "orb.h"

namespace {

using namespace orb::test::host;
using orb::host::GatherKernels;
using orb::host::kGather;
using orb::host::Word32;
using orb::host::Word64;
using std::size_t;

// Random words (NaN patterns included: nothing may pass through a float
// register). A complex array starts one word into its buffer, so it is only
// 4-byte aligned; guard words around it catch stray writes.
constexpr size_t kGuard = 9;
struct Words {
  std::vector<std::uint32_t> buf;
  size_t elems, width;  // width: words per element, 1 or 2
  Words(size_t n, size_t w, unsigned seed) : buf(w * n + 2 * kGuard + 1), elems(n), width(w) {
    std::mt19937 gen(seed);
    for (auto &x : buf) x = static_cast<std::uint32_t>(gen());
  }
  std::uint32_t *at(size_t i) { return buf.data() + kGuard + 1 + width * i; }
  Word64 *c(size_t i = 0) { return reinterpret_cast<Word64 *>(at(i)); }
  Word32 *r(size_t i = 0) { return reinterpret_cast<Word32 *>(at(i)); }
  void copy(size_t to, const Words &from, size_t i) {
    for (size_t w = 0; w < width; ++w) at(to)[w] = from.buf[kGuard + 1 + width * i + w];
  }
};

// Masks mixing positive values, zero and negative values, and long runs of
// each (every bit pattern of a vector's lanes turns up).
std::vector<int> mask_of(size_t n, unsigned seed) {
  std::mt19937 gen(seed);
  std::vector<int> m(n);
  const int values[] = {1, 0, -1, 7, INT32_MIN, INT32_MAX};
  for (size_t i = 0; i < n; ++i) m[i] = (i / 40) % 3 == 2 ? 1 : values[gen() % 6];
  return m;
}

class GatherPaths : public ::testing::TestWithParam<PathCase> {
 protected:
  void SetUp() override {
    if (GetParam().needs) GTEST_SKIP() << "needs " << GetParam().needs;
  }
  const GatherKernels &table() const { return kGather[GetParam().path]; }
};

TEST_P(GatherPaths, StridesMoveThePlainWords) {
  for (size_t n : counts()) {
    for (std::ptrdiff_t inc : {1, 2, 3, 0, -1, -2}) {
      const size_t span = n == 0 ? 1 : (n - 1) * size_t(inc < 0 ? -inc : inc) + 1;
      // Negative strides read and write below the given element.
      const size_t base = inc < 0 ? span - 1 : 0;
      Words src(span, 2, unsigned(n)), want(n, 2, 5), got = want;
      for (size_t i = 0; i < n; ++i) want.copy(i, src, base + i * inc);
      table().pack_strided(src.c(base), got.c(), inc, n);
      EXPECT_EQ(want.buf, got.buf) << "pack n=" << n << " inc=" << inc;

      Words from(n, 2, unsigned(n) + 1), want2(span, 2, 6), got2 = want2;
      for (size_t i = 0; i < n; ++i) want2.copy(base + i * inc, from, i);
      table().unpack_strided(from.c(), got2.c(base), inc, n);
      EXPECT_EQ(want2.buf, got2.buf) << "unpack n=" << n << " inc=" << inc;
    }
  }
}

TEST_P(GatherPaths, IndicesMoveThePlainWords) {
  for (size_t n : counts()) {
    const size_t m = n + 3;
    std::mt19937 gen{unsigned(n)};
    std::vector<int> idx(n);  // repeats included: the last write stays
    for (int &x : idx) x = int(gen() % m);
    Words src(m, 2, 1), want(n, 2, 2), got = want;
    for (size_t i = 0; i < n; ++i) want.copy(i, src, idx[i]);
    table().pack_indexed(src.c(), got.c(), idx.data(), n);
    EXPECT_EQ(want.buf, got.buf) << "pack n=" << n;

    Words from(n, 2, 3), want2(m, 2, 4), got2 = want2;
    for (size_t i = 0; i < n; ++i) want2.copy(idx[i], from, i);
    table().unpack_indexed(from.c(), got2.c(), idx.data(), n);
    EXPECT_EQ(want2.buf, got2.buf) << "unpack n=" << n;
  }
}

TEST_P(GatherPaths, MasksMoveThePlainWords) {
  for (size_t n : counts()) {
    for (unsigned seed : {1u, 2u}) {
      std::vector<int> mask = mask_of(n, seed + unsigned(n));
      if (seed == 2) mask.assign(n, 1);
      size_t k = 0;
      for (int x : mask) k += x > 0;

      // Expansion reads exactly k source elements.
      Words src(k, 2, 7), want(n, 2, 8), got = want;
      for (size_t i = 0, j = 0; i < n; ++i)
        if (mask[i] > 0) want.copy(i, src, j++);
      table().expand_masked(src.c(), got.c(), mask.data(), n);
      EXPECT_EQ(want.buf, got.buf) << "expand n=" << n << " seed=" << seed;

      // Compaction writes exactly k elements.
      for (size_t width : {1, 2}) {
        Words from(n, width, 9), want2(k, width, 10), got2 = want2;
        for (size_t i = 0, j = 0; i < n; ++i)
          if (mask[i] > 0) want2.copy(j++, from, i);
        const size_t r = width == 1 ? table().compress_real(from.r(), got2.r(), mask.data(), n)
                                    : table().compress_complex(from.c(), got2.c(), mask.data(), n);
        EXPECT_EQ(r, k) << "width=" << width << " n=" << n;
        EXPECT_EQ(want2.buf, got2.buf) << "compress width=" << width << " n=" << n;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Host, GatherPaths, ::testing::ValuesIn(all_paths()),
                         [](const auto &info) { return std::string(info.param.name); });

// ---- the contracts, through the exported names ---------------------------------------

bool same(const orb_complex8 &a, const orb_complex8 &b) {
  return a.re == b.re && a.im == b.im;
}

TEST(Gather, MaskedExpansionFillsOnlyTheSelectedPositions) {
  const orb_complex8 src[2] = {{1, 2}, {3, 4}}, keep{-5, -6};
  const int mask[3] = {1, 0, 1};
  for (int order = 0; order < 2; ++order) {
    orb_complex8 dst[3] = {keep, keep, keep};
    if (order == 0)
      vdpackmc_s(3, src, mask, dst);
    else
      vdunpackmc_s(3, src, dst, mask);
    EXPECT_TRUE(same(dst[0], src[0]) && same(dst[1], keep) && same(dst[2], src[1])) << order;
  }
  const int none[3] = {-1, 0, -1};
  orb_complex8 dst[3] = {keep, keep, keep};
  vdpackmc_s(3, src, none, dst);
  EXPECT_TRUE(same(dst[0], keep) && same(dst[2], keep));
}

TEST(Gather, PackByMaskCompactsAndCounts) {
  const float src[3] = {1, 2, 3};
  float dst[3] = {9, 9, 9};
  const int mask[3] = {1, 0, 1};
  EXPECT_EQ(PackByMask_s(3, src, dst, mask), 2u);
  EXPECT_EQ(dst[0], 1);
  EXPECT_EQ(dst[1], 3);
  EXPECT_EQ(dst[2], 9);

  const int negative[3] = {-1, -1, 0};
  EXPECT_EQ(PackByMask_s(3, src, dst, negative), 0u);
  EXPECT_EQ(dst[0], 1);
  EXPECT_EQ(PackByMask_s(0, src, dst, mask), 0u);

  const orb_complex8 csrc[3] = {{1, 2}, {3, 4}, {5, 6}};
  orb_complex8 cdst[3] = {};
  const int last[3] = {0, -1, 2};
  EXPECT_EQ(PackByMaskc_s(3, csrc, cdst, last), 1u);
  EXPECT_TRUE(same(cdst[0], csrc[2]) && same(cdst[1], orb_complex8{}));
}

TEST(Gather, StrideZeroAndNegativeStrides) {
  const orb_complex8 src[3] = {{1, 2}, {3, 4}, {5, 6}};
  orb_complex8 dst[3] = {};
  vdpackic_s(3, src, 0, dst);  // every element is src[0]
  EXPECT_TRUE(same(dst[0], src[0]) && same(dst[2], src[0]));
  vdpackic_s(3, src + 2, -1, dst);  // reversed
  EXPECT_TRUE(same(dst[0], src[2]) && same(dst[1], src[1]) && same(dst[2], src[0]));
  orb_complex8 out[5] = {};
  vdunpackic_s(3, src, out + 4, -2);
  EXPECT_TRUE(same(out[4], src[0]) && same(out[2], src[1]) && same(out[0], src[2]));
  EXPECT_TRUE(same(out[3], orb_complex8{}));
  vdunpackic_s(3, src, out, 0);  // the last element stays
  EXPECT_TRUE(same(out[0], src[2]));
}

TEST(Gather, IndexedRoutinesAndEmptyCalls) {
  const orb_complex8 src[3] = {{1, 2}, {3, 4}, {5, 6}}, keep{7, 7};
  const int idx[2] = {2, 0};
  orb_complex8 dst[3] = {keep, keep, keep};
  vdpackvc_s(2, src, idx, dst);
  EXPECT_TRUE(same(dst[0], src[2]) && same(dst[1], src[0]) && same(dst[2], keep));
  orb_complex8 out[3] = {keep, keep, keep};
  vdunpackvc_s(2, src, out, idx);
  EXPECT_TRUE(same(out[2], src[0]) && same(out[0], src[1]) && same(out[1], keep));

  vdpackic_s(0, src, 1, out);
  vdunpackic_s(0, src, out, 1);
  vdpackvc_s(0, src, idx, out);
  vdunpackvc_s(0, src, out, idx);
  vdpackmc_s(0, src, idx, out);
  vdunpackmc_s(0, src, out, idx);
  EXPECT_TRUE(same(out[1], keep) && same(out[0], src[1]));
}

}  // namespace
