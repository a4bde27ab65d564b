// The exported unary host routines: complex element moves, rounding to
// integers, remainders, the complex ramp and the complex power. Each call
// takes the code path of the host processor word (host_path.h); a count of 0
// returns at once. The complex power is one portable routine for every path.
#include <cmath>
#include <cstddef>

#include "extensions/kernel/unary.h"
#include "orb.h"

namespace orb::host {

void pow_c(const float *src, float *dst, const float *power, std::size_t n) {
  const double pr = power[0], pi = power[1];
  for (std::size_t i = 0; i < n; ++i) {
    const double re = src[2 * i], im = src[2 * i + 1];
    if (re == 0.0 && im == 0.0) {
      dst[2 * i] = 0.0f;
      dst[2 * i + 1] = 0.0f;
      continue;
    }
    // log z = (log |z|, arg z); w = p log z; z^p = exp(w).
    const double lr = std::log(std::hypot(re, im)), th = std::atan2(im, re);
    const double wr = pi == 0.0 ? pr * lr : pr * lr - pi * th;
    const double wi = pi == 0.0 ? pr * th : pr * th + pi * lr;
    const double m = std::exp(wr);
    dst[2 * i] = static_cast<float>(m * std::cos(wi));
    dst[2 * i + 1] = static_cast<float>(m * std::sin(wi));
  }
}

}  // namespace orb::host

namespace {

using orb::host::floats;
using orb::host::kUnary;

}  // namespace

extern "C" {

ORB_API void MulI_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int n) {
  if (n != 0) kUnary.for_dst(dst).mul_i(floats(src), floats(dst), n);
}
ORB_API void Flip_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int n) {
  if (n != 0) kUnary.for_dst(dst).flip(floats(src), floats(dst), n);
}
ORB_API void FlipConj_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int n) {
  if (n != 0) kUnary.for_dst(dst).flip_conj(floats(src), floats(dst), n);
}
ORB_API void Reverse_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int n) {
  if (n != 0) kUnary.for_dst(dst).reverse(floats(src), floats(dst), n);
}

ORB_API void Floor_s(const float *src, float *dst, unsigned int n) {
  if (n != 0) kUnary.for_dst(dst).floor(src, dst, n);
}
ORB_API void Ceil_s(const float *src, float *dst, unsigned int n) {
  if (n != 0) kUnary.for_dst(dst).ceil(src, dst, n);
}
ORB_API void Rem_s(const float *a, const float *b, float *dst, unsigned int n) {
  if (n != 0) kUnary.for_dst(dst).rem(a, b, dst, n);
}
ORB_API void RemVal_s(const float *src, float *dst, float v, unsigned int n) {
  if (n != 0) kUnary.for_dst(dst).rem_value(src, dst, v, n);
}

ORB_API void Rampc_s(orb_complex8 *dst, const orb_complex8 *start, const orb_complex8 *step,
                     unsigned int n) {
  if (n != 0) kUnary.for_dst(dst).ramp_c(floats(dst), floats(start), floats(step), n);
}
ORB_API void Powc_s(const orb_complex8 *src, orb_complex8 *dst, const orb_complex8 *power,
                    unsigned int n) {
  if (n != 0) orb::host::pow_c(floats(src), floats(dst), floats(power), n);
}

}  // extern "C"
