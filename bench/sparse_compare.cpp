// ORB's sparse direct solver (TESSERA) against Debian's sparse direct solvers,
// one table per test matrix:
//
//   ORB       TESSERA, METIS nested dissection, 2 refinement steps
//   CHOLMOD   supernodal Cholesky (SPD matrices), METIS ordering; once more
//             with ORB's own ordering passed in (CHOLMOD_GIVEN), so that the
//             factor sizes compare for the same ordering. CHOLMOD offers no
//             iterative refinement.
//   UMFPACK   unsymmetric multifrontal LU, METIS ordering, at most 2
//             refinement steps; the symmetric indefinite, complex symmetric and
//             Hermitian matrices go to it expanded to their full pattern.
//   MUMPS     sequential build, sym = 1 (SPD), 2 (symmetric: real indefinite
//             and complex symmetric), 0 (the rest, Hermitian included), at
//             most 2 refinement steps. Debian builds it without METIS, so it
//             is asked for SCOTCH's nested dissection (ICNTL(7) = 3).
//
//   ORB out-of-core  TESSERA with iparam(60) = 2 and a maximal in-core size
//             of --ooc (0.1) times the factor's size in ORB's run before it;
//             one thread (out-of-core mode forces it). 0 leaves it out.
//
//   sparse_compare [--quick] [--reps 3] [--threads 1,2] [--matrices lap3d,helm]
//                  [--solvers orb,cholmod,umfpack,mumps] [--ooc 0.1] [--check]
//
// Threads: ORB through ORB_Set_Num_Threads; the peers thread only inside the
// BLAS, which is Debian's OpenBLAS (pthreads) for all three of them, set
// through openblas_set_num_threads. The program prints which object the
// process binds dgemm_ to: liborb exports the BLAS names as well, and the
// link order puts OpenBLAS before it so that the peers keep their own BLAS.
//
// Every run of a solver on a matrix (analysis, factorization, solve with
// refinement, release) happens in a child process of its own, forked from a
// parent that holds the matrices and never calls a solver or the BLAS. The
// child resets its peak resident size (/proc/self/clear_refs, 5) once its
// input is in place and reports the peak (VmHWM) less the resident size at
// that moment: the memory the solver itself added at its high point. Where
// the kernel refuses the reset, the child's ru_maxrss less the same base is
// used and the column is marked with '*'.
//
// The runs of a round alternate between the solvers (ORB, then each peer), and
// the round is repeated --reps times; the tables give medians, the
// factorization with its [min, max] over the rounds. The backward error is
// ||A x - b||inf / (||A||inf ||x||inf + ||b||inf) for b = A x_true, the
// worst over the rounds. Factor nonzeros: the entries stored, L with its
// diagonal for the symmetric factorizations (ORB and CHOLMOD: the dense
// supernode blocks, explicit zeros of amalgamation included, CHOLMOD's
// exact count in parentheses), L + U (diagonal once) for the unsymmetric ones;
// MUMPS reports the entries of its fronts (INFOG(29)); a '~' after the count
// marks a count that changed between rounds (SCOTCH's orderings are not
// reproducible run to run). Refinement: "ref" is the number of steps taken;
// MUMPS (CNTL(2) = 0) and UMFPACK stop early once a step stops paying.
//
// TESSERA is looked up at run time, so the program builds and runs before
// the solver is exported (its rows then say so). Built with
// SPARSE_COMPARE_PEERS_ONLY it does not use liborb at all.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <complex>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include <cholmod.h>
#include <dmumps_c.h>
#include <umfpack.h>
#include <zmumps_c.h>

#ifndef SPARSE_COMPARE_PEERS_ONLY
#include "csv_log.h"
#include "orb.h"
#endif

extern "C" void openblas_set_num_threads(int num_threads);

namespace orb::sparse {
namespace {

using c16 = std::complex<double>;

// ---------------------------------------------------------------------------
// Test matrices: compressed rows, 1-based; the symmetric and Hermitian types
// keep the upper triangle with every diagonal entry; complex values are pairs.

struct Matrix {
  std::string name, what;
  int mtype = 0;
  int n = 0;
  std::vector<int> ia, ja;
  std::vector<double> a;  // nnz values, or 2 nnz for the complex types

