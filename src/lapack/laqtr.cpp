// The quasi-triangular solve of the real condition estimator (xLAQTR).
//
// The diagonal blocks are solved one at a time: a 1x1 block by a division
// (a complex one for the complex system), a 2x2 block by laln2. The solution
// is kept below a large bound: before each step the growth it could cause is
// bounded by the block's pivot and the column norms of T above the diagonal,
// and when the bound could be exceeded the whole solution is scaled down and
// the factor multiplied into `scale`, as the triangular solves with scaling
// do. Pivots smaller than a multiple of the precision times the largest
// element of the matrix are raised to it.
//
// Backward substitution (op(T) = T) runs from the last block up and updates
// the right-hand side above by columns; forward substitution (op(T) = T^T)
// runs from the first block down and forms each right-hand side by inner
// products with the solved part.
#include "lapack/laqtr.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>

#include "lapack/schur_small.h"

namespace orb::lapack {

namespace {

template <class R>
class QuasiTriangularSolve {
 public:
  QuasiTriangularSolve(bool real_system, int n, const R *t, int ldt, const R *b, R w, R *scale,
                       R *x, R *colnorm)
      : n_(n),
        len_(real_system ? n : 2 * n),
        t_(t),
        ldt_(ldt),
        b_(b),
        w_(w),
        scale_(scale),
        x_(x),
        xi_(x + n),
        colnorm_(colnorm) {
    const R eps = std::numeric_limits<R>::epsilon();
    smlnum_ = std::numeric_limits<R>::min() / eps;
    bignum_ = 1 / smlnum_;
    R big = 0;
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < n; ++i) big = std::max(big, std::abs(at(i, j)));
    if (!real_system) {
      big = std::max(big, std::abs(w));
      for (int i = 0; i < n; ++i) big = std::max(big, std::abs(b[i]));
    }
    smin_ = std::max(smlnum_, eps * big);
    sminw_ = real_system ? smin_ : std::max(eps * std::abs(w), smin_);
    // The 1-norms of the columns above the diagonal (with B's first row in
    // the complex system) bound what one solved element adds to the rest.
    colnorm[0] = 0;
    for (int j = 1; j < n; ++j) {
      R sum = 0;
      for (int i = 0; i < j; ++i) sum += std::abs(at(i, j));
      colnorm[j] = real_system ? sum : sum + std::abs(b[j]);
    }
    *scale = 1;
    xmax_ = 0;
    for (int k = 0; k < len_; ++k) xmax_ = std::max(xmax_, std::abs(x[k]));
    if (xmax_ > bignum_) {
      rescale(bignum_ / xmax_);
      xmax_ = bignum_;
    }
  }

  int backward_real();
  int forward_real();
  int backward_complex();
  int forward_complex();

 private:
  R at(int i, int j) const { return t_[i + static_cast<std::ptrdiff_t>(j) * ldt_]; }
  const R *col(int j) const { return t_ + static_cast<std::ptrdiff_t>(j) * ldt_; }

  // Whether the block starting (forward) or ending (backward) at j is 2x2.
  bool pair_below(int j) const { return j + 1 < n_ && at(j + 1, j) != 0; }
  bool pair_above(int j) const { return j > 0 && at(j, j - 1) != 0; }

  // The whole solution (and the scale) times f < 1.
  void rescale(R f) {
    for (int k = 0; k < len_; ++k) x_[k] *= f;
    *scale_ *= f;
  }
  // Scales when |xj| times the largest element would leave the bound.
  void guard_division(R xj, R pivot) {
    if (pivot < 1 && xj > bignum_ * pivot) {
      const R rec = 1 / xj;
      rescale(rec);
      xmax_ *= rec;
    }
  }
  // Before the column update by a solved element of size xj.
  void guard_update(R xj, R norm) {
    if (xj > 1) {
      const R rec = 1 / xj;
      if (norm > (bignum_ - xmax_) * rec) rescale(rec);
    }
  }
  // Before an inner product with the solved part, whose largest element is
  // xmax, added to an element of size xj.
  void guard_inner(R xj, R norm) {
    if (xmax_ > 1) {
      const R rec = 1 / xmax_;
      if (norm > (bignum_ - xj) * rec) {
        rescale(rec);
        xmax_ *= rec;
      }
    }
  }

  static R dot(int m, const R *a, const R *y) {
    R s = 0;
    for (int i = 0; i < m; ++i) s += a[i] * y[i];
    return s;
  }
  static void axpy(int m, R alpha, const R *a, R *y) {
    for (int i = 0; i < m; ++i) y[i] += alpha * a[i];
  }
  R max_real(int m) const {
    R s = 0;
    for (int k = 0; k < m; ++k) s = std::max(s, std::abs(x_[k]));
    return s;
  }
  R max_complex(int m) const {
    R s = 0;
    for (int k = 0; k < m; ++k) s = std::max(s, std::abs(x_[k]) + std::abs(xi_[k]));
    return s;
  }
  // (x[j] + i xi[j]) / (d + i z), in double so that no intermediate of a
  // single precision quotient overflows.
  void divide(int j, R d, R z) {
    const std::complex<double> q = std::complex<double>(x_[j], xi_[j]) / std::complex<double>(d, z);
    x_[j] = static_cast<R>(q.real());
    xi_[j] = static_cast<R>(q.imag());
  }
  // The pivot of a 1x1 block, raised to `floor` when smaller.
  R pivot(R d, R z, R floor, R *tmp, int *info) const {
    R mag = std::abs(d) + std::abs(z);
    *tmp = d;
    if (mag < floor) {
      *tmp = mag = floor;
      *info = 1;
    }
    return mag;
  }

