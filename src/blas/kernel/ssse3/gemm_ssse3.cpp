// Single-precision GEMM kernels compiled for the ssse3 level.
#define ORB_SSE_LEVEL ssse3
#include "blas/kernel/gemm_sse.inc"
