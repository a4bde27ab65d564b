// Level-1 vector kernels compiled for the sse3 level.
#define ORB_L1_LEVEL sse3
#include "blas/kernel/level1_simd.inc"
