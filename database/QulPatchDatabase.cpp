#include "database/QulPatchDatabase.h"

#include "database/TableSchema.h"
#include "database/Trace.h"
#include "database/UpdateTable.h"

namespace {

bool IsKeyProperty(const wchar_t* typeProperty)
{
  return _wcsicmp(typeProperty, L"PrimaryKey") == 0 || _wcsicmp(typeProperty, L"Unique") == 0;
}

// Marks each column that the rows of the executed statement name as part of the key; true if the
// schema has one of them.
bool MarkNamedColumns(SQLHSTMT statement, TableSchema& schema)
{
  wchar_t columnName[255] = {};
  wchar_t typeProperty[255] = {};
  SQLLEN lengths[2] = {};
  (void)SQLBindCol(statement, 1, SQL_C_WCHAR, columnName, sizeof(columnName), &lengths[0]);
  (void)SQLBindCol(statement, 2, SQL_C_WCHAR, typeProperty, sizeof(typeProperty), &lengths[1]);
  bool marked = false;
  while (SQL_SUCCEEDED(SQLFetch(statement))) {
    if (IsKeyProperty(typeProperty) && schema.MarkKeyColumn(columnName))
      marked = true;
  }
  return marked;
}

}  // namespace

QulPatchDatabase::QulPatchDatabase(const wchar_t* connectionText, const wchar_t* databaseName)
    : QulDatabase(connectionText, databaseName), updateTable(new UpdateTable(*this))
{
}

QulPatchDatabase::~QulPatchDatabase()
{
  delete updateTable;
}

void QulPatchDatabase::MarkKeyColumns(const wchar_t* table, TableSchema& schema) const
{
  // The keys of all tables come from that one, so its own can't.
  if (_wcsicmp(table, L"InfoTableRelations") == 0) {
    schema.MarkFirstColumn();
    return;
  }

  wchar_t query[MessageCharacters];
  (void)wsprintfW(query,
                  L"SELECT [ColumnName],[TypeProperty] FROM [InfoTableRelations] "
                  L"WHERE [TableName] = '%s'",
                  table);
  const SQLHSTMT statement = targetDatabase->AllocateStatement();
  bool marked = false;
  if (SQL_SUCCEEDED(SQLExecDirectW(statement, query, SQL_NTS)))
    marked = MarkNamedColumns(statement, schema);
  (void)SQLCloseCursor(statement);
  if (!marked) {
    wchar_t message[MessageCharacters];
    // The second line begins with a full stop.
    (void)wsprintfW(message,
                    L"Unable to read PrimaryKey or Unique info for table %s!\n"
                    L".First column will be marked as PK!",
                    table);
    ReportTrace(message);
    schema.MarkFirstColumn();
  }
  (void)targetDatabase->FreeStatement(statement);
}
