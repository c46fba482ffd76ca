#include "driver/Cell.h"

#include <charconv>
#include <cmath>

#include "driver/DateText.h"
#include "driver/Text.h"
#include "driver/Types.h"

namespace {

// Beyond this a number is written with an exponent.
constexpr double LargestPlain = 1e20;
constexpr double SmallestPlain = 1e-7;

std::string_view TrimBlanks(std::string_view text)
{
  while (!text.empty() && text.front() == ' ')
    text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ')
    text.remove_suffix(1);
  return text;
}

void FitToBit(Cell& cell)
{
  if (cell.kind == CellKind::Text) {
    bool isInteger = false;
    const bool isYes = EqualsNoCase(cell.bytes, "true") || EqualsNoCase(cell.bytes, "yes");
    if (isYes || EqualsNoCase(cell.bytes, "false") || EqualsNoCase(cell.bytes, "no"))
      cell = Cell::OfInteger(isYes ? 1 : 0);
    else if (ReadNumber(cell.bytes, isInteger, cell.integer, cell.real))
      cell.kind = isInteger ? CellKind::Integer : CellKind::Real;
  }
  // Every number but 0 means yes; programs write -1 as well.
  if (cell.kind == CellKind::Real)
    cell = Cell::OfInteger(cell.real != 0 ? 1 : 0);
  else if (cell.kind == CellKind::Integer)
    cell.integer = cell.integer != 0 ? 1 : 0;
}

}  // namespace

Cell Cell::OfInteger(int64_t value)
{
  Cell cell;
  cell.kind = CellKind::Integer;
  cell.integer = value;
  return cell;
}

Cell Cell::OfText(std::string_view value)
{
  Cell cell;
  cell.kind = CellKind::Text;
  cell.bytes = value;
  return cell;
}

void FitToType(Cell& cell, SQLSMALLINT sqlType)
{
  if (sqlType == SQL_BIT) {
    FitToBit(cell);
  } else if (sqlType == SQL_TYPE_TIMESTAMP) {
    if (cell.kind == CellKind::Text && ReadMoment(cell.bytes, cell.moment))
      cell.kind = CellKind::Moment;
  } else if (IsBinaryType(sqlType)) {
    if (cell.kind == CellKind::Text)
      cell.kind = CellKind::Binary;
  } else if (IsTextType(sqlType) && cell.kind == CellKind::Binary) {
    cell.kind = CellKind::Text;
  }
}

std::string WriteReal(double value)
{
  char buffer[64];
  const double size = std::fabs(value);
  const bool plain = size == 0 || (size >= SmallestPlain && size < LargestPlain);
  const auto result =
      std::to_chars(buffer, buffer + sizeof(buffer), value,
                    plain ? std::chars_format::fixed : std::chars_format::scientific);
  return {buffer, result.ptr};
}

bool ReadNumber(std::string_view text, bool& isInteger, int64_t& integer, double& real)
{
  text = TrimBlanks(text);
  if (!text.empty() && text.front() == '+')
    text.remove_prefix(1);
  if (text.empty() || text.front() == '+')
    return false;
  const char* const end = text.data() + text.size();
  const auto whole = std::from_chars(text.data(), end, integer);
  if (whole.ec == std::errc() && whole.ptr == end) {
    isInteger = true;
    return true;
  }
  isInteger = false;
  const auto fraction = std::from_chars(text.data(), end, real);
  return fraction.ec == std::errc() && fraction.ptr == end && std::isfinite(real);
}

std::string CellText(const Cell& cell)
{
  static const char* const digits = "0123456789ABCDEF";
  switch (cell.kind) {
    case CellKind::Integer: return std::to_string(cell.integer);
    case CellKind::Real: return WriteReal(cell.real);
    case CellKind::Moment: return WriteMoment(cell.moment);
    case CellKind::Binary: {
      std::string text;
      for (const char character : cell.bytes) {
        text += digits[static_cast<unsigned char>(character) >> 4];
        text += digits[static_cast<unsigned char>(character) & 15];
      }
      return text;
    }
    default: return std::string(cell.bytes);
  }
}
