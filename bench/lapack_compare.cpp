// ORB's LAPACK against its peers, side by side in one run, through the
// Fortran-convention names (sgetrf_, cgetrf_, sgetrs_, sgecon_):
//
//   ORB        the liborb.so given by --orb (and --base, another build of it)
//   OpenBLAS   Debian's pthread build, its own LAPACK
//   refLAPACK  Debian's reference LAPACK over OpenBLAS's BLAS
//
//   lapack_compare [--threads 1,2] [--filter getrf] [--sizes 256,1000] [--quick]
//                  [--orb path/to/liborb.so] [--base path/to/other/liborb.so] [--csv FILE]
//
// Each library lives in a link-map namespace of its own (dlmopen with
// LM_ID_NEWLM), with its own copies of everything it depends on, libc
// included. A call made inside a namespace is bound only to objects of that
// namespace, so ORB's exported names (sgemm_, xerbla_, ...) cannot capture the
// peers' calls, nor one peer's names the other's. Loading checks this: every symbol bound
// in the relocations of each namespace's objects must point into that
// namespace. The reference LAPACK's namespace is opened with OpenBLAS's
// libblas.so.3 first; the LAPACK asks for libblas.so.3 by soname, which that
// object carries, so the loader takes it whatever the system's alternative
// for libblas.so.3 points to. Loading checks where the LAPACK's sgemm_ was
// bound.
//
// The libraries of a row take turns, a short burst of calls each, round after
// round, so that a drift in the machine's speed moves them alike. Before each
// burst the program waits until no thread of the process burns CPU:
// OpenBLAS's workers spin for about 0.1 s after a call, and on a small machine
// they would take the cores from the library timed next. Every call starts
// from a fresh copy of the same operands (the copy is not timed). The first call of each library at
// each thread count is checked (a residual, or agreement with the reference for the condition
// estimate); a wrong answer prints FAIL instead of a rate.
#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <sys/auxv.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <complex>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "csv_log.h"

#if !defined(__linux__) || !defined(__x86_64__)
#error "lapack_compare reads x86-64 ELF relocations and loads Debian's x86-64 peers"
#endif

namespace {

using c8 = std::complex<float>;
using Fortran_len = std::size_t;  // the hidden length of a character argument

using GetrfFn = void (*)(const int *, const int *, void *, const int *, int *, int *);
using GetrsFn = void (*)(const char *, const int *, const int *, const void *, const int *,
                         const int *, void *, const int *, int *, Fortran_len);
using GeconFn = void (*)(const char *, const int *, const void *, const int *, const float *,
                         float *, float *, int *, int *, Fortran_len);
using PotrfFn = void (*)(const char *, const int *, void *, const int *, int *, Fortran_len);
using PotrsFn = void (*)(const char *, const int *, const int *, const void *, const int *, void *,
                         const int *, int *, Fortran_len);

const char *const kOpenblasDir = "/usr/lib/x86_64-linux-gnu/openblas-pthread";
const char *const kReferenceLapack = "/usr/lib/x86_64-linux-gnu/lapack/liblapack.so.3";

struct Library {
  std::string name, description;
  std::vector<void *> handles;  // in load order; symbols come from the last
  std::function<void(int)> set_threads;
  bool orb = false;  // ORB or its base build
  void *sym(const char *s) const { return handles.empty() ? nullptr : dlsym(handles.back(), s); }
};

std::string real_path(const char *path) {
  char *r = realpath(path, nullptr);
  std::string s = r ? r : path;
  std::free(r);
  return s;
}

std::string object_of(const void *address) {
  Dl_info info;
  if (!address || !dladdr(address, &info) || !info.dli_fname) return "(nowhere)";
  return real_path(info.dli_fname);
}

// Calls f(symbol name, address now in the slot) for each symbol the dynamic
// linker bound into the relocations of the object `map`.
template <class F>
void for_each_binding(const link_map *map, F f) {
  const ElfW(Sym) *symtab = nullptr;
  const char *strtab = nullptr;
  const ElfW(Rela) * table[2] = {nullptr, nullptr};
  std::size_t bytes[2] = {0, 0};
  // The loader has relocated the pointers of the dynamic section in place.
  auto at = [map](ElfW(Addr) a) { return a < map->l_addr ? a + map->l_addr : a; };
  for (const ElfW(Dyn) *d = map->l_ld; d && d->d_tag != DT_NULL; ++d) {
    switch (d->d_tag) {
      case DT_SYMTAB:
        symtab = reinterpret_cast<const ElfW(Sym) *>(at(d->d_un.d_ptr));
        break;
      case DT_STRTAB:
        strtab = reinterpret_cast<const char *>(at(d->d_un.d_ptr));
        break;
      case DT_RELA:
        table[0] = reinterpret_cast<const ElfW(Rela) *>(at(d->d_un.d_ptr));
        break;
      case DT_RELASZ:
        bytes[0] = d->d_un.d_val;
        break;
      case DT_JMPREL:
        table[1] = reinterpret_cast<const ElfW(Rela) *>(at(d->d_un.d_ptr));
        break;
      case DT_PLTRELSZ:
        bytes[1] = d->d_un.d_val;
        break;
    }
  }
  if (!symtab || !strtab) return;
  for (int t = 0; t < 2; ++t) {
    if (!table[t]) continue;
    for (std::size_t i = 0; i < bytes[t] / sizeof(ElfW(Rela)); ++i) {
      const ElfW(Rela) &r = table[t][i];
      const unsigned type = ELF64_R_TYPE(r.r_info), sym = ELF64_R_SYM(r.r_info);
      if (sym == 0 ||
          (type != R_X86_64_JUMP_SLOT && type != R_X86_64_GLOB_DAT && type != R_X86_64_64))
        continue;
      const void *target = *reinterpret_cast<void *const *>(map->l_addr + r.r_offset);
      if (target) f(strtab + symtab[sym].st_name, target);
    }
  }
}

// The objects of the namespace `handle` was loaded into.
std::vector<const link_map *> namespace_objects(void *handle) {
  link_map *map = nullptr;
  std::vector<const link_map *> objects;
  if (dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0 || !map) return objects;
  while (map->l_prev) map = map->l_prev;
  for (; map; map = map->l_next) objects.push_back(map);
  return objects;
}

// The number of bindings in the objects of `handle`'s namespace, or an error
// naming one that points outside the namespace.
std::string check_isolation(void *handle, std::size_t *count) {
  const std::vector<const link_map *> objects = namespace_objects(handle);
  std::set<ElfW(Addr)> bases;
  for (const link_map *m : objects) bases.insert(m->l_addr);
  // Two objects are the process's, not a namespace's: the kernel's vDSO (the
  // time functions of every namespace's libc resolve into it) and the loader,
  // whose entry in each namespace stands for its one copy (its own bindings
  // are to the first namespace's libc).
  const void *vdso = reinterpret_cast<const void *>(getauxval(AT_SYSINFO_EHDR));
  const ElfW(Addr) loader = getauxval(AT_BASE);
  std::string error;
  *count = 0;
  for (const link_map *m : objects) {
    if (!m->l_name || !*m->l_name || m->l_addr == loader) continue;
    for_each_binding(m, [&](const char *name, const void *target) {
      Dl_info info;
      link_map *owner = nullptr;
      if (!dladdr1(target, &info, reinterpret_cast<void **>(&owner), RTLD_DL_LINKMAP) || !owner)
        return;
      if (vdso && info.dli_fbase == vdso) return;
      ++*count;
      if (error.empty() && !bases.count(owner->l_addr))
        error = std::string(name) + " of " + m->l_name + " is bound to " + owner->l_name;
    });
  }
  return error;
}

// Where the object loaded as `handle` has `name` bound ("" when it has no such
// binding).
std::string bound_object(void *handle, const char *name) {
  link_map *map = nullptr;
  std::string where;
  if (dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0 || !map) return where;
  for_each_binding(map, [&](const char *s, const void *target) {
    if (where.empty() && !std::strcmp(s, name)) where = object_of(target);
  });
  return where;
}

// Loads `paths` in order into a new namespace; false (with a message) when one
// does not load.
bool load_into_namespace(Library &l, const std::vector<std::string> &paths) {
  Lmid_t ns = LM_ID_NEWLM;
  for (const std::string &p : paths) {
    void *h = dlmopen(ns, p.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!h) {
      std::fprintf(stderr, "lapack_compare: %s left out: %s\n", l.name.c_str(), dlerror());
      return false;
    }
    l.handles.push_back(h);
    if (ns == LM_ID_NEWLM) dlinfo(h, RTLD_DI_LMID, &ns);
  }
  return true;
}

std::vector<Library> load_libraries(const std::string &orb_path, const std::string &base_path) {
  std::vector<Library> libs;
  libs.reserve(4);  // the pointers add returns stay valid
  auto add = [&](const char *name, const std::vector<std::string> &paths) -> Library * {
    Library l;
    l.name = name;
    if (!load_into_namespace(l, paths)) return nullptr;
    std::size_t count = 0;
    const std::string error = check_isolation(l.handles.back(), &count);
    if (!error.empty()) {
      std::fprintf(stderr, "lapack_compare: %s left out: %s\n", name, error.c_str());
      return nullptr;
    }
    char text[64];
    std::snprintf(text, sizeof text, "; %zu bindings, all inside its namespace", count);
    l.description = real_path(paths.back().c_str()) + text;
    libs.push_back(l);
    return &libs.back();
  };
  // The ORB columns keep their place (a "-" for each row) even when the
  // library does not load.
  for (const char *name : {"ORB", "base"}) {
    const std::string &path = name[0] == 'O' ? orb_path : base_path;
    if (path.empty()) continue;
    Library *l = add(name, {path});
    if (!l) {
      Library missing;
      missing.name = name;
      missing.description = "(not loaded)";
      libs.push_back(missing);
      l = &libs.back();
    }
    l->orb = true;
    if (auto f = reinterpret_cast<void (*)(int)>(l->sym("ORB_Set_Num_Threads"))) l->set_threads = f;
  }
  const std::string openblas = std::string(kOpenblasDir) + "/libopenblas.so.0";
  if (Library *l = add("OpenBLAS", {openblas})) {
    if (auto config = reinterpret_cast<const char *(*)()>(l->sym("openblas_get_config")))
      l->description += std::string("\n             ") + config();
    if (l->sym("sgetrf_parallel"))
      l->description += "; sgetrf_ is its own (sgetrf_single, sgetrf_parallel)";
  }
  const std::string blas = std::string(kOpenblasDir) + "/libblas.so.3";
  if (Library *l = add("refLAPACK", {blas, kReferenceLapack})) {
    const std::string where = bound_object(l->handles.back(), "sgemm_");
    if (where.empty() || where.rfind(real_path(kOpenblasDir) + "/", 0) != 0) {
      std::fprintf(stderr, "lapack_compare: refLAPACK left out: its sgemm_ is bound to %s\n",
                   where.empty() ? "nothing" : where.c_str());
      libs.pop_back();
    } else {
      l->description += "\n             its sgemm_ bound to " + where;
    }
  }
  for (Library &l : libs) {
    if (!l.orb)
      if (auto f = reinterpret_cast<void (*)(int)>(l.sym("openblas_set_num_threads")))
        l.set_threads = f;
    if (!l.set_threads && !l.handles.empty())
      std::fprintf(stderr, "lapack_compare: %s has no thread-count setter; it runs with its own\n",
                   l.name.c_str());
  }
  return libs;
}

double process_cpu_seconds() {
  timespec t;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return t.tv_sec + 1e-9 * t.tv_nsec;
}

// Waits (at most 0.5 s) until the process's threads together use less than a
// tenth of a core over 2 ms: the worker threads of the call before, whichever
// library made it, have gone to sleep.
void wait_until_quiet() {
  for (int i = 0; i < 250; ++i) {
    const double c0 = process_cpu_seconds();
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    if (process_cpu_seconds() - c0 < 2e-4) return;
  }
}

// One call of a library (the preparation of its operands not timed): its
// time and, when it was checked, what was wrong with its answer (empty when
// nothing) and a value for the row to compare.
struct Outcome {
  double seconds = 0;
  std::string fault;
  double value = 0;
};
using Run = std::function<Outcome(bool check)>;  // empty when the library lacks the routine

struct Timing {
  std::vector<double> seconds;  // per call, one figure for each burst measured
  std::string fault;
};

// Times the runs in turn, in bursts: each library makes a short series of
// calls, then the next library its own, and so on round after round, so that
// a drift in the machine's speed moves them alike, while within a burst a
// library runs as it does when called repeatedly (its worker threads awake).
// Before each burst the process is left to go quiet, so that no library's
// workers spin on the cores of the next.
//
// The first round is one call of each library, checked. It is a warm-up
// unless its slowest call takes over 0.5 s, when it counts and at most 3
// rounds are made in all. Otherwise a burst is a warm-up call, then calls for
// about 40 ms (one call when a call takes longer), and rounds go on until each
// library has had 0.2 s (at least 3, at most 15).
std::vector<Timing> time_in_turn(const std::vector<Run> &runs, int threads,
                                 const std::vector<Library> &libs,
                                 const std::function<void(std::vector<Outcome> &)> &agree) {
  std::vector<Timing> timing(runs.size());
  std::vector<Outcome> first(runs.size());
  auto start = [&](std::size_t i) {
    if (libs[i].set_threads) libs[i].set_threads(threads);
    wait_until_quiet();
  };
  double slowest = 0;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    if (!runs[i]) continue;
    start(i);
    first[i] = runs[i](true);
    slowest = std::max(slowest, first[i].seconds);
  }
  if (agree) agree(first);
  for (std::size_t i = 0; i < runs.size(); ++i) timing[i].fault = first[i].fault;
  constexpr double kBurst = 0.04;
  int rounds = 15, min_rounds = 3;
  if (slowest > 0.5) {
    for (std::size_t i = 0; i < runs.size(); ++i)
      if (runs[i]) timing[i].seconds.push_back(first[i].seconds);
    rounds = std::clamp(int(1.6 / slowest), 1, 3) - 1;
    min_rounds = rounds;
  }
  std::vector<double> total(runs.size(), 0);
  for (int r = 0; r < rounds; ++r) {
    bool more = r + 1 < min_rounds;
    for (std::size_t i = 0; i < runs.size(); ++i) {
      if (!runs[i]) continue;
      start(i);
      const bool short_call = first[i].seconds < kBurst;
      if (short_call) runs[i](false);
      double burst = 0;
      int calls = 0;
      do {
        burst += runs[i](false).seconds;
        ++calls;
      } while (short_call && burst < kBurst && calls < 10000);
      timing[i].seconds.push_back(burst / calls);
      total[i] += burst;
      more = more || total[i] < 0.2;
    }
    if (!more) break;
  }
  return timing;
}

