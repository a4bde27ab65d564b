// The exported QR and LQ family: SGEQRF and CGEQRF (through xgeqrf_omp),
// SGELQF and CGELQF, SORGQR/CUNGQR and SORGLQ/CUNGLQ, SORMQR/CUNMQR
// (through xormqr_omp) and SORMLQ/CUNMLQ (xormlq_omp), and the least-squares
// driver SGELS/CGELS.
#include <algorithm>
#include <cstdint>

#include "blas/complex_abi.h"
#include "common/options.h"
#include "lapack/qr.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

namespace ck = orb::check;
using orb::Op;
using orb::option;
using orb::Side;
using orb::blas::cx;

int max1(int x) {
  return std::max(1, x);
}
int arg(ck::Args args, int pos) {
  return ck::int_arg(args, pos);
}

// The factorizations: LWORK >= max(1, N) (QR) or max(1, M) (LQ).
constexpr ck::Test kGeqrf[] = {ck::nonneg(1), ck::nonneg(2), ck::ld(4, ck::dim(1)),
                               ck::lwork(7, [](ck::Args a) { return max1(arg(a, 2)); })};
constexpr ck::Test kGelqf[] = {ck::nonneg(1), ck::nonneg(2), ck::ld(4, ck::dim(1)),
                               ck::lwork(7, [](ck::Args a) { return max1(arg(a, 1)); })};
// The explicit Q: 0 <= N <= M and 0 <= K <= N (QR); N >= M and 0 <= K <= M (LQ).
constexpr ck::Test kOrgqr[] = {
    ck::nonneg(1),
    ck::holds(2, [](ck::Args a) { return arg(a, 2) >= 0 && arg(a, 2) <= arg(a, 1); }),
    ck::holds(3, [](ck::Args a) { return arg(a, 3) >= 0 && arg(a, 3) <= arg(a, 2); }),
    ck::ld(5, ck::dim(1)), ck::lwork(8, [](ck::Args a) { return max1(arg(a, 2)); })};
constexpr ck::Test kOrglq[] = {
    ck::nonneg(1), ck::holds(2, [](ck::Args a) { return arg(a, 2) >= arg(a, 1); }),
    ck::holds(3, [](ck::Args a) { return arg(a, 3) >= 0 && arg(a, 3) <= arg(a, 1); }),
    ck::ld(5, ck::dim(1)), ck::lwork(8, [](ck::Args a) { return max1(arg(a, 1)); })};
// The products: K <= NQ, the order of Q (M for SIDE = L, else N); LDA
// >= max(1, NQ) (QR) or max(1, K) (LQ); LWORK >= max(1, NW), NW the other.
bool k_in_range(ck::Args a) {
  const int nq = ck::char_arg(a, 1) == 'L' ? arg(a, 3) : arg(a, 4);
  return arg(a, 5) >= 0 && arg(a, 5) <= nq;
}
int orm_min_work(ck::Args a) {
  return max1(ck::char_arg(a, 1) == 'L' ? arg(a, 4) : arg(a, 3));
}
template <bool Complex, bool Lq>
constexpr ck::Test kOrm[] = {ck::option(1, "LR"),
                             ck::option(2, Complex ? "NC" : "NT"),
                             ck::nonneg(3),
                             ck::nonneg(4),
                             ck::holds(5, k_in_range),
                             ck::ld(7, Lq ? ck::dim(5) : ck::dim_if(1, 'L', 3, 4)),
                             ck::ld(10, ck::dim(3)),
                             ck::lwork(12, orm_min_work)};
// The least-squares driver: LDB >= max(1, M, N), LWORK >= max(1, MN +
// max(MN, NRHS)).
template <bool Complex>
constexpr ck::Test kGels[] = {ck::option(1, Complex ? "NC" : "NT"),
                              ck::nonneg(2),
                              ck::nonneg(3),
                              ck::nonneg(4),
                              ck::ld(6, ck::dim(2)),
                              ck::holds(8,
                                        [](ck::Args a) {
                                          return arg(a, 8) >= std::max({1, arg(a, 2), arg(a, 3)});
                                        }),
                              ck::lwork(10, [](ck::Args a) {
                                const int mn = std::min(arg(a, 2), arg(a, 3));
                                return max1(mn + std::max(mn, arg(a, 4)));
                              })};

