// Entry points: running statements, with their parameters.

#include "driver/EntryText.h"
#include "driver/Statement.h"

namespace {

template <typename Character>
SQLRETURN Prepare(SQLHSTMT handle, const Character* text, SQLINTEGER length)
{
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    if (!IsValidText(text, length))
      return statement.diagnostics.Fail("HY009", "There is no statement");
    if (statement.HasCursor())
      return statement.diagnostics.Fail("24000", "A cursor is open on the statement");
    return statement.Prepare(ToUtf8(text, length));
  });
}

template <typename Character>
SQLRETURN ExecuteDirect(SQLHSTMT handle, const Character* text, SQLINTEGER length)
{
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    if (!IsValidText(text, length))
      return statement.diagnostics.Fail("HY009", "There is no statement");
    return statement.ExecuteDirect(ToUtf8(text, length));
  });
}

template <typename Character>
SQLRETURN SetCursorName(SQLHSTMT handle, const Character* name, SQLSMALLINT length)
{
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    if (!IsValidText(name, length))
      return statement.diagnostics.Fail("HY009", "There is no name");
    statement.cursorName = ToUtf8(name, length);
    return SQLRETURN{SQL_SUCCESS};
  });
}

template <typename Character>
SQLRETURN GetCursorName(SQLHSTMT handle, Character* name, SQLSMALLINT capacity, SQLSMALLINT* length)
{
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    if (statement.cursorName.empty())
      statement.cursorName = "SQL_CUR" + std::to_string(reinterpret_cast<uintptr_t>(handle));
    return ReturnText(statement.diagnostics, statement.cursorName, name, capacity, length,
                      Count::Characters);
  });
}

}  // namespace

SQLRETURN SQL_API SQLPrepare(SQLHSTMT handle, SQLCHAR* text, SQLINTEGER length)
{
  return Prepare(handle, text, length);
}

SQLRETURN SQL_API SQLPrepareW(SQLHSTMT handle, SQLWCHAR* text, SQLINTEGER length)
{
  return Prepare(handle, text, length);
}

SQLRETURN SQL_API SQLExecDirect(SQLHSTMT handle, SQLCHAR* text, SQLINTEGER length)
{
  return ExecuteDirect(handle, text, length);
}

SQLRETURN SQL_API SQLExecDirectW(SQLHSTMT handle, SQLWCHAR* text, SQLINTEGER length)
{
  return ExecuteDirect(handle, text, length);
}

SQLRETURN SQL_API SQLExecute(SQLHSTMT handle)
{
  return WithHandle<Statement>(handle, [](Statement& statement) { return statement.Execute(); });
}

SQLRETURN SQL_API SQLSetCursorName(SQLHSTMT handle, SQLCHAR* name, SQLSMALLINT length)
{
  return SetCursorName(handle, name, length);
}

SQLRETURN SQL_API SQLSetCursorNameW(SQLHSTMT handle, SQLWCHAR* name, SQLSMALLINT length)
{
  return SetCursorName(handle, name, length);
}

SQLRETURN SQL_API SQLGetCursorName(SQLHSTMT handle, SQLCHAR* name, SQLSMALLINT capacity,
                                   SQLSMALLINT* length)
{
  return GetCursorName(handle, name, capacity, length);
}

SQLRETURN SQL_API SQLGetCursorNameW(SQLHSTMT handle, SQLWCHAR* name, SQLSMALLINT capacity,
                                    SQLSMALLINT* length)
{
  return GetCursorName(handle, name, capacity, length);
}

SQLRETURN SQL_API SQLBindParameter(SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT direction,
                                   SQLSMALLINT cType, SQLSMALLINT sqlType, SQLULEN size,
                                   SQLSMALLINT digits, SQLPOINTER value, SQLLEN capacity,
                                   SQLLEN* length)
{
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    if (number == 0)
      return statement.diagnostics.Fail("07009", "Parameters are counted from 1");
    if (direction != SQL_PARAM_INPUT)
      return statement.diagnostics.Fail("HYC00", "Parameters are for input only");
    if (!IsKnownCType(cType) || cType == SQL_ARD_TYPE)
      return statement.diagnostics.Fail("HY003", "This is no type of a buffer");
    // Intervals have the largest numbers.
    if (cType == SQL_C_GUID || cType >= SQL_C_INTERVAL_YEAR)
      return statement.diagnostics.Fail("07006", "No parameter takes this type of a buffer");
    if (capacity < 0)
      return statement.diagnostics.Fail("HY090", "The length of the buffer is negative");
    if (value == nullptr && length == nullptr)
      return statement.diagnostics.Fail("HY009", "A parameter needs a value or a length");
    if (statement.parameters.size() < number)
      statement.parameters.resize(number);
    statement.parameters[number - 1] = {true,   cType, sqlType,  size,
                                        digits, value, capacity, length};
    return SQLRETURN{SQL_SUCCESS};
  });
}

