#include "sandbox/common/MachinePermission.h"

#include <windows.h>

#include <stdio.h>
#include <wchar.h>

bool MayWriteToThisMachine(bool underWine, const wchar_t* variable)
{
  return underWine || (variable != nullptr && wcscmp(variable, L"1") == 0);
}

bool IsUnderWine()
{
  return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

bool MachineIsOffered()
{
  wchar_t permission[16] = {};
  const bool isSet = GetEnvironmentVariableW(L"KESTREL_SYSTEM_TESTS", permission, 16) != 0;
  if (MayWriteToThisMachine(IsUnderWine(), isSet ? permission : nullptr))
    return true;
  (void)fputs(
      "This program deletes and writes registry keys, those of AutoCAD and the add-on among them. "
      "On a machine where that does no harm, set KESTREL_SYSTEM_TESTS=1 and start it again.\n",
      stderr);
  return false;
}
