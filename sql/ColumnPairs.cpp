#include "sql/ColumnPairs.h"

#include "sql/ValueSql.h"

namespace {

const TableColumn* FindSameColumn(const TableSchema& schema, const TableColumn& column)
{
  for (int i = 0; i < schema.columnCount; ++i) {
    if (SameColumn(*schema.columns[i], column))
      return schema.columns[i];
  }
  return nullptr;
}

}  // namespace

ColumnPairs::ColumnPairs(const TableSchema& source, const TableSchema& targetSchema)
    : target(targetSchema)
{
  for (int i = 0; i < source.columnCount; ++i) {
    const TableColumn& column = *source.columns[i];
    const TableColumn* const partner = FindSameColumn(target, column);
    if (partner == nullptr)
      continue;
    pairs[count] = {&column, partner, AlternateOf(source, column)};
    ++count;
  }
}
