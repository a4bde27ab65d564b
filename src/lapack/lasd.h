// The pieces of the bidiagonal divide and conquer shared by bdsdc.cpp,
// lasd_*.cpp and lalsd.cpp: the leaf solver, the tree, the secular equation,
// the merges, and the small helpers they share. Index arrays hold 1-based
// positions, as the published workspace layouts do, so the code reads them
// through 1-based views.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "common/options.h"
#include "common/scalar.h"
#include "lapack/svd.h"

namespace orb::lapack::dc {

// A vector seen from 1.
template <class T>
struct Vec1 {
  T *p;
  T &operator()(int i) const { return p[i - 1]; }
  T *at(int i) const { return p + (i - 1); }
};
template <class T>
Vec1<T> vec1(T *p) {
  return Vec1<T>{p};
}

// A column-major matrix seen from (1, 1).
template <class T>
struct Mat1 {
  T *p;
  int ld;
  T &operator()(int i, int j) const { return p[(i - 1) + static_cast<std::ptrdiff_t>(j - 1) * ld]; }
  T *at(int i, int j) const { return &(*this)(i, j); }
};
template <class T>
Mat1<T> mat1(T *p, int ld) {
  return Mat1<T>{p, ld};
}

template <class R>
constexpr R eps() {
  return std::numeric_limits<R>::epsilon() / 2;  // unit roundoff
}

// |a| with the sign of b.
template <class R>
inline R sign(R a, R b) {
  return std::signbit(b) ? -std::abs(a) : std::abs(a);
}

// A plane rotation [c s; -s c] with [c s; -s c] [f; g] = [r; 0], computed
// without overflow or harmful underflow.
template <class R>
void lartg(R f, R g, R &c, R &s, R &r) {
  constexpr R safmin = std::numeric_limits<R>::min();
  constexpr R safmax = 1 / safmin;
  const R rtmin = std::sqrt(safmin), rtmax = std::sqrt(safmax / 2);
  if (g == 0) {
    c = 1, s = 0, r = f;
  } else if (f == 0) {
    c = 0, s = sign(R(1), g), r = std::abs(g);
  } else {
    const R f1 = std::abs(f), g1 = std::abs(g);
    if (f1 > rtmin && f1 < rtmax && g1 > rtmin && g1 < rtmax) {
      const R h = std::sqrt(f * f + g * g);
      c = f1 / h;
      r = sign(h, f);
      s = g / r;
    } else {
      const R u = std::min(safmax, std::max({safmin, f1, g1}));
      const R fs = f / u, gs = g / u;
      const R h = std::sqrt(fs * fs + gs * gs);
      c = std::abs(fs) / h;
      r = sign(h, f);
      s = gs / r;
      r *= u;
    }
  }
}

// (x, y) := (c x + s y, c y - s x) for n pairs at strides incx, incy.
template <class T, class R>
inline void rot(int n, T *x, int incx, T *y, int incy, R c, R s) {
  for (int i = 0; i < n; ++i) {
    T &xi = x[static_cast<std::ptrdiff_t>(i) * incx];
    T &yi = y[static_cast<std::ptrdiff_t>(i) * incy];
    const T t = c * xi + s * yi;
    yi = c * yi - s * xi;
    xi = t;
  }
}

// The sequence of rotations of adjacent rows (left) or columns (right) k,
// k+1 with (c[k], s[k]) applied to the m-by-n A, first to last (forward) or
// last to first.
template <class T, class R>
void rotate_rows(bool forward, int m, int n, const R *c, const R *s, T *a, int lda) {
  for (int step = 0; step < m - 1; ++step) {
    const int k = forward ? step : m - 2 - step;
    if (c[k] == 1 && s[k] == 0) continue;
    for (int j = 0; j < n; ++j) {
      T *col = a + static_cast<std::ptrdiff_t>(j) * lda;
      const T t = col[k + 1];
      col[k + 1] = c[k] * t - s[k] * col[k];
      col[k] = s[k] * t + c[k] * col[k];
    }
  }
}
template <class T, class R>
void rotate_columns(int m, int n, const R *c, const R *s, T *a, int lda) {
  for (int k = 0; k < n - 1; ++k) {
    if (c[k] == 1 && s[k] == 0) continue;
    T *x = a + static_cast<std::ptrdiff_t>(k) * lda, *y = x + lda;
    for (int i = 0; i < m; ++i) {
      const T t = y[i];
      y[i] = c[k] * t - s[k] * x[i];
      x[i] = s[k] * t + c[k] * x[i];
    }
  }
}

// x := x * (cto / cfrom) for the m-by-n x, in steps that neither overflow
// nor underflow where the product is representable.
template <class T, class R>
void rescale(R cfrom, R cto, int m, int n, T *x, int ldx) {
  constexpr R smlnum = std::numeric_limits<R>::min(), bignum = 1 / smlnum;
  R from = cfrom, to = cto;
  for (bool done = false; !done;) {
    const R from1 = from * smlnum;
    R mul;
    if (from1 == from) {  // from is infinite: the quotient is 0 or NaN
      mul = to / from;
      done = true;
    } else {
      const R to1 = to / bignum;
      if (to1 == to) {  // to is 0 or infinite
        mul = to;
        done = true;
        from = 1;
      } else if (std::abs(from1) > std::abs(to) && to != 0) {
        mul = smlnum;
        from = from1;
      } else if (std::abs(to1) > std::abs(from)) {
        mul = bignum;
        to = to1;
      } else {
        mul = to / from;
        done = true;
      }
    }
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < m; ++i) x[i + static_cast<std::ptrdiff_t>(j) * ldx] *= mul;
  }
}

