// Householder reflectors, one at a time and in blocks: the core the QR, LQ
// and QL factorizations, the generation of their orthogonal factors and the
// products with them share. Each template has the meaning of the published
// routine of the same name and is instantiated for float, double and their
// complex forms.
#pragma once

#include <cstdint>

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// How the reflectors of a block are ordered: H = H(1) H(2) ... H(k)
// (forward) or H = H(k) ... H(2) H(1) (backward).
enum class Direct : std::uint8_t { kForward, kBackward };  // DIRECT: F, B
// Whether the reflectors' vectors are the columns or the rows of V.
enum class Storev : std::uint8_t { kColumns, kRows };  // STOREV: C, R

// Generates an elementary reflector H = I - tau v v^H of order n with
// H^H (alpha; x) = (beta; 0), beta real (returned in alpha), v(0) = 1 not
// stored and x overwritten by v(1:n-1); tau = 0 when H = I. A tiny beta is
// scaled up before the division (at most 20 times) and scaled back.
template <class T>
void larfg(int n, T &alpha, T *x, int incx, T &tau);

// Applies H = I - tau v v^H to the m-by-n C from the left (H C) or the right
// (C H). Trailing zeros of v and the zero rows (left) or columns (right) of
// C they would meet are skipped. work has n (left) or m (right) entries.
template <class T>
void larf(Side side, int m, int n, const T *v, int incv, T tau, T *c, int ldc, T *work);

// The k-by-k triangular factor T of the block reflector H = I - V T V^H
// (columns) or I - V^H T V (rows) of k reflectors of order n: upper for
// forward, lower for backward. tau(i) = 0 gives a zero column of T.
template <class T>
void larft(Direct direct, Storev storev, int n, int k, const T *v, int ldv, const T *tau, T *t,
           int ldt);

// Applies the block reflector H (op kNone) or H^H (kConjTrans; kTrans is
// taken as kConjTrans) from the left or right to the m-by-n C, with V and T
// as larft leaves them. work is ldwork by k, ldwork >= n (left) or m
// (right). The level-3 calls are the threaded ones (serial inside a running
// region).
template <class T>
void larfb(Side side, Op op, Direct direct, Storev storev, int m, int n, int k, const T *v, int ldv,
           const T *t, int ldt, T *c, int ldc, T *work, int ldwork);

// The same on the calling thread, for the bodies of threaded schedules.
template <class T>
void larfb_here(Side side, Op op, Direct direct, Storev storev, int m, int n, int k, const T *v,
                int ldv, const T *t, int ldt, T *c, int ldc, T *work, int ldwork);

}  // namespace orb::lapack
