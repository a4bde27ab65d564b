// Balancing of a general matrix (gebal) and the back transformation of
// eigenvectors of the balanced matrix (gebak), nonsym.h.
//
// Balancing first moves rows and columns that isolate an eigenvalue to the
// bottom (a row with no off-diagonal entry in the active columns) or to the
// top (a column with no off-diagonal entry in the active rows), leaving the
// active block ilo..ihi; then it scales the block's rows and columns by
// powers of 2 until each row and its column have about the same 2-norm.
// scale records both: the index each position was exchanged with outside
// ilo..ihi, the scaling factor inside.
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>

#include "lapack/auxiliary.h"
#include "lapack/blas_calls.h"
#include "lapack/nonsym.h"

namespace orb::lapack {
namespace {

inline std::ptrdiff_t at(int i, int j, int ld) {
  return i + static_cast<std::ptrdiff_t>(j) * ld;
}

template <class T>
inline bool nonzero(T x) {
  if constexpr (is_complex_v<T>)
    return x.real() != 0 || x.imag() != 0;
  else
    return x != T(0);
}

// Exchanges position p with position q of the similarity: columns p and q
// (rows 0..rows-1) and rows p and q (columns from col0).
template <class T>
void exchange(int n, T *a, int lda, int p, int q, int rows, int col0) {
  if (p == q) return;
  blas::swap(rows, a + at(0, p, lda), 1, a + at(0, q, lda), 1);
  blas::swap(n - col0, a + at(p, col0, lda), lda, a + at(q, col0, lda), lda);
}

}  // namespace

template <class T>
int gebal(Balance job, int n, T *a, int lda, int *ilo, int *ihi, real_t<T> *scale) {
  using R = real_t<T>;
  if (n == 0) {
    *ilo = 1;
    *ihi = 0;
    return 0;
  }
  if (job == Balance::kNone) {
    for (int i = 0; i < n; ++i) scale[i] = R(1);
    *ilo = 1;
    *ihi = n;
    return 0;
  }
  // The active block is rows and columns k..l (0-based).
  int k = 0, l = n - 1;
  if (job != Balance::kScale) {
    // Rows isolating an eigenvalue go to the bottom. Each sweep runs over
    // the rows from the last active one up, the sweep's length fixed at
    // its start, until a sweep moves nothing.
    bool moved = true;
    while (moved) {
      moved = false;
      for (int i = l; i >= 0; --i) {
        bool isolated = true;
        for (int j = 0; j <= l; ++j)
          if (i != j && nonzero(a[at(i, j, lda)])) {
            isolated = false;
            break;
          }
        if (!isolated) continue;
        scale[l] = static_cast<R>(i + 1);
        exchange(n, a, lda, i, l, l + 1, k);
        moved = true;
        if (l == 0) {
          *ilo = 1;
          *ihi = 1;
          return 0;
        }
        --l;
      }
    }
    // Columns isolating an eigenvalue go to the top, likewise.
    moved = true;
    while (moved) {
      moved = false;
      const int last = l;
      for (int j = k; j <= last; ++j) {
        bool isolated = true;
        for (int i = k; i <= l; ++i)
          if (i != j && nonzero(a[at(i, j, lda)])) {
            isolated = false;
            break;
          }
        if (!isolated) continue;
        scale[k] = static_cast<R>(j + 1);
        exchange(n, a, lda, j, k, l + 1, k);
        moved = true;
        ++k;
      }
    }
  }
  for (int i = k; i <= l; ++i) scale[i] = R(1);
  if (job == Balance::kPermute) {
    *ilo = k + 1;
    *ihi = l + 1;
    return 0;
  }

  // Scaling by powers of 2, so that no rounding error enters; a row and
  // its column are left alone unless the step cuts their joint norm by 5%.
  constexpr R radix = 2, converged = R(0.95);
  const R sfmin1 = std::numeric_limits<R>::min() / std::numeric_limits<R>::epsilon();
  const R sfmax1 = R(1) / sfmin1;
  const R sfmin2 = sfmin1 * radix, sfmax2 = R(1) / sfmin2;
  const int m = l - k + 1;
  bool changed = true;
  while (changed) {
    changed = false;
    for (int i = k; i <= l; ++i) {
      R c = blas::nrm2(m, a + at(k, i, lda), 1);
      R r = blas::nrm2(m, a + at(i, k, lda), lda);
      const int ica = blas::iamax(l + 1, a + at(0, i, lda), 1) - 1;
      R ca = std::abs(a[at(ica, i, lda)]);
      const int ira = blas::iamax(n - k, a + at(i, k, lda), lda) - 1;
      R ra = std::abs(a[at(i, ira + k, lda)]);
      if (c == R(0) || r == R(0)) continue;
      if (std::isnan(c + ca + r + ra)) return -3;
      R g = r / radix, f = R(1);
      const R s = c + r;
      while (c < g && std::max({f, c, ca}) < sfmax2 && std::min({r, g, ra}) > sfmin2) {
        f *= radix;
        c *= radix;
        ca *= radix;
        r /= radix;
        g /= radix;
        ra /= radix;
      }
      g = c / radix;
      while (g >= r && std::max(r, ra) < sfmax2 && std::min({f, c, g, ca}) > sfmin2) {
        f /= radix;
        c /= radix;
        g /= radix;
        ca /= radix;
        r *= radix;
        ra *= radix;
      }
      if (c + r >= converged * s) continue;
      // Keep the accumulated factor itself in range.
      if (f < R(1) && scale[i] < R(1) && f * scale[i] <= sfmin1) continue;
      if (f > R(1) && scale[i] > R(1) && scale[i] >= sfmax1 / f) continue;
      scale[i] *= f;
      changed = true;
      rscal(n - k, R(1) / f, a + at(i, k, lda), lda);
      rscal(l + 1, f, a + at(0, i, lda), 1);
    }
  }
  *ilo = k + 1;
  *ihi = l + 1;
  return 0;
}

template <class T>
int gebak(Balance job, Side side, int n, int ilo, int ihi, const real_t<T> *scale, int m, T *v,
          int ldv) {
  using R = real_t<T>;
  if (n == 0 || m == 0 || job == Balance::kNone) return 0;
  const bool right = side == Side::kRight;
  // Undo the scaling: D x for right eigenvectors, D^-1 y for left ones.
  if (ilo != ihi && (job == Balance::kScale || job == Balance::kBoth))
    for (int i = ilo - 1; i < ihi; ++i) rscal(m, right ? scale[i] : R(1) / scale[i], v + i, ldv);
  // Undo the exchanges, in the reverse order of their making: the bottom
  // ones from ihi + 1 on, then the top ones from ilo - 1 down.
  if (job == Balance::kPermute || job == Balance::kBoth) {
    for (int ii = 1; ii <= n; ++ii) {
      if (ii >= ilo && ii <= ihi) continue;
      const int i = ii < ilo ? ilo - ii : ii;
      const int p = static_cast<int>(scale[i - 1]);
      if (p != i) blas::swap(m, v + (i - 1), ldv, v + (p - 1), ldv);
    }
  }
  return 0;
}

#define ORB_GEBAL(T)                                                        \
  template int gebal<T>(Balance, int, T *, int, int *, int *, real_t<T> *); \
  template int gebak<T>(Balance, Side, int, int, int, const real_t<T> *, int, T *, int);
ORB_GEBAL(float)
ORB_GEBAL(std::complex<float>)
#undef ORB_GEBAL

}  // namespace orb::lapack
