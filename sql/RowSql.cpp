#include "sql/RowSql.h"

#include "sql/ValueSql.h"

namespace {

// What stands between the items of a list, and in front of the first one nothing.
class Separator
{
public:
  explicit Separator(const wchar_t* betweenItems) : between(betweenItems) {}

  void AppendTo(StatementText& statement)
  {
    if (!first)
      statement.Append(between);
    first = false;
  }

private:
  const wchar_t* between;
  bool first = true;
};

void AppendEffectiveValueSql(StatementText& statement, const ColumnPair& pair)
{
  AppendValueSql(statement, EffectiveColumn(*pair.source, pair.alternate));
}

// The column's own value, also for one with an alternate: rows are found by what they are, not by
// what they say in some language.
void AppendCondition(StatementText& statement, const QulString& name, const TableColumn& value)
{
  statement.AppendName(name);
  statement.Append(L'=');
  AppendValueSql(statement, value);
}

void AppendDeleteFrom(StatementText& statement, const QulString& table)
{
  statement.Append(L"DELETE FROM ");
  statement.Append(table.Text());
  statement.Append(L" WHERE ");
}

}  // namespace

QulString UpdateSql(const TableSchema& source, const TableSchema& target)
{
  StatementText statement;
  AppendUpdateSql(statement, ColumnPairs(source, target));
  return statement.Text();
}

void AppendUpdateSql(StatementText& statement, const ColumnPairs& pairs)
{
  statement.Append(L"UPDATE ");
  statement.AppendName(pairs.TargetName());
  // Two blanks stand between the name and SET.
  statement.Append(L"  SET ");
  Separator comma(L",");
  for (const ColumnPair& pair : pairs) {
    if (pair.target->isKey)
      continue;
    comma.AppendTo(statement);
    statement.AppendName(pair.target->name);
    statement.Append(L'=');
    AppendEffectiveValueSql(statement, pair);
  }
  // Also without a term: such a statement is refused, where one without a condition would change
  // every row.
  statement.Append(L" WHERE ");
  Separator conjunction(L" AND ");
  for (const ColumnPair& pair : pairs) {
    if (!pair.target->isKey)
      continue;
    conjunction.AppendTo(statement);
    AppendCondition(statement, pair.target->name, *pair.source);
  }
}

QulString InsertSql(const TableSchema& source, const TableSchema& target)
{
  StatementText statement;
  AppendInsertSql(statement, ColumnPairs(source, target));
  return statement.Text();
}

void AppendInsertSql(StatementText& statement, const ColumnPairs& pairs)
{
  statement.Append(L"INSERT INTO ");
  statement.AppendName(pairs.TargetName());
  statement.Append(L" (");
  Separator nameComma(L",");
  for (const ColumnPair& pair : pairs) {
    nameComma.AppendTo(statement);
    statement.AppendName(pair.target->name);
  }
  statement.Append(L") VALUES (");
  Separator valueComma(L",");
  for (const ColumnPair& pair : pairs) {
    valueComma.AppendTo(statement);
    AppendEffectiveValueSql(statement, pair);
  }
  statement.Append(L");");
}

QulString DeleteByKeySql(const TableSchema& schema)
{
  StatementText statement;
  AppendDeleteByKeySql(statement, schema);
  return statement.Text();
}

void AppendDeleteByKeySql(StatementText& statement, const TableSchema& schema)
{
  AppendDeleteFrom(statement, schema.tableName);
  Separator conjunction(L" AND ");
  for (int i = 0; i < schema.columnCount; ++i) {
    const TableColumn& column = *schema.columns[i];
    if (!column.isKey)
      continue;
    conjunction.AppendTo(statement);
    AppendCondition(statement, column.name, column);
  }
  statement.Append(L';');
}

QulString DeleteMatchingSql(const TableSchema& source, const TableSchema& target)
{
  StatementText statement;
  AppendDeleteMatchingSql(statement, ColumnPairs(source, target));
  return statement.Text();
}

void AppendDeleteMatchingSql(StatementText& statement, const ColumnPairs& pairs)
{
  AppendDeleteFrom(statement, pairs.TargetName());
  Separator conjunction(L" AND ");
  for (const ColumnPair& pair : pairs) {
    conjunction.AppendTo(statement);
    // By the source's spelling of the name, unlike the other statements of pairs.
    AppendCondition(statement, pair.source->name, *pair.source);
  }
  statement.Append(L';');
}
