#include "lapack/copy_scale.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "lapack/auxiliary.h"

namespace orb::lapack {
namespace {

// Rows [first, last) of column j that `part` covers in an m-row matrix.
inline void rows_of(Part part, int m, int j, int &first, int &last) {
  first = 0;
  last = m;
  if (part == Part::kUpper) last = std::min(j + 1, m);
  if (part == Part::kLower) first = std::min(j, m);
}

}  // namespace

template <class T>
void lacpy(Part part, int m, int n, const T *a, int lda, T *b, int ldb) {
  if (m <= 0 || n <= 0) return;
  for (int j = 0; j < n; ++j) {
    int i0, i1;
    rows_of(part, m, j, i0, i1);
    const T *src = a + static_cast<std::ptrdiff_t>(j) * lda;
    T *dst = b + static_cast<std::ptrdiff_t>(j) * ldb;
    std::copy(src + i0, src + i1, dst + i0);
  }
}

template <class T>
void laset(Part part, int m, int n, T alpha, T beta, T *a, int lda) {
  if (m <= 0 || n <= 0) return;
  for (int j = 0; j < n; ++j) {
    int i0, i1;
    rows_of(part, m, j, i0, i1);
    T *col = a + static_cast<std::ptrdiff_t>(j) * lda;
    std::fill(col + i0, col + i1, alpha);
    if (j < m) col[j] = beta;
  }
}

template <class T>
void lascl(Part part, real_t<T> cfrom, real_t<T> cto, int m, int n, T *a, int lda) {
  using R = real_t<T>;
  if (m <= 0 || n <= 0) return;
  const R small = safe_minimum<R>(), big = R(1) / small;
  R cfromc = cfrom, ctoc = cto;
  for (bool done = false; !done;) {
    // One step multiplies by mul, a power of the range when the whole
    // ratio would leave it.
    const R cfrom1 = cfromc * small;
    R mul;
    if (cfrom1 == cfromc) {  // cfromc is infinite: the ratio is a signed zero or NaN
      mul = ctoc / cfromc;
      done = true;
    } else {
      const R cto1 = ctoc / big;
      if (cto1 == ctoc) {  // ctoc is zero or infinite
        mul = ctoc;
        done = true;
        cfromc = R(1);
      } else if (std::abs(cfrom1) > std::abs(ctoc) && ctoc != R(0)) {
        mul = small;
        cfromc = cfrom1;
      } else if (std::abs(cto1) > std::abs(cfromc)) {
        mul = big;
        ctoc = cto1;
      } else {
        mul = ctoc / cfromc;
        done = true;
        if (mul == R(1)) return;
      }
    }
    for (int j = 0; j < n; ++j) {
      int i0, i1;
      rows_of(part, m, j, i0, i1);
      T *col = a + static_cast<std::ptrdiff_t>(j) * lda;
      for (int i = i0; i < i1; ++i) col[i] *= mul;
    }
  }
}

template <class R>
R scaling_small() {
  return std::sqrt(safe_minimum<R>()) / std::numeric_limits<R>::epsilon();
}

#define ORB_COPY_SCALE(T)                                           \
  template void lacpy<T>(Part, int, int, const T *, int, T *, int); \
  template void laset<T>(Part, int, int, T, T, T *, int);           \
  template void lascl<T>(Part, real_t<T>, real_t<T>, int, int, T *, int);
ORB_COPY_SCALE(float)
ORB_COPY_SCALE(double)
ORB_COPY_SCALE(c8)
ORB_COPY_SCALE(c16)
template float scaling_small<float>();
template double scaling_small<double>();

}  // namespace orb::lapack
