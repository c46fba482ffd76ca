#include "tests/scenario/NativeMachine.h"

#include "database/DatabaseNames.h"
#include "tests/doubles/DebugOutputDouble.h"
#include "tests/doubles/Diary.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/LiveOdbc.h"
#include "tests/doubles/OdbcDouble.h"
#include "tests/doubles/RegistryDouble.h"
#include "tests/doubles/Text.h"
#include "tests/scenario/DatabaseFile.h"
#include "tests/unit/update/LeftToTheEnd.h"
#include "update/DatabaseConfiguration.h"
#include "update/DatabaseUpdateManager.h"

#include <gtest/gtest.h>

namespace {

const std::string EnvironmentKey = "Software\\Norvane\\Kestrelforge\\2010\\Environment";
const std::string ConnectionsKey = "Software\\Norvane\\DatabaseConnections";
const std::string PatchFolder = "C:\\Data\\DatabaseUpdate\\";
const std::string ProjectFolder = PatchFolder + "Projects\\";

std::string ProductFile(const std::string& name)
{
  return name == "QuillCurrentProject" ? "C:\\Data\\Kernel\\Data\\model.mdb"
                                       : "C:\\Data\\Databases\\" + name + ".mdb";
}

void MakeDatabase(const std::string& path, const Scenario::Script& script)
{
  OwnConnection connection(path);
  for (const std::string& statement : script) {
    // Once more by a call that tells what is wrong with it.
    if (connection.Execute(statement) != SQL_SUCCESS)
      FAIL() << path << ": " << RunSql(path, {statement});
  }
}

bool IsRegistered(const std::string& name)
{
  return name == "QuillProfiles2010" || name == "NVCMapping2010";
}

void MakeReadOnly(const std::string& path)
{
  std::string bytes = Files().Read(path);
  ASSERT_TRUE(ForbidWriting(bytes)) << path;
  Files().Put(path, bytes);
}

Query QueryOn(const std::string& path)
{
  return [path](const std::string& sql) { return SelectRows(path, sql); };
}

// The text between the first quotation mark of a diary line and the last one.
std::string QuotedIn(const std::string& line)
{
  const size_t first = line.find('"');
  const size_t last = line.rfind('"');
  return first == last ? "" : line.substr(first + 1, last - first - 1);
}

// The number behind the last equals sign.
int ResultIn(const std::string& line)
{
  return std::stoi(line.substr(line.rfind(" = ") + 3));
}

// Reads out of the diary what was sent to which database.
class SentStatements
{
public:
  SentStatements()
  {
    for (const std::string& name : ProductNames())
      databases[ConnectionStringOf(ProductFile(name))] = name;
    for (const std::string& line :
         DiaryOf({"SQLDriverConnectW", "SQLAllocHandle", "SQLExecDirectW"}))
      Take(line);
  }

  std::string text;
  std::set<std::string> changed;  // databases with statements that don't only read

private:
  void Take(const std::string& line)
  {
    const size_t argument = line.find('(') + 1;
    const std::string handle = line.substr(argument, line.find_first_of(",)") - argument);
    if (line.starts_with("SQLDriverConnectW(")) {
      const auto found = databases.find(QuotedIn(line));
      if (found != databases.end())
        connections[handle] = found->second;
    } else if (line.starts_with("SQLAllocHandle(STMT, ")) {
      const std::string connection = line.substr(21, line.find(')') - 21);
      const auto found = connections.find(connection);
      if (found != connections.end())
        statements[line.substr(line.rfind(' ') + 1)] = found->second;
    } else if (line.starts_with("SQLExecDirectW(")) {
      const auto found = statements.find(handle);
      if (found != statements.end())
        TakeStatement(found->second, QuotedIn(line), ResultIn(line));
    }
  }

  void TakeStatement(const std::string& database, const std::string& sql, int code)
  {
    if (ReadsStoredTable(sql))
      return;
    text += DescribeStatement(database, sql, code);
    if (!OnlyReads(sql))
      changed.insert(database);
  }

  std::map<std::string, std::string> databases;    // by connection string
  std::map<std::string, std::string> connections;  // databases by handle
  std::map<std::string, std::string> statements;   // the same
};

// The bytes of all the machine's databases, by path.
class FileBytes
{
public:
  explicit FileBytes(const Scenario& scenario)
  {
    for (const std::string& name : ProductNames())
      Add(ProductFile(name));
    for (const auto& [name, script] : scenario.patches)
      Add(PatchFolder + name + ".mdb");
    for (const auto& [name, script] : scenario.projects)
      Add(ProjectFolder + name + ".mdb");
  }

  // The files that nobody has sent a change to are as they were.
  void ExpectUnchangedBut(const std::set<std::string>& changedDatabases) const
  {
    std::set<std::string> changedFiles;
    for (const std::string& name : changedDatabases)
      changedFiles.insert(ProductFile(name));
    for (const auto& [path, bytes] : files) {
      const bool mayChange = changedFiles.contains(path);
      EXPECT_TRUE(mayChange || Files().Read(path) == bytes) << path << " has changed.";
    }
  }

private:
  void Add(const std::string& path) { files[path] = Files().Read(path); }

