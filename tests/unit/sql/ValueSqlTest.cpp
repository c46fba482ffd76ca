#include "sql/ValueSql.h"

#include "tests/unit/foundation/Texts.h"
#include "tests/unit/sql/TableRow.h"
#include "tests/unit/sql/TypeTexts.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

std::string Literal(const TableRow& row)
{
  return TextOf(ValueSql(row.Last()));
}

std::string TextLiteral(const std::string& value, int32_t type = SQL_WVARCHAR)
{
  return Literal(TableRow("T").Text("A", value, type));
}

std::string DateLiteral(SQLUSMALLINT day, SQLUSMALLINT month, SQLSMALLINT year)
{
  return Literal(TableRow("T").Date("A", day, month, year));
}

const int32_t TextTypes[] = {SQL_WLONGVARCHAR, SQL_WVARCHAR, SQL_LONGVARCHAR, SQL_VARCHAR, 99};
const int32_t IntegerTypes[] = {SQL_TINYINT, SQL_SMALLINT, SQL_INTEGER};
const int32_t NumberTypes[] = {SQL_NUMERIC, SQL_DECIMAL, SQL_FLOAT, SQL_REAL, SQL_DOUBLE};

std::string LiteralOfManyForms(int32_t type)
{
  return Literal(TableRow("T").Column("A", type).StoreManyForms());
}

}  // namespace

TEST(ValueSql, GoesByTheTypeOfTheColumn)
{
  for (int32_t type = -200; type <= 200; ++type)
    EXPECT_EQ(LiteralOfManyForms(type), TextsOfType(type).literal) << type;
}

TEST(ValueSql, OfATypeWithoutAFormIsEmptyAndNotNull)
{
  for (const int32_t type : {SQL_CHAR, SQL_WCHAR, SQL_BIGINT, SQL_BINARY, 0, 98, 65536 + 12})
    EXPECT_EQ(LiteralOfManyForms(type), "") << type;
}

TEST(ValueSql, OfTextIsInQuotesWithEachQuoteDoubled)
{
  const struct
  {
    const char* value;
    const char* literal;
  } rows[] = {{"x", "'x'"},
              {"O'Neil", "'O''Neil'"},
              {"'", "''''"},
              {"''", "''''''"},
              {"'''", "''''''''"},
              {"'front", "'''front'"},
              {"back'", "'back'''"},
              {"'a''b'", "'''a''''b'''"},
              {" ", "' '"},
              {"  two  ", "'  two  '"},
              {"null", "'null'"},
              {"NULL", "'NULL'"},
              {"[a] %s %d 100% _ * ? \"b\" `c` \\", "'[a] %s %d 100% _ * ? \"b\" `c` \\'"},
              {"a\tb\r\nc\x01\x1F\x7F", "'a\tb\r\nc\x01\x1F\x7F'"},
              {"-- ; /* */", "'-- ; /* */'"},
              {"\u00FC\u0141\u2019\uFFFD\uFEFF", "'\u00FC\u0141\u2019\uFFFD\uFEFF'"},
              {"\U0001F529'\U0010FFFF", "'\U0001F529''\U0010FFFF'"}};
  for (const int32_t type : TextTypes) {
    for (const auto& row : rows)
      EXPECT_EQ(TextLiteral(row.value, type), row.literal) << type;
  }
}

TEST(ValueSql, OfAnEmptyTextIsNull)
{
  for (const int32_t type : TextTypes)
    EXPECT_EQ(TextLiteral("", type), "NULL") << type;
}

TEST(ValueSql, OfABufferAsItWasMadeIsNullOrZero)
{
  const struct
  {
    int32_t type;
    const char* literal;
  } rows[] = {{SQL_WVARCHAR, "NULL"},
              {SQL_WLONGVARCHAR, "NULL"},
              {99, "NULL"},
              {SQL_BIT, "0"},
              {SQL_INTEGER, "0"},
              {SQL_DOUBLE, "0.000000"},
              {SQL_NUMERIC, "0.000000"},
              {SQL_TYPE_TIMESTAMP, "'0/0/0'"}};
  for (const int32_t size : {0, 1, 10, 255}) {
    for (const auto& row : rows)
      EXPECT_EQ(Literal(TableRow("T").Column("A", row.type, size)), row.literal) << row.type;
  }
}

