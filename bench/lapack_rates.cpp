// ORB's main factorizations and eigensolvers, timed on their own: the LAPACK
// lines of the performance graphs for a build where bench/lapack_compare
// cannot run (orb.dll under wine). The flop counts are lapack_compare's, so
// the lines of both programs share one axis.
//
//   lapack_rates [--threads 1,2] [--sizes 250,500,1000] [--filter getrf] [--csv FILE]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "csv_log.h"
#include "orb.h"

namespace {

std::vector<int> int_list(char *text) {
  std::vector<int> out;
  for (char *s = std::strtok(text, ","); s; s = std::strtok(nullptr, ","))
    out.push_back(std::atoi(s));
  return out;
}

std::vector<float> random_matrix(int n, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<float> u(-1, 1);
  std::vector<float> a(std::size_t(n) * n);
  for (float &v : a) v = u(gen);
  return a;
}

// A symmetric positive definite matrix: symmetric with a dominant diagonal.
std::vector<float> spd_matrix(int n) {
  std::vector<float> a = random_matrix(n, 3);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < j; ++i) a[i + std::size_t(j) * n] = a[j + std::size_t(i) * n];
  for (int i = 0; i < n; ++i) a[i + std::size_t(i) * n] += float(n);
  return a;
}

struct Routine {
  const char *name;
  double (*flops)(double n);
  // Prepares the operands of order n and returns one timed call.
  std::function<std::function<void()>(int n)> make;
};

// The best of three calls after a first one (which also starts the threads).
double best_seconds(const std::function<void()> &call, double *spread_pct) {
  call();
  double best = 1e30, worst = 0;
  for (int r = 0; r < 3; ++r) {
    const auto t0 = std::chrono::steady_clock::now();
    call();
    const double t = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    best = std::min(best, t), worst = std::max(worst, t);
  }
  *spread_pct = 100 * (worst / best - 1);
  return best;
}

