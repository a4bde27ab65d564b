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
#include <vector>

#include "blas/level3/gemm.h"
#include "blas/level3/level3.h"
#include "orb.h"
#include "service/cpu.h"
#include "support/child.h"
#include "support/matrix.h"

namespace {

using orb::c16;
using orb::c8;
using orb::Op;
using orb::blas::Triangular;

using orb::test::conj_of;
using orb::test::make;
using orb::test::Matrix;
using orb::test::multiply;
using orb::test::Random;
using orb::test::Triangle;
using orb::test::wide_t;

template <class T>
constexpr bool kComplex = orb::test::kIsComplex<T>;

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kMark = 7.25;  // what elements that must stay untouched hold

// A random rows by cols matrix at leading dimension rows + pad, entries
// scaled by `scale`.
template <class T>
Matrix<T> operand(int r, int c, int pad, Random &rng, double scale = 1) {
  Matrix<T> m = orb::test::random_matrix<T>(r, c, rng, std::max(1, r + pad));
  if (scale != 1)
    for (int j = 0; j < c; ++j)
      for (int i = 0; i < r; ++i) m(i, j) = T(wide_t<T>(m(i, j)) * scale);
  return m;
}

// Bitwise, NaN included.
template <class T>
bool same(const Matrix<T> &a, const Matrix<T> &b, int i, int j) {
  return std::memcmp(&a(i, j), &b(i, j), sizeof(T)) == 0;
}

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
  // Nothing outside the matrix was written.
  void padding(const Matrix<T> &c) {
    if (const int n = c.padding_changed()) {
      if (bad < 3) std::printf("  %s: %d elements outside the matrix written\n", what, n);
      bad += n;
    }
  }
};

template <class T>
T pick(int i, std::initializer_list<T> xs) {
  return xs.begin()[i % xs.size()];
}

// ---- symmetric and Hermitian multiply -----------------------------------------------

template <class T>
int symm_case(bool left, bool upper, bool herm, int m, int n, T alpha, T beta, Random &rng,
              std::vector<T> *out = nullptr) {
  using W = wide_t<T>;
  const int na = left ? m : n;
  const Triangle stored = upper ? Triangle::kUpper : Triangle::kLower;
  // The other triangle holds NaN: it is never read.
  Matrix<T> a = orb::test::symmetric_matrix<T>(na, herm, rng, na + 2, stored);
  const Matrix<T> b = operand<T>(m, n, 1, rng);
  Matrix<T> c0 = operand<T>(m, n, 3, rng);
  if (herm)
    for (int j = 0; j < na; ++j) a(j, j) = make<T>(std::real(a(j, j)), kNaN);
  if (beta == T(0))
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < m; ++i) c0(i, j) = T(kNaN);
  const Matrix<T> full = orb::test::full_from_triangle(a, stored, herm);
  Matrix<double> mag;
  const Matrix<W> ab = left ? multiply('N', full, 'N', b, &mag) : multiply('N', b, 'N', full, &mag);
  Matrix<T> c = c0;
  orb::blas::symm_omp<T>(left, upper, herm, m, n, alpha, a.data(), a.ld, b.data(), b.ld, beta,
                         c.data(), c.ld);
  Tally<T> t{0, "symm"};
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) {
      W e = W(alpha) * ab(i, j);
      double scale = std::abs(W(alpha)) * mag(i, j);
      if (beta != T(0)) e += W(beta) * W(c0(i, j)), scale += std::abs(W(beta) * W(c0(i, j)));
      t.near(c(i, j), e, scale, na, i, j);
    }
  t.padding(c);
  if (out) *out = c.mem;
  return t.bad;
}