TEST(ValueSql, OfTextWithoutABufferIsNull)
{
  for (const int32_t type : TextTypes) {
    TableRow row("T");
    TableColumn& column = row.Column("A", type).Last();
    delete[] column.valueBuffer;
    column.valueBuffer = nullptr;
    EXPECT_EQ(Literal(row), "NULL") << type;
  }
}

TEST(ValueSql, KeepsALoneHalfOfASurrogatePair)
{
  for (const wchar_t half : {wchar_t{0xD83D}, wchar_t{0xDD29}}) {
    TableRow row("T");
    const wchar_t value[] = {half, L'\'', half, L'\0'};
    memcpy(row.Column("A", SQL_WVARCHAR).Last().valueBuffer, value, sizeof(value));
    const wchar_t expected[] = {L'\'', half, L'\'', L'\'', half, L'\'', L'\0'};
    EXPECT_EQ(Literal(row), Utf8(expected));
  }
}

TEST(ValueSql, TellsCharactersByAllTheirBits)
{
  // U+2700 and U+0027 have a byte in common.
  EXPECT_EQ(TextLiteral("\u2700\u2727"), "'\u2700\u2727'");
  EXPECT_EQ(TextLiteral("\u0100"), "'\u0100'");
}

TEST(ValueSql, EndsWithTheFirstTerminator)
{
  TableRow row("T");
  const wchar_t value[] = L"ab\0cd";
  memcpy(row.Column("A", SQL_WVARCHAR).Last().valueBuffer, value, sizeof(value));
  EXPECT_EQ(Literal(row), "'ab'");
}

TEST(ValueSql, ReadsNoFurtherThanTheBufferOfAColumn)
{
  for (const int32_t size : {15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 255, 4000}) {
    for (const int32_t type : {SQL_WVARCHAR, SQL_VARCHAR, 99}) {
      TableRow row("T");
      const TableColumn& column = row.Column("A", type, size).Last();
      const auto characters = static_cast<size_t>(size) + 1;
      for (size_t i = 0; i < characters; ++i)
        column.valueBuffer[i] = i + 1 == characters ? L'y' : L'x';
      EXPECT_EQ(Literal(row), "'" + std::string(characters - 1, 'x') + "y'") << type << " " << size;
    }
  }
}

TEST(ValueSql, ReadsNoFurtherThanTheBufferOfAMemo)
{
  TableRow row("T");
  const TableColumn& column = row.Column("A", SQL_WLONGVARCHAR, 0).Last();
  for (size_t i = 0; i < 65536; ++i)
    column.valueBuffer[i] = L'\'';
  EXPECT_TRUE(Literal(row) == std::string(2 * 65536 + 2, '\''));
}

TEST(ValueSql, OfALongTextIsWhole)
{
  std::string value(60000, 'x');
  std::string doubled = value;
  for (size_t i = 59999; i < 60000; i -= 100) {
    value[i] = '\'';
    doubled.replace(i, 1, "''");
  }
  EXPECT_TRUE(TextLiteral(value, SQL_WLONGVARCHAR) == "'" + doubled + "'");
}

TEST(ValueSql, OfABitIsItsByteAsANumber)
{
  for (int value = 0; value <= 255; ++value) {
    EXPECT_EQ(Literal(TableRow("T").Bit("A", static_cast<unsigned char>(value))),
              std::to_string(value));
  }
}

TEST(ValueSql, OfABitIsOneByteOfTheBuffer)
{
  EXPECT_EQ(Literal(TableRow("T").Column("A", SQL_BIT).Store(int32_t{0x12345601})), "1");
}

TEST(ValueSql, OfAnIntegerHasThirtyTwoBitsAndASign)
{
  const struct
  {
    int32_t value;
    const char* literal;
  } rows[] = {{0, "0"},
              {7, "7"},
              {-1, "-1"},
              {-32769, "-32769"},
              {65536, "65536"},
              {1000000000, "1000000000"},
              {INT32_MAX, "2147483647"},
              {INT32_MIN, "-2147483648"},
              {INT32_MIN + 1, "-2147483647"}};
  for (const int32_t type : IntegerTypes) {
    for (const auto& row : rows)
      EXPECT_EQ(Literal(TableRow("T").Integer("A", row.value, type)), row.literal) << type;
  }
}

