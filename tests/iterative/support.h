// Shared pieces of the iterative-solver tests: CSR test matrices, the
// products and triangular solves a caller performs on the solvers' requests,
// and a temporary working directory for the log files.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace orb::test {

// A square matrix in 1-based CSR.
struct Csr {
  int n = 0;
  std::vector<int> ia, ja;
  std::vector<double> a;

  void add_row(std::initializer_list<std::pair<int, double>> entries) {
    if (ia.empty()) ia.push_back(1);
    for (auto [c, v] : entries) {
      ja.push_back(c);
      a.push_back(v);
    }
    ia.push_back(static_cast<int>(ja.size()) + 1);
    n = static_cast<int>(ia.size()) - 1;
  }
};

// The 5-point stencil on an m x m grid: -u_w - u_s + 4 u - u_n - u_e, plus a
// convection term that makes it nonsymmetric when c != 0 (central
// differences: west and south -1 - c, east and north -1 + c).
inline Csr grid_operator(int m, double c = 0.0) {
  Csr A;
  A.n = m * m;
  A.ia.reserve(A.n + 1);
  A.ia.push_back(1);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < m; ++j) {
      const int row = i * m + j;
      auto put = [&](int col, double v) {
        A.ja.push_back(col + 1);
        A.a.push_back(v);
      };
      if (i > 0) put(row - m, -1.0 - c);
      if (j > 0) put(row - 1, -1.0 - c);
      put(row, 4.0);
      if (j + 1 < m) put(row + 1, -1.0 + c);
      if (i + 1 < m) put(row + m, -1.0 + c);
      A.ia.push_back(static_cast<int>(A.ja.size()) + 1);
    }
  return A;
}

inline void multiply(const Csr &A, const double *x, double *y) {
  for (int i = 0; i < A.n; ++i) {
    double s = 0;
    for (int p = A.ia[i] - 1; p < A.ia[i + 1] - 1; ++p) s += A.a[p] * x[A.ja[p] - 1];
    y[i] = s;
  }
}

// ||b - A x|| / ||b||
inline double relative_residual(const Csr &A, const double *x, const double *b) {
  std::vector<double> ax(A.n);
  multiply(A, x, ax.data());
  double r = 0, nb = 0;
  for (int i = 0; i < A.n; ++i) {
    r += (b[i] - ax[i]) * (b[i] - ax[i]);
    nb += b[i] * b[i];
  }
  return std::sqrt(r / nb);
}

// z = (L U)^-1 r for incomplete factors in CSR: unit lower L left of each
// diagonal, U from the diagonal on; any column order within a row.
inline void lu_solve(int n, const int *ia, const int *ja, const double *lu, const double *r,
                     double *z) {
  for (int i = 0; i < n; ++i) {
    double s = r[i];
    for (int p = ia[i] - 1; p < ia[i + 1] - 1; ++p)
      if (ja[p] - 1 < i) s -= lu[p] * z[ja[p] - 1];
    z[i] = s;
  }
  for (int i = n - 1; i >= 0; --i) {
    double s = z[i], d = 0;
    for (int p = ia[i] - 1; p < ia[i + 1] - 1; ++p) {
      if (ja[p] - 1 > i) s -= lu[p] * z[ja[p] - 1];
      if (ja[p] - 1 == i) d = lu[p];
    }
    z[i] = s / d;
  }
}

// The dense product L U of incomplete factors (small matrices only).
inline std::vector<double> dense_product(int n, const int *ia, const int *ja, const double *lu) {
  std::vector<double> L(n * n, 0.0), U(n * n, 0.0), P(n * n, 0.0);
  for (int i = 0; i < n; ++i) {
    L[i * n + i] = 1;
    for (int p = ia[i] - 1; p < ia[i + 1] - 1; ++p) {
      const int j = ja[p] - 1;
      (j < i ? L : U)[i * n + j] = lu[p];
    }
  }
  for (int i = 0; i < n; ++i)
    for (int k = 0; k < n; ++k)
      for (int j = 0; j < n; ++j) P[i * n + j] += L[i * n + k] * U[k * n + j];
  return P;
}

inline std::vector<double> dense(const Csr &A) {
  std::vector<double> D(A.n * A.n, 0.0);
  for (int i = 0; i < A.n; ++i)
    for (int p = A.ia[i] - 1; p < A.ia[i + 1] - 1; ++p) D[i * A.n + A.ja[p] - 1] += A.a[p];
  return D;
}

// Runs the test in a fresh working directory, removed afterwards.
class TempDir {
 public:
  TempDir() {
    namespace fs = std::filesystem;
    previous_ = fs::current_path();
    const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
    path_ = fs::temp_directory_path() / ("orb_iterative_" + std::to_string(stamp));
    fs::create_directories(path_);
    fs::current_path(path_);
  }
  ~TempDir() {
    std::error_code ec;
    std::filesystem::current_path(previous_, ec);
    std::filesystem::remove_all(path_, ec);
  }
  TempDir(const TempDir &) = delete;
  TempDir &operator=(const TempDir &) = delete;

 private:
  std::filesystem::path previous_, path_;
};

inline std::string read_file(const char *name) {
  std::ifstream f(name, std::ios::binary);
  std::stringstream s;
  s << f.rdbuf();
  std::string text = s.str();
  // The Windows C runtime writes text files with CR LF line ends.
  std::string clean;
  for (size_t i = 0; i < text.size(); ++i)
    if (!(text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')) clean += text[i];
  return clean;
}

inline bool file_exists(const char *name) {
  return std::filesystem::exists(name);
}

// The frame every message starts with: an empty line and the 78-hyphen rule.
inline std::string frame(const std::string &heading) {
  return "\n" + std::string(78, '-') + "\n" + heading + "\n";
}

}  // namespace orb::test
