// The cumulative families on the sse2 path.
#define ORB_HOST_TABLE kCumulativeSse2
#include "extensions/kernel/cumulative.inc"
