#include <gtest/gtest.h>

#include <cfloat>
#include <string>

#include "orb.h"

namespace {

TEST(MachineConstants, DoubleAndSingleInTheClassicNumbering) {
  const int idx[5] = {1, 2, 3, 4, 5};
  const double d[5] = {0x1p-1022, DBL_MAX, 0x1p-53, 0x1p-52, 0x1.34413509f79ffp-2};
  const float r[5] = {0x1p-126f, FLT_MAX, 0x1p-24f, 0x1p-23f, 0x1.344136p-2f};
  for (int k = 0; k < 5; ++k) {
    EXPECT_EQ(D1MACH(&idx[k]), d[k]) << idx[k];
    EXPECT_EQ(R1MACH(&idx[k]), r[k]) << idx[k];
  }
  // 2 is B^emax (1 - B^-t); 4 is the spacing just above 1.
  EXPECT_EQ(D1MACH(&idx[1]), 0x1p1023 * (2 - 0x1p-52));
  EXPECT_EQ(1.0f + R1MACH(&idx[3]), 0x1.000002p0f);
}

TEST(MachineConstants, AnotherIndexIsReportedAndGivesZero) {
  testing::internal::CaptureStdout();
  for (int bad : {0, 6, -1}) {
    EXPECT_EQ(D1MACH(&bad), 0.0);
    EXPECT_EQ(R1MACH(&bad), 0.0f);
  }
  const std::string out = testing::internal::GetCapturedStdout();
  std::string want;
  for (int k = 0; k < 3; ++k)
    want +=
        "ORB ERROR: Parameter 1 was incorrect on entry to D1MACH\n"
        "ORB ERROR: Parameter 1 was incorrect on entry to R1MACH\n";
  EXPECT_EQ(out, want);
}

}  // namespace
