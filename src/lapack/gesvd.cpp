// The singular value decomposition by bidiagonal QR (the published
// xGESVD): A = U S V^H, the vectors as JOBU and JOBVT ask (all, the leading
// min(m, n), overwriting A, or none).
//
// A much taller than wide (m at least the oracle's query 6) is first
// reduced to its triangular factor R, whose bidiagonal form is cheaper; the
// left vectors are then Q times R's. R is reduced where the output lets
// it live (in A, in VT, or in U for the wide case); when both A and R would
// be needed at once (the left vectors overwrite A and the right ones are
// not wanted) the matrix is reduced directly. The workspace is the
// published minimum and what the blocked calls can use beyond it: the left
// vectors of the bidiagonal are applied to Q's columns by ormbr and the
// rotations of the QR iteration to all m rows, rather than forming them
// in an n x n workspace.
#include <algorithm>
#include <cstddef>
#include <limits>

#include "lapack/auxiliary.h"
#include "lapack/bidiag.h"
#include "lapack/copy_scale.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/qr.h"
#include "lapack/svd.h"
#include "lapack/svd_drivers.h"

namespace orb::lapack {
namespace {

bool wants(JobSvd j) {
  return j != JobSvd::kNone;
}
bool stored(JobSvd j) {
  return j == JobSvd::kAll || j == JobSvd::kSome;
}

// The workspace's parts: the superdiagonal (in WORK for real data, RWORK
// for complex), the scalars of the two reflector families, the rest for
// the blocked calls, and the QR iteration's real workspace.
template <class T>
struct Parts {
  real_t<T> *e;
  T *tauq, *taup, *rest;
  int lrest;
  real_t<T> *qr_work;
};

template <class T>
Parts<T> parts(int mn, T *work, int lwork, real_t<T> *rwork) {
  Parts<T> p{};
  if constexpr (is_complex_v<T>) {
    p.e = rwork;
    p.qr_work = rwork + mn;
    p.tauq = work;
  } else {
    p.e = work;
    p.qr_work = work + mn;
    p.tauq = work + mn;
  }
  p.taup = p.tauq + mn;
  p.rest = p.taup + mn;
  p.lrest = static_cast<int>(work + lwork - p.rest);
  return p;
}

template <class T>
void zero_below(int n, T *a, int lda) {
  if (n > 1) laset(Part::kLower, n - 1, n - 1, T(0), T(0), a + 1, lda);
}
template <class T>
void zero_above(int n, T *a, int lda) {
  if (n > 1) laset(Part::kUpper, n - 1, n - 1, T(0), T(0), a + lda, lda);
}

// m >= n. Returns INFO of the QR iteration.
template <class T>
int tall(JobSvd jobu, JobSvd jobvt, int m, int n, T *a, int lda, real_t<T> *s, T *u, int ldu, T *vt,
         int ldvt, const Parts<T> &p) {
  const int mnthr = oracle(kSvdCrossover, name<T>("GESVD"), m, n);
  const bool wantu = wants(jobu), wantv = wants(jobvt);
  const int ncu = jobu == JobSvd::kAll ? m : n;
  T *tau = p.tauq;  // the QR's scalars, used up before the reduction
  if (m >= mnthr && !wantu) {
    geqrf(m, n, a, lda, tau, p.rest, p.lrest);
    zero_below(n, a, lda);
    gebrd(n, n, a, lda, s, p.e, p.tauq, p.taup, p.rest, p.lrest);
    T *v = a;
    int ldv = lda;
    if (stored(jobvt)) {
      lacpy(Part::kUpper, n, n, a, lda, vt, ldvt);
      v = vt;
      ldv = ldvt;
    }
    if (wantv) orgbr(Vect::kP, n, n, n, v, ldv, p.taup, p.rest, p.lrest);
    return bdsqr<T>(Uplo::kUpper, n, wantv ? n : 0, 0, 0, s, p.e, v, ldv, nullptr, 1, nullptr, 1,
                    p.qr_work);
  }
  if (m >= mnthr && stored(jobu)) {
    geqrf(m, n, a, lda, tau, p.rest, p.lrest);
    lacpy(Part::kLower, m, n, a, lda, u, ldu);
    orgqr(m, ncu, n, u, ldu, tau, p.rest, p.lrest);
    // R goes to VT when VT is an output, else stays in A.
    T *r = a;
    int ldr = lda;
    if (stored(jobvt)) {
      lacpy(Part::kUpper, n, n, a, lda, vt, ldvt);
      r = vt;
      ldr = ldvt;
    }
    zero_below(n, r, ldr);
    gebrd(n, n, r, ldr, s, p.e, p.tauq, p.taup, p.rest, p.lrest);
    ormbr(Vect::kQ, Side::kRight, Op::kNone, m, n, n, r, ldr, p.tauq, u, ldu, p.rest, p.lrest);
    if (wantv) orgbr(Vect::kP, n, n, n, r, ldr, p.taup, p.rest, p.lrest);
    return bdsqr<T>(Uplo::kUpper, n, wantv ? n : 0, m, 0, s, p.e, r, ldr, u, ldu, nullptr, 1,
                    p.qr_work);
  }
  if (m >= mnthr && stored(jobvt)) {  // jobu is O: Q in A, R in VT
    geqrf(m, n, a, lda, tau, p.rest, p.lrest);
    lacpy(Part::kUpper, n, n, a, lda, vt, ldvt);
    zero_below(n, vt, ldvt);
    orgqr(m, n, n, a, lda, tau, p.rest, p.lrest);
    gebrd(n, n, vt, ldvt, s, p.e, p.tauq, p.taup, p.rest, p.lrest);
    ormbr(Vect::kQ, Side::kRight, Op::kNone, m, n, n, vt, ldvt, p.tauq, a, lda, p.rest, p.lrest);
    orgbr(Vect::kP, n, n, n, vt, ldvt, p.taup, p.rest, p.lrest);
    return bdsqr<T>(Uplo::kUpper, n, n, m, 0, s, p.e, vt, ldvt, a, lda, nullptr, 1, p.qr_work);
  }
  // The direct reduction of A.
  gebrd(m, n, a, lda, s, p.e, p.tauq, p.taup, p.rest, p.lrest);
  if (stored(jobu)) {
    lacpy(Part::kLower, m, n, a, lda, u, ldu);
    orgbr(Vect::kQ, m, ncu, n, u, ldu, p.tauq, p.rest, p.lrest);
  }
  if (stored(jobvt)) {
    lacpy(Part::kUpper, n, n, a, lda, vt, ldvt);
    orgbr(Vect::kP, n, n, n, vt, ldvt, p.taup, p.rest, p.lrest);
  }
  if (jobu == JobSvd::kOverwrite) orgbr(Vect::kQ, m, n, n, a, lda, p.tauq, p.rest, p.lrest);
  if (jobvt == JobSvd::kOverwrite) orgbr(Vect::kP, n, n, n, a, lda, p.taup, p.rest, p.lrest);
  T *uu = jobu == JobSvd::kOverwrite ? a : u;
  T *vv = jobvt == JobSvd::kOverwrite ? a : vt;
  return bdsqr<T>(Uplo::kUpper, n, wantv ? n : 0, wantu ? m : 0, 0, s, p.e, vv,
                  jobvt == JobSvd::kOverwrite ? lda : ldvt, uu,
                  jobu == JobSvd::kOverwrite ? lda : ldu, nullptr, 1, p.qr_work);
}

// m < n: the mirror image, with the LQ factorization and P in place of Q.
template <class T>
int wide(JobSvd jobu, JobSvd jobvt, int m, int n, T *a, int lda, real_t<T> *s, T *u, int ldu, T *vt,
         int ldvt, const Parts<T> &p) {
  const int mnthr = oracle(kSvdCrossover, name<T>("GESVD"), m, n);
  const bool wantu = wants(jobu), wantv = wants(jobvt);
  const int nrvt = jobvt == JobSvd::kAll ? n : m;
  T *tau = p.tauq;
  if (n >= mnthr && !wantv) {
    gelqf(m, n, a, lda, tau, p.rest, p.lrest);
    zero_above(m, a, lda);
    gebrd(m, m, a, lda, s, p.e, p.tauq, p.taup, p.rest, p.lrest);
    T *w = a;
    int ldw = lda;
    if (stored(jobu)) {
      lacpy(Part::kLower, m, m, a, lda, u, ldu);
      w = u;
      ldw = ldu;
    }
    if (wantu) orgbr(Vect::kQ, m, m, m, w, ldw, p.tauq, p.rest, p.lrest);
    return bdsqr<T>(Uplo::kUpper, m, 0, wantu ? m : 0, 0, s, p.e, nullptr, 1, w, ldw, nullptr, 1,
                    p.qr_work);
  }
  if (n >= mnthr && stored(jobvt)) {
    gelqf(m, n, a, lda, tau, p.rest, p.lrest);
    lacpy(Part::kUpper, m, n, a, lda, vt, ldvt);
    orglq(nrvt, n, m, vt, ldvt, tau, p.rest, p.lrest);
    // L goes to U when U is an output, else stays in A.
    T *l = a;
    int ldl = lda;
    if (stored(jobu)) {
      lacpy(Part::kLower, m, m, a, lda, u, ldu);
      l = u;
      ldl = ldu;
    }
    zero_above(m, l, ldl);
    gebrd(m, m, l, ldl, s, p.e, p.tauq, p.taup, p.rest, p.lrest);
    ormbr(Vect::kP, Side::kLeft, Op::kConjTrans, m, n, m, l, ldl, p.taup, vt, ldvt, p.rest,
          p.lrest);
    if (wantu) orgbr(Vect::kQ, m, m, m, l, ldl, p.tauq, p.rest, p.lrest);
    return bdsqr<T>(Uplo::kUpper, m, n, wantu ? m : 0, 0, s, p.e, vt, ldvt, l, ldl, nullptr, 1,
                    p.qr_work);
  }
  if (n >= mnthr && stored(jobu)) {  // jobvt is O: Q^H in A, L in U
    gelqf(m, n, a, lda, tau, p.rest, p.lrest);
    lacpy(Part::kLower, m, m, a, lda, u, ldu);
    zero_above(m, u, ldu);
    orglq(m, n, m, a, lda, tau, p.rest, p.lrest);
    gebrd(m, m, u, ldu, s, p.e, p.tauq, p.taup, p.rest, p.lrest);
    ormbr(Vect::kP, Side::kLeft, Op::kConjTrans, m, n, m, u, ldu, p.taup, a, lda, p.rest, p.lrest);
    orgbr(Vect::kQ, m, m, m, u, ldu, p.tauq, p.rest, p.lrest);
    return bdsqr<T>(Uplo::kUpper, m, n, m, 0, s, p.e, a, lda, u, ldu, nullptr, 1, p.qr_work);
  }
  gebrd(m, n, a, lda, s, p.e, p.tauq, p.taup, p.rest, p.lrest);
  if (stored(jobu)) {
    lacpy(Part::kLower, m, m, a, lda, u, ldu);
    orgbr(Vect::kQ, m, m, n, u, ldu, p.tauq, p.rest, p.lrest);
  }
  if (stored(jobvt)) {
    lacpy(Part::kUpper, m, n, a, lda, vt, ldvt);
    orgbr(Vect::kP, nrvt, n, m, vt, ldvt, p.taup, p.rest, p.lrest);
  }
  if (jobu == JobSvd::kOverwrite) orgbr(Vect::kQ, m, m, n, a, lda, p.tauq, p.rest, p.lrest);
  if (jobvt == JobSvd::kOverwrite) orgbr(Vect::kP, m, n, m, a, lda, p.taup, p.rest, p.lrest);
  T *uu = jobu == JobSvd::kOverwrite ? a : u;
  T *vv = jobvt == JobSvd::kOverwrite ? a : vt;
  return bdsqr<T>(Uplo::kLower, m, wantv ? n : 0, wantu ? m : 0, 0, s, p.e, vv,
                  jobvt == JobSvd::kOverwrite ? lda : ldvt, uu,
                  jobu == JobSvd::kOverwrite ? lda : ldu, nullptr, 1, p.qr_work);
}

}  // namespace

template <class T>
int gesvd_minwork(JobSvd jobu, JobSvd jobvt, int m, int n) {
  const int mn = std::min(m, n), mx = std::max(m, n);
  if (mn == 0) return 1;
  const int mnthr = oracle(kSvdCrossover, name<T>("GESVD"), m, n);
  // The side the long dimension is on needs no vectors: the QR (LQ) path
  // on the factor alone.
  const bool short_side_only = m >= n ? !wants(jobu) : !wants(jobvt);
  if constexpr (is_complex_v<T>) {
    return mx >= mnthr && short_side_only ? 3 * mn : 2 * mn + mx;
  } else {
    return mx >= mnthr && short_side_only ? std::max(4 * mn, 5 * mn)
                                          : std::max(3 * mn + mx, 5 * mn);
  }
}

template <class T>
int gesvd_worksize(JobSvd jobu, JobSvd jobvt, int m, int n) {
  const int mn = std::min(m, n), mx = std::max(m, n);
  if (mn == 0) return 1;
  // The parts before the blocked calls' workspace, then the largest call.
  const int head = (is_complex_v<T> ? 2 : 3) * mn;
  int calls = gebrd_worksize<T>(mx, mn);
  if (m >= n) {
    calls = std::max({calls, static_cast<int>(geqrf_worksize<T>(m, n)),
                      static_cast<int>(orgqr_worksize<T>(m, m, n)), gebrd_worksize<T>(n, n),
                      orgbr_worksize<T>(Vect::kQ, m, m, n), orgbr_worksize<T>(Vect::kP, n, n, n),
                      ormbr_worksize<T>(Vect::kQ, Side::kRight, Op::kNone, m, n, n)});
  } else {
    calls = std::max({calls, static_cast<int>(gelqf_worksize<T>(m, n)),
                      static_cast<int>(orglq_worksize<T>(n, n, m)), gebrd_worksize<T>(m, m),
                      orgbr_worksize<T>(Vect::kP, n, n, m), orgbr_worksize<T>(Vect::kQ, m, m, m),
                      ormbr_worksize<T>(Vect::kP, Side::kLeft, Op::kConjTrans, m, n, m)});
  }
  return std::max(head + calls, gesvd_minwork<T>(jobu, jobvt, m, n));
}

template <class T>
int gesvd(JobSvd jobu, JobSvd jobvt, int m, int n, T *a, int lda, real_t<T> *s, T *u, int ldu,
          T *vt, int ldvt, T *work, int lwork, real_t<T> *rwork) {
  using R = real_t<T>;
  const int mn = std::min(m, n);
  if (mn == 0) return 0;
  // Scale A into the range where the reduction neither overflows nor
  // loses the small entries.
  const R smlnum = scaling_small<R>(), bignum = R(1) / smlnum;
  const R anrm = lange(Norm::kMaxAbs, m, n, a, lda, static_cast<R *>(nullptr));
  R scaled_to = 0;
  if (anrm > R(0) && anrm < smlnum)
    scaled_to = smlnum;
  else if (anrm > bignum)
    scaled_to = bignum;
  if (scaled_to != R(0)) lascl(Part::kAll, anrm, scaled_to, m, n, a, lda);

  const Parts<T> p = parts(mn, work, lwork, rwork);
  const int info = m >= n ? tall(jobu, jobvt, m, n, a, lda, s, u, ldu, vt, ldvt, p)
                          : wide(jobu, jobvt, m, n, a, lda, s, u, ldu, vt, ldvt, p);
  // The superdiagonal left unconverged goes where the caller finds it:
  // WORK(2:min(m,n)) for real data, RWORK(1:min(m,n)-1) for complex.
  R *e_out = p.e;
  if constexpr (!is_complex_v<T>) {
    if (info != 0) {
      for (int i = mn - 2; i >= 0; --i) work[i + 1] = p.e[i];
      e_out = work + 1;
    }
  }
  if (scaled_to != R(0)) {
    lascl(Part::kAll, scaled_to, anrm, mn, 1, s, mn);
    if (info != 0 && mn > 1) lascl(Part::kAll, scaled_to, anrm, mn - 1, 1, e_out, mn);
  }
  return info;
}

#define ORB_GESVD(T)                                                                              \
  template int gesvd_minwork<T>(JobSvd, JobSvd, int, int);                                        \
  template int gesvd_worksize<T>(JobSvd, JobSvd, int, int);                                       \
  template int gesvd<T>(JobSvd, JobSvd, int, int, T *, int, real_t<T> *, T *, int, T *, int, T *, \
                        int, real_t<T> *);
ORB_GESVD(float)
ORB_GESVD(c8)

}  // namespace orb::lapack
