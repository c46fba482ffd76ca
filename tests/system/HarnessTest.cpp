// What the other tests rely on: that the harness sees what a program does.

#include "sandbox/common/MachinePermission.h"
#include "sandbox/common/SandboxFiles.h"
#include "tests/system/LauncherTest.h"

namespace {

ProgramRun RunChild(const std::wstring& deed, DWORD timeLimit = 60000)
{
  ProgramStart start;
  start.program = OwnProgramPath();
  start.commandLine = L"child --harness-child=" + deed;
  start.timeLimit = timeLimit;
  return RunProgram(start);
}

}  // namespace

TEST(MachinePermission, UnderWineTheTestsAlwaysRun)
{
  EXPECT_TRUE(MayWriteToThisMachine(true, nullptr));
  EXPECT_TRUE(MayWriteToThisMachine(true, L"0"));
}

TEST(MachinePermission, OnWindowsTheVariableHasToBeOne)
{
  EXPECT_TRUE(MayWriteToThisMachine(false, L"1"));
  for (const wchar_t* variable : {L"", L"0", L"yes", L"11"}) {
    EXPECT_FALSE(MayWriteToThisMachine(false, variable)) << variable;
  }
}

TEST(MachinePermission, OnWindowsWithoutTheVariableTheTestsDoNotRun)
{
  EXPECT_FALSE(MayWriteToThisMachine(false, nullptr));
}

TEST(ProgramRun, GivesTheExitCodeOfAQuietProgram)
{
  const ProgramRun run = RunChild(L"end");
  EXPECT_TRUE(run.started && run.inTime);
  EXPECT_EQ(run.exitCode, 7u);
  EXPECT_EQ(run.children, 0u);
  EXPECT_TRUE(run.debugOutput.empty());
  EXPECT_TRUE(run.exceptions.empty());
}

TEST(ProgramRun, CollectsDebugOutput)
{
  EXPECT_EQ(RunChild(L"speak").debugOutput, (std::vector<std::string>{"first", "second"}));
}

TEST(ProgramRun, CollectsExceptions)
{
  const ProgramRun run = RunChild(L"raise");
  ASSERT_FALSE(run.exceptions.empty());
  EXPECT_EQ(run.exceptions.front(), 0xE0001234u);
}

TEST(ProgramRun, CountsTheChildrenAndWaitsForThem)
{
  const ProgramRun run = RunChild(L"start");
  EXPECT_TRUE(run.inTime);
  EXPECT_EQ(run.children, 1u);
}

TEST(ProgramRun, LeavesTheChildrenAloneIfToldSo)
{
  ProgramStart start;
  start.program = OwnProgramPath();
  start.commandLine = L"child --harness-child=start-dozing";
  start.leaveChildren = true;
  const ULONGLONG begin = GetTickCount64();
  const ProgramRun run = RunProgram(start);
  EXPECT_TRUE(run.inTime);
  EXPECT_EQ(run.exitCode, 7u);
  EXPECT_EQ(run.children, 0u);
  EXPECT_LT(GetTickCount64() - begin, 8000u);
}

TEST(ProgramRun, EndsAProgramWhoseTimeIsOver)
{
  const ProgramRun run = RunChild(L"hang", 300);
  EXPECT_TRUE(run.started);
  EXPECT_FALSE(run.inTime);
}

TEST(ProgramRun, TellsAProgramThatCannotStart)
{
  ProgramStart start;
  start.program = L"C:\\no such program.exe";
  EXPECT_FALSE(RunProgram(start).started);
}
