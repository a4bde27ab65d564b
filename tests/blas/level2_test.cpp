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

namespace {

namespace k2 = orb::kernel::level2;
namespace l2 = orb::blas::level2;
using c8 = std::complex<float>;
using c16 = std::complex<double>;

template <class T>
struct Of {
  using D = double;  // the reference's type
  using Real = T;
  static constexpr bool kComplex = false;
};
template <class R>
struct Of<std::complex<R>> {
  using D = c16;
  using Real = R;
  static constexpr bool kComplex = true;
};
template <class T>
using D = typename Of<T>::D;
template <class T>
constexpr bool kComplex = Of<T>::kComplex;

template <class T>
T make(double re, double im = 0) {
  if constexpr (kComplex<T>)
    return T(static_cast<typename Of<T>::Real>(re), static_cast<typename Of<T>::Real>(im));
  else
    return static_cast<T>(re);
}
double mag(double v) {
  return std::fabs(v);
}
double mag(c16 v) {
  return std::fabs(v.real()) + std::fabs(v.imag());
}
double conj(double v) {
  return v;
}
c16 conj(c16 v) {
  return std::conj(v);
}
template <class T>
bool is_nan(T v) {
  return std::isnan(mag(D<T>(v)));
}

// Deterministic values in [-1, 1].
struct Gen {
  std::uint32_t s = 2463534242u;
  double next() {
    s ^= s << 13, s ^= s >> 17, s ^= s << 5;
    return static_cast<double>(s) / 2147483648.0 - 1.0;
  }
  template <class T>
  T get() {
    const double re = next();
    return make<T>(re, kComplex<T> ? next() : 0.0);
  }
};

template <class T>
T sentinel() {
  return make<T>(1234.5, -543.25);
}

// A vector of n elements at increment inc, in storage whose gaps hold a
// sentinel; element i is where the published routines look for it.
template <class T>
struct Vector {
  int n, inc;
  std::vector<T> mem;
  Vector(int n_, int inc_, Gen &g)
      : n(n_), inc(inc_), mem(1 + (n_ > 0 ? n_ - 1 : 0) * std::abs(inc_), sentinel<T>()) {
    for (int i = 0; i < n; ++i) (*this)[i] = g.get<T>();
  }
  T &operator[](int i) { return mem[inc > 0 ? i * inc : (n - 1 - i) * -inc]; }
  int gaps_changed() const {
    int changed = 0;
    for (std::size_t p = 0; p < mem.size(); ++p)
      if (p % std::abs(inc) != 0 && mem[p] != sentinel<T>()) ++changed;
    return changed;
  }
};

// A rows-by-cols matrix at leading dimension ld, starting `offset` elements
// into its storage (an odd offset misaligns it); padding holds the sentinel.
template <class T>
struct Matrix {
  int rows, cols, ld, offset;
  std::vector<T> mem;
  Matrix(int r, int c, int pad, int off, Gen &g)
      : rows(r),
        cols(c),
        ld(std::max(1, r + pad)),
        offset(off),
        mem(off + static_cast<std::size_t>(ld) * c + 1, sentinel<T>()) {
    for (int j = 0; j < c; ++j)
      for (int i = 0; i < r; ++i) (*this)(i, j) = g.get<T>();
  }
  T &operator()(int i, int j) { return mem[offset + i + static_cast<std::size_t>(j) * ld]; }
  T *data() { return mem.data() + offset; }
  D<T> at(int i, int j) { return D<T>((*this)(i, j)); }
};

// |got - want| within a bound that grows with the number of terms summed.
template <class T>
bool near(T got, D<T> want, double scale, int terms) {
  const double eps = std::numeric_limits<typename Of<T>::Real>::epsilon();
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
};
#define ORB_VARIANT(ns)                                                                     \
  Variant<T> {                                                                              \
#ns, &k2::ns::gemv_n, &k2::ns::gemv_t, &k2::ns::axpy, &k2::ns::axpy2, &k2::ns::axpy_dot \
  }
template <class T>
std::vector<Variant<T>> variants() {
  std::vector<Variant<T>> v{ORB_VARIANT(generic), ORB_VARIANT(sse2), ORB_VARIANT(sse3),
                            ORB_VARIANT(ssse3), ORB_VARIANT(sse42)};
#if defined(__x86_64__)
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
  Gen g;
  for (const Variant<T> &v : variants<T>())
    for (int m = 0; m <= 67; ++m)
      for (int n : {1, 2, 3, 4, 5, 6, 9})
        for (int pad : {0, 3})
          for (int off : {0, 1}) {
            Matrix<T> a(m, n, pad, off, g);
            // y(0:m) += alpha A x
            std::vector<T> x(n), y(m);
            for (T &e : x) e = g.get<T>();
            for (T &e : y) e = g.get<T>();
            std::vector<T> y0 = y;
            v.gemv_n(m, n, alpha, a.data(), a.ld, x.data(), y.data());
            int bad = 0;
            for (int i = 0; i < m; ++i) {
              D<T> s = D<T>(y0[i]);
              double scale = mag(D<T>(y0[i]));
              for (int j = 0; j < n; ++j) {
                s += D<T>(alpha) * a.at(i, j) * D<T>(x[j]);
                scale += mag(D<T>(alpha)) * mag(a.at(i, j)) * mag(D<T>(x[j]));
              }
              bad += !near(y[i], s, scale, n);
            }
            // y(0:n) += alpha op(A)^T x
            for (bool cj : {false, true}) {
              std::vector<T> xt(m), yt(n);
              for (T &e : xt) e = g.get<T>();
              for (T &e : yt) e = g.get<T>();
              std::vector<T> yt0 = yt;
              v.gemv_t(m, n, alpha, a.data(), a.ld, xt.data(), yt.data(), cj);
              for (int j = 0; j < n; ++j) {
                D<T> s = 0;
                double scale = 0;
                for (int i = 0; i < m; ++i) {
                  s += (cj ? conj(a.at(i, j)) : a.at(i, j)) * D<T>(xt[i]);
                  scale += mag(a.at(i, j)) * mag(D<T>(xt[i]));
                }
                bad += !near(yt[j], D<T>(yt0[j]) + D<T>(alpha) * s,
                             mag(D<T>(yt0[j])) + mag(D<T>(alpha)) * scale, m);
              }
            }
            ASSERT_EQ(bad, 0) << v.name << " m=" << m << " n=" << n << " pad=" << pad
                              << " offset=" << off;
          }
}

TYPED_TEST(Level2Kernels, VectorUpdates) {
  using T = TypeParam;
  const D<T> a1 = D<T>(make<T>(-0.5, 0.25)), a2 = D<T>(make<T>(1.5, -0.75));
  Gen g;
  for (const Variant<T> &v : variants<T>())
    for (int n = 0; n <= 67; ++n)
      for (int off : {0, 1}) {  // x and w misaligned one way, y the other
        std::vector<T> x(n + 1), w(n + 1), y0(n + 1);
        for (auto *vec : {&x, &w, &y0})
          for (T &e : *vec) e = g.get<T>();
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
            s += (k == 3 ? conj(xi) : xi) * wi;
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

template <class T>
using Full = std::vector<std::vector<D<T>>>;  // a dense op(A), [row][column]
using Scale = std::vector<std::vector<double>>;

// y := alpha op x + beta y against the reference, op given densely as rows by cols.
template <class T>
int check_product(const Full<T> &op, int rows, int cols, bool quick, T alpha, T beta, Vector<T> &x,
                  Vector<T> &y, const std::vector<T> &y0) {
  std::vector<D<T>> want(rows);
  std::vector<double> scale(rows);
  for (int i = 0; i < rows; ++i) {
    D<T> s = 0;
    double sc = 0;
    for (int k = 0; k < cols; ++k) {
      s += op[i][k] * D<T>(x[k]);
      sc += mag(op[i][k]) * mag(D<T>(x[k]));
    }
    const bool b0 = beta == T(0);
    want[i] = D<T>(alpha) * s + (b0 ? D<T>(0) : D<T>(beta) * D<T>(y0[i]));
    scale[i] = mag(D<T>(alpha)) * sc + (b0 ? 0.0 : mag(D<T>(beta)) * mag(D<T>(y0[i])));
  }
  return compare(y, y0, want, scale, cols, quick);
}

template <class T>
std::vector<std::pair<T, T>> alpha_beta() {
  const T a = make<T>(0.7, -0.3), b = make<T>(-1.25, 0.5);
  return {{T(0), T(1)}, {T(0), T(0)}, {T(0), b}, {T(1), T(0)}, {a, T(1)}, {a, b}};
}
constexpr int kIncs[][2] = {{1, 1}, {2, -1}, {-1, 2}, {-3, -3}, {1, -3}};

template <class T>
int run_gemv(Gen &g, int trans, int m, int n, int pad, int incx, int incy, T alpha, T beta) {
  Matrix<T> a(m, n, pad, 1, g);
  const bool nt = trans == l2::kNoTrans;
  Vector<T> x(nt ? n : m, incx, g), y(nt ? m : n, incy, g);
  if (beta == T(0))
    for (int i = 0; i < y.n; ++i) y[i] = nan_value<T>();  // not to be read
  const std::vector<T> y0 = copy_of(y);
  Full<T> op(y.n, std::vector<D<T>>(x.n));
  for (int i = 0; i < y.n; ++i)
    for (int k = 0; k < x.n; ++k)
      op[i][k] = nt ? a.at(i, k) : trans == l2::kConjTrans ? conj(a.at(k, i)) : a.at(k, i);
  l2::gemv(trans, m, n, alpha, a.data(), a.ld, x.mem.data(), incx, beta, y.mem.data(), incy);
  const bool quick = m == 0 || n == 0 || (alpha == T(0) && beta == T(1));
  return check_product(op, y.n, x.n, quick, alpha, beta, x, y, y0);
}

template <class T>
int run_symv(Gen &g, bool upper, int n, int pad, int incx, int incy, T alpha, T beta) {
  const bool herm = kComplex<T>;
  Matrix<T> a(n, n, pad, 1, g);
  Full<T> op(n, std::vector<D<T>>(n));
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      if (i == j) {
        // A Hermitian diagonal's imaginary parts are not read.
        if (herm) a(i, i) = make<T>(std::real(a.at(i, i)), std::nan(""));
        op[i][i] = herm ? D<T>(std::real(a.at(i, i))) : a.at(i, i);
      } else if ((i < j) == upper) {
        op[i][j] = a.at(i, j);
        op[j][i] = herm ? conj(a.at(i, j)) : a.at(i, j);
      } else {
        a(i, j) = nan_value<T>();  // the other triangle is not read
      }
    }
  Vector<T> x(n, incx, g), y(n, incy, g);
  if (beta == T(0))
    for (int i = 0; i < n; ++i) y[i] = nan_value<T>();
  const std::vector<T> y0 = copy_of(y);
  l2::symv(upper, n, alpha, a.data(), a.ld, x.mem.data(), incx, beta, y.mem.data(), incy, herm);
  return check_product(op, n, n, n == 0 || (alpha == T(0) && beta == T(1)), alpha, beta, x, y, y0);
}

// Rank updates: a.mem after the call against `want` on the stored part,
// everything else untouched.
template <class T>
int check_update(Matrix<T> &a, const std::vector<T> &before, const Full<T> &want,
                 const Scale &scale, int terms, bool quick, bool upper_only, bool lower_only,
                 bool herm) {
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
      bad += !near(a.mem[p], want[i][j], scale[i][j], terms);
      if (herm && i == j) bad += std::imag(D<T>(a.mem[p])) != 0;
    }
  }
  return bad;
}

