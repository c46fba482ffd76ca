#include "tests/system/LauncherTest.h"

namespace {

const std::wstring ProductKey = std::wstring(AutodeskKey) + L"\\AutoCAD";

class NoHost : public LauncherTest
{
protected:
  void ExpectNothingHappens()
  {
    const std::vector<RegistryRecord> before = User.ReadTree(AutodeskKey);
    const LauncherRun run = Run(L"a.dwg");
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.children, 0u);
    EXPECT_FALSE(User.HasKey(L"Software\\Norvane"));
    EXPECT_EQ(User.ReadTree(AutodeskKey), before);
  }
};

using OrdinaryRoute = LauncherTest;
using Version15Route = LauncherTest;
using ProductKeySearch = LauncherTest;
using HostProgram = LauncherTest;

}  // namespace

TEST_F(NoHost, WithoutAutoCadNothingIsWrittenAndNothingStarted)
{
  ExpectNothingHappens();
}

TEST_F(NoHost, ACurrentVersionWithoutAKeyEndsTheSearch)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  User.WriteText(ProductKey, L"CurVer", L"R18.0");
  ExpectNothingHappens();
}

TEST_F(NoHost, ACurrentProductWithoutAKeyEndsTheSearch)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  User.WriteText(ProductKey + L"\\R17.1", L"CurVer", L"ABCD-0002");
  ExpectNothingHappens();
}

TEST_F(NoHost, AHostThatOnlyTheUserKnowsIsNoHost)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  Machine64.RemoveTree(AutodeskKey);
  ExpectNothingHappens();
}

TEST_F(OrdinaryRoute, TheCurrentVersionOfTheCurrentProductIsStarted)
{
  InstallHost(L"R18.0", L"WXYZ-0001");
  InstallHost(L"R17.1", L"ABCD-0001");
  const LauncherRun run = Run(L"a.dwg");
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.Host().program, HostFolder(L"R17.1", L"ABCD-0001") + L"\\ABCD.exe");
  EXPECT_EQ(run.Host().commandLine, L"/nologo a.dwg");
}

TEST_F(OrdinaryRoute, TagsInTheVersionNameGiveTheRelease)
{
  const std::vector<std::pair<std::wstring, std::wstring>> rows = {
      {L"R16.2", L"Kestrelforge7x86.arx"}, {L"R9.0", L"Kestrelforge7x86.arx"},
      {L"R10.0", L"Kestrelforge7x86.arx"}, {L"R11.0", L"Kestrelforge7x86.arx"},
      {L"R17.1", L"Kestrelforge8x64.arx"}, {L"R12.1", L"Kestrelforge8x64.arx"},
      {L"R18.0", L"Kestrelforge9x64.arx"}, {L"R13.0", L"Kestrelforge9x64.arx"}};
  for (const auto& [version, loader] : rows) {
    InstallHost(version, L"ABCD-0001");
    EXPECT_EQ(Run().Host().program, HostFolder(version, L"ABCD-0001") + L"\\ABCD.exe");
    EXPECT_EQ(StartupLoader(), loader) << version;
  }
}

TEST_F(OrdinaryRoute, OfTwoTagsTheEarlierOneInTheTableCounts)
{
  InstallHost(L"R13 R16", L"ABCD-0001");
  Run();
  EXPECT_EQ(StartupLoader(), L"Kestrelforge7x86.arx");
}

TEST_F(OrdinaryRoute, TagsAreFoundOnlyAsTheyAreSpelled)
{
  InstallHost(L"r17.1", L"ABCD-0001");
  Run();
  EXPECT_EQ(StartupLoader(), L"Kestrelforge");
}

