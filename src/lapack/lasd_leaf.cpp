// The leaves and the shape of the divide-and-conquer tree: the QR iteration
// on a small (possibly n by n + 1) bidiagonal, the split of n rows into
// subproblems, and the merge of two sorted index runs.
#include <cmath>

#include "lapack/lasd.h"

namespace orb::lapack::dc {

template <class R>
void lamrg(int n1, int n2, const R *a, int s1, int s2, int *index) {
  int i1 = s1 > 0 ? 1 : n1;
  int i2 = s2 > 0 ? n1 + 1 : n1 + n2;
  int k = 0;
  while (n1 > 0 && n2 > 0) {
    if (a[i1 - 1] <= a[i2 - 1]) {
      index[k++] = i1;
      i1 += s1;
      --n1;
    } else {
      index[k++] = i2;
      i2 += s2;
      --n2;
    }
  }
  for (; n2 > 0; --n2, i2 += s2) index[k++] = i2;
  for (; n1 > 0; --n1, i1 += s1) index[k++] = i1;
}

void lasdt(int n, int &lvl, int &nd, int *inode, int *ndiml, int *ndimr, int msub) {
  const int maxn = n > 1 ? n : 1;
  lvl = static_cast<int>(std::log(static_cast<double>(maxn) / (msub + 1)) / std::log(2.0)) + 1;
  // Node 1 is the root; the children of node c are 2c and 2c + 1, each
  // splitting its side of the parent around its own centre row.
  const int half = n / 2;
  inode[0] = half + 1;
  ndiml[0] = half;
  ndimr[0] = n - half - 1;
  int il = -1, ir = 0, first = 1;
  for (int level = 1; level < lvl; ++level) {
    for (int i = 0; i < first; ++i) {
      il += 2;
      ir += 2;
      const int parent = first + i - 1;
      ndiml[il] = ndiml[parent] / 2;
      ndimr[il] = ndiml[parent] - ndiml[il] - 1;
      inode[il] = inode[parent] - ndimr[il] - 1;
      ndiml[ir] = ndimr[parent] / 2;
      ndimr[ir] = ndimr[parent] - ndiml[ir] - 1;
      inode[ir] = inode[parent] + ndiml[ir] + 1;
    }
    first *= 2;
  }
  nd = 2 * first - 1;
}

template <class R>
int lasdq(Uplo uplo, int sqre, int n, int ncvt, int nru, int ncc, R *d, R *e, R *vt, int ldvt, R *u,
          int ldu, R *c, int ldc, R *work) {
  if (n == 0) return 0;
  const bool rotate = ncvt > 0 || nru > 0 || ncc > 0;
  bool lower = uplo == Uplo::kLower;
  int sq = sqre;
  R *cs = work, *sn = work + n;
  // An upper n by n + 1 matrix: rotations from the right (taken by VT)
  // fold its extra column into the diagonal and leave it lower bidiagonal
  // n by n, its last column zero; the lower case below makes it upper.
  if (!lower && sq == 1) {
    for (int i = 0; i < n; ++i) {
      R cr, sr, r;
      lartg(d[i], e[i], cr, sr, r);
      d[i] = r;
      if (i + 1 < n) {
        e[i] = sr * d[i + 1];
        d[i + 1] = cr * d[i + 1];
      } else {
        e[i] = 0;
      }
      if (rotate) cs[i] = cr, sn[i] = sr;
    }
    lower = true;
    sq = 0;
    if (ncvt > 0) rotate_rows(true, n + 1, ncvt, cs, sn, vt, ldvt);
  }
  // A lower bidiagonal becomes upper by rotations from the left.
  if (lower) {
    for (int i = 0; i + 1 < n; ++i) {
      R cr, sr, r;
      lartg(d[i], e[i], cr, sr, r);
      d[i] = r;
      e[i] = sr * d[i + 1];
      d[i + 1] = cr * d[i + 1];
      if (rotate) cs[i] = cr, sn[i] = sr;
    }
    if (sq == 1) {
      R cr, sr, r;
      lartg(d[n - 1], e[n - 1], cr, sr, r);
      d[n - 1] = r;
      if (rotate) cs[n - 1] = cr, sn[n - 1] = sr;
    }
    const int rows = sq == 0 ? n : n + 1;
    if (nru > 0) rotate_columns(nru, rows, cs, sn, u, ldu);
    if (ncc > 0) rotate_rows(true, rows, ncc, cs, sn, c, ldc);
  }
  const int info = bdsqr<R>(Uplo::kUpper, n, ncvt, nru, ncc, d, e, vt, ldvt, u, ldu, c, ldc, work);
  // Ascending order, one exchange per position.
  for (int i = 0; i < n; ++i) {
    int imin = i;
    for (int j = i + 1; j < n; ++j)
      if (d[j] < d[imin]) imin = j;
    if (imin == i) continue;
    std::swap(d[i], d[imin]);
    for (int j = 0; j < ncvt; ++j)
      std::swap(vt[i + static_cast<std::ptrdiff_t>(j) * ldvt],
                vt[imin + static_cast<std::ptrdiff_t>(j) * ldvt]);
    for (int j = 0; j < nru; ++j)
      std::swap(u[j + static_cast<std::ptrdiff_t>(i) * ldu],
                u[j + static_cast<std::ptrdiff_t>(imin) * ldu]);
    for (int j = 0; j < ncc; ++j)
      std::swap(c[i + static_cast<std::ptrdiff_t>(j) * ldc],
                c[imin + static_cast<std::ptrdiff_t>(j) * ldc]);
  }
  return info;
}

template void lamrg<float>(int, int, const float *, int, int, int *);
template void lamrg<double>(int, int, const double *, int, int, int *);
template int lasdq<float>(Uplo, int, int, int, int, int, float *, float *, float *, int, float *,
                          int, float *, int, float *);
template int lasdq<double>(Uplo, int, int, int, int, int, double *, double *, double *, int,
                           double *, int, double *, int, double *);

}  // namespace orb::lapack::dc
