// The exported singular value and SVD-based least-squares routines: the
// bidiagonal reduction and its orthogonal factors (SGEBRD, SORGBR, SORMBR,
// CGEBRD, CUNGBR), the decompositions (SGESVD, SGESDD and their complex
// forms) and the least-squares drivers (SGELSS, SGELSD and theirs).
#include <algorithm>
#include <cstdint>

#include "blas/complex_abi.h"
#include "common/options.h"
#include "lapack/bidiag.h"
#include "lapack/svd_drivers.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

namespace ck = orb::check;
using orb::c8;
using orb::JobSvd;
using orb::Op;
using orb::option;
using orb::real_t;
using orb::Side;
using orb::blas::cx;
using orb::lapack::Vect;

int arg(ck::Args a, int pos) {
  return ck::int_arg(a, pos);
}
char letter(ck::Args a, int pos) {
  return ck::char_arg(a, pos);
}
Vect vect_of(char c) {
  return orb::upper(c) == 'Q' ? Vect::kQ : Vect::kP;
}

// ---- the bidiagonal reduction ----------------------------------------------------------

int gebrd_min(ck::Args a) {
  return std::min(arg(a, 1), arg(a, 2)) == 0 ? 1 : std::max(arg(a, 1), arg(a, 2));
}
constexpr ck::Test kGebrd[] = {ck::nonneg(1), ck::nonneg(2), ck::ld(4, ck::dim(1)),
                               ck::lwork(10, gebrd_min)};

// N against M and K: Q is m x n from an m x k reduction (n <= m, n >= min(m, k)),
// P^H m x n from a k x n one (m <= n, m >= min(n, k)).
bool orgbr_n(ck::Args a) {
  const int m = arg(a, 2), n = arg(a, 3), k = arg(a, 4);
  if (n < 0) return false;
  if (letter(a, 1) == 'Q') return !(n > m || n < std::min(m, k));
  return !(m > n || m < std::min(n, k));
}
int orgbr_min(ck::Args a) {
  return std::max(1, std::min(arg(a, 2), arg(a, 3)));
}
constexpr ck::Test kOrgbr[] = {ck::option(1, "QP"), ck::nonneg(2),         ck::holds(3, orgbr_n),
                               ck::nonneg(4),       ck::ld(6, ck::dim(2)), ck::lwork(9, orgbr_min)};

// LDA >= Q's order (Q) or min(order, K) (P), the order being M (left) or N.
bool ormbr_lda(ck::Args a) {
  const int nq = letter(a, 2) == 'L' ? arg(a, 4) : arg(a, 5);
  const int rows = letter(a, 1) == 'Q' ? nq : std::min(nq, arg(a, 6));
  return arg(a, 8) >= std::max(1, rows);
}
int ormbr_min(ck::Args a) {
  return std::max(1, letter(a, 2) == 'L' ? arg(a, 5) : arg(a, 4));
}
constexpr ck::Test kOrmbr[] = {
    ck::option(1, "QP"),     ck::option(2, "LR"),    ck::option(3, "NT"),
    ck::nonneg(4),           ck::nonneg(5),          ck::nonneg(6),
    ck::holds(8, ormbr_lda), ck::ld(11, ck::dim(4)), ck::lwork(13, ormbr_min)};

constexpr auto kSgebrd = orb::entry::lapack_checker("SGEBRD", kGebrd, 9, 10);
constexpr auto kCgebrd = orb::entry::lapack_checker("CGEBRD", kGebrd, 9, 10);
constexpr auto kSorgbr = orb::entry::lapack_checker("SORGBR", kOrgbr, 8, 9);
constexpr auto kCungbr = orb::entry::lapack_checker("CUNGBR", kOrgbr, 8, 9);
constexpr auto kSormbr = orb::entry::lapack_checker("SORMBR", kOrmbr, 12, 13);

