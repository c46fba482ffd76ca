#include "database/QulPatchDatabase.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/patch/PatchMachine.h"
#include "tests/unit/sql/TableRow.h"

#include <initializer_list>

namespace {

const char* const OldQuery = "SELECT * FROM OldParts";
const char* const KeyQuery = "SELECT [Id] FROM OldParts";

// OldParts of the patch lists rows of the target's Parts, both with a number and a name.
class DeleteRows : public PatchMachine
{
protected:
  DeleteRows() : source("OldParts"), parts("Parts")
  {
    source.Column("Id", SQL_INTEGER).Column("Name", SQL_WVARCHAR);
    parts.Column("Id", SQL_INTEGER).Column("Name", SQL_WVARCHAR);
  }

  // As if the target had named these columns.
  void MarkKeys(std::initializer_list<const wchar_t*> columns)
  {
    for (const wchar_t* column : columns) {
      EXPECT_TRUE(source.schema.MarkKeyColumn(column));
      EXPECT_TRUE(parts.schema.MarkKeyColumn(column));
    }
  }

  void Delete()
  {
    OpenBoth();
    patch->DeleteRows(source.schema, parts.schema);
    ExpectNoStatements();
  }

  TableRow source;
  TableRow parts;
};

}  // namespace

TEST_F(DeleteRows, ByKeyReadsTheKeysAndDeletesEachRow)
{
  MarkKeys({L"Id"});
  Patch().Query(KeyQuery, {{1}, {2}});
  Target().OtherStatements(SQL_SUCCESS);
  Delete();
  EXPECT_EQ(Diary(), (Lines{"SQLAllocHandle(STMT, dbc#2) = 0 stmt#8",
                            R"(SQLExecDirectW(stmt#8, "SELECT [Id] FROM OldParts", -3) = 0)",
                            "SQLBindCol(stmt#8, 1, 4, 22, ind#1) = 0", "SQLFetch(stmt#8) = 0",
                            "SQLAllocHandle(STMT, dbc#1) = 0 stmt#9",
                            R"(SQLExecDirectW(stmt#9, "DELETE FROM Parts WHERE [Id]=1;", -3) = 0)",
                            "SQLFreeHandle(STMT, stmt#9) = 0", "SQLFetch(stmt#8) = 0",
                            "SQLAllocHandle(STMT, dbc#1) = 0 stmt#10",
                            R"(SQLExecDirectW(stmt#10, "DELETE FROM Parts WHERE [Id]=2;", -3) = 0)",
                            "SQLFreeHandle(STMT, stmt#10) = 0", "SQLFetch(stmt#8) = 100",
                            "SQLFreeHandle(STMT, stmt#8) = 0"}));
}

TEST_F(DeleteRows, WithoutAKeyReadsTheWholeRowsAndDeletesTheirLike)
{
  Patch().Query(OldQuery, {{1, "Bolt"}, {2, "O'Neil"}});
  Target().OtherStatements(SQL_SUCCESS);
  Delete();
  EXPECT_EQ(
      Diary(),
      (Lines{
          "SQLAllocHandle(STMT, dbc#2) = 0 stmt#8",
          R"(SQLExecDirectW(stmt#8, "SELECT * FROM OldParts", -3) = 0)",
          "SQLBindCol(stmt#8, 1, 4, 22, ind#1) = 0", "SQLBindCol(stmt#8, 2, -8, 22, ind#2) = 0",
          "SQLFetch(stmt#8) = 0", "SQLAllocHandle(STMT, dbc#1) = 0 stmt#9",
          R"(SQLExecDirectW(stmt#9, "DELETE FROM Parts WHERE [Id]=1 AND [Name]='Bolt';", -3) = 0)",
          "SQLFreeHandle(STMT, stmt#9) = 0", "SQLFetch(stmt#8) = 0",
          "SQLAllocHandle(STMT, dbc#1) = 0 stmt#10",
          R"(SQLExecDirectW(stmt#10, "DELETE FROM Parts WHERE [Id]=2 AND [Name]='O''Neil';", -3) = 0)",
          "SQLFreeHandle(STMT, stmt#10) = 0", "SQLFetch(stmt#8) = 100",
          "SQLFreeHandle(STMT, stmt#8) = 0"}));
}

