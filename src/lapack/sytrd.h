// The pieces of the reduction to tridiagonal form (sytrd, eigen.h): the
// unblocked reduction, the panel and the trailing rank-2k step. T complex
// means Hermitian (xHETRD); T real, symmetric (xSYTRD).
#pragma once

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// The unblocked reduction (xSYTD2, xHETD2): d, e, tau and the reflectors in
// A as sytrd leaves them; no workspace (tau holds the products meanwhile).
template <class T>
void sytd2(Uplo uplo, int n, T *a, int lda, real_t<T> *d, real_t<T> *e, T *tau);

// The blocked reduction with panels of nb reflectors while more than nx
// columns remain (xSYTRD's loop, nb and nx given); W: n x nb, leading
// dimension ldw. team < 0: the oracle decides; else with panel_team each
// panel and step runs on `team` threads (latrd_team, sytd3_team), without
// it the whole loop runs in one region of `team` threads, the panels on
// the first and the steps on all.
template <class T>
void sytrd_blocked(Uplo uplo, int n, int nb, int nx, T *a, int lda, real_t<T> *d, real_t<T> *e,
                   T *tau, T *w, int ldw, int team, bool panel_team = true);

// The panel (xLATRD): nb reflectors of the n x n matrix A, from its last
// columns (upper) or its first (lower), with W (n x nb, leading dimension
// ldw) such that the trailing update is A := A - V W^H - W V^H. The
// reflectors' leading ones are left in A, e and tau take the panel's
// off-diagonals and scalars. The products with the trailing matrix run on a
// team (query 3 of "LATRD": the order from which one is used); latrd_team
// takes the team size as given (1: the published order of operations).
// Every team size gives the same bits.
template <class T>
void latrd(Uplo uplo, int n, int nb, T *a, int lda, real_t<T> *e, T *tau, T *w, int ldw);
template <class T>
void latrd_team(Uplo uplo, int n, int nb, T *a, int lda, real_t<T> *e, T *tau, T *w, int ldw,
                int team);

// The two-sided rank-2k step: the stored triangle of the n x n A :=
// A - V W^H - W V^H (V and W n x k), the diagonal kept real for complex T.
// Threads take column slabs of the triangle of equal area (query 3 of
// "SYTD3": the order from which a team is used); sytd3_team takes the team
// size as given. Every team size gives the same bits.
template <class T>
void sytd3(Uplo uplo, int n, int k, T *a, int lda, const T *v, int ldv, const T *w, int ldw);
template <class T>
void sytd3_team(Uplo uplo, int n, int k, T *a, int lda, const T *v, int ldv, const T *w, int ldw,
                int team);

// The step in pieces, for a driver that keeps its team in one region:
// X := [V W V] (n x 3k, leading dimension n), then each member's slab
// `part` of `parts` of the triangle's columns (slabs of equal area).
template <class T>
void sytd3_gather(int n, int k, const T *v, int ldv, const T *w, int ldw, T *x);
template <class T>
void sytd3_columns(Uplo uplo, int n, int k, const T *x, T *a, int lda, int part, int parts);

}  // namespace orb::lapack
