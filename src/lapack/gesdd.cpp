// The singular value decomposition by divide and conquer (the published
// xGESDD): A = U S V^H with all (JOBZ = 'A'), the leading min(m, n) ('S')
// or no ('N') vectors, or with the short side's vectors overwriting A
// ('O').
//
// The bidiagonal's vectors come from bdsdc as real n x n matrices; they are
// written where the output vectors go (for complex data, through a real
// copy in RWORK) and the bidiagonal reduction's reflectors applied to them
// with ormbr. A much taller than wide A (much wider than tall) is first
// reduced to its triangular factor, whose vectors are then multiplied by
// the orthogonal factor. The workspace is the published one: its minimum,
// and what the blocked calls can use beyond it; a product with the
// orthogonal factor that has no room for a whole copy of the matrix runs in
// blocks of rows (columns) through the workspace.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "lapack/auxiliary.h"
#include "lapack/bidiag.h"
#include "lapack/blas_calls.h"
#include "lapack/copy_scale.h"
#include "lapack/divide.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/qr.h"
#include "lapack/svd_drivers.h"

namespace orb::lapack {
namespace {

enum class Jobz : unsigned char { kAll, kSome, kOverwrite, kNone };

Jobz jobz_of(JobSvd j) {
  switch (j) {
    case JobSvd::kAll:
      return Jobz::kAll;
    case JobSvd::kSome:
      return Jobz::kSome;
    case JobSvd::kOverwrite:
      return Jobz::kOverwrite;
    default:
      return Jobz::kNone;
  }
}

template <class T>
inline std::ptrdiff_t sq(int n) {
  return static_cast<std::ptrdiff_t>(n) * n;
}

// m x n := m x k times k x n, the first factor overwritten by the result a
// block of its rows at a time through `scratch` (rows x k entries).
template <class T>
void multiply_rows(int m, int n, int k, T *a, int lda, const T *b, int ldb, T *scratch, int rows) {
  rows = std::max(1, rows);
  for (int i = 0; i < m; i += rows) {
    const int r = std::min(rows, m - i);
    gemm(Op::kNone, Op::kNone, r, n, k, T(1), a + i, lda, b, ldb, T(0), scratch, r);
    lacpy(Part::kAll, r, n, scratch, r, a + i, lda);
  }
}
// m x n := m x k times k x n, the second factor overwritten a block of its
// columns at a time through `scratch` (m x cols entries).
template <class T>
void multiply_cols(int m, int n, int k, const T *a, int lda, T *b, int ldb, T *scratch, int cols) {
  cols = std::max(1, cols);
  for (int j = 0; j < n; j += cols) {
    const int c = std::min(cols, n - j);
    T *bj = b + static_cast<std::ptrdiff_t>(j) * ldb;
    gemm(Op::kNone, Op::kNone, m, c, k, T(1), a, lda, bj, ldb, T(0), scratch, m);
    lacpy(Part::kAll, m, c, scratch, m, bj, ldb);
  }
}

// The workspace of one call: the reduction's scalars and the bidiagonal's
// solver, with the real matrices of its vectors for complex data.
template <class T>
class Work {
  using R = real_t<T>;

 public:
  Work(int mn, T *work, int lwork, R *rwork, int *iwork) : iwork_(iwork) {
    T *p = work;
    if constexpr (is_complex_v<T>) {
      e_ = rwork;
      ru_ = rwork + mn;
      rvt_ = ru_ + sq<T>(mn);
      brwork_ = rvt_ + sq<T>(mn);
    } else {
      e_ = p;
      p += mn;
    }
    tauq_ = p;
    taup_ = p + mn;
    free_ = p + 2 * mn;
    end_ = work + lwork;
  }

  R *e() const { return e_; }
  T *tauq() const { return tauq_; }
  T *taup() const { return taup_; }
  // An area of `count` entries taken from the free workspace.
  T *take(std::ptrdiff_t count) {
    T *p = free_;
    free_ += count;
    return p;
  }
  T *rest() const { return free_; }
  int lrest() const { return static_cast<int>(end_ - free_); }

  // The singular values alone.
  int values(Uplo uplo, int n, R *s) {
    R *bwork;
    if constexpr (is_complex_v<T>)
      bwork = ru_;
    else
      bwork = free_;
    return bdsdc<R>(uplo, CompQ::kNone, n, s, e_, nullptr, 1, nullptr, 1, bwork, iwork_);
  }

