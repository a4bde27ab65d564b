#include "sparse_direct/messages.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace orb::sparse::text {

namespace {

const char *stage_label(Stage s) {
  switch (s) {
    case Stage::kReordering:
      return "        reordering_phase";
    case Stage::kOpenOocFiles:
      return "      open OOC tmp files";
    case Stage::kInsufficientMemory:
      return "     insufficient_memory";
    case Stage::kInternalUnclassified:
      return " internal_error,unclass.";
    case Stage::kOocMemory:
      return " not enough mem. for OOC";
    case Stage::kNumericalFactorization:
      return " numerical_factorization";
    case Stage::kSequence:
      return " sequence_ido,parameters";
    case Stage::kOverflow:
      return "32-bit overflow problem.";
    case Stage::kIncorrectMatrix:
      return "incorrect input matrix  ";
    case Stage::kPrereordering:
      return "prereordering_mtype11,13";
    case Stage::kOocReadWrite:
      return "read/write OOC data file";
  }
  return " internal_error,unclass.";
}

const char *storage_label(Storage s) {
  switch (s) {
    case Storage::kBasic:
      return "BASIC   ";
    case Storage::kCgsArrays:
      return "CGS_ARR ";
    case Storage::kFactorAddresses:
      return "FACT_ADR";
    case Storage::kFactorValues:
      return "FACT_L&U";
    case Storage::kLocalInt1:
      return "LOC_INT1";
    case Storage::kLocalInt2:
      return "LOC_INT2";
    case Storage::kStructureFinal:
      return "STRUC_FI";
    case Storage::kStructure0:
      return "STRUC_S0";
    case Storage::kStructure1:
      return "STRUC_S1";
    case Storage::kStructure2:
      return "STRUC_S2";
    case Storage::kUpdateLengths:
      return "UP_UPLEN";
    case Storage::kWorkInt:
      return "WORK_I0 ";
    case Storage::kWorkReal:
      return "WORK_R0 ";
  }
  return "BASIC   ";
}

}  // namespace

std::string format(const char *fmt, ...) {
  char buf[512];
  va_list ap;
  va_start(ap, fmt);
  std::vsnprintf(buf, sizeof buf, fmt, ap);
  va_end(ap);
  return buf;
}

