// The pieces of the MRRR tridiagonal eigensolver (stemr, eigen.h): the
// root representation with its eigenvalue approximations (larre and the
// counts, bisections and splitting it uses), and the representation tree
// that refines clusters into singletons and computes each eigenvector by a
// twisted factorization (larrv, larrf, lar1v).
//
// Conventions shared by every routine here: arrays are 0-based, but the
// integers that name rows or eigenvalues keep their published 1-based
// values, since they travel between the routines and end in isuppz:
// isplit[k] is the last row (1-based) of block k + 1, iblock[j] the block
// (1-based) of eigenvalue j, indexw[j] its index (1-based) inside the block,
// and the ifirst, ilast, offset, twist arguments are 1-based as published.
// An L D L^T representation is held as d (n pivots) and l (n - 1
// multipliers), with ld = d l and lld = d l^2 beside it where asked for.
#pragma once

#include <limits>

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack::mrrr {

// Machine constants with the published meanings: eps the relative spacing
// (SLAMCH 'P'), safmin the smallest normal number.
template <class R>
constexpr R eps() {
  return std::numeric_limits<R>::epsilon();
}
template <class R>
constexpr R safmin() {
  return std::numeric_limits<R>::min();
}

// The number of negative pivots of L D L^T - sigma I factored from both ends
// and twisted at row r (xLANEG).
template <class R>
int laneg(int n, const R *d, const R *lld, R sigma, R pivmin, int r);

// Sturm counts of the tridiagonal (d, e) at vl and vu (xLARRC with JOBT
// 'T'): lcnt, rcnt the eigenvalues <= vl, <= vu, eigcnt the number in
// (vl, vu].
template <class R>
void larrc(int n, R vl, R vu, const R *d, const R *e, R pivmin, int *eigcnt, int *lcnt, int *rcnt);

// Eigenvalue number iw of the tridiagonal (d, e2 = e^2) by bisection in
// [gl, gu] to the relative tolerance reltol (xLARRK); returns 0 or -1 when
// the iteration limit was met.
template <class R>
int larrk(int n, int iw, R gl, R gu, const R *d, const R *e2, R pivmin, R reltol, R *w, R *werr);

// Splitting of the tridiagonal into unreduced blocks (xLARRA): spltol < 0
// splits at |e(i)| <= |spltol| tnrm, spltol >= 0 at the relative criterion
// |e(i)| <= spltol sqrt|d(i)| sqrt|d(i+1)|.
template <class R>
void larra(int n, const R *d, R *e, R *e2, R spltol, R tnrm, int *nsplit, int *isplit);

// Whether the tridiagonal warrants computing its eigenvalues to high
// relative accuracy (xLARRR returning INFO 0).
template <class R>
bool larrr(int n, const R *d, const R *e);

// Bisection for the eigenvalues of each block (xLARRD): range as published,
// by_block the ORDER 'B' grouping. gers holds the Gershgorin intervals (2n).
// work: 4n reals, iwork: 3n.
template <class R>
int larrd(Range range, bool by_block, int n, R vl, R vu, int il, int iu, const R *gers, R reltol,
          const R *d, const R *e, const R *e2, R pivmin, int nsplit, const int *isplit, int *m,
          R *w, R *werr, R *wl, R *wu, int *iblock, int *indexw, R *work, int *iwork);

// Refinement by bisection of the eigenvalues ifirst..ilast of L D L^T
// (xLARRB); w, wgap, werr hold the approximations with index i at
// [i - offset - 1]. work: 2n reals, iwork: 2n.
template <class R>
int larrb(int n, const R *d, const R *lld, int ifirst, int ilast, R rtol1, R rtol2, int offset,
          R *w, R *wgap, R *werr, R *work, int *iwork, R pivmin, R spdiam, int twist);

// larrb on single eigenvalues: each index[k] (1-based, distinct) refined
// as by larrb(.., index[k], index[k], ..), side by side. Such calls are
// independent of each other (one changes only its own w and werr), so the
// results are those of the calls one after the other.
template <class R>
void larrb_singles(int n, const R *d, const R *lld, int count, const int *index, R rtol1, R rtol2,
                   int offset, R *w, R *wgap, R *werr, R pivmin, R spdiam, int twist);

// Refinement by bisection of the eigenvalues ifirst..ilast of the
// tridiagonal (d, e2) to the relative tolerance rtol (xLARRJ).
template <class R>
void larrj(int n, const R *d, const R *e2, int ifirst, int ilast, R rtol, int offset, R *w, R *werr,
           R *work, int *iwork, R pivmin, R spdiam);

// The root representations and eigenvalue approximations (xLARRE): the
// tridiagonal is split; each block gets an L D L^T - sigma representation
// in (d, e) with sigma in e(last row of the block), and its wanted
// eigenvalues relative to it in w, werr, wgap. vl, vu are in/out as
// published. force_bisection takes the bisection path where dqds would
// serve (the published routine's FORCEB). work: 6n reals, iwork: 5n.
template <class R>
int larre(Range range, int n, R *vl, R *vu, int il, int iu, R *d, R *e, R *e2, R rtol1, R rtol2,
          R spltol, int *nsplit, int *isplit, int *m, R *w, R *werr, R *wgap, int *iblock,
          int *indexw, R *gers, R *pivmin, R *work, int *iwork, bool force_bisection = false);

// One eigenvector of L D L^T by the twisted factorization at the shift
// lambda (xLAR1V on rows 1..n): z the vector with z(r) = 1, isuppz its
// support (1-based), *r the twist index (0 on entry: choose it), and the
// published negcnt, ztz, mingma, nrminv, resid, rqcorr. work: 4n reals.
template <class R>
void lar1v(int n, R lambda, const R *d, const R *l, const R *ld, const R *lld, R pivmin, R gaptol,
           R *z, bool wantnc, int *negcnt, R *ztz, R *mingma, int *r, int *isuppz, R *nrminv,
           R *resid, R *rqcorr, R *work);

// A child representation L+ D+ L+^T = L D L^T - sigma for the cluster
// clstrt..clend (1-based, into w, wgap, werr) (xLARRF). work: 2n reals.
template <class R>
int larrf(int n, const R *d, const R *l, const R *ld, int clstrt, int clend, const R *w,
          const R *wgap, const R *werr, R spdiam, R clgapl, R clgapr, R pivmin, R *sigma, R *dplus,
          R *lplus, R *work);

// The eigenvectors of the m eigenvalues larre found (xLARRV with DOL = 1,
// DOU = m): Z of the scalar type T (real vectors in a complex Z), isuppz
// their supports. work: 12n reals, iwork: 7n.
template <class T>
int larrv(int n, real_t<T> vl, real_t<T> vu, real_t<T> *d, real_t<T> *l, real_t<T> pivmin,
          const int *isplit, int m, real_t<T> minrgp, real_t<T> rtol1, real_t<T> rtol2,
          real_t<T> *w, real_t<T> *werr, real_t<T> *wgap, const int *iblock, const int *indexw,
          const real_t<T> *gers, T *z, int ldz, int *isuppz, real_t<T> *work, int *iwork);

}  // namespace orb::lapack::mrrr
