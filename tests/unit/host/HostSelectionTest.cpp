#include "host/HostSelection.h"

#include "tests/unit/host/HostMachine.h"

#include <errno.h>

#include <iterator>

namespace {

const std::string UsualKeyPath = "Software\\Autodesk\\AutoCAD\\R17.1\\ABCD-0001\\";

class HostSelection : public HostMachine
{
protected:
  // Drawing files belong to version 15, and that is installed as a 32-bit host.
  void SetVersion15Host(const std::string& version)
  {
    SetDrawingClass("AutoCAD.Drawing.15");
    SetCurrentHost(MachineHosts(), "AutoCAD", version, "WXYZ-0001");
    Install(RegistryView::Wow32, "AutoCAD\\" + version + "\\WXYZ-0001", "C:\\Old");
  }
};

}  // namespace

TEST_F(HostSelection, TheRecordedProductVersionAndSubkeyLeadToTheHost)
{
  SetUsualHost();
  const SelectedHost host = Select("plan.dwg");
  EXPECT_EQ(host.release, 2);
  EXPECT_EQ(host.keyPath, UsualKeyPath);
  EXPECT_EQ(host.executable, "C:\\Host\\ABCD.exe");
  EXPECT_TRUE(host.is64Bit);
  EXPECT_EQ(host.commandLine, "/nologo plan.dwg");
}

TEST_F(HostSelection, TheOrdinaryRouteMakesTheseCallsInThisOrder)
{
  SetUsualHost();
  (void)Select("");
  const Lines expected = {
      R"(RegOpenKeyExW(HKCR, ".dwg", 0, 0x1) = 2)",
      R"(RegCloseKey(null) = 6)",
      R"(RegOpenKeyExW(HKCU, "Software\Autodesk\", 0, 0x1) = 0 #1)",
      R"(RegQueryValueExW(#1, "CurProd", type null, 500) = 0)",
      R"(RegCloseKey(#1) = 0)",
      R"(RegOpenKeyExW(HKCU, "Software\Autodesk\AutoCAD\", 0, 0x1) = 0 #2)",
      R"(RegQueryValueExW(#2, "CurVer", type null, 500) = 0)",
      R"(RegOpenKeyExW(#2, "R17.1\", 0, 0x1) = 0 #3)",
      R"(RegCloseKey(#2) = 0)",
      R"(RegQueryValueExW(#3, "CurVer", type null, 500) = 0)",
      R"(RegOpenKeyExW(#3, "ABCD-0001\", 0, 0x1) = 0 #4)",
      R"(RegCloseKey(#3) = 0)",
      R"(RegCloseKey(#4) = 0)",
      R"(RegOpenKeyExW(HKLM, "Software\Autodesk\AutoCAD\R17.1\ABCD-0001\", 0, 0x1) = 0 #5)",
      R"(RegQueryValueExW(#5, "AcadLocation", type null, 500) = 0)",
      R"(RegCloseKey(#5) = 0)"};
  EXPECT_EQ(Diary(), expected);
}

TEST_F(HostSelection, TheRouteOfVersion15MakesTheseCallsInThisOrder)
{
  SetVersion15Host("R15.0");
  (void)Select("");
  const Lines expected = {
      R"(RegOpenKeyExW(HKCR, ".dwg", 0, 0x1) = 0 #1)",
      R"(RegQueryValueExW(#1, "", type null, 8192) = 0)",
      R"(RegCloseKey(#1) = 0)",
      R"(RegOpenKeyExW(HKLM, "Software\Autodesk\", 0, 0x201) = 0 #2)",
      R"(RegQueryValueExW(#2, "CurProd", type null, 500) = 0)",
      R"(RegCloseKey(#2) = 0)",
      R"(RegOpenKeyExW(HKLM, "Software\Autodesk\AutoCAD\", 0, 0x201) = 0 #3)",
      R"(RegQueryValueExW(#3, "CurVer", type null, 500) = 0)",
      R"(RegOpenKeyExW(#3, "R15.0\", 0, 0x1) = 0 #4)",
      R"(RegCloseKey(#3) = 0)",
      R"(RegQueryValueExW(#4, "CurVer", type null, 500) = 0)",
      R"(RegOpenKeyExW(#4, "WXYZ-0001\", 0, 0x1) = 0 #5)",
      R"(RegCloseKey(#4) = 0)",
      R"(RegCloseKey(#5) = 0)",
      R"(RegOpenKeyExW(HKLM, "Software\Autodesk\AutoCAD\R15.0\WXYZ-0001\", 0, 0x1) = 2)",
      R"(RegOpenKeyExW(HKLM, "Software\Autodesk\AutoCAD\R15.0\WXYZ-0001\", 0, 0x201) = 0 #6)",
      R"(RegQueryValueExW(#6, "AcadLocation", type null, 500) = 0)",
      R"(RegCloseKey(#6) = 0)"};
  EXPECT_EQ(Diary(), expected);
}

