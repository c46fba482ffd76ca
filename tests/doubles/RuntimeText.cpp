// The text functions that msvcrt has and glibc lacks. On overflow they return ERANGE with an empty
// destination, and the program goes on. A failure that a test ordered looks the same.
#include "tests/doubles/CharacterClass.h"
#include "tests/doubles/Recorder.h"

#include <errno.h>
#include <limits.h>
#include <stdint.h>
#include <string.h>

#include <algorithm>

namespace {

template <typename Character>
size_t LengthWithin(const Character* text, size_t limit)
{
  size_t length = 0;
  while (length < limit && text[length] != 0)
    ++length;
  return length;
}

template <typename Character>
errno_t Refuse(Character* destination, errno_t error)
{
  destination[0] = 0;
  return error;
}

// The errors that copying and appending share; 0 if there is none.
template <typename Character>
errno_t CheckDestination(const char* function, Character* destination, size_t size)
{
  if (destination == nullptr || size == 0)
    return EINVAL;
  unsigned long code = 0;
  return TakeFault(function, code) ? Refuse(destination, static_cast<errno_t>(code)) : 0;
}

// Puts up to count characters of source behind the first `used` ones.
template <typename Character>
errno_t PutAt(Character* destination, size_t used, size_t size, const Character* source,
              size_t count)
{
  const bool truncate = count == _TRUNCATE;
  const size_t room = size - used - 1;
  // Not further into the source than needed: a counted source may lack a terminator.
  size_t length = LengthWithin(source, std::min(count, room + 1));
  const bool fits = length <= room;
  if (!fits && !truncate)
    return Refuse(destination, ERANGE);
  length = std::min(length, room);
  memmove(destination + used, source, length * sizeof(Character));
  destination[used + length] = 0;
  return fits ? 0 : STRUNCATE;
}

template <typename Character>
errno_t Copy(const char* function, Character* destination, size_t size, const Character* source,
             size_t count)
{
  if (count == 0 && destination == nullptr && size == 0)
    return 0;
  const errno_t error = CheckDestination(function, destination, size);
  if (error != 0)
    return error;
  // No character is asked for: not even the source is looked at.
  if (count == 0)
    return Refuse(destination, 0);
  return source == nullptr ? Refuse(destination, EINVAL)
                           : PutAt(destination, 0, size, source, count);
}

template <typename Character>
errno_t Append(const char* function, Character* destination, size_t size, const Character* source,
               size_t count)
{
  const errno_t error = CheckDestination(function, destination, size);
  if (error != 0 || count == 0)
    return error;
  if (source == nullptr)
    return Refuse(destination, EINVAL);
  const size_t used = LengthWithin(destination, size);
  if (used == size)
    return Refuse(destination, EINVAL);
  return PutAt(destination, used, size, source, count);
}

// A count that no text reaches, and not the mark of truncation.
constexpr size_t WholeText = SIZE_MAX / 4;

template <typename Character>
bool IsOneOf(Character c, const Character* set)
{
  if (c == 0)
    return false;
  for (; *set != 0; ++set) {
    if (*set == c)
      return true;
  }
  return false;
}

template <typename Character>
Character* NextToken(Character* text, const Character* delimiters, Character** context)
{
  if (delimiters == nullptr || context == nullptr || (text == nullptr && *context == nullptr))
    return nullptr;
  Character* token = text != nullptr ? text : *context;
  while (IsOneOf(*token, delimiters))
    ++token;
  Character* end = token;
  while (*end != 0 && !IsOneOf(*end, delimiters))
    ++end;
  *context = end;
  if (end == token)
    return nullptr;
  if (*end != 0) {
    *end = 0;
    ++*context;
  }
  return token;
}

}  // namespace

errno_t wcscpy_s(wchar_t* destination, rsize_t size, const wchar_t* source)
{
  return Copy("wcscpy_s", destination, size, source, WholeText);
}

errno_t wcscat_s(wchar_t* destination, rsize_t size, const wchar_t* source)
{
  return Append("wcscat_s", destination, size, source, WholeText);
}

errno_t wcsncpy_s(wchar_t* destination, size_t size, const wchar_t* source, size_t count)
{
  return Copy("wcsncpy_s", destination, size, source, count);
}

errno_t wcsncat_s(wchar_t* destination, size_t size, const wchar_t* source, size_t count)
{
  return Append("wcsncat_s", destination, size, source, count);
}

errno_t strcpy_s(char* destination, rsize_t size, const char* source)
{
  return Copy("strcpy_s", destination, size, source, WholeText);
}

errno_t strcat_s(char* destination, rsize_t size, const char* source)
{
  return Append("strcat_s", destination, size, source, WholeText);
}

char* strtok_s(char* text, const char* delimiters, char** context)
{
  return NextToken(text, delimiters, context);
}

wchar_t* wcstok_s(wchar_t* text, const wchar_t* delimiters, wchar_t** context)
{
  return NextToken(text, delimiters, context);
}

int _wcsnicmp(const wchar_t* left, const wchar_t* right, size_t count)
{
  for (size_t i = 0; i < count; ++i) {
    const wchar_t a = LowerCharacter(left[i]);
    const wchar_t b = LowerCharacter(right[i]);
    if (a != b)
      return static_cast<uint16_t>(a) < static_cast<uint16_t>(b) ? -1 : 1;
    if (a == L'\0')
      return 0;
  }
  return 0;
}

int _wcsicmp(const wchar_t* left, const wchar_t* right)
{
  return _wcsnicmp(left, right, SIZE_MAX);
}

errno_t _wcslwr_s(wchar_t* text, size_t size)
{
  if (text == nullptr || size == 0)
    return EINVAL;
  unsigned long code = 0;
  if (TakeFault("_wcslwr_s", code))
    return Refuse(text, static_cast<errno_t>(code));
  if (LengthWithin(text, size) == size)
    return Refuse(text, EINVAL);
  for (wchar_t* p = text; *p != L'\0'; ++p)
    *p = LowerCharacter(*p);
  return 0;
}

int _wtoi(const wchar_t* text)
{
  while (IsSpaceCharacter(static_cast<uint16_t>(*text)))
    ++text;
  const bool negative = *text == L'-';
  if (*text == L'-' || *text == L'+')
    ++text;
  int64_t number = 0;
  for (; number <= INT_MAX; ++text) {
    const int digit = DigitValue(static_cast<uint16_t>(*text));
    if (digit < 0)
      break;
    number = number * 10 + digit;
  }
  number = negative ? -number : number;
  return static_cast<int>(std::clamp<int64_t>(number, INT_MIN, INT_MAX));
}
