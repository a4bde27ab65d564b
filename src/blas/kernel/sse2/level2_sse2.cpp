// Level-2 kernels on vector registers. This file is the sse2 variant, and the
// sse3, ssse3, sse42 and avx2 folders compile it again with their own flags
// (defining ORB_L2_LEVEL first): the vector operations come from a small traits
// class chosen by the instruction set the compiler targets (128-bit SSE, or
// 256-bit AVX2 with fused multiply-add), the algorithms are written once.
//
// Complex data are handled as interleaved reals: a complex product t * a is
// re(t) a + (-im(t), im(t)) swap(a), where swap exchanges the two parts of each
// element; a sum of such products keeps the sums of re(t) a and im(t) a apart
// and swaps once, and a complex dot product keeps the lane sums of a x and
// a swap(x) and combines them once at the end.
//
// Matrix columns are read with aligned loads when the leading dimension keeps
// every column on the same alignment. The results never depend on that choice,
// nor on where the caller's arrays lie: an element done one by one is computed
// with exactly the operations of a vector lane, and a dot product sums row r of
// a column in accumulator lane r mod (lanes), in increasing order of r, whatever
// lanes the aligned loads put it in; the lanes are combined in one fixed order.
#include <immintrin.h>

#include <cmath>
#include <cstdint>

#include "blas/kernel/level2.h"
#include "blas/kernel/registers.h"

#ifndef ORB_L2_LEVEL
#define ORB_L2_LEVEL sse2
#endif

