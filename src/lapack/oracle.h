// The block-size oracle: the library's answers to the tuning questions a
// LAPACK routine asks (block size, smallest useful block, crossover to the
// unblocked code, and the scheduling values of the threaded factorizations),
// in place of ILAENV.
//
// The argument list is ILAENV's: the query number, the routine's name (its
// precision letter first, "SGETRF"), an option string, four integer problem
// arguments (-1 when unused) and the lengths of the two strings. The answers
// for a routine are one row of the table in oracle.cpp; the LU's threaded
// answers depend on the thread count, passed as the third problem argument.
#pragma once

#include "lapack/names.h"

namespace orb::lapack {

enum Query : int {
  kBlockSize = 1,     // nb
  kMinBlockSize = 2,  // the smallest nb worth a blocked code
  kCrossover = 3,     // below this order the unblocked (or serial) code runs
  kShifts = 4,        // obsolete: shifts of the old nonsymmetric QR
  kMinColumns = 5,    // the smallest column block
  kSvdCrossover = 6,  // rows against columns before the SVD's QR step
  kProcessors = 7,    // the thread count
  kMultishift = 8,    // order above which the multishift QR runs
  kSubproblem = 9,    // the largest leaf of a divide-and-conquer tree
  kNanSafe = 10,      // comparisons with NaN behave as IEEE says
  kInfSafe = 11,      // arithmetic with infinities behaves as IEEE says
  // the Hessenberg QR iteration (arguments: n, ilo, ihi, lwork)
  kQrSmall = 12,       // orders below which the double-shift QR runs
  kQrWindow = 13,      // the aggressive early deflation window
  kQrNibble = 14,      // percentage of the window deflated that skips a sweep
  kQrShifts = 15,      // simultaneous shifts of a sweep
  kQrAccumulate = 16,  // how a sweep's reflections are accumulated (0, 1, 2)
  kLookahead = 17,     // threaded factorizations: panels factored ahead of the updates
  kChunk = 18,  // threaded factorizations: an update task's width (blocks; columns for the band LU)
  kInnerBlock = 19,  // threaded factorizations: the inner block of a panel
};

// ILAENV's argument list; -1 for a query the oracle does not know.
int oracle(int query, const char *name, const char *opts, int n1, int n2, int n3, int n4,
           int name_len, int opts_len);

// The same for a six-character name literal and no options.
inline int oracle(int query, const char (&name)[7], int n1 = -1, int n2 = -1, int n3 = -1,
                  int n4 = -1) {
  return oracle(query, name, " ", n1, n2, n3, n4, 6, 1);
}
inline int oracle(int query, const Name6 &name, int n1 = -1, int n2 = -1, int n3 = -1,
                  int n4 = -1) {
  return oracle(query, name.text, " ", n1, n2, n3, n4, 6, 1);
}

}  // namespace orb::lapack
