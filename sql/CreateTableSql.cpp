#include "sql/CreateTableSql.h"

#include "database/TableSchema.h"
#include "sql/StatementText.h"

namespace {

// The dialect's word for a type, up to the size where it has one; null if there is none. It has
// decimals of its own for DECIMAL, while money and other NUMERIC become DOUBLE; FLOAT has no word.
const wchar_t* TypeWord(int32_t sqlType)
{
  switch (sqlType) {
    case SQL_WLONGVARCHAR:
    case SQL_LONGVARCHAR: return L" MEMO";
    case SQL_WVARCHAR:
    case SQL_VARCHAR: return L" TEXT";
    case SQL_BIT: return L" BIT";
    case SQL_TINYINT: return L" BYTE";
    case SQL_SMALLINT: return L" SMALLINT";
    case SQL_INTEGER: return L" LONG";
    case SQL_REAL: return L" REAL";
    case SQL_DECIMAL: return L" DECIMAL";
    case SQL_NUMERIC:
    case SQL_DOUBLE: return L" DOUBLE";
    case SQL_TIMESTAMP:
    case SQL_TYPE_TIMESTAMP: return L" DATE";
    default: return nullptr;
  }
}

bool HasSize(int32_t sqlType)
{
  return sqlType == SQL_WVARCHAR || sqlType == SQL_VARCHAR;
}

void AppendColumnDefinition(StatementText& statement, const TableColumn& column)
{
  const wchar_t* const word = TypeWord(column.sqlType);
  if (word != nullptr) {
    statement.AppendName(column.name);
    statement.Append(word);
  }
  if (HasSize(column.sqlType)) {
    statement.Append(L'(');
    statement.AppendInteger(column.size);
    statement.Append(L')');
  }
  statement.Append(column.isNullable ? L" NULL" : L" NOT NULL");
}

// The key's clause with a comma in front of it; nothing without key columns.
void AppendPrimaryKey(StatementText& statement, const TableSchema& schema)
{
  bool hasKeyColumn = false;
  for (int i = 0; i < schema.columnCount; ++i) {
    if (!schema.columns[i]->isKey)
      continue;
    statement.Append(hasKeyColumn ? L"," : L",PRIMARY KEY (");
    statement.AppendName(schema.columns[i]->name);
    hasKeyColumn = true;
  }
  if (hasKeyColumn)
    statement.Append(L')');
}

}  // namespace

QulString ColumnDefinitionSql(const TableColumn& column)
{
  StatementText definition;
  AppendColumnDefinition(definition, column);
  return definition.Text();
}

QulString CreateTableSql(const TableSchema& schema)
{
  StatementText statement;
  statement.Append(L"CREATE TABLE ");
  statement.Append(schema.tableName.Text());
  for (int i = 0; i < schema.columnCount; ++i) {
    statement.Append(i == 0 ? L" (" : L" ,");
    AppendColumnDefinition(statement, *schema.columns[i]);
  }
  if (schema.columnCount > 0) {
    AppendPrimaryKey(statement, schema);
    statement.Append(L");");
  }
  return statement.Text();
}
