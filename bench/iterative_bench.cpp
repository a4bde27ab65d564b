// The iterative solvers on the 2-D Poisson problem (5-point stencil, order
// 10^6): the solvers' own work per iteration (the caller's products and
// preconditioner solves are not timed) beside a bare hand-written CG loop on
// the same vectors, and the ILU0 / ILUT set-up times (bench/ilu_scipy.py
// times SciPy's spilu on the same matrix as a peer).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <vector>

#include "orb.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kGrid = 1000;  // order kGrid^2
constexpr double kIlutTol = 1e-3;
constexpr int kIlutMaxfil = 5;
constexpr int kRestart = 30;

struct Csr {
  int n = 0;
  std::vector<int> ia, ja;
  std::vector<double> a;
};

Csr poisson(int m) {
  Csr A;
  A.n = m * m;
  A.ia.reserve(A.n + 1);
  A.ja.reserve(5 * static_cast<size_t>(A.n));
  A.a.reserve(5 * static_cast<size_t>(A.n));
  A.ia.push_back(1);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < m; ++j) {
      const int r = i * m + j;
      auto put = [&](int c, double v) {
        A.ja.push_back(c + 1);
        A.a.push_back(v);
      };
      if (i > 0) put(r - m, -1);
      if (j > 0) put(r - 1, -1);
      put(r, 4);
      if (j + 1 < m) put(r + 1, -1);
      if (i + 1 < m) put(r + m, -1);
      A.ia.push_back(static_cast<int>(A.ja.size()) + 1);
    }
  return A;
}

// The caller's side: y = A x, and z = (L U)^-1 r for CSR factors whose rows
// hold L left of the diagonal, then U.
void multiply(const Csr &A, const double *x, double *y) {
  for (int i = 0; i < A.n; ++i) {
    double s = 0;
    for (int p = A.ia[i] - 1; p < A.ia[i + 1] - 1; ++p) s += A.a[p] * x[A.ja[p] - 1];
    y[i] = s;
  }
}

struct Factors {
  std::vector<double> lu;
  std::vector<int> ia, ja, diag;
};

void lu_solve(const Factors &f, const double *r, double *z) {
  const int n = static_cast<int>(f.diag.size());
  for (int i = 0; i < n; ++i) {
    double s = r[i];
    for (int p = f.ia[i] - 1; p < f.diag[i]; ++p) s -= f.lu[p] * z[f.ja[p] - 1];
    z[i] = s;
  }
  for (int i = n - 1; i >= 0; --i) {
    double s = z[i];
    for (int p = f.diag[i] + 1; p < f.ia[i + 1] - 1; ++p) s -= f.lu[p] * z[f.ja[p] - 1];
    z[i] = s / f.lu[f.diag[i]];
  }
}

void find_diagonals(Factors &f) {
  const int n = static_cast<int>(f.ia.size()) - 1;
  f.diag.assign(n, 0);
  for (int i = 0; i < n; ++i)
    for (int p = f.ia[i] - 1; p < f.ia[i + 1] - 1; ++p)
      if (f.ja[p] == i + 1) f.diag[i] = p;
}

struct Problem {
  Csr A = poisson(kGrid);
  std::vector<double> b;
  Factors ilu0, ilut;
  Problem() {
    b.resize(A.n);
    for (int i = 0; i < A.n; ++i) b[i] = 1.0 + std::sin(1e-3 * i);
  }
};

Problem &problem() {
  static Problem p;
  return p;
}

struct Params {
  std::vector<int> ipar = std::vector<int>(128, 0);
  std::vector<double> dpar = std::vector<double>(128, 0.0);
};

// ILU0 set-up; the ILU parameters: console messages, errors reported,
// no pivot replacement needed for this matrix.
const Factors &ilu0_factors() {
  Problem &P = problem();
  if (P.ilu0.lu.empty()) {
    Params p;
    p.ipar[1] = 6;
    p.ipar[5] = 1;
    p.dpar[30] = 1e-16;
    P.ilu0.lu.resize(P.A.a.size());
    int ierr = 0;
    DCSRILU0(&P.A.n, P.A.a.data(), P.A.ia.data(), P.A.ja.data(), P.ilu0.lu.data(), p.ipar.data(),
             p.dpar.data(), &ierr);
    P.ilu0.ia = P.A.ia;
    P.ilu0.ja = P.A.ja;
    find_diagonals(P.ilu0);
  }
  return P.ilu0;
}

int run_ilut(Factors &f) {
  Problem &P = problem();
  Params p;
  p.ipar[1] = 6;
  p.ipar[5] = 1;
  p.ipar[6] = 1;
  p.ipar[30] = 1;
  p.dpar[30] = 1.0;
  const size_t cap = static_cast<size_t>(P.A.n) * (2 * kIlutMaxfil + 1);
  f.lu.resize(cap);
  f.ja.resize(cap);
  f.ia.resize(P.A.n + 1);
  int ierr = 0, maxfil = kIlutMaxfil;
  double tol = kIlutTol;
  DCSRILUT(&P.A.n, P.A.a.data(), P.A.ia.data(), P.A.ja.data(), f.lu.data(), f.ia.data(),
           f.ja.data(), &tol, &maxfil, p.ipar.data(), p.dpar.data(), &ierr);
  return ierr;
}

