// The sign families on the sse2 path.
#define ORB_HOST_TABLE kSignSse2
#include "extensions/kernel/sign.inc"
