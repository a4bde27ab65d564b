// The divide and conquer with explicit singular vectors: the bidiagonal
// is cut at a row into two halves whose SVDs, joined by that row, give an
// upper "broken arrow" matrix [z; diag(d)] up to the halves' vectors. The
// merge deflates (tiny z_j, close d_j), solves the secular equation for the
// rest, rebuilds z from the computed values so the vectors are orthogonal
// to working accuracy, and multiplies the small vector matrices into the
// halves' vectors with matrix products, grouped by the columns' nonzero
// structure (upper half only, lower half only, dense, deflated).
#include <algorithm>
#include <cmath>
#include <cstring>

#include "lapack/blas_calls.h"
#include "lapack/lasd.h"

namespace orb::lapack::dc {
namespace {

// Column types of the merged problem's U2 columns: nonzero in the upper
// half only, the lower half only, both, or deflated.
enum : int { kUpperHalf = 1, kLowerHalf = 2, kDense = 3, kDeflated = 4 };

// Deflation of the merge (xLASD2): sorts d, deflates tiny z components and
// close pairs (with a rotation of the vectors), and lays out in u2 and vt2
// the non-deflated vectors grouped by column type; returns k, the size of
// the secular equation. ctot receives the count per column type.
template <class R>
int deflate(int nl, int nr, int sqre, R *dd, R *zz, R alpha, R beta, R *u_, int ldu, R *vt_,
            int ldvt, R *dsigma_, R *u2_, int ldu2, R *vt2_, int ldvt2, int *idxp_, int *idx_,
            int *idxc_, int *idxq_, int *coltyp_) {
  const int n = nl + nr + 1, m = n + sqre, nlp1 = nl + 1, nlp2 = nl + 2;
  const auto d = vec1(dd), z = vec1(zz), dsigma = vec1(dsigma_);
  const auto u = mat1(u_, ldu), vt = mat1(vt_, ldvt), u2 = mat1(u2_, ldu2), vt2 = mat1(vt2_, ldvt2);
  const auto idxp = vec1(idxp_), idx = vec1(idx_), idxc = vec1(idxc_), idxq = vec1(idxq_),
             coltyp = vec1(coltyp_);

  // z is the row joining the halves: alpha times the last row of the upper
  // half's VT, beta times the first row of the lower half's; its first
  // element stays apart.
  const R z1 = alpha * vt(nlp1, nlp1);
  z(1) = z1;
  for (int i = nl; i >= 1; --i) {
    z(i + 1) = alpha * vt(i, nlp1);
    d(i + 1) = d(i);
    idxq(i + 1) = idxq(i) + 1;
  }
  for (int i = nlp2; i <= m; ++i) z(i) = beta * vt(i, nlp2);
  for (int i = 2; i <= nlp1; ++i) coltyp(i) = kUpperHalf;
  for (int i = nlp2; i <= n; ++i) coltyp(i) = kLowerHalf;
  for (int i = nlp2; i <= n; ++i) idxq(i) += nlp1;

  // Sort d(2..n) ascending, carrying z and the column types.
  for (int i = 2; i <= n; ++i) {
    dsigma(i) = d(idxq(i));
    u2(i, 1) = z(idxq(i));
    idxc(i) = coltyp(idxq(i));
  }
  lamrg(nl, nr, dsigma.at(2), 1, 1, idx.at(2));
  for (int i = 2; i <= n; ++i) {
    const int idxi = 1 + idx(i);
    d(i) = dsigma(idxi);
    z(i) = u2(idxi, 1);
    coltyp(i) = idxc(idxi);
  }

  const R tol = 64 * eps<R>() * std::max(std::abs(d(n)), std::max(std::abs(alpha), std::abs(beta)));
  // The original column of sorted position j.
  auto source = [&](int j) {
    const int c = idxq(idx(j) + 1);
    return c <= nlp1 ? c - 1 : c;
  };

  int k = 1, k2 = n + 1, jprev = 0;
  for (int j = 2; j <= n; ++j) {
    if (std::abs(z(j)) <= tol) {
      --k2;
      idxp(k2) = j;
      coltyp(j) = kDeflated;
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
        coltyp(j) = kDeflated;
      } else if (d(j) - d(jprev) <= tol) {
        // Two close values: a rotation zeroes z(jprev) and deflates it.
        R s = z(jprev), c = z(j);
        const R tau = std::hypot(c, s);
        c /= tau;
        s = -s / tau;
        z(j) = tau;
        z(jprev) = 0;
        const int cjp = source(jprev), cj = source(j);
        rot(n, u.at(1, cjp), 1, u.at(1, cj), 1, c, s);
        rot(m, vt.at(cjp, 1), ldvt, vt.at(cj, 1), ldvt, c, s);
        if (coltyp(j) != coltyp(jprev)) coltyp(j) = kDense;
        coltyp(jprev) = kDeflated;
        --k2;
        for (int jp = jprev; jp <= j - 1; ++jp) idxp(k2 + j - 1 - jp) = jp;
        jprev = j;
      } else {
        ++k;
        u2(k, 1) = z(jprev);
        dsigma(k) = d(jprev);
        idxp(k) = jprev;
        jprev = j;
      }
    }
    ++k;
    u2(k, 1) = z(jprev);
    dsigma(k) = d(jprev);
    idxp(k) = jprev;
  }

