#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "orb.h"
#include "service/cpu.h"
#include "support/child.h"
#include "vml/mode.h"
#include "vml/pack.h"

namespace {

using orb::vml::PackKernels;
using orb::vml::Word;

// ---- pack and unpack -----------------------------------------------------------

constexpr Word kSentinel = {0xDEADBEEF};
constexpr int kSizes[] = {0, 1, 2, 3, 17, 1000};

// Words with signalling and quiet NaNs, infinities and denormals among them.
std::vector<Word> words(std::size_t n, std::mt19937 &gen) {
  const std::uint32_t special[] = {0x7F800001u, 0xFFA00000u, 0x7FC00000u,
                                   0x7F800000u, 0x00000001u, 0x80000000u};
  std::vector<Word> w(n);
  for (std::size_t i = 0; i < n; ++i)
    w[i].bits = i % 5 == 0 ? special[i / 5 % 6] : std::uint32_t(gen());
  return w;
}

// Nonzero entries of every sign select; density picks how many.
std::vector<int> mask(int n, double density, std::mt19937 &gen) {
  std::vector<int> m(static_cast<std::size_t>(n));
  std::uniform_real_distribution<double> u(0, 1);
  const int nonzero[] = {1, -1, 7, INT_MIN, INT_MAX, -5};
  for (int i = 0; i < n; ++i) m[i] = u(gen) < density ? nonzero[i % 6] : 0;
  return m;
}

// Runs one routine of variant v and of A on the same input, into outputs
// prefilled with the sentinel, and compares every word of the outputs.
template <class Fn, class... Args>
void expect_same(Fn PackKernels::*routine, const PackKernels &v, int n, const Word *src,
                 std::size_t ylen, std::ptrdiff_t yoff, Args... args) {
  if (v.*routine == nullptr) return;  // no wide form of this routine
  std::vector<Word> want(ylen, kSentinel), got(ylen, kSentinel);
  (orb::vml::kPackA.*routine)(n, src, args..., want.data() + yoff);
  (v.*routine)(n, src, args..., got.data() + yoff);
  EXPECT_EQ(std::memcmp(want.data(), got.data(), ylen * sizeof(Word)), 0) << "n " << n;
}

void expect_matches_plain_loop(const PackKernels &v) {
  std::mt19937 gen(7);
  for (int n : kSizes) {
    const std::size_t un = static_cast<std::size_t>(n);
    for (int inc : {1, -1, 2, -3, 0, 7}) {
      SCOPED_TRACE(inc);
      const std::size_t span = un * static_cast<std::size_t>(inc < 0 ? -inc : inc) + 1;
      const std::ptrdiff_t off = inc < 0 ? static_cast<std::ptrdiff_t>(span) - 1 : 0;
      const auto a = words(span, gen);
      expect_same(&PackKernels::packi, v, n, a.data() + off, un + 3, 0, inc);
      const auto b = words(un, gen);
      expect_same(&PackKernels::unpacki, v, n, b.data(), span + 3, off, inc);
    }
    const auto a = words(un, gen);
    for (double density : {0.0, 0.3, 0.9, 1.0}) {
      const auto m = mask(n, density, gen);
      expect_same(&PackKernels::packm, v, n, a.data(), un + 3, 0, m.data());
      expect_same(&PackKernels::unpackm, v, n, a.data(), un + 3, 0, m.data());
    }
    // Indices in any order, repeated ones included.
    std::vector<int> idx(un);
    std::uniform_int_distribution<int> pick(0, n > 0 ? n - 1 : 0);
    for (int &i : idx) i = pick(gen);
    expect_same(&PackKernels::packv, v, n, a.data(), un + 3, 0, idx.data());
    expect_same(&PackKernels::unpackv, v, n, a.data(), un + 3, 0, idx.data());
  }
}

TEST(Pack, VariantBMatchesThePlainLoop) {
  expect_matches_plain_loop(orb::vml::kPackB);
}

TEST(Pack, VariantCMatchesThePlainLoop) {
  expect_matches_plain_loop(orb::vml::kPackC);
}

TEST(Pack, Avx512PathMatchesThePlainLoop) {
  if (orb::vml::pack_avx512() == nullptr) GTEST_SKIP() << "the AVX-512 path is not built";
  if (!orb::cpu::avx512_usable()) GTEST_SKIP() << "needs AVX-512F, DQ, BW and VL";
  expect_matches_plain_loop(*orb::vml::pack_avx512());
}

// The entries on small cases whose results are written out by hand.
TEST(Pack, EntriesFollowTheirRules) {
  const float nan_s = [] {
    float f;
    const std::uint32_t bits = 0x7F800001u;  // signalling NaN
    std::memcpy(&f, &bits, 4);
    return f;
  }();
  const float a[6] = {nan_s, 1, 2, 3, 4, 5};
  float y[8];
  auto reset = [&] { std::fill(y, y + 8, -9.0f); };
  const int n3 = 3, n0 = 0, two = 2, zero = 0, minus2 = -2;

  reset();
  vspacki(&n3, a + 4, &minus2, y);  // a[4], a[2], a[0]
  EXPECT_EQ(y[0], 4);
  EXPECT_EQ(y[1], 2);
  std::uint32_t bits;
  std::memcpy(&bits, &y[2], 4);
  EXPECT_EQ(bits, 0x7F800001u);
  EXPECT_EQ(y[3], -9);

  reset();
  vspacki(&n3, a + 1, &zero, y);  // n copies of a[0]
  EXPECT_EQ(y[0], 1);
  EXPECT_EQ(y[2], 1);

  reset();
  vsunpacki(&n3, a + 1, y, &two);  // odd positions stay
  EXPECT_EQ(y[0], 1);
  EXPECT_EQ(y[1], -9);
  EXPECT_EQ(y[4], 3);
  EXPECT_EQ(y[5], -9);

  const int m[6] = {0, -3, 0, INT_MIN, 1, 0}, none[6] = {};
  const int n6 = 6;
  reset();
  vspackm(&n6, a, m, y);
  EXPECT_EQ(y[0], 1);
  EXPECT_EQ(y[1], 3);
  EXPECT_EQ(y[2], 4);
  EXPECT_EQ(y[3], -9);
  reset();
  vsunpackm(&n6, a + 1, y, m);
  EXPECT_EQ(y[0], -9);
  EXPECT_EQ(y[1], 1);
  EXPECT_EQ(y[3], 2);
  EXPECT_EQ(y[4], 3);
  EXPECT_EQ(y[5], -9);
  reset();
  vspackm(&n6, a, none, y);
  vsunpackm(&n6, a, y, none);
  vspacki(&n0, a, &two, y);
  for (float v : y) EXPECT_EQ(v, -9);

  const int idx[3] = {5, 0, 5};
  reset();
  vspackv(&n3, a, idx, y);
  EXPECT_EQ(y[0], 5);
  EXPECT_EQ(y[2], 5);
  reset();
  vsunpackv(&n3, a + 1, y, idx);  // y[5] = 1, then y[0] = 2, then y[5] = 3
  EXPECT_EQ(y[0], 2);
  EXPECT_EQ(y[5], 3);
  EXPECT_EQ(y[1], -9);
}

// The override variable picks each export's variant when its slot fills.
ORB_CHILD(print_pack_variants) {
  const PackKernels k = orb::vml::pack_chosen();
  auto name = [](auto chosen, auto a, auto b, auto c) {
    return chosen == a ? 'A' : chosen == b ? 'B' : chosen == c ? 'C' : '?';
  };
  using orb::vml::kPackA, orb::vml::kPackB, orb::vml::kPackC;
  std::printf("%c%c%c%c%c%c %u\n", name(k.packi, kPackA.packi, kPackB.packi, kPackC.packi),
              name(k.packm, kPackA.packm, kPackB.packm, kPackC.packm),
              name(k.packv, kPackA.packv, kPackB.packv, kPackC.packv),
              name(k.unpacki, kPackA.unpacki, kPackB.unpacki, kPackC.unpacki),
              name(k.unpackm, kPackA.unpackm, kPackB.unpackm, kPackC.unpackm),
              name(k.unpackv, kPackA.unpackv, kPackB.unpackv, kPackC.unpackv), vmlgetmode());
  return 0;
}

TEST(Pack, OverrideVariablePicksTheVariant) {
  const char *name = orb::cpu::vml_override_name();
  const std::pair<const char *, const char *> cases[] = {{"0", "AAAAAA 1\n"},
                                                         {"3", "AAAAAA 1\n"},
                                                         {"4", "BBBBBB 1\n"},
                                                         {"5", "CCCCCC 1\n"},
                                                         {"6", "CCCCCC 1\n"}};
  for (const auto &[type, want] : cases) {
    const auto r = orb::test::run_child("print_pack_variants", {{name, type}});
    EXPECT_EQ(r.exit_code, 0) << type;
    EXPECT_EQ(r.out, want) << type;
  }
}

// ---- the mode word ------------------------------------------------------------

// Runs f on a new thread, whose word is the initial one, restoring MXCSR.
template <class F>
void on_fresh_thread(F f) {
  std::thread([&] {
    const unsigned csr = _mm_getcsr();
    f();
    _mm_setcsr(csr);
  }).join();
}

unsigned set(unsigned mode) {
  return vmlsetmode(&mode);
}

TEST(Mode, NonzeroFieldsReplaceZeroFieldsKeep) {
  on_fresh_thread([] {
    EXPECT_TRUE(orb::vml::mode_word_per_thread());
    EXPECT_EQ(vmlgetmode(), 0x1u);
    EXPECT_EQ(set(0x00020203u), 0x1u);  // accuracy 3, errors 0x02, additional 0x20000
    EXPECT_EQ(vmlgetmode(), 0x00020203u);
    EXPECT_EQ(set(0x00000500u), 0x00020203u);  // only the error field changes
    EXPECT_EQ(vmlgetmode(), 0x00020503u);
    EXPECT_EQ(set(0xFFFC0002u), 0x00020503u);  // bits 18-31 are ignored
    EXPECT_EQ(vmlgetmode(), 0x00020502u);
    EXPECT_EQ(set(0), 0x00020502u);
    EXPECT_EQ(vmlsetmode(nullptr), 0x00020502u);
    EXPECT_EQ(vmlgetmode(), 0x00020502u);
  });
}

TEST(Mode, EachThreadHasItsOwnWord) {
  const unsigned mine = vmlgetmode();
  unsigned seen[2] = {};
  std::thread t1([&] {
    set(0x00010102u);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    seen[0] = vmlgetmode();
  });
  std::thread t2([&] {
    set(0x00020F03u);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    seen[1] = vmlgetmode();
  });
  t1.join();
  t2.join();
  EXPECT_EQ(seen[0], 0x00010102u);
  EXPECT_EQ(seen[1], 0x00020F03u);
  EXPECT_EQ(vmlgetmode(), mine);
}

constexpr unsigned kRc = 0x6000, kFtz = 0x8000, kDaz = 0x40;

TEST(Mode, FpControlSetsTheControlRegisterAsDocumented) {
  on_fresh_thread([] {
    const unsigned untouched = _mm_getcsr() & ~(kRc | kFtz | kDaz);
    auto csr = [] { return _mm_getcsr() & (kRc | kFtz | kDaz); };
    struct Case {
      unsigned mode, csr;
    };
    const Case cases[] = {
        {0x21, 0x2000},                // down, high accuracy: denormals kept
        {0x42, 0x4000 | kFtz},         // up, reduced: flushed
        {0x53, 0x6000 | kFtz | kDaz},  // toward zero, fastest
        {0x10, 0x0000 | kFtz | kDaz},  // accuracy 3 stays in the word
        {0x21, 0x2000},
        {0x62, 0x2000 | kFtz},  // rounding kept, reduced
        {0x00, 0x2000 | kFtz},  // 0 leaves the register alone
        {0xA0, 0x4000 | kDaz},  // up, inputs read as zero only
        {0x30, 0x0000},         // the default state
        {0x23, 0x2000 | kFtz | kDaz},
        {0x70, 0x0000 | kFtz | kDaz},
    };
    for (const Case &c : cases) {
      set(c.mode);
      EXPECT_EQ(csr(), c.csr) << std::hex << c.mode;
      EXPECT_EQ(_mm_getcsr() & ~(kRc | kFtz | kDaz), untouched);
    }
    EXPECT_EQ(vmlgetmode() & orb::vml::kFpControlMask, 0x70u);  // the last nonzero request
    // The register really rounds and flushes as set.
    volatile float one = 1, three = 3, tiny = 1e-38f, half = 0.5f;
    set(0x21);
    const float down = one / three;
    set(0x41);
    EXPECT_LT(down, one / three);
    set(0x12);
    EXPECT_EQ(tiny * half, 0.0f);
    set(0x30);
    EXPECT_GT(tiny * half, 0.0f);
  });
}

TEST(Mode, TableHoldsNineteenDistinctSettings) {
  std::vector<std::pair<unsigned, unsigned>> seen;
  for (unsigned fp = 0x10; fp <= 0xF0; fp += 0x10)
    for (unsigned acc = 0; acc < 16; ++acc) {
      const int i = orb::vml::fp_setting_index(fp, acc);
      if (fp == 0x30) {
        EXPECT_EQ(i, -1);
        continue;
      }
      ASSERT_GE(i, 0);
      ASSERT_LT(i, orb::vml::kFpSettings);
    }
  for (const auto &s : orb::vml::kFpSettingTable) {
    for (const auto &t : seen) EXPECT_FALSE(t.first == s.clear && t.second == s.set);
    seen.emplace_back(s.clear, s.set);
  }
}

}  // namespace