constexpr auto kSgeqrf = orb::entry::lapack_checker("SGEQRF", kGeqrf, 6, 7);
constexpr auto kCgeqrf = orb::entry::lapack_checker("CGEQRF", kGeqrf, 6, 7);
constexpr auto kSgelqf = orb::entry::lapack_checker("SGELQF", kGelqf, 6, 7);
constexpr auto kCgelqf = orb::entry::lapack_checker("CGELQF", kGelqf, 6, 7);
constexpr auto kSorgqr = orb::entry::lapack_checker("SORGQR", kOrgqr, 7, 8);
constexpr auto kCungqr = orb::entry::lapack_checker("CUNGQR", kOrgqr, 7, 8);
constexpr auto kSorglq = orb::entry::lapack_checker("SORGLQ", kOrglq, 7, 8);
constexpr auto kCunglq = orb::entry::lapack_checker("CUNGLQ", kOrglq, 7, 8);
constexpr auto kSormqr = orb::entry::lapack_checker("SORMQR", kOrm<false, false>, 11, 12);
constexpr auto kCunmqr = orb::entry::lapack_checker("CUNMQR", kOrm<true, false>, 11, 12);
constexpr auto kSormlq = orb::entry::lapack_checker("SORMLQ", kOrm<false, true>, 11, 12);
constexpr auto kCunmlq = orb::entry::lapack_checker("CUNMLQ", kOrm<true, true>, 11, 12);
constexpr auto kSgels = orb::entry::lapack_checker("SGELS ", kGels<false>, 9, 10);
constexpr auto kCgels = orb::entry::lapack_checker("CGELS ", kGels<true>, 9, 10);

// The published argument lists, read once the checks passed.
template <class T>
std::int64_t geqrf_worksize(const int *m, const int *n, T *, const int *, T *, T *, const int *,
                            int *) {
  return orb::lapack::geqrf_worksize<T>(*m, *n);
}
template <class T>
void geqrf(const int *m, const int *n, T *a, const int *lda, T *tau, T *work, const int *lwork,
           int *) {
  orb::lapack::geqrf(*m, *n, a, *lda, tau, work, *lwork);
}
template <class T>
std::int64_t gelqf_worksize(const int *m, const int *n, T *, const int *, T *, T *, const int *,
                            int *) {
  return orb::lapack::gelqf_worksize<T>(*m, *n);
}
template <class T>
void gelqf(const int *m, const int *n, T *a, const int *lda, T *tau, T *work, const int *lwork,
           int *) {
  orb::lapack::gelqf(*m, *n, a, *lda, tau, work, *lwork);
}
template <class T>
std::int64_t orgqr_worksize(const int *m, const int *n, const int *k, T *, const int *, const T *,
                            T *, const int *, int *) {
  return orb::lapack::orgqr_worksize<T>(*m, *n, *k);
}
template <class T>
void orgqr(const int *m, const int *n, const int *k, T *a, const int *lda, const T *tau, T *work,
           const int *lwork, int *) {
  orb::lapack::orgqr(*m, *n, *k, a, *lda, tau, work, *lwork);
}
template <class T>
std::int64_t orglq_worksize(const int *m, const int *n, const int *k, T *, const int *, const T *,
                            T *, const int *, int *) {
  return orb::lapack::orglq_worksize<T>(*m, *n, *k);
}
template <class T>
void orglq(const int *m, const int *n, const int *k, T *a, const int *lda, const T *tau, T *work,
           const int *lwork, int *) {
  orb::lapack::orglq(*m, *n, *k, a, *lda, tau, work, *lwork);
}
template <class T, bool Lq>
std::int64_t orm_worksize(const char *side, const char *, const int *m, const int *n, const int *k,
                          const T *, const int *, const T *, T *, const int *, T *, const int *,
                          int *) {
  const char *routine = orb::lapack::orth_name<T>(Lq ? "ORMLQ" : "ORMQR", Lq ? "UNMLQ" : "UNMQR");
  return orb::lapack::orm_worksize<T>(routine, option<Side>(*side), *m, *n, *k);
}
template <class T, bool Lq>
void orm(const char *side, const char *trans, const int *m, const int *n, const int *k, const T *a,
         const int *lda, const T *tau, T *c, const int *ldc, T *work, const int *lwork, int *) {
  const auto fn = Lq ? orb::lapack::ormlq<T> : orb::lapack::ormqr<T>;
  fn(option<Side>(*side), option<Op>(*trans), *m, *n, *k, a, *lda, tau, c, *ldc, work, *lwork);
}
template <class T>
std::int64_t gels_worksize(const char *trans, const int *m, const int *n, const int *nrhs, T *,
                           const int *, T *, const int *, T *, const int *, int *) {
  return orb::lapack::gels_worksize<T>(option<Op>(*trans), *m, *n, *nrhs);
}
template <class T>
void gels(const char *trans, const int *m, const int *n, const int *nrhs, T *a, const int *lda,
          T *b, const int *ldb, T *work, const int *lwork, int *info) {
  *info = orb::lapack::gels(option<Op>(*trans), *m, *n, *nrhs, a, *lda, b, *ldb, work, *lwork);
}

}  // namespace

