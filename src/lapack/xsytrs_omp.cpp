// xsytrs_omp: the solves with the Bunch-Kaufman factors behind SSYTRS,
// CSYTRS and CHETRS. The published solve: U D X = B (L D X = B) block
// column after block column, each step an interchange of two rows, a rank-1
// update per column of the block and the solve with the block of D; then
// U^T X = B (L^T, or the conjugate transposes when Hermitian) the other way,
// each step a product with the block column and the interchange. The steps
// run over a group of right-hand sides at a time, so that the factor's block
// column is read once from memory for the whole group, each column through
// the same level-1 kernels whatever group it falls in. With enough
// right-hand sides (the oracle's crossover for "SYTRS" / "HETRS", by the
// order) contiguous runs of columns go to the threads of a team.
#include <omp.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include "blas/level1/level1.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/symmetric.h"
#include "service/threading.h"

namespace orb::lapack {
namespace {

thread_local int t_last_team = 0;

// Right-hand sides stepped together: the group's part of the solution
// stays in the second-level cache up to orders of some thousands.
constexpr int kGroup = 8;

template <class T>
struct Factors {
  bool herm;
  const T *a;
  int lda;
  const T *col(int j) const { return a + static_cast<std::ptrdiff_t>(j) * lda; }
  T at(int i, int j) const { return col(j)[i]; }
  // The inner product of column j's rows [i0, i0 + m) with x: conjugated
  // when Hermitian.
  T dot(int m, int i0, int j, const T *x) const {
    return herm ? blas::dotc(m, col(j) + i0, 1, x, 1) : blas::dotu(m, col(j) + i0, 1, x, 1);
  }
};

// The reciprocal a 1x1 block multiplies by (of its real part when
// Hermitian).
template <class T>
T reciprocal(T d, bool herm) {
  if constexpr (is_complex_v<T>)
    if (herm) return T(real_t<T>(1) / d.real());
  return T(1) / d;
}

// The 2x2 block [d11 e12; e21 d22], as the published solve divides it:
// each row by its off-diagonal element first.
template <class T>
struct Block2 {
  T e12, e21, r11, r22, denom;
  Block2(T d11, T d22, T e12_, T e21_) : e12(e12_), e21(e21_) {
    r11 = d11 / e12, r22 = d22 / e21;
    denom = r11 * r22 - T(1);
  }
  void solve(T &x1, T &x2) const {
    const T y1 = x1 / e12, y2 = x2 / e21;
    x1 = (r22 * y1 - y2) / denom;
    x2 = (r11 * y2 - y1) / denom;
  }
};

// Columns [c0, c1) of B, all in one group.
template <class T>
void solve_group(Uplo uplo, const Factors<T> &f, int n, const int *ipiv, T *b, int ldb, int c0,
                 int c1) {
  auto x_of = [&](int c) { return b + static_cast<std::ptrdiff_t>(c) * ldb; };
  if (uplo == Uplo::kUpper) {
    // U D Y = B, from the last block column to the first.
    for (int k = n - 1; k >= 0;) {
      if (ipiv[k] > 0) {
        const int kp = ipiv[k] - 1;
        const T r = reciprocal(f.at(k, k), f.herm);
        for (int c = c0; c < c1; ++c) {
          T *x = x_of(c);
          if (kp != k) std::swap(x[k], x[kp]);
          blas::axpy(k, -x[k], f.col(k), 1, x, 1);
          x[k] = mul(x[k], r);
        }
        k -= 1;
      } else {
        const int kp = -ipiv[k] - 1;
        const T e = f.at(k - 1, k);
        const Block2<T> d(f.at(k - 1, k - 1), f.at(k, k), e, conj_if(e, f.herm));
        for (int c = c0; c < c1; ++c) {
          T *x = x_of(c);
          if (kp != k - 1) std::swap(x[k - 1], x[kp]);
          blas::axpy(k - 1, -x[k], f.col(k), 1, x, 1);
          blas::axpy(k - 1, -x[k - 1], f.col(k - 1), 1, x, 1);
          d.solve(x[k - 1], x[k]);
        }
        k -= 2;
      }
    }
    // U^T X = Y (U^H), from the first block column to the last.
    for (int k = 0; k < n;) {
      const int step = ipiv[k] > 0 ? 1 : 2;
      const int kp = std::abs(ipiv[k]) - 1;
      for (int c = c0; c < c1; ++c) {
        T *x = x_of(c);
        if (k > 0)
          for (int j = k; j < k + step; ++j) x[j] -= f.dot(k, 0, j, x);
        if (kp != k) std::swap(x[k], x[kp]);
      }
      k += step;
    }
    return;
  }
  // L D Y = B, from the first block column to the last.
  for (int k = 0; k < n;) {
    if (ipiv[k] > 0) {
      const int kp = ipiv[k] - 1, m = n - k - 1;
      const T r = reciprocal(f.at(k, k), f.herm);
      for (int c = c0; c < c1; ++c) {
        T *x = x_of(c);
        if (kp != k) std::swap(x[k], x[kp]);
        blas::axpy(m, -x[k], f.col(k) + k + 1, 1, x + k + 1, 1);
        x[k] = mul(x[k], r);
      }
      k += 1;
    } else {
      const int kp = -ipiv[k] - 1, m = n - k - 2;
      const T e = f.at(k + 1, k);
      const Block2<T> d(f.at(k, k), f.at(k + 1, k + 1), conj_if(e, f.herm), e);
      for (int c = c0; c < c1; ++c) {
        T *x = x_of(c);
        if (kp != k + 1) std::swap(x[k + 1], x[kp]);
        blas::axpy(m, -x[k], f.col(k) + k + 2, 1, x + k + 2, 1);
        blas::axpy(m, -x[k + 1], f.col(k + 1) + k + 2, 1, x + k + 2, 1);
        d.solve(x[k], x[k + 1]);
      }
      k += 2;
    }
  }
  // L^T X = Y (L^H), from the last block column to the first.
  for (int k = n - 1; k >= 0;) {
    const int step = ipiv[k] > 0 ? 1 : 2;
    const int kp = std::abs(ipiv[k]) - 1, m = n - k - 1;
    for (int c = c0; c < c1; ++c) {
      T *x = x_of(c);
      if (m > 0)
        for (int j = k; j > k - step; --j) x[j] -= f.dot(m, k + 1, j, x + k + 1);
      if (kp != k) std::swap(x[k], x[kp]);
    }
    k -= step;
  }
}

}  // namespace

template <class T>
void sytrs_columns(Uplo uplo, bool herm, int n, const T *a, int lda, const int *ipiv, T *b, int ldb,
                   int c0, int c1) {
  const Factors<T> f{is_complex_v<T> && herm, a, lda};
  for (int c = c0; c < c1; c += kGroup)
    solve_group(uplo, f, n, ipiv, b, ldb, c, std::min(c + kGroup, c1));
}

template <class T>
void sytrs(Uplo uplo, bool herm, int n, int nrhs, const T *a, int lda, const int *ipiv, T *b,
           int ldb) {
  t_last_team = 0;
  if (n == 0 || nrhs == 0) return;
  int team = 1;
  if (!omp_in_parallel()) {
    const int threads = orb::threads::max_threads();
    const Name6 nm = name<T>(is_complex_v<T> && herm ? "HETRS" : "SYTRS");
    if (threads > 1 && nrhs >= oracle(kCrossover, nm, n, nrhs)) team = std::min(threads, nrhs);
  }
  t_last_team = team;
  if (team == 1) {
    sytrs_columns(uplo, herm, n, a, lda, ipiv, b, ldb, 0, nrhs);
    return;
  }
#pragma omp parallel num_threads(team)
  {
    const int tid = omp_get_thread_num(), nt = omp_get_num_threads();
    const int c0 = static_cast<int>(static_cast<long long>(nrhs) * tid / nt);
    const int c1 = static_cast<int>(static_cast<long long>(nrhs) * (tid + 1) / nt);
    sytrs_columns(uplo, herm, n, a, lda, ipiv, b, ldb, c0, c1);
  }
}

int sytrs_last_team() {
  return t_last_team;
}

#define ORB_SYTRS(T)                                                                             \
  template void sytrs_columns(Uplo, bool, int, const T *, int, const int *, T *, int, int, int); \
  template void sytrs(Uplo, bool, int, int, const T *, int, const int *, T *, int);
ORB_SYTRS(float)
ORB_SYTRS(c8)
#undef ORB_SYTRS

}  // namespace orb::lapack
