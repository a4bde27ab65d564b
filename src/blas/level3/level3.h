// The level-3 routines beside the general multiply: symmetric and Hermitian
// multiplies (module symm_omp), symmetric and Hermitian rank-k and rank-2k
// updates (syrk_omp), triangular multiplies (trmm_omp) and triangular solves
// with several right-hand sides (trsm_omp).
//
// Each is one template over the scalar type (float and std::complex<float>;
// the rank-k updates and the triangular multiply and solve also double and
// std::complex<double>, for the LAPACK routines) that puts its
// heavy work into the serial GEMM kernels. The *_omp drivers split their
// output into independent slabs over the BLAS domain's threads and run the
// serial routine on each; small problems stay on the calling thread. Results
// do not depend on the number of threads on the processor paths whose GEMM
// kernels always pack (types 0, 4 and 5).
//
// Arguments are values, already checked (the exported entries run the
// reference checks first), with the options decoded (common/options.h).
#pragma once

#include <complex>

#include "common/options.h"
#include "common/scalar.h"

namespace orb::blas {

// C := alpha A B + beta C (left) or alpha B A + beta C (right), A symmetric,
// or Hermitian when `herm` is set (the imaginary parts of its diagonal are
// taken as zero), only its `upper` or lower triangle read. C is m by n.
template <class T>
void symm_omp(bool left, bool upper, bool herm, int m, int n, T alpha, const T *a, int lda,
              const T *b, int ldb, T beta, T *c, int ldc);
template <class T>
void symm_serial(bool left, bool upper, bool herm, int m, int n, T alpha, const T *a, int lda,
                 const T *b, int ldb, T beta, T *c, int ldc);

// The `upper` or lower triangle of the n-by-n C:
//   Op::kNone: C := alpha A op(A) + beta C            (A n by k)
//   else:     C := alpha op(A) A + beta C            (A k by n)
// with op the transpose, or the conjugate transpose when `herm` is set (then
// alpha and beta are real, and the diagonal of C comes out real).
template <class T>
void syrk_omp(bool upper, Op trans, bool herm, int n, int k, T alpha, const T *a, int lda, T beta,
              T *c, int ldc);
template <class T>
void syrk_serial(bool upper, Op trans, bool herm, int n, int k, T alpha, const T *a, int lda,
                 T beta, T *c, int ldc);

// The `upper` or lower triangle of the n-by-n C:
//   Op::kNone: C := alpha A op(B) + alpha' B op(A) + beta C
//   else:     C := alpha op(A) B + alpha' op(B) A + beta C
// alpha' being alpha, or its conjugate when `herm` is set (then beta is real).
template <class T>
void syr2k_omp(bool upper, Op trans, bool herm, int n, int k, T alpha, const T *a, int lda,
               const T *b, int ldb, T beta, T *c, int ldc);
template <class T>
void syr2k_serial(bool upper, Op trans, bool herm, int n, int k, T alpha, const T *a, int lda,
                  const T *b, int ldb, T beta, T *c, int ldc);

// A triangular operand: which side it multiplies from, which triangle of A is
// stored, op(A) and whether the diagonal is taken as ones (then never read).
struct Triangular {
  bool left;
  bool upper;
  Op trans;
  bool unit;
};

// B := alpha op(A) B (left) or alpha B op(A) (right); B is m by n.
template <class T>
void trmm_omp(const Triangular &t, int m, int n, T alpha, const T *a, int lda, T *b, int ldb);
template <class T>
void trmm_serial(const Triangular &t, int m, int n, T alpha, const T *a, int lda, T *b, int ldb);

// Solves op(A) X = alpha B (left) or X op(A) = alpha B (right); X overwrites
// the m-by-n B.
template <class T>
void trsm_omp(const Triangular &t, int m, int n, T alpha, const T *a, int lda, T *b, int ldb);
template <class T>
void trsm_serial(const Triangular &t, int m, int n, T alpha, const T *a, int lda, T *b, int ldb);

// ---- the thread split, exposed for tests -----------------------------------------

// How many threads a routine of `work` multiply-adds uses when its output
// splits into at most `slabs` independent slabs: 1 for small work (without
// asking for a thread count), otherwise at most the BLAS domain's count.
int level3_team(double work, int slabs);

// Boundary i (0 .. nt) of a split of [0, total) into nt slabs of equal work,
// on multiples of `grain`. `shape` 0: every column costs the same; 1: column j
// costs j + 1 (upper triangle); 2: column j costs total - j (lower triangle).
int level3_boundary(int total, int i, int nt, int grain, int shape);

}  // namespace orb::blas
