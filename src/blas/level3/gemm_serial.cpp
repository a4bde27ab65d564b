// The serial GEMM kernels: sgemm_serial's processor paths, the pieces of the
// threaded driver's wide-kernel path, and the other precisions. Which kernels
// run comes from the kernel set alone: one record of single-precision kernels
// per set, one packed kernel per set for each other precision.
#include <omp.h>

#include <algorithm>
#include <cstdint>

#include "blas/kernel/gemm.h"
#include "blas/level3/gemm.h"
#include "blas/level3/gemm_blocked.h"
#include "service/cpu.h"
#include "service/dispatch.h"
#include "service/kernel_set.h"
#include "service/memory.h"

namespace orb::blas {

using kernel::GemmShape;

// ---- decisions ---------------------------------------------------------------------

SsePath choose_sse_path(bool nota, bool notb, int m, int n, int k) {
  if (m < 8 || n < 8 || k < 8) return SsePath::kDirect;
  // Size limit L and ratio limit R by transpose case.
  int limit;
  double ratio_limit;
  if (nota && notb) {
    limit = 150, ratio_limit = 0.06;
  } else if (!nota && notb) {
    limit = 150, ratio_limit = 0.07;
  } else if (nota && !notb) {
    limit = 150, ratio_limit = 0.045;
  } else {
    limit = 80, ratio_limit = 0.075;
  }
  if (m + n + k >= limit) return SsePath::kPacked;
  // Memory traffic over arithmetic; both formed in 32-bit integers.
  const int numerator = m * n + n * k + m * k;
  const int denominator = 2 * m * n * (k + 1);
  const double ratio = static_cast<double>(numerator) / static_cast<double>(denominator);
  return ratio_limit > ratio ? SsePath::kPacked : SsePath::kDirect;
}

int sse_packed_block(int cache_class) {
  return cache_class == 3 ? 480 : 240;
}

PanelKernel choose_panel_kernel(int type, bool sse41, int n, int k) {
  if (type == 5 || sse41) {
    const std::int64_t panel = std::int64_t{std::min(k, 256)} * std::min(n, 10000) * 4;
    return panel > 0x300000 ? PanelKernel::kLargePanel : PanelKernel::kNormal;
  }
  return PanelKernel::kPreSse41;
}

namespace {

constexpr int kBufferAlignment = 128;

// The published argument list, read.
struct Args {
  Op ta, tb;
  int m, n, k;
  float alpha;
  const float *a;
  int lda;
  const float *b;
  int ldb;
  float beta;
  float *c;
  int ldc;
};

Args read(const char *transa, const char *transb, const int *m, const int *n, const int *k,
          const float *alpha, const float *a, const int *lda, const float *b, const int *ldb,
          const float *beta, float *c, const int *ldc) {
  return {option<Op>(*transa),
          option<Op>(*transb),
          *m,
          *n,
          *k,
          *alpha,
          a,
          *lda,
          b,
          *ldb,
          *beta,
          c,
          *ldc};
}

// The blocked kernel with packing buffers from the memory manager; without
// them the product is still computed, directly.
template <class T>
void packed_or_direct(const GemmShape<T> &s, kernel::GemmDirect<T> direct, Op ta, Op tb, int m,
                      int n, int k, T alpha, const T *a, int lda, const T *b, int ldb, T beta, T *c,
                      int ldc) {
  mem::Buffer<T> abuf(packed_a_size(s), kBufferAlignment);
  mem::Buffer<T> bbuf(packed_b_size(s), kBufferAlignment);
  if (!abuf || !bbuf) {
    direct(s.kc, ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    return;
  }
  gemm_packed(s, ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc, abuf.get(), bbuf.get());
}

// ---- the single-precision kernels of each kernel set --------------------------------

// A set's kernels, and the processor type whose rules sgemm_serial follows
// with them: type 0 the generic path, types 2 and 3 direct or packed, types 4
// and 5 three kernels and the pieces of the threaded driver's wide-kernel path.
struct Sgemm {
  int type;
  bool sse41;                                       // the large-panel kernel may run
  const GemmShape<float> &packed;                   // the packed kernel and its blocking
  kernel::GemmDirect<float> direct;                 // the unpacked kernel
  const kernel::GemmThin<float> *thin;              // products of few columns, or null
  const kernel::GemmSmall<float> *small = nullptr;  // small products read in place, or null
};

constexpr Sgemm kType0{0, false, kernel::generic::sgemm_shape, &kernel::generic::gemm_direct<float>,
                       nullptr};
constexpr Sgemm kType2{2, false, kernel::sse2::sgemm_shape, &kernel::sse2::sgemm_direct, nullptr};
constexpr Sgemm kType3{3, false, kernel::sse3::sgemm_shape, &kernel::sse3::sgemm_direct, nullptr};
constexpr Sgemm kType4{4, false, kernel::ssse3::sgemm_shape, &kernel::ssse3::sgemm_direct, nullptr};
constexpr Sgemm kType4Sse41{4, true, kernel::ssse3::sgemm_shape, &kernel::ssse3::sgemm_direct,
                            nullptr};
constexpr Sgemm kType5{5, true, kernel::sse42::sgemm_shape, &kernel::sse42::sgemm_direct, nullptr};
// The wider path: the 256-bit packed and thin kernels; a product without its
// packing buffers still goes through the type's own unpacked kernel.
#if defined(ORB_KERNELS_AVX2)
constexpr Sgemm kType4Avx2{4, true, kernel::avx2::sgemm_shape, &kernel::ssse3::sgemm_direct,
                           &kernel::avx2::sgemm_thin_kernel};
constexpr Sgemm kType5Avx2{5, true, kernel::avx2::sgemm_shape, &kernel::sse42::sgemm_direct,
                           &kernel::avx2::sgemm_thin_kernel};
#endif
// The widest path: the 512-bit packed and small kernels beside the 256-bit
// thin one, all summing in the same blocks.
#if defined(ORB_KERNELS_AVX512)
// The small kernel keeps more accumulators than eight registers hold; there
// the packed kernel serves small products too.
#if defined(ORB_EIGHT_REGISTERS)
constexpr const kernel::GemmSmall<float> *kWideSmall = nullptr;
#else
constexpr const kernel::GemmSmall<float> *kWideSmall = &kernel::avx512::sgemm_small_kernel;
#endif
constexpr Sgemm kType4Avx512{4,
                             true,
                             kernel::avx512::sgemm_shape,
                             &kernel::ssse3::sgemm_direct,
                             &kernel::avx2::sgemm_thin_kernel,
                             kWideSmall};
constexpr Sgemm kType5Avx512{5,
                             true,
                             kernel::avx512::sgemm_shape,
                             &kernel::sse42::sgemm_direct,
                             &kernel::avx2::sgemm_thin_kernel,
                             kWideSmall};
#endif

// ---- type 0: the generic path ---------------------------------------------------

// The packing buffers of the generic kernel's blocks, each with 16 bytes to
// spare: 4096 + 16 and 51,200 + 16 bytes.
constexpr int kGenericSpare = 16;

template <const Sgemm &K>
void serial_type0(const Args &x) {
  if (x.m <= 0 || x.n <= 0) return;
  const GemmShape<float> &s = K.packed;
  mem::Buffer<char> abuf(packed_a_size(s) * sizeof(float) + kGenericSpare, kBufferAlignment);
  mem::Buffer<char> bbuf(packed_b_size(s) * sizeof(float) + kGenericSpare, kBufferAlignment);
  if (!abuf || !bbuf) {
    K.direct(s.kc, x.ta, x.tb, x.m, x.n, x.k, x.alpha, x.a, x.lda, x.b, x.ldb, x.beta, x.c, x.ldc);
    return;
  }
  gemm_packed(s, x.ta, x.tb, x.m, x.n, x.k, x.alpha, x.a, x.lda, x.b, x.ldb, x.beta, x.c, x.ldc,
              reinterpret_cast<float *>(abuf.get()), reinterpret_cast<float *>(bbuf.get()));
}

// ---- types 2 and 3: direct or packed ----------------------------------------------

// The kernel's tile and inner blocks (whole blocks, then the edge block),
// with square blocks of C by the cache class.
template <const Sgemm &K>
GemmShape<float> shape23() {
  GemmShape<float> s = K.packed;
  s.mc = s.nc = sse_packed_block(cpu::cache_class());
  return s;
}

template <const Sgemm &K>
void serial_type23(const Args &x) {
  if (x.m <= 0 || x.n <= 0) return;
  if (x.alpha == 0.0f) {  // A and B are not read
    scale_c(x.m, x.n, x.beta, x.c, x.ldc);
    return;
  }
  if (choose_sse_path(x.ta == Op::kNone, x.tb == Op::kNone, x.m, x.n, x.k) == SsePath::kDirect) {
    K.direct(K.packed.kc, x.ta, x.tb, x.m, x.n, x.k, x.alpha, x.a, x.lda, x.b, x.ldb, x.beta, x.c,
             x.ldc);
    return;
  }
  packed_or_direct<float>(shape23<K>(), K.direct, x.ta, x.tb, x.m, x.n, x.k, x.alpha, x.a, x.lda,
                          x.b, x.ldb, x.beta, x.c, x.ldc);
}

// ---- types 4 and 5: three kernels each ----------------------------------------------

// Every kernel of a type sums the inner dimension in the same blocks (256),
// so the choice between them (which depends on the slab a thread gets) never
// changes a result. The large-panel kernel takes panels of B twice as wide.
template <const Sgemm &K>
GemmShape<float> panel_shape(PanelKernel which) {
  GemmShape<float> s = K.packed;
  if (which == PanelKernel::kLargePanel) s.nc *= 2;
  return s;
}

// Products of few columns with op(A) = A go straight through the thin
// kernel, which forms the same sums as the packed kernel. The rule looks only
// at op(A) and n, which every slab of a split product shares.
template <const Sgemm &K>
bool thin(const Args &x) {
  return K.thin != nullptr && x.ta == Op::kNone && x.n <= K.thin->max_n && x.alpha != 0.0f;
}
template <const Sgemm &K>
void run_thin(int m, const float *a, float beta, float *c, const Args &x) {
  if (K.thin != nullptr)
    K.thin->run(x.tb, m, x.n, x.k, K.packed.kc, x.alpha, a, x.lda, x.b, x.ldb, beta, c, x.ldc);
}

// Small products with op(A) = A go straight through the small kernel, which
// forms the same sums as the packed kernel without packing. (The kernels'
// presence is tested at run time: with the address sanitizer their addresses
// are no constant expressions.)
template <const Sgemm &K>
bool small(const Args &x) {
  return K.small != nullptr && x.ta == Op::kNone && x.m <= K.small->max_m &&
         x.n <= K.small->max_n && x.alpha != 0.0f && x.k > 0;
}

template <const Sgemm &K>
void serial_type45(const Args &x, bool accumulate) {
  if (x.m <= 0 || x.n <= 0) return;
  if (small<K>(x)) {
    K.small->run(x.tb, x.m, x.n, x.k, K.packed.kc, x.alpha, x.a, x.lda, x.b, x.ldb,
                 accumulate ? 1.0f : x.beta, x.c, x.ldc);
    return;
  }
  if (thin<K>(x) && x.k > 0) {
    run_thin<K>(x.m, x.a, accumulate ? 1.0f : x.beta, x.c, x);
    return;
  }
  const PanelKernel which = choose_panel_kernel(K.type, K.sse41, x.n, x.k);
  const float beta = accumulate ? 1.0f : x.beta;
  packed_or_direct<float>(panel_shape<K>(which), K.direct, x.ta, x.tb, x.m, x.n, x.k, x.alpha, x.a,
                          x.lda, x.b, x.ldb, beta, x.c, x.ldc);
}

struct PackedArgs {
  const Args *x;
  float *shared;
  int row0, rows;
  const int *params;
};

// One member's part of a team's product (see sgemm_serial_packed).
template <const Sgemm &K>
void packed45(const PackedArgs &p) {
  const Args &x = *p.x;
  // Every member sees the same n, so either all take this branch or none.
  if (thin<K>(x) && x.k > 0) {
    if (p.rows > 0) run_thin<K>(p.rows, x.a + p.row0, 1.0f, x.c + p.row0, x);
    return;
  }
  GemmShape<float> s = panel_shape<K>(PanelKernel::kNormal);
  s.kc = p.params[0];
  s.mc = p.params[1];
  s.nc = p.params[3];
  mem::Buffer<float> abuf(packed_a_size(s), kBufferAlignment);
  // Without its own block buffer a member still takes part in packing the
  // shared panels (the team waits for every member) but computes its rows
  // afterwards, directly.
  float *own = abuf.get();
  alignas(64) float dummy[1];
  gemm_packed_team(s, x.ta, x.tb, x.m, x.n, x.k, x.alpha, x.a, x.lda, x.b, x.ldb, 1.0f, x.c, x.ldc,
                   p.row0, own ? p.rows : 0, own ? own : dummy, p.shared, omp_get_thread_num(),
                   omp_get_num_threads(), [] {
#pragma omp barrier
                   });
  if (!own && p.rows > 0) {
    const float *a_rows = x.ta == Op::kNone ? x.a + p.row0 : x.a + std::int64_t{p.row0} * x.lda;
    K.direct(s.kc, x.ta, x.tb, p.rows, x.n, x.k, x.alpha, a_rows, x.lda, x.b, x.ldb, 1.0f,
             x.c + p.row0, x.ldc);
  }
}

// ---- the pieces of each kernel set ----------------------------------------------------

// The module's entries for one kernel set, compiled for its kernels (their
// tiles and blocks are constants there). The wide-kernel pieces do nothing
// below type 4.
struct SgemmPaths {
  void (*serial)(const Args &);
  void (*acc)(const Args &);
  void (*packed)(const PackedArgs &);
  void (*params)(int *params);
  GemmShape<float> (*shape)();
};

template <const Sgemm &K>
struct Paths {
  static_assert(fits_local_tile(K.packed));
  static void serial(const Args &x) {
    if constexpr (K.type >= 4)
      serial_type45<K>(x, false);
    else if constexpr (K.type >= 2)
      serial_type23<K>(x);
    else
      serial_type0<K>(x);
  }
  static void acc(const Args &x) {
    if constexpr (K.type >= 4) serial_type45<K>(x, true);
  }
  static void packed(const PackedArgs &p) {
    if constexpr (K.type >= 4) packed45<K>(p);
  }
  static void params(int *params) {
    if constexpr (K.type >= 4) {
      const GemmShape<float> s = panel_shape<K>(PanelKernel::kNormal);
      params[0] = s.kc;
      params[1] = s.mc;
      params[2] = s.nr;  // columns of a packed sliver
    }
  }
  static GemmShape<float> shape() {
    if constexpr (K.type >= 4)
      return panel_shape<K>(PanelKernel::kNormal);
    else if constexpr (K.type >= 2)
      return shape23<K>();
    else
      return K.packed;
  }
};
template <const Sgemm &K>
constexpr SgemmPaths kPaths{&Paths<K>::serial, &Paths<K>::acc, &Paths<K>::packed, &Paths<K>::params,
                            &Paths<K>::shape};

constexpr Variants<const SgemmPaths *> kNarrow =
    with(each(&kPaths<kType0>, &kPaths<kType2>, &kPaths<kType3>, &kPaths<kType4>, &kPaths<kType5>),
         cpu::kSetType4Sse41, &kPaths<kType4Sse41>);
#if defined(ORB_KERNELS_AVX512)
Slot<const SgemmPaths *> g_sgemm{widest(wider(kNarrow, &kPaths<kType4Avx2>, &kPaths<kType5Avx2>),
                                        &kPaths<kType4Avx512>, &kPaths<kType5Avx512>)};
#elif defined(ORB_KERNELS_AVX2)
Slot<const SgemmPaths *> g_sgemm{wider(kNarrow, &kPaths<kType4Avx2>, &kPaths<kType5Avx2>)};
#else
Slot<const SgemmPaths *> g_sgemm{kNarrow};
#endif

}  // namespace

// ---- entries of the module -----------------------------------------------------------

void sgemm_serial(const char *transa, const char *transb, const int *m, const int *n, const int *k,
                  const float *alpha, const float *a, const int *lda, const float *b,
                  const int *ldb, const float *beta, float *c, const int *ldc) {
  g_sgemm.get()->serial(read(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc));
}

void sgemm_serial_acc(const char *transa, const char *transb, const int *m, const int *n,
                      const int *k, const float *alpha, const float *a, const int *lda,
                      const float *b, const int *ldb, const float *beta, float *c, const int *ldc) {
  g_sgemm.get()->acc(read(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc));
}

void sgemm_serial_packed(const char *transa, const char *transb, const int *m, const int *n,
                         const int *k, const float *alpha, const float *a, const int *lda,
                         const float *b, const int *ldb, const float *beta, float *c,
                         const int *ldc, float *shared, const int *row0, const int *rows,
                         const int *params) {
  const Args x = read(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
  g_sgemm.get()->packed(PackedArgs{&x, shared, *row0, *rows, params});
}

void sgemm_wide_params(const int *, const int *, const int *, const int *, int *params, int *) {
  g_sgemm.get()->params(params);
}

template <>
GemmShape<float> packed_shape<float>() {
  return g_sgemm.get()->shape();
}

// ---- other precisions -----------------------------------------------------------------

namespace {

// The generic kernel on type 0, the 128-bit one from type 2 up, and the
// 256-bit and 512-bit ones on the wider paths of types 4 and 5.
#define ORB_GEMM_NARROW(shape)                                                                    \
  each(&kernel::generic::shape, &kernel::sse2::shape, &kernel::sse2::shape, &kernel::sse2::shape, \
       &kernel::sse2::shape)
#if defined(ORB_KERNELS_AVX512)
#define ORB_GEMM_PACKED(shape) \
  widest(wider(ORB_GEMM_NARROW(shape), &kernel::avx2::shape), &kernel::avx512::shape)
#elif defined(ORB_KERNELS_AVX2)
#define ORB_GEMM_PACKED(shape) wider(ORB_GEMM_NARROW(shape), &kernel::avx2::shape)
#else
#define ORB_GEMM_PACKED(shape) ORB_GEMM_NARROW(shape)
#endif
static_assert(fits_local_tile(kernel::generic::dgemm_shape) &&
              fits_local_tile(kernel::generic::cgemm_shape) &&
              fits_local_tile(kernel::generic::zgemm_shape));
static_assert(fits_local_tile(kernel::sse2::dgemm_shape) &&
              fits_local_tile(kernel::sse2::cgemm_shape) &&
              fits_local_tile(kernel::sse2::zgemm_shape));
#if defined(ORB_KERNELS_AVX2)
static_assert(fits_local_tile(kernel::avx2::dgemm_shape) &&
              fits_local_tile(kernel::avx2::cgemm_shape) &&
              fits_local_tile(kernel::avx2::zgemm_shape));
#endif
#if defined(ORB_KERNELS_AVX512)
static_assert(fits_local_tile(kernel::avx512::dgemm_shape) &&
              fits_local_tile(kernel::avx512::cgemm_shape) &&
              fits_local_tile(kernel::avx512::zgemm_shape));
#endif
Slot<const GemmShape<double> *> g_dgemm{ORB_GEMM_PACKED(dgemm_shape)};
Slot<const GemmShape<c8> *> g_cgemm{ORB_GEMM_PACKED(cgemm_shape)};
Slot<const GemmShape<c16> *> g_zgemm{ORB_GEMM_PACKED(zgemm_shape)};
#undef ORB_GEMM_PACKED
#undef ORB_GEMM_NARROW

const GemmShape<double> &packed_kernel(double) {
  return *g_dgemm.get();
}
const GemmShape<c8> &packed_kernel(c8) {
  return *g_cgemm.get();
}
const GemmShape<c16> &packed_kernel(c16) {
  return *g_zgemm.get();
}

}  // namespace

template <class T>
GemmShape<T> packed_shape() {
  return packed_kernel(T{});
}
template GemmShape<double> packed_shape<double>();
template GemmShape<c8> packed_shape<c8>();
template GemmShape<c16> packed_shape<c16>();

template <class T>
void gemm_serial(Op ta, Op tb, int m, int n, int k, T alpha, const T *a, int lda, const T *b,
                 int ldb, T beta, T *c, int ldc) {
  if (m <= 0 || n <= 0) return;
  if (k <= 0 || alpha == T(0)) {
    scale_c(m, n, beta, c, ldc);
    return;
  }
  packed_or_direct<T>(packed_kernel(T{}), &kernel::generic::gemm_direct<T>, ta, tb, m, n, k, alpha,
                      a, lda, b, ldb, beta, c, ldc);
}

template void gemm_serial<double>(Op, Op, int, int, int, double, const double *, int,
                                  const double *, int, double, double *, int);
template void gemm_serial<c8>(Op, Op, int, int, int, c8, const c8 *, int, const c8 *, int, c8, c8 *,
                              int);
template void gemm_serial<c16>(Op, Op, int, int, int, c16, const c16 *, int, const c16 *, int, c16,
                               c16 *, int);

}  // namespace orb::blas
