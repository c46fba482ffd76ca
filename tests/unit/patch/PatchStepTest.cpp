// What a step does, by its three flags and by whether its target is there.
#include "database/QulPatchDatabase.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/patch/PatchMachine.h"

namespace {

const char* const CreateParts =
    "CREATE TABLE Parts ([Id] LONG NOT NULL ,[Name] TEXT(30) NULL,PRIMARY KEY ([Id]));";
const char* const InsertBolt = "INSERT INTO [Parts] ([Id],[Name]) VALUES (1,'Bolt');";
const char* const UpdateBolt = "UPDATE [Parts]  SET [Name]='Bolt' WHERE [Id]=1";
const char* const DeleteBolt = "DELETE FROM Parts WHERE [Id]=1;";
const char* const TargetError = "Target table Parts not found in database QuillBase";

// One row in the source, the number for a key, and statements that succeed.
class PatchStep : public PatchMachine
{
protected:
  void Prepare(bool targetPresent)
  {
    PutSource({{1, "Bolt"}});
    Patch().Query("SELECT [Id] FROM NewParts", {{1}});
    PutKey("Id");
    Target().OtherStatements(SQL_SUCCESS);
    if (targetPresent)
      PutTarget();
  }

  void ExpectChanges(const UpdateStep& step, bool targetPresent, const Lines& changes)
  {
    Prepare(targetPresent);
    Run(step);
    EXPECT_EQ(Changes(), changes);
    EXPECT_TRUE(DebugTexts().empty());
  }

  void ExpectTargetError(const UpdateStep& step)
  {
    Prepare(false);
    Run(step);
    EXPECT_TRUE(Changes().empty());
    EXPECT_EQ(DebugTexts(), (Lines{"\n", TargetError}));
  }
};

}  // namespace

TEST_F(PatchStep, WithoutFlagsMergesIntoATable)
{
  ExpectChanges(StepOf(false, false, false), true, {UpdateBolt});
}

TEST_F(PatchStep, WithoutFlagsNeedsATable)
{
  ExpectTargetError(StepOf(false, false, false));
}

TEST_F(PatchStep, ThatRecreatesDropsATableAndFillsANewOne)
{
  ExpectChanges(StepOf(false, true, false), true, {"DROP TABLE Parts", CreateParts, InsertBolt});
}

TEST_F(PatchStep, ThatRecreatesCreatesATableThatIsMissing)
{
  ExpectChanges(StepOf(false, true, false), false, {CreateParts, InsertBolt});
}

TEST_F(PatchStep, ThatRecreatesAndCreatesLeavesATableThatWasThereEmpty)
{
  ExpectChanges(StepOf(false, true, true), true, {"DROP TABLE Parts", CreateParts});
}

TEST_F(PatchStep, ThatRecreatesAndCreatesFillsATableThatIsMissing)
{
  ExpectChanges(StepOf(false, true, true), false, {CreateParts, InsertBolt});
}

TEST_F(PatchStep, ThatCreatesLeavesATableAsItIs)
{
  ExpectChanges(StepOf(false, false, true), true, {});
}

TEST_F(PatchStep, ThatCreatesFillsATableThatIsMissing)
{
  ExpectChanges(StepOf(false, false, true), false, {CreateParts, InsertBolt});
}

TEST_F(PatchStep, ThatDeletesWritesNoRow)
{
  ExpectChanges(StepOf(true, false, false), true, {DeleteBolt});
}

TEST_F(PatchStep, ThatDeletesAndCreatesDeletesAlone)
{
  ExpectChanges(StepOf(true, false, true), true, {DeleteBolt});
}

TEST_F(PatchStep, ThatDeletesAndRecreatesDeletesFromTheNewTable)
{
  ExpectChanges(StepOf(true, true, false), true, {"DROP TABLE Parts", CreateParts, DeleteBolt});
}

TEST_F(PatchStep, WithAllFlagsDeletesFromTheNewTable)
{
  ExpectChanges(StepOf(true, true, true), true, {"DROP TABLE Parts", CreateParts, DeleteBolt});
}

TEST_F(PatchStep, ThatDeletesNeedsATable)
{
  ExpectTargetError(StepOf(true, false, false));
}

TEST_F(PatchStep, ThatDeletesAndCreatesNeedsATable)
{
  ExpectTargetError(StepOf(true, false, true));
}

TEST_F(PatchStep, ThatDeletesAndRecreatesNeedsATable)
{
  ExpectTargetError(StepOf(true, true, false));
}

TEST_F(PatchStep, WithAllFlagsNeedsATable)
{
  ExpectTargetError(StepOf(true, true, true));
}

TEST_F(PatchStep, ThatLeavesATableAsItIsReadsBothTablesAllTheSame)
{
  Prepare(true);
  Run(CreateStep());
  EXPECT_EQ(DiaryOf({"SQLColumnsW", "SQLExecDirectW"}),
            (Lines{R"(SQLColumnsW(stmt#8, null 0, null 0, "NewParts" -3, null 0) = 0)",
                   R"(SQLColumnsW(stmt#9, null 0, null 0, "Parts" -3, null 0) = 0)",
                   R"(SQLColumnsW(stmt#10, null 0, null 0, "NewParts" -3, null 0) = 0)",
                   std::string("SQLExecDirectW(stmt#11, \"") + PartsKeyQuery + "\", -3) = 0",
                   R"(SQLColumnsW(stmt#12, null 0, null 0, "Parts" -3, null 0) = 0)",
                   std::string("SQLExecDirectW(stmt#13, \"") + PartsKeyQuery + "\", -3) = 0"}));
}

