// What SQLColAttribute tells of the columns of a result, field by field.

#include "tests/driver/ConformanceTest.h"

namespace {

class ResultColumn : public ConformanceTest
{
protected:
  void SetUp() override
  {
    ConformanceTest::SetUp();
    Make(
        "CREATE TABLE [T] ([Id] COUNTER PRIMARY KEY, [Name] TEXT(20) NOT NULL, [Price] CURRENCY, "
        "[Rate] NUMERIC(12,3), [D] DATETIME, [B] BINARY(8), [Y] BYTE, [R] REAL, [F] DOUBLE, "
        "[S] SMALLINT, [L] LONG, [G] BIGINT, [C] DECIMAL(10,2), [V] VARBINARY(9), [O] LONGBINARY)");
    Make("SELECT *, [L]+1 AS [Sum], '' AS '' FROM [T]");
  }

  SQLLEN Number(SQLUSMALLINT column, SQLUSMALLINT field) const
  {
    SQLLEN value = -4711;
    EXPECT_EQ(calls.ColAttribute(stmt, column, field, value), SQL_SUCCESS) << field;
    return value;
  }

  std::string Text(SQLUSMALLINT column, SQLUSMALLINT field) const
  {
    TextBuffer text = calls.Buffer(50);
    EXPECT_EQ(calls.ColAttributeText(stmt, column, field, text), SQL_SUCCESS) << field;
    return text.Text();
  }

  // One field of all columns.
  std::vector<SQLLEN> Numbers(SQLUSMALLINT field) const
  {
    std::vector<SQLLEN> values;
    for (SQLUSMALLINT column = 1; column <= Sum; ++column)
      values.push_back(Number(column, field));
    return values;
  }

  static constexpr SQLUSMALLINT Id = 1;
  static constexpr SQLUSMALLINT Name = 2;
  static constexpr SQLUSMALLINT Price = 3;
  static constexpr SQLUSMALLINT Rate = 4;
  static constexpr SQLUSMALLINT Date = 5;
  static constexpr SQLUSMALLINT Bytes = 6;
  static constexpr SQLUSMALLINT Byte = 7;
  static constexpr SQLUSMALLINT Sum = 16;
  static constexpr SQLUSMALLINT Unnamed = 17;
};

}  // namespace

TEST_P(ResultColumn, HasItsNamesAndThoseOfItsTable)
{
  for (const SQLUSMALLINT field :
       std::initializer_list<SQLUSMALLINT>{SQL_DESC_NAME, SQL_DESC_LABEL, SQL_COLUMN_NAME}) {
    EXPECT_EQ(Text(Name, field), "Name");
    EXPECT_EQ(Text(Sum, field), "Sum");
  }
  EXPECT_EQ(Text(Name, SQL_DESC_BASE_COLUMN_NAME), "Name");
  EXPECT_EQ(Text(Name, SQL_DESC_TABLE_NAME), "T");
  EXPECT_EQ(Text(Name, SQL_DESC_BASE_TABLE_NAME), "T");
  EXPECT_EQ(Text(Sum, SQL_DESC_BASE_COLUMN_NAME), "");
  EXPECT_EQ(Text(Sum, SQL_DESC_TABLE_NAME), "");
  EXPECT_EQ(Text(Name, SQL_DESC_CATALOG_NAME), "");
  EXPECT_EQ(Text(Name, SQL_DESC_SCHEMA_NAME), "");
  EXPECT_EQ(Number(Name, SQL_DESC_UNNAMED), SQL_NAMED);
  EXPECT_EQ(Number(Unnamed, SQL_DESC_UNNAMED), SQL_UNNAMED);
}

TEST_P(ResultColumn, HasTheWordsOfItsType)
{
  EXPECT_EQ(Text(Price, SQL_DESC_TYPE_NAME), "CURRENCY");
  EXPECT_EQ(Text(Price, SQL_DESC_LOCAL_TYPE_NAME), "CURRENCY");
  const std::tuple<SQLUSMALLINT, const char*, const char*> literals[] = {
      {Name, "'", "'"}, {Date, "'", "'"}, {Bytes, "x'", "'"}, {Price, "", ""}};
  for (const auto& [column, prefix, suffix] : literals) {
    EXPECT_EQ(Text(column, SQL_DESC_LITERAL_PREFIX), prefix) << column;
    EXPECT_EQ(Text(column, SQL_DESC_LITERAL_SUFFIX), suffix) << column;
  }
}

TEST_P(ResultColumn, HasItsTypeInBothForms)
{
  EXPECT_EQ(Number(Date, SQL_DESC_CONCISE_TYPE), SQL_TYPE_TIMESTAMP);
  EXPECT_EQ(Number(Date, SQL_DESC_TYPE), SQL_DATETIME);
  EXPECT_EQ(Number(Date, SQL_DESC_DATETIME_INTERVAL_CODE), SQL_CODE_TIMESTAMP);
  EXPECT_EQ(Number(Name, SQL_DESC_TYPE), SQL_WVARCHAR);
  EXPECT_EQ(Number(Name, SQL_DESC_DATETIME_INTERVAL_CODE), 0);
}

