#include "database/InfoTable.h"
#include "database/KFProjectsVersionTable.h"
#include "database/KFVersionTable.h"
#include "database/QulDatabase.h"
#include "database/UpdateTable.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"

namespace {

const wchar_t* const Connection = L"DBQ=C:\\Data\\QuillBase.mdb;PWD=forge";

// A step of the connecting: the call, its text, and what is called when the object ends that could
// not get beyond it.
struct Step
{
  const char* function;
  int call;
  const char* text;
  Lines end;
};

const Lines EndOfConnection = {"SQLDisconnect(dbc#1) = -1", "SQLFreeHandle(DBC, dbc#1) = 0",
                               "SQLFreeHandle(ENV, env#1) = 0"};

const Step Steps[] = {
    {"SQLAllocHandle", 1, "Error in Allocating Environment.", {}},
    {"SQLSetEnvAttr", 1, "Error in Setting ODBC Version.", {"SQLFreeHandle(ENV, env#1) = 0"}},
    {"SQLAllocHandle", 2, "Error in Allocating Connection.", {"SQLFreeHandle(ENV, env#1) = 0"}},
    {"SQLSetConnectAttrW", 1, "Error in Setting Login Timeout.", EndOfConnection},
    {"SQLSetConnectAttrW", 2, "Error in Setting AccessMode.", EndOfConnection},
    {"SQLDriverConnectW", 1, "Error driver connect to database.", EndOfConnection},
};

const Lines ConnectLines = {
    "SQLAllocHandle(ENV, null) = 0 env#1",
    "SQLSetEnvAttr(env#1, 200, 3, -6) = 0",
    "SQLAllocHandle(DBC, env#1) = 0 dbc#1",
    "SQLSetConnectAttrW(dbc#1, 103, 5, 0) = 0",
    "SQLSetConnectAttrW(dbc#1, 101, 0, 0) = 0",
    R"(SQLDriverConnectW(dbc#1, null, "DBQ=C:\Data\QuillBase.mdb;PWD=forge", -3, 4096, length, 0) = 0)",
};

Lines OdbcLines()
{
  Lines lines;
  for (const std::string& line : Diary()) {
    if (line.compare(0, 3, "SQL") == 0)
      lines.push_back(line);
  }
  return lines;
}

// Writes down when it is deleted.
struct Deletion
{
  std::string name;
  size_t callsBefore;
};

template <typename Table>
class WatchedTable : public Table
{
public:
  WatchedTable(const QulDatabase& database, const char* name, std::vector<Deletion>& list)
      : Table(database), ownName(name), deletions(list)
  {
  }
  ~WatchedTable() override { deletions.push_back({ownName, Diary().size()}); }

private:
  const char* ownName;
  std::vector<Deletion>& deletions;
};

template <typename Table>
void Watch(Table*& table, const QulDatabase& database, const char* name,
           std::vector<Deletion>& list)
{
  delete table;
  table = new WatchedTable<Table>(database, name, list);
}

void WatchUpdateTable(QulPatchDatabase& patch, std::vector<Deletion>& list)
{
  class WatchedUpdateTable : public UpdateTable
  {
  public:
    WatchedUpdateTable(QulDatabase& database, std::vector<Deletion>& deletionList)
        : UpdateTable(database), deletions(deletionList)
    {
    }
    ~WatchedUpdateTable() override { deletions.push_back({"update", Diary().size()}); }

  private:
    std::vector<Deletion>& deletions;
  };
  delete patch.updateTable;
  patch.updateTable = new WatchedUpdateTable(patch, list);
}

class DatabaseConnection : public DatabaseMachine
{
};

}  // namespace

