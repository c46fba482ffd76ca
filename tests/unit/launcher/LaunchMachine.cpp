#include "tests/unit/launcher/LaunchMachine.h"

#include "launcher/LauncherMain.h"
#include "tests/doubles/ProcessDouble.h"
#include "update/DatabaseConfiguration.h"
#include "update/DatabaseUpdateManager.h"

const char* const LaunchMachine::AddOnKey = "Software\\Norvane\\Kestrelforge\\2010";
const char* const LaunchMachine::StartupKey = "Software\\Norvane\\Kestrelforge\\2010\\Startup";
const char* const LaunchMachine::HostFile = "C:\\Host\\ABCD.exe";

namespace {

const char* const BaseKey = "Software\\Autodesk";
const char* const ProductKey = "Software\\Autodesk\\AutoCAD";

void RecordCurrentHost(HKEY root, RegistryView view, const std::string& versionKey)
{
  const std::string versionPath = std::string(ProductKey) + "\\" + versionKey;
  Registry().SetText(root, view, BaseKey, "CurProd", "AutoCAD");
  Registry().SetText(root, view, ProductKey, "CurVer", versionKey);
  Registry().SetText(root, view, versionPath, "CurVer", "ABCD-0001");
  Registry().AddKey(root, view, versionPath + "\\ABCD-0001");
}

void RecordLocation(bool is64Bit, const std::string& hostKey)
{
  Registry().SetText(HKEY_LOCAL_MACHINE, is64Bit ? RegistryView::Native : RegistryView::Wow32,
                     hostKey, "AcadLocation", "C:\\Host");
}

}  // namespace

LaunchMachine::LaunchMachine()
{
  DataSourceTable.Free();
  updatePromptPending = true;
}

void LaunchMachine::TearDown()
{
  DataSourceTable.Free();
  PlatformTest::TearDown();
}

std::string LaunchMachine::HostKey(const std::string& versionKey)
{
  return std::string(ProductKey) + "\\" + versionKey + "\\ABCD-0001";
}

void LaunchMachine::InstallHost(const std::string& versionKey, bool is64Bit)
{
  RecordCurrentHost(HKEY_CURRENT_USER, RegistryView::Native, versionKey);
  RecordLocation(is64Bit, HostKey(versionKey));
}

void LaunchMachine::InstallVersion15(bool is64Bit)
{
  Registry().SetText(HKEY_CLASSES_ROOT, RegistryView::Native, ".dwg", "", "AutoCAD.Drawing.15");
  RecordCurrentHost(HKEY_LOCAL_MACHINE, RegistryView::Wow32, "R15.0");
  RecordLocation(is64Bit, HostKey("R15.0"));
}

void LaunchMachine::SetBinPath(RegistryView view, const std::string& path)
{
  Registry().SetText(HKEY_LOCAL_MACHINE, view, "Software\\Norvane\\Kestrelforge\\2010\\Environment",
                     "BinPath", path);
}

void LaunchMachine::Launch(const char* arguments)
{
  EXPECT_EQ(LauncherMain(nullptr, nullptr, arguments, 1), 0);
}

RegistryValue LaunchMachine::StartupValue()
{
  return Registry().Value(HKEY_CURRENT_USER, RegistryView::Native, StartupKey, "Kestrelforge");
}

RegistryValue LaunchMachine::AddOnValue(const std::string& name)
{
  return Registry().Value(HKEY_CURRENT_USER, RegistryView::Native, AddOnKey, name);
}

std::string LaunchMachine::HostCommandLine()
{
  const std::vector<StartedProcess>& started = Processes().Started();
  if (started.size() != 1)
    return std::to_string(started.size()) + " hosts were started.";
  return started[0].commandLine;
}
