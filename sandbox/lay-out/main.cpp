// Makes this machine the one that is described in the folder machines\<name> beside this program:
// imports its registry.reg with REGEDIT and copies what its files.txt names. Each line of that file
// is "what -> where": a file that lies beside this program and the full path under which it is to
// lie. A line that starts with # is a comment.

#include "sandbox/common/MachinePermission.h"
#include "sandbox/common/SandboxFiles.h"

#include <windows.h>

#include <shellapi.h>
#include <stdio.h>

#include <sstream>

namespace {

bool Complain(const char* what, const std::wstring& name)
{
  fprintf(stderr, "lay-out: %s: %s\n", what, ToUtf8(name).c_str());
  return false;
}

bool CopyLine(const std::wstring& line)
{
  const std::wstring arrow = L" -> ";
  const size_t middle = line.find(arrow);
  if (middle == std::wstring::npos) {
    return Complain("a line without an arrow", line);
  }
  const std::wstring from = FolderOf(OwnProgramPath()) + L"\\" + line.substr(0, middle);
  const std::wstring to = line.substr(middle + arrow.size());
  if (!MakeFolders(FolderOf(to)) || !CopyFileW(from.c_str(), to.c_str(), FALSE)) {
    return Complain("can't copy", line);
  }
  return true;
}

bool CopyFiles(const std::wstring& listPath)
{
  std::string content;
  if (!ReadWholeFile(listPath, content)) {
    return Complain("can't read", listPath);
  }
  std::istringstream lines(content);
  std::string line;
  bool good = true;
  while (std::getline(lines, line)) {
    if (!line.empty() && line.front() != '#') {
      good = CopyLine(FromUtf8(line)) && good;
    }
  }
  return good;
}

bool ImportRegistry(const std::wstring& file)
{
  if (GetFileAttributesW(file.c_str()) == INVALID_FILE_ATTRIBUTES) {
    return Complain("can't find", file);
  }
  std::wstring commandLine = L"regedit.exe /S \"" + file + L"\"";
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                      &startup, &process)) {
    return Complain("can't start", commandLine);
  }
  DWORD exitCode = 1;
  WaitForSingleObject(process.hProcess, INFINITE);
  GetExitCodeProcess(process.hProcess, &exitCode);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return exitCode == 0 || Complain("REGEDIT refused", file);
}

}  // namespace

int main()
{
  int count = 0;
  wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
  const std::wstring name = count == 2 ? arguments[1] : L"";
  LocalFree(arguments);
  if (name.empty()) {
    fputs("usage: LayOutMachine <name of a machine>\n", stderr);
    return 1;
  }
  if (!MachineIsOffered()) {
    return 1;
  }
  const std::wstring folder = FolderOf(OwnProgramPath()) + L"\\machines\\" + name;
  const bool good =
      ImportRegistry(folder + L"\\registry.reg") && CopyFiles(folder + L"\\files.txt");
  return good ? 0 : 1;
}
