// Dense kernels of the Levenberg-Marquardt step (More's algorithm: pivoted QR,
// Givens elimination of the diagonal, and the safeguarded Newton iteration on
// the secular equation for the multiplier).
#include "nls/kernels.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace orb::nls {

namespace {
constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kTiny = std::numeric_limits<double>::min();
}  // namespace

double norm2(int n, const double *v) {
  // Scaled sum of squares: no overflow or underflow for any finite input.
  double scale = 0.0, ssq = 1.0;
  for (int i = 0; i < n; ++i) {
    double a = std::fabs(v[i]);
    if (a == 0.0) continue;
    if (a > scale) {
      ssq = 1.0 + ssq * (scale / a) * (scale / a);
      scale = a;
    } else {
      ssq += (a / scale) * (a / scale);
    }
  }
  return scale * std::sqrt(ssq);
}

void qr_pivoted(int rows, int cols, double *a, int *perm, double *rdiag, double *colnorm) {
  std::vector<double> reference(cols);
  for (int j = 0; j < cols; ++j) {
    colnorm[j] = norm2(rows, a + std::size_t(j) * rows);
    rdiag[j] = colnorm[j];
    reference[j] = colnorm[j];
    perm[j] = j;
  }
  auto col = [&](int j) { return a + std::size_t(j) * rows; };
  int steps = std::min(rows, cols);
  for (int j = 0; j < steps; ++j) {
    // Bring the column of largest remaining norm forward.
    int kmax = j;
    for (int k = j + 1; k < cols; ++k)
      if (rdiag[k] > rdiag[kmax]) kmax = k;
    if (kmax != j) {
      std::swap_ranges(col(j), col(j) + rows, col(kmax));
      rdiag[kmax] = rdiag[j];
      reference[kmax] = reference[j];
      std::swap(perm[j], perm[kmax]);
    }
    double *v = col(j);
    double alpha = norm2(rows - j, v + j);
    if (alpha != 0.0) {
      if (v[j] < 0.0) alpha = -alpha;
      for (int i = j; i < rows; ++i) v[i] /= alpha;
      v[j] += 1.0;
      for (int k = j + 1; k < cols; ++k) {
        double *w = col(k);
        double dot = 0.0;
        for (int i = j; i < rows; ++i) dot += v[i] * w[i];
        double t = dot / v[j];
        for (int i = j; i < rows; ++i) w[i] -= t * v[i];
        if (rdiag[k] != 0.0) {
          // Downdate the partial column norm; recompute it when cancellation
          // has eaten most of its digits.
          double q = w[j] / rdiag[k];
          rdiag[k] *= std::sqrt(std::max(0.0, 1.0 - q * q));
          double ratio = rdiag[k] / reference[k];
          if (0.05 * ratio * ratio <= kEpsilon) {
            rdiag[k] = norm2(rows - j - 1, w + j + 1);
            reference[k] = rdiag[k];
          }
        }
      }
    }
    rdiag[j] = -alpha;
  }
}

void apply_qt(int rows, int cols, const double *a, double *v) {
  int steps = std::min(rows, cols);
  for (int j = 0; j < steps; ++j) {
    const double *h = a + std::size_t(j) * rows;
    if (h[j] == 0.0) continue;
    double dot = 0.0;
    for (int i = j; i < rows; ++i) dot += h[i] * v[i];
    double t = -dot / h[j];
    for (int i = j; i < rows; ++i) v[i] += t * h[i];
  }
}

void solve_augmented(int n, double *r, int ldr, const int *perm, const double *d, const double *qtb,
                     double *x, double *sdiag) {
  auto R = [&](int i, int j) -> double & { return r[i + std::size_t(j) * ldr]; };
  std::vector<double> w(qtb, qtb + n);
  // Keep R's diagonal in x and copy R^T into the strict lower triangle, where
  // the Givens rotations build the factor of the augmented system.
  for (int j = 0; j < n; ++j) {
    for (int i = j + 1; i < n; ++i) R(i, j) = R(j, i);
    x[j] = R(j, j);
  }
  for (int j = 0; j < n; ++j) {
    double dj = d[perm[j]];
    if (dj != 0.0) {
      std::fill(sdiag + j, sdiag + n, 0.0);
      sdiag[j] = dj;
      // Eliminate the row of the diagonal matrix one element at a time; the
      // right-hand side gains a component that is then discarded.
      double extra = 0.0;
      for (int k = j; k < n; ++k) {
        if (sdiag[k] == 0.0) continue;
        double c, s;
        if (std::fabs(R(k, k)) < std::fabs(sdiag[k])) {
          double cot = R(k, k) / sdiag[k];
          s = 0.5 / std::sqrt(0.25 + 0.25 * cot * cot);
          c = s * cot;
        } else {
          double tan = sdiag[k] / R(k, k);
          c = 0.5 / std::sqrt(0.25 + 0.25 * tan * tan);
          s = c * tan;
        }
        R(k, k) = c * R(k, k) + s * sdiag[k];
        double t = c * w[k] + s * extra;
        extra = -s * w[k] + c * extra;
        w[k] = t;
        for (int i = k + 1; i < n; ++i) {
          double u = c * R(i, k) + s * sdiag[i];
          sdiag[i] = -s * R(i, k) + c * sdiag[i];
          R(i, k) = u;
        }
      }
    }
    sdiag[j] = R(j, j);
    R(j, j) = x[j];
  }
  // Back substitution with the lower factor; a singular factor gives the
  // solution with the trailing components zero.
  int rank = n;
  for (int j = 0; j < n; ++j) {
    if (sdiag[j] == 0.0 && rank == n) rank = j;
    if (rank < n) w[j] = 0.0;
  }
  for (int j = rank - 1; j >= 0; --j) {
    double sum = 0.0;
    for (int i = j + 1; i < rank; ++i) sum += R(i, j) * w[i];
    w[j] = (w[j] - sum) / sdiag[j];
  }
  for (int j = 0; j < n; ++j) x[perm[j]] = w[j];
}

