#include "database/InfoTable.h"
#include "database/QulDatabase.h"
#include "database/TableSchema.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"

namespace {

using Schema = std::unique_ptr<TableSchema>;

// Each column as "name type size", with what is set of nullable, hidden and the alternate.
Lines Described(const TableSchema& schema)
{
  Lines lines;
  for (int i = 0; i < schema.columnCount; ++i) {
    const TableColumn& column = *schema.columns[i];
    std::string line = TextOf(column.name) + " " + std::to_string(column.sqlType) + " " +
                       std::to_string(column.size);
    line += column.isNullable ? " nullable" : "";
    line += column.isHidden ? " hidden" : "";
    line += column.hasAlternate ? " -> " + TextOf(column.alternateName) : "";
    lines.push_back(line);
  }
  return lines;
}

class ReadTableSchema : public DatabaseMachine
{
protected:
  static Schema Read(QulDatabase& database, bool hideOtherLanguages = false)
  {
    return Schema(database.ReadTableSchema(L"Parts", hideOtherLanguages));
  }

  static Lines ReadColumns(const std::vector<OdbcColumn>& columns)
  {
    Target().Columns("Parts", columns);
    return Described(*Read(*OpenTarget()));
  }

  static Lines ReadRows(const OdbcRows& rows)
  {
    Target().ColumnRows("Parts", rows);
    return Described(*Read(*OpenTarget()));
  }

  static OdbcRow RowOf(const OdbcColumn& column) { return column.Row("Parts", 1); }

  // Parts with a name in a base language and in French.
  static void AddTranslatedParts()
  {
    SetLanguage(1036);
    Target()
        .Table("Info", {{"Parts", "Name;Name_fr,N;Name_nl", "LanguageDependent"}})
        .Columns("Parts", {{"Name", SQL_WVARCHAR, 50},
                           {"NAME_FR", SQL_WVARCHAR, 50},
                           {"Name_nl", SQL_WVARCHAR, 50},
                           {"N", SQL_WVARCHAR, 50}});
  }
};

}  // namespace

TEST_F(ReadTableSchema, HasTheColumnsOfTheCatalogueInItsOrder)
{
  EXPECT_EQ(ReadColumns({{"Id", SQL_INTEGER, 10, 0},
                         {"Name", SQL_WVARCHAR, 255, 1},
                         {"Mass", SQL_DOUBLE, 53, 1}}),
            (Lines{"Id 4 10", "Name -9 255 nullable", "Mass 8 53 nullable"}));
}

TEST_F(ReadTableSchema, IsOfTheNameThatWasAskedFor)
{
  auto database = OpenTarget();
  const Schema schema(database->ReadTableSchema(L"parts", false));
  EXPECT_EQ(TextOf(schema->tableName), "parts");
  EXPECT_FALSE(schema->hasKey);
}

TEST_F(ReadTableSchema, BindsAllEighteenColumnsOfTheCatalogue)
{
  Target().Columns("Parts", {{"Id", SQL_INTEGER, 10, 0}});
  auto database = OpenTarget();
  (void)Read(*database);
  EXPECT_EQ(Diary(), (Lines{"SQLAllocHandle(STMT, dbc#1) = 0 stmt#4",
                            R"(SQLColumnsW(stmt#4, null 0, null 0, "Parts" -3, null 0) = 0)",
                            "SQLBindCol(stmt#4, 1, -8, 510, ind#1) = 0",
                            "SQLBindCol(stmt#4, 2, -8, 510, ind#2) = 0",
                            "SQLBindCol(stmt#4, 3, -8, 510, ind#3) = 0",
                            "SQLBindCol(stmt#4, 4, -8, 510, ind#4) = 0",
                            "SQLBindCol(stmt#4, 5, -15, 2, ind#5) = 0",
                            "SQLBindCol(stmt#4, 6, -8, 255, ind#6) = 0",
                            "SQLBindCol(stmt#4, 7, -16, 4, ind#7) = 0",
                            "SQLBindCol(stmt#4, 8, -16, 4, ind#8) = 0",
                            "SQLBindCol(stmt#4, 9, -15, 2, ind#9) = 0",
                            "SQLBindCol(stmt#4, 10, -15, 2, ind#10) = 0",
                            "SQLBindCol(stmt#4, 11, -15, 2, ind#11) = 0",
                            "SQLBindCol(stmt#4, 12, -8, 510, ind#12) = 0",
                            "SQLBindCol(stmt#4, 13, -8, 510, ind#13) = 0",
                            "SQLBindCol(stmt#4, 14, -15, 2, ind#14) = 0",
                            "SQLBindCol(stmt#4, 15, -15, 2, ind#15) = 0",
                            "SQLBindCol(stmt#4, 16, -16, 4, ind#16) = 0",
                            "SQLBindCol(stmt#4, 17, -16, 4, ind#17) = 0",
                            "SQLBindCol(stmt#4, 18, -8, 510, ind#18) = 0",
                            "SQLFetch(stmt#4) = 0",
                            "SQLFetch(stmt#4) = 100",
                            "SQLCloseCursor(stmt#4) = 0",
                            "SQLFreeHandle(STMT, stmt#4) = 0"}));
}

