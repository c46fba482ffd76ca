#include "tests/driver/Utf.h"

namespace {

unsigned Byte(const std::string& text, size_t at)
{
  return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

void AppendCodePoint(std::u16string& text, unsigned value)
{
  if (value < 0x10000) {
    text += static_cast<char16_t>(value);
  } else {
    text += static_cast<char16_t>(0xD7C0 + (value >> 10));
    text += static_cast<char16_t>(0xDC00 + (value & 0x3FF));
  }
}

// The code point at that place, moving past all of its units but the last.
unsigned CodePoint(const std::u16string& text, size_t& at)
{
  const unsigned first = text[at];
  const unsigned second = at + 1 < text.size() ? text[at + 1] : 0;
  if ((first & 0xFC00) != 0xD800 || (second & 0xFC00) != 0xDC00)
    return first;
  ++at;
  return 0x10000 + ((first & 0x3FF) << 10) + (second & 0x3FF);
}

}  // namespace

std::u16string Utf16(const std::string& text)
{
  std::u16string result;
  for (size_t at = 0; at < text.size(); ++at) {
    const unsigned first = Byte(text, at);
    const unsigned more = first < 0x80 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
    unsigned value = more == 0 ? first : first & (0x3Fu >> more);
    for (unsigned i = 0; i < more; ++i)
      value = (value << 6) | (Byte(text, ++at) & 0x3F);
    AppendCodePoint(result, value);
  }
  return result;
}

std::string Utf8(const std::u16string& text)
{
  std::string result;
  for (size_t at = 0; at < text.size(); ++at) {
    const unsigned value = CodePoint(text, at);
    const unsigned more = value < 0x80 ? 0 : value < 0x800 ? 1 : value < 0x10000 ? 2 : 3;
    const unsigned mark = more == 0 ? 0 : 0xF0u << (3 - more) & 0xFF;
    result += static_cast<char>(mark | value >> (6 * more));
    for (unsigned i = more; i > 0; --i)
      result += static_cast<char>(0x80 | (value >> (6 * (i - 1)) & 0x3F));
  }
  return result;
}
