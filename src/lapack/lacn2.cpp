// The 1-norm estimator (Hager's method with Higham's refinements): at most
// five products with A^H after the first, then an alternating-sign test
// vector that guards against the estimate's known failures.
#include <cmath>
#include <cstdlib>

#include "blas/level1/level1.h"
#include "lapack/auxiliary.h"

namespace orb::lapack {
namespace {

constexpr int kMaxSteps = 5;

// sum |x_i| (true moduli for complex).
template <class T>
real_t<T> sum_abs(int n, const T *x) {
  real_t<T> s = 0;
  for (int i = 0; i < n; ++i) s += std::abs(x[i]);
  return s;
}

// The 0-based index of the first largest |x_i| (true moduli).
template <class T>
int max_abs(int n, const T *x) {
  int k = 0;
  real_t<T> best = std::abs(x[0]);
  for (int i = 1; i < n; ++i)
    if (std::abs(x[i]) > best) best = std::abs(x[i]), k = i;
  return k;
}

// x := sign(x) (x / |x| for complex, 1 where |x| is below the safe minimum);
// the real forms remember the signs in isgn. Returns false when the real
// sign vector is the one remembered (`compare`).
template <class T>
bool take_signs(int n, T *x, int *isgn, bool compare) {
  using R = real_t<T>;
  if constexpr (is_complex_v<T>) {
    (void)isgn;
    (void)compare;
    for (int i = 0; i < n; ++i) {
      const R a = std::abs(x[i]);
      x[i] = a > safe_minimum<R>() ? T(x[i].real() / a, x[i].imag() / a) : T(1);
    }
    return true;
  } else {
    if (compare) {
      bool same = true;
      for (int i = 0; i < n && same; ++i) same = (x[i] >= 0 ? 1 : -1) == isgn[i];
      if (same) return false;
    }
    for (int i = 0; i < n; ++i) {
      x[i] = x[i] >= 0 ? R(1) : R(-1);
      isgn[i] = x[i] >= 0 ? 1 : -1;
    }
    return true;
  }
}

template <class T>
real_t<T> real_part_of(T x) {
  if constexpr (is_complex_v<T>)
    return x.real();
  else
    return x;
}

}  // namespace

template <class T>
void lacn2(int n, T *v, T *x, int *isgn, real_t<T> *est, int *kase, int *isave) {
  using R = real_t<T>;
  // The unit vector of the largest element, for a product with A.
  auto unit_vector = [&] {
    for (int i = 0; i < n; ++i) x[i] = T(0);
    x[isave[1] - 1] = T(1);
    *kase = 1;
    isave[0] = 3;
  };
  // The alternating test vector, for the last product with A.
  auto alternating = [&] {
    R sign = 1;
    for (int i = 0; i < n; ++i) {
      x[i] = T(sign * (R(1) + static_cast<R>(i) / static_cast<R>(n - 1)));
      sign = -sign;
    }
    *kase = 1;
    isave[0] = 5;
  };

  if (*kase == 0) {
    for (int i = 0; i < n; ++i) x[i] = T(R(1) / static_cast<R>(n));
    *kase = 1;
    isave[0] = 1;
    return;
  }
  switch (isave[0]) {
    case 1:  // x = A x
      if (n == 1) {
        v[0] = x[0];
        *est = std::abs(v[0]);
        *kase = 0;
        return;
      }
      *est = sum_abs(n, x);
      take_signs(n, x, isgn, false);
      *kase = 2;
      isave[0] = 2;
      return;
    case 2:  // x = A^H x
      isave[1] = max_abs(n, x) + 1;
      isave[2] = 2;
      unit_vector();
      return;
    case 3: {  // x = A x
      blas::copy(n, x, 1, v, 1);
      const R old = *est;
      *est = sum_abs(n, v);
      bool go_on;
      if constexpr (is_complex_v<T>) {
        go_on = *est > old;
        if (go_on) take_signs(n, x, isgn, false);
      } else {
        // A repeated sign vector has converged.
        go_on = take_signs(n, x, isgn, true) ? *est > old : false;
        // take_signs has already overwritten x when the signs changed; when
        // the estimate did not grow, the test vector follows regardless.
      }
      if (!go_on) {
        alternating();
        return;
      }
      *kase = 2;
      isave[0] = 4;
      return;
    }
    case 4: {  // x = A^H x
      const int last = isave[1] - 1;
      isave[1] = max_abs(n, x) + 1;
      // The real form compares the signed element, as the published one does.
      const R previous = is_complex_v<T> ? std::abs(x[last]) : real_part_of(x[last]);
      if (previous != std::abs(x[isave[1] - 1]) && isave[2] < kMaxSteps) {
        ++isave[2];
        unit_vector();
        return;
      }
      alternating();
      return;
    }
    case 5: {  // x = A x
      const R temp = R(2) * (sum_abs(n, x) / static_cast<R>(3 * n));
      if (temp > *est) {
        blas::copy(n, x, 1, v, 1);
        *est = temp;
      }
      *kase = 0;
      return;
    }
  }
}

template void lacn2(int, float *, float *, int *, float *, int *, int *);
template void lacn2(int, double *, double *, int *, double *, int *, int *);
template void lacn2(int, c8 *, c8 *, int *, float *, int *, int *);
template void lacn2(int, c16 *, c16 *, int *, double *, int *, int *);

}  // namespace orb::lapack
