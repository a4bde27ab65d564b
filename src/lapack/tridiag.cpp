// The symmetric tridiagonal QL/QR iterations (eigen.h): its norm, the
// root-free iteration for the eigenvalues alone, the implicit iteration
// with the eigenvectors, and the positive definite case through the
// bidiagonal QR of its Cholesky factor.
//
// Both iterations work on the unreduced blocks the negligible
// off-diagonals leave, each scaled into a safe range first. Each block is
// chased by QL (a bulge from the bottom up) when its top diagonal entry is
// the smaller in modulus, else by QR, so that the eigenvalues converge from
// the small end; the shift is Wilkinson's, the eigenvalue of the end 2 x 2
// nearer its corner entry. The d and e updates never read Z: the rotations
// of the sweeps are recorded and go to Z a batch of sweeps at a time
// through lasr3, which gives the bits of one pass per sweep.
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>
#include <memory>
#include <utility>

#include "lapack/auxiliary.h"
#include "lapack/copy_scale.h"
#include "lapack/eigen.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/rotations.h"
#include "lapack/svd.h"
#include "lapack/tridiag.h"
#include "service/memory.h"

namespace orb::lapack {

template <class R>
R lanst(Norm norm, int n, const R *d, const R *e) {
  if (n <= 0) return R(0);
  switch (norm) {
    case Norm::kMaxAbs: {
      // A NaN anywhere is the answer.
      R big = std::abs(d[n - 1]);
      for (int i = 0; i < n - 1; ++i) {
        const R a = std::abs(d[i]), b = std::abs(e[i]);
        if (big < a || std::isnan(a)) big = a;
        if (big < b || std::isnan(b)) big = b;
      }
      return big;
    }
    case Norm::kOne:
    case Norm::kInfinity: {
      // Symmetric: the largest absolute row sum is the largest column sum.
      if (n == 1) return std::abs(d[0]);
      R big = std::abs(d[0]) + std::abs(e[0]);
      const R last = std::abs(e[n - 2]) + std::abs(d[n - 1]);
      if (big < last || std::isnan(last)) big = last;
      for (int i = 1; i < n - 1; ++i) {
        const R sum = std::abs(d[i]) + std::abs(e[i]) + std::abs(e[i - 1]);
        if (big < sum || std::isnan(sum)) big = sum;
      }
      return big;
    }
    case Norm::kFrobenius: {
      // Each off-diagonal entry appears twice.
      SumSquares<R> ss;
      for (int i = 0; i < n - 1; ++i) {
        ss.add(e[i]);
        ss.add(e[i]);
      }
      for (int i = 0; i < n; ++i) ss.add(d[i]);
      return ss.root();
    }
  }
  return R(0);
}

namespace {

constexpr int kMaxIter = 30;  // sweeps per eigenvalue, on average, before giving up

// The iteration's constants: the relative precision (rounding), its
// square, the safe minimum and the range into which each block is scaled.
template <class R>
struct Limits {
  R eps = std::numeric_limits<R>::epsilon() / 2;
  R eps2 = eps * eps;
  R safmin = safe_minimum<R>();
  R ssfmax = std::sqrt(R(1) / safmin) / R(3);
  R ssfmin = std::sqrt(safmin) / eps2;
};

// sqrt(x^2 + 1) without overflow.
template <class R>
R hypot1(R x) {
  const R w = std::max(std::abs(x), R(1)), z = std::min(std::abs(x), R(1));
  if (std::isnan(x) || w > std::numeric_limits<R>::max()) return std::abs(x);
  return w * std::sqrt(R(1) + (z / w) * (z / w));
}

// The eigenvalues of [a b; b c] alone, as laev2 gives them.
template <class R>
void eig2(R a, R b, R c, R *rt1, R *rt2) {
  R cs, sn;
  laev2(a, b, c, rt1, rt2, &cs, &sn);
}

// The end of the unreduced block starting at `first`: the first index m
// with e[m] negligible against its diagonal neighbours (set to zero), or
// n - 1.
template <class R>
int split_end(int first, int n, R *d, R *e, R eps) {
  for (int m = first; m < n - 1; ++m) {
    const R tst = std::abs(e[m]);
    if (tst == R(0)) return m;
    if (tst <= (std::sqrt(std::abs(d[m])) * std::sqrt(std::abs(d[m + 1]))) * eps) {
      e[m] = 0;
      return m;
    }
  }
  return n - 1;
}

// A block d[first .. last] (and e[first .. last - 1], `scale_e`) scaled
// into [ssfmin, ssfmax] by its largest entry, and back (d, and e when
// `scale_e`: the root-free iteration leaves squares there).
template <class R>
class BlockScale {
 public:
  BlockScale(const Limits<R> &lim, int first, int last, R *d, R *e, bool scale_e)
      : first_(first), len_(last - first + 1), d_(d), e_(e), scale_e_(scale_e) {
    anorm_ = lanst(Norm::kMaxAbs, len_, d + first, e + first);
    if (anorm_ > lim.ssfmax)
      to_ = lim.ssfmax;
    else if (anorm_ < lim.ssfmin && anorm_ != R(0))
      to_ = lim.ssfmin;
    if (to_ != R(0)) {
      lascl<R>(Part::kAll, anorm_, to_, len_, 1, d + first, len_);
      lascl<R>(Part::kAll, anorm_, to_, len_ - 1, 1, e + first, len_);
    }
  }
  bool zero() const { return anorm_ == R(0); }
  // Back to the original scale: d, and e when `scale_e`.
  void restore() {
    if (to_ == R(0)) return;
    lascl<R>(Part::kAll, to_, anorm_, len_, 1, d_ + first_, len_);
    if (scale_e_) lascl<R>(Part::kAll, to_, anorm_, len_ - 1, 1, e_ + first_, len_);
  }

