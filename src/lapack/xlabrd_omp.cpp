// xlabrd_omp: the bidiagonal reduction's panel for real data (labrd.h).
#include "lapack/labrd.h"

namespace orb::lapack {
ORB_LABRD(float)
ORB_LABRD(double)
}  // namespace orb::lapack
