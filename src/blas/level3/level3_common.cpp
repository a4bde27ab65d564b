// The thread split of the level-3 routines built on GEMM.
#include <algorithm>
#include <cmath>

#include "blas/level3/level3.h"
#include "service/threading.h"

namespace orb::blas {
namespace {

// Below this many multiply-adds (about 100^3) a routine stays on the calling
// thread; above it, each thread gets at least half of that, which keeps the
// cost of starting and joining the team small beside the work.
constexpr double kSerialWork = 1048576.0;
constexpr double kWorkPerThread = 524288.0;

}  // namespace

int level3_team(double work, int slabs) {
  if (slabs < 2 || work < kSerialWork) return 1;
  int nt = threads::max_threads(threads::kDomainBlas);
  nt = std::min(nt, slabs);
  nt = std::min<double>(nt, std::floor(work / kWorkPerThread));
  return std::max(nt, 1);
}

int level3_boundary(int total, int i, int nt, int grain, int shape) {
  if (i <= 0) return 0;
  if (i >= nt) return total;
  const double f = static_cast<double>(i) / nt;
  double x = total * f;
  if (shape == 1) x = total * std::sqrt(f);
  if (shape == 2) x = total * (1.0 - std::sqrt(1.0 - f));
  const int b = static_cast<int>(x / grain + 0.5) * grain;
  return std::clamp(b, 0, total);
}

}  // namespace orb::blas
