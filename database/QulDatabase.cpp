#include "database/QulDatabase.h"

#include "database/InfoTable.h"
#include "database/KFProjectsVersionTable.h"
#include "database/KFVersionTable.h"
#include "database/Trace.h"

#include <stddef.h>

namespace {

constexpr SQLULEN LoginTimeoutSeconds = 5;
constexpr SQLSMALLINT CompletedStringCharacters = 4096;

// Numbers travel to ODBC in its pointer arguments.
SQLPOINTER AsPointer(SQLULEN number)
{
  // NOLINTNEXTLINE(performance-no-int-to-ptr): nobody follows such a pointer.
  return reinterpret_cast<SQLPOINTER>(number);
}

// ODBC's wide calls take their input texts through pointers to changeable ones and change nothing.
SQLWCHAR* InputText(const wchar_t* text)
{
  return const_cast<SQLWCHAR*>(text);
}

}  // namespace

QulDatabase::QulDatabase(const wchar_t* connectionText, const wchar_t* databaseName)
{
  name.Assign(databaseName);
  connectionString.Assign(connectionText);
  const wchar_t* failure = Connect();
  if (failure != nullptr)
    ReportTrace(failure);
  connected = failure == nullptr;
  versionTable = new KFVersionTable(*this);
  projectsVersionTable = new KFProjectsVersionTable(*this);
  infoTable = new InfoTable(*this);
}

QulDatabase::~QulDatabase()
{
  if (connectionHandle != SQL_NULL_HDBC) {
    (void)SQLDisconnect(connectionHandle);
    (void)SQLFreeHandle(SQL_HANDLE_DBC, connectionHandle);
  }
  if (environmentHandle != SQL_NULL_HENV)
    (void)SQLFreeHandle(SQL_HANDLE_ENV, environmentHandle);
  // The connection is gone: none of these asks it for anything.
  delete versionTable;
  delete projectsVersionTable;
  delete infoTable;
}

// Returns null, or the text that tells the step that failed. No text names the database: who reads
// them knows the order in which the databases are opened.
const wchar_t* QulDatabase::Connect()
{
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environmentHandle)))
    return L"Error in Allocating Environment.";
  if (!SQL_SUCCEEDED(SQLSetEnvAttr(environmentHandle, SQL_ATTR_ODBC_VERSION,
                                   AsPointer(SQL_OV_ODBC3), SQL_IS_INTEGER))) {
    return L"Error in Setting ODBC Version.";
  }
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, environmentHandle, &connectionHandle)))
    return L"Error in Allocating Connection.";
  if (!SQL_SUCCEEDED(SQLSetConnectAttrW(connectionHandle, SQL_ATTR_LOGIN_TIMEOUT,
                                        AsPointer(LoginTimeoutSeconds), 0))) {
    return L"Error in Setting Login Timeout.";
  }
  if (!SQL_SUCCEEDED(SQLSetConnectAttrW(connectionHandle, SQL_ATTR_ACCESS_MODE,
                                        AsPointer(SQL_MODE_READ_WRITE), 0))) {
    return L"Error in Setting AccessMode.";
  }
  SQLWCHAR completedString[CompletedStringCharacters];
  SQLSMALLINT completedLength = 0;
  if (!SQL_SUCCEEDED(SQLDriverConnectW(
          connectionHandle, nullptr, InputText(connectionString.Text()), SQL_NTS, completedString,
          CompletedStringCharacters, &completedLength, SQL_DRIVER_NOPROMPT))) {
    return L"Error driver connect to database.";
  }
  return nullptr;
}

bool QulDatabase::executeSQL(const wchar_t* statementText)
{
  const SQLHSTMT statement = AllocateStatement();
  const SQLRETURN code = SQLExecDirectW(statement, InputText(statementText), SQL_NTS);
  if (!SQL_SUCCEEDED(code)) {
    wchar_t message[MessageCharacters];
    (void)wsprintfW(message, L"Error executeSQL in %s database.", name.Text());
    ReportTrace(message);
    ReportTrace(statementText);
  }
  (void)FreeStatement(statement);
  return SQL_SUCCEEDED(code);
}

