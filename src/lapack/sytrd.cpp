// The reduction of a symmetric or Hermitian matrix to tridiagonal form:
// unblocked (sytd2: one reflector at a time, a symmetric matrix-vector
// product and a rank-2 update each) and blocked (sytrd: panels of nb
// reflectors from latrd, each followed by one rank-2k update of the
// trailing triangle through sytd3; the last block unblocked). With a team
// the loop runs either in one region (panels on the first thread, steps on
// all) or with a team per panel and per step, by order.
#include <omp.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "blas/level1/level1.h"
#include "blas/level2/level2.h"
#include "lapack/eigen.h"
#include "lapack/householder.h"
#include "lapack/labrd.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/sytrd.h"
#include "service/memory.h"
#include "service/threading.h"

namespace orb::lapack {
namespace {

template <class T>
T *at(T *a, int lda, int i, int j) {
  return a + i + static_cast<std::ptrdiff_t>(j) * lda;
}

// Makes the diagonal element real (the Hermitian matrix's imaginary parts
// there are not read); nothing for real data.
template <class T>
void make_real(T &x) {
  if constexpr (is_complex_v<T>) x = T(x.real());
}

// One reflector's two-sided update of the m x m triangle C with v (its
// first element one) and tau: x := tau C v, x := x - (tau/2)(x^H v) v,
// C := C - v x^H - x v^H. x is the caller's m-element scratch.
template <class T>
void reflect_both_sides(bool upper, int m, T *c, int ldc, const T *v, T tau, T *x) {
  constexpr bool herm = is_complex_v<T>;
  blas::level2::symv(upper, m, tau, c, ldc, v, 1, T(0), x, 1, herm);
  const T alpha = mul(T(real_t<T>(-0.5)) * tau, blas::dotc(m, x, 1, v, 1));
  blas::axpy(m, alpha, v, 1, x, 1);
  blas::level2::syr2(upper, m, T(-1), v, 1, x, 1, c, ldc, herm);
}

}  // namespace

template <class T>
void sytd2(Uplo uplo, int n, T *a, int lda, real_t<T> *d, real_t<T> *e, T *tau) {
  if (n <= 0) return;
  auto A = [&](int i, int j) -> T & { return *at(a, lda, i, j); };
  if (uplo == Uplo::kUpper) {
    // H(i) annihilates A(0:i, i+1) above the superdiagonal, from the last
    // column to the first; A(0:i+1, 0:i+1) takes its two-sided update.
    make_real(A(n - 1, n - 1));
    for (int i = n - 2; i >= 0; --i) {
      T alpha = A(i, i + 1), taui;
      larfg(i + 1, alpha, at(a, lda, 0, i + 1), 1, taui);
      e[i] = std::real(alpha);
      if (taui != T(0)) {
        A(i, i + 1) = T(1);
        reflect_both_sides(true, i + 1, a, lda, at(a, lda, 0, i + 1), taui, tau);
      } else {
        make_real(A(i, i));
      }
      A(i, i + 1) = T(e[i]);
      d[i + 1] = std::real(A(i + 1, i + 1));
      tau[i] = taui;
    }
    d[0] = std::real(A(0, 0));
    return;
  }
  // H(i) annihilates A(i+2:n, i) below the subdiagonal, from the first
  // column on; A(i+1:n, i+1:n) takes its two-sided update.
  make_real(A(0, 0));
  for (int i = 0; i < n - 1; ++i) {
    T alpha = A(i + 1, i), taui;
    larfg(n - i - 1, alpha, at(a, lda, std::min(i + 2, n - 1), i), 1, taui);
    e[i] = std::real(alpha);
    if (taui != T(0)) {
      A(i + 1, i) = T(1);
      reflect_both_sides(false, n - i - 1, at(a, lda, i + 1, i + 1), lda, at(a, lda, i + 1, i),
                         taui, tau + i);
    } else {
      make_real(A(i + 1, i + 1));
    }
    A(i + 1, i) = T(e[i]);
    d[i] = std::real(A(i, i));
    tau[i] = taui;
  }
  d[n - 1] = std::real(A(n - 1, n - 1));
}

namespace {

template <class T>
Name6 sytrd_name() {
  return name<T>(is_complex_v<T> ? "HETRD" : "SYTRD");
}

}  // namespace

template <class T>
std::int64_t sytrd_worksize(Uplo, int n) {
  const int nb = std::max(1, oracle(kBlockSize, sytrd_name<T>(), n));
  return std::max<std::int64_t>(1, std::int64_t{n} * nb);
}

template <class T>
void sytrd(Uplo uplo, int n, T *a, int lda, real_t<T> *d, real_t<T> *e, T *tau, T *work,
           int lwork) {
  if (n <= 0) return;
  const auto nm = sytrd_name<T>();
  int nb = std::max(1, oracle(kBlockSize, nm, n));
  int nx = n;
  const int ldw = n;
  if (nb > 1 && nb < n) {
    // Below the crossover the unblocked reduction does it all; a short
    // workspace takes narrower panels, down to the smallest useful one.
    nx = std::max(nb, oracle(kCrossover, nm, n));
    if (nx < n && lwork < std::int64_t{ldw} * nb) {
      nb = std::max(lwork / ldw, 1);
      if (nb < oracle(kMinBlockSize, nm, n)) nx = n;
    }
  } else {
    nb = 1;
  }
  if (nx >= n) {
    sytd2(uplo, n, a, lda, d, e, tau);
    return;
  }
  sytrd_blocked(uplo, n, nb, nx, a, lda, d, e, tau, work, ldw, -1);
}

template <class T>
void sytrd_blocked(Uplo uplo, int n, int nb, int nx, T *a, int lda, real_t<T> *d, real_t<T> *e,
                   T *tau, T *w, int ldw, int team, bool panel_team) {
  if (n <= 0) return;
  nb = std::max(1, std::min(nb, n));
  const bool upper = uplo == Uplo::kUpper;
  if (team < 0) {
    // Between the step's team order and the panel's, one region whose first
    // thread makes the panels; above, each panel and step its own team.
    const int threads = omp_in_parallel() ? 1 : orb::threads::max_threads();
    if (threads >= 2 && n >= oracle(kCrossover, name<T>("SYTD3"), n, nb, threads) &&
        n < oracle(kCrossover, name<T>("LATRD"), n, nb, threads)) {
      team = threads;
      panel_team = false;
    }
  }
  // The panels' first columns, in order: from the last columns down to kk,
  // each leaving a column in front of it (upper), or from the first on
  // while more than nx columns remain (lower).
  std::vector<int> firsts;
  if (upper) {
    const int kk = n - ((n - nx + nb - 1) / nb) * nb;
    for (int i = n - nb; i >= kk && i > 0; i -= nb) firsts.push_back(i);
  } else {
    for (int i = 0; i < n - nx && i + nb < n; i += nb) firsts.push_back(i);
  }
  auto A = [&](int i, int j) { return at(a, lda, i, j); };
  // Panel i's order, its matrix, the trailing step's order, matrix, V and W.
  struct Panel {
    int order;
    T *ap;
    real_t<T> *ep;
    T *taup;
    int rest;
    T *cp;
    const T *vp, *wp;
  };
  auto panel_at = [&](int i) {
    if (upper) return Panel{i + nb, a, e, tau, i, a, A(0, i), w};
    return Panel{n - i,      A(i, i),           e + i,        tau + i,
                 n - i - nb, A(i + nb, i + nb), A(i + nb, i), w + nb};
  };
  auto fix = [&](int i) {
    for (int j = i; j < i + nb; ++j) {
      if (upper)
        *A(j - 1, j) = T(e[j - 1]);
      else
        *A(j + 1, j) = T(e[j]);
      d[j] = std::real(*A(j, j));
    }
  };
  auto serial = [&](int panel_threads) {
    for (const int i : firsts) {
      const Panel p = panel_at(i);
      if (panel_threads < 0) {
        latrd(uplo, p.order, nb, p.ap, lda, p.ep, p.taup, w, ldw);
        sytd3(uplo, p.rest, nb, p.cp, lda, p.vp, lda, p.wp, ldw);
      } else {
        latrd_team(uplo, p.order, nb, p.ap, lda, p.ep, p.taup, w, ldw, panel_threads);
        sytd3_team(uplo, p.rest, nb, p.cp, lda, p.vp, lda, p.wp, ldw, panel_threads);
      }
      fix(i);
    }
  };
  const mem::Buffer<T> xbuf(team >= 2 && !panel_team ? std::int64_t{n} * 3 * nb : 0, 128);
  if (team >= 2 && !panel_team && xbuf && !firsts.empty()) {
    // One region: the panel on thread 0 while the others wait (asleep after
    // a short spin), then the step's slabs on all.
    labrd_detail::Barrier bar(team);
    T *x = xbuf.get();
#pragma omp parallel num_threads(team)
    {
      const int tid = omp_get_thread_num();
      if (omp_get_num_threads() != team) {
        if (tid == 0) serial(1);
      } else {
        for (const int i : firsts) {
          const Panel p = panel_at(i);
          if (tid == 0) {
            latrd_team(uplo, p.order, nb, p.ap, lda, p.ep, p.taup, w, ldw, 1);
            sytd3_gather(p.rest, nb, p.vp, lda, p.wp, ldw, x);
          }
          bar.wait();
          sytd3_columns(uplo, p.rest, nb, x, p.cp, lda, tid, team);
          bar.wait();
          if (tid == 0) fix(i);
        }
      }
    }
  } else {
    serial(team);
  }
  // The rest unblocked: the leading columns (upper) or the trailing ones.
  if (upper) {
    sytd2(uplo, firsts.empty() ? n : firsts.back(), a, lda, d, e, tau);
  } else {
    const int i = firsts.empty() ? 0 : firsts.back() + nb;
    sytd2(uplo, n - i, A(i, i), lda, d + i, e + i, tau + i);
  }
}

#define ORB_SYTRD(T)                                                                           \
  template void sytd2<T>(Uplo, int, T *, int, real_t<T> *, real_t<T> *, T *);                  \
  template std::int64_t sytrd_worksize<T>(Uplo, int);                                          \
  template void sytrd<T>(Uplo, int, T *, int, real_t<T> *, real_t<T> *, T *, T *, int);        \
  template void sytrd_blocked<T>(Uplo, int, int, int, T *, int, real_t<T> *, real_t<T> *, T *, \
                                 T *, int, int, bool);
ORB_SYTRD(float)
ORB_SYTRD(c8)

}  // namespace orb::lapack