  int n_, len_;
  const R *t_;
  int ldt_;
  const R *b_;
  R w_;
  R *scale_, *x_, *xi_, *colnorm_;
  R smlnum_, bignum_, smin_, sminw_, xmax_;
};

template <class R>
int QuasiTriangularSolve<R>::backward_real() {
  int info = 0;
  for (int j2 = n_ - 1; j2 >= 0;) {
    const int j1 = pair_above(j2) ? j2 - 1 : j2;
    if (j1 == j2) {
      R tmp;
      const R tjj = pivot(at(j1, j1), 0, smin_, &tmp, &info);
      if (x_[j1] != 0) {
        guard_division(std::abs(x_[j1]), tjj);
        x_[j1] /= tmp;
        guard_update(std::abs(x_[j1]), colnorm_[j1]);
        if (j1 > 0) {
          axpy(j1, -x_[j1], col(j1), x_);
          xmax_ = max_real(j1);
        }
      }
    } else {
      R d[2] = {x_[j1], x_[j2]}, v[2], scaloc, xnorm;
      if (laln2(false, 2, 1, smin_, R(1), &t_[j1 + static_cast<std::ptrdiff_t>(j1) * ldt_], ldt_,
                R(1), R(1), d, 2, R(0), R(0), v, 2, &scaloc, &xnorm) != 0)
        info = 2;
      if (scaloc != 1) rescale(scaloc);
      x_[j1] = v[0];
      x_[j2] = v[1];
      guard_update(std::max(std::abs(v[0]), std::abs(v[1])), std::max(colnorm_[j1], colnorm_[j2]));
      if (j1 > 0) {
        axpy(j1, -x_[j1], col(j1), x_);
        axpy(j1, -x_[j2], col(j2), x_);
        xmax_ = max_real(j1);
      }
    }
    j2 = j1 - 1;
  }
  return info;
}

template <class R>
int QuasiTriangularSolve<R>::forward_real() {
  int info = 0;
  for (int j1 = 0; j1 < n_;) {
    const int j2 = pair_below(j1) ? j1 + 1 : j1;
    if (j1 == j2) {
      guard_inner(std::abs(x_[j1]), colnorm_[j1]);
      x_[j1] -= dot(j1, col(j1), x_);
      R tmp;
      const R tjj = pivot(at(j1, j1), 0, smin_, &tmp, &info);
      guard_division(std::abs(x_[j1]), tjj);
      x_[j1] /= tmp;
      xmax_ = std::max(xmax_, std::abs(x_[j1]));
    } else {
      guard_inner(std::max(std::abs(x_[j1]), std::abs(x_[j2])),
                  std::max(colnorm_[j2], colnorm_[j1]));
      R d[2] = {x_[j1] - dot(j1, col(j1), x_), x_[j2] - dot(j1, col(j2), x_)}, v[2], scaloc, xnorm;
      if (laln2(true, 2, 1, smin_, R(1), &t_[j1 + static_cast<std::ptrdiff_t>(j1) * ldt_], ldt_,
                R(1), R(1), d, 2, R(0), R(0), v, 2, &scaloc, &xnorm) != 0)
        info = 2;
      if (scaloc != 1) rescale(scaloc);
      x_[j1] = v[0];
      x_[j2] = v[1];
      xmax_ = std::max({std::abs(x_[j1]), std::abs(x_[j2]), xmax_});
    }
    j1 = j2 + 1;
  }
  return info;
}

// The complex system: B adds i b[j] in row 0 of every column j and i w on
// the diagonal after the first; the first diagonal element's imaginary part
// is b[0].
template <class R>
int QuasiTriangularSolve<R>::backward_complex() {
  int info = 0;
  for (int j2 = n_ - 1; j2 >= 0;) {
    const int j1 = pair_above(j2) ? j2 - 1 : j2;
    if (j1 == j2) {
      const R z = j1 == 0 ? b_[0] : w_;
      R tmp;
      const R tjj = pivot(at(j1, j1), z, sminw_, &tmp, &info);
      const R xj = std::abs(x_[j1]) + std::abs(xi_[j1]);
      if (xj != 0) {
        guard_division(xj, tjj);
        divide(j1, tmp, z);
        guard_update(std::abs(x_[j1]) + std::abs(xi_[j1]), colnorm_[j1]);
        if (j1 > 0) {
          axpy(j1, -x_[j1], col(j1), x_);
          axpy(j1, -xi_[j1], col(j1), xi_);
          x_[0] += b_[j1] * xi_[j1];
          xi_[0] -= b_[j1] * x_[j1];
          xmax_ = max_complex(j1);
        }
      }
    } else {
      // Column-major 2x2: the real parts, then the imaginary parts.
      R d[4] = {x_[j1], x_[j2], xi_[j1], xi_[j2]}, v[4], scaloc, xnorm;
      if (laln2(false, 2, 2, sminw_, R(1), &t_[j1 + static_cast<std::ptrdiff_t>(j1) * ldt_], ldt_,
                R(1), R(1), d, 2, R(0), -w_, v, 2, &scaloc, &xnorm) != 0)
        info = 2;
      if (scaloc != 1) rescale(scaloc);
      x_[j1] = v[0];
      x_[j2] = v[1];
      xi_[j1] = v[2];
      xi_[j2] = v[3];
      guard_update(std::max(std::abs(v[0]) + std::abs(v[2]), std::abs(v[1]) + std::abs(v[3])),
                   std::max(colnorm_[j1], colnorm_[j2]));
      if (j1 > 0) {
        axpy(j1, -x_[j1], col(j1), x_);
        axpy(j1, -x_[j2], col(j2), x_);
        axpy(j1, -xi_[j1], col(j1), xi_);
        axpy(j1, -xi_[j2], col(j2), xi_);
        x_[0] = x_[0] + b_[j1] * xi_[j1] + b_[j2] * xi_[j2];
        xi_[0] = xi_[0] - b_[j1] * x_[j1] - b_[j2] * x_[j2];
        xmax_ = max_complex(j1);
      }
    }
    j2 = j1 - 1;
  }
  return info;
}

template <class R>
int QuasiTriangularSolve<R>::forward_complex() {
  int info = 0;
  for (int j1 = 0; j1 < n_;) {
    const int j2 = pair_below(j1) ? j1 + 1 : j1;
    if (j1 == j2) {
      guard_inner(std::abs(x_[j1]) + std::abs(xi_[j1]), colnorm_[j1]);
      x_[j1] -= dot(j1, col(j1), x_);
      xi_[j1] -= dot(j1, col(j1), xi_);
      if (j1 > 0) {
        x_[j1] -= b_[j1] * xi_[0];
        xi_[j1] += b_[j1] * x_[0];
      }
      const R z = j1 == 0 ? b_[0] : w_;
      R tmp;
      const R tjj = pivot(at(j1, j1), z, sminw_, &tmp, &info);
      guard_division(std::abs(x_[j1]) + std::abs(xi_[j1]), tjj);
      divide(j1, tmp, -z);
      xmax_ = std::max(std::abs(x_[j1]) + std::abs(xi_[j1]), xmax_);
    } else {
      const R xj =
          std::max(std::abs(x_[j1]) + std::abs(xi_[j1]), std::abs(x_[j2]) + std::abs(xi_[j2]));
      // This block's test divides by xmax rather than multiplying by its
      // reciprocal; the results differ only in rounding.
      if (xmax_ > 1) {
        const R rec = 1 / xmax_;
        if (std::max(colnorm_[j1], colnorm_[j2]) > (bignum_ - xj) / xmax_) {
          rescale(rec);
          xmax_ *= rec;
        }
      }
      R d[4] = {x_[j1] - dot(j1, col(j1), x_), x_[j2] - dot(j1, col(j2), x_),
                xi_[j1] - dot(j1, col(j1), xi_), xi_[j2] - dot(j1, col(j2), xi_)};
      d[0] -= b_[j1] * xi_[0];
      d[1] -= b_[j2] * xi_[0];
      d[2] += b_[j1] * x_[0];
      d[3] += b_[j2] * x_[0];
      R v[4], scaloc, xnorm;
      if (laln2(true, 2, 2, sminw_, R(1), &t_[j1 + static_cast<std::ptrdiff_t>(j1) * ldt_], ldt_,
                R(1), R(1), d, 2, R(0), w_, v, 2, &scaloc, &xnorm) != 0)
        info = 2;
      if (scaloc != 1) rescale(scaloc);
      x_[j1] = v[0];
      x_[j2] = v[1];
      xi_[j1] = v[2];
      xi_[j2] = v[3];
      xmax_ = std::max(
          {std::abs(x_[j1]) + std::abs(xi_[j1]), std::abs(x_[j2]) + std::abs(xi_[j2]), xmax_});
    }
    j1 = j2 + 1;
  }
  return info;
}

}  // namespace

template <class R>
int laqtr(bool trans, bool real_system, int n, const R *t, int ldt, const R *b, R w, R *scale, R *x,
          R *work) {
  *scale = 1;
  if (n == 0) return 0;
  QuasiTriangularSolve<R> solve(real_system, n, t, ldt, b, w, scale, x, work);
  if (real_system) return trans ? solve.forward_real() : solve.backward_real();
  return trans ? solve.forward_complex() : solve.backward_complex();
}

template int laqtr<float>(bool, bool, int, const float *, int, const float *, float, float *,
                          float *, float *);

}  // namespace orb::lapack
