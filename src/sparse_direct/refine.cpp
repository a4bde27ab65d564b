#include "sparse_direct/refine.h"

#include <cmath>
#include <vector>

#include "common/scalar.h"
#include "sparse_direct/messages.h"
#include "sparse_direct/prepare.h"

namespace orb::sparse {

namespace {

template <class T>
double sum_abs(const T *v, std::size_t len) {
  double s = 0;
  for (std::size_t i = 0; i < len; ++i) s += std::abs(v[i]);
  return s;
}

// r := b - op(A) x, column by column.
template <class T>
void residual(const Analysis &an, const T *a, int op, int nrhs, const T *b, const T *x, T *r) {
  const std::size_t n = an.n;
  for (int c = 0; c < nrhs; ++c) {
    multiply(an, a, op, x + c * n, r + c * n);
    for (std::size_t i = 0; i < n; ++i) r[c * n + i] = b[c * n + i] - r[c * n + i];
  }
}

template <class T>
T dot(const T *x, const T *y, int n) {
  T s(0);
  for (int i = 0; i < n; ++i) s += orb::conj(x[i]) * y[i];
  return s;
}

double norm2(const double *x, int n) {
  double s = 0;
  for (int i = 0; i < n; ++i) s += x[i] * x[i];
  return std::sqrt(s);
}
double norm2(const c16 *x, int n) {
  double s = 0;
  for (int i = 0; i < n; ++i) s += std::norm(x[i]);
  return std::sqrt(s);
}

}  // namespace

template <class T>
RefineOutcome refine(const Analysis &an, const NumericFactor<T> &f, const T *a, int op, int nrhs,
                     const T *b, T *x, int limit, bool print, int threads) {
  RefineOutcome out;
  const std::size_t len = std::size_t(an.n) * nrhs;
  std::vector<T> r(len), dx(len);
  residual(an, a, op, nrhs, b, x, r.data());
  const double sumrhs = sum_abs(b, len);
  double prev = sum_abs(r.data(), len);
  const int m = limit < 0 ? -limit : limit;
  for (int k = 1;; ++k) {
    direct_solve(an, f, op, kAll, nrhs, r.data(), dx.data(), threads);
    for (std::size_t i = 0; i < len; ++i) x[i] += dx[i];
    residual(an, a, op, nrhs, b, x, r.data());
    const double sumres = sum_abs(r.data(), len);
    const double sumdx = sum_abs(dx.data(), len);
    const double sumx = sum_abs(x, len);
    const bool raw = sumrhs == 0 || sumx == 0;
    out.rel_res = raw ? sumres : sumres / sumrhs;
    out.rel_err = raw ? sumdx : sumdx / sumx;
    if (print) {
      if (raw) {
        text::put(text::refine_dx_x(k, sumdx, sumx));
        text::put(text::refine_res_rhs(k, sumres, sumrhs));
      } else {
        text::put(text::refine_ratios(k, out.rel_res, out.rel_err));
      }
    }
    out.steps = k;
    if (k == 1 && sumres > sumrhs) {
      if (print) text::put(text::refine_warning(k, sumres, sumrhs));
      prev = 2 * sumres;
    }
    if (k == 2 && limit == 0) {
      out.stopped_early = true;
      break;
    }
    if (k == m) {
      if (sumrhs < sumres) {
        out.rel_res = sumres;
        out.rel_err = sumrhs;
      }
      break;
    }
    if (sumres < 0.9 * prev) {
      prev = sumres;
      continue;
    }
    // Too little decrease: tolerated up to step 3 only.
    if (k >= 4 || k >= m) {
      if (std::fabs(out.rel_err) > 0.5) out.status = -112;
      break;
    }
  }
  return out;
}

template <class T>
IterativeOutcome iterate(const Analysis &an, const NumericFactor<T> &f, const T *a, int op,
                         int nrhs, const T *b, T *x, bool cg, int digits, bool print, int threads) {
  constexpr int kMaxIterations = 150;
  IterativeOutcome out;
  const int n = an.n;
  const double tol = std::pow(10.0, -double(digits > 0 ? digits : 1));
  std::vector<T> r(n), z(n), p(n), q(n), u(n), v(n), rhat(n), w(n);
  auto precondition = [&](const T *in, T *res) {
    direct_solve(an, f, op, kAll, 1, in, res, threads);
  };
  auto apply = [&](const T *in, T *res) { multiply(an, a, op, in, res); };
  int worst = 0, fail = 0;
  for (int c = 0; c < nrhs && fail == 0; ++c) {
    const T *bc = b + std::size_t(c) * n;
    T *xc = x + std::size_t(c) * n;
    const double bnorm = norm2(bc, n);
    // Start from the factor's solution; zero right-hand sides need nothing.
    precondition(bc, xc);
    if (bnorm == 0) continue;
    apply(xc, r.data());
    for (int i = 0; i < n; ++i) r[i] = bc[i] - r[i];
    double res = norm2(r.data(), n) / bnorm, best = res;
    int stall = 0, it = 0;
    if (cg) {
      precondition(r.data(), z.data());
      p = z;
      T rho = dot(r.data(), z.data(), n);
      while (res > tol && it < kMaxIterations) {
        ++it;
        apply(p.data(), q.data());
        const T alpha = rho / dot(p.data(), q.data(), n);
        for (int i = 0; i < n; ++i) {
          xc[i] += alpha * p[i];
          r[i] -= alpha * q[i];
        }
        res = norm2(r.data(), n) / bnorm;
        if (print) text::put(text::cg_iteration(it, res));
        if (!(res < 1e3 * best)) {
          fail = 1;
          break;
        }
        if (res < 0.5 * best) {
          best = res;
          stall = 0;
        } else if (++stall >= 10) {
          fail = 2;
          break;
        }
        precondition(r.data(), z.data());
        const T rho1 = dot(r.data(), z.data(), n);
        const T beta = rho1 / rho;
        rho = rho1;
        for (int i = 0; i < n; ++i) p[i] = z[i] + beta * p[i];
      }
      if (print) text::put(text::cg_iteration_pair(res, tol));
    } else {
      // Conjugate gradient squared, right-preconditioned by the factor.
      rhat = r;
      T rho_old(1);
      if (print) text::put(text::cgs_init(0, res, tol));
      while (res > tol && it < kMaxIterations) {
        ++it;
        const T rho = dot(rhat.data(), r.data(), n);
        if (rho == T(0)) {
          fail = 1;
          break;
        }
        if (it == 1) {
          u = r;
          p = u;
        } else {
          const T beta = rho / rho_old;
          for (int i = 0; i < n; ++i) {
            u[i] = r[i] + beta * q[i];
            p[i] = u[i] + beta * (q[i] + beta * p[i]);
          }
        }
        rho_old = rho;
        precondition(p.data(), z.data());
        apply(z.data(), v.data());
        const T sigma = dot(rhat.data(), v.data(), n);
        if (sigma == T(0)) {
          fail = 1;
          break;
        }
        const T alpha = rho / sigma;
        for (int i = 0; i < n; ++i) {
          q[i] = u[i] - alpha * v[i];
          w[i] = u[i] + q[i];
        }
        precondition(w.data(), z.data());
        apply(z.data(), v.data());
        for (int i = 0; i < n; ++i) {
          xc[i] += alpha * z[i];
          r[i] -= alpha * v[i];
        }
        res = norm2(r.data(), n) / bnorm;
        if (print) text::put(text::cgs_iteration(it, res));
        if (!(res < 1e3 * best)) {
          fail = 1;
          break;
        }
        if (res < 0.5 * best) {
          best = res;
          stall = 0;
        } else if (++stall >= 10) {
          fail = 2;
          break;
        }
      }
    }
    if (fail == 0 && res > tol) fail = 3;
    if (it > worst) worst = it;
  }
  out.iterations = worst;
  out.report = fail == 0 ? (worst > 0 ? worst : 1) : -(10 * worst + fail);
  return out;
}

#define ORB_REFINE(T)                                                                            \
  template RefineOutcome refine(const Analysis &, const NumericFactor<T> &, const T *, int, int, \
                                const T *, T *, int, bool, int);                                 \
  template IterativeOutcome iterate(const Analysis &, const NumericFactor<T> &, const T *, int,  \
                                    int, const T *, T *, bool, int, bool, int);
ORB_REFINE(double)
ORB_REFINE(c16)
#undef ORB_REFINE

}  // namespace orb::sparse
