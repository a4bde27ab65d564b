// The level-3 routines beside GEMM: every option combination against a
// double-precision reference on sizes around the block boundaries, the parts
// of the operands the contracts keep untouched or unread, results that do not
// depend on the thread count, and every processor path.
#include <gtest/gtest.h>
#include <omp.h>

#include <cmath>
#include <complex>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "blas/level3/level3.h"
#include "orb.h"
#include "service/cpu.h"
#include "support/child.h"
#include "support/reference.h"

namespace {

using orb::c16;
using orb::c8;
using orb::Op;
using orb::blas::Triangular;

using orb::test::wide_t;

template <class T>
constexpr bool kComplex = !std::is_floating_point_v<T>;

template <class T>
T make(double re, double im) {
  if constexpr (kComplex<T>)
    return T(re, im);
  else
    return T(re);
}
// |re| + |im|: a bound on |x| that is cheaper than std::abs.
inline double l1(double x) {
  return std::fabs(x);
}
inline double l1(std::complex<double> x) {
  return std::fabs(x.real()) + std::fabs(x.imag());
}

using orb::test::conj_of;

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kMark = 7.25;  // what elements that must stay untouched hold

// A column-major matrix with a leading dimension above its rows.
template <class T>
struct Mat {
  int rows, cols, ld;
  std::vector<T> v;
  Mat(int r, int c, int pad, std::mt19937 &rng, double scale = 1)
      : rows(r), cols(c), ld(std::max(1, r + pad)) {
    v.resize(static_cast<size_t>(ld) * std::max(c, 1));
    auto d = [&] { return scale * (rng() * (2.0 / 4294967296.0) - 1.0); };
    for (auto &x : v) {
      const double re = d();
      x = make<T>(re, kComplex<T> ? d() : 0.0);
    }
  }
  T &operator()(int i, int j) { return v[i + static_cast<size_t>(j) * ld]; }
  T *p() { return v.data(); }
  const T &operator()(int i, int j) const { return v[i + static_cast<size_t>(j) * ld]; }
  bool same(const Mat &o, int i, int j) const {  // bitwise, NaN included
    return std::memcmp(&(*this)(i, j), &o(i, j), sizeof(T)) == 0;
  }
};

// Counts elements outside a bound that grows with the inner dimension.
template <class T>
struct Tally {
  int bad = 0;
  const char *what;
  void near(T got, wide_t<T> expect, double mag, int inner, int i, int j) {
    using R = decltype(std::abs(T()));
    const double eps = std::numeric_limits<R>::epsilon();
    const double err = std::abs(wide_t<T>(got) - expect);
    if (!(err <= 8 * (inner + 2) * eps * (mag + 1e-30))) fail(i, j, err);
  }
  void fail(int i, int j, double err = 0) {
    if (bad++ < 3) std::printf("  %s: (%d,%d) err %g\n", what, i, j, err);
  }
};

template <class T>
T pick(int i, std::initializer_list<T> xs) {
  return xs.begin()[i % xs.size()];
}

// ---- symmetric and Hermitian multiply -----------------------------------------------

template <class T>
int symm_case(bool left, bool upper, bool herm, int m, int n, T alpha, T beta, std::mt19937 &rng,
              std::vector<T> *out = nullptr) {
  using W = wide_t<T>;
  const int na = left ? m : n;
  Mat<T> a(na, na, 2, rng), b(m, n, 1, rng), c0(m, n, 3, rng);
  for (int j = 0; j < na; ++j)  // the other triangle is never read
    for (int i = 0; i < na; ++i)
      if (i != j && (i < j) != upper) a(i, j) = T(kNaN);
  if (herm)
    for (int j = 0; j < na; ++j) a(j, j) = make<T>(std::real(a(j, j)), kNaN);
  if (beta == T(0))
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < m; ++i) c0(i, j) = T(kNaN);
  std::vector<W> full(static_cast<size_t>(na) * na);  // the whole of A
  for (int j = 0; j < na; ++j)
    for (int i = 0; i < na; ++i) {
      W x = (i == j || (i < j) == upper) ? W(a(i, j)) : W(a(j, i));
      if (herm) x = i == j ? W(std::real(x)) : (i < j) == upper ? x : conj_of(x);
      full[i + static_cast<size_t>(j) * na] = x;
    }
  Mat<T> c = c0;
  orb::blas::symm_omp<T>(left, upper, herm, m, n, alpha, a.p(), a.ld, b.p(), b.ld, beta, c.p(),
                         c.ld);
  Tally<T> t{0, "symm"};
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < m; ++i) {
      W s = 0;
      double mag = 0;
      for (int p = 0; p < na; ++p) {
        const W x =
            left ? full[i + size_t(p) * na] * W(b(p, j)) : W(b(i, p)) * full[p + size_t(j) * na];
        s += x;
        mag += l1(x);
      }
      W e = W(alpha) * s;
      mag *= std::abs(W(alpha));
      if (beta != T(0)) e += W(beta) * W(c0(i, j)), mag += l1(W(beta) * W(c0(i, j)));
      t.near(c(i, j), e, mag, na, i, j);
    }
    for (int i = m; i < c.ld; ++i)
      if (!c.same(c0, i, j)) t.fail(i, j);
  }
  if (out) *out = c.v;
  return t.bad;
}

