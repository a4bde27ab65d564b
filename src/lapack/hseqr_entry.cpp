// The exported real Hessenberg QR iteration: SHSEQR.
#include <algorithm>
#include <cstdint>

#include "common/options.h"
#include "lapack/nonsym.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

namespace ck = orb::check;
using orb::CompQ;
using orb::option;

int arg(ck::Args a, int pos) {
  return ck::int_arg(a, pos);
}

// 1 <= ILO <= max(1, N); min(ILO, N) <= IHI <= N.
bool ilo_ok(ck::Args a) {
  const int ilo = arg(a, 4);
  return ilo >= 1 && ilo <= std::max(1, arg(a, 3));
}
bool ihi_ok(ck::Args a) {
  const int n = arg(a, 3), ihi = arg(a, 5);
  return ihi >= std::min(arg(a, 4), n) && ihi <= n;
}
// LDZ >= 1, and >= N when Z is wanted (COMPZ I or V).
bool ldz_ok(ck::Args a) {
  const int ldz = arg(a, 11);
  return ldz >= 1 && (ck::char_arg(a, 2) == 'N' || ldz >= std::max(1, arg(a, 3)));
}
int lwork_min(ck::Args a) {
  return std::max(1, arg(a, 3));
}

constexpr ck::Test kHseqr[] = {
    ck::option(1, "ES"),  ck::option(2, "NIV"),  ck::nonneg(3),         ck::holds(4, ilo_ok),
    ck::holds(5, ihi_ok), ck::ld(7, ck::dim(3)), ck::holds(11, ldz_ok), ck::lwork(13, lwork_min)};
constexpr auto kShseqr = orb::entry::lapack_checker("SHSEQR", kHseqr, 12, 13);

std::int64_t worksize(const char *job, const char *compz, const int *n, const int *ilo,
                      const int *ihi, float *, const int *, float *, float *, float *, const int *,
                      float *, const int *, int *) {
  return orb::lapack::hseqr_worksize<float>(orb::upper(*job) == 'S', option<CompQ>(*compz), *n,
                                            *ilo, *ihi);
}

void hseqr(const char *job, const char *compz, const int *n, const int *ilo, const int *ihi,
           float *h, const int *ldh, float *wr, float *wi, float *z, const int *ldz, float *work,
           const int *lwork, int *info) {
  *info = orb::lapack::hseqr<float>(orb::upper(*job) == 'S', option<CompQ>(*compz), *n, *ilo, *ihi,
                                    h, *ldh, wr, wi, nullptr, z, *ldz, work, *lwork);
  // The optimal workspace, as the published routine leaves it.
  work[0] = static_cast<float>(
      worksize(job, compz, n, ilo, ihi, h, ldh, wr, wi, z, ldz, work, lwork, info));
}

}  // namespace

extern "C" {

ORB_API void shseqr(const char *job, const char *compz, const int *n, const int *ilo,
                    const int *ihi, float *h, const int *ldh, float *wr, float *wi, float *z,
                    const int *ldz, float *work, const int *lwork, int *info, int, int) {
  orb::entry::lapack(kShseqr, worksize, hseqr, job, compz, n, ilo, ihi, h, ldh, wr, wi, z, ldz,
                     work, lwork, info);
}

}  // extern "C"
