// Launches over a driver that does its work and answers oddly.
#include "tests/doubles/Diary.h"
#include "tests/faults/DiaryLine.h"
#include "tests/faults/FailureKinds.h"
#include "tests/faults/OddOdbc.h"
#include "tests/faults/RunCount.h"
#include "tests/faults/Watchdog.h"
#include "tests/faults/WholeLaunch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace {

using Lines = std::vector<std::string>;

LaunchOutcome RunLaunch(const RichMachine& machine)
{
  const Watchdog watchdog("odd driver");
  CountRun("odd drivers");
  return TakeOutcome(Launch(machine));
}

LaunchOutcome LaunchOddly(const OddAnswers& answers, const RichMachine& machine = {})
{
  LayOut(machine);
  AnswerOddly(answers);
  return RunLaunch(machine);
}

// A machine whose patches and databases are changed beforehand.
RichMachine MachineWith(const std::map<std::string, std::string>& changes)
{
  RichMachine machine;
  machine.changes = changes;
  return machine;
}

// Everything but the databases.
void ExpectSameLaunch(const LaunchOutcome& outcome, const LaunchOutcome& expected)
{
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.started, expected.started);
  EXPECT_EQ(outcome.registry, expected.registry);
  EXPECT_EQ(outcome.openKeys, expected.openKeys);
  EXPECT_EQ(outcome.openConnections, expected.openConnections);
  EXPECT_EQ(outcome.misuses, Lines());
}

void ExpectSameOutcome(const LaunchOutcome& outcome, const LaunchOutcome& expected)
{
  ExpectSameLaunch(outcome, expected);
  EXPECT_EQ(outcome.traces, expected.traces);
  EXPECT_EQ(outcome.databases, expected.databases);
}

// What was called, without the results.
Lines CallsOf(const LaunchOutcome& outcome)
{
  Lines calls;
  for (const std::string& line : outcome.diary)
    calls.push_back(CallIn(line));
  return calls;
}

// The statements that change databases, without those that write versions.
Lines ChangesOf(const LaunchOutcome& outcome)
{
  Lines changes;
  for (const std::string& line : outcome.diary) {
    const std::string statement = line.starts_with("SQLExecDirectW(") ? QuotedIn(line) : "";
    if (!statement.empty() && !statement.starts_with("SELECT ") &&
        !statement.starts_with("UPDATE KF"))
      changes.push_back(statement);
  }
  return changes;
}

bool IsRead(const std::string& question, const std::string& table)
{
  return question == "columns of " + table;
}

// A launch whose step with stars finds no table: its names stay as they are.
LaunchOutcome WithoutTableLists()
{
  LaunchOutcome expected = ReferenceLaunch(
      MachineWith({{"Spring.mdb",
                    "UPDATE UpdateTable SET SourceTable='Gone', TargetTable='Gone' WHERE ID=6"}}));
  std::replace(expected.traces.begin(), expected.traces.end(),
               std::string("Source table Gone not found in patch database"),
               std::string("Source table Grade* not found in patch database"));
  return expected;
}

// A text as a literal, if its column is said to be of that size.
std::string Literal(const std::string& text, int size)
{
  const bool isCut = size >= 0 && static_cast<size_t>(size) < text.size();
  std::string literal;
  for (const char c : isCut ? text.substr(0, static_cast<size_t>(size)) : text)
    literal += c == '\'' ? "''" : std::string(1, c);
  return literal.empty() ? "NULL" : "'" + literal + "'";
}

