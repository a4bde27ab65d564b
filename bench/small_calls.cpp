// Small level-3 and LU calls on one and two threads, for two builds of the
// library side by side in one process (say, main's and a change's): each
// timing alternates the builds, round by round, and the table gives the
// median of the rounds with their spread. Under wine:
//   small_calls.exe base.dll new.dll [rounds]
// and on Linux the same with two liborb.so paths (two copies under different
// names, so that both load).
#ifdef _WIN32
#include <windows.h>
#define SYM(h, n) reinterpret_cast<void (*)()>(GetProcAddress(h, n))
#else
#include <dlfcn.h>
#define SYM(h, n) reinterpret_cast<void (*)()>(dlsym(h, n))
#endif
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>
using clk = std::chrono::steady_clock;
typedef void (*Gemm)(const char *, const char *, const int *, const int *, const int *,
                     const float *, const float *, const int *, const float *, const int *,
                     const float *, float *, const int *, int, int);
typedef void (*Trsm)(const char *, const char *, const char *, const char *, const int *,
                     const int *, const float *, const float *, const int *, float *, const int *,
                     int, int, int, int);
typedef void (*Syrk)(const char *, const char *, const int *, const int *, const float *,
                     const float *, const int *, const float *, float *, const int *, int, int);
typedef void (*Getrf)(const int *, const int *, float *, const int *, int *, int *);
typedef void (*SetThreads)(int);
struct Lib {
  Gemm gemm;
  Trsm trsm;
  Syrk syrk;
  Getrf getrf;
  SetThreads set;
};
Lib load(const char *path) {
#ifdef _WIN32
  HMODULE h = LoadLibraryA(path);
#else
  void *h = dlopen(path, RTLD_NOW | RTLD_LOCAL);
#endif
  if (!h) {
    std::printf("cannot load %s\n", path);
    std::exit(1);
  }
  return {(Gemm)SYM(h, "sgemm"), (Trsm)SYM(h, "strsm"), (Syrk)SYM(h, "ssyrk"),
          (Getrf)SYM(h, "sgetrf"), (SetThreads)SYM(h, "ORB_Set_Num_Threads")};
}
int main(int argc, char **argv) {
  if (argc < 3) return 1;
  const int rounds = argc > 3 ? std::atoi(argv[3]) : 5;
  Lib libs[2] = {load(argv[1]), load(argv[2])};
  std::mt19937 g(1);
  std::uniform_real_distribution<float> u(-1, 1);
  const int N = 512;
  std::vector<float> A(N * N), B(N * N), C(N * N), L(N * N), LU(N * N);
  for (auto *v : {&A, &B, &C})
    for (auto &x : *v) x = u(g);
  // A triangle of 4 I solved with alpha = 4 leaves B as it was, so repeated
  // solves neither grow nor fade into subnormal numbers.
  for (int j = 0; j < N; ++j) L[j + j * N] = 4.0f;
  std::vector<int> ipiv(N);
  const float one = 1, zero = 0, half = 0.5f, four = 4;
  enum Kind { kGemm, kTrsm, kSyrk, kGetrf };
  const char *const names[] = {"sgemm", "strsm", "ssyrk", "sgetrf"};
  struct Case {
    Kind kind;
    int n;
  };
  std::vector<Case> cases;
  for (int n : {16, 24, 28, 32, 48, 64, 96, 128, 192, 256, 384, 512}) cases.push_back({kGemm, n});
  for (int n : {32, 64, 128, 256, 512}) cases.push_back({kTrsm, n});
  for (int n : {32, 64, 128, 256, 512}) cases.push_back({kSyrk, n});
  for (int n : {64, 128, 256, 512}) cases.push_back({kGetrf, n});
  std::printf("%-7s %5s %2s | %-26s | %-26s | new/base\n", "call", "n", "nt",
              "base GFLOP/s med [min,max]", "new GFLOP/s med [min,max]");
  for (const Case &c : cases) {
    const int n = c.n, ld = N;
    const double cube = 1.0 * n * n * n;
    const double flops = c.kind == kGemm ? 2 * cube : c.kind == kGetrf ? 2 * cube / 3 : cube;
    // reps so that one timing lasts about 20 ms on one thread at 20 GFLOP/s
    const int reps = std::max(3, static_cast<int>(20e-3 * 20e9 / flops));
    for (int nt : {1, 2}) {
      std::vector<double> rate[2];
      for (int r = 0; r < rounds; ++r) {
        for (int side = 0; side < 2; ++side) {
          const int li = (r % 2 == 0) ? side : 1 - side;
          const Lib &l = libs[li];
          l.set(nt);
          auto call = [&] {
            if (c.kind == kGemm)
              l.gemm("N", "N", &n, &n, &n, &one, A.data(), &ld, B.data(), &ld, &half, C.data(), &ld,
                     1, 1);
            else if (c.kind == kTrsm)
              l.trsm("L", "L", "N", "N", &n, &n, &four, L.data(), &ld, C.data(), &ld, 1, 1, 1, 1);
            else
              l.syrk("L", "N", &n, &n, &one, A.data(), &ld, &zero, C.data(), &ld, 1, 1);
          };
          double secs = 0;
          if (c.kind == kGetrf) {  // the copy in is not timed
            for (int i = 0; i < reps; ++i) {
              LU = A;
              for (int j = 0; j < n; ++j) LU[j + j * N] += 4.0f;
              int info;
              auto t0 = clk::now();
              l.getrf(&n, &n, LU.data(), &ld, ipiv.data(), &info);
              secs += std::chrono::duration<double>(clk::now() - t0).count();
            }
          } else {
            call();
            auto t0 = clk::now();
            for (int i = 0; i < reps; ++i) call();
            secs = std::chrono::duration<double>(clk::now() - t0).count();
          }
          rate[li].push_back(flops * reps / secs * 1e-9);
        }
      }
      double med[2];
      char cell[2][64];
      for (int li = 0; li < 2; ++li) {
        auto v = rate[li];
        std::sort(v.begin(), v.end());
        med[li] = v[v.size() / 2];
        std::snprintf(cell[li], 64, "%7.2f [%6.2f,%6.2f]", med[li], v.front(), v.back());
      }
      std::printf("%-7s %5d %2d | %-26s | %-26s | %5.2f\n", names[c.kind], n, nt, cell[0], cell[1],
                  med[1] / med[0]);
      std::fflush(stdout);
    }
  }
  // Leave at once: the runtimes' threads are still parked in both modules.
  std::fflush(stdout);
#ifdef _WIN32
  TerminateProcess(GetCurrentProcess(), 0);
#else
  std::_Exit(0);
#endif
}
