// The symmetric and Hermitian indefinite factorization with Bunch-Kaufman
// pivoting (sytrf.h): one template over the scalar type and the Hermitian
// flag, instantiated for real symmetric data in slasyf_omp.cpp, complex
// symmetric in clasyf_omp.cpp and Hermitian in clahef_omp.cpp.
//
// Every step makes the published pivot tests in the published order, with
// alpha = (1 + sqrt(17)) / 8: column k's largest off-diagonal element
// (colmax, row imax) against its diagonal; if the diagonal is too small,
// row imax's largest off-diagonal element (rowmax) decides between a 1x1
// pivot at k, a 1x1 pivot at imax, and a 2x2 pivot of k and imax. Sizes are
// |x| for real data and |Re x| + |Im x| for complex (the Hermitian diagonal
// by |Re x|); the Hermitian diagonal is kept real throughout.
//
// The panel keeps the updated columns in W, so that column k's update is a
// product of the panel's earlier columns of A and W over the rows still to
// factor. That product is the panel's heavy work. A threaded panel keeps
// one team (a Crew) for its length: thread 0 factors, and each product
// large enough is split by rows over the team; every row's sum is formed by
// the same kernel in the same order whatever range it falls in, so the
// threaded panel gives the serial panel's bits. The rest of the triangle is
// updated once per panel by the triangle-only product (blas_calls.h), on
// the panel's team, or on the calling thread for a serial panel.
#pragma once

#include <omp.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "blas/level2/level2.h"
#include "lapack/blas_calls.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/spin.h"
#include "lapack/sytrf.h"
#include "service/memory.h"
#include "service/threading.h"

namespace orb::lapack {
namespace sytrf_detail {

extern thread_local SytrfPath t_sytrf_path;

template <class T>
using Real = real_t<T>;

// The pivot tests' size of an element.
template <class T>
Real<T> cabs1(T x) {
  if constexpr (is_complex_v<T>)
    return std::abs(x.real()) + std::abs(x.imag());
  else
    return std::abs(x);
}
// The size of a diagonal element: of its real part for Hermitian data.
template <class T, bool Herm>
Real<T> dabs(T x) {
  if constexpr (Herm)
    return std::abs(x.real());
  else
    return cabs1(x);
}
// x, conjugated for Hermitian data.
template <class T, bool Herm>
T cj(T x) {
  if constexpr (Herm)
    return std::conj(x);
  else
    return x;
}
// A diagonal element as stored: its real part for Hermitian data.
template <class T, bool Herm>
T dg(T x) {
  if constexpr (Herm)
    return T(x.real());
  else
    return x;
}

// 1 / d for a diagonal element d: of its real part for Hermitian data.
template <class T, bool Herm>
T inverse_diag(T x) {
  if constexpr (Herm)
    return T(Real<T>(1) / x.real());
  else
    return T(1) / x;
}

// 0-based position of the first largest of x[0], x[inc], ... (n > 0).
template <class T>
int iamax(int n, const T *x, std::ptrdiff_t inc) {
  int best = 0;
  Real<T> big = cabs1(x[0]);
  for (int i = 1; i < n; ++i) {
    const Real<T> v = cabs1(x[i * inc]);
    if (v > big) {
      big = v;
      best = i;
    }
  }
  return best;
}

template <class T>
struct View {
  T *p;
  int ld;
  T &operator()(int i, int j) const { return p[i + static_cast<std::ptrdiff_t>(j) * ld]; }
  T *at(int i, int j) const { return p + i + static_cast<std::ptrdiff_t>(j) * ld; }
};

// y[r] -= A(r, c) x[c] summed over c = 0 .. cols - 1, for the rows [r0, r1),
// through the processor's matrix-vector kernel. The kernel forms each row
// from that row's elements alone, columns in the same groups and order, and
// treats a row by its place in a run of vectors counted from the range's
// start: ranges that start on a multiple of 64 rows (a whole number of
// vectors and of 64-byte lines) give every row the bits of one call over
// all rows.
template <class T>
void product_rows(int r0, int r1, int cols, const T *a, int lda, const T *x, T *y) {
  blas::level2::kernels<T>().gemv_n(r1 - r0, cols, T(-1), a + r0, lda, x, y + r0);
}

// The team of a threaded panel, kept for the whole panel: thread 0 factors
// it and hands each product to the team as a job, which every member runs
// on its own share; the others wait between jobs spinning briefly and then
// giving the processor away (which the thread they wait for may need on a
// busy machine), never sleeping, so that a job starts without waking a
// thread. A job's arguments are written before the release of its number
// and read after its acquire; each member's results before the release of
// its count of done jobs, read after thread 0's acquire of it.
class Crew {
 public:
  // On thread 0: job(member, team) on every member, returning when all are
  // done.
  template <class Job>
  void run(Job &job) {
    fn_ = [](void *j, int member, int team) { (*static_cast<Job *>(j))(member, team); };
    job_ = &job;
    done_.store(0, std::memory_order_relaxed);
    posted_.fetch_add(1, std::memory_order_release);
    fn_(job_, 0, team_);
    wait([&] { return done_.load(std::memory_order_acquire) == team_ - 1; });
  }
  // On the other members: the jobs, until thread 0 is finished.
  void serve(int member) {
    int seen = 0;
    for (;;) {
      int posted = seen;
      wait([&] {
        posted = posted_.load(std::memory_order_acquire);
        return posted != seen || finished_.load(std::memory_order_acquire);
      });
      if (posted == seen) return;
      seen = posted;
      fn_(job_, member, team_);
      done_.fetch_add(1, std::memory_order_release);
    }
  }
  void finish() { finished_.store(true, std::memory_order_release); }
  int team() const { return team_; }
  void set_team(int team) { team_ = team; }

