// Level-2 BLAS: every kernel variant, and the drivers behind the entries,
// against plain loops in double precision, over sizes around the vector
// widths and blocks, padded leading dimensions, misaligned starts, positive
// and negative increments and every option; the drivers again in child
// processes forced to each processor type.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "blas/kernel/level2.h"
#include "blas/level2/level2.h"
#include "service/cpu.h"
#include "support/child.h"
#include "support/matrix.h"

namespace orb {
std::ostream &operator<<(std::ostream &out, Op op) {
  return out << letter(op);
}
}  // namespace orb

namespace {

namespace k2 = orb::kernel::level2;
namespace l2 = orb::blas::level2;
using orb::Op;
using c8 = std::complex<float>;
using c16 = std::complex<double>;

using orb::test::conj_of;
using orb::test::make;
using orb::test::Matrix;
using orb::test::multiply;
using orb::test::Random;
using orb::test::Triangle;

template <class T>
using D = orb::test::wide_t<T>;  // the reference's type
template <class T>
constexpr bool kComplex = orb::test::kIsComplex<T>;

double mag(double v) {
  return std::fabs(v);
}
double mag(c16 v) {
  return std::fabs(v.real()) + std::fabs(v.imag());
}
template <class T>
bool is_nan(T v) {
  return std::isnan(mag(D<T>(v)));
}

// A vector of n elements at increment inc: one row of n columns at leading
// dimension |inc|, so that the gaps are padding; element i is where the
// published routines look for it.
template <class T>
struct Vector {
  int n, inc;
  Matrix<T> store;
  Vector(int n_, int inc_, Random &g)
      : n(n_), inc(inc_), store(orb::test::random_matrix<T>(1, n_, g, std::abs(inc_))) {}
  T &operator[](int i) { return store(0, inc > 0 ? i : n - 1 - i); }
  T *data() { return store.data(); }
  int gaps_changed() const { return store.padding_changed(); }
};

// The elements of a vector as an n by 1 matrix, for the reference products.
template <class T>
Matrix<T> column(const std::vector<T> &v) {
  Matrix<T> c(static_cast<int>(v.size()), 1);
  for (int i = 0; i < c.rows; ++i) c(i, 0) = v[i];
  return c;
}

// A random rows by cols matrix at leading dimension rows + pad, starting
// `offset` elements into its storage (an odd offset misaligns it).
template <class T>
Matrix<T> operand(int r, int c, int pad, int offset, Random &g) {
  const int ld = std::max(1, r + pad);
  return orb::test::random_matrix<T>(r, c, g, ld).placed(ld, offset);
}

template <class T>
D<T> at(const Matrix<T> &a, int i, int j) {
  return D<T>(a(i, j));
}

// |got - want| within a bound that grows with the number of terms summed.
template <class T>
bool near(T got, D<T> want, double scale, int terms) {
  const double eps = std::numeric_limits<orb::test::real_t<T>>::epsilon();
  return mag(D<T>(got) - want) <= 2.0 * (terms + 8) * eps * scale;
}

template <class T>
bool same(T a, T b) {
  return std::memcmp(&a, &b, sizeof(T)) == 0;
}

// ---- the kernels ------------------------------------------------------------------

template <class T>
struct Variant {
  const char *name;
  k2::GemvN<T> gemv_n;
  k2::GemvT<T> gemv_t;
  k2::Axpy<T> axpy;
  k2::Axpy2<T> axpy2;
  k2::AxpyDot<T> axpy_dot;
  k2::GemvNT<T> gemv_nt;
};
#define ORB_VARIANT(ns)                                                                      \
  Variant<T> {                                                                               \
#ns, &k2::ns::gemv_n, &k2::ns::gemv_t, &k2::ns::axpy, &k2::ns::axpy2, &k2::ns::axpy_dot, \
        &k2::ns::gemv_nt                                                                     \
  }
template <class T>
std::vector<Variant<T>> variants() {
  std::vector<Variant<T>> v{ORB_VARIANT(generic), ORB_VARIANT(sse2), ORB_VARIANT(sse3),
                            ORB_VARIANT(ssse3), ORB_VARIANT(sse42)};
#if defined(ORB_KERNELS_AVX2)
  if (orb::cpu::avx2_fma_usable()) v.push_back(ORB_VARIANT(avx2));
#endif
  return v;
}

using Types = testing::Types<float, double, c8, c16>;
template <class T>
class Level2Kernels : public testing::Test {};
TYPED_TEST_SUITE(Level2Kernels, Types);

TYPED_TEST(Level2Kernels, MatrixVectorProducts) {
  using T = TypeParam;
  const T alpha = make<T>(0.75, -0.5);
  Random g;
  for (const Variant<T> &v : variants<T>())
    for (int m = 0; m <= 67; ++m)
      for (int n : {1, 2, 3, 4, 5, 6, 7, 9, 13})
        for (int pad : {0, 3})
          for (int off : {0, 1}) {
            const Matrix<T> a = operand<T>(m, n, pad, off, g);
            // y(0:m) += alpha A x
            std::vector<T> x(n), y(m);
            for (T &e : x) e = g.value<T>();
            for (T &e : y) e = g.value<T>();
            std::vector<T> y0 = y;
            v.gemv_n(m, n, alpha, a.data(), a.ld, x.data(), y.data());
            Matrix<double> bound;
            const Matrix<D<T>> ax = multiply('N', a, 'N', column(x), &bound);
            int bad = 0;
            for (int i = 0; i < m; ++i)
              bad += !near(y[i], D<T>(y0[i]) + D<T>(alpha) * ax(i, 0),
                           mag(D<T>(y0[i])) + mag(D<T>(alpha)) * bound(i, 0), n);
            // y(0:n) += alpha op(A)^T x
            for (bool cj : {false, true}) {
              std::vector<T> xt(m), yt(n);
              for (T &e : xt) e = g.value<T>();
              for (T &e : yt) e = g.value<T>();
              std::vector<T> yt0 = yt;
              v.gemv_t(m, n, alpha, a.data(), a.ld, xt.data(), yt.data(), cj);
              const Matrix<D<T>> atx = multiply(cj ? 'C' : 'T', a, 'N', column(xt), &bound);
              for (int j = 0; j < n; ++j)
                bad += !near(yt[j], D<T>(yt0[j]) + D<T>(alpha) * atx(j, 0),
                             mag(D<T>(yt0[j])) + mag(D<T>(alpha)) * bound(j, 0), m);
            }
            // both in one pass: y(0:m) += alpha A x, z(0:n) += alpha op(A)^T u
            for (bool cj : {false, true}) {
              std::vector<T> u(m), y2 = y0, z(n);
              for (T &e : u) e = g.value<T>();
              for (T &e : z) e = g.value<T>();
              const std::vector<T> z0 = z;
              v.gemv_nt(m, n, alpha, a.data(), a.ld, x.data(), y2.data(), u.data(), z.data(), cj);
              Matrix<double> bn, bt;
              const Matrix<D<T>> ax2 = multiply('N', a, 'N', column(x), &bn);
              const Matrix<D<T>> atu = multiply(cj ? 'C' : 'T', a, 'N', column(u), &bt);
              for (int i = 0; i < m; ++i)
                bad += !near(y2[i], D<T>(y0[i]) + D<T>(alpha) * ax2(i, 0),
                             mag(D<T>(y0[i])) + mag(D<T>(alpha)) * bn(i, 0), n);
              for (int j = 0; j < n; ++j)
                bad += !near(z[j], D<T>(z0[j]) + D<T>(alpha) * atu(j, 0),
                             mag(D<T>(z0[j])) + mag(D<T>(alpha)) * bt(j, 0), m);
            }
            ASSERT_EQ(bad, 0) << v.name << " m=" << m << " n=" << n << " pad=" << pad
                              << " offset=" << off;
          }
}

// Infinity in any column of a pass reaches y (as NaN) where x is zero.
TYPED_TEST(Level2Kernels, ProductUsesColumnsWhereXIsZero) {
  using T = TypeParam;
  const int m = 11, n = 13;
  for (const Variant<T> &v : variants<T>())
    for (int j = 0; j < n; ++j) {
      std::vector<T> a(std::size_t{m} * n, make<T>(0.5, -0.25)), x(n, T(1)), y(m, T(0));
      a[5 + static_cast<std::size_t>(j) * m] =
          T(std::numeric_limits<orb::test::real_t<T>>::infinity());
      x[j] = T(0);
      v.gemv_n(m, n, T(1), a.data(), m, x.data(), y.data());
      EXPECT_TRUE(is_nan(y[5])) << v.name << " column " << j;
      EXPECT_FALSE(is_nan(y[4])) << v.name << " column " << j;
    }
}

TYPED_TEST(Level2Kernels, VectorUpdates) {
  using T = TypeParam;
  const D<T> a1 = D<T>(make<T>(-0.5, 0.25)), a2 = D<T>(make<T>(1.5, -0.75));
  Random g;
  for (const Variant<T> &v : variants<T>())
    for (int n = 0; n <= 67; ++n)
      for (int off : {0, 1}) {  // x and w misaligned one way, y the other
        std::vector<T> x(n + 1), w(n + 1), y0(n + 1);
        for (auto *vec : {&x, &w, &y0})
          for (T &e : *vec) e = g.value<T>();
        const T *xp = x.data() + off, *wp = w.data() + off;
        // axpy, axpy2, axpy_dot, axpy_dot with conj(x)
        for (int k = 0; k < 4; ++k) {
          std::vector<T> y = y0;
          T *yp = y.data() + 1 - off, dot = T(0);
          if (k == 0) v.axpy(n, T(a1), xp, yp);
          if (k == 1) v.axpy2(n, T(a1), xp, T(a2), wp, yp);
          if (k >= 2) v.axpy_dot(n, T(a1), xp, wp, yp, k == 3, &dot);
          int bad = !same(y[off ? n : 0], y0[off ? n : 0]);  // outside y(0:n)
          D<T> s = 0;
          double scale = 0;
          for (int i = 0; i < n; ++i) {
            const D<T> xi(xp[i]), wi(wp[i]), yi(y0[i + 1 - off]);
            const D<T> want = yi + a1 * xi + (k == 1 ? a2 * wi : D<T>(0));
            bad += !near(yp[i], want, mag(yi) + mag(a1) * mag(xi) + mag(a2) * mag(wi), 4);
            s += (k == 3 ? conj_of(xi) : xi) * wi;
            scale += mag(xi) * mag(wi);
          }
          if (k >= 2) bad += !near(dot, s, scale, n);
          ASSERT_EQ(bad, 0) << v.name << " kernel " << k << " n=" << n << " offset " << off;
        }
      }
}

// ---- the drivers ------------------------------------------------------------------

template <class T>
T nan_value() {
  return make<T>(std::nan(""), std::nan(""));
}

// Counts elements of y that differ from what is expected, after a call made
// with `want` and `scale` computed per element (`keep`: y must be untouched).
template <class T>
int compare(Vector<T> &y, const std::vector<T> &before, const std::vector<D<T>> &want,
            const std::vector<double> &scale, int terms, bool keep) {
  int bad = y.gaps_changed();
  for (int i = 0; i < y.n; ++i)
    bad += keep ? !same(y[i], before[i]) : !near(y[i], want[i], scale[i], terms);
  return bad;
}
template <class T>
std::vector<T> copy_of(Vector<T> &v) {
  std::vector<T> c(v.n);
  for (int i = 0; i < v.n; ++i) c[i] = v[i];
  return c;
}

// y := alpha op x + beta y against the reference product p = op x (with its
// error scale), over `terms` terms.
template <class T>
int check_product(const Matrix<D<T>> &p, const Matrix<double> &bound, int terms, bool quick,
                  T alpha, T beta, Vector<T> &y, const std::vector<T> &y0) {
  std::vector<D<T>> want(y.n);
  std::vector<double> scale(y.n);
  const bool b0 = beta == T(0);
  for (int i = 0; i < y.n; ++i) {
    want[i] = D<T>(alpha) * p(i, 0) + (b0 ? D<T>(0) : D<T>(beta) * D<T>(y0[i]));
    scale[i] = mag(D<T>(alpha)) * bound(i, 0) + (b0 ? 0.0 : mag(D<T>(beta)) * mag(D<T>(y0[i])));
  }
  return compare(y, y0, want, scale, terms, quick);
}

template <class T>
std::vector<std::pair<T, T>> alpha_beta() {
  const T a = make<T>(0.7, -0.3), b = make<T>(-1.25, 0.5);
  return {{T(0), T(1)}, {T(0), T(0)}, {T(0), b}, {T(1), T(0)}, {a, T(1)}, {a, b}};
}
constexpr int kIncs[][2] = {{1, 1}, {2, -1}, {-1, 2}, {-3, -3}, {1, -3}};

template <class T>
int run_gemv(Random &g, Op trans, int m, int n, int pad, int incx, int incy, T alpha, T beta) {
  const Matrix<T> a = operand<T>(m, n, pad, 1, g);
  const bool nt = trans == Op::kNone;
  Vector<T> x(nt ? n : m, incx, g), y(nt ? m : n, incy, g);
  if (beta == T(0))
    for (int i = 0; i < y.n; ++i) y[i] = nan_value<T>();  // not to be read
  const std::vector<T> y0 = copy_of(y);
  Matrix<double> bound;
  const Matrix<D<T>> p = multiply(orb::letter(trans), a, 'N', column(copy_of(x)), &bound);
  l2::gemv(trans, m, n, alpha, a.data(), a.ld, x.data(), incx, beta, y.data(), incy);
  const bool quick = m == 0 || n == 0 || (alpha == T(0) && beta == T(1));
  return check_product(p, bound, x.n, quick, alpha, beta, y, y0);
}

template <class T>
int run_symv(Random &g, bool upper, int n, int pad, int incx, int incy, T alpha, T beta) {
  const bool herm = kComplex<T>;
  const Triangle stored = upper ? Triangle::kUpper : Triangle::kLower;
  Matrix<T> a = operand<T>(n, n, pad, 1, g);
  orb::test::keep_triangle(a, stored);  // the other triangle is not read
  // A Hermitian diagonal's imaginary parts are not read.
  if (herm)
    for (int i = 0; i < n; ++i) a(i, i) = make<T>(std::real(at(a, i, i)), std::nan(""));
  Vector<T> x(n, incx, g), y(n, incy, g);
  if (beta == T(0))
    for (int i = 0; i < n; ++i) y[i] = nan_value<T>();
  const std::vector<T> y0 = copy_of(y);
  Matrix<double> bound;
  const Matrix<D<T>> p = multiply('N', orb::test::full_from_triangle(a, stored, herm), 'N',
                                  column(copy_of(x)), &bound);
  l2::symv(upper, n, alpha, a.data(), a.ld, x.data(), incx, beta, y.data(), incy, herm);
  return check_product(p, bound, n, n == 0 || (alpha == T(0) && beta == T(1)), alpha, beta, y, y0);
}

// Rank updates: a.mem after the call against `want` on the stored part,
// everything else untouched.
template <class T>
int check_update(Matrix<T> &a, const std::vector<T> &before, const Matrix<D<T>> &want,
                 const Matrix<double> &scale, int terms, bool quick, bool upper_only,
                 bool lower_only, bool herm) {
  int bad = 0;
  for (std::size_t p = 0; p < a.mem.size(); ++p) {
    const std::ptrdiff_t q = static_cast<std::ptrdiff_t>(p) - a.offset;
    const int i = q >= 0 ? static_cast<int>(q % a.ld) : -1;
    const int j = q >= 0 ? static_cast<int>(q / a.ld) : -1;
    const bool stored =
        i >= 0 && i < a.rows && j < a.cols && !(upper_only && i > j) && !(lower_only && i < j);
    if (!stored || quick) {
      bad += !same(a.mem[p], before[p]);
    } else {
      bad += !near(a.mem[p], want(i, j), scale(i, j), terms);
      if (herm && i == j) bad += std::imag(D<T>(a.mem[p])) != 0;
    }
  }
  return bad;
}

template <class T>
int run_ger(Random &g, int m, int n, int pad, int incx, int incy, T alpha, bool cj) {
  Matrix<T> a = operand<T>(m, n, pad, 1, g);
  Vector<T> x(m, incx, g), y(n, incy, g);
  if (n > 1) y[1] = T(0);
  const std::vector<T> before = a.mem;
  // A + alpha x y^T (or y^H)
  Matrix<double> scale;
  Matrix<D<T>> want = multiply('N', column(copy_of(x)), cj ? 'C' : 'T', column(copy_of(y)), &scale);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) {
      want(i, j) = at(a, i, j) + D<T>(alpha) * want(i, j);
      scale(i, j) = mag(at(a, i, j)) + mag(D<T>(alpha)) * scale(i, j);
    }
  l2::ger(m, n, alpha, x.data(), incx, y.data(), incy, a.data(), a.ld, cj);
  const bool quick = m == 0 || n == 0 || alpha == T(0);
  return check_update(a, before, want, scale, 2, quick, false, false, false);
}

