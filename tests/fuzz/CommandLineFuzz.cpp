// A launch on a machine that the input makes: the whole run but for the databases, with the command
// line as the process got it.
//
//   cTEXT   the command line, program's name and all, in the ANSI code page
//   Tables of the registry, each with its root (c, u, l) and view (3, 6):
//   kl6PATH             a key            dl6PATH|R   rights denied (r, w, q, c, e; else all)
//   tl6PATH|NAME|TEXT   a text           ul6...      without its terminator
//   ol6...              with half a character more
//   bl6PATH|NAME|TBYTES bytes of a type
//   hVERSION|SUBKEY|FOLDER   a host of 64 bits that is the user's current one; H: of 32 bits
//   vVERSION|SUBKEY|FOLDER   a host of version 15
//   lTEXT, sTEXT        version of the loader, of this program
#include "host/HostSelection.h"
#include "launcher/CommandLine.h"
#include "launcher/LauncherMain.h"
#include "tests/doubles/Diary.h"
#include "tests/doubles/ProcessDouble.h"
#include "tests/doubles/RegistryDouble.h"
#include "tests/doubles/VersionDouble.h"
#include "tests/fuzz/OneInput.h"
#include "tests/fuzz/PlainHostSelection.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/Script.h"

#include <string.h>

#include <algorithm>

