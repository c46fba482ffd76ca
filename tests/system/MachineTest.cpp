// The machines that the sandbox describes, laid out by its own tool. The one with two hosts has all
// its databases, and patches for them.

#include "sandbox/common/SandboxFiles.h"
#include "tests/system/LauncherTest.h"

#include <shlobj.h>

namespace {

class Machine : public LauncherTest
{
protected:
  void TearDown() override { LauncherTest::SetUp(); }

  static void LayOut(const std::wstring& name)
  {
    ProgramStart start;
    start.program = SandboxFile(L"LayOutMachine.exe");
    start.commandLine = L"lay-out " + name;
    start.path = L"C:\\windows\\system32;C:\\windows";
    const ProgramRun run = RunProgram(start);
    ASSERT_TRUE(run.started && run.inTime);
    ASSERT_EQ(run.exitCode, 0u) << name;
  }
};

}  // namespace

TEST_F(Machine, TwoReleasesStartsTheOneThatWasUsedLast)
{
  LayOut(L"two-releases");
  LayHostProgram(L"C:\\Program Files\\AutoCAD 2010\\ACAD.exe");
  hasDatabases = true;
  const LauncherRun run = Run(L"a.dwg");
  EXPECT_EQ(run.Host().commandLine, L"/nologo a.dwg");
  for (const std::string& trace : run.debugOutput) {
    EXPECT_NE(trace, "Error driver connect to database.");
  }
  EXPECT_EQ(User.ReadText(StartupKey, L"Kestrelforge"),
            L"C:\\Program Files\\Norvane\\Kestrelforge 2010\\Forge\\BIN\\Kestrelforge9x64.arx");
}

TEST_F(Machine, TwoReleasesIsUpToDateAtTheSecondLaunch)
{
  LayOut(L"two-releases");
  LayHostProgram(L"C:\\Program Files\\AutoCAD 2010\\ACAD.exe");
  hasDatabases = true;
  EXPECT_NE(Run(L"a.dwg").debugOutput, std::vector<std::string>());
  EXPECT_EQ(Run(L"a.dwg").debugOutput, std::vector<std::string>());
}

TEST_F(Machine, TwoReleasesStartsTheOtherOneOnDemand)
{
  LayOut(L"two-releases");
  LayHostProgram(L"C:\\Program Files\\AutoCAD 2008\\ACAD.exe");
  hasDatabases = true;
  EXPECT_EQ(Run(L"a.dwg /AcadVer 17").Host().commandLine, L"/nologo a.dwg ");
}

TEST_F(Machine, Host15IsStartedAndRegisteredAsA32BitProgram)
{
  LayOut(L"host-15");
  LayHostProgram(L"C:\\Program Files (x86)\\ACAD2000\\ACAD.exe");
  EXPECT_EQ(Run(L"a.dwg").Host().commandLine, L"/nologo a.dwg");
  EXPECT_EQ(StartupLoader(), L"Kestrelforge6x86.arx");
  EXPECT_TRUE(User.HasKey(HostKey(L"R15.0", L"ACAD-1:409") + L"\\Applications"));
}

TEST_F(Machine, NoHostIsLeftAsItWas)
{
  LayOut(L"no-host");
  EXPECT_EQ(Run(L"a.dwg").children, 0u);
  EXPECT_FALSE(User.HasKey(L"Software\\Norvane"));
}
