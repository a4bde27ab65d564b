// The exported complex Hessenberg QR iteration, CHSEQR: eigenvalues, and
// optionally the Schur form and Schur vectors, of an upper Hessenberg matrix.
#include <algorithm>
#include <cstdint>

#include "blas/complex_abi.h"
#include "common/options.h"
#include "lapack/nonsym.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

namespace ck = orb::check;
namespace la = orb::lapack;
using orb::c8;
using orb::CompQ;
using orb::option;
using orb::blas::cx;

int arg(ck::Args a, int pos) {
  return ck::int_arg(a, pos);
}

// 1 <= ILO <= max(1, N); min(ILO, N) <= IHI <= N.
bool ilo_ok(ck::Args a) {
  const int n = arg(a, 3), ilo = arg(a, 4);
  return ilo >= 1 && ilo <= std::max(1, n);
}
bool ihi_ok(ck::Args a) {
  const int n = arg(a, 3), ilo = arg(a, 4), ihi = arg(a, 5);
  return ihi >= std::min(ilo, n) && ihi <= n;
}
// LDZ >= 1, and >= N when Schur vectors are wanted.
bool ldz_ok(ck::Args a) {
  const int ldz = arg(a, 10);
  return ldz >= 1 && !(ck::char_arg(a, 2) != 'N' && ldz < std::max(1, arg(a, 3)));
}
int lwork_min(ck::Args a) {
  return std::max(1, arg(a, 3));
}

constexpr ck::Test kChseqr[] = {
    ck::option(1, "ES"),  ck::option(2, "NIV"),  ck::nonneg(3),         ck::holds(4, ilo_ok),
    ck::holds(5, ihi_ok), ck::ld(7, ck::dim(3)), ck::holds(10, ldz_ok), ck::lwork(12, lwork_min)};
constexpr auto kChseqrCheck = orb::entry::lapack_checker("CHSEQR", kChseqr, 11, 12);

std::int64_t chseqr_size(const char *job, const char *compz, const int *n, const int *ilo,
                         const int *ihi, c8 *, const int *, c8 *, c8 *, const int *, c8 *,
                         const int *, int *) {
  return la::hseqr_worksize<c8>(orb::upper(*job) == 'S', option<CompQ>(*compz), *n, *ilo, *ihi);
}

void chseqr_run(const char *job, const char *compz, const int *n, const int *ilo, const int *ihi,
                c8 *h, const int *ldh, c8 *w, c8 *z, const int *ldz, c8 *work, const int *lwork,
                int *info) {
  const bool wantt = orb::upper(*job) == 'S';
  const CompQ cq = option<CompQ>(*compz);
  *info =
      la::hseqr<c8>(wantt, cq, *n, *ilo, *ihi, h, *ldh, nullptr, nullptr, w, z, *ldz, work, *lwork);
  *work = c8(static_cast<float>(la::hseqr_worksize<c8>(wantt, cq, *n, *ilo, *ihi)), 0.0f);
}

}  // namespace

extern "C" {

ORB_API void chseqr(const char *job, const char *compz, const int *n, const int *ilo,
                    const int *ihi, orb_complex8 *h, const int *ldh, orb_complex8 *w,
                    orb_complex8 *z, const int *ldz, orb_complex8 *work, const int *lwork,
                    int *info, int, int) {
  orb::entry::lapack(kChseqrCheck, chseqr_size, chseqr_run, job, compz, n, ilo, ihi, cx(h), ldh,
                     cx(w), cx(z), ldz, cx(work), lwork, info);
}

}  // extern "C"
