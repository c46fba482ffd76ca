// Processes, environment, paths, folders, versions and the installer.
#include "tests/contract/ContractTest.h"

#include <msi.h>
#include <psapi.h>
#include <shlobj.h>
#include <winver.h>

#include <string.h>
#include <wchar.h>

namespace {

constexpr DWORD BufferCharacters = 32;
const wchar_t Poison = static_cast<wchar_t>(0xBDBD);

// A call's output, poisoned before it.
struct TextResult
{
  TextResult()
  {
    memset(text, 0xBD, sizeof(text));
    SetLastError(0xDEAD);
  }

  DWORD result = 0;
  wchar_t text[BufferCharacters];
};

TextResult GetVariable(const wchar_t* name, DWORD size)
{
  TextResult variable;
  variable.result = GetEnvironmentVariableW(name, variable.text, size);
  return variable;
}

TextResult GetLongPath(const wchar_t* path, DWORD size)
{
  TextResult longPath;
  longPath.result = GetLongPathNameW(path, longPath.text, size);
  return longPath;
}

}  // namespace

TEST_F(ContractTest, AVariableIsFoundWithoutRegardToCase)
{
  ASSERT_NE(FALSE, SetEnvironmentVariableW(ContractVariable, L"a;\x0161"));
  const TextResult variable = GetVariable(L"Kestrel_Contract", BufferCharacters);
  EXPECT_EQ(3u, variable.result);
  EXPECT_STREQ(L"a;\x0161", variable.text);
  EXPECT_EQ(Poison, variable.text[4]);
}

TEST_F(ContractTest, AVariableOfTheExactSizeFitsAndALongerOneGivesItsSize)
{
  ASSERT_NE(FALSE, SetEnvironmentVariableW(ContractVariable, L"abc"));
  EXPECT_EQ(3u, GetVariable(ContractVariable, 4).result);
  const TextResult tooSmall = GetVariable(ContractVariable, 3);
  EXPECT_EQ(4u, tooSmall.result);
  EXPECT_EQ(Poison, tooSmall.text[3]);
  EXPECT_EQ(4u, GetVariable(ContractVariable, 0).result);
}

TEST_F(ContractTest, AVariableThatIsNotSetGivesZeroAndAnError)
{
  const TextResult variable = GetVariable(ContractVariable, BufferCharacters);
  EXPECT_EQ(0u, variable.result);
  EXPECT_EQ(static_cast<DWORD>(ERROR_ENVVAR_NOT_FOUND), GetLastError());
  EXPECT_EQ(Poison, variable.text[0]);
}

TEST_F(ContractTest, AnEmptyVariableGivesZeroAndAnEmptyText)
{
  ASSERT_NE(FALSE, SetEnvironmentVariableW(ContractVariable, L""));
  const TextResult variable = GetVariable(ContractVariable, BufferCharacters);
  EXPECT_EQ(0u, variable.result);
  EXPECT_STREQ(L"", variable.text);
}

TEST_F(ContractTest, SettingAVariableToNullRemovesIt)
{
  ASSERT_NE(FALSE, SetEnvironmentVariableW(ContractVariable, L"abc"));
  EXPECT_NE(FALSE, SetEnvironmentVariableW(ContractVariable, nullptr));
  EXPECT_EQ(0u, GetVariable(ContractVariable, BufferCharacters).result);
}

TEST_F(ContractTest, AMissingFileHasNoLongPathAndLeavesTheBufferAlone)
{
  const TextResult longPath = GetLongPath(L"c:\\kestrel-none", BufferCharacters);
  EXPECT_EQ(0u, longPath.result);
  EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), GetLastError());
  EXPECT_EQ(Poison, longPath.text[0]);
}

TEST_F(ContractTest, ALongPathOfTheExactSizeFitsAndALongerOneGivesItsSize)
{
  const TextResult exact = GetLongPath(L"c:\\windows", 11);
  EXPECT_EQ(10u, exact.result);
  EXPECT_EQ(0, _wcsicmp(L"c:\\windows", exact.text));
  EXPECT_EQ(Poison, exact.text[11]);
  const TextResult tooSmall = GetLongPath(L"c:\\windows", 10);
  EXPECT_EQ(11u, tooSmall.result);
  EXPECT_EQ(Poison, tooSmall.text[10]);
}

TEST_F(ContractTest, TheHandleOfTheCurrentProcessIsNoneThatCloses)
{
  EXPECT_EQ(reinterpret_cast<HANDLE>(static_cast<intptr_t>(-1)), GetCurrentProcess());
  EXPECT_NE(FALSE, CloseHandle(GetCurrentProcess()));
  EXPECT_NE(FALSE, CloseHandle(GetCurrentProcess()));
}

TEST_F(ContractTest, ANullHandleDoesNotClose)
{
  EXPECT_EQ(FALSE, CloseHandle(nullptr));
  EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_HANDLE), GetLastError());
}

TEST_F(ContractTest, TheProgramsPathEndsInItsName)
{
  char path[MAX_PATH];
  memset(path, 0xBD, sizeof(path));
  const DWORD length = GetModuleFileNameExA(GetCurrentProcess(), nullptr, path, MAX_PATH);
  ASSERT_GT(length, 4u);
  EXPECT_EQ(length, strlen(path));
  EXPECT_STREQ(".exe", path + length - 4);
}

TEST_F(ContractTest, TheFoldersOfCommonFilesAreKnown)
{
  for (const int folder : {CSIDL_PROGRAM_FILES_COMMON, CSIDL_PROGRAM_FILES_COMMONX86}) {
    wchar_t wide[MAX_PATH] = {};
    char narrow[MAX_PATH] = {};
    ASSERT_NE(FALSE, SHGetSpecialFolderPathW(nullptr, wide, folder, FALSE));
    ASSERT_NE(FALSE, SHGetSpecialFolderPathA(nullptr, narrow, folder, FALSE));
    EXPECT_NE(nullptr, wcsstr(wide, L"\\Common Files"));
    EXPECT_EQ(wcslen(wide), strlen(narrow));
    EXPECT_NE('\\', narrow[strlen(narrow) - 1]);
  }
}

TEST_F(ContractTest, AMissingFileHasNoVersion)
{
  char block[8];
  EXPECT_EQ(0u, GetFileVersionInfoSizeA("c:\\kestrel-none.dll", nullptr));
  EXPECT_EQ(FALSE, GetFileVersionInfoA("c:\\kestrel-none.dll", 0, sizeof(block), block));
}

TEST_F(ContractTest, AnUnknownProductIsNotReinstalled)
{
  EXPECT_EQ(
      static_cast<UINT>(ERROR_UNKNOWN_PRODUCT),
      MsiReinstallProductW(L"{00000000-4B43-4B43-4B43-000000000000}", REINSTALLMODE_USERDATA));
}
