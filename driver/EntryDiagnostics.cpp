// Entry points: what the last call had to say. These calls clear nothing.

#include <algorithm>
#include <cstring>

#include "driver/EntryText.h"
#include "driver/Statement.h"

namespace {

std::shared_ptr<DriverObject> FindObject(SQLSMALLINT type, SQLHANDLE handle)
{
  if (type != SQL_HANDLE_DESC)
    return FindHandle(handle, type);
  DescriptorRole role = DescriptorRole::None;
  return FindDescriptor(handle, role);
}

// Records of a diagnosis can't have records of their own, so a text that is cut is told by the
// result alone.
template <typename Character, typename Length>
SQLRETURN ReturnPlainText(const std::string& text, Character* out, SQLLEN capacity, Length* length,
                          Count count)
{
  if (capacity < 0)
    return SQL_ERROR;
  const size_t unit = count == Count::Bytes ? sizeof(Character) : 1;
  const size_t room = static_cast<size_t>(capacity) / unit;
  const size_t total = CopyText(text, out, room);
  ReturnNumber<Length>(length, total * unit);
  return out != nullptr && total >= room ? SQL_SUCCESS_WITH_INFO : SQL_SUCCESS;
}

template <typename Character>
SQLRETURN GetRecord(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT number, Character* state,
                    SQLINTEGER* native, Character* message, SQLSMALLINT capacity,
                    SQLSMALLINT* length)
{
  return WithObject<DriverObject>(FindObject(type, handle), [&](DriverObject& object) -> SQLRETURN {
    if (number <= 0 || capacity < 0)
      return SQL_ERROR;
    if (static_cast<size_t>(number) > object.diagnostics.Count())
      return SQL_NO_DATA;
    const DiagnosticRecord& record = object.diagnostics.Record(static_cast<size_t>(number) - 1);
    if (state != nullptr)
      (void)CopyText(record.state, state, SQL_SQLSTATE_SIZE + 1);
    ReturnNumber<SQLINTEGER>(native, record.nativeCode);
    return ReturnPlainText(record.message, message, capacity, length, Count::Characters);
  });
}

template <typename Character>
SQLRETURN GetHeaderField(DriverObject& object, SQLSMALLINT field, SQLPOINTER out,
                         SQLSMALLINT capacity, SQLSMALLINT* length)
{
  const bool isStatement = object.Kind() == SQL_HANDLE_STMT;
  switch (field) {
    case SQL_DIAG_NUMBER:
      ReturnNumber<SQLINTEGER>(out, object.diagnostics.Count());
      return SQL_SUCCESS;
    case SQL_DIAG_ROW_COUNT:
      if (!isStatement)
        return SQL_ERROR;
      ReturnNumber<SQLLEN>(out, static_cast<Statement&>(object).RowCount());
      return SQL_SUCCESS;
    case SQL_DIAG_CURSOR_ROW_COUNT:
      if (!isStatement)
        return SQL_ERROR;
      // Rows aren't counted before they are read.
      ReturnNumber<SQLLEN>(out, -1);
      return SQL_SUCCESS;
    case SQL_DIAG_DYNAMIC_FUNCTION_CODE:
      if (!isStatement)
        return SQL_ERROR;
      ReturnNumber<SQLINTEGER>(out, SQL_DIAG_UNKNOWN_STATEMENT);
      return SQL_SUCCESS;
    case SQL_DIAG_DYNAMIC_FUNCTION:
      if (!isStatement)
        return SQL_ERROR;
      return ReturnPlainText(std::string(), static_cast<Character*>(out), capacity, length,
                             Count::Bytes);
    default: return SQL_ERROR;
  }
}

// Who defined the class of a state, and the rest of it.
const char* OriginOf(const char* state, bool ofSubclass)
{
  const bool isOdbcClass = strncmp(state, "IM", 2) == 0;
  const bool isOdbcSubclass =
      isOdbcClass || strncmp(state + 2, "S", 1) == 0 || strncmp(state, "HYT", 3) == 0;
  return (ofSubclass ? isOdbcSubclass : isOdbcClass) ? "ODBC 3.0" : "ISO 9075";
}

template <typename Character>
SQLRETURN GetRecordField(const DriverObject& object, SQLSMALLINT number, SQLSMALLINT field,
                         SQLPOINTER out, SQLSMALLINT capacity, SQLSMALLINT* length)
{
  if (number <= 0)
    return SQL_ERROR;
  if (static_cast<size_t>(number) > object.diagnostics.Count())
    return SQL_NO_DATA;
  const DiagnosticRecord& record = object.diagnostics.Record(static_cast<size_t>(number) - 1);
  std::string text;
  switch (field) {
    case SQL_DIAG_NATIVE: ReturnNumber<SQLINTEGER>(out, record.nativeCode); return SQL_SUCCESS;
    case SQL_DIAG_ROW_NUMBER: ReturnNumber<SQLLEN>(out, SQL_ROW_NUMBER_UNKNOWN); return SQL_SUCCESS;
    case SQL_DIAG_COLUMN_NUMBER:
      ReturnNumber<SQLINTEGER>(out, SQL_COLUMN_NUMBER_UNKNOWN);
      return SQL_SUCCESS;
    case SQL_DIAG_SQLSTATE: text = record.state; break;
    case SQL_DIAG_MESSAGE_TEXT: text = record.message; break;
    case SQL_DIAG_CLASS_ORIGIN: text = OriginOf(record.state, false); break;
    case SQL_DIAG_SUBCLASS_ORIGIN: text = OriginOf(record.state, true); break;
    case SQL_DIAG_CONNECTION_NAME:
    case SQL_DIAG_SERVER_NAME: break;
    default: return SQL_ERROR;
  }
  return ReturnPlainText(text, static_cast<Character*>(out), capacity, length, Count::Bytes);
}

template <typename Character>
SQLRETURN GetField(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT number, SQLSMALLINT field,
                   SQLPOINTER out, SQLSMALLINT capacity, SQLSMALLINT* length)
{
  return WithObject<DriverObject>(FindObject(type, handle), [&](DriverObject& object) {
    const bool isHeader = field == SQL_DIAG_NUMBER || field == SQL_DIAG_ROW_COUNT ||
                          field == SQL_DIAG_CURSOR_ROW_COUNT ||
                          field == SQL_DIAG_DYNAMIC_FUNCTION ||
                          field == SQL_DIAG_DYNAMIC_FUNCTION_CODE;
    if (isHeader)
      return GetHeaderField<Character>(object, field, out, capacity, length);
    return GetRecordField<Character>(object, number, field, out, capacity, length);
  });
}

}  // namespace

SQLRETURN SQL_API SQLGetDiagRec(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT number,
                                SQLCHAR* state, SQLINTEGER* native, SQLCHAR* message,
                                SQLSMALLINT capacity, SQLSMALLINT* length)
{
  return GetRecord(type, handle, number, state, native, message, capacity, length);
}

SQLRETURN SQL_API SQLGetDiagRecW(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT number,
                                 SQLWCHAR* state, SQLINTEGER* native, SQLWCHAR* message,
                                 SQLSMALLINT capacity, SQLSMALLINT* length)
{
  return GetRecord(type, handle, number, state, native, message, capacity, length);
}

SQLRETURN SQL_API SQLGetDiagField(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT number,
                                  SQLSMALLINT field, SQLPOINTER out, SQLSMALLINT capacity,
                                  SQLSMALLINT* length)
{
  return GetField<SQLCHAR>(type, handle, number, field, out, capacity, length);
}

SQLRETURN SQL_API SQLGetDiagFieldW(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT number,
                                   SQLSMALLINT field, SQLPOINTER out, SQLSMALLINT capacity,
                                   SQLSMALLINT* length)
{
  return GetField<SQLWCHAR>(type, handle, number, field, out, capacity, length);
}