  std::map<std::string, std::string> files;
};

// As a new process is, but for the configuration file: it is read already, since what is left
// behind of that would else hide what the update may leave.
void StartProcess()
{
  updatePromptPending = true;
  DataSourceTable.Free();
  {
    const LeftToTheEnd buffersOfTheFile;
    (void)LoadDatabaseConfiguration();
  }
  ClearDiary();
}

std::string TracesSince(size_t first)
{
  const std::vector<std::string>& texts = DebugTexts();
  EXPECT_EQ((texts.size() - first) % 2, 0u);
  std::string traces;
  for (size_t i = first; i + 1 < texts.size(); i += 2) {
    EXPECT_EQ(texts[i], "\n");
    traces += OnOneLine(texts[i + 1]) + "\n";
  }
  return traces;
}

}  // namespace

std::vector<std::string> ProductNames()
{
  std::vector<std::string> names;
  for (const QulString& name : DatabaseNames)
    names.push_back(Utf8(name.Text()));
  return names;
}

NativeMachine::NativeMachine(const Scenario& scenarioToRun) : scenario(scenarioToRun) {}

void NativeMachine::LayOut()
{
  Registry().SetText(HKEY_LOCAL_MACHINE, RegistryView::Native, EnvironmentKey, "DataPath",
                     "C:\\Data");
  if (scenario.language.has_value())
    Registry().SetNumber(HKEY_LOCAL_MACHINE, RegistryView::Native, EnvironmentKey, "Language",
                         *scenario.language);
  for (const auto& [name, script] : scenario.patches)
    MakeDatabase(PatchFolder + name + ".mdb", script);
  for (const auto& [name, script] : scenario.projects)
    MakeDatabase(ProjectFolder + name + ".mdb", script);
  LayOutProduct();
  for (const std::string& name : scenario.readOnly)
    MakeReadOnly(ProductFile(name));
  for (const std::string& name : scenario.locked)
    Lock(name);
}

void NativeMachine::LayOutProduct()
{
  std::string elements;
  for (const std::string& name : ProductNames()) {
    const auto found = scenario.databases.find(name);
    if (found != scenario.databases.end())
      MakeDatabase(ProductFile(name), found->second);
    else if (!scenario.absent.contains(name))
      LayOutFiller(name);
    const std::string connection = ConnectionStringOf(ProductFile(name));
    if (IsRegistered(name))
      Registry().SetText(HKEY_LOCAL_MACHINE, RegistryView::Native, ConnectionsKey, name,
                         connection);
    else
      elements +=
          "<DataSource Platform=\"x64\" Name=\"" + name + "\" Value=\"" + connection + "\" />\n";
  }
  Files().Put("C:\\Data\\Configuration\\DatabaseConfiguration.xml",
              "<Kestrelforge>\n" + elements + "</Kestrelforge>\n");
}

void NativeMachine::LayOutFiller(const std::string& name)
{
  if (filler.empty()) {
    std::set<std::string> attributes;
    for (const auto& [project, script] : scenario.projects)
      attributes.merge(ProjectAttributes(QueryOn(ProjectFolder + project + ".mdb")));
    MakeDatabase(ProductFile(name), FillerScript(attributes));
    filler = Files().Read(ProductFile(name));
  }
  Files().Put(ProductFile(name), filler);
}

void NativeMachine::Lock(const std::string& name)
{
  writers.push_back(std::make_unique<OwnConnection>(ProductFile(name)));
  EXPECT_EQ(writers.back()->Execute("BEGIN IMMEDIATE"), SQL_SUCCESS) << name;
}

void NativeMachine::Unlock()
{
  for (const auto& writer : writers)
    EXPECT_EQ(writer->Execute("ROLLBACK"), SQL_SUCCESS);
  writers.clear();
}

Outcome NativeMachine::Run()
{
  Outcome outcome;
  for (int run = 1; run <= scenario.runs; ++run) {
    const Outcome one = RunOnce();
    const std::string heading = scenario.runs == 1 ? "" : "run " + std::to_string(run) + "\n";
    outcome.statements += heading + one.statements;
    outcome.traces += heading + one.traces;
  }
  Unlock();
  for (const auto& [name, script] : scenario.databases)
    outcome.content[name] = DescribeContent(QueryOn(ProductFile(name)));
  return outcome;
}

Outcome NativeMachine::RunOnce()
{
  const FileBytes before(scenario);
  const size_t firstTrace = DebugTexts().size();
  const int openConnections = Odbc().OpenConnections();
  StartProcess();
  RunDatabaseUpdate(0, 0);
  const SentStatements sent;
  EXPECT_EQ(Odbc().OpenConnections(), openConnections);
  if (writers.empty())
    before.ExpectUnchangedBut(sent.changed);
  return {{}, sent.text, TracesSince(firstTrace)};
}