template <class T>
int symm_sweep(const std::vector<int> &orders, const std::vector<int> &others, bool herm) {
  std::mt19937 rng(5);
  int bad = 0, x = 0;
  for (bool left : {true, false})
    for (bool upper : {true, false})
      for (int order : orders)
        for (int other : others) {
          ++x;
          const T alpha = pick<T>(x, {make<T>(0.75, -0.5), T(1), T(0)});
          const T beta = pick<T>(x, {T(0), make<T>(-0.5, 0.25), T(1), T(0)});
          const int m = left ? order : other, n = left ? other : order;
          const int b = symm_case<T>(left, upper, herm, m, n, alpha, beta, rng);
          if (b) std::printf("  side %c uplo %c m %d n %d\n", "RL"[left], "LU"[upper], m, n);
          bad += b;
        }
  return bad;
}

// ---- rank-k and rank-2k updates ----------------------------------------------------

template <class T>
int update_case(bool two, bool upper, char trans, bool herm, int n, int k, T alpha, T beta,
                std::mt19937 &rng, std::vector<T> *out = nullptr) {
  using W = wide_t<T>;
  const bool notrans = trans == 'N';
  Mat<T> a(notrans ? n : k, notrans ? k : n, 1, rng), b(notrans ? n : k, notrans ? k : n, 2, rng);
  Mat<T> c0(n, n, 3, rng);
  // beta = 1 with nothing to add: C is not touched at all.
  const bool quick = beta == T(1) && (k == 0 || alpha == T(0));
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < c0.ld; ++i) {
      const bool inside = i < n && (i == j || (i < j) == upper);
      if (!inside)
        c0(i, j) = T(kMark);
      else if (beta == T(0))
        c0(i, j) = T(kNaN);
      else if (herm && i == j && !quick)
        c0(i, j) = make<T>(std::real(c0(i, j)), kNaN);  // the imaginary part is not read
    }
  // Term p of element (i, j) of X op(Y) (trans N) or op(X) Y.
  auto term = [&](Mat<T> &x, int i, Mat<T> &y, int j, int p) -> W {
    const W xi = notrans ? W(x(i, p)) : W(x(p, i)), yj = notrans ? W(y(j, p)) : W(y(p, j));
    if (!herm) return xi * yj;
    return notrans ? xi * conj_of(yj) : conj_of(xi) * yj;
  };
  Mat<T> c = c0;
  const Op tcode = notrans ? Op::kNone : herm ? Op::kConjTrans : Op::kTrans;
  if (two)
    orb::blas::syr2k_omp<T>(upper, tcode, herm, n, k, alpha, a.p(), a.ld, b.p(), b.ld, beta, c.p(),
                            c.ld);
  else
    orb::blas::syrk_omp<T>(upper, tcode, herm, n, k, alpha, a.p(), a.ld, beta, c.p(), c.ld);
  Tally<T> t{0, two ? "syr2k" : "syrk"};
  const W alpha2 = herm ? conj_of(W(alpha)) : W(alpha);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < c.ld; ++i) {
      const bool inside = i < n && (i == j || (i < j) == upper);
      if (!inside || quick) {
        if (!c.same(c0, i, j)) t.fail(i, j);
        continue;
      }
      W s = 0;
      double mag = 0;
      for (int p = 0; p < k; ++p) {
        const W x = W(alpha) * term(a, i, two ? b : a, j, p);
        const W y = two ? alpha2 * term(b, i, a, j, p) : W(0);
        s += x + y;
        mag += l1(x) + l1(y);
      }
      W old = W(c0(i, j));
      if (herm && i == j) old = std::real(old);
      if (beta != T(0)) s += W(beta) * old, mag += l1(W(beta) * old);
      if (herm && i == j) {
        s = std::real(s);
        if (std::imag(c(i, j)) != 0) t.fail(i, j);
      }
      t.near(c(i, j), s, mag, 2 * k, i, j);
    }
  if (out) *out = c.v;
  return t.bad;
}

