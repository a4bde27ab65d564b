// The exported general-matrix LAPACK routines: the LU (through xgetrf_omp),
// solve, inverse, condition estimate and refinement, and the row
// interchanges.
#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "blas/complex_abi.h"
#include "lapack/auxiliary.h"
#include "lapack/entry_args.h"
#include "lapack/general.h"
#include "lapack/getrf.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

using orb::Op;
using orb::option;
using orb::real_t;
using orb::blas::cx;
using orb::entry::NoWorkspace;
namespace check = orb::check;

// The LU makes its own checks (xgetrf_omp): its entries set the hook and call it.
constexpr check::Test kGetrs[] = {check::option(1, "NTC"), check::nonneg(2), check::nonneg(3),
                                  check::ld(5, check::dim(2)), check::ld(8, check::dim(2))};
constexpr auto kSgetrs = orb::entry::lapack_checker("SGETRS", kGetrs);
constexpr auto kCgetrs = orb::entry::lapack_checker("CGETRS", kGetrs);

constexpr check::Test kGerfs[] = {check::option(1, "NTC"),
                                  check::nonneg(2),
                                  check::nonneg(3),
                                  check::ld(5, check::dim(2)),
                                  check::ld(7, check::dim(2)),
                                  check::ld(10, check::dim(2)),
                                  check::ld(12, check::dim(2))};
constexpr auto kSgerfs = orb::entry::lapack_checker("SGERFS", kGerfs);
constexpr auto kCgerfs = orb::entry::lapack_checker("CGERFS", kGerfs);

constexpr check::Test kGetri[] = {
    check::nonneg(1), check::ld(3, check::dim(1)),
    check::lwork(6, [](check::Args a) { return std::max(1, check::int_arg(a, 1)); })};
constexpr auto kSgetri = orb::entry::lapack_checker("SGETRI", kGetri, 5, 6);
constexpr auto kCgetri = orb::entry::lapack_checker("CGETRI", kGetri, 5, 6);

constexpr check::Test kGecon[] = {
    check::option(1, "1OI"), check::nonneg(2), check::ld(4, check::dim(2)),
    check::holds(5, [](check::Args a) { return !(*static_cast<const float *>(a[4]) < 0); })};
constexpr auto kSgecon = orb::entry::lapack_checker("SGECON", kGecon);
constexpr auto kCgecon = orb::entry::lapack_checker("CGECON", kGecon);

template <class T>
std::int64_t getri_worksize(const int *n, T *, const int *, const int *, T *, const int *, int *) {
  return orb::lapack::getri_worksize<T>(*n);
}
template <class T>
void getri(const int *n, T *a, const int *lda, const int *ipiv, T *work, const int *lwork,
           int *info) {
  *info = orb::lapack::getri(*n, a, *lda, ipiv, work, *lwork);
}

// Real data: work 4n and iwork; complex: work 2n and rwork 2n.
template <class T, class Extra>
void gecon(const char *norm, const int *n, const T *a, const int *lda, const real_t<T> *anorm,
           real_t<T> *rcond, T *work, Extra *extra, int *) {
  orb::lapack::gecon(option<orb::Norm>(*norm), *n, a, *lda, *anorm, rcond, work,
                     orb::lapack::rwork_of(extra), orb::lapack::iwork_of(extra));
}

template <class T>
void getrs(const char *trans, const int *n, const int *nrhs, const T *a, const int *lda,
           const int *ipiv, T *b, const int *ldb, int *) {
  orb::lapack::getrs(option<Op>(*trans), *n, *nrhs, a, *lda, ipiv, b, *ldb);
}

// Real data: work 3n and iwork; complex: work 2n and rwork.
template <class T, class Extra>
void gerfs(const char *trans, const int *n, const int *nrhs, const T *a, const int *lda,
           const T *af, const int *ldaf, const int *ipiv, const T *b, const int *ldb, T *x,
           const int *ldx, real_t<T> *ferr, real_t<T> *berr, T *work, Extra *extra, int *) {
  orb::lapack::gerfs(option<Op>(*trans), *n, *nrhs, a, *lda, af, *ldaf, ipiv, b, *ldb, x, *ldx,
                     ferr, berr, work, orb::lapack::rwork_of(extra), orb::lapack::iwork_of(extra));
}

template <class T>
void laswp(const int *n, T *a, const int *lda, const int *k1, const int *k2, const int *ipiv,
           const int *incx) {
  orb::lapack::laswp(*n, a, *lda, *k1, *k2, ipiv, *incx);
}

}  // namespace

