// The part of TableColumn and TableSchema that ties them to a statement.
#include "database/TableSchema.h"
#include "database/ValueKind.h"

namespace {

// What ODBC is to convert a value to.
SQLSMALLINT BufferType(ValueKind kind)
{
  switch (kind) {
    case ValueKind::Text: return SQL_C_WCHAR;
    case ValueKind::Bit: return SQL_C_BIT;
    case ValueKind::Integer: return SQL_C_LONG;
    case ValueKind::Number: return SQL_C_DOUBLE;
    case ValueKind::Timestamp: return SQL_C_TIMESTAMP;
    case ValueKind::None: break;
  }
  // No type at all: the call is refused, and the column never gets a value.
  return 0;
}

}  // namespace

void TableColumn::BindToStatement(SQLHSTMT statement, SQLUSMALLINT ordinal)
{
  (void)SQLBindCol(statement, ordinal, BufferType(KindOfValue(sqlType)), valueBuffer, BufferBytes(),
                   &indicator);
}

void TableSchema::BindAll(SQLHSTMT statement)
{
  for (int i = 0; i < columnCount; ++i)
    columns[i]->BindToStatement(statement, static_cast<SQLUSMALLINT>(i + 1));
}
