// The blocked GEMM driver shared by every precision and processor level:
// op(B) is packed panel by panel (kc by nc), op(A) block by block (mc by kc),
// and a micro-kernel updates C tile by tile. Only the micro-kernel and the
// block sizes differ between processors.
#pragma once

#include <algorithm>
#include <complex>
#include <cstdint>

#include "blas/kernel/gemm.h"
#include "common/scalar.h"

namespace orb::blas {

inline int round_up(int x, int to) {
  return (x + to - 1) / to * to;
}

// C := beta C over an m-by-n block; beta = 0 writes zeros without reading C.
template <class T>
void scale_c(int m, int n, T beta, T *c, int ldc) {
  if (beta == T(1)) return;
  for (int j = 0; j < n; ++j) {
    T *cj = c + std::int64_t{j} * ldc;
    if (beta == T(0))
      std::fill(cj, cj + m, T(0));
    else
      for (int i = 0; i < m; ++i) cj[i] *= beta;
  }
}

// A whole sliver of width W (a kernel's mr or nr) over kb steps, element
// (p, w) at dst[p * W + w], from runs of W contiguous elements ld apart
// (copy) or from W runs of kb contiguous elements ld apart (gather). The
// width is a constant here, so the copies unroll; every kernel tile width
// has one.
template <int W, bool Conj, class T>
void copy_runs(const T *src, std::int64_t ld, int kb, T *dst) {
  for (int p = 0; p < kb; ++p, src += ld, dst += W)
    for (int w = 0; w < W; ++w) dst[w] = conj_if(src[w], Conj);
}
template <int W, bool Conj, class T>
void gather_runs(const T *src, std::int64_t ld, int kb, T *dst) {
  for (int p0 = 0; p0 < kb; p0 += 8) {
    const int pn = std::min(8, kb - p0);
    for (int w = 0; w < W; ++w) {
      const T *run = src + w * ld + p0;
      for (int p = 0; p < pn; ++p) dst[(p0 + p) * W + w] = conj_if(run[p], Conj);
    }
  }
}
template <int W, bool Conj, class T>
void whole_sliver(bool gather, const T *src, std::int64_t ld, int kb, T *dst) {
  if (gather)
    gather_runs<W, Conj>(src, ld, kb, dst);
  else
    copy_runs<W, Conj>(src, ld, kb, dst);
}
template <class T>
bool pack_whole_sliver(int width, bool gather, bool conj, const T *src, std::int64_t ld, int kb,
                       T *dst) {
#define ORB_WIDTH(W)                                    \
  case W:                                               \
    if (conj)                                           \
      whole_sliver<W, true>(gather, src, ld, kb, dst);  \
    else                                                \
      whole_sliver<W, false>(gather, src, ld, kb, dst); \
    return true;
  switch (width) {
    ORB_WIDTH(1)
    ORB_WIDTH(2)
    ORB_WIDTH(3)
    ORB_WIDTH(4)
    ORB_WIDTH(6)
    ORB_WIDTH(7)
    ORB_WIDTH(8)
    ORB_WIDTH(12)
    ORB_WIDTH(16)
    ORB_WIDTH(32)
    default:
      return false;
  }
#undef ORB_WIDTH
}

// Packs rows [i0, i0 + mb) and columns [p0, p0 + kb) of op(A) into slivers of
// mr rows, zero-padded to a whole sliver.
template <class T>
void pack_a(Op ta, const T *a, int lda, int i0, int p0, int mb, int kb, int mr, T *dst) {
  const bool conj = ta == Op::kConjTrans;
  for (int is = 0; is < mb; is += mr) {
    const int rows = std::min(mr, mb - is);
    if (rows == mr) {
      const T *src = ta == Op::kNone ? a + (i0 + is) + std::int64_t{p0} * lda
                                     : a + p0 + std::int64_t{i0 + is} * lda;
      if (pack_whole_sliver(mr, ta != Op::kNone, conj, src, lda, kb, dst)) {
        dst += std::int64_t{mr} * kb;
        continue;
      }
    }
    if (ta == Op::kNone) {
      const T *src = a + (i0 + is) + std::int64_t{p0} * lda;
      for (int p = 0; p < kb; ++p, src += lda, dst += mr) {
        int i = 0;
        for (; i < rows; ++i) dst[i] = src[i];
        for (; i < mr; ++i) dst[i] = T(0);
      }
    } else {
      for (int i = 0; i < rows; ++i) {
        const T *src = a + p0 + std::int64_t{i0 + is + i} * lda;
        for (int p = 0; p < kb; ++p) dst[p * mr + i] = conj_if(src[p], conj);
      }
      for (int i = rows; i < mr; ++i)
        for (int p = 0; p < kb; ++p) dst[p * mr + i] = T(0);
      dst += std::int64_t{mr} * kb;
    }
  }
}

// Packs rows [p0, p0 + kb) and columns [j0, j0 + nb) of op(B) into slivers of
// nr columns, zero-padded to a whole sliver.
template <class T>
void pack_b(Op tb, const T *b, int ldb, int p0, int j0, int kb, int nb, int nr, T *dst) {
  const bool conj = tb == Op::kConjTrans;
  for (int js = 0; js < nb; js += nr) {
    const int cols = std::min(nr, nb - js);
    if (cols == nr) {
      const T *src = tb == Op::kNone ? b + p0 + std::int64_t{j0 + js} * ldb
                                     : b + (j0 + js) + std::int64_t{p0} * ldb;
      if (pack_whole_sliver(nr, tb == Op::kNone, conj, src, ldb, kb, dst)) {
        dst += std::int64_t{nr} * kb;
        continue;
      }
    }
    if (tb == Op::kNone) {
      for (int j = 0; j < cols; ++j) {
        const T *src = b + p0 + std::int64_t{j0 + js + j} * ldb;
        for (int p = 0; p < kb; ++p) dst[p * nr + j] = src[p];
      }
      for (int j = cols; j < nr; ++j)
        for (int p = 0; p < kb; ++p) dst[p * nr + j] = T(0);
      dst += std::int64_t{nr} * kb;
    } else {
      const T *src = b + (j0 + js) + std::int64_t{p0} * ldb;
      for (int p = 0; p < kb; ++p, src += ldb, dst += nr) {
        int j = 0;
        for (; j < cols; ++j) dst[j] = conj_if(src[j], conj);
        for (; j < nr; ++j) dst[j] = T(0);
      }
    }
  }
}

// Which elements of C a product updates. Every one for a GEMM; for the
// rank-k updates, those of one triangle of a larger matrix: element (i, j)
// of the block is inside when i - j <= diag (upper) or i - j >= diag (lower).
struct WholeBlock {
  static constexpr bool kWhole = true;
};
struct TriangleOf {
  static constexpr bool kWhole = false;
  bool upper;
  int diag;