  // The values and the bidiagonal's vectors, in the leading n x n of u and
  // vt.
  int vectors(Uplo uplo, int n, R *s, T *u, int ldu, T *vt, int ldvt) {
    if constexpr (is_complex_v<T>) {
      const int info = bdsdc<R>(uplo, CompQ::kInitial, n, s, e_, ru_, n, rvt_, n, brwork_, iwork_);
      for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
          u[i + static_cast<std::ptrdiff_t>(j) * ldu] =
              T(ru_[i + static_cast<std::ptrdiff_t>(j) * n]);
          vt[i + static_cast<std::ptrdiff_t>(j) * ldvt] =
              T(rvt_[i + static_cast<std::ptrdiff_t>(j) * n]);
        }
      return info;
    } else {
      return bdsdc<R>(uplo, CompQ::kInitial, n, s, e_, u, ldu, vt, ldvt, free_, iwork_);
    }
  }

 private:
  int *iwork_;
  R *e_ = nullptr, *ru_ = nullptr, *rvt_ = nullptr, *brwork_ = nullptr;
  T *tauq_, *taup_, *free_, *end_;
};

template <class T>
int tall(Jobz jobz, int m, int n, T *a, int lda, real_t<T> *s, T *u, int ldu, T *vt, int ldvt,
         T *work, int lwork, real_t<T> *rwork, int *iwork) {
  Work<T> w(n, work, lwork, rwork, iwork);
  const int mnthr =
      is_complex_v<T> ? static_cast<int>(n * 17.0f / 9.0f) : static_cast<int>(n * 11.0f / 6.0f);
  T *tau = w.tauq();
  if (m >= mnthr) {
    if (jobz == Jobz::kNone) {
      geqrf(m, n, a, lda, tau, w.rest(), w.lrest());
      if (n > 1) laset(Part::kLower, n - 1, n - 1, T(0), T(0), a + 1, lda);
      gebrd(n, n, a, lda, s, w.e(), w.tauq(), w.taup(), w.rest(), w.lrest());
      return w.values(Uplo::kUpper, n, s);
    }
    if (jobz == Jobz::kAll) {
      T *wu = w.take(sq<T>(n));
      geqrf(m, n, a, lda, tau, w.rest(), w.lrest());
      lacpy(Part::kLower, m, n, a, lda, u, ldu);
      orgqr(m, m, n, u, ldu, tau, w.rest(), w.lrest());
      if (n > 1) laset(Part::kLower, n - 1, n - 1, T(0), T(0), a + 1, lda);
      gebrd(n, n, a, lda, s, w.e(), w.tauq(), w.taup(), w.rest(), w.lrest());
      const int info = w.vectors(Uplo::kUpper, n, s, wu, n, vt, ldvt);
      ormbr(Vect::kQ, Side::kLeft, Op::kNone, n, n, n, a, lda, w.tauq(), wu, n, w.rest(),
            w.lrest());
      ormbr(Vect::kP, Side::kRight, Op::kConjTrans, n, n, n, a, lda, w.taup(), vt, ldvt, w.rest(),
            w.lrest());
      gemm(Op::kNone, Op::kNone, m, n, n, T(1), u, ldu, wu, n, T(0), a, lda);
      lacpy(Part::kAll, m, n, a, lda, u, ldu);
      return info;
    }
    // S and O: Q in A, R reduced in the workspace.
    // R's area last: with what follows it, it is the scratch of the
    // final product.
    T *wu = jobz == Jobz::kOverwrite ? w.take(sq<T>(n)) : u;
    T *wr = w.take(sq<T>(n));
    const int lwu = jobz == Jobz::kOverwrite ? n : ldu;
    geqrf(m, n, a, lda, tau, w.rest(), w.lrest());
    lacpy(Part::kUpper, n, n, a, lda, wr, n);
    if (n > 1) laset(Part::kLower, n - 1, n - 1, T(0), T(0), wr + 1, n);
    orgqr(m, n, n, a, lda, tau, w.rest(), w.lrest());
    gebrd(n, n, wr, n, s, w.e(), w.tauq(), w.taup(), w.rest(), w.lrest());
    const int info = w.vectors(Uplo::kUpper, n, s, wu, lwu, vt, ldvt);
    ormbr(Vect::kQ, Side::kLeft, Op::kNone, n, n, n, wr, n, w.tauq(), wu, lwu, w.rest(), w.lrest());
    ormbr(Vect::kP, Side::kRight, Op::kConjTrans, n, n, n, wr, n, w.taup(), vt, ldvt, w.rest(),
          w.lrest());
    if (jobz == Jobz::kSome) {
      lacpy(Part::kAll, n, n, u, ldu, wr, n);
      gemm(Op::kNone, Op::kNone, m, n, n, T(1), a, lda, wr, n, T(0), u, ldu);
    } else {
      // A := Q Ub in blocks of rows through R's area and what follows it.
      const int rows = static_cast<int>((sq<T>(n) + w.lrest()) / n);
      multiply_rows(m, n, n, a, lda, wu, n, wr, std::min(rows, n));
    }
    return info;
  }
  // The direct reduction.
  gebrd(m, n, a, lda, s, w.e(), w.tauq(), w.taup(), w.rest(), w.lrest());
  switch (jobz) {
    case Jobz::kNone:
      return w.values(Uplo::kUpper, n, s);
    case Jobz::kSome:
    case Jobz::kAll: {
      const int ncu = jobz == Jobz::kAll ? m : n;
      laset(Part::kAll, m, ncu, T(0), T(0), u, ldu);
      const int info = w.vectors(Uplo::kUpper, n, s, u, ldu, vt, ldvt);
      if (ncu > n)
        laset(Part::kAll, m - n, m - n, T(0), T(1), u + n + std::ptrdiff_t{1} * n * ldu, ldu);
      ormbr(Vect::kQ, Side::kLeft, Op::kNone, m, ncu, n, a, lda, w.tauq(), u, ldu, w.rest(),
            w.lrest());
      ormbr(Vect::kP, Side::kRight, Op::kConjTrans, n, n, n, a, lda, w.taup(), vt, ldvt, w.rest(),
            w.lrest());
      return info;
    }
    case Jobz::kOverwrite: {
      // U in an m x n workspace when it fits, else n x n and a product with
      // the explicit Q in blocks of rows.
      const bool whole =
          w.lrest() >= std::ptrdiff_t{1} * m * n + n + (is_complex_v<T> ? 0 : 3 * n * n + 4 * n);
      const int ldwu = whole ? m : n;
      T *wu = w.take(std::ptrdiff_t{1} * ldwu * n);
      if (whole) laset(Part::kAll, m, n, T(0), T(0), wu, ldwu);
      const int info = w.vectors(Uplo::kUpper, n, s, wu, ldwu, vt, ldvt);
      ormbr(Vect::kP, Side::kRight, Op::kConjTrans, n, n, n, a, lda, w.taup(), vt, ldvt, w.rest(),
            w.lrest());
      if (whole) {
        ormbr(Vect::kQ, Side::kLeft, Op::kNone, m, n, n, a, lda, w.tauq(), wu, ldwu, w.rest(),
              w.lrest());
        lacpy(Part::kAll, m, n, wu, ldwu, a, lda);
      } else {
        orgbr(Vect::kQ, m, n, n, a, lda, w.tauq(), w.rest(), w.lrest());
        multiply_rows(m, n, n, a, lda, wu, n, w.rest(), w.lrest() / n);
      }
      return info;
    }
  }
  return 0;
}

template <class T>
int wide(Jobz jobz, int m, int n, T *a, int lda, real_t<T> *s, T *u, int ldu, T *vt, int ldvt,
         T *work, int lwork, real_t<T> *rwork, int *iwork) {
  Work<T> w(m, work, lwork, rwork, iwork);
  const int mnthr =
      is_complex_v<T> ? static_cast<int>(m * 17.0f / 9.0f) : static_cast<int>(m * 11.0f / 6.0f);
  T *tau = w.tauq();
  if (n >= mnthr) {
    if (jobz == Jobz::kNone) {
      gelqf(m, n, a, lda, tau, w.rest(), w.lrest());
      if (m > 1) laset(Part::kUpper, m - 1, m - 1, T(0), T(0), a + lda, lda);
      gebrd(m, m, a, lda, s, w.e(), w.tauq(), w.taup(), w.rest(), w.lrest());
      return w.values(Uplo::kUpper, m, s);
    }
    if (jobz == Jobz::kAll) {
      T *wvt = w.take(sq<T>(m));
      gelqf(m, n, a, lda, tau, w.rest(), w.lrest());
      lacpy(Part::kUpper, m, n, a, lda, vt, ldvt);
      orglq(n, n, m, vt, ldvt, tau, w.rest(), w.lrest());
      if (m > 1) laset(Part::kUpper, m - 1, m - 1, T(0), T(0), a + lda, lda);
      gebrd(m, m, a, lda, s, w.e(), w.tauq(), w.taup(), w.rest(), w.lrest());
      const int info = w.vectors(Uplo::kUpper, m, s, u, ldu, wvt, m);
      ormbr(Vect::kQ, Side::kLeft, Op::kNone, m, m, m, a, lda, w.tauq(), u, ldu, w.rest(),
            w.lrest());
      ormbr(Vect::kP, Side::kRight, Op::kConjTrans, m, m, m, a, lda, w.taup(), wvt, m, w.rest(),
            w.lrest());
      gemm(Op::kNone, Op::kNone, m, n, m, T(1), wvt, m, vt, ldvt, T(0), a, lda);
      lacpy(Part::kAll, m, n, a, lda, vt, ldvt);
      return info;
    }
    // S and O: Q^H in A, L reduced in the workspace.
    T *wvt = jobz == Jobz::kOverwrite ? w.take(sq<T>(m)) : vt;
    T *wl = w.take(sq<T>(m));
    const int lwvt = jobz == Jobz::kOverwrite ? m : ldvt;
    gelqf(m, n, a, lda, tau, w.rest(), w.lrest());
    lacpy(Part::kLower, m, m, a, lda, wl, m);
    if (m > 1) laset(Part::kUpper, m - 1, m - 1, T(0), T(0), wl + m, m);
    orglq(m, n, m, a, lda, tau, w.rest(), w.lrest());
    gebrd(m, m, wl, m, s, w.e(), w.tauq(), w.taup(), w.rest(), w.lrest());
    const int info = w.vectors(Uplo::kUpper, m, s, u, ldu, wvt, lwvt);
    ormbr(Vect::kQ, Side::kLeft, Op::kNone, m, m, m, wl, m, w.tauq(), u, ldu, w.rest(), w.lrest());
    ormbr(Vect::kP, Side::kRight, Op::kConjTrans, m, m, m, wl, m, w.taup(), wvt, lwvt, w.rest(),
          w.lrest());
    if (jobz == Jobz::kSome) {
      lacpy(Part::kAll, m, m, vt, ldvt, wl, m);
      gemm(Op::kNone, Op::kNone, m, n, m, T(1), wl, m, a, lda, T(0), vt, ldvt);
    } else {
      const int cols = static_cast<int>((sq<T>(m) + w.lrest()) / m);
      multiply_cols(m, n, m, wvt, m, a, lda, wl, std::min(cols, m));
    }
    return info;
  }
  gebrd(m, n, a, lda, s, w.e(), w.tauq(), w.taup(), w.rest(), w.lrest());
  switch (jobz) {
    case Jobz::kNone:
      return w.values(Uplo::kLower, m, s);
    case Jobz::kSome:
    case Jobz::kAll: {
      const int nrvt = jobz == Jobz::kAll ? n : m;
      laset(Part::kAll, nrvt, n, T(0), T(0), vt, ldvt);
      const int info = w.vectors(Uplo::kLower, m, s, u, ldu, vt, ldvt);
      if (nrvt > m)
        laset(Part::kAll, n - m, n - m, T(0), T(1), vt + m + std::ptrdiff_t{1} * m * ldvt, ldvt);
      ormbr(Vect::kQ, Side::kLeft, Op::kNone, m, m, n, a, lda, w.tauq(), u, ldu, w.rest(),
            w.lrest());
      ormbr(Vect::kP, Side::kRight, Op::kConjTrans, nrvt, n, m, a, lda, w.taup(), vt, ldvt,
            w.rest(), w.lrest());
      return info;
    }
    case Jobz::kOverwrite: {
      const bool whole =
          w.lrest() >= std::ptrdiff_t{1} * m * n + m + (is_complex_v<T> ? 0 : 3 * m * m + 4 * m);
      T *wvt = w.take(whole ? std::ptrdiff_t{1} * m * n : sq<T>(m));
      if (whole) laset(Part::kAll, m, n, T(0), T(0), wvt, m);
      const int info = w.vectors(Uplo::kLower, m, s, u, ldu, wvt, m);
      ormbr(Vect::kQ, Side::kLeft, Op::kNone, m, m, n, a, lda, w.tauq(), u, ldu, w.rest(),
            w.lrest());
      if (whole) {
        ormbr(Vect::kP, Side::kRight, Op::kConjTrans, m, n, m, a, lda, w.taup(), wvt, m, w.rest(),
              w.lrest());
        lacpy(Part::kAll, m, n, wvt, m, a, lda);
      } else {
        orgbr(Vect::kP, m, n, m, a, lda, w.taup(), w.rest(), w.lrest());
        multiply_cols(m, n, m, wvt, m, a, lda, w.rest(), w.lrest() / m);
      }
      return info;
    }
  }
  return 0;
}

}  // namespace

