// Entry points: results and their columns.

#include "driver/ColumnAttributes.h"
#include "driver/EntryText.h"
#include "driver/Statement.h"

namespace {

template <typename Character>
SQLRETURN DescribeColumn(SQLHSTMT handle, SQLUSMALLINT number, Character* name,
                         SQLSMALLINT capacity, SQLSMALLINT* length, SQLSMALLINT* sqlType,
                         SQLULEN* size, SQLSMALLINT* digits, SQLSMALLINT* nullable)
{
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    const std::vector<ResultColumn>& columns = statement.Columns();
    if (columns.empty())
      return statement.diagnostics.Fail("07005", "The statement has no result");
    if (number == 0 || number > columns.size())
      return statement.diagnostics.Fail("07009", "The result has no such column");
    const ResultColumn& column = columns[number - 1];
    const ColumnType& type = column.columnType;
    ReturnNumber<SQLSMALLINT>(sqlType, type.type->sqlType);
    ReturnNumber<SQLULEN>(size, type.size);
    ReturnNumber<SQLSMALLINT>(digits, type.digits == NoDigits ? 0 : type.digits);
    ReturnNumber<SQLSMALLINT>(nullable, column.nullable);
    return ReturnText(statement.diagnostics, column.label, name, capacity, length,
                      Count::Characters);
  });
}

template <typename Character>
SQLRETURN ReturnColumnAttribute(SQLHSTMT handle, SQLUSMALLINT number, SQLUSMALLINT field,
                                SQLPOINTER text, SQLSMALLINT capacity, SQLSMALLINT* length,
                                SQLLEN* value)
{
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    const std::vector<ResultColumn>& columns = statement.Columns();
    if (field == SQL_DESC_COUNT || field == SQL_COLUMN_COUNT) {
      ReturnNumber<SQLLEN>(value, columns.size());
      return SQLRETURN{SQL_SUCCESS};
    }
    if (columns.empty())
      return statement.diagnostics.Fail("07005", "The statement has no result");
    if (number == 0 || number > columns.size())
      return statement.diagnostics.Fail("07009", "The result has no such column");
    const std::optional<ColumnAttribute> attribute =
        FindColumnAttribute(columns[number - 1], field);
    if (!attribute)
      return statement.diagnostics.Fail("HY091", "A column has no such attribute");
    if (attribute->text) {
      return ReturnText(statement.diagnostics, *attribute->text, static_cast<Character*>(text),
                        capacity, length, Count::Bytes);
    }
    ReturnNumber<SQLLEN>(value, attribute->number);
    return SQLRETURN{SQL_SUCCESS};
  });
}

}  // namespace

SQLRETURN SQL_API SQLNumResultCols(SQLHSTMT handle, SQLSMALLINT* count)
{
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    ReturnNumber<SQLSMALLINT>(count, statement.Columns().size());
    return SQLRETURN{SQL_SUCCESS};
  });
}

SQLRETURN SQL_API SQLDescribeCol(SQLHSTMT handle, SQLUSMALLINT number, SQLCHAR* name,
                                 SQLSMALLINT capacity, SQLSMALLINT* length, SQLSMALLINT* sqlType,
                                 SQLULEN* size, SQLSMALLINT* digits, SQLSMALLINT* nullable)
{
  return DescribeColumn(handle, number, name, capacity, length, sqlType, size, digits, nullable);
}

SQLRETURN SQL_API SQLDescribeColW(SQLHSTMT handle, SQLUSMALLINT number, SQLWCHAR* name,
                                  SQLSMALLINT capacity, SQLSMALLINT* length, SQLSMALLINT* sqlType,
                                  SQLULEN* size, SQLSMALLINT* digits, SQLSMALLINT* nullable)
{
  return DescribeColumn(handle, number, name, capacity, length, sqlType, size, digits, nullable);
}

SQLRETURN SQL_API SQLColAttribute(SQLHSTMT handle, SQLUSMALLINT number, SQLUSMALLINT field,
                                  SQLPOINTER text, SQLSMALLINT capacity, SQLSMALLINT* length,
                                  SQLLEN* value)
{
  return ReturnColumnAttribute<SQLCHAR>(handle, number, field, text, capacity, length, value);
}

SQLRETURN SQL_API SQLColAttributeW(SQLHSTMT handle, SQLUSMALLINT number, SQLUSMALLINT field,
                                   SQLPOINTER text, SQLSMALLINT capacity, SQLSMALLINT* length,
                                   SQLLEN* value)
{
  return ReturnColumnAttribute<SQLWCHAR>(handle, number, field, text, capacity, length, value);
}

SQLRETURN SQL_API SQLBindCol(SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT cType,
                             SQLPOINTER buffer, SQLLEN capacity, SQLLEN* length)
{
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    return statement.BindColumn(number, {cType, buffer, capacity, length, length});
  });
}

SQLRETURN SQL_API SQLFetch(SQLHSTMT handle)
{
  return WithHandle<Statement>(handle, [](Statement& statement) { return statement.Fetch(); });
}

SQLRETURN SQL_API SQLFetchScroll(SQLHSTMT handle, SQLSMALLINT orientation, SQLLEN /*offset*/)
{
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    if (orientation != SQL_FETCH_NEXT)
      return statement.diagnostics.Fail("HY106", "Cursors go forward only");
    return statement.Fetch();
  });
}

SQLRETURN SQL_API SQLGetData(SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT cType,
                             SQLPOINTER buffer, SQLLEN capacity, SQLLEN* length)
{
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    return statement.GetData(number, {cType, buffer, capacity, length, length});
  });
}
