#include "tests/faults/LaunchRules.h"

#include "tests/faults/DiaryLine.h"
#include "tests/faults/UpdateRules.h"

#include <algorithm>

namespace {

using Lines = std::vector<std::string>;

const char* const StartupKey = "SoftWare\\Norvane\\Kestrelforge\\2010\\Startup";
const char* const AddOnKey = "SoftWare\\Norvane\\Kestrelforge\\2010";

void Append(Sentences& faults, const Sentences& more)
{
  faults.insert(faults.end(), more.begin(), more.end());
}

bool Holds(const std::string& line, const std::string& part)
{
  return line.find(part) != std::string::npos;
}

int Count(const Lines& lines, const std::string& beginning)
{
  return static_cast<int>(std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
    return line.starts_with(beginning);
  }));
}

// How many calls of this beginning did not give 0, or did not give 1 where that is success.
int CountFailures(const Lines& lines, const std::string& beginning, int success)
{
  return static_cast<int>(std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
    return line.starts_with(beginning) && ResultIn(line) != success;
  }));
}

// The results of the calls that decide about the start.
struct Decisions
{
  explicit Decisions(const Lines& diary)
  {
    std::string before;
    for (const std::string& line : diary) {
      if (IsLookForHost(before, line) && ResultIn(line) == 0)
        hostFound = true;
      before = line;
      if (line.starts_with("RegCreateKeyExW(") && QuotedIn(line).starts_with(StartupKey) &&
          ResultIn(line) == 0)
        startupOpened = true;
      if (line.starts_with(std::string("RegOpenKeyExW(HKCU, \"") + AddOnKey + "\", 0, 0x2)") &&
          ResultIn(line) == 0)
        addOnOpened = true;
    }
  }

  // The host's key of the machine in the 64-bit view, or next in the other one. A host that was
  // demanded and isn't there is looked for in the key of all hosts.
  static bool IsLookForHost(const std::string& before, const std::string& line)
  {
    const std::string look = "RegOpenKeyExW(HKLM, \"Software\\Autodesk\\";
    return line.starts_with(look) &&
           (Holds(line, ", 0x1)") ||
            (Holds(line, ", 0x201)") && before.starts_with(look) && Holds(before, ", 0x1)")));
  }

  bool hostFound = false;
  bool startupOpened = false;
  bool addOnOpened = false;
};

void JudgeStart(const WholeLaunch& whole, const LaunchOutcome& outcome, Sentences& faults)
{
  const Decisions decisions(outcome.diary);
  const bool due = decisions.hostFound && decisions.startupOpened && decisions.addOnOpened;
  if (outcome.exitCode != 0)
    faults.push_back("The exit code is " + std::to_string(outcome.exitCode) + ".");
  if (Count(outcome.diary, "CreateProcessW(") != (due ? 1 : 0))
    faults.push_back(due ? "The host was not started." : "A host was started.");
  if (due && !outcome.diary.back().starts_with("CreateProcessW("))
    faults.push_back("Something was done behind the start of the host: " + outcome.diary.back());
  if (due && outcome.started.size() !=
                 static_cast<size_t>(1 - CountFailures(outcome.diary, "CreateProcessW(", 1)))
    faults.push_back("The start of the host was not what its result says.");
  if (due)
    return;
  for (const char* function : {"FindFirstFileW(", "SQLAllocHandle(", "MsiReinstallProductW(",
                               "SetEnvironmentVariableW(", "OutputDebugStringW("}) {
    if (Count(outcome.diary, function) > 0)
      faults.push_back(std::string(function) + ") was called without a host to start.");
  }
  if (!decisions.hostFound &&
      (Count(outcome.diary, "RegSetValueExW(") > 0 || Count(outcome.diary, "RegCreateKeyExW(") > 0))
    faults.push_back("The registry was written to without a host.");
  for (const std::string& fault :
       ExpectedDatabases(whole.outcome.databases.empty() ? outcome.databases : whole.before)
           .Judge(outcome.databases)) {
    if (!Holds(fault, ".mdb."))
      faults.push_back(fault);
  }
}