  // Group the columns by type: upper only, lower only, dense, deflated.
  int ctot[4] = {0, 0, 0, 0};
  for (int j = 2; j <= n; ++j) ++ctot[coltyp(j) - 1];
  int psm[4] = {2, 2 + ctot[0], 2 + ctot[0] + ctot[1], 2 + ctot[0] + ctot[1] + ctot[2]};
  for (int j = 2; j <= n; ++j) {
    const int ct = coltyp(idxp(j));
    idxc(psm[ct - 1]++) = j;
  }
  for (int j = 2; j <= n; ++j) {
    dsigma(j) = d(idxp(j));
    const int cj = source(idxp(idxc(j)));
    std::memcpy(u2.at(1, j), u.at(1, cj), sizeof(R) * n);
    for (int i = 1; i <= m; ++i) vt2(j, i) = vt(cj, i);
  }

  // The first value is zero; keep it from coinciding with the next.
  dsigma(1) = 0;
  const R hlftol = tol / 2;
  if (std::abs(dsigma(2)) <= hlftol) dsigma(2) = hlftol;
  // With an extra column, a rotation folds z(m) into z(1).
  R c = 1, s = 0;
  if (m > n) {
    z(1) = std::hypot(z1, z(m));
    if (z(1) <= tol) {
      c = 1, s = 0;
      z(1) = tol;
    } else {
      c = z1 / z(1);
      s = z(m) / z(1);
    }
  } else {
    z(1) = std::abs(z1) <= tol ? tol : z1;
  }
  for (int i = 2; i <= k; ++i) z(i) = u2(i, 1);
  for (int i = 1; i <= n; ++i) u2(i, 1) = 0;
  u2(nlp1, 1) = 1;
  if (m > n) {
    for (int i = 1; i <= nlp1; ++i) {
      vt(m, i) = -s * vt(nlp1, i);
      vt2(1, i) = c * vt(nlp1, i);
    }
    for (int i = nlp2; i <= m; ++i) {
      vt2(1, i) = s * vt(m, i);
      vt(m, i) = c * vt(m, i);
    }
  } else {
    for (int i = 1; i <= m; ++i) vt2(1, i) = vt(nlp1, i);
  }
  if (m > n)
    for (int i = 1; i <= m; ++i) vt2(m, i) = vt(m, i);
  // The deflated values and vectors go to their final places.
  if (n > k) {
    for (int i = k + 1; i <= n; ++i) d(i) = dsigma(i);
    for (int j = k + 1; j <= n; ++j) std::memcpy(u.at(1, j), u2.at(1, j), sizeof(R) * n);
    for (int j = 1; j <= m; ++j)
      for (int i = k + 1; i <= n; ++i) vt(i, j) = vt2(i, j);
  }
  for (int j = 0; j < 4; ++j) coltyp_[j] = ctot[j];
  return k;
}

// The secular equation and the vectors of the merge (xLASD3): d(1..k)
// receives the new values, U and VT the products of the old vectors (u2,
// vt2) with the secular problem's vectors. q: k by k scratch.
template <class R>
int secular_merge(int nl, int nr, int sqre, int k, R *dd, R *q_, int ldq, R *dsigma_, R *u_,
                  int ldu, R *u2_, int ldu2, R *vt_, int ldvt, R *vt2_, int ldvt2, const int *idxc_,
                  const int *ctot, R *zz) {
  const int n = nl + nr + 1, m = n + sqre, nlp1 = nl + 1, nlp2 = nl + 2;
  const auto d = vec1(dd), z = vec1(zz), dsigma = vec1(dsigma_);
  const auto u = mat1(u_, ldu), vt = mat1(vt_, ldvt), u2 = mat1(u2_, ldu2), vt2 = mat1(vt2_, ldvt2),
             q = mat1(q_, ldq);
  const auto idxc = vec1(idxc_);
  const R one = 1, zero = 0;

  if (k == 1) {
    d(1) = std::abs(z(1));
    for (int i = 1; i <= m; ++i) vt(1, i) = vt2(1, i);
    const R sg = z(1) > 0 ? 1 : -1;
    for (int i = 1; i <= n; ++i) u(i, 1) = sg * u2(i, 1);
    return 0;
  }
  for (int i = 1; i <= k; ++i) q(i, 1) = z(i);  // keeps z's signs
  R rho = nrm2(k, zz);
  rescale(rho, one, k, 1, zz, k);
  rho *= rho;
  // The roots; column j of U and VT keeps d_i - sigma_j and d_i + sigma_j.
  for (int j = 1; j <= k; ++j) {
    const int info = lasd4(k, j, dsigma_, zz, u.at(1, j), rho, d(j), vt.at(1, j));
    if (info != 0) return info;
  }
  // z recomputed from the roots (Loewner), so the vectors come out
  // orthogonal whatever the roots' errors.
  for (int i = 1; i <= k; ++i) {
    R zi = u(i, k) * vt(i, k);
    for (int j = 1; j <= i - 1; ++j)
      zi *= u(i, j) * vt(i, j) / (dsigma(i) - dsigma(j)) / (dsigma(i) + dsigma(j));
    for (int j = i; j <= k - 1; ++j)
      zi *= u(i, j) * vt(i, j) / (dsigma(i) - dsigma(j + 1)) / (dsigma(i) + dsigma(j + 1));
    z(i) = sign(std::sqrt(std::abs(zi)), q(i, 1));
  }
  // The secular problem's left vectors, rows permuted into u2's column
  // order, in q; its right vectors overwrite VT's columns.
  for (int i = 1; i <= k; ++i) {
    vt(1, i) = z(1) / u(1, i) / vt(1, i);
    u(1, i) = -1;
    for (int j = 2; j <= k; ++j) {
      vt(j, i) = z(j) / u(j, i) / vt(j, i);
      u(j, i) = dsigma(j) * vt(j, i);
    }
    const R t = nrm2(k, u.at(1, i));
    q(1, i) = u(1, i) / t;
    for (int j = 2; j <= k; ++j) q(j, i) = u(idxc(j), i) / t;
  }
  // U := U2 Q, by the column types' blocks.
  if (k == 2) {
    gemm(Op::kNone, Op::kNone, n, k, k, one, u2_, ldu2, q_, ldq, zero, u_, ldu);
  } else {
    const int dense_first = 2 + ctot[0] + ctot[1];
    if (ctot[0] > 0) {
      gemm(Op::kNone, Op::kNone, nl, k, ctot[0], one, u2.at(1, 2), ldu2, q.at(2, 1), ldq, zero, u_,
           ldu);
      if (ctot[2] > 0)
        gemm(Op::kNone, Op::kNone, nl, k, ctot[2], one, u2.at(1, dense_first), ldu2,
             q.at(dense_first, 1), ldq, one, u_, ldu);
    } else if (ctot[2] > 0) {
      gemm(Op::kNone, Op::kNone, nl, k, ctot[2], one, u2.at(1, dense_first), ldu2,
           q.at(dense_first, 1), ldq, zero, u_, ldu);
    } else {
      for (int j = 1; j <= k; ++j)
        for (int i = 1; i <= nl; ++i) u(i, j) = u2(i, j);
    }
    for (int j = 1; j <= k; ++j) u(nlp1, j) = q(1, j);
    gemm(Op::kNone, Op::kNone, nr, k, ctot[1] + ctot[2], one, u2.at(nlp2, 2 + ctot[0]), ldu2,
         q.at(2 + ctot[0], 1), ldq, zero, u.at(nlp2, 1), ldu);
  }
  // The right vectors, normalised and permuted, in q (transposed).
  for (int i = 1; i <= k; ++i) {
    const R t = nrm2(k, vt.at(1, i));
    q(i, 1) = vt(1, i) / t;
    for (int j = 2; j <= k; ++j) q(i, j) = vt(idxc(j), i) / t;
  }
  // VT := Q VT2, by blocks again.
  if (k == 2) {
    gemm(Op::kNone, Op::kNone, k, m, k, one, q_, ldq, vt2_, ldvt2, zero, vt_, ldvt);
    return 0;
  }
  int kt = 1 + ctot[0];
  gemm(Op::kNone, Op::kNone, k, nlp1, kt, one, q_, ldq, vt2_, ldvt2, zero, vt_, ldvt);
  kt = 2 + ctot[0] + ctot[1];
  if (kt <= ldvt2)
    gemm(Op::kNone, Op::kNone, k, nlp1, ctot[2], one, q.at(1, kt), ldq, vt2.at(kt, 1), ldvt2, one,
         vt_, ldvt);
  kt = ctot[0] + 1;
  const int nrp1 = nr + sqre;
  if (kt > 1) {
    for (int i = 1; i <= k; ++i) q(i, kt) = q(i, 1);
    for (int i = nlp2; i <= m; ++i) vt2(kt, i) = vt2(1, i);
  }
  gemm(Op::kNone, Op::kNone, k, nrp1, 1 + ctot[1] + ctot[2], one, q.at(1, kt), ldq,
       vt2.at(kt, nlp2), ldvt2, zero, vt.at(1, nlp2), ldvt);
  return 0;
}

}  // namespace

