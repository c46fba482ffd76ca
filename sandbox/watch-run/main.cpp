// Starts a program as its debugger, prints what it sends to the debug output, as it was sent, and
// ends with its exit code: WatchRun.exe <full path of the program> [arguments of the program]

#include "sandbox/common/ProgramRun.h"
#include "sandbox/common/SandboxFiles.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <stdio.h>

namespace {

// What stands behind the first argument, which may be in quotes.
const wchar_t* BehindFirstArgument(const wchar_t* text)
{
  const wchar_t end = *text == L'"' ? *text++ : L' ';
  while (*text != L'\0' && *text != end) {
    ++text;
  }
  if (*text == L'"') {
    ++text;
  }
  while (*text == L' ') {
    ++text;
  }
  return text;
}

std::wstring FirstArgument(const std::wstring& text)
{
  return text.front() == L'"' ? text.substr(1, text.find(L'"', 1) - 1)
                              : text.substr(0, text.find(L' '));
}

std::optional<std::wstring> OwnPath()
{
  const DWORD size = GetEnvironmentVariableW(L"PATH", nullptr, 0);
  if (size == 0) {
    return std::nullopt;
  }
  std::wstring path(size, L'\0');
  path.resize(GetEnvironmentVariableW(L"PATH", path.data(), size));
  return path;
}

}  // namespace

int main()
{
  ProgramStart start;
  start.commandLine = BehindFirstArgument(GetCommandLineW());
  if (start.commandLine->empty()) {
    fputs("usage: WatchRun <full path of a program> [its arguments]\n", stderr);
    return 1;
  }
  start.program = FirstArgument(*start.commandLine);
  start.path = OwnPath();
  start.leaveChildren = true;
  const ProgramRun run = RunProgram(start);
  _setmode(_fileno(stdout), _O_BINARY);
  for (const std::string& text : run.debugOutput) {
    fputs(text.c_str(), stdout);
  }
  if (!run.started || !run.inTime || !run.exceptions.empty()) {
    fputs("WatchRun: the program didn't start, didn't end, or failed\n", stderr);
    return 1;
  }
  return static_cast<int>(run.exitCode);
}
