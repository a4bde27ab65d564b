// Central-difference Jacobian, by reverse communication and in one call.
// Each column perturbs one variable up and down by h_j and restores the
// caller's value from a saved copy, so x is unchanged to the bit afterwards.
#include <cmath>
#include <cstdint>
#include <new>
#include <vector>

#include "nls/trust_region.h"

namespace orb::nls {

namespace {

constexpr std::uint32_t kJacobiTag = 0x4e4c534a;  // "NLSJ"

struct Jacobi {
  std::uint32_t tag = kJacobiTag;
  int n = 0, m = 0;
  double *x = nullptr, *fjac = nullptr;
  double eps = 0;
  int column = -1;  // column being differenced; -1 before the first request
  bool upper = false;
  double saved = 0, h = 0;

  void perturb_up() {
    saved = x[column];
    h = saved == 0.0 ? eps : eps * std::fabs(saved);
    x[column] = saved + h;
    upper = true;
  }
};

bool valid(const int *n, const int *m, const double *x, const double *fjac, const double *eps) {
  return n && m && x && fjac && eps && *n >= 1 && *m >= 1 && *eps > 0.0 && *eps < 1.0;
}

Jacobi *lookup(void **handle) {
  if (!handle || !*handle) return nullptr;
  auto *j = static_cast<Jacobi *>(*handle);
  return j->tag == kJacobiTag ? j : nullptr;
}

}  // namespace

int jacobi_init(void **handle, const int *n, const int *m, double *x, double *fjac,
                const double *eps) {
  if (!handle || !valid(n, m, x, fjac, eps)) return kInvalidOption;
  auto *j = new (std::nothrow) Jacobi;
  if (!j) return kOutOfMemory;
  j->n = *n;
  j->m = *m;
  j->x = x;
  j->fjac = fjac;
  j->eps = *eps;
  *handle = j;
  return kSuccess;
}

int jacobi_solve(void **handle, double *f1, double *f2, int *request) {
  Jacobi *s = lookup(handle);
  if (!s || !f1 || !f2 || !request) return kInvalidOption;
  if (s->column < 0) {
    // A new pass over the columns.
    s->column = 0;
    s->perturb_up();
    *request = 1;
    return kSuccess;
  }
  if (s->upper) {
    s->x[s->column] = s->saved - s->h;
    s->upper = false;
    *request = 2;
    return kSuccess;
  }
  double *col = s->fjac + std::size_t(s->column) * s->m;
  for (int i = 0; i < s->m; ++i) col[i] = (f1[i] - f2[i]) / (2.0 * s->h);
  s->x[s->column] = s->saved;
  if (++s->column < s->n) {
    s->perturb_up();
    *request = 1;
  } else {
    s->column = -1;
    *request = 0;
  }
  return kSuccess;
}

int jacobi_delete(void **handle) {
  Jacobi *s = lookup(handle);
  if (!s) return kInvalidOption;
  s->tag = 0;
  delete s;
  *handle = nullptr;
  return kSuccess;
}

int jacobi(JacobiFunction fcn, const int *n, const int *m, double *fjac, double *x,
           const double *eps) {
  if (!fcn || !valid(n, m, x, fjac, eps)) return kInvalidOption;
  std::vector<double> f1, f2;
  try {
    f1.resize(std::size_t(*m));
    f2.resize(std::size_t(*m));
  } catch (const std::bad_alloc &) {
    return kOutOfMemory;
  }
  int mm = *m, nn = *n;
  for (int j = 0; j < nn; ++j) {
    double saved = x[j];
    double h = saved == 0.0 ? *eps : *eps * std::fabs(saved);
    x[j] = saved + h;
    fcn(&mm, &nn, x, f1.data());
    x[j] = saved - h;
    fcn(&mm, &nn, x, f2.data());
    x[j] = saved;
    for (int i = 0; i < mm; ++i) fjac[i + std::size_t(j) * mm] = (f1[i] - f2[i]) / (2.0 * h);
  }
  return kSuccess;
}

}  // namespace orb::nls
