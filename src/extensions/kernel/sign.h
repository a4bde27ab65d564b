// The sign families of the host routines: the sign of each element, and a
// target multiplied by the sign of each element. Complex elements are pairs
// of floats (real part first); n counts elements.
//
// The sign of a real x is +1 for x > 0, -1 for x < 0 and 0 for x = 0; a NaN
// has none. A complex x takes the sign of its real part when that part is
// nonzero (a NaN real part counts as nonzero, so the element has no sign),
// else that of its imaginary part. Multiplying a target by a sign keeps it
// (+1, or no sign), negates it as 0 - x (-1) or sets it to +0 (0); a sign
// written out is +1, -1 or +0, and +0 when there is none.
#pragma once

#include <cstddef>

#include "extensions/host_path.h"

namespace orb::host {

// (signs, target multiplied in place, n)
using SignMulFn = void (*)(const float *, float *, std::size_t);
// (source, destination, n)
using SignFn = void (*)(const float *, float *, std::size_t);

// X(member, signature): every kernel of the family; the letters name the
// operand types in order (d real, c complex).
#define ORB_HOST_SIGN_KERNELS(X) \
  X(sgn_mul_dd, SignMulFn)       \
  X(sgn_mul_cc, SignMulFn)       \
  X(sgn_mul_cd, SignMulFn)       \
  X(sgn_mul_dc, SignMulFn)       \
  X(sgn_dd, SignFn)              \
  X(sgn_dc, SignFn)              \
  X(sgn_cd, SignFn)              \
  X(sgn_cc, SignFn)

struct SignKernels {
#define ORB_MEMBER(name, type) type name;
  ORB_HOST_SIGN_KERNELS(ORB_MEMBER)
#undef ORB_MEMBER
};

extern const SignKernels kSignPlain, kSignSse2, kSignAvx2, kSignAvx512;
inline constexpr PathTables<SignKernels> kSign{{&kSignPlain, &kSignSse2, &kSignAvx2, &kSignAvx512}};

}  // namespace orb::host
