// The exported symmetric and Hermitian eigenvalue drivers: dense (SSYEVR,
// SSYEVX, CHEEVR, CHEEVX) and band (SSBEV, SSBEVD, SSBEVX and the CHB
// forms). The drivers with several workspace lengths answer a query made
// through any of them, with all of their sizes.
#include <algorithm>
#include <cstdint>

#include "blas/complex_abi.h"
#include "common/options.h"
#include "lapack/eigen_drivers.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

namespace ck = orb::check;
namespace la = orb::lapack;
using orb::c8;
using orb::JobZ;
using orb::option;
using orb::Range;
using orb::real_t;
using orb::Uplo;
using orb::blas::cx;

int arg(ck::Args a, int pos) {
  return ck::int_arg(a, pos);
}
char letter(ck::Args a, int pos) {
  return ck::char_arg(a, pos);
}
float real_arg(ck::Args a, int pos) {
  return *static_cast<const float *>(a[pos - 1]);
}

// The range tests shared by every selective driver: VU > VL for RANGE = 'V'
// (argument `vl` and the next), 1 <= IL <= max(1, N) and min(N, IL) <= IU <=
// N for RANGE = 'I'; RANGE is argument 2 and N argument `n`.
template <int N, int VL>
bool range_vu(ck::Args a) {
  return !(letter(a, 2) == 'V' && arg(a, N) > 0 && real_arg(a, VL + 1) <= real_arg(a, VL));
}
template <int N, int IL>
bool range_il(ck::Args a) {
  const int il = arg(a, IL);
  return letter(a, 2) != 'I' || (il >= 1 && il <= std::max(1, arg(a, N)));
}
template <int N, int IL>
bool range_iu(ck::Args a) {
  const int n = arg(a, N), il = arg(a, IL), iu = arg(a, IL + 1);
  return letter(a, 2) != 'I' || (iu >= std::min(n, il) && iu <= n);
}
// LDZ >= 1, and >= N when vectors are wanted (JOBZ argument 1).
template <int N, int LDZ>
bool ldz_ok(ck::Args a) {
  const int ldz = arg(a, LDZ);
  return ldz >= 1 && !(letter(a, 1) == 'V' && ldz < arg(a, N));
}

// A workspace length at `pos` that is large enough or part of a query: any
// of the lengths at `q1`, `q2`, `q3` (0: none) being -1.
template <int Q1, int Q2, int Q3>
bool query(ck::Args a) {
  return arg(a, Q1) == -1 || (Q2 != 0 && arg(a, Q2) == -1) || (Q3 != 0 && arg(a, Q3) == -1);
}

// ---- dense drivers -----------------------------------------------------------------------

la::EigenWork syevr_min(ck::Args a, bool complex) {
  return complex ? la::syevr_minwork<c8>(arg(a, 4)) : la::syevr_minwork<float>(arg(a, 4));
}
bool ssyevr_lwork(ck::Args a) {
  return query<18, 20, 0>(a) || arg(a, 18) >= syevr_min(a, false).work;
}
bool ssyevr_liwork(ck::Args a) {
  return query<18, 20, 0>(a) || arg(a, 20) >= syevr_min(a, false).iwork;
}
bool cheevr_lwork(ck::Args a) {
  return query<18, 20, 22>(a) || arg(a, 18) >= syevr_min(a, true).work;
}
bool cheevr_lrwork(ck::Args a) {
  return query<18, 20, 22>(a) || arg(a, 20) >= syevr_min(a, true).rwork;
}
bool cheevr_liwork(ck::Args a) {
  return query<18, 20, 22>(a) || arg(a, 22) >= syevr_min(a, true).iwork;
}

constexpr ck::Test kDenseHead[] = {ck::option(1, "VN"), ck::option(2, "AVI"), ck::option(3, "LU"),
                                   ck::nonneg(4), ck::ld(6, ck::dim(4))};
