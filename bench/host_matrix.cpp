// Timing of the row-major transpositions against memcpy of the same bytes:
// host_matrix [n [repeats]] transposes an n x n float matrix (4096 unless
// given) apart and in place, and the complex forms, and prints GB/s counted
// as bytes read plus bytes written, the minimum and median over the repeats.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <vector>

#include "extensions/matrix_kernels.h"
#include "orb.h"

namespace {

struct Figures {
  double best, median;  // GB/s
};

Figures time_it(std::size_t bytes, int repeats, const std::function<void()> &work) {
  std::vector<double> seconds;
  work();  // warm: pages touched, kernels chosen
  for (int r = 0; r < repeats; ++r) {
    const auto t0 = std::chrono::steady_clock::now();
    work();
    const auto t1 = std::chrono::steady_clock::now();
    seconds.push_back(std::chrono::duration<double>(t1 - t0).count());
  }
  std::sort(seconds.begin(), seconds.end());
  const double moved = 2.0 * static_cast<double>(bytes) * 1e-9;
  return {moved / seconds.front(), moved / seconds[seconds.size() / 2]};
}

void print(const char *what, Figures f, Figures ref) {
  std::printf("%-34s %8.2f %8.2f   %5.2f\n", what, f.best, f.median, f.median / ref.median);
}

const char *path_name(orb::host::TransposePath p) {
  switch (p) {
    case orb::host::TransposePath::kPlain:
      return "plain";
    case orb::host::TransposePath::kSse2:
      return "sse2";
    case orb::host::TransposePath::kAvx2:
      return "avx2";
    case orb::host::TransposePath::kAvx512:
      return "avx512";
  }
  return "?";
}

}  // namespace

int main(int argc, char **argv) {
  const unsigned n = argc > 1 ? static_cast<unsigned>(std::atoi(argv[1])) : 4096;
  const int repeats = argc > 2 ? std::atoi(argv[2]) : 9;
  const std::size_t count = std::size_t{n} * n;
  std::vector<float> a(2 * count), b(2 * count);
  for (std::size_t k = 0; k < a.size(); ++k) a[k] = static_cast<float>(k % 1000);

  std::printf("n = %u, %d repeats, kernels: %s\n", n, repeats,
              path_name(orb::host::transpose_path()));
  std::printf("%-34s %8s %8s   %s\n", "GB/s (read + written)", "best", "median", "median/memcpy");
  const std::size_t fbytes = count * sizeof(float), cbytes = 2 * fbytes;
  const Figures mf = time_it(fbytes, repeats, [&] { std::memcpy(b.data(), a.data(), fbytes); });
  print("memcpy (float matrix bytes)", mf, mf);
  print("TransposeMatrix_s",
        time_it(fbytes, repeats, [&] { TransposeMatrix_s(a.data(), b.data(), n, n); }), mf);
  print("TransposeSquareMatrix_s in place",
        time_it(fbytes, repeats, [&] { TransposeSquareMatrix_s(b.data(), b.data(), n); }), mf);
  const Figures mc = time_it(cbytes, repeats, [&] { std::memcpy(b.data(), a.data(), cbytes); });
  print("memcpy (complex matrix bytes)", mc, mc);
  auto *ca = reinterpret_cast<orb_complex8 *>(a.data());
  auto *cb = reinterpret_cast<orb_complex8 *>(b.data());
  print("TransposeMatrixc_s", time_it(cbytes, repeats, [&] { TransposeMatrixc_s(ca, cb, n, n); }),
        mc);
  print("AdjungateMatrixc_s", time_it(cbytes, repeats, [&] { AdjungateMatrixc_s(ca, cb, n, n); }),
        mc);
  print("AdjungateSquareMatrixc_s in place",
        time_it(cbytes, repeats, [&] { AdjungateSquareMatrixc_s(cb, cb, n); }), mc);
  return 0;
}
