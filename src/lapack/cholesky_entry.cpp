// The exported positive definite LAPACK routines, full and band: the
// Cholesky factorization (through xpotrf_omp), the solves (the band's
// through xpbtrs_omp), the inverse, the condition estimate and the
// refinement; and the double-precision entries the solvers use, DPOTRF,
// ZPOTF2, ZLACGV and ZLAEV2.
#include <complex>

#include "blas/complex_abi.h"
#include "common/options.h"
#include "lapack/auxiliary.h"
#include "lapack/cholesky.h"
#include "lapack/entry_args.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

namespace ck = orb::check;
using orb::c16;
using orb::option;
using orb::real_t;
using orb::Uplo;
using orb::blas::cx;
using orb::entry::NoWorkspace;

// A band's leading dimension (argument `pos`) >= KD + 1, KD being argument 3.
template <int pos>
bool band_ld(ck::Args args) {
  return ck::int_arg(args, pos) >= ck::int_arg(args, 3) + 1;
}
// ANORM (argument `pos`) >= 0; a NaN passes, as in the published test.
template <int pos>
bool anorm_nonneg(ck::Args args) {
  return !(*static_cast<const float *>(args[pos - 1]) < 0.0f);
}

constexpr ck::Test kPotrf[] = {ck::option(1, "UL"), ck::nonneg(2), ck::ld(4, ck::dim(2))};
constexpr ck::Test kPotrs[] = {ck::option(1, "UL"), ck::nonneg(2), ck::nonneg(3),
                               ck::ld(5, ck::dim(2)), ck::ld(7, ck::dim(2))};
constexpr ck::Test kPocon[] = {ck::option(1, "UL"), ck::nonneg(2), ck::ld(4, ck::dim(2)),
                               ck::holds(5, anorm_nonneg<5>)};
constexpr ck::Test kPorfs[] = {ck::option(1, "UL"),   ck::nonneg(2),         ck::nonneg(3),
                               ck::ld(5, ck::dim(2)), ck::ld(7, ck::dim(2)), ck::ld(9, ck::dim(2)),
                               ck::ld(11, ck::dim(2))};
constexpr ck::Test kPbtrf[] = {ck::option(1, "UL"), ck::nonneg(2), ck::nonneg(3),
                               ck::holds(5, band_ld<5>)};
constexpr ck::Test kPbtrs[] = {
    ck::option(1, "UL"),      ck::nonneg(2),        ck::nonneg(3), ck::nonneg(4),
    ck::holds(6, band_ld<6>), ck::ld(8, ck::dim(2))};
constexpr ck::Test kPbcon[] = {ck::option(1, "UL"), ck::nonneg(2), ck::nonneg(3),
                               ck::holds(5, band_ld<5>), ck::holds(6, anorm_nonneg<6>)};
constexpr ck::Test kPbrfs[] = {ck::option(1, "UL"),
                               ck::nonneg(2),
                               ck::nonneg(3),
                               ck::nonneg(4),
                               ck::holds(6, band_ld<6>),
                               ck::holds(8, band_ld<8>),
                               ck::ld(10, ck::dim(2)),
                               ck::ld(12, ck::dim(2))};

constexpr auto kSpotrf = orb::entry::lapack_checker("SPOTRF", kPotrf);
constexpr auto kCpotrf = orb::entry::lapack_checker("CPOTRF", kPotrf);
constexpr auto kDpotrf = orb::entry::lapack_checker("DPOTRF", kPotrf);
constexpr auto kZpotf2 = orb::entry::lapack_checker("ZPOTF2", kPotrf);
constexpr auto kSpotrs = orb::entry::lapack_checker("SPOTRS", kPotrs);
constexpr auto kCpotrs = orb::entry::lapack_checker("CPOTRS", kPotrs);
constexpr auto kSpotri = orb::entry::lapack_checker("SPOTRI", kPotrf);
constexpr auto kCpotri = orb::entry::lapack_checker("CPOTRI", kPotrf);
constexpr auto kSpocon = orb::entry::lapack_checker("SPOCON", kPocon);
constexpr auto kCpocon = orb::entry::lapack_checker("CPOCON", kPocon);
constexpr auto kSporfs = orb::entry::lapack_checker("SPORFS", kPorfs);
constexpr auto kCporfs = orb::entry::lapack_checker("CPORFS", kPorfs);
constexpr auto kSpbtrf = orb::entry::lapack_checker("SPBTRF", kPbtrf);
constexpr auto kCpbtrf = orb::entry::lapack_checker("CPBTRF", kPbtrf);
constexpr auto kSpbtrs = orb::entry::lapack_checker("SPBTRS", kPbtrs);
constexpr auto kCpbtrs = orb::entry::lapack_checker("CPBTRS", kPbtrs);
constexpr auto kSpbcon = orb::entry::lapack_checker("SPBCON", kPbcon);
constexpr auto kCpbcon = orb::entry::lapack_checker("CPBCON", kPbcon);
constexpr auto kSpbrfs = orb::entry::lapack_checker("SPBRFS", kPbrfs);
constexpr auto kCpbrfs = orb::entry::lapack_checker("CPBRFS", kPbrfs);

