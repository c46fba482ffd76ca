// Steps on real SQL, through the driver manager and the driver of this repository: what they leave
// in the target's tables.
#include "database/QulPatchDatabase.h"
#include "database/UpdateTable.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/LiveOdbc.h"
#include "tests/doubles/Text.h"
#include "tests/unit/database/DatabaseMachine.h"

namespace {

const char* const TargetPath = "C:\\Data\\QuillBase.mdb";
const char* const PatchPath = "C:\\Updates\\Spring.mdb";
const char* const Columns = " ([Id] LONG NOT NULL, [Name] TEXT(30), PRIMARY KEY ([Id]))";
const Lines NoTable = {"no table"};

// NewParts of the patch holds a Bolt and a Screw, Parts of the target an older Bolt and a Nut. The
// number is the key.
class LivePatch : public DatabaseMachine
{
protected:
  void SetUp() override
  {
    ASSERT_TRUE(UseLiveOdbc());
    PatchSql({std::string("CREATE TABLE NewParts") + Columns,
              "INSERT INTO NewParts VALUES (1, 'Bolt')",
              "INSERT INTO NewParts VALUES (3, 'Screw')"});
    TargetSql(
        {"CREATE TABLE InfoTableRelations ([ID] LONG, [TableName] TEXT(50), "
         "[ColumnName] TEXT(50), [TypeProperty] TEXT(50))",
         "INSERT INTO InfoTableRelations VALUES (1, 'Parts', 'Id', 'PrimaryKey')"});
  }

  static void TargetSql(std::initializer_list<std::string> statements)
  {
    EXPECT_EQ(RunSql(TargetPath, statements), "");
  }
  static void PatchSql(std::initializer_list<std::string> statements)
  {
    EXPECT_EQ(RunSql(PatchPath, statements), "");
  }

  static void PutTarget()
  {
    TargetSql({std::string("CREATE TABLE Parts") + Columns,
               "INSERT INTO Parts VALUES (1, 'Old bolt')", "INSERT INTO Parts VALUES (2, 'Nut')"});
  }

  static void Run(const UpdateStep& step)
  {
    QulDatabase target(WideText(ConnectionStringOf(TargetPath)).c_str(), L"QuillBase");
    QulPatchDatabase patch(WideText(ConnectionStringOf(PatchPath)).c_str(), L"Spring.mdb");
    EXPECT_TRUE(target.connected && patch.connected);
    patch.targetDatabase = &target;
    patch.PatchTable(step);
    EXPECT_EQ(Odbc().OpenStatements(), 0);
  }

  static void Run(bool deleteRows, bool recreate, bool createIfMissing)
  {
    Run({L"QuillBase", L"NewParts", L"Parts", deleteRows, recreate, createIfMissing});
  }

  static Lines Parts()
  {
    QulDatabase target(WideText(ConnectionStringOf(TargetPath)).c_str(), L"QuillBase");
    if (!target.TableExists(L"Parts"))
      return NoTable;
    return SelectRows(TargetPath, "SELECT * FROM Parts ORDER BY [Id]");
  }
};

const Lines TargetError = {"\n", "Target table Parts not found in database QuillBase"};

}  // namespace

