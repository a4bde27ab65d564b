/* Compiles the public header as C and makes one call through it: the complex
 * types must have the layout of two consecutive reals, and DSECND (a double
 * result, no arguments) must be callable from C and never run backwards. */
#include <stdio.h>

#include "orb.h"

typedef char orb_complex8_is_8_bytes[sizeof(orb_complex8) == 8 ? 1 : -1];
typedef char orb_complex16_is_16_bytes[sizeof(orb_complex16) == 16 ? 1 : -1];

int main(void) {
  double t0 = DSECND();
  double t1 = DSECND();
  if (!(t1 - t0 >= 0.0)) {
    printf("DSECND went backwards: %.17g then %.17g\n", t0, t1);
    printf("0 passed, 1 failed\n");
    return 1;
  }
  printf("1 passed, 0 failed\n");
  return 0;
}
