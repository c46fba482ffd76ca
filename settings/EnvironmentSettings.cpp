#include "settings/EnvironmentSettings.h"

#include <windows.h>

namespace {

const wchar_t* const EnvironmentKey = L"Software\\Norvane\\Kestrelforge\\2010\\Environment";
const wchar_t* const ConnectionsKey = L"Software\\Norvane\\DatabaseConnections";

// Values are meant to hold up to 2047 characters, and queries are told twice that room. The memory
// is what the queries are told, and a terminator more for a value that was stored without one.
constexpr DWORD ToldBytes = 8192;
constexpr size_t BufferCharacters = ToldBytes / sizeof(wchar_t) + 1;

void StripTrailingBackslash(QulString& text)
{
  if (text.Length() < 2)
    return;
  if (text.Right(1).EqualsNoCase(L"\\"))
    text.Assign(text.Left(text.Length() - 1));
}

// True if the value was read; else result is as it was.
bool ReadString(HKEY root, const QulString& keyPath, const QulString& valueName, REGSAM access,
                QulString& result)
{
  HKEY key = nullptr;
  if (RegOpenKeyExW(root, keyPath.Text(), 0, access, &key) != ERROR_SUCCESS)
    return false;
  wchar_t buffer[BufferCharacters] = {};
  DWORD type = REG_SZ;
  DWORD size = ToldBytes;
  const bool read = RegQueryValueExW(key, valueName.Text(), nullptr, &type,
                                     reinterpret_cast<BYTE*>(buffer), &size) == ERROR_SUCCESS;
  // Before the text is made: memory that runs out there ends the update, and the launch goes on.
  (void)RegCloseKey(key);
  if (read)
    result.Assign(buffer);
  return read;
}

}  // namespace

QulString GetEnvironmentKey()
{
  return QulString(EnvironmentKey);
}

int ReadMachineRegistryString(const QulString& key, const QulString& valueName, QulString& result,
                              int /*unused*/, bool use32BitView)
{
  const REGSAM access = use32BitView ? KEY_READ | KEY_WOW64_32KEY : KEY_READ;
  const bool read = ReadString(HKEY_LOCAL_MACHINE, key, valueName, access, result);
  StripTrailingBackslash(result);
  return read ? 1 : 0;
}

QulString GetBinPath(bool use32BitView)
{
  QulString binPath;
  (void)ReadMachineRegistryString(GetEnvironmentKey(), L"BinPath", binPath, 0, use32BitView);
  // A second time: the installer's folder property may bring a backslash of its own to the value's.
  StripTrailingBackslash(binPath);
  return binPath;
}

QulString GetDataPath()
{
  QulString dataPath;
  // A value that is there but empty counts: that is how a user hides the machine's.
  const bool found =
      ReadString(HKEY_CURRENT_USER, GetEnvironmentKey(), L"DataPath", KEY_READ, dataPath);
  if (!found)
    (void)ReadMachineRegistryString(GetEnvironmentKey(), L"DataPath", dataPath, 0, false);
  StripTrailingBackslash(dataPath);
  return dataPath;
}

QulString GetRegisteredConnection(const QulString& name)
{
  QulString connection;
  if (ReadString(HKEY_CURRENT_USER, ConnectionsKey, name, KEY_READ, connection))
    return connection;
  (void)ReadString(HKEY_LOCAL_MACHINE, ConnectionsKey, name, KEY_READ, connection);
  return connection;
}
