// The sparse level-1 operations on a compressed vector (nz values and their
// 1-based positions in a full vector). Gather, scatter and the update go
// element by element in every variant (repeated positions then behave as the
// published loops); the dot products gather with AVX2 where it runs.
#include "blas/level1/kernels.h"
#include "blas/level1/level1.h"

namespace orb::blas {
namespace l1 {
namespace {

#define ORB_L1_SPARSE_DOT(k, T) ORB_L1_WIDER(ORB_L1_SINGLE(k, T), k, T)

template <class T>
Kernel<ORB_L1_FN(dotui, T)> k_dotui{ORB_L1_SPARSE_DOT(dotui, T)};
template <class T>
Kernel<ORB_L1_FN(dotci, T)> k_dotci{ORB_L1_SPARSE_DOT(dotci, T)};
template <class T>
Kernel<ORB_L1_FN(axpyi, T)> k_axpyi{ORB_L1_SINGLE(axpyi, T)};
template <class T>
Kernel<ORB_L1_FN(gthr, T)> k_gthr{ORB_L1_SINGLE(gthr, T)};
template <class T>
Kernel<ORB_L1_FN(sctr, T)> k_sctr{ORB_L1_SINGLE(sctr, T)};

}  // namespace

void add_sparse_records(std::vector<DispatchRecord> &out) {
  auto all = [&](auto tag) {
    using T = decltype(tag);
    out.push_back(record<T>("dotui", k_dotui<T>));
    out.push_back(record<T>("dotci", k_dotci<T>));
    out.push_back(record<T>("axpyi", k_axpyi<T>));
    out.push_back(record<T>("gthr", k_gthr<T>));
    out.push_back(record<T>("sctr", k_sctr<T>));
  };
  all(float{});
  all(c8{});
  all(double{});
  all(c16{});
}

}  // namespace l1

template <class T>
void axpyi(int nz, T a, const T *x, const int *indx, T *y) {
  if (nz <= 0 || l1::is_zero(a)) return;
  l1::k_axpyi<T>(nz, a, x, indx, y);
}

template <class T>
T dotui(int nz, const T *x, const int *indx, const T *y) {
  T r(0);
  if (nz > 0) l1::k_dotui<T>(nz, x, indx, y, &r);
  return r;
}

template <class T>
T dotci(int nz, const T *x, const int *indx, const T *y) {
  T r(0);
  if (nz > 0) l1::k_dotci<T>(nz, x, indx, y, &r);
  return r;
}

template <class T>
void gthr(int nz, const T *y, T *x, const int *indx) {
  if (nz > 0) l1::k_gthr<T>(nz, y, x, indx);
}

template <class T>
void sctr(int nz, const T *x, const int *indx, T *y) {
  if (nz > 0) l1::k_sctr<T>(nz, x, indx, y);
}

#define ORB_INSTANTIATE(T)                                  \
  template void axpyi(int, T, const T *, const int *, T *); \
  template T dotui(int, const T *, const int *, const T *); \
  template T dotci(int, const T *, const int *, const T *); \
  template void gthr(int, const T *, T *, const int *);     \
  template void sctr(int, const T *, const int *, T *);
ORB_INSTANTIATE(float)
ORB_INSTANTIATE(double)
ORB_INSTANTIATE(c8)
ORB_INSTANTIATE(c16)
#undef ORB_INSTANTIATE

}  // namespace orb::blas
