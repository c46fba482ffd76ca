// What a step reports when it can't be carried out, and what it does all the same.
#include "database/QulPatchDatabase.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/patch/PatchMachine.h"

namespace {

const char* const CreateParts =
    "CREATE TABLE Parts ([Id] LONG NOT NULL ,[Name] TEXT(30) NULL,PRIMARY KEY ([Id]));";
const char* const CreateMessage =
    "Unable to create table Parts\n"
    "Sql:CREATE TABLE Parts ([Id] LONG NOT NULL ,[Name] TEXT(30) NULL,PRIMARY KEY ([Id]));";

class PatchFailure : public PatchMachine
{
protected:
  void SetUp() override
  {
    PutSource({{1, "Bolt"}});
    PutKey("Id");
  }
};

}  // namespace

TEST_F(PatchFailure, OfASourceThatIsMissingEndsTheStepWithATrace)
{
  UpdateStep step = RecreateStep();
  step.sourceTable.Assign(L"OldParts");
  PutTarget();
  Run(step);
  EXPECT_EQ(Diary(),
            (Lines{"SQLAllocHandle(STMT, dbc#2) = 0 stmt#8",
                   R"(SQLColumnsW(stmt#8, null 0, null 0, "OldParts" -3, null 0) = 0)",
                   "SQLBindCol(stmt#8, 3, -8, 510, ind#1) = 0", "SQLFetch(stmt#8) = 100",
                   "SQLFreeHandle(STMT, stmt#8) = 0", "OutputDebugStringW(\"\n\")",
                   R"(OutputDebugStringW("Source table OldParts not found in patch database"))"}));
}

TEST_F(PatchFailure, OfASourceIsReportedBeforeThatOfATarget)
{
  UpdateStep step = MergeStep();
  step.sourceTable.Assign(L"OldParts");
  Run(step);
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "Source table OldParts not found in patch database"}));
}

TEST_F(PatchFailure, OfASourceWithoutANameIsThatItIsMissing)
{
  UpdateStep step = RecreateStep();
  step.sourceTable.Assign(L"");
  PutTarget();
  Run(step);
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "Source table  not found in patch database"}));
  EXPECT_TRUE(Changes().empty());
}

TEST_F(PatchFailure, OfASourceWithoutANameIsTheSameIfTheCatalogueListsSomething)
{
  Patch().ColumnRows("", {OdbcColumn("Id", SQL_INTEGER, 10).Row("NewParts", 1)});
  UpdateStep step = RecreateStep();
  step.sourceTable.Assign(L"");
  Run(step);
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "Source table  not found in patch database"}));
  EXPECT_TRUE(Changes().empty());
}

TEST_F(PatchFailure, OfASourceWithALongNameIsReportedWhole)
{
  UpdateStep step = MergeStep();
  step.sourceTable.Assign(WideText(Letters(5000) + "%s").c_str());
  Run(step);
  EXPECT_EQ(DebugTexts()[1], "Source table " + Letters(5000) + "%s not found in patch database");
}

TEST_F(PatchFailure, OfATargetThatIsMissingEndsTheStepWithATrace)
{
  Run(MergeStep());
  EXPECT_EQ(DiaryAfter("SQLFreeHandle(STMT, stmt#8)"),
            (Lines{"SQLAllocHandle(STMT, dbc#1) = 0 stmt#9",
                   R"(SQLColumnsW(stmt#9, null 0, null 0, "Parts" -3, null 0) = 0)",
                   "SQLBindCol(stmt#9, 3, -8, 510, ind#1) = 0", "SQLFetch(stmt#9) = 100",
                   "SQLFreeHandle(STMT, stmt#9) = 0", "OutputDebugStringW(\"\n\")",
                   R"(OutputDebugStringW("Target table Parts not found in database QuillBase"))"}));
}

TEST_F(PatchFailure, OfATargetWithALongNameIsReportedWhole)
{
  UpdateStep step = MergeStep();
  step.targetTable.Assign(WideText(Letters(5000) + "%s").c_str());
  Run(step);
  EXPECT_EQ(DebugTexts()[1],
            "Target table " + Letters(5000) + "%s not found in database QuillBase");
}

TEST_F(PatchFailure, OfATargetNamesTheDatabaseAndNotTheStepsNameForIt)
{
  UpdateStep step = MergeStep();
  step.database.Assign(L"quillbase");
  Run(step);
  EXPECT_EQ(DebugTexts()[1], "Target table Parts not found in database QuillBase");
}

TEST_F(PatchFailure, ToCreateTheTableEndsTheStep)
{
  for (const int code : FailureCodes) {
    Target().OtherStatements(code);
    Run(CreateStep());
    EXPECT_EQ(DebugTexts(), (Lines{"\n", "Error executeSQL in QuillBase database.", "\n",
                                   CreateParts, "\n", CreateMessage}))
        << code;
    EXPECT_EQ(Changes(), Lines{CreateParts}) << code;
    EXPECT_EQ(DiaryAfter("SQLFreeHandle"),
              (Lines{"OutputDebugStringW(\"\n\")",
                     std::string("OutputDebugStringW(\"") + CreateMessage + "\")"}));
    CloseBoth();
    ResetPlatform();
    SetUp();
  }
}

