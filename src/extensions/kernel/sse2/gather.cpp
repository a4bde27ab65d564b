// The gather, scatter and mask families on the sse2 path.
#define ORB_HOST_TABLE kGatherSse2
#include "extensions/kernel/gather.inc"
