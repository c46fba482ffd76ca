#include "tests/doubles/ProcessDouble.h"

#include "tests/doubles/Recorder.h"
#include "tests/doubles/Text.h"

#include <psapi.h>

#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>

namespace {

struct ProcessState
{
  std::string modulePath = "C:\\Launcher\\KestrelforgeLauncher.exe";
  std::vector<StartedProcess> started;
  std::vector<HANDLE> openHandles;
  uintptr_t lastHandle = 0;
};

ProcessState& State()
{
  static ProcessState state;
  return state;
}

HANDLE CurrentProcess()
{
  return reinterpret_cast<HANDLE>(static_cast<intptr_t>(-1));
}

std::string NameOf(HANDLE handle)
{
  if (handle == CurrentProcess())
    return "current process";
  return handle == nullptr ? "null" : "handle";
}

HANDLE GiveHandle()
{
  ProcessState& state = State();
  // Beside the handles of the registry.
  state.lastHandle += 4;
  state.openHandles.push_back(reinterpret_cast<HANDLE>(state.lastHandle));
  return state.openHandles.back();
}

bool IsZero(const void* memory, size_t bytes)
{
  const unsigned char* p = static_cast<const unsigned char*>(memory);
  return std::all_of(p, p + bytes, [](unsigned char byte) { return byte == 0; });
}

// All but the field cb.
bool IsZeroed(const STARTUPINFOW& startup, const PROCESS_INFORMATION& process)
{
  STARTUPINFOW rest;
  memcpy(&rest, &startup, sizeof(rest));
  rest.cb = 0;
  return IsZero(&rest, sizeof(rest)) && IsZero(&process, sizeof(process));
}

std::string AddressText(const void* address)
{
  return address == nullptr ? "null" : "given";
}

}  // namespace

void ProcessDouble::SetModulePath(const std::string& path)
{
  State().modulePath = path;
}

const std::vector<StartedProcess>& ProcessDouble::Started() const
{
  return State().started;
}

ProcessDouble& Processes()
{
  static ProcessDouble processes;
  return processes;
}

void ResetProcesses()
{
  State() = ProcessState();
}

HANDLE WINAPI GetCurrentProcess()
{
  WriteDiary("GetCurrentProcess()");
  return CurrentProcess();
}

BOOL WINAPI TerminateProcess(HANDLE process, DWORD exitCode)
{
  if (process != CurrentProcess())
    EndUnprepared("TerminateProcess was called for another process.");
  WriteDiary("TerminateProcess(current process, " + Hex(exitCode) + ")");
  (void)fprintf(stderr, "TerminateProcess 0x%X\n", exitCode);
  _exit(3);
}

BOOL WINAPI CloseHandle(HANDLE handle)
{
  const std::string line = "CloseHandle(" + NameOf(handle);
  BOOL result = FALSE;
  if (!FailsWithLastError("CloseHandle")) {
    std::vector<HANDLE>& handles = State().openHandles;
    const bool closed = std::erase(handles, handle) > 0;
    result = closed || handle == CurrentProcess() ? TRUE : FALSE;
    if (result == FALSE) {
      SetLastError(ERROR_INVALID_HANDLE);
      if (handle != nullptr)
        Misuse("CloseHandle was given a handle that is not open.");
    }
  }
  WriteDiary(line + ") = " + std::to_string(result));
  return result;
}

DWORD WINAPI GetModuleFileNameExA(HANDLE process, HMODULE module, LPSTR path, DWORD size)
{
  if (process != CurrentProcess() || module != nullptr)
    EndUnprepared("GetModuleFileNameExA was asked for another module than the program itself.");
  DWORD length = 0;
  if (!FailsWithLastError("GetModuleFileNameExA") && size > 0) {
    const std::string ansi = AnsiFromUtf8(State().modulePath);
    // A path that doesn't fit is cut.
    const size_t fits = std::min(ansi.size(), static_cast<size_t>(size) - 1);
    memcpy(path, ansi.data(), fits);
    path[fits] = '\0';
    length = fits < ansi.size() ? size : static_cast<DWORD>(fits);
  }
  WriteDiary("GetModuleFileNameExA(" + NameOf(process) + ", null, " + std::to_string(size) +
             ") = " + std::to_string(length));
  return length;
}

BOOL WINAPI CreateProcessW(LPCWSTR application, LPWSTR commandLine,
                           LPSECURITY_ATTRIBUTES processAttributes,
                           LPSECURITY_ATTRIBUTES threadAttributes, BOOL inheritHandles, DWORD flags,
                           LPVOID environment, LPCWSTR folder, LPSTARTUPINFOW startup,
                           LPPROCESS_INFORMATION process)
{
  if (application == nullptr || startup == nullptr || process == nullptr)
    EndUnprepared("CreateProcessW was called without an application or without its structures.");
  std::string line = "CreateProcessW(" + Quoted(application) + ", " + Quoted(commandLine) + ", " +
                     AddressText(processAttributes) + ", " + AddressText(threadAttributes) + ", " +
                     std::to_string(inheritHandles) + ", " + Hex(flags) + ", " +
                     AddressText(environment) + ", " + Quoted(folder) + ", cb " +
                     std::to_string(startup->cb) +
                     (IsZeroed(*startup, *process) ? ", zeroed" : ", not zeroed");
  BOOL result = FALSE;
  if (!FailsWithLastError("CreateProcessW")) {
    State().started.push_back({Utf8(application), Utf8(commandLine), inheritHandles != FALSE,
                               Processes().Variable("PATH")});
    const DWORD number = static_cast<DWORD>(State().started.size());
    const HANDLE processHandle = GiveHandle();
    *process = PROCESS_INFORMATION{processHandle, GiveHandle(), 1000 + number, 2000 + number};
    result = TRUE;
  }
  WriteDiary(line + ") = " + std::to_string(result));
  return result;
}
