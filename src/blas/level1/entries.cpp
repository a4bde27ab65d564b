// The exported level-1 and sparse level-1 BLAS: plain forwarders to the
// templates of blas/level1/level1.h. The other spellings (SAXPY, dnrm2,
// idamax, ...) reach these entries through the export table.
#include "blas/complex_abi.h"
#include "blas/level1/level1.h"
#include "orb.h"
#include "service/entry.h"

namespace {

using orb::c16;
using orb::c8;
using orb::entry::plain;
namespace blas = orb::blas;

}  // namespace

extern "C" {

// ---- single precision real -------------------------------------------------------------------

ORB_API void saxpy(const int *n, const float *sa, const float *sx, const int *incx, float *sy,
                   const int *incy) {
  plain(blas::axpy<float>, *n, *sa, sx, *incx, sy, *incy);
}

ORB_API void scopy(const int *n, const float *sx, const int *incx, float *sy, const int *incy) {
  plain(blas::copy<float>, *n, sx, *incx, sy, *incy);
}

ORB_API float sdot(const int *n, const float *sx, const int *incx, const float *sy,
                   const int *incy) {
  return plain(blas::dotu<float>, *n, sx, *incx, sy, *incy);
}

ORB_API float snrm2(const int *n, const float *x, const int *incx) {
  return plain(blas::nrm2<float>, *n, x, *incx);
}

ORB_API float sasum(const int *n, const float *sx, const int *incx) {
  return plain(blas::asum<float>, *n, sx, *incx);
}

ORB_API void sscal(const int *n, const float *sa, float *sx, const int *incx) {
  plain(blas::scal<float>, *n, *sa, sx, *incx);
}

ORB_API void sswap(const int *n, float *sx, const int *incx, float *sy, const int *incy) {
  plain(blas::swap<float>, *n, sx, *incx, sy, *incy);
}

ORB_API void srot(const int *n, float *sx, const int *incx, float *sy, const int *incy,
                  const float *c, const float *s) {
  plain(blas::rot<float>, *n, sx, *incx, sy, *incy, *c, *s);
}

ORB_API void srotg(float *sa, float *sb, float *c, float *s) {
  plain(static_cast<void (*)(float *, float *, float *, float *)>(blas::rotg<float>), sa, sb, c, s);
}

ORB_API void srotm(const int *n, float *sx, const int *incx, float *sy, const int *incy,
                   const float *sparam) {
  plain(blas::rotm<float>, *n, sx, *incx, sy, *incy, sparam);
}

ORB_API void srotmg(float *sd1, float *sd2, float *sx1, const float *sy1, float *sparam) {
  plain(blas::rotmg<float>, sd1, sd2, sx1, *sy1, sparam);
}

ORB_API int isamax(const int *n, const float *sx, const int *incx) {
  return plain(blas::iamax<float>, *n, sx, *incx);
}

ORB_API int isamin(const int *n, const float *sx, const int *incx) {
  return plain(blas::iamin<float>, *n, sx, *incx);
}

// ---- single precision complex ----------------------------------------------------------------

ORB_API void caxpy(const int *n, const orb_complex8 *ca, const orb_complex8 *cx, const int *incx,
                   orb_complex8 *cy, const int *incy) {
  plain(blas::axpy<c8>, *n, *blas::cx(ca), blas::cx(cx), *incx, blas::cx(cy), *incy);
}

ORB_API void ccopy(const int *n, const orb_complex8 *cx, const int *incx, orb_complex8 *cy,
                   const int *incy) {
  plain(blas::copy<c8>, *n, blas::cx(cx), *incx, blas::cx(cy), *incy);
}

ORB_API void cdotc(orb_complex8 *result, const int *n, const orb_complex8 *cx, const int *incx,
                   const orb_complex8 *cy, const int *incy) {
  *blas::cx(result) = plain(blas::dotc<c8>, *n, blas::cx(cx), *incx, blas::cx(cy), *incy);
}

ORB_API void cdotu(orb_complex8 *result, const int *n, const orb_complex8 *cx, const int *incx,
                   const orb_complex8 *cy, const int *incy) {
  *blas::cx(result) = plain(blas::dotu<c8>, *n, blas::cx(cx), *incx, blas::cx(cy), *incy);
}

ORB_API void cscal(const int *n, const orb_complex8 *ca, orb_complex8 *cx, const int *incx) {
  plain(blas::scal<c8>, *n, *blas::cx(ca), blas::cx(cx), *incx);
}

ORB_API void csscal(const int *n, const float *sa, orb_complex8 *cx, const int *incx) {
  plain(blas::rscal<c8>, *n, *sa, blas::cx(cx), *incx);
}

ORB_API void cswap(const int *n, orb_complex8 *cx, const int *incx, orb_complex8 *cy,
                   const int *incy) {
  plain(blas::swap<c8>, *n, blas::cx(cx), *incx, blas::cx(cy), *incy);
}

ORB_API void csrot(const int *n, orb_complex8 *cx, const int *incx, orb_complex8 *cy,
                   const int *incy, const float *c, const float *s) {
  plain(blas::rot<c8>, *n, blas::cx(cx), *incx, blas::cx(cy), *incy, *c, *s);
}

ORB_API void crotg(orb_complex8 *ca, const orb_complex8 *cb, float *c, orb_complex8 *s) {
  plain(static_cast<void (*)(c8 *, const c8 *, float *, c8 *)>(blas::rotg<float>), blas::cx(ca),
        blas::cx(cb), c, blas::cx(s));
}

ORB_API float scnrm2(const int *n, const orb_complex8 *x, const int *incx) {
  return plain(blas::nrm2<c8>, *n, blas::cx(x), *incx);
}

ORB_API float scasum(const int *n, const orb_complex8 *cx, const int *incx) {
  return plain(blas::asum<c8>, *n, blas::cx(cx), *incx);
}

ORB_API int icamax(const int *n, const orb_complex8 *cx, const int *incx) {
  return plain(blas::iamax<c8>, *n, blas::cx(cx), *incx);
}

ORB_API int icamin(const int *n, const orb_complex8 *cx, const int *incx) {
  return plain(blas::iamin<c8>, *n, blas::cx(cx), *incx);
}

// ---- double precision real and complex ---------------------------------------------------------

ORB_API void DSCAL(const int *n, const double *da, double *dx, const int *incx) {
  plain(blas::scal<double>, *n, *da, dx, *incx);
}

ORB_API void DSWAP(const int *n, double *dx, const int *incx, double *dy, const int *incy) {
  plain(blas::swap<double>, *n, dx, *incx, dy, *incy);
}

ORB_API void dcopy(const int *n, const double *dx, const int *incx, double *dy, const int *incy) {
  plain(blas::copy<double>, *n, dx, *incx, dy, *incy);
}

ORB_API int IDAMAX(const int *n, const double *dx, const int *incx) {
  return plain(blas::iamax<double>, *n, dx, *incx);
}

ORB_API void ZSCAL(const int *n, const orb_complex16 *za, orb_complex16 *zx, const int *incx) {
  plain(blas::scal<c16>, *n, *blas::cx(za), blas::cx(zx), *incx);
}

ORB_API void ZDSCAL(const int *n, const double *da, orb_complex16 *zx, const int *incx) {
  plain(blas::rscal<c16>, *n, *da, blas::cx(zx), *incx);
}

ORB_API void ZSWAP(const int *n, orb_complex16 *zx, const int *incx, orb_complex16 *zy,
                   const int *incy) {
  plain(blas::swap<c16>, *n, blas::cx(zx), *incx, blas::cx(zy), *incy);
}

ORB_API void zcopy(const int *n, const orb_complex16 *zx, const int *incx, orb_complex16 *zy,
                   const int *incy) {
  plain(blas::copy<c16>, *n, blas::cx(zx), *incx, blas::cx(zy), *incy);
}

ORB_API int IZAMAX(const int *n, const orb_complex16 *zx, const int *incx) {
  return plain(blas::iamax<c16>, *n, blas::cx(zx), *incx);
}

ORB_API void ZROT(const int *n, orb_complex16 *cx, const int *incx, orb_complex16 *cy,
                  const int *incy, const double *c, const orb_complex16 *s) {
  plain(blas::crot<c16>, *n, blas::cx(cx), *incx, blas::cx(cy), *incy, *c, *blas::cx(s));
}

// ---- sparse ------------------------------------------------------------------------------------

ORB_API void saxpyi(const int *nz, const float *a, const float *x, const int *indx, float *y) {
  plain(blas::axpyi<float>, *nz, *a, x, indx, y);
}

ORB_API float sdoti(const int *nz, const float *x, const int *indx, const float *y) {
  return plain(blas::dotui<float>, *nz, x, indx, y);
}

ORB_API void sgthr(const int *nz, const float *y, float *x, const int *indx) {
  plain(blas::gthr<float>, *nz, y, x, indx);
}

ORB_API void ssctr(const int *nz, const float *x, const int *indx, float *y) {
  plain(blas::sctr<float>, *nz, x, indx, y);
}

ORB_API void caxpyi(const int *nz, const orb_complex8 *a, const orb_complex8 *x, const int *indx,
                    orb_complex8 *y) {
  plain(blas::axpyi<c8>, *nz, *blas::cx(a), blas::cx(x), indx, blas::cx(y));
}

ORB_API void cdotci(orb_complex8 *result, const int *nz, const orb_complex8 *x, const int *indx,
                    const orb_complex8 *y) {
  *blas::cx(result) = plain(blas::dotci<c8>, *nz, blas::cx(x), indx, blas::cx(y));
}

ORB_API void cdotui(orb_complex8 *result, const int *nz, const orb_complex8 *x, const int *indx,
                    const orb_complex8 *y) {
  *blas::cx(result) = plain(blas::dotui<c8>, *nz, blas::cx(x), indx, blas::cx(y));
}

ORB_API void cgthr(const int *nz, const orb_complex8 *y, orb_complex8 *x, const int *indx) {
  plain(blas::gthr<c8>, *nz, blas::cx(y), blas::cx(x), indx);
}

ORB_API void csctr(const int *nz, const orb_complex8 *x, const int *indx, orb_complex8 *y) {
  plain(blas::sctr<c8>, *nz, blas::cx(x), indx, blas::cx(y));
}

}  // extern "C"
