#include <algorithm>

#include "tests/driver/ConformanceTest.h"

namespace {

// One type as the catalogue tells it: DATA_TYPE|COLUMN_SIZE|BUFFER_LENGTH|DECIMAL_DIGITS|
// NUM_PREC_RADIX|SQL_DATA_TYPE|SQL_DATETIME_SUB|CHAR_OCTET_LENGTH
struct DeclaredType
{
  const char* declaration;
  const char* catalogue;
};

const DeclaredType DeclaredTypes[] = {
    {"TEXT(50)", "-9|50|100|NULL|NULL|-9|NULL|100"},
    {"TEXT", "-9|255|510|NULL|NULL|-9|NULL|510"},
    {"VARCHAR(10)", "-9|10|20|NULL|NULL|-9|NULL|20"},
    {"VARCHAR", "-9|255|510|NULL|NULL|-9|NULL|510"},
    {"MEMO", "-10|1073741823|2147483646|NULL|NULL|-10|NULL|2147483646"},
    {"BIT", "-7|1|1|0|NULL|-7|NULL|NULL"},
    {"BYTE", "-6|3|1|0|10|-6|NULL|NULL"},
    {"SMALLINT", "5|5|2|0|10|5|NULL|NULL"},
    {"LONG", "4|10|4|0|10|4|NULL|NULL"},
    {"INTEGER", "4|10|4|0|10|4|NULL|NULL"},
    {"COUNTER", "4|10|4|0|10|4|NULL|NULL"},
    {"REAL", "7|7|4|NULL|10|7|NULL|NULL"},
    {"DOUBLE", "8|15|8|NULL|10|8|NULL|NULL"},
    {"DECIMAL(10,2)", "3|10|12|2|10|3|NULL|NULL"},
    {"CURRENCY", "2|19|21|4|10|2|NULL|NULL"},
    {"NUMERIC(12,3)", "2|12|14|3|10|2|NULL|NULL"},
    {"DATE", "93|19|16|0|NULL|9|3|NULL"},
    {"DATETIME", "93|19|16|0|NULL|9|3|NULL"},
    {"CHAR(5)", "-8|5|10|NULL|NULL|-8|NULL|10"},
    {"BINARY(8)", "-2|8|8|NULL|NULL|-2|NULL|8"},
    {"VARBINARY(8)", "-3|8|8|NULL|NULL|-3|NULL|8"},
    {"LONGBINARY", "-4|1073741823|1073741823|NULL|NULL|-4|NULL|1073741823"},
};

const SQLUSMALLINT TypeFields[] = {5, 7, 8, 9, 10, 14, 15, 16};

class Type : public ConformanceTest
{
protected:
  void MakeTypedTable()
  {
    std::string columns;
    int number = 0;
    for (const DeclaredType& type : DeclaredTypes) {
      columns += (number == 0 ? "[c" : ",[c") + std::to_string(number) + "] " + type.declaration;
      ++number;
    }
    Make("CREATE TABLE [Typed] (" + columns + ")");
  }

  // The current row's fields by their numbers, with | between.
  template <size_t Count>
  std::string Fields(const SQLUSMALLINT (&numbers)[Count]) const
  {
    std::string line;
    for (SQLUSMALLINT number : numbers)
      line += (line.empty() ? "" : "|") + session.Field(number);
    return line;
  }

  // COLUMN_NAME|NULLABLE|IS_NULLABLE of each column.
  Lines Nullability(const std::string& table)
  {
    calls.FreeStmt(stmt, SQL_CLOSE);
    EXPECT_EQ(calls.Columns(stmt, table, std::nullopt), SQL_SUCCESS);
    Lines lines;
    while (SQL_SUCCEEDED(calls.Fetch(stmt)))
      lines.push_back(Fields({4, 11, 18}));
    return lines;
  }
};

}  // namespace

TEST_P(Type, IsReportedFromItsDeclaration)
{
  MakeTypedTable();
  calls.FreeStmt(stmt, SQL_CLOSE);
  ASSERT_EQ(calls.Columns(stmt, "Typed", "%"), SQL_SUCCESS);
  int number = 0;
  for (const DeclaredType& type : DeclaredTypes) {
    ASSERT_EQ(calls.Fetch(stmt), SQL_SUCCESS) << type.declaration;
    EXPECT_EQ(session.Field(4), "c" + std::to_string(number++));
    EXPECT_EQ(Fields(TypeFields), type.catalogue) << type.declaration;
    EXPECT_EQ(session.Field(17), std::to_string(number)) << type.declaration;
  }
  EXPECT_EQ(calls.Fetch(stmt), SQL_NO_DATA);
}

