#include "driver/Parameters.h"

#include <cstring>

#include "driver/Cell.h"
#include "driver/Conversion.h"
#include "driver/DateText.h"
#include "driver/Text.h"
#include "driver/Types.h"

namespace {

constexpr size_t LargestFixedValue = 64;

__extension__ using Number128 = unsigned __int128;

template <typename Pointer>
Pointer Shift(Pointer pointer, SQLULEN offset)
{
  return pointer == nullptr || offset == 0
             ? pointer
             // NOLINTNEXTLINE(performance-no-int-to-ptr): as far as the application has asked for.
             : reinterpret_cast<Pointer>(reinterpret_cast<uintptr_t>(pointer) + offset);
}

template <typename Value>
Value Load(const void* from)
{
  Value value;
  memcpy(&value, from, sizeof(value));
  return value;
}

SQL_TIMESTAMP_STRUCT LoadMoment(SQLSMALLINT cType, const void* from)
{
  SQL_TIMESTAMP_STRUCT moment = {1899, 12, 30, 0, 0, 0, 0};
  if (cType == SQL_C_DATE || cType == SQL_C_TYPE_DATE) {
    const auto date = Load<SQL_DATE_STRUCT>(from);
    moment.year = date.year;
    moment.month = date.month;
    moment.day = date.day;
  } else if (cType == SQL_C_TIME || cType == SQL_C_TYPE_TIME) {
    const auto time = Load<SQL_TIME_STRUCT>(from);
    moment.hour = time.hour;
    moment.minute = time.minute;
    moment.second = time.second;
  } else {
    moment = Load<SQL_TIMESTAMP_STRUCT>(from);
  }
  return moment;
}

// The digits of a number of 128 bits, with its point.
std::string DecimalText(const SQL_NUMERIC_STRUCT& decimal)
{
  Number128 number = 0;
  for (size_t i = SQL_MAX_NUMERIC_LEN; i-- > 0;)
    number = (number << 8) | decimal.val[i];
  std::string text;
  int position = 0;
  do {
    if (position == decimal.scale && position > 0)
      text.insert(text.begin(), '.');
    text.insert(text.begin(), static_cast<char>('0' + static_cast<int>(number % 10)));
    number /= 10;
    ++position;
  } while (number != 0 || position <= decimal.scale);
  return decimal.sign == 0 ? "-" + text : text;
}

// A value with the text that it may need.
struct LoadedValue
{
  Cell cell;
  std::string text;
};

LoadedValue OfText(std::string text)
{
  LoadedValue value;
  value.text = std::move(text);
  value.cell.kind = CellKind::Text;
  return value;
}

LoadedValue OfReal(double real)
{
  LoadedValue value;
  value.cell.kind = CellKind::Real;
  value.cell.real = real;
  return value;
}

LoadedValue OfInteger(int64_t integer)
{
  LoadedValue value;
  value.cell = Cell::OfInteger(integer);
  return value;
}

// length is in bytes or SQL_NTS, and has no meaning for types of a fixed size.
LoadedValue LoadValue(SQLSMALLINT cType, const void* from, SQLLEN length)
{
  switch (cType) {
    case SQL_C_WCHAR:
      return OfText(ToUtf8(static_cast<const SQLWCHAR*>(from),
                           length == SQL_NTS ? length : length / SQLLEN{sizeof(SQLWCHAR)}));
    case SQL_C_BINARY: {
      LoadedValue value = OfText(std::string(static_cast<const char*>(from),
                                             static_cast<size_t>(length < 0 ? 0 : length)));
      value.cell.kind = CellKind::Binary;
      return value;
    }
    case SQL_C_BIT: return OfInteger(Load<SQLCHAR>(from) != 0 ? 1 : 0);
    case SQL_C_TINYINT:
    case SQL_C_STINYINT: return OfInteger(Load<SQLSCHAR>(from));
    case SQL_C_UTINYINT: return OfInteger(Load<SQLCHAR>(from));
    case SQL_C_SHORT:
    case SQL_C_SSHORT: return OfInteger(Load<SQLSMALLINT>(from));
    case SQL_C_USHORT: return OfInteger(Load<SQLUSMALLINT>(from));
    case SQL_C_LONG:
    case SQL_C_SLONG: return OfInteger(Load<SQLINTEGER>(from));
    case SQL_C_ULONG: return OfInteger(Load<SQLUINTEGER>(from));
    case SQL_C_SBIGINT: return OfInteger(Load<int64_t>(from));
    case SQL_C_UBIGINT: {
      const auto number = Load<uint64_t>(from);
      return number <= INT64_MAX ? OfInteger(static_cast<int64_t>(number))
                                 : OfReal(static_cast<double>(number));
    }
    case SQL_C_FLOAT: return OfReal(static_cast<double>(Load<SQLREAL>(from)));
    case SQL_C_DOUBLE: return OfReal(Load<SQLDOUBLE>(from));
    case SQL_C_NUMERIC: return OfText(DecimalText(Load<SQL_NUMERIC_STRUCT>(from)));
    case SQL_C_DATE:
    case SQL_C_TIME:
    case SQL_C_TIMESTAMP:
    case SQL_C_TYPE_DATE:
    case SQL_C_TYPE_TIME:
    case SQL_C_TYPE_TIMESTAMP: {
      LoadedValue value;
      value.cell.kind = CellKind::Moment;
      value.cell.moment = LoadMoment(cType, from);
      return value;
    }
    default: return OfText(ToUtf8(static_cast<const SQLCHAR*>(from), length));
  }
}

// What the declared type of the parameter makes of the value; false if that can't be.
bool FitToParameter(LoadedValue& value, SQLSMALLINT sqlType)
{
  Cell& cell = value.cell;
  if (cell.kind == CellKind::Moment) {
    if (!IsRealMoment(cell.moment))
      return false;
    value.text = WriteMoment(cell.moment);
    cell.kind = CellKind::Text;
  } else if (cell.kind == CellKind::Text && (IsNumberType(sqlType) || sqlType == SQL_BIT)) {
    bool isInteger = false;
    if (!ReadNumber(value.text, isInteger, cell.integer, cell.real))
      return false;
    cell.kind = isInteger ? CellKind::Integer : CellKind::Real;
  } else if (IsTextType(sqlType) && cell.kind == CellKind::Binary) {
    cell.kind = CellKind::Text;
  } else if (IsBinaryType(sqlType) && cell.kind == CellKind::Text) {
    cell.kind = CellKind::Binary;
  }
  return true;
}

int BindValue(sqlite3_stmt* query, int index, const LoadedValue& value)
{
  const std::string& text = value.text;
  switch (value.cell.kind) {
    case CellKind::Null: return sqlite3_bind_null(query, index);
    case CellKind::Integer: return sqlite3_bind_int64(query, index, value.cell.integer);
    case CellKind::Real: return sqlite3_bind_double(query, index, value.cell.real);
    case CellKind::Binary:
      return sqlite3_bind_blob64(query, index, text.data(), text.size(), SQLITE_TRANSIENT);
    default:
      return sqlite3_bind_text64(query, index, text.data(), text.size(), SQLITE_TRANSIENT,
                                 SQLITE_UTF8);
  }
}

}  // namespace

