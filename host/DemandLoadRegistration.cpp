#include "host/DemandLoadRegistration.h"

#include "foundation/FatalEnd.h"

#include <windows.h>

#include <shlobj.h>

namespace {

const wchar_t* const StartupLoaderKey = L"\\QuillStartupLoader";
const wchar_t* const TarnwheelsKey = L"\\Tarnwheels";
const wchar_t* const KestrelforgeKey = L"\\Kestrelforge";
const wchar_t* const ProfileDesignerKey = L"\\QuillProfileDesigner";

const wchar_t* const StartupDescription =
    L"KF component in charge of loading or unloading the proper KF version";
const wchar_t* const DemandDescription =
    L"KF component in charge of loading the proper KF version on demand";
const wchar_t* const ProfileDesignerDescription =
    L"KF component in charge of loading the proper Profile Designer version on demand";

// The host's demand-load field is a sum of 1 (proxy object met), 2 (start-up of the host), 4
// (command called) and 8 (on request).
constexpr uint32_t LoadAtStartup = 2;
constexpr uint32_t LoadOnDemand = 1 + 4 + 8;

// Each command is a value whose name and text are the same.
const wchar_t* const ProfileDesignerCommands[] = {
    L"QulM4ProfileDesigner",     L"TARN_AddCoord", L"TARN_addProfiles",
    L"TARN_addSelectedProfiles", L"TARN_NUMDIVS",  L"TARN_userprofmenu"};

constexpr size_t FileNamePartCharacters = 5;

const wchar_t* ReleasePart(HostRelease hostRelease)
{
  switch (hostRelease) {
    case 0: return L"6x";
    case 1: return L"7x";
    case 2: return L"8x";
    case 3: return L"9x";
    default: return L"";
  }
}

void ComposeKeyPath(wchar_t (&keyPath)[KeyPathCharacters], const QulString& applicationsPath,
                    const wchar_t* subkey)
{
  RequireFits(wcscpy_s(keyPath, KeyPathCharacters, applicationsPath.Text()));
  RequireFits(wcscat_s(keyPath, KeyPathCharacters, subkey));
}

// Opens the key for writing, or creates it. Null if neither works.
HKEY OpenKeyForWriting(const wchar_t* keyPath)
{
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, keyPath, 0, KEY_WRITE, &key) == ERROR_SUCCESS)
    return key;
  if (RegCreateKeyExW(HKEY_CURRENT_USER, keyPath, 0, nullptr, REG_OPTION_NON_VOLATILE,
                      KEY_ALL_ACCESS, nullptr, &key, nullptr) == ERROR_SUCCESS) {
    return key;
  }
  return nullptr;
}

int32_t SetRegistryValue(const wchar_t* keyPath, const wchar_t* valueName, DWORD type,
                         const void* data, size_t bytes)
{
  const HKEY key = OpenKeyForWriting(keyPath);
  if (key == nullptr)
    return 0;
  const LONG status = RegSetValueExW(key, valueName, 0, type, static_cast<const BYTE*>(data),
                                     static_cast<DWORD>(bytes));
  (void)RegCloseKey(key);
  return status == ERROR_SUCCESS ? 1 : 0;
}

}  // namespace

void RegisterDemandLoad(QulString hostKeyPath, HostRelease hostRelease, bool hostIs64Bit)
{
  // The open tells whether the user may write there. Its handle lasts to the end of the process.
  HKEY hostKey = nullptr;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, hostKeyPath.Text(), 0, KEY_ALL_ACCESS, &hostKey) !=
      ERROR_SUCCESS) {
    return;
  }
  // No separator: a host key demanded by version and product comes without a trailing backslash,
  // and its entries then stand in a key beside it, in this run and in all that look for them.
  const QulString applicationsPath = hostKeyPath + L"Applications";
  if (IsLoaderRegistered(applicationsPath))
    return;
  (void)WriteDemandLoadEntries(applicationsPath, hostRelease, hostIs64Bit);
}

bool IsLoaderRegistered(QulString applicationsPath)
{
  const QulString keyPath = applicationsPath + StartupLoaderKey;
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, keyPath.Text(), 0, KEY_READ, &key) != ERROR_SUCCESS)
    return false;
  (void)RegCloseKey(key);
  return true;
}

