// cgbtrf_omp: the band LU behind CGBTRF (gbtrf_omp.h).
#include "lapack/gbtrf_omp.h"

namespace orb::lapack {

template int gbtrf_blocked(int, int, int, int, c8 *, int, int *, int, int);
template int gbtrf(int, int, int, int, c8 *, int, int *);

}  // namespace orb::lapack
