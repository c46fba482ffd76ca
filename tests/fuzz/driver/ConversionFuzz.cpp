// Values of every kind and every column type into buffers of every C type and size: nothing is
// written behind a buffer's end, and what is in it is the value, told by other means. How moments
// are read and text becomes wide is what other targets look at.

#include "driver/Conversion.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

#include "driver/DateText.h"
#include "driver/Text.h"
#include "tests/fuzz/Require.h"

namespace {

constexpr unsigned char Poison = 0xbd;

__extension__ using Signed128 = __int128;

// A conversion into a block of the heap that has just the size that is told; none if that is
// negative.
class Converted
{
public:
  Converted(const Cell& cell, const ColumnType& column, SQLSMALLINT cType, SQLLEN capacity)
  {
    const bool isFixed = !IsVariableCType(cType);
    size = isFixed ? FixedSize(cType) : static_cast<size_t>(std::max<SQLLEN>(capacity, 0));
    buffer = std::make_unique<unsigned char[]>(size);
    std::memset(buffer.get(), Poison, size);
    Target target;
    target.cType = cType;
    target.buffer = buffer.get();
    target.capacity = capacity;
    target.length = target.indicator = &length;
    result = ConvertCell(cell, column, target, diagnostics);
  }

  std::string State() const { return diagnostics.Count() == 0 ? "" : diagnostics.Record(0).state; }

  bool IsUntouched() const
  {
    return std::all_of(buffer.get(), buffer.get() + size,
                       [](unsigned char byte) { return byte == Poison; });
  }

  template <typename Value>
  Value As() const
  {
    Value value;
    Require(sizeof(value) <= size, "the buffer has room for the value");
    std::memcpy(&value, buffer.get(), sizeof(value));
    return value;
  }