 private:
  int first_, len_;
  R *d_, *e_;
  bool scale_e_;
  R anorm_ = 0, to_ = 0;
};

// The recorded sweeps on the columns of Z, `batch` of them applied
// together. Sweep k keeps its cosines and sines in two arrays of n - 1
// reals indexed by the rotation's first column.
template <class T>
class ZRotations {
  using R = real_t<T>;

 public:
  ZRotations(int n, T *z, int ldz, R *work, int batch, int threads)
      : n_(n), z_(z), ldz_(ldz), threads_(threads) {
    if (batch > 1) {
      own_ = mem::Buffer<R>(2 * static_cast<std::int64_t>(n - 1) * batch, 64);
      sweeps_ = mem::Buffer<Sweep<R>>(batch, 64);
    }
    if (batch > 1 && own_ && sweeps_) {
      store_ = own_.get();
      batch_ = batch;
    } else {
      store_ = work;  // the caller's 2 (n - 1) reals: one sweep
      batch_ = 1;
    }
  }
  ZRotations(const ZRotations &) = delete;
  ZRotations &operator=(const ZRotations &) = delete;

  R *cosines() const { return store_ + 2 * count_ * std::ptrdiff_t(n_ - 1); }
  R *sines() const { return cosines() + (n_ - 1); }

  // Records the sweep just written: rotations of columns (j, j + 1) for
  // j = first .. first + count - 1.
  void push(int first, int count, Direct direct) {
    at(count_) = Sweep<R>{first, count, direct, cosines() + first, sines() + first};
    if (++count_ == batch_) flush();
  }

  void flush() {
    if (count_ == 0) return;
    lasr3<T>(Side::kRight, n_, n_, count_, &at(0), z_, ldz_, threads_);
    count_ = 0;
  }

 private:
  Sweep<R> &at(int i) { return batch_ > 1 ? sweeps_[i] : single_; }

