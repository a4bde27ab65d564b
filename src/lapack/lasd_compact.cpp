// The divide-and-conquer tree in compact form, for the least-squares solve:
// instead of multiplying the singular vectors out, each merge keeps what it
// takes to apply them later (the deflation rotations and permutation, the
// secular equation's poles, z and the differences difl, difr), and only the
// first and last rows of the right vectors (vf, vl) travel up the tree.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "lapack/lasd.h"

namespace orb::lapack::dc {
namespace {

// Deflation of a compact merge (xLASD7 keeping the rotations): sorts d,
// deflates tiny z components and close pairs, records the rotations in
// givcol/givnum and the permutation in perm; returns k.
template <class R>
int deflate_compact(int nl, int nr, int sqre, R *dd, R *zz, R *zw_, R *vf_, R *vfw_, R *vl_,
                    R *vlw_, R alpha, R beta, R *dsigma_, int *idx_, int *idxp_, int *idxq_,
                    int *perm_, int &givptr, int *givcol_, int ldgcol, R *givnum_, int ldgnum, R &c,
                    R &s) {
  const int n = nl + nr + 1, m = n + sqre, nlp1 = nl + 1, nlp2 = nl + 2;
  const auto d = vec1(dd), z = vec1(zz), zw = vec1(zw_), vf = vec1(vf_), vfw = vec1(vfw_),
             vl = vec1(vl_), vlw = vec1(vlw_), dsigma = vec1(dsigma_);
  const auto idx = vec1(idx_), idxp = vec1(idxp_), idxq = vec1(idxq_), perm = vec1(perm_);
  const auto givcol = mat1(givcol_, ldgcol);
  const auto givnum = mat1(givnum_, ldgnum);
  givptr = 0;
  // z from the halves' boundary rows of the right vectors.
  const R z1 = alpha * vl(nlp1);
  vl(nlp1) = 0;
  const R tau0 = vf(nlp1);
  for (int i = nl; i >= 1; --i) {
    z(i + 1) = alpha * vl(i);
    vl(i) = 0;
    vf(i + 1) = vf(i);
    d(i + 1) = d(i);
    idxq(i + 1) = idxq(i) + 1;
  }
  vf(1) = tau0;
  for (int i = nlp2; i <= m; ++i) {
    z(i) = beta * vf(i);
    vf(i) = 0;
  }
  for (int i = nlp2; i <= n; ++i) idxq(i) += nlp1;
  // Sort d(2..n) ascending, carrying z, vf and vl.
  for (int i = 2; i <= n; ++i) {
    dsigma(i) = d(idxq(i));
    zw(i) = z(idxq(i));
    vfw(i) = vf(idxq(i));
    vlw(i) = vl(idxq(i));
  }
  lamrg(nl, nr, dsigma.at(2), 1, 1, idx.at(2));
  for (int i = 2; i <= n; ++i) {
    const int idxi = 1 + idx(i);
    d(i) = dsigma(idxi);
    z(i) = zw(idxi);
    vf(i) = vfw(idxi);
    vl(i) = vlw(idxi);
  }
  const R tol = 64 * eps<R>() * std::max(std::abs(d(n)), std::max(std::abs(alpha), std::abs(beta)));
  auto source = [&](int j) {
    const int col = idxq(idx(j) + 1);
    return col <= nlp1 ? col - 1 : col;
  };
  int k = 1, k2 = n + 1, jprev = 0;
  for (int j = 2; j <= n; ++j) {
    if (std::abs(z(j)) <= tol) {
      --k2;
      idxp(k2) = j;
    } else {
      jprev = j;
      break;
    }
  }
  if (jprev != 0) {
    for (int j = jprev + 1; j <= n; ++j) {
      if (std::abs(z(j)) <= tol) {
        --k2;
        idxp(k2) = j;
      } else if (d(j) - d(jprev) <= tol) {
        R sj = z(jprev), cj = z(j);
        const R tau = std::hypot(cj, sj);
        z(j) = tau;
        z(jprev) = 0;
        cj /= tau;
        sj = -sj / tau;
        ++givptr;
        givcol(givptr, 2) = source(jprev);
        givcol(givptr, 1) = source(j);
        givnum(givptr, 2) = cj;
        givnum(givptr, 1) = sj;
        rot(1, vf.at(jprev), 1, vf.at(j), 1, cj, sj);
        rot(1, vl.at(jprev), 1, vl.at(j), 1, cj, sj);
        --k2;
        for (int jp = jprev; jp <= j - 1; ++jp) idxp(k2 + j - 1 - jp) = jp;
        jprev = j;
      } else {
        ++k;
        zw(k) = z(jprev);
        dsigma(k) = d(jprev);
        idxp(k) = jprev;
        jprev = j;
      }
    }
    ++k;
    zw(k) = z(jprev);
    dsigma(k) = d(jprev);
    idxp(k) = jprev;
  }
  for (int j = 2; j <= n; ++j) {
    const int jp = idxp(j);
    dsigma(j) = d(jp);
    vfw(j) = vf(jp);
    vlw(j) = vl(jp);
  }
  for (int j = 2; j <= n; ++j) perm(j) = source(idxp(j));
  for (int i = k + 1; i <= n; ++i) d(i) = dsigma(i);
  dsigma(1) = 0;
  const R hlftol = tol / 2;
  if (std::abs(dsigma(2)) <= hlftol) dsigma(2) = hlftol;
  if (m > n) {
    z(1) = std::hypot(z1, z(m));
    if (z(1) <= tol) {
      c = 1, s = 0;
      z(1) = tol;
    } else {
      c = z1 / z(1);
      s = -z(m) / z(1);
    }
    rot(1, vf.at(m), 1, vf.at(1), 1, c, s);
    rot(1, vl.at(m), 1, vl.at(1), 1, c, s);
  } else {
    z(1) = std::abs(z1) <= tol ? tol : z1;
  }
  for (int i = 2; i <= k; ++i) z(i) = zw(i);
  for (int i = 2; i <= n; ++i) vf(i) = vfw(i), vl(i) = vlw(i);
  return k;
}

// The secular equation of a compact merge (xLASD8 keeping the data): the
// new values in d(1..k), difl, difr (k by 2, ld lddifr) and z for the later
// products, and vf, vl updated to the merged matrix's boundary rows.
// work: 3k.
template <class R>
int secular_compact(int k, R *dd, R *zz, R *vf, R *vl, R *difl_, R *difr_, int lddifr, R *dsigma_,
                    R *work) {
  const auto d = vec1(dd), z = vec1(zz), dsigma = vec1(dsigma_), difl = vec1(difl_);
  const auto difr = mat1(difr_, lddifr);
  if (k == 1) {
    d(1) = std::abs(z(1));
    difl(1) = d(1);
    difl(2) = 1;
    difr(1, 2) = 1;
    return 0;
  }
  const auto wk = vec1(work);
  R *delta = work + k, *prod = work + 2 * k;
  const auto dl = vec1(delta), pr = vec1(prod);
  R rho = nrm2(k, zz);
  rescale(rho, R(1), k, 1, zz, k);
  rho *= rho;
  for (int i = 1; i <= k; ++i) pr(i) = 1;
  for (int j = 1; j <= k; ++j) {
    // Root j: wk receives d_i - sigma_j, dl receives d_i + sigma_j.
    const int info = lasd4(k, j, dsigma_, zz, work, rho, d(j), delta);
    if (info != 0) return info;
    pr(j) *= wk(j) * dl(j);
    difl(j) = -wk(j);
    difr(j, 1) = -wk(j + 1);
    for (int i = 1; i <= j - 1; ++i)
      pr(i) = pr(i) * wk(i) * dl(i) / (dsigma(i) - dsigma(j)) / (dsigma(i) + dsigma(j));
    for (int i = j + 1; i <= k; ++i)
      pr(i) = pr(i) * wk(i) * dl(i) / (dsigma(i) - dsigma(j)) / (dsigma(i) + dsigma(j));
  }
  // z from the roots, so the implied vectors are orthogonal.
  for (int i = 1; i <= k; ++i) z(i) = sign(std::sqrt(std::abs(pr(i))), z(i));
  for (int j = 1; j <= k; ++j) {
    const R diflj = difl(j), dj = d(j), dsigj = -dsigma(j);
    R difrj = 0, dsigjp = 0;
    if (j < k) {
      difrj = -difr(j, 1);
      dsigjp = -dsigma(j + 1);
    }
    wk(j) = -z(j) / diflj / (dsigma(j) + dj);
    for (int i = 1; i <= j - 1; ++i)
      wk(i) = z(i) / ((dsigma(i) + dsigj) - diflj) / (dsigma(i) + dj);
    for (int i = j + 1; i <= k; ++i)
      wk(i) = z(i) / ((dsigma(i) + dsigjp) + difrj) / (dsigma(i) + dj);
    const R t = nrm2(k, work);
    R f = 0, l = 0;
    for (int i = 0; i < k; ++i) f += work[i] * vf[i], l += work[i] * vl[i];
    dl(j) = f / t;
    pr(j) = l / t;
    difr(j, 2) = t;
  }
  std::memcpy(vf, delta, sizeof(R) * k);
  std::memcpy(vl, prod, sizeof(R) * k);
  return 0;
}

// A compact merge (xLASD6 keeping the data).
template <class R>
int merge_compact(int nl, int nr, int sqre, R *d, R *vf, R *vl, R alpha, R beta, int *idxq,
                  int *perm, int &givptr, int *givcol, int ldgcol, R *givnum, int ldgnum, R *poles,
                  R *difl, R *difr, R *z, int &k, R &c, R &s, R *work, int *iwork) {
  const int n = nl + nr + 1, m = n + sqre;
  R *dsigma = work, *zw = dsigma + n, *vfw = zw + m, *vlw = vfw + m;
  int *idx = iwork, *idxp = idx + 2 * n;
  R orgnrm = std::max(std::abs(alpha), std::abs(beta));
  d[nl] = 0;
  for (int i = 0; i < n; ++i) orgnrm = std::max(orgnrm, std::abs(d[i]));
  rescale(orgnrm, R(1), n, 1, d, n);
  alpha /= orgnrm;
  beta /= orgnrm;
  k = deflate_compact(nl, nr, sqre, d, z, zw, vf, vfw, vl, vlw, alpha, beta, dsigma, idx, idxp,
                      idxq, perm, givptr, givcol, ldgcol, givnum, ldgnum, c, s);
  const int info = secular_compact(k, d, z, vf, vl, difl, difr, ldgnum, dsigma, zw);
  if (info != 0) return info;
  std::memcpy(poles, d, sizeof(R) * k);
  std::memcpy(poles + ldgnum, dsigma, sizeof(R) * k);
  rescale(R(1), orgnrm, n, 1, d, n);
  lamrg(k, n - k, d, 1, -1, idxq);
  return 0;
}

}  // namespace

template <class R>
int lasda(int smlsiz, int n, int sqre, R *d, R *e, R *u, int ldu, R *vt, int *k, R *difl, R *difr,
          R *z, R *poles, int *givptr, int *givcol, int ldgcol, int *perm, R *givnum, R *c, R *s,
          R *work, int *iwork) {
  const int m = n + sqre;
  if (n <= smlsiz) {
    identity(n, n, u, ldu);
    identity(m, m, vt, ldu);
    return lasdq(Uplo::kUpper, sqre, n, m, n, 0, d, e, vt, ldu, u, ldu, u, ldu, work);
  }
  int *inode = iwork, *ndiml = inode + n, *ndimr = ndiml + n, *idxq = ndimr + n, *iwk = idxq + n;
  R *vf = work, *vl = vf + m, *wk = vl + m;
  const auto U = mat1(u, ldu), VT = mat1(vt, ldu);
  int nlvl, nd;
  lasdt(n, nlvl, nd, inode, ndiml, ndimr, smlsiz);
  // Leaves: full vectors of each block, and their boundary rows in vf, vl.
  for (int i = (nd + 1) / 2; i <= nd; ++i) {
    const int ic = inode[i - 1], nl = ndiml[i - 1], nr = ndimr[i - 1];
    const int nlf = ic - nl, nrf = ic + 1, nlp1 = nl + 1;
    identity(nl, nl, U.at(nlf, 1), ldu);
    identity(nlp1, nlp1, VT.at(nlf, 1), ldu);
    int info = lasdq(Uplo::kUpper, 1, nl, nlp1, nl, 0, d + nlf - 1, e + nlf - 1, VT.at(nlf, 1), ldu,
                     U.at(nlf, 1), ldu, U.at(nlf, 1), ldu, wk);
    if (info != 0) return info;
    std::memcpy(vf + nlf - 1, VT.at(nlf, 1), sizeof(R) * nlp1);
    std::memcpy(vl + nlf - 1, VT.at(nlf, nlp1), sizeof(R) * nlp1);
    for (int j = 1; j <= nl; ++j) idxq[nlf - 2 + j] = j;
    const int sqrei = (i == nd && sqre == 0) ? 0 : 1;
    const int nrp1 = nr + sqrei;
    identity(nr, nr, U.at(nrf, 1), ldu);
    identity(nrp1, nrp1, VT.at(nrf, 1), ldu);
    info = lasdq(Uplo::kUpper, sqrei, nr, nrp1, nr, 0, d + nrf - 1, e + nrf - 1, VT.at(nrf, 1), ldu,
                 U.at(nrf, 1), ldu, U.at(nrf, 1), ldu, wk);
    if (info != 0) return info;
    std::memcpy(vf + nrf - 1, VT.at(nrf, 1), sizeof(R) * nrp1);
    std::memcpy(vl + nrf - 1, VT.at(nrf, nrp1), sizeof(R) * nrp1);
    for (int j = 1; j <= nr; ++j) idxq[nlf - 1 + nlp1 + j - 1] = j;
  }
  // Merges, bottom up; node j of the compact arrays counts down from 2^nlvl.
  const auto DIFL = mat1(difl, ldu), DIFR = mat1(difr, ldu), Z = mat1(z, ldu),
             POLES = mat1(poles, ldu), GIVNUM = mat1(givnum, ldu);
  const auto PERM = mat1(perm, ldgcol), GIVCOL = mat1(givcol, ldgcol);
  int j = 1 << nlvl;
  for (int lvl = nlvl; lvl >= 1; --lvl) {
    const int lvl2 = 2 * lvl - 1;
    const int lf = lvl == 1 ? 1 : 1 << (lvl - 1), ll = lvl == 1 ? 1 : 2 * lf - 1;
    for (int i = lf; i <= ll; ++i) {
      const int ic = inode[i - 1], nl = ndiml[i - 1], nr = ndimr[i - 1];
      const int nlf = ic - nl;
      const int sqrei = i == ll ? sqre : 1;
      --j;
      const int info = merge_compact(
          nl, nr, sqrei, d + nlf - 1, vf + nlf - 1, vl + nlf - 1, d[ic - 1], e[ic - 1],
          idxq + nlf - 1, PERM.at(nlf, lvl), givptr[j - 1], GIVCOL.at(nlf, lvl2), ldgcol,
          GIVNUM.at(nlf, lvl2), ldu, POLES.at(nlf, lvl2), DIFL.at(nlf, lvl), DIFR.at(nlf, lvl2),
          Z.at(nlf, lvl), k[j - 1], c[j - 1], s[j - 1], wk, iwk);
      if (info != 0) return info;
    }
  }
  return 0;
}

template int lasda<float>(int, int, int, float *, float *, float *, int, float *, int *, float *,
                          float *, float *, float *, int *, int *, int, int *, float *, float *,
                          float *, float *, int *);
template int lasda<double>(int, int, int, double *, double *, double *, int, double *, int *,
                           double *, double *, double *, double *, int *, int *, int, int *,
                           double *, double *, double *, double *, int *);

}  // namespace orb::lapack::dc
