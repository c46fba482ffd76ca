#ifndef DRIVER_STATEMENT_H
#define DRIVER_STATEMENT_H

#include <memory>
#include <string>
#include <vector>

#include "driver/Connection.h"
#include "driver/Conversion.h"
#include "driver/Handles.h"
#include "driver/Parameters.h"
#include "driver/Rows.h"

struct StatementAttributes
{
  SQLULEN queryTimeout = 0;
  SQLULEN maxRows = 0;
  SQLULEN noScan = SQL_NOSCAN_OFF;
  SQLULEN retrieveData = SQL_RD_ON;
  SQLULEN metadataId = SQL_FALSE;
  SQLULEN rowBindType = SQL_BIND_BY_COLUMN;
  SQLULEN parameterBindType = SQL_PARAM_BIND_BY_COLUMN;
  SQLULEN* rowBindOffset = nullptr;
  SQLULEN* parameterBindOffset = nullptr;
  SQLULEN* rowsFetched = nullptr;
  SQLUSMALLINT* rowStatus = nullptr;
  SQLULEN* parametersProcessed = nullptr;
  SQLUSMALLINT* parameterStatus = nullptr;
};

// A statement of a connection. It is in one of three states: without anything; prepared; or with an
// open cursor, prepared or not. Results are those of the ODBC calls of the same names.
class Statement : public DriverObject
{
public:
  static constexpr SQLSMALLINT HandleKind = SQL_HANDLE_STMT;

  explicit Statement(Connection& owner);
  ~Statement() override;

  SQLSMALLINT Kind() const override { return HandleKind; }
  std::mutex& Mutex() override { return connection->Mutex(); }

  SQLRETURN Prepare(const std::string& text);
  SQLRETURN Execute();
  SQLRETURN ExecuteDirect(const std::string& text);
  SQLRETURN NextDelayedParameter(SQLPOINTER* token);
  SQLRETURN PutDelayedData(const void* data, SQLLEN length);
  void StopWaitingForData();

  // Opens a cursor on the answer of a catalogue call.
  SQLRETURN OpenStored(std::unique_ptr<StoredRows> answer);

  SQLRETURN BindColumn(SQLUSMALLINT column, const Target& target);
  SQLRETURN Fetch();
  SQLRETURN GetData(SQLUSMALLINT column, const Target& target);

  bool HasCursor() const { return cursorOpen; }
  // Nothing happens without a cursor.
  void CloseCursor();
  // Lets go of everything that SQLite has.
  void Close();

  // Columns of the result or of what is prepared; empty if there are none.
  const std::vector<ResultColumn>& Columns();
  int ParameterCount() const;
  SQLLEN RowCount() const { return rowCount; }
  // Of the present row, from 1; 0 if there is none.
  SQLULEN RowNumber() const { return onRow ? rowsDelivered : 0; }

  // Tells the database how long to wait for the calls that follow.
  void StartOperation();
  SQLRETURN FailFromDatabase(int code);

  // The connection stays until the last of its statements is gone.
  const std::shared_ptr<Connection> connection;
  StatementAttributes attributes;
  std::vector<Target> bindings;       // of the columns from 1 on
  std::vector<Parameter> parameters;  // from 1 on
  std::string cursorName;

private:
  enum class Effect
  {
    Other,
    Insert,
    SearchedChange
  };

  // A value that is read piece by piece.
  struct PartialRead
  {
    SQLUSMALLINT column = 0;
    SQLSMALLINT cType = 0;
    bool finished = false;
    std::string bytes;
    size_t offset = 0;
  };

  int Compile(const std::string& text);
  SQLRETURN CheckTail(const char* tail);
  SQLRETURN BindAndRun();
  SQLRETURN Run();
  SQLRETURN FinishChange();
  void DropQuery();
  SQLRETURN DeliverRow();
  SQLRETURN GetPiece(const Cell& cell, const ColumnType& column, const Target& target);

  sqlite3_stmt* query = nullptr;
  Effect effect = Effect::Other;
  bool isPrepared = false;
  std::unique_ptr<Rows> rows;
  bool cursorOpen = false;
  bool rowWaits = false;  // the first row has been stepped to and not been fetched yet
  bool onRow = false;
  bool atEnd = false;
  SQLULEN rowsDelivered = 0;
  SQLLEN rowCount = -1;
  PartialRead partial;
  std::vector<DelayedValue> delayed;
  size_t nextDelayed = 0;
  bool waitsForData = false;
};

#endif
