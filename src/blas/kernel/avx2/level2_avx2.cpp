// Level-2 kernels on 256-bit vectors with fused multiply-add (the body is the
// sse2 folder's, compiled here with this folder's flags).
#define ORB_L2_LEVEL avx2
#include "blas/kernel/sse2/level2_sse2.cpp"