extern "C" {

ORB_API void sgetrf(const int *m, const int *n, float *a, const int *lda, int *ipiv, int *info) {
  orb::entry::lapack(orb::entry::kNoChecks, orb::lapack::orb_lapack_sgetrf, m, n, a, lda, ipiv,
                     info);
}

ORB_API void cgetrf(const int *m, const int *n, orb_complex8 *a, const int *lda, int *ipiv,
                    int *info) {
  orb::entry::lapack(orb::entry::kNoChecks, orb::lapack::orb_lapack_cgetrf, m, n, cx(a), lda, ipiv,
                     info);
}

ORB_API void sgetrs(const char *trans, const int *n, const int *nrhs, const float *a,
                    const int *lda, const int *ipiv, float *b, const int *ldb, int *info, int) {
  orb::entry::lapack(kSgetrs, NoWorkspace{}, getrs<float>, trans, n, nrhs, a, lda, ipiv, b, ldb,
                     info);
}

ORB_API void cgetrs(const char *trans, const int *n, const int *nrhs, const orb_complex8 *a,
                    const int *lda, const int *ipiv, orb_complex8 *b, const int *ldb, int *info,
                    int) {
  orb::entry::lapack(kCgetrs, NoWorkspace{}, getrs<orb::c8>, trans, n, nrhs, cx(a), lda, ipiv,
                     cx(b), ldb, info);
}

ORB_API void sgetri(const int *n, float *a, const int *lda, const int *ipiv, float *work,
                    const int *lwork, int *info) {
  orb::entry::lapack(kSgetri, getri_worksize<float>, getri<float>, n, a, lda, ipiv, work, lwork,
                     info);
}

ORB_API void cgetri(const int *n, orb_complex8 *a, const int *lda, const int *ipiv,
                    orb_complex8 *work, const int *lwork, int *info) {
  orb::entry::lapack(kCgetri, getri_worksize<orb::c8>, getri<orb::c8>, n, cx(a), lda, ipiv,
                     cx(work), lwork, info);
}

ORB_API void sgecon(const char *norm, const int *n, const float *a, const int *lda,
                    const float *anorm, float *rcond, float *work, int *iwork, int *info, int) {
  orb::entry::lapack(kSgecon, NoWorkspace{}, gecon<float, int>, norm, n, a, lda, anorm, rcond, work,
                     iwork, info);
}

ORB_API void cgecon(const char *norm, const int *n, const orb_complex8 *a, const int *lda,
                    const float *anorm, float *rcond, orb_complex8 *work, float *rwork, int *info,
                    int) {
  orb::entry::lapack(kCgecon, NoWorkspace{}, gecon<orb::c8, float>, norm, n, cx(a), lda, anorm,
                     rcond, cx(work), rwork, info);
}

ORB_API void sgerfs(const char *trans, const int *n, const int *nrhs, const float *a,
                    const int *lda, const float *af, const int *ldaf, const int *ipiv,
                    const float *b, const int *ldb, float *x, const int *ldx, float *ferr,
                    float *berr, float *work, int *iwork, int *info, int) {
  orb::entry::lapack(kSgerfs, NoWorkspace{}, gerfs<float, int>, trans, n, nrhs, a, lda, af, ldaf,
                     ipiv, b, ldb, x, ldx, ferr, berr, work, iwork, info);
}

ORB_API void cgerfs(const char *trans, const int *n, const int *nrhs, const orb_complex8 *a,
                    const int *lda, const orb_complex8 *af, const int *ldaf, const int *ipiv,
                    const orb_complex8 *b, const int *ldb, orb_complex8 *x, const int *ldx,
                    float *ferr, float *berr, orb_complex8 *work, float *rwork, int *info, int) {
  orb::entry::lapack(kCgerfs, NoWorkspace{}, gerfs<orb::c8, float>, trans, n, nrhs, cx(a), lda,
                     cx(af), ldaf, ipiv, cx(b), ldb, cx(x), ldx, ferr, berr, cx(work), rwork, info);
}

ORB_API void DGETRF(const int *m, const int *n, double *a, const int *lda, int *ipiv, int *info) {
  orb::entry::lapack(orb::entry::kNoChecks, orb::lapack::orb_lapack_dgetrf, m, n, a, lda, ipiv,
                     info);
}

ORB_API void ZGETRF(const int *m, const int *n, orb_complex16 *a, const int *lda, int *ipiv,
                    int *info) {
  orb::entry::lapack(orb::entry::kNoChecks, orb::lapack::orb_lapack_zgetrf, m, n, cx(a), lda, ipiv,
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
