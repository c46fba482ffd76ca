// The least that a program can do with the databases of a launch: connect to all of them, one
// after the other, and disconnect. Its argument is a file with a connection string in each line; it
// ends with the number of those that failed.
#include <windows.h>
// The ODBC headers build on the one above.
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <fstream>
#include <string>
#include <vector>

int main(int argumentCount, char** arguments)
{
  std::ifstream file(argumentCount == 2 ? arguments[1] : "");
  std::vector<std::string> connectionStrings;
  for (std::string line; std::getline(file, line);)
    connectionStrings.push_back(line);
  if (connectionStrings.empty())
    return 1;

  SQLHENV environment = nullptr;
  (void)SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): numbers travel to ODBC in its pointer arguments.
  (void)SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION,
                      reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), SQL_IS_INTEGER);
  std::vector<SQLHDBC> connections;
  int failed = 0;
  for (const std::string& text : connectionStrings) {
    std::wstring connectionString(text.begin(), text.end());
    SQLHDBC connection = nullptr;
    (void)SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection);
    wchar_t completed[4096];
    SQLSMALLINT length = 0;
    if (!SQL_SUCCEEDED(SQLDriverConnectW(connection, nullptr, connectionString.data(), SQL_NTS,
                                         completed, 4096, &length, SQL_DRIVER_NOPROMPT))) {
      ++failed;
    }
    connections.push_back(connection);
  }
  for (SQLHDBC connection : connections) {
    (void)SQLDisconnect(connection);
    (void)SQLFreeHandle(SQL_HANDLE_DBC, connection);
  }
  (void)SQLFreeHandle(SQL_HANDLE_ENV, environment);
  return failed;
}
