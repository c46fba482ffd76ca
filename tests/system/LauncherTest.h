#ifndef TESTS_SYSTEM_LAUNCHERTEST_H
#define TESTS_SYSTEM_LAUNCHERTEST_H

#include "sandbox/common/ProgramRun.h"
#include "tests/system/RegistryPlace.h"

#include <gtest/gtest.h>

#include <set>

// What a stand-in host wrote down about its start.
struct HostReport
{
  std::wstring program;
  std::wstring commandLine;
  std::wstring currentFolder;
  std::wstring bits;
  std::optional<std::wstring> path;
};

struct LauncherRun : ProgramRun
{
  std::vector<HostReport> hosts;

  // The one host that was started; a test failure and an empty report if it isn't exactly one.
  HostReport Host() const;
};

// What a launch says on a machine without one database: that none of the 17 could be connected,
// each as a line feed and the text. So it arrives at a debugger.
std::vector<std::string> NoDatabaseTraces();

constexpr const wchar_t* AutodeskKey = L"Software\\Autodesk";
constexpr const wchar_t* AddOnKey = L"SoftWare\\Norvane\\Kestrelforge\\2010";
constexpr const wchar_t* StartupKey = L"SoftWare\\Norvane\\Kestrelforge\\2010\\Startup";
constexpr const wchar_t* EnvironmentKey = L"Software\\Norvane\\Kestrelforge\\2010\\Environment";

// Files that the build laid beside this program or into the sandbox' folder. A name in that folder
// may hold folders.
std::wstring LauncherProgram();
std::wstring SandboxFile(const std::wstring& name);

// Starts the real program on a machine that has no host and no add-on until a test lays them out.
class LauncherTest : public testing::Test
{
protected:
  void SetUp() override;

  // An empty folder of this test's own, made anew for each.
  static std::wstring Scratch();

  // Where host programs are laid for a version and product: a folder of the scratch folder. The
  // product's name up to the dash gives the program its name.
  static std::wstring HostFolder(const std::wstring& version, const std::wstring& product);
  void LayHostProgram(const std::wstring& program);

  // A host as its own set-up leaves it: the user's records, the machine's key in one view with the
  // folder, and the program. The last one installed for the user is the current one.
  void InstallHost(const std::wstring& version, const std::wstring& product,
                   const RegistryPlace& machine = Machine64);
  // The same without the program.
  static void RecordHost(const std::wstring& version, const std::wstring& product,
                         const RegistryPlace& machine = Machine64);
  // Only the records that are looked up when drawings belong to version 15.
  void InstallHost15(const std::wstring& version, const std::wstring& product);

  static std::wstring HostKey(const std::wstring& version, const std::wstring& product);

  // Starts the launcher by its quoted path, a blank and the arguments. No run may outlast its time.
  // Unless a test lays out databases, none may say more than that there are none.
  LauncherRun Run(const std::wstring& arguments = L"");
  LauncherRun Run(const ProgramStart& start);
  ProgramStart StartOf(const std::wstring& arguments) const;

  // The Startup value with its folder cut off.
  static std::wstring StartupLoader();

  std::wstring searchPath = L"C:\\windows\\system32;C:\\windows";
  bool hasDatabases = false;

private:
  std::vector<HostReport> CollectReports() const;

  std::set<std::wstring> hostPrograms;
};

#endif
