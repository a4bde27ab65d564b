// Conjugate gradient by reverse communication.
//
// tmp holds four columns of n: p (at the start a copy of x), q = A p written
// by the caller, the residual r (at the start a copy of b) and, with a
// preconditioner, z = C^-1 r written by the caller. The residual measure is
// r.r without a preconditioner and r.z with one.
//
// Stages of DCG in ipar(3):
//   1, other  start                        -> 2 (or 6 with a preconditioner), request 1
//   2         A x0 supplied                -> stopping decision, user stage 3
//   3         caller's test said continue  -> next iteration (stage 4)
//   4         A p supplied                 -> update, stopping decision
//   5         preconditioned start         -> 6, request 1
//   6         A x0 supplied                -> 7, request 3
//   7         z0 supplied                  -> stopping decision, user stage 8
//   8         caller's test said continue  -> next iteration (stage 9)
//   9         A p supplied                 -> update, 10, request 3
//   10        z supplied                   -> stopping decision
// Several right-hand sides keep their own stages in ipar(39):
//   1, other  start with the first right-hand side
//   2 A x0 supplied, 3 caller's test answered, 4 A p supplied (no preconditioner)
//   5 A x0 supplied, 6 z0 supplied, 7 A p supplied, 8 z supplied (preconditioned)
#include "iterative/cg.h"

#include <algorithm>
#include <cmath>

#include "iterative/params.h"
#include "iterative/rci_log.h"
#include "iterative/vector_ops.h"

namespace orb::iterative {
namespace {

using vec::idx;

// The outcome of a stopping decision that is not a request code: go on with
// the next iteration within the same call.
constexpr int kNextIteration = 1 << 20;

void cg_error(const int *ipar, int number) {
  if (ipar[ip::kReportErrors] != 0)
    log::write(log::Source::kCg, log::Kind::kError, number, ipar[ip::kOutput]);
}

void cg_warning(const int *ipar, int number) {
  if (ipar[ip::kReportWarnings] != 0)
    log::write(log::Source::kCg, log::Kind::kWarning, number, ipar[ip::kOutput]);
}

template <class T>
void set_defaults(int n, int *ipar, T *dpar) {
  set_shared_defaults(n, ipar);
  dpar[dp::kRelTol] = T(1.0E-6);
  for (int i = dp::kAbsTol; i <= dp::kBeta; ++i) dpar[i] = T(0);
}

// The arithmetic of one right-hand side, on the four columns of tmp. The
// stage entry (ipar(3) or ipar(39)) is the only thing the two machines do
// not share.
template <class T>
class Cg {
 public:
  Cg(int *ipar, T *dpar, T *tmp, int stage_at)
      : ipar_(ipar), dpar_(dpar), n_(std::max(ipar[ip::kN], 0)), stage_at_(stage_at) {
    p_ = tmp;
    q_ = tmp + n_;
    r_ = tmp + 2 * n_;
    z_ = tmp + 3 * n_;
  }

  // r = b, p = x: the caller is asked for A x0.
  int start(const T *x, const T *b, int stage) {
    vec::copy(n_, b, r_);
    vec::copy(n_, x, p_);
    ipar_[stage_at_] = stage;
    return rq::kMultiply;
  }

  // r = b - A x0, p = r, measure r.r.
  void first_residual() {
    vec::sub(n_, r_, q_, r_);
    vec::copy(n_, r_, p_);
    set_start_measure(vec::dot(n_, r_, r_));
  }

  // r = b - A x0; the caller is asked for z0.
  int first_residual_preconditioned(int stage) {
    vec::sub(n_, r_, q_, r_);
    ipar_[stage_at_] = stage;
    return rq::kPrecondition;
  }

  // p = z0, measure z0.r.
  void first_preconditioned() {
    vec::copy(n_, z_, p_);
    set_start_measure(vec::dot(n_, z_, r_));
  }

  // alpha = dpar(6) / p.Ap; r = r - alpha Ap; x = x + alpha p. False when
  // p.Ap = 0 (nothing is changed then).
  bool advance(T *x) {
    const T pq = vec::dot(n_, q_, p_);
    if (pq == T(0)) return false;
    const T alpha = dpar_[dp::kPrevResidual] / pq;
    dpar_[dp::kAlpha] = alpha;
    vec::cg_update(n_, alpha, q_, r_, p_, x);
    return true;
  }

