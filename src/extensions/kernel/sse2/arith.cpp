// The arithmetic families on the sse2 path.
#define ORB_HOST_TABLE kArithSse2
#include "extensions/kernel/arith.inc"
