#include "sandbox/common/ProgramRun.h"

namespace {

// This process' environment with another PATH, in the form that CreateProcessW takes.
std::wstring EnvironmentBlock(const std::optional<std::wstring>& path)
{
  std::wstring block;
  wchar_t* const strings = GetEnvironmentStringsW();
  for (const wchar_t* entry = strings; *entry != L'\0'; entry += wcslen(entry) + 1) {
    if (_wcsnicmp(entry, L"PATH=", 5) != 0) {
      block.append(entry, wcslen(entry) + 1);
    }
  }
  FreeEnvironmentStringsW(strings);
  if (path) {
    block += L"PATH=" + *path;
    block += L'\0';
  }
  block += L'\0';
  return block;
}

std::string ReadDebugString(HANDLE process, const OUTPUT_DEBUG_STRING_INFO& info)
{
  std::string bytes(info.nDebugStringLength, '\0');
  SIZE_T read = 0;
  ReadProcessMemory(process, info.lpDebugStringData, bytes.data(), bytes.size(), &read);
  bytes.resize(read);
  return bytes.substr(0, bytes.find('\0'));
}

class DebugLoop
{
public:
  DebugLoop(HANDLE debuggedProcess, ProgramRun& runToFill)
      : process(debuggedProcess), run(runToFill)
  {
  }

  // Returns when the process has ended, by itself or because its time was over.
  void Follow(ULONGLONG deadline)
  {
    run.inTime = true;
    for (bool ended = false; !ended;) {
      const ULONGLONG now = GetTickCount64();
      DEBUG_EVENT event = {};
      if (!WaitForDebugEvent(&event, now < deadline ? static_cast<DWORD>(deadline - now) : 5000)) {
        if (!run.inTime) {
          return;
        }
        run.inTime = false;
        TerminateProcess(process, 0xDEAD);
        continue;
      }
      const DWORD answer = Take(event, ended);
      ContinueDebugEvent(event.dwProcessId, event.dwThreadId, answer);
    }
  }

private:
  DWORD Take(const DEBUG_EVENT& event, bool& ended)
  {
    switch (event.dwDebugEventCode) {
      case CREATE_PROCESS_DEBUG_EVENT: CloseHandle(event.u.CreateProcessInfo.hFile); break;
      case LOAD_DLL_DEBUG_EVENT: CloseHandle(event.u.LoadDll.hFile); break;
      case OUTPUT_DEBUG_STRING_EVENT:
        run.debugOutput.push_back(ReadDebugString(process, event.u.DebugString));
        break;
      case EXIT_PROCESS_DEBUG_EVENT:
        run.exitCode = event.u.ExitProcess.dwExitCode;
        ended = true;
        break;
      case EXCEPTION_DEBUG_EVENT:
        return TakeException(event.u.Exception.ExceptionRecord.ExceptionCode);
      default: break;
    }
    return DBG_CONTINUE;
  }

  DWORD TakeException(DWORD code)
  {
    // The system's own stop at the start of a debugged process.
    if (code == EXCEPTION_BREAKPOINT && !sawFirstBreakpoint) {
      sawFirstBreakpoint = true;
      return DBG_CONTINUE;
    }
    run.exceptions.push_back(code);
    return DBG_EXCEPTION_NOT_HANDLED;
  }

  HANDLE process;
  ProgramRun& run;
  bool sawFirstBreakpoint = false;
};

JOBOBJECT_BASIC_ACCOUNTING_INFORMATION AccountsOf(HANDLE job)
{
  JOBOBJECT_BASIC_ACCOUNTING_INFORMATION accounts = {};
  QueryInformationJobObject(job, JobObjectBasicAccountingInformation, &accounts, sizeof accounts,
                            nullptr);
  return accounts;
}

// Children are born into the job of their parent. So the job knows whether there were any, and when
// the last one has ended.
void FollowWithChildren(const PROCESS_INFORMATION& process, ULONGLONG deadline, ProgramRun& run)
{
  const HANDLE job = CreateJobObjectW(nullptr, nullptr);
  run.started = AssignProcessToJobObject(job, process.hProcess) != 0;
  ResumeThread(process.hThread);
  DebugLoop(process.hProcess, run).Follow(deadline);
  while (AccountsOf(job).ActiveProcesses != 0 && GetTickCount64() < deadline) {
    Sleep(2);
  }
  run.inTime = run.inTime && AccountsOf(job).ActiveProcesses == 0;
  run.children = AccountsOf(job).TotalProcesses - 1;
  TerminateJobObject(job, 0xDEAD);
  CloseHandle(job);
}

}  // namespace

ProgramRun RunProgram(const ProgramStart& start)
{
  ProgramRun run;
  const ULONGLONG deadline = GetTickCount64() + start.timeLimit;
  std::wstring environment = EnvironmentBlock(start.path);
  std::wstring commandLine = start.commandLine.value_or(L"");
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};

  run.started =
      CreateProcessW(start.program.c_str(), start.commandLine ? commandLine.data() : nullptr,
                     nullptr, nullptr, FALSE,
                     CREATE_SUSPENDED | CREATE_UNICODE_ENVIRONMENT | DEBUG_ONLY_THIS_PROCESS,
                     environment.data(), start.folder.empty() ? nullptr : start.folder.c_str(),
                     &startup, &process) != 0;
  if (!run.started) {
    return run;
  }
  if (start.leaveChildren) {
    ResumeThread(process.hThread);
    DebugLoop(process.hProcess, run).Follow(deadline);
  } else {
    FollowWithChildren(process, deadline, run);
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return run;
}