// The changes of a launch in which all columns are said to be of that size.
Lines ChangesAtSize(int size)
{
  const auto text = [size](const std::string& value) { return Literal(value, size); };
  const std::string type = " TEXT(" + std::to_string(size) + ")";
  Lines changes;
  for (const auto& [id, table] : {std::pair("3", "GradeA"), std::pair("4", "GradeB")}) {
    changes.push_back("UPDATE [InfoTableRelations]  SET [TableName]=" + text(table) +
                      ",[ColumnName]=" + text("Id") + ",[TypeProperty]=" + text("PrimaryKey") +
                      " WHERE [ID]=" + id);
    changes.push_back(
        "INSERT INTO [InfoTableRelations] ([ID],[TableName],[ColumnName],"
        "[TypeProperty]) VALUES (" +
        std::string(id) + "," + text(table) + "," + text("Id") + "," + text("PrimaryKey") + ");");
  }
  const std::string insertColour = "INSERT INTO [Colours] ([Code],[Name],[Since],[Used],[Remark]) ";
  const Lines rest = {
      "UPDATE [Parts]  SET [Name]=" + text("sheet") + ",[Weight]=4.250000 WHERE [Id]=2",
      "UPDATE [Parts]  SET [Name]=" + text("O'Neil") + ",[Weight]=0.500000 WHERE [Id]=4",
      "INSERT INTO [Parts] ([Id],[Name],[Weight]) VALUES (4," + text("O'Neil") + ",0.500000);",
      "DROP TABLE Shapes",
      "CREATE TABLE Shapes ([Id] LONG NOT NULL ,[Name]" + type + " NULL,PRIMARY KEY ([Id]));",
      "INSERT INTO [Shapes] ([Id],[Name]) VALUES (1," + text("rund") + ");",
      "INSERT INTO [Shapes] ([Id],[Name]) VALUES (2," + text("eckig") + ");",
      "CREATE TABLE Colours ([Code]" + type + " NOT NULL ,[Name]" + type +
          " NULL ,[Since] DATE NULL ,[Used] BIT NULL ,[Remark] MEMO NULL,PRIMARY KEY ([Code]));",
      insertColour + "VALUES (" + text("r") + "," + text("rot") + ",'31/3/2010',1,'a remark');",
      insertColour + "VALUES (" + text("b") + "," + text("blue") + ",'1/4/2010',0,'none');",
      "DELETE FROM Parts WHERE [Id]=3;",
      "DELETE FROM Parts WHERE [Id]=9;",
      "DELETE FROM Notes WHERE [Code]=" + text("drop") + " AND [Since]='1/2/2003';",
      "UPDATE [GradeA]  SET [Name]=" + text("S235") + " WHERE [Id]=1",
      "INSERT INTO [GradeA] ([Id],[Name]) VALUES (1," + text("S235") + ");",
      "UPDATE [GradeB]  SET [Name]=" + text("S235") + " WHERE [Id]=1",
      "UPDATE [Profiles]  SET [Name]=" + text("HEA") + " WHERE [Id]=1",
      "INSERT INTO [Profiles] ([Id],[Name]) VALUES (1," + text("HEA") + ");",
      "UPDATE [Parts]  SET [Name]=" + text("angle") + " WHERE [Id]=4",
      "UPDATE [Maps]  SET [Name]=" + text("new") + " WHERE [Id]=7"};
  changes.insert(changes.end(), rest.begin(), rest.end());
  for (const std::string table : {"GradeC", "Grades"}) {
    const Lines projects = {
        "CREATE TABLE KFProjectsVersion ([Attribute] varchar(255) PRIMARY KEY NOT NULL,[Value] "
        "varchar(255) NOT NULL)",
        "INSERT INTO [KFProjectsVersion] ([Attribute],[Value]) VALUES('SteelGrades','2')",
        "INSERT INTO [KFProjectsVersion] ([Attribute],[Value]) VALUES('BoltSets','1')",
        "CREATE TABLE " + table + " ([Id] LONG NOT NULL ,[Name]" + type +
            " NULL,PRIMARY KEY ([Id]));",
        "INSERT INTO [" + table + "] ([Id],[Name]) VALUES (1," + text("S355") + ");"};
    changes.insert(changes.end(), projects.begin(), projects.end());
  }
  return changes;
}