TEST_F(PatchFailure, ToDropTheTableGoesOnToCreateIt)
{
  PutTarget();
  Run(RecreateStep());
  EXPECT_EQ(Changes(), (Lines{"DROP TABLE Parts", CreateParts}));
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "Unable to drop table Parts", "\n",
                                 "Error executeSQL in QuillBase database.", "\n", CreateParts, "\n",
                                 CreateMessage}));
}

TEST_F(PatchFailure, ToDropTheTableDoesNotHinderOneThatIsCreated)
{
  PutTarget();
  Target().Statement(CreateParts).OtherStatements(SQL_SUCCESS);
  Target().Statement("DROP TABLE Parts", SQL_ERROR);
  Run(RecreateStep());
  EXPECT_EQ(Changes().size(), 3u);
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "Unable to drop table Parts"}));
}

TEST_F(PatchFailure, ToCreateATableAfterADropIsNotMended)
{
  PutTarget();
  Target().Statement("DROP TABLE Parts");
  Run(RecreateStep());
  EXPECT_EQ(Changes(), (Lines{"DROP TABLE Parts", CreateParts}));
  EXPECT_EQ(DebugTexts().size(), 6u);
}

TEST_F(PatchFailure, ToCreateATableEndsADeleteStepToo)
{
  PutTarget();
  Run(StepOf(true, true, false));
  EXPECT_EQ(Changes(), (Lines{"DROP TABLE Parts", CreateParts}));
}

TEST_F(PatchFailure, ToCreateATableOfManyColumnsIsReportedWhole)
{
  std::vector<OdbcColumn> columns;
  for (int i = 0; i < 255; ++i)
    columns.push_back({Letters(100, 'c') + std::to_string(i), SQL_INTEGER, 10});
  Patch().Columns("NewParts", columns);
  Run(CreateStep());
  ASSERT_EQ(Changes().size(), 1u);
  EXPECT_GT(Changes()[0].size(), 255u * 100);
  EXPECT_TRUE(DebugTexts().back() == "Unable to create table Parts\nSql:" + Changes()[0]);
}

TEST_F(PatchFailure, ToDescribeTheSourceCreatesATableWithoutColumns)
{
  OpenBoth();
  FailOdbcCall("SQLColumnsW", 3, SQL_ERROR);
  patch->PatchTable(CreateStep());
  EXPECT_EQ(Changes(), Lines{"CREATE TABLE Parts"});
  EXPECT_EQ(DebugTexts().back(), "Unable to create table Parts\nSql:CREATE TABLE Parts");
}

TEST_F(PatchFailure, ToDescribeTheTargetMergesNothingIntoIt)
{
  PutTarget();
  OpenBoth();
  FailOdbcCall("SQLColumnsW", 4, SQL_ERROR);
  patch->PatchTable(MergeStep());
  EXPECT_EQ(Changes(), (Lines{"UPDATE [Parts]  SET  WHERE ", "INSERT INTO [Parts] () VALUES ();"}));
  EXPECT_EQ(DebugTexts().back(), "INSERT INTO [Parts] () VALUES ();");
}

TEST_F(PatchFailure, OfAnUnconnectedPatchIsThatItHasNoSource)
{
  OpenBoth();
  QulPatchDatabase unconnected(L"DBQ=C:\\none.mdb", L"Spring.mdb");
  unconnected.targetDatabase = target.get();
  ClearDiary();
  unconnected.PatchTable(MergeStep());
  EXPECT_EQ(Diary(),
            (Lines{"OutputDebugStringW(\"\n\")",
                   R"(OutputDebugStringW("Source table NewParts not found in patch database"))"}));
}

TEST_F(PatchFailure, OfAnUnconnectedTargetIsThatItHasNoTable)
{
  OpenBoth();
  const auto unconnected = UnconnectedDatabase();
  patch->targetDatabase = unconnected.get();
  patch->PatchTable(MergeStep());
  EXPECT_EQ(DebugTexts().back(), "Target table Parts not found in database QuillBase");
  patch->PatchTable(CreateStep());
  EXPECT_EQ(DebugTexts().back().substr(0, 28), "Unable to create table Parts");
}

TEST_F(PatchFailure, DoesNotKeepTheNextStepFromItsWork)
{
  PutTarget();
  Target().OtherStatements(SQL_SUCCESS);
  OpenBoth();
  UpdateStep missing = MergeStep();
  missing.sourceTable.Assign(L"OldParts");
  patch->PatchTable(missing);
  patch->PatchTable(MergeStep());
  EXPECT_EQ(Changes(), Lines{"UPDATE [Parts]  SET [Name]='Bolt' WHERE [Id]=1"});
}
