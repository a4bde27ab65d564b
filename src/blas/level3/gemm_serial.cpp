// The serial GEMM kernels: sgemm_serial's five processor paths, the pieces of
// the threaded driver's wide-kernel path, and the other precisions.
#include <omp.h>

#include <algorithm>
#include <cstdint>

#include "blas/kernel/gemm.h"
#include "blas/level3/gemm.h"
#include "blas/level3/gemm_blocked.h"
#include "service/cpu.h"
#include "service/dispatch.h"
#include "service/memory.h"

namespace orb::blas {

using kernel::GemmShape;

// ---- decisions ---------------------------------------------------------------------

Path23 choose_path23(bool nota, bool notb, int m, int n, int k) {
  if (m < 8 || n < 8 || k < 8) return Path23::kDirect;
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
  if (m + n + k >= limit) return Path23::kPacked;
  // Memory traffic over arithmetic; both formed in 32-bit integers.
  const int numerator = m * n + n * k + m * k;
  const int denominator = 2 * m * n * (k + 1);
  const double ratio = static_cast<double>(numerator) / static_cast<double>(denominator);
  return ratio_limit > ratio ? Path23::kPacked : Path23::kDirect;
}

int packed_block23(int cache_class) {
  return cache_class == 3 ? 480 : 240;
}

Kernel45 choose_kernel45(int type, bool sse41, int n, int k) {
  if (type == 5 || sse41) {
    const std::int64_t panel = std::int64_t{std::min(k, 256)} * std::min(n, 10000) * 4;
    return panel > 0x300000 ? Kernel45::kLargePanel : Kernel45::kNormal;
  }
  return Kernel45::kPreSse41;
}

namespace {

constexpr int kBufferAlignment = 128;

// The published argument list, read.
struct Args {
  int ta, tb, m, n, k;
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
  return {trans_code(*transa),
          trans_code(*transb),
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
void packed_or_direct(const GemmShape<T> &s, kernel::GemmDirect<T> direct, int ta, int tb, int m,
                      int n, int k, T alpha, const T *a, int lda, const T *b, int ldb, T beta, T *c,
                      int ldc) {
  mem::Buffer<T> abuf(packed_a_size(s), kBufferAlignment);
  mem::Buffer<T> bbuf(packed_b_size(s), kBufferAlignment);
  if (!abuf || !bbuf) {
    direct(ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    return;
  }
  gemm_packed(s, ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc, abuf.get(), bbuf.get());
}

// ---- type 0: the generic path ---------------------------------------------------

// The packing buffers of the generic kernel's blocks, each with 16 bytes to
// spare: 4096 + 16 and 51,200 + 16 bytes.
constexpr int kGenericSpare = 16;

void serial_type0(const Args &x) {
  if (x.m <= 0 || x.n <= 0) return;
  const GemmShape<float> &s = kernel::generic::sgemm_shape;
  mem::Buffer<char> abuf(packed_a_size(s) * sizeof(float) + kGenericSpare, kBufferAlignment);
  mem::Buffer<char> bbuf(packed_b_size(s) * sizeof(float) + kGenericSpare, kBufferAlignment);
  if (!abuf || !bbuf) {
    kernel::generic::gemm_direct<float>(x.ta, x.tb, x.m, x.n, x.k, x.alpha, x.a, x.lda, x.b, x.ldb,
                                        x.beta, x.c, x.ldc);
    return;
  }
  gemm_packed(s, x.ta, x.tb, x.m, x.n, x.k, x.alpha, x.a, x.lda, x.b, x.ldb, x.beta, x.c, x.ldc,
              reinterpret_cast<float *>(abuf.get()), reinterpret_cast<float *>(bbuf.get()));
}

// ---- types 2 and 3: direct or packed ----------------------------------------------

struct SseKernels {
  const GemmShape<float> *shape;
  kernel::GemmDirect<float> direct;
};

// The kernel's tile and inner blocks (whole blocks, then the edge block),
// with square blocks of C by the cache class.
GemmShape<float> shape23(const SseKernels &kern) {
  GemmShape<float> s = *kern.shape;
  s.mc = s.nc = packed_block23(cpu::cache_class());
  return s;
}

void serial_type23(const SseKernels &kern, const Args &x) {
  if (x.m <= 0 || x.n <= 0) return;
  if (x.alpha == 0.0f) {  // A and B are not read
    scale_c(x.m, x.n, x.beta, x.c, x.ldc);
    return;
  }
  if (choose_path23(x.ta == 0, x.tb == 0, x.m, x.n, x.k) == Path23::kDirect) {
    kern.direct(x.ta, x.tb, x.m, x.n, x.k, x.alpha, x.a, x.lda, x.b, x.ldb, x.beta, x.c, x.ldc);
    return;
  }
  packed_or_direct<float>(shape23(kern), kern.direct, x.ta, x.tb, x.m, x.n, x.k, x.alpha, x.a,
                          x.lda, x.b, x.ldb, x.beta, x.c, x.ldc);
}

const SseKernels kSse2{&kernel::sse2::sgemm_shape, &kernel::sse2::sgemm_direct};
const SseKernels kSse3{&kernel::sse3::sgemm_shape, &kernel::sse3::sgemm_direct};
const SseKernels kSsse3{&kernel::ssse3::sgemm_shape, &kernel::ssse3::sgemm_direct};
const SseKernels kSse42{&kernel::sse42::sgemm_shape, &kernel::sse42::sgemm_direct};

// ---- types 4 and 5: three kernels each ----------------------------------------------

// Every kernel of a type sums the inner dimension in the same blocks (256),
// so the choice between them (which depends on the slab a thread gets) never
// changes a result. The large-panel kernel takes panels of B twice as wide.

bool wide_fma() {
#if defined(__x86_64__)
  return cpu::avx2_fma_usable();
#else
  return false;
#endif
}

GemmShape<float> shape45(const SseKernels &sse, Kernel45 which) {
  GemmShape<float> s = *sse.shape;
#if defined(__x86_64__)
  if (which != Kernel45::kPreSse41 && wide_fma()) s = kernel::avx2::sgemm_shape;
#endif
  if (which == Kernel45::kLargePanel) s.nc *= 2;
  return s;
}

#if defined(__x86_64__)
// Products of few columns with op(A) = A go straight through the thin
// kernel, which forms the same sums as the packed kernel. The rule looks only
// at op(A) and n, which every slab of a split product shares.
bool thin(const Args &x) {
  return wide_fma() && x.ta == 0 && x.n <= kernel::avx2::sgemm_thin_kernel.max_n && x.alpha != 0.0f;
}
void run_thin(int m, const float *a, float beta, float *c, const Args &x) {
  kernel::avx2::sgemm_thin_kernel.run(x.tb, m, x.n, x.k, kernel::avx2::sgemm_shape.kc, x.alpha, a,
                                      x.lda, x.b, x.ldb, beta, c, x.ldc);
}
#endif

void serial_type45(int type, const SseKernels &sse, const Args &x, bool accumulate) {
  if (x.m <= 0 || x.n <= 0) return;
#if defined(__x86_64__)
  if (thin(x) && x.k > 0) {
    run_thin(x.m, x.a, accumulate ? 1.0f : x.beta, x.c, x);
    return;
  }
#endif
  const Kernel45 which = choose_kernel45(type, type == 5 || cpu::has_sse41(), x.n, x.k);
  const float beta = accumulate ? 1.0f : x.beta;
  packed_or_direct<float>(shape45(sse, which), sse.direct, x.ta, x.tb, x.m, x.n, x.k, x.alpha, x.a,
                          x.lda, x.b, x.ldb, beta, x.c, x.ldc);
}

// ---- the dispatchers ---------------------------------------------------------------------

using SerialFn = void (*)(const Args &);
void serial2(const Args &x) {
  serial_type23(kSse2, x);
}
void serial3(const Args &x) {
  serial_type23(kSse3, x);
}
void serial4(const Args &x) {
  serial_type45(4, kSsse3, x, false);
}
void serial5(const Args &x) {
  serial_type45(5, kSse42, x, false);
}
Slot<SerialFn> g_serial{each<SerialFn>(serial_type0, serial2, serial3, serial4, serial5)};

void acc_none(const Args &) {}
void acc4(const Args &x) {
  serial_type45(4, kSsse3, x, true);
}
void acc5(const Args &x) {
  serial_type45(5, kSse42, x, true);
}
Slot<SerialFn> g_acc{three<SerialFn>(acc_none, acc4, acc5)};

struct PackedArgs {
  const Args *x;
  float *shared;
  int row0, rows;
  const int *params;
};
using PackedFn = void (*)(const PackedArgs &);

template <int Type>
void packed45(const PackedArgs &p) {
  const Args &x = *p.x;
#if defined(__x86_64__)
  // Every member sees the same n, so either all take this branch or none.
  if (thin(x) && x.k > 0) {
    if (p.rows > 0) run_thin(p.rows, x.a + p.row0, 1.0f, x.c + p.row0, x);
    return;
  }
#endif
  const SseKernels &sse = Type == 5 ? kSse42 : kSsse3;
  GemmShape<float> s = shape45(sse, Kernel45::kNormal);
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
    const float *a_rows = x.ta == 0 ? x.a + p.row0 : x.a + std::int64_t{p.row0} * x.lda;
    sse.direct(x.ta, x.tb, p.rows, x.n, x.k, x.alpha, a_rows, x.lda, x.b, x.ldb, 1.0f, x.c + p.row0,
               x.ldc);
  }
}
void packed_none(const PackedArgs &) {}
Slot<PackedFn> g_packed{three<PackedFn>(packed_none, packed45<4>, packed45<5>)};

using ParamsFn = void (*)(int *params);
void params_none(int *) {}
template <int Type>
void params45(int *params) {
  const GemmShape<float> s = shape45(Type == 5 ? kSse42 : kSsse3, Kernel45::kNormal);
  params[0] = s.kc;
  params[1] = s.mc;
  params[2] = s.nr;  // columns of a packed sliver
}
Slot<ParamsFn> g_params{three<ParamsFn>(params_none, params45<4>, params45<5>)};

using ShapeFn = GemmShape<float> (*)();
GemmShape<float> shape0() {
  return kernel::generic::sgemm_shape;
}
GemmShape<float> shape2() {
  return shape23(kSse2);
}
GemmShape<float> shape3() {
  return shape23(kSse3);
}
GemmShape<float> shape4() {
  return shape45(kSsse3, Kernel45::kNormal);
}
GemmShape<float> shape5() {
  return shape45(kSse42, Kernel45::kNormal);
}
Slot<ShapeFn> g_shape{each<ShapeFn>(shape0, shape2, shape3, shape4, shape5)};

}  // namespace

// ---- entries of the module -----------------------------------------------------------

void sgemm_serial(const char *transa, const char *transb, const int *m, const int *n, const int *k,
                  const float *alpha, const float *a, const int *lda, const float *b,
                  const int *ldb, const float *beta, float *c, const int *ldc) {
  g_serial(read(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc));
}

void sgemm_serial_acc(const char *transa, const char *transb, const int *m, const int *n,
                      const int *k, const float *alpha, const float *a, const int *lda,
                      const float *b, const int *ldb, const float *beta, float *c, const int *ldc) {
  g_acc(read(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc));
}

void sgemm_serial_packed(const char *transa, const char *transb, const int *m, const int *n,
                         const int *k, const float *alpha, const float *a, const int *lda,
                         const float *b, const int *ldb, const float *beta, float *c,
                         const int *ldc, float *shared, const int *row0, const int *rows,
                         const int *params) {
  const Args x = read(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
  g_packed(PackedArgs{&x, shared, *row0, *rows, params});
}

void sgemm_wide_params(const int *, const int *, const int *, const int *, int *params, int *) {
  g_params(params);
}

// ---- other precisions -----------------------------------------------------------------

namespace {

template <class T>
struct Kernels;
template <>
struct Kernels<double> {
  static GemmShape<double> shape() {
#if defined(__x86_64__)
    if (cpu::blas_type() >= 4 && wide_fma()) return kernel::avx2::dgemm_shape;
#endif
    return kernel::generic::dgemm_shape;
  }
};
template <>
struct Kernels<c8> {
  static GemmShape<c8> shape() {
#if defined(__x86_64__)
    if (cpu::blas_type() >= 4 && wide_fma()) return kernel::avx2::cgemm_shape;
#endif
    return kernel::generic::cgemm_shape;
  }
};
template <>
struct Kernels<c16> {
  static GemmShape<c16> shape() {
#if defined(__x86_64__)
    if (cpu::blas_type() >= 4 && wide_fma()) return kernel::avx2::zgemm_shape;
#endif
    return kernel::generic::zgemm_shape;
  }
};

}  // namespace

template <>
GemmShape<float> packed_shape<float>() {
  return g_shape();
}
template <class T>
GemmShape<T> packed_shape() {
  return Kernels<T>::shape();
}
template GemmShape<double> packed_shape<double>();
template GemmShape<c8> packed_shape<c8>();
template GemmShape<c16> packed_shape<c16>();

template <class T>
void gemm_serial(int ta, int tb, int m, int n, int k, T alpha, const T *a, int lda, const T *b,
                 int ldb, T beta, T *c, int ldc) {
  if (m <= 0 || n <= 0) return;
  if (k <= 0 || alpha == T(0)) {
    scale_c(m, n, beta, c, ldc);
    return;
  }
  packed_or_direct<T>(Kernels<T>::shape(), &kernel::generic::gemm_direct<T>, ta, tb, m, n, k, alpha,
                      a, lda, b, ldb, beta, c, ldc);
}

template void gemm_serial<double>(int, int, int, int, int, double, const double *, int,
                                  const double *, int, double, double *, int);
template void gemm_serial<c8>(int, int, int, int, int, c8, const c8 *, int, const c8 *, int, c8,
                              c8 *, int);
template void gemm_serial<c16>(int, int, int, int, int, c16, const c16 *, int, const c16 *, int,
                               c16, c16 *, int);

}  // namespace orb::blas
