#include "sql/StatementText.h"

#include "foundation/FatalEnd.h"

#include <emmintrin.h>
#include <stdarg.h>
#include <string.h>

#include <bit>
#include <charconv>

namespace {

constexpr wchar_t Quote = L'\'';

__extension__ using Unsigned128 = unsigned __int128;

// Rounds a number to millionths, exactly: its 53 bits times a million fit into 128. False for what
// is too large, infinite or NaN, and for what runtimes round in different ways, since some make 17
// digits first and round these: one in the middle of two millionths or, seen by those digits, near
// it. The sign is left out.
bool RoundToMillionths(double number, uint64_t& millionths)
{
  constexpr uint64_t fractionBits = 52;
  constexpr uint64_t implicitBit = uint64_t{1} << fractionBits;
  constexpr uint64_t exponentBias = 1023;
  constexpr uint64_t million = 1000000;
  const uint64_t bits = std::bit_cast<uint64_t>(number);
  const uint64_t exponent = bits >> fractionBits & 0x7FF;
  // From 2^44 on the millionths don't fit into 64 bits.
  if (exponent >= exponentBias + 44)
    return false;
  const uint64_t mantissa = (bits & (implicitBit - 1)) | implicitBit;
  const uint64_t shift = exponentBias + fractionBits - exponent;
  const Unsigned128 scaled = Unsigned128{mantissa} * million;
  // 53 bits and 20 of the million: what is shifted further is less than a half. Zero is among that,
  // and so are the numbers that have no implicit bit.
  if (shift > 53 + 20) {
    millionths = 0;
    return true;
  }
  const Unsigned128 half = Unsigned128{1} << (shift - 1);
  const Unsigned128 rest = scaled & ((half << 1) - 1);
  // Rounding to 17 digits moves a number by less than this: a 2^54th part of it.
  const Unsigned128 moved = scaled >> 54;
  if (rest + moved >= half && rest <= half + moved)
    return false;
  millionths = static_cast<uint64_t>(scaled >> shift) + (rest > half ? 1 : 0);
  return true;
}

}  // namespace

StatementText::StatementText() : end(QulWideScratch), last(QulWideScratch + QulStringLimit - 1)
{
  *end = L'\0';
}

void StatementText::Append(wchar_t character)
{
  *RoomFor(1) = character;
}

void StatementText::Append(const wchar_t* text)
{
  const size_t length = wcslen(text);
  memcpy(RoomFor(length), text, length * sizeof(wchar_t));
}

void StatementText::AppendName(const QulString& name)
{
  const wchar_t* const text = name.Text();
  const size_t length = wcslen(text);
  wchar_t* const room = RoomFor(length + 2);
  room[0] = L'[';
  memcpy(room + 1, text, length * sizeof(wchar_t));
  room[length + 1] = L']';
}

void StatementText::AppendQuoted(const wchar_t* text, size_t size)
{
  const wchar_t* const textEnd = text + size;
  Append(Quote);
  for (text = AppendBlocks(text, textEnd); text != textEnd && *text != L'\0'; ++text) {
    if (*text == Quote)
      Append(Quote);
    Append(*text);
  }
  Append(Quote);
}

// Appends a text with its quotes doubled, but for a few characters at the end of its buffer or of
// the room, and returns where it stopped. Texts of tens of thousands of characters are what
// statements spend their time on, so it looks at eight of them at once.
const wchar_t* StatementText::AppendBlocks(const wchar_t* text, const wchar_t* textEnd)
{
  const __m128i quotes = _mm_set1_epi16(Quote);
  constexpr ptrdiff_t block = sizeof(quotes) / sizeof(wchar_t);
  wchar_t* place = end;
  // A block whose last character is a quote takes a character more.
  while (textEnd - text >= block && last - place > block) {
    const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(place), characters);
    const __m128i stops = _mm_or_si128(_mm_cmpeq_epi16(characters, quotes),
                                       _mm_cmpeq_epi16(characters, _mm_setzero_si128()));
    const unsigned mask = static_cast<unsigned>(_mm_movemask_epi8(stops));
    if (mask == 0) {
      text += block;
      place += block;
      continue;
    }
    // Two bits for each character.
    const int taken = std::countr_zero(mask) / 2;
    text += taken;
    place += taken;
    if (*text == L'\0')
      break;
    ++text;
    place[0] = Quote;
    place[1] = Quote;
    place += 2;
  }
  end = place;
  *end = L'\0';
  return text;
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
    Append(L'-');
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
  const int room = static_cast<int>(last - end) + 1;
  va_list arguments;
  va_start(arguments, format);
  const int written = vswprintf_s(end, static_cast<size_t>(room), format, arguments);
  va_end(arguments);
  RequireFormatted(written, room);
  end += written;
}

wchar_t* StatementText::RoomFor(size_t length)
{
  if (length > static_cast<size_t>(last - end))
    EndOnInvalidParameter();
  wchar_t* const room = end;
  end += length;
  *end = L'\0';
  return room;
}
