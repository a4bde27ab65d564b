// The bidiagonal QR iteration (svd.h): implicit zero-shift and shifted QR
// sweeps on the unreduced blocks of the bidiagonal, each chased from the
// larger end towards the smaller, with the relative-accuracy convergence
// criteria, until every off-diagonal is negligible; then the singular
// values made non-negative and sorted, decreasing, with their vectors.
//
// The d and e updates never read the vectors, so the rotations of the
// sweeps are only recorded, and go to VT, U and C a batch of sweeps at a
// time through lasr3, which passes over each matrix once per batch instead
// of once per sweep. Without vectors the values come from dqds (lasq1),
// the iteration only finishing what dqds may leave.
#include "lapack/svd.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>
#include <utility>

#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/rotations.h"
#include "service/memory.h"

namespace orb::lapack {
namespace {

// The recorded sweeps and where they go. Each sweep leaves two sequences
// of rotations: one for the rows of VT and one for the columns of U and
// the rows of C.
template <class T>
class Pending {
  using R = real_t<T>;

 public:
  Pending(int n, int ncvt, int nru, int ncc, T *vt, int ldvt, T *u, int ldu, T *c, int ldc, R *work,
          int batch)
      : n_(n),
        ncvt_(ncvt),
        nru_(nru),
        ncc_(ncc),
        vt_(vt),
        ldvt_(ldvt),
        u_(u),
        ldu_(ldu),
        c_(c),
        ldc_(ldc) {
    const std::int64_t per = 4 * static_cast<std::int64_t>(n - 1);
    if (batch > 1) {
      own_ = mem::Buffer<R>(per * batch, 64);
      vt_sweeps_ = mem::Buffer<Sweep<R>>(batch, 64);
      uc_sweeps_ = mem::Buffer<Sweep<R>>(batch, 64);
    }
    if (batch > 1 && own_ && vt_sweeps_ && uc_sweeps_) {
      store_ = own_.get();
      batch_ = batch;
    } else {
      store_ = work;  // the caller's 4 (n - 1) reals: one sweep
      batch_ = 1;
      vt_sweeps_.reset();
      uc_sweeps_.reset();
    }
  }

  // The four arrays of n - 1 reals the next sweep writes: the cosines and
  // sines of its first and of its second sequence.
  R *array(int which) const { return store_ + (4 * count_ + which) * std::ptrdiff_t(n_ - 1); }

  // Records the sweep just written into array(0 .. 3): `count` rotations of
  // lines first .. first + count. A forward sweep's first sequence goes to
  // VT and its second to U and C; a backward sweep's the other way round.
  void push(int first, int count, Direct direct) {
    const bool fwd = direct == Direct::kForward;
    Sweep<R> v{first, count, direct, array(fwd ? 0 : 2), array(fwd ? 1 : 3)};
    Sweep<R> w{first, count, direct, array(fwd ? 2 : 0), array(fwd ? 3 : 1)};
    vt_at(count_) = v;
    uc_at(count_) = w;
    if (++count_ == batch_) flush();
  }

  void flush() {
    if (count_ == 0) return;
    if (ncvt_ > 0) lasr3<T>(Side::kLeft, n_, ncvt_, count_, &vt_at(0), vt_, ldvt_);
    if (nru_ > 0) lasr3<T>(Side::kRight, nru_, n_, count_, &uc_at(0), u_, ldu_);
    if (ncc_ > 0) lasr3<T>(Side::kLeft, n_, ncc_, count_, &uc_at(0), c_, ldc_);
    count_ = 0;
  }

 private:
  Sweep<R> &vt_at(int i) { return batch_ > 1 ? vt_sweeps_[i] : single_[0]; }
  Sweep<R> &uc_at(int i) { return batch_ > 1 ? uc_sweeps_[i] : single_[1]; }

