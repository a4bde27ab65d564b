// The QR and LQ family one reflector at a time: the factorizations' panels,
// the explicit Q's last block and the products with few reflectors.
#include <algorithm>
#include <complex>
#include <cstddef>

#include "blas/level1/level1.h"
#include "lapack/auxiliary.h"
#include "lapack/householder.h"
#include "lapack/qr.h"
#include "service/memory.h"

namespace orb::lapack {
namespace {

inline std::ptrdiff_t at(int i, int j, int ld) {
  return i + static_cast<std::ptrdiff_t>(j) * ld;
}

// Applies reflector i of a product, its vector copied out of A (with its
// implicit one and, for rows, conjugated) so that A is only read.
template <class T>
struct Reflector {
  explicit Reflector(int nq) : v(std::max(nq, 1), 64) {}
  mem::Buffer<T> v;
  bool ok() const { return static_cast<bool>(v); }
};

}  // namespace

template <class T>
void geqr2(int m, int n, T *a, int lda, T *tau, T *work) {
  const int k = std::min(m, n);
  for (int i = 0; i < k; ++i) {
    T *d = a + at(i, i, lda);
    larfg(m - i, *d, a + at(std::min(i + 1, m - 1), i, lda), 1, tau[i]);
    if (i + 1 < n) {
      const T aii = *d;
      *d = T(1);
      larf(Side::kLeft, m - i, n - i - 1, d, 1, conj(tau[i]), d + lda, lda, work);
      *d = aii;
    }
  }
}

template <class T>
void gelq2(int m, int n, T *a, int lda, T *tau, T *work) {
  const int k = std::min(m, n);
  for (int i = 0; i < k; ++i) {
    T *d = a + at(i, i, lda);
    lacgv(n - i, d, lda);
    larfg(n - i, *d, a + at(i, std::min(i + 1, n - 1), lda), lda, tau[i]);
    if (i + 1 < m) {
      const T aii = *d;
      *d = T(1);
      larf(Side::kRight, m - i - 1, n - i, d, lda, tau[i], d + 1, lda, work);
      *d = aii;
    }
    lacgv(n - i, d, lda);
  }
}

template <class T>
void org2r(int m, int n, int k, T *a, int lda, const T *tau, T *work) {
  if (n <= 0) return;
  // Columns k .. n-1 start as those of the identity.
  for (int j = k; j < n; ++j) {
    for (int l = 0; l < m; ++l) a[at(l, j, lda)] = T(0);
    a[at(j, j, lda)] = T(1);
  }
  for (int i = k - 1; i >= 0; --i) {
    T *d = a + at(i, i, lda);
    if (i + 1 < n) {
      *d = T(1);
      larf(Side::kLeft, m - i, n - i - 1, d, 1, tau[i], d + lda, lda, work);
    }
    if (i + 1 < m) blas::scal(m - i - 1, -tau[i], d + 1, 1);
    *d = T(1) - tau[i];
    for (int l = 0; l < i; ++l) a[at(l, i, lda)] = T(0);
  }
}

template <class T>
void orgl2(int m, int n, int k, T *a, int lda, const T *tau, T *work) {
  if (m <= 0) return;
  // Rows k .. m-1 start as those of the identity.
  if (k < m)
    for (int j = 0; j < n; ++j) {
      for (int l = k; l < m; ++l) a[at(l, j, lda)] = T(0);
      if (j >= k && j < m) a[at(j, j, lda)] = T(1);
    }
  for (int i = k - 1; i >= 0; --i) {
    T *d = a + at(i, i, lda);
    if (i + 1 < n) {
      lacgv(n - i - 1, d + lda, lda);
      if (i + 1 < m) {
        *d = T(1);
        larf(Side::kRight, m - i - 1, n - i, d, lda, conj(tau[i]), d + 1, lda, work);
      }
      blas::scal(n - i - 1, -tau[i], d + lda, lda);
      lacgv(n - i - 1, d + lda, lda);
    }
    *d = T(1) - conj(tau[i]);
    for (int l = 0; l < i; ++l) a[at(i, l, lda)] = T(0);
  }
}

// The three products one reflector at a time. Reflector i's vector is
// copied into v (length `len`, its one at `unit`) and applied with larf to
// the rows (left) or columns (right) [c0, c0 + len) of C.
namespace {

enum class Layout { kQr, kLq, kQl };

template <class T>
void orm2(Layout layout, Side side, Op op, int m, int n, int k, const T *a, int lda, const T *tau,
          T *c, int ldc, T *work) {
  if (m <= 0 || n <= 0 || k <= 0) return;
  const bool left = side == Side::kLeft, notran = op == Op::kNone;
  const int nq = left ? m : n;
  mem::Buffer<T> vbuf(nq, 64);
  if (!vbuf) return;  // a few hundred bytes; cannot fail in practice
  T *v = vbuf.get();
  // Q = H(1) ... H(k) (QR), H(k)^H ... H(1)^H (LQ), H(k) ... H(1) (QL).
  bool forward;
  if (layout == Layout::kLq)
    forward = left == notran;
  else if (layout == Layout::kQr)
    forward = left != notran;
  else
    forward = left == notran;
  for (int s = 0; s < k; ++s) {
    const int i = forward ? s : k - 1 - s;
    int c0, len;
    if (layout == Layout::kQl) {
      c0 = 0;
      len = nq - k + i + 1;
      for (int l = 0; l < len - 1; ++l) v[l] = a[at(l, i, lda)];
      v[len - 1] = T(1);
    } else {
      c0 = i;
      len = nq - i;
      v[0] = T(1);
      for (int l = 1; l < len; ++l)
        v[l] = layout == Layout::kQr ? a[at(i + l, i, lda)] : conj(a[at(i, i + l, lda)]);
    }
    // The LQ's H(i)^H is applied for op = N.
    const bool adjoint = layout == Layout::kLq ? notran : !notran;
    const T taui = adjoint ? conj(tau[i]) : tau[i];
    T *cc = left ? c + c0 : c + static_cast<std::ptrdiff_t>(c0) * ldc;
    larf(side, left ? len : m, left ? n : len, v, 1, taui, cc, ldc, work);
  }
}

}  // namespace

template <class T>
void orm2r(Side side, Op op, int m, int n, int k, const T *a, int lda, const T *tau, T *c, int ldc,
           T *work) {
  orm2(Layout::kQr, side, op, m, n, k, a, lda, tau, c, ldc, work);
}
template <class T>
void orml2(Side side, Op op, int m, int n, int k, const T *a, int lda, const T *tau, T *c, int ldc,
           T *work) {
  orm2(Layout::kLq, side, op, m, n, k, a, lda, tau, c, ldc, work);
}
template <class T>
void orm2l(Side side, Op op, int m, int n, int k, const T *a, int lda, const T *tau, T *c, int ldc,
           T *work) {
  orm2(Layout::kQl, side, op, m, n, k, a, lda, tau, c, ldc, work);
}

#define ORB_QR2(T)                                                                           \
  template void geqr2<T>(int, int, T *, int, T *, T *);                                      \
  template void gelq2<T>(int, int, T *, int, T *, T *);                                      \
  template void org2r<T>(int, int, int, T *, int, const T *, T *);                           \
  template void orgl2<T>(int, int, int, T *, int, const T *, T *);                           \
  template void orm2r<T>(Side, Op, int, int, int, const T *, int, const T *, T *, int, T *); \
  template void orml2<T>(Side, Op, int, int, int, const T *, int, const T *, T *, int, T *); \
  template void orm2l<T>(Side, Op, int, int, int, const T *, int, const T *, T *, int, T *);
ORB_QR2(float)
ORB_QR2(double)
ORB_QR2(std::complex<float>)
ORB_QR2(std::complex<double>)
#undef ORB_QR2

}  // namespace orb::lapack
