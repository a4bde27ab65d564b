// The unary families on the avx2 path.
#define ORB_HOST_TABLE kUnaryAvx2
#include "extensions/kernel/unary.inc"
