// Inverse iteration on the symmetric tridiagonal (eigen.h, stein): for each
// eigenvalue approximation, a few solves with the tridiagonal shifted by
// it, factored once with partial pivoting, starting from a random vector;
// a vector whose eigenvalue lies close to the previous ones of its block
// (a cluster) is orthogonalised against theirs after every solve. The
// iteration stops two steps after the growth of the solution shows
// convergence, or fails after five.
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "lapack/eigen.h"
#include "lapack/uniform48.h"

namespace orb::lapack {
namespace {

constexpr int kMaxIts = 5;  // solves before a vector is reported unconverged
constexpr int kExtra = 2;   // solves after convergence shows

// T - lambda I = P L U with partial pivoting (xLAGTF): a the diagonal,
// b the superdiagonal and c the subdiagonal on entry; on return a, b and
// u2 hold U's three diagonals, c the multipliers, and piv[k] whether rows
// k and k + 1 were interchanged. Each pivot is chosen by its size relative
// to its row.
template <class R>
void factor_shifted(int n, R *a, R lambda, R *b, R *c, R *u2, int *piv) {
  a[0] -= lambda;
  piv[n - 1] = 0;
  if (n == 1) return;
  R scale1 = std::abs(a[0]) + std::abs(b[0]);
  for (int k = 0; k < n - 1; ++k) {
    a[k + 1] -= lambda;
    const bool inner = k < n - 2;
    R scale2 = std::abs(c[k]) + std::abs(a[k + 1]);
    if (inner) scale2 += std::abs(b[k + 1]);
    const R piv1 = a[k] == R(0) ? R(0) : std::abs(a[k]) / scale1;
    if (c[k] == R(0)) {
      piv[k] = 0;
      scale1 = scale2;
      if (inner) u2[k] = 0;
      continue;
    }
    const R piv2 = std::abs(c[k]) / scale2;
    if (piv2 <= piv1) {
      piv[k] = 0;
      scale1 = scale2;
      c[k] /= a[k];
      a[k + 1] -= c[k] * b[k];
      if (inner) u2[k] = 0;
    } else {
      piv[k] = 1;
      const R mult = a[k] / c[k];
      a[k] = c[k];
      const R temp = a[k + 1];
      a[k + 1] = b[k] - mult * temp;
      if (inner) {
        u2[k] = b[k + 1];
        b[k + 1] = -mult * u2[k];
      }
      b[k] = temp;
      c[k] = mult;
    }
  }
}

// The largest entry of U's three diagonals times eps: the perturbation of
// a tiny pivot in the solve.
template <class R>
R solve_tolerance(int n, const R *a, const R *b, const R *u2) {
  const R eps = std::numeric_limits<R>::epsilon() / 2;
  R tol = std::abs(a[0]);
  if (n > 1) tol = std::max(tol, std::max(std::abs(a[1]), std::abs(b[0])));
  for (int k = 2; k < n; ++k)
    tol =
        std::max(tol, std::max(std::abs(a[k]), std::max(std::abs(b[k - 1]), std::abs(u2[k - 2]))));
  tol *= eps;
  return tol == R(0) ? eps : tol;
}

// y := (P L U)^-1 y from factor_shifted (xLAGTS, job -1): a pivot too
// small for the quotient to stay finite is pushed away from zero by tol,
// doubling, and a tiny one scaled up first.
template <class R>
void solve_shifted(int n, const R *a, const R *b, const R *c, const R *u2, const int *piv, R tol,
                   R *y) {
  const R sfmin = std::numeric_limits<R>::min();
  const R bignum = R(1) / sfmin;
  for (int k = 1; k < n; ++k) {
    if (piv[k - 1] == 0) {
      y[k] -= c[k - 1] * y[k - 1];
    } else {
      const R temp = y[k - 1];
      y[k - 1] = y[k];
      y[k] = temp - c[k - 1] * y[k];
    }
  }
  for (int k = n - 1; k >= 0; --k) {
    R temp = y[k];
    if (k <= n - 3)
      temp = y[k] - b[k] * y[k + 1] - u2[k] * y[k + 2];
    else if (k == n - 2)
      temp = y[k] - b[k] * y[k + 1];
    R ak = a[k];
    R pert = std::copysign(tol, ak);
    for (;;) {
      const R absak = std::abs(ak);
      if (absak < R(1)) {
        if (absak < sfmin) {
          if (absak == R(0) || std::abs(temp) * sfmin > absak) {
            ak += pert;
            pert *= 2;
            continue;
          }
          temp *= bignum;
          ak *= bignum;
        } else if (std::abs(temp) > absak * bignum) {
          ak += pert;
          pert *= 2;
          continue;
        }
      }
      break;
    }
    y[k] = temp / ak;
  }
}

// The index of the entry largest in modulus (the first of equals).
template <class R>
int index_of_max(int n, const R *x) {
  int k = 0;
  R big = std::abs(x[0]);
  for (int i = 1; i < n; ++i)
    if (std::abs(x[i]) > big) {
      big = std::abs(x[i]);
      k = i;
    }
  return k;
}

template <class R>
R real_part(R x) {
  return x;
}
template <class R>
R real_part(std::complex<R> x) {
  return x.real();
}

}  // namespace

template <class T>
int stein(int n, const real_t<T> *d, const real_t<T> *e, int m, const real_t<T> *w,
          const int *iblock, const int *isplit, T *z, int ldz, real_t<T> *work, int *iwork,
          int *ifail) {
  using R = real_t<T>;
  for (int i = 0; i < m; ++i) ifail[i] = 0;
  if (n == 0 || m == 0) return 0;
  if (n == 1) {
    z[0] = T(1);
    return 0;
  }
  const R eps = std::numeric_limits<R>::epsilon();
  auto col = [&](int j) { return z + static_cast<std::ptrdiff_t>(j) * ldz; };
  // The iterate, U's second superdiagonal, the sub- and superdiagonals
  // and the diagonal of the shifted block.
  R *x = work, *u2 = work + n, *sub = work + 2 * n, *sup = work + 3 * n, *diag = work + 4 * n;
  Uniform48 random;
  int info = 0;
  int j = 0;  // the next eigenvalue
  for (int blk = 1; blk <= iblock[m - 1]; ++blk) {
    const int b1 = blk == 1 ? 0 : isplit[blk - 2];
    const int bn = isplit[blk - 1] - 1;
    const int len = bn - b1 + 1;
    R onenrm = 0, ortol = 0, stpcrt = 0;
    if (len > 1) {
      onenrm = std::max(std::abs(d[b1]) + std::abs(e[b1]), std::abs(d[bn]) + std::abs(e[bn - 1]));
      for (int i = b1 + 1; i < bn; ++i)
        onenrm = std::max(onenrm, std::abs(d[i]) + std::abs(e[i - 1]) + std::abs(e[i]));
      ortol = R(1e-3) * onenrm;
      stpcrt = std::sqrt(R(0.1) / R(len));
    }
    int gpind = j;  // the first vector of the current cluster
    R xjm = 0;
    for (int jblk = 0; j < m && iblock[j] == blk; ++j, ++jblk) {
      R xj = w[j];
      if (len == 1) {
        x[0] = 1;
      } else {
        // Eigenvalues too close together are separated a little, so that
        // their solves differ.
        if (jblk > 0) {
          const R pertol = R(10) * std::abs(eps * xj);
          if (xj - xjm < pertol) xj = xjm + pertol;
        }
        random.fill(len, x);
        std::copy(d + b1, d + bn + 1, diag);
        std::copy(e + b1, e + bn, sup);
        std::copy(e + b1, e + bn, sub);
        factor_shifted(len, diag, xj, sup, sub, u2, iwork);
        const R tol = solve_tolerance(len, diag, sup, u2);
        int its = 0, nrmchk = 0;
        bool converged = false;
        while (its < kMaxIts) {
          ++its;
          // Scale the iterate so that the solve cannot overflow, then solve.
          const R scl = R(len) * onenrm * std::max(eps, std::abs(diag[len - 1])) /
                        std::abs(x[index_of_max(len, x)]);
          for (int i = 0; i < len; ++i) x[i] *= scl;
          solve_shifted(len, diag, sup, sub, u2, iwork, tol, x);
          // Orthogonal to the earlier vectors of its cluster.
          if (jblk > 0) {
            if (std::abs(xj - xjm) > ortol) gpind = j;
            for (int i = gpind; i < j; ++i) {
              const T *zi = col(i) + b1;
              R ctr = 0;
              for (int r = 0; r < len; ++r) ctr += x[r] * real_part(zi[r]);
              for (int r = 0; r < len; ++r) x[r] -= ctr * real_part(zi[r]);
            }
          }
          // Converged once the growth is large enough, for kExtra more solves.
          if (std::abs(x[index_of_max(len, x)]) < stpcrt) continue;
          if (++nrmchk < kExtra + 1) continue;
          converged = true;
          break;
        }
        if (!converged) ifail[info++] = j + 1;
        // Unit length, largest entry positive.
        R nrm = 0, scale = 0, ssq = 1;
        for (int i = 0; i < len; ++i) {
          if (x[i] == R(0)) continue;
          const R a = std::abs(x[i]);
          if (scale < a) {
            ssq = 1 + ssq * (scale / a) * (scale / a);
            scale = a;
          } else {
            ssq += (a / scale) * (a / scale);
          }
        }
        nrm = scale * std::sqrt(ssq);
        R scl = R(1) / nrm;
        if (x[index_of_max(len, x)] < R(0)) scl = -scl;
        for (int i = 0; i < len; ++i) x[i] *= scl;
      }
      T *zj = col(j);
      std::fill(zj, zj + n, T(0));
      for (int i = 0; i < len; ++i) zj[b1 + i] = T(x[i]);
      xjm = xj;
    }
  }
  return info;
}

template int stein<float>(int, const float *, const float *, int, const float *, const int *,
                          const int *, float *, int, float *, int *, int *);
template int stein<double>(int, const double *, const double *, int, const double *, const int *,
                           const int *, double *, int, double *, int *, int *);
template int stein<std::complex<float>>(int, const float *, const float *, int, const float *,
                                        const int *, const int *, std::complex<float> *, int,
                                        float *, int *, int *);
template int stein<std::complex<double>>(int, const double *, const double *, int, const double *,
                                         const int *, const int *, std::complex<double> *, int,
                                         double *, int *, int *);

}  // namespace orb::lapack