template <class T>
std::vector<T> random_matrix(std::size_t count, unsigned seed) {
  std::mt19937 rng(seed);
  std::uniform_real_distribution<float> d(-1, 1);
  std::vector<T> v(count);
  for (auto &x : v) {
    if constexpr (std::is_same_v<T, c8>) {
      const float re = d(rng);
      x = c8(re, d(rng));
    } else {
      x = d(rng);
    }
  }
  return v;
}

// Double-precision companions of float and complex<float>.
template <class T>
using Wide = std::conditional_t<std::is_same_v<T, c8>, std::complex<double>, double>;

// The infinity norm of the n x n matrix a (leading dimension n).
template <class T>
double norm_inf(const std::vector<T> &a, int n) {
  std::vector<double> rows(n, 0);
  for (std::size_t j = 0; j < std::size_t(n); ++j)
    for (int i = 0; i < n; ++i) rows[i] += std::abs(a[i + j * n]);
  return *std::max_element(rows.begin(), rows.end());
}

template <class T>
double max_abs(const std::vector<T> &v) {
  double m = 0;
  for (const T &x : v) m = std::max(m, double(std::abs(x)));
  return m;
}

// y = a x for the n x n matrix a, in double precision.
template <class T>
std::vector<Wide<T>> times(const T *a, int n, const std::vector<Wide<T>> &x) {
  std::vector<Wide<T>> y(n, Wide<T>(0));
  for (std::size_t j = 0; j < std::size_t(n); ++j) {
    const T *col = a + j * n;
    const Wide<T> xj = x[j];
    for (int i = 0; i < n; ++i) y[i] += Wide<T>(col[i]) * xj;
  }
  return y;
}

// ||P A x - L U x||_inf / (n ||A||_inf ||x||_inf eps) for a random x: the
// factors and pivots getrf left against the matrix it was given. Of the order
// of one for a correct factorization; a wrong one gives 1/eps.
template <class T>
double factor_residual(const std::vector<T> &a, double a_norm, const T *lu, const int *ipiv,
                       int n) {
  std::vector<Wide<T>> x(n);
  std::mt19937 rng(11);
  std::uniform_real_distribution<double> d(-1, 1);
  for (auto &v : x) v = Wide<T>(d(rng));
  std::vector<Wide<T>> ax = times(a.data(), n, x);
  for (int i = 0; i < n; ++i) {
    const int p = ipiv[i] - 1;
    if (p < i || p >= n) return std::numeric_limits<double>::infinity();
    std::swap(ax[i], ax[p]);
  }
  std::vector<Wide<T>> ux(n, Wide<T>(0)), lux(n, Wide<T>(0));
  for (std::size_t j = 0; j < std::size_t(n); ++j)
    for (std::size_t i = 0; i <= j; ++i) ux[i] += Wide<T>(lu[i + j * n]) * x[j];
  for (std::size_t j = 0; j < std::size_t(n); ++j) {
    lux[j] += ux[j];
    for (std::size_t i = j + 1; i < std::size_t(n); ++i) lux[i] += Wide<T>(lu[i + j * n]) * ux[j];
  }
  double r = 0;
  for (int i = 0; i < n; ++i) r = std::max(r, std::abs(ax[i] - lux[i]));
  if (!std::isfinite(r)) return std::numeric_limits<double>::infinity();
  return r / (double(n) * a_norm * std::numeric_limits<float>::epsilon());
}

// A correct factorization or solve gives about 1e-3 for these ratios (the 30
// that LAPACK's own test programs allow is a worst case); 1 leaves a wide
// margin and still catches a wrong block, a skipped update or a wrong pivot.
constexpr double kResidualLimit = 1;

std::string residual_fault(double ratio) {
  if (ratio < kResidualLimit) return "";
  char text[96];
  std::snprintf(text, sizeof text, "residual %.3g (limit %g)", ratio, kResidualLimit);
  return text;
}

std::string info_fault(int info) {
  return info ? "INFO = " + std::to_string(info) : "";
}

double seconds_since(std::chrono::steady_clock::time_point t0) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

// The getrf row: each call factors a fresh copy of the same matrix.
template <class T>
std::vector<Run> getrf_runs(const std::vector<Library> &libs, const char *name,
                            const std::vector<T> &a, double a_norm, int n, std::vector<T> &work,
                            std::vector<int> &ipiv) {
  std::vector<Run> runs;
  for (const Library &l : libs) {
    auto f = reinterpret_cast<GetrfFn>(l.sym(name));
    if (!f) {
      runs.emplace_back();
      continue;
    }
    runs.push_back([f, n, a_norm, &a, &work, &ipiv](bool check) {
      std::copy(a.begin(), a.end(), work.begin());
      int info = -1;
      const auto t0 = std::chrono::steady_clock::now();
      f(&n, &n, work.data(), &n, ipiv.data(), &info);
      Outcome o;
      o.seconds = seconds_since(t0);
      if (check) {
        o.fault = info_fault(info);
        if (o.fault.empty())
          o.fault = residual_fault(factor_residual(a, a_norm, work.data(), ipiv.data(), n));
      }
      return o;
    });
  }
  return runs;
}

struct Row {
  std::string routine;
  int n, threads;
  bool time_only;              // microseconds per call rather than a rate
  double work;                 // floating-point operations of one call
  std::vector<Timing> timing;  // per library
  std::vector<bool> present;   // per library: it has the routine
  double others;               // cores the rest of the machine kept busy meanwhile
};

// CPU time the machine has spent out of idle, all processes together.
double machine_busy_seconds() {
  unsigned long long t[8] = {};
  FILE *f = std::fopen("/proc/stat", "r");
  if (!f) return 0;
  const int got = std::fscanf(f, "cpu %llu %llu %llu %llu %llu %llu %llu %llu", &t[0], &t[1], &t[2],
                              &t[3], &t[4], &t[5], &t[6], &t[7]);
  std::fclose(f);
  if (got < 8) return 0;
  // user, nice, system, irq, softirq, and steal (the hypervisor's); not
  // idle or iowait.
  return double(t[0] + t[1] + t[2] + t[5] + t[6] + t[7]) / double(sysconf(_SC_CLK_TCK));
}

// Times a row, and what other processes took of the machine meanwhile: a
// figure taken while they kept cores busy is not worth much.
Row measure(const char *routine, int n, int threads, bool time_only, double work,
            const std::vector<Run> &runs, const std::vector<Library> &libs,
            const std::function<void(std::vector<Outcome> &)> &agree = nullptr) {
  const auto t0 = std::chrono::steady_clock::now();
  const double busy0 = machine_busy_seconds(), own0 = process_cpu_seconds();
  Row r{routine, n, threads, time_only, work, time_in_turn(runs, threads, libs, agree), {}, 0};
  const double busy = machine_busy_seconds() - busy0, own = process_cpu_seconds() - own0;
  r.others = std::max(0.0, (busy - own) / seconds_since(t0));
  for (const Run &run : runs) r.present.push_back(bool(run));
  return r;
}

double best_of(const Timing &t) {
  return t.seconds.empty() ? 0 : *std::min_element(t.seconds.begin(), t.seconds.end());
}

void print_header(const std::vector<Library> &libs) {
  std::printf("\n%-7s %5s %3s %-7s", "routine", "n", "nt", "unit");
  for (const Library &l : libs) std::printf(" %9s", l.name.c_str());
  std::printf(" %6s", "ratio");
  for (const Library &l : libs)
    if (l.name == "base") std::printf(" %6s", "/base");
  std::printf(" %4s %6s  spread %%:", "reps", "others");
  for (const Library &l : libs) std::printf(" %5s", l.name.c_str());
  std::printf("\n");
}

