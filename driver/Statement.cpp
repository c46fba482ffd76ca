#include "driver/Statement.h"

#include <algorithm>
#include <cstring>

#include "driver/SqlTokens.h"
#include "driver/SqliteError.h"
#include "driver/TableDefinition.h"
#include "driver/Text.h"

Statement::Statement(Connection& owner) : connection(owner.shared_from_this())
{
  attributes.metadataId = owner.metadataId ? SQL_TRUE : SQL_FALSE;
}

// Close() has been called before: it needs the mutex of the connection.
Statement::~Statement() = default;

void Statement::DropQuery()
{
  (void)sqlite3_finalize(query);
  query = nullptr;
  isPrepared = false;
}

void Statement::CloseCursor()
{
  rows.reset();
  cursorOpen = rowWaits = onRow = atEnd = false;
  rowCount = -1;
  partial = PartialRead();
  if (query == nullptr)
    return;
  if (isPrepared)
    (void)sqlite3_reset(query);
  else
    DropQuery();
}

void Statement::Close()
{
  CloseCursor();
  DropQuery();
  StopWaitingForData();
}

void Statement::StartOperation()
{
  const SQLULEN timeout = attributes.queryTimeout;
  const Database::Seconds limit(timeout);
  connection->database->StartOperation(timeout > 0 ? limit : connection->LockWait(), limit);
}

SQLRETURN Statement::FailFromDatabase(int code)
{
  if ((code & 0xff) == SQLITE_INTERRUPT && connection->database->TimedOut())
    return diagnostics.Fail("HYT00", "The time of the statement is over", code);
  return FailFromSqlite(diagnostics, connection->database->Handle(), code);
}

// Anything but blanks, comments and semicolons behind a statement would be lost.
SQLRETURN Statement::CheckTail(const char* tail)
{
  if (tail == nullptr || *tail == '\0')
    return SQL_SUCCESS;
  for (const SqlToken& token : SplitStatement(tail)) {
    if (tail[token.begin] != ';') {
      DropQuery();
      return diagnostics.Fail("42000", "There is text behind the end of the statement");
    }
  }
  return SQL_SUCCESS;
}

int Statement::Compile(const std::string& text)
{
  DropQuery();
  const char* tail = nullptr;
  const int code = sqlite3_prepare_v2(connection->database->Handle(), text.c_str(),
                                      static_cast<int>(text.size() + 1), &query, &tail);
  if (code == SQLITE_OK && !SQL_SUCCEEDED(CheckTail(tail)))
    return SQLITE_MISUSE;
  return code;
}

SQLRETURN Statement::Prepare(const std::string& text)
{
  CloseCursor();
  StartOperation();
  const std::string_view word = FirstWord(text);
  int code = MayDefineTable(word) ? Compile(MendTableDefinition(text)) : Compile(text);
  // Escape sequences are rare; what has none isn't looked through for them.
  if (code == SQLITE_ERROR && attributes.noScan == SQL_NOSCAN_OFF &&
      text.find('{') != std::string::npos) {
    code = Compile(MendTableDefinition(ReplaceEscapeSequences(text)));
  }
  if (code == SQLITE_MISUSE && diagnostics.Count() > 0)
    return SQL_ERROR;
  if (code != SQLITE_OK)
    return FailFromDatabase(code);
  if (query == nullptr)
    return diagnostics.Fail("42000", "There is no statement in the text");
  effect = Effect::Other;
  const std::string_view verb = EqualsNoCase(word, "WITH") ? VerbBehindWith(text) : word;
  if (EqualsNoCase(verb, "UPDATE") || EqualsNoCase(verb, "DELETE"))
    effect = Effect::SearchedChange;
  else if (EqualsNoCase(verb, "INSERT") || EqualsNoCase(verb, "REPLACE"))
    effect = Effect::Insert;
  isPrepared = true;
  return SQL_SUCCESS;
}

SQLRETURN Statement::ExecuteDirect(const std::string& text)
{
  if (cursorOpen)
    return diagnostics.Fail("24000", "A cursor is open on the statement");
  const SQLRETURN result = Prepare(text);
  if (!SQL_SUCCEEDED(result))
    return result;
  // Nothing is kept for another run, so it can go as soon as it is done.
  isPrepared = false;
  return Execute();
}

SQLRETURN Statement::Execute()
{
  if (query == nullptr)
    return diagnostics.Fail("HY010", "No statement is prepared");
  if (cursorOpen)
    return diagnostics.Fail("24000", "A cursor is open on the statement");
  const auto count = static_cast<size_t>(ParameterCount());
  if (count == 0)
    return Run();
  delayed.clear();
  nextDelayed = 0;
  const SQLULEN offset =
      attributes.parameterBindOffset == nullptr ? 0 : *attributes.parameterBindOffset;
  for (size_t i = 0; i < count; ++i) {
    if (i >= parameters.size() || !parameters[i].isBound)
      return diagnostics.Fail("07002", "A parameter of the statement is not bound");
    if (IsDelayed(parameters[i], offset)) {
      delayed.emplace_back();
      delayed.back().parameter = i;
    }
  }
  waitsForData = !delayed.empty();
  return waitsForData ? SQLRETURN{SQL_NEED_DATA} : BindAndRun();
}