TEST_F(PatchStep, ThatDropsATableDoesNotLookForItAgain)
{
  Prepare(true);
  Run(RecreateStep());
  EXPECT_EQ(DiaryOf({"SQLColumnsW"}).size(), 3u);
  EXPECT_EQ(DiaryAfter("SQLExecDirectW(stmt#12, \"DROP TABLE")[0],
            "SQLFreeHandle(STMT, stmt#12) = 0");
}

TEST_F(PatchStep, LeavesTheCallersCopyAsItIs)
{
  Prepare(true);
  const UpdateStep step = MergeStep();
  Run(step);
  EXPECT_EQ(TextOf(step.database), "QuillBase");
  EXPECT_EQ(TextOf(step.sourceTable), "NewParts");
  EXPECT_EQ(TextOf(step.targetTable), "Parts");
}

TEST_F(PatchStep, FindsTheKeyOfBothTablesUnderTheTargetsName)
{
  Prepare(true);
  Target().Query(
      "SELECT [ColumnName],[TypeProperty] FROM [InfoTableRelations] WHERE [TableName] = 'NewParts'",
      {{"Name", "PrimaryKey"}});
  Run(MergeStep());
  EXPECT_EQ(Changes(), Lines{UpdateBolt});
}

TEST_F(PatchStep, WithoutANamedKeyTakesTheFirstColumnOfBothTables)
{
  Prepare(true);
  Target().Query(PartsKeyQuery, {});
  Run(MergeStep());
  EXPECT_EQ(Changes(), Lines{UpdateBolt});
  const std::string message =
      "Unable to read PrimaryKey or Unique info for table Parts!\n"
      ".First column will be marked as PK!";
  EXPECT_EQ(DebugTexts(), (Lines{"\n", message, "\n", message}));
}

TEST_F(PatchStep, WithoutANamedKeyCreatesATableThatHasOne)
{
  Prepare(false);
  Target().Query(PartsKeyQuery, {});
  Run(CreateStep());
  EXPECT_EQ(Changes(), (Lines{CreateParts, InsertBolt}));
  EXPECT_EQ(DebugTexts().size(), 2u);
}

TEST_F(PatchStep, WithoutANamedKeyDeletesWholeRows)
{
  Prepare(true);
  Target().Query(PartsKeyQuery, {});
  Run(StepOf(true, false, false));
  EXPECT_EQ(Changes(), Lines{"DELETE FROM Parts WHERE [Id]=1 AND [Name]='Bolt';"});
}

TEST_F(PatchStep, OfTheRelationsTakesTheirFirstColumnWithoutAQuestion)
{
  PutSource({{1, "Bolt"}});
  Target().Columns("InfoTableRelations", PartsColumns()).OtherStatements(SQL_SUCCESS);
  UpdateStep step = MergeStep();
  step.targetTable.Assign(L"InfoTableRelations");
  Run(step);
  EXPECT_EQ(DiaryOf({"SQLExecDirectW"}),
            (Lines{R"(SQLExecDirectW(stmt#12, "SELECT * FROM NewParts", -3) = 0)",
                   "SQLExecDirectW(stmt#13, \"UPDATE [InfoTableRelations]  SET [Name]='Bolt' "
                   "WHERE [Id]=1\", -3) = 0"}));
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(PatchStep, ThatDeletesFromTheRelationsDeletesWholeRows)
{
  PutSource({{1, "Bolt"}});
  Target().Columns("InfoTableRelations", PartsColumns()).OtherStatements(SQL_SUCCESS);
  UpdateStep step = StepOf(true, false, false);
  step.targetTable.Assign(L"InfoTableRelations");
  Run(step);
  EXPECT_EQ(Changes(), Lines{"DELETE FROM InfoTableRelations WHERE [Id]=1 AND [Name]='Bolt';"});
}

TEST_F(PatchStep, TakesWhatTheTwoTablesHaveInCommon)
{
  Prepare(false);
  Patch()
      .Columns("NewParts", {{"Id", SQL_INTEGER, 10, 0},
                            {"Extra", SQL_INTEGER, 10},
                            {"NAME", SQL_WVARCHAR, 255},
                            {"Mass", SQL_DOUBLE, 53}})
      .Table("NewParts", {{1, 5, "Bolt", 2.5}});
  Target().Columns("Parts", {{"Name", SQL_WVARCHAR, 10},
                             {"Mass", SQL_REAL, 24},
                             {"Id", SQL_INTEGER, 10, 0},
                             {"Other", SQL_INTEGER, 10, 0}});
  Run(MergeStep());
  EXPECT_EQ(Changes(), Lines{UpdateBolt});
}

TEST_F(PatchStep, BindsTheColumnsOfTheSourceBeforeTheFirstRow)
{
  Prepare(true);
  Run(MergeStep());
  EXPECT_EQ(DiaryAfter("SQLExecDirectW(stmt#14"),
            (Lines{"SQLBindCol(stmt#14, 1, 4, 22, ind#1) = 0",
                   "SQLBindCol(stmt#14, 2, -8, 62, ind#2) = 0", "SQLFetch(stmt#14) = 0",
                   "SQLAllocHandle(STMT, dbc#1) = 0 stmt#15",
                   std::string("SQLExecDirectW(stmt#15, \"") + UpdateBolt + "\", -3) = 0",
                   "SQLFreeHandle(STMT, stmt#15) = 0", "SQLFetch(stmt#14) = 100",
                   "SQLFreeHandle(STMT, stmt#14) = 0"}));
}
