// The level-2 routines called through the exported names, aliases included,
// on small problems worked out by hand.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orb.h"

namespace {

using c8 = orb_complex8;
using c16 = orb_complex16;

template <class C>
bool eq(const C &v, double re, double im) {
  return v.re == re && v.im == im;
}

// A = [1 3; 2 4], x = (1, 1).
TEST(Level2Abi, GeneralProducts) {
  const int two = 2, one = 1;
  {
    const float a[] = {1, 2, 3, 4}, x[] = {1, 1}, al = 1, be = 0;
    float y[2];
    sgemv("N", &two, &two, &al, a, &two, x, &one, &be, y, &one, 1);
    EXPECT_EQ(y[0], 4);
    EXPECT_EQ(y[1], 6);
    sgemv("t", &two, &two, &al, a, &two, x, &one, &be, y, &one, 1);
    EXPECT_EQ(y[0], 3);
    EXPECT_EQ(y[1], 7);
  }
  for (auto *f : {&DGEMV, &dgemv}) {
    const double a[] = {1, 2, 3, 4}, x[] = {1, 1}, al = 2, be = 1;
    double y[2] = {1, -1};
    f("N", &two, &two, &al, a, &two, x, &one, &be, y, &one, 1);
    EXPECT_EQ(y[0], 9);
    EXPECT_EQ(y[1], 11);
  }
  // A = [1+i 3; 2 4-i]: A^H x = (3-i, 7+i), alpha = i gives (1+3i, -1+7i).
  {
    const c8 a[] = {{1, 1}, {2, 0}, {3, 0}, {4, -1}}, x[] = {{1, 0}, {1, 0}};
    const c8 al = {0, 1}, be = {0, 0};
    c8 y[2];
    cgemv("C", &two, &two, &al, a, &two, x, &one, &be, y, &one, 1);
    EXPECT_TRUE(eq(y[0], 1, 3) && eq(y[1], -1, 7));
  }
  for (auto *f : {&ZGEMV, &zgemv}) {
    const c16 a[] = {{1, 1}, {2, 0}, {3, 0}, {4, -1}}, x[] = {{1, 0}, {1, 0}};
    const c16 al = {0, 1}, be = {0, 0};
    c16 y[2];
    f("C", &two, &two, &al, a, &two, x, &one, &be, y, &one, 1);
    EXPECT_TRUE(eq(y[0], 1, 3) && eq(y[1], -1, 7));
  }
}

// x = (1, 2), y = (3, 4): x y^T = [3 4; 6 8]; for complex, i times i against
// i times conj(i).
TEST(Level2Abi, RankOneUpdates) {
  const int two = 2, one = 1;
  {
    const float x[] = {1, 2}, y[] = {3, 4}, al = 1;
    float a[4] = {};
    sger(&two, &two, &al, x, &one, y, &one, a, &two);
    EXPECT_EQ(std::vector<float>(a, a + 4), (std::vector<float>{3, 6, 4, 8}));
  }
  for (auto *f : {&DGER, &dger}) {
    const double x[] = {1, 2}, y[] = {3, 4}, al = 1;
    double a[4] = {};
    f(&two, &two, &al, x, &one, y, &one, a, &two);
    EXPECT_EQ(std::vector<double>(a, a + 4), (std::vector<double>{3, 6, 4, 8}));
  }
  const c8 i8 = {0, 1};
  c8 u = {0, 0}, c = {0, 0};
  cgeru(&one, &one, &i8, &i8, &one, &i8, &one, &u, &one);  // i * i * i
  cgerc(&one, &one, &i8, &i8, &one, &i8, &one, &c, &one);  // i * i * conj(i)
  EXPECT_TRUE(eq(u, 0, -1) && eq(c, 0, 1));
  const c16 i16 = {0, 1}, r16 = {1, 0};
  c16 zu = {0, 0}, zc = {0, 0}, zs = {0, 0};
  ZGERU(&one, &one, &r16, &i16, &one, &i16, &one, &zu, &one);
  zgerc(&one, &one, &r16, &i16, &one, &i16, &one, &zc, &one);
  ZSYR("U", &one, &r16, &i16, &one, &zs, &one, 1);  // symmetric: x x^T, no conjugate
  EXPECT_TRUE(eq(zu, -1, 0) && eq(zc, 1, 0) && eq(zs, -1, 0));
}

// Upper triangles [1 2; . 3]; the lower element holds 99 and is not used.
TEST(Level2Abi, SymmetricAndHermitian) {
  const int two = 2, one = 1;
  {
    const float a[] = {1, 99, 2, 3}, x[] = {1, 1}, al = 1, be = 0;
    float y[2];
    ssymv("U", &two, &al, a, &two, x, &one, &be, y, &one, 1);
    EXPECT_EQ(y[0], 3);
    EXPECT_EQ(y[1], 5);
    float s[] = {0, 99, 0, 0};
    const float v[] = {1, 2};
    ssyr("U", &two, &al, v, &one, s, &two, 1);
    EXPECT_EQ(std::vector<float>(s, s + 4), (std::vector<float>{1, 99, 2, 4}));
    const float e1[] = {1, 0}, e2[] = {0, 1};
    float s2[] = {0, 99, 0, 0};
    ssyr2("u", &two, &al, e1, &one, e2, &one, s2, &two, 1);
    EXPECT_EQ(std::vector<float>(s2, s2 + 4), (std::vector<float>{0, 99, 1, 0}));
  }
  for (auto *f : {&DSYR, &dsyr}) {
    const double v[] = {1, 2}, al = 1;
    double s[] = {0, 0, 99, 0};
    f("L", &two, &al, v, &one, s, &two, 1);
    EXPECT_EQ(std::vector<double>(s, s + 4), (std::vector<double>{1, 2, 99, 4}));
  }
  // [1 2+i; 2-i 3], diagonal imaginary parts ignored.
  const c8 a[] = {{1, 9}, {99, 99}, {2, 1}, {3, 9}}, x[] = {{1, 0}, {1, 0}};
  const c8 al = {1, 0}, be = {0, 0};
  c8 y[2];
  chemv("U", &two, &al, a, &two, x, &one, &be, y, &one, 1);
  EXPECT_TRUE(eq(y[0], 3, 1) && eq(y[1], 5, -1));
  // x x^H with x = (1+i, i): [2 1-i; . 1], the diagonal made real.
  const float ar = 1;
  const c8 v[] = {{1, 1}, {0, 1}};
  c8 h[] = {{0, 5}, {99, 99}, {0, 0}, {0, 5}};
  cher("U", &two, &ar, v, &one, h, &two, 1);
  EXPECT_TRUE(eq(h[0], 2, 0) && eq(h[1], 99, 99) && eq(h[2], 1, -1) && eq(h[3], 1, 0));
  for (auto *f : {&ZHER, &zher}) {
    const double dr = 1;
    const c16 zv[] = {{1, 1}, {0, 1}};
    c16 zh[] = {{0, 5}, {99, 99}, {0, 0}, {0, 5}};
    f("U", &two, &dr, zv, &one, zh, &two, 1);
    EXPECT_TRUE(eq(zh[0], 2, 0) && eq(zh[2], 1, -1) && eq(zh[3], 1, 0));
  }
  // x y^H + y x^H with x = e1, y = i e2: the (1, 2) element is -i.
  const c8 e1[] = {{1, 0}, {0, 0}}, ie2[] = {{0, 0}, {0, 1}};
  c8 h2[4] = {};
  cher2("U", &two, &al, e1, &one, ie2, &one, h2, &two, 1);
  EXPECT_TRUE(eq(h2[0], 0, 0) && eq(h2[2], 0, -1) && eq(h2[3], 0, 0));
}

TEST(Level2Abi, Triangular) {
  const int two = 2, one = 1;
  const float a[] = {1, 99, 2, 3};
  float x[] = {1, 1};
  strmv("U", "N", "N", &two, a, &two, x, &one, 1, 1, 1);
  EXPECT_EQ(x[0], 3);
  EXPECT_EQ(x[1], 3);
  strsv("U", "N", "N", &two, a, &two, x, &one, 1, 1, 1);
  EXPECT_EQ(x[0], 1);
  EXPECT_EQ(x[1], 1);
  // Unit upper [1 i; . 1], its diagonal not read: A^H (1, 1) = (1, 1-i).
  const c8 c[] = {{7, 7}, {99, 99}, {0, 1}, {7, 7}};
  c8 v[] = {{1, 0}, {1, 0}};
  ctrmv("U", "C", "U", &two, c, &two, v, &one, 1, 1, 1);
  EXPECT_TRUE(eq(v[0], 1, 0) && eq(v[1], 1, -1));
  ctrsv("U", "C", "U", &two, c, &two, v, &one, 1, 1, 1);
  EXPECT_TRUE(eq(v[0], 1, 0) && eq(v[1], 1, 0));
}

// An alias reports with its entry's name.
TEST(Level2Abi, AliasesReportWithTheEntryName) {
  const int two = 2, one = 1, bad = 1;
  const double a[4] = {}, x[2] = {}, al = 1, be = 0;
  double y[2] = {5, 5};
  testing::internal::CaptureStdout();
  dgemv("N", &two, &two, &al, a, &bad, x, &one, &be, y, &one, 1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "ORB ERROR: Parameter 6 was incorrect on entry to DGEMV \n");
  EXPECT_EQ(y[0], 5);
}

}  // namespace
