#include "tests/faults/RichLaunch.h"

#include "launcher/LauncherMain.h"
#include "tests/doubles/DebugOutputDouble.h"
#include "tests/doubles/Diary.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/InstallerDouble.h"
#include "tests/doubles/LiveOdbc.h"
#include "tests/doubles/OdbcDouble.h"
#include "tests/doubles/ProcessDouble.h"
#include "tests/doubles/RegistryDouble.h"
#include "tests/doubles/VersionDouble.h"
#include "tests/faults/Content.h"
#include "tests/faults/RichDatabases.h"
#include "update/DatabaseConfiguration.h"
#include "update/DatabaseUpdateManager.h"

#include <gtest/gtest.h>

#include <stdio.h>

namespace {

const std::string AddOnKey = "Software\\Norvane\\Kestrelforge\\2010";
const std::string EnvironmentKey = AddOnKey + "\\Environment";
const std::string ConnectionsKey = "Software\\Norvane\\DatabaseConnections";
const char* const AutoCadKey = "Software\\Autodesk\\AutoCAD";
const char* const ConfigurationFile = "C:\\Data\\Configuration\\DatabaseConfiguration.xml";

// A host of one version, as its installation records it and as it records itself when it runs.
void InstallHost(HKEY root, RegistryView view, const std::string& versionKey)
{
  const std::string version = std::string(AutoCadKey) + "\\" + versionKey;
  const std::string host = version + "\\ABCD-0001";
  Registry().SetText(root, view, "Software\\Autodesk", "CurProd", "AutoCAD");
  Registry().SetText(root, view, AutoCadKey, "CurVer", versionKey);
  Registry().SetText(root, view, version, "CurVer", "ABCD-0001");
  Registry().AddKey(root, view, host);
  // The user has run it, so that there is a key for his demand-load entries.
  Registry().AddKey(HKEY_CURRENT_USER, RegistryView::Native, host);
  Registry().SetText(HKEY_LOCAL_MACHINE, RegistryView::Native, host, "AcadLocation", "C:\\Host64");
  Registry().SetText(HKEY_LOCAL_MACHINE, RegistryView::Wow32, host, "AcadLocation", "C:\\Host32");
}

void LayOutHosts(HostRoute route)
{
  if (route == HostRoute::DrawingClass) {
    Registry().SetText(HKEY_CLASSES_ROOT, RegistryView::Native, ".dwg", "", "AutoCAD.Drawing.15");
    InstallHost(HKEY_LOCAL_MACHINE, RegistryView::Wow32, "R15.0");
  } else {
    Registry().SetText(HKEY_CLASSES_ROOT, RegistryView::Native, ".dwg", "", "AutoCAD.Drawing.18");
    InstallHost(HKEY_CURRENT_USER, RegistryView::Native, "R16.2");
    InstallHost(HKEY_CURRENT_USER, RegistryView::Native, "R17.1");
  }
}

const char* ArgumentsOf(HostRoute route)
{
  switch (route) {
    case HostRoute::RequestedVersion: return "/AcadVer R17 plan.dwg";
    case HostRoute::RequestedExactly: return "/AcadVer R17.1\\ABCD-0001 plan.dwg";
    default: return "plan.dwg";
  }
}

void LayOutAddOn(uint32_t language)
{
  const HKEY machine = HKEY_LOCAL_MACHINE;
  const RegistryView native = RegistryView::Native;
  Registry().SetText(machine, native, EnvironmentKey, "BinPath", "C:\\Forge64\\");
  Registry().SetText(machine, RegistryView::Wow32, EnvironmentKey, "BinPath", "C:\\Forge32");
  Registry().SetText(machine, native, EnvironmentKey, "DataPath", "C:\\Data");
  Registry().SetText(machine, native, EnvironmentKey, "AddPath", "C:\\Forge64\\Bin");
  Registry().SetNumber(machine, native, EnvironmentKey, "Language", language);
  // From an earlier launch, so that this key can be opened without the one below it.
  Registry().AddKey(HKEY_CURRENT_USER, native, AddOnKey);
  Processes().SetVariable("PATH", "C:\\Windows;D:\\Tools;C:\\Norvane\\Kestrelforge;D:\\OLD~1");
  Processes().SetLongPath("d:\\old~1", "d:\\norvane\\kestrelforge\\2008");

  Registry().SetText(HKEY_CLASSES_ROOT, RegistryView::Wow32,
                     "CLSID\\{4996A28C-5085-4349-8D86-81F00F3376F5}\\InprocServer32", "",
                     "C:\\Forge64\\Forge\\BIN\\Server.dll");
  Versions().SetFileVersion("C:\\Launcher\\KestrelforgeLauncher.exe", "10.1.0.0");
  Versions().SetFileVersion(
      "C:\\Program Files (x86)\\Common Files\\Norvane\\QuillStartupLoader8x86.arx", "9.9.0.0");
  for (const char* product :
       {"{11111111-0000-0000-0000-000000000001}", "{22222222-0000-0000-0000-000000000002}"}) {
    Registry().SetText(machine, RegistryView::Wow32, AddOnKey + "\\Products", product, "Forge");
    Installer().AddProduct(product);
  }
}

// The bytes of all databases, made by way of the driver once in a process.
const std::map<std::string, std::string>& DatabaseBytes()
{
  static std::map<std::string, std::string> bytes;
  if (!bytes.empty())
    return bytes;
  for (const auto& [path, script] : DatabaseScripts()) {
    for (size_t begin = 0, end = 0; (end = script.find(";\n", begin)) != std::string::npos;
         begin = end + 2)
      EXPECT_EQ(RunSql(path, {script.substr(begin, end - begin)}), "");
    bytes[path] = Files().Read(path);
  }
  bytes[FileOf("Damaged.mdb")] = "no database";
  return bytes;
}

void RegisterConnection(HKEY root, const std::string& name)
{
  Registry().SetText(root, RegistryView::Native, ConnectionsKey, name,
                     ConnectionStringOf(FileOf(name)));
}

void LayOutDatabases(const RichMachine& machine)
{
  for (const auto& [path, bytes] : DatabaseBytes())
    Files().Put(path, bytes);
  for (const std::string& name : machine.without)
    Files().Remove(FileOf(name));
  for (const auto& [name, statements] : machine.changes)
    EXPECT_EQ(ChangeContent(Files().UnixPath(FileOf(name)), statements), "");
  RegisterConnection(HKEY_CURRENT_USER, "QuillProfiles2010");
  RegisterConnection(HKEY_LOCAL_MACHINE, "NVCMapping2010");
  Files().Put(ConfigurationFile,
              "<Kestrelforge>\r\n<DataSource Platform=\"x64\" Name=\"QuillRules\" Value=\"" +
                  ConnectionStringOf(FileOf("QuillRules")) + "\" />\r\n</Kestrelforge>\r\n");
}

std::string ValueText(const RegistryValue& value)
{
  std::string text = std::to_string(value.type);
  char byte[4];
  for (const unsigned char number : value.bytes) {
    (void)snprintf(byte, sizeof(byte), " %02X", number);
    text += byte;
  }
  return text;
}

void AddValues(const std::string& key, std::map<std::string, std::string>& values)
{
  const HKEY user = HKEY_CURRENT_USER;
  for (const std::string& name : Registry().ValueNames(user, RegistryView::Native, key))
    values[key + "\\" + name] = ValueText(Registry().Value(user, RegistryView::Native, key, name));
  for (const std::string& subkey : Registry().SubkeyNames(user, RegistryView::Native, key))
    AddValues(key + "\\" + subkey, values);
}

std::vector<std::string> StartedHosts()
{
  std::vector<std::string> hosts;
  for (const StartedProcess& host : Processes().Started())
    hosts.push_back(host.application + " " + host.commandLine + " PATH=" + host.path);
  return hosts;
}

std::vector<std::string> Traces()
{
  std::vector<std::string> traces;
  for (const std::string& text : DebugTexts()) {
    if (text != "\n")
      traces.push_back(text);
  }
  return traces;
}

}  // namespace

