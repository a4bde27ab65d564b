// The band LU column by column, and the record of the path the last
// factorization took.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "blas/level1/level1.h"
#include "blas/level2/level2.h"
#include "lapack/auxiliary.h"
#include "lapack/band.h"
#include "lapack/gbtrf_omp.h"

namespace orb::lapack {

namespace band_detail {
thread_local GbtrfPath t_gbtrf_path = GbtrfPath::kNone;
}  // namespace band_detail

GbtrfPath gbtrf_last_path() {
  return band_detail::t_gbtrf_path;
}

template <class T>
int gbtf2(int m, int n, int kl, int ku, T *ab, int ldab, int *ipiv) {
  using R = real_t<T>;
  const int kv = kl + ku, ld = ldab - 1;
  // A(i, j), 0-based, with the band seen as a matrix of leading dimension
  // ldab - 1 (valid inside the band and its fill-in).
  auto el = [&](int i, int j) { return ab + kv + i + static_cast<std::ptrdiff_t>(j) * ld; };
  band_detail::zero_fill_start(n, kl, ku, ab, ldab);
  int info = 0;
  int ju = 0;  // the last column the factorization has reached
  for (int j = 0; j < std::min(m, n); ++j) {
    band_detail::zero_fill(j + kv, j + kv + 1, n, kl, ku, ab, ldab);
    const int km = std::min(kl, m - 1 - j);
    const int p = blas::iamax(km + 1, el(j, j), 1) - 1;
    ipiv[j] = j + p + 1;
    const T pivot = *el(j + p, j);
    if (pivot == T(0)) {
      if (info == 0) info = j + 1;
      continue;
    }
    ju = std::max(ju, std::min(j + ku + p, n - 1));
    if (p != 0) blas::swap(ju - j + 1, el(j + p, j), ld, el(j, j), ld);
    if (km == 0) continue;
    if (std::abs(pivot) >= safe_minimum<R>())
      blas::scal(km, T(1) / pivot, el(j + 1, j), 1);
    else
      for (T *x = el(j + 1, j), *end = x + km; x < end; ++x) *x /= pivot;
    if (ju > j)
      blas::level2::ger(km, ju - j, T(-1), el(j + 1, j), 1, el(j, j + 1), ld, el(j + 1, j + 1), ld,
                        false);
  }
  return info;
}

template int gbtf2(int, int, int, int, float *, int, int *);
template int gbtf2(int, int, int, int, c8 *, int, int *);

}  // namespace orb::lapack