// xSYR / xHER (second vector absent) and xSYR2 / xHER2.
template <class T>
int run_syr(Random &g, bool two, bool herm, bool upper, int n, int pad, int incx, int incy,
            T alpha) {
  Matrix<T> a = operand<T>(n, n, pad, 1, g);
  Vector<T> x(n, incx, g), y(two ? n : 0, incy, g);
  if (n > 1) x[1] = T(0);
  if (n > 1 && two) y[1] = T(0);
  const std::vector<T> before = a.mem;
  // alpha x op(y)^T + op(alpha) y op(x)^T, or alpha x op(x)^T; op conjugates
  // when herm.
  const char h = herm ? 'C' : 'T';
  const Matrix<T> xc = column(copy_of(x)), yc = column(copy_of(y));
  Matrix<double> b1, b2;
  const Matrix<D<T>> p1 = multiply('N', xc, h, two ? yc : xc, &b1);
  const Matrix<D<T>> p2 = two ? multiply('N', yc, h, xc, &b2) : Matrix<D<T>>();
  const D<T> al(alpha), al2 = herm ? conj_of(al) : al;
  Matrix<D<T>> want(n, n);
  Matrix<double> scale(n, n);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      want(i, j) = (i == j && herm ? D<T>(std::real(at(a, i, i))) : at(a, i, j)) + al * p1(i, j);
      scale(i, j) = mag(at(a, i, j)) + mag(al) * b1(i, j);
      if (two) want(i, j) += al2 * p2(i, j), scale(i, j) += mag(al) * b2(i, j);
    }
  if (two)
    l2::syr2(upper, n, alpha, x.data(), incx, y.data(), incy, a.data(), a.ld, herm);
  else
    l2::syr(upper, n, alpha, x.data(), incx, a.data(), a.ld, herm);
  return check_update(a, before, want, scale, 3, n == 0 || alpha == T(0), upper, !upper, herm);
}

