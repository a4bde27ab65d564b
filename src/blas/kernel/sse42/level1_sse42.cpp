// Level-1 vector kernels compiled for the sse42 level.
#define ORB_L1_LEVEL sse42
#include "blas/kernel/level1_simd.inc"