TEST_F(ReadTableSchema, OfATableThatIsNotThereIsEmptyWithoutATrace)
{
  auto database = OpenTarget();
  const Schema schema = Read(*database);
  EXPECT_EQ(schema->columnCount, 0);
  EXPECT_EQ(TextOf(schema->tableName), "Parts");
  EXPECT_EQ(DiaryAfter("SQLFetch"),
            (Lines{"SQLCloseCursor(stmt#4) = 0", "SQLFreeHandle(STMT, stmt#4) = 0"}));
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(ReadTableSchema, OfACatalogueThatFailsIsEmptyAndClosesNoCursor)
{
  for (const int code : FailureCodes) {
    Target().Columns("Parts", {{"Id", SQL_INTEGER, 10}}).ColumnsGive(code);
    auto database = OpenTarget();
    EXPECT_EQ(Read(*database)->columnCount, 0) << code;
    EXPECT_TRUE(DiaryOf({"SQLBindCol", "SQLFetch", "SQLCloseCursor"}).empty()) << code;
    EXPECT_EQ(DiaryOf({"SQLFreeHandle"}).size(), 1u) << code;
  }
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(ReadTableSchema, OfACatalogueThatSucceedsWithInformationIsRead)
{
  Target().Columns("Parts", {{"Id", SQL_INTEGER, 10}}).ColumnsGive(SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(Read(*OpenTarget())->columnCount, 1);
}

TEST_F(ReadTableSchema, WithoutAStatementIsEmpty)
{
  Target().Columns("Parts", {{"Id", SQL_INTEGER, 10}});
  auto database = OpenTarget();
  FailOdbcCall("SQLAllocHandle", 1, SQL_ERROR);
  EXPECT_EQ(Read(*database)->columnCount, 0);
  EXPECT_EQ(DiaryAfter("SQLAllocHandle"),
            (Lines{R"(SQLColumnsW(null, null 0, null 0, "Parts" -3, null 0) = -2)",
                   "SQLFreeHandle(STMT, null) = -2"}));
}

TEST_F(ReadTableSchema, OfAnUnconnectedDatabaseIsEmpty)
{
  auto database = UnconnectedDatabase();
  const Schema schema = Read(*database, true);
  EXPECT_EQ(schema->columnCount, 0);
  EXPECT_EQ(TextOf(schema->tableName), "Parts");
  EXPECT_EQ(Diary(), (Lines{R"(SQLColumnsW(null, null 0, null 0, "Parts" -3, null 0) = -2)"}));
}

TEST_F(ReadTableSchema, KeepsTheColumnsBeforeAnErrorInTheMiddle)
{
  const OdbcColumn id("Id", SQL_INTEGER, 10, 0);
  for (const int code : FailureCodes) {
    EXPECT_EQ(ReadRows({RowOf(id), FetchGives(code), RowOf(id)}), (Lines{"Id 4 10"})) << code;
    EXPECT_TRUE(ReadRows({FetchGives(code), RowOf(id)}).empty()) << code;
  }
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(ReadTableSchema, ClosesItsCursorAfterAnErrorToo)
{
  Target().ColumnRows("Parts", {FetchGives(SQL_ERROR)});
  auto database = OpenTarget();
  (void)Read(*database);
  EXPECT_EQ(DiaryAfter("SQLFetch"),
            (Lines{"SQLCloseCursor(stmt#4) = 0", "SQLFreeHandle(STMT, stmt#4) = 0"}));
}

TEST_F(ReadTableSchema, GoesOnAfterAFetchWithInformation)
{
  const OdbcColumn id("Id", SQL_INTEGER, 10, 0);
  const OdbcColumn name("Name", SQL_WVARCHAR, 20, 0);
  EXPECT_EQ(ReadRows({FetchGives(SQL_SUCCESS_WITH_INFO, RowOf(id)), RowOf(name)}),
            (Lines{"Id 4 10", "Name -9 20"}));
}

TEST_F(ReadTableSchema, HasNothingOfAColumnThatCannotBeBound)
{
  SoilStack();
  const struct
  {
    int binding;
    const char* description;
  } rows[] = {{1, "Id 4 10 nullable"}, {4, " 4 10 nullable"}, {5, "Id 0 10 nullable"},
              {7, "Id 4 0 nullable"},  {11, "Id 4 10"},       {18, "Id 4 10 nullable"}};
  for (const auto& row : rows) {
    Target().Columns("Parts", {{"Id", SQL_INTEGER, 10, 1}});
    auto database = OpenTarget();
    FailOdbcCall("SQLBindCol", row.binding, SQL_ERROR);
    EXPECT_EQ(Described(*Read(*database)), (Lines{row.description})) << row.binding;
  }
}

TEST_F(ReadTableSchema, IsWholeWhateverTheCloseOfItsCursorReturns)
{
  Target().Columns("Parts", {{"Id", SQL_INTEGER, 10, 0}});
  for (const int code : FailureCodes) {
    auto database = OpenTarget();
    FailOdbcCall("SQLCloseCursor", 1, code);
    EXPECT_EQ(Described(*Read(*database)), (Lines{"Id 4 10"})) << code;
    EXPECT_EQ(Odbc().OpenStatements(), 0) << code;
  }
}

TEST_F(ReadTableSchema, HasNullableColumnsWhereTheCatalogueSaysOne)
{
  EXPECT_EQ(ReadColumns({{"A", SQL_INTEGER, 10, SQL_NO_NULLS},
                         {"B", SQL_INTEGER, 10, SQL_NULLABLE},
                         {"C", SQL_INTEGER, 10, SQL_NULLABLE_UNKNOWN},
                         {"D", SQL_INTEGER, 10, -1}}),
            (Lines{"A 4 10", "B 4 10 nullable", "C 4 10", "D 4 10"}));
}

TEST_F(ReadTableSchema, CutsNamesTo254Characters)
{
  const Lines columns = ReadColumns({{Letters(254), SQL_INTEGER, 10, 0},
                                     {Letters(255, 'y'), SQL_INTEGER, 10, 0},
                                     {"Z", SQL_INTEGER, 10, 0}});
  EXPECT_EQ(columns, (Lines{Letters(254) + " 4 10", Letters(254, 'y') + " 4 10", "Z 4 10"}));
}

TEST_F(ReadTableSchema, TakesNoHarmFromLongTextsInTheOtherColumns)
{
  OdbcColumn column("Id", SQL_INTEGER, 10, 0);
  for (const int position : {1, 2, 3, 6, 12, 13, 18})
    column.Set(position, Letters(3000));
  EXPECT_EQ(ReadColumns({column, {"B", SQL_BIT, 1, 0}}), (Lines{"Id 4 10", "B -7 1"}));
}

TEST_F(ReadTableSchema, RepeatsTheColumnBeforeForANull)
{
  OdbcColumn nulls("Name", SQL_WVARCHAR, nullptr, nullptr);
  nulls.Set(4, nullptr).Set(5, nullptr);
  EXPECT_EQ(ReadColumns({{"Id", SQL_INTEGER, 10, 1}, nulls}),
            (Lines{"Id 4 10 nullable", "Id 4 10 nullable"}));
}

TEST_F(ReadTableSchema, HasNothingForANullAtTheStart)
{
  SoilStack();
  OdbcColumn nulls("Name", SQL_WVARCHAR, nullptr, nullptr);
  nulls.Set(4, nullptr).Set(5, nullptr);
  EXPECT_EQ(ReadColumns({nulls}), (Lines{" 0 0"}));
}

TEST_F(ReadTableSchema, HasTheAlternatesOfTheLanguage)
{
  AddTranslatedParts();
  EXPECT_EQ(Described(*Read(*OpenTarget())),
            (Lines{"Name -9 50 nullable -> Name_fr", "NAME_FR -9 50 nullable",
                   "Name_nl -9 50 nullable", "N -9 50 nullable"}));
}

TEST_F(ReadTableSchema, HidesTheColumnsOfAllLanguagesIfAsked)
{
  AddTranslatedParts();
  EXPECT_EQ(Described(*Read(*OpenTarget(), true)),
            (Lines{"Name -9 50 nullable -> Name_fr", "NAME_FR -9 50 nullable hidden",
                   "Name_nl -9 50 nullable hidden", "N -9 50 nullable"}));
}

TEST_F(ReadTableSchema, HidesNothingForColumnsThatTheTableLacks)
{
  Target()
      .Table("Info", {{"Parts", "Name;Missing", "LanguageDependent"}})
      .Columns("Parts", {{"Name", SQL_WVARCHAR, 50, 0}});
  EXPECT_EQ(Described(*Read(*OpenTarget(), true)), (Lines{"Name -9 50"}));
}

TEST_F(ReadTableSchema, TakesTheLanguagesOfItsOwnTableAlone)
{
  SetLanguage(1036);
  Target()
      .Table("Info", {{"Bolts", "Name;Name_fr", "LanguageDependent"}})
      .Columns("Parts", {{"Name", SQL_WVARCHAR, 50, 0}, {"Name_fr", SQL_WVARCHAR, 50, 0}});
  EXPECT_EQ(Described(*Read(*OpenTarget(), true)), (Lines{"Name -9 50", "Name_fr -9 50"}));
}

TEST_F(ReadTableSchema, OfAPatchIsReadFromThePatch)
{
  Patch().Columns("Parts", {{"Id", SQL_INTEGER, 10, 0}});
  auto patch = OpenPatch();
  EXPECT_EQ(Described(*Read(*patch)), (Lines{"Id 4 10"}));
}
