// The real Hessenberg QR iteration's internal routines (hseqr.cpp). H is
// the n x n Hessenberg matrix, ilo..ihi (1-based)
// its active block; the transformations are applied to rows iloz..ihiz
// of Z when wantz. INFO as the published routines.
#pragma once

#include <cstdint>

namespace orb::lapack {

// xLAHQR: the double-shift QR iteration.
template <class R>
int lahqr(bool wantt, bool wantz, int n, int ilo, int ihi, R *h, int ldh, R *wr, R *wi, int iloz,
          int ihiz, R *z, int ldz);

}  // namespace orb::lapack
