// The exported triangular LAPACK routines: inverse, solve, condition
// estimate and error bounds, real and complex single precision.
#include <cstddef>

#include "blas/complex_abi.h"
#include "lapack/triangular.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

using orb::Diag;
using orb::Norm;
using orb::Op;
using orb::option;
using orb::Uplo;
using orb::blas::cx;
using orb::entry::NoWorkspace;
namespace check = orb::check;

constexpr check::Test kTrtri[] = {check::option(1, "UL"), check::option(2, "NU"), check::nonneg(3),
                                  check::ld(5, check::dim(3))};
constexpr check::Test kTrtrs[] = {check::option(1, "UL"),     check::option(2, "NTC"),
                                  check::option(3, "NU"),     check::nonneg(4),
                                  check::nonneg(5),           check::ld(7, check::dim(4)),
                                  check::ld(9, check::dim(4))};
constexpr check::Test kTrcon[] = {check::option(1, "O1I"), check::option(2, "UL"),
                                  check::option(3, "NU"), check::nonneg(4),
                                  check::ld(6, check::dim(4))};
constexpr check::Test kTrrfs[] = {check::option(1, "UL"),
                                  check::option(2, "NTC"),
                                  check::option(3, "NU"),
                                  check::nonneg(4),
                                  check::nonneg(5),
                                  check::ld(7, check::dim(4)),
                                  check::ld(9, check::dim(4)),
                                  check::ld(11, check::dim(4))};

constexpr auto kStrtri = orb::entry::lapack_checker("STRTRI", kTrtri);
constexpr auto kCtrtri = orb::entry::lapack_checker("CTRTRI", kTrtri);
constexpr auto kStrtrs = orb::entry::lapack_checker("STRTRS", kTrtrs);
constexpr auto kCtrtrs = orb::entry::lapack_checker("CTRTRS", kTrtrs);
constexpr auto kStrcon = orb::entry::lapack_checker("STRCON", kTrcon);
constexpr auto kCtrcon = orb::entry::lapack_checker("CTRCON", kTrcon);
constexpr auto kStrrfs = orb::entry::lapack_checker("STRRFS", kTrrfs);
constexpr auto kCtrrfs = orb::entry::lapack_checker("CTRRFS", kTrrfs);

// The published argument lists, options decoded once here.

template <class T>
void trtri(const char *uplo, const char *diag, const int *n, T *a, const int *lda, int *info) {
  *info = orb::lapack::trtri(option<Uplo>(*uplo), option<Diag>(*diag), *n, a, *lda);
}

template <class T>
void trtrs(const char *uplo, const char *trans, const char *diag, const int *n, const int *nrhs,
           const T *a, const int *lda, T *b, const int *ldb, int *info) {
  *info = orb::lapack::trtrs(option<Uplo>(*uplo), option<Op>(*trans), option<Diag>(*diag), *n,
                             *nrhs, a, *lda, b, *ldb);
}

// Real: WORK holds x, v and the column norms (3n), IWORK the signs.
void strcon_impl(const char *norm, const char *uplo, const char *diag, const int *n, const float *a,
                 const int *lda, float *rcond, float *work, int *iwork, int *) {
  *rcond = orb::lapack::trcon(option<Norm>(*norm), option<Uplo>(*uplo), option<Diag>(*diag), *n, a,
                              *lda, work, work + 2 * static_cast<std::ptrdiff_t>(*n), iwork);
}
void ctrcon_impl(const char *norm, const char *uplo, const char *diag, const int *n,
                 const orb::c8 *a, const int *lda, float *rcond, orb::c8 *work, float *rwork,
                 int *) {
  *rcond = orb::lapack::trcon(option<Norm>(*norm), option<Uplo>(*uplo), option<Diag>(*diag), *n, a,
                              *lda, work, rwork, static_cast<int *>(nullptr));
}

