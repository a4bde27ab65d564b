// Every exported BLAS routine gives the same bits wherever its operands lie
// and whatever lies between the columns of its matrices, on every processor
// type; and the check itself catches a call that breaks this.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "orb.h"
#include "support/child.h"
#include "support/placement.h"

namespace {

using namespace orb::test::placement;
using Cases = std::vector<Case>;

// Sizes around the kernels' vector widths, unrolling and blocks.
const std::vector<int> kLength = {1, 2, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 65, 129, 1000};
const std::vector<std::pair<int, int>> kIncrements = {{1, 1}, {1, -2}, {3, 1}};
const std::vector<int> kOrder = {1, 3, 8, 17, 33, 70};
const std::vector<int> kTriangle = {1, 5, 17, 31, 32, 33, 70, 100};
struct Dims {
  int m, n, k;
};
const std::vector<Dims> kProduct = {{1, 1, 1}, {5, 3, 7}, {16, 6, 9}, {17, 13, 33}, {37, 29, 260}};

template <class... A>
std::string label(const char *name, const A &...parts) {
  std::ostringstream s;
  s << name;
  ((s << ' ' << parts), ...);
  return s.str();
}

template <class T>
T *at(void *const *p, int k) {
  return static_cast<T *>(p[k]);
}

// ---- level 1 ----------------------------------------------------------------

template <class T>
Cases axpy(const char *name,
           void (*f)(const int *, const T *, const T *, const int *, T *, const int *)) {
  Cases out;
  for (int n : kLength)
    for (auto [ix, iy] : kIncrements)
      out.push_back(
          {label(name, n, ix, iy), {vector<T>(n, ix), vector<T>(n, iy, true)}, [=](void *const *p) {
             const T a = value<T>(0.7, -0.3);
             f(&n, &a, at<T>(p, 0), &ix, at<T>(p, 1), &iy);
           }});
  return out;
}

// copy (x read) and swap (both written).
template <class X, class T>
Cases pair(const char *name, void (*f)(const int *, X *, const int *, T *, const int *)) {
  Cases out;
  for (int n : kLength)
    for (auto [ix, iy] : kIncrements)
      out.push_back({label(name, n, ix, iy),
                     {vector<T>(n, ix, !std::is_const_v<X>), vector<T>(n, iy, true)},
                     [=](void *const *p) { f(&n, at<X>(p, 0), &ix, at<T>(p, 1), &iy); }});
  return out;
}

template <class T, class R>
Cases dot(const char *name, R (*f)(const int *, const T *, const int *, const T *, const int *)) {
  Cases out;
  for (int n : kLength)
    for (auto [ix, iy] : kIncrements)
      out.push_back(
          {label(name, n, ix, iy),
           {vector<T>(n, ix), vector<T>(n, iy), scalar<R>(true)},
           [=](void *const *p) { *at<R>(p, 2) = f(&n, at<T>(p, 0), &ix, at<T>(p, 1), &iy); }});
  return out;
}

template <class T>
Cases dot(const char *name,
          void (*f)(T *, const int *, const T *, const int *, const T *, const int *)) {
  Cases out;
  for (int n : kLength)
    for (auto [ix, iy] : kIncrements)
      out.push_back(
          {label(name, n, ix, iy),
           {vector<T>(n, ix), vector<T>(n, iy), scalar<T>(true)},
           [=](void *const *p) { f(at<T>(p, 2), &n, at<T>(p, 0), &ix, at<T>(p, 1), &iy); }});
  return out;
}

// nrm2, asum, i?amax, i?amin: one vector in, one value out.
template <class T, class R>
Cases reduce(const char *name, R (*f)(const int *, const T *, const int *)) {
  Cases out;
  for (int n : kLength)
    for (int inc : {1, 2})
      out.push_back({label(name, n, inc),
                     {vector<T>(n, inc), scalar<R>(true)},
                     [=](void *const *p) { *at<R>(p, 1) = f(&n, at<T>(p, 0), &inc); }});
  return out;
}

template <class A, class T>
Cases scal(const char *name, void (*f)(const int *, const A *, T *, const int *)) {
  Cases out;
  for (int n : kLength)
    for (int inc : {1, 2})
      out.push_back({label(name, n, inc), {vector<T>(n, inc, true)}, [=](void *const *p) {
                       const A a = value<A>(0.7, -0.3);
                       f(&n, &a, at<T>(p, 0), &inc);
                     }});
  return out;
}

template <class T, class C, class S>
Cases rot(const char *name,
          void (*f)(const int *, T *, const int *, T *, const int *, const C *, const S *)) {
  Cases out;
  for (int n : kLength)
    for (auto [ix, iy] : kIncrements)
      out.push_back({label(name, n, ix, iy),
                     {vector<T>(n, ix, true), vector<T>(n, iy, true)},
                     [=](void *const *p) {
                       const C c = value<C>(0.6);
                       const S s = value<S>(0.8, 0.1);
                       f(&n, at<T>(p, 0), &ix, at<T>(p, 1), &iy, &c, &s);
                     }});
  return out;
}

Cases rotm(const char *name,
           void (*f)(const int *, float *, const int *, float *, const int *, const float *)) {
  Cases out;
  for (int n : kLength)
    for (auto [ix, iy] : kIncrements)
      for (float flag : {-1.0f, 0.0f, 1.0f})
        out.push_back({label(name, n, ix, iy, flag),
                       {vector<float>(n, ix, true), vector<float>(n, iy, true)},
                       [=](void *const *p) {
                         const float param[5] = {flag, 0.5f, -0.25f, 0.75f, 1.5f};
                         f(&n, at<float>(p, 0), &ix, at<float>(p, 1), &iy, param);
                       }});
  return out;
}

// The plane-rotation generators work on scalars alone.
Cases rotg() {
  return {{"srotg",
           {scalar<float>(true), scalar<float>(true), scalar<float>(true), scalar<float>(true)},
           [](void *const *p) {
             srotg(at<float>(p, 0), at<float>(p, 1), at<float>(p, 2), at<float>(p, 3));
           }},
          {"crotg",
           {scalar<orb_complex8>(true), scalar<orb_complex8>(), scalar<float>(true),
            scalar<orb_complex8>(true)},
           [](void *const *p) {
             crotg(at<orb_complex8>(p, 0), at<orb_complex8>(p, 1), at<float>(p, 2),
                   at<orb_complex8>(p, 3));
           }},
          {"srotmg",
           {scalar<float>(true), scalar<float>(true), scalar<float>(true), scalar<float>(),
            vector<float>(5, 1, true)},
           [](void *const *p) {
             *at<float>(p, 0) = std::fabs(*at<float>(p, 0));  // a positive d1
             srotmg(at<float>(p, 0), at<float>(p, 1), at<float>(p, 2), at<float>(p, 3),
                    at<float>(p, 4));
           }}};
}

// ---- sparse level 1: nz values and their indices into a dense vector --------

const std::vector<int> kNonzeros = {1, 3, 8, 17, 40};

template <class T>
Cases axpyi(const char *name, void (*f)(const int *, const T *, const T *, const int *, T *)) {
  Cases out;
  for (int nz : kNonzeros)
    out.push_back({label(name, nz),
                   {vector<T>(nz, 1), indices(nz, 2 * nz + 3), vector<T>(2 * nz + 3, 1, true)},
                   [=](void *const *p) {
                     const T a = value<T>(0.7, -0.3);
                     f(&nz, &a, at<T>(p, 0), at<int>(p, 1), at<T>(p, 2));
                   }});
  return out;
}

template <class T, class R>
Cases doti(const char *name, R (*f)(const int *, const T *, const int *, const T *)) {
  Cases out;
  for (int nz : kNonzeros)
    out.push_back(
        {label(name, nz),
         {vector<T>(nz, 1), indices(nz, 2 * nz + 3), vector<T>(2 * nz + 3, 1), scalar<R>(true)},
         [=](void *const *p) { *at<R>(p, 3) = f(&nz, at<T>(p, 0), at<int>(p, 1), at<T>(p, 2)); }});
  return out;
}

template <class T>
Cases doti(const char *name, void (*f)(T *, const int *, const T *, const int *, const T *)) {
  Cases out;
  for (int nz : kNonzeros)
    out.push_back(
        {label(name, nz),
         {vector<T>(nz, 1), indices(nz, 2 * nz + 3), vector<T>(2 * nz + 3, 1), scalar<T>(true)},
         [=](void *const *p) { f(at<T>(p, 3), &nz, at<T>(p, 0), at<int>(p, 1), at<T>(p, 2)); }});
  return out;
}

// gather: x(1:nz) = y(indx); scatter: y(indx) = x(1:nz).
template <class T>
Cases gthr(const char *name, void (*f)(const int *, const T *, T *, const int *)) {
  Cases out;
  for (int nz : kNonzeros)
    out.push_back({label(name, nz),
                   {vector<T>(2 * nz + 3, 1), vector<T>(nz, 1, true), indices(nz, 2 * nz + 3)},
                   [=](void *const *p) { f(&nz, at<T>(p, 0), at<T>(p, 1), at<int>(p, 2)); }});
  return out;
}

template <class T>
Cases sctr(const char *name, void (*f)(const int *, const T *, const int *, T *)) {
  Cases out;
  for (int nz : kNonzeros)
    out.push_back({label(name, nz),
                   {vector<T>(nz, 1), indices(nz, 2 * nz + 3), vector<T>(2 * nz + 3, 1, true)},
                   [=](void *const *p) { f(&nz, at<T>(p, 0), at<int>(p, 1), at<T>(p, 2)); }});
  return out;
}

// ---- level 2 ------------------------------------------------------------------

const std::vector<std::pair<int, int>> kVectorIncrements = {{1, 1}, {2, -1}};

template <class T>
Cases gemv(const char *name,
           void (*f)(const char *, const int *, const int *, const T *, const T *, const int *,
                     const T *, const int *, const T *, T *, const int *, int)) {
  std::vector<std::pair<int, int>> shapes;
  for (int m : kOrder)
    for (int n : kOrder) shapes.push_back({m, n});
  shapes.push_back({4100, 2});  // more rows than one row block
  Cases out;
  for (char t : {'N', 'T', 'C'})
    for (auto [m, n] : shapes)
      for (auto [ix, iy] : kVectorIncrements) {
        const int lda = m + 3, lx = t == 'N' ? n : m, ly = t == 'N' ? m : n;
        out.push_back({label(name, t, m, n, ix, iy),
                       {matrix<T>(m, n, lda), vector<T>(lx, ix), vector<T>(ly, iy, true)},
                       [=](void *const *p) {
                         const T al = value<T>(0.7, -0.3), be = value<T>(0.5, 0.25);
                         f(&t, &m, &n, &al, at<T>(p, 0), &lda, at<T>(p, 1), &ix, &be, at<T>(p, 2),
                           &iy, 1);
                       }});
      }
  return out;
}

template <class T>
Cases ger(const char *name, void (*f)(const int *, const int *, const T *, const T *, const int *,
                                      const T *, const int *, T *, const int *)) {
  Cases out;
  for (int m : kOrder)
    for (int n : kOrder)
      for (auto [ix, iy] : kVectorIncrements) {
        const int lda = m + 3;
        out.push_back({label(name, m, n, ix, iy),
                       {vector<T>(m, ix), vector<T>(n, iy), matrix<T>(m, n, lda, true)},
                       [=](void *const *p) {
                         const T al = value<T>(0.7, -0.3);
                         f(&m, &n, &al, at<T>(p, 0), &ix, at<T>(p, 1), &iy, at<T>(p, 2), &lda);
                       }});
      }
  return out;
}

template <class T>
Cases symv(const char *name, void (*f)(const char *, const int *, const T *, const T *, const int *,
                                       const T *, const int *, const T *, T *, const int *, int)) {
  Cases out;
  for (char u : {'U', 'L'})
    for (int n : kTriangle)
      for (auto [ix, iy] : kVectorIncrements) {
        const int lda = n + 3;
        out.push_back({label(name, u, n, ix, iy),
                       {matrix<T>(n, n, lda), vector<T>(n, ix), vector<T>(n, iy, true)},
                       [=](void *const *p) {
                         const T al = value<T>(0.7, -0.3), be = value<T>(0.5, 0.25);
                         f(&u, &n, &al, at<T>(p, 0), &lda, at<T>(p, 1), &ix, &be, at<T>(p, 2), &iy,
                           1);
                       }});
      }
  return out;
}

template <class A, class T>
Cases syr(const char *name, void (*f)(const char *, const int *, const A *, const T *, const int *,
                                      T *, const int *, int)) {
  Cases out;
  for (char u : {'U', 'L'})
    for (int n : kTriangle)
      for (int ix : {1, -2}) {
        const int lda = n + 3;
        out.push_back({label(name, u, n, ix),
                       {vector<T>(n, ix), matrix<T>(n, n, lda, true)},
                       [=](void *const *p) {
                         const A al = value<A>(0.7, -0.3);
                         f(&u, &n, &al, at<T>(p, 0), &ix, at<T>(p, 1), &lda, 1);
                       }});
      }
  return out;
}

template <class T>
Cases syr2(const char *name, void (*f)(const char *, const int *, const T *, const T *, const int *,
                                       const T *, const int *, T *, const int *, int)) {
  Cases out;
  for (char u : {'U', 'L'})
    for (int n : kTriangle)
      for (auto [ix, iy] : kVectorIncrements) {
        const int lda = n + 3;
        out.push_back({label(name, u, n, ix, iy),
                       {vector<T>(n, ix), vector<T>(n, iy), matrix<T>(n, n, lda, true)},
                       [=](void *const *p) {
                         const T al = value<T>(0.7, -0.3);
                         f(&u, &n, &al, at<T>(p, 0), &ix, at<T>(p, 1), &iy, at<T>(p, 2), &lda, 1);
                       }});
      }
  return out;
}

// trmv and trsv.
template <class T>
Cases trxv(const char *name, void (*f)(const char *, const char *, const char *, const int *,
                                       const T *, const int *, T *, const int *, int, int, int)) {
  Cases out;
  for (char u : {'U', 'L'})
    for (char t : {'N', 'T', 'C'})
      for (char d : {'N', 'U'})
        for (int n : kTriangle)
          for (int ix : {1, -2}) {
            const int lda = n + 3;
            out.push_back({label(name, u, t, d, n, ix),
                           {matrix<T>(n, n, lda, false, Fill::kDominant), vector<T>(n, ix, true)},
                           [=](void *const *p) {
                             f(&u, &t, &d, &n, at<T>(p, 0), &lda, at<T>(p, 1), &ix, 1, 1, 1);
                           }});
          }
  return out;
}

// ---- level 3 ------------------------------------------------------------------

template <class T>
Cases gemm(const char *name, void (*f)(const char *, const char *, const int *, const int *,
                                       const int *, const T *, const T *, const int *, const T *,
                                       const int *, const T *, T *, const int *, int, int)) {
  Cases out;
  for (char ta : {'N', 'T', 'C'})
    for (char tb : {'N', 'T', 'C'})
      for (auto [m, n, k] : kProduct) {
        const int ra = ta == 'N' ? m : k, rb = tb == 'N' ? k : n;
        const int lda = ra + 2, ldb = rb + 2, ldc = m + 2;
        out.push_back({label(name, ta, tb, m, n, k),
                       {matrix<T>(ra, ta == 'N' ? k : m, lda),
                        matrix<T>(rb, tb == 'N' ? n : k, ldb), matrix<T>(m, n, ldc, true)},
                       [=](void *const *p) {
                         const T al = value<T>(0.7, -0.3), be = value<T>(0.5, 0.25);
                         f(&ta, &tb, &m, &n, &k, &al, at<T>(p, 0), &lda, at<T>(p, 1), &ldb, &be,
                           at<T>(p, 2), &ldc, 1, 1);
                       }});
      }
  return out;
}

// symm and hemm.
template <class T>
Cases symm(const char *name,
           void (*f)(const char *, const char *, const int *, const int *, const T *, const T *,
                     const int *, const T *, const int *, const T *, T *, const int *, int, int)) {
  Cases out;
  for (char s : {'L', 'R'})
    for (char u : {'U', 'L'})
      for (auto [m, n, k] : kProduct) {
        const int ka = s == 'L' ? m : n, lda = ka + 2, ldb = m + 2, ldc = m + 1;
        out.push_back({label(name, s, u, m, n),
                       {matrix<T>(ka, ka, lda), matrix<T>(m, n, ldb), matrix<T>(m, n, ldc, true)},
                       [=](void *const *p) {
                         const T al = value<T>(0.7, -0.3), be = value<T>(0.5, 0.25);
                         f(&s, &u, &m, &n, &al, at<T>(p, 0), &lda, at<T>(p, 1), &ldb, &be,
                           at<T>(p, 2), &ldc, 1, 1);
                       }});
        (void)k;
      }
  return out;
}

// syrk and herk, with the transpose forms the routine accepts.
template <class A, class T>
Cases syrk(const char *name, const char *forms,
           void (*f)(const char *, const char *, const int *, const int *, const A *, const T *,
                     const int *, const A *, T *, const int *, int, int)) {
  Cases out;
  for (char u : {'U', 'L'})
    for (const char *t = forms; *t; ++t)
      for (auto [m, n, k] : kProduct) {
        const char tr = *t;
        const int ra = tr == 'N' ? n : k, lda = ra + 2, ldc = n + 1;
        out.push_back({label(name, u, tr, n, k),
                       {matrix<T>(ra, tr == 'N' ? k : n, lda), matrix<T>(n, n, ldc, true)},
                       [=](void *const *p) {
                         const A al = value<A>(0.7, -0.3), be = value<A>(0.5, 0.25);
                         f(&u, &tr, &n, &k, &al, at<T>(p, 0), &lda, &be, at<T>(p, 1), &ldc, 1, 1);
                       }});
        (void)m;
      }
  return out;
}

// syr2k and her2k.
template <class B, class T>
Cases syr2k(const char *name, const char *forms,
            void (*f)(const char *, const char *, const int *, const int *, const T *, const T *,
                      const int *, const T *, const int *, const B *, T *, const int *, int, int)) {
  Cases out;
  for (char u : {'U', 'L'})
    for (const char *t = forms; *t; ++t)
      for (auto [m, n, k] : kProduct) {
        const char tr = *t;
        const int ra = tr == 'N' ? n : k, cols = tr == 'N' ? k : n, lda = ra + 2, ldb = ra + 1,
                  ldc = n + 3;
        out.push_back(
            {label(name, u, tr, n, k),
             {matrix<T>(ra, cols, lda), matrix<T>(ra, cols, ldb), matrix<T>(n, n, ldc, true)},
             [=](void *const *p) {
               const T al = value<T>(0.7, -0.3);
               const B be = value<B>(0.5, 0.25);
               f(&u, &tr, &n, &k, &al, at<T>(p, 0), &lda, at<T>(p, 1), &ldb, &be, at<T>(p, 2), &ldc,
                 1, 1);
             }});
        (void)m;
      }
  return out;
}

// trmm and trsm.
template <class T>
Cases trxm(const char *name, void (*f)(const char *, const char *, const char *, const char *,
                                       const int *, const int *, const T *, const T *, const int *,
                                       T *, const int *, int, int, int, int)) {
  Cases out;
  for (char s : {'L', 'R'})
    for (char u : {'U', 'L'})
      for (char t : {'N', 'T', 'C'})
        for (char d : {'N', 'U'})
          for (auto [m, n, k] : kProduct) {
            const int ka = s == 'L' ? m : n, lda = ka + 2, ldb = m + 3;
            out.push_back(
                {label(name, s, u, t, d, m, n),
                 {matrix<T>(ka, ka, lda, false, Fill::kDominant), matrix<T>(m, n, ldb, true)},
                 [=](void *const *p) {
                   const T al = value<T>(0.7, -0.3);
                   f(&s, &u, &t, &d, &m, &n, &al, at<T>(p, 0), &lda, at<T>(p, 1), &ldb, 1, 1, 1, 1);
                 }});
            (void)k;
          }
  return out;
}

// Every exported BLAS routine, one line each.
Cases every_blas_routine() {
  Cases all;
  auto add = [&](Cases c) { all.insert(all.end(), c.begin(), c.end()); };
  // Level 1.
  add(axpy("saxpy", saxpy)), add(axpy("SAXPY", SAXPY)), add(axpy("caxpy", caxpy));
  add(pair("scopy", scopy)), add(pair("SCOPY", SCOPY)), add(pair("ccopy", ccopy));
  add(pair("dcopy", dcopy)), add(pair("zcopy", zcopy));
  add(pair("sswap", sswap)), add(pair("cswap", cswap)), add(pair("dswap", dswap));
  add(pair("DSWAP", DSWAP)), add(pair("zswap", zswap)), add(pair("ZSWAP", ZSWAP));
  add(dot("sdot", sdot)), add(dot("SDOT", SDOT)), add(dot("cdotc", cdotc)),
      add(dot("cdotu", cdotu));
  add(reduce("snrm2", snrm2)), add(reduce("SNRM2", SNRM2)), add(reduce("dnrm2", dnrm2));
  add(reduce("scnrm2", scnrm2)), add(reduce("dznrm2", dznrm2));
  add(reduce("sasum", sasum)), add(reduce("scasum", scasum));
  add(reduce("isamax", isamax)), add(reduce("isamin", isamin)), add(reduce("icamax", icamax));
  add(reduce("icamin", icamin)), add(reduce("idamax", idamax)), add(reduce("IDAMAX", IDAMAX));
  add(reduce("izamax", izamax)), add(reduce("IZAMAX", IZAMAX));
  add(scal("sscal", sscal)), add(scal("SSCAL", SSCAL)), add(scal("cscal", cscal));
  add(scal("csscal", csscal)), add(scal("dscal", dscal)), add(scal("DSCAL", DSCAL));
  add(scal("zscal", zscal)), add(scal("ZSCAL", ZSCAL)), add(scal("ZDSCAL", ZDSCAL));
  add(rot("srot", srot)), add(rot("csrot", csrot)), add(rot("ZROT", ZROT));
  add(rotm("srotm", srotm)), add(rotg());
  add(axpyi("saxpyi", saxpyi)), add(axpyi("caxpyi", caxpyi));
  add(doti("sdoti", sdoti)), add(doti("cdotci", cdotci)), add(doti("cdotui", cdotui));
  add(gthr("sgthr", sgthr)), add(gthr("cgthr", cgthr));
  add(sctr("ssctr", ssctr)), add(sctr("csctr", csctr));
  // Level 2.
  add(gemv("sgemv", sgemv)), add(gemv("cgemv", cgemv)), add(gemv("dgemv", dgemv));
  add(gemv("DGEMV", DGEMV)), add(gemv("zgemv", zgemv)), add(gemv("ZGEMV", ZGEMV));
  add(ger("sger", sger)), add(ger("cgerc", cgerc)), add(ger("cgeru", cgeru));
  add(ger("dger", dger)), add(ger("DGER", DGER)), add(ger("zgerc", zgerc));
  add(ger("ZGERU", ZGERU));
  add(symv("ssymv", ssymv)), add(symv("chemv", chemv));
  add(syr("ssyr", ssyr)), add(syr("cher", cher)), add(syr("dsyr", dsyr)), add(syr("DSYR", DSYR));
  add(syr("zher", zher)), add(syr("ZHER", ZHER)), add(syr("ZSYR", ZSYR));
  add(syr2("ssyr2", ssyr2)), add(syr2("cher2", cher2));
  add(trxv("strmv", strmv)), add(trxv("strsv", strsv));
  add(trxv("ctrmv", ctrmv)), add(trxv("ctrsv", ctrsv));
  // Level 3.
  add(gemm("sgemm", sgemm)), add(gemm("cgemm", cgemm)), add(gemm("dgemm", dgemm));
  add(gemm("DGEMM", DGEMM)), add(gemm("zgemm", zgemm)), add(gemm("ZGEMM", ZGEMM));
  add(symm("ssymm", ssymm)), add(symm("chemm", chemm)), add(symm("csymm", csymm));
  add(syrk("ssyrk", "NTC", ssyrk)), add(syrk("dsyrk", "NT", dsyrk));
  add(syrk("csyrk", "NT", csyrk)), add(syrk("cherk", "NC", cherk));
  add(syrk("zherk", "NC", zherk));
  add(syr2k("ssyr2k", "NTC", ssyr2k)), add(syr2k("csyr2k", "NT", csyr2k));
  add(syr2k("cher2k", "NC", cher2k));
  add(trxm("strmm", strmm)), add(trxm("strsm", strsm)), add(trxm("ctrmm", ctrmm));
  add(trxm("ctrsm", ctrsm)), add(trxm("dtrsm", dtrsm)), add(trxm("DTRSM", DTRSM));
  add(trxm("ztrsm", ztrsm)), add(trxm("ZTRSM", ZTRSM));
  return all;
}

// ---- LAPACK -------------------------------------------------------------------

// Shapes on both sides of the LU's crossover to its threaded paths.
const std::vector<std::pair<int, int>> kLu = {{1, 1}, {17, 13}, {13, 17}, {70, 70}, {130, 90}};

// Identity pivots for the factors a diagonally dominant matrix stands for.
std::vector<int> no_interchanges(int n) {
  std::vector<int> ipiv(n);
  for (int i = 0; i < n; ++i) ipiv[i] = i + 1;
  return ipiv;
}

template <class T>
Cases getrf(const char *name, void (*f)(const int *, const int *, T *, const int *, int *, int *)) {
  Cases out;
  for (auto [m, n] : kLu) {
    const int lda = m + 3, k = std::min(m, n);
    out.push_back(
        {label(name, m, n),
         {matrix<T>(m, n, lda, true), matrix<int>(k, 1, k, true), scalar<int>(true)},
         [=](void *const *p) { f(&m, &n, at<T>(p, 0), &lda, at<int>(p, 1), at<int>(p, 2)); }});
  }
  return out;
}

// getrs on a diagonally dominant matrix with identity pivots.
template <class T>
Cases getrs(const char *name, void (*f)(const char *, const int *, const int *, const T *,
                                        const int *, const int *, T *, const int *, int *, int)) {
  Cases out;
  for (char t : {'N', 'T', 'C'})
    for (auto [n, nrhs] : kLu) {
      const int lda = n + 2, ldb = n + 1;
      out.push_back({label(name, t, n, nrhs),
                     {matrix<T>(n, n, lda, false, Fill::kDominant), matrix<T>(n, nrhs, ldb, true),
                      scalar<int>(true)},
                     [=](void *const *p) {
                       const std::vector<int> ipiv = no_interchanges(n);
                       f(&t, &n, &nrhs, at<T>(p, 0), &lda, ipiv.data(), at<T>(p, 1), &ldb,
                         at<int>(p, 2), 1);
                     }});
    }
  return out;
}

// getri, with a workspace of n.
template <class T>
Cases getri(const char *name,
            void (*f)(const int *, T *, const int *, const int *, T *, const int *, int *)) {
  Cases out;
  for (auto [n, unused] : kLu) {
    const int lda = n + 2, lwork = n;
    out.push_back(
        {label(name, n),
         {matrix<T>(n, n, lda, true, Fill::kDominant), vector<T>(n, 1, true), scalar<int>(true)},
         [=](void *const *p) {
           const std::vector<int> ipiv = no_interchanges(n);
           f(&n, at<T>(p, 0), &lda, ipiv.data(), at<T>(p, 1), &lwork, at<int>(p, 2));
         }});
    (void)unused;
  }
  return out;
}

// gecon; W is the real or complex work array, X the integer or real one.
template <class T, class W, class X>
Cases gecon(const char *name, void (*f)(const char *, const int *, const T *, const int *,
                                        const float *, float *, W *, X *, int *, int)) {
  Cases out;
  for (char norm : {'1', 'I'})
    for (auto [n, unused] : kLu) {
      const int lda = n + 1;
      out.push_back({label(name, norm, n),
                     {matrix<T>(n, n, lda, false, Fill::kDominant), scalar<float>(true),
                      vector<W>(4 * n, 1, true), vector<X>(2 * n, 1, true), scalar<int>(true)},
                     [=](void *const *p) {
                       const float anorm = 2.5f * static_cast<float>(n);
                       f(&norm, &n, at<T>(p, 0), &lda, &anorm, at<float>(p, 1), at<W>(p, 2),
                         at<X>(p, 3), at<int>(p, 4), 1);
                     }});
      (void)unused;
    }
  return out;
}

// trtrs on a dominant triangle.
template <class T>
Cases trtrs(const char *name,
            void (*f)(const char *, const char *, const char *, const int *, const int *, const T *,
                      const int *, T *, const int *, int *, int, int, int)) {
  Cases out;
  for (char u : {'U', 'L'})
    for (char t : {'N', 'T', 'C'})
      for (auto [n, nrhs] : kLu) {
        const int lda = n + 2, ldb = n + 3;
        const char d = 'N';
        out.push_back({label(name, u, t, n, nrhs),
                       {matrix<T>(n, n, lda, false, Fill::kDominant), matrix<T>(n, nrhs, ldb, true),
                        scalar<int>(true)},
                       [=](void *const *p) {
                         f(&u, &t, &d, &n, &nrhs, at<T>(p, 0), &lda, at<T>(p, 1), &ldb,
                           at<int>(p, 2), 1, 1, 1);
                       }});
      }
  return out;
}

// trtri on a dominant triangle.
template <class T>
Cases trtri(const char *name,
            void (*f)(const char *, const char *, const int *, T *, const int *, int *, int, int)) {
  Cases out;
  for (char u : {'U', 'L'})
    for (char d : {'N', 'U'})
      for (int n : {1, 17, 70, 130}) {
        const int lda = n + 1;
        out.push_back(
            {label(name, u, d, n),
             {matrix<T>(n, n, lda, true, Fill::kDominant), scalar<int>(true)},
             [=](void *const *p) { f(&u, &d, &n, at<T>(p, 0), &lda, at<int>(p, 1), 1, 1); }});
      }
  return out;
}

// Band shapes (m, n, kl, ku): column by column, blocked, and blocked with a
// team (past the band LU's crossover at two threads).
struct BandShape {
  int m, n, kl, ku;
};
const std::vector<BandShape> kBand = {
    {1, 1, 0, 0}, {17, 13, 2, 3}, {13, 17, 5, 1}, {70, 70, 33, 4}, {200, 200, 40, 40}};

template <class T>
using BandLu = void (*)(const int *, const int *, const int *, const int *, T *, const int *, int *,
                        int *);
template <class T>
using BandSolve = void (*)(const char *, const int *, const int *, const int *, const int *,
                           const T *, const int *, const int *, T *, const int *, int *, int);

template <class T>
Cases gbtrf(const char *name, BandLu<T> f) {
  Cases out;
  for (auto [m, n, kl, ku] : kBand) {
    const int ldab = 2 * kl + ku + 3, k = std::min(m, n);
    out.push_back(
        {label(name, m, n, kl, ku),
         {matrix<T>(ldab - 2, n, ldab, true), matrix<int>(k, 1, k, true), scalar<int>(true)},
         [=](void *const *p) {
           f(&m, &n, &kl, &ku, at<T>(p, 0), &ldab, at<int>(p, 1), at<int>(p, 2));
         }});
  }
  return out;
}

// gbtrs on the factors of a random band matrix, made in the call; three
// right-hand sides, enough for the split on the widest band.
template <class T>
Cases gbtrs(const char *name, BandLu<T> trf, BandSolve<T> f) {
  Cases out;
  for (char t : {'N', 'T', 'C'})
    for (auto [m, n, kl, ku] : kBand) {
      if (m != n) continue;
      const int ldab = 2 * kl + ku + 2, ldb = n + 2, nrhs = 3;
      out.push_back({label(name, t, n, kl, ku),
                     {matrix<T>(ldab - 1, n, ldab, true), matrix<int>(n, 1, n, true),
                      matrix<T>(n, nrhs, ldb, true), scalar<int>(true)},
                     [=](void *const *p) {
                       trf(&n, &n, &kl, &ku, at<T>(p, 0), &ldab, at<int>(p, 1), at<int>(p, 3));
                       f(&t, &n, &kl, &ku, &nrhs, at<T>(p, 0), &ldab, at<int>(p, 1), at<T>(p, 2),
                         &ldb, at<int>(p, 3), 1);
                     }});
    }
  return out;
}

// gbcon on factors made in the call; X is the integer or real work array.
template <class T, class X>
Cases gbcon(const char *name, BandLu<T> trf,
            void (*f)(const char *, const int *, const int *, const int *, const T *, const int *,
                      const int *, const float *, float *, T *, X *, int *, int)) {
  Cases out;
  for (char norm : {'1', 'I'})
    for (auto [m, n, kl, ku] : kBand) {
      if (m != n) continue;
      const int ldab = 2 * kl + ku + 2;
      out.push_back(
          {label(name, norm, n, kl, ku),
           {matrix<T>(ldab - 1, n, ldab, true), matrix<int>(n, 1, n, true), scalar<float>(true),
            vector<T>(3 * n, 1, true), vector<X>(n, 1, true), scalar<int>(true)},
           [=](void *const *p) {
             const float anorm = 2.5f * static_cast<float>(kl + ku + 1);
             trf(&n, &n, &kl, &ku, at<T>(p, 0), &ldab, at<int>(p, 1), at<int>(p, 5));
             f(&norm, &n, &kl, &ku, at<T>(p, 0), &ldab, at<int>(p, 1), &anorm, at<float>(p, 2),
               at<T>(p, 3), at<X>(p, 4), at<int>(p, 5), 1);
           }});
    }
  return out;
}

// gbrfs: A, its factors and a first solution made in the call, then the
// refinement; X is the integer or real work array.
template <class T, class X>
Cases gbrfs(const char *name, BandLu<T> trf, BandSolve<T> trs,
            void (*f)(const char *, const int *, const int *, const int *, const int *, const T *,
                      const int *, const T *, const int *, const int *, const T *, const int *, T *,
                      const int *, float *, float *, T *, X *, int *, int)) {
  Cases out;
  for (char t : {'N', 'T', 'C'})
    for (auto [m, n, kl, ku] : kBand) {
      if (m != n) continue;
      const int lda = kl + ku + 2, ldf = 2 * kl + ku + 2, ldb = n + 1, ldx = n + 3, nrhs = 2;
      out.push_back({label(name, t, n, kl, ku),
                     {matrix<T>(lda - 1, n, lda), matrix<T>(ldf - 1, n, ldf, true),
                      matrix<int>(n, 1, n, true), matrix<T>(n, nrhs, ldb),
                      matrix<T>(n, nrhs, ldx, true), vector<float>(2 * nrhs, 1, true),
                      vector<T>(3 * n, 1, true), vector<X>(n, 1, true), scalar<int>(true)},
                     [=](void *const *p) {
                       const T *a = at<T>(p, 0), *b = at<T>(p, 3);
                       T *af = at<T>(p, 1), *x = at<T>(p, 4);
                       for (int j = 0; j < n; ++j)
                         for (int r = 0; r < kl + ku + 1; ++r)
                           af[kl + r + j * ldf] = a[r + j * lda];
                       for (int j = 0; j < nrhs; ++j)
                         for (int i = 0; i < n; ++i) x[i + j * ldx] = b[i + j * ldb];
                       int *ipiv = at<int>(p, 2), *info = at<int>(p, 8);
                       float *err = at<float>(p, 5);
                       trf(&n, &n, &kl, &ku, af, &ldf, ipiv, info);
                       trs(&t, &n, &kl, &ku, &nrhs, af, &ldf, ipiv, x, &ldx, info, 1);
                       f(&t, &n, &kl, &ku, &nrhs, a, &lda, af, &ldf, ipiv, b, &ldb, x, &ldx, err,
                         err + nrhs, at<T>(p, 6), at<X>(p, 7), info, 1);
                     }});
    }
  return out;
}

// Every exported LAPACK routine, one line each.
Cases every_lapack_routine() {
  Cases all;
  auto add = [&](Cases c) { all.insert(all.end(), c.begin(), c.end()); };
  add(getrf("sgetrf", sgetrf)), add(getrf("cgetrf", cgetrf)), add(getrf("DGETRF", DGETRF));
  add(getrf("ZGETRF", ZGETRF));
  add(getrs("sgetrs", sgetrs)), add(getrs("cgetrs", cgetrs));
  add(getri("sgetri", sgetri)), add(getri("cgetri", cgetri));
  add(gecon("sgecon", sgecon)), add(gecon("cgecon", cgecon));
  add(trtri("strtri", strtri)), add(trtri("ctrtri", ctrtri));
  add(trtrs("strtrs", strtrs)), add(trtrs("ctrtrs", ctrtrs));
  add(gbtrf("sgbtrf", sgbtrf)), add(gbtrf("cgbtrf", cgbtrf));
  add(gbtrs("sgbtrs", sgbtrf, sgbtrs)), add(gbtrs("cgbtrs", cgbtrf, cgbtrs));
  add(gbcon("sgbcon", sgbtrf, sgbcon)), add(gbcon("cgbcon", cgbtrf, cgbcon));
  add(gbrfs("sgbrfs", sgbtrf, sgbtrs, sgbrfs)), add(gbrfs("cgbrfs", cgbtrf, cgbtrs, cgbrfs));
  return all;
}

ORB_CHILD(lapack_placement) {
  ORB_Set_Num_Threads(2);
  const std::vector<std::string> failures = check(every_lapack_routine());
  for (std::size_t i = 0; i < failures.size() && i < 20; ++i)
    std::printf("%s\n", failures[i].c_str());
  std::printf("%zu cases failed\n", failures.size());
  return failures.empty() ? 0 : 1;
}

TEST(Placement, EveryLapackRoutine) {
  for (const char *type : {"0", "5"}) {
    const auto r = orb::test::run_child("lapack_placement", {{"ORB_DEBUG_CPU_TYPE", type}});
    EXPECT_EQ(r.exit_code, 0) << "type " << type << "\n" << r.out;
  }
}

ORB_CHILD(blas_placement) {
  const std::vector<std::string> failures = check(every_blas_routine());
  for (std::size_t i = 0; i < failures.size() && i < 20; ++i)
    std::printf("%s\n", failures[i].c_str());
  std::printf("%zu cases failed\n", failures.size());
  return failures.empty() ? 0 : 1;
}

TEST(Placement, EveryBlasRoutineOnEveryProcessorType) {
  for (const char *type : {"0", "2", "3", "4", "5"}) {
    const auto r = orb::test::run_child("blas_placement", {{"ORB_DEBUG_CPU_TYPE", type}});
    EXPECT_EQ(r.exit_code, 0) << "type " << type << "\n" << r.out;
  }
}

// ---- the check itself -----------------------------------------------------------

// sgemv, except that one shape is summed differently when A lies on a 64-byte
// boundary, or reads one element of the padding, or writes one.
enum class Fault { kAddress, kReadsPadding, kWritesPadding };
template <Fault F>
void faulty_sgemv(const char *t, const int *m, const int *n, const float *al, const float *a,
                  const int *lda, const float *x, const int *ix, const float *be, float *y,
                  const int *iy, int len) {
  sgemv(t, m, n, al, a, lda, x, ix, be, y, iy, len);
  if (*m != 17 || *n != 8 || *t != 'T' || *ix != 1) return;
  if (F == Fault::kAddress && reinterpret_cast<std::uintptr_t>(a) % 64 == 0)
    y[0] = std::nextafter(y[0], 2.0f);
  if (F == Fault::kReadsPadding) y[0] += 0.0f * a[*m];
  if (F == Fault::kWritesPadding) const_cast<float *>(a)[*m] = 0;
}

TEST(Placement, TheCheckCatchesOneFaultyCall) {
  const std::vector<std::pair<Cases, const char *>> faults = {
      {gemv("sgemv", faulty_sgemv<Fault::kAddress>), "array 3 element 0 differs"},
      {gemv("sgemv", faulty_sgemv<Fault::kReadsPadding>), "array 3 element 0 differs"},
      {gemv("sgemv", faulty_sgemv<Fault::kWritesPadding>), "array 1 written outside its output"},
  };
  for (const auto &[cases, why] : faults) {
    const std::vector<std::string> failures = check(cases);
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_EQ(failures[0].rfind("sgemv T 17 8 1 1: ", 0), 0u) << failures[0];
    EXPECT_NE(failures[0].find(why), std::string::npos) << failures[0];
  }
  EXPECT_TRUE(check(gemv("sgemv", sgemv)).empty());
}

}  // namespace
