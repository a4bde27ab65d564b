// The gather, scatter and mask families on the avx512 path.
#define ORB_HOST_TABLE kGatherAvx512
#include "extensions/kernel/gather.inc"