template <class T>
std::int64_t gebrd_size(const int *m, const int *n, T *, const int *, real_t<T> *, real_t<T> *, T *,
                        T *, T *, const int *, int *) {
  return orb::lapack::gebrd_worksize<T>(*m, *n);
}
template <class T>
void gebrd(const int *m, const int *n, T *a, const int *lda, real_t<T> *d, real_t<T> *e, T *tauq,
           T *taup, T *work, const int *lwork, int *) {
  orb::lapack::gebrd(*m, *n, a, *lda, d, e, tauq, taup, work, *lwork);
  *work = T(static_cast<real_t<T>>(orb::lapack::gebrd_worksize<T>(*m, *n)));
}

template <class T>
std::int64_t orgbr_size(const char *vect, const int *m, const int *n, const int *k, T *,
                        const int *, const T *, T *, const int *, int *) {
  return orb::lapack::orgbr_worksize<T>(vect_of(*vect), *m, *n, *k);
}
template <class T>
void orgbr(const char *vect, const int *m, const int *n, const int *k, T *a, const int *lda,
           const T *tau, T *work, const int *lwork, int *) {
  const Vect v = vect_of(*vect);
  const auto best = orb::lapack::orgbr_worksize<T>(v, *m, *n, *k);
  orb::lapack::orgbr(v, *m, *n, *k, a, *lda, tau, work, *lwork);
  *work = T(static_cast<real_t<T>>(best));
}

template <class T>
std::int64_t ormbr_size(const char *vect, const char *side, const char *trans, const int *m,
                        const int *n, const int *k, const T *, const int *, const T *, T *,
                        const int *, T *, const int *, int *) {
  return orb::lapack::ormbr_worksize<T>(vect_of(*vect), option<Side>(*side), option<Op>(*trans), *m,
                                        *n, *k);
}
template <class T>
void ormbr(const char *vect, const char *side, const char *trans, const int *m, const int *n,
           const int *k, const T *a, const int *lda, const T *tau, T *c, const int *ldc, T *work,
           const int *lwork, int *) {
  const Vect v = vect_of(*vect);
  const Side s = option<Side>(*side);
  const Op op = option<Op>(*trans) == Op::kNone ? Op::kNone : Op::kConjTrans;
  const auto best = orb::lapack::ormbr_worksize<T>(v, s, op, *m, *n, *k);
  orb::lapack::ormbr(v, s, op, *m, *n, *k, a, *lda, tau, c, *ldc, work, *lwork);
  *work = T(static_cast<real_t<T>>(best));
}

// ---- the decompositions ----------------------------------------------------------------

JobSvd job(ck::Args a, int pos) {
  return option<JobSvd>(letter(a, pos));
}
bool gesvd_jobvt(ck::Args a) {
  const char c = letter(a, 2);
  return (c == 'A' || c == 'S' || c == 'O' || c == 'N') && !(c == 'O' && letter(a, 1) == 'O');
}
bool gesvd_ldu(ck::Args a) {
  const int ldu = arg(a, 9);
  const char u = letter(a, 1);
  return ldu >= 1 && !((u == 'A' || u == 'S') && ldu < arg(a, 3));
}
bool gesvd_ldvt(ck::Args a) {
  const int ldvt = arg(a, 11), m = arg(a, 3), n = arg(a, 4);
  const char v = letter(a, 2);
  return ldvt >= 1 && !(v == 'A' && ldvt < n) && !(v == 'S' && ldvt < std::min(m, n));
}
template <class T>
int gesvd_min(ck::Args a) {
  return orb::lapack::gesvd_minwork<T>(job(a, 1), job(a, 2), arg(a, 3), arg(a, 4));
}
template <class T>
constexpr ck::Test kGesvd[] = {ck::option(1, "ASON"),
                               ck::holds(2, gesvd_jobvt),
                               ck::nonneg(3),
                               ck::nonneg(4),
                               ck::ld(6, ck::dim(3)),
                               ck::holds(9, gesvd_ldu),
                               ck::holds(11, gesvd_ldvt),
                               ck::lwork(13, gesvd_min<T>)};

