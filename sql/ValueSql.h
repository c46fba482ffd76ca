#ifndef SQL_VALUESQL_H
#define SQL_VALUESQL_H

#include "sql/StatementText.h"

class TableColumn;
class TableSchema;

// The value in the column's buffer as a literal: text in quotes or, if it is empty, NULL; a number;
// a date as 'day/month/year'. A type that isn't fetched gives nothing. Whether the row had a NULL
// isn't asked: then the buffer still holds what was there before.
QulString ValueSql(const TableColumn& column);
void AppendValueSql(StatementText& statement, const TableColumn& column);

// The literal that a target gets for a column of source: that of its alternate column in the same
// row, unless there is none or its text is empty; then the column's own.
QulString EffectiveValueSql(const TableSchema& source, const TableColumn& column);

// The column of source that holds the text of column in the current language, or null.
const TableColumn* AlternateOf(const TableSchema& source, const TableColumn& column);

// The one of both whose literal counts: alternate, unless it is null or holds an empty text.
const TableColumn& EffectiveColumn(const TableColumn& column, const TableColumn* alternate);

#endif