// Real: WORK holds the bounds (n), then the residual and v (2n).
void strrfs_impl(const char *uplo, const char *trans, const char *diag, const int *n,
                 const int *nrhs, const float *a, const int *lda, const float *b, const int *ldb,
                 const float *x, const int *ldx, float *ferr, float *berr, float *work, int *iwork,
                 int *) {
  orb::lapack::trrfs(option<Uplo>(*uplo), option<Op>(*trans), option<Diag>(*diag), *n, *nrhs, a,
                     *lda, b, *ldb, x, *ldx, ferr, berr, work + *n, work, iwork);
}
void ctrrfs_impl(const char *uplo, const char *trans, const char *diag, const int *n,
                 const int *nrhs, const orb::c8 *a, const int *lda, const orb::c8 *b,
                 const int *ldb, const orb::c8 *x, const int *ldx, float *ferr, float *berr,
                 orb::c8 *work, float *rwork, int *) {
  orb::lapack::trrfs(option<Uplo>(*uplo), option<Op>(*trans), option<Diag>(*diag), *n, *nrhs, a,
                     *lda, b, *ldb, x, *ldx, ferr, berr, work, rwork, static_cast<int *>(nullptr));
}

}  // namespace

extern "C" {

ORB_API void strtri(const char *uplo, const char *diag, const int *n, float *a, const int *lda,
                    int *info, int, int) {
  orb::entry::lapack(kStrtri, NoWorkspace{}, trtri<float>, uplo, diag, n, a, lda, info);
}

ORB_API void ctrtri(const char *uplo, const char *diag, const int *n, orb_complex8 *a,
                    const int *lda, int *info, int, int) {
  orb::entry::lapack(kCtrtri, NoWorkspace{}, trtri<orb::c8>, uplo, diag, n, cx(a), lda, info);
}

ORB_API void strtrs(const char *uplo, const char *trans, const char *diag, const int *n,
                    const int *nrhs, const float *a, const int *lda, float *b, const int *ldb,
                    int *info, int, int, int) {
  orb::entry::lapack(kStrtrs, NoWorkspace{}, trtrs<float>, uplo, trans, diag, n, nrhs, a, lda, b,
                     ldb, info);
}

ORB_API void ctrtrs(const char *uplo, const char *trans, const char *diag, const int *n,
                    const int *nrhs, const orb_complex8 *a, const int *lda, orb_complex8 *b,
                    const int *ldb, int *info, int, int, int) {
  orb::entry::lapack(kCtrtrs, NoWorkspace{}, trtrs<orb::c8>, uplo, trans, diag, n, nrhs, cx(a), lda,
                     cx(b), ldb, info);
}

ORB_API void strcon(const char *norm, const char *uplo, const char *diag, const int *n,
                    const float *a, const int *lda, float *rcond, float *work, int *iwork,
                    int *info, int, int, int) {
  orb::entry::lapack(kStrcon, NoWorkspace{}, strcon_impl, norm, uplo, diag, n, a, lda, rcond, work,
                     iwork, info);
}

ORB_API void ctrcon(const char *norm, const char *uplo, const char *diag, const int *n,
                    const orb_complex8 *a, const int *lda, float *rcond, orb_complex8 *work,
                    float *rwork, int *info, int, int, int) {
  orb::entry::lapack(kCtrcon, NoWorkspace{}, ctrcon_impl, norm, uplo, diag, n, cx(a), lda, rcond,
                     cx(work), rwork, info);
}

ORB_API void strrfs(const char *uplo, const char *trans, const char *diag, const int *n,
                    const int *nrhs, const float *a, const int *lda, const float *b, const int *ldb,
                    const float *x, const int *ldx, float *ferr, float *berr, float *work,
                    int *iwork, int *info, int, int, int) {
  orb::entry::lapack(kStrrfs, NoWorkspace{}, strrfs_impl, uplo, trans, diag, n, nrhs, a, lda, b,
                     ldb, x, ldx, ferr, berr, work, iwork, info);
}

ORB_API void ctrrfs(const char *uplo, const char *trans, const char *diag, const int *n,
                    const int *nrhs, const orb_complex8 *a, const int *lda, const orb_complex8 *b,
                    const int *ldb, const orb_complex8 *x, const int *ldx, float *ferr, float *berr,
                    orb_complex8 *work, float *rwork, int *info, int, int, int) {
  orb::entry::lapack(kCtrrfs, NoWorkspace{}, ctrrfs_impl, uplo, trans, diag, n, nrhs, cx(a), lda,
                     cx(b), ldb, cx(x), ldx, ferr, berr, cx(work), rwork, info);
}

}  // extern "C"