bool gesdd_ldu(ck::Args a) {
  const int ldu = arg(a, 8), m = arg(a, 2), n = arg(a, 3);
  const char z = letter(a, 1);
  return ldu >= 1 && !((z == 'A' || z == 'S') && ldu < m) && !(z == 'O' && m < n && ldu < m);
}
bool gesdd_ldvt(ck::Args a) {
  const int ldvt = arg(a, 10), m = arg(a, 2), n = arg(a, 3);
  const char z = letter(a, 1);
  return ldvt >= 1 && !(z == 'A' && ldvt < n) && !(z == 'S' && ldvt < std::min(m, n)) &&
         !(z == 'O' && m >= n && ldvt < n);
}
template <class T>
int gesdd_min(ck::Args a) {
  return orb::lapack::gesdd_minwork<T>(job(a, 1), arg(a, 2), arg(a, 3));
}
template <class T>
constexpr ck::Test kGesdd[] = {
    ck::option(1, "ASON"),      ck::nonneg(2),           ck::nonneg(3),
    ck::ld(5, ck::dim(2)),      ck::holds(8, gesdd_ldu), ck::holds(10, gesdd_ldvt),
    ck::lwork(12, gesdd_min<T>)};

constexpr auto kSgesvd = orb::entry::lapack_checker("SGESVD", kGesvd<float>, 12, 13);
constexpr auto kCgesvd = orb::entry::lapack_checker("CGESVD", kGesvd<c8>, 12, 13);
constexpr auto kSgesdd = orb::entry::lapack_checker("SGESDD", kGesdd<float>, 11, 12);
constexpr auto kCgesdd = orb::entry::lapack_checker("CGESDD", kGesdd<c8>, 11, 12);

// The queries read the leading arguments only.
template <class T>
struct GesvdSize {
  template <class... Rest>
  std::int64_t operator()(const char *jobu, const char *jobvt, const int *m, const int *n,
                          Rest...) const {
    return orb::lapack::gesvd_worksize<T>(option<JobSvd>(*jobu), option<JobSvd>(*jobvt), *m, *n);
  }
};
template <class T>
void gesvd_run(const char *jobu, const char *jobvt, const int *m, const int *n, T *a,
               const int *lda, real_t<T> *s, T *u, const int *ldu, T *vt, const int *ldvt, T *work,
               const int *lwork, real_t<T> *rwork, int *info) {
  const JobSvd ju = option<JobSvd>(*jobu), jv = option<JobSvd>(*jobvt);
  *info = orb::lapack::gesvd(ju, jv, *m, *n, a, *lda, s, u, *ldu, vt, *ldvt, work, *lwork, rwork);
  *work = T(static_cast<real_t<T>>(orb::lapack::gesvd_worksize<T>(ju, jv, *m, *n)));
}

template <class T>
struct GesddSize {
  template <class... Rest>
  std::int64_t operator()(const char *jobz, const int *m, const int *n, Rest...) const {
    return orb::lapack::gesdd_worksize<T>(option<JobSvd>(*jobz), *m, *n);
  }
};
template <class T>
void gesdd_run(const char *jobz, const int *m, const int *n, T *a, const int *lda, real_t<T> *s,
               T *u, const int *ldu, T *vt, const int *ldvt, T *work, const int *lwork,
               real_t<T> *rwork, int *iwork, int *info) {
  const JobSvd jz = option<JobSvd>(*jobz);
  *info =
      orb::lapack::gesdd(jz, *m, *n, a, *lda, s, u, *ldu, vt, *ldvt, work, *lwork, rwork, iwork);
  *work = T(static_cast<real_t<T>>(orb::lapack::gesdd_worksize<T>(jz, *m, *n)));
}

// ---- least squares ---------------------------------------------------------------------