namespace {

using Text = std::u16string;

const char* const BaseKey = "Software\\Autodesk";
const char* const ProductKey = "Software\\Autodesk\\AutoCAD";
const char* const AddOnKey = "SoftWare\\Norvane\\Kestrelforge\\2010";

// Characters of the longest path of a key in the registration, and what it has behind the host's
// key: "Applications\QuillProfileDesigner\Commands".
constexpr size_t KeyPathLimit = 512;
constexpr size_t LongestTail = 42;

struct Machine
{
  std::string commandLine = "l.exe";
  bool denies = false;
};

int updates = 0;

HKEY RootOf(char letter)
{
  switch (letter) {
    case 'c': return HKEY_CLASSES_ROOT;
    case 'u': return HKEY_CURRENT_USER;
    default: return HKEY_LOCAL_MACHINE;
  }
}

REGSAM RightsOf(const std::string& letter)
{
  switch (letter.empty() ? '\0' : letter[0]) {
    case 'r': return KEY_READ;
    case 'w': return KEY_WRITE;
    case 'q': return KEY_QUERY_VALUE;
    case 'c': return KEY_CREATE_SUB_KEY;
    case 'e': return KEY_ENUMERATE_SUB_KEYS;
    default: return KEY_ALL_ACCESS;
  }
}

std::string Name(const std::string& bytes)
{
  return Utf8Of(Units(bytes));
}

std::vector<unsigned char> DataOf(char kind, const std::string& text)
{
  if (kind == 'b')
    return std::vector<unsigned char>(text.begin() + (text.empty() ? 0 : 1), text.end());
  std::vector<unsigned char> bytes = BytesOf(Units(text));
  if (kind == 't')
    bytes.insert(bytes.end(), 2, 0);
  if (kind == 'o')
    bytes.push_back('y');
  return bytes;
}

void ChangeRegistry(Machine& machine, const ScriptLine& line)
{
  if (line.text.size() < 2)
    return;
  const HKEY root = RootOf(line.text[0]);
  const RegistryView view = line.text[1] == '3' ? RegistryView::Wow32 : RegistryView::Native;
  const std::vector<std::string> fields = Fields(line.text.substr(2), 3);
  const std::string path = Name(fields[0]);
  if (line.kind == 'k') {
    Registry().AddKey(root, view, path);
  } else if (line.kind == 'd') {
    Registry().DenyAccess(root, view, path, RightsOf(fields[1]));
    machine.denies = true;
  } else {
    const bool hasType = line.kind == 'b' && !fields[2].empty();
    const DWORD type = hasType ? static_cast<unsigned char>(fields[2][0]) : DWORD{REG_SZ};
    Registry().SetRaw(root, view, path, Name(fields[1]), type, DataOf(line.kind, fields[2]));
  }
}

void InstallHost(char kind, const std::string& text)
{
  const std::vector<std::string> fields = Fields(text, 3);
  const HKEY root = kind == 'v' ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
  const RegistryView view = kind == 'v' ? RegistryView::Wow32 : RegistryView::Native;
  const std::string versionKey = std::string(ProductKey) + "\\" + Name(fields[0]);
  const std::string hostKey = versionKey + "\\" + Name(fields[1]);
  if (kind == 'v')
    Registry().SetText(HKEY_CLASSES_ROOT, view, ".dwg", "", "AutoCAD.Drawing.15");
  Registry().SetText(root, view, BaseKey, "CurProd", "AutoCAD");
  Registry().SetText(root, view, ProductKey, "CurVer", Name(fields[0]));
  Registry().SetText(root, view, versionKey, "CurVer", Name(fields[1]));
  Registry().AddKey(root, view, hostKey);
  Registry().SetText(HKEY_LOCAL_MACHINE, kind == 'h' ? RegistryView::Native : RegistryView::Wow32,
                     hostKey, "AcadLocation", Name(fields[2]));
}

void Apply(Machine& machine, const ScriptLine& line)
{
  switch (line.kind) {
    case 'c': machine.commandLine = line.text.substr(0, line.text.find('\0')); break;
    case 'k':
    case 'd':
    case 't':
    case 'u':
    case 'o':
    case 'b': ChangeRegistry(machine, line); break;
    case 'h':
    case 'H':
    case 'v': InstallHost(line.kind, line.text); break;
    case 'l':
      Versions().SetFileVersion(
          "C:\\Program Files (x86)\\Common Files\\Norvane\\QuillStartupLoader8x86.arx", line.text);
      break;
    case 's': Versions().SetFileVersion("C:\\Launcher\\KestrelforgeLauncher.exe", line.text); break;
    default: break;
  }
}

std::string PlainArguments(const std::string& commandLine)
{
  const auto isBlank = [](char c) { return static_cast<unsigned char>(c) <= 32; };
  size_t end = 0;
  for (bool quoted = false; end < commandLine.size(); ++end) {
    quoted = quoted != (commandLine[end] == '"');
    if (!quoted && isBlank(commandLine[end]))
      break;
  }
  while (end < commandLine.size() && isBlank(commandLine[end]))
    ++end;
  return commandLine.substr(end);
}

Text Plain(const QulString& text)
{
  return Text(text.Text(), text.Text() + text.Length());
}

struct Selection
{
  QulString commandLine;
  QulString hostKeyPath;
  QulString hostExecutable;
  bool hostIs64Bit = false;
  HostRelease release = HostReleaseUnknown;
};

void CheckSelection(const Selection& selection, const PlainSelection& plain, const Machine& machine)
{
  Require(Plain(selection.commandLine) == plain.hostCommandLine,
          "the switch is taken out of the command line");
  if (machine.denies)
    return;
  Require(selection.release == plain.release, "the release is the one of the rules");
  Require(Plain(selection.hostKeyPath) == plain.hostKeyPath, "the host's key is found");
  Require(Plain(selection.hostExecutable) == plain.hostExecutable, "the executable is found");
  Require(plain.hostExecutable.empty() || selection.hostIs64Bit == plain.hostIs64Bit,
          "the view tells the width");
}

// A host that could be chosen has a key that names its folder.
void CheckFolder(const Selection& selection)
{
  const Text keyPath = Plain(selection.hostKeyPath);
  const RegistryView view = selection.hostIs64Bit ? RegistryView::Native : RegistryView::Wow32;
  Require(Registry().HasKey(HKEY_LOCAL_MACHINE, view, Utf8Of(keyPath)), "the host has a key");
  const Text folder = ReadText(HKEY_LOCAL_MACHINE, view, keyPath, "AcadLocation", 500);
  Require(Plain(selection.hostExecutable).starts_with(folder),
          "the executable lies in the folder of the registry");
}

Text PlainLoaderPath(const Selection& selection)
{
  const RegistryView view = selection.hostIs64Bit ? RegistryView::Native : RegistryView::Wow32;
  const Text key = u"Software\\Norvane\\Kestrelforge\\2010\\Environment";
  Text path = ReadText(HKEY_LOCAL_MACHINE, view, key, "BinPath", 8192);
  for (int i = 0; i < 2 && path.size() > 1 && path.back() == u'\\'; ++i)
    path.pop_back();
  path += u"\\Forge\\BIN\\Kestrelforge";
  switch (selection.release) {
    case 0: return path + u"6x86.arx";
    case 1: return path + u"7x86.arx";
    case 2: return path + (selection.hostIs64Bit ? u"8x64.arx" : u"8x86.arx");
    case 3: return path + (selection.hostIs64Bit ? u"9x64.arx" : u"9x86.arx");
    default: return path;
  }
}

void CheckWrites(const Text& loaderPath, const Selection& selection, const Machine& machine)
{
  for (const std::string& line : DiaryOf({"RegCreateKeyExW"}))
    Require(line.starts_with("RegCreateKeyExW(HKCU, "), "keys are made for the user alone");
  const bool found = selection.hostExecutable.Length() > 0;
  if (!found) {
    Require(DiaryOf({"RegCreateKeyExW", "RegSetValueExW"}).empty(), "nothing is written");
    Require(Registry().OpenHandleCount() == 0, "all keys are closed");
  } else if (!machine.denies) {
    const RegistryValue startup =
        Registry().Value(HKEY_CURRENT_USER, RegistryView::Native,
                         std::string(AddOnKey) + "\\Startup", "Kestrelforge");
    Require(startup.exists && startup.bytes == BytesOf(loaderPath), "the loader is recorded");
  }
  // Two are given up: those of the loader's record and of the host.
  Require(Registry().OpenHandleCount() <= 2, "all other keys are closed");
}

bool HasLongKey(const Selection& selection)
{
  return static_cast<size_t>(selection.hostKeyPath.Length()) + LongestTail >= KeyPathLimit;
}

// Whether a launch without denied rights ends the process: it writes a registration, and the path
// of one of its keys is too long.
bool IsFatal(const Selection& selection)
{
  const Text keyPath = Plain(selection.hostKeyPath);
  const auto isUserKey = [](const Text& path) {
    return Registry().HasKey(HKEY_CURRENT_USER, RegistryView::Native, Utf8Of(path));
  };
  return HasLongKey(selection) && selection.hostExecutable.Length() > 0 &&
         selection.release != HostReleaseUnknown && isUserKey(keyPath) &&
         !isUserKey(keyPath + u"Applications\\QuillStartupLoader");
}

void CheckHost(Ending ending, bool isFatal, const Selection& selection, const Machine& machine)
{
  const std::vector<StartedProcess>& started = Processes().Started();
  Require(machine.denies || (ending == Ending::Fatal) == isFatal,
          "a registration with a long key ends the process");
  if (ending == Ending::Fatal) {
    Require(HasLongKey(selection), "only a long key ends the process");
    Require(started.empty() && updates == 0, "nothing happens behind the end");
    return;
  }
  Require(ending == Ending::Returned, "no allocation fails");
  const bool found = selection.hostExecutable.Length() > 0;
  Require(started.size() <= (found ? 1 : 0), "one host at most is started");
  Require(started.size() == 1 || !found || machine.denies, "a host that was found is started");
  Require(updates == static_cast<int>(started.size()),
          "the databases are updated before the start");
  if (started.size() == 1) {
    Require(started[0].application == Utf8Of(Plain(selection.hostExecutable)) &&
                started[0].commandLine == Utf8Of(Plain(selection.commandLine)),
            "the host chosen is the one that is started");
  }
}

}  // namespace