namespace orb::kernel::level2::ORB_L2_LEVEL {
namespace {

using i64 = std::int64_t;

#if defined(__AVX2__) && defined(__FMA__)

struct VF {
  using R = float;
  using reg = __m256;
  static constexpr int kW = 8;
  static constexpr int kBytes = 32;
  static reg zero() { return _mm256_setzero_ps(); }
  static reg set1(R v) { return _mm256_set1_ps(v); }
  static reg setpair(R a, R b) { return _mm256_setr_ps(a, b, a, b, a, b, a, b); }
  static reg load(const R *p) { return _mm256_load_ps(p); }
  static reg loadu(const R *p) { return _mm256_loadu_ps(p); }
  static __m256i lanes(int lo, int hi) {
    const __m256i l = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    return _mm256_and_si256(_mm256_cmpgt_epi32(l, _mm256_set1_epi32(lo - 1)),
                            _mm256_cmpgt_epi32(_mm256_set1_epi32(hi), l));
  }
  // Lanes [lo, hi) from p, zeros elsewhere; nothing outside them is read.
  static reg loadpart(const R *p, int lo, int hi) { return _mm256_maskload_ps(p, lanes(lo, hi)); }
  // Lanes [lo, hi) of v to p; nothing outside them is written.
  static void storepart(R *p, reg v, int lo, int hi) { _mm256_maskstore_ps(p, lanes(lo, hi), v); }
  static void storeu(R *p, reg v) { _mm256_storeu_ps(p, v); }
  static reg add(reg a, reg b) { return _mm256_add_ps(a, b); }
  static reg mul(reg a, reg b) { return _mm256_mul_ps(a, b); }
  static reg madd(reg a, reg b, reg c) { return _mm256_fmadd_ps(a, b, c); }
  static R madd1(R a, R b, R c) { return std::fma(a, b, c); }
  static reg swap(reg v) { return _mm256_permute_ps(v, 0xB1); }
  // Even lanes a - b, odd lanes a + b.
  static reg addsub(reg a, reg b) { return _mm256_addsub_ps(a, b); }
  // The sums of the even lanes and of the odd lanes.
  static void pairsum(reg v, R &even, R &odd) {
    __m128 h = _mm_add_ps(_mm256_castps256_ps128(v), _mm256_extractf128_ps(v, 1));
    h = _mm_add_ps(h, _mm_movehl_ps(h, h));
    even = _mm_cvtss_f32(h);
    odd = _mm_cvtss_f32(_mm_movehdup_ps(h));
  }
};

struct VD {
  using R = double;
  using reg = __m256d;
  static constexpr int kW = 4;
  static constexpr int kBytes = 32;
  static reg zero() { return _mm256_setzero_pd(); }
  static reg set1(R v) { return _mm256_set1_pd(v); }
  static reg setpair(R a, R b) { return _mm256_setr_pd(a, b, a, b); }
  static reg load(const R *p) { return _mm256_load_pd(p); }
  static reg loadu(const R *p) { return _mm256_loadu_pd(p); }
  static __m256i lanes(int lo, int hi) {
    const __m256i l = _mm256_setr_epi64x(0, 1, 2, 3);
    return _mm256_and_si256(_mm256_cmpgt_epi64(l, _mm256_set1_epi64x(lo - 1)),
                            _mm256_cmpgt_epi64(_mm256_set1_epi64x(hi), l));
  }
  static reg loadpart(const R *p, int lo, int hi) { return _mm256_maskload_pd(p, lanes(lo, hi)); }
  static void storepart(R *p, reg v, int lo, int hi) { _mm256_maskstore_pd(p, lanes(lo, hi), v); }
  static void storeu(R *p, reg v) { _mm256_storeu_pd(p, v); }
  static reg add(reg a, reg b) { return _mm256_add_pd(a, b); }
  static reg mul(reg a, reg b) { return _mm256_mul_pd(a, b); }
  static reg madd(reg a, reg b, reg c) { return _mm256_fmadd_pd(a, b, c); }
  static R madd1(R a, R b, R c) { return std::fma(a, b, c); }
  static reg swap(reg v) { return _mm256_permute_pd(v, 0x5); }
  static reg addsub(reg a, reg b) { return _mm256_addsub_pd(a, b); }
  static void pairsum(reg v, R &even, R &odd) {
    const __m128d h = _mm_add_pd(_mm256_castpd256_pd128(v), _mm256_extractf128_pd(v, 1));
    even = _mm_cvtsd_f64(h);
    odd = _mm_cvtsd_f64(_mm_unpackhi_pd(h, h));
  }
};

#else

struct VF {
  using R = float;
  using reg = __m128;
  static constexpr int kW = 4;
  static constexpr int kBytes = 16;
  static reg zero() { return _mm_setzero_ps(); }
  static reg set1(R v) { return _mm_set1_ps(v); }
  static reg setpair(R a, R b) { return _mm_setr_ps(a, b, a, b); }
  static reg load(const R *p) { return _mm_load_ps(p); }
  static reg loadu(const R *p) { return _mm_loadu_ps(p); }
  static reg loadpart(const R *p, int lo, int hi) {
    alignas(16) R t[kW] = {};
    for (int l = lo; l < hi; ++l) t[l] = p[l];
    return _mm_load_ps(t);
  }
  static void storepart(R *p, reg v, int lo, int hi) {
    alignas(16) R t[kW];
    _mm_store_ps(t, v);
    for (int l = lo; l < hi; ++l) p[l] = t[l];
  }
  static void storeu(R *p, reg v) { _mm_storeu_ps(p, v); }
  static reg add(reg a, reg b) { return _mm_add_ps(a, b); }
  static reg mul(reg a, reg b) { return _mm_mul_ps(a, b); }
  static reg madd(reg a, reg b, reg c) { return _mm_add_ps(_mm_mul_ps(a, b), c); }
  static R madd1(R a, R b, R c) { return a * b + c; }  // never contracted here
  static reg swap(reg v) { return _mm_shuffle_ps(v, v, 0xB1); }
  // Even lanes a - b, odd lanes a + b (without SSE3: b's even lanes negated,
  // which is exact, then added).
  static reg addsub(reg a, reg b) {
#if defined(__SSE3__)
    return _mm_addsub_ps(a, b);
#else
    return _mm_add_ps(a, _mm_xor_ps(b, _mm_setr_ps(-0.0f, 0.0f, -0.0f, 0.0f)));
#endif
  }
  static void pairsum(reg v, R &even, R &odd) {
    const reg h = _mm_add_ps(v, _mm_movehl_ps(v, v));
    even = _mm_cvtss_f32(h);
#if defined(__SSE3__)
    odd = _mm_cvtss_f32(_mm_movehdup_ps(h));
#else
    odd = _mm_cvtss_f32(_mm_shuffle_ps(h, h, 0x55));
#endif
  }
};

struct VD {
  using R = double;
  using reg = __m128d;
  static constexpr int kW = 2;
  static constexpr int kBytes = 16;
  static reg zero() { return _mm_setzero_pd(); }
  static reg set1(R v) { return _mm_set1_pd(v); }
  static reg setpair(R a, R b) { return _mm_setr_pd(a, b); }
  static reg load(const R *p) { return _mm_load_pd(p); }
  static reg loadu(const R *p) { return _mm_loadu_pd(p); }
  static reg loadpart(const R *p, int lo, int hi) {
    alignas(16) R t[kW] = {};
    for (int l = lo; l < hi; ++l) t[l] = p[l];
    return _mm_load_pd(t);
  }
  static void storepart(R *p, reg v, int lo, int hi) {
    alignas(16) R t[kW];
    _mm_store_pd(t, v);
    for (int l = lo; l < hi; ++l) p[l] = t[l];
  }
  static void storeu(R *p, reg v) { _mm_storeu_pd(p, v); }
  static reg add(reg a, reg b) { return _mm_add_pd(a, b); }
  static reg mul(reg a, reg b) { return _mm_mul_pd(a, b); }
  static reg madd(reg a, reg b, reg c) { return _mm_add_pd(_mm_mul_pd(a, b), c); }
  static R madd1(R a, R b, R c) { return a * b + c; }
  static reg swap(reg v) { return _mm_shuffle_pd(v, v, 1); }
  static reg addsub(reg a, reg b) {
#if defined(__SSE3__)
    return _mm_addsub_pd(a, b);
#else
    return _mm_add_pd(a, _mm_xor_pd(b, _mm_setr_pd(-0.0, 0.0)));
#endif
  }
  static void pairsum(reg v, R &even, R &odd) {
    even = _mm_cvtsd_f64(v);
    odd = _mm_cvtsd_f64(_mm_unpackhi_pd(v, v));
  }
};

#endif

// Columns per pass: enough to keep the adders busy, to read y few times and
// to keep several streams of the matrix going, few enough to stay in the
// vector registers (eight in the 32-bit build). A complex pass of y += A x
// holds two broadcasts per column.
#if !defined(ORB_EIGHT_REGISTERS)
constexpr int kRealGroupN = 8, kRealGroupT = 4, kComplexGroupN = 6, kComplexGroupT = 4,
              kRealDotUnroll = 2;
#else
constexpr int kRealGroupN = 4, kRealGroupT = 4, kComplexGroupN = 2, kComplexGroupT = 2,
              kRealDotUnroll = 1;
#endif

// The kernels over vector traits V, for real (kC false) or complex data.
// Lengths are in elements, pointers and offsets in reals.
template <class V, bool kC>
struct Kernels {
  using R = typename V::R;
  using reg = typename V::reg;
  static constexpr int kE = kC ? 2 : 1;  // reals per element
  static constexpr int kGroupN = kC ? kComplexGroupN : kRealGroupN;
  static constexpr int kGroupT = kC ? kComplexGroupT : kRealGroupT;
  static constexpr int kDotUnroll = kC ? 1 : kRealDotUnroll;

