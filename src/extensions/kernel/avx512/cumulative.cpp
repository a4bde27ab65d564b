// The cumulative families on the avx512 path.
#define ORB_HOST_TABLE kCumulativeAvx512
#include "extensions/kernel/cumulative.inc"