void ExpectChanges(const LaunchOutcome& outcome, const Lines& expected)
{
  const Lines changes = ChangesOf(outcome);
  for (size_t i = 0; i < std::min(changes.size(), expected.size()); ++i)
    ASSERT_EQ(changes[i], expected[i]) << i;
  EXPECT_EQ(changes.size(), expected.size());
}

constexpr SQLUSMALLINT NameColumn = 4;
constexpr SQLUSMALLINT TypeColumn = 5;
constexpr SQLUSMALLINT SizeColumn = 7;
constexpr SQLUSMALLINT NullableColumn = 11;

}  // namespace

TEST(OddDriver, SuccessWithInformationIsSuccessAndListsOfTablesAreTheException)
{
  for (const std::string& function : OdbcFunctions()) {
    SCOPED_TRACE(function);
    LayOut({});
    FailCallsFrom(function + " with info", 1, SQL_SUCCESS_WITH_INFO);
    const LaunchOutcome outcome = RunLaunch({});
    const bool endsLists = function == "SQLAllocHandle" || function == "SQLTablesW";
    ExpectSameOutcome(outcome, endsLists ? WithoutTableLists() : ReferenceLaunch({}));
    if (!endsLists) {
      EXPECT_EQ(CallsOf(outcome), CallsOf(ReferenceLaunch({})));
    }
  }
}

TEST(OddDriver, SuccessWithInformationEverywhereIsSuccess)
{
  LayOut({});
  for (const std::string& function : OdbcFunctions())
    FailCallsFrom(function + " with info", 1, SQL_SUCCESS_WITH_INFO);
  const LaunchOutcome outcome = RunLaunch({});
  // No list of tables is asked for on a statement that came with information.
  EXPECT_EQ(outcome.misuses,
            Lines{"A failure of SQLTablesW with info was ordered and never reached."});
  EXPECT_EQ(outcome.databases, WithoutTableLists().databases);
  EXPECT_EQ(outcome.traces, WithoutTableLists().traces);
  EXPECT_EQ(outcome.started, ReferenceLaunch({}).started);
}

TEST(OddDriver, AnUpdateThatSucceedsOnNoRowIsFollowedByNoInsert)
{
  OddAnswers answers;
  answers.executed = [](const std::string& /*statement*/, SQLRETURN code) {
    return code == SQL_NO_DATA ? SQLRETURN{SQL_SUCCESS} : code;
  };
  const LaunchOutcome outcome = LaunchOddly(answers);
  Lines expected;
  const Lines all = ChangesAtSize(255);
  for (size_t i = 0; i < all.size(); ++i) {
    const bool isInsertOfMerge =
        i > 0 && all[i].starts_with("INSERT INTO [") && all[i - 1].starts_with("UPDATE [");
    if (!isInsertOfMerge)
      expected.push_back(all[i]);
  }
  Lines changes = ChangesOf(outcome);
  // Sizes are another matter.
  std::erase_if(changes, [](const auto& change) { return change.starts_with("CREATE "); });
  std::erase_if(expected, [](const auto& change) { return change.starts_with("CREATE "); });
  EXPECT_EQ(changes, expected);
  const DatabaseContent& rules = outcome.databases.at("QuillRules");
  EXPECT_EQ(rules.at("Parts").size(), 3u);
  EXPECT_EQ(rules.at("GradeA").size(), 1u);
  EXPECT_EQ(rules.at("GradeB").back(), "1|'S235'");
  ExpectSameLaunch(outcome, ReferenceLaunch({}));
}

TEST(OddDriver, ARowThatIsWrittenOrDeletedWithoutDataIsNoFailure)
{
  OddAnswers answers;
  answers.executed = [](const std::string& statement, SQLRETURN code) {
    const bool isOfRow = (statement.starts_with("INSERT ") || statement.starts_with("DELETE ")) &&
                         statement.find("KFProjectsVersion") == std::string::npos;
    return isOfRow && code == SQL_SUCCESS ? SQLRETURN{SQL_NO_DATA} : code;
  };
  ExpectSameOutcome(LaunchOddly(answers), ReferenceLaunch({}));
}