extern "C" void __wrap__Z17RunDatabaseUpdateii(int32_t /*unused1*/, int32_t /*unused2*/)
{
  ++updates;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
  ResetPlatform();
  updates = 0;
  Machine machine;
  for (const ScriptLine& line : ReadScript(data, size))
    Apply(machine, line);
  const char* const arguments = SkipProgramName(machine.commandLine.c_str());
  Require(PlainArguments(machine.commandLine) == arguments, "the program's name is cut off");

  OneInput input;
  {
    Selection selection;
    const Ending selected = input.Run([&] {
      selection.commandLine.AssignNarrow(arguments);
      selection.release = SelectHost(selection.commandLine, selection.hostKeyPath,
                                     selection.hostExecutable, selection.hostIs64Bit);
    });
    Require(selected == Ending::Returned, "a host can always be looked for");
    Require(Registry().OpenHandleCount() == 0, "the search closes its keys");
    CheckSelection(selection, SelectPlainly(UnitsOfAnsi(arguments)), machine);
    if (selection.hostExecutable.Length() > 0)
      CheckFolder(selection);
    // The run may write where this was read.
    const Text loaderPath = PlainLoaderPath(selection);
    const bool isFatal = IsFatal(selection);

    ClearDiary();
    const Ending ending = input.Run([&] { (void)LauncherMain(nullptr, nullptr, arguments, 1); });
    CheckHost(ending, isFatal, selection, machine);
    CheckWrites(loaderPath, selection, machine);
    Require(ending == Ending::Fatal || TakeMisuses().empty(), "no handle is misused");
    if (ending == Ending::Fatal)
      return 0;
  }
  Require(input.ArraysLeft() == 0, "all memory is given back");
  return 0;
}
