// Single-precision GEMM kernels compiled for the sse3 level. Processor type 3
// runs them in square blocks of 240 rows and columns of C (480 where the
// caches are large, see sse_packed_block) over inner blocks of 64.
#define ORB_SSE_LEVEL sse3
#define ORB_SSE_BLOCKING 240, 64, 240
#include "blas/kernel/gemm_sse.inc"
