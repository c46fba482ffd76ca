#include "tests/faults/WholeLaunch.h"

#include "tests/doubles/Diary.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/faults/Content.h"
#include "tests/faults/DiaryLine.h"
#include "tests/faults/Watchdog.h"

#include <stdlib.h>

namespace {

const char* const DatabaseFiles[] = {"QuillRules",     "QuillProfiles2010", "QuillCurrentProject",
                                     "NVCMapping2010", "Damaged.mdb",       "Spring.mdb",
                                     "Summer.mdb",     "Steel.mdb"};

std::string DatabaseOf(const std::string& connectionString)
{
  for (const char* name : DatabaseFiles) {
    if (connectionString.ends_with("DBQ=" + FileOf(name)))
      return name;
  }
  return "";
}

// What the diary of a launch says about the handles in it.
class Handles
{
public:
  explicit Handles(const std::vector<std::string>& diary)
  {
    for (const std::string& line : diary) {
      const std::string handle = HandleIn(line);
      if (line.starts_with("SQLAllocHandle(DBC"))
        environments[GivenHandleIn(line)] = handle;
      else if (line.starts_with("SQLAllocHandle(STMT"))
        connections[GivenHandleIn(line)] = handle;
      else if (line.starts_with("SQLDriverConnectW("))
        databases[handle] = databases[environments[handle]] = DatabaseOf(QuotedIn(line));
      else if (line.starts_with("SQLBindCol("))
        ++bindings[handle];
    }
  }

  std::string DatabaseOfHandle(const std::string& handle) const
  {
    const auto connection = connections.find(handle);
    const auto found =
        databases.find(connection == connections.end() ? handle : connection->second);
    return found == databases.end() ? "" : found->second;
  }

  bool HasOneBinding(const std::string& statement) const
  {
    const auto found = bindings.find(statement);
    return found != bindings.end() && found->second == 1;
  }

private:
  std::map<std::string, std::string> environments;  // by connection
  std::map<std::string, std::string> connections;   // by statement
  std::map<std::string, std::string> databases;     // by environment and by connection
  std::map<std::string, int> bindings;              // by statement
};

// Goes through the diary's lines of ODBC and tells what each was for.
class Reader
{
public:
  explicit Reader(WholeLaunch& launchToRead)
      : launch(launchToRead), lines(launch.outcome.diary), handles(lines)
  {
    described.resize(lines.size());
    for (size_t i = 0; i < lines.size(); ++i) {
      if (lines[i].starts_with("SQL"))
        Describe(i);
    }
    // A statement is allocated before anything is known of it.
    for (size_t i = 0; i < lines.size(); ++i) {
      if (lines[i].starts_with("SQLAllocHandle(")) {
        const auto found = firstUse.find(GivenHandleIn(lines[i]));
        if (found != firstUse.end())
          described[i] = described[found->second];
        else
          described[i].database = handles.DatabaseOfHandle(GivenHandleIn(lines[i]));
      }
    }
  }

  void Complete(LaunchCall& call) const
  {
    if (call.function.starts_with("SQL")) {
      LaunchCall complete = described[call.lineIndex];
      complete.function = call.function;
      complete.number = call.number;
      complete.lineIndex = call.lineIndex;
      call = complete;
    }
    if (call.lineIndex < lines.size())
      call.line = lines[call.lineIndex];
  }

private:
  void Describe(size_t i)
  {
    const std::string& line = lines[i];
    const std::string handle = HandleIn(line);
    LaunchCall& call = described[i];
    if (!handle.starts_with("stmt#")) {
      call.database = handles.DatabaseOfHandle(handle);
      return;
    }
    if (firstUse.try_emplace(handle, i).second)
      statements[handle] = {};
    LaunchCall& statement = statements[handle];
    statement.database = handles.DatabaseOfHandle(handle);
    if (line.starts_with("SQLExecDirectW("))
      statement.statement = QuotedIn(line);
    else if (line.starts_with("SQLTablesW("))
      statement.statement = "tables";
    else if (line.starts_with("SQLColumnsW("))
      BeginCatalogue(statement, handle, QuotedIn(line));
    // All statements between the look at the source and the last row belong to one step, but for
    // those of the versions.
    if (statement.step < 0 && IsOfStep(statement))
      statement.step = static_cast<int>(launch.steps.size()) - 1;
    if (line.starts_with("SQLFetch("))
      ++fetches[handle];
    call = statement;
    call.place = line.starts_with("SQLFetch(") ? fetches[handle] : 0;
    if (line.starts_with("SQLBindCol("))
      call.column = atoi(line.c_str() + line.find(", ") + 2);
  }

