// The arithmetic families on the plain path.
#define ORB_HOST_PLAIN 1
#define ORB_HOST_TABLE kArithPlain
#include "extensions/kernel/arith.inc"