  // A scalar: its real part and, for complex data, its imaginary part.
  struct S {
    R re, im;
  };
  static S read(const R *p) { return kC ? S{p[0], p[1]} : S{p[0], R(0)}; }
  static S mul(S a, S b) {
    if constexpr (kC) return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
    return {a.re * b.re, R(0)};
  }
  // Broadcasts of a scalar t such that t * v is madd(lo, v, hi * swap(v)).
  static reg bre(S t) { return V::set1(t.re); }
  static reg bim(S t) { return kC ? V::setpair(-t.im, t.im) : V::zero(); }
  // y += t * v for one element, with the operations of vupdate's lanes. A
  // complex product is formed first and then added, as in the published
  // routines; without fused operations the sums are the published ones.
  static void update(R *y, S t, S v) {
    if constexpr (kC) {
      y[0] += V::madd1(-t.im, v.im, t.re * v.re);
      y[1] += V::madd1(t.im, v.re, t.re * v.im);
    } else {
      y[0] = V::madd1(t.re, v.re, y[0]);
    }
  }
  static void update(R *y, S t, const R *v) { update(y, t, read(v)); }
  // acc += t * v for a vector.
  static reg vupdate(reg acc, reg tre, reg tim, reg v) {
    if constexpr (kC) return V::add(acc, V::madd(tim, V::swap(v), V::mul(tre, v)));
    return V::madd(tre, v, acc);
  }
  // v held in a register: a loaded vector used twice is otherwise read from
  // memory by both of its uses, and the loads become the bottleneck.
  static reg in_register(reg v) {
#if defined(__GNUC__)
    __asm__("" : "+x"(v));
#endif
    return v;
  }
  template <bool kAligned>
  static reg load(const R *p) {
    if constexpr (kAligned) return V::load(p);
    return V::loadu(p);
  }