template <class T>
int gesdd_minwork(JobSvd jobz, int m, int n) {
  const int mn = std::min(m, n), mx = std::max(m, n);
  if (mn == 0) return 1;
  const Jobz j = jobz_of(jobz);
  if constexpr (is_complex_v<T>) {
    const int mnthr = static_cast<int>(mn * 17.0f / 9.0f);
    if (mx >= mnthr) {
      switch (j) {
        case Jobz::kNone:
          return 3 * mn;
        case Jobz::kOverwrite:
          return 2 * mn * mn + 3 * mn;
        case Jobz::kSome:
          return mn * mn + 3 * mn;
        case Jobz::kAll:
          return mn * mn + std::max(3 * mn, mn + mx);
      }
    }
    return 2 * mn + mx + (j == Jobz::kOverwrite ? mn * mn : 0);
  } else {
    const int mnthr = static_cast<int>(mn * 11.0f / 6.0f);
    const int bdspac = j == Jobz::kNone ? 7 * mn : 3 * mn * mn + 4 * mn;
    if (mx >= mnthr) {
      switch (j) {
        case Jobz::kNone:
          return bdspac + mn;
        case Jobz::kOverwrite:
          return bdspac + 2 * mn * mn + 3 * mn;
        case Jobz::kSome:
          return bdspac + mn * mn + 3 * mn;
        case Jobz::kAll:
          return mn * mn + std::max(3 * mn + bdspac, mn + mx);
      }
    }
    if (j == Jobz::kOverwrite) return 3 * mn + std::max(mx, mn * mn + bdspac);
    return 3 * mn + std::max(mx, bdspac);
  }
}

