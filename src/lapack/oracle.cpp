#include "lapack/oracle.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "service/platform/platform.h"
#include "service/threading.h"

namespace orb::lapack {
namespace {

// One routine's plain answers: the block size, the smallest block worth the
// blocked code and the crossover below which the unblocked code runs.
// `prec` lists the precision letters the row serves. Measured on a 2-core
// AVX-512 machine (bench/lapack_compare and the routines' own timings); a
// routine missing here gets the unblocked answers (1, 2, 0).
struct Row {
  const char *routine;
  const char *prec;
  int nb, nbmin, nx;
};
constexpr Row kRows[] = {
    // general LU, one thread (the threaded answers are below): no outer
    // blocks, the recursive core alone (it beat blocks of 64 to 256 by 5 to
    // 20 % at orders 2000 and 4000)
    {"GETRF", "SDCZ", 1, 2, 64},
    // inverse from the LU
    {"GETRI", "SCDZ", 64, 2, 128},
    // triangular inverse: the complex blocked form pays only on larger
    // orders, once the level-3 multiply and solve run on both cores
    {"TRTRI", "SD", 64, 2, 64},
    {"TRTRI", "CZ", 128, 2, 384},
    // band LU: blocks of columns inside the band; the crossover is the band
    // width kl + ku from which a team factors (2 threads: 1.1 times faster
    // at 72 for real data, 1.15 at 48 for complex; 1.7 and 1.85 at 400)
    {"GBTRF", "SD", 32, 2, 72},
    {"GBTRF", "CZ", 32, 2, 48},
    // Cholesky: the recursive factorization down to blocks of 16 columns,
    // which the column-by-column code then factors; nb is the scheduled
    // factorization's block (by order and team: potrf_block)
    {"POTRF", "SDCZ", 128, 2, 16},
    // band Cholesky: blocks of up to 32 columns inside the band
    {"PBTRF", "SDCZ", 32, 2, 0},
    // symmetric and Hermitian indefinite factorizations: panels of 64
    // columns (32, 64, 96 and 128 timed at orders 1000 and 4000 on one
    // thread: 64 best for real data, 74 GFLOP/s at 4000 against 57 to 73,
    // and within 3% of 128, the best, for complex). The crossover is the
    // order from which the panels run on a team, which takes the column
    // products and the trailing update; below it all runs on the calling
    // thread. Two threads, on a machine whose other jobs kept 3 to 10
    // threads runnable: at 256 the team's waits cost 5 times the work (4
    // GFLOP/s against 22 on one thread, real data); at 1000 the team gave
    // 30 GFLOP/s against 13 for the peers' two threads
    {"SYTRF", "SDCZ", 64, 2, 1000},
    {"HETRF", "CZ", 64, 2, 1000},
    // bidiagonal reduction: panels of nb columns and rows, the unblocked
    // reduction below the crossover; the panel's team works from an m n
    // of LABRD's nx squared
    {"GEBRD", "SDCZ", 32, 2, 128},
    {"LABRD", "SDCZ", 1, 2, 300},
    // the bidiagonal QR: nb is the number of sweeps whose rotations are
    // gathered before they go to the vectors together (lasr3). One thread,
    // vectors of order 2000: 8.0 s sweep by sweep, 1.8 s in batches of 16,
    // 1.48 of 32, 1.39 of 64 (1000: 32 and 64 best)
    {"BDSQR", "SDCZ", 32, 2, 0},
    // the tridiagonal QL/QR: the sweeps gathered before they go to Z
    // together, as for the bidiagonal QR. One thread, vectors of order
    // 3000: 17.3 s sweep by sweep, 5.5 s in batches of 32 (1500, where Z
    // still fits the last-level cache: 0.74 s and 0.68 s)
    {"STEQR", "SDCZ", 32, 2, 0},
    // QR with column pivoting: blocks of 32 pivot steps, the last 32
    // columns (or fewer) one by one
    {"GEQP3", "SDCZ", 32, 2, 32},
    // divide and conquer on a bidiagonal, for the SVD and the least-squares
    // solve: no blocks; the leaves hold up to query 9's 25 rows
    {"BDSDC", "SD", 1, 2, 0},
    {"GELSD", "SDCZ", 1, 2, 0},
    // QR and LQ family: the unblocked code below order 128. The QR and its
    // products take blocks of 64 (sgeqrf and sormqr against blocks of 32,
    // one thread, orders 1000 and 2000: 1.07 to 1.4 and 1.08 to 1.19 times
    // faster; two threads 1.03 to 1.2); the others keep the published 32.
    // The products' crossover answers are the team's (below)
    {"GEQRF", "SDCZ", 64, 2, 128},
    {"GELQF", "SDCZ", 32, 2, 128},
    {"ORGQR", "SD", 32, 2, 128},
    {"UNGQR", "CZ", 32, 2, 128},
    {"ORGLQ", "SD", 32, 2, 128},
    {"UNGLQ", "CZ", 32, 2, 128},
    {"ORMQR", "SD", 64, 2, 128},
    {"UNMQR", "CZ", 64, 2, 128},
    {"ORMLQ", "SD", 32, 2, 128},
    {"UNMLQ", "CZ", 32, 2, 128},
    {"ORMQL", "SD", 32, 2, 128},
    {"UNMQL", "CZ", 32, 2, 128},
    // reduction to tridiagonal form: panels of nb reflectors, the unblocked
    // reduction below the crossover (at 256 on one thread with 128, the
    // unblocked rank-2 updates and products of the last 128 columns took
    // about a fifth of the time). LATRD's crossover is the order from which
    // the panel's products run on the team; SYTD3's the order from which the
    // rank-2k step is split (below both, the whole loop runs on one thread).
    // Two threads on a quiet machine: the panel's team took order 2000 from
    // 53 to 87 GFLOP/s, 1000 from 47 to 68 with the step split too; at 256
    // the split step lost (22 against 26 GFLOP/s), at 512 it made no
    // difference.
    {"SYTRD", "SD", 32, 2, 32},
    {"HETRD", "CZ", 32, 2, 32},
    {"LATRD", "SDCZ", 1, 2, 512},
    {"SYTD3", "SDCZ", 1, 2, 512},
    {"ORGQL", "SD", 32, 2, 128},
    {"UNGQL", "CZ", 32, 2, 128},
    // the generalized problem's reduction: the published blocks of 64
    {"SYGST", "SD", 64, 2, 0},
    {"HEGST", "CZ", 64, 2, 0},
    // divide and conquer on a tridiagonal: no blocks, leaves of query 9's
    // 25 rows; from order 128 the leaves and each level's merges are shared
    // out over the team
    {"STEDC", "SDCZ", 1, 2, 128},
    // the reduction to Hessenberg form: the published panels of 32 columns,
    // the last 128 columns one reflector at a time
    {"GEHRD", "SDCZ", 32, 2, 128},
    // its panel: the rows from which the long product with each reflector
    // is shared out over the team
    {"LAHR2", "SDCZ", 1, 2, 512},
};

// The routine's name as the table spells it, and its precision letter.
struct Name {
  char prec;
  char routine[6];
};
Name parse(const char *name, int len) {
  Name out{' ', {}};
  char buf[7] = {};
  const int n = std::clamp(len, 0, 6);
  for (int i = 0; i < n && name[i] != '\0'; ++i) {
    const char c = name[i];
    buf[i] = (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c;
  }
  out.prec = buf[0];
  int k = 0;
  for (int i = 1; i < 6 && buf[i] != '\0' && buf[i] != ' '; ++i) out.routine[k++] = buf[i];
  return out;
}

const Row *row_of(const Name &n) {
  for (const Row &r : kRows)
    if (std::strcmp(r.routine, n.routine) == 0 && std::strchr(r.prec, n.prec) != nullptr &&
        n.prec != '\0')
      return &r;
  return nullptr;
}

// ---- the threaded LU ("GETRF"): by thread count and order ----------------------------

// Query 3: the LU's crossover to the serial factorization.
int getrf_crossover(char prec, int n, int threads) {
  if (prec == 'D' && threads == 8 && n >= 2801) return 4000;
  return 64;
}

// Query 1 with two or more threads: the column block of the scheduled LU.
// With one thread the table row's nb.
int getrf_block(int n, int threads) {
  if (threads > 8) return n <= 8000 ? 128 : 200;
  if (threads >= 5) {
    if (n <= 1100) return 16;
    if (n <= 2000) return 32;
    if (n <= 3600) return 64;
    if (n <= 4000) return 128;
    if (n <= 9000) return 200;
    return 400;
  }
  if (n <= 1100) return 24;
  if (n <= 4000) return 64;
  if (n <= 6000) return 200;
  return 400;
}

// Query 17: how many panels the factorization may run ahead of the slowest
// trailing update.
int getrf_lookahead(int n, int threads) {
  if (threads <= 1 || threads > 8) return 1;
  if (threads >= 5) return (n <= 3600 || n > 4000) ? 2 : 1;
  if (n <= 4000) return 3;
  return n <= 6000 ? 2 : 1;
}

// Query 18: column blocks an update task takes at once (0: one).
int getrf_chunk(int n, int threads) {
  if (threads <= 1) return 0;
  if (threads > 8) return n <= 2200 ? 0 : 8;  // not measured: the 5-8 thread answer
  if (threads >= 5) return n <= 3600 ? 4 : 8;
  return n <= 4000 ? 4 : 8;
}

// Query 19: the inner block of the inner-blocked LU's panels.
int getrf_inner(int nb) {
  return std::clamp(nb / 4, 8, 32);
}

// ---- the band LU ("GBTRF") and its solve ("GBTRS") ------------------------------------

// Query 3 for the band LU (arguments m, n, kl, ku): the row's band width,
// or none below six column blocks, where a team gains nothing.
int gbtrf_crossover(const Row &row, int m, int n) {
  return std::min(m, n) < 6 * row.nb ? INT_MAX : row.nx;
}

// Query 18 for the band LU: trailing columns per update task. The tasks
// are cut the same way for every thread count, so this cannot depend on
// it; 96 was best or within 5% of it on bands from 128 to 1000 wide, with
// one thread and with two.
int gbtrf_chunk() {
  return 96;
}

// The fewest right-hand sides worth a team for a solve that takes each
// column on its own, from the multiply-adds of one column: enough columns
// for `team_work` multiply-adds in all, and never fewer than `fewest`. For
// the band solves a team of two halves the time from about 2000
// multiply-adds in all; the default margin covers waking the team.
int columns_for_team(double per_column, double team_work = 2.0e4, int fewest = 2) {
  const double columns = team_work / std::max(per_column, 1.0);
  return columns >= 1.0e6 ? 1000000 : std::max(fewest, static_cast<int>(std::ceil(columns)));
}

// Query 3 for the band LU's solve (arguments n, kl, ku).
int gbtrs_crossover(int n, int kl, int ku) {
  return columns_for_team(static_cast<double>(n) * (2.0 * kl + ku + 1));
}

// ---- Cholesky ("POTRF") and the band Cholesky's solve ("PBTRS") ------------------------

// Query 3 with a team (third argument): the smallest order the scheduled
// factorization takes.
int potrf_team_crossover() {
  return 256;
}

// Query 1 with a team: the scheduled factorization's block of columns.
// Timed with two threads on orders 1000 to 8000 and blocks of 48 to 640
// (single real; complex agreed): wider blocks pay as the order grows, the
// owner's large products then running longer against each panel (at 8000,
// 143 GFLOP/s with 64, 165 with 128, 186 with 384).
int potrf_block(int n) {
  if (n <= 1500) return 96;
  if (n <= 3000) return 192;
  if (n <= 6000) return 256;
  return 384;
}

// Query 3 for the band Cholesky's solve (arguments n, kd): two band
// triangular solves per column.
int pbtrs_crossover(int n, int kd) {
  return columns_for_team(static_cast<double>(n) * (2.0 * kd + 2));
}

// Query 3 for the symmetric indefinite solves "SYTRS" and "HETRS"
// (argument n): the fewest right-hand sides worth a team, from the n^2
// multiply-adds of one column. Timed through ssytrs and chetrs (upper,
// one thread against two, orders 16 to 512, 2 to 64 right-hand sides): a
// team of two gained 1.3 to 1.9 from about 6e4 multiply-adds in all, and
// at most 1.2 on two or three columns of orders up to 256, which this
// answer keeps serial (at 512 two columns gained 1.6).
int sytrs_crossover(int n) {
  return columns_for_team(static_cast<double>(n) * n, 6.0e4, n < 384 ? 4 : 2);
}

// Query 1 for "SYTRS" and "HETRS" (arguments n, nrhs): the column block
// of the level-3 solve, or 1 for the published one. Timed through ssytrs
// on one thread (upper, 4 to 512 right-hand sides): the level-3 form in
// blocks of 64 beat the published one by 1.3 to 20 times from 8 columns at
// orders up to 128 (gathering W costs about one column's solve, and the
// published solve's level-1 calls are short there), from 16 at 256 and 512
// (1.3, 1.7 at 32) and from 32 at 1024 (2.9; even at 16).
int sytrs_block(int n, int nrhs) {
  const int fewest = n <= 128 ? 8 : n < 768 ? 16 : 32;
  return nrhs >= fewest ? 64 : 1;
}

// Query 3 for the blocked rotations "LASR3" (arguments: the rows or
// columns the team would share, the rotations): the fewest worth a team,
// from the 4 multiplications per rotation and element.
int lasr3_crossover(int rotations) {
  return columns_for_team(4.0 * rotations, 2.0e5, 32);
}

bool is_routine(const Name &n, const char *routine) {
  return std::strcmp(n.routine, routine) == 0;
}

bool is_getrf(const Name &n) {
  return std::strcmp(n.routine, "GETRF") == 0;
}
// "GE" ... "TRF": the general factorizations that have threaded schedules.
bool is_ge_trf(const Name &n) {
  const std::size_t len = std::strlen(n.routine);
  return len >= 5 && n.routine[0] == 'G' && n.routine[1] == 'E' &&
         std::strcmp(n.routine + len - 3, "TRF") == 0;
}

// ---- the QR family's teams ("GEQRF", the products "ORMQR", "UNMLQ", ...) --------------

// Query 3 for "GEQRF" with a team (third argument): the smallest min(m, n)
// the look-ahead factorization takes. ORB_QR_TEAM_FROM (a positive order,
// read once) moves it, so that the reference testers' small orders reach
// the team too.
int geqrf_team_crossover() {
  static const int from = [] {
    char buf[16];
    if (platform::env_get("ORB_QR_TEAM_FROM", buf, sizeof buf) > 0) {
      const int v = std::atoi(buf);
      if (v > 0) return v;
    }
    return 256;
  }();
  return from;
}

// Query 3 for the products with a team (arguments: the order of Q, the
// reflectors k, the team): the fewest columns (left) or rows (right) of C
// worth splitting, from the 2 nq k multiply-adds of each.
int orm_team_crossover(int nq, int k) {
  return columns_for_team(2.0 * std::max(nq, 1) * std::max(k, 1), 1.0e5, 16);
}

bool is_orm(const Name &n) {
  for (const char *r : {"ORMQR", "UNMQR", "ORMLQ", "UNMLQ", "ORMQL", "UNMQL"})
    if (std::strcmp(n.routine, r) == 0) return true;
  return false;
}

// Query 3 for the tridiagonal reduction's panel ("LATRD") with a team:
// the order from which its products are split. ORB_LATRD_TEAM_FROM (a
// positive order, read once) moves it, for timing and for the testers.
int latrd_team_crossover(int fallback) {
  static const int from = [fallback] {
    char buf[16];
    if (platform::env_get("ORB_LATRD_TEAM_FROM", buf, sizeof buf) > 0) {
      const int v = std::atoi(buf);
      if (v > 0) return v;
    }
    return fallback;
  }();
  return from;
}

// The Hessenberg QR iteration's tuning (queries 12 to 16, arguments n,
// ilo, ihi): the published choices, by the order of the active block.
int hessenberg_qr(int query, int ilo, int ihi) {
  const int nh = std::max(ihi - ilo + 1, 0);
  int ns = 2;
  if (nh >= 6000)
    ns = 256;
  else if (nh >= 3000)
    ns = 128;
  else if (nh >= 590)
    ns = 64;
  else if (nh >= 150)
    ns = std::max(10, nh / static_cast<int>(std::log2(static_cast<double>(nh))));
  else if (nh >= 60)
    ns = 10;
  else if (nh >= 30)
    ns = 4;
  ns = std::max(2, ns - ns % 2);
  switch (query) {
    case kQrSmall:
      return 75;
    case kQrWindow:
      return nh <= 500 ? ns : 3 * ns / 2;
    case kQrNibble:
      return 14;
    case kQrShifts:
      return ns;
    default:  // kQrAccumulate
      return ns >= 14 ? 2 : 0;
  }
}

}  // namespace

int oracle(int query, const char *name, const char *opts, int n1, int n2, int n3, int n4,
           int name_len, int opts_len) {
  (void)opts;
  (void)opts_len;
  const Name n = parse(name, name_len);
  const Row *row = row_of(n);
  const int threads = n3;
  switch (query) {
    case kBlockSize:
      if (is_getrf(n) && threads >= 2) return getrf_block(n2, threads);
      if (is_routine(n, "POTRF") && threads >= 2) return potrf_block(n1);
      if (is_routine(n, "SYTRS") || is_routine(n, "HETRS")) return sytrs_block(n1, n2);
      return row ? row->nb : 1;
    case kMinBlockSize:
      return row ? row->nbmin : 2;
    case kCrossover:
      if (is_getrf(n)) return getrf_crossover(n.prec, n2, threads);
      if (is_routine(n, "GBTRF") && row) return gbtrf_crossover(*row, n1, n2);
      if (is_routine(n, "GBTRS")) return gbtrs_crossover(n1, n2, n3);
      if (is_routine(n, "POTRF") && threads >= 2) return potrf_team_crossover();
      if (is_routine(n, "PBTRS")) return pbtrs_crossover(n1, n2);
      if (is_routine(n, "SYTRS") || is_routine(n, "HETRS")) return sytrs_crossover(n1);
      if (is_routine(n, "LASR3")) return lasr3_crossover(n2);
      if (is_routine(n, "GEQRF") && threads >= 2) return geqrf_team_crossover();
      if (is_orm(n) && threads >= 2) return orm_team_crossover(n1, n2);
      if (is_routine(n, "LATRD") && row) return latrd_team_crossover(row->nx);
      return row ? row->nx : 0;
    case kShifts:
      return 6;
    case kMinColumns:
      return 2;
    case kSvdCrossover:
      return static_cast<int>(static_cast<float>(std::min(n1, n2)) * 1.6f);
    case kProcessors:
      return threads::max_threads();
    case kMultishift:
      return 50;
    case kSubproblem:
      return 25;
    case kNanSafe:
    case kInfSafe:
      return 1;
    case kQrSmall:
    case kQrWindow:
    case kQrNibble:
    case kQrShifts:
    case kQrAccumulate:
      return hessenberg_qr(query, n2, n3);
    case kLookahead:
      if (!is_ge_trf(n)) return 1;
      return getrf_lookahead(n2, threads);
    case kChunk:
      if (is_routine(n, "GBTRF")) return gbtrf_chunk();
      if (!is_ge_trf(n)) return 0;
      return getrf_chunk(n2, threads);
    case kInnerBlock:  // the fourth argument: the outer block
      return getrf_inner(n4 > 0 ? n4 : (row ? row->nb : 32));
    default:
      return -1;
  }
}

}  // namespace orb::lapack
