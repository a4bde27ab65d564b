// The front routine behind the exported entry: the query phases, the thread
// count, the diagonal shortcut, then the phase driver.
#include <algorithm>

#include "orb.h"
#include "service/entry.h"
#include "service/threading.h"
#include "sparse_direct/tessera.h"

namespace orb::sparse {

bool known_mtype(int mtype) {
  switch (mtype) {
    case 1:
    case 2:
    case -2:
    case 3:
    case 4:
    case -4:
    case 6:
    case 11:
    case 13:
      return true;
    default:
      return false;
  }
}

bool complex_mtype(int mtype) {
  const int reduced = mtype > 10 ? mtype - 10 : mtype;
  return reduced > 2 || reduced < -2;
}

namespace {

// The stored entry of each row, taken as the diagonal; -1 when a row does
// not hold exactly one entry.
template <class T>
int diagonal_solve(int n, int nrhs, const int *ia, const T *a, T *b, T *x, int over_b, bool solve,
                   int threads) {
  const int base = ia[0];
  for (int i = 0; i < n; ++i) {
    if (ia[i + 1] - ia[i] != 1) return 1;
    if (a[ia[i] - base] == T(0)) return 2;
  }
  if (!solve) return 0;
  T *out = over_b == 1 ? b : x;
  const long long total = static_cast<long long>(n) * nrhs;
#pragma omp parallel for num_threads(threads) if (total > 100000 && threads > 1)
  for (long long k = 0; k < total; ++k) {
    const int i = int(k % n);
    out[k] = b[k] / a[ia[i] - base];
  }
  return 0;
}

}  // namespace

int diagonal_solve_real(int n, int nrhs, const int *ia, const int *, const double *a, double *b,
                        double *x, int over_b, bool solve, int threads, int *positive,
                        int *negative) {
  const int status = diagonal_solve(n, nrhs, ia, a, b, x, over_b, solve, threads);
  if (status == 0) {
    int pos = 0, neg = 0;
    for (int i = 0; i < n; ++i) (a[ia[i] - ia[0]] > 0 ? pos : neg)++;
    *positive = pos;
    *negative = neg;
  }
  return status;
}

int diagonal_solve_complex(int n, int nrhs, const int *ia, const int *, const c16 *a, c16 *b,
                           c16 *x, int over_b, bool solve, int threads) {
  return diagonal_solve(n, nrhs, ia, a, b, x, over_b, solve, threads);
}

void front(void **pt, const int *maxfct, const int *mnum, const int *mtype, const int *phase,
           const int *n, const void *a, const int *ia, const int *ja, int *perm, const int *nrhs,
           int *iparam, const int *msglvl, void *b, void *x, int *error) {
  if (*phase == -2) {
    *error = 16;
    iparam[0] = 23;
    return;
  }
  if (*phase == -3) {
    *error = 300000;
    return;
  }
  *error = 0;
  int threads = threads::max_threads();
  if (*n < threads) threads = *n;

  // A matrix of exactly n stored entries is taken as diagonal.
  const int base = iparam[34] == 1 ? 0 : 1;
  if (*phase >= 1 && *n >= 1 && ia[*n] - base == *n) {
    iparam[11] = -1;
    const int reduced = *mtype > 10 ? *mtype - 10 : *mtype;
    if (*phase == 11) return;
    const bool solve = *phase % 10 == 3;
    const int team = std::max(threads, 1);
    int status;
    if (reduced > 2 || reduced < -2)
      status = diagonal_solve_complex(*n, *nrhs, ia, ja, static_cast<const c16 *>(a),
                                      static_cast<c16 *>(b), static_cast<c16 *>(x), iparam[5],
                                      solve, team);
    else
      status = diagonal_solve_real(*n, *nrhs, ia, ja, static_cast<const double *>(a),
                                   static_cast<double *>(b), static_cast<double *>(x), iparam[5],
                                   solve, team, &iparam[21], &iparam[22]);
    if (status != 0) *error = -7;
    return;
  }
  if (iparam[11] == -1) return;

  iparam[2] = threads;
  const Call call{pt, *maxfct, *mnum, *mtype, *phase,  *n, a, ia,
                  ja, perm,    *nrhs, iparam, *msglvl, b,  x, threads < 1 ? 1 : threads};
  *error = drive(call);
  if (*phase == 33 && iparam[3] == 0) *error = 0;
}

}  // namespace orb::sparse

extern "C" ORB_API void TESSERA(void **pt, const int *maxfct, const int *mnum, const int *mtype,
                                const int *phase, const int *n, const void *a, const int *ia,
                                const int *ja, int *perm, const int *nrhs, int *iparam,
                                const int *msglvl, void *b, void *x, int *error) {
  orb::entry::plain(orb::sparse::front, pt, maxfct, mnum, mtype, phase, n, a, ia, ja, perm, nrhs,
                    iparam, msglvl, b, x, error);
}
