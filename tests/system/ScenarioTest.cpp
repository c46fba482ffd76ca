// Some of the scenarios of tests/scenario with the real program, which is started twice for each:
// what it makes of the databases, what it sends and reports, and that the second start finds
// nothing left to do.

#include "sandbox/common/SandboxFiles.h"
#include "tests/scenario/DatabaseFile.h"
#include "tests/system/DatabaseMachine.h"

#include <windows.h>
// The ODBC headers build on the one above.
#include <sql.h>
#include <sqlext.h>

#include <filesystem>
#include <map>
#include <sstream>

namespace {

const std::string PatchFolder = "DatabaseUpdate\\";
const std::string ProjectFolder = PatchFolder + "Projects\\";

// The driver manager writes no more of a text into its trace.
constexpr size_t TracedCharacters = 127;

// A text as the trace has it: the lowest byte of each character, and no more than the first part.
std::string AsTraced(const std::string& sql)
{
  std::string bytes;
  for (const wchar_t character : FromUtf8(sql)) {
    bytes += static_cast<char>(character & 0xFF);
  }
  return bytes.size() <= TracedCharacters ? bytes : bytes.substr(0, TracedCharacters) + "...";
}

int CodeOf(const OdbcOutcome& outcome)
{
  if (outcome.result == "SQL_SUCCESS") {
    return SQL_SUCCESS;
  }
  return outcome.result == "SQL_NO_DATA" ? SQL_NO_DATA : SQL_ERROR;
}

std::string TestName(const testing::TestParamInfo<const char*>& info)
{
  return TestNameOf(info.param);
}

class ScenarioWithTheProgram : public DatabaseTest, public testing::WithParamInterface<const char*>
{
protected:
  static Query QueryOn(const std::string& file)
  {
    return [file](const std::string& sql) { return Select(file, sql); };
  }

  void LayOut()
  {
    if (scenario.language.has_value()) {
      Machine64.WriteNumber(EnvironmentKey, L"Language", *scenario.language);
    }
    LayProduct();
    for (const auto& [name, script] : scenario.patches) {
      LayScript(PatchFolder + name + ".mdb", script);
    }
    std::set<std::string> attributes;
    for (const auto& [name, script] : scenario.projects) {
      LayScript(ProjectFolder + name + ".mdb", script);
      attributes.merge(ProjectAttributes(QueryOn(ProjectFolder + name + ".mdb")));
    }
    LayScript("filler.mdb", FillerScript(attributes));
    std::string filler;
    ASSERT_TRUE(ReadWholeFile(DataPath("filler.mdb"), filler));
    ASSERT_TRUE(DeleteFileW(DataPath("filler.mdb").c_str()));
    for (const std::string& name : ProductDatabases) {
      LayProductDatabase(name, filler);
    }
  }

  // Starts the program, and adds what it sent and reported to the outcome.
  void Launch()
  {
    const std::map<std::string, std::string> before = DataFiles();
    const DatabaseRun run = DatabaseTest::Launch();
    for (const std::string& trace : run.Traces()) {
      traces += OnOneLine(trace) + "\n";
    }
    std::set<std::string> mayChange;
    for (const std::string& name : ProductDatabases) {
      if (Collect(run.traffic, name)) {
        mayChange.insert(ToUtf8(DataPath(ProductFile(name))));
      }
    }
    const std::map<std::string, std::string> after = DataFiles();
    for (const auto& [file, bytes] : before) {
      EXPECT_TRUE(mayChange.contains(file) || after.at(file) == bytes) << file << " has changed.";
    }
    EXPECT_EQ(after.size(), before.size()) << "A file was left behind.";
  }

  // What the folder says about one database: its lines of statements.txt, each as the trace of the
  // driver manager has it.
  std::string ExpectedStatements(const std::string& name) const
  {
    std::istringstream lines(scenario.statements);
    std::string expected;
    std::string line;
    bool isOfDatabase = false;
    while (std::getline(lines, line)) {
      if (line.starts_with("run ")) {
        continue;
      }
      if (!line.starts_with("  -> ")) {
        isOfDatabase = line.starts_with(name + ": ");
        line = isOfDatabase ? name + ": " + AsTraced(line.substr(name.size() + 2)) : "";
      }
      expected += isOfDatabase ? line + "\n" : "";
    }
    return expected;
  }