TEST_F(DeleteRows, BySeveralKeysHasABlankBeforeEachComma)
{
  source.Column("Grade", SQL_SMALLINT);
  parts.Column("Grade", SQL_SMALLINT);
  MarkKeys({L"Id", L"Grade"});
  Patch().Query("SELECT [Id] ,[Grade] FROM OldParts", {{1, 5}});
  Target().OtherStatements(SQL_SUCCESS);
  Delete();
  EXPECT_EQ(Changes(), Lines{"DELETE FROM Parts WHERE [Id]=1 AND [Grade]=5;"});
  EXPECT_EQ(DiaryOf({"SQLBindCol"}), (Lines{"SQLBindCol(stmt#8, 1, 4, 22, ind#1) = 0",
                                            "SQLBindCol(stmt#8, 2, 4, 22, ind#2) = 0"}));
}

TEST_F(DeleteRows, ByKeyPairsTheKeysOfBothByTheirPosition)
{
  TableRow other("Elsewhere");
  other.Integer("Z", 0).Integer("X", 0).Key().Text("W", "").Integer("Y", 0).Key();
  source.Column("Grade", SQL_INTEGER).Last().isKey = true;
  source.schema.columns[0]->isKey = true;
  source.schema.hasKey = true;
  Patch().Query("SELECT [Id] ,[Grade] FROM OldParts", {{1, 5}});
  Target().OtherStatements(SQL_SUCCESS);
  OpenBoth();
  patch->DeleteRows(source.schema, other.schema);
  EXPECT_EQ(Changes(), Lines{"DELETE FROM Elsewhere WHERE [X]=1 AND [Y]=5;"});
}

TEST_F(DeleteRows, ByKeyTakesTheFormOfTheTargetsColumn)
{
  TableRow texts("Parts");
  texts.Column("Id", SQL_WVARCHAR).Key();
  source.schema.MarkKeyColumn(L"Id");
  Patch().Query(KeyQuery, {{"007"}});
  Target().OtherStatements(SQL_SUCCESS);
  OpenBoth();
  patch->DeleteRows(source.schema, texts.schema);
  EXPECT_EQ(Changes(), Lines{"DELETE FROM Parts WHERE [Id]='007';"});
}

TEST_F(DeleteRows, GoesByTheKeyThatWasNamedForTheSource)
{
  parts.schema.MarkKeyColumn(L"Id");
  Patch().Query(OldQuery, {{1, "Bolt"}});
  Target().OtherStatements(SQL_SUCCESS);
  Delete();
  EXPECT_EQ(Changes(), Lines{"DELETE FROM Parts WHERE [Id]=1 AND [Name]='Bolt';"});
}

TEST_F(DeleteRows, TakesWholeRowsIfTheFirstColumnStandsInForAKey)
{
  source.schema.MarkFirstColumn();
  parts.schema.MarkFirstColumn();
  Patch().Query(OldQuery, {{1, "Bolt"}});
  Target().OtherStatements(SQL_SUCCESS);
  Delete();
  EXPECT_EQ(Changes(), Lines{"DELETE FROM Parts WHERE [Id]=1 AND [Name]='Bolt';"});
}

TEST_F(DeleteRows, OfATableWithoutRowsDeletesAndTracesNothing)
{
  for (const bool keyed : {false, true}) {
    source.schema.hasKey = source.schema.columns[0]->isKey = keyed;
    Patch().Query(keyed ? KeyQuery : OldQuery, {});
    Delete();
    EXPECT_TRUE(Changes().empty());
    EXPECT_TRUE(DebugTexts().empty());
    CloseBoth();
  }
}

TEST_F(DeleteRows, OfAQueryThatFailsDeletesAndTracesNothing)
{
  for (const bool keyed : {false, true}) {
    for (const int code : FailureCodes) {
      source.schema.hasKey = source.schema.columns[0]->isKey = keyed;
      parts.schema.columns[0]->isKey = keyed;
      Patch().Query(keyed ? KeyQuery : OldQuery, {{1, "Bolt"}}, code);
      Delete();
      EXPECT_EQ(DiaryAfter("SQLBindCol"),
                (Lines{"SQLFetch(stmt#8) = -1", "SQLFreeHandle(STMT, stmt#8) = 0"}))
          << code;
      EXPECT_TRUE(DebugTexts().empty()) << code;
      CloseBoth();
      ResetPlatform();
    }
  }
}

TEST_F(DeleteRows, ReadsAQueryThatSucceedsWithInformation)
{
  Patch().Query(OldQuery, {{1, "Bolt"}}, SQL_SUCCESS_WITH_INFO);
  Target().OtherStatements(SQL_SUCCESS);
  Delete();
  EXPECT_EQ(Changes().size(), 1u);
}

