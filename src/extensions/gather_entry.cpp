// The exported gather, scatter and mask routines. Each call takes the code
// path of the host processor word (host_path.h); a count of 0 writes nothing.
#include "extensions/kernel/gather.h"
#include "orb.h"

namespace {

using orb::host::kGather;
using orb::host::Word32;
using orb::host::Word64;

const Word64 *w(const orb_complex8 *p) {
  return reinterpret_cast<const Word64 *>(p);
}
Word64 *w(orb_complex8 *p) {
  return reinterpret_cast<Word64 *>(p);
}

}  // namespace

extern "C" {

ORB_API void vdpackic_s(unsigned int n, const orb_complex8 *src, int inc, orb_complex8 *dst) {
  if (n != 0) kGather.for_dst(dst).pack_strided(w(src), w(dst), inc, n);
}
ORB_API void vdunpackic_s(unsigned int n, const orb_complex8 *src, orb_complex8 *dst, int inc) {
  if (n != 0) kGather.for_dst(dst).unpack_strided(w(src), w(dst), inc, n);
}
ORB_API void vdpackvc_s(unsigned int n, const orb_complex8 *src, const int *idx,
                        orb_complex8 *dst) {
  if (n != 0) kGather.for_dst(dst).pack_indexed(w(src), w(dst), idx, n);
}
ORB_API void vdunpackvc_s(unsigned int n, const orb_complex8 *src, orb_complex8 *dst,
                          const int *idx) {
  if (n != 0) kGather.for_dst(dst).unpack_indexed(w(src), w(dst), idx, n);
}

// The two mask routines differ only in the order of their arguments.
ORB_API void vdpackmc_s(unsigned int n, const orb_complex8 *src, const int *mask,
                        orb_complex8 *dst) {
  if (n != 0) kGather.for_dst(dst).expand_masked(w(src), w(dst), mask, n);
}
ORB_API void vdunpackmc_s(unsigned int n, const orb_complex8 *src, orb_complex8 *dst,
                          const int *mask) {
  if (n != 0) kGather.for_dst(dst).expand_masked(w(src), w(dst), mask, n);
}

ORB_API unsigned int PackByMask_s(unsigned int n, const float *src, float *dst, const int *mask) {
  if (n == 0) return 0;
  return static_cast<unsigned int>(kGather.for_dst(dst).compress_real(
      reinterpret_cast<const Word32 *>(src), reinterpret_cast<Word32 *>(dst), mask, n));
}
ORB_API unsigned int PackByMaskc_s(unsigned int n, const orb_complex8 *src, orb_complex8 *dst,
                                   const int *mask) {
  if (n == 0) return 0;
  return static_cast<unsigned int>(kGather.for_dst(dst).compress_complex(w(src), w(dst), mask, n));
}

}  // extern "C"
