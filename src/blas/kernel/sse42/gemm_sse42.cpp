// Single-precision GEMM kernels compiled for the sse42 level.
#define ORB_SSE_LEVEL sse42
#include "blas/kernel/gemm_sse.inc"