  bool is_complex() const {
    return mtype == 3 || mtype == 4 || mtype == -4 || mtype == 6 || mtype == 13;
  }
  bool upper_only() const {
    return mtype == 2 || mtype == -2 || mtype == 4 || mtype == -4 || mtype == 6;
  }
  bool hermitian() const { return mtype == 4 || mtype == -4; }
  long nnz() const { return ia.empty() ? 0 : ia[n] - 1; }
  c16 value(long k) const { return is_complex() ? c16(a[2 * k], a[2 * k + 1]) : c16(a[k], 0.0); }
};

const char *type_name(int mtype) {
  switch (mtype) {
    case 2:
      return "real SPD";
    case -2:
      return "real symmetric indefinite";
    case 11:
      return "real unsymmetric";
    case 6:
      return "complex symmetric";
    case -4:
      return "Hermitian indefinite";
    case 13:
      return "complex unsymmetric";
  }
  return "?";
}

// One entry of a constant-coefficient stencil.
struct Tap {
  int dx, dy, dz;
  c16 v;
};

// The stencil on an nx x ny x nz grid with zero Dirichlet boundaries, points
// numbered x fastest. Only the taps with a nonnegative offset are kept for
// the upper-triangle types.
Matrix stencil(const std::string &name, const std::string &what, int mtype, int nx, int ny, int nz,
               std::vector<Tap> taps) {
  Matrix m;
  m.name = name;
  m.what = what;
  m.mtype = mtype;
  m.n = nx * ny * nz;
  auto offset = [&](const Tap &t) { return t.dx + nx * (t.dy + ny * t.dz); };
  std::sort(taps.begin(), taps.end(),
            [&](const Tap &p, const Tap &q) { return offset(p) < offset(q); });
  const bool cplx = m.is_complex(), upper = m.upper_only();
  m.ia.reserve(m.n + 1);
  m.ia.push_back(1);
  for (int z = 0; z < nz; ++z)
    for (int y = 0; y < ny; ++y)
      for (int x = 0; x < nx; ++x) {
        const int row = x + nx * (y + ny * z);
        for (const Tap &t : taps) {
          const int xx = x + t.dx, yy = y + t.dy, zz = z + t.dz;
          if (xx < 0 || xx >= nx || yy < 0 || yy >= ny || zz < 0 || zz >= nz) continue;
          const int col = xx + nx * (yy + ny * zz);
          if (upper && col < row) continue;
          m.ja.push_back(col + 1);
          m.a.push_back(t.v.real());
          if (cplx) m.a.push_back(t.v.imag());
        }
        m.ia.push_back(static_cast<int>(m.ja.size()) + 1);
      }
  return m;
}

std::vector<Tap> seven_point(c16 centre, c16 xm, c16 xp, c16 ym, c16 yp, c16 zm, c16 zp) {
  return {{0, 0, 0, centre}, {-1, 0, 0, xm}, {1, 0, 0, xp}, {0, -1, 0, ym},
          {0, 1, 0, yp},     {0, 0, -1, zm}, {0, 0, 1, zp}};
}

Matrix laplace2d(int k) {
  std::vector<Tap> t = {
      {0, 0, 0, 4.0}, {-1, 0, 0, -1.0}, {1, 0, 0, -1.0}, {0, -1, 0, -1.0}, {0, 1, 0, -1.0}};
  return stencil("lap2d-" + std::to_string(k), "2-D Laplacian " + std::to_string(k) + "^2, 5-point",
                 2, k, k, 1, t);
}

Matrix laplace3d(int k) {
  return stencil("lap3d-" + std::to_string(k), "3-D Laplacian " + std::to_string(k) + "^3, 7-point",
                 2, k, k, k, seven_point(6.0, -1.0, -1.0, -1.0, -1.0, -1.0, -1.0));
}

// Centre 26, every neighbour of the 3 x 3 x 3 block -1: positive definite,
// since the neighbour sum's symbol stays below 27 on a bounded grid.
Matrix stencil27(int k) {
  std::vector<Tap> t;
  for (int dz = -1; dz <= 1; ++dz)
    for (int dy = -1; dy <= 1; ++dy)
      for (int dx = -1; dx <= 1; ++dx) {
        const bool centre = dx == 0 && dy == 0 && dz == 0;
        t.push_back({dx, dy, dz, centre ? 26.0 : -1.0});
      }
  return stencil("st27-" + std::to_string(k), "3-D 27-point stencil " + std::to_string(k) + "^3", 2,
                 k, k, k, t);
}

// -Laplace(u) + beta . grad(u), central differences, cell Peclet numbers
// 0.4, 0.3 and 0.2 along x, y and z (below 1: no oscillating solutions).
Matrix convection_diffusion(int k) {
  const double px = 0.4, py = 0.3, pz = 0.2;
  return stencil(
      "convdiff-" + std::to_string(k),
      "3-D convection-diffusion " + std::to_string(k) + "^3, central, cell Peclet 0.4/0.3/0.2", 11,
      k, k, k, seven_point(6.0, -1.0 - px, -1.0 + px, -1.0 - py, -1.0 + py, -1.0 - pz, -1.0 + pz));
}

// Helmholtz -Laplace(u) - k^2 u + i sigma u on the unit cube with (kh)^2 = 0.64
// (about eight points a wavelength) and sigma h^2 = 0.1: complex symmetric,
// real part indefinite.
const double kKh2 = 0.64, kSigmaH2 = 0.1;

Matrix helmholtz(int k) {
  return stencil("helm-" + std::to_string(k),
                 "3-D Helmholtz " + std::to_string(k) + "^3, (kh)^2 = 0.64, damping 0.1", 6, k, k,
                 k, seven_point(c16(6.0 - kKh2, kSigmaH2), -1.0, -1.0, -1.0, -1.0, -1.0, -1.0));
}

// The undamped Helmholtz operator with a magnetic-type phase exp(i 0.3) on the
// x links: Hermitian and indefinite.
Matrix helmholtz_hermitian(int k) {
  const c16 link = -std::polar(1.0, 0.3);
  return stencil("helmh-" + std::to_string(k),
                 "3-D Helmholtz " + std::to_string(k) + "^3, phase 0.3 on x links, no damping", -4,
                 k, k, k, seven_point(6.0 - kKh2, std::conj(link), link, -1.0, -1.0, -1.0, -1.0));
}

// Damped Helmholtz with convection along x (cell Peclet 0.3): complex unsymmetric.
Matrix helmholtz_convection(int k) {
  return stencil("helmc-" + std::to_string(k),
                 "3-D Helmholtz " + std::to_string(k) + "^3, damping 0.1, convection 0.3 on x", 13,
                 k, k, k,
                 seven_point(c16(6.0 - kKh2, kSigmaH2), -1.3, -0.7, -1.0, -1.0, -1.0, -1.0));
}

// Mixed form of the Laplacian on an m x m grid of unit cells, lowest-order
// Raviart-Thomas fluxes on the faces and a constant pressure on each cell:
//   [ M  B^T ] [u]
//   [ B   0  ] [p]
// M the face mass matrix (per cell 1/3 on its faces, 1/6 between opposite
// faces), B the divergence (+1 on a cell's right and top face, -1 on its left
// and bottom). Unknowns: x fluxes, y fluxes, pressures. All boundary faces are
// free, so B has full row rank and the matrix is nonsingular with as many
// negative eigenvalues as cells.
Matrix saddle_point(int m) {
  Matrix s;
  s.name = "saddle-" + std::to_string(m);
  s.what = "mixed Laplacian " + std::to_string(m) + "^2 cells (RT0 fluxes, cell pressures)";
  s.mtype = -2;
  const int faces = m * (m + 1);  // of each direction
  const int ux0 = 0, uy0 = faces, p0 = 2 * faces;
  s.n = 2 * faces + m * m;
  auto put = [&](int col, double v) {
    s.ja.push_back(col + 1);
    s.a.push_back(v);
  };
  s.ia.push_back(1);
  auto close_row = [&] { s.ia.push_back(static_cast<int>(s.ja.size()) + 1); };
  // x face (i, j), i = 0..m, j = 0..m-1, number i + (m+1) j: between cells
  // (i-1, j) and (i, j).
  for (int j = 0; j < m; ++j)
    for (int i = 0; i <= m; ++i) {
      const int row = ux0 + i + (m + 1) * j;
      put(row, (i > 0 && i < m) ? 2.0 / 3.0 : 1.0 / 3.0);
      if (i < m) put(row + 1, 1.0 / 6.0);
      if (i > 0) put(p0 + (i - 1) + m * j, 1.0);
      if (i < m) put(p0 + i + m * j, -1.0);
      close_row();
    }
  // y face (i, j), i = 0..m-1, j = 0..m, number i + m j: between cells
  // (i, j-1) and (i, j).
  for (int j = 0; j <= m; ++j)
    for (int i = 0; i < m; ++i) {
      const int row = uy0 + i + m * j;
      put(row, (j > 0 && j < m) ? 2.0 / 3.0 : 1.0 / 3.0);
      if (j < m) put(row + m, 1.0 / 6.0);
      if (j > 0) put(p0 + i + m * (j - 1), 1.0);
      if (j < m) put(p0 + i + m * j, -1.0);
      close_row();
    }
  for (int c = 0; c < m * m; ++c) {
    put(p0 + c, 0.0);
    close_row();
  }
  return s;
}

// ---------------------------------------------------------------------------
// Products and norms on the stored form.

// y = A x, the mirrored half included for the upper-triangle types.
void multiply(const Matrix &m, const std::vector<c16> &x, std::vector<c16> &y) {
  y.assign(m.n, c16(0.0));
  for (int i = 0; i < m.n; ++i)
    for (int k = m.ia[i] - 1; k < m.ia[i + 1] - 1; ++k) {
      const int j = m.ja[k] - 1;
      const c16 v = m.value(k);
      y[i] += v * x[j];
      if (m.upper_only() && j != i) y[j] += (m.hermitian() ? std::conj(v) : v) * x[i];
    }
}

double norm_inf(const std::vector<c16> &v) {
  double r = 0;
  for (const c16 &z : v) r = std::max(r, std::abs(z));
  return r;
}

double matrix_norm_inf(const Matrix &m) {
  std::vector<double> rows(m.n, 0.0);
  for (int i = 0; i < m.n; ++i)
    for (int k = m.ia[i] - 1; k < m.ia[i + 1] - 1; ++k) {
      const int j = m.ja[k] - 1;
      rows[i] += std::abs(m.value(k));
      if (m.upper_only() && j != i) rows[j] += std::abs(m.value(k));
    }
  return rows.empty() ? 0.0 : *std::max_element(rows.begin(), rows.end());
}

// The known solution: smooth plus a little of everything, complex for the
// complex types.
std::vector<c16> known_solution(const Matrix &m) {
  std::vector<c16> x(m.n);
  for (int i = 0; i < m.n; ++i) {
    const double re = 1.0 + 0.5 * std::sin(0.001 * i) + 0.1 * ((i * 7919) % 13) / 13.0;
    x[i] = m.is_complex() ? c16(re, 0.5 - 0.1 * ((i * 104729) % 11) / 11.0) : c16(re, 0.0);
  }
  return x;
}

double backward_error(const Matrix &m, double anorm, const std::vector<c16> &b,
                      const std::vector<c16> &x) {
  std::vector<c16> r;
  multiply(m, x, r);
  for (int i = 0; i < m.n; ++i) r[i] -= b[i];
  return norm_inf(r) / (anorm * norm_inf(x) + norm_inf(b));
}

// Interleaved doubles (the real types use the real parts only) and back.
std::vector<double> packed(const Matrix &m, const std::vector<c16> &v) {
  std::vector<double> p;
  p.reserve(m.is_complex() ? 2 * v.size() : v.size());
  for (const c16 &z : v) {
    p.push_back(z.real());
    if (m.is_complex()) p.push_back(z.imag());
  }
  return p;
}

std::vector<c16> unpacked(const Matrix &m, const double *p) {
  std::vector<c16> v(m.n);
  for (int i = 0; i < m.n; ++i) v[i] = m.is_complex() ? c16(p[2 * i], p[2 * i + 1]) : p[i];
  return v;
}

// The whole matrix in compressed columns, 0-based, values interleaved for the
// complex types; the mirrored half of the upper-triangle types filled in
// (conjugated for the Hermitian ones).
struct Csc {
  std::vector<int> p, i;
  std::vector<double> x;
};

Csc full_columns(const Matrix &m) {
  const int w = m.is_complex() ? 2 : 1;
  Csc c;
  c.p.assign(m.n + 1, 0);
  for (int r = 0; r < m.n; ++r)
    for (int k = m.ia[r] - 1; k < m.ia[r + 1] - 1; ++k) {
      const int j = m.ja[k] - 1;
      ++c.p[j + 1];
      if (m.upper_only() && j != r) ++c.p[r + 1];
    }
  for (int j = 0; j < m.n; ++j) c.p[j + 1] += c.p[j];
  c.i.resize(c.p[m.n]);
  c.x.resize(static_cast<size_t>(w) * c.p[m.n]);
  std::vector<int> next(c.p.begin(), c.p.end() - 1);
  auto put = [&](int row, int col, c16 v) {
    const int at = next[col]++;
    c.i[at] = row;
    c.x[static_cast<size_t>(w) * at] = v.real();
    if (w == 2) c.x[2 * static_cast<size_t>(at) + 1] = v.imag();
  };
  // Rows in increasing order fill each column in increasing row order; the
  // mirrored entries of the upper-triangle types do not, hence the sort below.
  for (int r = 0; r < m.n; ++r)
    for (int k = m.ia[r] - 1; k < m.ia[r + 1] - 1; ++k) {
      const int j = m.ja[k] - 1;
      const c16 v = m.value(k);
      put(r, j, v);
      if (m.upper_only() && j != r) put(j, r, m.hermitian() ? std::conj(v) : v);
    }
  // Sort the row indices of each column (the mirrored entries arrive out of
  // order); columns are short, insertion sort carrying the values.
  for (int j = 0; j < m.n; ++j)
    for (int a = c.p[j] + 1; a < c.p[j + 1]; ++a)
      for (int b = a; b > c.p[j] && c.i[b - 1] > c.i[b]; --b) {
        std::swap(c.i[b - 1], c.i[b]);
        for (int q = 0; q < w; ++q) std::swap(c.x[w * (b - 1) + q], c.x[w * b + q]);
      }
  return c;
}

// ---------------------------------------------------------------------------
// One run of one solver, in a child process.

enum class Solver { kOrb, kOrbOutOfCore, kCholmod, kCholmodOrbOrder, kUmfpack, kMumps };

const char *solver_name(Solver s) {
  switch (s) {
    case Solver::kOrb:
      return "ORB";
    case Solver::kOrbOutOfCore:
      return "ORB out-of-core";
    case Solver::kCholmod:
      return "CHOLMOD";
    case Solver::kCholmodOrbOrder:
      return "CHOLMOD ORB-ord";
    case Solver::kUmfpack:
      return "UMFPACK";
    case Solver::kMumps:
      return "MUMPS";
  }
  return "?";
}

bool applies(Solver s, int mtype) {
  switch (s) {
    case Solver::kOrb:
    case Solver::kOrbOutOfCore:
      return true;
    case Solver::kCholmod:
    case Solver::kCholmodOrbOrder:
      return mtype == 2;
    case Solver::kUmfpack:
      return mtype != 2;
    case Solver::kMumps:
      return true;
  }
  return false;
}

// Sent from the child to the parent through a pipe, followed by n ints of the
// ordering when one was asked for.
struct Outcome {
  int status = 0;  // 0 done; else the solver's error code
  char note[120] = {};
  double analysis = 0, factor = 0, solve = 0;
  double factor_nnz = 0;
  double factor_mb = 0;  // ORB: the factor's storage (iparam(17))
  double berr = 0;
  double peak_mb = 0;
  int peak_from_maxrss = 0;
  int refine_steps = -1;
  int has_order = 0;
};

double now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

long status_kb(const char *key) {
  FILE *f = std::fopen("/proc/self/status", "r");
  if (!f) return -1;
  char line[256];
  long v = -1;
  const size_t len = std::strlen(key);
  while (std::fgets(line, sizeof line, f))
    if (std::strncmp(line, key, len) == 0) {
      v = std::atol(line + len);
      break;
    }
  std::fclose(f);
  return v;
}

// The resident size the solver adds at its high point.
class PeakProbe {
 public:
  void start() {
    const int fd = open("/proc/self/clear_refs", O_WRONLY);
    reset_ = fd >= 0 && write(fd, "5", 1) == 1;
    if (fd >= 0) close(fd);
    base_kb_ = status_kb("VmRSS:");
  }
  void finish(Outcome *o) const {
    long peak = -1;
    if (reset_) {
      peak = status_kb("VmHWM:");
    } else {
      rusage ru{};
      getrusage(RUSAGE_SELF, &ru);
      peak = ru.ru_maxrss;
      o->peak_from_maxrss = 1;
    }
    o->peak_mb = std::max(0L, peak - base_kb_) / 1024.0;
  }

