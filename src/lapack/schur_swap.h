// The real Schur form's small pieces: the standardized 2x2 block (xLANV2),
// the swap of adjacent 1x1 / 2x2 diagonal blocks (xLAEXC) and the move of
// one block to another position (xTREXC), with the orthogonal factor
// accumulated.
#pragma once

namespace orb::lapack {

// xLANV2: the Schur factorization of the real 2x2 [a b; c d] =
// [cs -sn; sn cs] [aa bb; cc dd] [cs sn; -sn cs], the result standardized:
// either cc = 0 (real eigenvalues) or aa = dd and bb cc < 0 (a complex
// pair). The eigenvalues are (rt1r, rt1i) and (rt2r, rt2i).
template <class R>
void lanv2(R &a, R &b, R &c, R &d, R &rt1r, R &rt1i, R &rt2r, R &rt2i, R &cs, R &sn);

// xLAEXC: swaps the adjacent diagonal blocks of orders n1 and n2 (1 or 2)
// starting at row j1 (1-based) of the n x n Schur form T, updating Q's
// columns when wantq. Returns 1 (T unchanged) when the swap would change
// the blocks by more than a small multiple of their norm, else 0. work: n.
template <class R>
int laexc(bool wantq, int n, R *t, int ldt, R *q, int ldq, int j1, int n1, int n2, R *work);

// xTREXC (real): moves the block starting at row *ifst to row *ilst by
// adjacent swaps; both are updated as published (to the first row of
// their blocks; *ilst to where the block stopped when a swap failed).
// Returns 0, or 1 when a swap failed. work: n.
template <class R>
int trexc(bool wantq, int n, R *t, int ldt, R *q, int ldq, int *ifst, int *ilst, R *work);

}  // namespace orb::lapack