// The Startup key and the host's key of the registration are left open, and what RegCloseKey
// refuses to close.
void JudgeKeys(const LaunchOutcome& outcome, Sentences& faults)
{
  int refused = 0;
  for (const std::string& line : outcome.diary) {
    if (line.starts_with("RegCloseKey(#") && ResultIn(line) != 0)
      ++refused;
  }
  int startup = 0;
  int host = 0;
  int others = 0;
  for (const std::string& path : outcome.openKeys) {
    if (path.ends_with("\\Startup"))
      ++startup;
    else if (path.starts_with("HKCU\\Software\\Autodesk"))
      ++host;
    else
      ++others;
  }
  if (startup > 1 || std::max(host - 1, 0) + others > refused)
    faults.push_back("Registry keys are left open.");
}

// Patches that could not be opened. Those have been reported by the time the search is closed.
int RefusedPatches(const Lines& diary)
{
  int refused = 0;
  int refusedInSearch = 0;
  for (const std::string& line : diary) {
    if (line.starts_with("FindFirstFileW("))
      refusedInSearch = 0;
    if (line.starts_with("OutputDebugStringW(\"Error ") && !Holds(line, "executeSQL"))
      ++refusedInSearch;
    if (line.starts_with("FindClose(")) {
      refused += refusedInSearch;
      refusedInSearch = 0;
    }
  }
  return refused;
}

// Statements are given back where they were used, but for those that list tables: they go with
// their connections, and so does one that came with a code of failure.
void JudgeStatements(const Lines& diary, Sentences& faults)
{
  std::map<std::string, std::string> held;  // what was done first, by statement
  for (const std::string& line : diary) {
    const std::string handle = HandleIn(line);
    if (line.starts_with("SQLAllocHandle(STMT") && ResultIn(line) == 0)
      held[GivenHandleIn(line)] = "";
    else if (line.starts_with("SQLFreeHandle(STMT"))
      held.erase(handle);
    else if (held.contains(handle) && held[handle].empty())
      held[handle] = line;
  }
  for (const auto& [handle, use] : held) {
    if (!use.starts_with("SQLTablesW("))
      faults.push_back("A statement was not given back: " + handle + " " + use);
  }
}

void JudgeHandles(const LaunchOutcome& outcome, Sentences& faults)
{
  const Lines& diary = outcome.diary;
  const int refused = RefusedPatches(diary);
  const int kept = CountFailures(diary, "SQLDisconnect(", 0);
  if (outcome.openSearches > CountFailures(diary, "FindClose(find#", 1))
    faults.push_back("A file search is left open.");
  if (outcome.openStreams > 0)
    faults.push_back("A file is left open.");
  if (outcome.openEnvironments > refused + CountFailures(diary, "SQLFreeHandle(ENV", 0))
    faults.push_back("An environment of ODBC is left.");
  if (outcome.openConnections > refused + CountFailures(diary, "SQLFreeHandle(DBC", 0))
    faults.push_back("A connection is left.");
  if (outcome.openStatements > 0 && kept == 0)
    faults.push_back("A statement is left.");
  for (const std::string& misuse : outcome.misuses) {
    // A connection that can't be closed, or freed, is given back all the same, and so is its
    // environment.
    const bool follows = (kept > 0 && Holds(misuse, "a connection that is still connected")) ||
                         (CountFailures(diary, "SQLFreeHandle(DBC", 0) > 0 &&
                          Holds(misuse, "an environment that still has connections"));
    if (!follows)
      faults.push_back(misuse);
  }
}

// --- One call that fails.

bool IsOdbc(const FailureKind& kind)
{
  return kind.function.starts_with("SQL");
}

bool IsChoiceOfHost(const WholeLaunch& whole, const LaunchCall& call)
{
  const Lines& diary = whole.outcome.diary;
  for (size_t i = 0; i < diary.size(); ++i) {
    if (diary[i].starts_with("RegCreateKeyExW("))
      return call.lineIndex < i;
  }
  return false;
}

// The value that a query asks for, or the one that a key is opened for.
std::string ValueAskedFor(const WholeLaunch& whole, const LaunchCall& call)
{
  const Lines& diary = whole.outcome.diary;
  for (size_t i = call.lineIndex; i < diary.size() && i <= call.lineIndex + 1; ++i) {
    if (diary[i].starts_with("RegQueryValueExW("))
      return QuotedIn(diary[i]);
  }
  return "";
}

// What was missing is missing again, whatever the code says.
bool WasRefused(const LaunchCall& call)
{
  return ResultIn(call.line) != 0;
}