template <class T>
int update_sweep(const std::vector<int> &ns, const std::vector<int> &ks, bool herm,
                 const char *transposes) {
  std::mt19937 rng(9);
  int bad = 0, x = 0;
  for (bool two : {false, true})
    for (bool upper : {true, false})
      for (const char *tr = transposes; *tr; ++tr)
        for (int n : ns)
          for (int k : ks) {
            ++x;
            T alpha = pick<T>(x, {make<T>(0.75, -0.5), T(1), T(0), T(-1.5)});
            const T beta = pick<T>(x, {T(0), T(1), T(-0.5), T(2)});
            if (herm && !two) alpha = std::real(alpha);
            const int b = update_case<T>(two, upper, *tr, herm, n, k, alpha, beta, rng);
            if (b) std::printf("  uplo %c trans %c n %d k %d\n", "LU"[upper], *tr, n, k);
            bad += b;
          }
  return bad;
}

// ---- triangular multiply and solve ----------------------------------------------

template <class T>
int triangular_case(bool solve, const Triangular &tr, int m, int n, T alpha, std::mt19937 &rng,
                    std::vector<T> *out = nullptr) {
  using W = wide_t<T>;
  const int na = tr.left ? m : n;
  // Off the diagonal small enough that the solves stay well conditioned.
  Mat<T> a(na, na, 1, rng, 1.0 / std::max(1, na)), b0(m, n, 2, rng);
  for (int j = 0; j < na; ++j) {
    for (int i = 0; i < na; ++i)
      if (i != j && (i < j) != tr.upper) a(i, j) = T(kNaN);  // never read
    a(j, j) = tr.unit ? T(kNaN) : make<T>(1 + 0.5 * (j % 3), 0.25 * (j % 2));
  }
  if (alpha == T(0))
    for (auto &x : b0.v) x = T(kNaN);
  auto op = [&](int i, int j) -> W {  // op(A)(i, j)
    const int r = tr.trans == Op::kNone ? i : j, c = tr.trans == Op::kNone ? j : i;
    if (r == c && tr.unit) return W(1);
    if (r != c && (r < c) != tr.upper) return W(0);
    return tr.trans == Op::kConjTrans ? conj_of(W(a(r, c))) : W(a(r, c));
  };
  Mat<T> b = b0;
  if (solve)
    orb::blas::trsm_omp<T>(tr, m, n, alpha, a.p(), a.ld, b.p(), b.ld);
  else
    orb::blas::trmm_omp<T>(tr, m, n, alpha, a.p(), a.ld, b.p(), b.ld);
  Tally<T> t{0, solve ? "trsm" : "trmm"};
  // trmm: B = alpha op(A) B0 (B0 op(A)); trsm, as a residual: op(A) X = alpha B0.
  Mat<T> &x = solve ? b : b0;
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < m; ++i) {
      W s = 0;
      double mag = 0;
      for (int p = 0; p < na; ++p) {
        const W y = tr.left ? op(i, p) * W(x(p, j)) : W(x(i, p)) * op(p, j);
        s += y;
        mag += l1(y);
      }
      if (alpha == T(0)) {
        if (b(i, j) != T(0)) t.fail(i, j);
      } else if (solve) {
        t.near(T(0), s - W(alpha) * W(b0(i, j)), mag + std::abs(W(alpha) * W(b0(i, j))), na, i, j);
      } else {
        t.near(b(i, j), W(alpha) * s, std::abs(W(alpha)) * mag, na, i, j);
      }
    }
    for (int i = m; i < b.ld; ++i)
      if (!b.same(b0, i, j)) t.fail(i, j);
  }
  if (out) *out = b.v;
  return t.bad;
}