  // Reals from the vector boundary before `a` to `a`, or -1 when that is not a
  // whole number of elements (no aligned loads then).
  static i64 rotation_of(const R *a) {
    const auto mis = reinterpret_cast<std::uintptr_t>(a) % V::kBytes;
    return mis % (sizeof(R) * kE) == 0 ? static_cast<i64>(mis / sizeof(R)) : -1;
  }

  // ---- y += A x ------------------------------------------------------------------

  // One pass over y with C columns: y += sum_c t_c col_c. Aligned loads read
  // the columns from `off` reals before their start; the partial vectors at
  // either end take the same lane operations.
  //
  // Complex columns are not multiplied one by one (a swap per column): the
  // pass keeps p = y + sum_c re(t_c) col_c and q = sum_c im(t_c) col_c and
  // adds i q to p once, y = (p.re - q.im, p.im + q.re), the way the matrix
  // product's kernels combine their parts.
  template <int C, bool kAligned>
  static void pass_n(i64 m, i64 off, const R *const *col, const S *t, R *y) {
    constexpr int W = V::kW;
    const i64 end = m * kE + off;
    reg tre[C], tim[C];
    for (int c = 0; c < C; ++c) tre[c] = V::set1(t[c].re), tim[c] = V::set1(t[c].im);
    // One vector of y, its column vectors read by `get`.
    auto step = [&](reg yv, auto get) {
      if constexpr (kC) {
        reg a = in_register(get(0));
        reg p = V::madd(tre[0], a, yv), q = V::mul(tim[0], a);
        for (int c = 1; c < C; ++c) {
          a = in_register(get(c));
          p = V::madd(tre[c], a, p);
          q = V::madd(tim[c], a, q);
        }
        return V::addsub(p, V::swap(q));
      } else {
        for (int c = 0; c < C; ++c) yv = V::madd(tre[c], get(c), yv);
        return yv;
      }
    };
    auto part = [&](i64 b, int lo, int hi) {
      const i64 r = b * W - off;
      const reg v =
          step(V::loadpart(y + r, lo, hi), [&](int c) { return V::loadpart(col[c] + r, lo, hi); });
      V::storepart(y + r, v, lo, hi);
    };
    const i64 first = off > 0 ? 1 : 0, last = end / W;  // whole vectors [first, last)
    if (off > 0) part(0, static_cast<int>(off), end < W ? static_cast<int>(end) : W);
    auto whole = [&](i64 r) {
      V::storeu(y + r, step(V::loadu(y + r), [&](int c) { return load<kAligned>(col[c] + r); }));
    };
    i64 r = first * W - off;
    const i64 stop = last * W - off;
    for (; r < stop; r += W) whole(r);
    if (end % W != 0 && last >= first) part(last, 0, static_cast<int>(end % W));
  }

