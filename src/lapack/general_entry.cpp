// The exported general-matrix LAPACK routines: the LU (through xgetrf_omp)
// and the row interchanges.
#include "blas/complex_abi.h"
#include "lapack/auxiliary.h"
#include "lapack/getrf.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

using orb::blas::cx;
using orb::entry::NoWorkspace;

constexpr orb::check::Test kGetrf[] = {orb::check::nonneg(1), orb::check::nonneg(2),
                                       orb::check::ld(4, orb::check::dim(1))};
constexpr auto kSgetrf = orb::entry::lapack_checker("SGETRF", kGetrf);
constexpr auto kCgetrf = orb::entry::lapack_checker("CGETRF", kGetrf);
constexpr auto kDgetrf = orb::entry::lapack_checker("DGETRF", kGetrf);
constexpr auto kZgetrf = orb::entry::lapack_checker("ZGETRF", kGetrf);

template <class T>
void laswp(const int *n, T *a, const int *lda, const int *k1, const int *k2, const int *ipiv,
           const int *incx) {
  orb::lapack::laswp(*n, a, *lda, *k1, *k2, ipiv, *incx);
}

}  // namespace

extern "C" {

ORB_API void sgetrf(const int *m, const int *n, float *a, const int *lda, int *ipiv, int *info) {
  orb::entry::lapack(kSgetrf, NoWorkspace{}, orb::lapack::orb_lapack_sgetrf, m, n, a, lda, ipiv,
                     info);
}

ORB_API void cgetrf(const int *m, const int *n, orb_complex8 *a, const int *lda, int *ipiv,
                    int *info) {
  orb::entry::lapack(kCgetrf, NoWorkspace{}, orb::lapack::orb_lapack_cgetrf, m, n, cx(a), lda, ipiv,
                     info);
}

ORB_API void DGETRF(const int *m, const int *n, double *a, const int *lda, int *ipiv, int *info) {
  orb::entry::lapack(kDgetrf, NoWorkspace{}, orb::lapack::orb_lapack_dgetrf, m, n, a, lda, ipiv,
                     info);
}

ORB_API void ZGETRF(const int *m, const int *n, orb_complex16 *a, const int *lda, int *ipiv,
                    int *info) {
  orb::entry::lapack(kZgetrf, NoWorkspace{}, orb::lapack::orb_lapack_zgetrf, m, n, cx(a), lda, ipiv,
                     info);
}

ORB_API void DLASWP(const int *n, double *a, const int *lda, const int *k1, const int *k2,
                    const int *ipiv, const int *incx) {
  orb::entry::lapack(orb::entry::kNoChecks, laswp<double>, n, a, lda, k1, k2, ipiv, incx);
}

ORB_API void ZLASWP(const int *n, orb_complex16 *a, const int *lda, const int *k1, const int *k2,
                    const int *ipiv, const int *incx) {
  orb::entry::lapack(orb::entry::kNoChecks, laswp<orb::c16>, n, cx(a), lda, k1, k2, ipiv, incx);
}

}  // extern "C"