template <class T>
int gesdd_worksize(JobSvd jobz, int m, int n) {
  const int mn = std::min(m, n), mx = std::max(m, n);
  if (mn == 0) return 1;
  const Jobz j = jobz_of(jobz);
  const int head = (is_complex_v<T> ? 2 : 3) * mn;
  int calls;
  if (m >= n)
    calls = std::max({gebrd_worksize<T>(m, n), static_cast<int>(geqrf_worksize<T>(m, n)),
                      static_cast<int>(orgqr_worksize<T>(m, m, n)),
                      ormbr_worksize<T>(Vect::kQ, Side::kLeft, Op::kNone, m, m, n),
                      ormbr_worksize<T>(Vect::kP, Side::kRight, Op::kConjTrans, n, n, n)});
  else
    calls = std::max({gebrd_worksize<T>(m, n), static_cast<int>(gelqf_worksize<T>(m, n)),
                      static_cast<int>(orglq_worksize<T>(n, n, m)),
                      ormbr_worksize<T>(Vect::kQ, Side::kLeft, Op::kNone, m, m, m),
                      ormbr_worksize<T>(Vect::kP, Side::kRight, Op::kConjTrans, n, n, m)});
  // The O job keeps U (V^H) whole in the workspace when it can.
  const int extra =
      j == Jobz::kOverwrite ? 2 * mn * mn + mn * mx : (j == Jobz::kNone ? 0 : mn * mn);
  return std::max(head + calls + extra, gesdd_minwork<T>(jobz, m, n));
}

