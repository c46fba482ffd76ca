// The contract tests' machine as a Windows program: Wine's prefix or a real Windows.
#include "sandbox/common/MachinePermission.h"
#include "tests/contract/ContractTest.h"
#include "tests/contract/Disagreements.h"

bool MachineMayBeUsed()
{
  return MachineIsOffered();
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
