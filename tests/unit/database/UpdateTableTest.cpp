#include "database/UpdateTable.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/unit/database/UpdateSteps.h"

namespace {

const char* const UpdateQuery = "SELECT * FROM UpdateTable ORDER BY [ID]";

class StoredSteps : public DatabaseMachine
{
protected:
  static Lines Read(const OdbcRows& rows)
  {
    Patch().Query(UpdateQuery, rows);
    return StepsOf(OpenPatch()->updateTable->steps);
  }

  // The queries of the update table that a patch makes which tells of a French variant.
  static Lines QueriesWithVariant(const char* variants)
  {
    SetLanguage(1036);
    Patch().Table("Info", {{"UpdateTable", variants, "LanguageDependentTables"}});
    auto patch = OpenPatch();
    ClearDiary();
    const UpdateTable table(*patch);
    return DiaryOf({"SQLColumnsW", "SQLExecDirectW"});
  }
};

}  // namespace

TEST_F(StoredSteps, AreTheRowsInTheOrderOfTheQuery)
{
  EXPECT_EQ(Read({{1, "QuillBase", "A", "B", 1, 0, 0},
                  {2, "QuillRules", "C", "D", 0, 1, 0},
                  {3, "QuillBase", "E", "F", 0, 0, 1}}),
            (Lines{"QuillBase A>B 100", "QuillRules C>D 010", "QuillBase E>F 001"}));
}

TEST_F(StoredSteps, AreReadByPositionWithOneLengthWord)
{
  Patch().Query(UpdateQuery, {{1, "QuillBase", "A", "B", 1, 0, 0}});
  auto patch = OpenPatch();
  const UpdateTable table(*patch);
  EXPECT_EQ(
      Diary(),
      (Lines{"SQLAllocHandle(STMT, dbc#1) = 0 stmt#5",
             R"(SQLExecDirectW(stmt#5, "SELECT * FROM UpdateTable ORDER BY [ID]", -3) = 0)",
             "SQLBindCol(stmt#5, 2, -8, 100, ind#1) = 0",
             "SQLBindCol(stmt#5, 3, -8, 100, ind#1) = 0",
             "SQLBindCol(stmt#5, 4, -8, 100, ind#1) = 0", "SQLBindCol(stmt#5, 5, -7, 1, ind#1) = 0",
             "SQLBindCol(stmt#5, 6, -7, 1, ind#1) = 0", "SQLBindCol(stmt#5, 7, -7, 1, ind#1) = 0",
             "SQLFetch(stmt#5) = 0", "SQLFetch(stmt#5) = 100", "SQLFreeHandle(STMT, stmt#5) = 0"}));
}

