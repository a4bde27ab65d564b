// The vector register file the kernels are written for. A 32-bit process
// has eight vector registers (xmm/ymm/zmm 0 to 7) whatever the processor
// offers; its kernels are blocked for eight. The proxy build of those kernels
// for x86-64 (on machines that cannot run 32-bit programs) defines
// ORB_EIGHT_REGISTERS itself and reserves the other registers.
#pragma once

#if !defined(__x86_64__) && !defined(ORB_EIGHT_REGISTERS)
#define ORB_EIGHT_REGISTERS 1
#endif
