#include "driver/Text.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstring>

namespace {

bool IsHighSurrogate(uint32_t unit)
{
  return unit >= 0xd800 && unit < 0xdc00;
}

bool IsLowSurrogate(uint32_t unit)
{
  return unit >= 0xdc00 && unit < 0xe000;
}

// Bytes of the character that starts with this byte, 0 for a byte that starts none.
size_t SequenceLength(unsigned char lead)
{
  if (lead < 0x80)
    return 1;
  if (lead >= 0xc2 && lead < 0xe0)
    return 2;
  if (lead >= 0xe0 && lead < 0xf0)
    return 3;
  if (lead >= 0xf0 && lead < 0xf5)
    return 4;
  return 0;
}

uint32_t TakeInvalidByte(std::string_view& text)
{
  const uint32_t byte = static_cast<unsigned char>(text.front());
  text.remove_prefix(1);
  return InvalidByteBase + byte;
}

// True if both have the same eight bytes there, all ASCII.
bool SameAsciiWord(const char* left, const char* right)
{
  uint64_t leftWord = 0;
  uint64_t rightWord = 0;
  memcpy(&leftWord, left, sizeof(leftWord));
  memcpy(&rightWord, right, sizeof(rightWord));
  return leftWord == rightWord && (leftWord & 0x8080808080808080U) == 0;
}

unsigned char LowerAscii(unsigned char byte)
{
  return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte + 32) : byte;
}

}  // namespace

uint32_t TakeCharacter(std::string_view& text)
{
  static const uint32_t leadMask[] = {0, 0x7f, 0x1f, 0x0f, 0x07};
  static const uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const size_t length = SequenceLength(static_cast<unsigned char>(text.front()));
  if (length == 0 || length > text.size())
    return TakeInvalidByte(text);
  uint32_t character = static_cast<unsigned char>(text.front()) & leadMask[length];
  for (size_t i = 1; i < length; ++i) {
    const uint32_t byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xc0) != 0x80)
      return TakeInvalidByte(text);
    character = (character << 6) | (byte & 0x3f);
  }
  if (character < smallest[length] || character > 0x10ffff)
    return TakeInvalidByte(text);
  text.remove_prefix(length);
  return character;
}

void AppendUtf8(std::string& out, uint32_t character)
{
  if (character < 0x80) {
    out += static_cast<char>(character);
    return;
  }
  if (character < 0x800) {
    out += static_cast<char>(0xc0 | (character >> 6));
  } else {
    if (character < 0x10000) {
      out += static_cast<char>(0xe0 | (character >> 12));
    } else {
      out += static_cast<char>(0xf0 | (character >> 18));
      out += static_cast<char>(0x80 | ((character >> 12) & 0x3f));
    }
    out += static_cast<char>(0x80 | ((character >> 6) & 0x3f));
  }
  out += static_cast<char>(0x80 | (character & 0x3f));
}

std::string ToUtf8(const SQLWCHAR* text, SQLLEN length)
{
  std::string out;
  if (text == nullptr)
    return out;
  size_t count = 0;
  if (length == SQL_NTS) {
    while (text[count] != 0)
      ++count;
  } else if (length > 0) {
    count = static_cast<size_t>(length);
  }
  out.resize(count);
  size_t i = 0;
  // Statements are nearly all ASCII, which is as long in either form.
  for (; i < count && text[i] < 0x80; ++i)
    out[i] = static_cast<char>(text[i]);
  out.resize(i);
  for (; i < count; ++i) {
    uint32_t character = text[i];
    if (IsHighSurrogate(character) && i + 1 < count && IsLowSurrogate(text[i + 1])) {
      character = 0x10000 + ((character - 0xd800) << 10) + (text[i + 1] - 0xdc00U);
      ++i;
    }
    AppendUtf8(out, character);
  }
  return out;
}

std::string ToUtf8(const SQLCHAR* text, SQLLEN length)
{
  if (text == nullptr)
    return {};
  const char* bytes = reinterpret_cast<const char*>(text);
  if (length == SQL_NTS)
    return bytes;
  return std::string(bytes, length > 0 ? static_cast<size_t>(length) : 0);
}

std::u16string ToUtf16(std::string_view text)
{
  std::u16string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const uint32_t character = TakeCharacter(text);
    if (character >= InvalidByteBase) {
      out += u'\xfffd';
    } else if (character >= 0x10000) {
      out += static_cast<char16_t>(0xd800 + ((character - 0x10000) >> 10));
      out += static_cast<char16_t>(0xdc00 + ((character - 0x10000) & 0x3ff));
    } else {
      out += static_cast<char16_t>(character);
    }
  }
  return out;
}

