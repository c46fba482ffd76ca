#include "sandbox/common/MachinePermission.h"
#include "tests/system/HarnessChild.h"

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
  if (argc == 2 && IsHarnessChild(argv[1])) {
    return RunHarnessChild(argv[1]);
  }
  if (!MachineIsOffered()) {
    return 1;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