// The merge of two solved halves with vectors (xLASD1): d(1..nl) and
// d(nl+2..n) hold the halves' values, alpha and beta the joining row's
// entries; U and VT the halves' vectors. On return d holds the values and
// idxq the permutation sorting them ascending. iwork 4n, work 3m^2 + 2m.
template <class R>
int lasd1(int nl, int nr, int sqre, R *d, R alpha, R beta, R *u, int ldu, R *vt, int ldvt,
          int *idxq, int *iwork, R *work) {
  const int n = nl + nr + 1, m = n + sqre;
  const int ldu2 = n, ldvt2 = m;
  R *z = work, *dsigma = z + m, *u2 = dsigma + n, *vt2 = u2 + static_cast<std::ptrdiff_t>(ldu2) * n;
  R *q = vt2 + static_cast<std::ptrdiff_t>(ldvt2) * m;
  int *idx = iwork, *idxc = idx + n, *coltyp = idxc + n, *idxp = coltyp + n;
  // Scale to the largest element.
  R orgnrm = std::max(std::abs(alpha), std::abs(beta));
  d[nl] = 0;
  for (int i = 0; i < n; ++i) orgnrm = std::max(orgnrm, std::abs(d[i]));
  rescale(orgnrm, R(1), n, 1, d, n);
  alpha /= orgnrm;
  beta /= orgnrm;
  const int k = deflate(nl, nr, sqre, d, z, alpha, beta, u, ldu, vt, ldvt, dsigma, u2, ldu2, vt2,
                        ldvt2, idxp, idx, idxc, idxq, coltyp);
  const int info = secular_merge(nl, nr, sqre, k, d, q, k, dsigma, u, ldu, u2, ldu2, vt, ldvt, vt2,
                                 ldvt2, idxc, coltyp, z);
  if (info != 0) return info;
  rescale(R(1), orgnrm, n, 1, d, n);
  lamrg(k, n - k, d, 1, -1, idxq);
  return 0;
}

