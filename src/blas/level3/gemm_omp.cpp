// gemm_omp: the threaded general matrix multiply. It decides whether a
// product is worth splitting over the BLAS domain's threads, cuts C into one
// slab per thread and runs the serial kernel on each; on the newest processor
// types single precision takes the wide-kernel path, where C is scaled first
// and the team shares the packed panels of op(B).
#include <omp.h>

#include <algorithm>
#include <atomic>
#include <cstdint>

#include "blas/level3/gemm.h"
#include "blas/level3/gemm_blocked.h"
#include "blas/level3/level3_common.h"
#include "service/cpu.h"
#include "service/dispatch.h"
#include "service/kernel_set.h"
#include "service/memory.h"
#include "service/threading.h"

namespace orb::blas {
namespace {

std::atomic<long> g_thread_queries{0};

int blas_threads() {
  g_thread_queries.fetch_add(1, std::memory_order_relaxed);
  return threads::max_threads(threads::kDomainBlas);
}

bool is_n(const char *t) {
  return option<Op>(*t) == Op::kNone;
}

// How each precision runs one piece of the product on the calling thread.
template <class T>
struct Serial {
  static void run(const char *ta, const char *tb, int m, int n, int k, const T *alpha, const T *a,
                  int lda, const T *b, int ldb, const T *beta, T *c, int ldc) {
    gemm_serial<T>(option<Op>(*ta), option<Op>(*tb), m, n, k, *alpha, a, lda, b, ldb, *beta, c,
                   ldc);
  }
};
template <>
struct Serial<float> {
  static void run(const char *ta, const char *tb, int m, int n, int k, const float *alpha,
                  const float *a, int lda, const float *b, int ldb, const float *beta, float *c,
                  int ldc) {
    sgemm_serial(ta, tb, &m, &n, &k, alpha, a, &lda, b, &ldb, beta, c, &ldc);
  }
};

// Piece i of nt over `total` rows or columns: `chunk` each, the last takes the
// rest; the start is clamped so that an empty last piece stays inside.
struct Piece {
  int start, length;
};
Piece piece(int i, int nt, int chunk, int total) {
  int length = chunk;
  if (i == nt - 1) length = std::max(0, total - i * chunk);
  return {std::min(i * chunk, total - 1), length};
}

template <class T>
void general_path(const char *ta, const char *tb, int m, int n, int k, const T *alpha, const T *a,
                  int lda, const T *b, int ldb, const T *beta, T *c, int ldc, int nt, int bound) {
  const bool nota = is_n(ta), notb = is_n(tb);
  if (m > bound) {
    const int chunk = m / nt;
    per_thread(nt, [&](int i) {
      const Piece p = piece(i, nt, chunk, m);
      const T *ai = nota ? a + p.start : a + std::int64_t{p.start} * lda;
      Serial<T>::run(ta, tb, p.length, n, k, alpha, ai, lda, b, ldb, beta, c + p.start, ldc);
    });
  } else {
    const int chunk = n / nt;
    per_thread(nt, [&](int i) {
      const Piece p = piece(i, nt, chunk, n);
      const T *bi = notb ? b + std::int64_t{p.start} * ldb : b + p.start;
      Serial<T>::run(ta, tb, m, p.length, k, alpha, a, lda, bi, ldb, beta,
                     c + std::int64_t{p.start} * ldc, ldc);
    });
  }
}

// ---- the wide-kernel path (single precision, types 5 and 4 with SSE4.1) ----------------

constexpr std::int64_t kPanelLimit = 0x180000;  // bytes of a thread's panel for sharing
constexpr int kSharedAlignment = 128;
constexpr std::uintptr_t kSharedStart = 4096;

void rows_acc(const char *ta, const char *tb, int m, int n, int k, const float *alpha,
              const float *a, int lda, const float *b, int ldb, const float *beta, float *c,
              int ldc, int nt, int chunk) {
  const bool nota = is_n(ta);
  per_thread(nt, [&](int i) {
    const Piece p = piece(i, nt, chunk, m);
    const float *ai = nota ? a + p.start : a + std::int64_t{p.start} * lda;
    sgemm_serial_acc(ta, tb, &p.length, &n, &k, alpha, ai, &lda, b, &ldb, beta, c + p.start, &ldc);
  });
}

void cols_acc(const char *ta, const char *tb, int m, int n, int k, const float *alpha,
              const float *a, int lda, const float *b, int ldb, const float *beta, float *c,
              int ldc, int nt) {
  const bool notb = is_n(tb);
  const int chunk = n / nt;
  per_thread(nt, [&](int i) {
    const Piece p = piece(i, nt, chunk, n);
    const float *bi = notb ? b + std::int64_t{p.start} * ldb : b + p.start;
    sgemm_serial_acc(ta, tb, &m, &p.length, &k, alpha, a, &lda, bi, &ldb, beta,
                     c + std::int64_t{p.start} * ldc, &ldc);
  });
}

// The team shares one buffer for the packed panels of op(B); each member
// multiplies its rows (a multiple of 4, the last member the rest).
bool rows_packed(const char *ta, const char *tb, int m, int n, int k, const float *alpha,
                 const float *a, int lda, const float *b, int ldb, const float *beta, float *c,
                 int ldc, int nt, int type) {
  int params[4] = {0, 0, 0, 0};
  int reserved = 0;
  sgemm_wide_params(&m, &n, &k, &nt, params, &reserved);
  cpu::CacheRecord caches;
  cpu::cache_query(&caches);
  params[3] = wide_shared_block(type, caches.count, caches.size[2]);
  const std::int64_t floats = std::int64_t{params[0]} * round_up(params[3], params[2]);
  mem::Buffer<char> shared(floats * 4 + kSharedStart, kSharedAlignment);
  if (!shared) return false;
  auto start = reinterpret_cast<std::uintptr_t>(shared.get());
  float *panel = reinterpret_cast<float *>((start + kSharedStart - 1) & ~(kSharedStart - 1));
#pragma omp parallel num_threads(nt)
  {
    const int team = omp_get_num_threads(), member = omp_get_thread_num();
    const int chunk = (m / team) & ~3;
    const Piece p = piece(member, team, chunk, m);
    sgemm_serial_packed(ta, tb, &m, &n, &k, alpha, a, &lda, b, &ldb, beta, c, &ldc, panel, &p.start,
                        &p.length, params);
  }
  return true;
}

template <int Type>
void wide_path(const char *ta, const char *tb, int m, int n, int k, const float *alpha,
               const float *a, int lda, const float *b, int ldb, const float *beta, float *c,
               int ldc, int nt, int bound) {
  // C := beta C first, by column slabs; the join comes before any product.
  if (*beta != 1.0f) {
    const int chunk = n / nt;
    per_thread(nt, [&](int i) {
      const Piece p = piece(i, nt, chunk, n);
      scale_c(m, p.length, *beta, c + std::int64_t{p.start} * ldc, ldc);
    });
  }
  if (*alpha == 0.0f) return;
  const float one = 1.0f;
  if (m <= bound) {
    const bool by_columns = (m == n && n == k && k < 800) || (m <= n && k < 100) || m < n;
    if (by_columns) {
      cols_acc(ta, tb, m, n, k, alpha, a, lda, b, ldb, &one, c, ldc, nt);
      return;
    }
    if (!rows_packed(ta, tb, m, n, k, alpha, a, lda, b, ldb, &one, c, ldc, nt, Type))
      rows_acc(ta, tb, m, n, k, alpha, a, lda, b, ldb, &one, c, ldc, nt, (m / nt) & ~3);
    return;
  }
  const int chunk = (m / nt) & ~3;
  const bool small = m <= 100 && n <= 100 && k <= 100;
  const std::int64_t panel = std::int64_t{std::min(k, 256)} * std::min(chunk, 2000) * 4;
  if (small || panel > kPanelLimit ||
      !rows_packed(ta, tb, m, n, k, alpha, a, lda, b, ldb, &one, c, ldc, nt, Type))
    rows_acc(ta, tb, m, n, k, alpha, a, lda, b, ldb, &one, c, ldc, nt, chunk);
}

// How a single-precision product is split: the wide-kernel path on types 5
// and 4 with SSE4.1 (whatever vector width their kernels have), slabs of the
// serial kernel otherwise.
using SplitFn = void (*)(const char *ta, const char *tb, int m, int n, int k, const float *alpha,
                         const float *a, int lda, const float *b, int ldb, const float *beta,
                         float *c, int ldc, int nt, int bound);
Slot<SplitFn> g_split{with<SplitFn>(three<SplitFn>(general_path<float>, wide_path<4>, wide_path<5>),
                                    cpu::kSetType4, general_path<float>)};

template <class T>
void gemm_omp(const char *ta, const char *tb, const int *pm, const int *pn, const int *pk,
              const T *alpha, const T *a, const int *plda, const T *b, const int *pldb,
              const T *beta, T *c, const int *pldc) {
  const int m = *pm, n = *pn, k = *pk, lda = *plda, ldb = *pldb, ldc = *pldc;
  if (m <= 0 || n <= 0) return;  // k <= 0 still forms beta C
  if (gemm_is_tiny(m, n, k)) {
    Serial<T>::run(ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    return;
  }
  const int nt = blas_threads();
  if (nt < 2) {
    Serial<T>::run(ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    return;
  }
  const SplitDecision d = decide_split(m, n, k, nt);
  if (!d.parallel) {
    Serial<T>::run(ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    return;
  }
  if constexpr (std::is_same_v<T, float>)
    g_split(ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc, nt, d.bound);
  else
    general_path(ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc, nt, d.bound);
}

}  // namespace

SplitDecision decide_split(int m, int n, int k, int nt) {
  if (m > 100 || n > 100 || k > 100) return {true, n};
  // Small products: split only when the work per thread plus a fixed cost of
  // 1000 per thread is well below the whole (32-bit integer arithmetic).
  int mp = m, np = n;
  if (m > n * nt)
    mp = m / nt;
  else
    np = n / nt;
  const int total = ((m * n + m + n) * k) / 2;
  const int per = nt * 1000 + ((mp * np + mp + np) * k) / 2;
  const bool parallel = static_cast<double>(total) / static_cast<double>(per) > 1.4;
  return {parallel, n * nt};
}

long gemm_thread_queries() {
  return g_thread_queries.load(std::memory_order_relaxed);
}

int wide_shared_block(int type, unsigned cache_count, unsigned third_cache_size) {
  if (type == 5) return 1280;
  return (cache_count < 3 || third_cache_size > 0x300000) ? 1024 : 896;
}

void orb_blas_sgemm(const char *transa, const char *transb, const int *m, const int *n,
                    const int *k, const float *alpha, const float *a, const int *lda,
                    const float *b, const int *ldb, const float *beta, float *c, const int *ldc) {
  gemm_omp<float>(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}
void orb_blas_dgemm(const char *transa, const char *transb, const int *m, const int *n,
                    const int *k, const double *alpha, const double *a, const int *lda,
                    const double *b, const int *ldb, const double *beta, double *c,
                    const int *ldc) {
  gemm_omp<double>(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}
void orb_blas_cgemm(const char *transa, const char *transb, const int *m, const int *n,
                    const int *k, const c8 *alpha, const c8 *a, const int *lda, const c8 *b,
                    const int *ldb, const c8 *beta, c8 *c, const int *ldc) {
  gemm_omp<c8>(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}
void orb_blas_zgemm(const char *transa, const char *transb, const int *m, const int *n,
                    const int *k, const c16 *alpha, const c16 *a, const int *lda, const c16 *b,
                    const int *ldb, const c16 *beta, c16 *c, const int *ldc) {
  gemm_omp<c16>(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

}  // namespace orb::blas