void print_row(const Row &r, const std::vector<Library> &libs) {
  std::printf("%-7s %5d %3d %-7s", r.routine.c_str(), r.n, r.threads,
              r.time_only ? "us" : "GFLOP/s");
  // A figure where higher is better: the rate, or the inverse time.
  std::vector<double> score(libs.size(), 0);
  std::size_t reps = 0;
  for (std::size_t i = 0; i < libs.size(); ++i) {
    const double t = best_of(r.timing[i]);
    reps = std::max(reps, r.timing[i].seconds.size());
    if (!r.present[i]) {
      std::printf(" %9s", "-");
    } else if (!r.timing[i].fault.empty()) {
      std::printf(" %9s", "FAIL");
    } else if (t > 0) {
      score[i] = r.time_only ? 1 / t : r.work / t * 1e-9;
      std::printf(r.time_only ? " %9.0f" : " %9.2f", r.time_only ? t * 1e6 : score[i]);
      const std::vector<double> &s = r.timing[i].seconds;
      const auto [lo, hi] = std::minmax_element(s.begin(), s.end());
      orb::bench::csv().row(r.routine, std::to_string(r.n), r.threads, libs[i].name,
                            r.time_only ? t * 1e6 : score[i], r.time_only ? "us" : "GFLOP/s",
                            s.size() < 2 ? -1 : 100 * (*hi / *lo - 1));
    } else {
      std::printf(" %9s", "?");
    }
  }
  double best_peer = 0, orb = 0, base = 0;
  bool with_base = false;
  for (std::size_t i = 0; i < libs.size(); ++i) {
    if (libs[i].name == "ORB") orb = score[i];
    if (libs[i].name == "base") base = score[i], with_base = true;
    if (!libs[i].orb) best_peer = std::max(best_peer, score[i]);
  }
  for (double other : {best_peer, with_base ? base : -1.0}) {
    if (orb > 0 && other > 0)
      std::printf(" %6.2f", orb / other);
    else if (other >= 0)
      std::printf(" %6s", "-");
  }
  std::printf(" %4zu %6.1f  %9s", reps, r.others, "");
  for (std::size_t i = 0; i < libs.size(); ++i) {
    const std::vector<double> &s = r.timing[i].seconds;
    const int width = std::max(int(libs[i].name.size()), 5);
    if (s.size() < 2) {
      std::printf(" %*s", width, "-");
    } else {
      const auto [lo, hi] = std::minmax_element(s.begin(), s.end());
      std::printf(" %*.1f", width, 100 * (*hi / *lo - 1));
    }
  }
  std::printf("\n");
  for (std::size_t i = 0; i < libs.size(); ++i)
    if (!r.timing[i].fault.empty())
      std::printf("  FAIL %s %s: %s\n", libs[i].name.c_str(), r.routine.c_str(),
                  r.timing[i].fault.c_str());
  std::fflush(stdout);
}

struct Options {
  std::vector<int> threads = {1, 2};
  std::vector<int> sizes = {256, 512, 1000, 2000, 4000, 8000};
  std::string filter;
  int nrhs = 100;
};

bool wanted(const Options &o, const char *routine) {
  return o.filter.empty() || std::string(routine).find(o.filter) != std::string::npos;
}

template <class T>
void getrf_rows(const std::vector<Library> &libs, const Options &o, const char *routine) {
  if (!wanted(o, routine)) return;
  const std::string name = std::string(routine) + "_";
  for (int n : o.sizes) {
    const std::vector<T> a = random_matrix<T>(std::size_t(n) * n, 1);
    const double a_norm = norm_inf(a, n);
    std::vector<T> work(a.size());
    std::vector<int> ipiv(n);
    const std::vector<Run> runs = getrf_runs(libs, name.c_str(), a, a_norm, n, work, ipiv);
    double flops = 2.0 / 3 * double(n) * n * n;
    if (std::is_same_v<T, c8>) flops *= 4;
    for (int nt : o.threads) print_row(measure(routine, n, nt, false, flops, runs, libs), libs);
  }
}

// A factorization of a for the solve and the condition estimate, made by the
// first library whose sgetrf_ gives a small residual (the peers first).
bool shared_factors(const std::vector<Library> &libs, const std::vector<float> &a, int n,
                    int threads, std::vector<float> &lu, std::vector<int> &ipiv) {
  std::vector<const Library *> order;
  for (const Library &l : libs)
    if (!l.orb) order.push_back(&l);
  for (const Library &l : libs)
    if (l.orb) order.push_back(&l);
  const double a_norm = norm_inf(a, n);
  for (const Library *l : order) {
    auto f = reinterpret_cast<GetrfFn>(l->sym("sgetrf_"));
    if (!f) continue;
    if (l->set_threads) l->set_threads(threads);
    lu = a;
    int info = -1;
    f(&n, &n, lu.data(), &n, ipiv.data(), &info);
    if (info == 0 && factor_residual(a, a_norm, lu.data(), ipiv.data(), n) < kResidualLimit)
      return true;
  }
  return false;
}

// A matrix and its factors, shared by the libraries of the solve and the
// condition estimate, so that they all work on the same problem.
struct Factored {
  int n;
  std::vector<float> a, lu;
  std::vector<int> ipiv;
};

// sgetrs with nrhs right-hand sides, a fresh copy of the same B for each call.
void getrs_rows(const std::vector<Library> &libs, const Options &o, const Factored &m) {
  const int n = m.n, nrhs = o.nrhs;
  const double a_norm = norm_inf(m.a, n);
  const std::vector<float> b = random_matrix<float>(std::size_t(n) * nrhs, 2);
  std::vector<float> x(b.size());
  std::vector<Run> runs;
  for (const Library &l : libs) {
    auto f = reinterpret_cast<GetrsFn>(l.sym("sgetrs_"));
    if (!f) {
      runs.emplace_back();
      continue;
    }
    runs.push_back([f, n, nrhs, a_norm, &m, &b, &x](bool check) {
      std::copy(b.begin(), b.end(), x.begin());
      int info = -1;
      const auto t0 = std::chrono::steady_clock::now();
      f("N", &n, &nrhs, m.lu.data(), &n, m.ipiv.data(), x.data(), &n, &info, 1);
      Outcome out;
      out.seconds = seconds_since(t0);
      if (!check) return out;
      out.fault = info_fault(info);
      if (!out.fault.empty()) return out;
      // ||B w - A X w|| / (n ||A|| ||X w|| eps) for a random combination w of
      // the columns, so that a wrong column shows, whichever it is.
      std::mt19937 rng(12);
      std::uniform_real_distribution<double> d(0.5, 1.5);
      std::vector<double> w(nrhs), bw(n, 0), xw(n, 0);
      for (double &v : w) v = d(rng);
      for (std::size_t k = 0; k < std::size_t(nrhs); ++k)
        for (std::size_t i = 0; i < std::size_t(n); ++i) {
          bw[i] += w[k] * b[i + k * n];
          xw[i] += w[k] * x[i + k * n];
        }
      const std::vector<double> axw = times(m.a.data(), n, xw);
      double r = 0;
      for (int i = 0; i < n; ++i) r = std::max(r, std::abs(bw[i] - axw[i]));
      const double scale = double(n) * a_norm * max_abs(xw) * std::numeric_limits<float>::epsilon();
      out.fault = residual_fault(std::isfinite(r) && scale > 0 ? r / scale : INFINITY);
      return out;
    });
  }
  for (int nt : o.threads)
    print_row(measure("sgetrs", n, nt, false, 2.0 * n * n * nrhs, runs, libs), libs);
}

// The estimate has no residual: each library's must be within a factor of 10
// of the reference LAPACK's (of the median of all when that is missing).
void agree_on_rcond(const std::vector<Library> &libs, std::vector<Outcome> &outs) {
  std::vector<double> all;
  double reference = 0;
  for (std::size_t i = 0; i < outs.size(); ++i) {
    if (!outs[i].fault.empty() || !(outs[i].value > 0)) continue;
    all.push_back(outs[i].value);
    if (libs[i].name == "refLAPACK") reference = outs[i].value;
  }
  if (reference == 0 && !all.empty()) {
    std::sort(all.begin(), all.end());
    reference = all[all.size() / 2];
  }
  for (Outcome &out : outs) {
    if (!out.fault.empty() || out.seconds == 0) continue;  // missing, or wrong already
    const double ratio = out.value / reference;
    if (!(ratio > 0.1 && ratio < 10)) {
      char text[96];
      std::snprintf(text, sizeof text, "rcond %.3g against %.3g", out.value, reference);
      out.fault = text;
    }
  }
}

// sgecon, norm '1', with the norm of A computed once, as a caller has it.
void gecon_rows(const std::vector<Library> &libs, const Options &o, const Factored &m) {
  const int n = m.n;
  float anorm = 0;
  for (std::size_t j = 0; j < std::size_t(n); ++j) {
    double s = 0;
    for (int i = 0; i < n; ++i) s += std::abs(m.a[i + j * n]);
    anorm = std::max(anorm, float(s));
  }
  std::vector<float> work(4 * std::size_t(n));
  std::vector<int> iwork(n);
  std::vector<Run> runs;
  for (const Library &l : libs) {
    auto f = reinterpret_cast<GeconFn>(l.sym("sgecon_"));
    if (!f) {
      runs.emplace_back();
      continue;
    }
    runs.push_back([f, n, anorm, &m, &work, &iwork](bool) {
      int info = -1;
      float rcond = -1;
      const auto t0 = std::chrono::steady_clock::now();
      f("1", &n, m.lu.data(), &n, &anorm, &rcond, work.data(), iwork.data(), &info, 1);
      Outcome out;
      out.seconds = seconds_since(t0);
      out.fault = info_fault(info);
      out.value = rcond;
      return out;
    });
  }
  auto agree = [&libs](std::vector<Outcome> &outs) { agree_on_rcond(libs, outs); };
  for (int nt : o.threads) print_row(measure("sgecon", n, nt, true, 0, runs, libs, agree), libs);
}

// The rows of `routine` on a factored matrix of each size.
void factored_rows(const std::vector<Library> &libs, const Options &o, const char *routine,
                   void (*rows)(const std::vector<Library> &, const Options &, const Factored &)) {
  if (!wanted(o, routine)) return;
  for (int n : o.sizes) {
    Factored m{n, random_matrix<float>(std::size_t(n) * n, 1), {}, std::vector<int>(n)};
    if (shared_factors(libs, m.a, n, *std::max_element(o.threads.begin(), o.threads.end()), m.lu,
                       m.ipiv))
      rows(libs, o, m);
    else
      std::printf("%s %d: no library factored the matrix correctly\n", routine, n);
  }
}

// ---- Cholesky ----------------------------------------------------------------------

template <class T>
T conj_of(T x) {
  if constexpr (std::is_floating_point_v<T>)
    return x;
  else
    return std::conj(x);
}

// A Hermitian positive definite matrix: random elements in [-1, 1], the
// diagonal real and raised by n.
template <class T>
std::vector<T> positive_definite(int n, unsigned seed) {
  std::vector<T> a = random_matrix<T>(std::size_t(n) * n, seed);
  for (std::size_t j = 0; j < std::size_t(n); ++j) {
    for (std::size_t i = 0; i < j; ++i) a[j + i * n] = conj_of(a[i + j * n]);
    a[j + j * n] = T(std::real(a[j + j * n]) + float(n));
  }
  return a;
}