  template <int C>
  static void run_n(int cnt, i64 m, i64 off, bool aligned, const R *a, i64 ldr, const R *x, S al,
                    R *y) {
    if constexpr (C > 0) {
      if (cnt != C) return run_n<C - 1>(cnt, m, off, aligned, a, ldr, x, al, y);
      const R *col[C];
      S t[C];
      for (int c = 0; c < C; ++c) col[c] = a + c * ldr, t[c] = mul(al, read(x + c * kE));
      if (aligned)
        pass_n<C, true>(m, off, col, t, y);
      else
        pass_n<C, false>(m, 0, col, t, y);
    }
  }

  static void gemv_n(int m, int n, const R *alpha, const R *a, int lda, const R *x, R *y) {
    if (m <= 0) return;
    const i64 ldr = i64{lda} * kE;
    const i64 off = rotation_of(a);
    const bool aligned = off >= 0 && (ldr * sizeof(R)) % V::kBytes == 0;
    const S al = read(alpha);
    for (int j = 0; j < n; j += kGroupN) {
      const int cnt = n - j < kGroupN ? n - j : kGroupN;
      run_n<kGroupN>(cnt, m, off, aligned, a + j * ldr, ldr, x + i64{j} * kE, al, y);
    }
  }

  // ---- y += alpha op(A)^T x -----------------------------------------------------

  // The parts of C dot products: for real data part[c][0] is the sum; for
  // complex data the even and odd lane sums of a x (0, 1) and a swap(x) (2, 3).
  //
  // Aligned loads read the column from `off` reals before its start: real r
  // sits at position p = r + off, in vector p / W and lane p mod W, and vector b
  // goes to accumulator (b - first) mod U, `first` being the first whole
  // vector. A lane thus sums the reals r of one class mod U W, in increasing
  // order; which lane holds a class changes with `off`, but the accumulators
  // are added lane by lane and then reduced by halves, which are cyclic
  // rotations of the lanes and give the same sums for every `off`. The partial
  // vectors at either end hold zeros outside the column (a zero product leaves
  // a lane as it is; no lane is ever -0).
  template <int C, bool kAligned>
  static void dots(i64 m, i64 off, const R *const *col, const R *x, R (*part)[4]) {
    constexpr int U = kDotUnroll, W = V::kW;
    const i64 end = m * kE + off;
    const i64 first = off > 0 ? 1 : 0, last = end / W;  // whole vectors [first, last)
    reg acc1[C][U], acc2[C][U];
    for (int c = 0; c < C; ++c)
      for (int u = 0; u < U; ++u) acc1[c][u] = acc2[c][u] = V::zero();
    // Accumulator u += vector b of every column, lanes [lo, hi) of it (a
    // partial vector) or all of them.
    auto add = [&](int u, i64 b, int lo, int hi) {
      const i64 r = b * W - off;
      const bool whole = lo == 0 && hi == W;
      const reg xv = whole ? V::loadu(x + r) : V::loadpart(x + r, lo, hi);
      const reg xs = kC ? V::swap(xv) : xv;
      for (int c = 0; c < C; ++c) {
        const reg av = whole ? load<kAligned>(col[c] + r) : V::loadpart(col[c] + r, lo, hi);
        acc1[c][u] = V::madd(av, xv, acc1[c][u]);
        if constexpr (kC) acc2[c][u] = V::madd(av, xs, acc2[c][u]);
      }
    };
    // The same with u known only at run time.
    auto add_at = [&](i64 b, int lo, int hi) {
      const int u = static_cast<int>((b - first + U) % U);
      for (int k = 0; k < U; ++k)
        if (k == u) add(k, b, lo, hi);
    };
    if (off > 0) add_at(0, static_cast<int>(off), end < W ? static_cast<int>(end) : W);
    i64 b = first;
    for (; b + U <= last; b += U)
      for (int u = 0; u < U; ++u) add(u, b + u, 0, W);
    for (; b < last; ++b) add_at(b, 0, W);
    if (end % W != 0 && last >= first) add_at(last, 0, static_cast<int>(end % W));
    for (int c = 0; c < C; ++c) {
      reg s1 = acc1[c][0], s2 = acc2[c][0];
      for (int u = 1; u < U; ++u) s1 = V::add(s1, acc1[c][u]), s2 = V::add(s2, acc2[c][u]);
      R e, o;
      V::pairsum(s1, e, o);
      if constexpr (kC) {
        part[c][0] = e, part[c][1] = o;
        V::pairsum(s2, e, o);
        part[c][2] = e, part[c][3] = o;
      } else {
        part[c][0] = e + o;
      }
    }
  }

