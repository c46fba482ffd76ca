#include "tests/system/LauncherTest.h"

#include "sandbox/common/SandboxFiles.h"

#include <filesystem>
#include <map>
#include <sstream>
#include <system_error>

namespace {

void CleanRegistry()
{
  for (const RegistryPlace& place : {User, Machine64, Machine32}) {
    place.RemoveTree(AutodeskKey);
    place.RemoveTree(L"Software\\Norvane");
  }
  Classes64.RemoveTree(L".dwg");
  for (const RegistryPlace& place : {Classes64, Classes32}) {
    place.RemoveTree(L"CLSID\\{4996A28C-5085-4349-8D86-81F00F3376F5}");
  }
}

std::wstring ReportFile(const std::wstring& program)
{
  return program.substr(0, program.rfind(L'.')) + L".report.txt";
}

HostReport ParseReport(const std::wstring& program, const std::string& content)
{
  HostReport report;
  report.program = program;
  std::wistringstream lines(FromUtf8(content));
  std::wstring line;
  std::map<std::wstring, std::wstring> values;
  while (std::getline(lines, line)) {
    const size_t equals = line.find(L'=');
    values[line.substr(0, equals)] = line.substr(equals + 1);
  }
  report.commandLine = values[L"command-line"];
  report.currentFolder = values[L"current-folder"];
  report.bits = values[L"bits"];
  if (values.contains(L"path")) {
    report.path = values[L"path"];
  }
  return report;
}

}  // namespace

HostReport LauncherRun::Host() const
{
  EXPECT_EQ(hosts.size(), 1u);
  return hosts.size() == 1 ? hosts.front() : HostReport();
}

std::vector<std::string> NoDatabaseTraces()
{
  std::vector<std::string> traces;
  for (int i = 0; i < 17; ++i) {
    traces.insert(traces.end(), {"\n", "Error driver connect to database."});
  }
  return traces;
}

std::wstring LauncherProgram()
{
  return FolderOf(OwnProgramPath()) + L"\\KestrelforgeLauncher.exe";
}

std::wstring SandboxFile(const std::wstring& name)
{
  return FolderOf(FolderOf(OwnProgramPath())) + L"\\sandbox\\" + name;
}

void LauncherTest::SetUp()
{
  CleanRegistry();
  std::error_code ignored;
  std::filesystem::remove_all(Scratch(), ignored);
  ASSERT_TRUE(MakeFolders(Scratch()));
}

std::wstring LauncherTest::Scratch()
{
  wchar_t folder[MAX_PATH] = {};
  GetTempPathW(MAX_PATH, folder);
  return std::wstring(folder) + L"KestrelforgeSystemTests";
}

std::wstring LauncherTest::HostFolder(const std::wstring& version, const std::wstring& product)
{
  return Scratch() + L"\\" + version + L" " + product;
}

void LauncherTest::LayHostProgram(const std::wstring& program)
{
  ASSERT_TRUE(MakeFolders(FolderOf(program)));
  ASSERT_TRUE(CopyFileW(SandboxFile(L"StandInHost.exe").c_str(), program.c_str(), FALSE));
  hostPrograms.insert(program);
}

std::wstring LauncherTest::HostKey(const std::wstring& version, const std::wstring& product)
{
  return std::wstring(AutodeskKey) + L"\\AutoCAD\\" + version + L"\\" + product;
}

void LauncherTest::RecordHost(const std::wstring& version, const std::wstring& product,
                              const RegistryPlace& machine)
{
  const std::wstring productKey = std::wstring(AutodeskKey) + L"\\AutoCAD";
  User.WriteText(AutodeskKey, L"CurProd", L"AutoCAD");
  User.WriteText(productKey, L"CurVer", version);
  User.WriteText(productKey + L"\\" + version, L"CurVer", product);
  User.MakeKey(HostKey(version, product));
  machine.WriteText(HostKey(version, product), L"AcadLocation", HostFolder(version, product));
}

void LauncherTest::InstallHost(const std::wstring& version, const std::wstring& product,
                               const RegistryPlace& machine)
{
  RecordHost(version, product, machine);
  const std::wstring name = product.substr(0, product.find(L'-'));
  LayHostProgram(HostFolder(version, product) + L"\\" + name + L".exe");
}

void LauncherTest::InstallHost15(const std::wstring& version, const std::wstring& product)
{
  const std::wstring productKey = std::wstring(AutodeskKey) + L"\\AutoCAD";
  Classes64.WriteText(L".dwg", L"", L"AutoCAD.Drawing.15");
  Machine32.WriteText(AutodeskKey, L"CurProd", L"AutoCAD");
  Machine32.WriteText(productKey, L"CurVer", version);
  Machine32.WriteText(productKey + L"\\" + version, L"CurVer", product);
  Machine32.WriteText(HostKey(version, product), L"AcadLocation", HostFolder(version, product));
  const std::wstring name = product.substr(0, product.find(L'-'));
  LayHostProgram(HostFolder(version, product) + L"\\" + name + L".exe");
}

ProgramStart LauncherTest::StartOf(const std::wstring& arguments) const
{
  ProgramStart start;
  start.program = LauncherProgram();
  start.commandLine = L"\"" + start.program + L"\"";
  if (!arguments.empty()) {
    *start.commandLine += L" " + arguments;
  }
  start.folder = Scratch();
  start.path = searchPath;
  return start;
}

LauncherRun LauncherTest::Run(const std::wstring& arguments)
{
  return Run(StartOf(arguments));
}

LauncherRun LauncherTest::Run(const ProgramStart& start)
{
  for (const std::wstring& program : hostPrograms) {
    DeleteFileW(ReportFile(program).c_str());
  }
  LauncherRun run;
  static_cast<ProgramRun&>(run) = RunProgram(start);
  EXPECT_TRUE(run.started) << start.program;
  EXPECT_TRUE(run.inTime);
  run.hosts = CollectReports();
  // A run that ends before its update says nothing at all, and starts no host either.
  if (!hasDatabases && (!run.hosts.empty() || !run.debugOutput.empty())) {
    EXPECT_EQ(run.debugOutput, NoDatabaseTraces());
  }
  return run;
}

std::vector<HostReport> LauncherTest::CollectReports() const
{
  std::vector<HostReport> reports;
  for (const std::wstring& program : hostPrograms) {
    std::string content;
    if (ReadWholeFile(ReportFile(program), content)) {
      reports.push_back(ParseReport(program, content));
    }
  }
  return reports;
}

std::wstring LauncherTest::StartupLoader()
{
  const std::wstring path = User.ReadText(StartupKey, L"Kestrelforge");
  return path.substr(path.rfind(L'\\') + 1);
}
