// The exported balancing and Hessenberg reduction: SGEBAL, SGEBAK, SGEHRD,
// SORGHR and their complex forms CGEBAL, CGEBAK, CGEHRD, CUNGHR.
#include <algorithm>
#include <cstdint>

#include "blas/complex_abi.h"
#include "common/options.h"
#include "lapack/nonsym.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"
#include "service/report.h"

namespace {

namespace ck = orb::check;
using orb::c8;
using orb::real_t;
using orb::Side;
using orb::blas::cx;
using orb::lapack::Balance;

int arg(ck::Args a, int pos) {
  return ck::int_arg(a, pos);
}

Balance balance_of(const char *job) {
  switch (orb::upper(*job)) {
    case 'P':
      return Balance::kPermute;
    case 'S':
      return Balance::kScale;
    case 'B':
      return Balance::kBoth;
    default:
      return Balance::kNone;
  }
}

// ILO in 1..max(1, N) and IHI in min(ILO, N)..N, the arguments at
// positions n, n+1 and n+2.
template <int N>
bool ilo_ok(ck::Args a) {
  return arg(a, N + 1) >= 1 && arg(a, N + 1) <= std::max(1, arg(a, N));
}
template <int N>
bool ihi_ok(ck::Args a) {
  return arg(a, N + 2) >= std::min(arg(a, N + 1), arg(a, N)) && arg(a, N + 2) <= arg(a, N);
}

// ---- balancing ---------------------------------------------------------------------------

constexpr ck::Test kGebal[] = {ck::option(1, "NPSB"), ck::nonneg(2), ck::ld(4, ck::dim(2))};
constexpr ck::Test kGebak[] = {ck::option(1, "NPSB"),   ck::option(2, "RL"),     ck::nonneg(3),
                               ck::holds(4, ilo_ok<3>), ck::holds(5, ihi_ok<3>), ck::nonneg(7),
                               ck::ld(9, ck::dim(3))};

template <const char *Name, class T>
void gebal(const char *job, const int *n, T *a, const int *lda, int *ilo, int *ihi,
           real_t<T> *scale, int *info) {
  const int code = orb::lapack::gebal(balance_of(job), *n, a, *lda, ilo, ihi, scale);
  if (code < 0) {
    // A NaN met while scaling is reported as an error in A.
    *info = code;
    orb::report_code(Name, -code);
  }
}

template <class T>
void gebak(const char *job, const char *side, const int *n, const int *ilo, const int *ihi,
           const real_t<T> *scale, const int *m, T *v, const int *ldv, int *) {
  const Side s = orb::upper(*side) == 'R' ? Side::kRight : Side::kLeft;
  orb::lapack::gebak(balance_of(job), s, *n, *ilo, *ihi, scale, *m, v, *ldv);
}

// ---- the reduction and its factor --------------------------------------------------------

int gehrd_min(ck::Args a) {
  return std::max(1, arg(a, 1));
}
int orghr_min(ck::Args a) {
  return std::max(1, arg(a, 3) - arg(a, 2));
}
constexpr ck::Test kGehrd[] = {ck::nonneg(1), ck::holds(2, ilo_ok<1>), ck::holds(3, ihi_ok<1>),
                               ck::ld(5, ck::dim(1)), ck::lwork(8, gehrd_min)};
constexpr ck::Test kOrghr[] = {ck::nonneg(1), ck::holds(2, ilo_ok<1>), ck::holds(3, ihi_ok<1>),
                               ck::ld(5, ck::dim(1)), ck::lwork(8, orghr_min)};

template <class T>
std::int64_t gehrd_size(const int *n, const int *ilo, const int *ihi, T *, const int *, T *, T *,
                        const int *, int *) {
  return orb::lapack::gehrd_worksize<T>(*n, *ilo, *ihi);
}
template <class T>
void gehrd(const int *n, const int *ilo, const int *ihi, T *a, const int *lda, T *tau, T *work,
           const int *lwork, int *) {
  orb::lapack::gehrd(*n, *ilo, *ihi, a, *lda, tau, work, *lwork);
}

template <class T>
std::int64_t orghr_size(const int *n, const int *ilo, const int *ihi, T *, const int *, const T *,
                        T *, const int *, int *) {
  return orb::lapack::orghr_worksize<T>(*n, *ilo, *ihi);
}
template <class T>
void orghr(const int *n, const int *ilo, const int *ihi, T *a, const int *lda, const T *tau,
           T *work, const int *lwork, int *) {
  orb::lapack::orghr(*n, *ilo, *ihi, a, *lda, tau, work, *lwork);
}

constexpr char kSgebalName[] = "SGEBAL";
constexpr char kCgebalName[] = "CGEBAL";
constexpr auto kSgebal = orb::entry::lapack_checker("SGEBAL", kGebal);
constexpr auto kCgebal = orb::entry::lapack_checker("CGEBAL", kGebal);
constexpr auto kSgebak = orb::entry::lapack_checker("SGEBAK", kGebak);
constexpr auto kCgebak = orb::entry::lapack_checker("CGEBAK", kGebak);
constexpr auto kSgehrd = orb::entry::lapack_checker("SGEHRD", kGehrd, 7, 8);
constexpr auto kCgehrd = orb::entry::lapack_checker("CGEHRD", kGehrd, 7, 8);
constexpr auto kSorghr = orb::entry::lapack_checker("SORGHR", kOrghr, 7, 8);
constexpr auto kCunghr = orb::entry::lapack_checker("CUNGHR", kOrghr, 7, 8);

}  // namespace

