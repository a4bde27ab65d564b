// The exported symmetric and Hermitian indefinite LAPACK routines that work
// from the Bunch-Kaufman factors: the solve (xsytrs_omp), the inverse, the
// condition estimate and the iterative refinement, real symmetric (S),
// complex symmetric (CSY) and Hermitian (CHE).
#include "blas/complex_abi.h"
#include "common/options.h"
#include "lapack/entry_args.h"
#include "lapack/symmetric.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

namespace ck = orb::check;
using orb::option;
using orb::Uplo;
using orb::blas::cx;
using orb::entry::NoWorkspace;

// ANORM >= 0 (a NaN passes, as in the published test).
bool anorm_nonneg(ck::Args args) {
  return !(*static_cast<const float *>(args[5]) < 0.0f);
}

constexpr ck::Test kSytrs[] = {ck::option(1, "UL"), ck::nonneg(2), ck::nonneg(3),
                               ck::ld(5, ck::dim(2)), ck::ld(8, ck::dim(2))};
constexpr ck::Test kSytri[] = {ck::option(1, "UL"), ck::nonneg(2), ck::ld(4, ck::dim(2))};
constexpr ck::Test kSycon[] = {ck::option(1, "UL"), ck::nonneg(2), ck::ld(4, ck::dim(2)),
                               ck::holds(6, anorm_nonneg)};
constexpr ck::Test kSyrfs[] = {ck::option(1, "UL"),   ck::nonneg(2),         ck::nonneg(3),
                               ck::ld(5, ck::dim(2)), ck::ld(7, ck::dim(2)), ck::ld(10, ck::dim(2)),
                               ck::ld(12, ck::dim(2))};
constexpr auto kSsytrs = orb::entry::lapack_checker("SSYTRS", kSytrs);
constexpr auto kCsytrs = orb::entry::lapack_checker("CSYTRS", kSytrs);
constexpr auto kChetrs = orb::entry::lapack_checker("CHETRS", kSytrs);
constexpr auto kSsytri = orb::entry::lapack_checker("SSYTRI", kSytri);
constexpr auto kCsytri = orb::entry::lapack_checker("CSYTRI", kSytri);
constexpr auto kChetri = orb::entry::lapack_checker("CHETRI", kSytri);
constexpr auto kSsycon = orb::entry::lapack_checker("SSYCON", kSycon);
constexpr auto kCsycon = orb::entry::lapack_checker("CSYCON", kSycon);
constexpr auto kChecon = orb::entry::lapack_checker("CHECON", kSycon);
constexpr auto kSsyrfs = orb::entry::lapack_checker("SSYRFS", kSyrfs);
constexpr auto kCsyrfs = orb::entry::lapack_checker("CSYRFS", kSyrfs);
constexpr auto kCherfs = orb::entry::lapack_checker("CHERFS", kSyrfs);

// The templates with the published argument lists, read once the checks
// passed; `herm` picks the Hermitian routines. The real refinement's
// integer work array and the complex one's real array arrive as `extra`.
template <class T, bool herm>
void sytrs(const char *uplo, const int *n, const int *nrhs, const T *a, const int *lda,
           const int *ipiv, T *b, const int *ldb, int *) {
  orb::lapack::sytrs(option<Uplo>(*uplo), herm, *n, *nrhs, a, *lda, ipiv, b, *ldb);
}

template <class T, bool herm>
void sytri(const char *uplo, const int *n, T *a, const int *lda, const int *ipiv, T *work,
           int *info) {
  *info = orb::lapack::sytri(option<Uplo>(*uplo), herm, *n, a, *lda, ipiv, work);
}

template <class T, bool herm>
void sycon(const char *uplo, const int *n, const T *a, const int *lda, const int *ipiv,
           const float *anorm, float *rcond, T *work, int *iwork, int *) {
  orb::lapack::sycon(option<Uplo>(*uplo), herm, *n, a, *lda, ipiv, *anorm, rcond, work, iwork);
}
// The complex estimators have no integer work array.
template <class T, bool herm>
void sycon_c(const char *uplo, const int *n, const T *a, const int *lda, const int *ipiv,
             const float *anorm, float *rcond, T *work, int *info) {
  sycon<T, herm>(uplo, n, a, lda, ipiv, anorm, rcond, work, nullptr, info);
}

template <class T, bool herm, class Extra>
void syrfs(const char *uplo, const int *n, const int *nrhs, const T *a, const int *lda, const T *af,
           const int *ldaf, const int *ipiv, const T *b, const int *ldb, T *x, const int *ldx,
           float *ferr, float *berr, T *work, Extra *extra, int *) {
  orb::lapack::syrfs(option<Uplo>(*uplo), herm, *n, *nrhs, a, *lda, af, *ldaf, ipiv, b, *ldb, x,
                     *ldx, ferr, berr, work, orb::lapack::rwork_of(extra),
                     orb::lapack::iwork_of(extra));
}

}  // namespace