TEST_F(HostSelection, DrawingsOfVersion15TakeThe32BitHostOfTheMachineAsRelease0)
{
  SetUsualHost();
  SetVersion15Host("R15.0");
  const SelectedHost host = Select("plan.dwg");
  EXPECT_EQ(host.release, 0);
  EXPECT_EQ(host.keyPath, "Software\\Autodesk\\AutoCAD\\R15.0\\WXYZ-0001\\");
  EXPECT_EQ(host.executable, "C:\\Old\\WXYZ.exe");
  EXPECT_FALSE(host.is64Bit);
  EXPECT_EQ(host.commandLine, "/nologo plan.dwg");
}

TEST_F(HostSelection, TheRouteOfVersion15IsRelease0WhateverTheCurrentVersionSays)
{
  for (const char* version : {"R16.2", "R17.1", "R18.0", "R99"}) {
    SetVersion15Host(version);
    const SelectedHost host = Select("");
    EXPECT_EQ(host.release, 0) << version;
    EXPECT_EQ(host.executable, "C:\\Old\\WXYZ.exe") << version;
  }
}

TEST_F(HostSelection, Version15IsNotLookedUpInTheNativeViewOfTheMachine)
{
  SetDrawingClass("AutoCAD.Drawing.15");
  SetCurrentHost({HKEY_LOCAL_MACHINE, RegistryView::Native}, "AutoCAD", "R15.0", "WXYZ-0001");
  Install(RegistryView::Native, "AutoCAD\\R15.0\\WXYZ-0001", "C:\\Old");
  EXPECT_EQ(Select("").executable, "");
}

TEST_F(HostSelection, DrawingsOfAnyOtherNumberTakeTheOrdinaryRoute)
{
  SetVersion15Host("R15.0");
  SetUsualHost();
  for (const char* className : {"AutoCAD.Drawing.16", "AutoCAD.Drawing.17", "AutoCAD.Drawing.14",
                                "AutoCAD.Drawing.15x", "AutoCAD.Drawing.1", "Other", ""}) {
    SetDrawingClass(className);
    const SelectedHost host = Select("");
    EXPECT_EQ(host.release, 2) << className;
    EXPECT_EQ(host.executable, "C:\\Host\\ABCD.exe") << className;
  }
}

TEST_F(HostSelection, WithoutADrawingAssociationTheOrdinaryRouteIsTaken)
{
  SetVersion15Host("R15.0");
  SetUsualHost();
  Registry().RemoveValue(HKEY_CLASSES_ROOT, RegistryView::Native, ".dwg", "");
  EXPECT_EQ(Select("").keyPath, UsualKeyPath);
  Registry().RemoveKey(HKEY_CLASSES_ROOT, RegistryView::Native, ".dwg");
  EXPECT_EQ(Select("").keyPath, UsualKeyPath);
}

TEST_F(HostSelection, TheOrdinaryRouteKnowsNoHostsOfTheMachine)
{
  SetCurrentHost(MachineHosts(), "AutoCAD", "R17.1", "ABCD-0001");
  SetCurrentHost({HKEY_LOCAL_MACHINE, RegistryView::Native}, "AutoCAD", "R17.1", "ABCD-0001");
  const SelectedHost host = Select("");
  EXPECT_EQ(host.release, 3);
  EXPECT_EQ(host.executable, "");
}

