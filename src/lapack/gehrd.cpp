// The reduction of a general matrix to upper Hessenberg form, A = Q H Q^H,
// and the explicit factor Q (nonsym.h: gehrd, orghr).
//
// Only rows and columns ilo..ihi are reduced (balancing leaves the rest
// triangular already). The blocked reduction takes nb columns at a time:
// the panel (lahr2) builds the block reflector I - V T V^H and Y = A V T,
// so that the trailing update A := (I - V T V^H)^H (A - Y V^H) is one
// product with Y from the right and one block reflector from the left,
// both on the level-3 routines. The last columns, and small matrices, are
// reduced one reflector at a time (gehd2). The panel's one long product,
// the whole active block times each new reflector, is shared out over the
// team by rows.
#include <omp.h>

#include <algorithm>
#include <complex>
#include <cstddef>

#include "lapack/auxiliary.h"
#include "lapack/blas_calls.h"
#include "lapack/householder.h"
#include "lapack/nonsym.h"
#include "lapack/oracle.h"
#include "lapack/qr.h"
#include "service/threading.h"

namespace orb::lapack {
namespace {

inline std::ptrdiff_t at(int i, int j, int ld) {
  return i + static_cast<std::ptrdiff_t>(j) * ld;
}

// The panel's T factor is kept in the workspace after the n-by-nb Y, with
// the published leading dimension; blocks are at most kMaxBlock wide.
constexpr int kMaxBlock = 64;
constexpr int kLdt = kMaxBlock + 1;
constexpr std::int64_t kTSize = std::int64_t{kLdt} * kMaxBlock;

template <class T>
T conj_of(T x) {
  if constexpr (is_complex_v<T>)
    return std::conj(x);
  else
    return x;
}

// Columns ilo-1 .. ihi-2 (0-based) one reflector at a time (xGEHD2);
// work has n entries.
template <class T>
void gehd2(int n, int ilo, int ihi, T *a, int lda, T *tau, T *work) {
  for (int i = ilo - 1; i < ihi - 1; ++i) {
    T &alpha = a[at(i + 1, i, lda)];
    larfg(ihi - 1 - i, alpha, a + at(std::min(i + 2, n - 1), i, lda), 1, tau[i]);
    const T beta = alpha;
    alpha = T(1);
    // H from the right on rows 0..ihi-1, H^H from the left on columns i+1..n-1.
    larf(Side::kRight, ihi, ihi - 1 - i, &alpha, 1, tau[i], a + at(0, i + 1, lda), lda, work);
    larf(Side::kLeft, ihi - 1 - i, n - 1 - i, &alpha, 1, conj_of(tau[i]), a + at(i + 1, i + 1, lda),
         lda, work);
    alpha = beta;
  }
}

// The rows of one slice of the split product start at a multiple of this,
// so every entry meets the kernel's row tiles exactly as when one thread
// makes the whole product: the result does not depend on the team.
constexpr int kSliceRows = 256;

// y := A x, A m x n: by the calling thread, or with the rows shared out over
// the team when the panel's rows reach the oracle's crossover (query 3 of
// "LAHR2"), each thread making the product of its own slice.
template <class T>
void panel_product(int m, int n, const T *a, int lda, const T *x, T *y, int team) {
  const int slices = std::min(team, (m + kSliceRows - 1) / kSliceRows);
  if (slices <= 1 || n <= 0) {
    blas::level2::gemv(Op::kNone, m, n, T(1), a, lda, x, 1, T(0), y, 1);
    return;
  }
  const int tiles = (m + kSliceRows - 1) / kSliceRows;
#pragma omp parallel num_threads(slices)
  {
    const int s = omp_get_thread_num(), got = omp_get_num_threads();
    const int r0 = std::min(m, static_cast<int>(std::int64_t{tiles} * s / got) * kSliceRows);
    const int r1 = std::min(m, static_cast<int>(std::int64_t{tiles} * (s + 1) / got) * kSliceRows);
    if (r1 > r0)
      blas::level2::gemv(Op::kNone, r1 - r0, n, T(1), a + r0, lda, x, 1, T(0), y + r0, 1);
  }
}

template <class T>
int panel_team(int rows) {
  if (omp_in_parallel()) return 1;
  const int team = orb::threads::max_threads();
  return team > 1 && rows >= oracle(kCrossover, name<T>("LAHR2"), rows) ? team : 1;
}

// The panel (xLAHR2): reduces the nb columns at a (column k-1 of the
// matrix, 0-based, whose first k rows are not touched by the reflectors)
// so that the elements below row k + j of column j vanish, rows 0..n-1
// taking part. Returns the reflectors below the subdiagonal, their factor
// T (upper, nb by nb) and Y = A V T (n by nb); the subdiagonal entry of the
// last column is left in place.
template <class T>
void lahr2(int n, int k, int nb, T *a, int lda, T *tau, T *t, int ldt, T *y, int ldy) {
  if (n <= 1) return;
  const auto A = [&](int i, int j) { return a + at(i, j, lda); };
  const auto Y = [&](int i, int j) { return y + at(i, j, ldy); };
  const auto Tm = [&](int i, int j) { return t + at(i, j, ldt); };
  T *scratch = Tm(0, nb - 1);  // T's last column, free until the last step
  const int team = panel_team<T>(n - k);
  T beta{};
  for (int j = 0; j < nb; ++j) {
    if (j > 0) {
      // Column j of A - Y V^H: the previous reflectors' right action.
      lacgv(j, A(k + j - 1, 0), lda);
      blas::level2::gemv(Op::kNone, n - k, j, T(-1), Y(k, 0), ldy, A(k + j - 1, 0), lda, T(1),
                         A(k, j), 1);
      lacgv(j, A(k + j - 1, 0), lda);
      // Then their left action (I - V T^H V^H) on it, with V = (V1; V2):
      // w := V^H b, w := T^H w, b -= V w.
      blas::copy(j, A(k, j), 1, scratch, 1);
      blas::level2::trmv(false, Op::kConjTrans, true, j, A(k, 0), lda, scratch, 1);
      blas::level2::gemv(Op::kConjTrans, n - k - j, j, T(1), A(k + j, 0), lda, A(k + j, j), 1, T(1),
                         scratch, 1);
      blas::level2::trmv(true, Op::kConjTrans, false, j, t, ldt, scratch, 1);
      blas::level2::gemv(Op::kNone, n - k - j, j, T(-1), A(k + j, 0), lda, scratch, 1, T(1),
                         A(k + j, j), 1);
      blas::level2::trmv(false, Op::kNone, true, j, A(k, 0), lda, scratch, 1);
      blas::axpy(j, T(-1), scratch, 1, A(k, j), 1);
      *A(k + j - 1, j - 1) = beta;
    }
    // The reflector that annihilates column j below row k + j.
    larfg(n - k - j, *A(k + j, j), A(std::min(k + j + 1, n - 1), j), 1, tau[j]);
    beta = *A(k + j, j);
    *A(k + j, j) = T(1);
    // Y's column j below row k: tau (A v - Y T(:, j) part).
    panel_product(n - k, n - k - j, A(k, j + 1), lda, A(k + j, j), Y(k, j), team);
    if (j > 0) {
      blas::level2::gemv(Op::kConjTrans, n - k - j, j, T(1), A(k + j, 0), lda, A(k + j, j), 1, T(0),
                         Tm(0, j), 1);
      blas::level2::gemv(Op::kNone, n - k, j, T(-1), Y(k, 0), ldy, Tm(0, j), 1, T(1), Y(k, j), 1);
    }
    blas::scal(n - k, tau[j], Y(k, j), 1);
    // T's column j: -tau T V^H v.
    if (j > 0) {
      blas::scal(j, -tau[j], Tm(0, j), 1);
      blas::level2::trmv(true, Op::kNone, false, j, t, ldt, Tm(0, j), 1);
    }
    *Tm(j, j) = tau[j];
  }
  *A(k + nb - 1, nb - 1) = beta;
  // Y's first k rows: A(0:k, :) V T, V's unit triangle from the panel and
  // its rectangle from the rows below.
  for (int j = 0; j < nb; ++j) blas::copy(k, A(0, j + 1), 1, Y(0, j), 1);
  trmm(Triangular{false, false, Op::kNone, true}, k, nb, T(1), A(k, 0), lda, y, ldy);
  if (n > k + nb)
    gemm(Op::kNone, Op::kNone, k, nb, n - k - nb, T(1), A(0, nb + 1), lda, A(k + nb, 0), lda, T(1),
         y, ldy);
  trmm(Triangular{false, true, Op::kNone, false}, k, nb, T(1), t, ldt, y, ldy);
}

template <class T>
int block_size(int n, int ilo, int ihi) {
  return std::min(kMaxBlock, oracle(kBlockSize, name<T>("GEHRD"), n, ilo, ihi));
}

}  // namespace

template <class T>
std::int64_t gehrd_worksize(int n, int ilo, int ihi) {
  if (ihi - ilo + 1 <= 1) return 1;
  return std::int64_t{n} * block_size<T>(n, ilo, ihi) + kTSize;
}

template <class T>
void gehrd(int n, int ilo, int ihi, T *a, int lda, T *tau, T *work, int lwork) {
  const std::int64_t best = gehrd_worksize<T>(n, ilo, ihi);
  // The reflectors outside ilo..ihi are the identity.
  for (int i = 0; i < ilo - 1; ++i) tau[i] = T(0);
  for (int i = std::max(1, ihi) - 1; i < n - 1; ++i) tau[i] = T(0);
  const int nh = ihi - ilo + 1;
  if (nh <= 1) {
    work[0] = T(1);
    return;
  }
  int nb = block_size<T>(n, ilo, ihi);
  int nbmin = 2, nx = 0;
  if (nb > 1 && nb < nh) {
    nx = std::max(nb, oracle(kCrossover, name<T>("GEHRD"), n, ilo, ihi));
    if (nx < nh && lwork < best) {
      // A short WORK narrows the blocks, down to the unblocked code.
      nbmin = std::max(2, oracle(kMinBlockSize, name<T>("GEHRD"), n, ilo, ihi));
      if (lwork >= std::int64_t{n} * nbmin + kTSize)
        nb = static_cast<int>((lwork - kTSize) / n);
      else
        nb = 1;
    }
  }
  const int ldwork = n;
  int i = ilo;  // 1-based: the first column the unblocked code takes
  if (nb >= nbmin && nb < nh) {
    T *t = work + std::int64_t{n} * nb;
    for (; i <= ihi - 1 - nx; i += nb) {
      const int ib = std::min(nb, ihi - i);
      const int c = i - 1;  // the panel's first column, 0-based
      lahr2(ihi, i, ib, a + at(0, c, lda), lda, tau + c, t, kLdt, work, ldwork);
      // A(0:ihi, c+ib:ihi) -= Y V^H, V's last row's unit in place of the
      // subdiagonal entry it shares.
      T &corner = a[at(c + ib, c + ib - 1, lda)];
      const T beta = corner;
      corner = T(1);
      gemm(Op::kNone, Op::kConjTrans, ihi, ihi - c - ib, ib, T(-1), work, ldwork,
           a + at(c + ib, c, lda), lda, T(1), a + at(0, c + ib, lda), lda);
      corner = beta;
      // The panel's own columns above it: A(0:i, c+1:c+ib) -= Y V1^H.
      trmm(Triangular{false, false, Op::kConjTrans, true}, i, ib - 1, T(1), a + at(c + 1, c, lda),
           lda, work, ldwork);
      for (int j = 0; j < ib - 1; ++j)
        blas::axpy(i, T(-1), work + at(0, j, ldwork), 1, a + at(0, c + j + 1, lda), 1);
      // The block reflector from the left on the columns right of the panel.
      larfb(Side::kLeft, Op::kConjTrans, Direct::kForward, Storev::kColumns, ihi - i, n - c - ib,
            ib, a + at(c + 1, c, lda), lda, t, kLdt, a + at(c + 1, c + ib, lda), lda, work, ldwork);
    }
  }
  gehd2(n, i, ihi, a, lda, tau, work);
  work[0] = T(static_cast<real_t<T>>(best));
}

template <class T>
std::int64_t orghr_worksize(int n, int ilo, int ihi) {
  const int nh = ihi - ilo;
  (void)n;
  return std::max<std::int64_t>(1, orgqr_worksize<T>(nh, nh, nh));
}

template <class T>
void orghr(int n, int ilo, int ihi, T *a, int lda, const T *tau, T *work, int lwork) {
  const std::int64_t best = orghr_worksize<T>(n, ilo, ihi);
  if (n == 0) {
    work[0] = T(1);
    return;
  }
  // The reflectors move one column right, to the positions of a QR of
  // order nh held at (ilo, ilo); Q is the identity outside that block.
  for (int j = ihi - 1; j >= ilo; --j) {
    for (int r = 0; r < j; ++r) a[at(r, j, lda)] = T(0);
    for (int r = j + 1; r < ihi; ++r) a[at(r, j, lda)] = a[at(r, j - 1, lda)];
    for (int r = ihi; r < n; ++r) a[at(r, j, lda)] = T(0);
  }
  for (int j = 0; j < ilo; ++j) {
    for (int r = 0; r < n; ++r) a[at(r, j, lda)] = T(0);
    a[at(j, j, lda)] = T(1);
  }
  for (int j = ihi; j < n; ++j) {
    for (int r = 0; r < n; ++r) a[at(r, j, lda)] = T(0);
    a[at(j, j, lda)] = T(1);
  }
  const int nh = ihi - ilo;
  if (nh > 0) orgqr(nh, nh, nh, a + at(ilo, ilo, lda), lda, tau + ilo - 1, work, lwork);
  work[0] = T(static_cast<real_t<T>>(best));
}

#define ORB_GEHRD(T)                                              \
  template std::int64_t gehrd_worksize<T>(int, int, int);         \
  template void gehrd<T>(int, int, int, T *, int, T *, T *, int); \
  template std::int64_t orghr_worksize<T>(int, int, int);         \
  template void orghr<T>(int, int, int, T *, int, const T *, T *, int);
ORB_GEHRD(float)
ORB_GEHRD(std::complex<float>)
#undef ORB_GEHRD

}  // namespace orb::lapack