std::vector<Routine> routines() {
  std::vector<Routine> list;
  list.push_back({"sgetrf", [](double n) { return 2 * n * n * n / 3; },
                  [](int n) {
                    auto a0 = std::make_shared<std::vector<float>>(random_matrix(n, 1));
                    auto a = std::make_shared<std::vector<float>>(*a0);
                    auto ipiv = std::make_shared<std::vector<int>>(n);
                    return std::function<void()>([=] {
                      *a = *a0;
                      int info;
                      sgetrf(&n, &n, a->data(), &n, ipiv->data(), &info);
                    });
                  }});
  list.push_back({"spotrf", [](double n) { return n * n * n / 3; },
                  [](int n) {
                    auto a0 = std::make_shared<std::vector<float>>(spd_matrix(n));
                    auto a = std::make_shared<std::vector<float>>(*a0);
                    return std::function<void()>([=] {
                      *a = *a0;
                      int info;
                      spotrf("L", &n, a->data(), &n, &info, 1);
                    });
                  }});
  list.push_back({"sgeqrf", [](double n) { return 4 * n * n * n / 3; },
                  [](int n) {
                    auto a0 = std::make_shared<std::vector<float>>(random_matrix(n, 2));
                    auto a = std::make_shared<std::vector<float>>(*a0);
                    auto tau = std::make_shared<std::vector<float>>(n);
                    int lwork = -1, info;
                    float query;
                    sgeqrf(&n, &n, a->data(), &n, tau->data(), &query, &lwork, &info);
                    auto work = std::make_shared<std::vector<float>>(std::size_t(query) + 1);
                    return std::function<void()>([=] {
                      *a = *a0;
                      int lw = int(work->size()), inf;
                      sgeqrf(&n, &n, a->data(), &n, tau->data(), work->data(), &lw, &inf);
                    });
                  }});
  list.push_back({"ssyevrA", [](double n) { return 4 * n * n * n / 3 + 2 * n * n * n; },
                  [](int n) {
                    auto a0 = std::make_shared<std::vector<float>>(spd_matrix(n));
                    auto a = std::make_shared<std::vector<float>>(*a0);
                    auto w = std::make_shared<std::vector<float>>(n);
                    auto z = std::make_shared<std::vector<float>>(std::size_t(n) * n);
                    auto isuppz = std::make_shared<std::vector<int>>(2 * std::size_t(n));
                    const float vl = 0, vu = 0, abstol = 0;
                    const int il = 0, iu = 0;
                    int lwork = -1, liwork = -1, m, info, iquery;
                    float query;
                    ssyevr("V", "A", "L", &n, a->data(), &n, &vl, &vu, &il, &iu, &abstol, &m,
                           w->data(), z->data(), &n, isuppz->data(), &query, &lwork, &iquery,
                           &liwork, &info, 1, 1, 1);
                    auto work = std::make_shared<std::vector<float>>(std::size_t(query) + 1);
                    auto iwork = std::make_shared<std::vector<int>>(iquery + 1);
                    return std::function<void()>([=] {
                      *a = *a0;
                      int lw = int(work->size()), liw = int(iwork->size()), mm, inf;
                      ssyevr("V", "A", "L", &n, a->data(), &n, &vl, &vu, &il, &iu, &abstol, &mm,
                             w->data(), z->data(), &n, isuppz->data(), work->data(), &lw,
                             iwork->data(), &liw, &inf, 1, 1, 1);
                    });
                  }});
  list.push_back({"sgesddA", [](double n) { return n * n * n; },
                  [](int n) {
                    auto a0 = std::make_shared<std::vector<float>>(random_matrix(n, 4));
                    auto a = std::make_shared<std::vector<float>>(*a0);
                    auto s = std::make_shared<std::vector<float>>(n);
                    auto u = std::make_shared<std::vector<float>>(std::size_t(n) * n);
                    auto vt = std::make_shared<std::vector<float>>(std::size_t(n) * n);
                    auto iwork = std::make_shared<std::vector<int>>(8 * std::size_t(n));
                    int lwork = -1, info;
                    float query;
                    sgesdd("A", &n, &n, a->data(), &n, s->data(), u->data(), &n, vt->data(), &n,
                           &query, &lwork, iwork->data(), &info, 1);
                    auto work = std::make_shared<std::vector<float>>(std::size_t(query) + 1);
                    return std::function<void()>([=] {
                      *a = *a0;
                      int lw = int(work->size()), inf;
                      sgesdd("A", &n, &n, a->data(), &n, s->data(), u->data(), &n, vt->data(), &n,
                             work->data(), &lw, iwork->data(), &inf, 1);
                    });
                  }});
  return list;
}

}  // namespace

int main(int argc, char **argv) {
  std::vector<int> threads = {1, 2}, sizes = {250, 500, 1000};
  std::string filter;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--threads") && i + 1 < argc) {
      threads = int_list(argv[++i]);
    } else if (!std::strcmp(argv[i], "--sizes") && i + 1 < argc) {
      sizes = int_list(argv[++i]);
    } else if (!std::strcmp(argv[i], "--filter") && i + 1 < argc) {
      filter = argv[++i];
    } else if (!std::strcmp(argv[i], "--csv") && i + 1 < argc) {
      if (!orb::bench::csv().open(argv[++i])) {
        std::fprintf(stderr, "lapack_rates: cannot write %s\n", argv[i]);
        return 2;
      }
    } else {
      std::fprintf(stderr,
                   "usage: lapack_rates [--threads 1,2] [--sizes 250,500] "
                   "[--filter getrf] [--csv FILE]\n");
      return 2;
    }
  }
  std::printf("%-8s %6s %3s %9s %8s\n", "routine", "n", "nt", "GFLOP/s", "spread%");
  for (const Routine &r : routines()) {
    if (!filter.empty() && std::string(r.name).find(filter) == std::string::npos) continue;
    for (int n : sizes) {
      const std::function<void()> call = r.make(n);
      for (int nt : threads) {
        ORB_Set_Num_Threads(nt);
        double spread;
        const double rate = r.flops(n) / best_seconds(call, &spread) * 1e-9;
        std::printf("%-8s %6d %3d %9.2f %8.1f\n", r.name, n, nt, rate, spread);
        std::fflush(stdout);
        orb::bench::csv().row(r.name, std::to_string(n), nt, "ORB", rate, "GFLOP/s", spread);
      }
    }
  }
  return 0;
}
