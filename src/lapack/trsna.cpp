// Condition numbers of eigenvalues and eigenvectors of the Schur form
// (xTRSNA): s from the angle between the left and right eigenvectors; sep,
// the separation of an eigenvalue from the rest of the spectrum, as the
// reciprocal of the estimated norm of the inverse of the reordered form's
// trailing block shifted by it.
//
// The real form works on the blocks of the quasi-triangular Schur form: a
// complex pair has its real and imaginary parts in two columns of VL and
// VR and gets two equal entries of S and SEP. Its sep needs the complex
// operator T22 - lambda I, which is solved in real arithmetic after a
// rotation of the pair's 2x2 block (laqtr).
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>

#include "lapack/auxiliary.h"
#include "lapack/copy_scale.h"
#include "lapack/hqr_complex.h"
#include "lapack/laqtr.h"
#include "lapack/nonsym.h"
#include "lapack/schur_swap.h"

namespace orb::lapack {

namespace {

template <class T>
const T *column(const T *a, int ld, int j) {
  return a + static_cast<std::ptrdiff_t>(j) * ld;
}

// s of the eigenvalue whose right and left eigenvectors are column ks of VR
// and VL: |v^H u| / (|u| |v|). For a real pair (pair) the vectors are
// complex, u = VR(:, ks) + i VR(:, ks+1) and v likewise.
template <class T>
real_t<T> eigenvalue_condition(int n, const T *vr, int ldvr, const T *vl, int ldvl, int ks,
                               bool pair) {
  using R = real_t<T>;
  SumSquares<R> rs, ls;
  auto add = [](SumSquares<R> &ss, T z) {
    if constexpr (is_complex_v<T>) {
      ss.add(std::abs(z.real())), ss.add(std::abs(z.imag()));
    } else {
      ss.add(std::abs(z));
    }
  };
  std::complex<double> prod = 0;
  const T *r = column(vr, ldvr, ks), *l = column(vl, ldvl, ks);
  if constexpr (is_complex_v<T>) {
    (void)pair;
    for (int i = 0; i < n; ++i) {
      prod += std::conj(std::complex<double>(r[i])) * std::complex<double>(l[i]);
      add(rs, r[i]), add(ls, l[i]);
    }
  } else {
    const T *ri = pair ? r + ldvr : nullptr, *li = pair ? l + ldvl : nullptr;
    double re = 0, im = 0;
    for (int i = 0; i < n; ++i) {
      re += static_cast<double>(r[i]) * l[i];
      add(rs, r[i]), add(ls, l[i]);
      if (pair) {
        re += static_cast<double>(ri[i]) * li[i];
        im += static_cast<double>(l[i]) * ri[i] - static_cast<double>(li[i]) * r[i];
        add(rs, ri[i]), add(ls, li[i]);
      }
    }
    prod = {re, im};
  }
  return static_cast<R>(std::abs(prod) /
                        (static_cast<double>(rs.root()) * static_cast<double>(ls.root())));
}

// sep of the complex eigenvalue at k: T is moved by rotations so that it
// stands first, and the norm of the inverse of T22 - t11 I is estimated
// through triangular solves with scaling. work: ldwork x (n + 1); rwork: n.
float complex_separation(int n, const c8 *t, int ldt, int k, c8 *work, int ldwork, float *rwork) {
  const float eps = std::numeric_limits<float>::epsilon();
  const float smlnum = std::numeric_limits<float>::min() / eps;
  c8 *x = work, *v = work + static_cast<std::ptrdiff_t>(n) * ldwork;
  lacpy(Part::kAll, n, n, t, ldt, work, ldwork);
  hqr::trexc(n, work, ldwork, nullptr, 1, k + 1, 1);
  for (int i = 1; i < n; ++i) work[i + static_cast<std::ptrdiff_t>(i) * ldwork] -= work[0];
  float est = 0, scale = 1;
  int kase = 0, isave[3] = {0, 0, 0}, info = 0;
  bool normin = false;
  const c8 *t22 = work + 1 + ldwork;
  for (;;) {
    lacn2<c8>(n - 1, v, x, nullptr, &est, &kase, isave);
    if (kase == 0) break;
    latrs(Uplo::kUpper, kase == 1 ? Op::kConjTrans : Op::kNone, Diag::kNonUnit, normin, n - 1, t22,
          ldwork, x, &scale, rwork, &info);
    normin = true;
    if (scale != 1) {
      // A scale below the solution's size relative to underflow means
      // T22 - t11 I is singular to working precision: sep is zero.
      float xnorm = 0;
      for (int i = 0; i < n - 1; ++i) xnorm = std::max(xnorm, abs1(x[i]));
      if (scale < xnorm * smlnum || scale == 0) return 0;
      rscl<c8>(n, scale, x);
    }
  }
  return 1 / std::max(est, smlnum);
}

// sep of the real eigenvalue or complex pair whose block starts at k. The
// block is moved to the top of a copy of T; a pair's block is then made
// triangular by the unitary U = [cs i sn; i sn cs], which leaves lambda
// (positive imaginary part) first and turns the operator's transpose into
// T22 - Re(lambda) I plus i times a matrix with a first row and mu on the
// diagonal: the form laqtr solves. A block that cannot be moved (its swap
// would be unstable) is close to others, so its sep is small anyway: it is
// reported as smlnum, the reciprocal of the largest estimate. work: ldwork x
// (n + 6); iwork 2(n-1).
template <class R>
R real_separation(int n, const R *t, int ldt, int k, R *work, int ldwork, int *iwork) {
  const R eps = std::numeric_limits<R>::epsilon();
  const R smlnum = std::numeric_limits<R>::min() / eps, bignum = 1 / smlnum;
  auto W = [&](int i, int j) -> R & { return work[i + static_cast<std::ptrdiff_t>(j) * ldwork]; };
  auto work_column = [&](int j) { return work + static_cast<std::ptrdiff_t>(j) * ldwork; };
  lacpy(Part::kAll, n, n, t, ldt, work, ldwork);
  int ifst = k + 1, ilst = 1;
  R no_q = 0;
  if (trexc<R>(false, n, work, ldwork, &no_q, 1, &ifst, &ilst, work_column(n)) != 0)
    return 1 / bignum;

  R *imag_row = work_column(n);  // B's first row in the complex pair's system
  R *v = work_column(n + 1), *x = work_column(n + 3), *solve_work = work_column(n + 5);
  const bool real_eigenvalue = W(1, 0) == 0;
  R mu = 0;
  int order;
  if (real_eigenvalue) {
    for (int i = 1; i < n; ++i) W(i, i) -= W(0, 0);
    order = n - 1;
  } else {
    mu = std::sqrt(std::abs(W(0, 1))) * std::sqrt(std::abs(W(1, 0)));
    const R delta = std::hypot(mu, W(1, 0));
    const R cs = mu / delta, sn = -W(1, 0) / delta;
    for (int j = 2; j < n; ++j) {
      W(1, j) *= cs;
      W(j, j) -= W(0, 0);
    }
    W(1, 1) = 0;
    imag_row[0] = 2 * mu;
    for (int i = 1; i < n - 1; ++i) imag_row[i] = sn * W(0, i + 1);
    order = 2 * (n - 1);
  }
  // Estimate the 1-norm of the inverse of C^T, C = T22 - lambda I.
  R est = 0, scale = 1;
  int kase = 0, isave[3] = {0, 0, 0};
  for (;;) {
    lacn2<R>(order, v, x, iwork, &est, &kase, isave);
    if (kase == 0) break;
    laqtr<R>(kase == 1, real_eigenvalue, n - 1, &W(1, 1), ldwork, imag_row, mu, &scale, x,
             solve_work);
  }
  // The last solve's scale stays in the estimate, as published.
  return scale / std::max(est, smlnum);
}

}  // namespace

template <class T>
int trsna(Sense job, HowMany howmny, const int *select, int n, const T *t, int ldt, const T *vl,
          int ldvl, const T *vr, int ldvr, real_t<T> *s, real_t<T> *sep, int mm, int *m, T *work,
          int ldwork, int *iwork, real_t<T> *rwork) {
  (void)mm;
  constexpr bool kComplex = is_complex_v<T>;
  const bool wants = job != Sense::kVectors, wantsp = job != Sense::kValues;
  const bool somcon = howmny == HowMany::kSelected;
  // Whether the block at k is a 2x2 (a complex pair of the real form).
  auto pair_at = [&](int k) {
    if constexpr (kComplex)
      return false;
    else
      return k + 1 < n && t[k + 1 + static_cast<std::ptrdiff_t>(k) * ldt] != T(0);
  };
  auto selected = [&](int k, bool pair) { return !somcon || select[k] || (pair && select[k + 1]); };
  *m = 0;
  for (int k = 0; k < n; ++k) {
    const bool pair = pair_at(k);
    if (selected(k, pair)) *m += pair ? 2 : 1;
    if (pair) ++k;
  }
  if (n == 0) return 0;
  if (n == 1) {
    if (somcon && !select[0]) return 0;
    if (wants) s[0] = 1;
    if (wantsp) sep[0] = std::abs(t[0]);
    return 0;
  }
  int ks = 0;
  for (int k = 0; k < n; ++k) {
    const bool pair = pair_at(k);
    if (selected(k, pair)) {
      if (wants) {
        s[ks] = eigenvalue_condition(n, vr, ldvr, vl, ldvl, ks, pair);
        if (pair) s[ks + 1] = s[ks];
      }
      if (wantsp) {
        if constexpr (kComplex) {
          (void)iwork;
          sep[ks] = complex_separation(n, t, ldt, k, work, ldwork, rwork);
        } else {
          (void)rwork;
          sep[ks] = real_separation(n, t, ldt, k, work, ldwork, iwork);
          if (pair) sep[ks + 1] = sep[ks];
        }
      }
      ks += pair ? 2 : 1;
    }
    if (pair) ++k;
  }
  return 0;
}

template int trsna<float>(Sense, HowMany, const int *, int, const float *, int, const float *, int,
                          const float *, int, float *, float *, int, int *, float *, int, int *,
                          float *);
template int trsna<c8>(Sense, HowMany, const int *, int, const c8 *, int, const c8 *, int,
                       const c8 *, int, float *, float *, int, int *, c8 *, int, int *, float *);

}  // namespace orb::lapack
