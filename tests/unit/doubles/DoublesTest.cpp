// What the contract tests can't show of the doubles, since Windows has no such thing: the diary,
// the ordered failures and the test's side.
#include "tests/doubles/DebugOutputDouble.h"
#include "tests/doubles/InstallerDouble.h"
#include "tests/doubles/PlatformTest.h"
#include "tests/doubles/ProcessDouble.h"
#include "tests/doubles/RegistryDouble.h"
#include "tests/doubles/ShellDouble.h"
#include "tests/doubles/Text.h"
#include "tests/doubles/VersionDouble.h"

#include <msi.h>
#include <psapi.h>
#include <shlobj.h>
#include <winver.h>

#include <stdlib.h>
#include <string.h>
#include <wchar.h>

namespace {

using Lines = std::vector<std::string>;

const RegistryView Native = RegistryView::Native;

HKEY OpenUserKey(const wchar_t* path, REGSAM access)
{
  HKEY key = nullptr;
  (void)RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, access, &key);
  return key;
}

}  // namespace

class RegistryDiary : public PlatformTest
{
protected:
  RegistryDiary()
  {
    Registry().SetText(HKEY_CURRENT_USER, Native, "Software\\K", "Name", "Tëxt");
    Registry().AddKey(HKEY_CURRENT_USER, Native, "Software\\K\\B");
    Registry().AddKey(HKEY_CURRENT_USER, Native, "Software\\K\\A");
    key = OpenUserKey(L"Software\\K", KEY_ALL_ACCESS);
    ClearDiary();
  }

  HKEY key;
};

TEST_F(RegistryDiary, TellsOpensAndCloses)
{
  HKEY opened = OpenUserKey(L"Software\\K\\", KEY_QUERY_VALUE);
  (void)OpenUserKey(L"Software\\None", KEY_READ | KEY_WOW64_32KEY);
  (void)RegCloseKey(opened);
  (void)RegCloseKey(nullptr);
  EXPECT_EQ(Diary(), Lines({"RegOpenKeyExW(HKCU, \"Software\\K\\\", 0, 0x1) = 0 #2",
                            "RegOpenKeyExW(HKCU, \"Software\\None\", 0, 0x20219) = 2",
                            "RegCloseKey(#2) = 0", "RegCloseKey(null) = 6"}));
}

TEST_F(RegistryDiary, TellsCreations)
{
  HKEY created = nullptr;
  DWORD disposition = 0;
  wchar_t noClass[] = L"";
  (void)RegCreateKeyExW(HKEY_CURRENT_USER, L"SoftWare\\X", 0, noClass, 0, KEY_SET_VALUE, nullptr,
                        &created, &disposition);
  (void)RegCreateKeyExW(key, L"Y", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &created, nullptr);
  EXPECT_EQ(Diary(),
            Lines({"RegCreateKeyExW(HKCU, \"SoftWare\\X\", 0, class \"\", 0, 0x2, null, "
                   "disposition) = 0 #2",
                   "RegCreateKeyExW(#1, \"Y\", 0, class null, 0, 0xF003F, null, null) = 0 #3"}));
}

