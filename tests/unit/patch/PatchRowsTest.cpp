// The rows of a step: merged one by one, or copied into a new table.
#include "database/QulPatchDatabase.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/patch/PatchMachine.h"

namespace {

const char* const UpdateBolt = "UPDATE [Parts]  SET [Name]='Bolt' WHERE [Id]=1";
const char* const UpdateNut = "UPDATE [Parts]  SET [Name]='Nut' WHERE [Id]=2";
const char* const InsertBolt = "INSERT INTO [Parts] ([Id],[Name]) VALUES (1,'Bolt');";
const char* const InsertNut = "INSERT INTO [Parts] ([Id],[Name]) VALUES (2,'Nut');";

std::string Executed(int statement, const std::string& text, int code)
{
  return "SQLExecDirectW(stmt#" + std::to_string(statement) + ", \"" + text +
         "\", -3) = " + std::to_string(code);
}

// Rows of NewParts that go into Parts, by the number.
class PatchRows : public PatchMachine
{
protected:
  void SetUp() override
  {
    PutSource({{1, "Bolt"}, {2, "Nut"}});
    PutKey("Id");
  }

  // Into a table that is there.
  void Merge()
  {
    PutTarget();
    Run(MergeStep());
  }

  // Into one that is created.
  void Copy() { Run(CreateStep()); }

  static void PutNewTable(int code = SQL_SUCCESS)
  {
    Target().Statement(
        "CREATE TABLE Parts ([Id] LONG NOT NULL ,[Name] TEXT(30) NULL,PRIMARY KEY ([Id]));", code);
  }
};

}  // namespace

