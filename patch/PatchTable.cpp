// The part of QulPatchDatabase that carries out one step of an update.
#include "database/DatabaseNames.h"
#include "database/InfoTable.h"
#include "database/QulPatchDatabase.h"
#include "database/TableSchema.h"
#include "database/Trace.h"
#include "database/UpdateTable.h"
#include "sql/CreateTableSql.h"
#include "sql/RowSql.h"

#include <memory>

namespace {

// An INSERT that says it touched no row has not failed.
void Insert(SQLHSTMT statement, const ColumnPairs& pairs)
{
  StatementText insert;
  AppendInsertSql(insert, pairs);
  const SQLRETURN code = SQLExecDirectW(statement, insert.Text(), SQL_NTS);
  if (!SQL_SUCCEEDED(code) && code != SQL_NO_DATA)
    ReportTrace(insert.Text());
}

// Changes the row with the same key, or else inserts it. Whether there was no such row or the
// change failed makes no difference, and isn't told: the insert's failure is what counts.
void Merge(SQLHSTMT statement, const ColumnPairs& pairs)
{
  StatementText update;
  AppendUpdateSql(update, pairs);
  if (!SQL_SUCCEEDED(SQLExecDirectW(statement, update.Text(), SQL_NTS)))
    Insert(statement, pairs);
}

}  // namespace

void QulPatchDatabase::PatchTable(UpdateStep step)
{
  QulString languageVariant;
  // A list without the installation's language leaves no name, and so no table.
  if (infoTable->ResolveTableName(step.sourceTable.Text(), languageVariant))
    step.sourceTable = languageVariant;
  // Drivers differ in what they list for an empty name.
  if (!TableExists(step.sourceTable.Text()) || step.sourceTable.Length() == 0) {
    QulString message;
    message.Format(L"Source table %s not found in patch database", step.sourceTable.Text());
    ReportTrace(message.Text());
    return;
  }

  const bool targetPresent = targetDatabase->TableExists(step.targetTable.Text());
  const bool mayCreate = !step.deleteRows && (step.recreate || step.createIfMissing);
  if (!targetPresent && !mayCreate) {
    QulString message;
    message.Format(L"Target table %s not found in database %s", step.targetTable.Text(),
                   targetDatabase->GetName().Text());
    ReportTrace(message.Text());
    return;
  }

  const bool hideOtherLanguages = !step.database.EqualsNoCase(DatabaseNames[ProfilesDatabase]);
  const std::unique_ptr<TableSchema> source(
      ReadTableSchema(step.sourceTable.Text(), hideOtherLanguages));
  // By the target's name for the table: its database tells the key of both.
  MarkKeyColumns(step.targetTable.Text(), *source);

  if (step.recreate && targetPresent)
    targetDatabase->DropTable(step.targetTable.Text());
  const bool create = step.recreate || (step.createIfMissing && !targetPresent);
  const std::unique_ptr<TableSchema> target(create ? CreateTarget(step, *source)
                                                   : ReadTarget(step));
  if (target == nullptr)
    return;

  if (step.deleteRows)
    DeleteRows(*source, *target);
  // A table that was there keeps its rows, and one that has just taken its place stays empty.
  else if (!step.createIfMissing || !targetPresent)
    CopyRows(step, *source, *target);
}

// Creates the target's table with the visible columns of source and describes it; null if that
// failed, which is reported.
TableSchema* QulPatchDatabase::CreateTarget(const UpdateStep& step, const TableSchema& source) const
{
  std::unique_ptr<TableSchema> target(source.CopyVisibleColumns());
  target->tableName = step.targetTable;
  const QulString statement = CreateTableSql(*target);
  if (targetDatabase->executeSQL(statement.Text()))
    return target.release();

  QulString message;
  message.Format(L"Unable to create table %s\nSql:%s", step.targetTable.Text(), statement.Text());
  ReportTrace(message.Text());
  return nullptr;
}

TableSchema* QulPatchDatabase::ReadTarget(const UpdateStep& step) const
{
  std::unique_ptr<TableSchema> target(
      targetDatabase->ReadTableSchema(step.targetTable.Text(), false));
  MarkKeyColumns(step.targetTable.Text(), *target);
  return target.release();
}

// Reads the source's rows one by one and writes each to the target: with an INSERT if the table is
// new, else by its key.
void QulPatchDatabase::CopyRows(const UpdateStep& step, TableSchema& source,
                                const TableSchema& target)
{
  StatementText query;
  query.Append(L"SELECT * FROM ");
  query.Append(step.sourceTable.Text());
  const SQLHSTMT rows = AllocateStatement();
  if (SQL_SUCCEEDED(SQLExecDirectW(rows, query.Text(), SQL_NTS))) {
    // All columns, those of other languages too: values may come from there.
    source.BindAll(rows);
    const ColumnPairs pairs(source, target);
    const bool isNewTable = step.recreate || step.createIfMissing;
    while (SQL_SUCCEEDED(SQLFetch(rows))) {
      const SQLHSTMT statement = targetDatabase->AllocateStatement();
      if (isNewTable)
        Insert(statement, pairs);
      else
        Merge(statement, pairs);
      (void)targetDatabase->FreeStatement(statement);
    }
  }
  (void)FreeStatement(rows);
}
