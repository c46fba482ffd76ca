#include "launcher/LauncherMain.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/OdbcDouble.h"
#include "tests/doubles/ProcessDouble.h"
#include "tests/doubles/Text.h"
#include "tests/unit/launcher/LaunchMachine.h"
#include "tests/unit/update/LeftToTheEnd.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class LaunchSequence : public LaunchMachine
{
protected:
  // An ordinary host, 64-bit of release 2.
  static void InstallUsualHost()
  {
    InstallHost("R17.1", true);
    SetBinPath(RegistryView::Native, "C:\\Forge2010");
  }

  static void ExpectNothingOfTheAddOnWritten()
  {
    EXPECT_FALSE(Registry().HasKey(HKEY_CURRENT_USER, RegistryView::Native, AddOnKey));
    EXPECT_EQ(DiaryOf({"RegSetValueExW", "FindFirstFileW", "SQLAllocHandle"}), Lines());
    EXPECT_TRUE(Processes().Started().empty());
  }

  // The calls behind the last one of a function that the run makes early.
  static Lines CallsBehind(const std::string& lastLine)
  {
    Lines behind;
    for (const std::string& line : Diary()) {
      behind.push_back(line);
      if (line == lastLine)
        behind.clear();
    }
    return behind;
  }
};

using LaunchSequenceDeathTest = LaunchSequence;

class HostStart : public LaunchMachine
{
};

struct SuffixRow
{
  HostRelease release;
  const char* suffix32;
  const char* suffix64;
};

const SuffixRow Suffixes[] = {{0, "6x86.arx", "6x86.arx"},
                              {1, "7x86.arx", "7x86.arx"},
                              {2, "8x86.arx", "8x64.arx"},
                              {3, "9x86.arx", "9x64.arx"},
                              {-1, "", ""},
                              {4, "", ""},
                              {-2, "", ""},
                              {1000000, "", ""}};

}  // namespace

TEST(LoaderSuffix, ReleaseAndWidthChooseTheLoader)
{
  for (const SuffixRow& row : Suffixes) {
    EXPECT_EQ(Utf8(LoaderSuffix(row.release, false)), row.suffix32) << row.release;
    EXPECT_EQ(Utf8(LoaderSuffix(row.release, true)), row.suffix64) << row.release;
  }
}

TEST_F(LaunchSequence, WithoutArgumentsTheHostGetsThePrefixAlone)
{
  for (const char* arguments : {static_cast<const char*>(nullptr), "", " \t\n "}) {
    ResetPlatform();
    InstallUsualHost();
    Launch(arguments);
    EXPECT_EQ(HostCommandLine(), "/nologo ");
  }
}

TEST_F(LaunchSequence, AbsentAndEmptyArgumentsAreNotConverted)
{
  Launch(nullptr);
  Launch("");
  EXPECT_EQ(DiaryOf({"MultiByteToWideChar"}), Lines());
}

TEST_F(LaunchSequence, ArgumentsAreConvertedFromTheAnsiCodePage)
{
  InstallUsualHost();
  Launch("\x80\xE4.dwg");
  EXPECT_EQ(HostCommandLine(), "/nologo \xE2\x82\xAC\xC3\xA4.dwg");
  EXPECT_EQ(Diary().front(),
            "MultiByteToWideChar(0, 0x0, \"\xE2\x82\xAC\xC3\xA4.dwg\", -1, 524288) = 7");
}

TEST_F(LaunchSequence, ArgumentsGoOnButForWhiteSpaceAtTheirStart)
{
  InstallUsualHost();
  Launch(" \t\n \"my  drawing.dwg\" /nologo /p \"x\"  ");
  EXPECT_EQ(HostCommandLine(), "/nologo \"my  drawing.dwg\" /nologo /p \"x\"  ");
}