  template <int C>
  static void run_t(int cnt, i64 m, i64 off, bool aligned, const R *a, i64 ldr, const R *x, S al,
                    bool conj, R *y) {
    if constexpr (C > 0) {
      if (cnt != C) return run_t<C - 1>(cnt, m, off, aligned, a, ldr, x, al, conj, y);
      const R *col[C];
      for (int c = 0; c < C; ++c) col[c] = a + c * ldr;
      R part[C][4];
      if (aligned)
        dots<C, true>(m, off, col, x, part);
      else
        dots<C, false>(m, 0, col, x, part);
      for (int c = 0; c < C; ++c) {
        S d{part[c][0], R(0)};
        if constexpr (kC)
          d = conj ? S{part[c][0] + part[c][1], part[c][2] - part[c][3]}
                   : S{part[c][0] - part[c][1], part[c][2] + part[c][3]};
        update(y + c * kE, al, d);
      }
    }
  }

  static void gemv_t(int m, int n, const R *alpha, const R *a, int lda, const R *x, R *y,
                     bool conj) {
    if (m <= 0) return;
    const i64 ldr = i64{lda} * kE;
    const i64 off = rotation_of(a);
    const bool aligned = off >= 0 && (ldr * sizeof(R)) % V::kBytes == 0;
    const S al = read(alpha);
    for (int j = 0; j < n; j += kGroupT) {
      const int cnt = n - j < kGroupT ? n - j : kGroupT;
      run_t<kGroupT>(cnt, m, off, aligned, a + j * ldr, ldr, x, al, conj, y + i64{j} * kE);
    }
  }

  // ---- vector updates -------------------------------------------------------------

  static void axpy(int n, const R *alpha, const R *x, R *y) {
    const i64 len = i64{n} * kE;
    const S t = read(alpha);
    const reg tre = bre(t), tim = bim(t);
    i64 i = 0;
    for (; i + 2 * V::kW <= len; i += 2 * V::kW) {
      const reg y0 = vupdate(V::loadu(y + i), tre, tim, V::loadu(x + i));
      const reg y1 = vupdate(V::loadu(y + i + V::kW), tre, tim, V::loadu(x + i + V::kW));
      V::storeu(y + i, y0);
      V::storeu(y + i + V::kW, y1);
    }
    for (; i + V::kW <= len; i += V::kW)
      V::storeu(y + i, vupdate(V::loadu(y + i), tre, tim, V::loadu(x + i)));
    for (; i < len; i += kE) update(y + i, t, x + i);
  }

