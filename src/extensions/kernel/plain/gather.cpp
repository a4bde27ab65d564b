// The gather, scatter and mask families on the plain path.
#define ORB_HOST_PLAIN 1
#define ORB_HOST_TABLE kGatherPlain
#include "extensions/kernel/gather.inc"