template <class T>
int run_ger(Gen &g, int m, int n, int pad, int incx, int incy, T alpha, bool cj) {
  Matrix<T> a(m, n, pad, 1, g);
  Vector<T> x(m, incx, g), y(n, incy, g);
  if (n > 1) y[1] = T(0);
  const std::vector<T> before = a.mem;
  Full<T> want(m, std::vector<D<T>>(n));
  Scale scale(m, std::vector<double>(n));
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < n; ++j) {
      const D<T> yj = cj ? conj(D<T>(y[j])) : D<T>(y[j]);
      want[i][j] = a.at(i, j) + D<T>(alpha) * D<T>(x[i]) * yj;
      scale[i][j] = mag(a.at(i, j)) + mag(D<T>(alpha)) * mag(D<T>(x[i])) * mag(yj);
    }
  l2::ger(m, n, alpha, x.mem.data(), incx, y.mem.data(), incy, a.data(), a.ld, cj);
  const bool quick = m == 0 || n == 0 || alpha == T(0);
  return check_update(a, before, want, scale, 2, quick, false, false, false);
}

// xSYR / xHER (second vector absent) and xSYR2 / xHER2.
template <class T>
int run_syr(Gen &g, bool two, bool herm, bool upper, int n, int pad, int incx, int incy, T alpha) {
  Matrix<T> a(n, n, pad, 1, g);
  Vector<T> x(n, incx, g), y(two ? n : 0, incy, g);
  if (n > 1) x[1] = T(0);
  if (n > 1 && two) y[1] = T(0);
  const std::vector<T> before = a.mem;
  Full<T> want(n, std::vector<D<T>>(n));
  Scale scale(n, std::vector<double>(n));
  auto op = [&](D<T> v) { return herm ? conj(v) : v; };
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) {
      const D<T> al(alpha), xi(x[i]), xj(x[j]);
      D<T> v = i == j && herm ? D<T>(std::real(a.at(i, i))) : a.at(i, j);
      double sc = mag(a.at(i, j));
      if (two) {
        const D<T> yi(y[i]), yj(y[j]);
        v += al * xi * op(yj) + op(al) * yi * op(xj);
        sc += mag(al) * (mag(xi) * mag(yj) + mag(yi) * mag(xj));
      } else {
        v += al * xi * op(xj);
        sc += mag(al) * mag(xi) * mag(xj);
      }
      want[i][j] = v, scale[i][j] = sc;
    }
  if (two)
    l2::syr2(upper, n, alpha, x.mem.data(), incx, y.mem.data(), incy, a.data(), a.ld, herm);
  else
    l2::syr(upper, n, alpha, x.mem.data(), incx, a.data(), a.ld, herm);
  return check_update(a, before, want, scale, 3, n == 0 || alpha == T(0), upper, !upper, herm);
}

