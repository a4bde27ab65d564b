// The argument checkers of the checked BLAS entries, one per routine.
#pragma once

#include "service/check.h"

namespace orb::check {

extern const Checker kSgemm, kDgemm, kCgemm, kZgemm;

}  // namespace orb::check
