// The sparse direct solver's printed texts: the error report, the
// allocation-failure lines, the statistics banner and the refinement lines
// (records in the layout of the Fortran edit descriptors they were specified
// with: Fw.0 for step numbers, E12.3 for values).
#pragma once

#include <cstdint>
#include <string>

namespace orb::sparse::text {

// Labels of the stage-failure report ("*** Error in TESSERA  (<label>)
// error_num= <status>"), each 24 characters.
enum class Stage {
  kReordering,
  kOpenOocFiles,
  kInsufficientMemory,
  kInternalUnclassified,
  kOocMemory,
  kNumericalFactorization,
  kSequence,
  kOverflow,
  kIncorrectMatrix,
  kPrereordering,
  kOocReadWrite,
};
std::string stage_error(Stage stage, int status);
// "*** Error in TESSERA  (contradictory input, initialization failed)"
extern const char *const kContradictoryInput;

// Storage classes of the allocation-failure line.
enum class Storage {
  kBasic,
  kCgsArrays,
  kFactorAddresses,
  kFactorValues,
  kLocalInt1,
  kLocalInt2,
  kStructureFinal,
  kStructure0,
  kStructure1,
  kStructure2,
  kUpdateLengths,
  kWorkInt,
  kWorkReal,
};
std::string allocation_error(Storage storage, std::int64_t bytes);

// Other fixed lines.
extern const char *const kIdoBelowMinusOne;
extern const char *const kIdoInitialization;
extern const char *const kCleanImpossible;
extern const char *const kWrongMatrixNumber;     // %d
extern const char *const kDiagonalOnlySymbolic;  // %d
extern const char *const kPreorderingFailed;     // %d %d
extern const char *const kZeroPivot;
extern const char *const kNotSpd;
extern const char *const kFactorNoMemory;
extern const char *const kCgsError;  // %d
extern const char *const kUnclassified;
extern const char *const kReorderingSymbolic;
extern const char *const kIterativeRefinement;
extern const char *const kInternalError;
extern const char *const kPintSize;
extern const char *const kSystemError;

// The statistics banner naming the matrix type (empty for an unknown type).
std::string banner(int mtype);
// The storage-mode line for iparam(60) = 0, 1 (in core) and the out-of-core ones.
enum class Mode { kInCoreOff, kInCoreEnoughRam, kOutOfCoreNotEnoughRam, kOutOfCoreForced };
const char *mode_line(Mode mode);

// Edit descriptors: Fw.0 and E12.3.
std::string fortran_f0(double v, int width);
std::string fortran_e12_3(double v);

// Refinement records.
std::string refine_ratios(int step, double rel_res, double rel_err);
std::string refine_dx_x(int step, double sumdx, double sumx);
std::string refine_res_rhs(int step, double sumres, double sumrhs);
std::string refine_warning(int step, double sumres, double sumrhs);
std::string cgs_init(int step, double a, double b);
std::string cgs_iteration(int step, double v);
std::string cg_iteration(int step, double v);
std::string cg_iteration_pair(double a, double b);

// Prints a line and a line feed on standard output and flushes.
void put(const std::string &line);
// printf-style into a string.
std::string format(const char *fmt, ...);

}  // namespace orb::sparse::text
