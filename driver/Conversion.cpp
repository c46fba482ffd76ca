#include "driver/Conversion.h"

#include <algorithm>
#include <cstring>
#include <ctime>

#include "driver/DateText.h"
#include "driver/Text.h"

namespace {

void SetLength(const Target& target, size_t length)
{
  if (target.length != nullptr)
    *target.length = static_cast<SQLLEN>(length);
}

SQLRETURN FailNoConversion(Diagnostics& diagnostics)
{
  return diagnostics.Fail("07006", "The value can't be converted to this type of buffer");
}

size_t TerminatorOf(SQLSMALLINT cType)
{
  if (cType == SQL_C_WCHAR)
    return sizeof(SQLWCHAR);
  return cType == SQL_C_CHAR ? 1 : 0;
}

// Characters that a text of this value has at the least. Of a number the digits behind the point
// can go and of a date the fraction; without more it would be another value.
size_t SmallestCut(const Cell& cell, std::string_view text)
{
  const bool isNumber = cell.kind == CellKind::Integer || cell.kind == CellKind::Real;
  if (!isNumber && cell.kind != CellKind::Moment)
    return 0;
  return std::min(text.find('.'), text.size());
}

SQLRETURN ConvertToText(const Cell& cell, const Target& target, Diagnostics& diagnostics)
{
  // Text needs no copy of its own on the way.
  std::string written;
  std::string_view text = cell.bytes;
  if (cell.kind != CellKind::Text) {
    written = CellText(cell);
    text = written;
  }
  const bool wide = target.cType == SQL_C_WCHAR;
  const size_t unit = wide ? sizeof(SQLWCHAR) : 1;
  const size_t capacity = static_cast<size_t>(target.capacity) / unit;
  const size_t smallest = SmallestCut(cell, text);
  if (smallest > 0 && capacity <= smallest)
    return diagnostics.Fail("22003", "The buffer is too small for the value");
  const size_t length = wide ? CopyText(text, static_cast<SQLWCHAR*>(target.buffer), capacity)
                             : CopyText(text, static_cast<SQLCHAR*>(target.buffer), capacity);
  SetLength(target, length * unit);
  if (length >= capacity)
    return diagnostics.Warn("01004", "The text was cut to the length of the buffer");
  return SQL_SUCCESS;
}

SQLRETURN ConvertToBytes(const Cell& cell, SQLSMALLINT sqlType, const Target& target,
                         Diagnostics& diagnostics)
{
  const std::string bytes = VariableBytes(cell, sqlType, SQL_C_BINARY);
  const size_t count = std::min(bytes.size(), static_cast<size_t>(target.capacity));
  memcpy(target.buffer, bytes.data(), count);
  SetLength(target, bytes.size());
  if (count < bytes.size())
    return diagnostics.Warn("01004", "The bytes were cut to the length of the buffer");
  return SQL_SUCCESS;
}

bool IsMidnight(const SQL_TIMESTAMP_STRUCT& moment)
{
  return moment.hour == 0 && moment.minute == 0 && moment.second == 0 && moment.fraction == 0;
}

template <typename Value>
void Store(const Target& target, const Value& value)
{
  memcpy(target.buffer, &value, sizeof(value));
  SetLength(target, sizeof(value));
}

SQLRETURN ConvertToMoment(const Cell& cell, const Target& target, Diagnostics& diagnostics)
{
  SQL_TIMESTAMP_STRUCT moment = cell.moment;
  if (cell.kind == CellKind::Text) {
    if (!ReadMoment(cell.bytes, moment))
      return diagnostics.Fail("22018", "The text is no date");
  } else if (cell.kind != CellKind::Moment) {
    return FailNoConversion(diagnostics);
  }
  switch (target.cType) {
    case SQL_C_DATE:
    case SQL_C_TYPE_DATE:
      Store(target, SQL_DATE_STRUCT{moment.year, moment.month, moment.day});
      if (!IsMidnight(moment))
        return diagnostics.Warn("01S07", "The time of the day was cut off");
      return SQL_SUCCESS;
    case SQL_C_TIME:
    case SQL_C_TYPE_TIME:
      Store(target, SQL_TIME_STRUCT{moment.hour, moment.minute, moment.second});
      if (moment.fraction != 0)
        return diagnostics.Warn("01S07", "The fraction of the second was cut off");
      return SQL_SUCCESS;
    default: Store(target, moment); return SQL_SUCCESS;
  }
}

bool IsMomentCType(SQLSMALLINT cType)
{
  switch (cType) {
    case SQL_C_DATE:
    case SQL_C_TIME:
    case SQL_C_TIMESTAMP:
    case SQL_C_TYPE_DATE:
    case SQL_C_TYPE_TIME:
    case SQL_C_TYPE_TIMESTAMP: return true;
    default: return false;
  }
}

SQLRETURN StoreNull(const Target& target, Diagnostics& diagnostics)
{
  if (target.indicator == nullptr)
    return diagnostics.Fail("22002", "The value is NULL and there is no indicator for it");
  *target.indicator = SQL_NULL_DATA;
  return SQL_SUCCESS;
}

}  // namespace