// ||x||_2 of n reals without overflow.
template <class R>
R nrm2(int n, const R *x) {
  R big = 0;
  for (int i = 0; i < n; ++i) big = std::max(big, std::abs(x[i]));
  if (big == 0 || !(big <= std::numeric_limits<R>::max())) return big;
  R sum = 0;
  for (int i = 0; i < n; ++i) sum += (x[i] / big) * (x[i] / big);
  return big * std::sqrt(sum);
}

// The largest |d_i|, |e_i| of a bidiagonal; NaN when one is NaN.
template <class R>
R max_abs(int n, const R *d, const R *e) {
  R m = 0;
  for (int i = 0; i < n; ++i) {
    const R a = std::abs(d[i]);
    if (m < a || std::isnan(a)) m = a;
  }
  for (int i = 0; i + 1 < n; ++i) {
    const R a = std::abs(e[i]);
    if (m < a || std::isnan(a)) m = a;
  }
  return m;
}

// Identity in the m-by-n a.
template <class R>
void identity(int m, int n, R *a, int lda) {
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) a[i + static_cast<std::ptrdiff_t>(j) * lda] = i == j ? 1 : 0;
}

// Merge of two sorted runs of a (1-based index lists): a(1..n1) with stride
// s1 (from its far end when negative), a(n1+1..n1+n2) with stride s2; index
// receives, 1-based, the positions in ascending order of value.
template <class R>
void lamrg(int n1, int n2, const R *a, int s1, int s2, int *index);

// The tree of subproblems (xLASDT): lvl levels, nd nodes; node i has its
// centre row inode[i], ndiml[i] rows to its left and ndimr[i] to its right
// (all 1-based), leaves at most msub rows.
void lasdt(int n, int &lvl, int &nd, int *inode, int *ndiml, int *ndimr, int msub);

// Singular value decomposition of an upper bidiagonal n by n + sqre (sqre 0
// or 1, lower when uplo says so) by the QR iteration, for the leaves
// (xLASDQ): the values in ascending order, VT := P^T VT (ncvt columns), U :=
// U Q (nru rows), C := Q^T C (ncc columns). work: 4n.
template <class R>
int lasdq(Uplo uplo, int sqre, int n, int ncvt, int nru, int ncc, R *d, R *e, R *vt, int ldvt, R *u,
          int ldu, R *c, int ldc, R *work);

// Root i (1-based) of the secular equation 1 + rho sum z_j^2 / (d_j^2 -
// s^2) = 0 for the increasing d (xLASD4); delta_j = d_j - sigma, work_j =
// d_j + sigma. Returns 0, or 1 when the iteration did not converge.
template <class R>
int lasd4(int n, int i, const R *d, const R *z, R *delta, R rho, R &sigma, R *work);

// The divide and conquer with vectors of an upper bidiagonal n by n + sqre
// (xLASD0): U n by n, VT (n + sqre) square, both receiving the singular
// vectors. iwork 8n, work 3 m^2 + 2 m.
template <class R>
int lasd0(int n, int sqre, R *d, R *e, R *u, int ldu, R *vt, int ldvt, int smlsiz, int *iwork,
          R *work);

// The compact tree of an upper bidiagonal n by n + sqre (xLASDA with
// icompq 1): the leaves' vectors and, per merge, the deflation rotations,
// permutations and secular data from which lalsa applies the singular
// vectors. Array arguments as published, 1-based contents.
template <class R>
int lasda(int smlsiz, int n, int sqre, R *d, R *e, R *u, int ldu, R *vt, int *k, R *difl, R *difr,
          R *z, R *poles, int *givptr, int *givcol, int ldgcol, int *perm, R *givnum, R *c, R *s,
          R *work, int *iwork);

// The singular vectors of the tree lasda left applied to the n-by-nrhs B
// (xLALSA): icompq 0 puts U^T B in BX, icompq 1 puts V B in BX; B is
// overwritten either way. T real or complex, the tree real. rwork: n reals,
// and for complex B at least 3 (smlsiz + 1) nrhs.
template <class T>
int lalsa(int icompq, int smlsiz, int n, int nrhs, T *b, int ldb, T *bx, int ldbx,
          const real_t<T> *u, int ldu, const real_t<T> *vt, const int *k, const real_t<T> *difl,
          const real_t<T> *difr, const real_t<T> *z, const real_t<T> *poles, const int *givptr,
          const int *givcol, int ldgcol, const int *perm, const real_t<T> *givnum,
          const real_t<T> *c, const real_t<T> *s, real_t<T> *rwork, int *iwork);

}  // namespace orb::lapack::dc