  static void axpy2(int n, const R *a1, const R *x1, const R *a2, const R *x2, R *y) {
    const i64 len = i64{n} * kE;
    const S t1 = read(a1), t2 = read(a2);
    const reg re1 = bre(t1), im1 = bim(t1), re2 = bre(t2), im2 = bim(t2);
    i64 i = 0;
    for (; i + V::kW <= len; i += V::kW) {
      reg acc = vupdate(V::loadu(y + i), re1, im1, V::loadu(x1 + i));
      V::storeu(y + i, vupdate(acc, re2, im2, V::loadu(x2 + i)));
    }
    for (; i < len; i += kE) {
      update(y + i, t1, x1 + i);
      update(y + i, t2, x2 + i);
    }
  }

  static void axpy_dot(int n, const R *alpha, const R *a, const R *x, R *y, bool conj, R *dot) {
    const i64 len = i64{n} * kE;
    const S t = read(alpha);
    const reg tre = bre(t), tim = bim(t);
    reg acc1 = V::zero(), acc2 = V::zero();
    i64 i = 0;
    for (; i + V::kW <= len; i += V::kW) {
      const reg av = V::loadu(a + i), xv = V::loadu(x + i);
      V::storeu(y + i, vupdate(V::loadu(y + i), tre, tim, av));
      acc1 = V::madd(av, xv, acc1);
      if constexpr (kC) acc2 = V::madd(av, V::swap(xv), acc2);
    }
    R p[4];
    V::pairsum(acc1, p[0], p[1]);
    V::pairsum(acc2, p[2], p[3]);
    if constexpr (!kC) p[0] += p[1], p[1] = R(0);
    for (; i < len; i += kE) {
      update(y + i, t, a + i);
      p[0] += a[i] * x[i];
      if constexpr (kC) {
        p[1] += a[i + 1] * x[i + 1];
        p[2] += a[i] * x[i + 1];
        p[3] += a[i + 1] * x[i];
      }
    }
    dot[0] = p[0];
    if constexpr (kC) {
      if (conj) {
        dot[0] = p[0] + p[1];
        dot[1] = p[2] - p[3];
      } else {
        dot[0] = p[0] - p[1];
        dot[1] = p[2] + p[3];
      }
    }
  }

  // ---- y += alpha A x and z += alpha op(A)^T u together ---------------------------

  // Real data go by groups of C columns, each vector of the rows read once
  // for its C updates of y and its C dot products with u; complex data take
  // the two products in turn. A dot product sums row r in lane r mod W, the
  // lanes added in one fixed order: the result depends on m and n only.
  template <int C>
  static void pass_nt(i64 m, const R *const *col, const R *t, const R *u, R *y, R *dots) {
    constexpr int W = V::kW;
    reg tv[C], acc[C];
    for (int c = 0; c < C; ++c) tv[c] = V::set1(t[c]), acc[c] = V::zero();
    i64 r = 0;
    for (; r + W <= m; r += W) {
      const reg uv = V::loadu(u + r);
      reg yv = V::loadu(y + r);
      for (int c = 0; c < C; ++c) {
        const reg av = in_register(V::loadu(col[c] + r));
        yv = V::madd(tv[c], av, yv);
        acc[c] = V::madd(av, uv, acc[c]);
      }
      V::storeu(y + r, yv);
    }
    if (r < m) {
      const int hi = static_cast<int>(m - r);
      const reg uv = V::loadpart(u + r, 0, hi);
      reg yv = V::loadpart(y + r, 0, hi);
      for (int c = 0; c < C; ++c) {
        const reg av = V::loadpart(col[c] + r, 0, hi);
        yv = V::madd(tv[c], av, yv);
        acc[c] = V::madd(av, uv, acc[c]);
      }
      V::storepart(y + r, yv, 0, hi);
    }
    for (int c = 0; c < C; ++c) {
      R e, o;
      V::pairsum(acc[c], e, o);
      dots[c] = e + o;
    }
  }

