// The symmetric and Hermitian eigenvalue drivers. Each scales the matrix
// into the safe range, reduces it to tridiagonal form, solves the
// tridiagonal problem and transforms the vectors back:
//   syevr: MRRR for the whole spectrum, bisection and inverse iteration for a
//          part of it (or when MRRR fails);
//   syevx: QR iteration for the whole spectrum when no tolerance is given,
//          bisection and inverse iteration otherwise;
//   sbev:  QR iteration; sbevd: divide and conquer; sbevx: as syevx.
#include "lapack/eigen_drivers.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "lapack/blas_calls.h"
#include "lapack/copy_scale.h"
#include "lapack/eigen.h"
#include "lapack/names.h"
#include "lapack/oracle.h"

namespace orb::lapack {
namespace {

template <class T>
T *col(T *a, int lda, int j) {
  return a + static_cast<std::ptrdiff_t>(j) * lda;
}

// The factor that brings a matrix of max-norm anrm into [rmin, rmax], or 0
// when it is already there.
template <class R>
R scaling_factor(R anrm, bool band) {
  const R safmin = std::numeric_limits<R>::min();
  const R eps = std::numeric_limits<R>::epsilon() / 2;
  const R smlnum = safmin / eps, bignum = 1 / smlnum;
  const R rmin = std::sqrt(smlnum);
  // The dense and the selective band drivers also keep clear of the range
  // where squares of the entries would underflow in bisection.
  const R rmax =
      band ? std::sqrt(bignum) : std::min(std::sqrt(bignum), 1 / std::sqrt(std::sqrt(safmin)));
  if (anrm > 0 && anrm < rmin) return rmin / anrm;
  if (anrm > rmax) return rmax / anrm;
  return 0;
}

// One triangle of the dense A times sigma.
template <class T>
void scale_triangle(Uplo uplo, int n, real_t<T> sigma, T *a, int lda) {
  for (int j = 0; j < n; ++j) {
    if (uplo == Uplo::kLower)
      rscal<T>(n - j, sigma, col(a, lda, j) + j, 1);
    else
      rscal<T>(j + 1, sigma, col(a, lda, j), 1);
  }
}

// The stored band of AB times sigma (the unused corners untouched).
template <class T>
void scale_band(Uplo uplo, int n, int kd, real_t<T> sigma, T *ab, int ldab) {
  for (int j = 0; j < n; ++j) {
    T *c = col(ab, ldab, j);
    if (uplo == Uplo::kUpper) {
      const int first = std::max(0, kd - j);
      for (int i = first; i <= kd; ++i) c[i] *= sigma;
    } else {
      const int count = std::min(kd + 1, n - j);
      for (int i = 0; i < count; ++i) c[i] *= sigma;
    }
  }
}

// The eigenvalues found before a failure (all of them without one) back to
// the matrix's scale.
template <class R>
void unscale_values(R sigma, int info, int m, R *w) {
  if (sigma == 0) return;
  const int count = info == 0 ? m : info - 1;
  for (int i = 0; i < count; ++i) w[i] *= 1 / sigma;
}

// Selection sort of the m eigenvalues into ascending order, their vectors
// (and block numbers and failure flags, when given) moved with them.
template <class T>
void sort_pairs(int n, int m, real_t<T> *w, T *z, int ldz, int *iblock, int *ifail) {
  for (int j = 0; j + 1 < m; ++j) {
    int smallest = j;
    for (int k = j + 1; k < m; ++k)
      if (w[k] < w[smallest]) smallest = k;
    if (smallest == j) continue;
    std::swap(w[smallest], w[j]);
    if (iblock != nullptr) std::swap(iblock[smallest], iblock[j]);
    std::swap_ranges(col(z, ldz, smallest), col(z, ldz, smallest) + n, col(z, ldz, j));
    if (ifail != nullptr) std::swap(ifail[smallest], ifail[j]);
  }
}

// The single eigenvalue of a 1 x 1 matrix, if the range takes it.
template <class R>
bool one_by_one_in_range(Range range, R value, R vl, R vu) {
  return range != Range::kValues || (vl < value && vu >= value);
}

template <class T>
std::int64_t reduction_work(Uplo uplo, int n) {
  return std::max<std::int64_t>(sytrd_worksize<T>(uplo, n),
                                ormtr_worksize<T>(Side::kLeft, uplo, n, n));
}

// The expert drivers' tridiagonal stage on d, e (the bounds and tolerance
// already scaled). Every eigenvalue at the default tolerance: QR (sterf, or
// steqr on the reduction's factor, which form_q puts in z). Otherwise, or
// when QR fails: bisection (iblock in iwork's first n), then inverse
// iteration, after which *back says the caller must still take z through
// the reduction's factor. rscratch: 5n reals; iwork: 5n. Returns INFO.
template <class T, class FormQ>
int expert_tridiagonal(bool wantz, Range range, int n, real_t<T> vl, real_t<T> vu, int il, int iu,
                       real_t<T> abstol, const real_t<T> *d, const real_t<T> *e, int *m,
                       real_t<T> *w, T *z, int ldz, real_t<T> *rscratch, int *iwork, int *ifail,
                       FormQ form_q, bool *back) {
  using R = real_t<T>;
  *back = false;
  int info = 0;
  const bool whole = range == Range::kAll || (range == Range::kIndices && il == 1 && iu == n);
  if (whole && abstol <= 0) {
    std::copy(d, d + n, w);
    R *ee = rscratch + 2 * n;  // after steqr's 2n - 2
    std::copy(e, e + n - 1, ee);
    if (!wantz) {
      info = sterf(n, w, ee);
    } else {
      form_q();
      info = steqr<T>(CompQ::kUpdate, n, w, ee, z, ldz, rscratch);
      if (info == 0) std::fill(ifail, ifail + n, 0);
    }
    if (info == 0) {
      *m = n;
      return 0;
    }
    info = 0;
  }
  int *iblock = iwork, *isplit = iwork + n, *iscratch = iwork + 2 * n;
  int nsplit = 0;
  const int found = stebz(range, wantz, n, vl, vu, il, iu, abstol, d, e, m, &nsplit, w, iblock,
                          isplit, rscratch, iscratch);
  if (found != 0) info = n + found;
  if (wantz && (found == 0 || found == 1)) {
    const int failed = stein<T>(n, d, e, *m, w, iblock, isplit, z, ldz, rscratch, iscratch, ifail);
    if (failed != 0 && info == 0) info = failed;
    *back = true;
  }
  return info;
}

}  // namespace

// ---- the dense drivers -------------------------------------------------------------------

template <class T>
EigenWork syevr_minwork(int n) {
  if (n == 0) return {};
  if constexpr (is_complex_v<T>)
    return {2 * std::int64_t{n}, 24 * std::int64_t{n}, 10 * std::int64_t{n}};
  else
    return {26 * std::int64_t{n}, 1, 10 * std::int64_t{n}};
}

template <class T>
EigenWork syevr_optwork(Uplo uplo, int n) {
  EigenWork w = syevr_minwork<T>(n);
  if (n == 0) return w;
  // The reduction and the back transformation run after the real scratch
  // (real forms) or the reflectors' factors (complex forms); callers that
  // check the answer against the general minimum get at least that, also
  // for one row.
  const std::int64_t before = is_complex_v<T> ? n : 5 * std::int64_t{n};
  const std::int64_t general = (is_complex_v<T> ? 2 : 26) * std::int64_t{n};
  w.work = std::max({w.work, general, before + reduction_work<T>(uplo, n)});
  return w;
}

template <class T>
int syevr(JobZ jobz, Range range, Uplo uplo, int n, T *a, int lda, real_t<T> vl, real_t<T> vu,
          int il, int iu, real_t<T> abstol, int *m, real_t<T> *w, T *z, int ldz, int *isuppz,
          T *work, int lwork, real_t<T> *rwork, int lrwork, int *iwork, int liwork) {
  using R = real_t<T>;
  const bool wantz = jobz == JobZ::kVectors;
  *m = 0;
  if (n == 0) return 0;
  if (n == 1) {
    const R value = std::real(a[0]);
    if (one_by_one_in_range(range, value, vl, vu)) {
      *m = 1;
      w[0] = value;
    }
    if (wantz) {
      z[0] = T(1);
      isuppz[0] = isuppz[1] = 1;
    }
    return 0;
  }

  // The workspace: tau and the reduction's scratch in WORK; d, e, copies of
  // them and the tridiagonal solvers' scratch in the real workspace.
  T *tau = work;
  R *d, *rscratch;
  T *scratch;
  int lscratch, lrscratch;
  if constexpr (is_complex_v<T>) {
    scratch = work + n;
    lscratch = lwork - n;
    d = rwork;
    rscratch = rwork + 4 * n;
    lrscratch = lrwork - 4 * n;
  } else {
    (void)rwork, (void)lrwork;
    d = work + n;
    scratch = rscratch = work + 5 * n;
    lscratch = lrscratch = lwork - 5 * n;
  }
  R *e = d + n, *dd = d + 2 * n, *ee = d + 3 * n;
  int *iblock = iwork, *isplit = iwork + n, *iscratch = iwork + 3 * n;

  const R sigma = scaling_factor(lansy(Norm::kMaxAbs, uplo, true, n, a, lda, rscratch), false);
  R abstll = abstol, vll = vl, vuu = vu;
  if (sigma != 0) {
    scale_triangle(uplo, n, sigma, a, lda);
    if (abstol > 0) abstll = abstol * sigma;
    if (range == Range::kValues) vll = vl * sigma, vuu = vu * sigma;
  }

  sytrd(uplo, n, a, lda, d, e, tau, scratch, lscratch);
  // The back transformation may reuse everything after tau (real forms:
  // from e on, d and e being no longer needed by then).
  T *bt_work = is_complex_v<T> ? scratch : work + 2 * n;
  const int bt_len = is_complex_v<T> ? lscratch : lwork - 2 * n;

  int info = 0;
  const bool whole = range == Range::kAll || (range == Range::kIndices && il == 1 && iu == n);
  bool done = false;
  if (whole && oracle(kNanSafe, name<T>(is_complex_v<T> ? "HEEVR" : "SYEVR")) == 1) {
    std::copy(e, e + n - 1, ee);
    if (!wantz) {
      std::copy(d, d + n, w);
      info = sterf(n, w, ee);
    } else {
      std::copy(d, d + n, dd);
      const R eps = std::numeric_limits<R>::epsilon();
      bool tryrac = abstol <= 2 * R(n) * eps;
      info = stemr<T>(jobz, Range::kAll, n, dd, ee, vl, vu, il, iu, m, w, z, ldz, n, isuppz,
                      &tryrac, rscratch, lrscratch, iwork, liwork);
      if (info == 0)
        ormtr(Side::kLeft, uplo, Op::kNone, n, *m, a, lda, tau, z, ldz, bt_work, bt_len);
    }
    if (info == 0) {
      *m = n;
      done = true;
    } else {
      info = 0;  // bisection and inverse iteration take over
    }
  }
  if (!done) {
    int nsplit = 0;
    info = stebz(range, wantz, n, vll, vuu, il, iu, abstll, d, e, m, &nsplit, w, iblock, isplit,
                 rscratch, iscratch);
    if (wantz) {
      info = stein<T>(n, d, e, *m, w, iblock, isplit, z, ldz, rscratch, iscratch, iwork + 2 * n);
      ormtr(Side::kLeft, uplo, Op::kNone, n, *m, a, lda, tau, z, ldz, bt_work, bt_len);
    }
  }
  unscale_values(sigma, info, *m, w);
  if (wantz) sort_pairs<T>(n, *m, w, z, ldz, nullptr, nullptr);
  return info;
}

template <class T>
EigenWork syevx_minwork(int n) {
  if (n <= 1) return {1, is_complex_v<T> ? 7 : 1, 5 * std::int64_t{std::max(n, 1)}};
  if constexpr (is_complex_v<T>)
    return {2 * std::int64_t{n}, 7 * std::int64_t{n}, 5 * std::int64_t{n}};
  else
    return {8 * std::int64_t{n}, 1, 5 * std::int64_t{n}};
}

template <class T>
EigenWork syevx_optwork(Uplo uplo, int n) {
  EigenWork w = syevx_minwork<T>(n);
  if (n <= 1) return w;
  const std::int64_t before = is_complex_v<T> ? n : 3 * std::int64_t{n};
  w.work =
      std::max({w.work, before + reduction_work<T>(uplo, n), before + orgtr_worksize<T>(uplo, n)});
  return w;
}

template <class T>
int syevx(JobZ jobz, Range range, Uplo uplo, int n, T *a, int lda, real_t<T> vl, real_t<T> vu,
          int il, int iu, real_t<T> abstol, int *m, real_t<T> *w, T *z, int ldz, T *work, int lwork,
          real_t<T> *rwork, int *iwork, int *ifail) {
  using R = real_t<T>;
  const bool wantz = jobz == JobZ::kVectors;
  *m = 0;
  if (n == 0) return 0;
  if (n == 1) {
    const R value = std::real(a[0]);
    if (one_by_one_in_range(range, value, vl, vu)) {
      *m = 1;
      w[0] = value;
    }
    if (wantz) z[0] = T(1);
    return 0;
  }

  T *tau = work, *scratch;
  R *e, *rscratch;
  int lscratch;
  if constexpr (is_complex_v<T>) {
    scratch = work + n;
    lscratch = lwork - n;
    e = rwork;
    rscratch = rwork + 2 * n;
  } else {
    (void)rwork;
    e = work + n;
    scratch = rscratch = work + 3 * n;
    lscratch = lwork - 3 * n;
  }
  R *d = e + n;

  const R sigma = scaling_factor(lansy(Norm::kMaxAbs, uplo, true, n, a, lda, rscratch), false);
  R abstll = abstol, vll = vl, vuu = vu;
  if (sigma != 0) {
    scale_triangle(uplo, n, sigma, a, lda);
    if (abstol > 0) abstll = abstol * sigma;
    if (range == Range::kValues) vll = vl * sigma, vuu = vu * sigma;
  }

  sytrd(uplo, n, a, lda, d, e, tau, scratch, lscratch);

  bool back = false;
  const int info = expert_tridiagonal<T>(
      wantz, range, n, vll, vuu, il, iu, abstll, d, e, m, w, z, ldz, rscratch, iwork, ifail,
      [&] {
        lacpy(Part::kAll, n, n, a, lda, z, ldz);
        orgtr(uplo, n, z, ldz, tau, scratch, lscratch);
      },
      &back);
  if (back) {
    // The reflectors' scratch may now take everything after tau.
    T *bt_work = is_complex_v<T> ? scratch : work + n;
    const int bt_len = is_complex_v<T> ? lscratch : lwork - n;
    ormtr(Side::kLeft, uplo, Op::kNone, n, *m, a, lda, tau, z, ldz, bt_work, bt_len);
  }
  int *iblock = iwork;
  unscale_values(sigma, info, *m, w);
  if (wantz) sort_pairs<T>(n, *m, w, z, ldz, iblock, info != 0 ? ifail : nullptr);
  return info;
}

// ---- the band drivers --------------------------------------------------------------------

namespace {

template <class T>
real_t<T> band_diagonal(Uplo uplo, int kd, const T *ab) {
  return std::real(uplo == Uplo::kLower ? ab[0] : ab[kd]);
}

}  // namespace

template <class T>
int sbev(JobZ jobz, Uplo uplo, int n, int kd, T *ab, int ldab, real_t<T> *w, T *z, int ldz, T *work,
         real_t<T> *rwork) {
  using R = real_t<T>;
  const bool wantz = jobz == JobZ::kVectors;
  if (n == 0) return 0;
  if (n == 1) {
    w[0] = band_diagonal(uplo, kd, ab);
    if (wantz) z[0] = T(1);
    return 0;
  }
  // e and the tridiagonal solver's scratch are real; the band reduction's
  // scratch is of the matrix's type.
  R *e;
  T *reduce_scratch;
  if constexpr (is_complex_v<T>) {
    e = rwork;
    reduce_scratch = work;
  } else {
    (void)rwork;
    e = work;
    reduce_scratch = work + n;
  }
  R *rscratch = e + n;
  const R sigma = scaling_factor(lansb(Norm::kMaxAbs, uplo, true, n, kd, ab, ldab, rscratch), true);
  if (sigma != 0) scale_band(uplo, n, kd, sigma, ab, ldab);

  sbtrd(wantz ? CompQ::kInitial : CompQ::kNone, uplo, n, kd, ab, ldab, w, e, z, ldz,
        reduce_scratch);
  const int info = wantz ? steqr<T>(CompQ::kUpdate, n, w, e, z, ldz, rscratch) : sterf(n, w, e);
  unscale_values(sigma, info, n, w);
  return info;
}

template <class T>
EigenWork sbevd_minwork(JobZ jobz, int n) {
  if (n <= 1) return {};
  const std::int64_t nn = n;
  const bool wantz = jobz == JobZ::kVectors;
  if constexpr (is_complex_v<T>)
    return wantz ? EigenWork{2 * nn * nn, 1 + 5 * nn + 2 * nn * nn, 3 + 5 * nn}
                 : EigenWork{nn, nn, 1};
  else
    return wantz ? EigenWork{1 + 5 * nn + 2 * nn * nn, 1, 3 + 5 * nn} : EigenWork{2 * nn, 1, 1};
}

template <class T>
int sbevd(JobZ jobz, Uplo uplo, int n, int kd, T *ab, int ldab, real_t<T> *w, T *z, int ldz,
          T *work, int lwork, real_t<T> *rwork, int lrwork, int *iwork, int liwork) {
  using R = real_t<T>;
  const bool wantz = jobz == JobZ::kVectors;
  if (n == 0) return 0;
  if (n == 1) {
    w[0] = band_diagonal(uplo, kd, ab);
    if (wantz) z[0] = T(1);
    return 0;
  }
  // The tridiagonal's eigenvectors (n x n) go to `tri`, their product with
  // the reduction's Q to `product`, then to Z.
  const std::int64_t nn = std::int64_t{n} * n;
  R *e, *rscratch;
  T *tri, *product;
  int lproduct, lrscratch;
  if constexpr (is_complex_v<T>) {
    e = rwork;
    rscratch = rwork + n;
    lrscratch = lrwork - n;
    tri = work;
    product = work + nn;
    lproduct = static_cast<int>(lwork - nn);
  } else {
    (void)rwork, (void)lrwork;
    e = work;
    tri = work + n;
    product = tri + nn;
    lproduct = static_cast<int>(lwork - n - nn);
    rscratch = tri;
    lrscratch = lwork - n;
  }
  const R sigma = scaling_factor(lansb(Norm::kMaxAbs, uplo, true, n, kd, ab, ldab, rscratch), true);
  if (sigma != 0) scale_band(uplo, n, kd, sigma, ab, ldab);

  sbtrd(wantz ? CompQ::kInitial : CompQ::kNone, uplo, n, kd, ab, ldab, w, e, z, ldz, tri);
  int info;
  if (!wantz) {
    info = sterf(n, w, e);
  } else {
    if constexpr (is_complex_v<T>)
      info = stedc<T>(CompQ::kInitial, n, w, e, tri, n, product, lproduct, rscratch, lrscratch,
                      iwork, liwork);
    else
      info =
          stedc<T>(CompQ::kInitial, n, w, e, tri, n, product, lproduct, nullptr, 0, iwork, liwork);
    gemm<T>(Op::kNone, Op::kNone, n, n, n, T(1), z, ldz, tri, n, T(0), product, n);
    lacpy(Part::kAll, n, n, product, n, z, ldz);
  }
  unscale_values(sigma, info, n, w);
  return info;
}

template <class T>
int sbevx(JobZ jobz, Range range, Uplo uplo, int n, int kd, T *ab, int ldab, T *q, int ldq,
          real_t<T> vl, real_t<T> vu, int il, int iu, real_t<T> abstol, int *m, real_t<T> *w, T *z,
          int ldz, T *work, real_t<T> *rwork, int *iwork, int *ifail) {
  using R = real_t<T>;
  const bool wantz = jobz == JobZ::kVectors;
  *m = 0;
  if (n == 0) return 0;
  if (n == 1) {
    const R value = band_diagonal(uplo, kd, ab);
    if (one_by_one_in_range(range, value, vl, vu)) {
      *m = 1;
      w[0] = value;
      if (wantz) z[0] = T(1);
    }
    return 0;
  }
  // d, e and the tridiagonal solvers' scratch are real; the reduction's
  // scratch and the vector the back transformation multiplies are of the
  // matrix's type.
  R *d, *rscratch;
  T *scratch, *vector;
  if constexpr (is_complex_v<T>) {
    d = rwork;
    scratch = vector = work;
  } else {
    (void)rwork;
    d = vector = work;
    scratch = work + 2 * n;
  }
  R *e = d + n;
  rscratch = d + 2 * n;
  const R sigma =
      scaling_factor(lansb(Norm::kMaxAbs, uplo, true, n, kd, ab, ldab, rscratch), false);
  R abstll = abstol, vll = 0, vuu = 0;
  if (range == Range::kValues) vll = vl, vuu = vu;
  if (sigma != 0) {
    scale_band(uplo, n, kd, sigma, ab, ldab);
    if (abstol > 0) abstll = abstol * sigma;
    if (range == Range::kValues) vll = vl * sigma, vuu = vu * sigma;
  }

  sbtrd(wantz ? CompQ::kInitial : CompQ::kNone, uplo, n, kd, ab, ldab, d, e, q, ldq, scratch);

  bool back = false;
  const int info = expert_tridiagonal<T>(
      wantz, range, n, vll, vuu, il, iu, abstll, d, e, m, w, z, ldz, rscratch, iwork, ifail,
      [&] { lacpy(Part::kAll, n, n, q, ldq, z, ldz); }, &back);
  if (back) {
    // Each vector of the tridiagonal through Q, by way of the first n
    // entries of the workspace (d is no longer needed).
    for (int j = 0; j < *m; ++j) {
      std::copy(col(z, ldz, j), col(z, ldz, j) + n, vector);
      gemm<T>(Op::kNone, Op::kNone, n, 1, n, T(1), q, ldq, vector, n, T(0), col(z, ldz, j), ldz);
    }
  }
  int *iblock = iwork;
  unscale_values(sigma, info, *m, w);
  if (wantz) sort_pairs<T>(n, *m, w, z, ldz, iblock, info != 0 ? ifail : nullptr);
  return info;
}

#define ORB_EIGEN_DRIVERS(T)                                                                       \
  template EigenWork syevr_minwork<T>(int);                                                        \
  template EigenWork syevr_optwork<T>(Uplo, int);                                                  \
  template EigenWork syevx_minwork<T>(int);                                                        \
  template EigenWork syevx_optwork<T>(Uplo, int);                                                  \
  template EigenWork sbevd_minwork<T>(JobZ, int);                                                  \
  template int syevr(JobZ, Range, Uplo, int, T *, int, real_t<T>, real_t<T>, int, int, real_t<T>,  \
                     int *, real_t<T> *, T *, int, int *, T *, int, real_t<T> *, int, int *, int); \
  template int syevx(JobZ, Range, Uplo, int, T *, int, real_t<T>, real_t<T>, int, int, real_t<T>,  \
                     int *, real_t<T> *, T *, int, T *, int, real_t<T> *, int *, int *);           \
  template int sbev(JobZ, Uplo, int, int, T *, int, real_t<T> *, T *, int, T *, real_t<T> *);      \
  template int sbevd(JobZ, Uplo, int, int, T *, int, real_t<T> *, T *, int, T *, int, real_t<T> *, \
                     int, int *, int);                                                             \
  template int sbevx(JobZ, Range, Uplo, int, int, T *, int, T *, int, real_t<T>, real_t<T>, int,   \
                     int, real_t<T>, int *, real_t<T> *, T *, int, T *, real_t<T> *, int *,        \
                     int *);

ORB_EIGEN_DRIVERS(float)
ORB_EIGEN_DRIVERS(c8)
#undef ORB_EIGEN_DRIVERS

}  // namespace orb::lapack
