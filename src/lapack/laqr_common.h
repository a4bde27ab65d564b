// The pieces the real and the complex small-bulge multishift Hessenberg QR
// share (laqr_real.cpp, laqr_complex.cpp): the 1-based views they address
// matrices through, their level-3 updates, the deflation window's
// Hessenberg reduction, and the application of a sweep's accumulated
// reflections to the rest of H and to Z.
#pragma once

#include <cstddef>

#include "common/options.h"

namespace orb::lapack::laqr {

// A column-major matrix addressed from (1, 1).
template <class T>
struct View {
  T *p;
  int ld;
  T &operator()(int i, int j) const { return p[(i - 1) + static_cast<std::ptrdiff_t>(j - 1) * ld]; }
  T *at(int i, int j) const { return &(*this)(i, j); }
};

// C := op(A) B (m by n, inner k): small products on the calling thread,
// where a team would cost more than it saves.
template <class T>
void update(Op ta, int m, int n, int k, const T *a, int lda, const T *b, int ldb, T *c, int ldc);

// The window's Hessenberg reduction: W (n by n, the first ihi rows and
// columns active) by reflectors (xGEHD2 with ilo = 1); tau has ihi - 1
// entries, work n.
template <class T>
void gehd2(int n, int ihi, const View<T> &w, T *tau, T *work);

// V(1:m, 2:ns) := V(1:m, 2:ns) H(1) ... H(ns-1), the reflectors gehd2 left
// in W.
template <class T>
void apply_gehd2_right(int m, int ns, const View<T> &w, const T *tau, const View<T> &v, T *work);

// A sweep's chain of bulges, its reflections accumulated in U (the chain
// occupies rows and columns incol+1 .. incol+kdu of H, ndcol its last
// column): U from row and column k1 on applied to the columns of H right of
// the chain, to its rows above it (from row 1 when wantt, else from ktop)
// and to rows iloz..ihiz of Z, nh columns or nv rows at a time through WH
// (kdu by nh) and WV (nv by kdu).
template <class T>
void apply_accumulated(bool wantt, bool wantz, int n, int ktop, int kbot, int incol, int ndcol,
                       int kdu, int nh, int nv, int iloz, int ihiz, const View<T> &u,
                       const View<T> &h, const View<T> &z, const View<T> &wh, const View<T> &wv);

}  // namespace orb::lapack::laqr
