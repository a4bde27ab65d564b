// The QR and LQ family: factorizations A = Q R (xGEQRF) and A = L Q
// (xGELQF), the explicit Q (xORGQR/xUNGQR, xORGLQ/xUNGLQ), products with Q
// (xORMQR/xUNMQR, xORMLQ/xUNMLQ and, for the library's own use, the QL
// form xORMQL/xUNMQL) and the least-squares driver xGELS. Q is kept as the
// published routines keep it: Householder vectors below (QR) or right of
// (LQ) the diagonal, or above the last diagonal (QL), with their scalars in
// tau. Arguments are values, already checked; options are decoded, and Op
// kTrans means the adjoint (kConjTrans) for complex data as for real. The
// blocked routines take their block sizes from the oracle, narrowing them
// to a short WORK as the published routines do, and store the optimal
// workspace in WORK(1).
#pragma once

#include <cstdint>

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// ---- one reflector at a time ---------------------------------------------------------

// A = Q R column by column (xGEQR2); work has n entries.
template <class T>
void geqr2(int m, int n, T *a, int lda, T *tau, T *work);
// A = L Q row by row (xGELQ2); work has m entries.
template <class T>
void gelq2(int m, int n, T *a, int lda, T *tau, T *work);
// The first n columns of Q from the k reflectors of a QR (xORG2R/xUNG2R);
// work has n entries.
template <class T>
void org2r(int m, int n, int k, T *a, int lda, const T *tau, T *work);
// The first m rows of Q from the k reflectors of an LQ (xORGL2/xUNGL2);
// work has m entries.
template <class T>
void orgl2(int m, int n, int k, T *a, int lda, const T *tau, T *work);
// C := op(Q) C or C op(Q) with Q from a QR (xORM2R/xUNM2R), an LQ
// (xORML2/xUNML2) or a QL (xORM2L/xUNM2L); work has n (left) or m (right)
// entries. A is only read.
template <class T>
void orm2r(Side side, Op op, int m, int n, int k, const T *a, int lda, const T *tau, T *c, int ldc,
           T *work);
template <class T>
void orml2(Side side, Op op, int m, int n, int k, const T *a, int lda, const T *tau, T *c, int ldc,
           T *work);
template <class T>
void orm2l(Side side, Op op, int m, int n, int k, const T *a, int lda, const T *tau, T *c, int ldc,
           T *work);

// ---- blocked ---------------------------------------------------------------------------

// xGEQRF (module xgeqrf_omp): panels of the oracle's block size; from the
// oracle's team crossover a team factors with look-ahead (geqrf_team).
template <class T>
void geqrf(int m, int n, T *a, int lda, T *tau, T *work, int lwork);
template <class T>
std::int64_t geqrf_worksize(int m, int n);
// The look-ahead factorization on `threads` threads (1 is allowed) with
// panels of nb columns, its work space its own. False, having done
// nothing, when that work space cannot be had.
template <class T>
bool geqrf_team(int m, int n, T *a, int lda, T *tau, int nb, int threads);

// xGELQF.
template <class T>
void gelqf(int m, int n, T *a, int lda, T *tau, T *work, int lwork);
template <class T>
std::int64_t gelqf_worksize(int m, int n);

// xORGQR/xUNGQR and xORGLQ/xUNGLQ.
template <class T>
void orgqr(int m, int n, int k, T *a, int lda, const T *tau, T *work, int lwork);
template <class T>
std::int64_t orgqr_worksize(int m, int n, int k);
template <class T>
void orglq(int m, int n, int k, T *a, int lda, const T *tau, T *work, int lwork);
template <class T>
std::int64_t orglq_worksize(int m, int n, int k);

// The last n columns of Q from the k reflectors of a QL (xORG2L/xUNG2L,
// work n entries; xORGQL/xUNGQL blocked, orgql.cpp).
template <class T>
void org2l(int m, int n, int k, T *a, int lda, const T *tau, T *work);
template <class T>
void orgql(int m, int n, int k, T *a, int lda, const T *tau, T *work, int lwork);
template <class T>
std::int64_t orgql_worksize(int m, int n, int k);

// xORMQR/xUNMQR (module xormqr_omp), xORMLQ/xUNMLQ (xormlq_omp) and
// xORMQL/xUNMQL (xormql_omp): blocks of reflectors through larft and
// larfb; from the oracle's team crossover on C's other dimension the
// columns (left) or rows (right) of C are split over a team, each thread
// applying every block to its own slice (the same bits as one thread).
template <class T>
void ormqr(Side side, Op op, int m, int n, int k, const T *a, int lda, const T *tau, T *c, int ldc,
           T *work, int lwork);
template <class T>
void ormlq(Side side, Op op, int m, int n, int k, const T *a, int lda, const T *tau, T *c, int ldc,
           T *work, int lwork);
template <class T>
void ormql(Side side, Op op, int m, int n, int k, const T *a, int lda, const T *tau, T *c, int ldc,
           T *work, int lwork);
// The optimal LWORK of the three: max(1, n or m) nb + the T factor's 65 by 64.
template <class T>
std::int64_t orm_worksize(const char *routine, Side side, int m, int n, int k);

// The team size the products above take for their C (1: serial); the
// thread count is `threads` (0: the threading control's).
template <class T>
int orm_team(const char *routine, Side side, int m, int n, int k, int threads = 0);
// Forces the team size of the next products on this thread (0: the
// oracle's choice again), for tests.
void orm_force_team(int threads);

// xGELS: the least-squares or minimum-norm solution with QR or LQ, A and B
// scaled into range first. Returns INFO: 0, or i > 0 when the triangular
// factor's i-th diagonal element is exactly zero.
template <class T>
int gels(Op op, int m, int n, int nrhs, T *a, int lda, T *b, int ldb, T *work, int lwork);
template <class T>
std::int64_t gels_worksize(Op op, int m, int n, int nrhs);

// The routine names of a precision: "ORMQR" for real data, "UNMQR" for
// complex, and the like.
template <class T>
constexpr const char *orth_name(const char *real_name, const char *complex_name) {
  return is_complex_v<T> ? complex_name : real_name;
}

// The path the calling thread's last geqrf took (for tests).
enum class GeqrfPath { kNone, kUnblocked, kBlocked, kTeam };
GeqrfPath geqrf_last_path();

}  // namespace orb::lapack