// xTRMV and xTRSV: the product against the reference, the solve by its
// residual.
template <class T>
int run_trxv(Gen &g, bool solve, bool upper, int trans, bool unit, int n, int pad, int incx) {
  Matrix<T> a(n, n, pad, 1, g);
  Full<T> op(n, std::vector<D<T>>(n, D<T>(0)));
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      if (i == j) {
        if (unit)
          a(i, i) = nan_value<T>();  // not read
        else
          a(i, i) = a(i, i) + make<T>(std::real(a.at(i, i)) < 0 ? -2 : 2);
      } else if ((i < j) == upper) {
        a(i, j) = a(i, j) * make<T>(0.5 / n);
      } else {
        a(i, j) = nan_value<T>();
        continue;
      }
      const D<T> v = i == j && unit ? D<T>(1) : a.at(i, j);
      const int r = trans == l2::kNoTrans ? i : j, c = trans == l2::kNoTrans ? j : i;
      op[r][c] = trans == l2::kConjTrans ? conj(v) : v;
    }
  Vector<T> x(n, incx, g);
  const std::vector<T> x0 = copy_of(x);
  if (solve)
    l2::trsv(upper, trans, unit, n, a.data(), a.ld, x.mem.data(), incx);
  else
    l2::trmv(upper, trans, unit, n, a.data(), a.ld, x.mem.data(), incx);
  int bad = x.gaps_changed();
  const double eps = std::numeric_limits<typename Of<T>::Real>::epsilon();
  for (int i = 0; i < n; ++i) {
    D<T> s = 0;
    double sc = 0;
    for (int k = 0; k < n; ++k) {
      const D<T> v = solve ? D<T>(x[k]) : D<T>(x0[k]);
      s += op[i][k] * v;
      sc += mag(op[i][k]) * mag(v);
    }
    if (solve)
      bad += !(mag(s - D<T>(x0[i])) <= 2.0 * (n + 8) * eps * (sc + mag(D<T>(x0[i]))));
    else
      bad += !near(x[i], s, sc, n);
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
  Gen g;
  for (int trans : {l2::kNoTrans, l2::kTrans, l2::kConjTrans})
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
  for (int trans : {l2::kNoTrans, l2::kTrans}) {
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
  Gen g;
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
  Gen g;
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
  Gen g;
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
  Gen g;
  for (bool solve : {false, true})
    for (bool upper : {true, false})
      for (int trans : {l2::kNoTrans, l2::kTrans, l2::kConjTrans})
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
  Gen g;
  const T alpha = make<T>(0.7, -0.3), beta = make<T>(-1.25, 0.5);
  const int rb = l2::row_block<T>();
  for (int trans : {l2::kNoTrans, l2::kConjTrans}) {
    EXPECT_EQ(run_gemv(g, trans, rb + 5, 3, 0, 2, -3, alpha, beta), 0);
    EXPECT_EQ(run_gemv(g, trans, 3, rb + 5, 0, -3, 2, alpha, beta), 0);
    EXPECT_EQ(run_gemv(g, trans, rb + 5, 3, 0, 1, 1, alpha, beta), 0);
  }
  EXPECT_EQ(run_ger(g, rb + 5, 2, 0, -2, 1, alpha, false), 0);
  struct Refuse {
    Refuse() { l2::g_refuse_work_buffers = true; }
    ~Refuse() { l2::g_refuse_work_buffers = false; }
  } refuse;
  const int n = l2::kStackBlock + 44;
  for (int trans : {l2::kNoTrans, l2::kConjTrans})
    EXPECT_EQ(run_gemv(g, trans, n, n - 7, 0, 2, -1, alpha, beta), 0) << trans;
  EXPECT_EQ(run_ger(g, n, 5, 0, -2, 1, alpha, false), 0);
  for (bool upper : {true, false}) {
    EXPECT_EQ(run_symv(g, upper, n, 0, 2, -1, alpha, beta), 0);
    EXPECT_EQ(run_syr(g, false, false, upper, n, 0, -2, 1, alpha), 0);
    EXPECT_EQ(run_syr(g, true, kComplex<T>, upper, n, 0, 1, 3, alpha), 0);
    for (bool solve : {false, true})
      EXPECT_EQ(run_trxv<T>(g, solve, upper, l2::kTrans, false, n, 0, -2), 0);
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
#if defined(__x86_64__)
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