TEST(OddDriver, SizesMakeBuffersAndTypesAndNothingElse)
{
  for (const int size : {0, 1, 2, 20, 254, 524286, 524287, 524288, 0x3FFFFFFF,
                         std::numeric_limits<int>::max(), -1, std::numeric_limits<int>::min()}) {
    SCOPED_TRACE(size);
    OddAnswers answers;
    answers.fetched = [size](FetchedRow& row) {
      if (row.Question().starts_with("columns of "))
        row.SetNumber(SizeColumn, size);
      row.FillBuffers();
    };
    const LaunchOutcome outcome = LaunchOddly(answers);
    ExpectChanges(outcome, ChangesAtSize(size));
    ExpectSameLaunch(outcome, ReferenceLaunch({}));
  }
}

TEST(OddDriver, ASizeOfNullIsThatOfTheColumnBeforeAndNoneAtFirst)
{
  OddAnswers answers;
  answers.fetched = [](FetchedRow& row) {
    if (row.Question().starts_with("columns of "))
      row.SetNull(SizeColumn);
    row.FillBuffers();
  };
  const LaunchOutcome outcome = LaunchOddly(answers);
  ExpectChanges(outcome, ChangesAtSize(0));
  ExpectSameLaunch(outcome, ReferenceLaunch({}));
}

TEST(OddDriver, TextsLongerThanTheBuffersOfTheSteeringTablesAreCut)
{
  const std::string a(300, 'A');
  const std::string value(70000, 'v');
  const std::string row = "('" + a + "','" + a + "');";
  const RichMachine machine =
      MachineWith({{"Spring.mdb", "INSERT INTO UpdateTable VALUES (20,'QuillRules','" + a + "','" +
                                      a + "',0,0,0);INSERT INTO Info VALUES ('Colours','" + value +
                                      "','" + a + "');INSERT INTO KFVersion VALUES " + row},
                   {"QuillRules", "INSERT INTO InfoTableRelations VALUES (9,'Parts','" + a + "','" +
                                      a + "');" + "INSERT INTO KFVersion VALUES " + row},
                   {"Steel.mdb", "INSERT INTO KFProjectsVersion VALUES " + row}});
  OddAnswers answers;
  answers.fetched = [](FetchedRow& fetched) { fetched.FillBuffers(); };
  const LaunchOutcome outcome = LaunchOddly(answers, machine);
  const std::string cut(49, 'A');
  EXPECT_EQ(std::count(outcome.traces.begin(), outcome.traces.end(),
                       "Source table " + cut + " not found in patch database"),
            1);
  for (const std::string& name : RichDatabases()) {
    const Lines& rows = outcome.databases.at(name).at("KFProjectsVersion");
    EXPECT_EQ(std::count(rows.begin(), rows.end(), "'" + cut + "'|'" + cut + "'"), 1) << name;
  }
  EXPECT_EQ(outcome.databases.at("QuillRules").at("Parts"),
            ReferenceLaunch({}).databases.at("QuillRules").at("Parts"));
  ExpectSameLaunch(outcome, ReferenceLaunch({}));
}

TEST(OddDriver, LengthWordsCountWhereATableIsLookedForAndNowhereElse)
{
  for (const SQLLEN length : {SQL_NULL_DATA, 0, SQL_NO_TOTAL, 0x7FFFFFFF}) {
    OddAnswers answers;
    answers.fetched = [length](FetchedRow& row) {
      if (!row.IsLookup())
        row.SetLengths(length);
    };
    SCOPED_TRACE(length);
    ExpectSameOutcome(LaunchOddly(answers), ReferenceLaunch({}));
  }
}

