// Level-1 vector kernels compiled for the sse2 level.
#define ORB_L1_LEVEL sse2
#include "blas/kernel/level1_simd.inc"
