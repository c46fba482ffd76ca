#include "tests/driver/TextBuffer.h"

#include <algorithm>
#include <cstddef>

#include "tests/driver/Utf.h"

namespace {

const unsigned char Poison = 0xBD;
const size_t UnitsBehind = 8;

}  // namespace

TextArgument::TextArgument(bool wideCalls, const std::string& text)
    : isWide(wideCalls), narrow(text), wide(Utf16(text))
{
}

TextBuffer::TextBuffer(bool isWide, size_t unitCount)
    : width(isWide ? 2 : 1), units(unitCount), bytes((units + UnitsBehind) * width, Poison)
{
}

std::string TextBuffer::Text() const
{
  std::u16string wideText;
  std::string narrowText;
  for (size_t i = 0; i < units; ++i) {
    const unsigned unit = width == 1 ? bytes[i] : bytes[2 * i] + 256u * bytes[2 * i + 1];
    if (unit == 0)
      return width == 1 ? narrowText : Utf8(wideText);
    wideText += static_cast<char16_t>(unit);
    narrowText += static_cast<char>(unit);
  }
  return "<no terminator>";
}

bool TextBuffer::IsPoisonFrom(size_t start) const
{
  return std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(start), bytes.end(),
                     [](unsigned char byte) { return byte == Poison; });
}