TEST_F(LaunchSequence, TheSwitchIsTakenOutOfTheHostsCommandLine)
{
  InstallUsualHost();
  Launch("/AcadVer R17.1 drawing.dwg");
  EXPECT_EQ(HostCommandLine().find("/AcadVer"), std::string::npos);
  EXPECT_EQ(HostCommandLine().substr(0, 8), "/nologo ");
}

TEST_F(LaunchSequence, WithoutAHostNothingIsWritten)
{
  SetBinPath(RegistryView::Native, "C:\\Forge2010");
  Processes().SetVariable("PATH", "C:\\Windows");
  Launch("drawing.dwg");
  ExpectNothingOfTheAddOnWritten();
  EXPECT_EQ(DiaryOf({"RegCreateKeyExW", "SetEnvironmentVariableW", "CreateProcessW"}), Lines());
  EXPECT_EQ(Registry().OpenHandleCount(), 0);
}

TEST_F(LaunchSequence, WithoutAHostTheAddOnsOldValuesStay)
{
  Registry().SetText(HKEY_CURRENT_USER, RegistryView::Native, StartupKey, "Kestrelforge", "old");
  Registry().SetText(HKEY_CURRENT_USER, RegistryView::Native, AddOnKey, "ProfileName", "mine");
  Launch("drawing.dwg");
  EXPECT_EQ(StartupValue().Text(), "old");
  EXPECT_EQ(AddOnValue("ProfileName").Text(), "mine");
}

TEST_F(LaunchSequence, AHostWithoutAnInstallFolderOnThisMachineIsNone)
{
  InstallUsualHost();
  Registry().RemoveKey(HKEY_LOCAL_MACHINE, RegistryView::Native, HostKey("R17.1"));
  Launch("");
  ExpectNothingOfTheAddOnWritten();
}

TEST_F(LaunchSequence, AStartupKeyThatCanNotBeMadeEndsTheRun)
{
  InstallUsualHost();
  FailCall("RegCreateKeyExW", 1, ERROR_ACCESS_DENIED);
  Launch("");
  ExpectNothingOfTheAddOnWritten();
  EXPECT_EQ(Diary().back(),
            "RegCreateKeyExW(HKCU, \"SoftWare\\Norvane\\Kestrelforge\\2010\\Startup\", 0, class "
            "\"\", 0, 0x2, null, disposition) = 5");
  EXPECT_EQ(Registry().OpenHandleCount(), 0);
}

TEST_F(LaunchSequence, AStartupKeyThatCanNotBeOpenedEndsTheRun)
{
  InstallUsualHost();
  Registry().SetText(HKEY_CURRENT_USER, RegistryView::Native, StartupKey, "Kestrelforge", "old");
  Registry().DenyAccess(HKEY_CURRENT_USER, RegistryView::Native, StartupKey, KEY_SET_VALUE);
  Launch("");
  EXPECT_EQ(StartupValue().Text(), "old");
  EXPECT_EQ(DiaryOf({"RegSetValueExW", "CreateProcessW"}), Lines());
}

TEST_F(LaunchSequence, AnAddOnKeyThatCanNotBeOpenedEndsTheRunBehindTheStartupValue)
{
  InstallUsualHost();
  Processes().SetVariable("PATH", "C:\\Windows");
  Registry().AddKey(HKEY_CURRENT_USER, RegistryView::Native, AddOnKey);
  Registry().DenyAccess(HKEY_CURRENT_USER, RegistryView::Native, AddOnKey, KEY_SET_VALUE);
  Launch("");
  EXPECT_EQ(StartupValue().Text(), "C:\\Forge2010\\Forge\\BIN\\Kestrelforge8x64.arx");
  EXPECT_FALSE(AddOnValue("ProfileName").exists);
  EXPECT_EQ(Diary().back(),
            "RegOpenKeyExW(HKCU, \"SoftWare\\Norvane\\Kestrelforge\\2010\", 0, 0x2) = 5");
  EXPECT_EQ(Processes().Variable("PATH"), "C:\\Windows");
  EXPECT_TRUE(Processes().Started().empty());
}