// xTRMV and xTRSV: the product against the reference, the solve by its
// residual.
template <class T>
int run_trxv(Random &g, bool solve, bool upper, Op trans, bool unit, int n, int pad, int incx) {
  const Triangle stored = upper ? Triangle::kUpper : Triangle::kLower;
  Matrix<T> a = operand<T>(n, n, pad, 1, g);
  orb::test::keep_triangle(a, stored);  // the other triangle is not read
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      if (i == j) {
        if (unit)
          a(i, i) = nan_value<T>();  // not read
        else
          a(i, i) = a(i, i) + make<T>(std::real(at(a, i, i)) < 0 ? -2 : 2);
      } else if ((i < j) == upper) {
        a(i, j) = a(i, j) * make<T>(0.5 / n);
      }
    }
  const Matrix<T> tri = orb::test::triangular_part(a, stored, unit);
  Vector<T> x(n, incx, g);
  const std::vector<T> x0 = copy_of(x);
  if (solve)
    l2::trsv(upper, trans, unit, n, a.data(), a.ld, x.data(), incx);
  else
    l2::trmv(upper, trans, unit, n, a.data(), a.ld, x.data(), incx);
  int bad = x.gaps_changed();
  // op(A) x0 against x, or op(A) x against x0.
  Matrix<double> bound;
  const Matrix<D<T>> p =
      multiply(orb::letter(trans), tri, 'N', column(solve ? copy_of(x) : x0), &bound);
  const double eps = std::numeric_limits<orb::test::real_t<T>>::epsilon();
  for (int i = 0; i < n; ++i) {
    if (solve)
      bad +=
          !(mag(p(i, 0) - D<T>(x0[i])) <= 2.0 * (n + 8) * eps * (bound(i, 0) + mag(D<T>(x0[i]))));
    else
      bad += !near(x[i], p(i, 0), bound(i, 0), n);
  }
  return bad;
}