bool ls_ldb(ck::Args a) {
  return arg(a, 7) >= std::max({1, arg(a, 1), arg(a, 2)});
}
template <class T>
int gelss_min(ck::Args a) {
  return orb::lapack::gelss_minwork<T>(arg(a, 1), arg(a, 2), arg(a, 3));
}
template <class T>
int gelsd_min(ck::Args a) {
  return orb::lapack::gelsd_minwork<T>(arg(a, 1), arg(a, 2), arg(a, 3));
}
template <class T>
constexpr ck::Test kGelss[] = {ck::nonneg(1),        ck::nonneg(2),
                               ck::nonneg(3),        ck::ld(5, ck::dim(1)),
                               ck::holds(7, ls_ldb), ck::lwork(12, gelss_min<T>)};
template <class T>
constexpr ck::Test kGelsd[] = {ck::nonneg(1),        ck::nonneg(2),
                               ck::nonneg(3),        ck::ld(5, ck::dim(1)),
                               ck::holds(7, ls_ldb), ck::lwork(12, gelsd_min<T>)};

constexpr auto kSgelss = orb::entry::lapack_checker("SGELSS", kGelss<float>, 11, 12);
constexpr auto kCgelss = orb::entry::lapack_checker("CGELSS", kGelss<c8>, 11, 12);
constexpr auto kSgelsd = orb::entry::lapack_checker("SGELSD", kGelsd<float>, 11, 12);
constexpr auto kCgelsd = orb::entry::lapack_checker("CGELSD", kGelsd<c8>, 11, 12);

template <class T>
struct GelssSize {
  template <class... Rest>
  std::int64_t operator()(const int *m, const int *n, const int *nrhs, Rest...) const {
    return orb::lapack::gelss_worksize<T>(*m, *n, *nrhs);
  }
};
template <class T>
void gelss_run(const int *m, const int *n, const int *nrhs, T *a, const int *lda, T *b,
               const int *ldb, real_t<T> *s, const real_t<T> *rcond, int *rank, T *work,
               const int *lwork, real_t<T> *rwork, int *info) {
  *info =
      orb::lapack::gelss(*m, *n, *nrhs, a, *lda, b, *ldb, s, *rcond, *rank, work, *lwork, rwork);
  *work = T(static_cast<real_t<T>>(orb::lapack::gelss_worksize<T>(*m, *n, *nrhs)));
}

// The query also gives IWORK(1) and, for complex data, RWORK(1).
template <class T>
std::int64_t gelsd_size_of(int m, int n, int nrhs, real_t<T> *rwork, int *iwork) {
  if (iwork != nullptr) *iwork = orb::lapack::gelsd_iwork<T>(m, n);
  if (rwork != nullptr) *rwork = static_cast<real_t<T>>(orb::lapack::gelsd_rwork<T>(m, n, nrhs));
  return orb::lapack::gelsd_worksize<T>(m, n, nrhs);
}
template <class T>
void gelsd_run(const int *m, const int *n, const int *nrhs, T *a, const int *lda, T *b,
               const int *ldb, real_t<T> *s, const real_t<T> *rcond, int *rank, T *work,
               const int *lwork, real_t<T> *rwork, int *iwork, int *info) {
  *info = orb::lapack::gelsd(*m, *n, *nrhs, a, *lda, b, *ldb, s, *rcond, *rank, work, *lwork, rwork,
                             iwork);
  gelsd_size_of<T>(*m, *n, *nrhs, rwork, iwork);
  *work = T(static_cast<real_t<T>>(orb::lapack::gelsd_worksize<T>(*m, *n, *nrhs)));
}

}  // namespace

