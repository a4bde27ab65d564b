// The gather, scatter and mask families on the avx2 path.
#define ORB_HOST_TABLE kGatherAvx2
#include "extensions/kernel/gather.inc"
