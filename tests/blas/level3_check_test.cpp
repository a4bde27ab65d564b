// The argument checks of the level-3 entries beside GEMM: every code in the
// reference order, the exact message with the routine's name, and outputs
// left untouched when a check fails.
#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "orb.h"

namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

// The arguments a level-3 routine may take; valid for every routine as set.
struct Args {
  char side = 'L', uplo = 'U', trans = 'N', diag = 'N';
  int m = 3, n = 4, k = 2, lda = 6, ldb = 6, ldc = 6;
};

// Room for any operand of the calls below, in any precision.
struct Buffers {
  std::vector<std::complex<double>> a, b, c;
  Buffers() : a(64), b(64), c(64) {
    for (auto *v : {&a, &b, &c}) std::fill(v->begin(), v->end(), std::complex<double>(0.375, -3));
  }
};

using Call = std::function<void(const Args &, Buffers &)>;

// A real scalar as T (a header complex type gets a zero imaginary part).
template <class T>
T scalar(float x) {
  if constexpr (std::is_arithmetic_v<T>)
    return T(x);
  else
    return T{x, 0};
}

template <class T>
T *as(std::vector<std::complex<double>> &v) {
  return reinterpret_cast<T *>(v.data());
}

struct Routine {
  const char *name;  // the six-character literal of the reports
  Call call;
  // Argument changes with the code each gives, in the reference order.
  std::vector<std::pair<std::function<void(Args &)>, int>> cases;
};

// Runs one call; returns the code of the report it printed (0 for none)
// after checking the message text and, for a report, that nothing changed.
int code_of(const Routine &r, const Args &x) {
  Buffers buf, before;
  CaptureStdout();
  r.call(x, buf);
  const std::string out = GetCapturedStdout();
  if (out.empty()) return 0;
  int code = 0;
  if (std::sscanf(out.c_str(), "ORB ERROR: Parameter %d", &code) != 1) code = -1;
  EXPECT_EQ(out, "ORB ERROR: Parameter " + std::to_string(code) + " was incorrect on entry to " +
                     r.name + "\n");
  EXPECT_TRUE(buf.a == before.a && buf.b == before.b && buf.c == before.c) << r.name;
  return code;
}

// ---- the families -------------------------------------------------------------------

std::vector<std::pair<std::function<void(Args &)>, int>> symm_cases() {
  return {
      {[](Args &x) { x.side = 'X', x.m = -1; }, 1},
      {[](Args &x) { x.uplo = 'N'; }, 2},
      {[](Args &x) { x.m = -1, x.ldc = 0; }, 3},
      {[](Args &x) { x.n = -1; }, 4},
      {[](Args &x) { x.lda = 2; }, 7},                // below M for the left side
      {[](Args &x) { x.side = 'r', x.lda = 3; }, 7},  // below N for the right side
      {[](Args &x) { x.ldb = 2, x.ldc = 2; }, 9},
      {[](Args &x) { x.ldc = 2; }, 12},
      {[](Args &x) { x.side = 'l', x.uplo = 'l'; }, 0},
      {[](Args &x) { x.m = 0, x.lda = 1, x.ldb = 1, x.ldc = 1; }, 0},
  };
}

// `bad`: a transpose letter of N, T, C this routine refuses ('\0' if none).
std::vector<std::pair<std::function<void(Args &)>, int>> update_cases(bool two, char good,
                                                                      char bad) {
  std::vector<std::pair<std::function<void(Args &)>, int>> v = {
      {[](Args &x) { x.uplo = 'R', x.n = -1; }, 1},
      {[](Args &x) { x.trans = 'X'; }, 2},
      {[](Args &x) { x.n = -1, x.k = -1; }, 3},
      {[](Args &x) { x.k = -1; }, 4},
      {[](Args &x) { x.lda = 3; }, 7},                      // below N for trans N
      {[good](Args &x) { x.trans = good, x.lda = 1; }, 7},  // below K otherwise
      {[good](Args &x) { x.trans = good, x.lda = 2, x.ldc = 4; }, 0},
      {[](Args &x) { x.uplo = 'l', x.trans = 'n'; }, 0},
  };
  if (bad) v.push_back({[bad](Args &x) { x.trans = bad; }, 2});
  if (two) {
    v.push_back({[](Args &x) { x.ldb = 3, x.ldc = 3; }, 9});
    v.push_back({[good](Args &x) { x.trans = good, x.ldb = 1; }, 9});
    v.push_back({[](Args &x) { x.ldc = 3; }, 12});
  } else {
    v.push_back({[](Args &x) { x.ldc = 3; }, 10});
  }
  return v;
}

