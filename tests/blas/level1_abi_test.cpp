// The level-1 and sparse level-1 BLAS through the exported names: the aliases
// reach their entries, complex results come back through the result pointer,
// the double-precision names compute in double precision and the quick
// returns hold.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <type_traits>

#include "orb.h"

namespace {

bool same_bits(const void *a, const void *b, size_t n) {
  return std::memcmp(a, b, n) == 0;
}

TEST(Level1Abi, AliasesBehaveAsTheirEntries) {
  const int n = 5, one = 1, two = 2;
  const float x[5] = {1.5f, -2, 3.25f, 1e-3f, -7};
  float y1[5] = {1, 2, 3, 4, 5}, y2[5] = {1, 2, 3, 4, 5};
  const float a = 0.3f;
  saxpy(&n, &a, x, &one, y1, &one);
  SAXPY(&n, &a, x, &one, y2, &one);
  EXPECT_TRUE(same_bits(y1, y2, sizeof y1));
  EXPECT_EQ(sdot(&n, x, &one, y1, &one), SDOT(&n, x, &one, y1, &one));
  sscal(&n, &a, y1, &one);
  SSCAL(&n, &a, y2, &one);
  EXPECT_TRUE(same_bits(y1, y2, sizeof y1));
  SCOPY(&n, x, &one, y2, &one);
  EXPECT_TRUE(same_bits(x, y2, sizeof x));
  EXPECT_EQ(SNRM2(&n, x, &one), snrm2(&n, x, &one));

  // dnrm2 and dznrm2 are the single-precision routines under another name.
  static_assert(std::is_same_v<decltype(dnrm2(&n, x, &one)), float>);
  EXPECT_EQ(dnrm2(&n, x, &one), snrm2(&n, x, &one));
  EXPECT_FLOAT_EQ(dnrm2(&two, x, &two), std::sqrt(1.5f * 1.5f + 3.25f * 3.25f));
  const orb_complex8 z[3] = {{3, 4}, {0, -12}, {1e-20f, 0}};
  const int three = 3;
  EXPECT_EQ(dznrm2(&three, z, &one), scnrm2(&three, z, &one));
  EXPECT_FLOAT_EQ(scnrm2(&three, z, &one), 13);

  double d1[3] = {1, 2, 3}, d2[3] = {1, 2, 3};
  const double da = 1.0 / 3;
  DSCAL(&three, &da, d1, &one);
  dscal(&three, &da, d2, &one);
  EXPECT_TRUE(same_bits(d1, d2, sizeof d1));
  double e1[3] = {4, 5, 6};
  dswap(&three, d1, &one, e1, &one);
  DSWAP(&three, d1, &one, e1, &one);
  EXPECT_TRUE(same_bits(d1, d2, sizeof d1));
  EXPECT_EQ(idamax(&three, e1, &one), IDAMAX(&three, e1, &one));
  orb_complex16 w1[2] = {{1, 2}, {3, -4}}, w2[2] = {{1, 2}, {3, -4}};
  const orb_complex16 za = {0.5, 0.25};
  zscal(&two, &za, w1, &one);
  ZSCAL(&two, &za, w2, &one);
  EXPECT_TRUE(same_bits(w1, w2, sizeof w1));
  EXPECT_EQ(izamax(&two, w1, &one), IZAMAX(&two, w1, &one));
  zswap(&one, w1, &one, w2 + 1, &one);
  ZSWAP(&one, w1, &one, w2 + 1, &one);
  EXPECT_TRUE(same_bits(w1, w2, sizeof w1));
}

// The upper-case double routines compute in double precision.
TEST(Level1Abi, DoubleRoutinesComputeInDouble) {
  const int n = 3, one = 1;
  double x[3] = {1, 1 + 1e-12, 1 - 1e-12};
  EXPECT_EQ(IDAMAX(&n, x, &one), 2);
  const double third = 1.0 / 3;
  DSCAL(&n, &third, x, &one);
  EXPECT_EQ(x[0], 1.0 / 3);
  double y[3];
  dcopy(&n, x, &one, y, &one);
  EXPECT_TRUE(same_bits(x, y, sizeof x));
  orb_complex16 z[3] = {{1, 0}, {0, -1 - 1e-12}, {-1, 0}};
  EXPECT_EQ(IZAMAX(&n, z, &one), 2);
  ZDSCAL(&n, &third, z, &one);
  EXPECT_EQ(z[0].re, 1.0 / 3);
  EXPECT_EQ(z[1].im, third * (-1 - 1e-12));
  orb_complex16 w[3];
  zcopy(&n, z, &one, w, &one);
  EXPECT_TRUE(same_bits(z, w, sizeof z));
  // ZROT: x := c x + s y, y := c y - conj(s) x.
  orb_complex16 p = {1, 2}, q = {3, -1};
  const double c = 0.6;
  const orb_complex16 s = {0, 0.8};
  ZROT(&one, &p, &one, &q, &one, &c, &s);
  EXPECT_DOUBLE_EQ(p.re, 0.6 * 1 + 0.8 * 1);  // s q = (0.8, 2.4)
  EXPECT_DOUBLE_EQ(p.im, 0.6 * 2 + 2.4);
  EXPECT_DOUBLE_EQ(q.re, 0.6 * 3 - 1.6);  // conj(s) p = (1.6, -0.8)
  EXPECT_DOUBLE_EQ(q.im, 0.6 * -1 - -0.8);
}

// Complex dot products store their value through the first argument, and
// only there.
TEST(Level1Abi, ComplexResultsThroughThePointer) {
  const int n = 2, one = 1, nz = 2, zero = 0;
  const orb_complex8 x[2] = {{1, 2}, {3, -1}}, y[2] = {{2, 1}, {-1, 1}};
  orb_complex8 r[2] = {{9, 9}, {9, 9}};
  cdotu(r, &n, x, &one, y, &one);  // (1+2i)(2+i) + (3-i)(-1+i) = 5i - 2 + 4i
  EXPECT_EQ(r[0].re, -2);
  EXPECT_EQ(r[0].im, 9);
  EXPECT_EQ(r[1].re, 9);
  cdotc(r, &n, x, &one, y, &one);  // (1-2i)(2+i) + (3+i)(-1+i) = 4 - 3i - 4 + 2i
  EXPECT_EQ(r[0].re, 0);
  EXPECT_EQ(r[0].im, -1);
  const int indx[2] = {2, 1};
  cdotui(r, &nz, x, indx, y);  // (1+2i)(-1+i) + (3-i)(2+i) = -3 - i + 7 + i
  EXPECT_EQ(r[0].re, 4);
  EXPECT_EQ(r[0].im, 0);
  cdotci(r, &nz, x, indx, y);  // (1-2i)(-1+i) + (3+i)(2+i) = 1 + 3i + 5 + 5i
  EXPECT_EQ(r[0].re, 6);
  EXPECT_EQ(r[0].im, 8);
  cdotc(r, &zero, x, &one, y, &one);
  EXPECT_EQ(r[0].re, 0);
  EXPECT_EQ(r[0].im, 0);
  EXPECT_EQ(r[1].im, 9);
}

// The edge cases of the published contracts, through the exported names.
TEST(Level1Abi, QuickReturns) {
  const int zero = 0, neg = -1, one = 1;
  const float x[2] = {1, 2};
  float y[2] = {3, 4};
  const float a = 2;
  EXPECT_EQ(sdot(&zero, x, &one, y, &one), 0.0f);
  EXPECT_EQ(isamax(&zero, x, &one), 0);
  EXPECT_EQ(isamin(&neg, x, &one), 0);
  EXPECT_EQ(sdoti(&zero, x, &one, y), 0.0f);
  saxpy(&neg, &a, x, &one, y, &one);
  saxpyi(&zero, &a, x, &one, y);
  EXPECT_EQ(y[0], 3);
  EXPECT_EQ(y[1], 4);
}

// The routines that the reference test programs do not cover.
TEST(Level1Abi, RoutinesBeyondTheReferenceTests) {
  const int one = 1, three = 3;
  orb_complex8 ca = {3, 0}, cs;
  const orb_complex8 cb = {0, 4};
  float c;
  crotg(&ca, &cb, &c, &cs);  // c = 3/5, s = (f/|f|) conj(g)/5, r = 5
  EXPECT_FLOAT_EQ(ca.re, 5);
  EXPECT_FLOAT_EQ(c, 0.6f);
  EXPECT_FLOAT_EQ(cs.im, -0.8f);
  const float s = 0.8f;
  orb_complex8 cx[1] = {{1, 1}}, cy[1] = {{2, 0}};
  csrot(&one, cx, &one, cy, &one, &c, &s);
  EXPECT_FLOAT_EQ(cx[0].re, 0.6f + 1.6f);
  EXPECT_FLOAT_EQ(cy[0].im, -0.8f);
  const float v[3] = {-2, 0.5f, -0.5f};
  EXPECT_EQ(isamin(&three, v, &one), 2);
  const orb_complex8 z[3] = {{1, -2}, {0.5f, 0}, {0, -0.5f}};
  EXPECT_EQ(icamin(&three, z, &one), 2);
  // The sparse routines: positions are 1-based.
  const int two = 2, indx[2] = {3, 1};
  const float full[3] = {1, 2, 3}, two_f = 2;
  float packed[2], back[3] = {0, 0, 0};
  sgthr(&two, full, packed, indx);
  EXPECT_TRUE(packed[0] == 3 && packed[1] == 1);
  ssctr(&two, packed, indx, back);
  EXPECT_TRUE(back[0] == 1 && back[1] == 0 && back[2] == 3);
  saxpyi(&two, &two_f, packed, indx, back);
  EXPECT_TRUE(back[0] == 3 && back[1] == 0 && back[2] == 9);
  EXPECT_EQ(sdoti(&two, packed, indx, full), 10);
  const orb_complex8 cfull[2] = {{1, 2}, {3, 4}}, ctwo = {0, 1};
  const int at[1] = {2};
  orb_complex8 cpacked[1], cback[2] = {{0, 0}, {1, 1}};
  cgthr(&one, cfull, cpacked, at);
  EXPECT_TRUE(cpacked[0].re == 3 && cpacked[0].im == 4);
  csctr(&one, cpacked, at, cback);
  caxpyi(&one, &ctwo, cpacked, at, cback);  // (3, 4) + i (3, 4)
  EXPECT_TRUE(cback[1].re == -1 && cback[1].im == 7 && cback[0].re == 0);
}

}  // namespace