// ||A x - L L^H x||_inf / (n ||A||_inf ||x||_inf eps) for a random x, L the
// lower triangle potrf left.
template <class T>
double cholesky_residual(const std::vector<T> &a, double a_norm, const T *l, int n) {
  std::vector<Wide<T>> x(n);
  std::mt19937 rng(11);
  std::uniform_real_distribution<double> d(-1, 1);
  for (auto &v : x) v = Wide<T>(d(rng));
  const std::vector<Wide<T>> ax = times(a.data(), n, x);
  std::vector<Wide<T>> y(n, Wide<T>(0)), lly(n, Wide<T>(0));
  for (std::size_t i = 0; i < std::size_t(n); ++i)  // y = L^H x
    for (std::size_t k = i; k < std::size_t(n); ++k) y[i] += conj_of(Wide<T>(l[k + i * n])) * x[k];
  for (std::size_t j = 0; j < std::size_t(n); ++j)
    for (std::size_t i = j; i < std::size_t(n); ++i) lly[i] += Wide<T>(l[i + j * n]) * y[j];
  double r = 0;
  for (int i = 0; i < n; ++i) r = std::max(r, std::abs(ax[i] - lly[i]));
  if (!std::isfinite(r)) return std::numeric_limits<double>::infinity();
  return r / (double(n) * a_norm * std::numeric_limits<float>::epsilon());
}

// spotrf, cpotrf on the lower triangle; each call factors a fresh copy.
template <class T>
void potrf_rows(const std::vector<Library> &libs, const Options &o, const char *routine) {
  if (!wanted(o, routine)) return;
  const std::string name = std::string(routine) + "_";
  for (int n : o.sizes) {
    const std::vector<T> a = positive_definite<T>(n, 3);
    const double a_norm = norm_inf(a, n);
    std::vector<T> work(a.size());
    std::vector<Run> runs;
    for (const Library &l : libs) {
      auto f = reinterpret_cast<PotrfFn>(l.sym(name.c_str()));
      if (!f) {
        runs.emplace_back();
        continue;
      }
      runs.push_back([f, n, a_norm, &a, &work](bool check) {
        std::copy(a.begin(), a.end(), work.begin());
        int info = -1;
        const auto t0 = std::chrono::steady_clock::now();
        f("L", &n, work.data(), &n, &info, 1);
        Outcome out;
        out.seconds = seconds_since(t0);
        if (check) {
          out.fault = info_fault(info);
          if (out.fault.empty())
            out.fault = residual_fault(cholesky_residual(a, a_norm, work.data(), n));
        }
        return out;
      });
    }
    double flops = double(n) * n * n / 3;
    if (std::is_same_v<T, c8>) flops *= 4;
    for (int nt : o.threads) print_row(measure(routine, n, nt, false, flops, runs, libs), libs);
  }
}

// spotrs with nrhs right-hand sides on factors every library agrees on (the
// first correct spotrf among the peers, then ORB's).
void potrs_rows(const std::vector<Library> &libs, const Options &o) {
  if (!wanted(o, "spotrs")) return;
  for (int n : o.sizes) {
    const int nrhs = o.nrhs;
    const std::vector<float> a = positive_definite<float>(n, 3);
    const double a_norm = norm_inf(a, n);
    std::vector<float> l;
    std::vector<const Library *> order;
    for (const Library &lib : libs)
      if (!lib.orb) order.push_back(&lib);
    for (const Library &lib : libs)
      if (lib.orb) order.push_back(&lib);
    bool factored = false;
    for (const Library *lib : order) {
      auto f = reinterpret_cast<PotrfFn>(lib->sym("spotrf_"));
      if (!f) continue;
      l = a;
      int info = -1;
      f("L", &n, l.data(), &n, &info, 1);
      if (info == 0 && cholesky_residual(a, a_norm, l.data(), n) < kResidualLimit) {
        factored = true;
        break;
      }
    }
    if (!factored) {
      std::printf("spotrs %d: no library factored the matrix correctly\n", n);
      continue;
    }
    const std::vector<float> b = random_matrix<float>(std::size_t(n) * nrhs, 2);
    std::vector<float> x(b.size());
    std::vector<Run> runs;
    for (const Library &lib : libs) {
      auto f = reinterpret_cast<PotrsFn>(lib.sym("spotrs_"));
      if (!f) {
        runs.emplace_back();
        continue;
      }
      runs.push_back([f, n, nrhs, a_norm, &a, &l, &b, &x](bool check) {
        std::copy(b.begin(), b.end(), x.begin());
        int info = -1;
        const auto t0 = std::chrono::steady_clock::now();
        f("L", &n, &nrhs, l.data(), &n, x.data(), &n, &info, 1);
        Outcome out;
        out.seconds = seconds_since(t0);
        if (!check) return out;
        out.fault = info_fault(info);
        if (!out.fault.empty()) return out;
        // The residual of a random combination of the columns.
        std::vector<double> bw(n, 0), xw(n, 0);
        for (std::size_t k = 0; k < std::size_t(nrhs); ++k)
          for (std::size_t i = 0; i < std::size_t(n); ++i) {
            const double w = 0.5 + double(k % 7) / 7;
            bw[i] += w * b[i + k * n];
            xw[i] += w * x[i + k * n];
          }
        const std::vector<double> axw = times(a.data(), n, xw);
        double r = 0;
        for (int i = 0; i < n; ++i) r = std::max(r, std::abs(bw[i] - axw[i]));
        const double scale =
            double(n) * a_norm * max_abs(xw) * std::numeric_limits<float>::epsilon();
        out.fault = residual_fault(std::isfinite(r) && scale > 0 ? r / scale : INFINITY);
        return out;
      });
    }
    for (int nt : o.threads)
      print_row(measure("spotrs", n, nt, false, 2.0 * n * n * nrhs, runs, libs), libs);
  }
}

// ---- the symmetric and Hermitian indefinite factorizations (ssytrf, chetrf) ----------

using SytrfFn = void (*)(const char *, const int *, void *, const int *, int *, void *, const int *,
                         int *, Fortran_len);

// A symmetric matrix (Hermitian, with a real diagonal, when herm is set)
// from the random one of the other rows.
template <class T>
std::vector<T> symmetric_matrix(int n, bool herm) {
  std::vector<T> a = random_matrix<T>(std::size_t(n) * n, 1);
  for (std::size_t j = 0; j < std::size_t(n); ++j) {
    for (std::size_t i = j + 1; i < std::size_t(n); ++i) a[j + i * n] = a[i + j * n];
    if constexpr (std::is_same_v<T, c8>)
      if (herm) {
        for (std::size_t i = j + 1; i < std::size_t(n); ++i) a[j + i * n] = std::conj(a[j + i * n]);
        a[j + j * n] = std::real(a[j + j * n]);
      }
  }
  return a;
}

// ||A x - L D L^T x||_inf / (n ||A||_inf ||x||_inf eps) for a random x, from
// the lower factors and pivots as the published routines lay them out
// (L^H and a Hermitian D when herm is set): L = P(1) L(1) P(2) L(2) ...,
// each L(k) the identity but for the one or two columns of its block.
template <class T>
double sytrf_residual(const std::vector<T> &a, double a_norm, const T *f, const int *ipiv, int n,
                      bool herm) {
  using W = Wide<T>;
  auto cj = [herm](W z) {
    if constexpr (std::is_same_v<W, double>)
      return z;
    else
      return herm ? std::conj(z) : z;
  };
  auto el = [&](int i, int j) { return W(f[i + std::size_t(j) * n]); };
  std::vector<W> x(n);
  std::mt19937 rng(11);
  std::uniform_real_distribution<double> d(-1, 1);
  for (auto &v : x) v = W(d(rng));
  const std::vector<W> ax = times(a.data(), n, x);
  std::vector<W> z = x;
  std::vector<int> first(n);  // the block of k starts at first[k]
  for (int k = 0; k < n;) {
    const int s = ipiv[k] > 0 ? 1 : 2;
    if (k + s > n || (s == 2 && ipiv[k + 1] != ipiv[k])) return INFINITY;
    const int p = std::abs(ipiv[k]) - 1;
    if (p < k || p >= n) return INFINITY;
    first[k] = k;
    if (s == 2) first[k + 1] = k;
    k += s;
  }
  // z = L^H x: k rising, the interchange then the block's columns.
  for (int k = 0; k < n;) {
    const int s = ipiv[k] > 0 ? 1 : 2, p = std::abs(ipiv[k]) - 1;
    std::swap(z[k + s - 1], z[p]);
    for (int c = k; c < k + s; ++c)
      for (int i = k + s; i < n; ++i) z[c] += cj(el(i, c)) * z[i];
    k += s;
  }
  // z = D z.
  for (int k = 0; k < n;) {
    if (ipiv[k] > 0) {
      z[k] *= el(k, k);
      ++k;
      continue;
    }
    const W d11 = el(k, k), d21 = el(k + 1, k), d22 = el(k + 1, k + 1);
    const W z0 = z[k], z1 = z[k + 1];
    z[k] = d11 * z0 + cj(d21) * z1;
    z[k + 1] = d21 * z0 + d22 * z1;
    k += 2;
  }
  // z = L z: blocks from the last, the columns then the interchange.
  for (int k = n - 1; k >= 0;) {
    const int k0 = first[k], s = k - k0 + 1, p = std::abs(ipiv[k0]) - 1;
    for (int c = k0; c <= k; ++c)
      for (int i = k + 1; i < n; ++i) z[i] += el(i, c) * z[c];
    std::swap(z[k0 + s - 1], z[p]);
    k = k0 - 1;
  }
  double r = 0;
  for (int i = 0; i < n; ++i) r = std::max(r, std::abs(ax[i] - z[i]));
  if (!std::isfinite(r)) return INFINITY;
  return r / (double(n) * a_norm * std::numeric_limits<float>::epsilon());
}

// Diagonal pivoting lets the factors grow more than partial pivoting's: the
// residual limit of the other rows, times this.
constexpr double kGrowthAllowance = 100;

// ssytrf or chetrf with UPLO = 'L' and each library's optimal LWORK; every
// call factors a fresh copy of the same matrix.
template <class T>
void sytrf_rows(const std::vector<Library> &libs, const Options &o, const char *routine) {
  if (!wanted(o, routine)) return;
  const std::string name = std::string(routine) + "_";
  const bool herm = routine[1] == 'h';
  for (int n : o.sizes) {
    const std::vector<T> a = symmetric_matrix<T>(n, herm);
    const double a_norm = norm_inf(a, n);
    std::vector<T> f(a.size());
    std::vector<int> ipiv(n);
    std::vector<std::vector<T>> works(libs.size());
    std::vector<Run> runs;
    for (std::size_t li = 0; li < libs.size(); ++li) {
      auto fn = reinterpret_cast<SytrfFn>(libs[li].sym(name.c_str()));
      if (!fn) {
        runs.emplace_back();
        continue;
      }
      T query = T(0);
      int lwork = -1, info = 0;
      fn("L", &n, f.data(), &n, ipiv.data(), &query, &lwork, &info, 1);
      lwork = std::max(1, int(std::real(query)));
      works[li].resize(lwork);
      std::vector<T> &work = works[li];
      runs.push_back([fn, n, lwork, herm, a_norm, &a, &f, &ipiv, &work](bool check) {
        std::copy(a.begin(), a.end(), f.begin());
        int info = -1;
        const auto t0 = std::chrono::steady_clock::now();
        fn("L", &n, f.data(), &n, ipiv.data(), work.data(), &lwork, &info, 1);
        Outcome out;
        out.seconds = seconds_since(t0);
        if (check) {
          out.fault = info_fault(info);
          if (out.fault.empty())
            out.fault = residual_fault(sytrf_residual(a, a_norm, f.data(), ipiv.data(), n, herm) /
                                       kGrowthAllowance);
        }
        return out;
      });
    }
    double flops = double(n) * n * n / 3;
    if (std::is_same_v<T, c8>) flops *= 4;
    for (int nt : o.threads) print_row(measure(routine, n, nt, false, flops, runs, libs), libs);
  }
}

