// The sign families on the plain path.
#define ORB_HOST_PLAIN 1
#define ORB_HOST_TABLE kSignPlain
#include "extensions/kernel/sign.inc"
