// The part of the process double that holds the environment and the long path names.
#include "tests/doubles/ProcessDouble.h"

#include "tests/doubles/Recorder.h"
#include "tests/doubles/Text.h"

#include <string.h>

#include <utility>

namespace {

using NamedTexts = std::vector<std::pair<std::string, std::string>>;

struct EnvironmentState
{
  NamedTexts variables;
  NamedTexts longPaths;
};

EnvironmentState& State()
{
  static EnvironmentState state;
  return state;
}

const std::string* Find(const NamedTexts& texts, const std::string& name)
{
  for (const auto& [textName, text] : texts) {
    if (SameName(textName, name))
      return &text;
  }
  return nullptr;
}

void Remove(NamedTexts& texts, const std::string& name)
{
  std::erase_if(texts, [&name](const auto& entry) { return SameName(entry.first, name); });
}

void Set(NamedTexts& texts, const std::string& name, const std::string& text)
{
  Remove(texts, name);
  texts.emplace_back(name, text);
}

// Gives the text with its terminator and returns its length, or returns the size that it takes.
DWORD GiveText(const std::string& utf8, wchar_t* buffer, DWORD size)
{
  const WideText text(utf8);
  if (size <= text.Length())
    return static_cast<DWORD>(text.Length() + 1);
  memcpy(buffer, text.c_str(), (text.Length() + 1) * sizeof(wchar_t));
  return static_cast<DWORD>(text.Length());
}

DWORD GetVariable(const std::string& name, wchar_t* buffer, DWORD size)
{
  const std::string* value = Find(State().variables, name);
  if (value == nullptr) {
    SetLastError(ERROR_ENVVAR_NOT_FOUND);
    return 0;
  }
  const DWORD result = GiveText(*value, buffer, size);
  if (result >= size && size > 0)
    memset(buffer, 0xBD, size * sizeof(wchar_t));
  return result;
}

DWORD GetLongPath(const std::string& path, wchar_t* buffer, DWORD size)
{
  const std::string* longPath = Find(State().longPaths, path);
  if (longPath == nullptr) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    return 0;
  }
  return GiveText(*longPath, buffer, size);
}

}  // namespace

void ProcessDouble::SetVariable(const std::string& name, const std::string& value)
{
  Set(State().variables, name, value);
}

void ProcessDouble::RemoveVariable(const std::string& name)
{
  Remove(State().variables, name);
}

bool ProcessDouble::HasVariable(const std::string& name) const
{
  return Find(State().variables, name) != nullptr;
}

std::string ProcessDouble::Variable(const std::string& name) const
{
  const std::string* value = Find(State().variables, name);
  return value == nullptr ? std::string() : *value;
}

void ProcessDouble::SetLongPath(const std::string& path, const std::string& longPath)
{
  Set(State().longPaths, path, longPath);
}

void ResetEnvironment()
{
  State() = EnvironmentState();
}

DWORD WINAPI GetEnvironmentVariableW(LPCWSTR name, LPWSTR buffer, DWORD size)
{
  const DWORD result =
      FailsWithLastError("GetEnvironmentVariableW") ? 0 : GetVariable(Utf8(name), buffer, size);
  WriteDiary("GetEnvironmentVariableW(" + Quoted(name) + ", " + std::to_string(size) +
             ") = " + std::to_string(result));
  return result;
}

BOOL WINAPI SetEnvironmentVariableW(LPCWSTR name, LPCWSTR value)
{
  const std::string line = "SetEnvironmentVariableW(" + Quoted(name) + ", " + Quoted(value);
  BOOL result = FALSE;
  if (!FailsWithLastError("SetEnvironmentVariableW")) {
    if (value == nullptr)
      Remove(State().variables, Utf8(name));
    else
      Set(State().variables, Utf8(name), Utf8(value));
    result = TRUE;
  }
  WriteDiary(line + ") = " + std::to_string(result));
  return result;
}

DWORD WINAPI GetLongPathNameW(LPCWSTR path, LPWSTR buffer, DWORD size)
{
  const DWORD result =
      FailsWithLastError("GetLongPathNameW") ? 0 : GetLongPath(Utf8(path), buffer, size);
  WriteDiary("GetLongPathNameW(" + Quoted(path) + ", " + std::to_string(size) +
             ") = " + std::to_string(result));
  return result;
}
