#ifndef SQL_ROWSQL_H
#define SQL_ROWSQL_H

#include "sql/ColumnPairs.h"
#include "sql/StatementText.h"

// The statements for one row, with the values that stand in the buffers of a schema. Whatever the
// columns are, a statement results; one that makes no sense is for the driver to refuse. The forms
// that append to a statement that has just begun serve steps of many rows.

// Changes the row of the target that has the source's key values. Key is what the target says is
// key. It has no semicolon at its end.
QulString UpdateSql(const TableSchema& source, const TableSchema& target);
void AppendUpdateSql(StatementText& statement, const ColumnPairs& pairs);

// Adds the source's row to the target, with the columns that both have.
QulString InsertSql(const TableSchema& source, const TableSchema& target);
void AppendInsertSql(StatementText& statement, const ColumnPairs& pairs);

// Deletes the rows of the schema's own table that have the values of its key columns.
QulString DeleteByKeySql(const TableSchema& schema);
void AppendDeleteByKeySql(StatementText& statement, const TableSchema& schema);

// Deletes the rows of the target that equal the source's in each column that both have.
QulString DeleteMatchingSql(const TableSchema& source, const TableSchema& target);
void AppendDeleteMatchingSql(StatementText& statement, const ColumnPairs& pairs);

#endif