// Which patches and databases a launch doesn't find if this call fails.
std::set<std::string> HiddenBy(const WholeLaunch& whole, const LaunchCall& call)
{
  static const std::set<std::string> patches = {"Damaged.mdb", "Spring.mdb", "Summer.mdb"};
  static const std::vector<std::set<std::string>> hiddenByDataPath = {
      patches, {"Steel.mdb"}, {"QuillRules"}, {"QuillCurrentProject"}};
  const std::string& function = call.function;
  const bool reads = function == "RegOpenKeyExW" || function == "RegQueryValueExW";
  if (reads && WasRefused(call))
    return {};
  const std::string value = reads ? ValueAskedFor(whole, call) : "";
  if (value == "DataPath") {
    int number = 0;
    for (size_t i = 0; i <= call.lineIndex; ++i)
      number += whole.outcome.diary[i].starts_with("RegOpenKeyExW(HKLM") &&
                        Holds(whole.outcome.diary.at(i + 1), "\"DataPath\"")
                    ? 1
                    : 0;
    return hiddenByDataPath.at(static_cast<size_t>(number) - 1);
  }
  // The user's connections come first; one that is not among them is asked of the machine.
  if (value == "QuillProfiles2010")
    return {value};
  if (value == "NVCMapping2010")
    return Holds(call.line, "(HKCU") ? std::set<std::string>() : std::set<std::string>{value};
  if (function == "FindFirstFileW")
    return call.number == 1 ? patches : std::set<std::string>{"Steel.mdb"};
  if (function == "FindNextFileW" && call.number == 1)
    return {"Spring.mdb", "Summer.mdb"};
  if (function == "FindNextFileW" && call.number == 2)
    return {"Summer.mdb"};
  // The configuration is read again for the next database, so that it is the first one alone that
  // goes without.
  const bool configuration =
      function == "_wfopen_s" || function == "ftell" || (function == "fseek" && call.number != 2) ||
      (function == "fread" && call.number == 3) ||
      (function == "MultiByteToWideChar" && Holds(call.line, "<Kestrelforge>"));
  return configuration ? std::set<std::string>{"QuillRules"} : std::set<std::string>();
}

bool AsksForLanguage(const WholeLaunch& whole, const LaunchCall& call)
{
  const bool reads = call.function == "RegOpenKeyExW" || call.function == "RegQueryValueExW";
  return reads && ValueAskedFor(whole, call) == "Language";
}

// What can't be found is as if it weren't there.
void JudgeDatabases(const WholeLaunch& whole, const LaunchCall& call, const LaunchOutcome& outcome,
                    Sentences& faults)
{
  RichMachine machine = whole.machine;
  machine.without = HiddenBy(whole, call);
  const LaunchOutcome& without = ReferenceLaunch(machine);
  ExpectedDatabases expected(without.databases);
  for (const std::string& name : machine.without) {
    if (!name.ends_with(".mdb"))
      expected.Replace(name, whole.before.at(name));
  }
  if (AsksForLanguage(whole, call)) {
    // A patch that doesn't know its language takes English.
    const ExpectedDatabases::Contents& other = ContentsInEnglish(whole);
    for (const char* table : {"Shapes", "Colours"})
      expected.AllowTable("QuillRules", table, other);
  } else if (outcome.traces != without.traces) {
    faults.push_back("The traces are not those of a machine without what wasn't found.");
  }
  Append(faults, expected.Judge(outcome.databases));
}

std::string ExpectedPath(const WholeLaunch& whole, const LaunchCall& call)
{
  const bool reads = call.function == "RegOpenKeyExW" || call.function == "RegQueryValueExW";
  if (reads && ValueAskedFor(whole, call) == "AddPath")
    return "c:\\windows;d:\\tools;";
  if (call.function == "GetEnvironmentVariableW" || call.function == "SetEnvironmentVariableW")
    return "C:\\Windows;D:\\Tools;C:\\Norvane\\Kestrelforge;D:\\OLD~1";
  if (call.function == "GetLongPathNameW" && Holds(call.line, "old~1"))
    return "C:\\Forge64\\Bin;c:\\windows;d:\\tools;d:\\old~1;";
  return whole.outcome.path;
}

