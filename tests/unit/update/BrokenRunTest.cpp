// An update that breaks off in the middle of its run, when everything is open.
#include "tests/unit/update/UpdateMachine.h"
#include "update/DatabaseConfiguration.h"
#include "update/DatabaseUpdateManager.h"

#include <gtest/gtest.h>

#include <map>
#include <utility>

namespace {

using Lines = std::vector<std::string>;

class BrokenRun : public UpdateMachine
{
protected:
  void SetUp() override
  {
    LayOut();
    const DatabaseUpdateManager manager;
    linesOfOpening = Diary().size();
    for (const std::string& line : Diary())
      ++callsOfOpening[line.substr(0, line.find('('))];
  }

  static void LayOut()
  {
    ResetPlatform();
    DataSourceTable.Free();
    updatePromptPending = true;
    SetDataPath("C:\\Data");
    AddWholeUpdate();
  }

  Lines Run()
  {
    LayOut();
    RunDatabaseUpdate(0, 0);
    return Sent(linesOfOpening);
  }

  // The same with an exception from the n-th call of that function behind the opening.
  Lines RunThrowing(const std::string& function, int n)
  {
    LayOut();
    FailOdbcCall(function + " throwing", callsOfOpening[function] + n, 7);
    RunDatabaseUpdate(0, 0);
    return Sent(linesOfOpening);
  }

  size_t linesOfOpening = 0;
  std::map<std::string, int> callsOfOpening;
};

// The statements that write version 1.1 to a database.
Lines VersionOf11(const std::string& database)
{
  const std::pair<const char*, const char*> numbers[] = {
      {"CommMajorVersion", "0"}, {"CommMinorVersion", "0"}, {"CommSPNumber", "0"},
      {"BuildNumber", "0"},      {"MajorNumber", "1"},      {"MinorNumber", "1"}};
  Lines updates;
  for (const auto& [attribute, number] : numbers)
    updates.push_back(database + "UPDATE KFVersion SET [Value]='" + number +
                      "' WHERE [Attribute]='" + attribute + "'");
  return updates;
}

void Append(Lines& lines, const Lines& more)
{
  lines.insert(lines.end(), more.begin(), more.end());
}

// What was sent up to an end is what a whole run sends up to there, but for the statement that
// threw.
void ExpectBeginningOf(const Lines& whole, Lines sent)
{
  ASSERT_FALSE(sent.empty());
  EXPECT_EQ(sent.back(), "trace: \nCritical Error!!");
  sent.pop_back();
  if (!sent.empty() && sent.back().ends_with(" throws"))
    sent.pop_back();
  ASSERT_LE(sent.size(), whole.size());
  const auto end = whole.begin() + static_cast<std::ptrdiff_t>(sent.size());
  EXPECT_EQ(sent, Lines(whole.begin(), end));
}

}  // namespace

