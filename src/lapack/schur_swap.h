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

}  // namespace orb::lapack
