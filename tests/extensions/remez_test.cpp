#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "orb.h"

namespace {

constexpr double kPi = 3.141592653589793;

struct Reference {
  const char *name;
  int nfilt, type, nbands;
  std::vector<float> edge, fx, wtx;
  std::vector<double> h;
};

const Reference kReference[] = {
#include "remez_reference.inc"
};

struct Result {
  std::vector<float> h, dev, ext;
  int ierr = -99;
};

Result design(int nfilt, int type, const std::vector<float> &edge, const std::vector<float> &fx,
              const std::vector<float> &wtx, int lgrid = 16) {
  Result r;
  r.h.assign(nfilt, 0.0f);
  r.dev.assign(fx.size(), 0.0f);
  r.ext.assign(nfilt / 2 + 2, -1.0f);
  const int nbands = static_cast<int>(fx.size());
  REMEZ(&nfilt, &type, &nbands, &lgrid, edge.data(), fx.data(), wtx.data(), r.h.data(),
        r.dev.data(), r.ext.data(), &r.ierr);
  return r;
}

// The real amplitude of a linear-phase response: H(f) e^{i pi (n-1) f}, or
// that over i for an antisymmetric one.
double amplitude(const std::vector<float> &h, int type, double f) {
  const double c = (h.size() - 1) / 2.0;
  double s = 0;
  for (std::size_t n = 0; n < h.size(); ++n) {
    const double w = 2 * kPi * f * (c - double(n));
    s += h[n] * (type == 1 ? std::cos(w) : std::sin(w));
  }
  return s;
}

TEST(Remez, DesignsMatchScipy) {
  for (const Reference &ref : kReference) {
    const Result r = design(ref.nfilt, ref.type, ref.edge, ref.fx, ref.wtx);
    ASSERT_EQ(r.ierr, 0) << ref.name;
    double scale = 0;
    for (double v : ref.h) scale = std::max(scale, std::abs(v));
    for (int i = 0; i < ref.nfilt; ++i)
      EXPECT_NEAR(r.h[i], ref.h[i], 2e-5 * scale) << ref.name << " tap " << i;
  }
}

// Over every band the weighted error never exceeds the levelled deviation
// (up to the grid's resolution: between grid points a steep ripple beside a
// band edge overshoots by a few per cent, as SciPy's own design does), reaches it with alternating
// signs at the extremal frequencies, and each band's deviation is that over its weight.
TEST(Remez, ErrorIsEquiripple) {
  for (const Reference &ref : kReference) {
    const Result r = design(ref.nfilt, ref.type, ref.edge, ref.fx, ref.wtx);
    ASSERT_EQ(r.ierr, 0) << ref.name;
    const double dev = r.dev[0] * ref.wtx[0];
    for (int b = 0; b < ref.nbands; ++b)
      EXPECT_NEAR(r.dev[b] * ref.wtx[b], dev, 1e-6 * dev) << ref.name;
    auto werr = [&](double f, int b) {
      const double want = ref.type == 2 ? ref.fx[b] * f : ref.fx[b];
      const double wt = ref.type == 2 && ref.fx[b] > 0 ? ref.wtx[b] / f : ref.wtx[b];
      return wt * (amplitude(r.h, ref.type, f) - want);
    };
    auto band_of = [&](double f) {
      for (int b = 0; b < ref.nbands; ++b)
        if (f >= ref.edge[2 * b] - 1e-6 && f <= ref.edge[2 * b + 1] + 1e-6) return b;
      return -1;
    };
    for (int b = 0; b < ref.nbands; ++b) {
      // Antisymmetric responses vanish at 0 (and odd ones at 0.5): stay clear.
      double lo = ref.edge[2 * b], hi = ref.edge[2 * b + 1];
      if (ref.type != 1) lo = std::max(lo, 0.02), hi = std::min(hi, 0.48);
      for (int k = 0; k <= 2000; ++k) {
        const double f = lo + (hi - lo) * k / 2000;
        EXPECT_LE(std::abs(werr(f, b)), 1.05 * dev) << ref.name << " f " << f;
      }
    }
    const int nz = ref.nfilt / 2 + (ref.type == 1 && ref.nfilt % 2 ? 2 : 1);
    double previous = 0;
    for (int j = 0; j < nz; ++j) {
      const double f = r.ext[j];
      ASSERT_GE(band_of(f), 0) << ref.name << " extremal " << j;
      const double e = werr(f, band_of(f));
      EXPECT_NEAR(std::abs(e), dev, 0.002 * dev + 2e-6) << ref.name << " extremal " << j;
      if (j > 0) {
        EXPECT_GT(f, r.ext[j - 1]) << ref.name;
        EXPECT_LT(e * previous, 0) << ref.name << " extremal " << j;
      }
      previous = e;
    }
  }
}

TEST(Remez, RejectedInputsGiveTheirCodes) {
  const std::vector<float> edge = {0.0f, 0.2f, 0.3f, 0.5f}, fx = {1, 0}, wtx = {1, 1};
  EXPECT_EQ(design(2, 1, edge, fx, wtx).ierr, -1);
  EXPECT_EQ(design(31, 4, edge, fx, wtx).ierr, -2);
  EXPECT_EQ(design(31, 0, edge, fx, wtx).ierr, -2);
  EXPECT_EQ(design(31, 1, {}, {}, {}).ierr, -3);
  EXPECT_EQ(design(31, 1, {0.0f, 0.3f, 0.2f, 0.5f}, fx, wtx).ierr, -5);
  EXPECT_EQ(design(31, 1, {0.0f, 0.2f, 0.3f, 0.6f}, fx, wtx).ierr, -5);
  EXPECT_EQ(design(31, 1, {-0.1f, 0.2f, 0.3f, 0.5f}, fx, wtx).ierr, -5);
  EXPECT_EQ(design(31, 1, {0.0f, 0.2f, 0.2f, 0.5f}, fx, wtx).ierr, -5);
  EXPECT_EQ(design(31, 1, edge, fx, wtx, 1 << 20).ierr, -4);
  EXPECT_EQ(design(31, 1, edge, {1, NAN}, wtx).ierr, -6);
  EXPECT_EQ(design(31, 1, edge, fx, {1, 0}).ierr, -7);
  EXPECT_EQ(design(31, 1, edge, fx, {-1, 1}).ierr, -7);
  // Narrow bands and a coarse grid leave fewer grid points than the exchange
  // needs.
  EXPECT_EQ(design(101, 1, {0.0f, 0.001f, 0.499f, 0.5f}, fx, wtx, 1).ierr, -1);
  // The smallest length designs, and a grid of density 1 (about as many
  // points as extremal frequencies).
  EXPECT_EQ(design(3, 1, edge, fx, wtx).ierr, 0);
  EXPECT_EQ(design(3, 3, {0.1f, 0.4f}, {1}, {1}).ierr, 0);
  EXPECT_EQ(design(4, 2, {0.0f, 0.5f}, {1}, {1}).ierr, 0);
  EXPECT_EQ(design(15, 1, {0.0f, 0.25f, 0.3f, 0.5f}, fx, wtx, 2).ierr, 0);
  // A jump from 1 to 0 with no room between the bands: the best the weights
  // allow splits it as e1 + e2 = 1 with e1 = 1e4 e2.
  const Result r = design(301, 1, {0.0f, 0.2f, 0.2000001f, 0.5f}, fx, {1, 1e4f});
  ASSERT_EQ(r.ierr, 0);
  EXPECT_NEAR(r.dev[0], 1 / (1 + 1e-4), 1e-5);
  EXPECT_NEAR(r.dev[1], 1e-4 / (1 + 1e-4), 1e-9);
}

}  // namespace
