// The argument checkers of the level-3 entries, one per routine, each with
// its reference routine's tests and codes.
#pragma once

#include "service/check.h"

namespace orb::check {

extern const Checker kSgemm, kDgemm, kCgemm, kZgemm;
extern const Checker kSsymm, kCsymm, kChemm;
extern const Checker kSsyrk, kCsyrk, kCherk;
extern const Checker kSsyr2k, kCsyr2k, kCher2k;
extern const Checker kStrmm, kCtrmm;
extern const Checker kStrsm, kCtrsm, kDtrsm, kZtrsm;

}  // namespace orb::check
