// The real and the complex multishift Hessenberg QR's shared pieces
// (laqr_common.h).
#include "lapack/laqr_common.h"

#include <algorithm>
#include <complex>
#include <cstdint>

#include "common/scalar.h"
#include "lapack/blas_calls.h"
#include "lapack/copy_scale.h"
#include "lapack/householder.h"

namespace orb::lapack::laqr {

template <class T>
void update(Op ta, int m, int n, int k, const T *a, int lda, const T *b, int ldb, T *c, int ldc) {
  constexpr std::int64_t kTeamWork = std::int64_t(1) << 18;
  if (static_cast<std::int64_t>(m) * n * k < kTeamWork)
    gemm_here<T>(ta, Op::kNone, m, n, k, T(1), a, lda, b, ldb, T(0), c, ldc);
  else
    gemm<T>(ta, Op::kNone, m, n, k, T(1), a, lda, b, ldb, T(0), c, ldc);
}

template <class T>
void gehd2(int n, int ihi, const View<T> &w, T *tau, T *work) {
  for (int i = 1; i <= ihi - 1; ++i) {
    T alpha = w(i + 1, i);
    larfg<T>(ihi - i, alpha, w.at(std::min(i + 2, n), i), 1, tau[i - 1]);
    w(i + 1, i) = T(1);
    larf<T>(Side::kRight, ihi, ihi - i, w.at(i + 1, i), 1, tau[i - 1], w.at(1, i + 1), w.ld, work);
    T tau_h = tau[i - 1];
    if constexpr (is_complex_v<T>) tau_h = std::conj(tau_h);
    larf<T>(Side::kLeft, ihi - i, n - i, w.at(i + 1, i), 1, tau_h, w.at(i + 1, i + 1), w.ld, work);
    w(i + 1, i) = alpha;
  }
}

template <class T>
void apply_gehd2_right(int m, int ns, const View<T> &w, const T *tau, const View<T> &v, T *work) {
  for (int i = 1; i <= ns - 1; ++i) {
    const T keep = w(i + 1, i);
    w(i + 1, i) = T(1);
    larf<T>(Side::kRight, m, ns - i, w.at(i + 1, i), 1, tau[i - 1], v.at(1, i + 1), v.ld, work);
    w(i + 1, i) = keep;
  }
}

template <class T>
void apply_accumulated(bool wantt, bool wantz, int n, int ktop, int kbot, int incol, int ndcol,
                       int kdu, int nh, int nv, int iloz, int ihiz, const View<T> &u,
                       const View<T> &h, const View<T> &z, const View<T> &wh, const View<T> &wv) {
  const int jtop = wantt ? 1 : ktop, jbot = wantt ? n : kbot;
  const int k1 = std::max(1, ktop - incol);
  const int nu = (kdu - std::max(0, ndcol - kbot)) - k1 + 1;
  // The columns right of the chain: H := U^H H.
  const Op uh = is_complex_v<T> ? Op::kConjTrans : Op::kTrans;
  for (int jcol = std::min(ndcol, kbot) + 1; jcol <= jbot; jcol += nh) {
    const int jlen = std::min(nh, jbot - jcol + 1);
    update<T>(uh, nu, jlen, nu, u.at(k1, k1), u.ld, h.at(incol + k1, jcol), h.ld, wh.p, wh.ld);
    lacpy<T>(Part::kAll, nu, jlen, wh.p, wh.ld, h.at(incol + k1, jcol), h.ld);
  }
  // The rows above it: H := H U.
  for (int jrow = jtop; jrow <= std::max(ktop, incol) - 1; jrow += nv) {
    const int jlen = std::min(nv, std::max(ktop, incol) - jrow);
    update<T>(Op::kNone, jlen, nu, nu, h.at(jrow, incol + k1), h.ld, u.at(k1, k1), u.ld, wv.p,
              wv.ld);
    lacpy<T>(Part::kAll, jlen, nu, wv.p, wv.ld, h.at(jrow, incol + k1), h.ld);
  }
  // Z := Z U.
  if (wantz) {
    for (int jrow = iloz; jrow <= ihiz; jrow += nv) {
      const int jlen = std::min(nv, ihiz - jrow + 1);
      update<T>(Op::kNone, jlen, nu, nu, z.at(jrow, incol + k1), z.ld, u.at(k1, k1), u.ld, wv.p,
                wv.ld);
      lacpy<T>(Part::kAll, jlen, nu, wv.p, wv.ld, z.at(jrow, incol + k1), z.ld);
    }
  }
}

#define ORB_LAQR_COMMON(T)                                                                         \
  template void update<T>(Op, int, int, int, const T *, int, const T *, int, T *, int);            \
  template void gehd2<T>(int, int, const View<T> &, T *, T *);                                     \
  template void apply_gehd2_right<T>(int, int, const View<T> &, const T *, const View<T> &, T *);  \
  template void apply_accumulated<T>(bool, bool, int, int, int, int, int, int, int, int, int, int, \
                                     const View<T> &, const View<T> &, const View<T> &,            \
                                     const View<T> &, const View<T> &);
ORB_LAQR_COMMON(float)
ORB_LAQR_COMMON(c8)
#undef ORB_LAQR_COMMON

}  // namespace orb::lapack::laqr