TEST_P(Type, OfAResultColumnIsThatOfTheTable)
{
  MakeTypedTable();
  Make("SELECT * FROM [Typed]");
  SQLUSMALLINT number = 0;
  for (const DeclaredType& type : DeclaredTypes) {
    ColumnDescription column = {};
    ASSERT_EQ(calls.DescribeCol(stmt, ++number, column), SQL_SUCCESS);
    const std::string expected = type.catalogue;
    EXPECT_EQ(std::to_string(column.type) + "|" + std::to_string(column.size) + "|",
              expected.substr(0, expected.find('|', expected.find('|') + 1) + 1))
        << type.declaration;
    EXPECT_EQ(column.name, "c" + std::to_string(number - 1));
    EXPECT_EQ(column.nameLength, static_cast<SQLSMALLINT>(column.name.size()));
    SQLLEN concise = 0;
    EXPECT_EQ(calls.ColAttribute(stmt, number, SQL_DESC_CONCISE_TYPE, concise), SQL_SUCCESS);
    EXPECT_EQ(concise, column.type);
  }
}

TEST_P(Type, InfoAgreesWithTheColumns)
{
  MakeTypedTable();
  const SQLUSMALLINT infoFields[] = {2, 16, 17, 18};  // DATA_TYPE, SQL_DATA_TYPE, SUB, RADIX
  const SQLUSMALLINT columnFields[] = {5, 14, 15, 10};
  Lines known;
  ASSERT_EQ(calls.FreeStmt(stmt, SQL_CLOSE), SQL_SUCCESS);
  ASSERT_EQ(calls.GetTypeInfo(stmt, SQL_ALL_TYPES), SQL_SUCCESS);
  while (SQL_SUCCEEDED(calls.Fetch(stmt)))
    known.push_back(Fields(infoFields));
  calls.FreeStmt(stmt, SQL_CLOSE);
  ASSERT_EQ(calls.Columns(stmt, "Typed", "%"), SQL_SUCCESS);
  for (const DeclaredType& type : DeclaredTypes) {
    ASSERT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
    EXPECT_NE(std::find(known.begin(), known.end(), Fields(columnFields)), known.end())
        << type.declaration << " is told as " << Fields(columnFields);
  }
}

TEST_P(Type, InfoNamesTheTypesThatColumnsAreToldToHave)
{
  MakeTypedTable();
  Lines told;
  Lines known;
  calls.FreeStmt(stmt, SQL_CLOSE);
  ASSERT_EQ(calls.Columns(stmt, "Typed", "%"), SQL_SUCCESS);
  while (SQL_SUCCEEDED(calls.Fetch(stmt)))
    told.push_back(Fields({5, 6}));
  calls.FreeStmt(stmt, SQL_CLOSE);
  ASSERT_EQ(calls.GetTypeInfo(stmt, SQL_ALL_TYPES), SQL_SUCCESS);
  while (SQL_SUCCEEDED(calls.Fetch(stmt))) {
    const std::string name = session.Field(1);
    known.push_back(session.Field(2) + "|" + name);
  }
  for (const std::string& type : told)
    EXPECT_NE(std::find(known.begin(), known.end(), type), known.end()) << type;
}

TEST_P(Type, NamesOfInfoCreateColumnsOfThatType)
{
  ASSERT_EQ(calls.GetTypeInfo(stmt, SQL_ALL_TYPES), SQL_SUCCESS);
  std::vector<std::pair<std::string, std::string>> types;
  while (SQL_SUCCEEDED(calls.Fetch(stmt))) {
    const std::string name = session.Field(1);
    types.emplace_back(name, session.Field(2));
  }
  EXPECT_GE(types.size(), 15U);
  for (const auto& [name, number] : types) {
    Make("CREATE TABLE [Made] ([A] " + name + ")");
    calls.FreeStmt(stmt, SQL_CLOSE);
    ASSERT_EQ(calls.Columns(stmt, "Made", std::nullopt), SQL_SUCCESS);
    ASSERT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
    EXPECT_EQ(session.Field(5), number) << name;
    Make("DROP TABLE [Made]");
  }
}

TEST_P(Type, InfoOfOneTypeIsOfThatAlone)
{
  ASSERT_EQ(calls.GetTypeInfo(stmt, SQL_WVARCHAR), SQL_SUCCESS);
  int rows = 0;
  for (; SQL_SUCCEEDED(calls.Fetch(stmt)); ++rows)
    EXPECT_EQ(session.Field(2), "-9");
  EXPECT_GE(rows, 1);
  calls.FreeStmt(stmt, SQL_CLOSE);
  ASSERT_EQ(calls.GetTypeInfo(stmt, SQL_GUID), SQL_SUCCESS);
  EXPECT_EQ(calls.Fetch(stmt), SQL_NO_DATA);
}

TEST_P(Type, InfoIsOrderedByType)
{
  ASSERT_EQ(calls.GetTypeInfo(stmt, SQL_ALL_TYPES), SQL_SUCCESS);
  int before = -1000;
  while (SQL_SUCCEEDED(calls.Fetch(stmt))) {
    const int type = std::stoi(session.Field(2));
    EXPECT_LE(before, type);
    before = type;
  }
  EXPECT_EQ(before, SQL_TYPE_TIMESTAMP);
}

