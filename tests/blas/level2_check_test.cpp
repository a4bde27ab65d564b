// Argument checks of the level-2 entries: every code in the order of the
// reference routine with the first failure winning, one message with the
// routine's own name, and every array left untouched.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "orb.h"

namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

// The arguments of any level-2 call, valid by default (3 by 3, unit
// increments), with arrays large enough for every routine and precision.
struct Args {
  char trans = 'N', uplo = 'U', diag = 'N';
  int m = 3, n = 3, lda = 3, incx = 1, incy = 1;
  unsigned char alpha[16] = {}, beta[16] = {};
  alignas(16) unsigned char a[16 * 16], x[16 * 4], y[16 * 4];
  Args() {
    std::memset(a, 0x5a, sizeof a);
    std::memset(x, 0x3c, sizeof x);
    std::memset(y, 0x77, sizeof y);
  }
  template <class T>
  T *p(unsigned char *bytes) {
    return reinterpret_cast<T *>(bytes);
  }
};

using Mutation = std::function<void(Args &)>;
struct Test {
  int code;
  Mutation bad;  // makes only this argument fail
};
struct Routine {
  const char *name;
  std::function<void(Args &)> call;
  std::vector<Test> tests;  // in the reference routine's order
};

const Mutation kTrans = [](Args &a) { a.trans = 'x'; };
const Mutation kUplo = [](Args &a) { a.uplo = 'T'; };
const Mutation kDiag = [](Args &a) { a.diag = 'C'; };
const Mutation kM = [](Args &a) { a.m = -1; };
const Mutation kN = [](Args &a) { a.n = -1; };
const Mutation kLda = [](Args &a) { a.lda = 0; };
const Mutation kIncx = [](Args &a) { a.incx = 0; };
const Mutation kIncy = [](Args &a) { a.incy = 0; };

const std::vector<Test> kGemv = {{1, kTrans}, {2, kM}, {3, kN}, {6, kLda}, {8, kIncx}, {11, kIncy}};
const std::vector<Test> kGer = {{1, kM}, {2, kN}, {5, kIncx}, {7, kIncy}, {9, kLda}};
const std::vector<Test> kSymv = {{1, kUplo}, {2, kN}, {5, kLda}, {7, kIncx}, {10, kIncy}};
const std::vector<Test> kSyr = {{1, kUplo}, {2, kN}, {5, kIncx}, {7, kLda}};
const std::vector<Test> kSyr2 = {{1, kUplo}, {2, kN}, {5, kIncx}, {7, kIncy}, {9, kLda}};
const std::vector<Test> kTrxv = {{1, kUplo}, {2, kTrans}, {3, kDiag},
                                 {4, kN},    {6, kLda},   {8, kIncx}};

#define GEMV(f, T)                                                                      \
  [](Args &r) {                                                                         \
    f(&r.trans, &r.m, &r.n, r.p<T>(r.alpha), r.p<T>(r.a), &r.lda, r.p<T>(r.x), &r.incx, \
      r.p<T>(r.beta), r.p<T>(r.y), &r.incy, 1);                                         \
  }
#define GER(f, T)                                                                           \
  [](Args &r) {                                                                             \
    f(&r.m, &r.n, r.p<T>(r.alpha), r.p<T>(r.x), &r.incx, r.p<T>(r.y), &r.incy, r.p<T>(r.a), \
      &r.lda);                                                                              \
  }
#define SYMV(f, T)                                                                               \
  [](Args &r) {                                                                                  \
    f(&r.uplo, &r.n, r.p<T>(r.alpha), r.p<T>(r.a), &r.lda, r.p<T>(r.x), &r.incx, r.p<T>(r.beta), \
      r.p<T>(r.y), &r.incy, 1);                                                                  \
  }
#define SYR(f, S, T) \
  [](Args &r) { f(&r.uplo, &r.n, r.p<S>(r.alpha), r.p<T>(r.x), &r.incx, r.p<T>(r.a), &r.lda, 1); }
#define SYR2(f, T)                                                                             \
  [](Args &r) {                                                                                \
    f(&r.uplo, &r.n, r.p<T>(r.alpha), r.p<T>(r.x), &r.incx, r.p<T>(r.y), &r.incy, r.p<T>(r.a), \
      &r.lda, 1);                                                                              \
  }
#define TRXV(f, T)                                                                           \
  [](Args &r) {                                                                              \
    f(&r.uplo, &r.trans, &r.diag, &r.n, r.p<T>(r.a), &r.lda, r.p<T>(r.x), &r.incx, 1, 1, 1); \
  }