TEST_F(LivePatch, LeavesByItsFlagsInATableThatWasThere)
{
  const Lines before = {"1|Old bolt", "2|Nut"};
  const Lines merged = {"1|Bolt", "2|Nut", "3|Screw"};
  const Lines copied = {"1|Bolt", "3|Screw"};
  const Lines deleted = {"2|Nut"};
  const Lines empty;
  const struct
  {
    bool deleteRows;
    bool recreate;
    bool createIfMissing;
    Lines after;
  } rows[] = {{false, false, false, merged}, {false, true, false, copied},
              {false, true, true, empty},    {false, false, true, before},
              {true, false, false, deleted}, {true, false, true, deleted},
              {true, true, false, empty},    {true, true, true, empty}};
  for (const auto& row : rows) {
    PutTarget();
    Run(row.deleteRows, row.recreate, row.createIfMissing);
    EXPECT_EQ(Parts(), row.after) << row.deleteRows << row.recreate << row.createIfMissing;
    TargetSql({"DROP TABLE Parts"});
  }
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(LivePatch, CreatesATableThatIsMissingIfItsFlagsSaySo)
{
  const Lines copied = {"1|Bolt", "3|Screw"};
  for (const auto& [recreate, createIfMissing] :
       {std::pair(true, false), {true, true}, {false, true}}) {
    Run(false, recreate, createIfMissing);
    EXPECT_EQ(Parts(), copied) << recreate << createIfMissing;
    TargetSql({"DROP TABLE Parts"});
  }
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(LivePatch, MissesATableThatItMayNotCreate)
{
  Lines expected;
  for (const bool recreate : {false, true}) {
    for (const bool createIfMissing : {false, true}) {
      Run(true, recreate, createIfMissing);
      expected.insert(expected.end(), TargetError.begin(), TargetError.end());
    }
  }
  Run(false, false, false);
  expected.insert(expected.end(), TargetError.begin(), TargetError.end());
  EXPECT_EQ(DebugTexts(), expected);
  EXPECT_EQ(Parts(), NoTable);
}

TEST_F(LivePatch, CreatesATableWithItsTypesAndItsKey)
{
  PatchSql(
      {"CREATE TABLE Types ([K1] TEXT(20) NOT NULL, [K2] LONG NOT NULL, [Note] MEMO, "
       "[Used] BIT, [Kind] BYTE, [Grade] SMALLINT, [Width] REAL, [Mass] DOUBLE, [Made] DATE)",
       "INSERT INTO Types VALUES ('O''Neil', 7, 'x', 1, 200, -5, 2.5, -0.125, "
       "'2007-03-09 10:20:30')"});
  TargetSql({"INSERT INTO InfoTableRelations VALUES (2, 'Types', 'K1', 'PrimaryKey')",
             "INSERT INTO InfoTableRelations VALUES (3, 'Types', 'K2', 'Unique')"});
  Run({L"QuillBase", L"Types", L"Types", false, true, false});
  EXPECT_TRUE(DebugTexts().empty());
  EXPECT_EQ(SelectRows(TargetPath, "SELECT [K1],[K2],[Note],[Used],[Kind],[Grade] FROM Types"),
            Lines{"O'Neil|7|x|1|200|-5"});
  EXPECT_EQ(SelectRows(TargetPath, "SELECT [Mass]*8, [Width]*2 FROM Types").size(), 1u);
  EXPECT_NE(RunSql(TargetPath, {"INSERT INTO Types ([K1],[K2]) VALUES ('O''Neil', 7)"}), "");
  EXPECT_EQ(RunSql(TargetPath, {"INSERT INTO Types ([K1],[K2]) VALUES ('O''Neil', 8)"}), "");
}

TEST_F(LivePatch, GoesOnBehindARowThatTheTargetRefuses)
{
  TargetSql({std::string("CREATE TABLE Parts") +
             " ([Id] LONG NOT NULL, [Name] TEXT(30) NOT NULL, PRIMARY KEY ([Id]))"});
  PatchSql({"INSERT INTO NewParts VALUES (2, '')"});
  Run(false, false, false);
  EXPECT_EQ(Parts(), (Lines{"1|Bolt", "3|Screw"}));
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "INSERT INTO [Parts] ([Id],[Name]) VALUES (2,NULL);"}));
}

TEST_F(LivePatch, TracesAnInsertIntoATableThatHasTheRowAlready)
{
  // The name is the key for the merge, the number for the table.
  TargetSql({"DELETE FROM InfoTableRelations",
             "INSERT INTO InfoTableRelations VALUES (1, 'Parts', 'Name', 'Unique')"});
  PutTarget();
  Run(false, false, false);
  EXPECT_EQ(Parts(), (Lines{"1|Old bolt", "2|Nut", "3|Screw"}));
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "INSERT INTO [Parts] ([Id],[Name]) VALUES (1,'Bolt');"}));
}

TEST_F(LivePatch, MergedTwiceIsAsMergedOnce)
{
  PutTarget();
  Run(false, false, false);
  Run(false, false, false);
  EXPECT_EQ(Parts(), (Lines{"1|Bolt", "2|Nut", "3|Screw"}));
}

TEST_F(LivePatch, KeepsQuotesAndCharactersOfAllPlanes)
{
  const std::string name = "\u0141 O''Neil \U0001F529 [x] 100%";
  PatchSql({"UPDATE NewParts SET [Name]='" + name + "' WHERE [Id]=1"});
  PutTarget();
  Run(false, false, false);
  EXPECT_EQ(Parts()[0], "1|\u0141 O'Neil \U0001F529 [x] 100%");
}

TEST_F(LivePatch, MakesNullOfAnEmptyText)
{
  PatchSql({"UPDATE NewParts SET [Name]='' WHERE [Id]=1"});
  PutTarget();
  Run(false, false, false);
  EXPECT_EQ(Parts()[0], "1|<null>");
}

