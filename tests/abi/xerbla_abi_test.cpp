// XERBLA and DSECND called through the exported names of the shared library.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "orb.h"

namespace {

TEST(XerblaAbi, PrintsTheParameterMessage) {
  int code = 4;
  testing::internal::CaptureStdout();
  XERBLA("SGEMM ", &code, 6);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "ORB ERROR: Parameter 4 was incorrect on entry to SGEMM \n");
}

TEST(DsecndAbi, MeasuresWallClockSeconds) {
  auto t0 = std::chrono::steady_clock::now();
  double first = DSECND();  // calibrates: busy for at least 100 ms
  double calibration = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  EXPECT_GE(calibration, 0.099);
  // The interval is compared with the steady clock read just outside and
  // just inside it, not with the requested sleep, which a loaded machine
  // may overshoot by any amount.
  auto outer0 = std::chrono::steady_clock::now();
  double start = DSECND();
  auto inner0 = std::chrono::steady_clock::now();
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  auto inner1 = std::chrono::steady_clock::now();
  double end = DSECND();
  auto outer1 = std::chrono::steady_clock::now();
  EXPECT_GE(start, first);
  double inner = std::chrono::duration<double>(inner1 - inner0).count();
  double outer = std::chrono::duration<double>(outer1 - outer0).count();
  EXPECT_GE(end - start, inner * 0.98);
  EXPECT_LE(end - start, outer * 1.02);
  // Later calls do not calibrate again.
  auto t1 = std::chrono::steady_clock::now();
  (void)DSECND();
  EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - t1).count(), 0.09);
}

}  // namespace