template <class R>
int lasd0(int n, int sqre, R *d, R *e, R *u, int ldu, R *vt, int ldvt, int smlsiz, int *iwork,
          R *work) {
  const int m = n + sqre;
  if (n <= smlsiz)
    return lasdq(Uplo::kUpper, sqre, n, m, n, 0, d, e, vt, ldvt, u, ldu, u, ldu, work);
  int *inode = iwork, *ndiml = inode + n, *ndimr = ndiml + n, *idxq = ndimr + n, *iwk = idxq + n;
  int nlvl, nd;
  lasdt(n, nlvl, nd, inode, ndiml, ndimr, smlsiz);
  const auto U = mat1(u, ldu);
  const auto VT = mat1(vt, ldvt);
  // The leaves: nodes (nd + 1) / 2 .. nd, each a left and a right block
  // around its centre row; the left blocks are n by n + 1.
  for (int i = (nd + 1) / 2; i <= nd; ++i) {
    const int ic = inode[i - 1], nl = ndiml[i - 1], nr = ndimr[i - 1];
    const int nlf = ic - nl, nrf = ic + 1;
    int info = lasdq(Uplo::kUpper, 1, nl, nl + 1, nl, 0, d + nlf - 1, e + nlf - 1, VT.at(nlf, nlf),
                     ldvt, U.at(nlf, nlf), ldu, U.at(nlf, nlf), ldu, work);
    if (info != 0) return info;
    for (int j = 1; j <= nl; ++j) idxq[nlf - 2 + j] = j;
    const int sqrei = i == nd ? sqre : 1;
    info = lasdq(Uplo::kUpper, sqrei, nr, nr + sqrei, nr, 0, d + nrf - 1, e + nrf - 1,
                 VT.at(nrf, nrf), ldvt, U.at(nrf, nrf), ldu, U.at(nrf, nrf), ldu, work);
    if (info != 0) return info;
    for (int j = 1; j <= nr; ++j) idxq[ic + j - 1] = j;
  }
  // Merge upwards, level by level.
  for (int lvl = nlvl; lvl >= 1; --lvl) {
    const int lf = lvl == 1 ? 1 : 1 << (lvl - 1), ll = lvl == 1 ? 1 : 2 * lf - 1;
    for (int i = lf; i <= ll; ++i) {
      const int ic = inode[i - 1], nl = ndiml[i - 1], nr = ndimr[i - 1];
      const int nlf = ic - nl;
      const int sqrei = (sqre == 0 && i == ll) ? sqre : 1;
      const int info = lasd1(nl, nr, sqrei, d + nlf - 1, d[ic - 1], e[ic - 1], U.at(nlf, nlf), ldu,
                             VT.at(nlf, nlf), ldvt, idxq + nlf - 1, iwk, work);
      if (info != 0) return info;
    }
  }
  return 0;
}

template int lasd0<float>(int, int, float *, float *, float *, int, float *, int, int, int *,
                          float *);
template int lasd0<double>(int, int, double *, double *, double *, int, double *, int, int, int *,
                           double *);

}  // namespace orb::lapack::dc
