#include "tests/doubles/Text.h"

#include "tests/doubles/CodePage.h"

#include <stdint.h>

namespace {

bool IsHighSurrogate(uint32_t unit)
{
  return unit >= 0xD800 && unit < 0xDC00;
}

bool IsLowSurrogate(uint32_t unit)
{
  return unit >= 0xDC00 && unit < 0xE000;
}

void AppendUtf8(std::string& utf8, uint32_t code)
{
  const auto append = [&utf8](uint32_t byte) { utf8 += static_cast<char>(byte); };
  if (code < 0x80) {
    append(code);
  } else if (code < 0x800) {
    append(0xC0 | (code >> 6));
    append(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    append(0xE0 | (code >> 12));
    append(0x80 | ((code >> 6) & 0x3F));
    append(0x80 | (code & 0x3F));
  } else {
    append(0xF0 | (code >> 18));
    append(0x80 | ((code >> 12) & 0x3F));
    append(0x80 | ((code >> 6) & 0x3F));
    append(0x80 | (code & 0x3F));
  }
}

// Tests are written in valid UTF-8, so it isn't checked.
uint32_t NextCode(const std::string& utf8, size_t& i)
{
  const uint32_t first = static_cast<unsigned char>(utf8[i++]);
  if (first < 0x80)
    return first;
  const int more = first >= 0xF0 ? 3 : (first >= 0xE0 ? 2 : 1);
  uint32_t code = first & (0x3Fu >> more);
  for (int k = 0; k < more && i < utf8.size(); ++k)
    code = (code << 6) | (static_cast<unsigned char>(utf8[i++]) & 0x3Fu);
  return code;
}

char LowerLetter(char c)
{
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

std::string Utf8(const wchar_t* text)
{
  if (text == nullptr)
    return std::string();
  size_t length = 0;
  while (text[length] != L'\0')
    ++length;
  return Utf8(text, length);
}

std::string Utf8(const wchar_t* text, size_t characters)
{
  std::string utf8;
  for (size_t i = 0; i < characters; ++i) {
    const uint32_t unit = static_cast<uint16_t>(text[i]);
    if (IsHighSurrogate(unit) && i + 1 < characters &&
        IsLowSurrogate(static_cast<uint16_t>(text[i + 1]))) {
      ++i;
      AppendUtf8(utf8,
                 0x10000 + ((unit - 0xD800) << 10) + (static_cast<uint16_t>(text[i]) - 0xDC00u));
    } else {
      AppendUtf8(utf8, unit);
    }
  }
  return utf8;
}

WideText::WideText(const std::string& utf8)
{
  for (size_t i = 0; i < utf8.size();) {
    const uint32_t code = NextCode(utf8, i);
    if (code < 0x10000) {
      characters.push_back(static_cast<wchar_t>(code));
    } else {
      characters.push_back(static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10)));
      characters.push_back(static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
    }
  }
  characters.push_back(L'\0');
}

std::vector<unsigned char> TextBytes(const std::string& utf8)
{
  const WideText text(utf8);
  std::vector<unsigned char> bytes;
  for (size_t i = 0; i < text.Length(); ++i) {
    const uint32_t unit = static_cast<uint16_t>(text.c_str()[i]);
    bytes.push_back(static_cast<unsigned char>(unit & 0xFF));
    bytes.push_back(static_cast<unsigned char>(unit >> 8));
  }
  return bytes;
}

std::vector<unsigned char> TextBytesWithTerminator(const std::string& utf8)
{
  std::vector<unsigned char> bytes = TextBytes(utf8);
  bytes.push_back(0);
  bytes.push_back(0);
  return bytes;
}

std::string AnsiFromUtf8(const std::string& utf8)
{
  const WideText text(utf8);
  std::string ansi;
  for (size_t i = 0; i < text.Length(); ++i)
    ansi += AnsiFromWide(text.c_str()[i]);
  return ansi;
}

std::string Utf8FromAnsi(const std::string& ansi)
{
  std::string utf8;
  for (const char c : ansi)
    AppendUtf8(utf8, static_cast<uint16_t>(WideFromAnsi(c)));
  return utf8;
}

bool SameName(const std::string& left, const std::string& right)
{
  if (left.size() != right.size())
    return false;
  for (size_t i = 0; i < left.size(); ++i) {
    if (LowerLetter(left[i]) != LowerLetter(right[i]))
      return false;
  }
  return true;
}
