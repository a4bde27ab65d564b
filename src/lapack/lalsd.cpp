// The bidiagonal least-squares solve by divide and conquer: with B = U S VT
// the minimum-norm solution is V S^+ U^T b. The bidiagonal is scaled, split
// at negligible off-diagonals; small pieces get their vectors explicitly by
// the QR iteration, large ones the compact tree (lasda), through which U^T
// and V are applied to the right-hand sides (lalsa) without ever forming
// them. The vectors are real; complex right-hand sides go through the real
// products one part (real, imaginary) at a time.
#include <algorithm>
#include <cmath>
#include <functional>

#include "lapack/blas_calls.h"
#include "lapack/divide.h"
#include "lapack/lasd.h"

namespace orb::lapack {
namespace dc {
namespace {

// c := a^T b for the k-by-m real a and the k-by-nrhs b (real or complex);
// c may be b itself (then m == k). scratch: m nrhs reals for real data when
// c is b; (k + 2m) nrhs reals for complex data.
template <class T>
void times_transposed(int m, int nrhs, int k, const real_t<T> *a, int lda, const T *b, int ldb,
                      T *c, int ldc, real_t<T> *scratch) {
  using R = real_t<T>;
  if (m <= 0 || nrhs <= 0) return;
  if constexpr (!is_complex_v<T>) {
    if (c != b) {
      gemm(Op::kTrans, Op::kNone, m, nrhs, k, R(1), a, lda, b, ldb, R(0), c, ldc);
      return;
    }
    gemm(Op::kTrans, Op::kNone, m, nrhs, k, R(1), a, lda, b, ldb, R(0), scratch, m);
    for (int j = 0; j < nrhs; ++j)
      std::copy_n(scratch + static_cast<std::ptrdiff_t>(j) * m, m,
                  c + static_cast<std::ptrdiff_t>(j) * ldc);
  } else {
    R *part = scratch, *re = part + static_cast<std::ptrdiff_t>(k) * nrhs,
      *im = re + static_cast<std::ptrdiff_t>(m) * nrhs;
    for (int j = 0; j < nrhs; ++j)
      for (int i = 0; i < k; ++i)
        part[i + j * k] = b[i + static_cast<std::ptrdiff_t>(j) * ldb].real();
    gemm(Op::kTrans, Op::kNone, m, nrhs, k, R(1), a, lda, part, k, R(0), re, m);
    for (int j = 0; j < nrhs; ++j)
      for (int i = 0; i < k; ++i)
        part[i + j * k] = b[i + static_cast<std::ptrdiff_t>(j) * ldb].imag();
    gemm(Op::kTrans, Op::kNone, m, nrhs, k, R(1), a, lda, part, k, R(0), im, m);
    for (int j = 0; j < nrhs; ++j)
      for (int i = 0; i < m; ++i)
        c[i + static_cast<std::ptrdiff_t>(j) * ldc] = T(re[i + j * m], im[i + j * m]);
  }
}

template <class T>
void copy_rows(int m, int n, const T *a, int lda, T *b, int ldb) {
  for (int j = 0; j < n; ++j)
    std::copy_n(a + static_cast<std::ptrdiff_t>(j) * lda, m,
                b + static_cast<std::ptrdiff_t>(j) * ldb);
}

// One merge's singular vectors applied to the right-hand sides (xLALS0):
// icompq 0 applies the transposed left vectors to b (deflation rotations
// and permutation into bx, the secular vectors from bx back into b);
// icompq 1 applies the right vectors (the secular vectors from b into bx,
// then the permutation and rotations undone back into b). work: k reals.
template <class T>
void apply_merge(int icompq, int nl, int nr, int sqre, int nrhs, T *b_, int ldb, T *bx_, int ldbx,
                 const int *perm_, int givptr, const int *givcol_, int ldgcol,
                 const real_t<T> *givnum_, int ldgnum, const real_t<T> *poles_,
                 const real_t<T> *difl_, const real_t<T> *difr_, const real_t<T> *z_, int k,
                 real_t<T> c, real_t<T> s, real_t<T> *work) {
  using R = real_t<T>;
  const int n = nl + nr + 1, m = n + sqre, nlp1 = nl + 1;
  const auto b = mat1(b_, ldb), bx = mat1(bx_, ldbx);
  const auto perm = vec1(perm_), difl = vec1(difl_), z = vec1(z_);
  const auto givcol = mat1(givcol_, ldgcol);
  const auto givnum = mat1(givnum_, ldgnum), poles = mat1(poles_, ldgnum),
             difr = mat1(difr_, ldgnum);
  const auto w = vec1(work);
  auto copy_row = [&](Mat1<T> from, int i, Mat1<T> to, int r) {
    for (int j = 1; j <= nrhs; ++j) to(r, j) = from(i, j);
  };
  // row r of `to` := sum_i w_i row i of `from` (i = 1..k).
  auto combine = [&](Mat1<T> from, Mat1<T> to, int r) {
    for (int j = 1; j <= nrhs; ++j) {
      T sum = T(0);
      for (int i = 1; i <= k; ++i) sum += w(i) * from(i, j);
      to(r, j) = sum;
    }
  };
  if (icompq == 0) {
    for (int i = 1; i <= givptr; ++i)
      rot(nrhs, b.at(givcol(i, 2), 1), ldb, b.at(givcol(i, 1), 1), ldb, givnum(i, 2), givnum(i, 1));
    copy_row(b, nlp1, bx, 1);
    for (int i = 2; i <= n; ++i) copy_row(b, perm(i), bx, i);
    if (k == 1) {
      copy_row(bx, 1, b, 1);
      if (z(1) < 0)
        for (int j = 1; j <= nrhs; ++j) b(1, j) = -b(1, j);
    } else {
      for (int j = 1; j <= k; ++j) {
        const R diflj = difl(j), dj = poles(j, 1), dsigj = -poles(j, 2);
        R difrj = 0, dsigjp = 0;
        if (j < k) {
          difrj = -difr(j, 1);
          dsigjp = -poles(j + 1, 2);
        }
        auto zero_pole = [&](int i) { return z(i) == 0 || poles(i, 2) == 0; };
        w(j) = zero_pole(j) ? R(0) : -poles(j, 2) * z(j) / diflj / (poles(j, 2) + dj);
        for (int i = 1; i <= j - 1; ++i)
          w(i) = zero_pole(i)
                     ? R(0)
                     : poles(i, 2) * z(i) / ((poles(i, 2) + dsigj) - diflj) / (poles(i, 2) + dj);
        for (int i = j + 1; i <= k; ++i)
          w(i) = zero_pole(i)
                     ? R(0)
                     : poles(i, 2) * z(i) / ((poles(i, 2) + dsigjp) + difrj) / (poles(i, 2) + dj);
        w(1) = -1;
        const R t = nrm2(k, work);
        combine(bx, b, j);
        rescale(t, R(1), 1, nrhs, b.at(j, 1), ldb);
      }
    }
    if (k < std::max(m, n)) copy_rows(n - k, nrhs, bx.at(k + 1, 1), ldbx, b.at(k + 1, 1), ldb);
    return;
  }
  if (k == 1) {
    copy_row(b, 1, bx, 1);
  } else {
    for (int j = 1; j <= k; ++j) {
      const R dsigj = poles(j, 2);
      if (z(j) == 0) {
        for (int i = 1; i <= k; ++i) w(i) = 0;
      } else {
        w(j) = -z(j) / difl(j) / (dsigj + poles(j, 1)) / difr(j, 2);
        for (int i = 1; i <= j - 1; ++i)
          w(i) =
              z(j) / ((dsigj + -poles(i + 1, 2)) - difr(i, 1)) / (dsigj + poles(i, 1)) / difr(i, 2);
        for (int i = j + 1; i <= k; ++i)
          w(i) = z(j) / ((dsigj + -poles(i, 2)) - difl(i)) / (dsigj + poles(i, 1)) / difr(i, 2);
      }
      combine(b, bx, j);
    }
  }
  if (sqre == 1) {
    copy_row(b, m, bx, m);
    rot(nrhs, bx.at(1, 1), ldbx, bx.at(m, 1), ldbx, c, s);
  }
  if (k < std::max(m, n)) copy_rows(n - k, nrhs, b.at(k + 1, 1), ldb, bx.at(k + 1, 1), ldbx);
  copy_row(bx, 1, b, nlp1);
  if (sqre == 1) copy_row(bx, m, b, m);
  for (int i = 2; i <= n; ++i) copy_row(bx, i, b, perm(i));
  for (int i = givptr; i >= 1; --i)
    rot(nrhs, b.at(givcol(i, 2), 1), ldb, b.at(givcol(i, 1), 1), ldb, givnum(i, 2), -givnum(i, 1));
}

}  // namespace

template <class T>
int lalsa(int icompq, int smlsiz, int n, int nrhs, T *b, int ldb, T *bx, int ldbx,
          const real_t<T> *u, int ldu, const real_t<T> *vt, const int *k, const real_t<T> *difl,
          const real_t<T> *difr, const real_t<T> *z, const real_t<T> *poles, const int *givptr,
          const int *givcol, int ldgcol, const int *perm, const real_t<T> *givnum,
          const real_t<T> *c, const real_t<T> *s, real_t<T> *rwork, int *iwork) {
  int *inode = iwork, *ndiml = inode + n, *ndimr = ndiml + n;
  int nlvl, nd;
  lasdt(n, nlvl, nd, inode, ndiml, ndimr, smlsiz);
  const auto B = mat1(b, ldb), BX = mat1(bx, ldbx);
  const auto at = [&](const auto *p, int ld, int i, int j) {
    return p + (i - 1) + static_cast<std::ptrdiff_t>(j - 1) * ld;
  };
  auto merge = [&](int lvl, int i, int j, int sqre, T *from, int ldf, T *to, int ldt) {
    const int lvl2 = 2 * lvl - 1;
    const int ic = inode[i - 1], nl = ndiml[i - 1], nr = ndimr[i - 1], nlf = ic - nl;
    apply_merge(icompq, nl, nr, sqre, nrhs, from + (nlf - 1), ldf, to + (nlf - 1), ldt,
                at(perm, ldgcol, nlf, lvl), givptr[j - 1], at(givcol, ldgcol, nlf, lvl2), ldgcol,
                at(givnum, ldu, nlf, lvl2), ldu, at(poles, ldu, nlf, lvl2), at(difl, ldu, nlf, lvl),
                at(difr, ldu, nlf, lvl2), at(z, ldu, nlf, lvl), k[j - 1], c[j - 1], s[j - 1],
                rwork);
  };
  if (icompq == 0) {
    // The leaves' left vectors first, then the merges bottom up.
    for (int i = (nd + 1) / 2; i <= nd; ++i) {
      const int ic = inode[i - 1], nl = ndiml[i - 1], nr = ndimr[i - 1];
      const int nlf = ic - nl, nrf = ic + 1;
      times_transposed(nl, nrhs, nl, at(u, ldu, nlf, 1), ldu, B.at(nlf, 1), ldb, BX.at(nlf, 1),
                       ldbx, rwork);
      times_transposed(nr, nrhs, nr, at(u, ldu, nrf, 1), ldu, B.at(nrf, 1), ldb, BX.at(nrf, 1),
                       ldbx, rwork);
    }
    // The centre rows pass through unchanged.
    for (int i = 1; i <= nd; ++i) {
      const int ic = inode[i - 1];
      for (int j = 1; j <= nrhs; ++j) BX(ic, j) = B(ic, j);
    }
    int j = 1 << nlvl;
    for (int lvl = nlvl; lvl >= 1; --lvl) {
      const int lf = lvl == 1 ? 1 : 1 << (lvl - 1), ll = lvl == 1 ? 1 : 2 * lf - 1;
      for (int i = lf; i <= ll; ++i) merge(lvl, i, --j, 0, bx, ldbx, b, ldb);
    }
    return 0;
  }
  // The right vectors: the merges top down, then the leaves.
  int j = 0;
  for (int lvl = 1; lvl <= nlvl; ++lvl) {
    const int lf = lvl == 1 ? 1 : 1 << (lvl - 1), ll = lvl == 1 ? 1 : 2 * lf - 1;
    for (int i = ll; i >= lf; --i) merge(lvl, i, ++j, i == ll ? 0 : 1, b, ldb, bx, ldbx);
  }
  for (int i = (nd + 1) / 2; i <= nd; ++i) {
    const int ic = inode[i - 1], nl = ndiml[i - 1], nr = ndimr[i - 1];
    const int nlp1 = nl + 1, nrp1 = i == nd ? nr : nr + 1;
    const int nlf = ic - nl, nrf = ic + 1;
    times_transposed(nlp1, nrhs, nlp1, at(vt, ldu, nlf, 1), ldu, B.at(nlf, 1), ldb, BX.at(nlf, 1),
                     ldbx, rwork);
    times_transposed(nrp1, nrhs, nrp1, at(vt, ldu, nrf, 1), ldu, B.at(nrf, 1), ldb, BX.at(nrf, 1),
                     ldbx, rwork);
  }
  return 0;
}

}  // namespace dc

template <class T>
int lalsd(Uplo uplo, int smlsiz, int n, int nrhs, real_t<T> *d, real_t<T> *e, T *b, int ldb,
          real_t<T> rcond, int &rank, T *work, real_t<T> *rwork, int *iwork) {
  using R = real_t<T>;
  using dc::mat1;
  rank = 0;
  if (n < 0) return -3;
  if (nrhs < 1) return -4;
  if (ldb < 1 || ldb < n) return -8;
  const R eps = dc::eps<R>();
  const R rcnd = (rcond <= 0 || rcond >= 1) ? eps : rcond;
  const auto B = mat1(b, ldb);
  auto zero_row = [&](T *row, int ld) {
    for (int j = 0; j < nrhs; ++j) row[static_cast<std::ptrdiff_t>(j) * ld] = T(0);
  };
  if (n == 0) return 0;
  if (n == 1) {
    if (d[0] == 0) {
      zero_row(b, ldb);
    } else {
      rank = 1;
      dc::rescale(d[0], R(1), 1, nrhs, b, ldb);
      d[0] = std::abs(d[0]);
    }
    return 0;
  }
  // A lower bidiagonal becomes upper by rotations from the left, which the
  // right-hand sides take too.
  if (uplo == Uplo::kLower) {
    for (int i = 0; i + 1 < n; ++i) {
      R c, s, r;
      dc::lartg(d[i], e[i], c, s, r);
      d[i] = r;
      e[i] = s * d[i + 1];
      d[i + 1] = c * d[i + 1];
      dc::rot(nrhs, B.at(i + 1, 1), ldb, B.at(i + 2, 1), ldb, c, s);
    }
  }
  const R orgnrm = dc::max_abs(n, d, e);
  if (orgnrm == 0) {
    for (int i = 0; i < n; ++i) zero_row(b + i, ldb);
    return 0;
  }
  dc::rescale(orgnrm, R(1), n, 1, d, n);
  dc::rescale(orgnrm, R(1), n - 1, 1, e, n - 1);
  R *rw;
  if constexpr (is_complex_v<T>)
    rw = rwork;
  else
    rw = work;
  // Back to the matrix's scale: the values up, the solution down.
  auto finish = [&]() {
    dc::rescale(R(1), orgnrm, n, 1, d, n);
    std::sort(d, d + n, std::greater<R>());
    dc::rescale(orgnrm, R(1), n, nrhs, b, ldb);
  };
  // Rows of the rotated right-hand sides scaled by the inverse values, the
  // negligible ones zeroed.
  auto divide = [&](T *x, int ldx, bool take_abs) {
    R big = 0;
    for (int i = 0; i < n; ++i) big = std::max(big, std::abs(d[i]));
    const R tol = rcnd * big;
    for (int i = 0; i < n; ++i) {
      if (std::abs(d[i]) <= tol) {
        zero_row(x + i, ldx);
      } else {
        dc::rescale(d[i], R(1), 1, nrhs, x + i, ldx);
        ++rank;
      }
      if (take_abs) d[i] = std::abs(d[i]);
    }
  };

  if (n <= smlsiz) {
    // The whole problem is a leaf: U and VT explicitly.
    R *u = rw, *vt = u + static_cast<std::ptrdiff_t>(n) * n,
      *wk = vt + static_cast<std::ptrdiff_t>(n) * n;
    dc::identity(n, n, u, n);
    dc::identity(n, n, vt, n);
    const int info = dc::lasdq(Uplo::kUpper, 0, n, n, n, 0, d, e, vt, n, u, n, u, n, wk);
    if (info != 0) return info;
    dc::times_transposed(n, nrhs, n, u, n, b, ldb, b, ldb, wk);
    divide(b, ldb, false);
    dc::times_transposed(n, nrhs, n, vt, n, b, ldb, b, ldb, wk);
    finish();
    return 0;
  }

  const int nlvl =
      static_cast<int>(std::log(static_cast<double>(n) / (smlsiz + 1)) / std::log(2.0)) + 1;
  const std::ptrdiff_t nn = n;
  R *u = rw, *vt = u + smlsiz * nn, *difl = vt + (smlsiz + 1) * nn, *difr = difl + nlvl * nn;
  R *z = difr + 2 * nlvl * nn, *cc = z + nlvl * nn, *ss = cc + nn, *poles = ss + nn;
  R *givnum = poles + 2 * nlvl * nn;
  T *bx;
  R *wk;
  if constexpr (is_complex_v<T>) {
    bx = work;
    wk = givnum + 2 * nlvl * nn;
  } else {
    bx = givnum + 2 * nlvl * nn;
    wk = bx + nn * nrhs;
  }
  int *starts = iwork, *sizes = starts + n, *kk = sizes + n, *givptr = kk + n, *perm = givptr + n;
  int *givcol = perm + nlvl * n, *iwk = givcol + 2 * nlvl * n;
  const auto BX = mat1(bx, n);

  for (int i = 0; i < n; ++i)
    if (std::abs(d[i]) < eps) d[i] = dc::sign(eps, d[i]);
  // Split at negligible off-diagonals and take each piece to the rotated
  // right-hand sides U^T b in bx.
  int nsub = 0, st = 0;
  for (int i = 0; i < n - 1; ++i) {
    const bool split = std::abs(e[i]) < eps;
    if (!split && i != n - 2) continue;
    int nsize;
    starts[nsub] = st;
    if (i < n - 2) {
      nsize = i - st + 1;
      sizes[nsub++] = nsize;
    } else if (!split) {
      nsize = n - st;
      sizes[nsub++] = nsize;
    } else {
      // The last row stands alone.
      nsize = i - st + 1;
      sizes[nsub++] = nsize;
      starts[nsub] = n - 1;
      sizes[nsub++] = 1;
      for (int j = 1; j <= nrhs; ++j) BX(n, j) = B(n, j);
    }
    if (nsize == 1) {
      for (int j = 1; j <= nrhs; ++j) BX(st + 1, j) = B(st + 1, j);
    } else if (nsize <= smlsiz) {
      dc::identity(nsize, nsize, vt + st, n);
      dc::identity(nsize, nsize, u + st, n);
      const int info = dc::lasdq(Uplo::kUpper, 0, nsize, nsize, nsize, 0, d + st, e + st, vt + st,
                                 n, u + st, n, u + st, n, wk);
      if (info != 0) return info;
      dc::times_transposed(nsize, nrhs, nsize, u + st, n, B.at(st + 1, 1), ldb, BX.at(st + 1, 1), n,
                           wk);
    } else {
      int info = dc::lasda(smlsiz, nsize, 0, d + st, e + st, u + st, n, vt + st, kk + st, difl + st,
                           difr + st, z + st, poles + st, givptr + st, givcol + st, n, perm + st,
                           givnum + st, cc + st, ss + st, wk, iwk);
      if (info != 0) return info;
      info = dc::lalsa(0, smlsiz, nsize, nrhs, B.at(st + 1, 1), ldb, BX.at(st + 1, 1), n, u + st, n,
                       vt + st, kk + st, difl + st, difr + st, z + st, poles + st, givptr + st,
                       givcol + st, n, perm + st, givnum + st, cc + st, ss + st, wk, iwk);
      if (info != 0) return info;
    }
    st = i + 1;
  }
  divide(bx, n, true);
  // Back through the right vectors into b.
  for (int i = 0; i < nsub; ++i) {
    const int s0 = starts[i], nsize = sizes[i];
    if (nsize == 1) {
      for (int j = 1; j <= nrhs; ++j) B(s0 + 1, j) = BX(s0 + 1, j);
    } else if (nsize <= smlsiz) {
      dc::times_transposed(nsize, nrhs, nsize, vt + s0, n, BX.at(s0 + 1, 1), n, B.at(s0 + 1, 1),
                           ldb, wk);
    } else {
      const int info =
          dc::lalsa(1, smlsiz, nsize, nrhs, BX.at(s0 + 1, 1), n, B.at(s0 + 1, 1), ldb, u + s0, n,
                    vt + s0, kk + s0, difl + s0, difr + s0, z + s0, poles + s0, givptr + s0,
                    givcol + s0, n, perm + s0, givnum + s0, cc + s0, ss + s0, wk, iwk);
      if (info != 0) return info;
    }
  }
  finish();
  return 0;
}

template int lalsd<float>(Uplo, int, int, int, float *, float *, float *, int, float, int &,
                          float *, float *, int *);
template int lalsd<double>(Uplo, int, int, int, double *, double *, double *, int, double, int &,
                           double *, double *, int *);
template int lalsd<c8>(Uplo, int, int, int, float *, float *, c8 *, int, float, int &, c8 *,
                       float *, int *);
template int lalsd<c16>(Uplo, int, int, int, double *, double *, c16 *, int, double, int &, c16 *,
                        double *, int *);

}  // namespace orb::lapack
