// The exported bidiagonal QR iteration, SBDSQR and CBDSQR.
#include <complex>

#include "blas/complex_abi.h"
#include "common/options.h"
#include "lapack/svd.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

namespace ck = orb::check;
using orb::option;
using orb::Uplo;
using orb::blas::cx;
using orb::entry::NoWorkspace;

// LDVT >= 1, and >= N when VT has columns (NCVT, argument 3, > 0); the
// same for LDC with NCC (argument 5).
template <int ld_pos, int cols_pos>
bool rows_ld(ck::Args args) {
  const int ld = ck::int_arg(args, ld_pos);
  return ld >= 1 && (ck::int_arg(args, cols_pos) == 0 || ld >= ck::int_arg(args, 2));
}

constexpr ck::Test kBdsqr[] = {ck::option(1, "UL"),    ck::nonneg(2),
                               ck::nonneg(3),          ck::nonneg(4),
                               ck::nonneg(5),          ck::holds(9, rows_ld<9, 3>),
                               ck::ld(11, ck::dim(4)), ck::holds(13, rows_ld<13, 5>)};
constexpr auto kSbdsqr = orb::entry::lapack_checker("SBDSQR", kBdsqr);
constexpr auto kCbdsqr = orb::entry::lapack_checker("CBDSQR", kBdsqr);

// The published argument list, read once the checks passed.
template <class T>
void bdsqr(const char *uplo, const int *n, const int *ncvt, const int *nru, const int *ncc,
           float *d, float *e, T *vt, const int *ldvt, T *u, const int *ldu, T *c, const int *ldc,
           float *work, int *info) {
  *info = orb::lapack::bdsqr<T>(option<Uplo>(*uplo), *n, *ncvt, *nru, *ncc, d, e, vt, *ldvt, u,
                                *ldu, c, *ldc, work);
}

}  // namespace

extern "C" {

ORB_API void sbdsqr(const char *uplo, const int *n, const int *ncvt, const int *nru, const int *ncc,
                    float *d, float *e, float *vt, const int *ldvt, float *u, const int *ldu,
                    float *c, const int *ldc, float *work, int *info, int) {
  orb::entry::lapack(kSbdsqr, NoWorkspace{}, bdsqr<float>, uplo, n, ncvt, nru, ncc, d, e, vt, ldvt,
                     u, ldu, c, ldc, work, info);
}

ORB_API void cbdsqr(const char *uplo, const int *n, const int *ncvt, const int *nru, const int *ncc,
                    float *d, float *e, orb_complex8 *vt, const int *ldvt, orb_complex8 *u,
                    const int *ldu, orb_complex8 *c, const int *ldc, float *rwork, int *info, int) {
  orb::entry::lapack(kCbdsqr, NoWorkspace{}, bdsqr<orb::c8>, uplo, n, ncvt, nru, ncc, d, e, cx(vt),
                     ldvt, cx(u), ldu, cx(c), ldc, rwork, info);
}

}  // extern "C"
