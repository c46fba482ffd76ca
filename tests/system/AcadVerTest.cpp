#include "tests/system/LauncherTest.h"

namespace {

// Two hosts, and the automatic choice would be the newer one.
class AcadVer : public LauncherTest
{
protected:
  void SetUp() override
  {
    LauncherTest::SetUp();
    InstallHost(L"R17.1", L"ABCD-0001");
    InstallHost(L"R18.0", L"WXYZ-0001");
  }

  void ExpectHost(const std::wstring& arguments, const std::wstring& program,
                  const std::wstring& commandLine)
  {
    const LauncherRun run = Run(arguments);
    EXPECT_EQ(run.exitCode, 0u) << arguments;
    const HostReport host = run.Host();
    EXPECT_EQ(host.program.substr(host.program.rfind(L'\\') + 1), program) << arguments;
    EXPECT_EQ(host.commandLine, commandLine) << arguments;
  }

  void ExpectNoHost(const std::wstring& arguments)
  {
    const LauncherRun run = Run(arguments);
    EXPECT_EQ(run.exitCode, 0u) << arguments;
    EXPECT_EQ(run.children, 0u) << arguments;
    EXPECT_FALSE(User.HasKey(L"Software\\Norvane")) << arguments;
  }
};

}  // namespace

TEST_F(AcadVer, WithoutTheSwitchTheNewerHostWouldStart)
{
  ExpectHost(L"a.dwg", L"WXYZ.exe", L"/nologo a.dwg");
}

TEST_F(AcadVer, AMajorNumberFindsTheVersionThatHoldsIt)
{
  ExpectHost(L"/AcadVer 17", L"ABCD.exe", L"/nologo ");
  EXPECT_EQ(StartupLoader(), L"Kestrelforge8x64.arx");
}

TEST_F(AcadVer, AFullVersionFindsItsKey)
{
  ExpectHost(L"/AcadVer R17.1", L"ABCD.exe", L"/nologo ");
}

TEST_F(AcadVer, AVersionAndAProductWithoutAMinorNumberAreSearched)
{
  ExpectHost(L"/AcadVer R17\\ABCD-0001", L"ABCD.exe", L"/nologo ");
}

TEST_F(AcadVer, AFullVersionAndProductAreTakenExactly)
{
  ExpectHost(L"/AcadVer R17.1\\ABCD-0001", L"ABCD.exe", L"/nologo ");
}

TEST_F(AcadVer, SlashesSeparateThePartsAsWell)
{
  ExpectHost(L"/AcadVer R17/1/ABCD-0001", L"ABCD.exe", L"/nologo ");
}

TEST_F(AcadVer, APieceOfTheProductsNameIsEnoughForTheSearch)
{
  InstallHost(L"R17.1", L"ABCE-0002");
  InstallHost(L"R18.0", L"WXYZ-0001");
  ExpectHost(L"/AcadVer 17\\0002", L"ABCE.exe", L"/nologo ");
}

TEST_F(AcadVer, TheSwitchItsValueAndOneBlankLeaveTheLine)
{
  ExpectHost(L"file.dwg /AcadVer 17 /b x", L"ABCD.exe", L"/nologo file.dwg /b x");
  ExpectHost(L"/AcadVer    17  x ", L"ABCD.exe", L"/nologo x ");
}

TEST_F(AcadVer, AValueMayStandInQuotes)
{
  ExpectHost(L"/AcadVer \"R17.1\\ABCD-0001\" x", L"ABCD.exe", L"/nologo x");
  ExpectHost(L"\"my file.dwg\" /AcadVer \"17\"", L"ABCD.exe", L"/nologo \"my file.dwg\" ");
}

TEST_F(AcadVer, AnUnusableValueStartsNothingAndWritesNothing)
{
  for (const wchar_t* arguments :
       {L"/AcadVer abc", L"/AcadVer 9", L"/AcadVer \"7\" a.dwg", L"/AcadVer \"R17.1",
        L"/AcadVer \"\" a.dwg", L"/AcadVer .17", L"/AcadVer R13.0"}) {
    ExpectNoHost(arguments);
  }
}