using c8 = orb_complex8;
using c16 = orb_complex16;

const std::vector<Routine> &routines() {
  static const std::vector<Routine> all = {
      {"SGEMV ", GEMV(sgemv, float), kGemv},
      {"SGER  ", GER(sger, float), kGer},
      {"SSYMV ", SYMV(ssymv, float), kSymv},
      {"SSYR  ", SYR(ssyr, float, float), kSyr},
      {"SSYR2 ", SYR2(ssyr2, float), kSyr2},
      {"STRMV ", TRXV(strmv, float), kTrxv},
      {"STRSV ", TRXV(strsv, float), kTrxv},
      {"CGEMV ", GEMV(cgemv, c8), kGemv},
      {"CGERC ", GER(cgerc, c8), kGer},
      {"CGERU ", GER(cgeru, c8), kGer},
      {"CHEMV ", SYMV(chemv, c8), kSymv},
      {"CHER  ", SYR(cher, float, c8), kSyr},
      {"CHER2 ", SYR2(cher2, c8), kSyr2},
      {"CTRMV ", TRXV(ctrmv, c8), kTrxv},
      {"CTRSV ", TRXV(ctrsv, c8), kTrxv},
      {"DGEMV ", GEMV(DGEMV, double), kGemv},
      {"DGEMV ", GEMV(dgemv, double), kGemv},
      {"DGER  ", GER(DGER, double), kGer},
      {"DGER  ", GER(dger, double), kGer},
      {"DSYR  ", SYR(DSYR, double, double), kSyr},
      {"DSYR  ", SYR(dsyr, double, double), kSyr},
      {"ZGEMV ", GEMV(ZGEMV, c16), kGemv},
      {"ZGEMV ", GEMV(zgemv, c16), kGemv},
      {"ZGERU ", GER(ZGERU, c16), kGer},
      {"ZGERC ", GER(zgerc, c16), kGer},
      {"ZHER  ", SYR(ZHER, double, c16), kSyr},
      {"ZHER  ", SYR(zher, double, c16), kSyr},
      {"ZSYR  ", SYR(ZSYR, c16, c16), kSyr},
  };
  return all;
}

// Calls the routine and returns what it printed; arrays must stay as they were.
std::string call(const Routine &r, Args &args, bool *untouched) {
  const Args before = args;
  CaptureStdout();
  r.call(args);
  const std::string out = GetCapturedStdout();
  *untouched = std::memcmp(before.a, args.a, sizeof args.a) == 0 &&
               std::memcmp(before.x, args.x, sizeof args.x) == 0 &&
               std::memcmp(before.y, args.y, sizeof args.y) == 0;
  return out;
}

std::string message(int code, const char *name) {
  return "ORB ERROR: Parameter " + std::to_string(code) + " was incorrect on entry to " + name +
         "\n";
}

TEST(Level2Checks, EachCodeInReferenceOrderFirstFailureWins) {
  for (const Routine &r : routines())
    for (std::size_t first = 0; first < r.tests.size(); ++first) {
      // This test and every later one fail: this one is reported, once.
      Args args;
      for (std::size_t k = first; k < r.tests.size(); ++k) r.tests[k].bad(args);
      bool untouched;
      EXPECT_EQ(call(r, args, &untouched), message(r.tests[first].code, r.name)) << r.name;
      EXPECT_TRUE(untouched) << r.name << " code " << r.tests[first].code;
      // Only this one fails.
      Args single;
      r.tests[first].bad(single);
      EXPECT_EQ(call(r, single, &untouched), message(r.tests[first].code, r.name)) << r.name;
      EXPECT_TRUE(untouched) << r.name << " code " << r.tests[first].code;
    }
}

TEST(Level2Checks, ValidCallsPrintNothing) {
  for (const Routine &r : routines()) {
    // Option characters in either case; leading dimensions of at least one
    // for empty matrices.
    for (const char *opts : {"NUN", "tlu", "cUn"}) {
      Args args;
      args.trans = opts[0], args.uplo = opts[1], args.diag = opts[2];
      bool untouched;
      EXPECT_EQ(call(r, args, &untouched), "") << r.name << " " << opts;
    }
    Args empty;
    empty.m = empty.n = 0;
    empty.lda = 1;
    bool untouched;
    EXPECT_EQ(call(r, empty, &untouched), "") << r.name;
    EXPECT_TRUE(untouched) << r.name;
  }
}

}  // namespace
