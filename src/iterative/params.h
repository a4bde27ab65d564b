// Positions in the callers' ipar (integers) and dpar (doubles) arrays. The
// public documentation counts from 1 (ipar(1) is the vector length); these
// constants are the 0-based C++ indices, each with its 1-based name beside it.
#pragma once

#include <cstddef>

namespace orb::iterative {

namespace ip {
constexpr int kN = 0;                // ipar(1)  vector length
constexpr int kOutput = 1;           // ipar(2)  6 = console, else a log file
constexpr int kStage = 2;            // ipar(3)  state of the machine, 1 = start
constexpr int kIterations = 3;       // ipar(4)  iterations done
constexpr int kMaxIterations = 4;    // ipar(5)  iteration limit
constexpr int kReportErrors = 5;     // ipar(6)  errors in words
constexpr int kReportWarnings = 6;   // ipar(7)  warnings in words (ILUT: what to do)
constexpr int kLimitTest = 7;        // ipar(8)  iteration-limit test on
constexpr int kResidualTest = 8;     // ipar(9)  residual test on
constexpr int kUserTest = 9;         // ipar(10) caller's own test (request 2)
constexpr int kPreconditioned = 10;  // ipar(11) requests 3 occur

// FGMRES only.
constexpr int kOwnZeroNormTest = 11;  // ipar(12) solver tests dpar(8) itself
constexpr int kSolutionTarget = 12;   // ipar(13) where DFGMRES_GET writes
constexpr int kInnerStep = 13;        // ipar(14) step within the cycle
constexpr int kRestart = 14;          // ipar(15) basis vectors per cycle
constexpr int kPosH = 15;             // ipar(16) packed Hessenberg matrix
constexpr int kPosCos = 16;           // ipar(17) rotation cosines
constexpr int kPosSin = 17;           // ipar(18) rotation sines
constexpr int kPosG = 18;             // ipar(19) rotated right-hand side
constexpr int kPosY = 19;             // ipar(20) coefficients of the update
constexpr int kPosZ = 20;             // ipar(21) preconditioned vectors
constexpr int kPosIn = 21;            // ipar(22) input vector of a request
constexpr int kPosOut = 22;           // ipar(23) output vector of a request

// CG with several right-hand sides.
constexpr int kRhsInProgress = 29;  // ipar(30)
constexpr int kNrhs = 32;           // ipar(33)
constexpr int kMrhsStage = 38;      // ipar(39)
// ipar(128 + k): done flag of right-hand side k (1-based k);
// ipar(128 + nrhs + k): its iteration count.
constexpr std::ptrdiff_t kPerRhs = 127;

// Preconditioners.
constexpr int kReplacePivot = 30;  // ipar(31)
}  // namespace ip

namespace dp {
constexpr int kRelTol = 0;         // dpar(1)
constexpr int kAbsTol = 1;         // dpar(2)
constexpr int kStartResidual = 2;  // dpar(3)
constexpr int kThreshold = 3;      // dpar(4)
constexpr int kResidual = 4;       // dpar(5)
constexpr int kPrevResidual = 5;   // dpar(6)
constexpr int kAlpha = 6;          // dpar(7) CG step length
constexpr int kBeta = 7;           // dpar(8) CG direction update factor
constexpr int kBasisNorm = 6;      // dpar(7) FGMRES: newest basis vector's norm
constexpr int kZeroNormTol = 7;    // dpar(8) FGMRES: zero-norm tolerance
// dpar(128 + k): initial residual measure of right-hand side k;
// dpar(128 + nrhs + k): its final or current measure.
constexpr std::ptrdiff_t kPerRhs = 127;

// Preconditioners.
constexpr int kPivotThreshold = 30;  // dpar(31) ILU0 small-pivot bound, ILUT factor
constexpr int kPivotValue = 31;      // dpar(32) ILU0 replacement pivot
}  // namespace dp

// Request codes shared by the solvers.
namespace rq {
constexpr int kDone = 0;
constexpr int kMultiply = 1;
constexpr int kUserTest = 2;
constexpr int kPrecondition = 3;
constexpr int kZeroNormTest = 4;
constexpr int kLimitReached = -1;
constexpr int kZeroDenominator = -2;  // CG: p.Ap = 0
constexpr int kDivisionByZero = -10;
constexpr int kNoStoppingTest = -11;
constexpr int kBadParameter = -12;  // FGMRES
constexpr int kBusy = -10000;       // FGMRES entries, while working
// DCGMRHS: the caller's answer to request 2 that ends the right-hand side in progress.
constexpr int kStopThisRhs = 1003;
}  // namespace rq

// Result codes of the _CHECK routines.
namespace chk {
constexpr int kOk = 0;
constexpr int kBase = -1000;
constexpr int kNotCorrected = 1;
constexpr int kCorrected = 10;
constexpr int kFatal = -1100;
}  // namespace chk

constexpr int kConsole = 6;  // ipar(2) value for console output
constexpr int kMaxDefaultIterations = 150;

// The ipar entries both solvers' initialisation sets alike, for order n.
inline void set_shared_defaults(int n, int *ipar) {
  ipar[ip::kN] = n;
  ipar[ip::kOutput] = kConsole;
  ipar[ip::kStage] = 1;
  ipar[ip::kIterations] = 0;
  ipar[ip::kMaxIterations] = n < kMaxDefaultIterations ? n : kMaxDefaultIterations;
  ipar[ip::kReportErrors] = 1;
  ipar[ip::kReportWarnings] = 1;
  ipar[ip::kLimitTest] = 1;
  ipar[ip::kResidualTest] = 0;
  ipar[ip::kUserTest] = 1;
  ipar[ip::kPreconditioned] = 0;
}

}  // namespace orb::iterative
