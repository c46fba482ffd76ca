#include "sql/CreateTableSql.h"

#include "tests/unit/foundation/Texts.h"
#include "tests/unit/sql/TableRow.h"
#include "tests/unit/sql/TypeTexts.h"

#include <gtest/gtest.h>

namespace {

std::string Definition(const TableRow& row)
{
  return TextOf(ColumnDefinitionSql(row.Last()));
}

std::string Create(const TableRow& row)
{
  return TextOf(CreateTableSql(row.schema));
}

// One column of no word, so that nothing but the flags is told.
const char* const Formless = " NOT NULL";

}  // namespace

TEST(ColumnDefinitionSql, OfEachTypeIsItsWord)
{
  for (int32_t type = -200; type <= 200; ++type) {
    const std::string definition = TextsOfType(type).definition;
    TableRow row("T");
    EXPECT_EQ(Definition(row.Column("A", type, 7)), definition + " NOT NULL") << type;
    EXPECT_EQ(Definition(row.Nullable()), definition + " NULL") << type;
  }
}

TEST(ColumnDefinitionSql, OfATypeWithoutAWordIsTheNullClauseAlone)
{
  for (const int32_t type : {SQL_FLOAT, SQL_CHAR, SQL_WCHAR, SQL_BIGINT, SQL_BINARY, SQL_VARBINARY,
                             SQL_LONGVARBINARY, 9, 10, 91, 92, 99, SQL_GUID, 0})
    EXPECT_EQ(Definition(TableRow("T").Column("A", type)), Formless) << type;
}

TEST(ColumnDefinitionSql, HasTheSizeOfATextAsItStands)
{
  const struct
  {
    int32_t size;
    const char* definition;
  } rows[] = {{0, "[A] TEXT(0) NOT NULL"},
              {255, "[A] TEXT(255) NOT NULL"},
              {256, "[A] TEXT(256) NOT NULL"},
              {1073741823, "[A] TEXT(1073741823) NOT NULL"},
              {2147483647, "[A] TEXT(2147483647) NOT NULL"},
              {-1, "[A] TEXT(-1) NOT NULL"}};
  for (const int32_t type : {SQL_WVARCHAR, SQL_VARCHAR}) {
    for (const auto& row : rows)
      EXPECT_EQ(Definition(TableRow("T").Column("A", type, row.size)), row.definition) << type;
  }
}

TEST(ColumnDefinitionSql, HasTheNameAsItStands)
{
  const struct
  {
    const char* name;
    const char* definition;
  } rows[] = {{"Two Words", "[Two Words] LONG NOT NULL"},
              {"a]b", "[a]b] LONG NOT NULL"},
              {"[", "[[] LONG NOT NULL"},
              {"", "[] LONG NOT NULL"},
              {"O'Neil %s %d", "[O'Neil %s %d] LONG NOT NULL"},
              {"M\u00FCl\u0142\U0001F529", "[M\u00FCl\u0142\U0001F529] LONG NOT NULL"}};
  for (const auto& row : rows)
    EXPECT_EQ(Definition(TableRow("T").Column(row.name, SQL_INTEGER)), row.definition);
}

TEST(ColumnDefinitionSql, GoesByNothingButTheNullFlag)
{
  TableRow row("T");
  row.Column("A", SQL_INTEGER).Key().Hidden().Alternate("B");
  row.Last().isUnique = true;
  EXPECT_EQ(Definition(row), "[A] LONG NOT NULL");
  EXPECT_EQ(Definition(row.Nullable()), "[A] LONG NULL");
}

TEST(CreateTableSql, HasColumnsAndKey)
{
  TableRow row("T");
  row.Column("K1", SQL_VARCHAR, 50).Key().Column("K2", SQL_INTEGER).Key();
  row.Column("N", SQL_WLONGVARCHAR).Nullable();
  EXPECT_EQ(Create(row),
            "CREATE TABLE T ([K1] TEXT(50) NOT NULL ,[K2] LONG NOT NULL ,[N] MEMO NULL,"
            "PRIMARY KEY ([K1],[K2]));");
}

