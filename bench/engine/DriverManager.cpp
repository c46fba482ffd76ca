// ODBC for natively built code that is measured: each call is handed to unixODBC as it is, across
// the two calling conventions, without the diary that the double of the tests keeps.
#include "tests/doubles/Recorder.h"
#include "tests/doubles/UnixOdbc.h"

namespace {

const UnixOdbc Manager = LoadUnixOdbc();

}  // namespace

// There is nothing to forget here.
void ResetOdbc() {}

SQLRETURN WINAPI SQLAllocHandle(SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* handle)
{
  return Manager.AllocHandle(kind, parent, handle);
}

SQLRETURN WINAPI SQLFreeHandle(SQLSMALLINT kind, SQLHANDLE handle)
{
  return Manager.FreeHandle(kind, handle);
}

SQLRETURN WINAPI SQLSetEnvAttr(SQLHENV environment, SQLINTEGER attribute, SQLPOINTER value,
                               SQLINTEGER length)
{
  return Manager.SetEnvAttr(environment, attribute, value, length);
}

SQLRETURN WINAPI SQLSetConnectAttrW(SQLHDBC connection, SQLINTEGER attribute, SQLPOINTER value,
                                    SQLINTEGER length)
{
  return Manager.SetConnectAttrW(connection, attribute, value, length);
}

SQLRETURN WINAPI SQLDriverConnectW(SQLHDBC connection, SQLHWND window, SQLWCHAR* text,
                                   SQLSMALLINT textLength, SQLWCHAR* completed,
                                   SQLSMALLINT completedSize, SQLSMALLINT* completedLength,
                                   SQLUSMALLINT completion)
{
  return Manager.DriverConnectW(connection, window, text, textLength, completed, completedSize,
                                completedLength, completion);
}

SQLRETURN WINAPI SQLDisconnect(SQLHDBC connection)
{
  return Manager.Disconnect(connection);
}

SQLRETURN WINAPI SQLExecDirectW(SQLHSTMT statement, SQLWCHAR* text, SQLINTEGER length)
{
  return Manager.ExecDirectW(statement, text, length);
}

SQLRETURN WINAPI SQLColumnsW(SQLHSTMT statement, SQLWCHAR* catalog, SQLSMALLINT catalogLength,
                             SQLWCHAR* schema, SQLSMALLINT schemaLength, SQLWCHAR* table,
                             SQLSMALLINT tableLength, SQLWCHAR* column, SQLSMALLINT columnLength)
{
  return Manager.ColumnsW(statement, catalog, catalogLength, schema, schemaLength, table,
                          tableLength, column, columnLength);
}

SQLRETURN WINAPI SQLTablesW(SQLHSTMT statement, SQLWCHAR* catalog, SQLSMALLINT catalogLength,
                            SQLWCHAR* schema, SQLSMALLINT schemaLength, SQLWCHAR* table,
                            SQLSMALLINT tableLength, SQLWCHAR* types, SQLSMALLINT typesLength)
{
  return Manager.TablesW(statement, catalog, catalogLength, schema, schemaLength, table,
                         tableLength, types, typesLength);
}

SQLRETURN WINAPI SQLBindCol(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT type,
                            SQLPOINTER buffer, SQLLEN bytes, SQLLEN* lengthWord)
{
  return Manager.BindCol(statement, column, type, buffer, bytes, lengthWord);
}

SQLRETURN WINAPI SQLFetch(SQLHSTMT statement)
{
  return Manager.Fetch(statement);
}

SQLRETURN WINAPI SQLCloseCursor(SQLHSTMT statement)
{
  return Manager.CloseCursor(statement);
}
