// trsm_omp: triangular solves with several right-hand sides. Blocks of order
// 16 (64 in single precision) are solved on their own; the rest of the work
// is a GEMM update of the right-hand sides not yet solved. The first update
// also applies alpha to them, so B is never scaled on its own. A left-side
// solve runs the packed GEMM kernel over panels of B's columns: the rows of
// a diagonal block of kc rows are solved block by block, each block's
// solution packed into the panel as it is found and updating the next from
// there, and the whole packed block then updates the rows not yet solved.
// Without work memory, and on the right side, a diagonal block is solved
// with the next smaller block size in turn. Threads take independent slabs
// of B: columns for a left-side solve, rows for a right-side one.
#include <type_traits>

#include "blas/kernel/trsm.h"
#include "blas/level3/triangular.h"
#include "service/dispatch.h"

namespace orb::blas {
namespace {

using tri::OpA;

// Diagonal blocks of at most order kOrder<T> are solved without GEMM: their
// solved rows (left side) or columns (right side) are copied, kLanes
// elements at a time, into a local block where each is a contiguous vector
// (the columns of B lie ldb apart, often a multiple of the page size, and
// would share cache sets). Single precision has vector kernels for the
// block, so its blocks are larger.
template <class T>
constexpr int kOrder = std::is_same_v<T, float> ? kernel::kTrsmOrder : kernel::kCtrsmOrder;
constexpr int kLanes = kernel::kTrsmLanes;
static_assert(kLanes == tri::kColumns, "one layout of rows for the kernels and the templates");

// The order of the diagonal blocks of a triangle of order m > kOrder<T>;
// each is treated again with the next smaller order, down to kOrder<T>.
template <class T>
int block_for(int m) {
  return m > 256 ? 256 : m > 64 ? 64 : kOrder<T>;
}

// C V = alpha V as the kernels of blas/kernel/trsm.h define it, for any
// scalar type, with C of leading dimension kOrder<T>. Complex products are
// formed component by component (the language's product checks every
// result for NaN, which costs more than the arithmetic here).
template <class T>
void solve_block(int m, int upper, int unit, T alpha, const T *c, T *v) {
  constexpr int ld = kOrder<T>;
  for (int step = 0; step < m; ++step) {
    const int s = upper ? m - 1 - step : step;
    const int t0 = upper ? s + 1 : 0, t1 = upper ? m : s;
    T *vs = v + s * kLanes;
    if (alpha != T(1))
      for (int l = 0; l < kLanes; ++l) vs[l] = mul(vs[l], alpha);
    for (int t = t0; t < t1; ++t) {
      const T cst = c[s + t * ld];
      const T *vt = v + t * kLanes;
      for (int l = 0; l < kLanes; ++l) vs[l] -= mul(cst, vt[l]);
    }
    if (!unit) {
      const T css = c[s + s * ld];
      if constexpr (is_complex_v<T>) {
        // One careful complex division per row, not one per lane.
        const T inv = T(1) / css;
        for (int l = 0; l < kLanes; ++l) vs[l] = mul(vs[l], inv);
      } else {
        for (int l = 0; l < kLanes; ++l) vs[l] /= css;
      }
    }
  }
}

// The single-precision block kernels of one processor type.
struct SmallKernels {
  void (*solve)(int, int, int, float, const float *, float *);
  void (*gather)(int, int, const float *, int, float *);
  void (*scatter)(int, int, const float *, float *, int);
};

constexpr SmallKernels kGenericKernels{solve_block<float>, tri::gather_rows<float>,
                                       tri::scatter_rows<float>};
constexpr SmallKernels kSse2Kernels{kernel::sse2::strsm_small, kernel::sse2::strsm_gather,
                                    kernel::sse2::strsm_scatter};
#if defined(ORB_KERNELS_AVX2)
constexpr SmallKernels kAvx2Kernels{kernel::avx2::strsm_small, kernel::avx2::strsm_gather,
                                    kernel::avx2::strsm_scatter};
#endif

// The 128-bit kernels from type 2 on, the 256-bit ones on the wider path of
// types 4 and 5.
constexpr Variants<const SmallKernels *> kSmallKernels =
    each(&kGenericKernels, &kSse2Kernels, &kSse2Kernels, &kSse2Kernels, &kSse2Kernels);
#if defined(ORB_KERNELS_AVX2)
Slot<const SmallKernels *> g_small{wider(kSmallKernels, &kAvx2Kernels)};
#else
Slot<const SmallKernels *> g_small{kSmallKernels};
#endif

// The block operations for T: the kernels for single precision, the
// templates above otherwise.
template <class T>
struct Block {
  void (*solve)(int, int, int, T, const T *, T *) = solve_block<T>;
  void (*gather)(int, int, const T *, int, T *) = tri::gather_rows<T>;
  void (*scatter)(int, int, const T *, T *, int) = tri::scatter_rows<T>;
};
template <>
struct Block<float> : SmallKernels {
  Block() : SmallKernels(*g_small.get()) {}
};

// Single complex: a 256-bit kernel for the block on the wider path.
using ComplexSolve = void (*)(int, int, int, c8, const c8 *, c8 *);
#if defined(ORB_KERNELS_AVX2)
Slot<ComplexSolve> g_complex_solve{
    wider(single<ComplexSolve>(solve_block<c8>), &kernel::avx2::ctrsm_small)};
#else
Slot<ComplexSolve> g_complex_solve{single<ComplexSolve>(solve_block<c8>)};
#endif
template <>
struct Block<c8> {
  ComplexSolve solve = g_complex_solve.get();
  void (*gather)(int, int, const c8 *, int, c8 *) = tri::gather_rows<c8>;
  void (*scatter)(int, int, const c8 *, c8 *, int) = tri::scatter_rows<c8>;
};

// op(A) X = alpha B with op(A) of order m <= kOrder<T>: V_s is row s of X
// over kLanes columns at a time, and C is op(A).
template <class T>
void left_small(const OpA<T> &t, int m, int n, T alpha, T *b, int ldb) {
  constexpr int ld = kOrder<T>;
  const Block<T> k;
  T c[ld * ld];
  alignas(64) T v[ld * kLanes];
  tri::copy_small(t, m, c, ld);
  for (int j0 = 0; j0 < n; j0 += kLanes) {
    const int jn = std::min(kLanes, n - j0);
    k.gather(m, jn, b + at(0, j0, ldb), ldb, v);
    k.solve(m, t.upper, t.unit, alpha, c, v);
    k.scatter(m, jn, v, b + at(0, j0, ldb), ldb);
  }
}

// X op(A) = alpha B with op(A) of order n <= kOrder<T>: V_s is column s of X
// over kLanes rows at a time, and C is the transpose of op(A), lower when
// op(A) is upper.
template <class T>
void right_small(const OpA<T> &t, int m, int n, T alpha, T *b, int ldb) {
  constexpr int ld = kOrder<T>;
  const Block<T> k;
  T c[ld * ld];
  alignas(64) T v[ld * kLanes];
  for (int j = 0; j < n; ++j) {
    const int i0 = t.upper ? 0 : j + 1, i1 = t.upper ? j : n;
    for (int i = i0; i < i1; ++i) c[j + i * ld] = t(i, j);
    if (!t.unit) c[j + j * ld] = t(j, j);
  }
  for (int i0 = 0; i0 < m; i0 += kLanes) {
    const int mi = std::min(kLanes, m - i0);
    for (int s = 0; s < n; ++s) {
      const T *bs = b + at(i0, s, ldb);
      std::copy(bs, bs + mi, v + s * kLanes);
      std::fill(v + s * kLanes + mi, v + (s + 1) * kLanes, T(0));
    }
    k.solve(n, !t.upper, t.unit, alpha, c, v);
    for (int s = 0; s < n; ++s) std::copy(v + s * kLanes, v + s * kLanes + mi, b + at(i0, s, ldb));
  }
}

// op(A) X = alpha B through the packed kernel, panel by panel of B's
// columns: op(A) lower from the first diagonal block on, upper from the
// last. False, with B untouched, without work memory.
template <class T>
bool left_packed(const OpA<T> &t, int m, int n, T alpha, T *b, int ldb) {
  constexpr int sb = kOrder<T>;
  const tri::Packed<T> w(sb, n);
  if (!w) return false;
  const kernel::GemmShape<T> &s = w.s;
  const int blocks = (m + s.kc - 1) / s.kc;
  for (int jc = 0; jc < n; jc += s.nc) {
    const int nb = std::min(s.nc, n - jc);
    T *c = b + at(0, jc, ldb);
    for (int step = 0; step < blocks; ++step) {
      const int p = (t.upper ? blocks - 1 - step : step) * s.kc, kb = std::min(s.kc, m - p);
      const std::int64_t stride = std::int64_t{s.nr} * kb;
      // The first update of a row applies alpha to it.
      const T scale = step == 0 ? alpha : T(1);
      const int subs = (kb + sb - 1) / sb;
      for (int q = 0; q < subs; ++q) {
        const int i0 = (t.upper ? subs - 1 - q : q) * sb, ib = std::min(sb, kb - i0);
        const int k0 = t.upper ? i0 + ib : 0, k1 = t.upper ? kb : i0;
        T *ci = c + p + i0;
        if (k1 > k0) {
          pack_a(t.trans, t.a, t.lda, p + i0, p + k0, ib, k1 - k0, s.mr, w.a.get());
          tri::multiply_packed(s, ib, nb, k1 - k0, T(-1), w.a.get(),
                               w.b.get() + std::int64_t{k0} * s.nr, stride, scale, ci, ldb);
        }
        left_small(t.diagonal(p + i0), ib, nb, k1 > k0 ? T(1) : scale, ci, ldb);
        tri::pack_rows(ci, ldb, ib, nb, s.nr, kb, w.b.get() + std::int64_t{i0} * s.nr);
      }
      const int r0 = t.upper ? 0 : p + kb, rn = t.upper ? p : m - p - kb;
      if (rn > 0) tri::update_rows(w, t, r0, rn, p, kb, nb, T(-1), scale, c, ldb);
    }
  }
  return true;
}

// op(A) X = alpha B: op(A) lower is solved from the first block on, each
// step updating the rows below; upper from the last block, updating the rows
// above.
template <class T>
void left(const OpA<T> &t, int m, int n, T alpha, T *b, int ldb) {
  if (m <= kOrder<T>) {
    left_small(t, m, n, alpha, b, ldb);
    return;
  }
  const int nb = block_for<T>(m), blocks = (m + nb - 1) / nb;
  for (int s = 0; s < blocks; ++s) {
    const int p = (t.upper ? blocks - 1 - s : s) * nb, pb = std::min(nb, m - p);
    const T scale = s == 0 ? alpha : T(1);
    left(t.diagonal(p), pb, n, scale, b + p, ldb);
    const int r = t.upper ? 0 : p + pb, rn = t.upper ? p : m - p - pb;
    if (rn > 0)
      gemm_here(t.trans, Op::kNone, rn, n, pb, T(-1), t.block(r, p), t.lda, b + p, ldb, scale,
                b + r, ldb);
  }
}

// X op(A) = alpha B: op(A) upper is solved from the first block of columns
// on, each step updating the columns to the right; lower from the last.
template <class T>
void right(const OpA<T> &t, int m, int n, T alpha, T *b, int ldb) {
  if (n <= kOrder<T>) {
    right_small(t, m, n, alpha, b, ldb);
    return;
  }
  const int nb = block_for<T>(n), blocks = (n + nb - 1) / nb;
  for (int s = 0; s < blocks; ++s) {
    const int p = (t.upper ? s : blocks - 1 - s) * nb, pb = std::min(nb, n - p);
    const T scale = s == 0 ? alpha : T(1);
    T *bp = b + at(0, p, ldb);
    right(t.diagonal(p), m, pb, scale, bp, ldb);
    const int r = t.upper ? p + pb : 0, rn = t.upper ? n - p - pb : p;
    if (rn > 0)
      gemm_here(Op::kNone, t.trans, m, rn, pb, T(-1), bp, ldb, t.block(p, r), t.lda, scale,
                b + at(0, r, ldb), ldb);
  }
}

template <class T>
void left_any(const OpA<T> &t, int m, int n, T alpha, T *b, int ldb) {
  if (m <= kOrder<T>)
    left_small(t, m, n, alpha, b, ldb);
  else if (!left_packed(t, m, n, alpha, b, ldb))
    left(t, m, n, alpha, b, ldb);
}

}  // namespace

template <class T>
void trsm_serial(const Triangular &t, int m, int n, T alpha, const T *a, int lda, T *b, int ldb) {
  tri::serial(t, m, n, alpha, a, lda, b, ldb, left_any<T>, right<T>);
}

template <class T>
void trsm_omp(const Triangular &t, int m, int n, T alpha, const T *a, int lda, T *b, int ldb) {
  tri::by_slabs(t, m, n, b, ldb,
                [&](int ms, int ns, T *bs) { trsm_serial(t, ms, ns, alpha, a, lda, bs, ldb); });
}

#define ORB_TRSM(T)                                                                        \
  template void trsm_serial<T>(const Triangular &, int, int, T, const T *, int, T *, int); \
  template void trsm_omp<T>(const Triangular &, int, int, T, const T *, int, T *, int);
ORB_TRSM(float)
ORB_TRSM(double)
ORB_TRSM(c8)
ORB_TRSM(c16)
#undef ORB_TRSM

}  // namespace orb::blas