bool IsVariableCType(SQLSMALLINT cType)
{
  return cType == SQL_C_CHAR || cType == SQL_C_WCHAR || cType == SQL_C_BINARY;
}

size_t FixedSize(SQLSMALLINT cType)
{
  switch (cType) {
    case SQL_C_BIT:
    case SQL_C_TINYINT:
    case SQL_C_STINYINT:
    case SQL_C_UTINYINT: return 1;
    case SQL_C_SHORT:
    case SQL_C_SSHORT:
    case SQL_C_USHORT: return 2;
    case SQL_C_SBIGINT:
    case SQL_C_UBIGINT:
    case SQL_C_DOUBLE: return 8;
    case SQL_C_DATE:
    case SQL_C_TYPE_DATE: return sizeof(SQL_DATE_STRUCT);
    case SQL_C_TIME:
    case SQL_C_TYPE_TIME: return sizeof(SQL_TIME_STRUCT);
    case SQL_C_TIMESTAMP:
    case SQL_C_TYPE_TIMESTAMP: return sizeof(SQL_TIMESTAMP_STRUCT);
    case SQL_C_NUMERIC: return sizeof(SQL_NUMERIC_STRUCT);
    default: return 4;
  }
}

bool IsKnownCType(SQLSMALLINT cType)
{
  switch (cType) {
    case SQL_C_BIT:
    case SQL_C_TINYINT:
    case SQL_C_STINYINT:
    case SQL_C_UTINYINT:
    case SQL_C_SHORT:
    case SQL_C_SSHORT:
    case SQL_C_USHORT:
    case SQL_C_LONG:
    case SQL_C_SLONG:
    case SQL_C_ULONG:
    case SQL_C_SBIGINT:
    case SQL_C_UBIGINT:
    case SQL_C_FLOAT:
    case SQL_C_DOUBLE:
    case SQL_C_NUMERIC:
    case SQL_C_GUID:
    case SQL_C_DEFAULT:
    case SQL_ARD_TYPE: return true;
    default:
      return IsVariableCType(cType) || IsMomentCType(cType) ||
             (cType >= SQL_C_INTERVAL_YEAR && cType <= SQL_C_INTERVAL_MINUTE_TO_SECOND);
  }
}

std::string VariableBytes(const Cell& cell, SQLSMALLINT sqlType, SQLSMALLINT cType)
{
  if (cType == SQL_C_BINARY) {
    if (cell.kind == CellKind::Binary)
      return std::string(cell.bytes);
    // Text as bytes is what it is in the wide form of its type.
    if (!IsTextType(sqlType) && cell.kind == CellKind::Text)
      return std::string(cell.bytes);
  }
  std::string text = CellText(cell);
  if (cType == SQL_C_CHAR)
    return text;
  const std::u16string wide = ToUtf16(text);
  return {reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(char16_t)};
}

SQLRETURN ConvertCell(const Cell& cell, const ColumnType& column, const Target& wanted,
                      Diagnostics& diagnostics)
{
  if (cell.kind == CellKind::Null)
    return StoreNull(wanted, diagnostics);
  Target target = wanted;
  const SQLSMALLINT sqlType = column.type->sqlType;
  if (target.cType == SQL_C_DEFAULT || target.cType == SQL_ARD_TYPE)
    target.cType = DefaultCType(sqlType);
  if (target.indicator != nullptr && target.indicator != target.length)
    *target.indicator = 0;
  if (target.buffer == nullptr) {
    // The length alone is wanted.
    if (IsVariableCType(target.cType))
      SetLength(target, VariableBytes(cell, sqlType, target.cType).size());
    return SQL_SUCCESS;
  }
  if (IsVariableCType(target.cType)) {
    // A length of less than nothing reaches this place by way of a descriptor's fields.
    if (target.capacity < static_cast<SQLLEN>(TerminatorOf(target.cType)))
      target.capacity = 0;
    if (target.cType == SQL_C_BINARY)
      return ConvertToBytes(cell, sqlType, target, diagnostics);
    return ConvertToText(cell, target, diagnostics);
  }
  if (IsMomentCType(target.cType))
    return ConvertToMoment(cell, target, diagnostics);
  if (target.cType == SQL_C_GUID || target.cType >= SQL_C_INTERVAL_YEAR ||
      !IsKnownCType(target.cType))
    return FailNoConversion(diagnostics);
  if (cell.kind == CellKind::Moment || cell.kind == CellKind::Binary)
    return FailNoConversion(diagnostics);
  if (target.cType == SQL_C_NUMERIC)
    return ConvertToDecimal(cell, column.digits == NoDigits ? SQLSMALLINT{0} : column.digits,
                            target, diagnostics);
  return ConvertToNumber(cell, target, diagnostics);
}