  // The new measure (r.r, or z.r with a preconditioner) and the new
  // direction p = beta p + r (or + z). False when dpar(6) = 0.
  bool new_direction(bool preconditioned) {
    const T *s = preconditioned ? z_ : r_;
    dpar_[dp::kResidual] = vec::dot(n_, s, r_);
    if (dpar_[dp::kPrevResidual] == T(0)) return false;
    const T beta = dpar_[dp::kResidual] / dpar_[dp::kPrevResidual];
    dpar_[dp::kBeta] = beta;
    vec::scale_add(n_, beta, s, p_);
    return true;
  }

  // The stopping decision. Returns a request code, or kNextIteration.
  int decide(int user_stage) {
    const bool limit = ipar_[ip::kLimitTest] != 0;
    const bool residual = ipar_[ip::kResidualTest] != 0;
    const bool user = ipar_[ip::kUserTest] != 0;
    const bool converged = dpar_[dp::kResidual] <= dpar_[dp::kThreshold];
    auto ask = [&] {
      ipar_[stage_at_] = user_stage;
      return rq::kUserTest;
    };
    if (limit) {
      if (ipar_[ip::kIterations] >= ipar_[ip::kMaxIterations])
        return !residual || converged ? rq::kDone : rq::kLimitReached;
      if (residual) {
        if (converged) return rq::kDone;
        return user ? ask() : kNextIteration;
      }
      if (user) return ask();
      return dpar_[dp::kResidual] == T(0) ? rq::kDone : kNextIteration;
    }
    if (!residual) return user ? ask() : rq::kNoStoppingTest;
    if (converged) return rq::kDone;
    return user ? ask() : kNextIteration;
  }

  // Counts the iteration and asks for A p.
  int next_iteration(int stage) {
    ipar_[stage_at_] = stage;
    ++ipar_[ip::kIterations];
    dpar_[dp::kPrevResidual] = dpar_[dp::kResidual];
    return rq::kMultiply;
  }

 private:
  void set_start_measure(T d) {
    dpar_[dp::kResidual] = d;
    dpar_[dp::kStartResidual] = d;
    dpar_[dp::kThreshold] = dpar_[dp::kRelTol] * d + dpar_[dp::kAbsTol];
  }

  int *ipar_;
  T *dpar_;
  idx n_;
  int stage_at_;
  T *p_, *q_, *r_, *z_;
};

// DCG's reading of a decision: errors reported, the next iteration started.
template <class T>
int dcg_outcome(Cg<T> &cg, const int *ipar, int user_stage, int next_stage) {
  const int code = cg.decide(user_stage);
  if (code == kNextIteration) return cg.next_iteration(next_stage);
  if (code == rq::kNoStoppingTest) cg_error(ipar, 1);
  return code;
}

// The several-right-hand-sides machine.
template <class T>
class CgMrhs {
 public:
  CgMrhs(T *x, const T *b, int *ipar, T *dpar, T *tmp)
      : cg_(ipar, dpar, tmp, ip::kMrhsStage),
        x_(x),
        b_(b),
        ipar_(ipar),
        dpar_(dpar),
        n_(std::max(ipar[ip::kN], 0)),
        nrhs_(ipar[ip::kNrhs]) {}

  int step(int answer) {
    const bool pre = ipar_[ip::kPreconditioned] != 0;
    switch (ipar_[ip::kMrhsStage]) {
      case 2:
        cg_.first_residual();
        record_start();
        return outcome();
      case 3:
        if (answer == rq::kStopThisRhs && ipar_[ip::kUserTest] != 0) {
          finish(1, T(-1));
          return next_rhs();
        }
        return cg_.next_iteration(pre ? 7 : 4);
      case 4:
        if (!cg_.advance(x_at())) return breakdown(2);
        if (!cg_.new_direction(false)) return breakdown(3);
        return outcome();
      case 5:
        return cg_.first_residual_preconditioned(6);
      case 6:
        cg_.first_preconditioned();
        record_start();
        return outcome();
      case 7:
        if (!cg_.advance(x_at())) return breakdown(2);
        ipar_[ip::kMrhsStage] = 8;
        return rq::kPrecondition;
      case 8:
        if (!cg_.new_direction(true)) return breakdown(3);
        return outcome();
      default:
        for (idx k = 1; k <= nrhs_; ++k) {
          done(k) = 0;
          count(k) = 0;
          initial(k) = T(0);
          latest(k) = T(0);
        }
        return begin(1);
    }
  }

 private:
  int &done(idx k) { return ipar_[ip::kPerRhs + k]; }
  int &count(idx k) { return ipar_[ip::kPerRhs + nrhs_ + k]; }
  T &initial(idx k) { return dpar_[dp::kPerRhs + k]; }
  T &latest(idx k) { return dpar_[dp::kPerRhs + nrhs_ + k]; }
  idx rhs() const { return ipar_[ip::kRhsInProgress]; }
  T *x_at() { return x_ + (rhs() - 1) * n_; }

