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
  double start = DSECND();
  std::this_thread::sleep_for(std::chrono::seconds(1));
  double end = DSECND();
  EXPECT_GE(start, first);
  EXPECT_NEAR(end - start, 1.0, 0.05);
  // Later calls do not calibrate again.
  auto t1 = std::chrono::steady_clock::now();
  (void)DSECND();
  EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - t1).count(), 0.05);
}

}  // namespace
