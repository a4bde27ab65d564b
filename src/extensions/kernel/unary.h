// The unary families of the host routines: complex element moves (times i,
// swapped parts, reversed order), rounding to integers, remainders and the
// complex ramp. Complex elements are pairs of floats (real part first); n
// counts elements.
#pragma once

#include <cstddef>

#include "extensions/host_path.h"
#include "extensions/kernel/arith.h"

namespace orb::host {

// (source, destination, n)
using UnaryFn = void (*)(const float *, float *, std::size_t);
// (destination, complex start, complex step, n)
using RampFn = void (*)(float *, const float *, const float *, std::size_t);

// X(member, signature): every kernel of the family.
#define ORB_HOST_UNARY_KERNELS(X) \
  X(mul_i, UnaryFn)               \
  X(flip, UnaryFn)                \
  X(flip_conj, UnaryFn)           \
  X(reverse, UnaryFn)             \
  X(floor, UnaryFn)               \
  X(ceil, UnaryFn)                \
  X(rem, VectorsFn)               \
  X(rem_value, ValueFn)           \
  X(ramp_c, RampFn)

struct UnaryKernels {
#define ORB_MEMBER(name, type) type name;
  ORB_HOST_UNARY_KERNELS(ORB_MEMBER)
#undef ORB_MEMBER
};

extern const UnaryKernels kUnaryPlain, kUnarySse2, kUnaryAvx2, kUnaryAvx512;
inline constexpr PathTables<UnaryKernels> kUnary{
    {&kUnaryPlain, &kUnarySse2, &kUnaryAvx2, &kUnaryAvx512}};

// z^p on the principal branch, computed in double and rounded once per part;
// one portable routine for every path.
void pow_c(const float *src, float *dst, const float *power, std::size_t n);

}  // namespace orb::host
