// Triangular solve with scaling against overflow.
//
// A cheap bound on the growth of the solution comes first, from the column
// norms of the off-diagonal parts and the diagonal: when its reciprocal is
// comfortably above the underflow threshold, the plain triangular solve of
// the level-2 BLAS runs. Otherwise the solve goes element by element, and
// before each division and each update the whole of x is scaled down when
// the next step could overflow; the product of those scalings is returned.
//
// The columns are taken in the order the solve needs them: for op(A) = A
// (column-oriented, x_j then an update of the rest) an upper A from the last
// column, a lower one from the first; for op(A) = A^T or A^H (a dot product
// per element) the other way round.
//
// The complex forms measure with |re| + |im| and keep a factor of two in
// hand on every bound, since that measure can be up to sqrt(2) times the
// modulus.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "blas/level1/level1.h"
#include "blas/level2/level2.h"
#include "lapack/auxiliary.h"
#include "lapack/blas_calls.h"

namespace orb::lapack {
namespace {

// |re / 2| + |im / 2|: half the complex measure, which cannot overflow.
template <class T>
real_t<T> half_abs1(T x) {
  using R = real_t<T>;
  if constexpr (is_complex_v<T>)
    return std::abs(x.real() / R(2)) + std::abs(x.imag() / R(2));
  else
    return std::abs(x) / R(2);
}

// The largest |re| or |im| (|x| for real) of the strictly triangular part,
// NaN when it holds a NaN.
template <class T>
real_t<T> largest_off_diagonal(bool upper, int n, const T *a, int lda) {
  using R = real_t<T>;
  R big = 0;
  auto keep = [&big](R v) {
    if (big < v || std::isnan(v)) big = v;
  };
  for (int j = 0; j < n; ++j) {
    const T *col = a + static_cast<std::ptrdiff_t>(j) * lda;
    const int i0 = upper ? 0 : j + 1, i1 = upper ? j : n;
    for (int i = i0; i < i1; ++i) {
      if constexpr (is_complex_v<T>) {
        keep(std::abs(col[i].real()));
        keep(std::abs(col[i].imag()));
      } else {
        keep(std::abs(col[i]));
      }
    }
  }
  return big;
}

// A solve's run over the columns: first, first + step, ... (n of them).
struct Order {
  int first, step;
  int at(int k) const { return first + k * step; }
};

// The element-by-element solve on tscal A, scaling x down whenever the next
// step could overflow. `xmax` bounds |x| (in the complex measure).
template <class T>
class ScaledSolve {
 public:
  using R = real_t<T>;

  ScaledSolve(bool upper, Op trans, bool unit, int n, const T *a, int lda, T *x, const R *cnorm,
              R tscal, R xmax)
      : upper_(upper),
        conj_(is_complex_v<T> && trans == Op::kConjTrans),
        unit_(unit),
        n_(n),
        a_(a),
        lda_(lda),
        x_(x),
        cnorm_(cnorm),
        tscal_(tscal),
        xmax_(xmax) {}

  // Solves and returns the scale of the solution.
  R run(bool notran, Order order) {
    constexpr R kHand = is_complex_v<T> ? R(0.5) : R(1);
    if (xmax_ > bignum_ * kHand) {
      // Bring the right-hand side below bignum first.
      scale_ = bignum_ * kHand / xmax_;
      rscal(n_, scale_, x_, 1);
      xmax_ = bignum_;
    } else if (is_complex_v<T>) {
      xmax_ *= R(2);  // from half the measure to the measure
    }
    for (int k = 0; k < n_; ++k) {
      if (notran)
        column_step(order.at(k));
      else
        row_step(order.at(k));
    }
    return scale_ / tscal_;
  }

 private:
  const T *col(int j) const { return a_ + static_cast<std::ptrdiff_t>(j) * lda_; }
  // tscal op(A)(j, j).
  T scaled_diagonal(int j) const { return unit_ ? T(tscal_) : conj_if(col(j)[j], conj_) * tscal_; }
  // The rows of column j off the diagonal: [first, first + count).
  int first(int j) const { return upper_ ? 0 : j + 1; }
  int count(int j) const { return upper_ ? j : n_ - j - 1; }

  void rescale(R rec) {
    rscal(n_, rec, x_, 1);
    scale_ *= rec;
    xmax_ *= rec;
  }

