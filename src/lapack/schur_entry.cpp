// The exported routines of the Schur form: its eigenvectors (STREVC,
// CTREVC), the Sylvester equation (STRSYL, CTRSYL) and the condition
// numbers (STRSNA, CTRSNA).
#include <complex>

#include "blas/complex_abi.h"
#include "common/options.h"
#include "lapack/nonsym.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"

namespace {

namespace ck = orb::check;
namespace la = orb::lapack;
using orb::c8;
using orb::Op;
using orb::blas::cx;
using orb::entry::NoWorkspace;

int arg(ck::Args a, int pos) {
  return ck::int_arg(a, pos);
}
char letter(ck::Args a, int pos) {
  return ck::char_arg(a, pos);
}

la::EigSide eig_side(char c) {
  c = orb::upper(c);
  return c == 'R' ? la::EigSide::kRight : c == 'L' ? la::EigSide::kLeft : la::EigSide::kBoth;
}
la::HowMany how_many(char c) {
  c = orb::upper(c);
  return c == 'A'   ? la::HowMany::kAll
         : c == 'B' ? la::HowMany::kBackTransform
                    : la::HowMany::kSelected;
}

// ---- xTREVC ------------------------------------------------------------------------------

// LDVL (argument 8) >= 1, and >= N when left vectors are wanted; LDVR
// (argument 10) the same for right vectors.
template <int LD, char SKIP>
bool vec_ld(ck::Args a) {
  const int ld = arg(a, LD);
  return ld >= 1 && !(letter(a, 1) != SKIP && ld < arg(a, 4));
}
// MM (argument 11 of xTREVC, 13 of xTRSNA) >= M, the number of columns the
// selection needs (a real pair counts twice when either of its eigenvalues
// is selected).
template <bool Complex, int MM = 11>
bool mm_ok(ck::Args a) {
  const int n = arg(a, 4);
  int m = n;
  if (letter(a, 2) == 'S') {
    const int *select = static_cast<const int *>(a[2]);
    m = 0;
    if constexpr (Complex) {
      for (int j = 0; j < n; ++j) m += select[j] ? 1 : 0;
    } else {
      const float *t = static_cast<const float *>(a[4]);
      const int ldt = arg(a, 6);
      for (int j = 0; j < n; ++j) {
        if (j + 1 < n && t[j + 1 + static_cast<std::ptrdiff_t>(j) * ldt] != 0) {
          m += (select[j] || select[j + 1]) ? 2 : 0;
          ++j;
        } else {
          m += select[j] ? 1 : 0;
        }
      }
    }
  }
  return arg(a, MM) >= m;
}

template <bool Complex>
constexpr ck::Test kTrevc[] = {
    ck::option(1, "RLB"),         ck::option(2, "ABS"),         ck::nonneg(4),
    ck::ld(6, ck::dim(4)),        ck::holds(8, vec_ld<8, 'R'>), ck::holds(10, vec_ld<10, 'L'>),
    ck::holds(11, mm_ok<Complex>)};
constexpr auto kStrevc = orb::entry::lapack_checker("STREVC", kTrevc<false>);
constexpr auto kCtrevc = orb::entry::lapack_checker("CTREVC", kTrevc<true>);

template <class T>
void trevc(const char *side, const char *howmny, int *select, const int *n, T *t, const int *ldt,
           T *vl, const int *ldvl, T *vr, const int *ldvr, const int *mm, int *m, T *work,
           float *rwork, int *info) {
  *info = la::trevc<T>(eig_side(*side), how_many(*howmny), select, *n, t, *ldt, vl, *ldvl, vr,
                       *ldvr, *mm, m, work, rwork);
}
void strevc_impl(const char *side, const char *howmny, int *select, const int *n, const float *t,
                 const int *ldt, float *vl, const int *ldvl, float *vr, const int *ldvr,
                 const int *mm, int *m, float *work, int *info) {
  // The real routine reads T only.
  trevc<float>(side, howmny, select, n, const_cast<float *>(t), ldt, vl, ldvl, vr, ldvr, mm, m,
               work, nullptr, info);
}

// ---- xTRSYL ------------------------------------------------------------------------------

bool isgn_ok(ck::Args a) {
  return arg(a, 3) == 1 || arg(a, 3) == -1;
}
constexpr ck::Test kStrsyl[] = {ck::option(1, "NTC"),  ck::option(2, "NTC"),  ck::holds(3, isgn_ok),
                                ck::nonneg(4),         ck::nonneg(5),         ck::ld(7, ck::dim(4)),
                                ck::ld(9, ck::dim(5)), ck::ld(11, ck::dim(4))};
constexpr ck::Test kCtrsyl[] = {ck::option(1, "NC"),   ck::option(2, "NC"),   ck::holds(3, isgn_ok),
                                ck::nonneg(4),         ck::nonneg(5),         ck::ld(7, ck::dim(4)),
                                ck::ld(9, ck::dim(5)), ck::ld(11, ck::dim(4))};
constexpr auto kStrsylC = orb::entry::lapack_checker("STRSYL", kStrsyl);
constexpr auto kCtrsylC = orb::entry::lapack_checker("CTRSYL", kCtrsyl);

Op trans_of(char c) {
  c = orb::upper(c);
  return c == 'N' ? Op::kNone : c == 'T' ? Op::kTrans : Op::kConjTrans;
}

template <class T>
void trsyl(const char *trana, const char *tranb, const int *isgn, const int *m, const int *n,
           const T *a, const int *lda, const T *b, const int *ldb, T *c, const int *ldc,
           float *scale, int *info) {
  *info = la::trsyl<T>(trans_of(*trana), trans_of(*tranb), *isgn, *m, *n, a, *lda, b, *ldb, c, *ldc,
                       scale);
}

// ---- xTRSNA ------------------------------------------------------------------------------

la::Sense sense(char c) {
  c = orb::upper(c);
  return c == 'E' ? la::Sense::kValues : c == 'V' ? la::Sense::kVectors : la::Sense::kBoth;
}

// LDVL and LDVR >= N unless only SEP is wanted (JOB = 'V'); LDWORK
// (argument 16) >= N unless only S is (JOB = 'E').
template <bool Complex>
constexpr ck::Test kTrsna[] = {ck::option(1, "EVB"),
                               ck::option(2, "AS"),
                               ck::nonneg(4),
                               ck::ld(6, ck::dim(4)),
                               ck::holds(8, vec_ld<8, 'V'>),
                               ck::holds(10, vec_ld<10, 'V'>),
                               ck::holds(13, mm_ok<Complex, 13>),
                               ck::holds(16, vec_ld<16, 'E'>)};
constexpr auto kStrsna = orb::entry::lapack_checker("STRSNA", kTrsna<false>);
constexpr auto kCtrsna = orb::entry::lapack_checker("CTRSNA", kTrsna<true>);

void strsna_impl(const char *job, const char *howmny, const int *select, const int *n,
                 const float *t, const int *ldt, const float *vl, const int *ldvl, const float *vr,
                 const int *ldvr, float *s, float *sep, const int *mm, int *m, float *work,
                 const int *ldwork, int *iwork, int *info) {
  *info = la::trsna<float>(sense(*job), how_many(*howmny), select, *n, t, *ldt, vl, *ldvl, vr,
                           *ldvr, s, sep, *mm, m, work, *ldwork, iwork, nullptr);
}
void ctrsna_impl(const char *job, const char *howmny, const int *select, const int *n, const c8 *t,
                 const int *ldt, const c8 *vl, const int *ldvl, const c8 *vr, const int *ldvr,
                 float *s, float *sep, const int *mm, int *m, c8 *work, const int *ldwork,
                 float *rwork, int *info) {
  *info = la::trsna<c8>(sense(*job), how_many(*howmny), select, *n, t, *ldt, vl, *ldvl, vr, *ldvr,
                        s, sep, *mm, m, work, *ldwork, nullptr, rwork);
}

}  // namespace

