#ifndef SQL_CREATETABLESQL_H
#define SQL_CREATETABLESQL_H

#include "foundation/QulString.h"

class TableColumn;
class TableSchema;

// Name, type and null clause of a column. A type that has no word in the dialect leaves the null
// clause alone, which no driver takes.
QulString ColumnDefinitionSql(const TableColumn& column);

// CREATE TABLE with all columns and, if some are key columns, the primary key. Neither names nor
// sizes are checked: the driver does that.
QulString CreateTableSql(const TableSchema& schema);

#endif
