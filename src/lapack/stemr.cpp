// MRRR for the symmetric tridiagonal eigenproblem (eigen.h): the matrix
// is scaled into a safe range, split, and each block given a root
// representation L D L^T - sigma with its eigenvalue approximations
// (larre); the vectors come from the representation tree (larrv). Without
// vectors, or when high relative accuracy was asked for and the matrix
// warrants it, the eigenvalues are finished by bisection on the original
// tridiagonal (larrj) instead of on the representations.
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>

#include "lapack/auxiliary.h"
#include "lapack/eigen.h"
#include "lapack/mrrr.h"

namespace orb::lapack {

namespace {

// Where the eigenvectors of the 2-by-2 go: the published routine's choice of
// signs, and the support of a vector with a zero entry.
template <class T>
void put_pair_vector(T *z, std::ptrdiff_t ldz, int col, real_t<T> z0, real_t<T> z1, real_t<T> cs,
                     real_t<T> sn, int *isuppz) {
  z[col * ldz] = T(z0);
  z[col * ldz + 1] = T(z1);
  if (sn != 0) {
    isuppz[2 * col] = 1;
    isuppz[2 * col + 1] = cs != 0 ? 2 : 1;
  } else {
    isuppz[2 * col] = 2;
    isuppz[2 * col + 1] = 2;
  }
}

}  // namespace

template <class T>
int stemr(JobZ jobz, Range range, int n, real_t<T> *d, real_t<T> *e, real_t<T> vl, real_t<T> vu,
          int il, int iu, int *m, real_t<T> *w, T *z, int ldz, int nzc, int *isuppz, bool *tryrac,
          real_t<T> *work, int lwork, int *iwork, int liwork) {
  using R = real_t<T>;
  const bool wantz = jobz == JobZ::kVectors;
  const bool alleig = range == Range::kAll;
  const bool valeig = range == Range::kValues;
  const bool indeig = range == Range::kIndices;
  const bool lquery = lwork == -1 || liwork == -1;
  const bool zquery = nzc == -1;
  const std::int64_t lwmin = (wantz ? 18 : 12) * std::int64_t(n);
  const std::int64_t liwmin = (wantz ? 10 : 8) * std::int64_t(n);
  const std::ptrdiff_t ld_z = ldz;

  const R safmin = mrrr::safmin<R>();
  const R epsr = mrrr::eps<R>();
  const R smlnum = safmin / epsr;
  const R bignum = R(1) / smlnum;
  const R rmin = std::sqrt(smlnum);
  const R rmax = std::min(std::sqrt(bignum), R(1) / std::sqrt(std::sqrt(safmin)));

  R wl = 0, wu = 0;
  int iil = 0, iiu = 0;
  if (valeig) {
    wl = vl;
    wu = vu;
  } else if (indeig) {
    iil = il;
    iiu = iu;
  }

  if (lquery || zquery) {
    work[0] = R(lwmin);
    iwork[0] = int(liwmin);
    if (zquery) {
      int nzcmin = 0;
      if (wantz && alleig) {
        nzcmin = n;
      } else if (wantz && valeig) {
        int lc, rc;
        mrrr::larrc(n, vl, vu, d, e, safmin, &nzcmin, &lc, &rc);
      } else if (wantz && indeig) {
        nzcmin = iiu - iil + 1;
      }
      z[0] = T(R(nzcmin));
    }
    return 0;
  }

  *m = 0;
  if (n == 0) return 0;
  if (n == 1) {
    if (alleig || indeig || (wl < d[0] && wu >= d[0])) {
      *m = 1;
      w[0] = d[0];
    }
    if (wantz) {
      z[0] = T(1);
      isuppz[0] = 1;
      isuppz[1] = 1;
    }
    return 0;
  }

  int nsplit = 0;
  if (n == 2) {
    R r1, r2, cs = 0, sn = 0;
    laev2(d[0], e[0], d[1], &r1, &r2, &cs, &sn);
    const bool swapped = r1 < r2;
    if (swapped) std::swap(r1, r2);
    // r2 <= r1 now; (cs, sn) belongs to the one laev2 returned first.
    int mm = 0;
    if (alleig || (valeig && r2 > wl && r2 <= wu) || (indeig && iil == 1)) {
      w[mm] = r2;
      if (wantz) {
        if (swapped)
          put_pair_vector(z, ld_z, mm, cs, sn, cs, sn, isuppz);
        else
          put_pair_vector(z, ld_z, mm, -sn, cs, cs, sn, isuppz);
      }
      ++mm;
    }
    if (alleig || (valeig && r1 > wl && r1 <= wu) || (indeig && iiu == 2)) {
      w[mm] = r1;
      if (wantz) {
        if (swapped)
          put_pair_vector(z, ld_z, mm, -sn, cs, cs, sn, isuppz);
        else
          put_pair_vector(z, ld_z, mm, cs, sn, cs, sn, isuppz);
      }
      ++mm;
    }
    *m = mm;
  } else {
    // Workspace: Gershgorin intervals (2n), eigenvalue errors (n) and gaps
    // (n), a copy of d (n), e^2 (n), then the routines' own; the integer
    // splitting points (n), blocks (n), local indices (n), then scratch.
    R *gers = work;
    R *werr = work + 2 * std::ptrdiff_t(n);
    R *wgap = work + 3 * std::ptrdiff_t(n);
    R *dcopy = work + 4 * std::ptrdiff_t(n);
    R *e2 = work + 5 * std::ptrdiff_t(n);
    R *wrk = work + 6 * std::ptrdiff_t(n);
    int *isplit = iwork;
    int *iblock = iwork + n;
    int *indexw = iwork + 2 * std::ptrdiff_t(n);
    int *iwrk = iwork + 3 * std::ptrdiff_t(n);

    // Scale the matrix into the range where the representations neither
    // overflow nor lose their small entries.
    R scale = 1;
    R tnrm = 0;
    for (int i = 0; i < n; ++i) tnrm = std::max(tnrm, std::abs(d[i]));
    for (int i = 0; i < n - 1; ++i) tnrm = std::max(tnrm, std::abs(e[i]));
    if (tnrm > R(0) && tnrm < rmin)
      scale = rmin / tnrm;
    else if (tnrm > rmax)
      scale = rmax / tnrm;
    if (scale != R(1)) {
      for (int i = 0; i < n; ++i) d[i] *= scale;
      for (int i = 0; i < n - 1; ++i) e[i] *= scale;
      tnrm *= scale;
      if (valeig) {
        wl *= scale;
        wu *= scale;
      }
    }

    // High relative accuracy is tried only when the matrix determines its
    // eigenvalues to it; the split then follows the relative criterion.
    if (*tryrac && !mrrr::larrr(n, d, e)) *tryrac = false;
    const R thresh = *tryrac ? epsr : -epsr;
    if (*tryrac) std::copy(d, d + n, dcopy);
    for (int j = 0; j < n - 1; ++j) e2[j] = e[j] * e[j];

    R rtol1, rtol2;
    if (!wantz) {
      rtol1 = 4 * epsr;
      rtol2 = 4 * epsr;
    } else {
      rtol1 = std::max(std::sqrt(epsr) * R(5.0e-2), 4 * epsr);
      rtol2 = std::max(std::sqrt(epsr) * R(5.0e-3), 4 * epsr);
    }
    R pivmin = 0;
    int mm = 0;
    int info = mrrr::larre(range, n, &wl, &wu, iil, iiu, d, e, e2, rtol1, rtol2, thresh, &nsplit,
                           isplit, &mm, w, werr, wgap, iblock, indexw, gers, &pivmin, wrk, iwrk);
    if (info != 0) return 10 + std::abs(info);
    *m = mm;

    if (wantz) {
      const R minrgp = R(3.0e-3);
      info = mrrr::larrv<T>(n, wl, wu, d, e, pivmin, isplit, mm, minrgp, rtol1, rtol2, w, werr,
                            wgap, iblock, indexw, gers, z, ldz, isuppz, wrk, iwrk);
      if (info != 0) return 20 + std::abs(info);
    } else {
      // The eigenvalues relative to their blocks' shifts made absolute.
      for (int j = 0; j < mm; ++j) w[j] += e[isplit[iblock[j] - 1] - 1];
    }

    if (*tryrac && mm > 0) {
      // Bisection on the original tridiagonal to full relative accuracy,
      // block by block.
      int ibegin = 0, wbegin = 0;
      for (int jblk = 1; jblk <= iblock[mm - 1]; ++jblk) {
        const int iend = isplit[jblk - 1] - 1;
        const int in = iend - ibegin + 1;
        int wend = wbegin - 1;
        while (wend < mm - 1 && iblock[wend + 1] == jblk) ++wend;
        if (wend < wbegin) {
          ibegin = iend + 1;
          continue;
        }
        const int offset = indexw[wbegin] - 1;
        const int ifirst = indexw[wbegin];
        const int ilast = indexw[wend];
        mrrr::larrj(in, dcopy + ibegin, e2 + ibegin, ifirst, ilast, 4 * epsr, offset, w + wbegin,
                    werr + wbegin, wrk, iwrk, pivmin, tnrm);
        ibegin = iend + 1;
        wbegin = wend + 1;
      }
    }
    if (scale != R(1))
      for (int j = 0; j < mm; ++j) w[j] /= scale;
  }

  // Blocks leave the eigenvalues grouped: sort them, with their vectors.
  if (nsplit > 1 || n == 2) {
    const int mm = *m;
    if (!wantz) {
      std::sort(w, w + mm);
    } else {
      for (int j = 0; j < mm - 1; ++j) {
        int imin = -1;
        R t = w[j];
        for (int jj = j + 1; jj < mm; ++jj)
          if (w[jj] < t) {
            imin = jj;
            t = w[jj];
          }
        if (imin >= 0) {
          w[imin] = w[j];
          w[j] = t;
          std::swap_ranges(z + imin * ld_z, z + imin * ld_z + n, z + j * ld_z);
          std::swap(isuppz[2 * imin], isuppz[2 * j]);
          std::swap(isuppz[2 * imin + 1], isuppz[2 * j + 1]);
        }
      }
    }
  }
  work[0] = R(lwmin);
  iwork[0] = int(liwmin);
  return 0;
}

template int stemr<float>(JobZ, Range, int, float *, float *, float, float, int, int, int *,
                          float *, float *, int, int, int *, bool *, float *, int, int *, int);
template int stemr<std::complex<float>>(JobZ, Range, int, float *, float *, float, float, int, int,
                                        int *, float *, std::complex<float> *, int, int, int *,
                                        bool *, float *, int, int *, int);

}  // namespace orb::lapack
