#include "tests/doubles/CharacterClass.h"

namespace {

struct Range
{
  unsigned int first;
  unsigned int last;
};

constexpr Range Spaces[] = {{0x0009, 0x000D}, {0x0020, 0x0020}, {0x00A0, 0x00A0},
                            {0x1680, 0x1680}, {0x2000, 0x200A}, {0x2028, 0x2029},
                            {0x202F, 0x202F}, {0x205F, 0x205F}, {0x3000, 0x3000}};

// Where the ten digits of a script begin: those that _wtoi reads ...
constexpr unsigned int ReadZeros[] = {0x0030, 0x0660, 0x06F0, 0x0966, 0x09E6, 0x0A66,
                                      0x0AE6, 0x0B66, 0x0C66, 0x0CE6, 0x0D66, 0x0E50,
                                      0x0ED0, 0x0F20, 0x1040, 0x17E0, 0x1810, 0xFF10};

// ... and those that are digits for iswdigit alone, the raised 1, 2 and 3 among them.
constexpr unsigned int OtherZeros[] = {0x07C0, 0x0BE6, 0x0DE6, 0x1090, 0x1946, 0x19D0, 0x1A80,
                                       0x1A90, 0x1B50, 0x1BB0, 0x1C40, 0x1C50, 0xA620, 0xA8D0,
                                       0xA900, 0xA9D0, 0xA9F0, 0xAA50, 0xABF0};
constexpr Range RaisedDigits[] = {{0x00B2, 0x00B3}, {0x00B9, 0x00B9}};

template <typename Ranges>
bool IsWithin(const Ranges& ranges, unsigned int c)
{
  for (const Range& range : ranges) {
    if (c >= range.first && c <= range.last)
      return true;
  }
  return false;
}

template <typename Zeros>
int ValueAmong(const Zeros& zeros, unsigned int c)
{
  for (const unsigned int zero : zeros) {
    if (c >= zero && c < zero + 10)
      return static_cast<int>(c - zero);
  }
  return -1;
}

}  // namespace

bool IsDigitCharacter(unsigned int c)
{
  return DigitValue(c) >= 0 || ValueAmong(OtherZeros, c) >= 0 || IsWithin(RaisedDigits, c);
}

bool IsSpaceCharacter(unsigned int c)
{
  return IsWithin(Spaces, c);
}

int DigitValue(unsigned int c)
{
  return ValueAmong(ReadZeros, c);
}

wchar_t LowerCharacter(wchar_t c)
{
  return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}