SQLRETURN SQL_API SQLNumParams(SQLHSTMT handle, SQLSMALLINT* count)
{
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    ReturnNumber<SQLSMALLINT>(count, statement.ParameterCount());
    return SQLRETURN{SQL_SUCCESS};
  });
}

SQLRETURN SQL_API SQLDescribeParam(SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT* sqlType,
                                   SQLULEN* size, SQLSMALLINT* digits, SQLSMALLINT* nullable)
{
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    if (number == 0 || number > statement.ParameterCount())
      return statement.diagnostics.Fail("07009", "The statement has no such parameter");
    // SQLite doesn't tell where a parameter goes; text is taken everywhere.
    const ColumnType text = PlainType(SQL_WVARCHAR);
    ReturnNumber<SQLSMALLINT>(sqlType, SQL_WVARCHAR);
    ReturnNumber<SQLULEN>(size, text.size);
    ReturnNumber<SQLSMALLINT>(digits, 0);
    ReturnNumber<SQLSMALLINT>(nullable, SQL_NULLABLE_UNKNOWN);
    return SQLRETURN{SQL_SUCCESS};
  });
}

SQLRETURN SQL_API SQLParamData(SQLHSTMT handle, SQLPOINTER* token)
{
  return WithHandle<Statement>(
      handle, [&](Statement& statement) { return statement.NextDelayedParameter(token); });
}

SQLRETURN SQL_API SQLPutData(SQLHSTMT handle, SQLPOINTER data, SQLLEN length)
{
  return WithHandle<Statement>(
      handle, [&](Statement& statement) { return statement.PutDelayedData(data, length); });
}

SQLRETURN SQL_API SQLCancel(SQLHSTMT handle)
{
  const auto statement = std::static_pointer_cast<Statement>(FindHandle(handle, SQL_HANDLE_STMT));
  if (!statement)
    return SQL_INVALID_HANDLE;
  // The mutex is held by the call that is to be cancelled; nothing is waited for here.
  const std::unique_lock<std::mutex> lock(statement->Mutex(), std::try_to_lock);
  if (!lock.owns_lock()) {
    statement->connection->CancelIfWorking(*statement);
    return SQL_SUCCESS;
  }
  if (statement->released)
    return SQL_INVALID_HANDLE;
  statement->StopWaitingForData();
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLRowCount(SQLHSTMT handle, SQLLEN* count)
{
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    ReturnNumber<SQLLEN>(count, statement.RowCount());
    return SQLRETURN{SQL_SUCCESS};
  });
}

SQLRETURN SQL_API SQLMoreResults(SQLHSTMT handle)
{
  return WithHandle<Statement>(handle, [](Statement& statement) {
    // A statement has one result at the most, and that is done with.
    statement.CloseCursor();
    return SQLRETURN{SQL_NO_DATA};
  });
}

SQLRETURN SQL_API SQLCloseCursor(SQLHSTMT handle)
{
  return WithHandle<Statement>(handle, [](Statement& statement) {
    if (!statement.HasCursor())
      return statement.diagnostics.Fail("24000", "No cursor is open");
    statement.CloseCursor();
    return SQLRETURN{SQL_SUCCESS};
  });
}

SQLRETURN SQL_API SQLFreeStmt(SQLHSTMT handle, SQLUSMALLINT option)
{
  if (option == SQL_DROP)
    return SQLFreeHandle(SQL_HANDLE_STMT, handle);
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    switch (option) {
      case SQL_CLOSE: statement.CloseCursor(); return SQLRETURN{SQL_SUCCESS};
      case SQL_UNBIND: statement.bindings.clear(); return SQLRETURN{SQL_SUCCESS};
      case SQL_RESET_PARAMS: statement.parameters.clear(); return SQLRETURN{SQL_SUCCESS};
      default: return statement.diagnostics.Fail("HY092", "There is no such option");
    }
  });
}