TEST_F(DeleteRows, ThatFailsIsTracedWithTheStatementAndTheNextRowFollows)
{
  for (const int code : {SQL_ERROR, SQL_INVALID_HANDLE, SQL_STILL_EXECUTING, SQL_NEED_DATA}) {
    for (const bool keyed : {false, true}) {
      source.schema.hasKey = source.schema.columns[0]->isKey = keyed;
      parts.schema.columns[0]->isKey = keyed;
      Patch().Query(KeyQuery, {{1}, {2}}).Query(OldQuery, {{1, "Bolt"}, {2, "Nut"}});
      Target().OtherStatements(code);
      Delete();
      const std::string more = keyed ? "" : " AND [Name]='";
      EXPECT_EQ(DebugTexts(), (Lines{"\n",
                                     "Unable to delete record! SQL = 'DELETE FROM Parts WHERE "
                                     "[Id]=1" +
                                         (keyed ? "" : more + "Bolt'") + ";'",
                                     "\n",
                                     "Unable to delete record! SQL = 'DELETE FROM Parts WHERE "
                                     "[Id]=2" +
                                         (keyed ? "" : more + "Nut'") + ";'"}))
          << code;
      CloseBoth();
      ResetPlatform();
    }
  }
}

TEST_F(DeleteRows, ThatFailsIsTracedBeforeItsStatementIsFreed)
{
  MarkKeys({L"Id"});
  Patch().Query(KeyQuery, {{1}});
  Delete();
  EXPECT_EQ(
      DiaryAfter("SQLExecDirectW"),
      (Lines{
          "OutputDebugStringW(\"\n\")",
          R"(OutputDebugStringW("Unable to delete record! SQL = 'DELETE FROM Parts WHERE [Id]=1;'"))",
          "SQLFreeHandle(STMT, stmt#9) = 0", "SQLFetch(stmt#8) = 100",
          "SQLFreeHandle(STMT, stmt#8) = 0"}));
}

TEST_F(DeleteRows, OfARowThatIsNotThereIsNoFailure)
{
  for (const int code : {SQL_SUCCESS, SQL_SUCCESS_WITH_INFO, SQL_NO_DATA}) {
    Patch().Query(OldQuery, {{1, "Bolt"}, {2, "Nut"}});
    Target().OtherStatements(code);
    Delete();
    EXPECT_EQ(Changes().size(), 2u) << code;
    EXPECT_TRUE(DebugTexts().empty()) << code;
    CloseBoth();
  }
}

TEST_F(DeleteRows, GoesOnAfterAFetchWithInformation)
{
  for (const bool keyed : {false, true}) {
    source.schema.hasKey = source.schema.columns[0]->isKey = keyed;
    parts.schema.columns[0]->isKey = keyed;
    const OdbcRows rows = {FetchGives(SQL_SUCCESS_WITH_INFO, {1, "Bolt"}), {2, "Nut"}};
    Patch().Query(KeyQuery, rows).Query(OldQuery, rows);
    Target().OtherStatements(SQL_SUCCESS);
    Delete();
    EXPECT_EQ(Changes().size(), 2u) << keyed;
    CloseBoth();
  }
}

TEST_F(DeleteRows, ByKeyHasNoRegardForColumnsThatAreUniqueAlone)
{
  MarkKeys({L"Id"});
  source.schema.columns[1]->isUnique = parts.schema.columns[1]->isUnique = true;
  Patch().Query(KeyQuery, {{1}});
  Target().OtherStatements(SQL_SUCCESS);
  Delete();
  EXPECT_EQ(Changes(), Lines{"DELETE FROM Parts WHERE [Id]=1;"});
}

TEST_F(DeleteRows, EndsWithTheFirstFetchThatFails)
{
  for (const bool keyed : {false, true}) {
    for (const int code : FailureCodes) {
      source.schema.hasKey = source.schema.columns[0]->isKey = keyed;
      parts.schema.columns[0]->isKey = keyed;
      const OdbcRows rows = {{1, "Bolt"}, FetchGives(code, {2, "Nut"}), {3, "Plate"}};
      Patch().Query(KeyQuery, rows).Query(OldQuery, rows);
      Target().OtherStatements(SQL_SUCCESS);
      Delete();
      EXPECT_EQ(Changes().size(), 1u) << code;
      CloseBoth();
    }
  }
}

