// The exported row-major matrix routines: each forwards to its template
// (extensions/matrix.h) with the counts widened to 64 bits.
#include <complex>
#include <cstddef>

#include "extensions/matrix.h"
#include "orb.h"

namespace {

using orb::host::ElementOp;
using orb::host::Triangle;
using c8 = std::complex<float>;
using std::size_t;

static_assert(sizeof(orb_complex8) == sizeof(c8));

const c8 *cx(const orb_complex8 *p) {
  return reinterpret_cast<const c8 *>(p);
}
c8 *cx(orb_complex8 *p) {
  return reinterpret_cast<c8 *>(p);
}

}  // namespace

extern "C" {

ORB_API void ZeroUpperTriangle_s(float *a, unsigned int rows, unsigned int cols, int diag) {
  orb::host::zero_triangle<float>(a, rows, cols, Triangle::kUpper, diag != 0);
}
ORB_API void ZeroLowerTriangle_s(float *a, unsigned int rows, unsigned int cols, int diag) {
  orb::host::zero_triangle<float>(a, rows, cols, Triangle::kLower, diag != 0);
}
ORB_API void UpperTriangle_s(const float *src, float *dst, unsigned int rows, unsigned int cols,
                             int diag) {
  orb::host::copy_triangle<float>(src, dst, rows, cols, Triangle::kUpper, diag != 0);
}
ORB_API void LowerTriangle_s(const float *src, float *dst, unsigned int rows, unsigned int cols,
                             int diag) {
  orb::host::copy_triangle<float>(src, dst, rows, cols, Triangle::kLower, diag != 0);
}
ORB_API void ColExchange_s(float *a, unsigned int rows, unsigned int cols, unsigned int c1,
                           unsigned int c2) {
  orb::host::col_exchange<float>(a, rows, cols, c1, c2);
}
ORB_API void RowExchange_s(float *a, unsigned int rows, unsigned int cols, unsigned int r1,
                           unsigned int r2) {
  orb::host::row_exchange<float>(a, rows, cols, r1, r2);
}
ORB_API void TransposeMatrix_s(const float *src, float *dst, unsigned int rows, unsigned int cols) {
  orb::host::transpose<float, ElementOp::kCopy>(src, dst, rows, cols);
}
ORB_API void TransposeSquareMatrix_s(const float *src, float *dst, unsigned int n) {
  orb::host::transpose_square<float, ElementOp::kCopy>(src, dst, n);
}
ORB_API void ResizeMatrix_s(const float *src, float *dst, unsigned int src_rows,
                            unsigned int src_cols, unsigned int dst_rows, unsigned int dst_cols) {
  orb::host::resize<float>(src, dst, src_rows, src_cols, dst_rows, dst_cols);
}
ORB_API void CopySubMatrix_s(const float *src, float *dst, unsigned int src_rows,
                             unsigned int src_cols, unsigned int row0, unsigned int col0,
                             unsigned int rows, unsigned int cols) {
  orb::host::copy_submatrix<float>(src, dst, src_rows, src_cols, row0, col0, rows, cols);
}

ORB_API void ZeroUpperTrianglec_s(orb_complex8 *a, unsigned int rows, unsigned int cols, int diag) {
  orb::host::zero_triangle<c8>(cx(a), rows, cols, Triangle::kUpper, diag != 0);
}
ORB_API void ZeroLowerTrianglec_s(orb_complex8 *a, unsigned int rows, unsigned int cols, int diag) {
  orb::host::zero_triangle<c8>(cx(a), rows, cols, Triangle::kLower, diag != 0);
}
ORB_API void UpperTrianglec_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int rows,
                              unsigned int cols, int diag) {
  orb::host::copy_triangle<c8>(cx(src), cx(dst), rows, cols, Triangle::kUpper, diag != 0);
}
ORB_API void LowerTrianglec_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int rows,
                              unsigned int cols, int diag) {
  orb::host::copy_triangle<c8>(cx(src), cx(dst), rows, cols, Triangle::kLower, diag != 0);
}
ORB_API void ColExchangec_s(orb_complex8 *a, unsigned int rows, unsigned int cols, unsigned int c1,
                            unsigned int c2) {
  orb::host::col_exchange<c8>(cx(a), rows, cols, c1, c2);
}
ORB_API void RowExchangec_s(orb_complex8 *a, unsigned int rows, unsigned int cols, unsigned int r1,
                            unsigned int r2) {
  orb::host::row_exchange<c8>(cx(a), rows, cols, r1, r2);
}
ORB_API void TransposeMatrixc_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int rows,
                                unsigned int cols) {
  orb::host::transpose<c8, ElementOp::kCopy>(cx(src), cx(dst), rows, cols);
}
ORB_API void TransposeSquareMatrixc_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int n) {
  orb::host::transpose_square<c8, ElementOp::kCopy>(cx(src), cx(dst), n);
}
ORB_API void ResizeMatrixc_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int src_rows,
                             unsigned int src_cols, unsigned int dst_rows, unsigned int dst_cols) {
  orb::host::resize<c8>(cx(src), cx(dst), src_rows, src_cols, dst_rows, dst_cols);
}
ORB_API void CopySubMatrixc_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int src_rows,
                              unsigned int src_cols, unsigned int row0, unsigned int col0,
                              unsigned int rows, unsigned int cols) {
  orb::host::copy_submatrix<c8>(cx(src), cx(dst), src_rows, src_cols, row0, col0, rows, cols);
}
ORB_API void AdjungateMatrixc_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int rows,
                                unsigned int cols) {
  orb::host::transpose<c8, ElementOp::kConj>(cx(src), cx(dst), rows, cols);
}
ORB_API void AdjungateSquareMatrixc_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int n) {
  orb::host::transpose_square<c8, ElementOp::kConj>(cx(src), cx(dst), n);
}

}  // extern "C"
