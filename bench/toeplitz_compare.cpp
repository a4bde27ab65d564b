// TSLC1 (Levinson-Trench, O(m^2)) against a dense LU solve (O(m^3)) of the
// same complex Toeplitz system, on one thread:
//
//   ORB LU     ORB's cgetrf + cgetrs
//   OpenBLAS   cgesv_ of Debian's OpenBLAS (pthread build), loaded at run time
//              in a link-map namespace of its own so that ORB's exported names
//              cannot capture its calls; skipped when absent
//
//   toeplitz_compare [m ...]      (default 250 500 1000 2000)
//
// The matrix is diagonally dominant (every leading minor regular); each line
// gives the median of several calls in milliseconds and the relative
// residual ||A x - b|| / (||A|| ||x||) of the first call.
#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <complex>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <vector>

#include "orb.h"

namespace {

using C = std::complex<float>;
using GesvFn = void (*)(const int *, const int *, void *, const int *, int *, void *, const int *,
                        int *);

orb_complex8 *raw(C *p) {
  return reinterpret_cast<orb_complex8 *>(p);
}

struct Problem {
  int m;
  std::vector<C> a1, a2, b, dense;  // dense: column major
};

Problem make(int m) {
  std::mt19937 gen(m);
  std::uniform_real_distribution<float> u(-1, 1);
  Problem p{m, std::vector<C>(m), std::vector<C>(m), std::vector<C>(m), {}};
  for (auto &v : p.a1) v = C(u(gen), u(gen)) / float(m);
  for (auto &v : p.a2) v = C(u(gen), u(gen)) / float(m);
  p.a1[0] = C(2, 0.5f);
  for (auto &v : p.b) v = C(u(gen), u(gen));
  p.dense.resize(static_cast<size_t>(m) * m);
  for (int j = 0; j < m; ++j)
    for (int i = 0; i < m; ++i) p.dense[size_t(j) * m + i] = j >= i ? p.a1[j - i] : p.a2[i - j - 1];
  return p;
}

double residual(const Problem &p, const std::vector<C> &x) {
  double r = 0, a = 0, xn = 0;
  for (int i = 0; i < p.m; ++i) {
    std::complex<double> s = -std::complex<double>(p.b[i]);
    double row = 0;
    for (int j = 0; j < p.m; ++j) {
      s += std::complex<double>(p.dense[size_t(j) * p.m + i]) * std::complex<double>(x[j]);
      row += std::abs(p.dense[size_t(j) * p.m + i]);
    }
    r = std::max(r, std::abs(s));
    a = std::max(a, row);
    xn = std::max(xn, double(std::abs(x[i])));
  }
  return r / (a * xn);
}

// Median time of `reps` calls of run (which gets fresh operands each call,
// prepared untimed by setup); the first call's solution is returned in x.
double time_ms(int reps, const std::function<void()> &setup, const std::function<void()> &run) {
  std::vector<double> t;
  for (int k = 0; k < reps; ++k) {
    setup();
    const auto t0 = std::chrono::steady_clock::now();
    run();
    t.push_back(
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count());
  }
  std::sort(t.begin(), t.end());
  return t[t.size() / 2];
}

}  // namespace

int main(int argc, char **argv) {
  std::vector<int> sizes;
  for (int i = 1; i < argc; ++i) sizes.push_back(std::atoi(argv[i]));
  if (sizes.empty()) sizes = {250, 500, 1000, 2000};
  ORB_Set_Num_Threads(1);

  GesvFn openblas_gesv = nullptr;
  if (void *h = dlmopen(LM_ID_NEWLM, "/usr/lib/x86_64-linux-gnu/openblas-pthread/libopenblas.so.0",
                        RTLD_NOW | RTLD_LOCAL)) {
    openblas_gesv = reinterpret_cast<GesvFn>(dlsym(h, "cgesv_"));
    if (auto set = reinterpret_cast<void (*)(int)>(dlsym(h, "openblas_set_num_threads"))) set(1);
  }

  std::printf("%6s %12s %10s %12s %10s %12s %10s %9s\n", "m", "TSLC1 ms", "resid", "ORB LU ms",
              "resid", "OpenBLAS ms", "resid", "LU/TSLC1");
  for (int m : sizes) {
    const Problem p = make(m);
    const int reps = m <= 500 ? 9 : 5;
    std::vector<C> x(m), c1(m), c2(m), a;
    std::vector<int> ipiv(m);

    x = p.b;
    TSLC1(raw(const_cast<C *>(p.a1.data())), raw(const_cast<C *>(p.a2.data())), raw(x.data()),
          raw(x.data()), raw(c1.data()), raw(c2.data()), &m);
    const double r_t = residual(p, x);
    const double t_t = time_ms(
        reps, [&] { x = p.b; },
        [&] {
          TSLC1(raw(const_cast<C *>(p.a1.data())), raw(const_cast<C *>(p.a2.data())), raw(x.data()),
                raw(x.data()), raw(c1.data()), raw(c2.data()), &m);
        });

    int info = 0, one = 1;
    auto orb_lu = [&] {
      cgetrf(&m, &m, raw(a.data()), &m, ipiv.data(), &info);
      cgetrs("N", &m, &one, raw(a.data()), &m, ipiv.data(), raw(x.data()), &m, &info, 1);
    };
    auto fresh = [&] {
      a = p.dense;
      x = p.b;
    };
    fresh();
    orb_lu();
    const double r_l = residual(p, x);
    const double t_l = time_ms(reps, fresh, orb_lu);

    double t_o = 0, r_o = 0;
    if (openblas_gesv) {
      auto ob = [&] { openblas_gesv(&m, &one, a.data(), &m, ipiv.data(), x.data(), &m, &info); };
      fresh();
      ob();
      r_o = residual(p, x);
      t_o = time_ms(reps, fresh, ob);
    }
    std::printf("%6d %12.3f %10.2e %12.3f %10.2e %12.3f %10.2e %9.1f\n", m, t_t, r_t, t_l, r_l, t_o,
                r_o, t_l / t_t);
  }
  return 0;
}