TEST_F(DeleteRows, RepeatsTheRowBeforeForANull)
{
  Patch().Query(OldQuery, {{1, "Bolt"}, {nullptr, "Nut"}, {3, nullptr}});
  Target().OtherStatements(SQL_SUCCESS);
  Delete();
  EXPECT_EQ(Changes(), (Lines{"DELETE FROM Parts WHERE [Id]=1 AND [Name]='Bolt';",
                              "DELETE FROM Parts WHERE [Id]=1 AND [Name]='Nut';",
                              "DELETE FROM Parts WHERE [Id]=3 AND [Name]='Nut';"}));
}

TEST_F(DeleteRows, ByKeyRepeatsTheRowBeforeForANull)
{
  MarkKeys({L"Id", L"Name"});
  Patch().Query("SELECT [Id] ,[Name] FROM OldParts", {{1, "Bolt"}, {nullptr, nullptr}});
  Target().OtherStatements(SQL_SUCCESS);
  Delete();
  EXPECT_EQ(Changes(), (Lines{"DELETE FROM Parts WHERE [Id]=1 AND [Name]='Bolt';",
                              "DELETE FROM Parts WHERE [Id]=1 AND [Name]='Bolt';"}));
}

TEST_F(DeleteRows, HasWhatTheBufferWasMadeWithForANullInTheFirstRow)
{
  Patch().Query(OldQuery, {{nullptr, nullptr}});
  Target().OtherStatements(SQL_SUCCESS);
  Delete();
  EXPECT_EQ(Changes(), Lines{"DELETE FROM Parts WHERE [Id]=0 AND [Name]=NULL;"});
}

TEST_F(DeleteRows, LeavesColumnsOutThatTheTargetLacks)
{
  source.Column("Extra", SQL_INTEGER).Column("Mass", SQL_DOUBLE);
  parts.Column("Mass", SQL_REAL);
  Patch().Query(OldQuery, {{1, "Bolt", 5, 6}});
  Target().OtherStatements(SQL_SUCCESS);
  Delete();
  EXPECT_EQ(Changes(), Lines{"DELETE FROM Parts WHERE [Id]=1 AND [Name]='Bolt';"});
  EXPECT_EQ(DiaryOf({"SQLBindCol"}).size(), 4u);
}

TEST_F(DeleteRows, BindsHiddenColumnsOfTheSource)
{
  source.Column("Name_fr", SQL_WVARCHAR).Hidden();
  parts.Column("Name_fr", SQL_WVARCHAR);
  Patch().Query(OldQuery, {{1, "Bolt", "Boulon"}});
  Target().OtherStatements(SQL_SUCCESS);
  Delete();
  EXPECT_EQ(Changes(),
            Lines{"DELETE FROM Parts WHERE [Id]=1 AND [Name]='Bolt' AND [Name_fr]='Boulon';"});
}

TEST_F(DeleteRows, HasNothingOfAColumnOfATypeThatIsNotFetched)
{
  source.Column("Code", SQL_CHAR);
  parts.Column("Code", SQL_CHAR);
  Patch().Query(OldQuery, {{1, "Bolt", "X"}});
  Target().OtherStatements(SQL_SUCCESS);
  Delete();
  EXPECT_EQ(Changes(), Lines{"DELETE FROM Parts WHERE [Id]=1 AND [Name]='Bolt' AND [Code]=;"});
}

TEST_F(DeleteRows, GoesOnIfAColumnCannotBeBound)
{
  Patch().Query(OldQuery, {{1, "Bolt"}});
  Target().OtherStatements(SQL_SUCCESS);
  OpenBoth();
  FailOdbcCall("SQLBindCol", 1, SQL_ERROR);
  patch->DeleteRows(source.schema, parts.schema);
  EXPECT_EQ(Changes(), Lines{"DELETE FROM Parts WHERE [Id]=0 AND [Name]='Bolt';"});
}

TEST_F(DeleteRows, WithoutACommonColumnIsRefusedAndTraced)
{
  const TableRow other("Parts");
  TableSchema empty(L"Parts");
  Patch().Query(OldQuery, {{1, "Bolt"}});
  OpenBoth();
  patch->DeleteRows(source.schema, empty);
  EXPECT_EQ(DebugTexts(),
            (Lines{"\n", "Unable to delete record! SQL = 'DELETE FROM Parts WHERE ;'"}));
}

