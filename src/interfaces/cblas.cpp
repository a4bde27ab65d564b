// The cblas_ entries: each maps its enumerations to the Fortran-convention
// characters, tests its arguments in the cblas_ numbering (the layout is
// argument 1) and calls the column-major routine. A row-major matrix is the
// column-major storage of its transpose, so row-major calls swap the
// dimensions and flip uplo, side and the transposition; where the transpose
// would still leave a conjugate, the conjugation is carried by the scalars and
// by conjugated copies of the vectors.
#include <algorithm>
#include <complex>
#include <cstddef>
#include <cstring>
#include <vector>

#include "orb.h"
#include "orb_cblas.h"

namespace orb::cblas {
namespace {

using cf = std::complex<float>;

// The column-major routines of each scalar type.
template <class T>
struct F;
template <>
struct F<float> {
  static constexpr auto gemv = &sgemv;
  static constexpr auto gemm = &sgemm;
  static constexpr bool complex = false;
};
template <>
struct F<orb_complex8> {
  static constexpr auto gemv = &cgemv;
  static constexpr auto gemm = &cgemm;
  static constexpr bool complex = true;
};

// The first failing test is reported through XERBLA under the routine's name.
class Checks {
 public:
  explicit Checks(const char *name) : name_(name) {}
  Checks &operator()(int position, bool ok) {
    if (failed_ == 0 && !ok) failed_ = position;
    return *this;
  }
  bool passed() const {
    if (failed_ == 0) return true;
    int code = failed_;
    XERBLA(name_, &code, static_cast<int>(std::strlen(name_)));
    return false;
  }

