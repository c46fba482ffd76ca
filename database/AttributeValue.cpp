#include "database/AttributeValue.h"

#include "database/QulDatabase.h"

void ReadAttributeValues(const QulDatabase& database, const wchar_t* table,
                         QulArray<AttributeValue>& rows)
{
  SQLHSTMT statement = SQL_NULL_HSTMT;
  bool ready = database.connected && SQL_SUCCEEDED(SQLAllocHandle(
                                         SQL_HANDLE_STMT, database.connectionHandle, &statement));
  if (ready) {
    QulString query;
    query.Format(L"SELECT * FROM %s", table);
    ready = SQL_SUCCEEDED(SQLExecDirectW(statement, const_cast<SQLWCHAR*>(query.Text()), SQL_NTS));
  }
  if (ready) {
    // Names and numbers are short; a longer text is cut.
    wchar_t attribute[50] = {};
    wchar_t value[50] = {};
    SQLLEN length = 0;  // of both, and not looked at
    (void)SQLBindCol(statement, 1, SQL_C_WCHAR, attribute, sizeof(attribute), &length);
    (void)SQLBindCol(statement, 2, SQL_C_WCHAR, value, sizeof(value), &length);
    while (SQL_SUCCEEDED(SQLFetch(statement))) {
      const AttributeValue row{attribute, value};
      if (row.attribute.Length() > 0 && row.value.Length() > 0)
        rows.Append(row);
    }
  }
  (void)database.FreeStatement(statement);
}
