// ylaed0_omp: the complex form of the tridiagonal divide and conquer's tree
// (xLAED0 of CSTEDC): Z := Z times the eigenvectors of a real tridiagonal.
//
// The tridiagonal's eigenvectors are real: the real tree (xlaed0_omp.cpp,
// its leaves and levels shared out over the team as there) builds them
// once, and a single real-times-complex product (xLACRM) applies them to Z.
// A complex column is an interleaved pair of real ones, so the product is
// one real product of Z seen as a real matrix of twice the rows, through
// the library's threaded level-3 BLAS; the merges' own products then stay
// on the real m-by-m problem instead of carrying Z's n rows through every
// level.
#include <algorithm>
#include <complex>
#include <cstddef>

#include "lapack/blas_calls.h"
#include "lapack/copy_scale.h"
#include "lapack/eigen.h"
#include "lapack/laed.h"

namespace orb::lapack::dc {

template <class R>
int laed0_complex(int n, int m, R *d, R *e, std::complex<R> *z, int ldz, int leaf,
                  std::complex<R> *work, R *rwork, int *iwork) {
  if (m == 0) return 0;
  R *q = rwork, *rest = rwork + static_cast<std::ptrdiff_t>(m) * m;
  const int info = m <= leaf ? steqr<R>(CompQ::kInitial, m, d, e, q, m, rest)
                             : laed0(m, d, e, q, m, leaf, rest, iwork);
  if (info != 0) return info;
  // [re z_1j im z_1j ... ] (2n reals) times Q, column by column.
  gemm<R>(Op::kNone, Op::kNone, 2 * n, m, m, R(1), reinterpret_cast<const R *>(z), 2 * ldz, q, m,
          R(0), reinterpret_cast<R *>(work), 2 * n);
  lacpy(Part::kAll, n, m, work, n, z, ldz);
  return 0;
}

template int laed0_complex<float>(int, int, float *, float *, std::complex<float> *, int, int,
                                  std::complex<float> *, float *, int *);

}  // namespace orb::lapack::dc