extern "C" {

// ---- real symmetric --------------------------------------------------------------

ORB_API void ssytrs(const char *uplo, const int *n, const int *nrhs, const float *a, const int *lda,
                    const int *ipiv, float *b, const int *ldb, int *info, int) {
  orb::entry::lapack(kSsytrs, NoWorkspace{}, sytrs<float, false>, uplo, n, nrhs, a, lda, ipiv, b,
                     ldb, info);
}

ORB_API void ssytri(const char *uplo, const int *n, float *a, const int *lda, const int *ipiv,
                    float *work, int *info, int) {
  orb::entry::lapack(kSsytri, NoWorkspace{}, sytri<float, false>, uplo, n, a, lda, ipiv, work,
                     info);
}

ORB_API void ssycon(const char *uplo, const int *n, const float *a, const int *lda, const int *ipiv,
                    const float *anorm, float *rcond, float *work, int *iwork, int *info, int) {
  orb::entry::lapack(kSsycon, NoWorkspace{}, sycon<float, false>, uplo, n, a, lda, ipiv, anorm,
                     rcond, work, iwork, info);
}

ORB_API void ssyrfs(const char *uplo, const int *n, const int *nrhs, const float *a, const int *lda,
                    const float *af, const int *ldaf, const int *ipiv, const float *b,
                    const int *ldb, float *x, const int *ldx, float *ferr, float *berr, float *work,
                    int *iwork, int *info, int) {
  orb::entry::lapack(kSsyrfs, NoWorkspace{}, syrfs<float, false, int>, uplo, n, nrhs, a, lda, af,
                     ldaf, ipiv, b, ldb, x, ldx, ferr, berr, work, iwork, info);
}

// ---- complex symmetric -----------------------------------------------------------

ORB_API void csytrs(const char *uplo, const int *n, const int *nrhs, const orb_complex8 *a,
                    const int *lda, const int *ipiv, orb_complex8 *b, const int *ldb, int *info,
                    int) {
  orb::entry::lapack(kCsytrs, NoWorkspace{}, sytrs<orb::c8, false>, uplo, n, nrhs, cx(a), lda, ipiv,
                     cx(b), ldb, info);
}

ORB_API void csytri(const char *uplo, const int *n, orb_complex8 *a, const int *lda,
                    const int *ipiv, orb_complex8 *work, int *info, int) {
  orb::entry::lapack(kCsytri, NoWorkspace{}, sytri<orb::c8, false>, uplo, n, cx(a), lda, ipiv,
                     cx(work), info);
}

ORB_API void csycon(const char *uplo, const int *n, const orb_complex8 *a, const int *lda,
                    const int *ipiv, const float *anorm, float *rcond, orb_complex8 *work,
                    int *info, int) {
  orb::entry::lapack(kCsycon, NoWorkspace{}, sycon_c<orb::c8, false>, uplo, n, cx(a), lda, ipiv,
                     anorm, rcond, cx(work), info);
}

ORB_API void csyrfs(const char *uplo, const int *n, const int *nrhs, const orb_complex8 *a,
                    const int *lda, const orb_complex8 *af, const int *ldaf, const int *ipiv,
                    const orb_complex8 *b, const int *ldb, orb_complex8 *x, const int *ldx,
                    float *ferr, float *berr, orb_complex8 *work, float *rwork, int *info, int) {
  orb::entry::lapack(kCsyrfs, NoWorkspace{}, syrfs<orb::c8, false, float>, uplo, n, nrhs, cx(a),
                     lda, cx(af), ldaf, ipiv, cx(b), ldb, cx(x), ldx, ferr, berr, cx(work), rwork,
                     info);
}

// ---- Hermitian -------------------------------------------------------------------

ORB_API void chetrs(const char *uplo, const int *n, const int *nrhs, const orb_complex8 *a,
                    const int *lda, const int *ipiv, orb_complex8 *b, const int *ldb, int *info,
                    int) {
  orb::entry::lapack(kChetrs, NoWorkspace{}, sytrs<orb::c8, true>, uplo, n, nrhs, cx(a), lda, ipiv,
                     cx(b), ldb, info);
}

ORB_API void chetri(const char *uplo, const int *n, orb_complex8 *a, const int *lda,
                    const int *ipiv, orb_complex8 *work, int *info, int) {
  orb::entry::lapack(kChetri, NoWorkspace{}, sytri<orb::c8, true>, uplo, n, cx(a), lda, ipiv,
                     cx(work), info);
}

ORB_API void checon(const char *uplo, const int *n, const orb_complex8 *a, const int *lda,
                    const int *ipiv, const float *anorm, float *rcond, orb_complex8 *work,
                    int *info, int) {
  orb::entry::lapack(kChecon, NoWorkspace{}, sycon_c<orb::c8, true>, uplo, n, cx(a), lda, ipiv,
                     anorm, rcond, cx(work), info);
}

ORB_API void cherfs(const char *uplo, const int *n, const int *nrhs, const orb_complex8 *a,
                    const int *lda, const orb_complex8 *af, const int *ldaf, const int *ipiv,
                    const orb_complex8 *b, const int *ldb, orb_complex8 *x, const int *ldx,
                    float *ferr, float *berr, orb_complex8 *work, float *rwork, int *info, int) {
  orb::entry::lapack(kCherfs, NoWorkspace{}, syrfs<orb::c8, true, float>, uplo, n, nrhs, cx(a), lda,
                     cx(af), ldaf, ipiv, cx(b), ldb, cx(x), ldx, ferr, berr, cx(work), rwork, info);
}

}  // extern "C"
