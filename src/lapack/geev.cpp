// The nonsymmetric eigenvalue drivers SGEEV and CGEEV: the matrix scaled into
// the safe range, balanced, reduced to Hessenberg form, taken to Schur form
// by the QR iteration (accumulating the reduction's Q when vectors are
// wanted), the Schur form's eigenvectors transformed back through Q and the
// balancing, and each vector normalized: unit 2-norm, and its largest
// component real (a complex pair of real vectors: its largest component's
// imaginary part zero).
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "blas/complex_abi.h"
#include "lapack/auxiliary.h"
#include "lapack/copy_scale.h"
#include "lapack/names.h"
#include "lapack/nonsym.h"
#include "lapack/rotations.h"
#include "orb.h"
#include "service/check.h"
#include "service/entry.h"
#include "service/report.h"

namespace orb::lapack {
namespace {

template <class T>
T *col(T *a, int lda, int j) {
  return a + static_cast<std::ptrdiff_t>(j) * lda;
}

// The 2-norm of n values (moduli of complex ones), without overflow.
template <class T>
real_t<T> norm2(int n, const T *x) {
  SumSquares<real_t<T>> ss;
  for (int i = 0; i < n; ++i) {
    if constexpr (is_complex_v<T>) {
      ss.add(x[i].real());
      ss.add(x[i].imag());
    } else {
      ss.add(x[i]);
    }
  }
  return ss.root();
}

// Unit 2-norm for every vector, the largest component made real.
template <class T>
void normalize(int n, const real_t<T> *wi, T *v, int ldv, real_t<T> *scratch) {
  using R = real_t<T>;
  for (int i = 0; i < n; ++i) {
    T *x = col(v, ldv, i);
    if constexpr (is_complex_v<T>) {
      const R scl = 1 / norm2(n, x);
      for (int k = 0; k < n; ++k) x[k] *= scl;
      for (int k = 0; k < n; ++k)
        scratch[k] = x[k].real() * x[k].real() + x[k].imag() * x[k].imag();
      const int big = static_cast<int>(std::max_element(scratch, scratch + n) - scratch);
      const T turn = std::conj(x[big]) / std::sqrt(scratch[big]);
      for (int k = 0; k < n; ++k) x[k] = mul(x[k], turn);
      x[big] = T(x[big].real(), 0);
    } else if (wi[i] == 0) {
      const R scl = 1 / norm2(n, x);
      for (int k = 0; k < n; ++k) x[k] *= scl;
    } else if (wi[i] > 0) {
      // The pair's real and imaginary parts are columns i and i + 1.
      T *y = col(v, ldv, i + 1);
      const R scl = 1 / std::hypot(norm2(n, x), norm2(n, y));
      for (int k = 0; k < n; ++k) x[k] *= scl, y[k] *= scl;
      for (int k = 0; k < n; ++k) scratch[k] = x[k] * x[k] + y[k] * y[k];
      const int big = static_cast<int>(std::max_element(scratch, scratch + n) - scratch);
      R c, s, r;
      lartg(x[big], y[big], &c, &s, &r);
      for (int k = 0; k < n; ++k) {
        const R xk = x[k], yk = y[k];
        x[k] = c * xk + s * yk;
        y[k] = c * yk - s * xk;
      }
      y[big] = 0;
    }
  }
}

// The optimal workspace of the driver (MAXWRK) and its minimum.
template <class T>
std::int64_t geev_minwork(bool wantvl, bool wantvr, int n) {
  if (n == 0) return 1;
  if constexpr (is_complex_v<T>)
    return 2 * std::int64_t{n};
  else
    return (wantvl || wantvr ? 4 : 3) * std::int64_t{n};
}

template <class T>
std::int64_t geev_worksize(bool wantvl, bool wantvr, int n) {
  if (n == 0) return 1;
  const bool vectors = wantvl || wantvr;
  // Real forms keep the balancing's scale factors in WORK, before tau.
  const std::int64_t before = is_complex_v<T> ? n : 2 * std::int64_t{n};
  std::int64_t best = before + gehrd_worksize<T>(n, 1, n);
  if (vectors) best = std::max(best, before + orghr_worksize<T>(n, 1, n));
  const std::int64_t schur = before - n;  // the QR iteration and trevc start at tau
  best = std::max(
      best, schur + hseqr_worksize<T>(vectors, vectors ? CompQ::kUpdate : CompQ::kNone, n, 1, n));
  return std::max({best, geev_minwork<T>(wantvl, wantvr, n), schur + std::int64_t{n} + 1});
}

template <class T>
int geev(bool wantvl, bool wantvr, int n, T *a, int lda, real_t<T> *wr, real_t<T> *wi, T *w, T *vl,
         int ldvl, T *vr, int ldvr, T *work, int lwork, real_t<T> *rwork) {
  using R = real_t<T>;
  if (n == 0) return 0;
  const R eps = std::numeric_limits<R>::epsilon();
  const R smlnum = std::sqrt(std::numeric_limits<R>::min()) / eps, bignum = 1 / smlnum;
  const R anrm = lange(Norm::kMaxAbs, n, n, a, lda, static_cast<R *>(nullptr));
  R cscale = 0;
  if (std::isnan(anrm)) {
    report_code(name<T>("GEEV").text, 4);
    return -4;
  }
  if (anrm > 0 && anrm < smlnum)
    cscale = smlnum;
  else if (anrm > bignum)
    cscale = bignum;
  if (cscale != 0) lascl(Part::kAll, anrm, cscale, n, n, a, lda);

  // Scale factors of the balancing: real WORK before tau, or RWORK.
  R *scale;
  T *tau;
  if constexpr (is_complex_v<T>) {
    scale = rwork;
    tau = work;
  } else {
    (void)rwork;
    scale = work;
    tau = work + n;
  }
  int ilo = 1, ihi = n;
  gebal(Balance::kBoth, n, a, lda, &ilo, &ihi, scale);
  T *after_tau = tau + n;
  const int after_len = lwork - static_cast<int>(after_tau - work);
  gehrd(n, ilo, ihi, a, lda, tau, after_tau, after_len);

  // The QR iteration and trevc reuse tau's place onwards.
  const int from_tau = lwork - static_cast<int>(tau - work);
  EigSide side = EigSide::kRight;
  int info;
  if (wantvl || wantvr) {
    T *q = wantvl ? vl : vr;
    const int ldq = wantvl ? ldvl : ldvr;
    side = wantvl ? (wantvr ? EigSide::kBoth : EigSide::kLeft) : EigSide::kRight;
    lacpy(Part::kLower, n, n, a, lda, q, ldq);
    orghr(n, ilo, ihi, q, ldq, tau, after_tau, after_len);
    info = hseqr<T>(true, CompQ::kUpdate, n, ilo, ihi, a, lda, wr, wi, w, q, ldq, tau, from_tau);
    if (wantvl && wantvr) lacpy(Part::kAll, n, n, vl, ldvl, vr, ldvr);
  } else {
    info = hseqr<T>(false, CompQ::kNone, n, ilo, ihi, a, lda, wr, wi, w, nullptr, 1, tau, from_tau);
  }

  if (info == 0 && (wantvl || wantvr)) {
    int found = 0;
    R *trevc_rwork = is_complex_v<T> ? rwork + n : nullptr;
    trevc<T>(side, HowMany::kBackTransform, nullptr, n, a, lda, vl, ldvl, vr, ldvr, n, &found, tau,
             trevc_rwork);
    // Real forms: the scratch for the normalization after the balancing's
    // factors; complex forms: RWORK after them.
    R *scratch;
    if constexpr (is_complex_v<T>)
      scratch = rwork + n;
    else
      scratch = reinterpret_cast<R *>(tau);
    if (wantvl) {
      gebak(Balance::kBoth, Side::kLeft, n, ilo, ihi, scale, n, vl, ldvl);
      normalize<T>(n, wi, vl, ldvl, scratch);
    }
    if (wantvr) {
      gebak(Balance::kBoth, Side::kRight, n, ilo, ihi, scale, n, vr, ldvr);
      normalize<T>(n, wi, vr, ldvr, scratch);
    }
  }

  // The eigenvalues found back to A's scale (on failure, those that
  // converged: info + 1 .. n and 1 .. ilo - 1).
  if (cscale != 0 && info >= 0) {
    auto unscale = [&](int first, int count) {
      if (count <= 0) return;
      if constexpr (is_complex_v<T>) {
        lascl(Part::kAll, cscale, anrm, count, 1, w + first, std::max(count, 1));
      } else {
        lascl(Part::kAll, cscale, anrm, count, 1, wr + first, std::max(count, 1));
        lascl(Part::kAll, cscale, anrm, count, 1, wi + first, std::max(count, 1));
      }
    };
    unscale(info, n - info);
    if (info > 0) unscale(0, ilo - 1);
  }
  return info;
}

}  // namespace
}  // namespace orb::lapack