TEST_P(ResultColumn, HasItsSizes)
{
  EXPECT_EQ(Number(Name, SQL_DESC_LENGTH), 20);
  EXPECT_EQ(Number(Name, SQL_COLUMN_PRECISION), 20);
  EXPECT_EQ(Number(Name, SQL_DESC_OCTET_LENGTH), 40);
  EXPECT_EQ(Number(Name, SQL_COLUMN_LENGTH), 40);
  EXPECT_EQ(Number(Rate, SQL_DESC_PRECISION), 12);
  EXPECT_EQ(Number(Rate, SQL_DESC_SCALE), 3);
  EXPECT_EQ(Number(Rate, SQL_COLUMN_SCALE), 3);
  EXPECT_EQ(Number(Name, SQL_DESC_SCALE), 0);
  EXPECT_EQ(Number(Date, SQL_DESC_PRECISION), 0);
  EXPECT_EQ(Number(Rate, SQL_DESC_OCTET_LENGTH), 14);
}

TEST_P(ResultColumn, IsDisplayedInAsManyCharactersAsItsLongestValueHas)
{
  EXPECT_EQ(
      Numbers(SQL_DESC_DISPLAY_SIZE),
      (std::vector<SQLLEN>{11, 20, 21, 14, 19, 16, 3, 14, 24, 6, 11, 20, 12, 18, 2147483646, 255}));
}

TEST_P(ResultColumn, TellsWhatMayBeInIt)
{
  for (const SQLUSMALLINT field :
       std::initializer_list<SQLUSMALLINT>{SQL_DESC_NULLABLE, SQL_COLUMN_NULLABLE}) {
    EXPECT_EQ(Number(Name, field), SQL_NO_NULLS);
    EXPECT_EQ(Number(Price, field), SQL_NULLABLE);
    EXPECT_EQ(Number(Sum, field), SQL_NULLABLE_UNKNOWN);
  }
  EXPECT_EQ(Number(Id, SQL_DESC_AUTO_UNIQUE_VALUE), SQL_TRUE);
  EXPECT_EQ(Number(Name, SQL_DESC_AUTO_UNIQUE_VALUE), SQL_FALSE);
  EXPECT_EQ(Number(Byte, SQL_DESC_UNSIGNED), SQL_TRUE);
  EXPECT_EQ(Number(Name, SQL_DESC_UNSIGNED), SQL_TRUE);
  EXPECT_EQ(Number(Price, SQL_DESC_UNSIGNED), SQL_FALSE);
  EXPECT_EQ(Number(Price, SQL_DESC_FIXED_PREC_SCALE), SQL_TRUE);
  EXPECT_EQ(Number(Rate, SQL_DESC_FIXED_PREC_SCALE), SQL_FALSE);
  EXPECT_EQ(Number(Name, SQL_DESC_FIXED_PREC_SCALE), SQL_FALSE);
  EXPECT_EQ(Number(Price, SQL_DESC_NUM_PREC_RADIX), 10);
  EXPECT_EQ(Number(Name, SQL_DESC_NUM_PREC_RADIX), 0);
}

TEST_P(ResultColumn, TellsWhatMayBeDoneWithIt)
{
  EXPECT_EQ(Number(Name, SQL_DESC_SEARCHABLE), SQL_PRED_SEARCHABLE);
  EXPECT_EQ(Number(Price, SQL_DESC_SEARCHABLE), SQL_PRED_BASIC);
  EXPECT_EQ(Number(Name, SQL_DESC_CASE_SENSITIVE), SQL_FALSE);
  EXPECT_EQ(Number(Name, SQL_DESC_ROWVER), SQL_FALSE);
  EXPECT_EQ(Number(Name, SQL_DESC_UPDATABLE), SQL_ATTR_READWRITE_UNKNOWN);
}

TEST_P(ResultColumn, ThatIsComputedHasTheTypeOfItsFirstValue)
{
  const std::pair<const char*, SQLSMALLINT> values[] = {{"1+1", SQL_BIGINT},
                                                        {"0.5", SQL_DOUBLE},
                                                        {"x'00'", SQL_LONGVARBINARY},
                                                        {"'a'||'b'", SQL_WVARCHAR},
                                                        {"NULL", SQL_WVARCHAR}};
  for (const auto& [expression, type] : values) {
    MakeRow(std::string("SELECT ") + expression);
    EXPECT_EQ(Number(1, SQL_DESC_CONCISE_TYPE), type) << expression;
    Make("SELECT 1");
  }
}

TEST_P(ResultColumn, OfAViewIsThatOfItsTable)
{
  calls.FreeStmt(stmt, SQL_CLOSE);
  Make("CREATE VIEW [W] AS SELECT [Name] FROM [T]");
  Make("SELECT * FROM [W]");
  EXPECT_EQ(Number(1, SQL_DESC_CONCISE_TYPE), SQL_WVARCHAR);
  EXPECT_EQ(Number(1, SQL_DESC_LENGTH), 20);
}

INSTANTIATE_TEST_SUITE_P(Each, ResultColumn, StraightWays(), WayName);
