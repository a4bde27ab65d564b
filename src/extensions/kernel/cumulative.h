// The cumulative families of the host routines: running sums, running sums
// with a lag, and the product of all elements. Complex elements are pairs of
// floats (real part first); n counts elements.
//
// Each result depends on the ones before it in a fixed order of operations,
// which every path keeps: a path is faster only where the order allows (the
// lag's independent chains, loads and stores), never by regrouping.
#pragma once

#include <cstddef>

#include "extensions/host_path.h"

namespace orb::host {

// (source, destination, n)
using CumulativeFn = void (*)(const float *, float *, std::size_t);
// (source, destination, lag in elements, n)
using LaggedFn = void (*)(const float *, float *, std::size_t, std::size_t);
// (elements, result, n)
using ProductFn = void (*)(const float *, float *, std::size_t);

// X(member, signature): every kernel of the family.
#define ORB_HOST_CUMULATIVE_KERNELS(X) \
  X(cum_sum, CumulativeFn)             \
  X(cum_sum_c, CumulativeFn)           \
  X(cum_sum_lag, LaggedFn)             \
  X(cum_sum_lag_c, LaggedFn)           \
  X(product, ProductFn)                \
  X(product_c, ProductFn)

struct CumulativeKernels {
#define ORB_MEMBER(name, type) type name;
  ORB_HOST_CUMULATIVE_KERNELS(ORB_MEMBER)
#undef ORB_MEMBER
};

extern const CumulativeKernels kCumulativePlain, kCumulativeSse2, kCumulativeAvx2,
    kCumulativeAvx512;
inline constexpr PathTables<CumulativeKernels> kCumulative{
    {&kCumulativePlain, &kCumulativeSse2, &kCumulativeAvx2, &kCumulativeAvx512}};

}  // namespace orb::host
