#include "driver/Rows.h"

#include "driver/Text.h"

namespace {

std::string OrEmpty(const char* text)
{
  return text == nullptr ? std::string() : std::string(text);
}

// The type of a column that is computed, from its value in the row where it is first asked for.
SQLSMALLINT TypeOfValue(int storageClass)
{
  switch (storageClass) {
    case SQLITE_INTEGER: return SQL_BIGINT;
    case SQLITE_FLOAT: return SQL_DOUBLE;
    case SQLITE_BLOB: return SQL_LONGVARBINARY;
    default: return SQL_WVARCHAR;
  }
}

}  // namespace

Step QueryRows::Next()
{
  code = sqlite3_step(statement);
  if (code == SQLITE_ROW)
    return Step::Row;
  return code == SQLITE_DONE ? Step::End : Step::Failed;
}

Cell QueryRows::Value(size_t column)
{
  const int index = static_cast<int>(column);
  Cell cell;
  switch (sqlite3_column_type(statement, index)) {
    case SQLITE_NULL: return cell;
    case SQLITE_INTEGER:
      cell.kind = CellKind::Integer;
      cell.integer = sqlite3_column_int64(statement, index);
      break;
    case SQLITE_FLOAT:
      cell.kind = CellKind::Real;
      cell.real = sqlite3_column_double(statement, index);
      break;
    case SQLITE_BLOB:
      cell.kind = CellKind::Binary;
      cell.bytes = {static_cast<const char*>(sqlite3_column_blob(statement, index)),
                    static_cast<size_t>(sqlite3_column_bytes(statement, index))};
      break;
    default:
      cell.kind = CellKind::Text;
      cell.bytes = {reinterpret_cast<const char*>(sqlite3_column_text(statement, index)),
                    static_cast<size_t>(sqlite3_column_bytes(statement, index))};
      break;
  }
  FitToType(cell, Columns()[column].columnType.type->sqlType);
  return cell;
}

const std::vector<ResultColumn>& QueryRows::Columns()
{
  const int count = sqlite3_column_count(statement);
  if (columns.empty() && count > 0) {
    columns.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
      columns.push_back(Describe(i));
  }
  return columns;
}

ResultColumn QueryRows::Describe(int column) const
{
  ResultColumn result;
  result.label = OrEmpty(sqlite3_column_name(statement, column));
  result.columnType = ReadDeclaredType(sqlite3_column_decltype(statement, column));
  const char* const table = sqlite3_column_table_name(statement, column);
  const char* const name = sqlite3_column_origin_name(statement, column);
  if (result.columnType.type == nullptr) {
    // Only a row has values.
    const bool onRow = sqlite3_data_count(statement) > 0;
    result.columnType =
        PlainType(TypeOfValue(onRow ? sqlite3_column_type(statement, column) : SQLITE_NULL));
  }
  if (table == nullptr || name == nullptr)
    return result;
  result.baseTable = table;
  result.baseColumn = name;
  int notNull = 0;
  int inKey = 0;
  int counts = 0;
  if (sqlite3_table_column_metadata(database, sqlite3_column_database_name(statement, column),
                                    table, name, nullptr, nullptr, &notNull, &inKey,
                                    &counts) == SQLITE_OK) {
    result.nullable = notNull != 0 || inKey != 0 ? SQL_NO_NULLS : SQL_NULLABLE;
    result.countsByItself =
        inKey != 0 && EqualsNoCase(OrEmpty(sqlite3_column_decltype(statement, column)), "INTEGER");
  }
  return result;
}

Cell StoredValue::ToCell() const
{
  if (kind == CellKind::Text)
    return Cell::OfText(text);
  return kind == CellKind::Integer ? Cell::OfInteger(number) : Cell();
}

void StoredRows::AddColumn(const char* label, SQLSMALLINT sqlType, SQLULEN size, bool canBeNull)
{
  ResultColumn column;
  column.label = label;
  column.columnType = PlainType(sqlType);
  if (size != 0)
    column.columnType.size = size;
  column.nullable = canBeNull ? SQL_NULLABLE : SQL_NO_NULLS;
  columns.push_back(std::move(column));
}

Step StoredRows::Next()
{
  if (position == rows.size())
    return Step::End;
  ++position;
  return Step::Row;
}
