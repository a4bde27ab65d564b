// The minimum-norm least-squares drivers: min ||B - A X|| for A of any
// shape and rank, the rank decided by RCOND against the largest singular
// value. gelss (the published xGELSS) takes the SVD by bidiagonal QR and
// applies its pseudo-inverse; gelsd (xGELSD) solves the bidiagonal problem
// by divide and conquer (lalsd) without forming the singular vectors.
//
// Both scale A and B into the safe range, reduce a much taller than wide A
// to its triangular factor first (Q^H applied to B), bring A (or R) to
// bidiagonal form with Q_b^H applied to B, solve, and apply the right
// factor. A wide A is reduced directly to lower bidiagonal form.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "lapack/auxiliary.h"
#include "lapack/bidiag.h"
#include "lapack/blas_calls.h"
#include "lapack/copy_scale.h"
#include "lapack/divide.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/qr.h"
#include "lapack/svd.h"
#include "lapack/svd_drivers.h"

namespace orb::lapack {
namespace {

// A and B brought into [smlnum, bignum] by their largest entries, and back.
template <class T>
class Scaling {
  using R = real_t<T>;

 public:
  Scaling()
      : smlnum_(safe_minimum<R>() / std::numeric_limits<R>::epsilon()), bignum_(1 / smlnum_) {}

  // False when A is zero: the solution is zero.
  bool scale(int m, int n, int nrhs, T *a, int lda, T *b, int ldb) {
    anrm_ = lange(Norm::kMaxAbs, m, n, a, lda, static_cast<R *>(nullptr));
    if (anrm_ == R(0)) return false;
    a_to_ = target(anrm_);
    if (a_to_ != R(0)) lascl(Part::kAll, anrm_, a_to_, m, n, a, lda);
    bnrm_ = lange(Norm::kMaxAbs, m, nrhs, b, ldb, static_cast<R *>(nullptr));
    b_to_ = target(bnrm_);
    if (b_to_ != R(0)) lascl(Part::kAll, bnrm_, b_to_, m, nrhs, b, ldb);
    return true;
  }

  void unscale(int n, int nrhs, T *b, int ldb, int mn, R *s) const {
    if (a_to_ != R(0)) {
      lascl(Part::kAll, anrm_, a_to_, n, nrhs, b, ldb);
      lascl(Part::kAll, a_to_, anrm_, mn, 1, s, mn);
    }
    if (b_to_ != R(0)) lascl(Part::kAll, b_to_, bnrm_, n, nrhs, b, ldb);
  }

