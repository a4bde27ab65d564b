#include <gtest/gtest.h>

#include <string>

#include "orb.h"
#include "service/catalogue.h"
#include "service/report.h"
#include "support/child.h"

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "service/platform/platform.h"
#endif

namespace {

using orb::msg::print;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

std::string xerbla_output(const char *name, int code, int len) {
  CaptureStdout();
  XERBLA(name, &code, len);
  return GetCapturedStdout();
}

TEST(Catalogue, BuiltinTextsOfTheServiceMessages) {
  EXPECT_STREQ(orb::msg::builtin_text(0), "");
  EXPECT_STREQ(orb::msg::builtin_text(1), "ORB FATAL ERROR: Cannot load %s");
  EXPECT_STREQ(orb::msg::builtin_text(2), "ORB FATAL ERROR: Cannot load neither %s nor %s");
  EXPECT_STREQ(orb::msg::builtin_text(4),
               "ORB WARNING: ORB_DEBUG_CPU_TYPE=%d not convenient for this processor.");
  EXPECT_EQ(std::string(orb::msg::builtin_text(10)), std::string(79, '-'));
  for (int n : {774, 956, 957, 958, 959, 960, 961})
    EXPECT_NE(orb::msg::builtin_text(n), nullptr) << n;
  EXPECT_EQ(orb::msg::builtin_text(11), nullptr);
  EXPECT_EQ(orb::msg::builtin_text(-1), nullptr);
  EXPECT_EQ(orb::msg::builtin_text(100000), nullptr);
}

TEST(Catalogue, PrintAddsOneLineBreak) {
  CaptureStdout();
  print(0);
  EXPECT_EQ(GetCapturedStdout(), "\n");
  CaptureStdout();
  print(1, "orb_msg");
  EXPECT_EQ(GetCapturedStdout(), "ORB FATAL ERROR: Cannot load orb_msg\n");
  CaptureStdout();
  print(5, "x", 2, 5);
  EXPECT_EQ(
      GetCapturedStdout(),
      "ORB WARNING: library x (ORB type 2) not convenient for this processor (ORB type 5).\n");
}

TEST(Xerbla, ChoosesTheMessageByCode) {
  EXPECT_EQ(xerbla_output("SGEMM ", 4, 6),
            "ORB ERROR: Parameter 4 was incorrect on entry to SGEMM \n");
  EXPECT_EQ(xerbla_output("SGETRF", 1000, 6),
            "ORB INTERNAL ERROR: Not enough work memory in function SGETRF\n");
  EXPECT_EQ(xerbla_output("SGETRF", 1001, 6),
            "ORB ERROR: Incompatible optional parameters on entry to SGETRF\n");
  EXPECT_EQ(xerbla_output("SGETRF", 0, 6),
            "ORB INTERNAL ERROR: Condition 0 detected in function SGETRF\n");
  EXPECT_EQ(xerbla_output("SGETRF", -3, 6),
            "ORB INTERNAL ERROR: Condition 3 detected in function SGETRF\n");
}

TEST(Xerbla, ClipsTheNameToTwentyCharacters) {
  const char *name = "ABCDEFGHIJKLMNOPQRSTUVWXY";  // 25 characters
  EXPECT_EQ(xerbla_output(name, 2, 25),
            "ORB ERROR: Parameter 2 was incorrect on entry to ABCDEFGHIJKLMNOPQRST\n");
  // The length decides, not a terminator: only three characters of the name.
  EXPECT_EQ(xerbla_output("SGEMM ", 1000, 3),
            "ORB INTERNAL ERROR: Not enough work memory in function SGE\n");
  EXPECT_EQ(xerbla_output("SGEMM ", 7, 0), "ORB ERROR: Parameter 7 was incorrect on entry to \n");
}

TEST(Reporter, GoesThroughTheHookOnceInstalled) {
  // Without a hook the reporter calls XERBLA itself; with it, the forwarder
  // does; the text is the same either way.
  std::string before = [] {
    CaptureStdout();
    orb::report_code("SPOTRF", 4);
    return GetCapturedStdout();
  }();
  orb::install_error_hook();
  EXPECT_EQ(orb::error_hook(), &orb::xerbla_forwarder);
  CaptureStdout();
  orb::report_code("SPOTRF", 4);
  EXPECT_EQ(GetCapturedStdout(), before);
  EXPECT_EQ(before, "ORB ERROR: Parameter 4 was incorrect on entry to SPOTRF\n");
}

ORB_CHILD(overflow) {
  std::string long_name(600, 'x');
  print(1, long_name.c_str());
  return 0;  // not reached
}

ORB_CHILD(just_fits) {
  // "ORB FATAL ERROR: Cannot load " is 29 characters; 513 in all still fits.
  std::string name(513 - 29, 'y');
  print(1, name.c_str());
  return 0;
}

ORB_CHILD(one_too_many) {
  std::string name(514 - 29, 'z');
  print(1, name.c_str());
  return 0;
}

TEST(Catalogue, OverflowReportsAndEndsTheProcessWithCode8) {
  auto r = orb::test::run_child("overflow");
  EXPECT_EQ(r.exit_code, 8);
  EXPECT_EQ(r.out,
            "\nORB INTERNAL ERROR: message buffer overflow."
            "\n       Message N 1   Lenght: 629   Buffer size: 512\n");
}

TEST(Catalogue, OverflowBoundary) {
  auto fits = orb::test::run_child("just_fits");
  EXPECT_EQ(fits.exit_code, 0);
  EXPECT_EQ(fits.out.size(), 514u);
  auto over = orb::test::run_child("one_too_many");
  EXPECT_EQ(over.exit_code, 8);
  EXPECT_NE(over.out.find("Lenght: 514"), std::string::npos) << over.out;
}

#ifdef _WIN32
ORB_CHILD(localised) {
  int code = 4;
  XERBLA("SGEMM ", &code, 6);  // message 6: in the module
  code = 1000;
  XERBLA("SGETRF", &code, 6);  // message 8: in the module
  code = 1001;
  XERBLA("SGETRF", &code, 6);  // message 9: not in it, the built-in text
  return 0;
}

// The module is looked for as "<thread locale>/orb_msg" from the working
// directory; its texts arrive without their trailing CR LF.
TEST(Catalogue, LocalisedModuleOfTheThreadLocale) {
  const std::string dir = std::to_string(orb::platform::thread_locale());
  ASSERT_NE(dir, "0");
  char exe[MAX_PATH];
  DWORD n = GetModuleFileNameA(nullptr, exe, sizeof exe);
  std::string fixture(exe, n);
  fixture = fixture.substr(0, fixture.find_last_of("\\/") + 1) + "orb_msg.dll";
  const std::string copy = dir + "\\orb_msg.dll";
  CreateDirectoryA(dir.c_str(), nullptr);
  ASSERT_TRUE(CopyFileA(fixture.c_str(), copy.c_str(), FALSE)) << fixture;
  auto r = orb::test::run_child("localised");
  DeleteFileA(copy.c_str());
  RemoveDirectoryA(dir.c_str());
  EXPECT_EQ(r.exit_code, 0);
  EXPECT_EQ(r.out,
            "LOCALISED parameter 4 of SGEMM \n"
            "LOCALISED no work memory in SGETRF\n"
            "ORB ERROR: Incompatible optional parameters on entry to SGETRF\n");
}
#endif

}  // namespace
