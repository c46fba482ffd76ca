#include "sandbox/common/SandboxFiles.h"
#include "tests/system/LauncherTest.h"

namespace {

// What is left of a text on its way through the ANSI code page.
std::wstring ThroughAnsi(const std::wstring& text)
{
  char narrow[1024] = {};
  wchar_t wide[1024] = {};
  WideCharToMultiByte(CP_ACP, 0, text.c_str(), -1, narrow, sizeof narrow, nullptr, nullptr);
  MultiByteToWideChar(CP_ACP, 0, narrow, -1, wide, 1024);
  return wide;
}

class CommandLine : public LauncherTest
{
protected:
  void SetUp() override
  {
    LauncherTest::SetUp();
    InstallHost(L"R18.0", L"ABCD-0001");
  }

  // The host's command line when the launcher was started by this whole line.
  std::wstring FromWholeLine(const std::wstring& line, const std::wstring& program)
  {
    ProgramStart start = StartOf(L"");
    start.program = program;
    start.commandLine = line;
    return Run(start).Host().commandLine;
  }

  std::wstring FromArguments(const std::wstring& arguments)
  {
    return FromWholeLine(L"\"" + LauncherProgram() + L"\"" + arguments, LauncherProgram());
  }

  static std::wstring CopyOfLauncher(const std::wstring& name)
  {
    const std::wstring path = Scratch() + L"\\" + name;
    EXPECT_TRUE(MakeFolders(FolderOf(path)));
    EXPECT_TRUE(CopyFileW(LauncherProgram().c_str(), path.c_str(), FALSE));
    return path;
  }
};

using HostProcess = CommandLine;

}  // namespace

TEST_F(CommandLine, WithoutArgumentsItIsThePrefixWithItsBlank)
{
  EXPECT_EQ(FromArguments(L""), L"/nologo ");
  EXPECT_EQ(FromArguments(L"   "), L"/nologo ");
}

TEST_F(CommandLine, WithoutAnyLineItIsThePrefixWithItsBlank)
{
  ProgramStart start = StartOf(L"");
  start.commandLine = std::nullopt;
  EXPECT_EQ(Run(start).Host().commandLine, L"/nologo ");
}

TEST_F(CommandLine, BlanksAndTabsInFrontGoAndAllOthersStay)
{
  EXPECT_EQ(FromArguments(L" \t  a.dwg  /b \t x  "), L"/nologo a.dwg  /b \t x  ");
}

TEST_F(CommandLine, QuotesAndBackslashesStayAsTyped)
{
  EXPECT_EQ(FromArguments(L" \"C:\\my files\\a.dwg\" \\\" '' \"\""),
            L"/nologo \"C:\\my files\\a.dwg\" \\\" '' \"\"");
}

TEST_F(CommandLine, APrefixOfTheUserIsNotMerged)
{
  EXPECT_EQ(FromArguments(L" /nologo a.dwg"), L"/nologo /nologo a.dwg");
}

TEST_F(CommandLine, AnArgumentMayBeginBeyondAscii)
{
  EXPECT_EQ(FromArguments(L" \u00dcber.dwg"), L"/nologo " + ThroughAnsi(L"\u00dcber.dwg"));
  EXPECT_EQ(FromArguments(L" \u00df \u00e4"), L"/nologo " + ThroughAnsi(L"\u00df \u00e4"));
}

TEST_F(CommandLine, AHardBlankIsNoWhiteSpace)
{
  EXPECT_EQ(FromArguments(L" \u00a0a.dwg"), L"/nologo " + ThroughAnsi(L"\u00a0a.dwg"));
}

TEST_F(CommandLine, CharactersBeyondAsciiMayStandAnywhere)
{
  EXPECT_EQ(FromArguments(L" \"Stra\u00dfe \u00e9t\u00e9.dwg\" /b\u00fc"),
            L"/nologo " + ThroughAnsi(L"\"Stra\u00dfe \u00e9t\u00e9.dwg\" /b\u00fc"));
}

TEST_F(CommandLine, CharactersOutsideTheCodePageAreReplaced)
{
  EXPECT_EQ(FromArguments(L" \u4e2d.dwg"), L"/nologo " + ThroughAnsi(L"\u4e2d.dwg"));
}

TEST_F(CommandLine, TheCodePageOfTheTestsHasUmlauts)
{
  EXPECT_EQ(ThroughAnsi(L"\u00dcber"), L"\u00dcber");
}

TEST_F(CommandLine, TheProgramMayStandWithoutQuotes)
{
  const std::wstring program = CopyOfLauncher(L"start.exe");
  EXPECT_EQ(FromWholeLine(program + L" a.dwg b", program), L"/nologo a.dwg b");
  EXPECT_EQ(FromWholeLine(L"start\ta.dwg", program), L"/nologo a.dwg");
  EXPECT_EQ(FromWholeLine(L"start", program), L"/nologo ");
}

TEST_F(CommandLine, TheProgramsNameEndsAtABlankAndNotAtAQuote)
{
  const std::wstring program = CopyOfLauncher(L"start.exe");
  EXPECT_EQ(FromWholeLine(L"\"st\"art\" \".exe a.dwg", program), L"/nologo a.dwg");
}

TEST_F(CommandLine, TheProgramsPathMayHoldBlanksAndCharactersBeyondAscii)
{
  const std::wstring program =
      CopyOfLauncher(L"\u00c4 folder \u00fc\\Kestrelforge Start \u00df.exe");
  EXPECT_EQ(FromWholeLine(L"\"" + program + L"\" a.dwg", program), L"/nologo a.dwg");
}

TEST_F(CommandLine, TheProgramsNameMayEndBeyondAsciiWithoutQuotes)
{
  const std::wstring program = CopyOfLauncher(L"start.exe");
  EXPECT_EQ(FromWholeLine(L"st\u00e4rt\u00dc \u00dcber.dwg", program),
            L"/nologo " + ThroughAnsi(L"\u00dcber.dwg"));
}

TEST_F(CommandLine, ALongOneArrivesWhole)
{
  const std::wstring arguments(20000, L'x');
  EXPECT_EQ(FromArguments(L" " + arguments), L"/nologo " + arguments);
}

TEST_F(HostProcess, InheritsTheCurrentFolder)
{
  ProgramStart start = StartOf(L"");
  start.folder = Scratch() + L"\\work folder \u00fc";
  ASSERT_TRUE(MakeFolders(start.folder));
  EXPECT_EQ(Run(start).Host().currentFolder, start.folder);
}

TEST_F(HostProcess, IsTheOnlyProcessThatIsStarted)
{
  EXPECT_EQ(Run(L"a.dwg").children, 1u);
}
