// The dqds algorithm (eigen.h: lasq2; svd.h: lasq1): the eigenvalues of a
// positive definite tridiagonal held as its qd array, to high relative
// accuracy, and through it the singular values of a bidiagonal.
//
// The qd array of n pairs (q(k), e(k)) is stored interleaved in z, four
// reals a pair: the current q and e and the ones the next transform
// writes, pp (0 or 1) telling which half is current ("ping-pong"). Each
// transform is a differential qd step with shift tau (dqds), or without one
// (dqd) when the shifted step keeps failing. The shift is chosen from the
// last transform's d values (minimum and the last three), the bottom of the
// array deflates when its e's become negligible, the array is reversed
// when its top end is the smaller, and it splits where an e vanishes.
//
// The arithmetic, tolerances and counters are those of the published
// xLASQ2 .. xLASQ6; the indexing below is 1-based, as z's layout is
// described in those terms (q(k) of phase pp at 4k - 3 + pp, e(k) at
// 4k - 1 + pp).
#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "lapack/copy_scale.h"
#include "lapack/eigen.h"
#include "lapack/rotations.h"
#include "lapack/svd.h"

namespace orb::lapack {
namespace {

template <class R>
class Dqds {
 public:
  Dqds(int n, R *z) : n_(n), z_(z) {}

  // The algorithm after the trivial cases: returns INFO.
  int run();

 private:
  static constexpr R kBias = R(1.5);  // reverse when the bottom q is this much larger
  static constexpr R eps() { return std::numeric_limits<R>::epsilon(); }
  static constexpr R safmin() { return std::numeric_limits<R>::min(); }
  static R tol() { return eps() * R(100); }
  static R tol2() { return tol() * tol(); }

  R &at(int i) { return z_[i - 1]; }

  int setup();
  void reverse(bool both_phases);
  void step();
  void choose_shift(int n0in);
  void dqds_transform();
  void dqd_transform();
  void accumulate_shift();
  int give_up(int i0, int n0);

  int n_;
  R *z_;