size_t CopyText(std::string_view text, SQLWCHAR* out, size_t capacity)
{
  const size_t room = out == nullptr || capacity == 0 ? 0 : capacity - 1;
  size_t written = 0;
  size_t total = 0;
  while (!text.empty()) {
    uint32_t character = TakeCharacter(text);
    if (character >= InvalidByteBase)
      character = 0xfffd;
    const size_t units = character >= 0x10000 ? 2 : 1;
    // What has once been cut stays cut: nothing shorter may follow behind it.
    if (written == total && written + units <= room) {
      if (units == 2) {
        out[written] = static_cast<SQLWCHAR>(0xd800 + ((character - 0x10000) >> 10));
        out[written + 1] = static_cast<SQLWCHAR>(0xdc00 + ((character - 0x10000) & 0x3ff));
      } else {
        out[written] = static_cast<SQLWCHAR>(character);
      }
      written += units;
    }
    total += units;
  }
  if (out != nullptr && capacity != 0)
    out[written] = 0;
  return total;
}

size_t CopyText(std::string_view text, SQLCHAR* out, size_t capacity)
{
  if (out == nullptr || capacity == 0)
    return text.size();
  size_t count = std::min(text.size(), capacity - 1);
  if (count < text.size()) {
    // Back to the start of the character that would be cut, if there is one.
    size_t start = count;
    while (start > 0 && count - start < 3 &&
           (static_cast<unsigned char>(text[start]) & 0xc0) == 0x80)
      --start;
    if ((static_cast<unsigned char>(text[start]) & 0xc0) == 0xc0)
      count = start;
  }
  memcpy(out, text.data(), count);
  out[count] = 0;
  return text.size();
}

uint32_t FoldCase(uint32_t character)
{
  if (character < 0x80)
    return LowerAscii(static_cast<unsigned char>(character));
  // The dotted capital I has no partner of its own, and sigma has a second small form.
  if (character == 0x130 || character >= InvalidByteBase)
    return character;
  if (character == 0x3c2)
    return 0x3c3;
  return static_cast<uint32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(character)));
}

int CompareNoCase(std::string_view left, std::string_view right)
{
  // Nearly all text is ASCII, which needs no decoding.
  size_t common = 0;
  const size_t shorter = std::min(left.size(), right.size());
  while (common + sizeof(uint64_t) <= shorter && SameAsciiWord(&left[common], &right[common]))
    common += sizeof(uint64_t);
  while (common < shorter) {
    const auto leftByte = static_cast<unsigned char>(left[common]);
    const auto rightByte = static_cast<unsigned char>(right[common]);
    if (leftByte >= 0x80 || rightByte >= 0x80)
      break;
    if (leftByte != rightByte) {
      const int difference = LowerAscii(leftByte) - LowerAscii(rightByte);
      if (difference != 0)
        return difference;
    }
    ++common;
  }
  left.remove_prefix(common);
  right.remove_prefix(common);
  while (!left.empty() && !right.empty()) {
    const uint32_t leftCharacter = FoldCase(TakeCharacter(left));
    const uint32_t rightCharacter = FoldCase(TakeCharacter(right));
    if (leftCharacter != rightCharacter)
      return leftCharacter < rightCharacter ? -1 : 1;
  }
  return static_cast<int>(!left.empty()) - static_cast<int>(!right.empty());
}

bool EqualsNoCase(std::string_view left, std::string_view right)
{
  return CompareNoCase(left, right) == 0;
}

bool ContainsNoCase(std::string_view text, std::string_view part)
{
  for (size_t i = 0; i + part.size() <= text.size(); ++i) {
    if (EqualsNoCase(text.substr(i, part.size()), part))
      return true;
  }
  return false;
}

bool MatchesPattern(std::string_view text, std::string_view pattern, uint32_t escape)
{
  // Where to go on after a mismatch: behind the last %, with one character more taken by it.
  std::string_view retryText;
  std::string_view retryPattern;
  bool canRetry = false;
  while (true) {
    bool matches = pattern.empty() && text.empty();
    if (matches)
      return true;
    if (!pattern.empty()) {
      std::string_view rest = pattern;
      uint32_t wanted = TakeCharacter(rest);
      if (wanted == '%' && wanted != escape) {
        canRetry = true;
        pattern = retryPattern = rest;
        retryText = text;
        continue;
      }
      const bool any = wanted == '_' && wanted != escape;
      if (wanted == escape && escape != 0 && !rest.empty())
        wanted = TakeCharacter(rest);
      if (!text.empty()) {
        const uint32_t character = TakeCharacter(text);
        matches = any || FoldCase(character) == FoldCase(wanted);
        pattern = rest;
      }
    }
    if (!matches) {
      if (!canRetry || retryText.empty())
        return false;
      (void)TakeCharacter(retryText);
      text = retryText;
      pattern = retryPattern;
    }
  }
}
