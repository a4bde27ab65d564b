// Restarted flexible GMRES by reverse communication.
//
// With n = ipar(1) and m = ipar(15), tmp holds (positions 1-based):
//   1                  basis vectors v1 .. v(m+1), n each
//   ipar(16)           packed upper Hessenberg H, H(i,j) at ipar(16) + j(j-1)/2 + i - 1
//   ipar(17), (18)     rotation cosines and sines, m each
//   ipar(19)           rotated right-hand side g, m + 1
//   ipar(20)           coefficients y, m
//   ipar(21)           preconditioned vectors z1 .. zm (preconditioned runs)
// The start borrows the first three vector slots: the residual, A x0 and a
// copy of b.
//
// Stages in ipar(3):
//   1, 3   start, restart: request 1 for A x0           -> 2, 4
//   2, 4   residual, its norm; request 4 or on to 5
//   5      v1 = r / ||r||, g1 = ||r||                    -> decision (6 / 10)
//   6, 10  stopping decision, continuing at 7 / 11
//   7      next inner step: request 1 for A v           -> 8 (restart when the cycle is full)
//   11     next inner step: request 3 for z = C^-1 v    -> 12
//   12     request 1 for A z                            -> 13
//   8, 13  Gram-Schmidt, earlier rotations; request 4 or on to 9 / 14
//   9, 14  new basis vector, new rotation              -> decision
#include "iterative/fgmres.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>

#include "iterative/params.h"
#include "iterative/rci_log.h"
#include "iterative/vector_ops.h"

