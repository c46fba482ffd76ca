#include "database/QulDatabase.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"

namespace {

OdbcRow NamedRow(const OdbcCell& name)
{
  return {nullptr, nullptr, name, "TABLE", nullptr};
}

class TableNames : public DatabaseMachine
{
};

}  // namespace

TEST_F(TableNames, AreThoseOfTheCatalogueInItsOrder)
{
  Target().Tables({"Bolts", "anchors", "Sections"});
  auto database = OpenTarget();
  EXPECT_EQ(TextsOf(database->GetTableNames()), (Lines{"Bolts", "anchors", "Sections"}));
}

TEST_F(TableNames, AreAskedForByTypeAndBoundByPosition)
{
  Target().Tables({"Bolts"});
  auto database = OpenTarget();
  (void)database->GetTableNames();
  EXPECT_EQ(Diary(), (Lines{"SQLAllocHandle(STMT, dbc#1) = 0 stmt#4",
                            R"(SQLTablesW(stmt#4, null 0, null 0, null 0, "TABLE" 5) = 0)",
                            "SQLBindCol(stmt#4, 1, -8, 258, ind#1) = 0",
                            "SQLBindCol(stmt#4, 2, -8, 258, ind#2) = 0",
                            "SQLBindCol(stmt#4, 3, -8, 258, ind#3) = 0",
                            "SQLBindCol(stmt#4, 4, -8, 258, ind#4) = 0",
                            "SQLBindCol(stmt#4, 5, -8, 510, ind#5) = 0", "SQLFetch(stmt#4) = 0",
                            "SQLFetch(stmt#4) = 100"}));
}

TEST_F(TableNames, KeepTheirStatementUntilTheConnectionGoes)
{
  Target().Tables({"Bolts"});
  auto database = OpenTarget();
  (void)database->GetTableNames();
  EXPECT_EQ(Odbc().OpenStatements(), 1);
  database.reset();
  EXPECT_EQ(Odbc().OpenStatements(), 0);
}

TEST_F(TableNames, KeepTheirStatementOnEachPathThatHasOne)
{
  const struct
  {
    const char* function;
    int call;
    int code;
  } rows[] = {{"SQLTablesW", 1, SQL_ERROR},
              {"SQLBindCol", 5, SQL_NO_DATA},
              {"SQLFetch", 1, SQL_ERROR},
              {"SQLFetch", 1, SQL_NO_DATA},
              {"SQLFetch", 1, SQL_INVALID_HANDLE}};
  for (const auto& row : rows) {
    auto database = OpenTarget();
    FailOdbcCall(row.function, row.call, row.code);
    EXPECT_EQ(database->GetTableNames().count, 0) << row.function;
    EXPECT_EQ(Odbc().OpenStatements(), 1) << row.function << " " << row.code;
  }
}

TEST_F(TableNames, AreAskedForOnce)
{
  Target().Tables({"Bolts"});
  auto database = OpenTarget();
  (void)database->GetTableNames();
  ClearDiary();
  EXPECT_EQ(TextsOf(database->GetTableNames()), (Lines{"Bolts"}));
  EXPECT_TRUE(Diary().empty());
}

TEST_F(TableNames, AreAskedForAgainAsLongAsThereIsNone)
{
  auto database = OpenTarget();
  EXPECT_EQ(database->GetTableNames().count, 0);
  EXPECT_EQ(database->GetTableNames().count, 0);
  EXPECT_EQ(DiaryOf({"SQLTablesW"}).size(), 2u);
  Target().Tables({"Bolts"});
  EXPECT_EQ(TextsOf(database->GetTableNames()), (Lines{"Bolts"}));
}

TEST_F(TableNames, AreTheListOfTheObject)
{
  Target().Tables({"Bolts"});
  auto database = OpenTarget();
  EXPECT_EQ(&database->GetTableNames(), &database->tableNames);
}

TEST_F(TableNames, AreNotAskedOfAnUnconnectedDatabase)
{
  auto database = UnconnectedDatabase();
  EXPECT_EQ(database->GetTableNames().count, 0);
  EXPECT_TRUE(Diary().empty());
}

TEST_F(TableNames, AreReadOnlyAfterAPlainSuccessOfTheAllocation)
{
  for (const int code : {1, 100, -1, -2, 2}) {
    Target().Tables({"Bolts"});
    auto database = OpenTarget();
    FailOdbcCall("SQLAllocHandle afterwards", 1, code);
    EXPECT_EQ(database->GetTableNames().count, 0) << code;
    EXPECT_EQ(Diary().size(), 1u) << code;
    EXPECT_EQ(Odbc().OpenStatements(), 1) << code;
  }
}