  bool inside(int i, int j) const { return upper ? i - j <= diag : i - j >= diag; }
  // Rows [i0, i0 + rows) by columns [j0, j0 + cols): all inside, or none.
  bool all(int i0, int rows, int j0, int cols) const {
    return upper ? inside(i0 + rows - 1, j0) : inside(i0, j0 + cols - 1);
  }
  bool none(int i0, int rows, int j0, int cols) const {
    return upper ? !inside(i0, j0 + cols - 1) : !inside(i0 + rows - 1, j0);
  }
};

// C := beta C over the elements of an m-by-n block the mask keeps; beta = 0
// writes zeros without reading C.
template <class T, class Mask>
void scale_c(int m, int n, T beta, T *c, int ldc, const Mask &mask) {
  if constexpr (Mask::kWhole) {
    scale_c(m, n, beta, c, ldc);
  } else {
    if (beta == T(1)) return;
    for (int j = 0; j < n; ++j) {
      T *cj = c + std::int64_t{j} * ldc;
      for (int i = 0; i < m; ++i)
        if (mask.inside(i, j)) cj[i] = beta == T(0) ? T(0) : beta * cj[i];
    }
  }
}

// The most elements of C a micro-kernel's tile may hold (mr nr): the driver
// forms the tiles that the edges of C cut in a local tile of this size.
constexpr int kMaxTile = 32 * 12;
template <class T>
constexpr bool fits_local_tile(const kernel::GemmShape<T> &s) {
  return s.mr * s.nr <= kMaxTile;
}

// Runs the micro-kernel over the tiles of an mb-by-nb block of C from packed
// A (mb rows) and packed B (nb columns) of inner size kb. The block's element
// (0, 0) is element (i0, j0) of the mask's matrix. A tile the block's edge or
// the mask cuts is formed in a local tile and added element by element, with
// the roundings of a whole tile, so no result depends on where tiles fall.
template <class T, class Mask = WholeBlock>
void macro_kernel(const kernel::GemmShape<T> &s, int mb, int nb, int kb, T alpha, const T *pa,
                  const T *pb, T beta, T *c, int ldc, const Mask &mask = {}, int i0 = 0,
                  int j0 = 0) {
  alignas(64) T tile[kMaxTile];
  for (int jr = 0; jr < nb; jr += s.nr) {
    const int cols = std::min(s.nr, nb - jr);
    const T *b = pb + std::int64_t{jr} * kb;
    for (int ir = 0; ir < mb; ir += s.mr) {
      const int rows = std::min(s.mr, mb - ir);
      bool whole = true;
      if constexpr (!Mask::kWhole) {
        if (mask.none(i0 + ir, rows, j0 + jr, cols)) continue;
        whole = mask.all(i0 + ir, rows, j0 + jr, cols);
      }
      const T *a = pa + std::int64_t{ir} * kb;
      T *cij = c + ir + std::int64_t{jr} * ldc;
      if (whole && rows == s.mr && cols == s.nr) {
        s.ukr(kb, a, b, cij, ldc, alpha, beta);
        continue;
      }
      s.ukr(kb, a, b, tile, s.mr, alpha, T(0));
      for (int j = 0; j < cols; ++j) {
        T *cj = cij + std::int64_t{j} * ldc;
        const T *tj = tile + j * s.mr;
        for (int i = 0; i < rows; ++i) {
          if constexpr (!Mask::kWhole) {
            if (!mask.inside(i0 + ir + i, j0 + jr + j)) continue;
          }
          cj[i] = beta == T(0) ? tj[i] : tj[i] + beta * cj[i];
        }
      }
    }
  }
}

// Elements of the packing buffers a shape needs.
template <class T>
std::int64_t packed_a_size(const kernel::GemmShape<T> &s) {
  return std::int64_t{round_up(s.mc, s.mr)} * s.kc;
}
template <class T>
std::int64_t packed_b_size(const kernel::GemmShape<T> &s) {
  return std::int64_t{round_up(s.nc, s.nr)} * s.kc;
}

// C := alpha op(A) op(B) + beta C with the caller's packing buffers, over
// the elements the mask keeps; blocks of rows it wholly leaves out are
// neither packed nor multiplied.
template <class T, class Mask = WholeBlock>
void gemm_packed(const kernel::GemmShape<T> &s, Op ta, Op tb, int m, int n, int k, T alpha,
                 const T *a, int lda, const T *b, int ldb, T beta, T *c, int ldc, T *abuf, T *bbuf,
                 const Mask &mask = {}) {
  if (m <= 0 || n <= 0) return;
  if (k <= 0 || alpha == T(0)) {
    scale_c(m, n, beta, c, ldc, mask);
    return;
  }
  for (int jc = 0; jc < n; jc += s.nc) {
    const int nb = std::min(s.nc, n - jc);
    for (int pc = 0; pc < k; pc += s.kc) {
      const int kb = std::min(s.kc, k - pc);
      pack_b(tb, b, ldb, pc, jc, kb, nb, s.nr, bbuf);
      const T beta_here = pc == 0 ? beta : T(1);
      for (int ic = 0; ic < m; ic += s.mc) {
        const int mb = std::min(s.mc, m - ic);
        if constexpr (!Mask::kWhole) {
          if (mask.none(ic, mb, jc, nb)) continue;
        }
        pack_a(ta, a, lda, ic, pc, mb, kb, s.mr, abuf);
        macro_kernel(s, mb, nb, kb, alpha, abuf, bbuf, beta_here, c + ic + std::int64_t{jc} * ldc,
                     ldc, mask, ic, jc);
      }
    }
  }
}

// The same product computed by a team: every member calls this from inside
// one parallel region with the same arguments but its own rows
// [row0, row0 + rows) and its own A buffer. The team packs each panel of op(B)
// into the shared buffer together (sliver by sliver), waits for it, and then
// each member multiplies its rows by it. `barrier` synchronises the team.
template <class T, class Barrier>
void gemm_packed_team(const kernel::GemmShape<T> &s, Op ta, Op tb, int m, int n, int k, T alpha,
                      const T *a, int lda, const T *b, int ldb, T beta, T *c, int ldc, int row0,
                      int rows, T *abuf, T *shared_b, int member, int team, Barrier barrier) {
  if (m <= 0 || n <= 0) return;
  if (k <= 0 || alpha == T(0)) {
    scale_c(rows, n, beta, c + row0, ldc);
    return;
  }
  for (int jc = 0; jc < n; jc += s.nc) {
    const int nb = std::min(s.nc, n - jc);
    const int slivers = (nb + s.nr - 1) / s.nr;
    for (int pc = 0; pc < k; pc += s.kc) {
      const int kb = std::min(s.kc, k - pc);
      barrier();  // nobody still reads the previous panel
      for (int sl = member; sl < slivers; sl += team) {
        const int js = sl * s.nr;
        pack_b(tb, b, ldb, pc, jc + js, kb, std::min(s.nr, nb - js), s.nr,
               shared_b + std::int64_t{js} * kb);
      }
      barrier();  // the panel is complete
      const T beta_here = pc == 0 ? beta : T(1);
      for (int ic = 0; ic < rows; ic += s.mc) {
        const int mb = std::min(s.mc, rows - ic);
        pack_a(ta, a, lda, row0 + ic, pc, mb, kb, s.mr, abuf);
        macro_kernel(s, mb, nb, kb, alpha, abuf, shared_b, beta_here,
                     c + row0 + ic + std::int64_t{jc} * ldc, ldc);
      }
    }
  }
}

}  // namespace orb::blas