  // Right-hand side k begins with its own count; the caller is asked for A x0.
  int begin(int k) {
    ipar_[ip::kRhsInProgress] = k;
    ipar_[ip::kIterations] = 0;
    const idx off = (static_cast<idx>(k) - 1) * n_;
    return cg_.start(x_ + off, b_ + off, ipar_[ip::kPreconditioned] != 0 ? 5 : 2);
  }

  void record_start() {
    initial(rhs()) = dpar_[dp::kResidual];
    latest(rhs()) = dpar_[dp::kResidual];
  }

  void finish(int flag, T measure) {
    done(rhs()) = flag;
    count(rhs()) = ipar_[ip::kIterations];
    latest(rhs()) = measure;
  }

  // The next right-hand side, or the end: -1 when any of them stopped at the
  // iteration limit without meeting the residual test.
  int next_rhs() {
    if (rhs() < nrhs_) return begin(static_cast<int>(rhs() + 1));
    for (idx k = 1; k <= nrhs_; ++k)
      if (done(k) == -1) return rq::kLimitReached;
    return rq::kDone;
  }

  int outcome() {
    const bool pre = ipar_[ip::kPreconditioned] != 0;
    const int code = cg_.decide(3);
    count(rhs()) = ipar_[ip::kIterations];
    latest(rhs()) = dpar_[dp::kResidual];
    switch (code) {
      case kNextIteration: {
        const int request = cg_.next_iteration(pre ? 7 : 4);
        count(rhs()) = ipar_[ip::kIterations];
        return request;
      }
      case rq::kDone:
        finish(1, dpar_[dp::kResidual]);
        return next_rhs();
      case rq::kLimitReached:
        finish(-1, dpar_[dp::kResidual]);
        return next_rhs();
      case rq::kNoStoppingTest:
        cg_error(ipar_, 1);
        return code;
      default:
        return code;
    }
  }

  // A zero denominator ends the whole call.
  int breakdown(int error) {
    cg_error(ipar_, error);
    count(rhs()) = ipar_[ip::kIterations];
    latest(rhs()) = initial(rhs());
    return rq::kDone;
  }

