#include "sql/ValueSql.h"

#include "database/TableSchema.h"
#include "database/ValueKind.h"

#include <string.h>

namespace {

template <typename Value>
Value FetchedValue(const TableColumn& column)
{
  Value value;
  memcpy(&value, column.valueBuffer, sizeof(value));
  return value;
}

size_t BufferCharacters(const TableColumn& column)
{
  return static_cast<size_t>(column.BufferBytes()) / sizeof(wchar_t);
}

bool IsEmptyText(const TableColumn& column)
{
  return KindOfValue(column.sqlType) == ValueKind::Text &&
         (column.valueBuffer == nullptr || column.valueBuffer[0] == L'\0');
}

void AppendTimestamp(StatementText& statement, const SQL_TIMESTAMP_STRUCT& timestamp)
{
  statement.Append(L'\'');
  statement.AppendInteger(timestamp.day);
  statement.Append(L'/');
  statement.AppendInteger(timestamp.month);
  statement.Append(L'/');
  statement.AppendInteger(timestamp.year);
  statement.Append(L'\'');
}

}  // namespace

QulString ValueSql(const TableColumn& column)
{
  StatementText literal;
  AppendValueSql(literal, column);
  return literal.Text();
}

void AppendValueSql(StatementText& statement, const TableColumn& column)
{
  switch (KindOfValue(column.sqlType)) {
    case ValueKind::None: break;
    case ValueKind::Text:
      if (IsEmptyText(column))
        statement.Append(L"NULL");
      else
        statement.AppendQuoted(column.valueBuffer, BufferCharacters(column));
      break;
    case ValueKind::Bit: statement.AppendInteger(FetchedValue<uint8_t>(column)); break;
    case ValueKind::Integer: statement.AppendInteger(FetchedValue<int32_t>(column)); break;
    case ValueKind::Number: statement.AppendDecimals(FetchedValue<double>(column)); break;
    case ValueKind::Timestamp:
      AppendTimestamp(statement, FetchedValue<SQL_TIMESTAMP_STRUCT>(column));
      break;
  }
}

QulString EffectiveValueSql(const TableSchema& source, const TableColumn& column)
{
  return ValueSql(EffectiveColumn(column, AlternateOf(source, column)));
}

const TableColumn* AlternateOf(const TableSchema& source, const TableColumn& column)
{
  return column.hasAlternate ? source.FindColumn(column.alternateName.Text()) : nullptr;
}

const TableColumn& EffectiveColumn(const TableColumn& column, const TableColumn* alternate)
{
  return alternate == nullptr || IsEmptyText(*alternate) ? column : *alternate;
}
