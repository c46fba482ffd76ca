#include "launcher/InstallRepair.h"

#include "foundation/FatalEnd.h"

#include <windows.h>

#include <msi.h>
#include <psapi.h>
#include <shlobj.h>
#include <winver.h>

#include <stdlib.h>
#include <string.h>
#include <wchar.h>

namespace {

constexpr REGSAM ReadIn32BitView = KEY_READ | KEY_WOW64_32KEY;

constexpr DWORD ProductNameCharacters = 512;
constexpr DWORD DataBytes = 1024;

constexpr DWORD ModeOfCurrentLoader = REINSTALLMODE_USERDATA;
constexpr DWORD ModeOfOutdatedLoader = REINSTALLMODE_USERDATA | REINSTALLMODE_FILEOLDERVERSION;

// The first number of a version resource's "FileVersion". block is zero-terminated at its end.
unsigned int FirstVersionNumber(void* block)
{
  void* value = nullptr;
  UINT length = 0;
  char subBlock[] = "\\StringFileInfo\\040904b0\\FileVersion";
  if (VerQueryValueA(block, subBlock, &value, &length) == FALSE || value == nullptr)
    return 0;
  char* context = nullptr;
  const char* number = strtok_s(static_cast<char*>(value), ".", &context);
  // NOLINTNEXTLINE(cert-err34-c): a version that is no number is 0.
  return number == nullptr ? 0 : static_cast<unsigned int>(atoi(number));
}

// 0 if the file has no version.
unsigned int ReadFileRelease(const char* path)
{
  DWORD unusedHandle = 0;
  const DWORD size = GetFileVersionInfoSizeA(path, &unusedHandle);
  if (size == 0)
    return 0;
  // A byte more than the call is told: a damaged resource may hold a text without an end.
  char* block = static_cast<char*>(malloc(static_cast<size_t>(size) + 1));
  if (block == nullptr)
    return 0;
  block[size] = '\0';
  unsigned int release = 0;
  if (GetFileVersionInfoA(path, 0, size, block) != FALSE)
    release = FirstVersionNumber(block);
  free(block);
  return release;
}

void ReinstallProducts(DWORD mode)
{
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Norvane\\Kestrelforge\\2010\\Products", 0,
                    ReadIn32BitView, &key) != ERROR_SUCCESS) {
    return;
  }
  wchar_t productCode[ProductNameCharacters + 1] = {};
  BYTE data[DataBytes] = {};
  for (DWORD index = 0;; ++index) {
    DWORD nameSize = ProductNameCharacters;
    DWORD type = REG_SZ;
    DWORD dataSize = DataBytes;
    if (RegEnumValueW(key, index, productCode, &nameSize, nullptr, &type, data, &dataSize) !=
        ERROR_SUCCESS) {
      break;
    }
    // A product that can't be repaired doesn't keep the others from it.
    (void)MsiReinstallProductW(productCode, mode);
  }
  (void)RegCloseKey(key);
}

}  // namespace

void RepairInstallation()
{
  const bool comServerRegistered = IsComServerRegistered();
  const bool loaderOutdated = IsLoaderOutdated();
  if (!comServerRegistered && !loaderOutdated)
    return;
  ReinstallProducts(loaderOutdated ? ModeOfOutdatedLoader : ModeOfCurrentLoader);
}

bool IsComServerRegistered()
{
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT,
                    L"CLSID\\{4996A28C-5085-4349-8D86-81F00F3376F5}\\InprocServer32", 0,
                    ReadIn32BitView, &key) != ERROR_SUCCESS) {
    return false;
  }
  wchar_t server[DataBytes / sizeof(wchar_t) + 1] = {};
  DWORD size = DataBytes;
  const bool read = RegQueryValueExW(key, L"", nullptr, nullptr, reinterpret_cast<BYTE*>(server),
                                     &size) == ERROR_SUCCESS;
  (void)RegCloseKey(key);
  return read && wcslen(server) > 15;
}

bool IsLoaderOutdated()
{
  char launcherPath[MAX_PATH + 1] = {};
  const HANDLE process = GetCurrentProcess();
  (void)GetModuleFileNameExA(process, nullptr, launcherPath, MAX_PATH);
  (void)CloseHandle(process);

  // One reference for all: this file is installed for every host, whichever one was chosen.
  char loaderPath[MAX_PATH] = {};
  (void)SHGetSpecialFolderPathA(nullptr, loaderPath, CSIDL_PROGRAM_FILES_COMMONX86, FALSE);
  RequireFits(strcat_s(loaderPath, MAX_PATH, "\\Norvane\\QuillStartupLoader8x86.arx"));

  const unsigned int launcherRelease = ReadFileRelease(launcherPath);
  const unsigned int loaderRelease = ReadFileRelease(loaderPath);
  if (launcherRelease == 0 || loaderRelease == 0)
    return false;
  return loaderRelease < launcherRelease;
}