 private:
  R target(R norm) const {
    if (norm > R(0) && norm < smlnum_) return smlnum_;
    if (norm > bignum_) return bignum_;
    return R(0);
  }
  R smlnum_, bignum_;
  R anrm_ = 0, bnrm_ = 0, a_to_ = 0, b_to_ = 0;
};

// The bidiagonal reduction both drivers start with. After it A (its
// leading n x n when R was taken, else all of it) holds the reduction, B
// holds Q^H B (the QR factor's Q too, when taken), and the workspace the
// scalars: e, tauq, taup and the rest for real data; tauq, taup and the
// rest for complex, e being then at the start of rwork.
template <class T>
struct Reduced {
  real_t<T> *e;
  T *tauq, *taup, *rest;
  int lrest;
  bool upper;
};

template <class T>
Reduced<T> reduce(const char *routine, int m, int n, int nrhs, T *a, int lda, T *b, int ldb,
                  real_t<T> *s, T *work, int lwork, real_t<T> *rwork) {
  const int mn = std::min(m, n);
  const int mnthr = oracle(kSvdCrossover, name<T>(routine), m, n, nrhs);
  int mm = m;
  T *end = work + lwork;
  if (m >= n && m >= mnthr) {
    // Q R first; Q^H B; R alone is reduced.
    mm = n;
    T *tau = work, *rest = work + n;
    geqrf(m, n, a, lda, tau, rest, static_cast<int>(end - rest));
    ormqr(Side::kLeft, Op::kConjTrans, m, nrhs, n, a, lda, tau, b, ldb, rest,
          static_cast<int>(end - rest));
    if (n > 1) laset(Part::kLower, n - 1, n - 1, T(0), T(0), a + 1, lda);
  }
  Reduced<T> r{};
  if constexpr (is_complex_v<T>) {
    r.e = rwork;
    r.tauq = work;
  } else {
    r.e = work;
    r.tauq = work + mn;
  }
  r.taup = r.tauq + mn;
  r.rest = r.taup + mn;
  r.lrest = static_cast<int>(end - r.rest);
  r.upper = m >= n;
  gebrd(mm, n, a, lda, s, r.e, r.tauq, r.taup, r.rest, r.lrest);
  ormbr(Vect::kQ, Side::kLeft, Op::kConjTrans, mm, nrhs, n, a, lda, r.tauq, b, ldb, r.rest,
        r.lrest);
  return r;
}

}  // namespace

template <class T>
int gelss_minwork(int m, int n, int nrhs) {
  const int mn = std::min(m, n), mx = std::max(m, n);
  if (mn == 0) return 1;
  if constexpr (is_complex_v<T>) {
    return 2 * mn + std::max(nrhs, mx);
  } else {
    const int mnthr = oracle(kSvdCrossover, name<T>("GELSS"), m, n, nrhs);
    const int mm = (m >= n && m >= mnthr) ? n : mx;
    return std::max({3 * mn + mm, 3 * mn + nrhs, 5 * mn});
  }
}

template <class T>
int gelss_worksize(int m, int n, int nrhs) {
  const int mn = std::min(m, n);
  if (mn == 0) return 1;
  const int head = (is_complex_v<T> ? 2 : 3) * mn;
  int w = std::max(
      {static_cast<int>(geqrf_worksize<T>(m, n)) + n,
       static_cast<int>(orm_worksize<T>(orth_name<T>("ORMQR", "UNMQR"), Side::kLeft, m, nrhs, n)) +
           n,
       head + gebrd_worksize<T>(m, n),
       head + ormbr_worksize<T>(Vect::kQ, Side::kLeft, Op::kConjTrans, m, nrhs, n),
       head + orgbr_worksize<T>(Vect::kP, mn, n, mn), n * nrhs});
  return std::max(w, gelss_minwork<T>(m, n, nrhs));
}

template <class T>
int gelss(int m, int n, int nrhs, T *a, int lda, T *b, int ldb, real_t<T> *s, real_t<T> rcond,
          int &rank, T *work, int lwork, real_t<T> *rwork) {
  using R = real_t<T>;
  rank = 0;
  const int mn = std::min(m, n), mx = std::max(m, n);
  if (mn == 0) return 0;
  Scaling<T> sc;
  if (!sc.scale(m, n, nrhs, a, lda, b, ldb)) {
    laset(Part::kAll, mx, nrhs, T(0), T(0), b, ldb);
    std::fill(s, s + mn, R(0));
    return 0;
  }
  const Reduced<T> r = reduce("GELSS", m, n, nrhs, a, lda, b, ldb, s, work, lwork, rwork);
  // A := P^H (mn x n), then the QR iteration gives V^H in A and U^H B in B.
  orgbr(Vect::kP, mn, n, mn, a, lda, r.taup, r.rest, r.lrest);
  R *qr_work = is_complex_v<T> ? rwork + mn : reinterpret_cast<R *>(work) + mn;
  const int info = bdsqr<T>(r.upper ? Uplo::kUpper : Uplo::kLower, mn, n, 0, nrhs, s, r.e, a, lda,
                            nullptr, 1, b, ldb, qr_work);
  if (info != 0) return info;
  // B := S^+ U^H B, the rank by the threshold.
  const R sfmin = safe_minimum<R>(), eps = std::numeric_limits<R>::epsilon();
  const R thr = rcond < R(0) ? std::max(eps * s[0], sfmin) : std::max(rcond * s[0], sfmin);
  std::vector<T> row(nrhs);
  for (int i = 0; i < mn; ++i) {
    if (s[i] > thr) {
      for (int j = 0; j < nrhs; ++j) row[j] = b[i + static_cast<std::ptrdiff_t>(j) * ldb];
      rscl(nrhs, s[i], row.data());
      for (int j = 0; j < nrhs; ++j) b[i + static_cast<std::ptrdiff_t>(j) * ldb] = row[j];
      ++rank;
    } else {
      laset(Part::kAll, 1, nrhs, T(0), T(0), b + i, ldb);
    }
  }
  // X := V B, in column blocks the workspace holds.
  const int chunk = std::max(1, std::min(nrhs, lwork / std::max(1, n)));
  for (int j = 0; j < nrhs; j += chunk) {
    const int bl = std::min(chunk, nrhs - j);
    T *bj = b + static_cast<std::ptrdiff_t>(j) * ldb;
    gemm(Op::kConjTrans, Op::kNone, n, bl, mn, T(1), a, lda, bj, ldb, T(0), work, n);
    lacpy(Part::kAll, n, bl, work, n, bj, ldb);
  }
  sc.unscale(n, nrhs, b, ldb, mn, s);
  return 0;
}

namespace {

template <class T>
int lalsd_levels(int mn, int smlsiz) {
  return std::max(
      static_cast<int>(std::log(static_cast<real_t<T>>(mn) / static_cast<real_t<T>>(smlsiz + 1)) /
                       std::log(real_t<T>(2))) +
          1,
      0);
}

}  // namespace

template <class T>
int gelsd_smlsiz() {
  return oracle(kSubproblem, name<T>("GELSD"), 0, 0, 0, 0);
}

template <class T>
int gelsd_minwork(int m, int n, int nrhs) {
  const int mn = std::min(m, n), mx = std::max(m, n);
  if (mn == 0) return 1;
  const int smlsiz = gelsd_smlsiz<T>();
  const int nlvl = lalsd_levels<T>(mn, smlsiz);
  int minwrk;
  if constexpr (is_complex_v<T>) {
    const int mnthr = oracle(kSvdCrossover, name<T>("GELSD"), m, n, nrhs);
    const int mm = (m >= n && m >= mnthr) ? n : mx;
    minwrk =
        m >= n ? std::max(2 * n + mm, 2 * n + n * nrhs) : std::max(2 * m + n, 2 * m + m * nrhs);
  } else {
    const int mnthr = oracle(kSvdCrossover, name<T>("GELSD"), m, n, nrhs);
    const int mm = (m >= n && m >= mnthr) ? n : mx;
    const int wlalsd =
        9 * mn + 2 * mn * smlsiz + 8 * mn * nlvl + mn * nrhs + (smlsiz + 1) * (smlsiz + 1);
    minwrk = m >= n ? std::max({3 * n + mm, 3 * n + nrhs, 3 * n + wlalsd})
                    : std::max({3 * m + nrhs, 3 * m + m, 3 * m + wlalsd});
  }
  return std::min(minwrk, gelsd_worksize<T>(m, n, nrhs));
}

template <class T>
int gelsd_worksize(int m, int n, int nrhs) {
  const int mn = std::min(m, n);
  if (mn == 0) return 1;
  const int smlsiz = gelsd_smlsiz<T>();
  const int nlvl = lalsd_levels<T>(mn, smlsiz);
  const int head = (is_complex_v<T> ? 2 : 3) * mn;
  const int lalsd_work = is_complex_v<T> ? mn * nrhs
                                         : 9 * mn + 2 * mn * smlsiz + 8 * mn * nlvl + mn * nrhs +
                                               (smlsiz + 1) * (smlsiz + 1);
  int w = std::max(
      {static_cast<int>(geqrf_worksize<T>(m, n)) + n,
       static_cast<int>(orm_worksize<T>(orth_name<T>("ORMQR", "UNMQR"), Side::kLeft, m, nrhs, n)) +
           n,
       head + gebrd_worksize<T>(m, n),
       head + ormbr_worksize<T>(Vect::kQ, Side::kLeft, Op::kConjTrans, m, nrhs, n),
       head + ormbr_worksize<T>(Vect::kP, Side::kLeft, Op::kNone, n, nrhs, mn), head + lalsd_work});
  return std::max(w, head + std::max(m, n));
}

template <class T>
int gelsd_rwork(int m, int n, int nrhs) {
  const int mn = std::min(m, n);
  if (mn == 0) return 1;
  const int smlsiz = gelsd_smlsiz<T>();
  const int nlvl = lalsd_levels<T>(mn, smlsiz);
  return 10 * mn + 2 * mn * smlsiz + 8 * mn * nlvl + 3 * smlsiz * nrhs +
         std::max((smlsiz + 1) * (smlsiz + 1), n * (1 + nrhs) + 2 * nrhs);
}

template <class T>
int gelsd_iwork(int m, int n) {
  const int mn = std::min(m, n);
  if (mn == 0) return 1;
  const int nlvl = lalsd_levels<T>(mn, gelsd_smlsiz<T>());
  return 3 * mn * nlvl + 11 * mn;
}

template <class T>
int gelsd(int m, int n, int nrhs, T *a, int lda, T *b, int ldb, real_t<T> *s, real_t<T> rcond,
          int &rank, T *work, int lwork, real_t<T> *rwork, int *iwork) {
  using R = real_t<T>;
  rank = 0;
  const int mn = std::min(m, n), mx = std::max(m, n);
  if (mn == 0) return 0;
  Scaling<T> sc;
  if (!sc.scale(m, n, nrhs, a, lda, b, ldb)) {
    laset(Part::kAll, mx, nrhs, T(0), T(0), b, ldb);
    std::fill(s, s + mn, R(0));
    return 0;
  }
  if (m < n) laset(Part::kAll, n - m, nrhs, T(0), T(0), b + m, ldb);
  const Reduced<T> r = reduce("GELSD", m, n, nrhs, a, lda, b, ldb, s, work, lwork, rwork);
  R *lalsd_rwork = is_complex_v<T> ? rwork + mn : nullptr;
  const int info = lalsd<T>(r.upper ? Uplo::kUpper : Uplo::kLower, gelsd_smlsiz<T>(), mn, nrhs, s,
                            r.e, b, ldb, rcond, rank, r.rest, lalsd_rwork, iwork);
  if (info != 0) return info;
  ormbr(Vect::kP, Side::kLeft, Op::kNone, n, nrhs, mn, a, lda, r.taup, b, ldb, r.rest, r.lrest);
  sc.unscale(n, nrhs, b, ldb, mn, s);
  return 0;
}

#define ORB_LEAST_SQUARES(T)                                                                   \
  template int gelss_minwork<T>(int, int, int);                                                \
  template int gelss_worksize<T>(int, int, int);                                               \
  template int gelss<T>(int, int, int, T *, int, T *, int, real_t<T> *, real_t<T>, int &, T *, \
                        int, real_t<T> *);                                                     \
  template int gelsd_minwork<T>(int, int, int);                                                \
  template int gelsd_worksize<T>(int, int, int);                                               \
  template int gelsd_rwork<T>(int, int, int);                                                  \
  template int gelsd_iwork<T>(int, int);                                                       \
  template int gelsd<T>(int, int, int, T *, int, T *, int, real_t<T> *, real_t<T>, int &, T *, \
                        int, real_t<T> *, int *);
ORB_LEAST_SQUARES(float)
ORB_LEAST_SQUARES(c8)

}  // namespace orb::lapack