  // The same for the traces, which the debugger of Windows gets.
  std::string ExpectedTraces() const
  {
    std::istringstream lines(scenario.traces);
    std::string expected;
    std::string line;
    while (std::getline(lines, line)) {
      expected += line.starts_with("run ") ? "" : line + "\n";
    }
    return expected;
  }

  Scenario scenario;
  std::map<std::string, std::string> statements;  // by the product's name
  std::string traces;

private:
  static void LayScript(const std::string& file, const Scenario::Script& script)
  {
    LayBytes(file, "");
    Execute(file, script);
  }

  void LayProductDatabase(const std::string& name, const std::string& filler)
  {
    const std::string file = ProductFile(name);
    const auto found = scenario.databases.find(name);
    if (scenario.absent.contains(name)) {
      ASSERT_TRUE(DeleteFileW(DataPath(file).c_str()));
    } else if (found == scenario.databases.end()) {
      LayBytes(file, filler);
    } else {
      LayScript(file, found->second);
    }
    if (scenario.readOnly.contains(name)) {
      std::string bytes;
      ASSERT_TRUE(ReadWholeFile(DataPath(file), bytes));
      ASSERT_TRUE(ForbidWriting(bytes));
      LayBytes(file, bytes);
    }
  }

  // True if the database was sent anything but queries.
  bool Collect(const OdbcTraffic& traffic, const std::string& name)
  {
    bool isWritten = false;
    for (const OdbcConnection& connection : traffic.connections) {
      if (connection.file != ProductFile(name)) {
        continue;
      }
      for (size_t i = 0; i < connection.statements.size(); ++i) {
        const std::string& sql = connection.statements[i];
        if (!ReadsStoredTable(sql)) {
          statements[name] += DescribeStatement(name, sql, CodeOf(connection.outcomes[i]));
        }
        isWritten = isWritten || !OnlyReads(sql);
      }
    }
    return isWritten;
  }
};

// Those of which the trace of the driver manager tells enough, a few of each kind.
const char* const Chosen[] = {"create-that-fails-after-the-drop",
                              "created-table-of-all-types",
                              "delete-by-all-columns",
                              "flags-d-target-present",
                              "flags-none-target-present",
                              "key-from-a-step-of-the-same-patch",
                              "language-column-takes-the-place-of-the-base-column",
                              "language-german-takes-its-own-table",
                              "null-in-a-later-row",
                              "numbers-in-their-forms",
                              "patches-above-the-version-at-the-start",
                              "profiles-keep-the-columns-of-all-languages",
                              "row-with-an-empty-text-for-a-column-that-needs-one",
                              "second-start-finds-nothing-to-do",
                              "star-on-both-sides",
                              "target-that-is-absent",
                              "target-that-is-read-only",
                              "text-of-all-the-world"};

}  // namespace

TEST_P(ScenarioWithTheProgram, IsAsTheFolderSays)
{
  scenario = ReadScenario(std::filesystem::path(KESTREL_SCENARIO_FOLDER) / GetParam(),
                          ProductDatabases, false);
  ASSERT_EQ(scenario.faults, std::vector<std::string>());
  SCOPED_TRACE(scenario.behaviour);
  ASSERT_NO_FATAL_FAILURE(LayOut());
  for (int run = 1; run <= scenario.runs; ++run) {
    Launch();
  }
  for (const auto& [name, content] : scenario.content) {
    EXPECT_EQ(content, DescribeContent(QueryOn(ProductFile(name)))) << name;
  }
  for (const std::string& name : ProductDatabases) {
    EXPECT_EQ(ExpectedStatements(name), statements[name]) << name;
  }
  EXPECT_EQ(ExpectedTraces(), traces);
  if (scenario.runs > 1) {
    return;
  }
  // Once more: nothing is sent, so no file may change, and nothing but a missing database is told.
  statements.clear();
  traces.clear();
  Launch();
  for (const auto& [name, sent] : statements) {
    EXPECT_EQ(sent, "") << name;
  }
  EXPECT_EQ(traces, scenario.absent.empty() ? "" : "Error driver connect to database.\n");
}

INSTANTIATE_TEST_SUITE_P(Chosen, ScenarioWithTheProgram, testing::ValuesIn(Chosen), TestName);
