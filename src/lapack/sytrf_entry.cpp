// The exported symmetric and Hermitian indefinite factorizations: SSYTRF,
// CSYTRF and CHETRF (through slasyf_omp, clasyf_omp and clahef_omp), and
// the record of the path the last one took.
#include <cstdint>

#include "blas/complex_abi.h"
#include "common/options.h"
#include "lapack/sytrf.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace orb::lapack {
namespace sytrf_detail {
thread_local SytrfPath t_sytrf_path = SytrfPath::kNone;
}  // namespace sytrf_detail

SytrfPath sytrf_last_path() {
  return sytrf_detail::t_sytrf_path;
}
}  // namespace orb::lapack

namespace {

using orb::option;
using orb::Uplo;
using orb::blas::cx;
namespace check = orb::check;

constexpr check::Test kSytrf[] = {check::option(1, "UL"), check::nonneg(2),
                                  check::ld(4, check::dim(2)),
                                  check::lwork(7, [](check::Args) { return 1; })};
constexpr auto kSsytrf = orb::entry::lapack_checker("SSYTRF", kSytrf, 6, 7);
constexpr auto kCsytrf = orb::entry::lapack_checker("CSYTRF", kSytrf, 6, 7);
constexpr auto kChetrf = orb::entry::lapack_checker("CHETRF", kSytrf, 6, 7);

// The published argument list, read once the checks passed.
template <class T, bool Herm>
std::int64_t sytrf_worksize(const char *, const int *n, T *, const int *, int *, T *, const int *,
                            int *) {
  return orb::lapack::sytrf_worksize<T, Herm>(*n);
}
template <class T, bool Herm>
void sytrf(const char *uplo, const int *n, T *a, const int *lda, int *ipiv, T *work,
           const int *lwork, int *info) {
  *info = orb::lapack::sytrf<T, Herm>(option<Uplo>(*uplo), *n, a, *lda, ipiv, work, *lwork);
}

}  // namespace

extern "C" {

ORB_API void ssytrf(const char *uplo, const int *n, float *a, const int *lda, int *ipiv,
                    float *work, const int *lwork, int *info, int) {
  orb::entry::lapack(kSsytrf, sytrf_worksize<float, false>, sytrf<float, false>, uplo, n, a, lda,
                     ipiv, work, lwork, info);
}

ORB_API void csytrf(const char *uplo, const int *n, orb_complex8 *a, const int *lda, int *ipiv,
                    orb_complex8 *work, const int *lwork, int *info, int) {
  orb::entry::lapack(kCsytrf, sytrf_worksize<orb::c8, false>, sytrf<orb::c8, false>, uplo, n, cx(a),
                     lda, ipiv, cx(work), lwork, info);
}

ORB_API void chetrf(const char *uplo, const int *n, orb_complex8 *a, const int *lda, int *ipiv,
                    orb_complex8 *work, const int *lwork, int *info, int) {
  orb::entry::lapack(kChetrf, sytrf_worksize<orb::c8, true>, sytrf<orb::c8, true>, uplo, n, cx(a),
                     lda, ipiv, cx(work), lwork, info);
}

}  // extern "C"