void lm_parameter(int n, double *r, int ldr, const int *perm, const double *diag, const double *qtb,
                  double delta, double sigma, int max_iter, double &par, double *x, double *sdiag) {
  auto R = [&](int i, int j) -> double & { return r[i + std::size_t(j) * ldr]; };
  std::vector<double> w1(n), w2(n);
  // Gauss-Newton step (minimum-norm in the leading nonsingular block).
  int rank = n;
  for (int j = 0; j < n; ++j) {
    w1[j] = qtb[j];
    if (R(j, j) == 0.0 && rank == n) rank = j;
    if (rank < n) w1[j] = 0.0;
  }
  for (int j = rank - 1; j >= 0; --j) {
    w1[j] /= R(j, j);
    double t = w1[j];
    for (int i = 0; i < j; ++i) w1[i] -= R(i, j) * t;
  }
  for (int j = 0; j < n; ++j) x[perm[j]] = w1[j];
  for (int j = 0; j < n; ++j) w2[j] = diag[j] * x[j];
  double dxnorm = norm2(n, w2.data());
  double fp = dxnorm - delta;
  if (fp <= sigma * delta) {
    par = 0.0;
    return;
  }
  // Lower bound from the Newton step at zero (only with full rank).
  double parl = 0.0;
  if (rank == n) {
    for (int j = 0; j < n; ++j) w1[j] = diag[perm[j]] * (w2[perm[j]] / dxnorm);
    for (int j = 0; j < n; ++j) {
      double sum = 0.0;
      for (int i = 0; i < j; ++i) sum += R(i, j) * w1[i];
      w1[j] = (w1[j] - sum) / R(j, j);
    }
    double t = norm2(n, w1.data());
    parl = ((fp / delta) / t) / t;
  }
  // Upper bound from the scaled gradient.
  for (int j = 0; j < n; ++j) {
    double sum = 0.0;
    for (int i = 0; i <= j; ++i) sum += R(i, j) * qtb[i];
    w1[j] = sum / diag[perm[j]];
  }
  double gnorm = norm2(n, w1.data());
  double paru = gnorm / delta;
  if (paru == 0.0) paru = kTiny / std::min(delta, 0.1);
  par = std::min(std::max(par, parl), paru);
  if (par == 0.0) par = gnorm / dxnorm;

  for (int iter = 1;; ++iter) {
    if (par == 0.0) par = std::max(kTiny, 0.001 * paru);
    double root = std::sqrt(par);
    for (int j = 0; j < n; ++j) w1[j] = root * diag[j];
    solve_augmented(n, r, ldr, perm, w1.data(), qtb, x, sdiag);
    for (int j = 0; j < n; ++j) w2[j] = diag[j] * x[j];
    dxnorm = norm2(n, w2.data());
    double previous = fp;
    fp = dxnorm - delta;
    // Done when the step is on the boundary to the accuracy asked, or when
    // the multiplier has reached zero from a step that was inside.
    if (std::fabs(fp) <= sigma * delta || (parl == 0.0 && fp <= previous && previous < 0.0) ||
        iter >= max_iter)
      return;
    // Newton correction of the multiplier.
    for (int j = 0; j < n; ++j) w1[j] = diag[perm[j]] * (w2[perm[j]] / dxnorm);
    for (int j = 0; j < n; ++j) {
      w1[j] /= sdiag[j];
      double t = w1[j];
      for (int i = j + 1; i < n; ++i) w1[i] -= R(i, j) * t;
    }
    double t = norm2(n, w1.data());
    double parc = ((fp / delta) / t) / t;
    if (fp > 0.0) parl = std::max(parl, par);
    if (fp < 0.0) paru = std::min(paru, par);
    par = std::max(parl, par + parc);
  }
}

}  // namespace orb::nls
