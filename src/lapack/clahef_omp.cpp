// clahef_omp: the Bunch-Kaufman factorization behind CHETRF (Hermitian; lasyf_omp.h).
#include "lapack/lasyf_omp.h"

namespace orb::lapack {

template int sytf2<c8, true>(Uplo, int, c8 *, int, int *);
template int lasyf<c8, true>(Uplo, int, int, c8 *, int, int *, c8 *, int, int, int *);
template int sytrf<c8, true>(Uplo, int, c8 *, int, int *, c8 *, int);
template std::int64_t sytrf_worksize<c8, true>(int);

}  // namespace orb::lapack
