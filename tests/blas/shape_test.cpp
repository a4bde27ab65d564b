// An element of a result does not depend on the shape of the call it was
// computed in: the same element computed in a call on a sub-block (fewer rows
// or columns of the result, the same summation length) has the same bits, on
// every processor type. LAPACK relies on this (its drivers compute the same
// eigenvalues with and without vectors through calls of different shapes, and
// its test programs check that they are identical). Matrix-vector products,
// rank-1 updates and the matrix product, in all four precisions, with sizes
// across the kernels' block and path boundaries.
#include <gtest/gtest.h>

#include <complex>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "orb.h"
#include "support/child.h"

namespace {

using c8 = std::complex<float>;
using c16 = std::complex<double>;

template <class T>
T alpha() {
  if constexpr (std::is_same_v<T, c8> || std::is_same_v<T, c16>) return T(0.7, -0.3);
  return T(0.7);
}
template <class T>
T beta() {
  if constexpr (std::is_same_v<T, c8> || std::is_same_v<T, c16>) return T(1.1, 0.4);
  return T(1.1);
}

template <class T>
struct Api;
#define ORB_SHAPE_API(T, P, GEMV, GER, GERC, GEMM)                                                \
  template <>                                                                                     \
  struct Api<T> {                                                                                 \
    static void gemv(char t, int m, int n, const T *a, int lda, const T *x, T *y) {               \
      const T al = alpha<T>(), be = beta<T>();                                                    \
      const int one = 1;                                                                          \
      GEMV(&t, &m, &n, (const P *)&al, (const P *)a, &lda, (const P *)x, &one, (const P *)&be,    \
           (P *)y, &one, 1);                                                                      \
    }                                                                                             \
    static void ger(bool conj, int m, int n, const T *x, const T *y, T *a, int lda) {             \
      const T al = alpha<T>();                                                                    \
      const int one = 1;                                                                          \
      (conj ? GERC : GER)(&m, &n, (const P *)&al, (const P *)x, &one, (const P *)y, &one, (P *)a, \
                          &lda);                                                                  \
    }                                                                                             \
    static void gemm(char ta, char tb, int m, int n, int k, const T *a, int lda, const T *b,      \
                     int ldb, T *c, int ldc) {                                                    \
      const T al = alpha<T>(), be = beta<T>();                                                    \
      GEMM(&ta, &tb, &m, &n, &k, (const P *)&al, (const P *)a, &lda, (const P *)b, &ldb,          \
           (const P *)&be, (P *)c, &ldc, 1, 1);                                                   \
    }                                                                                             \
  };
ORB_SHAPE_API(float, float, sgemv, sger, sger, sgemm)
ORB_SHAPE_API(double, double, dgemv, dger, dger, DGEMM)
ORB_SHAPE_API(c8, orb_complex8, cgemv, cgeru, cgerc, cgemm)
ORB_SHAPE_API(c16, orb_complex16, zgemv, ZGERU, zgerc, ZGEMM)
#undef ORB_SHAPE_API

template <class T>
std::vector<T> random(std::size_t n, std::mt19937 &g) {
  std::uniform_real_distribution<double> u(-1, 1);
  std::vector<T> v(n);
  for (T &e : v) {
    if constexpr (std::is_same_v<T, c8> || std::is_same_v<T, c16>)
      e = T(u(g), u(g));
    else
      e = T(u(g));
  }
  return v;
}

bool same(const void *a, const void *b, std::size_t bytes) {
  return std::memcmp(a, b, bytes) == 0;
}

// Whether rows r0..r1 of columns c0..c1 agree in two column-major matrices.
template <class T>
bool same_block(const std::vector<T> &x, const std::vector<T> &y, int ld, int r0, int r1, int c0,
                int c1) {
  for (int j = c0; j < c1; ++j)
    if (!same(&x[r0 + std::size_t(j) * ld], &y[r0 + std::size_t(j) * ld], (r1 - r0) * sizeof(T)))
      return false;
  return true;
}

// Sub-ranges [lo, hi) of 0..n: leading, trailing and inner pieces.
std::vector<std::pair<int, int>> pieces(int n) {
  std::vector<std::pair<int, int>> out;
  for (int lo : {0, 1, n / 3, n / 2})
    for (int hi : {n, n - 1, n / 2 + 1, lo + 1})
      if (lo < hi && hi <= n) out.push_back({lo, hi});
  return out;
}

template <class T>
void check_precision(const char *name, std::vector<std::string> &failures) {
  using A = Api<T>;
  std::mt19937 g(7);
  char what[160];
  auto fail = [&](const char *fmt, auto... v) {
    std::snprintf(what, sizeof what, fmt, v...);
    failures.push_back(std::string(name) + " " + what);
  };
  // y = alpha op(A) x + beta y: rows of y for op = N, columns of A otherwise.
  for (int m : {1, 3, 8, 17, 40})
    for (int n : {1, 2, 5, 9, 33})
      for (char t : {'N', 'T', 'C'}) {
        const int lda = m + 3;
        const auto a = random<T>(std::size_t(lda) * n, g), x = random<T>(64, g);
        const auto y0 = random<T>(64, g);
        auto full = y0;
        A::gemv(t, m, n, a.data(), lda, x.data(), full.data());
        for (auto [lo, hi] : pieces(t == 'N' ? m : n)) {
          auto y = y0;
          if (t == 'N')
            A::gemv(t, hi - lo, n, a.data() + lo, lda, x.data(), y.data() + lo);
          else
            A::gemv(t, m, hi - lo, a.data() + std::size_t(lo) * lda, lda, x.data(), y.data() + lo);
          if (!same(y.data() + lo, full.data() + lo, (hi - lo) * sizeof(T)))
            fail("gemv %c %d %d: elements %d..%d differ", t, m, n, lo, hi);
        }
      }
  // A += alpha x y^T (or y^H): any block of A.
  for (int m : {1, 5, 17, 40})
    for (int n : {1, 4, 9})
      for (bool conj : {false, true}) {
        const int lda = m + 1;
        const auto a0 = random<T>(std::size_t(lda) * n, g), x = random<T>(m, g),
                   y = random<T>(n, g);
        auto full = a0;
        A::ger(conj, m, n, x.data(), y.data(), full.data(), lda);
        for (auto [r0, r1] : pieces(m))
          for (auto [c0, c1] : pieces(n)) {
            auto a = a0;
            const std::size_t at = r0 + std::size_t(c0) * lda;
            A::ger(conj, r1 - r0, c1 - c0, x.data() + r0, y.data() + c0, a.data() + at, lda);
            if (!same_block(a, full, lda, r0, r1, c0, c1))
              fail("ger%s %d %d: block %d..%d x %d..%d differs", conj ? "c" : "", m, n, r0, r1, c0,
                   c1);
          }
      }
  // C = alpha op(A) op(B) + beta C: any block of C, the same k.
  for (int m : {3, 7, 16, 45})
    for (int n : {2, 9, 31})
      for (int k : {5, 70})
        for (const char *ops : {"NN", "TN", "NC"}) {
          const char ta = ops[0], tb = ops[1];
          const int lda = (ta == 'N' ? m : k) + 2, ldb = (tb == 'N' ? k : n) + 1, ldc = m + 2;
          const auto a = random<T>(std::size_t(lda) * (ta == 'N' ? k : m), g);
          const auto b = random<T>(std::size_t(ldb) * (tb == 'N' ? n : k), g);
          const auto c0v = random<T>(std::size_t(ldc) * n, g);
          auto full = c0v;
          A::gemm(ta, tb, m, n, k, a.data(), lda, b.data(), ldb, full.data(), ldc);
          for (auto [r0, r1] : pieces(m))
            for (auto [c0, c1] : pieces(n)) {
              auto c = c0v;
              const T *as = a.data() + (ta == 'N' ? r0 : std::size_t(r0) * lda);
              const T *bs = b.data() + (tb == 'N' ? std::size_t(c0) * ldb : c0);
              A::gemm(ta, tb, r1 - r0, c1 - c0, k, as, lda, bs, ldb,
                      c.data() + r0 + std::size_t(c0) * ldc, ldc);
              if (!same_block(c, full, ldc, r0, r1, c0, c1))
                fail("gemm %s %d %d %d: block %d..%d x %d..%d differs", ops, m, n, k, r0, r1, c0,
                     c1);
            }
        }
}

ORB_CHILD(blas_shape) {
  std::vector<std::string> failures;
  check_precision<float>("s", failures);
  check_precision<double>("d", failures);
  check_precision<c8>("c", failures);
  check_precision<c16>("z", failures);
  for (std::size_t i = 0; i < failures.size() && i < 20; ++i)
    std::printf("%s\n", failures[i].c_str());
  std::printf("%zu cases failed\n", failures.size());
  return failures.empty() ? 0 : 1;
}

TEST(Shape, AnElementDoesNotDependOnTheShapeOfItsCall) {
  for (const char *type : {"0", "2", "3", "4", "5"}) {
    const auto r = orb::test::run_child("blas_shape", {{"ORB_DEBUG_CPU_TYPE", type}});
    EXPECT_EQ(r.exit_code, 0) << "type " << type << "\n" << r.out;
  }
}

}  // namespace
