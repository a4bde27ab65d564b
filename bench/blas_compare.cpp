// ORB against its peers, side by side in one run: each library is loaded on
// its own (on Linux OpenBLAS and BLIS from Debian's pthread builds), called
// through its Fortran-convention names, and timed on the same operands.
// Prints GFLOP/s (or GB/s for memory-bound routines) and ORB's ratio to the
// best peer.
//
//   blas_compare [--threads 1,2] [--filter gemm] [--orb path/to/liborb.so]
//                [--base path/to/other/liborb.so] [--peer NAME=path]... [--max-n N]
//                [--csv FILE]
//
// --base adds another build of ORB (say, main's, beside a change) as the column
// "base", with ORB's ratio to it; the ratio to the best peer leaves it out.
// --peer adds a library of the BLAS interface as a peer column. The libraries
// of a row are timed in turn, call by call, so a drift in the machine's speed
// moves them alike.
//
// The Windows build runs under wine; it loads orb.dll (beside the program
// unless --orb names another) and has only the peers given with --peer, say
// the 32-bit OpenBLAS of tools/build-openblas-win32.sh:
//
//   wine blas_compare.exe --threads 1,2 --peer OpenBLAS=path/to/libopenblas.dll
#include <algorithm>
#include <cctype>
#include <chrono>
#include <complex>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "csv_log.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif
#if defined(__linux__)
#include <dlfcn.h>
#else
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

namespace {

using c8 = std::complex<float>;

using GemmFn = void (*)(const char *, const char *, const int *, const int *, const int *,
                        const void *, const void *, const int *, const void *, const int *,
                        const void *, void *, const int *, long, long);
using TrsmFn = void (*)(const char *, const char *, const char *, const char *, const int *,
                        const int *, const void *, const void *, const int *, void *, const int *,
                        long, long, long, long);
using SyrkFn = void (*)(const char *, const char *, const int *, const int *, const void *,
                        const void *, const int *, const void *, void *, const int *, long, long);

struct Library {
  std::string name;
  void *handle = nullptr;
  bool orb_dll = false;  // orb.dll, whose names are not the Fortran ones
  std::function<void(int)> set_threads;
  void *sym(const char *s) const {
    if (!handle) return nullptr;
#if defined(__linux__)
    return dlsym(handle, s);
#else
    return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(handle), s));
#endif
  }
};

// A peer given as NAME=path.
struct Peer {
  std::string name, path;
};

std::vector<Library> load_libraries(const std::string &orb_path, const std::string &base_path,
                                    const std::vector<Peer> &peers) {
  std::vector<Library> libs;
  auto open = [&](const std::string &name, const std::string &path, bool orb) {
    Library l;
    l.name = name;
#if defined(__linux__)
    (void)orb;
    l.handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!l.handle) {
      std::fprintf(stderr, "cannot load %s: %s\n", path.c_str(), dlerror());
      return;
    }
#else
    // A DLL given by its path finds the DLLs it needs beside it (orb.dll its
    // message DLL); one given by name is searched for as usual.
    l.handle = LoadLibraryExA(
        path.c_str(), nullptr,
        path.find_first_of("/\\") != std::string::npos ? LOAD_WITH_ALTERED_SEARCH_PATH : 0);
    if (!l.handle) {
      std::fprintf(stderr, "cannot load %s: error %lu\n", path.c_str(), GetLastError());
      return;
    }
    l.orb_dll = orb;
#endif
    libs.push_back(l);
  };
  open("ORB", orb_path, true);
  if (!base_path.empty()) open("base", base_path, true);
#if defined(__linux__)
  open("OpenBLAS", "/usr/lib/x86_64-linux-gnu/openblas-pthread/libopenblas.so.0", false);
  open("BLIS", "/usr/lib/x86_64-linux-gnu/blis-pthread/libblis.so.4", false);
#endif
  for (const Peer &p : peers) open(p.name, p.path, false);
  for (Library &l : libs) {
    if (auto f = reinterpret_cast<void (*)(int)>(l.sym("ORB_Set_Num_Threads")))
      l.set_threads = f;
    else if (auto g = reinterpret_cast<void (*)(int)>(l.sym("openblas_set_num_threads")))
      l.set_threads = g;
    else if (auto h = reinterpret_cast<void (*)(long)>(l.sym("bli_thread_set_num_threads")))
      l.set_threads = [h](int n) { h(n); };
  }
  return libs;
}

