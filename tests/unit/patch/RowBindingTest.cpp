// How columns are tied to a statement, so that its fetches fill their buffers.
#include "database/TableSchema.h"
#include "sql/ValueSql.h"

#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/sql/TableRow.h"
#include "tests/unit/sql/TypeTexts.h"

namespace {

class RowBinding : public DatabaseMachine
{
protected:
  void SetUp() override
  {
    database = OpenTarget();
    statement = database->AllocateStatement();
    ClearDiary();
  }

  void TearDown() override
  {
    (void)database->FreeStatement(statement);
    database.reset();
    DatabaseMachine::TearDown();
  }

  // Has a statement without bindings give these rows.
  void Select(const OdbcRows& rows)
  {
    (void)database->FreeStatement(statement);
    statement = database->AllocateStatement();
    Target().Table("Parts", rows);
    WideText query("SELECT * FROM Parts");
    EXPECT_EQ(SQLExecDirectW(statement, query.data(), SQL_NTS), SQL_SUCCESS);
  }

  std::unique_ptr<QulDatabase> database;
  SQLHSTMT statement = SQL_NULL_HSTMT;
};

// What the text "2010-03-31" is in a buffer of the type: the literal of it, and the length word.
struct Fetched
{
  int16_t bufferType;
  const char* literal;
  SQLLEN length;
};

constexpr SQLLEN Untouched = 4711;

const Fetched FetchedForms[] = {{SQL_C_WCHAR, "'2010-03-31'", 20},
                                {SQL_C_BIT, "1", 1},
                                {SQL_C_LONG, "2010", 4},
                                {SQL_C_DOUBLE, "2010.000000", 8},
                                {SQL_C_TIMESTAMP, "'31/3/2010'", sizeof(SQL_TIMESTAMP_STRUCT)},
                                {0, "", Untouched}};

Fetched FormOf(int16_t bufferType)
{
  for (const Fetched& form : FetchedForms) {
    if (form.bufferType == bufferType)
      return form;
  }
  ADD_FAILURE() << bufferType;
  return {};
}

}  // namespace

TEST_F(RowBinding, IsOfTheTypesFormAndOfTheColumnsSize)
{
  for (int32_t type = -11; type <= 99; ++type) {
    TableRow row("Parts");
    const char* const bytes = type == SQL_WLONGVARCHAR ? "131072" : "22";
    const int bufferType = TextsOfType(type).bufferType;
    ClearDiary();
    row.Column("A", type, 10).Last().BindToStatement(statement, 3);
    EXPECT_EQ(Diary().size(), 1u);
    EXPECT_EQ(Diary()[0].substr(0, Diary()[0].find(", ind")),
              "SQLBindCol(stmt#4, 3, " + std::to_string(bufferType) + ", " + bytes)
        << type;
    EXPECT_TRUE(Diary()[0].ends_with(bufferType == 0 ? " = -1" : " = 0")) << Diary()[0];
  }
}

TEST_F(RowBinding, HasTheValuesInTheBufferAndTheirLengthInTheIndicator)
{
  for (int32_t type = -11; type <= 99; ++type) {
    const Fetched form = FormOf(TextsOfType(type).bufferType);
    TableRow row("Parts");
    TableColumn& column = row.Column("A", type, 10).Last();
    column.indicator = Untouched;
    Select({{"2010-03-31"}});
    column.BindToStatement(statement, 1);
    EXPECT_EQ(SQLFetch(statement), SQL_SUCCESS) << type;
    EXPECT_EQ(TextOf(ValueSql(column)), form.literal) << type;
    EXPECT_EQ(column.indicator, form.length) << type;
  }
}

TEST_F(RowBinding, TellsTheRoomForTheSizeAndATerminator)
{
  const struct
  {
    int32_t type;
    int32_t size;
    const char* line;
  } rows[] = {{SQL_WVARCHAR, 0, "SQLBindCol(stmt#4, 1, -8, 2, ind#"},
              {SQL_WVARCHAR, 255, "SQLBindCol(stmt#4, 1, -8, 512, ind#"},
              {SQL_WVARCHAR, -1, "SQLBindCol(stmt#4, 1, -8, 131072, ind#"},
              {SQL_WVARCHAR, 2147483647, "SQLBindCol(stmt#4, 1, -8, 131072, ind#"},
              {SQL_WLONGVARCHAR, 0, "SQLBindCol(stmt#4, 1, -8, 131072, ind#"},
              {SQL_BIT, 1, "SQLBindCol(stmt#4, 1, -7, 4, ind#"},
              {SQL_INTEGER, 0, "SQLBindCol(stmt#4, 1, 4, 2, ind#"},
              {SQL_DOUBLE, 53, "SQLBindCol(stmt#4, 1, 8, 108, ind#"},
              {SQL_TYPE_TIMESTAMP, 19, "SQLBindCol(stmt#4, 1, 11, 40, ind#"},
              {SQL_WCHAR, 5, "SQLBindCol(stmt#4, 1, 0, 12, ind#"}};
  for (const auto& row : rows) {
    TableRow table("Parts");
    ClearDiary();
    table.Column("A", row.type, row.size).Last().BindToStatement(statement, 1);
    EXPECT_EQ(Diary()[0].substr(0, strlen(row.line)), row.line);
  }
}

