// clasyf_omp: the Bunch-Kaufman factorization behind CSYTRF (complex symmetric; lasyf_omp.h).
#include "lapack/lasyf_omp.h"

namespace orb::lapack {

template int sytf2<c8, false>(Uplo, int, c8 *, int, int *);
template int lasyf<c8, false>(Uplo, int, int, c8 *, int, int *, c8 *, int, int, int *);
template int sytrf<c8, false>(Uplo, int, c8 *, int, int *, c8 *, int);
template std::int64_t sytrf_worksize<c8, false>(int);

}  // namespace orb::lapack