// Best of several timed runs after a warm-up, at least ~0.2 s in all. The
// pause first lets the worker threads of the library measured before go to
// sleep: their spinning would take the cores from this one.
// The best time of each run (0 for an empty one), the runs taking turns: at
// least 3 rounds, then until each has had about 0.2 s or 50 rounds.
struct Times {
  std::vector<double> best;    // per run, 0 for an empty one
  std::vector<double> spread;  // slowest against fastest round, in percent
};

Times seconds_each(const std::vector<std::function<void()>> &runs) {
  std::this_thread::sleep_for(std::chrono::milliseconds(400));
  std::vector<double> best(runs.size(), 1e30), worst(runs.size(), 0), total(runs.size(), 0);
  for (const auto &run : runs)
    if (run) run();
  for (int r = 0; r < 50; ++r) {
    bool more = r < 3;
    for (std::size_t i = 0; i < runs.size(); ++i) {
      if (!runs[i]) continue;
      auto t0 = std::chrono::steady_clock::now();
      runs[i]();
      double t = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
      best[i] = std::min(best[i], t);
      worst[i] = std::max(worst[i], t);
      total[i] += t;
      more = more || total[i] < 0.2;
    }
    if (!more) break;
  }
  Times times{best, std::vector<double>(runs.size(), -1)};
  for (std::size_t i = 0; i < runs.size(); ++i) {
    if (!runs[i])
      times.best[i] = 0;
    else
      times.spread[i] = 100 * (worst[i] / best[i] - 1);
  }
  return times;
}

struct Rates {
  std::vector<double> rate, spread;
};

// Rates from work per call and the times of seconds_each (0 stays 0).
Rates rates(double work, const Times &times) {
  Rates r{{}, times.spread};
  for (double t : times.best) r.rate.push_back(t > 0 ? work / t * 1e-9 : 0);
  return r;
}

template <class T>
std::vector<T> random_vector(std::size_t n, unsigned seed) {
  std::mt19937 rng(seed);
  std::uniform_real_distribution<float> d(-1, 1);
  std::vector<T> v(n);
  for (auto &x : v) {
    if constexpr (std::is_same_v<T, c8>)
      x = c8(d(rng), d(rng));
    else
      x = T(d(rng));
  }
  return v;
}

// A run that first sets the library's thread count (empty stays empty).
std::function<void()> with_threads(const Library &l, int nt, std::function<void()> run) {
  if (!run || !l.set_threads) return run;
  return [set = l.set_threads, nt, run] {
    set(nt);
    run();
  };
}

// The single-precision FMA peaks of one core, measured with twelve
// independent chains of multiply-adds per vector width. The chains start from
// different values read through a volatile, so that the compiler cannot merge
// them into one (which would time the latency of a single chain instead).
#if defined(__x86_64__)
#define ORB_PEAK_LOOP(V, SET1, FMA, LANES)                                                  \
  volatile float seed = 1.0f;                                                               \
  V a[12];                                                                                  \
  for (int i = 0; i < 12; ++i) a[i] = SET1(seed + i);                                       \
  const V x = SET1(0.999999f), y = SET1(1e-7f);                                             \
  const long iters = 20000000;                                                              \
  V a0 = a[0], a1 = a[1], a2 = a[2], a3 = a[3], a4 = a[4], a5 = a[5], a6 = a[6], a7 = a[7], \
    a8 = a[8], a9 = a[9], a10 = a[10], a11 = a[11];                                         \
  auto t0 = std::chrono::steady_clock::now();                                               \
  for (long i = 0; i < iters; ++i) {                                                        \
    a0 = FMA(a0, x, y), a1 = FMA(a1, x, y), a2 = FMA(a2, x, y), a3 = FMA(a3, x, y);         \
    a4 = FMA(a4, x, y), a5 = FMA(a5, x, y), a6 = FMA(a6, x, y), a7 = FMA(a7, x, y);         \
    a8 = FMA(a8, x, y), a9 = FMA(a9, x, y), a10 = FMA(a10, x, y), a11 = FMA(a11, x, y);     \
  }                                                                                         \
  double t = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();  \
  a[0] = a0, a[1] = a1, a[2] = a2, a[3] = a3, a[4] = a4, a[5] = a5, a[6] = a6, a[7] = a7;   \
  a[8] = a8, a[9] = a9, a[10] = a10, a[11] = a11;                                           \
  float sum = 0;                                                                            \
  for (int i = 0; i < 12; ++i) sum += reinterpret_cast<const float *>(&a[i])[0];            \
  volatile float sink = sum;                                                                \
  (void)sink;                                                                               \
  return iters * 12.0 * 2 * LANES / t * 1e-9;

