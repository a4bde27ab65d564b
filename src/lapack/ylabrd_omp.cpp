// ylabrd_omp: the bidiagonal reduction's panel for complex data (labrd.h).
#include "lapack/labrd.h"

namespace orb::lapack {
ORB_LABRD(c8)
ORB_LABRD(c16)
}  // namespace orb::lapack