TEST_F(StoredSteps, OfATableThatIsMissingAreNoneWithoutATrace)
{
  auto patch = OpenPatch();
  const UpdateTable table(*patch);
  EXPECT_EQ(table.steps.count, 0);
  EXPECT_EQ(DiaryAfter("SQLExecDirectW"), (Lines{"SQLFreeHandle(STMT, stmt#5) = 0"}));
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(StoredSteps, OfAQueryThatFailsAreNone)
{
  for (const int code : FailureCodes) {
    Patch().Query(UpdateQuery, {{1, "QuillBase", "A", "B", 1, 0, 0}}, code);
    EXPECT_EQ(OpenPatch()->updateTable->steps.count, 0) << code;
  }
}

TEST_F(StoredSteps, OfAQueryThatSucceedsWithInformationAreRead)
{
  Patch().Query(UpdateQuery, {{1, "QuillBase", "A", "B", 1, 0, 0}}, SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(OpenPatch()->updateTable->steps.count, 1);
}

TEST_F(StoredSteps, WithoutAStatementAreNoneAndNothingIsFreed)
{
  Patch().Query(UpdateQuery, {{1, "QuillBase", "A", "B", 1, 0, 0}});
  auto patch = OpenPatch();
  for (const int code : FailureCodes) {
    ClearDiary();
    FailOdbcCall("SQLAllocHandle", 1, code);
    const UpdateTable table(*patch);
    EXPECT_EQ(table.steps.count, 0) << code;
    EXPECT_EQ(Diary().size(), 1u) << code;
  }
}

TEST_F(StoredSteps, OfAStatementAllocatedWithInformationAreRead)
{
  Patch().Query(UpdateQuery, {{1, "QuillBase", "A", "B", 1, 0, 0}});
  auto patch = OpenPatch();
  FailOdbcCall("SQLAllocHandle afterwards", 1, SQL_SUCCESS_WITH_INFO);
  const UpdateTable table(*patch);
  EXPECT_EQ(table.steps.count, 1);
}

TEST_F(StoredSteps, OfAnUnconnectedPatchAreNone)
{
  auto database = UnconnectedDatabase();
  const UpdateTable table(*database);
  EXPECT_EQ(table.steps.count, 0);
  EXPECT_TRUE(Diary().empty());
}

TEST_F(StoredSteps, RepeatTheRowBeforeForANull)
{
  EXPECT_EQ(Read({{1, "QuillBase", "A", "B", 1, 1, 1},
                  {2, nullptr, "C", "D", 0, 0, 0},
                  {3, "QuillRules", nullptr, "E", 0, 1, 0},
                  {4, "QuillRules", "F", nullptr, nullptr, nullptr, nullptr},
                  {5, "QuillRules", "F", "G", 1, 0, 1},
                  {6, "QuillRules", "F", "G", nullptr, nullptr, nullptr}}),
            (Lines{"QuillBase A>B 111", "QuillBase C>D 000", "QuillRules C>E 010",
                   "QuillRules F>E 010", "QuillRules F>G 101", "QuillRules F>G 101"}));
}

TEST_F(StoredSteps, AreEmptyForANullAtTheStart)
{
  SoilStack();
  EXPECT_EQ(Read({{nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr}}),
            (Lines{" > 000"}));
}

TEST_F(StoredSteps, HaveNamesOf49Characters)
{
  EXPECT_EQ(Read({{1, Letters(50, 'd'), Letters(50, 's'), Letters(50, 't'), 0, 0, 0},
                  {2, Letters(49, 'd'), Letters(49, 's'), Letters(49, 't'), 1, 0, 0}}),
            (Lines{Letters(49, 'd') + " " + Letters(49, 's') + ">" + Letters(49, 't') + " 000",
                   Letters(49, 'd') + " " + Letters(49, 's') + ">" + Letters(49, 't') + " 100"}));
}

TEST_F(StoredSteps, IgnoreColumnsBehindTheSeventh)
{
  EXPECT_EQ(Read({{1, "QuillBase", "A", "B", 1, 0, 0, "more", 7}}), (Lines{"QuillBase A>B 100"}));
}

TEST_F(StoredSteps, KeepThoseBeforeAnErrorInTheMiddle)
{
  for (const int code : FailureCodes) {
    EXPECT_EQ(Read({{1, "QuillBase", "A", "B", 1, 0, 0},
                    FetchGives(code),
                    {2, "QuillBase", "C", "D", 1, 0, 0}}),
              (Lines{"QuillBase A>B 100"}))
        << code;
  }
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(StoredSteps, GoOnAfterAFetchWithInformation)
{
  EXPECT_EQ(Read({FetchGives(SQL_SUCCESS_WITH_INFO, {1, "QuillBase", "A", "B", 1, 0, 0}),
                  {2, "QuillBase", "C", "D", 0, 0, 0}}),
            (Lines{"QuillBase A>B 100", "QuillBase C>D 000"}));
}

TEST_F(StoredSteps, HaveNothingOfAColumnThatCannotBeBound)
{
  SoilStack();
  Patch().Query(UpdateQuery, {{1, "QuillBase", "A", "B", 1, 1, 1}});
  auto patch = OpenPatch();
  const char* const expected[] = {" A>B 111",          "QuillBase >B 111",  "QuillBase A> 111",
                                  "QuillBase A>B 011", "QuillBase A>B 101", "QuillBase A>B 110"};
  for (int binding = 1; binding <= 6; ++binding) {
    FailOdbcCall("SQLBindCol", binding, SQL_ERROR);
    EXPECT_EQ(StepsOf(UpdateTable(*patch).steps), (Lines{expected[binding - 1]}));
  }
}

TEST_F(StoredSteps, AreThoseOfTheVariantOfTheLanguageIfItIsThere)
{
  Patch().Columns("UpdateTable_fr", {{"ID", SQL_INTEGER, 10}});
  EXPECT_EQ(
      QueriesWithVariant("UpdateTable;UpdateTable_fr"),
      (Lines{R"(SQLColumnsW(stmt#6, null 0, null 0, "UpdateTable_fr" -3, null 0) = 0)",
             R"(SQLExecDirectW(stmt#7, "SELECT * FROM UpdateTable_fr ORDER BY [ID]", -3) = -1)"}));
}

TEST_F(StoredSteps, AreThoseOfTheBaseIfTheVariantIsNotThere)
{
  EXPECT_EQ(
      QueriesWithVariant("UpdateTable;UpdateTable_fr"),
      (Lines{R"(SQLColumnsW(stmt#6, null 0, null 0, "UpdateTable_fr" -3, null 0) = 0)",
             R"(SQLExecDirectW(stmt#7, "SELECT * FROM UpdateTable ORDER BY [ID]", -3) = -1)"}));
}

TEST_F(StoredSteps, AreThoseOfTheBaseIfTheListEndsBeforeTheLanguage)
{
  const Lines queries = QueriesWithVariant("UpdateTable");
  ASSERT_FALSE(queries.empty());
  EXPECT_EQ(queries.back(),
            R"(SQLExecDirectW(stmt#7, "SELECT * FROM UpdateTable ORDER BY [ID]", -3) = -1)");
}

TEST_F(StoredSteps, AreThoseOfTheBaseEvenIfTheCatalogueDoesNotDenyAnEmptyName)
{
  SetLanguage(1036);
  Patch().Table("Info", {{"UpdateTable", "UpdateTable", "LanguageDependentTables"}});
  auto patch = OpenPatch();
  ClearDiary();
  FailOdbcCall("SQLFetch", 1, SQL_ERROR);
  const UpdateTable table(*patch);
  EXPECT_EQ(
      DiaryOf({"SQLColumnsW", "SQLExecDirectW"}),
      (Lines{R"(SQLColumnsW(stmt#6, null 0, null 0, "" -3, null 0) = 0)",
             R"(SQLExecDirectW(stmt#7, "SELECT * FROM UpdateTable ORDER BY [ID]", -3) = -1)"}));
}

TEST_F(StoredSteps, AskForNoVariantOfATableThatHasNone)
{
  auto patch = OpenPatch();
  ClearDiary();
  const UpdateTable table(*patch);
  EXPECT_TRUE(DiaryOf({"SQLColumnsW"}).empty());
}