TEST(OddDriver, TablesWithoutALengthOfTheirNameAreNotThere)
{
  OddAnswers answers;
  answers.fetched = [](FetchedRow& row) {
    if (row.IsLookup())
      row.ForgetLengths();
  };
  const LaunchOutcome outcome = LaunchOddly(answers);
  for (const std::string& change : ChangesOf(outcome))
    EXPECT_NE(change.find("KFProjectsVersion"), std::string::npos) << change;
  for (const std::string table : {"NewParts", "ShapesDe", "Colours", "OldParts", "OldNotes",
                                  "GradeNew", "Relations", "Profiles", "Parts", "Maps", "Grades"})
    EXPECT_NE(std::count(outcome.traces.begin(), outcome.traces.end(),
                         "Source table " + table + " not found in patch database"),
              0)
        << table;
  ExpectSameLaunch(outcome, ReferenceLaunch({}));
}

TEST(OddDriver, AColumnNameLongerThanItsBufferIsAnotherName)
{
  OddAnswers answers;
  answers.fetched = [](FetchedRow& row) {
    if (IsRead(row.Question(), "NewParts") && row.Text(NameColumn) == "Name")
      row.SetText(NameColumn, std::string(5000, 'N'));
    row.FillBuffers();
  };
  const Lines changes = ChangesOf(LaunchOddly(answers));
  EXPECT_EQ(changes.at(4), "UPDATE [Parts]  SET [Weight]=4.250000 WHERE [Id]=2");
  EXPECT_EQ(changes.at(6), "INSERT INTO [Parts] ([Id],[Weight]) VALUES (4,0.500000);");
}

TEST(OddDriver, ATypeThatHasNoLiteralLeavesAHoleInItsStatements)
{
  for (const int type : {SQL_CHAR, SQL_WCHAR, SQL_BIGINT, SQL_BINARY, 0, 91, 32767, -32768}) {
    SCOPED_TRACE(type);
    OddAnswers answers;
    answers.fetched = [type](FetchedRow& row) {
      if ((IsRead(row.Question(), "NewParts") || IsRead(row.Question(), "Parts")) &&
          row.Text(NameColumn) == "Name")
        row.SetNumber(TypeColumn, type);
    };
    const LaunchOutcome outcome = LaunchOddly(answers);
    const Lines changes = ChangesOf(outcome);
    EXPECT_EQ(changes.at(4), "UPDATE [Parts]  SET [Name]=,[Weight]=4.250000 WHERE [Id]=2");
    EXPECT_EQ(changes.at(5), "INSERT INTO [Parts] ([Id],[Name],[Weight]) VALUES (2,,4.250000);");
    EXPECT_EQ(outcome.databases.at("QuillRules").at("Parts"),
              (Lines{"Id LONG not null key,Name TEXT(30),Weight DOUBLE", "1|'bolt'|1.5",
                     "2|'plate'|2.5"}));
    EXPECT_EQ(outcome.databases.at("QuillRules").at("Shapes"),
              ReferenceLaunch({}).databases.at("QuillRules").at("Shapes"));
  }
}

TEST(OddDriver, OnlyANullabilityOfOneIsOne)
{
  for (const int nullable : {0, 2, -1, 32767, -32768}) {
    OddAnswers answers;
    answers.fetched = [nullable](FetchedRow& row) { row.SetNumber(NullableColumn, nullable); };
    const Lines changes = ChangesOf(LaunchOddly(answers));
    EXPECT_EQ(changes.at(8),
              "CREATE TABLE Shapes ([Id] LONG NOT NULL ,[Name] TEXT(20) NOT NULL,PRIMARY KEY "
              "([Id]));")
        << nullable;
  }
}

TEST(OddDriver, ColumnsBeyondThe255thAreLeftOut)
{
  for (const int copies : {2, 85, 86, 300}) {
    OddAnswers answers;
    answers.copies = [copies](const std::string& question) {
      return question.starts_with("columns of ") ? copies : 1;
    };
    const LaunchOutcome outcome = LaunchOddly(answers);
    const Lines changes = ChangesOf(outcome);
    const auto create = std::find_if(changes.begin(), changes.end(), [](const auto& change) {
      return change.starts_with("CREATE TABLE Shapes ([Id] LONG NOT NULL ,[Id] LONG");
    });
    ASSERT_NE(create, changes.end());
    // The key is the first of them alone.
    EXPECT_EQ(std::count(create->begin(), create->end(), '['), std::min(2 * copies, 255) + 1);
    ExpectSameLaunch(outcome, ReferenceLaunch({}));
  }
}

