#include "driver/Diagnostics.h"

namespace {

const std::string_view MessagePrefix = "[Kestrel][ODBC Driver] ";

}  // namespace

void Diagnostics::Clear()
{
  records.clear();
  memoryExhausted = false;
}

SQLRETURN Diagnostics::Fail(const char* state, std::string_view text, SQLINTEGER nativeCode)
{
  std::string message(MessagePrefix);
  message += text;
  records.push_back({state, nativeCode, std::move(message)});
  return SQL_ERROR;
}

SQLRETURN Diagnostics::Warn(const char* state, std::string_view text)
{
  (void)Fail(state, text);
  return SQL_SUCCESS_WITH_INFO;
}

SQLRETURN Diagnostics::FailOutOfMemory()
{
  memoryExhausted = true;
  return SQL_ERROR;
}

const DiagnosticRecord& Diagnostics::Record(size_t index) const
{
  // Short enough for the space inside the string object.
  static const DiagnosticRecord outOfMemory = {"HY001", 0, "Out of memory"};
  return memoryExhausted ? outOfMemory : records[index];
}
