// Equiripple linear-phase FIR design by the Parks-McClellan exchange
// (McClellan, Parks and Rabiner 1973). The amplitude response of each of the
// four linear-phase cases is written as Q(f) P(f), P a cosine polynomial of
// nfcns terms; dividing the desired response by Q and multiplying the weight
// by Q turns the design into a weighted Chebyshev approximation by P on a
// dense grid of the bands, solved by the Remez exchange: P interpolates the
// desired values with alternating error +-dev on nfcns + 1 extremal
// frequencies, and each pass moves them to the alternating extrema of the
// error over the grid until they stay put. Everything is computed in double.
#include <algorithm>
#include <cmath>
#include <new>
#include <utility>
#include <vector>

#include "orb.h"

namespace orb::ext {
namespace {

constexpr double kPi = 3.141592653589793238462643383279502884;
constexpr int kMaxPasses = 100;
constexpr double kMaxGrid = 1 << 24;  // grid points (three doubles each)

struct Design {
  int nfilt = 0;
  int type = 1;           // 1 multiband, 2 differentiator, 3 Hilbert transformer
  bool negative = false;  // antisymmetric impulse response (types 2 and 3)
  bool odd = false;       // odd length
  int nfcns = 0;          // terms of the cosine polynomial P
};

// The dense grid: each band from its lower edge in steps of delf, its last
// point moved onto the upper edge; for antisymmetric filters f = 0 (where Q
// vanishes) is replaced by delf, and the point at 0.5 is dropped where Q
// vanishes there.
struct Grid {
  std::vector<double> f, des, wt;
};

double desired(const Design &d, double f, double fx) {
  return d.type == 2 ? fx * f : fx;
}

// A differentiator's weight is relative (divided by f) in bands whose desired
// slope is not zero.
double weight(const Design &d, double f, double fx, double wtx) {
  return d.type == 2 && fx >= 1e-4 ? wtx / f : wtx;
}

// Q(f) of the four linear-phase cases.
double q_factor(const Design &d, double f) {
  if (!d.negative) return d.odd ? 1.0 : std::cos(kPi * f);
  return d.odd ? std::sin(2 * kPi * f) : std::sin(kPi * f);
}

Grid make_grid(const Design &d, int nbands, const double *edge, const float *fx, const float *wtx,
               int density) {
  Grid g;
  const double delf = 0.5 / (double(density) * d.nfcns);
  for (int band = 0; band < nbands; ++band) {
    double f = edge[2 * band];
    const double top = edge[2 * band + 1];
    if (band == 0 && d.negative && f < delf) f = delf;
    const std::size_t first = g.f.size();
    for (; f <= top; f += delf) g.f.push_back(f);
    if (g.f.size() == first) g.f.push_back(top);  // a band narrower than delf
    g.f.back() = top;
    for (std::size_t i = first; i < g.f.size(); ++i) {
      g.des.push_back(desired(d, g.f[i], fx[band]));
      g.wt.push_back(weight(d, g.f[i], fx[band], wtx[band]));
    }
  }
  if (d.negative == d.odd && g.f.back() > 0.5 - delf) {
    g.f.pop_back();
    g.des.pop_back();
    g.wt.pop_back();
  }
  for (std::size_t i = 0; i < g.f.size(); ++i) {
    const double q = q_factor(d, g.f[i]);
    g.des[i] /= q;
    g.wt[i] *= q;
  }
  return g;
}

// The interpolant through the extremal points (x = cos 2 pi f) in barycentric
// form: P(x) = sum (w_j / (x - x_j)) y_j / sum w_j / (x - x_j).
struct Interpolant {
  std::vector<double> x, w, y;

  // w_j = 1 / prod_{k != j} 2 (x_j - x_k); the factors are taken in strides
  // so that the partial products neither overflow nor underflow.
  void set_nodes(std::vector<double> nodes) {
    x = std::move(nodes);
    const int n = static_cast<int>(x.size());
    const int stride = (n - 1) / 15 + 1;
    w.assign(n, 0.0);
    for (int j = 0; j < n; ++j) {
      double q = 1;
      for (int s = 0; s < stride; ++s)
        for (int k = s; k < n; k += stride)
          if (k != j) q *= 2 * (x[j] - x[k]);
      w[j] = 1 / q;
    }
  }

  // Outside the nodes' range the quotient form loses digits to the
  // cancellation in its denominator; there the product form
  // P(t) = l(t) sum w_j y_j / (2 (t - x_j)), l(t) = prod 2 (t - x_k), holds
  // them, l kept as a mantissa and a binary exponent.
  double extrapolate(double t) const {
    double l = 1;
    int scale = 0;
    double sum = 0;
    for (std::size_t j = 0; j < x.size(); ++j) {
      const double d = 2 * (t - x[j]);
      int e = 0;
      l = std::frexp(l * d, &e);
      scale += e;
      sum += w[j] * y[j] / d;
    }
    return std::ldexp(l * sum, scale);
  }

