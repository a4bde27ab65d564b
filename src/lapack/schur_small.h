// The small solves of the real quasi-triangular Schur form: a 1x1 or 2x2
// block against a real or complex shift (xLALN2) and the Sylvester equation
// of two such blocks (xLASY2). Both perturb tiny pivots and scale the
// right-hand side against overflow; the return value is 1 when a pivot was
// perturbed, else 0.
#pragma once

namespace orb::lapack {

// (ca A - w D) X = scale B or its transposed form (trans), A na x na
// (na = 1, 2), D = diag(d1, d2), w = wr + i wi. nw = 1: real X, B (na x 1,
// wi ignored); nw = 2: complex, the real parts in column 1 and the imaginary
// parts in column 2. Pivots below smin are raised to it.
int laln2(bool trans, int na, int nw, float smin, float ca, const float *a, int lda, float d1,
          float d2, const float *b, int ldb, float wr, float wi, float *x, int ldx, float *scale,
          float *xnorm);

// op(TL) X + isgn X op(TR) = scale B, TL n1 x n1, TR n2 x n2 (1 or 2), by
// Gaussian elimination with complete pivoting on the Kronecker form.
int lasy2(bool transl, bool transr, int isgn, int n1, int n2, const float *tl, int ldtl,
          const float *tr, int ldtr, const float *b, int ldb, float *scale, float *x, int ldx,
          float *xnorm);

}  // namespace orb::lapack
