// The exported entries of the nonlinear least-squares solvers and the
// finite-difference Jacobian: plain forwarders.
#include "nls/trust_region.h"
#include "orb.h"
#include "service/entry.h"

namespace nls = orb::nls;
using orb::entry::plain;

extern "C" {

ORB_API int dtrnlsp_init(void **handle, const int *n, const int *m, double *x, const double *eps,
                         const int *iter1, const int *iter2, const double *rs) {
  return plain(nls::trnlsp_init, handle, n, m, x, eps, iter1, iter2, rs);
}

ORB_API int dtrnlsp_solve(void **handle, double *fvec, double *fjac, int *RCI_Request) {
  return plain(nls::trnlsp_solve, false, handle, fvec, fjac, RCI_Request);
}

ORB_API int dtrnlsp_get(void **handle, int *iter, int *st_cr, double *r1, double *r2) {
  return plain(nls::trnlsp_get, false, handle, iter, st_cr, r1, r2);
}

ORB_API int dtrnlsp_delete(void **handle) {
  return plain(nls::trnlsp_delete, false, handle);
}

ORB_API int dtrnlspbc_init(void **handle, const int *n, const int *m, double *x, const double *LW,
                           const double *UP, const double *eps, const int *iter1, const int *iter2,
                           const double *rs) {
  return plain(nls::trnlspbc_init, handle, n, m, x, LW, UP, eps, iter1, iter2, rs);
}

ORB_API int dtrnlspbc_solve(void **handle, double *fvec, double *fjac, int *RCI_Request) {
  return plain(nls::trnlsp_solve, true, handle, fvec, fjac, RCI_Request);
}

ORB_API int dtrnlspbc_get(void **handle, int *iter, int *st_cr, double *r1, double *r2) {
  return plain(nls::trnlsp_get, true, handle, iter, st_cr, r1, r2);
}

ORB_API int dtrnlspbc_delete(void **handle) {
  return plain(nls::trnlsp_delete, true, handle);
}

ORB_API int djacobi_init(void **handle, const int *n, const int *m, double *x, double *fjac,
                         const double *eps) {
  return plain(nls::jacobi_init, handle, n, m, x, fjac, eps);
}

ORB_API int djacobi_solve(void **handle, double *f1, double *f2, int *RCI_Request) {
  return plain(nls::jacobi_solve, handle, f1, f2, RCI_Request);
}

ORB_API int djacobi_delete(void **handle) {
  return plain(nls::jacobi_delete, handle);
}

ORB_API int djacobi(void (*fcn)(int *m, int *n, double *x, double *f), const int *n, const int *m,
                    double *fjac, double *x, const double *eps) {
  return plain(nls::jacobi, fcn, n, m, fjac, x, eps);
}

}  // extern "C"