TEST_F(DatabaseConnection, IsMadeInSixSteps)
{
  (void)Target();
  const QulDatabase database(Connection, L"QuillBase");
  const Lines all = OdbcLines();
  ASSERT_GE(all.size(), ConnectLines.size());
  const auto size = static_cast<std::ptrdiff_t>(ConnectLines.size());
  EXPECT_EQ(Lines(all.begin(), all.begin() + size), ConnectLines);
  EXPECT_TRUE(database.connected);
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(DatabaseConnection, KeepsItsTextsAndHandles)
{
  (void)Target();
  const QulDatabase database(Connection, L"QuillBase");
  EXPECT_EQ(TextOf(database.GetName()), "QuillBase");
  EXPECT_EQ(TextOf(database.name), "QuillBase");
  EXPECT_EQ(TextOf(database.connectionString), "DBQ=C:\\Data\\QuillBase.mdb;PWD=forge");
  EXPECT_NE(database.environmentHandle, nullptr);
  EXPECT_NE(database.connectionHandle, nullptr);
  EXPECT_EQ(database.tableNames.count, 0);
}

TEST_F(DatabaseConnection, IsFollowedByTheThreeTablesInTheirOrder)
{
  (void)Target();
  const QulDatabase database(Connection, L"QuillBase");
  const Lines expected = {R"(SQLExecDirectW(stmt#1, "SELECT * FROM KFVersion", -3) = -1)",
                          R"(SQLExecDirectW(stmt#2, "SELECT * FROM KFProjectsVersion", -3) = -1)",
                          R"(SQLExecDirectW(stmt#3, "SELECT * FROM Info", -3) = -1)"};
  EXPECT_EQ(DiaryOf({"SQLExecDirectW"}), expected);
}

TEST_F(DatabaseConnection, LeavesNoStatementAllocated)
{
  (void)Target();
  const QulDatabase database(Connection, L"QuillBase");
  EXPECT_EQ(Odbc().OpenStatements(), 0);
}

TEST_F(DatabaseConnection, OfAPatchIsFollowedByTheUpdateTable)
{
  (void)Target();
  const QulPatchDatabase database(Connection, L"Spring.mdb");
  const Lines queries = DiaryOf({"SQLExecDirectW"});
  ASSERT_EQ(queries.size(), 4u);
  EXPECT_EQ(queries[3],
            R"(SQLExecDirectW(stmt#4, "SELECT * FROM UpdateTable ORDER BY [ID]", -3) = -1)");
  EXPECT_EQ(database.targetDatabase, nullptr);
  EXPECT_EQ(database.updateTable->steps.count, 0);
}

TEST_F(DatabaseConnection, EndsWithTheTextOfTheStepThatFails)
{
  for (const Step& step : Steps) {
    for (const int code : FailureCodes) {
      ResetPlatform();
      (void)Target();
      FailOdbcCall(step.function, step.call, code);
      const QulDatabase database(Connection, L"QuillBase");
      EXPECT_EQ(DebugTexts(), (Lines{"\n", step.text})) << code;
      EXPECT_FALSE(database.connected) << step.text;
    }
  }
}

TEST_F(DatabaseConnection, MakesNoOtherCallOfOdbcAfterTheStepThatFails)
{
  size_t calls = 0;
  for (const Step& step : Steps) {
    ResetPlatform();
    (void)Target();
    FailOdbcCall(step.function, step.call, SQL_ERROR);
    const QulDatabase database(Connection, L"QuillBase");
    ++calls;
    ASSERT_EQ(OdbcLines().size(), calls) << step.text;
    const std::string last = OdbcLines().back();
    EXPECT_EQ(last.compare(0, std::string(step.function).size(), step.function), 0) << last;
  }
}

TEST_F(DatabaseConnection, ThatFailsLeavesEmptyTables)
{
  for (const Step& step : Steps) {
    ResetPlatform();
    Target().Table("KFVersion", {{"MajorNumber", "2"}});
    FailOdbcCall(step.function, step.call, SQL_ERROR);
    const QulDatabase database(Connection, L"QuillBase");
    ASSERT_NE(database.versionTable, nullptr);
    ASSERT_NE(database.projectsVersionTable, nullptr);
    ASSERT_NE(database.infoTable, nullptr);
    EXPECT_EQ(database.versionTable->rows.count, 0) << step.text;
    EXPECT_EQ(database.projectsVersionTable->rows.count, 0) << step.text;
    EXPECT_EQ(database.infoTable->rows.count, 0) << step.text;
  }
}

TEST_F(DatabaseConnection, ThatFailsFreesTheHandlesThatItGot)
{
  for (const Step& step : Steps) {
    ResetPlatform();
    (void)Target();
    FailOdbcCall(step.function, step.call, SQL_ERROR);
    {
      const QulDatabase database(Connection, L"QuillBase");
      ClearDiary();
    }
    EXPECT_EQ(Diary(), step.end) << step.text;
  }
}

TEST_F(DatabaseConnection, GoesOnAfterAStepThatSucceedsWithInformation)
{
  for (const Step& step : Steps) {
    ResetPlatform();
    (void)Target();
    FailOdbcCall(std::string(step.function) + " afterwards", step.call, SQL_SUCCESS_WITH_INFO);
    const QulDatabase database(Connection, L"QuillBase");
    EXPECT_TRUE(database.connected) << step.text;
    EXPECT_TRUE(DebugTexts().empty()) << step.text;
  }
}

TEST_F(DatabaseConnection, ToAFileThatIsNotThereWritesOneTraceAndGivesEmptyResults)
{
  QulDatabase database(L"DBQ=C:\\none.mdb", L"QuillBase");
  EXPECT_FALSE(database.TableExists(L"Parts"));
  EXPECT_EQ(database.GetTableNames().count, 0);
  EXPECT_EQ(database.GetMajorNumber(), 0);
  EXPECT_EQ(database.GetCommSPNumber(), 0);
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "Error driver connect to database."}));
}