TEST_F(LaunchSequence, TheStartupValueNamesTheLoaderOfReleaseAndWidth)
{
  struct Host
  {
    const char* versionKey;
    const char* loader32;
    const char* loader64;
  };
  const Host hosts[] = {{"R16.2", "Kestrelforge7x86.arx", "Kestrelforge7x86.arx"},
                        {"R17.1", "Kestrelforge8x86.arx", "Kestrelforge8x64.arx"},
                        {"R18.0", "Kestrelforge9x86.arx", "Kestrelforge9x64.arx"},
                        {"R19.0", "Kestrelforge", "Kestrelforge"}};
  for (const Host& host : hosts) {
    for (const bool is64Bit : {false, true}) {
      ResetPlatform();
      InstallHost(host.versionKey, is64Bit);
      Launch("");
      EXPECT_EQ(StartupValue().Text(),
                "\\Forge\\BIN\\" + std::string(is64Bit ? host.loader64 : host.loader32));
    }
  }
}

TEST_F(LaunchSequence, AHostOfVersion15GetsThe32BitLoaderInEitherView)
{
  for (const bool is64Bit : {false, true}) {
    ResetPlatform();
    InstallVersion15(is64Bit);
    Launch("");
    EXPECT_EQ(StartupValue().Text(), "\\Forge\\BIN\\Kestrelforge6x86.arx");
    EXPECT_EQ(HostCommandLine(), "/nologo ");
  }
}

TEST_F(LaunchSequence, AHostWithoutAKeyOfThisUserIsStartedUnregistered)
{
  InstallVersion15(false);
  Launch("");
  EXPECT_FALSE(Registry().HasKey(HKEY_CURRENT_USER, RegistryView::Native, "Software\\Autodesk"));
  EXPECT_EQ(HostCommandLine(), "/nologo ");
}

TEST_F(LaunchSequence, ThePathOfTheInstallComesFromTheViewOfTheHostsWidth)
{
  for (const bool is64Bit : {false, true}) {
    ResetPlatform();
    InstallHost("R18.0", is64Bit);
    SetBinPath(RegistryView::Native, "C:\\Forge64");
    SetBinPath(RegistryView::Wow32, "C:\\Forge32");
    Launch("");
    EXPECT_EQ(StartupValue().Text(), is64Bit ? "C:\\Forge64\\Forge\\BIN\\Kestrelforge9x64.arx"
                                             : "C:\\Forge32\\Forge\\BIN\\Kestrelforge9x86.arx");
  }
}

TEST_F(LaunchSequence, AnUnreadableInstallPathDoesNotStopTheRun)
{
  InstallHost("R17.1", true);
  SetBinPath(RegistryView::Wow32, "C:\\Forge32");
  Launch("");
  EXPECT_EQ(StartupValue().Text(), "\\Forge\\BIN\\Kestrelforge8x64.arx");
  EXPECT_EQ(HostCommandLine(), "/nologo ");
}

TEST_F(LaunchSequence, AnUnknownReleaseIsRecordedAndStartedButNotRegistered)
{
  InstallHost("R19.0", true);
  SetBinPath(RegistryView::Native, "C:\\Forge2010");
  Processes().SetVariable("PATH", "C:\\WINDOWS");
  Launch("");
  EXPECT_EQ(StartupValue().Text(), "C:\\Forge2010\\Forge\\BIN\\Kestrelforge");
  EXPECT_EQ(AddOnValue("ProfileName").Text(), "Kestrelforge");
  EXPECT_FALSE(Registry().HasKey(HKEY_CURRENT_USER, RegistryView::Native,
                                 HostKey("R19.0") + "\\Applications"));
  EXPECT_EQ(DiaryOf({"GetModuleFileNameExA"}).size(), 1u);
  EXPECT_EQ(Processes().Variable("PATH"), "c:\\windows;");
  EXPECT_EQ(HostCommandLine(), "/nologo ");
}

