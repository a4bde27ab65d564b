// Conjugate gradient by reverse communication, one or several right-hand
// sides. All state lives in the caller's ipar, dpar and tmp (params.h); the
// functions take the arguments of the exported entries, by reference.
#pragma once

namespace orb::iterative {

// DCG_INIT: defaults in ipar(1..11) and dpar(1..8), tmp(:,1..3) zeroed.
template <class T>
void cg_init(const int *n, const T *x, const T *b, int *rci_request, int *ipar, T *dpar, T *tmp);

// DCG_CHECK: result 0, -1001, -1010, -1011 or -1100 in rci_request.
template <class T>
void cg_check(const int *n, const T *x, const T *b, int *rci_request, int *ipar, T *dpar);

// DCG: one step; the request code goes to rci_request.
template <class T>
void cg(const int *n, T *x, const T *b, int *rci_request, int *ipar, T *dpar, T *tmp);

// DCG_GET: the iteration count.
template <class T>
void cg_get(const int *n, const T *x, const T *b, const int *rci_request, const int *ipar,
            const T *dpar, const T *tmp, int *itercount);

// DCGMRHS_INIT: defaults as DCG_INIT, nrhs in ipar(33), the stage ipar(39)
// at its start, the per-right-hand-side records and n (nrhs + 3) doubles of
// tmp zeroed. `method` is not read.
template <class T>
void cgmrhs_init(const int *n, const T *x, const int *nrhs, const T *b, const int *method,
                 int *rci_request, int *ipar, T *dpar, T *tmp);

// DCGMRHS_CHECK: the checks of DCG_CHECK and ipar(33) >= 1.
template <class T>
void cgmrhs_check(const int *n, const T *x, const int *nrhs, const T *b, int *rci_request,
                  int *ipar, T *dpar);

// DCGMRHS: one step. On entry rci_request is the caller's answer (1003
// after a request 2 ends the right-hand side in progress).
template <class T>
void cgmrhs(const int *n, T *x, const int *nrhs, const T *b, int *rci_request, int *ipar, T *dpar,
            T *tmp);

// DCGMRHS_GET: the iteration count of each right-hand side.
template <class T>
void cgmrhs_get(const int *n, const T *x, const int *nrhs, const T *b, const int *rci_request,
                const int *ipar, const T *dpar, const T *tmp, int *itercount);

}  // namespace orb::iterative
