// Restarted flexible GMRES by reverse communication. All state lives in the
// caller's ipar, dpar and tmp (params.h); the functions take the arguments of
// the exported entries, by reference.
#pragma once

namespace orb::iterative {

// DFGMRES_INIT: defaults in ipar(1..15) and dpar(1..8), tmp(1..n) zeroed.
template <class T>
void fgmres_init(const int *n, const T *x, const T *b, int *rci_request, int *ipar, T *dpar,
                 T *tmp);

// DFGMRES_CHECK: checks, corrects and places the regions of tmp in
// ipar(16..21); result 0, -1001, -1010, -1011 or -1100.
template <class T>
void fgmres_check(const int *n, const T *x, const T *b, int *rci_request, int *ipar, T *dpar);

// DFGMRES: one step; the request code goes to rci_request.
template <class T>
void fgmres(const int *n, T *x, const T *b, int *rci_request, int *ipar, T *dpar, T *tmp);

// DFGMRES_GET: the iteration count and the current solution, into x
// (ipar(13) = 0), into b (ipar(13) > 0) or nowhere (ipar(13) < 0).
template <class T>
void fgmres_get(const int *n, T *x, T *b, int *rci_request, const int *ipar, const T *dpar, T *tmp,
                int *itercount);

}  // namespace orb::iterative