TEST_F(PatchRows, AreUpdatedAndNoMoreIfThatSucceeds)
{
  for (const int code : SuccessCodes) {
    Target().Statement(UpdateBolt, code).Statement(UpdateNut, code);
    Merge();
    EXPECT_EQ(Changes(), (Lines{UpdateBolt, UpdateNut})) << code;
    CloseBoth();
  }
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(PatchRows, AreInsertedWithTheSameHandleIfTheUpdateDoesAnythingElse)
{
  for (const int code : FailureCodes) {
    Target().Statement(UpdateBolt, code).Statement(UpdateNut);
    Target().Statement(InsertBolt);
    Merge();
    EXPECT_EQ(DiaryAfter("SQLBindCol"),
              (Lines{"SQLFetch(stmt#14) = 0", "SQLAllocHandle(STMT, dbc#1) = 0 stmt#15",
                     Executed(15, UpdateBolt, code), Executed(15, InsertBolt, 0),
                     "SQLFreeHandle(STMT, stmt#15) = 0", "SQLFetch(stmt#14) = 0",
                     "SQLAllocHandle(STMT, dbc#1) = 0 stmt#16", Executed(16, UpdateNut, 0),
                     "SQLFreeHandle(STMT, stmt#16) = 0", "SQLFetch(stmt#14) = 100",
                     "SQLFreeHandle(STMT, stmt#14) = 0"}));
    EXPECT_TRUE(DebugTexts().empty()) << code;
    CloseBoth();
    ResetPlatform();
    SetUp();
  }
}

TEST_F(PatchRows, ThatCannotBeInsertedAreTracedByTheInsertAloneAndTheNextFollow)
{
  for (const int code : {SQL_ERROR, SQL_INVALID_HANDLE, SQL_STILL_EXECUTING, SQL_NEED_DATA}) {
    Target().OtherStatements(code);
    Merge();
    EXPECT_EQ(Changes(), (Lines{UpdateBolt, InsertBolt, UpdateNut, InsertNut})) << code;
    EXPECT_EQ(DebugTexts(), (Lines{"\n", InsertBolt, "\n", InsertNut})) << code;
    CloseBoth();
    ResetPlatform();
    SetUp();
  }
}

TEST_F(PatchRows, ThatCannotBeInsertedAreTracedBeforeTheirStatementIsFreed)
{
  Merge();
  EXPECT_EQ(
      DiaryAfter("SQLExecDirectW"),
      (Lines{"OutputDebugStringW(\"\n\")", std::string("OutputDebugStringW(\"") + InsertNut + "\")",
             "SQLFreeHandle(STMT, stmt#16) = 0", "SQLFetch(stmt#14) = 100",
             "SQLFreeHandle(STMT, stmt#14) = 0"}));
}

TEST_F(PatchRows, WhoseInsertTouchesNoRowHaveNotFailed)
{
  for (const int code : {SQL_SUCCESS, SQL_SUCCESS_WITH_INFO, SQL_NO_DATA}) {
    Target().Statement(UpdateBolt, SQL_NO_DATA).Statement(UpdateNut, SQL_NO_DATA);
    Target().Statement(InsertBolt, code).Statement(InsertNut, code);
    Merge();
    EXPECT_EQ(Changes().size(), 4u) << code;
    EXPECT_TRUE(DebugTexts().empty()) << code;
    CloseBoth();
  }
}

TEST_F(PatchRows, AreInsertedIntoANewTableWithoutAnUpdate)
{
  PutNewTable();
  Target().Statement(InsertBolt).Statement(InsertNut, SQL_SUCCESS_WITH_INFO);
  Copy();
  EXPECT_EQ(DiaryAfter("SQLBindCol"),
            (Lines{"SQLFetch(stmt#13) = 0", "SQLAllocHandle(STMT, dbc#1) = 0 stmt#14",
                   Executed(14, InsertBolt, 0), "SQLFreeHandle(STMT, stmt#14) = 0",
                   "SQLFetch(stmt#13) = 0", "SQLAllocHandle(STMT, dbc#1) = 0 stmt#15",
                   Executed(15, InsertNut, 1), "SQLFreeHandle(STMT, stmt#15) = 0",
                   "SQLFetch(stmt#13) = 100", "SQLFreeHandle(STMT, stmt#13) = 0"}));
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(PatchRows, ThatFailInANewTableAreTracedByTheirStatementAlone)
{
  PutNewTable();
  Target().Statement(InsertNut);
  Copy();
  EXPECT_EQ(Changes().size(), 3u);
  EXPECT_EQ(DebugTexts(), (Lines{"\n", InsertBolt}));
}

TEST_F(PatchRows, OfANewTableThatTouchNothingHaveNotFailed)
{
  PutNewTable();
  Target().OtherStatements(SQL_NO_DATA);
  Copy();
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(PatchRows, OfANewTableAreInsertedAfterADropToo)
{
  PutTarget();
  PutNewTable();
  Target().Statement("DROP TABLE Parts").Statement(InsertBolt).Statement(InsertNut);
  Run(RecreateStep());
  EXPECT_EQ(Changes().size(), 4u);
  EXPECT_EQ(Changes()[2], InsertBolt);
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(PatchRows, ThatAreNoneChangeAndTraceNothing)
{
  PutSource({});
  Merge();
  EXPECT_TRUE(Changes().empty());
  EXPECT_TRUE(DebugTexts().empty());
  EXPECT_EQ(DiaryAfter("SQLBindCol"),
            (Lines{"SQLFetch(stmt#14) = 100", "SQLFreeHandle(STMT, stmt#14) = 0"}));
}

TEST_F(PatchRows, ThatCannotBeSelectedChangeAndTraceNothing)
{
  for (const int code : FailureCodes) {
    Patch().Query("SELECT * FROM NewParts", {{1, "Bolt"}}, code);
    Merge();
    EXPECT_EQ(DiaryAfter("SQLExecDirectW"), Lines{"SQLFreeHandle(STMT, stmt#14) = 0"}) << code;
    EXPECT_TRUE(DebugTexts().empty()) << code;
    CloseBoth();
    ResetPlatform();
    SetUp();
  }
}

TEST_F(PatchRows, ThatCannotBeSelectedLeaveANewTableEmpty)
{
  PutNewTable();
  Patch().Statement("SELECT * FROM NewParts", SQL_ERROR);
  Copy();
  EXPECT_EQ(Changes().size(), 1u);
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(PatchRows, AreReadIfTheirQuerySucceedsWithInformation)
{
  Patch().Query("SELECT * FROM NewParts", {{1, "Bolt"}}, SQL_SUCCESS_WITH_INFO);
  Target().OtherStatements(SQL_SUCCESS);
  Merge();
  EXPECT_EQ(Changes(), Lines{UpdateBolt});
}

TEST_F(PatchRows, GoOnAfterAFetchWithInformation)
{
  PutSource({FetchGives(SQL_SUCCESS_WITH_INFO, {1, "Bolt"}), {2, "Nut"}});
  Target().OtherStatements(SQL_SUCCESS);
  Merge();
  EXPECT_EQ(Changes(), (Lines{UpdateBolt, UpdateNut}));
}

TEST_F(PatchRows, EndWithTheFirstFetchThatFails)
{
  for (const int code : FailureCodes) {
    PutSource({{1, "Bolt"}, FetchGives(code, {2, "Nut"}), {3, "Plate"}});
    Target().OtherStatements(SQL_SUCCESS);
    Merge();
    EXPECT_EQ(Changes(), Lines{UpdateBolt}) << code;
    EXPECT_TRUE(DebugTexts().empty()) << code;
    CloseBoth();
  }
}

TEST_F(PatchRows, RepeatTheRowBeforeForANull)
{
  PutSource({{1, "Bolt"}, {2, nullptr}, {nullptr, "Nut"}});
  Target().OtherStatements(SQL_SUCCESS);
  Merge();
  EXPECT_EQ(Changes(),
            (Lines{UpdateBolt, "UPDATE [Parts]  SET [Name]='Bolt' WHERE [Id]=2", UpdateNut}));
}

TEST_F(PatchRows, HaveWhatTheBuffersWereMadeWithForANullInTheFirstOne)
{
  PutSource({{nullptr, nullptr}});
  Target().OtherStatements(SQL_SUCCESS);
  Merge();
  EXPECT_EQ(Changes(), Lines{"UPDATE [Parts]  SET [Name]=NULL WHERE [Id]=0"});
}

TEST_F(PatchRows, WithAnEmptyKeyAreInserted)
{
  PutKey("Name");
  PutSource({{1, ""}});
  Target().OtherStatements(SQL_NO_DATA);
  Merge();
  EXPECT_EQ(Changes(), (Lines{"UPDATE [Parts]  SET [Id]=1 WHERE [Name]=NULL",
                              "INSERT INTO [Parts] ([Id],[Name]) VALUES (1,NULL);"}));
}

TEST_F(PatchRows, WithoutAStatementAreTracedAndTheNextFollow)
{
  PutTarget();
  Target().OtherStatements(SQL_SUCCESS);
  OpenBoth();
  FailOdbcCall("SQLAllocHandle", 8, SQL_ERROR);
  patch->PatchTable(MergeStep());
  EXPECT_EQ(DebugTexts(), (Lines{"\n", InsertBolt}));
  EXPECT_EQ(DiaryOf({"SQLExecDirectW"}).back(), Executed(15, UpdateNut, 0));
}

TEST_F(PatchRows, WithoutAStatementForTheirQueryAreNone)
{
  PutTarget();
  OpenBoth();
  FailOdbcCall("SQLAllocHandle", 7, SQL_ERROR);
  patch->PatchTable(MergeStep());
  EXPECT_EQ(DiaryAfter("SQLAllocHandle"),
            (Lines{R"(SQLExecDirectW(null, "SELECT * FROM NewParts", -3) = -2)",
                   "SQLFreeHandle(STMT, null) = -2"}));
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(PatchRows, GoOnIfAStatementCannotBeFreed)
{
  PutTarget();
  Target().OtherStatements(SQL_SUCCESS);
  OpenBoth();
  FailOdbcCall("SQLFreeHandle afterwards", 7, SQL_ERROR);
  FailOdbcCall("SQLFreeHandle throwing", 8, 5);
  patch->PatchTable(MergeStep());
  EXPECT_EQ(Changes(), (Lines{UpdateBolt, UpdateNut}));
}

TEST_F(PatchRows, GoOnIfAColumnCannotBeBound)
{
  PutTarget();
  Target().OtherStatements(SQL_SUCCESS);
  OpenBoth();
  // Behind those of two questions for a table, two descriptions and two keys.
  FailOdbcCall("SQLBindCol", 1 + 1 + 18 + 2 + 18 + 2 + 2, SQL_ERROR);
  patch->PatchTable(MergeStep());
  EXPECT_EQ(Changes(), (Lines{"UPDATE [Parts]  SET [Name]=NULL WHERE [Id]=1",
                              "UPDATE [Parts]  SET [Name]=NULL WHERE [Id]=2"}));
}

TEST_F(PatchRows, WithLongTextsAreWrittenAndTracedWhole)
{
  const std::string note = Letters(60000) + "'%s%n";
  Patch().Columns("NewParts", {{"Id", SQL_INTEGER, 10}, {"Note", SQL_WLONGVARCHAR, 0}});
  Patch().Table("NewParts", {{1, note}, {2, "short"}});
  Target().Columns("Parts", {{"Id", SQL_INTEGER, 10}, {"Note", SQL_WLONGVARCHAR, 0}});
  Run(MergeStep());
  const std::string literal = "'" + Letters(60000) + "''%s%n'";
  ASSERT_EQ(Changes().size(), 4u);
  EXPECT_TRUE(Changes()[0] == "UPDATE [Parts]  SET [Note]=" + literal + " WHERE [Id]=1");
  const std::string insert = "INSERT INTO [Parts] ([Id],[Note]) VALUES (1," + literal + ");";
  EXPECT_TRUE(Changes()[1] == insert);
  EXPECT_TRUE(DebugTexts()[1] == insert);
  EXPECT_EQ(Changes()[2], "UPDATE [Parts]  SET [Note]='short' WHERE [Id]=2");
}

TEST_F(PatchRows, HaveOneStatementOpenAtATimeBesideTheirQuery)
{
  OdbcRows rows;
  for (int i = 0; i < 500; ++i)
    rows.push_back({i, "x"});
  PutSource(rows);
  Merge();
  int open = 0;
  for (const std::string& line : DiaryOf({"SQLAllocHandle", "SQLFreeHandle"})) {
    open += line.starts_with("SQLAllocHandle") ? 1 : -1;
    EXPECT_LE(open, 2);
  }
  EXPECT_EQ(Changes().size(), 1000u);
}
