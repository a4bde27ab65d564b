/* The reverse-communication conjugate gradient with an ILU0 preconditioner on
   the 2-D Laplacian of a 100 x 100 grid. The program owns the matrix: it
   multiplies on request 1 and applies the preconditioner (the triangular
   solves with DCSRILU0's factor) on request 3. Prints the iterations and the
   relative residual, and exits non-zero when CG did not converge. */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

#include "orb.h"

typedef struct {
  int n;
  int *ia, *ja; /* 1-based compressed rows, columns increasing */
  double *a;
} Csr;

static void multiply(const Csr *m, const double *x, double *y) {
  for (int i = 0; i < m->n; ++i) {
    double s = 0;
    for (int p = m->ia[i] - 1; p < m->ia[i + 1] - 1; ++p) s += m->a[p] * x[m->ja[p] - 1];
    y[i] = s;
  }
}

/* z = (L U)^-1 r with L unit lower and U upper in the pattern of the matrix. */
static void precondition(const Csr *m, const double *lu, const double *r, double *z) {
  for (int i = 0; i < m->n; ++i) {
    double s = r[i];
    for (int p = m->ia[i] - 1; p < m->ia[i + 1] - 1 && m->ja[p] - 1 < i; ++p)
      s -= lu[p] * z[m->ja[p] - 1];
    z[i] = s;
  }
  for (int i = m->n - 1; i >= 0; --i) {
    double s = z[i], d = 1;
    for (int p = m->ia[i] - 1; p < m->ia[i + 1] - 1; ++p) {
      const int j = m->ja[p] - 1;
      if (j > i) s -= lu[p] * z[j];
      if (j == i) d = lu[p];
    }
    z[i] = s / d;
  }
}

int main(void) {
  const int k = 100, n = k * k;
  Csr m = {n, malloc(sizeof(int) * (n + 1)), malloc(sizeof(int) * 5 * n),
           malloc(sizeof(double) * 5 * n)};
  int nnz = 0;
  for (int i = 0; i < n; ++i) {
    m.ia[i] = nnz + 1;
    const int cols[5] = {i - k, i % k ? i - 1 : -1, i, i % k != k - 1 ? i + 1 : -1, i + k};
    for (int c = 0; c < 5; ++c)
      if (cols[c] >= 0 && cols[c] < n) m.ja[nnz] = cols[c] + 1, m.a[nnz++] = c == 2 ? 4.0 : -1.0;
  }
  m.ia[n] = nnz + 1;
  double *b = malloc(sizeof(double) * n), *x = calloc(n, sizeof(double));
  double *tmp = malloc(sizeof(double) * 4 * n), *lu = malloc(sizeof(double) * nnz);
  for (int i = 0; i < n; ++i) b[i] = 1.0;

  int ipar[128], request, ierr, iterations;
  double dpar[128];
  DCG_INIT(&n, x, b, &request, ipar, dpar, tmp);
  ipar[4] = 1000;  /* ipar(5): the iteration limit */
  ipar[8] = 1;     /* ipar(9): the residual test on */
  ipar[9] = 0;     /* ipar(10): no test of our own */
  ipar[10] = 1;    /* ipar(11): preconditioned */
  dpar[0] = 1e-20; /* dpar(1): relative tolerance on the squared residual measure */
  DCSRILU0(&n, m.a, m.ia, m.ja, lu, ipar, dpar, &ierr);
  if (ierr != 0) {
    printf("DCSRILU0 failed with %d\n", ierr);
    return 1;
  }
  DCG_CHECK(&n, x, b, &request, ipar, dpar);
  if (request != 0) {
    printf("DCG_CHECK answered %d\n", request);
    return 1;
  }
  for (;;) {
    DCG(&n, x, b, &request, ipar, dpar, tmp);
    if (request == 1)
      multiply(&m, tmp, tmp + n);
    else if (request == 3)
      precondition(&m, lu, tmp + 2 * n, tmp + 3 * n);
    else
      break;
  }
  DCG_GET(&n, x, b, &request, ipar, dpar, tmp, &iterations);
  multiply(&m, x, tmp);
  double rr = 0, bb = 0;
  for (int i = 0; i < n; ++i) rr += (b[i] - tmp[i]) * (b[i] - tmp[i]), bb += b[i] * b[i];
  printf("CG with ILU0: n = %d, %d iterations, relative residual %.2e (request %d)\n", n,
         iterations, sqrt(rr / bb), request);
  const int ok = request == 0 && sqrt(rr / bb) < 1e-8;
  free(m.ia), free(m.ja), free(m.a), free(b), free(x), free(tmp), free(lu);
  return ok ? 0 : 1;
}