  int n_, ncvt_, nru_, ncc_;
  T *vt_;
  int ldvt_;
  T *u_;
  int ldu_;
  T *c_;
  int ldc_;
  mem::Buffer<R> own_;
  mem::Buffer<Sweep<R>> vt_sweeps_, uc_sweeps_;
  Sweep<R> single_[2];
  R *store_ = nullptr;
  int batch_ = 1, count_ = 0;
};

template <class T>
void scale_row_negative(int len, T *x, int inc) {
  for (int j = 0; j < len; ++j)
    x[static_cast<std::ptrdiff_t>(j) * inc] = -x[static_cast<std::ptrdiff_t>(j) * inc];
}

template <class T>
void swap_lines(int len, T *x, T *y, int inc) {
  for (int j = 0; j < len; ++j)
    std::swap(x[static_cast<std::ptrdiff_t>(j) * inc], y[static_cast<std::ptrdiff_t>(j) * inc]);
}

// The QR iteration on an upper bidiagonal of order n >= 2, rotations
// recorded in `rot` when it is not null. Returns 0, or the number of
// off-diagonals not converged when the iteration limit is reached.
template <class R, class Sink>
int iterate(int n, R *d, R *e, Sink *rot) {
  constexpr R eps = std::numeric_limits<R>::epsilon() / 2;
  constexpr R unfl = std::numeric_limits<R>::min();
  constexpr int kMaxIter = 6;  // sweeps per value, on average, before giving up
  const R tolmul = std::max(R(10), std::min(R(100), std::pow(eps, R(-0.125))));
  const R tol = tolmul * eps;

  // The threshold below which an off-diagonal is taken as zero: tol times
  // an estimate of the smallest singular value, or a few underflows.
  R smin_est = std::abs(d[0]);
  if (smin_est != R(0)) {
    R mu = smin_est;
    for (int i = 1; i < n; ++i) {
      mu = std::abs(d[i]) * (mu / (mu + std::abs(e[i - 1])));
      smin_est = std::min(smin_est, mu);
      if (smin_est == R(0)) break;
    }
  }
  smin_est /= std::sqrt(R(n));
  const R thresh = std::max(tol * smin_est, R(kMaxIter) * (R(n) * (R(n) * unfl)));

  const long long maxit = static_cast<long long>(kMaxIter) * n * n;
  long long iter = 0;
  int oldll = -1, oldm = -1;
  bool top_down = true;  // the direction of the sweeps on the current block
  int m = n - 1;         // the last row of the part not yet converged
  while (m > 0) {
    if (iter >= maxit) {
      int info = 0;
      for (int i = 0; i < n - 1; ++i)
        if (e[i] != R(0)) ++info;
      return info;
    }
    // The unreduced block ll .. m at the bottom.
    R smax = std::abs(d[m]);
    int ll = 0;
    bool split = false;
    for (int l = m - 1; l >= 0; --l) {
      const R abss = std::abs(d[l]), abse = std::abs(e[l]);
      if (abse <= thresh) {
        e[l] = 0;
        ll = l + 1;
        split = true;
        break;
      }
      smax = std::max(smax, std::max(abss, abse));
    }
    if (split && ll == m) {
      --m;
      continue;
    }
    if (ll == m - 1) {
      // A 2 x 2 block: its singular value decomposition directly.
      R sigmn, sigmx, sinr, cosr, sinl, cosl;
      lasv2(d[m - 1], e[m - 1], d[m], &sigmn, &sigmx, &sinr, &cosr, &sinl, &cosl);
      d[m - 1] = sigmx;
      e[m - 1] = 0;
      d[m] = sigmn;
      if (rot) {
        rot->array(0)[0] = cosr;
        rot->array(1)[0] = sinr;
        rot->array(2)[0] = cosl;
        rot->array(3)[0] = sinl;
        rot->push(m - 1, 1, Direct::kForward);
      }
      m -= 2;
      continue;
    }
    // A new block: chase the bulge from the larger end of the diagonal.
    if (ll > oldm || m < oldll) top_down = std::abs(d[ll]) >= std::abs(d[m]);

    // Convergence: the off-diagonal at the far end of the chase against
    // its diagonal, then each against a running estimate of the smallest
    // singular value (the relative-accuracy test).
    R sminl;
    bool converged = false;
    if (top_down) {
      if (std::abs(e[m - 1]) <= tol * std::abs(d[m])) {
        e[m - 1] = 0;
        continue;
      }
      R mu = std::abs(d[ll]);
      sminl = mu;
      for (int l = ll; l < m; ++l) {
        if (std::abs(e[l]) <= tol * mu) {
          e[l] = 0;
          converged = true;
          break;
        }
        mu = std::abs(d[l + 1]) * (mu / (mu + std::abs(e[l])));
        sminl = std::min(sminl, mu);
      }
    } else {
      if (std::abs(e[ll]) <= tol * std::abs(d[ll])) {
        e[ll] = 0;
        continue;
      }
      R mu = std::abs(d[m]);
      sminl = mu;
      for (int l = m - 1; l >= ll; --l) {
        if (std::abs(e[l]) <= tol * mu) {
          e[l] = 0;
          converged = true;
          break;
        }
        mu = std::abs(d[l]) * (mu / (mu + std::abs(e[l])));
        sminl = std::min(sminl, mu);
      }
    }
    if (converged) continue;
    oldll = ll;
    oldm = m;

    // The shift: zero when it would not be accurate relative to the
    // smallest singular value, else the smaller singular value of the 2 x 2
    // at the end the chase goes to.
    R shift = 0, r;
    if (!(R(n) * tol * (sminl / smax) <= std::max(eps, R(0.01) * tol))) {
      R sll;
      if (top_down) {
        sll = std::abs(d[ll]);
        las2(d[m - 1], e[m - 1], d[m], &shift, &r);
      } else {
        sll = std::abs(d[m]);
        las2(d[ll], e[ll], d[ll + 1], &shift, &r);
      }
      if (sll > R(0) && (shift / sll) * (shift / sll) < eps) shift = 0;
    }
    iter += m - ll;

    R *w0 = rot ? rot->array(0) : nullptr, *w1 = rot ? rot->array(1) : nullptr;
    R *w2 = rot ? rot->array(2) : nullptr, *w3 = rot ? rot->array(3) : nullptr;
    auto keep = [&](int k, R a, R b, R c, R s) {
      if (rot) {
        w0[k] = a;
        w1[k] = b;
        w2[k] = c;
        w3[k] = s;
      }
    };
    if (shift == R(0)) {
      // The zero-shift sweep, which keeps the small values accurate.
      R cs = 1, sn = 0, oldcs = 1, oldsn = 0;
      if (top_down) {
        for (int i = ll; i < m; ++i) {
          lartg(d[i] * cs, e[i], &cs, &sn, &r);
          if (i > ll) e[i - 1] = oldsn * r;
          lartg(oldcs * r, d[i + 1] * sn, &oldcs, &oldsn, &d[i]);
          keep(i - ll, cs, sn, oldcs, oldsn);
        }
        const R h = d[m] * cs;
        d[m] = h * oldcs;
        e[m - 1] = h * oldsn;
        if (rot) rot->push(ll, m - ll, Direct::kForward);
        if (std::abs(e[m - 1]) <= thresh) e[m - 1] = 0;
      } else {
        for (int i = m; i > ll; --i) {
          lartg(d[i] * cs, e[i - 1], &cs, &sn, &r);
          if (i < m) e[i] = oldsn * r;
          lartg(oldcs * r, d[i - 1] * sn, &oldcs, &oldsn, &d[i]);
          keep(i - ll - 1, cs, -sn, oldcs, -oldsn);
        }
        const R h = d[ll] * cs;
        d[ll] = h * oldcs;
        e[ll] = h * oldsn;
        if (rot) rot->push(ll, m - ll, Direct::kBackward);
        if (std::abs(e[ll]) <= thresh) e[ll] = 0;
      }
    } else if (top_down) {
      // The shifted sweep, chasing the bulge down.
      R f = (std::abs(d[ll]) - shift) * (std::copysign(R(1), d[ll]) + shift / d[ll]);
      R g = e[ll];
      for (int i = ll; i < m; ++i) {
        R cosr, sinr, cosl, sinl;
        lartg(f, g, &cosr, &sinr, &r);
        if (i > ll) e[i - 1] = r;
        f = cosr * d[i] + sinr * e[i];
        e[i] = cosr * e[i] - sinr * d[i];
        g = sinr * d[i + 1];
        d[i + 1] = cosr * d[i + 1];
        lartg(f, g, &cosl, &sinl, &r);
        d[i] = r;
        f = cosl * e[i] + sinl * d[i + 1];
        d[i + 1] = cosl * d[i + 1] - sinl * e[i];
        if (i < m - 1) {
          g = sinl * e[i + 1];
          e[i + 1] = cosl * e[i + 1];
        }
        keep(i - ll, cosr, sinr, cosl, sinl);
      }
      e[m - 1] = f;
      if (rot) rot->push(ll, m - ll, Direct::kForward);
      if (std::abs(e[m - 1]) <= thresh) e[m - 1] = 0;
    } else {
      // The shifted sweep, chasing the bulge up.
      R f = (std::abs(d[m]) - shift) * (std::copysign(R(1), d[m]) + shift / d[m]);
      R g = e[m - 1];
      for (int i = m; i > ll; --i) {
        R cosr, sinr, cosl, sinl;
        lartg(f, g, &cosr, &sinr, &r);
        if (i < m) e[i] = r;
        f = cosr * d[i] + sinr * e[i - 1];
        e[i - 1] = cosr * e[i - 1] - sinr * d[i];
        g = sinr * d[i - 1];
        d[i - 1] = cosr * d[i - 1];
        lartg(f, g, &cosl, &sinl, &r);
        d[i] = r;
        f = cosl * e[i - 1] + sinl * d[i - 1];
        d[i - 1] = cosl * d[i - 1] - sinl * e[i - 1];
        if (i > ll + 1) {
          g = sinl * e[i - 2];
          e[i - 2] = cosl * e[i - 2];
        }
        keep(i - ll - 1, cosr, -sinr, cosl, -sinl);
      }
      e[ll] = f;
      if (std::abs(e[ll]) <= thresh) e[ll] = 0;
      if (rot) rot->push(ll, m - ll, Direct::kBackward);
    }
  }
  return 0;
}

}  // namespace

template <class T>
int bdsqr_batched(Uplo uplo, int n, int ncvt, int nru, int ncc, real_t<T> *d, real_t<T> *e, T *vt,
                  int ldvt, T *u, int ldu, T *c, int ldc, real_t<T> *work, int batch) {
  using R = real_t<T>;
  if (n <= 0) return 0;
  int info = 0;
  if (n > 1 && ncvt <= 0 && nru <= 0 && ncc <= 0) {
    // Values only: dqds, the QR iteration finishing what it leaves.
    info = lasq1(n, d, e, work);
    if (info != 2) return info;
    info = 0;
  }
  if (n > 1) {
    if (uplo == Uplo::kLower) {
      // B = Q L: rotate the lower bidiagonal to upper, Q going to U and C.
      R *cs = work, *sn = work + (n - 1);
      for (int i = 0; i < n - 1; ++i) {
        R r;
        lartg(d[i], e[i], &cs[i], &sn[i], &r);
        d[i] = r;
        e[i] = sn[i] * d[i + 1];
        d[i + 1] = cs[i] * d[i + 1];
      }
      if (nru > 0) lasr(Side::kRight, Pivot::kVariable, Direct::kForward, nru, n, cs, sn, u, ldu);
      if (ncc > 0) lasr(Side::kLeft, Pivot::kVariable, Direct::kForward, n, ncc, cs, sn, c, ldc);
    }
    if (ncvt > 0 || nru > 0 || ncc > 0) {
      Pending<T> rot(n, ncvt, nru, ncc, vt, ldvt, u, ldu, c, ldc, work, std::max(batch, 1));
      info = iterate(n, d, e, &rot);
      rot.flush();
    } else {
      info = iterate<R, Pending<T>>(n, d, e, nullptr);
    }
    if (info != 0) return info;
  }
  // Non-negative singular values: a negative one changes the sign of its
  // row of VT.
  for (int i = 0; i < n; ++i) {
    if (d[i] < R(0)) {
      d[i] = -d[i];
      if (ncvt > 0) scale_row_negative(ncvt, vt + i, ldvt);
    }
  }
  // Decreasing order (selection sort: at most n - 1 swaps of vectors).
  for (int i = 0; i < n - 1; ++i) {
    const int last = n - 1 - i;
    int isub = 0;
    R smin = d[0];
    for (int j = 1; j <= last; ++j) {
      if (d[j] <= smin) {
        isub = j;
        smin = d[j];
      }
    }
    if (isub != last) {
      d[isub] = d[last];
      d[last] = smin;
      if (ncvt > 0) swap_lines(ncvt, vt + isub, vt + last, ldvt);
      if (nru > 0)
        swap_lines(nru, u + static_cast<std::ptrdiff_t>(isub) * ldu,
                   u + static_cast<std::ptrdiff_t>(last) * ldu, 1);
      if (ncc > 0) swap_lines(ncc, c + isub, c + last, ldc);
    }
  }
  return 0;
}

template <class T>
int bdsqr(Uplo uplo, int n, int ncvt, int nru, int ncc, real_t<T> *d, real_t<T> *e, T *vt, int ldvt,
          T *u, int ldu, T *c, int ldc, real_t<T> *work) {
  return bdsqr_batched(uplo, n, ncvt, nru, ncc, d, e, vt, ldvt, u, ldu, c, ldc, work,
                       oracle(kBlockSize, name<T>("BDSQR")));
}

#define ORB_BDSQR(T)                                                                              \
  template int bdsqr(Uplo, int, int, int, int, real_t<T> *, real_t<T> *, T *, int, T *, int, T *, \
                     int, real_t<T> *);                                                           \
  template int bdsqr_batched(Uplo, int, int, int, int, real_t<T> *, real_t<T> *, T *, int, T *,   \
                             int, T *, int, real_t<T> *, int);
ORB_BDSQR(float)
ORB_BDSQR(double)
ORB_BDSQR(std::complex<float>)
ORB_BDSQR(std::complex<double>)
#undef ORB_BDSQR

}  // namespace orb::lapack