Lines Repairs(const Lines& diary)
{
  Lines repairs;
  for (const std::string& line : diary) {
    if (line.starts_with("MsiReinstallProductW("))
      repairs.push_back(CallIn(line));
  }
  return repairs;
}

// The server is registered, so that there is a repair in any case; a version that can't be read
// makes it one that leaves files alone.
Lines ExpectedRepairs(const WholeLaunch& whole, const LaunchCall& call)
{
  static const std::set<std::string> versionCalls = {
      "GetModuleFileNameExA", "GetFileVersionInfoSizeA", "GetFileVersionInfoA", "VerQueryValueA",
      "SHGetSpecialFolderPathA"};
  Lines repairs = Repairs(whole.outcome.diary);
  if (call.function == "RegEnumValueW" && call.number <= 2)
    repairs.resize(static_cast<size_t>(call.number - 1));
  if (Holds(call.line, "\\2010\\Products\""))
    repairs.clear();
  if (versionCalls.contains(call.function)) {
    for (std::string& line : repairs)
      line.replace(line.find("0x104"), 5, "0x100");
  }
  return repairs;
}

// The values of the registry that differ from those of a whole launch: `key\value`.
std::set<std::string> DifferingValues(const LaunchOutcome& whole, const LaunchOutcome& outcome)
{
  std::set<std::string> differing;
  for (const auto& [name, value] : whole.registry) {
    const auto found = outcome.registry.find(name);
    if (found == outcome.registry.end() || found->second != value)
      differing.insert(name);
  }
  for (const auto& [name, value] : outcome.registry) {
    if (!whole.registry.contains(name))
      differing.insert(name);
  }
  return differing;
}

// The value that this call or the next one like it writes.
std::string ValueWritten(const WholeLaunch& whole, const LaunchCall& call)
{
  const Lines& diary = whole.outcome.diary;
  for (size_t i = call.lineIndex; i < diary.size(); ++i) {
    if (diary[i].starts_with("RegSetValueExW(")) {
      const size_t begin = diary[i].find('"') + 1;
      return diary[i].substr(begin, diary[i].find('"', begin) - begin);
    }
  }
  return "";
}

// True if the failure of a call may leave out this value, or make it another one.
bool MayDiffer(const WholeLaunch& whole, const LaunchCall& call, const std::string& name)
{
  const std::string& function = call.function;
  if (function == "RegSetValueExW" || function == "RegCreateKeyExW")
    return name.ends_with("\\" + ValueWritten(whole, call));
  if (function == "SHGetSpecialFolderPathW")
    return name.ends_with("\\LOADER");
  if (function == "RegOpenKeyExW" && Holds(call.line, "(HKCU, \"Software\\Autodesk"))
    return Holds(call.line, "0xF003F") && Holds(name, "Applications\\");
  const bool reads = function == "RegOpenKeyExW" || function == "RegQueryValueExW";
  return reads && ValueAskedFor(whole, call) == "BinPath" &&
         name.ends_with("\\Startup\\Kestrelforge");
}

// A launch that has chosen its host in another way: there are no more hosts than these.
void JudgeOtherChoice(const LaunchOutcome& outcome, Sentences& faults)
{
  static const std::set<std::string> executables = {"C:\\Host64\\ABCD.exe", "C:\\Host32\\ABCD.exe",
                                                    "\\ABCD.exe", "C:\\Host64\\.exe", "\\.exe"};
  for (const std::string& host : outcome.started) {
    if (!executables.contains(host.substr(0, host.find(' '))))
      faults.push_back("An unknown host was started: " + host);
    if (!Holds(host, "/nologo "))
      faults.push_back("The host's command line has no prefix: " + host);
  }
}

// What a launch does for whichever host it has chosen.
void JudgeRest(const WholeLaunch& whole, const LaunchOutcome& outcome, Sentences& faults)
{
  if (outcome.started.empty())
    return;
  if (outcome.path != whole.outcome.path)
    faults.push_back("PATH is " + outcome.path);
  if (Repairs(outcome.diary) != Repairs(whole.outcome.diary))
    faults.push_back("Not the repairs that are due.");
  if (outcome.traces != whole.outcome.traces)
    faults.push_back("The traces differ.");
  if (outcome.started == whole.outcome.started && !DifferingValues(whole.outcome, outcome).empty())
    faults.push_back("The registry differs.");
  Append(faults, ExpectedDatabases(whole.outcome.databases).Judge(outcome.databases));
}