TEST_F(BrokenRun, SendsThisIfNothingBreaksIt)
{
  const std::string keyOf =
      "SELECT [ColumnName],[TypeProperty] FROM [InfoTableRelations] WHERE [TableName] = ";
  const auto noKey = [](const std::string& table) {
    return "trace: Unable to read PrimaryKey or Unique info for table " + table +
           "!\n.First column will be marked as PK!";
  };
  Lines expected = VersionOf11("QuillRules: ");
  Append(expected, {"QuillRules: " + keyOf + "'Parts'", "QuillRules: " + keyOf + "'Parts'",
                    "a.mdb: SELECT * FROM NewParts",
                    "QuillRules: UPDATE [Parts]  SET [Name]='Bolt' WHERE [Id]=1",
                    "QuillRules: UPDATE [Parts]  SET [Name]='Plate' WHERE [Id]=2 -> 100",
                    "QuillRules: INSERT INTO [Parts] ([Id],[Name]) VALUES (2,'Plate');"});
  const std::string columns = "[Colours] ([Id],[Name],[Since],[Remark])";
  const std::string createColours =
      "CREATE TABLE Colours ([Id] SMALLINT NOT NULL ,[Name] TEXT(20) NULL ,[Since] DATE NULL "
      ",[Remark] MEMO NULL,PRIMARY KEY ([Id]));";
  Append(expected, {"QuillRules: " + keyOf + "'Colours'", noKey("Colours"),
                    "QuillRules: " + createColours, "a.mdb: SELECT * FROM Colours"});
  for (const char* values : {"(1,'red','31/3/2010','O''Neil''s')", "(2,'bleu','31/3/2010',NULL)"})
    Append(expected, {"QuillRules: INSERT INTO " + columns + " VALUES " + values + ";"});
  Append(expected,
         {"QuillRules: " + keyOf + "'Parts'", "QuillRules: " + keyOf + "'Parts'",
          "a.mdb: SELECT [Id] FROM OldParts", "QuillRules: DELETE FROM Parts WHERE [Id]=7;",
          "QuillRules: DELETE FROM Parts WHERE [Id]=8;"});
  Append(expected,
         {"QuillRules: " + keyOf + "'Marks'", noKey("Marks"), "QuillRules: " + keyOf + "'Marks'",
          noKey("Marks"), "a.mdb: SELECT * FROM OldMarks",
          "QuillRules: DELETE FROM Marks WHERE [Code]='W' AND [Weight]=2.500000;"});
  for (const std::string& update : VersionOf11(""))
    Append(expected, {"QuillBase: " + update + " -> -1",
                      "trace: Error executeSQL in QuillBase database.", "trace: " + update});
  Append(expected, {"QuillBase: " + keyOf + "'Parts' -> -1", noKey("Parts"),
                    "QuillBase: " + keyOf + "'Parts' -> -1", noKey("Parts"),
                    "a.mdb: SELECT * FROM NewParts"});
  for (const char* row : {"1,'Bolt'", "2,'Plate'"}) {
    const std::string values = row;
    const std::string insert = "INSERT INTO [Parts] ([Id],[Name]) VALUES (" + values + ");";
    Append(expected, {"QuillBase: UPDATE [Parts]  SET [Name]=" + values.substr(2) +
                          " WHERE [Id]=" + values[0] + " -> -1",
                      "QuillBase: " + insert + " -> -1", "trace: " + insert});
  }
  Append(expected,
         {"QuillRules: UPDATE KFProjectsVersion SET [Value]='2' WHERE [Attribute]='SteelGrades'",
          "QuillRules: UPDATE KFProjectsVersion SET [Value]='1' WHERE [Attribute]='BoltSets'",
          "QuillRules: " + keyOf + "'Parts'", "QuillRules: " + keyOf + "'Parts'",
          "p.mdb: SELECT * FROM Defaults",
          "QuillRules: UPDATE [Parts]  SET [Name]='Angle' WHERE [Id]=3"});
  const std::string create =
      "CREATE TABLE KFProjectsVersion ([Attribute] varchar(255) PRIMARY KEY NOT NULL,[Value] "
      "varchar(255) NOT NULL)";
  Append(expected,
         {"QuillBase: " + create + " -> -1", "trace: Error executeSQL in QuillBase database.",
          "trace: " + create, "trace: Unable to create table KFProjectsVersion\nSql:" + create});
  const Lines sent = Run();
  ASSERT_EQ(sent.size(), expected.size());
  for (size_t i = 0; i < sent.size(); ++i)
    EXPECT_EQ(sent[i], expected[i]) << i;
}

TEST_F(BrokenRun, EndsAtAnythingThrownAndClosesEverything)
{
  // Bindings and fetches come in long rows of their kind, of which some are enough.
  const std::pair<const char*, int> functions[] = {
      {"SQLAllocHandle", 1}, {"SQLExecDirectW", 1}, {"SQLColumnsW", 1}, {"SQLTablesW", 1},
      {"SQLCloseCursor", 1}, {"SQLFetch", 3},       {"SQLBindCol", 13}};
  const Lines whole = Run();
  for (const auto& [function, step] : functions) {
    int ends = 0;
    for (int n = 1;; n += step, ++ends) {
      const Lines sent = RunThrowing(function, n);
      if (!TakeMisuses().empty())
        break;  // There was no such call.
      ExpectBeginningOf(whole, sent);
      EXPECT_EQ(DiaryOf({"SQLDisconnect"}).size(), 19u) << function << n;
      EXPECT_EQ(Odbc().OpenConnections(), 0) << function << n;
      EXPECT_EQ(Odbc().OpenEnvironments(), 0) << function << n;
    }
    EXPECT_GT(ends, 0) << function;
  }
}

TEST_F(BrokenRun, IsReportedBeforeTheDatabasesAreClosed)
{
  (void)RunThrowing("SQLExecDirectW", 1);
  const Lines lines = DiaryOf({"OutputDebugStringW", "SQLDisconnect"});
  ASSERT_EQ(lines.size(), 15u * 2 + 2 + 19);
  EXPECT_EQ(lines[31], "OutputDebugStringW(\"\nCritical Error!!\")");
  EXPECT_EQ(lines[32], "SQLDisconnect(dbc#1) = 0");
}

TEST_F(BrokenRun, IsNoneIfTheReleaseOfAStatementThrows)
{
  const Lines whole = Run();
  for (const int n : {1, 7, 12})
    EXPECT_EQ(RunThrowing("SQLFreeHandle", n), whole) << n;
}

TEST_F(BrokenRun, LeavesNothingToTheNextUpdateButWhatWasWritten)
{
  const Lines whole = Run();
  (void)RunThrowing("SQLFetch", 3);
  EXPECT_EQ(Run(), whole);
}