TEST_F(RowBinding, OfATableNumbersAllItsColumnsFromOne)
{
  TableRow row("Parts");
  row.Integer("Id", 0).Key().Text("Name", "").Hidden().Column("Code", SQL_WCHAR, 5);
  row.Column("Note", SQL_WLONGVARCHAR).Column("Made", SQL_TYPE_TIMESTAMP, 19);
  row.schema.BindAll(statement);
  EXPECT_EQ(Diary(), (Lines{"SQLBindCol(stmt#4, 1, 4, 22, ind#1) = 0",
                            "SQLBindCol(stmt#4, 2, -8, 2, ind#2) = 0",
                            "SQLBindCol(stmt#4, 3, 0, 12, ind#3) = -1",
                            "SQLBindCol(stmt#4, 4, -8, 131072, ind#4) = 0",
                            "SQLBindCol(stmt#4, 5, 11, 40, ind#5) = 0"}));
}

TEST_F(RowBinding, OfATableWithoutColumnsIsNone)
{
  TableRow("Parts").schema.BindAll(statement);
  EXPECT_TRUE(Diary().empty());
}

TEST_F(RowBinding, OfATableGoesUpToItsLastColumn)
{
  TableRow row("Parts");
  for (int i = 0; i < TableSchema::Capacity; ++i)
    row.Integer("C" + std::to_string(i), 0);
  row.schema.BindAll(statement);
  ASSERT_EQ(Diary().size(), 255u);
  EXPECT_EQ(Diary()[254], "SQLBindCol(stmt#4, 255, 4, 22, ind#255) = 0");
}

TEST_F(RowBinding, GoesOnAfterAColumnThatCannotBeBound)
{
  for (const int code : FailureCodes) {
    TableRow row("Parts");
    row.Column("A", SQL_INTEGER).Column("B", SQL_INTEGER).Column("C", SQL_INTEGER);
    Select({{1, 2, 3}});
    FailOdbcCall("SQLBindCol", 2, code);
    row.schema.BindAll(statement);
    EXPECT_EQ(SQLFetch(statement), SQL_SUCCESS);
    EXPECT_EQ(TextOf(ValueSql(*row.schema.columns[0])), "1") << code;
    EXPECT_EQ(TextOf(ValueSql(*row.schema.columns[2])), "3") << code;
  }
}

TEST_F(RowBinding, OverwritesTheBufferWithEachRow)
{
  TableRow row("Parts");
  row.Column("A", SQL_WVARCHAR, 30).Column("B", SQL_INTEGER);
  Select({{"a long beginning", 70000}, {"b", 2}});
  row.schema.BindAll(statement);
  EXPECT_EQ(SQLFetch(statement), SQL_SUCCESS);
  EXPECT_EQ(SQLFetch(statement), SQL_SUCCESS);
  EXPECT_EQ(TextOf(ValueSql(*row.schema.columns[0])), "'b'");
  EXPECT_EQ(TextOf(ValueSql(*row.schema.columns[1])), "2");
}

TEST_F(RowBinding, LeavesTheBufferForANull)
{
  TableRow row("Parts");
  row.Column("A", SQL_WVARCHAR, 30).Column("B", SQL_INTEGER);
  Select({{"x", 7}, {nullptr, nullptr}});
  row.schema.BindAll(statement);
  EXPECT_EQ(SQLFetch(statement), SQL_SUCCESS);
  EXPECT_EQ(SQLFetch(statement), SQL_SUCCESS);
  EXPECT_EQ(TextOf(ValueSql(*row.schema.columns[0])), "'x'");
  EXPECT_EQ(TextOf(ValueSql(*row.schema.columns[1])), "7");
  EXPECT_EQ(row.Last().indicator, SQL_NULL_DATA);
}