std::vector<std::pair<std::function<void(Args &)>, int>> triangular_cases() {
  return {
      {[](Args &x) { x.side = 'U', x.uplo = 'X'; }, 1},
      {[](Args &x) { x.uplo = 'X', x.trans = 'X'; }, 2},
      {[](Args &x) { x.trans = 'X', x.diag = 'X'; }, 3},
      {[](Args &x) { x.diag = 'T', x.m = -1; }, 4},
      {[](Args &x) { x.m = -1, x.n = -1; }, 5},
      {[](Args &x) { x.n = -1, x.lda = 0; }, 6},
      {[](Args &x) { x.lda = 2; }, 9},                // below M for the left side
      {[](Args &x) { x.side = 'R', x.lda = 3; }, 9},  // below N for the right side
      {[](Args &x) { x.side = 'R', x.lda = 4, x.ldb = 2; }, 11},
      {[](Args &x) { x.side = 'r', x.uplo = 'l', x.trans = 'c', x.diag = 'u'; }, 0},
      {[](Args &x) { x.trans = 't', x.n = 0, x.ldb = 3; }, 0},
  };
}

#define SYMM(fn, T)                                                                       \
  [](const Args &x, Buffers &b) {                                                         \
    const T one = scalar<T>(1), zero = scalar<T>(0);                                      \
    fn(&x.side, &x.uplo, &x.m, &x.n, &one, as<T>(b.a), &x.lda, as<T>(b.b), &x.ldb, &zero, \
       as<T>(b.c), &x.ldc, 1, 1);                                                         \
  }
#define RANK_K(fn, T, S)                                                                          \
  [](const Args &x, Buffers &b) {                                                                 \
    const S one = scalar<S>(1), zero = scalar<S>(0);                                              \
    fn(&x.uplo, &x.trans, &x.n, &x.k, &one, as<T>(b.a), &x.lda, &zero, as<T>(b.c), &x.ldc, 1, 1); \
  }
#define RANK_2K(fn, T, S)                                                                  \
  [](const Args &x, Buffers &b) {                                                          \
    const T one = scalar<T>(1);                                                            \
    const S zero = scalar<S>(0);                                                           \
    fn(&x.uplo, &x.trans, &x.n, &x.k, &one, as<T>(b.a), &x.lda, as<T>(b.b), &x.ldb, &zero, \
       as<T>(b.c), &x.ldc, 1, 1);                                                          \
  }
#define TRIANGULAR(fn, T)                                                                     \
  [](const Args &x, Buffers &b) {                                                             \
    const T one = scalar<T>(1);                                                               \
    fn(&x.side, &x.uplo, &x.trans, &x.diag, &x.m, &x.n, &one, as<T>(b.a), &x.lda, as<T>(b.b), \
       &x.ldb, 1, 1, 1, 1);                                                                   \
  }

std::vector<Routine> routines() {
  using C8 = orb_complex8;
  using C16 = orb_complex16;
  return {
      {"SSYMM ", SYMM(ssymm, float), symm_cases()},
      {"CSYMM ", SYMM(csymm, C8), symm_cases()},
      {"CHEMM ", SYMM(chemm, C8), symm_cases()},
      {"SSYRK ", RANK_K(ssyrk, float, float), update_cases(false, 'C', '\0')},
      {"CSYRK ", RANK_K(csyrk, C8, C8), update_cases(false, 'T', 'C')},
      {"CHERK ", RANK_K(cherk, C8, float), update_cases(false, 'C', 'T')},
      {"SSYR2K", RANK_2K(ssyr2k, float, float), update_cases(true, 'T', '\0')},
      {"CSYR2K", RANK_2K(csyr2k, C8, C8), update_cases(true, 't', 'c')},
      {"CHER2K", RANK_2K(cher2k, C8, float), update_cases(true, 'c', 't')},
      {"STRMM ", TRIANGULAR(strmm, float), triangular_cases()},
      {"CTRMM ", TRIANGULAR(ctrmm, C8), triangular_cases()},
      {"STRSM ", TRIANGULAR(strsm, float), triangular_cases()},
      {"CTRSM ", TRIANGULAR(ctrsm, C8), triangular_cases()},
      {"DTRSM ", TRIANGULAR(DTRSM, double), triangular_cases()},
      {"ZTRSM ", TRIANGULAR(ZTRSM, C16), triangular_cases()},
  };
}

TEST(Level3Checks, EveryCodeInReferenceOrder) {
  for (const Routine &r : routines()) {
    EXPECT_EQ(code_of(r, Args{}), 0) << r.name;
    for (size_t i = 0; i < r.cases.size(); ++i) {
      Args x;
      r.cases[i].first(x);
      EXPECT_EQ(code_of(r, x), r.cases[i].second) << r.name << " case " << i;
    }
  }
}

}  // namespace
