#include "sql/StatementText.h"

#include "foundation/FatalEnd.h"

#include <stdarg.h>
#include <string.h>

#include <bit>
#include <charconv>

namespace {

constexpr wchar_t Quote = L'\'';

__extension__ using Unsigned128 = unsigned __int128;

constexpr uint64_t InEachCharacter(uint64_t bits)
{
  return bits << 48 | bits << 32 | bits << 16 | bits;
}

constexpr bool HasZeroCharacter(uint64_t characters)
{
  return ((characters - InEachCharacter(0x0001)) & ~characters & InEachCharacter(0x8000)) != 0;
}

// The first quote or terminator from text on, or textEnd. Looks at four characters at a time: texts
// of tens of thousands of them are what a statement spends its time on.
const wchar_t* FindQuoteOrEnd(const wchar_t* text, const wchar_t* textEnd)
{
  uint64_t characters = 0;
  constexpr ptrdiff_t block = sizeof(characters) / sizeof(wchar_t);
  for (; textEnd - text >= block; text += block) {
    memcpy(&characters, text, sizeof(characters));
    if (HasZeroCharacter(characters) || HasZeroCharacter(characters ^ InEachCharacter(Quote)))
      break;
  }
  while (text != textEnd && *text != Quote && *text != L'\0')
    ++text;
  return text;
}

// Rounds a number to millionths, exactly: its 53 bits times a million fit into 128. False for what
// is too large, infinite or NaN, and for one that lies in the middle of two millionths, which
// runtimes round in different ways. The sign is left out.
bool RoundToMillionths(double number, uint64_t& millionths)
{
  constexpr uint64_t fractionBits = 52;
  constexpr uint64_t implicitBit = uint64_t{1} << fractionBits;
  constexpr uint64_t exponentBias = 1023;
  constexpr uint64_t million = 1000000;
  const uint64_t bits = std::bit_cast<uint64_t>(number);
  const uint64_t exponent = bits >> fractionBits & 0x7FF;
  // From 2^43 on the millionths might not fit into 64 bits.
  if (exponent >= exponentBias + 43)
    return false;
  uint64_t mantissa = bits & (implicitBit - 1);
  if (exponent != 0)
    mantissa |= implicitBit;
  const uint64_t shift = exponentBias + fractionBits - (exponent == 0 ? 1 : exponent);
  const Unsigned128 scaled = Unsigned128{mantissa} * million;
  // 53 bits and 20 of the million: what is shifted further is less than a half.
  if (shift > 53 + 20) {
    millionths = 0;
    return true;
  }
  const Unsigned128 half = Unsigned128{1} << (shift - 1);
  const Unsigned128 rest = scaled & ((half << 1) - 1);
  if (rest == half)
    return false;
  millionths = static_cast<uint64_t>(scaled >> shift) + (rest > half ? 1 : 0);
  return true;
}

}  // namespace

StatementText::StatementText() : end(QulWideScratch)
{
  *end = L'\0';
}

void StatementText::Append(const wchar_t* text)
{
  AppendRange(text, wcslen(text));
}

void StatementText::AppendName(const QulString& name)
{
  Append(L"[");
  Append(name.Text());
  Append(L"]");
}

void StatementText::AppendQuoted(const wchar_t* text, size_t size)
{
  const wchar_t* const textEnd = text + size;
  Append(L"'");
  for (;;) {
    const wchar_t* const stop = FindQuoteOrEnd(text, textEnd);
    AppendRange(text, static_cast<size_t>(stop - text));
    if (stop == textEnd || *stop != Quote)
      break;
    Append(L"''");
    text = stop + 1;
  }
  Append(L"'");
}

void StatementText::AppendInteger(int32_t number)
{
  AppendDigits(number);
}

void StatementText::AppendDecimals(double number)
{
  constexpr uint64_t million = 1000000;
  uint64_t millionths = 0;
  if (!RoundToMillionths(number, millionths)) {
    AppendFormatted(L"%f", number);
    return;
  }
  if (std::bit_cast<int64_t>(number) < 0)
    Append(L"-");
  AppendDigits(millionths / million);
  // With a digit in front that keeps the zeros behind the point.
  wchar_t* const point = end;
  AppendDigits(million + millionths % million);
  *point = L'.';
}

template <typename Number>
void StatementText::AppendDigits(Number number)
{
  char digits[24];
  const char* const digitsEnd = std::to_chars(digits, digits + sizeof(digits), number).ptr;
  const size_t length = static_cast<size_t>(digitsEnd - digits);
  wchar_t* const room = RoomFor(length);
  for (size_t i = 0; i < length; ++i)
    room[i] = static_cast<wchar_t>(digits[i]);
}

void StatementText::AppendFormatted(const wchar_t* format, ...)
{
  const int room = QulStringLimit - static_cast<int>(end - QulWideScratch);
  va_list arguments;
  va_start(arguments, format);
  const int written = vswprintf_s(end, static_cast<size_t>(room), format, arguments);
  va_end(arguments);
  RequireFormatted(written, room);
  end += written;
}

void StatementText::AppendRange(const wchar_t* text, size_t length)
{
  memcpy(RoomFor(length), text, length * sizeof(wchar_t));
}

wchar_t* StatementText::RoomFor(size_t length)
{
  const size_t left = static_cast<size_t>(QulWideScratch + QulStringLimit - end);
  if (length >= left)
    EndOnInvalidParameter();
  wchar_t* const room = end;
  end += length;
  *end = L'\0';
  return room;
}
