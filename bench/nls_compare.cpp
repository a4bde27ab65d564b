// The trust-region least-squares solver against MINPACK's lmder on the
// More-Garbow-Hillstrom problems at x0, 10 x0 and 100 x0: converged to a
// published minimum, function and Jacobian evaluations, time.
#include <cminpack.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "mgh_problems.h"
#include "orb.h"

using orb::test::mgh::Problem;

namespace {

struct Result {
  bool ok = false;
  int nf = 0, nj = 0;
  double f = 0, seconds = 0;
};

Result run_orb(const Problem &p, std::vector<double> x, const double *lw = nullptr,
               const double *up = nullptr) {
  Result r;
  int n = p.n, m = p.m, iter1 = 1000, iter2 = 100, req = 0;
  const double eps[6] = {1e-10, 1e-10, 1e-10, 1e-10, 1e-10, 1e-10};
  double rs = 100;
  std::vector<double> f(m), jac(std::size_t(m) * n);
  auto t0 = std::chrono::steady_clock::now();
  void *h = nullptr;
  if (lw)
    dtrnlspbc_init(&h, &n, &m, x.data(), lw, up, eps, &iter1, &iter2, &rs);
  else
    dtrnlsp_init(&h, &n, &m, x.data(), eps, &iter1, &iter2, &rs);
  auto step = [&] {
    return lw ? dtrnlspbc_solve(&h, f.data(), jac.data(), &req)
              : dtrnlsp_solve(&h, f.data(), jac.data(), &req);
  };
  while (step() == 1501 && req >= 0) {
    if (req == 1) p.residual(x.data(), f.data()), ++r.nf;
    if (req == 2) p.jacobian(x.data(), jac.data()), ++r.nj;
  }
  int iter, st;
  double r1, r2;
  if (lw) {
    dtrnlspbc_get(&h, &iter, &st, &r1, &r2);
    dtrnlspbc_delete(&h);
  } else {
    dtrnlsp_get(&h, &iter, &st, &r1, &r2);
    dtrnlsp_delete(&h);
  }
  r.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  r.f = r2 * r2;
  r.ok = orb::test::mgh::at_minimum(p, r.f);
  return r;
}

int minpack_callback(void *data, int m, int n, const double *x, double *fvec, double *fjac,
                     int ldfjac, int iflag) {
  auto *p = static_cast<const Problem *>(data);
  if (iflag == 1) p->residual(x, fvec);
  if (iflag == 2) {
    std::vector<double> j(std::size_t(m) * n);
    p->jacobian(x, j.data());
    for (int c = 0; c < n; ++c)
      for (int i = 0; i < m; ++i) fjac[i + c * ldfjac] = j[i + std::size_t(c) * m];
  }
  return 0;
}

Result run_minpack(const Problem &p, std::vector<double> x) {
  Result r;
  int n = p.n, m = p.m;
  std::vector<double> f(m), jac(std::size_t(m) * n), diag(n), qtf(n), w1(n), w2(n), w3(n), w4(m);
  std::vector<int> ipvt(n);
  double tol = 1.4901161193847656e-08;  // sqrt(machine epsilon), as in MINPACK's driver
  auto t0 = std::chrono::steady_clock::now();
  __cminpack_func__(lmder)(minpack_callback, const_cast<Problem *>(&p), m, n, x.data(), f.data(),
                           jac.data(), m, tol, tol, 0.0, 100 * (n + 1) * 10, diag.data(), 1, 100.0,
                           0, &r.nf, &r.nj, ipvt.data(), qtf.data(), w1.data(), w2.data(),
                           w3.data(), w4.data());
  r.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  double s = 0;
  for (double v : f) s += v * v;
  r.f = s;
  r.ok = orb::test::mgh::at_minimum(p, r.f);
  return r;
}

double median(std::vector<int> v) {
  std::sort(v.begin(), v.end());
  return v.empty() ? 0 : (v[(v.size() - 1) / 2] + v[v.size() / 2]) / 2.0;
}

}  // namespace

int main() {
  std::printf("%-20s %5s | %-3s %5s %5s %9s | %-3s %5s %5s %9s\n", "problem", "start", "orb", "nf",
              "nj", "us", "mp", "nf", "nj", "us");
  std::vector<int> nf_orb, nf_mp;
  int ok_orb = 0, ok_mp = 0, missed = 0;
  for (const Problem &p : orb::test::mgh::problems()) {
    for (double scale : {1.0, 10.0, 100.0}) {
      std::vector<double> x = p.x0;
      for (double &v : x) v *= scale;
      Result a = run_orb(p, x), b = run_minpack(p, x);
      std::printf("%-20s %5g | %-3s %5d %5d %9.1f | %-3s %5d %5d %9.1f\n", p.name, scale,
                  a.ok ? "yes" : "no", a.nf, a.nj, a.seconds * 1e6, b.ok ? "yes" : "no", b.nf, b.nj,
                  b.seconds * 1e6);
      ok_orb += a.ok, ok_mp += b.ok, missed += b.ok && !a.ok;
      if (a.ok && b.ok) nf_orb.push_back(a.nf), nf_mp.push_back(b.nf);
    }
  }
  std::printf(
      "converged: orb %d, minpack %d; minpack-only %d; median nf where both: orb %.1f, "
      "minpack %.1f\n",
      ok_orb, ok_mp, missed, median(nf_orb), median(nf_mp));
  // Bounded cases (bench/nls_scipy.py runs SciPy's trf on the same ones).
  for (const orb::test::mgh::Box &box : orb::test::mgh::boxes()) {
    const Problem &p = *box.problem;
    Result r = run_orb(p, p.x0, box.lw.data(), box.up.data());
    std::printf("bounded %-20s f=%.10g nf=%d nj=%d us=%.1f\n", p.name, r.f, r.nf, r.nj,
                r.seconds * 1e6);
  }
  return 0;
}