namespace orb::iterative {
namespace {

using vec::idx;

// A decision that continues at the continue stage within the same call.
constexpr int kContinue = 1 << 20;

// a - b without overflow traps (the difference is only shown in messages).
int difference(int a, int b) {
  return static_cast<int>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

void report_error(const int *ipar, int number, std::initializer_list<log::Value> values = {}) {
  if (ipar[ip::kReportErrors] != 0)
    log::write(log::Source::kFgmres, log::Kind::kError, number, ipar[ip::kOutput], values);
}

void report_warning(const int *ipar, int number, std::initializer_list<log::Value> values = {}) {
  if (ipar[ip::kReportWarnings] != 0)
    log::write(log::Source::kFgmres, log::Kind::kWarning, number, ipar[ip::kOutput], values);
}

// Error numbers of the position checks, by ipar entry.
enum Error : int {
  kZeroResidual = 0,
  kBadRestart = 1,
  kBadStep = 2,
  kNegativeResidual = 3,
  kNegativeNorm = 4,
  kBadLengthAtCheck = 5,
  kZeroNorm = 6,
  kNoStoppingTest = 7,
  kDegenerateRotation = 8,
  kBadRestartAtCheck = 9,
  kBadLength = 10,
  kBadPosG = 11,
  kBadPosOut = 12,
  kBadPosH = 13,
  kBadPosCos = 14,
  kBadPosSin = 15,
  kBadPosZ = 16,
  kBadPosY = 17,
  kDegenerateHessenberg = 18,
};

// y = y + a x, then returns y . z (one pass; z may be null).
template <class T>
T axpy_dot(idx n, T a, const T *__restrict x, T *__restrict y, const T *__restrict z) {
  T s = T(0);
  if (z == nullptr) {
#pragma omp simd reduction(+ : s)
    for (idx i = 0; i < n; ++i) {
      y[i] += a * x[i];
      s += y[i] * y[i];
    }
  } else {
#pragma omp simd reduction(+ : s)
    for (idx i = 0; i < n; ++i) {
      y[i] += a * x[i];
      s += y[i] * z[i];
    }
  }
  return s;
}

int fail(const int *ipar, int error, std::initializer_list<log::Value> values) {
  report_error(ipar, error, values);
  return rq::kBadParameter;
}

// Forms x + sum y_i v_i (or z_i with a preconditioner) into x (target 0) or
// into b (target > 0, x unchanged); nothing for a negative target. Writes
// only y in tmp.
template <class T>
int form_solution(const int *ipar, T *tmp, T *x, T *b, int target) {
  if (target < 0) return rq::kDone;
  const idx n = std::max(ipar[ip::kN], 0);
  const int j = ipar[ip::kInnerStep];
  if (j == 0) {
    if (target > 0 && b != x) vec::copy(n, x, b);
    return rq::kDone;
  }
  const int m = ipar[ip::kRestart];
  if (m < 1) return fail(ipar, kBadRestart, {m});
  if (j < 1 || j > m) return fail(ipar, kBadStep, {j, m});
  if (ipar[ip::kPosH] < 1) return fail(ipar, kBadPosH, {ipar[ip::kPosH]});
  if (ipar[ip::kPosG] < 1) return fail(ipar, kBadPosG, {ipar[ip::kPosG]});
  if (ipar[ip::kPosY] < 1) return fail(ipar, kBadPosY, {ipar[ip::kPosY]});
  const bool pre = ipar[ip::kPreconditioned] != 0;
  if (pre && ipar[ip::kPosZ] < 1) return fail(ipar, kBadPosZ, {ipar[ip::kPosZ]});

  // y = H^-1 g by back substitution on the packed triangle, column by column.
  const T *h = tmp + (ipar[ip::kPosH] - 1);
  T *y = tmp + (ipar[ip::kPosY] - 1);
  vec::copy<T>(j, tmp + (ipar[ip::kPosG] - 1), y);
  for (idx i = j; i >= 1; --i) {
    const T *col = h + i * (i - 1) / 2;
    y[i - 1] /= col[i - 1];
    const T yi = y[i - 1];
    for (idx l = 1; l < i; ++l) y[l - 1] -= yi * col[l - 1];
  }
  T *out = x;
  if (target > 0) {
    if (b != x) vec::copy(n, x, b);
    out = b;
  }
  const T *basis = pre ? tmp + (ipar[ip::kPosZ] - 1) : tmp;
  vec::combine(n, j, y, basis, n, out);
  return rq::kDone;
}

template <class T>
class Fgmres {
 public:
  Fgmres(int *ipar, T *dpar, T *tmp) : ipar_(ipar), dpar_(dpar), tmp_(tmp) {}

  // Runs stages until a request code is due.
  int run(T *x, const T *b) {
    int stage = ipar_[ip::kStage];
    for (;;) {
      switch (stage) {
        case 1:
        case 3: {
          if (ipar_[ip::kN] < 1) return fail(kBadLength, {ipar_[ip::kN]});
          const idx n = ipar_[ip::kN];
          vec::copy(n, x, slot(0));
          if (third_slot_fits()) vec::copy(n, b, slot(2));
          ipar_[ip::kPosIn] = 1;
          ipar_[ip::kPosOut] = position(n + 1);
          ipar_[ip::kStage] = stage == 1 ? 2 : 4;
          return rq::kMultiply;
        }
        case 2:
        case 4: {
          const idx n = length();
          vec::sub(n, third_slot_fits() ? slot(2) : b, slot(1), slot(0));
          const T d = vec::nrm2(n, slot(0));
          dpar_[dp::kResidual] = d;
          dpar_[dp::kStartResidual] = d;
          dpar_[dp::kBasisNorm] = d;
          if (stage == 2) dpar_[dp::kThreshold] = dpar_[dp::kRelTol] * d + dpar_[dp::kAbsTol];
          if (ipar_[ip::kOwnZeroNormTest] == 0) {
            ipar_[ip::kStage] = 5;
            return rq::kZeroNormTest;
          }
          if (d <= dpar_[dp::kZeroNormTol]) return rq::kDone;
          stage = 5;
          break;
        }
        case 5: {
          if (ipar_[ip::kPosG] < 2) return fail(kBadPosG, {ipar_[ip::kPosG]});
          const T beta = dpar_[dp::kResidual];
          if (beta < T(0)) return fail(kNegativeResidual, {dpar_[dp::kResidual]});
          if (beta == T(0)) {
            report_error(ipar_, kZeroResidual, {dpar_[dp::kResidual]});
            return rq::kDivisionByZero;
          }
          vec::scale(length(), T(1) / beta, slot(0));
          *at(ipar_[ip::kPosG]) = beta;
          stage = preconditioned() ? 10 : 6;
          break;
        }
        case 6:
        case 10: {
          const int cont = stage == 6 ? 7 : 11;
          const int code = decide(cont);
          if (code != kContinue) return code;
          stage = cont;
          break;
        }
        case 7:
        case 11: {
          const int m = ipar_[ip::kRestart];
          const int k = ipar_[ip::kInnerStep];
          if (m < 1) return fail(kBadRestart, {m});
          if (k < 0 || k > m) return fail(kBadStep, {k, m});
          if (k == m) {
            // The cycle is full: x takes its correction and the method restarts.
            const int code = form_solution<T>(ipar_, tmp_, x, nullptr, 0);
            if (code != rq::kDone) return code;
            ipar_[ip::kInnerStep] = 0;
            stage = 3;
            break;
          }
          const idx n = length();
          if (stage == 11 && ipar_[ip::kPosZ] < 1) return fail(kBadPosZ, {ipar_[ip::kPosZ]});
          ++ipar_[ip::kIterations];
          ipar_[ip::kPosIn] = position(k * n + 1);
          if (stage == 7) {
            ipar_[ip::kPosOut] = position(k * n + n + 1);
            ipar_[ip::kStage] = 8;
            return rq::kMultiply;
          }
          ipar_[ip::kPosOut] = position(k * n + ipar_[ip::kPosZ]);
          ipar_[ip::kStage] = 12;
          return rq::kPrecondition;
        }
        case 12: {
          const idx n = length();
          const idx k = ipar_[ip::kInnerStep];
          ipar_[ip::kPosIn] = position(ipar_[ip::kPosZ] + k * n);
          ipar_[ip::kPosOut] = position(k * n + n + 1);
          ipar_[ip::kStage] = 13;
          return rq::kMultiply;
        }
        case 8:
        case 13: {
          const int code = orthogonalise();
          if (code != kContinue) return code;
          const int next = stage == 8 ? 9 : 14;
          if (ipar_[ip::kOwnZeroNormTest] == 0) {
            ipar_[ip::kStage] = next;
            return rq::kZeroNormTest;
          }
          if (dpar_[dp::kBasisNorm] <= dpar_[dp::kZeroNormTol]) return rq::kDone;
          stage = next;
          break;
        }
        case 9:
        case 14: {
          const int code = rotate();
          if (code != kContinue) return code;
          stage = stage == 9 ? 6 : 10;
          break;
        }
        default:
          return rq::kDone;
      }
    }
  }

  // Gram-Schmidt of the new vector w at ipar(23) against v1 .. vj, its norm,
  // and the earlier rotations applied to column j of H.
  int orthogonalise() {
    const int m = ipar_[ip::kRestart];
    const int k = ipar_[ip::kInnerStep];
    if (m < 1) return fail(kBadRestart, {m});
    if (k < 0 || k >= m) return fail(kBadStep, {k, m});
    if (ipar_[ip::kN] < 1) return fail(kBadLength, {ipar_[ip::kN]});
    if (ipar_[ip::kPosH] < 1) return fail(kBadPosH, {ipar_[ip::kPosH]});
    if (ipar_[ip::kPosCos] < 1) return fail(kBadPosCos, {ipar_[ip::kPosCos]});
    if (ipar_[ip::kPosSin] < 1) return fail(kBadPosSin, {ipar_[ip::kPosSin]});
    if (ipar_[ip::kPosOut] < 1) return fail(kBadPosOut, {ipar_[ip::kPosOut]});
    const idx n = ipar_[ip::kN];
    const int j = k + 1;
    ipar_[ip::kInnerStep] = j;
    T *w = at(ipar_[ip::kPosOut]);
    T *hj = h_column(j);

    // Modified Gram-Schmidt; each pass subtracts one projection and takes the
    // next inner product (the last pass takes w . w).
    T h = vec::dot(n, w, slot(0));
    for (int i = 1; i <= j; ++i) {
      hj[i - 1] = h;
      h = axpy_dot(n, -h, slot(i - 1), w, i < j ? slot(i) : nullptr);
    }
    constexpr T kTiny = std::numeric_limits<T>::min() / std::numeric_limits<T>::epsilon();
    dpar_[dp::kBasisNorm] =
        std::isfinite(h) && (h >= kTiny || h == T(0)) ? std::sqrt(h) : vec::nrm2(n, w);

    const T *c = at(ipar_[ip::kPosCos]);
    const T *s = at(ipar_[ip::kPosSin]);
    for (int i = 1; i < j; ++i) {
      const T t = hj[i - 1];
      hj[i - 1] = c[i - 1] * t + s[i - 1] * hj[i];
      hj[i] = c[i - 1] * hj[i] - s[i - 1] * t;
    }
    return kContinue;
  }

  // The new basis vector w / ||w|| and the rotation that zeroes H(j+1,j).
  int rotate() {
    const T t = dpar_[dp::kBasisNorm];
    if (t < T(0)) return fail(kNegativeNorm, {dpar_[dp::kBasisNorm]});
    if (t == T(0)) {
      report_error(ipar_, kZeroNorm, {dpar_[dp::kBasisNorm]});
      return rq::kDivisionByZero;
    }
    const int m = ipar_[ip::kRestart];
    const int j = ipar_[ip::kInnerStep];
    if (m < 1) return fail(kBadRestart, {m});
    if (j < 1 || j > m) return fail(kBadStep, {j, m});
    if (ipar_[ip::kN] < 1) return fail(kBadLength, {ipar_[ip::kN]});
    if (ipar_[ip::kPosH] < 1) return fail(kBadPosH, {ipar_[ip::kPosH]});
    if (ipar_[ip::kPosCos] < 1) return fail(kBadPosCos, {ipar_[ip::kPosCos]});
    if (ipar_[ip::kPosSin] < 1) return fail(kBadPosSin, {ipar_[ip::kPosSin]});
    if (ipar_[ip::kPosG] < 1) return fail(kBadPosG, {ipar_[ip::kPosG]});
    if (ipar_[ip::kPosOut] < 1) return fail(kBadPosOut, {ipar_[ip::kPosOut]});
    vec::scale(static_cast<idx>(ipar_[ip::kN]), T(1) / t, at(ipar_[ip::kPosOut]));

    T *hjj = h_column(j) + (j - 1);
    const T d = *hjj;
    const T rho = std::hypot(d, t);
    if (rho == T(0)) {
      report_error(ipar_, kDegenerateRotation);
      return rq::kDivisionByZero;
    }
    const T c = d / rho;
    const T s = t / rho;
    *hjj = s * t + c * d;
    if (*hjj == T(0)) {
      report_error(ipar_, kDegenerateHessenberg, {ipar_[ip::kIterations]});
      return rq::kDivisionByZero;
    }
    at(ipar_[ip::kPosCos])[j - 1] = c;
    at(ipar_[ip::kPosSin])[j - 1] = s;
    T *g = at(ipar_[ip::kPosG]);
    dpar_[dp::kPrevResidual] = dpar_[dp::kResidual];
    g[j] = -s * g[j - 1];
    g[j - 1] = c * g[j - 1];
    dpar_[dp::kResidual] = std::fabs(g[j]);
    return kContinue;
  }

  // The stopping decision; kContinue goes on at stage `cont` in this call.
  int decide(int cont) {
    const bool limit = ipar_[ip::kLimitTest] != 0;
    const bool residual = ipar_[ip::kResidualTest] != 0;
    const bool user = ipar_[ip::kUserTest] != 0;
    const T res = dpar_[dp::kResidual];
    const bool converged = res <= dpar_[dp::kThreshold];
    auto ask = [&] {
      ipar_[ip::kStage] = cont;
      return rq::kUserTest;
    };
    if (!limit) {
      if (!residual) {
        if (user) return ask();
        report_error(ipar_, kNoStoppingTest);
        return rq::kNoStoppingTest;
      }
      if (converged) return rq::kDone;
      return user ? ask() : kContinue;
    }
    if (ipar_[ip::kIterations] >= ipar_[ip::kMaxIterations])
      return residual && dpar_[dp::kThreshold] < res ? rq::kLimitReached : rq::kDone;
    if (!residual) {
      if (user) return ask();
      return res == T(0) ? rq::kDone : kContinue;
    }
    if (converged) return rq::kDone;
    return user ? ask() : kContinue;
  }

  int fail(int error, std::initializer_list<log::Value> values) {
    return iterative::fail(ipar_, error, values);
  }

  // The start keeps a copy of b in the third vector slot when the caller's
  // array has room for it there (m = 1 without a preconditioner may leave
  // less than 3 n doubles); otherwise b is read again.
  bool third_slot_fits() const {
    const std::int64_t n = ipar_[ip::kN];
    const std::int64_t m = ipar_[ip::kRestart];
    if (m < 1) return false;
    const std::int64_t size = n * (m + 1) + m * (m + 9) / 2 + 1 + (preconditioned() ? n * m : 0);
    return 3 * n <= size;
  }

  bool preconditioned() const { return ipar_[ip::kPreconditioned] != 0; }
  idx length() const { return std::max(ipar_[ip::kN], 0); }
  T *at(idx position) { return tmp_ + (position - 1); }
  T *slot(idx k) { return tmp_ + k * length(); }
  // Column j of H (rows 1 .. j).
  T *h_column(idx j) { return at(ipar_[ip::kPosH] + j * (j - 1) / 2); }
  static int position(idx p) { return static_cast<int>(p); }

  int *ipar_;
  T *dpar_;
  T *tmp_;
};

}  // namespace

template <class T>
void fgmres_init(const int *n, const T *, const T *, int *rci_request, int *ipar, T *dpar, T *tmp) {
  *rci_request = rq::kBusy;
  set_shared_defaults(*n, ipar);
  ipar[ip::kOwnZeroNormTest] = 0;
  ipar[ip::kSolutionTarget] = 0;
  ipar[ip::kInnerStep] = 0;
  ipar[ip::kRestart] = ipar[ip::kMaxIterations];
  dpar[dp::kRelTol] = T(1.0E-6);
  for (int i = dp::kAbsTol; i <= dp::kBasisNorm; ++i) dpar[i] = T(0);
  dpar[dp::kZeroNormTol] = T(1.0E-12);
  vec::zero(static_cast<idx>(*n), tmp);
  *rci_request = rq::kDone;
}

template <class T>
void fgmres_check(const int *n, const T *, const T *, int *rci_request, int *ipar, T *dpar) {
  bool corrected = false, not_corrected = false;
  auto warn = [&](bool fixed, int number, std::initializer_list<log::Value> values) {
    report_warning(ipar, number, values);
    (fixed ? corrected : not_corrected) = true;
  };
  if (ipar[ip::kLimitTest] == 0 && ipar[ip::kResidualTest] == 0 && ipar[ip::kUserTest] == 0) {
    ipar[ip::kLimitTest] = 1;
    ipar[ip::kResidualTest] = 1;
    warn(true, 300, {});
  }
  if (ipar[ip::kResidualTest] != 0) {
    const T rel = dpar[dp::kRelTol];
    if (!(rel >= T(0) && rel <= T(1))) {
      dpar[dp::kRelTol] = T(1.0E-6);
      warn(true, 301, {rel, dpar[dp::kRelTol]});
    }
    const T abs = dpar[dp::kAbsTol];
    if (abs < T(0)) {
      dpar[dp::kAbsTol] = T(0);
      warn(true, 302, {abs, dpar[dp::kAbsTol]});
    }
    if (dpar[dp::kRelTol] == T(0) && dpar[dp::kAbsTol] == T(0))
      warn(false, 303, {dpar[dp::kRelTol], dpar[dp::kAbsTol]});
  }
  if (ipar[ip::kOwnZeroNormTest] != 0) {
    const T tol = dpar[dp::kZeroNormTol];
    if (tol < T(0)) {
      dpar[dp::kZeroNormTol] = T(1.0E-12);
      warn(true, 304, {tol, dpar[dp::kZeroNormTol]});
    } else if (tol == T(0)) {
      warn(false, 305, {tol});
    }
  }
  if (ipar[ip::kN] != *n) warn(false, 306, {ipar[ip::kN], *n});
  if (ipar[ip::kN] < 1) {
    report_error(ipar, kBadLengthAtCheck, {ipar[ip::kN]});
    *rci_request = chk::kFatal;
    return;
  }
  if (ipar[ip::kStage] != 1) warn(false, 307, {ipar[ip::kStage]});
  if (ipar[ip::kLimitTest] != 0) {
    const int left = difference(ipar[ip::kMaxIterations], ipar[ip::kIterations]);
    if (ipar[ip::kMaxIterations] < 0) warn(false, 308, {ipar[ip::kMaxIterations], left});
    if (ipar[ip::kIterations] != 0) warn(false, 309, {ipar[ip::kIterations], left});
    if (ipar[ip::kIterations] >= ipar[ip::kMaxIterations])
      warn(false, 310, {ipar[ip::kMaxIterations], ipar[ip::kIterations]});
  }
  if (ipar[ip::kRestart] < 1) {
    report_error(ipar, kBadRestartAtCheck,
                 {ipar[ip::kRestart], difference(ipar[ip::kMaxIterations], ipar[ip::kIterations])});
    *rci_request = chk::kFatal;
    return;
  }
  const std::int64_t nn = ipar[ip::kN];
  const std::int64_t m = ipar[ip::kRestart];
  const std::int64_t basis = nn * (m + 1);
  ipar[ip::kPosH] = static_cast<int>(basis + 1);
  ipar[ip::kPosCos] = static_cast<int>(basis + m * (m + 1) / 2 + 1);
  ipar[ip::kPosSin] = static_cast<int>(basis + m * (m + 3) / 2 + 1);
  ipar[ip::kPosG] = static_cast<int>(basis + m * (m + 5) / 2 + 1);
  ipar[ip::kPosY] = static_cast<int>(basis + m * (m + 7) / 2 + 2);
  ipar[ip::kPosZ] = static_cast<int>(basis + m * (m + 9) / 2 + 2);
  if (ipar[ip::kInnerStep] != 0) warn(false, 311, {ipar[ip::kInnerStep]});
  *rci_request = !corrected && !not_corrected
                     ? chk::kOk
                     : chk::kBase - (not_corrected ? chk::kNotCorrected : 0) -
                           (corrected ? chk::kCorrected : 0);
}

template <class T>
void fgmres(const int *, T *x, const T *b, int *rci_request, int *ipar, T *dpar, T *tmp) {
  *rci_request = Fgmres<T>(ipar, dpar, tmp).run(x, b);
}

template <class T>
void fgmres_get(const int *, T *x, T *b, int *rci_request, const int *ipar, const T *dpar, T *tmp,
                int *itercount) {
  *rci_request = rq::kBusy;
  *itercount = ipar[ip::kIterations];
  *rci_request = form_solution(ipar, tmp, x, b, ipar[ip::kSolutionTarget]);
}

template void fgmres_init(const int *, const double *, const double *, int *, int *, double *,
                          double *);
template void fgmres_check(const int *, const double *, const double *, int *, int *, double *);
template void fgmres(const int *, double *, const double *, int *, int *, double *, double *);
template void fgmres_get(const int *, double *, double *, int *, const int *, const double *,
                         double *, int *);

}  // namespace orb::iterative
