// The QR factorization with column pivoting (geqp3.cpp).
#pragma once

#include <cstdint>

#include "common/scalar.h"

namespace orb::lapack {

// A P = Q R with column pivoting (published xGEQP3): the columns with a
// non-zero jpvt entry are moved to the front and factored first, in order;
// then each step takes the free column of largest remaining norm, in
// blocks (the partial column norms downdated and recomputed where the
// downdate lost too much) and unblocked for the last columns. On return
// jpvt(j) = k when column j of A P was column k of A (1-based). The
// published arguments: for real data the column norms live in the first
// 2 n entries of work and rwork is unused; for complex data in rwork (2 n
// reals). lwork is the published one (checked by the entry). Returns the
// workspace used, for WORK(1).
template <class T>
std::int64_t geqp3(int m, int n, T *a, int lda, int *jpvt, T *tau, T *work, int lwork,
                   real_t<T> *rwork);

// The optimal LWORK (the LWORK = -1 answer).
template <class T>
std::int64_t geqp3_worksize(int m, int n);

// The smallest LWORK accepted.
template <class T>
std::int64_t geqp3_minwork(int m, int n);

}  // namespace orb::lapack
