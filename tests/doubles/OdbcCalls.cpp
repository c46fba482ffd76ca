// The calls of the ODBC double: the diary, the failures that a test ordered, what must not be done
// with a handle, and the engine that does the rest.
#include "tests/doubles/OdbcHandles.h"
#include "tests/doubles/Recorder.h"
#include "tests/doubles/ScriptedOdbc.h"
#include "tests/doubles/Text.h"

#include <stdint.h>

#include <algorithm>

namespace {

struct OdbcState
{
  OdbcHandles handles;
  ScriptedOdbc script;
  std::unique_ptr<OdbcEngine> live;  // null as long as the script answers
};

OdbcState& State()
{
  static OdbcState state;
  return state;
}

OdbcEngine& Engine()
{
  if (State().live != nullptr)
    return *State().live;
  return State().script;
}

OdbcHandle* Find(SQLSMALLINT kind, SQLHANDLE value)
{
  return State().handles.Find(kind, value);
}

std::string NameOf(SQLSMALLINT kind, SQLHANDLE value)
{
  return State().handles.NameOf(kind, value);
}

// Numbers that travel in pointers.
std::string NumberText(SQLPOINTER value)
{
  return std::to_string(reinterpret_cast<uintptr_t>(value));
}

std::string CountedText(const SQLWCHAR* text, SQLSMALLINT length)
{
  return (text == nullptr ? "null" : Quoted(OdbcText(text, length))) + " " + std::to_string(length);
}

SQLSMALLINT KindOfParent(SQLSMALLINT kind)
{
  return kind == SQL_HANDLE_DBC ? SQL_HANDLE_ENV : SQL_HANDLE_DBC;
}

// Null is no misuse: the code under test may go on after a handle that it could not have.
bool IsUsable(const char* function, SQLSMALLINT kind, SQLHANDLE handle)
{
  if (handle == SQL_NULL_HANDLE || Find(kind, handle) != nullptr)
    return true;
  Misuse(std::string(function) + " was given a " + KindName(kind) +
         " handle that is not allocated.");
  return false;
}

// One call, with the line that the diary is to have up to its result.
class Call
{
public:
  Call(const char* name, SQLSMALLINT handleKind, SQLHANDLE usedHandle, const std::string& arguments)
      : function(name), kind(handleKind), handle(usedHandle), line(function + "(" + arguments + ")")
  {
  }

  // Does the work unless the test or the handle forbids it.
  template <typename Work>
  SQLRETURN Do(Work work)
  {
    unsigned long code = 0;
    if (TakeFault((function + " throwing").c_str(), code)) {
      WriteDiary(line + " throws");
      // Of no class, so that nothing but a guard against everything catches it.
      throw static_cast<int>(code);
    }
    SQLRETURN result = SQL_INVALID_HANDLE;
    if (TakeFault(function.c_str(), code))
      result = static_cast<SQLRETURN>(code);
    else if (IsUsable(function.c_str(), kind, handle))
      result = work();
    if (result == SQL_SUCCESS && TakeFault((function + " with info").c_str(), code))
      result = static_cast<SQLRETURN>(code);
    if (TakeFault((function + " afterwards").c_str(), code))
      result = static_cast<SQLRETURN>(code);
    WriteDiary(line + " = " + std::to_string(result) + note);
    return result;
  }

  // What the diary adds to the result.
  std::string note;

private:
  std::string function;
  SQLSMALLINT kind;
  SQLHANDLE handle;
  std::string line;
};

Call StatementCall(const char* function, SQLHSTMT statement, const std::string& arguments)
{
  return {function, SQL_HANDLE_STMT, statement, NameOf(SQL_HANDLE_STMT, statement) + arguments};
}

Call ConnectionCall(const char* function, SQLHDBC connection, const std::string& arguments)
{
  return {function, SQL_HANDLE_DBC, connection, NameOf(SQL_HANDLE_DBC, connection) + arguments};
}

// `ind#n` for the n-th length word that the statement was given, `null` for none.
std::string LengthWordName(SQLHSTMT statement, const SQLLEN* lengthWord)
{
  if (lengthWord == nullptr)
    return "null";
  OdbcHandle* handle = Find(SQL_HANDLE_STMT, statement);
  if (handle == nullptr)
    return "ind#?";
  std::vector<const void*>& words = handle->lengthWords;
  auto word = std::find(words.begin(), words.end(), lengthWord);
  if (word == words.end())
    word = words.insert(words.end(), lengthWord);
  return "ind#" + std::to_string(word - words.begin() + 1);
}

void CheckAllocation(SQLSMALLINT kind, SQLHANDLE parent)
{
  const OdbcHandle* connection = kind == SQL_HANDLE_STMT ? Find(SQL_HANDLE_DBC, parent) : nullptr;
  if (connection != nullptr && !connection->connected)
    Misuse("SQLAllocHandle was asked for a statement on a connection that is not connected.");
}

void CheckRelease(SQLSMALLINT kind, SQLHANDLE handle)
{
  const OdbcHandle* found = Find(kind, handle);
  if (kind == SQL_HANDLE_DBC && found != nullptr && found->connected)
    Misuse("SQLFreeHandle was given a connection that is still connected.");
  if (kind == SQL_HANDLE_ENV && State().handles.HasConnections(handle))
    Misuse("SQLFreeHandle was given an environment that still has connections.");
}

}  // namespace

