// General matrix multiply: the single-precision serial kernel with its
// processor paths, the threaded driver (module gemm_omp) and its siblings in
// the other precisions. The single-precision kernel and the threaded driver
// take the published argument list by reference, the other serial kernels
// take values.
#pragma once

#include <complex>

#include "blas/kernel/gemm.h"
#include "common/options.h"
#include "common/scalar.h"

namespace orb::blas {

// ---- the serial kernel ---------------------------------------------------------

// C := alpha op(A) op(B) + beta C on the calling thread, by processor type.
void sgemm_serial(const char *transa, const char *transb, const int *m, const int *n, const int *k,
                  const float *alpha, const float *a, const int *lda, const float *b,
                  const int *ldb, const float *beta, float *c, const int *ldc);

// The wide-kernel path's pieces (real code for processor types 4 and 5 only;
// for the other types they return at once).
// C := alpha op(A) op(B) + C: beta is not applied (the driver scaled C first).
void sgemm_serial_acc(const char *transa, const char *transb, const int *m, const int *n,
                      const int *k, const float *alpha, const float *a, const int *lda,
                      const float *b, const int *ldb, const float *beta, float *c, const int *ldc);
// Called by every thread of a team with the whole product: C(rows, :) +=
// alpha op(A)(rows, :) op(B), the team packing op(B) into the shared buffer
// together. `params` is what sgemm_wide_params wrote.
void sgemm_serial_packed(const char *transa, const char *transb, const int *m, const int *n,
                         const int *k, const float *alpha, const float *a, const int *lda,
                         const float *b, const int *ldb, const float *beta, float *c,
                         const int *ldc, float *shared, const int *row0, const int *rows,
                         const int *params);
// The blocking of the packed path for a product and a team: params[0] the
// inner block, params[1] the row block. Untouched for types 0, 2 and 3.
void sgemm_wide_params(const int *m, const int *n, const int *k, const int *nt, int *params,
                       int *reserved);

// The other precisions' serial kernels.
template <class T>
void gemm_serial(Op ta, Op tb, int m, int n, int k, T alpha, const T *a, int lda, const T *b,
                 int ldb, T beta, T *c, int ldc);

// The packed kernel and blocking the serial GEMM of T uses for large products
// on this processor, for drivers that pack their operands themselves.
template <class T>
kernel::GemmShape<T> packed_shape();

// ---- the threaded drivers (module gemm_omp) --------------------------------------

void orb_blas_sgemm(const char *transa, const char *transb, const int *m, const int *n,
                    const int *k, const float *alpha, const float *a, const int *lda,
                    const float *b, const int *ldb, const float *beta, float *c, const int *ldc);
void orb_blas_dgemm(const char *transa, const char *transb, const int *m, const int *n,
                    const int *k, const double *alpha, const double *a, const int *lda,
                    const double *b, const int *ldb, const double *beta, double *c, const int *ldc);
void orb_blas_cgemm(const char *transa, const char *transb, const int *m, const int *n,
                    const int *k, const c8 *alpha, const c8 *a, const int *lda, const c8 *b,
                    const int *ldb, const c8 *beta, c8 *c, const int *ldc);
void orb_blas_zgemm(const char *transa, const char *transb, const int *m, const int *n,
                    const int *k, const c16 *alpha, const c16 *a, const int *lda, const c16 *b,
                    const int *ldb, const c16 *beta, c16 *c, const int *ldc);

// ---- decisions, exposed for tests ------------------------------------------------

// Types 2 and 3: direct or packed kernel (m, n > 0 and alpha != 0).
enum class SsePath { kDirect, kPacked };
SsePath choose_sse_path(bool nota, bool notb, int m, int n, int k);
// Types 2 and 3: the packed kernel's main block for a cache class.
int sse_packed_block(int cache_class);
// Types 4 and 5: which of the three kernels.
enum class PanelKernel { kLargePanel, kNormal, kPreSse41 };
PanelKernel choose_panel_kernel(int type, bool sse41, int n, int k);

// The threaded driver's decision once the thread count nt (>= 2) is known and
// the product is not tiny: whether to split, and the split bound N'.
struct SplitDecision {
  bool parallel;
  int bound;
};
SplitDecision decide_split(int m, int n, int k, int nt);
// Whether a product is small enough never to ask for a thread count.
inline bool gemm_is_tiny(int m, int n, int k) {
  return m <= 16 && n <= 16 && k <= 16;
}
// How often the drivers have asked for a thread count (for tests).
long gemm_thread_queries();
// The shared panel block of the wide path for a processor type and cache table.
int wide_shared_block(int type, unsigned cache_count, unsigned third_cache_size);

}  // namespace orb::blas