constexpr ck::Test kSsyevr[] = {kDenseHead[0],
                                kDenseHead[1],
                                kDenseHead[2],
                                kDenseHead[3],
                                kDenseHead[4],
                                ck::holds(8, range_vu<4, 7>),
                                ck::holds(9, range_il<4, 9>),
                                ck::holds(10, range_iu<4, 9>),
                                ck::holds(15, ldz_ok<4, 15>),
                                ck::holds(18, ssyevr_lwork),
                                ck::holds(20, ssyevr_liwork)};
constexpr ck::Test kCheevr[] = {kDenseHead[0],
                                kDenseHead[1],
                                kDenseHead[2],
                                kDenseHead[3],
                                kDenseHead[4],
                                ck::holds(8, range_vu<4, 7>),
                                ck::holds(9, range_il<4, 9>),
                                ck::holds(10, range_iu<4, 9>),
                                ck::holds(15, ldz_ok<4, 15>),
                                ck::holds(18, cheevr_lwork),
                                ck::holds(20, cheevr_lrwork),
                                ck::holds(22, cheevr_liwork)};

// The expert drivers' tests, the same for both: only the minimal LWORK
// differs.
template <class T>
int syevx_min(ck::Args a) {
  return static_cast<int>(la::syevx_minwork<T>(arg(a, 4)).work);
}
template <class T>
constexpr ck::Test kSyevx[] = {kDenseHead[0],
                               kDenseHead[1],
                               kDenseHead[2],
                               kDenseHead[3],
                               kDenseHead[4],
                               ck::holds(8, range_vu<4, 7>),
                               ck::holds(9, range_il<4, 9>),
                               ck::holds(10, range_iu<4, 9>),
                               ck::holds(15, ldz_ok<4, 15>),
                               ck::lwork(17, syevx_min<T>)};

constexpr auto kSsyevrCheck = orb::entry::lapack_checker("SSYEVR", kSsyevr);
constexpr auto kCheevrCheck = orb::entry::lapack_checker("CHEEVR", kCheevr);
constexpr auto kSsyevxCheck = orb::entry::lapack_checker("SSYEVX", kSyevx<float>, 16, 17);
constexpr auto kCheevxCheck = orb::entry::lapack_checker("CHEEVX", kSyevx<c8>, 16, 17);

template <class T>
void store(T *work, real_t<T> *rwork, int *iwork, const la::EigenWork &size) {
  *work = T(static_cast<real_t<T>>(size.work));
  if (rwork != nullptr) *rwork = static_cast<real_t<T>>(size.rwork);
  *iwork = static_cast<int>(size.iwork);
}

template <class T>
void syevr_run(const char *jobz, const char *range, const char *uplo, const int *n, T *a,
               const int *lda, const float *vl, const float *vu, const int *il, const int *iu,
               const float *abstol, int *m, float *w, T *z, const int *ldz, int *isuppz, T *work,
               const int *lwork, float *rwork, const int *lrwork, int *iwork, const int *liwork,
               int *info) {
  const Uplo ul = option<Uplo>(*uplo);
  const la::EigenWork best = la::syevr_optwork<T>(ul, *n);
  const bool query = *lwork == -1 || *liwork == -1 || (rwork != nullptr && *lrwork == -1);
  if (!query)
    *info = la::syevr<T>(option<JobZ>(*jobz), option<Range>(*range), ul, *n, a, *lda, *vl, *vu, *il,
                         *iu, *abstol, m, w, z, *ldz, isuppz, work, *lwork, rwork,
                         rwork != nullptr ? *lrwork : 0, iwork, *liwork);
  store<T>(work, rwork, iwork, best);
}

