// Level-2 kernels compiled for the sse42 level (the body is the sse2 folder's).
// Also the type-5 variants, which take the 256-bit kernels where they can run.
#define ORB_L2_LEVEL sse42
#define ORB_L2_WIDE sse42_or_avx2
#include "blas/kernel/sse2/level2_sse2.cpp"
