// The symmetric or Hermitian band matrix reduced to tridiagonal form by
// plane rotations (eigen.h: sbtrd; published xSBTRD, xHBTRD). Each
// off-diagonal entry outside the tridiagonal is annihilated by a rotation
// of two adjacent rows and columns; the entry the rotation creates outside
// the band (the bulge) is chased down the band, kd + 1 rows a step, by
// further rotations, and the rotations of all the bulges in flight are
// generated and applied together, one vector of them at a time. The
// cosines are kept in d and the sines in work (both at the position of
// the column they act on) until the tridiagonal is read out at the end.
// For the Hermitian form the off-diagonal comes out real: a diagonal
// unitary scaling, applied to Q too, takes its phases off.
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>

#include "blas/level1/level1.h"
#include "common/scalar.h"
#include "lapack/copy_scale.h"
#include "lapack/eigen.h"
#include "lapack/rotations.h"

namespace orb::lapack {
namespace {

// The rotation [c s; -conj(s) c] with c real that takes (f, g) to (r, 0).
template <class T>
void rotation(T f, T g, real_t<T> *c, T *s, T *r) {
  using R = real_t<T>;
  if constexpr (!is_complex_v<T>) {
    lartg(f, g, c, s, r);
  } else {
    if (g == T(0)) {
      *c = R(1);
      *s = T(0);
      *r = f;
    } else if (f == T(0)) {
      const R ga = std::abs(g);
      *c = R(0);
      *s = std::conj(g) / ga;
      *r = T(ga);
    } else {
      const R fa = std::abs(f), ga = std::abs(g);
      const R norm = std::hypot(fa, ga);
      const T phase = f / fa;
      *c = fa / norm;
      *s = phase * (std::conj(g) / norm);
      *r = phase * norm;
    }
  }
}

// (x, y) := (c x + s y, c y - conj(s) x) on n pairs.
template <class T>
void rot(int n, T *x, std::ptrdiff_t incx, T *y, std::ptrdiff_t incy, real_t<T> c, T s) {
  for (int i = 0; i < n; ++i) {
    const T xi = x[i * incx], yi = y[i * incy];
    x[i * incx] = c * xi + s * yi;
    y[i * incy] = c * yi - conj(s) * xi;
  }
}

// The same on two columns of Q, by the library's rotation kernels: the
// columns are long and these rotations are most of the work.
template <class T>
void rot_columns(int n, T *x, T *y, real_t<T> c, T s) {
  if constexpr (is_complex_v<T>)
    blas::crot(n, x, 1, y, 1, c, s);
  else
    blas::rot(n, x, 1, y, 1, c, s);
}

// The 2 x 2 symmetric (Hermitian) [x z; conj(z) y] := G [x z; conj(z) y] G^H
// for the rotation G = [c s; -conj(s) c] (xLAR2V, one matrix).
template <class T>
void rotate_both_sides(T &x, T &y, T &z, real_t<T> c, T s) {
  using R = real_t<T>;
  if constexpr (!is_complex_v<T>) {
    const T t1 = s * z, t2 = c * z, t3 = t2 - s * x, t4 = t2 + s * y;
    const T t5 = c * x + t1, t6 = c * y - t1;
    x = c * t5 + s * t4;
    y = c * t6 - s * t3;
    z = c * t4 - s * t5;
  } else {
    const R xi = std::real(x), yi = std::real(y);
    const R zr = std::real(z), zi = std::imag(z), sr = std::real(s), si = std::imag(s);
    const R t1r = sr * zr - si * zi, t1i = sr * zi + si * zr;
    const T t2 = c * z;
    const T t3 = t2 - std::conj(s) * xi, t4 = std::conj(t2) + s * yi;
    const R t5 = c * xi + t1r, t6 = c * yi - t1r;
    x = T(c * t5 + (sr * std::real(t4) + si * std::imag(t4)));
    y = T(c * t6 - (sr * std::real(t3) - si * std::imag(t3)));
    z = c * t3 + std::conj(s) * T(t6, t1i);
  }
}

}  // namespace

template <class T>
void sbtrd(CompQ vect, Uplo uplo, int n, int kd, T *ab, int ldab, real_t<T> *d, real_t<T> *e, T *q,
           int ldq, T *work) {
  using R = real_t<T>;
  if (n <= 0) return;
  const bool wantq = vect != CompQ::kNone, initq = vect == CompQ::kInitial;
  const bool upper = uplo == Uplo::kUpper;
  if (initq) laset(Part::kAll, n, n, T(0), T(1), q, ldq);

  // 1-based views of the band, Q, the cosines (in d) and the sines (in work).
  const auto AB = [&](int i, int j) -> T & {
    return ab[(i - 1) + static_cast<std::ptrdiff_t>(j - 1) * ldab];
  };
  const auto Q = [&](int i, int j) {
    return q + (i - 1) + static_cast<std::ptrdiff_t>(j - 1) * ldq;
  };
  const auto C = [&](int j) -> R & { return d[j - 1]; };
  const auto S = [&](int j) -> T & { return work[j - 1]; };

  const int kd1 = kd + 1, kdm1 = kd - 1;
  // Consecutive bulges are kd1 columns apart; incx steps along a row of
  // the band (upper) or a column (lower).
  const std::ptrdiff_t incx = ldab - 1;
  const int kdn = std::min(n - 1, kd);

  if (kd > 1) {
    // The diagonal is the band's row kd1 (upper) or 1 (lower); the two
    // storages differ only in where each rotation's operands sit.
    int nr = 0;  // the number of bulges in flight
    int j1 = kdn + 2, j2 = 1;
    int iqend = 1;
    if (upper)
      AB(kd1, 1) = T(std::real(AB(kd1, 1)));
    else
      AB(1, 1) = T(std::real(AB(1, 1)));
    for (int i = 1; i <= n - 2; ++i) {
      // Reduce column (row) i, from its last off-diagonal entry inwards.
      for (int k = kdn + 1; k >= 2; --k) {
        j1 += kdn;
        j2 += kdn;
        if (nr > 0) {
          // The rotations that annihilate the bulges outside the band
          // (stored in S), each from the entry beside it, then applied to
          // the rest of their two rows (columns) inside the band.
          for (int r = 0; r < nr; ++r) {
            const int j = j1 + r * kd1;
            T &x = upper ? AB(1, j - 1) : AB(kd1, j - kd1);
            T rr;
            rotation(x, S(j), &C(j), &S(j), &rr);
            x = rr;
          }
          for (int r = 0; r < nr; ++r) {
            const int j = j1 + r * kd1;
            if (upper)
              rot(kdm1, &AB(2, j - 1), 1, &AB(1, j), 1, C(j), S(j));
            else
              rot(kdm1, &AB(kd, j - kd), incx, &AB(kd1, j - kd), incx, C(j), S(j));
          }
        }
        if (k > 2) {
          if (k <= n - i + 1) {
            // The rotation that annihilates entry k of column (row) i.
            T &x = upper ? AB(kd - k + 3, i + k - 2) : AB(k - 1, i);
            T &y = upper ? AB(kd - k + 2, i + k - 1) : AB(k, i);
            T rr;
            rotation(x, y, &C(i + k - 1), &S(i + k - 1), &rr);
            x = rr;
            if (upper)
              rot(k - 3, &AB(kd - k + 4, i + k - 2), 1, &AB(kd - k + 3, i + k - 1), 1, C(i + k - 1),
                  S(i + k - 1));
            else
              rot(k - 3, &AB(k - 2, i + 1), incx, &AB(k - 1, i + 1), incx, C(i + k - 1),
                  S(i + k - 1));
          }
          ++nr;
          j1 -= kdn + 1;
        }
        if (nr > 0) {
          // Each rotation on its 2 x 2 diagonal block from both sides.
          for (int r = 0; r < nr; ++r) {
            const int j = j1 + r * kd1;
            if (upper)
              rotate_both_sides(AB(kd1, j - 1), AB(kd1, j), AB(kd, j), C(j), S(j));
            else
              rotate_both_sides(AB(1, j - 1), AB(1, j), AB(2, j - 1), C(j), S(j));
          }
          // Then to the rest of their columns (rows), the conjugate side.
          for (int r = 0; r < nr; ++r) S(j1 + r * kd1) = conj(S(j1 + r * kd1));
          for (int r = 0; r + 1 < nr; ++r) {
            const int j = j1 + r * kd1;
            if (upper)
              rot(kdm1, &AB(kd - 1, j + 1), incx, &AB(kd, j + 1), incx, C(j), S(j));
            else
              rot(kdm1, &AB(3, j - 1), 1, &AB(2, j), 1, C(j), S(j));
          }
          const int lend = std::min(kdm1, n - j2);
          const int last = j1 + kd1 * (nr - 1);
          if (lend > 0) {
            if (upper)
              rot(lend, &AB(kd - 1, last + 1), incx, &AB(kd, last + 1), incx, C(last), S(last));
            else
              rot(lend, &AB(3, last - 1), 1, &AB(2, last), 1, C(last), S(last));
          }
        }
        if (wantq) {
          // Q := Q G^H on columns j-1, j of each rotation; a Q that starts
          // as the identity is only touched where it has filled in.
          if (!initq) {
            for (int j = j1; j <= j2; j += kd1)
              rot_columns(n, Q(1, j - 1), Q(1, j), C(j), upper ? conj(S(j)) : S(j));
          } else {
            iqend = std::max(iqend, j2);
            int i2 = std::max(0, k - 3);
            int iqaend = 1 + i * kd;
            if (k == 2) iqaend += kd;
            iqaend = std::min(iqaend, iqend);
            for (int j = j1; j <= j2; j += kd1) {
              const int ibl = i - i2 / kdm1;
              ++i2;
              const int iqb = std::max(1, j - ibl);
              const int nq = 1 + iqaend - iqb;
              iqaend = std::min(iqaend + kd, iqend);
              const T s = upper ? conj(S(j)) : S(j);
              rot_columns(nq, Q(iqb, j - 1), Q(iqb, j), C(j), s);
            }
          }
        }
        if (j2 + kdn > n) {
          // The last bulge has left the matrix.
          --nr;
          j2 -= kdn + 1;
        }
        // The bulges the rotations create one block further down.
        for (int j = j1; j <= j2; j += kd1) {
          T &b = upper ? AB(1, j + kd) : AB(kd1, j);
          S(j + kd) = S(j) * b;
          b = C(j) * b;
        }
      }
    }
  }

  // Read out the tridiagonal; the Hermitian off-diagonal is made real by
  // scaling the rows and columns (and Q's columns) by unit phases.
  if (kd > 0) {
    for (int i = 1; i <= n - 1; ++i) {
      T &t = upper ? AB(kd, i + 1) : AB(2, i);
      if constexpr (is_complex_v<T>) {
        const R abst = std::abs(t);
        const T phase = abst != R(0) ? t / abst : T(1);
        t = T(abst);
        e[i - 1] = abst;
        if (i < n - 1) {
          T &next = upper ? AB(kd, i + 2) : AB(2, i + 1);
          next *= phase;
        }
        if (wantq) {
          const T f = upper ? std::conj(phase) : phase;
          for (int l = 1; l <= n; ++l) *Q(l, i + 1) *= f;
        }
      } else {
        e[i - 1] = t;
      }
    }
  } else {
    for (int i = 0; i < n - 1; ++i) e[i] = R(0);
  }
  for (int i = 1; i <= n; ++i) d[i - 1] = std::real(upper ? AB(kd1, i) : AB(1, i));
}

template void sbtrd<float>(CompQ, Uplo, int, int, float *, int, float *, float *, float *, int,
                           float *);
template void sbtrd<std::complex<float>>(CompQ, Uplo, int, int, std::complex<float> *, int, float *,
                                         float *, std::complex<float> *, int,
                                         std::complex<float> *);

}  // namespace orb::lapack
