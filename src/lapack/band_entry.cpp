// The exported general band LAPACK routines: the LU factorization (through
// sgbtrf_omp and cgbtrf_omp), the solve (xgbtrs_omp), the condition
// estimate and the iterative refinement.
#include <cstdint>
#include <type_traits>

#include "blas/complex_abi.h"
#include "common/options.h"
#include "lapack/band.h"
#include "lapack/entry_args.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

namespace ck = orb::check;
using orb::Norm;
using orb::Op;
using orb::option;
using orb::blas::cx;
using orb::entry::NoWorkspace;

// Argument `pos` (a band's leading dimension) >= (extra + 1) KL + KU + 1,
// KL and KU being arguments 3 and 4: extra = 1 for factors, with room for
// the fill-in, 0 for the matrix itself.
template <int pos, int extra>
bool band_ld(ck::Args args) {
  const std::int64_t need =
      std::int64_t{extra + 1} * ck::int_arg(args, 3) + ck::int_arg(args, 4) + 1;
  return ck::int_arg(args, pos) >= need;
}
// ANORM >= 0 (a NaN passes, as in the published test).
bool anorm_nonneg(ck::Args args) {
  return !(*static_cast<const float *>(args[7]) < 0.0f);
}

constexpr ck::Test kGbtrf[] = {ck::nonneg(1), ck::nonneg(2), ck::nonneg(3), ck::nonneg(4),
                               ck::holds(6, band_ld<6, 1>)};
constexpr ck::Test kGbtrs[] = {ck::option(1, "NTC"),  ck::nonneg(2), ck::nonneg(3),
                               ck::nonneg(4),         ck::nonneg(5), ck::holds(7, band_ld<7, 1>),
                               ck::ld(10, ck::dim(2))};
constexpr ck::Test kGbcon[] = {ck::option(1, "1OI"),
                               ck::nonneg(2),
                               ck::nonneg(3),
                               ck::nonneg(4),
                               ck::holds(6, band_ld<6, 1>),
                               ck::holds(8, anorm_nonneg)};
constexpr ck::Test kGbrfs[] = {ck::option(1, "NTC"),
                               ck::nonneg(2),
                               ck::nonneg(3),
                               ck::nonneg(4),
                               ck::nonneg(5),
                               ck::holds(7, band_ld<7, 0>),
                               ck::holds(9, band_ld<9, 1>),
                               ck::ld(12, ck::dim(2)),
                               ck::ld(14, ck::dim(2))};
constexpr auto kSgbtrf = orb::entry::lapack_checker("SGBTRF", kGbtrf);
constexpr auto kCgbtrf = orb::entry::lapack_checker("CGBTRF", kGbtrf);
constexpr auto kSgbtrs = orb::entry::lapack_checker("SGBTRS", kGbtrs);
constexpr auto kCgbtrs = orb::entry::lapack_checker("CGBTRS", kGbtrs);
constexpr auto kSgbcon = orb::entry::lapack_checker("SGBCON", kGbcon);
constexpr auto kCgbcon = orb::entry::lapack_checker("CGBCON", kGbcon);
constexpr auto kSgbrfs = orb::entry::lapack_checker("SGBRFS", kGbrfs);
constexpr auto kCgbrfs = orb::entry::lapack_checker("CGBRFS", kGbrfs);

// The templates with the published argument lists, read once the checks
// passed. The real routines' integer work array and the complex routines'
// real one arrive as `extra`.
template <class T>
void gbtrf(const int *m, const int *n, const int *kl, const int *ku, T *ab, const int *ldab,
           int *ipiv, int *info) {
  *info = orb::lapack::gbtrf(*m, *n, *kl, *ku, ab, *ldab, ipiv);
}

template <class T>
void gbtrs(const char *trans, const int *n, const int *kl, const int *ku, const int *nrhs,
           const T *ab, const int *ldab, const int *ipiv, T *b, const int *ldb, int *) {
  orb::lapack::gbtrs(option<Op>(*trans), *n, *kl, *ku, *nrhs, ab, *ldab, ipiv, b, *ldb);
}

template <class T, class Extra>
void gbcon(const char *norm, const int *n, const int *kl, const int *ku, const T *ab,
           const int *ldab, const int *ipiv, const float *anorm, float *rcond, T *work,
           Extra *extra, int *info) {
  *info = orb::lapack::gbcon(option<Norm>(*norm), *n, *kl, *ku, ab, *ldab, ipiv, *anorm, rcond,
                             work, orb::lapack::iwork_of(extra), orb::lapack::rwork_of(extra));
}