TEST_P(Type, NotNullAndKeyColumnsAreNotNullable)
{
  Make("CREATE TABLE [A] ([K] LONG PRIMARY KEY, [N] TEXT(5) NOT NULL, [P] TEXT(5), [Q] MEMO NULL)");
  EXPECT_EQ(Nullability("A"), (Lines{"K|0|NO", "N|0|NO", "P|1|YES", "Q|1|YES"}));
  Make("CREATE TABLE [B] ([P] LONG, [K] TEXT(5), [L] LONG, PRIMARY KEY ([K],[L]))");
  EXPECT_EQ(Nullability("B"), (Lines{"P|1|YES", "K|0|NO", "L|0|NO"}));
  Make("CREATE TABLE [C] ([K] TEXT(5) CONSTRAINT [pk] PRIMARY KEY, [C] COUNTER)");
  EXPECT_EQ(Nullability("C").front(), "K|0|NO");
}

TEST_P(Type, NullabilityOfAResultColumnIsThatOfTheTable)
{
  Make("CREATE TABLE [A] ([K] LONG PRIMARY KEY, [N] TEXT(5) NOT NULL, [P] TEXT(5))");
  Make("SELECT * FROM [A]");
  const SQLSMALLINT expected[] = {SQL_NO_NULLS, SQL_NO_NULLS, SQL_NULLABLE};
  for (SQLUSMALLINT number = 1; number <= 3; ++number) {
    ColumnDescription column = {};
    ASSERT_EQ(calls.DescribeCol(stmt, number, column), SQL_SUCCESS);
    EXPECT_EQ(column.nullable, expected[number - 1]) << column.name;
  }
}

TEST_P(Type, DeclarationsMatchWithoutRegardToCaseAndBlanks)
{
  Make("CREATE TABLE [A] ([a] text ( 50 ), [b] Memo, [c] LoNg not null, [d] datetime)");
  calls.FreeStmt(stmt, SQL_CLOSE);
  ASSERT_EQ(calls.Columns(stmt, "A", std::nullopt), SQL_SUCCESS);
  Lines types;
  while (SQL_SUCCEEDED(calls.Fetch(stmt)))
    types.push_back(Fields({5, 7}));
  EXPECT_EQ(types, (Lines{"-9|50", "-10|1073741823", "4|10", "93|19"}));
}

TEST_P(Type, AddedColumnIsReportedAsACreatedOne)
{
  Make("CREATE TABLE [A] ([a] LONG)");
  Make("ALTER TABLE [A] ADD COLUMN [b] TEXT(7)");
  Make("alter table A add c MEMO");
  calls.FreeStmt(stmt, SQL_CLOSE);
  ASSERT_EQ(calls.Columns(stmt, "A", std::nullopt), SQL_SUCCESS);
  Lines types;
  while (SQL_SUCCEEDED(calls.Fetch(stmt)))
    types.push_back(Fields({4, 5, 7}));
  EXPECT_EQ(types, (Lines{"a|4|10", "b|-9|7", "c|-10|1073741823"}));
}

TEST_P(Type, NameOfAResultColumnIsCutWithAWarning)
{
  Make("SELECT 1 AS [LongName]");
  TextBuffer name = calls.Buffer(5);
  SQLSMALLINT length = 0;
  EXPECT_EQ(calls.DescribeCol(stmt, 1, name, length), SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(session.State(), "01004");
  EXPECT_EQ(name.Text(), "Long");
  EXPECT_EQ(length, 8);
  EXPECT_TRUE(name.IsKeptInside());
}

TEST_P(Type, AttributesOfAResultColumnAreTold)
{
  Make("CREATE TABLE [A] ([K] LONG PRIMARY KEY, [N] TEXT(5))");
  Make("SELECT [N] AS [Alias],[K] FROM [A]");
  TextBuffer label = calls.Buffer(20);
  EXPECT_EQ(calls.ColAttributeText(stmt, 1, SQL_DESC_LABEL, label), SQL_SUCCESS);
  EXPECT_EQ(label.Text(), "Alias");
  SQLLEN value = -1;
  EXPECT_EQ(calls.ColAttribute(stmt, 1, SQL_DESC_COUNT, value), SQL_SUCCESS);
  EXPECT_EQ(value, 2);
  EXPECT_EQ(calls.ColAttribute(stmt, 1, SQL_DESC_LENGTH, value), SQL_SUCCESS);
  EXPECT_EQ(value, 5);
  EXPECT_EQ(calls.ColAttribute(stmt, 1, SQL_DESC_NULLABLE, value), SQL_SUCCESS);
  EXPECT_EQ(value, SQL_NULLABLE);
  EXPECT_EQ(calls.ColAttribute(stmt, 2, SQL_DESC_UNSIGNED, value), SQL_SUCCESS);
  EXPECT_EQ(value, SQL_FALSE);
  EXPECT_EQ(calls.ColAttribute(stmt, 2, SQL_DESC_DISPLAY_SIZE, value), SQL_SUCCESS);
  EXPECT_EQ(value, 11);
}

TEST_P(Type, ResultColumnBeyondTheLastIsAnError)
{
  Make("SELECT 1");
  ColumnDescription column = {};
  EXPECT_EQ(calls.DescribeCol(stmt, 2, column), SQL_ERROR);
  EXPECT_EQ(session.State(), "07009");
}

INSTANTIATE_TEST_SUITE_P(Each, Type, AllWays(), WayName);