TEST(ValueSql, OfANumberHasSixDecimals)
{
  const struct
  {
    double value;
    const char* literal;
  } rows[] = {{2.5, "2.500000"},
              {3, "3.000000"},
              {0, "0.000000"},
              {-0.0, "-0.000000"},
              {-2.5, "-2.500000"},
              {0.1, "0.100000"},
              {0.1234567, "0.123457"},
              {0.12345649, "0.123456"},
              {0.0000004, "0.000000"},
              {-0.0000004, "-0.000000"},
              {0.9999996, "1.000000"},
              {1e15, "1000000000000000.000000"},
              {123456789.125, "123456789.125000"},
              {5e-324, "0.000000"}};
  for (const int32_t type : NumberTypes) {
    for (const auto& row : rows)
      EXPECT_EQ(Literal(TableRow("T").Number("A", row.value, type)), row.literal) << type;
  }
}

TEST(ValueSql, OfTheLargestNumberHasAllItsDigits)
{
  const std::string literal =
      Literal(TableRow("T").Number("A", -std::numeric_limits<double>::max()));
  EXPECT_EQ(literal.size(), 1 + 309 + 1 + 6u);
  EXPECT_EQ(literal.substr(0, 19), "-179769313486231570");
}

TEST(ValueSql, OfADateIsDayMonthAndYearWithoutLeadingZeros)
{
  const struct
  {
    SQLUSMALLINT day;
    SQLUSMALLINT month;
    SQLSMALLINT year;
    const char* literal;
  } rows[] = {{9, 3, 2007, "'9/3/2007'"},
              {31, 12, 1999, "'31/12/1999'"},
              {1, 1, 5, "'1/1/5'"},
              {0, 0, 0, "'0/0/0'"},
              {1, 2, -44, "'1/2/-44'"},
              {65535, 65534, 32767, "'65535/65534/32767'"},
              {32768, 40000, -32768, "'32768/40000/-32768'"}};
  for (const auto& row : rows) {
    EXPECT_EQ(DateLiteral(row.day, row.month, row.year), row.literal);
    EXPECT_EQ(Literal(TableRow("T").Date("A", row.day, row.month, row.year, SQL_TIMESTAMP)),
              row.literal);
  }
}

TEST(ValueSql, DoesNotAskForNull)
{
  TableRow row("T");
  row.Text("A", "before");
  for (const SQLLEN indicator : {SQLLEN{SQL_NULL_DATA}, SQLLEN{0}, SQLLEN{2}, SQLLEN{-4}}) {
    row.Last().indicator = indicator;
    EXPECT_EQ(Literal(row), "'before'") << indicator;
  }
}

TEST(ValueSql, HasNoRegardForFlags)
{
  TableRow row("T");
  row.Text("B", "other").Text("A", "own").Key().Nullable().Hidden().Alternate("B");
  EXPECT_EQ(Literal(row), "'own'");
}

TEST(ValueSql, LeavesTheBufferAsItWas)
{
  TableRow row("T");
  row.Text("A", "O'Neil");
  EXPECT_EQ(Literal(row), Literal(row));
  EXPECT_EQ(Utf8(row.Last().valueBuffer), "O'Neil");
}

TEST(ValueSql, IsAppendedToAStatementThatHasBegun)
{
  TableRow row("T");
  row.Text("A", "it's").Text("E", "").Integer("B", -3).Number("C", 0.5).Bit("D", 1);
  row.Date("F", 1, 2, 3).Column("G", SQL_BINARY);
  StatementText statement;
  for (int i = 0; i < row.schema.columnCount; ++i) {
    statement.Append(L"=");
    AppendValueSql(statement, *row.schema.columns[i]);
  }
  EXPECT_EQ(Utf8(statement.Text()), "='it''s'=NULL=-3=0.500000=1='1/2/3'=");
}