template <class T>
std::int64_t syevx_size(const char *, const char *, const char *uplo, const int *n, T *,
                        const int *, const float *, const float *, const int *, const int *,
                        const float *, int *, float *, T *, const int *, T *, const int *, ...) {
  return la::syevx_optwork<T>(option<Uplo>(*uplo), *n).work;
}
template <class T>
void syevx_run(const char *jobz, const char *range, const char *uplo, const int *n, T *a,
               const int *lda, const float *vl, const float *vu, const int *il, const int *iu,
               const float *abstol, int *m, float *w, T *z, const int *ldz, T *work,
               const int *lwork, float *rwork, int *iwork, int *ifail, int *info) {
  const Uplo ul = option<Uplo>(*uplo);
  *info = la::syevx<T>(option<JobZ>(*jobz), option<Range>(*range), ul, *n, a, *lda, *vl, *vu, *il,
                       *iu, *abstol, m, w, z, *ldz, work, *lwork, rwork, iwork, ifail);
  *work = T(static_cast<float>(la::syevx_optwork<T>(ul, *n).work));
}

// ---- band drivers ------------------------------------------------------------------------

// LDAB >= KD + 1 (LDAB argument `ldab`, KD the one before AB).
template <int KD, int LDAB>
bool ldab_ok(ck::Args a) {
  return arg(a, LDAB) >= arg(a, KD) + 1;
}
constexpr ck::Test kSbev[] = {
    ck::option(1, "VN"), ck::option(2, "LU"),         ck::nonneg(3),
    ck::nonneg(4),       ck::holds(6, ldab_ok<4, 6>), ck::holds(9, ldz_ok<3, 9>)};

la::EigenWork sbevd_min(ck::Args a, bool complex) {
  const JobZ jz = letter(a, 1) == 'V' ? JobZ::kVectors : JobZ::kValues;
  return complex ? la::sbevd_minwork<c8>(jz, arg(a, 3)) : la::sbevd_minwork<float>(jz, arg(a, 3));
}
bool ssbevd_lwork(ck::Args a) {
  return query<11, 13, 0>(a) || arg(a, 11) >= sbevd_min(a, false).work;
}
bool ssbevd_liwork(ck::Args a) {
  return query<11, 13, 0>(a) || arg(a, 13) >= sbevd_min(a, false).iwork;
}
bool chbevd_lwork(ck::Args a) {
  return query<11, 13, 15>(a) || arg(a, 11) >= sbevd_min(a, true).work;
}
bool chbevd_lrwork(ck::Args a) {
  return query<11, 13, 15>(a) || arg(a, 13) >= sbevd_min(a, true).rwork;
}
bool chbevd_liwork(ck::Args a) {
  return query<11, 13, 15>(a) || arg(a, 15) >= sbevd_min(a, true).iwork;
}
constexpr ck::Test kSsbevd[] = {kSbev[0],
                                kSbev[1],
                                kSbev[2],
                                kSbev[3],
                                kSbev[4],
                                kSbev[5],
                                ck::holds(11, ssbevd_lwork),
                                ck::holds(13, ssbevd_liwork)};
constexpr ck::Test kChbevd[] = {kSbev[0],
                                kSbev[1],
                                kSbev[2],
                                kSbev[3],
                                kSbev[4],
                                kSbev[5],
                                ck::holds(11, chbevd_lwork),
                                ck::holds(13, chbevd_lrwork),
                                ck::holds(15, chbevd_liwork)};

// LDQ >= max(1, N) when vectors are wanted.
bool sbevx_ldq(ck::Args a) {
  return !(letter(a, 1) == 'V' && arg(a, 9) < std::max(1, arg(a, 4)));
}
constexpr ck::Test kSbevx[] = {ck::option(1, "VN"),
                               ck::option(2, "AVI"),
                               ck::option(3, "LU"),
                               ck::nonneg(4),
                               ck::nonneg(5),
                               ck::holds(7, ldab_ok<5, 7>),
                               ck::holds(9, sbevx_ldq),
                               ck::holds(11, range_vu<4, 10>),
                               ck::holds(12, range_il<4, 12>),
                               ck::holds(13, range_iu<4, 12>),
                               ck::holds(18, ldz_ok<4, 18>)};

