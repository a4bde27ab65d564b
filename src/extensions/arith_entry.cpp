// The exported host routines of the arithmetic families: a scalar operand
// with each element, and two vectors element by element. Each call takes the
// code path of the host processor word (host_path.h); a count of 0 returns at
// once.
#include "extensions/kernel/arith.h"
#include "orb.h"

namespace {

using orb::host::floats;
using orb::host::kArith;

}  // namespace

extern "C" {

ORB_API void AddValue_s(const float *src, float *dst, float v, unsigned int n) {
  if (n != 0) kArith.for_dst(dst).add_value(src, dst, v, n);
}
ORB_API void AddValuec_s(const orb_complex8 *src, orb_complex8 *dst, const orb_complex8 *v,
                         unsigned int n) {
  if (n != 0) kArith.for_dst(dst).add_value_c(floats(src), floats(dst), floats(v), n);
}
ORB_API void AddValuecd_s(const orb_complex8 *src, orb_complex8 *dst, float v, unsigned int n) {
  if (n != 0) kArith.for_dst(dst).add_value_cd(floats(src), floats(dst), v, n);
}
ORB_API void AddValuedc_s(const float *src, orb_complex8 *dst, const orb_complex8 *v,
                          unsigned int n) {
  if (n != 0) kArith.for_dst(dst).add_value_dc(src, floats(dst), floats(v), n);
}

ORB_API void SubFromValue_s(const float *src, float *dst, float v, unsigned int n) {
  if (n != 0) kArith.for_dst(dst).sub_from_value(src, dst, v, n);
}
ORB_API void SubFromValuec_s(const orb_complex8 *src, orb_complex8 *dst, const orb_complex8 *v,
                             unsigned int n) {
  if (n != 0) kArith.for_dst(dst).sub_from_value_c(floats(src), floats(dst), floats(v), n);
}
ORB_API void SubFromValuecd_s(const orb_complex8 *src, orb_complex8 *dst, float v, unsigned int n) {
  if (n != 0) kArith.for_dst(dst).sub_from_value_cd(floats(src), floats(dst), v, n);
}
ORB_API void SubFromValuedc_s(const float *src, orb_complex8 *dst, const orb_complex8 *v,
                              unsigned int n) {
  if (n != 0) kArith.for_dst(dst).sub_from_value_dc(src, floats(dst), floats(v), n);
}

ORB_API void ScaleByValue_s(const float *src, float *dst, float v, unsigned int n) {
  if (n != 0) kArith.for_dst(dst).scale_by_value(src, dst, v, n);
}
ORB_API void ScaleByValuec_s(const orb_complex8 *src, orb_complex8 *dst, const orb_complex8 *v,
                             unsigned int n) {
  if (n != 0) kArith.for_dst(dst).scale_by_value_c(floats(src), floats(dst), floats(v), n);
}
ORB_API void ScaleByValuecd_s(const orb_complex8 *src, orb_complex8 *dst, float v, unsigned int n) {
  if (n != 0) kArith.for_dst(dst).scale_by_value_cd(floats(src), floats(dst), v, n);
}
ORB_API void ScaleByValuedc_s(const float *src, orb_complex8 *dst, const orb_complex8 *v,
                              unsigned int n) {
  if (n != 0) kArith.for_dst(dst).scale_by_value_dc(src, floats(dst), floats(v), n);
}

ORB_API void DivideValue_s(const float *src, float *dst, float v, unsigned int n) {
  if (n != 0) kArith.for_dst(dst).divide_value(src, dst, v, n);
}
ORB_API void DivideValuec_s(const orb_complex8 *src, orb_complex8 *dst, const orb_complex8 *v,
                            unsigned int n) {
  if (n != 0) kArith.for_dst(dst).divide_value_c(floats(src), floats(dst), floats(v), n);
}
ORB_API void DivideValuecd_s(const orb_complex8 *src, orb_complex8 *dst, float v, unsigned int n) {
  if (n != 0) kArith.for_dst(dst).divide_value_cd(floats(src), floats(dst), v, n);
}
ORB_API void DivideValuedc_s(const float *src, orb_complex8 *dst, const orb_complex8 *v,
                             unsigned int n) {
  if (n != 0) kArith.for_dst(dst).divide_value_dc(src, floats(dst), floats(v), n);
}

ORB_API void AddVeccd_s(const orb_complex8 *a, const float *b, orb_complex8 *dst, unsigned int n) {
  if (n != 0) kArith.for_dst(dst).add_vec_cd(floats(a), b, floats(dst), n);
}
ORB_API void SubVeccd_s(const orb_complex8 *a, const float *b, orb_complex8 *dst, unsigned int n) {
  if (n != 0) kArith.for_dst(dst).sub_vec_cd(floats(a), b, floats(dst), n);
}
ORB_API void SubVecdc_s(const float *a, const orb_complex8 *b, orb_complex8 *dst, unsigned int n) {
  if (n != 0) kArith.for_dst(dst).sub_vec_dc(a, floats(b), floats(dst), n);
}
ORB_API void MulVeccd_s(const orb_complex8 *a, const float *b, orb_complex8 *dst, unsigned int n) {
  if (n != 0) kArith.for_dst(dst).mul_vec_cd(floats(a), b, floats(dst), n);
}
ORB_API void DivVeccd_s(const orb_complex8 *a, const float *b, orb_complex8 *dst, unsigned int n) {
  if (n != 0) kArith.for_dst(dst).div_vec_cd(floats(a), b, floats(dst), n);
}
ORB_API void DivVecdc_s(const float *a, const orb_complex8 *b, orb_complex8 *dst, unsigned int n) {
  if (n != 0) kArith.for_dst(dst).div_vec_dc(a, floats(b), floats(dst), n);
}
ORB_API void DivVeccc_s(const orb_complex8 *a, const orb_complex8 *b, orb_complex8 *dst,
                        unsigned int n) {
  if (n != 0) kArith.for_dst(dst).div_vec_cc(floats(a), floats(b), floats(dst), n);
}
ORB_API void ConjMulcc_s(const orb_complex8 *a, const orb_complex8 *b, orb_complex8 *dst,
                         unsigned int n) {
  if (n != 0) kArith.for_dst(dst).conj_mul_cc(floats(a), floats(b), floats(dst), n);
}

}  // extern "C"
