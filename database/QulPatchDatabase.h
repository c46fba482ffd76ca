#ifndef DATABASE_QULPATCHDATABASE_H
#define DATABASE_QULPATCHDATABASE_H

#include "database/QulDatabase.h"

class UpdateTable;
struct UpdateStep;

// A database that brings others up to date: it holds the new content, and the table of what to do
// with it.
class QulPatchDatabase : public QulDatabase
{
public:
  // As the base; then reads the update table, which is empty if the connection failed.
  QulPatchDatabase(const wchar_t* connectionString, const wchar_t* name);
  ~QulPatchDatabase() override;

  // Marks the key columns of schema, as the table InfoTableRelations of targetDatabase tells them
  // for table, which stands in the query as it is. If that names none of them, the first column
  // becomes the key, which is reported. The first column of InfoTableRelations itself is its key
  // without a question. targetDatabase is set.
  void MarkKeyColumns(const wchar_t* table, TableSchema& schema) const;

  // Carries out what the update table has for target, step by step; each one sees what those before
  // it have done. Nothing for null.
  void ApplyPatch(QulDatabase* target);

  // Carries out one step on targetDatabase, which is set. A table that is missing and an INSERT, a
  // DELETE, a CREATE or a DROP that fails are reported, a query and an UPDATE aren't; they end the
  // step or the row at most, and what has been done stays.
  void PatchTable(UpdateStep step);

  // Deletes from the target's table the rows that source's table lists: by their key if the target
  // told one that source has a column of, else by all columns that both have. A DELETE that fails
  // is reported and ends the row.
  void DeleteRows(TableSchema& source, TableSchema& target);

  UpdateTable* updateTable;  // owned
  // The one that is being brought up to date, else null; not owned.
  QulDatabase* targetDatabase = nullptr;

private:
  TableSchema* CreateTarget(const UpdateStep& step, const TableSchema& source) const;
  TableSchema* ReadTarget(const UpdateStep& step) const;
  void CopyRows(const UpdateStep& step, TableSchema& source, const TableSchema& target);
};

#endif