void put(const std::string &line) {
  std::fputs(line.c_str(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

std::string stage_error(Stage stage, int status) {
  return format("*** Error in TESSERA  (%s) error_num= %d", stage_label(stage), status);
}

const char *const kContradictoryInput =
    "*** Error in TESSERA  (contradictory input, initialization failed)";

std::string allocation_error(Storage storage, std::int64_t bytes) {
  // The figure is an int in the message; larger requests show the largest one.
  const int shown = bytes > 2147483647 ? 2147483647 : int(bytes);
  return format("*** Error in TESSERA memory allocation: %s, size to allocate: %d bytes",
                storage_label(storage), shown);
}

const char *const kIdoBelowMinusOne = "*** Error in TESSERA: ido < -1";
const char *const kIdoInitialization = "*** Error in TESSERA: ido < 1 and initialization";
const char *const kCleanImpossible = "*** Error in TESSERA: clean impossible (ido?)";
const char *const kWrongMatrixNumber = "*** Error in TESSERA: wrong matrix number, clean %d";
const char *const kDiagonalOnlySymbolic =
    "*** Error in TESSERA: only symb. fact. diagonal matrix case %d";
const char *const kPreorderingFailed =
    "*** Error in TESSERA: preordering failed after %d neqns out of %d";
const char *const kZeroPivot = "*** Error in TESSERA: zero pivot";
const char *const kNotSpd = "*** Error in TESSERA: zero or negative pivot, A is not SPD-matrix";
const char *const kFactorNoMemory =
    "*** Error in TESSERA: internal error, insufficient memory factorization";
const char *const kCgsError = "*** Error in TESSERA: cgs error iparam(20) %d";
const char *const kUnclassified = "*** Error in TESSERA: unclassified error";
const char *const kReorderingSymbolic = "*** error TESSERA: reordering, symb. factorization";
const char *const kIterativeRefinement = "*** error TESSERA: iterative refinement";
const char *const kInternalError = "*** TESSERA error: internal error";
const char *const kPintSize = "*** TESSERA error: unknown bit size of pint ***";
const char *const kSystemError = "System error in TESSERA";

std::string banner(int mtype) {
  const char *what = nullptr;
  switch (mtype) {
    case 2:
      what = "symm. posit. def. system";
      break;
    case -2:
      what = " symmetric indef. system";
      break;
    case 1:
      what = "real struct. sym. system";
      break;
    case 11:
      what = "real nonsymmetric system";
      break;
    case 4:
      what = "  Herm. pos. def. system";
      break;
    case -4:
      what = " Hermitian indef. system";
      break;
    case 3:
      what = " compl. str. sym. system";
      break;
    case 6:
      what = " complex symmetr. system";
      break;
    case 13:
      what = "  complex nonsym. system";
      break;
    default:
      return std::string();
  }
  return format("================  TESSERA: solving a %s  ================", what);
}

const char *mode_line(Mode mode) {
  switch (mode) {
    case Mode::kInCoreOff:
      return "=== TESSERA is running in In-Core mode, because iparam(60)=0 ===";
    case Mode::kInCoreEnoughRam:
      return "=== TESSERA is running in In-Core mode, because iparam(60)=1 and there is enough RAM "
             "for In-Core ===";
    case Mode::kOutOfCoreNotEnoughRam:
      return "=== TESSERA is running in Out-Of-Core mode, because iparam(60)=1 and there is not "
             "enough RAM for In-Core ===";
    case Mode::kOutOfCoreForced:
      return "=== TESSERA is running in Out-Of-Core mode, because iparam(60)=2 ===";
  }
  return "";
}

std::string fortran_f0(double v, int width) {
  // Fw.0: the value rounded to an integer and a decimal point, right-justified;
  // asterisks when it does not fit.
  std::string s = format("%.0f.", v);
  if (int(s.size()) > width) return std::string(width, '*');
  return std::string(width - s.size(), ' ') + s;
}

std::string fortran_e12_3(double v) {
  std::string s;
  if (std::isnan(v)) {
    s = "NaN";
  } else if (std::isinf(v)) {
    s = v > 0 ? "Infinity" : "-Infinity";
  } else {
    int exponent = 0;
    char digits[3] = {'0', '0', '0'};
    if (v != 0) {
      // d.dde+x gives the three significant digits after rounding; the
      // Fortran form is 0.ddd times 10 to (x + 1).
      char buf[32];
      std::snprintf(buf, sizeof buf, "%.2e", std::fabs(v));
      digits[0] = buf[0];
      digits[1] = buf[2];
      digits[2] = buf[3];
      exponent = std::atoi(buf + 5) + 1;
    }
    const int ax = exponent < 0 ? -exponent : exponent;
    std::string e = ax <= 99 ? format("E%c%02d", exponent < 0 ? '-' : '+', ax)
                             : format("%c%03d", exponent < 0 ? '-' : '+', ax);
    s = format("%s0.%c%c%c%s", v < 0 ? "-" : "", digits[0], digits[1], digits[2], e.c_str());
  }
  if (s.size() > 12) return std::string(12, '*');
  return std::string(12 - s.size(), ' ') + s;
}

std::string refine_ratios(int step, double rel_res, double rel_err) {
  return " ref_it:" + fortran_f0(step, 3) + " rel res" + fortran_e12_3(rel_res) + " rel err" +
         fortran_e12_3(rel_err);
}
std::string refine_dx_x(int step, double sumdx, double sumx) {
  return " ref_it:" + fortran_f0(step, 3) + " sumdx,sumx" + fortran_e12_3(sumdx) +
         fortran_e12_3(sumx);
}
std::string refine_res_rhs(int step, double sumres, double sumrhs) {
  return " ref_it:" + fortran_f0(step, 3) + " sumres,sumrhs" + fortran_e12_3(sumres) +
         fortran_e12_3(sumrhs);
}
std::string refine_warning(int step, double sumres, double sumrhs) {
  return "*** warning ref_it:" + fortran_f0(step, 3) + " sumres,sumrhs" + fortran_e12_3(sumres) +
         fortran_e12_3(sumrhs);
}
std::string cgs_init(int step, double a, double b) {
  return " cgs-init:" + fortran_f0(step, 4) + fortran_e12_3(a) + fortran_e12_3(b);
}
std::string cgs_iteration(int step, double v) {
  return " cgs-iteration:" + fortran_f0(step, 4) + fortran_e12_3(v);
}
std::string cg_iteration(int step, double v) {
  return " cg-iteration:" + fortran_f0(step, 4) + fortran_e12_3(v);
}
std::string cg_iteration_pair(double a, double b) {
  return " cg-iteration:" + fortran_e12_3(a) + fortran_e12_3(b);
}

}  // namespace orb::sparse::text
