// The exported symmetric tridiagonal eigensolvers: the QL/QR iterations
// (SSTEQR, SSTERF, CSTEQR), the positive definite case (SPTEQR, CPTEQR),
// bisection (SSTEBZ) and inverse iteration (SSTEIN, CSTEIN).
#include <algorithm>
#include <complex>

#include "blas/complex_abi.h"
#include "common/options.h"
#include "lapack/eigen.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

namespace ck = orb::check;
using orb::CompQ;
using orb::option;
using orb::Range;
using orb::blas::cx;
using orb::entry::NoWorkspace;

// LDZ >= 1, and >= N when vectors are wanted (COMPZ, argument 1, not N).
bool steqr_ldz(ck::Args a) {
  const int ldz = ck::int_arg(a, 6), n = ck::int_arg(a, 2);
  return ldz >= 1 && (ck::char_arg(a, 1) == 'N' || ldz >= n);
}

constexpr ck::Test kSteqr[] = {ck::option(1, "NIV"), ck::nonneg(2), ck::holds(6, steqr_ldz)};
constexpr ck::Test kSterf[] = {ck::nonneg(1)};

// SSTEBZ: VL < VU for RANGE = V; 1 <= IL <= max(1, N) and min(N, IL) <=
// IU <= N for RANGE = I.
float float_arg(ck::Args a, int pos) {
  return *static_cast<const float *>(a[pos - 1]);
}
bool stebz_vu(ck::Args a) {
  return ck::char_arg(a, 1) != 'V' || float_arg(a, 4) < float_arg(a, 5);
}
bool stebz_il(ck::Args a) {
  const int n = ck::int_arg(a, 3), il = ck::int_arg(a, 6);
  return ck::char_arg(a, 1) != 'I' || (il >= 1 && il <= std::max(1, n));
}
bool stebz_iu(ck::Args a) {
  const int n = ck::int_arg(a, 3), il = ck::int_arg(a, 6), iu = ck::int_arg(a, 7);
  return ck::char_arg(a, 1) != 'I' || (iu >= std::min(n, il) && iu <= n);
}
constexpr ck::Test kStebz[] = {ck::option(1, "AVI"),   ck::option(2, "BE"),
                               ck::nonneg(3),          ck::holds(5, stebz_vu),
                               ck::holds(6, stebz_il), ck::holds(7, stebz_iu)};

// SSTEIN: 0 <= M <= N; then the blocks and, within a block, the
// eigenvalues must not decrease: the first offending pair decides
// between IBLOCK (6) and W (5).
bool stein_m(ck::Args a) {
  const int m = ck::int_arg(a, 4);
  return m >= 0 && m <= ck::int_arg(a, 1);
}
int stein_order(ck::Args a) {
  const int m = ck::int_arg(a, 4);
  const float *w = static_cast<const float *>(a[4]);
  const int *iblock = static_cast<const int *>(a[5]);
  for (int j = 1; j < m; ++j) {
    if (iblock[j] < iblock[j - 1]) return 6;
    if (iblock[j] == iblock[j - 1] && w[j] < w[j - 1]) return 5;
  }
  return 0;
}
bool stein_iblock(ck::Args a) {
  return stein_order(a) != 6;
}
bool stein_w(ck::Args a) {
  return stein_order(a) != 5;
}
constexpr ck::Test kStein[] = {ck::nonneg(1), ck::holds(4, stein_m), ck::ld(9, ck::dim(1)),
                               ck::holds(6, stein_iblock), ck::holds(5, stein_w)};

constexpr auto kSsteqr = orb::entry::lapack_checker("SSTEQR", kSteqr);
constexpr auto kCsteqr = orb::entry::lapack_checker("CSTEQR", kSteqr);
constexpr auto kSsterf = orb::entry::lapack_checker("SSTERF", kSterf);
constexpr auto kSpteqr = orb::entry::lapack_checker("SPTEQR", kSteqr);
constexpr auto kCpteqr = orb::entry::lapack_checker("CPTEQR", kSteqr);
constexpr auto kSstebz = orb::entry::lapack_checker("SSTEBZ", kStebz);
constexpr auto kSstein = orb::entry::lapack_checker("SSTEIN", kStein);
constexpr auto kCstein = orb::entry::lapack_checker("CSTEIN", kStein);