template <class T>
class Level2Routines : public testing::Test {};
TYPED_TEST_SUITE(Level2Routines, Types);

constexpr int kShapes[][2] = {{0, 3},  {3, 0},   {1, 1},  {2, 3},  {5, 4},
                              {17, 9}, {33, 34}, {67, 5}, {4, 67}, {70, 70}};
constexpr int kOrders[] = {0, 1, 2, 3, 5, 17, 31, 32, 33, 65, 70};

TYPED_TEST(Level2Routines, Gemv) {
  using T = TypeParam;
  Random g;
  for (Op trans : {Op::kNone, Op::kTrans, Op::kConjTrans})
    for (const auto &mn : kShapes)
      for (int pad : {0, 2})
        for (const auto &inc : kIncs)
          for (const auto &[alpha, beta] : alpha_beta<T>())
            ASSERT_EQ(run_gemv(g, trans, mn[0], mn[1], pad, inc[0], inc[1], alpha, beta), 0)
                << "trans " << trans << " m=" << mn[0] << " n=" << mn[1] << " pad=" << pad
                << " inc " << inc[0] << "," << inc[1] << " alpha " << alpha << " beta " << beta;
}

// NaN and infinity in A reach y also where x is zero, as in the published
// routine.
TYPED_TEST(Level2Routines, GemvUsesEveryColumn) {
  using T = TypeParam;
  for (Op trans : {Op::kNone, Op::kTrans}) {
    std::vector<T> a(9, T(1)), x(3, T(1)), y(3, T(0));
    a[4] = nan_value<T>();  // (1, 1)
    x[1] = T(0);
    l2::gemv(trans, 3, 3, T(1), a.data(), 3, x.data(), 1, T(0), y.data(), 1);
    EXPECT_TRUE(is_nan(y[1])) << trans;
    EXPECT_FALSE(is_nan(y[0])) << trans;
  }
}