TEST_F(OrdinaryRoute, OtherDrawingVersionsThanFifteenPlayNoPart)
{
  InstallHost15(L"R15.0", L"OLDX-0001");
  InstallHost(L"R17.1", L"ABCD-0001");
  for (const wchar_t* name :
       {L"AutoCAD.Drawing.16", L"AutoCAD.Drawing.17", L"AutoCAD.Drawing", L"15.", L"5", L""}) {
    Classes64.WriteText(L".dwg", L"", name);
    EXPECT_EQ(Run().Host().program, HostFolder(L"R17.1", L"ABCD-0001") + L"\\ABCD.exe") << name;
  }
}

TEST_F(OrdinaryRoute, AnUnknownVersionStillStartsItsHost)
{
  InstallHost(L"R20.1", L"ABCD-0001");
  Machine64.WriteText(EnvironmentKey, L"BinPath", L"C:\\Kestrelforge");
  EXPECT_EQ(Run(L"a.dwg").Host().commandLine, L"/nologo a.dwg");
  EXPECT_EQ(User.ReadText(StartupKey, L"Kestrelforge"),
            L"C:\\Kestrelforge\\Forge\\BIN\\Kestrelforge");
  EXPECT_FALSE(User.HasKey(HostKey(L"R20.1", L"ABCD-0001") + L"\\Applications"));
}

TEST_F(Version15Route, TheMachinesRecordsOfThe32BitViewAreTaken)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  InstallHost15(L"R15.0", L"OLDX-0001");
  const LauncherRun run = Run(L"a.dwg");
  EXPECT_EQ(run.Host().program, HostFolder(L"R15.0", L"OLDX-0001") + L"\\OLDX.exe");
  EXPECT_EQ(run.Host().commandLine, L"/nologo a.dwg");
  EXPECT_EQ(StartupLoader(), L"Kestrelforge6x86.arx");
}

TEST_F(Version15Route, TheReleaseStaysZeroWhateverTheVersionIsCalled)
{
  InstallHost15(L"R18.0", L"OLDX-0001");
  EXPECT_EQ(Run().Host().program, HostFolder(L"R18.0", L"OLDX-0001") + L"\\OLDX.exe");
  EXPECT_EQ(StartupLoader(), L"Kestrelforge6x86.arx");
}

TEST_F(Version15Route, AClassNameOfTheTwoDigitsAloneIsEnough)
{
  InstallHost15(L"R15.0", L"OLDX-0001");
  Classes64.WriteText(L".dwg", L"", L"15");
  EXPECT_EQ(Run().hosts.size(), 1u);
}

TEST_F(Version15Route, TheUsersRecordsDoNotHelp)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  Classes64.WriteText(L".dwg", L"", L"AutoCAD.Drawing.15");
  EXPECT_EQ(Run().children, 0u);
}

TEST_F(ProductKeySearch, WithoutACurrentProductTheFirstKeyThatNamesAutoCadIsTaken)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  User.RemoveValue(AutodeskKey, L"CurProd");
  User.MakeKey(L"Software\\Autodesk\\Another Product");
  User.MakeKey(L"Software\\Autodesk\\AutoCAD LT");
  EXPECT_EQ(Run().hosts.size(), 1u);
}

TEST_F(ProductKeySearch, AnEmptyCurrentProductIsNone)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  User.WriteText(AutodeskKey, L"CurProd", L"");
  EXPECT_EQ(Run().hosts.size(), 1u);
}

TEST_F(ProductKeySearch, ACurrentProductWithoutAKeyLeadsToTheFirstKeyThatNamesAutoCad)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  User.WriteText(AutodeskKey, L"CurProd", L"AutoCAD LT");
  EXPECT_EQ(Run().hosts.size(), 1u);
}

TEST_F(ProductKeySearch, TheWordMayBeAPartOfTheName)
{
  const std::wstring key = L"Software\\Autodesk\\My AutoCAD Mechanical";
  User.WriteText(key, L"CurVer", L"R17.1");
  User.WriteText(key + L"\\R17.1", L"CurVer", L"ABCD-0001");
  User.MakeKey(key + L"\\R17.1\\ABCD-0001");
  Machine64.WriteText(key + L"\\R17.1\\ABCD-0001", L"AcadLocation", Scratch());
  LayHostProgram(Scratch() + L"\\ABCD.exe");
  EXPECT_EQ(Run().hosts.size(), 1u);
}