std::string OdbcText(const SQLWCHAR* text, SQLINTEGER length)
{
  return length == SQL_NTS ? Utf8(text) : Utf8(text, static_cast<size_t>(length));
}

std::unique_ptr<OdbcEngine> UseOdbcEngine(std::unique_ptr<OdbcEngine> engine)
{
  std::swap(State().live, engine);
  return engine;
}

void FailOdbcCall(const std::string& function, int n, int code)
{
  FailCall(function, n, static_cast<unsigned long>(code));
}

OdbcDatabase& OdbcDouble::Database(const std::string& connectionString)
{
  return State().script.databases[connectionString];
}

int OdbcDouble::OpenEnvironments() const
{
  return State().handles.Count(SQL_HANDLE_ENV);
}

int OdbcDouble::OpenConnections() const
{
  return State().handles.Count(SQL_HANDLE_DBC);
}

int OdbcDouble::OpenStatements() const
{
  return State().handles.Count(SQL_HANDLE_STMT);
}

OdbcDouble& Odbc()
{
  static OdbcDouble odbc;
  return odbc;
}

void ResetOdbc()
{
  State() = OdbcState();
}

SQLRETURN WINAPI SQLAllocHandle(SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* handle)
{
  const SQLSMALLINT parentKind = KindOfParent(kind);
  Call call("SQLAllocHandle", parentKind, parent,
            KindName(kind) + ", " + NameOf(parentKind, parent));
  return call.Do([&] {
    CheckAllocation(kind, parent);
    const SQLRETURN result = Engine().AllocHandle(kind, parent, handle);
    if (SQL_SUCCEEDED(result)) {
      State().handles.Add(kind, *handle, parent);
      call.note = " " + NameOf(kind, *handle);
    }
    return result;
  });
}

SQLRETURN WINAPI SQLFreeHandle(SQLSMALLINT kind, SQLHANDLE handle)
{
  Call call("SQLFreeHandle", kind, handle, KindName(kind) + ", " + NameOf(kind, handle));
  return call.Do([&] {
    CheckRelease(kind, handle);
    const SQLRETURN result = Engine().FreeHandle(kind, handle);
    if (SQL_SUCCEEDED(result))
      State().handles.Remove(kind, handle);
    return result;
  });
}

SQLRETURN WINAPI SQLSetEnvAttr(SQLHENV environment, SQLINTEGER attribute, SQLPOINTER value,
                               SQLINTEGER length)
{
  Call call("SQLSetEnvAttr", SQL_HANDLE_ENV, environment,
            NameOf(SQL_HANDLE_ENV, environment) + ", " + std::to_string(attribute) + ", " +
                NumberText(value) + ", " + std::to_string(length));
  return call.Do([&] { return Engine().SetEnvAttr(environment, attribute, value, length); });
}

SQLRETURN WINAPI SQLSetConnectAttrW(SQLHDBC connection, SQLINTEGER attribute, SQLPOINTER value,
                                    SQLINTEGER length)
{
  Call call = ConnectionCall(
      "SQLSetConnectAttrW", connection,
      ", " + std::to_string(attribute) + ", " + NumberText(value) + ", " + std::to_string(length));
  return call.Do([&] { return Engine().SetConnectAttr(connection, attribute, value, length); });
}

