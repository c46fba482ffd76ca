#include "tests/system/MachinePermission.h"

#include <windows.h>

#include <wchar.h>

const wchar_t* const PermissionVariable = L"KESTREL_SYSTEM_TESTS";

bool MayWriteToThisMachine(bool underWine, const wchar_t* variable)
{
  return underWine || (variable != nullptr && wcscmp(variable, L"1") == 0);
}

bool IsUnderWine()
{
  return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}
