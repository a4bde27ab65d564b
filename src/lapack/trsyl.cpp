// The Sylvester equation of (quasi-)triangular matrices (xTRSYL) by the
// Bartels-Stewart recursion, and the small block solves it shares with the
// eigenvector routines (xLALN2, xLASY2).
#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <vector>

#include "lapack/auxiliary.h"
#include "lapack/nonsym.h"
#include "lapack/schur_small.h"

namespace orb::lapack {

namespace {

// (ca A - w D) x = scale b for one or two unknowns of type S (float for a
// real shift, complex for a complex one). Complete pivoting on the 2x2
// system; pivots below smin are raised to it (return 1).
template <class S>
int shifted_block_solve(bool trans, int na, float smin, float ca, const float *a, int lda, float d1,
                        float d2, S w, const S *b, S *x, float *scale, float *xnorm) {
  const float smlnum = 2 * std::numeric_limits<float>::min();
  const float bignum = 1 / smlnum;
  const float smini = std::max(smin, smlnum);
  int info = 0;
  *scale = 1;
  if (na == 1) {
    S c = ca * a[0] - w * d1;
    float cnorm = abs1(c);
    if (cnorm < smini) {
      c = smini;
      cnorm = smini;
      info = 1;
    }
    const float bnorm = abs1(b[0]);
    if (cnorm < 1 && bnorm > 1 && bnorm > bignum * cnorm) *scale = 1 / bnorm;
    x[0] = (b[0] * *scale) / c;
    *xnorm = abs1(x[0]);
    return info;
  }
  // The 2x2 coefficient matrix, column major; trans swaps the off-diagonal.
  S c[4];
  c[0] = ca * a[0] - w * d1;
  c[3] = ca * a[1 + lda] - w * d2;
  c[1] = ca * (trans ? a[lda] : a[1]);
  c[2] = ca * (trans ? a[1] : a[lda]);
  int piv = 0;
  float cmax = 0;
  for (int j = 0; j < 4; ++j)
    if (abs1(c[j]) > cmax) cmax = abs1(c[j]), piv = j;
  if (cmax < smini) {
    // Every element is tiny: solve with smin times the identity.
    const float bnorm = std::max(abs1(b[0]), abs1(b[1]));
    if (smini < 1 && bnorm > 1 && bnorm > bignum * smini) *scale = 1 / bnorm;
    const float t = *scale / smini;
    x[0] = t * b[0];
    x[1] = t * b[1];
    *xnorm = t * bnorm;
    return 1;
  }
  // The pivot's row (piv & 1) and column (piv >> 1) go first.
  const bool row_swap = (piv & 1) != 0, col_swap = (piv >> 1) != 0;
  const S u11 = c[piv];
  const S c21 = c[piv ^ 1];  // same column, other row
  const S u12 = c[piv ^ 2];  // same row, other column
  const S c22 = c[piv ^ 3];
  const S u11r = S(1) / u11;
  const S l21 = u11r * c21;
  S u22 = c22 - u12 * l21;
  if (abs1(u22) < smini) {
    u22 = smini;
    info = 1;
  }
  S br1 = row_swap ? b[1] : b[0];
  S br2 = row_swap ? b[0] : b[1];
  br2 -= l21 * br1;
  const float u22abs = abs1(u22);
  const float bbnd = std::max(abs1(br1) * (u22abs * abs1(u11r)), abs1(br2));
  if (bbnd > 1 && u22abs < 1 && bbnd >= bignum * u22abs) {
    *scale = 1 / bbnd;
    br1 *= *scale;
    br2 *= *scale;
  }
  const S xr2 = br2 / u22;
  const S xr1 = u11r * br1 - xr2 * (u11r * u12);
  x[0] = col_swap ? xr2 : xr1;
  x[1] = col_swap ? xr1 : xr2;
  *xnorm = std::max(abs1(xr1), abs1(xr2));
  if (*xnorm > 1 && cmax > 1 && *xnorm > bignum / cmax) {
    const float t = cmax / bignum;
    x[0] *= t;
    x[1] *= t;
    *xnorm *= t;
    *scale *= t;
  }
  return info;
}

}  // namespace

int laln2(bool trans, int na, int nw, float smin, float ca, const float *a, int lda, float d1,
          float d2, const float *b, int ldb, float wr, float wi, float *x, int ldx, float *scale,
          float *xnorm) {
  if (nw == 1) {
    float bv[2] = {b[0], na == 2 ? b[1] : 0.0f}, xv[2];
    const int info =
        shifted_block_solve<float>(trans, na, smin, ca, a, lda, d1, d2, wr, bv, xv, scale, xnorm);
    for (int i = 0; i < na; ++i) x[i] = xv[i];
    return info;
  }
  using C = std::complex<float>;
  C bv[2], xv[2];
  for (int i = 0; i < na; ++i) bv[i] = C(b[i], b[i + ldb]);
  const int info =
      shifted_block_solve<C>(trans, na, smin, ca, a, lda, d1, d2, C(wr, wi), bv, xv, scale, xnorm);
  for (int i = 0; i < na; ++i) x[i] = xv[i].real(), x[i + ldx] = xv[i].imag();
  return info;
}

int lasy2(bool transl, bool transr, int isgn, int n1, int n2, const float *tl, int ldtl,
          const float *tr, int ldtr, const float *b, int ldb, float *scale, float *x, int ldx,
          float *xnorm) {
  const float eps = std::numeric_limits<float>::epsilon();
  const float smlnum = std::numeric_limits<float>::min() / eps;
  const float sgn = static_cast<float>(isgn);
  int info = 0;
  *scale = 1;
  if (n1 == 0 || n2 == 0) return 0;
  auto tl_at = [&](int i, int j) { return transl ? tl[j + i * ldtl] : tl[i + j * ldtl]; };
  auto tr_at = [&](int i, int j) { return transr ? tr[j + i * ldtr] : tr[i + j * ldtr]; };
  if (n1 == 1 && n2 == 1) {
    float tau = tl[0] + sgn * tr[0];
    float bet = std::abs(tau);
    if (bet <= smlnum) tau = bet = smlnum, info = 1;
    const float gam = std::abs(b[0]);
    if (smlnum * gam > bet) *scale = 1 / gam;
    x[0] = (b[0] * *scale) / tau;
    *xnorm = std::abs(x[0]);
    return info;
  }
  // The Kronecker form: unknown p = i + n1 j of X, equation (i, j) reads
  // sum_k op(TL)(i,k) X(k,j) + sgn sum_k X(i,k) op(TR)(k,j).
  const int k = n1 * n2;
  float m[4][4] = {}, rhs[4], sol[4];
  float smin = 0;
  for (int i = 0; i < n1; ++i)
    for (int j = 0; j < n1; ++j) smin = std::max(smin, std::abs(tl[i + j * ldtl]));
  for (int i = 0; i < n2; ++i)
    for (int j = 0; j < n2; ++j) smin = std::max(smin, std::abs(tr[i + j * ldtr]));
  smin = std::max(eps * smin, smlnum);
  for (int j = 0; j < n2; ++j)
    for (int i = 0; i < n1; ++i) {
      const int p = i + n1 * j;
      rhs[p] = b[i + j * ldb];
      for (int kk = 0; kk < n1; ++kk) m[p][kk + n1 * j] += tl_at(i, kk);
      for (int kk = 0; kk < n2; ++kk) m[p][i + n1 * kk] += sgn * tr_at(kk, j);
    }
  int colperm[4] = {0, 1, 2, 3};
  for (int s = 0; s < k; ++s) {
    // Complete pivoting: the largest remaining element (the first for two
    // unknowns, the last on ties for four, as the published routine does).
    int ip = s, jp = s;
    float big = -1;
    for (int ii = s; ii < k; ++ii)
      for (int jj = s; jj < k; ++jj) {
        const int r = k == 4 ? ii : jj, q = k == 4 ? jj : ii;  // column order for two
        const float v = std::abs(m[r][q]);
        if (k == 4 ? v >= big : v > big) big = v, ip = r, jp = q;
      }
    if (s < k - 1) {
      if (ip != s) {
        for (int jj = 0; jj < k; ++jj) std::swap(m[ip][jj], m[s][jj]);
        std::swap(rhs[ip], rhs[s]);
      }
      if (jp != s) {
        for (int ii = 0; ii < k; ++ii) std::swap(m[ii][jp], m[ii][s]);
        std::swap(colperm[jp], colperm[s]);
      }
    }
    if (std::abs(m[s][s]) < smin || (k == 2 && std::abs(m[s][s]) <= smin)) {
      info = 1;
      m[s][s] = smin;
    }
    for (int ii = s + 1; ii < k; ++ii) {
      m[ii][s] /= m[s][s];
      rhs[ii] -= m[ii][s] * rhs[s];
      for (int jj = s + 1; jj < k; ++jj) m[ii][jj] -= m[ii][s] * m[s][jj];
    }
  }
  // Scale the right-hand side when a quotient could overflow.
  const float guard = k == 4 ? 8 * smlnum : 2 * smlnum;
  bool rescale = false;
  float rmax = 0;
  for (int i = 0; i < k; ++i) {
    rescale = rescale || guard * std::abs(rhs[i]) > std::abs(m[i][i]);
    rmax = std::max(rmax, std::abs(rhs[i]));
  }
  if (rescale) {
    *scale = (k == 4 ? 0.125f : 0.5f) / rmax;
    for (int i = 0; i < k; ++i) rhs[i] *= *scale;
  }
  for (int i = k - 1; i >= 0; --i) {
    const float r = 1 / m[i][i];
    float v = rhs[i] * r;
    for (int j = i + 1; j < k; ++j) v -= (r * m[i][j]) * sol[j];
    sol[i] = v;
  }
  float xs[4];
  for (int i = 0; i < k; ++i) xs[colperm[i]] = sol[i];
  *xnorm = 0;
  for (int i = 0; i < n1; ++i) {
    float row = 0;
    for (int j = 0; j < n2; ++j) {
      x[i + j * ldx] = xs[i + n1 * j];
      row += std::abs(xs[i + n1 * j]);
    }
    *xnorm = std::max(*xnorm, row);
  }
  return info;
}

// The Bartels-Stewart recursion over the diagonal blocks of A (rows of X)
// and B (columns of X): each block of X follows from the blocks already
// found, in the order op(A) and op(B) make triangular.
template <class T>
int trsyl(Op trana, Op tranb, int isgn, int m, int n, const T *a, int lda, const T *b, int ldb,
          T *c, int ldc, real_t<T> *scale) {
  using R = real_t<T>;
  constexpr bool cplx = is_complex_v<T>;
  *scale = 1;
  if (m == 0 || n == 0) return 0;
  const R eps = std::numeric_limits<R>::epsilon();
  const R smlnum = std::numeric_limits<R>::min() * (static_cast<R>(m) * static_cast<R>(n)) / eps;
  const R bignum = 1 / smlnum;
  const R smin =
      std::max({smlnum, eps * lange(Norm::kMaxAbs, m, m, a, lda, static_cast<R *>(nullptr)),
                eps * lange(Norm::kMaxAbs, n, n, b, ldb, static_cast<R *>(nullptr))});
  const bool ta = trana != Op::kNone, tb = tranb != Op::kNone;
  const R sgn = static_cast<R>(isgn);
  auto A = [&](int i, int j) { return a[i + static_cast<std::ptrdiff_t>(j) * lda]; };
  auto B = [&](int i, int j) { return b[i + static_cast<std::ptrdiff_t>(j) * ldb]; };
  auto X = [&](int i, int j) -> T & { return c[i + static_cast<std::ptrdiff_t>(j) * ldc]; };
  auto cj = [](T v) {
    if constexpr (cplx)
      return std::conj(v);
    else
      return v;
  };

  // Block starts of a quasi-triangular matrix (1x1 for complex data).
  auto blocks = [&](const T *q, int ldq, int nq) {
    std::vector<int> start;
    for (int i = 0; i < nq;) {
      start.push_back(i);
      bool pair = false;
      if constexpr (!cplx)
        pair = i + 1 < nq && q[i + 1 + static_cast<std::ptrdiff_t>(i) * ldq] != 0;
      i += pair ? 2 : 1;
    }
    start.push_back(nq);
    return start;
  };
  const std::vector<int> ka = blocks(a, lda, m), lb = blocks(b, ldb, n);
  const int nka = static_cast<int>(ka.size()) - 1, nlb = static_cast<int>(lb.size()) - 1;
  int info = 0;

  // op(A)(k, j) and op(B)(i, l) with the conjugation of the complex forms.
  auto opA = [&](int i, int j) { return ta ? cj(A(j, i)) : A(i, j); };
  auto opB = [&](int i, int j) { return tb ? cj(B(j, i)) : B(i, j); };

  for (int lq = 0; lq < nlb; ++lq) {
    const int lblk = tb ? nlb - 1 - lq : lq;
    const int l1 = lb[lblk], l2 = lb[lblk + 1];
    for (int kq = 0; kq < nka; ++kq) {
      const int kblk = ta ? kq : nka - 1 - kq;
      const int k1 = ka[kblk], k2 = ka[kblk + 1];
      // The right-hand side of block (k, l): C minus the known parts.
      T vec[2][2];
      for (int l = l1; l < l2; ++l)
        for (int k = k1; k < k2; ++k) {
          T suml = 0, sumr = 0;
          if (ta)
            for (int j = 0; j < k1; ++j) suml += opA(k, j) * X(j, l);
          else
            for (int j = k2; j < m; ++j) suml += A(k, j) * X(j, l);
          if (tb)
            for (int j = l2; j < n; ++j) sumr += X(k, j) * opB(j, l);
          else
            for (int j = 0; j < l1; ++j) sumr += X(k, j) * B(j, l);
          vec[k - k1][l - l1] = X(k, l) - (suml + sgn * sumr);
        }
      R scaloc = 1;
      T sol[2][2];
      if (k2 - k1 == 1 && l2 - l1 == 1) {
        T a11 = opA(k1, k1) + sgn * opB(l1, l1);
        R da11 = abs1(a11);
        if (da11 <= smin) a11 = smin, da11 = smin, info = 1;
        const R db = abs1(vec[0][0]);
        if (da11 < 1 && db > 1 && db > bignum * da11) scaloc = 1 / db;
        sol[0][0] = (vec[0][0] * scaloc) / a11;
      } else if constexpr (!cplx) {
        float xm[4], xnorm;
        if (l2 - l1 == 1 || k2 - k1 == 1) {
          // One block is 1x1: a shifted 2x2 solve with this routine's smin.
          const bool a_pair = k2 - k1 == 2;
          float bv[2] = {a_pair ? vec[0][0] : sgn * vec[0][0],
                         a_pair ? vec[1][0] : sgn * vec[0][1]};
          const float shift = a_pair ? -sgn * B(l1, l1) : -sgn * A(k1, k1);
          if (a_pair ? laln2(ta, 2, 1, smin, 1, &a[k1 + static_cast<std::ptrdiff_t>(k1) * lda], lda,
                             1, 1, bv, 2, shift, 0, xm, 2, &scaloc, &xnorm)
                     : laln2(!tb, 2, 1, smin, 1, &b[l1 + static_cast<std::ptrdiff_t>(l1) * ldb],
                             ldb, 1, 1, bv, 2, shift, 0, xm, 2, &scaloc, &xnorm))
            info = 1;
          if (a_pair)
            sol[0][0] = xm[0], sol[1][0] = xm[1];
          else
            sol[0][0] = xm[0], sol[0][1] = xm[1];
        } else {
          float bm[4];
          const int n1 = k2 - k1, n2 = l2 - l1;
          for (int i = 0; i < n1; ++i)
            for (int j = 0; j < n2; ++j) bm[i + 2 * j] = vec[i][j];
          if (lasy2(ta, tb, isgn, n1, n2, &a[k1 + static_cast<std::ptrdiff_t>(k1) * lda], lda,
                    &b[l1 + static_cast<std::ptrdiff_t>(l1) * ldb], ldb, bm, 2, &scaloc, xm, 2,
                    &xnorm) != 0)
            info = 1;
          for (int i = 0; i < n1; ++i)
            for (int j = 0; j < n2; ++j) sol[i][j] = xm[i + 2 * j];
        }
      }
      if (scaloc != 1) {
        for (int j = 0; j < n; ++j)
          for (int i = 0; i < m; ++i) X(i, j) *= scaloc;
        *scale *= scaloc;
      }
      for (int l = l1; l < l2; ++l)
        for (int k = k1; k < k2; ++k) X(k, l) = sol[k - k1][l - l1];
    }
  }
  return info;
}

template int trsyl<float>(Op, Op, int, int, int, const float *, int, const float *, int, float *,
                          int, float *);
template int trsyl<c8>(Op, Op, int, int, int, const c8 *, int, const c8 *, int, c8 *, int, float *);

}  // namespace orb::lapack
