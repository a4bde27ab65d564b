// Incomplete LU factorisations of a CSR matrix (1-based indices), used as
// preconditioners of the iterative solvers. The functions take the arguments
// of the exported entries, by reference; the status goes to ierr.
#pragma once

namespace orb::iterative {

// DCSRILU0: the factors on the pattern of a, in bilu0 (L multipliers left of
// the diagonal, U from the diagonal on).
template <class T>
void csrilu0(const int *n, const T *a, const int *ia, const int *ja, T *bilu0, const int *ipar,
             const T *dpar, int *ierr);

// DCSRILUT: threshold ILU with at most maxfil entries kept in each row's L
// and U parts, into bilut / ibilut / jbilut.
template <class T>
void csrilut(const int *n, const T *a, const int *ia, const int *ja, T *bilut, int *ibilut,
             int *jbilut, const T *tol, const int *maxfil, const int *ipar, const T *dpar,
             int *ierr);

}  // namespace orb::iterative