template <class T>
int triangular_sweep(bool solve, const std::vector<int> &orders, const std::vector<int> &others,
                     const char *transposes) {
  std::mt19937 rng(13);
  int bad = 0, x = 0;
  for (bool left : {true, false})
    for (bool upper : {true, false})
      for (const char *tr = transposes; *tr; ++tr)
        for (bool unit : {false, true})
          for (int order : orders)
            for (int other : others) {
              ++x;
              const Triangular t{left, upper, orb::option<Op>(*tr), unit};
              const T alpha = pick<T>(x, {T(1), make<T>(-0.75, 0.5), T(0), T(2)});
              const int m = left ? order : other, n = left ? other : order;
              const int b = triangular_case<T>(solve, t, m, n, alpha, rng);
              if (b)
                std::printf("  side %c uplo %c trans %c diag %c m %d n %d\n", "RL"[left],
                            "LU"[upper], *tr, "NU"[unit], m, n);
              bad += b;
            }
  return bad;
}

// Around every block boundary: the triangular ladder (16, 64, 256), the
// update's 32 and 256 columns, the multiply's 256 blocks, the solve's chunks
// of 64 right-hand sides.
const std::vector<int> kOrders = {0, 1, 15, 16, 17, 63, 65, 257};
const std::vector<int> kOthers = {1, 7, 33, 70};

int reduced_sweep() {
  int bad = 0;
  bad += symm_sweep<float>({1, 17, 257}, {1, 33}, false);
  bad += symm_sweep<c8>({33, 257}, {5}, true);
  bad += update_sweep<float>({1, 33, 257}, {0, 65}, false, "NT");
  bad += update_sweep<c8>({33, 257}, {17}, true, "NC");
  bad += triangular_sweep<float>(true, {1, 17, 64, 65, 257}, {1, 70}, "NT");
  bad += triangular_sweep<float>(false, {17, 257}, {33}, "NT");
  bad += triangular_sweep<c8>(true, {16, 65}, {7}, "NC");
  return bad;
}

TEST(Level3, SymmetricAndHermitianMultiply) {
  EXPECT_EQ(symm_sweep<float>({0, 1, 16, 33, 255, 257}, {0, 1, 7, 40}, false), 0);
  EXPECT_EQ(symm_sweep<c8>({0, 1, 17, 257}, {1, 9}, false), 0);
  EXPECT_EQ(symm_sweep<c8>({0, 1, 17, 257}, {1, 9}, true), 0);
}

TEST(Level3, RankKAndRank2KUpdates) {
  const std::vector<int> ns = {0, 1, 31, 33, 257}, ks = {0, 5, 70};
  EXPECT_EQ(update_sweep<float>(ns, ks, false, "NTC"), 0);
  EXPECT_EQ(update_sweep<c8>({0, 1, 33, 257}, {0, 1, 9}, false, "NT"), 0);
  EXPECT_EQ(update_sweep<c8>({0, 1, 33, 257}, {0, 1, 9}, true, "NC"), 0);
}

