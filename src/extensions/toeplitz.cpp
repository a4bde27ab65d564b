// Toeplitz systems A x = b by the Levinson-Trench recursion in O(m^2): the
// solution of the leading k x k system is grown one order at a time together
// with the forward and backward vectors f, g of that minor (A_k f = e_1,
// A_k g = e_k). The vectors are kept in the caller's work arrays in the
// working precision; every inner product and the recursion's scalars are
// formed in double (double complex), which keeps the residual close to that
// of a pivoted dense solve for the well-conditioned matrices the recursion
// is meant for.
#include <cmath>
#include <complex>

#include "common/scalar.h"
#include "orb.h"
#include "service/report.h"

namespace orb::ext {
namespace {

// A leading minor whose pivot vanishes (exactly, or through overflow) stops
// the recursion: x is set to zero and the matrix is reported as bad argument 1.
template <class W>
bool is_bad_pivot(const W &d) {
  return d == W(0) || !std::isfinite(std::abs(d));
}

// a1: t_0 .. t_{m-1} (first row), a2: t_{-1} .. t_{-(m-1)} (first column
// below the diagonal), A(i, j) = t_{j-i}. f and g hold m - 1 elements; x may
// be b.
template <class T>
void toeplitz_solve(const char *name, const T *a1, const T *a2, const T *b, T *x, T *f, T *g,
                    int m) {
  using W = wide_t<T>;
  if (m < 1) {
    const int code = 7;
    report(name, &code, 5);
    return;
  }
  auto fail = [&] {
    for (int i = 0; i < m; ++i) x[i] = T(0);
    const int code = 1;
    report(name, &code, 5);
  };
  const W t0 = W(a1[0]);
  if (is_bad_pivot(t0)) return fail();
  x[0] = T(W(b[0]) / t0);
  if (m == 1) return;
  f[0] = g[0] = T(W(1) / t0);

  for (int n = 1; n < m; ++n) {
    // Residuals in the new last row of [f; 0] and [x; 0], in the new first
    // row of [0; g]: t_{i-n} and t_{i+1} respectively.
    W ef = 0, eg = 0, ex = 0;
    for (int i = 0; i < n; ++i) {
      const W below = W(a2[n - 1 - i]);
      ef += below * W(f[i]);
      ex += below * W(x[i]);
      eg += W(a1[i + 1]) * W(g[i]);
    }
    const W d = W(1) - ef * eg;
    if (is_bad_pivot(d)) return fail();
    // The backward vector of order n + 1 is ([0; g] - eg [f; 0]) / d; it
    // corrects x in the new last row. The forward vector ([f; 0] - ef [0; g]) / d
    // is only needed while orders remain.
    const W step = W(b[n]) - ex;  // read before x[n] is written (x may be b)
    const bool keep = n + 1 < m;
    for (int i = n; i >= 0; --i) {  // descending: g[i - 1] is still the old one
      const W fo = i < n ? W(f[i]) : W(0);
      const W go = i > 0 ? W(g[i - 1]) : W(0);
      const W gn = (go - eg * fo) / d;
      if (keep) {
        f[i] = T((fo - ef * go) / d);
        g[i] = T(gn);
      }
      x[i] = T((i < n ? W(x[i]) : W(0)) + step * gn);
    }
  }
}

}  // namespace
}  // namespace orb::ext

extern "C" {

ORB_API void TSLC1(const orb_complex8 *a1, const orb_complex8 *a2, const orb_complex8 *b,
                   orb_complex8 *x, orb_complex8 *c1, orb_complex8 *c2, const int *m) {
  using C = std::complex<float>;
  static_assert(sizeof(C) == sizeof(orb_complex8));
  orb::ext::toeplitz_solve<C>("TSLC1", reinterpret_cast<const C *>(a1),
                              reinterpret_cast<const C *>(a2), reinterpret_cast<const C *>(b),
                              reinterpret_cast<C *>(x), reinterpret_cast<C *>(c1),
                              reinterpret_cast<C *>(c2), *m);
}

ORB_API void TSLS1(const float *a1, const float *a2, const float *b, float *x, float *c1, float *c2,
                   const int *m) {
  orb::ext::toeplitz_solve<float>("TSLS1", a1, a2, b, x, c1, c2, *m);
}

}  // extern "C"
