#include "database/QulDatabase.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"

namespace {

const OdbcRow PartsRow = {nullptr, nullptr, "Parts", "Id"};

class TableExists : public DatabaseMachine
{
};

}  // namespace

TEST_F(TableExists, IfTheCatalogueListsAColumnOfIt)
{
  Target().Columns("Parts", {{"Id", SQL_INTEGER, 10}});
  auto database = OpenTarget();
  EXPECT_TRUE(database->TableExists(L"Parts"));
  EXPECT_EQ(Diary(), (Lines{"SQLAllocHandle(STMT, dbc#1) = 0 stmt#4",
                            R"(SQLColumnsW(stmt#4, null 0, null 0, "Parts" -3, null 0) = 0)",
                            "SQLBindCol(stmt#4, 3, -8, 510, ind#1) = 0", "SQLFetch(stmt#4) = 0",
                            "SQLFreeHandle(STMT, stmt#4) = 0"}));
}

TEST_F(TableExists, IsAskedOnceForATableOfManyColumns)
{
  Target().Columns("Parts", {{"Id", SQL_INTEGER, 10}, {"Name", SQL_WVARCHAR, 255}});
  auto database = OpenTarget();
  EXPECT_TRUE(database->TableExists(L"Parts"));
  EXPECT_EQ(DiaryOf({"SQLFetch"}).size(), 1u);
}

TEST_F(TableExists, NotIfTheCatalogueHasNoSuchName)
{
  auto database = OpenTarget();
  EXPECT_FALSE(database->TableExists(L"Parts"));
  EXPECT_EQ(DiaryOf({"SQLFetch"}), (Lines{"SQLFetch(stmt#4) = 100"}));
  EXPECT_EQ(Diary().back(), "SQLFreeHandle(STMT, stmt#4) = 0");
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(TableExists, IfTheFetchFailsInAnotherWayThanByNoData)
{
  const struct
  {
    int code;
    bool exists;
  } rows[] = {{0, true}, {1, true}, {100, false}, {-1, true}, {-2, true}, {2, true}, {99, true}};
  for (const auto& row : rows) {
    Target().ColumnRows("Parts", {FetchGives(row.code, PartsRow)});
    auto database = OpenTarget();
    EXPECT_EQ(database->TableExists(L"Parts"), row.exists) << row.code;
    EXPECT_EQ(Odbc().OpenStatements(), 0) << row.code;
  }
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(TableExists, NotIfItsNameInTheCatalogueIsNullOrEmpty)
{
  for (const OdbcCell& name : {OdbcCell(nullptr), OdbcCell("")}) {
    for (const int code : SuccessCodes) {
      Target().ColumnRows("Parts", {FetchGives(code, {nullptr, nullptr, name})});
      auto database = OpenTarget();
      EXPECT_FALSE(database->TableExists(L"Parts")) << code;
    }
  }
}

TEST_F(TableExists, WithANameOfOneCharacter)
{
  Target().ColumnRows("Parts", {{nullptr, nullptr, "P"}});
  auto database = OpenTarget();
  EXPECT_TRUE(database->TableExists(L"Parts"));
}

TEST_F(TableExists, WithANameThatTheCatalogueCuts)
{
  Target().ColumnRows("Parts", {{nullptr, nullptr, Letters(400)}});
  auto database = OpenTarget();
  EXPECT_TRUE(database->TableExists(L"Parts"));
  EXPECT_EQ(DiaryOf({"SQLFetch"}), (Lines{"SQLFetch(stmt#4) = 1"}));
}

TEST_F(TableExists, NotIfTheCatalogueFails)
{
  for (const int code : FailureCodes) {
    Target().Columns("Parts", {{"Id", SQL_INTEGER, 10}}).ColumnsGive(code);
    auto database = OpenTarget();
    EXPECT_FALSE(database->TableExists(L"Parts")) << code;
    EXPECT_TRUE(DiaryOf({"SQLBindCol", "SQLFetch"}).empty()) << code;
    EXPECT_EQ(DiaryOf({"SQLFreeHandle"}).size(), 1u) << code;
  }
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(TableExists, IfTheCatalogueSucceedsWithInformation)
{
  Target().Columns("Parts", {{"Id", SQL_INTEGER, 10}}).ColumnsGive(SQL_SUCCESS_WITH_INFO);
  auto database = OpenTarget();
  EXPECT_TRUE(database->TableExists(L"Parts"));
}

TEST_F(TableExists, NotIfNoStatementCanBeAllocated)
{
  Target().Columns("Parts", {{"Id", SQL_INTEGER, 10}});
  auto database = OpenTarget();
  for (const int code : FailureCodes) {
    ClearDiary();
    FailOdbcCall("SQLAllocHandle", 1, code);
    EXPECT_FALSE(database->TableExists(L"Parts")) << code;
    EXPECT_EQ(Diary().size(), 1u) << code;
  }
}

TEST_F(TableExists, IfTheStatementIsAllocatedWithInformation)
{
  Target().Columns("Parts", {{"Id", SQL_INTEGER, 10}});
  auto database = OpenTarget();
  FailOdbcCall("SQLAllocHandle afterwards", 1, SQL_SUCCESS_WITH_INFO);
  EXPECT_TRUE(database->TableExists(L"Parts"));
}

TEST_F(TableExists, NotIfTheNameCannotBeBound)
{
  Target().Columns("Parts", {{"Id", SQL_INTEGER, 10}});
  auto database = OpenTarget();
  FailOdbcCall("SQLBindCol", 1, SQL_ERROR);
  EXPECT_FALSE(database->TableExists(L"Parts"));
  EXPECT_EQ(DiaryOf({"SQLFetch"}).size(), 1u);
}

TEST_F(TableExists, InNoUnconnectedDatabase)
{
  auto database = UnconnectedDatabase();
  EXPECT_FALSE(database->TableExists(L"Parts"));
  EXPECT_TRUE(Diary().empty());
}

TEST_F(TableExists, AsksForAnEmptyNameToo)
{
  auto database = OpenTarget();
  EXPECT_FALSE(database->TableExists(L""));
  EXPECT_EQ(DiaryOf({"SQLColumnsW"}),
            (Lines{R"(SQLColumnsW(stmt#4, null 0, null 0, "" -3, null 0) = 0)"}));
}