const Factors &ilut_factors() {
  Problem &P = problem();
  if (P.ilut.lu.empty()) {
    run_ilut(P.ilut);
    find_diagonals(P.ilut);
  }
  return P.ilut;
}

double seconds(Clock::time_point a, Clock::time_point b) {
  return std::chrono::duration<double>(b - a).count();
}

// ---- CG: DCG's own work per iteration -------------------------------------
void BM_DcgOwnWork(benchmark::State &state) {
  Problem &P = problem();
  const bool pre = state.range(0) != 0;
  const Factors *f = pre ? &ilu0_factors() : nullptr;
  int n = P.A.n, rci = 0;
  std::vector<double> x(n, 0.0), tmp(4 * static_cast<size_t>(n));
  Params p;
  DCG_INIT(&n, x.data(), P.b.data(), &rci, p.ipar.data(), p.dpar.data(), tmp.data());
  // Residual test with zero tolerances and nothing else: the iteration goes on.
  p.ipar[7] = 0;
  p.ipar[8] = 1;
  p.ipar[9] = 0;
  p.ipar[10] = pre ? 1 : 0;
  double *col[5] = {nullptr, tmp.data(), tmp.data() + n, tmp.data() + 2 * n, tmp.data() + 3 * n};
  auto serve = [&](int request) {
    if (request == 1) multiply(P.A, col[1], col[2]);
    if (request == 3) lu_solve(*f, col[3], col[4]);
  };
  // The start: up to the first request for A p.
  DCG(&n, x.data(), P.b.data(), &rci, p.ipar.data(), p.dpar.data(), tmp.data());
  while (rci == 1 && p.ipar[2] != 4 && p.ipar[2] != 9) {
    serve(rci);
    DCG(&n, x.data(), P.b.data(), &rci, p.ipar.data(), p.dpar.data(), tmp.data());
    if (rci == 3) {
      serve(rci);
      DCG(&n, x.data(), P.b.data(), &rci, p.ipar.data(), p.dpar.data(), tmp.data());
    }
  }
  for (auto _ : state) {
    double spent = 0;
    serve(1);
    auto t0 = Clock::now();
    DCG(&n, x.data(), P.b.data(), &rci, p.ipar.data(), p.dpar.data(), tmp.data());
    spent += seconds(t0, Clock::now());
    if (rci == 3) {
      serve(3);
      t0 = Clock::now();
      DCG(&n, x.data(), P.b.data(), &rci, p.ipar.data(), p.dpar.data(), tmp.data());
      spent += seconds(t0, Clock::now());
    }
    if (rci != 1) state.SkipWithError("DCG stopped");
    state.SetIterationTime(spent);
  }
  state.counters["n"] = n;
}
// The machine may be shared: each figure is the best of five repetitions.
template <class B>
void best_of_five(B *b) {
  b->Repetitions(5)->ReportAggregatesOnly(true)->ComputeStatistics(
      "min", [](const std::vector<double> &v) { return *std::min_element(v.begin(), v.end()); });
}

BENCHMARK(BM_DcgOwnWork)
    ->Arg(0)
    ->Arg(1)
    ->ArgName("ilu0")
    ->UseManualTime()
    ->Iterations(300)
    ->Unit(benchmark::kMicrosecond)
    ->Apply([](benchmark::internal::Benchmark *b) { best_of_five(b); });

// ---- the same iterations as a bare loop ------------------------------------
void BM_BareCg(benchmark::State &state) {
  Problem &P = problem();
  const bool pre = state.range(0) != 0;
  const Factors *f = pre ? &ilu0_factors() : nullptr;
  const int n = P.A.n;
  std::vector<double> x(n, 0.0), p(n), q(n), r(P.b), z(n);
  double *xp = x.data(), *pp = p.data(), *qp = q.data(), *rp = r.data(), *zp = z.data();
  const double *s = pre ? zp : rp;
  if (pre) lu_solve(*f, rp, zp);
  double rho = 0;
  for (int i = 0; i < n; ++i) {
    pp[i] = s[i];
    rho += s[i] * rp[i];
  }
  for (auto _ : state) {
    multiply(P.A, pp, qp);
    auto t0 = Clock::now();
    double pq = 0;
    for (int i = 0; i < n; ++i) pq += pp[i] * qp[i];
    const double alpha = rho / pq;
    for (int i = 0; i < n; ++i) {
      xp[i] += alpha * pp[i];
      rp[i] -= alpha * qp[i];
    }
    double spent = seconds(t0, Clock::now());
    if (pre) lu_solve(*f, rp, zp);
    t0 = Clock::now();
    double next = 0;
    for (int i = 0; i < n; ++i) next += s[i] * rp[i];
    const double beta = next / rho;
    rho = next;
    for (int i = 0; i < n; ++i) pp[i] = s[i] + beta * pp[i];
    spent += seconds(t0, Clock::now());
    state.SetIterationTime(spent);
  }
  benchmark::DoNotOptimize(x.data());
  state.counters["n"] = n;
}
BENCHMARK(BM_BareCg)
    ->Arg(0)
    ->Arg(1)
    ->ArgName("ilu0")
    ->UseManualTime()
    ->Iterations(300)
    ->Unit(benchmark::kMicrosecond)
    ->Apply([](benchmark::internal::Benchmark *b) { best_of_five(b); });

