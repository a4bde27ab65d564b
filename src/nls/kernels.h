// Dense double kernels of the Levenberg-Marquardt step: Householder QR with
// column pivoting, the least-squares solve of the QR-factored system augmented
// by a diagonal, and the multiplier of the trust-region subproblem.
#pragma once

#include <vector>

namespace orb::nls {

// Factors the rows x cols column-major matrix a (leading dimension rows,
// rows >= cols) as A P = Q R. R's strict upper triangle overwrites a's, its
// diagonal goes to rdiag; the Householder vectors stay in the lower part. perm[j] is
// the original index of column j; colnorm receives the norms of A's columns.
void qr_pivoted(int rows, int cols, double *a, int *perm, double *rdiag, double *colnorm);

// Applies Q^T of qr_pivoted to v (rows values) in place.
void apply_qt(int rows, int cols, const double *a, double *v);

// Solves min || [A; diag(d)] x - [b; 0] || given A P = Q R: r holds R in its
// upper triangle (leading dimension ldr, diagonal in place), qtb = (Q^T b)(0:n).
// The strict lower triangle of r receives the transposed factor of the augmented
// system and sdiag its diagonal; the upper triangle is kept.
void solve_augmented(int n, double *r, int ldr, const int *perm, const double *d, const double *qtb,
                     double *x, double *sdiag);

// Finds the step x and multiplier par >= 0 of min ||A x + b|| subject to
// ||D x|| <= delta (returned x is the minimiser of ||A x - b||, the caller
// negates): either par = 0 and ||D x|| <= (1 + sigma) delta, or par > 0 and
// | ||D x|| - delta | <= sigma delta, within max_iter secular-equation steps.
// r holds R with its diagonal in place, as for solve_augmented.
void lm_parameter(int n, double *r, int ldr, const int *perm, const double *diag, const double *qtb,
                  double delta, double sigma, int max_iter, double &par, double *x, double *sdiag);

double norm2(int n, const double *v);

}  // namespace orb::nls
