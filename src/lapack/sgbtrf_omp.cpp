// sgbtrf_omp: the band LU behind SGBTRF (gbtrf_omp.h).
#include "lapack/gbtrf_omp.h"

namespace orb::lapack {

template int gbtrf_blocked(int, int, int, int, float *, int, int *, int, int);
template int gbtrf(int, int, int, int, float *, int, int *);

}  // namespace orb::lapack