// ---- FGMRES with ILUT: DFGMRES's own work per inner step -------------------
void BM_DfgmresOwnWork(benchmark::State &state) {
  Problem &P = problem();
  const Factors &f = ilut_factors();
  int n = P.A.n, rci = 0;
  Params p;
  std::vector<double> x(n, 0.0);
  std::vector<double> tmp(static_cast<size_t>(n) * (2 * kRestart + 1) +
                          kRestart * (kRestart + 9) / 2 + 1);
  DFGMRES_INIT(&n, x.data(), P.b.data(), &rci, p.ipar.data(), p.dpar.data(), tmp.data());
  p.ipar[6] = 0;   // quiet check
  p.ipar[7] = 0;   // no iteration limit
  p.ipar[8] = 1;   // residual test with zero tolerances: never met
  p.ipar[9] = 0;   // no caller's test
  p.ipar[10] = 1;  // preconditioned
  p.ipar[11] = 1;  // the solver tests the basis norm itself
  p.ipar[14] = kRestart;
  p.dpar[0] = 0;
  DFGMRES_CHECK(&n, x.data(), P.b.data(), &rci, p.ipar.data(), p.dpar.data());
  auto serve = [&](int request) {
    double *in = tmp.data() + p.ipar[21] - 1, *out = tmp.data() + p.ipar[22] - 1;
    if (request == 1) multiply(P.A, in, out);
    if (request == 3) lu_solve(f, in, out);
  };
  // Up to the first request 3.
  DFGMRES(&n, x.data(), P.b.data(), &rci, p.ipar.data(), p.dpar.data(), tmp.data());
  while (rci == 1) {
    serve(rci);
    DFGMRES(&n, x.data(), P.b.data(), &rci, p.ipar.data(), p.dpar.data(), tmp.data());
  }
  // One benchmark iteration: request 3 served, then the calls up to the next
  // request 3 (a restart included, once per cycle).
  for (auto _ : state) {
    double spent = 0;
    do {
      serve(rci);
      const auto t0 = Clock::now();
      DFGMRES(&n, x.data(), P.b.data(), &rci, p.ipar.data(), p.dpar.data(), tmp.data());
      spent += seconds(t0, Clock::now());
    } while (rci == 1);
    if (rci != 3) state.SkipWithError("DFGMRES stopped");
    state.SetIterationTime(spent);
  }
  state.counters["restart"] = kRestart;
}
BENCHMARK(BM_DfgmresOwnWork)
    ->UseManualTime()
    ->Iterations(10 * kRestart)
    ->Unit(benchmark::kMicrosecond)
    ->Apply([](benchmark::internal::Benchmark *b) { best_of_five(b); });

// ---- set-up of the preconditioners ----------------------------------------
void BM_Ilu0Setup(benchmark::State &state) {
  Problem &P = problem();
  std::vector<double> lu(P.A.a.size());
  Params p;
  p.ipar[1] = 6;
  p.ipar[5] = 1;
  p.dpar[30] = 1e-16;
  int ierr = 0;
  for (auto _ : state) {
    DCSRILU0(&P.A.n, P.A.a.data(), P.A.ia.data(), P.A.ja.data(), lu.data(), p.ipar.data(),
             p.dpar.data(), &ierr);
    if (ierr != 0) state.SkipWithError("DCSRILU0 failed");
  }
  state.counters["nnz"] = static_cast<double>(lu.size());
}
BENCHMARK(BM_Ilu0Setup)
    ->Unit(benchmark::kMillisecond)
    ->MinTime(1.0)
    ->Apply([](benchmark::internal::Benchmark *b) { best_of_five(b); });

void BM_IlutSetup(benchmark::State &state) {
  Factors f;
  for (auto _ : state)
    if (run_ilut(f) != 0) state.SkipWithError("DCSRILUT failed");
  state.counters["nnz"] = f.ia.back() - 1;
  state.counters["tol"] = kIlutTol;
  state.counters["maxfil"] = kIlutMaxfil;
}
BENCHMARK(BM_IlutSetup)
    ->Unit(benchmark::kMillisecond)
    ->MinTime(1.0)
    ->Apply([](benchmark::internal::Benchmark *b) { best_of_five(b); });

}  // namespace

BENCHMARK_MAIN();