extern "C" {

ORB_API void sgeqrf(const int *m, const int *n, float *a, const int *lda, float *tau, float *work,
                    const int *lwork, int *info) {
  orb::entry::lapack(kSgeqrf, geqrf_worksize<float>, geqrf<float>, m, n, a, lda, tau, work, lwork,
                     info);
}
ORB_API void cgeqrf(const int *m, const int *n, orb_complex8 *a, const int *lda, orb_complex8 *tau,
                    orb_complex8 *work, const int *lwork, int *info) {
  orb::entry::lapack(kCgeqrf, geqrf_worksize<orb::c8>, geqrf<orb::c8>, m, n, cx(a), lda, cx(tau),
                     cx(work), lwork, info);
}
ORB_API void sgelqf(const int *m, const int *n, float *a, const int *lda, float *tau, float *work,
                    const int *lwork, int *info) {
  orb::entry::lapack(kSgelqf, gelqf_worksize<float>, gelqf<float>, m, n, a, lda, tau, work, lwork,
                     info);
}
ORB_API void cgelqf(const int *m, const int *n, orb_complex8 *a, const int *lda, orb_complex8 *tau,
                    orb_complex8 *work, const int *lwork, int *info) {
  orb::entry::lapack(kCgelqf, gelqf_worksize<orb::c8>, gelqf<orb::c8>, m, n, cx(a), lda, cx(tau),
                     cx(work), lwork, info);
}

ORB_API void sorgqr(const int *m, const int *n, const int *k, float *a, const int *lda,
                    const float *tau, float *work, const int *lwork, int *info) {
  orb::entry::lapack(kSorgqr, orgqr_worksize<float>, orgqr<float>, m, n, k, a, lda, tau, work,
                     lwork, info);
}
ORB_API void cungqr(const int *m, const int *n, const int *k, orb_complex8 *a, const int *lda,
                    const orb_complex8 *tau, orb_complex8 *work, const int *lwork, int *info) {
  orb::entry::lapack(kCungqr, orgqr_worksize<orb::c8>, orgqr<orb::c8>, m, n, k, cx(a), lda, cx(tau),
                     cx(work), lwork, info);
}
ORB_API void sorglq(const int *m, const int *n, const int *k, float *a, const int *lda,
                    const float *tau, float *work, const int *lwork, int *info) {
  orb::entry::lapack(kSorglq, orglq_worksize<float>, orglq<float>, m, n, k, a, lda, tau, work,
                     lwork, info);
}
ORB_API void cunglq(const int *m, const int *n, const int *k, orb_complex8 *a, const int *lda,
                    const orb_complex8 *tau, orb_complex8 *work, const int *lwork, int *info) {
  orb::entry::lapack(kCunglq, orglq_worksize<orb::c8>, orglq<orb::c8>, m, n, k, cx(a), lda, cx(tau),
                     cx(work), lwork, info);
}

ORB_API void sormqr(const char *side, const char *trans, const int *m, const int *n, const int *k,
                    const float *a, const int *lda, const float *tau, float *c, const int *ldc,
                    float *work, const int *lwork, int *info, int, int) {
  orb::entry::lapack(kSormqr, orm_worksize<float, false>, orm<float, false>, side, trans, m, n, k,
                     a, lda, tau, c, ldc, work, lwork, info);
}
ORB_API void cunmqr(const char *side, const char *trans, const int *m, const int *n, const int *k,
                    const orb_complex8 *a, const int *lda, const orb_complex8 *tau, orb_complex8 *c,
                    const int *ldc, orb_complex8 *work, const int *lwork, int *info, int, int) {
  orb::entry::lapack(kCunmqr, orm_worksize<orb::c8, false>, orm<orb::c8, false>, side, trans, m, n,
                     k, cx(a), lda, cx(tau), cx(c), ldc, cx(work), lwork, info);
}
ORB_API void sormlq(const char *side, const char *trans, const int *m, const int *n, const int *k,
                    const float *a, const int *lda, const float *tau, float *c, const int *ldc,
                    float *work, const int *lwork, int *info, int, int) {
  orb::entry::lapack(kSormlq, orm_worksize<float, true>, orm<float, true>, side, trans, m, n, k, a,
                     lda, tau, c, ldc, work, lwork, info);
}
ORB_API void cunmlq(const char *side, const char *trans, const int *m, const int *n, const int *k,
                    const orb_complex8 *a, const int *lda, const orb_complex8 *tau, orb_complex8 *c,
                    const int *ldc, orb_complex8 *work, const int *lwork, int *info, int, int) {
  orb::entry::lapack(kCunmlq, orm_worksize<orb::c8, true>, orm<orb::c8, true>, side, trans, m, n, k,
                     cx(a), lda, cx(tau), cx(c), ldc, cx(work), lwork, info);
}

ORB_API void sgels(const char *trans, const int *m, const int *n, const int *nrhs, float *a,
                   const int *lda, float *b, const int *ldb, float *work, const int *lwork,
                   int *info, int) {
  orb::entry::lapack(kSgels, gels_worksize<float>, gels<float>, trans, m, n, nrhs, a, lda, b, ldb,
                     work, lwork, info);
}
ORB_API void cgels(const char *trans, const int *m, const int *n, const int *nrhs, orb_complex8 *a,
                   const int *lda, orb_complex8 *b, const int *ldb, orb_complex8 *work,
                   const int *lwork, int *info, int) {
  orb::entry::lapack(kCgels, gels_worksize<orb::c8>, gels<orb::c8>, trans, m, n, nrhs, cx(a), lda,
                     cx(b), ldb, cx(work), lwork, info);
}

}  // extern "C"
