#include "driver/Connection.h"

#include <odbcinst.h>

#include <algorithm>

#include "driver/SqliteError.h"
#include "driver/Statement.h"
#include "driver/WinePath.h"

namespace {

constexpr Database::Seconds UsualLockWait{5};
constexpr int LongestProfileValue = 4096;

// What the data source of this name says about a keyword.
std::string ProfileValue(const std::string& source, const char* keyword)
{
  std::string value(LongestProfileValue, '\0');
  const int length = SQLGetPrivateProfileString(source.c_str(), keyword, "", value.data(),
                                                LongestProfileValue, "odbc.ini");
  value.resize(static_cast<size_t>(std::max(length, 0)));
  return value;
}

}  // namespace

Connection::Connection(std::shared_ptr<Environment> owner) : environment(std::move(owner)) {}

SQLRETURN Connection::Connect(ConnectionString keywords)
{
  if (IsConnected())
    return diagnostics.Fail("08002", "The connection is in use");
  const std::string* const source = keywords.Find("DSN");
  if (keywords.Find("DBQ") == nullptr && source != nullptr)
    keywords.Add("DBQ", ProfileValue(*source, "DBQ"));
  const std::string* const file = keywords.Find("DBQ");
  if (file == nullptr || file->empty())
    return diagnostics.Fail("08001", "The connection string names no database file (DBQ)");
  const std::string path = FindFile(*file);
  if (path.empty())
    return diagnostics.Fail("08001", "The database file does not exist: " + *file);
  database = Database::Open(path, accessMode == SQL_MODE_READ_ONLY, LockWait(), diagnostics);
  if (!database)
    return SQL_ERROR;
  connectedWith = std::move(keywords);
  const std::string unknown = connectedWith.UnknownKeyword();
  if (!unknown.empty())
    return diagnostics.Warn("01S00", "The keyword has no meaning here: " + unknown);
  return SQL_SUCCESS;
}

SQLRETURN Connection::Disconnect()
{
  if (!IsConnected())
    return diagnostics.Fail("08003", "The connection is not open");
  if (!autocommit && sqlite3_get_autocommit(database->Handle()) == 0)
    return diagnostics.Fail("25000", "A transaction is open");
  while (!statements.empty())
    FreeStatement(*statements.back());
  database.reset();
  return SQL_SUCCESS;
}

SQLRETURN Connection::NewStatement(SQLHANDLE* statementHandle)
{
  if (!IsConnected())
    return diagnostics.Fail("08003", "The connection is not open");
  auto statement = std::make_shared<Statement>(*this);
  statements.push_back(statement);
  RegisterHandle(statement);
  *statementHandle = statement->handle;
  return SQL_SUCCESS;
}

void Connection::FreeStatement(Statement& statement)
{
  statement.Close();
  ReleaseHandle(statement);
  // The one that was made last usually goes first.
  for (size_t i = statements.size(); i-- > 0;) {
    if (statements[i].get() == &statement) {
      statements[i].swap(statements.back());
      statements.pop_back();
      return;
    }
  }
}

int Connection::BeginIfManual()
{
  if (autocommit || sqlite3_get_autocommit(database->Handle()) == 0)
    return SQLITE_OK;
  return database->Execute("BEGIN");
}

SQLRETURN Connection::EndTransaction(bool commit)
{
  if (!IsConnected() || sqlite3_get_autocommit(database->Handle()) != 0)
    return SQL_SUCCESS;
  database->StartOperation(LockWait(), Database::Seconds(0));
  if (!commit) {
    // A cursor can't go on over rows that are taken back.
    for (const std::shared_ptr<Statement>& statement : statements)
      statement->CloseCursor();
  }
  const int code = database->Execute(commit ? "COMMIT" : "ROLLBACK");
  return code == SQLITE_OK ? SQLRETURN{SQL_SUCCESS}
                           : FailFromSqlite(diagnostics, database->Handle(), code);
}

SQLRETURN Connection::SetAutocommit(bool on)
{
  if (on && !autocommit) {
    const SQLRETURN result = EndTransaction(true);
    if (!SQL_SUCCEEDED(result))
      return result;
  }
  autocommit = on;
  return SQL_SUCCESS;
}

Database::Seconds Connection::LockWait() const
{
  return loginTimeout > 0 ? Database::Seconds(loginTimeout) : UsualLockWait;
}

void Connection::SetWorking(const Statement* statement)
{
  const std::lock_guard<std::mutex> lock(workingMutex);
  working = statement;
}

void Connection::CancelIfWorking(const Statement& statement)
{
  // A statement at work keeps the database open for as long as this mutex is held.
  const std::lock_guard<std::mutex> lock(workingMutex);
  if (working == &statement)
    database->Cancel();
}
