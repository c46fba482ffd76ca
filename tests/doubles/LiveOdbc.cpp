// The engine that hands all calls to unixODBC.
#include "tests/doubles/LiveOdbc.h"

#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/OdbcEngine.h"
#include "tests/doubles/Recorder.h"
#include "tests/doubles/Text.h"
#include "tests/doubles/UnixOdbc.h"

#include <stdlib.h>

#include <filesystem>
#include <set>

namespace {

const UnixOdbc& Manager()
{
  static const UnixOdbc manager = LoadUnixOdbc();
  return manager;
}

class LiveOdbc : public OdbcEngine
{
public:
  // Closes what the code under test has left, so that files can be removed.
  ~LiveOdbc() override
  {
    for (SQLHDBC connection : connections) {
      (void)Manager().Disconnect(connection);
      (void)Manager().FreeHandle(SQL_HANDLE_DBC, connection);
    }
    for (SQLHENV environment : environments)
      (void)Manager().FreeHandle(SQL_HANDLE_ENV, environment);
  }

  SQLRETURN AllocHandle(SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* handle) override
  {
    const SQLRETURN result = Manager().AllocHandle(kind, parent, handle);
    if (SQL_SUCCEEDED(result) && kind == SQL_HANDLE_ENV)
      environments.insert(*handle);
    if (SQL_SUCCEEDED(result) && kind == SQL_HANDLE_DBC)
      connections.insert(*handle);
    return result;
  }

  SQLRETURN FreeHandle(SQLSMALLINT kind, SQLHANDLE handle) override
  {
    const SQLRETURN result = Manager().FreeHandle(kind, handle);
    if (SQL_SUCCEEDED(result) && kind == SQL_HANDLE_ENV)
      environments.erase(handle);
    if (SQL_SUCCEEDED(result) && kind == SQL_HANDLE_DBC)
      connections.erase(handle);
    return result;
  }

  SQLRETURN SetEnvAttr(SQLHENV environment, SQLINTEGER attribute, SQLPOINTER value,
                       SQLINTEGER length) override
  {
    return Manager().SetEnvAttr(environment, attribute, value, length);
  }

  SQLRETURN SetConnectAttr(SQLHDBC connection, SQLINTEGER attribute, SQLPOINTER value,
                           SQLINTEGER length) override
  {
    return Manager().SetConnectAttrW(connection, attribute, value, length);
  }

  SQLRETURN DriverConnect(SQLHDBC connection, SQLWCHAR* text, SQLSMALLINT textLength,
                          SQLWCHAR* completed, SQLSMALLINT completedSize,
                          SQLSMALLINT* completedLength, SQLUSMALLINT completion) override
  {
    return Manager().DriverConnectW(connection, nullptr, text, textLength, completed, completedSize,
                                    completedLength, completion);
  }

  SQLRETURN Disconnect(SQLHDBC connection) override { return Manager().Disconnect(connection); }

  SQLRETURN ExecDirect(SQLHSTMT statement, SQLWCHAR* text, SQLINTEGER length) override
  {
    return Manager().ExecDirectW(statement, text, length);
  }

  SQLRETURN Columns(SQLHSTMT statement, SQLWCHAR* table, SQLSMALLINT tableLength) override
  {
    return Manager().ColumnsW(statement, nullptr, 0, nullptr, 0, table, tableLength, nullptr, 0);
  }

  SQLRETURN Tables(SQLHSTMT statement, SQLWCHAR* types, SQLSMALLINT typesLength) override
  {
    return Manager().TablesW(statement, nullptr, 0, nullptr, 0, nullptr, 0, types, typesLength);
  }

  SQLRETURN BindCol(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT type, SQLPOINTER buffer,
                    SQLLEN bytes, SQLLEN* lengthWord) override
  {
    return Manager().BindCol(statement, column, type, buffer, bytes, lengthWord);
  }

  SQLRETURN Fetch(SQLHSTMT statement) override { return Manager().Fetch(statement); }
  SQLRETURN CloseCursor(SQLHSTMT statement) override { return Manager().CloseCursor(statement); }

private:
  std::set<SQLHENV> environments;
  std::set<SQLHDBC> connections;
};

// A test's own connection to a database, beside those of the code under test.
class Session
{
public:
  explicit Session(const std::string& path)
  {
    (void)Manager().AllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
    (void)Manager().SetEnvAttr(environment, SQL_ATTR_ODBC_VERSION,
                               reinterpret_cast<SQLPOINTER>(uintptr_t{SQL_OV_ODBC3}), 0);
    (void)Manager().AllocHandle(SQL_HANDLE_DBC, environment, &connection);
    WideText text(ConnectionStringOf(path));
    if (!SQL_SUCCEEDED(Manager().DriverConnectW(connection, nullptr, text.data(), SQL_NTS, nullptr,
                                                0, nullptr, SQL_DRIVER_NOPROMPT)))
      failure = path + ": " + Diagnosis(SQL_HANDLE_DBC, connection);
  }

