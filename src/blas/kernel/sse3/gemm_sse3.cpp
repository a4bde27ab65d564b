// Single-precision GEMM kernels compiled for the sse3 level.
#define ORB_SSE_LEVEL sse3
#include "blas/kernel/gemm_sse.inc"
