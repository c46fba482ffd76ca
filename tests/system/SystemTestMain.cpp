#include "tests/system/HarnessChild.h"
#include "tests/system/MachinePermission.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <stdio.h>

int main(int argc, char** argv)
{
  if (argc == 2 && IsHarnessChild(argv[1])) {
    return RunHarnessChild(argv[1]);
  }
  wchar_t permission[16] = {};
  const bool isSet = GetEnvironmentVariableW(PermissionVariable, permission, 16) != 0;
  if (!MayWriteToThisMachine(IsUnderWine(), isSet ? permission : nullptr)) {
    fputs(
        "These tests delete and write registry keys of AutoCAD and of the add-on. On a machine "
        "where that does no harm, set KESTREL_SYSTEM_TESTS=1 and run them again.\n",
        stderr);
    return 1;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