TEST_F(LivePatch, RepeatsTheRowBeforeForANull)
{
  PatchSql({"UPDATE NewParts SET [Name]=NULL WHERE [Id]=3"});
  Run(false, true, false);
  EXPECT_EQ(Parts(), (Lines{"1|Bolt", "3|Bolt"}));
}

TEST_F(LivePatch, LeavesColumnsAloneThatItLacks)
{
  TargetSql(
      {"CREATE TABLE Parts ([Mass] DOUBLE, [NAME] TEXT(10), [Id] LONG NOT NULL, "
       "PRIMARY KEY ([Id]))",
       "INSERT INTO Parts VALUES (2.5, 'Old bolt', 1)"});
  Run(false, false, false);
  EXPECT_EQ(SelectRows(TargetPath, "SELECT [Id],[NAME],[Mass] FROM Parts ORDER BY [Id]"),
            (Lines{"1|Bolt|2.5", "3|Screw|<null>"}));
}

TEST_F(LivePatch, DeletesWholeRowsIfNoKeyIsNamed)
{
  TargetSql({"DELETE FROM InfoTableRelations"});
  PutTarget();
  TargetSql({"INSERT INTO Parts VALUES (3, 'Screw')"});
  Run(true, false, false);
  EXPECT_EQ(Parts(), (Lines{"1|Old bolt", "2|Nut"}));
  EXPECT_EQ(DebugTexts().size(), 4u);
}

TEST_F(LivePatch, TakesTheTextsOfTheLanguage)
{
  SetLanguage(1036);
  PatchSql({"CREATE TABLE Info ([Name] TEXT(50), [Value] MEMO, [Type] TEXT(50))",
            "INSERT INTO Info VALUES ('Texts', 'Name;Name_fr;Name_nl', 'LanguageDependent')",
            "CREATE TABLE Texts ([Id] LONG, [Name] TEXT(30), [Name_fr] TEXT(30), "
            "[Name_nl] TEXT(30))",
            "INSERT INTO Texts VALUES (1, 'Bolt', 'Boulon', 'Bout')",
            "INSERT INTO Texts VALUES (2, 'Nut', '', 'Moer')"});
  Run({L"QuillBase", L"Texts", L"Parts", false, false, true});
  EXPECT_EQ(Parts(), (Lines{"1|Boulon", "2|Nut"}));
  Run({L"quillprofiles2010", L"Texts", L"Parts", false, true, false});
  EXPECT_EQ(Parts(), (Lines{"1|Boulon|Boulon|Bout", "2|Nut|<null>|Moer"}));
}

TEST_F(LivePatch, WithoutATableOfTheLanguageDoesNothing)
{
  SetLanguage(1043);
  PatchSql({"CREATE TABLE Info ([Name] TEXT(50), [Value] MEMO, [Type] TEXT(50))",
            "INSERT INTO Info VALUES ('NewParts', 'NewParts;Other', 'LanguageDependentTables')"});
  PutTarget();
  const std::string before = Files().Read(TargetPath);
  Run(false, true, false);
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "Source table  not found in patch database"}));
  EXPECT_TRUE(Files().Read(TargetPath) == before);
}

TEST_F(LivePatch, OfASourceWithoutRowsLeavesTheTarget)
{
  PatchSql({"DELETE FROM NewParts"});
  PutTarget();
  Run(false, false, false);
  Run(true, false, false);
  EXPECT_EQ(Parts(), (Lines{"1|Old bolt", "2|Nut"}));
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(LivePatch, CarriesAMemoOfSixtyThousandCharacters)
{
  const std::string note = Letters(30000) + "''" + Letters(29999, 'y');
  PatchSql({"CREATE TABLE Notes ([Id] LONG, [Note] MEMO)",
            "INSERT INTO Notes VALUES (1, '" + note + "')"});
  Run({L"QuillBase", L"Notes", L"Parts", false, false, true});
  EXPECT_TRUE(Parts() == Lines{"1|" + Letters(30000) + "'" + Letters(29999, 'y')});
}

TEST_F(LivePatch, CannotCreateATableOfATypeWithoutAWord)
{
  PatchSql({"CREATE TABLE Codes ([Id] LONG, [Code] CHAR(5))"});
  Run({L"QuillBase", L"Codes", L"Parts", false, false, true});
  EXPECT_EQ(Parts(), NoTable);
  ASSERT_EQ(DebugTexts().size(), 6u);
  EXPECT_EQ(DebugTexts()[5],
            "Unable to create table Parts\n"
            "Sql:CREATE TABLE Parts ([Id] LONG NOT NULL , NULL,PRIMARY KEY ([Id]));");
}
