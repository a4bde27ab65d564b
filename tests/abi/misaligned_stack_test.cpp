// The 32-bit library called as hosts built with other compilers call it: with
// the stack aligned only to 4 bytes. An entry of every family runs with the
// stack pointer 0, 4, 8 and 12 bytes past a 16-byte boundary at the call, on
// one and two threads, and must give the results of an ordinary call, bit for
// bit (a wide spill to a misaligned slot would fault or corrupt them).
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <vector>

#include "orb.h"

// Calls fn(arg) with the stack pointer `offset` bytes past a 16-byte
// boundary at the call instruction.
extern "C" void call_misaligned(void (*fn)(void *), void *arg,
                                int offset) __asm__("orb_test_call_misaligned");
__asm__(
    ".text\n"
    ".globl orb_test_call_misaligned\n"
    "orb_test_call_misaligned:\n"
    "  pushl %ebp\n"
    "  movl %esp, %ebp\n"
    "  movl 8(%ebp), %eax\n"
    "  movl 12(%ebp), %ecx\n"
    "  movl 16(%ebp), %edx\n"
    "  andl $-16, %esp\n"
    "  subl $64, %esp\n"
    "  addl %edx, %esp\n"
    "  movl %ecx, (%esp)\n"
    "  call *%eax\n"
    "  movl %ebp, %esp\n"
    "  popl %ebp\n"
    "  ret\n");

namespace {

void run_function(void *f) {
  (*static_cast<std::function<void()> *>(f))();
}

std::vector<float> values(int n, int seed) {
  std::vector<float> v(n);
  unsigned s = 2463534242u + seed;
  for (float &x : v) {
    s ^= s << 13, s ^= s >> 17, s ^= s << 5;
    x = static_cast<float>(s % 2001) / 1000.0f - 1.0f;
  }
  return v;
}

// Every family's calls on fresh operands; returns all the numbers they give.
std::vector<float> every_family() {
  std::vector<float> out;
  const int one = 1;
  // Level 1 and sparse level 1.
  {
    const int n = 1003;
    std::vector<float> x = values(n, 1), y = values(n, 2);
    const float a = 0.75f;
    saxpy(&n, &a, x.data(), &one, y.data(), &one);
    out.insert(out.end(), y.begin(), y.end());
    out.push_back(sdot(&n, x.data(), &one, y.data(), &one));
    out.push_back(static_cast<float>(isamax(&n, y.data(), &one)));
    const int nz = 3, indx[] = {1, 500, 1003};
    saxpyi(&nz, &a, x.data(), indx, y.data());
    out.insert(out.end(), y.begin(), y.end());
  }
  // Level 2.
  {
    const int m = 301, n = 257;
    std::vector<float> a = values(m * n, 3), x = values(n, 4), y = values(m, 5);
    const float alpha = 1.5f, beta = -0.5f;
    sgemv("N", &m, &n, &alpha, a.data(), &m, x.data(), &one, &beta, y.data(), &one, 1);
    out.insert(out.end(), y.begin(), y.end());
    std::vector<float> ca = values(2 * m * n, 6), cx = values(2 * n, 7), cy = values(2 * m, 8);
    const orb_complex8 calpha = {0.5f, -1.0f}, cbeta = {1.0f, 0.25f};
    cgemv("N", &m, &n, &calpha, reinterpret_cast<const orb_complex8 *>(ca.data()), &m,
          reinterpret_cast<const orb_complex8 *>(cx.data()), &one, &cbeta,
          reinterpret_cast<orb_complex8 *>(cy.data()), &one, 1);
    out.insert(out.end(), cy.begin(), cy.end());
  }
  // Level 3: small products and products large enough for the threads.
  for (int n : {40, 300}) {
    std::vector<float> a = values(n * n, 9), b = values(n * n, 10), c = values(n * n, 11);
    const float alpha = 1.0f, beta = 0.5f;
    sgemm("N", "T", &n, &n, &n, &alpha, a.data(), &n, b.data(), &n, &beta, c.data(), &n, 1, 1);
    out.insert(out.end(), c.begin(), c.end());
    for (int i = 0; i < n; ++i) a[i + i * n] += static_cast<float>(n);
    strsm("L", "U", "N", "N", &n, &n, &alpha, a.data(), &n, c.data(), &n, 1, 1, 1, 1);
    out.insert(out.end(), c.begin(), c.end());
    std::vector<float> ca = values(2 * n * n, 12), cb = values(2 * n * n, 13),
                       cc = values(2 * n * n, 14);
    const orb_complex8 calpha = {1.0f, 0.5f}, cbeta = {0.0f, 0.0f};
    cgemm("C", "N", &n, &n, &n, &calpha, reinterpret_cast<const orb_complex8 *>(ca.data()), &n,
          reinterpret_cast<const orb_complex8 *>(cb.data()), &n, &cbeta,
          reinterpret_cast<orb_complex8 *>(cc.data()), &n, 1, 1);
    out.insert(out.end(), cc.begin(), cc.end());
    std::vector<double> da(a.begin(), a.end()), db(b.begin(), b.end()), dc(n * n, 0.0);
    const double dalpha = 1.0, dbeta = 0.0;
    DGEMM("N", "N", &n, &n, &n, &dalpha, da.data(), &n, db.data(), &n, &dbeta, dc.data(), &n, 1, 1);
    for (double v : dc) out.push_back(static_cast<float>(v));
  }
  // LAPACK: an LU and a solve with it.
  {
    const int n = 200, nrhs = 3;
    std::vector<float> a = values(n * n, 15), b = values(n * nrhs, 16);
    std::vector<int> ipiv(n);
    int info = -1;
    sgetrf(&n, &n, a.data(), &n, ipiv.data(), &info);
    out.push_back(static_cast<float>(info));
    sgetrs("N", &n, &nrhs, a.data(), &n, ipiv.data(), b.data(), &n, &info, 1);
    out.push_back(static_cast<float>(info));
    out.insert(out.end(), a.begin(), a.end());
    out.insert(out.end(), b.begin(), b.end());
  }
  return out;
}

TEST(MisalignedStack, EveryFamilyGivesTheResultsOfAnAlignedCall) {
  for (int threads : {1, 2}) {
    ORB_Set_Num_Threads(threads);
    const std::vector<float> expect = every_family();
    for (int offset : {0, 4, 8, 12}) {
      std::vector<float> got;
      std::function<void()> call = [&] { got = every_family(); };
      call_misaligned(run_function, &call, offset);
      ASSERT_EQ(got.size(), expect.size());
      EXPECT_EQ(std::memcmp(got.data(), expect.data(), got.size() * sizeof(float)), 0)
          << "stack " << offset << " bytes past a 16-byte boundary, " << threads << " threads";
    }
  }
  ORB_Set_Num_Threads(2);
}

}  // namespace