  SQLRETURN result = -99;
  SQLLEN length = -77;
  size_t size;
  std::unique_ptr<unsigned char[]> buffer;

private:
  Diagnostics diagnostics;
};

struct IntegerType
{
  SQLSMALLINT cType;
  Signed128 least;
  Signed128 most;
};

const IntegerType IntegerTypes[] = {
    {SQL_C_TINYINT, INT8_MIN, INT8_MAX},  {SQL_C_STINYINT, INT8_MIN, INT8_MAX},
    {SQL_C_UTINYINT, 0, UINT8_MAX},       {SQL_C_SHORT, INT16_MIN, INT16_MAX},
    {SQL_C_SSHORT, INT16_MIN, INT16_MAX}, {SQL_C_USHORT, 0, UINT16_MAX},
    {SQL_C_LONG, INT32_MIN, INT32_MAX},   {SQL_C_SLONG, INT32_MIN, INT32_MAX},
    {SQL_C_ULONG, 0, UINT32_MAX},         {SQL_C_SBIGINT, INT64_MIN, INT64_MAX},
    {SQL_C_UBIGINT, 0, UINT64_MAX},       {SQL_C_BIT, 0, 1}};

// The number that a cell is or shows.
struct Number
{
  bool isInteger = false;
  int64_t integer = 0;
  double real = 0;
};

bool AreDigits(std::string_view text)
{
  return text.find_first_not_of("0123456789") == std::string_view::npos;
}

// Whether a text has the form of a decimal number: a minus perhaps, digits with a point among them
// perhaps, and an exponent perhaps.
bool HasNumberForm(std::string_view text)
{
  if (text.starts_with('-'))
    text.remove_prefix(1);
  const size_t exponent = std::min(text.find_first_of("eE"), text.size());
  if (exponent < text.size()) {
    std::string_view power = text.substr(exponent + 1);
    if (power.starts_with('-') || power.starts_with('+'))
      power.remove_prefix(1);
    if (power.empty() || !AreDigits(power))
      return false;
  }
  std::string digits(text.substr(0, exponent));
  const size_t point = digits.find('.');
  if (point != std::string::npos)
    digits.erase(point, 1);
  return !digits.empty() && AreDigits(digits);
}

// The number that a text with blanks around it and a plus in front of it perhaps shows, as the
// runtime reads it; nothing if there is none, or none that a double can be.
std::optional<Number> NumberIn(std::string text)
{
  text.erase(0, text.find_first_not_of(' '));
  text.erase(text.find_last_not_of(' ') + 1);
  const bool hasPlus = text.starts_with('+');
  text.erase(0, hasPlus ? 1 : 0);
  if (!HasNumberForm(text))
    return std::nullopt;
  errno = 0;
  char* end = nullptr;
  const int64_t integer = std::strtoll(text.c_str(), &end, 10);
  if (*end == '\0' && errno == 0)
    return Number{true, integer, 0};
  const double real = std::strtod(text.c_str(), nullptr);
  const size_t mantissa = text.find_first_of("eE");
  const bool isZero = text.substr(0, mantissa).find_first_of("123456789") == std::string::npos;
  if (std::isinf(real) || (real == 0 && !isZero))
    return std::nullopt;
  return Number{false, 0, real};
}

// The number that a cell is or shows.
std::optional<Number> NumberOf(const Cell& cell)
{
  switch (cell.kind) {
    case CellKind::Integer: return Number{true, cell.integer, 0};
    case CellKind::Real: return Number{false, 0, cell.real};
    case CellKind::Text: return NumberIn(std::string(cell.bytes));
    default: return std::nullopt;
  }
}

// Digits that a real number takes at the least.
size_t DigitsOf(double real)
{
  char buffer[64];
  int precision = 0;
  do {
    ++precision;
    (void)snprintf(buffer, sizeof(buffer), "%.*g", precision, real);
  } while (std::strtod(buffer, nullptr) != real);
  return static_cast<size_t>(precision);
}

// The driver's text of a real number, of which there is more than one, if it is a right one: it
// shows that number and no other, in no more digits than that takes, and without an exponent where
// it isn't very large or small.
std::string CheckedRealText(double real)
{
  std::string text = WriteReal(real);
  if (!std::isfinite(real)) {
    const std::string sign = std::signbit(real) ? "-" : "";
    Require(text == sign + (std::isnan(real) ? "nan" : "inf"), "what is no number is named");
    return text;
  }
  const bool isPlain = real == 0 || (std::fabs(real) >= 1e-7 && std::fabs(real) < 1e20);
  Require(HasNumberForm(text), "a number is written as one");
  Require((text.find('e') == std::string::npos) == isPlain, "an exponent stands where it must");
  Require(std::strtod(text.c_str(), nullptr) == real &&
              std::signbit(std::strtod(text.c_str(), nullptr)) == std::signbit(real),
          "a number comes back from its text");
  const std::string digits = text.substr(0, text.find('e'));
  const size_t first = digits.find_first_of("123456789");
  const size_t last = digits.find_last_of("123456789");
  if (first != std::string::npos && digits.find('.') != std::string::npos) {
    const bool hasPoint = digits.find('.') > first && digits.find('.') < last;
    Require(last + 1 - first <= DigitsOf(real) + (hasPoint ? 1 : 0),
            "a number takes no more digits than it needs");
  }
  return text;
}

std::string PlainMoment(const SQL_TIMESTAMP_STRUCT& moment)
{
  char buffer[64];
  (void)snprintf(buffer, sizeof(buffer), "%04d-%02u-%02u %02u:%02u:%02u.%09u", moment.year,
                 moment.month, moment.day, moment.hour, moment.minute, moment.second,
                 moment.fraction);
  std::string text = buffer;
  text.erase(text.find_last_not_of('0') + 1);
  // Without a fraction the zeros end at the point; those of the seconds aren't reached.
  if (text.back() == '.')
    text.pop_back();
  return text;
}

std::string PlainText(const Cell& cell)
{
  switch (cell.kind) {
    case CellKind::Integer: return std::to_string(cell.integer);
    case CellKind::Real: return CheckedRealText(cell.real);
    case CellKind::Moment: return PlainMoment(cell.moment);
    case CellKind::Binary: {
      std::string digits;
      for (const char byte : cell.bytes) {
        char pair[3];
        (void)snprintf(pair, sizeof(pair), "%02X", static_cast<unsigned char>(byte));
        digits += pair;
      }
      return digits;
    }
    default: return std::string(cell.bytes);
  }
}

// Bytes are what is stored where text isn't the column's own type; all else is wide text.
std::string PlainBytes(const Cell& cell, SQLSMALLINT sqlType)
{
  if (cell.kind == CellKind::Binary || (cell.kind == CellKind::Text && !IsTextType(sqlType)))
    return std::string(cell.bytes);
  std::string bytes;
  for (const char16_t unit : ToUtf16(PlainText(cell))) {
    bytes += static_cast<char>(unit & 0xff);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

Signed128 StoredInteger(const Converted& converted, const IntegerType& type)
{
  const bool isSigned = type.least < 0;
  switch (converted.size) {
    case 1: return isSigned ? Signed128{converted.As<int8_t>()} : converted.As<uint8_t>();
    case 2: return isSigned ? Signed128{converted.As<int16_t>()} : converted.As<uint16_t>();
    case 4: return isSigned ? Signed128{converted.As<int32_t>()} : converted.As<uint32_t>();
    default: return isSigned ? Signed128{converted.As<int64_t>()} : converted.As<uint64_t>();
  }
}

void RequireRefused(const Converted& converted)
{
  Require(converted.result == SQL_ERROR, "what doesn't fit is refused");
  Require(converted.State().size() == 5, "a refusal is told");
  Require(converted.IsUntouched(), "a refused value leaves its buffer alone");
}

void RequireStored(const Converted& converted, bool isWhole)
{
  Require(converted.result == (isWhole ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO),
          "a value is stored, and a cut is told");
  Require(isWhole || converted.State() == "01S07", "the cut is one of digits or time");
  Require(converted.length == static_cast<SQLLEN>(converted.size), "the length is the type's");
}

void CheckInteger(const Converted& converted, const Number& number, const IntegerType& type)
{
  const double real = number.isInteger ? 0 : number.real;
  // Beyond this no integer type goes, and 128 bits are enough.
  const bool isNear = std::isfinite(real) && std::fabs(real) < std::ldexp(1.0, 100);
  const Signed128 whole =
      number.isInteger ? Signed128{number.integer} : static_cast<Signed128>(isNear ? real : 0);
  // A bit has no negative fractions that could be cut.
  const bool isBelow = type.cType == SQL_C_BIT && real < 0;
  if (!isNear || isBelow || whole < type.least || whole > type.most) {
    RequireRefused(converted);
    return;
  }
  RequireStored(converted, number.isInteger || static_cast<double>(whole) == real);
  Require(StoredInteger(converted, type) == whole, "an integer is stored as it is");
}

template <typename Real>
void CheckReal(const Converted& converted, const Number& number)
{
  const double value = number.isInteger ? static_cast<double>(number.integer) : number.real;
  const double most = static_cast<double>(std::numeric_limits<Real>::max());
  if (std::isfinite(value) && (value > most || value < -most)) {
    RequireRefused(converted);
    return;
  }
  RequireStored(converted, true);
  const Real stored = converted.As<Real>();
  Require(std::isnan(value) ? std::isnan(stored) : stored == static_cast<Real>(value),
          "a number is stored as it is");
}

// The digits of a decimal of 128 bits.
std::string Digits(const SQL_NUMERIC_STRUCT& decimal)
{
  __extension__ unsigned __int128 value = 0;
  for (size_t i = SQL_MAX_NUMERIC_LEN; i > 0; --i)
    value = value << 8 | decimal.val[i - 1];
  std::string digits;
  for (; value != 0; value /= 10)
    digits.insert(digits.begin(), static_cast<char>('0' + static_cast<int>(value % 10)));
  return digits;
}

void CheckDecimal(const Converted& converted, const Cell& number, size_t scale)
{
  const std::string text = PlainText(number);
  if (text.find_first_not_of("-0123456789.") != std::string::npos) {
    RequireRefused(converted);
    return;
  }
  const size_t point = std::min(text.find('.'), text.size());
  std::string behind = point < text.size() ? text.substr(point + 1) : "";
  const bool isWhole = behind.find_first_not_of('0', scale) == std::string::npos;
  behind.resize(scale, '0');
  std::string digits = text.substr(text[0] == '-' ? 1 : 0, point - (text[0] == '-' ? 1 : 0));
  digits += behind;
  digits.erase(0, digits.find_first_not_of('0'));
  if (digits.find_first_not_of('0') == std::string::npos)
    digits.clear();
  static const std::string most = "340282366920938463463374607431768211455";
  if (digits.size() > most.size() || (digits.size() == most.size() && digits > most)) {
    RequireRefused(converted);
    return;
  }
  RequireStored(converted, isWhole);
  const auto decimal = converted.As<SQL_NUMERIC_STRUCT>();
  Require(Digits(decimal) == digits, "a decimal has the digits of the number");
  Require(decimal.sign == (text[0] == '-' ? 0 : 1), "a decimal has the sign of the number");
  Require(decimal.scale == static_cast<SQLSCHAR>(scale), "a decimal has the column's scale");
}

void CheckMoment(const Converted& converted, const Cell& cell, SQLSMALLINT cType)
{
  SQL_TIMESTAMP_STRUCT moment = cell.moment;
  const bool isMoment = cell.kind == CellKind::Moment ||
                        (cell.kind == CellKind::Text && ReadMoment(cell.bytes, moment));
  if (!isMoment) {
    RequireRefused(converted);
    return;
  }
  if (cType == SQL_C_DATE || cType == SQL_C_TYPE_DATE) {
    const auto date = converted.As<SQL_DATE_STRUCT>();
    RequireStored(converted, (moment.hour | moment.minute | moment.second | moment.fraction) == 0);
    Require(date.year == moment.year && date.month == moment.month && date.day == moment.day,
            "a date is stored as it is");
  } else if (cType == SQL_C_TIME || cType == SQL_C_TYPE_TIME) {
    const auto time = converted.As<SQL_TIME_STRUCT>();
    RequireStored(converted, moment.fraction == 0);
    Require(
        time.hour == moment.hour && time.minute == moment.minute && time.second == moment.second,
        "a time is stored as it is");
  } else {
    RequireStored(converted, true);
    Require(CompareMoments(converted.As<SQL_TIMESTAMP_STRUCT>(), moment) == 0,
            "a moment is stored as it is");
  }
}

// How many units of a text fit in front of a terminator without cutting a character.
size_t UnitsThatFit(const std::u16string& text, size_t room)
{
  if (text.size() <= room)
    return text.size();
  const bool cutsPair = room > 0 && text[room - 1] >= 0xd800 && text[room - 1] < 0xdc00 &&
                        text[room] >= 0xdc00 && text[room] < 0xe000;
  return cutsPair ? room - 1 : room;
}

size_t UnitsThatFit(const std::string& text, size_t room)
{
  if (text.size() <= room)
    return text.size();
  std::string_view rest = text;
  size_t taken = 0;
  while (true) {
    (void)TakeCharacter(rest);
    if (text.size() - rest.size() > room)
      return taken;
    taken = text.size() - rest.size();
  }
}

bool HasInvalidBytes(std::string_view text)
{
  while (!text.empty()) {
    if (TakeCharacter(text) >= InvalidByteBase)
      return true;
  }
  return false;
}

template <typename Text>
void CheckText(const Converted& converted, const Cell& cell, const Text& text, size_t leastUnits)
{
  using Unit = typename Text::value_type;
  const size_t capacity = converted.size / sizeof(Unit);
  if (leastUnits > 0 && capacity <= leastUnits) {
    RequireRefused(converted);
    return;
  }
  Require(converted.length == static_cast<SQLLEN>(text.size() * sizeof(Unit)),
          "the length is that of the whole text");
  Require(converted.result == (text.size() < capacity ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO),
          "a text that was cut is told");
  if (capacity == 0)
    return;
  // Where bytes of no character are cut is of no weight.
  if (sizeof(Unit) == 1 && HasInvalidBytes(PlainText(cell)) && text.size() >= capacity)
    return;
  const size_t fits = UnitsThatFit(text, capacity - 1);
  Require(std::memcmp(converted.buffer.get(), text.data(), fits * sizeof(Unit)) == 0,
          "the text is stored up to where it is cut");
  Unit terminator = 1;
  std::memcpy(&terminator, converted.buffer.get() + fits * sizeof(Unit), sizeof(Unit));
  Require(terminator == 0, "a stored text has a terminator");
}

void CheckVariable(const Converted& converted, const Cell& cell, SQLSMALLINT cType,
                   SQLSMALLINT sqlType)
{
  if (cType == SQL_C_BINARY) {
    const std::string bytes = PlainBytes(cell, sqlType);
    const size_t fits = std::min(bytes.size(), converted.size);
    Require(converted.length == static_cast<SQLLEN>(bytes.size()), "the length is the value's");
    Require(std::memcmp(converted.buffer.get(), bytes.data(), fits) == 0, "bytes are stored");
    Require((converted.result == SQL_SUCCESS) == (fits == bytes.size()), "a cut is told");
    return;
  }
  const std::string text = PlainText(cell);
  const bool isNumber = cell.kind == CellKind::Integer || cell.kind == CellKind::Real;
  const size_t least =
      isNumber || cell.kind == CellKind::Moment ? std::min(text.find('.'), text.size()) : 0;
  if (cType == SQL_C_WCHAR)
    CheckText(converted, cell, ToUtf16(text), least);
  else
    CheckText(converted, cell, text, least);
}

void CheckFixed(const Converted& converted, const Cell& cell, const ColumnType& column,
                SQLSMALLINT cType)
{
  const bool isMomentType = (cType >= SQL_C_DATE && cType <= SQL_C_TIMESTAMP) ||
                            (cType >= SQL_C_TYPE_DATE && cType <= SQL_C_TYPE_TIMESTAMP);
  if (isMomentType) {
    CheckMoment(converted, cell, cType);
    return;
  }
  const std::optional<Number> number = NumberOf(cell);
  if (!number || cType == SQL_C_GUID || cType >= SQL_C_INTERVAL_YEAR) {
    RequireRefused(converted);
    return;
  }
  for (const IntegerType& type : IntegerTypes) {
    if (type.cType == cType)
      CheckInteger(converted, *number, type);
  }
  if (cType == SQL_C_FLOAT)
    CheckReal<float>(converted, *number);
  if (cType == SQL_C_DOUBLE)
    CheckReal<double>(converted, *number);
  if (cType == SQL_C_NUMERIC) {
    Cell shown = Cell::OfInteger(number->integer);
    shown.kind = number->isInteger ? CellKind::Integer : CellKind::Real;
    shown.real = number->real;
    CheckDecimal(converted, shown,
                 column.digits == NoDigits ? 0 : static_cast<size_t>(column.digits));
  }
}

bool IsSame(const Cell& left, const Cell& right)
{
  return left.kind == right.kind && left.integer == right.integer && left.bytes == right.bytes &&
         std::bit_cast<uint64_t>(left.real) == std::bit_cast<uint64_t>(right.real) &&
         CompareMoments(left.moment, right.moment) == 0;
}

// Yes and no of a stored value; nothing if it is neither.
std::optional<bool> BitOf(const Cell& cell)
{
  std::string word;
  for (const char character : cell.kind == CellKind::Text ? cell.bytes : std::string_view())
    word += static_cast<char>(character >= 'A' && character <= 'Z' ? character + 32 : character);
  if (word == "true" || word == "yes")
    return true;
  if (word == "false" || word == "no")
    return false;
  const std::optional<Number> number = NumberOf(cell);
  if (!number)
    return std::nullopt;
  return number->isInteger ? number->integer != 0 : number->real != 0;
}

// A stored value becomes one of its column's type, or stays what it is.
void CheckFitted(const Cell& stored, const Cell& fitted, SQLSMALLINT sqlType)
{
  const std::optional<bool> bit = sqlType == SQL_BIT ? BitOf(stored) : std::nullopt;
  SQL_TIMESTAMP_STRUCT moment;
  if (bit) {
    Require(fitted.kind == CellKind::Integer && fitted.integer == (*bit ? 1 : 0),
            "a bit is 0 or 1");
  } else if (sqlType == SQL_TYPE_TIMESTAMP && stored.kind == CellKind::Text &&
             ReadMoment(stored.bytes, moment)) {
    Require(fitted.kind == CellKind::Moment && CompareMoments(fitted.moment, moment) == 0,
            "a date is the one of its text");
  } else if (IsBinaryType(sqlType) && stored.kind == CellKind::Text) {
    Require(fitted.kind == CellKind::Binary && fitted.bytes == stored.bytes, "text becomes bytes");
  } else if (IsTextType(sqlType) && stored.kind == CellKind::Binary) {
    Require(fitted.kind == CellKind::Text && fitted.bytes == stored.bytes, "bytes become text");
  } else if (sqlType != SQL_BIT || stored.kind != CellKind::Text) {
    Require(IsSame(stored, fitted), "what doesn't fit its type stays as it is");
  } else {
    Require(fitted.kind == CellKind::Text && fitted.bytes == stored.bytes,
            "a text that is no bit stays as it is");
  }
}

double AnyReal(FuzzedDataProvider& input)
{
  if (input.ConsumeBool())
    return input.ConsumeFloatingPoint<double>();
  const uint64_t bits = input.ConsumeIntegral<uint64_t>();
  double value = 0;
  std::memcpy(&value, &bits, sizeof(value));
  return value;
}

int64_t AnyInteger(FuzzedDataProvider& input)
{
  const int64_t edges[] = {0,         1,          2,         INT8_MIN,   INT8_MAX,
                           UINT8_MAX, INT16_MIN,  INT16_MAX, UINT16_MAX, INT32_MIN,
                           INT32_MAX, UINT32_MAX, INT64_MIN, INT64_MAX};
  if (input.ConsumeBool())
    return input.ConsumeIntegral<int64_t>();
  const int64_t edge = input.PickValueInArray(edges);
  return edge > INT64_MIN && edge < INT64_MAX ? edge + input.ConsumeIntegralInRange(-1, 1) : edge;
}

Cell AnyCell(FuzzedDataProvider& input, std::string& bytes)
{
  Cell cell;
  cell.kind =
      input.PickValueInArray({CellKind::Null, CellKind::Integer, CellKind::Real, CellKind::Text,
                              CellKind::Text, CellKind::Binary, CellKind::Moment});
  cell.integer = AnyInteger(input);
  cell.real = AnyReal(input);
  if (cell.kind == CellKind::Moment) {
    cell.moment = {input.ConsumeIntegral<SQLSMALLINT>(),
                   input.ConsumeIntegral<SQLUSMALLINT>(),
                   input.ConsumeIntegral<SQLUSMALLINT>(),
                   input.ConsumeIntegralInRange<SQLUSMALLINT>(0, 23),
                   input.ConsumeIntegralInRange<SQLUSMALLINT>(0, 59),
                   input.ConsumeIntegralInRange<SQLUSMALLINT>(0, 59),
                   input.ConsumeIntegralInRange<SQLUINTEGER>(0, 999999999)};
  }
  bytes = input.ConsumeRemainingBytesAsString().substr(0, 128);
  cell.bytes = bytes;
  return cell;
}

std::vector<SQLSMALLINT> KnownCTypes()
{
  std::vector<SQLSMALLINT> types;
  for (SQLSMALLINT type = -150; type < 200; ++type) {
    if (IsKnownCType(type))
      types.push_back(type);
  }
  return types;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
  static const std::vector<SQLSMALLINT> cTypes = KnownCTypes();
  FuzzedDataProvider input(data, size);
  const SQLSMALLINT asked = cTypes[input.ConsumeIntegralInRange<size_t>(0, cTypes.size() - 1)];
  const size_t typeIndex = input.ConsumeIntegralInRange<size_t>(0, TypeTableSize - 1);
  ColumnType column = PlainType(TypeTable[typeIndex].sqlType);
  if (column.digits != NoDigits)
    column.digits = input.ConsumeIntegralInRange<SQLSMALLINT>(0, 20);
  const SQLLEN capacity = input.ConsumeIntegralInRange<SQLLEN>(-2, 72);
  const bool fits = input.ConsumeBool();
  std::string bytes;
  Cell cell = AnyCell(input, bytes);
  if (fits) {
    const Cell stored = cell;
    FitToType(cell, column.type->sqlType);
    CheckFitted(stored, cell, column.type->sqlType);
  }
  const bool isDefault = asked == SQL_C_DEFAULT || asked == SQL_ARD_TYPE;
  const SQLSMALLINT cType = isDefault ? DefaultCType(column.type->sqlType) : asked;

  const Converted converted(cell, column, cType, capacity);
  if (cell.kind == CellKind::Null) {
    Require(converted.result == SQL_SUCCESS, "NULL is no failure");
    Require(converted.length == SQL_NULL_DATA && converted.IsUntouched(),
            "NULL goes to the indicator alone");
    return 0;
  }
  if (IsVariableCType(cType))
    CheckVariable(converted, cell, cType, column.type->sqlType);
  else
    CheckFixed(converted, cell, column, cType);
  return 0;
}
