// The host routines on row-major matrices: element (i, j) of a rows x cols
// matrix at i * cols + j. One template per algorithm over the element type
// (float, std::complex<float>); the adjoint is the transposition with the
// conjugating element operation. Index products are 64-bit.
#pragma once

#include <complex>
#include <cstddef>

namespace orb::host {

// The element operation a transposition applies: none, or conjugation.
enum class ElementOp { kCopy, kConj };

// Which part of a matrix a triangle routine means: j > i (upper) or j < i
// (lower), the diagonal added when asked for.
enum class Triangle { kUpper, kLower };

// Zeroes the part in place.
template <class T>
void zero_triangle(T *a, std::size_t rows, std::size_t cols, Triangle part, bool diag);
// dst = the part of src, every other element zero; dst may equal src.
template <class T>
void copy_triangle(const T *src, T *dst, std::size_t rows, std::size_t cols, Triangle part,
                   bool diag);

// Swaps columns c1 and c2 (rows r1 and r2); nothing when an index is out of
// range or the two are equal.
template <class T>
void col_exchange(T *a, std::size_t rows, std::size_t cols, std::size_t c1, std::size_t c2);
template <class T>
void row_exchange(T *a, std::size_t rows, std::size_t cols, std::size_t r1, std::size_t r2);

// dst (cols x rows) = op(src^T); src and dst do not overlap.
template <class T, ElementOp Op>
void transpose(const T *src, T *dst, std::size_t rows, std::size_t cols);
// dst (n x n) = op(src^T); dst may equal src (then in place, no buffer).
template <class T, ElementOp Op>
void transpose_square(const T *src, T *dst, std::size_t n);

// dst (dst_rows x dst_cols) = the top-left overlap of src, the rest zero;
// dst may equal src, otherwise they do not overlap.
template <class T>
void resize(const T *src, T *dst, std::size_t src_rows, std::size_t src_cols, std::size_t dst_rows,
            std::size_t dst_cols);

// dst (rows x cols) = the block of src starting at (row0, col0); nothing when
// the block reaches outside src.
template <class T>
void copy_submatrix(const T *src, T *dst, std::size_t src_rows, std::size_t src_cols,
                    std::size_t row0, std::size_t col0, std::size_t rows, std::size_t cols);

}  // namespace orb::host