template <class T>
int symm_sweep(const std::vector<int> &orders, const std::vector<int> &others, bool herm) {
  Random rng(5);
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
                Random &rng, std::vector<T> *out = nullptr) {
  using W = wide_t<T>;
  const bool notrans = trans == 'N';
  const Matrix<T> a = operand<T>(notrans ? n : k, notrans ? k : n, 1, rng);
  const Matrix<T> b = operand<T>(notrans ? n : k, notrans ? k : n, 2, rng);
  Matrix<T> c0 = operand<T>(n, n, 3, rng);
  // beta = 1 with nothing to add: C is not touched at all.
  const bool quick = beta == T(1) && (k == 0 || alpha == T(0));
  auto inside = [&](int i, int j) { return i == j || (i < j) == upper; };
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      if (!inside(i, j))
        c0(i, j) = T(kMark);
      else if (beta == T(0))
        c0(i, j) = T(kNaN);
      else if (herm && i == j && !quick)
        c0(i, j) = make<T>(std::real(c0(i, j)), kNaN);  // the imaginary part is not read
    }
  // X op(Y)^T (trans N) or op(X)^T Y, with the conjugate transpose when herm.
  const char h = herm ? 'C' : 'T';
  auto product = [&](const Matrix<T> &x, const Matrix<T> &y, Matrix<double> *mag) {
    return notrans ? multiply('N', x, h, y, mag) : multiply(h, x, 'N', y, mag);
  };
  Matrix<double> mag1, mag2;
  const Matrix<W> p1 = product(a, two ? b : a, &mag1);
  const Matrix<W> p2 = two ? product(b, a, &mag2) : Matrix<W>();
  Matrix<T> c = c0;
  const Op tcode = notrans ? Op::kNone : herm ? Op::kConjTrans : Op::kTrans;
  if (two)
    orb::blas::syr2k_omp<T>(upper, tcode, herm, n, k, alpha, a.data(), a.ld, b.data(), b.ld, beta,
                            c.data(), c.ld);
  else
    orb::blas::syrk_omp<T>(upper, tcode, herm, n, k, alpha, a.data(), a.ld, beta, c.data(), c.ld);
  Tally<T> t{0, two ? "syr2k" : "syrk"};
  const W alpha2 = herm ? conj_of(W(alpha)) : W(alpha);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      if (!inside(i, j) || quick) {
        if (!same(c, c0, i, j)) t.fail(i, j);
        continue;
      }
      W s = W(alpha) * p1(i, j);
      double mag = std::abs(W(alpha)) * mag1(i, j);
      if (two) s += alpha2 * p2(i, j), mag += std::abs(alpha2) * mag2(i, j);
      W old = W(c0(i, j));
      if (herm && i == j) old = std::real(old);
      if (beta != T(0)) s += W(beta) * old, mag += std::abs(W(beta) * old);
      if (herm && i == j) {
        s = std::real(s);
        if (std::imag(c(i, j)) != 0) t.fail(i, j);
      }
      t.near(c(i, j), s, mag, 2 * k, i, j);
    }
  t.padding(c);
  if (out) *out = c.mem;
  return t.bad;
}

