// The level-1 kernels and operations. Every variant of every kernel runs
// against a plain long-double reference over lengths 1 to 67 and a few large
// ones, aligned and not, with strided, zero and negative increments; the
// operations are checked at the published edge cases; and a child process per
// processor type checks that the dispatch slots take that type's variants and
// that those agree with the reference.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "blas/kernel/level1.h"
#include "blas/level1/level1.h"
#include "service/cpu.h"
#include "service/kernel_set.h"
#include "support/child.h"

namespace {

namespace k = orb::kernel;
namespace blas = orb::blas;
using c8 = std::complex<float>;
using c16 = std::complex<double>;
using LD = long double;
template <class T>
using R = orb::real_t<T>;
template <class T>
using W = std::conditional_t<orb::is_complex_v<T>, std::complex<LD>, LD>;
template <class T>
const LD kEps = std::numeric_limits<R<T>>::epsilon();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

// ---- scalars and vectors ----------------------------------------------------------------------

template <class T>
LD re(const T &v) {
  if constexpr (orb::is_complex_v<T>)
    return v.real();
  else
    return v;
}
template <class T>
LD im(const T &v) {
  if constexpr (orb::is_complex_v<T>)
    return v.imag();
  else
    return 0;
}
template <class T>
W<T> wide(const T &v) {
  if constexpr (orb::is_complex_v<T>)
    return {v.real(), v.imag()};
  else
    return v;
}
template <class V>
LD mag(const V &v) {
  return std::fabs(re(v)) + std::fabs(im(v));
}
template <class T>
T make(LD r, LD i = 0) {
  if constexpr (orb::is_complex_v<T>)
    return T(R<T>(r), R<T>(i));
  else
    return T(r);
}
template <class V>
V conj_(const V &v) {
  if constexpr (orb::is_complex_v<V>)
    return std::conj(v);
  else
    return v;
}
// |x| of the index routines, rounded to the type as the library compares.
template <class T>
R<T> abs1(const T &v) {
  volatile R<T> a = R<T>(mag(v));
  return a;
}
template <class T>
std::string str(const T &v) {
  char b[96];
  std::snprintf(b, sizeof b, "(%.9Lg, %.9Lg)", re(v), im(v));
  return b;
}

template <class T>
T random(std::mt19937 &g) {
  std::uniform_real_distribution<double> d(-1.0, 1.0);
  const double r = d(g);
  return make<T>(r, d(g));
}

// A vector of n elements with increment inc inside a buffer with guards on
// both sides; element i is buf[start + i * inc], as the published walk visits.
template <class T>
struct Vec {
  std::vector<T> buf;
  std::ptrdiff_t start;
  int inc;
  T *p() { return buf.data() + start; }
  std::ptrdiff_t pos(int i) const { return start + std::ptrdiff_t(i) * inc; }
  T &at(int i) { return buf[pos(i)]; }
};

template <class T>
Vec<T> make_vec(int n, int inc, int misalign, std::mt19937 &g) {
  constexpr int kGuard = 3;
  const std::ptrdiff_t span = n > 0 ? 1 + std::ptrdiff_t(n - 1) * std::abs(inc) : 1;
  Vec<T> v;
  v.buf.resize(span + 2 * kGuard + misalign);
  for (T &e : v.buf) e = random<T>(g);
  v.start = kGuard + misalign + (inc < 0 ? std::ptrdiff_t(n - 1) * -inc : 0);
  v.inc = inc;
  return v;
}

// The first element that differs from its expected value by more than ulps
// times the rounding unit times its scale; elements of scale 0 must keep their
// bits. "" when all agree.
template <class T>
std::string compare(const std::vector<T> &got, const std::vector<T> &orig,
                    const std::vector<W<T>> &want, const std::vector<LD> &scale, LD ulps) {
  for (size_t i = 0; i < got.size(); ++i) {
    if (scale[i] == 0) {
      if (std::memcmp(&got[i], &orig[i], sizeof(T)) != 0)
        return "element " + std::to_string(i) + " changed to " + str(got[i]);
      continue;
    }
    const LD tol = ulps * kEps<T> * scale[i];
    if (!(std::fabs(re(got[i]) - re(want[i])) <= tol && std::fabs(im(got[i]) - im(want[i])) <= tol))
      return "element " + std::to_string(i) + " is " + str(got[i]) + ", want " + str(want[i]);
  }
  return "";
}

// ---- the kernel sets
// -----------------------------------------------------------------------------

template <class T>
struct Set {
  std::string level;
  decltype(&k::generic::axpy<T>) axpy = nullptr;
  decltype(&k::generic::dotu<T>) dotu = nullptr, dotc = nullptr;
  decltype(&k::generic::asum<T>) asum = nullptr;
  decltype(&k::generic::scal<T>) scal = nullptr;
  decltype(&k::generic::rscal<T>) rscal = nullptr;
  decltype(&k::generic::swap<T>) swap = nullptr;
  decltype(&k::generic::rot<T>) rot = nullptr;
  decltype(&k::generic::crot<T>) crot = nullptr;
  decltype(&k::generic::rotm<T>) rotm = nullptr;
  decltype(&k::generic::iamax<T>) iamax = nullptr, iamin = nullptr;
  decltype(&k::generic::sumsq<T>) sumsq = nullptr;
  decltype(&k::generic::dotui<T>) dotui = nullptr, dotci = nullptr;
};

#define ORB_FILL(s, ns)                 \
  s.level = #ns;                        \
  s.axpy = &k::ns::axpy<T>;             \
  s.dotu = &k::ns::dotu<T>;             \
  s.dotc = &k::ns::dotc<T>;             \
  s.asum = &k::ns::asum<T>;             \
  s.scal = &k::ns::scal<T>;             \
  s.swap = &k::ns::swap<T>;             \
  s.rot = &k::ns::rot<T>;               \
  s.iamax = &k::ns::iamax<T>;           \
  s.iamin = &k::ns::iamin<T>;           \
  if constexpr (orb::is_complex_v<T>) { \
    s.rscal = &k::ns::rscal<T>;         \
    s.crot = &k::ns::crot<T>;           \
  } else {                              \
    s.rotm = &k::ns::rotm<T>;           \
  }                                     \
  if constexpr (sizeof(R<T>) == sizeof(float)) s.sumsq = &k::ns::sumsq<T>;

// Every variant this processor can run.
template <class T>
std::vector<Set<T>> levels() {
  std::vector<Set<T>> v(1);
  ORB_FILL(v.back(), generic)
  v.back().dotui = &k::generic::dotui<T>;
  v.back().dotci = &k::generic::dotci<T>;
  namespace cpu = orb::cpu;
  if (cpu::has_sse2()) {
    v.emplace_back();
    ORB_FILL(v.back(), sse2)
  }
  if (cpu::has_sse3()) {
    v.emplace_back();
    ORB_FILL(v.back(), sse3)
  }
  if (cpu::has_sse42()) {
    v.emplace_back();
    ORB_FILL(v.back(), sse42)
  }
#if defined(ORB_KERNELS_AVX2)
  if (cpu::avx2_fma_usable()) {
    v.emplace_back();
    ORB_FILL(v.back(), avx2)
    v.back().dotui = &k::avx2::dotui<T>;
    v.back().dotci = &k::avx2::dotci<T>;
  }
#endif
  return v;
}

// The variants the dispatch slots hold for this process.
template <class T>
Set<T> dispatched() {
  std::map<std::string, const void *> picked;
  for (const auto &r : blas::level1_dispatch_for_testing()) picked[r.name] = r.picked;
  const std::string tag = std::string("/") + (std::is_same_v<T, float>    ? "s"
                                              : std::is_same_v<T, c8>     ? "c"
                                              : std::is_same_v<T, double> ? "d"
                                                                          : "z");
  Set<T> s;
  s.level = "dispatched";
  auto get = [&](auto &field, const char *name) {
    auto it = picked.find(name + tag);
    if (it != picked.end()) field = reinterpret_cast<std::decay_t<decltype(field)>>(it->second);
  };
  get(s.axpy, "axpy"), get(s.dotu, "dotu"), get(s.dotc, "dotc"), get(s.asum, "asum");
  get(s.scal, "scal"), get(s.rscal, "rscal"), get(s.swap, "swap"), get(s.rot, "rot");
  get(s.crot, "crot"), get(s.rotm, "rotm"), get(s.iamax, "iamax"), get(s.iamin, "iamin");
  get(s.sumsq, "sumsq"), get(s.dotui, "dotui"), get(s.dotci, "dotci");
  return s;
}

// ---- cases
// ---------------------------------------------------------------------------------------

struct Case {
  int n, incx, incy, misalign;
};

std::vector<int> all_sizes() {
  std::vector<int> s;
  for (int n = 1; n <= 67; ++n) s.push_back(n);
  for (int n : {128, 1000, 1027}) s.push_back(n);
  return s;
}

std::vector<Case> cases(const std::vector<int> &sizes) {
  static const Case kIncs[] = {{0, 1, 1, 0},  {0, 1, 1, 1}, {0, 2, -3, 0}, {0, -1, -1, 1},
                               {0, -2, 1, 0}, {0, 3, 2, 1}, {0, 1, -1, 0}, {0, 0, 1, 0}};
  std::vector<Case> out;
  for (int n : sizes)
    for (Case c : kIncs) {
      c.n = n;
      out.push_back(c);
    }
  return out;
}

std::string where(const std::string &what, const Case &c) {
  return what + " n=" + std::to_string(c.n) + " incx=" + std::to_string(c.incx) +
         " incy=" + std::to_string(c.incy) + (c.misalign ? " unaligned" : "") + ": ";
}

// ---- element-wise kernels
// ------------------------------------------------------------------------

// A kernel as the update (x, y) := (m0 x + m1 y, m2 x + m3 y) of each pair in
// the published order, with the ulps its roundings may cost.
template <class T>
struct Op {
  const char *name;
  W<T> m[4];
  LD ulps;
  std::function<void(const Set<T> &, Vec<T> &, Vec<T> &)> run;
};

// Runs an operation on fresh vectors x and y and checks both against the
// reference update. The scale of each element gathers the magnitudes that
// went into it and the error it already carried (a vector of increment 0 is
// updated again and again); elements of scale 0 must keep their bits. On
// x86-64, where every variant has the same arithmetic, the result must equal
// the generic kernel's bit for bit.
template <class T>
std::string elementwise(const Set<T> &s, const Set<T> &gen, const Case &c, std::mt19937 &g,
                        const Op<T> &op) {
  Vec<T> x = make_vec<T>(c.n, c.incx, c.misalign, g), y = make_vec<T>(c.n, c.incy, c.misalign, g);
  std::vector<W<T>> wx, wy;
  for (const T &v : x.buf) wx.push_back(wide(v));
  for (const T &v : y.buf) wy.push_back(wide(v));
  std::vector<LD> sx(wx.size()), sy(wy.size());
  const W<T> *m = op.m;
  for (int i = 0; i < c.n; ++i) {
    W<T> &xi = wx[x.pos(i)], &yi = wy[y.pos(i)];
    LD &ex = sx[x.pos(i)], &ey = sy[y.pos(i)];
    const LD ax = ex + mag(xi), ay = ey + mag(yi);
    ex = mag(m[0]) * ax + mag(m[1]) * ay;
    ey = mag(m[2]) * ax + mag(m[3]) * ay;
    const W<T> t = m[0] * xi + m[1] * yi;
    yi = m[2] * xi + m[3] * yi;
    xi = t;
  }
  const Vec<T> x0 = x, y0 = y;
  op.run(s, x, y);
  std::string e = compare(x.buf, x0.buf, wx, sx, op.ulps);
  if (e.empty()) e = compare(y.buf, y0.buf, wy, sy, op.ulps);
  if (!e.empty()) return e;
#if defined(__x86_64__)
  Vec<T> gx = x0, gy = y0;
  op.run(gen, gx, gy);
  if (std::memcmp(gx.buf.data(), x.buf.data(), sizeof(T) * x.buf.size()) != 0 ||
      std::memcmp(gy.buf.data(), y.buf.data(), sizeof(T) * y.buf.size()) != 0)
    return "differs from the generic kernel";
#endif
  return "";
}

template <class T>
std::string check_elementwise(const Set<T> &s, const Set<T> &gen, const std::vector<int> &sizes) {
  std::mt19937 g(1);
  for (const Case &c : cases(sizes)) {
    const T a = random<T>(g), cs = random<T>(g);
    const R<T> rc = R<T>(re(random<T>(g))), rs = R<T>(re(random<T>(g)));
    const W<T> wa = wide(a), ws = wide(cs), wc = LD(rc), wsn = LD(rs);
    const int n = c.n, ix = c.incx, iy = c.incy;
    [[maybe_unused]] const T h[4] = {a, cs, T(rc), T(rs)};  // rotm: h11, h21, h12, h22
    std::vector<Op<T>> ops = {
        {"axpy",
         {1, 0, wa, 1},
         4,
         [&](auto &ks, auto &x, auto &y) { ks.axpy(n, a, x.p(), ix, y.p(), iy); }},
        {"swap",
         {0, 1, 1, 0},
         0,
         [&](auto &ks, auto &x, auto &y) { ks.swap(n, x.p(), ix, y.p(), iy); }},
        {"rot",
         {wc, wsn, -wsn, wc},
         4,
         [&](auto &ks, auto &x, auto &y) { ks.rot(n, x.p(), ix, y.p(), iy, rc, rs); }},
    };
    if (ix > 0)  // the operations pass no other increment to scal
      ops.push_back(
          {"scal", {wa, 0, 0, 1}, 4, [&](auto &ks, auto &x, auto &) { ks.scal(n, a, x.p(), ix); }});
    if constexpr (orb::is_complex_v<T>) {
      if (ix > 0)
        ops.push_back({"rscal", {wc, 0, 0, 1}, 2, [&](auto &ks, auto &x, auto &) {
                         ks.rscal(n, rc, x.p(), ix);
                       }});
      ops.push_back({"crot", {wc, ws, -std::conj(ws), wc}, 6, [&](auto &ks, auto &x, auto &y) {
                       ks.crot(n, x.p(), ix, y.p(), iy, rc, cs);
                     }});
    } else {
      ops.push_back({"rotm", {wa, wc, ws, wsn}, 4, [&](auto &ks, auto &x, auto &y) {
                       ks.rotm(n, x.p(), ix, y.p(), iy, h);
                     }});
    }
    for (const Op<T> &op : ops) {
      const std::string e = elementwise(s, gen, c, g, op);
      if (!e.empty()) return where(op.name, c) + e;
    }
  }
  return "";
}

// ---- sums
// -----------------------------------------------------------------------------------------

template <class T>
std::string check_sums(const Set<T> &s, const std::vector<int> &sizes) {
  std::mt19937 g(2);
  for (const Case &c : cases(sizes)) {
    Vec<T> x = make_vec<T>(c.n, c.incx, c.misalign, g), y = make_vec<T>(c.n, c.incy, c.misalign, g);
    W<T> du = 0, dc = 0;
    LD scale = 0, asum = 0, sumsq = 0;
    for (int i = 0; i < c.n; ++i) {
      const W<T> xi = wide(x.at(i)), yi = wide(y.at(i));
      du += xi * yi;
      dc += conj_(xi) * yi;
      scale += mag(xi) * mag(yi);
      asum += mag(xi);
      sumsq += re(xi) * re(xi) + im(xi) * im(xi);
    }
    const LD tol = (2 * c.n + 8) * kEps<T>;
    T got;
    auto bad = [&](W<T> want, LD bound) {
      return !(std::fabs(re(got) - re(want)) <= bound && std::fabs(im(got) - im(want)) <= bound);
    };
    s.dotu(c.n, x.p(), c.incx, y.p(), c.incy, &got);
    if (bad(du, tol * scale)) return where("dotu", c) + str(got) + ", want " + str(du);
    s.dotc(c.n, x.p(), c.incx, y.p(), c.incy, &got);
    if (bad(dc, tol * scale)) return where("dotc", c) + str(got) + ", want " + str(dc);
    if (c.incx > 0) {  // the operations never pass others
      got = s.asum(c.n, x.p(), c.incx);
      if (bad(asum, tol * asum)) return where("asum", c) + str(got) + ", want " + str(asum);
    }
    if (s.sumsq) {
      const LD v = s.sumsq(c.n, x.p(), c.incx);
      if (!(std::fabs(v - sumsq) <= (2 * c.n + 4) * sumsq * LD(0x1p-52)))
        return where("sumsq", c) + str(v) + ", want " + str(sumsq);
    }
  }
  return "";
}

// ---- index searches
// -------------------------------------------------------------------------------

template <class T, class Better>
int first_best(const Vec<T> &x, int n, Better better) {
  R<T> best = abs1(x.buf[x.pos(0)]);
  int at = 1;
  for (int i = 1; i < n; ++i) {
    const R<T> v = abs1(x.buf[x.pos(i)]);
    if (better(v, best)) best = v, at = i + 1;
  }
  return at;
}

// Random values, and values with many ties (small integers, so that |re| +
// |im| is exact), each with and without a NaN in the middle or in front and
// with infinities.
template <class T>
std::string check_search(const Set<T> &s, const std::vector<int> &sizes) {
  std::mt19937 g(3);
  std::uniform_int_distribution<int> small(-3, 3);
  for (const Case &c : cases(sizes)) {
    if (c.incx <= 0) continue;
    for (int kind = 0; kind < 6; ++kind) {
      Vec<T> x = make_vec<T>(c.n, c.incx, c.misalign, g);
      if (kind >= 1)
        for (int i = 0; i < c.n; ++i) x.at(i) = make<T>(small(g), small(g));
      if (kind == 2) x.at(c.n / 2) = make<T>(kNaN, 1);
      if (kind == 3) x.at(0) = make<T>(kNaN);
      if (kind == 4) x.at(c.n / 3) = x.at(c.n - 1) = make<T>(-kInf, 1);
      if (kind == 5)
        for (int i = 0; i < c.n; ++i) x.at(i) = make<T>(kInf, 0);
      const int want_max = first_best(x, c.n, [](R<T> v, R<T> b) { return v > b; });
      const int want_min = first_best(x, c.n, [](R<T> v, R<T> b) { return v < b; });
      const int got_max = s.iamax(c.n, x.p(), c.incx), got_min = s.iamin(c.n, x.p(), c.incx);
      if (got_max != want_max || got_min != want_min)
        return where("iamax/iamin", c) + "data kind " + std::to_string(kind) + ": " +
               std::to_string(got_max) + "/" + std::to_string(got_min) + ", want " +
               std::to_string(want_max) + "/" + std::to_string(want_min);
    }
  }
  return "";
}

// ---- sparse dot products
// --------------------------------------------------------------------------

template <class T>
std::string check_sparse_dots(const Set<T> &s, const std::vector<int> &sizes) {
  if (!s.dotui) return "";
  std::mt19937 g(4);
  for (int nz : sizes) {
    std::vector<T> x(nz + 1), y(2 * nz + 5);
    for (T &v : x) v = random<T>(g);
    for (T &v : y) v = random<T>(g);
    std::vector<int> indx(nz + 1);
    std::uniform_int_distribution<int> pos(1, int(y.size()));
    for (int &i : indx) i = pos(g);
    indx[nz / 2] = indx[0];  // a repeated position
    indx[0] = int(y.size());
    W<T> du = 0, dc = 0;
    LD scale = 0;
    for (int i = 0; i < nz; ++i) {
      const W<T> xi = wide(x[i]), yi = wide(y[indx[i] - 1]);
      du += xi * yi;
      dc += conj_(xi) * yi;
      scale += mag(xi) * mag(yi);
    }
    const LD tol = (2 * nz + 8) * kEps<T> * scale;
    T u, v;
    s.dotui(nz, x.data(), indx.data(), y.data(), &u);
    s.dotci(nz, x.data(), indx.data(), y.data(), &v);
    if (std::fabs(re(u) - re(du)) > tol || std::fabs(im(u) - im(du)) > tol ||
        std::fabs(re(v) - re(dc)) > tol || std::fabs(im(v) - im(dc)) > tol)
      return "dotui/dotci nz=" + std::to_string(nz) + ": " + str(u) + " " + str(v) + ", want " +
             str(du) + " " + str(dc);
  }
  return "";
}

template <class T>
std::string check_set(const Set<T> &s, const std::vector<int> &sizes) {
  static const Set<T> gen = levels<T>().front();
  std::string e = check_elementwise(s, gen, sizes);
  if (e.empty()) e = check_sums(s, sizes);
  if (e.empty()) e = check_search(s, sizes);
  if (e.empty()) e = check_sparse_dots(s, sizes);
  return e;
}

// ---- the kernels, each variant directly
// -------------------------------------------------------------

template <class T>
class Level1Kernels : public ::testing::Test {};
using Types = ::testing::Types<float, c8, double, c16>;
TYPED_TEST_SUITE(Level1Kernels, Types);

TYPED_TEST(Level1Kernels, ElementWise) {
  const auto sets = levels<TypeParam>();
  for (const auto &s : sets) EXPECT_EQ(check_elementwise(s, sets[0], all_sizes()), "") << s.level;
}

TYPED_TEST(Level1Kernels, Sums) {
  for (const auto &s : levels<TypeParam>()) EXPECT_EQ(check_sums(s, all_sizes()), "") << s.level;
}

TYPED_TEST(Level1Kernels, IndexSearches) {
  for (const auto &s : levels<TypeParam>()) EXPECT_EQ(check_search(s, all_sizes()), "") << s.level;
}

TYPED_TEST(Level1Kernels, SparseDots) {
  for (const auto &s : levels<TypeParam>())
    EXPECT_EQ(check_sparse_dots(s, all_sizes()), "") << s.level;
}

// ---- the operations
// --------------------------------------------------------------------------------

template <class T>
class Level1Operations : public ::testing::Test {};
TYPED_TEST_SUITE(Level1Operations, Types);

// n <= 0, and for asum, scal and the index routines incx <= 0, return at once;
// so do axpy with a zero and scal with a one, whatever the vectors hold.
TYPED_TEST(Level1Operations, QuickReturns) {
  using T = TypeParam;
  const T nan = make<T>(kNaN, kNaN), one = make<T>(1), zero = make<T>(0);
  std::vector<T> x(4, nan), y(4, make<T>(2, 3));
  const std::vector<T> x0 = x, y0 = y;
  const int idx[4] = {1, 2, 3, 4};
  for (int n : {0, -1}) {
    blas::axpy(n, one, x.data(), 1, y.data(), 1);
    blas::copy(n, x.data(), 1, y.data(), 1);
    blas::swap(n, x.data(), 1, y.data(), 1);
    blas::rot(n, y.data(), 1, x.data(), 1, R<T>(2), R<T>(2));
    blas::scal(n, make<T>(2), y.data(), 1);
    EXPECT_EQ(blas::dotu(n, y.data(), 1, y.data(), 1), zero);
    EXPECT_EQ(blas::dotc(n, y.data(), 1, y.data(), 1), zero);
    EXPECT_EQ(blas::nrm2(n, y.data(), 1), 0);
    EXPECT_EQ(blas::asum(n, y.data(), 1), 0);
    EXPECT_EQ(blas::iamax(n, y.data(), 1), 0);
    EXPECT_EQ(blas::iamin(n, y.data(), 1), 0);
    blas::axpyi(n, one, x.data(), idx, y.data());
    blas::gthr(n, x.data(), y.data(), idx);
    blas::sctr(n, x.data(), idx, y.data());
    EXPECT_EQ(blas::dotui(n, y.data(), idx, y.data()), zero);
    EXPECT_EQ(blas::dotci(n, y.data(), idx, y.data()), zero);
    if constexpr (!orb::is_complex_v<T>) {
      const T h[5] = {-1, 2, 2, 2, 2};
      blas::rotm(n, x.data(), 1, y.data(), 1, h);
    }
  }
  for (int inc : {0, -1}) {
    EXPECT_EQ(blas::asum(4, y.data(), inc), 0);
    EXPECT_EQ(blas::iamax(4, y.data(), inc), 0);
    EXPECT_EQ(blas::iamin(4, y.data(), inc), 0);
    blas::scal(4, make<T>(2), y.data(), inc);
  }
  blas::axpy(4, zero, x.data(), 1, y.data(), 1);  // x is all NaN
  blas::axpyi(4, zero, x.data(), idx, y.data());
  blas::scal(4, one, x.data(), 1);
  if constexpr (orb::is_complex_v<T>) {
    blas::rscal(4, R<T>(1), x.data(), 1);
    blas::rscal(4, R<T>(2), y.data(), 0);
  } else {
    const T skip[5] = {-2, 2, 2, 2, 2};
    blas::rotm(4, y.data(), 1, y.data(), 1, skip);
  }
  EXPECT_EQ(std::memcmp(x.data(), x0.data(), sizeof(T) * 4), 0);
  EXPECT_EQ(std::memcmp(y.data(), y0.data(), sizeof(T) * 4), 0);
}

// A negative increment starts at the far end: element i of the walk is
// x[(n - 1 - i) |inc|]. Small integers keep every result exact.
TYPED_TEST(Level1Operations, NegativeIncrementsWalkFromTheFarEnd) {
  using T = TypeParam;
  const int n = 37;
  std::vector<T> x(2 * n), y(n), z(n);
  for (int i = 0; i < 2 * n; ++i) x[i] = make<T>(i % 7 - 3, i % 5);
  for (int i = 0; i < n; ++i) y[i] = make<T>(i % 3 + 1, 1 - i % 2);
  T want = make<T>(0);
  for (int i = 0; i < n; ++i) want += x[2 * (n - 1 - i)] * y[i];
  EXPECT_EQ(blas::dotu(n, x.data(), -2, y.data(), 1), want);
  EXPECT_EQ(blas::dotu(n, y.data(), 1, x.data(), -2), want);
  blas::copy(n, x.data(), -2, z.data(), 1);
  for (int i = 0; i < n; ++i) ASSERT_EQ(z[i], x[2 * (n - 1 - i)]) << i;
  blas::axpy(n, make<T>(2), y.data(), 1, z.data(), -1);
  for (int i = 0; i < n; ++i) ASSERT_EQ(z[n - 1 - i], x[2 * i] + make<T>(2) * y[i]) << i;
  const LD norm = blas::nrm2(2, x.data() + 1, 1);  // the two orders may round apart
  EXPECT_LE(std::fabs(blas::nrm2(2, x.data() + 1, -1) - norm), 2 * kEps<T> * norm);
}

// The index routines: the first of equal values wins; a NaN is passed over
// unless it comes first; complex values compare by |re| + |im|.
TYPED_TEST(Level1Operations, IndexRoutinesTiesAndNaN) {
  using T = TypeParam;
  std::vector<T> x = {make<T>(1),  make<T>(-3, 0), make<T>(kNaN), make<T>(3),
                      make<T>(-1), make<T>(0.5f),  make<T>(0.5f)};
  EXPECT_EQ(blas::iamax(7, x.data(), 1), 2);
  EXPECT_EQ(blas::iamin(7, x.data(), 1), 6);
  EXPECT_EQ(blas::iamin(4, x.data(), 2), 4);  // 1, NaN, -1, 0.5
  x[0] = make<T>(kNaN);
  EXPECT_EQ(blas::iamax(7, x.data(), 1), 1);
  EXPECT_EQ(blas::iamin(7, x.data(), 1), 1);
  if constexpr (orb::is_complex_v<T>) {
    const T z[3] = {make<T>(1, -2), make<T>(-2, 1.5f), make<T>(0, 3)};
    EXPECT_EQ(blas::iamax(3, z, 1), 2);  // 3, 3.5, 3
    EXPECT_EQ(blas::iamin(3, z, 1), 1);
  }
}

// Single precision: a sum of squares in double precision never overflows or
// underflows and gives the norm to within an ulp or so.
TYPED_TEST(Level1Operations, Nrm2ScalesBigAndSmallValues) {
  using T = TypeParam;
  using Rt = R<T>;
  const Rt big = std::numeric_limits<Rt>::max() / 8, tiny = std::numeric_limits<Rt>::denorm_min();
  const Rt small = std::numeric_limits<Rt>::min();
  struct Case {
    std::vector<T> x;
    LD want;
  };
  const std::vector<Case> table = {
      {{make<T>(3 * (big / 8)), make<T>(4 * (big / 8))}, 5 * LD(big / 8)},
      {{make<T>(3 * small), make<T>(-4 * small)}, 5 * LD(small)},
      {{make<T>(3 * tiny), make<T>(4 * tiny)}, 5 * LD(tiny)},
      {{make<T>(big), make<T>(1), make<T>(small)}, LD(big)},
      {{make<T>(small), make<T>(1), make<T>(tiny)}, 1},
      {{make<T>(0), make<T>(0)}, 0},
      {{make<T>(0, -2)}, orb::is_complex_v<T> ? 2 : 0},
  };
  for (const Case &c : table) {
    const LD got = blas::nrm2(int(c.x.size()), c.x.data(), 1);
    EXPECT_LE(std::fabs(got - c.want), 2 * kEps<T> * c.want) << str(c.x[0]) << " gives " << got;
  }
  const T special[3] = {make<T>(1), make<T>(kInf), make<T>(kNaN)};
  EXPECT_EQ(blas::nrm2(2, special, 1), kInf);
  EXPECT_TRUE(std::isnan(blas::nrm2(2, special + 1, 1)));
  EXPECT_TRUE(std::isnan(blas::nrm2(3, special, 1)));
  const T three[1] = {make<T>(-3, 4)};
  EXPECT_NEAR(blas::nrm2(4, three, 0), 2 * std::abs(wide(three[0])), 4 * kEps<T>);
  std::mt19937 g(5);
  for (int n : {1, 7, 64, 1001}) {
    std::vector<T> x(n);
    LD sum = 0;
    for (T &v : x) v = random<T>(g), sum += re(v) * re(v) + im(v) * im(v);
    // Double precision sums in its own precision, with the error of n additions.
    const LD ulps = sizeof(Rt) == sizeof(float) ? 2 : 2 + n;
    EXPECT_LE(std::fabs(blas::nrm2(n, x.data(), 1) - std::sqrt(sum)),
              ulps * kEps<T> * std::sqrt(sum))
        << n;
  }
}

// Repeated positions accumulate in order; gather and scatter move bits.
TYPED_TEST(Level1Operations, SparseUpdatesAndMoves) {
  using T = TypeParam;
  const T x[3] = {make<T>(1, 2), make<T>(3), make<T>(-4, 1)};
  std::vector<T> y(6, make<T>(1, 1)), z(6, make<T>(7));
  const int indx[3] = {5, 2, 5}, at[2] = {4, 2}, to[2] = {1, 6};
  blas::axpyi(3, make<T>(2), x, indx, y.data());
  EXPECT_EQ(y[4], make<T>(1, 1) + make<T>(2) * (x[0] + x[2]));
  EXPECT_EQ(y[1], make<T>(1, 1) + make<T>(2) * x[1]);
  y[3] = make<T>(kNaN, 1);
  T g[2];
  blas::gthr(2, y.data(), g, at);
  blas::sctr(2, g, to, z.data());
  EXPECT_EQ(std::memcmp(&z[0], &y[3], sizeof(T)), 0);
  EXPECT_EQ(std::memcmp(&z[5], &y[1], sizeof(T)), 0);
  EXPECT_EQ(z[1], make<T>(7));
}

// ---- generating rotations
// --------------------------------------------------------------------------

template <class T>
class Level1Rotg : public ::testing::Test {};
using RealTypes = ::testing::Types<float, double>;
TYPED_TEST_SUITE(Level1Rotg, RealTypes);

// The published conventions: r takes the sign of the larger input, z encodes
// (c, s), and neither overflow nor underflow on the way.
TYPED_TEST(Level1Rotg, RealRotation) {
  using T = TypeParam;
  const T big = std::numeric_limits<T>::max() / 4, tiny = std::numeric_limits<T>::denorm_min() * 8;
  struct Case {
    T a, b;
    LD r, c, s, z;
  } table[] = {
      {4, 3, 5, .8L, .6L, .6L},
      {-3, 4, 5, -.6L, .8L, -1 / .6L},
      {3, -4, -5, -.6L, .8L, -1 / .6L},
      {-4, -3, -5, .8L, .6L, .6L},
      {0, -2, -2, 0, 1, 1},
      {-2, 0, -2, 1, 0, 0},
      {0, 0, 0, 1, 0, 0},
      {big, -big, -std::sqrt(LD(2)) * big, -1 / std::sqrt(LD(2)), 1 / std::sqrt(LD(2)),
       -std::sqrt(LD(2))},
      {3 * tiny, 4 * tiny, 5 * LD(tiny), .6L, .8L, 1 / .6L},
  };
  for (const Case &c : table) {
    T a = c.a, b = c.b, cs = -7, sn = -7;
    blas::rotg(&a, &b, &cs, &sn);
    const LD tol = 4 * kEps<T>;
    EXPECT_LE(std::fabs(a - c.r), tol * std::fabs(c.r)) << c.a << " " << c.b;
    EXPECT_LE(std::fabs(cs - c.c), tol) << c.a << " " << c.b;
    EXPECT_LE(std::fabs(sn - c.s), tol) << c.a << " " << c.b;
    EXPECT_LE(std::fabs(b - c.z), tol * std::fabs(c.z)) << c.a << " " << c.b;
  }
}

// The complex rotation against its formula in long double, over magnitudes
// from the smallest to the largest: c = |f| / h, s = (f / |f|) conj(g) / h,
// r = (f / |f|) h with h = sqrt(|f|^2 + |g|^2).
TYPED_TEST(Level1Rotg, ComplexRotation) {
  using Rt = TypeParam;
  using T = std::complex<Rt>;
  using LC = std::complex<LD>;
  const Rt tiny = std::numeric_limits<Rt>::min(), big = std::numeric_limits<Rt>::max() / 8;
  const Rt mags[] = {tiny * 4, tiny * 1e3f, Rt(1e-20), Rt(0.75), Rt(3), Rt(1e20), big / 1e3f, big};
  std::mt19937 g(6);
  std::uniform_real_distribution<double> d(-1, 1);
  for (Rt mf : mags)
    for (Rt mg : mags) {
      const T f0 = T(Rt(mf * d(g)), Rt(mf * d(g))), g0 = T(Rt(mg * d(g)), Rt(mg * d(g)));
      T a = f0, s;
      Rt c;
      blas::rotg(&a, &g0, &c, &s);
      const LC f(f0.real(), f0.imag()), gg(g0.real(), g0.imag());
      const LD af = std::abs(f), h = std::sqrt(std::norm(f) + std::norm(gg));
      const LC ws = (f / af) * std::conj(gg) / h, wr = (f / af) * h;
      const LD tol = 8 * kEps<T>;
      EXPECT_LE(std::fabs(c - af / h), tol) << mf << " " << mg;
      EXPECT_LE(std::abs(LC(s.real(), s.imag()) - ws), tol) << mf << " " << mg;
      EXPECT_LE(std::abs(LC(a.real(), a.imag()) - wr), tol * h) << mf << " " << mg;
    }
  // b = 0: the identity; a = 0: c = 0, s = conj(b) / |b|, r = |b|.
  T a(3, -4), b(0, 0), s;
  Rt c;
  blas::rotg(&a, &b, &c, &s);
  EXPECT_EQ(c, 1);
  EXPECT_EQ(s, T(0));
  EXPECT_EQ(a, T(3, -4));
  for (const T g1 : {T(0, -2), T(-2, 0), T(3, 4), T(big, big), T(tiny, -tiny)}) {
    a = T(0, 0);
    blas::rotg(&a, &g1, &c, &s);
    const LD ab = std::abs(LC(g1.real(), g1.imag()));
    EXPECT_EQ(c, 0);
    EXPECT_LE(std::fabs(a.real() - ab), 4 * kEps<T> * ab);
    EXPECT_EQ(a.imag(), 0);
    EXPECT_LE(std::abs(LC(s.real(), s.imag()) - std::conj(LC(g1.real(), g1.imag())) / ab),
              4 * kEps<T>);
  }
}

// The modified rotation: with H from the flag, H (x1, y1) = (x1', 0) and
// H^T diag(d1', d2') H = diag(d1, d2); the rescaling of large or small d keeps
// the matrix (a rescaled full matrix keeps its scaled entries).
TYPED_TEST(Level1Rotg, ModifiedRotation) {
  using T = TypeParam;
  const LD tol = 64 * kEps<T>;
  struct Case {
    T d1, d2, x1, y1;
  } table[] = {{1, 1, 3, 4},      {2, 3, 5, 1},      {0.5, 2, 1, 3},     {1e-20, 1, 1, 1},
               {1, 1e-20, 1, 1},  {1e20, 1, 1, 1e3}, {1, 1e20, 1e-5, 1}, {1e-9, 3e-9, 2, 1},
               {4e7, 2e-9, 3, 1}, {1e-30, 1, 1, 1},  {1, 1e-30, 1e5, 1}, {3, -1, 1, 2}};
  for (const Case &c : table) {
    T d1 = c.d1, d2 = c.d2, x1 = c.x1, p[5] = {9, 9, 9, 9, 9};
    blas::rotmg(&d1, &d2, &x1, c.y1, p);
    LD h11 = p[1], h21 = p[2], h12 = p[3], h22 = p[4];
    if (p[0] == 0) h11 = h22 = 1;
    if (p[0] == 1) h12 = 1, h21 = -1;
    ASSERT_TRUE(p[0] == -1 || p[0] == 0 || p[0] == 1) << p[0];
    const std::string at =
        std::to_string(c.d1) + " " + std::to_string(c.d2) + " flag " + std::to_string(p[0]);
    if (c.d2 < 0) {  // no rotation keeps d1, d2 >= 0 here: all cleared
      EXPECT_TRUE(p[0] == -1 && d1 == 0 && d2 == 0 && x1 == 0 && h11 == 0 && h22 == 0) << at;
      continue;
    }
    const LD sx = std::fabs(h11 * c.x1) + std::fabs(h12 * c.y1);
    EXPECT_LE(std::fabs(h11 * c.x1 + h12 * c.y1 - x1), tol * sx) << at;
    EXPECT_LE(std::fabs(h21 * c.x1 + h22 * c.y1),
              tol * (std::fabs(h21 * c.x1) + std::fabs(h22 * c.y1)))
        << at;
    const LD m11 = h11 * h11 * d1 + h21 * h21 * d2, m22 = h12 * h12 * d1 + h22 * h22 * d2;
    const LD m12 = h11 * h12 * d1 + h21 * h22 * d2;
    EXPECT_LE(std::fabs(m11 - c.d1), tol * c.d1) << at;
    EXPECT_LE(std::fabs(m22 - c.d2), tol * c.d2) << at;
    EXPECT_LE(std::fabs(m12), tol * std::sqrt(c.d1 * c.d2)) << at;
  }
  // d1 < 0: everything cleared; d2 y1 = 0: flag -2 and nothing else touched.
  T d1 = -1, d2 = 2, x1 = 3, p[5] = {9, 9, 9, 9, 9};
  blas::rotmg(&d1, &d2, &x1, T(4), p);
  EXPECT_TRUE(p[0] == -1 && p[1] == 0 && p[2] == 0 && p[3] == 0 && p[4] == 0);
  EXPECT_TRUE(d1 == 0 && d2 == 0 && x1 == 0);
  d1 = 1, d2 = 2, x1 = 3, p[1] = 9;
  blas::rotmg(&d1, &d2, &x1, T(0), p);
  EXPECT_TRUE(p[0] == -2 && p[1] == 9 && d1 == 1 && d2 == 2 && x1 == 3);
}

// ---- dispatch
// ---------------------------------------------------------------------------------------

// In a process whose processor type is forced: every slot takes the variant
// of that type's kernel set, and the variants taken agree with the reference.
ORB_CHILD(level1_dispatch) {
  const int type = orb::cpu::blas_type();
  const orb::cpu::KernelSet set = orb::cpu::kernel_set();
  std::printf("type=%d\n", type);
  int bad = 0;
  if (orb::cpu::type_of(set) != type) {
    std::printf("kernel set %d is not of type %d\n", set, type);
    ++bad;
  }
  for (const auto &r : blas::level1_dispatch_for_testing())
    if (r.variants[set] == nullptr || r.picked != r.variants[set]) {
      std::printf("%s: wrong variant\n", r.name.c_str());
      ++bad;
    }
  const std::vector<int> sizes = {1, 2, 3, 5, 8, 13, 31, 64, 67, 300};
  for (const std::string &e :
       {check_set(dispatched<float>(), sizes), check_set(dispatched<c8>(), sizes),
        check_set(dispatched<double>(), sizes), check_set(dispatched<c16>(), sizes)})
    if (!e.empty()) {
      std::printf("%s\n", e.c_str());
      ++bad;
    }
  return bad == 0 ? 0 : 1;
}

TEST(Level1Dispatch, EachProcessorTypeTakesItsVariants) {
  for (const char *type : {"0", "2", "3", "4", "5"}) {
    const auto r = orb::test::run_child("level1_dispatch", {{"ORB_DEBUG_CPU_TYPE", type}});
    EXPECT_EQ(r.exit_code, 0) << r.out;
    EXPECT_EQ(r.out.substr(0, 6), std::string("type=") + type) << r.out;
  }
}

// Type 0 is the portable code, whatever the processor: on a 32-bit build it
// must not assume SSE.
TEST(Level1Dispatch, TypeZeroIsGeneric) {
  const std::map<std::string, const void *> generic = {
      {"iamin/c", reinterpret_cast<const void *>(&k::generic::iamin<c8>)},
      {"axpy/s", reinterpret_cast<const void *>(&k::generic::axpy<float>)},
      {"dotui/z", reinterpret_cast<const void *>(&k::generic::dotui<c16>)}};
  for (const auto &r : blas::level1_dispatch_for_testing()) {
    const auto it = generic.find(r.name);
    if (it != generic.end()) {
      EXPECT_EQ(r.variants[0], it->second) << r.name;
    }
    for (int s = 0; s < orb::cpu::kKernelSets; ++s)
      EXPECT_NE(r.variants[s], nullptr) << r.name << " " << s;
  }
}

}  // namespace