void QulDatabase::DropTable(const wchar_t* table)
{
  wchar_t statementText[MessageCharacters];
  (void)wsprintfW(statementText, L"DROP TABLE %s", table);
  const SQLHSTMT statement = AllocateStatement();
  if (!SQL_SUCCEEDED(SQLExecDirectW(statement, statementText, SQL_NTS))) {
    wchar_t message[MessageCharacters];
    (void)wsprintfW(message, L"Unable to drop table %s", table);
    ReportTrace(message);
  }
  (void)FreeStatement(statement);
}

bool QulDatabase::TableExists(const wchar_t* table)
{
  if (!connected)
    return false;
  SQLHSTMT statement = SQL_NULL_HSTMT;
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connectionHandle, &statement)))
    return false;
  bool exists = false;
  if (SQL_SUCCEEDED(
          SQLColumnsW(statement, nullptr, 0, nullptr, 0, InputText(table), SQL_NTS, nullptr, 0))) {
    constexpr SQLUSMALLINT tableNameColumn = 3;
    wchar_t tableName[255];
    SQLLEN length = 0;
    (void)SQLBindCol(statement, tableNameColumn, SQL_C_WCHAR, tableName, sizeof(tableName),
                     &length);
    const SQLRETURN code = SQLFetch(statement);
    // A catalogue that breaks down has not said that the table is missing.
    exists = SQL_SUCCEEDED(code) ? length > 0 : code != SQL_NO_DATA;
  }
  (void)FreeStatement(statement);
  return exists;
}

QulArray<QulString>& QulDatabase::GetTableNames()
{
  if (tableNames.count > 0 || !connected)
    return tableNames;
  // Nobody frees this statement, on whatever path: it ends with the connection, and one is enough
  // for the life of the list. Nothing is fetched through the bindings after this call.
  // Success with information counts as failure up to here and as a row below: a list that can't be
  // had cleanly isn't begun, but one that was begun is read to its end.
  SQLHSTMT statement = SQL_NULL_HSTMT;
  if (SQLAllocHandle(SQL_HANDLE_STMT, connectionHandle, &statement) != SQL_SUCCESS)
    return tableNames;
  constexpr SQLSMALLINT tableTypeLength = 5;
  if (SQLTablesW(statement, nullptr, 0, nullptr, 0, nullptr, 0, InputText(L"TABLE"),
                 tableTypeLength) != SQL_SUCCESS) {
    return tableNames;
  }

  wchar_t catalogue[129] = {};
  wchar_t schema[129] = {};
  wchar_t tableName[129] = {};
  wchar_t tableType[129] = {};
  wchar_t remarks[255] = {};
  SQLLEN lengths[5] = {};
  (void)SQLBindCol(statement, 1, SQL_C_WCHAR, catalogue, sizeof(catalogue), &lengths[0]);
  (void)SQLBindCol(statement, 2, SQL_C_WCHAR, schema, sizeof(schema), &lengths[1]);
  (void)SQLBindCol(statement, 3, SQL_C_WCHAR, tableName, sizeof(tableName), &lengths[2]);
  (void)SQLBindCol(statement, 4, SQL_C_WCHAR, tableType, sizeof(tableType), &lengths[3]);
  // A binding that says so of the last column knows already that no row comes.
  if (SQLBindCol(statement, 5, SQL_C_WCHAR, remarks, sizeof(remarks), &lengths[4]) == SQL_NO_DATA)
    return tableNames;
  for (;;) {
    const SQLRETURN code = SQLFetch(statement);
    // A handle that isn't one would give no rows for ever.
    if (code == SQL_ERROR || code == SQL_NO_DATA || code == SQL_INVALID_HANDLE)
      return tableNames;
    tableNames.Append(tableName);
  }
}

SQLHSTMT QulDatabase::AllocateStatement() const
{
  SQLHSTMT statement = SQL_NULL_HSTMT;
  if (connected)
    (void)SQLAllocHandle(SQL_HANDLE_STMT, connectionHandle, &statement);
  return statement;
}

int32_t QulDatabase::FreeStatement(SQLHSTMT statement) const
{
  if (!connected)
    return -1;
  try {
    return SQLFreeHandle(SQL_HANDLE_STMT, statement);
  } catch (...) {
    // The same as -1 in the 16 bits that ODBC's codes have.
    return 65535;
  }
}
