#include "tests/doubles/Diary.h"

#include "tests/doubles/Recorder.h"
#include "tests/doubles/Text.h"

#include <windows.h>

#include <stdio.h>
#include <stdlib.h>

#include <utility>

namespace {

struct Fault
{
  std::string function;
  int callsBefore;  // 0: the next call is the one
  unsigned long code;
  bool forGood = false;
  bool reached = false;
};

struct DiaryState
{
  std::vector<std::string> lines;
  std::vector<Fault> faults;
  std::vector<std::string> misuses;
  std::function<void(const char*)> watcher;
};

// Made at its first use: static objects of the production code make platform calls before those of
// this file are ready.
DiaryState& State()
{
  static DiaryState state;
  return state;
}

// Looked at before State(): runtime calls come by the million, and from inside malloc.
int faultsLeft = 0;
bool watched = false;

}  // namespace

const std::vector<std::string>& Diary()
{
  return State().lines;
}

std::vector<std::string> DiaryOf(std::initializer_list<const char*> functions)
{
  std::vector<std::string> lines;
  for (const std::string& line : State().lines) {
    const std::string function = line.substr(0, line.find('('));
    for (const char* wanted : functions) {
      if (function == wanted)
        lines.push_back(line);
    }
  }
  return lines;
}

void ClearDiary()
{
  State().lines.clear();
}

void FailCall(const std::string& function, int n, unsigned long code)
{
  State().faults.push_back({function, n - 1, code});
  ++faultsLeft;
}

void FailCallsFrom(const std::string& function, int n, unsigned long code)
{
  FailCall(function, n, code);
  State().faults.back().forGood = true;
}

void WatchCalls(const std::function<void(const char* function)>& watcher)
{
  State().watcher = watcher;
  watched = true;
}

bool TakeFault(const char* function, unsigned long& code)
{
  if (faultsLeft == 0 && !watched)
    return false;
  if (watched)
    State().watcher(function);
  std::vector<Fault>& faults = State().faults;
  size_t hit = faults.size();
  for (size_t i = 0; i < faults.size(); ++i) {
    Fault& fault = faults[i];
    if (fault.function != function)
      continue;
    if (fault.callsBefore == 0 || (fault.forGood && fault.callsBefore < 0))
      hit = i;
    --fault.callsBefore;
  }
  if (hit == faults.size())
    return false;
  code = faults[hit].code;
  faults[hit].reached = true;
  if (!faults[hit].forGood) {
    faults.erase(faults.begin() + static_cast<std::ptrdiff_t>(hit));
    --faultsLeft;
  }
  return true;
}

bool FailsWithLastError(const char* function)
{
  unsigned long code = 0;
  if (!TakeFault(function, code))
    return false;
  SetLastError(static_cast<DWORD>(code));
  return true;
}

void WriteDiary(const std::string& line)
{
  State().lines.push_back(line);
}

void Misuse(const std::string& sentence)
{
  State().misuses.push_back(sentence);
}

std::vector<std::string> TakeMisuses()
{
  DiaryState& state = State();
  for (const Fault& fault : state.faults) {
    if (!fault.reached)
      Misuse("A failure of " + fault.function + " was ordered and never reached.");
  }
  state.faults.clear();
  faultsLeft = 0;
  return std::exchange(state.misuses, {});
}

void EndUnprepared(const std::string& sentence)
{
  (void)fprintf(stderr, "Not prepared by the test: %s\n", sentence.c_str());
  abort();
}

std::string Quoted(const std::string& utf8)
{
  return "\"" + utf8 + "\"";
}

std::string Quoted(const wchar_t* text)
{
  return text == nullptr ? "null" : Quoted(Utf8(text));
}

std::string QuotedAnsi(const char* text)
{
  return text == nullptr ? "null" : Quoted(Utf8FromAnsi(text));
}

std::string Hex(unsigned long number)
{
  char digits[32];
  (void)snprintf(digits, sizeof(digits), "0x%lX", number);
  return digits;
}

void ResetPlatform()
{
  State() = DiaryState();
  faultsLeft = 0;
  watched = false;
  ResetRegistry();
  ResetProcesses();
  ResetEnvironment();
  ResetShell();
  ResetVersions();
  ResetInstaller();
  ResetDebugOutput();
  ResetLastError();
  // The driver may hold files open.
  ResetOdbc();
  ResetFiles();
}
