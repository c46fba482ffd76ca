#ifndef SQL_COLUMNPAIRS_H
#define SQL_COLUMNPAIRS_H

#include "database/TableSchema.h"

// A column of a source table that the target has too.
struct ColumnPair
{
  const TableColumn* source;
  const TableColumn* target;     // the first one that is the same by SameColumn
  const TableColumn* alternate;  // the source's column with this one's text, or null
};

// The columns that two tables share, in the order of the source. They are looked up once for all
// rows of a step; both schemas, not owned, live longer.
class ColumnPairs
{
public:
  ColumnPairs(const TableSchema& source, const TableSchema& target);
  ColumnPairs(const ColumnPairs&) = delete;
  ColumnPairs& operator=(const ColumnPairs&) = delete;
  ~ColumnPairs() = default;

  // The names that range-based loops look for.
  // NOLINTNEXTLINE(readability-identifier-naming)
  const ColumnPair* begin() const { return pairs; }
  // NOLINTNEXTLINE(readability-identifier-naming)
  const ColumnPair* end() const { return pairs + count; }
  const QulString& TargetName() const { return target.tableName; }

private:
  const TableSchema& target;
  int count = 0;
  ColumnPair pairs[TableSchema::Capacity];
};

#endif