TEST_F(RegistryDiary, TellsQueriesWithWhatTheyWereGiven)
{
  wchar_t text[8];
  DWORD size = 16;
  DWORD type = REG_SZ;
  (void)RegQueryValueExW(key, L"Name", nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
  (void)RegQueryValueExW(key, nullptr, nullptr, &type, nullptr, &size);
  EXPECT_EQ(Diary(), Lines({"RegQueryValueExW(#1, \"Name\", type null, 16) = 0",
                            "RegQueryValueExW(#1, null, type 1, size null) = 2"}));
}

TEST_F(RegistryDiary, TellsEnumerationsInTheOrderOfMaking)
{
  wchar_t name[16];
  for (DWORD index = 0; index < 3; ++index) {
    DWORD size = 16;
    (void)RegEnumKeyExW(key, index, name, &size, nullptr, nullptr, nullptr, nullptr);
  }
  DWORD size = 16;
  DWORD type = REG_SZ;
  BYTE data[32];
  DWORD dataSize = 32;
  (void)RegEnumValueW(key, 0, name, &size, nullptr, &type, data, &dataSize);
  EXPECT_EQ(Diary(), Lines({"RegEnumKeyExW(#1, 0, 16) = 0 \"B\"",
                            "RegEnumKeyExW(#1, 1, 16) = 0 \"A\"", "RegEnumKeyExW(#1, 2, 16) = 259",
                            "RegEnumValueW(#1, 0, name 16, type 1, data 32) = 0 \"Name\""}));
}

TEST_F(RegistryDiary, TellsWritesByTheirType)
{
  const DWORD number = 13;
  const auto write = [this](const wchar_t* name, DWORD type, const void* data, DWORD bytes) {
    (void)RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), bytes);
  };
  write(L"A", REG_SZ, L"ab", 4);
  write(L"A", REG_SZ, L"ab", 6);
  write(L"B", REG_DWORD, &number, 4);
  write(L"C", REG_BINARY, "\x01\xFF", 2);
  EXPECT_EQ(Diary(), Lines({"RegSetValueExW(#1, \"A\", 0, REG_SZ, \"ab\", 4) = 0",
                            "RegSetValueExW(#1, \"A\", 0, REG_SZ, \"ab\", 6) = 0",
                            "RegSetValueExW(#1, \"B\", 0, REG_DWORD, 13, 4) = 0",
                            "RegSetValueExW(#1, \"C\", 0, type 3, bytes 1 FF, 2) = 0"}));
  EXPECT_EQ(13u, Registry().Value(HKEY_CURRENT_USER, Native, "Software\\K", "B").Number());
}

TEST_F(RegistryDiary, ExactBytesAreKept)
{
  (void)RegSetValueExW(key, L"A", 0, REG_SZ, reinterpret_cast<const BYTE*>(L"ab"), 4);
  const RegistryValue value = Registry().Value(HKEY_CURRENT_USER, Native, "Software\\K", "a");
  EXPECT_EQ(TextBytes("ab"), value.bytes);
  EXPECT_EQ("ab", value.Text());
}

TEST_F(RegistryDiary, OpenHandlesAreCounted)
{
  (void)OpenUserKey(L"software\\k\\a", KEY_READ);
  EXPECT_EQ(2, Registry().OpenHandleCount());
  EXPECT_EQ(Registry().OpenKeyPaths(), Lines({"HKCU\\Software\\K", "HKCU\\Software\\K\\A"}));
}

TEST_F(RegistryDiary, ADeniedRightFailsTheOpenAndTheCreation)
{
  Registry().DenyAccess(HKEY_CURRENT_USER, Native, "Software\\K", KEY_SET_VALUE);
  Registry().DenyAccess(HKEY_CURRENT_USER, Native, "Software\\K\\A", KEY_CREATE_SUB_KEY);
  HKEY created = nullptr;
  EXPECT_EQ(nullptr, OpenUserKey(L"Software\\K", KEY_WRITE));
  EXPECT_NE(nullptr, OpenUserKey(L"Software\\K", KEY_READ));
  EXPECT_EQ(ERROR_ACCESS_DENIED,
            RegCreateKeyExW(key, L"A\\New", 0, nullptr, 0, KEY_READ, nullptr, &created, nullptr));
  EXPECT_NE(nullptr, OpenUserKey(L"Software\\K\\A", KEY_READ));
}

TEST_F(RegistryDiary, UseOfADeadHandleIsAMisuse)
{
  (void)RegCloseKey(key);
  (void)RegCloseKey(key);
  EXPECT_EQ(DiaryOf({"RegCloseKey"}), Lines({"RegCloseKey(#1) = 0", "RegCloseKey(#?) = 6"}));
  EXPECT_EQ(TakeMisuses(), Lines({"RegCloseKey was given a registry handle that is closed."}));
}

using DoublesTest = PlatformTest;

