// The contract tests' machine as a Windows program: Wine's prefix or a real Windows.
#include "sandbox/common/MachinePermission.h"
#include "sandbox/common/SandboxFiles.h"
#include "tests/contract/ContractTest.h"
#include "tests/contract/Disagreements.h"

#include <filesystem>

namespace {

std::wstring PathOf(const std::string& name)
{
  return std::wstring(ContractFolder) + L"\\" + FromUtf8(name);
}

}  // namespace

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
  std::error_code missing;
  std::filesystem::remove_all(ContractFolder, missing);
}

void PutFile(const std::string& name, const std::string& bytes)
{
  EXPECT_TRUE(MakeFolders(ContractFolder));
  EXPECT_TRUE(WriteWholeFile(PathOf(name), bytes));
}

void MakeFolder(const std::string& name)
{
  EXPECT_TRUE(MakeFolders(PathOf(name)));
}

std::vector<std::string> OdbcKinds()
{
  return {"Driver"};
}

std::string NewDatabase(const std::string& /*kind*/)
{
  // A file of no bytes is a database without tables.
  PutFile("contract.mdb", "");
  return "DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=C:\\KestrelContract\\contract.mdb";
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
