// The contract tests' machine as a Windows program: Wine's prefix or a real Windows.
#include "tests/contract/ContractTest.h"
#include "tests/contract/Disagreements.h"

#include "tests/system/MachinePermission.h"

#include <stdio.h>

bool MachineMayBeUsed()
{
  wchar_t permission[16] = {};
  const bool isSet = GetEnvironmentVariableW(PermissionVariable, permission, 16) != 0;
  if (MayWriteToThisMachine(IsUnderWine(), isSet ? permission : nullptr))
    return true;
  (void)fputs(
      "These tests write to a key of their own in the registry. On a machine where that does no "
      "harm, set KESTREL_SYSTEM_TESTS=1 and run them again.\n",
      stderr);
  return false;
}

void PrepareMachine()
{
  // Mostly there is nothing to remove.
  (void)RegDeleteTreeW(HKEY_CURRENT_USER, ContractKey);
  (void)RegDeleteTreeW(HKEY_LOCAL_MACHINE, ContractKey);
  (void)RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Wow6432Node\\KestrelContract");
  (void)RegDeleteTreeW(HKEY_CLASSES_ROOT, L"CLSID\\{KestrelContract}");
  (void)RegDeleteTreeW(HKEY_CLASSES_ROOT, L"Wow6432Node\\CLSID\\{KestrelContract}");
  (void)SetEnvironmentVariableW(ContractVariable, nullptr);
}

void CheckMisuse() {}

void AllowMisuse() {}

bool WritesAddTerminator()
{
  return IsUnderWine();
}

bool ReadsAddTerminator()
{
  return true;
}

bool NarrowFormatLeavesText()
{
  return IsUnderWine();
}
