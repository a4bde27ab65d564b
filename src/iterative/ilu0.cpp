// ILU0: incomplete LU on the sparsity pattern of the matrix.
#include <cmath>
#include <cstdint>

#include "iterative/ilu.h"
#include "iterative/params.h"
#include "iterative/rci_log.h"
#include "service/memory.h"

namespace orb::iterative {
namespace {

enum Status : int {
  kOk = 0,
  kNoDiagonal = -101,
  kZeroPivot = -102,
  kSmallPivot = -103,
  kNoMemory = -104,
  kBadSize = -105,
  kUnsortedColumns = -106,
  kWorking = -99999,
};

constexpr std::int32_t kWorkAlignment = 256;

// The pivot test: a zero (or NaN) pivot, then one below |dpar(31)| in
// magnitude, is replaced by dpar(32) when ipar(31) allows it.
template <class T>
int test_pivot(T &d, bool replace, T small, T value) {
  if (d == T(0) || std::isnan(d)) {
    if (!replace) return kZeroPivot;
    d = value;
  }
  if (std::fabs(d) < small) {
    if (!replace) return kSmallPivot;
    d = value;
  }
  return kOk;
}

template <class T>
int factor(int n, const T *a, const int *ia, const int *ja, T *lu, const int *ipar, const T *dpar) {
  // The position (0-based) of each row's diagonal.
  mem::Buffer<int> diag(n, kWorkAlignment);
  if (!diag) return kNoMemory;

  for (int i = 0; i < n; ++i) {
    const int begin = ia[i] - 1, end = ia[i + 1] - 1;
    if (end - 1 < begin || begin < 0) return kNoDiagonal;
    int previous = 0;
    int d = -1;
    for (int p = begin; p < end; ++p) {
      const int c = ja[p];
      if (c <= previous) return kUnsortedColumns;
      previous = c;
      lu[p] = a[p];
      if (c == i + 1) d = p;
    }
    if (d < 0) return kNoDiagonal;
    diag[i] = d;
  }

  const bool replace = ipar[ip::kReplacePivot] != 0;
  const T small = std::fabs(dpar[dp::kPivotThreshold]);
  const T value = dpar[dp::kPivotValue];
  if (int s = test_pivot(lu[diag[0]], replace, small, value); s != kOk) return s;

  for (int i = 1; i < n; ++i) {
    const int end = ia[i + 1] - 1;
    for (int p = ia[i] - 1; p < diag[i]; ++p) {
      const int k = ja[p] - 1;
      const T m = lu[p] / lu[diag[k]];
      lu[p] = m;
      // Row i minus m times U(k, :), on row i's own pattern (both rows sorted).
      int q = diag[k] + 1;
      const int qend = ia[k + 1] - 1;
      int r = p + 1;
      while (q < qend && r < end) {
        if (ja[q] < ja[r]) {
          ++q;
        } else if (ja[q] > ja[r]) {
          ++r;
        } else {
          lu[r] -= m * lu[q];
          ++q;
          ++r;
        }
      }
    }
    if (int s = test_pivot(lu[diag[i]], replace, small, value); s != kOk) return s;
  }
  return kOk;
}

}  // namespace

template <class T>
void csrilu0(const int *n, const T *a, const int *ia, const int *ja, T *bilu0, const int *ipar,
             const T *dpar, int *ierr) {
  int status = kBadSize;
  if (*n >= 1) {
    *ierr = kWorking;
    status = factor(*n, a, ia, ja, bilu0, ipar, dpar);
  }
  *ierr = status;
  if (status < 0 && ipar[ip::kReportErrors] != 0)
    log::write(log::Source::kIlu0, log::Kind::kError, status, ipar[ip::kOutput]);
}

template void csrilu0(const int *, const double *, const int *, const int *, double *, const int *,
                      const double *, int *);

}  // namespace orb::iterative
