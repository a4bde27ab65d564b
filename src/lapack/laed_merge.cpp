// The merge of two solved halves of a symmetric tridiagonal (xLAED1 with
// xLAED2 and xLAED3). Tearing the off-diagonal element rho out of T leaves
// two tridiagonals whose eigen-decompositions Q1 D1 Q1^T and Q2 D2 Q2^T are
// known; T is then
//   diag(Q1, Q2) (diag(D1, D2) + rho z z^T) diag(Q1, Q2)^T
// with z the last row of Q1 beside the first row of Q2. The rank-one
// problem is first deflated: a component of z that is negligible leaves its
// eigenpair as it is, and two nearly equal eigenvalues are made exactly one
// by a rotation that zeroes one of their components. The k remaining
// eigenvalues are the roots of the secular equation (laed4), and the
// eigenvectors of the rank-one problem are rebuilt from them with a
// recomputed z (the Gu-Eisenstat formula), which keeps them orthogonal.
// Multiplied by diag(Q1, Q2), whose block structure the deflation sorts the
// columns to preserve, they give the merged problem's eigenvectors.
#include <omp.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "lapack/blas_calls.h"
#include "lapack/copy_scale.h"
#include "lapack/laed.h"
#include "service/threading.h"

namespace orb::lapack::dc {
namespace {

// Index of the largest |x_i| (1-based, the first of equals).
template <class R>
int iamax(int n, const R *x) {
  int best = 1;
  R big = std::abs(x[0]);
  for (int i = 2; i <= n; ++i)
    if (std::abs(x[i - 1]) > big) big = std::abs(x[i - 1]), best = i;
  return best;
}

// The deflation (xLAED2). On entry z is the rank-one vector (the halves'
// parts as they are), d the halves' eigenvalues, each half sorted by indxq.
// On return the k undeflated eigenvalues are in dlambda(1..k) ascending,
// with their z components in w; the deflated ones are in d(k+1..n) with
// their vectors in Q(:, k+1..n). Q2 holds the undeflated vectors packed by
// type (1: upper half only, 2: both, 3: lower half only; the columns of
// types 1 and 2 as their n1 upper rows, then those of types 2 and 3 as
// their n2 lower rows), indxc maps the packed order to dlambda's, and
// ctot(1..4) counts the columns of each type (4: deflated). rho becomes
// the positive coupling of the normalized z.
template <class R>
int deflate(int n, int n1, R *d_, R *q_, int ldq, int *indxq_, R &rho, R *z_, R *dlambda_, R *w_,
            R *q2, int *indx_, int *indxc_, int *indxp_, int *coltyp_, int ctot[4]) {
  auto d = vec1(d_), z = vec1(z_), dlambda = vec1(dlambda_), w = vec1(w_);
  auto indxq = vec1(indxq_), indx = vec1(indx_), indxc = vec1(indxc_), indxp = vec1(indxp_),
       coltyp = vec1(coltyp_);
  auto q = mat1(q_, ldq);
  const int n2 = n - n1;

  // z as a unit vector (each half's part is a row of an orthogonal matrix)
  // and rho positive.
  if (rho < 0)
    for (int i = n1 + 1; i <= n; ++i) z(i) = -z(i);
  const R t0 = 1 / std::sqrt(R(2));
  for (int i = 1; i <= n; ++i) z(i) *= t0;
  rho = std::abs(2 * rho);

  // indx: the merged ascending order of both halves.
  for (int i = n1 + 1; i <= n; ++i) indxq(i) += n1;
  for (int i = 1; i <= n; ++i) dlambda(i) = d(indxq(i));
  lamrg(n1, n2, dlambda_, 1, 1, indxc_);
  for (int i = 1; i <= n; ++i) indx(i) = indxq(indxc(i));

  const R eps = dc::eps<R>();
  const R zmax = std::abs(z(iamax(n, z_))), dmax = std::abs(d(iamax(n, d_)));
  const R tol = 8 * 8 * eps * std::max(dmax, zmax);

  // Everything deflates: only the sort remains.
  if (rho * zmax <= tol) {
    R *col = q2;
    for (int j = 1; j <= n; ++j, col += n) {
      const int i = indx(j);
      std::copy_n(q.at(1, i), n, col);
      dlambda(j) = d(i);
    }
    lacpy(Part::kAll, n, n, q2, n, q_, ldq);
    std::copy_n(dlambda_, n, d_);
    return 0;
  }

  for (int i = 1; i <= n1; ++i) coltyp(i) = 1;
  for (int i = n1 + 1; i <= n; ++i) coltyp(i) = 3;

  // Walk the eigenvalues in ascending order. A small z component deflates
  // at once (to the back of indxp); otherwise the previous undeflated one
  // (pj) is compared with this one (nj): close enough, a rotation zeroes
  // pj's component and pj deflates, kept sorted among the deflated.
  int k = 0, k2 = n + 1;
  int j = 1, pj = 0;
  for (; j <= n; ++j) {
    const int nj = indx(j);
    if (rho * std::abs(z(nj)) <= tol) {
      --k2;
      coltyp(nj) = 4;
      indxp(k2) = nj;
    } else {
      pj = nj;
      break;
    }
  }
  if (pj != 0) {
    for (++j; j <= n; ++j) {
      const int nj = indx(j);
      if (rho * std::abs(z(nj)) <= tol) {
        --k2;
        coltyp(nj) = 4;
        indxp(k2) = nj;
        continue;
      }
      R s = z(pj), c = z(nj);
      const R tau = std::hypot(c, s);
      const R t = d(nj) - d(pj);
      c /= tau;
      s = -s / tau;
      if (std::abs(t * c * s) <= tol) {
        z(nj) = tau;
        z(pj) = 0;
        if (coltyp(nj) != coltyp(pj)) coltyp(nj) = 2;
        coltyp(pj) = 4;
        rot(n, q.at(1, pj), 1, q.at(1, nj), 1, c, s);
        const R tp = d(pj) * c * c + d(nj) * s * s;
        d(nj) = d(pj) * s * s + d(nj) * c * c;
        d(pj) = tp;
        --k2;
        int i = 1;
        while (k2 + i <= n && d(pj) < d(indxp(k2 + i))) {
          indxp(k2 + i - 1) = indxp(k2 + i);
          indxp(k2 + i) = pj;
          ++i;
        }
        indxp(k2 + i - 1) = pj;
      } else {
        ++k;
        dlambda(k) = d(pj);
        w(k) = z(pj);
        indxp(k) = pj;
      }
      pj = nj;
    }
    ++k;
    dlambda(k) = d(pj);
    w(k) = z(pj);
    indxp(k) = pj;
  }

  // Sort the columns by type: indx the packed order, indxc its position in
  // indxp's (dlambda's) order.
  for (int t = 0; t < 4; ++t) ctot[t] = 0;
  for (int i = 1; i <= n; ++i) ++ctot[coltyp(i) - 1];
  int psm[4] = {1, 1 + ctot[0], 1 + ctot[0] + ctot[1], 1 + ctot[0] + ctot[1] + ctot[2]};
  k = n - ctot[3];
  for (int jj = 1; jj <= n; ++jj) {
    const int js = indxp(jj), ct = coltyp(js) - 1;
    indx(psm[ct]) = js;
    indxc(psm[ct]) = jj;
    ++psm[ct];
  }

  // Pack the vectors into Q2 and the eigenvalues in packed order into z.
  R *up = q2, *low = q2 + static_cast<std::ptrdiff_t>(ctot[0] + ctot[1]) * n1;
  int i = 1;
  for (int c = 0; c < ctot[0]; ++c, ++i, up += n1) {
    const int js = indx(i);
    std::copy_n(q.at(1, js), n1, up);
    z(i) = d(js);
  }
  for (int c = 0; c < ctot[1]; ++c, ++i, up += n1, low += n2) {
    const int js = indx(i);
    std::copy_n(q.at(1, js), n1, up);
    std::copy_n(q.at(n1 + 1, js), n2, low);
    z(i) = d(js);
  }
  for (int c = 0; c < ctot[2]; ++c, ++i, low += n2) {
    const int js = indx(i);
    std::copy_n(q.at(n1 + 1, js), n2, low);
    z(i) = d(js);
  }
  R *defl = low;
  for (int c = 0; c < ctot[3]; ++c, ++i, low += n) {
    const int js = indx(i);
    std::copy_n(q.at(1, js), n, low);
    z(i) = d(js);
  }
  // The deflated pairs go straight to their final place.
  if (k < n) {
    lacpy(Part::kAll, n, ctot[3], defl, n, q.at(1, k + 1), ldq);
    std::copy_n(z.at(k + 1), n - k, d.at(k + 1));
  }
  return k;
}

// The k roots and the eigenvectors of the deflated rank-one problem, then
// the products with the packed vectors (xLAED3). Q(1..k, 1..k) is scratch
// for the roots' differences; s: room for max(n12, n23) k. The roots and
// the vectors are independent per column and run over `team` threads.
template <class R>
int secular_vectors(int k, int n, int n1, R *d_, R *q_, int ldq, R rho, const R *dlambda_,
                    const R *q2, const int *indx_, const int ctot[4], R *w_, R *s_, int team,
                    bool threaded) {
  auto d = vec1(d_), w = vec1(w_), s = vec1(s_);
  auto dlambda = vec1(const_cast<R *>(dlambda_));
  auto indx = vec1(const_cast<int *>(indx_));
  auto q = mat1(q_, ldq);

  int info = 0;
#pragma omp parallel for num_threads(team) if (team > 1) schedule(static) reduction(max : info)
  for (int j = 1; j <= k; ++j) {
    if (laed4(k, j, dlambda_, w_, q.at(1, j), rho, d(j)) != 0) info = 1;
  }
  if (info != 0) return info;

  if (k == 2) {
    for (int j = 1; j <= k; ++j) {
      const R a = q(1, j), b = q(2, j);
      q(1, j) = indx(1) == 1 ? a : b;
      q(2, j) = indx(2) == 1 ? a : b;
    }
  } else if (k > 2) {
    // z recomputed from the roots so that it is exactly consistent with
    // them: w_i^2 = -prod_j (d_j - lambda_i) / prod_{j != i} (lambda_j - lambda_i)
    // in the differences laed4 kept.
    std::copy_n(w_, k, s_);
    for (int i = 1; i <= k; ++i) w(i) = q(i, i);
#pragma omp parallel for num_threads(team) if (team > 1) schedule(static)
    for (int i = 1; i <= k; ++i) {
      R wi = w(i);
      for (int j = 1; j <= k; ++j)
        if (j != i) wi = wi * (q(i, j) / (dlambda(i) - dlambda(j)));
      w(i) = wi;
    }
    for (int i = 1; i <= k; ++i) w(i) = dc::sign(std::sqrt(-w(i)), s(i));

      // The eigenvectors: column j is w ./ (d - lambda_j), normalized, in the
      // packed order.
#pragma omp parallel num_threads(team) if (team > 1)
    {
      // Each thread builds its columns in a vector of its own.
      std::vector<R> col(k);
#pragma omp for schedule(static)
      for (int j = 1; j <= k; ++j) {
        for (int i = 1; i <= k; ++i) col[i - 1] = w(i) / q(i, j);
        const R norm = nrm2(k, col.data());
        for (int i = 1; i <= k; ++i) q(i, j) = col[indx(i) - 1] / norm;
      }
    }
  }

  // The products with the halves' vectors, each over the rows its packed
  // columns touch.
  const int n2 = n - n1;
  const int n12 = ctot[0] + ctot[1], n23 = ctot[1] + ctot[2];
  auto product = [&](int m, int inner, const R *a, R *c) {
    if (threaded)
      gemm(Op::kNone, Op::kNone, m, k, inner, R(1), a, m, s_, inner, R(0), c, ldq);
    else
      gemm_here(Op::kNone, Op::kNone, m, k, inner, R(1), a, m, s_, inner, R(0), c, ldq);
  };
  lacpy(Part::kAll, n23, k, q.at(ctot[0] + 1, 1), ldq, s_, std::max(n23, 1));
  if (n23 != 0)
    product(n2, n23, q2 + static_cast<std::ptrdiff_t>(n1) * n12, q.at(n1 + 1, 1));
  else
    laset(Part::kAll, n2, k, R(0), R(0), q.at(n1 + 1, 1), ldq);
  lacpy(Part::kAll, n12, k, q.at(1, 1), ldq, s_, std::max(n12, 1));
  if (n12 != 0)
    product(n1, n12, q2, q.at(1, 1));
  else
    laset(Part::kAll, n1, k, R(0), R(0), q.at(1, 1), ldq);
  return 0;
}

}  // namespace

template <class R>
int laed1(int n, R *d, R *q_, int ldq, int *indxq, R rho, int cutpnt, R *work, int *iwork,
          bool threaded) {
  if (n == 0) return 0;
  auto q = mat1(q_, ldq);
  R *z = work, *dlambda = work + n, *w = work + 2 * n, *q2 = work + 3 * n;
  int *indx = iwork, *indxc = iwork + n, *coltyp = iwork + 2 * n, *indxp = iwork + 3 * n;

  // z: the last row of the upper half's vectors, the first of the lower's.
  for (int j = 1; j <= cutpnt; ++j) z[j - 1] = q(cutpnt, j);
  for (int j = cutpnt + 1; j <= n; ++j) z[j - 1] = q(cutpnt + 1, j);

  int ctot[4] = {0, 0, 0, 0};
  const int k = deflate(n, cutpnt, d, q_, ldq, indxq, rho, z, dlambda, w, q2, indx, indxc, indxp,
                        coltyp, ctot);
  if (k == 0) {
    for (int i = 0; i < n; ++i) indxq[i] = i + 1;
    return 0;
  }
  // The scratch of the products follows the packed vectors (the deflated
  // ones, already in place, are no longer needed).
  R *s = q2 + static_cast<std::ptrdiff_t>(ctot[0] + ctot[1]) * cutpnt +
         static_cast<std::ptrdiff_t>(ctot[1] + ctot[2]) * (n - cutpnt);
  // A merge run on its own (not one of a level's several) shares its roots
  // and vectors out over the library's team; each is computed alone, so the
  // result does not depend on the team.
  int team = 1;
  if (threaded && !omp_in_parallel()) team = std::max(1, threads::max_threads());
  const int info = secular_vectors(k, n, cutpnt, d, q_, ldq, rho, dlambda, q2, indxc, ctot, w, s,
                                   team, threaded);
  if (info != 0) return info;
  lamrg(k, n - k, d, 1, -1, indxq);
  return 0;
}

template int laed1<float>(int, float *, float *, int, int *, float, int, float *, int *, bool);

}  // namespace orb::lapack::dc
