#include "tests/doubles/ScriptedOdbc.h"

#include "tests/doubles/Recorder.h"
#include "tests/doubles/Text.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <limits>

namespace {

// Handles are multiples of this, so that neither a null nor a small number is one. None comes
// twice.
constexpr uintptr_t HandleStep = 0x10000;

// Null if it isn't there.
template <typename Value>
Value* Find(std::map<SQLHANDLE, Value>& values, SQLHANDLE handle)
{
  const auto found = values.find(handle);
  return found == values.end() ? nullptr : &found->second;
}

template <typename Value>
void StoreFixed(Value value, void* buffer, SQLLEN* lengthWord)
{
  memcpy(buffer, &value, sizeof(value));
  if (lengthWord != nullptr)
    *lengthWord = sizeof(value);
}

// The whole part of the number; SQL_ERROR, with nothing stored, if the type has no such number.
template <typename Integer>
SQLRETURN StoreInteger(double number, void* buffer, SQLLEN* lengthWord)
{
  using Limits = std::numeric_limits<Integer>;
  if (!(number > Limits::min() - 1.0 && number < Limits::max() + 1.0))
    return SQL_ERROR;
  StoreFixed(static_cast<Integer>(number), buffer, lengthWord);
  return SQL_SUCCESS;
}

SQL_TIMESTAMP_STRUCT TimestampOf(const std::string& text)
{
  int year = 0;
  unsigned int parts[5] = {};
  (void)sscanf(text.c_str(), "%d-%u-%u %u:%u:%u", &year, &parts[0], &parts[1], &parts[2], &parts[3],
               &parts[4]);
  const auto part = [&parts](int i) { return static_cast<SQLUSMALLINT>(parts[i]); };
  return {static_cast<SQLSMALLINT>(year), part(0), part(1), part(2), part(3), part(4), 0};
}

// Cuts the text at the end of the buffer, as a driver does; SQL_SUCCESS_WITH_INFO if it had to.
SQLRETURN StoreText(const std::string& utf8, void* buffer, SQLLEN bytes, SQLLEN* lengthWord)
{
  const WideText text(utf8);
  const size_t room = static_cast<size_t>(bytes) / sizeof(wchar_t);
  if (lengthWord != nullptr)
    *lengthWord = static_cast<SQLLEN>(text.Length() * sizeof(wchar_t));
  if (room == 0)
    return SQL_SUCCESS_WITH_INFO;
  wchar_t* destination = static_cast<wchar_t*>(buffer);
  const size_t length = std::min(text.Length(), room - 1);
  memcpy(destination, text.c_str(), length * sizeof(wchar_t));
  destination[length] = L'\0';
  return length < text.Length() ? SQL_SUCCESS_WITH_INFO : SQL_SUCCESS;
}

bool IsKnownType(SQLSMALLINT type)
{
  for (const int known : {SQL_C_WCHAR, SQL_C_BIT, SQL_C_SHORT, SQL_C_SSHORT, SQL_C_LONG,
                          SQL_C_SLONG, SQL_C_DOUBLE, SQL_C_TIMESTAMP, SQL_C_TYPE_TIMESTAMP}) {
    if (type == known)
      return true;
  }
  return false;
}

SQLRETURN Code(int code)
{
  return static_cast<SQLRETURN>(code);
}

}  // namespace

SQLHANDLE ScriptedOdbc::NewHandle()
{
  return reinterpret_cast<SQLHANDLE>(++given * HandleStep);
}

SQLRETURN ScriptedOdbc::AllocHandle(SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* handle)
{
  if (handle == nullptr)
    return SQL_ERROR;
  *handle = SQL_NULL_HANDLE;
  if (kind == SQL_HANDLE_ENV) {
    *handle = NewHandle();
    environments[*handle] = Environment();
    return SQL_SUCCESS;
  }
  if (kind == SQL_HANDLE_DBC) {
    const Environment* environment = Find(environments, parent);
    if (environment == nullptr)
      return SQL_INVALID_HANDLE;
    if (!environment->hasVersion)
      return SQL_ERROR;
    *handle = NewHandle();
    connections[*handle].environment = parent;
    return SQL_SUCCESS;
  }
  const Connection* connection = Find(connections, parent);
  if (connection == nullptr)
    return SQL_INVALID_HANDLE;
  if (connection->database == nullptr || kind != SQL_HANDLE_STMT)
    return SQL_ERROR;
  *handle = NewHandle();
  statements[*handle].connection = parent;
  return SQL_SUCCESS;
}

