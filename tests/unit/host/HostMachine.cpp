#include "tests/unit/host/HostMachine.h"

#include "host/HostSelection.h"

namespace {

std::string BelowBase(const std::string& path)
{
  return "Software\\Autodesk\\" + path;
}

}  // namespace

HostPlace UserHosts()
{
  return {HKEY_CURRENT_USER, RegistryView::Native};
}

HostPlace MachineHosts()
{
  return {HKEY_LOCAL_MACHINE, RegistryView::Wow32};
}

void HostMachine::TearDown()
{
  EXPECT_EQ(Registry().OpenHandleCount(), keysLeftOpen);
  PlatformTest::TearDown();
}

void HostMachine::AddKey(const HostPlace& place, const std::string& path)
{
  Registry().AddKey(place.root, place.view, BelowBase(path));
}

void HostMachine::SetText(const HostPlace& place, const std::string& path, const std::string& name,
                          const std::string& text)
{
  Registry().SetText(place.root, place.view, BelowBase(path), name, text);
}

void HostMachine::SetRaw(const HostPlace& place, const std::string& path, const std::string& name,
                         const std::vector<unsigned char>& bytes)
{
  Registry().SetRaw(place.root, place.view, BelowBase(path), name, REG_SZ, bytes);
}

void HostMachine::SetCurrentHost(const HostPlace& place, const std::string& product,
                                 const std::string& version, const std::string& subkey)
{
  SetText(place, "", "CurProd", product);
  SetText(place, product, "CurVer", version);
  SetText(place, product + "\\" + version, "CurVer", subkey);
  AddKey(place, product + "\\" + version + "\\" + subkey);
}

void HostMachine::SetUsualHost()
{
  SetCurrentHost(UserHosts(), "AutoCAD", "R17.1", "ABCD-0001");
  Install(RegistryView::Native, "AutoCAD\\R17.1\\ABCD-0001", "C:\\Host");
}

void HostMachine::Install(RegistryView view, const std::string& path, const std::string& folder)
{
  Registry().SetText(HKEY_LOCAL_MACHINE, view, BelowBase(path), "AcadLocation", folder);
}

void HostMachine::SetDrawingClass(const std::string& className)
{
  Registry().SetText(HKEY_CLASSES_ROOT, RegistryView::Native, ".dwg", "", className);
}

SelectedHost HostMachine::Select(const std::string& arguments)
{
  QulString commandLine = Qul(arguments);
  QulString keyPath;
  QulString executable;
  bool is64Bit = false;
  const HostRelease release = SelectHost(commandLine, keyPath, executable, is64Bit);
  return {release, Utf8(commandLine), Utf8(keyPath), Utf8(executable), is64Bit};
}

QulString Qul(const std::string& utf8)
{
  return QulString(WideText(utf8).c_str());
}

std::string Utf8(const QulString& text)
{
  return Utf8(text.Text());
}
