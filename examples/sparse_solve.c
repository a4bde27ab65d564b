/* Solving a sparse system with TESSERA: the 2-D Laplacian on a 200 x 200 grid
   (symmetric positive definite, upper triangle in compressed rows), analysed,
   factored and solved in one call, then released. Prints the backward error
   and exits non-zero when it is not small. */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

#include "orb.h"

int main(void) {
  const int k = 200, n = k * k;
  int *ia = malloc(sizeof(int) * (n + 1)), *ja = malloc(sizeof(int) * 3 * n);
  double *a = malloc(sizeof(double) * 3 * n), *b = malloc(sizeof(double) * n);
  double *x = malloc(sizeof(double) * n);
  int nnz = 0;
  for (int i = 0; i < n; ++i) { /* row i: the diagonal, east and north */
    ia[i] = nnz + 1;
    ja[nnz] = i + 1, a[nnz++] = 4.0;
    if (i % k != k - 1) ja[nnz] = i + 2, a[nnz++] = -1.0;
    if (i + k < n) ja[nnz] = i + k + 1, a[nnz++] = -1.0;
    b[i] = 1.0;
  }
  ia[n] = nnz + 1;

  void *pt[64] = {0};
  int iparam[64] = {0}, perm = 0, error = 0;
  const int maxfct = 1, mnum = 1, mtype = 2, nrhs = 1, msglvl = 0;
  int phase = 13;
  TESSERA(pt, &maxfct, &mnum, &mtype, &phase, &n, a, ia, ja, &perm, &nrhs, iparam, &msglvl, b, x,
          &error);
  if (error != 0) {
    printf("TESSERA failed with error %d\n", error);
    return 1;
  }
  /* max |b - A x| / (|A| |x| + |b|) over the rows, the upper triangle mirrored. */
  double *r = calloc(n, sizeof(double)), *s = calloc(n, sizeof(double)), worst = 0;
  for (int i = 0; i < n; ++i)
    for (int p = ia[i] - 1; p < ia[i + 1] - 1; ++p) {
      const int j = ja[p] - 1;
      r[i] += a[p] * x[j], s[i] += fabs(a[p] * x[j]);
      if (j != i) r[j] += a[p] * x[i], s[j] += fabs(a[p] * x[i]);
    }
  for (int i = 0; i < n; ++i) {
    const double e = fabs(b[i] - r[i]) / (s[i] + fabs(b[i]));
    if (e > worst) worst = e;
  }
  printf("TESSERA: n = %d, factor entries %d, refinement steps %d, backward error %.2e\n", n,
         iparam[17], iparam[6], worst);
  phase = -1;
  TESSERA(pt, &maxfct, &mnum, &mtype, &phase, &n, a, ia, ja, &perm, &nrhs, iparam, &msglvl, b, x,
          &error);
  free(ia), free(ja), free(a), free(b), free(x), free(r), free(s);
  return worst < 1e-14 ? 0 : 1;
}