  double operator()(double t) const {
    double num = 0, den = 0;
    for (std::size_t j = 0; j < x.size(); ++j) {
      const double diff = t - x[j];
      if (diff == 0) return y[j];
      const double c = w[j] / diff;
      num += c * y[j];
      den += c;
    }
    return num / den;
  }
};

// One exchange. The error alternates in sign over the extremal points, with
// |e| = dev on each. Every point moves to the largest error of its own sign
// between its new left neighbour and its old right one (never below dev, the
// point itself being there); then an error of the other sign beyond either
// end that beats the far end's error shifts the whole set by one towards it.
std::vector<int> exchange(const std::vector<double> &e, const std::vector<int> &ext,
                          double first_sign) {
  const int n = static_cast<int>(e.size());
  const int nz = static_cast<int>(ext.size());
  std::vector<int> next(nz);
  double s = first_sign;
  int lo = 0;
  for (int j = 0; j < nz; ++j, s = -s) {
    const int hi = j + 1 < nz ? ext[j + 1] : n;
    int best = ext[j];
    for (int i = lo; i < hi; ++i)
      if (s * e[i] > s * e[best]) best = i;
    next[j] = best;
    lo = best + 1;
  }
  const double last_sign = nz % 2 == 1 ? first_sign : -first_sign;
  int below = -1, above = -1;
  for (int i = 0; i < next[0]; ++i)
    if (-first_sign * e[i] > 0 && (below < 0 || -first_sign * e[i] > -first_sign * e[below]))
      below = i;
  for (int i = next[nz - 1] + 1; i < n; ++i)
    if (-last_sign * e[i] > 0 && (above < 0 || -last_sign * e[i] > -last_sign * e[above]))
      above = i;
  const double low_gain = below < 0 ? 0 : std::abs(e[below]) - std::abs(e[next[nz - 1]]);
  const double high_gain = above < 0 ? 0 : std::abs(e[above]) - std::abs(e[next[0]]);
  if (low_gain > 0 && low_gain >= high_gain) {
    next.pop_back();
    next.insert(next.begin(), below);
  } else if (high_gain > 0) {
    next.erase(next.begin());
    next.push_back(above);
  }
  return next;
}

// The cosine coefficients a_k of P(f) = sum a_k cos(2 pi k f) from its
// values at f_j = j / (2 nfcns - 1) by the inverse cosine transform.
std::vector<double> cosine_coefficients(const Interpolant &p, int nfcns) {
  const double cn = 2.0 * nfcns - 1;
  std::vector<double> v(nfcns), a(nfcns);
  double lo = p.x[0], hi = p.x[0];
  for (double xj : p.x) lo = std::min(lo, xj), hi = std::max(hi, xj);
  for (int j = 0; j < nfcns; ++j) {
    const double t = std::cos(2 * kPi * j / cn);
    v[j] = t < lo || t > hi ? p.extrapolate(t) : p(t);
  }
  for (int k = 0; k < nfcns; ++k) {
    double s = 0;
    for (int j = 1; j < nfcns; ++j) s += v[j] * std::cos(2 * kPi * double(j) * k / cn);
    a[k] = (2 * s + v[0]) / cn * (k == 0 ? 1 : 2);
  }
  return a;
}

// The impulse response from the coefficients of P: the first half b_m =
// h[centre - m] collects the products Q(f) cos(2 pi k f) by frequency; the
// second half mirrors it (negated for antisymmetric filters).
void impulse_response(const Design &d, const std::vector<double> &a, float *h) {
  const int nf = d.nfcns;
  auto at = [&](int k) { return k >= 0 && k < nf ? a[k] : 0.0; };
  const int half = d.nfilt / 2;     // taps before the centre
  std::vector<double> first(half);  // first[i] = h[i]
  for (int m = 1; m <= half; ++m) {
    double b;
    if (!d.negative && d.odd)
      b = at(m) / 2;
    else if (!d.negative)
      b = (at(m - 1) + at(m)) / 4 + (m == 1 ? at(0) / 4 : 0);
    else if (d.odd)
      b = (at(m - 1) - at(m + 1)) / 4 + (m == 1 ? at(0) / 4 : 0);
    else
      b = (at(m - 1) - at(m)) / 4 + (m == 1 ? at(0) / 4 : 0);
    first[half - m] = b;
  }
  const double sign = d.negative ? -1 : 1;
  for (int i = 0; i < half; ++i) {
    h[i] = static_cast<float>(first[i]);
    h[d.nfilt - 1 - i] = static_cast<float>(sign * first[i]);
  }
  if (d.odd) h[half] = static_cast<float>(d.negative ? 0.0 : at(0));
}

int remez(int nfilt, int type, int nbands, int density, const float *edge_in, const float *fx,
          const float *wtx, float *h, float *deviation, float *extremal) {
  if (nfilt < 3) return -1;
  if (type < 1 || type > 3) return -2;
  if (nbands < 1) return -3;
  if (density <= 0) density = 16;
  // The grid holds about 2 density nfcns points per unit of band width.
  if (double(density) * nfilt > kMaxGrid) return -4;
  std::vector<double> edge(edge_in, edge_in + 2 * nbands);
  for (int i = 0; i < 2 * nbands; ++i) {
    if (!(edge[i] >= 0 && edge[i] <= 0.5)) return -5;
    if (i > 0 && !(edge[i] > edge[i - 1])) return -5;
  }
  for (int b = 0; b < nbands; ++b)
    if (!std::isfinite(fx[b])) return -6;
  for (int b = 0; b < nbands; ++b)
    if (!(wtx[b] > 0) || !std::isfinite(wtx[b])) return -7;

  Design d;
  d.nfilt = nfilt;
  d.type = type;
  d.negative = type != 1;
  d.odd = nfilt % 2 == 1;
  d.nfcns = nfilt / 2 + (d.odd && !d.negative ? 1 : 0);
  const int nz = d.nfcns + 1;
  const Grid g = make_grid(d, nbands, edge.data(), fx, wtx, density);
  const int ngrid = static_cast<int>(g.f.size());
  if (ngrid < nz) return -1;  // too long for the grid the bands give

  std::vector<double> xgrid(ngrid);
  for (int i = 0; i < ngrid; ++i) xgrid[i] = std::cos(2 * kPi * g.f[i]);

  // Start from extremal frequencies evenly spread over the grid.
  std::vector<int> ext(nz);
  for (int j = 0; j < nz; ++j) ext[j] = static_cast<int>(double(j) * (ngrid - 1) / d.nfcns);
  ext[nz - 1] = ngrid - 1;

  Interpolant p;
  std::vector<double> err(ngrid);
  double dev = 0, previous = 0;
  bool converged = false;
  for (int pass = 0; pass < kMaxPasses && !converged; ++pass) {
    std::vector<double> nodes(nz);
    for (int j = 0; j < nz; ++j) nodes[j] = xgrid[ext[j]];
    p.set_nodes(nodes);
    // The levelled deviation: sum w_j D_j / sum (-1)^j w_j / W_j.
    double num = 0, den = 0;
    for (int j = 0; j < nz; ++j) {
      num += p.w[j] * g.des[ext[j]];
      den += (j % 2 == 0 ? 1 : -1) * p.w[j] / g.wt[ext[j]];
    }
    dev = num / den;
    const double s0 = dev > 0 ? -1 : 1;  // sign of the error at the first node
    dev = std::abs(dev);
    p.y.resize(nz);
    for (int j = 0; j < nz; ++j)
      p.y[j] = g.des[ext[j]] + (j % 2 == 0 ? s0 : -s0) * dev / g.wt[ext[j]];
    // The deviation grows monotonically; a decrease means the arithmetic has
    // run out of digits.
    if (dev < previous * (1 - 1e-12)) return 1;
    previous = dev;
    for (int i = 0; i < ngrid; ++i) err[i] = g.wt[i] * (p(xgrid[i]) - g.des[i]);
    // On the extremal points the error is +-dev by construction; set it so,
    // free of the cancellation in P - D where dev is small against D.
    for (int j = 0; j < nz; ++j) err[ext[j]] = (j % 2 == 0 ? s0 : -s0) * dev;
    const std::vector<int> next = exchange(err, ext, s0);
    converged = next == ext;
    ext = next;
  }
  if (!converged) return 1;

  impulse_response(d, cosine_coefficients(p, d.nfcns), h);
  for (int b = 0; b < nbands; ++b) deviation[b] = static_cast<float>(dev / wtx[b]);
  for (int j = 0; j < nz; ++j) extremal[j] = static_cast<float>(g.f[ext[j]]);
  return 0;
}

}  // namespace
}  // namespace orb::ext

extern "C" {

ORB_API void REMEZ(const int *nfilt, const int *jtype, const int *nbands, const int *lgrid,
                   const float *edge, const float *fx, const float *wtx, float *h, float *deviat,
                   float *extrem, int *ierr) {
  try {
    *ierr = orb::ext::remez(*nfilt, *jtype, *nbands, *lgrid, edge, fx, wtx, h, deviat, extrem);
  } catch (const std::bad_alloc &) {
    *ierr = 2;
  }
}

}  // extern "C"
