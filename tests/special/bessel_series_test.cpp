#include <gtest/gtest.h>

#include <cmath>
#include <complex>

#include "special/bessel_series.h"

namespace {

using cplx = std::complex<double>;

struct Reference {
  double re, im, nu, kode, value_re, value_im;
};

// scipy.special.iv / ive over the series region (make_reference.py).
const Reference kReference[] = {
#include "series_reference.inc"
};

TEST(BesselSeriesI, MatchesTheReferenceInEveryQuadrantAndBothScalings) {
  for (const Reference &r : kReference) {
    const cplx z(r.re, r.im);
    ASSERT_TRUE(orb::special::series_i_applies(z, r.nu));
    cplx y;
    EXPECT_EQ(orb::special::series_i(z, r.nu, r.kode == 2, 1, &y), 0);
    const cplx want(r.value_re, r.value_im);
    EXPECT_LE(std::abs(y - want), 1e-12 * std::abs(want))
        << "z = " << z << " nu = " << r.nu << " kode = " << r.kode << " got " << y;
  }
}

TEST(BesselSeriesI, ASequenceAgreesWithSingleOrdersAndCountsUnderflows) {
  const cplx z(-0.8, 1.1);
  cplx seq[6];
  EXPECT_EQ(orb::special::series_i(z, 2.25, false, 6, seq), 0);
  for (int k = 0; k < 6; ++k) {
    cplx one;
    orb::special::series_i(z, 2.25 + k, false, 1, &one);
    EXPECT_EQ(seq[k], one) << k;
  }
  // (5e-7)^100 / 100! is far below the double range: both orders vanish.
  cplx tiny[2] = {1.0, 1.0};
  EXPECT_EQ(orb::special::series_i(cplx(1e-6, 0.0), 100.0, false, 2, tiny), 2);
  EXPECT_EQ(tiny[0], 0.0);
  EXPECT_EQ(tiny[1], 0.0);
  // I_0(0) = 1, I_nu(0) = 0 above.
  cplx at_zero[2];
  EXPECT_EQ(orb::special::series_i(0.0, 0.0, false, 2, at_zero), 0);
  EXPECT_EQ(at_zero[0], 1.0);
  EXPECT_EQ(at_zero[1], 0.0);
}

TEST(BesselSeriesI, RegionEndsWhereTheTermsStopShrinking) {
  EXPECT_TRUE(orb::special::series_i_applies(cplx(0.0, 2.0), 0.0));
  EXPECT_FALSE(orb::special::series_i_applies(cplx(3.0, 0.0), 0.0));
  EXPECT_TRUE(orb::special::series_i_applies(cplx(3.0, 0.0), 1.25));
  EXPECT_FALSE(orb::special::series_i_applies(cplx(0.0, 30.0), 100.0));
}

}  // namespace