TEST_F(LaunchSequence, TheStartupValueIsStoredWithoutATerminatorAndTheProfileWithOne)
{
  InstallUsualHost();
  Launch("");
  EXPECT_EQ(StartupValue().type, REG_SZ);
  EXPECT_EQ(StartupValue().bytes, TextBytes("C:\\Forge2010\\Forge\\BIN\\Kestrelforge8x64.arx"));
  EXPECT_EQ(AddOnValue("ProfileName").type, REG_SZ);
  EXPECT_EQ(AddOnValue("ProfileName").bytes, TextBytesWithTerminator("Kestrelforge"));
  EXPECT_EQ(AddOnValue("ProfileName").bytes.size(), 26u);
  EXPECT_EQ(AddOnValue("ProfDescription").type, REG_SZ);
  EXPECT_EQ(AddOnValue("ProfDescription").bytes, TextBytesWithTerminator("Kestrelforge Profile"));
  EXPECT_EQ(AddOnValue("ProfDescription").bytes.size(), 42u);
}

TEST_F(LaunchSequence, TheStartupKeyBringsTheAddOnKeyWithIt)
{
  InstallUsualHost();
  ASSERT_FALSE(Registry().HasKey(HKEY_CURRENT_USER, RegistryView::Native, "Software\\Norvane"));
  Launch("");
  EXPECT_EQ(AddOnValue("ProfDescription").Text(), "Kestrelforge Profile");
  EXPECT_EQ(Registry().ValueNames(HKEY_CURRENT_USER, RegistryView::Native, StartupKey),
            Lines{"Kestrelforge"});
  EXPECT_EQ(Registry().ValueNames(HKEY_CURRENT_USER, RegistryView::Native, AddOnKey),
            (Lines{"ProfileName", "ProfDescription"}));
}

TEST_F(LaunchSequence, ASecondRunWritesTheSameThreeValuesAgain)
{
  InstallUsualHost();
  Launch("");
  const RegistryValue loader = StartupValue();
  Registry().SetNumber(HKEY_CURRENT_USER, RegistryView::Native, StartupKey, "Kestrelforge", 7);
  Registry().SetText(HKEY_CURRENT_USER, RegistryView::Native, AddOnKey, "ProfileName", "mine");
  ClearDiary();
  Launch("");
  EXPECT_EQ(DiaryOf({"RegSetValueExW"}).size(), 3u);
  EXPECT_EQ(StartupValue().type, REG_SZ);
  EXPECT_EQ(StartupValue().bytes, loader.bytes);
  EXPECT_EQ(AddOnValue("ProfileName").bytes, TextBytesWithTerminator("Kestrelforge"));
}

TEST_F(LaunchSequence, AValueThatCanNotBeWrittenKeepsItsOldTextAndTheRunGoesOn)
{
  for (int n = 1; n <= 3; ++n) {
    ResetPlatform();
    InstallUsualHost();
    FailCall("RegSetValueExW", n, ERROR_ACCESS_DENIED);
    Launch("");
    EXPECT_EQ(StartupValue().exists, n != 1);
    EXPECT_EQ(AddOnValue("ProfileName").exists, n != 2);
    EXPECT_EQ(AddOnValue("ProfDescription").exists, n != 3);
    EXPECT_EQ(HostCommandLine(), "/nologo ");
  }
}

TEST_F(LaunchSequence, TheStartupKeyAndTheHostsKeyStayOpenAndNoOther)
{
  InstallUsualHost();
  Launch("");
  EXPECT_EQ(
      Registry().OpenKeyPaths(),
      (Lines{"HKCU\\Software\\Norvane\\Kestrelforge\\2010\\Startup", "HKCU\\" + HostKey("R17.1")}));
  EXPECT_EQ(DiaryOf({"CloseHandle"}), Lines{"CloseHandle(current process) = 1"});
}