int32_t WriteDemandLoadEntries(QulString applicationsPath, HostRelease hostRelease,
                               bool hostIs64Bit)
{
  if (hostRelease == HostReleaseUnknown)
    return 0;

  wchar_t* startupLoaderFile = new wchar_t[ModulePathCharacters];
  wchar_t* demandLoadFile = new wchar_t[ModulePathCharacters];
  wchar_t* profileDesignerFile = new wchar_t[ModulePathCharacters];
  const int32_t composed = ComposeLoaderFileNames(
      hostRelease, startupLoaderFile, ModulePathCharacters, demandLoadFile, ModulePathCharacters,
      profileDesignerFile, ModulePathCharacters, hostIs64Bit);
  if (composed != 0) {
    wchar_t startupKey[KeyPathCharacters];
    wchar_t tarnwheelsKey[KeyPathCharacters];
    wchar_t kestrelforgeKey[KeyPathCharacters];
    wchar_t designerKey[KeyPathCharacters];
    ComposeKeyPath(startupKey, applicationsPath, StartupLoaderKey);
    ComposeKeyPath(tarnwheelsKey, applicationsPath, TarnwheelsKey);
    ComposeKeyPath(kestrelforgeKey, applicationsPath, KestrelforgeKey);
    ComposeKeyPath(designerKey, applicationsPath, ProfileDesignerKey);

    // No result is looked at: what can't be written is missing, the rest still serves.
    (void)SetRegistryString(startupKey, L"DESCRIPTION", StartupDescription);
    (void)SetLoadCtrls(startupKey, L"LOADCTRLS", LoadAtStartup);
    (void)SetRegistryString(startupKey, L"LOADER", startupLoaderFile);

    (void)SetRegistryString(tarnwheelsKey, L"DESCRIPTION", DemandDescription);
    (void)SetRegistryString(kestrelforgeKey, L"DESCRIPTION", DemandDescription);
    (void)SetLoadCtrls(tarnwheelsKey, L"LOADCTRLS", LoadOnDemand);
    (void)SetLoadCtrls(kestrelforgeKey, L"LOADCTRLS", LoadOnDemand);
    (void)SetRegistryString(tarnwheelsKey, L"LOADER", demandLoadFile);
    (void)SetRegistryString(kestrelforgeKey, L"LOADER", demandLoadFile);

    (void)SetRegistryString(designerKey, L"DESCRIPTION", ProfileDesignerDescription);
    (void)SetLoadCtrls(designerKey, L"LOADCTRLS", LoadOnDemand);
    (void)SetRegistryString(designerKey, L"LOADER", profileDesignerFile);

    RequireFits(wcscat_s(designerKey, KeyPathCharacters, L"\\Commands"));
    for (const wchar_t* command : ProfileDesignerCommands)
      (void)SetRegistryString(designerKey, command, command);
  }
  delete[] profileDesignerFile;
  delete[] demandLoadFile;
  delete[] startupLoaderFile;
  return composed != 0 ? 1 : 0;
}

int32_t ComposeLoaderFileNames(HostRelease hostRelease, wchar_t* startupLoaderFile,
                               size_t startupLoaderSize, wchar_t* demandLoadFile,
                               size_t demandLoadSize, wchar_t* profileDesignerFile,
                               size_t profileDesignerSize, bool hostIs64Bit)
{
  wchar_t releasePart[FileNamePartCharacters];
  wchar_t widthPart[FileNamePartCharacters];
  RequireFits(wcscpy_s(releasePart, FileNamePartCharacters, ReleasePart(hostRelease)));
  // The host's width for every release, also where only 32-bit loaders were ever made.
  RequireFits(wcscpy_s(widthPart, FileNamePartCharacters, hostIs64Bit ? L"64" : L"86"));

  startupLoaderFile[0] = L'\0';
  const int folder = hostIs64Bit ? CSIDL_PROGRAM_FILES_COMMON : CSIDL_PROGRAM_FILES_COMMONX86;
  (void)SHGetSpecialFolderPathW(nullptr, startupLoaderFile, folder, FALSE);
  RequireFits(wcscat_s(startupLoaderFile, startupLoaderSize, L"\\Norvane\\"));
  RequireFits(wcscpy_s(demandLoadFile, demandLoadSize, startupLoaderFile));
  RequireFits(wcscpy_s(profileDesignerFile, profileDesignerSize, startupLoaderFile));

  struct FileName
  {
    wchar_t* path;
    size_t size;
    const wchar_t* baseName;
  };
  const FileName files[] = {
      {startupLoaderFile, startupLoaderSize, L"QuillStartupLoader"},
      {demandLoadFile, demandLoadSize, L"KFDemandLoadHelper"},
      {profileDesignerFile, profileDesignerSize, L"ProfDesignDemandLoadHelper"}};
  for (const FileName& file : files) {
    RequireFits(wcscat_s(file.path, file.size, file.baseName));
    RequireFits(wcscat_s(file.path, file.size, releasePart));
    RequireFits(wcscat_s(file.path, file.size, widthPart));
    RequireFits(wcscat_s(file.path, file.size, L".arx"));
  }
  return 1;
}

int32_t SetRegistryString(const wchar_t* keyPath, const wchar_t* valueName, const wchar_t* text)
{
  return SetRegistryValue(keyPath, valueName, REG_SZ, text, wcslen(text) * sizeof(wchar_t));
}

int32_t SetLoadCtrls(const wchar_t* keyPath, const wchar_t* /*valueName*/, uint32_t number)
{
  return SetRegistryValue(keyPath, L"LOADCTRLS", REG_DWORD, &number, sizeof(number));
}