void JudgeUnharmed(const WholeLaunch& whole, const LaunchCall& call, const LaunchOutcome& outcome,
                   Sentences& faults)
{
  if (outcome.path != ExpectedPath(whole, call))
    faults.push_back("PATH is " + outcome.path);
  if (Repairs(outcome.diary) != ExpectedRepairs(whole, call))
    faults.push_back("Not the repairs that are due.");
  for (const std::string& name : DifferingValues(whole.outcome, outcome)) {
    if (!MayDiffer(whole, call, name))
      faults.push_back("A value of the registry differs: " + name);
  }
  const bool sameHost = call.function != "CreateProcessW" && outcome.path == whole.outcome.path &&
                        !Holds(call.line, "plan.dwg");
  if (sameHost && outcome.started != whole.outcome.started)
    faults.push_back("Another host was started, or in another way.");
}

// The keys of version and product, on the way to the host that is the current one. There is no
// other way to it.
bool LeadsToTheHost(const WholeLaunch& whole, const LaunchCall& call)
{
  const bool isCurrent =
      whole.machine.route == HostRoute::Current || whole.machine.route == HostRoute::DrawingClass;
  return isCurrent && call.line.starts_with("RegOpenKeyExW(#");
}

bool EndsTheRun(const LaunchCall& call)
{
  return (call.function == "RegCreateKeyExW" && QuotedIn(call.line).starts_with(StartupKey)) ||
         (call.function == "RegOpenKeyExW" && Holds(call.line, AddOnKey) &&
          Holds(call.line, "\", 0, 0x2)"));
}

// The tables of the versions alone.
DatabaseContent VersionsOf(const DatabaseContent& patch)
{
  DatabaseContent versions;
  for (const auto& [table, rows] : patch) {
    if (table.ends_with("Version"))
      versions[table] = rows;
  }
  return versions;
}

// All that the calls of ODBC have no part in.
void JudgeWithoutUpdate(const WholeLaunch& whole, const LaunchOutcome& outcome, Sentences& faults)
{
  if (outcome.started != whole.outcome.started)
    faults.push_back("Another host was started, or in another way.");
  if (outcome.registry != whole.outcome.registry)
    faults.push_back("The registry differs.");
  if (Repairs(outcome.diary) != Repairs(whole.outcome.diary))
    faults.push_back("Not the repairs that are due.");
}

// PATH as it was, and all that its change can make of it.
std::set<std::string> KnownPaths(const WholeLaunch& whole)
{
  return {whole.outcome.path, "C:\\Windows;D:\\Tools;C:\\Norvane\\Kestrelforge;D:\\OLD~1",
          "c:\\windows;d:\\tools;", "C:\\Forge64\\Bin;c:\\windows;d:\\tools;d:\\old~1;"};
}

// Failures of these keep nothing from the databases, however many there are.
bool IsHarmless(const FailureKind& kind)
{
  static const std::set<std::string> functions = {
      "SQLCloseCursor", "SQLFreeHandle",           "SQLDisconnect",           "RegSetValueExW",
      "RegCloseKey",    "RegEnumValueW",           "MsiReinstallProductW",    "FindClose",
      "CloseHandle",    "GetModuleFileNameExA",    "GetFileVersionInfoSizeA", "GetFileVersionInfoA",
      "VerQueryValueA", "GetEnvironmentVariableW", "SetEnvironmentVariableW", "GetLongPathNameW",
      "CreateProcessW", "SHGetSpecialFolderPathA", "SHGetSpecialFolderPathW"};
  return functions.contains(kind.function) || kind.form == " with info";
}

// True if a step writes to the table.
bool IsTarget(const WholeLaunch& whole, const std::string& database, const std::string& table)
{
  return std::any_of(whole.steps.begin(), whole.steps.end(), [&](const LaunchStep& step) {
    return step.database == database && step.table == table;
  });
}

