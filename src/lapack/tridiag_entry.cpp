// The exported symmetric tridiagonal eigensolvers: the QL/QR iterations
// (SSTEQR, SSTERF, CSTEQR).
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
using orb::blas::cx;
using orb::entry::NoWorkspace;

// LDZ >= 1, and >= N when vectors are wanted (COMPZ, argument 1, not N).
bool steqr_ldz(ck::Args a) {
  const int ldz = ck::int_arg(a, 6), n = ck::int_arg(a, 2);
  return ldz >= 1 && (ck::char_arg(a, 1) == 'N' || ldz >= n);
}

constexpr ck::Test kSteqr[] = {ck::option(1, "NIV"), ck::nonneg(2), ck::holds(6, steqr_ldz)};
constexpr ck::Test kSterf[] = {ck::nonneg(1)};

constexpr auto kSsteqr = orb::entry::lapack_checker("SSTEQR", kSteqr);
constexpr auto kCsteqr = orb::entry::lapack_checker("CSTEQR", kSteqr);
constexpr auto kSsterf = orb::entry::lapack_checker("SSTERF", kSterf);

template <class T>
void steqr(const char *compz, const int *n, float *d, float *e, T *z, const int *ldz, float *work,
           int *info) {
  *info = orb::lapack::steqr<T>(option<CompQ>(*compz), *n, d, e, z, *ldz, work);
}

void sterf(const int *n, float *d, float *e, int *info) {
  *info = orb::lapack::sterf<float>(*n, d, e);
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

}  // extern "C"
