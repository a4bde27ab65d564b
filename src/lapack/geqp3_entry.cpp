// The exported QR factorization with column pivoting, SGEQP3.
#include <algorithm>
#include <cstdint>

#include "lapack/geqp3.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

namespace ck = orb::check;

int geqp3_min_lwork(ck::Args args) {
  return static_cast<int>(
      orb::lapack::geqp3_minwork<float>(ck::int_arg(args, 1), ck::int_arg(args, 2)));
}

constexpr ck::Test kGeqp3[] = {ck::nonneg(1), ck::nonneg(2), ck::ld(4, ck::dim(1)),
                               ck::lwork(8, geqp3_min_lwork)};
constexpr auto kSgeqp3 = orb::entry::lapack_checker("SGEQP3", kGeqp3, 7, 8);

std::int64_t geqp3_worksize(const int *m, const int *n, float *, const int *, int *, float *,
                            float *, const int *, int *) {
  return orb::lapack::geqp3_worksize<float>(*m, *n);
}
void geqp3(const int *m, const int *n, float *a, const int *lda, int *jpvt, float *tau, float *work,
           const int *lwork, int *) {
  const std::int64_t used =
      orb::lapack::geqp3<float>(*m, *n, a, *lda, jpvt, tau, work, *lwork, nullptr);
  work[0] = static_cast<float>(used);
}

}  // namespace

extern "C" {

ORB_API void sgeqp3(const int *m, const int *n, float *a, const int *lda, int *jpvt, float *tau,
                    float *work, const int *lwork, int *info) {
  orb::entry::lapack(kSgeqp3, geqp3_worksize, geqp3, m, n, a, lda, jpvt, tau, work, lwork, info);
}

}  // extern "C"
