// Reordering of the complex Schur form (xTREXC): neighbouring diagonal
// elements swap by one plane rotation each, chosen so the rotated 2x2 block
// stays upper triangular with its diagonal exchanged.
#include <cmath>
#include <complex>
#include <cstddef>

#include "lapack/schur_small.h"

namespace orb::lapack {

namespace {

using C = std::complex<float>;

// A rotation [c s; -conj(s) c] with c real that zeroes g below f.
void rotation(C f, C g, float *c, C *s) {
  if (g == C(0)) {
    *c = 1;
    *s = 0;
    return;
  }
  const std::complex<double> fd(f), gd(g);
  const double fa = std::abs(fd), ga = std::abs(gd);
  if (fa == 0) {
    *c = 0;
    *s = C(std::conj(gd) / ga);
    return;
  }
  const double norm = std::hypot(fa, ga);
  *c = static_cast<float>(fa / norm);
  *s = C((fd / fa) * std::conj(gd) / norm);
}

// x := c x + s y, y := c y - conj(s) x for n pairs at strides incx, incy.
void rotate(int n, C *x, std::ptrdiff_t incx, C *y, std::ptrdiff_t incy, float c, C s) {
  for (int i = 0; i < n; ++i) {
    const C xi = x[i * incx], yi = y[i * incy];
    x[i * incx] = c * xi + s * yi;
    y[i * incy] = c * yi - std::conj(s) * xi;
  }
}

}  // namespace

void trexc(bool wantq, int n, C *t, int ldt, C *q, int ldq, int ifst, int ilst) {
  if (n <= 1 || ifst == ilst) return;
  auto T = [&](int i, int j) -> C & { return t[i + static_cast<std::ptrdiff_t>(j) * ldt]; };
  // Swap the diagonal elements at k, k + 1, for k along the way.
  auto swap_at = [&](int k) {
    const C t11 = T(k, k), t22 = T(k + 1, k + 1);
    float c;
    C s;
    rotation(T(k, k + 1), t22 - t11, &c, &s);
    if (k + 2 < n) rotate(n - k - 2, &T(k, k + 2), ldt, &T(k + 1, k + 2), ldt, c, s);
    rotate(k, &T(0, k), 1, &T(0, k + 1), 1, c, std::conj(s));
    T(k, k) = t22;
    T(k + 1, k + 1) = t11;
    if (wantq)
      rotate(n, q + static_cast<std::ptrdiff_t>(k) * ldq, 1,
             q + static_cast<std::ptrdiff_t>(k + 1) * ldq, 1, c, std::conj(s));
  };
  if (ifst < ilst)
    for (int k = ifst; k < ilst; ++k) swap_at(k);
  else
    for (int k = ifst - 1; k >= ilst; --k) swap_at(k);
}

}  // namespace orb::lapack