TEST_F(DeleteRows, TracesALongStatementWhole)
{
  source.Column("Note", SQL_WLONGVARCHAR);
  parts.Column("Note", SQL_WLONGVARCHAR);
  const std::string note = Letters(60000) + "%s%n";
  Patch().Query(OldQuery, {{1, "Bolt", note}});
  Delete();
  ASSERT_EQ(DebugTexts().size(), 2u);
  EXPECT_TRUE(DebugTexts()[1] ==
              "Unable to delete record! SQL = 'DELETE FROM Parts WHERE [Id]=1 AND [Name]='Bolt' "
              "AND [Note]='" +
                  note + "';'");
}

TEST_F(DeleteRows, WithoutAStatementForTheQueryEndsWithoutAWord)
{
  Patch().Query(OldQuery, {{1, "Bolt"}});
  OpenBoth();
  FailOdbcCall("SQLAllocHandle", 1, SQL_ERROR);
  patch->DeleteRows(source.schema, parts.schema);
  EXPECT_EQ(Diary(), (Lines{"SQLAllocHandle(STMT, dbc#2) = -1",
                            R"(SQLExecDirectW(null, "SELECT * FROM OldParts", -3) = -2)",
                            "SQLBindCol(null, 1, 4, 22, ind#?) = -2",
                            "SQLBindCol(null, 2, -8, 22, ind#?) = -2", "SQLFetch(null) = -2",
                            "SQLFreeHandle(STMT, null) = -2"}));
}

TEST_F(DeleteRows, WithoutAStatementForARowTracesItAndGoesOn)
{
  MarkKeys({L"Id"});
  Patch().Query(KeyQuery, {{1}, {2}});
  Target().OtherStatements(SQL_SUCCESS);
  OpenBoth();
  FailOdbcCall("SQLAllocHandle", 2, SQL_ERROR);
  patch->DeleteRows(source.schema, parts.schema);
  EXPECT_EQ(DiaryOf({"SQLExecDirectW"}),
            (Lines{R"(SQLExecDirectW(stmt#8, "SELECT [Id] FROM OldParts", -3) = 0)",
                   R"(SQLExecDirectW(null, "DELETE FROM Parts WHERE [Id]=1;", -3) = -2)",
                   R"(SQLExecDirectW(stmt#9, "DELETE FROM Parts WHERE [Id]=2;", -3) = 0)"}));
  EXPECT_EQ(DebugTexts().size(), 2u);
}

TEST_F(DeleteRows, GoesOnIfAStatementCannotBeFreed)
{
  MarkKeys({L"Id"});
  Patch().Query(KeyQuery, {{1}, {2}});
  Target().OtherStatements(SQL_SUCCESS);
  OpenBoth();
  FailOdbcCall("SQLFreeHandle afterwards", 1, SQL_ERROR);
  FailOdbcCall("SQLFreeHandle throwing", 2, 5);
  patch->DeleteRows(source.schema, parts.schema);
  EXPECT_EQ(Changes().size(), 2u);
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(DeleteRows, OfAnUnconnectedPatchDeletesNothing)
{
  const QulDatabase unconnectedTarget(L"DBQ=C:\\none.mdb", L"QuillBase");
  QulPatchDatabase unconnected(L"DBQ=C:\\nothing.mdb", L"Spring.mdb");
  ClearDiary();
  unconnected.DeleteRows(source.schema, parts.schema);
  EXPECT_EQ(Diary(), (Lines{R"(SQLExecDirectW(null, "SELECT * FROM OldParts", -3) = -2)",
                            "SQLBindCol(null, 1, 4, 22, ind#?) = -2",
                            "SQLBindCol(null, 2, -8, 22, ind#?) = -2", "SQLFetch(null) = -2"}));
}

TEST_F(DeleteRows, OnAnUnconnectedTargetTracesEachRow)
{
  MarkKeys({L"Id"});
  Patch().Query(KeyQuery, {{1}});
  OpenBoth();
  const auto unconnected = UnconnectedDatabase();
  const size_t before = DebugTexts().size();
  patch->targetDatabase = unconnected.get();
  patch->DeleteRows(source.schema, parts.schema);
  EXPECT_EQ(DiaryOf({"SQLAllocHandle", "SQLExecDirectW", "SQLFreeHandle"}),
            (Lines{"SQLAllocHandle(STMT, dbc#2) = 0 stmt#8",
                   R"(SQLExecDirectW(stmt#8, "SELECT [Id] FROM OldParts", -3) = 0)",
                   R"(SQLExecDirectW(null, "DELETE FROM Parts WHERE [Id]=1;", -3) = -2)",
                   "SQLFreeHandle(STMT, stmt#8) = 0"}));
  EXPECT_EQ(DebugTexts().size(), before + 2);
}
