#include "host/HostSelection.h"

#include "host/HostEnumeration.h"
#include "host/HostVersionArgument.h"

#include <stdlib.h>

namespace {

constexpr HostRelease ReleaseOfVersion15 = 0;
constexpr HostRelease ReleaseOfVersion18 = 3;

struct ReleaseTag
{
  const wchar_t* tag;
  HostRelease release;
};

// Tested in this order, the first tag found anywhere in the name settles the release.
constexpr ReleaseTag ReleaseTags[] = {{L"R16", 1}, {L"R9", 1},  {L"R10", 1}, {L"R11", 1},
                                      {L"R17", 2}, {L"R12", 2}, {L"R18", 3}, {L"R13", 3}};

HostRelease ReleaseOfVersionKey(const QulString& name)
{
  for (const ReleaseTag& row : ReleaseTags) {
    if (name.Find(row.tag) >= 0)
      return row.release;
  }
  return HostReleaseUnknown;
}

// ABCD.exe for the subkey ABCD-0001: the file's name is stored nowhere.
QulString ExecutableName(const QulString& productSubkey)
{
  const int dash = productSubkey.Find(L"-");
  return productSubkey.Left(dash >= 0 ? dash : 4) + L".exe";
}

// Follows the current product, version and product subkey down to the host's key.
HostRelease SelectCurrentHost(bool isVersion15, QulString& hostKeyPath, QulString& hostExecutable,
                              bool& hostIs64Bit)
{
  HostRelease release = isVersion15 ? ReleaseOfVersion15 : ReleaseOfVersion18;
  HKEY productKey = nullptr;
  QulString productPath;
  if (OpenHostProductKey(isVersion15, productKey, productPath) != ERROR_SUCCESS)
    return release;
  hostKeyPath = productPath;

  const QulString currentRelease = ReadHostValue(productKey, L"CurVer");
  if (!isVersion15)
    release = ReleaseOfVersionKey(currentRelease);

  const QulString versionSubkey = currentRelease + L"\\";
  HKEY versionKey = nullptr;
  const LONG versionStatus =
      RegOpenKeyExW(productKey, versionSubkey.Text(), 0, KEY_QUERY_VALUE, &versionKey);
  (void)RegCloseKey(productKey);
  if (versionStatus != ERROR_SUCCESS)
    return release;
  hostKeyPath.Append(versionSubkey);

  const QulString productSubkey = ReadHostValue(versionKey, L"CurVer") + L"\\";
  const QulString exeName = ExecutableName(productSubkey);
  HKEY hostKey = nullptr;
  const LONG hostStatus =
      RegOpenKeyExW(versionKey, productSubkey.Text(), 0, KEY_QUERY_VALUE, &hostKey);
  (void)RegCloseKey(versionKey);
  if (hostStatus != ERROR_SUCCESS)
    return release;
  hostKeyPath.Append(productSubkey);
  (void)RegCloseKey(hostKey);

  LocateHostExecutable(hostKeyPath, exeName, hostExecutable, hostIs64Bit);
  return release;
}

}  // namespace

HostRelease SelectHost(QulString& commandLine, QulString& hostKeyPath, QulString& hostExecutable,
                       bool& hostIs64Bit)
{
  hostExecutable.Assign(L"");
  HostRelease release = HostReleaseUnknown;
  if (commandLine.Find(HostVersionSwitch) >= 0) {
    // cppcheck-suppress redundantInitialization ; no variable begins without a value here
    release = ResolveRequestedHost(commandLine, hostKeyPath, hostExecutable, hostIs64Bit);
  } else {
    const bool isVersion15 = ReadDwgAssociationVersion() == 15;
    release = SelectCurrentHost(isVersion15, hostKeyPath, hostExecutable, hostIs64Bit);
  }
  commandLine.TrimLeft();
  commandLine = L"/nologo " + commandLine;
  return release;
}

int ReadDwgAssociationVersion()
{
  // Twice the room of the longest class name meant. The query is told all of it, and a terminator
  // more stands behind.
  constexpr DWORD toldBytes = 8192;
  int version = -1;
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, L".dwg", 0, KEY_QUERY_VALUE, &key) == ERROR_SUCCESS) {
    wchar_t className[toldBytes / sizeof(wchar_t) + 1] = {};
    DWORD size = toldBytes;
    if (RegQueryValueExW(key, L"", nullptr, nullptr, reinterpret_cast<BYTE*>(className), &size) ==
        ERROR_SUCCESS) {
      version = _wtoi(QulString(className).Right(2).Text());
    }
  }
  // Also when the open failed: closing no key is harmless.
  (void)RegCloseKey(key);
  return version;
}
