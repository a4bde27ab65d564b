// The sign families on the avx512 path.
#define ORB_HOST_TABLE kSignAvx512
#include "extensions/kernel/sign.inc"
