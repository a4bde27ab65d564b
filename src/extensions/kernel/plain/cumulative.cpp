// The cumulative families on the plain path.
#define ORB_HOST_PLAIN 1
#define ORB_HOST_TABLE kCumulativePlain
#include "extensions/kernel/cumulative.inc"
