#include "tests/doubles/DebugOutputDouble.h"

#include "tests/doubles/Recorder.h"
#include "tests/doubles/Text.h"

#include <windows.h>

namespace {

std::vector<std::string>& State()
{
  static std::vector<std::string> texts;
  return texts;
}

}  // namespace

const std::vector<std::string>& DebugTexts()
{
  return State();
}

void ResetDebugOutput()
{
  State().clear();
}

void WINAPI OutputDebugStringW(LPCWSTR text)
{
  State().push_back(Utf8(text));
  WriteDiary("OutputDebugStringW(" + Quoted(text) + ")");
}
