// xlasr3_omp: several sweeps of plane rotations on adjacent lines applied
// together (lasr3, rotations.h), as the QR iterations of the bidiagonal
// and tridiagonal problems produce them.
//
// Applied one sweep at a time, the rotations stream the whole matrix
// through memory once per sweep. Here the sweeps are first merged into one
// schedule: a wavefront in which each sweep advances a few rotations per
// round, as far as the sweeps before it allow (a rotation of sweep p on
// lines (i, i+1) waits until no earlier sweep has a rotation left on line i
// or i+1). Every element then sees exactly the operations of the plain
// order, in the same order, while the rotations that follow each other in
// the schedule touch a narrow band of lines. The independent dimension
// (the rows, when the rotations turn columns) is cut into blocks small
// enough that such a band stays in cache, and each block runs the whole
// schedule; the blocks are shared out over a team above the oracle's
// crossover. The result is the same to the bit for any team.
#include <omp.h>

#include <algorithm>
#include <complex>
#include <cstddef>

#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/rotation_kernel.h"
#include "lapack/rotations.h"
#include "service/memory.h"
#include "service/threading.h"

namespace orb::lapack {
namespace {

thread_local int t_last_team = 1;

// Rotations each sweep may advance per round of the wavefront.
constexpr int kAdvance = 4;

template <class R>
struct Step {
  int lo;  // the rotation turns lines lo and lo + 1
  R c, s;
};

// The lines sweep q still has to turn, given `done` of its rotations
// applied: [lo, hi], empty when lo > hi.
template <class R>
inline void pending(const Sweep<R> &q, int done, int *lo, int *hi) {
  if (done >= q.count) {
    *lo = 1;
    *hi = 0;
  } else if (q.direct == Direct::kForward) {
    *lo = q.first + done;
    *hi = q.first + q.count;
  } else {
    *lo = q.first;
    *hi = q.first + q.count - done;
  }
}

// The wavefront schedule of the k sweeps into `out` (room for all their
// rotations); returns its length. Identity rotations are left out, as the
// plain loops skip them.
template <class R>
int schedule(int k, const Sweep<R> *sweeps, int *done, Step<R> *out) {
  int remaining = 0;
  for (int p = 0; p < k; ++p) {
    done[p] = 0;
    remaining += std::max(sweeps[p].count, 0);
  }
  int len = 0;
  while (remaining > 0) {
    for (int p = 0; p < k; ++p) {
      const Sweep<R> &sw = sweeps[p];
      for (int step = 0; step < kAdvance && done[p] < sw.count; ++step) {
        const int j = sw.direct == Direct::kForward ? done[p] : sw.count - 1 - done[p];
        const int lo = sw.first + j;
        bool clear = true;
        for (int q = 0; q < p && clear; ++q) {
          int plo, phi;
          pending(sweeps[q], done[q], &plo, &phi);
          clear = plo > phi || lo + 1 < plo || lo > phi;
        }
        if (!clear) break;
        if (rotation_kernel::turns(sw.c[j], sw.s[j])) out[len++] = Step<R>{lo, sw.c[j], sw.s[j]};
        ++done[p];
        --remaining;
      }
    }
  }
  return len;
}

// The block of the independent dimension that one pass of the schedule
// takes: about 2 KB of each line for the right side (the band of columns
// in flight then stays in the first-level cache), 32 columns for the left.
template <class T>
int block_of(Side side) {
  if (side == Side::kLeft) return 32;
  return static_cast<int>(2048 / sizeof(T));
}

// The schedule applied to the independent positions [i0, i1).
template <class T>
void apply(Side side, const Step<real_t<T>> *steps, int nsteps, T *a, int lda, int i0, int i1) {
  const int nb = block_of<T>(side);
  const std::ptrdiff_t ld = lda;
  for (int b0 = i0; b0 < i1; b0 += nb) {
    const int len = std::min(nb, i1 - b0);
    if (side == Side::kRight) {
      T *base = a + b0;
      for (int t = 0; t < nsteps; ++t) {
        T *lo = base + steps[t].lo * ld;
        rotation_kernel::rotate(len, lo, lo + ld, 1, steps[t].c, steps[t].s);
      }
    } else {
      T *base = a + b0 * ld;
      for (int t = 0; t < nsteps; ++t) {
        T *lo = base + steps[t].lo;
        rotation_kernel::rotate(len, lo, lo + 1, ld, steps[t].c, steps[t].s);
      }
    }
  }
}

// The team for `indep` independent positions and `nsteps` rotations.
template <class T>
int team_for(int indep, int nsteps, int threads) {
  if (threads > 0) return std::max(1, std::min(threads, indep));
  if (omp_in_parallel()) return 1;
  const int avail = orb::threads::max_threads();
  if (avail <= 1 || indep < oracle(kCrossover, name<T>("LASR3"), indep, nsteps)) return 1;
  // Each member takes at least one block.
  const int blocks = indep / 16;
  return std::max(1, std::min(avail, blocks));
}

}  // namespace

template <class T>
void lasr3(Side side, int m, int n, int k, const Sweep<real_t<T>> *sweeps, T *a, int lda,
           int threads) {
  using R = real_t<T>;
  t_last_team = 1;
  if (m <= 0 || n <= 0 || k <= 0) return;
  int total = 0;
  for (int p = 0; p < k; ++p) total += std::max(sweeps[p].count, 0);
  if (total == 0) return;
  mem::Buffer<Step<R>> steps(total, 64);
  mem::Buffer<int> done(k, 64);
  if (!steps || !done) {
    // No memory for the schedule: the sweeps one by one.
    for (int p = 0; p < k; ++p) {
      const Sweep<R> &sw = sweeps[p];
      if (sw.count <= 0) continue;
      T *start =
          side == Side::kRight ? a + static_cast<std::ptrdiff_t>(sw.first) * lda : a + sw.first;
      lasr(side, Pivot::kVariable, sw.direct, side == Side::kRight ? m : sw.count + 1,
           side == Side::kRight ? sw.count + 1 : n, sw.c, sw.s, start, lda);
    }
    return;
  }
  const int nsteps = schedule(k, sweeps, done.get(), steps.get());
  if (nsteps == 0) return;
  const int indep = side == Side::kRight ? m : n;
  const int team = team_for<T>(indep, nsteps, threads);
  t_last_team = team;
  if (team == 1) {
    apply(side, steps.get(), nsteps, a, lda, 0, indep);
    return;
  }
  const Step<R> *plan = steps.get();
#pragma omp parallel num_threads(team)
  {
    const int tid = omp_get_thread_num(), nt = omp_get_num_threads();
    // Cut at multiples of 16 positions, so members share no cache line.
    const int units = (indep + 15) / 16;
    const int u0 = static_cast<int>(static_cast<long long>(units) * tid / nt);
    const int u1 = static_cast<int>(static_cast<long long>(units) * (tid + 1) / nt);
    apply(side, plan, nsteps, a, lda, std::min(indep, 16 * u0), std::min(indep, 16 * u1));
  }
}

int lasr3_last_team() {
  return t_last_team;
}

#define ORB_LASR3(T) \
  template void lasr3(Side, int, int, int, const Sweep<real_t<T>> *, T *, int, int);
ORB_LASR3(float)
ORB_LASR3(double)
ORB_LASR3(std::complex<float>)
ORB_LASR3(std::complex<double>)
#undef ORB_LASR3

}  // namespace orb::lapack