  Cg<T> cg_;
  T *x_;
  const T *b_;
  int *ipar_;
  T *dpar_;
  idx n_;
  idx nrhs_;
};

template <class T>
int check(int n, int *ipar, T *dpar, bool several) {
  bool corrected = false, not_corrected = false;
  auto flag = [&](int warning, bool fixed) {
    cg_warning(ipar, warning);
    (fixed ? corrected : not_corrected) = true;
  };
  if (ipar[ip::kLimitTest] == 0 && ipar[ip::kResidualTest] == 0 && ipar[ip::kUserTest] == 0) {
    ipar[ip::kLimitTest] = 1;
    ipar[ip::kResidualTest] = 1;
    flag(1, true);
  }
  // The tolerances matter only to the residual test.
  if (ipar[ip::kResidualTest] != 0) {
    if (!(dpar[dp::kRelTol] >= T(0) && dpar[dp::kRelTol] <= T(1))) {
      dpar[dp::kRelTol] = T(1.0E-6);
      flag(2, true);
    }
    if (dpar[dp::kAbsTol] < T(0)) {
      dpar[dp::kAbsTol] = T(0);
      flag(3, true);
    }
    if (dpar[dp::kAbsTol] == T(0) && dpar[dp::kRelTol] == T(0)) flag(4, false);
  }
  if (ipar[ip::kN] != n) flag(5, false);
  if (ipar[ip::kN] < 1 || (several && ipar[ip::kNrhs] < 1)) {
    cg_warning(ipar, 6);
    return chk::kFatal;
  }
  if (ipar[ip::kStage] != 1) flag(7, false);
  if (ipar[ip::kLimitTest] != 0) {
    if (ipar[ip::kMaxIterations] < 0) flag(8, false);
    if (ipar[ip::kIterations] != 0) flag(9, false);
    if (ipar[ip::kIterations] >= ipar[ip::kMaxIterations]) flag(10, false);
  }
  if (!corrected && !not_corrected) return chk::kOk;
  return chk::kBase - (not_corrected ? chk::kNotCorrected : 0) - (corrected ? chk::kCorrected : 0);
}

template <class T>
int dcg_step(T *x, const T *b, int *ipar, T *dpar, T *tmp) {
  Cg<T> cg(ipar, dpar, tmp, ip::kStage);
  switch (ipar[ip::kStage]) {
    case 2:
      cg.first_residual();
      return dcg_outcome(cg, ipar, 3, 4);
    case 3:
      return cg.next_iteration(4);
    case 4:
      if (!cg.advance(x)) {
        cg_error(ipar, 2);
        return rq::kZeroDenominator;
      }
      if (!cg.new_direction(false)) {
        cg_error(ipar, 3);
        return rq::kDivisionByZero;
      }
      return dcg_outcome(cg, ipar, 3, 4);
    case 5:
      return cg.start(x, b, 6);
    case 6:
      return cg.first_residual_preconditioned(7);
    case 7:
      cg.first_preconditioned();
      return dcg_outcome(cg, ipar, 8, 9);
    case 8:
      return cg.next_iteration(9);
    case 9:
      if (!cg.advance(x)) {
        cg_error(ipar, 2);
        return rq::kZeroDenominator;
      }
      ipar[ip::kStage] = 10;
      return rq::kPrecondition;
    case 10:
      if (!cg.new_direction(true)) {
        cg_error(ipar, 3);
        return rq::kDivisionByZero;
      }
      return dcg_outcome(cg, ipar, 8, 9);
    default:
      return cg.start(x, b, ipar[ip::kPreconditioned] != 0 ? 6 : 2);
  }
}

}  // namespace

template <class T>
void cg_init(const int *n, const T *, const T *, int *rci_request, int *ipar, T *dpar, T *tmp) {
  set_defaults(*n, ipar, dpar);
  vec::zero(3 * static_cast<idx>(*n), tmp);
  *rci_request = 0;
}

template <class T>
void cg_check(const int *n, const T *, const T *, int *rci_request, int *ipar, T *dpar) {
  *rci_request = check(*n, ipar, dpar, false);
}

template <class T>
void cg(const int *, T *x, const T *b, int *rci_request, int *ipar, T *dpar, T *tmp) {
  *rci_request = dcg_step(x, b, ipar, dpar, tmp);
}

template <class T>
void cg_get(const int *, const T *, const T *, const int *, const int *ipar, const T *, const T *,
            int *itercount) {
  *itercount = ipar[ip::kIterations];
}

template <class T>
void cgmrhs_init(const int *n, const T *, const int *nrhs, const T *, const int *, int *rci_request,
                 int *ipar, T *dpar, T *tmp) {
  set_defaults(*n, ipar, dpar);
  ipar[ip::kNrhs] = *nrhs;
  ipar[ip::kMrhsStage] = 1;
  for (idx k = 1; k <= 2 * static_cast<idx>(*nrhs); ++k) {
    ipar[ip::kPerRhs + k] = 0;
    dpar[dp::kPerRhs + k] = T(0);
  }
  if (*n > 0 && *nrhs > -3) vec::zero(static_cast<idx>(*n) * (static_cast<idx>(*nrhs) + 3), tmp);
  *rci_request = 0;
}

template <class T>
void cgmrhs_check(const int *n, const T *, const int *, const T *, int *rci_request, int *ipar,
                  T *dpar) {
  *rci_request = check(*n, ipar, dpar, true);
}

template <class T>
void cgmrhs(const int *, T *x, const int *, const T *b, int *rci_request, int *ipar, T *dpar,
            T *tmp) {
  *rci_request = CgMrhs<T>(x, b, ipar, dpar, tmp).step(*rci_request);
}

template <class T>
void cgmrhs_get(const int *, const T *, const int *nrhs, const T *, const int *, const int *ipar,
                const T *, const T *, int *itercount) {
  for (idx k = 1; k <= *nrhs; ++k) itercount[k - 1] = ipar[ip::kPerRhs + *nrhs + k];
}

template void cg_init(const int *, const double *, const double *, int *, int *, double *,
                      double *);
template void cg_check(const int *, const double *, const double *, int *, int *, double *);
template void cg(const int *, double *, const double *, int *, int *, double *, double *);
template void cg_get(const int *, const double *, const double *, const int *, const int *,
                     const double *, const double *, int *);
template void cgmrhs_init(const int *, const double *, const int *, const double *, const int *,
                          int *, int *, double *, double *);
template void cgmrhs_check(const int *, const double *, const int *, const double *, int *, int *,
                           double *);
template void cgmrhs(const int *, double *, const int *, const double *, int *, int *, double *,
                     double *);
template void cgmrhs_get(const int *, const double *, const int *, const double *, const int *,
                         const int *, const double *, const double *, int *);

}  // namespace orb::iterative