// ---- the QR family (sgeqrf, cgeqrf, sormqr, sgels) ------------------------------------

using GeqrfFn = void (*)(const int *, const int *, void *, const int *, void *, void *, const int *,
                         int *);
using OrmqrFn = void (*)(const char *, const char *, const int *, const int *, const int *,
                         const void *, const int *, const void *, void *, const int *, void *,
                         const int *, int *, Fortran_len, Fortran_len);
using GelsFn = void (*)(const char *, const int *, const int *, const int *, void *, const int *,
                        void *, const int *, void *, const int *, int *, Fortran_len);

// The library's optimal LWORK, asked with LWORK = -1.
template <class T, class Ask>
int optimal_lwork(Ask ask) {
  T query = T(0);
  ask(&query);
  return std::max(1, int(std::real(query)));
}

// ||Q^H (A x) - R x||_inf / (n ||A||_inf ||x||_inf eps) for a random x, Q
// applied by the same library's xORMQR/xUNMQR to the factors its xGEQRF left.
template <class T>
double qr_residual(const std::vector<T> &a, double a_norm, const T *f, const T *tau, int n,
                   OrmqrFn ormqr) {
  if (!ormqr) return 0;  // nothing to check against
  std::vector<Wide<T>> x(n);
  std::mt19937 rng(11);
  std::uniform_real_distribution<double> d(-1, 1);
  for (auto &v : x) v = Wide<T>(d(rng));
  const std::vector<Wide<T>> ax = times(a.data(), n, x);
  std::vector<T> y(n);
  for (int i = 0; i < n; ++i) y[i] = T(ax[i]);
  const char *adj = std::is_same_v<T, c8> ? "C" : "T";
  const int one = 1;
  int info = 0;
  const int lwork = optimal_lwork<T>([&](T *q) {
    int lw = -1;
    ormqr("L", adj, &n, &one, &n, f, &n, tau, y.data(), &n, q, &lw, &info, 1, 1);
  });
  std::vector<T> work(lwork);
  ormqr("L", adj, &n, &one, &n, f, &n, tau, y.data(), &n, work.data(), &lwork, &info, 1, 1);
  if (info != 0) return std::numeric_limits<double>::infinity();
  double r = 0;
  for (std::size_t i = 0; i < std::size_t(n); ++i) {
    Wide<T> rx(0);
    for (std::size_t j = i; j < std::size_t(n); ++j) rx += Wide<T>(f[i + j * n]) * x[j];
    r = std::max(r, std::abs(Wide<T>(y[i]) - rx));
  }
  if (!std::isfinite(r)) return std::numeric_limits<double>::infinity();
  return r / (double(n) * a_norm * std::numeric_limits<float>::epsilon());
}

// sgeqrf, cgeqrf on a square matrix with each library's optimal LWORK;
// 4/3 n^3 flops (complex 4 times that).
template <class T>
void geqrf_rows(const std::vector<Library> &libs, const Options &o, const char *routine) {
  if (!wanted(o, routine)) return;
  const std::string name = std::string(routine) + "_";
  const std::string orm = std::is_same_v<T, c8> ? "cunmqr_" : "sormqr_";
  for (int n : o.sizes) {
    const std::vector<T> a = random_matrix<T>(std::size_t(n) * n, 1);
    const double a_norm = norm_inf(a, n);
    std::vector<T> f(a.size()), tau(n);
    std::vector<std::vector<T>> works(libs.size());
    std::vector<Run> runs;
    for (std::size_t li = 0; li < libs.size(); ++li) {
      auto fn = reinterpret_cast<GeqrfFn>(libs[li].sym(name.c_str()));
      if (!fn) {
        runs.emplace_back();
        continue;
      }
      auto ormqr = reinterpret_cast<OrmqrFn>(libs[li].sym(orm.c_str()));
      const int lwork = optimal_lwork<T>([&](T *q) {
        int lw = -1, info = 0;
        fn(&n, &n, f.data(), &n, tau.data(), q, &lw, &info);
      });
      works[li].resize(lwork);
      std::vector<T> &work = works[li];
      runs.push_back([fn, ormqr, n, lwork, a_norm, &a, &f, &tau, &work](bool check) {
        std::copy(a.begin(), a.end(), f.begin());
        int info = -1;
        const auto t0 = std::chrono::steady_clock::now();
        fn(&n, &n, f.data(), &n, tau.data(), work.data(), &lwork, &info);
        Outcome out;
        out.seconds = seconds_since(t0);
        if (check) {
          out.fault = info_fault(info);
          if (out.fault.empty())
            out.fault = residual_fault(qr_residual(a, a_norm, f.data(), tau.data(), n, ormqr));
        }
        return out;
      });
    }
    double flops = 4.0 * n * n * n / 3;
    if (std::is_same_v<T, c8>) flops *= 4;
    for (int nt : o.threads) print_row(measure(routine, n, nt, false, flops, runs, libs), libs);
  }
}

// sormqr ('L', 'T') of a square C by the n reflectors of a QR of the same
// matrix (the first peer's correct factors, then ORB's): C = A gives R.
// 2 n^3 flops.
void ormqr_rows(const std::vector<Library> &libs, const Options &o) {
  if (!wanted(o, "sormqr")) return;
  for (int n : o.sizes) {
    const std::vector<float> a = random_matrix<float>(std::size_t(n) * n, 1);
    const double a_norm = norm_inf(a, n);
    std::vector<float> f, tau(n);
    bool factored = false;
    std::vector<const Library *> order;
    for (const Library &lib : libs)
      if (!lib.orb) order.push_back(&lib);
    for (const Library &lib : libs)
      if (lib.orb) order.push_back(&lib);
    for (const Library *lib : order) {
      auto g = reinterpret_cast<GeqrfFn>(lib->sym("sgeqrf_"));
      auto q = reinterpret_cast<OrmqrFn>(lib->sym("sormqr_"));
      if (!g || !q) continue;
      f = a;
      std::vector<float> work(std::size_t(n) * 64);
      const int lwork = int(work.size());
      int info = -1;
      g(&n, &n, f.data(), &n, tau.data(), work.data(), &lwork, &info);
      if (info == 0 && qr_residual(a, a_norm, f.data(), tau.data(), n, q) < kResidualLimit) {
        factored = true;
        break;
      }
    }
    if (!factored) {
      std::printf("sormqr %d: no library factored the matrix correctly\n", n);
      continue;
    }
    std::vector<float> c(a.size());
    std::vector<std::vector<float>> works(libs.size());
    std::vector<Run> runs;
    for (std::size_t li = 0; li < libs.size(); ++li) {
      auto fn = reinterpret_cast<OrmqrFn>(libs[li].sym("sormqr_"));
      if (!fn) {
        runs.emplace_back();
        continue;
      }
      const int lwork = optimal_lwork<float>([&](float *q) {
        int lw = -1, info = 0;
        fn("L", "T", &n, &n, &n, f.data(), &n, tau.data(), c.data(), &n, q, &lw, &info, 1, 1);
      });
      works[li].resize(lwork);
      std::vector<float> &work = works[li];
      runs.push_back([fn, n, lwork, a_norm, &a, &f, &tau, &c, &work](bool check) {
        std::copy(a.begin(), a.end(), c.begin());
        int info = -1;
        const auto t0 = std::chrono::steady_clock::now();
        fn("L", "T", &n, &n, &n, f.data(), &n, tau.data(), c.data(), &n, work.data(), &lwork, &info,
           1, 1);
        Outcome out;
        out.seconds = seconds_since(t0);
        if (check) {
          out.fault = info_fault(info);
          if (!out.fault.empty()) return out;
          double r = 0;  // Q^T A against R, zeros below it
          for (std::size_t j = 0; j < std::size_t(n); ++j)
            for (std::size_t i = 0; i < std::size_t(n); ++i)
              r = std::max(r, double(std::abs(c[i + j * n] - (i <= j ? f[i + j * n] : 0.0f))));
          out.fault =
              residual_fault(r / (double(n) * a_norm * std::numeric_limits<float>::epsilon()));
        }
        return out;
      });
    }
    for (int nt : o.threads)
      print_row(measure("sormqr", n, nt, false, 2.0 * n * n * n, runs, libs), libs);
  }
}

// sgels ('N') of a square A with nrhs right-hand sides: 4/3 n^3 + 3 n^2 nrhs
// flops; the first column's residual checked.
void gels_rows(const std::vector<Library> &libs, const Options &o) {
  if (!wanted(o, "sgels")) return;
  for (int n : o.sizes) {
    const int nrhs = o.nrhs;
    const std::vector<float> a = random_matrix<float>(std::size_t(n) * n, 1);
    const std::vector<float> b = random_matrix<float>(std::size_t(n) * nrhs, 2);
    const double a_norm = norm_inf(a, n);
    std::vector<float> f(a.size()), x(b.size());
    std::vector<std::vector<float>> works(libs.size());
    std::vector<Run> runs;
    for (std::size_t li = 0; li < libs.size(); ++li) {
      auto fn = reinterpret_cast<GelsFn>(libs[li].sym("sgels_"));
      if (!fn) {
        runs.emplace_back();
        continue;
      }
      const int lwork = optimal_lwork<float>([&](float *q) {
        int lw = -1, info = 0;
        fn("N", &n, &n, &nrhs, f.data(), &n, x.data(), &n, q, &lw, &info, 1);
      });
      works[li].resize(lwork);
      std::vector<float> &work = works[li];
      runs.push_back([fn, n, nrhs, lwork, a_norm, &a, &b, &f, &x, &work](bool check) {
        std::copy(a.begin(), a.end(), f.begin());
        std::copy(b.begin(), b.end(), x.begin());
        int info = -1;
        const auto t0 = std::chrono::steady_clock::now();
        fn("N", &n, &n, &nrhs, f.data(), &n, x.data(), &n, work.data(), &lwork, &info, 1);
        Outcome out;
        out.seconds = seconds_since(t0);
        if (check) {
          out.fault = info_fault(info);
          if (!out.fault.empty()) return out;
          const std::vector<double> x0(x.begin(), x.begin() + n);
          const std::vector<double> ax = times(a.data(), n, x0);
          double r = 0;
          for (int i = 0; i < n; ++i) r = std::max(r, std::abs(double(b[i]) - ax[i]));
          const double scale =
              double(n) * a_norm * max_abs(x0) * std::numeric_limits<float>::epsilon();
          out.fault = residual_fault(std::isfinite(r) && scale > 0 ? r / scale : INFINITY);
        }
        return out;
      });
    }
    const double flops = 4.0 * n * n * n / 3 + 3.0 * n * n * nrhs;
    for (int nt : o.threads) print_row(measure("sgels", n, nt, false, flops, runs, libs), libs);
  }
}

// ---- singular values -------------------------------------------------------------------

using GesvdFn = void (*)(const char *, const char *, const int *, const int *, float *, const int *,
                         float *, float *, const int *, float *, const int *, float *, const int *,
                         int *, Fortran_len, Fortran_len);
using GesddFn = void (*)(const char *, const int *, const int *, float *, const int *, float *,
                         float *, const int *, float *, const int *, float *, const int *, int *,
                         int *, Fortran_len);