 private:
  const char *name_;
  int failed_ = 0;
};

bool layout_ok(int layout) {
  return layout == CblasRowMajor || layout == CblasColMajor;
}
bool row_major(int layout) {
  return layout == CblasRowMajor;
}
char trans_char(int t) {
  return t == CblasNoTrans ? 'N' : t == CblasTrans ? 'T' : t == CblasConjTrans ? 'C' : 0;
}
char uplo_char(int u) {
  return u == CblasUpper ? 'U' : u == CblasLower ? 'L' : 0;
}
char diag_char(int d) {
  return d == CblasNonUnit ? 'N' : d == CblasUnit ? 'U' : 0;
}
char side_char(int s) {
  return s == CblasLeft ? 'L' : s == CblasRight ? 'R' : 0;
}
char other_uplo(char u) {
  return u == 'U' ? 'L' : 'U';
}
char other_side(char s) {
  return s == 'L' ? 'R' : 'L';
}

// The least leading dimension of a rows x cols matrix stored in the layout.
int least_ld(int layout, int rows, int cols) {
  return std::max(1, row_major(layout) ? cols : rows);
}

// Conjugates n elements spaced |inc| apart, in place.
void conjugate(int n, orb_complex8 *x, int inc) {
  const int step = inc < 0 ? -inc : inc;
  for (int i = 0; i < n; ++i) x[static_cast<std::ptrdiff_t>(i) * step].im *= -1.0f;
}
// A contiguous conjugated copy of the n-vector x (its order kept for any inc).
std::vector<orb_complex8> conjugated(int n, const orb_complex8 *x, int inc) {
  std::vector<orb_complex8> copy(static_cast<std::size_t>(std::max(n, 1)));
  const int one = 1;
  if (n > 0) ccopy(&n, x, &inc, copy.data(), &one);
  conjugate(n, copy.data(), 1);
  return copy;
}
orb_complex8 conj(const orb_complex8 &z) {
  return {z.re, -z.im};
}

template <class T>
void gemv(const char *name, int layout, int trans, int m, int n, const T *alpha, const T *a,
          int lda, const T *x, int incx, const T *beta, T *y, int incy) {
  char tr = trans_char(trans);
  if (!Checks(name)(1, layout_ok(layout))(2, tr != 0)(3, m >= 0)(4, n >= 0)(
           7, lda >= least_ld(layout, m, n))(9, incx != 0)(12, incy != 0)
           .passed())
    return;
  if (!row_major(layout))
    return F<T>::gemv(&tr, &m, &n, alpha, a, &lda, x, &incx, beta, y, &incy, 1);
  if constexpr (F<T>::complex) {
    if (tr == 'C') {
      // y = conj(conj(alpha) A^T conj(x) + conj(beta) conj(y)) with A^T the storage.
      const char no = 'N';
      const int one = 1, ny = n;
      auto xc = conjugated(m, x, incx);
      orb_complex8 ac = conj(*alpha), bc = conj(*beta);
      conjugate(ny, y, incy);
      F<T>::gemv(&no, &n, &m, &ac, a, &lda, xc.data(), &one, &bc, y, &incy, 1);
      conjugate(ny, y, incy);
      return;
    }
  }
  const char flipped = tr == 'N' ? 'T' : 'N';
  F<T>::gemv(&flipped, &n, &m, alpha, a, &lda, x, &incx, beta, y, &incy, 1);
}

// x := op(A) x or op(A)^-1 x for a triangular A.
template <class T, class Routine>
void triangular_mv(Routine routine, const char *name, int layout, int uplo, int trans, int diag,
                   int n, const T *a, int lda, T *x, int incx) {
  char up = uplo_char(uplo), tr = trans_char(trans), dg = diag_char(diag);
  if (!Checks(name)(1, layout_ok(layout))(2, up != 0)(3, tr != 0)(4, dg != 0)(5, n >= 0)(
           7, lda >= std::max(1, n))(9, incx != 0)
           .passed())
    return;
  if (!row_major(layout)) return routine(&up, &tr, &dg, &n, a, &lda, x, &incx, 1, 1, 1);
  up = other_uplo(up);
  if constexpr (F<T>::complex) {
    if (tr == 'C') {
      const char no = 'N';
      conjugate(n, x, incx);
      routine(&up, &no, &dg, &n, a, &lda, x, &incx, 1, 1, 1);
      conjugate(n, x, incx);
      return;
    }
  }
  tr = tr == 'N' ? 'T' : 'N';
  routine(&up, &tr, &dg, &n, a, &lda, x, &incx, 1, 1, 1);
}

template <class T>
void gemm(const char *name, int layout, int ta, int tb, int m, int n, int k, const T *alpha,
          const T *a, int lda, const T *b, int ldb, const T *beta, T *c, int ldc) {
  char tra = trans_char(ta), trb = trans_char(tb);
  const bool na = tra == 'N', nb = trb == 'N';
  if (!Checks(name)(1, layout_ok(layout))(2, tra != 0)(3, trb != 0)(4, m >= 0)(5, n >= 0)(
           6, k >= 0)(9, lda >= least_ld(layout, na ? m : k, na ? k : m))(
           11, ldb >= least_ld(layout, nb ? k : n, nb ? n : k))(14, ldc >= least_ld(layout, m, n))
           .passed())
    return;
  if (row_major(layout))  // C^T = op(B)^T op(A)^T
    F<T>::gemm(&trb, &tra, &n, &m, &k, alpha, b, &ldb, a, &lda, beta, c, &ldc, 1, 1);
  else
    F<T>::gemm(&tra, &trb, &m, &n, &k, alpha, a, &lda, b, &ldb, beta, c, &ldc, 1, 1);
}

// symm and hemm: the transpose of a symmetric (Hermitian) matrix held in one
// triangle is the same matrix held in the other.
template <class T, class Routine>
void symm(Routine routine, const char *name, int layout, int side, int uplo, int m, int n,
          const T *alpha, const T *a, int lda, const T *b, int ldb, const T *beta, T *c, int ldc) {
  char sd = side_char(side), up = uplo_char(uplo);
  const int ka = sd == 'L' ? m : n;
  if (!Checks(name)(1, layout_ok(layout))(2, sd != 0)(3, up != 0)(4, m >= 0)(5, n >= 0)(
           8, lda >= std::max(1, ka))(10, ldb >= least_ld(layout, m, n))(
           13, ldc >= least_ld(layout, m, n))
           .passed())
    return;
  if (row_major(layout)) {
    sd = other_side(sd);
    up = other_uplo(up);
    std::swap(m, n);
  }
  routine(&sd, &up, &m, &n, alpha, a, &lda, b, &ldb, beta, c, &ldc, 1, 1);
}

// Tests the arguments of syrk, herk, syr2k and her2k (C n x n, A and B n x k
// under no transposition) and maps uplo and trans to the column-major call.
// `conj_trans` is the transposition of the Hermitian forms ('C'), else 'T';
// the real forms also accept CblasConjTrans as a transposition.
bool rank_k_args(const char *name, char conj_trans, bool real, int layout, int uplo, int trans,
                 int n, int k, int lda, const int *ldb, int ldc, char &up, char &tr) {
  up = uplo_char(uplo);
  tr = trans_char(trans);
  if (real && tr == 'C') tr = 'T';
  const bool nt = tr == 'N';
  const int least = least_ld(layout, nt ? n : k, nt ? k : n);
  Checks checks(name);
  checks(1, layout_ok(layout))(2, up != 0)(3, nt || tr == conj_trans)(4, n >= 0)(5, k >= 0)(
      8, lda >= least);
  if (ldb) checks(10, *ldb >= least);
  checks(ldb ? 13 : 11, ldc >= std::max(1, n));
  if (!checks.passed()) return false;
  if (row_major(layout)) {
    up = other_uplo(up);
    tr = nt ? conj_trans : 'N';
  }
  return true;
}

// Tests symv/hemv (y := alpha A x + beta y, A symmetric or Hermitian of order n).
bool symv_args(const char *name, int layout, int uplo, int n, int lda, int incx, int incy,
               char &up) {
  up = uplo_char(uplo);
  if (!Checks(name)(1, layout_ok(layout))(2, up != 0)(3, n >= 0)(6, lda >= std::max(1, n))(
           8, incx != 0)(11, incy != 0)
           .passed())
    return false;
  if (row_major(layout)) up = other_uplo(up);
  return true;
}

// Tests syr/her (two_vectors false) and syr2/her2.
bool syr_args(const char *name, int layout, int uplo, int n, int incx, int incy, int lda,
              bool two_vectors, char &up) {
  up = uplo_char(uplo);
  Checks checks(name);
  checks(1, layout_ok(layout))(2, up != 0)(3, n >= 0)(6, incx != 0);
  if (two_vectors) checks(8, incy != 0);
  checks(two_vectors ? 10 : 8, lda >= std::max(1, n));
  if (!checks.passed()) return false;
  if (row_major(layout)) up = other_uplo(up);
  return true;
}

// trmm and trsm: B is m x n, A triangular of order m (left) or n (right).
template <class T, class Routine>
void triangular_mm(Routine routine, const char *name, int layout, int side, int uplo, int trans,
                   int diag, int m, int n, const T *alpha, const T *a, int lda, T *b, int ldb) {
  char sd = side_char(side), up = uplo_char(uplo), tr = trans_char(trans), dg = diag_char(diag);
  const int ka = sd == 'L' ? m : n;
  if (!Checks(name)(1, layout_ok(layout))(2, sd != 0)(3, up != 0)(4, tr != 0)(5, dg != 0)(
           6, m >= 0)(7, n >= 0)(10, lda >= std::max(1, ka))(12, ldb >= least_ld(layout, m, n))
           .passed())
    return;
  if (row_major(layout)) {  // B^T := alpha B^T op(A)^T, the storage of A being A^T
    sd = other_side(sd);
    up = other_uplo(up);
    std::swap(m, n);
  }
  routine(&sd, &up, &tr, &dg, &m, &n, alpha, a, &lda, b, &ldb, 1, 1, 1, 1);
}

// Rank-one updates of a general matrix: A_rowmajor^T += alpha y x^T.
void ger_c(const char *name, bool conj_y, int layout, int m, int n, const orb_complex8 *alpha,
           const orb_complex8 *x, int incx, const orb_complex8 *y, int incy, orb_complex8 *a,
           int lda) {
  if (!Checks(name)(1, layout_ok(layout))(2, m >= 0)(3, n >= 0)(6, incx != 0)(8, incy != 0)(
           10, lda >= least_ld(layout, m, n))
           .passed())
    return;
  if (!row_major(layout)) {
    (conj_y ? cgerc : cgeru)(&m, &n, alpha, x, &incx, y, &incy, a, &lda);
  } else if (conj_y) {
    const int one = 1;
    auto yc = conjugated(n, y, incy);
    cgeru(&n, &m, alpha, yc.data(), &one, x, &incx, a, &lda);
  } else {
    cgeru(&n, &m, alpha, y, &incy, x, &incx, a, &lda);
  }
}

}  // namespace
}  // namespace orb::cblas

