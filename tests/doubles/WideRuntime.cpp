// The standard wide functions with characters of 16 bits. The linker puts them in the place of
// glibc's (--wrap, see WrappedNames.cmake), whose characters have 32; it asks for the prefix.
#include "tests/doubles/CharacterClass.h"

#include <stddef.h>
#include <stdint.h>
#include <wchar.h>
#include <wctype.h>

namespace {

int Compare(wchar_t left, wchar_t right)
{
  return left == right ? 0 : (static_cast<uint16_t>(left) < static_cast<uint16_t>(right) ? -1 : 1);
}

bool IsIn(wchar_t c, const wchar_t* set)
{
  for (; *set != L'\0'; ++set) {
    if (*set == c)
      return true;
  }
  return false;
}

size_t SpanLength(const wchar_t* text, const wchar_t* set, bool inSet)
{
  size_t length = 0;
  while (text[length] != L'\0' && IsIn(text[length], set) == inSet)
    ++length;
  return length;
}

}  // namespace

extern "C" {

size_t __wrap_wcslen(const wchar_t* text)
{
  size_t length = 0;
  while (text[length] != L'\0')
    ++length;
  return length;
}

size_t __wrap_wcsnlen(const wchar_t* text, size_t limit)
{
  size_t length = 0;
  while (length < limit && text[length] != L'\0')
    ++length;
  return length;
}

wchar_t* __wrap_wmemcpy(wchar_t* destination, const wchar_t* source, size_t count)
{
  for (size_t i = 0; i < count; ++i)
    destination[i] = source[i];
  return destination;
}

wchar_t* __wrap_wmemmove(wchar_t* destination, const wchar_t* source, size_t count)
{
  if (reinterpret_cast<uintptr_t>(destination) <= reinterpret_cast<uintptr_t>(source))
    return __wrap_wmemcpy(destination, source, count);
  for (size_t i = count; i > 0; --i)
    destination[i - 1] = source[i - 1];
  return destination;
}

wchar_t* __wrap_wmemset(wchar_t* destination, wchar_t c, size_t count)
{
  for (size_t i = 0; i < count; ++i)
    destination[i] = c;
  return destination;
}

int __wrap_wmemcmp(const wchar_t* left, const wchar_t* right, size_t count)
{
  for (size_t i = 0; i < count; ++i) {
    if (left[i] != right[i])
      return Compare(left[i], right[i]);
  }
  return 0;
}

wchar_t* __wrap_wmemchr(const wchar_t* text, wchar_t c, size_t count)
{
  for (size_t i = 0; i < count; ++i) {
    if (text[i] == c)
      return const_cast<wchar_t*>(text + i);
  }
  return nullptr;
}

wchar_t* __wrap_wcscpy(wchar_t* destination, const wchar_t* source)
{
  return __wrap_wmemcpy(destination, source, __wrap_wcslen(source) + 1);
}

wchar_t* __wrap_wcsncpy(wchar_t* destination, const wchar_t* source, size_t count)
{
  const size_t length = __wrap_wcsnlen(source, count);
  (void)__wrap_wmemcpy(destination, source, length);
  (void)__wrap_wmemset(destination + length, L'\0', count - length);
  return destination;
}

wchar_t* __wrap_wcscat(wchar_t* destination, const wchar_t* source)
{
  (void)__wrap_wcscpy(destination + __wrap_wcslen(destination), source);
  return destination;
}

wchar_t* __wrap_wcsncat(wchar_t* destination, const wchar_t* source, size_t count)
{
  wchar_t* end = destination + __wrap_wcslen(destination);
  const size_t length = __wrap_wcsnlen(source, count);
  (void)__wrap_wmemcpy(end, source, length);
  end[length] = L'\0';
  return destination;
}

int __wrap_wcsncmp(const wchar_t* left, const wchar_t* right, size_t count)
{
  for (size_t i = 0; i < count; ++i) {
    if (left[i] != right[i] || left[i] == L'\0')
      return Compare(left[i], right[i]);
  }
  return 0;
}

int __wrap_wcscmp(const wchar_t* left, const wchar_t* right)
{
  return __wrap_wcsncmp(left, right, SIZE_MAX);
}

int __wrap_wcsncasecmp(const wchar_t* left, const wchar_t* right, size_t count)
{
  for (size_t i = 0; i < count; ++i) {
    const wchar_t a = LowerCharacter(left[i]);
    const wchar_t b = LowerCharacter(right[i]);
    if (a != b || a == L'\0')
      return Compare(a, b);
  }
  return 0;
}

int __wrap_wcscasecmp(const wchar_t* left, const wchar_t* right)
{
  return __wrap_wcsncasecmp(left, right, SIZE_MAX);
}

wchar_t* __wrap_wcschr(const wchar_t* text, wchar_t c)
{
  return __wrap_wmemchr(text, c, __wrap_wcslen(text) + 1);
}

wchar_t* __wrap_wcsrchr(const wchar_t* text, wchar_t c)
{
  for (size_t i = __wrap_wcslen(text) + 1; i > 0; --i) {
    if (text[i - 1] == c)
      return const_cast<wchar_t*>(text + i - 1);
  }
  return nullptr;
}

wchar_t* __wrap_wcsstr(const wchar_t* text, const wchar_t* needle)
{
  const size_t length = __wrap_wcslen(needle);
  for (;; ++text) {
    if (__wrap_wcsncmp(text, needle, length) == 0)
      return const_cast<wchar_t*>(text);
    if (*text == L'\0')
      return nullptr;
  }
}

size_t __wrap_wcsspn(const wchar_t* text, const wchar_t* set)
{
  return SpanLength(text, set, true);
}

size_t __wrap_wcscspn(const wchar_t* text, const wchar_t* set)
{
  return SpanLength(text, set, false);
}

wchar_t* __wrap_wcspbrk(const wchar_t* text, const wchar_t* set)
{
  const wchar_t* found = text + SpanLength(text, set, false);
  return *found == L'\0' ? nullptr : const_cast<wchar_t*>(found);
}

int __wrap_iswdigit(wint_t c)
{
  return IsDigitCharacter(c);
}

int __wrap_iswspace(wint_t c)
{
  return IsSpaceCharacter(c);
}

wint_t __wrap_towlower(wint_t c)
{
  return static_cast<uint16_t>(LowerCharacter(static_cast<wchar_t>(c)));
}

wint_t __wrap_towupper(wint_t c)
{
  return c >= L'a' && c <= L'z' ? c - L'a' + L'A' : c;
}

}  // extern "C"