TYPED_TEST(Level2Routines, Symv) {
  using T = TypeParam;
  Random g;
  for (bool upper : {true, false})
    for (int n : kOrders)
      for (int pad : {0, 2})
        for (const auto &inc : kIncs)
          for (const auto &[alpha, beta] : alpha_beta<T>())
            ASSERT_EQ(run_symv(g, upper, n, pad, inc[0], inc[1], alpha, beta), 0)
                << "upper " << upper << " n=" << n << " pad=" << pad << " inc " << inc[0] << ","
                << inc[1] << " alpha " << alpha << " beta " << beta;
}

TYPED_TEST(Level2Routines, Ger) {
  using T = TypeParam;
  Random g;
  for (bool cj : {false, kComplex<T>})
    for (const auto &mn : kShapes)
      for (const auto &inc : kIncs)
        for (T alpha : {T(0), T(1), make<T>(0.7, -0.3)})
          ASSERT_EQ(run_ger(g, mn[0], mn[1], 2, inc[0], inc[1], alpha, cj), 0)
              << "m=" << mn[0] << " n=" << mn[1] << " inc " << inc[0] << "," << inc[1] << " alpha "
              << alpha << " conj " << cj;
}

TYPED_TEST(Level2Routines, SymmetricAndHermitianUpdates) {
  using T = TypeParam;
  Random g;
  for (bool two : {false, true})
    for (bool herm : {false, kComplex<T>})
      for (bool upper : {true, false})
        for (int n : kOrders)
          for (const auto &inc : kIncs)
            for (T alpha : {T(0), T(1), make<T>(0.7, herm ? 0 : -0.3)})
              ASSERT_EQ(run_syr(g, two, herm, upper, n, 1, inc[0], inc[1], alpha), 0)
                  << "rank " << (two ? 2 : 1) << " herm " << herm << " upper " << upper
                  << " n=" << n << " inc " << inc[0] << "," << inc[1] << " alpha " << alpha;
}

