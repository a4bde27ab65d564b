// The element-access routines: one word or one complex element through a
// pointer. On 32-bit Windows they are callee-pops (ORB_STDCALL); the export
// list maps their undecorated names to the decorated symbols, and
// SetValIToPtr and GetValIFromPtr share the first two entries.
#include <cstring>

#include "orb.h"

extern "C" {

ORB_API int ORB_STDCALL SetValToPtr_s(int *p, int v) {
  *p = v;
  return v;
}
ORB_API void ORB_STDCALL GetValFromPtr_s(const int *p, int *out) {
  *out = *p;
}
// A complex element is copied as its two words, never through a floating
// register, so every bit pattern arrives unchanged.
ORB_API void ORB_STDCALL SetValcToPtr_s(orb_complex8 *dst, const orb_complex8 *src) {
  std::memcpy(dst, src, sizeof *dst);
}
ORB_API void ORB_STDCALL GetValcFromPtr_s(const orb_complex8 *src, orb_complex8 *dst) {
  std::memcpy(dst, src, sizeof *dst);
}
ORB_API float ORB_STDCALL GetValFromPtrf_s(const float *p) {
  return *p;
}

}  // extern "C"
