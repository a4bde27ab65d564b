// Pack and unpack of single-precision vectors: variants A, B and C, their
// dispatch slots and the six entries.
#include "vml/pack.h"

#include <emmintrin.h>

#include <cstdint>
#include <cstring>

#include "orb.h"
#include "service/cpu.h"
#include "service/dispatch.h"

namespace orb::vml {

#if defined(ORB_KERNELS_AVX512)
extern const PackKernels kPackAvx512;
#endif

namespace {

// A contiguous run of words.
void copy(int n, const Word *a, Word *y) {
  std::memcpy(y, a, static_cast<std::size_t>(n) * sizeof(Word));
}

// ---- A: plain loops (the processors of every other vendor take them, so a
// contiguous side is still a block copy) ------------------------------------

void packi_a(int n, const Word *a, int inca, Word *y) {
  if (inca == 1) return copy(n, a, y);
  for (int i = 0; i < n; ++i) y[i] = a[std::int64_t{i} * inca];
}

void packm_a(int n, const Word *a, const int *ma, Word *y) {
  std::int64_t k = 0;
  for (int i = 0; i < n; ++i)
    if (ma[i] != 0) y[k++] = a[i];
}

void packv_a(int n, const Word *a, const int *ia, Word *y) {
  for (int i = 0; i < n; ++i) y[i] = a[ia[i]];
}

void unpacki_a(int n, const Word *a, int incy, Word *y) {
  if (incy == 1) return copy(n, a, y);
  for (int i = 0; i < n; ++i) y[std::int64_t{i} * incy] = a[i];
}

void unpackm_a(int n, const Word *a, const int *my, Word *y) {
  std::int64_t k = 0;
  for (int i = 0; i < n; ++i)
    if (my[i] != 0) y[i] = a[k++];
}

void unpackv_a(int n, const Word *a, const int *iy, Word *y) {
  for (int i = 0; i < n; ++i) y[iy[i]] = a[i];
}

// ---- B: unrolled by four, SSE2 where a side is contiguous -----------------

void fill(int n, Word w, Word *y) {
  const __m128i v = _mm_set1_epi32(static_cast<int>(w.bits));
  int i = 0;
  for (; i + 4 <= n; i += 4) _mm_storeu_si128(reinterpret_cast<__m128i *>(y + i), v);
  for (; i < n; ++i) y[i] = w;
}

void packi_b(int n, const Word *a, int inca, Word *y) {
  if (n <= 0) return;
  if (inca == 1) return copy(n, a, y);
  if (inca == 0) return fill(n, a[0], y);
  const std::int64_t s = inca;
  int i = 0;
  for (; i + 4 <= n; i += 4) {
    const Word *p = a + i * s;
    const Word w0 = p[0], w1 = p[s], w2 = p[2 * s], w3 = p[3 * s];
    y[i] = w0;
    y[i + 1] = w1;
    y[i + 2] = w2;
    y[i + 3] = w3;
  }
  for (; i < n; ++i) y[i] = a[i * s];
}

// Four mask entries as four bits, bit j set when m[j] != 0.
int selected4(const int *m) {
  const __m128i zero =
      _mm_cmpeq_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i *>(m)), _mm_setzero_si128());
  return ~_mm_movemask_ps(_mm_castsi128_ps(zero)) & 0xF;
}

void packm_b(int n, const Word *a, const int *ma, Word *y) {
  std::int64_t k = 0;
  int i = 0;
  for (; i + 4 <= n; i += 4) {
    const int bits = selected4(ma + i);
    if (bits == 0xF) {
      _mm_storeu_si128(reinterpret_cast<__m128i *>(y + k),
                       _mm_loadu_si128(reinterpret_cast<const __m128i *>(a + i)));
      k += 4;
    } else if (bits != 0) {
      for (int j = 0; j < 4; ++j)
        if (bits & (1 << j)) y[k++] = a[i + j];
    }
  }
  for (; i < n; ++i)
    if (ma[i] != 0) y[k++] = a[i];
}

void packv_b(int n, const Word *a, const int *ia, Word *y) {
  int i = 0;
  for (; i + 4 <= n; i += 4) {
    const Word w0 = a[ia[i]], w1 = a[ia[i + 1]], w2 = a[ia[i + 2]], w3 = a[ia[i + 3]];
    y[i] = w0;
    y[i + 1] = w1;
    y[i + 2] = w2;
    y[i + 3] = w3;
  }
  for (; i < n; ++i) y[i] = a[ia[i]];
}

void unpacki_b(int n, const Word *a, int incy, Word *y) {
  if (n <= 0) return;
  if (incy == 1) return copy(n, a, y);
  if (incy == 0) {
    y[0] = a[n - 1];  // every element lands on y[0]; the last stays
    return;
  }
  const std::int64_t s = incy;
  int i = 0;
  for (; i + 4 <= n; i += 4) {
    Word *p = y + i * s;
    const Word w0 = a[i], w1 = a[i + 1], w2 = a[i + 2], w3 = a[i + 3];
    p[0] = w0;
    p[s] = w1;
    p[2 * s] = w2;
    p[3 * s] = w3;
  }
  for (; i < n; ++i) y[i * s] = a[i];
}