TYPED_TEST(Level2Routines, TriangularProductAndSolve) {
  using T = TypeParam;
  Random g;
  for (bool solve : {false, true})
    for (bool upper : {true, false})
      for (Op trans : {Op::kNone, Op::kTrans, Op::kConjTrans})
        for (bool unit : {false, true})
          for (int n : kOrders)
            for (int incx : {1, -1, 2, -3})
              ASSERT_EQ(run_trxv<T>(g, solve, upper, trans, unit, n, n % 2 ? 0 : 3, incx), 0)
                  << (solve ? "solve" : "product") << " upper " << upper << " trans " << trans
                  << " unit " << unit << " n=" << n << " incx " << incx;
}

// A zero element of the vector that scales a column leaves that column alone
// (as published), even where the other vector holds an infinity.
TYPED_TEST(Level2Routines, ZeroScaleLeavesColumnsAlone) {
  using T = TypeParam;
  const T inf = make<T>(std::numeric_limits<double>::infinity());
  std::vector<T> a(9, T(1)), x(3, T(1)), y(3, T(1));
  x[0] = inf;
  y[1] = T(0);
  l2::ger(3, 3, T(1), x.data(), 1, y.data(), 1, a.data(), 3, false);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(same(a[3 + i], T(1))) << "ger row " << i;
  for (bool two : {false, true}) {
    std::vector<T> s(9, T(1)), v(3, T(1));
    v[0] = inf;
    v[2] = T(0);
    if (two)
      l2::syr2(true, 3, T(1), v.data(), 1, v.data(), 1, s.data(), 3, false);
    else
      l2::syr(true, 3, T(1), v.data(), 1, s.data(), 3, false);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(same(s[6 + i], T(1))) << "rank " << two + 1;
  }
}

