// The transposition kernels: one tile at a time, one set per code path. The
// portable loops in matrix.cpp cut a matrix into tiles and hand each to the
// kernels of the path chosen once per process; the plain set is the
// reference the vector sets are tested against, bit for bit.
#pragma once

#include <complex>
#include <cstddef>

#include "extensions/matrix.h"

namespace orb::host {

// Leading dimensions count elements; m, n are at most kTileBytes / sizeof(T).
template <class T>
struct TransposeKernels {
  // dst(j, i) = op(src(i, j)) for i < m, j < n.
  void (*copy)(const T *src, std::size_t lds, T *dst, std::size_t ldd, std::size_t m,
               std::size_t n);
  // The m x n block at a and the n x m block at b (disjoint, same leading
  // dimension) trade places as transposes: a(i, j) <-> b(j, i), op on both.
  void (*swap)(T *a, T *b, std::size_t ld, std::size_t m, std::size_t n);
  // The m x m block at a transposed in place, op on every element.
  void (*diag)(T *a, std::size_t ld, std::size_t m);
};

// The width of a tile row in bytes: 64 floats or 32 complex elements, so that
// a source tile and its destination fit in the first-level cache together.
constexpr std::size_t kTileBytes = 256;
template <class T>
constexpr std::size_t kTile = kTileBytes / sizeof(T);

enum class TransposePath { kPlain, kSse2, kAvx2, kAvx512 };

// The kernels of one path (every member null when this build or processor
// lacks it; callers check the processor first), and of the path chosen for
// the process: the plain loop for code-path type 0, the AVX-512 or AVX2
// kernels for types 4 and 5 where the processor and the system have them,
// SSE2 otherwise.
template <class T, ElementOp Op>
TransposeKernels<T> transpose_kernels(TransposePath path);
template <class T, ElementOp Op>
const TransposeKernels<T> &transpose_kernels();
// The path transpose_kernels() chose.
TransposePath transpose_path();

// The vector sets, one per path folder (kernel/<isa>/matrix_transpose.cpp).
namespace sse2 {
TransposeKernels<float> transpose_kernels_f();
TransposeKernels<std::complex<float>> transpose_kernels_c();
TransposeKernels<std::complex<float>> transpose_kernels_cc();  // conjugating
}  // namespace sse2

}  // namespace orb::host