TEST(Level3, TriangularSolve) {
  EXPECT_EQ(triangular_sweep<float>(true, kOrders, kOthers, "NTC"), 0);
  EXPECT_EQ(triangular_sweep<c8>(true, {0, 1, 17, 65, 257}, {1, 9}, "NTC"), 0);
  EXPECT_EQ(triangular_sweep<double>(true, {0, 1, 17, 65, 257}, {1, 9}, "NT"), 0);
  EXPECT_EQ(triangular_sweep<c16>(true, {0, 1, 17, 65}, {1, 9}, "NTC"), 0);
}

TEST(Level3, TriangularMultiply) {
  EXPECT_EQ(triangular_sweep<float>(false, kOrders, kOthers, "NTC"), 0);
  EXPECT_EQ(triangular_sweep<c8>(false, {0, 1, 17, 65, 257}, {1, 9}, "NTC"), 0);
}

// ---- threads ------------------------------------------------------------------------

// Slabs cover the output once, on the grain, with about equal work.
// An infinity in B reaches only the elements whose sums take it with a
// coefficient of the triangle; the other triangle's zeros never multiply it.
TEST(Level3, TriangularMultiplyKeepsAnInfinityToItsOwnSums) {
  const float inf = std::numeric_limits<float>::infinity();
  for (int order : {40, 300})
    for (bool left : {true, false})
      for (bool upper : {true, false})
        for (Op trans : {Op::kNone, Op::kTrans}) {
          const Triangular tr{left, upper, trans, false};
          const int m = left ? order : 30, n = left ? 30 : order, k0 = order / 2, j0 = 7;
          std::vector<float> a(std::size_t(order) * order, 0.5f), b(std::size_t(m) * n, 1.0f);
          b[left ? k0 + std::size_t(j0) * m : j0 + std::size_t(k0) * m] = inf;
          orb::blas::trmm_omp<float>(tr, m, n, 1.0f, a.data(), order, b.data(), m);
          int bad = 0;
          for (int j = 0; j < n; ++j)
            for (int i = 0; i < m; ++i) {
              // op(A)(r, c) lies in the triangle when r <= c for an upper op(A).
              const bool op_upper = upper != (trans != Op::kNone);
              const int r = left ? i : k0, c = left ? k0 : j;
              const bool uses = (left ? j == j0 : i == j0) && (op_upper ? r <= c : r >= c);
              bad += std::isfinite(b[i + std::size_t(j) * m]) == uses;
            }
          EXPECT_EQ(bad, 0) << "order " << order << " side "
                            << "RL"[left] << " uplo "
                            << "LU"[upper] << " trans " << orb::letter(trans);
        }
}

TEST(Level3, ThreadSplit) {
  EXPECT_EQ(orb::blas::level3_team(1000.0, 100), 1);
  EXPECT_EQ(orb::blas::level3_team(1e12, 1), 1);
  for (int shape : {0, 1, 2})
    for (int nt : {2, 3, 7}) {
      int prev = 0;
      for (int i = 1; i <= nt; ++i) {
        const int b = orb::blas::level3_boundary(1000, i, nt, 32, shape);
        EXPECT_TRUE(b >= prev && (b % 32 == 0 || b == 1000)) << shape << " " << nt << " " << b;
        // Columns [prev, b) of a full, upper or lower triangle hold 1/nt of it.
        const double area =
            shape == 0 ? b - prev
            : shape == 1
                ? (double(b) * b - double(prev) * prev) / 2
                : (double(1000 - prev) * (1000 - prev) - double(1000 - b) * (1000 - b)) / 2;
        const double whole = shape == 0 ? 1000 : 500000;
        EXPECT_NEAR(area, whole / nt, 32 * 1000) << shape << " " << nt << " " << i;
        prev = b;
      }
      EXPECT_EQ(prev, 1000);
    }
}