  // x_j := x_j / tjjs, x first scaled down when the quotient could
  // overflow; an exactly zero tjjs makes x the null vector e_j of op(A) with
  // scale zero. `guard_column` also keeps the update by column j in range
  // for a tiny tjjs (the column-oriented solve).
  void divide(int j, T tjjs, bool guard_column) {
    const R tjj = abs1(tjjs), xj = abs1(x_[j]);
    if (tjj > smlnum_) {
      if (tjj < R(1) && xj > tjj * bignum_) rescale(R(1) / xj);
      x_[j] = x_[j] / tjjs;
    } else if (tjj > R(0)) {
      if (xj > tjj * bignum_) {
        R rec = tjj * bignum_ / xj;
        if (guard_column && cnorm_[j] > R(1)) rec /= cnorm_[j];
        rescale(rec);
      }
      x_[j] = x_[j] / tjjs;
    } else {
      std::fill(x_, x_ + n_, T(0));
      x_[j] = T(1);
      scale_ = 0;
      xmax_ = 0;
    }
  }

  // op(A) = A: x_j, then x_j times column j taken from the rest.
  void column_step(int j) {
    if (!unit_ || tscal_ != R(1)) divide(j, scaled_diagonal(j), true);
    const R xj = abs1(x_[j]);
    // The update adds at most xj cnorm_j to elements of at most xmax.
    if (xj > R(1)) {
      const R rec = R(1) / xj;
      if (cnorm_[j] > (bignum_ - xmax_) * rec) {
        rscal(n_, rec / R(2), x_, 1);
        scale_ *= rec / R(2);
      }
    } else if (xj * cnorm_[j] > bignum_ - xmax_) {
      rscal(n_, R(0.5), x_, 1);
      scale_ *= R(0.5);
    }
    const int f = first(j), c = count(j);
    if (c > 0) {
      blas::axpy(c, -x_[j] * tscal_, col(j) + f, 1, x_ + f, 1);
      xmax_ = abs1(x_[f + blas::iamax(c, x_ + f, 1) - 1]);
    }
  }

  // op(A) = A^T or A^H: x_j less the dot product of the solved elements
  // with column j, divided by the diagonal.
  void row_step(int j) {
    const R xj = abs1(x_[j]);
    T uscal = tscal_;
    R rec = R(1) / std::max(xmax_, R(1));
    T tjjs = scaled_diagonal(j);
    if (cnorm_[j] > (bignum_ - xj) * rec) {
      // x_j could overflow: scale x by 1 / (2 xmax), or fold the division
      // by a large diagonal into the dot product.
      rec /= R(2);
      const R tjj = abs1(tjjs);
      if (tjj > R(1)) {
        rec = std::min(R(1), rec * tjj);
        uscal = uscal / tjjs;
      }
      if (rec < R(1)) rescale(rec);
    }
    const int f = first(j), c = count(j);
    const T *aj = col(j) + f;
    T sum = 0;
    if (uscal == T(1)) {
      sum = conj_ ? blas::dotc(c, aj, 1, x_ + f, 1) : blas::dotu(c, aj, 1, x_ + f, 1);
    } else {
      for (int i = 0; i < c; ++i) sum += mul(mul(conj_if(aj[i], conj_), uscal), x_[f + i]);
    }
    if (uscal == T(tscal_)) {
      x_[j] -= sum;
      if (!unit_ || tscal_ != R(1)) divide(j, tjjs, false);
    } else {
      x_[j] = x_[j] / tjjs - sum;
    }
    xmax_ = std::max(xmax_, abs1(x_[j]));
  }

