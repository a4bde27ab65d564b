// slasyf_omp: the Bunch-Kaufman factorization behind SSYTRF (real symmetric; lasyf_omp.h).
#include "lapack/lasyf_omp.h"

namespace orb::lapack {

template int sytf2<float, false>(Uplo, int, float *, int, int *);
template int lasyf<float, false>(Uplo, int, int, float *, int, int *, float *, int, int, int *);
template int sytrf<float, false>(Uplo, int, float *, int, int *, float *, int);
template std::int64_t sytrf_worksize<float, false>(int);

}  // namespace orb::lapack