template <class T>
void steqr(const char *compz, const int *n, float *d, float *e, T *z, const int *ldz, float *work,
           int *info) {
  *info = orb::lapack::steqr<T>(option<CompQ>(*compz), *n, d, e, z, *ldz, work);
}

void sterf(const int *n, float *d, float *e, int *info) {
  *info = orb::lapack::sterf<float>(*n, d, e);
}

template <class T>
void pteqr(const char *compz, const int *n, float *d, float *e, T *z, const int *ldz, float *work,
           int *info) {
  *info = orb::lapack::pteqr<T>(option<CompQ>(*compz), *n, d, e, z, *ldz, work);
}

void stebz(const char *range, const char *order, const int *n, const float *vl, const float *vu,
           const int *il, const int *iu, const float *abstol, const float *d, const float *e,
           int *m, int *nsplit, float *w, int *iblock, int *isplit, float *work, int *iwork,
           int *info) {
  *info =
      orb::lapack::stebz<float>(option<Range>(*range), orb::upper(*order) == 'B', *n, *vl, *vu, *il,
                                *iu, *abstol, d, e, m, nsplit, w, iblock, isplit, work, iwork);
}

template <class T>
void stein(const int *n, const float *d, const float *e, const int *m, const float *w,
           const int *iblock, const int *isplit, T *z, const int *ldz, float *work, int *iwork,
           int *ifail, int *info) {
  *info = orb::lapack::stein<T>(*n, d, e, *m, w, iblock, isplit, z, *ldz, work, iwork, ifail);
}

}  // namespace

extern "C" {

ORB_API void ssteqr(const char *compz, const int *n, float *d, float *e, float *z, const int *ldz,
                    float *work, int *info, int) {
  orb::entry::lapack(kSsteqr, NoWorkspace{}, steqr<float>, compz, n, d, e, z, ldz, work, info);
}

ORB_API void csteqr(const char *compz, const int *n, float *d, float *e, orb_complex8 *z,
                    const int *ldz, float *work, int *info, int) {
  orb::entry::lapack(kCsteqr, NoWorkspace{}, steqr<orb::c8>, compz, n, d, e, cx(z), ldz, work,
                     info);
}

ORB_API void ssterf(const int *n, float *d, float *e, int *info) {
  orb::entry::lapack(kSsterf, NoWorkspace{}, sterf, n, d, e, info);
}

ORB_API void spteqr(const char *compz, const int *n, float *d, float *e, float *z, const int *ldz,
                    float *work, int *info, int) {
  orb::entry::lapack(kSpteqr, NoWorkspace{}, pteqr<float>, compz, n, d, e, z, ldz, work, info);
}

ORB_API void cpteqr(const char *compz, const int *n, float *d, float *e, orb_complex8 *z,
                    const int *ldz, float *work, int *info, int) {
  orb::entry::lapack(kCpteqr, NoWorkspace{}, pteqr<orb::c8>, compz, n, d, e, cx(z), ldz, work,
                     info);
}

ORB_API void sstebz(const char *range, const char *order, const int *n, const float *vl,
                    const float *vu, const int *il, const int *iu, const float *abstol,
                    const float *d, const float *e, int *m, int *nsplit, float *w, int *iblock,
                    int *isplit, float *work, int *iwork, int *info, int, int) {
  orb::entry::lapack(kSstebz, NoWorkspace{}, stebz, range, order, n, vl, vu, il, iu, abstol, d, e,
                     m, nsplit, w, iblock, isplit, work, iwork, info);
}

ORB_API void sstein(const int *n, const float *d, const float *e, const int *m, const float *w,
                    const int *iblock, const int *isplit, float *z, const int *ldz, float *work,
                    int *iwork, int *ifail, int *info) {
  orb::entry::lapack(kSstein, NoWorkspace{}, stein<float>, n, d, e, m, w, iblock, isplit, z, ldz,
                     work, iwork, ifail, info);
}

ORB_API void cstein(const int *n, const float *d, const float *e, const int *m, const float *w,
                    const int *iblock, const int *isplit, orb_complex8 *z, const int *ldz,
                    float *work, int *iwork, int *ifail, int *info) {
  orb::entry::lapack(kCstein, NoWorkspace{}, stein<orb::c8>, n, d, e, m, w, iblock, isplit, cx(z),
                     ldz, work, iwork, ifail, info);
}

}  // extern "C"