void unpackm_b(int n, const Word *a, const int *my, Word *y) {
  std::int64_t k = 0;
  int i = 0;
  for (; i + 4 <= n; i += 4) {
    const int bits = selected4(my + i);
    if (bits == 0xF) {
      _mm_storeu_si128(reinterpret_cast<__m128i *>(y + i),
                       _mm_loadu_si128(reinterpret_cast<const __m128i *>(a + k)));
      k += 4;
    } else if (bits != 0) {
      for (int j = 0; j < 4; ++j)
        if (bits & (1 << j)) y[i + j] = a[k++];
    }
  }
  for (; i < n; ++i)
    if (my[i] != 0) y[i] = a[k++];
}

void unpackv_b(int n, const Word *a, const int *iy, Word *y) {
  int i = 0;
  // Stores stay in index order, so with repeated indices the last one wins.
  for (; i + 4 <= n; i += 4) {
    y[iy[i]] = a[i];
    y[iy[i + 1]] = a[i + 1];
    y[iy[i + 2]] = a[i + 2];
    y[iy[i + 3]] = a[i + 3];
  }
  for (; i < n; ++i) y[iy[i]] = a[i];
}

// ---- C: B, or the widest path the processor and the system support -------

const PackKernels &wide() {
  static const PackKernels chosen = [] {
    const PackKernels *w = nullptr;
#if defined(ORB_KERNELS_AVX512)
    if (w == nullptr && cpu::avx512_usable()) w = &kPackAvx512;
#endif
    PackKernels k = kPackB;
    if (w != nullptr) {
      if (w->packi) k.packi = w->packi;
      if (w->packm) k.packm = w->packm;
      if (w->packv) k.packv = w->packv;
      if (w->unpacki) k.unpacki = w->unpacki;
      if (w->unpackm) k.unpackm = w->unpackm;
      if (w->unpackv) k.unpackv = w->unpackv;
    }
    return k;
  }();
  return chosen;
}

void packi_c(int n, const Word *a, int inca, Word *y) {
  wide().packi(n, a, inca, y);
}
void packm_c(int n, const Word *a, const int *ma, Word *y) {
  wide().packm(n, a, ma, y);
}
void packv_c(int n, const Word *a, const int *ia, Word *y) {
  wide().packv(n, a, ia, y);
}
void unpacki_c(int n, const Word *a, int incy, Word *y) {
  wide().unpacki(n, a, incy, y);
}
void unpackm_c(int n, const Word *a, const int *my, Word *y) {
  wide().unpackm(n, a, my, y);
}
void unpackv_c(int n, const Word *a, const int *iy, Word *y) {
  wide().unpackv(n, a, iy, y);
}

// ---- dispatch -------------------------------------------------------------

// Types 0-3 take A, type 4 B, types 5 and 6 C.
template <class Fn>
constexpr Variants<Fn, kVmlTypes> abc(Fn a, Fn b, Fn c) {
  return per_vml_type<Fn>(a, a, a, a, b, c, c);
}

VmlSlot<StrideFn> g_packi{abc<StrideFn>(packi_a, packi_b, packi_c)};
VmlSlot<VectorFn> g_packm{abc<VectorFn>(packm_a, packm_b, packm_c)};
VmlSlot<VectorFn> g_packv{abc<VectorFn>(packv_a, packv_b, packv_c)};
VmlSlot<StrideFn> g_unpacki{abc<StrideFn>(unpacki_a, unpacki_b, unpacki_c)};
VmlSlot<VectorFn> g_unpackm{abc<VectorFn>(unpackm_a, unpackm_b, unpackm_c)};
VmlSlot<VectorFn> g_unpackv{abc<VectorFn>(unpackv_a, unpackv_b, unpackv_c)};

const Word *words(const float *p) {
  return reinterpret_cast<const Word *>(p);
}
Word *words(float *p) {
  return reinterpret_cast<Word *>(p);
}

}  // namespace

const PackKernels kPackA = {packi_a, packm_a, packv_a, unpacki_a, unpackm_a, unpackv_a};
const PackKernels kPackB = {packi_b, packm_b, packv_b, unpacki_b, unpackm_b, unpackv_b};
const PackKernels kPackC = {packi_c, packm_c, packv_c, unpacki_c, unpackm_c, unpackv_c};

const PackKernels *pack_avx512() {
#if defined(ORB_KERNELS_AVX512)
  return &kPackAvx512;
#else
  return nullptr;
#endif
}

PackKernels pack_chosen() {
  return {g_packi.get(),   g_packm.get(),   g_packv.get(),
          g_unpacki.get(), g_unpackm.get(), g_unpackv.get()};
}

}  // namespace orb::vml

extern "C" {

ORB_API void vspacki(const int *n, const float *a, const int *inca, float *y) {
  using namespace orb::vml;
  if (*n > 0) g_packi(*n, words(a), *inca, words(y));
}
ORB_API void vspackm(const int *n, const float *a, const int *ma, float *y) {
  using namespace orb::vml;
  if (*n > 0) g_packm(*n, words(a), ma, words(y));
}
ORB_API void vspackv(const int *n, const float *a, const int *ia, float *y) {
  using namespace orb::vml;
  if (*n > 0) g_packv(*n, words(a), ia, words(y));
}
ORB_API void vsunpacki(const int *n, const float *a, float *y, const int *incy) {
  using namespace orb::vml;
  if (*n > 0) g_unpacki(*n, words(a), *incy, words(y));
}
ORB_API void vsunpackm(const int *n, const float *a, float *y, const int *my) {
  using namespace orb::vml;
  if (*n > 0) g_unpackm(*n, words(a), my, words(y));
}
ORB_API void vsunpackv(const int *n, const float *a, float *y, const int *iy) {
  using namespace orb::vml;
  if (*n > 0) g_unpackv(*n, words(a), iy, words(y));
}

}  // extern "C"
