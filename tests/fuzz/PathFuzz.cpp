// PATH as UpdatePathEnvironment leaves it, against a plain second form of its rules.
//
//   pTEXT      appended to PATH            P40 TEXT   the same, 40 times
//   aTEXT      AddPath                     A40 TEXT   appended to AddPath, 40 times
//   u          AddPath is stored without its terminator
//   o          AddPath is stored with half a character more
//   n          the key of AddPath can't be opened
//   lSHORT|LONG     a path and its long form, here with a blank before it for each of the
//   L40 SHORT|LONG  40 characters
#include "launcher/PathEnvironment.h"

#include "tests/doubles/Diary.h"
#include "tests/doubles/ProcessDouble.h"
#include "tests/doubles/RegistryDouble.h"
#include "tests/fuzz/OneInput.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/Script.h"

#include <algorithm>
#include <map>
#include <optional>

namespace {

const char* const EnvironmentKey = "Software\\Norvane\\Kestrelforge\\2010\\Environment";

// The widest list and the widest element, terminators counted.
constexpr size_t ListSize = 32768;
constexpr size_t ElementSize = 2048;

struct Machine
{
  std::u16string path;
  std::u16string addPath;
  bool terminated = true;
  bool halfMore = false;
  bool keyDenied = false;
  std::map<std::u16string, std::u16string> longPaths;  // by the path in lower case
};

void AddLongPath(Machine& machine, size_t blanks, const std::string& text)
{
  const std::vector<std::string> fields = Fields(text, 2);
  machine.longPaths[Lower(Units(fields[0]))] =
      std::u16string(std::min(blanks, ElementSize + 2), u' ') + Units(fields[1]);
}

void Apply(Machine& machine, const ScriptLine& line)
{
  std::string rest = line.text;
  switch (line.kind) {
    case 'p': machine.path += Units(rest); break;
    case 'P': machine.path += Units(Repeated(rest, ListSize + 16)); break;
    case 'a': machine.addPath = Units(rest); break;
    case 'A': machine.addPath += Units(Repeated(rest, ListSize + 16)); break;
    case 'u': machine.terminated = false; break;
    case 'o': machine.halfMore = true; break;
    case 'n': machine.keyDenied = true; break;
    case 'l': AddLongPath(machine, 0, rest); break;
    case 'L': {
      const size_t blanks = TakeNumber(rest);
      AddLongPath(machine, blanks, rest);
      break;
    }
    default: break;
  }
}

std::vector<unsigned char> StoredAddPath(const Machine& machine)
{
  std::vector<unsigned char> bytes = BytesOf(machine.addPath);
  if (machine.terminated)
    bytes.insert(bytes.end(), 2, 0);
  if (machine.halfMore)
    bytes.push_back('y');
  return bytes;
}

void Build(const Machine& machine)
{
  ResetPlatform();
  Processes().SetVariable("PATH", Utf8Of(machine.path));
  for (const auto& [path, longPath] : machine.longPaths)
    Processes().SetLongPath(Utf8Of(path), Utf8Of(longPath));
  Registry().SetRaw(HKEY_LOCAL_MACHINE, RegistryView::Native, EnvironmentKey, "AddPath", REG_SZ,
                    StoredAddPath(machine));
  if (machine.keyDenied)
    Registry().DenyAccess(HKEY_LOCAL_MACHINE, RegistryView::Native, EnvironmentKey, KEY_READ);
}

bool IsUnwanted(const std::u16string& text)
{
  return text.find(u"norvane\\kestrelforge") != std::u16string::npos ||
         text.find(u"ovl hyn trek\\common\\bin") != std::u16string::npos;
}

// The elements that stay, a semicolon behind each; nothing where the process ends.
std::optional<std::u16string> Kept(const Machine& machine, const std::u16string& list)
{
  std::u16string kept;
  std::u16string longForm;
  for (size_t begin = 0; begin <= list.size();) {
    const size_t end = std::min(list.find(u';', begin), list.size());
    const std::u16string element = list.substr(begin, end - begin);
    begin = end + 1;
    if (element.size() < 2)
      continue;
    if (element.size() >= ElementSize)
      return std::nullopt;
    const auto found = machine.longPaths.find(element);
    if (found != machine.longPaths.end() && found->second.size() < ElementSize)
      longForm = found->second;
    if (!IsUnwanted(element) && !IsUnwanted(longForm))
      kept += element + u";";
    if (kept.size() >= ListSize)
      return std::nullopt;
  }
  return kept;
}

std::optional<std::u16string> ExpectedPath(const Machine& machine)
{
  if (machine.path.empty())
    return machine.path;
  const bool fits = machine.path.size() < ListSize;
  const std::optional<std::u16string> kept =
      Kept(machine, fits ? Lower(machine.path) : std::u16string());
  if (!kept)
    return std::nullopt;

  std::u16string result;
  if (!machine.keyDenied && StoredAddPath(machine).size() <= ListSize * 2)
    result = machine.addPath;
  if (!result.empty() && result.back() != u';')
    result += u';';
  result += *kept;
  return result.size() < ListSize ? std::optional(result) : std::nullopt;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
  Machine machine;
  for (const ScriptLine& line : ReadScript(data, size))
    Apply(machine, line);
  Build(machine);
  const std::optional<std::u16string> expected = ExpectedPath(machine);

  OneInput input;
  const Ending ending = input.Run([] { UpdatePathEnvironment(); });
  Require(ending == (expected ? Ending::Returned : Ending::Fatal),
          "what is too long ends the process, and nothing else does");
  if (ending == Ending::Returned) {
    Require(Processes().Variable("PATH") == Utf8Of(*expected), "PATH is as the rules have it");
    Require(input.ArraysLeft() == 0, "all buffers are given back");
  } else {
    Require(Processes().Variable("PATH") == Utf8Of(machine.path), "PATH is left alone");
  }
  Require(Registry().OpenHandleCount() == 0, "the key is closed");
  Require(TakeMisuses().empty(), "no handle is misused");
  return 0;
}
