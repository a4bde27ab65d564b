// Level-1 vector kernels compiled for the avx2 level.
#define ORB_L1_LEVEL avx2
#include "blas/kernel/level1_simd.inc"
