#ifndef DRIVER_CONNECTION_H
#define DRIVER_CONNECTION_H

#include <memory>
#include <string>
#include <vector>

#include "driver/ConnectionString.h"
#include "driver/Database.h"
#include "driver/Environment.h"
#include "driver/Handles.h"

class Statement;

// A connection and its mutex, under which everything on it runs, statements included.
class Connection : public DriverObject, public std::enable_shared_from_this<Connection>
{
public:
  static constexpr SQLSMALLINT HandleKind = SQL_HANDLE_DBC;

  explicit Connection(std::shared_ptr<Environment> owner);

  SQLSMALLINT Kind() const override { return HandleKind; }
  std::mutex& Mutex() override { return mutex; }

  // Opens the database that DBQ names. The result has records for keywords that have no meaning.
  SQLRETURN Connect(ConnectionString keywords);
  // Frees all statements and closes the database. Not while a transaction is open.
  SQLRETURN Disconnect();
  bool IsConnected() const { return database != nullptr; }

  SQLRETURN NewStatement(SQLHANDLE* handle);
  void FreeStatement(Statement& statement);

  // Starts a transaction before a statement if the program ends its transactions itself.
  int BeginIfManual();
  // Ends the transaction, if one is open.
  SQLRETURN EndTransaction(bool commit);

  SQLRETURN SetAutocommit(bool on);

  // What a statement waits for a lock, unless it has a timeout of its own.
  Database::Seconds LockWait() const;

  // Odbc 2 knows no SQL_NO_DATA for a statement that changed nothing.
  bool IsOdbc3() const { return environment->odbcVersion != SQL_OV_ODBC2; }

  const std::shared_ptr<Environment> environment;
  std::unique_ptr<Database> database;
  ConnectionString connectedWith;
  SQLUINTEGER loginTimeout = 0;
  SQLUINTEGER accessMode = SQL_MODE_READ_WRITE;
  bool autocommit = true;
  bool metadataId = false;
  // Tells which statement is at work, null for none, so that another thread can cancel it.
  void SetWorking(const Statement* statement);
  // Ends what the statement does, if it does anything. The connection's mutex isn't needed.
  void CancelIfWorking(const Statement& statement);

private:
  std::mutex mutex;
  std::mutex workingMutex;
  const Statement* working = nullptr;
  std::vector<std::shared_ptr<Statement>> statements;
};

#endif
