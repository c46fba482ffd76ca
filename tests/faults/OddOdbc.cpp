#include "tests/faults/OddOdbc.h"

#include "tests/doubles/Text.h"

#include <string.h>

#include <algorithm>
#include <utility>

namespace {

// How many bytes a driver may write to the buffer.
size_t WritableBytes(const OddBinding& binding)
{
  switch (binding.type) {
    case SQL_C_WCHAR: return static_cast<size_t>(binding.bytes);
    case SQL_C_BIT: return 1;
    case SQL_C_SHORT:
    case SQL_C_SSHORT: return sizeof(SQLSMALLINT);
    case SQL_C_LONG:
    case SQL_C_SLONG: return sizeof(SQLINTEGER);
    case SQL_C_DOUBLE: return sizeof(SQLDOUBLE);
    default: return sizeof(SQL_TIMESTAMP_STRUCT);
  }
}

class OddOdbc : public OdbcEngine
{
public:
  OddOdbc(const OddAnswers& oddAnswers) : answers(oddAnswers) {}

  std::unique_ptr<OdbcEngine> inner;

  SQLRETURN AllocHandle(SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* handle) override
  {
    const SQLRETURN code = inner->AllocHandle(kind, parent, handle);
    // Handles come again.
    if (SQL_SUCCEEDED(code) && kind == SQL_HANDLE_STMT)
      statements[*handle] = Statement();
    return code;
  }

  SQLRETURN FreeHandle(SQLSMALLINT kind, SQLHANDLE handle) override
  {
    return inner->FreeHandle(kind, handle);
  }

  SQLRETURN SetEnvAttr(SQLHENV environment, SQLINTEGER attribute, SQLPOINTER value,
                       SQLINTEGER length) override
  {
    return inner->SetEnvAttr(environment, attribute, value, length);
  }

  SQLRETURN SetConnectAttr(SQLHDBC connection, SQLINTEGER attribute, SQLPOINTER value,
                           SQLINTEGER length) override
  {
    return inner->SetConnectAttr(connection, attribute, value, length);
  }

  SQLRETURN DriverConnect(SQLHDBC connection, SQLWCHAR* text, SQLSMALLINT textLength,
                          SQLWCHAR* completed, SQLSMALLINT completedSize,
                          SQLSMALLINT* completedLength, SQLUSMALLINT completion) override
  {
    return inner->DriverConnect(connection, text, textLength, completed, completedSize,
                                completedLength, completion);
  }

  SQLRETURN Disconnect(SQLHDBC connection) override { return inner->Disconnect(connection); }

  SQLRETURN ExecDirect(SQLHSTMT statement, SQLWCHAR* text, SQLINTEGER length) override
  {
    const std::string question = OdbcText(text, length);
    Ask(statement, question);
    if (answers.refuses && answers.refuses(question))
      return SQL_ERROR;
    const SQLRETURN code = inner->ExecDirect(statement, text, length);
    return answers.executed ? answers.executed(question, code) : code;
  }

  SQLRETURN Columns(SQLHSTMT statement, SQLWCHAR* table, SQLSMALLINT tableLength) override
  {
    Ask(statement, "columns of " + OdbcText(table, tableLength));
    return inner->Columns(statement, table, tableLength);
  }

  SQLRETURN Tables(SQLHSTMT statement, SQLWCHAR* types, SQLSMALLINT typesLength) override
  {
    Ask(statement, "tables");
    return inner->Tables(statement, types, typesLength);
  }

  SQLRETURN BindCol(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT type, SQLPOINTER buffer,
                    SQLLEN bytes, SQLLEN* lengthWord) override
  {
    const SQLRETURN code = inner->BindCol(statement, column, type, buffer, bytes, lengthWord);
    if (SQL_SUCCEEDED(code))
      statements[statement].bindings[column] = {type, buffer, bytes, lengthWord, {}, 0};
    return code;
  }

