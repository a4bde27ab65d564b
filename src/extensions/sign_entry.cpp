// The exported sign host routines: the sign of each element, and a target
// multiplied in place by the sign of each element (kernel/sign.h gives the
// rules). Each call takes the code path of the host processor word
// (host_path.h); a count of 0 returns at once.
#include "extensions/kernel/sign.h"
#include "orb.h"

namespace {

using orb::host::floats;
using orb::host::kSign;

}  // namespace

extern "C" {

ORB_API void SgnMul_s(const float *a, float *b, unsigned int n) {
  if (n != 0) kSign.for_dst(b).sgn_mul_dd(a, b, n);
}
ORB_API void SgnMulc_s(const orb_complex8 *a, orb_complex8 *b, unsigned int n) {
  if (n != 0) kSign.for_dst(b).sgn_mul_cc(floats(a), floats(b), n);
}
ORB_API void SgnMulcd_s(const orb_complex8 *a, float *b, unsigned int n) {
  if (n != 0) kSign.for_dst(b).sgn_mul_cd(floats(a), b, n);
}
ORB_API void SgnMuldc_s(const float *a, orb_complex8 *b, unsigned int n) {
  if (n != 0) kSign.for_dst(b).sgn_mul_dc(a, floats(b), n);
}

ORB_API void Sgndd_s(const float *src, float *dst, unsigned int n) {
  if (n != 0) kSign.for_dst(dst).sgn_dd(src, dst, n);
}
ORB_API void Sgndc_s(const float *src, orb_complex8 *dst, unsigned int n) {
  if (n != 0) kSign.for_dst(dst).sgn_dc(src, floats(dst), n);
}
ORB_API void Sgncd_s(const orb_complex8 *src, float *dst, unsigned int n) {
  if (n != 0) kSign.for_dst(dst).sgn_cd(floats(src), dst, n);
}
ORB_API void Sgncc_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int n) {
  if (n != 0) kSign.for_dst(dst).sgn_cc(floats(src), floats(dst), n);
}

}  // extern "C"