bool IsDelayed(const Parameter& parameter, SQLULEN offset)
{
  const SQLLEN* const length = Shift(parameter.length, offset);
  return length != nullptr &&
         (*length == SQL_DATA_AT_EXEC || *length <= SQL_LEN_DATA_AT_EXEC_OFFSET);
}

SQLRETURN BindParameter(sqlite3_stmt* query, int index, const Parameter& parameter, SQLULEN offset,
                        const DelayedValue* delayed, Diagnostics& diagnostics)
{
  const SQLLEN* const length = Shift(parameter.length, offset);
  const SQLSMALLINT cType =
      parameter.cType == SQL_C_DEFAULT ? DefaultCType(parameter.sqlType) : parameter.cType;
  LoadedValue value;
  if (delayed != nullptr) {
    if (!delayed->isNull) {
      // A value of a fixed size is read whole, even if the program gave less of it.
      std::string bytes = delayed->bytes;
      if (!IsVariableCType(cType) && bytes.size() < LargestFixedValue)
        bytes.resize(LargestFixedValue);
      value = LoadValue(cType, bytes.data(), static_cast<SQLLEN>(bytes.size()));
    }
  } else if (length != nullptr && *length == SQL_DEFAULT_PARAM) {
    return diagnostics.Fail("07S01", "A parameter has no default value");
  } else if (length == nullptr || *length != SQL_NULL_DATA) {
    const void* const from = Shift(parameter.value, offset);
    if (from == nullptr)
      return diagnostics.Fail("HY009", "A parameter has no buffer");
    value = LoadValue(cType, from, length == nullptr ? SQL_NTS : *length);
  }
  if (!FitToParameter(value, parameter.sqlType))
    return diagnostics.Fail("22018", "The value of a parameter doesn't fit its type");
  const int code = BindValue(query, index, value);
  if (code != SQLITE_OK)
    return diagnostics.Fail(code == SQLITE_NOMEM ? "HY001" : "HY000", sqlite3_errstr(code), code);
  return SQL_SUCCESS;
}