TEST_F(HostSelection, ATagInTheCurrentVersionGivesTheRelease)
{
  const struct
  {
    const char* version;
    HostRelease release;
  } rows[] = {{"R16", 1},    {"R9", 1},    {"R10", 1},  {"R11", 1},     {"R17", 2},
              {"R12", 2},    {"R18", 3},   {"R13", 3},  {"R16.2", 1},   {"R17.1", 2},
              {"R18.0", 3},  {"R9.01", 1}, {"R130", 3}, {"ACR17-x", 2}, {"R14", -1},
              {"R15.0", -1}, {"R19", -1},  {"R1", -1},  {"r17.1", -1},  {"R99", 1},
              {"17.1", -1}};
  for (const auto& row : rows) {
    SetCurrentHost(UserHosts(), "AutoCAD", row.version, "ABCD-0001");
    EXPECT_EQ(Select("").release, row.release) << row.version;
    Registry().RemoveKey(HKEY_CURRENT_USER, RegistryView::Native, "Software\\Autodesk");
  }
}

TEST_F(HostSelection, OfTwoTagsTheOneThatIsTestedFirstGivesTheRelease)
{
  const struct
  {
    const char* tag;
    HostRelease release;
  } tags[] = {{"R16", 1}, {"R9", 1},  {"R10", 1}, {"R11", 1},
              {"R17", 2}, {"R12", 2}, {"R18", 3}, {"R13", 3}};
  for (size_t first = 0; first < std::size(tags); ++first) {
    for (size_t second = first + 1; second < std::size(tags); ++second) {
      const std::string version = std::string(tags[second].tag) + tags[first].tag;
      SetCurrentHost(UserHosts(), "AutoCAD", version, "ABCD-0001");
      EXPECT_EQ(Select("").release, tags[first].release) << version;
    }
  }
}

TEST_F(HostSelection, AVersionWithoutTagIsNotServedAndItsHostIsFoundAllTheSame)
{
  SetCurrentHost(UserHosts(), "AutoCAD", "R20", "ABCD-0001");
  Install(RegistryView::Native, "AutoCAD\\R20\\ABCD-0001", "C:\\Host");
  const SelectedHost host = Select("");
  EXPECT_EQ(host.release, HostReleaseUnknown);
  EXPECT_EQ(host.executable, "C:\\Host\\ABCD.exe");
}

TEST_F(HostSelection, AHostInThe32BitViewAloneIsA32BitHost)
{
  SetCurrentHost(UserHosts(), "AutoCAD", "R17.1", "ABCD-0001");
  Install(RegistryView::Wow32, "AutoCAD\\R17.1\\ABCD-0001", "C:\\Host32");
  const SelectedHost host = Select("");
  EXPECT_EQ(host.executable, "C:\\Host32\\ABCD.exe");
  EXPECT_FALSE(host.is64Bit);
}

TEST_F(HostSelection, TheFileNameIsTheSubkeyUpToItsFirstDashOrFourCharactersOfItsPath)
{
  const struct
  {
    const char* subkey;
    const char* executable;
  } rows[] = {{"ABCD-0001", "C:\\Host\\ABCD.exe"},  {"AB-1", "C:\\Host\\AB.exe"},
              {"ABCDEF-1", "C:\\Host\\ABCDEF.exe"}, {"A-B-C", "C:\\Host\\A.exe"},
              {"-0001", "C:\\Host\\.exe"},          {"ABCDEFG", "C:\\Host\\ABCD.exe"},
              {"ABCD", "C:\\Host\\ABCD.exe"},       {"ABC", "C:\\Host\\ABC\\.exe"}};
  for (const auto& row : rows) {
    SetCurrentHost(UserHosts(), "AutoCAD", "R17.1", row.subkey);
    Install(RegistryView::Native, std::string("AutoCAD\\R17.1\\") + row.subkey, "C:\\Host");
    EXPECT_EQ(Select("").executable, row.executable) << row.subkey;
  }
}

// Searches that find no host.

TEST_F(HostSelection, WithoutAProductKeyThereIsNoHostAndTheReleaseIsThatOfTheRoute)
{
  const SelectedHost host = Select(" x");
  EXPECT_EQ(host.release, 3);
  EXPECT_EQ(host.executable, "");
  EXPECT_EQ(host.keyPath, "");
  EXPECT_EQ(host.commandLine, "/nologo x");
  SetDrawingClass("AutoCAD.Drawing.15");
  const SelectedHost host15 = Select(" x");
  EXPECT_EQ(host15.release, 0);
  EXPECT_EQ(host15.executable, "");
  EXPECT_EQ(host15.commandLine, "/nologo x");
}

