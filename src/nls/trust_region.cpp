// Trust-region Levenberg-Marquardt for min ||F(x)||^2, by reverse
// communication (More's method as in MINPACK's lmder: adaptive column scaling,
// pivoted QR of the Jacobian, the multiplier from the secular equation, and
// the radius driven by the ratio of actual to predicted reduction).
//
// Bounds: a projected Levenberg-Marquardt step with an active set. At each
// Jacobian, a variable on its bound whose negative gradient points out of the
// box is frozen (its column removed from the subproblem); the step of the free
// variables is projected onto the box, and its predicted reduction is computed
// from the linear model of the projected step itself, so the ratio test and
// the radius update stay consistent. Every point offered to the caller is
// inside the box, and a fixed point satisfies the bound-constrained
// first-order conditions (the free gradient vanishes and every frozen variable
// has its gradient pointing outward).
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <new>
#include <vector>

#include "nls/kernels.h"
#include "nls/trust_region.h"

namespace orb::nls {

namespace {

constexpr std::uint32_t kUnboundedTag = 0x4e4c5355;  // "NLSU"
constexpr std::uint32_t kBoundedTag = 0x4e4c5342;    // "NLSB"

enum class Phase { kStart, kWantF0, kAfterIteration, kWantJ, kWantTrial, kDone };

struct Solver {
  std::uint32_t tag = 0;
  int n = 0, m = 0, rows = 0;
  double *x = nullptr;
  std::vector<double> lw, up;
  double eps[6] = {};
  int iter1 = 0, iter2 = 0;
  double rs = 0;

  Phase phase = Phase::kStart;
  int iter = 0, stop = 0;
  double fnorm0 = 0, fnorm = 0;
  double delta = 0, par = 0, pnorm = 0, prered = 0, dirder = 0;
  bool first = true;

  std::vector<double> f, jac, a, qtf, diag, colnorm, rdiag, sdiag, step, xsave, work;
  std::vector<int> perm;

