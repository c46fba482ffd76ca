#include "sandbox/common/MachinePermission.h"
#include "tests/system/HarnessChild.h"

#include <gtest/gtest.h>

#include <windows.h>

int main(int argc, char** argv)
{
  if (argc == 2 && IsHarnessChild(argv[1])) {
    return RunHarnessChild(argv[1]);
  }
  if (!MachineIsOffered()) {
    return 1;
  }
  // Wine's desktop is a process, which the first program that asks for it starts and which ends
  // when nobody has asked for a while. Asked for here, it stays, and is no child of a program under
  // test.
  (void)GetDesktopWindow();
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
