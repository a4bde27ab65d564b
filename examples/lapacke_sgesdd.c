/*
 * lapacke_sgesdd.c: the singular value decomposition of a small row-major
 * matrix through the LAPACKE interface. Prints the singular values and checks
 * that U diag(s) V^T gives A back; exits with 1 if it does not.
 */
#include <math.h>
#include <stdio.h>

#include "orb_lapacke.h"

#define M 4
#define N 3

int main(void) {
  /* Row-major: each line of the initializer is a row of A. */
  const float a0[M][N] = {{3, 1, 2}, {-1, 4, 0.5f}, {2, 0, 5}, {1, -2, 1}};
  float a[M][N], s[N], u[M][M], vt[N][N];
  for (int i = 0; i < M; ++i)
    for (int j = 0; j < N; ++j) a[i][j] = a0[i][j];

  lapack_int info =
      LAPACKE_sgesdd(LAPACK_ROW_MAJOR, 'A', M, N, &a[0][0], N, s, &u[0][0], M, &vt[0][0], N);
  if (info != 0) {
    printf("LAPACKE_sgesdd failed: info = %d\n", (int)info);
    return 1;
  }
  printf("singular values:");
  for (int k = 0; k < N; ++k) printf(" %.6f", s[k]);
  printf("\n");

  /* The largest entry of A - U diag(s) V^T against the size of A. */
  float err = 0, norm = 0;
  for (int i = 0; i < M; ++i)
    for (int j = 0; j < N; ++j) {
      float r = 0;
      for (int k = 0; k < N; ++k) r += u[i][k] * s[k] * vt[k][j];
      err = fmaxf(err, fabsf(a0[i][j] - r));
      norm = fmaxf(norm, fabsf(a0[i][j]));
    }
  printf("max |A - U S V^T| = %.3g\n", err);
  if (!(err <= 1e-5f * norm * M)) {
    printf("the factors do not reproduce A\n");
    return 1;
  }
  return 0;
}
