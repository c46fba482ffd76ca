// Drivers tell anything about sizes. Whatever it is, a value that is fetched into a column's buffer
// must find its room there: the sanitizers watch each one being written.
#include "database/QulDatabase.h"
#include "database/TableSchema.h"

#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"

#include <string.h>

#include <algorithm>

namespace {

const char* const Query = "SELECT * FROM Parts";

// The buffer type that rows of this type are fetched by; 0 for those that are not.
SQLSMALLINT BufferType(int sqlType)
{
  switch (sqlType) {
    case SQL_WLONGVARCHAR:
    case SQL_WVARCHAR:
    case SQL_LONGVARCHAR:
    case SQL_VARCHAR:
    case 99: return SQL_C_WCHAR;
    case SQL_BIT: return SQL_C_BIT;
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER: return SQL_C_LONG;
    case SQL_NUMERIC:
    case SQL_DECIMAL:
    case SQL_FLOAT:
    case SQL_REAL:
    case SQL_DOUBLE: return SQL_C_DOUBLE;
    case SQL_TIMESTAMP:
    case SQL_TYPE_TIMESTAMP: return SQL_C_TIMESTAMP;
    default: return 0;
  }
}

// Fetches one row into the buffers of the schema, as the code that patches rows does.
SQLRETURN FetchInto(const TableSchema& schema, const QulDatabase& database)
{
  SQLHSTMT statement = SQL_NULL_HSTMT;
  (void)SQLAllocHandle(SQL_HANDLE_STMT, database.connectionHandle, &statement);
  (void)SQLExecDirectW(statement, WideText(Query).data(), SQL_NTS);
  for (int i = 0; i < schema.columnCount; ++i) {
    TableColumn& column = *schema.columns[i];
    (void)SQLBindCol(statement, static_cast<SQLUSMALLINT>(i + 1), BufferType(column.sqlType),
                     column.valueBuffer, column.BufferBytes(), &column.indicator);
  }
  const SQLRETURN code = SQLFetch(statement);
  (void)database.FreeStatement(statement);
  return code;
}

template <typename Value>
Value ValueOf(const TableColumn& column)
{
  Value value;
  memcpy(&value, column.valueBuffer, sizeof(value));
  return value;
}

const OdbcCell ReportedSizes[] = {nullptr, 0, 1, 3, 10, 255, 65535, 524287, 524288, -1, 2147483647};

class CatalogueSizes : public DatabaseMachine
{
protected:
  // A column of this description, holding the value after one fetch.
  static std::unique_ptr<TableSchema> Fetch(int sqlType, const OdbcCell& size,
                                            const OdbcCell& value)
  {
    Target().Columns("Parts", {{"A", sqlType, size}}).Query(Query, {{value}});
    auto database = OpenTarget();
    std::unique_ptr<TableSchema> schema(database->ReadTableSchema(L"Parts", false));
    (void)FetchInto(*schema, *database);
    return schema;
  }
};

}  // namespace

TEST_F(CatalogueSizes, LeaveRoomForANumberOfAnyIntegerType)
{
  for (const int type : {SQL_INTEGER, SQL_SMALLINT, SQL_TINYINT}) {
    for (const OdbcCell& size : ReportedSizes) {
      const auto schema = Fetch(type, size, 70000);
      EXPECT_EQ(ValueOf<int32_t>(*schema->columns[0]), 70000) << type << " " << size.Text();
    }
  }
}

TEST_F(CatalogueSizes, LeaveRoomForANumberOfAnyFractionalType)
{
  for (const int type : {SQL_NUMERIC, SQL_DECIMAL, SQL_FLOAT, SQL_REAL, SQL_DOUBLE}) {
    for (const OdbcCell& size : ReportedSizes) {
      const auto schema = Fetch(type, size, 0.25);
      EXPECT_EQ(ValueOf<double>(*schema->columns[0]), 0.25) << type << " " << size.Text();
    }
  }
}

TEST_F(CatalogueSizes, LeaveRoomForATimestamp)
{
  for (const int type : {SQL_TIMESTAMP, SQL_TYPE_TIMESTAMP}) {
    for (const OdbcCell& size : ReportedSizes) {
      const auto schema = Fetch(type, size, "2010-03-31 12:30:15");
      const auto value = ValueOf<SQL_TIMESTAMP_STRUCT>(*schema->columns[0]);
      EXPECT_EQ(value.year, 2010) << type << " " << size.Text();
      EXPECT_EQ(value.month, 3);
      EXPECT_EQ(value.day, 31);
      EXPECT_EQ(value.hour, 12);
      EXPECT_EQ(value.minute, 30);
      EXPECT_EQ(value.second, 15);
      EXPECT_EQ(value.fraction, 0u);
    }
  }
}

TEST_F(CatalogueSizes, LeaveRoomForABit)
{
  for (const OdbcCell& size : ReportedSizes) {
    const auto schema = Fetch(SQL_BIT, size, 1);
    EXPECT_EQ(ValueOf<unsigned char>(*schema->columns[0]), 1) << size.Text();
  }
}

