// The complex Hessenberg QR iteration's internal pieces (laqr_complex.cpp):
// the single-shift QR of small matrices (CLAHQR), the small-bulge multishift
// QR with aggressive early deflation (CLAQR0, and CLAQR4 one level down),
// and the reordering of a triangular Schur form by rotations (CTREXC).
// Indices are 1-based as in the published argument lists.
#pragma once

#include <cstdint>

#include "common/scalar.h"

namespace orb::lapack::hqr {

// CLAHQR: the Schur form of rows and columns ilo..ihi of H by single-shift
// QR; the transformations go to rows iloz..ihiz of Z when wantz. Returns 0,
// or i > 0 when the eigenvalues i+1..ihi converged and the iteration limit
// was reached.
int lahqr(bool wantt, bool wantz, int n, int ilo, int ihi, c8 *h, int ldh, c8 *w, int iloz,
          int ihiz, c8 *z, int ldz);

// CLAQR0 (level 0, aggressive early deflation windows reduced by CLAQR4) and
// CLAQR4 (level 1, windows reduced by CLAHQR). INFO as CLAHQR.
int laqr0(int level, bool wantt, bool wantz, int n, int ilo, int ihi, c8 *h, int ldh, c8 *w,
          int iloz, int ihiz, c8 *z, int ldz, c8 *work, int lwork);
// Its optimal workspace.
std::int64_t laqr0_worksize(int level, bool wantt, bool wantz, int n, int ilo, int ihi);

// CTREXC with vectors: moves the diagonal entry ifst of the upper triangular
// T (n by n) to position ilst by adjacent swaps, Q := Q G^H along the way
// (q null: no vectors). The condition numbers (trsna.cpp) reorder with it
// too.
void trexc(int n, c8 *t, int ldt, c8 *q, int ldq, int ifst, int ilst);

}  // namespace orb::lapack::hqr