template <class T>
int update_sweep(const std::vector<int> &ns, const std::vector<int> &ks, bool herm,
                 const char *transposes) {
  Random rng(9);
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
int triangular_case(bool solve, const Triangular &tr, int m, int n, T alpha, Random &rng,
                    std::vector<T> *out = nullptr) {
  using W = wide_t<T>;
  const int na = tr.left ? m : n;
  // Off the diagonal small enough that the solves stay well conditioned.
  Matrix<T> a = operand<T>(na, na, 1, rng, 1.0 / std::max(1, na));
  Matrix<T> b0 = operand<T>(m, n, 2, rng);
  const Triangle stored = tr.upper ? Triangle::kUpper : Triangle::kLower;
  orb::test::keep_triangle(a, stored);  // the other one is never read
  for (int j = 0; j < na; ++j)
    a(j, j) = tr.unit ? T(kNaN) : make<T>(1 + 0.5 * (j % 3), 0.25 * (j % 2));
  if (alpha == T(0))
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < m; ++i) b0(i, j) = T(kNaN);
  const Matrix<T> tri = orb::test::triangular_part(a, stored, tr.unit);
  const char op = orb::letter(tr.trans);
  Matrix<T> b = b0;
  if (solve)
    orb::blas::trsm_omp<T>(tr, m, n, alpha, a.data(), a.ld, b.data(), b.ld);
  else
    orb::blas::trmm_omp<T>(tr, m, n, alpha, a.data(), a.ld, b.data(), b.ld);
  Tally<T> t{0, solve ? "trsm" : "trmm"};
  // trmm: B = alpha op(A) B0 (B0 op(A)); trsm, as a residual: op(A) X = alpha B0.
  const Matrix<T> &x = solve ? b : b0;
  Matrix<double> mag;
  const Matrix<W> ax = tr.left ? multiply(op, tri, 'N', x, &mag) : multiply('N', x, op, tri, &mag);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) {
      if (alpha == T(0)) {
        if (b(i, j) != T(0)) t.fail(i, j);
      } else if (solve) {
        const W rhs = W(alpha) * W(b0(i, j));
        t.near(T(0), ax(i, j) - rhs, mag(i, j) + std::abs(rhs), na, i, j);
      } else {
        t.near(b(i, j), W(alpha) * ax(i, j), std::abs(W(alpha)) * mag(i, j), na, i, j);
      }
    }
  t.padding(b);
  if (out) *out = b.mem;
  return t.bad;
}

template <class T>
int triangular_sweep(bool solve, const std::vector<int> &orders, const std::vector<int> &others,
                     const char *transposes) {
  Random rng(13);
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
  EXPECT_EQ(triangular_sweep<double>(false, {0, 1, 17, 65, 257}, {1, 9}, "NT"), 0);
  EXPECT_EQ(triangular_sweep<c16>(false, {0, 1, 17, 65}, {1, 9}, "NTC"), 0);
}

// A left side with more columns than one panel of the packed kernel holds:
// the panels after the first start from their own columns of B.
template <class T>
int wider_than_a_panel(bool solve) {
  Random rng(17);
  const int n = orb::blas::packed_shape<T>().nc + 7;
  int bad = 0;
  for (bool upper : {true, false}) {
    const Triangular t{true, upper, kComplex<T> ? Op::kConjTrans : Op::kNone, !upper};
    bad += triangular_case<T>(solve, t, 70, n, make<T>(-0.75, 0.5), rng);
  }
  return bad;
}

TEST(Level3, TriangularLeftSideWiderThanAPanel) {
  EXPECT_EQ(wider_than_a_panel<float>(false), 0);
  EXPECT_EQ(wider_than_a_panel<float>(true), 0);
  EXPECT_EQ(wider_than_a_panel<c16>(false), 0);
  EXPECT_EQ(wider_than_a_panel<c16>(true), 0);
}

// ---- threads ------------------------------------------------------------------------

// Slabs cover the output once, on the grain, with about equal work.
// An infinity in B reaches only the elements whose sums take it with a
// coefficient of the triangle; the other triangle's zeros never multiply it.
// The same for a NaN, and with a unit diagonal.
TEST(Level3, TriangularMultiplyKeepsAnInfinityToItsOwnSums) {
  const float inf = std::numeric_limits<float>::infinity();
  for (int order : {40, 300})
    for (bool left : {true, false})
      for (bool upper : {true, false})
        for (Op trans : {Op::kNone, Op::kTrans}) {
          const bool unit = order == 300;
          const Triangular tr{left, upper, trans, unit};
          const int m = left ? order : 30, n = left ? 30 : order, k0 = order / 2, j0 = 7;
          std::vector<float> a(std::size_t(order) * order, 0.5f), b(std::size_t(m) * n, 1.0f);
          b[left ? k0 + std::size_t(j0) * m : j0 + std::size_t(k0) * m] = unit ? float(kNaN) : inf;
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
    Random rng(21);
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
    Random rng(me);
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