TEST_F(HostSelection, AVersionSubkeyThatIsMissingEndsTheSearchWithTheReleaseOfItsTag)
{
  SetUsualHost();
  Registry().RemoveKey(HKEY_CURRENT_USER, RegistryView::Native,
                       "Software\\Autodesk\\AutoCAD\\R17.1");
  const SelectedHost host = Select(" x");
  EXPECT_EQ(host.release, 2);
  EXPECT_EQ(host.executable, "");
  EXPECT_EQ(host.keyPath, "Software\\Autodesk\\AutoCAD\\");
  EXPECT_EQ(host.commandLine, "/nologo x");
  EXPECT_EQ(Diary().back(), "RegCloseKey(#2) = 0");
}

TEST_F(HostSelection, AProductSubkeyThatIsMissingEndsTheSearchWithTheReleaseOfTheTag)
{
  SetUsualHost();
  Registry().RemoveKey(HKEY_CURRENT_USER, RegistryView::Native,
                       "Software\\Autodesk\\AutoCAD\\R17.1\\ABCD-0001");
  const SelectedHost host = Select(" x");
  EXPECT_EQ(host.release, 2);
  EXPECT_EQ(host.executable, "");
  EXPECT_EQ(host.keyPath, "Software\\Autodesk\\AutoCAD\\R17.1\\");
  EXPECT_EQ(host.commandLine, "/nologo x");
  EXPECT_EQ(Diary().back(), "RegCloseKey(#3) = 0");
}

TEST_F(HostSelection, AHostKeyInNeitherViewOfTheMachineLeavesTheExecutableEmpty)
{
  SetCurrentHost(UserHosts(), "AutoCAD", "R17.1", "ABCD-0001");
  const SelectedHost host = Select(" x");
  EXPECT_EQ(host.release, 2);
  EXPECT_EQ(host.executable, "");
  EXPECT_EQ(host.keyPath, UsualKeyPath);
  EXPECT_FALSE(host.is64Bit);
  EXPECT_EQ(host.commandLine, "/nologo x");
}

TEST_F(HostSelection, OnTheRouteOfVersion15EverySearchThatFailsGivesRelease0)
{
  for (const char* missing : {"AutoCAD\\R18.0\\WXYZ-0001", "AutoCAD\\R18.0", "AutoCAD"}) {
    SetVersion15Host("R18.0");
    Registry().RemoveKey(HKEY_LOCAL_MACHINE, RegistryView::Wow32,
                         std::string("Software\\Autodesk\\") + missing);
    const SelectedHost host = Select("");
    EXPECT_EQ(host.release, 0) << missing;
    EXPECT_EQ(host.executable, "") << missing;
  }
}

TEST_F(HostSelection, Version15WithItsHostKeyInNeitherViewGivesRelease0)
{
  SetVersion15Host("R18.0");
  // The record of the current host and that of its folder are one key here.
  FailCall("RegOpenKeyExW", 6, ERROR_FILE_NOT_FOUND);
  FailCall("RegOpenKeyExW", 7, ERROR_FILE_NOT_FOUND);
  const SelectedHost host = Select("");
  EXPECT_EQ(host.release, 0);
  EXPECT_EQ(host.executable, "");
}

TEST_F(HostSelection, ACurrentVersionThatIsNotRecordedIsFoundOutByTheOpenOfAnEmptyName)
{
  SetUsualHost();
  Registry().RemoveValue(HKEY_CURRENT_USER, RegistryView::Native, "Software\\Autodesk\\AutoCAD",
                         "CurVer");
  const SelectedHost host = Select("");
  EXPECT_EQ(host.release, HostReleaseUnknown);
  EXPECT_EQ(host.executable, "");
  EXPECT_EQ(DiaryOf({"RegOpenKeyExW"}).back(), R"(RegOpenKeyExW(#2, "\", 0, 0x1) = 161)");
}

TEST_F(HostSelection, ACurrentSubkeyThatIsNotRecordedIsFoundOutByTheOpenOfAnEmptyName)
{
  SetUsualHost();
  Registry().RemoveValue(HKEY_CURRENT_USER, RegistryView::Native,
                         "Software\\Autodesk\\AutoCAD\\R17.1", "CurVer");
  const SelectedHost host = Select("");
  EXPECT_EQ(host.release, 2);
  EXPECT_EQ(host.executable, "");
  EXPECT_EQ(DiaryOf({"RegOpenKeyExW"}).back(), R"(RegOpenKeyExW(#3, "\", 0, 0x1) = 161)");
}