  bool bounded() const { return tag == kBoundedTag; }
  int finish(int code, double *fvec, int *request);
  void factorize();
  int propose(double *fvec, int *request);
  int solve(double *fvec, double *fjac, int *request);
};

bool all_finite(int n, const double *v) {
  for (int i = 0; i < n; ++i)
    if (!std::isfinite(v[i])) return false;
  return true;
}

int Solver::finish(int code, double *fvec, int *request) {
  stop = code;
  phase = Phase::kDone;
  std::copy(f.begin(), f.begin() + m, fvec);
  *request = -code;
  return kSuccess;
}

// Pivoted QR of the (scaled by the subproblem) Jacobian and the scaling update.
void Solver::factorize() {
  std::fill(a.begin(), a.end(), 0.0);
  std::vector<bool> frozen(n, false);
  if (bounded()) {
    for (int j = 0; j < n; ++j) {
      double g = 0.0;
      for (int i = 0; i < m; ++i) g += jac[i + std::size_t(j) * m] * f[i];
      frozen[j] = (x[j] <= lw[j] && g > 0.0) || (x[j] >= up[j] && g < 0.0);
    }
  }
  for (int j = 0; j < n; ++j)
    if (!frozen[j])
      std::copy(jac.begin() + std::size_t(j) * m, jac.begin() + std::size_t(j + 1) * m,
                a.begin() + std::size_t(j) * rows);
  qr_pivoted(rows, n, a.data(), perm.data(), rdiag.data(), colnorm.data());
  std::fill(work.begin(), work.end(), 0.0);
  std::copy(f.begin(), f.end(), work.begin());
  apply_qt(rows, n, a.data(), work.data());
  std::copy(work.begin(), work.begin() + n, qtf.begin());
  for (int j = 0; j < n; ++j) a[j + std::size_t(j) * rows] = rdiag[j];

  // Column scaling: the norms of the Jacobian's columns, never decreasing.
  std::vector<double> norms(n);
  for (int j = 0; j < n; ++j) norms[j] = norm2(m, jac.data() + std::size_t(j) * m);
  if (first) {
    for (int j = 0; j < n; ++j) diag[j] = norms[j] == 0.0 ? 1.0 : norms[j];
    for (int j = 0; j < n; ++j) work[j] = diag[j] * x[j];
    double xnorm = norm2(n, work.data());
    delta = xnorm == 0.0 ? rs : rs * xnorm;
  } else {
    for (int j = 0; j < n; ++j) diag[j] = std::max(diag[j], norms[j]);
  }
}

// Solves the trust-region subproblem at the current radius and offers the
// trial point, or finishes when a stopping test holds. Loops only when a
// projected step predicts no decrease (the radius is then cut).
int Solver::propose(double *fvec, int *request) {
  double sigma = std::min(eps[5], 0.1);
  for (;;) {
    if (!(delta >= eps[0])) return finish(2, fvec, request);
    lm_parameter(n, a.data(), rows, perm.data(), diag.data(), qtf.data(), delta, sigma, iter2, par,
                 step.data(), sdiag.data());
    for (int j = 0; j < n; ++j) step[j] = -step[j];
    if (bounded())
      for (int j = 0; j < n; ++j) step[j] = std::clamp(x[j] + step[j], lw[j], up[j]) - x[j];
    for (int j = 0; j < n; ++j) work[j] = diag[j] * step[j];
    pnorm = norm2(n, work.data());
    if (first) {
      delta = std::min(delta, pnorm);
      first = false;
    }
    if (norm2(n, step.data()) < eps[3]) return finish(5, fvec, request);

    if (!bounded()) {
      // For the exact Levenberg-Marquardt step, ||F||^2 - ||F + J s||^2
      // = ||J s||^2 + 2 par ||D s||^2, and f'J s = -(||J s||^2 + par ||D s||^2).
      std::fill(work.begin(), work.end(), 0.0);
      for (int j = 0; j < n; ++j) {
        double sj = step[perm[j]];
        for (int i = 0; i <= j; ++i) work[i] += a[i + std::size_t(j) * rows] * sj;
      }
      double t1 = norm2(n, work.data()) / fnorm;
      double t2 = std::sqrt(par) * pnorm / fnorm;
      prered = t1 * t1 + 2.0 * t2 * t2;
      dirder = -(t1 * t1 + t2 * t2);
    } else {
      // The projected step: the model is evaluated directly.
      std::copy(f.begin(), f.end(), work.begin());
      for (int j = 0; j < n; ++j)
        for (int i = 0; i < m; ++i) work[i] += jac[i + std::size_t(j) * m] * step[j];
      double r = norm2(m, work.data()) / fnorm;
      prered = 1.0 - r * r;
      double fjs = 0.0;
      for (int i = 0; i < m; ++i) fjs += f[i] * (work[i] - f[i]);
      dirder = fjs / (fnorm * fnorm);
      if (!(prered > 0.0)) {
        delta *= 0.25;
        continue;
      }
    }
    double reduction = fnorm * (1.0 - std::sqrt(std::max(0.0, 1.0 - prered)));
    if (reduction < eps[4]) return finish(6, fvec, request);

    std::copy(x, x + n, xsave.begin());
    for (int j = 0; j < n; ++j) x[j] = xsave[j] + step[j];
    if (bounded())
      for (int j = 0; j < n; ++j) x[j] = std::clamp(x[j], lw[j], up[j]);
    phase = Phase::kWantTrial;
    *request = 1;
    return kSuccess;
  }
}

int Solver::solve(double *fvec, double *fjac, int *request) {
  switch (phase) {
    case Phase::kDone:
      *request = -stop;
      return kSuccess;
    case Phase::kStart:
      phase = Phase::kWantF0;
      *request = 1;
      return kSuccess;
    case Phase::kWantF0:
      std::copy(fvec, fvec + m, f.begin());
      fnorm = fnorm0 = norm2(m, fvec);
      // No progress is possible from a point where F is not finite.
      if (!std::isfinite(fnorm)) return finish(1, fvec, request);
      if (fnorm < eps[1]) return finish(3, fvec, request);
      phase = Phase::kWantJ;
      *request = 2;
      return kSuccess;
    case Phase::kAfterIteration:
      phase = Phase::kWantJ;
      *request = 2;
      return kSuccess;
    case Phase::kWantJ: {
      std::copy(fjac, fjac + std::size_t(m) * n, jac.begin());
      bool singular = true;
      for (int j = 0; j < n && singular; ++j)
        if (!(norm2(m, jac.data() + std::size_t(j) * m) < eps[2])) singular = false;
      if (singular || !all_finite(m * n, jac.data())) return finish(4, fvec, request);
      factorize();
      return propose(fvec, request);
    }
    case Phase::kWantTrial: {
      double fnorm1 = norm2(m, fvec);
      if (!std::isfinite(fnorm1)) {
        // The trial point is outside F's domain: reject and shrink hard.
        std::copy(xsave.begin(), xsave.end(), x);
        delta = 0.25 * std::min(delta, pnorm);
        par = par == 0.0 ? 0.0 : 4.0 * par;
        return propose(fvec, request);
      }
      double actred = 0.1 * fnorm1 < fnorm ? 1.0 - (fnorm1 / fnorm) * (fnorm1 / fnorm) : -1.0;
      double ratio = prered != 0.0 ? actred / prered : 0.0;
      if (ratio <= 0.25) {
        // Poor agreement: shrink, by the minimiser of the quadratic through
        // the actual reduction when it decreased at all.
        double t = actred >= 0.0 ? 0.5 : 0.5 * dirder / (dirder + 0.5 * actred);
        if (0.1 * fnorm1 >= fnorm || t < 0.1) t = 0.1;
        delta = t * std::min(delta, pnorm / 0.1);
        par /= t;
      } else if (par == 0.0 || ratio >= 0.75) {
        delta = pnorm / 0.5;
        par *= 0.5;
      }
      if (ratio >= 1e-4) {
        std::copy(fvec, fvec + m, f.begin());
        fnorm = fnorm1;
        ++iter;
        if (fnorm < eps[1]) return finish(3, fvec, request);
        if (iter >= iter1) return finish(1, fvec, request);
        phase = Phase::kAfterIteration;
        *request = 0;
        return kSuccess;
      }
      std::copy(xsave.begin(), xsave.end(), x);
      return propose(fvec, request);
    }
  }
  return kInvalidOption;
}

bool valid_options(const int *n, const int *m, const double *x, const double *eps, const int *iter1,
                   const int *iter2, const double *rs) {
  if (!n || !m || !x || !eps || !iter1 || !iter2 || !rs) return false;
  if (*n < 1 || *m < 1 || *iter1 < 1 || *iter2 < 1 || std::isnan(*rs)) return false;
  for (int k = 0; k < 5; ++k)
    if (!(eps[k] > 0.0)) return false;
  return eps[5] >= 0.0;
}

int create(void **handle, std::uint32_t tag, const int *n, const int *m, double *x,
           const double *lw, const double *up, const double *eps, const int *iter1,
           const int *iter2, const double *rs) {
  Solver *s = nullptr;
  try {
    s = new Solver;
    s->tag = tag;
    s->n = *n;
    s->m = *m;
    s->rows = std::max(*n, *m);  // zero rows pad an underdetermined system
    s->x = x;
    std::copy(eps, eps + 6, s->eps);
    if (s->eps[5] == 0.0) s->eps[5] = 1e-10;
    s->iter1 = *iter1;
    s->iter2 = *iter2;
    s->rs = *rs > 0.0 ? *rs : 100.0;
    std::size_t nn = std::size_t(*n), mm = std::size_t(*m), rows = std::size_t(s->rows);
    s->f.assign(mm, 0.0);
    s->jac.assign(mm * nn, 0.0);
    s->a.assign(rows * nn, 0.0);
    s->work.assign(rows, 0.0);
    for (auto *v : {&s->qtf, &s->diag, &s->colnorm, &s->rdiag, &s->sdiag, &s->step, &s->xsave})
      v->assign(nn, 0.0);
    s->perm.assign(nn, 0);
    if (lw) {
      s->lw.assign(lw, lw + nn);
      s->up.assign(up, up + nn);
    }
  } catch (const std::bad_alloc &) {
    delete s;
    return kOutOfMemory;
  }
  if (lw)
    for (int j = 0; j < *n; ++j) x[j] = std::clamp(x[j], lw[j], up[j]);
  *handle = s;
  return kSuccess;
}

Solver *lookup(bool bounded, void **handle) {
  if (!handle || !*handle) return nullptr;
  auto *s = static_cast<Solver *>(*handle);
  return s->tag == (bounded ? kBoundedTag : kUnboundedTag) ? s : nullptr;
}

}  // namespace

int trnlsp_init(void **handle, const int *n, const int *m, double *x, const double *eps,
                const int *iter1, const int *iter2, const double *rs) {
  if (!handle || !valid_options(n, m, x, eps, iter1, iter2, rs)) return kInvalidOption;
  return create(handle, kUnboundedTag, n, m, x, nullptr, nullptr, eps, iter1, iter2, rs);
}

int trnlspbc_init(void **handle, const int *n, const int *m, double *x, const double *lw,
                  const double *up, const double *eps, const int *iter1, const int *iter2,
                  const double *rs) {
  if (!handle || !lw || !up || !valid_options(n, m, x, eps, iter1, iter2, rs))
    return kInvalidOption;
  for (int j = 0; j < *n; ++j)
    if (!(lw[j] <= up[j])) return kInvalidOption;
  return create(handle, kBoundedTag, n, m, x, lw, up, eps, iter1, iter2, rs);
}

int trnlsp_solve(bool bounded, void **handle, double *fvec, double *fjac, int *request) {
  Solver *s = lookup(bounded, handle);
  if (!s || !fvec || !fjac || !request) return kInvalidOption;
  try {
    return s->solve(fvec, fjac, request);
  } catch (const std::bad_alloc &) {
    return kOutOfMemory;
  }
}

int trnlsp_get(bool bounded, void **handle, int *iter, int *st_cr, double *r1, double *r2) {
  Solver *s = lookup(bounded, handle);
  if (!s || !iter || !st_cr || !r1 || !r2) return kInvalidOption;
  *iter = s->iter;
  *st_cr = s->stop;
  *r1 = s->fnorm0;
  *r2 = s->fnorm;
  return kSuccess;
}

int trnlsp_delete(bool bounded, void **handle) {
  Solver *s = lookup(bounded, handle);
  if (!s) return kInvalidOption;
  s->tag = 0;
  delete s;
  *handle = nullptr;
  return kSuccess;
}

}  // namespace orb::nls
