// The arithmetic families on the avx2 path.
#define ORB_HOST_TABLE kArithAvx2
#include "extensions/kernel/arith.inc"