 private:
  template <class Ready>
  static void wait(Ready ready) {
    spin_until(ready, 256);
  }

  int team_ = 1;
  void (*fn_)(void *, int, int) = nullptr;
  void *job_ = nullptr;
  std::atomic<int> posted_{0}, done_{0};
  std::atomic<bool> finished_{false};
};

// The same over the rows [0, m) with x at increment incx, split over the
// crew (when there is one and the work is worth it) in runs of 64 rows.
// `xbuf` holds cols elements.
template <class T>
void product(int m, int cols, const T *a, int lda, const T *x, int incx, T *y, Crew *crew,
             T *xbuf) {
  if (m <= 0 || cols <= 0) return;
  for (int c = 0; c < cols; ++c) xbuf[c] = x[static_cast<std::ptrdiff_t>(c) * incx];
  constexpr int kRun = 64;
  if (!crew || crew->team() < 2 || m < 2 * kRun || std::int64_t{m} * cols < g_sytrf_team_work) {
    product_rows(0, m, cols, a, lda, xbuf, y);
    return;
  }
  auto job = [&](int member, int team) {
    const int per = ((m + team - 1) / team + kRun - 1) / kRun * kRun;
    const int r0 = std::min(m, member * per), r1 = std::min(m, r0 + per);
    if (r0 < r1) product_rows(r0, r1, cols, a, lda, xbuf, y);
  };
  crew->run(job);
}

// One triangle of the n-by-n C -= A B^T (A, B n by k): on the crew, in
// slabs of equal area, or on the calling thread without one.
template <class T>
void update_triangle(Crew *crew, bool upper, int n, int k, const T *a, int lda, const T *b, int ldb,
                     T *c, int ldc) {
  if (n <= 0) return;
  if (!crew || crew->team() < 2) {
    gemm_triangle_columns(upper, n, k, T(-1), a, lda, b, ldb, T(1), c, ldc, 0, n);
    return;
  }
  auto job = [&](int member, int team) {
    gemm_triangle_columns(upper, n, k, T(-1), a, lda, b, ldb, T(1), c, ldc,
                          gemm_triangle_boundary(upper, n, member, team),
                          gemm_triangle_boundary(upper, n, member + 1, team));
  };
  crew->run(job);
}

template <class T>
Real<T> bk_alpha() {
  return (Real<T>(1) + std::sqrt(Real<T>(17))) / Real<T>(8);
}

// The choice of one step: the pivot row kp (0-based) and the block size.
struct Choice {
  int kp, kstep;
  bool zero;  // the column is exactly zero: nothing to eliminate
};

// The published tests from the sizes already measured: absakk, colmax at
// imax, and a callback giving rowmax and the size of the diagonal at imax
// (measured only when needed).
template <class T, class Row>
Choice choose(int k, Real<T> absakk, Real<T> colmax, int imax, Row row) {
  const Real<T> alpha = bk_alpha<T>();
  if (std::max(absakk, colmax) == Real<T>(0)) return {k, 1, true};
  if (absakk >= alpha * colmax) return {k, 1, false};
  Real<T> rowmax, diag;
  row(&rowmax, &diag);
  if (absakk >= alpha * colmax * (colmax / rowmax)) return {k, 1, false};
  if (diag >= alpha * rowmax) return {imax, 1, false};
  return {imax, 2, false};
}

// ---- column by column (xSYTF2, xHETF2) ------------------------------------------------

template <class T, bool Herm>
int sytf2_upper(int n, View<T> A, int *ipiv) {
  int info = 0;
  for (int k = n - 1; k >= 0;) {
    const Real<T> absakk = dabs<T, Herm>(A(k, k));
    const int imax = k > 0 ? iamax(k, A.at(0, k), 1) : 0;
    const Real<T> colmax = k > 0 ? cabs1(A(imax, k)) : Real<T>(0);
    Choice c{k, 1, false};
    if (std::max(absakk, colmax) == Real<T>(0) || std::isnan(absakk)) {
      c.zero = true;
    } else {
      c = choose<T>(k, absakk, colmax, imax, [&](Real<T> *rowmax, Real<T> *diag) {
        const int jmax = imax + 1 + iamax(k - imax, A.at(imax, imax + 1), A.ld);
        *rowmax = cabs1(A(imax, jmax));
        if (imax > 0) *rowmax = std::max(*rowmax, cabs1(A(iamax(imax, A.at(0, imax), 1), imax)));
        *diag = dabs<T, Herm>(A(imax, imax));
      });
    }
    const int kp = c.kp, kstep = c.kstep;
    if (c.zero) {
      if (info == 0) info = k + 1;
      A(k, k) = dg<T, Herm>(A(k, k));
    } else {
      const int kk = k - kstep + 1;
      if (kp != kk) {
        for (int i = 0; i < kp; ++i) std::swap(A(i, kk), A(i, kp));
        for (int j = kp + 1; j < kk; ++j) {
          const T t = cj<T, Herm>(A(j, kk));
          A(j, kk) = cj<T, Herm>(A(kp, j));
          A(kp, j) = t;
        }
        if constexpr (Herm) A(kp, kk) = std::conj(A(kp, kk));
        const T t = dg<T, Herm>(A(kk, kk));
        A(kk, kk) = dg<T, Herm>(A(kp, kp));
        A(kp, kp) = t;
        if (kstep == 2) {
          A(k, k) = dg<T, Herm>(A(k, k));
          std::swap(A(k - 1, k), A(kp, k));
        }
      } else {
        A(k, k) = dg<T, Herm>(A(k, k));
        if (kstep == 2) A(k - 1, k - 1) = dg<T, Herm>(A(k - 1, k - 1));
      }
      if (kstep == 1) {
        // A := A - x x^T / d (x x^H for Hermitian data), then x := x / d.
        T *x = A.at(0, k);
        const T r1 = inverse_diag<T, Herm>(A(k, k));
        for (int j = 0; j < k; ++j) {
          T *aj = A.at(0, j);
          if (x[j] != T(0)) {
            const T t = mul(-r1, cj<T, Herm>(x[j]));
            for (int i = 0; i < j; ++i) aj[i] = aj[i] + mul(x[i], t);
            aj[j] = dg<T, Herm>(aj[j]) + dg<T, Herm>(mul(x[j], t));
          } else {
            aj[j] = dg<T, Herm>(aj[j]);
          }
        }
        for (int i = 0; i < k; ++i) x[i] = mul(r1, x[i]);
      } else if (k > 1) {
        T *xk = A.at(0, k), *xk1 = A.at(0, k - 1);
        T d11, d22, d12, d;
        if constexpr (Herm) {
          const Real<T> r = std::hypot(A(k - 1, k).real(), A(k - 1, k).imag());
          const Real<T> e22 = A(k - 1, k - 1).real() / r, e11 = A(k, k).real() / r;
          const Real<T> tt = Real<T>(1) / (e11 * e22 - Real<T>(1));
          d11 = T(e11);
          d22 = T(e22);
          d12 = A(k - 1, k) / r;
          d = T(tt / r);
        } else {
          d12 = A(k - 1, k);
          d22 = A(k - 1, k - 1) / d12;
          d11 = A(k, k) / d12;
          d = (T(1) / (d11 * d22 - T(1))) / d12;
        }
        for (int j = k - 2; j >= 0; --j) {
          T bk = xk[j], bk1 = xk1[j];
          if constexpr (Herm) {
            bk = mul(std::conj(d12), bk);
            bk1 = mul(d12, bk1);
          }
          const T wkm1 = mul(d, mul(d11, xk1[j]) - bk);
          const T wk = mul(d, mul(d22, xk[j]) - bk1);
          const T cwk = cj<T, Herm>(wk), cwkm1 = cj<T, Herm>(wkm1);
          T *aj = A.at(0, j);
          for (int i = 0; i <= j; ++i) aj[i] = aj[i] - mul(xk[i], cwk) - mul(xk1[i], cwkm1);
          xk[j] = wk;
          xk1[j] = wkm1;
          aj[j] = dg<T, Herm>(aj[j]);
        }
      }
    }
    if (kstep == 1) {
      ipiv[k] = kp + 1;
    } else {
      ipiv[k] = -(kp + 1);
      ipiv[k - 1] = -(kp + 1);
    }
    k -= kstep;
  }
  return info;
}

template <class T, bool Herm>
int sytf2_lower(int n, View<T> A, int *ipiv) {
  int info = 0;
  for (int k = 0; k < n;) {
    const Real<T> absakk = dabs<T, Herm>(A(k, k));
    const int imax = k < n - 1 ? k + 1 + iamax(n - k - 1, A.at(k + 1, k), 1) : k;
    const Real<T> colmax = k < n - 1 ? cabs1(A(imax, k)) : Real<T>(0);
    Choice c{k, 1, false};
    if (std::max(absakk, colmax) == Real<T>(0) || std::isnan(absakk)) {
      c.zero = true;
    } else {
      c = choose<T>(k, absakk, colmax, imax, [&](Real<T> *rowmax, Real<T> *diag) {
        const int jmax = k + iamax(imax - k, A.at(imax, k), A.ld);
        *rowmax = cabs1(A(imax, jmax));
        if (imax < n - 1) {
          const int j2 = imax + 1 + iamax(n - imax - 1, A.at(imax + 1, imax), 1);
          *rowmax = std::max(*rowmax, cabs1(A(j2, imax)));
        }
        *diag = dabs<T, Herm>(A(imax, imax));
      });
    }
    const int kp = c.kp, kstep = c.kstep;
    if (c.zero) {
      if (info == 0) info = k + 1;
      A(k, k) = dg<T, Herm>(A(k, k));
    } else {
      const int kk = k + kstep - 1;
      if (kp != kk) {
        for (int i = kp + 1; i < n; ++i) std::swap(A(i, kk), A(i, kp));
        for (int j = kk + 1; j < kp; ++j) {
          const T t = cj<T, Herm>(A(j, kk));
          A(j, kk) = cj<T, Herm>(A(kp, j));
          A(kp, j) = t;
        }
        if constexpr (Herm) A(kp, kk) = std::conj(A(kp, kk));
        const T t = dg<T, Herm>(A(kk, kk));
        A(kk, kk) = dg<T, Herm>(A(kp, kp));
        A(kp, kp) = t;
        if (kstep == 2) {
          A(k, k) = dg<T, Herm>(A(k, k));
          std::swap(A(k + 1, k), A(kp, k));
        }
      } else {
        A(k, k) = dg<T, Herm>(A(k, k));
        if (kstep == 2) A(k + 1, k + 1) = dg<T, Herm>(A(k + 1, k + 1));
      }
      if (kstep == 1) {
        if (k < n - 1) {
          T *x = A.at(0, k);
          const T r1 = inverse_diag<T, Herm>(A(k, k));
          for (int j = k + 1; j < n; ++j) {
            T *aj = A.at(0, j);
            if (x[j] != T(0)) {
              const T t = mul(-r1, cj<T, Herm>(x[j]));
              aj[j] = dg<T, Herm>(aj[j]) + dg<T, Herm>(mul(x[j], t));
              for (int i = j + 1; i < n; ++i) aj[i] = aj[i] + mul(x[i], t);
            } else {
              aj[j] = dg<T, Herm>(aj[j]);
            }
          }
          for (int i = k + 1; i < n; ++i) x[i] = mul(r1, x[i]);
        }
      } else if (k < n - 2) {
        T *xk = A.at(0, k), *xk1 = A.at(0, k + 1);
        T d11, d22, d21, d;
        if constexpr (Herm) {
          const Real<T> r = std::hypot(A(k + 1, k).real(), A(k + 1, k).imag());
          const Real<T> e11 = A(k + 1, k + 1).real() / r, e22 = A(k, k).real() / r;
          const Real<T> tt = Real<T>(1) / (e11 * e22 - Real<T>(1));
          d11 = T(e11);
          d22 = T(e22);
          d21 = A(k + 1, k) / r;
          d = T(tt / r);
        } else {
          d21 = A(k + 1, k);
          d11 = A(k + 1, k + 1) / d21;
          d22 = A(k, k) / d21;
          d = (T(1) / (d11 * d22 - T(1))) / d21;
        }
        for (int j = k + 2; j < n; ++j) {
          T bk = xk[j], bk1 = xk1[j];
          if constexpr (Herm) {
            bk = mul(std::conj(d21), bk);
            bk1 = mul(d21, bk1);
          }
          const T wk = mul(d, mul(d11, xk[j]) - bk1);
          const T wkp1 = mul(d, mul(d22, xk1[j]) - bk);
          const T cwk = cj<T, Herm>(wk), cwkp1 = cj<T, Herm>(wkp1);
          T *aj = A.at(0, j);
          for (int i = j; i < n; ++i) aj[i] = aj[i] - mul(xk[i], cwk) - mul(xk1[i], cwkp1);
          xk[j] = wk;
          xk1[j] = wkp1;
          aj[j] = dg<T, Herm>(aj[j]);
        }
      }
    }
    if (kstep == 1) {
      ipiv[k] = kp + 1;
    } else {
      ipiv[k] = -(kp + 1);
      ipiv[k + 1] = -(kp + 1);
    }
    k += kstep;
  }
  return info;
}

// ---- one panel (xLASYF, xLAHEF) --------------------------------------------------------

// The panel of the last columns: W's column kw holds column k as updated by
// the columns already factored (those right of k), its rows conjugated once
// the step is done for Hermitian data, so that A - U12 W^T is the update.
template <class T, bool Herm>
int lasyf_upper(int n, int nb, View<T> A, int *ipiv, View<T> W, Crew *crew, T *xbuf, int *kb) {
  int info = 0;
  int k = n - 1;
  for (;;) {
    const int kw = nb + k - n;
    if ((k <= n - nb && nb < n) || k < 0) break;
    // W(0:k, kw) = A(0:k, k) minus the panel's earlier columns.
    std::copy(A.at(0, k), A.at(0, k) + k, W.at(0, kw));
    W(k, kw) = dg<T, Herm>(A(k, k));
    product(k + 1, n - 1 - k, A.at(0, k + 1), A.ld, W.at(k, kw + 1), W.ld, W.at(0, kw), crew, xbuf);
    W(k, kw) = dg<T, Herm>(W(k, kw));
    const Real<T> absakk = dabs<T, Herm>(W(k, kw));
    const int imax = k > 0 ? iamax(k, W.at(0, kw), 1) : 0;
    const Real<T> colmax = k > 0 ? cabs1(W(imax, kw)) : Real<T>(0);
    const Choice c = choose<T>(k, absakk, colmax, imax, [&](Real<T> *rowmax, Real<T> *diag) {
      // Column imax, updated, in W's column kw - 1.
      T *v = W.at(0, kw - 1);
      std::copy(A.at(0, imax), A.at(0, imax) + imax, v);
      v[imax] = dg<T, Herm>(A(imax, imax));
      for (int i = imax + 1; i <= k; ++i) v[i] = cj<T, Herm>(A(imax, i));
      product(k + 1, n - 1 - k, A.at(0, k + 1), A.ld, W.at(imax, kw + 1), W.ld, v, crew, xbuf);
      v[imax] = dg<T, Herm>(v[imax]);
      const int jmax = imax + 1 + iamax(k - imax, v + imax + 1, 1);
      *rowmax = cabs1(v[jmax]);
      if (imax > 0) *rowmax = std::max(*rowmax, cabs1(v[iamax(imax, v, 1)]));
      *diag = dabs<T, Herm>(v[imax]);
    });
    const int kp = c.kp, kstep = c.kstep;
    if (c.zero) {
      if (info == 0) info = k + 1;
      A(k, k) = dg<T, Herm>(A(k, k));
    } else {
      // A 1x1 pivot at imax takes the updated column imax as its column.
      if (kstep == 1 && kp != k) std::copy(W.at(0, kw - 1), W.at(0, kw - 1) + k + 1, W.at(0, kw));
      const int kk = k - kstep + 1, kkw = nb + kk - n;
      if (kp != kk) {
        A(kp, kp) = dg<T, Herm>(A(kk, kk));
        for (int j = kp + 1; j < kk; ++j) A(kp, j) = cj<T, Herm>(A(j, kk));
        std::copy(A.at(0, kk), A.at(0, kk) + kp, A.at(0, kp));
        for (int j = k + 1; j < n; ++j) std::swap(A(kk, j), A(kp, j));
        for (int j = kkw; j < nb; ++j) std::swap(W(kk, j), W(kp, j));
      }
      if (kstep == 1) {
        std::copy(W.at(0, kw), W.at(0, kw) + k + 1, A.at(0, k));
        if (k > 0) {
          const T r1 = inverse_diag<T, Herm>(A(k, k));
          for (int i = 0; i < k; ++i) A(i, k) = mul(r1, A(i, k));
          if constexpr (Herm)
            for (int i = 0; i < k; ++i) W(i, kw) = std::conj(W(i, kw));
        }
      } else {
        if (k > 1) {
          T d21 = W(k - 1, kw), d11, d22;
          if constexpr (Herm) {
            d11 = W(k, kw) / std::conj(d21);
            d22 = W(k - 1, kw - 1) / d21;
            const Real<T> t = Real<T>(1) / ((d11 * d22).real() - Real<T>(1));
            d21 = T(t) / d21;
          } else {
            d11 = W(k, kw) / d21;
            d22 = W(k - 1, kw - 1) / d21;
            d21 = (T(1) / (d11 * d22 - T(1))) / d21;
          }
          for (int j = 0; j <= k - 2; ++j) {
            A(j, k - 1) = mul(d21, mul(d11, W(j, kw - 1)) - W(j, kw));
            A(j, k) = mul(cj<T, Herm>(d21), mul(d22, W(j, kw)) - W(j, kw - 1));
          }
        }
        A(k - 1, k - 1) = W(k - 1, kw - 1);
        A(k - 1, k) = W(k - 1, kw);
        A(k, k) = W(k, kw);
        if constexpr (Herm) {
          for (int i = 0; i < k; ++i) W(i, kw) = std::conj(W(i, kw));
          for (int i = 0; i < k - 1; ++i) W(i, kw - 1) = std::conj(W(i, kw - 1));
        }
      }
    }
    if (kstep == 1) {
      ipiv[k] = kp + 1;
    } else {
      ipiv[k] = -(kp + 1);
      ipiv[k - 1] = -(kp + 1);
    }
    k -= kstep;
  }
  // A11 := A11 - U12 W^T over the upper triangle of the first k + 1 columns.
  const int kw = nb + k - n;
  update_triangle(crew, true, k + 1, n - 1 - k, A.at(0, k + 1), A.ld, W.at(0, kw + 1), W.ld, A.p,
                  A.ld);
  if constexpr (Herm)
    for (int j = 0; j <= k; ++j) A(j, j) = dg<T, Herm>(A(j, j));
  // U12 back in the published form: each step's interchange undone in the
  // columns factored before it.
  for (int j = k + 1; j < n;) {
    const int jj = j;
    int jp = ipiv[j];
    if (jp < 0) {
      jp = -jp;
      ++j;
    }
    ++j;
    if (jp - 1 != jj && j < n)
      for (int c = j; c < n; ++c) std::swap(A(jp - 1, c), A(jj, c));
  }
  *kb = n - 1 - k;
  return info;
}

// The panel of the first columns: W's column k holds column k (rows k .. n-1)
// as updated by the columns left of it.
template <class T, bool Herm>
int lasyf_lower(int n, int nb, View<T> A, int *ipiv, View<T> W, Crew *crew, T *xbuf, int *kb) {
  int info = 0;
  int k = 0;
  for (;;) {
    if ((k >= nb - 1 && nb < n) || k >= n) break;
    W(k, k) = dg<T, Herm>(A(k, k));
    std::copy(A.at(k + 1, k), A.at(0, k) + n, W.at(k + 1, k));
    product(n - k, k, A.at(k, 0), A.ld, W.at(k, 0), W.ld, W.at(k, k), crew, xbuf);
    W(k, k) = dg<T, Herm>(W(k, k));
    const Real<T> absakk = dabs<T, Herm>(W(k, k));
    const int imax = k < n - 1 ? k + 1 + iamax(n - k - 1, W.at(k + 1, k), 1) : k;
    const Real<T> colmax = k < n - 1 ? cabs1(W(imax, k)) : Real<T>(0);
    const Choice c = choose<T>(k, absakk, colmax, imax, [&](Real<T> *rowmax, Real<T> *diag) {
      // Column imax, updated, in W's column k + 1 (rows k .. n-1).
      T *v = W.at(0, k + 1);
      for (int i = k; i < imax; ++i) v[i] = cj<T, Herm>(A(imax, i));
      v[imax] = dg<T, Herm>(A(imax, imax));
      std::copy(A.at(imax + 1, imax), A.at(0, imax) + n, v + imax + 1);
      product(n - k, k, A.at(k, 0), A.ld, W.at(imax, 0), W.ld, v + k, crew, xbuf);
      v[imax] = dg<T, Herm>(v[imax]);
      const int jmax = k + iamax(imax - k, v + k, 1);
      *rowmax = cabs1(v[jmax]);
      if (imax < n - 1)
        *rowmax = std::max(*rowmax, cabs1(v[imax + 1 + iamax(n - imax - 1, v + imax + 1, 1)]));
      *diag = dabs<T, Herm>(v[imax]);
    });
    const int kp = c.kp, kstep = c.kstep;
    if (c.zero) {
      if (info == 0) info = k + 1;
      A(k, k) = dg<T, Herm>(A(k, k));
    } else {
      if (kstep == 1 && kp != k) std::copy(W.at(k, k + 1), W.at(0, k + 1) + n, W.at(k, k));
      const int kk = k + kstep - 1;
      if (kp != kk) {
        A(kp, kp) = dg<T, Herm>(A(kk, kk));
        for (int j = kk + 1; j < kp; ++j) A(kp, j) = cj<T, Herm>(A(j, kk));
        std::copy(A.at(kp + 1, kk), A.at(0, kk) + n, A.at(kp + 1, kp));
        for (int j = 0; j < k; ++j) std::swap(A(kk, j), A(kp, j));
        for (int j = 0; j <= kk; ++j) std::swap(W(kk, j), W(kp, j));
      }
      if (kstep == 1) {
        std::copy(W.at(k, k), W.at(0, k) + n, A.at(k, k));
        if (k < n - 1) {
          const T r1 = inverse_diag<T, Herm>(A(k, k));
          for (int i = k + 1; i < n; ++i) A(i, k) = mul(r1, A(i, k));
          if constexpr (Herm)
            for (int i = k + 1; i < n; ++i) W(i, k) = std::conj(W(i, k));
        }
      } else {
        if (k < n - 2) {
          T d21 = W(k + 1, k), d11, d22;
          if constexpr (Herm) {
            d11 = W(k + 1, k + 1) / d21;
            d22 = W(k, k) / std::conj(d21);
            const Real<T> t = Real<T>(1) / ((d11 * d22).real() - Real<T>(1));
            d21 = T(t) / d21;
          } else {
            d11 = W(k + 1, k + 1) / d21;
            d22 = W(k, k) / d21;
            d21 = (T(1) / (d11 * d22 - T(1))) / d21;
          }
          for (int j = k + 2; j < n; ++j) {
            A(j, k) = mul(cj<T, Herm>(d21), mul(d11, W(j, k)) - W(j, k + 1));
            A(j, k + 1) = mul(d21, mul(d22, W(j, k + 1)) - W(j, k));
          }
        }
        A(k, k) = W(k, k);
        A(k + 1, k) = W(k + 1, k);
        A(k + 1, k + 1) = W(k + 1, k + 1);
        if constexpr (Herm) {
          for (int i = k + 1; i < n; ++i) W(i, k) = std::conj(W(i, k));
          for (int i = k + 2; i < n; ++i) W(i, k + 1) = std::conj(W(i, k + 1));
        }
      }
    }
    if (kstep == 1) {
      ipiv[k] = kp + 1;
    } else {
      ipiv[k] = -(kp + 1);
      ipiv[k + 1] = -(kp + 1);
    }
    k += kstep;
  }
  // A22 := A22 - L21 W^T over the lower triangle of the last n - k columns.
  update_triangle(crew, false, n - k, k, A.at(k, 0), A.ld, W.at(k, 0), W.ld, A.at(k, k), A.ld);
  if constexpr (Herm)
    for (int j = k; j < n; ++j) A(j, j) = dg<T, Herm>(A(j, j));
  // L21 back in the published form.
  for (int j = k - 1; j >= 0;) {
    const int jj = j;
    int jp = ipiv[j];
    if (jp < 0) {
      jp = -jp;
      --j;
    }
    --j;
    if (jp - 1 != jj && j >= 0)
      for (int c = 0; c <= j; ++c) std::swap(A(jp - 1, c), A(jj, c));
  }
  *kb = k;
  return info;
}

}  // namespace sytrf_detail

template <class T, bool Herm>
int sytf2(Uplo uplo, int n, T *a, int lda, int *ipiv) {
  const sytrf_detail::View<T> A{a, lda};
  return uplo == Uplo::kUpper ? sytrf_detail::sytf2_upper<T, Herm>(n, A, ipiv)
                              : sytrf_detail::sytf2_lower<T, Herm>(n, A, ipiv);
}

template <class T, bool Herm>
int lasyf(Uplo uplo, int n, int nb, T *a, int lda, int *ipiv, T *w, int ldw, int threads, int *kb) {
  const sytrf_detail::View<T> A{a, lda}, W{w, ldw};
  if (omp_in_parallel()) threads = 1;
  // A contiguous copy of the row of W each product takes.
  constexpr int kStack = 256;
  T stack[kStack];
  mem::Buffer<T> heap;
  if (nb > kStack) {
    heap = mem::Buffer<T>(nb, 64);
    if (!heap) return -1;
  }
  T *xbuf = nb > kStack ? heap.get() : stack;
  auto panel = [&](sytrf_detail::Crew *crew) {
    return uplo == Uplo::kUpper
               ? sytrf_detail::lasyf_upper<T, Herm>(n, nb, A, ipiv, W, crew, xbuf, kb)
               : sytrf_detail::lasyf_lower<T, Herm>(n, nb, A, ipiv, W, crew, xbuf, kb);
  };
  if (threads <= 1) return panel(nullptr);
  sytrf_detail::Crew crew;
  int info = 0;
#pragma omp parallel num_threads(threads)
  {
    if (omp_get_thread_num() == 0) {
      crew.set_team(omp_get_num_threads());  // read by the others after a job's release
      info = panel(&crew);
      crew.finish();
    } else {
      crew.serve(omp_get_thread_num());
    }
  }
  return info;
}

template <class T, bool Herm>
constexpr Name6 sytrf_name() {
  return name<T>(Herm ? "HETRF" : "SYTRF");
}

template <class T, bool Herm>
std::int64_t sytrf_worksize(int n) {
  const int nb = oracle(kBlockSize, sytrf_name<T, Herm>(), n);
  return std::max<std::int64_t>(1, std::int64_t{n} * nb);
}

template <class T, bool Herm>
int sytrf(Uplo uplo, int n, T *a, int lda, int *ipiv, T *work, int lwork) {
  using sytrf_detail::t_sytrf_path;
  const Name6 nm = sytrf_name<T, Herm>();
  int nb = oracle(kBlockSize, nm, n);
  const std::int64_t lwkopt = std::max<std::int64_t>(1, std::int64_t{n} * nb);
  int nbmin = 2;
  const int ldwork = n;
  if (nb > 1 && nb < n && lwork < std::int64_t{ldwork} * nb) {
    nb = std::max(lwork / ldwork, 1);
    nbmin = std::max(2, oracle(kMinBlockSize, nm, n));
  }
  if (nb < nbmin) nb = n;
  const int threads = omp_in_parallel() ? 1 : orb::threads::max_threads();
  const int crossover = oracle(kCrossover, nm, n, -1, threads);
  // A panel of order m runs its products on the team from the crossover on.
  auto team = [&](int m) { return threads > 1 && m >= crossover ? threads : 1; };
  t_sytrf_path =
      nb < n ? (team(n) > 1 ? SytrfPath::kThreaded : SytrfPath::kBlocked) : SytrfPath::kUnblocked;
  int info = 0;
  if (uplo == Uplo::kUpper) {
    for (int k = n; k >= 1;) {
      int kb = k, iinfo;
      iinfo = k > nb ? lasyf<T, Herm>(uplo, k, nb, a, lda, ipiv, work, ldwork, team(k), &kb) : -1;
      if (iinfo < 0) {
        iinfo = sytf2<T, Herm>(uplo, k, a, lda, ipiv);
        kb = k;
      }
      if (info == 0 && iinfo > 0) info = iinfo;
      k -= kb;
    }
  } else {
    for (int k = 1; k <= n;) {
      const int m = n - k + 1;
      T *akk = a + (k - 1) + static_cast<std::ptrdiff_t>(k - 1) * lda;
      int *pk = ipiv + (k - 1);
      int kb = m, iinfo;
      iinfo =
          k <= n - nb ? lasyf<T, Herm>(uplo, m, nb, akk, lda, pk, work, ldwork, team(m), &kb) : -1;
      if (iinfo < 0) {
        iinfo = sytf2<T, Herm>(uplo, m, akk, lda, pk);
        kb = m;
      }
      if (info == 0 && iinfo > 0) info = iinfo + k - 1;
      for (int j = 0; j < kb; ++j) pk[j] += pk[j] > 0 ? k - 1 : -(k - 1);
      k += kb;
    }
  }
  if (lwork >= 1) work[0] = T(static_cast<real_t<T>>(lwkopt));
  return info;
}

}  // namespace orb::lapack