template <class T, class Extra>
void gbrfs(const char *trans, const int *n, const int *kl, const int *ku, const int *nrhs,
           const T *ab, const int *ldab, const T *afb, const int *ldafb, const int *ipiv,
           const T *b, const int *ldb, T *x, const int *ldx, float *ferr, float *berr, T *work,
           Extra *extra, int *) {
  orb::lapack::gbrfs(option<Op>(*trans), *n, *kl, *ku, *nrhs, ab, *ldab, afb, *ldafb, ipiv, b, *ldb,
                     x, *ldx, ferr, berr, work, orb::lapack::iwork_of(extra),
                     orb::lapack::rwork_of(extra));
}

}  // namespace

extern "C" {

ORB_API void sgbtrf(const int *m, const int *n, const int *kl, const int *ku, float *ab,
                    const int *ldab, int *ipiv, int *info) {
  orb::entry::lapack(kSgbtrf, NoWorkspace{}, gbtrf<float>, m, n, kl, ku, ab, ldab, ipiv, info);
}

ORB_API void sgbtrs(const char *trans, const int *n, const int *kl, const int *ku, const int *nrhs,
                    const float *ab, const int *ldab, const int *ipiv, float *b, const int *ldb,
                    int *info, int) {
  orb::entry::lapack(kSgbtrs, NoWorkspace{}, gbtrs<float>, trans, n, kl, ku, nrhs, ab, ldab, ipiv,
                     b, ldb, info);
}

ORB_API void sgbcon(const char *norm, const int *n, const int *kl, const int *ku, const float *ab,
                    const int *ldab, const int *ipiv, const float *anorm, float *rcond, float *work,
                    int *iwork, int *info, int) {
  orb::entry::lapack(kSgbcon, NoWorkspace{}, gbcon<float, int>, norm, n, kl, ku, ab, ldab, ipiv,
                     anorm, rcond, work, iwork, info);
}

ORB_API void sgbrfs(const char *trans, const int *n, const int *kl, const int *ku, const int *nrhs,
                    const float *ab, const int *ldab, const float *afb, const int *ldafb,
                    const int *ipiv, const float *b, const int *ldb, float *x, const int *ldx,
                    float *ferr, float *berr, float *work, int *iwork, int *info, int) {
  orb::entry::lapack(kSgbrfs, NoWorkspace{}, gbrfs<float, int>, trans, n, kl, ku, nrhs, ab, ldab,
                     afb, ldafb, ipiv, b, ldb, x, ldx, ferr, berr, work, iwork, info);
}

ORB_API void cgbtrf(const int *m, const int *n, const int *kl, const int *ku, orb_complex8 *ab,
                    const int *ldab, int *ipiv, int *info) {
  orb::entry::lapack(kCgbtrf, NoWorkspace{}, gbtrf<orb::c8>, m, n, kl, ku, cx(ab), ldab, ipiv,
                     info);
}

ORB_API void cgbtrs(const char *trans, const int *n, const int *kl, const int *ku, const int *nrhs,
                    const orb_complex8 *ab, const int *ldab, const int *ipiv, orb_complex8 *b,
                    const int *ldb, int *info, int) {
  orb::entry::lapack(kCgbtrs, NoWorkspace{}, gbtrs<orb::c8>, trans, n, kl, ku, nrhs, cx(ab), ldab,
                     ipiv, cx(b), ldb, info);
}

ORB_API void cgbcon(const char *norm, const int *n, const int *kl, const int *ku,
                    const orb_complex8 *ab, const int *ldab, const int *ipiv, const float *anorm,
                    float *rcond, orb_complex8 *work, float *rwork, int *info, int) {
  orb::entry::lapack(kCgbcon, NoWorkspace{}, gbcon<orb::c8, float>, norm, n, kl, ku, cx(ab), ldab,
                     ipiv, anorm, rcond, cx(work), rwork, info);
}

ORB_API void cgbrfs(const char *trans, const int *n, const int *kl, const int *ku, const int *nrhs,
                    const orb_complex8 *ab, const int *ldab, const orb_complex8 *afb,
                    const int *ldafb, const int *ipiv, const orb_complex8 *b, const int *ldb,
                    orb_complex8 *x, const int *ldx, float *ferr, float *berr, orb_complex8 *work,
                    float *rwork, int *info, int) {
  orb::entry::lapack(kCgbrfs, NoWorkspace{}, gbrfs<orb::c8, float>, trans, n, kl, ku, nrhs, cx(ab),
                     ldab, cx(afb), ldafb, ipiv, cx(b), ldb, cx(x), ldx, ferr, berr, cx(work),
                     rwork, info);
}

}  // extern "C"
