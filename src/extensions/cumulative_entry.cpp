// The exported cumulative host routines: running sums, running sums with a
// lag, and the product of all elements (kernel/cumulative.h). Each call takes
// the code path of the host processor word (host_path.h); a count of 0
// writes nothing, except that a product of no elements is 1.
#include "extensions/kernel/cumulative.h"
#include "orb.h"

namespace {

using orb::host::floats;
using orb::host::kCumulative;

}  // namespace

extern "C" {

ORB_API unsigned int CumSum_s(const float *src, float *dst, unsigned int n) {
  if (n != 0) kCumulative.for_dst(dst).cum_sum(src, dst, n);
  return n;
}
ORB_API unsigned int CumSumc_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int n) {
  if (n != 0) kCumulative.for_dst(dst).cum_sum_c(floats(src), floats(dst), n);
  return n;
}
ORB_API unsigned int CumSumDelta_s(const float *src, float *dst, unsigned int delta,
                                   unsigned int n) {
  if (n != 0) kCumulative.for_dst(dst).cum_sum_lag(src, dst, delta, n);
  return n;
}
ORB_API unsigned int CumSumDeltac_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int delta,
                                    unsigned int n) {
  if (n != 0) kCumulative.for_dst(dst).cum_sum_lag_c(floats(src), floats(dst), delta, n);
  return n;
}

ORB_API void Product_s(const float *x, unsigned int n, float *result) {
  kCumulative.for_dst(result).product(x, result, n);
}
ORB_API void Productc_s(const orb_complex8 *x, unsigned int n, orb_complex8 *result) {
  kCumulative.for_dst(result).product_c(floats(x), floats(result), n);
}

}  // extern "C"
