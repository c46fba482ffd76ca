#include "tests/fuzz/Script.h"

#include "tests/doubles/Text.h"

#include <string.h>

#include <algorithm>

std::vector<ScriptLine> ReadScript(const uint8_t* data, size_t size)
{
  std::vector<ScriptLine> lines;
  const uint8_t* const end = data + size;
  while (data != end) {
    const uint8_t* const lineEnd = std::find(data, end, '\n');
    if (data != lineEnd)
      lines.push_back({static_cast<char>(*data), std::string(data + 1, lineEnd)});
    data = lineEnd == end ? end : lineEnd + 1;
  }
  return lines;
}

std::vector<std::string> Fields(const std::string& text, size_t count)
{
  std::vector<std::string> fields(count);
  size_t begin = 0;
  for (size_t i = 0; i < count && begin <= text.size(); ++i) {
    const size_t bar = i + 1 == count ? std::string::npos : text.find('|', begin);
    const size_t end = std::min(bar, text.size());
    fields[i] = text.substr(begin, end - begin);
    begin = end + 1;
  }
  return fields;
}

size_t TakeNumber(std::string& text)
{
  size_t number = 0;
  size_t i = 0;
  for (; i < text.size() && i < 7 && text[i] >= '0' && text[i] <= '9'; ++i)
    number = number * 10 + static_cast<size_t>(text[i] - '0');
  if (i < text.size() && text[i] == ' ')
    ++i;
  text.erase(0, i);
  return number;
}

std::string Repeated(std::string numberAndText, size_t most)
{
  size_t copies = TakeNumber(numberAndText);
  if (!numberAndText.empty())
    copies = std::min(copies, most / numberAndText.size());
  std::string result;
  result.reserve(copies * numberAndText.size());
  for (size_t i = 0; i < copies; ++i)
    result += numberAndText;
  return result;
}

std::u16string Units(const std::string& utf8)
{
  const WideText text(utf8);
  std::u16string units(text.c_str(), text.c_str() + text.Length());
  std::erase(units, u'\0');
  return units;
}

std::string Utf8Of(const std::u16string& units)
{
  const std::vector<wchar_t> text(units.begin(), units.end());
  return Utf8(text.data(), text.size());
}

std::vector<unsigned char> BytesOf(const std::u16string& units)
{
  std::vector<unsigned char> bytes(units.size() * sizeof(char16_t));
  if (!units.empty())
    memcpy(bytes.data(), units.data(), bytes.size());
  return bytes;
}

std::u16string UnitsOfAnsi(const std::string& ansi)
{
  constexpr char16_t from80To9F[] = {
      0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
      0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
      0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
  std::u16string units;
  for (const char c : ansi) {
    const unsigned char code = static_cast<unsigned char>(c);
    units += code >= 0x80 && code < 0xA0 ? from80To9F[code - 0x80] : char16_t{code};
  }
  return units;
}

char16_t Lower(char16_t unit)
{
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
}

std::u16string Lower(std::u16string text)
{
  for (char16_t& unit : text)
    unit = Lower(unit);
  return text;
}
