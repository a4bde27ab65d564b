// Condition numbers of eigenvalues and eigenvectors of the Schur form
// (xTRSNA): s from the angle between the left and right eigenvectors; sep,
// the separation of an eigenvalue from the rest of the spectrum, as the
// reciprocal of the estimated norm of the inverse of the reordered form's
// trailing triangle shifted by it.
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>

#include "lapack/auxiliary.h"
#include "lapack/copy_scale.h"
#include "lapack/hqr_complex.h"
#include "lapack/nonsym.h"

namespace orb::lapack {

template <class T>
int trsna(Sense job, HowMany howmny, const int *select, int n, const T *t, int ldt, const T *vl,
          int ldvl, const T *vr, int ldvr, real_t<T> *s, real_t<T> *sep, int mm, int *m, T *work,
          int ldwork, int *iwork, real_t<T> *rwork) {
  static_assert(is_complex_v<T>, "the real form reorders 2x2 blocks, not yet here");
  (void)mm, (void)iwork;
  const bool wants = job != Sense::kVectors, wantsp = job != Sense::kValues;
  const bool somcon = howmny == HowMany::kSelected;
  if (somcon) {
    *m = 0;
    for (int j = 0; j < n; ++j) *m += select[j] ? 1 : 0;
  } else {
    *m = n;
  }
  if (n == 0) return 0;
  if (n == 1) {
    if (somcon && !select[0]) return 0;
    if (wants) s[0] = 1;
    if (wantsp) sep[0] = std::abs(t[0]);
    return 0;
  }
  const float eps = std::numeric_limits<float>::epsilon();
  const float smlnum = std::numeric_limits<float>::min() / eps;
  auto col = [](const T *a, int ld, int j) { return a + static_cast<std::ptrdiff_t>(j) * ld; };
  T *x = work, *v = work + static_cast<std::ptrdiff_t>(n) * ldwork;
  int ks = 0;
  for (int k = 0; k < n; ++k) {
    if (somcon && !select[k]) continue;
    if (wants) {
      std::complex<double> prod = 0;
      double rn = 0, ln = 0;
      const T *r = col(vr, ldvr, ks), *l = col(vl, ldvl, ks);
      SumSquares<float> rs, ls;
      for (int i = 0; i < n; ++i) {
        prod += std::conj(std::complex<double>(r[i])) * std::complex<double>(l[i]);
        rs.add(std::abs(r[i].real())), rs.add(std::abs(r[i].imag()));
        ls.add(std::abs(l[i].real())), ls.add(std::abs(l[i].imag()));
      }
      rn = rs.root();
      ln = ls.root();
      s[ks] = static_cast<float>(std::abs(prod) / (rn * ln));
    }
    if (wantsp) {
      // Move eigenvalue k to the top; sep is the smallest singular value
      // of T22 - t11 I, estimated through the 1-norm of its inverse.
      lacpy(Part::kAll, n, n, t, ldt, work, ldwork);
      hqr::trexc(n, work, ldwork, nullptr, 1, k + 1, 1);
      for (int i = 1; i < n; ++i) work[i + static_cast<std::ptrdiff_t>(i) * ldwork] -= work[0];
      sep[ks] = 0;
      float est = 0, scale = 1;
      int kase = 0, isave[3] = {0, 0, 0}, info = 0;
      bool normin = false, singular = false;
      const T *t22 = work + 1 + ldwork;
      for (;;) {
        lacn2<T>(n - 1, v, x, nullptr, &est, &kase, isave);
        if (kase == 0) break;
        latrs(Uplo::kUpper, kase == 1 ? Op::kConjTrans : Op::kNone, Diag::kNonUnit, normin, n - 1,
              t22, ldwork, x, &scale, rwork, &info);
        normin = true;
        if (scale != 1) {
          float xnorm = 0;
          for (int i = 0; i < n - 1; ++i) xnorm = std::max(xnorm, abs1(x[i]));
          if (scale < xnorm * smlnum || scale == 0) {
            singular = true;
            break;
          }
          rscl<T>(n, scale, x);
        }
      }
      if (!singular) sep[ks] = 1 / std::max(est, smlnum);
    }
    ++ks;
  }
  return 0;
}

template int trsna<c8>(Sense, HowMany, const int *, int, const c8 *, int, const c8 *, int,
                       const c8 *, int, float *, float *, int, int *, c8 *, int, int *, float *);

}  // namespace orb::lapack