std::string NameOf(HostRoute route)
{
  static const char* const names[] = {"current host", "host of drawings", "host by version",
                                      "host by product"};
  return names[static_cast<int>(route)];
}

std::string FileOf(const std::string& name)
{
  if (name == "QuillCurrentProject")
    return "C:\\Data\\Kernel\\Data\\model.mdb";
  if (name == "Steel.mdb")
    return ProjectFolder + name;
  return IsPatch(name) ? PatchFolder + name : "C:\\Data\\Bases\\" + name + ".mdb";
}

bool IsPatch(const std::string& name)
{
  return name.ends_with(".mdb");
}

const std::vector<std::string>& RichDatabases()
{
  static const std::vector<std::string> names = {"QuillRules", "QuillProfiles2010",
                                                 "QuillCurrentProject", "NVCMapping2010"};
  return names;
}

void LayOut(const RichMachine& machine)
{
  ResetPlatform();
  DataSourceTable.Free();
  updatePromptPending = true;
  LayOutHosts(machine.route);
  LayOutAddOn(machine.language);
  if (machine.withDatabases) {
    ASSERT_TRUE(UseLiveOdbc());
    LayOutDatabases(machine);
  }
  ClearDiary();
}

int32_t Launch(const RichMachine& machine)
{
  return LauncherMain(nullptr, nullptr, ArgumentsOf(machine.route), 1);
}

LaunchOutcome TakeOutcome(int32_t exitCode)
{
  LaunchOutcome outcome;
  outcome.exitCode = exitCode;
  outcome.diary = Diary();
  outcome.traces = Traces();
  outcome.started = StartedHosts();
  outcome.path = Processes().Variable("PATH");
  AddValues("Software", outcome.registry);
  outcome.openKeys = Registry().OpenKeyPaths();
  outcome.openSearches = Files().OpenSearches();
  outcome.openStreams = Files().OpenStreams();
  outcome.openEnvironments = Odbc().OpenEnvironments();
  outcome.openConnections = Odbc().OpenConnections();
  outcome.openStatements = Odbc().OpenStatements();
  outcome.misuses = TakeMisuses();
  for (const std::string& name : RichDatabases()) {
    if (Files().Exists(FileOf(name)))
      outcome.databases[name] = ReadContent(Files().UnixPath(FileOf(name)));
  }
  return outcome;
}

LaunchOutcome LaunchOn(const RichMachine& machine)
{
  LayOut(machine);
  return TakeOutcome(Launch(machine));
}
