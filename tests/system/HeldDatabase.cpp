#include "tests/system/HeldDatabase.h"

#include "sandbox/common/SandboxFiles.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>

namespace {

std::wstring UnixPath(const std::wstring& path)
{
  using UnixFileName = char*(CDECL*)(const wchar_t*);
  const FARPROC function =
      GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name");
  char* const name =
      reinterpret_cast<UnixFileName>(reinterpret_cast<void*>(function))(path.c_str());
  const std::wstring result = FromUtf8(name);
  HeapFree(GetProcessHeap(), 0, name);
  return result;
}

}  // namespace

HeldDatabase::HeldDatabase(const std::wstring& path) : mark(path + L".held")
{
  const std::string script = std::string(KESTREL_SOURCE_FOLDER) + "/sandbox/hold-database";
  std::wstring program = L"\\\\?\\unix" + FromUtf8(script);
  std::replace(program.begin(), program.end(), L'/', L'\\');
  std::wstring commandLine = L"hold-database " + UnixPath(path);
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  EXPECT_TRUE(CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0,
                             nullptr, nullptr, &startup, &process));
  for (int tries = 0; tries < 500 && !IsHeld(); ++tries) {
    Sleep(10);
  }
  EXPECT_TRUE(IsHeld()) << path;
}

HeldDatabase::~HeldDatabase()
{
  DeleteFileW(mark.c_str());
}

bool HeldDatabase::IsHeld() const
{
  return GetFileAttributesW(mark.c_str()) != INVALID_FILE_ATTRIBUTES;
}
