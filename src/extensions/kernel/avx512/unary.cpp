// The unary families on the avx512 path.
#define ORB_HOST_TABLE kUnaryAvx512
#include "extensions/kernel/unary.inc"
