// The part of the conversions that is about numbers.

#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "driver/Conversion.h"

namespace {

SQLRETURN FailOutOfRange(Diagnostics& diagnostics)
{
  return diagnostics.Fail("22003", "The number is out of the range of the buffer's type");
}

SQLRETURN WarnFraction(Diagnostics& diagnostics)
{
  return diagnostics.Warn("01S07", "The digits behind the point were cut off");
}

void SetLength(const Target& target, size_t length)
{
  if (target.length != nullptr)
    *target.length = static_cast<SQLLEN>(length);
}

// Text becomes the number that it shows.
bool MakeNumber(Cell& cell)
{
  if (cell.kind != CellKind::Text)
    return true;
  bool isInteger = false;
  if (!ReadNumber(cell.bytes, isInteger, cell.integer, cell.real))
    return false;
  cell.kind = isInteger ? CellKind::Integer : CellKind::Real;
  return true;
}

template <typename Integer>
SQLRETURN StoreInteger(const Cell& cell, const Target& target, Diagnostics& diagnostics)
{
  using Limits = std::numeric_limits<Integer>;
  Integer value = 0;
  bool cut = false;
  if (cell.kind == CellKind::Integer) {
    if (!std::in_range<Integer>(cell.integer))
      return FailOutOfRange(diagnostics);
    value = static_cast<Integer>(cell.integer);
  } else {
    const double whole = std::trunc(cell.real);
    // The largest number itself has no exact form as a double where it has 64 bits.
    const double beyond = std::ldexp(1.0, Limits::digits);
    if (!(whole >= static_cast<double>(Limits::min()) && whole < beyond))
      return FailOutOfRange(diagnostics);
    value = static_cast<Integer>(whole);
    cut = whole != cell.real;
  }
  memcpy(target.buffer, &value, sizeof(value));
  SetLength(target, sizeof(value));
  return cut ? WarnFraction(diagnostics) : SQLRETURN{SQL_SUCCESS};
}

SQLRETURN StoreBit(const Cell& cell, const Target& target, Diagnostics& diagnostics)
{
  const double value =
      cell.kind == CellKind::Integer ? static_cast<double>(cell.integer) : cell.real;
  if (!(value >= 0 && value < 2))
    return FailOutOfRange(diagnostics);
  const SQLCHAR bit = value >= 1 ? 1 : 0;
  memcpy(target.buffer, &bit, sizeof(bit));
  SetLength(target, sizeof(bit));
  return value == bit ? SQLRETURN{SQL_SUCCESS} : WarnFraction(diagnostics);
}

template <typename Real>
SQLRETURN StoreReal(const Cell& cell, const Target& target, Diagnostics& diagnostics)
{
  const double value =
      cell.kind == CellKind::Integer ? static_cast<double>(cell.integer) : cell.real;
  if (std::isfinite(value) &&
      std::fabs(value) > static_cast<double>(std::numeric_limits<Real>::max()))
    return FailOutOfRange(diagnostics);
  const Real stored = static_cast<Real>(value);
  memcpy(target.buffer, &stored, sizeof(stored));
  SetLength(target, sizeof(stored));
  return SQL_SUCCESS;
}

// Multiplies a number of 128 bits, lowest byte first, by 10 and adds a digit; false on overflow.
bool AppendDigit(SQLCHAR (&number)[SQL_MAX_NUMERIC_LEN], unsigned digit)
{
  unsigned carry = digit;
  for (SQLCHAR& byte : number) {
    carry += byte * 10U;
    byte = static_cast<SQLCHAR>(carry & 0xff);
    carry >>= 8;
  }
  return carry == 0;
}

}  // namespace

SQLRETURN ConvertToNumber(const Cell& source, const Target& target, Diagnostics& diagnostics)
{
  Cell cell = source;
  if (!MakeNumber(cell))
    return diagnostics.Fail("22018", "The text is no number");
  switch (target.cType) {
    case SQL_C_BIT: return StoreBit(cell, target, diagnostics);
    case SQL_C_TINYINT:
    case SQL_C_STINYINT: return StoreInteger<int8_t>(cell, target, diagnostics);
    case SQL_C_UTINYINT: return StoreInteger<uint8_t>(cell, target, diagnostics);
    case SQL_C_SHORT:
    case SQL_C_SSHORT: return StoreInteger<int16_t>(cell, target, diagnostics);
    case SQL_C_USHORT: return StoreInteger<uint16_t>(cell, target, diagnostics);
    case SQL_C_ULONG: return StoreInteger<uint32_t>(cell, target, diagnostics);
    case SQL_C_SBIGINT: return StoreInteger<int64_t>(cell, target, diagnostics);
    case SQL_C_UBIGINT: return StoreInteger<uint64_t>(cell, target, diagnostics);
    case SQL_C_FLOAT: return StoreReal<float>(cell, target, diagnostics);
    case SQL_C_DOUBLE: return StoreReal<double>(cell, target, diagnostics);
    default: return StoreInteger<int32_t>(cell, target, diagnostics);
  }
}

SQLRETURN ConvertToDecimal(const Cell& source, SQLSMALLINT scale, const Target& target,
                           Diagnostics& diagnostics)
{
  Cell cell = source;
  if (!MakeNumber(cell))
    return diagnostics.Fail("22018", "The text is no number");
  const std::string text = CellText(cell);
  if (text.find('e') != std::string::npos || text.find('n') != std::string::npos)
    return FailOutOfRange(diagnostics);
  SQL_NUMERIC_STRUCT decimal = {};
  decimal.precision = 38;
  decimal.scale = static_cast<SQLSCHAR>(scale);
  decimal.sign = text.front() == '-' ? 0 : 1;
  SQLSMALLINT behindPoint = -1;  // digits behind the point so far; -1 in front of it
  bool cut = false;
  for (const char character : text) {
    if (character == '.') {
      behindPoint = 0;
    } else if (character >= '0' && character <= '9') {
      if (behindPoint >= scale) {
        cut = cut || character != '0';
        continue;
      }
      if (behindPoint >= 0)
        ++behindPoint;
      if (!AppendDigit(decimal.val, static_cast<unsigned>(character - '0')))
        return FailOutOfRange(diagnostics);
    }
  }
  for (SQLSMALLINT digit = behindPoint < 0 ? SQLSMALLINT{0} : behindPoint; digit < scale; ++digit) {
    if (!AppendDigit(decimal.val, 0))
      return FailOutOfRange(diagnostics);
  }
  memcpy(target.buffer, &decimal, sizeof(decimal));
  SetLength(target, sizeof(decimal));
  return cut ? WarnFraction(diagnostics) : SQLRETURN{SQL_SUCCESS};
}
