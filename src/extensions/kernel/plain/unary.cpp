// The unary families on the plain path.
#define ORB_HOST_PLAIN 1
#define ORB_HOST_TABLE kUnaryPlain
#include "extensions/kernel/unary.inc"