extern "C" {

ORB_API void sgebal(const char *job, const int *n, float *a, const int *lda, int *ilo, int *ihi,
                    float *scale, int *info, int) {
  orb::entry::lapack(kSgebal, orb::entry::NoWorkspace{}, gebal<kSgebalName, float>, job, n, a, lda,
                     ilo, ihi, scale, info);
}
ORB_API void cgebal(const char *job, const int *n, orb_complex8 *a, const int *lda, int *ilo,
                    int *ihi, float *scale, int *info, int) {
  orb::entry::lapack(kCgebal, orb::entry::NoWorkspace{}, gebal<kCgebalName, c8>, job, n, cx(a), lda,
                     ilo, ihi, scale, info);
}

ORB_API void sgebak(const char *job, const char *side, const int *n, const int *ilo, const int *ihi,
                    const float *scale, const int *m, float *v, const int *ldv, int *info, int,
                    int) {
  orb::entry::lapack(kSgebak, orb::entry::NoWorkspace{}, gebak<float>, job, side, n, ilo, ihi,
                     scale, m, v, ldv, info);
}
ORB_API void cgebak(const char *job, const char *side, const int *n, const int *ilo, const int *ihi,
                    const float *scale, const int *m, orb_complex8 *v, const int *ldv, int *info,
                    int, int) {
  orb::entry::lapack(kCgebak, orb::entry::NoWorkspace{}, gebak<c8>, job, side, n, ilo, ihi, scale,
                     m, cx(v), ldv, info);
}

ORB_API void sgehrd(const int *n, const int *ilo, const int *ihi, float *a, const int *lda,
                    float *tau, float *work, const int *lwork, int *info) {
  orb::entry::lapack(kSgehrd, gehrd_size<float>, gehrd<float>, n, ilo, ihi, a, lda, tau, work,
                     lwork, info);
}
ORB_API void cgehrd(const int *n, const int *ilo, const int *ihi, orb_complex8 *a, const int *lda,
                    orb_complex8 *tau, orb_complex8 *work, const int *lwork, int *info) {
  orb::entry::lapack(kCgehrd, gehrd_size<c8>, gehrd<c8>, n, ilo, ihi, cx(a), lda, cx(tau), cx(work),
                     lwork, info);
}

ORB_API void sorghr(const int *n, const int *ilo, const int *ihi, float *a, const int *lda,
                    const float *tau, float *work, const int *lwork, int *info) {
  orb::entry::lapack(kSorghr, orghr_size<float>, orghr<float>, n, ilo, ihi, a, lda, tau, work,
                     lwork, info);
}
ORB_API void cunghr(const int *n, const int *ilo, const int *ihi, orb_complex8 *a, const int *lda,
                    const orb_complex8 *tau, orb_complex8 *work, const int *lwork, int *info) {
  orb::entry::lapack(kCunghr, orghr_size<c8>, orghr<c8>, n, ilo, ihi, cx(a), lda, cx(tau), cx(work),
                     lwork, info);
}

}  // extern "C"