  int n_;
  T *z_;
  int ldz_, threads_;
  mem::Buffer<R> own_;
  mem::Buffer<Sweep<R>> sweeps_;
  Sweep<R> single_;
  R *store_ = nullptr;
  int batch_ = 1, count_ = 0;
};

// Implicit QL on the block l .. lend (l < lend) until every eigenvalue in
// it has converged or the sweeps run out (`jtot` reaches `maxit`).
template <class R, class Sink>
void ql_block(int l, int lend, R *d, R *e, const Limits<R> &lim, int &jtot, int maxit, Sink *rot) {
  while (l <= lend) {
    // The first negligible off-diagonal from the top.
    int m = l;
    for (; m < lend; ++m) {
      const R tst = std::abs(e[m]) * std::abs(e[m]);
      if (tst <= (lim.eps2 * std::abs(d[m])) * std::abs(d[m + 1]) + lim.safmin) break;
    }
    if (m < lend) e[m] = 0;
    if (m == l) {  // d[l] has converged
      ++l;
      continue;
    }
    if (m == l + 1) {  // a 2 x 2 block, solved directly
      R rt1, rt2;
      if (rot) {
        R c, s;
        laev2(d[l], e[l], d[l + 1], &rt1, &rt2, &c, &s);
        rot->cosines()[l] = c;
        rot->sines()[l] = s;
        rot->push(l, 1, Direct::kBackward);
      } else {
        eig2(d[l], e[l], d[l + 1], &rt1, &rt2);
      }
      d[l] = rt1;
      d[l + 1] = rt2;
      e[l] = 0;
      l += 2;
      continue;
    }
    if (jtot == maxit) return;
    ++jtot;
    // Wilkinson's shift from the top 2 x 2, then the bulge chased up from m.
    R p = d[l];
    R g = (d[l + 1] - p) / (R(2) * e[l]);
    R r = hypot1(g);
    g = d[m] - p + (e[l] / (g + std::copysign(r, g)));
    R s = 1, c = 1;
    p = 0;
    R *cw = rot ? rot->cosines() : nullptr, *sw = rot ? rot->sines() : nullptr;
    for (int i = m - 1; i >= l; --i) {
      const R f = s * e[i], b = c * e[i];
      lartg(g, f, &c, &s, &r);
      if (i != m - 1) e[i + 1] = r;
      g = d[i + 1] - p;
      r = (d[i] - g) * s + R(2) * c * b;
      p = s * r;
      d[i + 1] = g + p;
      g = c * r - b;
      if (rot) {
        cw[i] = c;
        sw[i] = -s;
      }
    }
    if (rot) rot->push(l, m - l, Direct::kBackward);
    d[l] -= p;
    e[l] = g;
  }
}

// Implicit QR on the block lend .. l (l > lend), the mirror image.
template <class R, class Sink>
void qr_block(int l, int lend, R *d, R *e, const Limits<R> &lim, int &jtot, int maxit, Sink *rot) {
  while (l >= lend) {
    int m = l;
    for (; m > lend; --m) {
      const R tst = std::abs(e[m - 1]) * std::abs(e[m - 1]);
      if (tst <= (lim.eps2 * std::abs(d[m])) * std::abs(d[m - 1]) + lim.safmin) break;
    }
    if (m > lend) e[m - 1] = 0;
    if (m == l) {
      --l;
      continue;
    }
    if (m == l - 1) {
      R rt1, rt2;
      if (rot) {
        R c, s;
        laev2(d[l - 1], e[l - 1], d[l], &rt1, &rt2, &c, &s);
        rot->cosines()[m] = c;
        rot->sines()[m] = s;
        rot->push(m, 1, Direct::kForward);
      } else {
        eig2(d[l - 1], e[l - 1], d[l], &rt1, &rt2);
      }
      d[l - 1] = rt1;
      d[l] = rt2;
      e[l - 1] = 0;
      l -= 2;
      continue;
    }
    if (jtot == maxit) return;
    ++jtot;
    R p = d[l];
    R g = (d[l - 1] - p) / (R(2) * e[l - 1]);
    R r = hypot1(g);
    g = d[m] - p + (e[l - 1] / (g + std::copysign(r, g)));
    R s = 1, c = 1;
    p = 0;
    R *cw = rot ? rot->cosines() : nullptr, *sw = rot ? rot->sines() : nullptr;
    for (int i = m; i < l; ++i) {
      const R f = s * e[i], b = c * e[i];
      lartg(g, f, &c, &s, &r);
      if (i != m) e[i - 1] = r;
      g = d[i] - p;
      r = (d[i + 1] - g) * s + R(2) * c * b;
      p = s * r;
      d[i] = g + p;
      g = c * r - b;
      if (rot) {
        cw[i] = c;
        sw[i] = s;
      }
    }
    if (rot) rot->push(m, l - m, Direct::kForward);
    d[l] -= p;
    e[l - 1] = g;
  }
}

template <class R>
int count_nonzero(int n, const R *e) {
  int info = 0;
  for (int i = 0; i < n - 1; ++i)
    if (e[i] != R(0)) ++info;
  return info;
}

// The root-free QL sweeps on the block l .. lend (l < lend), e holding the
// squares of the off-diagonals.
template <class R>
void sterf_ql(int l, int lend, R *d, R *e, const Limits<R> &lim, int &jtot, int maxit) {
  while (l <= lend) {
    int m = l;
    for (; m < lend; ++m)
      if (std::abs(e[m]) <= lim.eps2 * std::abs(d[m] * d[m + 1])) break;
    if (m < lend) e[m] = 0;
    if (m == l) {
      ++l;
      continue;
    }
    if (m == l + 1) {
      R rt1, rt2;
      eig2(d[l], std::sqrt(e[l]), d[l + 1], &rt1, &rt2);
      d[l] = rt1;
      d[l + 1] = rt2;
      e[l] = 0;
      l += 2;
      continue;
    }
    if (jtot == maxit) return;
    ++jtot;
    const R rte = std::sqrt(e[l]);
    R sigma = (d[l + 1] - d[l]) / (R(2) * rte);
    const R r0 = hypot1(sigma);
    sigma = d[l] - (rte / (sigma + std::copysign(r0, sigma)));
    R c = 1, s = 0;
    R gamma = d[m] - sigma;
    R p = gamma * gamma;
    for (int i = m - 1; i >= l; --i) {
      const R bb = e[i], r = p + bb;
      if (i != m - 1) e[i + 1] = s * r;
      const R oldc = c;
      c = p / r;
      s = bb / r;
      const R oldgam = gamma, alpha = d[i];
      gamma = c * (alpha - sigma) - s * oldgam;
      d[i + 1] = oldgam + (alpha - gamma);
      p = c != R(0) ? (gamma * gamma) / c : oldc * bb;
    }
    e[l] = s * p;
    d[l] = sigma + gamma;
  }
}

// The root-free QR sweeps on the block lend .. l (l > lend).
template <class R>
void sterf_qr(int l, int lend, R *d, R *e, const Limits<R> &lim, int &jtot, int maxit) {
  while (l >= lend) {
    int m = l;
    for (; m > lend; --m)
      if (std::abs(e[m - 1]) <= lim.eps2 * std::abs(d[m] * d[m - 1])) break;
    if (m > lend) e[m - 1] = 0;
    if (m == l) {
      --l;
      continue;
    }
    if (m == l - 1) {
      R rt1, rt2;
      eig2(d[l], std::sqrt(e[l - 1]), d[l - 1], &rt1, &rt2);
      d[l] = rt1;
      d[l - 1] = rt2;
      e[l - 1] = 0;
      l -= 2;
      continue;
    }
    if (jtot == maxit) return;
    ++jtot;
    const R rte = std::sqrt(e[l - 1]);
    R sigma = (d[l - 1] - d[l]) / (R(2) * rte);
    const R r0 = hypot1(sigma);
    sigma = d[l] - (rte / (sigma + std::copysign(r0, sigma)));
    R c = 1, s = 0;
    R gamma = d[m] - sigma;
    R p = gamma * gamma;
    for (int i = m; i < l; ++i) {
      const R bb = e[i], r = p + bb;
      if (i != m) e[i - 1] = s * r;
      const R oldc = c;
      c = p / r;
      s = bb / r;
      const R oldgam = gamma, alpha = d[i + 1];
      gamma = c * (alpha - sigma) - s * oldgam;
      d[i] = oldgam + (alpha - gamma);
      p = c != R(0) ? (gamma * gamma) / c : oldc * bb;
    }
    e[l - 1] = s * p;
    d[l] = sigma + gamma;
  }
}

}  // namespace

template <class R>
int sterf(int n, R *d, R *e) {
  if (n <= 1) return 0;
  const Limits<R> lim;
  const int maxit = n * kMaxIter;
  int jtot = 0;
  for (int first = 0; first < n;) {
    if (first > 0) e[first - 1] = 0;
    const int last = split_end(first, n, d, e, lim.eps);
    const int l = first, lend = last;
    first = last + 1;
    if (lend == l) continue;
    // Only d is scaled back: e ends as squares, zero where converged.
    BlockScale<R> scale(lim, l, lend, d, e, false);
    if (scale.zero()) continue;
    for (int i = l; i < lend; ++i) e[i] *= e[i];
    if (std::abs(d[lend]) < std::abs(d[l]))
      sterf_qr(lend, l, d, e, lim, jtot, maxit);
    else
      sterf_ql(l, lend, d, e, lim, jtot, maxit);
    scale.restore();
    if (jtot >= maxit) return count_nonzero(n, e);
  }
  std::sort(d, d + n);
  return 0;
}

template <class T>
int steqr_batched(CompQ compz, int n, real_t<T> *d, real_t<T> *e, T *z, int ldz, real_t<T> *work,
                  int batch, int threads) {
  using R = real_t<T>;
  if (n <= 0) return 0;
  const bool vectors = compz != CompQ::kNone;
  if (n == 1) {
    if (compz == CompQ::kInitial) z[0] = T(1);
    return 0;
  }
  if (compz == CompQ::kInitial) laset<T>(Part::kAll, n, n, T(0), T(1), z, ldz);

  const Limits<R> lim;
  const int maxit = n * kMaxIter;
  int jtot = 0;
  std::unique_ptr<ZRotations<T>> rot;
  if (vectors) rot = std::make_unique<ZRotations<T>>(n, z, ldz, work, std::max(batch, 1), threads);
  for (int first = 0; first < n;) {
    if (first > 0) e[first - 1] = 0;
    const int last = split_end(first, n, d, e, lim.eps);
    const int l = first, lend = last;
    first = last + 1;
    if (lend == l) continue;
    BlockScale<R> scale(lim, l, lend, d, e, true);
    if (scale.zero()) continue;
    if (std::abs(d[lend]) < std::abs(d[l]))
      qr_block(lend, l, d, e, lim, jtot, maxit, rot.get());
    else
      ql_block(l, lend, d, e, lim, jtot, maxit, rot.get());
    scale.restore();
    if (jtot >= maxit) {
      if (rot) rot->flush();
      return count_nonzero(n, e);
    }
  }
  if (!rot) {
    std::sort(d, d + n);
    return 0;
  }
  rot->flush();
  // Ascending order, by selection: at most n - 1 swaps of vectors.
  for (int i = 0; i < n - 1; ++i) {
    int k = i;
    R p = d[i];
    for (int j = i + 1; j < n; ++j)
      if (d[j] < p) {
        k = j;
        p = d[j];
      }
    if (k != i) {
      d[k] = d[i];
      d[i] = p;
      std::swap_ranges(z + static_cast<std::ptrdiff_t>(i) * ldz,
                       z + static_cast<std::ptrdiff_t>(i) * ldz + n,
                       z + static_cast<std::ptrdiff_t>(k) * ldz);
    }
  }
  return 0;
}

template <class T>
int steqr(CompQ compz, int n, real_t<T> *d, real_t<T> *e, T *z, int ldz, real_t<T> *work) {
  return steqr_batched(compz, n, d, e, z, ldz, work, oracle(kBlockSize, name<T>("STEQR")), 0);
}

template <class T>
int pteqr(CompQ compz, int n, real_t<T> *d, real_t<T> *e, T *z, int ldz, real_t<T> *work) {
  using R = real_t<T>;
  if (n <= 0) return 0;
  const bool vectors = compz != CompQ::kNone;
  if (n == 1) {
    if (vectors) z[0] = T(1);
    return 0;
  }
  if (compz == CompQ::kInitial) laset<T>(Part::kAll, n, n, T(0), T(1), z, ldz);
  // T = L D L^T (xPTTRF); INFO i when the leading minor of order i is not
  // positive definite.
  for (int i = 0; i < n - 1; ++i) {
    if (d[i] <= R(0)) return i + 1;
    const R ei = e[i];
    e[i] = ei / d[i];
    d[i + 1] -= e[i] * ei;
  }
  if (d[n - 1] <= R(0)) return n;
  // The Cholesky factor L D^1/2 is lower bidiagonal: its singular values
  // are the square roots of T's eigenvalues, its left vectors T's vectors.
  for (int i = 0; i < n - 1; ++i) {
    d[i] = std::sqrt(d[i]);
    e[i] *= d[i];
  }
  d[n - 1] = std::sqrt(d[n - 1]);
  T vt_dummy[1] = {T(0)}, c_dummy[1] = {T(0)};
  const int info =
      bdsqr<T>(Uplo::kLower, n, 0, vectors ? n : 0, 0, d, e, vt_dummy, 1, z, ldz, c_dummy, 1, work);
  if (info != 0) return n + info;
  for (int i = 0; i < n; ++i) d[i] *= d[i];
  return 0;
}

template float lanst(Norm, int, const float *, const float *);
template double lanst(Norm, int, const double *, const double *);
template int sterf(int, float *, float *);
template int sterf(int, double *, double *);

#define ORB_STEQR(T)                                                                           \
  template int steqr(CompQ, int, real_t<T> *, real_t<T> *, T *, int, real_t<T> *);             \
  template int steqr_batched(CompQ, int, real_t<T> *, real_t<T> *, T *, int, real_t<T> *, int, \
                             int);                                                             \
  template int pteqr(CompQ, int, real_t<T> *, real_t<T> *, T *, int, real_t<T> *);
ORB_STEQR(float)
ORB_STEQR(double)
ORB_STEQR(std::complex<float>)
ORB_STEQR(std::complex<double>)
#undef ORB_STEQR

}  // namespace orb::lapack