  const R smlnum_ = safe_minimum<R>() / std::numeric_limits<R>::epsilon();
  const R bignum_ = R(1) / smlnum_;
  const bool upper_, conj_, unit_;
  const int n_;
  const T *const a_;
  const int lda_;
  T *const x_;
  const R *const cnorm_;
  const R tscal_;
  R xmax_;
  R scale_ = 1;
};

}  // namespace

template <class T>
void latrs(Uplo uplo, Op trans, Diag diag, bool normin, int n, const T *a, int lda, T *x,
           real_t<T> *scale, real_t<T> *cnorm, int *info) {
  using R = real_t<T>;
  constexpr bool kComplex = is_complex_v<T>;
  // The complex bounds keep a factor of two in hand.
  constexpr R kHand = kComplex ? R(0.5) : R(1);
  *info = 0;
  *scale = 1;
  if (n == 0) return;
  const bool upper = uplo == Uplo::kUpper, unit = diag == Diag::kUnit;
  const bool notran = trans == Op::kNone;
  const R overflow = std::numeric_limits<R>::max();
  const R smlnum = safe_minimum<R>() / std::numeric_limits<R>::epsilon();
  const R bignum = R(1) / smlnum;
  auto col = [&](int j) { return a + static_cast<std::ptrdiff_t>(j) * lda; };

  // The 1-norms of the off-diagonal parts of the columns.
  if (!normin) {
    for (int j = 0; j < n; ++j)
      cnorm[j] = upper ? blas::asum(j, col(j), 1) : blas::asum(n - j - 1, col(j) + j + 1, 1);
  }

  // When a column norm is beyond bignum, the solve runs on tscal A, with the
  // norms scaled alike.
  R tmax = cnorm[blas::iamax(n, cnorm, 1) - 1];
  R tscal = 1;
  if (!(tmax <= bignum * kHand)) {
    if (tmax <= overflow) {
      tscal = kHand / (smlnum * tmax);
      blas::scal(n, tscal, cnorm, 1);
    } else {
      // A column norm overflowed: scale by the largest element instead and
      // sum those columns again, scaled as they go.
      tmax = largest_off_diagonal(upper, n, a, lda);
      if (!(tmax <= overflow)) {
        // An element is infinite or NaN: the plain solve propagates it.
        blas::level2::trsv(upper, trans, unit, n, a, lda, x, 1);
        return;
      }
      tscal = R(1) / (smlnum * tmax);
      for (int j = 0; j < n; ++j) {
        if (cnorm[j] <= overflow) {
          cnorm[j] *= tscal;
          continue;
        }
        const T *c = col(j);
        const int i0 = upper ? 0 : j + 1, i1 = upper ? j : n;
        R sum = 0;
        for (int i = i0; i < i1; ++i)
          sum += kComplex ? (R(2) * tscal) * half_abs1(c[i]) : tscal * abs1(c[i]);
        cnorm[j] = sum;
      }
    }
  }

  // The largest element of the right-hand side (half of it, complex).
  R xmax = 0;
  if constexpr (kComplex) {
    for (int j = 0; j < n; ++j) xmax = std::max(xmax, half_abs1(x[j]));
  } else {
    xmax = std::abs(x[blas::iamax(n, x, 1) - 1]);
  }

  // 1 / the bound on the growth; zero when tscal is not one, so that the
  // careful solve runs.
  const bool forward = upper != notran;
  const Order order = forward ? Order{0, 1} : Order{n - 1, -1};
  R grow = 0;
  if (tscal == R(1)) {
    R xbnd = xmax;
    if (unit) {
      grow = std::min(R(1), kHand / std::max(xbnd, smlnum));
      for (int k = 0; k < n && grow > smlnum; ++k) grow /= R(1) + cnorm[order.at(k)];
    } else if (notran) {
      // G(j) bounds the unsolved part, M(j) the solved one.
      grow = kHand / std::max(xbnd, smlnum);
      xbnd = grow;
      int k = 0;
      for (; k < n && grow > smlnum; ++k) {
        const int j = order.at(k);
        const R tjj = abs1(col(j)[j]);
        if (kComplex && tjj < smlnum)
          xbnd = 0;
        else
          xbnd = std::min(xbnd, std::min(R(1), tjj) * grow);
        grow = tjj + cnorm[j] >= smlnum ? grow * (tjj / (tjj + cnorm[j])) : R(0);
      }
      if (k == n) grow = xbnd;
    } else {
      grow = kHand / std::max(xbnd, smlnum);
      xbnd = grow;
      int k = 0;
      for (; k < n && grow > smlnum; ++k) {
        const int j = order.at(k);
        const R xj = R(1) + cnorm[j];
        grow = std::min(grow, xbnd / xj);
        const R tjj = abs1(col(j)[j]);
        if (kComplex && tjj < smlnum)
          xbnd = 0;
        else if (xj > tjj)
          xbnd *= tjj / xj;
      }
      if (k == n) grow = std::min(grow, xbnd);
    }
  }

  if (grow * tscal > smlnum) {
    blas::level2::trsv(upper, trans, unit, n, a, lda, x, 1);
  } else {
    *scale =
        ScaledSolve<T>(upper, trans, unit, n, a, lda, x, cnorm, tscal, xmax).run(notran, order);
  }
  if (tscal != R(1)) blas::scal(n, R(1) / tscal, cnorm, 1);
}

#define ORB_LATRS(T)                                                                            \
  template void latrs(Uplo, Op, Diag, bool, int, const T *, int, T *, real_t<T> *, real_t<T> *, \
                      int *);
ORB_LATRS(float)
ORB_LATRS(double)
ORB_LATRS(c8)
ORB_LATRS(c16)
#undef ORB_LATRS

}  // namespace orb::lapack