TEST_F(HostSelection, AQueryOfTheCurrentVersionThatFailsReadsAsEmpty)
{
  SetUsualHost();
  FailCall("RegQueryValueExW", 2, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Select("").release, HostReleaseUnknown);
  EXPECT_EQ(DiaryOf({"RegOpenKeyExW"}).back(), R"(RegOpenKeyExW(#2, "\", 0, 0x1) = 161)");
}

TEST_F(HostSelection, WithoutACurrentProductTheFirstKeyThatNamesTheHostIsTaken)
{
  SetUsualHost();
  Registry().RemoveValue(HKEY_CURRENT_USER, RegistryView::Native, "Software\\Autodesk", "CurProd");
  const SelectedHost host = Select("");
  EXPECT_EQ(host.keyPath, UsualKeyPath);
  EXPECT_EQ(host.executable, "C:\\Host\\ABCD.exe");
}

TEST_F(HostSelection, AnExecutableFromBeforeIsForgottenWhenNoHostIsFound)
{
  for (const char* arguments : {"", "/AcadVer", "/AcadVer 17"}) {
    QulString commandLine = Qul(arguments);
    QulString keyPath;
    QulString executable = L"C:\\Before.exe";
    bool is64Bit = false;
    (void)SelectHost(commandLine, keyPath, executable, is64Bit);
    EXPECT_EQ(Utf8(executable), "") << arguments;
  }
}

TEST_F(HostSelection, FailedClosesChangeNothing)
{
  SetUsualHost();
  for (int close = 1; close <= 6; ++close)
    FailCall("RegCloseKey", close, ERROR_INVALID_HANDLE);
  const SelectedHost host = Select("x");
  EXPECT_EQ(host.release, 2);
  EXPECT_EQ(host.executable, "C:\\Host\\ABCD.exe");
  keysLeftOpen = 5;
}

// Registry data that is out of the ordinary.

TEST_F(HostSelection, ValuesWithoutTerminatorAreReadToTheirEnds)
{
  SetUsualHost();
  SetRaw(UserHosts(), "", "CurProd", TextBytes("AutoCAD"));
  SetRaw(UserHosts(), "AutoCAD", "CurVer", TextBytes("R17.1"));
  SetRaw(UserHosts(), "AutoCAD\\R17.1", "CurVer", TextBytes("ABCD-0001"));
  SetRaw({HKEY_LOCAL_MACHINE, RegistryView::Native}, "AutoCAD\\R17.1\\ABCD-0001", "AcadLocation",
         TextBytes("C:\\Host"));
  const SelectedHost host = Select("");
  EXPECT_EQ(host.keyPath, UsualKeyPath);
  EXPECT_EQ(host.executable, "C:\\Host\\ABCD.exe");
}

TEST_F(HostSelection, NamesThatFillTheirBuffersWithoutTerminatorAreReadWhole)
{
  const std::string version = "R17" + std::string(247, 'v');
  const std::string subkey = "ABCD-" + std::string(245, 's');
  SetCurrentHost(UserHosts(), "AutoCAD", version, subkey);
  SetRaw(UserHosts(), "AutoCAD", "CurVer", TextBytes(version));
  SetRaw(UserHosts(), "AutoCAD\\" + version, "CurVer", TextBytes(subkey));
  const SelectedHost host = Select("");
  EXPECT_EQ(host.release, 2);
  EXPECT_EQ(host.keyPath, "Software\\Autodesk\\AutoCAD\\" + version + "\\" + subkey + "\\");
}

TEST_F(HostSelection, AVersionNameLongerThanItsBufferReadsAsEmpty)
{
  const std::string version = "R17" + std::string(248, 'v');
  SetCurrentHost(UserHosts(), "AutoCAD", version, "ABCD-0001");
  SetRaw(UserHosts(), "AutoCAD", "CurVer", TextBytes(version));
  const SelectedHost host = Select("");
  EXPECT_EQ(host.release, HostReleaseUnknown);
  EXPECT_EQ(host.executable, "");
}