  // The first question of a step is whether the patch has the table, the second whether the target
  // has it.
  void BeginCatalogue(LaunchCall& statement, const std::string& handle, const std::string& table)
  {
    statement.statement = "columns of " + table;
    statement.isLookup = handles.HasOneBinding(handle);
    const bool isPatch = IsPatch(statement.database);
    if (isPatch && statement.isLookup)
      launch.steps.push_back({statement.database, table, "", ""});
    else if (!launch.steps.empty() && launch.steps.back().table.empty() && statement.isLookup) {
      launch.steps.back().database = statement.database;
      launch.steps.back().table = table;
    }
  }

  bool IsOfStep(const LaunchCall& call) const
  {
    return !launch.steps.empty() && call.statement != "tables" &&
           call.statement.find("KFVersion") == std::string::npos &&
           call.statement.find("KFProjectsVersion") == std::string::npos;
  }

  WholeLaunch& launch;
  const std::vector<std::string>& lines;
  Handles handles;
  std::vector<LaunchCall> described;             // by line
  std::map<std::string, LaunchCall> statements;  // by handle, as they are at the moment
  std::map<std::string, size_t> firstUse;        // line of it, by handle
  std::map<std::string, int> fetches;            // by handle
};

WholeLaunch RunWhole(HostRoute route)
{
  WholeLaunch launch;
  launch.machine.route = route;
  // One route is enough for the databases.
  launch.machine.withDatabases = route == HostRoute::Current;
  LayOut(launch.machine);
  for (const char* name : DatabaseFiles) {
    if (launch.machine.withDatabases && name != std::string("Damaged.mdb"))
      launch.before[name] = ReadContent(Files().UnixPath(FileOf(name)));
  }
  WatchCalls([&launch](const char* function) {
    std::vector<LaunchCall>& calls = launch.calls[function];
    LaunchCall call;
    call.function = function;
    call.number = static_cast<int>(calls.size()) + 1;
    call.lineIndex = Diary().size();
    calls.push_back(call);
  });
  {
    const Watchdog watchdog("whole launch");
    launch.outcome = TakeOutcome(Launch(launch.machine));
  }
  const Reader reader(launch);
  for (auto& [function, calls] : launch.calls) {
    for (LaunchCall& call : calls)
      reader.Complete(call);
  }
  return launch;
}

std::string KeyOf(const RichMachine& machine)
{
  std::string key = std::to_string(static_cast<int>(machine.route)) +
                    std::to_string(machine.language) + (machine.withDatabases ? "d" : "");
  for (const std::string& name : machine.without)
    key += "-" + name;
  for (const auto& [name, statements] : machine.changes)
    key += "|" + name + " " + statements;
  return key;
}

}  // namespace

const WholeLaunch& WholeLaunchOn(HostRoute route)
{
  static std::map<HostRoute, WholeLaunch> launches;
  const auto found = launches.find(route);
  return found != launches.end() ? found->second : launches[route] = RunWhole(route);
}

const LaunchOutcome& ReferenceLaunch(const RichMachine& machine)
{
  static std::map<std::string, LaunchOutcome> outcomes;
  const std::string key = KeyOf(machine);
  const auto found = outcomes.find(key);
  if (found != outcomes.end())
    return found->second;
  const Watchdog watchdog("launch without a failure: " + key);
  return outcomes[key] = LaunchOn(machine);
}