SQLRETURN ScriptedOdbc::FreeHandle(SQLSMALLINT kind, SQLHANDLE handle)
{
  if (kind == SQL_HANDLE_ENV) {
    for (const auto& [value, connection] : connections) {
      if (connection.environment == handle)
        return SQL_ERROR;
    }
    return environments.erase(handle) == 1 ? SQL_SUCCESS : SQL_INVALID_HANDLE;
  }
  if (kind == SQL_HANDLE_DBC) {
    const Connection* connection = Find(connections, handle);
    if (connection != nullptr && connection->database != nullptr)
      return SQL_ERROR;
    return connections.erase(handle) == 1 ? SQL_SUCCESS : SQL_INVALID_HANDLE;
  }
  return statements.erase(handle) == 1 ? SQL_SUCCESS : SQL_INVALID_HANDLE;
}

SQLRETURN ScriptedOdbc::SetEnvAttr(SQLHENV environment, SQLINTEGER attribute, SQLPOINTER value,
                                   SQLINTEGER /*length*/)
{
  Environment* found = Find(environments, environment);
  if (found == nullptr)
    return SQL_INVALID_HANDLE;
  if (attribute != SQL_ATTR_ODBC_VERSION || reinterpret_cast<uintptr_t>(value) != SQL_OV_ODBC3)
    return SQL_ERROR;
  found->hasVersion = true;
  return SQL_SUCCESS;
}

SQLRETURN ScriptedOdbc::SetConnectAttr(SQLHDBC connection, SQLINTEGER attribute,
                                       SQLPOINTER /*value*/, SQLINTEGER /*length*/)
{
  if (Find(connections, connection) == nullptr)
    return SQL_INVALID_HANDLE;
  const bool known = attribute == SQL_ATTR_LOGIN_TIMEOUT || attribute == SQL_ATTR_ACCESS_MODE;
  return known ? SQL_SUCCESS : SQL_ERROR;
}

SQLRETURN ScriptedOdbc::DriverConnect(SQLHDBC connection, SQLWCHAR* text, SQLSMALLINT textLength,
                                      SQLWCHAR* completed, SQLSMALLINT completedSize,
                                      SQLSMALLINT* completedLength, SQLUSMALLINT /*completion*/)
{
  Connection* found = Find(connections, connection);
  if (found == nullptr)
    return SQL_INVALID_HANDLE;
  const std::string connectionString = OdbcText(text, textLength);
  const auto database = databases.find(connectionString);
  if (database == databases.end() || found->database != nullptr)
    return SQL_ERROR;
  const SQLRETURN result = Code(database->second.ConnectCode());
  if (!SQL_SUCCEEDED(result))
    return result;
  found->database = &database->second;
  SQLLEN length = 0;
  const SQLRETURN stored = StoreText(connectionString, completed,
                                     completedSize * static_cast<SQLLEN>(sizeof(wchar_t)), &length);
  if (completedLength != nullptr)
    *completedLength = static_cast<SQLSMALLINT>(length / static_cast<SQLLEN>(sizeof(wchar_t)));
  return result == SQL_SUCCESS ? stored : result;
}

SQLRETURN ScriptedOdbc::Disconnect(SQLHDBC connection)
{
  Connection* found = Find(connections, connection);
  if (found == nullptr)
    return SQL_INVALID_HANDLE;
  if (found->database == nullptr)
    return SQL_ERROR;
  found->database = nullptr;
  std::erase_if(statements,
                [connection](const auto& entry) { return entry.second.connection == connection; });
  return SQL_SUCCESS;
}

const OdbcDatabase& ScriptedOdbc::DatabaseOf(const Statement& statement) const
{
  return *connections.at(statement.connection).database;
}

// The bindings stay what they are.
SQLRETURN ScriptedOdbc::Open(Statement& statement, const OdbcResult& result)
{
  const SQLRETURN code = Code(result.code);
  statement.hasCursor = SQL_SUCCEEDED(code) && result.hasRows;
  statement.rows = result.rows;
  statement.nextRow = 0;
  return code;
}