TEST_F(HostSelection, ASubkeyNameLongerThanItsBufferReadsAsEmpty)
{
  const std::string subkey(60000, 's');
  SetCurrentHost(UserHosts(), "AutoCAD", "R17.1", subkey);
  const SelectedHost host = Select("");
  EXPECT_EQ(host.keyPath, "Software\\Autodesk\\AutoCAD\\R17.1\\");
  EXPECT_EQ(host.executable, "");
}

// The host's command line.

TEST_F(HostSelection, BlanksTabsAndNewlinesAtTheStartAreGoneBehindThePrefix)
{
  const struct
  {
    const char* arguments;
    const char* commandLine;
  } rows[] = {{"", "/nologo "},
              {"plan.dwg", "/nologo plan.dwg"},
              {" \t\n plan.dwg", "/nologo plan.dwg"},
              {" \t ", "/nologo "},
              {"a  b\tc \t", "/nologo a  b\tc \t"},
              {"\r x", "/nologo \r x"},
              {"/nologo x", "/nologo /nologo x"},
              {"\"C:\\My Plans\\\xC3\x9C.dwg\" /b", "/nologo \"C:\\My Plans\\\xC3\x9C.dwg\" /b"}};
  for (const auto& row : rows)
    EXPECT_EQ(Select(row.arguments).commandLine, row.commandLine) << row.arguments;
}

TEST_F(HostSelection, ASwitchInSmallLettersIsNoneAndGoesToTheHost)
{
  SetUsualHost();
  const SelectedHost host = Select("/acadver 18 x");
  EXPECT_EQ(host.commandLine, "/nologo /acadver 18 x");
  EXPECT_EQ(host.release, 2);
  EXPECT_EQ(host.executable, "C:\\Host\\ABCD.exe");
}

TEST_F(HostSelection, ADemandedHostReplacesTheAutomaticChoice)
{
  SetVersion15Host("R15.0");
  SetUsualHost();
  AddKey(UserHosts(), "AutoCAD\\R18.0\\EFGH-0001");
  Install(RegistryView::Wow32, "AutoCAD\\R18.0\\EFGH-0001", "C:\\New");
  SetDrawingClass("AutoCAD.Drawing.15");
  const SelectedHost host = Select(" /AcadVer 18 x");
  EXPECT_EQ(host.release, 3);
  EXPECT_EQ(host.keyPath, "Software\\Autodesk\\AutoCAD\\R18.0\\EFGH-0001\\");
  EXPECT_EQ(host.executable, "C:\\New\\EFGH.exe");
  EXPECT_FALSE(host.is64Bit);
  EXPECT_EQ(host.commandLine, "/nologo x");
}

TEST_F(HostSelection, WithADemandTheDrawingAssociationIsNeverRead)
{
  SetVersion15Host("R15.0");
  for (const char* arguments : {"/AcadVer 17 x", "x/AcadVer 17"}) {
    (void)Select(arguments);
    for (const std::string& line : Diary())
      EXPECT_EQ(line.find("HKCR"), std::string::npos) << line;
  }
}

TEST_F(HostSelection, AnUnusableDemandEndsTheSearchWithoutALookAtTheRegistry)
{
  SetVersion15Host("R15.0");
  SetUsualHost();
  for (const char* arguments : {"/AcadVer", "/AcadVer \"17", "/AcadVer 9", "/AcadVer abc"}) {
    const SelectedHost host = Select(arguments);
    EXPECT_EQ(host.release, 3) << arguments;
    EXPECT_EQ(host.executable, "") << arguments;
    EXPECT_EQ(Diary(), Lines()) << arguments;
  }
}

TEST_F(HostSelection, AnUnusableDemandGetsThePrefixToo)
{
  EXPECT_EQ(Select(" /AcadVer").commandLine, "/nologo /AcadVer");
  EXPECT_EQ(Select(" /AcadVer 9").commandLine, "/nologo ");
  EXPECT_EQ(Select(" /AcadVer \"17 x").commandLine, "/nologo /AcadVer \"17 x");
}

TEST_F(HostSelection, ADemandAloneLeavesThePrefixAlone)
{
  EXPECT_EQ(Select("/AcadVer 17").commandLine, "/nologo ");
}

TEST_F(HostSelection, APrefixThatFindsNoRoomEndsTheProcess)
{
  EXPECT_EXIT(
      {
        FailCall("wcscat_s", 1, ERANGE);
        (void)Select("/AcadVer");
      },
      testing::ExitedWithCode(3), "TerminateProcess 0xC0000417");
}
