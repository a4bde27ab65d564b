// The argument checkers of the level-2 entries, one per routine, each with
// its reference routine's tests and codes.
#pragma once

#include "service/check.h"

namespace orb::check {

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
