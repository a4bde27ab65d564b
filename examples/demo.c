/* A first look at ORB: the wall-clock timer and an argument-error report. */
#include <stdio.h>

#include "orb.h"

int main(void) {
  double t0 = DSECND();
  volatile double s = 0;
  for (int i = 1; i <= 20000000; ++i) s += 1.0 / i;
  double t1 = DSECND();
  printf("harmonic sum %.6f in %.3f s (DSECND)\n", s, t1 - t0);

  /* A bad argument is reported, never fatal: the routine's name, the
     parameter number and the text come from the message catalogue. */
  int code = 4;
  XERBLA("SGEMM ", &code, 6);
  printf("the program goes on after the report\n");
  return 0;
}
