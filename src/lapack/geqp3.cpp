// The QR factorization with column pivoting (geqp3.h): the fixed columns
// first, then blocks of free columns, each block choosing its pivots with
// the norms of the remaining columns downdated as its reflectors are made
// and the trailing matrix updated once per block (the block's reflectors
// and F = tau A^H v gathered, as for the level-3 QR), and the last columns
// one by one.
#include "lapack/geqp3.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>

#include "blas/level1/level1.h"
#include "blas/level2/level2.h"
#include "lapack/auxiliary.h"
#include "lapack/blas_calls.h"
#include "lapack/householder.h"
#include "lapack/names.h"
#include "lapack/oracle.h"

namespace orb::lapack {
namespace {

template <class T>
class View {
 public:
  View(T *p, int ld) : p_(p), ld_(ld) {}
  T *operator()(int i, int j) const { return p_ + i + static_cast<std::ptrdiff_t>(j) * ld_; }

 private:
  T *p_;
  int ld_;
};

// Below this the downdated norm has lost too many digits to trust.
template <class R>
R downdate_limit() {
  return std::sqrt(std::numeric_limits<R>::epsilon() / 2);
}

// The free column of largest norm among j .. n-1 of `vn1`, moved to j.
template <class T>
void pivot(int m, int j, int n, const View<T> &a, int *jpvt, real_t<T> *vn1, real_t<T> *vn2,
           T *f = nullptr, int ldf = 0) {
  const int p = j + blas::iamax(n - j, vn1 + j, 1) - 1;
  if (p == j) return;
  blas::swap(m, a(0, p), 1, a(0, j), 1);
  if (f != nullptr && j > 0) blas::swap(j, f + p, ldf, f + j, ldf);
  std::swap(jpvt[p], jpvt[j]);
  vn1[p] = vn1[j];
  vn2[p] = vn2[j];
}

// The reflector of column j from row r down (a reflector of order 1 when r
// is the last row).
template <class T>
void reflector(int m, int r, int j, const View<T> &a, T *tau) {
  if (r < m - 1)
    larfg(m - r, *a(r, j), a(r + 1, j), 1, tau[j]);
  else
    larfg(1, *a(r, j), a(r, j), 1, tau[j]);
}

// Unblocked: columns 0 .. n-1 of A (rows from `offset`), with the norms of
// the free columns in vn1 (downdated) and vn2 (when last computed).
template <class T>
void laqp2(int m, int n, int offset, T *a_, int lda, int *jpvt, T *tau, real_t<T> *vn1,
           real_t<T> *vn2, T *work) {
  using R = real_t<T>;
  const View<T> a(a_, lda);
  const int mn = std::min(m - offset, n);
  const R tol3z = downdate_limit<R>();
  for (int i = 0; i < mn; ++i) {
    const int r = offset + i;
    pivot(m, i, n, a, jpvt, vn1, vn2);
    reflector(m, r, i, a, tau);
    if (i < n - 1) {
      const T aii = *a(r, i);
      *a(r, i) = T(1);
      larf(Side::kLeft, m - r, n - i - 1, a(r, i), 1, conj(tau[i]), a(r, i + 1), lda, work);
      *a(r, i) = aii;
    }
    for (int j = i + 1; j < n; ++j) {
      if (vn1[j] == R(0)) continue;
      const R q = std::abs(*a(r, j)) / vn1[j];
      const R temp = std::max(R(0), 1 - q * q);
      const R ratio = vn1[j] / vn2[j];
      if (temp * ratio * ratio <= tol3z) {
        vn1[j] = r < m - 1 ? blas::nrm2(m - r - 1, a(r + 1, j), 1) : R(0);
        vn2[j] = vn1[j];
      } else {
        vn1[j] *= std::sqrt(temp);
      }
    }
  }
}

// Blocked: up to nb pivot steps on columns 0 .. n-1 (rows from `offset`),
// the trailing columns updated only in their pivot row as the block goes,
// and all at once at its end. A block ends early when a downdated norm
// needs recomputing, which needs the updated column. Returns the number of
// columns factored. auxv has nb entries, F is n by nb.
template <class T>
int laqps(int m, int n, int offset, int nb, T *a_, int lda, int *jpvt, T *tau, real_t<T> *vn1,
          real_t<T> *vn2, T *auxv, T *f_, int ldf) {
  using R = real_t<T>;
  const View<T> a(a_, lda), f(f_, ldf);
  const int lastrk = std::min(m, n + offset);
  const R tol3z = downdate_limit<R>();
  // Columns whose norm must be recomputed, linked through vn2 (1-based, 0
  // ends the list).
  int recompute = 0;
  int k = 0;
  while (k < nb && recompute == 0) {
    const int r = offset + k;
    pivot(m, k, n, a, jpvt, vn1, vn2, f_, ldf);
    // Column k := column k - A(r:, 0:k) F(k, 0:k)^H.
    if (k > 0) {
      lacgv(k, f(k, 0), ldf);
      blas::level2::gemv(Op::kNone, m - r, k, T(-1), a(r, 0), lda, f(k, 0), ldf, T(1), a(r, k), 1);
      lacgv(k, f(k, 0), ldf);
    }
    reflector(m, r, k, a, tau);
    const T akk = *a(r, k);
    *a(r, k) = T(1);
    // F(k+1:, k) := tau A(r:, k+1:)^H v, less the earlier reflectors' part:
    // F(:, k) -= tau F(:, 0:k) A(r:, 0:k)^H v.
    if (k < n - 1)
      blas::level2::gemv(Op::kConjTrans, m - r, n - k - 1, tau[k], a(r, k + 1), lda, a(r, k), 1,
                         T(0), f(k + 1, k), 1);
    for (int j = 0; j <= k; ++j) *f(j, k) = T(0);
    if (k > 0) {
      blas::level2::gemv(Op::kConjTrans, m - r, k, -tau[k], a(r, 0), lda, a(r, k), 1, T(0), auxv,
                         1);
      blas::level2::gemv(Op::kNone, n, k, T(1), f(0, 0), ldf, auxv, 1, T(1), f(0, k), 1);
    }
    // The pivot row: A(r, k+1:) -= A(r, 0:k+1) F(k+1:, 0:k+1)^H.
    if (k < n - 1)
      gemm_here(Op::kNone, Op::kConjTrans, 1, n - k - 1, k + 1, T(-1), a(r, 0), lda, f(k + 1, 0),
                ldf, T(1), a(r, k + 1), lda);
    if (r < lastrk - 1) {
      for (int j = k + 1; j < n; ++j) {
        if (vn1[j] == R(0)) continue;
        const R q = std::abs(*a(r, j)) / vn1[j];
        const R temp = std::max(R(0), (1 + q) * (1 - q));
        const R ratio = vn1[j] / vn2[j];
        if (temp * ratio * ratio <= tol3z) {
          vn2[j] = static_cast<R>(recompute);
          recompute = j + 1;
        } else {
          vn1[j] *= std::sqrt(temp);
        }
      }
    }
    *a(r, k) = akk;
    ++k;
  }
  const int kb = k, r = offset + kb;
  // The rows below the block: A(r:, kb:) -= A(r:, 0:kb) F(kb:, 0:kb)^H.
  if (kb < std::min(n, m - offset))
    gemm(Op::kNone, Op::kConjTrans, m - r, n - kb, kb, T(-1), a(r, 0), lda, f(kb, 0), ldf, T(1),
         a(r, kb), lda);
  while (recompute > 0) {
    const int j = recompute - 1;
    const int next = static_cast<int>(std::lround(vn2[j]));
    vn1[j] = blas::nrm2(m - r, a(r, j), 1);
    vn2[j] = vn1[j];
    recompute = next;
  }
  return kb;
}

// The norm arrays' share of WORK: 2 n for real data, none for complex.
template <class T>
constexpr int norm_slots() {
  return is_complex_v<T> ? 0 : 2;
}

}  // namespace

template <class T>
std::int64_t geqp3_minwork(int m, int n) {
  return std::min(m, n) == 0 ? 1 : static_cast<std::int64_t>(norm_slots<T>() + 1) * n + 1;
}

template <class T>
std::int64_t geqp3_worksize(int m, int n) {
  if (std::min(m, n) == 0) return 1;
  const std::int64_t nb = oracle(kBlockSize, name<T>("GEQP3"), m, n);
  return static_cast<std::int64_t>(norm_slots<T>()) * n + (static_cast<std::int64_t>(n) + 1) * nb;
}

template <class T>
std::int64_t geqp3(int m, int n, T *a_, int lda, int *jpvt, T *tau, T *work, int lwork,
                   real_t<T> *rwork) {
  using R = real_t<T>;
  const View<T> a(a_, lda);
  const int minmn = std::min(m, n);
  std::int64_t iws = geqp3_minwork<T>(m, n);

  // The fixed columns to the front, in order.
  int nfxd = 0;
  for (int j = 0; j < n; ++j) {
    if (jpvt[j] != 0) {
      if (j != nfxd) {
        blas::swap(m, a(0, j), 1, a(0, nfxd), 1);
        jpvt[j] = jpvt[nfxd];
        jpvt[nfxd] = j + 1;
      } else {
        jpvt[j] = j + 1;
      }
      ++nfxd;
    } else {
      jpvt[j] = j + 1;
    }
  }
  if (minmn == 0) return iws;

  // The norms (real data: the front of WORK) and the rest of WORK.
  R *vn1, *vn2;
  T *w;
  std::int64_t wlen;
  if constexpr (is_complex_v<T>) {
    vn1 = rwork;
    vn2 = rwork + n;
    w = work;
    wlen = lwork;
  } else {
    vn1 = work;
    vn2 = work + n;
    w = work + 2 * static_cast<std::ptrdiff_t>(n);
    wlen = lwork - 2 * static_cast<std::int64_t>(n);
  }

  // The fixed columns: their QR, Q^H applied to every later column.
  const int na = std::min(m, nfxd);
  for (int i = 0; i < na; ++i) {
    reflector(m, i, i, a, tau);
    if (i < n - 1) {
      const T aii = *a(i, i);
      *a(i, i) = T(1);
      larf(Side::kLeft, m - i, n - i - 1, a(i, i), 1, conj(tau[i]), a(i, i + 1), lda, w);
      *a(i, i) = aii;
    }
  }
  if (nfxd >= minmn) return iws;

  // The free columns.
  const int sm = m - nfxd, sn = n - nfxd, sminmn = minmn - nfxd;
  int nb = oracle(kBlockSize, name<T>("GEQP3"), sm, sn);
  int nbmin = 2, nx = 0;
  if (nb > 1 && nb < sminmn) {
    nx = std::max(0, oracle(kCrossover, name<T>("GEQP3"), sm, sn));
    if (nx < sminmn) {
      // auxv (nb) and F (sn by nb) beside the norms.
      const std::int64_t need = (static_cast<std::int64_t>(sn) + 1) * nb;
      iws = std::max(iws, static_cast<std::int64_t>(norm_slots<T>()) * n + need);
      if (wlen < need) {
        nb = static_cast<int>(wlen / (sn + 1));
        nbmin = std::max(2, oracle(kMinBlockSize, name<T>("GEQP3"), sm, sn));
      }
    }
  }
  for (int j = nfxd; j < n; ++j) {
    vn1[j] = blas::nrm2(sm, a(nfxd, j), 1);
    vn2[j] = vn1[j];
  }
  int j = nfxd;
  if (nb >= nbmin && nb < sminmn && nx < sminmn) {
    const int top = minmn - nx;
    while (j < top) {
      const int jb = std::min(nb, top - j);
      j += laqps(m, n - j, j, jb, a(0, j), lda, jpvt + j, tau + j, vn1 + j, vn2 + j, w, w + jb,
                 n - j);
    }
  }
  if (j < minmn) laqp2(m, n - j, j, a(0, j), lda, jpvt + j, tau + j, vn1 + j, vn2 + j, w);
  return iws;
}

#define ORB_GEQP3(T)                                                                  \
  template std::int64_t geqp3(int, int, T *, int, int *, T *, T *, int, real_t<T> *); \
  template std::int64_t geqp3_worksize<T>(int, int);                                  \
  template std::int64_t geqp3_minwork<T>(int, int);
ORB_GEQP3(float)
ORB_GEQP3(double)
ORB_GEQP3(std::complex<float>)
ORB_GEQP3(std::complex<double>)
#undef ORB_GEQP3

}  // namespace orb::lapack
