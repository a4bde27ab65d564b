// The argument checkers of the checked BLAS entries, one per routine.
#pragma once

#include "service/check.h"

namespace orb::check {

// Level 3.
extern const Checker kSgemm, kDgemm, kCgemm, kZgemm;

// Level 2.
extern const Checker kSgemv, kDgemv, kCgemv, kZgemv;
extern const Checker kSger, kDger, kCgerc, kCgeru, kZgerc, kZgeru;
extern const Checker kSsymv, kChemv;
extern const Checker kSsyr, kDsyr, kCher, kZher;
extern const Checker kSsyr2, kCher2;
extern const Checker kStrmv, kCtrmv, kStrsv, kCtrsv;

// The LAPACK auxiliary ZSYR makes the tests of xSYR in the same order; it is
// not a checked entry and reports through the internal reporter itself.
extern const Checker kZsyr;

}  // namespace orb::check