template <class T>
int gesdd(JobSvd jobz, int m, int n, T *a, int lda, real_t<T> *s, T *u, int ldu, T *vt, int ldvt,
          T *work, int lwork, real_t<T> *rwork, int *iwork) {
  using R = real_t<T>;
  const int mn = std::min(m, n);
  if (mn == 0) return 0;
  const R anrm = lange(Norm::kMaxAbs, m, n, a, lda, static_cast<R *>(nullptr));
  if (std::isnan(anrm)) return -4;
  const R smlnum = scaling_small<R>(), bignum = R(1) / smlnum;
  R scaled_to = 0;
  if (anrm > R(0) && anrm < smlnum)
    scaled_to = smlnum;
  else if (anrm > bignum)
    scaled_to = bignum;
  if (scaled_to != R(0)) lascl(Part::kAll, anrm, scaled_to, m, n, a, lda);
  const Jobz j = jobz_of(jobz);
  const int info = m >= n ? tall(j, m, n, a, lda, s, u, ldu, vt, ldvt, work, lwork, rwork, iwork)
                          : wide(j, m, n, a, lda, s, u, ldu, vt, ldvt, work, lwork, rwork, iwork);
  if (scaled_to != R(0)) lascl(Part::kAll, scaled_to, anrm, mn, 1, s, mn);
  return info;
}

#define ORB_GESDD(T)                                                                           \
  template int gesdd_minwork<T>(JobSvd, int, int);                                             \
  template int gesdd_worksize<T>(JobSvd, int, int);                                            \
  template int gesdd<T>(JobSvd, int, int, T *, int, real_t<T> *, T *, int, T *, int, T *, int, \
                        real_t<T> *, int *);
ORB_GESDD(float)
ORB_GESDD(c8)

}  // namespace orb::lapack
