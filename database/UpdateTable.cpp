#include "database/UpdateTable.h"

#include "database/InfoTable.h"
#include "database/QulDatabase.h"

#include <stddef.h>

namespace {

void InsertInFront(QulArray<UpdateStep>& steps, const UpdateStep& step)
{
  steps.Append(step);
  for (int i = steps.count - 1; i > 0; --i)
    steps.data[i] = steps.data[i - 1];
  steps.data[0] = step;
}

bool StartsWith(const QulString& name, const QulString& prefix)
{
  return name.Length() >= prefix.Length() &&
         _wcsnicmp(name.Text(), prefix.Text(), static_cast<size_t>(prefix.Length())) == 0;
}

}  // namespace

UpdateTable::UpdateTable(QulDatabase& patchDatabase)
{
  QulString tableName(L"UpdateTable");
  QulString variant;
  // A list that ends before the language leaves the variant empty, and drivers differ in what they
  // list for an empty name.
  if (patchDatabase.infoTable->ResolveTableName(tableName.Text(), variant) &&
      patchDatabase.TableExists(variant.Text()) && variant.Length() > 0) {
    tableName.Assign(variant);
  }

  SQLHSTMT statement = SQL_NULL_HSTMT;
  if (!patchDatabase.connected ||
      !SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, patchDatabase.connectionHandle, &statement))) {
    return;
  }
  QulString query;
  query.Format(L"SELECT * FROM %s", tableName.Text());
  query.Append(L" ORDER BY [ID]");
  if (SQL_SUCCEEDED(SQLExecDirectW(statement, const_cast<SQLWCHAR*>(query.Text()), SQL_NTS))) {
    // A NULL leaves here what the row before it brought.
    wchar_t database[50] = {};
    wchar_t sourceTable[50] = {};
    wchar_t targetTable[50] = {};
    unsigned char deleteRows = 0;
    unsigned char recreate = 0;
    unsigned char createIfMissing = 0;
    SQLLEN length = 0;  // of all six, and not looked at
    (void)SQLBindCol(statement, 2, SQL_C_WCHAR, database, sizeof(database), &length);
    (void)SQLBindCol(statement, 3, SQL_C_WCHAR, sourceTable, sizeof(sourceTable), &length);
    (void)SQLBindCol(statement, 4, SQL_C_WCHAR, targetTable, sizeof(targetTable), &length);
    (void)SQLBindCol(statement, 5, SQL_C_BIT, &deleteRows, sizeof(deleteRows), &length);
    (void)SQLBindCol(statement, 6, SQL_C_BIT, &recreate, sizeof(recreate), &length);
    (void)SQLBindCol(statement, 7, SQL_C_BIT, &createIfMissing, sizeof(createIfMissing), &length);
    while (SQL_SUCCEEDED(SQLFetch(statement))) {
      steps.Append(UpdateStep{database, sourceTable, targetTable, deleteRows != 0, recreate != 0,
                              createIfMissing != 0});
    }
  }
  (void)patchDatabase.FreeStatement(statement);
}

QulArray<UpdateStep> UpdateTable::PrepareSteps(QulDatabase& patchDatabase,
                                               QulDatabase& targetDatabase) const
{
  const QulString targetName = targetDatabase.GetName();
  QulArray<UpdateStep> prepared;
  for (int i = 0; i < steps.count; ++i) {
    const UpdateStep& step = steps.data[i];
    if (!step.database.EqualsNoCase(targetName))
      continue;
    if (step.targetTable.EqualsNoCase(L"InfoTableRelations"))
      InsertInFront(prepared, step);
    else
      ExpandStep(step, patchDatabase, targetDatabase, prepared);
  }
  return prepared;
}

void UpdateTable::ExpandStep(UpdateStep step, QulDatabase& patchDatabase,
                             QulDatabase& targetDatabase, QulArray<UpdateStep>& expanded)
{
  QulArray<QulString> sources;
  MatchTables(step.sourceTable, patchDatabase, sources);
  QulArray<QulString> targets;
  MatchTables(step.targetTable, targetDatabase, targets);
  // A side without matches contributes its name as it stands.
  if (sources.count == 0)
    sources.Append(step.sourceTable);
  if (targets.count == 0)
    targets.Append(step.targetTable);
  for (int source = 0; source < sources.count; ++source) {
    for (int target = 0; target < targets.count; ++target) {
      step.sourceTable.Assign(sources.data[source]);
      step.targetTable.Assign(targets.data[target]);
      expanded.Append(step);
    }
  }
}

void UpdateTable::MatchTables(const QulString& pattern, QulDatabase& database,
                              QulArray<QulString>& matches)
{
  const wchar_t* star = wcsrchr(pattern.Text(), L'*');
  // A star in front is an ordinary character.
  if (star == nullptr || star == pattern.Text())
    return;
  const int starIndex = static_cast<int>(star - pattern.Text());
  const QulString prefix = pattern.Left(starIndex);
  const QulString suffix = pattern.Right(pattern.Length() - starIndex - 1);

  const QulArray<QulString> tables(database.GetTableNames());
  for (int i = 0; i < tables.count; ++i) {
    if (StartsWith(tables.data[i], prefix))
      matches.Append(tables.data[i]);
  }
  if (suffix.Length() == 0)
    return;

  const QulArray<QulString> candidates(matches.count > 0 ? matches : tables);
  matches.Clear();
  for (int i = 0; i < candidates.count; ++i) {
    const QulString& name = candidates.data[i];
    // Compared with the text in front of the star, not with the one behind it, whose length alone
    // counts: what such a pattern has selected in patches so far, it goes on selecting.
    if (name.Length() >= suffix.Length() && name.Right(suffix.Length()).EqualsNoCase(prefix))
      matches.Append(name);
  }
}
