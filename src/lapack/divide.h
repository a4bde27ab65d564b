// Divide and conquer on a real bidiagonal matrix: its singular value
// decomposition (xBDSDC) and the least-squares solve the divide-and-conquer
// least-squares driver runs on it (xLALSD). Internal: the drivers call them.
#pragma once

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// Singular values of the n-by-n upper or lower bidiagonal (d, e), in d in
// decreasing order, and with compq kInitial its singular vectors, B = U S VT
// with U and VT n by n (compq kNone leaves u and vt alone). work: 4n reals
// (kNone) or 3n^2 + 4n (kInitial); iwork: 8n. Returns 0, or i > 0 when a
// leaf's QR iteration or a merge's secular equation did not converge.
template <class R>
int bdsdc(Uplo uplo, CompQ compq, int n, R *d, R *e, R *u, int ldu, R *vt, int ldvt, R *work,
          int *iwork);

// The bidiagonal least-squares problem min ||B - (d, e) X||: X replaces the
// n-by-nrhs B, singular values at or below rcond times the largest count as
// zero (rcond outside (0, 1): machine precision), rank is the number kept;
// d returns the singular values in decreasing order, e is destroyed. smlsiz
// is the leaf size of the tree (the oracle's query 9). Real forms: work holds
// 9n + 2n smlsiz + 8n nlvl + n nrhs + (smlsiz + 1)^2 reals and rwork is not
// used; complex forms: work n nrhs elements, rwork 9n + 2n smlsiz + 8n nlvl +
// 3 smlsiz nrhs + max((smlsiz + 1)^2, n (1 + nrhs) + 2 nrhs) reals. nlvl is
// max(0, int(log2(n / (smlsiz + 1))) + 1); iwork: 3n nlvl + 11n. Returns 0 or
// i > 0 when a subproblem failed to converge.
template <class T>
int lalsd(Uplo uplo, int smlsiz, int n, int nrhs, real_t<T> *d, real_t<T> *e, T *b, int ldb,
          real_t<T> rcond, int &rank, T *work, real_t<T> *rwork, int *iwork);

}  // namespace orb::lapack