extern "C" {

ORB_API void strevc(const char *side, const char *howmny, int *select, const int *n, const float *t,
                    const int *ldt, float *vl, const int *ldvl, float *vr, const int *ldvr,
                    const int *mm, int *m, float *work, int *info, int, int) {
  orb::entry::lapack(kStrevc, NoWorkspace{}, strevc_impl, side, howmny, select, n, t, ldt, vl, ldvl,
                     vr, ldvr, mm, m, work, info);
}

ORB_API void ctrevc(const char *side, const char *howmny, const int *select, const int *n,
                    orb_complex8 *t, const int *ldt, orb_complex8 *vl, const int *ldvl,
                    orb_complex8 *vr, const int *ldvr, const int *mm, int *m, orb_complex8 *work,
                    float *rwork, int *info, int, int) {
  // The complex routine reads SELECT only.
  orb::entry::lapack(kCtrevc, NoWorkspace{}, trevc<c8>, side, howmny, const_cast<int *>(select), n,
                     cx(t), ldt, cx(vl), ldvl, cx(vr), ldvr, mm, m, cx(work), rwork, info);
}

ORB_API void strsyl(const char *trana, const char *tranb, const int *isgn, const int *m,
                    const int *n, const float *a, const int *lda, const float *b, const int *ldb,
                    float *c, const int *ldc, float *scale, int *info, int, int) {
  orb::entry::lapack(kStrsylC, NoWorkspace{}, trsyl<float>, trana, tranb, isgn, m, n, a, lda, b,
                     ldb, c, ldc, scale, info);
}

ORB_API void ctrsyl(const char *trana, const char *tranb, const int *isgn, const int *m,
                    const int *n, const orb_complex8 *a, const int *lda, const orb_complex8 *b,
                    const int *ldb, orb_complex8 *c, const int *ldc, float *scale, int *info, int,
                    int) {
  orb::entry::lapack(kCtrsylC, NoWorkspace{}, trsyl<c8>, trana, tranb, isgn, m, n, cx(a), lda,
                     cx(b), ldb, cx(c), ldc, scale, info);
}

ORB_API void strsna(const char *job, const char *howmny, const int *select, const int *n,
                    const float *t, const int *ldt, const float *vl, const int *ldvl,
                    const float *vr, const int *ldvr, float *s, float *sep, const int *mm, int *m,
                    float *work, const int *ldwork, int *iwork, int *info, int, int) {
  orb::entry::lapack(kStrsna, NoWorkspace{}, strsna_impl, job, howmny, select, n, t, ldt, vl, ldvl,
                     vr, ldvr, s, sep, mm, m, work, ldwork, iwork, info);
}

ORB_API void ctrsna(const char *job, const char *howmny, const int *select, const int *n,
                    const orb_complex8 *t, const int *ldt, const orb_complex8 *vl, const int *ldvl,
                    const orb_complex8 *vr, const int *ldvr, float *s, float *sep, const int *mm,
                    int *m, orb_complex8 *work, const int *ldwork, float *rwork, int *info, int,
                    int) {
  orb::entry::lapack(kCtrsna, NoWorkspace{}, ctrsna_impl, job, howmny, select, n, cx(t), ldt,
                     cx(vl), ldvl, cx(vr), ldvr, s, sep, mm, m, cx(work), ldwork, rwork, info);
}

}  // extern "C"