  ~Session()
  {
    (void)Manager().Disconnect(connection);
    (void)Manager().FreeHandle(SQL_HANDLE_DBC, connection);
    (void)Manager().FreeHandle(SQL_HANDLE_ENV, environment);
  }

  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Runs the statement and gives its rows. What failed stands in Failure() from then on, and
  // nothing is run any more.
  std::vector<std::string> Run(const std::string& sql)
  {
    std::vector<std::string> rows;
    if (!failure.empty())
      return rows;
    SQLHSTMT statement = SQL_NULL_HSTMT;
    (void)Manager().AllocHandle(SQL_HANDLE_STMT, connection, &statement);
    WideText text(sql);
    SQLSMALLINT columns = 0;
    const SQLRETURN code = Manager().ExecDirectW(statement, text.data(), SQL_NTS);
    if (!SQL_SUCCEEDED(code) && code != SQL_NO_DATA)
      failure = sql + ": " + Diagnosis(SQL_HANDLE_STMT, statement);
    else
      (void)Manager().NumResultCols(statement, &columns);
    while (columns > 0 && SQL_SUCCEEDED(Manager().Fetch(statement)))
      rows.push_back(RowText(statement, columns));
    (void)Manager().FreeHandle(SQL_HANDLE_STMT, statement);
    return rows;
  }

  const std::string& Failure() const { return failure; }

private:
  static std::string Diagnosis(SQLSMALLINT kind, SQLHANDLE handle)
  {
    SQLWCHAR state[6] = {};
    SQLWCHAR message[512] = {};
    SQLINTEGER number = 0;
    SQLSMALLINT length = 0;
    (void)Manager().GetDiagRecW(kind, handle, 1, state, &number, message, 512, &length);
    return Utf8(state) + " " + Utf8(message);
  }

  static std::string RowText(SQLHSTMT statement, SQLSMALLINT columns)
  {
    std::vector<SQLWCHAR> value(70000);
    const SQLLEN bytes = static_cast<SQLLEN>(value.size() * sizeof(SQLWCHAR));
    std::string row;
    for (SQLUSMALLINT column = 1; column <= columns; ++column) {
      SQLLEN length = SQL_NULL_DATA;
      value[0] = L'\0';
      (void)Manager().GetData(statement, column, SQL_C_WCHAR, value.data(), bytes, &length);
      row += (column > 1 ? "|" : "") + (length < 0 ? "<null>" : Utf8(value.data()));
    }
    return row;
  }

  SQLHENV environment = SQL_NULL_HENV;
  SQLHDBC connection = SQL_NULL_HDBC;
  std::string failure;
};

}  // namespace

bool UseLiveOdbc(const std::string& folder)
{
  if (!std::filesystem::exists(std::filesystem::path(folder) / "odbcinst.ini")) {
    Misuse("No ODBC driver in " + folder + ": build the preset " KESTREL_DRIVER_PRESET ".");
    return false;
  }
  (void)setenv("ODBCSYSINI", folder.c_str(), 1);
  (void)setenv("WINEPREFIX", Files().Prefix().c_str(), 1);
  UseOdbcEngine(std::make_unique<LiveOdbc>());
  return true;
}

bool UseLiveOdbc()
{
  return UseLiveOdbc(KESTREL_DRIVER_FOLDER);
}

std::string RunSql(const std::string& path, std::initializer_list<std::string> statements)
{
  if (!Files().Exists(path))
    Files().Put(path, "");
  Session session(path);
  for (const std::string& statement : statements)
    (void)session.Run(statement);
  return session.Failure();
}

std::vector<std::string> SelectRows(const std::string& path, const std::string& query)
{
  Session session(path);
  const std::vector<std::string> rows = session.Run(query);
  return session.Failure().empty() ? rows : std::vector<std::string>{session.Failure()};
}

std::string ConnectionStringOf(const std::string& path)
{
  return "DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=" + path;
}
