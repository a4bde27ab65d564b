// The sparse direct solver's interface layer: the front routine behind the
// exported entry, the phase driver that owns the handle, and the records the
// handle points to.
//
// The handle is the caller's array of pointer-sized words (32-bit in the
// 32-bit build):
//   word 0      the internal state record (nonzero once initialised)
//   word 3      the per-factorization table, maxfct entries of six int32
//   word 4      the analysis (ordering, symbolic factor, matrix maps)
//   words 5-15  further analysis blocks (none yet; freed like word 4)
//   word 16     the out-of-core block: four records
// Words 1, 2 and 17 stay zero.
#pragma once

#include <algorithm>
#include <complex>
#include <cstdint>
#include <memory>
#include <vector>

#include "sparse_direct/matching.h"
#include "sparse_direct/numeric.h"
#include "sparse_direct/symbolic.h"

namespace orb::sparse {

using c16 = std::complex<double>;

constexpr int kVersion = 106;     // iparam(64) on every call
constexpr int kUnset = 777777;    // a working parameter not yet set; an empty table entry
constexpr int kHandleWords = 18;  // words 0..17 of the caller's handle are used

// Handle word numbers.
enum HandleWord : int { kWordState = 0, kWordTable = 3, kWordAnalysis = 4, kWordOoc = 16 };

// The per-factorization table entry (six 32-bit words).
enum TableWord : int {
  kEntryFactored = 0,  // 1 once a factorization of this number completed
  kEntryMark = 1,      // kUnset when empty, else the factorization's number
  kEntryPerturbed = 2,
  kEntryPositive = 3,
  kEntryNegative = 4,
  kEntrySteps = 5,  // refinement steps of the last solve with it
};
constexpr int kEntryWords = 6;

// The out-of-core block: the data file's path (1024 characters, blanks), the
// integer settings (word 0 iparam(60), word 3 msglvl, word 11 4), the real
// settings, and the file layer's record.
struct OocBlock {
  char *path = nullptr;
  int *isettings = nullptr;
  double *dsettings = nullptr;
  void *files = nullptr;
};
constexpr int kOocPathChars = 1024;
constexpr int kOocSettings = 128;
constexpr int kOocSpecialState = -9;  // isettings[1]: iparam(15) is left alone
// Further words of the integer settings: 1 once the settings were read, the
// maximal in-core size (megabytes), the keep-file flag, the handle's serial
// number in the data files' names.
enum OocSetting : int { kOocConfigured = 2, kOocMaxCore = 4, kOocKeep = 5, kOocSerial = 6 };

// Error codes of out-of-core mode: no memory for its buffers, a data file
// that cannot be opened, a data file that cannot be read or written.
constexpr int kErrorOocMemory = -9;
constexpr int kErrorOocOpen = -10;
constexpr int kErrorOocReadWrite = -11;

// Internal working-parameter slots (indices into State::work).
enum WorkSlot : int {
  kWorkRefineSteps = 0,   // steps of the last refinement
  kWorkRefineStatus = 1,  // 0, or -112 when refinement failed to improve
  kWorkPerturbed = 2,
  kWorkPositive = 3,
  kWorkNegative = 4,
  kWorkIparam26 = 5,  // iparam(26) as it was at the analysis
  kWorkFailedEq = 6,  // equation of a non-positive pivot (1-based)
  kWorkMatching = 7,  // iparam(13) of the analysis (types -2, -4, 6, 11, 13), else 0
  kWorkScaling = 8,   // 1 when the matching's scaling goes with it (iparam(11) = 1)
};

struct Factorization;

// The internal state record.
struct State {
  int work[100];        // working parameters, kUnset at each analysis
  double tolerance[4];  // 10.0, 1.0, 1.0e-12, 1.0e-30 from each analysis
  int limits[7];        // 2147483647, 6, 2, 1, 1, 1, 10000 from each analysis
  int maxfct = 0;       // the table's size, fixed at initialisation
  int mtype = 0;        // the type analysed
  int n = 0;
  std::int64_t nnz = 0;  // stored entries at the analysis
  // Statistics of the last stages (msglvl > 0).
  double time_analysis = 0, time_factor = 0, time_solve = 0;
  double factor_flops = 0;
  double refine_rel_res = 0, refine_rel_err = 0;  // last refinement step's figures
  int cg_iterations = 0;
  // Memory figures in bytes.
  std::int64_t peak_analysis = 0, permanent = 0, factor_bytes = 0;
  // The factorizations the table's entries stand for (maxfct of them).
  std::vector<std::unique_ptr<Factorization>> factors;
};

// Everything the analysis leaves for the factorization and the solve.
struct Analysis {
  int mtype = 0;
  int n = 0;
  bool complex = false;
  FactorKind kind = FactorKind::kCholesky;
  Symbolic symbolic;
  // The factorization's matrix in pivot order, compressed columns: its
  // pattern, and for input entry k of the caller's arrays the position it
  // adds to (-1 when it is not used: below the diagonal of a symmetric type)
  // and whether it goes in conjugated (a Hermitian entry moved across the
  // diagonal).
  std::vector<int> col_ptr, row;
  std::vector<std::int64_t> dest;
  std::vector<unsigned char> conj;
  std::vector<int> input_ptr;  // the caller's row starts at analysis (0-based)
  std::vector<int> input_col;  // the caller's columns at analysis (0-based)
  // Preprocessing: B = P Pm Dr A Dc P^T (unsymmetric) or P S A S P^T.
  bool matched = false;                      // rows permuted by the matching
  std::vector<int> match_row;                // match_row[j]: the caller's row placed j-th
  std::vector<double> row_scale, col_scale;  // empty when not scaled
  std::int64_t bytes() const;
};

// A numerical factorization held in the handle.
struct Factorization {
  bool complex = false;
  NumericFactor<double> real;
  NumericFactor<c16> cplx;
  double pivot_floor = 0;
  bool out_of_core = false;
  std::int64_t peak_in_core = 0;  // out of core: the most held in core while factoring
  std::int64_t bytes() const {
    const std::int64_t held = complex ? cplx.bytes() : real.bytes();
    return out_of_core ? std::max(held, peak_in_core) : held;
  }
};

// What a phase call carries below the front routine.
struct Call {
  void **pt;
  int maxfct, mnum, mtype, phase, n;
  const void *a;
  const int *ia, *ja;
  int *perm;
  int nrhs;
  int *iparam;
  int msglvl;
  void *b, *x;
  int threads;
};

// The front routine: queries, the diagonal shortcut, the thread count, then
// the phase driver. Sets *error.
void front(void **pt, const int *maxfct, const int *mnum, const int *mtype, const int *phase,
           const int *n, const void *a, const int *ia, const int *ja, int *perm, const int *nrhs,
           int *iparam, const int *msglvl, void *b, void *x, int *error);

// The phase driver: returns the error code of the call.
int drive(const Call &call);

// The diagonal shortcut's solvers: x = b / diag (or over b when `over_b`),
// the stored entry of each row taken as its diagonal. `solve` false checks
// only. Return 0 or a failure status. The real one counts the signs of the
// diagonal into *positive, *negative.
int diagonal_solve_real(int n, int nrhs, const int *ia, const int *ja, const double *a, double *b,
                        double *x, int over_b, bool solve, int threads, int *positive,
                        int *negative);
int diagonal_solve_complex(int n, int nrhs, const int *ia, const int *ja, const c16 *a, c16 *b,
                           c16 *x, int over_b, bool solve, int threads);

// Whether an mtype code is one the solver knows, and whether it is complex.
bool known_mtype(int mtype);
bool complex_mtype(int mtype);

}  // namespace orb::sparse