  // The active block i0..n0 and the phase.
  int i0_ = 1, n0_ = 0, pp_ = 0;
  // Shift state: the accumulated shift sigma (+ desig, its rounding error),
  // the last shift tau and its type, the d values of the last transform.
  R sigma_ = 0, desig_ = 0, tau_ = 0, g_ = 0;
  R dmin_ = 0, dmin1_ = 0, dmin2_ = 0, dn_ = 0, dn1_ = 0, dn2_ = 0;
  R qmax_ = 0, trace_ = 0;
  int ttype_ = 0;
  // The published counters: transforms, divisions, failed shifts.
  int iter_ = 2, ndiv_ = 0, nfail_ = 0;
};

// Reverses the block i0..n0: the q's and e's of the current phase (and of
// the other one too for both_phases) swap end for end.
template <class R>
void Dqds<R>::reverse(bool both_phases) {
  const int ipn4 = 4 * (i0_ + n0_);
  for (int i4 = 4 * i0_; i4 <= 2 * (i0_ + n0_ - 1); i4 += 4) {
    if (both_phases) {
      std::swap(at(i4 - 3), at(ipn4 - i4 - 3));
      std::swap(at(i4 - 2), at(ipn4 - i4 - 2));
      std::swap(at(i4 - 1), at(ipn4 - i4 - 5));
      std::swap(at(i4), at(ipn4 - i4 - 4));
    } else {
      std::swap(at(i4 - 3), at(ipn4 - i4 - 3));
      std::swap(at(i4 - 1), at(ipn4 - i4 - 5));
    }
  }
}

// The shifted transform (xLASQ5, finite-arithmetic form: it stops at the
// first negative d). Once tau is zero, d's below eps (sigma + tau) are
// flushed to zero.
template <class R>
void Dqds<R>::dqds_transform() {
  const int i0 = i0_, n0 = n0_, pp = pp_;
  if (n0 - i0 - 1 <= 0) return;
  const R dthresh = eps() * (sigma_ + tau_);
  if (tau_ < dthresh * R(0.5)) tau_ = R(0);
  const R tau = tau_;
  const bool flush = tau == R(0);

  int j4 = 4 * i0 + pp - 3;
  R emin = at(j4 + 4);
  R d = at(j4) - tau;
  dmin_ = d;
  dmin1_ = -at(j4);
  // One step at j4: q_new = d + e, e_new = q_next e / q_new; d scaled on.
  // Returns false when d was negative (the transform breaks down).
  auto advance = [&](int j, R &dd) {
    const int qo = j - 2 - pp, ei = j - 1 + pp, qn = j + 1 + pp, eo = j - pp;
    at(qo) = dd + at(ei);
    if (dd < R(0)) return false;
    at(eo) = at(qn) * (at(ei) / at(qo));
    dd = at(qn) * (dd / at(qo)) - tau;
    return true;
  };
  for (j4 = 4 * i0; j4 <= 4 * (n0 - 3); j4 += 4) {
    if (!advance(j4, d)) return;
    if (flush && d < dthresh) d = R(0);
    dmin_ = std::min(dmin_, d);
    emin = std::min(emin, at(j4 - pp));
  }
  // The last two steps keep their d's for the next shift.
  dn2_ = d;
  dmin2_ = dmin_;
  j4 = 4 * (n0 - 2);
  R dn1 = dn2_;
  if (!advance(j4, dn1)) return;
  dn1_ = dn1;
  dmin_ = std::min(dmin_, dn1_);
  dmin1_ = dmin_;
  j4 += 4;
  R dn = dn1_;
  if (!advance(j4, dn)) return;
  dn_ = dn;
  dmin_ = std::min(dmin_, dn_);
  at(j4 - pp + 2) = dn_;
  at(4 * n0 - pp) = emin;
}

// The unshifted transform (xLASQ6), guarded against underflow: a zero
// q_new restarts the minimum there.
template <class R>
void Dqds<R>::dqd_transform() {
  const int i0 = i0_, n0 = n0_, pp = pp_;
  if (n0 - i0 - 1 <= 0) return;
  int j4 = 4 * i0 + pp - 3;
  R emin = at(j4 + 4);
  R d = at(j4);
  dmin_ = d;
  // Returns true when q_new was zero (d restarts from the next q).
  auto advance = [&](int j, R &dd) {
    const int qo = j - 2 - pp, ei = j - 1 + pp, qn = j + 1 + pp, eo = j - pp;
    at(qo) = dd + at(ei);
    if (at(qo) == R(0)) {
      at(eo) = R(0);
      dd = at(qn);
      return true;
    }
    if (safmin() * at(qn) < at(qo) && safmin() * at(qo) < at(qn)) {
      const R t = at(qn) / at(qo);
      at(eo) = at(ei) * t;
      dd *= t;
    } else {
      at(eo) = at(qn) * (at(ei) / at(qo));
      dd = at(qn) * (dd / at(qo));
    }
    return false;
  };
  for (j4 = 4 * i0; j4 <= 4 * (n0 - 3); j4 += 4) {
    if (advance(j4, d)) {
      dmin_ = d;
      emin = R(0);
    }
    dmin_ = std::min(dmin_, d);
    emin = std::min(emin, at(j4 - pp));
  }
  dn2_ = d;
  dmin2_ = dmin_;
  j4 = 4 * (n0 - 2);
  dn1_ = dn2_;
  if (advance(j4, dn1_)) {
    dmin_ = dn1_;
    emin = R(0);
  }
  dmin_ = std::min(dmin_, dn1_);
  dmin1_ = dmin_;
  j4 += 4;
  dn_ = dn1_;
  if (advance(j4, dn_)) {
    dmin_ = dn_;
    emin = R(0);
  }
  dmin_ = std::min(dmin_, dn_);
  at(j4 - pp + 2) = dn_;
  at(4 * n0 - pp) = emin;
}

// The next shift (xLASQ4), from the last transform's d's and how many
// values deflated since (n0in - n0). A bail-out keeps the previous tau.
template <class R>
void Dqds<R>::choose_shift(int n0in) {
  constexpr R c1 = R(0.563), c2 = R(1.01), c3 = R(1.05);
  constexpr R quarter = R(0.25), third = R(0.333), half = R(0.5), hundred = R(100);
  const int i0 = i0_, n0 = n0_, pp = pp_;
  const R dmin = dmin_, dmin1 = dmin1_, dmin2 = dmin2_, dn = dn_, dn1 = dn1_, dn2 = dn2_;
  if (dmin <= R(0)) {
    tau_ = -dmin;
    ttype_ = -1;
    return;
  }
  const int nn = 4 * n0 + pp;
  R s = R(0);
  // Sums the ratios e/q up the block from i4 = first (b2 the first term),
  // stopping when they become small against the sum or it exceeds c1;
  // false when some e exceeds its q (no estimate then).
  auto ratio_sum = [&](int first, R &a2, R &b2, bool check_b1) {
    for (int i4 = first; i4 >= 4 * i0 - 1 + pp; i4 -= 4) {
      if (b2 == R(0)) break;
      const R b1 = b2;
      if (at(i4) > at(i4 - 2)) return false;
      b2 *= at(i4) / at(i4 - 2);
      a2 += b2;
      if (hundred * std::max(b2, b1) < a2 || (check_b1 && c1 < a2)) break;
    }
    return true;
  };

  if (n0in == n0) {
    // No deflation in the last transform.
    if (dmin == dn || dmin == dn1) {
      R b1 = std::sqrt(at(nn - 3)) * std::sqrt(at(nn - 5));
      R b2 = std::sqrt(at(nn - 7)) * std::sqrt(at(nn - 9));
      R a2 = at(nn - 7) + at(nn - 5);
      if (dmin == dn && dmin1 == dn1) {
        // Cases 2 and 3: the two smallest d's at the end.
        const R gap2 = dmin2 - a2 - dmin2 * quarter;
        R gap1;
        if (gap2 > R(0) && gap2 > b2)
          gap1 = a2 - dn - (b2 / gap2) * b2;
        else
          gap1 = a2 - dn - (b1 + b2);
        if (gap1 > R(0) && gap1 > b1) {
          s = std::max(dn - (b1 / gap1) * b1, half * dmin);
          ttype_ = -2;
        } else {
          s = R(0);
          if (dn > b1) s = dn - b1;
          if (a2 > b1 + b2) s = std::min(s, a2 - (b1 + b2));
          s = std::max(s, third * dmin);
          ttype_ = -3;
        }
      } else {
        // Case 4: the smallest d at the end, or next to it.
        ttype_ = -4;
        s = quarter * dmin;
        R gam;
        int np;
        if (dmin == dn) {
          gam = dn;
          a2 = R(0);
          if (at(nn - 5) > at(nn - 7)) return;
          b2 = at(nn - 5) / at(nn - 7);
          np = nn - 9;
        } else {
          np = nn - 2 * pp;
          gam = dn1;
          if (at(np - 4) > at(np - 2)) return;
          a2 = at(np - 4) / at(np - 2);
          if (at(nn - 9) > at(nn - 11)) return;
          b2 = at(nn - 9) / at(nn - 11);
          np = nn - 13;
        }
        a2 += b2;
        if (!ratio_sum(np, a2, b2, true)) return;
        a2 *= c3;
        if (a2 < c1) s = gam * (R(1) - std::sqrt(a2)) / (R(1) + a2);
      }
    } else if (dmin == dn2) {
      // Case 5: the smallest d two from the end.
      ttype_ = -5;
      s = quarter * dmin;
      const int np = nn - 2 * pp;
      R b1 = at(np - 2);
      R b2 = at(np - 6);
      const R gam = dn2;
      if (at(np - 8) > b2 || at(np - 4) > b1) return;
      R a2 = (at(np - 8) / b2) * (R(1) + at(np - 4) / b1);
      if (n0 - i0 > 2) {
        b2 = at(nn - 13) / at(nn - 15);
        a2 += b2;
        if (!ratio_sum(nn - 17, a2, b2, true)) return;
        a2 *= c3;
      }
      if (a2 < c1) s = gam * (R(1) - std::sqrt(a2)) / (R(1) + a2);
    } else {
      // Case 6: no information; a fraction of dmin, growing while it works.
      if (ttype_ == -6)
        g_ += third * (R(1) - g_);
      else if (ttype_ == -18)
        g_ = quarter * third;
      else
        g_ = quarter;
      s = g_ * dmin;
      ttype_ = -6;
    }
  } else if (n0in == n0 + 1) {
    // One value deflated.
    if (dmin1 == dn1 && dmin2 == dn2) {
      // Cases 7 and 8.
      ttype_ = -7;
      s = third * dmin1;
      if (at(nn - 5) > at(nn - 7)) return;
      R b1 = at(nn - 5) / at(nn - 7);
      R b2 = b1;
      if (b2 != R(0)) {
        for (int i4 = 4 * n0 - 9 + pp; i4 >= 4 * i0 - 1 + pp; i4 -= 4) {
          const R a2 = b1;
          if (at(i4) > at(i4 - 2)) return;
          b1 *= at(i4) / at(i4 - 2);
          b2 += b1;
          if (hundred * std::max(b1, a2) < b2) break;
        }
      }
      b2 = std::sqrt(c3 * b2);
      const R a2 = dmin1 / (R(1) + b2 * b2);
      const R gap2 = half * dmin2 - a2;
      if (gap2 > R(0) && gap2 > b2 * a2) {
        s = std::max(s, a2 * (R(1) - c2 * a2 * (b2 / gap2) * b2));
      } else {
        s = std::max(s, a2 * (R(1) - c2 * b2));
        ttype_ = -8;
      }
    } else {
      // Case 9.
      s = quarter * dmin1;
      if (dmin1 == dn1) s = half * dmin1;
      ttype_ = -9;
    }
  } else if (n0in == n0 + 2) {
    // Two values deflated: cases 10 and 11.
    if (dmin2 == dn2 && R(2) * at(nn - 5) < at(nn - 7)) {
      ttype_ = -10;
      s = third * dmin2;
      if (at(nn - 5) > at(nn - 7)) return;
      R b1 = at(nn - 5) / at(nn - 7);
      R b2 = b1;
      if (b2 != R(0)) {
        for (int i4 = 4 * n0 - 9 + pp; i4 >= 4 * i0 - 1 + pp; i4 -= 4) {
          if (at(i4) > at(i4 - 2)) return;
          b1 *= at(i4) / at(i4 - 2);
          b2 += b1;
          if (hundred * b1 < b2) break;
        }
      }
      b2 = std::sqrt(c3 * b2);
      const R a2 = dmin2 / (R(1) + b2 * b2);
      const R gap2 = at(nn - 7) + at(nn - 9) - std::sqrt(at(nn - 11)) * std::sqrt(at(nn - 9)) - a2;
      if (gap2 > R(0) && gap2 > b2 * a2)
        s = std::max(s, a2 * (R(1) - c2 * a2 * (b2 / gap2) * b2));
      else
        s = std::max(s, a2 * (R(1) - c2 * b2));
    } else {
      s = quarter * dmin2;
      ttype_ = -11;
    }
  } else if (n0in > n0 + 2) {
    // Case 12: more than two deflated; no shift.
    s = R(0);
    ttype_ = -12;
  }
  tau_ = s;
}

// sigma += tau, the rounding error kept in desig.
template <class R>
void Dqds<R>::accumulate_shift() {
  R t;
  if (tau_ < sigma_) {
    desig_ += tau_;
    t = sigma_ + desig_;
    desig_ -= t - sigma_;
  } else {
    t = sigma_ + tau_;
    desig_ = sigma_ - (t - tau_) + desig_;
  }
  sigma_ = t;
}

// One step of the iteration on the block i0..n0 (xLASQ3): deflate what
// has converged at its bottom, reverse it when that pays, then one
// transform (shifted, retried with smaller shifts, or unshifted).
template <class R>
void Dqds<R>::step() {
  const int n0in = n0_;
  // Deflation: one value (the bottom e negligible) or two (the one above).
  for (;;) {
    if (n0_ < i0_) return;
    const int nn = 4 * n0_ + pp_;
    bool take_one = n0_ == i0_;
    bool take_two = false;
    if (!take_one && n0_ != i0_ + 1) {
      if (!(at(nn - 5) > tol2() * (sigma_ + at(nn - 3)) &&
            at(nn - 2 * pp_ - 4) > tol2() * at(nn - 7))) {
        take_one = true;
      } else if (!(at(nn - 9) > tol2() * sigma_ && at(nn - 2 * pp_ - 8) > tol2() * at(nn - 11))) {
        take_two = true;
      } else {
        break;
      }
    } else if (!take_one) {
      take_two = true;
    }
    if (take_one) {
      at(4 * n0_ - 3) = at(4 * n0_ + pp_ - 3) + sigma_;
      --n0_;
      continue;
    }
    if (take_two) {
      // The 2 x 2 at the bottom: its eigenvalues directly.
      if (at(nn - 3) > at(nn - 7)) std::swap(at(nn - 3), at(nn - 7));
      R t = R(0.5) * ((at(nn - 7) - at(nn - 3)) + at(nn - 5));
      if (at(nn - 5) > at(nn - 3) * tol2() && t != R(0)) {
        R s = at(nn - 3) * (at(nn - 5) / t);
        if (s <= t)
          s = at(nn - 3) * (at(nn - 5) / (t * (R(1) + std::sqrt(R(1) + s / t))));
        else
          s = at(nn - 3) * (at(nn - 5) / (t + std::sqrt(t) * std::sqrt(t + s)));
        t = at(nn - 7) + (s + at(nn - 5));
        at(nn - 3) *= at(nn - 7) / t;
        at(nn - 7) = t;
      }
      at(4 * n0_ - 7) = at(nn - 7) + sigma_;
      at(4 * n0_ - 3) = at(nn - 3) + sigma_;
      n0_ -= 2;
    }
  }

  if (pp_ == 2) pp_ = 0;
  // Reverse when the top q is clearly the smaller (after a failure or a
  // deflation), so that the small values converge at the bottom.
  if (dmin_ <= R(0) || n0_ < n0in) {
    if (kBias * at(4 * i0_ + pp_ - 3) < at(4 * n0_ + pp_ - 3)) {
      reverse(true);
      const int pp = pp_;
      if (n0_ - i0_ <= 4) {
        at(4 * n0_ + pp - 1) = at(4 * i0_ + pp - 1);
        at(4 * n0_ - pp) = at(4 * i0_ - pp);
      }
      dmin2_ = std::min(dmin2_, at(4 * n0_ + pp - 1));
      at(4 * n0_ + pp - 1) =
          std::min({at(4 * n0_ + pp - 1), at(4 * i0_ + pp - 1), at(4 * i0_ + pp + 3)});
      at(4 * n0_ - pp) = std::min({at(4 * n0_ - pp), at(4 * i0_ - pp), at(4 * i0_ - pp + 4)});
      qmax_ = std::max({qmax_, at(4 * i0_ + pp - 3), at(4 * i0_ + pp + 1)});
      dmin_ = -R(0);
    }
  }

  choose_shift(n0in);
  for (;;) {
    dqds_transform();
    ndiv_ += n0_ - i0_ + 2;
    ++iter_;
    if (dmin_ >= R(0) && dmin1_ >= R(0)) break;  // success
    if (dmin_ < R(0) && dmin1_ > R(0) && at(4 * (n0_ - 1) - pp_) < tol() * (sigma_ + dn1_) &&
        std::abs(dn_) < tol() * sigma_) {
      // Only the last d went negative, and negligibly: take it as zero.
      at(4 * (n0_ - 1) - pp_ + 2) = R(0);
      dmin_ = R(0);
      break;
    }
    if (dmin_ < R(0)) {
      // The shift was too large: retry with a smaller one.
      ++nfail_;
      if (ttype_ < -22) {
        tau_ = R(0);
      } else if (dmin1_ > R(0)) {
        tau_ = (tau_ + dmin_) * (R(1) - R(2) * eps());
        ttype_ -= 11;
      } else {
        tau_ = R(0.25) * tau_;
        ttype_ -= 12;
      }
      continue;
    }
    if (std::isnan(dmin_) && tau_ != R(0)) {
      tau_ = R(0);
      continue;
    }
    // NaN without a shift, or the rare remaining case: no shift at all.
    dqd_transform();
    ndiv_ += n0_ - i0_ + 2;
    ++iter_;
    tau_ = R(0);
    break;
  }
  accumulate_shift();
}

// The transformation of the input qd array into the first dqd array of
// the iteration, with the input's checks; returns INFO (0 to go on) and
// leaves n0_ = 0 when the values are already in z(1..n).
template <class R>
int Dqds<R>::setup() {
  const int n = n_;
  at(2 * n) = R(0);
  R d = 0, e = 0;  // the sums of the q's and of the e's
  for (int k = 1; k <= 2 * (n - 1); k += 2) {
    if (at(k) < R(0)) return -(200 + k);
    if (at(k + 1) < R(0)) return -(200 + k + 1);
    d += at(k);
    e += at(k + 1);
  }
  if (at(2 * n - 1) < R(0)) return -(200 + 2 * n - 1);
  d += at(2 * n - 1);
  if (e == R(0)) {
    // Already diagonal.
    for (int k = 2; k <= n; ++k) at(k) = at(2 * k - 1);
    std::sort(z_, z_ + n, std::greater<R>());
    at(2 * n - 1) = d;
    return 0;
  }
  const R trace = d + e;
  if (trace == R(0)) {
    at(2 * n - 1) = R(0);
    return 0;
  }
  trace_ = trace;

  // Spread the pairs four apart, both phases' slots.
  for (int k = 2 * n; k >= 2; k -= 2) {
    at(2 * k) = R(0);
    at(2 * k - 1) = at(k);
    at(2 * k - 2) = R(0);
    at(2 * k - 3) = at(k - 1);
  }
  i0_ = 1;
  n0_ = n;
  if (kBias * at(4 * i0_ - 3) < at(4 * n0_ - 3)) reverse(false);

  // Two dqd transforms (forward from each phase), splitting where an e is
  // negligible against the d it meets.
  int pp = 0;
  for (int k = 0; k < 2; ++k) {
    d = at(4 * n0_ + pp - 3);
    for (int i4 = 4 * (n0_ - 1) + pp; i4 >= 4 * i0_ + pp; i4 -= 4) {
      if (at(i4 - 1) <= tol2() * d) {
        at(i4 - 1) = -R(0);
        d = at(i4 - 3);
      } else {
        d = at(i4 - 3) * (d / (d + at(i4 - 1)));
      }
    }
    d = at(4 * i0_ + pp - 3);
    for (int i4 = 4 * i0_ + pp; i4 <= 4 * (n0_ - 1) + pp; i4 += 4) {
      at(i4 - 2 * pp - 2) = d + at(i4 - 1);
      if (at(i4 - 1) <= tol2() * d) {
        at(i4 - 1) = -R(0);
        at(i4 - 2 * pp - 2) = d;
        at(i4 - 2 * pp) = R(0);
        d = at(i4 + 1);
      } else if (safmin() * at(i4 + 1) < at(i4 - 2 * pp - 2) &&
                 safmin() * at(i4 - 2 * pp - 2) < at(i4 + 1)) {
        const R t = at(i4 + 1) / at(i4 - 2 * pp - 2);
        at(i4 - 2 * pp) = at(i4 - 1) * t;
        d *= t;
      } else {
        at(i4 - 2 * pp) = at(i4 + 1) * (at(i4 - 1) / at(i4 - 2 * pp - 2));
        d = at(i4 + 1) * (d / at(i4 - 2 * pp - 2));
      }
    }
    at(4 * n0_ - pp - 2) = d;
    pp = 1 - pp;
  }
  return 0;
}

// The iteration did not finish within its budget (INFO 2): each block
// still waiting gets its shift back (the active one sigma, the ones split
// off above it the shifts kept in their split markers), so that z holds,
// as a qd array in its first 2n entries, a matrix with the eigenvalues
// not yet found (split markers as zero e's).
template <class R>
int Dqds<R>::give_up(int i0, int n0) {
  int top = i0, bottom = n0;
  R sigma = sigma_;
  for (;;) {
    R tempq = at(4 * top - 3);
    at(4 * top - 3) += sigma;
    for (int k = top + 1; k <= bottom; ++k) {
      const R tempe = at(4 * k - 5);
      at(4 * k - 5) *= tempq / at(4 * k - 7);
      tempq = at(4 * k - 3);
      at(4 * k - 3) = at(4 * k - 3) + sigma + tempe - at(4 * k - 5);
    }
    if (top <= 1) break;
    bottom = top - 1;
    sigma = -at(4 * bottom - 1);
    top = bottom;
    while (top >= 2 && at(4 * top - 5) >= R(0)) --top;
  }
  for (int k = 1; k <= n_; ++k) {
    at(2 * k - 1) = at(4 * k - 3);
    at(2 * k) = k < n0 ? std::max(at(4 * k - 1), R(0)) : R(0);
  }
  return 2;
}

template <class R>
int Dqds<R>::run() {
  const int n = n_;
  const int info = setup();
  if (info != 0 || n0_ == 0) return info;
  ttype_ = 0;
  dmin1_ = dmin2_ = dn_ = dn1_ = dn2_ = g_ = tau_ = R(0);
  iter_ = 2;
  nfail_ = 0;
  ndiv_ = 2 * (n0_ - i0_);

  bool done = false;
  for (int outer = 1; outer <= n + 1 && !done; ++outer) {
    if (n0_ < 1) {
      done = true;
      break;
    }
    // The next unreduced block ends at n0; find its top i0 (the first
    // negative e marks a split, holding minus that block's shift).
    desig_ = R(0);
    sigma_ = n0_ == n ? R(0) : -at(4 * n0_ - 1);
    if (sigma_ < R(0)) return 1;
    R emax = R(0);
    R qmin = at(4 * n0_ - 3);
    qmax_ = qmin;
    int i4 = 4 * n0_;
    for (; i4 >= 8; i4 -= 4) {
      if (at(i4 - 5) <= R(0)) break;
      if (qmin >= R(4) * emax) {
        qmin = std::min(qmin, at(i4 - 3));
        emax = std::max(emax, at(i4 - 5));
      }
      qmax_ = std::max(qmax_, at(i4 - 7) + at(i4 - 5));
    }
    if (i4 < 8) i4 = 4;
    i0_ = i4 / 4;
    pp_ = 0;

    // Reverse the block when its smallest d lies in its upper third and
    // is clearly smaller than the bottom q (pp = 2 tells step it did).
    if (n0_ - i0_ > 1) {
      R dee = at(4 * i0_ - 3), deemin = dee;
      int kmin = i0_;
      for (int j = 4 * i0_ + 1; j <= 4 * n0_ - 3; j += 4) {
        dee = at(j) * (dee / (dee + at(j - 2)));
        if (dee <= deemin) {
          deemin = dee;
          kmin = (j + 3) / 4;
        }
      }
      if ((kmin - i0_) * 2 < n0_ - kmin && deemin <= R(0.5) * at(4 * n0_ - 3)) {
        reverse(true);
        pp_ = 2;
      }
    }

    // A lower bound on the block's smallest eigenvalue (Gershgorin-like).
    dmin_ = -std::max(R(0), qmin - R(2) * std::sqrt(qmin) * std::sqrt(emax));

    const int nbig = 100 * (n0_ - i0_ + 1);
    bool block_done = false;
    for (int inner = 1; inner <= nbig; ++inner) {
      if (i0_ > n0_) {
        block_done = true;
        break;
      }
      step();
      pp_ = 1 - pp_;
      // Split the block where an e became negligible (checked every other
      // transform, on blocks of four or more).
      if (pp_ == 0 && n0_ - i0_ >= 3) {
        if (at(4 * n0_) <= tol2() * qmax_ || at(4 * n0_ - 1) <= tol2() * sigma_) {
          int splt = i0_ - 1;
          qmax_ = at(4 * i0_ - 3);
          R emin = at(4 * i0_ - 1);
          R oldemn = at(4 * i0_);
          for (int j = 4 * i0_; j <= 4 * (n0_ - 3); j += 4) {
            if (at(j) <= tol2() * at(j - 3) || at(j - 1) <= tol2() * sigma_) {
              at(j - 1) = -sigma_;
              splt = j / 4;
              qmax_ = R(0);
              emin = at(j + 3);
              oldemn = at(j + 4);
            } else {
              qmax_ = std::max(qmax_, at(j + 1));
              emin = std::min(emin, at(j - 1));
              oldemn = std::min(oldemn, at(j));
            }
          }
          at(4 * n0_ - 1) = emin;
          at(4 * n0_) = oldemn;
          i0_ = splt + 1;
        }
      }
    }
    if (!block_done) return give_up(i0_, n0_);
  }
  if (!done) return 3;

  // The eigenvalues into z(1..n), descending, and the counts after them.
  for (int k = 2; k <= n; ++k) at(k) = at(4 * k - 3);
  std::sort(z_, z_ + n, std::greater<R>());
  R sum = R(0);
  for (int k = n; k >= 1; --k) sum += at(k);
  at(2 * n + 1) = trace_;
  at(2 * n + 2) = sum;
  at(2 * n + 3) = R(iter_);
  at(2 * n + 4) = R(ndiv_) / R(static_cast<double>(n) * n);
  at(2 * n + 5) = R(100) * R(nfail_ / iter_);
  return 0;
}

}  // namespace

template <class R>
int lasq2(int n, R *z) {
  constexpr R tol = std::numeric_limits<R>::epsilon() * R(100);
  constexpr R tol2 = tol * tol;
  if (n < 0) return -1;
  if (n == 0) return 0;
  if (n == 1) return z[0] < R(0) ? -201 : 0;
  if (n == 2) {
    // The 2 x 2 directly, in the form that keeps relative accuracy.
    for (int k = 0; k < 3; ++k)
      if (z[k] < R(0)) return -(201 + k);
    if (z[2] > z[0]) std::swap(z[0], z[2]);
    z[4] = z[0] + z[1] + z[2];
    if (z[1] > z[2] * tol2) {
      R t = R(0.5) * ((z[0] - z[2]) + z[1]);
      R s = z[2] * (z[1] / t);
      if (s <= t)
        s = z[2] * (z[1] / (t * (R(1) + std::sqrt(R(1) + s / t))));
      else
        s = z[2] * (z[1] / (t + std::sqrt(t) * std::sqrt(t + s)));
      t = z[0] + (s + z[1]);
      z[2] *= z[0] / t;
      z[0] = t;
    }
    z[1] = z[2];
    z[5] = z[1] + z[0];
    return 0;
  }
  return Dqds<R>(n, z).run();
}

template <class R>
int lasq1(int n, R *d, R *e, R *work) {
  if (n < 0) return -1;
  if (n == 0) return 0;
  if (n == 1) {
    d[0] = std::abs(d[0]);
    return 0;
  }
  if (n == 2) {
    R smin, smax;
    las2(d[0], e[0], d[1], &smin, &smax);
    d[0] = smax;
    d[1] = smin;
    return 0;
  }
  R sigmx = R(0);
  for (int i = 0; i < n - 1; ++i) {
    d[i] = std::abs(d[i]);
    sigmx = std::max(sigmx, std::abs(e[i]));
  }
  d[n - 1] = std::abs(d[n - 1]);
  if (sigmx == R(0)) {
    std::sort(d, d + n, std::greater<R>());
    return 0;
  }
  for (int i = 0; i < n; ++i) sigmx = std::max(sigmx, d[i]);

  // The squares of the entries, scaled so that they neither overflow nor
  // lose the smallest ones, as the qd array (q(k) = d(k)^2, e(k)^2).
  constexpr R eps = std::numeric_limits<R>::epsilon();
  constexpr R safmin = std::numeric_limits<R>::min();
  const R scale = std::sqrt(eps / safmin);
  for (int i = 0; i < n; ++i) work[2 * i] = d[i];
  for (int i = 0; i < n - 1; ++i) work[2 * i + 1] = e[i];
  lascl<R>(Part::kAll, sigmx, scale, 2 * n - 1, 1, work, 2 * n - 1);
  for (int i = 0; i < 2 * n - 1; ++i) work[i] *= work[i];
  work[2 * n - 1] = R(0);

  const int info = lasq2(n, work);
  if (info == 0) {
    for (int i = 0; i < n; ++i) d[i] = std::sqrt(work[i]);
    lascl<R>(Part::kAll, scale, sigmx, n, 1, d, n);
  } else if (info == 2) {
    // Not finished: the bidiagonal of the remaining problem, for the
    // caller to continue with.
    for (int i = 0; i < n; ++i) {
      d[i] = std::sqrt(work[2 * i]);
      e[i] = std::sqrt(work[2 * i + 1]);
    }
    lascl<R>(Part::kAll, scale, sigmx, n, 1, d, n);
    lascl<R>(Part::kAll, scale, sigmx, n, 1, e, n);
  }
  return info;
}

template int lasq2(int, float *);
template int lasq2(int, double *);
template int lasq1(int, float *, float *, float *);
template int lasq1(int, double *, double *, double *);

}  // namespace orb::lapack
