// The tridiagonal QL/QR iteration's internal form: the batch of sweeps
// gathered before they go to Z, and the team lasr3 applies them with
// (tests; steqr takes both from the oracle).
#pragma once

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// steqr with the rotations of `batch` sweeps gathered and applied to Z
// together (batch 1: sweep by sweep), lasr3 running on `threads` (0: the
// oracle's team). The results do not depend on either.
template <class T>
int steqr_batched(CompQ compz, int n, real_t<T> *d, real_t<T> *e, T *z, int ldz, real_t<T> *work,
                  int batch, int threads);

}  // namespace orb::lapack
