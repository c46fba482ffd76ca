#include "database/TableSchema.h"

#include <stddef.h>
#include <string.h>

#include <algorithm>
#include <memory>

namespace {

// ODBC's largest value of fixed size is a number of arbitrary precision, and all others are
// smaller.
constexpr size_t FixedValueBytes = 32;
static_assert(sizeof(SQL_NUMERIC_STRUCT) <= FixedValueBytes);
static_assert(sizeof(SQL_TIMESTAMP_STRUCT) <= FixedValueBytes);

bool IsText(int32_t sqlType)
{
  switch (sqlType) {
    case SQL_CHAR:
    case SQL_VARCHAR:
    case SQL_LONGVARCHAR:
    case SQL_WCHAR:
    case SQL_WVARCHAR:
    case SQL_WLONGVARCHAR: return true;
    default: return false;
  }
}

wchar_t* MakeValueBuffer(int32_t sqlType, size_t bytes)
{
  // Drivers write a number or a date whole, also where the catalogue reports a size of 0 for it.
  const size_t allocated = std::max(bytes, FixedValueBytes);
  wchar_t* buffer = new wchar_t[allocated / sizeof(wchar_t)];
  // Half of it is enough for a text, which begins with a terminator then; a whole one, though.
  const size_t leastCleared = IsText(sqlType) ? sizeof(wchar_t) : FixedValueBytes;
  // cppcheck-suppress sizeofDivisionMemfunc ; half of the bytes is meant, as told above
  memset(buffer, 0, std::max(bytes / sizeof(wchar_t), leastCleared));
  return buffer;
}

}  // namespace

TableColumn::TableColumn(const wchar_t* columnName, int32_t columnType, int32_t columnSize)
    : name(columnName),
      sqlType(columnType),
      size(columnType == SQL_WLONGVARCHAR ? MemoSize : columnSize),
      valueBuffer(MakeValueBuffer(sqlType, static_cast<size_t>(BufferBytes())))
{
}

TableColumn::TableColumn(const TableColumn& source)
    : name(source.name),
      sqlType(source.sqlType),
      size(source.size),
      isKey(source.isKey),
      isUnique(source.isUnique),
      isNullable(source.isNullable),
      valueBuffer(MakeValueBuffer(sqlType, static_cast<size_t>(BufferBytes())))
{
}

TableColumn::~TableColumn()
{
  delete[] valueBuffer;
}

SQLLEN TableColumn::BufferBytes() const
{
  const bool fitsAStatement = size >= 0 && size < QulStringLimit;
  const SQLLEN characters = fitsAStatement ? size : MemoSize;
  return (characters + 1) * static_cast<SQLLEN>(sizeof(wchar_t));
}

bool SameColumn(const TableColumn& left, const TableColumn& right)
{
  return left.name.EqualsNoCase(right.name) && left.sqlType == right.sqlType;
}

TableSchema::TableSchema(const wchar_t* name) : tableName(name) {}

TableSchema::~TableSchema()
{
  for (int i = 0; i < columnCount; ++i)
    delete columns[i];
}

TableSchema* TableSchema::CopyVisibleColumns() const
{
  auto copy = std::make_unique<TableSchema>(tableName.Text());
  copy->hasKey = hasKey;
  for (int i = 0; i < columnCount; ++i) {
    if (!columns[i]->isHidden)
      copy->AddColumn(new TableColumn(*columns[i]));
  }
  return copy.release();
}

void TableSchema::AddColumn(TableColumn* column)
{
  if (columnCount >= Capacity) {
    delete column;
    return;
  }
  columns[columnCount] = column;
  ++columnCount;
}

bool TableSchema::MarkKeyColumn(const wchar_t* columnName)
{
  TableColumn* column = FindColumn(columnName);
  if (column == nullptr)
    return false;
  column->isKey = true;
  column->isUnique = true;
  column->isNullable = false;
  hasKey = true;
  return true;
}

void TableSchema::MarkFirstColumn()
{
  if (columnCount == 0)
    return;
  columns[0]->isKey = true;
  columns[0]->isUnique = true;
  columns[0]->isNullable = false;
}

TableColumn* TableSchema::FindColumn(const wchar_t* columnName) const
{
  for (int i = 0; i < columnCount; ++i) {
    if (_wcsicmp(columns[i]->name.Text(), columnName) == 0)
      return columns[i];
  }
  return nullptr;
}
