/* Linked the way a project built with Microsoft's tools links ORB: through
   orb.lib, with no C runtime at all. It calls a cdecl routine, a Fortran-
   convention one and a callee-pops one, and returns 0 when all three
   answer. */
#include "orb.h"

/* The C runtime's mark that a program uses floating point, which the
   compiler references and this program, having no runtime, provides. */
int _fltused = 0;

int orb_entry(void) {
  int index = 4;
  float x[3] = {1.0f, 2.0f, 3.0f};
  int n = 3, one = 1, slot = 0;
  const float eps = R1MACH(&index);
  const float dot = sdot(&n, x, &one, x, &one);
  SetValToPtr_s(&slot, 7);
  return (eps > 0.0f && eps < 1e-6f && dot == 14.0f && slot == 7) ? 0 : 1;
}
