// Single-precision GEMM kernels compiled for the ssse3 level. Processor type 4
// runs them in blocks of 120 rows of A and panels of 2040 columns of B (twice
// as wide for the large-panel kernel) over inner blocks of 256.
#define ORB_SSE_LEVEL ssse3
#define ORB_SSE_BLOCKING 120, 256, 2040
#include "blas/kernel/gemm_sse.inc"
