// ILUT: threshold incomplete LU with a dual dropping rule. Row by row: the
// row of A is scattered into a full-length work row, eliminated against the
// rows above in increasing column order, and what survives the threshold and
// the fill cap is stored as L multipliers, the diagonal, then U entries.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "iterative/ilu.h"
#include "iterative/params.h"
#include "iterative/rci_log.h"
#include "service/memory.h"

namespace orb::iterative {
namespace {

enum Status : int {
  kOk = 0,
  kFillTooLarge = 101,
  kNegativeTolerance = 102,
  kToleranceAboveFactor = 103,
  kZeroFactor = 104,
  kZeroRow = -101,
  kSmallPivot = -102,
  kBadRows = -103,
  kNoMemory = -104,
  kNegativeFill = -105,
  kBadSize = -106,
  kBadColumns = -107,
};

constexpr std::int32_t kWorkAlignment = 256;

// Rearranges cols[0..count) so that the `keep` entries of largest |w[col]|
// come first: a partial quicksort that only follows the side holding the
// cut, and stops once exactly `keep` entries lie on the large side.
template <class T>
void quick_split(int *cols, int count, int keep, const T *w) {
  if (keep <= 0 || keep >= count) return;
  const int cut = keep - 1;
  int first = 0, last = count - 1;
  for (;;) {
    int mid = first;
    const T key = std::fabs(w[cols[mid]]);
    for (int j = first + 1; j <= last; ++j)
      if (std::fabs(w[cols[j]]) > key) std::swap(cols[++mid], cols[j]);
    std::swap(cols[mid], cols[first]);
    if (mid == cut) return;
    if (mid > cut)
      last = mid - 1;
    else
      first = mid + 1;
  }
}

// A binary min-heap of column numbers in heap[0..size).
void heap_push(int *heap, int &size, int col) {
  int i = size++;
  while (i > 0) {
    const int parent = (i - 1) / 2;
    if (heap[parent] <= col) break;
    heap[i] = heap[parent];
    i = parent;
  }
  heap[i] = col;
}

int heap_pop(int *heap, int &size) {
  const int top = heap[0];
  const int last = heap[--size];
  int i = 0;
  for (;;) {
    int child = 2 * i + 1;
    if (child >= size) break;
    if (child + 1 < size && heap[child + 1] < heap[child]) ++child;
    if (last <= heap[child]) break;
    heap[i] = heap[child];
    i = child;
  }
  if (size > 0) heap[i] = last;
  return top;
}

struct Options {
  int maxfil;
  double tol;
  bool replace;   // ipar(31) nonzero
  double factor;  // dpar(31)
};

template <class T>
int factor(int n, const T *a, const int *ia, const int *ja, T *lu, int *ilu, int *jlu,
           const Options &opt) {
  mem::Buffer<int> mark(n, kWorkAlignment);   // row that last touched a column
  mem::Buffer<int> list(n, kWorkAlignment);   // L heap and kept L | free | U list
  mem::Buffer<T> w(n, kWorkAlignment);        // the work row, by column
  mem::Buffer<int> udiag(n, kWorkAlignment);  // position of each stored diagonal
  if (!mark || !list || !w || !udiag) return kNoMemory;
  std::fill(mark.get(), mark.get() + n, -1);

  int *cols = list.get();
  int next = 0;  // next free position (0-based) in lu / jlu
  ilu[0] = 1;
  for (int i = 0; i < n; ++i) {
    // Scatter row i; the diagonal is always part of the work row.
    const int begin = ia[i] - 1, end = ia[i + 1] - 1;
    int heap_size = 0, kept = 0, nu = 0;
    int *ulist = cols + n;  // U columns grow downwards from the top
    mark[i] = i;
    w[i] = T(0);
    T squares = T(0);
    for (int p = begin; p < end; ++p) {
      const int c = ja[p] - 1;
      const T v = a[p];
      squares += v * v;
      if (mark[c] == i) {
        w[c] += v;
        continue;
      }
      mark[c] = i;
      w[c] = v;
      if (c < i)
        heap_push(cols, heap_size, c);
      else
        *--ulist = c, ++nu;
    }
    const T scale = std::sqrt(squares / T(end - begin));
    if (scale == T(0)) return kZeroRow;
    const T t = T(opt.tol) * scale;

    // Eliminate in increasing column order; fill below the diagonal joins the
    // heap. Kept multipliers sit right after the heap.
    while (heap_size > 0) {
      const int k = heap_pop(cols, heap_size);
      const T m = w[k] / lu[udiag[k]];
      if (!(std::fabs(m) >= t)) {
        if (kept > 0) cols[heap_size] = cols[heap_size + kept];
        continue;
      }
      w[k] = m;
      cols[heap_size] = k;
      ++kept;
      for (int q = udiag[k] + 1; q < ilu[k + 1] - 1; ++q) {
        const int j = jlu[q] - 1;
        const T update = m * lu[q];
        if (mark[j] == i) {
          w[j] -= update;
          continue;
        }
        mark[j] = i;
        w[j] = -update;
        if (j < i) {
          // Make room at the heap's end by moving the first kept entry last.
          if (kept > 0) cols[heap_size + kept] = cols[heap_size];
          heap_push(cols, heap_size, j);
        } else {
          *--ulist = j;
          ++nu;
        }
      }
    }
    int *lkept = cols + heap_size;  // heap_size is 0 here

    // U entries at or below the threshold go; then at most maxfil of each part.
    int nkeep = 0;
    for (int q = 0; q < nu; ++q)
      if (std::fabs(w[ulist[q]]) > t) ulist[nkeep++] = ulist[q];
    nu = nkeep;
    quick_split(lkept, kept, opt.maxfil, w.get());
    quick_split(ulist, nu, opt.maxfil, w.get());
    kept = std::min(kept, opt.maxfil);
    nu = std::min(nu, opt.maxfil);
    std::sort(lkept, lkept + kept);
    std::sort(ulist, ulist + nu);

    for (int q = 0; q < kept; ++q) {
      lu[next] = w[lkept[q]];
      jlu[next++] = lkept[q] + 1;
    }
    T d = w[i];
    if (std::fabs(d) <= t) {
      if (!opt.replace) return kSmallPivot;
      d = T(opt.factor) * scale;
    }
    udiag[i] = next;
    lu[next] = d;
    jlu[next++] = i + 1;
    for (int q = 0; q < nu; ++q) {
      lu[next] = w[ulist[q]];
      jlu[next++] = ulist[q] + 1;
    }
    ilu[i + 1] = next + 1;
  }
  return kOk;
}

}  // namespace

template <class T>
void csrilut(const int *n, const T *a, const int *ia, const int *ja, T *bilut, int *ibilut,
             int *jbilut, const T *tol, const int *maxfil, const int *ipar, const T *dpar,
             int *ierr) {
  const int destination = ipar[ip::kOutput];
  auto fail = [&](int status) {
    *ierr = status;
    if (ipar[ip::kReportErrors] != 0)
      log::write(log::Source::kIlut, log::Kind::kError, status, destination);
  };
  // A doubtful input: ipar(7) > 0 warns and goes on, 0 stops silently, < 0
  // warns and stops. The last correction made is the final status.
  const int doubt_mode = ipar[ip::kReportWarnings];
  int warning = kOk;
  auto doubt = [&](int status) {
    if (doubt_mode != 0) log::write(log::Source::kIlut, log::Kind::kWarning, status, destination);
    if (doubt_mode > 0) {
      warning = status;
      return true;
    }
    *ierr = status;
    return false;
  };

  const int nn = *n;
  Options opt{*maxfil, *tol, ipar[ip::kReplacePivot] != 0, dpar[dp::kPivotThreshold]};
  if (opt.maxfil < 0) return fail(kNegativeFill);
  if (nn < 1) return fail(kBadSize);
  if (opt.maxfil >= nn) {
    if (!doubt(kFillTooLarge)) return;
    opt.maxfil = nn - 1;
  }
  if (opt.tol < 0 || std::isnan(opt.tol)) {
    if (!doubt(kNegativeTolerance)) return;
    opt.tol = -opt.tol;
  }
  if (std::fabs(opt.factor) < std::fabs(opt.tol) && !doubt(kToleranceAboveFactor)) return;
  if (ipar[ip::kReplacePivot] == 1 && opt.factor == 0 && !doubt(kZeroFactor)) return;

  if (ia[0] < 1) return fail(kBadRows);
  for (int i = 0; i < nn; ++i) {
    if (ia[i] >= ia[i + 1]) return fail(kBadRows);
    for (int p = ia[i] - 1; p < ia[i + 1] - 1; ++p)
      if (ja[p] < 1 || ja[p] > nn) return fail(kBadColumns);
  }

  const int status = factor(nn, a, ia, ja, bilut, ibilut, jbilut, opt);
  if (status != kOk) return fail(status);
  *ierr = warning;
}

template void csrilut(const int *, const double *, const int *, const int *, double *, int *, int *,
                      const double *, const int *, const int *, const double *, int *);

}  // namespace orb::iterative