TEST(OddDriver, ATableThatIsListedTwiceTakesItsStepsTwice)
{
  OddAnswers answers;
  answers.copies = [](const std::string& question) { return question == "tables" ? 2 : 1; };
  const LaunchOutcome outcome = LaunchOddly(answers);
  EXPECT_EQ(outcome.databases, ReferenceLaunch({}).databases);
  const Lines changes = ChangesOf(outcome);
  EXPECT_EQ(
      std::count(changes.begin(), changes.end(), "UPDATE [GradeB]  SET [Name]='S235' WHERE [Id]=1"),
      4);
}

TEST(OddDriver, TablesInAnotherOrderTakeTheirStepsInThatOrder)
{
  OddAnswers answers;
  answers.fetched = [](FetchedRow& row) {
    const std::string name = row.Question() == "tables" ? row.Text(3) : "";
    if (name == "GradeA" || name == "GradeB")
      row.SetText(3, name == "GradeA" ? "GradeB" : "GradeA");
  };
  const LaunchOutcome outcome = LaunchOddly(answers);
  EXPECT_EQ(outcome.databases, ReferenceLaunch({}).databases);
  const Lines changes = ChangesOf(outcome);
  const auto place = [&changes](const std::string& beginning) {
    return std::find_if(changes.begin(), changes.end(),
                        [&](const auto& change) { return change.starts_with(beginning); });
  };
  EXPECT_LT(place("UPDATE [GradeB]"), place("UPDATE [GradeA]"));
}

TEST(OddDriver, AQueryThatHasNoRowsAtOnceIsThatOfAnEmptyTable)
{
  const std::pair<const char*, const char*> sources[] = {
      {"Spring.mdb", "Relations"}, {"Spring.mdb", "NewParts"}, {"Spring.mdb", "ShapesDe"},
      {"Spring.mdb", "Colours"},   {"Spring.mdb", "OldParts"}, {"Spring.mdb", "OldNotes"},
      {"Spring.mdb", "GradeNew"},  {"Spring.mdb", "Profiles"}, {"Spring.mdb", "Info"},
      {"Summer.mdb", "Parts"},     {"Summer.mdb", "Maps"},     {"Steel.mdb", "Grades"}};
  for (const auto& [patch, table] : sources) {
    SCOPED_TRACE(table);
    const std::string end = std::string(" FROM ") + table;
    OddAnswers answers;
    answers.isEmpty = [&end](const std::string& question) { return question.ends_with(end); };
    const LaunchOutcome expected = ReferenceLaunch(MachineWith({{patch, "DELETE" + end + ";"}}));
    ExpectSameOutcome(LaunchOddly(answers), expected);
  }
}

TEST(OddDriver, ACatalogueThatHasNoRowsAtOnceKnowsNoTable)
{
  OddAnswers answers;
  answers.isEmpty = [](const std::string& question) { return question.starts_with("columns of "); };
  const LaunchOutcome outcome = LaunchOddly(answers);
  for (const std::string& change : ChangesOf(outcome))
    EXPECT_NE(change.find("KFProjectsVersion"), std::string::npos) << change;
  ExpectSameLaunch(outcome, ReferenceLaunch({}));
}

TEST(OddDriver, AConnectionThatSaysThatItCanNotBeClosedIsAsGood)
{
  LayOut({});
  FailCallsFrom("SQLDisconnect afterwards", 1, static_cast<unsigned long>(SQL_ERROR));
  const LaunchOutcome outcome = RunLaunch({});
  ExpectSameOutcome(outcome, ReferenceLaunch({}));
  EXPECT_EQ(CallsOf(outcome), CallsOf(ReferenceLaunch({})));
}