// What the databases may hold behind any number of failures of one kind.
ExpectedDatabases ExpectForGood(const WholeLaunch& whole, const FailureKind& kind)
{
  // All that a row may be: from the start, from any of the patches, or, if something could not be
  // read, of values from there. What has lost its version takes that of any patch.
  std::vector<const ExpectedDatabases::Contents*> known = {&whole.before, &whole.outcome.databases,
                                                           &ContentsInEnglish(whole)};
  std::vector<ExpectedDatabases::Contents> versions;
  for (const std::string patch : {"Spring.mdb", "Summer.mdb", "Steel.mdb"}) {
    known.push_back(&ContentsWithout(whole, {patch}));
    versions.emplace_back();
    for (const std::string& database : RichDatabases())
      versions.back()[database] = VersionsOf(whole.before.at(patch));
  }
  for (const ExpectedDatabases::Contents& contents : versions)
    known.push_back(&contents);
  ExpectedDatabases expected(whole.outcome.databases);
  for (const auto& [database, content] : whole.outcome.databases) {
    const DatabaseContent& before = whole.before.at(database);
    for (const auto& [table, rows] : content) {
      const bool isStar = database == "QuillRules" && table.starts_with("Grade");
      const bool isWritten = table.ends_with("Version") || IsTarget(whole, database, table);
      if (!isWritten || (IsHarmless(kind) && !(isStar && IsOdbc(kind))))
        continue;
      // What was there is missing only if it was to be made anew.
      if (!before.contains(table) || table == "Shapes")
        expected.AllowAbsence(database, table);
      expected.AllowKnownValues(database, table, known);
    }
  }
  return expected;
}

// Each database of the product is opened, whether there is one or not, and each file that a search
// has given.
void JudgeOpening(const Lines& diary, Sentences& faults)
{
  constexpr int productDatabases = 17;
  int opened = 0;
  int found = 0;
  for (const std::string& line : diary) {
    opened += line.starts_with("SQLAllocHandle(ENV") ? 1 : 0;
    const bool isSearch = line.starts_with("FindFirstFileW(") || line.starts_with("FindNextFileW(");
    found += isSearch && line.ends_with(".mdb\"") ? 1 : 0;
  }
  const bool isUpdate = Count(diary, "FindFirstFileW(") > 0;
  if (opened != found + (isUpdate ? productDatabases : 0))
    faults.push_back(std::to_string(opened) + " databases and patches were opened.");
}

}  // namespace

Sentences JudgeAlways(const WholeLaunch& whole, const LaunchOutcome& outcome)
{
  Sentences faults;
  JudgeStart(whole, outcome, faults);
  JudgeKeys(outcome, faults);
  JudgeHandles(outcome, faults);
  JudgeStatements(outcome.diary, faults);
  JudgeOpening(outcome.diary, faults);
  for (const auto& [name, content] : outcome.databases) {
    if (content.contains("damaged"))
      faults.push_back(name + ": " + content.at("damaged")[0]);
  }
  return faults;
}

Sentences JudgeOnce(const WholeLaunch& whole, const LaunchCall& call, const FailureKind& kind,
                    const LaunchOutcome& outcome)
{
  Sentences faults = JudgeAlways(whole, outcome);
  if (IsOdbc(kind)) {
    JudgeUnharmed(whole, call, outcome, faults);
    Append(faults, ExpectAfter(whole, call, kind).Judge(outcome.databases));
    Append(faults, JudgeTraces(whole, call, kind, outcome.traces));
    return faults;
  }
  if (EndsTheRun(call))
    return faults;
  // A key that can't be closed changes nothing.
  if (IsChoiceOfHost(whole, call) && call.function != "RegCloseKey") {
    JudgeOtherChoice(outcome, faults);
    JudgeRest(whole, outcome, faults);
    if (LeadsToTheHost(whole, call) && !outcome.started.empty())
      faults.push_back("A host was started whose keys could not be opened.");
    return faults;
  }
  JudgeUnharmed(whole, call, outcome, faults);
  if (whole.machine.withDatabases)
    JudgeDatabases(whole, call, outcome, faults);
  return faults;
}

Sentences JudgeForGood(const WholeLaunch& whole, const FailureKind& kind,
                       const LaunchOutcome& outcome)
{
  Sentences faults = JudgeAlways(whole, outcome);
  JudgeOtherChoice(outcome, faults);
  if (IsOdbc(kind))
    JudgeWithoutUpdate(whole, outcome, faults);
  if (!KnownPaths(whole).contains(outcome.path))
    faults.push_back("PATH is " + outcome.path);
  if (whole.machine.withDatabases)
    Append(faults, ExpectForGood(whole, kind).Judge(outcome.databases));
  return faults;
}
