#include "tests/system/HarnessChild.h"

#include "sandbox/common/SandboxFiles.h"

#include <windows.h>

#include <string>

namespace {

const std::string Prefix = "--harness-child=";

void StartItselfAgain(const wchar_t* deed)
{
  const std::wstring program = OwnProgramPath();
  std::wstring commandLine = L"again --harness-child=" + std::wstring(deed);
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                 &startup, &process);
}

}  // namespace

bool IsHarnessChild(const char* argument)
{
  return std::string(argument).starts_with(Prefix);
}

int RunHarnessChild(const char* argument)
{
  const std::string deed = std::string(argument).substr(Prefix.size());
  if (deed == "speak") {
    OutputDebugStringW(L"first");
    OutputDebugStringA("second");
  } else if (deed == "raise") {
    RaiseException(0xE0001234, EXCEPTION_NONCONTINUABLE, 0, nullptr);
  } else if (deed == "hang") {
    Sleep(INFINITE);
  } else if (deed == "doze") {
    Sleep(10000);
  } else if (deed == "start") {
    StartItselfAgain(L"end");
  } else if (deed == "start-dozing") {
    StartItselfAgain(L"doze");
  }
  return 7;
}