constexpr auto kSsbevCheck = orb::entry::lapack_checker("SSBEV ", kSbev);
constexpr auto kChbevCheck = orb::entry::lapack_checker("CHBEV ", kSbev);
constexpr auto kSsbevdCheck = orb::entry::lapack_checker("SSBEVD", kSsbevd);
constexpr auto kChbevdCheck = orb::entry::lapack_checker("CHBEVD", kChbevd);
constexpr auto kSsbevxCheck = orb::entry::lapack_checker("SSBEVX", kSbevx);
constexpr auto kChbevxCheck = orb::entry::lapack_checker("CHBEVX", kSbevx);

template <class T>
void sbevd_run(const char *jobz, const char *uplo, const int *n, const int *kd, T *ab,
               const int *ldab, float *w, T *z, const int *ldz, T *work, const int *lwork,
               float *rwork, const int *lrwork, int *iwork, const int *liwork, int *info) {
  const JobZ jz = option<JobZ>(*jobz);
  const bool query = *lwork == -1 || *liwork == -1 || (rwork != nullptr && *lrwork == -1);
  if (!query)
    *info = la::sbevd<T>(jz, option<Uplo>(*uplo), *n, *kd, ab, *ldab, w, z, *ldz, work, *lwork,
                         rwork, rwork != nullptr ? *lrwork : 0, iwork, *liwork);
  store<T>(work, rwork, iwork, la::sbevd_minwork<T>(jz, *n));
}

}  // namespace