namespace {

namespace ck = orb::check;
namespace la = orb::lapack;
using orb::c8;
using orb::blas::cx;

int arg(ck::Args a, int pos) {
  return ck::int_arg(a, pos);
}
bool wants(ck::Args a, int pos) {
  return ck::char_arg(a, pos) == 'V';
}
// LDV >= 1, and >= N when those vectors are wanted (JOBV argument `job`).
template <int JOB, int LDV>
bool ldv_ok(ck::Args a) {
  const int ldv = arg(a, LDV);
  return ldv >= 1 && !(wants(a, JOB) && ldv < arg(a, 3));
}
template <class T>
int geev_min(ck::Args a) {
  return static_cast<int>(la::geev_minwork<T>(wants(a, 1), wants(a, 2), arg(a, 3)));
}
constexpr ck::Test kSgeev[] = {
    ck::option(1, "VN"),           ck::option(2, "VN"),        ck::nonneg(3),
    ck::ld(5, ck::dim(3)),         ck::holds(9, ldv_ok<1, 9>), ck::holds(11, ldv_ok<2, 11>),
    ck::lwork(13, geev_min<float>)};
constexpr ck::Test kCgeev[] = {
    ck::option(1, "VN"),        ck::option(2, "VN"),        ck::nonneg(3),
    ck::ld(5, ck::dim(3)),      ck::holds(8, ldv_ok<1, 8>), ck::holds(10, ldv_ok<2, 10>),
    ck::lwork(12, geev_min<c8>)};
constexpr auto kSgeevCheck = orb::entry::lapack_checker("SGEEV ", kSgeev, 12, 13);
constexpr auto kCgeevCheck = orb::entry::lapack_checker("CGEEV ", kCgeev, 11, 12);

}  // namespace

