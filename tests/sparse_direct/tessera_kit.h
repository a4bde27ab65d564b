// The sparse direct solver's test kit: generated problems in the caller's
// storage, the handle and its calls, right-hand sides and backward errors.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <type_traits>
#include <vector>

#include "orb.h"

namespace orb::test::tessera {

using c16 = std::complex<double>;

// A matrix in compressed rows, 1-based, as the caller passes it.
template <class T>
struct Csr {
  int n = 0;
  std::vector<int> ia, ja;
  std::vector<T> a;
};

// Builds from an entry function f(i, j) -> (present, value) over a stencil of
// neighbours: `upper` keeps j >= i only.
template <class T>
Csr<T> build(int n, bool upper,
             const std::function<void(int, std::vector<std::pair<int, T>> &)> &row) {
  Csr<T> m;
  m.n = n;
  m.ia.push_back(1);
  std::vector<std::pair<int, T>> r;
  for (int i = 0; i < n; ++i) {
    r.clear();
    row(i, r);
    std::sort(r.begin(), r.end(), [](auto &x, auto &y) { return x.first < y.first; });
    for (auto &e : r) {
      if (upper && e.first < i) continue;
      m.ja.push_back(e.first + 1);
      m.a.push_back(e.second);
    }
    m.ia.push_back(int(m.ja.size()) + 1);
  }
  return m;
}

// 2-D five-point grid of side k: diagonal d(i), off-diagonal west/east/south/north.
template <class T>
Csr<T> grid(int k, bool upper, T diag, T west, T east, T south, T north) {
  return build<T>(k * k, upper, [=](int i, std::vector<std::pair<int, T>> &r) {
    const int x = i % k, y = i / k;
    r.push_back({i, diag});
    if (x > 0) r.push_back({i - 1, west});
    if (x < k - 1) r.push_back({i + 1, east});
    if (y > 0) r.push_back({i - k, south});
    if (y < k - 1) r.push_back({i + k, north});
  });
}

// Saddle point [[L, B^T], [B, 0]]: L the grid Laplacian of side k, B picks
// differences of neighbouring unknowns; symmetric indefinite.
inline Csr<double> saddle(int k) {
  const int nu = k * k, np = nu / 2;
  return build<double>(nu + np, true, [=](int i, std::vector<std::pair<int, double>> &r) {
    if (i < nu) {
      const int x = i % k, y = i / k;
      r.push_back({i, 4.0});
      if (x > 0) r.push_back({i - 1, -1.0});
      if (x < k - 1) r.push_back({i + 1, -1.0});
      if (y > 0) r.push_back({i - k, -1.0});
      if (y < k - 1) r.push_back({i + k, -1.0});
      if (i % 2 == 0 && i / 2 < np) r.push_back({nu + i / 2, 1.0});
      if (i % 2 == 1 && i / 2 < np) r.push_back({nu + i / 2, -1.0});
    } else {
      const int p = i - nu;
      r.push_back({i, 0.0});
      r.push_back({2 * p, 1.0});
      r.push_back({2 * p + 1, -1.0});
    }
  });
}

inline double mag(double v) {
  return std::fabs(v);
}
inline double mag(c16 v) {
  return std::abs(v);
}
inline double cj(double v) {
  return v;
}
inline c16 cj(c16 v) {
  return std::conj(v);
}

// Backward error max_i |b - op(A) x|_i / (|A| |x| + |b|)_i over all columns,
// from the caller's storage (upper triangle mirrored for symmetric types).
template <class T>
double backward_error(const Csr<T> &m, int mtype, int op, const std::vector<T> &x,
                      const std::vector<T> &b, int nrhs) {
  const bool sym = mtype == 2 || mtype == -2 || mtype == 4 || mtype == -4 || mtype == 6;
  const bool herm = mtype == 4 || mtype == -4;
  const int n = m.n;
  double worst = 0;
  for (int c = 0; c < nrhs; ++c) {
    std::vector<T> r(n, T(0));
    std::vector<double> s(n, 0);
    auto add = [&](int i, int j, T v) {  // row i gets op(A)(i, j) x_j
      r[i] += v * x[c * n + j];
      s[i] += mag(v) * mag(x[c * n + j]);
    };
    for (int i = 0; i < n; ++i)
      for (int k = m.ia[i] - 1; k < m.ia[i + 1] - 1; ++k) {
        const int j = m.ja[k] - 1;
        const T v = m.a[k];
        if (sym) {
          // A(i, j) = v, A(j, i) = v or conj v.
          const T vt = herm ? cj(v) : v;
          T aij = v, aji = vt;
          if (op == 1) {
            aij = cj(vt);
            aji = cj(v);
          }
          if (op == 2) {
            aij = vt;
            aji = v;
          }
          add(i, j, aij);
          if (j != i) add(j, i, aji);
        } else if (op == 0) {
          add(i, j, v);
        } else {
          add(j, i, op == 1 ? cj(v) : v);
        }
      }
    for (int i = 0; i < n; ++i) {
      const double den = s[i] + mag(b[c * n + i]);
      if (den > 0) worst = std::max(worst, mag(b[c * n + i] - r[i]) / den);
    }
  }
  return worst;
}

struct Solver {
  void *pt[64] = {};
  int iparam[64] = {};
  int maxfct = 1, mnum = 1, mtype = 11, msglvl = 0, nrhs = 1;
  std::vector<int> perm;
  ~Solver() { release(); }
  template <class T>
  int call(int phase, Csr<T> &m, T *b, T *x) {
    int error = 0;
    perm.resize(m.n);
    TESSERA(pt, &maxfct, &mnum, &mtype, &phase, &m.n, m.a.data(), m.ia.data(), m.ja.data(),
            perm.data(), &nrhs, iparam, &msglvl, b, x, &error);
    return error;
  }
  void release() {
    int phase = -1, error = 0, n = 1, idum = 0;
    double d = 0;
    TESSERA(pt, &maxfct, &mnum, &mtype, &phase, &n, &d, &idum, &idum, &idum, &nrhs, iparam, &msglvl,
            &d, &d, &error);
  }
};

template <class T>
std::vector<T> rhs(int n, int nrhs) {
  std::vector<T> b(std::size_t(n) * nrhs);
  for (std::size_t i = 0; i < b.size(); ++i) {
    const double v = std::sin(0.37 * double(i) + 1.0) + 0.1;
    if constexpr (std::is_same_v<T, c16>)
      b[i] = c16(v, std::cos(0.11 * double(i)));
    else
      b[i] = v;
  }
  return b;
}

}  // namespace orb::test::tessera
