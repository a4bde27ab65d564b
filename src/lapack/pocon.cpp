// The reciprocal condition number of a Hermitian positive definite matrix,
// full or band, from its Cholesky factors: the 1-norm estimator run on
// A^-1 (A is Hermitian, so both of its products are the same), each
// product two triangular solves scaled against overflow.
#include "lapack/auxiliary.h"
#include "lapack/cholesky.h"
#include "lapack/refine.h"

namespace orb::lapack {
namespace {

// The estimator's work: x and v in WORK; the solves' column norms in
// WORK's third part for real data, in RWORK for complex.
template <class T, class Solve>
real_t<T> estimate(int n, real_t<T> anorm, T *work, real_t<T> *rwork, int *iwork, Solve solve) {
  using R = real_t<T>;
  if (n == 0) return 1;
  if (anorm == 0) return 0;
  R *cnorm;
  if constexpr (is_complex_v<T>)
    cnorm = rwork, iwork = nullptr;
  else
    cnorm = work + 2 * n;
  bool normin = false;
  const R ainvnm = inverse_norm(n, work, work + n, iwork, [&](bool, T *x) {
    const R s = solve(normin, x, cnorm);
    normin = true;
    return s;
  });
  return reciprocal_condition(ainvnm, anorm);
}

constexpr Op adjoint_of(bool complex) {
  return complex ? Op::kConjTrans : Op::kTrans;
}

}  // namespace

template <class T>
real_t<T> pocon(Uplo uplo, int n, const T *a, int lda, real_t<T> anorm, T *work, real_t<T> *rwork,
                int *iwork) {
  using R = real_t<T>;
  constexpr Op adj = adjoint_of(is_complex_v<T>);
  // A^-1 x = U^-1 U^-H x (upper) or L^-H L^-1 x (lower).
  const Op first = uplo == Uplo::kUpper ? adj : Op::kNone;
  const Op second = uplo == Uplo::kUpper ? Op::kNone : adj;
  return estimate(n, anorm, work, rwork, iwork, [&](bool normin, T *x, R *cnorm) {
    R s1, s2;
    int info;
    latrs(uplo, first, Diag::kNonUnit, normin, n, a, lda, x, &s1, cnorm, &info);
    latrs(uplo, second, Diag::kNonUnit, true, n, a, lda, x, &s2, cnorm, &info);
    return s1 * s2;
  });
}

template <class T>
real_t<T> pbcon(Uplo uplo, int n, int kd, const T *ab, int ldab, real_t<T> anorm, T *work,
                real_t<T> *rwork, int *iwork) {
  using R = real_t<T>;
  constexpr Op adj = adjoint_of(is_complex_v<T>);
  const Op first = uplo == Uplo::kUpper ? adj : Op::kNone;
  const Op second = uplo == Uplo::kUpper ? Op::kNone : adj;
  return estimate(n, anorm, work, rwork, iwork, [&](bool normin, T *x, R *cnorm) {
    R s1, s2;
    latbs(uplo, first, Diag::kNonUnit, normin, n, kd, ab, ldab, x, &s1, cnorm);
    latbs(uplo, second, Diag::kNonUnit, true, n, kd, ab, ldab, x, &s2, cnorm);
    return s1 * s2;
  });
}

#define ORB_POCON(T)                                                                       \
  template real_t<T> pocon(Uplo, int, const T *, int, real_t<T>, T *, real_t<T> *, int *); \
  template real_t<T> pbcon(Uplo, int, int, const T *, int, real_t<T>, T *, real_t<T> *, int *);
ORB_POCON(float)
ORB_POCON(c8)
#undef ORB_POCON

}  // namespace orb::lapack
