// Small triangular solves for the level-3 solve: C V = alpha V in place, for
// m <= kTrsmOrder vectors V_0 .. V_{m-1} of kTrsmLanes floats each, stored
// kTrsmLanes apart. C is m-by-m, column-major with leading dimension
// kTrsmOrder; lower (solved from V_0 on) or upper (from V_{m-1} on); its
// diagonal is read unless `unit`. Row s of the result is
//   (alpha V_s - sum over the solved t of C(s, t) V_t) / C(s, s),
// the products subtracted one at a time in the order of t.
#pragma once

#include <complex>

namespace orb::kernel {

constexpr int kTrsmOrder = 64;
constexpr int kTrsmLanes = 64;

// The left-side solve works on rows of X: strsm_gather copies B(i, j), i < m,
// j < n (m <= kTrsmOrder, n <= kTrsmLanes) to v[i * kTrsmLanes + j] and zeros
// the lanes from n on; strsm_scatter copies them back.
#define ORB_TRSM_DECLS                                                                 \
  void strsm_small(int m, int upper, int unit, float alpha, const float *c, float *v); \
  void strsm_gather(int m, int n, const float *b, int ldb, float *v);                  \
  void strsm_scatter(int m, int n, const float *v, float *b, int ldb);
namespace sse2 {
ORB_TRSM_DECLS
}
namespace avx2 {
ORB_TRSM_DECLS
// The same for single complex V and C, m <= kCtrsmOrder; lanes as above
// (kTrsmLanes complex values per vector).
void ctrsm_small(int m, int upper, int unit, std::complex<float> alpha,
                 const std::complex<float> *c, std::complex<float> *v);
}  // namespace avx2
#undef ORB_TRSM_DECLS

constexpr int kCtrsmOrder = 16;

}  // namespace orb::kernel