TEST_F(DoublesTest, AnOrderedFailureMeetsThatCallAloneAndHasNoEffect)
{
  Registry().AddKey(HKEY_CURRENT_USER, Native, "Software\\K");
  FailCall("RegOpenKeyExW", 2, ERROR_ACCESS_DENIED);
  EXPECT_NE(nullptr, OpenUserKey(L"Software\\K", KEY_READ));
  EXPECT_EQ(nullptr, OpenUserKey(L"Software\\K", KEY_READ));
  EXPECT_NE(nullptr, OpenUserKey(L"Software\\K", KEY_READ));
  EXPECT_EQ(2, Registry().OpenHandleCount());
  EXPECT_EQ("RegOpenKeyExW(HKCU, \"Software\\K\", 0, 0x20019) = 5", Diary()[1]);
}

TEST_F(DoublesTest, AnOrderedFailureThatIsNeverReachedIsTold)
{
  FailCall("RegOpenKeyExW", 1, 5);
  EXPECT_EQ(TakeMisuses(), Lines({"A failure of RegOpenKeyExW was ordered and never reached."}));
}

TEST_F(DoublesTest, RuntimeCallsFailAsForATextThatIsTooLong)
{
  wchar_t text[8] = L"x";
  FailCall("wcscat_s", 1, ERANGE);
  EXPECT_EQ(ERANGE, wcscat_s(text, 8, L"y"));
  EXPECT_STREQ(L"", text);
  EXPECT_EQ(0, wcscat_s(text, 8, L"y"));
  EXPECT_TRUE(Diary().empty());
}

TEST_F(DoublesTest, MallocFailsOnceWhenOrdered)
{
  FailCall("malloc", 2);
  void* blocks[3];
  for (void*& block : blocks)
    block = malloc(8);
  EXPECT_NE(nullptr, blocks[0]);
  EXPECT_EQ(nullptr, blocks[1]);
  EXPECT_NE(nullptr, blocks[2]);
  free(blocks[0]);
  free(blocks[2]);
}

TEST_F(DoublesTest, AProcessIsToldAndInheritsThePath)
{
  Processes().SetVariable("Path", "C:\\A");
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process = {};
  wchar_t commandLine[] = L"/nologo x";
  (void)CreateProcessW(L"C:\\A\\ABCD.exe", commandLine, nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                       &startup, &process);
  EXPECT_EQ(Diary(),
            Lines({"CreateProcessW(\"C:\\A\\ABCD.exe\", \"/nologo x\", null, null, 1, 0x0, "
                   "null, null, cb 104, zeroed) = 1"}));
  ASSERT_EQ(1u, Processes().Started().size());
  EXPECT_EQ("C:\\A", Processes().Started()[0].path);
}

TEST_F(DoublesTest, AProcessOfAStructureThatIsNotZeroedIsTold)
{
  STARTUPINFOW startup = {};
  PROCESS_INFORMATION process = {};
  process.dwThreadId = 1;
  FailCall("CreateProcessW", 1, ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(FALSE, CreateProcessW(L"x", nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                  &startup, &process));
  EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), GetLastError());
  EXPECT_EQ(Diary(), Lines({"CreateProcessW(\"x\", null, null, null, 0, 0x0, null, null, "
                            "cb 0, not zeroed) = 0"}));
  EXPECT_TRUE(Processes().Started().empty());
}

TEST_F(DoublesTest, TheEndOfTheProcessEndsIt)
{
  EXPECT_EXIT((void)TerminateProcess(GetCurrentProcess(), 0xC0000417), testing::ExitedWithCode(3),
              "TerminateProcess 0xC0000417");
}

TEST_F(DoublesTest, TheEnvironmentAndPathsAreTold)
{
  Processes().SetLongPath("c:\\x", "c:\\long");
  wchar_t text[16];
  (void)SetEnvironmentVariableW(L"PATH", L"x");
  (void)GetEnvironmentVariableW(L"PATH", text, 16);
  (void)GetLongPathNameW(L"C:\\X", text, 16);
  EXPECT_EQ(Diary(), Lines({"SetEnvironmentVariableW(\"PATH\", \"x\") = 1",
                            "GetEnvironmentVariableW(\"PATH\", 16) = 1",
                            "GetLongPathNameW(\"C:\\X\", 16) = 7"}));
}

