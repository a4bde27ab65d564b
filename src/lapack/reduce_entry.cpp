// The exported pieces of the symmetric and Hermitian reductions: the
// orthogonal or unitary factor of the tridiagonal reduction (SORGTR,
// CUNGTR), products with it (SORMTR, CUNMTR), and the generalized
// problem's reduction to standard form (SSYGST, CHEGST).
#include <algorithm>
#include <cstdint>

#include "blas/complex_abi.h"
#include "common/options.h"
#include "lapack/eigen.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

namespace ck = orb::check;
using orb::c8;
using orb::Op;
using orb::option;
using orb::real_t;
using orb::Side;
using orb::Uplo;
using orb::blas::cx;

int arg(ck::Args a, int pos) {
  return ck::int_arg(a, pos);
}
char letter(ck::Args a, int pos) {
  return ck::char_arg(a, pos);
}

// ---- the factor Q ------------------------------------------------------------------------

int orgtr_min(ck::Args a) {
  return std::max(1, arg(a, 2) - 1);
}
constexpr ck::Test kOrgtr[] = {ck::option(1, "UL"), ck::nonneg(2), ck::ld(4, ck::dim(2)),
                               ck::lwork(7, orgtr_min)};

template <class T>
std::int64_t orgtr_size(const char *uplo, const int *n, T *, const int *, const T *, T *,
                        const int *, int *) {
  return orb::lapack::orgtr_worksize<T>(option<Uplo>(*uplo), *n);
}
template <class T>
void orgtr(const char *uplo, const int *n, T *a, const int *lda, const T *tau, T *work,
           const int *lwork, int *) {
  orb::lapack::orgtr(option<Uplo>(*uplo), *n, a, *lda, tau, work, *lwork);
}

// ---- products with Q ---------------------------------------------------------------------

// Q's order: M from the left, N from the right; WORK at least the other.
int ormtr_nq(ck::Args a) {
  return letter(a, 1) == 'L' ? arg(a, 4) : arg(a, 5);
}
bool ormtr_lda(ck::Args a) {
  return arg(a, 7) >= std::max(1, ormtr_nq(a));
}
int ormtr_min(ck::Args a) {
  return std::max(1, letter(a, 1) == 'L' ? arg(a, 5) : arg(a, 4));
}
template <const char *Trans>
constexpr ck::Test kOrmtr[] = {
    ck::option(1, "LR"), ck::option(2, "UL"),     ck::option(3, Trans),   ck::nonneg(4),
    ck::nonneg(5),       ck::holds(7, ormtr_lda), ck::ld(10, ck::dim(4)), ck::lwork(12, ormtr_min)};
constexpr char kRealTrans[] = "NT";
constexpr char kComplexTrans[] = "NC";

template <class T>
std::int64_t ormtr_size(const char *side, const char *uplo, const char *, const int *m,
                        const int *n, const T *, const int *, const T *, T *, const int *, T *,
                        const int *, int *) {
  return orb::lapack::ormtr_worksize<T>(option<Side>(*side), option<Uplo>(*uplo), *m, *n);
}
template <class T>
void ormtr(const char *side, const char *uplo, const char *trans, const int *m, const int *n,
           const T *a, const int *lda, const T *tau, T *c, const int *ldc, T *work,
           const int *lwork, int *) {
  const Op op = orb::upper(*trans) == 'N' ? Op::kNone : Op::kConjTrans;
  orb::lapack::ormtr(option<Side>(*side), option<Uplo>(*uplo), op, *m, *n, a, *lda, tau, c, *ldc,
                     work, *lwork);
}

// ---- the generalized problem -------------------------------------------------------------

bool itype_ok(ck::Args a) {
  return arg(a, 1) >= 1 && arg(a, 1) <= 3;
}
constexpr ck::Test kSygst[] = {ck::holds(1, itype_ok), ck::option(2, "UL"), ck::nonneg(3),
                               ck::ld(5, ck::dim(3)), ck::ld(7, ck::dim(3))};

template <class T>
void sygst(const int *itype, const char *uplo, const int *n, T *a, const int *lda, const T *b,
           const int *ldb, int *) {
  orb::lapack::sygst(*itype, option<Uplo>(*uplo), *n, a, *lda, b, *ldb);
}

constexpr auto kSorgtr = orb::entry::lapack_checker("SORGTR", kOrgtr, 6, 7);
constexpr auto kCungtr = orb::entry::lapack_checker("CUNGTR", kOrgtr, 6, 7);
constexpr auto kSormtr = orb::entry::lapack_checker("SORMTR", kOrmtr<kRealTrans>, 11, 12);
constexpr auto kCunmtr = orb::entry::lapack_checker("CUNMTR", kOrmtr<kComplexTrans>, 11, 12);

constexpr auto kSsygst = orb::entry::lapack_checker("SSYGST", kSygst);
constexpr auto kChegst = orb::entry::lapack_checker("CHEGST", kSygst);

}  // namespace

extern "C" {

ORB_API void sorgtr(const char *uplo, const int *n, float *a, const int *lda, const float *tau,
                    float *work, const int *lwork, int *info, int) {
  orb::entry::lapack(kSorgtr, orgtr_size<float>, orgtr<float>, uplo, n, a, lda, tau, work, lwork,
                     info);
}
ORB_API void cungtr(const char *uplo, const int *n, orb_complex8 *a, const int *lda,
                    const orb_complex8 *tau, orb_complex8 *work, const int *lwork, int *info, int) {
  orb::entry::lapack(kCungtr, orgtr_size<c8>, orgtr<c8>, uplo, n, cx(a), lda, cx(tau), cx(work),
                     lwork, info);
}

ORB_API void sormtr(const char *side, const char *uplo, const char *trans, const int *m,
                    const int *n, const float *a, const int *lda, const float *tau, float *c,
                    const int *ldc, float *work, const int *lwork, int *info, int, int, int) {
  orb::entry::lapack(kSormtr, ormtr_size<float>, ormtr<float>, side, uplo, trans, m, n, a, lda, tau,
                     c, ldc, work, lwork, info);
}
ORB_API void cunmtr(const char *side, const char *uplo, const char *trans, const int *m,
                    const int *n, const orb_complex8 *a, const int *lda, const orb_complex8 *tau,
                    orb_complex8 *c, const int *ldc, orb_complex8 *work, const int *lwork,
                    int *info, int, int, int) {
  orb::entry::lapack(kCunmtr, ormtr_size<c8>, ormtr<c8>, side, uplo, trans, m, n, cx(a), lda,
                     cx(tau), cx(c), ldc, cx(work), lwork, info);
}

ORB_API void ssygst(const int *itype, const char *uplo, const int *n, float *a, const int *lda,
                    const float *b, const int *ldb, int *info, int) {
  orb::entry::lapack(kSsygst, orb::entry::NoWorkspace{}, sygst<float>, itype, uplo, n, a, lda, b,
                     ldb, info);
}
ORB_API void chegst(const int *itype, const char *uplo, const int *n, orb_complex8 *a,
                    const int *lda, orb_complex8 *b, const int *ldb, int *info, int) {
  orb::entry::lapack(kChegst, orb::entry::NoWorkspace{}, sygst<c8>, itype, uplo, n, cx(a), lda,
                     static_cast<const c8 *>(cx(b)), ldb, info);
}

}  // extern "C"
