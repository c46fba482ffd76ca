#ifndef DATABASE_QULPATCHDATABASE_H
#define DATABASE_QULPATCHDATABASE_H

#include "database/QulDatabase.h"

class UpdateTable;

// A database that brings others up to date: it holds the new content, and the table of what to do
// with it.
class QulPatchDatabase : public QulDatabase
{
public:
  // As the base; then reads the update table, which is empty if the connection failed.
  QulPatchDatabase(const wchar_t* connectionString, const wchar_t* name);
  ~QulPatchDatabase() override;

  // Marks the key columns of schema, as the table InfoTableRelations of targetDatabase tells them
  // for table. If that names none of them, the first column becomes the key, which is reported. The
  // first column of InfoTableRelations itself is its key without a question. targetDatabase is set.
  void MarkKeyColumns(const wchar_t* table, TableSchema& schema) const;

  UpdateTable* updateTable;               // owned
  QulDatabase* targetDatabase = nullptr;  // the database that is being brought up to date
};

#endif
