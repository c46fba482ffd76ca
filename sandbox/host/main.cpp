// The stand-in host: it takes AutoCAD's place under whatever file name it was copied to, writes
// down what it was started with, and ends.

#include "sandbox/common/SandboxFiles.h"

#include <windows.h>

#include <vector>

namespace {

// False if the variable isn't set, which a report can then tell from an empty one.
bool ReadVariable(const wchar_t* name, std::wstring& text)
{
  SetLastError(ERROR_SUCCESS);
  std::vector<wchar_t> buffer(65536);
  const DWORD length =
      GetEnvironmentVariableW(name, buffer.data(), static_cast<DWORD>(buffer.size()));
  text.assign(buffer.data(), length);
  return length != 0 || GetLastError() != ERROR_ENVVAR_NOT_FOUND;
}

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int)
{
  wchar_t folder[2048] = {};
  GetCurrentDirectoryW(2048, folder);
  std::wstring path;

  std::wstring report = L"command-line=" + std::wstring(GetCommandLineW()) + L"\n";
  report += L"current-folder=" + std::wstring(folder) + L"\n";
  report += L"bits=" + std::to_wstring(sizeof(void*) * 8) + L"\n";
  if (ReadVariable(L"PATH", path)) {
    report += L"path=" + path + L"\n";
  }

  const std::wstring program = OwnProgramPath();
  const std::wstring stem = program.substr(0, program.rfind(L'.'));
  return WriteWholeFile(stem + L".report.txt", ToUtf8(report)) ? 0 : 1;
}
