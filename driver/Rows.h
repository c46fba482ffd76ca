// Where the rows of a result come from.

#ifndef DRIVER_ROWS_H
#define DRIVER_ROWS_H

#include <sqlite3.h>

#include <string>
#include <vector>

#include "driver/Cell.h"
#include "driver/Types.h"

enum class Step
{
  Row,
  End,
  Failed
};

struct ResultColumn
{
  std::string label;       // the name in the result
  std::string baseColumn;  // of a table's column, else empty
  std::string baseTable;
  ColumnType columnType = {};
  SQLSMALLINT nullable = SQL_NULLABLE_UNKNOWN;
  bool countsByItself = false;
};

class Rows
{
public:
  Rows() = default;
  virtual ~Rows() = default;
  Rows(const Rows&) = delete;
  Rows& operator=(const Rows&) = delete;

  // Goes to the next row. Not called again behind the last one.
  virtual Step Next() = 0;
  // A value of the present row, as the column's type promises it; valid until the next step.
  virtual Cell Value(size_t column) = 0;
  virtual const std::vector<ResultColumn>& Columns() = 0;
};

// The rows of a statement, each read when it is asked for. The statement is not owned; code tells
// what went wrong where Next failed.
class QueryRows : public Rows
{
public:
  QueryRows(sqlite3* handle, sqlite3_stmt* query) : database(handle), statement(query) {}

  Step Next() override;
  Cell Value(size_t column) override;
  const std::vector<ResultColumn>& Columns() override;

  int code = SQLITE_OK;

private:
  ResultColumn Describe(int column) const;

  sqlite3* database;
  sqlite3_stmt* statement;
  std::vector<ResultColumn> columns;  // empty until asked for
};

// A value of a catalogue's row: nothing, a number or a text.
class StoredValue
{
public:
  StoredValue() = default;
  StoredValue(const char* value)
      : kind(value == nullptr ? CellKind::Null : CellKind::Text),
        text(value == nullptr ? "" : value)
  {
  }
  StoredValue(std::string value) : kind(CellKind::Text), text(std::move(value)) {}
  StoredValue(int64_t value) : kind(CellKind::Integer), number(value) {}
  StoredValue(int value) : kind(CellKind::Integer), number(value) {}
  StoredValue(SQLSMALLINT value) : kind(CellKind::Integer), number(value) {}

  Cell ToCell() const;

private:
  CellKind kind = CellKind::Null;
  std::string text;
  int64_t number = 0;
};

// The answer of a catalogue call, which is complete before the first row is read.
class StoredRows : public Rows
{
public:
  using Row = std::vector<StoredValue>;

  void AddColumn(const char* label, SQLSMALLINT sqlType, SQLULEN size, bool canBeNull);
  void AddRow(Row row) { rows.push_back(std::move(row)); }

  Step Next() override;
  Cell Value(size_t column) override { return rows[position - 1][column].ToCell(); }
  const std::vector<ResultColumn>& Columns() override { return columns; }

private:
  std::vector<ResultColumn> columns;
  std::vector<Row> rows;
  size_t position = 0;
};

#endif