// The same call with 1, 2 and 3 threads: right each time and, where the
// GEMM kernels always pack, the same numbers.
template <class T, class Case>
void across_threads(const char *name, Case run) {
  const int type = orb::cpu::blas_type();
  const bool exact = type == 0 || type >= 4;
  std::vector<T> first;
  for (int nt : {1, 2, 3}) {
    ORB_Set_Num_Threads(nt);
    std::mt19937 rng(21);
    std::vector<T> out;
    EXPECT_EQ(run(rng, &out), 0) << name << " nt " << nt;
    if (nt == 1) first = out;
    if (exact) {
      EXPECT_EQ(std::memcmp(out.data(), first.data(), out.size() * sizeof(T)), 0)
          << name << " nt " << nt;
    }
  }
  ORB_Set_Num_Threads(2);
}

TEST(Level3, ResultsDoNotDependOnTheThreadCount) {
  using V = std::vector<float>;
  using CV = std::vector<c8>;
  across_threads<float>("trsm LUN", [](auto &rng, V *out) {
    return triangular_case<float>(true, {true, true, Op::kNone, false}, 260, 150, 0.5f, rng, out);
  });
  across_threads<float>("trsm RLT", [](auto &rng, V *out) {
    return triangular_case<float>(true, {false, false, Op::kTrans, true}, 150, 260, 1.0f, rng, out);
  });
  across_threads<float>("trmm LLT", [](auto &rng, V *out) {
    return triangular_case<float>(false, {true, false, Op::kTrans, false}, 260, 150, -1.0f, rng,
                                  out);
  });
  across_threads<float>("trmm RUN", [](auto &rng, V *out) {
    return triangular_case<float>(false, {false, true, Op::kNone, true}, 150, 260, 2.0f, rng, out);
  });
  across_threads<float>("symm LL", [](auto &rng, V *out) {
    return symm_case<float>(true, false, false, 260, 150, 1.0f, 0.5f, rng, out);
  });
  across_threads<float>("symm RU", [](auto &rng, V *out) {
    return symm_case<float>(false, true, false, 150, 260, 1.0f, 0.0f, rng, out);
  });
  across_threads<float>("syrk UT", [](auto &rng, V *out) {
    return update_case<float>(false, true, 'T', false, 260, 100, 1.0f, 0.5f, rng, out);
  });
  across_threads<float>("syr2k LN", [](auto &rng, V *out) {
    return update_case<float>(true, false, 'N', false, 260, 60, 1.0f, 1.0f, rng, out);
  });
  across_threads<c8>("herk LC", [](auto &rng, CV *out) {
    return update_case<c8>(false, false, 'C', true, 200, 60, c8(2), c8(0.5), rng, out);
  });
  across_threads<c8>("ctrsm RUC", [](auto &rng, CV *out) {
    return triangular_case<c8>(true, {false, true, Op::kConjTrans, false}, 120, 200, c8(1, 1), rng,
                               out);
  });
}

// Called from inside an application's parallel region, each call is right.
TEST(Level3, InsideAnApplicationsParallelRegion) {
  ORB_Set_Num_Threads(2);
  int bad[3] = {0, 0, 0};
#pragma omp parallel num_threads(3)
  {
    const int me = omp_get_thread_num();
    std::mt19937 rng(me);
    bad[me] = triangular_case<float>(true, {me != 1, true, static_cast<Op>(me), false}, 300, 200,
                                     1.0f, rng) +
              update_case<float>(false, me == 0, 'T', false, 300, 100, 1.0f, 0.5f, rng);
  }
  for (int b : bad) EXPECT_EQ(b, 0);
}

// ---- processor paths --------------------------------------------------------------

ORB_CHILD(level3_sweep) {
  const int bad = reduced_sweep();
  std::printf("type %d: %d bad\n", orb::cpu::blas_type(), bad);
  return bad == 0 ? 0 : 1;
}

TEST(Level3, EveryProcessorTypeAgainstTheReference) {
  for (const char *type : {"0", "2", "3", "4", "5"}) {
    auto r = orb::test::run_child("level3_sweep", {{"ORB_DEBUG_CPU_TYPE", type}});
    EXPECT_EQ(r.exit_code, 0) << "type " << type << "\n" << r.out;
  }
}

}  // namespace
