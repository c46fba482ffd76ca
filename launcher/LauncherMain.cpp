#include "launcher/LauncherMain.h"

#include "host/DemandLoadRegistration.h"
#include "host/HostSelection.h"
#include "launcher/InstallRepair.h"
#include "launcher/PathEnvironment.h"
#include "launcher/ProductModules.h"
#include "settings/EnvironmentSettings.h"
#include "update/DatabaseUpdateManager.h"

namespace {

// Spelled as it has been since the first release.
const wchar_t* const StartupKey = L"SoftWare\\Norvane\\Kestrelforge\\2010\\Startup";
const wchar_t* const AddOnKey = L"SoftWare\\Norvane\\Kestrelforge\\2010";

constexpr wchar_t ProfileName[] = L"Kestrelforge";
constexpr wchar_t ProfileDescription[] = L"Kestrelforge Profile";

// Writes text of the given size in bytes. A failed write leaves the old value, and the run goes on.
void WriteText(HKEY key, const wchar_t* valueName, const wchar_t* text, size_t bytes)
{
  (void)RegSetValueExW(key, valueName, 0, REG_SZ, reinterpret_cast<const BYTE*>(text),
                       static_cast<DWORD>(bytes));
}

}  // namespace

int32_t LauncherMain(HINSTANCE /*instance*/, HINSTANCE /*previousInstance*/, const char* arguments,
                     int32_t /*showState*/)
{
  QulString commandLine;
  commandLine.AssignNarrow(arguments);
  QulString hostKeyPath;
  QulString hostExecutable;
  bool hostIs64Bit = false;
  const HostRelease hostRelease = SelectHost(commandLine, hostKeyPath, hostExecutable, hostIs64Bit);
  if (hostExecutable.Length() < 1)
    return 0;

  HKEY key = nullptr;
  DWORD disposition = 0;
  wchar_t noClass[] = L"";
  if (RegCreateKeyExW(HKEY_CURRENT_USER, StartupKey, 0, noClass, REG_OPTION_NON_VOLATILE,
                      KEY_SET_VALUE, nullptr, &key, &disposition) != ERROR_SUCCESS) {
    return 0;
  }
  // The settings of a 32-bit installation stand in the 32-bit view.
  const QulString binPath = GetBinPath(!hostIs64Bit);
  for (const QulString& module : ProductModules) {
    const QulString loaderPath =
        binPath + L"\\Forge\\BIN\\" + module + LoaderSuffix(hostRelease, hostIs64Bit);
    // The terminator isn't counted here, unlike below.
    WriteText(key, module.Text(), loaderPath.Text(),
              static_cast<size_t>(loaderPath.Length()) * sizeof(wchar_t));
  }

  // The handle of the Startup key is given up here; the system closes it when the process ends.
  if (RegOpenKeyExW(HKEY_CURRENT_USER, AddOnKey, 0, KEY_SET_VALUE, &key) != ERROR_SUCCESS)
    return 0;
  WriteText(key, L"ProfileName", ProfileName, sizeof(ProfileName));
  WriteText(key, L"ProfDescription", ProfileDescription, sizeof(ProfileDescription));
  (void)RegCloseKey(key);

  RegisterDemandLoad(hostKeyPath, hostRelease, hostIs64Bit);
  RepairInstallation();
  RunDatabaseUpdate(0, 0);
  // Last before the start: the host inherits the new PATH, the repair doesn't.
  UpdatePathEnvironment();
  StartHost(hostExecutable, commandLine);
  return 0;
}

const wchar_t* LoaderSuffix(HostRelease hostRelease, bool hostIs64Bit)
{
  switch (hostRelease) {
    case 0: return L"6x86.arx";
    case 1: return L"7x86.arx";
    case 2: return hostIs64Bit ? L"8x64.arx" : L"8x86.arx";
    case 3: return hostIs64Bit ? L"9x64.arx" : L"9x86.arx";
    default: return L"";
  }
}

void StartHost(QulString hostExecutable, QulString commandLine)
{
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process = {};
  // The wide call may write to the command line while it works, hence not const; it leaves the
  // text as it was. The handles that come back end with this process.
  (void)CreateProcessW(hostExecutable.Text(), const_cast<wchar_t*>(commandLine.Text()), nullptr,
                       nullptr, TRUE, 0, nullptr, nullptr, &startup, &process);
}