// A check of a decomposition that costs O(n^2): the values against the
// Frobenius norm (sum s_i^2 = ||A||_F^2), and with vectors A w against
// U (S (V^T w)) for a random w.
std::string svd_fault(const std::vector<float> &a, int n, const std::vector<float> &s,
                      const float *u, const float *vt) {
  double fro = 0, sum = 0;
  for (float x : a) fro += double(x) * x;
  for (float x : s) sum += double(x) * x;
  const double eps = std::numeric_limits<float>::epsilon();
  if (!(std::abs(sum - fro) / fro < 10 * n * eps)) {
    char text[96];
    std::snprintf(text, sizeof text, "values miss ||A||_F: %.6g against %.6g", sum, fro);
    return text;
  }
  if (!u) return "";
  std::vector<double> w(n);
  std::mt19937 rng(13);
  std::uniform_real_distribution<double> d(-1, 1);
  for (double &v : w) v = d(rng);
  const std::vector<double> aw = times(a.data(), n, w);
  std::vector<double> t(n, 0), usvw(n, 0);
  for (std::size_t j = 0; j < std::size_t(n); ++j)
    for (std::size_t i = 0; i < std::size_t(n); ++i) t[i] += double(vt[i + j * n]) * w[j];
  for (int i = 0; i < n; ++i) t[i] *= s[i];
  for (std::size_t j = 0; j < std::size_t(n); ++j)
    for (std::size_t i = 0; i < std::size_t(n); ++i) usvw[i] += double(u[i + j * n]) * t[j];
  double r = 0, scale = 0;
  for (int i = 0; i < n; ++i) {
    r = std::max(r, std::abs(aw[i] - usvw[i]));
    scale = std::max(scale, std::abs(aw[i]));
  }
  return residual_fault(r / (scale * n * eps));
}

// sgesvd (JOBU = JOBVT) and sgesdd (JOBZ) with 'N' (values) or 'A' (all
// vectors), each library's optimal LWORK, a fresh copy of A every call.
void svd_rows(const std::vector<Library> &libs, const Options &o, bool divide, char job) {
  const std::string routine = std::string(divide ? "sgesdd" : "sgesvd") + job;
  if (!wanted(o, routine.c_str())) return;
  for (int n : o.sizes) {
    const std::vector<float> a = random_matrix<float>(std::size_t(n) * n, 5);
    const bool vectors = job == 'A';
    std::vector<float> f(a.size()), s(n), u(vectors ? a.size() : 1), vt(vectors ? a.size() : 1);
    std::vector<int> iwork(8 * std::size_t(n));
    std::vector<std::vector<float>> works(libs.size());
    std::vector<Run> runs;
    for (std::size_t li = 0; li < libs.size(); ++li) {
      void *sym = libs[li].sym(divide ? "sgesdd_" : "sgesvd_");
      if (!sym) {
        runs.emplace_back();
        continue;
      }
      const int ld = vectors ? n : 1;
      auto call = [sym, divide, job, n, ld, &f, &s, &u, &vt, &iwork](float *work, int lwork) {
        int info = -1;
        if (divide)
          reinterpret_cast<GesddFn>(sym)(&job, &n, &n, f.data(), &n, s.data(), u.data(), &ld,
                                         vt.data(), &ld, work, &lwork, iwork.data(), &info, 1);
        else
          reinterpret_cast<GesvdFn>(sym)(&job, &job, &n, &n, f.data(), &n, s.data(), u.data(), &ld,
                                         vt.data(), &ld, work, &lwork, &info, 1, 1);
        return info;
      };
      float query = 0;
      call(&query, -1);
      works[li].resize(std::max(1, int(query)));
      std::vector<float> &work = works[li];
      runs.push_back([call, n, vectors, &a, &f, &s, &u, &vt, &work](bool check) {
        std::copy(a.begin(), a.end(), f.begin());
        const auto t0 = std::chrono::steady_clock::now();
        const int info = call(work.data(), int(work.size()));
        Outcome out;
        out.seconds = seconds_since(t0);
        if (check) {
          out.fault = info_fault(info);
          if (out.fault.empty())
            out.fault = svd_fault(a, n, s, vectors ? u.data() : nullptr, vt.data());
        }
        return out;
      });
    }
    const double flops = double(n) * n * n;
    for (int nt : o.threads)
      print_row(measure(routine.c_str(), n, nt, false, flops, runs, libs), libs);
  }
}

// ---- symmetric and Hermitian eigenproblems ----------------------------------------------

using Len = Fortran_len;
using SyevrFn = void (*)(const char *, const char *, const char *, const int *, void *, const int *,
                         const float *, const float *, const int *, const int *, const float *,
                         int *, float *, void *, const int *, int *, void *, const int *, int *,
                         const int *, int *, Len, Len, Len);
using HeevrFn = void (*)(const char *, const char *, const char *, const int *, void *, const int *,
                         const float *, const float *, const int *, const int *, const float *,
                         int *, float *, void *, const int *, int *, void *, const int *, float *,
                         const int *, int *, const int *, int *, Len, Len, Len);
using SbevdFn = void (*)(const char *, const char *, const int *, const int *, float *, const int *,
                         float *, float *, const int *, float *, const int *, int *, const int *,
                         int *, Len, Len);

// The symmetric (Hermitian) matrix with the lower triangle of a, in full.
template <class T>
std::vector<T> hermitian_full(const std::vector<T> &a, int n) {
  std::vector<T> h(a);
  for (std::size_t j = 0; j < std::size_t(n); ++j) {
    for (std::size_t i = 0; i < j; ++i) h[i + j * n] = conj_of(h[j + i * n]);
    h[j + j * n] = T(std::real(h[j + j * n]));
  }
  return h;
}

// For a random x: ||A Z x - Z W x|| / (||A|| n eps) and ||Z^H Z x - x|| / (n eps), m pairs.
template <class T>
std::string eigen_fault(const std::vector<T> &full, double a_norm, int n, int m,
                        const std::vector<float> &w, const T *z) {
  using W = Wide<T>;
  const double eps = std::numeric_limits<float>::epsilon();
  std::vector<W> x(m);
  std::mt19937 rng(17);
  std::uniform_real_distribution<double> d(-1, 1);
  for (auto &v : x) v = W(d(rng));
  std::vector<W> zx(n, W(0)), zwx(n, W(0)), back(m, W(0));
  for (std::size_t j = 0; j < std::size_t(m); ++j)
    for (std::size_t i = 0; i < std::size_t(n); ++i) {
      zx[i] += W(z[i + j * n]) * x[j];
      zwx[i] += W(z[i + j * n]) * (double(w[j]) * x[j]);
    }
  const std::vector<W> azx = times(full.data(), n, zx);
  for (std::size_t j = 0; j < std::size_t(m); ++j)
    for (std::size_t i = 0; i < std::size_t(n); ++i) back[j] += conj_of(W(z[i + j * n])) * zx[i];
  double r = 0, o = 0, xn = 0;
  for (int i = 0; i < n; ++i) r = std::max(r, std::abs(azx[i] - zwx[i]));
  for (int j = 0; j < m; ++j)
    o = std::max(o, std::abs(back[j] - x[j])), xn = std::max(xn, std::abs(x[j]));
  const double res = r / (a_norm * xn * n * eps), orth = o / (xn * n * eps);
  // The reference testers' threshold for these ratios: a correct solver
  // gives a few units, a wrong vector or a lost pair about 1 / eps.
  const double ratio = std::isfinite(res) && std::isfinite(orth) ? std::max(res, orth) : INFINITY;
  if (ratio < 50) return "";
  char text[96];
  std::snprintf(text, sizeof text, "residual %.3g (limit 50)", ratio);
  return text;
}

// ssyevr and cheevr with vectors, the lower triangle, all pairs ('A') or the
// smallest tenth of them ('I'); each library's optimal workspace, a fresh
// copy of A every call.
template <class T>
void syevr_rows(const std::vector<Library> &libs, const Options &o, const char *routine,
                char range) {
  constexpr bool cplx = std::is_same_v<T, c8>;
  const std::string row = std::string(routine) + range;
  if (!wanted(o, row.c_str())) return;
  for (int n : o.sizes) {
    if (n > 4000) continue;
    const std::vector<T> full = hermitian_full(random_matrix<T>(std::size_t(n) * n, 7), n);
    const double a_norm = norm_inf(full, n);
    const int il = 1, iu = range == 'A' ? n : std::max(1, n / 10);
    std::vector<T> f(full.size()), z(full.size());
    std::vector<float> w(n);
    std::vector<int> isuppz(2 * std::size_t(n));
    std::vector<std::vector<T>> works(libs.size());
    std::vector<std::vector<float>> rworks(libs.size());
    std::vector<std::vector<int>> iworks(libs.size());
    std::vector<Run> runs;
    for (std::size_t li = 0; li < libs.size(); ++li) {
      void *sym = libs[li].sym(cplx ? "cheevr_" : "ssyevr_");
      if (!sym) {
        runs.emplace_back();
        continue;
      }
      auto call = [sym, range, n, il, iu, &f, &w, &z, &isuppz](T *work, int lwork, float *rwork,
                                                               int lrwork, int *iwork, int liwork,
                                                               int *m) {
        const char jobz = 'V', uplo = 'L';
        const float vl = 0, vu = 0, abstol = 0;
        int info = -1;
        if constexpr (cplx)
          reinterpret_cast<HeevrFn>(sym)(&jobz, &range, &uplo, &n, f.data(), &n, &vl, &vu, &il, &iu,
                                         &abstol, m, w.data(), z.data(), &n, isuppz.data(), work,
                                         &lwork, rwork, &lrwork, iwork, &liwork, &info, 1, 1, 1);
        else
          reinterpret_cast<SyevrFn>(sym)(&jobz, &range, &uplo, &n, f.data(), &n, &vl, &vu, &il, &iu,
                                         &abstol, m, w.data(), z.data(), &n, isuppz.data(), work,
                                         &lwork, iwork, &liwork, &info, 1, 1, 1);
        (void)rwork, (void)lrwork;
        return info;
      };
      T qw = 0;
      float qr = 0;
      int qi = 0, m = 0;
      call(&qw, -1, &qr, -1, &qi, -1, &m);
      works[li].resize(std::max(1, int(std::real(qw))));
      rworks[li].resize(std::max(1, int(qr)));
      iworks[li].resize(std::max(1, qi));
      runs.push_back([call, n, a_norm, &full, &f, &w, &z, &work = works[li], &rwork = rworks[li],
                      &iwork = iworks[li]](bool check) {
        std::copy(full.begin(), full.end(), f.begin());
        int m = 0;
        const auto t0 = std::chrono::steady_clock::now();
        const int info = call(work.data(), int(work.size()), rwork.data(), int(rwork.size()),
                              iwork.data(), int(iwork.size()), &m);
        Outcome out;
        out.seconds = seconds_since(t0);
        if (check) {
          out.fault = info_fault(info);
          if (out.fault.empty()) out.fault = eigen_fault(full, a_norm, n, m, w, z.data());
        }
        return out;
      });
    }
    // Nominal: the reduction's 4/3 n^3 and the back transformation's 2 n^2 m
    // (real arithmetic; four times that for complex).
    const double pairs = iu - il + 1;
    const double flops = (4.0 / 3 * n * double(n) * n + 2.0 * n * n * pairs) * (cplx ? 4 : 1);
    for (int nt : o.threads) print_row(measure(row.c_str(), n, nt, false, flops, runs, libs), libs);
  }
}

