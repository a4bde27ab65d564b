// Band triangular solves: the plain one (xTBSV) and the one that scales the
// solution to keep it from overflowing (xLATBS), which takes the plain
// solve whenever a bound on the growth of the solution says it is safe.
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>

#include "blas/level1/level1.h"
#include "lapack/auxiliary.h"
#include "lapack/band.h"

namespace orb::lapack {
namespace {

// a / b without harmful overflow or underflow: complex single data divided
// in double precision.
template <class T>
T divide(T a, T b) {
  if constexpr (std::is_same_v<T, c8>)
    return T(c16(a) / c16(b));
  else
    return a / b;
}

template <class T>
void scale_by(int n, real_t<T> s, T *x) {
  if constexpr (is_complex_v<T>)
    blas::rscal(n, s, x, 1);
  else
    blas::scal(n, s, x, 1);
}

template <class T>
T dot(Op trans, int n, const T *a, const T *x) {
  return trans == Op::kConjTrans ? blas::dotc(n, a, 1, x, 1) : blas::dotu(n, a, 1, x, 1);
}

template <class T>
T op_of(Op trans, T a) {
  return trans == Op::kConjTrans ? conj(a) : a;
}

}  // namespace

template <class T>
void tbsv(Uplo uplo, Op trans, Diag diag, int n, int kd, const T *ab, int ldab, T *x) {
  const bool upper = uplo == Uplo::kUpper, unit = diag == Diag::kUnit;
  // Column j of the triangle: its first stored row and where it lies.
  auto col = [&](int j) { return ab + static_cast<std::ptrdiff_t>(j) * ldab; };
  const int dg = upper ? kd : 0;  // the diagonal's row in the band
  if (trans == Op::kNone) {
    for (int s = 0; s < n; ++s) {
      const int j = upper ? n - 1 - s : s;
      if (x[j] == T(0)) continue;
      if (!unit) x[j] /= col(j)[dg];
      if (upper) {
        const int len = std::min(kd, j);
        blas::axpy(len, -x[j], col(j) + kd - len, 1, x + j - len, 1);
      } else {
        blas::axpy(std::min(kd, n - 1 - j), -x[j], col(j) + 1, 1, x + j + 1, 1);
      }
    }
    return;
  }
  for (int s = 0; s < n; ++s) {
    const int j = upper ? s : n - 1 - s;
    T t = x[j];
    if (upper) {
      const int len = std::min(kd, j);
      t -= dot(trans, len, col(j) + kd - len, x + j - len);
    } else {
      t -= dot(trans, std::min(kd, n - 1 - j), col(j) + 1, x + j + 1);
    }
    if (!unit) t /= op_of(trans, col(j)[dg]);
    x[j] = t;
  }
}

template <class T>
void latbs(Uplo uplo, Op trans, Diag diag, bool normin, int n, int kd, const T *ab, int ldab, T *x,
           real_t<T> *scale, real_t<T> *cnorm) {
  using R = real_t<T>;
  constexpr bool kComplex = is_complex_v<T>;
  // The complex form keeps a factor 2 of headroom: |re| + |im| may exceed
  // the modulus by that much.
  constexpr R kHead = kComplex ? R(0.5) : R(1);
  const bool upper = uplo == Uplo::kUpper, notran = trans == Op::kNone;
  const bool nounit = diag == Diag::kNonUnit;
  *scale = 1;
  if (n == 0) return;
  const R smlnum = std::numeric_limits<R>::min() / std::numeric_limits<R>::epsilon();
  const R bignum = 1 / smlnum;
  auto col = [&](int j) { return ab + static_cast<std::ptrdiff_t>(j) * ldab; };
  const int maind = upper ? kd : 0;
  // Off-diagonal part of column j: its length and first element.
  auto off_len = [&](int j) { return upper ? std::min(kd, j) : std::min(kd, n - 1 - j); };
  auto off = [&](int j) { return upper ? col(j) + kd - off_len(j) : col(j) + 1; };
  auto x_off = [&](int j) { return upper ? x + j - off_len(j) : x + j + 1; };

  if (!normin)
    for (int j = 0; j < n; ++j)
      cnorm[j] = off_len(j) > 0 ? blas::asum(off_len(j), off(j), 1) : R(0);

  // Column norms scaled down when the largest would overflow.
  const R tmax = cnorm[blas::iamax(n, cnorm, 1) - 1];
  R tscal = 1;
  if (!(tmax <= bignum * kHead)) {
    tscal = kHead / (smlnum * tmax);
    blas::scal(n, tscal, cnorm, 1);
  }

  // A bound on the growth of the solution, to see whether the plain solve
  // is safe.
  R xmax = 0;
  if constexpr (kComplex) {
    for (int j = 0; j < n; ++j)
      xmax = std::max(xmax, std::abs(x[j].real() / 2) + std::abs(x[j].imag() / 2));
  } else {
    xmax = std::abs(x[blas::iamax(n, x, 1) - 1]);
  }
  R xbnd = xmax, grow = 0;
  // Columns in the order of the solve.
  const bool forward = notran != upper;
  auto jth = [&](int s) { return forward ? s : n - 1 - s; };
  if (tscal == 1) {
    if (nounit) {
      grow = kHead / std::max(xbnd, smlnum);
      xbnd = grow;
      bool early = false;
      for (int s = 0; s < n; ++s) {
        const int j = jth(s);
        if (grow <= smlnum) {
          early = true;
          break;
        }
        const R tjj = abs1(col(j)[maind]);
        if (notran) {
          if (!kComplex || tjj >= smlnum)
            xbnd = std::min(xbnd, std::min(R(1), tjj) * grow);
          else
            xbnd = 0;
          grow = tjj + cnorm[j] >= smlnum ? grow * (tjj / (tjj + cnorm[j])) : R(0);
        } else {
          const R xj = 1 + cnorm[j];
          grow = std::min(grow, xbnd / xj);
          if (!kComplex || tjj >= smlnum) {
            if (xj > tjj) xbnd *= tjj / xj;
          } else {
            xbnd = 0;
          }
        }
      }
      if (!early) grow = notran ? xbnd : std::min(grow, xbnd);
    } else {
      grow = std::min(R(1), kHead / std::max(xbnd, smlnum));
      for (int s = 0; s < n && grow > smlnum; ++s) {
        if (notran)
          grow *= 1 / (1 + cnorm[jth(s)]);
        else
          grow /= 1 + cnorm[jth(s)];
      }
    }
  }

  if (grow * tscal > smlnum) {
    tbsv(uplo, trans, diag, n, kd, ab, ldab, x);
  } else {
    // The solve column by column, x scaled down whenever a step could
    // overflow; *scale collects the factors.
    if (xmax > bignum * kHead) {
      *scale = bignum * kHead / xmax;
      scale_by(n, *scale, x);
      xmax = bignum;
    } else if (kComplex) {
      xmax *= 2;
    }
    auto rescale = [&](R rec) {
      scale_by(n, rec, x);
      *scale *= rec;
      xmax *= rec;
    };
    // x(j) = 0 but for x(j) = 1: a solution of A x = 0 when A(j, j) = 0.
    auto null_vector = [&](int j) {
      std::fill(x, x + n, T(0));
      x[j] = T(1);
      *scale = 0;
      xmax = 0;
    };
    for (int s = 0; s < n; ++s) {
      const int j = jth(s);
      if (notran) {
        R xj = abs1(x[j]);
        const T tjjs = nounit ? col(j)[maind] * tscal : T(tscal);
        if (nounit || tscal != 1) {
          const R tjj = abs1(tjjs);
          if (tjj > smlnum) {
            if (tjj < 1 && xj > tjj * bignum) rescale(1 / xj);
            x[j] = divide(x[j], tjjs);
            xj = abs1(x[j]);
          } else if (tjj > 0) {
            if (xj > tjj * bignum) {
              R rec = tjj * bignum / xj;
              if (cnorm[j] > 1) rec /= cnorm[j];
              rescale(rec);
            }
            x[j] = divide(x[j], tjjs);
            xj = abs1(x[j]);
          } else {
            null_vector(j);
            xj = 1;
          }
        }
        // x scaled before a multiple of column j is added, if that could
        // overflow.
        if (xj > 1) {
          const R rec = 1 / xj;
          if (cnorm[j] > (bignum - xmax) * rec) {
            scale_by(n, rec / 2, x);
            *scale *= rec / 2;
          }
        } else if (xj * cnorm[j] > bignum - xmax) {
          scale_by(n, R(0.5), x);
          *scale *= R(0.5);
        }
        const int len = off_len(j);
        if (upper ? j > 0 : j < n - 1) {
          blas::axpy(len, -x[j] * tscal, off(j), 1, x_off(j), 1);
          const int rest = upper ? j : n - 1 - j;
          T *from = upper ? x : x + j + 1;
          xmax = abs1(from[blas::iamax(rest, from, 1) - 1]);
        }
      } else {
        R xj = abs1(x[j]);
        T uscal = T(tscal);
        R rec = 1 / std::max(xmax, R(1));
        T tjjs = T(0);
        if (cnorm[j] > (bignum - xj) * rec) {
          // x(j) could overflow: scale x by 1 / (2 xmax), and by A(j, j)
          // as well when it is large.
          rec /= 2;
          tjjs = nounit ? op_of(trans, col(j)[maind]) * tscal : T(tscal);
          const R tjj = abs1(tjjs);
          if (tjj > 1) {
            rec = std::min(R(1), rec * tjj);
            uscal = divide(uscal, tjjs);
          }
          if (rec < 1) rescale(rec);
        }
        T sumj = T(0);
        const int len = off_len(j);
        if (uscal == T(1)) {
          sumj = dot(trans, len, off(j), x_off(j));
        } else {
          const T *a = off(j), *xs = x_off(j);
          for (int i = 0; i < len; ++i) sumj += op_of(trans, a[i]) * uscal * xs[i];
        }
        if (uscal == T(tscal)) {
          x[j] -= sumj;
          xj = abs1(x[j]);
          tjjs = nounit ? op_of(trans, col(j)[maind]) * tscal : T(tscal);
          if (nounit || tscal != 1) {
            const R tjj = abs1(tjjs);
            if (tjj > smlnum) {
              if (tjj < 1 && xj > tjj * bignum) rescale(1 / xj);
              x[j] = divide(x[j], tjjs);
            } else if (tjj > 0) {
              if (xj > tjj * bignum) rescale(tjj * bignum / xj);
              x[j] = divide(x[j], tjjs);
            } else {
              null_vector(j);
            }
          }
        } else {
          // The dot product was already divided by A(j, j).
          x[j] = divide(x[j], tjjs) - sumj;
        }
        xmax = std::max(xmax, abs1(x[j]));
      }
    }
    *scale /= tscal;
  }
  if (tscal != 1) blas::scal(n, 1 / tscal, cnorm, 1);
}

#define ORB_BAND_TRIANGULAR(T)                                                          \
  template void tbsv(Uplo, Op, Diag, int, int, const T *, int, T *);                    \
  template void latbs(Uplo, Op, Diag, bool, int, int, const T *, int, T *, real_t<T> *, \
                      real_t<T> *);
ORB_BAND_TRIANGULAR(float)
ORB_BAND_TRIANGULAR(c8)
#undef ORB_BAND_TRIANGULAR

}  // namespace orb::lapack