 private:
  bool reset_ = false;
  long base_kb_ = 0;
};

void set_note(Outcome *o, const char *fmt, long v) {
  std::snprintf(o->note, sizeof o->note, fmt, v);
}

#ifndef SPARSE_COMPARE_PEERS_ONLY
using TesseraFn = decltype(&TESSERA);

TesseraFn tessera_entry() {
  return reinterpret_cast<TesseraFn>(dlsym(RTLD_DEFAULT, "TESSERA"));
}

// iparam with the defaults of the type (iparam(1) = 1 keeps our settings):
// METIS ordering, 2 refinement steps, the factor's nonzeros and flop rate
// reported, and the ordering returned in perm when asked for.
void orb_settings(int mtype, bool want_order, int *iparam) {
  std::fill(iparam, iparam + 64, 0);
  iparam[0] = 1;
  iparam[1] = 2;
  iparam[7] = 2;
  iparam[17] = -1;
  iparam[18] = -1;
  if (want_order) iparam[4] = 2;
  const bool unsym = mtype == 11 || mtype == 13;
  const bool indef = mtype == -2 || mtype == -4 || mtype == 6;
  iparam[9] = unsym ? 13 : indef ? 8 : 0;
  iparam[10] = unsym ? 1 : 0;
  iparam[12] = unsym ? 1 : 0;
  iparam[20] = indef ? 1 : 0;
}

// max_core_mb > 0: out of core (iparam(60) = 2) with that maximal in-core
// size, the data files in the working directory, deleted at release.
void run_orb(const Matrix &m, const std::vector<c16> &b, int threads, bool want_order, Outcome *o,
             std::vector<int> *order, int max_core_mb = 0) {
  const TesseraFn tessera = tessera_entry();
  if (!tessera) {
    o->status = -999;
    set_note(o, "TESSERA is not exported by this liborb", 0);
    return;
  }
  ORB_Set_Num_Threads(threads);
  std::vector<double> rhs = packed(m, b), x(rhs.size(), 0.0);
  order->assign(m.n, 0);
  void *pt[64] = {};
  int iparam[64];
  orb_settings(m.mtype, want_order, iparam);
  if (max_core_mb > 0) {
    iparam[59] = 2;
    setenv("ORB_TESSERA_OOC_MAX_CORE_SIZE", std::to_string(max_core_mb).c_str(), 1);
    setenv("ORB_TESSERA_OOC_PATH", "sparse_compare_ooc", 1);
    setenv("ORB_TESSERA_OOC_KEEP_FILE", "0", 1);
  }
  const int maxfct = 1, mnum = 1, nrhs = 1, msglvl = 0;
  int error = 0;
  auto call = [&](int phase) {
    tessera(pt, &maxfct, &mnum, &m.mtype, &phase, &m.n, m.a.data(), m.ia.data(), m.ja.data(),
            order->data(), &nrhs, iparam, &msglvl, rhs.data(), x.data(), &error);
    return error;
  };
  PeakProbe probe;
  probe.start();
  double t = now();
  if (call(11) == 0) {
    o->analysis = now() - t;
    t = now();
    if (call(22) == 0) {
      o->factor = now() - t;
      o->factor_nnz = iparam[17];
      o->factor_mb = iparam[16] / 1024.0;
      t = now();
      if (call(33) == 0) o->solve = now() - t;
    }
  }
  o->status = error;
  if (error) set_note(o, "TESSERA error %ld", error);
  if (!error && max_core_mb > 0)
    std::snprintf(o->note, sizeof o->note,
                  "max in-core %d MB; iparam(15..17) %d, %d, %d MB; (63) %d MB", max_core_mb,
                  iparam[14] / 1024, iparam[15] / 1024, iparam[16] / 1024, iparam[62] / 1024);
  o->refine_steps = iparam[6];
  probe.finish(o);
  call(-1);
  if (o->status == 0) o->berr = backward_error(m, matrix_norm_inf(m), b, unpacked(m, x.data()));
  o->has_order = want_order && o->status == 0;
}
#endif

// CHOLMOD on an SPD matrix: the upper triangle in rows is the lower triangle
// in columns, so the arrays go over as they are (0-based).
void run_cholmod(const Matrix &m, const std::vector<c16> &b, int threads,
                 const std::vector<int> *given, bool want_order, Outcome *o,
                 std::vector<int> *order) {
  openblas_set_num_threads(threads);
  cholmod_common c;
  cholmod_start(&c);
  c.supernodal = CHOLMOD_SUPERNODAL;
  c.nmethods = 1;
  c.method[0].ordering = given ? CHOLMOD_GIVEN : CHOLMOD_METIS;
  c.postorder = 1;
  cholmod_sparse *A = cholmod_allocate_sparse(m.n, m.n, m.nnz(), 1, 1, -1, CHOLMOD_REAL, &c);
  cholmod_dense *B = cholmod_allocate_dense(m.n, 1, m.n, CHOLMOD_REAL, &c);
  if (!A || !B) {
    o->status = -1;
    set_note(o, "CHOLMOD could not allocate the input", 0);
    cholmod_free_sparse(&A, &c);
    cholmod_free_dense(&B, &c);
    cholmod_finish(&c);
    return;
  }
  int *ap = static_cast<int *>(A->p), *ai = static_cast<int *>(A->i);
  for (int k = 0; k <= m.n; ++k) ap[k] = m.ia[k] - 1;
  for (long k = 0; k < m.nnz(); ++k) ai[k] = m.ja[k] - 1;
  std::copy(m.a.begin(), m.a.end(), static_cast<double *>(A->x));
  for (int k = 0; k < m.n; ++k) static_cast<double *>(B->x)[k] = b[k].real();

  // ORB's ordering may come as new-to-old or old-to-new: keep the direction
  // with the smaller factor (a symbolic count each, before the timed runs).
  std::vector<int> perm;
  if (given) {
    perm = *given;
    const int base = *std::min_element(perm.begin(), perm.end());
    for (int &v : perm) v -= base;
    std::vector<int> inverse(m.n);
    for (int k = 0; k < m.n; ++k) inverse[perm[k]] = k;
    double lnz[2];
    for (int d = 0; d < 2; ++d) {
      cholmod_factor *L = cholmod_analyze_p(A, d ? inverse.data() : perm.data(), nullptr, 0, &c);
      lnz[d] = L ? c.lnz : 1e300;
      cholmod_free_factor(&L, &c);
    }
    if (lnz[1] < lnz[0]) {
      perm.swap(inverse);
      set_note(o, "ORB's ordering taken as old-to-new", 0);
    }
  }

  PeakProbe probe;
  probe.start();
  double t = now();
  cholmod_factor *L =
      given ? cholmod_analyze_p(A, perm.data(), nullptr, 0, &c) : cholmod_analyze(A, &c);
  cholmod_dense *X = nullptr;
  if (L) {
    o->analysis = now() - t;
    o->factor_nnz = c.lnz;
    t = now();
    if (cholmod_factorize(A, L, &c) && c.status == CHOLMOD_OK) {
      o->factor = now() - t;
      // Its supernodes' storage, beside ORB's, which also counts the blocks.
      if (L->is_super) {
        o->factor_nnz = double(L->xsize);
        set_note(o, "exact nnz(L) %ld", static_cast<long>(c.lnz));
      }
      t = now();
      X = cholmod_solve(CHOLMOD_A, L, B, &c);
      if (X) o->solve = now() - t;
    }
  }
  o->status = X ? 0 : (c.status != CHOLMOD_OK ? c.status : -1);
  if (!X) set_note(o, "CHOLMOD status %ld", c.status);
  o->refine_steps = 0;
  probe.finish(o);
  if (X)
    o->berr = backward_error(m, matrix_norm_inf(m), b, unpacked(m, static_cast<double *>(X->x)));
  if (want_order && L) {
    const int *p = static_cast<const int *>(L->Perm);
    order->assign(p, p + m.n);
    o->has_order = 1;
  }
  cholmod_free_dense(&X, &c);
  cholmod_free_factor(&L, &c);
  cholmod_free_dense(&B, &c);
  cholmod_free_sparse(&A, &c);
  cholmod_finish(&c);
}

// UMFPACK on the whole matrix; di or zi (packed complex: Az = nullptr).
void run_umfpack(const Matrix &m, const std::vector<c16> &b, int threads, Outcome *o) {
  openblas_set_num_threads(threads);
  const Csc a = full_columns(m);
  const std::vector<double> rhs = packed(m, b);
  std::vector<double> x(rhs.size(), 0.0);
  double control[UMFPACK_CONTROL], info[UMFPACK_INFO];
  const bool cplx = m.is_complex();
  if (cplx)
    umfpack_zi_defaults(control);
  else
    umfpack_di_defaults(control);
  control[UMFPACK_ORDERING] = UMFPACK_ORDERING_METIS;
  control[UMFPACK_IRSTEP] = 2;
  void *symbolic = nullptr, *numeric = nullptr;
  const int *ap = a.p.data(), *ai = a.i.data();
  const double *ax = a.x.data();

  PeakProbe probe;
  probe.start();
  double t = now();
  int st = cplx ? umfpack_zi_symbolic(m.n, m.n, ap, ai, ax, nullptr, &symbolic, control, info)
                : umfpack_di_symbolic(m.n, m.n, ap, ai, ax, &symbolic, control, info);
  if (st == UMFPACK_OK) {
    o->analysis = now() - t;
    t = now();
    st = cplx ? umfpack_zi_numeric(ap, ai, ax, nullptr, symbolic, &numeric, control, info)
              : umfpack_di_numeric(ap, ai, ax, symbolic, &numeric, control, info);
    if (st == UMFPACK_OK) {
      o->factor = now() - t;
      o->factor_nnz = info[UMFPACK_LNZ] + info[UMFPACK_UNZ] - m.n;
      t = now();
      st = cplx ? umfpack_zi_solve(UMFPACK_A, ap, ai, ax, nullptr, x.data(), nullptr, rhs.data(),
                                   nullptr, numeric, control, info)
                : umfpack_di_solve(UMFPACK_A, ap, ai, ax, x.data(), rhs.data(), numeric, control,
                                   info);
      if (st == UMFPACK_OK) o->solve = now() - t;
    }
  }
  o->status = st;
  if (st != UMFPACK_OK) set_note(o, "UMFPACK status %ld", st);
  o->refine_steps = st == UMFPACK_OK ? static_cast<int>(info[UMFPACK_IR_TAKEN]) : -1;
  probe.finish(o);
  if (cplx) {
    umfpack_zi_free_numeric(&numeric);
    umfpack_zi_free_symbolic(&symbolic);
  } else {
    umfpack_di_free_numeric(&numeric);
    umfpack_di_free_symbolic(&symbolic);
  }
  if (st == UMFPACK_OK) o->berr = backward_error(m, matrix_norm_inf(m), b, unpacked(m, x.data()));
}

// MUMPS' driver is the same for both precisions up to the structure's type.
template <typename Struc, typename Entry>
void mumps_run(void (*mumps)(Struc *), const Matrix &m, const std::vector<c16> &b, Outcome *o) {
  // Coordinates, 1-based: the stored upper triangle for sym = 1 and 2, the
  // whole matrix otherwise (the Hermitian type expanded).
  const int sym = m.mtype == 2 ? 1 : (m.mtype == -2 || m.mtype == 6) ? 2 : 0;
  std::vector<int> irn, jcn;
  std::vector<double> val;
  if (sym != 0 || !m.upper_only()) {
    for (int r = 0; r < m.n; ++r)
      for (int k = m.ia[r] - 1; k < m.ia[r + 1] - 1; ++k) {
        irn.push_back(r + 1);
        jcn.push_back(m.ja[k]);
      }
    val = m.a;
  } else {
    const Csc a = full_columns(m);
    for (int j = 0; j < m.n; ++j)
      for (int k = a.p[j]; k < a.p[j + 1]; ++k) {
        irn.push_back(a.i[k] + 1);
        jcn.push_back(j + 1);
      }
    val = a.x;
  }
  std::vector<double> rhs = packed(m, b);

  Struc id{};
  id.comm_fortran = -987654;  // the sequential library's stand-in communicator
  id.par = 1;
  id.sym = sym;
  id.job = -1;
  mumps(&id);
  if (id.infog[0] < 0) {
    o->status = id.infog[0];
    set_note(o, "MUMPS initialisation INFOG(1) = %ld", id.infog[0]);
    return;
  }
  id.icntl[0] = id.icntl[1] = id.icntl[2] = -1;  // no output
  id.icntl[3] = 0;
  id.icntl[6] = 3;   // SCOTCH nested dissection
  id.icntl[9] = 2;   // at most 2 refinement steps,
  id.cntl[1] = 0.0;  // stopping only when a step no longer halves the error
  id.n = m.n;
  id.nnz = static_cast<MUMPS_INT8>(irn.size());
  id.irn = irn.data();
  id.jcn = jcn.data();
  id.a = reinterpret_cast<Entry *>(val.data());
  id.rhs = reinterpret_cast<Entry *>(rhs.data());

  PeakProbe probe;
  probe.start();
  double t = now();
  id.job = 1;
  mumps(&id);
  if (id.infog[0] >= 0) {
    o->analysis = now() - t;
    t = now();
    id.job = 2;
    mumps(&id);
    if (id.infog[0] >= 0) {
      o->factor = now() - t;
      const int e = id.infog[28];  // INFOG(29), in millions when negative
      o->factor_nnz = e >= 0 ? e : -1e6 * e;
      t = now();
      id.job = 3;
      mumps(&id);
      if (id.infog[0] >= 0) o->solve = now() - t;
    }
  }
  o->status = id.infog[0] < 0 ? id.infog[0] : 0;
  if (o->status) set_note(o, "MUMPS INFOG(1) = %ld", id.infog[0]);
  o->refine_steps = id.infog[14];
  probe.finish(o);
  if (id.infog[6] != 3) set_note(o, "MUMPS ordered with INFOG(7) = %ld", id.infog[6]);
  id.job = -2;
  mumps(&id);
  if (o->status == 0) o->berr = backward_error(m, matrix_norm_inf(m), b, unpacked(m, rhs.data()));
}

void run_mumps(const Matrix &m, const std::vector<c16> &b, int threads, Outcome *o) {
  openblas_set_num_threads(threads);
  if (m.is_complex())
    mumps_run<ZMUMPS_STRUC_C, ZMUMPS_COMPLEX>(zmumps_c, m, b, o);
  else
    mumps_run<DMUMPS_STRUC_C, DMUMPS_REAL>(dmumps_c, m, b, o);
}

struct Job {
  Solver solver;
  int threads;
  bool want_order = false;
  const std::vector<int> *given = nullptr;  // ordering for CHOLMOD_GIVEN
  int max_core_mb = 0;                      // ORB out of core: the maximal in-core size
};

void run_in_child(const Matrix &m, const std::vector<c16> &b, const Job &job, Outcome *o,
                  std::vector<int> *order) {
  try {
    switch (job.solver) {
      case Solver::kOrb:
#ifndef SPARSE_COMPARE_PEERS_ONLY
        run_orb(m, b, job.threads, job.want_order, o, order);
#else
        o->status = -999;
        set_note(o, "built without ORB", 0);
#endif
        break;
      case Solver::kOrbOutOfCore:
#ifndef SPARSE_COMPARE_PEERS_ONLY
        run_orb(m, b, job.threads, false, o, order, job.max_core_mb);
#else
        o->status = -999;
        set_note(o, "built without ORB", 0);
#endif
        break;
      case Solver::kCholmod:
      case Solver::kCholmodOrbOrder:
        run_cholmod(m, b, job.threads, job.given, job.want_order, o, order);
        break;
      case Solver::kUmfpack:
        run_umfpack(m, b, job.threads, o);
        break;
      case Solver::kMumps:
        run_mumps(m, b, job.threads, o);
        break;
    }
  } catch (const std::bad_alloc &) {
    o->status = -2;
    set_note(o, "out of memory in the benchmark's own arrays", 0);
  }
}

bool write_all(int fd, const void *p, size_t len) {
  const char *c = static_cast<const char *>(p);
  while (len) {
    const ssize_t w = write(fd, c, len);
    if (w <= 0) return false;
    c += w;
    len -= static_cast<size_t>(w);
  }
  return true;
}

bool read_all(int fd, void *p, size_t len) {
  char *c = static_cast<char *>(p);
  while (len) {
    const ssize_t r = read(fd, c, len);
    if (r <= 0) return false;
    c += r;
    len -= static_cast<size_t>(r);
  }
  return true;
}

// Forks, runs the job in the child and collects its outcome (and ordering).
Outcome run_forked(const Matrix &m, const std::vector<c16> &b, const Job &job,
                   std::vector<int> *order) {
  Outcome o;
  int fds[2];
  if (pipe(fds) != 0) {
    o.status = -3;
    set_note(&o, "pipe failed", 0);
    return o;
  }
  std::fflush(stdout);
  std::fflush(stderr);
  const pid_t pid = fork();
  if (pid < 0) {
    o.status = -3;
    set_note(&o, "fork failed", 0);
    close(fds[0]);
    close(fds[1]);
    return o;
  }
  if (pid == 0) {
    close(fds[0]);
    Outcome c;
    std::vector<int> child_order;
    run_in_child(m, b, job, &c, &child_order);
    bool ok = write_all(fds[1], &c, sizeof c);
    if (ok && c.has_order) ok = write_all(fds[1], child_order.data(), sizeof(int) * m.n);
    close(fds[1]);
    _exit(ok ? 0 : 1);
  }
  close(fds[1]);
  bool ok = read_all(fds[0], &o, sizeof o);
  if (ok && o.has_order) {
    order->resize(m.n);
    ok = read_all(fds[0], order->data(), sizeof(int) * m.n);
  }
  close(fds[0]);
  int wstatus = 0;
  waitpid(pid, &wstatus, 0);
  if (!ok) {
    o = Outcome();
    o.status = -4;
    if (WIFSIGNALED(wstatus))
      set_note(&o, "the run died of signal %ld", WTERMSIG(wstatus));
    else
      set_note(&o, "the run exited with %ld and no report", WEXITSTATUS(wstatus));
  }
  return o;
}

// ---------------------------------------------------------------------------
// Rounds and tables.

struct Row {
  Job job;
  std::vector<Outcome> runs;
};

double median(std::vector<double> v) {
  if (v.empty()) return 0;
  std::sort(v.begin(), v.end());
  const size_t h = v.size() / 2;
  return v.size() % 2 ? v[h] : 0.5 * (v[h - 1] + v[h]);
}

struct Options {
  bool quick = false, check = false;
  int reps = 3;
  double ooc_fraction = 0.1;  // ORB out of core: maximal in-core size over the factor's size
  std::vector<int> threads = {1, 2};
  std::vector<std::string> matrices, solvers;
};

bool wanted(const std::vector<std::string> &filter, const std::string &name) {
  if (filter.empty()) return true;
  for (const std::string &f : filter)
    if (name.find(f) != std::string::npos) return true;
  return false;
}

std::string lower(std::string s) {
  for (char &c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

void print_table(const Matrix &m, const std::vector<Row> &rows) {
  std::printf("\n== %s: %s\n   n = %d, stored entries %ld, %s (mtype %d)\n", m.name.c_str(),
              m.what.c_str(), m.n, m.nnz(), type_name(m.mtype), m.mtype);
  std::printf("%-16s %3s %9s %27s %9s %12s %9s %3s %9s %7s\n", "solver", "thr", "analysis",
              "factor s median [min,max]", "solve s", "factor nnz", "bwd err", "ref", "peak MB",
              "vs ORB");
  // ORB's median factorization time at each thread count, for the ratios.
  auto orb_factor = [&](int threads) {
    for (const Row &r : rows)
      if (r.job.solver == Solver::kOrb && r.job.threads == threads) {
        std::vector<double> f;
        for (const Outcome &o : r.runs)
          if (o.status == 0) f.push_back(o.factor);
        if (!f.empty() && f.size() == r.runs.size()) return median(f);
      }
    return 0.0;
  };
  for (const Row &r : rows) {
    std::vector<double> an, fa, so, peak;
    double berr = 0, nnz = 0;
    int steps = -1;
    bool failed = false, maxrss = false, nnz_varies = false;
    const char *note = "";
    for (const Outcome &o : r.runs) {
      if (o.note[0]) note = o.note;
      if (o.status != 0) {
        failed = true;
        continue;
      }
      an.push_back(o.analysis);
      fa.push_back(o.factor);
      so.push_back(o.solve);
      peak.push_back(o.peak_mb);
      berr = std::max(berr, o.berr);
      if (nnz != 0 && nnz != o.factor_nnz) nnz_varies = true;
      nnz = o.factor_nnz;
      steps = o.refine_steps;
      maxrss = maxrss || o.peak_from_maxrss;
    }
    std::printf("%-16s %3d ", solver_name(r.job.solver), r.job.threads);
    if (failed || fa.empty()) {
      std::printf("%s\n", note[0] ? note : "failed");
      continue;
    }
    char spread[64];
    std::snprintf(spread, sizeof spread, "%.3f [%.3f,%.3f]", median(fa),
                  *std::min_element(fa.begin(), fa.end()), *std::max_element(fa.begin(), fa.end()));
    char ratio[16] = "-";
    const double of = orb_factor(r.job.threads);
    if (r.job.solver != Solver::kOrb && of > 0)
      std::snprintf(ratio, sizeof ratio, "%.2f", median(fa) / of);
    auto spread_pct = [](const std::vector<double> &t) {
      const auto [lo, hi] = std::minmax_element(t.begin(), t.end());
      return t.size() < 2 || !(*lo > 0) ? -1.0 : 100 * (*hi / *lo - 1);
    };
    const std::string solver = solver_name(r.job.solver);
    orb::bench::csv().row("factor", m.name, r.job.threads, solver, median(fa), "s", spread_pct(fa));
    orb::bench::csv().row("solve", m.name, r.job.threads, solver, median(so), "s", spread_pct(so));
    std::printf("%9.3f %27s %9.4f %11.0f%s %9.2e %3d %8.1f%s %7s", median(an), spread, median(so),
                nnz, nnz_varies ? "~" : " ", berr, steps,
                *std::max_element(peak.begin(), peak.end()), maxrss ? "*" : " ", ratio);
    if (note[0]) std::printf("  (%s)", note);
    std::printf("\n");
  }
  std::fflush(stdout);
}

std::vector<Matrix> make_matrices(const Options &opt) {
  struct Maker {
    std::string key;
    Matrix (*make)(int);
    int full, quick;
  };
  const Maker makers[] = {
      {"lap2d", laplace2d, 1000, 150},
      {"lap3d", laplace3d, 60, 16},
      {"lap3d", laplace3d, 80, 20},
      {"st27", stencil27, 40, 12},
      {"convdiff", convection_diffusion, 50, 15},
      {"saddle", saddle_point, 180, 40},
      {"helm", helmholtz, 40, 14},
      {"helmh", helmholtz_hermitian, 40, 14},
      {"helmc", helmholtz_convection, 40, 14},
  };
  std::vector<Matrix> out;
  for (const Maker &mk : makers) {
    const int size = opt.quick ? mk.quick : mk.full;
    if (!wanted(opt.matrices, mk.key + "-" + std::to_string(size))) continue;
    out.push_back(mk.make(size));
  }
  return out;
}

std::vector<Row> plan(const Matrix &m, const Options &opt) {
  std::vector<Row> rows;
  const Solver order[] = {Solver::kOrb,     Solver::kOrbOutOfCore,
                          Solver::kCholmod, Solver::kCholmodOrbOrder,
                          Solver::kUmfpack, Solver::kMumps};
  for (int t : opt.threads)
    for (Solver s : order) {
      if (!applies(s, m.mtype)) continue;
      // Out of core runs on one thread whatever it is given.
      if (s == Solver::kOrbOutOfCore && (opt.ooc_fraction <= 0 || t != opt.threads.front()))
        continue;
      const std::string key = lower(solver_name(s));
      if (!wanted(opt.solvers, key.substr(0, key.find(' ')))) continue;
      Row r;
      r.job.solver = s;
      r.job.threads = t;
      // ORB hands its ordering to the CHOLMOD run that follows it.
      r.job.want_order = s == Solver::kOrb && m.mtype == 2;
      rows.push_back(r);
    }
  return rows;
}

void bench_matrix(const Matrix &m, const Options &opt) {
  const std::vector<c16> b = [&] {
    std::vector<c16> y;
    multiply(m, known_solution(m), y);
    return y;
  }();
  std::vector<Row> rows = plan(m, opt);
  std::vector<int> orb_order;
  double orb_factor_mb = 0;  // the in-core factor's size, from ORB's last run
  for (int rep = 0; rep < opt.reps; ++rep)
    for (Row &r : rows) {
      Job job = r.job;
      if (job.solver == Solver::kOrbOutOfCore) {
        if (orb_factor_mb <= 0) {
          Outcome o;
          o.status = -998;
          set_note(&o, "no factor size from an ORB run before it", 0);
          r.runs.push_back(o);
          continue;
        }
        job.max_core_mb = std::max(1, int(opt.ooc_fraction * orb_factor_mb));
      }
      if (job.solver == Solver::kCholmodOrbOrder) {
        if (orb_order.empty()) {
          Outcome o;
          o.status = -998;
          set_note(&o, "no ordering from ORB", 0);
          r.runs.push_back(o);
          continue;
        }
        job.given = &orb_order;
      }
      std::vector<int> order;
      r.runs.push_back(run_forked(m, b, job, &order));
      if (r.runs.back().has_order) orb_order.swap(order);
      if (job.solver == Solver::kOrb && r.runs.back().status == 0)
        orb_factor_mb = r.runs.back().factor_mb;
    }
  print_table(m, rows);
}

// ---------------------------------------------------------------------------
// --check: the generators' storage rules and the peers' answers on the quick
// sizes. Exit status 1 when anything fails.

int failures = 0;

void expect(bool ok, const std::string &what) {
  if (!ok) {
    ++failures;
    std::printf("FAIL %s\n", what.c_str());
  }
}

void check_storage(const Matrix &m) {
  bool sorted = true, diagonal = true, triangle = true, range = true;
  for (int r = 0; r < m.n; ++r) {
    bool seen = false;
    for (int k = m.ia[r] - 1; k < m.ia[r + 1] - 1; ++k) {
      const int j = m.ja[k] - 1;
      range = range && j >= 0 && j < m.n;
      if (k > m.ia[r] - 1) sorted = sorted && m.ja[k - 1] < m.ja[k];
      seen = seen || j == r;
      if (m.upper_only()) triangle = triangle && j >= r;
    }
    diagonal = diagonal && seen;
  }
  expect(range && sorted, m.name + ": columns in range and increasing");
  expect(!m.upper_only() || (diagonal && triangle),
         m.name + ": upper triangle with every diagonal entry");
  expect(m.a.size() == static_cast<size_t>(m.nnz()) * (m.is_complex() ? 2 : 1),
         m.name + ": one value per entry");
}

// The full expansion agrees with the stored form's product, and the
// unsymmetric matrices really are unsymmetric (the expansion is not its own
// transpose).
void check_expansion(const Matrix &m) {
  const Csc c = full_columns(m);
  const std::vector<c16> x = known_solution(m);
  std::vector<c16> y, z(m.n, c16(0.0));
  multiply(m, x, y);
  for (int j = 0; j < m.n; ++j)
    for (int k = c.p[j]; k < c.p[j + 1]; ++k) {
      const c16 v = m.is_complex() ? c16(c.x[2 * k], c.x[2 * k + 1]) : c16(c.x[k], 0.0);
      z[c.i[k]] += v * x[j];
    }
  double d = 0;
  for (int i = 0; i < m.n; ++i) d = std::max(d, std::abs(y[i] - z[i]));
  expect(d <= 1e-12 * norm_inf(y), m.name + ": full expansion matches the stored product");
  bool rows_sorted = true;
  for (int j = 0; j < m.n; ++j)
    for (int k = c.p[j] + 1; k < c.p[j + 1]; ++k) rows_sorted = rows_sorted && c.i[k - 1] < c.i[k];
  expect(rows_sorted, m.name + ": full expansion has increasing rows");
}

void check_generators() {
  // Row sums of the Laplacians count the missing neighbours.
  const Matrix l2 = laplace2d(4);
  expect(l2.n == 16 && l2.nnz() == 16 + 24, "lap2d-4: 16 diagonal and 24 upper entries");
  const Matrix l3 = laplace3d(3);
  std::vector<c16> ones(l3.n, 1.0), y;
  multiply(l3, ones, y);
  expect(std::abs(y[13]) == 0.0 && y[0].real() == 3.0,
         "lap3d-3: interior row sums to 0, corner to 3");
  const Matrix s27 = stencil27(3);
  multiply(s27, std::vector<c16>(s27.n, 1.0), y);
  expect(std::abs(y[13]) == 0.0 && y[0].real() == 19.0,
         "st27-3: interior row sums to 0, corner to 19");
  // The saddle point problem: B has one entry per (cell, face) pair, the zero
  // block is stored on the diagonal.
  const Matrix sp = saddle_point(3);
  expect(sp.n == 2 * 12 + 9, "saddle-3: 24 faces and 9 cells");
  long b_entries = 0, zero_diag = 0;
  for (int r = 0; r < sp.n; ++r)
    for (int k = sp.ia[r] - 1; k < sp.ia[r + 1] - 1; ++k) {
      if (sp.ja[k] - 1 >= 24 && r < 24) ++b_entries;
      if (sp.ja[k] - 1 == r && sp.a[k] == 0.0) ++zero_diag;
    }
  expect(b_entries == 4 * 9 && zero_diag == 9, "saddle-3: 36 divergence entries, 9 zero pivots");
  // The Hermitian variant mirrors with the conjugate: x^H A x is real.
  const Matrix h = helmholtz_hermitian(3);
  const std::vector<c16> x = known_solution(h);
  multiply(h, x, y);
  c16 q = 0;
  for (int i = 0; i < h.n; ++i) q += std::conj(x[i]) * y[i];
  expect(std::abs(q.imag()) <= 1e-12 * std::abs(q), "helmh-3: x^H A x is real");
}

int run_checks() {
  check_generators();
  Options quick;
  quick.quick = true;
  for (const Matrix &m : make_matrices(quick)) {
    check_storage(m);
    check_expansion(m);
    const std::vector<c16> xt = known_solution(m);
    std::vector<c16> b;
    multiply(m, xt, b);
    // Each peer solves it to a small backward error, in a child like the
    // timed runs.
    for (Solver s : {Solver::kCholmod, Solver::kUmfpack, Solver::kMumps}) {
      if (!applies(s, m.mtype)) continue;
      Job job{s, 1, s == Solver::kCholmod};
      std::vector<int> order;
      const Outcome o = run_forked(m, b, job, &order);
      expect(o.status == 0 && o.berr < 1e-13 && o.factor_nnz >= m.n,
             m.name + " " + solver_name(s) + ": solved (" + o.note + ")");
      // CHOLMOD fed back its own ordering must find the same factor.
      if (s == Solver::kCholmod && o.status == 0) {
        Job again{Solver::kCholmodOrbOrder, 1, false, &order};
        std::vector<int> none;
        const Outcome g = run_forked(m, b, again, &none);
        expect(g.status == 0 && g.factor_nnz == o.factor_nnz,
               m.name + ": CHOLMOD with its own ordering given finds the same factor");
      }
    }
  }
  std::printf("%s: %d failure(s)\n", failures ? "FAILED" : "checks passed", failures);
  return failures ? 1 : 0;
}

std::vector<std::string> split(const char *s) {
  std::vector<std::string> out;
  std::string cur;
  for (const char *p = s;; ++p) {
    if (*p == ',' || *p == '\0') {
      if (!cur.empty()) out.push_back(cur);
      cur.clear();
      if (!*p) break;
    } else {
      cur += *p;
    }
  }
  return out;
}

// Which object the process binds the BLAS's dgemm_ to.
void print_blas_binding() {
  void *f = dlsym(RTLD_DEFAULT, "dgemm_");
  Dl_info info{};
  const char *where = f && dladdr(f, &info) && info.dli_fname ? info.dli_fname : "(not found)";
  std::printf("dgemm_ as the peers see it: %s\n", where);
  if (std::strstr(where, "liborb"))
    std::printf("WARNING: the peers would run on ORB's BLAS; check the link order\n");
}

int run(int argc, char **argv) {
  Options opt;
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    const bool more = i + 1 < argc;
    if (a == "--quick") {
      opt.quick = true;
    } else if (a == "--check") {
      opt.check = true;
    } else if (a == "--reps" && more) {
      opt.reps = std::max(1, std::atoi(argv[++i]));
    } else if (a == "--csv" && more) {
      if (!orb::bench::csv().open(argv[++i])) {
        std::fprintf(stderr, "sparse_compare: cannot write %s\n", argv[i]);
        return 2;
      }
    } else if (a == "--ooc" && more) {
      opt.ooc_fraction = std::atof(argv[++i]);
    } else if (a == "--threads" && more) {
      opt.threads.clear();
      for (const std::string &t : split(argv[++i]))
        opt.threads.push_back(std::max(1, std::atoi(t.c_str())));
    } else if (a == "--matrices" && more) {
      opt.matrices = split(argv[++i]);
    } else if (a == "--solvers" && more) {
      opt.solvers = split(argv[++i]);
      for (std::string &s : opt.solvers) s = lower(s);
    } else {
      std::fprintf(
          stderr,
          "usage: %s [--quick] [--reps R] [--threads 1,2] [--matrices lap3d,helm] [--ooc F]\n"
          "          [--solvers orb,cholmod,umfpack,mumps] [--check] [--csv FILE]\n",
          argv[0]);
      return 2;
    }
  }
  print_blas_binding();
  if (opt.check) return run_checks();
#ifdef SPARSE_COMPARE_PEERS_ONLY
  std::printf("built without ORB: the peers only\n");
#else
  if (!tessera_entry()) std::printf("TESSERA is not exported by this liborb: the peers only\n");
#endif
  std::printf(
      "%s sizes, %d round(s), peak MB = resident high point less the resident size "
      "before the analysis (* from ru_maxrss)\n",
      opt.quick ? "quick" : "full", opt.reps);
  for (const Matrix &m : make_matrices(opt)) bench_matrix(m, opt);
  return 0;
}

}  // namespace
}  // namespace orb::sparse

int main(int argc, char **argv) {
  try {
    return orb::sparse::run(argc, argv);
  } catch (const std::bad_alloc &) {
    std::fprintf(stderr, "sparse_compare: out of memory building the test matrices\n");
    return 3;
  }
}