TEST(CreateTableSql, WithoutKeyColumnsHasNoKey)
{
  TableRow row("T");
  row.Column("K1", SQL_VARCHAR, 50).Column("K2", SQL_INTEGER);
  row.Column("N", SQL_WLONGVARCHAR).Nullable();
  EXPECT_EQ(Create(row),
            "CREATE TABLE T ([K1] TEXT(50) NOT NULL ,[K2] LONG NOT NULL ,[N] MEMO NULL);");
}

TEST(CreateTableSql, OfOneColumnThatIsTheKey)
{
  EXPECT_EQ(Create(TableRow("T").Column("K", SQL_INTEGER).Key()),
            "CREATE TABLE T ([K] LONG NOT NULL,PRIMARY KEY ([K]));");
}

TEST(CreateTableSql, OfOneColumnThatIsNoKey)
{
  EXPECT_EQ(Create(TableRow("T").Column("N", SQL_BIT)), "CREATE TABLE T ([N] BIT NOT NULL);");
}

TEST(CreateTableSql, OfNoColumnsHasNoParenthesis)
{
  EXPECT_EQ(Create(TableRow("T")), "CREATE TABLE T");
  TableRow keyed("T");
  keyed.schema.hasKey = true;
  EXPECT_EQ(Create(keyed), "CREATE TABLE T");
}

TEST(CreateTableSql, NamesTheKeyInTheOrderOfTheColumns)
{
  TableRow row("T");
  row.Column("A", SQL_BIT)
      .Column("B", SQL_BIT)
      .Key()
      .Column("C", SQL_BIT)
      .Column("D", SQL_BIT)
      .Key();
  EXPECT_EQ(Create(row),
            "CREATE TABLE T ([A] BIT NOT NULL ,[B] BIT NOT NULL ,[C] BIT NOT NULL ,"
            "[D] BIT NOT NULL,PRIMARY KEY ([B],[D]));");
}

TEST(CreateTableSql, NamesAKeyColumnOfATypeWithoutAWord)
{
  TableRow row("T");
  row.Column("A", SQL_WCHAR).Key().Column("B", SQL_BIT).Nullable();
  EXPECT_EQ(Create(row), "CREATE TABLE T ( NOT NULL ,[B] BIT NULL,PRIMARY KEY ([A]));");
}

TEST(CreateTableSql, GoesByTheKeyOfTheColumnsAlone)
{
  TableRow row("T");
  row.Column("A", SQL_BIT);
  row.Last().isUnique = true;
  row.schema.hasKey = true;
  EXPECT_EQ(Create(row), "CREATE TABLE T ([A] BIT NOT NULL);");
  EXPECT_EQ(Create(TableRow("T").Column("A", SQL_BIT).Key().Nullable()),
            "CREATE TABLE T ([A] BIT NULL,PRIMARY KEY ([A]));");
}

TEST(CreateTableSql, HasTheTablesNameBareAndAsItStands)
{
  for (const char* name : {"Two Words", "O'Neil", "[T]", "100%s", "\u0141\U0001F529", ""}) {
    EXPECT_EQ(Create(TableRow(name).Column("A", SQL_BIT)),
              std::string("CREATE TABLE ") + name + " ([A] BIT NOT NULL);");
  }
}

TEST(CreateTableSql, HasHiddenColumnsToo)
{
  EXPECT_EQ(Create(TableRow("T").Column("A", SQL_BIT).Hidden()),
            "CREATE TABLE T ([A] BIT NOT NULL);");
}

TEST(CreateTableSql, Of255ColumnsWithLongNamesIsWhole)
{
  TableRow row("T");
  std::string columns;
  std::string key;
  for (int i = 0; i < 255; ++i) {
    const std::string name = std::string(240, 'n') + std::to_string(i);
    row.Column(name, SQL_INTEGER);
    columns += (i > 0 ? " ,[" : "[") + name + "] LONG NOT NULL";
    if (i % 2 == 0) {
      row.Key();
      key += (i > 0 ? ",[" : "[") + name + "]";
    }
  }
  EXPECT_TRUE(Create(row) == "CREATE TABLE T (" + columns + ",PRIMARY KEY (" + key + "));");
}