TEST_F(LaunchSequence, AFailedCloseOfTheAddOnKeyIsNotLookedAt)
{
  InstallUsualHost();
  Registry().AddKey(HKEY_CURRENT_USER, RegistryView::Native,
                    HostKey("R17.1") + "\\Applications\\QuillStartupLoader");
  // Six closes belong to the host, one to the install path.
  FailCall("RegCloseKey", 8, ERROR_INVALID_HANDLE);
  Launch("");
  EXPECT_EQ(Registry().OpenKeyPaths()[1], "HKCU\\" + std::string(AddOnKey));
  EXPECT_EQ(HostCommandLine(), "/nologo ");
}

TEST_F(LaunchSequence, AHostDemandedByItsKeyIsRegisteredBesideThatKey)
{
  InstallUsualHost();
  Launch("/AcadVer R17.1\\ABCD-0001 drawing.dwg");
  EXPECT_TRUE(Registry().HasKey(HKEY_CURRENT_USER, RegistryView::Native,
                                HostKey("R17.1") + "Applications\\QuillStartupLoader"));
  EXPECT_FALSE(Registry().HasKey(HKEY_CURRENT_USER, RegistryView::Native,
                                 HostKey("R17.1") + "\\Applications"));
  EXPECT_EQ(Processes().Started().size(), 1u);
}

TEST_F(LaunchSequence, WhatGoesWrongInRegistrationAndRepairDoesNotStopTheRun)
{
  InstallUsualHost();
  Registry().DenyAccess(HKEY_CURRENT_USER, RegistryView::Native, HostKey("R17.1"), WRITE_DAC);
  FailCall("SHGetSpecialFolderPathA", 1, ERROR_FILE_NOT_FOUND);
  FailCall("GetEnvironmentVariableW", 1, ERROR_NOT_ENOUGH_MEMORY);
  Launch("");
  EXPECT_EQ(DiaryOf({"SHGetSpecialFolderPathW", "SetEnvironmentVariableW"}), Lines());
  EXPECT_EQ(HostCommandLine(), "/nologo ");
}

TEST_F(LaunchSequence, TheDatabasesAreUpdatedBehindTheRepairAndBeforeThePath)
{
  InstallUsualHost();
  Processes().SetVariable("PATH", "C:\\WINDOWS");
  Launch("");
  const Lines lines = DiaryOf({"GetModuleFileNameExA", "FindFirstFileW", "SQLDriverConnectW",
                               "GetEnvironmentVariableW", "CreateProcessW"});
  ASSERT_EQ(lines.size(), 1u + 2u + 17u + 2u);
  EXPECT_TRUE(lines[0].starts_with("GetModuleFileNameExA("));
  EXPECT_TRUE(lines[1].starts_with("FindFirstFileW("));
  EXPECT_TRUE(lines[19].starts_with("SQLDriverConnectW("));
  EXPECT_TRUE(lines[20].starts_with("GetEnvironmentVariableW("));
}

TEST_F(LaunchSequence, AnUpdateThatBreaksOffDoesNotStopTheRun)
{
  InstallUsualHost();
  Processes().SetVariable("PATH", "C:\\WINDOWS");
  FailOdbcCall("SQLAllocHandle throwing", 1, 7);
  {
    const LeftToTheEnd whatWasOpened;
    Launch("");
  }
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "\nCritical Error!!"}));
  EXPECT_EQ(Processes().Variable("PATH"), "c:\\windows;");
  EXPECT_EQ(HostCommandLine(), "/nologo ");
}

