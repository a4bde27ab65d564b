// The arithmetic families on the avx512 path.
#define ORB_HOST_TABLE kArithAvx512
#include "extensions/kernel/arith.inc"
