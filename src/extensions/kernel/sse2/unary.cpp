// The unary families on the sse2 path.
#define ORB_HOST_TABLE kUnarySse2
#include "extensions/kernel/unary.inc"