__attribute__((target("avx2,fma"), noinline)) double peak_256() {
  ORB_PEAK_LOOP(__m256, _mm256_set1_ps, _mm256_fmadd_ps, 8)
}
__attribute__((target("avx512f"), noinline)) double peak_512() {
  ORB_PEAK_LOOP(__m512, _mm512_set1_ps, _mm512_fmadd_ps, 16)
}
#undef ORB_PEAK_LOOP
#endif

struct Peaks {
  double avx2 = 0, avx512 = 0;
  double widest() const { return avx512 > 0 ? avx512 : avx2; }
};

Peaks fma_peaks() {
  Peaks p;
#if defined(__x86_64__)
  for (int r = 0; r < 5; ++r) {
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"))
      p.avx2 = std::max(p.avx2, peak_256());
    if (__builtin_cpu_supports("avx512f")) p.avx512 = std::max(p.avx512, peak_512());
  }
#endif
  return p;
}

struct Case {
  std::string routine, shape;
  double work;  // floating-point operations of one call
  // Runs the case with a library; false when the library lacks the routine.
  std::function<bool(const Library &)> prepare;
  std::function<void()> run;
};

struct Row {
  std::string routine, shape;
  int threads;
  Rates rates;  // per library, 0 when missing
  const char *unit;
};

void print_row(const Row &r, const std::vector<Library> &libs, double peak) {
  std::printf("%-7s %-22s %2d", r.routine.c_str(), r.shape.c_str(), r.threads);
  const std::vector<double> &rate = r.rates.rate;
  double best_peer = 0, base = 0;
  for (std::size_t i = 0; i < rate.size(); ++i) {
    std::printf("  %9.1f", rate[i]);
    orb::bench::csv().row(r.routine, r.shape, r.threads, libs[i].name, rate[i], r.unit,
                          r.rates.spread[i]);
    if (libs[i].name == "base")
      base = rate[i];
    else if (i > 0)
      best_peer = std::max(best_peer, rate[i]);
  }
  if (best_peer > 0)
    std::printf("  %6.2f", rate[0] / best_peer);
  else
    std::printf("  %6s", "");
  if (base > 0) std::printf("  %6.3f", rate[0] / base);
  if (peak > 0 && r.routine == "sgemm" && r.threads == 1)
    std::printf("  (%.0f%% of peak)", 100 * rate[0] / peak);
  std::printf("\n");
}

void print_header(const char *shape, const std::vector<Library> &libs) {
  std::printf("%-7s %-22s %2s", "routine", shape, "nt");
  bool base = false;
  for (const Library &l : libs) {
    std::printf("  %9s", l.name.c_str());
    base = base || l.name == "base";
  }
  std::printf("  %6s%s\n", "ratio", base ? "  /base" : "");
}

// The level-1 and level-2 routines are bound by memory traffic: rows show
// GB/s (bytes of the vectors and matrix each call must read or write).
using DotFn = float (*)(const int *, const float *, const int *, const float *, const int *);
using AxpyFn = void (*)(const int *, const float *, const float *, const int *, float *,
                        const int *);
using Nrm2Fn = float (*)(const int *, const float *, const int *);
using GemvFn = void (*)(const char *, const int *, const int *, const void *, const void *,
                        const int *, const void *, const int *, const void *, void *, const int *,
                        long);
using TrsvFn = void (*)(const char *, const char *, const char *, const int *, const float *,
                        const int *, float *, const int *, long, long, long);
