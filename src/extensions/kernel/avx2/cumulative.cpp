// The cumulative families on the avx2 path.
#define ORB_HOST_TABLE kCumulativeAvx2
#include "extensions/kernel/cumulative.inc"