TEST_F(DoublesTest, TheProgramsFileAndItsHandleAreTold)
{
  char path[260];
  (void)GetModuleFileNameExA(GetCurrentProcess(), nullptr, path, 260);
  (void)CloseHandle(GetCurrentProcess());
  EXPECT_EQ(DiaryOf({"GetModuleFileNameExA", "CloseHandle"}),
            Lines({"GetModuleFileNameExA(current process, null, 260) = 36",
                   "CloseHandle(current process) = 1"}));
}

TEST_F(DoublesTest, FoldersAndProductsAreTold)
{
  wchar_t wide[260];
  char narrow[260];
  ShellFolders().RemoveFolder(44);
  Installer().AddProduct("{CODE}");
  (void)SHGetSpecialFolderPathW(nullptr, wide, 43, FALSE);
  (void)SHGetSpecialFolderPathA(nullptr, narrow, 44, FALSE);
  (void)MsiReinstallProductW(L"{CODE}", 0x100);
  EXPECT_EQ(Diary(), Lines({"SHGetSpecialFolderPathW(null, 43, 0) = 1",
                            "SHGetSpecialFolderPathA(null, 44, 0) = 0",
                            "MsiReinstallProductW(\"{CODE}\", 0x100) = 0"}));
  EXPECT_EQ("C:\\Program Files\\Common Files", Utf8(wide));
}

TEST_F(DoublesTest, AFolderThatWasNotPreparedEndsTheProgram)
{
  wchar_t path[260];
  EXPECT_DEATH((void)SHGetSpecialFolderPathW(nullptr, path, 5, FALSE),
               "Not prepared by the test: SHGetSpecialFolderPathW was asked for folder 5");
}

TEST_F(DoublesTest, AVersionIsReadFromItsBlock)
{
  Versions().SetFileVersion("C:\\a.arx", "18.1");
  char block[100];
  void* value = nullptr;
  UINT length = 0;
  ASSERT_EQ(100u, GetFileVersionInfoSizeA("c:\\A.arx", nullptr));
  (void)GetFileVersionInfoA("c:\\A.arx", 0, 100, block);
  (void)VerQueryValueA(block, "\\StringFileInfo\\040904b0\\FileVersion", &value, &length);
  EXPECT_STREQ("18.1", static_cast<char*>(value));
  EXPECT_EQ(5u, length);
  EXPECT_EQ(Diary(), Lines({"GetFileVersionInfoSizeA(\"c:\\A.arx\") = 100",
                            "GetFileVersionInfoA(\"c:\\A.arx\", 0, 100) = 1",
                            "VerQueryValueA(\"\\StringFileInfo\\040904b0\\FileVersion\") = 1"}));
}

TEST_F(DoublesTest, ABlockWithoutTheTextGivesNone)
{
  Versions().SetWithoutFileVersion("a");
  char block[100];
  void* value = nullptr;
  UINT length = 0;
  (void)GetFileVersionInfoA("a", 0, GetFileVersionInfoSizeA("a", nullptr), block);
  EXPECT_EQ(FALSE,
            VerQueryValueA(block, "\\StringFileInfo\\040904b0\\FileVersion", &value, &length));
  EXPECT_EQ(nullptr, value);
}

TEST_F(DoublesTest, ConversionsAndDebugTextsAreTold)
{
  wchar_t text[8];
  (void)MultiByteToWideChar(CP_ACP, 0,
                            "\xC4"
                            "bc",
                            -1, text, 8);
  OutputDebugStringW(L"\nText");
  EXPECT_EQ(Diary(), Lines({"MultiByteToWideChar(0, 0x0, \"Äbc\", -1, 8) = 4",
                            "OutputDebugStringW(\"\nText\")"}));
  EXPECT_EQ(DebugTexts(), Lines({"\nText"}));
}

TEST_F(DoublesTest, TextsGoThereAndBack)
{
  for (const char* text : {"", "abc", "Äß", "€", "\U0001F600"}) {
    EXPECT_EQ(text, Utf8(WideText(text).c_str()));
    EXPECT_EQ(text, RegistryValue({true, REG_SZ, TextBytes(text)}).Text());
  }
  EXPECT_EQ("\xC4\x80?", AnsiFromUtf8("Ä€Ω"));
}