TEST_F(TableNames, AreReadOnlyAfterAPlainSuccessOfTheCatalogue)
{
  for (const int code : {1, 100, -1, -2, 2}) {
    Target().Tables({"Bolts"}, code);
    auto database = OpenTarget();
    EXPECT_EQ(database->GetTableNames().count, 0) << code;
    EXPECT_TRUE(DiaryOf({"SQLBindCol", "SQLFetch", "SQLFreeHandle"}).empty()) << code;
  }
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(TableNames, AreReadThoughABindingFailsOtherThanByNoData)
{
  Target().Tables({"Bolts"});
  for (const int code : {1, -1, -2}) {
    auto database = OpenTarget();
    FailOdbcCall("SQLBindCol afterwards", 5, code);
    EXPECT_EQ(TextsOf(database->GetTableNames()), (Lines{"Bolts"})) << code;
  }
}

TEST_F(TableNames, AreReadThoughAnEarlierBindingHasNoData)
{
  Target().Tables({"Bolts"});
  for (const int call : {1, 2, 4}) {
    auto database = OpenTarget();
    FailOdbcCall("SQLBindCol", call, SQL_NO_DATA);
    EXPECT_EQ(TextsOf(database->GetTableNames()), (Lines{"Bolts"})) << call;
  }
}

TEST_F(TableNames, AreNotReadIfTheLastBindingHasNoData)
{
  Target().Tables({"Bolts"});
  auto database = OpenTarget();
  FailOdbcCall("SQLBindCol afterwards", 5, SQL_NO_DATA);
  EXPECT_EQ(database->GetTableNames().count, 0);
  EXPECT_TRUE(DiaryOf({"SQLFetch"}).empty());
}

TEST_F(TableNames, EndWithAnErrorOrNoDataAndKeepThoseBefore)
{
  for (const int code : {SQL_ERROR, SQL_NO_DATA, SQL_INVALID_HANDLE}) {
    Target().TableRows({NamedRow("Bolts"), FetchGives(code), NamedRow("Sections")});
    auto database = OpenTarget();
    EXPECT_EQ(TextsOf(database->GetTableNames()), (Lines{"Bolts"})) << code;
    EXPECT_EQ(DiaryOf({"SQLFetch"}).size(), 2u) << code;
  }
}

TEST_F(TableNames, GoOnAfterAnyOtherCode)
{
  for (const int code : {SQL_SUCCESS_WITH_INFO, SQL_STILL_EXECUTING, SQL_NEED_DATA}) {
    Target().TableRows({NamedRow("Bolts"), FetchGives(code), NamedRow("Sections")});
    auto database = OpenTarget();
    EXPECT_EQ(TextsOf(database->GetTableNames()), (Lines{"Bolts", "Bolts", "Sections"})) << code;
  }
}

TEST_F(TableNames, RepeatTheOneBeforeANull)
{
  Target().TableRows({NamedRow("Bolts"), NamedRow(nullptr), NamedRow("Sections")});
  auto database = OpenTarget();
  EXPECT_EQ(TextsOf(database->GetTableNames()), (Lines{"Bolts", "Bolts", "Sections"}));
}

TEST_F(TableNames, AreEmptyForANullAtTheStart)
{
  Target().TableRows({NamedRow(nullptr), NamedRow("Bolts")});
  auto database = OpenTarget();
  SoilStack();
  EXPECT_EQ(TextsOf(database->GetTableNames()), (Lines{"", "Bolts"}));
}

TEST_F(TableNames, AreCutTo128Characters)
{
  Target().Tables({Letters(128), Letters(129, 'y'), Letters(2000, 'z')});
  auto database = OpenTarget();
  EXPECT_EQ(TextsOf(database->GetTableNames()),
            (Lines{Letters(128), Letters(128, 'y'), Letters(128, 'z')}));
}

TEST_F(TableNames, AreReadBesideLongTextsInTheOtherColumns)
{
  const std::string text = Letters(3000, 'c');
  Target().TableRows({{text, text, "Bolts", text, text}});
  auto database = OpenTarget();
  EXPECT_EQ(TextsOf(database->GetTableNames()), (Lines{"Bolts"}));
}

TEST_F(TableNames, AreAsManyAsThereAre)
{
  std::vector<std::string> names;
  for (int i = 0; i < 300; ++i)
    names.push_back("Table" + std::to_string(i));
  Target().Tables(names);
  auto database = OpenTarget();
  EXPECT_EQ(TextsOf(database->GetTableNames()), names);
}