SQLRETURN ScriptedOdbc::ExecDirect(SQLHSTMT statement, SQLWCHAR* text, SQLINTEGER length)
{
  Statement* found = Find(statements, statement);
  if (found == nullptr)
    return SQL_INVALID_HANDLE;
  if (found->hasCursor || text == nullptr)
    return SQL_ERROR;
  return Open(*found, DatabaseOf(*found).Execute(OdbcText(text, length)));
}

SQLRETURN ScriptedOdbc::Columns(SQLHSTMT statement, SQLWCHAR* table, SQLSMALLINT tableLength)
{
  Statement* found = Find(statements, statement);
  if (found == nullptr)
    return SQL_INVALID_HANDLE;
  if (found->hasCursor)
    return SQL_ERROR;
  return Open(*found, DatabaseOf(*found).ColumnsMatching(OdbcText(table, tableLength)));
}

SQLRETURN ScriptedOdbc::Tables(SQLHSTMT statement, SQLWCHAR* types, SQLSMALLINT typesLength)
{
  Statement* found = Find(statements, statement);
  if (found == nullptr)
    return SQL_INVALID_HANDLE;
  if (OdbcText(types, typesLength) != "TABLE")
    EndUnprepared("SQLTablesW was asked for something else than the type TABLE.");
  if (found->hasCursor)
    return SQL_ERROR;
  return Open(*found, DatabaseOf(*found).TableList());
}

SQLRETURN ScriptedOdbc::BindCol(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT type,
                                SQLPOINTER buffer, SQLLEN bytes, SQLLEN* lengthWord)
{
  Statement* found = Find(statements, statement);
  if (found == nullptr)
    return SQL_INVALID_HANDLE;
  if (!IsKnownType(type) || column == 0 || bytes < 0)
    return SQL_ERROR;
  if (buffer == nullptr)
    found->bindings.erase(column);
  else
    found->bindings[column] = {type, buffer, bytes, lengthWord};
  return SQL_SUCCESS;
}

SQLRETURN ScriptedOdbc::Store(const OdbcCell& cell, const Binding& binding)
{
  if (cell.IsNull()) {
    // The buffer stays as it is.
    if (binding.lengthWord != nullptr)
      *binding.lengthWord = SQL_NULL_DATA;
    return binding.lengthWord == nullptr ? SQL_ERROR : SQL_SUCCESS;
  }
  const std::string& text = cell.Text();
  const double number = strtod(text.c_str(), nullptr);
  switch (binding.type) {
    case SQL_C_WCHAR: return StoreText(text, binding.buffer, binding.bytes, binding.lengthWord);
    case SQL_C_BIT:
      StoreFixed<unsigned char>(number != 0 ? 1 : 0, binding.buffer, binding.lengthWord);
      break;
    case SQL_C_SHORT:
    case SQL_C_SSHORT: return StoreInteger<SQLSMALLINT>(number, binding.buffer, binding.lengthWord);
    case SQL_C_LONG:
    case SQL_C_SLONG: return StoreInteger<SQLINTEGER>(number, binding.buffer, binding.lengthWord);
    case SQL_C_DOUBLE: StoreFixed(number, binding.buffer, binding.lengthWord); break;
    default: StoreFixed(TimestampOf(text), binding.buffer, binding.lengthWord); break;
  }
  return SQL_SUCCESS;
}

SQLRETURN ScriptedOdbc::Fetch(SQLHSTMT statement)
{
  Statement* found = Find(statements, statement);
  if (found == nullptr)
    return SQL_INVALID_HANDLE;
  if (!found->hasCursor)
    return SQL_ERROR;
  if (found->nextRow == found->rows.size())
    return SQL_NO_DATA;
  const OdbcRow& row = found->rows[found->nextRow++];
  SQLRETURN result = SQL_SUCCESS;
  for (const auto& [column, binding] : found->bindings) {
    if (column > row.cells.size())
      continue;
    const SQLRETURN stored = Store(row.cells[column - 1u], binding);
    if (stored == SQL_ERROR || result == SQL_SUCCESS)
      result = stored;
  }
  return row.code != SQL_SUCCESS ? Code(row.code) : result;
}

SQLRETURN ScriptedOdbc::CloseCursor(SQLHSTMT statement)
{
  Statement* found = Find(statements, statement);
  if (found == nullptr)
    return SQL_INVALID_HANDLE;
  if (!found->hasCursor)
    return SQL_ERROR;
  found->hasCursor = false;
  return SQL_SUCCESS;
}
