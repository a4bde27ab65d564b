// The row-major matrix routines against plain loops, through their exported
// names, and the vector transposition kernels against the plain ones.
#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <cstring>
#include <tuple>
#include <utility>
#include <vector>

#include "extensions/matrix_kernels.h"
#include "orb.h"
#include "support/child.h"

namespace {

using c8 = std::complex<float>;
using orb::host::ElementOp;
using orb::host::TransposeKernels;
using orb::host::TransposePath;

orb_complex8 *ox(c8 *p) {
  return reinterpret_cast<orb_complex8 *>(p);
}
const orb_complex8 *ox(const c8 *p) {
  return reinterpret_cast<const orb_complex8 *>(p);
}

// Every element distinct; complex ones with a nonzero imaginary part.
template <class T>
std::vector<T> numbered(std::size_t rows, std::size_t cols, float base = 0) {
  std::vector<T> a(rows * cols);
  for (std::size_t i = 0; i < rows; ++i)
    for (std::size_t j = 0; j < cols; ++j) {
      const float v = base + static_cast<float>(i * 1000 + j) + 0.5f;
      if constexpr (std::is_same_v<T, float>)
        a[i * cols + j] = v;
      else
        a[i * cols + j] = c8(v, -v - 0.25f);
    }
  return a;
}

template <class T>
bool same_bits(const std::vector<T> &a, const std::vector<T> &b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

template <class T>
std::vector<T> transposed(const std::vector<T> &a, std::size_t rows, std::size_t cols, bool conj) {
  std::vector<T> t(rows * cols);
  for (std::size_t i = 0; i < rows; ++i)
    for (std::size_t j = 0; j < cols; ++j) {
      T x = a[i * cols + j];
      if constexpr (!std::is_same_v<T, float>)
        if (conj) x = std::conj(x);
      t[j * rows + i] = x;
    }
  return t;
}

// Every shape the tiling has to get right: single rows and columns, empty,
// odd, and either side of a tile (64 floats, 32 complex elements).
const std::pair<unsigned, unsigned> kShapes[] = {{1, 1},   {1, 37},   {37, 1},   {0, 5},   {5, 0},
                                                 {7, 13},  {33, 65},  {32, 32},  {64, 64}, {65, 63},
                                                 {31, 97}, {130, 67}, {129, 200}};

TEST(HostMatrix, TransposeAndAdjoint) {
  for (auto [r, c] : kShapes) {
    SCOPED_TRACE(testing::Message() << r << " x " << c);
    const auto f = numbered<float>(r, c);
    std::vector<float> ft(f.size(), -1);
    TransposeMatrix_s(f.data(), ft.data(), r, c);
    EXPECT_TRUE(same_bits(ft, transposed(f, r, c, false)));

    const auto z = numbered<c8>(r, c);
    std::vector<c8> zt(z.size(), -1), za(z.size(), -1);
    TransposeMatrixc_s(ox(z.data()), ox(zt.data()), r, c);
    AdjungateMatrixc_s(ox(z.data()), ox(za.data()), r, c);
    EXPECT_TRUE(same_bits(zt, transposed(z, r, c, false)));
    EXPECT_TRUE(same_bits(za, transposed(z, r, c, true)));
  }
}

TEST(HostMatrix, SquareInPlaceAndApart) {
  for (unsigned n : {0u, 1u, 2u, 3u, 7u, 31u, 32u, 33u, 63u, 64u, 65u, 129u, 200u}) {
    SCOPED_TRACE(testing::Message() << "n = " << n);
    auto f = numbered<float>(n, n);
    const auto fref = transposed(f, n, n, false);
    std::vector<float> fo(f.size());
    TransposeSquareMatrix_s(f.data(), fo.data(), n);
    EXPECT_TRUE(same_bits(fo, fref));
    TransposeSquareMatrix_s(f.data(), f.data(), n);
    EXPECT_TRUE(same_bits(f, fref));

    auto z = numbered<c8>(n, n), w = z;
    const auto zref = transposed(z, n, n, false), wref = transposed(z, n, n, true);
    std::vector<c8> wo(w.size());
    AdjungateSquareMatrixc_s(ox(w.data()), ox(wo.data()), n);
    EXPECT_TRUE(same_bits(wo, wref));
    TransposeSquareMatrixc_s(ox(z.data()), ox(z.data()), n);
    AdjungateSquareMatrixc_s(ox(w.data()), ox(w.data()), n);
    EXPECT_TRUE(same_bits(z, zref));
    EXPECT_TRUE(same_bits(w, wref));  // the diagonal conjugated too
  }
}

// The vector kernels give the plain kernels' bits on every tile size,
// apart (copy) and in place (swap, diag), with leading dimensions wider than
// the tile.
template <class T, ElementOp Op>
void compare_kernels(TransposePath path) {
  const TransposeKernels<T> plain = orb::host::transpose_kernels<T, Op>(TransposePath::kPlain);
  const TransposeKernels<T> wide = orb::host::transpose_kernels<T, Op>(path);
  ASSERT_NE(wide.copy, nullptr);
  constexpr std::size_t tile = orb::host::kTile<T>, ld = 2 * tile + 3;
  for (std::size_t m = 1; m <= tile; m += (m < 20 ? 1 : 7))
    for (std::size_t n : {std::size_t{1}, std::size_t{3}, std::size_t{8}, m, tile - 1, tile}) {
      SCOPED_TRACE(testing::Message() << m << " x " << n);
      const auto a = numbered<T>(ld, ld);
      auto d1 = numbered<T>(ld, ld, 0.125f), d2 = d1;
      plain.copy(a.data(), ld, d1.data(), ld, m, n);
      wide.copy(a.data(), ld, d2.data(), ld, m, n);
      EXPECT_TRUE(same_bits(d1, d2)) << "copy";
      auto s1 = a, s2 = a;
      plain.swap(s1.data() + 1, s1.data() + (tile + 1) * ld, ld, m, n);
      wide.swap(s2.data() + 1, s2.data() + (tile + 1) * ld, ld, m, n);
      EXPECT_TRUE(same_bits(s1, s2)) << "swap";
      plain.diag(s1.data() + ld + 2, ld, m);
      wide.diag(s2.data() + ld + 2, ld, m);
      EXPECT_TRUE(same_bits(s1, s2)) << "diag";
    }
}

void compare_path(TransposePath path) {
  compare_kernels<float, ElementOp::kCopy>(path);
  compare_kernels<c8, ElementOp::kCopy>(path);
  compare_kernels<c8, ElementOp::kConj>(path);
}

TEST(HostMatrix, Sse2KernelsMatchPlain) {
  compare_path(TransposePath::kSse2);
}

ORB_CHILD(host_matrix_path) {
  return static_cast<int>(orb::host::transpose_path());
}

// Code-path type 0 (the override's 1) takes the plain loop, 2 and 3 SSE2.
TEST(HostMatrix, CpuTypeChoosesPath) {
  using orb::test::run_child;
  EXPECT_EQ(run_child("host_matrix_path", {{"ORB_DEBUG_CPU_TYPE", "1"}}).exit_code,
            static_cast<int>(TransposePath::kPlain));
  EXPECT_EQ(run_child("host_matrix_path", {{"ORB_DEBUG_CPU_TYPE", "3"}}).exit_code,
            static_cast<int>(TransposePath::kSse2));
}

template <class T>
void check_triangles(unsigned r, unsigned c) {
  const auto a = numbered<T>(r, c);
  for (int diag : {0, 1, 7}) {
    for (bool upper : {true, false}) {
      SCOPED_TRACE(testing::Message() << r << " x " << c << " diag " << diag << " upper " << upper);
      std::vector<T> keep(a.size()), zeroed(a.size());
      for (std::size_t i = 0; i < r; ++i)
        for (std::size_t j = 0; j < c; ++j) {
          const bool in = i == j ? diag != 0 : (upper ? j > i : j < i);
          (in ? keep : zeroed)[i * c + j] = a[i * c + j];
        }
      std::vector<T> z = a, t(a.size(), T(-9)), u = a;
      if constexpr (std::is_same_v<T, float>) {
        (upper ? ZeroUpperTriangle_s : ZeroLowerTriangle_s)(z.data(), r, c, diag);
        (upper ? UpperTriangle_s : LowerTriangle_s)(a.data(), t.data(), r, c, diag);
        (upper ? UpperTriangle_s : LowerTriangle_s)(u.data(), u.data(), r, c, diag);
      } else {
        (upper ? ZeroUpperTrianglec_s : ZeroLowerTrianglec_s)(ox(z.data()), r, c, diag);
        (upper ? UpperTrianglec_s : LowerTrianglec_s)(ox(a.data()), ox(t.data()), r, c, diag);
        (upper ? UpperTrianglec_s : LowerTrianglec_s)(ox(u.data()), ox(u.data()), r, c, diag);
      }
      EXPECT_TRUE(same_bits(z, zeroed));
      EXPECT_TRUE(same_bits(t, keep));
      EXPECT_TRUE(same_bits(u, keep));
    }
  }
}

TEST(HostMatrix, TrianglesOnAnyShape) {
  for (auto [r, c] : {std::pair{0u, 3u}, {1u, 6u}, {6u, 1u}, {5u, 5u}, {4u, 9u}, {9u, 4u}}) {
    check_triangles<float>(r, c);
    check_triangles<c8>(r, c);
  }
}

template <class T>
void check_exchanges() {
  constexpr unsigned r = 5, c = 7;
  const auto a = numbered<T>(r, c);
  auto call = [&](bool cols, unsigned x, unsigned y) {
    std::vector<T> b = a;
    if constexpr (std::is_same_v<T, float>)
      (cols ? ColExchange_s : RowExchange_s)(b.data(), r, c, x, y);
    else
      (cols ? ColExchangec_s : RowExchangec_s)(ox(b.data()), r, c, x, y);
    return b;
  };
  std::vector<T> want = a;
  for (unsigned i = 0; i < r; ++i) std::swap(want[i * c + 0], want[i * c + 6]);
  EXPECT_TRUE(same_bits(call(true, 6, 0), want));
  want = a;
  std::swap_ranges(want.begin() + 1 * c, want.begin() + 2 * c, want.begin() + 4 * c);
  EXPECT_TRUE(same_bits(call(false, 1, 4), want));
  // Equal or out-of-range indices change nothing.
  for (bool cols : {true, false}) {
    const unsigned past = cols ? c : r;
    for (auto [x, y] : {std::pair{3u, 3u}, {0u, past}, {past, 0u}, {4u, 0xFFFFFFFFu}})
      EXPECT_TRUE(same_bits(call(cols, x, y), a)) << cols << ": " << x << ", " << y;
  }
}

TEST(HostMatrix, Exchanges) {
  check_exchanges<float>();
  check_exchanges<c8>();
}

template <class T>
std::vector<T> resized(const std::vector<T> &a, unsigned sr, unsigned sc, unsigned dr,
                       unsigned dc) {
  std::vector<T> d(std::size_t{dr} * dc, T(0));
  for (unsigned i = 0; i < std::min(sr, dr); ++i)
    for (unsigned j = 0; j < std::min(sc, dc); ++j) d[i * dc + j] = a[i * sc + j];
  return d;
}

template <class T>
void resize(const T *s, T *d, unsigned sr, unsigned sc, unsigned dr, unsigned dc) {
  if constexpr (std::is_same_v<T, float>)
    ResizeMatrix_s(s, d, sr, sc, dr, dc);
  else
    ResizeMatrixc_s(ox(s), ox(d), sr, sc, dr, dc);
}

// Apart and in place (the buffer holds the larger of the two), growing and
// shrinking either way.
template <class T>
void check_resize() {
  const unsigned dims[][4] = {{4, 6, 4, 6}, {4, 6, 7, 9}, {7, 9, 4, 6}, {4, 9, 7, 3},
                              {7, 3, 4, 9}, {0, 3, 2, 2}, {3, 0, 2, 2}, {3, 3, 0, 4}};
  for (const auto &d : dims) {
    SCOPED_TRACE(testing::Message() << d[0] << "x" << d[1] << " -> " << d[2] << "x" << d[3]);
    const auto a = numbered<T>(d[0], d[1]);
    const auto want = resized(a, d[0], d[1], d[2], d[3]);
    std::vector<T> out(want.size(), T(-3));
    resize(a.data(), out.data(), d[0], d[1], d[2], d[3]);
    EXPECT_TRUE(same_bits(out, want));
    std::vector<T> buf(std::max(a.size(), want.size()) + 1, T(-5));
    std::copy(a.begin(), a.end(), buf.begin());
    resize(buf.data(), buf.data(), d[0], d[1], d[2], d[3]);
    EXPECT_TRUE(same_bits(std::vector<T>(buf.begin(), buf.begin() + want.size()), want));
    EXPECT_EQ(buf.back(), T(-5));
  }
}

TEST(HostMatrix, ResizeApartAndInPlace) {
  check_resize<float>();
  check_resize<c8>();
}

template <class T>
void check_submatrix() {
  constexpr unsigned sr = 6, sc = 8;
  const auto a = numbered<T>(sr, sc);
  auto call = [&](unsigned r0, unsigned c0, unsigned rows, unsigned cols) {
    std::vector<T> d(std::size_t{rows} * cols + 1, T(-1));
    if constexpr (std::is_same_v<T, float>)
      CopySubMatrix_s(a.data(), d.data(), sr, sc, r0, c0, rows, cols);
    else
      CopySubMatrixc_s(ox(a.data()), ox(d.data()), sr, sc, r0, c0, rows, cols);
    return d;
  };
  for (auto [r0, c0, rows, cols] :
       {std::tuple{1u, 2u, 3u, 4u}, {0u, 0u, 6u, 8u}, {5u, 7u, 1u, 1u}}) {
    std::vector<T> want(std::size_t{rows} * cols + 1, T(-1));
    for (unsigned i = 0; i < rows; ++i)
      for (unsigned j = 0; j < cols; ++j) want[i * cols + j] = a[(r0 + i) * sc + c0 + j];
    EXPECT_TRUE(same_bits(call(r0, c0, rows, cols), want)) << r0 << ", " << c0;
  }
  // Reaching outside src, also where row0 + rows wraps in 32 bits: dst untouched.
  for (auto [r0, c0, rows, cols] : {std::tuple{5u, 0u, 2u, 1u},
                                    {0u, 6u, 1u, 3u},
                                    {0xFFFFFFFFu, 0u, 2u, 1u},
                                    {0u, 1u, 1u, 0xFFFFFFFFu}}) {
    std::vector<T> out(4, T(-1));
    if constexpr (std::is_same_v<T, float>)
      CopySubMatrix_s(a.data(), out.data(), sr, sc, r0, c0, rows, cols);
    else
      CopySubMatrixc_s(ox(a.data()), ox(out.data()), sr, sc, r0, c0, rows, cols);
    EXPECT_TRUE(same_bits(out, std::vector<T>(4, T(-1)))) << r0 << ", " << c0;
  }
}

TEST(HostMatrix, CopySubMatrixBounds) {
  check_submatrix<float>();
  check_submatrix<c8>();
}

}  // namespace
