// The gather, scatter and mask families of the host routines. They only move
// elements: a complex element is one 64-bit word, a real one a 32-bit word,
// copied as integers so that every path moves the same bits (a signalling NaN
// stays signalling). Source and destination do not overlap; n counts
// elements; strides count elements and may be 0 or negative.
#pragma once

#include <cstddef>
#include <cstdint>

#include "extensions/host_path.h"

namespace orb::host {

// Words that may alias the caller's float and complex arrays; a complex array
// is only 4-byte aligned, so the 64-bit word is too.
using Word32 = std::uint32_t __attribute__((may_alias));
typedef std::uint64_t Word64 __attribute__((may_alias, aligned(4)));

// (source, destination, stride, n): dst[i] = src[i inc] or dst[i inc] = src[i]
using StridedFn = void (*)(const Word64 *, Word64 *, std::ptrdiff_t, std::size_t);
// (source, destination, indices, n): dst[i] = src[idx[i]] or dst[idx[i]] = src[i]
using IndexedFn = void (*)(const Word64 *, Word64 *, const int *, std::size_t);
// (source, destination, mask, n): dst[i] = src[k++] where mask[i] > 0
using ExpandFn = void (*)(const Word64 *, Word64 *, const int *, std::size_t);
// (source, destination, mask, n): dst[k++] = src[i] where mask[i] > 0; returns k
using Compress32Fn = std::size_t (*)(const Word32 *, Word32 *, const int *, std::size_t);
using Compress64Fn = std::size_t (*)(const Word64 *, Word64 *, const int *, std::size_t);

// X(member, signature): every kernel of the family.
#define ORB_HOST_GATHER_KERNELS(X) \
  X(pack_strided, StridedFn)       \
  X(unpack_strided, StridedFn)     \
  X(pack_indexed, IndexedFn)       \
  X(unpack_indexed, IndexedFn)     \
  X(expand_masked, ExpandFn)       \
  X(compress_real, Compress32Fn)   \
  X(compress_complex, Compress64Fn)

struct GatherKernels {
#define ORB_MEMBER(name, type) type name;
  ORB_HOST_GATHER_KERNELS(ORB_MEMBER)
#undef ORB_MEMBER
};

extern const GatherKernels kGatherPlain, kGatherSse2, kGatherAvx2, kGatherAvx512;
inline constexpr PathTables<GatherKernels> kGather{
    {&kGatherPlain, &kGatherSse2, &kGatherAvx2, &kGatherAvx512}};

}  // namespace orb::host
