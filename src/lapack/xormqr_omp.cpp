// xormqr_omp: the products with the Q of a QR factorization behind SORMQR
// and CUNMQR (orm_blocked.h), and the team choice the three product modules
// share.
#include <omp.h>

#include <algorithm>
#include <complex>

#include "lapack/orm_blocked.h"
#include "service/threading.h"

namespace orb::lapack {
namespace orm {
namespace {
thread_local int t_forced_team = 0;
}  // namespace

bool team_forced() {
  return t_forced_team > 0;
}

int team_size(const char *routine, char prec, Side side, int m, int n, int k, int threads) {
  if (t_forced_team > 0) return t_forced_team;
  if (threads <= 0) threads = omp_in_parallel() ? 1 : orb::threads::max_threads();
  if (threads < 2) return 1;
  const bool left = side == Side::kLeft;
  const int nq = left ? m : n, other = left ? n : m;
  const char nm[7] = {prec, routine[1], routine[2], routine[3], routine[4], routine[5], '\0'};
  // The fewest columns (left) or rows (right) of C worth a team, and
  // slices of at least 8.
  if (other < oracle(kCrossover, nm, nq, k, threads)) return 1;
  return std::max(1, std::min(threads, other / 8));
}

}  // namespace orm

void orm_force_team(int threads) {
  orm::t_forced_team = std::max(0, threads);
}

template <class T>
int orm_team(const char *routine, Side side, int m, int n, int k, int threads) {
  return orm::team_size(name<T>(routine).text, precision_letter<T>(), side, m, n, k, threads);
}

template <class T>
std::int64_t orm_worksize(const char *routine, Side side, int m, int n, int k) {
  // ORMQR, UNMLQ, ORMQL: the last two letters name the factorization.
  const orm::Layout layout = routine[3] == 'L'   ? orm::Layout::kLq
                             : routine[4] == 'L' ? orm::Layout::kQl
                                                 : orm::Layout::kQr;
  return orm::worksize<T>(layout, side, m, n, k);
}

template <class T>
void ormqr(Side side, Op op, int m, int n, int k, const T *a, int lda, const T *tau, T *c, int ldc,
           T *work, int lwork) {
  orm::run(orm::Layout::kQr, side, op, m, n, k, a, lda, tau, c, ldc, work, lwork);
}

#define ORB_XORMQR(T)                                                       \
  template int orm_team<T>(const char *, Side, int, int, int, int);         \
  template std::int64_t orm_worksize<T>(const char *, Side, int, int, int); \
  template void ormqr<T>(Side, Op, int, int, int, const T *, int, const T *, T *, int, T *, int);
ORB_XORMQR(float)
ORB_XORMQR(double)
ORB_XORMQR(std::complex<float>)
ORB_XORMQR(std::complex<double>)
#undef ORB_XORMQR

}  // namespace orb::lapack
