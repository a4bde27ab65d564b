// The singular value routines' shared templates: the bidiagonal QR
// iteration (bdsqr.cpp).
#pragma once

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// Singular values of the n x n bidiagonal (d, e) and, as asked, VT := P^T VT
// (ncvt columns), U := U Q (nru rows), C := Q^T C (ncc columns) (published
// xBDSQR). Returns INFO.
template <class T>
int bdsqr(Uplo uplo, int n, int ncvt, int nru, int ncc, real_t<T> *d, real_t<T> *e, T *vt, int ldvt,
          T *u, int ldu, T *c, int ldc, real_t<T> *work);

// bdsqr with the rotations of up to `batch` sweeps gathered before they go
// to VT, U and C together (bdsqr takes the oracle's "BDSQR" block size);
// batch 1 applies each sweep as it is made. The singular values do not
// depend on it, nor do the vectors' bits.
template <class T>
int bdsqr_batched(Uplo uplo, int n, int ncvt, int nru, int ncc, real_t<T> *d, real_t<T> *e, T *vt,
                  int ldvt, T *u, int ldu, T *c, int ldc, real_t<T> *work, int batch);

// Singular values of the n x n bidiagonal (d, e), descending in d, by the
// dqds algorithm on its squares (published xLASQ1; dqds.cpp). work: 4n
// reals. INFO 2: dqds did not finish; d and e then hold a bidiagonal with
// the same singular values for another method to finish.
template <class R>
int lasq1(int n, R *d, R *e, R *work);

}  // namespace orb::lapack
