// Eigenvectors of the Schur form (xTREVC): each vector by back (right) or
// forward (left) substitution through the shifted triangle, scaled against
// overflow; real data by the 1x1 and 2x2 block solves of laln2, complex data
// by the scaled triangular solver latrs. With HOWMNY = 'B' the vectors of
// the triangle are kept side by side in one matrix X, which is triangular
// (upper for right vectors, lower for left ones), and the back
// transformation is the single triangular product Q X.
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>
#include <vector>

#include "lapack/auxiliary.h"
#include "lapack/blas_calls.h"
#include "lapack/nonsym.h"
#include "lapack/schur_small.h"

namespace orb::lapack {

namespace {

using std::ptrdiff_t;

// Scales rows r0 .. r1-1 of column x so the largest |re| + |im| is one; y
// (or null) is the imaginary part of a real pair's vector.
template <class T>
void normalize(T *x, T *y, int r0, int r1) {
  real_t<T> big = 0;
  for (int i = r0; i < r1; ++i) big = std::max(big, abs1(x[i]) + (y ? abs1(y[i]) : 0));
  if (!(big > 0)) return;
  const real_t<T> r = 1 / big;
  for (int i = r0; i < r1; ++i) {
    x[i] *= r;
    if (y) y[i] *= r;
  }
}

// A pair is selected when either of its eigenvalues is; the flag is then
// kept on its first column only. Returns the number of columns needed.
int select_pairs(int *select, int n, const float *t, int ldt) {
  int m = 0;
  bool pair = false;
  for (int j = 0; j < n; ++j) {
    if (pair) {
      pair = false;
      select[j] = 0;
    } else if (j + 1 < n && t[j + 1 + static_cast<ptrdiff_t>(j) * ldt] != 0) {
      pair = true;
      if (select[j] || select[j + 1]) {
        select[j] = 1;
        m += 2;
      }
    } else if (select[j]) {
      ++m;
    }
  }
  return m;
}

// The real quasi-triangular form. x and y (n each) hold the real and
// imaginary parts of the vector being solved for; norms(j) is the 1-norm of
// column j above the diagonal, the bound against which the solution grows.
void trevc_real(bool rightv, bool leftv, HowMany howmny, const int *select, int n, const float *t,
                int ldt, float *vl, int ldvl, float *vr, int ldvr, float *work) {
  const bool over = howmny == HowMany::kBackTransform;
  const bool somev = howmny == HowMany::kSelected;
  auto T = [&](int i, int j) { return t[i + static_cast<ptrdiff_t>(j) * ldt]; };
  auto col = [&](const float *a, int lda, int j) { return a + static_cast<ptrdiff_t>(j) * lda; };
  const float unfl = std::numeric_limits<float>::min();
  const float ulp = std::numeric_limits<float>::epsilon();
  const float smlnum = unfl * (static_cast<float>(n) / ulp);
  const float bignum = (1 - ulp) / smlnum;

  float *norms = work, *x = work + n, *y = work + 2 * n;
  norms[0] = 0;
  for (int j = 1; j < n; ++j) {
    float s = 0;
    for (int i = 0; i < j; ++i) s += std::abs(T(i, j));
    norms[j] = s;
  }
  // With back transformation the vectors of the triangle gather in X.
  std::vector<float> xbuf(over ? static_cast<std::size_t>(n) * n : 0);
  auto xcol = [&](int j) { return xbuf.data() + static_cast<ptrdiff_t>(j) * n; };
  auto scale_vec = [&](int r0, int r1, float s, bool cplx) {
    for (int i = r0; i < r1; ++i) {
      x[i] *= s;
      if (cplx) y[i] *= s;
    }
  };
  float xs[4];
  float scale, xnorm;

  if (rightv) {
    int is = 0;  // next column of VR (from the right), counted down
    if (somev)
      for (int j = 0; j < n; ++j) is += select[j] ? (j + 1 < n && T(j + 1, j) != 0 ? 2 : 1) : 0;
    else
      is = n;
    --is;
    for (int ki = n - 1; ki >= 0; --ki) {
      // ki is the last column of its block; a pair occupies ki - 1, ki.
      const bool pair = ki > 0 && T(ki, ki - 1) != 0;
      const int k0 = pair ? ki - 1 : ki;
      if (somev && !select[k0]) {
        if (pair) --ki;
        continue;
      }
      const float wr = T(ki, ki);
      const float wi =
          pair ? std::sqrt(std::abs(T(ki, ki - 1))) * std::sqrt(std::abs(T(ki - 1, ki))) : 0;
      const float smin = std::max(ulp * (std::abs(wr) + std::abs(wi)), smlnum);
      // The right-hand side: the eigenvector's known trailing part moved over.
      if (!pair) {
        x[ki] = 1;
        for (int k = 0; k < ki; ++k) x[k] = -T(k, ki);
      } else {
        if (std::abs(T(ki - 1, ki)) >= std::abs(T(ki, ki - 1))) {
          x[ki - 1] = 1;
          y[ki] = wi / T(ki - 1, ki);
        } else {
          x[ki - 1] = -wi / T(ki, ki - 1);
          y[ki] = 1;
        }
        x[ki] = 0;
        y[ki - 1] = 0;
        for (int k = 0; k < ki - 1; ++k) {
          x[k] = -x[ki - 1] * T(k, ki - 1);
          y[k] = -y[ki] * T(k, ki);
        }
      }
      const int nw = pair ? 2 : 1;
      // Back substitution over the blocks above, last to first.
      for (int j = k0 - 1; j >= 0; --j) {
        const bool jpair = j > 0 && T(j, j - 1) != 0;
        const int j1 = jpair ? j - 1 : j, na = jpair ? 2 : 1;
        float b[4] = {x[j1], na == 2 ? x[j] : 0, y[j1], na == 2 ? y[j] : 0};
        laln2(false, na, nw, smin, 1, &t[j1 + static_cast<ptrdiff_t>(j1) * ldt], ldt, 1, 1, b, 2,
              wr, wi, xs, 2, &scale, &xnorm);
        // Keep the update of the rest below overflow.
        if (xnorm > 1) {
          const float beta = jpair ? std::max(norms[j1], norms[j]) : norms[j];
          if (beta > bignum / xnorm) {
            const float rec = 1 / xnorm;
            for (float &v : xs) v *= rec;
            scale *= rec;
          }
        }
        if (scale != 1) scale_vec(0, ki + 1, scale, pair);
        x[j1] = xs[0];
        if (jpair) x[j] = xs[1];
        if (pair) {
          y[j1] = xs[2];
          if (jpair) y[j] = xs[3];
        }
        for (int r = 0; r < na; ++r) {
          const float *tc = col(t, ldt, j1 + r);
          const float xr = xs[r], xi = xs[2 + r];
          for (int i = 0; i < j1; ++i) x[i] -= xr * tc[i];
          if (pair)
            for (int i = 0; i < j1; ++i) y[i] -= xi * tc[i];
        }
        j = j1;
      }
      if (over) {
        // Column ki (and ki - 1) of X, back-transformed together below.
        float *xr = xcol(k0), *xi = pair ? xcol(ki) : nullptr;
        std::fill(xr, xr + n, 0.0f);
        std::copy(x, x + k0 + 1, xr);
        if (pair) {
          std::fill(xi, xi + n, 0.0f);
          std::copy(y, y + ki + 1, xi);
        }
      } else {
        float *vx = vr + static_cast<ptrdiff_t>(pair ? is - 1 : is) * ldvr;
        float *vy = pair ? vx + ldvr : nullptr;
        std::copy(x, x + ki + 1, vx);
        if (pair) std::copy(y, y + ki + 1, vy);
        if (pair) {
          normalize<float>(vx, vy, 0, ki + 1);
        } else {
          // The real vector's largest element becomes +-1.
          normalize<float>(vx, nullptr, 0, ki + 1);
        }
        for (int k = ki + 1; k < n; ++k) {
          vx[k] = 0;
          if (pair) vy[k] = 0;
        }
      }
      is -= pair ? 2 : 1;
      if (pair) --ki;
    }
    if (over) {
      trmm(Triangular{false, true, Op::kNone, false}, n, n, 1.0f, xbuf.data(), n, vr, ldvr);
      for (int j = 0; j < n; ++j) {
        const bool pair = j + 1 < n && T(j + 1, j) != 0;
        normalize<float>(vr + static_cast<ptrdiff_t>(j) * ldvr,
                         pair ? vr + static_cast<ptrdiff_t>(j + 1) * ldvr : nullptr, 0, n);
        if (pair) ++j;
      }
    }
  }

  if (leftv) {
    int is = 0;
    for (int ki = 0; ki < n; ++ki) {
      const bool pair = ki + 1 < n && T(ki + 1, ki) != 0;
      const int k1 = pair ? ki + 1 : ki;  // last column of the block
      if (somev && !select[ki]) {
        ki = k1;
        continue;
      }
      const float wr = T(ki, ki);
      const float wi =
          pair ? std::sqrt(std::abs(T(ki, ki + 1))) * std::sqrt(std::abs(T(ki + 1, ki))) : 0;
      const float smin = std::max(ulp * (std::abs(wr) + std::abs(wi)), smlnum);
      if (!pair) {
        x[ki] = 1;
        for (int k = ki + 1; k < n; ++k) x[k] = -T(ki, k);
      } else {
        if (std::abs(T(ki, ki + 1)) >= std::abs(T(ki + 1, ki))) {
          x[ki] = wi / T(ki, ki + 1);
          y[ki + 1] = 1;
        } else {
          x[ki] = 1;
          y[ki + 1] = -wi / T(ki + 1, ki);
        }
        x[ki + 1] = 0;
        y[ki] = 0;
        for (int k = ki + 2; k < n; ++k) {
          x[k] = -x[ki] * T(ki, k);
          y[k] = -y[ki + 1] * T(ki + 1, k);
        }
      }
      const int nw = pair ? 2 : 1;
      // Forward substitution with the transposed blocks; vmax tracks the
      // solution's size so the dot products cannot overflow.
      float vmax = 1, vcrit = bignum;
      for (int j = k1 + 1; j < n; ++j) {
        const bool jpair = j + 1 < n && T(j + 1, j) != 0;
        const int na = jpair ? 2 : 1;
        const float beta = jpair ? std::max(norms[j], norms[j + 1]) : norms[j];
        if (beta > vcrit) {
          scale_vec(ki, n, 1 / vmax, pair);
          vmax = 1;
          vcrit = bignum;
        }
        float b[4];
        for (int r = 0; r < na; ++r) {
          const float *tc = col(t, ldt, j + r);
          float sx = 0, sy = 0;
          for (int i = k1 + 1; i < j; ++i) sx += tc[i] * x[i];
          if (pair)
            for (int i = k1 + 1; i < j; ++i) sy += tc[i] * y[i];
          b[r] = x[j + r] - sx;
          b[2 + r] = pair ? y[j + r] - sy : 0;
        }
        laln2(na == 2, na, nw, smin, 1, &t[j + static_cast<ptrdiff_t>(j) * ldt], ldt, 1, 1, b, 2,
              wr, -wi, xs, 2, &scale, &xnorm);
        if (scale != 1) scale_vec(ki, n, scale, pair);
        for (int r = 0; r < na; ++r) {
          x[j + r] = xs[r];
          vmax = std::max(vmax, std::abs(xs[r]));
          if (pair) {
            y[j + r] = xs[2 + r];
            vmax = std::max(vmax, std::abs(xs[2 + r]));
          }
        }
        vcrit = bignum / vmax;
        j += na - 1;
      }
      if (over) {
        float *xr = xcol(ki), *xi = pair ? xcol(ki + 1) : nullptr;
        std::fill(xr, xr + n, 0.0f);
        std::copy(x + ki, x + n, xr + ki);
        if (pair) {
          std::fill(xi, xi + n, 0.0f);
          std::copy(y + ki + 1, y + n, xi + ki + 1);
        }
      } else {
        float *vx = vl + static_cast<ptrdiff_t>(is) * ldvl;
        float *vy = pair ? vx + ldvl : nullptr;
        std::copy(x + ki, x + n, vx + ki);
        if (pair) std::copy(y + ki, y + n, vy + ki);
        normalize<float>(vx, vy, ki, n);
        for (int k = 0; k < ki; ++k) {
          vx[k] = 0;
          if (pair) vy[k] = 0;
        }
      }
      is += pair ? 2 : 1;
      ki = k1;
    }
    if (over) {
      trmm(Triangular{false, false, Op::kNone, false}, n, n, 1.0f, xbuf.data(), n, vl, ldvl);
      for (int j = 0; j < n; ++j) {
        const bool pair = j + 1 < n && T(j + 1, j) != 0;
        normalize<float>(vl + static_cast<ptrdiff_t>(j) * ldvl,
                         pair ? vl + static_cast<ptrdiff_t>(j + 1) * ldvl : nullptr, 0, n);
        if (pair) ++j;
      }
    }
  }
}

// The complex triangular form: each vector by latrs on the triangle
// shifted by the eigenvalue (its diagonal changed in place and restored),
// tiny differences raised to smin.
void trevc_complex(bool rightv, bool leftv, HowMany howmny, const int *select, int n, c8 *t,
                   int ldt, c8 *vl, int ldvl, c8 *vr, int ldvr, c8 *work, float *rwork) {
  const bool over = howmny == HowMany::kBackTransform;
  const bool somev = howmny == HowMany::kSelected;
  auto T = [&](int i, int j) -> c8 & { return t[i + static_cast<ptrdiff_t>(j) * ldt]; };
  const float unfl = std::numeric_limits<float>::min();
  const float ulp = std::numeric_limits<float>::epsilon();
  const float smlnum = unfl * (static_cast<float>(n) / ulp);

  c8 *x = work, *diag = work + n;
  for (int i = 0; i < n; ++i) diag[i] = T(i, i);
  rwork[0] = 0;
  for (int j = 1; j < n; ++j) {
    float s = 0;
    for (int i = 0; i < j; ++i) s += abs1(T(i, j));
    rwork[j] = s;
  }
  std::vector<c8> xbuf(over ? static_cast<std::size_t>(n) * n : 0);
  auto xcol = [&](int j) { return xbuf.data() + static_cast<ptrdiff_t>(j) * n; };
  int info = 0;
  float scale = 1;

  if (rightv) {
    int is = n - 1;
    if (somev) {
      is = -1;
      for (int j = 0; j < n; ++j) is += select[j] ? 1 : 0;
    }
    for (int ki = n - 1; ki >= 0; --ki) {
      if (somev && !select[ki]) continue;
      const float smin = std::max(ulp * abs1(T(ki, ki)), smlnum);
      x[0] = 1;
      for (int k = 0; k < ki; ++k) x[k] = -T(k, ki);
      for (int k = 0; k < ki; ++k) {
        T(k, k) -= T(ki, ki);
        if (abs1(T(k, k)) < smin) T(k, k) = smin;
      }
      scale = 1;
      if (ki > 0) {
        latrs(Uplo::kUpper, Op::kNone, Diag::kNonUnit, true, ki, t, ldt, x, &scale, rwork, &info);
        x[ki] = scale;
      }
      if (over) {
        c8 *xc = xcol(ki);
        std::fill(xc, xc + n, c8(0));
        std::copy(x, x + ki + 1, xc);
      } else {
        c8 *v = vr + static_cast<ptrdiff_t>(is) * ldvr;
        std::copy(x, x + ki + 1, v);
        normalize<c8>(v, nullptr, 0, ki + 1);
        for (int k = ki + 1; k < n; ++k) v[k] = 0;
      }
      for (int k = 0; k < ki; ++k) T(k, k) = diag[k];
      --is;
    }
    if (over) {
      trmm(Triangular{false, true, Op::kNone, false}, n, n, c8(1), xbuf.data(), n, vr, ldvr);
      for (int j = 0; j < n; ++j)
        normalize<c8>(vr + static_cast<ptrdiff_t>(j) * ldvr, nullptr, 0, n);
    }
  }

  if (leftv) {
    int is = 0;
    for (int ki = 0; ki < n; ++ki) {
      if (somev && !select[ki]) continue;
      const float smin = std::max(ulp * abs1(T(ki, ki)), smlnum);
      x[ki] = 1;
      for (int k = ki + 1; k < n; ++k) x[k] = -std::conj(T(ki, k));
      for (int k = ki + 1; k < n; ++k) {
        T(k, k) -= T(ki, ki);
        if (abs1(T(k, k)) < smin) T(k, k) = smin;
      }
      scale = 1;
      if (ki + 1 < n) {
        // The full columns' norms bound those of the trailing triangle.
        latrs(Uplo::kUpper, Op::kConjTrans, Diag::kNonUnit, true, n - ki - 1, &T(ki + 1, ki + 1),
              ldt, x + ki + 1, &scale, rwork + ki + 1, &info);
        x[ki] = scale;
      }
      if (over) {
        c8 *xc = xcol(ki);
        std::fill(xc, xc + n, c8(0));
        std::copy(x + ki, x + n, xc + ki);
      } else {
        c8 *v = vl + static_cast<ptrdiff_t>(is) * ldvl;
        std::copy(x + ki, x + n, v + ki);
        normalize<c8>(v, nullptr, ki, n);
        for (int k = 0; k < ki; ++k) v[k] = 0;
      }
      for (int k = ki + 1; k < n; ++k) T(k, k) = diag[k];
      ++is;
    }
    if (over) {
      trmm(Triangular{false, false, Op::kNone, false}, n, n, c8(1), xbuf.data(), n, vl, ldvl);
      for (int j = 0; j < n; ++j)
        normalize<c8>(vl + static_cast<ptrdiff_t>(j) * ldvl, nullptr, 0, n);
    }
  }
}

}  // namespace

template <class T>
int trevc(EigSide side, HowMany howmny, int *select, int n, T *t, int ldt, T *vl, int ldvl, T *vr,
          int ldvr, int mm, int *m, T *work, real_t<T> *rwork) {
  (void)mm;
  const bool rightv = side != EigSide::kLeft, leftv = side != EigSide::kRight;
  if (howmny == HowMany::kSelected) {
    if constexpr (is_complex_v<T>) {
      *m = 0;
      for (int j = 0; j < n; ++j) *m += select[j] ? 1 : 0;
    } else {
      *m = select_pairs(select, n, t, ldt);
    }
  } else {
    *m = n;
  }
  if (n == 0) return 0;
  if constexpr (is_complex_v<T>)
    trevc_complex(rightv, leftv, howmny, select, n, t, ldt, vl, ldvl, vr, ldvr, work, rwork);
  else
    trevc_real(rightv, leftv, howmny, select, n, t, ldt, vl, ldvl, vr, ldvr, work);
  return 0;
}

template int trevc<float>(EigSide, HowMany, int *, int, float *, int, float *, int, float *, int,
                          int, int *, float *, float *);
template int trevc<c8>(EigSide, HowMany, int *, int, c8 *, int, c8 *, int, c8 *, int, int, int *,
                       c8 *, float *);

}  // namespace orb::lapack