  static void gemv_nt(int m, int n, const R *alpha, const R *a, int lda, const R *x, R *y,
                      const R *u, R *z, bool conj) {
    if constexpr (kC) {
      gemv_n(m, n, alpha, a, lda, x, y);
      gemv_t(m, n, alpha, a, lda, u, z, conj);
    } else {
      (void)conj;
      if (m <= 0) return;
      const R al = *alpha;
      const i64 ldr = lda;
      constexpr int C = kGroupT;
      int j = 0;
      for (; j + C <= n; j += C) {
        const R *col[C];
        R t[C], d[C];
        for (int c = 0; c < C; ++c) col[c] = a + (j + c) * ldr, t[c] = al * x[j + c];
        pass_nt<C>(m, col, t, u, y, d);
        for (int c = 0; c < C; ++c) z[j + c] = V::madd1(al, d[c], z[j + c]);
      }
      for (; j < n; ++j) {
        const R *col[1] = {a + j * ldr};
        const R t[1] = {al * x[j]};
        R d[1];
        pass_nt<1>(m, col, t, u, y, d);
        z[j] = V::madd1(al, d[0], z[j]);
      }
    }
  }
};

const float *re(const float *p) {
  return p;
}
float *re(float *p) {
  return p;
}
const double *re(const double *p) {
  return p;
}
double *re(double *p) {
  return p;
}
const float *re(const c8 *p) {
  return reinterpret_cast<const float *>(p);
}
float *re(c8 *p) {
  return reinterpret_cast<float *>(p);
}
const double *re(const c16 *p) {
  return reinterpret_cast<const double *>(p);
}
double *re(c16 *p) {
  return reinterpret_cast<double *>(p);
}

}  // namespace

#define ORB_LEVEL2_VECTOR(T, K)                                                                \
  void gemv_n(int m, int n, T alpha, const T *a, int lda, const T *x, T *y) {                  \
    K::gemv_n(m, n, re(&alpha), re(a), lda, re(x), re(y));                                     \
  }                                                                                            \
  void gemv_t(int m, int n, T alpha, const T *a, int lda, const T *x, T *y, bool conj) {       \
    K::gemv_t(m, n, re(&alpha), re(a), lda, re(x), re(y), conj);                               \
  }                                                                                            \
  void axpy(int n, T alpha, const T *x, T *y) {                                                \
    K::axpy(n, re(&alpha), re(x), re(y));                                                      \
  }                                                                                            \
  void axpy2(int n, T a1, const T *x1, T a2, const T *x2, T *y) {                              \
    K::axpy2(n, re(&a1), re(x1), re(&a2), re(x2), re(y));                                      \
  }                                                                                            \
  void axpy_dot(int n, T alpha, const T *a, const T *x, T *y, bool conj, T *dot) {             \
    K::axpy_dot(n, re(&alpha), re(a), re(x), re(y), conj, re(dot));                            \
  }                                                                                            \
  void gemv_nt(int m, int n, T alpha, const T *a, int lda, const T *x, T *y, const T *u, T *z, \
               bool conj) {                                                                    \
    K::gemv_nt(m, n, re(&alpha), re(a), lda, re(x), re(y), re(u), re(z), conj);                \
  }

namespace {
using RealF = Kernels<VF, false>;
using RealD = Kernels<VD, false>;
using ComplexF = Kernels<VF, true>;
using ComplexD = Kernels<VD, true>;
}  // namespace

ORB_LEVEL2_VECTOR(float, RealF)
ORB_LEVEL2_VECTOR(double, RealD)
ORB_LEVEL2_VECTOR(c8, ComplexF)
ORB_LEVEL2_VECTOR(c16, ComplexD)

#undef ORB_LEVEL2_VECTOR

}  // namespace orb::kernel::level2::ORB_L2_LEVEL
