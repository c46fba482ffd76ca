#include "sandbox/common/SandboxFiles.h"

#include <windows.h>

std::string ToUtf8(const std::wstring& text)
{
  const int size = static_cast<int>(text.size());
  const int needed =
      WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<size_t>(needed), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), size, result.data(), needed, nullptr, nullptr);
  return result;
}

std::wstring FromUtf8(const std::string& text)
{
  const int size = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
  std::wstring result(static_cast<size_t>(needed), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), size, result.data(), needed);
  return result;
}

std::wstring OwnProgramPath()
{
  wchar_t path[2048] = {};
  const DWORD length = GetModuleFileNameW(nullptr, path, 2048);
  return std::wstring(path, length);
}

std::wstring FolderOf(const std::wstring& path)
{
  const size_t backslash = path.rfind(L'\\');
  return backslash == std::wstring::npos ? std::wstring() : path.substr(0, backslash);
}

bool MakeFolders(const std::wstring& folder)
{
  const DWORD attributes = GetFileAttributesW(folder.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES) {
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  }
  const std::wstring parent = FolderOf(folder);
  if (!parent.empty() && parent.back() != L':' && !MakeFolders(parent)) {
    return false;
  }
  return CreateDirectoryW(folder.c_str(), nullptr) != 0;
}

bool WriteWholeFile(const std::wstring& path, const std::string& content)
{
  const std::wstring unfinished = path + L".unfinished";
  const HANDLE file = CreateFileW(unfinished.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    return false;
  }
  DWORD written = 0;
  const DWORD size = static_cast<DWORD>(content.size());
  const bool complete =
      WriteFile(file, content.data(), size, &written, nullptr) != 0 && written == size;
  CloseHandle(file);
  return complete && MoveFileExW(unfinished.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
}

bool ReadWholeFile(const std::wstring& path, std::string& content)
{
  content.clear();
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    return false;
  }
  content.resize(GetFileSize(file, nullptr));
  DWORD read = 0;
  const bool complete =
      ReadFile(file, content.data(), static_cast<DWORD>(content.size()), &read, nullptr) != 0 &&
      read == content.size();
  CloseHandle(file);
  if (!complete) {
    content.clear();
  }
  return complete;
}
