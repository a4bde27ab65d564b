// Trust-region nonlinear least squares by reverse communication: the
// unbounded and the box-constrained solver share one state machine.
#pragma once

namespace orb::nls {

inline constexpr int kSuccess = 1501;
inline constexpr int kInvalidOption = 1502;
inline constexpr int kOutOfMemory = 1503;

int trnlsp_init(void **handle, const int *n, const int *m, double *x, const double *eps,
                const int *iter1, const int *iter2, const double *rs);
int trnlspbc_init(void **handle, const int *n, const int *m, double *x, const double *lw,
                  const double *up, const double *eps, const int *iter1, const int *iter2,
                  const double *rs);
// Shared by both families; `bounded` rejects a handle of the other family.
int trnlsp_solve(bool bounded, void **handle, double *fvec, double *fjac, int *request);
int trnlsp_get(bool bounded, void **handle, int *iter, int *st_cr, double *r1, double *r2);
int trnlsp_delete(bool bounded, void **handle);

int jacobi_init(void **handle, const int *n, const int *m, double *x, double *fjac,
                const double *eps);
int jacobi_solve(void **handle, double *f1, double *f2, int *request);
int jacobi_delete(void **handle);
using JacobiFunction = void (*)(int *m, int *n, double *x, double *f);
int jacobi(JacobiFunction fcn, const int *n, const int *m, double *fjac, double *x,
           const double *eps);

}  // namespace orb::nls
