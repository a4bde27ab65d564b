// The least-squares and minimum-norm driver (xGELS): A of full rank, op(A)
// X = B solved through a QR (m >= n) or an LQ (m < n) of A, with A and B
// first scaled into the range where neither underflows nor overflows.
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>

#include "lapack/auxiliary.h"
#include "lapack/copy_scale.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/qr.h"
#include "lapack/triangular.h"

namespace orb::lapack {

template <class T>
std::int64_t gels_worksize(Op op, int m, int n, int nrhs) {
  const bool tpsd = op != Op::kNone;
  const int mn = std::min(m, n);
  int nb;
  if (m >= n) {
    nb = std::max(oracle(kBlockSize, name<T>("GEQRF"), m, n),
                  oracle(kBlockSize, name<T>(orth_name<T>("ORMQR", "UNMQR")), m, nrhs, n));
  } else {
    nb = std::max(oracle(kBlockSize, name<T>("GELQF"), m, n),
                  oracle(kBlockSize, name<T>(orth_name<T>("ORMLQ", "UNMLQ")), n, nrhs, m));
  }
  (void)tpsd;
  return std::max<std::int64_t>(1, mn + static_cast<std::int64_t>(std::max(mn, nrhs)) * nb);
}

template <class T>
int gels(Op op, int m, int n, int nrhs, T *a, int lda, T *b, int ldb, T *work, int lwork) {
  using R = real_t<T>;
  const bool tpsd = op != Op::kNone;
  const Op adj = Op::kConjTrans;
  const int mn = std::min(m, n);
  const std::int64_t wsize = gels_worksize<T>(op, m, n, nrhs);
  const auto done = [&](int info) {
    work[0] = T(static_cast<R>(wsize));
    return info;
  };
  if (std::min({m, n, nrhs}) == 0) {
    laset(Part::kAll, std::max(m, n), nrhs, T(0), T(0), b, ldb);
    return done(0);
  }
  const R smlnum = std::numeric_limits<R>::min() / std::numeric_limits<R>::epsilon();
  const R bignum = R(1) / smlnum;

  // A scaled into [smlnum, bignum] by its largest element.
  const R anrm = lange(Norm::kMaxAbs, m, n, a, lda, static_cast<R *>(nullptr));
  int iascl = 0;
  if (anrm > R(0) && anrm < smlnum) {
    lascl(Part::kAll, anrm, smlnum, m, n, a, lda);
    iascl = 1;
  } else if (anrm > bignum) {
    lascl(Part::kAll, anrm, bignum, m, n, a, lda);
    iascl = 2;
  } else if (anrm == R(0)) {
    laset(Part::kAll, std::max(m, n), nrhs, T(0), T(0), b, ldb);
    return done(0);
  }
  const int brow = tpsd ? n : m;
  const R bnrm = lange(Norm::kMaxAbs, brow, nrhs, b, ldb, static_cast<R *>(nullptr));
  int ibscl = 0;
  if (bnrm > R(0) && bnrm < smlnum) {
    lascl(Part::kAll, bnrm, smlnum, brow, nrhs, b, ldb);
    ibscl = 1;
  } else if (bnrm > bignum) {
    lascl(Part::kAll, bnrm, bignum, brow, nrhs, b, ldb);
    ibscl = 2;
  }

  T *tau = work, *rest = work + mn;
  const int lrest = lwork - mn;
  int scllen;
  if (m >= n) {
    geqrf(m, n, a, lda, tau, rest, lrest);
    if (!tpsd) {
      // The least-squares solution: R x = Q^H b.
      ormqr(Side::kLeft, adj, m, nrhs, n, a, lda, tau, b, ldb, rest, lrest);
      const int info = trtrs(Uplo::kUpper, Op::kNone, Diag::kNonUnit, n, nrhs, a, lda, b, ldb);
      if (info > 0) return info;
      scllen = n;
    } else {
      // The minimum-norm solution of A^H x = b: x = Q (R^-H b; 0).
      const int info = trtrs(Uplo::kUpper, adj, Diag::kNonUnit, n, nrhs, a, lda, b, ldb);
      if (info > 0) return info;
      laset(Part::kAll, m - n, nrhs, T(0), T(0), b + n, ldb);
      ormqr(Side::kLeft, Op::kNone, m, nrhs, n, a, lda, tau, b, ldb, rest, lrest);
      scllen = m;
    }
  } else {
    gelqf(m, n, a, lda, tau, rest, lrest);
    if (!tpsd) {
      // The minimum-norm solution: x = Q^H (L^-1 b; 0).
      const int info = trtrs(Uplo::kLower, Op::kNone, Diag::kNonUnit, m, nrhs, a, lda, b, ldb);
      if (info > 0) return info;
      laset(Part::kAll, n - m, nrhs, T(0), T(0), b + m, ldb);
      ormlq(Side::kLeft, adj, n, nrhs, m, a, lda, tau, b, ldb, rest, lrest);
      scllen = n;
    } else {
      // The least-squares solution of A^H x = b: L^H x = Q b.
      ormlq(Side::kLeft, Op::kNone, n, nrhs, m, a, lda, tau, b, ldb, rest, lrest);
      const int info = trtrs(Uplo::kLower, adj, Diag::kNonUnit, m, nrhs, a, lda, b, ldb);
      if (info > 0) return info;
      scllen = m;
    }
  }
  // The scalings undone.
  if (iascl == 1) lascl(Part::kAll, anrm, smlnum, scllen, nrhs, b, ldb);
  if (iascl == 2) lascl(Part::kAll, anrm, bignum, scllen, nrhs, b, ldb);
  if (ibscl == 1) lascl(Part::kAll, smlnum, bnrm, scllen, nrhs, b, ldb);
  if (ibscl == 2) lascl(Part::kAll, bignum, bnrm, scllen, nrhs, b, ldb);
  return done(0);
}

#define ORB_GELS(T)                                          \
  template std::int64_t gels_worksize<T>(Op, int, int, int); \
  template int gels<T>(Op, int, int, int, T *, int, T *, int, T *, int);
ORB_GELS(float)
ORB_GELS(double)
ORB_GELS(std::complex<float>)
ORB_GELS(std::complex<double>)
#undef ORB_GELS

}  // namespace orb::lapack