namespace cb = orb::cblas;
using c8 = orb_complex8;

static const c8 *C(const void *p) {
  return static_cast<const c8 *>(p);
}
static c8 *C(void *p) {
  return static_cast<c8 *>(p);
}

extern "C" {

// Level 1: no argument is tested; n <= 0 does nothing.
ORB_API float cblas_sdot(const int N, const float *X, const int incX, const float *Y,
                         const int incY) {
  return sdot(&N, X, &incX, Y, &incY);
}
ORB_API float cblas_snrm2(const int N, const float *X, const int incX) {
  return snrm2(&N, X, &incX);
}
ORB_API float cblas_sasum(const int N, const float *X, const int incX) {
  return sasum(&N, X, &incX);
}
ORB_API CBLAS_INDEX cblas_isamax(const int N, const float *X, const int incX) {
  const int i = isamax(&N, X, &incX);
  return i > 0 ? static_cast<CBLAS_INDEX>(i - 1) : 0;
}
ORB_API void cblas_saxpy(const int N, const float alpha, const float *X, const int incX, float *Y,
                         const int incY) {
  saxpy(&N, &alpha, X, &incX, Y, &incY);
}
ORB_API void cblas_scopy(const int N, const float *X, const int incX, float *Y, const int incY) {
  scopy(&N, X, &incX, Y, &incY);
}
ORB_API void cblas_sscal(const int N, const float alpha, float *X, const int incX) {
  sscal(&N, &alpha, X, &incX);
}
ORB_API void cblas_sswap(const int N, float *X, const int incX, float *Y, const int incY) {
  sswap(&N, X, &incX, Y, &incY);
}
ORB_API void cblas_srot(const int N, float *X, const int incX, float *Y, const int incY,
                        const float c, const float s) {
  srot(&N, X, &incX, Y, &incY, &c, &s);
}
ORB_API void cblas_srotg(float *a, float *b, float *c, float *s) {
  srotg(a, b, c, s);
}
ORB_API void cblas_srotm(const int N, float *X, const int incX, float *Y, const int incY,
                         const float *P) {
  srotm(&N, X, &incX, Y, &incY, P);
}
ORB_API void cblas_srotmg(float *d1, float *d2, float *b1, const float b2, float *P) {
  srotmg(d1, d2, b1, &b2, P);
}
ORB_API void cblas_cdotu_sub(const int N, const void *X, const int incX, const void *Y,
                             const int incY, void *dotu) {
  cdotu(C(dotu), &N, C(X), &incX, C(Y), &incY);
}
ORB_API void cblas_cdotc_sub(const int N, const void *X, const int incX, const void *Y,
                             const int incY, void *dotc) {
  cdotc(C(dotc), &N, C(X), &incX, C(Y), &incY);
}
ORB_API float cblas_scnrm2(const int N, const void *X, const int incX) {
  return scnrm2(&N, C(X), &incX);
}
ORB_API float cblas_scasum(const int N, const void *X, const int incX) {
  return scasum(&N, C(X), &incX);
}
ORB_API CBLAS_INDEX cblas_icamax(const int N, const void *X, const int incX) {
  const int i = icamax(&N, C(X), &incX);
  return i > 0 ? static_cast<CBLAS_INDEX>(i - 1) : 0;
}
ORB_API void cblas_caxpy(const int N, const void *alpha, const void *X, const int incX, void *Y,
                         const int incY) {
  caxpy(&N, C(alpha), C(X), &incX, C(Y), &incY);
}
ORB_API void cblas_ccopy(const int N, const void *X, const int incX, void *Y, const int incY) {
  ccopy(&N, C(X), &incX, C(Y), &incY);
}
ORB_API void cblas_cscal(const int N, const void *alpha, void *X, const int incX) {
  cscal(&N, C(alpha), C(X), &incX);
}
ORB_API void cblas_csscal(const int N, const float alpha, void *X, const int incX) {
  csscal(&N, &alpha, C(X), &incX);
}
ORB_API void cblas_cswap(const int N, void *X, const int incX, void *Y, const int incY) {
  cswap(&N, C(X), &incX, C(Y), &incY);
}
ORB_API void cblas_csrot(const int N, void *X, const int incX, void *Y, const int incY,
                         const float c, const float s) {
  csrot(&N, C(X), &incX, C(Y), &incY, &c, &s);
}
ORB_API void cblas_crotg(void *a, const void *b, float *c, void *s) {
  crotg(C(a), C(b), c, C(s));
}

// Level 2.
ORB_API void cblas_sgemv(const CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE TransA, const int M,
                         const int N, const float alpha, const float *A, const int lda,
                         const float *X, const int incX, const float beta, float *Y,
                         const int incY) {
  cb::gemv<float>("cblas_sgemv", layout, TransA, M, N, &alpha, A, lda, X, incX, &beta, Y, incY);
}
ORB_API void cblas_cgemv(const CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE TransA, const int M,
                         const int N, const void *alpha, const void *A, const int lda,
                         const void *X, const int incX, const void *beta, void *Y, const int incY) {
  cb::gemv<c8>("cblas_cgemv", layout, TransA, M, N, C(alpha), C(A), lda, C(X), incX, C(beta), C(Y),
               incY);
}
ORB_API void cblas_sger(const CBLAS_LAYOUT layout, const int M, const int N, const float alpha,
                        const float *X, const int incX, const float *Y, const int incY, float *A,
                        const int lda) {
  if (!cb::Checks("cblas_sger")(1, cb::layout_ok(layout))(2, M >= 0)(3, N >= 0)(6, incX != 0)(
           8, incY != 0)(10, lda >= cb::least_ld(layout, M, N))
           .passed())
    return;
  if (cb::row_major(layout))
    sger(&N, &M, &alpha, Y, &incY, X, &incX, A, &lda);
  else
    sger(&M, &N, &alpha, X, &incX, Y, &incY, A, &lda);
}
ORB_API void cblas_cgeru(const CBLAS_LAYOUT layout, const int M, const int N, const void *alpha,
                         const void *X, const int incX, const void *Y, const int incY, void *A,
                         const int lda) {
  cb::ger_c("cblas_cgeru", false, layout, M, N, C(alpha), C(X), incX, C(Y), incY, C(A), lda);
}
ORB_API void cblas_cgerc(const CBLAS_LAYOUT layout, const int M, const int N, const void *alpha,
                         const void *X, const int incX, const void *Y, const int incY, void *A,
                         const int lda) {
  cb::ger_c("cblas_cgerc", true, layout, M, N, C(alpha), C(X), incX, C(Y), incY, C(A), lda);
}
ORB_API void cblas_strmv(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const int N,
                         const float *A, const int lda, float *X, const int incX) {
  cb::triangular_mv<float>(strmv, "cblas_strmv", layout, Uplo, TransA, Diag, N, A, lda, X, incX);
}
ORB_API void cblas_strsv(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const int N,
                         const float *A, const int lda, float *X, const int incX) {
  cb::triangular_mv<float>(strsv, "cblas_strsv", layout, Uplo, TransA, Diag, N, A, lda, X, incX);
}
ORB_API void cblas_ctrmv(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const int N,
                         const void *A, const int lda, void *X, const int incX) {
  cb::triangular_mv<c8>(ctrmv, "cblas_ctrmv", layout, Uplo, TransA, Diag, N, C(A), lda, C(X), incX);
}
ORB_API void cblas_ctrsv(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const int N,
                         const void *A, const int lda, void *X, const int incX) {
  cb::triangular_mv<c8>(ctrsv, "cblas_ctrsv", layout, Uplo, TransA, Diag, N, C(A), lda, C(X), incX);
}

ORB_API void cblas_ssymv(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo, const int N,
                         const float alpha, const float *A, const int lda, const float *X,
                         const int incX, const float beta, float *Y, const int incY) {
  char up;
  if (cb::symv_args("cblas_ssymv", layout, Uplo, N, lda, incX, incY, up))
    ssymv(&up, &N, &alpha, A, &lda, X, &incX, &beta, Y, &incY, 1);
}
ORB_API void cblas_chemv(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo, const int N,
                         const void *alpha, const void *A, const int lda, const void *X,
                         const int incX, const void *beta, void *Y, const int incY) {
  char up;
  if (!cb::symv_args("cblas_chemv", layout, Uplo, N, lda, incX, incY, up)) return;
  if (!cb::row_major(layout))
    return chemv(&up, &N, C(alpha), C(A), &lda, C(X), &incX, C(beta), C(Y), &incY, 1);
  // The storage is A^T = conj(A): y = conj(conj(alpha) A^T conj(x) + conj(beta) conj(y)).
  const int one = 1;
  auto xc = cb::conjugated(N, C(X), incX);
  const c8 ac = cb::conj(*C(alpha)), bc = cb::conj(*C(beta));
  cb::conjugate(N, C(Y), incY);
  chemv(&up, &N, &ac, C(A), &lda, xc.data(), &one, &bc, C(Y), &incY, 1);
  cb::conjugate(N, C(Y), incY);
}
ORB_API void cblas_ssyr(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo, const int N,
                        const float alpha, const float *X, const int incX, float *A,
                        const int lda) {
  char up;
  if (cb::syr_args("cblas_ssyr", layout, Uplo, N, incX, 1, lda, false, up))
    ssyr(&up, &N, &alpha, X, &incX, A, &lda, 1);
}
ORB_API void cblas_cher(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo, const int N,
                        const float alpha, const void *X, const int incX, void *A, const int lda) {
  char up;
  if (!cb::syr_args("cblas_cher", layout, Uplo, N, incX, 1, lda, false, up)) return;
  if (!cb::row_major(layout)) return cher(&up, &N, &alpha, C(X), &incX, C(A), &lda, 1);
  // A^T += alpha conj(x) conj(x)^H.
  const int one = 1;
  auto xc = cb::conjugated(N, C(X), incX);
  cher(&up, &N, &alpha, xc.data(), &one, C(A), &lda, 1);
}
ORB_API void cblas_ssyr2(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo, const int N,
                         const float alpha, const float *X, const int incX, const float *Y,
                         const int incY, float *A, const int lda) {
  char up;
  if (cb::syr_args("cblas_ssyr2", layout, Uplo, N, incX, incY, lda, true, up))
    ssyr2(&up, &N, &alpha, X, &incX, Y, &incY, A, &lda, 1);
}
ORB_API void cblas_cher2(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo, const int N,
                         const void *alpha, const void *X, const int incX, const void *Y,
                         const int incY, void *A, const int lda) {
  char up;
  if (!cb::syr_args("cblas_cher2", layout, Uplo, N, incX, incY, lda, true, up)) return;
  if (!cb::row_major(layout))
    return cher2(&up, &N, C(alpha), C(X), &incX, C(Y), &incY, C(A), &lda, 1);
  // A^T += alpha conj(y) conj(x)^H + conj(alpha) conj(x) conj(y)^H.
  const int one = 1;
  auto xc = cb::conjugated(N, C(X), incX), yc = cb::conjugated(N, C(Y), incY);
  cher2(&up, &N, C(alpha), yc.data(), &one, xc.data(), &one, C(A), &lda, 1);
}

// Level 3.
ORB_API void cblas_sgemm(const CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE TransA,
                         const CBLAS_TRANSPOSE TransB, const int M, const int N, const int K,
                         const float alpha, const float *A, const int lda, const float *B,
                         const int ldb, const float beta, float *C, const int ldc) {
  cb::gemm<float>("cblas_sgemm", layout, TransA, TransB, M, N, K, &alpha, A, lda, B, ldb, &beta, C,
                  ldc);
}
ORB_API void cblas_cgemm(const CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE TransA,
                         const CBLAS_TRANSPOSE TransB, const int M, const int N, const int K,
                         const void *alpha, const void *A, const int lda, const void *B,
                         const int ldb, const void *beta, void *Cm, const int ldc) {
  cb::gemm<c8>("cblas_cgemm", layout, TransA, TransB, M, N, K, C(alpha), C(A), lda, C(B), ldb,
               C(beta), C(Cm), ldc);
}
ORB_API void cblas_ssymm(const CBLAS_LAYOUT layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const int M, const int N, const float alpha, const float *A, const int lda,
                         const float *B, const int ldb, const float beta, float *C, const int ldc) {
  cb::symm<float>(ssymm, "cblas_ssymm", layout, Side, Uplo, M, N, &alpha, A, lda, B, ldb, &beta, C,
                  ldc);
}
ORB_API void cblas_csymm(const CBLAS_LAYOUT layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const int M, const int N, const void *alpha, const void *A, const int lda,
                         const void *B, const int ldb, const void *beta, void *Cm, const int ldc) {
  cb::symm<c8>(csymm, "cblas_csymm", layout, Side, Uplo, M, N, C(alpha), C(A), lda, C(B), ldb,
               C(beta), C(Cm), ldc);
}
ORB_API void cblas_chemm(const CBLAS_LAYOUT layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const int M, const int N, const void *alpha, const void *A, const int lda,
                         const void *B, const int ldb, const void *beta, void *Cm, const int ldc) {
  cb::symm<c8>(chemm, "cblas_chemm", layout, Side, Uplo, M, N, C(alpha), C(A), lda, C(B), ldb,
               C(beta), C(Cm), ldc);
}
ORB_API void cblas_ssyrk(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE Trans, const int N, const int K, const float alpha,
                         const float *A, const int lda, const float beta, float *C, const int ldc) {
  char up, tr;
  if (cb::rank_k_args("cblas_ssyrk", 'T', true, layout, Uplo, Trans, N, K, lda, nullptr, ldc, up,
                      tr))
    ssyrk(&up, &tr, &N, &K, &alpha, A, &lda, &beta, C, &ldc, 1, 1);
}
ORB_API void cblas_csyrk(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE Trans, const int N, const int K, const void *alpha,
                         const void *A, const int lda, const void *beta, void *Cm, const int ldc) {
  char up, tr;
  if (cb::rank_k_args("cblas_csyrk", 'T', false, layout, Uplo, Trans, N, K, lda, nullptr, ldc, up,
                      tr))
    csyrk(&up, &tr, &N, &K, C(alpha), C(A), &lda, C(beta), C(Cm), &ldc, 1, 1);
}
ORB_API void cblas_cherk(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE Trans, const int N, const int K, const float alpha,
                         const void *A, const int lda, const float beta, void *Cm, const int ldc) {
  char up, tr;
  if (cb::rank_k_args("cblas_cherk", 'C', false, layout, Uplo, Trans, N, K, lda, nullptr, ldc, up,
                      tr))
    cherk(&up, &tr, &N, &K, &alpha, C(A), &lda, &beta, C(Cm), &ldc, 1, 1);
}
ORB_API void cblas_ssyr2k(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                          const CBLAS_TRANSPOSE Trans, const int N, const int K, const float alpha,
                          const float *A, const int lda, const float *B, const int ldb,
                          const float beta, float *C, const int ldc) {
  char up, tr;
  if (cb::rank_k_args("cblas_ssyr2k", 'T', true, layout, Uplo, Trans, N, K, lda, &ldb, ldc, up, tr))
    ssyr2k(&up, &tr, &N, &K, &alpha, A, &lda, B, &ldb, &beta, C, &ldc, 1, 1);
}
ORB_API void cblas_csyr2k(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                          const CBLAS_TRANSPOSE Trans, const int N, const int K, const void *alpha,
                          const void *A, const int lda, const void *B, const int ldb,
                          const void *beta, void *Cm, const int ldc) {
  char up, tr;
  if (cb::rank_k_args("cblas_csyr2k", 'T', false, layout, Uplo, Trans, N, K, lda, &ldb, ldc, up,
                      tr))
    csyr2k(&up, &tr, &N, &K, C(alpha), C(A), &lda, C(B), &ldb, C(beta), C(Cm), &ldc, 1, 1);
}
ORB_API void cblas_cher2k(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                          const CBLAS_TRANSPOSE Trans, const int N, const int K, const void *alpha,
                          const void *A, const int lda, const void *B, const int ldb,
                          const float beta, void *Cm, const int ldc) {
  char up, tr;
  if (!cb::rank_k_args("cblas_cher2k", 'C', false, layout, Uplo, Trans, N, K, lda, &ldb, ldc, up,
                       tr))
    return;
  // Row-major: conj(C) = conj(alpha) conj(A) B^T + alpha conj(B) A^T, the storages being A^T, B^T.
  const c8 a = cb::row_major(layout) ? cb::conj(*C(alpha)) : *C(alpha);
  cher2k(&up, &tr, &N, &K, &a, C(A), &lda, C(B), &ldb, &beta, C(Cm), &ldc, 1, 1);
}
ORB_API void cblas_strmm(const CBLAS_LAYOUT layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const int M,
                         const int N, const float alpha, const float *A, const int lda, float *B,
                         const int ldb) {
  cb::triangular_mm<float>(strmm, "cblas_strmm", layout, Side, Uplo, TransA, Diag, M, N, &alpha, A,
                           lda, B, ldb);
}
ORB_API void cblas_strsm(const CBLAS_LAYOUT layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const int M,
                         const int N, const float alpha, const float *A, const int lda, float *B,
                         const int ldb) {
  cb::triangular_mm<float>(strsm, "cblas_strsm", layout, Side, Uplo, TransA, Diag, M, N, &alpha, A,
                           lda, B, ldb);
}
ORB_API void cblas_ctrmm(const CBLAS_LAYOUT layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const int M,
                         const int N, const void *alpha, const void *A, const int lda, void *B,
                         const int ldb) {
  cb::triangular_mm<c8>(ctrmm, "cblas_ctrmm", layout, Side, Uplo, TransA, Diag, M, N, C(alpha),
                        C(A), lda, C(B), ldb);
}
ORB_API void cblas_ctrsm(const CBLAS_LAYOUT layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const int M,
                         const int N, const void *alpha, const void *A, const int lda, void *B,
                         const int ldb) {
  cb::triangular_mm<c8>(ctrsm, "cblas_ctrsm", layout, Side, Uplo, TransA, Diag, M, N, C(alpha),
                        C(A), lda, C(B), ldb);
}

}  // extern "C"
