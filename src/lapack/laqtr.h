// The quasi-triangular solve behind the real eigenvector condition numbers
// (xLAQTR): a real Schur form T, or T plus a purely imaginary bordered
// diagonal, solved in real arithmetic with scaling against overflow.
#pragma once

namespace orb::lapack {

// real_system: op(T) p = scale c, x = c (n reals) on entry and p on exit.
// Otherwise op(T + i B) (p + i q) = scale (c + i d), x = [c; d] (2n reals)
// on entry and [p; q] on exit, where B has b (n reals) as its first row and
// w on the rest of its diagonal; T's first block must then be 1x1.
// op is the transpose when trans (for the complex system the conjugate
// transpose, which is the transpose of its real form [T -B; B T]). Diagonal blocks too close to
// singular are perturbed: the return value is 1 (a 1x1 block) or 2 (a 2x2 block) when that
// happened, else 0. work: n reals.
template <class R>
int laqtr(bool trans, bool real_system, int n, const R *t, int ldt, const R *b, R w, R *scale, R *x,
          R *work);

}  // namespace orb::lapack