TEST_F(ProductKeySearch, TheWordIsFoundOnlyAsItIsSpelled)
{
  const std::wstring key = L"Software\\Autodesk\\AUTOCAD";
  User.WriteText(key, L"CurVer", L"R17.1");
  User.WriteText(key + L"\\R17.1", L"CurVer", L"ABCD-0001");
  User.MakeKey(key + L"\\R17.1\\ABCD-0001");
  Machine64.WriteText(key + L"\\R17.1\\ABCD-0001", L"AcadLocation", Scratch());
  LayHostProgram(Scratch() + L"\\ABCD.exe");
  EXPECT_EQ(Run().children, 0u);
}

TEST_F(HostProgram, IsNamedByTheProductUpToTheDash)
{
  InstallHost(L"R17.1", L"ABCDEFG-0001");
  EXPECT_EQ(Run().Host().program, HostFolder(L"R17.1", L"ABCDEFG-0001") + L"\\ABCDEFG.exe");
}

TEST_F(HostProgram, IsNamedByTheFirstFourCharactersIfThereIsNoDash)
{
  InstallHost(L"R17.1", L"ABCDEFG");
  LayHostProgram(HostFolder(L"R17.1", L"ABCDEFG") + L"\\ABCD.exe");
  EXPECT_EQ(Run().Host().program, HostFolder(L"R17.1", L"ABCDEFG") + L"\\ABCD.exe");
}

TEST_F(HostProgram, AFolderThatEndsInABackslashGetsNoSecondOne)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  Machine64.WriteText(HostKey(L"R17.1", L"ABCD-0001"), L"AcadLocation",
                      HostFolder(L"R17.1", L"ABCD-0001") + L"\\");
  EXPECT_EQ(Run().hosts.size(), 1u);
}

TEST_F(HostProgram, ItsFolderMayHoldAnyCharacters)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  const std::wstring folder = Scratch() + L"\\\u4e2d\u6587 \u00fcber\u0416";
  LayHostProgram(folder + L"\\ABCD.exe");
  Machine64.WriteText(HostKey(L"R17.1", L"ABCD-0001"), L"AcadLocation", folder);
  EXPECT_EQ(Run().Host().program, folder + L"\\ABCD.exe");
}

TEST_F(HostProgram, OfBothViewsTheKeyOfThe64BitOneIsTaken)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  Machine32.WriteText(HostKey(L"R17.1", L"ABCD-0001"), L"AcadLocation", L"C:\\elsewhere");
  EXPECT_EQ(Run().hosts.size(), 1u);
  EXPECT_EQ(StartupLoader(), L"Kestrelforge8x64.arx");
}

TEST_F(HostProgram, WithoutAFolderTheRunGoesOnAndNothingStarts)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  Machine64.RemoveTree(HostKey(L"R17.1", L"ABCD-0001"));
  Machine64.MakeKey(HostKey(L"R17.1", L"ABCD-0001"));
  const LauncherRun run = Run();
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.children, 0u);
  EXPECT_EQ(StartupLoader(), L"Kestrelforge8x64.arx");
  EXPECT_EQ(User.ReadText(AddOnKey, L"ProfileName"), L"Kestrelforge");
}

TEST_F(HostProgram, AProgramThatIsGoneEndsTheRunWithoutAWord)
{
  InstallHost(L"R17.1", L"ABCD-0001");
  ASSERT_TRUE(DeleteFileW((HostFolder(L"R17.1", L"ABCD-0001") + L"\\ABCD.exe").c_str()));
  const LauncherRun run = Run();
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.children, 0u);
  EXPECT_TRUE(User.HasKey(HostKey(L"R17.1", L"ABCD-0001") + L"\\Applications"));
}
