#include "tests/doubles/ShellDouble.h"

#include "tests/doubles/Recorder.h"
#include "tests/doubles/Text.h"

#include <windows.h>

#include <shlobj.h>

#include <string.h>

#include <map>

namespace {

// A folder that was removed has an empty path.
struct ShellState
{
  std::map<int, std::string> folders = {
      {CSIDL_PROGRAM_FILES_COMMON, "C:\\Program Files\\Common Files"},
      {CSIDL_PROGRAM_FILES_COMMONX86, "C:\\Program Files (x86)\\Common Files"}};
};

ShellState& State()
{
  static ShellState state;
  return state;
}

std::string CallText(const char* function, HWND window, int folder, BOOL create)
{
  return std::string(function) + "(" + (window == nullptr ? "null" : "window") + ", " +
         std::to_string(folder) + ", " + std::to_string(create) + ")";
}

// Empty if the call is to fail.
std::string FolderPath(const char* function, int folder)
{
  const auto found = State().folders.find(folder);
  if (found == State().folders.end())
    EndUnprepared(std::string(function) + " was asked for folder " + std::to_string(folder) + ".");
  return FailsWithLastError(function) ? std::string() : found->second;
}

}  // namespace

void ShellDouble::SetFolder(int folder, const std::string& path)
{
  State().folders[folder] = path;
}

void ShellDouble::RemoveFolder(int folder)
{
  State().folders[folder].clear();
}

ShellDouble& ShellFolders()
{
  static ShellDouble shell;
  return shell;
}

void ResetShell()
{
  State() = ShellState();
}

BOOL WINAPI SHGetSpecialFolderPathW(HWND window, LPWSTR path, int folder, BOOL create)
{
  const WideText text(FolderPath("SHGetSpecialFolderPathW", folder));
  const BOOL result = text.Length() > 0 ? TRUE : FALSE;
  if (result != FALSE)
    memcpy(path, text.c_str(), (text.Length() + 1) * sizeof(wchar_t));
  WriteDiary(CallText("SHGetSpecialFolderPathW", window, folder, create) + " = " +
             std::to_string(result));
  return result;
}

BOOL WINAPI SHGetSpecialFolderPathA(HWND window, LPSTR path, int folder, BOOL create)
{
  const std::string text = AnsiFromUtf8(FolderPath("SHGetSpecialFolderPathA", folder));
  const BOOL result = text.empty() ? FALSE : TRUE;
  if (result != FALSE)
    memcpy(path, text.c_str(), text.size() + 1);
  WriteDiary(CallText("SHGetSpecialFolderPathA", window, folder, create) + " = " +
             std::to_string(result));
  return result;
}
