// The main of every test program: either a registered child (--orb-child=NAME)
// or the GoogleTest suite.
#include <gtest/gtest.h>

#include <cstring>

#include "support/child.h"

int main(int argc, char **argv) {
  static const char kChild[] = "--orb-child=";
  for (int i = 1; i < argc; ++i)
    if (std::strncmp(argv[i], kChild, sizeof kChild - 1) == 0)
      return orb::test::run_registered_child(argv[i] + sizeof kChild - 1);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