// Vectors longer than a row block, and every driver again with the copies
// made in small stack chunks as when no work buffer can be had.
TYPED_TEST(Level2Routines, LongVectorsAndNoWorkBuffers) {
  using T = TypeParam;
  Random g;
  const T alpha = make<T>(0.7, -0.3), beta = make<T>(-1.25, 0.5);
  const int rb = l2::row_block<T>();
  for (Op trans : {Op::kNone, Op::kConjTrans}) {
    EXPECT_EQ(run_gemv(g, trans, rb + 5, 3, 0, 2, -3, alpha, beta), 0);
    EXPECT_EQ(run_gemv(g, trans, 3, rb + 5, 0, -3, 2, alpha, beta), 0);
    EXPECT_EQ(run_gemv(g, trans, rb + 5, 3, 0, 1, 1, alpha, beta), 0);
  }
  // y += A x at unit increments takes longer row blocks (64 KiB of y).
  EXPECT_EQ(run_gemv(g, Op::kNone, 65536 / int{sizeof(T)} + 5, 7, 1, 1, 1, alpha, beta), 0);
  EXPECT_EQ(run_ger(g, rb + 5, 2, 0, -2, 1, alpha, false), 0);
  struct Refuse {
    Refuse() { l2::g_refuse_work_buffers = true; }
    ~Refuse() { l2::g_refuse_work_buffers = false; }
  } refuse;
  const int n = l2::kStackBlock + 44;
  for (Op trans : {Op::kNone, Op::kConjTrans})
    EXPECT_EQ(run_gemv(g, trans, n, n - 7, 0, 2, -1, alpha, beta), 0) << trans;
  EXPECT_EQ(run_ger(g, n, 5, 0, -2, 1, alpha, false), 0);
  for (bool upper : {true, false}) {
    EXPECT_EQ(run_symv(g, upper, n, 0, 2, -1, alpha, beta), 0);
    EXPECT_EQ(run_syr(g, false, false, upper, n, 0, -2, 1, alpha), 0);
    EXPECT_EQ(run_syr(g, true, kComplex<T>, upper, n, 0, 1, 3, alpha), 0);
    for (bool solve : {false, true})
      EXPECT_EQ(run_trxv<T>(g, solve, upper, Op::kTrans, false, n, 0, -2), 0);
  }
}