// ssbevd with vectors on a band of width max(n / 20, 8), the lower triangle.
void sbevd_rows(const std::vector<Library> &libs, const Options &o) {
  if (!wanted(o, "ssbevd")) return;
  for (int n : o.sizes) {
    if (n > 4000) continue;
    const int kd = std::max(n / 20, 8), ldab = kd + 1;
    const std::vector<float> full = hermitian_full(random_matrix<float>(std::size_t(n) * n, 9), n);
    std::vector<float> band(std::size_t(ldab) * n, 0), banded(std::size_t(n) * n, 0);
    for (std::size_t j = 0; j < std::size_t(n); ++j)
      for (std::size_t i = j; i < std::min<std::size_t>(n, j + kd + 1); ++i) {
        band[i - j + j * ldab] = full[i + j * n];
        banded[i + j * n] = banded[j + i * n] = full[i + j * n];
      }
    const double a_norm = norm_inf(banded, n);
    std::vector<float> ab(band.size()), w(n), z(std::size_t(n) * n);
    std::vector<std::vector<float>> works(libs.size());
    std::vector<std::vector<int>> iworks(libs.size());
    std::vector<Run> runs;
    for (std::size_t li = 0; li < libs.size(); ++li) {
      void *sym = libs[li].sym("ssbevd_");
      if (!sym) {
        runs.emplace_back();
        continue;
      }
      auto call = [sym, n, kd, ldab, &ab, &w, &z](float *work, int lwork, int *iwork, int liwork) {
        const char jobz = 'V', uplo = 'L';
        int info = -1;
        reinterpret_cast<SbevdFn>(sym)(&jobz, &uplo, &n, &kd, ab.data(), &ldab, w.data(), z.data(),
                                       &n, work, &lwork, iwork, &liwork, &info, 1, 1);
        return info;
      };
      float qw = 0;
      int qi = 0;
      call(&qw, -1, &qi, -1);
      works[li].resize(std::max(1, int(qw)));
      iworks[li].resize(std::max(1, qi));
      runs.push_back([call, n, a_norm, &band, &banded, &ab, &w, &z, &work = works[li],
                      &iwork = iworks[li]](bool check) {
        std::copy(band.begin(), band.end(), ab.begin());
        const auto t0 = std::chrono::steady_clock::now();
        const int info = call(work.data(), int(work.size()), iwork.data(), int(iwork.size()));
        Outcome out;
        out.seconds = seconds_since(t0);
        if (check) {
          out.fault = info_fault(info);
          if (out.fault.empty()) out.fault = eigen_fault(banded, a_norm, n, n, w, z.data());
        }
        return out;
      });
    }
    // Nominal: the band reduction's 6 n^2 kd and the vectors' 2 n^3 product
    // (divide and conquer's own work depends on deflation).
    const double flops = 6.0 * n * double(n) * kd + 2.0 * n * double(n) * n;
    for (int nt : o.threads) print_row(measure("ssbevd", n, nt, false, flops, runs, libs), libs);
  }
}

// ---- the Hessenberg reduction (sgehrd) ----------------------------------------------------

using GehrdFn = void (*)(const int *, const int *, const int *, void *, const int *, void *, void *,
                         const int *, int *);

// sgehrd of a random square matrix (ilo = 1, ihi = n) with each library's
// optimal LWORK; 10/3 n^3 flops. The similarity keeps the trace and the
// Frobenius norm: H's (the reflectors below its subdiagonal left out) are
// checked against A's to n eps.
void gehrd_rows(const std::vector<Library> &libs, const Options &o) {
  if (!wanted(o, "sgehrd")) return;
  for (int n : o.sizes) {
    const std::vector<float> a = random_matrix<float>(std::size_t(n) * n, 1);
    double trace = 0, frob = 0;
    for (std::size_t j = 0; j < std::size_t(n); ++j) {
      trace += a[j + j * n];
      for (std::size_t i = 0; i < std::size_t(n); ++i) frob += double(a[i + j * n]) * a[i + j * n];
    }
    std::vector<float> f(a.size()), tau(std::max(1, n));
    std::vector<std::vector<float>> works(libs.size());
    std::vector<Run> runs;
    const int one = 1;
    for (std::size_t li = 0; li < libs.size(); ++li) {
      auto fn = reinterpret_cast<GehrdFn>(libs[li].sym("sgehrd_"));
      if (!fn) {
        runs.emplace_back();
        continue;
      }
      const int lwork = optimal_lwork<float>([&](float *q) {
        int lw = -1, info = 0;
        fn(&n, &one, &n, f.data(), &n, tau.data(), q, &lw, &info);
      });
      works[li].resize(lwork);
      std::vector<float> &work = works[li];
      runs.push_back([fn, n, lwork, trace, frob, &a, &f, &tau, &work](bool check) {
        std::copy(a.begin(), a.end(), f.begin());
        int info = -1;
        const int ilo = 1;
        const auto t0 = std::chrono::steady_clock::now();
        fn(&n, &ilo, &n, f.data(), &n, tau.data(), work.data(), &lwork, &info);
        Outcome out;
        out.seconds = seconds_since(t0);
        if (check) {
          out.fault = info_fault(info);
          if (out.fault.empty()) {
            double t = 0, s2 = 0;
            for (std::size_t j = 0; j < std::size_t(n); ++j) {
              t += f[j + j * n];
              for (std::size_t i = 0; i <= std::min(j + 1, std::size_t(n) - 1); ++i)
                s2 += double(f[i + j * n]) * f[i + j * n];
            }
            const double eps = double(n) * std::numeric_limits<float>::epsilon();
            const double r = std::max(std::abs(t - trace) / (eps * std::sqrt(frob)),
                                      std::abs(s2 - frob) / (eps * frob));
            out.fault = residual_fault(std::isfinite(r) ? r : INFINITY);
          }
        }
        return out;
      });
    }
    const double flops = 10.0 * n * n * n / 3;
    for (int nt : o.threads) print_row(measure("sgehrd", n, nt, false, flops, runs, libs), libs);
  }
}

// ---- nonsymmetric eigenproblems ----------------------------------------------------------

using GeevFn = void (*)(const char *, const char *, const int *, float *, const int *, float *,
                        float *, float *, const int *, float *, const int *, float *, const int *,
                        int *, Len, Len);

// Values only: their sum against the trace. Right vectors: for a random x,
// ||A V x - V B x|| / (||A|| ||x|| n eps), B block diagonal with wr on the
// diagonal and [wr wi; -wi wr] for each complex pair (columns re, im).
std::string geev_fault(const std::vector<float> &a, int n, const std::vector<float> &wr,
                       const std::vector<float> &wi, const float *v) {
  const double eps = std::numeric_limits<float>::epsilon();
  double a_norm = 0;
  for (float x : a) a_norm = std::max(a_norm, double(std::abs(x)));
  a_norm *= n;
  if (!v) {
    double trace = 0, sum = 0;
    for (int i = 0; i < n; ++i) trace += a[i + std::size_t(i) * n], sum += wr[i];
    const double ratio = std::abs(trace - sum) / (a_norm * n * eps);
    if (std::isfinite(ratio) && ratio < 50) return "";
    char text[96];
    std::snprintf(text, sizeof text, "eigenvalues miss the trace: ratio %.3g", ratio);
    return text;
  }
  std::vector<double> x(n), bx(n), vx(n, 0), vbx(n, 0);
  std::mt19937 rng(19);
  std::uniform_real_distribution<double> d(-1, 1);
  for (double &t : x) t = d(rng);
  for (int j = 0; j < n; ++j) {
    if (wi[j] != 0 && j + 1 < n) {
      bx[j] = wr[j] * x[j] + wi[j] * x[j + 1];
      bx[j + 1] = -wi[j] * x[j] + wr[j] * x[j + 1];
      ++j;
    } else {
      bx[j] = wr[j] * x[j];
    }
  }
  for (std::size_t j = 0; j < std::size_t(n); ++j)
    for (std::size_t i = 0; i < std::size_t(n); ++i) {
      vx[i] += double(v[i + j * n]) * x[j];
      vbx[i] += double(v[i + j * n]) * bx[j];
    }
  const std::vector<double> avx = times(a.data(), n, vx);
  double r = 0;
  for (int i = 0; i < n; ++i) r = std::max(r, std::abs(avx[i] - vbx[i]));
  const double ratio = r / (a_norm / n * n * eps);
  if (std::isfinite(ratio) && ratio < 50 * n) return "";
  char text[96];
  std::snprintf(text, sizeof text, "residual %.3g", ratio);
  return text;
}

// sgeev with JOBVR 'N' (values) or 'V' (right vectors), JOBVL 'N'; each
// library's optimal workspace, a fresh copy of A every call.
void geev_rows(const std::vector<Library> &libs, const Options &o, char job) {
  const std::string row = std::string("sgeev") + job;
  if (!wanted(o, row.c_str())) return;
  for (int n : o.sizes) {
    if (n > 3000) continue;
    const std::vector<float> a = random_matrix<float>(std::size_t(n) * n, 23);
    std::vector<float> f(a.size()), wr(n), wi(n), vr(job == 'V' ? a.size() : 1), vl(1);
    std::vector<std::vector<float>> works(libs.size());
    std::vector<Run> runs;
    for (std::size_t li = 0; li < libs.size(); ++li) {
      void *sym = libs[li].sym("sgeev_");
      if (!sym) {
        runs.emplace_back();
        continue;
      }
      const int ldvr = job == 'V' ? n : 1, one = 1;
      auto call = [sym, job, n, ldvr, one, &f, &wr, &wi, &vl, &vr](float *work, int lwork) {
        const char jobvl = 'N';
        int info = -1;
        reinterpret_cast<GeevFn>(sym)(&jobvl, &job, &n, f.data(), &n, wr.data(), wi.data(),
                                      vl.data(), &one, vr.data(), &ldvr, work, &lwork, &info, 1, 1);
        return info;
      };
      float query = 0;
      call(&query, -1);
      works[li].resize(std::max(1, int(query)));
      runs.push_back([call, n, job, &a, &f, &wr, &wi, &vr, &work = works[li]](bool check) {
        std::copy(a.begin(), a.end(), f.begin());
        const auto t0 = std::chrono::steady_clock::now();
        const int info = call(work.data(), int(work.size()));
        Outcome out;
        out.seconds = seconds_since(t0);
        if (check) {
          out.fault = info_fault(info);
          if (out.fault.empty())
            out.fault = geev_fault(a, n, wr, wi, job == 'V' ? vr.data() : nullptr);
        }
        return out;
      });
    }
    // Nominal: 10 n^3 (values), 25 n^3 (right vectors).
    const double flops = (job == 'V' ? 25.0 : 10.0) * n * double(n) * n;
    for (int nt : o.threads) print_row(measure(row.c_str(), n, nt, false, flops, runs, libs), libs);
  }
}

using HseqrFn = void (*)(const char *, const char *, const int *, const int *, const int *, float *,
                         const int *, float *, float *, float *, const int *, float *, const int *,
                         int *, Len, Len);

