// The phase driver: the handle's life, the parameter defaults, the stages
// and the mapping of their outcomes onto the caller's error code, the memory
// figures and the printed reports.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

#include "service/catalogue.h"
#include "sparse_direct/messages.h"
#include "sparse_direct/ooc.h"
#include "sparse_direct/prepare.h"
#include "sparse_direct/refine.h"
#include "sparse_direct/tessera.h"

namespace orb::sparse {

namespace {

using Clock = std::chrono::steady_clock;
double seconds_since(Clock::time_point t0) {
  return std::chrono::duration<double>(Clock::now() - t0).count();
}

State *state_of(void **pt) {
  return static_cast<State *>(pt[kWordState]);
}
int *table_of(void **pt) {
  return static_cast<int *>(pt[kWordTable]);
}
Analysis *analysis_of(void **pt) {
  return static_cast<Analysis *>(pt[kWordAnalysis]);
}
OocBlock *ooc_of(void **pt) {
  return static_cast<OocBlock *>(pt[kWordOoc]);
}

void clear_entry(int *entry) {
  for (int w = 0; w < kEntryWords; ++w) entry[w] = 0;
  entry[kEntryMark] = kUnset;
}

// Phase 0: one factorization.
void free_factorization(void **pt, int mnum) {
  State *st = state_of(pt);
  int *table = table_of(pt);
  if (st && mnum >= 1 && mnum <= int(st->factors.size())) st->factors[mnum - 1].reset();
  if (table && st && mnum >= 1 && mnum <= st->maxfct) clear_entry(table + kEntryWords * (mnum - 1));
}

// Every factorization, then the analysis blocks (words 15 down to 4).
void free_analysis(void **pt) {
  State *st = state_of(pt);
  if (st)
    for (int m = 1; m <= st->maxfct; ++m) free_factorization(pt, m);
  for (int w = 15; w >= 4; --w) {
    if (w == kWordAnalysis) delete analysis_of(pt);
    pt[w] = nullptr;
  }
}

void free_ooc(void **pt) {
  OocBlock *ooc = ooc_of(pt);
  if (ooc) {
    delete[] ooc->path;
    delete[] ooc->isettings;
    delete[] ooc->dsettings;
    delete[] static_cast<int *>(ooc->files);
    delete ooc;
  }
  pt[kWordOoc] = nullptr;
}

// Phase -1: everything, the handle reads as new again.
void free_all(void **pt) {
  free_analysis(pt);
  delete[] table_of(pt);
  pt[kWordTable] = nullptr;
  free_ooc(pt);
  delete state_of(pt);
  pt[kWordState] = nullptr;
}

// The out-of-core block and its four parts, cleared.
bool make_ooc(void **pt, const Call &c) {
  OocBlock *ooc = new (std::nothrow) OocBlock;
  if (!ooc) return false;
  pt[kWordOoc] = ooc;
  ooc->path = new (std::nothrow) char[kOocPathChars];
  ooc->isettings = new (std::nothrow) int[kOocSettings];
  ooc->dsettings = new (std::nothrow) double[kOocSettings];
  ooc->files = new (std::nothrow) int[kOocSettings];
  if (!ooc->path || !ooc->isettings || !ooc->dsettings || !ooc->files) return false;
  for (int i = 0; i < kOocPathChars; ++i) ooc->path[i] = ' ';
  for (int i = 0; i < kOocSettings; ++i) {
    ooc->isettings[i] = 0;
    ooc->dsettings[i] = 0;
    static_cast<int *>(ooc->files)[i] = 0;
  }
  ooc->isettings[0] = c.iparam[59];
  ooc->isettings[3] = c.msglvl;
  ooc->isettings[11] = 4;
  return true;
}

void set_defaults(int mtype, int *ip) {
  int p10 = 0, p11 = 0, p13 = 0, p21 = 0;
  switch (mtype) {
    case 1:
    case 3:
      p10 = 13;
      break;
    case -2:
    case -4:
    case 6:
      p10 = 8;
      p21 = 1;
      break;
    case 11:
    case 13:
      p10 = 13;
      p11 = 1;
      p13 = 1;
      break;
    default:
      break;
  }
  ip[1] = 2;
  ip[3] = 0;
  ip[4] = 0;
  ip[5] = 0;
  ip[6] = 0;
  ip[7] = 0;
  ip[8] = 0;
  ip[9] = p10;
  ip[10] = p11;
  ip[11] = 0;
  ip[12] = p13;
  ip[13] = 0;
  ip[17] = -1;
  ip[18] = -1;
  ip[19] = 0;
  ip[20] = p21;
  ip[21] = 0;
  ip[22] = 0;
  ip[23] = 0;
  ip[24] = 0;
  ip[49] = 0;
  ip[59] = 0;
}

void reset_working(State *st, const Call &c) {
  for (int &w : st->work) w = kUnset;
  const double tol[4] = {10.0, 1.0, 1.0e-12, 1.0e-30};
  const int limits[7] = {2147483647, 6, 2, 1, 1, 1, 10000};
  for (int i = 0; i < 4; ++i) st->tolerance[i] = tol[i];
  for (int i = 0; i < 7; ++i) st->limits[i] = limits[i];
  st->work[kWorkIparam26] = c.iparam[25];
  const bool preprocessed =
      c.mtype == -2 || c.mtype == -4 || c.mtype == 6 || c.mtype == 11 || c.mtype == 13;
  st->work[kWorkMatching] = preprocessed && c.iparam[12] > 0 ? c.iparam[12] : 0;
  st->work[kWorkScaling] = st->work[kWorkMatching] > 0 && c.iparam[10] == 1 ? 1 : 0;
  st->mtype = c.mtype;
  st->n = c.n;
}

constexpr std::int64_t kib(std::int64_t bytes) {
  return (bytes + 1023) / 1024;
}

void write_memory(void **pt, int *ip) {
  const State *st = state_of(pt);
  std::int64_t peak = 0, permanent = 0, factor = 0;
  if (st) {
    peak = st->peak_analysis;
    permanent = st->permanent;
    for (const auto &f : st->factors)
      if (f) factor += f->bytes();
  }
  auto clamp = [](std::int64_t v) { return int(v > 2147483647 ? 2147483647 : v); };
  const OocBlock *ooc = ooc_of(pt);
  if (!(ooc && ooc->isettings && ooc->isettings[1] == kOocSpecialState)) ip[14] = clamp(kib(peak));
  ip[15] = clamp(kib(permanent));
  ip[16] = clamp(kib(factor));
  ip[63] = kVersion;
}

// The outcome of a stage for the report.
struct Failure {
  text::Stage stage = text::Stage::kInternalUnclassified;
  int status = 0;
  std::string detail;  // a line printed before the stage line, if any
};

struct Stats {
  bool analysed = false, factored = false, solved = false;
};

template <class T>
const T *values(const Call &c) {
  return static_cast<const T *>(c.a);
}

// The out-of-core settings, read once per handle when iparam(60) first asks
// for them.
void configure_ooc(OocBlock *ooc, int msglvl) {
  int *is = ooc->isettings;
  if (is[kOocConfigured] == 1) return;
  const ooc::Settings set = ooc::read_settings(msglvl);
  std::fill(ooc->path, ooc->path + kOocPathChars, ' ');
  const std::size_t len = std::min<std::size_t>(set.path.size(), kOocPathChars - 1);
  std::copy(set.path.begin(), set.path.begin() + len, ooc->path);
  ooc->path[len] = '\0';
  is[kOocMaxCore] = set.max_core_mb;
  is[kOocKeep] = set.keep_files;
  is[kOocSerial] = ooc::next_handle_serial();
  is[kOocConfigured] = 1;
}

// A file failure of out-of-core mode as the phase's outcome.
int ooc_failure(const ooc::Failure &e, Failure *fail) {
  const bool open = e.condition == ooc::Condition::kOpen;
  const int code = open ? kErrorOocOpen : kErrorOocReadWrite;
  fail->stage = open ? text::Stage::kOpenOocFiles : text::Stage::kOocReadWrite;
  fail->status = code;
  fail->detail.clear();
  return code;
}

// Stage 2 for scalar T. `ooc` carries the out-of-core settings.
template <class T>
int factor_stage(const Call &c, State *st, Analysis *an, Factorization *fz, const OocBlock *ooc,
                 Failure *fail) {
  NumericFactor<T> &f = [&]() -> NumericFactor<T> & {
    if constexpr (std::is_same_v<T, double>)
      return fz->real;
    else
      return fz->cplx;
  }();
  std::vector<T> val;
  double largest;
  try {
    largest = assemble(*an, values<T>(c), &val);
  } catch (const std::bad_alloc &) {
    fail->stage = text::Stage::kInsufficientMemory;
    fail->detail =
        text::allocation_error(text::Storage::kWorkReal, std::int64_t(an->row.size()) * sizeof(T));
    return -2;
  }
  FactorOptions opt;
  opt.kind = an->kind;
  opt.two_by_two = c.iparam[20] == 1;
  const int p10 = c.iparam[9];
  opt.pivot_floor = (an->kind == FactorKind::kCholesky || p10 <= 0)
                        ? 0
                        : std::pow(10.0, -double(p10)) * (largest > 0 ? largest : 1.0);
  // A small factorization runs faster on one thread than a team can start.
  constexpr double kTeamFlops = 3e8;
  opt.threads = an->symbolic.flops < kTeamFlops ? 1 : c.threads;
  fz->pivot_floor = opt.pivot_floor;
  // Out of core with iparam(60) = 2, and with 1 when the factor would take
  // more than the maximal in-core size.
  const Symbolic &sym = an->symbolic;
  const std::int64_t in_core =
      std::int64_t(sizeof(T)) * sym.value_ptr[sym.nsuper] * (an->kind == FactorKind::kLu ? 2 : 1);
  const std::int64_t max_core = std::int64_t(ooc->isettings[kOocMaxCore]) << 20;
  const int mode = c.iparam[59];
  fz->out_of_core = mode == 2 || (mode == 1 && in_core > max_core);
  fz->peak_in_core = 0;
  std::shared_ptr<BlockStore<T>> store;
  if (fz->out_of_core) {
    try {
      store = ooc::make_factor_files<T>(
          an->kind, ooc::data_file_stem(ooc->path, ooc->isettings[kOocSerial], c.mnum),
          std::max<std::int64_t>(max_core, 1), ooc->isettings[kOocKeep] != 0);
    } catch (const std::bad_alloc &) {
      fail->stage = text::Stage::kOocMemory;
      fail->status = kErrorOocMemory;
      return kErrorOocMemory;
    }
  }
  FactorReport rep;
  const auto t0 = Clock::now();
  try {
    factorize(sym, CscMatrix<T>{an->n, an->col_ptr.data(), an->row.data(), val.data()}, opt, &f,
              &rep, std::move(store));
  } catch (const ooc::Failure &e) {
    f = NumericFactor<T>{};
    return ooc_failure(e, fail);
  }
  fz->peak_in_core = rep.peak_bytes;
  st->time_factor = seconds_since(t0);
  st->factor_flops = rep.flops;
  st->work[kWorkPerturbed] = rep.perturbed;
  st->work[kWorkPositive] = rep.positive;
  st->work[kWorkNegative] = rep.negative;
  switch (rep.status) {
    case kFactorOk:
      return 0;
    case kFactorNoMemory: {
      if (fz->out_of_core) {
        fail->stage = text::Stage::kOocMemory;
        fail->status = kErrorOocMemory;
        return kErrorOocMemory;
      }
      const Symbolic &s = an->symbolic;
      const std::int64_t words = s.value_ptr.empty() ? 0 : s.value_ptr[s.nsuper];
      fail->stage = text::Stage::kInsufficientMemory;
      fail->detail = text::allocation_error(
          text::Storage::kFactorValues,
          words * std::int64_t(sizeof(T)) * (an->kind == FactorKind::kLu ? 2 : 1));
      return -2;
    }
    case kNotPositiveDefinite: {
      const int eq = an->symbolic.perm[rep.failed_column - 1] + 1;
      st->work[kWorkFailedEq] = eq;
      c.iparam[29] = eq;
      fail->stage = text::Stage::kNumericalFactorization;
      fail->status = -4;
      fail->detail = text::kNotSpd;
      return -4;
    }
    default:
      fail->stage = text::Stage::kNumericalFactorization;
      fail->status = -4;
      fail->detail = text::kZeroPivot;
      return -4;
  }
}

// Stage 3 for scalar T: the solution of the sub-steps, or of phase 33 with
// refinement or with the iterative method of iparam(4).
template <class T>
int solve_stage(const Call &c, State *st, Analysis *an, Factorization *fz, bool iterative,
                Failure *fail) {
  const NumericFactor<T> &f = [&]() -> const NumericFactor<T> & {
    if constexpr (std::is_same_v<T, double>)
      return fz->real;
    else
      return fz->cplx;
  }();
  int *ip = c.iparam;
  const int n = an->n, nrhs = c.nrhs;
  const int op = ip[11] == 1 ? 1 : ip[11] == 2 ? 2 : 0;
  T *b = static_cast<T *>(c.b);
  T *x = static_cast<T *>(c.x);
  std::vector<T> sol;
  try {
    sol.resize(std::size_t(n) * nrhs);
  } catch (const std::bad_alloc &) {
    fail->stage = text::Stage::kInsufficientMemory;
    fail->detail =
        text::allocation_error(text::Storage::kWorkReal, std::int64_t(n) * nrhs * sizeof(T));
    return -2;
  }
  const bool print = c.msglvl > 0;
  const auto t0 = Clock::now();
  int result = 0;
  try {
    if (c.phase >= 331 && c.phase <= 334) {
      const int steps = c.phase == 331   ? kForward
                        : c.phase == 332 ? kDiagonal
                        : c.phase == 333 ? kBackward
                                         : kDiagonal | kBackward;
      direct_solve(*an, f, op, steps, nrhs, b, sol.data(), c.threads);
    } else if (iterative) {
      const int digits = ip[3] / 10, method = ip[3] % 10;
      const IterativeOutcome it = iterate(*an, f, values<T>(c), op, nrhs, b, sol.data(),
                                          method == 2, digits, print, c.threads);
      ip[19] = it.report;
      st->cg_iterations = it.iterations;
      if (it.report < 0) {
        fail->detail = text::format(text::kCgsError, it.report);
        result = 1;  // the caller falls back to a new factorization
      }
    } else {
      direct_solve(*an, f, op, kAll, nrhs, b, sol.data(), c.threads);
      const RefineOutcome r =
          refine(*an, f, values<T>(c), op, nrhs, b, sol.data(), ip[7], print, c.threads);
      st->work[kWorkRefineSteps] = r.steps;
      st->work[kWorkRefineStatus] = r.status;
      st->refine_rel_res = r.rel_res;
      st->refine_rel_err = r.rel_err;
      ip[6] = r.steps;
      if (r.stopped_early) ip[19] = -34;
      if (r.status != 0 && print) text::put(text::kIterativeRefinement);
    }
  } catch (const std::bad_alloc &) {
    if (fz->out_of_core) {
      fail->stage = text::Stage::kOocMemory;
      fail->status = kErrorOocMemory;
      return kErrorOocMemory;
    }
    fail->stage = text::Stage::kInsufficientMemory;
    fail->detail =
        text::allocation_error(text::Storage::kWorkReal, std::int64_t(n) * nrhs * 4 * sizeof(T));
    return -2;
  } catch (const ooc::Failure &e) {
    return ooc_failure(e, fail);
  }
  st->time_solve = seconds_since(t0);
  if (result == 0) std::copy(sol.begin(), sol.end(), ip[5] == 1 ? b : x);
  return result;
}

void print_statistics(const Call &c, const State *st, const Analysis *an, const Stats &done) {
  text::put(text::banner(c.mtype));
  const Factorization *fz =
      c.mnum >= 1 && c.mnum <= int(st->factors.size()) ? st->factors[c.mnum - 1].get() : nullptr;
  const bool out = fz && fz->out_of_core;
  const int mode = c.iparam[59];
  text::put(text::mode_line(mode == 2   ? text::Mode::kOutOfCoreForced
                            : mode != 1 ? text::Mode::kInCoreOff
                            : out       ? text::Mode::kOutOfCoreNotEnoughRam
                                        : text::Mode::kInCoreEnoughRam));
  if (done.analysed && an) {
    const Symbolic &s = an->symbolic;
    text::put("Summary: ( analysis )");
    text::put(text::format("    time: %.6f s, equations: %d, stored entries: %lld",
                           st->time_analysis, an->n, static_cast<long long>(st->nnz)));
    text::put(text::format("    supernodes: %d, factor entries: %lld, factorization flops: %.3e",
                           s.nsuper, static_cast<long long>(s.nnz_factor), s.flops));
    text::put(text::format("    ordering: %s, matching: %s, scaling: %s",
                           c.iparam[4] == 1   ? "the caller's"
                           : c.iparam[1] == 0 ? "minimum degree"
                                              : "nested dissection",
                           an->matched ? "yes" : "no", an->row_scale.empty() ? "no" : "yes"));
  }
  if (done.factored) {
    text::put("Summary: ( factorization )");
    const double rate = st->time_factor > 0 ? st->factor_flops / st->time_factor * 1e-6 : 0;
    text::put(text::format("    time: %.6f s, Mflop/s: %.1f, threads: %d", st->time_factor, rate,
                           c.threads));
    text::put(text::format("    perturbed pivots: %d, positive pivots: %d, negative pivots: %d",
                           st->work[kWorkPerturbed], st->work[kWorkPositive],
                           st->work[kWorkNegative]));
  }
  if (done.solved) {
    text::put("Summary: ( solve )");
    text::put(text::format("    time: %.6f s, right-hand sides: %d, refinement steps: %d",
                           st->time_solve, c.nrhs,
                           st->work[kWorkRefineSteps] == kUnset ? 0 : st->work[kWorkRefineSteps]));
  }
}

// msglvl > 1: the shape of the caller's rows before the analysis (a work
// array of 16 bytes per equation).
bool input_statistics(const Call &c, int base, Failure *fail) {
  std::vector<std::int64_t> work;
  try {
    work.resize(2 * std::size_t(c.n));
  } catch (const std::bad_alloc &) {
    fail->stage = text::Stage::kInsufficientMemory;
    fail->status = -2;
    fail->detail = text::allocation_error(text::Storage::kWorkInt, std::int64_t(c.n) * 16);
    return false;
  }
  std::int64_t shortest = c.n, longest = 0, missing_diagonal = 0;
  for (int i = 0; i < c.n; ++i) {
    work[2 * i] = c.ia[i + 1] - c.ia[i];
    work[2 * i + 1] = 0;
    for (int k = c.ia[i] - base; k < c.ia[i + 1] - base; ++k)
      if (c.ja[k] - base == i) work[2 * i + 1] = 1;
    shortest = std::min(shortest, work[2 * i]);
    longest = std::max(longest, work[2 * i]);
    missing_diagonal += 1 - work[2 * i + 1];
  }
  text::put("Statistics of the input matrix:");
  text::put(text::format("    equations: %d, stored entries: %lld, entries per row: %lld to %lld",
                         c.n, static_cast<long long>(c.ia[c.n] - base),
                         static_cast<long long>(shortest), static_cast<long long>(longest)));
  text::put(text::format("    rows without a stored diagonal entry: %lld",
                         static_cast<long long>(missing_diagonal)));
  return true;
}

}  // namespace

int drive(const Call &call) {
  Call c = call;
  void **pt = c.pt;
  int *ip = c.iparam;
  ip[49] = 0;
  const int phase = (c.phase >= 331 && c.phase <= 334) ? 33 : c.phase;
  const bool print = c.msglvl > 0;
  int err = 0;
  Failure fail;
  Stats done;

  auto finish = [&](int code) {
    write_memory(pt, ip);
    if (c.msglvl != 0) {
      std::printf(" local TESSERA version is %d\n", kVersion);
      std::fflush(stdout);
    }
    if (print) {
      if (code == 0) {
        if (phase >= 11) print_statistics(c, state_of(pt), analysis_of(pt), done);
      } else {
        if (!fail.detail.empty()) text::put(fail.detail);
        if (fail.stage != text::Stage::kInternalUnclassified || fail.status != 0)
          text::put(text::stage_error(fail.stage, fail.status));
      }
    }
    if (code != 0 && c.phase < 0) msg::print(msg::kTesseraReleaseFailed);
    return code;
  };

  // A new handle.
  if (!state_of(pt)) {
    if (phase == -1) return finish(0);
    if (phase <= 0 && ip[11] == -1) return finish(0);
    if (c.maxfct < 1) {
      fail.detail = text::kContradictoryInput;
      fail.stage = text::Stage::kSequence;
      fail.status = -1;
      return finish(-1);
    }
    for (int w = 3; w <= 17; ++w) pt[w] = nullptr;
    State *st = new (std::nothrow) State;
    int *table = st ? new (std::nothrow) int[std::size_t(kEntryWords) * c.maxfct] : nullptr;
    if (!st || !table) {
      delete st;
      fail.detail = text::allocation_error(text::Storage::kBasic,
                                           sizeof(State) + std::int64_t(24) * c.maxfct);
      fail.stage = text::Stage::kInsufficientMemory;
      fail.status = -2;
      return finish(-2);
    }
    pt[kWordState] = st;
    pt[kWordTable] = table;
    st->maxfct = c.maxfct;
    for (int &w : st->work) w = kUnset;
    for (int m = 0; m < c.maxfct; ++m) clear_entry(table + kEntryWords * m);
    try {
      st->factors.resize(c.maxfct);
    } catch (const std::bad_alloc &) {
      fail.stage = text::Stage::kInsufficientMemory;
      fail.status = -2;
      return finish(-2);
    }
    if (phase >= 1 && !make_ooc(pt, c)) {
      fail.detail = text::allocation_error(text::Storage::kBasic, kOocPathChars + 8 * 3 * 128);
      fail.stage = text::Stage::kInsufficientMemory;
      fail.status = -2;
      return finish(-2);
    }
    if (phase < 1) {
      fail.detail = text::kIdoInitialization;
      fail.stage = text::Stage::kSequence;
      fail.status = -1;
      return finish(-1);
    }
  }
  State *st = state_of(pt);

  // Release phases.
  if (phase == 0) {
    if (c.mnum < 1 || c.mnum > st->maxfct) {
      fail.detail = text::format(text::kWrongMatrixNumber, c.mnum);
      fail.stage = text::Stage::kSequence;
      fail.status = -1;
      return finish(-1);
    }
    free_factorization(pt, c.mnum);
    return finish(0);
  }
  if (phase == -1) {
    free_all(pt);
    return finish(0);
  }
  if (phase < 0) {
    fail.detail = text::kIdoBelowMinusOne;
    fail.stage = text::Stage::kSequence;
    fail.status = -1;
    return finish(-1);
  }

  // Validation.
  const int first = phase / 10, last = phase % 10;
  const bool known_phase =
      phase == 11 || phase == 12 || phase == 13 || phase == 22 || phase == 23 || phase == 33;
  auto input_error = [&](text::Stage stage, std::string detail) {
    fail.stage = stage;
    fail.status = -1;
    fail.detail = std::move(detail);
    return finish(-1);
  };
  if (!known_phase) return input_error(text::Stage::kSequence, text::kCleanImpossible);
  if (!known_mtype(c.mtype) || c.n <= 0 || c.mnum < 1 || c.mnum > st->maxfct ||
      (last == 3 && c.nrhs < 1))
    return input_error(text::Stage::kSequence, std::string());
  if (ooc_of(pt) == nullptr && !make_ooc(pt, c)) {
    fail.stage = text::Stage::kInsufficientMemory;
    fail.status = -2;
    return finish(-2);
  }
  const int base = ip[34] == 1 ? 0 : 1;
  {
    std::string message;
    const bool symmetric = !(c.mtype == 1 || c.mtype == 3 || c.mtype == 11 || c.mtype == 13);
    if (!check_matrix(c.n, c.ia, c.ja, base, symmetric, ip[26] == 1, &message)) {
      // The check's finding is printed whatever msglvl says.
      text::put(message);
      return input_error(text::Stage::kIncorrectMatrix, std::string());
    }
  }
  // Out-of-core mode (iparam(60) as the defaults leave it) reads its
  // settings and runs on one thread.
  auto enter_ooc = [&] {
    if (ip[59] == 0) return;
    configure_ooc(ooc_of(pt), c.msglvl);
    ip[2] = 1;
    c.threads = 1;
  };
  Analysis *an = analysis_of(pt);
  if (first > 1) {
    enter_ooc();
    if (!an || an->mtype != c.mtype || an->n != c.n || std::int64_t(c.ia[c.n]) - base != st->nnz)
      return input_error(text::Stage::kSequence, std::string());
  }

  // Stage 1: analysis.
  if (first == 1) {
    if (ip[0] == 0) set_defaults(c.mtype, ip);
    enter_ooc();
    reset_working(st, c);
    st->nnz = std::int64_t(c.ia[c.n]) - base;
    free_analysis(pt);
    an = new (std::nothrow) Analysis;
    if (!an) {
      fail.stage = text::Stage::kInsufficientMemory;
      fail.status = -2;
      return finish(-2);
    }
    pt[kWordAnalysis] = an;
    if (c.msglvl > 1 && !input_statistics(c, base, &fail)) return finish(-2);
    const auto t0 = Clock::now();
    int status = 0;
    std::int64_t bytes = 0;
    err = build_analysis(c, base, an, &status, &bytes);
    st->time_analysis = seconds_since(t0);
    if (err != 0) {
      fail.status = err == -1 ? -1 : status;
      fail.stage = err == -2   ? text::Stage::kInsufficientMemory
                   : err == -8 ? text::Stage::kOverflow
                   : err == -6 ? text::Stage::kPrereordering
                   : err == -1 ? text::Stage::kSequence
                               : text::Stage::kReordering;
      if (err == -2) fail.detail = text::allocation_error(text::Storage::kStructure0, bytes);
      if (err == -3) fail.detail = text::kReorderingSymbolic;
      delete an;
      pt[kWordAnalysis] = nullptr;
      return finish(err);
    }
    st->permanent = an->bytes();
    const std::int64_t need = an->complex ? out_of_core_need<c16>(an->symbolic, an->kind)
                                          : out_of_core_need<double>(an->symbolic, an->kind);
    ip[62] = int(std::min<std::int64_t>(kib(need), 2147483647));
    st->peak_analysis = st->permanent + st->nnz * 16 + std::int64_t(c.n) * 64;
    done.analysed = true;
  }
  if (last == 1) return finish(0);

  // Stage 2: numerical factorization (or, with iparam(4), the earlier factor
  // kept as the preconditioner).
  auto &slot = st->factors[c.mnum - 1];
  int *entry = table_of(pt) + kEntryWords * (c.mnum - 1);
  const bool iterative = ip[3] > 0 && slot && first >= 2;
  if (first <= 2 && !(iterative && first == 2)) {
    err = 0;
    if (!slot) {
      slot.reset(new (std::nothrow) Factorization);
      if (!slot) {
        fail.stage = text::Stage::kInsufficientMemory;
        fail.status = -2;
        return finish(-2);
      }
    }
    clear_entry(entry);
    slot->complex = an->complex;
    err = an->complex ? factor_stage<c16>(c, st, an, slot.get(), ooc_of(pt), &fail)
                      : factor_stage<double>(c, st, an, slot.get(), ooc_of(pt), &fail);
    if (err != 0) {
      slot.reset();
      return finish(err);
    }
    entry[kEntryFactored] = 1;
    entry[kEntryMark] = c.mnum;
    entry[kEntryPerturbed] = st->work[kWorkPerturbed];
    entry[kEntryPositive] = st->work[kWorkPositive];
    entry[kEntryNegative] = st->work[kWorkNegative];
    ip[6] = 0;
    ip[13] = st->work[kWorkPerturbed];
    ip[21] = st->work[kWorkPositive];
    ip[22] = st->work[kWorkNegative];
    if (ip[17] < 0) {
      const Symbolic &s = an->symbolic;
      const std::int64_t nnz = an->kind == FactorKind::kLu ? 2 * s.nnz_factor - s.n : s.nnz_factor;
      ip[17] = int(nnz > 2147483647 ? 2147483647 : nnz);
    }
    if (ip[18] < 0) {
      const double rate = st->time_factor > 0 ? st->factor_flops / st->time_factor * 1e-6 : 0;
      ip[18] = int(rate > 2147483647.0 ? 2147483647.0 : rate);
    }
    done.factored = true;
  }
  if (last == 2) return finish(0);

  // Stage 3: solve.
  if (!slot || entry[kEntryFactored] != 1)
    return input_error(text::Stage::kSequence, std::string());
  err = an->complex ? solve_stage<c16>(c, st, an, slot.get(), iterative, &fail)
                    : solve_stage<double>(c, st, an, slot.get(), iterative, &fail);
  if (err == 1) {
    // The iterative method failed: a new factorization and a direct solve.
    if (print) text::put(fail.detail);
    fail = Failure();
    err = an->complex ? factor_stage<c16>(c, st, an, slot.get(), ooc_of(pt), &fail)
                      : factor_stage<double>(c, st, an, slot.get(), ooc_of(pt), &fail);
    if (err != 0) {
      slot.reset();
      clear_entry(entry);
      return finish(err);
    }
    const int report = ip[19];
    err = an->complex ? solve_stage<c16>(c, st, an, slot.get(), false, &fail)
                      : solve_stage<double>(c, st, an, slot.get(), false, &fail);
    ip[19] = report;
  }
  if (err != 0) return finish(err);
  entry[kEntrySteps] = st->work[kWorkRefineSteps];
  done.solved = true;
  return finish(0);
}

}  // namespace orb::sparse
