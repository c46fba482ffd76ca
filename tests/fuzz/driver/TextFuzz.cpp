// Text on its way between 8 and 16 bits, cut to buffers, and compared without regard to case, as a
// plain reader of UTF-8 has it.

#include "driver/Text.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "tests/fuzz/Require.h"

namespace {

std::u16string AnyUnits(FuzzedDataProvider& input)
{
  std::u16string units;
  while (input.remaining_bytes() > 1 && units.size() < 64)
    units += static_cast<char16_t>(input.ConsumeIntegral<uint16_t>());
  return units;
}

// A character that starts at the front of a text, and how many bytes it takes. A byte that starts
// none is a character by itself. Surrogates count as characters.
std::pair<uint32_t, size_t> FirstCharacter(const std::string& text)
{
  static const struct
  {
    uint32_t least;
    uint32_t most;
    unsigned mask;
    unsigned mark;
  } forms[] = {{0, 0x7f, 0x80, 0},
               {0x80, 0x7ff, 0xe0, 0xc0},
               {0x800, 0xffff, 0xf0, 0xe0},
               {0x10000, 0x10ffff, 0xf8, 0xf0}};
  const unsigned lead = static_cast<unsigned char>(text[0]);
  const std::pair<uint32_t, size_t> invalid(InvalidByteBase + lead, 1);
  for (size_t length = 1; length <= 4; ++length) {
    const auto& form = forms[length - 1];
    if ((lead & form.mask) != form.mark)
      continue;
    if (text.size() < length)
      return invalid;
    uint32_t character = lead & ~form.mask & 0xffU;
    for (size_t i = 1; i < length; ++i) {
      const unsigned byte = static_cast<unsigned char>(text[i]);
      if (byte / 64 != 2)
        return invalid;
      character = character * 64 + byte % 64;
    }
    const bool isOfThisLength = character >= form.least && character <= form.most;
    return isOfThisLength ? std::make_pair(character, length) : invalid;
  }
  return invalid;
}

std::vector<uint32_t> Characters(std::string text)
{
  std::vector<uint32_t> characters;
  while (!text.empty()) {
    const auto [character, length] = FirstCharacter(text);
    characters.push_back(character);
    text.erase(0, length);
  }
  return characters;
}

std::u16string Units(const std::vector<uint32_t>& characters)
{
  std::u16string units;
  for (uint32_t character : characters) {
    if (character >= InvalidByteBase)
      character = 0xfffd;
    if (character > 0xffff) {
      units += static_cast<char16_t>(0xd7c0 + character / 0x400);
      units += static_cast<char16_t>(0xdc00 + character % 0x400);
    } else {
      units += static_cast<char16_t>(character);
    }
  }
  return units;
}

void CheckCharacters(const std::string& text)
{
  std::string_view rest = text;
  for (const uint32_t expected : Characters(text)) {
    Require(!rest.empty(), "a text has no fewer characters");
    const size_t before = rest.size();
    Require(TakeCharacter(rest) == expected, "the next character is taken");
    std::string again;
    if (expected < InvalidByteBase) {
      AppendUtf8(again, expected);
      Require(again == text.substr(text.size() - before, before - rest.size()),
              "a character is written as it was read");
    }
  }
  Require(rest.empty(), "a text has no more characters");
  Require(ToUtf16(text) == Units(Characters(text)), "each character has its units");
}

void CheckUnits(const std::u16string& units)
{
  // Behind the last unit lies nothing that may be read.
  const auto copy = std::make_unique<SQLWCHAR[]>(units.size());
  std::copy(units.begin(), units.end(), copy.get());
  const std::string narrow = ToUtf8(copy.get(), static_cast<SQLLEN>(units.size()));
  Require(ToUtf16(narrow) == units, "every 16-bit text comes back as it went in");
  const auto ended = std::make_unique<SQLWCHAR[]>(units.size() + 1);
  std::copy(units.begin(), units.end(), ended.get());
  const std::u16string upToTerminator = units.substr(0, units.find(u'\0'));
  Require(ToUtf16(ToUtf8(ended.get(), SQL_NTS)) == upToTerminator,
          "a terminated text ends at its terminator");
}

// The longest part of a text, of whole characters, that takes no more than room units.
template <typename Unit, typename Text>
Text PartThatFits(const std::vector<Text>& characters, size_t room)
{
  Text part;
  for (const Text& character : characters) {
    if (part.size() + character.size() > room)
      break;
    part += character;
  }
  return part;
}

template <typename Unit, typename Text>
void CheckCopy(const std::string& text, const std::vector<Text>& characters, size_t capacity)
{
  size_t whole = 0;
  for (const Text& character : characters)
    whole += character.size();
  const auto buffer = std::make_unique<Unit[]>(capacity);
  Require(CopyText(text, buffer.get(), capacity) == whole, "the length of the whole text is told");
  Require(CopyText(text, static_cast<Unit*>(nullptr), capacity) == whole,
          "without a buffer the length is told");
  if (capacity == 0)
    return;
  const Text expected = PartThatFits<Unit>(characters, capacity - 1);
  Require(std::equal(expected.begin(), expected.end(), buffer.get(),
                     [](auto left, Unit right) { return static_cast<Unit>(left) == right; }),
          "whole characters are copied as long as they fit");
  Require(buffer[expected.size()] == 0, "a terminator follows");
}

void CheckCopies(const std::string& text, size_t capacity)
{
  std::vector<std::u16string> wide;
  for (const uint32_t character : Characters(text))
    wide.push_back(Units({character}));
  CheckCopy<SQLWCHAR>(text, wide, capacity);
  // Bytes of no character are cut anywhere; that is no promise about characters.
  std::vector<std::string> narrow;
  std::string rest = text;
  while (!rest.empty()) {
    const auto [character, length] = FirstCharacter(rest);
    if (character >= InvalidByteBase) {
      const auto buffer = std::make_unique<SQLCHAR[]>(capacity);
      Require(CopyText(text, buffer.get(), capacity) == text.size(), "the length is told");
      return;
    }
    narrow.push_back(rest.substr(0, length));
    rest.erase(0, length);
  }
  CheckCopy<SQLCHAR>(text, narrow, capacity);
}

std::vector<uint32_t> Folded(const std::string& text)
{
  std::vector<uint32_t> characters = Characters(text);
  for (uint32_t& character : characters)
    character = FoldCase(character);
  return characters;
}

void CheckComparison(const std::string& left, const std::string& right)
{
  const std::vector<uint32_t> leftFolded = Folded(left);
  const std::vector<uint32_t> rightFolded = Folded(right);
  const int order = CompareNoCase(left, right);
  Require((order < 0) == (leftFolded < rightFolded), "a text is less as its folded letters are");
  Require((order == 0) == (leftFolded == rightFolded), "texts are equal but for their case");
  Require(EqualsNoCase(left, right) == (order == 0), "equality is the order's");
  for (const uint32_t character : leftFolded)
    Require(FoldCase(character) == character, "what is folded stays so");
}

std::string LowerAscii(std::string text)
{
  for (char& character : text) {
    if (character >= 'A' && character <= 'Z')
      character = static_cast<char>(character + 'a' - 'A');
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
  FuzzedDataProvider input(data, size);
  const size_t capacity = input.ConsumeIntegralInRange<size_t>(0, 24);
  const std::string first = input.ConsumeRandomLengthString(48);
  const std::string second = input.ConsumeRandomLengthString(48);
  CheckUnits(AnyUnits(input));
  CheckCharacters(first);
  CheckCopies(first, capacity);
  CheckComparison(first, second);
  CheckComparison(second, first);
  CheckComparison(first, LowerAscii(first));
  for (const char* part : {"INT", "char", "x"}) {
    // Letters that fold to ASCII ones beyond it are few, and no type's word has one.
    const bool isAscii = std::all_of(first.begin(), first.end(), [](char c) { return c >= 0; });
    if (isAscii)
      Require(ContainsNoCase(first, part) ==
                  (LowerAscii(first).find(LowerAscii(part)) != std::string::npos),
              "a part is found without regard to case");
  }
  return 0;
}
