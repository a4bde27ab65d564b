// The sign families on the avx2 path.
#define ORB_HOST_TABLE kSignAvx2
#include "extensions/kernel/sign.inc"