SQLRETURN Statement::BindAndRun()
{
  const SQLULEN offset =
      attributes.parameterBindOffset == nullptr ? 0 : *attributes.parameterBindOffset;
  (void)sqlite3_reset(query);
  size_t nextGiven = 0;
  for (size_t i = 0; i < static_cast<size_t>(ParameterCount()); ++i) {
    const DelayedValue* given = nullptr;
    if (nextGiven < delayed.size() && delayed[nextGiven].parameter == i)
      given = &delayed[nextGiven++];
    const SQLRETURN result =
        BindParameter(query, static_cast<int>(i + 1), parameters[i], offset, given, diagnostics);
    if (!SQL_SUCCEEDED(result)) {
      if (attributes.parameterStatus != nullptr)
        *attributes.parameterStatus = SQL_PARAM_ERROR;
      CloseCursor();
      return result;
    }
  }
  delayed.clear();
  const SQLRETURN result = Run();
  if (attributes.parametersProcessed != nullptr)
    *attributes.parametersProcessed = 1;
  if (attributes.parameterStatus != nullptr)
    *attributes.parameterStatus = result == SQL_ERROR ? SQL_PARAM_ERROR : SQL_PARAM_SUCCESS;
  return result;
}

SQLRETURN Statement::Run()
{
  Database& database = *connection->database;
  StartOperation();
  if (sqlite3_stmt_readonly(query) == 0)
    database.PrepareToWrite();
  int code = connection->BeginIfManual();
  if (code == SQLITE_OK) {
    connection->SetWorking(this);
    code = sqlite3_step(query);
    connection->SetWorking(nullptr);
  }
  if (code != SQLITE_ROW && code != SQLITE_DONE) {
    const SQLRETURN result = FailFromDatabase(code);
    CloseCursor();
    return result;
  }
  if (sqlite3_column_count(query) == 0)
    return FinishChange();
  rows = std::make_unique<QueryRows>(database.Handle(), query);
  cursorOpen = true;
  rowWaits = code == SQLITE_ROW;
  atEnd = !rowWaits;
  onRow = false;
  rowsDelivered = 0;
  return SQL_SUCCESS;
}

SQLRETURN Statement::FinishChange()
{
  const SQLLEN changes =
      effect == Effect::Other ? -1 : sqlite3_changes64(connection->database->Handle());
  const bool touchedNothing = effect == Effect::SearchedChange && changes == 0;
  CloseCursor();
  rowCount = changes;
  return touchedNothing && connection->IsOdbc3() ? SQL_NO_DATA : SQL_SUCCESS;
}

SQLRETURN Statement::NextDelayedParameter(SQLPOINTER* token)
{
  if (!waitsForData)
    return diagnostics.Fail("HY010", "No parameter is waited for");
  if (nextDelayed > 0 && !delayed[nextDelayed - 1].isGiven)
    delayed[nextDelayed - 1].isGiven = true;  // nothing was put: an empty value
  if (nextDelayed < delayed.size()) {
    if (token != nullptr)
      *token = parameters[delayed[nextDelayed].parameter].value;
    ++nextDelayed;
    return SQL_NEED_DATA;
  }
  waitsForData = false;
  nextDelayed = 0;
  return BindAndRun();
}

SQLRETURN Statement::PutDelayedData(const void* data, SQLLEN length)
{
  if (!waitsForData || nextDelayed == 0)
    return diagnostics.Fail("HY010", "No parameter is waited for");
  DelayedValue& value = delayed[nextDelayed - 1];
  const Parameter& parameter = parameters[value.parameter];
  const SQLSMALLINT cType =
      parameter.cType == SQL_C_DEFAULT ? DefaultCType(parameter.sqlType) : parameter.cType;
  if (length == SQL_NULL_DATA) {
    value.isGiven = value.isNull = true;
    return SQL_SUCCESS;
  }
  if (value.isNull || (value.isGiven && !IsVariableCType(cType)))
    return diagnostics.Fail("HY020", "The value can't be put together of these pieces");
  if (data == nullptr && length != 0)
    return diagnostics.Fail("HY009", "There is no data");
  if (length < 0 && length != SQL_NTS)
    return diagnostics.Fail("HY090", "The length is no length");
  value.isGiven = true;
  size_t bytes = static_cast<size_t>(length);
  if (!IsVariableCType(cType))
    bytes = FixedSize(cType);
  else if (length == SQL_NTS && cType == SQL_C_WCHAR)
    bytes = std::u16string_view(static_cast<const char16_t*>(data)).size() * sizeof(char16_t);
  else if (length == SQL_NTS)
    bytes = strlen(static_cast<const char*>(data));
  if (bytes > 0)
    value.bytes.append(static_cast<const char*>(data), bytes);
  return SQL_SUCCESS;
}

void Statement::StopWaitingForData()
{
  waitsForData = false;
  nextDelayed = 0;
  delayed.clear();
}

SQLRETURN Statement::OpenStored(std::unique_ptr<StoredRows> answer)
{
  rows = std::move(answer);
  cursorOpen = true;
  rowWaits = atEnd = onRow = false;
  rowsDelivered = 0;
  return SQL_SUCCESS;
}

const std::vector<ResultColumn>& Statement::Columns()
{
  static const std::vector<ResultColumn> none;
  if (!rows && query != nullptr && sqlite3_column_count(query) > 0)
    rows = std::make_unique<QueryRows>(connection->database->Handle(), query);
  return rows ? rows->Columns() : none;
}

int Statement::ParameterCount() const
{
  return query == nullptr ? 0 : sqlite3_bind_parameter_count(query);
}