TEST_F(DatabaseConnection, WithAnEmptyStringIsTriedAndFails)
{
  const QulDatabase database(L"", L"QuillBase");
  EXPECT_EQ(DiaryOf({"SQLDriverConnectW"}),
            (Lines{R"(SQLDriverConnectW(dbc#1, null, "", -3, 4096, length, 0) = -1)"}));
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "Error driver connect to database."}));
  EXPECT_NE(database.infoTable, nullptr);
}

TEST_F(DatabaseConnection, HasAnEnvironmentForEachDatabase)
{
  (void)Target();
  const QulDatabase first(Connection, L"QuillBase");
  const QulDatabase second(Connection, L"QuillBase");
  EXPECT_EQ(Odbc().OpenEnvironments(), 2);
  EXPECT_EQ(Odbc().OpenConnections(), 2);
}

TEST_F(DatabaseConnection, ThatFailsLeavesAPatchWithAnEmptyUpdateTable)
{
  const QulPatchDatabase database(L"DBQ=C:\\none.mdb", L"Spring.mdb");
  ASSERT_NE(database.updateTable, nullptr);
  EXPECT_EQ(database.updateTable->steps.count, 0);
  EXPECT_EQ(database.targetDatabase, nullptr);
  EXPECT_TRUE(DiaryOf({"SQLExecDirectW"}).empty());
}

TEST_F(DatabaseConnection, EndsByDisconnectingAndFreeingItsHandles)
{
  OpenTarget().reset();
  EXPECT_EQ(Diary(), (Lines{"SQLDisconnect(dbc#1) = 0", "SQLFreeHandle(DBC, dbc#1) = 0",
                            "SQLFreeHandle(ENV, env#1) = 0"}));
}

TEST_F(DatabaseConnection, FreesItsHandlesWhateverTheDisconnectReturns)
{
  for (const int code : {-1, 100, -2, 1}) {
    auto database = OpenTarget();
    FailOdbcCall("SQLDisconnect afterwards", 1, code);
    database.reset();
    EXPECT_EQ(DiaryOf({"SQLFreeHandle"}).size(), 2u) << code;
  }
}

TEST_F(DatabaseConnection, FreesTheEnvironmentThoughTheConnectionCannotBeFreed)
{
  auto database = OpenTarget();
  FailOdbcCall("SQLFreeHandle afterwards", 1, SQL_ERROR);
  database.reset();
  EXPECT_EQ(DiaryOf({"SQLFreeHandle"}),
            (Lines{"SQLFreeHandle(DBC, dbc#1) = -1", "SQLFreeHandle(ENV, env#1) = 0"}));
}

TEST_F(DatabaseConnection, IsGoneBeforeTheTablesAreDeletedInTheirOrder)
{
  std::vector<Deletion> deletions;
  auto database = OpenTarget();
  Watch(database->versionTable, *database, "version", deletions);
  Watch(database->projectsVersionTable, *database, "projects", deletions);
  Watch(database->infoTable, *database, "info", deletions);
  ClearDiary();
  database.reset();
  ASSERT_EQ(deletions.size(), 3u);
  EXPECT_EQ(deletions[0].name, "version");
  EXPECT_EQ(deletions[1].name, "projects");
  EXPECT_EQ(deletions[2].name, "info");
  EXPECT_EQ(deletions[0].callsBefore, 3u);
  EXPECT_EQ(Diary().size(), 3u);
}

TEST_F(DatabaseConnection, IsThereWhileTheUpdateTableOfAPatchIsDeleted)
{
  std::vector<Deletion> deletions;
  auto patch = OpenPatch();
  WatchUpdateTable(*patch, deletions);
  Watch(patch->versionTable, *patch, "version", deletions);
  ClearDiary();
  patch.reset();
  ASSERT_EQ(deletions.size(), 2u);
  EXPECT_EQ(deletions[0].name, "update");
  EXPECT_EQ(deletions[0].callsBefore, 0u);
  EXPECT_EQ(deletions[1].callsBefore, 3u);
}

TEST_F(DatabaseConnection, OfAPatchEndsWithItsBaseToo)
{
  std::unique_ptr<QulDatabase> database = OpenPatch();
  database.reset();
  EXPECT_EQ(Diary().size(), 3u);
}