extern "C" {

ORB_API void ssyevr(const char *jobz, const char *range, const char *uplo, const int *n, float *a,
                    const int *lda, const float *vl, const float *vu, const int *il, const int *iu,
                    const float *abstol, int *m, float *w, float *z, const int *ldz, int *isuppz,
                    float *work, const int *lwork, int *iwork, const int *liwork, int *info, int,
                    int, int) {
  orb::entry::lapack(
      kSsyevrCheck, orb::entry::NoWorkspace{},
      [](const char *jz, const char *rg, const char *ul, const int *n_, float *a_, const int *lda_,
         const float *vl_, const float *vu_, const int *il_, const int *iu_, const float *tol,
         int *m_, float *w_, float *z_, const int *ldz_, int *sup, float *wk, const int *lwk,
         int *iwk, const int *liwk, int *inf) {
        syevr_run<float>(jz, rg, ul, n_, a_, lda_, vl_, vu_, il_, iu_, tol, m_, w_, z_, ldz_, sup,
                         wk, lwk, nullptr, nullptr, iwk, liwk, inf);
      },
      jobz, range, uplo, n, a, lda, vl, vu, il, iu, abstol, m, w, z, ldz, isuppz, work, lwork,
      iwork, liwork, info);
}
ORB_API void cheevr(const char *jobz, const char *range, const char *uplo, const int *n,
                    orb_complex8 *a, const int *lda, const float *vl, const float *vu,
                    const int *il, const int *iu, const float *abstol, int *m, float *w,
                    orb_complex8 *z, const int *ldz, int *isuppz, orb_complex8 *work,
                    const int *lwork, float *rwork, const int *lrwork, int *iwork,
                    const int *liwork, int *info, int, int, int) {
  orb::entry::lapack(kCheevrCheck, orb::entry::NoWorkspace{}, syevr_run<c8>, jobz, range, uplo, n,
                     cx(a), lda, vl, vu, il, iu, abstol, m, w, cx(z), ldz, isuppz, cx(work), lwork,
                     rwork, lrwork, iwork, liwork, info);
}

ORB_API void ssyevx(const char *jobz, const char *range, const char *uplo, const int *n, float *a,
                    const int *lda, const float *vl, const float *vu, const int *il, const int *iu,
                    const float *abstol, int *m, float *w, float *z, const int *ldz, float *work,
                    const int *lwork, int *iwork, int *ifail, int *info, int, int, int) {
  orb::entry::lapack(
      kSsyevxCheck, syevx_size<float>,
      [](const char *jz, const char *rg, const char *ul, const int *n_, float *a_, const int *lda_,
         const float *vl_, const float *vu_, const int *il_, const int *iu_, const float *tol,
         int *m_, float *w_, float *z_, const int *ldz_, float *wk, const int *lwk, int *iwk,
         int *ifl, int *inf) {
        syevx_run<float>(jz, rg, ul, n_, a_, lda_, vl_, vu_, il_, iu_, tol, m_, w_, z_, ldz_, wk,
                         lwk, nullptr, iwk, ifl, inf);
      },
      jobz, range, uplo, n, a, lda, vl, vu, il, iu, abstol, m, w, z, ldz, work, lwork, iwork, ifail,
      info);
}
ORB_API void cheevx(const char *jobz, const char *range, const char *uplo, const int *n,
                    orb_complex8 *a, const int *lda, const float *vl, const float *vu,
                    const int *il, const int *iu, const float *abstol, int *m, float *w,
                    orb_complex8 *z, const int *ldz, orb_complex8 *work, const int *lwork,
                    float *rwork, int *iwork, int *ifail, int *info, int, int, int) {
  orb::entry::lapack(kCheevxCheck, syevx_size<c8>, syevx_run<c8>, jobz, range, uplo, n, cx(a), lda,
                     vl, vu, il, iu, abstol, m, w, cx(z), ldz, cx(work), lwork, rwork, iwork, ifail,
                     info);
}

ORB_API void ssbev(const char *jobz, const char *uplo, const int *n, const int *kd, float *ab,
                   const int *ldab, float *w, float *z, const int *ldz, float *work, int *info, int,
                   int) {
  orb::entry::lapack(
      kSsbevCheck, orb::entry::NoWorkspace{},
      [](const char *jz, const char *ul, const int *n_, const int *kd_, float *ab_,
         const int *ldab_, float *w_, float *z_, const int *ldz_, float *wk, int *inf) {
        *inf = la::sbev<float>(option<JobZ>(*jz), option<Uplo>(*ul), *n_, *kd_, ab_, *ldab_, w_, z_,
                               *ldz_, wk, nullptr);
      },
      jobz, uplo, n, kd, ab, ldab, w, z, ldz, work, info);
}
ORB_API void chbev(const char *jobz, const char *uplo, const int *n, const int *kd,
                   orb_complex8 *ab, const int *ldab, float *w, orb_complex8 *z, const int *ldz,
                   orb_complex8 *work, float *rwork, int *info, int, int) {
  orb::entry::lapack(
      kChbevCheck, orb::entry::NoWorkspace{},
      [](const char *jz, const char *ul, const int *n_, const int *kd_, c8 *ab_, const int *ldab_,
         float *w_, c8 *z_, const int *ldz_, c8 *wk, float *rwk, int *inf) {
        *inf = la::sbev<c8>(option<JobZ>(*jz), option<Uplo>(*ul), *n_, *kd_, ab_, *ldab_, w_, z_,
                            *ldz_, wk, rwk);
      },
      jobz, uplo, n, kd, cx(ab), ldab, w, cx(z), ldz, cx(work), rwork, info);
}

ORB_API void ssbevd(const char *jobz, const char *uplo, const int *n, const int *kd, float *ab,
                    const int *ldab, float *w, float *z, const int *ldz, float *work,
                    const int *lwork, int *iwork, const int *liwork, int *info, int, int) {
  orb::entry::lapack(
      kSsbevdCheck, orb::entry::NoWorkspace{},
      [](const char *jz, const char *ul, const int *n_, const int *kd_, float *ab_,
         const int *ldab_, float *w_, float *z_, const int *ldz_, float *wk, const int *lwk,
         int *iwk, const int *liwk, int *inf) {
        sbevd_run<float>(jz, ul, n_, kd_, ab_, ldab_, w_, z_, ldz_, wk, lwk, nullptr, nullptr, iwk,
                         liwk, inf);
      },
      jobz, uplo, n, kd, ab, ldab, w, z, ldz, work, lwork, iwork, liwork, info);
}
ORB_API void chbevd(const char *jobz, const char *uplo, const int *n, const int *kd,
                    orb_complex8 *ab, const int *ldab, float *w, orb_complex8 *z, const int *ldz,
                    orb_complex8 *work, const int *lwork, float *rwork, const int *lrwork,
                    int *iwork, const int *liwork, int *info, int, int) {
  orb::entry::lapack(kChbevdCheck, orb::entry::NoWorkspace{}, sbevd_run<c8>, jobz, uplo, n, kd,
                     cx(ab), ldab, w, cx(z), ldz, cx(work), lwork, rwork, lrwork, iwork, liwork,
                     info);
}

ORB_API void ssbevx(const char *jobz, const char *range, const char *uplo, const int *n,
                    const int *kd, float *ab, const int *ldab, float *q, const int *ldq,
                    const float *vl, const float *vu, const int *il, const int *iu,
                    const float *abstol, int *m, float *w, float *z, const int *ldz, float *work,
                    int *iwork, int *ifail, int *info, int, int, int) {
  orb::entry::lapack(
      kSsbevxCheck, orb::entry::NoWorkspace{},
      [](const char *jz, const char *rg, const char *ul, const int *n_, const int *kd_, float *ab_,
         const int *ldab_, float *q_, const int *ldq_, const float *vl_, const float *vu_,
         const int *il_, const int *iu_, const float *tol, int *m_, float *w_, float *z_,
         const int *ldz_, float *wk, int *iwk, int *ifl, int *inf) {
        *inf = la::sbevx<float>(option<JobZ>(*jz), option<Range>(*rg), option<Uplo>(*ul), *n_, *kd_,
                                ab_, *ldab_, q_, *ldq_, *vl_, *vu_, *il_, *iu_, *tol, m_, w_, z_,
                                *ldz_, wk, nullptr, iwk, ifl);
      },
      jobz, range, uplo, n, kd, ab, ldab, q, ldq, vl, vu, il, iu, abstol, m, w, z, ldz, work, iwork,
      ifail, info);
}
ORB_API void chbevx(const char *jobz, const char *range, const char *uplo, const int *n,
                    const int *kd, orb_complex8 *ab, const int *ldab, orb_complex8 *q,
                    const int *ldq, const float *vl, const float *vu, const int *il, const int *iu,
                    const float *abstol, int *m, float *w, orb_complex8 *z, const int *ldz,
                    orb_complex8 *work, float *rwork, int *iwork, int *ifail, int *info, int, int,
                    int) {
  orb::entry::lapack(
      kChbevxCheck, orb::entry::NoWorkspace{},
      [](const char *jz, const char *rg, const char *ul, const int *n_, const int *kd_, c8 *ab_,
         const int *ldab_, c8 *q_, const int *ldq_, const float *vl_, const float *vu_,
         const int *il_, const int *iu_, const float *tol, int *m_, float *w_, c8 *z_,
         const int *ldz_, c8 *wk, float *rwk, int *iwk, int *ifl, int *inf) {
        *inf = la::sbevx<c8>(option<JobZ>(*jz), option<Range>(*rg), option<Uplo>(*ul), *n_, *kd_,
                             ab_, *ldab_, q_, *ldq_, *vl_, *vu_, *il_, *iu_, *tol, m_, w_, z_,
                             *ldz_, wk, rwk, iwk, ifl);
      },
      jobz, range, uplo, n, kd, cx(ab), ldab, cx(q), ldq, vl, vu, il, iu, abstol, m, w, cx(z), ldz,
      cx(work), rwork, iwork, ifail, info);
}

}  // extern "C"
