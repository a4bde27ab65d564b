#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <vector>

#include "orb.h"

namespace {

using cplxf = std::complex<float>;

struct Reference {
  int func, kode;
  double re, im, fnu, n;
  double values[8];
};

// scipy.special at the same single-precision arguments
// (make_bessel_reference.py).
const Reference kReference[] = {
#include "bessel_reference.inc"
};

enum Func { kI, kK, kJ, kY, kH1, kH2, kAi, kAiPrime, kBi, kBiPrime };

struct Result {
  std::vector<cplxf> cy;
  int nz = -1, ierr = -1;
};

orb_complex8 pack(cplxf z) {
  return {z.real(), z.imag()};
}

Result call(int func, cplxf z, float fnu, int kode, int n) {
  Result r;
  r.cy.assign(n > 0 ? n : 1, cplxf(7.0f, 7.0f));
  const orb_complex8 zz = pack(z);
  auto *cy = reinterpret_cast<orb_complex8 *>(r.cy.data());
  switch (func) {
    case kI:
      CBESI(&zz, &fnu, &kode, &n, cy, &r.nz, &r.ierr);
      break;
    case kK:
      CBESK(&zz, &fnu, &kode, &n, cy, &r.nz, &r.ierr);
      break;
    case kJ:
      CBESJ(&zz, &fnu, &kode, &n, cy, &r.nz, &r.ierr);
      break;
    case kY: {
      std::vector<orb_complex8> work(n > 0 ? n : 1);
      CBESY(&zz, &fnu, &kode, &n, cy, &r.nz, work.data(), &r.ierr);
      break;
    }
    case kH1:
    case kH2: {
      const int m = func == kH1 ? 1 : 2;
      CBESH(&zz, &fnu, &kode, &m, &n, cy, &r.nz, &r.ierr);
      break;
    }
    case kAi:
    case kAiPrime: {
      const int id = func - kAi;
      CAIRY(&zz, &id, &kode, cy, &r.nz, &r.ierr);
      break;
    }
    default: {
      const int id = func - kBi;
      r.nz = 0;
      CBIRY(&zz, &id, &kode, cy, &r.ierr);
    }
  }
  return r;
}

TEST(BesselEntries, MatchReferenceAcrossQuadrantsOrdersAndScalings) {
  const double tolerance = std::ldexp(1.0, -22);
  int checked = 0;
  double worst[kBiPrime + 1] = {};
  int count[kBiPrime + 1] = {};
  for (const Reference &ref : kReference) {
    const cplxf z(float(ref.re), float(ref.im));
    const int n = int(ref.n);
    const Result r = call(ref.func, z, float(ref.fnu), ref.kode, n);
    ASSERT_EQ(r.ierr, 0) << ref.func << " z = " << z << " fnu = " << ref.fnu;
    EXPECT_EQ(r.nz, 0);
    for (int k = 0; k < n; ++k) {
      const std::complex<double> want(ref.values[2 * k], ref.values[2 * k + 1]);
      const std::complex<double> got(r.cy[k].real(), r.cy[k].imag());
      EXPECT_LE(std::abs(got - want), tolerance * std::abs(want))
          << "function " << ref.func << " kode " << ref.kode << " z = " << z << " order "
          << ref.fnu + k << " got " << got << " want " << want;
      worst[ref.func] = std::max(worst[ref.func], std::abs(got - want) / std::abs(want));
      ++count[ref.func], ++checked;
    }
  }
  EXPECT_GT(checked, 2000);
  static const char *const names[] = {"I", "K", "J", "Y", "H1", "H2", "Ai", "Ai'", "Bi", "Bi'"};
  for (int f = kI; f <= kBiPrime; ++f)
    std::printf("%-3s %4d values, worst relative error %.2e\n", names[f], count[f], worst[f]);
}

TEST(BesselEntries, RejectBadArgumentsWithoutTouchingTheValues) {
  const cplxf z(1.0f, 0.5f);
  for (int func = kI; func <= kH2; ++func) {
    EXPECT_EQ(call(func, z, -0.5f, 1, 1).ierr, 1) << func;  // negative order
    EXPECT_EQ(call(func, z, 1.0f, 3, 1).ierr, 1) << func;   // kode
    EXPECT_EQ(call(func, z, 1.0f, 1, 0).ierr, 1) << func;   // n
    const Result at_zero = call(func, cplxf(0.0f, 0.0f), 1.0f, 1, 2);
    EXPECT_EQ(at_zero.ierr, (func == kI || func == kJ) ? 0 : 1) << func;
    if (at_zero.ierr == 1) {
      EXPECT_EQ(at_zero.cy[0], cplxf(7.0f, 7.0f));
    }
  }
  // The kind of the Hankel function must be 1 or 2.
  const orb_complex8 zz = pack(z);
  const float fnu = 0.0f;
  const int kode = 1, m = 3, n = 1;
  orb_complex8 cy{7.0f, 7.0f};
  int nz = -1, ierr = -1;
  CBESH(&zz, &fnu, &kode, &m, &n, &cy, &nz, &ierr);
  EXPECT_EQ(ierr, 1);
  // Airy: id must be 0 or 1, kode 1 or 2.
  for (int func = kAi; func <= kBiPrime; func += 2) {
    const orb_complex8 w = pack(z);
    const int bad_id = 2, good_id = 0, bad_kode = 0;
    EXPECT_EQ(func == kAi ? (CAIRY(&w, &bad_id, &kode, &cy, &nz, &ierr), ierr)
                          : (CBIRY(&w, &bad_id, &kode, &cy, &ierr), ierr),
              1);
    EXPECT_EQ(func == kAi ? (CAIRY(&w, &good_id, &bad_kode, &cy, &nz, &ierr), ierr)
                          : (CBIRY(&w, &good_id, &bad_kode, &cy, &ierr), ierr),
              1);
  }
  // At the origin I_0 = J_0 = 1 and higher orders vanish without counting
  // as underflow.
  const Result i0 = call(kI, cplxf(0.0f, 0.0f), 0.0f, 1, 3);
  EXPECT_EQ(i0.nz, 0);
  EXPECT_EQ(i0.cy[0], cplxf(1.0f, 0.0f));
  EXPECT_EQ(i0.cy[2], cplxf(0.0f, 0.0f));
}

TEST(BesselEntries, OverflowUnderflowAndLossOfSignificance) {
  // I_0(100) ~ e^100 / 25 overflows; scaled it is representable.
  EXPECT_EQ(call(kI, cplxf(100.0f, 0.0f), 0.0f, 1, 2).ierr, 2);
  Result scaled = call(kI, cplxf(100.0f, 0.0f), 0.0f, 2, 2);
  EXPECT_EQ(scaled.ierr, 0);
  EXPECT_NEAR(scaled.cy[0].real(), 0.03994437929909668, 1e-8);
  // J_0(100i) = I_0(100): the same overflow through the rotation.
  EXPECT_EQ(call(kJ, cplxf(0.0f, 100.0f), 0.0f, 1, 1).ierr, 2);
  // K near the origin grows without bound with the order.
  EXPECT_EQ(call(kK, cplxf(1e-3f, 0.0f), 40.0f, 1, 1).ierr, 2);
  EXPECT_EQ(call(kY, cplxf(1e-3f, 0.0f), 40.0f, 1, 1).ierr, 2);

  // K_v(100) ~ e^-100: every order underflows, the scaled form does not.
  Result k = call(kK, cplxf(100.0f, 0.0f), 0.0f, 1, 3);
  EXPECT_EQ(k.ierr, 0);
  EXPECT_EQ(k.nz, 3);
  for (const cplxf &v : k.cy) EXPECT_EQ(v, cplxf(0.0f, 0.0f));
  EXPECT_EQ(call(kK, cplxf(100.0f, 0.0f), 0.0f, 2, 3).nz, 0);
  // I_v(1) falls fast with the order: the tail of the sequence underflows.
  Result i = call(kI, cplxf(1.0f, 0.0f), 20.0f, 1, 12);
  EXPECT_EQ(i.ierr, 0);
  ASSERT_GT(i.nz, 0);
  ASSERT_LT(i.nz, 12);
  for (int j = 0; j < 12; ++j) {
    EXPECT_EQ(i.cy[j] == cplxf(0.0f, 0.0f), j >= 12 - i.nz) << j;
  }

  // Ai decays and Bi grows along the positive axis: Ai(60) ~ e^-310
  // underflows, Bi(60) overflows; both scaled forms are representable.
  Result ai = call(kAi, cplxf(60.0f, 0.0f), 0.0f, 1, 1);
  EXPECT_EQ(ai.ierr, 0);
  EXPECT_EQ(ai.nz, 1);
  EXPECT_EQ(ai.cy[0], cplxf(0.0f, 0.0f));
  EXPECT_EQ(call(kAi, cplxf(60.0f, 0.0f), 0.0f, 2, 1).nz, 0);
  EXPECT_EQ(call(kBi, cplxf(60.0f, 0.0f), 0.0f, 1, 1).ierr, 2);
  EXPECT_EQ(call(kBi, cplxf(60.0f, 0.0f), 0.0f, 2, 1).ierr, 0);
  // The Airy limits are the 2/3 powers: 2^(44/3) ~ 26007 and its root ~ 161.
  for (int func = kAi; func <= kBiPrime; ++func) {
    EXPECT_EQ(call(func, cplxf(-170.0f, 0.0f), 0.0f, 2, 1).ierr, 3) << func;
    EXPECT_EQ(call(func, cplxf(0.0f, 3e4f), 0.0f, 2, 1).ierr, 4) << func;
  }

  // |z| or the largest order above sqrt(0.5/tol) = 2048: values with reduced
  // accuracy; above 0.5/tol = 2^22: none.
  for (int func = kI; func <= kH2; ++func) {
    Result partial = call(func, cplxf(0.0f, 3000.0f), 0.0f, 2, 1);
    EXPECT_EQ(partial.ierr, 3) << func;
    EXPECT_NE(partial.cy[0], cplxf(7.0f, 7.0f)) << func;
    // A large order: I and J underflow (still class 3), K, Y, H overflow.
    const Result order = call(func, cplxf(3.0f, 1.0f), 2047.0f, 2, 3);
    EXPECT_EQ(order.ierr, (func == kI || func == kJ) ? 3 : 2) << func;
    Result none = call(func, cplxf(5e6f, 1.0f), 0.0f, 2, 1);
    EXPECT_EQ(none.ierr, 4) << func;
    EXPECT_EQ(none.nz, 0) << func;
    EXPECT_EQ(none.cy[0], cplxf(7.0f, 7.0f)) << func;
  }
}

}  // namespace