// shseqr on the Hessenberg form of a random matrix (the first library's
// sgehrd, as sgeev would make it): JOB 'S', COMPZ 'I' (the Schur form and
// its vectors), each library's optimal workspace. The check: for a random
// x, ||H Z x - Z T x|| / (||H|| ||x|| n eps).
void hseqr_rows(const std::vector<Library> &libs, const Options &o) {
  if (!wanted(o, "shseqr") || libs.empty()) return;
  const auto gehrd = reinterpret_cast<GehrdFn>(libs[0].sym("sgehrd_"));
  if (!gehrd) return;
  for (int n : o.sizes) {
    if (n > 3000) continue;
    std::vector<float> h = random_matrix<float>(std::size_t(n) * n, 29);
    {
      const int one = 1;
      std::vector<float> tau(std::max(1, n));
      const int lwork = optimal_lwork<float>([&](float *q) {
        int lw = -1, info = 0;
        gehrd(&n, &one, &n, h.data(), &n, tau.data(), q, &lw, &info);
      });
      std::vector<float> work(lwork);
      int info = 0;
      gehrd(&n, &one, &n, h.data(), &n, tau.data(), work.data(), &lwork, &info);
    }
    for (std::size_t j = 0; j < std::size_t(n); ++j)
      for (std::size_t i = j + 2; i < std::size_t(n); ++i) h[i + j * n] = 0;
    std::vector<float> t(h.size()), z(h.size()), wr(n), wi(n);
    std::vector<std::vector<float>> works(libs.size());
    std::vector<Run> runs;
    for (std::size_t li = 0; li < libs.size(); ++li) {
      void *sym = libs[li].sym("shseqr_");
      if (!sym) {
        runs.emplace_back();
        continue;
      }
      auto call = [sym, n, &t, &wr, &wi, &z](float *work, int lwork) {
        const char job = 'S', compz = 'I';
        const int ilo = 1;
        int info = -1;
        reinterpret_cast<HseqrFn>(sym)(&job, &compz, &n, &ilo, &n, t.data(), &n, wr.data(),
                                       wi.data(), z.data(), &n, work, &lwork, &info, 1, 1);
        return info;
      };
      float query = 0;
      std::copy(h.begin(), h.end(), t.begin());
      call(&query, -1);
      works[li].resize(std::max(1, int(query)));
      runs.push_back([call, n, &h, &t, &z, &work = works[li]](bool check) {
        std::copy(h.begin(), h.end(), t.begin());
        const auto t0 = std::chrono::steady_clock::now();
        const int info = call(work.data(), int(work.size()));
        Outcome out;
        out.seconds = seconds_since(t0);
        if (check) {
          out.fault = info_fault(info);
          if (out.fault.empty()) {
            std::vector<double> x(n);
            std::mt19937 rng(31);
            std::uniform_real_distribution<double> d(-1, 1);
            for (double &v : x) v = d(rng);
            const std::vector<double> zx = times(z.data(), n, x), hzx = times(h.data(), n, zx);
            const std::vector<double> tx = times(t.data(), n, x), ztx = times(z.data(), n, tx);
            double r = 0, h_norm = 0;
            for (int i = 0; i < n; ++i) r = std::max(r, std::abs(hzx[i] - ztx[i]));
            for (float v : h) h_norm = std::max(h_norm, double(std::abs(v)));
            const double ratio = r / (h_norm * n * n * std::numeric_limits<float>::epsilon());
            if (!(std::isfinite(ratio) && ratio < 50)) {
              char text[64];
              std::snprintf(text, sizeof text, "residual %.3g", ratio);
              out.fault = text;
            }
          }
        }
        return out;
      });
    }
    // Nominal: 10 n^3 for the Schur form and its vectors together.
    const double flops = 10.0 * n * double(n) * n;
    for (int nt : o.threads) print_row(measure("shseqr", n, nt, false, flops, runs, libs), libs);
  }
}

std::vector<int> int_list(char *text) {
  std::vector<int> v;
  for (char *s = std::strtok(text, ","); s; s = std::strtok(nullptr, ","))
    v.push_back(std::atoi(s));
  return v;
}

// ---- the reduction to tridiagonal form (ssytrd, chetrd) ------------------------------

using SytrdFn = void (*)(const char *, const int *, void *, const int *, float *, float *, void *,
                         void *, const int *, int *, Fortran_len);

// ssytrd or chetrd with UPLO = 'L' and each library's optimal LWORK. The
// check: an orthogonal similarity keeps the trace and the Frobenius norm,
// so sum d = trace A and sum d^2 + 2 sum e^2 = ||A||_F^2, to n eps ||A||_F
// (n eps ||A||_F^2).
template <class T>
void sytrd_rows(const std::vector<Library> &libs, const Options &o, const char *routine) {
  if (!wanted(o, routine)) return;
  const std::string name = std::string(routine) + "_";
  const bool herm = std::is_same_v<T, c8>;
  for (int n : o.sizes) {
    const std::vector<T> a = symmetric_matrix<T>(n, herm);
    double trace = 0, frob = 0;
    for (std::size_t j = 0; j < std::size_t(n); ++j) {
      trace += std::real(a[j + j * n]);
      for (std::size_t i = 0; i < std::size_t(n); ++i) frob += std::norm(Wide<T>(a[i + j * n]));
    }
    std::vector<T> f(a.size()), tau(std::max(1, n));
    std::vector<float> d(std::max(1, n)), e(std::max(1, n));
    std::vector<std::vector<T>> works(libs.size());
    std::vector<Run> runs;
    for (std::size_t li = 0; li < libs.size(); ++li) {
      auto fn = reinterpret_cast<SytrdFn>(libs[li].sym(name.c_str()));
      if (!fn) {
        runs.emplace_back();
        continue;
      }
      T query = T(0);
      int lwork = -1, info = 0;
      fn("L", &n, f.data(), &n, d.data(), e.data(), tau.data(), &query, &lwork, &info, 1);
      lwork = std::max(1, int(std::real(query)));
      works[li].resize(lwork);
      std::vector<T> &work = works[li];
      runs.push_back([fn, n, lwork, trace, frob, &a, &f, &d, &e, &tau, &work](bool check) {
        std::copy(a.begin(), a.end(), f.begin());
        int info = -1;
        const auto t0 = std::chrono::steady_clock::now();
        fn("L", &n, f.data(), &n, d.data(), e.data(), tau.data(), work.data(), &lwork, &info, 1);
        Outcome out;
        out.seconds = seconds_since(t0);
        if (check) {
          out.fault = info_fault(info);
          if (out.fault.empty()) {
            double sd = 0, s2 = 0;
            for (int i = 0; i < n; ++i) {
              sd += d[i];
              s2 += double(d[i]) * d[i] + (i + 1 < n ? 2.0 * e[i] * e[i] : 0.0);
            }
            const double eps = double(n) * std::numeric_limits<float>::epsilon();
            const double r = std::max(std::abs(sd - trace) / (eps * std::sqrt(frob)),
                                      std::abs(s2 - frob) / (eps * frob));
            out.fault = residual_fault(std::isfinite(r) ? r : INFINITY);
          }
        }
        return out;
      });
    }
    double flops = 4.0 * n * n * n / 3;
    if (herm) flops *= 4;
    for (int nt : o.threads) print_row(measure(routine, n, nt, false, flops, runs, libs), libs);
  }
}

}  // namespace

int main(int argc, char **argv) {
  Options o;
  std::string orb_path = "liborb.so", base_path;
  bool quick = false;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--threads") && i + 1 < argc) {
      o.threads = int_list(argv[++i]);
    } else if (!std::strcmp(argv[i], "--sizes") && i + 1 < argc) {
      o.sizes = int_list(argv[++i]);
    } else if (!std::strcmp(argv[i], "--quick")) {
      quick = true;
    } else if (!std::strcmp(argv[i], "--filter") && i + 1 < argc) {
      o.filter = argv[++i];
    } else if (!std::strcmp(argv[i], "--orb") && i + 1 < argc) {
      orb_path = argv[++i];
    } else if (!std::strcmp(argv[i], "--base") && i + 1 < argc) {
      base_path = argv[++i];
    } else if (!std::strcmp(argv[i], "--csv") && i + 1 < argc) {
      if (!orb::bench::csv().open(argv[++i])) {
        std::fprintf(stderr, "lapack_compare: cannot write %s\n", argv[i]);
        return 2;
      }
    } else {
      std::fprintf(stderr,
                   "usage: lapack_compare [--threads 1,2] [--filter getrf] [--sizes 256,1000]\n"
                   "                      [--quick] [--orb liborb.so] [--base other/liborb.so]\n"
                   "                      [--csv results.csv]\n");
      return 2;
    }
  }
  if (quick)
    o.sizes.erase(std::remove_if(o.sizes.begin(), o.sizes.end(), [](int n) { return n > 2000; }),
                  o.sizes.end());
  o.sizes.erase(std::remove_if(o.sizes.begin(), o.sizes.end(), [](int n) { return n < 1; }),
                o.sizes.end());
  o.threads.erase(std::remove_if(o.threads.begin(), o.threads.end(), [](int t) { return t < 1; }),
                  o.threads.end());
  if (o.sizes.empty() || o.threads.empty()) return 2;

  const std::vector<Library> libs = load_libraries(orb_path, base_path);
  if (libs.empty()) return 1;
  std::printf("Each library in a link-map namespace of its own:\n");
  for (const Library &l : libs) std::printf("  %-10s %s\n", l.name.c_str(), l.description.c_str());
  std::printf(
      "Best of the repeats (reps; for a short call a repeat is the mean of a 40 ms burst);\n"
      "ratio = ORB / best peer, above 1 when ORB is faster (/base: ORB / base);\n"
      "spread = slowest / fastest repeat - 1; others = cores other processes kept busy\n"
      "meanwhile; '-' when a library lacks the routine.\n"
      "sgetrf 2/3 n^3 flops (cgetrf 4 times that), sgetrs 2 n^2 nrhs with nrhs = %d,\n"
      "sgecon (norm '1') in microseconds per call; spotrf n^3 / 3 flops (cpotrf 4 times\n"
      "that) on the lower triangle, spotrs 2 n^2 nrhs; sgesvd and sgesdd n^3 (nominal)\n"
      "with JOBZ (JOBU = JOBVT) 'N' or 'A'; ssytrd 4/3 n^3 (chetrd 4 times that) on the\n"
      "lower triangle; ssyevrA/ssyevrI (all pairs, the smallest tenth) and cheevrA\n"
      "4/3 n^3 + 2 n^2 m (cheevr 4 times that); ssbevd (kd = n / 20) 6 n^2 kd + 2 n^3\n"
      "(nominal); sgehrd 10/3 n^3; sgeevN/sgeevV (values, right vectors) 10 n^3 / 25 n^3\n"
      "(nominal); shseqr (Schur form and vectors of a Hessenberg matrix) 10 n^3 (nominal).\n",
      o.nrhs);
  print_header(libs);
  getrf_rows<float>(libs, o, "sgetrf");
  getrf_rows<c8>(libs, o, "cgetrf");
  factored_rows(libs, o, "sgetrs", getrs_rows);
  factored_rows(libs, o, "sgecon", gecon_rows);
  potrf_rows<float>(libs, o, "spotrf");
  potrf_rows<c8>(libs, o, "cpotrf");
  potrs_rows(libs, o);
  sytrf_rows<float>(libs, o, "ssytrf");
  sytrf_rows<c8>(libs, o, "chetrf");
  geqrf_rows<float>(libs, o, "sgeqrf");
  geqrf_rows<c8>(libs, o, "cgeqrf");
  ormqr_rows(libs, o);
  gels_rows(libs, o);
  for (const bool divide : {false, true})
    for (const char job : {'N', 'A'}) svd_rows(libs, o, divide, job);
  sytrd_rows<float>(libs, o, "ssytrd");
  sytrd_rows<c8>(libs, o, "chetrd");
  for (const char range : {'A', 'I'}) syevr_rows<float>(libs, o, "ssyevr", range);
  syevr_rows<c8>(libs, o, "cheevr", 'A');
  sbevd_rows(libs, o);
  gehrd_rows(libs, o);
  for (const char job : {'N', 'V'}) geev_rows(libs, o, job);
  hseqr_rows(libs, o);
  return 0;
}
