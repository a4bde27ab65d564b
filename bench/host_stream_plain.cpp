// The plain loops of the streaming benchmark: what a caller would write,
// compiled with -O3 -march=native (and no contraction, so they compute ORB's
// elements). Kept in their own translation unit so only they get those flags.
#include <cstddef>

#include "host_stream.h"

namespace orb::bench::plain {

void add_value(const float *s, float *d, float v, unsigned n) {
  for (unsigned i = 0; i < n; ++i) d[i] = s[i] + v;
}

void scale_by_value_c(const orb_complex8 *s, orb_complex8 *d, const orb_complex8 *v, unsigned n) {
  const float vr = v->re, vi = v->im;
  for (unsigned i = 0; i < n; ++i) {
    const float xr = s[i].re, xi = s[i].im;
    d[i].re = xr * vr - xi * vi;
    d[i].im = xr * vi + xi * vr;
  }
}

void div_vec_cc(const orb_complex8 *a, const orb_complex8 *b, orb_complex8 *d, unsigned n) {
  for (unsigned i = 0; i < n; ++i) {
    const float s = 1.0f / (b[i].re * b[i].re + b[i].im * b[i].im);
    d[i].re = (a[i].re * b[i].re + a[i].im * b[i].im) * s;
    d[i].im = (a[i].im * b[i].re - a[i].re * b[i].im) * s;
  }
}

void pack_strided(unsigned n, const orb_complex8 *s, int inc, orb_complex8 *d) {
  for (unsigned i = 0; i < n; ++i) d[i] = s[static_cast<std::ptrdiff_t>(i) * inc];
}

void unpack_strided(unsigned n, const orb_complex8 *s, orb_complex8 *d, int inc) {
  for (unsigned i = 0; i < n; ++i) d[static_cast<std::ptrdiff_t>(i) * inc] = s[i];
}

unsigned pack_by_mask(unsigned n, const float *s, float *d, const int *mask) {
  unsigned k = 0;
  for (unsigned i = 0; i < n; ++i)
    if (mask[i] > 0) d[k++] = s[i];
  return k;
}

unsigned cum_sum(const float *s, float *d, unsigned n) {
  float sum = 0.0f;
  for (unsigned i = 0; i < n; ++i) d[i] = sum = s[i] + sum;
  return n;
}

void pack_strided_real(int n, const float *a, int inc, float *y) {
  for (int i = 0; i < n; ++i) y[i] = a[static_cast<std::ptrdiff_t>(i) * inc];
}

void unpack_strided_real(int n, const float *a, float *y, int inc) {
  for (int i = 0; i < n; ++i) y[static_cast<std::ptrdiff_t>(i) * inc] = a[i];
}

}  // namespace orb::bench::plain
