#include "sandbox/common/SandboxFiles.h"
#include "tests/system/LauncherTest.h"

namespace {

class PathEnvironment : public LauncherTest
{
protected:
  void SetUp() override
  {
    LauncherTest::SetUp();
    InstallHost(L"R18.0", L"ABCD-0001");
    SetAddPath(L"X:\\A");
  }

  static void SetAddPath(const std::wstring& text)
  {
    Machine64.WriteText(EnvironmentKey, L"AddPath", text);
  }

  // The host's PATH when the launcher was started with this one.
  std::wstring CleanedFrom(const std::wstring& path)
  {
    searchPath = path;
    return Run().Host().path.value_or(L"not set");
  }
};

}  // namespace

TEST_F(PathEnvironment, TheAddOnsFoldersComeFirstAndItsOldOnesGo)
{
  EXPECT_EQ(CleanedFrom(L"C:\\Windows;C:\\Program Files\\Norvane\\Kestrelforge\\Bin;D:\\Tools"),
            L"X:\\A;c:\\windows;d:\\tools;");
}

TEST_F(PathEnvironment, AnAddPathThatEndsInASemicolonGetsNoSecondOne)
{
  SetAddPath(L"X:\\A;Y:\\B;");
  EXPECT_EQ(CleanedFrom(L"D:\\Tools"), L"X:\\A;Y:\\B;d:\\tools;");
}

TEST_F(PathEnvironment, WithoutAPathNothingIsSet)
{
  const LauncherRun run = [this] {
    ProgramStart start = StartOf(L"");
    start.path = std::nullopt;
    return Run(start);
  }();
  EXPECT_EQ(run.Host().path, std::nullopt);
}

TEST_F(PathEnvironment, OrderAndDuplicatesStay)
{
  EXPECT_EQ(CleanedFrom(L"D:\\Two;D:\\One;D:\\Two;D:\\Two"),
            L"X:\\A;d:\\two;d:\\one;d:\\two;d:\\two;");
}

TEST_F(PathEnvironment, ElementsOfAtMostOneCharacterAreDropped)
{
  EXPECT_EQ(CleanedFrom(L";.;D:\\One;;;x;D:"), L"X:\\A;d:\\one;d:;");
}

TEST_F(PathEnvironment, ASemicolonAtTheEndMakesNoElement)
{
  EXPECT_EQ(CleanedFrom(L"D:\\One;"), L"X:\\A;d:\\one;");
}

TEST_F(PathEnvironment, TheFragmentsAreFoundInAnyCapitals)
{
  EXPECT_EQ(CleanedFrom(L"C:\\NORVANE\\kestrelFORGE 2010;D:\\One"), L"X:\\A;d:\\one;");
}

TEST_F(PathEnvironment, TheFolderOfSharedBinariesIsDroppedWhereverItStands)
{
  EXPECT_EQ(CleanedFrom(L"D:\\One;C:\\x\\OVL hyn Trek\\Common\\Bin\\y;D:\\Two"),
            L"X:\\A;d:\\one;d:\\two;");
}

TEST_F(PathEnvironment, AllElementsMayGo)
{
  EXPECT_EQ(CleanedFrom(L"C:\\Norvane\\Kestrelforge"), L"X:\\A;");
}

TEST_F(PathEnvironment, WithoutAnAddPathOnlyTheKeptElementsStand)
{
  Machine64.RemoveTree(L"Software\\Norvane");
  EXPECT_EQ(CleanedFrom(L"D:\\One;D:\\Two"), L"d:\\one;d:\\two;");
}

TEST_F(PathEnvironment, TheAddPathOfThe32BitViewIsNotRead)
{
  Machine64.RemoveTree(L"Software\\Norvane");
  Machine32.WriteText(EnvironmentKey, L"AddPath", L"X:\\32");
  EXPECT_EQ(CleanedFrom(L"D:\\One"), L"d:\\one;");
}

TEST_F(PathEnvironment, CharactersBeyondAsciiStay)
{
  SetAddPath(L"X:\\\u00c4");
  EXPECT_EQ(CleanedFrom(L"D:\\\u4e2d\u6587;D:\\b\u00fccher"),
            L"X:\\\u00c4;d:\\\u4e2d\u6587;d:\\b\u00fccher;");
}

TEST_F(PathEnvironment, AFolderThatExistsKeepsItsSpellingOfTheList)
{
  ASSERT_TRUE(MakeFolders(Scratch() + L"\\Norvane Long Folder"));
  std::wstring lowered = Scratch() + L"\\Norvane Long Folder";
  CharLowerW(lowered.data());
  EXPECT_EQ(CleanedFrom(Scratch() + L"\\Norvane Long Folder"), L"X:\\A;" + lowered + L";");
}

TEST_F(PathEnvironment, AnUnresolvableElementFollowsTheLastResolvedOne)
{
  // The first element resolves to its lower-cased self, which holds a fragment. The long form of it
  // is still there when the second one, which leads nowhere, is tested.
  const std::wstring folder = Scratch() + L"\\norvane\\kestrelforge";
  ASSERT_TRUE(MakeFolders(folder));
  wchar_t resolved[MAX_PATH] = {};
  std::wstring lowered = folder;
  CharLowerW(lowered.data());
  GetLongPathNameW(lowered.c_str(), resolved, MAX_PATH);
  ASSERT_NE(wcsstr(resolved, L"norvane\\kestrelforge"), nullptr) << resolved;
  EXPECT_EQ(CleanedFrom(folder + L";Q:\\nowhere;C:\\windows;Q:\\nowhere"),
            L"X:\\A;c:\\windows;q:\\nowhere;");
}
