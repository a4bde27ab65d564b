// The arithmetic families of the host routines: a scalar operand with each
// element of a vector, and two vectors element by element. Complex elements
// are pairs of floats (real part first); n counts elements.
#pragma once

#include <cstddef>

#include "extensions/host_path.h"

namespace orb::host {

// (source, destination, real value, n)
using ValueFn = void (*)(const float *, float *, float, std::size_t);
// (source, destination, complex value, n)
using ComplexValueFn = void (*)(const float *, float *, const float *, std::size_t);
// (first, second, destination, n)
using VectorsFn = void (*)(const float *, const float *, float *, std::size_t);

// X(member, signature): every kernel of the family.
#define ORB_HOST_ARITH_KERNELS(X)      \
  X(add_value, ValueFn)                \
  X(add_value_c, ComplexValueFn)       \
  X(add_value_cd, ValueFn)             \
  X(add_value_dc, ComplexValueFn)      \
  X(sub_from_value, ValueFn)           \
  X(sub_from_value_c, ComplexValueFn)  \
  X(sub_from_value_cd, ValueFn)        \
  X(sub_from_value_dc, ComplexValueFn) \
  X(scale_by_value, ValueFn)           \
  X(scale_by_value_c, ComplexValueFn)  \
  X(scale_by_value_cd, ValueFn)        \
  X(scale_by_value_dc, ComplexValueFn) \
  X(divide_value, ValueFn)             \
  X(divide_value_c, ComplexValueFn)    \
  X(divide_value_cd, ValueFn)          \
  X(divide_value_dc, ComplexValueFn)   \
  X(add_vec_cd, VectorsFn)             \
  X(sub_vec_cd, VectorsFn)             \
  X(sub_vec_dc, VectorsFn)             \
  X(mul_vec_cd, VectorsFn)             \
  X(div_vec_cd, VectorsFn)             \
  X(div_vec_dc, VectorsFn)             \
  X(div_vec_cc, VectorsFn)             \
  X(conj_mul_cc, VectorsFn)

struct ArithKernels {
#define ORB_MEMBER(name, type) type name;
  ORB_HOST_ARITH_KERNELS(ORB_MEMBER)
#undef ORB_MEMBER
};

extern const ArithKernels kArithPlain, kArithSse2, kArithAvx2, kArithAvx512;
inline constexpr PathTables<ArithKernels> kArith{
    {&kArithPlain, &kArithSse2, &kArithAvx2, &kArithAvx512}};

}  // namespace orb::host