// ---- dispatch ---------------------------------------------------------------------

// In a process forced to a processor type: the slots take that type's
// variants (the 256-bit ones where types 4 and 5 can take the wider path: a
// processor with AVX2 and FMA, and SSE4.1 for type 4), and the drivers pass
// their tests with them.
ORB_CHILD(level2_forced_type) {
  const int type = orb::cpu::blas_type();
  using F = k2::GemvN<float>;
  using Z = k2::AxpyDot<c16>;
  F f[] = {&k2::generic::gemv_n, nullptr,           &k2::sse2::gemv_n, &k2::sse3::gemv_n,
           &k2::ssse3::gemv_n,   &k2::sse42::gemv_n};
  Z z[] = {&k2::generic::axpy_dot, nullptr,
           &k2::sse2::axpy_dot,    &k2::sse3::axpy_dot,
           &k2::ssse3::axpy_dot,   &k2::sse42::axpy_dot};
#if defined(ORB_KERNELS_AVX2)
  namespace cpu = orb::cpu;
  if (cpu::avx2_fma_usable() && (type == 5 || (type == 4 && cpu::has_sse41())))
    f[type] = &k2::avx2::gemv_n, z[type] = &k2::avx2::axpy_dot;
#endif
  if (l2::kernels<float>().gemv_n.get() != f[type] ||
      l2::kernels<c16>().axpy_dot.get() != z[type]) {
    std::printf("type %d: a slot holds another variant\n", type);
    return 1;
  }
  char arg0[] = "level2_test", filter[] = "--gtest_filter=Level2Routines/*";
  char *argv[] = {arg0, filter, nullptr};
  int argc = 2;
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}

TEST(Level2Dispatch, EveryProcessorType) {
  for (const char *type : {"0", "1", "2", "3", "4", "5"}) {
    const auto r = orb::test::run_child("level2_forced_type", {{"ORB_DEBUG_CPU_TYPE", type}});
    EXPECT_EQ(r.exit_code, 0) << "ORB_DEBUG_CPU_TYPE=" << type << "\n" << r.out;
  }
}

}  // namespace
