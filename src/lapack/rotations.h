// Plane rotations: generating them (xLARTG), the 2-by-2 triangular
// singular value problems of the bidiagonal QR (xLAS2, xLASV2), applying a
// sequence of them to a matrix (xLASR), and lasr3, the library's blocked
// application of several sweeps of rotations at once (xlasr3_omp.cpp).
#pragma once

#include <cstdint>

#include "common/options.h"
#include "common/scalar.h"
#include "lapack/householder.h"

namespace orb::lapack {

// PIVOT of xLASR: rotation j turns lines (j, j+1) (variable), (0, j+1)
// (top) or (j, k-1) (bottom), k being the number of lines.
enum class Pivot : std::uint8_t { kVariable, kTop, kBottom };

// A rotation with [c s; -s c] (f; g) = (r; 0), c >= 0 when f is real and
// non-zero; c = 1, s = 0 when g = 0; scaled against overflow and underflow
// (xLARTG).
template <class R>
void lartg(R f, R g, R *c, R *s, R *r);

// The singular values ssmin <= ssmax of the upper triangular [f g; 0 h]
// (xLAS2), without vectors.
template <class R>
void las2(R f, R g, R h, R *ssmin, R *ssmax);

// The singular value decomposition of the upper triangular [f g; 0 h]
// (xLASV2): [csl snl; -snl csl] [f g; 0 h] [csr -snr; snr csr] =
// diag(ssmax, ssmin), |ssmax| >= |ssmin|, signs as published.
template <class R>
void lasv2(R f, R g, R h, R *ssmin, R *ssmax, R *snr, R *csr, R *snl, R *csl);

// A := P A (side left, m lines of n entries each being the rows) or A P^T
// (side right, the n columns of m entries), P = P(k-2) ... P(0) for
// `forward` and P(0) ... P(k-2) for backward, P(j) the rotation [c(j) s(j);
// -s(j) c(j)] in the plane of the lines `pivot` names (xLASR). Real
// cosines and sines for real and complex A.
template <class T>
void lasr(Side side, Pivot pivot, Direct direct, int m, int n, const real_t<T> *c,
          const real_t<T> *s, T *a, int lda);

// One sweep of rotations on adjacent lines, as xLASR with pivot V applies
// them: rotation j (0 <= j < count) turns lines first + j and first + j + 1
// with c[j], s[j], in order j = 0, 1, ... (forward) or count - 1 down to 0.
template <class R>
struct Sweep {
  int first = 0, count = 0;
  Direct direct = Direct::kForward;
  const R *c = nullptr, *s = nullptr;
};

// Applies `k` sweeps, sweep 0 first, to the lines of A (m by n): its
// columns for side right (each sweep as lasr(kRight, kVariable, ...) on
// columns first .. first + count), its rows for side left. Every element
// sees the same operations in the same order as with one lasr call per
// sweep, so the result is the same to the bit, whatever the team; but the
// sweeps go through the matrix together, a block of rows (columns for side
// left) at a time, in a wavefront order that keeps the block in cache.
// The rows (columns) are split over a team from the oracle's crossover
// ("LASR3"); `threads` > 0 fixes the team instead (tests).
template <class T>
void lasr3(Side side, int m, int n, int k, const Sweep<real_t<T>> *sweeps, T *a, int lda,
           int threads = 0);

// The team the last lasr3 call on this thread used (1: serial).
int lasr3_last_team();

}  // namespace orb::lapack