TEST_F(CatalogueSizes, CutATextToWhatTheDriverIsTold)
{
  const struct
  {
    OdbcCell size;
    size_t characters;
  } rows[] = {{nullptr, 0},   {0, 0},          {1, 1},      {10, 10},           {255, 255},
              {65535, 65535}, {524288, 65535}, {-1, 65535}, {2147483647, 65535}};
  for (const auto& row : rows) {
    for (const int type : {SQL_WVARCHAR, SQL_VARCHAR, SQL_LONGVARCHAR, 99}) {
      const auto schema = Fetch(type, row.size, Letters(70000));
      EXPECT_TRUE(Utf8(schema->columns[0]->valueBuffer) ==
                  Letters(static_cast<int>(row.characters)))
          << type << " " << row.size.Text();
    }
  }
}

TEST_F(CatalogueSizes, CutAMemoTo65535CharactersWhateverTheyAre)
{
  for (const OdbcCell& size : ReportedSizes) {
    const auto schema = Fetch(SQL_WLONGVARCHAR, size, Letters(70000));
    EXPECT_EQ(wcslen(schema->columns[0]->valueBuffer), 65535u) << size.Text();
  }
}

TEST_F(CatalogueSizes, LeaveTheBufferOfOtherTypesAlone)
{
  for (const int type : {SQL_CHAR, SQL_WCHAR, SQL_BIGINT, SQL_BINARY, SQL_GUID, 0, 98}) {
    for (const OdbcCell& size : ReportedSizes) {
      const auto schema = Fetch(type, size, "1234");
      EXPECT_EQ(ValueOf<unsigned char>(*schema->columns[0]), 0) << type << " " << size.Text();
    }
  }
}

TEST_F(CatalogueSizes, LeaveRoomForAValueOfEachType)
{
  for (int type = -11; type <= 99; ++type) {
    for (const OdbcCell& size : ReportedSizes) {
      const auto schema = Fetch(type, size, "2010-03-31 12:30:15");
      ASSERT_EQ(schema->columnCount, 1) << type;
      EXPECT_EQ(schema->columns[0]->sqlType, type);
      EXPECT_EQ(schema->columns[0]->GetName().Length(), 1);
    }
  }
}

TEST_F(CatalogueSizes, AreTakenAsTheyAreReported)
{
  for (const int size : {0, 1, -1, 255, 2147483647}) {
    Target().Columns("Parts", {{"A", SQL_WVARCHAR, size}, {"M", SQL_WLONGVARCHAR, size}});
    const std::unique_ptr<TableSchema> schema(OpenTarget()->ReadTableSchema(L"Parts", false));
    EXPECT_EQ(schema->columns[0]->size, size);
    EXPECT_EQ(schema->columns[1]->size, 65535);
  }
}

TEST_F(CatalogueSizes, MaySayThatNoColumnOrEachColumnMayBeNull)
{
  for (const int nullable : {SQL_NO_NULLS, SQL_NULLABLE, SQL_NULLABLE_UNKNOWN}) {
    std::vector<OdbcColumn> columns;
    for (int type = -11; type <= 99; ++type)
      columns.push_back({"C" + std::to_string(type), type, 10, nullable});
    Target().Columns("Parts", columns);
    const std::unique_ptr<TableSchema> schema(OpenTarget()->ReadTableSchema(L"Parts", false));
    ASSERT_EQ(schema->columnCount, 111);
    for (int i = 0; i < schema->columnCount; ++i)
      EXPECT_EQ(schema->columns[i]->isNullable, nullable == SQL_NULLABLE) << nullable;
  }
}

TEST_F(CatalogueSizes, AndANullInTheFirstRowLeaveTheZerosOfTheBuffer)
{
  for (const int type : {SQL_INTEGER, SQL_DOUBLE, SQL_TYPE_TIMESTAMP, SQL_BIT, SQL_WVARCHAR}) {
    const auto schema = Fetch(type, 10, nullptr);
    EXPECT_EQ(ValueOf<uint64_t>(*schema->columns[0]), 0u) << type;
    EXPECT_EQ(schema->columns[0]->indicator, SQL_NULL_DATA) << type;
  }
}

TEST_F(CatalogueSizes, OfMoreThan255ColumnsLeaveOutTheRest)
{
  for (const int count : {254, 255, 256, 300}) {
    std::vector<OdbcColumn> columns;
    for (int i = 1; i <= count; ++i)
      columns.push_back({"C" + std::to_string(i), SQL_INTEGER, 10});
    Target().Columns("Parts", columns);
    const std::unique_ptr<TableSchema> schema(OpenTarget()->ReadTableSchema(L"Parts", true));
    ASSERT_EQ(schema->columnCount, std::min(count, 255));
    EXPECT_EQ(TextOf(schema->columns[schema->columnCount - 1]->name),
              "C" + std::to_string(std::min(count, 255)));
    EXPECT_EQ(Odbc().OpenStatements(), 0);
  }
}