TEST_F(LaunchSequence, AnUpdateThatBreaksOffInItsMiddleClosesTheDatabasesAndDoesNotStopTheRun)
{
  InstallUsualHost();
  const std::string driver = "DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=";
  Files().Put("C:\\DatabaseUpdate\\a.mdb", "");
  Odbc().Database(driver + "\\DatabaseUpdate\\a.mdb").Table("KFVersion", {{"MajorNumber", "2"}});
  Odbc().Database(driver + "\\Kernel\\Data\\model.mdb").Table("KFVersion", {{"MajorNumber", "1"}});
  // The patch's four tables and the database's three are read before the first statement is sent.
  FailOdbcCall("SQLExecDirectW throwing", 4 + 3 + 1, 7);
  Launch("");
  EXPECT_EQ(DebugTexts().back(), "\nCritical Error!!");
  EXPECT_EQ(DiaryOf({"SQLExecDirectW"}).size(), 8u);
  EXPECT_EQ(DiaryOf({"SQLDisconnect"}).size(), 18u);
  EXPECT_EQ(Odbc().OpenEnvironments(), 0);
  EXPECT_EQ(HostCommandLine(), "/nologo ");
}

TEST_F(LaunchSequence, TheHostInheritsThePathAndTheRepairDoesNotSeeIt)
{
  InstallUsualHost();
  Processes().SetVariable("PATH", "C:\\WINDOWS");
  Launch("");
  ASSERT_EQ(Processes().Started().size(), 1u);
  EXPECT_EQ(Processes().Started()[0].path, "c:\\windows;");
  EXPECT_EQ(CallsBehind("GetEnvironmentVariableW(\"PATH\", 32768) = 10").size(), 3u);
}

TEST_F(LaunchSequence, AFailedStartOfTheHostIsNotReported)
{
  InstallUsualHost();
  FailCall("CreateProcessW", 1, ERROR_FILE_NOT_FOUND);
  Launch("");
  EXPECT_TRUE(Processes().Started().empty());
  EXPECT_TRUE(Diary().back().starts_with("CreateProcessW("));
}

TEST_F(LaunchSequence, OnlyTheArgumentsAreLookedAt)
{
  InstallUsualHost();
  const HINSTANCE instance = reinterpret_cast<HINSTANCE>(static_cast<uintptr_t>(0x10));
  EXPECT_EQ(LauncherMain(instance, instance, "a.dwg", -1), 0);
  EXPECT_EQ(HostCommandLine(), "/nologo a.dwg");
}

TEST_F(LaunchSequenceDeathTest, AnOverlongElementOfPathEndsTheRun)
{
  InstallUsualHost();
  Processes().SetVariable("PATH", std::string(2048, 'x'));
  EXPECT_EXIT(Launch(""), testing::ExitedWithCode(3), "^TerminateProcess 0xC0000417\n$");
}

TEST_F(HostStart, TheHostIsStartedWithItsOwnArguments)
{
  Processes().SetVariable("PATH", "C:\\Windows");
  StartHost(L"C:\\My Host\\ABCD.exe", L"/nologo \"a b.dwg\" ");
  static_assert(sizeof(STARTUPINFOW) == 104);
  EXPECT_EQ(Diary(), Lines{"CreateProcessW(\"C:\\My Host\\ABCD.exe\", \"/nologo \"a b.dwg\" \", "
                           "null, null, 1, 0x0, null, null, cb 104, zeroed) = 1"});
  ASSERT_EQ(Processes().Started().size(), 1u);
  EXPECT_TRUE(Processes().Started()[0].inheritsHandles);
  EXPECT_EQ(Processes().Started()[0].path, "C:\\Windows");
}

TEST_F(HostStart, AnEmptyCommandLineIsPassedAsItStands)
{
  StartHost(L"C:\\Host\\ABCD.exe", L"");
  EXPECT_EQ(HostCommandLine(), "");
}

TEST_F(HostStart, TheHandlesOfTheHostAreNotClosed)
{
  StartHost(L"C:\\Host\\ABCD.exe", L"/nologo ");
  EXPECT_EQ(DiaryOf({"CloseHandle"}), Lines());
}

TEST_F(HostStart, AFailedStartIsPassedOver)
{
  FailCall("CreateProcessW", 1, ERROR_ACCESS_DENIED);
  StartHost(L"C:\\Host\\ABCD.exe", L"/nologo ");
  EXPECT_EQ(Diary().size(), 1u);
}
