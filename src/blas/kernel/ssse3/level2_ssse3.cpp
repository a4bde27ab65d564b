// Level-2 kernels compiled for the ssse3 level (the body is the sse2 folder's).
// Also the type-4 variants, which take the 256-bit kernels where they can run.
#define ORB_L2_LEVEL ssse3
#define ORB_L2_WIDE ssse3_or_avx2
#include "blas/kernel/sse2/level2_sse2.cpp"
