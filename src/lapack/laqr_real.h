// The real Hessenberg QR iteration's internal routines (hseqr.cpp,
// laqr_real.cpp). H is the n x n Hessenberg matrix, ilo..ihi (1-based)
// its active block; the transformations are applied to rows iloz..ihiz
// of Z when wantz. INFO as the published routines.
#pragma once

#include <cstdint>

namespace orb::lapack {

// xLAHQR: the double-shift QR iteration.
template <class R>
int lahqr(bool wantt, bool wantz, int n, int ilo, int ihi, R *h, int ldh, R *wr, R *wi, int iloz,
          int ihiz, R *z, int ldz);

// xLAQR0 (level 0: the small-bulge multishift QR with aggressive early
// deflation, large windows reduced by level 1) and xLAQR4 (level 1: windows
// reduced by xLAHQR). Returns 0, or i > 0 when eigenvalues i+1..ihi
// converged and the iteration limit was reached.
template <class R>
int laqr0(int level, bool wantt, bool wantz, int n, int ilo, int ihi, R *h, int ldh, R *wr, R *wi,
          int iloz, int ihiz, R *z, int ldz, R *work, int lwork);
// Its optimal workspace.
template <class R>
std::int64_t laqr0_worksize(int level, int n, int ilo, int ihi);

}  // namespace orb::lapack