extern "C" {

ORB_API void sgeev(const char *jobvl, const char *jobvr, const int *n, float *a, const int *lda,
                   float *wr, float *wi, float *vl, const int *ldvl, float *vr, const int *ldvr,
                   float *work, const int *lwork, int *info, int, int) {
  orb::entry::lapack(
      kSgeevCheck,
      [](const char *jl, const char *jr, const int *n_, float *, const int *, float *, float *,
         float *, const int *, float *, const int *, float *, const int *, int *) -> std::int64_t {
        return la::geev_worksize<float>(orb::upper(*jl) == 'V', orb::upper(*jr) == 'V', *n_);
      },
      [](const char *jl, const char *jr, const int *n_, float *a_, const int *lda_, float *wr_,
         float *wi_, float *vl_, const int *ldvl_, float *vr_, const int *ldvr_, float *wk,
         const int *lwk, int *inf) {
        const bool l = orb::upper(*jl) == 'V', r = orb::upper(*jr) == 'V';
        *inf = la::geev<float>(l, r, *n_, a_, *lda_, wr_, wi_, nullptr, vl_, *ldvl_, vr_, *ldvr_,
                               wk, *lwk, nullptr);
        *wk = static_cast<float>(la::geev_worksize<float>(l, r, *n_));
      },
      jobvl, jobvr, n, a, lda, wr, wi, vl, ldvl, vr, ldvr, work, lwork, info);
}

ORB_API void cgeev(const char *jobvl, const char *jobvr, const int *n, orb_complex8 *a,
                   const int *lda, orb_complex8 *w, orb_complex8 *vl, const int *ldvl,
                   orb_complex8 *vr, const int *ldvr, orb_complex8 *work, const int *lwork,
                   float *rwork, int *info, int, int) {
  orb::entry::lapack(
      kCgeevCheck,
      [](const char *jl, const char *jr, const int *n_, c8 *, const int *, c8 *, c8 *, const int *,
         c8 *, const int *, c8 *, const int *, float *, int *) -> std::int64_t {
        return la::geev_worksize<c8>(orb::upper(*jl) == 'V', orb::upper(*jr) == 'V', *n_);
      },
      [](const char *jl, const char *jr, const int *n_, c8 *a_, const int *lda_, c8 *w_, c8 *vl_,
         const int *ldvl_, c8 *vr_, const int *ldvr_, c8 *wk, const int *lwk, float *rwk,
         int *inf) {
        const bool l = orb::upper(*jl) == 'V', r = orb::upper(*jr) == 'V';
        *inf = la::geev<c8>(l, r, *n_, a_, *lda_, nullptr, nullptr, w_, vl_, *ldvl_, vr_, *ldvr_,
                            wk, *lwk, rwk);
        *wk = c8(static_cast<float>(la::geev_worksize<c8>(l, r, *n_)));
      },
      jobvl, jobvr, n, cx(a), lda, cx(w), cx(vl), ldvl, cx(vr), ldvr, cx(work), lwork, rwork, info);
}

}  // extern "C"