// The published arguments, by reference, to the templates.
template <class T>
void potrf(const char *uplo, const int *n, T *a, const int *lda, int *info) {
  *info = orb::lapack::potrf(option<Uplo>(*uplo), *n, a, *lda);
}
template <class T>
void potf2(const char *uplo, const int *n, T *a, const int *lda, int *info) {
  *info = orb::lapack::potf2(option<Uplo>(*uplo), *n, a, *lda);
}
template <class T>
void potrs(const char *uplo, const int *n, const int *nrhs, const T *a, const int *lda, T *b,
           const int *ldb, int *) {
  orb::lapack::potrs(option<Uplo>(*uplo), *n, *nrhs, a, *lda, b, *ldb);
}
template <class T>
void potri(const char *uplo, const int *n, T *a, const int *lda, int *info) {
  *info = orb::lapack::potri(option<Uplo>(*uplo), *n, a, *lda);
}
template <class T, class Extra>
void pocon(const char *uplo, const int *n, const T *a, const int *lda, const real_t<T> *anorm,
           real_t<T> *rcond, T *work, Extra *extra, int *) {
  *rcond = orb::lapack::pocon(option<Uplo>(*uplo), *n, a, *lda, *anorm, work,
                              orb::lapack::rwork_of(extra), orb::lapack::iwork_of(extra));
}
template <class T, class Extra>
void porfs(const char *uplo, const int *n, const int *nrhs, const T *a, const int *lda, const T *af,
           const int *ldaf, const T *b, const int *ldb, T *x, const int *ldx, real_t<T> *ferr,
           real_t<T> *berr, T *work, Extra *extra, int *) {
  orb::lapack::porfs(option<Uplo>(*uplo), *n, *nrhs, a, *lda, af, *ldaf, b, *ldb, x, *ldx, ferr,
                     berr, work, orb::lapack::rwork_of(extra), orb::lapack::iwork_of(extra));
}
template <class T>
void pbtrf(const char *uplo, const int *n, const int *kd, T *ab, const int *ldab, int *info) {
  *info = orb::lapack::pbtrf(option<Uplo>(*uplo), *n, *kd, ab, *ldab);
}
template <class T>
void pbtrs(const char *uplo, const int *n, const int *kd, const int *nrhs, const T *ab,
           const int *ldab, T *b, const int *ldb, int *) {
  orb::lapack::pbtrs(option<Uplo>(*uplo), *n, *kd, *nrhs, ab, *ldab, b, *ldb);
}
template <class T, class Extra>
void pbcon(const char *uplo, const int *n, const int *kd, const T *ab, const int *ldab,
           const real_t<T> *anorm, real_t<T> *rcond, T *work, Extra *extra, int *) {
  *rcond = orb::lapack::pbcon(option<Uplo>(*uplo), *n, *kd, ab, *ldab, *anorm, work,
                              orb::lapack::rwork_of(extra), orb::lapack::iwork_of(extra));
}
template <class T, class Extra>
void pbrfs(const char *uplo, const int *n, const int *kd, const int *nrhs, const T *ab,
           const int *ldab, const T *afb, const int *ldafb, const T *b, const int *ldb, T *x,
           const int *ldx, real_t<T> *ferr, real_t<T> *berr, T *work, Extra *extra, int *) {
  orb::lapack::pbrfs(option<Uplo>(*uplo), *n, *kd, *nrhs, ab, *ldab, afb, *ldafb, b, *ldb, x, *ldx,
                     ferr, berr, work, orb::lapack::rwork_of(extra), orb::lapack::iwork_of(extra));
}

void lacgv(const int *n, c16 *x, const int *incx) {
  orb::lapack::lacgv(*n, x, *incx);
}

