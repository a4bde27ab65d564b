// The row-major matrix routines (matrix.h) and the plain transposition
// kernels, with the choice of kernel set.
#include "extensions/matrix.h"

#include <algorithm>
#include <complex>
#include <cstring>
#include <utility>

#include "extensions/matrix_kernels.h"
#include "service/cpu.h"

namespace orb::host {

namespace {

using c8 = std::complex<float>;

template <ElementOp Op, class T>
inline T apply(T x) {
  if constexpr (Op == ElementOp::kConj) {
    return std::conj(x);
  } else {
    return x;
  }
}

// ---- plain kernels ------------------------------------------------------------------

template <class T, ElementOp Op>
void plain_copy(const T *src, std::size_t lds, T *dst, std::size_t ldd, std::size_t m,
                std::size_t n) {
  for (std::size_t i = 0; i < m; ++i)
    for (std::size_t j = 0; j < n; ++j) dst[j * ldd + i] = apply<Op>(src[i * lds + j]);
}

template <class T, ElementOp Op>
void plain_swap(T *a, T *b, std::size_t ld, std::size_t m, std::size_t n) {
  for (std::size_t i = 0; i < m; ++i)
    for (std::size_t j = 0; j < n; ++j) {
      const T x = a[i * ld + j];
      a[i * ld + j] = apply<Op>(b[j * ld + i]);
      b[j * ld + i] = apply<Op>(x);
    }
}

template <class T, ElementOp Op>
void plain_diag(T *a, std::size_t ld, std::size_t m) {
  for (std::size_t i = 0; i < m; ++i) {
    a[i * ld + i] = apply<Op>(a[i * ld + i]);
    for (std::size_t j = i + 1; j < m; ++j) {
      const T x = a[i * ld + j];
      a[i * ld + j] = apply<Op>(a[j * ld + i]);
      a[j * ld + i] = apply<Op>(x);
    }
  }
}

template <class T, ElementOp Op>
TransposeKernels<T> vector_kernels(TransposePath path) {
  if (path != TransposePath::kSse2) return {};
  if constexpr (std::is_same_v<T, float>) {
    return sse2::transpose_kernels_f();
  } else if constexpr (Op == ElementOp::kCopy) {
    return sse2::transpose_kernels_c();
  } else {
    return sse2::transpose_kernels_cc();
  }
}

TransposePath choose_path() {
  const int type = cpu::blas_type();
  if (type == 0) return TransposePath::kPlain;
  return TransposePath::kSse2;
}

// Columns per panel of a transposition, a multiple of every tile.
constexpr std::size_t kPanel = 512;

bool in_part(std::size_t i, std::size_t j, Triangle part, bool diag) {
  if (i == j) return diag;
  return part == Triangle::kUpper ? j > i : j < i;
}

}  // namespace

// ---- kernel choice ------------------------------------------------------------------

TransposePath transpose_path() {
  static const TransposePath path = choose_path();
  return path;
}

template <class T, ElementOp Op>
TransposeKernels<T> transpose_kernels(TransposePath path) {
  if (path == TransposePath::kPlain)
    return {&plain_copy<T, Op>, &plain_swap<T, Op>, &plain_diag<T, Op>};
  return vector_kernels<T, Op>(path);
}

template <class T, ElementOp Op>
const TransposeKernels<T> &transpose_kernels() {
  static const TransposeKernels<T> kernels = transpose_kernels<T, Op>(transpose_path());
  return kernels;
}

// ---- triangles ----------------------------------------------------------------------

// Row i's part is one contiguous run of columns: [lo, hi).
template <class T>
void zero_triangle(T *a, std::size_t rows, std::size_t cols, Triangle part, bool diag) {
  for (std::size_t i = 0; i < rows; ++i) {
    T *row = a + i * cols;
    if (part == Triangle::kUpper) {
      const std::size_t lo = std::min(cols, diag ? i : i + 1);
      std::fill(row + lo, row + cols, T(0));
    } else {
      const std::size_t hi = std::min(cols, diag ? i + 1 : i);
      std::fill(row, row + hi, T(0));
    }
  }
}

template <class T>
void copy_triangle(const T *src, T *dst, std::size_t rows, std::size_t cols, Triangle part,
                   bool diag) {
  for (std::size_t i = 0; i < rows; ++i) {
    const T *s = src + i * cols;
    T *d = dst + i * cols;
    for (std::size_t j = 0; j < cols; ++j) d[j] = in_part(i, j, part, diag) ? s[j] : T(0);
  }
}

// ---- exchanges ----------------------------------------------------------------------

template <class T>
void col_exchange(T *a, std::size_t rows, std::size_t cols, std::size_t c1, std::size_t c2) {
  if (c1 >= cols || c2 >= cols || c1 == c2) return;
  for (std::size_t i = 0; i < rows; ++i) std::swap(a[i * cols + c1], a[i * cols + c2]);
}

template <class T>
void row_exchange(T *a, std::size_t rows, std::size_t cols, std::size_t r1, std::size_t r2) {
  if (r1 >= rows || r2 >= rows || r1 == r2) return;
  std::swap_ranges(a + r1 * cols, a + r1 * cols + cols, a + r2 * cols);
}

// ---- transpositions -----------------------------------------------------------------

// Tile by tile. The columns are taken a panel at a time (the panel's
// destination rows stay within reach of the address translation cache while
// every band of source rows passes), and within a panel a band of source rows
// at a time. Each tile is transposed into a small contiguous buffer and
// written out by whole rows: with the power-of-two row lengths common in
// practice, the destination's rows would otherwise all fall on the same cache
// sets.
template <class T, ElementOp Op>
void transpose(const T *src, T *dst, std::size_t rows, std::size_t cols) {
  if (rows == 0 || cols == 0) return;
  const TransposeKernels<T> &k = transpose_kernels<T, Op>();
  constexpr std::size_t tile = kTile<T>;
  // Left uninitialised (complex elements would be zeroed on construction);
  // std::complex<float> is laid out as two floats.
  alignas(64) float raw[tile * tile * sizeof(T) / sizeof(float)];
  T *buf = reinterpret_cast<T *>(raw);
  for (std::size_t j0 = 0; j0 < cols; j0 += kPanel) {
    const std::size_t j1 = std::min(cols, j0 + kPanel);
    for (std::size_t i = 0; i < rows; i += tile) {
      const std::size_t m = std::min(tile, rows - i);
      for (std::size_t j = j0; j < j1; j += tile) {
        const std::size_t n = std::min(tile, j1 - j);
        k.copy(src + i * cols + j, cols, buf, tile, m, n);
        for (std::size_t r = 0; r < n; ++r)
          std::memcpy(static_cast<void *>(dst + (j + r) * rows + i), buf + r * tile, m * sizeof(T));
      }
    }
  }
}

// In place: the diagonal tiles transpose themselves, the tiles above the
// diagonal trade places with their mirror images below.
template <class T, ElementOp Op>
void transpose_square(const T *src, T *dst, std::size_t n) {
  if (n == 0) return;
  if (src != dst) {
    transpose<T, Op>(src, dst, n, n);
    return;
  }
  const TransposeKernels<T> &k = transpose_kernels<T, Op>();
  constexpr std::size_t tile = kTile<T>;
  for (std::size_t i = 0; i < n; i += tile) {
    const std::size_t m = std::min(tile, n - i);
    k.diag(dst + i * n + i, n, m);
    for (std::size_t j = i + tile; j < n; j += tile)
      k.swap(dst + i * n + j, dst + j * n + i, n, m, std::min(tile, n - j));
  }
}

// ---- resize and sub-matrix ----------------------------------------------------------

// In place the rows move towards their new starts: forwards when rows shrink
// (each row's new place ends before the next old row begins), backwards when
// they grow (each row's new place starts after the old row ends). The rows
// beyond the source start past the end of what the copy reads or writes.
template <class T>
void resize(const T *src, T *dst, std::size_t src_rows, std::size_t src_cols, std::size_t dst_rows,
            std::size_t dst_cols) {
  if (dst_rows == 0 || dst_cols == 0) return;
  const std::size_t rows = std::min(src_rows, dst_rows);
  const std::size_t cols = std::min(src_cols, dst_cols);
  auto copy_row = [&](std::size_t i) {
    T *d = dst + i * dst_cols;
    if (cols > 0) std::memmove(static_cast<void *>(d), src + i * src_cols, cols * sizeof(T));
    std::fill(d + cols, d + dst_cols, T(0));
  };
  if (dst_cols <= src_cols) {
    for (std::size_t i = 0; i < rows; ++i) copy_row(i);
  } else {
    for (std::size_t i = rows; i-- > 0;) copy_row(i);
  }
  std::fill(dst + rows * dst_cols, dst + dst_rows * dst_cols, T(0));
}

template <class T>
void copy_submatrix(const T *src, T *dst, std::size_t src_rows, std::size_t src_cols,
                    std::size_t row0, std::size_t col0, std::size_t rows, std::size_t cols) {
  if (rows == 0 || cols == 0) return;
  if (row0 > src_rows || rows > src_rows - row0 || col0 > src_cols || cols > src_cols - col0)
    return;
  for (std::size_t i = 0; i < rows; ++i) {
    const T *s = src + (row0 + i) * src_cols + col0;
    std::copy(s, s + cols, dst + i * cols);
  }
}

// ---- instantiations -----------------------------------------------------------------

#define ORB_HOST_MATRIX(T)                                                                     \
  template void zero_triangle<T>(T *, std::size_t, std::size_t, Triangle, bool);               \
  template void copy_triangle<T>(const T *, T *, std::size_t, std::size_t, Triangle, bool);    \
  template void col_exchange<T>(T *, std::size_t, std::size_t, std::size_t, std::size_t);      \
  template void row_exchange<T>(T *, std::size_t, std::size_t, std::size_t, std::size_t);      \
  template void transpose<T, ElementOp::kCopy>(const T *, T *, std::size_t, std::size_t);      \
  template void transpose_square<T, ElementOp::kCopy>(const T *, T *, std::size_t);            \
  template void resize<T>(const T *, T *, std::size_t, std::size_t, std::size_t, std::size_t); \
  template void copy_submatrix<T>(const T *, T *, std::size_t, std::size_t, std::size_t,       \
                                  std::size_t, std::size_t, std::size_t);                      \
  template TransposeKernels<T> transpose_kernels<T, ElementOp::kCopy>(TransposePath);          \
  template const TransposeKernels<T> &transpose_kernels<T, ElementOp::kCopy>();

ORB_HOST_MATRIX(float)
ORB_HOST_MATRIX(c8)
#undef ORB_HOST_MATRIX

template void transpose<c8, ElementOp::kConj>(const c8 *, c8 *, std::size_t, std::size_t);
template void transpose_square<c8, ElementOp::kConj>(const c8 *, c8 *, std::size_t);
template TransposeKernels<c8> transpose_kernels<c8, ElementOp::kConj>(TransposePath);
template const TransposeKernels<c8> &transpose_kernels<c8, ElementOp::kConj>();

}  // namespace orb::host
