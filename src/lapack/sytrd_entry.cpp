// The exported reductions to tridiagonal form: SSYTRD and CHETRD.
#include <cstdint>

#include "blas/complex_abi.h"
#include "common/options.h"
#include "lapack/eigen.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

namespace ck = orb::check;
using orb::option;
using orb::real_t;
using orb::Uplo;
using orb::blas::cx;

constexpr ck::Test kSytrd[] = {ck::option(1, "UL"), ck::nonneg(2), ck::ld(4, ck::dim(2)),
                               ck::lwork(9, [](ck::Args) { return 1; })};
constexpr auto kSsytrd = orb::entry::lapack_checker("SSYTRD", kSytrd, 8, 9);
constexpr auto kChetrd = orb::entry::lapack_checker("CHETRD", kSytrd, 8, 9);

// The published argument list, read once the checks passed.
template <class T>
std::int64_t sytrd_size(const char *uplo, const int *n, T *, const int *, real_t<T> *, real_t<T> *,
                        T *, T *, const int *, int *) {
  return orb::lapack::sytrd_worksize<T>(option<Uplo>(*uplo), *n);
}
template <class T>
void sytrd(const char *uplo, const int *n, T *a, const int *lda, real_t<T> *d, real_t<T> *e, T *tau,
           T *work, const int *lwork, int *) {
  const Uplo u = option<Uplo>(*uplo);
  const std::int64_t best = orb::lapack::sytrd_worksize<T>(u, *n);
  orb::lapack::sytrd(u, *n, a, *lda, d, e, tau, work, *lwork);
  *work = T(static_cast<real_t<T>>(best));
}

}  // namespace

extern "C" {

ORB_API void ssytrd(const char *uplo, const int *n, float *a, const int *lda, float *d, float *e,
                    float *tau, float *work, const int *lwork, int *info, int) {
  orb::entry::lapack(kSsytrd, sytrd_size<float>, sytrd<float>, uplo, n, a, lda, d, e, tau, work,
                     lwork, info);
}

ORB_API void chetrd(const char *uplo, const int *n, orb_complex8 *a, const int *lda, float *d,
                    float *e, orb_complex8 *tau, orb_complex8 *work, const int *lwork, int *info,
                    int) {
  orb::entry::lapack(kChetrd, sytrd_size<orb::c8>, sytrd<orb::c8>, uplo, n, cx(a), lda, d, e,
                     cx(tau), cx(work), lwork, info);
}

}  // extern "C"