// The Hermitian [a b; conj(b) c] is D^H [a |b|; |b| c] D with D = diag(1,
// w), w = conj(b) / |b|: the real problem's rotation, its sine times w.
void laev2(const c16 *a, const c16 *b, const c16 *c, double *rt1, double *rt2, double *cs1,
           c16 *sn1) {
  const double babs = std::abs(*b);
  const c16 w = babs == 0 ? c16(1) : std::conj(*b) / babs;
  double t;
  orb::lapack::laev2(a->real(), babs, c->real(), rt1, rt2, cs1, &t);
  *sn1 = w * t;
}

}  // namespace

extern "C" {

ORB_API void spotrf(const char *uplo, const int *n, float *a, const int *lda, int *info, int) {
  orb::entry::lapack(kSpotrf, NoWorkspace{}, potrf<float>, uplo, n, a, lda, info);
}
ORB_API void cpotrf(const char *uplo, const int *n, orb_complex8 *a, const int *lda, int *info,
                    int) {
  orb::entry::lapack(kCpotrf, NoWorkspace{}, potrf<orb::c8>, uplo, n, cx(a), lda, info);
}
ORB_API void DPOTRF(const char *uplo, const int *n, double *a, const int *lda, int *info, int) {
  orb::entry::lapack(kDpotrf, NoWorkspace{}, potrf<double>, uplo, n, a, lda, info);
}
ORB_API void ZPOTF2(const char *uplo, const int *n, orb_complex16 *a, const int *lda, int *info,
                    int) {
  orb::entry::lapack(kZpotf2, NoWorkspace{}, potf2<c16>, uplo, n, cx(a), lda, info);
}

ORB_API void spotrs(const char *uplo, const int *n, const int *nrhs, const float *a, const int *lda,
                    float *b, const int *ldb, int *info, int) {
  orb::entry::lapack(kSpotrs, NoWorkspace{}, potrs<float>, uplo, n, nrhs, a, lda, b, ldb, info);
}
ORB_API void cpotrs(const char *uplo, const int *n, const int *nrhs, const orb_complex8 *a,
                    const int *lda, orb_complex8 *b, const int *ldb, int *info, int) {
  orb::entry::lapack(kCpotrs, NoWorkspace{}, potrs<orb::c8>, uplo, n, nrhs, cx(a), lda, cx(b), ldb,
                     info);
}

ORB_API void spotri(const char *uplo, const int *n, float *a, const int *lda, int *info, int) {
  orb::entry::lapack(kSpotri, NoWorkspace{}, potri<float>, uplo, n, a, lda, info);
}
ORB_API void cpotri(const char *uplo, const int *n, orb_complex8 *a, const int *lda, int *info,
                    int) {
  orb::entry::lapack(kCpotri, NoWorkspace{}, potri<orb::c8>, uplo, n, cx(a), lda, info);
}

ORB_API void spocon(const char *uplo, const int *n, const float *a, const int *lda,
                    const float *anorm, float *rcond, float *work, int *iwork, int *info, int) {
  orb::entry::lapack(kSpocon, NoWorkspace{}, pocon<float, int>, uplo, n, a, lda, anorm, rcond, work,
                     iwork, info);
}
ORB_API void cpocon(const char *uplo, const int *n, const orb_complex8 *a, const int *lda,
                    const float *anorm, float *rcond, orb_complex8 *work, float *rwork, int *info,
                    int) {
  orb::entry::lapack(kCpocon, NoWorkspace{}, pocon<orb::c8, float>, uplo, n, cx(a), lda, anorm,
                     rcond, cx(work), rwork, info);
}

ORB_API void sporfs(const char *uplo, const int *n, const int *nrhs, const float *a, const int *lda,
                    const float *af, const int *ldaf, const float *b, const int *ldb, float *x,
                    const int *ldx, float *ferr, float *berr, float *work, int *iwork, int *info,
                    int) {
  orb::entry::lapack(kSporfs, NoWorkspace{}, porfs<float, int>, uplo, n, nrhs, a, lda, af, ldaf, b,
                     ldb, x, ldx, ferr, berr, work, iwork, info);
}
ORB_API void cporfs(const char *uplo, const int *n, const int *nrhs, const orb_complex8 *a,
                    const int *lda, const orb_complex8 *af, const int *ldaf, const orb_complex8 *b,
                    const int *ldb, orb_complex8 *x, const int *ldx, float *ferr, float *berr,
                    orb_complex8 *work, float *rwork, int *info, int) {
  orb::entry::lapack(kCporfs, NoWorkspace{}, porfs<orb::c8, float>, uplo, n, nrhs, cx(a), lda,
                     cx(af), ldaf, cx(b), ldb, cx(x), ldx, ferr, berr, cx(work), rwork, info);
}

ORB_API void spbtrf(const char *uplo, const int *n, const int *kd, float *ab, const int *ldab,
                    int *info, int) {
  orb::entry::lapack(kSpbtrf, NoWorkspace{}, pbtrf<float>, uplo, n, kd, ab, ldab, info);
}
ORB_API void cpbtrf(const char *uplo, const int *n, const int *kd, orb_complex8 *ab,
                    const int *ldab, int *info, int) {
  orb::entry::lapack(kCpbtrf, NoWorkspace{}, pbtrf<orb::c8>, uplo, n, kd, cx(ab), ldab, info);
}

ORB_API void spbtrs(const char *uplo, const int *n, const int *kd, const int *nrhs, const float *ab,
                    const int *ldab, float *b, const int *ldb, int *info, int) {
  orb::entry::lapack(kSpbtrs, NoWorkspace{}, pbtrs<float>, uplo, n, kd, nrhs, ab, ldab, b, ldb,
                     info);
}
ORB_API void cpbtrs(const char *uplo, const int *n, const int *kd, const int *nrhs,
                    const orb_complex8 *ab, const int *ldab, orb_complex8 *b, const int *ldb,
                    int *info, int) {
  orb::entry::lapack(kCpbtrs, NoWorkspace{}, pbtrs<orb::c8>, uplo, n, kd, nrhs, cx(ab), ldab, cx(b),
                     ldb, info);
}

ORB_API void spbcon(const char *uplo, const int *n, const int *kd, const float *ab, const int *ldab,
                    const float *anorm, float *rcond, float *work, int *iwork, int *info, int) {
  orb::entry::lapack(kSpbcon, NoWorkspace{}, pbcon<float, int>, uplo, n, kd, ab, ldab, anorm, rcond,
                     work, iwork, info);
}
ORB_API void cpbcon(const char *uplo, const int *n, const int *kd, const orb_complex8 *ab,
                    const int *ldab, const float *anorm, float *rcond, orb_complex8 *work,
                    float *rwork, int *info, int) {
  orb::entry::lapack(kCpbcon, NoWorkspace{}, pbcon<orb::c8, float>, uplo, n, kd, cx(ab), ldab,
                     anorm, rcond, cx(work), rwork, info);
}

ORB_API void spbrfs(const char *uplo, const int *n, const int *kd, const int *nrhs, const float *ab,
                    const int *ldab, const float *afb, const int *ldafb, const float *b,
                    const int *ldb, float *x, const int *ldx, float *ferr, float *berr, float *work,
                    int *iwork, int *info, int) {
  orb::entry::lapack(kSpbrfs, NoWorkspace{}, pbrfs<float, int>, uplo, n, kd, nrhs, ab, ldab, afb,
                     ldafb, b, ldb, x, ldx, ferr, berr, work, iwork, info);
}
ORB_API void cpbrfs(const char *uplo, const int *n, const int *kd, const int *nrhs,
                    const orb_complex8 *ab, const int *ldab, const orb_complex8 *afb,
                    const int *ldafb, const orb_complex8 *b, const int *ldb, orb_complex8 *x,
                    const int *ldx, float *ferr, float *berr, orb_complex8 *work, float *rwork,
                    int *info, int) {
  orb::entry::lapack(kCpbrfs, NoWorkspace{}, pbrfs<orb::c8, float>, uplo, n, kd, nrhs, cx(ab), ldab,
                     cx(afb), ldafb, cx(b), ldb, cx(x), ldx, ferr, berr, cx(work), rwork, info);
}

ORB_API void ZLACGV(const int *n, orb_complex16 *x, const int *incx) {
  orb::entry::lapack(orb::entry::kNoChecks, lacgv, n, cx(x), incx);
}
ORB_API void ZLAEV2(const orb_complex16 *a, const orb_complex16 *b, const orb_complex16 *c,
                    double *rt1, double *rt2, double *cs1, orb_complex16 *sn1) {
  orb::entry::lapack(orb::entry::kNoChecks, laev2, cx(a), cx(b), cx(c), rt1, rt2, cs1, cx(sn1));
}

}  // extern "C"