  SQLRETURN Fetch(SQLHSTMT statement) override
  {
    Statement& found = statements[statement];
    if (answers.isEmpty && answers.isEmpty(found.question))
      return SQL_NO_DATA;
    if (found.copiesLeft > 0) {
      --found.copiesLeft;
      return found.lastCode;
    }
    for (auto& [column, binding] : found.bindings)
      Remember(binding);
    found.lastCode = inner->Fetch(statement);
    if (SQL_SUCCEEDED(found.lastCode)) {
      if (answers.copies)
        found.copiesLeft = answers.copies(found.question) - 1;
      FetchedRow row(found.question, found.bindings);
      if (answers.fetched)
        answers.fetched(row);
    }
    return found.lastCode;
  }

  SQLRETURN CloseCursor(SQLHSTMT statement) override { return inner->CloseCursor(statement); }

private:
  struct Statement
  {
    std::string question;
    std::map<SQLUSMALLINT, OddBinding> bindings;
    int copiesLeft = 0;
    SQLRETURN lastCode = SQL_SUCCESS;
  };

  void Ask(SQLHSTMT statement, const std::string& question)
  {
    statements[statement].question = question;
    statements[statement].copiesLeft = 0;
  }

  static void Remember(OddBinding& binding)
  {
    const char* content = static_cast<const char*>(binding.buffer);
    binding.contentBefore.assign(content, content + WritableBytes(binding));
    binding.lengthBefore = *binding.lengthWord;
  }

  OddAnswers answers;
  std::map<SQLHSTMT, Statement> statements;
};

}  // namespace

OddBinding* FetchedRow::Find(SQLUSMALLINT column) const
{
  const auto found = bound.find(column);
  return found == bound.end() ? nullptr : &found->second;
}

std::string FetchedRow::Text(SQLUSMALLINT column) const
{
  const OddBinding* binding = Find(column);
  return binding == nullptr ? "" : Utf8(static_cast<const wchar_t*>(binding->buffer));
}

void FetchedRow::SetText(SQLUSMALLINT column, const std::string& text)
{
  const OddBinding* binding = Find(column);
  if (binding == nullptr)
    return;
  const WideText wide(text);
  const size_t room = static_cast<size_t>(binding->bytes) / sizeof(wchar_t);
  const size_t length = std::min(wide.Length(), room - 1);
  wchar_t* buffer = static_cast<wchar_t*>(binding->buffer);
  memcpy(buffer, wide.c_str(), length * sizeof(wchar_t));
  buffer[length] = L'\0';
  *binding->lengthWord = static_cast<SQLLEN>(wide.Length() * sizeof(wchar_t));
}

void FetchedRow::SetNumber(SQLUSMALLINT column, int number)
{
  const OddBinding* binding = Find(column);
  if (binding == nullptr)
    return;
  // Little-endian: the lower bytes come first.
  memcpy(binding->buffer, &number, WritableBytes(*binding));
}

void FetchedRow::SetNull(SQLUSMALLINT column)
{
  const OddBinding* binding = Find(column);
  if (binding == nullptr)
    return;
  memcpy(binding->buffer, binding->contentBefore.data(), binding->contentBefore.size());
  *binding->lengthWord = SQL_NULL_DATA;
}

void FetchedRow::SetLengths(SQLLEN length)
{
  for (auto& [column, binding] : bound)
    *binding.lengthWord = length;
}

void FetchedRow::ForgetLengths()
{
  for (auto& [column, binding] : bound)
    *binding.lengthWord = binding.lengthBefore;
}

void FetchedRow::FillBuffers()
{
  for (auto& [column, binding] : bound) {
    if (binding.type != SQL_C_WCHAR)
      continue;
    const wchar_t* text = static_cast<const wchar_t*>(binding.buffer);
    const size_t used = (wcslen(text) + 1) * sizeof(wchar_t);
    const size_t told = static_cast<size_t>(binding.bytes);
    if (used < told)
      memset(static_cast<char*>(binding.buffer) + used, 0xBD, told - used);
  }
}

void AnswerOddly(const OddAnswers& answers)
{
  auto odd = std::make_unique<OddOdbc>(answers);
  OddOdbc& engine = *odd;
  engine.inner = UseOdbcEngine(std::move(odd));
}