SQLRETURN WINAPI SQLDriverConnectW(SQLHDBC connection, SQLHWND window, SQLWCHAR* text,
                                   SQLSMALLINT textLength, SQLWCHAR* completed,
                                   SQLSMALLINT completedSize, SQLSMALLINT* completedLength,
                                   SQLUSMALLINT completion)
{
  const std::string windowText = window == nullptr ? "null" : "window";
  const std::string textText = text == nullptr ? "null" : Quoted(OdbcText(text, textLength));
  const std::string lengthText = completedLength == nullptr ? "null" : "length";
  Call call = ConnectionCall("SQLDriverConnectW", connection,
                             ", " + windowText + ", " + textText + ", " +
                                 std::to_string(textLength) + ", " + std::to_string(completedSize) +
                                 ", " + lengthText + ", " + std::to_string(completion));
  return call.Do([&] {
    const SQLRETURN result = Engine().DriverConnect(connection, text, textLength, completed,
                                                    completedSize, completedLength, completion);
    if (SQL_SUCCEEDED(result))
      Find(SQL_HANDLE_DBC, connection)->connected = true;
    return result;
  });
}

SQLRETURN WINAPI SQLDisconnect(SQLHDBC connection)
{
  Call call = ConnectionCall("SQLDisconnect", connection, "");
  return call.Do([&] {
    const SQLRETURN result = Engine().Disconnect(connection);
    if (SQL_SUCCEEDED(result)) {
      Find(SQL_HANDLE_DBC, connection)->connected = false;
      State().handles.RemoveStatements(connection);
    }
    return result;
  });
}

SQLRETURN WINAPI SQLExecDirectW(SQLHSTMT statement, SQLWCHAR* text, SQLINTEGER length)
{
  const std::string textText = text == nullptr ? "null" : Quoted(OdbcText(text, length));
  Call call =
      StatementCall("SQLExecDirectW", statement, ", " + textText + ", " + std::to_string(length));
  return call.Do([&] { return Engine().ExecDirect(statement, text, length); });
}

SQLRETURN WINAPI SQLColumnsW(SQLHSTMT statement, SQLWCHAR* catalog, SQLSMALLINT catalogLength,
                             SQLWCHAR* schema, SQLSMALLINT schemaLength, SQLWCHAR* table,
                             SQLSMALLINT tableLength, SQLWCHAR* column, SQLSMALLINT columnLength)
{
  Call call = StatementCall(
      "SQLColumnsW", statement,
      ", " + CountedText(catalog, catalogLength) + ", " + CountedText(schema, schemaLength) + ", " +
          CountedText(table, tableLength) + ", " + CountedText(column, columnLength));
  if (catalog != nullptr || schema != nullptr || table == nullptr || column != nullptr)
    EndUnprepared("SQLColumnsW was asked for something else than the columns of a table.");
  return call.Do([&] { return Engine().Columns(statement, table, tableLength); });
}

SQLRETURN WINAPI SQLTablesW(SQLHSTMT statement, SQLWCHAR* catalog, SQLSMALLINT catalogLength,
                            SQLWCHAR* schema, SQLSMALLINT schemaLength, SQLWCHAR* table,
                            SQLSMALLINT tableLength, SQLWCHAR* types, SQLSMALLINT typesLength)
{
  Call call = StatementCall(
      "SQLTablesW", statement,
      ", " + CountedText(catalog, catalogLength) + ", " + CountedText(schema, schemaLength) + ", " +
          CountedText(table, tableLength) + ", " + CountedText(types, typesLength));
  if (catalog != nullptr || schema != nullptr || table != nullptr || types == nullptr)
    EndUnprepared("SQLTablesW was asked for something else than all tables of a type.");
  return call.Do([&] { return Engine().Tables(statement, types, typesLength); });
}

SQLRETURN WINAPI SQLBindCol(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT type,
                            SQLPOINTER buffer, SQLLEN bytes, SQLLEN* lengthWord)
{
  Call call = StatementCall("SQLBindCol", statement,
                            ", " + std::to_string(column) + ", " + std::to_string(type) +
                                (buffer == nullptr ? ", null, " : ", ") + std::to_string(bytes) +
                                ", " + LengthWordName(statement, lengthWord));
  return call.Do(
      [&] { return Engine().BindCol(statement, column, type, buffer, bytes, lengthWord); });
}

SQLRETURN WINAPI SQLFetch(SQLHSTMT statement)
{
  return StatementCall("SQLFetch", statement, "").Do([&] { return Engine().Fetch(statement); });
}

SQLRETURN WINAPI SQLCloseCursor(SQLHSTMT statement)
{
  return StatementCall("SQLCloseCursor", statement, "").Do([&] {
    return Engine().CloseCursor(statement);
  });
}