extern "C" {

ORB_API void sgebrd(const int *m, const int *n, float *a, const int *lda, float *d, float *e,
                    float *tauq, float *taup, float *work, const int *lwork, int *info) {
  orb::entry::lapack(kSgebrd, gebrd_size<float>, gebrd<float>, m, n, a, lda, d, e, tauq, taup, work,
                     lwork, info);
}
ORB_API void cgebrd(const int *m, const int *n, orb_complex8 *a, const int *lda, float *d, float *e,
                    orb_complex8 *tauq, orb_complex8 *taup, orb_complex8 *work, const int *lwork,
                    int *info) {
  orb::entry::lapack(kCgebrd, gebrd_size<c8>, gebrd<c8>, m, n, cx(a), lda, d, e, cx(tauq), cx(taup),
                     cx(work), lwork, info);
}

ORB_API void sorgbr(const char *vect, const int *m, const int *n, const int *k, float *a,
                    const int *lda, const float *tau, float *work, const int *lwork, int *info,
                    int) {
  orb::entry::lapack(kSorgbr, orgbr_size<float>, orgbr<float>, vect, m, n, k, a, lda, tau, work,
                     lwork, info);
}
ORB_API void cungbr(const char *vect, const int *m, const int *n, const int *k, orb_complex8 *a,
                    const int *lda, const orb_complex8 *tau, orb_complex8 *work, const int *lwork,
                    int *info, int) {
  orb::entry::lapack(kCungbr, orgbr_size<c8>, orgbr<c8>, vect, m, n, k, cx(a), lda, cx(tau),
                     cx(work), lwork, info);
}

ORB_API void sormbr(const char *vect, const char *side, const char *trans, const int *m,
                    const int *n, const int *k, const float *a, const int *lda, const float *tau,
                    float *c, const int *ldc, float *work, const int *lwork, int *info, int, int,
                    int) {
  orb::entry::lapack(kSormbr, ormbr_size<float>, ormbr<float>, vect, side, trans, m, n, k, a, lda,
                     tau, c, ldc, work, lwork, info);
}

ORB_API void sgesvd(const char *jobu, const char *jobvt, const int *m, const int *n, float *a,
                    const int *lda, float *s, float *u, const int *ldu, float *vt, const int *ldvt,
                    float *work, const int *lwork, int *info, int, int) {
  orb::entry::lapack(
      kSgesvd, GesvdSize<float>{},
      [](const char *ju, const char *jv, const int *m_, const int *n_, float *a_, const int *lda_,
         float *s_, float *u_, const int *ldu_, float *vt_, const int *ldvt_, float *w,
         const int *lw, int *inf) {
        gesvd_run<float>(ju, jv, m_, n_, a_, lda_, s_, u_, ldu_, vt_, ldvt_, w, lw, nullptr, inf);
      },
      jobu, jobvt, m, n, a, lda, s, u, ldu, vt, ldvt, work, lwork, info);
}
ORB_API void cgesvd(const char *jobu, const char *jobvt, const int *m, const int *n,
                    orb_complex8 *a, const int *lda, float *s, orb_complex8 *u, const int *ldu,
                    orb_complex8 *vt, const int *ldvt, orb_complex8 *work, const int *lwork,
                    float *rwork, int *info, int, int) {
  orb::entry::lapack(kCgesvd, GesvdSize<c8>{}, gesvd_run<c8>, jobu, jobvt, m, n, cx(a), lda, s,
                     cx(u), ldu, cx(vt), ldvt, cx(work), lwork, rwork, info);
}

ORB_API void sgesdd(const char *jobz, const int *m, const int *n, float *a, const int *lda,
                    float *s, float *u, const int *ldu, float *vt, const int *ldvt, float *work,
                    const int *lwork, int *iwork, int *info, int) {
  orb::entry::lapack(
      kSgesdd, GesddSize<float>{},
      [](const char *jz, const int *m_, const int *n_, float *a_, const int *lda_, float *s_,
         float *u_, const int *ldu_, float *vt_, const int *ldvt_, float *w, const int *lw, int *iw,
         int *inf) {
        gesdd_run<float>(jz, m_, n_, a_, lda_, s_, u_, ldu_, vt_, ldvt_, w, lw, nullptr, iw, inf);
      },
      jobz, m, n, a, lda, s, u, ldu, vt, ldvt, work, lwork, iwork, info);
}
ORB_API void cgesdd(const char *jobz, const int *m, const int *n, orb_complex8 *a, const int *lda,
                    float *s, orb_complex8 *u, const int *ldu, orb_complex8 *vt, const int *ldvt,
                    orb_complex8 *work, const int *lwork, float *rwork, int *iwork, int *info,
                    int) {
  orb::entry::lapack(kCgesdd, GesddSize<c8>{}, gesdd_run<c8>, jobz, m, n, cx(a), lda, s, cx(u), ldu,
                     cx(vt), ldvt, cx(work), lwork, rwork, iwork, info);
}

ORB_API void sgelss(const int *m, const int *n, const int *nrhs, float *a, const int *lda, float *b,
                    const int *ldb, float *s, const float *rcond, int *rank, float *work,
                    const int *lwork, int *info) {
  orb::entry::lapack(
      kSgelss, GelssSize<float>{},
      [](const int *m_, const int *n_, const int *k_, float *a_, const int *lda_, float *b_,
         const int *ldb_, float *s_, const float *rc, int *rk, float *w, const int *lw, int *inf) {
        gelss_run<float>(m_, n_, k_, a_, lda_, b_, ldb_, s_, rc, rk, w, lw, nullptr, inf);
      },
      m, n, nrhs, a, lda, b, ldb, s, rcond, rank, work, lwork, info);
}
ORB_API void cgelss(const int *m, const int *n, const int *nrhs, orb_complex8 *a, const int *lda,
                    orb_complex8 *b, const int *ldb, float *s, const float *rcond, int *rank,
                    orb_complex8 *work, const int *lwork, float *rwork, int *info) {
  orb::entry::lapack(kCgelss, GelssSize<c8>{}, gelss_run<c8>, m, n, nrhs, cx(a), lda, cx(b), ldb, s,
                     rcond, rank, cx(work), lwork, rwork, info);
}

ORB_API void sgelsd(const int *m, const int *n, const int *nrhs, float *a, const int *lda, float *b,
                    const int *ldb, float *s, const float *rcond, int *rank, float *work,
                    const int *lwork, int *iwork, int *info) {
  orb::entry::lapack(
      kSgelsd,
      [](const int *m_, const int *n_, const int *k_, float *, const int *, float *, const int *,
         float *, const float *, int *, float *, const int *, int *iw,
         int *) -> std::int64_t { return gelsd_size_of<float>(*m_, *n_, *k_, nullptr, iw); },
      [](const int *m_, const int *n_, const int *k_, float *a_, const int *lda_, float *b_,
         const int *ldb_, float *s_, const float *rc, int *rk, float *w, const int *lw, int *iw,
         int *inf) {
        gelsd_run<float>(m_, n_, k_, a_, lda_, b_, ldb_, s_, rc, rk, w, lw, nullptr, iw, inf);
      },
      m, n, nrhs, a, lda, b, ldb, s, rcond, rank, work, lwork, iwork, info);
}
ORB_API void cgelsd(const int *m, const int *n, const int *nrhs, orb_complex8 *a, const int *lda,
                    orb_complex8 *b, const int *ldb, float *s, const float *rcond, int *rank,
                    orb_complex8 *work, const int *lwork, float *rwork, int *iwork, int *info) {
  orb::entry::lapack(
      kCgelsd,
      [](const int *m_, const int *n_, const int *k_, c8 *, const int *, c8 *, const int *, float *,
         const float *, int *, c8 *, const int *, float *rw, int *iw,
         int *) -> std::int64_t { return gelsd_size_of<c8>(*m_, *n_, *k_, rw, iw); },
      gelsd_run<c8>, m, n, nrhs, cx(a), lda, cx(b), ldb, s, rcond, rank, cx(work), lwork, rwork,
      iwork, info);
}

}  // extern "C"
