// Test problems of More, Garbow and Hillstrom (ACM TOMS 7, 1981) with
// analytic Jacobians, shared by the tests and the benchmark.
#pragma once

#include <vector>

namespace orb::test::mgh {

struct Problem {
  const char *name;
  int n, m;
  std::vector<double> x0;
  // Known values of ||F||^2 at minimisers (global first, then local ones).
  std::vector<double> minima;
  void (*residual)(const double *x, double *f);
  // fjac[i + j*m] = dF_i/dx_j.
  void (*jacobian)(const double *x, double *fjac);
};

const std::vector<Problem> &problems();

// Boxes around some of the problems that leave bounds active at the solution
// (bench/nls_scipy.py gives SciPy's trf the same ones).
struct Box {
  const Problem *problem;
  std::vector<double> lw, up;
};
const std::vector<Box> &boxes();

// True when ||F||^2 = f matches one of the problem's minima.
bool at_minimum(const Problem &p, double f);

}  // namespace orb::test::mgh
