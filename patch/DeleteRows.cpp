// The part of QulPatchDatabase that deletes rows from a target.
#include "database/QulPatchDatabase.h"
#include "database/TableSchema.h"
#include "database/Trace.h"
#include "sql/RowSql.h"

namespace {

void AppendKeyQuery(StatementText& query, const TableSchema& source)
{
  query.Append(L"SELECT ");
  bool hasColumn = false;
  for (int i = 0; i < source.columnCount; ++i) {
    if (!source.columns[i]->isKey)
      continue;
    if (hasColumn)
      query.Append(L',');
    query.AppendName(source.columns[i]->name);
    query.Append(L' ');
    hasColumn = true;
  }
  query.Append(L"FROM ");
  query.Append(source.tableName.Text());
}

// Binds the key columns of schema to the first columns of a query, which has the key columns of
// another table. They are paired by their places and not compared: where the tables have them in
// another order, or one lacks a key column, other rows are deleted.
void BindKeyColumns(SQLHSTMT statement, const TableSchema& schema)
{
  SQLUSMALLINT ordinal = 0;
  for (int i = 0; i < schema.columnCount; ++i) {
    if (!schema.columns[i]->isKey)
      continue;
    ++ordinal;
    schema.columns[i]->BindToStatement(statement, ordinal);
  }
}

void DeleteOneRow(const QulDatabase& target, const StatementText& statementText)
{
  const SQLHSTMT statement = target.AllocateStatement();
  const SQLRETURN code = SQLExecDirectW(statement, statementText.Text(), SQL_NTS);
  // That the row isn't there is what was wanted.
  if (!SQL_SUCCEEDED(code) && code != SQL_NO_DATA) {
    // A copy, since the message is composed where the statement stands.
    const QulString failed(statementText.Text());
    QulString message;
    message.Format(L"Unable to delete record! SQL = '%s'", failed.Text());
    ReportTrace(message.Text());
  }
  (void)target.FreeStatement(statement);
}

}  // namespace

void QulPatchDatabase::DeleteRows(TableSchema& source, TableSchema& target)
{
  const SQLHSTMT query = AllocateStatement();
  if (source.hasKey) {
    StatementText keyQuery;
    AppendKeyQuery(keyQuery, source);
    // A query that fails, here or below, has no rows to fetch; nothing is said about it.
    (void)SQLExecDirectW(query, keyQuery.Text(), SQL_NTS);
    BindKeyColumns(query, target);
    while (SQL_SUCCEEDED(SQLFetch(query))) {
      StatementText statementText;
      AppendDeleteByKeySql(statementText, target);
      DeleteOneRow(*targetDatabase, statementText);
    }
  } else {
    StatementText rowQuery;
    rowQuery.Append(L"SELECT * FROM ");
    rowQuery.Append(source.tableName.Text());
    (void)SQLExecDirectW(query, rowQuery.Text(), SQL_NTS);
    source.BindAll(query);
    const ColumnPairs pairs(source, target);
    while (SQL_SUCCEEDED(SQLFetch(query))) {
      StatementText statementText;
      AppendDeleteMatchingSql(statementText, pairs);
      DeleteOneRow(*targetDatabase, statementText);
    }
  }
  (void)FreeStatement(query);
}
