// The exported entries of the iterative solvers and preconditioners: plain
// forwarders to the double-precision instances.
#include "iterative/cg.h"
#include "iterative/fgmres.h"
#include "iterative/ilu.h"
#include "orb.h"
#include "service/entry.h"

namespace it = orb::iterative;
using orb::entry::plain;

extern "C" {

ORB_API void DCG_INIT(const int *n, const double *x, const double *b, int *rci_request, int *ipar,
                      double *dpar, double *tmp) {
  plain(it::cg_init<double>, n, x, b, rci_request, ipar, dpar, tmp);
}

ORB_API void DCG_CHECK(const int *n, const double *x, const double *b, int *rci_request, int *ipar,
                       double *dpar) {
  plain(it::cg_check<double>, n, x, b, rci_request, ipar, dpar);
}

ORB_API void DCG(const int *n, double *x, const double *b, int *rci_request, int *ipar,
                 double *dpar, double *tmp) {
  plain(it::cg<double>, n, x, b, rci_request, ipar, dpar, tmp);
}

ORB_API void DCG_GET(const int *n, const double *x, const double *b, const int *rci_request,
                     const int *ipar, const double *dpar, const double *tmp, int *itercount) {
  plain(it::cg_get<double>, n, x, b, rci_request, ipar, dpar, tmp, itercount);
}

ORB_API void DCGMRHS_INIT(const int *n, const double *x, const int *nrhs, const double *b,
                          const int *method, int *rci_request, int *ipar, double *dpar,
                          double *tmp) {
  plain(it::cgmrhs_init<double>, n, x, nrhs, b, method, rci_request, ipar, dpar, tmp);
}

ORB_API void DCGMRHS_CHECK(const int *n, const double *x, const int *nrhs, const double *b,
                           int *rci_request, int *ipar, double *dpar) {
  plain(it::cgmrhs_check<double>, n, x, nrhs, b, rci_request, ipar, dpar);
}

ORB_API void DCGMRHS(const int *n, double *x, const int *nrhs, const double *b, int *rci_request,
                     int *ipar, double *dpar, double *tmp) {
  plain(it::cgmrhs<double>, n, x, nrhs, b, rci_request, ipar, dpar, tmp);
}

ORB_API void DCGMRHS_GET(const int *n, const double *x, const int *nrhs, const double *b,
                         const int *rci_request, const int *ipar, const double *dpar,
                         const double *tmp, int *itercount) {
  plain(it::cgmrhs_get<double>, n, x, nrhs, b, rci_request, ipar, dpar, tmp, itercount);
}

ORB_API void DFGMRES_INIT(const int *n, const double *x, const double *b, int *rci_request,
                          int *ipar, double *dpar, double *tmp) {
  plain(it::fgmres_init<double>, n, x, b, rci_request, ipar, dpar, tmp);
}

ORB_API void DFGMRES_CHECK(const int *n, const double *x, const double *b, int *rci_request,
                           int *ipar, double *dpar) {
  plain(it::fgmres_check<double>, n, x, b, rci_request, ipar, dpar);
}

ORB_API void DFGMRES(const int *n, double *x, const double *b, int *rci_request, int *ipar,
                     double *dpar, double *tmp) {
  plain(it::fgmres<double>, n, x, b, rci_request, ipar, dpar, tmp);
}

ORB_API void DFGMRES_GET(const int *n, double *x, double *b, int *rci_request, const int *ipar,
                         const double *dpar, double *tmp, int *itercount) {
  plain(it::fgmres_get<double>, n, x, b, rci_request, ipar, dpar, tmp, itercount);
}

ORB_API void DCSRILU0(const int *n, const double *a, const int *ia, const int *ja, double *bilu0,
                      const int *ipar, const double *dpar, int *ierr) {
  plain(it::csrilu0<double>, n, a, ia, ja, bilu0, ipar, dpar, ierr);
}

ORB_API void DCSRILUT(const int *n, const double *a, const int *ia, const int *ja, double *bilut,
                      int *ibilut, int *jbilut, const double *tol, const int *maxfil,
                      const int *ipar, const double *dpar, int *ierr) {
  plain(it::csrilut<double>, n, a, ia, ja, bilut, ibilut, jbilut, tol, maxfil, ipar, dpar, ierr);
}

}  // extern "C"
