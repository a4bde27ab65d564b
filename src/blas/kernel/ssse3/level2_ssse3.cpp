// Level-2 kernels compiled for the ssse3 level (the body is the sse2 folder's).
#define ORB_L2_LEVEL ssse3
#include "blas/kernel/sse2/level2_sse2.cpp"