using GerFn = void (*)(const int *, const int *, const float *, const float *, const int *,
                       const float *, const int *, float *, const int *);

// A routine by its Fortran-convention name. orb.dll exports no such names:
// there a single-precision routine goes by its plain lower-case name and a
// double-precision one by its upper-case name, since orb.dll binds some
// lower-case double names (dgemm, dtrsm, ...) to single precision.
template <class Fn>
Fn find(const Library &l, const char *fortran_name) {
  std::string name(fortran_name);
  if (l.orb_dll) {
    if (!name.empty() && name.back() == '_') name.pop_back();
    if (!name.empty() && (name[0] == 'd' || name[0] == 'z'))
      for (char &ch : name) ch = char(std::toupper(static_cast<unsigned char>(ch)));
  }
  return reinterpret_cast<Fn>(l.sym(name.c_str()));
}

void level12(std::vector<Library> &libs, const std::vector<int> &thread_counts,
             const std::string &filter) {
  struct Item {
    std::string routine;
    int n;
  };
  std::vector<Item> items;
  for (const char *r : {"sdot", "saxpy", "snrm2"})
    for (int n : {1000, 10000, 100000, 1000000, 10000000}) items.push_back({r, n});
  for (const char *r : {"sgemv_n", "sgemv_t", "cgemv_n", "strsv", "sger"})
    for (int n : {256, 1024, 4096}) items.push_back({r, n});
  std::printf("\n");
  print_header("size (GB/s)", libs);
  const int one_i = 1;
  for (const Item &it : items) {
    if (!filter.empty() && it.routine.find(filter) == std::string::npos) continue;
    const int n = it.n;
    const bool vec = it.routine == "sdot" || it.routine == "saxpy" || it.routine == "snrm2";
    const std::size_t len = vec ? std::size_t(n) : std::size_t(n) * n * 2;
    std::vector<float> a = random_vector<float>(len, 5);
    std::vector<float> x = random_vector<float>(2 * std::size_t(n), 6);
    std::vector<float> y = random_vector<float>(2 * std::size_t(n), 7);
    if (it.routine == "strsv")
      for (int i = 0; i < n; ++i) a[i + std::size_t(i) * n] = 4.0f;
    double bytes =
        vec ? (it.routine == "snrm2" ? 4.0 * n : (it.routine == "saxpy" ? 12.0 : 8.0) * n)
            : 4.0 * n * n;
    if (it.routine == "cgemv_n") bytes *= 2;
    if (it.routine == "strsv") bytes /= 2;
    if (it.routine == "sger") bytes *= 2;
    for (int nt : thread_counts) {
      std::vector<std::function<void()>> runs;
      for (const Library &l : libs) {
        std::function<void()> run;
        const float alpha = 1e-3f, beta = 0.5f, calpha[2] = {1, 0}, cbeta[2] = {0.5f, 0};
        if (it.routine == "sdot") {
          auto f = find<DotFn>(l, "sdot_");
          if (f)
            run = [=, &a, &y] {
              volatile float r = f(&n, a.data(), &one_i, y.data(), &one_i);
              (void)r;
            };
        } else if (it.routine == "saxpy") {
          auto f = find<AxpyFn>(l, "saxpy_");
          if (f) run = [=, &a, &y] { f(&n, &alpha, a.data(), &one_i, y.data(), &one_i); };
        } else if (it.routine == "snrm2") {
          auto f = find<Nrm2Fn>(l, "snrm2_");
          if (f)
            run = [=, &a] {
              volatile float r = f(&n, a.data(), &one_i);
              (void)r;
            };
        } else if (it.routine == "sgemv_n" || it.routine == "sgemv_t") {
          auto f = find<GemvFn>(l, "sgemv_");
          const char *t = it.routine == "sgemv_n" ? "N" : "T";
          if (f)
            run = [=, &a, &x, &y] {
              f(t, &n, &n, &alpha, a.data(), &n, x.data(), &one_i, &beta, y.data(), &one_i, 1);
            };
        } else if (it.routine == "cgemv_n") {
          auto f = find<GemvFn>(l, "cgemv_");
          if (f)
            run = [=, &a, &x, &y] {
              f("N", &n, &n, calpha, a.data(), &n, x.data(), &one_i, cbeta, y.data(), &one_i, 1);
            };
        } else if (it.routine == "strsv") {
          auto f = find<TrsvFn>(l, "strsv_");
          const std::vector<float> x0(x.begin(), x.begin() + n);
          if (f)
            run = [=, &a, &x] {
              std::copy(x0.begin(), x0.end(), x.begin());
              f("L", "N", "N", &n, a.data(), &n, x.data(), &one_i, 1, 1, 1);
            };
        } else if (it.routine == "sger") {
          auto f = find<GerFn>(l, "sger_");
          if (f)
            run = [=, &a, &x, &y] {
              f(&n, &n, &alpha, x.data(), &one_i, y.data(), &one_i, a.data(), &n);
            };
        }
        runs.push_back(with_threads(l, nt, run));
      }
      print_row({it.routine, std::to_string(n), nt, rates(bytes, seconds_each(runs)), "GB/s"}, libs,
                0);
    }
  }
}

}  // namespace