TEST_F(AcadVer, AtTheEndOfTheLineItStartsNothing)
{
  ExpectNoHost(L"a.dwg /AcadVer");
  ExpectNoHost(L"a.dwg /AcadVer   ");
}

TEST_F(AcadVer, AnUnusableValueDoesNotFallBackToTheDrawingVersion)
{
  InstallHost15(L"R15.0", L"OLDX-0001");
  ExpectNoHost(L"/AcadVer abc");
}

TEST_F(AcadVer, InLowerCaseItIsAnArgumentOfTheHost)
{
  ExpectHost(L"/acadver 17", L"WXYZ.exe", L"/nologo /acadver 17");
}

TEST_F(AcadVer, OnlyTheFirstIsTakenOut)
{
  ExpectHost(L"/AcadVer 17 /AcadVer 18", L"ABCD.exe", L"/nologo /AcadVer 18");
}

TEST_F(AcadVer, ATabBelongsToTheValue)
{
  ExpectNoHost(L"/AcadVer\t17 x");
}

TEST_F(AcadVer, TheNumberMayBeAPartOfALongerOne)
{
  InstallHost(L"R2017.1", L"LONG-0001");
  InstallHost(L"R18.0", L"WXYZ-0001");
  ExpectHost(L"/AcadVer 2017", L"LONG.exe", L"/nologo ");
  EXPECT_EQ(StartupLoader(), L"Kestrelforge8x64.arx");
}

TEST_F(AcadVer, AnUnknownVersionIsSearchedAndStartedWithoutALoader)
{
  InstallHost(L"R14.0", L"AGED-0001");
  InstallHost(L"R18.0", L"WXYZ-0001");
  ExpectHost(L"/AcadVer 14", L"AGED.exe", L"/nologo ");
  EXPECT_EQ(StartupLoader(), L"Kestrelforge");
}

TEST_F(AcadVer, FifteenIsLookedUpForTheMachineInThe32BitView)
{
  InstallHost15(L"R15.0", L"OLDX-0001");
  Classes64.RemoveTree(L".dwg");
  ExpectHost(L"/AcadVer 15", L"OLDX.exe", L"/nologo ");
  EXPECT_EQ(StartupLoader(), L"Kestrelforge6x86.arx");
}

TEST_F(AcadVer, AVersionWithoutAFittingProductGivesWayToTheNext)
{
  User.MakeKey(std::wstring(AutodeskKey) + L"\\AutoCAD\\R17.0\\OTHER-0009");
  ExpectHost(L"/AcadVer 17\\ABCD", L"ABCD.exe", L"/nologo ");
}

TEST_F(AcadVer, TheExactSearchLooksBelowEveryProduct)
{
  const std::wstring key = L"Software\\Autodesk\\Another Product\\R17.2\\NEXT-0001";
  User.MakeKey(key);
  Machine64.WriteText(key, L"AcadLocation", Scratch());
  LayHostProgram(Scratch() + L"\\NEXT.exe");
  ExpectHost(L"/AcadVer R17.2\\NEXT-0001", L"NEXT.exe", L"/nologo ");
}

TEST_F(AcadVer, TheProgramIsNamedByFourCharactersWhereverTheDashStands)
{
  InstallHost(L"R17.1", L"ABCDEFG-0001");
  LayHostProgram(HostFolder(L"R17.1", L"ABCDEFG-0001") + L"\\ABCD.exe");
  ExpectHost(L"/AcadVer R17.1\\ABCDEFG-0001", L"ABCD.exe", L"/nologo ");
}

TEST_F(AcadVer, AnExactDemandThatIsNotMetRunsOnAndStartsNothing)
{
  const LauncherRun run = Run(L"/AcadVer R17.9\\ABCD-0001");
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.children, 0u);
  EXPECT_EQ(StartupLoader(), L"Kestrelforge8x64.arx");
}

TEST_F(AcadVer, AnExactDemandOnAMachineWithoutAutodeskKeysWritesNothing)
{
  Machine64.RemoveTree(AutodeskKey);
  ExpectNoHost(L"/AcadVer R17.9\\ABCD-0001");
}
