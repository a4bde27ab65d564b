// Single-precision GEMM kernels compiled for the sse2 level.
#define ORB_SSE_LEVEL sse2
#include "blas/kernel/gemm_sse.inc"