int main(int argc, char **argv) {
  std::vector<int> thread_counts = {1, 2};
#if defined(__linux__)
  std::string orb_path = "liborb.so";
#else
  std::string orb_path = "orb.dll";
#endif
  std::string filter, base_path;
  std::vector<Peer> peers;
  int max_n = 1 << 30;  // shapes with a larger dimension are left out
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--threads") && i + 1 < argc) {
      thread_counts.clear();
      for (char *s = std::strtok(argv[++i], ","); s; s = std::strtok(nullptr, ","))
        thread_counts.push_back(std::atoi(s));
    } else if (!std::strcmp(argv[i], "--filter") && i + 1 < argc) {
      filter = argv[++i];
    } else if (!std::strcmp(argv[i], "--orb") && i + 1 < argc) {
      orb_path = argv[++i];
    } else if (!std::strcmp(argv[i], "--base") && i + 1 < argc) {
      base_path = argv[++i];
    } else if (!std::strcmp(argv[i], "--max-n") && i + 1 < argc) {
      max_n = std::atoi(argv[++i]);
    } else if (!std::strcmp(argv[i], "--csv") && i + 1 < argc) {
      if (!orb::bench::csv().open(argv[++i])) {
        std::fprintf(stderr, "blas_compare: cannot write %s\n", argv[i]);
        return 2;
      }
    } else if (!std::strcmp(argv[i], "--peer") && i + 1 < argc) {
      const std::string arg = argv[++i];
      const std::size_t eq = arg.find('=');
      if (eq == std::string::npos || eq == 0 || eq + 1 == arg.size()) {
        std::fprintf(stderr, "--peer wants NAME=path, not %s\n", arg.c_str());
        return 2;
      }
      peers.push_back({arg.substr(0, eq), arg.substr(eq + 1)});
    }
  }
  std::vector<Library> libs = load_libraries(orb_path, base_path, peers);
  if (libs.empty() || libs[0].name != "ORB") return 1;
  // What an OpenBLAS built for several processors chose on this one.
  for (const Library &l : libs)
    if (auto config = reinterpret_cast<const char *(*)()>(l.sym("openblas_get_config")))
      std::printf("%s: %s\n", l.name.c_str(), config());
  const Peaks peaks = fma_peaks();
  if (peaks.avx2 > 0)
    std::printf("single-precision FMA peak of one core: %.1f GFLOP/s with 256-bit vectors",
                peaks.avx2);
  if (peaks.avx512 > 0) std::printf(", %.1f GFLOP/s with 512-bit vectors", peaks.avx512);
  if (peaks.avx2 > 0) std::printf("\n");
  const double peak = peaks.widest();
  print_header("shape", libs);

  // The GEMM family: square products and the shapes LAPACK and the sparse
  // solver use (panels of k = 64..256, tall and skinny, few columns).
  struct Shape {
    const char *routine;
    int m, n, k;
  };
  std::vector<Shape> shapes;
  for (int n : {64, 128, 256, 512, 1024, 2048, 4096}) shapes.push_back({"sgemm", n, n, n});
  for (int k : {64, 128, 256}) shapes.push_back({"sgemm", 2000, 2000, k});
  shapes.push_back({"sgemm", 10000, 64, 64});
  shapes.push_back({"sgemm", 4000, 200, 1000});
  for (int n : {1, 2, 4, 8}) shapes.push_back({"sgemm", 2000, n, 2000});
  for (int n : {256, 1024, 2048}) shapes.push_back({"cgemm", n, n, n});
  for (int n : {256, 1024, 2048}) shapes.push_back({"dgemm", n, n, n});
  for (int n : {256, 1024, 2048}) shapes.push_back({"ssyrk", n, n, n});
  for (int n : {256, 1024, 2048}) shapes.push_back({"strsm", n, n, 0});
  for (int n : {256, 1024, 2048}) shapes.push_back({"strmm", n, n, 0});

  for (const Shape &s : shapes) {
    if (!filter.empty() && std::string(s.routine).find(filter) == std::string::npos) continue;
    if (std::max({s.m, s.n, s.k}) > max_n) continue;
    const std::string routine = s.routine;
    const bool complex = routine[0] == 'c';
    const bool dbl = routine[0] == 'd';
    const std::size_t esize = complex || dbl ? 8 : 4;
    const int m = s.m, n = s.n, k = std::max(s.k, 1);
    // Operands big enough for every routine of the row.
    const std::size_t na = std::size_t(m) * std::max(k, m), nb = std::size_t(std::max(k, m)) * n;
    std::vector<float> a = random_vector<float>(na * esize / 4, 1);
    std::vector<float> b = random_vector<float>(nb * esize / 4, 2);
    std::vector<float> c = random_vector<float>(std::size_t(m) * n * esize / 4, 3);
    const bool triangular = routine == "strsm" || routine == "strmm";
    if (triangular)  // a well-conditioned triangle
      for (int i = 0; i < m; ++i) a[i + std::size_t(i) * m] = float(m);
    double flops = 2.0 * m * n * k;
    if (complex) flops *= 4;
    if (routine == "ssyrk") flops = 1.0 * n * n * k;
    if (triangular) flops = 1.0 * m * m * n;
    char shape[64];
    std::snprintf(shape, sizeof shape, triangular ? "%dx%d" : "%dx%dx%d", m, n, k);
    for (int nt : thread_counts) {
      std::vector<std::function<void()>> runs;
      for (const Library &l : libs) {
        std::function<void()> run;
        const float one[2] = {1, 0}, zero[2] = {0, 0};
        const double done = 1, dzero = 0;
        if (routine == "sgemm" || routine == "cgemm" || routine == "dgemm") {
          GemmFn f = find<GemmFn>(l, (routine + "_").c_str());
          if (!f) {
            runs.emplace_back();
            continue;
          }
          const void *al = dbl ? static_cast<const void *>(&done) : one;
          const void *be = dbl ? static_cast<const void *>(&dzero) : zero;
          run = [=, &a, &b, &c] {
            f("N", "N", &m, &n, &k, al, a.data(), &m, b.data(), &k, be, c.data(), &m, 1, 1);
          };
        } else if (routine == "ssyrk") {
          SyrkFn f = find<SyrkFn>(l, "ssyrk_");
          if (!f) {
            runs.emplace_back();
            continue;
          }
          run = [=, &a, &c] { f("L", "N", &n, &k, one, a.data(), &n, zero, c.data(), &n, 1, 1); };
        } else {  // strsm, strmm: left, lower, no transpose, non-unit
          TrsmFn f = find<TrsmFn>(l, (routine + "_").c_str());
          if (!f) {
            runs.emplace_back();
            continue;
          }
          // Each call starts from the same B (the copy costs m n against
          // the call's m^2 n).
          const std::vector<float> b0(b.begin(), b.begin() + std::size_t(m) * n);
          run = [=, &a, &b] {
            std::copy(b0.begin(), b0.end(), b.begin());
            f("L", "L", "N", "N", &m, &n, one, a.data(), &m, b.data(), &m, 1, 1, 1, 1);
          };
        }
        runs.push_back(with_threads(l, nt, run));
      }
      print_row({routine, shape, nt, rates(flops, seconds_each(runs)), "GFLOP/s"}, libs, peak);
    }
  }
  level12(libs, thread_counts, filter);
  return 0;
}
